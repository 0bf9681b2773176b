// The build: fills the store by a chain of verbs, and reads parts of it again later. Progress is
// kept in the build flags of the system and of each node.
//
// Issue functions return false when there is no memory for the block, its buffer or its place in
// the queue; nothing is left allocated then, and the caller sets exit code 1. Completion callbacks
// validate their correlator first and ignore what belongs to a freed record.
#pragma once

#include "nof/lu62.h"
#include "nof/node.h"
#include "shell/verb_queue.h"
#include "store/records.h"

// ---- system ----

void vga_start_build_system();
void vga_build_system(VGA_COMPLETION* work);
// Reads users, CPI-C, RJE and logging again, from a configuration file that has come back.
void vga_rebuild_system();
void vga_rebuild_sna_net();
// After a file of the domain was released: what the build still wanted of it is given up.
void vga_build_without_files();
// Completion of a query for the central logger: queries central logging again.
void vga_rebuild_logging(VGA_COMPLETION* work);
// Gives every node its server role by the network file and the local server's name.
void vga_setup_node_roles();

// ---- node ----

void vga_start_build_node(vga_node* node);
void vga_build_node(VGA_COMPLETION* work);
void vga_build_tp_load_info(VGA_COMPLETION* work);
// The reduced build of a node that has no configuration.
void vga_start_build_unconfigured_node(vga_node* node);
void vga_build_unconfigured_node(VGA_COMPLETION* work);

// The part of the build that goes record by record: starts the listing of the next record whose
// children are still to be listed, from the record just done (null: from the first one). Actions: 1
// local PUs, 2 downstream PUs, 3 local LUs 6.2, 4 connection networks, 5 extra data done, 0 a node
// done.
void vga_build_next_action(int action, void* record);
// The same for actions 1 to 5 of a node's first record.
void vga_build_first_action(int action, vga_node* node);
void vga_build_local_pu(VGA_COMPLETION* work);
void vga_build_down_pu(VGA_COMPLETION* work);
void vga_build_lu62(VGA_COMPLETION* work);
void vga_build_cn(VGA_COMPLETION* work);
void vga_build_extra_data(VGA_COMPLETION* work);

// Clears flags of a node's or the system's build; when none is left the rest of the program is told
// once.
void vga_clear_node_flags(vga_node* node, VGA_FLAGS flags);
void vga_clear_system_flags(VGA_FLAGS flags);

// ---- list queries ----

enum VGA_QUERY : int {
    VGA_QUERY_DLC,
    VGA_QUERY_DSPU_TEMPLATE,
    VGA_QUERY_PORT,
    VGA_QUERY_CN,
    VGA_QUERY_CN_PORT,
    VGA_QUERY_LS,
    VGA_QUERY_PU,
    VGA_QUERY_DLUR_PU,
    VGA_QUERY_DOWN_PU,
    VGA_QUERY_LU03,
    VGA_QUERY_DOWN_LU,
    VGA_QUERY_EXTRA_DATA,
    VGA_QUERY_LU62,
    VGA_QUERY_PLU,
    VGA_QUERY_MODE,
    VGA_QUERY_SL_SEC,
    VGA_QUERY_MODE_DEF,
    VGA_QUERY_DIR,
    VGA_QUERY_PLU_DEF,
    VGA_QUERY_LU62_TIMEOUT,
    VGA_QUERY_LS_ROUTING,
    VGA_QUERY_COS,
    VGA_QUERY_COS_NODE_ROW,
    VGA_QUERY_COS_TG_ROW,
    VGA_QUERY_TP_DEF,
    VGA_QUERY_TP_LOAD,
    VGA_QUERY_USERID,
    VGA_QUERY_ACCESS_LIST,
    VGA_QUERY_POOL,
    VGA_QUERY_TN_ACCESS,
    VGA_QUERY_TN_ASSOC,
    VGA_QUERY_TN_REDIRECT,
    VGA_QUERY_PRIMARY_LINE,
    VGA_QUERY_PRIMARY_LU0,
    VGA_QUERY_APPCIP,
    VGA_QUERY_RTP_CONN,
    VGA_QUERY_DLC_TRACE,
    VGA_QUERY_USER,
    VGA_QUERY_CPIC,
    VGA_QUERY_RJE,
    VGA_QUERY_NODE_LIST,
    VGA_QUERY_SNA_NET_LIST,
    VGA_QUERY_COUNT,
};

