// Programs started by a test.
#pragma once

#include <chrono>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace kit {

using ENVIRONMENT =
    std::vector<std::pair<std::string, std::string>>; // added to ours; an empty value unsets

struct RESULT {
    int status = -1; // exit status; -1 - signal when killed by one
    std::string out;
    std::string err;
};

// Runs a program to its end; after the deadline it is killed.
RESULT run(const std::vector<std::string>& arguments, const ENVIRONMENT& environment = {},
           std::chrono::seconds deadline = std::chrono::seconds(60));

// Starts a program; ready_fd: a descriptor that the child keeps open under the same number, or -1.
pid_t start(const std::vector<std::string>& arguments, const ENVIRONMENT& environment,
            int out_fd = -1, int err_fd = -1, const std::vector<int>& keep = {});
// Waits for the end of a child; kills it after the deadline. The exit status, or -1 - signal.
int wait_for(pid_t child, std::chrono::seconds deadline);

// A directory of the test's own, removed with its contents at the end of the process.
const std::string& scratch();

// A built program's path: "tessaly", "tessaly-simnode", "tessaly-simctl".
std::string program(const std::string& name);

// The build tree's data, as the run script sets it.
ENVIRONMENT data_environment();

} // namespace kit
