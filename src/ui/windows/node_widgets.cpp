// The widgets of the node window: looking them up in the tree that the UID file describes, and
// dressing them.
#include "ui/framework/common_actions.h"
#include "ui/windows/node_window_internal.h"

#include <Xm/XmAll.h>

namespace {

#define FIELD(field, name)                                                                         \
    { &vga_node_window::field, "*nodew" name, "desc->" #field " != NULL" }
constexpr VGA_WIDGET_ROW<vga_node_window> fields[] = {
    FIELD(server, "ServerForm"),
    FIELD(text_server, "ServerTextButton"),
    FIELD(icon_server, "ServerIconButton"),
    FIELD(menu_item_port, "MenuPortButton"),
    FIELD(menu_item_ls, "MenuLSButton"),
    FIELD(menu_item_start, "MenuStartButton"),
    FIELD(menu_item_stop, "MenuStopButton"),
    FIELD(menu_item_del, "MenuDeleteButton"),
    FIELD(menu_item_zoom, "MenuModifyButton"),
    FIELD(menu_item_status, "MenuStatusButton"),
    FIELD(menu_item_copy, "MenuCopyButton"),
    FIELD(window_menu, "MenuWindowsPane"),
    FIELD(menu_item_dlur, "MenuDLURPUButton"),
    FIELD(menu_item_pu_conc, "MenuPUConcCascade"),
    FIELD(menu_item_tn, "MenuTNCascade"),
    FIELD(menu_item_ipbridge, "MenuIpbridgeCascade"),
    FIELD(menu_item_lu0, "MenuLU0Cascade"),
    FIELD(menu_item_hpr, "MenuHPRButton"),
    FIELD(button_start, "StartButtonFrame"),
    FIELD(button_start_icon, "StartButtonIcon"),
    FIELD(button_stop, "StopButtonFrame"),
    FIELD(button_stop_icon, "StopButtonIcon"),
    FIELD(button_add, "AddButtonFrame"),
    FIELD(button_add_icon, "AddButtonIcon"),
    FIELD(button_del, "DeleteButtonFrame"),
    FIELD(button_del_icon, "DeleteButtonIcon"),
    FIELD(button_zoom, "ZoomButtonFrame"),
    FIELD(button_zoom_icon, "ZoomButtonIcon"),
    FIELD(button_status, "StatusButtonFrame"),
    FIELD(button_status_icon, "StatusButtonIcon"),
    FIELD(button_copy, "CopyButtonFrame"),
    FIELD(button_copy_icon, "CopyButtonIcon"),
    FIELD(message_bar, "MessageBar"),
    FIELD(link, "LinksDrawArea"),
    FIELD(link_h_scroll, "LinksHScrollBar"),
    FIELD(link_v_scroll, "LinksVScrollBar"),
    FIELD(rem_sys, "RemSysDrawArea"),
    FIELD(rem_sys_h_scroll, "RemSysHScrollBar"),
    FIELD(rem_sys_v_scroll, "RemSysVScrollBar"),
    FIELD(lu, "LUsDrawArea"),
    FIELD(lu_h_scroll, "LUsHScrollBar"),
    FIELD(lu_v_scroll, "LUsVScrollBar"),
    FIELD(top_pane, "LinksForm"),
    FIELD(middle_pane, "LUsForm"),
    FIELD(bottom_pane, "RemSysForm"),
    FIELD(paned_window, "Panes"),
    FIELD(menu_item_add, "MenuAddItemButton"),
    FIELD(tool_bar, "ToolbarRowColumn"),
};
#undef FIELD

constexpr int first_columns = 90;
constexpr int first_rows = 36;

// Widgets that only need to know their window.
constexpr const char* others[] = {
    "nodewMenuExit",
    "nodewMenuClose",
    "nodewMenuParamsButton",
    "nodewMenuLU03Button",
    "nodewMenuDownstreamButton",
    "nodewMenu3270LUButton",
    "nodewMenu3270PrinterButton",
    "nodewMenu3270UsersButton",
    "nodewMenu5250UsersButton",
    "nodewMenuLUPoolButton",
    "nodewMenuLUPoolButton2",
    "nodewMenuLUPoolButton3",
    "nodewMenuCPICButton",
    "nodewMenuRJELUButton",
    "nodewMenuRJEWkstnButton",
    "nodewMenuLU62Button",
    "nodewMenuLU62DepButton",
    "nodewMenuAliasButton",
    "nodewMenuWildcardButton",
    "nodewMenuPLUButton",
    "nodewMenuLSRoutingButton",
    "nodewMenuRemoteButton",
    "nodewMenuModeCOSButton",
    "nodewMenuCLSecurityButton",
    "nodewMenuSLSecurityButton",
    "nodewMenuTPDefButton",
    "nodewMenuTNHostLUButton",
    "nodewMenuTNLUPoolButton",
    "nodewMenuTNServerButton",
    "nodewMenuIpbridgeButton",
    "nodewMenuLU0AddPrimLineButton",
    "nodewMenuLU0AddPrimLU0Button",
    "nodewMenuLU0AddSecLU0Button",
    "nodewMenuUpstreamButton",
    "nodewMenuLoggingButton",
    "nodewMenuTracingButton",
    "nodewMenuUsersWinButton",
    "nodewMenuRJEWinButton",
    "nodewMenuLUPoolsWinButton",
    "nodewMenuCPICWinButton",
    "nodewMenuHelpAbout",
    "nodewConnectivityTitle",
    "nodewLocalLUsTitle",
    "nodewRemSysTitle",
    "nodewConnectivityKey",
    "nodewLocalLUsKey",
    "nodewRemSysKey",
    "nodewMenu5250Cascade",
    "nodewMenuDomainWinButton",
    "nodewMenuWinSep",
    "nodewMenuRJECascade",
};

void remove_menu_items(const vga_node_window* window) {
    const bool domain = gvga_supported[VGA_SUPPORT_CLIENT_SERVER];
    const VGA_MENU_ITEM items[] = {
        {"nodewMenuCPICButton", gvga_supported[VGA_SUPPORT_CPIC] != 0},
        {"nodewMenuCPICWinButton", gvga_supported[VGA_SUPPORT_CPIC] != 0},
        {"nodewMenuRJECascade", gvga_supported[VGA_SUPPORT_RJE] != 0},
        {"nodewMenuRJEWinButton", gvga_supported[VGA_SUPPORT_RJE] != 0},
        {"nodewMenu3270UsersButton", false},
        {"nodewMenu5250Cascade", false},
        {"nodewMenuUsersWinButton", false},
        {"nodewMenuExit", !domain},
        {"nodewMenuClose", domain},
        {"nodewMenuDomainWinButton", domain},
        {"nodewMenuWinSep", domain},
    };
    vga_remove_menu_items(&window->common, items);
}

void set_icons(const vga_node_window* window) {
    vga_put_widget_pixmap(window->icon_server, VGA_ICON_TERMINAL);
    // Stands for the whole node area at the keyboard.
    XtVaSetValues(window->icon_server, XmNtraversalOn, True, XmNhighlightThickness, 1, nullptr);
    for (const VGA_NODEW_PANE& pane : vga_nodew_panes) {
        vga_put_widget_pixmap(vga_name_widget(window->*pane.form, pane.key, nullptr), VGA_ICON_KEY);
        XtAddCallback(window->*pane.form, XmNhelpCallback, vga_help_cb,
                      const_cast<char*>(pane.help));
    }
    vga_put_tool_pixmaps(window, vga_nodew_tools);
}

} // namespace

bool vga_get_widgets_node_window(vga_dialog* dialog) {
    vga_node_window* window = vga_as_node_window(dialog);
    if (!vga_find_widgets(window, fields, others)) {
        return false;
    }
    if (!gvga_supported[VGA_SUPPORT_CLIENT_SERVER] &&
        !vga_init_graphics(dialog->widget, window->link)) {
        return false;
    }
    set_icons(window);
    remove_menu_items(window);
    XtVaSetValues(dialog->widget, XmNmessageWindow, window->message_bar, nullptr);
    vga_set_first_size(dialog, first_columns, first_rows);
    vga_nodew_add_sash_menu(window);
    return true;
}
