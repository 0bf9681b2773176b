#include "ui/windows/help.h"

#include "common/assert.h"
#include "help/help.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "ui/framework/common_actions.h"
#include "ui/framework/dialog.h"
#include "ui/framework/helpers.h"
#include "ui/framework/texts.h"
#include "ui/windows/about.h"

#include <algorithm>
#include <string>

namespace {

constexpr const char* own_volume = "Help4Tessaly";
constexpr const char* volume_on_help = "Help4Help";
constexpr const char* home = "_hometopic";
constexpr Position gap = 12; // between a dialog and its help

// The widget that a help window hangs from: the dialog that asks, also from one of its help
// windows.
Widget owner_of(Widget widget) {
    const vga_dialog* dialog = vga_dialog_of(widget);
    if (dialog == nullptr) {
        dialog = gvga_main_dialog;
    }
    return dialog != nullptr ? dialog->widget : gvga_toplevel;
}

Widget shell_of(Widget widget) {
    while (!XtIsShell(widget)) {
        widget = XtParent(widget);
    }
    return widget;
}

void destroy(Widget help) {
    vga_release_held_widget(help);
    XtDestroyWidget(help);
}

void destroy_cb(Widget, XtPointer help, XtPointer) {
    destroy(static_cast<Widget>(help));
}

// The dialog is hidden and kept when it closes; its help is not.
void go_with(Widget help, Widget shell) {
    XtAddCallback(shell, XtNpopdownCallback, destroy_cb, help);
    XtAddCallback(
        help, XmNdestroyCallback,
        [](Widget widget, XtPointer owner, XtPointer) {
            XtRemoveCallback(static_cast<Widget>(owner), XtNpopdownCallback, destroy_cb, widget);
        },
        shell);
}

// Beside its dialog where the screen has room, so that both can be read; otherwise the toolkit
// centres it.
void place(Widget help, Widget shell) {
    Dimension shell_width, width, height;
    Position x, y;
    XtRealizeWidget(XtParent(help));
    XtVaGetValues(shell, XmNwidth, &shell_width, nullptr);
    XtVaGetValues(help, XmNwidth, &width, XmNheight, &height, nullptr);
    XtTranslateCoords(shell, 0, 0, &x, &y);
    const Screen* screen = XtScreen(help);
    const int right = x + shell_width + gap;
    const int left = x - width - gap;
    const bool room_right = right + width <= WidthOfScreen(screen);
    if (!room_right && left < 0) {
        return;
    }
    const int lowest = HeightOfScreen(screen) - height - 4 * gap;
    XtVaSetValues(help, XmNdefaultPosition, False, XmNx,
                  static_cast<Position>(room_right ? right : left), XmNy,
                  static_cast<Position>(std::max(0, std::min<int>(y, lowest))), nullptr);
}

void dress_quick_dialog(Widget help) {
    constexpr struct {
        unsigned char child;
        int label;
    } labels[] = {
        {DtHELP_QUICK_BACK_BUTTON, VGA_TEXT_BACK},
        {DtHELP_QUICK_PRINT_BUTTON, VGA_TEXT_PRINT},
        {DtHELP_QUICK_MORE_BUTTON, VGA_TEXT_MORE},
        {DtHELP_QUICK_CLOSE_BUTTON, VGA_TEXT_CLOSE},
    };
    for (const auto& each : labels) {
        if (Widget button = DtHelpQuickDialogGetChild(help, each.child)) {
            vga_set_text(button, XmNlabelString, gvga_messages[each.label]);
        }
    }
    if (Widget button = DtHelpQuickDialogGetChild(help, DtHELP_QUICK_HELP_BUTTON)) {
        XtUnmanageChild(button);
    }
    if (Widget more = DtHelpQuickDialogGetChild(help, DtHELP_QUICK_MORE_BUTTON)) {
        XtManageChild(more);
        XtAddCallback(more, XmNactivateCallback, vga_menu_help_contents, nullptr);
    }
    if (Widget close = DtHelpQuickDialogGetChild(help, DtHELP_QUICK_CLOSE_BUTTON)) {
        XtAddCallback(close, XmNactivateCallback, destroy_cb, help);
    }
}

void full_close_cb(Widget help, XtPointer, XtPointer) {
    destroy(help);
}

std::string title_of(const char* location) {
    const std::string title = gvga_messages[VGA_TEXT_HELP_TITLE];
    return gvga_display_names ? std::string(location) + ": " + title : title;
}

Widget create(Widget owner, const char* volume, const char* location, bool full, NB_LONG kind) {
    static char name[] = "helpDialog";
    XtCallbackRec hyper_link[] = {{vga_help_hyper_cb, nullptr}, {nullptr, nullptr}};
    XtCallbackRec close[] = {{full_close_cb, nullptr}, {nullptr, nullptr}};
    XmString title = XmStringCreateLocalized(const_cast<char*>(title_of(location).c_str()));
    Arg args[8];
    Cardinal count = 0;
    const auto add = [&](const char* resource, auto value) {
        args[count].name = const_cast<char*>(resource);
        args[count++].value = (XtArgVal)value;
    };
    add(DtNhelpVolume, volume != nullptr && volume[0] != '\0' ? volume : own_volume);
    add(DtNhelpType, kind);
    add(DtNhyperLinkCallback, hyper_link);
    add(XmNdialogTitle, title);
    if (kind == VGA_HELP_MAN_PAGE) {
        add(DtNmanPage, location);
    } else {
        add(DtNlocationId, location);
    }
    if (full) {
        add(DtNcloseCallback, close);
    }
    Widget help = full ? DtCreateHelpDialog(owner, name, args, count)
                       : DtCreateHelpQuickDialog(owner, name, args, count);
    XmStringFree(title);
    return help;
}

} // namespace

