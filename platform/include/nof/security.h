// Conversation security (user IDs with passwords and profiles), access lists, passwords between
// LUs.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

// ---- user ID and password ----

inline constexpr int NOF_USER_PROFILES = 10;
using NB_USER_ID = NB_BYTE[10]; // EBCDIC, padded with blanks
using NB_PROFILE = NB_BYTE[10];

struct USERID_PASSWORD_DEF {    // define block offsets 32 to 193
    NB_DESCRIPTION description; // 32
    NB_BYTE reserved64[18];
    NB_USHORT num_profiles;                 // 82
    NB_BYTE password[10];                   // 84, EBCDIC
    NB_PROFILE profiles[NOF_USER_PROFILES]; // 94
};
NOF_AT(USERID_PASSWORD_DEF, password, 84 - 32);
NOF_SIZE(USERID_PASSWORD_DEF, 162);

struct DEFINE_USERID_PASSWORD {
    VCB_HEADER header;
    NB_BYTE define_type; // 12, 1
    NB_USER_ID user_id;  // 13
    NB_BYTE reserved23[9];
    USERID_PASSWORD_DEF def; // 32
    NB_BYTE reserved194[2];
};
NOF_AT(DEFINE_USERID_PASSWORD, define_type, 12);
NOF_AT(DEFINE_USERID_PASSWORD, user_id, 13);
NOF_AT(DEFINE_USERID_PASSWORD, def, 32);
static_assert(offsetof(DEFINE_USERID_PASSWORD, def) + offsetof(USERID_PASSWORD_DEF, password) ==
              84);
NOF_SIZE(DEFINE_USERID_PASSWORD, 196);

enum NOF_USER_DELETE_TYPE : NB_USHORT {
    NAP_REMOVE_USER = 1,
    NAP_REMOVE_PROFILES = 2, // only the listed profiles
};

struct DELETE_USERID_PASSWORD { // the user ID is not where the define has it
    VCB_HEADER header;
    NB_USHORT delete_type; // 12, NOF_USER_DELETE_TYPE
    NB_USER_ID user_id;    // 14
    NB_BYTE reserved24[48];
    NB_USHORT num_profiles; // 72
    NB_BYTE reserved74[12];
    NB_PROFILE profiles[NOF_USER_PROFILES]; // 86
    NB_BYTE reserved186[2];
};
NOF_AT(DELETE_USERID_PASSWORD, delete_type, 12);
NOF_AT(DELETE_USERID_PASSWORD, user_id, 14);
NOF_AT(DELETE_USERID_PASSWORD, num_profiles, 72);
NOF_AT(DELETE_USERID_PASSWORD, profiles, 86);
NOF_SIZE(DELETE_USERID_PASSWORD, 188);

struct USERID_PASSWORD_ENTRY { // several in a row for one user continue its profiles
    NB_USHORT length;
    NB_USER_ID user_id;      // 2
    USERID_PASSWORD_DEF def; // 12
    NB_BYTE reserved174[2];
};
NOF_AT(USERID_PASSWORD_ENTRY, user_id, 2);
NOF_AT(USERID_PASSWORD_ENTRY, def, 12);
NOF_SIZE(USERID_PASSWORD_ENTRY, 176);

struct QUERY_USERID_PASSWORD {
    LIST_QUERY list;
    NB_USER_ID user_id;
};

// ---- LU-LU password ----

struct LU_LU_PASSWORD_KEY {
    NB_NAME8E lu_name; // zero: the LU is named by its alias, or is that of the control point when
                       // both are zero
    NB_NAME8L lu_alias;
    NB_FQNAME plu_name;
};
NOF_SIZE(LU_LU_PASSWORD_KEY, 33);

struct LU_LU_PASSWORD_DEF { // define block offsets 45 to 111
    NB_BYTE parameter45;
    NB_DESCRIPTION description; // 46
    NB_BYTE reserved78[24];
    NB_BYTE password[8]; // 102, not characters
    NB_BYTE reserved110[2];
};
NOF_AT(LU_LU_PASSWORD_DEF, password, 102 - 45);
NOF_SIZE(LU_LU_PASSWORD_DEF, 67);

