#include "ui/framework/firewall.h"

#include "shell/globals.h"
#include "ui/framework/message_box.h"
#include "ui/framework/widget_tree.h"

namespace {

void check_queues(XtPointer, XtIntervalId*) {
    vga_check_modal_dialog_queues();
}

void hold(Widget widget) {
    gvga_modal_firewall_widget = widget;
}

void let_go(Widget widget) {
    if (gvga_modal_firewall_widget == widget) {
        gvga_modal_firewall_widget = nullptr;
        vga_check_firewall();
    }
}

void menu_mapped_cb(Widget, XtPointer, XtPointer) {
    ++gvga_modal_firewall_count;
}

void menu_unmapped_cb(Widget, XtPointer, XtPointer) {
    if (gvga_modal_firewall_count > 0) {
        --gvga_modal_firewall_count;
    }
    vga_check_firewall();
}

void arm_cb(Widget widget, XtPointer, XtPointer) {
    hold(widget);
}
void disarm_cb(Widget widget, XtPointer, XtPointer) {
    let_go(widget);
}

void button_event(Widget widget, XtPointer, XEvent* event, Boolean*) {
    if (event->type == ButtonPress) {
        hold(widget);
    } else {
        let_go(widget);
    }
}

bool has_callback(Widget widget, const char* list, XtCallbackProc callback) {
    XtCallbackList callbacks = nullptr;
    XtVaGetValues(widget, list, &callbacks, nullptr);
    for (; callbacks != nullptr && callbacks->callback != nullptr; ++callbacks) {
        if (callbacks->callback == callback) {
            return true;
        }
    }
    return false;
}

void add_pair(Widget widget, const char* begin_list, XtCallbackProc begin, const char* end_list,
              XtCallbackProc end) {
    if (!has_callback(widget, begin_list, begin)) {
        XtAddCallback(widget, begin_list, begin, nullptr);
        XtAddCallback(widget, end_list, end, nullptr);
    }
}

bool is_menu_pane(Widget widget) {
    if (!XmIsRowColumn(widget)) {
        return false;
    }
    const unsigned char type = vga_row_column_type(widget);
    return type == XmMENU_PULLDOWN || type == XmMENU_POPUP;
}

bool is_button(Widget widget) {
    return XmIsPushButton(widget) || XmIsPushButtonGadget(widget) || XmIsToggleButton(widget) ||
           XmIsToggleButtonGadget(widget) || XmIsArrowButton(widget) ||
           XmIsArrowButtonGadget(widget) || XmIsDrawnButton(widget);
}

void add_handlers(Widget widget) {
    if (is_menu_pane(widget)) {
        add_pair(widget, XmNmapCallback, menu_mapped_cb, XmNunmapCallback, menu_unmapped_cb);
    } else if (is_button(widget)) {
        // The entries of a menu are armed only while the menu is posted, which counts by itself.
        if (!is_menu_pane(XtParent(widget))) {
            add_pair(widget, XmNarmCallback, arm_cb, XmNdisarmCallback, disarm_cb);
        }
    } else if (XmIsPrimitive(widget) && !XmIsLabel(widget) && !XmIsSeparator(widget)) {
        // Scroll bars, lists, texts, sashes. Cascade buttons are labels: their menus count.
        XtAddEventHandler(widget, ButtonPressMask | ButtonReleaseMask, False, button_event,
                          nullptr);
    }
}

bool is_inside(Widget widget, Widget tree) {
    while (widget != nullptr && widget != tree) {
        widget = XtParent(widget);
    }
    return widget != nullptr;
}

} // namespace

Widget gvga_modal_firewall_widget;
NB_LONG gvga_modal_firewall_count;
Widget gvga_current_button;

void vga_add_modal_popup_firewall(Widget widget) {
    vga_for_each_below(widget, add_handlers);
}

bool vga_firewall_clear() {
    return gvga_modal_firewall_widget == nullptr && gvga_modal_firewall_count <= 0;
}

void vga_check_firewall() {
    if (vga_firewall_clear()) {
        XtAppAddTimeOut(gvga_appcontext, 0, check_queues, nullptr);
    }
}

void vga_release_held_widget(Widget widget) {
    Widget held = gvga_modal_firewall_widget;
    if (held == nullptr || !is_inside(held, widget)) {
        return;
    }
    if (XtIsWidget(held) && !XmIsGadget(held)) {
        XEvent event{};
        event.xbutton.type = ButtonRelease;
        event.xbutton.display = XtDisplay(held);
        event.xbutton.window = XtWindow(held);
        const char* action = XmIsScrollBar(held) ? "Release" : is_button(held) ? "Disarm" : nullptr;
        if (action != nullptr) {
            XtCallActionProc(held, const_cast<char*>(action), &event, nullptr, 0);
        }
    }
    gvga_modal_firewall_widget = nullptr;
    vga_check_firewall();
}

void vga_set_sensitive(Widget widget, bool state) {
    if (!state) {
        vga_release_held_widget(widget);
    }
    XtSetSensitive(widget, state);
}

void vga_popup_menu(Widget, XtPointer menu, XEvent* event, Boolean*) {
    if (event->type == ButtonPress && event->xbutton.button == Button3) {
        auto* pane = static_cast<Widget>(menu);
        XmMenuPosition(pane, &event->xbutton);
        XtManageChild(pane);
    }
}

void vga_install_popup_menu(Widget widget, Widget menu) {
    if (!VGA_ASSERT(XmIsRowColumn(menu))) {
        return;
    }
    XtAddEventHandler(widget, ButtonPressMask, False, vga_popup_menu, menu);
    vga_add_modal_popup_firewall(menu);
}
