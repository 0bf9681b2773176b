// Start and stop of DLCs and ports, and the steps of a chain up to the port.
#include "verbs/manage_util.h"

namespace {

// The record that an answered verb names, on the node that answered; null when it has gone.
template <typename Record>
Record* answered_record(const VGA_COMPLETION* completion, NTL_AVL_TREE vga_node::*tree,
                        const char* name) {
    const vga_node* node = vga_answering_node(completion);
    return node != nullptr ? vga_status_find<Record>(node->*tree, name) : nullptr;
}

const char* started_name(const VGA_COMPLETION* completion) { // of a DLC or a port
    return reinterpret_cast<const char*>(static_cast<const START_PORT*>(completion->vcb)->name);
}
const char* stopped_name(const VGA_COMPLETION* completion) {
    return static_cast<const STOP_PORT*>(completion->vcb)->name;
}

template <NB_USHORT opcode>
bool send_start(vga_node* node, const char (&name)[8], VGA_CALLBACK callback, NB_ULONG corr) {
    return vga_send<DELETE_BY_NAME8>(node, opcode, corr, callback, [&name](auto& block) {
        std::memcpy(block.name, name, sizeof name);
    });
}
template <NB_USHORT opcode>
bool send_stop(vga_node* node, const char (&name)[8], VGA_CALLBACK callback, NB_ULONG corr) {
    return vga_send<STOP_DLC>(node, opcode, corr, callback, [&name](STOP_DLC& block) {
        block.stop_type = 1;
        vga_copy_name(block.name, name);
    });
}

} // namespace

void vga_set_port_state(vga_port* port, NB_BYTE state) {
    port->vcb->state = state;
    vga_status_redraw(gvga_status_hooks.update_port, port);
}

void vga_end_port_start(vga_port* port) {
    if (port->vcb->state == NOF_STATE_START_PENDING) {
        vga_set_port_state(port, NOF_STATE_INACTIVE);
    }
}

// ---- DLC ----

bool vga_issue_start_dlc(vga_dlc* dlc, VGA_CALLBACK callback, NB_ULONG corr) {
    if (!send_start<NAP_START_DLC>(dlc->parent, dlc->vcb->dlc_name, callback, corr)) {
        return false;
    }
    dlc->vcb->state = NOF_STATE_START_PENDING;
    return true;
}

bool vga_process_start_dlc(vga_dlc* dlc, const void* vcb) {
    const bool active = vga_take_answer(vcb, vga_subject(dlc)) == VGA_OUTCOME::DONE;
    dlc->vcb->state = active ? NOF_STATE_ACTIVE : NOF_STATE_INACTIVE;
    return active;
}

void vga_nodew_start_dlc_cb(VGA_COMPLETION* completion) {
    if (auto* dlc =
            vga_managed<vga_dlc>(completion, &vga_node::dlc_tree, started_name(completion))) {
        vga_process_start_dlc(dlc, completion->vcb);
    }
}

bool vga_issue_stop_dlc(vga_dlc* dlc, VGA_CALLBACK callback, NB_ULONG corr) {
    if (!send_stop<NAP_STOP_DLC>(dlc->parent, dlc->vcb->dlc_name, callback, corr)) {
        return false;
    }
    dlc->vcb->state = NOF_STATE_STOP_PENDING;
    return true;
}

void vga_process_stop_dlc(vga_dlc* dlc, const void* vcb) {
    switch (vga_take_answer(vcb, vga_subject(dlc))) {
    case VGA_OUTCOME::DONE:
    case VGA_OUTCOME::GONE:
        dlc->vcb->state = NOF_STATE_INACTIVE;
        break;
    default:
        if (dlc->vcb->state == NOF_STATE_STOP_PENDING) {
            dlc->vcb->state = NOF_STATE_ACTIVE; // it goes on running
        }
    }
}

void vga_nodew_stop_dlc_cb(VGA_COMPLETION* completion) {
    if (auto* dlc =
            vga_managed<vga_dlc>(completion, &vga_node::dlc_tree, stopped_name(completion))) {
        vga_process_stop_dlc(dlc, completion->vcb);
    }
}

void vga_check_stop_dlc(vga_dlc* dlc, VGA_CALLBACK callback, NB_ULONG corr) {
    const DLC_ENTRY& entry = *dlc->vcb;
    if (entry.def.initially_active != 0 || entry.state == NOF_STATE_INACTIVE ||
        entry.state == NOF_STATE_STOP_PENDING) {
        return;
    }
    for (auto* port = ntl_avl_first<vga_port>(dlc->port_tree); port != nullptr;
         port = static_cast<vga_port*>(ntl_avl_next(&port->dlc_node))) {
        if (port->vcb->state != NOF_STATE_INACTIVE) { // on its way up or down it needs the DLC too
            return;
        }
    }
    vga_issue_stop_dlc(dlc, callback, corr);
}

// ---- start of a port ----

void vga_start_step(vga_port* port, VGA_CALLBACK callback, NB_ULONG corr) {
    vga_node* node = vga_node_of_port(port);
    if (!vga_is_active(node)) {
        vga_issue_init_node(node, callback, corr);
    } else if (port->parent->vcb->state != NOF_STATE_ACTIVE) {
        vga_issue_start_dlc(port->parent, callback, corr);
    } else {
        vga_issue_start_port(port, callback, corr);
    }
    vga_set_port_state(port, NOF_STATE_START_PENDING);
}

void vga_nodew_init_start_port(vga_port* port) {
    vga_start_step(port, vga_nodew_start_port_cb, port->handle);
}

