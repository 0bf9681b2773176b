// Removal of DLCs, ports, link stations, PUs, connection networks and dependent LUs.
#include "shell/globals.h"
#include "store/build.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"
#include "store/tracking.h"

namespace {

void detach(vga_dlc* dlc) {
    vga_detach(&dlc->gui_data.dialog, dlc, "dlc->gui_data.dialog->parent_item == (NB_VOID *)dlc");
}
void detach(vga_port* port) {
    vga_detach(&port->gui_data.dialog, port,
               "port->gui_data.dialog->parent_item == (NB_VOID *)port");
}
void detach(vga_ls* ls) {
    vga_detach(&ls->gui_data.dialog, ls, "ls->gui_data.dialog->parent_item == (NB_VOID *)ls");
    if (ls->gui_data.details_dialog != nullptr) {
        vga_close_children(ls->gui_data.details_dialog, true, true);
        ls->gui_data.details_dialog = nullptr;
    }
}
void detach(vga_pu* pu) {
    vga_detach(&pu->gui_data.dialog, pu, "pu->gui_data.dialog->parent_item == (NB_VOID *)pu");
}
void detach(vga_lu03* lu) {
    vga_detach(&lu->gui_data.dialog, lu, "lu03->gui_data.dialog->parent_item == (NB_VOID *)lu03");
}
void detach(vga_down_lu* lu) {
    vga_detach(&lu->gui_data.dialog, lu,
               "down_lu->gui_data.dialog->parent_item == (NB_VOID *)down_lu");
}

void release_lu03(vga_lu03* lu) {
    detach(lu);
    vga_update_user_sessions(lu, false);
    vga_leave_tree(&gvga_system->lu_tree, &lu->system_node);
    vga_free(lu->extra_data);
    vga_free_record(lu);
}
void release_down_lu(vga_down_lu* lu) {
    detach(lu);
    vga_free_record(lu);
}
void release_any_lu(vga_deplu* lu) {
    if (lu->lu_type == VGA_DEPLU_TYPE_LU03) {
        release_lu03(reinterpret_cast<vga_lu03*>(lu));
    } // a local LU 6.2 goes with the node's own tree of them
}
void release_pu(vga_pu* pu) {
    detach(pu);
    if (pu->kind == VGA_PU_LOCAL) {
        vga_drain<vga_deplu>(&pu->lu_tree, release_any_lu);
    } else {
        vga_drain<vga_down_lu>(&pu->lu_tree, release_down_lu);
    }
    vga_free_record(pu);
}
void release_ls(vga_ls* ls) {
    detach(ls);
    vga_free(ls->vcb);
    vga_free_record(ls);
}
void release_port(vga_port* port) {
    detach(port);
    vga_free(port->vcb);
    vga_free_record(port);
}
void release_dlc(vga_dlc* dlc) {
    detach(dlc);
    vga_free(dlc->vcb);
    vga_free_record(dlc);
}
void release_cn_port(vga_cn_port* cn_port) {
    vga_free_record(cn_port);
}
void release_cn(vga_cn* cn) {
    vga_drain<vga_cn_port>(&cn->port_tree, release_cn_port);
    vga_free_record(cn);
}

// A record whose children the build is listing goes: the build goes on with the next one.
template <typename T> void leave_phase(T* record, int action) {
    const bool listing = record->listing != 0;
    record->pending = 0;
    record->listing = 0;
    if (listing) {
        vga_build_next_action(action, record);
    }
}

void unlink_ls(vga_pu* pu, const char* expression) {
    if (pu->ls_entry == nullptr) {
        return;
    }
    VGA_ASSERT_TEXT(pu->ls_entry->pu_entry == pu, expression);
    vga_ls* ls = pu->ls_entry;
    ls->pu_entry = nullptr;
    if (!vga_ls_has_local_pu(ls->vcb) && !vga_ls_has_down_pu(ls->vcb)) {
        ls->viewer.type = VGA_VIEWER_LS_NO_PU;
    }
    vga_update_row(&pu->parent->links_root, &ls->viewer);
}

} // namespace

void vga_delete_vga_dlc(vga_dlc* dlc, bool redraw) {
    detach(dlc);
    while (auto* port = ntl_avl_first<vga_port>(dlc->port_tree)) {
        vga_delete_vga_port(port, redraw);
    }
    vga_leave_tree(&dlc->parent->dlc_tree, &dlc->node);
    release_dlc(dlc);
}

void vga_delete_vga_port(vga_port* port, bool redraw) {
    vga_node* node = port->parent->parent;
    detach(port);
    vga_delete_row(&node->links_root, &port->viewer, redraw);
    while (auto* ls = ntl_avl_first<vga_ls>(port->ls_tree)) {
        vga_delete_vga_ls(ls, false);
    }
    for (auto* cn = ntl_avl_first<vga_cn>(node->cn_tree); cn != nullptr;) {
        auto* next = vga_next<vga_cn>(cn->node);
        auto* cn_port = vga_find<vga_cn_port>(cn->port_tree, port->vcb->port_name);
        if (cn_port != nullptr && cn_port->port == port) {
            vga_delete_vga_cn_port(cn_port);
        }
        cn = next;
    }
    vga_leave_tree(&node->port_tree, &port->node);
    vga_leave_tree(&port->parent->port_tree, &port->dlc_node);
    release_port(port);
}

