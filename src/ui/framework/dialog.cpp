#include "ui/framework/dialog.h"

#include "common/alloc.h"
#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "shell/uid_file.h"
#include "shell/verb_queue.h"
#include "ui/framework/common_actions.h"

#include <Mrm/MrmPublic.h>
#include <Xm/AtomMgr.h>
#include <Xm/DialogS.h>
#include <Xm/Protocols.h>

#include <cstdlib>
#include <string>

namespace {

enum MISSING : int { NO_WIDGET_TREE = 1, NO_WIDGETS = 2 }; // subcodes of problem 0x40020007

const VGA_UID_DESC& row_of(const vga_dialog* dialog) {
    return gvga_uid_desc[dialog->dialog_id];
}

void report_missing(vga_dialog* parent, const char* uid_name, MISSING cause) {
    nba_pd_print_problem(0x40020007, cause, "s", uid_name);
    if (parent == nullptr) {
        parent = gvga_main_dialog;
    }
    if (parent != nullptr) {
        vga_display_error_dialog(parent, 208, "dlgfail", nullptr, 0, "");
    } else {
        XtAppWarning(gvga_appcontext, gvga_messages[208]);
    }
}

vga_dialog* find_closed(NB_USHORT dialog_id, const vga_dialog* parent) {
    NBA_QUEUE& instances = gvga_uid_instances[dialog_id];
    if (instances.next == nullptr) {
        nba_init_q(&instances);
    }
    for (NBA_QUEUE* link = instances.next; link != &instances; link = link->next) {
        auto* dialog = static_cast<vga_dialog*>(link->owner);
        VGA_ASSERT(dialog->dialog_id == dialog_id);
        if (!dialog->open && (dialog->parent == nullptr || dialog->parent == parent)) {
            return dialog;
        }
    }
    return nullptr;
}

// What the UID file may name for this row; the loader keeps it, so once is enough.
void register_names(const VGA_UID_DESC& row) {
    static char activate_name[] = "vga_activate_action";
    static XtActionsRec common_actions[] = {{activate_name, vga_activate_action}};
    XtAppAddActions(gvga_appcontext, common_actions, XtNumber(common_actions));
    if (row.callback_count > 0) {
        vga_register_callbacks(row.callbacks, row.callback_count);
    }
    if (row.action_count > 0) {
        XtAppAddActions(gvga_appcontext, row.actions, row.action_count);
    }
}

bool uses_toplevel(NB_USHORT dialog_id) {
    return dialog_id == VGA_UID_SYSTEM_WINDOW ||
           (dialog_id == VGA_UID_NODE_WINDOW && !gvga_supported[VGA_SUPPORT_CLIENT_SERVER]);
}

Widget make_shell(const VGA_UID_DESC& row, const vga_dialog* parent) {
    if (uses_toplevel(row.dialog_id)) {
        return gvga_toplevel;
    }
    if (row.kind == VGA_KIND_WINDOW) {
        return XtVaAppCreateShell(XtName(gvga_toplevel), "Tessaly", applicationShellWidgetClass,
                                  gvga_display, XmNdeleteResponse, XmDO_NOTHING, nullptr);
    }
    return XtVaCreatePopupShell(
        row.uid_name, xmDialogShellWidgetClass, parent != nullptr ? parent->shell : gvga_toplevel,
        XmNdeleteResponse, XmDO_NOTHING, XmNmwmDecorations, VGA_DIALOG_DECORATIONS, nullptr);
}

void destroy_shell(Widget shell, Widget widget) {
    if (shell != gvga_toplevel) {
        XtDestroyWidget(shell);
        return;
    }
    gvga_first_dialog = nullptr;
    if (widget != nullptr) {
        XtDestroyWidget(widget);
    }
}

Widget fetch_widget(const VGA_UID_DESC& row, Widget shell) {
    Widget widget = nullptr;
    MrmType type;
    const XtErrorHandler handler = XtAppSetWarningHandler(gvga_appcontext, vga_no_warning);
    const Cardinal status =
        MrmFetchWidget(gvga_uid_hierarchy, const_cast<char*>(row.uid_name), shell, &widget, &type);
    XtAppSetWarningHandler(gvga_appcontext, handler);
    return status == MrmSUCCESS ? widget : nullptr;
}

// The widget tree of a row, or null with nothing left behind.
Widget make_widgets(const VGA_UID_DESC& row, const vga_dialog* parent, Widget* shell) {
    if (gvga_uid_hierarchy == nullptr) {
        return nullptr;
    }
    *shell = make_shell(row, parent);
    Widget widget = fetch_widget(row, *shell);
    if (widget == nullptr) {
        destroy_shell(*shell, nullptr);
        return nullptr;
    }
    if (row.kind == VGA_KIND_WINDOW) {
        XtManageChild(widget);
    } else if (row.kind == VGA_KIND_SUB_DIALOG) {
        XtVaSetValues(widget, XmNdialogStyle, XmDIALOG_PRIMARY_APPLICATION_MODAL, nullptr);
    }
    XtAddCallback(widget, XmNhelpCallback, vga_help_cb, const_cast<char*>(row.uid_name));
    return widget;
}

void free_descriptor(vga_dialog* dialog) {
    nba_destroy_handle(dialog->handle);
    vga_free(dialog);
}

vga_dialog* allocate_descriptor(const VGA_UID_DESC& row) {
    auto* dialog = static_cast<vga_dialog*>(vga_alloc(row.size));
    if (dialog == nullptr) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return nullptr;
    }
    dialog->handle = nba_create_handle(dialog);
    if (dialog->handle == 0) {
        vga_free(dialog);
        return nullptr;
    }
    dialog->dialog_id = row.dialog_id;
    nba_init_q(&dialog->type_lqe, dialog);
    nba_init_q(&dialog->sibling_lqe, dialog);
    nba_init_q(&dialog->children_root_lqe);
    nba_init_q(&dialog->modal_dlg.queue);
    return dialog;
}

