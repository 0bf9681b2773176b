// Deleting the selected rows of a list: each is refused, or asked about, and deleted by one or more
// verbs, before the next one's turn comes. A window has at most one such flow at a time. Between
// the steps only handles are kept: a record that goes meanwhile takes its turn with it.
#pragma once

#include "shell/verb_queue.h"
#include "ui/framework/message_box.h"
#include "ui/viewer/viewer.h"

struct vga_dialog;

struct VGA_DELETE_QUESTION {
    bool refused; // an information instead of a confirmation
    int message;
    const char* help_tag;
};

enum class VGA_DELETE_STEP {
    SENT,
    DONE,   // nothing more is to be sent for this record
    ENDED,  // none can be deleted any more; the operator was told
    FAILED, // no memory, or the verb could not be queued
};

struct VGA_DELETE_TARGET { // of a record
    NB_HANDLE handle;
    const vga_viewer* row;
};
template <typename RECORD> VGA_DELETE_TARGET vga_delete_target(const void* record) {
    const auto* own = static_cast<const RECORD*>(record);
    return {own->handle, &own->viewer};
}

struct VGA_DELETE_KIND { // how the records of a list's rows are deleted
    VGA_DELETE_TARGET (*target)(NB_BYTE type, const void* record);
    // What is said before; several: other rows are selected too.
    VGA_DELETE_QUESTION (*question)(NB_BYTE type, const void* record, bool several);
    // The message with the record's names, into text (VGA_MESSAGE_BUFFER_SIZE * 2).
    void (*print)(NB_BYTE type, const void* record, int message, char* text);
    // Sends the next verb for a record. last: opcode of the one before, 0 at first. record: null
    // once that verb has taken it out of the store. owner: whose list it is.
    VGA_DELETE_STEP(*issue)
    (NB_BYTE type, void* record, void* owner, NB_USHORT last, NB_ULONG corr, VGA_CALLBACK callback);
    // Takes a verb that succeeded into the store.
    void (*process)(VGA_COMPLETION* completion, void* owner);
    VGA_MODAL_CALLBACK answered = nullptr; // null: vga_delete_answered
    VGA_CALLBACK completed = nullptr;      // null: vga_delete_completed
};

// Starts with the selected rows of a list, in the order in which they stand. Nothing happens while
// a verb of the window's last flow is outstanding; a flow that only waits for an answer gives way.
// Read-only the operator is told so (error 607). owner: the node or the system, whose list it is.
void vga_delete_selected(vga_dialog* window, vga_viewer_root* root, const VGA_DELETE_KIND& kind,
                         void* owner);
// For the window that closes: its flow is forgotten.
void vga_forget_deleting(const vga_dialog* window);
// Frees what the flows of all windows hold, for the end of the program.
void vga_free_deleting();

// Answer of a confirmation, and completion of a delete verb.
void vga_delete_answered(vga_dialog* window, NB_ULONG record, NB_ULONG answer);
void vga_delete_completed(VGA_COMPLETION* completion);

// False when the operator was told (error 607) that this program may only look.
bool vga_may_change(vga_dialog* window);
// Error 167 with the text of a verb that failed.
void vga_show_verb_failure(vga_dialog* window, const void* vcb);