// Sends one page of a list query. owner: the record whose list it is (a PU, a local LU 6.2, a
// connection network, a node, or the system root); last: the entry to go on behind, in the layout
// of the kind's entries, or null for the first page. With a count of 1, last names the one entry to
// fetch. corr: handle of the record on whose behalf it goes; 0: the owner. level: 0, the kind's
// own.
bool vga_issue_query(VGA_QUERY query, void* owner, const void* last, NB_USHORT count, NB_ULONG corr,
                     VGA_CALLBACK callback, NB_BYTE level = 0);

struct vga_page {
    bool failed;      // exit code 164 or 1 is set, and the failure logged
    bool more;        // entries remain behind the last one
    const void* last; // the page's last entry, in the block's buffer; null when it had none
    void* record;     // the record of the last entry that has one
};
// Turns the entries of a completed page into records.
vga_page vga_process_query(VGA_QUERY query, void* owner, void* vcb);
// The list query of an opcode, or VGA_QUERY_COUNT.
VGA_QUERY vga_query_of(NB_USHORT opcode);

// The same for kinds that are read again outside the build. last: the record to go on behind, or
// null; in the process functions it gets the record of the page's last entry, or null. count: 1 to
// fetch one entry, else 0.
bool vga_issue_query_port(vga_node* node, const vga_port* last, VGA_CALLBACK callback);
bool vga_process_query_port(vga_node* node, void* vcb, vga_port** last);
// name: of the one link station to fetch, with a count of 1.
bool vga_issue_query_ls(vga_node* node, const vga_ls* last, const char* name, NB_USHORT count,
                        NB_ULONG corr, VGA_CALLBACK callback);
bool vga_process_query_ls(vga_node* node, void* vcb, vga_ls** last);
// With inclusive and a count of 1 fetches the entry of last itself, on its behalf.
bool vga_issue_query_lu03(vga_pu* pu, const vga_lu03* last, bool inclusive, NB_USHORT count,
                          VGA_CALLBACK callback);
bool vga_process_query_lu03(vga_pu* pu, void* vcb, vga_lu03** last);
bool vga_issue_query_mode(vga_lu62* lu, const vga_mode* last, bool inclusive, NB_USHORT count,
                          VGA_CALLBACK callback);
bool vga_process_query_mode(vga_lu62* lu, void* vcb, vga_mode** last);
// last: the entry to go on behind, or null.
bool vga_issue_query_dir(vga_node* node, const DIRECTORY_ENTRY* last, VGA_CALLBACK callback);
bool vga_process_query_dir(vga_node* node, void* vcb, const DIRECTORY_ENTRY** last);
bool vga_issue_query_plu_def(vga_node* node, const PLU_DEF_ENTRY* last, VGA_CALLBACK callback);
bool vga_process_query_plu_def(vga_node* node, void* vcb, const PLU_DEF_ENTRY** last);

// The node query; processing keeps the reply and sets the node's state. False: it failed, exit code
// 164 is set. *configured: false when the node has no configuration.
bool vga_issue_query_node(vga_node* node, VGA_CALLBACK callback);
bool vga_process_query_node(vga_node* node, void* vcb, bool* configured);

// Registers for one kind of indication from a target.
bool vga_issue_register_sink(NB_HANDLE target, NB_USHORT indication, NB_ULONG corr,
                             VGA_CALLBACK callback);

// ---- one directory entry, for the build and for indications ----

// Takes a directory entry into the remote systems. owner: the remote system of the entry before, or
// null; gets that of this entry. False: exit code 1 is set.
bool vga_add_directory_to_remote(vga_node* node, const DIRECTORY_ENTRY* entry, vga_rem_sys** owner);

// A node's count of traced resources on links of a DLC type; null for an unknown type.
NB_LONG* vga_trace_counter(vga_node* node, NB_BYTE dlc_type);
