// A bare client of the node service, the floor for the store's build: it opens the same files,
// registers for the same indications, reads the same settings and pages over the same wire, and
// keeps each entry in a boost intrusive tree. What it lists comes from the store's table of
// queries, so that this holds for any domain whose nodes are active.
#pragma once

#include <cstddef>
#include <string>

namespace bench {

inline constexpr std::size_t page_size = 4096;

struct Read {
    double seconds = 0; // of processor time until everything is read, here and in the service
    std::size_t entries = 0;
    std::size_t pages = 0;
};

class Service;

// Reads a domain with so many clients at once, each in a thread of its own: the first one reads the
// files of the domain, and all share the nodes. What was read is freed behind the clock. Ends the
// program when the service refuses.
Read read_domain(const Service& service, unsigned clients = 1);

} // namespace bench
