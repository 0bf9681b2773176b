// Sessions of local LUs 6.2, and the start of downstream LUs.
#include "nof/lu62.h"
#include "store/record_util.h"
#include "verbs/manage_util.h"

namespace {

constexpr NB_BYTE END_AT_ONCE = 2; // deactivation type
constexpr int NAME8 = 8;

void deactivate(vga_mode* mode) {
    vga_issue_deactivate_session(mode, vga_nodew_deact_session_cb);
}

} // namespace

// ---- deactivation ----

void vga_nodew_deact_all_lu_sessions(vga_lu62* lu) {
    if (lu->act_sess_count != 0) {
        vga_ask(vga_subject(lu), 902, "confirmdeactallsess", vga_deact_all_lu_sessions_confirm_cb,
                lu->handle);
    }
}

void vga_deact_all_lu_sessions_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    auto* lu = vga_confirmed<vga_lu62>(dialog, arg, answer);
    if (lu == nullptr) {
        return;
    }
    for (auto* plu = ntl_avl_first<vga_plu>(lu->plu_tree); plu != nullptr;
         plu = static_cast<vga_plu*>(ntl_avl_next(&plu->node))) {
        for (auto* mode = ntl_avl_first<vga_mode>(plu->mode_tree); mode != nullptr;
             mode = static_cast<vga_mode*>(ntl_avl_next(&mode->node))) {
            deactivate(mode);
        }
    }
}

void vga_nodew_deact_lu_lu_mode_sessions(vga_mode* mode) {
    if (mode->act_sess_count == 0 ||
        !VGA_ASSERT_TEXT(mode->parent != nullptr, "mode->parent != NULL")) {
        return;
    }
    const vga_plu* plu = mode->parent;
    const vga_lu62* lu = plu->parent;
    vga_display_confirm_dialog(vga_manage_parent(lu->parent), 901, "confirmdeactlulumode",
                               vga_deact_lu_lu_mode_sessions_confirm_cb, mode->handle, false, false,
                               "es es es", NAME8, lu->vcb.lu_name,
                               static_cast<int>(sizeof plu->vcb.plu_name), plu->vcb.plu_name, NAME8,
                               mode->vcb.mode_name);
}

void vga_deact_lu_lu_mode_sessions_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    if (auto* mode = vga_confirmed<vga_mode>(dialog, arg, answer)) {
        deactivate(mode);
    }
}

bool vga_issue_deactivate_session(vga_mode* mode, VGA_CALLBACK callback) {
    if (mode->act_sess_count == 0) {
        return true;
    }
    const vga_plu* plu = mode->parent;
    const vga_lu62* lu = plu->parent;
    return vga_send<DEACTIVATE_SESSION>(
        lu->parent, NAP_DEACTIVATE_SESSION, mode->handle, callback, [&](DEACTIVATE_SESSION& block) {
            if (vga_blank_name(lu->vcb.lu_name, sizeof lu->vcb.lu_name)) {
                vga_copy_name(block.lu_alias, lu->vcb.def.lu_alias);
            } else {
                vga_copy_name(block.lu_name, lu->vcb.lu_name);
            }
            vga_copy_name(block.mode_name, mode->vcb.mode_name);
            block.type = END_AT_ONCE;
            vga_copy_name(block.plu_name, plu->vcb.plu_name);
        });
}

void vga_nodew_deact_session_cb(VGA_COMPLETION* completion) {
    if (auto* mode = static_cast<vga_mode*>(nba_validate_handle(completion->corr))) {
        vga_take_answer(completion->vcb, vga_subject(mode->parent->parent));
    }
}

// ---- activation ----

void vga_nodew_activate_session_cb(VGA_COMPLETION* completion) {
    const VCB_HEADER* vcb = vcb_header(completion->vcb);
    auto* lu = static_cast<vga_lu62*>(nba_validate_handle(completion->corr));
    if (lu != nullptr && VGA_ASSERT(vcb->opcode == NAP_ACTIVATE_SESSION)) {
        vga_take_answer(vcb, vga_subject(lu));
    }
}

// ---- downstream LU ----

bool vga_issue_define_downstream_lu(vga_down_lu* lu, VGA_CALLBACK callback) {
    return vga_send<DEFINE_DOWNSTREAM_LU>(lu->parent->parent, NAP_DEFINE_DOWNSTREAM_LU, lu->handle,
                                          callback, [lu](DEFINE_DOWNSTREAM_LU& block) {
                                              vga_copy_name(block.dslu_name, lu->vcb.dslu_name);
                                              block.def = lu->vcb.def;
                                          });
}

void vga_define_downstream_lu_cb(VGA_COMPLETION* completion) {
    if (auto* lu = static_cast<vga_down_lu*>(nba_validate_handle(completion->corr))) {
        vga_take_answer(completion->vcb, vga_subject(lu));
    }
}
