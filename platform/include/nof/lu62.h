// Local LUs 6.2, their partner LUs, modes, sessions; mode definitions; partner LU definitions;
// classes of service.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

// ---- local LU 6.2 ----

struct LU62_DEF {               // define block offsets 20 to 315
    NB_DESCRIPTION description; // 20
    NB_BYTE implicit;           // 52, 1: created automatically
    char access_list_name[14];  // 53
    NB_BYTE reserved67;
    NB_NAME8L lu_alias;   // 68
    NB_BYTE nau_address;  // 76, 0: independent
    NB_BYTE sync_point;   // 77
    NB_USHORT dependent;  // 78
    NB_BYTE default_pool; // 80
    NB_BYTE reserved81;
    NB_NAME8E pu_name;   // 82
    NB_BYTE attributes;  // 90, bit 0: disable password
    NB_BYTE restriction; // 91
    NB_BYTE reserved92[8];
    NB_BYTE attach_routing[128]; // 100
    NB_ULONG attach_timeout;     // 228
    NB_BYTE back_level;          // 232
    NB_BYTE reserved233[83];
};
NOF_AT(LU62_DEF, access_list_name, 53 - 20);
NOF_AT(LU62_DEF, lu_alias, 68 - 20);
NOF_AT(LU62_DEF, nau_address, 76 - 20);
NOF_AT(LU62_DEF, dependent, 78 - 20);
NOF_AT(LU62_DEF, pu_name, 82 - 20);
NOF_AT(LU62_DEF, attach_routing, 100 - 20);
NOF_AT(LU62_DEF, attach_timeout, 228 - 20);
NOF_AT(LU62_DEF, back_level, 232 - 20);
NOF_SIZE(LU62_DEF, 296);

struct DEFINE_LOCAL_LU {
    VCB_HEADER header;
    NB_NAME8E lu_name;
    LU62_DEF def;
};
NOF_AT(DEFINE_LOCAL_LU, lu_name, 12);
NOF_SIZE(DEFINE_LOCAL_LU, 316);

struct LU62_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8E lu_name;      // 4
    NB_BYTE session_status; // 12, of a dependent LU: 0 inactive
    NB_BYTE reserved13[7];
    LU62_DEF def; // 20
};
NOF_AT(LU62_ENTRY, def, 20);
NOF_SIZE(LU62_ENTRY, 316);

struct QUERY_LOCAL_LU {
    LIST_QUERY list;
    NB_NAME8E lu_name;
};

struct LOCAL_LU_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_BYTE change;    // 13, 2 or 3: the session status of a dependent LU
    NB_NAME8E lu_name; // 14
    NB_BYTE reserved22[56];
    NB_BYTE nau_address; // 0x4E
    NB_BYTE reserved79;
    NB_NAME8E pu_name;      // 0x50
    NB_BYTE session_status; // 0x58
    NB_BYTE reserved89[3];
};
NOF_AT(LOCAL_LU_INDICATION, lu_name, 14);
NOF_AT(LOCAL_LU_INDICATION, nau_address, 0x4E);
NOF_AT(LOCAL_LU_INDICATION, pu_name, 0x50);
NOF_AT(LOCAL_LU_INDICATION, session_status, 0x58);

// ---- partner LU of a local LU ----

struct PLU_ENTRY {
    NB_USHORT length;
    NB_FQNAME plu_name;        // 2
    NB_BYTE cp_known;          // 19, 1: cp_name is given
    NB_FQNAME cp_name;         // 20, the control point that owns the partner
    NB_NAME8L plu_alias;       // 37
    NB_USHORT active_sessions; // 45
    NB_BYTE reserved47;
};
NOF_SIZE(PLU_ENTRY, 48);

struct QUERY_PARTNER_LU {
    LIST_QUERY list;
    NB_NAME8E lu_name; // of the local LU
    NB_FQNAME plu_name;
};

struct PLU_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_BYTE change;     // 1: gone
    NB_NAME8E lu_name;  // 14
    NB_NAME8L lu_alias; // 22
    NB_FQNAME plu_name; // 0x1E
    NB_BYTE reserved47[48];
    NB_FQNAME cp_name; // 0x5F
    NB_BYTE cp_known;  // 0x70
    NB_BYTE reserved113[3];
};
NOF_AT(PLU_INDICATION, lu_name, 14);
NOF_AT(PLU_INDICATION, plu_name, 0x1E);
NOF_AT(PLU_INDICATION, cp_name, 0x5F);
NOF_AT(PLU_INDICATION, cp_known, 0x70);

