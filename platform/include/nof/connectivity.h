// DLCs, ports and link stations: define blocks, query blocks, query entries and indications. A
// define block's offset b is entry offset b + 16 for a DLC, b + 24 for a port and b + 492 for a
// link station.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

enum NOF_RESOURCE_STATE : NB_BYTE {
    NOF_STATE_INACTIVE = 0,
    NOF_STATE_ACTIVE = 1,
    NOF_STATE_START_PENDING = 2,
    NOF_STATE_STOP_PENDING = 8,
    NOF_STATE_FAILED = 16, // link stations only: failed while enabled
};

// ---- DLC ----

struct DLC_DEF { // define block offsets 20 to 81
    NB_DESCRIPTION description;
    NB_BYTE initially_active; // 52
    NB_BYTE reserved53[15];
    NB_BYTE dlc_type; // 68, NAP_DLC_TYPE
    NB_BYTE reserved69[13];
};
NOF_AT(DLC_DEF, initially_active, 52 - 20);
NOF_AT(DLC_DEF, dlc_type, 68 - 20);
NOF_SIZE(DLC_DEF, 62);

// What follows at 84 in the block and 100 in the entry, for every kind of adapter.
struct DLC_SPECIFIC {
    NB_USHORT card_type;
    NB_USHORT adapter_number;
    NB_ULONG label; // number of the card type's text in message set 6
    NB_BYTE reserved8[28];
};
NOF_SIZE(DLC_SPECIFIC, 36);

struct DEFINE_DLC {
    VCB_HEADER header;
    NB_NAME8L dlc_name;
    DLC_DEF def;
    NB_USHORT specific_length;
};
NOF_AT(DEFINE_DLC, dlc_name, 12);
NOF_AT(DEFINE_DLC, def, 20);
NOF_AT(DEFINE_DLC, specific_length, 82);
NOF_SIZE(DEFINE_DLC, 84); // then the specific data

struct DLC_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8L dlc_name;
    NB_BYTE state; // 12, NOF_RESOURCE_STATE; first of 24 status bytes
    NB_BYTE status[23];
    DLC_DEF def;
    NB_USHORT specific_length;
};
NOF_AT(DLC_ENTRY, dlc_name, 4);
NOF_AT(DLC_ENTRY, state, 12);
NOF_AT(DLC_ENTRY, def, 36);
NOF_AT(DLC_ENTRY, specific_length, 98);
NOF_SIZE(DLC_ENTRY, 100); // then the specific data
static_assert(offsetof(DLC_ENTRY, def) + offsetof(DLC_DEF, initially_active) == 68);
static_assert(offsetof(DLC_ENTRY, def) + offsetof(DLC_DEF, dlc_type) == 84);

struct QUERY_DLC {
    LIST_QUERY list;
    NB_NAME8L dlc_name;
};

struct DLC_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync; // 12, 1: indications were lost
    NB_BYTE change; // 13, 1: inactive
    NB_NAME8L dlc_name;
    NB_BYTE reserved22[2];
};
NOF_AT(DLC_INDICATION, resync, 12);
NOF_AT(DLC_INDICATION, change, 13);
NOF_AT(DLC_INDICATION, dlc_name, 14);

// ---- port ----

