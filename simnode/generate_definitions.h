// Generated records of any kind, for generate.cpp.
#pragma once

#include "simnode/world.h"

namespace simnode {

// Raises the counts of the kinds that the records of a kind stand below.
void raise_parents(const KindRow& row, std::array<unsigned long, KIND_COUNT>& counts);
// The index-th record of a kind, at its place.
void add_generated(Node& node, const KindRow& row, unsigned long index);

} // namespace simnode
