// The dialog of CPI-C side information: what a symbolic destination name stands for.
#pragma once

#include "nof/user.h"
#include "shell/verb_queue.h"
#include "ui/framework/field_table.h"

struct vga_cpic;

#pragma pack(push, 1)
struct vga_cpic_image { // as it stands in the define block and in the record's entry
    NB_NAME8L sym_dest_name;
    CPIC_SIDE_INFO_DEF def;
};
#pragma pack(pop)

struct vga_cpic_dialog {
    vga_form form;        // parent_item: the record; null for a new one, and once it is deleted
    vga_cpic_image image; // as shown first; fields show most of it
    bool existing;        // opened for a record
    bool selected;        // whose row was the selected one
    Widget name, local_lu_alias, lu_alias_button, cp_lu_button;
    Widget appl_tp, appl_tp_name, serv_tp, serv_tp_name;
    Widget plu_alias, plu_alias_name, fqplu, fqplu_net_name, fqplu_name, mode_name;
    Widget sec_none, sec_same, sec_prog, sec_prog_strong, user_id, password, description;
};

// record null: for a new one. copy: for a new one like the record.
void vga_display_cpic_dialog(vga_cpic* record, bool copy);

// ---- row of the dialog table ----
bool vga_get_widgets_cpic(vga_dialog* dialog);
bool vga_cpicd_close_proc(vga_dialog* dialog, bool forced);
void vga_open_cpic_dialog(vga_dialog* parent, void* record, VGA_OPEN how);
extern const VGA_NAMED_CALLBACK gvga_cpicd_callbacks[8];

// ---- callbacks ----
void vga_cpicd_ok(Widget widget, XtPointer, XtPointer);
void vga_cpicd_apply(Widget widget, XtPointer, XtPointer);
void vga_cpicd_sec(Widget widget, XtPointer, XtPointer);
void vga_cpicd_plu_full(Widget widget, XtPointer, XtPointer);
void vga_cpicd_plu_alias(Widget widget, XtPointer, XtPointer);
void vga_cpicd_serv_tp(Widget widget, XtPointer, XtPointer);
void vga_cpicd_appl_tp(Widget widget, XtPointer, XtPointer);
void vga_cpicd_lu_alias(Widget widget, XtPointer, XtPointer); // the toggle and the list button

// Checks the fields and sends the definition. False: no memory.
bool vga_issue_def_cpic(vga_cpic_dialog* dialog);
void vga_define_cpic_cb(VGA_COMPLETION* completion);
