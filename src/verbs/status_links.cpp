// Indications of DLCs, ports and link stations.
#include "nof/connectivity.h"
#include "store/build.h"
#include "store/remove.h"
#include "verbs/status_util.h"

namespace {

constexpr NB_BYTE WENT = 1; // change code: inactive, or gone

// What a new state makes of a link station.
struct STATE_ROW {
    NB_BYTE new_state; // of the indication
    NB_BYTE state;
    bool no_demand; // it can no longer be activated on demand
};
constexpr STATE_ROW states[] = {
    {NOF_LS_STARTING, NOF_STATE_START_PENDING, false},
    {NOF_LS_STOPPED_DISABLED, NOF_STATE_INACTIVE, true},
    {NOF_LS_STOPPING, NOF_STATE_STOP_PENDING, false},
    {NOF_LS_FAILED_ENABLED, NOF_STATE_FAILED, false},
    {NOF_LS_STOPPED, NOF_STATE_INACTIVE, false},
    {NOF_LS_ACTIVATED, NOF_STATE_ACTIVE, false},
    {NOF_LS_DISABLED, NOF_STATE_INACTIVE, true},
};

void take_state(LS_ENTRY* entry, NB_BYTE new_state) {
    for (const STATE_ROW& row : states) {
        if (row.new_state == new_state) {
            entry->det.state = row.state;
            if (row.no_demand) {
                entry->det.activation_flags &= static_cast<NB_BYTE>(~NOF_LS_ON_DEMAND);
            }
        }
    }
    if (new_state != NOF_LS_ACTIVATED) {
        return;
    }
    if (entry->def.activate_on_demand == 1) {
        entry->det.activation_flags |= NOF_LS_ON_DEMAND;
    }
    if (entry->def.disable_remote_act == 0) {
        entry->det.activation_flags |= NOF_LS_INCOMING;
    }
}

bool query_port(vga_node* node, const char* name) {
    PORT_ENTRY key{};
    std::memcpy(key.port_name, name, sizeof key.port_name);
    return vga_issue_query(VGA_QUERY_PORT, node, &key, 1, node->handle, vga_check_one_port);
}

// last: the downstream LU to go on behind, or null.
void query_down_lus(vga_pu* pu, const void* last) {
    if (!vga_issue_query(VGA_QUERY_DOWN_LU, pu, last, 0, pu->handle, vga_build_implicit_ls)) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

} // namespace

void vga_process_dlc_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const DLC_INDICATION*>(block);
    auto* dlc = vga_status_find<vga_dlc>(node->dlc_tree, ind.dlc_name);
    if (dlc != nullptr) {
        dlc->vcb->state = ind.change != WENT;
    } else if (!vga_being_built(node, VGA_NODE_DLCS)) {
        vga_log_unknown_local(8, ind.header.opcode, ind.dlc_name);
    }
}

void vga_process_port_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const PORT_INDICATION*>(block);
    auto* port = vga_status_find<vga_port>(node->port_tree, ind.port_name);
    if (port == nullptr) {
        if (!vga_being_built(node, VGA_NODE_PORTS)) {
            vga_log_unknown_local(17, ind.header.opcode, ind.port_name);
        }
        return;
    }
    const NB_BYTE active = ind.change != WENT;
    if (port->vcb->state != active) {
        port->vcb->state = active;
        vga_status_redraw(gvga_status_hooks.update_port, port);
    }
    if (active != 0 && !query_port(node, ind.port_name)) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

void vga_check_one_port(VGA_COMPLETION* completion) {
    const VCB_HEADER* vcb = vcb_header(completion->vcb);
    auto* node = static_cast<vga_node*>(nba_validate_handle(completion->corr));
    // The port may have been deleted meanwhile.
    if (!VGA_ASSERT(vcb->opcode == NAP_QUERY_PORT) || node == nullptr ||
        vcb->primary_rc != NAP_OK) {
        return;
    }
    vga_port* last;
    vga_process_query_port(node, completion->vcb, &last);
}

void vga_process_ls_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const LS_INDICATION*>(block);
    auto* ls = vga_status_find<vga_ls>(node->ls_tree, ind.ls_name);
    if (ls == nullptr) {
        if (ind.new_state == NOF_LS_ACTIVATED) {
            vga_query_implicit_ls(node, ind.ls_name);
        }
        return;
    }
    LS_DETAIL& detail = ls->vcb->det;
    if (ls->restart_check != 0 && ind.change != WENT) {
        ls->restart_check = 0;      // the list of the check may have passed its place
        if (detail.implicit == 1) { // another link of the same name, when the end of one was lost
            vga_query_implicit_ls(node, ind.ls_name);
        }
    }
    const NB_BYTE old_state = detail.state;
    take_state(ls->vcb, ind.new_state);
    detail.active_sessions = ind.active_sessions;
    std::memcpy(detail.adj_cp_name, ind.adj_cp_name, sizeof detail.adj_cp_name);
    detail.adj_cp_type = ind.adj_cp_type;
    detail.parameter45 = ind.parameter164;
    if (ind.change == WENT) {
        if (ls->pu_entry != nullptr) {
            ls->pu_entry->start_pending = 0;
            ls->pu_entry->vcb.state = NOF_STATE_INACTIVE;
        }
        if (detail.implicit == 1) {
            vga_delete_vga_ls(ls, true);
            return;
        }
    }
    if (detail.state != old_state) {
        vga_status_redraw(gvga_status_hooks.update_ls, ls);
    }
}

void vga_query_implicit_ls(vga_node* node, const char* ls_name) {
    if (!vga_issue_query_ls(node, nullptr, ls_name, 1, node->handle, vga_build_implicit_ls)) {
        vga_log_unknown_local(11, NAP_LS_INDICATION, ls_name);
    }
}

void vga_build_implicit_ls(VGA_COMPLETION* completion) {
    const VCB_HEADER* vcb = vcb_header(completion->vcb);
    void* record = nba_validate_handle(completion->corr);
    if (record == nullptr || vcb->primary_rc != NAP_OK) {
        return;
    }
    if (vcb->opcode == NAP_QUERY_LS) {
        vga_ls* ls;
        if (vga_process_query_ls(static_cast<vga_node*>(record), completion->vcb, &ls) &&
            ls != nullptr && ls->vcb->def.dspu_services != 0 && ls->pu_entry != nullptr &&
            ls->pu_entry->kind == VGA_PU_DOWNSTREAM) {
            query_down_lus(ls->pu_entry, nullptr);
        }
    } else if (vcb->opcode == NAP_QUERY_DOWNSTREAM_LU) {
        auto* pu = static_cast<vga_pu*>(record);
        const vga_page page = vga_process_query(VGA_QUERY_DOWN_LU, pu, completion->vcb);
        if (!page.failed && page.more) {
            query_down_lus(pu, page.last);
        }
    } else {
        VGA_ASSERT(FALSE);
    }
}
