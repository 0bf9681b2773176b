// The widgets of the system window: looking them up in the tree that the UID file describes, and
// dressing them.
#include "ui/windows/system_window_internal.h"

#include <Xm/XmAll.h>

namespace {

constexpr int first_columns = 100;
constexpr int first_rows = 24;

#define FIELD(field, name)                                                                         \
    { &vga_system_window::field, "*sysw" name, "desc->" #field " != NULL" }
constexpr VGA_WIDGET_ROW<vga_system_window> fields[] = {
    FIELD(nodes, "DrawArea"),
    FIELD(h_scroll, "HScrollBar"),
    FIELD(v_scroll, "VScrollBar"),
    FIELD(button_start, "StartButtonFrame"),
    FIELD(button_start_icon, "StartButtonIcon"),
    FIELD(button_stop, "StopButtonFrame"),
    FIELD(button_stop_icon, "StopButtonIcon"),
    FIELD(button_zoom, "ZoomButtonFrame"),
    FIELD(button_zoom_icon, "ZoomButtonIcon"),
    FIELD(menu_item_start, "MenuStartButton"),
    FIELD(menu_item_stop, "MenuStopButton"),
    FIELD(menu_item_zoom, "MenuZoomButton"),
    FIELD(menu_item_add_backup, "MenuAddBackupButton"),
    FIELD(menu_item_del_backup, "MenuDelBackupButton"),
    FIELD(menu_item_trace, "MenuTracingButton"),
    FIELD(message_bar, "MessageBar"),
    FIELD(window_menu, "MenuWindowsPane"),
    FIELD(tool_bar, "ToolbarRowColumn"),
};
#undef FIELD

// Widgets that only need to know their window.
constexpr const char* others[] = {
    "syswMenuExit",
    "syswMenuLoggingButton",
    "syswMenuUsersWinButton",
    "syswMenuRJEWinButton",
    "syswMenuLUPoolWinButton",
    "syswMenuCPICWinButton",
    "syswMenuHelpAboutButton",
};

void remove_menu_items(const vga_system_window* window) {
    const VGA_MENU_ITEM items[] = {
        {"syswMenuCPICWinButton", gvga_supported[VGA_SUPPORT_CPIC] != 0},
        {"syswMenuRJEWinButton", false},
        {"syswMenuUsersWinButton", false},
    };
    vga_remove_menu_items(&window->common, items);
}

} // namespace

bool vga_get_widgets_system_window(vga_dialog* dialog) {
    auto* window = reinterpret_cast<vga_system_window*>(dialog);
    if (!vga_find_widgets(window, fields, others) ||
        !vga_init_graphics(dialog->widget, window->nodes)) {
        return false;
    }
    vga_put_tool_pixmaps(window, vga_sysw_tools);
    remove_menu_items(window);
    XtVaSetValues(dialog->widget, XmNmessageWindow, window->message_bar, nullptr);
    vga_set_first_size(dialog, first_columns, first_rows);
    return true;
}
