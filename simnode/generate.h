// Domains of any size, for benchmarks.
#pragma once

#include "simnode/world.h"

namespace simnode {

struct Counts {
    unsigned long nodes =
        1; // several make a client/server domain; the other counts are each node's
    unsigned long ports = 0;
    unsigned long link_stations = 0;
    unsigned long pus = 0; // local PUs, one per link station at most
    unsigned long lus_0_to_3 = 0;
    unsigned long local_lus = 0;
    std::array<unsigned long, KIND_COUNT> others{}; // by kind, of the remaining kinds
};

// Reads "lu03=100000,pu=400,ls=400,port=4,lu62=50,user=20,node=5"; every kind but sessions has a
// name.
// False with a reason for anything else.
bool parse_counts(std::string_view text, Counts& counts, std::string& error);
// Active nodes with that many resources. Whatever they need beyond the counts is added: a PU for
// every 254 LUs, a link station for every PU, a port for every 4096 link stations.
void generate_domain(Domain& domain, Counts counts);

} // namespace simnode
