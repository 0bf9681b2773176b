// Link station routing, session timeouts of LU 6.2, adjacent nodes.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

// ---- link station routing ----

struct LS_ROUTING_KEY {
    NB_NAME8E lu_name; // of the local LU
    NB_NAME8L lu_alias;
    NB_FQNAME plu_name;
    NB_BYTE wildcard; // 1: every partner whose name begins so
};
NOF_SIZE(LS_ROUTING_KEY, 34);

struct LS_ROUTING_DEF {         // define block offsets 46 to 103
    NB_DESCRIPTION description; // 46
    NB_BYTE reserved78[16];
    NB_NAME8L ls_name; // 94
    NB_BYTE reserved102[2];
};
NOF_AT(LS_ROUTING_DEF, ls_name, 94 - 46);
NOF_SIZE(LS_ROUTING_DEF, 58);

struct DEFINE_LS_ROUTING {
    VCB_HEADER header;
    LS_ROUTING_KEY key; // 12
    LS_ROUTING_DEF def; // 46
};
static_assert(offsetof(DEFINE_LS_ROUTING, key) + offsetof(LS_ROUTING_KEY, lu_name) == 12);
static_assert(offsetof(DEFINE_LS_ROUTING, key) + offsetof(LS_ROUTING_KEY, plu_name) == 28);
static_assert(offsetof(DEFINE_LS_ROUTING, key) + offsetof(LS_ROUTING_KEY, wildcard) == 45);
static_assert(offsetof(DEFINE_LS_ROUTING, def) + offsetof(LS_ROUTING_DEF, ls_name) == 94);
NOF_SIZE(DEFINE_LS_ROUTING, 104);

struct DELETE_LS_ROUTING {
    VCB_HEADER header;
    LS_ROUTING_KEY key; // 12
    NB_BYTE reserved46[2];
};
NOF_AT(DELETE_LS_ROUTING, key, 12);
NOF_SIZE(DELETE_LS_ROUTING, 48);

struct LS_ROUTING_ENTRY { // define block offset b is entry offset b - 8
    NB_USHORT length;
    NB_BYTE reserved2[2];
    LS_ROUTING_KEY key; // 4
    LS_ROUTING_DEF def; // 38
};
NOF_AT(LS_ROUTING_ENTRY, key, 4);
NOF_AT(LS_ROUTING_ENTRY, def, 38);
NOF_SIZE(LS_ROUTING_ENTRY, 96);

struct QUERY_LS_ROUTING {
    LIST_QUERY list;
    LS_ROUTING_KEY key;
};

// ---- LU 6.2 timeout ----

enum NOF_TIMEOUT_RESOURCE : NB_BYTE {
    NOF_TIMEOUT_NODE = 1,
    NOF_TIMEOUT_LOCAL_LU = 2,
    NOF_TIMEOUT_PARTNER_LU = 3,
    NOF_TIMEOUT_MODE = 4,
};

struct DEFINE_LU62_TIMEOUT {
    VCB_HEADER header;
    NB_BYTE resource_type;   // 12, NOF_TIMEOUT_RESOURCE
    NB_FQNAME resource_name; // 13, a name of 8 bytes is padded with blanks
    NB_USHORT timeout;       // 30, seconds
};
NOF_AT(DEFINE_LU62_TIMEOUT, resource_type, 12);
NOF_AT(DEFINE_LU62_TIMEOUT, resource_name, 13);
NOF_AT(DEFINE_LU62_TIMEOUT, timeout, 30);
NOF_SIZE(DEFINE_LU62_TIMEOUT, 32);

struct DELETE_LU62_TIMEOUT {
    VCB_HEADER header;
    NB_BYTE resource_type;   // 12
    NB_FQNAME resource_name; // 13
    NB_BYTE reserved30[2];
};
NOF_AT(DELETE_LU62_TIMEOUT, resource_type, 12);
NOF_AT(DELETE_LU62_TIMEOUT, resource_name, 13);
NOF_SIZE(DELETE_LU62_TIMEOUT, 32);

struct LU62_TIMEOUT_ENTRY {
    NB_USHORT length;
    NB_BYTE resource_type;   // 2
    NB_FQNAME resource_name; // 3
    NB_USHORT timeout;       // 20
    NB_BYTE reserved22[2];
};
NOF_AT(LU62_TIMEOUT_ENTRY, timeout, 20);
NOF_SIZE(LU62_TIMEOUT_ENTRY, 24);

struct QUERY_LU62_TIMEOUT {
    LIST_QUERY list;
    NB_BYTE resource_type;
    NB_FQNAME resource_name;
};

// ---- adjacent nodes (they arrive as configuration indications only) ----

struct ADJACENT_LU {
    NB_USHORT length;
    NB_BYTE wildcard;  // 2, 1: every LU whose name begins so
    NB_FQNAME lu_name; // 3, with a period within its 17 bytes fully qualified, else in the network
                       // of the node
};
NOF_SIZE(ADJACENT_LU, 20);

struct DEFINE_ADJACENT_NODE { // also NAP_DEFINE_ADJACENT_LEN_NODE
    VCB_HEADER header;
    NB_FQNAME cp_name;          // 12
    NB_DESCRIPTION description; // 29, begins the definition data
    NB_BYTE reserved61[17];
    NB_USHORT num_lus; // 78
};
NOF_AT(DEFINE_ADJACENT_NODE, cp_name, 12);
NOF_AT(DEFINE_ADJACENT_NODE, description, 29);
NOF_AT(DEFINE_ADJACENT_NODE, num_lus, 78);
NOF_SIZE(DEFINE_ADJACENT_NODE, 80); // then the ADJACENT_LUs
using DEFINE_ADJACENT_LEN_NODE = DEFINE_ADJACENT_NODE;

struct DELETE_ADJACENT_NODE { // also NAP_DELETE_ADJACENT_LEN_NODE
    VCB_HEADER header;
    NB_FQNAME cp_name; // 12
    NB_BYTE reserved29;
    NB_USHORT num_lus; // 30, 0: the whole node
};
NOF_AT(DELETE_ADJACENT_NODE, cp_name, 12);
NOF_AT(DELETE_ADJACENT_NODE, num_lus, 30);
NOF_SIZE(DELETE_ADJACENT_NODE, 32); // then the ADJACENT_LUs
using DELETE_ADJACENT_LEN_NODE = DELETE_ADJACENT_NODE;

#pragma pack(pop)
