// TN3270 server: access records, associations, redirection, and the settings of the whole server.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

using NB_HOST_ADDRESS = char[256]; // host name or numeric address as text, NUL-terminated

enum NOF_ADDRESS_TYPE : NB_BYTE {
    NOF_ADDRESS_NUMERIC = 0,
    NOF_ADDRESS_HOST_NAME = 1,
};

enum NOF_SSL : NB_BYTE {
    NOF_SSL_NONE = 0,
    NOF_SSL_ON = 1,
    NOF_SSL_CLIENT_AUTHENTICATION = 2,
};

enum NOF_SECURITY_LEVEL : NB_BYTE { // bits of the key, at least
    NOF_SECURITY_LEVEL_NONE = 0,
    NOF_SECURITY_LEVEL_AUTHENTICATION_ONLY = 1,
    NOF_SECURITY_LEVEL_40 = 2,
    NOF_SECURITY_LEVEL_56 = 3,
    NOF_SECURITY_LEVEL_128 = 4,
    NOF_SECURITY_LEVEL_168 = 5,
    NOF_SECURITY_LEVEL_256 = 6,
};

// ---- access records: a client, and its sessions by port ----

struct TN3270_SESSION {
    NB_USHORT length;
    NB_DESCRIPTION description; // 2
    NB_BYTE tn3270_support;     // 34
    NB_BYTE specific_lu;        // 35
    NB_NAME8E printer_lu_name;  // 36
    NB_BYTE reserved44[6];
    NB_USHORT port;    // 50
    NB_NAME8E lu_name; // 52, display LU or pool
    NB_BYTE lu_model;  // 60
    NB_BYTE reserved61;
    NB_BYTE ssl;            // 62, NOF_SSL
    NB_BYTE security_level; // 63, NOF_SECURITY_LEVEL
    NB_BYTE reserved64[80];
    NB_BYTE not_listed; // 144, not 0: an internal session, not shown
    NB_BYTE reserved145[67];
};
NOF_AT(TN3270_SESSION, description, 394 - 392);
NOF_AT(TN3270_SESSION, tn3270_support, 426 - 392);
NOF_AT(TN3270_SESSION, specific_lu, 427 - 392);
NOF_AT(TN3270_SESSION, printer_lu_name, 428 - 392);
NOF_AT(TN3270_SESSION, port, 442 - 392);
NOF_AT(TN3270_SESSION, lu_name, 444 - 392);
NOF_AT(TN3270_SESSION, lu_model, 452 - 392);
NOF_AT(TN3270_SESSION, ssl, 454 - 392);
NOF_AT(TN3270_SESSION, security_level, 455 - 392);
NOF_AT(TN3270_SESSION, not_listed, 144);
NOF_SIZE(TN3270_SESSION, 212);

struct TN3270_CLIENT_KEY {
    NB_USHORT default_record; // 1: every client without a record of its own; the address is empty
    NB_HOST_ADDRESS address;
};
NOF_SIZE(TN3270_CLIENT_KEY, 258);

struct TN3270_ACCESS_DEF { // define block offsets 270 to 391
    NB_BYTE reserved270[2];
    NB_DESCRIPTION description; // 272
    NB_BYTE reserved304[16];
    NB_BYTE address_type; // 320, NOF_ADDRESS_TYPE
    NB_BYTE reserved321[3];
    NB_ULONG num_sessions; // 324
    NB_BYTE reserved328[64];
};
NOF_AT(TN3270_ACCESS_DEF, address_type, 320 - 270);
NOF_AT(TN3270_ACCESS_DEF, num_sessions, 324 - 270);
NOF_SIZE(TN3270_ACCESS_DEF, 122);

struct DEFINE_TN3270_ACCESS { // adds the sessions to those the client has
    VCB_HEADER header;
    TN3270_CLIENT_KEY client; // 12
    TN3270_ACCESS_DEF def;    // 270
};
static_assert(offsetof(DEFINE_TN3270_ACCESS, client) +
                  offsetof(TN3270_CLIENT_KEY, default_record) ==
              12);
static_assert(offsetof(DEFINE_TN3270_ACCESS, client) + offsetof(TN3270_CLIENT_KEY, address) == 14);
static_assert(offsetof(DEFINE_TN3270_ACCESS, def) + offsetof(TN3270_ACCESS_DEF, address_type) ==
              320);
static_assert(offsetof(DEFINE_TN3270_ACCESS, def) + offsetof(TN3270_ACCESS_DEF, num_sessions) ==
              324);
NOF_SIZE(DEFINE_TN3270_ACCESS, 392); // then the TN3270_SESSIONs
static_assert(sizeof(DEFINE_TN3270_ACCESS) + sizeof(TN3270_SESSION) == 604);

struct TN3270_SESSION_NAME {
    NB_USHORT port;
    NB_BYTE reserved2[46];
};
NOF_SIZE(TN3270_SESSION_NAME, 48);