Widget vga_display_help_topic(Widget widget, const char* volume, const char* location, bool full,
                              NB_LONG kind) {
    vga_display_hourglass(true);
    Widget owner = owner_of(widget);
    Widget help = create(owner, volume, location, full, kind);
    if (!full) {
        dress_quick_dialog(help);
    }
    XtAddCallback(help, XmNhelpCallback, vga_menu_help_help, nullptr);
    vga_add_modal_popup_firewall(help);
    go_with(help, shell_of(owner));
    if (!full) {
        place(help, shell_of(widget));
    }
    XtManageChild(help);
    if (const vga_dialog* dialog = vga_dialog_of(owner)) {
        vga_set_window_icon(dialog, XtParent(help));
    }
    vga_display_hourglass(false);
    return help;
}

void vga_help_cb(Widget widget, XtPointer client_data, XtPointer) {
    vga_display_help_topic(widget, nullptr, static_cast<const char*>(client_data), false,
                           VGA_HELP_TOPIC);
}

void vga_modal_dialog_help_cb(Widget widget, XtPointer client_data, XtPointer) {
    const auto* dialog =
        static_cast<vga_dialog*>(nba_validate_handle(vga_data_handle(client_data)));
    if (dialog != nullptr) {
        vga_display_help_topic(widget, nullptr, dialog->modal_dlg.help_tag, false, VGA_HELP_TOPIC);
    }
}

void vga_help_hyper_cb(Widget widget, XtPointer, XtPointer call_data) {
    const auto* link = static_cast<DtHelpDialogCallbackStruct*>(call_data);
    if (link->hyperType == DtHELP_LINK_JUMP) {
        vga_display_help_topic(widget, link->helpVolume, link->locationId, false, VGA_HELP_TOPIC);
    } else if (VGA_ASSERT_TEXT(link->hyperType == DtHELP_LINK_MAN_PAGE,
                               "hyper->hyperType == DtHELP_LINK_MAN_PAGE")) {
        vga_display_help_topic(widget, nullptr, link->specification, false, VGA_HELP_MAN_PAGE);
    }
}

void vga_menu_help_contents(Widget widget, XtPointer, XtPointer) {
    vga_display_help_topic(widget, own_volume, home, true, VGA_HELP_TOPIC);
}

void vga_menu_help_index(Widget widget, XtPointer, XtPointer) {
    Widget help = vga_display_help_topic(widget, own_volume, home, true, VGA_HELP_TOPIC);
    if (Widget button = XtNameToWidget(help, "*indexButton")) {
        XmPushButtonCallbackStruct activate{};
        activate.reason = XmCR_ACTIVATE;
        XtCallCallbacks(button, XmNactivateCallback, &activate);
    }
}

void vga_menu_help_help(Widget widget, XtPointer, XtPointer) {
    vga_display_help_topic(widget, volume_on_help, home, true, VGA_HELP_TOPIC);
}

void vga_menu_help_about(Widget widget, XtPointer, XtPointer) {
    vga_display_about_box(vga_dialog_of(widget));
}
