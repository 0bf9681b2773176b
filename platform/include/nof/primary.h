// The node as a host: primary lines and primary LUs 0.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

enum NOF_PRIMARY_LINE_FLAG : NB_BYTE {
    NOF_LINE_SWITCHED = 0x20,
    NOF_LINE_NRZI = 0x40,
};

struct PRIMARY_LINE_DEF {       // define block offsets 26 to 89
    NB_DESCRIPTION description; // 26
    NB_USHORT max_i_field;      // 58
    NB_ULONG transmit_rate;     // 60, bits per second, with internal clocking
    NB_BYTE internal_clocking;  // 64
    NB_BYTE interface_type;     // 65, 0 EIA-232-D, 1 EIA-422-A
    NB_BYTE continuous_rts;     // 66
    NB_BYTE cdstl;              // 67, 1: CDSTL, 0: DTR
    NB_BYTE reserved68[6];
    char device[5]; // 74
    NB_BYTE reserved79[5];
    NB_BYTE remote_address; // 84
    NB_BYTE local_address;  // 85
    NB_BYTE reserved86;
    NB_BYTE flags; // 87, NOF_PRIMARY_LINE_FLAG
    NB_BYTE reserved88[2];
};
NOF_AT(PRIMARY_LINE_DEF, device, 74 - 26);
NOF_AT(PRIMARY_LINE_DEF, remote_address, 84 - 26);
NOF_AT(PRIMARY_LINE_DEF, local_address, 85 - 26);
NOF_AT(PRIMARY_LINE_DEF, flags, 87 - 26);
NOF_SIZE(PRIMARY_LINE_DEF, 64);

struct DEFINE_PRIMARY_LINE {
    VCB_HEADER header;
    char line_name[14];   // 12
    PRIMARY_LINE_DEF def; // 26
    NB_BYTE reserved90[2];
};
NOF_AT(DEFINE_PRIMARY_LINE, line_name, 12);
NOF_AT(DEFINE_PRIMARY_LINE, def, 26);
NOF_SIZE(DEFINE_PRIMARY_LINE, 92);

struct DELETE_PRIMARY_LINE {
    VCB_HEADER header;
    char line_name[14]; // 12
    NB_BYTE reserved26[2];
};
NOF_SIZE(DELETE_PRIMARY_LINE, 28);

struct PRIMARY_LINE_ENTRY {
    NB_USHORT length;
    char line_name[14];   // 2
    PRIMARY_LINE_DEF def; // 16
};
NOF_SIZE(PRIMARY_LINE_ENTRY, 80);

struct QUERY_PRIMARY_LINE {
    LIST_QUERY list;
    char line_name[14];
};

struct PRIMARY_LU0_DEF {        // define block offsets 20 to 211
    NB_DESCRIPTION description; // 20
    NB_BYTE reserved52[16];
    NB_NAME8L default_lu_name;      // 68
    char line_name[14];             // 76
    NB_BYTE secondary_address;      // 90
    NB_BYTE init_self;              // 91
    NB_BYTE fm_profile;             // 92, 3 or 4
    NB_BYTE ts_profile;             // 93, 3 or 4
    NB_BYTE ps_profile;             // 94
    NB_BYTE transmission_usage;     // 95
    NB_BYTE fm_primary_protocols;   // 96
    NB_BYTE fm_secondary_protocols; // 97
    NB_BYTE fm_common_protocols[2]; // 98
    NB_BYTE ps_usage[12];           // 100
    char user_data[32];             // 112
    NB_BYTE reserved144[2];
    char application_path[65]; // 146, NUL-terminated, with init_self
    NB_BYTE trace;             // 211
};
NOF_AT(PRIMARY_LU0_DEF, default_lu_name, 68 - 20);
NOF_AT(PRIMARY_LU0_DEF, line_name, 76 - 20);
NOF_AT(PRIMARY_LU0_DEF, secondary_address, 90 - 20);
NOF_AT(PRIMARY_LU0_DEF, init_self, 91 - 20);
NOF_AT(PRIMARY_LU0_DEF, application_path, 146 - 20);
NOF_AT(PRIMARY_LU0_DEF, trace, 211 - 20);
NOF_SIZE(PRIMARY_LU0_DEF, 192);

struct DEFINE_PRIMARY_LU0 {
    VCB_HEADER header;
    NB_NAME8L lu_name;   // 12
    PRIMARY_LU0_DEF def; // 20
};
NOF_AT(DEFINE_PRIMARY_LU0, lu_name, 12);
NOF_AT(DEFINE_PRIMARY_LU0, def, 20);
NOF_SIZE(DEFINE_PRIMARY_LU0, 212);

struct DELETE_PRIMARY_LU0 {
    VCB_HEADER header;
    NB_NAME8L lu_name; // 12
};
NOF_SIZE(DELETE_PRIMARY_LU0, 20);

struct PRIMARY_LU0_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8L lu_name;   // 4
    PRIMARY_LU0_DEF def; // 12
};
NOF_SIZE(PRIMARY_LU0_ENTRY, 204);

struct QUERY_PRIMARY_LU0 {
    LIST_QUERY list;
    NB_NAME8L lu_name;
};

#pragma pack(pop)
