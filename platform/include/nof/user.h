// Definitions of the domain: emulator users and their sessions, CPI-C side information, RJE
// workstations.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

// ---- emulator user or group ----

enum NOF_USER_SESSION_TYPE : NB_BYTE {
    NOF_SESSION_3270 = 1,
    NOF_SESSION_5250 = 2,
};

struct USER_SESSION { // entry of the define block and of the query entry
    NB_USHORT length;
    NB_NAME8L session_name; // 2
    NB_BYTE session_type;   // 10, NOF_USER_SESSION_TYPE
    NB_BYTE reserved11;
    NB_DESCRIPTION description; // 12
    NB_BYTE reserved44[16];
    NB_BYTE lu_name[8]; // 60, 3270: LU or pool, EBCDIC; 5250: alias of the local LU, zero: the
                        // default one
    union {
        NB_NAME8L plu_alias; // 68, 5250, zero: by name
        struct {
            NB_BYTE lu_model;    // 68, 3270: 2 to 5 display, 128 printer
            NB_BYTE parameter69; // 1
        } lu;
    } partner;
    NB_FQNAME plu_name; // 76, 5250
    NB_BYTE reserved93[8];
    NB_BYTE printer; // 101, 5250: 1 for a printer
    NB_BYTE reserved102[10];
};
NOF_AT(USER_SESSION, session_name, 2);
NOF_AT(USER_SESSION, session_type, 10);
NOF_AT(USER_SESSION, description, 12);
NOF_AT(USER_SESSION, lu_name, 60);
NOF_AT(USER_SESSION, partner.plu_alias, 68);
NOF_AT(USER_SESSION, partner.lu.lu_model, 68);
NOF_AT(USER_SESSION, partner.lu.parameter69, 69);
NOF_AT(USER_SESSION, plu_name, 76);
NOF_AT(USER_SESSION, printer, 101);
NOF_SIZE(USER_SESSION, 112);

struct EMULATOR_USER_DEF {      // define block offsets 44 to 131
    NB_DESCRIPTION description; // 44
    NB_BYTE reserved76[16];
    char style_file[9]; // 92
    NB_BYTE reserved101[3];
    NB_ULONG num_sessions;     // 104, entries that follow
    NB_ULONG session_limit;    // 108, NOF_NO_SESSION_LIMIT: none
    NB_BYTE view_rtm;          // 112
    NB_BYTE send_alerts;       // 113
    NB_BYTE change_lu;         // 114
    NB_BYTE change_permission; // 115, 0 restricted, 1 normal, 2 advanced, 3 initial
    NB_BYTE group;             // 116, 1 for a group
    NB_BYTE reserved117[15];
};
NOF_AT(EMULATOR_USER_DEF, style_file, 92 - 44);
NOF_AT(EMULATOR_USER_DEF, num_sessions, 104 - 44);
NOF_AT(EMULATOR_USER_DEF, session_limit, 108 - 44);
NOF_AT(EMULATOR_USER_DEF, view_rtm, 112 - 44);
NOF_AT(EMULATOR_USER_DEF, send_alerts, 113 - 44);
NOF_AT(EMULATOR_USER_DEF, change_lu, 114 - 44);
NOF_AT(EMULATOR_USER_DEF, change_permission, 115 - 44);
NOF_AT(EMULATOR_USER_DEF, group, 116 - 44);
NOF_SIZE(EMULATOR_USER_DEF, 88);
inline constexpr NB_ULONG NOF_NO_SESSION_LIMIT = 0xFFFFFFFF;

struct DEFINE_EMULATOR_USER { // adds the sessions to those the user has
    VCB_HEADER header;
    char user_name[32];    // 12
    EMULATOR_USER_DEF def; // 44
};
NOF_AT(DEFINE_EMULATOR_USER, user_name, 12);
NOF_AT(DEFINE_EMULATOR_USER, def, 44);
NOF_SIZE(DEFINE_EMULATOR_USER, 132); // then the USER_SESSIONs
static_assert(sizeof(DEFINE_EMULATOR_USER) + offsetof(USER_SESSION, session_name) == 134);

struct DELETE_EMULATOR_USER {
    VCB_HEADER header;
    char user_name[32];    // 12
    NB_ULONG num_sessions; // 44, 0: see session_types
    NB_BYTE
    session_types; // 48, 0: the whole user; else every session with one of these types' bits
    NB_BYTE reserved49;
    NB_NAME8L session_names[10]; // 50
    NB_BYTE reserved130[2];
};
NOF_AT(DELETE_EMULATOR_USER, user_name, 12);
NOF_AT(DELETE_EMULATOR_USER, num_sessions, 44);
NOF_AT(DELETE_EMULATOR_USER, session_types, 48);
NOF_AT(DELETE_EMULATOR_USER, session_names, 50);
NOF_SIZE(DELETE_EMULATOR_USER, 132);