// ---- mode between a local LU and a partner: entries of 120 bytes ----

struct MODE_ENTRY {
    NB_USHORT length;
    NB_NAME8E mode_name; // 2
    NB_FQNAME plu_name;  // 10
    NB_BYTE cp_known;    // 27, 1: cp_name is given
    NB_FQNAME cp_name;   // 28, the control point that owns the partner
    NB_BYTE reserved45;
    NB_USHORT act_sess_count;        // 46
    NB_USHORT pending_sess_count;    // 48
    NB_USHORT max_session_limit;     // 50
    NB_USHORT current_session_limit; // 52
    NB_USHORT min_conwinners;        // 54
    NB_USHORT min_conlosers;         // 56
    NB_USHORT act_conwinners;        // 58
    NB_USHORT act_conlosers;         // 60
    NB_USHORT auto_activation;       // 62
    NB_BYTE reserved64[56];
};
NOF_SIZE(MODE_ENTRY, 120);

struct QUERY_MODE {
    LIST_QUERY list;
    NB_NAME8E lu_name; // of the local LU
    NB_FQNAME plu_name;
    NB_NAME8E mode_name;
};

struct MODE_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_BYTE change;      // 1: gone
    NB_NAME8E lu_name;   // 14
    NB_NAME8L lu_alias;  // 22
    NB_FQNAME plu_name;  // 0x1E
    NB_NAME8E mode_name; // 0x2F
    NB_BYTE reserved55[49];
    NB_USHORT act_sess_count; // 0x68
    NB_BYTE reserved106[2];
};
NOF_AT(MODE_INDICATION, lu_name, 14);
NOF_AT(MODE_INDICATION, plu_name, 0x1E);
NOF_AT(MODE_INDICATION, mode_name, 0x2F);
NOF_AT(MODE_INDICATION, act_sess_count, 0x68);

// ---- sessions ----

struct ACTIVATE_SESSION {
    VCB_HEADER header;
    NB_NAME8E lu_name;     // 12
    NB_NAME8L lu_alias;    // 20, used when the name is zero
    NB_NAME8L plu_alias;   // 28
    NB_NAME8E mode_name;   // 36
    NB_FQNAME plu_name;    // 44
    NB_BYTE polarity;      // 61, 0 either, 1 first speaker, 2 bidder
    NB_BYTE session_id[8]; // 62, reply
    NB_BYTE parameter70;   // 1
    NB_BYTE reserved71[17];
};
NOF_AT(ACTIVATE_SESSION, mode_name, 36);
NOF_AT(ACTIVATE_SESSION, polarity, 61);
NOF_AT(ACTIVATE_SESSION, parameter70, 70);
NOF_SIZE(ACTIVATE_SESSION, 88);

struct DEACTIVATE_SESSION {
    VCB_HEADER header;
    NB_NAME8E lu_name;     // 12
    NB_NAME8L lu_alias;    // 20
    NB_BYTE session_id[8]; // 28, zero: all sessions
    NB_NAME8L plu_alias;   // 36
    NB_NAME8E mode_name;   // 44
    NB_BYTE type;          // 52, 2
    NB_BYTE reserved53[7];
    NB_FQNAME plu_name; // 60
    NB_BYTE reserved77[23];
};
NOF_AT(DEACTIVATE_SESSION, session_id, 28);
NOF_AT(DEACTIVATE_SESSION, mode_name, 44);
NOF_AT(DEACTIVATE_SESSION, type, 52);
NOF_AT(DEACTIVATE_SESSION, plu_name, 60);
NOF_SIZE(DEACTIVATE_SESSION, 100);

// ---- mode definition ----

