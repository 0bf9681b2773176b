// Callbacks that the forms of several windows name: domain-wide windows, logging and help.
#pragma once

#include <X11/Intrinsic.h>

struct vga_dialog;

// True when a node of the domain has a configuration; otherwise the operator is told so.
bool vga_check_config(vga_dialog* dialog);
void vga_action_user(Widget widget, XtPointer, XtPointer);
void vga_action_lu_pool(Widget widget, XtPointer, XtPointer);
void vga_action_cpic(Widget widget, XtPointer, XtPointer);
void vga_action_rje(Widget widget, XtPointer, XtPointer);
void vga_sysw_logging(Widget widget, XtPointer, XtPointer);

// Help, in ui/windows/help.cpp: on a dialog (client_data: the help location, a string) and on the
// message that a box shows (client_data: the handle of its dialog).
void vga_help_cb(Widget widget, XtPointer client_data, XtPointer);
void vga_modal_dialog_help_cb(Widget widget, XtPointer client_data, XtPointer);
void vga_menu_help_contents(Widget widget, XtPointer, XtPointer);
void vga_menu_help_index(Widget widget, XtPointer, XtPointer);
void vga_menu_help_help(Widget widget, XtPointer, XtPointer);
void vga_menu_help_about(Widget widget, XtPointer, XtPointer);
