// Processors of the kinds that differ in data only; for the config sources only.
//
// Most define blocks hold the entry that a query would return for the resource, from one offset of
// the block and from another of the entry on; most delete blocks hold the key of a record in one of
// its owner's trees. A kind is then a row of each.
#pragma once

#include "verbs/config_util.h"

// A verb in a row: its opcode, and the text of the invariant.
#define VGA_VERB(OPCODE) OPCODE, "vcb->opcode == " #OPCODE

template <typename Entry, typename Block>
Entry vga_entry_from(const Block& block, std::size_t block_at, std::size_t entry_at) {
    auto entry = vga_new_entry<Entry>();
    std::memcpy(reinterpret_cast<NB_BYTE*>(&entry) + entry_at,
                reinterpret_cast<const NB_BYTE*>(&block) + block_at,
                std::min(sizeof entry - entry_at, sizeof block - block_at));
    return entry;
}

// Null when the record could not be made or placed.
template <typename Owner, typename Record, typename Entry>
Record* vga_add_entry(Owner* owner, const Entry& entry, Record* (*init)(Owner*, const Entry*),
                      Record* (*insert)(Record*, Owner*)) {
    Record* record = init(owner, &entry);
    return record != nullptr ? insert(record, owner) : nullptr;
}

template <typename Owner, typename Record, typename Entry, typename Block> struct vga_define_row {
    NB_USHORT opcode;
    const char* expression;
    std::size_t block_at; // first byte of the entry's data in the block, and in the entry
    std::size_t entry_at;
    Record* (*init)(Owner*, const Entry*);
    Record* (*insert)(Record*, Owner*);
};

template <typename Owner, typename Record, typename Entry, typename Block>
Record* vga_define(const VGA_COMPLETION* completion, Owner* owner,
                   const vga_define_row<Owner, Record, Entry, Block>& row) {
    const auto& block = vga_config_block<Block>(completion, row.opcode, row.expression);
    return vga_add_entry(owner, vga_entry_from<Entry>(block, row.block_at, row.entry_at), row.init,
                         row.insert);
}

// How an unknown name is logged.
struct vga_absent {
    int subcode; // VGA_SILENT: not at all
    bool ebcdic;
    int width;
    vga_listing listing;
};
inline constexpr int VGA_SILENT = -1;

inline bool vga_is_being_listed(const vga_system* system, const vga_listing& listing) {
    return (system->build_flags & listing.build_flags) != 0;
}

template <typename Owner>
void vga_log_absent(const Owner* owner, const vga_absent& absent, NB_USHORT opcode,
                    const void* name) {
    if (absent.subcode == VGA_SILENT || vga_is_being_listed(owner, absent.listing)) {
        return;
    }
    if (absent.ebcdic) {
        vga_log_unknown_ebcdic(absent.subcode, opcode, static_cast<const NB_BYTE*>(name),
                               absent.width);
    } else {
        vga_log_unknown_local(absent.subcode, opcode, static_cast<const char*>(name), absent.width);
    }
}

template <typename Owner, typename Record, typename Block> struct vga_delete_row {
    NB_USHORT opcode;
    const char* expression;
    std::size_t key_at; // in the block, where it also begins with the name to log
    NTL_AVL_TREE Owner::*tree;
    void (*remove)(Record*, bool);
    vga_absent absent;
};

template <typename Owner, typename Record, typename Block>
void vga_delete(const VGA_COMPLETION* completion, Owner* owner,
                const vga_delete_row<Owner, Record, Block>& row) {
    const auto& block = vga_config_block<Block>(completion, row.opcode, row.expression);
    const NB_BYTE* key = reinterpret_cast<const NB_BYTE*>(&block) + row.key_at;
    if (auto* record = vga_status_find<Record>(owner->*row.tree, key); record != nullptr) {
        row.remove(record, true);
    } else {
        vga_log_absent(owner, row.absent, row.opcode, key);
    }
}

// Inserts the entries listed behind a define block under the record that it made; one that takes is
// false for is left out. The record of the last, or null. Stops when a record cannot be made.
template <typename Owner, typename Record, typename Entry>
Record* vga_define_members(Owner* owner, const NB_BYTE* at, NB_ULONG count,
                           Record* (*init)(Owner*, const Entry*),
                           Record* (*insert)(Record*, Owner*),
                           bool (*takes)(const Entry&) = nullptr) {
    Record* last = nullptr;
    for (; count > 0; --count, at += sizeof(Entry)) {
        Entry entry;
        std::memcpy(&entry, at, sizeof entry);
        entry.length = sizeof entry;
        if (takes != nullptr && !takes(entry)) {
            continue;
        }
        last = vga_add_entry(owner, entry, init, insert);
        if (last == nullptr) {
            break;
        }
    }
    return last;
}
