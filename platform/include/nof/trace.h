// Traces and logs: trace types of the node, client/server and TN server traces, DLC traces, central
// logging.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

// ---- trace types of the node ----

struct SET_TRACE_TYPE {
    VCB_HEADER header;
    NB_ULONG node_flags;        // 12
    NB_ULONG truncation_length; // 16, bytes kept of a traced message; 0: all
    NB_BYTE replace;            // 20, 1: the flags replace those set
    NB_BYTE add;                // 21, 1: the flags are added; neither: they are taken away
    NB_BYTE reserved22[6];
    NB_ULONG kernel_flags; // 28
};
NOF_AT(SET_TRACE_TYPE, node_flags, 12);
NOF_AT(SET_TRACE_TYPE, truncation_length, 16);
NOF_AT(SET_TRACE_TYPE, replace, 20);
NOF_AT(SET_TRACE_TYPE, add, 21);
NOF_AT(SET_TRACE_TYPE, kernel_flags, 28);
NOF_SIZE(SET_TRACE_TYPE, 32);

struct QUERY_TRACE_TYPE { // the reply's fields are not where the set verb has them
    VCB_HEADER header;
    NB_ULONG truncation_length; // 12
    NB_ULONG node_flags;        // 16
    NB_BYTE reserved20[4];
    NB_ULONG kernel_flags; // 24
};
NOF_AT(QUERY_TRACE_TYPE, truncation_length, 12);
NOF_AT(QUERY_TRACE_TYPE, node_flags, 16);
NOF_AT(QUERY_TRACE_TYPE, kernel_flags, 24);
NOF_SIZE(QUERY_TRACE_TYPE, 28);

// ---- client/server traces ----

struct SET_CS_TRACE { // also NAP_QUERY_CS_TRACE: the reply has the fields at the same places
    VCB_HEADER header;
    NB_NODE_NAME destination; // 12, zero: every partner
    NB_BYTE reserved140[4];
    NB_USHORT trace_flags;     // 144, NOF_CS_TRACE_ON or 0
    NB_USHORT trace_direction; // 146
    NB_BYTE reserved148[8];
};
NOF_AT(SET_CS_TRACE, destination, 12);
NOF_AT(SET_CS_TRACE, trace_flags, 144);
NOF_AT(SET_CS_TRACE, trace_direction, 146);
NOF_SIZE(SET_CS_TRACE, 156);
using QUERY_CS_TRACE = SET_CS_TRACE;
inline constexpr NB_USHORT NOF_CS_TRACE_ON = 7;
inline constexpr NB_USHORT NOF_CS_TRACE_BOTH = 0x0300;

struct SET_BCK_CS_TRACE { // also NAP_QUERY_BCK_CS_TRACE
    VCB_HEADER header;
    NB_ULONG trace_flags; // 12, 0xFFFFFFFF or 0
    NB_BYTE parameter16;  // 1
    NB_BYTE parameter17;  // 1
    NB_BYTE reserved18[6];
};
NOF_AT(SET_BCK_CS_TRACE, trace_flags, 12);
NOF_AT(SET_BCK_CS_TRACE, parameter16, 16);
NOF_AT(SET_BCK_CS_TRACE, parameter17, 17);
NOF_SIZE(SET_BCK_CS_TRACE, 24);
using QUERY_BCK_CS_TRACE = SET_BCK_CS_TRACE;

struct SET_TN_SERVER_TRACE { // also NAP_QUERY_TN_SERVER_TRACE, NAP_SET_TN3270_SLP_TRACE,
                             // NAP_QUERY_TN3270_SLP_TRACE
    VCB_HEADER header;
    NB_USHORT trace_flags; // 12, NOF_TN_SERVER_TRACE_ON or 0
    NB_BYTE reserved14[6];
};
NOF_AT(SET_TN_SERVER_TRACE, trace_flags, 12);
NOF_SIZE(SET_TN_SERVER_TRACE, 20);
using QUERY_TN_SERVER_TRACE = SET_TN_SERVER_TRACE;
using SET_TN3270_SLP_TRACE = SET_TN_SERVER_TRACE;
using QUERY_TN3270_SLP_TRACE = SET_TN_SERVER_TRACE;
inline constexpr NB_USHORT NOF_TN_SERVER_TRACE_ON = 15;

