// The functions that the viewer type table names for the rows of the node window: what a row shows
// and how it reacts. The first argument is the row's record.
#pragma once

#include <X11/Intrinsic.h>
#include <Xm/DrawnB.h>

struct vga_dialog;

// ---- row texts: into text, returning the length ----
int vga_create_lu62_viewer_text(void* record, char* text);
int vga_create_mode_viewer_text(void* record, char* text);
int vga_create_port_viewer_text(void* record, char* text);
int vga_create_ls_viewer_text(void* record, char* text);
int vga_create_local_pu_viewer_text(void* record, char* text);
int vga_create_deplu_viewer_text(void* record, char* text);
int vga_create_down_lu_viewer_text(void* record, char* text);
int vga_create_rem_sys_viewer_text(void* record, char* text);
int vga_create_rem_plu_viewer_text(void* record, char* text);
int vga_create_rem_sess_viewer_text(void* record, char* text);
int vga_create_ls_r_title_viewer_text(void* record, char* text);
int vga_create_ls_r_viewer_text(void* record, char* text);
int vga_create_primary_line_viewer_text(void* record, char* text);
int vga_create_primary_lu0_viewer_text(void* record, char* text);

// ---- icons: VGA_ICON numbers ----
int vga_choose_lu62_viewer_icon(void* record);
int vga_choose_mode_viewer_icon(void* record);
int vga_choose_port_viewer_icon(void* record);
int vga_choose_ls_viewer_icon(void* record);
int vga_choose_local_pu_viewer_icon(void* record);
int vga_choose_deplu_viewer_icon(void* record);
int vga_choose_down_lu_viewer_icon(void* record);
int vga_choose_rem_sys_viewer_icon(void* record);
int vga_choose_rem_plu_viewer_icon(void* record);
int vga_choose_rem_sess_viewer_icon(void* record);
int vga_choose_ls_r_title_viewer_icon(void* record);
int vga_choose_ls_r_viewer_icon(void* record);
int vga_choose_primary_line_viewer_icon(void* record);
int vga_choose_primary_lu0_viewer_icon(void* record);

// ---- the button went down on a row ----
void vga_nodew_lu62_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_mode_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_port_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_ls_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_local_pu_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_deplu_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_down_lu_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_rem_sys_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_rem_plu_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_rem_sess_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_ls_r_title_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_ls_r_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_primary_line_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_primary_lu0_arm_cb(void* record, XmDrawnButtonCallbackStruct* data);

// ---- a row was clicked ----
void vga_nodew_lu62_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_mode_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_port_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_ls_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_local_pu_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_deplu_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_down_lu_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_rem_sys_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_rem_plu_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_rem_sess_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_ls_r_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_primary_line_act_cb(void* record, XmDrawnButtonCallbackStruct* data);
void vga_nodew_primary_lu0_act_cb(void* record, XmDrawnButtonCallbackStruct* data);

// ---- selection by dragging ----
void vga_nodew_mode_drag_cb(void* record, bool leaving, bool upward);
void vga_nodew_port_drag_cb(void* record, bool leaving, bool upward);
void vga_nodew_rem_sys_drag_cb(void* record, bool leaving, bool upward);
void vga_nodew_no_drag_cb(void* record, bool leaving, bool upward);

// ---- what is drawn on a row besides its text ----
void vga_nodew_lu62_decor_cb(void* record, Widget widget, int x, int y, GC gc);
void vga_nodew_rem_plu_decor_cb(void* record, Widget widget, int x, int y, GC gc);
void vga_nodew_ls_r_title_decor_cb(void* record, Widget widget, int x, int y, GC gc);

// ---- the selection changed ----
void vga_nodew_disarm(Widget widget, XtPointer, XtPointer);
void vga_nodew_set_button_states(vga_dialog* dialog);

// ---- rows that are only ever selected by themselves ----
bool vga_nodew_is_fake_port(const void* record);
bool vga_nodew_is_fake_rem_sys(const void* record);
