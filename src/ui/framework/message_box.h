// Message boxes: one per dialog, for errors, information and confirmations. A message waits in its
// dialog's queue while the box shows another one, or while the operator holds a button or a menu.
#pragma once

#include "nba/nba.h"

#include <X11/Intrinsic.h>

struct vga_dialog;

enum VGA_MODAL_KIND : NB_ULONG { VGA_MODAL_ERROR = 0, VGA_MODAL_INFO = 1, VGA_MODAL_CONFIRM = 2 };
enum VGA_ANSWER : NB_ULONG {
    VGA_ANSWER_NONE = 0,
    VGA_ANSWER_YES = 1,
    VGA_ANSWER_YES_TO_ALL = 2,
    VGA_ANSWER_NO = 3,
    VGA_ANSWER_CANCEL = 4,
};

// Errors and information: called with arg, the answer being VGA_ANSWER_NONE, when the operator has
// read the message. Confirmations: the callback decides whether the box closes
// (vga_close_confirm_dialog) or asks the next question.
using VGA_MODAL_CALLBACK = void (*)(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);

struct vga_modal_dlg {
    NB_ULONG kind;
    NB_USHORT open;
    NB_ULONG arg; // for the callback, usually a record's handle
    VGA_MODAL_CALLBACK callback;
    const char* help_tag;
    NBA_QUEUE queue; // of waiting messages
    Widget shell, dialog, ok_to_all_button, no_button, cancel_button;
    NB_ULONG answer; // the last confirmation answer, 0 while none
    NB_ULONG
    closings; // how often the box closed: tells whether a callback closed the box it answers
};

// The catalogue message is formatted with the arguments; kinds and the arguments after it are those
// of vga_print_msg. callback may be null; help_tag must stay valid until the box closes. Nothing is
// shown for a parent that is null or not open.
void vga_display_error_dialog(vga_dialog* parent, int message, const char* help_tag,
                              VGA_MODAL_CALLBACK callback, NB_ULONG arg, const char* kinds, ...);
void vga_display_info_dialog(vga_dialog* parent, int message, const char* help_tag,
                             VGA_MODAL_CALLBACK callback, NB_ULONG arg, const char* kinds, ...);
// A confirmation replaces the confirmation that its dialog shows. Without a callback any answer
// closes it.
void vga_display_confirm_dialog(vga_dialog* parent, int message, const char* help_tag,
                                VGA_MODAL_CALLBACK callback, NB_ULONG arg, bool yes_to_all, bool no,
                                const char* kinds, ...);
// Forgets the last answer and closes the box when it shows a confirmation.
void vga_close_confirm_dialog(vga_dialog* dialog);
// Closes the box and shows the dialog's next message.
void vga_close_modal_dialog(vga_dialog* dialog);
// Show waiting messages, as far as nothing holds them back; those of a closed dialog are dropped.
void vga_check_modal_dialog_queue(vga_dialog* dialog);
void vga_check_modal_dialog_queues();
// Maps and raises every box that is showing.
void vga_check_open_modal_dialogs();
// For the dialog that closes: takes its box down and drops its waiting messages.
void vga_drop_messages(vga_dialog* dialog);

// Asks whether to end the program. Always false: the window stays until the answer comes.
bool vga_check_exit_ok();
void vga_exit_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
// A new text (vga_alloc) for a failed verb, freed by the caller; *help_tag gets its help tag. Null:
// exit code 1 is set.
char* vga_get_verb_error_message(NB_USHORT opcode, NB_USHORT primary, NB_ULONG secondary,
                                 const char** help_tag);
