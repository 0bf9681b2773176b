// Indications: the node reports a change of state, or the node software its own end, without being
// asked, and the store follows. A handler finds the record the indication names, takes the changed
// fields into it, makes or removes the records that the change implies, and has their rows drawn
// anew. When the node says that indications were lost, it lists that kind of resource again.
//
// Indications belong to the library: handlers neither keep nor free them. One whose correlator is
// no valid handle any more is dropped. A name the store does not know is logged, unless the build
// has still to list it, and ignored. A failure to make a record or to send a query sets exit code
// 1.
#pragma once

#include "shell/verb_queue.h"
#include "store/records.h"

struct vga_dialog;

// How rows and buttons are drawn anew; filled at start-up by the windows. An empty entry does
// nothing. Each row function also brings the buttons up to date that depend on the row.
struct vga_status_hooks {
    void (*update_port)(vga_port*);
    void (*update_ls)(vga_ls*);
    void (*update_local_pu)(vga_pu*);
    void (*update_deplu)(vga_deplu*);
    void (*update_down_lu)(vga_down_lu*);
    void (*update_lu62)(vga_lu62*);
    void (*update_mode)(vga_mode*);
    void (*button_states)(vga_node*); // of its open node window
};
extern vga_status_hooks gvga_status_hooks;

// Makes the verb queue send indications here.
void vga_install_status_handlers();

// Indications of a node's resources: hands each to the routine of its kind.
void vga_indication_handler(VGA_COMPLETION* completion, void* block);

void vga_process_dlc_ind(vga_node* node, const void* block);
void vga_process_port_ind(vga_node* node, const void* block);
void vga_process_ls_ind(vga_node* node, const void* block);
void vga_process_local_pu_ind(vga_node* node, const void* block);
void vga_process_dlur_pu_ind(vga_node* node, const void* block);
void vga_process_lu03_ind(vga_node* node, const void* block);
void vga_process_down_pu_ind(vga_node* node, const void* block);
void vga_process_down_lu_ind(vga_node* node, const void* block);
void vga_process_local_lu_ind(vga_node* node, const void* block);
void vga_process_plu_ind(vga_node* node, const void* block);
void vga_process_mode_ind(vga_node* node, const void* block);
void vga_process_dir_ind(vga_node* node, const void* block);
void vga_process_ipbridge_ind(vga_node* node, const void* block); // sessions of APPC over IP

// Asks for a link station made by the node, which is not in the store; logs a failure.
void vga_query_implicit_ls(vga_node* node, const char* ls_name);
// Completions of the queries that indications lead to.
void vga_check_one_port(VGA_COMPLETION* completion);    // a port that became active
void vga_build_implicit_ls(VGA_COMPLETION* completion); // a link station made by its activation
// Asks the node what has taken an LU 0 to 3. Exit code 1 is set without memory.
void vga_query_lu03_user(vga_lu03* lu);
void vga_process_lu03_user(VGA_COMPLETION* completion); // what has taken an LU 0 to 3

// A node or a file of the domain was lost, or the node software shuts down.
void vga_process_nof_status_ind(VGA_COMPLETION* completion, void* block);
// A server of the domain came up or went down.
void vga_process_server_ind(VGA_COMPLETION* completion, void* block);
// The network file changed: forgets its names.
void vga_process_sna_net_ind(VGA_COMPLETION* completion, void* block);
// The operator has read that a node died: a stand-alone program ends with its node.
void vga_node_dead_info_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
