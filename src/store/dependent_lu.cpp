// LUs of types 0 to 3 with their extra data, and downstream LUs.
#include "shell/globals.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"
#include "store/tracking.h"

namespace {

vga_viewer* row_of(void* record, VGA_PU_KIND kind) {
    if (kind == VGA_PU_DOWNSTREAM) {
        return &static_cast<vga_down_lu*>(record)->viewer;
    }
    return static_cast<vga_deplu*>(record)->lu_type == VGA_DEPLU_TYPE_LU03
               ? &static_cast<vga_lu03*>(record)->viewer
               : &static_cast<vga_lu62*>(record)->viewer;
}

const NTL_AVL_NODE& nau_node_of(void* record, VGA_PU_KIND kind) {
    if (kind == VGA_PU_DOWNSTREAM) {
        return static_cast<vga_down_lu*>(record)->nau_node;
    }
    return static_cast<vga_deplu*>(record)->lu_type == VGA_DEPLU_TYPE_LU03
               ? static_cast<vga_lu03*>(record)->nau_node
               : static_cast<vga_lu62*>(record)->nau_node;
}

} // namespace

void vga_show_dependent_lu(vga_pu* pu, const NTL_AVL_NODE& nau_node, vga_viewer* viewer,
                           NB_BYTE type, void* lu) {
    vga_viewer* parent = vga_pu_viewer(pu);
    if (parent == nullptr) {
        return;
    }
    void* previous = ntl_avl_prev(&nau_node);
    vga_create_viewer(&pu->parent->links_root, viewer, type, lu, parent,
                      previous != nullptr ? row_of(previous, VGA_PU_KIND{pu->kind}) : nullptr);
}

void vga_show_dependent_lus(vga_pu* pu) {
    const auto kind = VGA_PU_KIND{pu->kind};
    const NB_BYTE type = kind == VGA_PU_LOCAL ? VGA_VIEWER_DEPLU : VGA_VIEWER_DOWN_LU;
    for (void* lu = ntl_avl_first<void>(pu->nau_tree); lu != nullptr;) {
        const NTL_AVL_NODE& node = nau_node_of(lu, kind);
        vga_delete_row(&pu->parent->links_root, row_of(lu, kind), true);
        vga_show_dependent_lu(pu, node, row_of(lu, kind), type, lu);
        lu = ntl_avl_next(&node);
    }
}

bool vga_move_nau_address(vga_pu* pu, NTL_AVL_NODE* nau_node, NB_BYTE* address, NB_BYTE wanted,
                          vga_viewer* viewer, NB_BYTE type) {
    if (*address == wanted) {
        return true;
    }
    if (ntl_avl_find(&pu->nau_tree, &wanted) != nullptr) {
        return false;
    }
    ntl_avl_delete(&pu->nau_tree, nau_node);
    *address = wanted;
    ntl_avl_insert(&pu->nau_tree, nau_node);
    if (vga_is_shown(*viewer)) {
        vga_viewer_root* root = &pu->parent->links_root;
        const bool selected = vga_viewer_selected_alone(root, viewer);
        vga_delete_viewer(root, viewer, true);
        vga_show_dependent_lu(pu, *nau_node, viewer, type, nau_node->self);
        if (selected) {
            vga_viewer_select_again(root, viewer);
        }
    }
    return true;
}

// ---- LU 0 to 3 ----

namespace {

// The definition may name another pool.
void take_definition(vga_lu03* lu, const LU03_DEF& definition) {
    NB_NAME8E pool_name;
    std::memcpy(pool_name, lu->vcb.def_data.pool_name, sizeof pool_name);
    const bool none = vga_blank_name(pool_name, sizeof pool_name);
    const bool stays = none ? vga_blank_name(definition.pool_name, sizeof pool_name)
                            : std::memcmp(pool_name, definition.pool_name, sizeof pool_name) == 0;
    if (!stays) {
        vga_remove_pool_lu(lu, lu->parent->parent, false);
    }
    lu->vcb.def_data = definition;
    if (stays) {
        std::memcpy(lu->vcb.def_data.pool_name, pool_name, sizeof pool_name);
    } else {
        vga_build_pool_ds(lu);
    }
}

} // namespace

vga_lu03* vga_init_vga_lu03(vga_pu* pu, const LU03_ENTRY* entry) {
    auto* lu = vga_new_record<vga_lu03>();
    if (lu == nullptr) {
        return nullptr;
    }
    lu->lu_type = VGA_DEPLU_TYPE_LU03;
    lu->parent = pu;
    vga_copy_entry(lu->vcb, entry);
    lu->system_key = {lu->vcb.lu_name, pu->parent->node_name};
    ntl_avl_init_node(&lu->node, lu, lu->vcb.lu_name);
    ntl_avl_init_node(&lu->nau_node, lu, &lu->vcb.def_data.nau_address);
    ntl_avl_init_node(&lu->system_node, lu, &lu->system_key);
    ntl_avl_init_node(&lu->pool_node, lu, lu->vcb.lu_name);
    vga_init_row(&lu->viewer, VGA_VIEWER_DEPLU, lu);
    vga_init_row(&lu->pool_viewer, VGA_VIEWER_POOL_LU, lu);
    return lu;
}

