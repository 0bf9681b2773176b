// The node window: one node with its connectivity, its local LUs and the remote systems it knows,
// each pane a viewer root of the node record, and the actions on what is selected in them.
#pragma once

#include "nba/nba.h"
#include "ui/framework/dialog.h"
#include "ui/viewer/viewer.h"

#include <X11/Intrinsic.h>

struct vga_deplu;
struct vga_down_lu;
struct vga_ls;
struct vga_lu62;
struct vga_mode;
struct vga_node;
struct vga_port;
struct vga_pu;

// Its parent_item is the node; null while the window waits for the node to be read.
struct vga_node_window {
    vga_dialog common;
    Widget server; // the node itself as an item that can be selected
    Widget text_server;
    Widget icon_server;
    Widget menu_item_port, menu_item_ls;
    Widget menu_item_start, menu_item_stop, menu_item_del, menu_item_zoom, menu_item_status,
        menu_item_copy;
    Widget window_menu; // pane of the Windows menu
    Widget menu_item_dlur, menu_item_pu_conc, menu_item_tn, menu_item_ipbridge, menu_item_lu0,
        menu_item_hpr;                      // managed as far as the node can do it
    Widget button_start, button_start_icon; // tool bar: a frame and an icon button each
    Widget button_stop, button_stop_icon;
    Widget button_add, button_add_icon;
    Widget button_del, button_del_icon;
    Widget button_zoom, button_zoom_icon;
    Widget button_status, button_status_icon;
    Widget button_copy, button_copy_icon;
    Widget message_bar;
    Widget link, link_h_scroll, link_v_scroll;          // viewer of the top pane
    Widget rem_sys, rem_sys_h_scroll, rem_sys_v_scroll; // of the bottom pane
    Widget lu, lu_h_scroll, lu_v_scroll;                // of the middle pane
    Widget top_pane, middle_pane, bottom_pane;
    Widget selected_pane;                   // a pane form, server, or none
    Pixel pane_background, pane_foreground; // of a pane that is not selected
    Widget top_sash, bottom_sash;           // while moved from the keyboard
    Widget paned_window;
    NB_USHORT zoom_ok; // the selection can be opened
    Widget menu_item_add;
    Widget tool_bar;      // the row of buttons
    NB_USHORT built;      // shows its node
    NB_USHORT area_width; // of the text of the node area, 0: not yet measured
};

// ---- life of the window ----

bool vga_get_widgets_node_window(vga_dialog* dialog);
bool vga_nodew_close_proc(vga_dialog* dialog, bool forced);
// Opens or raises a node's window. ready false, without node: the first window appears insensitive
// and waits; ready true with its node then fills it. False when it cannot be shown.
bool vga_display_node_window(vga_node* node, bool ready);
// Shows the node of the window in it: panes, menus, Windows menu. False without a node.
bool vga_build_node_window(vga_node* node);
// After a change of the node's state or configuration: node area, menus, message bar and buttons.
void vga_update_node_window(vga_node* node);
// Takes the panes' contents down.
void vga_clear_node_window(vga_dialog* dialog);
// All of a node was read: redraws it and, once the program runs, opens its window if it has none.
void vga_node_built(vga_node* node);
// Tells the store and the verb processors which windows to call.
void vga_install_window_hooks();

// ---- selection ----

// The record of the current selected row, or the node; null without a selection. type:
// VGA_VIEWER_*, VGA_VIEWER_SELECT_NONE without a selection; count: of selected rows; parent: the
// row above the selected ones, null at the top level. The last three may be null.
void* vga_nodew_get_selection(vga_dialog* dialog, NB_BYTE* type, NB_LONG* count,
                              vga_viewer** parent);
// Clears the selections of all panes.
void vga_nodew_clear_selection(vga_node* node);
// Clears them and leaves no pane selected.
void vga_nodew_deselect_pane(vga_dialog* dialog);
// Makes a pane, or the node area, the one that holds the selection.
void vga_nodew_pane_selection(vga_dialog* dialog, Widget pane);
// The widget of the selected pane that takes the keyboard, or null.
Widget vga_nodew_focus_widget(vga_dialog* dialog);

// ---- buttons and message bar ----

void vga_nodew_set_button_states(vga_dialog* dialog);
// A catalogue message without arguments in the message bar; 0 empties it.
void vga_message_node_window(vga_dialog* dialog, int message);
void vga_nodew_enter_button(Widget widget, XEvent* event, String* params, Cardinal* count);
void vga_nodew_leave_button(Widget widget, XEvent* event, String* params, Cardinal* count);

// ---- rows: redraw a record and the rows that show its state ----

void vga_update_port_viewer(vga_port* port);
void vga_update_ls_viewer(vga_ls* ls);
void vga_update_local_pu_viewer(vga_pu* pu);
void vga_update_down_lu_viewer(vga_down_lu* lu);
void vga_update_deplu_viewer(vga_deplu* lu);
void vga_update_lu62_viewer(vga_lu62* lu);
void vga_update_mode_viewer(vga_mode* mode);

// ---- what the form binds ----

inline constexpr NB_USHORT gvga_nodew_callback_count = 41;
extern const VGA_NAMED_CALLBACK gvga_nodew_callbacks[gvga_nodew_callback_count];
inline constexpr NB_USHORT gvga_nodew_action_count = 2;
extern XtActionsRec gvga_nodew_actions[gvga_nodew_action_count];

void vga_nodew_delete(Widget widget, XtPointer, XtPointer);
void vga_nodew_zoom(Widget widget, XtPointer, XtPointer);
void vga_nodew_add_items(Widget widget, XtPointer, XtPointer);
