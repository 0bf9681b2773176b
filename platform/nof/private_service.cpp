#include "private_service.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace nof {

namespace {

constexpr const char* PROGRAM = "tessaly-simnode";
constexpr int READY_TIMEOUT_MS = 20000;
constexpr int END_TIMEOUT_MS = 3000;

struct Service {
    pid_t pid = 0; // 0: none
    int process = -1;
    int life_line = -1; // the service ends when the last copy of this end is closed
    std::string directory;
    std::string socket_path;
};
Service service;

bool executable(const std::string& path) {
    return access(path.c_str(), X_OK) == 0;
}

// "" when there is none.
std::string find_program() {
    if (const char* named = std::getenv("TESSALY_SIMNODE"); named != nullptr && *named != '\0') {
        return named;
    }
    char self[4096];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self);
    std::string here(self, length > 0 ? static_cast<std::size_t>(length) : 0);
    here.resize(here.find_last_of('/') != std::string::npos ? here.find_last_of('/') : 0);
    // Beside the program where it is installed; the other two hold in a build tree, for the program
    // and for tests.
    for (const std::string& directory : {here, here + "/simnode", here + "/../simnode"}) {
        if (executable(directory + '/' + PROGRAM)) {
            return directory + '/' + PROGRAM;
        }
    }
    const char* prefix = std::getenv("TESSALY_PREFIX");
    const std::string installed =
        std::string(prefix != nullptr ? prefix : TESSALY_PREFIX) + "/bin/" + PROGRAM;
    return executable(installed) ? installed : std::string();
}

bool make_directory() {
    for (const char* parent :
         {std::getenv("TMPDIR") != nullptr ? std::getenv("TMPDIR") : "/tmp", "/tmp"}) {
        std::string directory = std::string(parent) + "/tessaly-XXXXXX";
        if (directory.size() + sizeof "/node" <= sizeof sockaddr_un::sun_path &&
            mkdtemp(directory.data()) != nullptr) {
            service.socket_path = directory + "/node";
            service.directory = std::move(directory);
            return true;
        }
    }
    return false;
}

struct Pipe {
    int read_end = -1;
    int write_end = -1;

    Pipe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) == 0) {
            read_end = ends[0];
            write_end = ends[1];
        }
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        for (const int end : {read_end, write_end}) {
            if (end >= 0) {
                close(end);
            }
        }
    }
};

// In the child, between fork and exec: only calls that are safe there.
[[noreturn]] void run_service(const char* program, char* const arguments[], int ready,
                              int life_line) {
    setsid(); // an interrupt typed at the terminal is for the tool alone, which ends the service in
              // its turn
    const int null = open("/dev/null", O_RDONLY);
    dup2(null, STDIN_FILENO);
    fcntl(ready, F_SETFD, 0);
    fcntl(life_line, F_SETFD, 0);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execv(program, arguments);
    _exit(127);
}

// Waits for the service's "ready" line.
bool wait_until_ready(int ready) {
    char line[16];
    std::size_t length = 0;
    while (length < sizeof line) {
        pollfd wait{ready, POLLIN, 0};
        const int result = poll(&wait, 1, READY_TIMEOUT_MS);
        if (result < 0 && errno == EINTR) {
            continue;
        }
        if (result <= 0) {
            return false;
        }
        const ssize_t got = read(ready, line + length, sizeof line - length);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return false;
        }
        length += static_cast<std::size_t>(got);
        if (line[length - 1] == '\n') {
            return true;
        }
    }
    return false;
}

bool launch(const std::string& program) {
    Pipe ready;
    Pipe life;
    if (ready.write_end < 0 || life.write_end < 0) {
        return false;
    }
    // What the child needs is made before the fork.
    std::string ready_text = std::to_string(ready.write_end);
    std::string life_text = std::to_string(life.read_end);
    std::string name = PROGRAM;
    std::string options[] = {"--socket", "--ready-fd", "--exit-with-fd"};
    char* arguments[] = {
        name.data(),       options[0].data(), service.socket_path.data(), options[1].data(),
        ready_text.data(), options[2].data(), life_text.data(),           nullptr};
    const pid_t pid = fork();
    if (pid == 0) {
        run_service(program.c_str(), arguments, ready.write_end, life.read_end);
    }
    if (pid < 0) {
        return false;
    }
    service.pid = pid;
    service.process = static_cast<int>(
        syscall(SYS_pidfd_open, pid, 0)); // -1 on an old kernel: its end is then not waited for
    service.life_line = std::exchange(life.write_end, -1);
    close(std::exchange(ready.write_end,
                        -1)); // so that the service's death shows as the end of the pipe
    return wait_until_ready(ready.read_end);
}

} // namespace

bool start_private_service(const char** path) {
    const std::string program = find_program();
    if (program.empty() || !make_directory()) {
        return false;
    }
    if (!launch(program)) {
        end_private_service();
        return false;
    }
    *path = service.socket_path.c_str();
    return true;
}

void hide_private_service() {
    if (!service.directory.empty()) {
        unlink(service.socket_path.c_str());
        rmdir(service.directory.c_str());
        service.directory.clear();
    }
}

void end_private_service() {
    if (service.life_line >= 0) {
        close(std::exchange(service.life_line, -1));
    }
    if (service.process >=
        0) { // stands for this process even if the program's SIGCHLD catcher has reaped it
        pollfd wait{service.process, POLLIN, 0};
        int result;
        do {
            result = poll(&wait, 1, END_TIMEOUT_MS);
        } while (result < 0 && errno == EINTR);
        if (result == 0) {
            syscall(SYS_pidfd_send_signal, service.process, SIGKILL, nullptr, 0);
        }
        int reaped;
        do { // fails with ECHILD when it was reaped already
            reaped = waitpid(service.pid, nullptr, 0);
        } while (reaped < 0 && errno == EINTR);
        close(std::exchange(service.process, -1));
    }
    service.pid = 0;
    hide_private_service();
}

} // namespace nof
