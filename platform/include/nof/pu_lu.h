// Local, DLUR and downstream PUs, LUs of types 0 to 3, downstream LUs.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

// ---- local PU (NAP_QUERY_PU, NAP_QUERY_DLUR_PU) and downstream PU: entries of 140 bytes ----

struct PU_ENTRY {
    NB_USHORT length;
    NB_NAME8E pu_name;          // 2
    NB_DESCRIPTION description; // 10
    NB_NAME8L ls_name;          // 42, blank or zero: no link station
    NB_BYTE state;              // 50, 1 active
    NB_BYTE
    host_attachment; // 51, NAP_HOST_ATTACHMENT; of a downstream PU its type, 2 from a template
    NB_BYTE reserved52[14];
    NB_BYTE conventional_lu_compression; // 66, kept when a newer entry is merged
    NB_BYTE initially_active;            // 67
    NB_FQNAME dlus_name;                 // 68
    NB_FQNAME backup_dlus_name;          // 85
    NB_BE32 node_id;                     // 102
    NB_BYTE dlus_retry;                  // 106, indefinite retry
    // DLUR status, copied from the DLUR PU indication:
    NB_ULONG dlur_parameter1;    // 107, indication 0x16
    NB_BYTE dlur_parameter2;     // 111, indication 0x1A
    NB_BYTE dlur_active;         // 112, indication 0x1B
    NB_BYTE dlur_pcid[8];        // 113, indication 0x1C
    NB_BYTE dlur_active_dlus[8]; // 121, indication 0x24
    NB_BYTE dlur_parameter3;     // 129, indication 0x2C
    NB_BYTE dlur_status;         // 130, indication 0x2D, NOF_DLUR_STATUS
    NB_BYTE reserved131[9];
};
NOF_AT(PU_ENTRY, pu_name, 2);
NOF_AT(PU_ENTRY, conventional_lu_compression, 66);
NOF_SIZE(PU_ENTRY, 140);

enum NOF_DLUR_STATUS : NB_BYTE {
    NOF_DLUR_RESET = 0,
    NOF_DLUR_ACTIVE = 1,
    NOF_DLUR_STARTING = 2,
    NOF_DLUR_PENDING_ACTIVE = 3,
    NOF_DLUR_STOPPING = 4,
    NOF_DLUR_PENDING_INACTIVE = 5,
    NOF_DLUR_PENDING_RETRY = 6,
    NOF_DLUR_INACTIVE = 7,
};

struct QUERY_PU { // NAP_QUERY_PU, NAP_QUERY_DLUR_PU, NAP_QUERY_DOWNSTREAM_PU
    LIST_QUERY list;
    NB_NAME8E pu_name;
};

struct DEFINE_INTERNAL_PU {
    VCB_HEADER header;
    NB_NAME8E pu_name;          // 12
    NB_DESCRIPTION description; // 20
    NB_BYTE initially_active;   // 52
    NB_BYTE reserved53[15];
    NB_FQNAME dlus_name;        // 68
    NB_FQNAME backup_dlus_name; // 85
    NB_BE32 node_id;            // 102
    NB_BYTE reserved106[4];
    NB_BYTE dlus_retry; // 110
    NB_BYTE reserved111[5];
};
NOF_AT(DEFINE_INTERNAL_PU, pu_name, 12);
NOF_AT(DEFINE_INTERNAL_PU, initially_active, 52);
NOF_AT(DEFINE_INTERNAL_PU, dlus_name, 68);
NOF_AT(DEFINE_INTERNAL_PU, backup_dlus_name, 85);
NOF_AT(DEFINE_INTERNAL_PU, node_id, 102);
NOF_AT(DEFINE_INTERNAL_PU, dlus_retry, 110);
NOF_SIZE(DEFINE_INTERNAL_PU, 116);

struct START_INTERNAL_PU {
    VCB_HEADER header;
    NB_NAME8E pu_name;
    NB_BYTE reserved20[36];
};
NOF_AT(START_INTERNAL_PU, pu_name, 12);
NOF_SIZE(START_INTERNAL_PU, 56);

struct STOP_INTERNAL_PU {
    VCB_HEADER header;
    NB_NAME8E pu_name;
    NB_BYTE stop_type; // 20, 1
    NB_BYTE reserved21[3];
};
NOF_AT(STOP_INTERNAL_PU, stop_type, 20);
NOF_SIZE(STOP_INTERNAL_PU, 24);

