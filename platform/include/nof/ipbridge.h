// APPC over IP: defaults and sessions.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

struct IPBRIDGE_APPCIP_DEFAULTS { // define block offsets 12 to 355
    NB_BYTE routing_preference;   // 12, 0 SNA, 1 TCP/IP, 2 SNA then TCP/IP, 3 TCP/IP then SNA
    char domain_name[238];        // 13, NUL-terminated
    NB_BYTE reserved251;
    NB_USHORT port; // 252
    NB_BYTE reserved254[22];
    NB_DESCRIPTION description; // 276
    NB_BYTE reserved308[48];
};
NOF_AT(IPBRIDGE_APPCIP_DEFAULTS, domain_name, 13 - 12);
NOF_AT(IPBRIDGE_APPCIP_DEFAULTS, description, 276 - 12);
NOF_SIZE(IPBRIDGE_APPCIP_DEFAULTS, 344);

struct DEFINE_IPBRIDGE_APPCIP_DEFAULTS { // the delete verb is a HEADER_ONLY
    VCB_HEADER header;
    IPBRIDGE_APPCIP_DEFAULTS defaults; // 12
};
NOF_AT(DEFINE_IPBRIDGE_APPCIP_DEFAULTS, defaults, 12);
NOF_SIZE(DEFINE_IPBRIDGE_APPCIP_DEFAULTS, 356);

struct QUERY_IPBRIDGE_APPCIP_DEFAULTS {
    VCB_HEADER header;
    NB_BYTE reserved12[32];
    IPBRIDGE_APPCIP_DEFAULTS defaults; // 44, reply
};
NOF_AT(QUERY_IPBRIDGE_APPCIP_DEFAULTS, defaults, 44);
NOF_SIZE(QUERY_IPBRIDGE_APPCIP_DEFAULTS, 388);

struct IPBRIDGE_SESSION {    // indication offsets 16 to 135, entry offsets 4 to 123
    NB_ULONG session_id;     // 16, unique on the node
    NB_FQNAME lu_name;       // 20, of the local side
    NB_FQNAME plu_name;      // 37
    NB_ULONG number;         // 54, tells sessions between the same LUs apart
    NB_NAME8E mode_name;     // 58
    char remote_address[40]; // 66, as text
    NB_USHORT local_port;    // 106
    NB_USHORT remote_port;   // 108
    NB_BYTE reserved110[26];
};
NOF_SIZE(IPBRIDGE_SESSION, 120);

struct IPBRIDGE_APPCIP_ENTRY {
    NB_USHORT length;
    NB_BYTE state; // 2, change code of the last indication
    NB_BYTE reserved3;
    IPBRIDGE_SESSION session; // 4
};
NOF_SIZE(IPBRIDGE_APPCIP_ENTRY, 124);

struct QUERY_IPBRIDGE_APPCIP {
    LIST_QUERY list;
    NB_FQNAME lu_name;
    NB_FQNAME plu_name;
    NB_ULONG number;
};

inline constexpr NB_BYTE NOF_IPBRIDGE_ENDED = 9;

struct IPBRIDGE_INDICATION {
    VCB_HEADER header;
    NB_BYTE resync;
    NB_BYTE change;          // 13, NOF_IPBRIDGE_ENDED, else the state
    NB_BYTE indication_type; // 14, 0: a session
    NB_BYTE reserved15;
    IPBRIDGE_SESSION session; // 16
};
NOF_AT(IPBRIDGE_INDICATION, change, 13);
NOF_AT(IPBRIDGE_INDICATION, indication_type, 14);
NOF_AT(IPBRIDGE_INDICATION, session, 0x10);
NOF_SIZE(IPBRIDGE_INDICATION, 136);

#pragma pack(pop)
