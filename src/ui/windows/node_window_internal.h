// What the files of the node window share.
#pragma once

#include "store/records.h"
#include "store/routing_records.h"
#include "ui/windows/node_window.h"
#include "ui/windows/window_parts.h"

#include <array>
#include <cstring>

inline vga_node_window* vga_as_node_window(vga_dialog* dialog) {
    return reinterpret_cast<vga_node_window*>(dialog);
}
// The window a widget belongs to, or null.
inline vga_node_window* vga_nodew_of(Widget widget) {
    return vga_as_node_window(vga_dialog_of(widget));
}
inline vga_node* vga_nodew_node(const vga_node_window* window) {
    return static_cast<vga_node*>(window->common.parent_item);
}

// ---- panes ----

struct VGA_NODEW_PANE {
    Widget vga_node_window::*form;
    vga_viewer_root vga_node::*root;
    Widget vga_node_window::*draw;
    Widget vga_node_window::*h_scroll;
    Widget vga_node_window::*v_scroll;
    const char* title; // names of the labels above the viewer
    const char* key;
    const char* help;
};
inline constexpr std::array<VGA_NODEW_PANE, 3> vga_nodew_panes = {{
    {&vga_node_window::top_pane, &vga_node::links_root, &vga_node_window::link,
     &vga_node_window::link_h_scroll, &vga_node_window::link_v_scroll, "nodewConnectivityTitle",
     "nodewConnectivityKey", "connectivitypane"},
    {&vga_node_window::middle_pane, &vga_node::lus_root, &vga_node_window::lu,
     &vga_node_window::lu_h_scroll, &vga_node_window::lu_v_scroll, "nodewLocalLUsTitle",
     "nodewLocalLUsKey", "localluspane"},
    {&vga_node_window::bottom_pane, &vga_node::rem_sys_root, &vga_node_window::rem_sys,
     &vga_node_window::rem_sys_h_scroll, &vga_node_window::rem_sys_v_scroll, "nodewRemSysTitle",
     "nodewRemSysKey", "remotesystemspane"},
}};
void vga_nodew_select_top_pane(Widget widget, XtPointer, XtPointer);
void vga_nodew_select_middle_pane(Widget widget, XtPointer, XtPointer);
void vga_nodew_select_bottom_pane(Widget widget, XtPointer, XtPointer);
void vga_nodew_server_arm_cb(Widget widget, XtPointer, XtPointer);
// The pane that holds the selection; null when it is none of the three.
const VGA_NODEW_PANE* vga_nodew_selected_pane(const vga_node_window* window);

// ---- the node a record belongs to ----

inline vga_node* vga_node_of(const vga_node* node) {
    return const_cast<vga_node*>(node);
}
inline vga_node* vga_node_of(const vga_port* port) {
    return port->parent->parent;
}
inline vga_node* vga_node_of(const vga_ls* ls) {
    return vga_node_of(ls->parent);
}
inline vga_node* vga_node_of(const vga_pu* pu) {
    return pu->parent;
}
inline vga_node* vga_node_of(const vga_lu03* lu) {
    return lu->parent->parent;
}
inline vga_node* vga_node_of(const vga_down_lu* lu) {
    return lu->parent->parent;
}
inline vga_node* vga_node_of(const vga_lu62* lu) {
    return lu->parent;
}
inline vga_node* vga_node_of(const vga_mode* mode) {
    return mode->parent->parent->parent;
}
inline vga_node* vga_node_of(const vga_ls_routing* route) {
    return route->parent->parent;
}
inline vga_node* vga_node_of(const vga_rem_sys* rem_sys) {
    return rem_sys->parent;
}
inline vga_node* vga_node_of(const vga_rem_plu* plu) {
    return plu->parent->parent;
}
inline vga_node* vga_node_of(const vga_rem_sess* sess) {
    return vga_node_of(sess->parent);
}
inline vga_node* vga_node_of(const vga_primary_line* line) {
    return line->parent;
}
inline vga_node* vga_node_of(const vga_primary_lu0* lu) {
    return lu->parent->parent;
}

// ---- what rows, icons and buttons ask of a record ----

inline bool vga_is_lu62(const void* deplu) {
    return static_cast<const vga_deplu*>(deplu)->lu_type == VGA_DEPLU_TYPE_LU62;
}
inline bool vga_is_implicit(const vga_ls* ls) {
    return ls->vcb->det.implicit == 1;
}
inline bool vga_is_fake_rem_sys(const vga_rem_sys* rem_sys) {
    return rem_sys == rem_sys->parent->network_fake_rem_sys;
}
// A blank partner name stands for every partner.
inline bool vga_is_wildcard(const vga_ls_routing* route) {
    return route->vcb.key.plu_name[0] == 0x40;
}
// Known from sessions only.
inline bool vga_is_dynamic(const vga_rem_plu* plu) {
    return !plu->located && !plu->plu_defn;
}
inline bool vga_is_open(const vga_viewer& viewer) {
    return viewer.expanded && viewer.child_count != 0;
}
// The row of a local LU 6.2 names the columns of the modes below it.
bool vga_heads_modes(const vga_lu62* lu);
// "No sessions", "1 session" or their number, into text (at most 64 characters).
void vga_session_count_string(NB_LONG count, char* text);

// ---- buttons ----

enum VGA_NODEW_BUTTON : int {
    VGA_NODEW_START,
    VGA_NODEW_STOP,
    VGA_NODEW_DELETE,
    VGA_NODEW_ZOOM,
    VGA_NODEW_COPY,
    VGA_NODEW_STATUS,
    VGA_NODEW_ADD,
    VGA_NODEW_BUTTON_COUNT,
};
extern const std::array<VGA_TOOL<vga_node_window>, VGA_NODEW_BUTTON_COUNT> vga_nodew_tools;
struct VGA_NODEW_STATES {
    std::array<bool, VGA_NODEW_BUTTON_COUNT> sensitive;
    bool zoom_ok;
};
// What can be done with a selection: its type, the number of rows, and the record when it is one.
// Adding depends on the pane instead and stays false here.
VGA_NODEW_STATES vga_nodew_button_states(const vga_node* node, NB_BYTE type, NB_LONG count,
                                         const void* record);
// Message about a button and the name of the selected record, into text (VGA_MESSAGE_BUFFER_SIZE);
// empty where the button has none.
void vga_nodew_button_help(VGA_NODEW_BUTTON button, NB_BYTE type, NB_LONG count, const void* record,
                           char* text);
// A message whose argument is the name of a row's record, into text.
void vga_nodew_print_name(int message, NB_BYTE type, const void* record, char* text);

// ---- life of the window ----

// Key events of the node area.
void vga_nodew_server_key(Widget widget, XtPointer, XEvent* event, Boolean* continue_dispatch);
// The entries of the window manager's menu that give a sash the keyboard.
void vga_nodew_add_sash_menu(vga_node_window* window);
