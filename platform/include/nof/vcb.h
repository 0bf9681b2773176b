// What all verb control blocks share: the header, the common part of list queries, and the tools
// with which the block headers beside this file state and check their layouts. Fields are in host
// byte order unless their type says otherwise.
#pragma once

#include "nba/nba.h"
#include "nof/opcodes.h"

#include <array>
#include <cstddef>
#include <cstdint>

// Big-endian on the wire and in the block.
struct NB_BE16 {
    NB_BYTE bytes[2];
    constexpr NB_USHORT get() const { return static_cast<NB_USHORT>(bytes[0] << 8 | bytes[1]); }
    constexpr void set(NB_USHORT v) {
        bytes[0] = static_cast<NB_BYTE>(v >> 8);
        bytes[1] = static_cast<NB_BYTE>(v);
    }
};
struct NB_BE32 {
    NB_BYTE bytes[4];
    constexpr NB_ULONG get() const {
        return NB_ULONG{bytes[0]} << 24 | NB_ULONG{bytes[1]} << 16 | NB_ULONG{bytes[2]} << 8 |
               bytes[3];
    }
    constexpr void set(NB_ULONG v) {
        for (int i = 0; i < 4; ++i) {
            bytes[i] = static_cast<NB_BYTE>(v >> (24 - 8 * i));
        }
    }
};

// Character fields: names are padded, not terminated. E: EBCDIC, blank 0x40; L: local characters,
// blank 0x20.
using NB_NAME8E = NB_BYTE[8];
using NB_NAME8L = char[8];
using NB_FQNAME = NB_BYTE[17];   // NETID.NAME in EBCDIC
using NB_DESCRIPTION = char[32]; // local, NUL-terminated, at most 31 characters
using NB_NODE_NAME = char[128];  // local, NUL-terminated or blank-padded

#define NOF_AT(type, field, offset)                                                                \
    static_assert(offsetof(type, field) == (offset), #type "." #field)
#define NOF_SIZE(type, size) static_assert(sizeof(type) == (size), #type)

#pragma pack(push, 1)

struct VCB_HEADER {
    NB_USHORT opcode;
    NB_BYTE reserved2;
    NB_BYTE format; // selects the verb table row together with the opcode
    NB_USHORT primary_rc;
    NB_USHORT reserved6;
    NB_ULONG secondary_rc;
};
NOF_AT(VCB_HEADER, opcode, 0);
NOF_AT(VCB_HEADER, format, 3);
NOF_AT(VCB_HEADER, primary_rc, 4);
NOF_AT(VCB_HEADER, secondary_rc, 8);
NOF_SIZE(VCB_HEADER, 12);

// The part common to every list query; the verb's key, and then its filters, follow at offset 38.
struct LIST_QUERY {
    VCB_HEADER header;
    NB_BYTE reserved12[4];
    void* buffer; // the query buffer, freed with the block
    NB_ULONG buffer_size;
    NB_BYTE reserved28[4];
    NB_USHORT num_entries; // asked (0: as many as fit), returned
    NB_USHORT
    total_entries; // reply: entries that remained from the start point, those returned included
    NB_BYTE list_options; // NAP_LIST_OPTIONS
    NB_BYTE more;         // reply, some verbs: 1 when the last entry continues in the next page
};
NOF_AT(LIST_QUERY, buffer, 16);
NOF_AT(LIST_QUERY, buffer_size, 24);
NOF_AT(LIST_QUERY, num_entries, 32);
NOF_AT(LIST_QUERY, total_entries, 34);
NOF_AT(LIST_QUERY, list_options, 36);
NOF_SIZE(LIST_QUERY, 38);

// Every entry begins with its whole length, which leads to the next.
struct QUERY_ENTRY {
    NB_USHORT length;
};

#pragma pack(pop)

// The variable part that follows a block's or entry's fixed part.
template <typename T> NB_BYTE* nof_tail(T* fixed) {
    return reinterpret_cast<NB_BYTE*>(fixed + 1);
}
template <typename T> const NB_BYTE* nof_tail(const T* fixed) {
    return reinterpret_cast<const NB_BYTE*>(fixed + 1);
}

inline VCB_HEADER* vcb_header(void* vcb) {
    return static_cast<VCB_HEADER*>(vcb);
}
inline const VCB_HEADER* vcb_header(const void* vcb) {
    return static_cast<const VCB_HEADER*>(vcb);
}
