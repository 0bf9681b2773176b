// Pools of LUs 0 to 3: who is in which, the pools' counts and rows.
#include "nof/opcodes.h"
#include "shell/globals.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"
#include "store/tracking.h"
#include "store/tracking_util.h"

namespace {

constexpr NB_NAME8E null_name{};

bool is_null(const NB_BYTE* pool_name) {
    return vga_blank_name(pool_name, sizeof(NB_NAME8E));
}
bool is_null(const vga_sys_pool* pool) {
    return is_null(pool->pool_name);
}

vga_viewer_root* root_of(const vga_sys_pool* pool) {
    return &pool->parent->pool_viewer_root;
}

vga_sys_pool* find_pool(const NB_BYTE* pool_name) {
    return vga_find<vga_sys_pool>(gvga_system->pool_tree,
                                  is_null(pool_name) ? null_name : pool_name);
}

bool in_use(const vga_lu03* lu) {
    return lu->vcb.det_data.appl_conn_active == NAP_YES;
}

// Adds to the counts of a pool, which stay within their bounds.
void count(vga_sys_pool* pool, NB_LONG total, NB_LONG appl) {
    pool->total_count = std::max<NB_LONG>(pool->total_count + total, 0);
    pool->appl_count += appl;
    VGA_ASSERT((pool->appl_count >= 0) && (pool->appl_count <= pool->total_count));
    pool->appl_count = std::clamp<NB_LONG>(pool->appl_count, 0, pool->total_count);
    vga_update_row(root_of(pool), &pool->viewer);
}

// The row that an LU's row goes behind: LUs stand in the order of their nodes, then of their names.
vga_viewer* row_before(const vga_lu03* lu, const vga_pool* pool) {
    if (auto* previous = vga_prev<vga_lu03>(lu->pool_node); previous != nullptr) {
        return &previous->pool_viewer;
    }
    while ((pool = vga_prev<vga_pool>(pool->leaf)) != nullptr) {
        if (auto* last = ntl_avl_last<vga_lu03>(pool->lu_tree); last != nullptr) {
            return &last->pool_viewer;
        }
    }
    return nullptr;
}

bool is_in(const vga_lu03* lu, const vga_pool* pool, const vga_node* node) {
    return lu->parent->parent == node && AVL_IN_TREE(lu->pool_node) &&
           std::memcmp(lu->vcb.def_data.pool_name, pool->parent->pool_name,
                       sizeof pool->parent->pool_name) == 0;
}

// The LU of a part that an LU, which is not in it yet, comes directly behind: the nearest one
// before it in the system's tree, which has the same order. Most LUs of a node are in one part, and
// only those of other nodes with the same name stand between. null: not found within a few steps.
vga_lu03* neighbour_of(const vga_lu03* lu, const vga_pool* pool) {
    constexpr int steps = 8;
    const vga_lu03* at = lu;
    for (int step = 0; step < steps && at != nullptr && AVL_IN_TREE(at->system_node); ++step) {
        auto* previous = vga_prev<vga_lu03>(at->system_node);
        if (previous != nullptr && is_in(previous, pool, lu->parent->parent)) {
            return previous;
        }
        at = previous;
    }
    return nullptr;
}

// The LU leaves the part of the pool that holds it.
void leave(vga_lu03* lu, vga_pool* pool, bool redraw) {
    vga_delete_row(root_of(pool->parent), &lu->pool_viewer, redraw);
    vga_leave_tree(&pool->lu_tree, &lu->pool_node);
    count(pool->parent, -1, in_use(lu) ? -1 : 0);
}

void move_to_null_pool(vga_lu03* lu, vga_node* node) {
    vga_sys_pool* system_pool;
    vga_pool* pool;
    if (vga_find_pool_insert_pos(null_name, node, &system_pool, &pool)) {
        vga_insert_pool_lu(lu, pool);
    } else {
        vga_log_clash(51, NAP_DELETE_LU_POOL, lu->vcb.lu_name);
    }
}

void release_pool(vga_pool* pool) {
    vga_free_record(pool);
}

void release_sys_pool(vga_sys_pool* pool) {
    vga_detach(&pool->gui_data.dialog, pool,
               "pool->gui_data.dialog->parent_item == (NB_VOID *)pool");
    vga_drain<vga_pool>(&pool->node_tree, release_pool);
    vga_free_record(pool);
}

// A part without LUs goes.
void drop_part(vga_pool* pool) {
    vga_leave_tree(&pool->parent->node_tree, &pool->leaf);
    release_pool(pool);
}

// A pool without parts goes.
void drop(vga_sys_pool* pool, bool redraw) {
    vga_delete_row(root_of(pool), &pool->viewer, redraw);
    vga_leave_tree(&pool->parent->pool_tree, &pool->leaf);
    release_sys_pool(pool);
}

// Moves all LUs of a part to the null pool.
void clear(vga_pool* pool) {
    while (auto* lu = ntl_avl_first<vga_lu03>(pool->lu_tree)) {
        vga_remove_pool_lu(lu, lu->parent->parent, !is_null(pool->parent));
    }
}

} // namespace