struct PORT_DEF { // define block offsets 20 to 719
    NB_DESCRIPTION description;
    NB_BYTE initially_active; // 52
    NB_BYTE reserved53[15];
    NB_NAME8L dlc_name; // 68
    NB_BYTE port_type;  // 76
    NB_BYTE reserved77[7];
    NB_ULONG port_number;          // 84
    NB_USHORT max_btu;             // 88
    NB_USHORT total_link_limit;    // 90
    NB_USHORT inbound_link_limit;  // 92
    NB_USHORT outbound_link_limit; // 94
    NB_BYTE link_station_role;     // 96
    NB_BYTE reserved97[15];
    NB_NAME8L implicit_dspu_template; // 112
    NB_BYTE reserved120[3];
    NB_BYTE implicit_dspu_services; // 123
    NB_BYTE reserved124[2];
    NB_USHORT parameter126;
    NB_USHORT parameter128;
    NB_BYTE parameter130;
    NB_BYTE parameter131;
    NB_USHORT parameter132;
    NB_USHORT implicit_max_btu; // 134
    NB_BYTE reserved136[4];
    NB_BYTE local_address[7]; // 140
    NB_BYTE reserved147[545];
    NB_BYTE parameter692;
    NB_BYTE parameter693;
    NB_BYTE implicit_hpr;            // 694
    NB_BYTE implicit_hpr_link_error; // 695
    NB_BYTE reserved696[9];
    NB_BYTE parameter705[3];
    NB_BYTE reserved708[6];
    NB_USHORT port_data_length; // 714, of the specific data at 720
    NB_USHORT link_data_length; // 716, of the link data after it
    NB_BYTE reserved718[2];
};
NOF_AT(PORT_DEF, initially_active, 52 - 20);
NOF_AT(PORT_DEF, dlc_name, 68 - 20);
NOF_AT(PORT_DEF, port_type, 76 - 20);
NOF_AT(PORT_DEF, port_number, 84 - 20);
NOF_AT(PORT_DEF, max_btu, 88 - 20);
NOF_AT(PORT_DEF, total_link_limit, 90 - 20);
NOF_AT(PORT_DEF, inbound_link_limit, 92 - 20);
NOF_AT(PORT_DEF, outbound_link_limit, 94 - 20);
NOF_AT(PORT_DEF, link_station_role, 96 - 20);
NOF_AT(PORT_DEF, implicit_dspu_template, 112 - 20);
NOF_AT(PORT_DEF, implicit_dspu_services, 123 - 20);
NOF_AT(PORT_DEF, parameter126, 126 - 20);
NOF_AT(PORT_DEF, implicit_max_btu, 134 - 20);
NOF_AT(PORT_DEF, local_address, 140 - 20);
NOF_AT(PORT_DEF, parameter692, 692 - 20);
NOF_AT(PORT_DEF, implicit_hpr, 694 - 20);
NOF_AT(PORT_DEF, parameter705, 705 - 20);
NOF_AT(PORT_DEF, port_data_length, 714 - 20);
NOF_AT(PORT_DEF, link_data_length, 716 - 20);
NOF_SIZE(PORT_DEF, 700);

struct DEFINE_PORT {
    VCB_HEADER header;
    NB_NAME8L port_name;
    PORT_DEF def;
};
NOF_AT(DEFINE_PORT, port_name, 12);
NOF_AT(DEFINE_PORT, def, 20);
NOF_SIZE(DEFINE_PORT, 720); // then the specific data

struct PORT_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8L port_name;
    NB_BYTE state;    // 12, NOF_RESOURCE_STATE; first of 32 status bytes
    NB_BYTE dlc_type; // 13, NAP_DLC_TYPE
    NB_BYTE status[30];
    PORT_DEF def;
};
NOF_AT(PORT_ENTRY, port_name, 4);
NOF_AT(PORT_ENTRY, state, 12);
NOF_AT(PORT_ENTRY, dlc_type, 13);
NOF_AT(PORT_ENTRY, def, 44);
NOF_SIZE(PORT_ENTRY, 744); // then the specific data
static_assert(offsetof(PORT_ENTRY, def) + offsetof(PORT_DEF, max_btu) == 88 + 24);
static_assert(offsetof(PORT_ENTRY, def) + offsetof(PORT_DEF, total_link_limit) == 114);
static_assert(offsetof(PORT_ENTRY, def) + offsetof(PORT_DEF, outbound_link_limit) == 118);
static_assert(offsetof(PORT_ENTRY, def) + offsetof(PORT_DEF, link_station_role) == 120);

struct QUERY_PORT {
    LIST_QUERY list;
    NB_NAME8L port_name;
    NB_NAME8L dlc_name; // only ports of this DLC; all zero: every port
};

struct PORT_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_BYTE change; // 1: inactive
    NB_NAME8L port_name;
    NB_BYTE reserved22[2];
};
NOF_AT(PORT_INDICATION, change, 13);
NOF_AT(PORT_INDICATION, port_name, 14);

// ---- link station ----

