// Start and stop of link stations.
#include "verbs/manage_util.h"

namespace {

constexpr NB_BYTE ACTIVATE = 0;    // activation byte
constexpr NB_BYTE DISABLE_TOO = 3; // of a stop
constexpr NB_BYTE ENABLED = 1;     // of a failed start: it waits for activation

bool is_lan(NB_BYTE dlc_type) {
    return dlc_type == NAP_DLC_TOKEN_RING || dlc_type == NAP_DLC_ETHERNET ||
           dlc_type == NAP_DLC_FDDI;
}

bool has_permanent_circuit(const vga_ls* ls) {
    const LS_ENTRY* entry = ls->vcb;
    return ls->parent->parent->vcb->def.dlc_type == NAP_DLC_QLLC &&
           entry->def.specific_length > NOF_LS_CIRCUIT_OFFSET &&
           nof_tail(entry)[NOF_LS_CIRCUIT_OFFSET] == NOF_LS_PERMANENT_CIRCUIT;
}

bool has_remote_address(const vga_ls* ls) {
    return ls->vcb->def.address_length != 0;
}

bool runs_or_changes(NB_BYTE state) {
    return state == NOF_STATE_ACTIVE || state == NOF_STATE_START_PENDING ||
           state == NOF_STATE_STOP_PENDING;
}

// A link station that was to be activated is not.
void end_start(vga_ls* ls) {
    ls->start_pending = 0;
    if (ls->vcb->det.state == NOF_STATE_START_PENDING) {
        vga_set_ls_state(ls, NOF_STATE_INACTIVE);
    }
    vga_set_start_pending(ls->pu_entry, 0);
}

void ask(void (*dialog)(vga_ls*), vga_ls* ls) {
    if (dialog != nullptr) {
        dialog(ls);
    }
}

} // namespace

void vga_set_ls_state(vga_ls* ls, NB_BYTE state) {
    ls->vcb->det.state = state;
    vga_status_redraw(gvga_status_hooks.update_ls, ls);
}

void vga_set_activation_flags(vga_ls* ls) {
    const LS_DEF& def = ls->vcb->def;
    ls->vcb->det.activation_flags =
        static_cast<NB_BYTE>((def.activate_on_demand == 1 ? NOF_LS_ON_DEMAND : 0) |
                             (def.disable_remote_act == 0 ? NOF_LS_INCOMING : 0));
}

// ---- start ----

void vga_nodew_start_ls(vga_ls* ls) {
    const vga_node* node = vga_node_of_port(ls->parent);
    const LS_ENTRY& entry = *ls->vcb;
    const bool waits_for_partner =
        is_lan(ls->parent->parent->vcb->def.dlc_type) && !has_remote_address(ls);
    if (runs_or_changes(entry.det.state)) {
        return;
    }
    if (waits_for_partner && (entry.det.activation_flags & NOF_LS_INCOMING) != 0) {
        vga_display_info_dialog(vga_manage_parent(node), 900, "cantstartlsemptymac", nullptr, 0,
                                "cs", static_cast<int>(sizeof entry.ls_name), entry.ls_name);
    } else if (waits_for_partner) {
        vga_nodew_init_start_ls(ls, true);
    } else if (has_permanent_circuit(ls) || entry.det.activation_flags != 0 ||
               (!vga_is_active(node) && entry.def.initially_active == 1)) {
        vga_nodew_init_start_ls(ls, false);
    } else {
        ask(gvga_manage_hooks.ask_start_ls, ls);
    }
}

void vga_nodew_init_start_ls(vga_ls* ls, bool enable) {
    const vga_port* port = ls->parent;
    ls->start_enable = enable;
    if (vga_is_active(vga_node_of_port(port)) && port->parent->vcb->state == NOF_STATE_ACTIVE &&
        port->vcb->state == NOF_STATE_ACTIVE) {
        vga_issue_start_ls(ls, vga_nodew_start_ls_cb, ls->handle, enable);
    } else {
        vga_start_step(ls->parent, vga_nodew_start_ls_cb, ls->handle);
    }
    if (!enable) {
        vga_set_ls_state(ls, NOF_STATE_START_PENDING);
        vga_set_start_pending(ls->pu_entry, 1);
    }
}

bool vga_issue_start_ls(vga_ls* ls, VGA_CALLBACK callback, NB_ULONG corr, bool enable) {
    const LS_ENTRY& entry = *ls->vcb;
    NB_BYTE activation = ACTIVATE;
    if (enable) {
        activation = entry.def.activate_on_demand == 1 ? NOF_LS_INCOMING | NOF_LS_ON_DEMAND
                                                       : NOF_LS_INCOMING;
    }
    const bool sent = vga_send<START_LS>(vga_node_of_port(ls->parent), NAP_START_LS, corr, callback,
                                         [&](START_LS& block) {
                                             vga_copy_name(block.ls_name, entry.ls_name);
                                             block.activation = activation;
                                         });
    if (sent) {
        ls->start_pending = 1;
        ls->start_enable = enable;
    }
    return sent;
}