void dress(vga_dialog* dialog) {
    vga_set_tool_colours(dialog->widget);
    if (MB_CUR_MAX > 1) {
        vga_multi_byte_resize(dialog->widget);
    }
    vga_define_tabbing_order(dialog->widget, nullptr);
    if (row_of(dialog).kind != VGA_KIND_WINDOW) {
        vga_fit_fields(dialog->widget);
        vga_install_mnemonics(dialog->widget);
    }
}

vga_dialog* make_dialog(NB_USHORT dialog_id, vga_dialog* parent) {
    const VGA_UID_DESC& row = gvga_uid_desc[dialog_id];
    if (row.get_widgets == nullptr) {
        report_missing(parent, row.uid_name, NO_WIDGET_TREE);
        return nullptr;
    }
    if (nba_q_empty(&gvga_uid_instances[dialog_id])) {
        register_names(row);
    }
    vga_dialog* dialog = allocate_descriptor(row);
    if (dialog == nullptr) {
        return nullptr;
    }
    dialog->widget = make_widgets(row, parent, &dialog->shell);
    if (dialog->widget == nullptr) {
        report_missing(parent, row.uid_name, NO_WIDGET_TREE);
        free_descriptor(dialog);
        return nullptr;
    }
    if (dialog->shell == gvga_toplevel) {
        gvga_first_dialog = dialog;
    }
    if (!row.get_widgets(dialog)) {
        destroy_shell(dialog->shell, dialog->widget);
        free_descriptor(dialog);
        report_missing(parent, row.uid_name, NO_WIDGETS);
        return nullptr;
    }
    dress(dialog);
    nba_add_to_q_head(&gvga_uid_instances[dialog_id], &dialog->type_lqe, dialog);
    XmAddWMProtocolCallback(dialog->shell, gvga_close_atom, vga_close_cb, dialog);
    vga_add_modal_popup_firewall(dialog->widget);
    return dialog;
}

// In display-names mode a title tells which dialog it is.
void name_title(const vga_dialog* dialog) {
    char* title = nullptr;
    XtVaGetValues(dialog->shell, XmNtitle, &title, nullptr);
    const std::string prefix = std::string(row_of(dialog).uid_name) + ": ";
    const std::string text = title != nullptr ? title : "";
    if (!text.starts_with(prefix)) {
        XtVaSetValues(dialog->shell, XmNtitle, (prefix + text).c_str(), nullptr);
    }
}

bool is_shown(const vga_dialog* dialog) {
    return XtIsRealized(dialog->shell) &&
           (row_of(dialog).kind == VGA_KIND_WINDOW || XtIsManaged(dialog->widget));
}

void hide(vga_dialog* dialog) {
    if (row_of(dialog).kind == VGA_KIND_WINDOW) {
        XtPopdown(dialog->shell);
        return;
    }
    XtUnmanageChild(dialog->widget);
    XtUnrealizeWidget(dialog->widget);
}

// Makes a descriptor free for the next get.
void forget_use(vga_dialog* dialog) {
    VGA_ASSERT_TEXT(nba_q_empty(&dialog->children_root_lqe),
                    "NB_EMPTY_LIST(dialog_ptr->children_root_lqe)");
    nba_remove_from_q(&dialog->sibling_lqe);
    if (row_of(dialog).kind == VGA_KIND_WINDOW) {
        dialog->parent = nullptr; // its shell belongs to no other
    }
    dialog->parent_item = nullptr;
    dialog->open = 0;
}

} // namespace

NBA_QUEUE gvga_uid_instances[VGA_UID_MAX + 1];

void vga_report_missing_dialog(vga_dialog* parent, const char* uid_name) {
    report_missing(parent, uid_name, NO_WIDGET_TREE);
}

bool vga_get_dialog(NB_USHORT dialog_id, vga_dialog* parent, void* parent_item,
                    vga_dialog** dialog) {
    *dialog = nullptr;
    if (!VGA_ASSERT(dialog_id <= VGA_UID_MAX)) {
        return false;
    }
    vga_display_hourglass(true);
    vga_dialog* found = find_closed(dialog_id, parent);
    if (found == nullptr) {
        found = make_dialog(dialog_id, parent);
    }
    if (found == nullptr) {
        vga_display_hourglass(false);
        return false;
    }
    found->parent = parent;
    if (parent != nullptr) {
        nba_add_to_q_tail(&parent->children_root_lqe, &found->sibling_lqe, found);
    }
    found->open = 1;
    found->parent_item = parent_item;
    if (XtIsRealized(found->shell)) {
        XtRealizeWidget(found->widget);
    }
    XtVaSetValues(found->widget, XmNuserData, found, nullptr);
    *dialog = found;
    return true;
}