struct PU_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_NAME8E pu_name; // 13
    NB_BYTE reserved21[48];
    NB_BYTE state;           // 0x45
    NB_BYTE host_attachment; // 0x46
    NB_BYTE reserved71;
};
NOF_AT(PU_INDICATION, pu_name, 13);
NOF_AT(PU_INDICATION, state, 0x45);
NOF_AT(PU_INDICATION, host_attachment, 0x46);

struct DLUR_PU_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_BYTE change;
    NB_NAME8E pu_name;           // 14
    NB_ULONG dlur_parameter1;    // 0x16
    NB_BYTE dlur_parameter2;     // 0x1A
    NB_BYTE dlur_active;         // 0x1B
    NB_BYTE dlur_pcid[8];        // 0x1C
    NB_BYTE dlur_active_dlus[8]; // 0x24
    NB_BYTE dlur_parameter3;     // 0x2C
    NB_BYTE dlur_status;         // 0x2D
    NB_BYTE reserved46[2];
};
NOF_AT(DLUR_PU_INDICATION, pu_name, 14);
NOF_AT(DLUR_PU_INDICATION, dlur_parameter1, 0x16);
NOF_AT(DLUR_PU_INDICATION, dlur_active, 0x1B);
NOF_AT(DLUR_PU_INDICATION, dlur_pcid, 0x1C);
NOF_AT(DLUR_PU_INDICATION, dlur_active_dlus, 0x24);
NOF_AT(DLUR_PU_INDICATION, dlur_status, 0x2D);

struct DOWNSTREAM_PU_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_NAME8E pu_name; // 13
    NB_BYTE reserved21[48];
    NB_NAME8L ls_name; // 0x45
    NB_BYTE state;     // 0x4D
    NB_BYTE type;      // 0x4E, 2: made from a template
    NB_BYTE reserved79;
};
NOF_AT(DOWNSTREAM_PU_INDICATION, pu_name, 13);
NOF_AT(DOWNSTREAM_PU_INDICATION, ls_name, 0x45);
NOF_AT(DOWNSTREAM_PU_INDICATION, state, 0x4D);
NOF_AT(DOWNSTREAM_PU_INDICATION, type, 0x4E);

// ---- LU of type 0 to 3: entries of 632 bytes ----

enum NOF_LU_MODEL : NB_BYTE { // LU type of a definition, icon families of the console
    NOF_LU_UNKNOWN = 0,
    NOF_LU_3270_DISPLAY_MODEL_2 = 2, // to 5: displays
    NOF_LU_3270_DISPLAY_MODEL_5 = 5,
    NOF_LU_RJE = 0x20,
    NOF_LU_PRINTER = 128,
    NOF_LU_SCS_PRINTER = 129,
};

struct LU03_DEF {               // define block offsets 20 to 135, entry offsets 516 to 631
    NB_DESCRIPTION description; // 20
    NB_BYTE reserved52[24];
    NB_BYTE nau_address; // 76
    NB_NAME8E pu_name;   // 77
    NB_BYTE lu_model;    // 85, NOF_LU_MODEL
    NB_NAME8E pool_name; // 86, zero: no pool
    NB_BYTE reserved94[42];
};
NOF_AT(LU03_DEF, pu_name, 77 - 20);
NOF_SIZE(LU03_DEF, 116);

struct DEFINE_LU_0_TO_3 {
    VCB_HEADER header;
    NB_NAME8E lu_name;
    LU03_DEF def;
};
NOF_AT(DEFINE_LU_0_TO_3, lu_name, 12);
NOF_AT(DEFINE_LU_0_TO_3, def, 20);
NOF_SIZE(DEFINE_LU_0_TO_3, 136);

// What uses the LU: 360 bytes, read by the application type of the detail.
struct LU03_NAMED_APPLICATION { // type 1
    NB_NAME8E name;             // first byte 0x5B: none worth showing
};

struct LU03_EMULATOR_USER { // type 3
    char user_name[32];
    char fallback_name[32]; // 32
    NB_BYTE reserved64[100];
    NB_ULONG session_kind;  // 164, 32: a display session
    NB_NODE_NAME node_name; // 168
};
NOF_AT(LU03_EMULATOR_USER, session_kind, 164);
inline constexpr NB_ULONG NOF_DISPLAY_SESSION = 32;

