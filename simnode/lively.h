// The lively mode: sessions come and go, and a link fails now and then, so that a demonstration has
// something to show.
#pragma once

#include "simnode/world.h"

#include <chrono>
#include <map>

namespace simnode {

// One turn: a few things happen, chosen by the seed, which is moved on.
void live(World& world, unsigned& seed);

// How long starting and stopping takes then.
std::map<NB_USHORT, std::chrono::milliseconds> lively_durations();

} // namespace simnode