struct DEFINE_LU_LU_PASSWORD {
    VCB_HEADER header;
    LU_LU_PASSWORD_KEY key; // 12
    LU_LU_PASSWORD_DEF def; // 45
};
static_assert(offsetof(DEFINE_LU_LU_PASSWORD, key) + offsetof(LU_LU_PASSWORD_KEY, lu_name) == 12);
static_assert(offsetof(DEFINE_LU_LU_PASSWORD, key) + offsetof(LU_LU_PASSWORD_KEY, lu_alias) == 20);
static_assert(offsetof(DEFINE_LU_LU_PASSWORD, key) + offsetof(LU_LU_PASSWORD_KEY, plu_name) == 28);
NOF_AT(DEFINE_LU_LU_PASSWORD, def, 45);
static_assert(offsetof(DEFINE_LU_LU_PASSWORD, def) + offsetof(LU_LU_PASSWORD_DEF, password) == 102);
NOF_SIZE(DEFINE_LU_LU_PASSWORD, 112);

struct DELETE_LU_LU_PASSWORD {
    VCB_HEADER header;
    LU_LU_PASSWORD_KEY key; // 12
    NB_BYTE reserved45[3];
};
NOF_AT(DELETE_LU_LU_PASSWORD, key, 12);
NOF_SIZE(DELETE_LU_LU_PASSWORD, 48);

struct LU_LU_PASSWORD_ENTRY { // define block offset b is entry offset b - 8
    NB_USHORT length;
    NB_BYTE reserved2[2];
    LU_LU_PASSWORD_KEY key; // 4
    LU_LU_PASSWORD_DEF def; // 37
};
NOF_AT(LU_LU_PASSWORD_ENTRY, key, 4);
NOF_AT(LU_LU_PASSWORD_ENTRY, def, 37);
NOF_SIZE(LU_LU_PASSWORD_ENTRY, 104);

struct QUERY_LU_LU_PASSWORD { // the passwords of one local LU
    LIST_QUERY list;
    LU_LU_PASSWORD_KEY key;
};

// ---- security access list ----

struct ACCESS_LIST_USER {
    NB_USHORT length;
    char user_id[10]; // 2
};
NOF_SIZE(ACCESS_LIST_USER, 12);

struct SECURITY_ACCESS_LIST_DEF { // define block offsets 26 to 95
    NB_BYTE reserved26[2];
    NB_DESCRIPTION description; // 28
    NB_BYTE reserved60[16];
    NB_ULONG num_users; // 76
    NB_BYTE reserved80[16];
};
NOF_AT(SECURITY_ACCESS_LIST_DEF, description, 28 - 26);
NOF_AT(SECURITY_ACCESS_LIST_DEF, num_users, 76 - 26);
NOF_SIZE(SECURITY_ACCESS_LIST_DEF, 70);

struct DEFINE_SECURITY_ACCESS_LIST { // adds the users to those the list has
    VCB_HEADER header;
    char list_name[14];           // 12
    SECURITY_ACCESS_LIST_DEF def; // 26
};
NOF_AT(DEFINE_SECURITY_ACCESS_LIST, list_name, 12);
static_assert(offsetof(DEFINE_SECURITY_ACCESS_LIST, def) +
                  offsetof(SECURITY_ACCESS_LIST_DEF, num_users) ==
              76);
NOF_SIZE(DEFINE_SECURITY_ACCESS_LIST, 96); // then the ACCESS_LIST_USERs

struct DELETE_SECURITY_ACCESS_LIST {
    VCB_HEADER header;
    char list_name[14]; // 12
    NB_BYTE reserved26[2];
    NB_ULONG num_users; // 28, 0: the whole list
};
NOF_AT(DELETE_SECURITY_ACCESS_LIST, list_name, 12);
NOF_AT(DELETE_SECURITY_ACCESS_LIST, num_users, 28);
NOF_SIZE(DELETE_SECURITY_ACCESS_LIST, 32); // then user IDs of 10 bytes

struct SECURITY_ACCESS_LIST_ENTRY { // define block offset b is entry offset b - 8
    NB_USHORT length;
    NB_BYTE reserved2[2];
    char list_name[14];           // 4
    SECURITY_ACCESS_LIST_DEF def; // 18, num_users counts the users of this entry
};
NOF_AT(SECURITY_ACCESS_LIST_ENTRY, list_name, 4);
NOF_AT(SECURITY_ACCESS_LIST_ENTRY, def, 18);
NOF_SIZE(SECURITY_ACCESS_LIST_ENTRY, 88); // then the ACCESS_LIST_USERs

struct QUERY_SECURITY_ACCESS_LIST { // list.more: the last entry's list has more users
    LIST_QUERY list;
    char list_name[14];
    char user_id[10]; // the last user received
};

#pragma pack(pop)
