// The system root and the node records that own everything else.
#pragma once

#include "common/avl.h"
#include "nof/ipbridge.h"
#include "nof/node.h"
#include "nof/tn3270.h"
#include "store/connectivity_records.h"
#include "ui/viewer/viewer.h"

struct vga_lu62;
struct vga_lu62_timeout;
struct vga_rem_sys;

enum VGA_SYSTEM_FLAG : int { // what of the system's build is outstanding
    VGA_SYSTEM_NODE_LIST = 0,
    VGA_SYSTEM_NODES = 1,
    VGA_SYSTEM_USERS = 2,
    VGA_SYSTEM_CPIC = 3,
    VGA_SYSTEM_RJE = 4,
    VGA_SYSTEM_SNA_NET = 5,
    VGA_SYSTEM_LOGGING = 6,
    VGA_SYSTEM_FLAG_COUNT = 7,
};

enum VGA_NODE_FLAG : int { // what of a node's build is outstanding
    VGA_NODE_LU03S = 0,
    VGA_NODE_LOCAL_PUS = 1,
    VGA_NODE_DOWN_LUS = 2,
    VGA_NODE_DOWN_PUS = 3,
    VGA_NODE_CN_PORTS = 4,
    VGA_NODE_CNS = 5,
    VGA_NODE_LU62_DETAILS = 6, // partner LUs, modes and passwords of each local LU
    VGA_NODE_LU62S = 7,
    VGA_NODE_DLCS = 8,
    VGA_NODE_PORTS = 9,
    VGA_NODE_LSS = 10,
    VGA_NODE_COS_ROWS = 11,
    VGA_NODE_COSS = 12,
    VGA_NODE_DIRECTORY = 13,
    VGA_NODE_MODE_DEFS = 14,
    VGA_NODE_PLU_DEFS = 15,
    VGA_NODE_TP_DEFS = 16,
    VGA_NODE_TRACE_TYPE = 17,
    VGA_NODE_DLC_TRACE = 18,
    VGA_NODE_CS_TRACE = 19,
    VGA_NODE_TN_ACCESS = 20,
    VGA_NODE_DEFAULTS_SET = 21,
    VGA_NODE_USERIDS = 22,
    VGA_NODE_POOLS = 23,
    VGA_NODE_BCK_CS_TRACE = 24,
    VGA_NODE_TIMEOUTS = 25,
    VGA_NODE_EXTRA_DATA = 26,
    VGA_NODE_TN_ASSOCS = 27,
    VGA_NODE_TN_DEFAULTS = 28,
    VGA_NODE_LS_ROUTING = 29,
    VGA_NODE_TN_SERVER_TRACE = 30,
    VGA_NODE_APPCIP = 31,
    VGA_NODE_UNUSED_32 = 32, // to 35
    VGA_NODE_UNUSED_35 = 35,
    VGA_NODE_DSPU_TEMPLATES = 36,
    VGA_NODE_PRIMARY_LINES = 37,
    VGA_NODE_PRIMARY_LU0S = 38,
    VGA_NODE_ACCESS_LISTS = 39,
    VGA_NODE_TP_LOAD_INFOS = 40,
    VGA_NODE_TN_SSL_LDAP = 41,
    VGA_NODE_TN_REDIRECTS = 42,
    VGA_NODE_TN_SLP = 43,
    VGA_NODE_TN_SLP_TRACE = 44,
    VGA_NODE_EXPRESS_LOGON = 45,
    VGA_NODE_FLAG_COUNT = 46,
};

using VGA_FLAGS = std::uint64_t; // one bit per flag
constexpr VGA_FLAGS vga_flag(int flag) {
    return VGA_FLAGS{1} << flag;
}

