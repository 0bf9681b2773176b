// Transaction programs: definitions, and the load information of invokable ones.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

using NB_TP_NAME = NB_BYTE[64]; // EBCDIC, padded with blanks

// ---- TP definition ----

struct TP_DEF {                 // define block offsets 76 to 267
    NB_DESCRIPTION description; // 76
    char access_list_name[14];  // 108
    NB_BYTE reserved122[2];
    NB_BYTE conversation_type; // 124, 0 basic, 1 mapped, 2 either
    NB_BYTE security_required; // 125
    NB_BYTE sync_level;        // 126, 0 none, 1 confirm, 2 either, 3 sync point, 4 negotiated
    NB_BYTE reserved127[2];
    NB_BYTE pip_allowed; // 129
    NB_BYTE reserved130[138];
};
NOF_AT(TP_DEF, access_list_name, 108 - 76);
NOF_AT(TP_DEF, conversation_type, 124 - 76);
NOF_AT(TP_DEF, security_required, 125 - 76);
NOF_AT(TP_DEF, sync_level, 126 - 76);
NOF_AT(TP_DEF, pip_allowed, 129 - 76);
NOF_SIZE(TP_DEF, 192);

struct DEFINE_TP {
    VCB_HEADER header;
    NB_TP_NAME tp_name; // 12
    TP_DEF def;         // 76
};
NOF_AT(DEFINE_TP, tp_name, 12);
NOF_AT(DEFINE_TP, def, 76);
NOF_SIZE(DEFINE_TP, 268);

struct DELETE_TP {
    VCB_HEADER header;
    NB_TP_NAME tp_name; // 12
};
NOF_AT(DELETE_TP, tp_name, 12);
NOF_SIZE(DELETE_TP, 76);

struct TP_DEF_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_TP_NAME tp_name; // 4
    TP_DEF def;         // 68
};
NOF_AT(TP_DEF_ENTRY, def, 68);
NOF_SIZE(TP_DEF_ENTRY, 260);

struct QUERY_TP_DEFINITION {
    LIST_QUERY list;
    NB_TP_NAME tp_name;
};

// ---- TP load information ----

// Items of the list that follows the fixed part: these three bytes, then the value.
struct LTV_ITEM {
    NB_BE16 length; // of the whole item, at least 3
    NB_BYTE type;   // NOF_LTV_TYPE
};
NOF_SIZE(LTV_ITEM, 3);

enum NOF_LTV_TYPE : NB_BYTE { // values of at most 255 characters
    NOF_LTV_TP_PATH = 1,
    NOF_LTV_TP_ARGUMENTS = 2,
    NOF_LTV_STDIN = 3,
    NOF_LTV_STDOUT = 4,
    NOF_LTV_STDERR = 5,
    NOF_LTV_ENVIRONMENT = 6, // NAME=value; up to 64 of them
};

struct TP_LOAD_DEF {            // define block offsets 84 to 267
    NB_DESCRIPTION description; // 84
    char user_id[64];           // 116
    char group_id[64];          // 180
    NB_BYTE tp_type;            // 244, NOF_TP_LOAD_TYPE
    NB_BYTE reserved245[21];
    NB_USHORT ltv_length; // 266, bytes of LTV items that follow
};
NOF_AT(TP_LOAD_DEF, tp_type, 244 - 84);
NOF_AT(TP_LOAD_DEF, ltv_length, 266 - 84);
NOF_SIZE(TP_LOAD_DEF, 184);

enum NOF_TP_LOAD_TYPE : NB_BYTE {
    NOF_TP_QUEUED = 1,
    NOF_TP_QUEUED_BROADCAST = 2,
    NOF_TP_NON_QUEUED = 3,
};

struct DEFINE_TP_LOAD_INFO {
    VCB_HEADER header;
    NB_TP_NAME tp_name;   // 12
    NB_NAME8L lu_alias;   // 76, the load-information key; blank: any LU
    TP_LOAD_DEF def_data; // 84
};
NOF_AT(DEFINE_TP_LOAD_INFO, tp_name, 12);
NOF_AT(DEFINE_TP_LOAD_INFO, lu_alias, 76);
NOF_AT(DEFINE_TP_LOAD_INFO, def_data, 84);
NOF_SIZE(DEFINE_TP_LOAD_INFO, 268); // then the LTV items

struct DELETE_TP_LOAD_INFO {
    VCB_HEADER header;
    NB_TP_NAME tp_name; // 12
    NB_NAME8L lu_alias; // 76
};
NOF_AT(DELETE_TP_LOAD_INFO, tp_name, 12);
NOF_AT(DELETE_TP_LOAD_INFO, lu_alias, 76);
NOF_SIZE(DELETE_TP_LOAD_INFO, 84);

struct TP_LOAD_INFO_ENTRY { // define block offset b is entry offset b - 8
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_TP_NAME tp_name;   // 4
    NB_NAME8L lu_alias;   // 68
    TP_LOAD_DEF def_data; // 76
};
NOF_AT(TP_LOAD_INFO_ENTRY, def_data, 76);
NOF_SIZE(TP_LOAD_INFO_ENTRY, 260); // then the LTV items

struct QUERY_TP_LOAD_INFO {
    LIST_QUERY list;
    NB_TP_NAME tp_name;
    NB_NAME8L lu_alias;
};

#pragma pack(pop)
