// A flood of status indications at a fixed rate, to load operators with.
#pragma once

#include "simnode/world.h"

#include <chrono>

namespace simnode {

struct Flood {
    std::string node;
    std::vector<std::vector<std::string>> keys; // of the records that change, by kind
    unsigned long per_second = 0;
    unsigned long total = 0; // indications asked for; 0: no flood
    unsigned long sent = 0;
    unsigned seed = 1;
    std::chrono::steady_clock::time_point start{};

    bool running() const { return sent < total; }
};

// A flood of changes of a node's LUs, sessions, PUs and link stations.
Flood make_flood(Node& node, unsigned long per_second, unsigned long seconds);
// Puts the indications that are due by now into the world, each of a change.
void flood(World& world, Flood& flood, std::chrono::steady_clock::time_point now);

} // namespace simnode
