#include "ui/windows/delete_flow.h"

#include "common/alloc.h"
#include "common/assert.h"
#include "nof/vcb.h"
#include "shell/exit_record.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "ui/framework/dialog.h"

namespace {

constexpr int failure_message = 167;

struct RUN { // of one window
    NBA_QUEUE link;
    NB_HANDLE window;
    const VGA_DELETE_KIND* kind;
    void* owner;
    NB_BYTE type;
    bool to_all;      // the operator said Yes to all
    bool outstanding; // a verb of the current record is
    bool told;        // a refusal shows
    NB_LONG count;
    NB_LONG next;
    NB_HANDLE records[1]; // count of them
};

NBA_QUEUE runs;

void no_memory() {
    VGA_FATAL(VGA_EXIT_INTERNAL, 0);
}

RUN* run_of(NB_HANDLE window) {
    for (NBA_QUEUE* link = runs.next; link != nullptr && link != &runs; link = link->next) {
        auto* run = static_cast<RUN*>(link->owner);
        if (run->window == window) {
            return run;
        }
    }
    return nullptr;
}

void forget(RUN* run) {
    nba_remove_from_q(&run->link);
    vga_free(run);
}

vga_dialog* window_of(const RUN* run) {
    return static_cast<vga_dialog*>(nba_validate_handle(run->window));
}

void end(RUN* run) {
    vga_dialog* window = window_of(run);
    forget(run);
    vga_close_confirm_dialog(window);
}

// Calls use(viewer) for the selected rows from the top.
template <typename Use> void for_each_selected(vga_viewer_root* root, Use use) {
    const vga_viewer* any = vga_viewer_get_selected_viewer(root);
    if (any == nullptr) {
        return;
    }
    const NTL_AVL_TREE& rows = any->parent != nullptr ? any->parent->children : root->top_items;
    auto* row = rows.last != nullptr ? static_cast<vga_viewer*>(rows.last->self) : nullptr;
    for (; row != nullptr; row = static_cast<vga_viewer*>(ntl_avl_prev(&row->node))) {
        if (row->selected) {
            use(row);
        }
    }
}

// The selection as handles; null without memory.
RUN* new_run(const vga_dialog* window, vga_viewer_root* root, const VGA_DELETE_KIND& kind,
             void* owner) {
    const auto count = static_cast<std::size_t>(root->select_count);
    auto* run = static_cast<RUN*>(vga_alloc(sizeof(RUN) + count * sizeof(NB_HANDLE)));
    if (run == nullptr) {
        return nullptr;
    }
    run->window = window->handle;
    run->kind = &kind;
    run->owner = owner;
    for_each_selected(root, [&](const vga_viewer* row) {
        run->type = row->type;
        if (static_cast<std::size_t>(run->count) < count) {
            run->records[run->count++] = kind.target(row->type, row->data).handle;
        }
    });
    if (runs.next == nullptr) {
        nba_init_q(&runs);
    }
    nba_init_q(&run->link, run);
    nba_add_to_q_tail(&runs, &run->link, run);
    return run;
}

void* current_record(const RUN* run) {
    return nba_validate_handle(run->records[run->next - 1]);
}

void turn_to_next(RUN* run);

// Sends the next verb for the current record, or goes on with the next one.
void delete_current(RUN* run, NB_USHORT last) {
    void* record = current_record(run);
    const VGA_CALLBACK callback =
        run->kind->completed != nullptr ? run->kind->completed : vga_delete_completed;
    switch (run->kind->issue(run->type, record, run->owner, last, run->window, callback)) {
    case VGA_DELETE_STEP::SENT:
        run->outstanding = true;
        return;
    case VGA_DELETE_STEP::DONE:
        return turn_to_next(run);
    case VGA_DELETE_STEP::ENDED:
        return forget(run);
    case VGA_DELETE_STEP::FAILED:
        forget(run);
        no_memory();
    }
}

void refusal_read(vga_dialog* window, NB_ULONG record, NB_ULONG) {
    vga_close_modal_dialog(window);
    RUN* run = run_of(window->handle);
    if (run != nullptr && run->told && run->records[run->next - 1] == record) {
        run->told = false;
        turn_to_next(run);
    }
}

void ask(RUN* run, const void* record) {
    const bool several = run->count > 1;
    const VGA_DELETE_QUESTION question = run->kind->question(run->type, record, several);
    if (!question.refused && run->to_all) {
        return delete_current(run, 0);
    }
    char text[2 * VGA_MESSAGE_BUFFER_SIZE];
    run->kind->print(run->type, record, question.message, text);
    vga_dialog* window = window_of(run);
    const NB_HANDLE handle = run->records[run->next - 1];
    if (question.refused) {
        run->told = true;
        vga_close_confirm_dialog(window);
        vga_display_info_dialog(window, failure_message, question.help_tag, refusal_read, handle,
                                "s", text);
    } else {
        vga_display_confirm_dialog(window, failure_message, question.help_tag,
                                   run->kind->answered != nullptr ? run->kind->answered
                                                                  : vga_delete_answered,
                                   handle, several, several, "s", text);
    }
}

void turn_to_next(RUN* run) {
    while (run->next < run->count) {
        const NB_HANDLE handle = run->records[run->next++];
        const void* record = nba_validate_handle(handle);
        // What the operator took out of the selection meanwhile is left alone.
        if (record != nullptr && run->kind->target(run->type, record).row->selected) {
            return ask(run, record);
        }
    }
    end(run);
}

} // namespace

