// The rows of the system window: what a node's row shows and how it reacts to the mouse.
#include "ui/windows/row_text.h"
#include "ui/windows/system_window_internal.h"
#include "ui/windows/system_window_rows.h"

namespace {

using CALL = XmDrawnButtonCallbackStruct;

constexpr int name_column = 64;
constexpr int role_column = 15;
constexpr int unconfigured_text = 888;

constexpr VGA_STATE_ROW states[] = {
    {VGA_NODE_STATE_STOPPED, 1221},      {VGA_NODE_STATE_STARTING, 1220},
    {VGA_NODE_STATE_STOPPING, 1222},     {VGA_NODE_STATE_ACTIVE, 1219},
    {VGA_NODE_STATE_UNCONFIGURED, 1223}, {VGA_NODE_STATE_BACK_LEVEL, 1227},
};
constexpr VGA_STATE_ROW roles[] = {
    {VGA_ROLE_NONE, 1229},
    {VGA_ROLE_LOCAL_SERVER, 1228},
    {VGA_ROLE_SERVER, 1226},
};

vga_node* node_of(void* record) {
    return static_cast<vga_node*>(record);
}

vga_viewer_root* list() {
    return &gvga_system->node_viewer_root;
}

void selection_changed() {
    if (vga_system_window* window = vga_sysw()) {
        vga_sysw_set_button_states(&window->common);
    }
}

// A node that a drag reaches is the only selected one.
void enter(vga_viewer_root* root, vga_viewer* viewer) {
    vga_viewer_clear_selection(root);
    vga_clear_outline_selection(root);
    root->select_anchor = root->outline_viewer = viewer;
    root->select_count += vga_viewer_set_select(root, viewer, true);
    root->select_type = VGA_VIEWER_NODE;
    vga_update_viewer(root, viewer);
}

void leave(vga_viewer_root* root, vga_viewer* viewer) {
    root->select_count += vga_viewer_set_select(root, viewer, false);
    root->select_type = VGA_VIEWER_SELECT_NONE;
    if (root->outline_viewer == viewer) {
        vga_clear_outline_selection(root);
    }
}

} // namespace

int vga_create_node_viewer_text(void* record, char* text) {
    const vga_node* node = node_of(record);
    const int message = vga_state_message(states, node->node_state);
    if (message == 0) {
        return vga_no_row_text(text);
    }
    const VGA_ROW_DESCRIPTION description(node->vcb.parameters.description);
    const bool configured = node->node_state != VGA_NODE_STATE_UNCONFIGURED;
    return vga_print_row(text, message, "ca ca s", name_column, node->node_name, role_column,
                         gvga_messages[vga_state_message(roles, node->server_role)],
                         configured ? description.text : gvga_messages[unconfigured_text]);
}

int vga_choose_node_viewer_icon(void* record) {
    return node_of(record)->node_state == VGA_NODE_STATE_BACK_LEVEL ? VGA_ICON_BACKNODE
                                                                    : VGA_ICON_NODE;
}

void vga_sysw_node_arm_cb(void* record, CALL*) {
    vga_viewer_root* root = list();
    vga_viewer_clear_selection(root);
    vga_clear_outline_selection(root);
    vga_viewer_select(&node_of(record)->viewer, root, false, false, false, false);
    selection_changed();
}

void vga_sysw_node_act_cb(void*, CALL* data) {
    vga_system_window* window = vga_sysw();
    if (data->click_count == 2 && window != nullptr) {
        vga_sysw_zoom(window->common.widget, nullptr, nullptr);
    }
}

void vga_sysw_node_drag_cb(void* record, bool leaving, bool) {
    vga_viewer* viewer = &node_of(record)->viewer;
    leaving ? leave(list(), viewer) : enter(list(), viewer);
    selection_changed();
}

void vga_sysw_disarm(Widget, XtPointer, XtPointer) {
    selection_changed();
}
