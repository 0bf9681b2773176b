// Extra data of LUs 0 to 3.
#pragma once

#include "nof/vcb.h"

#pragma pack(push, 1)

inline constexpr NB_USHORT NOF_EXTRA_DATA_LU_0_TO_3 = 0x5000;

struct EXTRA_DATA {          // define block offsets 14 to 147, entry offsets 2 to 135
    NB_BYTE name[64];        // 14, of an LU 0 to 3: 8 bytes of EBCDIC, the rest zero
    NB_BYTE second_half[64]; // 78
    NB_ULONG parameter142;
    NB_USHORT parameter146;
};
NOF_SIZE(EXTRA_DATA, 134);

struct DEFINE_EXTRA_DATA {
    VCB_HEADER header;
    NB_USHORT resource_kind; // 12, NOF_EXTRA_DATA_LU_0_TO_3
    EXTRA_DATA data;         // 14
};
NOF_AT(DEFINE_EXTRA_DATA, resource_kind, 12);
NOF_AT(DEFINE_EXTRA_DATA, data, 14);
static_assert(offsetof(DEFINE_EXTRA_DATA, data) + offsetof(EXTRA_DATA, second_half) == 78);
static_assert(offsetof(DEFINE_EXTRA_DATA, data) + offsetof(EXTRA_DATA, parameter142) == 142);
static_assert(offsetof(DEFINE_EXTRA_DATA, data) + offsetof(EXTRA_DATA, parameter146) == 146);
NOF_SIZE(DEFINE_EXTRA_DATA, 148);

struct DELETE_EXTRA_DATA {
    VCB_HEADER header;
    NB_USHORT resource_kind; // 12
    NB_BYTE name[64];        // 14
    NB_BYTE reserved78[2];
};
NOF_AT(DELETE_EXTRA_DATA, resource_kind, 12);
NOF_AT(DELETE_EXTRA_DATA, name, 14);
NOF_SIZE(DELETE_EXTRA_DATA, 80);

struct EXTRA_DATA_ENTRY {
    NB_USHORT length;
    EXTRA_DATA data; // 2
};
NOF_SIZE(EXTRA_DATA_ENTRY, 136);

struct QUERY_EXTRA_DATA {
    LIST_QUERY list;
    NB_BYTE name[64];
    NB_USHORT resource_kind; // only extra data of this kind
};

#pragma pack(pop)
