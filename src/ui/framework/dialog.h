// The dialog framework: the descriptor that every window and dialog starts with, and its life from
// get to close. A descriptor stays for the run: closing frees it for the next get with that parent.
#pragma once

#include "nba/nba.h"
#include "ui/framework/dialog_table.h"
#include "ui/framework/firewall.h"
#include "ui/framework/helpers.h"
#include "ui/framework/message_box.h"
#include "ui/framework/uid.h"

#include <X11/Intrinsic.h>
#include <Xm/Xm.h>

#include <cstdint>

struct vga_dialog {     // the common part; every dialog's own descriptor begins with it, as member
                        // `common`
    NBA_QUEUE type_lqe; // in its row's list of instances
    NBA_QUEUE sibling_lqe;       // in its parent's children_root_lqe
    NBA_QUEUE children_root_lqe; // open child dialogs
    NB_HANDLE handle;
    NB_USHORT open; // between get and close
    NB_USHORT dialog_id;
    vga_dialog* parent;
    void* parent_item; // the record the dialog works on, or none
    Widget shell;
    Widget widget; // the fetched top widget; its XmNuserData is this descriptor
    vga_modal_dlg modal_dlg;
};

// Finds or makes a dialog that is not open; the caller fills it and calls vga_display_dialog.
// parent and parent_item may be null. False when it cannot be made: the operator is told (error
// 208), or, without memory, exit code 1 is set.
bool vga_get_dialog(NB_USHORT dialog_id, vga_dialog* parent, void* parent_item,
                    vga_dialog** dialog);
void vga_display_dialog(vga_dialog* dialog);
// With the windows it belongs to.
void vga_raise_dialog(vga_dialog* dialog);
// Raises a dialog that the operator asks for, and gives it the keyboard as well.
void vga_go_to_dialog(vga_dialog* dialog);
void vga_raise_sys_window(Widget, XtPointer, XtPointer);
// Gives a descriptor back that was never displayed. It must have no open children.
void vga_release_dialog(vga_dialog* dialog);
// Closes the children and then, with close_itself, the dialog. forced: its close procedure is not
// to refuse. Closing forgets the verbs whose correlator is the dialog's handle. False: a close
// procedure refused, and the dialog is still open.
bool vga_close_children(vga_dialog* dialog, bool close_itself, bool forced);
// Close and Cancel buttons, and the window manager's close (client_data: the descriptor).
void vga_close_cb(Widget widget, XtPointer client_data, XtPointer call_data);
// Gives the keyboard to the dialog's own choice of widget.
void vga_give_focus_back(vga_dialog* dialog);
// Tells the operator that a dialog cannot be shown (error 208) and logs its name. parent null: on
// the main dialog.
void vga_report_missing_dialog(vga_dialog* parent, const char* uid_name);
// Frees every descriptor of every row, for the end of the program.
void vga_free_dialogs();

// Callbacks and timers carry handles in place of pointers.
inline XtPointer vga_handle_data(NB_HANDLE handle) {
    return reinterpret_cast<XtPointer>(static_cast<std::uintptr_t>(handle));
}
inline NB_HANDLE vga_data_handle(XtPointer data) {
    return static_cast<NB_HANDLE>(reinterpret_cast<std::uintptr_t>(data));
}

// Calls use(dialog) for every descriptor that is open. use may open and close dialogs.
template <typename Use> void vga_for_each_open_dialog(Use use) {
    for (NBA_QUEUE& instances : gvga_uid_instances) {
        for (NBA_QUEUE* link = instances.next; link != nullptr && link != &instances;
             link = link->next) {
            auto* dialog = static_cast<vga_dialog*>(link->owner);
            if (dialog->open) {
                use(dialog);
            }
        }
    }
}
// The descriptor of a kind that is open (the last one), or null.
inline vga_dialog* vga_open_instance(NB_USHORT dialog_id) {
    vga_dialog* found = nullptr;
    vga_for_each_open_dialog(
        [&](vga_dialog* dialog) { found = dialog->dialog_id == dialog_id ? dialog : found; });
    return found;
}