vga_lu03* vga_insert_vga_lu03(vga_lu03* lu, vga_pu* pu) {
    if (ntl_avl_insert(&pu->lu_tree, &lu->node)) {
        if (!ntl_avl_insert(&pu->nau_tree, &lu->nau_node)) {
            ntl_avl_delete(&pu->lu_tree, &lu->node);
            vga_log_clash(3, NAP_DEFINE_LU_0_TO_3, lu->vcb.lu_name);
            vga_free_record(lu);
            return nullptr;
        }
        if (!ntl_avl_insert(&gvga_system->lu_tree, &lu->system_node)) {
            ntl_avl_delete(&pu->nau_tree, &lu->nau_node);
            ntl_avl_delete(&pu->lu_tree, &lu->node);
            vga_log_clash(4, NAP_DEFINE_LU_0_TO_3, lu->vcb.lu_name);
            vga_free_record(lu);
            return nullptr;
        }
        vga_show_dependent_lu(pu, lu->nau_node, &lu->viewer, VGA_VIEWER_DEPLU, lu);
        if (lu->vcb.det_data.appl_conn_active == NAP_YES) {
            vga_update_user_sessions(lu, true);
        }
        vga_build_pool_ds(lu);
        return lu;
    }
    auto* older = vga_older<vga_deplu>(pu->lu_tree, lu->vcb.lu_name);
    if (older->lu_type != VGA_DEPLU_TYPE_LU03) {
        vga_log_clash(1, NAP_DEFINE_LU_0_TO_3, lu->vcb.lu_name);
        vga_free_record(lu);
        return nullptr;
    }
    auto* old = reinterpret_cast<vga_lu03*>(older);
    if (vga_move_nau_address(pu, &old->nau_node, &old->vcb.def_data.nau_address,
                             lu->vcb.def_data.nau_address, &old->viewer, VGA_VIEWER_DEPLU)) {
        take_definition(old, lu->vcb.def_data);
    } else {
        vga_log_clash(3, NAP_DEFINE_LU_0_TO_3, lu->vcb.lu_name);
    }
    vga_free_record(lu);
    vga_update_row(&pu->parent->links_root, &old->viewer);
    return old;
}

// ---- extra data ----

EXTRA_DATA_ENTRY* vga_init_extra_data(const EXTRA_DATA_ENTRY* entry) {
    const std::size_t size = std::max<std::size_t>(entry->length, sizeof *entry);
    auto* data = vga_new<EXTRA_DATA_ENTRY>(size);
    if (data == nullptr) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return nullptr;
    }
    std::memcpy(data, entry, entry->length);
    return data;
}

bool vga_insert_lu03_extra_data(EXTRA_DATA_ENTRY* data, vga_node* node) {
    const vga_lu_key key{data->data.name, node->node_name};
    auto* lu = vga_find<vga_lu03>(gvga_system->lu_tree, &key);
    if (lu == nullptr) {
        vga_free(data);
        return false;
    }
    vga_free(lu->extra_data);
    lu->extra_data = data;
    return true;
}

// ---- downstream LU ----

vga_down_lu* vga_init_vga_down_lu(vga_pu* pu, const DOWN_LU_ENTRY* entry) {
    auto* lu = vga_new_record<vga_down_lu>();
    if (lu == nullptr) {
        return nullptr;
    }
    lu->parent = pu;
    vga_copy_entry(lu->vcb, entry);
    ntl_avl_init_node(&lu->node, lu, lu->vcb.dslu_name);
    ntl_avl_init_node(&lu->nau_node, lu, &lu->vcb.def.nau_address);
    vga_init_row(&lu->viewer, VGA_VIEWER_DOWN_LU, lu);
    return lu;
}

vga_down_lu* vga_insert_vga_down_lu(vga_down_lu* lu, vga_pu* pu) {
    if (ntl_avl_insert(&pu->lu_tree, &lu->node)) {
        if (!ntl_avl_insert(&pu->nau_tree, &lu->nau_node)) {
            ntl_avl_delete(&pu->lu_tree, &lu->node);
            vga_log_clash(5, NAP_DEFINE_DOWNSTREAM_LU, lu->vcb.dslu_name);
            vga_free_record(lu);
            return nullptr;
        }
        vga_show_dependent_lu(pu, lu->nau_node, &lu->viewer, VGA_VIEWER_DOWN_LU, lu);
        return lu;
    }
    auto* old = vga_older<vga_down_lu>(pu->lu_tree, lu->vcb.dslu_name);
    old->vcb.lu_active = lu->vcb.lu_active;
    old->vcb.plu_session_active = lu->vcb.plu_session_active;
    old->vcb.type = lu->vcb.type;
    vga_free_record(lu);
    vga_update_row(&pu->parent->links_root, &old->viewer);
    return old;
}

void vga_redefine_down_lu(vga_down_lu* lu, const DOWN_LU_DEF* definition) {
    vga_pu* pu = lu->parent;
    if (!vga_move_nau_address(pu, &lu->nau_node, &lu->vcb.def.nau_address, definition->nau_address,
                              &lu->viewer, VGA_VIEWER_DOWN_LU)) {
        vga_log_clash(5, NAP_DEFINE_DOWNSTREAM_LU, lu->vcb.dslu_name);
        return;
    }
    lu->vcb.def = *definition;
    vga_update_row(&pu->parent->links_root, &lu->viewer);
}
