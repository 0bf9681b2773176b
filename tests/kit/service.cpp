#include "kit/service.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sstream>
#include <unistd.h>

namespace kit {

SERVICE::SERVICE(const std::vector<std::string>& options) {
    static int number;
    socket_ = scratch() + "/node" + std::to_string(++number);
    int ready[2];
    if (pipe2(ready, O_CLOEXEC) != 0) {
        return;
    }
    std::vector<std::string> arguments{program("tessaly-simnode"), "--socket", socket_,
                                       "--ready-fd", std::to_string(ready[1])};
    if (options.empty()) {
        arguments.insert(arguments.end(),
                         {"--domain", TESSALY_SOURCE_DIR "/data/domains/demo.toml"});
    }
    arguments.insert(arguments.end(), options.begin(), options.end());
    child_ = start(arguments, {}, -1, -1, {ready[1]});
    close(ready[1]);
    pollfd source{ready[0], POLLIN, 0};
    char text[8];
    const bool listening = poll(&source, 1, 30'000) == 1 && read(ready[0], text, sizeof text) > 0;
    close(ready[0]);
    EXPECT_TRUE(listening) << "the simulated node did not start";
}

SERVICE::~SERVICE() {
    kill();
}

void SERVICE::kill() {
    if (child_ > 0) {
        ::kill(child_, SIGTERM);
        wait_for(child_, std::chrono::seconds(5));
        child_ = -1;
    }
}

std::string SERVICE::control(const std::string& command) {
    std::vector<std::string> arguments{program("tessaly-simctl"), "--socket", socket_};
    std::istringstream words(command);
    for (std::string word; words >> word;) {
        arguments.push_back(word);
    }
    const RESULT result = run(arguments);
    EXPECT_EQ(result.status, 0) << command << ": " << result.out << result.err;
    return result.out;
}

} // namespace kit