bool vga_issue_start_port(vga_port* port, VGA_CALLBACK callback, NB_ULONG corr) {
    return send_start<NAP_START_PORT>(vga_node_of_port(port), port->vcb->port_name, callback, corr);
}

bool vga_process_start_port(vga_port* port, const void* vcb) {
    switch (vga_take_answer(vcb, vga_subject(port))) {
    case VGA_OUTCOME::DONE:
        vga_set_port_state(port, NOF_STATE_ACTIVE);
        return true;
    case VGA_OUTCOME::UNCHANGED:
        return false;
    case VGA_OUTCOME::STOPPING:
        vga_set_port_state(port, NOF_STATE_STOP_PENDING);
        return false;
    default:
        vga_set_port_state(port, NOF_STATE_INACTIVE);
        return false;
    }
}

namespace {

// A start that is to bring the port up is outstanding.
bool is_being_started(const vga_port* port) {
    for (const NBA_QUEUE* link = gvga_nof_queue.next; link != &gvga_nof_queue; link = link->next) {
        const auto* entry = static_cast<const VGA_QUEUE_ENTRY*>(link->owner);
        if (entry->callback == vga_nodew_start_port_cb && entry->corr == port->handle) {
            return true;
        }
        if (entry->callback == vga_nodew_start_ls_cb) {
            const auto* ls = static_cast<const vga_ls*>(nba_validate_handle(entry->corr));
            if (ls != nullptr && ls->parent == port) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

void vga_end_orphaned_start(const VGA_COMPLETION* completion) {
    vga_node* node = vga_answering_node(completion);
    if (vga_is_other_operators(completion->vcb)) {
        return;
    }
    switch (vcb_header(completion->vcb)->opcode) {
    case NAP_INIT_NODE:
        if (node != nullptr) {
            vga_process_init_node(node, completion->vcb);
        }
        break;
    case NAP_START_DLC:
        if (auto* dlc = answered_record<vga_dlc>(completion, &vga_node::dlc_tree,
                                                 started_name(completion))) {
            vga_process_start_dlc(dlc, completion->vcb);
        }
        break;
    case NAP_START_PORT:
        if (auto* port = answered_record<vga_port>(completion, &vga_node::port_tree,
                                                   started_name(completion))) {
            vga_process_start_port(port, completion->vcb);
        }
        break;
    default:
        break;
    }
    // A port waits for a link station that no longer exists.
    for (auto* port = node != nullptr ? ntl_avl_first<vga_port>(node->port_tree) : nullptr;
         port != nullptr; port = static_cast<vga_port*>(ntl_avl_next(&port->node))) {
        if (!is_being_started(port)) {
            vga_end_port_start(port);
        }
    }
}

void vga_nodew_start_port_cb(VGA_COMPLETION* completion) {
    const void* vcb = completion->vcb;
    auto* port = vga_managed<vga_port>(completion, &vga_node::port_tree, started_name(completion));
    if (port == nullptr) {
        vga_end_orphaned_start(completion);
        return;
    }
    switch (vcb_header(vcb)->opcode) {
    case NAP_INIT_NODE:
        if (vga_process_init_node(vga_node_of_port(port), vcb)) {
            vga_issue_start_dlc(port->parent, vga_nodew_start_port_cb, port->handle);
            return;
        }
        break;
    case NAP_START_DLC:
        if (vga_process_start_dlc(port->parent, vcb)) {
            vga_issue_start_port(port, vga_nodew_start_port_cb, port->handle);
            return;
        }
        break;
    case NAP_START_PORT:
        if (vga_process_start_port(port, vcb)) {
            return;
        }
        break;
    default:
        VGA_ASSERT(FALSE);
        return;
    }
    vga_end_port_start(port);
    vga_release_dlc(port->parent);
}

// ---- stop of a port ----

void vga_nodew_stop_port(vga_port* port) {
    vga_ask(vga_subject(port), 906, "confirmstopport", vga_stop_port_confirm_cb, port->handle);
}

void vga_stop_port_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    if (auto* port = vga_confirmed<vga_port>(dialog, arg, answer)) {
        vga_issue_stop_port(port, vga_nodew_stop_port_cb, port->handle);
    }
}

bool vga_issue_stop_port(vga_port* port, VGA_CALLBACK callback, NB_ULONG corr) {
    if (!send_stop<NAP_STOP_PORT>(vga_node_of_port(port), port->vcb->port_name, callback, corr)) {
        return false;
    }
    vga_set_port_state(port, NOF_STATE_STOP_PENDING);
    for (auto* ls = ntl_avl_first<vga_ls>(port->ls_tree); ls != nullptr;
         ls = static_cast<vga_ls*>(ntl_avl_next(&ls->port_node))) {
        ls->start_pending = 0;
    }
    return true;
}

void vga_nodew_stop_port_cb(VGA_COMPLETION* completion) {
    auto* port = vga_managed<vga_port>(completion, &vga_node::port_tree, stopped_name(completion));
    if (port == nullptr) {
        return;
    }
    switch (vga_take_answer(completion->vcb, vga_subject(port))) {
    case VGA_OUTCOME::DONE:
        vga_set_port_state(port, NOF_STATE_INACTIVE);
        vga_release_dlc(port->parent);
        break;
    case VGA_OUTCOME::GONE:
        vga_set_port_state(port, NOF_STATE_INACTIVE);
        break;
    case VGA_OUTCOME::FAILED:
        if (port->vcb->state == NOF_STATE_STOP_PENDING) {
            vga_set_port_state(port, NOF_STATE_ACTIVE); // it goes on running
        }
        break;
    default:
        break;
    }
}
