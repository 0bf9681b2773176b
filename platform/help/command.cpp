#include "command.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

struct HELP_COMMAND {
    pid_t child;
    int output;
    XtInputId input;
    std::string text;
    std::function<void(int, const std::string&)> done;
};

namespace {

constexpr std::size_t max_output = 4 * 1024 * 1024;
constexpr int not_run = 127;

// The shell tells the status itself: whoever collects children first, it is not lost.
constexpr const char* wrapper = R"((eval "$TESSALY_COMMAND") 2>&1; printf '\n%d' "$?")";

void finish(HELP_COMMAND* command) {
    XtRemoveInput(command->input);
    close(command->output);
    int ignored;
    while (waitpid(command->child, &ignored, 0) == -1 && errno == EINTR) {
    }
}

void readable(XtPointer data, int*, XtInputId*) {
    auto* command = static_cast<HELP_COMMAND*>(data);
    char part[4096];
    const ssize_t count = read(command->output, part, sizeof part);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
        return;
    }
    if (count > 0) {
        if (command->text.size() < max_output) {
            command->text.append(part, static_cast<std::size_t>(count));
        } else {
            kill(-command->child, SIGKILL); // the end comes as the end of its output
        }
        return;
    }
    finish(command);
    const std::unique_ptr<HELP_COMMAND> owner(command);
    const std::size_t end = command->text.rfind('\n');
    int status = not_run;
    if (end != std::string::npos) {
        status = std::atoi(command->text.c_str() + end + 1);
        command->text.resize(end);
    }
    command->done(status, command->text);
}

// A file without name that holds a text, at its start; -1 when there is none.
int file_with(const std::string& text) {
    const int file = memfd_create("help", MFD_CLOEXEC);
    for (std::size_t at = 0; file >= 0 && at < text.size();) {
        const ssize_t count = write(file, text.data() + at, text.size() - at);
        if (count <= 0) {
            close(file);
            return -1;
        }
        at += static_cast<std::size_t>(count);
    }
    if (file >= 0) {
        lseek(file, 0, SEEK_SET);
    }
    return file;
}

std::vector<std::string>
environment_with(const std::vector<std::pair<std::string, std::string>>& variables) {
    std::vector<std::string> result;
    for (char** each = environ; *each != nullptr; ++each) {
        const std::string entry = *each;
        bool replaced = false;
        for (const auto& [name, value] : variables) {
            replaced = replaced || entry.starts_with(name + "=");
        }
        if (!replaced) {
            result.push_back(entry);
        }
    }
    for (const auto& [name, value] : variables) {
        result.push_back(name + "=" + value);
    }
    return result;
}

pid_t spawn(const std::string& command, std::vector<std::pair<std::string, std::string>> variables,
            int input, int output) {
    variables.emplace_back("TESSALY_COMMAND", command);
    std::vector<std::string> environment = environment_with(variables);
    std::vector<char*> pointers;
    for (std::string& entry : environment) {
        pointers.push_back(entry.data());
    }
    pointers.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    const char* arguments[] = {"sh", "-c", wrapper, nullptr};
    pid_t child = -1;
    if (posix_spawn(&child, "/bin/sh", &actions, &attributes, const_cast<char**>(arguments),
                    pointers.data()) != 0) {
        child = -1;
    }
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

} // namespace

HELP_COMMAND* help_run(XtAppContext app, const std::string& command,
                       const std::vector<std::pair<std::string, std::string>>& variables,
                       const std::string& input,
                       std::function<void(int, const std::string&)> done) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return nullptr;
    }
    const int file = file_with(input);
    const pid_t child = file >= 0 ? spawn(command, variables, file, ends[1]) : -1;
    if (file >= 0) {
        close(file);
    }
    close(ends[1]);
    if (child == -1) {
        close(ends[0]);
        return nullptr;
    }
    auto* running = new HELP_COMMAND{child, ends[0], 0, "", std::move(done)};
    running->input = XtAppAddInput(app, ends[0], reinterpret_cast<XtPointer>(XtInputReadMask),
                                   readable, running);
    return running;
}

void help_cancel(HELP_COMMAND* command) {
    kill(-command->child, SIGKILL);
    finish(command);
    delete command;
}
