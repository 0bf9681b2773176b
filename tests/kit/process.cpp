#include "kit/process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace kit {

namespace {

using CLOCK = std::chrono::steady_clock;

struct SCRATCH {
    std::string path;
    pid_t owner = getpid();
    SCRATCH() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tessaly-test-XXXXXX").string();
        path = mkdtemp(pattern.data());
    }
    ~SCRATCH() {
        if (getpid() == owner) {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    }
};

} // namespace

pid_t start(const std::vector<std::string>& arguments, const ENVIRONMENT& environment, int out_fd,
            int err_fd, const std::vector<int>& keep) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG,
              SIGKILL); // a test that crashes leaves nothing that keeps its output
        for (const auto& [name, value] : environment) {
            value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
        }
        if (out_fd >= 0) {
            dup2(out_fd, STDOUT_FILENO);
        }
        if (err_fd >= 0) {
            dup2(err_fd, STDERR_FILENO);
        }
        for (const int fd : keep) {
            fcntl(fd, F_SETFD, 0);
        }
        execv(argv[0], argv.data());
        _exit(127);
    }
    return child;
}

int wait_for(pid_t child, std::chrono::seconds deadline) {
    const auto end = CLOCK::now() + deadline;
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (CLOCK::now() > end) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1 - WTERMSIG(status);
}

RESULT run(const std::vector<std::string>& arguments, const ENVIRONMENT& environment,
           std::chrono::seconds deadline) {
    int out[2], err[2];
    if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) {
        return {};
    }
    const pid_t child = start(arguments, environment, out[1], err[1]);
    close(out[1]);
    close(err[1]);
    RESULT result;
    pollfd sources[] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}};
    std::string* texts[] = {&result.out, &result.err};
    const auto end = CLOCK::now() + deadline;
    int open = 2;
    while (open > 0 && CLOCK::now() < end) {
        poll(sources, 2, 100);
        for (int i = 0; i < 2; ++i) {
            char buffer[4096];
            if (sources[i].fd < 0 || sources[i].revents == 0) {
                continue;
            }
            const ssize_t count = read(sources[i].fd, buffer, sizeof buffer);
            if (count > 0) {
                texts[i]->append(buffer, static_cast<std::size_t>(count));
            } else {
                sources[i].fd = -1;
                --open;
            }
        }
    }
    result.status = wait_for(child, std::chrono::seconds(open > 0 ? 0 : 10));
    close(out[0]);
    close(err[0]);
    return result;
}

const std::string& scratch() {
    static SCRATCH directory;
    return directory.path;
}

std::string program(const std::string& name) {
    const std::string folder = name == "tessaly" ? "" : "/simnode";
    return TESSALY_BUILD_DIR + folder + "/" + name;
}

ENVIRONMENT data_environment() {
    const std::string data = TESSALY_BUILD_DIR "/data";
    return {{"UIDPATH", data + "/uid/%U"},
            {"NLSPATH", data + "/nls/msg/C/%N"},
            {"XFILESEARCHPATH", data + "/app-defaults/%N"},
            {"TESSALY_HELP", data + "/help"},
            {"LANG", "C"},
            {"HOME", scratch()},
            {"TESSALY_LOG", scratch() + "/log"}};
}

} // namespace kit
