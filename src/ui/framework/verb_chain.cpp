#include "ui/framework/verb_chain.h"

#include "common/assert.h"
#include "shell/exit_record.h"
#include "shell/messages.h"
#include "store/tracking.h"

#include <Xm/Xm.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>

namespace {

constexpr int verb_failed_message = 167;

const VGA_CHAIN& chain_of(const vga_form* form) {
    return *form->row->chain;
}

// While OK and Apply are insensitive the keyboard may go to Cancel; then it comes back.
void set_sensitive(vga_form* form, bool sensitive) {
    Widget& focus = form->run.focus;
    if (!sensitive && focus == nullptr) {
        focus = XmGetFocusWidget(form->common.widget);
    }
    vga_dialog_sensitive(&form->common, form->apply_button, sensitive);
    if (sensitive && focus != nullptr) {
        XmProcessTraversal(focus, XmTRAVERSE_CURRENT);
        focus = nullptr;
    }
}

void take_marks_back(vga_form* form) {
    if (form->run.marked && chain_of(form).unmark != nullptr) {
        chain_of(form).unmark(form, nullptr);
    }
    form->run.marked = false;
}

void no_memory() {
    VGA_FATAL(VGA_EXIT_INTERNAL, 0);
}

// What failed, in the words of the dialog or, for most codes, of the framework.
void show_failure(vga_form* form, const VCB_HEADER* header) {
    const auto failures = chain_of(form).failures;
    const auto own = std::ranges::find_if(failures, [&](const VGA_CHAIN_FAILURE& failure) {
        return failure.opcode == header->opcode && failure.primary == header->primary_rc &&
               (failure.secondary == 0 || failure.secondary == header->secondary_rc);
    });
    if (own != failures.end()) {
        vga_display_error_dialog(&form->common, own->message, own->help_tag, nullptr, 0, "");
        return;
    }
    const char* help_tag = nullptr;
    char* text = vga_get_verb_error_message(header->opcode, header->primary_rc,
                                            header->secondary_rc, &help_tag);
    if (text != nullptr) {
        vga_display_error_dialog(&form->common, verb_failed_message, help_tag, nullptr, 0, "s",
                                 text);
        vga_free(text);
    }
}

void finish(vga_form* form, void* record) {
    if (chain_of(form).finished != nullptr) {
        chain_of(form).finished(form, record);
    }
}

void succeed(vga_form* form) {
    void* record = form->common.parent_item;
    if (!form->run.apply) {
        vga_close_children(&form->common, true, false);
    } else if (chain_of(form).applied != nullptr) {
        chain_of(form).applied(form, nullptr);
    }
    finish(form, record);
}

// Nothing is outstanding any more.
void end_run(vga_form* form) {
    VGA_CHAIN_RUN& run = form->run;
    set_sensitive(form, true);
    const bool success = run.defined && !run.failed;
    if (run.update_node != nullptr) {
        void* record = form->common.parent_item;
        run.update_node = nullptr;
        const bool stays = run.apply || !success; // else this closes it, or its error box does
        vga_end_update(&form->common, stays, run.outstanding);
        if (!stays) {
            return finish(form, record);
        }
    }
    if (success) {
        succeed(form);
    }
}

// The form that a completion is for while it waits for one, else null.
vga_form* waiting_form(const VGA_COMPLETION* completion) {
    auto* form = static_cast<vga_form*>(nba_validate_handle(completion->corr));
    return form != nullptr && form->common.open && form->run.outstanding > 0 ? form : nullptr;
}

} // namespace

void vga_close_form(vga_form* form) {
    XtRemoveAllCallbacks(form->common.widget, XmNokCallback);
    if (form->row->chain != nullptr) {
        take_marks_back(form);
        vga_leave_update(&form->common, form->run.update_node);
    }
    form->run = {};
}

void vga_chain_start(vga_form* form, bool apply) {
    if (form->run.outstanding > 0) {
        return;
    }
    take_marks_back(form); // of a run that a check ended
    form->run = {};
    form->run.apply = apply;
    if (!vga_chain_issue(form, chain_of(form).checks)) {
        no_memory();
    }
}

