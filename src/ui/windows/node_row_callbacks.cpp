// How the rows of the node window react to the mouse, what is drawn on them besides their text, and
// how they follow their records.
#include "shell/messages.h"
#include "store/store.h"
#include "ui/windows/node_window_internal.h"
#include "ui/windows/node_window_rows.h"

namespace {

using CALL = XmDrawnButtonCallbackStruct;

const VGA_NODEW_PANE& pane_of(const vga_viewer* viewer) {
    switch (viewer->type) {
    case VGA_VIEWER_LU62:
    case VGA_VIEWER_MODE:
    case VGA_VIEWER_LS_R_TITLE:
    case VGA_VIEWER_LS_R:
        return vga_nodew_panes[1];
    case VGA_VIEWER_REM_SYS:
    case VGA_VIEWER_REM_PLU:
    case VGA_VIEWER_REM_PLU_NO_SESS:
    case VGA_VIEWER_REM_SESS:
        return vga_nodew_panes[2];
    default:
        return vga_nodew_panes[0];
    }
}

vga_viewer_root* root_of(vga_node* node, const vga_viewer* viewer) {
    return &(node->*pane_of(viewer).root);
}

// A row that is only ever selected by itself.
bool is_alone(const vga_viewer* viewer) {
    const VGA_VIEWER_DESC& desc = gvga_viewer_desc[viewer->type];
    return viewer->type == VGA_VIEWER_LS_R_TITLE ||
           (desc.alone != nullptr && desc.alone(viewer->data));
}

void arm_row(vga_node* node, vga_viewer* viewer, const CALL* data) {
    vga_node_window* window = vga_as_node_window(node->gui_data.node_window);
    if (window == nullptr) {
        return;
    }
    vga_nodew_pane_selection(&window->common, window->*pane_of(viewer).form);
    vga_viewer_root* root = root_of(node, viewer);
    const unsigned int state = data->event->xbutton.state;
    bool toggle = (state & ControlMask) != 0;
    bool extend = (state & ShiftMask) != 0;
    const vga_viewer* anchor = root->select_anchor;
    if (is_alone(viewer) || (anchor != nullptr && is_alone(anchor))) {
        vga_viewer_clear_selection(root);
        toggle = extend = false;
    }
    vga_viewer_select(viewer, root, toggle, extend, false, false);
    vga_nodew_set_button_states(&window->common);
}

// A double click opens what is selected, if it can be opened.
void act_row(vga_node* node, const CALL* data) {
    vga_node_window* window = vga_as_node_window(node->gui_data.node_window);
    if (data->click_count == 2 && window != nullptr && window->zoom_ok) {
        vga_nodew_zoom(window->common.widget, nullptr, nullptr);
    }
}

// A step of a drag that passes rows which are only selected by themselves.
void drag_row(vga_node* node, vga_viewer* viewer, bool leaving, bool upward) {
    vga_viewer_root* root = root_of(node, viewer);
    const vga_viewer* anchor = root->select_anchor;
    if (!is_alone(viewer) && (anchor == nullptr || !is_alone(anchor))) {
        vga_viewer_drag_cb(viewer, root, leaving, upward);
    }
}

void underline(vga_node* node, vga_viewer* viewer, int x, int y, int message) {
    vga_viewer_add_underline(root_of(node, viewer), viewer, x, y, gvga_messages[message]);
}

template <typename RECORD> void arm(void* record, const CALL* data) {
    auto* own = static_cast<RECORD*>(record);
    arm_row(vga_node_of(own), &own->viewer, data);
}
template <typename RECORD> void act(void* record, const CALL* data) {
    act_row(vga_node_of(static_cast<RECORD*>(record)), data);
}
template <typename RECORD> void drag(void* record, bool leaving, bool upward) {
    auto* own = static_cast<RECORD*>(record);
    drag_row(vga_node_of(own), &own->viewer, leaving, upward);
}

// Redraws a row; what can be done with it may have changed too.
void update_row(vga_node* node, vga_viewer* viewer) {
    vga_update_viewer(root_of(node, viewer), viewer);
    if (viewer->selected && node->gui_data.node_window != nullptr) {
        vga_nodew_set_button_states(node->gui_data.node_window);
    }
}

} // namespace

void vga_nodew_port_arm_cb(void* record, CALL* data) {
    arm<vga_port>(record, data);
}
void vga_nodew_ls_arm_cb(void* record, CALL* data) {
    arm<vga_ls>(record, data);
}
void vga_nodew_local_pu_arm_cb(void* record, CALL* data) {
    arm<vga_pu>(record, data);
}
void vga_nodew_down_lu_arm_cb(void* record, CALL* data) {
    arm<vga_down_lu>(record, data);
}
void vga_nodew_primary_line_arm_cb(void* record, CALL* data) {
    arm<vga_primary_line>(record, data);
}
void vga_nodew_primary_lu0_arm_cb(void* record, CALL* data) {
    arm<vga_primary_lu0>(record, data);
}
void vga_nodew_lu62_arm_cb(void* record, CALL* data) {
    arm<vga_lu62>(record, data);
}
void vga_nodew_mode_arm_cb(void* record, CALL* data) {
    arm<vga_mode>(record, data);
}
void vga_nodew_ls_r_arm_cb(void* record, CALL* data) {
    arm<vga_ls_routing>(record, data);
}
void vga_nodew_rem_sys_arm_cb(void* record, CALL* data) {
    arm<vga_rem_sys>(record, data);
}
void vga_nodew_rem_plu_arm_cb(void* record, CALL* data) {
    arm<vga_rem_plu>(record, data);
}
void vga_nodew_rem_sess_arm_cb(void* record, CALL* data) {
    arm<vga_rem_sess>(record, data);
}
void vga_nodew_deplu_arm_cb(void* record, CALL* data) {
    vga_is_lu62(record) ? arm<vga_lu62>(record, data) : arm<vga_lu03>(record, data);
}
void vga_nodew_ls_r_title_arm_cb(void* record, CALL* data) {
    auto* lu = static_cast<vga_lu62*>(record);
    arm_row(lu->parent, &lu->ls_r_title, data);
}

