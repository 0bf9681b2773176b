// The data store: the program's mirror of the node and its domain. vga_init_* makes a record from
// the entry that describes it, vga_insert_* places it, or merges it into the record of that key.
//
// Init functions return null, with exit code 1 set, when memory or a handle is missing. Insert
// functions take the record over and return the one that now stands for its key; null means that
// the record could not be placed and was freed. Both the new and the surviving record are shown:
// rows are placed behind the row of the record before.
#pragma once

#include "shell/verb_queue.h"
#include "store/compare.h"
#include "store/records.h"

// ---- what the rest of the program is told; filled at start-up, so that the store knows no window.
// An empty entry does nothing.
struct vga_store_hooks {
    void (*node_built)(vga_node* node);   // all flags of a node are clear
    void (*system_built)();               // all flags of the system are clear
    void (*node_changed)(vga_node* node); // its state, role or entry: row and windows follow
    void (*node_added)(vga_node* node);   // after its row was made
    void (*node_removed)(vga_node* node); // before its row goes
    void (*roles_changed)();              // server roles, local server, network file
    void (*clear_message_bar)(vga_node*); // of its window, when that is open
    bool (*start_shutdown)();             // orderly end of the program; false: could not start
    // A definition that the store re-issued succeeded: what its completion means otherwise.
    void (*definition_done)(VGA_COMPLETION* completion, vga_node* node);
    // A check has listed a link station made by the node, which is not in the store.
    void (*implicit_ls)(vga_node* node, const char* ls_name);
};
extern vga_store_hooks gvga_store_hooks;

// ---- system and nodes ----

vga_system* vga_init_vga_system(); // null: exit code 1 is set
bool vga_check_system_startup();   // all build flags clear
bool vga_check_node_startup(const vga_node* node);

vga_node* vga_init_vga_node(const NODE_ALL_ENTRY* entry);
vga_node* vga_insert_vga_node(vga_node* node);
vga_sna_net_node* vga_init_sna_net_node(const SNA_NET_ENTRY* entry);
vga_sna_net_node* vga_insert_sna_net_node(vga_sna_net_node* node);
// Keeps the node's defaults of APPC over IP. False: exit code 1 is set.
bool vga_add_ipbridge_appcip_defaults(vga_node* node, const IPBRIDGE_APPCIP_DEFAULTS* defaults);
// A node name of a block, padded with zeros or blanks, as the store keeps it: padded with zeros.
void vga_copy_node_name(NB_NODE_NAME to, const char* from);
// The node of a name (128 characters), of a connection, of a TP load-information file; or null.
vga_node* vga_find_node(const char* node_name);
vga_node* vga_find_node_by_handle(NB_HANDLE node_handle);
// The node whose record has a handle; null for any other handle, whatever record that is of. For
// correlators as the node software returns them.
vga_node* vga_validate_node(NB_ULONG corr);
// The server role that the names give a node.
VGA_SERVER_ROLE vga_server_role(const vga_node* node);
// Redraws the node's row in the system window and tells its node window.
void vga_redraw_node(vga_node* node);

// What a node can do, from its entry and limits.
bool vga_node_has_dspu(const vga_node* node);
bool vga_node_has_dlur(const vga_node* node);
bool vga_node_has_tn_server(const vga_node* node);
bool vga_node_has_back_level_trace(const vga_node* node);
bool vga_node_lists_cns(const vga_node* node);
bool vga_node_has_hpr(const vga_node* node);
bool vga_node_has_ssl(const vga_node* node);
bool vga_node_has_attach_routing(const vga_node* node);
bool vga_node_has_mode_to_cos_map(const vga_node* node);
bool vga_node_has_pu_concentration(const vga_node* node); // configured and possible
bool vga_node_has_configured_dlur(const vga_node* node);  // configured and possible

// ---- connectivity ----

vga_dlc* vga_init_vga_dlc(vga_node* node, const DLC_ENTRY* entry);
vga_dlc* vga_insert_vga_dlc(vga_dlc* dlc, vga_node* node);
vga_port* vga_init_vga_port(vga_dlc* dlc, const PORT_ENTRY* entry);
vga_port* vga_insert_vga_port(vga_port* port, vga_dlc* dlc);
vga_ls* vga_init_vga_ls(vga_port* port, const LS_ENTRY* entry);
vga_ls* vga_insert_vga_ls(vga_ls* ls, vga_port* port);
vga_pu* vga_init_vga_local_pu(vga_node* node, const PU_ENTRY* entry);
vga_pu* vga_insert_vga_local_pu(vga_pu* pu, vga_node* node);
vga_pu* vga_init_vga_down_pu(vga_node* node, const PU_ENTRY* entry);
vga_pu* vga_insert_vga_down_pu(vga_pu* pu, vga_node* node);

