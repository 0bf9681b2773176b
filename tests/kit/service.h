// A simulated node of the test's own, in a process of its own.
#pragma once

#include "kit/process.h"

namespace kit {

class SERVICE {
public:
    // options: of tessaly-simnode, beside the socket; none: the example domain.
    explicit SERVICE(const std::vector<std::string>& options = {});
    ~SERVICE();
    SERVICE(const SERVICE&) = delete;
    SERVICE& operator=(const SERVICE&) = delete;

    const std::string& socket() const { return socket_; }
    // Runs a tessaly-simctl command (words separated by blanks); its output. A failure fails the
    // test.
    std::string control(const std::string& command);
    void kill();

private:
    std::string socket_;
    pid_t child_ = -1;
};

} // namespace kit
