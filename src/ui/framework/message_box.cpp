#include "ui/framework/message_box.h"

#include "common/alloc.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "shell/start.h"
#include "ui/framework/common_actions.h"
#include "ui/framework/dialog.h"
#include "ui/framework/texts.h"

#include <Xm/AtomMgr.h>
#include <Xm/DialogS.h>
#include <Xm/MessageB.h>
#include <Xm/Protocols.h>
#include <Xm/PushB.h>

namespace {

constexpr unsigned long raise_delay = 10; // ms
constexpr Dimension box_margin = 12;

struct MODAL_MESSAGE { // one message, shown or waiting
    NBA_QUEUE link;
    NB_ULONG kind;
    vga_dialog* dialog;
    XmString message; // owned
    const char* help_tag;
    VGA_MODAL_CALLBACK callback;
    NB_ULONG arg;
    NB_USHORT ok_to_all, no;
};

struct LOOK { // of the box, by kind
    int title, ok_label;
    unsigned char type; // for the toolkit's own symbol, while there is no other
    VGA_SYMBOL symbol;
};
constexpr LOOK looks[] = {
    {VGA_TEXT_ERROR_TITLE, VGA_TEXT_OK, XmDIALOG_ERROR, VGA_SYMBOL_ERROR},
    {VGA_TEXT_INFO_TITLE, VGA_TEXT_OK, XmDIALOG_INFORMATION, VGA_SYMBOL_INFO},
    {VGA_TEXT_CONFIRM_TITLE, VGA_TEXT_YES, XmDIALOG_QUESTION, VGA_SYMBOL_QUESTION},
};

XmString text_string(int message) {
    return XmStringCreateLocalized(const_cast<char*>(gvga_messages[message]));
}

void set_string(Widget widget, const char* resource, int message) {
    XmString text = text_string(message);
    XtVaSetValues(widget, resource, text, nullptr);
    XmStringFree(text);
}

void manage(Widget widget, bool managed) {
    if (managed) {
        XtManageChild(widget);
    } else {
        XtUnmanageChild(widget);
    }
}

NB_ULONG answer_of(const vga_modal_dlg& box, Widget button, int reason) {
    if (reason == XmCR_OK) {
        return VGA_ANSWER_YES;
    }
    if (reason == XmCR_CANCEL || reason == XmCR_WM_PROTOCOLS) {
        return VGA_ANSWER_CANCEL;
    }
    if (button == box.ok_to_all_button) {
        return VGA_ANSWER_YES_TO_ALL;
    }
    VGA_ASSERT_TEXT(button == box.no_button, "this_widget == parent->modal_dlg.no_button");
    return VGA_ANSWER_NO;
}

void vga_modal_dialog_cb(Widget widget, XtPointer client_data, XtPointer call_data) {
    const NB_HANDLE handle = vga_data_handle(client_data);
    auto* dialog = static_cast<vga_dialog*>(nba_validate_handle(handle));
    if (dialog == nullptr || !VGA_ASSERT_TEXT(dialog->modal_dlg.open, "parent->modal_dlg.open")) {
        return;
    }
    vga_modal_dlg& box = dialog->modal_dlg;
    const bool confirms = box.kind == VGA_MODAL_CONFIRM;
    const int reason = static_cast<XmAnyCallbackStruct*>(call_data)->reason;
    const NB_ULONG answer = confirms ? answer_of(box, widget, reason) : NB_ULONG{VGA_ANSWER_NONE};
    const VGA_MODAL_CALLBACK callback = box.callback;
    const NB_ULONG closings = box.closings;
    if (callback != nullptr) {
        callback(dialog, box.arg, answer);
    }
    if (nba_validate_handle(handle) != dialog || box.closings != closings) {
        return; // an answer kept for a box that is gone would answer the next question
    }
    if (confirms && callback != nullptr) {
        box.answer = answer;
    } else {
        vga_close_modal_dialog(dialog);
    }
}

Widget add_button(Widget box, const char* name, int label, XtPointer handle) {
    Widget button = XmCreatePushButton(box, const_cast<char*>(name), nullptr, 0);
    set_string(button, XmNlabelString, label);
    XtVaSetValues(button, XmNnavigationType, XmTAB_GROUP, nullptr);
    XtAddCallback(button, XmNactivateCallback, vga_modal_dialog_cb, handle);
    return button;
}

void make_box(vga_dialog* dialog) {
    vga_modal_dlg& modal = dialog->modal_dlg;
    const XtPointer handle = vga_handle_data(dialog->handle);
    modal.shell = XtVaCreatePopupShell("errorDialogShell", xmDialogShellWidgetClass, dialog->shell,
                                       XmNdeleteResponse, XmDO_NOTHING, XmNmwmDecorations,
                                       VGA_DIALOG_DECORATIONS, nullptr);
    XmString ok = text_string(VGA_TEXT_OK);
    XmString cancel = text_string(VGA_TEXT_CANCEL);
    XmString help = text_string(VGA_TEXT_HELP);
    modal.dialog = XtVaCreateWidget(
        "errorDialog", xmMessageBoxWidgetClass, modal.shell, XmNautoUnmanage, False, XmNdialogStyle,
        XmDIALOG_PRIMARY_APPLICATION_MODAL, XmNnoResize, True, XmNmarginWidth, box_margin,
        XmNmarginHeight, box_margin, XmNokLabelString, ok, XmNcancelLabelString, cancel,
        XmNhelpLabelString, help, nullptr);
    XmStringFree(ok);
    XmStringFree(cancel);
    XmStringFree(help);
    modal.ok_to_all_button =
        add_button(modal.dialog, "confirmOKToAllButton", VGA_TEXT_YES_TO_ALL, handle);
    modal.no_button = add_button(modal.dialog, "confirmNoButton", VGA_TEXT_NO, handle);
    modal.cancel_button = XmMessageBoxGetChild(modal.dialog, XmDIALOG_CANCEL_BUTTON);
    XtAddCallback(modal.dialog, XmNokCallback, vga_modal_dialog_cb, handle);
    XtAddCallback(modal.dialog, XmNcancelCallback, vga_modal_dialog_cb, handle);
    XtAddCallback(modal.dialog, XmNhelpCallback, vga_modal_dialog_help_cb, handle);
    XmAddWMProtocolCallback(modal.shell, gvga_close_atom, vga_modal_dialog_cb, handle);
    vga_set_tool_colours(modal.dialog);
}

void map_and_raise(Widget shell) {
    if (XtIsRealized(shell)) {
        XMapRaised(XtDisplay(shell), XtWindow(shell));
    }
}

// A box that was shown before keeps its width, whatever it has to show now.
void fit_to_message(Widget box) {
    XtWidgetGeometry wanted;
    XtQueryGeometry(box, nullptr, &wanted);
    XtVaSetValues(box, XmNwidth, wanted.width, XmNheight, wanted.height, nullptr);
}

// Shows a message now, in place of whatever the box shows. Frees the string.
void show(vga_dialog* dialog, const MODAL_MESSAGE& message) {
    vga_modal_dlg& box = dialog->modal_dlg;
    if (box.dialog == nullptr) {
        make_box(dialog);
    }
    const LOOK& look = looks[message.kind];
    const bool confirms = message.kind == VGA_MODAL_CONFIRM;
    box.kind = message.kind;
    set_string(box.dialog, XmNdialogTitle, look.title);
    set_string(box.dialog, XmNokLabelString, look.ok_label);
    XtVaSetValues(box.dialog, XmNdialogType, look.type, XmNmessageString, message.message, nullptr);
    if (gvga_symbols[look.symbol] != None) {
        XtVaSetValues(box.dialog, XmNsymbolPixmap, gvga_symbols[look.symbol], nullptr);
    }
    XmStringFree(message.message);
    manage(box.cancel_button, confirms);
    manage(box.ok_to_all_button, confirms && message.ok_to_all);
    manage(box.no_button, confirms && message.no);
    box.answer = VGA_ANSWER_NONE;
    box.arg = message.arg;
    box.callback = message.callback;
    box.help_tag = message.help_tag;
    vga_define_tabbing_order(box.dialog, nullptr);
    vga_raise_dialog(dialog);
    if (XtIsRealized(box.shell)) {
        XtRealizeWidget(box.dialog);
    }
    fit_to_message(box.dialog);
    XtManageChild(box.dialog);
    vga_set_window_icon(dialog, box.shell);
    box.open = 1;
}

// Shows a message, lets it wait, or drops it. Takes the string over.
void vga_display_modal_dialog(NB_ULONG kind, vga_dialog* dialog, XmString text,
                              const char* help_tag, VGA_MODAL_CALLBACK callback, NB_ULONG arg,
                              bool ok_to_all, bool no) {
    if (dialog == nullptr || !dialog->open) {
        XmStringFree(text);
        return;
    }
    const MODAL_MESSAGE message{.link = {},
                                .kind = kind,
                                .dialog = dialog,
                                .message = text,
                                .help_tag = help_tag,
                                .callback = callback,
                                .arg = arg,
                                .ok_to_all = ok_to_all,
                                .no = no};
    vga_modal_dlg& box = dialog->modal_dlg;
    const bool replaces = box.kind == VGA_MODAL_CONFIRM && kind == VGA_MODAL_CONFIRM;
    if (vga_firewall_clear() && (!box.open || replaces)) {
        show(dialog, message);
        return;
    }
    auto* entry = vga_new<MODAL_MESSAGE>();
    if (entry == nullptr) {
        XmStringFree(text);
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return;
    }
    *entry = message;
    nba_init_q(&entry->link, entry);
    nba_add_to_q_tail(&box.queue, &entry->link, entry);
}

XmString format(int message, const char* kinds, va_list arguments) {
    // A text may name an argument more than once.
    char text[4 * VGA_MESSAGE_BUFFER_SIZE];
    vga_print_msg_va(text, gvga_messages[message], kinds, arguments);
    return XmStringCreateLtoR(text, const_cast<char*>(XmFONTLIST_DEFAULT_TAG));
}

MODAL_MESSAGE* first_waiting(const vga_dialog* dialog) {
    return static_cast<MODAL_MESSAGE*>(nba_get_q_head(&dialog->modal_dlg.queue));
}

MODAL_MESSAGE take(MODAL_MESSAGE* entry) {
    const MODAL_MESSAGE message = *entry;
    nba_remove_from_q(&entry->link);
    vga_free(entry);
    return message;
}

void raise_boxes(XtPointer, XtIntervalId*) {
    vga_check_open_modal_dialogs();
}

} // namespace