// The port records the program makes itself, made on first use; null when there is no memory.
vga_port* vga_get_dlur_fake_port(vga_node* node);
vga_port* vga_get_primary_line_fake_port(vga_node* node);
bool vga_is_fake_port(const vga_port* port);

vga_cn* vga_init_vga_cn(vga_node* node, const CN_ENTRY* entry);
vga_cn* vga_insert_vga_cn(vga_cn* cn, vga_node* node);
// Null, with exit code 1 set, without memory; entry->port_name names the port.
vga_cn_port* vga_init_vga_cn_port(vga_cn* cn, vga_port* port, const CN_PORT_ENTRY* entry);
vga_cn_port* vga_insert_vga_cn_port(vga_cn_port* cn_port, vga_cn* cn);

// Which PU a link station's definition asks for. At most one of the two holds.
bool vga_ls_has_local_pu(const LS_ENTRY* entry);
bool vga_ls_has_down_pu(const LS_ENTRY* entry);
// The PU a link station entry describes, as a record in the store: made, or merged; null when there
// is none, or, with exit code 1 set, no memory.
vga_pu* vga_add_ls_pu(vga_ls* ls);
// Removes downstream PUs that an indication has announced for a link station before the station was
// listed, and that its definition, by now, does not ask for. ls: the station, or null when it is
// gone.
void vga_drop_stray_pus(vga_node* node, const char* ls_name, const vga_ls* ls);
// The row that a PU's LUs stand under: its link station's, else its own, else null (not shown).
vga_viewer* vga_pu_viewer(vga_pu* pu);
// Proposes the name of the PU of a link station into pu_name (8 bytes, EBCDIC). ls_name: 8
// characters; ls: the link station's record, or null.
void vga_ls_to_pu_name(NB_BYTE* pu_name, const char* ls_name, const vga_ls* ls, vga_node* node);

// ---- LUs ----

vga_lu03* vga_init_vga_lu03(vga_pu* pu, const LU03_ENTRY* entry);
vga_lu03* vga_insert_vga_lu03(vga_lu03* lu, vga_pu* pu);
vga_down_lu* vga_init_vga_down_lu(vga_pu* pu, const DOWN_LU_ENTRY* entry);
vga_down_lu* vga_insert_vga_down_lu(vga_down_lu* lu, vga_pu* pu);
// Gives a downstream LU another definition, and its place in the list by its NAU address; it keeps
// its state. An address that another LU of the PU has is logged, and the definition is not taken.
void vga_redefine_down_lu(vga_down_lu* lu, const DOWN_LU_DEF* definition);
vga_lu62* vga_init_vga_lu62(vga_node* node, const LU62_ENTRY* entry);
vga_lu62* vga_insert_vga_lu62(vga_lu62* lu, vga_node* node);
vga_plu* vga_init_vga_plu(vga_lu62* lu, const PLU_ENTRY* entry);
vga_plu* vga_insert_vga_plu(vga_plu* plu, vga_lu62* lu);
vga_mode* vga_init_vga_mode(vga_plu* plu, const MODE_ENTRY* entry);
vga_mode* vga_insert_vga_mode(vga_mode* mode, vga_plu* plu);

// Makes and inserts the control point's LU 6.2 from the node's own name and alias. False: exit code
// 1 is set.
bool vga_create_fake_cp_lu(vga_node* node);
// The mode shown last under a local LU, or null.
vga_mode* vga_last_lu62_mode(const vga_lu62* lu);
// Adds to a local LU's active session count and redraws its row.
void vga_count_lu62_sessions(vga_lu62* lu, NB_LONG change);

// A mode of the architecture that nobody described is given a description.
vga_mode_def* vga_init_vga_mode_def(vga_node* node, const MODE_DEF_ENTRY* entry);
vga_mode_def* vga_insert_vga_mode_def(vga_mode_def* mode, vga_node* node);
vga_cos* vga_init_vga_cos(vga_node* node, const COS_ENTRY* entry);
vga_cos* vga_insert_vga_cos(vga_cos* cos, vga_node* node);
vga_cos_row* vga_init_vga_cos_row(vga_cos* cos, const COS_ROW_ENTRY* entry);
vga_cos_row* vga_insert_vga_cos_node_row(vga_cos_row* row, vga_cos* cos);
vga_cos_row* vga_insert_vga_cos_tg_row(vga_cos_row* row, vga_cos* cos);
// Inserts the modes and classes of service that every node has. False: exit code 1 is set.
bool vga_init_sna_modes(vga_node* node);
bool vga_init_sna_cos(vga_node* node);