void vga_open_dialog(NB_USHORT dialog_id, vga_dialog* parent, void* record, VGA_OPEN how) {
    vga_dialog* dialog = nullptr;
    if (dialog_id <= VGA_UID_MAX && gvga_uid_desc[dialog_id].open != nullptr) {
        gvga_uid_desc[dialog_id].open(parent, record, how);
    } else if (vga_get_dialog(dialog_id, parent, record, &dialog)) {
        vga_display_dialog(dialog);
    }
}

void vga_display_dialog(vga_dialog* dialog) {
    if (gvga_display_names) {
        name_title(dialog);
    }
    if (row_of(dialog).kind == VGA_KIND_WINDOW) {
        XtPopup(dialog->shell, XtGrabNone);
    } else {
        XtManageChild(dialog->widget);
    }
    vga_set_window_icon(dialog, dialog->shell);
    vga_display_hourglass(false);
}

void vga_raise_dialog(vga_dialog* dialog) {
    if (row_of(dialog).kind != VGA_KIND_WINDOW && dialog->parent != nullptr) {
        vga_raise_dialog(dialog->parent);
    }
    if (is_shown(dialog)) {
        XMapRaised(XtDisplay(dialog->shell), XtWindow(dialog->shell));
    }
}

void vga_go_to_dialog(vga_dialog* dialog) {
    vga_raise_dialog(dialog);
    if (!is_shown(dialog)) {
        return;
    }
    Display* display = XtDisplay(dialog->shell);
    const Window window = XtWindow(dialog->shell);
    XWindowAttributes attributes;
    // The window manager gives an icon that it opens the keyboard itself.
    if (XGetWindowAttributes(display, window, &attributes) != 0 &&
        attributes.map_state == IsViewable) {
        XSetInputFocus(display, window, RevertToParent, XtLastTimestampProcessed(display));
    }
}

void vga_raise_sys_window(Widget, XtPointer, XtPointer) {
    if (gvga_main_dialog != nullptr) {
        vga_go_to_dialog(gvga_main_dialog);
    }
}

void vga_release_dialog(vga_dialog* dialog) {
    forget_use(dialog);
    vga_drop_messages(dialog);
    vga_display_hourglass(false);
}

void vga_give_focus_back(vga_dialog* dialog) {
    if (dialog == nullptr || row_of(dialog).focus_widget == nullptr) {
        return;
    }
    if (Widget widget = row_of(dialog).focus_widget(dialog)) {
        XmProcessTraversal(widget, XmTRAVERSE_CURRENT);
    }
}

bool vga_close_children(vga_dialog* dialog, bool close_itself, bool forced) {
    if (dialog == nullptr || !dialog->open || gvga_exit_code != 0) {
        return true; // at the end of the run nothing is taken down any more
    }
    while (auto* child = static_cast<vga_dialog*>(nba_get_q_head(&dialog->children_root_lqe))) {
        if (!vga_close_children(child, true, true)) {
            return false;
        }
        if (gvga_exit_code != 0) {
            return true;
        }
    }
    if (!close_itself) {
        return true;
    }
    const VGA_UID_DESC& row = row_of(dialog);
    if (row.close_proc != nullptr && !row.close_proc(dialog, forced)) {
        return false;
    }
    // The descriptor and its handle are used again: a late answer would act on the next record
    // shown.
    vga_purge_verb_queue(0, 0, nullptr, dialog->handle, nullptr);
    vga_dialog* const parent = dialog->parent;
    forget_use(dialog);
    vga_drop_messages(dialog);
    hide(dialog);
    vga_give_focus_back(parent);
    if (parent != nullptr) {
        vga_raise_dialog(parent);
    }
    return true;
}

void vga_close_cb(Widget widget, XtPointer client_data, XtPointer call_data) {
    const auto* call = static_cast<XmAnyCallbackStruct*>(call_data);
    auto* dialog = call->reason == XmCR_WM_PROTOCOLS ? static_cast<vga_dialog*>(client_data)
                                                     : vga_dialog_of(widget);
    if (dialog == nullptr || !dialog->open) {
        return;
    }
    if (dialog == gvga_main_dialog) {
        vga_check_exit_ok();
    } else {
        vga_close_children(dialog, true, false);
    }
}

void vga_free_dialogs() {
    for (NBA_QUEUE& instances : gvga_uid_instances) {
        if (instances.next == nullptr) {
            continue;
        }
        while (auto* dialog = static_cast<vga_dialog*>(nba_get_q_head(&instances))) {
            nba_remove_from_q(&dialog->type_lqe);
            dialog->open = 0;
            vga_drop_messages(dialog);
            free_descriptor(dialog);
        }
    }
    gvga_first_dialog = nullptr;
    gvga_main_dialog = nullptr;
}
