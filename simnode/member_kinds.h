// Kinds whose verbs name members: lists with nested entries, connection networks and their ports,
// pools and their LUs, users and their profiles, adjacent nodes and their LUs.
#pragma once

#include "simnode/request.h"

namespace simnode {

// Whether the nested elements of a define block have names and values that can be stored.
Rc check_nested(const KindRow& row, std::span<const NB_BYTE> block);
// Stores the nested elements of a define block below their owner's record, beside those it has.
void define_nested(Node& node, const KindRow& row, std::span<const NB_BYTE> block,
                   const Record& owner);

// An LU of type 0 to 3 leaves one pool and enters another (empty: none). A pool that loses its last
// LU stays, without LUs.
void move_lu_to_pool(Node& node, const std::string& lu, const std::string& from,
                     const std::string& to);
// Brings the entry of a connection network up to date with its ports.
void count_cn_ports(Node& node, const std::string& cn);
// Takes a port out of its connection network.
void forget_cn_of_port(Node& node, const Record& port);

} // namespace simnode