struct DELETE_TN3270_ACCESS {
    VCB_HEADER header;
    TN3270_CLIENT_KEY client; // 12
    NB_BYTE reserved270[2];
    NB_ULONG num_sessions; // 272, 0: see delete_all
    NB_USHORT delete_all;  // 276, 1: all sessions, and the client stays; 0: the client with them
    NB_BYTE reserved278[2];
    TN3270_SESSION_NAME sessions[1]; // 280, as many as num_sessions says
};
NOF_AT(DELETE_TN3270_ACCESS, client, 12);
NOF_AT(DELETE_TN3270_ACCESS, num_sessions, 272);
NOF_AT(DELETE_TN3270_ACCESS, delete_all, 276);
NOF_AT(DELETE_TN3270_ACCESS, sessions, 280);
NOF_SIZE(DELETE_TN3270_ACCESS, 328);

struct TN3270_ACCESS_ENTRY { // define block offset b is entry offset b - 8
    NB_USHORT length;
    NB_BYTE reserved2[2];
    TN3270_CLIENT_KEY client; // 4
    TN3270_ACCESS_DEF def;    // 262, num_sessions counts the sessions of this entry
};
NOF_AT(TN3270_ACCESS_ENTRY, client, 4);
NOF_AT(TN3270_ACCESS_ENTRY, def, 262);
NOF_SIZE(TN3270_ACCESS_ENTRY, 384); // then the TN3270_SESSIONs

struct QUERY_TN3270_ACCESS_DEF { // list.more: the last entry's client has more sessions
    LIST_QUERY list;
    TN3270_CLIENT_KEY client;
    NB_USHORT port; // of the last session received
};

// ---- association of a display LU with a printer LU ----

struct TN3270_ASSOCIATION_DEF { // define block offsets 20 to 83
    NB_DESCRIPTION description; // 20
    NB_BYTE reserved52[16];
    NB_NAME8E printer_lu_name; // 68
    NB_BYTE reserved76[8];
};
NOF_SIZE(TN3270_ASSOCIATION_DEF, 64);

struct DEFINE_TN3270_ASSOCIATION {
    VCB_HEADER header;
    NB_NAME8E display_lu_name;  // 12
    TN3270_ASSOCIATION_DEF def; // 20
};
NOF_AT(DEFINE_TN3270_ASSOCIATION, display_lu_name, 12);
static_assert(offsetof(DEFINE_TN3270_ASSOCIATION, def) +
                  offsetof(TN3270_ASSOCIATION_DEF, printer_lu_name) ==
              68);
NOF_SIZE(DEFINE_TN3270_ASSOCIATION, 84);

struct DELETE_TN3270_ASSOCIATION {
    VCB_HEADER header;
    NB_NAME8E display_lu_name; // 12
};
NOF_SIZE(DELETE_TN3270_ASSOCIATION, 20);

struct TN3270_ASSOCIATION_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    NB_NAME8E display_lu_name;  // 4
    TN3270_ASSOCIATION_DEF def; // 12
};
NOF_SIZE(TN3270_ASSOCIATION_ENTRY, 76);

struct QUERY_TN3270_ASSOCIATION {
    LIST_QUERY list;
    NB_NAME8E display_lu_name;
};

// ---- redirection ----

struct TN_REDIRECT_KEY {            // define block offsets 12 to 353
    NB_USHORT default_record;       // 12
    NB_HOST_ADDRESS client_address; // 14
    NB_USHORT client_port;          // 270
    NB_BYTE reserved272[82];
};
NOF_SIZE(TN_REDIRECT_KEY, 342);

struct TN_REDIRECT_DEF {           // define block offsets 354 to 871
    NB_BYTE client_address_type;   // 354, NOF_ADDRESS_TYPE
    NB_BYTE client_ssl;            // 355, NOF_SSL
    NB_BYTE client_security_level; // 356
    NB_BYTE reserved357;
    NB_HOST_ADDRESS host_address; // 358
    NB_USHORT host_port;          // 614
    NB_BYTE host_address_type;    // 616
    NB_BYTE host_ssl;             // 617
    NB_BYTE host_security_level;  // 618
    NB_BYTE reserved619;
    NB_DESCRIPTION description; // 620
    NB_BYTE reserved652[220];
};
NOF_SIZE(TN_REDIRECT_DEF, 518);

struct DEFINE_TN_REDIRECT {
    VCB_HEADER header;
    TN_REDIRECT_KEY key; // 12
    TN_REDIRECT_DEF def; // 354
};
NOF_AT(DEFINE_TN_REDIRECT, key, 12);
NOF_SIZE(DEFINE_TN_REDIRECT, 872);

struct DELETE_TN_REDIRECT {
    VCB_HEADER header;
    TN_REDIRECT_KEY key; // 12
    NB_BYTE reserved354[2];
};
NOF_AT(DELETE_TN_REDIRECT, key, 12);
NOF_SIZE(DELETE_TN_REDIRECT, 356);

struct TN_REDIRECT_ENTRY {
    NB_USHORT length;
    NB_BYTE reserved2[2];
    TN_REDIRECT_KEY key; // 4
    TN_REDIRECT_DEF def; // 346
};
NOF_SIZE(TN_REDIRECT_ENTRY, 864);