vga_sys_pool* vga_init_vga_sys_pool(vga_system* system, const NB_BYTE* pool_name) {
    auto* pool = vga_new_record<vga_sys_pool>();
    if (pool == nullptr) {
        return nullptr;
    }
    pool->lu_type = VGA_DEPLU_TYPE_POOL;
    pool->parent = system;
    if (!is_null(pool_name)) {
        std::memcpy(pool->pool_name, pool_name, sizeof pool->pool_name);
    }
    ntl_avl_init_node(&pool->leaf, pool, pool->pool_name);
    ntl_avl_init_tree(&pool->node_tree, vga_compare_node_name);
    vga_init_row(&pool->viewer, VGA_VIEWER_POOL, pool);
    return pool;
}

vga_sys_pool* vga_insert_vga_sys_pool(vga_sys_pool* pool, vga_system* system) {
    if (!ntl_avl_insert(&system->pool_tree, &pool->leaf)) {
        auto* old = vga_older<vga_sys_pool>(system->pool_tree, pool->pool_name);
        vga_free_record(pool);
        return old;
    }
    if (!is_null(pool)) {
        auto* previous = vga_prev<vga_sys_pool>(pool->leaf);
        vga_create_viewer(root_of(pool), &pool->viewer, VGA_VIEWER_POOL, pool, nullptr,
                          previous != nullptr && !is_null(previous) ? &previous->viewer : nullptr);
    }
    return pool;
}

vga_pool* vga_init_vga_pool(vga_sys_pool* pool, const vga_node* node) {
    auto* part = vga_new_record<vga_pool>();
    if (part == nullptr) {
        return nullptr;
    }
    part->parent = pool;
    std::memcpy(part->node_name, node->node_name, sizeof part->node_name);
    ntl_avl_init_node(&part->leaf, part, part->node_name);
    ntl_avl_init_tree(&part->lu_tree, vga_compare_ebc8);
    return part;
}

vga_pool* vga_insert_vga_pool(vga_pool* pool, vga_sys_pool* system_pool) {
    if (ntl_avl_insert(&system_pool->node_tree, &pool->leaf)) {
        return pool;
    }
    auto* old = vga_older<vga_pool>(system_pool->node_tree, pool->node_name);
    vga_free_record(pool);
    return old;
}

void vga_insert_pool_lu(vga_lu03* lu, vga_pool* pool) {
    vga_sys_pool* system_pool = pool->parent;
    std::memcpy(lu->vcb.def_data.pool_name, system_pool->pool_name,
                sizeof lu->vcb.def_data.pool_name);
    if (vga_lu03* before = neighbour_of(lu, pool); before != nullptr) {
        ntl_avl_insert_behind(&pool->lu_tree, &lu->pool_node, &before->pool_node);
    } else if (!ntl_avl_insert(&pool->lu_tree, &lu->pool_node)) {
        return;
    }
    if (!is_null(system_pool)) {
        vga_create_viewer(root_of(system_pool), &lu->pool_viewer, VGA_VIEWER_POOL_LU, lu,
                          &system_pool->viewer, row_before(lu, pool));
    }
    count(system_pool, 1, in_use(lu) ? 1 : 0);
}

