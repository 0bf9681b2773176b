// The node dialog: the basic parameters of a node, and, in a sub-dialog, a few more and the node's
// defaults.
#pragma once

#include "nof/node.h"
#include "shell/verb_queue.h"
#include "ui/framework/field_table.h"

struct vga_node;

struct vga_node_image { // both blocks are sent whole
    NODE_PARAMETERS parameters;
    NODE_DEFAULTS defaults;
};

struct vga_node_dialog {
    vga_form form; // parent_item: the node
    vga_node_image image;
    bool new_node; // it had no configuration when it was defined
    Widget cp_net_name, cp_name, cp_alias;
    Widget node_type, node_type_label, net_node, branch_network_node, end_node, len_node;
    Widget id_block, id_number, description, advanced_button;
};

struct vga_node_adv_dialog {
    vga_form form; // a child of the node dialog, whose image it edits
    Widget session_button, security_button, timeout;
    Widget nmapi_frame, nmapi_menu, nmapi_normal, nmapi_back, nmapi_migration, nmvt_button;
    Widget syncpoint_button, password_button;
};

// Opens the dialog of a node, or raises the one that is open. The flag says nothing.
void vga_display_node_dialog(vga_node* node, bool flag);
void vga_display_node_adv(vga_node_dialog* parent);

// ---- rows of the dialog table ----
bool vga_get_widgets_node_conf(vga_dialog* dialog);
bool vga_noded_close_proc(vga_dialog* dialog, bool forced);
void vga_open_node_dialog(vga_dialog* parent, void* node, VGA_OPEN how);
extern const VGA_NAMED_CALLBACK gvga_noded_callbacks[3];
bool vga_get_widgets_node_adv(vga_dialog* dialog);
bool vga_nodea_close_proc(vga_dialog* dialog, bool forced);
extern const VGA_NAMED_CALLBACK gvga_nodea_callbacks[1];

// ---- callbacks ----
void vga_noded_ok(Widget widget, XtPointer, XtPointer);
void vga_noded_apply(Widget widget, XtPointer, XtPointer);
void vga_noded_advanced(Widget widget, XtPointer, XtPointer);
void vga_nodea_ok(Widget widget, XtPointer, XtPointer);
void vga_nodea_validate_fields(vga_node_adv_dialog* dialog);

// Checks the fields, asks what the flags say, and sends the definition. False: no memory.
bool vga_issue_def_node(vga_node_dialog* dialog, bool check_cp_clash, bool check_master,
                        bool check_rename);
void vga_noded_def_node_cb(VGA_COMPLETION* completion);
void vga_noded_update_cb(VGA_COMPLETION* completion);
void vga_def_node_confirm_cp_name_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
void vga_def_node_confirm_master_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
void vga_def_node_confirm_update_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