enum VGA_NODE_STATE : NB_BYTE {
    VGA_NODE_STATE_STOPPED = 0,
    VGA_NODE_STATE_STARTING = 1,
    VGA_NODE_STATE_STOPPING = 2,
    VGA_NODE_STATE_ACTIVE = 3,
    VGA_NODE_STATE_UNCONFIGURED = 4,
    VGA_NODE_STATE_BACK_LEVEL = 5,
};

enum VGA_SERVER_ROLE : NB_BYTE {
    VGA_ROLE_NONE = 0,         // not in the network file
    VGA_ROLE_LOCAL_SERVER = 1, // every node of a stand-alone system
    VGA_ROLE_SERVER = 2,
};

// Kinds of check of the store against the node; one running count per kind.
enum VGA_CHECK_KIND : int {
    VGA_CHECK_DLC,
    VGA_CHECK_PORT,
    VGA_CHECK_LS,
    VGA_CHECK_PU,
    VGA_CHECK_DLUR_PU,
    VGA_CHECK_DOWN_PU,
    VGA_CHECK_DOWN_LU,
    VGA_CHECK_LU03,
    VGA_CHECK_LOCAL_LU,
    VGA_CHECK_LU62,
    VGA_CHECK_DIR,
    VGA_CHECK_IPBRIDGE_SESS,
    VGA_CHECK_COUNT,
};

struct vga_system {
    NB_HANDLE handle;
    NB_HANDLE config_file_handle; // the domain's configuration file, 0: not open (no master)
    NB_HANDLE sna_net_handle;     // the network file, 0: not open
    NB_NODE_NAME central_logger;
    NB_HANDLE central_logger_handle; // connection of that node, 0: unknown
    NB_USHORT central_logging;
    NB_USHORT log_audit, log_audit_verbose, log_exception, log_exception_verbose;
    NB_NODE_NAME local_server;
    VGA_FLAGS build_flags;
    NB_USHORT built; // the program was told that all flags are clear
    NTL_AVL_TREE node_tree;
    NTL_AVL_TREE sna_net_tree; // vga_sna_net_node
    vga_viewer_root node_viewer_root;
    NTL_AVL_TREE user_tree;
    vga_viewer_root user_viewer_root;
    NTL_AVL_TREE cpic_tree;
    vga_viewer_root cpic_viewer_root;
    NTL_AVL_TREE rje_tree;
    vga_viewer_root rje_viewer_root;
    NTL_AVL_TREE lu_tree; // vga_lu03 of every node, by system_node
    NTL_AVL_TREE pool_tree;
    vga_viewer_root pool_viewer_root;
    struct {
        vga_dialog* system_window;
        vga_dialog* pool_window;
        vga_dialog* pool_add_context_dialog;
        vga_dialog* users_window;
        vga_dialog* users_add_context_dialog;
        vga_dialog* cpic_window;
        vga_dialog* rje_window;
        vga_dialog* logging_dialog;
    } gui_data;
};

struct vga_sna_net_node { // a name in the network file
    NTL_AVL_NODE node;
    NB_NODE_NAME node_name;
};

struct vga_node {
    NTL_AVL_NODE node; // the system's node tree, key node_name
    NB_HANDLE handle;
    NB_NODE_NAME node_name;
    NODE_ENTRY vcb; // zero until the node was queried
    NB_BYTE node_state;
    NB_BYTE server_role;
    VGA_FLAGS build_flags;
    NB_USHORT built;          // the program was told that all flags are clear
    NB_HANDLE node_handle;    // the connection: target of the node's verbs; 0: not connected
    NB_HANDLE tp_load_handle; // its TP load-information file, 0: not open
    NODE_LIMITS limits;
    NODE_DEFAULTS defaults;
    TN3270_DEFAULTS_DATA tn_defaults;
    TN3270_SSL_LDAP_SETTINGS tn_ssl_ldap;
    TN3270_SLP_SETTINGS tn_slp;
    QUERY_TN3270_EXPRESS_LOGON express_logon; // the whole reply
    NB_ULONG trace_truncation; // length; the two masks are the node's and the kernel's trace flags
    NB_ULONG trace_flags;
    NB_ULONG trace_kernel_flags;
    NB_USHORT cs_trace[2];
    NB_ULONG bck_cs_trace;
    NB_USHORT tn_server_trace;
    NB_USHORT tn_slp_trace;
    NB_USHORT all_dlcs_traced;
    struct {
        NB_LONG token_ring, ethernet, sdlc, fddi, frame_relay, x25, chnl, ip;
    } tracing;

