#include "shell/globals.h"
#include "shell/messages.h"
#include "ui/framework/dialog.h"
#include "ui/framework/texts.h"
#include "ui/framework/widget_tree.h"

#include <string>

namespace {

struct BUTTON { // how to find a button of a dialog
    const char* suffix;
    unsigned char child; // the same number in message and selection boxes
};
constexpr BUTTON buttons[] = {
    {"OKButton", XmDIALOG_OK_BUTTON},
    {"CancelButton", XmDIALOG_CANCEL_BUTTON},
    {"HelpButton", XmDIALOG_HELP_BUTTON},
};

void manage(Widget widget, bool managed) {
    if (widget == nullptr) {
        return;
    }
    if (managed) {
        XtManageChild(widget);
    } else {
        XtUnmanageChild(widget);
    }
}

// What OK does: a box calls its own list, any other dialog has a button of its own.
void set_ok(vga_dialog* dialog, int label, XtCallbackProc callback) {
    Widget ok = vga_dialog_button(dialog->widget, VGA_BUTTON_OK);
    if (ok == nullptr) {
        return;
    }
    vga_set_text(ok, XmNlabelString, gvga_messages[label]);
    const bool box = XmIsMessageBox(dialog->widget) || XmIsSelectionBox(dialog->widget);
    Widget owner = box ? dialog->widget : ok;
    const char* list = box ? XmNokCallback : XmNactivateCallback;
    XtRemoveAllCallbacks(owner, list);
    XtAddCallback(owner, list, callback, dialog);
}

void destroy_list_cb(Widget widget, XtPointer, XtPointer) {
    XtDestroyWidget(XtParent(widget));
}

void set_frame_shadow(Widget widget, unsigned char type) {
    XtVaSetValues(XtParent(widget), XmNshadowType, type, nullptr);
}

void exchange_arm_colour(Widget button) {
    Pixel arm = 0;
    Pixel background = 0;
    XtVaGetValues(button, XmNarmColor, &arm, XmNbackground, &background, nullptr);
    XtVaSetValues(button, XmNarmColor, background, XmNbackground, arm, nullptr);
}

template <typename Call> void call_activate(Widget widget, XEvent* event) {
    Call call{};
    call.reason = XmCR_ACTIVATE;
    call.event = event;
    XtCallCallbacks(widget, XmNactivateCallback, &call);
}

} // namespace

void vga_set_text(Widget widget, const char* resource, const char* text) {
    XmString string = XmStringCreateLocalized(const_cast<char*>(text));
    XtVaSetValues(widget, resource, string, nullptr);
    XmStringFree(string);
}

Widget vga_dialog_button(Widget top, VGA_BUTTON button) {
    const BUTTON& wanted = buttons[button];
    if (XmIsMessageBox(top)) {
        return XmMessageBoxGetChild(top, wanted.child);
    }
    if (XmIsSelectionBox(top)) {
        return XmSelectionBoxGetChild(top, wanted.child);
    }
    return vga_name_widget(top, wanted.suffix, XtName(top));
}

void vga_define_tabbing_order(Widget top, Widget extra) {
    const Widget order[] = {vga_dialog_button(top, VGA_BUTTON_OK), extra,
                            vga_dialog_button(top, VGA_BUTTON_CANCEL),
                            vga_dialog_button(top, VGA_BUTTON_HELP)};
    for (Widget button : order) {
        if (button != nullptr) {
            XtVaSetValues(button, XmNnavigationType, XmNONE, nullptr);
        }
    }
    // Not exclusive ones, which would take the dialog's fields out of the order.
    for (Widget button : order) {
        if (button != nullptr) {
            XtVaSetValues(button, XmNnavigationType, XmSTICKY_TAB_GROUP, XmNtraversalOn, True,
                          nullptr);
        }
    }
}

void vga_check_apply_widget(Widget widget, const char* prefix) {
    if (!gvga_supported[VGA_SUPPORT_APPLY]) {
        manage(vga_name_widget(widget, "ApplyButton", prefix), false);
    }
}

