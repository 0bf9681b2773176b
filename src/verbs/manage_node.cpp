// Start and stop of the node, and the starts and stops of other operators.
#include "nof/node.h"
#include "nof/pu_lu.h"
#include "store/store.h"
#include "verbs/manage_util.h"

namespace {

void set_node_state(vga_node* node, VGA_NODE_STATE state) {
    node->node_state = state;
    vga_redraw_node(node);
}

void tell_controls(vga_node* node, bool active) {
    if (gvga_manage_hooks.node_controls != nullptr) {
        gvga_manage_hooks.node_controls(node, active);
    }
}

bool can_stop(const vga_node* node) {
    return node->node_state == VGA_NODE_STATE_STARTING || vga_is_active(node);
}

void init_node_done(VGA_COMPLETION* completion) {
    if (auto* node = static_cast<vga_node*>(nba_validate_handle(completion->corr))) {
        vga_process_init_node(node, completion->vcb);
    }
}

} // namespace

void vga_install_manage_handlers() {
    gvga_dispatch.node_status = vga_process_node_status_ind;
    gvga_dispatch.node_manage = vga_process_node_manage_ind;
}

// ---- start ----

void vga_nodew_start_node(vga_node* node) {
    if (VGA_ASSERT_TEXT(node->node_state == VGA_NODE_STATE_STOPPED ||
                            node->node_state == VGA_NODE_STATE_STOPPING,
                        "(node->node_state == VGA_NODE_STATE_STOPPED) || "
                        "(node->node_state == VGA_NODE_STATE_STOPPING)")) {
        vga_issue_init_node(node, init_node_done, node->handle);
    }
}

bool vga_issue_init_node(vga_node* node, VGA_CALLBACK callback, NB_ULONG corr) {
    if (!vga_send<INIT_NODE>(node, NAP_INIT_NODE, corr, callback, [](INIT_NODE&) {})) {
        return false;
    }
    set_node_state(node, VGA_NODE_STATE_STARTING);
    return true;
}

bool vga_process_init_node(vga_node* node, const void* vcb) {
    const VGA_ANSWER_ROW& row = vga_answer_row(vcb);
    const bool active = row.outcome == VGA_OUTCOME::DONE;
    node->node_state = active ? VGA_NODE_STATE_ACTIVE : VGA_NODE_STATE_STOPPED;
    const NB_USHORT primary = vcb_header(vcb)->primary_rc;
    if (primary == NAP_OK || primary == NAP_INDICATION) {
        for (auto* ls = ntl_avl_first<vga_ls>(node->ls_tree); ls != nullptr;
             ls = static_cast<vga_ls*>(ntl_avl_next(&ls->node))) {
            vga_set_activation_flags(ls);
            vga_status_redraw(gvga_status_hooks.update_ls, ls);
        }
        tell_controls(node, true);
    } else if (!active) {
        if (gvga_store_hooks.clear_message_bar != nullptr) {
            gvga_store_hooks.clear_message_bar(node);
        }
        vga_show_answer(row, vcb, vga_subject(node));
    }
    vga_redraw_node(node);
    return active;
}

// ---- stop ----

void vga_stop_node(vga_node* node, vga_dialog* dialog) {
    if (can_stop(node)) {
        vga_display_confirm_dialog(dialog, 905, "confirmstopnode", vga_stop_node_confirm_cb,
                                   node->handle, false, false, "cs",
                                   static_cast<int>(sizeof node->node_name), node->node_name);
    }
}

void vga_stop_node_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    auto* node = vga_confirmed<vga_node>(dialog, arg, answer);
    if (node != nullptr && can_stop(node)) {
        vga_issue_stop_node(node, vga_process_stop_node);
    }
}

bool vga_issue_stop_node(vga_node* node, VGA_CALLBACK callback) {
    if (!vga_send<STOP_NODE>(node, NAP_STOP_NODE, node->handle, callback,
                             [](STOP_NODE& block) { block.stop_type = 1; })) {
        return false;
    }
    set_node_state(node, VGA_NODE_STATE_STOPPING);
    return true;
}

void vga_process_stop_node(VGA_COMPLETION* completion) {
    auto* node = static_cast<vga_node*>(nba_validate_handle(completion->corr));
    if (node == nullptr) {
        return;
    }
    if (vga_take_answer(completion->vcb, vga_subject(node)) == VGA_OUTCOME::DONE) {
        vga_clear_stopped_node(node);
        tell_controls(node, false);
        vga_redraw_node(node);
    } else if (node->node_state == VGA_NODE_STATE_STOPPING) {
        set_node_state(node, VGA_NODE_STATE_ACTIVE); // it goes on running
    }
}

// ---- other operators ----

void vga_process_node_status_ind(VGA_COMPLETION* completion, void* block) {
    vga_node* node = vga_validate_node(completion->corr);
    const VCB_HEADER* vcb = vcb_header(block);
    if (node == nullptr) {
        return;
    }
    if (vcb->opcode == NAP_INIT_NODE) {
        vga_process_init_node(node, block);
    } else if (VGA_ASSERT(vcb->opcode == NAP_STOP_NODE)) {
        vga_process_stop_node(completion);
    }
}

void vga_process_node_manage_ind(VGA_COMPLETION* completion) {
    vga_node* node = vga_validate_node(completion->corr);
    if (node == nullptr || !can_stop(node)) {
        return;
    }
    static constexpr struct {
        NB_USHORT opcode;
        VGA_CALLBACK process;
    } verbs[] = {
        {NAP_START_DLC, vga_nodew_start_dlc_cb},
        {NAP_STOP_DLC, vga_nodew_stop_dlc_cb},
        {NAP_START_PORT, vga_nodew_start_port_cb},
        {NAP_STOP_PORT, vga_nodew_stop_port_cb},
        {NAP_START_LS, vga_nodew_start_ls_cb},
        {NAP_STOP_LS, vga_nodew_stop_ls_cb},
        {NAP_START_INTERNAL_PU, vga_nodew_start_pu_cb},
        {NAP_STOP_INTERNAL_PU, vga_nodew_stop_pu_cb},
    };
    const NB_USHORT opcode = vcb_header(completion->vcb)->opcode;
    const auto* verb =
        std::ranges::find_if(verbs, [opcode](const auto& each) { return each.opcode == opcode; });
    if (VGA_ASSERT_TEXT(verb != std::end(verbs), "FALSE")) {
        verb->process(completion);
    }
}