void vga_delete_selected(vga_dialog* window, vga_viewer_root* root, const VGA_DELETE_KIND& kind,
                         void* owner) {
    RUN* run = run_of(window->handle);
    if (root->select_count <= 0 || (run != nullptr && run->outstanding) ||
        !vga_may_change(window)) {
        return;
    }
    if (run != nullptr) {
        forget(run);
    }
    run = new_run(window, root, kind, owner);
    run != nullptr ? turn_to_next(run) : no_memory();
}

void vga_forget_deleting(const vga_dialog* window) {
    if (RUN* run = run_of(window->handle)) {
        forget(run);
    }
}

void vga_free_deleting() {
    while (runs.next != nullptr && !nba_q_empty(&runs)) {
        forget(static_cast<RUN*>(nba_get_q_head(&runs)));
    }
}

void vga_delete_answered(vga_dialog* window, NB_ULONG record, NB_ULONG answer) {
    RUN* run = run_of(window->handle);
    if (run == nullptr || run->outstanding || run->next == 0 ||
        run->records[run->next - 1] != record) {
        return vga_close_confirm_dialog(window);
    }
    if (nba_validate_handle(record) == nullptr) {
        answer = VGA_ANSWER_CANCEL;
    }
    switch (answer) {
    case VGA_ANSWER_YES:
    case VGA_ANSWER_YES_TO_ALL:
        run->to_all = answer == VGA_ANSWER_YES_TO_ALL;
        vga_close_confirm_dialog(window);
        return delete_current(run, 0);
    case VGA_ANSWER_NO:
        return turn_to_next(run);
    default:
        end(run);
    }
}

void vga_delete_completed(VGA_COMPLETION* completion) {
    RUN* run = run_of(static_cast<NB_HANDLE>(completion->corr));
    if (run == nullptr || !run->outstanding) {
        return;
    }
    run->outstanding = false;
    const VCB_HEADER* header = vcb_header(completion->vcb);
    if (header->primary_rc != NAP_OK) {
        vga_dialog* window = window_of(run);
        forget(run);
        return vga_show_verb_failure(window, completion->vcb);
    }
    run->kind->process(completion, run->owner);
    run = run_of(static_cast<NB_HANDLE>(completion->corr)); // unless the window went with it
    if (run != nullptr) {
        delete_current(run, header->opcode);
    }
}

bool vga_may_change(vga_dialog* window) {
    if (gvga_read_only) {
        vga_display_error_dialog(window, 607, "readonly", nullptr, 0, "s", "sna");
    }
    return !gvga_read_only;
}

void vga_show_verb_failure(vga_dialog* window, const void* vcb) {
    const auto* header = static_cast<const VCB_HEADER*>(vcb);
    const char* help_tag = nullptr;
    char* text = vga_get_verb_error_message(header->opcode, header->primary_rc,
                                            header->secondary_rc, &help_tag);
    if (text != nullptr) {
        vga_display_error_dialog(window, failure_message, help_tag, nullptr, 0, "s", text);
        vga_free(text);
    }
}
