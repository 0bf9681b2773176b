// Removal of local LUs 6.2 with their partners, modes and sessions; of mode definitions and classes
// of service.
#include "common/names.h"
#include "store/build.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

vga_viewer_root* root_of(const vga_lu62* lu) {
    return lu->vcb.def.nau_address != 0 ? &lu->parent->links_root : &lu->parent->lus_root;
}

void detach(vga_lu62* lu62) {
    vga_detach(&lu62->gui_data.dialog, lu62,
               "lu62->gui_data.dialog->parent_item == (NB_VOID *)lu62");
    vga_detach(&lu62->gui_data.act_sess_dialog, lu62,
               "lu62->gui_data.act_sess_dialog->parent_item == (NB_VOID *)lu62");
}

void close_windows(vga_mode* mode) {
    if (mode->gui_data.status_dialog != nullptr) {
        vga_close_children(mode->gui_data.status_dialog, true, true);
        mode->gui_data.status_dialog = nullptr;
    }
    vga_detach(&mode->gui_data.dialog, mode,
               "mode->gui_data.dialog->parent_item == (NB_VOID *)mode");
}

void release_mode(vga_mode* mode) {
    close_windows(mode);
    vga_free_record(mode);
}
void release_plu(vga_plu* plu) {
    vga_drain<vga_mode>(&plu->mode_tree, release_mode);
    vga_free_record(plu);
}
void release_lu62(vga_lu62* lu) {
    detach(lu);
    vga_drain<vga_plu>(&lu->plu_tree, release_plu);
    vga_release_ls_routings(lu);
    vga_free_record(lu);
}
void release_mode_def(vga_mode_def* mode) {
    vga_detach(&mode->gui_data.dialog, mode,
               "mode_def->gui_data.dialog->parent_item == (NB_VOID *)mode_def");
    vga_free_record(mode);
}
void release_cos_row(vga_cos_row* row) {
    vga_free_record(row);
}
void release_cos(vga_cos* cos) {
    vga_detach(&cos->gui_data.dialog, cos, "cos->gui_data.dialog->parent_item == (NB_VOID *)cos");
    vga_drain<vga_cos_row>(&cos->node_row_tree, release_cos_row);
    vga_drain<vga_cos_row>(&cos->tg_row_tree, release_cos_row);
    vga_free_record(cos);
}

// One session record of the LU with the partner, or null.
vga_rem_sess* session_with(const vga_rem_plu* rem_plu, const vga_lu62* lu) {
    vga_rem_sess_key key{};
    std::memcpy(key.lu_name, lu->vcb.lu_name, sizeof key.lu_name);
    auto* sess = static_cast<vga_rem_sess*>(ntl_avl_find(&rem_plu->sess_tree, &key));
    if (sess == nullptr) {
        sess = static_cast<vga_rem_sess*>(ntl_avl_find_next(&rem_plu->sess_tree, &key));
    }
    return sess != nullptr &&
                   std::memcmp(sess->key.lu_name, lu->vcb.lu_name, sizeof key.lu_name) == 0
               ? sess
               : nullptr;
}

} // namespace

// A remote system or partner without a further reason goes with its last session, so each walk
// notes what comes next first.
void vga_end_remote_sessions(const vga_lu62* lu) {
    vga_rem_sys* next_sys = nullptr;
    for (auto* rem_sys = ntl_avl_first<vga_rem_sys>(lu->parent->rem_sys_tree); rem_sys != nullptr;
         rem_sys = next_sys) {
        next_sys = vga_next<vga_rem_sys>(rem_sys->node);
        const NB_HANDLE sys_handle = rem_sys->handle;
        vga_rem_plu* next_plu = nullptr;
        for (auto* rem_plu = ntl_avl_first<vga_rem_plu>(rem_sys->remote_plu_tree);
             rem_plu != nullptr; rem_plu = next_plu) {
            next_plu = vga_next<vga_rem_plu>(rem_plu->node);
            const NB_HANDLE plu_handle = rem_plu->handle;
            while (nba_validate_handle(plu_handle) != nullptr) {
                vga_rem_sess* sess = session_with(rem_plu, lu);
                if (sess == nullptr) {
                    break;
                }
                vga_count_rem_sessions(sess, 0);
            }
            if (nba_validate_handle(sys_handle) == nullptr || rem_sys->session_count == 0) {
                break; // with its last session go the partners that had no other reason
            }
        }
    }
}

void vga_delete_vga_lu62(vga_lu62* lu62, bool redraw) {
    vga_node* node = lu62->parent;
    detach(lu62);
    const bool listing = lu62->listing != 0;
    lu62->startup_status = 0;
    lu62->listing = 0;
    if (listing) {
        vga_build_next_action(3, lu62);
    }
    vga_delete_row(root_of(lu62), &lu62->viewer, redraw);
    while (auto* plu = ntl_avl_first<vga_plu>(lu62->plu_tree)) {
        vga_delete_vga_plu(plu, false);
    }
    while (auto* routing = ntl_avl_first<vga_ls_routing>(lu62->ls_routing_tree)) {
        vga_delete_vga_ls_routing(routing, false);
    }
    vga_end_remote_sessions(lu62);
    vga_delete_lu_lu_passwords(lu62, redraw);
    vga_unlink_lu62_timeout(&lu62->timeout, lu62, "lu62->timeout->resource == lu62");
    if (node->cp_lu == lu62) {
        node->cp_lu = nullptr;
    }
    vga_leave_tree(&node->lu62_tree, &lu62->node);
    vga_leave_tree(&node->lu62_alias_tree, &lu62->alias_node);
    if (lu62->parent_pu != nullptr) {
        vga_leave_tree(&lu62->parent_pu->lu_tree, &lu62->pu_node);
        vga_leave_tree(&lu62->parent_pu->nau_tree, &lu62->nau_node);
    }
    vga_free_record(lu62);
}

void vga_delete_vga_plu(vga_plu* plu, bool redraw) {
    vga_lu62* lu = plu->parent;
    while (auto* mode = ntl_avl_first<vga_mode>(plu->mode_tree)) {
        vga_delete_vga_mode(mode, redraw);
    }
    vga_leave_tree(&lu->plu_tree, &plu->node);
    vga_free_record(plu);
    vga_update_row(root_of(lu), &lu->viewer);
}

void vga_delete_vga_mode(vga_mode* mode, bool redraw) {
    vga_plu* plu = mode->parent;
    close_windows(mode);
    vga_delete_row(&plu->parent->parent->lus_root, &mode->viewer, redraw);
    vga_leave_tree(&plu->mode_tree, &mode->node);
    vga_free_record(mode);
    vga_update_row(root_of(plu->parent), &plu->parent->viewer);
}

void vga_delete_vga_mode_def(vga_mode_def* mode, bool redraw) {
    vga_unlink_lu62_timeout(&mode->timeout, mode, "mode_def->timeout->resource == mode_def");
    vga_delete_row(&mode->parent->mode_root, &mode->viewer, redraw);
    vga_leave_tree(&mode->parent->mode_def_tree, &mode->node);
    release_mode_def(mode);
}

void vga_delete_vga_cos(vga_cos* cos, bool) {
    vga_leave_tree(&cos->parent->cos_tree, &cos->node);
    release_cos(cos);
}

void vga_release_lu62s(vga_node* node) {
    node->cp_lu = nullptr;
    vga_drain<vga_lu62>(&node->lu62_tree, release_lu62);
    vga_drain<vga_mode_def>(&node->mode_def_tree, release_mode_def);
    vga_drain<vga_cos>(&node->cos_tree, release_cos);
}
