// What a kind checks and completes of its own when it is defined.
#pragma once

#include "simnode/world.h"

namespace simnode {

// Whether the resource may be defined so. record: the entry-to-be, old: the one it replaces, null
// for a new one.
Rc check_define(Node& node, const KindRow& row, std::span<const NB_BYTE> block,
                const Record& record, const Record* old);
// What an entry tells of the resource above it.
void take_from_parent(Node& node, const KindRow& row, Bytes& bytes);
// What an entry holds beyond the definition.
void complete_entry(Node& node, const KindRow& row, Bytes& bytes, const Record* old);

bool is_control_point(const Node& node, const Record& lu);
// The block of a password or routing verb with the name of the local LU it means: by its name at an
// offset, by the alias behind the name when that is blank, that of the control point when both are.
// Blocks of other kinds are returned as they are.
Bytes with_lu_name(const Node& node, Kind kind, std::span<const NB_BYTE> block, std::size_t offset);

} // namespace simnode