struct LU03_TN_CLIENT { // type 4
    NB_BYTE reserved0[40];
    NB_USHORT port; // 0x28
    NB_BYTE reserved42[2];
    NB_USHORT address_form; // 0x2C, 1: name is an address text of 40 characters, else a host name
    char name[256];         // 0x2E
    NB_BYTE reserved302[2];
    NB_BYTE client_kind;       // 0x130
    NB_BYTE association_kind;  // 0x131, 2: associated_name names an LU
    NB_NAME8E associated_name; // 0x132
    NB_BYTE cipher_suite;      // 0x13A
};
NOF_AT(LU03_TN_CLIENT, port, 0x28);
NOF_AT(LU03_TN_CLIENT, address_form, 0x2C);
NOF_AT(LU03_TN_CLIENT, name, 0x2E);
NOF_AT(LU03_TN_CLIENT, client_kind, 0x130);
NOF_AT(LU03_TN_CLIENT, associated_name, 0x132);
NOF_AT(LU03_TN_CLIENT, cipher_suite, 0x13A);

union LU03_APPLICATION {
    NB_BYTE bytes[360];
    LU03_NAMED_APPLICATION named;
    LU03_EMULATOR_USER user;
    LU03_TN_CLIENT client;
};
NOF_SIZE(LU03_APPLICATION, 360);

struct LU03_DETAIL {            // entry offsets 12 to 515
    NB_BYTE lu_active;          // 12: first status byte, 0: inactive
    NB_BYTE appl_conn_active;   // 13: in use by an application (NAP_YES)
    NB_BYTE plu_session_active; // 14: third status byte, in session
    NB_BYTE host_attachment;    // 15, NAP_HOST_ATTACHMENT of the PU
    NB_BYTE app_type;           // 16, NAP_APPLICATION_TYPE
    NB_BYTE reserved17[3];
    LU03_APPLICATION application; // 20
    NB_BYTE reserved380[136];
};
NOF_SIZE(LU03_DETAIL, 504);

struct LU03_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8E lu_name;
    LU03_DETAIL det_data;
    LU03_DEF def_data;
};
NOF_AT(LU03_ENTRY, lu_name, 4);
NOF_AT(LU03_ENTRY, det_data, 12);
NOF_AT(LU03_ENTRY, def_data, 516);
NOF_SIZE(LU03_ENTRY, 632);

struct QUERY_LU_0_TO_3 {
    LIST_QUERY list;
    NB_NAME8E lu_name;
    NB_NAME8E pu_name; // only LUs of this PU
};

struct LU_0_TO_3_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_NAME8E pu_name; // 13
    NB_NAME8E lu_name; // 0x15
    NB_BYTE reserved29[49];
    NB_BYTE lu_active;          // 0x4E
    NB_BYTE appl_conn_active;   // 0x4F
    NB_BYTE plu_session_active; // 0x50
    NB_BYTE reserved81[3];
};
NOF_AT(LU_0_TO_3_INDICATION, pu_name, 13);
NOF_AT(LU_0_TO_3_INDICATION, lu_name, 0x15);
NOF_AT(LU_0_TO_3_INDICATION, lu_active, 0x4E);

struct DEFINE_LU_0_TO_3_RANGE {
    VCB_HEADER header;
    NB_BYTE base_name[6];       // 12, EBCDIC
    NB_DESCRIPTION description; // 18
    NB_BYTE reserved50[16];
    NB_BYTE first_nau;   // 66
    NB_BYTE last_nau;    // 67
    NB_NAME8E pool_name; // 68
    NB_NAME8E pu_name;   // 76
    NB_BYTE lu_model;    // 84
    NB_BYTE model;       // 85
    NB_ULONG parameter86;
    NB_USHORT parameter90;
    NB_ULONG parameter92;
    NB_BYTE reserved96[21];
    NB_BYTE naming_flags; // 117: 0x01 first number given, 0x02 hexadecimal, 0x04 base name of 6
    NB_BYTE first_number; // 118
    NB_BYTE reserved119[17];
};
NOF_AT(DEFINE_LU_0_TO_3_RANGE, first_nau, 66);
NOF_AT(DEFINE_LU_0_TO_3_RANGE, pool_name, 68);
NOF_AT(DEFINE_LU_0_TO_3_RANGE, pu_name, 76);
NOF_AT(DEFINE_LU_0_TO_3_RANGE, lu_model, 84);
NOF_AT(DEFINE_LU_0_TO_3_RANGE, parameter92, 92);
NOF_AT(DEFINE_LU_0_TO_3_RANGE, naming_flags, 117);
NOF_AT(DEFINE_LU_0_TO_3_RANGE, first_number, 118);
NOF_SIZE(DEFINE_LU_0_TO_3_RANGE, 136);