    NTL_AVL_TREE dlc_tree;
    NTL_AVL_TREE dspu_template_tree;
    NTL_AVL_TREE port_tree;
    NTL_AVL_TREE primary_line_tree;
    NTL_AVL_TREE ls_tree;
    NTL_AVL_TREE lu62_tree;
    NTL_AVL_TREE lu62_alias_tree;
    NTL_AVL_TREE local_pu_tree;
    NTL_AVL_TREE down_pu_tree;
    NTL_AVL_TREE mode_def_tree;
    NTL_AVL_TREE lu62_timeout_tree;
    NTL_AVL_TREE tp_def_tree;
    NTL_AVL_TREE tp_load_tree;
    NTL_AVL_TREE cos_tree;
    NTL_AVL_TREE cn_tree;
    NTL_AVL_TREE dir_tree;
    NTL_AVL_TREE dir_server_tree;
    NTL_AVL_TREE rem_sys_tree;
    NTL_AVL_TREE rtp_conn_tree;
    NTL_AVL_TREE rtp_conn_name_tree;
    NTL_AVL_TREE userid_tree;
    NTL_AVL_TREE access_list_tree;
    NTL_AVL_TREE sl_sec_tree;
    NTL_AVL_TREE tn_client_tree;
    NTL_AVL_TREE tn_assoc_tree;
    NTL_AVL_TREE tn_redirect_tree;
    NTL_AVL_TREE appcip_sess_tree;
    NTL_AVL_TREE appcip_id_tree; // the same by 32-bit number

    vga_viewer_root links_root; // connectivity
    vga_viewer_root lus_root;   // independent LUs 6.2
    vga_viewer_root rem_sys_root;
    vga_viewer_root mode_root;
    vga_viewer_root tp_root;
    vga_viewer_root tp_load_root;
    vga_viewer_root rtp_root;
    vga_viewer_root userid_root;
    vga_viewer_root access_list_root;
    vga_viewer_root sl_sec_root;
    vga_viewer_root tn_client_root;
    vga_viewer_root tn_assoc_root;
    vga_viewer_root tn_redirect_root;
    vga_viewer_root appcip_root;
    vga_viewer rtp_title;
    vga_viewer sl_sec_title;
    vga_viewer tn_client_title;
    vga_viewer tn_assoc_title;
    vga_viewer tn_redirect_title;
    vga_viewer appcip_title;
    vga_viewer viewer; // in the system window

    NBA_QUEUE rtp_conn_dialog_root_lqe;        // open RTP connection status dialogs
    IPBRIDGE_APPCIP_DEFAULTS* appcip_defaults; // own block, null: none
    vga_lu62* cp_lu;
    vga_lu62_timeout* global_timeout;
    vga_port* dlur_fake_port;
    vga_port* primary_line_fake_port;
    vga_rem_sys* network_fake_rem_sys;
    NB_ULONG checks_running[VGA_CHECK_COUNT];
    struct {
        vga_dialog* node_window;
        vga_dialog* dialog; // its configuration
        vga_dialog* start_ls_dialog;
        vga_dialog* stop_ls_dialog;
        vga_dialog* rtp_window;
        vga_dialog* tn_window;
        vga_dialog* mode_window;
        vga_dialog* tp_window;
        vga_dialog* cl_security_window;
        vga_dialog* sl_security_window;
        vga_dialog* ipbridge_window;
        vga_dialog* tracing_dialog;
    } gui_data;
};
