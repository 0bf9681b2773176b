// The node itself, connections and files, indication sinks, domain membership, start and stop of
// the node.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

struct CONNECT_NODE {
    VCB_HEADER header;
    NB_BYTE reserved12;
    NB_NODE_NAME node_name; // 13
    NB_BYTE reserved141[3];
    NB_HANDLE node_handle; // 144, reply
    NB_BYTE reserved148[16];
};
NOF_AT(CONNECT_NODE, node_name, 13);
NOF_AT(CONNECT_NODE, node_handle, 144);
NOF_SIZE(CONNECT_NODE, 164);

enum NOF_FILE_ROLE : NB_BYTE {
    NOF_FILE_CONFIGURATION = 1,
    NOF_FILE_SNA_NET = 5,
    NAP_TP_LOAD_INFO = 6, // opened on a node's connection handle
};

struct OPEN_FILE {
    VCB_HEADER header;
    struct {
        NB_BYTE requested_role;   // 12, NOF_FILE_ROLE
        NB_BYTE local_server;     // 13, reply: 1 when this machine's own server holds the file
        NB_NODE_NAME server_name; // 14, reply
    } file_info;
    NB_BYTE reserved142[82];
    NB_HANDLE file_handle; // 224, reply
    NB_BYTE reserved228[4];
};
static_assert(offsetof(OPEN_FILE, file_info.requested_role) == 12);
static_assert(offsetof(OPEN_FILE, file_info.local_server) == 13);
static_assert(offsetof(OPEN_FILE, file_info.server_name) == 14);
NOF_AT(OPEN_FILE, file_handle, 224);
NOF_SIZE(OPEN_FILE, 232);

struct HEADER_ONLY { // NAP_DISCONNECT_NODE, NAP_CLOSE_FILE, NAP_INIT_NODE,
                     // NAP_DELETE_IPBRIDGE_APPCIP_DEFAULTS
    VCB_HEADER header;
};
NOF_SIZE(HEADER_ONLY, 12);
using DISCONNECT_NODE = HEADER_ONLY;
using CLOSE_FILE = HEADER_ONLY;
using INIT_NODE = HEADER_ONLY;

struct STOP_NODE {
    VCB_HEADER header;
    NB_BYTE stop_type; // 12, 1
    NB_BYTE reserved13[3];
};
NOF_AT(STOP_NODE, stop_type, 12);
NOF_SIZE(STOP_NODE, 16);

struct SET_PROCESSING_MODE {
    VCB_HEADER header;
    NB_BYTE mode; // 12, 18
    NB_BYTE reserved13[3];
};
NOF_AT(SET_PROCESSING_MODE, mode, 12);
NOF_SIZE(SET_PROCESSING_MODE, 16);
inline constexpr NB_BYTE NOF_PROCESSING_MODE = 18;

struct REGISTER_INDICATION_SINK {
    VCB_HEADER header;
    NB_BYTE reserved12[6];
    NB_USHORT indication_opcode; // 18
};
NOF_AT(REGISTER_INDICATION_SINK, indication_opcode, 18);
NOF_SIZE(REGISTER_INDICATION_SINK, 20);

struct NODE_ALL_ENTRY {
    NB_USHORT length;
    NB_NODE_NAME node_name; // 2
    NB_BYTE reserved130[2];
};
NOF_AT(NODE_ALL_ENTRY, node_name, 2);
NOF_SIZE(NODE_ALL_ENTRY, 132);

struct QUERY_NODE_ALL { // NAP_QUERY_NODE_ALL and NAP_QUERY_SNA_NET
    LIST_QUERY list;
    NB_NODE_NAME node_name;
};
using SNA_NET_ENTRY = NODE_ALL_ENTRY;

struct NODE_PARAMETERS { // 312 bytes: the body of NAP_DEFINE_NODE and the start of the node entry
    NB_USHORT size;      // 0, 312
    NB_DESCRIPTION description; // 2
    NB_BYTE reserved34[2];
    NB_BYTE parameter36;
    NB_BYTE parameter37;
    NB_BYTE reserved38[12];
    NB_BYTE node_type;  // 50, NAP_NODE_TYPE
    NB_FQNAME cp_name;  // 51
    NB_NAME8L cp_alias; // 68
    NB_BYTE parameter76;
    NB_BYTE parameter77;
    NB_BE32 node_id; // 78
    NB_USHORT parameter82;
    NB_USHORT parameter84;
    NB_USHORT parameter86;
    NB_USHORT parameter88;
    NB_BYTE parameter90;
    NB_BYTE parameter91;
    NB_USHORT parameter92;
    NB_USHORT parameter94;
    NB_USHORT parameter96;
    NB_USHORT parameter98;
    NB_BYTE reserved100[4];
    NB_ULONG parameter104;
    NB_ULONG parameter108;
    NB_ULONG parameter112;
    NB_USHORT parameter116;
    NB_USHORT parameter118;
    NB_BYTE reserved120[3];
    NB_BYTE dlur_support;    // 123
    NB_BYTE pu_conc_support; // 124
    NB_BYTE parameter125;
    NB_BYTE hpr_support; // 126
    NB_BYTE reserved127[16];
    NB_BYTE parameter143;
    NB_BYTE reserved144[68];
    NB_BYTE cp_lu_sync_point; // 212
    NB_BYTE cp_lu_attributes; // 213
    NB_BYTE reserved214[98];
};
NOF_AT(NODE_PARAMETERS, description, 2);
NOF_AT(NODE_PARAMETERS, node_type, 50);
NOF_AT(NODE_PARAMETERS, cp_name, 51);
NOF_AT(NODE_PARAMETERS, cp_alias, 68);
NOF_AT(NODE_PARAMETERS, node_id, 78);
NOF_AT(NODE_PARAMETERS, parameter82, 82);
NOF_AT(NODE_PARAMETERS, parameter92, 92);
NOF_AT(NODE_PARAMETERS, parameter104, 104);
NOF_AT(NODE_PARAMETERS, parameter118, 118);
NOF_AT(NODE_PARAMETERS, dlur_support, 123);
NOF_AT(NODE_PARAMETERS, pu_conc_support, 124);
NOF_AT(NODE_PARAMETERS, parameter125, 125);
NOF_AT(NODE_PARAMETERS, hpr_support, 126);
NOF_AT(NODE_PARAMETERS, parameter143, 143);
NOF_AT(NODE_PARAMETERS, cp_lu_sync_point, 212);
NOF_SIZE(NODE_PARAMETERS, 312);

