// The specific data behind the fixed part of DLCs, ports and link stations, by kind of adapter.
#pragma once

#include "simnode/kinds.h"

namespace simnode {

// Lengths in bytes.
std::size_t default_dlc_specific(NB_BYTE dlc_type);
void default_port_specific(NB_BYTE dlc_type, NB_USHORT& port_data, NB_USHORT& link_data);
std::size_t default_ls_specific(NB_BYTE dlc_type);
// Gives an entry specific data of the usual size, where it has none; the DLC type must be in its
// detail.
void add_default_specific(const KindRow& row, Bytes& bytes);

} // namespace simnode