void vga_process_start_ls(vga_ls* ls, const void* vcb) {
    const auto& block = *static_cast<const START_LS*>(vcb);
    LS_DETAIL& detail = ls->vcb->det;
    const VGA_ANSWER_ROW& row = vga_answer_row(vcb);
    switch (row.outcome) {
    case VGA_OUTCOME::DONE:
        if (block.activation == ACTIVATE) {
            detail.state = NOF_STATE_ACTIVE;
            vga_set_activation_flags(ls);
        } else {
            detail.activation_flags |= block.activation;
            if (detail.state == NOF_STATE_FAILED) {
                detail.state = NOF_STATE_INACTIVE;
            }
        }
        vga_status_redraw(gvga_status_hooks.update_ls, ls);
        break;
    case VGA_OUTCOME::UNCHANGED:
        break;
    default:
        vga_set_start_pending(ls->pu_entry, 0);
        vga_set_ls_state(ls, block.enabled_after_failure == ENABLED ? NOF_STATE_FAILED
                                                                    : NOF_STATE_INACTIVE);
        if (row.message != VGA_LS_START_CANCELLED || ls->start_pending != 0) {
            vga_show_answer(row, vcb, vga_subject(ls));
        }
    }
    ls->start_pending = 0;
}

void vga_nodew_start_ls_cb(VGA_COMPLETION* completion) {
    const void* vcb = completion->vcb;
    auto* ls = vga_managed<vga_ls>(completion, &vga_node::ls_tree,
                                   static_cast<const START_LS*>(vcb)->ls_name);
    if (ls == nullptr) {
        vga_end_orphaned_start(completion);
        return;
    }
    vga_port* port = ls->parent;
    switch (vcb_header(vcb)->opcode) {
    case NAP_INIT_NODE:
        if (vga_process_init_node(vga_node_of_port(port), vcb)) {
            vga_issue_start_dlc(port->parent, vga_nodew_start_ls_cb, ls->handle);
            return;
        }
        break;
    case NAP_START_DLC:
        if (vga_process_start_dlc(port->parent, vcb)) {
            vga_issue_start_port(port, vga_nodew_start_ls_cb, ls->handle);
            return;
        }
        break;
    case NAP_START_PORT:
        if (vga_process_start_port(port, vcb)) {
            vga_issue_start_ls(ls, vga_nodew_start_ls_cb, ls->handle, ls->start_enable != 0);
            return;
        }
        break;
    case NAP_START_LS:
        vga_process_start_ls(ls, vcb);
        return;
    default:
        VGA_ASSERT(FALSE);
        return;
    }
    end_start(ls);
    vga_end_port_start(port);
    vga_release_dlc(port->parent);
}

// ---- stop ----

void vga_nodew_stop_ls(vga_ls* ls) {
    const LS_DETAIL& detail = ls->vcb->det;
    const bool choice = !has_permanent_circuit(ls);
    const bool enabled = detail.activation_flags != 0 || detail.state == NOF_STATE_FAILED;
    if (detail.implicit == 1) {
        vga_ask(vga_subject(ls), 904, "confirmstopdynamicls", vga_disable_ls_confirm_cb,
                ls->handle);
    } else if (runs_or_changes(detail.state) && choice) {
        ask(gvga_manage_hooks.ask_stop_ls, ls);
    } else if (runs_or_changes(detail.state) || (enabled && choice)) {
        vga_ask(vga_subject(ls), 903, "confirmdisablels", vga_disable_ls_confirm_cb, ls->handle);
    }
}

void vga_disable_ls_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    if (auto* ls = vga_confirmed<vga_ls>(dialog, arg, answer)) {
        vga_issue_stop_ls(ls, vga_nodew_stop_ls_cb, ls->handle, true);
    }
}

bool vga_issue_stop_ls(vga_ls* ls, VGA_CALLBACK callback, NB_ULONG corr, bool disable) {
    const bool sent = vga_send<STOP_LS>(vga_node_of_port(ls->parent), NAP_STOP_LS, corr, callback,
                                        [&](STOP_LS& block) {
                                            block.stop_type = 1;
                                            vga_copy_name(block.ls_name, ls->vcb->ls_name);
                                            block.disable = disable ? DISABLE_TOO : 0;
                                        });
    if (!sent) {
        return false;
    }
    ls->start_pending = 0;
    const NB_BYTE state = ls->vcb->det.state;
    if (state != NOF_STATE_STOP_PENDING) {
        ls->state_before_stop = state;
    }
    if (state != NOF_STATE_INACTIVE) {
        vga_set_ls_state(ls, NOF_STATE_STOP_PENDING);
    }
    return true;
}

void vga_nodew_stop_ls_cb(VGA_COMPLETION* completion) {
    const auto& block = *static_cast<const STOP_LS*>(completion->vcb);
    auto* ls = vga_managed<vga_ls>(completion, &vga_node::ls_tree, block.ls_name);
    if (ls == nullptr) {
        return;
    }
    LS_DETAIL& detail = ls->vcb->det;
    switch (vga_take_answer(completion->vcb, vga_subject(ls))) {
    case VGA_OUTCOME::DONE:
        detail.activation_flags &= static_cast<NB_BYTE>(~block.disable);
        [[fallthrough]];
    case VGA_OUTCOME::GONE:
        vga_set_ls_state(ls, NOF_STATE_INACTIVE);
        break;
    case VGA_OUTCOME::FAILED:
        if (detail.state == NOF_STATE_STOP_PENDING) {
            vga_set_ls_state(ls, ls->state_before_stop); // it goes on as it was
        }
        break;
    default:
        break;
    }
}
