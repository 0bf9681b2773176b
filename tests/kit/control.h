// A connection to a simulated node that carries out one tessaly-simctl command after the other, for
// tests that send thousands of them.
#pragma once

#include <string>

namespace kit {

class CONTROL {
public:
    explicit CONTROL(const std::string& socket);
    ~CONTROL();
    CONTROL(const CONTROL&) = delete;
    CONTROL& operator=(const CONTROL&) = delete;

    // The command's output. *status: its exit status, -1 when the service is gone.
    std::string run(const std::string& command, int* status = nullptr);

private:
    bool send_frame(unsigned kind, const std::string& block);
    int socket_;
};

} // namespace kit