// What the node can do. A capability with two bytes has one for the software and one for the
// configuration.
struct NODE_CAPABILITIES {
    NB_BYTE dspu[2];
    NB_BYTE dlur[2];
    NB_BYTE tn_server;
    NB_BYTE back_level_trace;
    NB_BYTE cn_not_listed; // 1: connection networks are not listed
    NB_BYTE hpr;
    NB_BYTE ssl;
    NB_BYTE attach_routing;
    NB_BYTE mode_to_cos_map;
};

struct QUERY_NODE { // the node query; the reply is the whole block
    VCB_HEADER header;
    NODE_PARAMETERS parameters;     // 12
    NB_BYTE active;                 // 324
    NODE_CAPABILITIES capabilities; // 325
    NB_BYTE reserved336[112];
};
NOF_AT(QUERY_NODE, parameters, 12);
NOF_AT(QUERY_NODE, active, 324);
NOF_SIZE(QUERY_NODE, 448);
static_assert(offsetof(QUERY_NODE, parameters) + offsetof(NODE_PARAMETERS, description) == 14);
using NODE_ENTRY = QUERY_NODE;

struct DEFINE_NODE {
    VCB_HEADER header;
    NB_NODE_NAME node_name; // 12
    NB_BYTE reserved140[4];
    NODE_PARAMETERS parameters; // 144
};
NOF_AT(DEFINE_NODE, node_name, 12);
NOF_AT(DEFINE_NODE, parameters, 144);
NOF_SIZE(DEFINE_NODE, 456);

struct NODE_LIMITS {
    NB_BYTE network_node; // 0: can be a network node
    NB_BYTE end_node;
    NB_BYTE len_node;
    NB_BYTE dlur; // capability values
    NB_BYTE pu_conc;
    NB_BYTE reserved5[27];
};
NOF_SIZE(NODE_LIMITS, 32);

struct QUERY_NODE_LIMITS {
    VCB_HEADER header;
    NB_NODE_NAME node_name;
    NB_BYTE reserved140[32];
    NODE_LIMITS limits; // 172
};
NOF_AT(QUERY_NODE_LIMITS, limits, 172);
NOF_SIZE(QUERY_NODE_LIMITS, 204);

struct NODE_DEFAULTS {
    NB_DESCRIPTION description;
    NB_BYTE reserved32[16];
    NB_NAME8E default_mode_name; // 48
    NB_BYTE session_options;     // 56
    NB_BYTE security_options;    // 57
    NB_USHORT timeout;           // 58
    NB_BYTE reserved60[244];
};
NOF_AT(NODE_DEFAULTS, default_mode_name, 48);
NOF_AT(NODE_DEFAULTS, session_options, 56);
NOF_AT(NODE_DEFAULTS, timeout, 58);
NOF_SIZE(NODE_DEFAULTS, 304);

struct DEFINE_DEFAULTS { // also NAP_QUERY_DEFAULTS: the reply has the block at the same place
    VCB_HEADER header;
    NODE_DEFAULTS defaults; // 12
};
NOF_AT(DEFINE_DEFAULTS, defaults, 12);
NOF_SIZE(DEFINE_DEFAULTS, 316);
using QUERY_DEFAULTS = DEFINE_DEFAULTS;

struct BACKUP_SERVER { // NAP_ADD_BACKUP, NAP_DELETE_BACKUP
    VCB_HEADER header;
    NB_NODE_NAME server_name; // 12
};
NOF_AT(BACKUP_SERVER, server_name, 12);
NOF_SIZE(BACKUP_SERVER, 140);

struct NOF_STATUS_INDICATION { // 0xF019, arrives without registration
    VCB_HEADER header;
    NB_ULONG status;  // 12, NAP_SYSTEM_STOPPING, NAP_STATUS_MASTER_LOST, ...
    NB_HANDLE handle; // 16
};
NOF_AT(NOF_STATUS_INDICATION, status, 12);
NOF_AT(NOF_STATUS_INDICATION, handle, 16);
NOF_SIZE(NOF_STATUS_INDICATION, 20);

struct SERVER_INDICATION { // 0xF01A
    VCB_HEADER header;
    NB_BYTE reserved12[4];
    NB_ULONG status;          // 16, 1: up
    NB_ULONG flags;           // 20, bits 0x4, 0x8, 0x2000, 0x4000
    NB_NODE_NAME server_name; // 24
};
NOF_AT(SERVER_INDICATION, status, 16);
NOF_AT(SERVER_INDICATION, flags, 20);
NOF_AT(SERVER_INDICATION, server_name, 24);
NOF_SIZE(SERVER_INDICATION, 152);

struct SNA_NET_INDICATION { // 0xF077
    VCB_HEADER header;
};

#pragma pack(pop)
