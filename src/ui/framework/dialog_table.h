// The dialog table: one row per window and dialog, and the callback names that all forms share.
#pragma once

#include "nba/nba.h"
#include "ui/framework/uid.h"

#include <X11/Intrinsic.h>

#include <array>
#include <cstddef>

struct vga_dialog;
struct vga_node;

struct VGA_NAMED_CALLBACK {
    const char* name;
    XtCallbackProc callback;
};

enum VGA_DIALOG_KIND : NB_ULONG {
    VGA_KIND_WINDOW = 0,
    VGA_KIND_DIALOG = 1,
    VGA_KIND_SUB_DIALOG = 2, // application modal
};

enum VGA_OPEN : NB_BYTE { // why a dialog is opened
    VGA_OPEN_ADD,         // to add to the record
    VGA_OPEN_PROPERTIES,  // to look at and change the record
    VGA_OPEN_COPY,        // to add another like the record
};

struct VGA_UID_DESC { // a row of the dialog table
    NB_USHORT dialog_id;
    const char* uid_name; // of the widget to fetch; at most 13 characters
    bool (*get_widgets)(
        vga_dialog* dialog); // null: no form yet; getting the dialog fails with error 208
    bool (*close_proc)(vga_dialog* dialog, bool forced); // false: stay open
    void (*delete_items)(Widget, XtPointer, XtPointer);
    void (*properties)(Widget, XtPointer, XtPointer);
    void (*add_items)(Widget, XtPointer, XtPointer);
    const VGA_NAMED_CALLBACK* callbacks;
    NB_USHORT callback_count;
    XtActionsRec* actions;
    NB_USHORT action_count;
    NB_ULONG kind;  // VGA_DIALOG_KIND
    NB_USHORT size; // of the descriptor
    // The widget that gets the keyboard back when a child or message box of the dialog closes;
    // none: the toolkit decides.
    Widget (*focus_widget)(vga_dialog* dialog) = nullptr;
    // Opens the dialog for a record, or raises it; none: what there is is shown as it is.
    void (*open)(vga_dialog* parent, void* record, VGA_OPEN how) = nullptr;
};
extern const std::array<VGA_UID_DESC, VGA_UID_MAX + 1> gvga_uid_desc;
// Every descriptor ever made for a row, open or closed.
extern NBA_QUEUE gvga_uid_instances[VGA_UID_MAX + 1];

inline constexpr std::size_t VGA_COMMON_CALLBACK_COUNT = 52;
extern const VGA_NAMED_CALLBACK gvga_common_callbacks[VGA_COMMON_CALLBACK_COUNT];
// Makes names known to the UID loader, so that widget trees can refer to them.
void vga_register_callbacks(const VGA_NAMED_CALLBACK* callbacks, std::size_t count);
void vga_register_common_callbacks();

// Opens the dialog of a row for a record. Who calls it need not know the dialog.
void vga_open_dialog(NB_USHORT dialog_id, vga_dialog* parent, void* record, VGA_OPEN how);
// Shows a node's window, opening it when there is none.
void vga_show_node_window(vga_node* node);
