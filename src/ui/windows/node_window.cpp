// The life of a node window: it appears, waits for its node to be read, shows it, follows its state
// and goes.
#include "ui/windows/node_window.h"

#include "common/assert.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "shell/start.h"
#include "store/store.h"
#include "ui/framework/widget_tree.h"
#include "ui/framework/window_menu.h"
#include "ui/windows/about.h"
#include "ui/windows/delete_flow.h"
#include "ui/windows/node_window_internal.h"
#include "ui/windows/system_window.h"
#include "verbs/status.h"

#include <algorithm>
#include <cstdio>

namespace {

// ---- texts of the window ----

constexpr int loading_text = 884;
constexpr int window_title = 10;

struct NODE_STATE_TEXT {
    NB_BYTE state;
    int message;
};
constexpr NODE_STATE_TEXT state_texts[] = {
    {VGA_NODE_STATE_STOPPED, 886},      {VGA_NODE_STATE_STARTING, 885},
    {VGA_NODE_STATE_STOPPING, 887},     {VGA_NODE_STATE_ACTIVE, 874},
    {VGA_NODE_STATE_UNCONFIGURED, 875},
};

int state_message(const vga_node* node) {
    const auto* row = std::ranges::find(state_texts, node->node_state, &NODE_STATE_TEXT::state);
    return VGA_ASSERT_TEXT(row != std::end(state_texts), "FALSE") ? row->message : loading_text;
}

struct NODE_NAME { // as terminated text
    char text[sizeof(NB_NODE_NAME) + 1];
    explicit NODE_NAME(const vga_node* node) {
        vga_print_msg(text, "%1", "cs", static_cast<int>(sizeof node->node_name), node->node_name);
    }
};

// The two lines of the node area.
XmString area_text(const vga_node* node, int message) {
    char text[sizeof(NODE_NAME) + VGA_MESSAGE_BUFFER_SIZE];
    std::snprintf(text, sizeof text, "%s\n%s", NODE_NAME(node).text, gvga_messages[message]);
    return XmStringCreateLtoR(text, const_cast<char*>(XmFONTLIST_DEFAULT_TAG));
}

// ---- sizes ----

Dimension dimension(Widget widget, const char* resource) {
    Dimension value = 0;
    XtVaGetValues(widget, resource, &value, nullptr);
    return value;
}

// Makes the node area wide enough for every state, so that nothing moves when the state changes.
void set_area_width(const vga_node_window* window, const vga_node* node) {
    XmRenderTable fonts = nullptr;
    XtVaGetValues(window->text_server, XmNrenderTable, &fonts, nullptr);
    Dimension width = 0;
    const auto measure = [&](int message) {
        XmString text = area_text(node, message);
        width = std::max(width, XmStringWidth(fonts, text));
        XmStringFree(text);
    };
    measure(loading_text);
    for (const NODE_STATE_TEXT& row : state_texts) {
        measure(row.message);
    }
    for (const char* margin :
         {XmNmarginWidth, XmNmarginLeft, XmNshadowThickness, XmNhighlightThickness}) {
        width = static_cast<Dimension>(width + 2 * dimension(window->text_server, margin));
    }
    XtVaSetValues(window->text_server, XmNrecomputeSize, False, XmNwidth, width, nullptr);
}

// Spreads the buttons of the tool bar over half of the room that they leave.
void spread_tools(const vga_node_window* window) {
    int used = 2 * dimension(window->tool_bar, XmNmarginWidth);
    int tools = 0;
    vga_for_each_child(window->tool_bar, [&](Widget tool) {
        if (XtIsManaged(tool)) {
            used += dimension(tool, XmNwidth);
            ++tools;
        }
    });
    const int spare = dimension(window->tool_bar, XmNwidth) - used;
    if (tools > 1 && spare > 0) {
        XtVaSetValues(window->tool_bar, XmNspacing, static_cast<Dimension>(spare / 2 / (tools - 1)),
                      nullptr);
    }
}

void set_sizes(const vga_node_window* window, const vga_node* node) {
    for (const VGA_NODEW_PANE& pane : vga_nodew_panes) {
        vga_set_pane_height(window->*pane.form,
                            vga_name_widget(window->*pane.form, pane.title, nullptr));
    }
    set_area_width(window, node);
    spread_tools(window);
    vga_set_toolbar_width(window->common.shell, window->tool_bar);
    vga_set_window_height(window->common.shell, window->tool_bar, window->message_bar,
                          window->paned_window);
}

// ---- contents ----

void manage(Widget widget, bool managed) {
    if (managed) {
        XtManageChild(widget);
    } else {
        XtUnmanageChild(widget);
    }
}

void set_menus(const vga_node_window* window, const vga_node* node) {
    const NODE_PARAMETERS& parameters = node->vcb.parameters;
    manage(window->menu_item_dlur,
           parameters.dlur_support != 0 && parameters.node_type != NAP_NODE_LEN);
    manage(window->menu_item_pu_conc, parameters.pu_conc_support == 1);
    manage(window->menu_item_tn, vga_node_has_tn_server(node));
    manage(window->menu_item_hpr, vga_node_has_hpr(node));
    manage(window->menu_item_ipbridge, false);
    manage(window->menu_item_lu0, false);
}

// Calls use(other) for the windows of the domain's other nodes.
template <typename Use> void for_each_other_window(const vga_node* node, Use use) {
    if (!gvga_supported[VGA_SUPPORT_CLIENT_SERVER]) {
        return;
    }
    for (auto* other = ntl_avl_first<vga_node>(gvga_system->node_tree); other != nullptr;
         other = static_cast<vga_node*>(ntl_avl_next(&other->node))) {
        if (other != node && other->gui_data.node_window != nullptr) {
            use(other);
        }
    }
}

void enter_in_window_menus(const vga_node_window* window, vga_node* node) {
    for_each_other_window(node, [&](vga_node* other) {
        vga_add_node_window_widget(window->window_menu, other);
        vga_add_node_window_widget(vga_as_node_window(other->gui_data.node_window)->window_menu,
                                   node);
    });
}

void leave_window_menus(const vga_node_window* window, vga_node* node) {
    for_each_other_window(node, [&](vga_node* other) {
        vga_remove_node_window_widget(vga_as_node_window(other->gui_data.node_window)->window_menu,
                                      node);
    });
    vga_remove_all_node_window_widgets(window->window_menu);
}

void display_roots(vga_node_window* window, vga_node* node) {
    for (const VGA_NODEW_PANE& pane : vga_nodew_panes) {
        vga_viewer_root* root = &(node->*pane.root);
        root->owner = &window->common;
        if (root->top_items.last != nullptr) { // the row at the top
            root->outline_viewer = static_cast<vga_viewer*>(root->top_items.last->self);
        }
        vga_viewer_display_root(root, window->*pane.draw, window->*pane.h_scroll,
                                window->*pane.v_scroll);
    }
}

// ---- showing the window ----

void remember_colours(vga_node_window* window) {
    XtVaGetValues(window->top_pane, XmNbackground, &window->pane_background, XmNforeground,
                  &window->pane_foreground, nullptr);
}

// The window of a node, made when there is none; null when it cannot be had.
vga_node_window* window_of(vga_node* node) {
    if (node != nullptr && node->gui_data.node_window != nullptr) {
        return vga_as_node_window(node->gui_data.node_window);
    }
    vga_dialog* dialog = nullptr;
    if (!vga_get_dialog(VGA_UID_NODE_WINDOW, gvga_system->gui_data.system_window, node, &dialog)) {
        return nullptr;
    }
    vga_node_window* window = vga_as_node_window(dialog);
    if (node != nullptr) {
        node->gui_data.node_window = dialog;
    }
    if (window->selected_pane == nullptr) {
        remember_colours(window);
    }
    return window;
}

} // namespace