bool vga_chain_issue(vga_form* form, NB_ULONG checks) {
    const VGA_CHAIN& chain = chain_of(form);
    form->run.checks = checks;
    if (chain.allowed != nullptr && !chain.allowed(form, nullptr)) {
        return true;
    }
    auto* vcb = static_cast<char*>(vga_alloc(chain.size));
    if (vcb == nullptr) {
        return false;
    }
    vcb_header(vcb)->opcode = chain.opcode;
    chain.prepare(form, vcb);
    if (!vga_read_fields(form, vcb + chain.image)) {
        vga_free_vcb(vcb);
        return true;
    }
    const void* image = vcb + chain.image;
    const void* current = chain.current != nullptr ? chain.current(form, nullptr) : nullptr;
    if ((current != nullptr && vga_same_fields(form, current, image)) ||
        (chain.unchanged != nullptr && chain.unchanged(form, vcb))) {
        vga_free_vcb(vcb);
        form->run.defined = true;
        if (form->run.outstanding == 0) {
            succeed(form);
        }
        return true;
    }
    if (chain.confirm != nullptr && !chain.confirm(form, vcb)) {
        vga_free_vcb(vcb);
        return true;
    }
    if ((current != nullptr && !vga_same_fields(form, current, image, true)) ||
        (chain.replaces != nullptr && chain.replaces(form, vcb))) {
        vga_free_vcb(vcb);
        if (!chain.delete_old(form, nullptr)) {
            return false;
        }
        vga_chain_sent(form, 1);
        return true;
    }
    if (!vga_chain_queue(form, chain.target(form, nullptr), vcb)) {
        vga_free_vcb(vcb);
        return false;
    }
    return true;
}

void vga_chain_continue(vga_form* form) {
    if (!vga_chain_issue(form, 0)) {
        no_memory();
    }
}

bool vga_chain_ask(vga_form* form, const VGA_CONFIRMATION& question, const char* kinds, ...) {
    char text[2 * VGA_MESSAGE_BUFFER_SIZE];
    va_list arguments;
    va_start(arguments, kinds);
    vga_print_msg_va(text, gvga_messages[question.message], kinds, arguments);
    va_end(arguments);
    if (question.question != 0) {
        std::strncat(text, gvga_messages[question.question], VGA_MESSAGE_BUFFER_SIZE - 1);
    }
    form->run.asked = &question;
    vga_display_confirm_dialog(&form->common, verb_failed_message, question.help_tag,
                               question.answered != nullptr ? question.answered : vga_chain_answer,
                               0, false, question.offers_no, "s", text);
    return false;
}

void vga_chain_answer(vga_dialog* dialog, NB_ULONG, NB_ULONG answer) {
    auto* form = reinterpret_cast<vga_form*>(dialog);
    const VGA_CONFIRMATION* asked = form->run.asked;
    form->run.asked = nullptr;
    vga_close_confirm_dialog(dialog);
    if (!VGA_ASSERT(asked != nullptr)) {
        return;
    }
    if (answer != VGA_ANSWER_YES) {
        take_marks_back(form);
    }
    const bool go_on = answer == VGA_ANSWER_YES || answer == VGA_ANSWER_NO;
    const NB_ULONG checks = answer == VGA_ANSWER_YES ? asked->yes_checks : asked->no_checks;
    if (go_on && !vga_chain_issue(form, checks)) {
        no_memory();
    }
}

bool vga_chain_queue(vga_form* form, NB_HANDLE target, void* vcb) {
    if (!vga_queue_verb(target, vcb, form->common.handle, chain_of(form).completion)) {
        return false;
    }
    vga_chain_sent(form, 1);
    return true;
}

void vga_chain_sent(vga_form* form, int count) {
    form->run.outstanding += count;
    if (form->run.outstanding > 0) {
        set_sensitive(form, false);
    }
}

void vga_chain_updating(vga_form* form, vga_node* node, int count) {
    form->run.marked = false;
    form->run.update_node = node;
    vga_chain_sent(form, count);
}

void vga_chain_completed(VGA_COMPLETION* completion) {
    vga_form* form = waiting_form(completion);
    if (form == nullptr) {
        return;
    }
    const VGA_CHAIN& chain = chain_of(form);
    const VCB_HEADER* header = vcb_header(completion->vcb);
    --form->run.outstanding;
    const auto step = std::ranges::find(chain.steps, header->opcode, &VGA_CHAIN_STEP::opcode);
    if (header->primary_rc != NAP_OK) {
        form->run.failed = true;
        take_marks_back(form);
        show_failure(form, header);
    } else if (VGA_ASSERT_TEXT(step != chain.steps.end(), "FALSE")) {
        form->run.defined |= header->opcode == chain.opcode;
        step->done(form, completion);
    }
    if (form->common.open && form->run.outstanding == 0) {
        end_run(form);
    }
}

void vga_chain_updated(VGA_COMPLETION* completion) {
    vga_form* form = waiting_form(completion);
    if (form == nullptr) {
        return;
    }
    VGA_CHAIN_RUN& run = form->run;
    // The last completion of the run ends it below, whichever verb it is.
    NB_LONG left = run.outstanding + 1;
    vga_process_update(completion, &form->common, true, run.update_node, &left);
    --run.outstanding;
    if (run.outstanding == 0) {
        end_run(form);
    }
}
