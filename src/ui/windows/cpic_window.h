// The window of the CPI-C side information: what the symbolic destinations of programs stand for.
#pragma once

#include "ui/windows/list_window.h"

bool vga_display_cpic_window();

// ---- for the dialog table ----
bool vga_get_widgets_cpic_window(vga_dialog* dialog);
bool vga_cpicw_close_proc(vga_dialog* dialog, bool forced);
void vga_open_cpic_window(vga_dialog* parent, void* system, VGA_OPEN how);
extern const VGA_NAMED_CALLBACK gvga_cpicw_callbacks[5];
extern XtActionsRec gvga_cpicw_actions[1];
void vga_cpicw_add(Widget widget, XtPointer, XtPointer);
void vga_cpicw_modify(Widget widget, XtPointer, XtPointer);
void vga_cpicw_copy(Widget widget, XtPointer, XtPointer);
void vga_cpicw_delete(Widget widget, XtPointer, XtPointer);
void vga_cpicw_focus(Widget widget, XEvent*, String* params, Cardinal* count);

// ---- for the viewer type table ----
int vga_create_cpic_viewer_text(void* record, char* text);
int vga_choose_cpic_viewer_icon(void* record);
void vga_cpicw_cpic_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_cpicw_cpic_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_cpicw_disarm(Widget widget, XtPointer, XtPointer);
void vga_cpicw_set_button_states(vga_dialog* window);

// ---- deleting ----
void vga_cpicw_delete_proc(vga_dialog* window);
void vga_delete_cpic_confirm_cb(vga_dialog* window, NB_ULONG record, NB_ULONG answer);
void vga_delete_cpic_cb(VGA_COMPLETION* completion);
