// Pools of LUs 0 to 3.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

inline constexpr int NOF_POOL_LUS = 10; // LU names in one block

struct DEFINE_LU_POOL { // adds the LUs to those the pool has
    VCB_HEADER header;
    NB_NAME8E pool_name;        // 12
    NB_DESCRIPTION description; // 20
    NB_BYTE reserved52[20];
    NB_USHORT num_lus;                // 72
    NB_NAME8E lu_names[NOF_POOL_LUS]; // 74
    NB_BYTE reserved154[2];
};
NOF_AT(DEFINE_LU_POOL, pool_name, 12);
NOF_AT(DEFINE_LU_POOL, num_lus, 72);
NOF_AT(DEFINE_LU_POOL, lu_names, 74);
NOF_SIZE(DEFINE_LU_POOL, 156);

struct DELETE_LU_POOL {
    VCB_HEADER header;
    NB_NAME8E pool_name;              // 12
    NB_USHORT num_lus;                // 20, 0: the whole pool
    NB_NAME8E lu_names[NOF_POOL_LUS]; // 22
    NB_BYTE reserved102[2];
};
NOF_AT(DELETE_LU_POOL, pool_name, 12);
NOF_AT(DELETE_LU_POOL, num_lus, 20);
NOF_AT(DELETE_LU_POOL, lu_names, 22);
NOF_SIZE(DELETE_LU_POOL, 104);

struct LU_POOL_ENTRY { // one per LU; a pool without LUs has one entry with a zero LU name
    NB_USHORT length;
    NB_NAME8E pool_name;        // 2
    NB_NAME8E lu_name;          // 10
    NB_DESCRIPTION description; // 18, of the pool
    NB_BYTE reserved50[2];
};
NOF_SIZE(LU_POOL_ENTRY, 52);

struct QUERY_LU_POOL {
    LIST_QUERY list;
    NB_NAME8E pool_name;
    NB_NAME8E lu_name;
};

#pragma pack(pop)