struct LS_DEF { // define block offsets 20 to 505
    NB_DESCRIPTION description;
    NB_BYTE initially_active; // 52
    NB_BYTE reserved53;
    NB_USHORT parameter54;
    NB_USHORT parameter56;
    NB_BYTE reserved58[10];
    NB_NAME8L port_name;   // 68
    NB_FQNAME adj_cp_name; // 76
    NB_BYTE adj_cp_type;   // 93, NAP_ADJ_CP_TYPE
    NB_BYTE reserved94[2];
    NB_USHORT address_length;      // 96
    NB_BYTE address[274];          // 98; LLC2: MAC address 6 bytes, service access point at 104
    NB_BYTE activate_on_demand;    // 372
    NB_BYTE tg_number;             // 373
    NB_BYTE limited_resource;      // 374
    NB_BYTE solicit_sscp_sessions; // 375, 1: the link station carries a local PU
    NB_NAME8E pu_name;             // 376
    NB_BYTE disable_remote_act;    // 384, 0: enabled for activation by the other side
    NB_BYTE dspu_services;         // 385, 0 none, 1 PU concentration, 2 DLUR
    NB_NAME8E dspu_name;           // 386
    NB_FQNAME dlus_name;           // 394
    NB_FQNAME backup_dlus_name;    // 411
    NB_BYTE reserved428[10];
    NB_BE32 receive_node_id; // 438
    NB_BE32 send_node_id;    // 442
    NB_BYTE parameter446;
    NB_BYTE parameter447;
    NB_BYTE reserved448[16];
    NB_BYTE parameter464;
    NB_BYTE reserved465[3];
    NB_BYTE parameter468;
    NB_BYTE reserved469[5];
    NB_BYTE parameter474;
    NB_BYTE reserved475[7];
    NB_BYTE branch_link_type; // 482
    NB_BYTE reserved483[7];
    NB_BYTE parameter490;
    NB_BYTE reserved491[13];
    NB_USHORT specific_length; // 504
};
NOF_AT(LS_DEF, initially_active, 52 - 20);
NOF_AT(LS_DEF, parameter54, 54 - 20);
NOF_AT(LS_DEF, port_name, 68 - 20);
NOF_AT(LS_DEF, adj_cp_name, 76 - 20);
NOF_AT(LS_DEF, adj_cp_type, 93 - 20);
NOF_AT(LS_DEF, address_length, 96 - 20);
NOF_AT(LS_DEF, address, 98 - 20);
NOF_AT(LS_DEF, activate_on_demand, 372 - 20);
NOF_AT(LS_DEF, solicit_sscp_sessions, 375 - 20);
NOF_AT(LS_DEF, pu_name, 376 - 20);
NOF_AT(LS_DEF, disable_remote_act, 384 - 20);
NOF_AT(LS_DEF, dspu_services, 385 - 20);
NOF_AT(LS_DEF, dspu_name, 386 - 20);
NOF_AT(LS_DEF, dlus_name, 394 - 20);
NOF_AT(LS_DEF, receive_node_id, 438 - 20);
NOF_AT(LS_DEF, parameter446, 446 - 20);
NOF_AT(LS_DEF, parameter464, 464 - 20);
NOF_AT(LS_DEF, parameter468, 468 - 20);
NOF_AT(LS_DEF, parameter474, 474 - 20);
NOF_AT(LS_DEF, branch_link_type, 482 - 20);
NOF_AT(LS_DEF, parameter490, 490 - 20);
NOF_AT(LS_DEF, specific_length, 504 - 20);
NOF_SIZE(LS_DEF, 486);

struct DEFINE_LS {
    VCB_HEADER header;
    NB_NAME8L ls_name;
    LS_DEF def;
    NB_BYTE reserved506[2];
};
NOF_AT(DEFINE_LS, ls_name, 12);
NOF_AT(DEFINE_LS, def, 20);
NOF_SIZE(DEFINE_LS, 508); // then the specific data

enum NOF_LS_ACTIVATION : NB_BYTE { // flags of a link station that is enabled but not active
    NOF_LS_ON_DEMAND = 0x01,
    NOF_LS_INCOMING = 0x02,
};

struct LS_DETAIL {             // entry offsets 12 to 511
    NB_USHORT active_sessions; // 12, copied from indications
    NB_BYTE dlc_type;          // 14
    NB_BYTE state;             // 15, NOF_RESOURCE_STATE
    NB_BYTE reserved16;
    NB_FQNAME adj_cp_name; // 17: as learned while active
    NB_BYTE adj_cp_type;   // 34
    NB_BYTE reserved35[8];
    NB_BYTE implicit; // 43, 1: created dynamically
    NB_BYTE reserved44;
    NB_BYTE parameter45;     // copied from indications
    NB_BYTE port_address[8]; // 46
    NB_BYTE reserved54[87];
    NB_BYTE activation_flags; // 141, NOF_LS_ACTIVATION
    NB_BYTE reserved142[370];
};
NOF_AT(LS_DETAIL, state, 15 - 12);
NOF_AT(LS_DETAIL, adj_cp_name, 0x11 - 12);
NOF_AT(LS_DETAIL, adj_cp_type, 0x22 - 12);
NOF_AT(LS_DETAIL, implicit, 0x2B - 12);
NOF_AT(LS_DETAIL, parameter45, 0x2D - 12);
NOF_AT(LS_DETAIL, activation_flags, 0x8D - 12);
NOF_SIZE(LS_DETAIL, 500);