struct MODE_DEF { // define block offsets 20 to 127
    NB_USHORT reserved20;
    NB_DESCRIPTION description; // 22
    NB_BYTE reserved54[16];
    NB_USHORT max_ru_upper;           // 70
    NB_BYTE receive_pacing;           // 72
    NB_BYTE default_ru_size;          // 73
    NB_USHORT max_session_limit;      // 74
    NB_USHORT initial_session_limit;  // 76
    NB_USHORT min_conwinners;         // 78
    NB_NAME8E cos_name;               // 80
    NB_BYTE cryptography;             // 88
    NB_BYTE compression;              // 89
    NB_USHORT auto_activation;        // 90
    NB_USHORT min_conlosers;          // 92
    NB_USHORT max_ru_lower;           // 94
    NB_USHORT max_receive_pacing;     // 96
    NB_BYTE max_outbound_compression; // 98
    NB_BYTE max_inbound_compression;  // 99
    NB_BYTE reserved100[28];
};
NOF_AT(MODE_DEF, description, 22 - 20);
NOF_AT(MODE_DEF, max_ru_upper, 70 - 20);
NOF_AT(MODE_DEF, max_session_limit, 74 - 20);
NOF_AT(MODE_DEF, cos_name, 80 - 20);
NOF_AT(MODE_DEF, auto_activation, 90 - 20);
NOF_AT(MODE_DEF, max_inbound_compression, 99 - 20);
NOF_SIZE(MODE_DEF, 108);

struct DEFINE_MODE {
    VCB_HEADER header;
    NB_NAME8E mode_name;
    MODE_DEF def;
};
NOF_AT(DEFINE_MODE, mode_name, 12);
NOF_SIZE(DEFINE_MODE, 128);

struct MODE_DEF_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8E mode_name; // 4
    MODE_DEF def;        // 12
};
NOF_SIZE(MODE_DEF_ENTRY, 120);

struct QUERY_MODE_DEFINITION {
    LIST_QUERY list;
    NB_NAME8E mode_name;
};

// ---- partner LU definition ----

struct PLU_DEF {                // define block offsets 29 to 107
    NB_NAME8L plu_alias;        // 29
    NB_DESCRIPTION description; // 37
    NB_BYTE reserved69[16];
    NB_NAME8E uninterpreted_name; // 85
    NB_BYTE routing_preference;   // 93
    NB_BYTE reserved94[3];
    NB_BYTE parallel_sessions; // 97
    NB_BYTE reserved98[2];
    NB_ULONG parameter100;
    NB_USHORT parameter104;
    NB_BYTE reserved106[2];
};
NOF_AT(PLU_DEF, description, 37 - 29);
NOF_AT(PLU_DEF, uninterpreted_name, 85 - 29);
NOF_AT(PLU_DEF, routing_preference, 93 - 29);
NOF_AT(PLU_DEF, parallel_sessions, 97 - 29);
NOF_AT(PLU_DEF, parameter100, 100 - 29);
NOF_SIZE(PLU_DEF, 79);

struct DEFINE_PARTNER_LU {
    VCB_HEADER header;
    NB_FQNAME plu_name;
    PLU_DEF def;
};
NOF_AT(DEFINE_PARTNER_LU, plu_name, 12);
NOF_AT(DEFINE_PARTNER_LU, def, 29);
NOF_SIZE(DEFINE_PARTNER_LU, 108);

struct DELETE_PARTNER_LU {
    VCB_HEADER header;
    NB_FQNAME plu_name;
    NB_BYTE reserved29[3];
};
NOF_SIZE(DELETE_PARTNER_LU, 32);

struct PLU_DEF_ENTRY {
    NB_USHORT length;
    NB_FQNAME plu_name; // 2
    PLU_DEF def;        // 19
};
NOF_SIZE(PLU_DEF_ENTRY, 98);

struct QUERY_PARTNER_LU_DEFINITION {
    LIST_QUERY list;
    NB_FQNAME plu_name;
};

// ---- directory entry: entries of 132 bytes ----

struct DIRECTORY_ENTRY {
    NB_USHORT length;
    NB_FQNAME resource_name; // 2
    NB_BYTE reserved19;
    NB_USHORT resource_type;    // 20, NAP_RESOURCE_TYPE
    NB_DESCRIPTION description; // 22
    NB_BYTE reserved54[16];
    NB_FQNAME parent_name; // 70, the owning control point
    NB_BYTE reserved87;
    NB_USHORT parent_type;  // 88
    NB_BYTE entry_type;     // 90, NOF_DIRECTORY_ENTRY_TYPE
    NB_FQNAME network_node; // 91, of an end node: its server; zero: none
    NB_BYTE reserved108[24];
};
NOF_AT(DIRECTORY_ENTRY, resource_name, 2);
NOF_AT(DIRECTORY_ENTRY, resource_type, 20);
NOF_AT(DIRECTORY_ENTRY, parent_name, 70);
NOF_AT(DIRECTORY_ENTRY, parent_type, 88);
NOF_AT(DIRECTORY_ENTRY, entry_type, 90);
NOF_SIZE(DIRECTORY_ENTRY, 132);