void vga_nodew_port_act_cb(void* record, CALL* data) {
    act<vga_port>(record, data);
}
void vga_nodew_ls_act_cb(void* record, CALL* data) {
    act<vga_ls>(record, data);
}
void vga_nodew_local_pu_act_cb(void* record, CALL* data) {
    act<vga_pu>(record, data);
}
void vga_nodew_down_lu_act_cb(void* record, CALL* data) {
    act<vga_down_lu>(record, data);
}
void vga_nodew_primary_line_act_cb(void* record, CALL* data) {
    act<vga_primary_line>(record, data);
}
void vga_nodew_primary_lu0_act_cb(void* record, CALL* data) {
    act<vga_primary_lu0>(record, data);
}
void vga_nodew_lu62_act_cb(void* record, CALL* data) {
    act<vga_lu62>(record, data);
}
void vga_nodew_mode_act_cb(void* record, CALL* data) {
    act<vga_mode>(record, data);
}
void vga_nodew_ls_r_act_cb(void* record, CALL* data) {
    act<vga_ls_routing>(record, data);
}
void vga_nodew_rem_sys_act_cb(void* record, CALL* data) {
    act<vga_rem_sys>(record, data);
}
void vga_nodew_rem_plu_act_cb(void* record, CALL* data) {
    act<vga_rem_plu>(record, data);
}
void vga_nodew_rem_sess_act_cb(void* record, CALL* data) {
    act<vga_rem_sess>(record, data);
}
void vga_nodew_deplu_act_cb(void* record, CALL* data) {
    vga_is_lu62(record) ? act<vga_lu62>(record, data) : act<vga_lu03>(record, data);
}

void vga_nodew_port_drag_cb(void* record, bool leaving, bool upward) {
    drag<vga_port>(record, leaving, upward);
}
void vga_nodew_mode_drag_cb(void* record, bool leaving, bool upward) {
    drag<vga_mode>(record, leaving, upward);
}
void vga_nodew_rem_sys_drag_cb(void* record, bool leaving, bool upward) {
    drag<vga_rem_sys>(record, leaving, upward);
}
void vga_nodew_no_drag_cb(void*, bool, bool) {}

void vga_nodew_lu62_decor_cb(void* record, Widget, int x, int y, GC) {
    auto* lu = static_cast<vga_lu62*>(record);
    if (vga_heads_modes(lu)) {
        underline(lu->parent, &lu->viewer, x, y, 830);
    }
}
void vga_nodew_ls_r_title_decor_cb(void* record, Widget, int x, int y, GC) {
    auto* lu = static_cast<vga_lu62*>(record);
    if (vga_is_open(lu->ls_r_title)) {
        underline(lu->parent, &lu->ls_r_title, x, y, 833);
    }
}
void vga_nodew_rem_plu_decor_cb(void* record, Widget, int x, int y, GC) {
    auto* plu = static_cast<vga_rem_plu*>(record);
    if (vga_is_open(plu->viewer)) {
        underline(vga_node_of(plu), &plu->viewer, x, y, 847);
    }
}

bool vga_nodew_is_fake_port(const void* record) {
    return vga_is_fake_port(static_cast<const vga_port*>(record));
}
bool vga_nodew_is_fake_rem_sys(const void* record) {
    return vga_is_fake_rem_sys(static_cast<const vga_rem_sys*>(record));
}

void vga_update_port_viewer(vga_port* port) {
    update_row(vga_node_of(port), &port->viewer);
}
void vga_update_ls_viewer(vga_ls* ls) {
    update_row(vga_node_of(ls), &ls->viewer);
    vga_update_port_viewer(ls->parent);
}
void vga_update_local_pu_viewer(vga_pu* pu) {
    if (pu->ls_entry != nullptr) { // its row stands for the PU
        vga_update_ls_viewer(pu->ls_entry);
    } else {
        update_row(pu->parent, &pu->viewer);
    }
}
void vga_update_down_lu_viewer(vga_down_lu* lu) {
    update_row(vga_node_of(lu), &lu->viewer);
}
void vga_update_lu62_viewer(vga_lu62* lu) {
    update_row(lu->parent, &lu->viewer);
}
void vga_update_deplu_viewer(vga_deplu* lu) {
    if (vga_is_lu62(lu)) {
        vga_update_lu62_viewer(reinterpret_cast<vga_lu62*>(lu));
    } else {
        auto* lu03 = reinterpret_cast<vga_lu03*>(lu);
        update_row(vga_node_of(lu03), &lu03->viewer);
    }
}
void vga_update_mode_viewer(vga_mode* mode) {
    update_row(vga_node_of(mode), &mode->viewer);
    vga_update_lu62_viewer(mode->parent->parent);
}