struct LS_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8L ls_name;
    LS_DETAIL det;
    LS_DEF def;
    NB_BYTE reserved998[2];
};
NOF_AT(LS_ENTRY, ls_name, 4);
NOF_AT(LS_ENTRY, det, 12);
NOF_AT(LS_ENTRY, def, 512);
NOF_SIZE(LS_ENTRY, 1000); // then the specific data
static_assert(offsetof(LS_ENTRY, def) + offsetof(LS_DEF, specific_length) == 996);
static_assert(offsetof(LS_ENTRY, def) + offsetof(LS_DEF, activate_on_demand) == 0x360);
static_assert(offsetof(LS_ENTRY, def) + offsetof(LS_DEF, disable_remote_act) == 0x36C);
static_assert(offsetof(LS_ENTRY, def) + offsetof(LS_DEF, solicit_sscp_sessions) == 0x363);
static_assert(offsetof(LS_ENTRY, def) + offsetof(LS_DEF, dspu_services) == 0x36D);
static_assert(offsetof(LS_ENTRY, def) + offsetof(LS_DEF, adj_cp_type) == 0x249);
static_assert(offsetof(LS_ENTRY, def) + offsetof(LS_DEF, address_length) == 0x24C);
static_assert(offsetof(LS_ENTRY, def) + offsetof(LS_DEF, initially_active) == 0x220);

// Byte of the specific data that tells a permanent QLLC circuit (2) from a switched one (entry
// offset 0x410).
inline constexpr std::size_t NOF_LS_CIRCUIT_OFFSET = 40;
inline constexpr NB_BYTE NOF_LS_PERMANENT_CIRCUIT = 2;

struct QUERY_LS {
    LIST_QUERY list;
    NB_NAME8L ls_name;
    NB_NAME8L port_name; // only link stations of this port; all zero: every one
};

enum NOF_LS_NEW_STATE : NB_BYTE { // new-state byte of the indication
    NOF_LS_STARTING = 0x01,
    NOF_LS_STOPPED_DISABLED = 0x02,
    NOF_LS_STOPPING = 0x03,
    NOF_LS_FAILED_ENABLED = 0x04,
    NOF_LS_STOPPED = 0x20,
    NOF_LS_ACTIVATED = 0x40,
    NOF_LS_DISABLED = 0x80,
};

struct LS_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_BYTE change;    // 1: gone
    NB_NAME8L ls_name; // 14
    NB_BYTE reserved22[48];
    NB_FQNAME adj_cp_name;     // 0x46
    NB_BYTE adj_cp_type;       // 0x57
    NB_USHORT active_sessions; // 0x58
    NB_BYTE new_state;         // 0x5A, NOF_LS_NEW_STATE
    NB_BYTE reserved91[73];
    NB_BYTE parameter164; // 0xA4
    NB_BYTE reserved165[3];
};
NOF_AT(LS_INDICATION, change, 13);
NOF_AT(LS_INDICATION, ls_name, 14);
NOF_AT(LS_INDICATION, adj_cp_name, 0x46);
NOF_AT(LS_INDICATION, adj_cp_type, 0x57);
NOF_AT(LS_INDICATION, active_sessions, 0x58);
NOF_AT(LS_INDICATION, new_state, 0x5A);
NOF_AT(LS_INDICATION, parameter164, 0xA4);

// ---- deletes, starts and stops of the three ----

struct DELETE_BY_NAME8 { // NAP_DELETE_DLC, _PORT, _LS, _INTERNAL_PU, _LOCAL_LU, _LU_0_TO_3,
                         // _DOWNSTREAM_LU, _MODE, ...
    VCB_HEADER header;
    NB_BYTE name[8]; // local for DLC, port and link station, EBCDIC for the others
};
NOF_AT(DELETE_BY_NAME8, name, 12);
NOF_SIZE(DELETE_BY_NAME8, 20);
using START_DLC = DELETE_BY_NAME8;
using START_PORT = DELETE_BY_NAME8;

struct STOP_DLC { // also NAP_STOP_PORT
    VCB_HEADER header;
    NB_BYTE stop_type; // 1
    NB_NAME8L name;
    NB_BYTE reserved21[3];
};
NOF_AT(STOP_DLC, stop_type, 12);
NOF_AT(STOP_DLC, name, 13);
NOF_SIZE(STOP_DLC, 24);
using STOP_PORT = STOP_DLC;

struct START_LS {
    VCB_HEADER header;
    NB_NAME8L ls_name;
    NB_BYTE activation; // 20: 0 activate now, 2 enable for incoming, 3 for incoming and on demand
    NB_BYTE enabled_after_failure; // 21, reply
    NB_BYTE reserved22[2];
};
NOF_AT(START_LS, ls_name, 12);
NOF_AT(START_LS, activation, 20);
NOF_AT(START_LS, enabled_after_failure, 21);
NOF_SIZE(START_LS, 24);

struct STOP_LS {
    VCB_HEADER header;
    NB_BYTE stop_type; // 1
    NB_NAME8L ls_name;
    NB_BYTE disable; // 21: 3 disable as well, 0 stop only
    NB_BYTE reserved22[6];
};
NOF_AT(STOP_LS, ls_name, 13);
NOF_AT(STOP_LS, disable, 21);
NOF_SIZE(STOP_LS, 28);

#pragma pack(pop)