bool vga_build_node_window(vga_node* node) {
    if (!VGA_ASSERT(node != NULL) || !VGA_ASSERT(node->gui_data.node_window != NULL)) {
        return false;
    }
    vga_node_window* window = vga_as_node_window(node->gui_data.node_window);
    display_roots(window, node);
    vga_message_node_window(&window->common, 0);
    enter_in_window_menus(window, node);
    set_menus(window, node);
    for (Widget widget : {window->server, window->icon_server}) {
        XtAddEventHandler(widget, KeyPressMask, False, vga_nodew_server_key, nullptr);
    }
    window->built = 1;
    return true;
}

void vga_clear_node_window(vga_dialog* dialog) {
    vga_node_window* window = vga_as_node_window(dialog);
    vga_node* node = vga_nodew_node(window);
    if (!window->built || node == nullptr) {
        return;
    }
    vga_nodew_deselect_pane(dialog);
    for (const VGA_NODEW_PANE& pane : vga_nodew_panes) {
        vga_viewer_undisplay(&(node->*pane.root));
        (node->*pane.root).owner = nullptr;
    }
    for (Widget widget : {window->server, window->icon_server}) {
        XtRemoveEventHandler(widget, KeyPressMask, False, vga_nodew_server_key, nullptr);
    }
    window->built = 0;
}

