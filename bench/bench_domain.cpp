// A domain of many nodes: from the start of the program to its usable system window, beside bare
// clients that read the same pages, one for each node; and how long the program takes to bring
// another node's window to the front and draw it.
//
// The start is counted in processor time, here and in the service; opening a window and switching
// by the clock, since they wait for the X server and the window manager. Each start has a process
// of its own.
#include <gtest/gtest.h> // before X, whose macros would break it

#include "bare_client.h"
#include "measure.h"

#include "kit/process.h"

#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/start.h"
#include "store/store.h"
#include "ui/framework/dialog_table.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace bench;
using Clock = std::chrono::steady_clock;

constexpr unsigned nodes = 50;
constexpr const char* domain = // 2,000 resources on each
    "node=50,port=2,ls=20,lu03=1800,lu62=40,mode_definition=20,directory=40,partner_definition=20,"
    "tp=20,ls_routing=10,userid=10,tn_client=10";
constexpr double start_limit = 1.3; // our time by the peer's
constexpr double switch_limit = 50; // milliseconds
constexpr double patience = 20;     // seconds
constexpr int turns = 7;
constexpr int switches = 20;

double milliseconds_since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void pump(auto&& done) {
    const auto start = Clock::now();
    while (!done()) {
        if (gvga_exit_code != 0 || milliseconds_since(start) > 1000 * patience) {
            fail("the program ended, or came to nothing");
        }
        const XtIntervalId timer =
            XtAppAddTimeOut(gvga_appcontext, 5, vga_null_timeout_proc, nullptr);
        vga_main_loop_step();
        XtRemoveTimeOut(timer);
    }
}

// Until what was drawn has reached the X server and no event is left.
void settle() {
    do {
        while (XtAppPending(gvga_appcontext) != 0) {
            vga_main_loop_step();
        }
        XSync(gvga_display, False);
    } while (XtAppPending(gvga_appcontext) != 0);
}

void mark(Widget, XtPointer drawn, XEvent*, Boolean*) {
    *static_cast<bool*>(drawn) = true;
}

// Milliseconds until a node's window is in front and drawn. A window that is new may have been
// drawn when the call returns; one that is there is drawn again.
double show(vga_node* node) {
    bool drawn = false;
    Widget list = node->links_root.draw_widget;
    const auto start = Clock::now();
    if (list == nullptr) {
        vga_show_node_window(node);
        pump([&] { return node->links_root.exposed != 0; });
    } else {
        XtAddEventHandler(list, ExposureMask, False, mark, &drawn);
        vga_show_node_window(node);
        pump([&] { return drawn; });
        XtRemoveEventHandler(list, ExposureMask, False, mark, &drawn);
    }
    settle();
    return milliseconds_since(start);
}

struct Turn {
    double start; // seconds of processor time
    double clock; // the same by the clock
    double open;  // milliseconds
    double change;
    double slowest;
};

// One run of the program.
Turn run(const Service& service) {
    for (const auto& [name, value] : kit::data_environment()) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    char name[] = "tessaly";
    char* arguments[] = {name, nullptr};
    VGA_RUN program{};
    Turn turn{};
    const auto began = Clock::now();
    turn.start = service.seconds([&] {
        if (!vga_begin(&program, 1, arguments)) {
            fail("the program does not start");
        }
        pump([] { return gvga_first_dialog == nullptr; });
        settle();
    });
    turn.clock = milliseconds_since(began) / 1000;
    auto* first = ntl_avl_first<vga_node>(gvga_system->node_tree);
    auto* second = static_cast<vga_node*>(ntl_avl_next(&first->node));
    turn.open = median({show(first), show(second)});
    std::vector<double> times;
    for (int i = 0; i < switches; ++i) {
        times.push_back(show(i % 2 == 0 ? first : second));
        turn.slowest = std::max(turn.slowest, times.back());
    }
    turn.change = median(times);
    gvga_exit_code = VGA_EXIT_ORDERLY;
    vga_end(&program);
    return turn;
}

Turn run_apart(const Service& service) {
    int result[2];
    if (pipe(result) != 0) {
        fail("no pipe");
    }
    const pid_t child = fork();
    if (child == 0) {
        const Turn turn = run(service);
        _exit(write(result[1], &turn, sizeof turn) == sizeof turn ? 0 : 2);
    }
    close(result[1]);
    Turn turn{};
    if (read(result[0], &turn, sizeof turn) != sizeof turn) {
        fail("a run failed");
    }
    close(result[0]);
    waitpid(child, nullptr, 0);
    return turn;
}

} // namespace

int main() {
    pin_to_one_processor();
    const Service service(domain);
    std::vector<double> peer;
    std::vector<double> ours;
    std::vector<double> ratio;
    std::vector<double> clock_ratio;
    std::vector<double> open;
    std::vector<double> change;
    double slowest = 0;
    for (int i = 0; i < turns; ++i) {
        const auto began = Clock::now();
        peer.push_back(read_domain(service, nodes).seconds);
        const double peer_clock = milliseconds_since(began) / 1000;
        const Turn turn = run_apart(service);
        ours.push_back(turn.start);
        ratio.push_back(turn.start / peer.back());
        clock_ratio.push_back(turn.clock / peer_clock);
        open.push_back(turn.open);
        change.push_back(turn.change);
        slowest = std::max(slowest, turn.slowest);
    }
    bool ok = report("start", median(ratio), start_limit);
    std::printf("# start: %.2f s of processor time, bare clients %.2f s; ratio by the clock %.2f\n",
                median(ours), median(peer), median(clock_ratio));
    ok &= report("switch_milliseconds", median(change), switch_limit, 1);
    std::printf("# slowest switch %.1f ms; a node window opens in %.0f ms\n", slowest,
                median(open));
    return ok ? 0 : 1;
}
