// What the build makes of the entries of the domain's lists, and of the nodes' pools.
#include "nof/pool.h"
#include "shell/globals.h"
#include "store/query.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"
#include "store/tracking.h"

namespace {

template <typename Record, typename Entry>
bool add(vga_page_context& context, Record* (*init)(vga_system*, const Entry*),
         Record* (*insert)(Record*, vga_system*), const void* entry) {
    Record* record = init(gvga_system, static_cast<const Entry*>(entry));
    context.record = record != nullptr ? insert(record, gvga_system) : nullptr;
    return record != nullptr;
}

} // namespace

bool vga_entry_user(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const EMULATOR_USER_ENTRY*>(raw);
    if (!add(context, vga_init_vga_user, vga_insert_vga_user, entry)) {
        return false;
    }
    auto* user = static_cast<vga_user*>(context.record);
    return vga_each_item<USER_SESSION>(
        entry, entry->def.num_sessions, [user](const USER_SESSION* item) {
            vga_user_sess* sess = vga_init_vga_user_sess(user, item);
            return sess != nullptr && vga_insert_vga_user_sess(sess, user) != nullptr;
        });
}

bool vga_entry_cpic(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_cpic, vga_insert_vga_cpic, entry);
}

bool vga_entry_rje_wkstn(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_rje_wkstn, vga_insert_vga_rje_wkstn, entry);
}

// An LU that is not listed yet brings its pool along when it is.
bool vga_entry_pool(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const LU_POOL_ENTRY*>(raw);
    auto* node = static_cast<vga_node*>(context.owner);
    vga_sys_pool* system_pool;
    vga_pool* pool;
    if (vga_blank_name(entry->pool_name, sizeof entry->pool_name)) {
        return true;
    }
    if (!vga_find_pool_insert_pos(entry->pool_name, node, &system_pool, &pool)) {
        return false;
    }
    context.record = pool;
    const vga_lu_key key{entry->lu_name, node->node_name};
    auto* lu = vga_find<vga_lu03>(gvga_system->lu_tree, &key);
    if (lu != nullptr && vga_find_node_pool(lu->vcb.def_data.pool_name, node) != pool) {
        vga_remove_pool_lu(lu, node, false);
        vga_insert_pool_lu(lu, pool);
    }
    return true;
}
