// RTP connections (HPR).
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

struct RTP_CONNECTION_ENTRY {
    NB_USHORT length;
    NB_BYTE connection_id[8];  // 2, unique on the node
    NB_NAME8L rtp_name;        // 10
    NB_FQNAME destination;     // 18, control point
    NB_BYTE connection_type;   // 35, 0 to 2, else not known
    NB_NAME8E cos_name;        // 36
    NB_NAME8L first_hop_ls;    // 44
    NB_BYTE arb_mode;          // 52, 1 to 3, else not known
    NB_BYTE state;             // 53
    NB_USHORT active_sessions; // 54
    NB_ULONG bytes_sent;       // 56
    NB_ULONG bytes_received;   // 60
    NB_BYTE reserved64[8];
};
NOF_SIZE(RTP_CONNECTION_ENTRY, 72);

struct QUERY_RTP_CONNECTION {
    LIST_QUERY list;
    NB_BYTE connection_id[8];
};

struct PATH_SWITCH {
    VCB_HEADER header;
    NB_NAME8L rtp_name; // 12
};
NOF_AT(PATH_SWITCH, rtp_name, 12);
NOF_SIZE(PATH_SWITCH, 20);

#pragma pack(pop)
