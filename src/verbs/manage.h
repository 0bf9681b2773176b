// Starting and stopping: the node, its links, DLUR PUs, downstream LUs and LU-LU sessions.
//
// A start is a chain: a link station needs its port, the port its DLC, and all of them an active
// node. Each step is sent from the completion of the one before, and nothing else remembers the
// chain. Records show that something is pending as soon as the first verb is queued; its answer, or
// an indication, takes that back. Before anything stops the operator is asked.
//
// Verbs go to the node, with a record's handle as correlator. A record that has gone when the
// answer comes ends the chain; what the answered verb was for still takes the answer. Failures are
// told in words on the node window or, without one, on the main window; the end of the node
// software (0x03F0) is told elsewhere.
//
// vga_issue_* functions return false, with exit code 1 set, when there is no memory for the verb.
// vga_process_* functions take an answer, or the copy of another operator's verb, into the store.
#pragma once

#include "shell/verb_queue.h"
#include "store/records.h"

struct vga_dialog;

// What the windows and dialogs add; filled at start-up. An empty entry does nothing.
struct vga_manage_hooks {
    void (*ask_start_ls)(vga_ls*); // the dialog: activate now, or enable
    void (*ask_stop_ls)(vga_ls*);  // the dialog: stop, or disable as well
    // The node became active, or is stopped: controls of open dialogs that need an active node.
    void (*node_controls)(vga_node*, bool active);
};
extern vga_manage_hooks gvga_manage_hooks;

// Makes the verb queue send other operators' starts and stops here.
void vga_install_manage_handlers();
// NAP_INIT_NODE and NAP_STOP_NODE of another operator. The correlator is the node's handle.
void vga_process_node_status_ind(VGA_COMPLETION* completion, void* block);
// The other start and stop verbs of another operator; the record is found by the name in the block.
void vga_process_node_manage_ind(VGA_COMPLETION* completion);

// ---- node ----

// Starts a node that is stopped or stopping.
void vga_nodew_start_node(vga_node* node);
bool vga_issue_init_node(vga_node* node, VGA_CALLBACK callback, NB_ULONG corr);
// True: the node is active now.
bool vga_process_init_node(vga_node* node, const void* vcb);
// Asks on a dialog whether to stop a node that is starting or active.
void vga_stop_node(vga_node* node, vga_dialog* dialog);
void vga_stop_node_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
bool vga_issue_stop_node(vga_node* node, VGA_CALLBACK callback);
// A node that has stopped: its store is brought to the picture of a stopped node.
void vga_process_stop_node(VGA_COMPLETION* completion);

// ---- DLC and port ----

bool vga_issue_start_dlc(vga_dlc* dlc, VGA_CALLBACK callback, NB_ULONG corr);
bool vga_issue_stop_dlc(vga_dlc* dlc, VGA_CALLBACK callback, NB_ULONG corr);
// Stops a DLC that no port needs any more, unless it is to be active from the start.
void vga_check_stop_dlc(vga_dlc* dlc, VGA_CALLBACK callback, NB_ULONG corr);
// True: the DLC is active now.
bool vga_process_start_dlc(vga_dlc* dlc, const void* vcb);
void vga_process_stop_dlc(vga_dlc* dlc, const void* vcb);
void vga_nodew_start_dlc_cb(VGA_COMPLETION* completion);
void vga_nodew_stop_dlc_cb(VGA_COMPLETION* completion);

// Starts a port, and before it what it needs.
void vga_nodew_init_start_port(vga_port* port);
void vga_nodew_start_port_cb(VGA_COMPLETION* completion);
bool vga_issue_start_port(vga_port* port, VGA_CALLBACK callback, NB_ULONG corr);
// True: the port is active now.
bool vga_process_start_port(vga_port* port, const void* vcb);
// Asks whether to stop a port.
void vga_nodew_stop_port(vga_port* port);
void vga_stop_port_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
bool vga_issue_stop_port(vga_port* port, VGA_CALLBACK callback, NB_ULONG corr);
void vga_nodew_stop_port_cb(VGA_COMPLETION* completion);

// ---- link station ----

// Starts or enables a link station, as far as that is clear; else asks which of the two.
void vga_nodew_start_ls(vga_ls* ls);
// Starts what a link station needs and then activates it or, with enable, makes it available for
// activation by the other side and, if so defined, on demand.
void vga_nodew_init_start_ls(vga_ls* ls, bool enable);
void vga_nodew_start_ls_cb(VGA_COMPLETION* completion);
void vga_process_start_ls(vga_ls* ls, const void* vcb);
bool vga_issue_start_ls(vga_ls* ls, VGA_CALLBACK callback, NB_ULONG corr, bool enable);
// Asks whether, or how, to stop a link station.
void vga_nodew_stop_ls(vga_ls* ls);
void vga_disable_ls_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
bool vga_issue_stop_ls(vga_ls* ls, VGA_CALLBACK callback, NB_ULONG corr, bool disable);
void vga_nodew_stop_ls_cb(VGA_COMPLETION* completion);

// ---- DLUR PU ----

void vga_nodew_start_pu(vga_pu* pu);
void vga_nodew_start_pu_cb(VGA_COMPLETION* completion);
bool vga_issue_start_internal_pu(vga_pu* pu, VGA_CALLBACK callback, NB_ULONG corr);
// True: the PU is active or on its way.
bool vga_process_start_internal_pu(vga_pu* pu, const void* vcb);
// Asks whether to stop a PU.
void vga_nodew_stop_pu(vga_pu* pu);
void vga_stop_pu_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
bool vga_issue_stop_internal_pu(vga_pu* pu, VGA_CALLBACK callback, NB_ULONG corr);
void vga_nodew_stop_pu_cb(VGA_COMPLETION* completion);

// ---- sessions, downstream LU ----

// Ask whether to end all sessions of a local LU, or those of one mode, that has some.
void vga_nodew_deact_all_lu_sessions(vga_lu62* lu);
void vga_deact_all_lu_sessions_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
void vga_nodew_deact_lu_lu_mode_sessions(vga_mode* mode);
void vga_deact_lu_lu_mode_sessions_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);
// Does nothing for a mode without sessions, which is true as well. The correlator is the mode's
// handle.
bool vga_issue_deactivate_session(vga_mode* mode, VGA_CALLBACK callback);
void vga_nodew_deact_session_cb(VGA_COMPLETION* completion);
// Completion of the activate session dialog's verb. The correlator is the local LU's handle.
void vga_nodew_activate_session_cb(VGA_COMPLETION* completion);

// Starts a downstream LU by defining it again as it is. The correlator is the LU's handle.
bool vga_issue_define_downstream_lu(vga_down_lu* lu, VGA_CALLBACK callback);
void vga_define_downstream_lu_cb(VGA_COMPLETION* completion);
