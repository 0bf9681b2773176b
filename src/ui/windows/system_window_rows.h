// The functions that the viewer type table names for the rows of the system window; the record is
// the node.
#pragma once

#include <X11/Intrinsic.h>
#include <Xm/DrawnB.h>

struct vga_dialog;

int vga_create_node_viewer_text(void* record, char* text);
int vga_choose_node_viewer_icon(void* record);
void vga_sysw_node_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_sysw_node_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
// One selected row, which moves along with the pointer.
void vga_sysw_node_drag_cb(void* record, bool leaving, bool upward);
void vga_sysw_disarm(Widget widget, XtPointer, XtPointer);
void vga_sysw_set_button_states(vga_dialog* dialog);
