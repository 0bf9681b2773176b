// The modal firewall: message boxes wait while the operator is in the middle of a mouse
// interaction. And the busy cursor.
#pragma once

#include "nba/nba.h"

#include <X11/Intrinsic.h>

extern Widget gvga_modal_firewall_widget; // the widget the operator is holding
extern NB_LONG gvga_modal_firewall_count; // menus posted
extern Widget gvga_current_button;        // the tool-bar button under the pointer

// Installs the firewall on a widget tree, its menus included. Installing it again does nothing.
void vga_add_modal_popup_firewall(Widget widget);
// The operator holds nothing and no menu is posted.
bool vga_firewall_clear();
// Schedules the showing of waiting messages when the firewall is clear.
void vga_check_firewall();
// Ends the operator's hold on the widget or on one inside it: a button is disarmed, a scroll bar
// released.
void vga_release_held_widget(Widget widget);
// XtSetSensitive that first releases what the operator holds.
void vga_set_sensitive(Widget widget, bool state);
// Opens the pop-up menu, a row column, with button 3 over the widget.
void vga_install_popup_menu(Widget widget, Widget menu);
void vga_popup_menu(Widget widget, XtPointer menu, XEvent* event, Boolean* continue_dispatch);

// The busy cursor on every window of the program.
void vga_display_hourglass(bool on);
