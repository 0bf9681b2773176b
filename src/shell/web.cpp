#include "shell/start.h"

#include "shell/messages.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

// Runs in the child, and never returns: a second fork makes the browser no child of ours.
void vga_web_temp_child_process(int message_number) {
    constexpr int part = 200; // of the browser command, and of the address
    char command[2 * part + 2];
    std::snprintf(command, sizeof command, "%.*s %.*s", part, gvga_web_browser, part,
                  gvga_messages[message_number]);
    v0_close_message_catalog(&gvga_catalog);
    VGA_ASSERT(vsvig_signal_ignore(SIGHUP) == 0);
    const pid_t browser = fork();
    if (browser == 0) {
        execl("/bin/bash", "bash", "-c", command, static_cast<char*>(nullptr));
        VGA_ASSERT_TEXT(false, "execl");
    }
    VGA_ASSERT(browser != -1);
    _exit(0);
}

void vga_display_web_site(int message_number) {
    // The catcher clears the process id; blocking the signal around the fork keeps it from coming
    // before the id is known. After a SIGTERM the signal is ignored, and the wait would never end
    // without it.
    const auto previous = std::signal(SIGCHLD, vga_signal_catcher);
    sigset_t child_signal;
    sigset_t before;
    sigemptyset(&child_signal);
    sigaddset(&child_signal, SIGCHLD);
    sigprocmask(SIG_BLOCK, &child_signal, &before);
    const pid_t child = fork();
    if (child == 0) {
        sigprocmask(SIG_UNBLOCK, &child_signal, nullptr);
        vga_web_temp_child_process(message_number);
    }
    if (VGA_ASSERT_TEXT(child != -1, "gvga_web_temp_pid != -1")) {
        gvga_web_temp_pid = child;
        sigset_t waiting = before;
        sigdelset(&waiting, SIGCHLD);
        while (gvga_web_temp_pid != 0) {
            sigsuspend(&waiting);
        }
    }
    sigprocmask(SIG_UNBLOCK, &child_signal, nullptr);
    std::signal(SIGCHLD, previous);
}

void vga_menu_help_web(Widget, XtPointer tag, XtPointer) {
    const char* kind = static_cast<const char*>(tag);
    vga_display_web_site(kind != nullptr && std::strcmp(kind, "2") == 0 ? 230 : 229);
}

void vga_signal_catcher(int signal) {
    const int saved_errno = errno;
    if (signal == SIGTERM) {
        std::signal(SIGTERM, SIG_IGN);
        std::signal(SIGCHLD, SIG_IGN);
    } else if (signal == SIGCHLD) {
        pid_t reaped;
        while (gvga_web_temp_pid != 0 && (reaped = wait(nullptr)) > 0) {
            if (reaped == gvga_web_temp_pid) {
                gvga_web_temp_pid = 0;
            }
        }
    }
    errno = saved_errno;
}

int vsvig_signal_ignore(int signal) {
    struct sigaction action {};
    action.sa_handler = SIG_IGN;
    return sigaction(signal, &action, nullptr);
}

int vga_xerror_handler(Display* display, XErrorEvent* event) {
    if (!nba_exceptions_suppressed()) {
        char text[300];
        XGetErrorText(display, event->error_code, text, sizeof text);
        nba_pd_print_exception(0x4002000B, 0, "i i s", static_cast<int>(event->error_code),
                               static_cast<int>(event->request_code), text);
    }
    return 0;
}
