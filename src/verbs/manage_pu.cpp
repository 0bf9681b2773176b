// Start and stop of DLUR PUs.
#include "verbs/manage_util.h"

namespace {

bool is_dlur(const vga_pu* the_pu) {
    return VGA_ASSERT_TEXT(the_pu->vcb.host_attachment == NAP_DLUR_ATTACHED,
                           "the_pu->vcb.host_attachment == NAP_DLUR_ATTACHED");
}

void set_pu_state(vga_pu* pu, NB_BYTE state) {
    pu->vcb.state = state;
    pu->start_pending = 0;
    vga_status_redraw(gvga_status_hooks.update_local_pu, pu);
}

vga_pu* managed_pu(const VGA_COMPLETION* completion) {
    return vga_managed<vga_pu>(completion, &vga_node::local_pu_tree,
                               static_cast<const START_INTERNAL_PU*>(completion->vcb)->pu_name);
}
static_assert(offsetof(START_INTERNAL_PU, pu_name) == offsetof(STOP_INTERNAL_PU, pu_name));

} // namespace

void vga_set_start_pending(vga_pu* pu, NB_USHORT pending) {
    if (pu == nullptr || pu->start_pending == pending) {
        return;
    }
    pu->start_pending = pending;
    if (pu->kind == VGA_PU_LOCAL) {
        vga_status_redraw(gvga_status_hooks.update_local_pu, pu);
    }
}

void vga_nodew_start_pu(vga_pu* pu) {
    if (!is_dlur(pu)) {
        return;
    }
    const bool sent = vga_is_active(pu->parent)
                          ? vga_issue_start_internal_pu(pu, vga_nodew_start_pu_cb, pu->handle)
                          : vga_issue_init_node(pu->parent, vga_nodew_start_pu_cb, pu->handle);
    if (sent) {
        vga_set_start_pending(pu, 1);
    }
}

bool vga_issue_start_internal_pu(vga_pu* pu, VGA_CALLBACK callback, NB_ULONG corr) {
    return vga_send<START_INTERNAL_PU>(
        pu->parent, NAP_START_INTERNAL_PU, corr, callback,
        [pu](START_INTERNAL_PU& block) { vga_copy_name(block.pu_name, pu->vcb.pu_name); });
}

bool vga_process_start_internal_pu(vga_pu* pu, const void* vcb) {
    switch (vga_take_answer(vcb, vga_subject(pu))) {
    case VGA_OUTCOME::DONE:
        set_pu_state(pu, NOF_STATE_ACTIVE);
        return true;
    case VGA_OUTCOME::UNDER_WAY:
        return true;
    case VGA_OUTCOME::UNCHANGED:
        return false;
    default:
        set_pu_state(pu, NOF_STATE_INACTIVE);
        return false;
    }
}

void vga_nodew_start_pu_cb(VGA_COMPLETION* completion) {
    vga_pu* pu = managed_pu(completion);
    if (pu == nullptr) {
        vga_end_orphaned_start(completion);
        return;
    }
    switch (vcb_header(completion->vcb)->opcode) {
    case NAP_INIT_NODE:
        if (vga_process_init_node(pu->parent, completion->vcb)) {
            vga_issue_start_internal_pu(pu, vga_nodew_start_pu_cb, pu->handle);
        } else {
            vga_set_start_pending(pu, 0);
        }
        break;
    case NAP_START_INTERNAL_PU:
        vga_process_start_internal_pu(pu, completion->vcb);
        break;
    default:
        VGA_ASSERT(FALSE);
    }
}

void vga_nodew_stop_pu(vga_pu* pu) {
    if (is_dlur(pu)) {
        vga_ask(vga_subject(pu), 907, "confirmstoppu", vga_stop_pu_confirm_cb, pu->handle);
    }
}

void vga_stop_pu_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    if (auto* pu = vga_confirmed<vga_pu>(dialog, arg, answer)) {
        vga_issue_stop_internal_pu(pu, vga_nodew_stop_pu_cb, pu->handle);
    }
}

bool vga_issue_stop_internal_pu(vga_pu* pu, VGA_CALLBACK callback, NB_ULONG corr) {
    return vga_send<STOP_INTERNAL_PU>(pu->parent, NAP_STOP_INTERNAL_PU, corr, callback,
                                      [pu](STOP_INTERNAL_PU& block) {
                                          vga_copy_name(block.pu_name, pu->vcb.pu_name);
                                          block.stop_type = 1;
                                      });
}

void vga_nodew_stop_pu_cb(VGA_COMPLETION* completion) {
    vga_pu* pu = managed_pu(completion);
    if (pu != nullptr && vga_take_answer(completion->vcb, vga_subject(pu)) == VGA_OUTCOME::DONE) {
        set_pu_state(pu, NOF_STATE_INACTIVE);
    }
}
