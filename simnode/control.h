// The commands of tessaly-simctl: everything that happens to a node, on request.
#pragma once

#include "simnode/connection.h"

namespace simnode {

struct Service;

struct ControlAnswer {
    int status = 0; // exit status of the command line
    std::string text;
    bool later = false; // the answer follows when the service is idle
};

// Runs one command line. An answer that comes later goes to the issuer.
ControlAnswer run_control(Service& service, Connection& issuer, std::string_view line);
void answer_control(Connection& connection, int status, std::string_view text);

} // namespace simnode
