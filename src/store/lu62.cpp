// Local LUs 6.2 with their partner LUs and modes.
#include "common/names.h"
#include "shell/messages.h"
#include "store/record_util.h"
#include "store/store.h"

namespace {

bool is_dependent(const LU62_ENTRY& entry) {
    return entry.def.nau_address != 0;
}

// Enters a dependent LU under its PU; false, with the clash logged, when it cannot be.
bool join_pu(vga_lu62* lu) {
    vga_node* node = lu->parent;
    auto* pu = vga_find<vga_pu>(node->local_pu_tree, lu->vcb.def.pu_name);
    if (pu == nullptr) {
        vga_log_clash(0, NAP_DEFINE_LOCAL_LU, lu->vcb.def.pu_name);
        return false;
    }
    if (!ntl_avl_insert(&pu->lu_tree, &lu->pu_node)) {
        vga_log_clash(1, NAP_DEFINE_LOCAL_LU, lu->vcb.lu_name);
        return false;
    }
    if (!ntl_avl_insert(&pu->nau_tree, &lu->nau_node)) {
        ntl_avl_delete(&pu->lu_tree, &lu->pu_node);
        vga_log_clash(2, NAP_DEFINE_LOCAL_LU, lu->vcb.lu_name);
        return false;
    }
    lu->parent_pu = pu;
    return true;
}

void leave_pu(vga_lu62* lu) {
    if (lu->parent_pu != nullptr) {
        vga_leave_tree(&lu->parent_pu->lu_tree, &lu->pu_node);
        vga_leave_tree(&lu->parent_pu->nau_tree, &lu->nau_node);
        lu->parent_pu = nullptr;
    }
}

void show(vga_lu62* lu) {
    if (is_dependent(lu->vcb)) {
        vga_show_dependent_lu(lu->parent_pu, lu->nau_node, &lu->viewer, VGA_VIEWER_DEPLU, lu);
        return;
    }
    auto* previous = vga_prev<vga_lu62>(lu->node);
    while (previous != nullptr && is_dependent(previous->vcb)) {
        previous = vga_prev<vga_lu62>(previous->node);
    }
    vga_create_viewer(&lu->parent->lus_root, &lu->viewer, VGA_VIEWER_LU62, lu, nullptr,
                      previous != nullptr ? &previous->viewer : nullptr);
}

vga_viewer_root* root_of(const vga_lu62* lu) {
    return is_dependent(lu->vcb) ? &lu->parent->links_root : &lu->parent->lus_root;
}

// Whether the LU is that of the control point, and what it says when nobody described it.
void settle(vga_lu62* lu) {
    vga_node* node = lu->parent;
    NB_NAME8E network;
    NB_NAME8E cp_name;
    ntl_split_fq_name(node->vcb.parameters.cp_name, network, cp_name);
    if (std::memcmp(cp_name, lu->vcb.lu_name, sizeof cp_name) == 0 &&
        std::memcmp(node->vcb.parameters.cp_alias, lu->vcb.def.lu_alias,
                    sizeof lu->vcb.def.lu_alias) == 0) {
        node->cp_lu = lu;
    } else if (node->cp_lu == lu) {
        node->cp_lu = nullptr;
    }
    if (lu->vcb.def.description[0] == '\0') {
        if (node->cp_lu == lu) {
            vga_describe(lu->vcb.def.description, 231);
        } else if (lu->vcb.def.implicit == 1) {
            vga_describe(lu->vcb.def.description, 234);
        }
    }
}

// The row a partner's mode stands behind when it is the partner's first.
vga_mode* last_mode_before(const vga_plu* plu) {
    for (auto* previous = vga_prev<vga_plu>(plu->node); previous != nullptr;
         previous = vga_prev<vga_plu>(previous->node)) {
        if (auto* mode = ntl_avl_last<vga_mode>(previous->mode_tree); mode != nullptr) {
            return mode;
        }
    }
    return nullptr;
}

void show(vga_mode* mode) {
    vga_lu62* lu = mode->parent->parent;
    if (is_dependent(lu->vcb)) {
        return;
    }
    auto* previous = vga_prev<vga_mode>(mode->node);
    if (previous == nullptr) {
        previous = last_mode_before(mode->parent);
    }
    vga_create_viewer(&lu->parent->lus_root, &mode->viewer, VGA_VIEWER_MODE, mode, &lu->viewer,
                      previous != nullptr ? &previous->viewer : nullptr);
}

// An LU whose row was made anew has lost those below it.
void show_with_children(vga_lu62* lu) {
    show(lu);
    for (auto* plu = ntl_avl_first<vga_plu>(lu->plu_tree); plu != nullptr;
         plu = vga_next<vga_plu>(plu->node)) {
        for (auto* mode = ntl_avl_first<vga_mode>(plu->mode_tree); mode != nullptr;
             mode = vga_next<vga_mode>(mode->node)) {
            show(mode);
        }
    }
    vga_show_ls_routings(lu);
}

// Takes a newer entry into a record. Where it is shown changes with its PU and NAU address; an
// entry that asks for a place that is taken is left.
void merge(vga_lu62* lu, const LU62_ENTRY& entry) {
    const bool moves = lu->vcb.def.nau_address != entry.def.nau_address ||
                       (is_dependent(entry) && std::memcmp(lu->vcb.def.pu_name, entry.def.pu_name,
                                                           sizeof entry.def.pu_name) != 0);
    vga_leave_tree(&lu->parent->lu62_alias_tree, &lu->alias_node);
    if (!moves) {
        lu->vcb = entry;
    } else {
        const LU62_ENTRY old_entry = lu->vcb;
        vga_viewer_root* const old_root = root_of(lu);
        const bool selected = vga_viewer_selected_alone(old_root, &lu->viewer);
        vga_delete_row(old_root, &lu->viewer, true);
        leave_pu(lu);
        lu->vcb = entry;
        if (is_dependent(entry) && !join_pu(lu)) {
            lu->vcb = old_entry;
            if (is_dependent(old_entry)) {
                join_pu(lu);
            }
        }
        show_with_children(lu);
        if (selected && root_of(lu) == old_root) {
            vga_viewer_select_again(old_root, &lu->viewer);
        }
        if (is_dependent(lu->vcb)) { // its sessions run through its host from now on
            vga_end_remote_sessions(lu);
        }
    }
    ntl_avl_insert(&lu->parent->lu62_alias_tree, &lu->alias_node);
    settle(lu);
    vga_update_row(root_of(lu), &lu->viewer);
}

} // namespace