void vga_display_error_dialog(vga_dialog* parent, int message, const char* help_tag,
                              VGA_MODAL_CALLBACK callback, NB_ULONG arg, const char* kinds, ...) {
    va_list arguments;
    va_start(arguments, kinds);
    vga_display_modal_dialog(VGA_MODAL_ERROR, parent, format(message, kinds, arguments), help_tag,
                             callback, arg, false, false);
    va_end(arguments);
}

void vga_display_info_dialog(vga_dialog* parent, int message, const char* help_tag,
                             VGA_MODAL_CALLBACK callback, NB_ULONG arg, const char* kinds, ...) {
    va_list arguments;
    va_start(arguments, kinds);
    vga_display_modal_dialog(VGA_MODAL_INFO, parent, format(message, kinds, arguments), help_tag,
                             callback, arg, false, false);
    va_end(arguments);
}

void vga_display_confirm_dialog(vga_dialog* parent, int message, const char* help_tag,
                                VGA_MODAL_CALLBACK callback, NB_ULONG arg, bool yes_to_all, bool no,
                                const char* kinds, ...) {
    va_list arguments;
    va_start(arguments, kinds);
    vga_display_modal_dialog(VGA_MODAL_CONFIRM, parent, format(message, kinds, arguments), help_tag,
                             callback, arg, yes_to_all, no);
    va_end(arguments);
}

