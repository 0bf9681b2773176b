// Connection networks and their ports; templates of downstream PUs.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

// ---- connection network ----

inline constexpr int NOF_CN_PORTS = 8; // port names in one block

struct CN_DEF {                 // define block offsets 29 to 108
    NB_DESCRIPTION description; // 29
    NB_BYTE reserved61[16];
    NB_BYTE num_ports; // 77
    NB_BYTE reserved78[31];
};
NOF_AT(CN_DEF, num_ports, 77 - 29);
NOF_SIZE(CN_DEF, 80);

struct DEFINE_CN {
    VCB_HEADER header;
    NB_FQNAME cn_name;                  // 12
    CN_DEF def;                         // 29
    NB_NAME8L port_names[NOF_CN_PORTS]; // 109
    NB_BYTE reserved173[3];
};
NOF_AT(DEFINE_CN, cn_name, 12);
static_assert(offsetof(DEFINE_CN, def) + offsetof(CN_DEF, num_ports) == 77);
NOF_AT(DEFINE_CN, port_names, 109);
NOF_SIZE(DEFINE_CN, 176);

struct DELETE_CN {
    VCB_HEADER header;
    NB_FQNAME cn_name; // 12
    NB_BYTE reserved29;
    NB_USHORT num_ports;                // 30, 0: the whole network
    NB_NAME8L port_names[NOF_CN_PORTS]; // 32
};
NOF_AT(DELETE_CN, cn_name, 12);
NOF_AT(DELETE_CN, num_ports, 30);
NOF_AT(DELETE_CN, port_names, 32);
NOF_SIZE(DELETE_CN, 96);

struct CN_ENTRY {
    NB_USHORT length;
    NB_FQNAME cn_name; // 2
    CN_DEF def;        // 19
    NB_BYTE reserved99;
};
NOF_AT(CN_ENTRY, cn_name, 2);
NOF_AT(CN_ENTRY, def, 19);
NOF_SIZE(CN_ENTRY, 100);

struct QUERY_CN {
    LIST_QUERY list;
    NB_FQNAME cn_name;
};

struct CN_PORT_ENTRY {
    NB_USHORT length;
    NB_FQNAME cn_name;   // 2
    NB_NAME8L port_name; // 19
    NB_BYTE reserved27;
};
NOF_AT(CN_PORT_ENTRY, port_name, 19);
NOF_SIZE(CN_PORT_ENTRY, 28);

struct QUERY_CN_PORT {
    LIST_QUERY list;
    NB_FQNAME cn_name; // the network whose ports are listed
    NB_NAME8L port_name;
};

// ---- template of downstream PUs ----

struct DSLU_TEMPLATE { // a range of LUs that each PU made from the template gets
    NB_USHORT length;
    NB_BYTE first_nau;      // 2
    NB_BYTE last_nau;       // 3
    NB_NAME8E host_lu_name; // 4
    NB_BYTE allow_timeout;  // 12
    NB_BYTE delayed_logon;  // 13
    NB_BYTE reserved14[6];
};
NOF_SIZE(DSLU_TEMPLATE, 20);

struct DSPU_TEMPLATE_DEF {      // define block offsets 20 to 83
    NB_DESCRIPTION description; // 20
    NB_BYTE reserved52[16];
    NB_BYTE modify_template; // 68, 0: the ranges replace those the template has
    NB_BYTE reserved69[11];
    NB_BYTE parameter80; // 0
    NB_BYTE reserved81;
    NB_USHORT num_dslu_templates; // 82
};
NOF_AT(DSPU_TEMPLATE_DEF, modify_template, 68 - 20);
NOF_AT(DSPU_TEMPLATE_DEF, parameter80, 80 - 20);
NOF_AT(DSPU_TEMPLATE_DEF, num_dslu_templates, 82 - 20);
NOF_SIZE(DSPU_TEMPLATE_DEF, 64);

struct DEFINE_DSPU_TEMPLATE {
    VCB_HEADER header;
    NB_NAME8L template_name; // 12
    DSPU_TEMPLATE_DEF def;   // 20
};
NOF_AT(DEFINE_DSPU_TEMPLATE, template_name, 12);
NOF_AT(DEFINE_DSPU_TEMPLATE, def, 20);
NOF_SIZE(DEFINE_DSPU_TEMPLATE, 84); // then the DSLU_TEMPLATEs

struct DELETE_DSPU_TEMPLATE {
    VCB_HEADER header;
    NB_NAME8L template_name; // 12
    NB_BYTE reserved20[12];
};
NOF_AT(DELETE_DSPU_TEMPLATE, template_name, 12);
NOF_SIZE(DELETE_DSPU_TEMPLATE, 32);

struct DSPU_TEMPLATE_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8L template_name; // 4
    DSPU_TEMPLATE_DEF def;   // 12
};
NOF_AT(DSPU_TEMPLATE_ENTRY, template_name, 4);
NOF_SIZE(DSPU_TEMPLATE_ENTRY, 76); // then the DSLU_TEMPLATEs

struct QUERY_DSPU_TEMPLATE {
    LIST_QUERY list;
    NB_NAME8L template_name;
};

#pragma pack(pop)
