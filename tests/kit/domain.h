// A client/server domain for the simulated node, written down by a test.
#pragma once

#include <string>
#include <vector>

namespace kit {

struct DOMAIN_NODE {
    std::string name;
    enum KIND { ACTIVE, STOPPED, UNCONFIGURED, BACK_LEVEL } kind = ACTIVE;
    int ports = 1;
    bool busy = false; // LUs that the user "ann" uses, in a pool of the domain, and sessions
};

// The options that make a simulated node serve such a domain. The first node is the local server
// and keeps the configuration, servers are further backup servers; central_logger: the node that
// runs it.
std::vector<std::string> domain_options(const std::vector<DOMAIN_NODE>& nodes,
                                        const std::vector<std::string>& servers,
                                        const std::string& central_logger);

} // namespace kit