void vga_dialog_disallow_edit(vga_dialog* dialog, Widget apply, XtCallbackProc) {
    set_ok(dialog, VGA_TEXT_CLOSE, vga_close_cb);
    manage(vga_dialog_button(dialog->widget, VGA_BUTTON_CANCEL), false);
    manage(apply, false);
}

void vga_dialog_allow_edit(vga_dialog* dialog, Widget apply, XtCallbackProc ok_callback) {
    set_ok(dialog, VGA_TEXT_OK, ok_callback);
    manage(vga_dialog_button(dialog->widget, VGA_BUTTON_CANCEL), true);
    manage(apply, gvga_supported[VGA_SUPPORT_APPLY]);
}

void vga_dialog_sensitive(vga_dialog* dialog, Widget apply, bool sensitive) {
    for (Widget button : {vga_dialog_button(dialog->widget, VGA_BUTTON_OK), apply}) {
        if (button != nullptr) {
            vga_set_sensitive(button, sensitive);
        }
    }
}

Widget vga_get_popup_list(Widget widget, XtCallbackProc ok_callback, XtPointer client_data,
                          bool with_items) {
    Position x = 0;
    Position y = 0;
    XtTranslateCoords(widget, 0, 0, &x, &y);
    Arg arguments[4];
    XtSetArg(arguments[0], XmNdefaultPosition, False);
    XtSetArg(arguments[1], XmNx, x);
    XtSetArg(arguments[2], XmNy, y);
    XtSetArg(arguments[3], XmNdialogStyle, XmDIALOG_PRIMARY_APPLICATION_MODAL);
    static char name[] = "popupBoard";
    Widget board = with_items ? XmCreateSelectionDialog(widget, name, arguments, 4)
                              : XmCreatePromptDialog(widget, name, arguments, 4);
    vga_set_text(board, XmNdialogTitle, gvga_messages[VGA_TEXT_LIST_TITLE]);
    vga_set_text(board, XmNselectionLabelString, gvga_messages[VGA_TEXT_LIST_TITLE]);
    vga_set_text(board, XmNokLabelString, gvga_messages[VGA_TEXT_OK]);
    vga_set_text(board, XmNcancelLabelString, gvga_messages[VGA_TEXT_CANCEL]);
    manage(XmSelectionBoxGetChild(board, XmDIALOG_HELP_BUTTON), false);
    manage(XmSelectionBoxGetChild(board, XmDIALOG_APPLY_BUTTON), false);
    if (with_items) {
        XtVaSetValues(board, XmNmustMatch, True, nullptr);
        manage(XmSelectionBoxGetChild(board, XmDIALOG_LIST_LABEL), false);
        manage(XmSelectionBoxGetChild(board, XmDIALOG_SELECTION_LABEL), false);
    }
    vga_set_tool_colours(board);
    XtAddCallback(board, XmNokCallback, ok_callback, client_data);
    XtAddCallback(board, XmNunmapCallback, destroy_list_cb, nullptr);
    return board;
}

void vga_button_push(Widget widget, XtPointer, XtPointer) {
    set_frame_shadow(widget, XmSHADOW_IN);
}

void vga_button_pop(Widget widget, XtPointer, XtPointer) {
    set_frame_shadow(widget, XmSHADOW_OUT);
}

void vga_arm_widget(Widget widget, XtPointer, XtPointer) {
    exchange_arm_colour(widget);
}

void vga_disarm_widget(Widget widget, XtPointer, XtPointer) {
    exchange_arm_colour(widget);
}

void vga_activate_action(Widget widget, XEvent* event, String*, Cardinal*) {
    if (!XtIsSensitive(widget)) {
        return;
    }
    if (XmIsPushButton(widget) || XmIsPushButtonGadget(widget)) {
        call_activate<XmPushButtonCallbackStruct>(widget, event);
    } else if (XmIsDrawnButton(widget)) {
        call_activate<XmDrawnButtonCallbackStruct>(widget, event);
    } else if (XmIsArrowButton(widget) || XmIsArrowButtonGadget(widget)) {
        call_activate<XmArrowButtonCallbackStruct>(widget, event);
    } else if (XmIsToggleButton(widget) || XmIsToggleButtonGadget(widget)) {
        XmToggleButtonSetState(widget, !XmToggleButtonGetState(widget), True);
    }
}