// Extra data of an LU 0 to 3: a copy of its entry, attached to the LU of its name on the node.
// False: there is no such LU, and the copy was freed.
EXTRA_DATA_ENTRY* vga_init_extra_data(const EXTRA_DATA_ENTRY* entry);
bool vga_insert_lu03_extra_data(EXTRA_DATA_ENTRY* data, vga_node* node);

// ---- directory ----

vga_dir* vga_init_vga_dir(vga_node* node, const DIRECTORY_ENTRY* entry);
// owner: the control point the entry belongs to; null: it goes to the directory server tree.
vga_dir* vga_insert_vga_dir(vga_dir* dir, vga_dir* owner);
// Where a new entry belongs: the control points above it (null when there is none) and the tree.
// False when a control point that it names is missing.
bool vga_find_directory_insert_pos(vga_node* node, const DIRECTORY_ENTRY* entry,
                                   vga_dir** network_node, vga_dir** end_node, NTL_AVL_TREE** tree);
// The entry of a name and type, and the tree of its owner that holds it. False: not there.
bool vga_find_directory_entry(vga_node* node, const NB_BYTE* fq_name, NB_USHORT resource_type,
                              vga_dir** entry, NTL_AVL_TREE** tree);
inline bool vga_find_directory_location(vga_node* node, const NB_BYTE* fq_name,
                                        NB_USHORT resource_type, vga_dir** entry,
                                        NTL_AVL_TREE** tree) {
    return vga_find_directory_entry(node, fq_name, resource_type, entry, tree);
}

// ---- remote systems ----

// definition: the directory entry, or null.
vga_rem_sys* vga_init_vga_rem_sys(vga_node* node, const NB_BYTE* fq_name, bool defined,
                                  const DIRECTORY_ENTRY* definition);
vga_rem_sys* vga_insert_vga_rem_sys(vga_rem_sys* rem_sys, vga_node* node);
// A defined partner comes with its definition. location: its directory entry, or null.
vga_rem_plu* vga_init_vga_rem_plu(const NB_BYTE* fq_name, NB_USHORT resource_type, bool located,
                                  bool defined, const PLU_DEF_ENTRY* definition,
                                  const DIRECTORY_ENTRY* location);
vga_rem_plu* vga_insert_vga_rem_plu(vga_rem_plu* rem_plu, vga_rem_sys* rem_sys);
vga_rem_sess* vga_init_vga_rem_sess(vga_rem_plu* rem_plu, const NB_BYTE* lu_name,
                                    const NB_BYTE* mode_name);
vga_rem_sess* vga_insert_vga_rem_sess(vga_rem_sess* sess, vga_rem_plu* rem_plu);
// Takes a partner LU definition into the store: a located partner of that name takes it, else it
// goes under the network's fake remote system. The partner that has it; null: exit code 1 is set.
vga_rem_plu* vga_add_plu_definition(vga_node* node, const PLU_DEF_ENTRY* entry);
// Finds or makes the session record of a local LU and mode; null: exit code 1 is set.
vga_rem_sess* vga_add_vga_rem_sess(vga_rem_plu* rem_plu, const NB_BYTE* lu_name,
                                   const NB_BYTE* mode_name);

// The remote system of the partners that belong to no known one, made on first use; null when
// there is no memory.
vga_rem_sys* vga_fake_vga_rem_sys(vga_node* node);
// A located or defined partner of a name under a real remote system, or null.
vga_rem_plu* vga_find_rem_plu(vga_node* node, const NB_BYTE* fq_name, NB_USHORT resource_type);
// True when CP-CP sessions run to the remote node.
bool vga_check_cp_sess(const vga_rem_sys* rem_sys);
// Takes the sessions of one local LU, partner and mode into the counts of the remote system, the
// partner LU and the session, which are made and dropped as sessions come and go. False: exit code
// 1 is set.
bool vga_track_rem_sessions(vga_lu62* lu, const MODE_ENTRY* entry);
// Gives a partner session another count, and takes the change into the counts of its partner and
// remote system. The session, and what has no other reason to exist, goes with its last session.
void vga_count_rem_sessions(vga_rem_sess* sess, NB_LONG count);

// ---- routing and session timeouts of LUs 6.2 ----