struct EMULATOR_USER_ENTRY { // define block offset b is entry offset b - 8
    NB_USHORT length;
    NB_BYTE reserved2[2];
    char user_name[32];    // 4
    EMULATOR_USER_DEF def; // 36, num_sessions counts the sessions of this entry
};
NOF_AT(EMULATOR_USER_ENTRY, user_name, 4);
NOF_AT(EMULATOR_USER_ENTRY, def, 36);
NOF_SIZE(EMULATOR_USER_ENTRY, 124); // then the USER_SESSIONs

struct QUERY_EMULATOR_USER_DEF { // list.more: the last entry's user has more sessions
    LIST_QUERY list;
    char user_name[32];
    NB_NAME8L session_name; // the last session received
};

// ---- CPI-C side information ----

enum NOF_CPIC_SECURITY : NB_BYTE {
    NOF_CPIC_SECURITY_NONE = 0,
    NOF_CPIC_SECURITY_SAME = 1,
    NOF_CPIC_SECURITY_PROGRAM = 2,
    NOF_CPIC_SECURITY_PROGRAM_STRONG = 5,
};

struct CPIC_SIDE_INFO_DEF {     // define block offsets 28 to 227
    NB_DESCRIPTION description; // 28
    NB_NAME8L lu_alias;         // 60, of the local LU; zero: the default one
    NB_BYTE plu_by_name;        // 68, 1: plu_name is given, 0: plu_alias
    NB_BYTE service_tp;         // 69, 1: tp_name is that of a service TP
    NB_NAME8L plu_alias;        // 70
    NB_FQNAME plu_name;         // 78
    NB_BYTE security;           // 95, NOF_CPIC_SECURITY
    NB_BYTE tp_name[64];        // 96, EBCDIC, or the bytes of a service TP's name
    NB_NAME8E mode_name;        // 160
    char user_id[10];           // 168, padded with blanks
    char password[10];          // 178, padded with blanks
    NB_BYTE reserved188[40];
};
NOF_SIZE(CPIC_SIDE_INFO_DEF, 200);

struct DEFINE_CPIC_SIDE_INFO {
    VCB_HEADER header;
    NB_BYTE reserved12[8];
    NB_NAME8L sym_dest_name; // 20
    CPIC_SIDE_INFO_DEF def;  // 28
};
NOF_AT(DEFINE_CPIC_SIDE_INFO, sym_dest_name, 20);
NOF_SIZE(DEFINE_CPIC_SIDE_INFO, 228);

struct DELETE_CPIC_SIDE_INFO {
    VCB_HEADER header;
    NB_BYTE reserved12[8];
    NB_NAME8L sym_dest_name; // 20
};
NOF_AT(DELETE_CPIC_SIDE_INFO, sym_dest_name, 20);
NOF_SIZE(DELETE_CPIC_SIDE_INFO, 28);

struct CPIC_SIDE_INFO_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8L sym_dest_name; // 4
    CPIC_SIDE_INFO_DEF def;  // 12
};
NOF_SIZE(CPIC_SIDE_INFO_ENTRY, 212);

struct QUERY_CPIC_SIDE_INFO {
    LIST_QUERY list;
    NB_NAME8L sym_dest_name;
};

// ---- RJE workstation ----

struct RJE_WKSTN_DEF {          // define block offsets 16 to 315
    NB_DESCRIPTION description; // 16
    NB_BYTE reserved48[16];
    char user_name[32];       // 64
    char group_name[32];      // 96
    NB_NODE_NAME system_name; // 128, zero when there is none
    NB_BYTE num_lus;          // 256, 1 to 5
    NB_BYTE reserved257[19];
    NB_NAME8E lu_names[5]; // 276
};
NOF_AT(RJE_WKSTN_DEF, user_name, 64 - 16);
NOF_AT(RJE_WKSTN_DEF, group_name, 96 - 16);
NOF_AT(RJE_WKSTN_DEF, system_name, 128 - 16);
NOF_AT(RJE_WKSTN_DEF, num_lus, 256 - 16);
NOF_AT(RJE_WKSTN_DEF, lu_names, 276 - 16);
NOF_SIZE(RJE_WKSTN_DEF, 300);

struct DEFINE_RJE_WKSTN {
    VCB_HEADER header;
    char wkstn_name[4]; // 12
    RJE_WKSTN_DEF def;  // 16
};
NOF_AT(DEFINE_RJE_WKSTN, wkstn_name, 12);
NOF_AT(DEFINE_RJE_WKSTN, def, 16);
NOF_SIZE(DEFINE_RJE_WKSTN, 316);

struct DELETE_RJE_WKSTN {
    VCB_HEADER header;
    char wkstn_name[4]; // 12
};
NOF_SIZE(DELETE_RJE_WKSTN, 16);

struct RJE_WKSTN_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    char wkstn_name[4]; // 4
    RJE_WKSTN_DEF def;  // 8
};
NOF_SIZE(RJE_WKSTN_ENTRY, 308);

struct QUERY_RJE_WKSTN_DEF {
    LIST_QUERY list;
    char wkstn_name[4];
};

#pragma pack(pop)
