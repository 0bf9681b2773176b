// The store of a node that has stopped: nothing runs, and what existed only while it ran is gone.
#include "nof/lu62.h"
#include "store/checks.h"
#include "store/remove.h"
#include "store/session_records.h"
#include "store/store.h"
#include "store/tracking.h"
#include "verbs/manage_util.h"

namespace {

// Calls use(record) for every record of a tree; use may remove the record.
template <typename Record, typename Use>
void for_each(const NTL_AVL_TREE& tree, NTL_AVL_NODE Record::*member, Use use) {
    Record* next;
    for (auto* record = ntl_avl_first<Record>(tree); record != nullptr; record = next) {
        next = static_cast<Record*>(ntl_avl_next(&(record->*member)));
        use(record);
    }
}

void close_child_dialogs(vga_dialog* dialog) {
    if (dialog != nullptr) {
        vga_close_children(dialog, false, true);
    }
}

void clear(vga_dlc* dlc) {
    dlc->vcb->state = NOF_STATE_INACTIVE;
}

void clear(vga_port* port) {
    vga_set_port_state(port, NOF_STATE_INACTIVE);
    close_child_dialogs(port->gui_data.dialog);
}

void clear(vga_ls* ls) {
    LS_DETAIL& detail = ls->vcb->det;
    close_child_dialogs(ls->gui_data.dialog);
    if (detail.implicit == 1) {
        vga_delete_vga_ls(ls, true);
        return;
    }
    ls->start_pending = 0;
    detail.active_sessions = 0;
    std::memset(detail.adj_cp_name, 0, sizeof detail.adj_cp_name);
    vga_set_ls_state(ls, NOF_STATE_INACTIVE);
}

void clear(vga_lu03* lu) {
    LU03_DETAIL detail = lu->vcb.det_data;
    if (detail.appl_conn_active == NAP_YES) {
        detail.appl_conn_active = NAP_NO;
        detail.app_type = NAP_NO_APPLICATION;
        detail.application = {};
    }
    lu->user_query = 0; // an answer under way tells of the time before
    detail.lu_active = 0;
    detail.plu_session_active = 0;
    vga_take_lu03_detail(lu, detail);
    vga_status_redraw(gvga_status_hooks.update_deplu, reinterpret_cast<vga_deplu*>(lu));
}

void clear_local(vga_pu* pu) {
    PU_ENTRY& entry = pu->vcb;
    entry.state = 0;
    pu->start_pending = 0;
    if (entry.host_attachment == NAP_DLUR_ATTACHED) {
        std::memset(entry.dlur_pcid, 0, sizeof entry.dlur_pcid);
        std::memset(entry.dlur_active_dlus, 0, sizeof entry.dlur_active_dlus);
        entry.dlur_parameter3 = 0;
        entry.dlur_active = 0;
        entry.dlur_status = NOF_DLUR_INACTIVE;
    }
    vga_status_redraw(gvga_status_hooks.update_local_pu, pu);
}

void clear(vga_down_lu* lu) {
    lu->vcb.lu_active = 0;
    lu->vcb.plu_session_active = 0;
    vga_status_redraw(gvga_status_hooks.update_down_lu, lu);
}

void clear_downstream(vga_pu* pu) {
    pu->vcb.state = 0;
    pu->start_pending = 0;
    const bool from_template = pu->vcb.host_attachment == VGA_FROM_TEMPLATE;
    for_each(pu->lu_tree, &vga_down_lu::node, [from_template](vga_down_lu* lu) {
        from_template ? vga_delete_vga_down_lu(lu, true) : clear(lu);
    });
}

void clear(vga_lu62* lu) {
    lu->act_sess_count = 0;
    lu->vcb.session_status = 0;
    for_each(lu->plu_tree, &vga_plu::node, [](vga_plu* plu) { vga_delete_vga_plu(plu, true); });
    vga_status_redraw(gvga_status_hooks.update_lu62, lu);
}

// The records of a PU's tree are of two kinds, which have its node at different places.
NTL_AVL_NODE* place_of(vga_deplu* lu) {
    return lu->lu_type == VGA_DEPLU_TYPE_LU03 ? &reinterpret_cast<vga_lu03*>(lu)->node
                                              : &reinterpret_cast<vga_lu62*>(lu)->pu_node;
}

} // namespace

void vga_clear_stopped_node(vga_node* node) {
    node->node_state = VGA_NODE_STATE_STOPPED;
    for_each(node->dlc_tree, &vga_dlc::node, [](vga_dlc* dlc) { clear(dlc); });
    for_each(node->port_tree, &vga_port::node, [](vga_port* port) { clear(port); });
    for_each(node->ls_tree, &vga_ls::node, [](vga_ls* ls) { clear(ls); });
    for_each(node->local_pu_tree, &vga_pu::node, [](vga_pu* pu) {
        for (auto* lu = ntl_avl_first<vga_deplu>(pu->lu_tree); lu != nullptr;
             lu = static_cast<vga_deplu*>(ntl_avl_next(place_of(lu)))) {
            if (lu->lu_type == VGA_DEPLU_TYPE_LU03) {
                clear(reinterpret_cast<vga_lu03*>(lu));
            } // local LUs 6.2 are cleared with the node's own tree of them
        }
        clear_local(pu);
    });
    for_each(node->down_pu_tree, &vga_pu::node, clear_downstream);
    for_each(node->lu62_tree, &vga_lu62::node, [](vga_lu62* lu) { clear(lu); });
    for_each(node->rem_sys_tree, &vga_rem_sys::node,
             [](vga_rem_sys* rem_sys) { vga_delete_vga_rem_sys(rem_sys, false, true, true); });
    for_each(node->rtp_conn_tree, &vga_rtp_conn::node,
             [](vga_rtp_conn* conn) { vga_delete_vga_rtp_conn(conn, true); });
    for_each(node->appcip_sess_tree, &vga_appcip_sess::node,
             [](vga_appcip_sess* sess) { vga_delete_vga_appcip_sess(sess, true); });
    vga_start_check_dir(node);
}