vga_lu62* vga_init_vga_lu62(vga_node* node, const LU62_ENTRY* entry) {
    auto* lu = vga_new_record<vga_lu62>();
    if (lu == nullptr) {
        return nullptr;
    }
    lu->lu_type = VGA_DEPLU_TYPE_LU62;
    if ((node->build_flags & vga_flag(VGA_NODE_LU62_DETAILS)) != 0) {
        lu->startup_status = VGA_PLU_LIST | VGA_MODE_LIST | VGA_PASSWORD_LIST;
    }
    lu->parent = node;
    vga_copy_entry(lu->vcb, entry);
    ntl_avl_init_node(&lu->node, lu, lu->vcb.lu_name);
    ntl_avl_init_node(&lu->alias_node, lu, lu->vcb.def.lu_alias);
    ntl_avl_init_node(&lu->pu_node, lu, lu->vcb.lu_name);
    ntl_avl_init_node(&lu->nau_node, lu, &lu->vcb.def.nau_address);
    ntl_avl_init_tree(&lu->plu_tree, vga_compare_ebc17);
    ntl_avl_init_tree(&lu->ls_routing_tree, vga_compare_rem_plu);
    ntl_avl_init_tree(&lu->tp_tree, vga_compare_tp_names);
    vga_init_row(&lu->viewer, VGA_VIEWER_LU62, lu);
    vga_init_row(&lu->ls_r_title, VGA_VIEWER_LS_R_TITLE, lu);
    return lu;
}

