// What can be done with the selected node, and the message bar, which says so for the button under
// the pointer.
#include "shell/messages.h"
#include "ui/windows/system_window_internal.h"

const std::array<VGA_TOOL<vga_system_window>, VGA_SYSW_BUTTON_COUNT> vga_sysw_tools = {{
    {&vga_system_window::button_start, &vga_system_window::button_start_icon,
     &vga_system_window::menu_item_start, VGA_ICON_START, VGA_ICON_STARTINS},
    {&vga_system_window::button_stop, &vga_system_window::button_stop_icon,
     &vga_system_window::menu_item_stop, VGA_ICON_STOP, VGA_ICON_STOPINS},
    {&vga_system_window::button_zoom, &vga_system_window::button_zoom_icon,
     &vga_system_window::menu_item_zoom, VGA_ICON_ZOOM, VGA_ICON_ZOOMINS},
}};

namespace {

struct STATE_ROW {
    NB_BYTE state;
    bool start, stop, trace;
};
constexpr STATE_ROW by_state[] = {
    {VGA_NODE_STATE_STOPPED, true, false, true},
    {VGA_NODE_STATE_STARTING, false, true, true},
    {VGA_NODE_STATE_STOPPING, true, false, true},
    {VGA_NODE_STATE_ACTIVE, false, true, true},
    {VGA_NODE_STATE_UNCONFIGURED, false, false, false},
    {VGA_NODE_STATE_BACK_LEVEL, false, false, false},
};

struct HELP_ROW {
    int selected; // names the node
    int nothing_selected;
};
constexpr HELP_ROW help[VGA_SYSW_BUTTON_COUNT] = {{1230, 1233}, {1231, 1234}, {1232, 1235}};

} // namespace

vga_node* vga_sysw_selected_node() {
    return static_cast<vga_node*>(vga_viewer_get_selection(&gvga_system->node_viewer_root));
}

VGA_SYSW_STATES vga_sysw_button_states(const vga_node* node, bool network_file) {
    VGA_SYSW_STATES states{};
    if (node == nullptr) {
        return states;
    }
    states.tools[VGA_SYSW_ZOOM] = true;
    const auto* row = std::ranges::find(by_state, node->node_state, &STATE_ROW::state);
    if (VGA_ASSERT_TEXT(row != std::end(by_state), "FALSE")) {
        states.tools[VGA_SYSW_START] = row->start;
        states.tools[VGA_SYSW_STOP] = row->stop;
        states.trace = row->trace;
    }
    if (network_file && node->node_state != VGA_NODE_STATE_BACK_LEVEL) {
        states.del_backup = node->server_role != VGA_ROLE_NONE;
        states.add_backup = !states.del_backup;
    }
    return states;
}

void vga_sysw_set_button_states(vga_dialog* dialog) {
    vga_system_window* window = vga_sysw();
    if (!VGA_ASSERT_TEXT(window != nullptr && &window->common == dialog,
                         "desc == (VGA_SYSW_DESC *) dialog")) {
        return;
    }
    const VGA_SYSW_STATES states =
        vga_sysw_button_states(vga_sysw_selected_node(), gvga_system->sna_net_handle != 0);
    window->zoom_ok = states.tools[VGA_SYSW_ZOOM];
    vga_set_tools(window, vga_sysw_tools, states.tools);
    vga_set_sensitive(window->menu_item_trace, states.trace);
    vga_set_sensitive(window->menu_item_add_backup, states.add_backup);
    vga_set_sensitive(window->menu_item_del_backup, states.del_backup);
    if (vga_lost_current_tool(window, vga_sysw_tools)) {
        vga_set_message_bar(window->message_bar, "");
    }
}

void vga_sysw_button_help(VGA_SYSW_BUTTON button, const vga_node* node, char* text) {
    if (node == nullptr) {
        vga_print_msg(text, gvga_messages[help[button].nothing_selected], "");
    } else {
        vga_print_msg(text, gvga_messages[help[button].selected], "cs",
                      static_cast<int>(sizeof node->node_name), node->node_name);
    }
}

void vga_sysw_enter_button(Widget widget, XEvent*, String*, Cardinal*) {
    vga_system_window* window = vga_sysw();
    if (window == nullptr || vga_dialog_of(widget) != &window->common ||
        gvga_first_dialog != nullptr) {
        return;
    }
    char text[2 * VGA_MESSAGE_BUFFER_SIZE] = "";
    const int tool = vga_tool_index(window, vga_sysw_tools, widget);
    if (tool >= 0) {
        gvga_current_button = widget;
        vga_sysw_button_help(static_cast<VGA_SYSW_BUTTON>(tool), vga_sysw_selected_node(), text);
    }
    vga_set_message_bar(window->message_bar, text);
}

void vga_sysw_leave_button(Widget widget, XEvent*, String*, Cardinal*) {
    vga_system_window* window = vga_sysw();
    if (window == nullptr || vga_dialog_of(widget) != &window->common ||
        gvga_first_dialog != nullptr) {
        return;
    }
    gvga_current_button = nullptr;
    vga_set_message_bar(window->message_bar, "");
}
