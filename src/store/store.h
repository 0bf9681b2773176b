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
    void (*node_changed)(vga_node* node); // its state or entry: the node window draws it anew
    void (*node_added)(vga_node* node);   // after its row was made
    void (*node_removed)(vga_node* node); // before its row goes
    void (*roles_changed)();              // server roles: the system window's buttons
    bool (*start_shutdown)();             // orderly end of the program; false: could not start
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
// The node of a name (128 characters), of a connection, of a TP load-information file; or null.
vga_node* vga_find_node(const char* node_name);
vga_node* vga_find_node_by_handle(NB_HANDLE node_handle);
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

// ---- end of records ----

// Takes a node out of the store with all it owns; no handle of it validates afterwards. In a
// stand-alone run the program's end is started instead. gone: the node is lost already, no verbs
// are sent to it. callback: gets the disconnect verb's completion; null:
// vga_process_disconnect_node.
void vga_free_node_resources(vga_node* node, bool gone, VGA_CALLBACK callback);
void vga_do_free_node_res(vga_node* node, bool gone, VGA_CALLBACK callback);
void vga_process_disconnect_node(VGA_COMPLETION* completion);
// Closes the configuration file and deletes what it held. report: tells the operator about updates
// that are lost.
void vga_free_system_resources(bool report, VGA_CALLBACK callback);
// Closes the network file and deletes its names.
void vga_free_sna_net_resources(VGA_CALLBACK callback);
// Frees everything, at the end of the program.
void vga_destroy_data_structures();
