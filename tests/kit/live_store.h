// The store of a console without a display: it is built from a simulated node and follows what
// other operators do there.
#pragma once

#include "kit/store_dump.h"

#include <string>

namespace kit {

// At most one at a time: gvga_system and the node operator library are the process's.
class LIVE_STORE {
public:
    explicit LIVE_STORE(const std::string& socket);
    ~LIVE_STORE();
    LIVE_STORE(const LIVE_STORE&) = delete;
    LIVE_STORE& operator=(const LIVE_STORE&) = delete;

    // Until the build is done, and what it led to. False: it failed, or took too long.
    bool build();
    // Until everything the node has sent so far is processed, with the queries it led to.
    bool settle();
    // Takes in what has arrived, without waiting.
    void poll();

    // The store that a console has which starts now: built in a process of its own, while this one
    // stays as it is.
    static STORE_DUMP fresh(const std::string& socket);

private:
    bool pump(bool (*done)());
};

} // namespace kit