void vga_close_confirm_dialog(vga_dialog* dialog) {
    dialog->modal_dlg.answer = VGA_ANSWER_NONE;
    if (dialog->modal_dlg.open && dialog->modal_dlg.kind == VGA_MODAL_CONFIRM) {
        vga_close_modal_dialog(dialog);
    }
}

void vga_close_modal_dialog(vga_dialog* dialog) {
    vga_modal_dlg& box = dialog->modal_dlg;
    if (!box.open) {
        return;
    }
    ++box.closings;
    XtUnmanageChild(box.dialog);
    XtUnrealizeWidget(box.dialog);
    box.open = 0;
    if (dialog->open) {
        vga_give_focus_back(dialog);
    }
    vga_check_modal_dialog_queue(dialog);
    if (first_waiting(dialog) == nullptr) {
        XtAppAddTimeOut(gvga_appcontext, raise_delay, raise_boxes, nullptr);
    }
}

void vga_check_modal_dialog_queue(vga_dialog* dialog) {
    while (MODAL_MESSAGE* entry = first_waiting(dialog)) {
        if (!dialog->open) {
            XmStringFree(take(entry).message);
        } else if (!dialog->modal_dlg.open && vga_firewall_clear()) {
            show(dialog, take(entry));
        } else {
            return;
        }
    }
}

void vga_check_modal_dialog_queues() {
    vga_for_each_open_dialog(vga_check_modal_dialog_queue);
}

// Another window may have come to lie over a box, which the operator has to answer first.
void vga_check_open_modal_dialogs() {
    vga_for_each_open_dialog([](vga_dialog* dialog) {
        if (dialog->modal_dlg.open) {
            vga_raise_dialog(dialog);
            map_and_raise(dialog->modal_dlg.shell);
        }
    });
}

void vga_drop_messages(vga_dialog* dialog) {
    vga_close_modal_dialog(dialog);
    dialog->modal_dlg.answer = VGA_ANSWER_NONE;
    vga_check_modal_dialog_queue(dialog);
}

bool vga_check_exit_ok() {
    vga_display_confirm_dialog(gvga_main_dialog, 205, "confirmexit", vga_exit_confirm_cb, 0, false,
                               false, "");
    return false;
}

void vga_exit_confirm_cb(vga_dialog* dialog, NB_ULONG, NB_ULONG answer) {
    vga_close_confirm_dialog(dialog);
    if (answer == VGA_ANSWER_YES && !vga_start_shutdown()) {
        VGA_FATAL(VGA_EXIT_ORDERLY, 0);
    }
}