enum NOF_DIRECTORY_ENTRY_TYPE : NB_BYTE {
    NOF_DIRECTORY_CACHED = 1,
    NOF_DIRECTORY_REGISTERED = 2,
    NOF_DIRECTORY_DEFINED = 3, // "home": defined by an operator
};

struct QUERY_DIRECTORY_ENTRY {
    LIST_QUERY list;
    NB_FQNAME resource_name;
    NB_BYTE reserved55;
    NB_USHORT resource_type;
};

struct DEFINE_DIRECTORY_ENTRY {
    VCB_HEADER header;
    NB_FQNAME resource_name; // 12
    NB_BYTE reserved29;
    NB_USHORT resource_type;    // 30
    NB_DESCRIPTION description; // 32
    NB_BYTE reserved64[16];
    NB_FQNAME parent_name; // 80
    NB_BYTE reserved97;
    NB_USHORT parent_type; // 98
    NB_BYTE reserved100[8];
};
NOF_AT(DEFINE_DIRECTORY_ENTRY, resource_name, 12);
NOF_AT(DEFINE_DIRECTORY_ENTRY, resource_type, 30);
NOF_AT(DEFINE_DIRECTORY_ENTRY, parent_name, 80);
NOF_AT(DEFINE_DIRECTORY_ENTRY, parent_type, 98);
NOF_SIZE(DEFINE_DIRECTORY_ENTRY, 108);

struct DELETE_DIRECTORY_ENTRY {
    VCB_HEADER header;
    NB_FQNAME resource_name; // 12; its last byte is the byte at 28
    NB_BYTE reserved29;
    NB_USHORT resource_type; // 30
};
NOF_AT(DELETE_DIRECTORY_ENTRY, resource_type, 30);
NOF_SIZE(DELETE_DIRECTORY_ENTRY, 32);

struct DIRECTORY_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_BYTE change;          // 1: removed
    NB_FQNAME resource_name; // 14
    NB_BYTE overwritten;     // 0x1F, 1: the remote system is to be refreshed
    NB_USHORT resource_type; // 0x20
    NB_FQNAME parent_name;   // 0x22; byte 0x32 is its last
    NB_BYTE reserved51;
    NB_USHORT parent_type; // 0x34
    NB_BYTE entry_type;    // 0x36
    NB_BYTE reserved55;
};
NOF_AT(DIRECTORY_INDICATION, resource_name, 14);
NOF_AT(DIRECTORY_INDICATION, overwritten, 0x1F);
NOF_AT(DIRECTORY_INDICATION, resource_type, 0x20);
NOF_AT(DIRECTORY_INDICATION, parent_name, 0x22);
NOF_AT(DIRECTORY_INDICATION, parent_type, 0x34);

// ---- class of service ----

struct COS_ENTRY {
    NB_USHORT length;
    NB_NAME8E cos_name;            // 2
    NB_DESCRIPTION description;    // 10
    NB_BYTE transmission_priority; // 42
    NB_BYTE reserved43;
    NB_USHORT num_node_rows; // 44
    NB_USHORT num_tg_rows;   // 46
};
NOF_SIZE(COS_ENTRY, 48);

struct QUERY_COS {
    LIST_QUERY list;
    NB_NAME8E cos_name;
};

struct COS_ROW_ENTRY { // node rows and TG rows
    NB_USHORT length;
    NB_NAME8E cos_name;  // 2
    NB_USHORT row;       // 10, counted from 1
    NB_BYTE minimum[16]; // 12
    NB_BYTE maximum[16]; // 28
    NB_BYTE weight;      // 44
    NB_BYTE reserved45[3];
};
NOF_SIZE(COS_ROW_ENTRY, 48);

struct QUERY_COS_ROW { // NAP_QUERY_COS_NODE_ROW, NAP_QUERY_COS_TG_ROW: rows of all classes, by
                       // class and row
    LIST_QUERY list;
    NB_NAME8E cos_name;
    NB_USHORT row;
};

struct DEFINE_COS {
    VCB_HEADER header;
    NB_NAME8E cos_name;            // 12
    NB_DESCRIPTION description;    // 20
    NB_BYTE transmission_priority; // 52
    NB_BYTE reserved53[7];
};
NOF_SIZE(DEFINE_COS, 60);

struct DELETE_COS {
    VCB_HEADER header;
    NB_NAME8E cos_name;
};
NOF_SIZE(DELETE_COS, 20);

#pragma pack(pop)