struct DELETE_LU_0_TO_3_RANGE {
    VCB_HEADER header;
    NB_BYTE base_name[6];
    NB_BYTE first_nau; // 18
    NB_BYTE last_nau;
    NB_BYTE naming_flags;
    NB_BYTE first_number; // 21
    NB_BYTE reserved22[2];
};
NOF_AT(DELETE_LU_0_TO_3_RANGE, first_nau, 18);
NOF_AT(DELETE_LU_0_TO_3_RANGE, first_number, 21);

// ---- downstream LU ----

struct DOWN_LU_DEF {            // define block offsets 20 to 95
    NB_DESCRIPTION description; // 20
    NB_BYTE reserved52[15];
    NB_BYTE nau_address;    // 67
    NB_NAME8E dspu_name;    // 68
    NB_NAME8E host_lu_name; // 76
    NB_BYTE allow_timeout;  // 84
    NB_BYTE delayed_logon;  // 85
    NB_BYTE reserved86[10];
};
NOF_AT(DOWN_LU_DEF, dspu_name, 68 - 20);
NOF_SIZE(DOWN_LU_DEF, 76);

struct DEFINE_DOWNSTREAM_LU {
    VCB_HEADER header;
    NB_NAME8E dslu_name;
    DOWN_LU_DEF def;
};
NOF_AT(DEFINE_DOWNSTREAM_LU, dslu_name, 12);
NOF_SIZE(DEFINE_DOWNSTREAM_LU, 96);

struct DEFINE_DOWNSTREAM_LU_RANGE {
    VCB_HEADER header;
    NB_BYTE base_name[5];
    NB_BYTE reserved17;
    NB_DESCRIPTION description; // 18
    NB_BYTE reserved50[16];
    NB_BYTE first_nau;      // 66
    NB_BYTE last_nau;       // 67
    NB_NAME8E dspu_name;    // 68
    NB_NAME8E host_lu_name; // 76
    NB_BYTE allow_timeout;  // 84
    NB_BYTE delayed_logon;  // 85
    NB_BYTE reserved86[6];
};
NOF_AT(DEFINE_DOWNSTREAM_LU_RANGE, description, 18);
NOF_AT(DEFINE_DOWNSTREAM_LU_RANGE, first_nau, 66);
NOF_AT(DEFINE_DOWNSTREAM_LU_RANGE, dspu_name, 68);
NOF_SIZE(DEFINE_DOWNSTREAM_LU_RANGE, 92);

struct DELETE_DOWNSTREAM_LU_RANGE {
    VCB_HEADER header;
    NB_BYTE base_name[5];
    NB_BYTE first_nau; // 17
    NB_BYTE last_nau;  // 18
    NB_BYTE reserved19[5];
};
NOF_AT(DELETE_DOWNSTREAM_LU_RANGE, first_nau, 17);

struct DOWN_LU_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8E dslu_name;        // 4
    NB_BYTE lu_active;          // 12: first status byte
    NB_BYTE plu_session_active; // 13: second status byte
    NB_BYTE type;               // 14: of its PU, 2: made from a template
    NB_BYTE reserved15;
    DOWN_LU_DEF def; // 16
};
NOF_SIZE(DOWN_LU_ENTRY, 92);

struct QUERY_DOWNSTREAM_LU {
    LIST_QUERY list;
    NB_NAME8E dslu_name;
    NB_NAME8E dspu_name; // only LUs of this PU
};

struct DOWNSTREAM_LU_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_NAME8E dspu_name; // 13
    NB_BYTE reserved21[8];
    NB_NAME8E dslu_name; // 0x1D
    NB_BYTE reserved37[48];
    NB_BYTE nau_address;        // 0x55
    NB_BYTE lu_active;          // 0x56
    NB_BYTE plu_session_active; // 0x57
};
NOF_AT(DOWNSTREAM_LU_INDICATION, dspu_name, 13);
NOF_AT(DOWNSTREAM_LU_INDICATION, dslu_name, 0x1D);
NOF_AT(DOWNSTREAM_LU_INDICATION, nau_address, 0x55);

#pragma pack(pop)
