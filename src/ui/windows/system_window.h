// The system window: the nodes of a domain with their state and their part in keeping the
// configuration. It is the main window of a client/server run; node windows open from it.
#pragma once

#include "nba/nba.h"
#include "shell/verb_queue.h"
#include "ui/framework/dialog.h"

#include <X11/Intrinsic.h>

struct vga_node;

// Its parent_item is the system record; the list is that record's node viewer root.
struct vga_system_window {
    vga_dialog common;
    Widget nodes, h_scroll, v_scroll;       // viewer
    Widget button_start, button_start_icon; // tool bar: a frame and an icon button each
    Widget button_stop, button_stop_icon;
    Widget button_zoom, button_zoom_icon;
    Widget menu_item_start, menu_item_stop, menu_item_zoom;
    Widget menu_item_add_backup, menu_item_del_backup;
    Widget menu_item_trace;
    Widget message_bar;
    Widget window_menu; // pane of the Windows menu
    NB_USHORT zoom_ok;  // a node is selected and can be opened
    Widget tool_bar;    // the row of buttons
};

// ---- life of the window ----

// Opens or raises it. ready false: the first window appears insensitive and waits for the domain to
// be read; ready true then shows the domain in it. False when it cannot be shown.
bool vga_display_system_window(bool ready);
bool vga_get_widgets_system_window(vga_dialog* dialog);
// forced false asks whether to end the program, and the window stays.
bool vga_sysw_close_proc(vga_dialog* dialog, bool forced);
Widget vga_sysw_focus_widget(vga_dialog* dialog);

// Keep the open window true to the store; they do nothing while there is none. The node's row, the
// buttons and the node's own window; a new node; a node that goes; the parts that the nodes have in
// the domain, its files and its name.
void vga_update_node_viewer(vga_node* node);
void vga_sysw_node_added(vga_node* node);
void vga_sysw_node_removed(vga_node* node);
void vga_sysw_roles_changed();

// ---- buttons and message bar ----

// dialog: the system window, as the system record knows it.
void vga_sysw_set_button_states(vga_dialog* dialog);
void vga_sysw_enter_button(Widget widget, XEvent* event, String* params, Cardinal* count);
void vga_sysw_leave_button(Widget widget, XEvent* event, String* params, Cardinal* count);

// ---- backup servers: completions, the correlator is the node's handle ----

void vga_sysw_add_backup_cb(VGA_COMPLETION* work);
void vga_sysw_del_backup_cb(VGA_COMPLETION* work);

// ---- what the form binds ----

inline constexpr NB_USHORT gvga_sysw_callback_count = 7;
extern const VGA_NAMED_CALLBACK gvga_sysw_callbacks[gvga_sysw_callback_count];
inline constexpr NB_USHORT gvga_sysw_action_count = 2;
extern XtActionsRec gvga_sysw_actions[gvga_sysw_action_count];

void vga_sysw_zoom(Widget widget, XtPointer, XtPointer);
