// The dialogs that ask how to start a link station (activate or enable it) and how to stop one
// (stop it or disable it as well). A node has at most one of each.
#pragma once

#include "ui/framework/dialog.h"

struct vga_ls;

struct vga_ls_choice_dialog { // parent_item is the node
    vga_dialog common;
    Widget start_or_stop; // toggles
    Widget enable_or_disable;
    NB_HANDLE ls;
};

void vga_display_start_ls_dialog(vga_ls* ls);
void vga_display_stop_ls_dialog(vga_ls* ls);
// Makes the start and stop of link stations ask with these dialogs.
void vga_install_start_stop_dialogs();

// ---- for the dialog table ----

bool vga_strtl_get_widgets(vga_dialog* dialog);
bool vga_stopl_get_widgets(vga_dialog* dialog);
bool vga_strtl_close_proc(vga_dialog* dialog, bool forced);
bool vga_stopl_close_proc(vga_dialog* dialog, bool forced);
void vga_strtl_ok(Widget widget, XtPointer, XtPointer);
void vga_stopl_ok(Widget widget, XtPointer, XtPointer);
extern const VGA_NAMED_CALLBACK gvga_strtl_callbacks[1];
extern const VGA_NAMED_CALLBACK gvga_stopl_callbacks[1];