void vga_delete_vga_ls(vga_ls* ls, bool redraw) {
    vga_node* node = ls->parent->parent->parent;
    detach(ls);
    vga_delete_row(&node->links_root, &ls->viewer, redraw);
    if (vga_pu* pu = ls->pu_entry; pu != nullptr) {
        if (pu->kind == VGA_PU_LOCAL) {
            vga_delete_vga_local_pu(pu, false);
        } else {
            vga_delete_vga_down_pu(pu, false);
        }
    }
    vga_leave_tree(&node->ls_tree, &ls->node);
    vga_leave_tree(&ls->parent->ls_tree, &ls->port_node);
    release_ls(ls);
}

void vga_delete_vga_local_pu(vga_pu* local_pu, bool redraw) {
    vga_node* node = local_pu->parent;
    detach(local_pu);
    leave_phase(local_pu, 1);
    vga_port* fake = vga_is_shown(local_pu->viewer) ? node->dlur_fake_port : nullptr;
    vga_delete_row(&node->links_root, &local_pu->viewer, redraw);
    while (auto* lu = ntl_avl_first<vga_deplu>(local_pu->lu_tree)) {
        if (lu->lu_type == VGA_DEPLU_TYPE_LU62) {
            vga_delete_vga_lu62(reinterpret_cast<vga_lu62*>(lu), redraw);
        } else {
            vga_delete_vga_lu03(reinterpret_cast<vga_lu03*>(lu), redraw);
        }
    }
    unlink_ls(local_pu, "local_pu->ls_entry->pu_entry == local_pu");
    if (fake != nullptr && fake->viewer.child_count == 0) {
        vga_delete_vga_dlur_fake_port(node, redraw);
    }
    vga_leave_tree(&node->local_pu_tree, &local_pu->node);
    release_pu(local_pu);
}

void vga_delete_vga_down_pu(vga_pu* down_pu, bool redraw) {
    detach(down_pu);
    leave_phase(down_pu, 2);
    while (auto* lu = ntl_avl_first<vga_down_lu>(down_pu->lu_tree)) {
        vga_delete_vga_down_lu(lu, redraw);
    }
    unlink_ls(down_pu, "down_pu->ls_entry->pu_entry == down_pu");
    vga_leave_tree(&down_pu->parent->down_pu_tree, &down_pu->node);
    release_pu(down_pu);
}

void vga_delete_vga_cn(vga_cn* cn, bool) {
    leave_phase(cn, 4);
    while (auto* cn_port = ntl_avl_first<vga_cn_port>(cn->port_tree)) {
        vga_delete_vga_cn_port(cn_port);
    }
    vga_leave_tree(&cn->parent->cn_tree, &cn->node);
    vga_free_record(cn);
}

void vga_delete_vga_cn_port(vga_cn_port* cn_port) {
    if (cn_port->port->cn == cn_port->parent) {
        cn_port->port->cn = nullptr;
    }
    vga_leave_tree(&cn_port->parent->port_tree, &cn_port->node);
    vga_free_record(cn_port);
}

void vga_delete_vga_lu03(vga_lu03* lu, bool redraw) {
    vga_pu* pu = lu->parent;
    detach(lu);
    vga_remove_pool_lu(lu, pu->parent, false);
    vga_delete_row(&pu->parent->links_root, &lu->viewer, redraw);
    vga_leave_tree(&pu->lu_tree, &lu->node);
    vga_leave_tree(&pu->nau_tree, &lu->nau_node);
    release_lu03(lu);
}

void vga_delete_lu03_extra_data(vga_lu03* lu) {
    vga_free(lu->extra_data);
    lu->extra_data = nullptr;
}

void vga_delete_vga_down_lu(vga_down_lu* lu, bool redraw) {
    vga_pu* pu = lu->parent;
    detach(lu);
    vga_delete_row(&pu->parent->links_root, &lu->viewer, redraw);
    vga_leave_tree(&pu->lu_tree, &lu->node);
    vga_leave_tree(&pu->nau_tree, &lu->nau_node);
    if (lu->update_mark != 0) {
        --pu->marked;
    }
    release_down_lu(lu);
}

void vga_release_connectivity(vga_node* node) {
    for (vga_port** fake : {&node->dlur_fake_port, &node->primary_line_fake_port}) {
        if (*fake != nullptr) {
            release_dlc((*fake)->parent);
            release_port(*fake);
            *fake = nullptr;
        }
    }
    vga_drain<vga_pu>(&node->local_pu_tree, release_pu);
    vga_drain<vga_pu>(&node->down_pu_tree, release_pu);
    vga_drain<vga_cn>(&node->cn_tree, release_cn);
    vga_drain<vga_ls>(&node->ls_tree, release_ls);
    vga_drain<vga_port>(&node->port_tree, release_port);
    vga_drain<vga_dlc>(&node->dlc_tree, release_dlc);
}