// ---- DLC traces ----

enum NOF_DLC_TRACE_RESOURCE : NB_BYTE { // of an entry and of an added trace; 2, 4 and 5 are kinds
                                        // of port trace
    NOF_TRACE_ALL_DLCS = 0,
    NOF_TRACE_PORT = 2,
    NOF_TRACE_PORT_4 = 4,
    NOF_TRACE_PORT_5 = 5,
    NOF_TRACE_REMOVE_ALL = 6, // of a remove
};

struct ADD_DLC_TRACE { // also NAP_REMOVE_DLC_TRACE
    VCB_HEADER header;
    NB_BYTE resource_type; // 12, NOF_DLC_TRACE_RESOURCE; 1 and 3: DLC or link station, whichever
                           // has the name
    NB_NAME8L name;        // 13
    NB_BYTE reserved21[5];
    NB_BYTE message_types; // 26, 0xFF: all
    NB_BYTE reserved27;
};
NOF_AT(ADD_DLC_TRACE, resource_type, 12);
NOF_AT(ADD_DLC_TRACE, name, 13);
NOF_AT(ADD_DLC_TRACE, message_types, 26);
NOF_SIZE(ADD_DLC_TRACE, 28);
using REMOVE_DLC_TRACE = ADD_DLC_TRACE;

struct DLC_TRACE_ENTRY {
    NB_USHORT length;
    NB_BYTE resource_type; // 2
    NB_NAME8L name;        // 3
    NB_BYTE message_types; // 11
};
NOF_AT(DLC_TRACE_ENTRY, resource_type, 2);
NOF_AT(DLC_TRACE_ENTRY, name, 3);
NOF_SIZE(DLC_TRACE_ENTRY, 12);

struct QUERY_DLC_TRACE {
    LIST_QUERY list;
    NB_BYTE resource_type;
    NB_NAME8L name;
};

// ---- logs of the domain ----

struct QUERY_CENTRAL_LOGGER {
    VCB_HEADER header;
    NB_BYTE reserved12[4];
    NB_NODE_NAME node_name; // 16, reply
};
NOF_AT(QUERY_CENTRAL_LOGGER, node_name, 16);
NOF_SIZE(QUERY_CENTRAL_LOGGER, 144);

struct SET_CENTRAL_LOGGING { // also NAP_QUERY_CENTRAL_LOGGING
    VCB_HEADER header;
    NB_BYTE central; // 12, 1: on the central logger, 0: on each node
    NB_BYTE reserved13[3];
};
NOF_AT(SET_CENTRAL_LOGGING, central, 12);
NOF_SIZE(SET_CENTRAL_LOGGING, 16);
using QUERY_CENTRAL_LOGGING = SET_CENTRAL_LOGGING;

struct SET_GLOBAL_LOG_TYPE { // also NAP_QUERY_GLOBAL_LOG_TYPE
    VCB_HEADER header;
    NB_BYTE audit;              // 12, 1: logged
    NB_BYTE exception;          // 13, 1: logged
    NB_BYTE succinct_audit;     // 14, 0: verbose
    NB_BYTE succinct_exception; // 15, 0: verbose
    NB_BYTE reserved16[4];
};
NOF_AT(SET_GLOBAL_LOG_TYPE, audit, 12);
NOF_AT(SET_GLOBAL_LOG_TYPE, exception, 13);
NOF_AT(SET_GLOBAL_LOG_TYPE, succinct_audit, 14);
NOF_AT(SET_GLOBAL_LOG_TYPE, succinct_exception, 15);
NOF_SIZE(SET_GLOBAL_LOG_TYPE, 20);
using QUERY_GLOBAL_LOG_TYPE = SET_GLOBAL_LOG_TYPE;

#pragma pack(pop)