// A route is shown under its local LU behind a heading that the LU's first route brings along.
vga_ls_routing* vga_init_vga_ls_routing(vga_lu62* lu, const LS_ROUTING_ENTRY* entry);
vga_ls_routing* vga_insert_vga_ls_routing(vga_ls_routing* routing, vga_lu62* lu);
vga_lu62_timeout* vga_init_vga_lu62_timeout(vga_node* node, const LU62_TIMEOUT_ENTRY* entry);
vga_lu62_timeout* vga_insert_vga_lu62_timeout(vga_lu62_timeout* timeout, vga_node* node);

// ---- the node as a host ----

vga_primary_line* vga_init_vga_primary_line(vga_node* node, const PRIMARY_LINE_ENTRY* entry);
vga_primary_line* vga_insert_vga_primary_line(vga_primary_line* line, vga_node* node);
// An LU that another line of the node has moves to this one.
vga_primary_lu0* vga_init_vga_primary_lu0(vga_primary_line* line, const PRIMARY_LU0_ENTRY* entry);
vga_primary_lu0* vga_insert_vga_primary_lu0(vga_primary_lu0* lu, vga_primary_line* line);
// The LU of a name (8 characters) on any line of the node, or null.
vga_primary_lu0* vga_find_primary_lu0(const vga_node* node, const char* lu_name);

// ---- transaction programs ----

vga_tp_def* vga_init_vga_tp_def(vga_node* node, const TP_DEF_ENTRY* entry);
vga_tp_def* vga_insert_vga_tp_def(vga_tp_def* tp, vga_node* node);
// entry->length covers the LTV items that follow the fixed part.
vga_tp_load_info* vga_init_vga_tp_load_info(vga_node* node, const TP_LOAD_INFO_ENTRY* entry);
vga_tp_load_info* vga_insert_vga_tp_load_info(vga_tp_load_info* info, vga_node* node);

// ---- templates of downstream PUs ----

// A template without its ranges, which are records of their own. One that is in no tree serves as a
// private copy; its ranges and their rows work all the same.
vga_dspu_template* vga_init_vga_dspu_template(vga_node* node, const DSPU_TEMPLATE_ENTRY* entry);
// Ports that name the template are given it.
vga_dspu_template* vga_insert_vga_dspu_template(vga_dspu_template* dspu, vga_node* node);
vga_dslu_template* vga_init_vga_dslu_template(vga_dspu_template* dspu, const DSLU_TEMPLATE* entry);
vga_dslu_template* vga_insert_vga_dslu_template(vga_dslu_template* dslu, vga_dspu_template* dspu);

// ---- security ----

vga_userid_password* vga_init_vga_userid_password(vga_node* node,
                                                  const USERID_PASSWORD_ENTRY* entry);
// continues: the entry goes on with the profiles of the one before it, which has the same user ID;
// they are added to its own, those beyond NOF_USER_PROFILES logged and dropped.
vga_userid_password* vga_insert_vga_userid_password(vga_userid_password* userid, vga_node* node,
                                                    bool continues = false);
// A list without its users, which are records of their own. A merge keeps those it has.
vga_security_access_list*
vga_init_vga_security_access_list(vga_node* node, const SECURITY_ACCESS_LIST_ENTRY* entry);
vga_security_access_list* vga_insert_vga_security_access_list(vga_security_access_list* list,
                                                              vga_node* node);
vga_security_access_user* vga_init_vga_security_access_user(vga_security_access_list* list,
                                                            const ACCESS_LIST_USER* entry);
vga_security_access_user* vga_insert_vga_security_access_user(vga_security_access_user* user,
                                                              vga_security_access_list* list);
// lu: the local LU, which the entry may leave unnamed.
vga_lu_lu_password* vga_init_vga_lu_lu_password(vga_lu62* lu, const LU_LU_PASSWORD_ENTRY* entry);
vga_lu_lu_password* vga_insert_vga_lu_lu_password(vga_lu_lu_password* password, vga_lu62* lu);
// The password of a local LU with a partner (17 bytes, EBCDIC), or null.
vga_lu_lu_password* vga_find_lu_lu_password(const vga_lu62* lu, const NB_BYTE* plu_name);

// ---- TN3270 server ----