vga_lu62* vga_insert_vga_lu62(vga_lu62* lu, vga_node* node) {
    if (!ntl_avl_insert(&node->lu62_tree, &lu->node)) {
        auto* old = vga_older<vga_lu62>(node->lu62_tree, lu->vcb.lu_name);
        merge(old, lu->vcb);
        vga_free_record(lu);
        return old;
    }
    if (is_dependent(lu->vcb) && !join_pu(lu)) {
        ntl_avl_delete(&node->lu62_tree, &lu->node);
        vga_free_record(lu);
        return nullptr;
    }
    ntl_avl_insert(&node->lu62_alias_tree, &lu->alias_node); // an alias used twice finds the first
    settle(lu);
    show(lu);
    vga_link_lu62_timeout(node, NOF_TIMEOUT_LOCAL_LU, lu->vcb.lu_name);
    return lu;
}

bool vga_create_fake_cp_lu(vga_node* node) {
    if (node->cp_lu != nullptr) {
        return true;
    }
    LU62_ENTRY entry{};
    entry.length = sizeof entry;
    NB_NAME8E network;
    ntl_split_fq_name(node->vcb.parameters.cp_name, network, entry.lu_name);
    if (vga_blank_name(entry.lu_name, sizeof entry.lu_name)) {
        return true; // the node has no name yet
    }
    if (auto* known = vga_find<vga_lu62>(node->lu62_tree, entry.lu_name); known != nullptr) {
        node->cp_lu = known; // with another alias than the node gives it
        return true;
    }
    std::memcpy(entry.def.lu_alias, node->vcb.parameters.cp_alias, sizeof entry.def.lu_alias);
    vga_describe(entry.def.description, 231);
    vga_lu62* lu = vga_init_vga_lu62(node, &entry);
    if (lu == nullptr) {
        return false;
    }
    lu = vga_insert_vga_lu62(lu, node);
    node->cp_lu = lu;
    return true;
}

void vga_count_lu62_sessions(vga_lu62* lu, NB_LONG change) {
    lu->act_sess_count = std::max(lu->act_sess_count + change, NB_LONG{0});
    vga_update_state_row(root_of(lu), &lu->viewer);
}

vga_mode* vga_last_lu62_mode(const vga_lu62* lu) {
    for (auto* plu = ntl_avl_last<vga_plu>(lu->plu_tree); plu != nullptr;
         plu = vga_prev<vga_plu>(plu->node)) {
        if (auto* mode = ntl_avl_last<vga_mode>(plu->mode_tree); mode != nullptr) {
            return mode;
        }
    }
    return nullptr;
}

// ---- partner LU ----

vga_plu* vga_init_vga_plu(vga_lu62* lu, const PLU_ENTRY* entry) {
    auto* plu = vga_new_record<vga_plu>();
    if (plu == nullptr) {
        return nullptr;
    }
    plu->parent = lu;
    vga_copy_entry(plu->vcb, entry);
    ntl_avl_init_node(&plu->node, plu, plu->vcb.plu_name);
    ntl_avl_init_tree(&plu->mode_tree, vga_compare_ebc8);
    return plu;
}

vga_plu* vga_insert_vga_plu(vga_plu* plu, vga_lu62* lu) {
    if (ntl_avl_insert(&lu->plu_tree, &plu->node)) {
        return plu;
    }
    auto* old = vga_older<vga_plu>(lu->plu_tree, plu->vcb.plu_name);
    old->vcb = plu->vcb;
    old->check_mark = 0;
    vga_free_record(plu);
    return old;
}

// ---- mode ----

vga_mode* vga_init_vga_mode(vga_plu* plu, const MODE_ENTRY* entry) {
    auto* mode = vga_new_record<vga_mode>();
    if (mode == nullptr) {
        return nullptr;
    }
    mode->parent = plu;
    vga_copy_entry(mode->vcb, entry);
    ntl_avl_init_node(&mode->node, mode, mode->vcb.mode_name);
    vga_init_row(&mode->viewer, VGA_VIEWER_MODE, mode);
    return mode;
}

vga_mode* vga_insert_vga_mode(vga_mode* mode, vga_plu* plu) {
    vga_lu62* lu = plu->parent;
    if (!ntl_avl_insert(&plu->mode_tree, &mode->node)) {
        auto* old = vga_older<vga_mode>(plu->mode_tree, mode->vcb.mode_name);
        old->vcb = mode->vcb;
        old->check_mark = 0;
        vga_free_record(mode);
        vga_update_row(&lu->parent->lus_root, &old->viewer);
        return old;
    }
    show(mode);
    vga_update_row(root_of(lu), &lu->viewer);
    return mode;
}
