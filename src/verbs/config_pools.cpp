// Pools of LUs 0 to 3, and their extra data.
#include "nof/extra_data.h"
#include "nof/pool.h"
#include "shell/globals.h"
#include "store/tracking.h"
#include "verbs/config_kind.h"

namespace {

constexpr vga_listing pool_listing{vga_flag(VGA_NODE_POOLS)};
constexpr vga_listing lu_listing{vga_flag(VGA_NODE_LU03S), VGA_CHECK_LU03};

vga_lu03* find_lu(const vga_node* node, const NB_BYTE* name) {
    const vga_lu_key key{name, node->node_name};
    return vga_status_find<vga_lu03>(gvga_system->lu_tree, &key);
}

// The LU of a name on the node that a verb is about, else on another node of the domain; or null.
vga_lu03* find_domain_lu(const vga_node* node, const NB_BYTE* name) {
    vga_lu03* lu = find_lu(node, name);
    for (auto* other = ntl_avl_first<vga_node>(gvga_system->node_tree);
         lu == nullptr && other != nullptr;
         other = static_cast<vga_node*>(ntl_avl_next(&other->node))) {
        lu = find_lu(other, name);
    }
    return lu;
}

// Moves an LU to the part of a pool that its node has. False: exit code 1 is set.
bool move_to_pool(vga_lu03* lu, const NB_BYTE* pool_name) {
    vga_node* node = lu->parent->parent;
    vga_sys_pool* system_pool;
    vga_pool* pool;
    if (!vga_find_pool_insert_pos(pool_name, node, &system_pool, &pool)) {
        return false;
    }
    if (vga_status_find<vga_lu03>(pool->lu_tree, lu->vcb.lu_name) != lu) {
        vga_remove_pool_lu(lu, node, false);
        vga_insert_pool_lu(lu, pool);
    }
    return true;
}

// The LUs that are in no pool are not a pool that could be deleted.
bool is_null(const vga_sys_pool* pool) {
    constexpr NB_NAME8E null_name{};
    return std::memcmp(pool->pool_name, null_name, sizeof null_name) == 0;
}

template <typename Block> std::span<const NB_NAME8E> lu_names(const Block& block) {
    return {block.lu_names, std::min<std::size_t>(block.num_lus, NOF_POOL_LUS)};
}

// Extra data of other kinds of resource is not kept.
template <typename Block> bool is_of_lu03(const Block& block) {
    return block.resource_kind == NOF_EXTRA_DATA_LU_0_TO_3;
}

} // namespace

// ---- pools ----

void vga_process_def_lu_pool(VGA_COMPLETION* completion, vga_node* node, vga_sys_pool** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_LU_POOL, completion, NAP_DEFINE_LU_POOL);
    vga_give<vga_sys_pool>(record, nullptr);
    vga_sys_pool* system_pool;
    vga_pool* pool;
    if (!vga_find_pool_insert_pos(block.pool_name, node, &system_pool, &pool)) {
        vga_log_absent_ebcdic(node, pool_listing, 48, block.header.opcode, block.pool_name);
        return;
    }
    vga_give(record, system_pool);
    for (const NB_NAME8E& name : lu_names(block)) {
        vga_lu03* lu = find_domain_lu(node, name);
        if (lu == nullptr) {
            vga_log_absent_ebcdic(node, lu_listing, 49, block.header.opcode, name);
        } else if (!move_to_pool(lu, block.pool_name)) {
            return;
        }
    }
}

void vga_process_del_lu_pool(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_LU_POOL, completion, NAP_DELETE_LU_POOL);
    vga_pool* pool = vga_find_node_pool(block.pool_name, node);
    if (pool == nullptr || is_null(pool->parent)) {
        vga_log_absent_ebcdic(node, pool_listing, 50, block.header.opcode, block.pool_name);
        return;
    }
    if (block.num_lus == 0) {
        vga_delete_vga_node_pool(pool, true);
        return;
    }
    for (const NB_NAME8E& name : lu_names(block)) {
        if (auto* lu = vga_status_find<vga_lu03>(pool->lu_tree, name); lu != nullptr) {
            vga_remove_pool_lu(lu, node, true);
        } else {
            vga_log_absent_ebcdic(node, lu_listing, 49, block.header.opcode, name);
        }
    }
}

// ---- extra data ----

void vga_process_def_extra_data(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_EXTRA_DATA, completion, NAP_DEFINE_EXTRA_DATA);
    if (!is_of_lu03(block)) {
        return;
    }
    auto entry = vga_new_entry<EXTRA_DATA_ENTRY>();
    entry.data = block.data;
    if (EXTRA_DATA_ENTRY* data = vga_init_extra_data(&entry); data != nullptr) {
        vga_insert_lu03_extra_data(data, node);
    }
}

void vga_process_del_extra_data(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_EXTRA_DATA, completion, NAP_DELETE_EXTRA_DATA);
    if (!is_of_lu03(block)) {
        return;
    }
    if (vga_lu03* lu = find_lu(node, block.name); lu != nullptr) {
        vga_delete_lu03_extra_data(lu);
    }
}