struct QUERY_TN_REDIRECT_DEF {
    LIST_QUERY list;
    TN_REDIRECT_KEY key;
};

// ---- settings of the server ----

struct TN3270_DEFAULTS_DATA {
    NB_USHORT force_responses;   // 0
    NB_USHORT keepalive_method;  // 2, 0 none, 1 NOP, 2 timing mark
    NB_ULONG keepalive_interval; // 4, seconds
    NB_BYTE reserved8[32];
};
NOF_SIZE(TN3270_DEFAULTS_DATA, 40);

struct DEFINE_TN3270_DEFAULTS { // also NAP_QUERY_TN3270_DEFAULTS
    VCB_HEADER header;
    TN3270_DEFAULTS_DATA defaults; // 12
};
NOF_AT(DEFINE_TN3270_DEFAULTS, defaults, 12);
NOF_SIZE(DEFINE_TN3270_DEFAULTS, 52);
using QUERY_TN3270_DEFAULTS = DEFINE_TN3270_DEFAULTS;

struct DEFINE_TN3270_EXPRESS_LOGON { // also NAP_QUERY_TN3270_EXPRESS_LOGON
    VCB_HEADER header;
    NB_BYTE enabled;       // 12
    char dcas_server[255]; // 13, padded with NULs; all 255 characters may be used
    NB_USHORT dcas_port;   // 268
    NB_BYTE reserved270[34];
};
NOF_AT(DEFINE_TN3270_EXPRESS_LOGON, enabled, 12);
NOF_AT(DEFINE_TN3270_EXPRESS_LOGON, dcas_port, 268);
NOF_SIZE(DEFINE_TN3270_EXPRESS_LOGON, 304);
using QUERY_TN3270_EXPRESS_LOGON = DEFINE_TN3270_EXPRESS_LOGON;

struct TN3270_SSL_LDAP_SETTINGS { // define block offsets 12 to 1681
    NB_BYTE reserved12[2];
    NB_BYTE revocation_check; // 14
    NB_BYTE reserved15;
    NB_HOST_ADDRESS ldap_address; // 16
    NB_USHORT ldap_port;          // 272
    char ldap_user[1024];         // 274
    char ldap_password[128];      // 1298
    NB_BYTE reserved1426[256];
};
NOF_AT(TN3270_SSL_LDAP_SETTINGS, revocation_check, 14 - 12);
NOF_AT(TN3270_SSL_LDAP_SETTINGS, ldap_address, 16 - 12);
NOF_AT(TN3270_SSL_LDAP_SETTINGS, ldap_port, 272 - 12);
NOF_AT(TN3270_SSL_LDAP_SETTINGS, ldap_user, 274 - 12);
NOF_AT(TN3270_SSL_LDAP_SETTINGS, ldap_password, 1298 - 12);
NOF_SIZE(TN3270_SSL_LDAP_SETTINGS, 1670);

struct DEFINE_TN3270_SSL_LDAP {
    VCB_HEADER header;
    TN3270_SSL_LDAP_SETTINGS settings; // 12
};
NOF_AT(DEFINE_TN3270_SSL_LDAP, settings, 12);
NOF_SIZE(DEFINE_TN3270_SSL_LDAP, 1682);

struct QUERY_TN3270_SSL_LDAP { // the reply's buffer holds the TN3270_SSL_LDAP_SETTINGS
    VCB_HEADER header;
    NB_BYTE reserved12[4];
    void* buffer;         // 16
    NB_ULONG buffer_size; // 24
    NB_BYTE reserved28[4];
};
NOF_AT(QUERY_TN3270_SSL_LDAP, buffer, 16);
NOF_AT(QUERY_TN3270_SSL_LDAP, buffer_size, 24);
NOF_SIZE(QUERY_TN3270_SSL_LDAP, 32);

struct TN3270_SLP_SETTINGS { // define block offsets 12 to 405
    NB_BYTE enabled;         // 0
    NB_BYTE reserved1;
    NB_USHORT frequency;    // 2, minutes between advertisements
    NB_USHORT threshold;    // 4, per cent
    NB_USHORT load_factor;  // 6, per cent
    NB_USHORT current_load; // 8, per cent; of a query's reply only
    NB_USHORT num_scopes;   // 10
    char scopes[10][32];    // 12
    NB_BYTE reserved332[62];
};
NOF_SIZE(TN3270_SLP_SETTINGS, 394);

struct DEFINE_TN3270_SLP { // also NAP_QUERY_TN3270_SLP
    VCB_HEADER header;
    TN3270_SLP_SETTINGS settings; // 12
    NB_BYTE reserved406[2];
};
NOF_AT(DEFINE_TN3270_SLP, settings, 12);
NOF_SIZE(DEFINE_TN3270_SLP, 408);
using QUERY_TN3270_SLP = DEFINE_TN3270_SLP;

#pragma pack(pop)