void vga_update_node_window(vga_node* node) {
    vga_node_window* window = vga_as_node_window(node->gui_data.node_window);
    if (window == nullptr || !window->built) {
        return;
    }
    XmString text = area_text(node, state_message(node));
    XtVaSetValues(window->text_server, XmNlabelString, text, nullptr);
    XmStringFree(text);
    set_menus(window, node);
    vga_message_node_window(&window->common, 0);
    vga_nodew_set_button_states(&window->common);
}

bool vga_display_node_window(vga_node* node, bool ready) {
    if (node != nullptr && node->node_state == VGA_NODE_STATE_BACK_LEVEL) {
        vga_display_info_dialog(gvga_main_dialog, 881, "backlevelnode", nullptr, 0, "cs",
                                static_cast<int>(sizeof node->node_name), node->node_name);
        return false;
    }
    vga_node_window* window = window_of(node);
    if (window == nullptr) {
        return false;
    }
    if (!ready) {
        vga_show_loading(&window->common, window->message_bar);
        return true;
    }
    if (window->built) {
        vga_go_to_dialog(&window->common);
        return true;
    }
    XtRealizeWidget(window->common.shell);
    vga_set_sensitive(window->common.widget, true);
    char title[2 * VGA_MESSAGE_BUFFER_SIZE];
    vga_print_msg(title, gvga_messages[window_title], "cs",
                  static_cast<int>(sizeof node->node_name), node->node_name);
    vga_set_window_title(&window->common, title, NODE_NAME(node).text);
    set_sizes(window, node);
    if (!vga_build_node_window(node)) {
        node->gui_data.node_window = nullptr;
        vga_release_dialog(&window->common);
        return false;
    }
    vga_update_node_window(node);
    vga_display_dialog(&window->common);
    XmProcessTraversal(window->link, XmTRAVERSE_CURRENT);
    vga_mark_window_ready(&window->common);
    if (node->node_state == VGA_NODE_STATE_UNCONFIGURED && !gvga_read_only) {
        vga_display_start_help_dialog(node, VGA_INTRO_TYPE_NODE);
    }
    return true;
}

bool vga_nodew_close_proc(vga_dialog* dialog, bool forced) {
    if (!gvga_supported[VGA_SUPPORT_CLIENT_SERVER] && !forced) {
        vga_check_exit_ok();
        return false;
    }
    vga_node_window* window = vga_as_node_window(dialog);
    vga_node* node = vga_nodew_node(window);
    vga_forget_deleting(dialog);
    vga_clear_node_window(dialog);
    if (node != nullptr) {
        node->gui_data.node_window = nullptr;
        leave_window_menus(window, node);
    }
    return true;
}

void vga_node_built(vga_node* node) {
    const bool loading = gvga_first_dialog != nullptr;
    if (!loading && !gvga_supported[VGA_SUPPORT_CLIENT_SERVER] &&
        node->gui_data.node_window == nullptr) {
        vga_display_node_window(node, true);
    }
    vga_redraw_node(node);
}

void vga_install_window_hooks() {
    gvga_store_hooks.node_built = vga_node_built;
    gvga_store_hooks.system_built = vga_system_built;
    gvga_store_hooks.node_changed = vga_update_node_viewer;
    gvga_store_hooks.node_added = vga_sysw_node_added;
    gvga_store_hooks.node_removed = vga_sysw_node_removed;
    gvga_store_hooks.roles_changed = vga_sysw_roles_changed;
    gvga_store_hooks.start_shutdown = vga_start_shutdown;
    gvga_status_hooks = {
        .update_port = vga_update_port_viewer,
        .update_ls = vga_update_ls_viewer,
        .update_local_pu = vga_update_local_pu_viewer,
        .update_deplu = vga_update_deplu_viewer,
        .update_down_lu = vga_update_down_lu_viewer,
        .update_lu62 = vga_update_lu62_viewer,
        .update_mode = vga_update_mode_viewer,
        .button_states =
            [](vga_node* node) { vga_nodew_set_button_states(node->gui_data.node_window); },
    };
    gvga_store_hooks.clear_message_bar = [](vga_node* node) {
        if (node->gui_data.node_window != nullptr) {
            vga_message_node_window(node->gui_data.node_window, 0);
        }
    };
}