// A client without its sessions, which are records of their own. A merge keeps those it has.
vga_tn_client* vga_init_vga_tn_client(vga_node* node, const TN3270_ACCESS_ENTRY* entry);
vga_tn_client* vga_insert_vga_tn_client(vga_tn_client* client, vga_node* node);
// Sessions of all clients are rows of one list, in the order of clients and ports. Those that are
// not to be listed (TN3270_SESSION not_listed) are for the caller to leave out.
vga_tn_sess* vga_init_vga_tn_sess(vga_tn_client* client, const TN3270_SESSION* entry);
vga_tn_sess* vga_insert_vga_tn_sess(vga_tn_sess* sess, vga_tn_client* client);
vga_tn_assoc* vga_init_vga_tn_assoc(vga_node* node, const TN3270_ASSOCIATION_ENTRY* entry);
vga_tn_assoc* vga_insert_vga_tn_assoc(vga_tn_assoc* assoc, vga_node* node);
vga_tn_redirect* vga_init_vga_tn_redirect(vga_node* node, const TN_REDIRECT_ENTRY* entry);
vga_tn_redirect* vga_insert_vga_tn_redirect(vga_tn_redirect* redirect, vga_node* node);

// ---- sessions that the node reports ----

// A record that is listed again keeps its row, handle and dialogs, and takes a changed second key.
// Of two RTP connections of one name the name finds the first. Numbers of sessions are unique: a
// session of the same number has ended at the node and is deleted.
vga_rtp_conn* vga_init_vga_rtp_conn(vga_node* node, const RTP_CONNECTION_ENTRY* entry);
vga_rtp_conn* vga_insert_vga_rtp_conn(vga_rtp_conn* conn, vga_node* node);
vga_appcip_sess* vga_init_vga_appcip_sess(vga_node* node, const IPBRIDGE_APPCIP_ENTRY* entry);
vga_appcip_sess* vga_insert_vga_appcip_sess(vga_appcip_sess* sess, vga_node* node);

// ---- definitions of the domain ----

// A user without its sessions, which are records of their own. A merge keeps those it has.
vga_user* vga_init_vga_user(vga_system* system, const EMULATOR_USER_ENTRY* entry);
vga_user* vga_insert_vga_user(vga_user* user, vga_system* system);
vga_user_sess* vga_init_vga_user_sess(vga_user* user, const USER_SESSION* entry);
vga_user_sess* vga_insert_vga_user_sess(vga_user_sess* sess, vga_user* user);
vga_cpic* vga_init_vga_cpic(vga_system* system, const CPIC_SIDE_INFO_ENTRY* entry);
vga_cpic* vga_insert_vga_cpic(vga_cpic* cpic, vga_system* system);
vga_rje_wkstn* vga_init_vga_rje_wkstn(vga_system* system, const RJE_WKSTN_ENTRY* entry);
vga_rje_wkstn* vga_insert_vga_rje_wkstn(vga_rje_wkstn* wkstn, vga_system* system);

// ---- pools; where an LU belongs is found by vga_find_pool_insert_pos (tracking.h) ----

vga_sys_pool* vga_init_vga_sys_pool(vga_system* system, const NB_BYTE* pool_name);
vga_sys_pool* vga_insert_vga_sys_pool(vga_sys_pool* pool, vga_system* system);
vga_pool* vga_init_vga_pool(vga_sys_pool* pool, const vga_node* node);
vga_pool* vga_insert_vga_pool(vga_pool* pool, vga_sys_pool* system_pool);
// Adds an LU that is in no pool to one, whose name it takes, and counts it there.
void vga_insert_pool_lu(vga_lu03* lu, vga_pool* pool);

// ---- end of records ----

// Takes a node out of the store with all it owns; no handle of it validates afterwards. In a
// stand-alone run the program's end is started instead. gone: the node is lost already, no verbs
// are sent to it. callback: gets the disconnect verb's completion; null:
// vga_process_disconnect_node.
void vga_free_node_resources(vga_node* node, bool gone, VGA_CALLBACK callback);
void vga_do_free_node_res(vga_node* node, bool gone, VGA_CALLBACK callback);
// Give a connection or a file back to the node software; the process functions, when they are the
// callback, try again while the handle has verbs outstanding. False: there is no memory.
bool vga_issue_disconnect_node(NB_HANDLE handle, NB_ULONG corr, VGA_CALLBACK callback);
void vga_process_disconnect_node(VGA_COMPLETION* completion);
bool vga_issue_close_file(NB_HANDLE handle, NB_ULONG corr, VGA_CALLBACK callback);
void vga_process_close_file(VGA_COMPLETION* completion);
// Closes the configuration file and deletes what it held. report: tells the operator about updates
// that are lost.
void vga_free_system_resources(bool report, VGA_CALLBACK callback);
// Closes the network file and deletes its names.
void vga_free_sna_net_resources(VGA_CALLBACK callback);
// Frees everything, at the end of the program.
void vga_destroy_data_structures();
