#include "kit/service.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

// The installed program as a user starts it: its options, and what it does when something it needs
// is missing.
namespace {

using kit::ENVIRONMENT;
using kit::RESULT;
using kit::run;

ENVIRONMENT with(ENVIRONMENT environment, const std::string& name, const std::string& value) {
    std::erase_if(environment, [&](const auto& entry) { return entry.first == name; });
    environment.emplace_back(name, value);
    return environment;
}

RESULT tessaly(const std::vector<std::string>& options,
               const ENVIRONMENT& environment = kit::data_environment()) {
    std::vector<std::string> arguments{kit::program("tessaly")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return run(arguments, environment);
}

TEST(CommandLine, UsageNeedsNoDisplay) {
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"-h"}, {"-xrm", "*a: b", "-h"}}) {
        const RESULT result = tessaly(options, with(kit::data_environment(), "DISPLAY", ""));
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find("-size"), std::string::npos);
    }
}

TEST(CommandLine, UnknownArgumentsEndWithUsage) {
    const RESULT wrong = tessaly({"-size", "small", "wrongword"});
    EXPECT_EQ(wrong.status, 33) << wrong.err;
    EXPECT_NE(wrong.out.find("wrongword"), std::string::npos);
    for (const char* question : {"-?", "-help", "-HELP"}) {
        const RESULT result = tessaly({question});
        EXPECT_EQ(result.status, 33);
        EXPECT_NE(result.out.find("-size"), std::string::npos);
        EXPECT_EQ(result.out.find(question), std::string::npos);
    }
}

std::string damaged_copy(const std::string& from, const std::string& name, bool cut) {
    const std::string directory = kit::scratch() + "/damaged" + std::to_string(cut);
    std::filesystem::create_directories(directory);
    for (const auto& file : std::filesystem::directory_iterator(from)) {
        std::filesystem::copy_file(file, directory + "/" + file.path().filename().string(),
                                   std::filesystem::copy_options::overwrite_existing);
    }
    if (cut) {
        std::filesystem::resize_file(directory + "/" + name, 700);
    } else {
        std::filesystem::remove(directory + "/" + name);
    }
    return directory;
}

TEST(MissingData, EndsStartUpWithStatus165AndALine) {
    const std::string data = TESSALY_BUILD_DIR "/data";
    struct ROW {
        const char* variable;
        std::string folder;
        const char* file;
        const char* pattern;
    };
    const ROW rows[] = {
        {"NLSPATH", data + "/nls/msg/C", "sna.cat", "/%N"},
        {"UIDPATH", data + "/uid", "tessalydlg.uid", "/%U"},
        {"UIDPATH", data + "/uid", "icons.uid", "/%U"},
    };
    kit::SERVICE service;
    for (const ROW& row : rows) {
        for (const bool cut : {false, true}) {
            const std::string directory = damaged_copy(row.folder, row.file, cut);
            auto environment = with(kit::data_environment(), row.variable, directory + row.pattern);
            environment = with(environment, "TESSALY_NODE_SOCKET", service.socket());
            const RESULT result = tessaly({"-size", "small"}, environment);
            EXPECT_EQ(result.status, 165) << row.file << (cut ? " cut" : " missing") << result.err;
            EXPECT_NE(result.err, "") << row.file;
        }
    }
}

TEST(Display, ItsLossEndsTheRunWithoutACrash) {
    int pipe_fds[2];
    ASSERT_EQ(pipe(pipe_fds), 0);
    const pid_t server = kit::start({"/usr/bin/Xvfb", "-displayfd", std::to_string(pipe_fds[1]),
                                     "-screen", "0", "800x600x24", "-nolisten", "tcp"},
                                    {}, -1, -1, {pipe_fds[1]});
    char number[16] = {};
    ASSERT_GT(read(pipe_fds[0], number, sizeof number - 1), 0);
    kit::SERVICE service;
    auto environment = with(kit::data_environment(), "TESSALY_NODE_SOCKET", service.socket());
    environment = with(environment, "DISPLAY", ":" + std::to_string(std::atoi(number)));
    int err[2];
    ASSERT_EQ(pipe(err), 0);
    const pid_t child = kit::start({kit::program("tessaly")}, environment, -1, err[1]);
    for (int i = 0;
         i < 1000 && service.control("journal").find("NAP_QUERY_NODE") == std::string::npos; ++i) {
        usleep(5000);
    }
    kill(server, SIGKILL);
    kit::wait_for(server, std::chrono::seconds(5));
    EXPECT_EQ(kit::wait_for(child, std::chrono::seconds(20)), 1);
    for (const int fd : {pipe_fds[0], pipe_fds[1], err[0], err[1]}) {
        close(fd);
    }
}

} // namespace