bool vga_find_pool_insert_pos(const NB_BYTE* pool_name, vga_node* node, vga_sys_pool** system_pool,
                              vga_pool** node_pool) {
    *node_pool = nullptr;
    *system_pool = find_pool(pool_name);
    if (*system_pool == nullptr) {
        *system_pool = vga_init_vga_sys_pool(gvga_system, pool_name);
        if (*system_pool == nullptr) {
            return false;
        }
        *system_pool = vga_insert_vga_sys_pool(*system_pool, gvga_system);
    }
    *node_pool = vga_find<vga_pool>((*system_pool)->node_tree, node->node_name);
    if (*node_pool == nullptr) {
        *node_pool = vga_init_vga_pool(*system_pool, node);
        if (*node_pool == nullptr) {
            if ((*system_pool)->node_tree.root == nullptr) {
                drop(*system_pool, true);
                *system_pool = nullptr;
            }
            return false;
        }
        *node_pool = vga_insert_vga_pool(*node_pool, *system_pool);
    }
    return true;
}

vga_pool* vga_find_node_pool(const NB_BYTE* pool_name, const vga_node* node) {
    const vga_sys_pool* pool = find_pool(pool_name);
    return pool != nullptr ? vga_find<vga_pool>(pool->node_tree, node->node_name) : nullptr;
}

bool vga_build_pool_ds(vga_lu03* lu) {
    vga_sys_pool* system_pool;
    vga_pool* pool;
    if (!vga_find_pool_insert_pos(lu->vcb.def_data.pool_name, lu->parent->parent, &system_pool,
                                  &pool)) {
        return false;
    }
    vga_insert_pool_lu(lu, pool);
    return true;
}

void vga_update_pool_lu(vga_lu03* lu, bool in_use) {
    vga_sys_pool* pool = find_pool(lu->vcb.def_data.pool_name);
    if (pool == nullptr || !AVL_IN_TREE(lu->pool_node)) {
        return;
    }
    count(pool, 0, in_use ? 1 : -1);
    vga_update_row(root_of(pool), &lu->pool_viewer);
}

void vga_remove_pool_lu(vga_lu03* lu, vga_node* node, bool move_to_null) {
    vga_pool* pool = vga_find_node_pool(lu->vcb.def_data.pool_name, node);
    if (pool == nullptr || !AVL_IN_TREE(lu->pool_node)) {
        return;
    }
    leave(lu, pool, true);
    if (move_to_null) {
        move_to_null_pool(lu, node);
    }
}

// ---- the end of pools ----

void vga_delete_vga_pool(vga_sys_pool* pool, bool redraw) {
    while (auto* part = ntl_avl_first<vga_pool>(pool->node_tree)) {
        clear(part);
        drop_part(part);
    }
    drop(pool, redraw);
}

void vga_delete_vga_node_pool(vga_pool* pool, bool redraw) {
    vga_sys_pool* system_pool = pool->parent;
    clear(pool);
    drop_part(pool);
    if (system_pool->node_tree.root == nullptr) {
        drop(system_pool, redraw);
    }
}

void vga_release_node_pools(vga_node* node) {
    for (auto* pool = ntl_avl_first<vga_sys_pool>(gvga_system->pool_tree); pool != nullptr;) {
        auto* next = vga_next<vga_sys_pool>(pool->leaf);
        if (auto* part = vga_find<vga_pool>(pool->node_tree, node->node_name); part != nullptr) {
            for (auto* lu = ntl_avl_first<vga_lu03>(part->lu_tree); lu != nullptr;) {
                auto* next_lu = vga_next<vga_lu03>(lu->pool_node);
                leave(lu, part, next_lu == nullptr); // the last one redraws for all
                lu = next_lu;
            }
            drop_part(part);
            if (pool->node_tree.root == nullptr) {
                drop(pool, true);
            }
        }
        pool = next;
    }
}

void vga_release_pools(vga_system* system) {
    vga_drain<vga_sys_pool>(&system->pool_tree, release_sys_pool);
}
