// The whole program with its node window open while the node sends 50,000 indications a second:
// whether it keeps up, loses none, answers keys meanwhile, and stays the size it was.
//
//   bench_indications [SECONDS]
#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "shell/globals.h"
#include "shell/verb_queue.h"
#include "store/records.h"

#include <X11/extensions/XTest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <unistd.h>

namespace {

using CLOCK = std::chrono::steady_clock;

constexpr unsigned long rate = 50'000; // indications a second
constexpr double late_limit = 1.05;    // time until the last one is processed, by the time to send
constexpr double key_limit = 0.1;      // seconds until the list has followed a key
constexpr double memory_limit = 1.01;  // at the end, by that after warm-up
constexpr double warm_up = 0.2;        // of the run
constexpr auto key_period = std::chrono::milliseconds(150);

bool over = false;

void report(const char* what, double ratio, double limit, const std::string& detail) {
    const bool ok = ratio <= limit;
    over |= !ok;
    std::printf("bench_indications %s %.3f %.2f %s (%s)\n", what, ratio, limit, ok ? "ok" : "over",
                detail.c_str());
}

// The status for main, which ends the service.
int fail(const char* what) {
    std::fprintf(stderr, "bench_indications: %s\n", what);
    return 2;
}

double seconds_since(CLOCK::time_point start) {
    return std::chrono::duration<double>(CLOCK::now() - start).count();
}

double resident_kib() {
    std::ifstream file("/proc/self/statm");
    long total, resident;
    file >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

// Every indication on its way to the handler.
unsigned long delivered;
void (*handler)(VGA_COMPLETION*, void*);
void count_and_handle(VGA_COMPLETION* completion, void* block) {
    ++delivered;
    handler(completion, block);
}

// A row that the keys walk through.
vga_viewer_root& list() {
    return ntl_avl_first<vga_node>(gvga_system->node_tree)->links_root;
}

struct KEYS {
    std::vector<double> times;
    bool waiting = false;
    bool down = true;
    const vga_viewer* before = nullptr;
    CLOCK::time_point pressed = CLOCK::now();

    void press() {
        before = vga_viewer_get_selected_viewer(&list());
        // Down and up by turns, so that there is always a row to go to.
        const KeyCode code = XKeysymToKeycode(gvga_display, down ? XK_Down : XK_Up);
        down = !down;
        XTestFakeKeyEvent(gvga_display, code, True, CurrentTime);
        XTestFakeKeyEvent(gvga_display, code, False, CurrentTime);
        XFlush(gvga_display);
        pressed = CLOCK::now();
        waiting = true;
    }
    void step() {
        if (!waiting && CLOCK::now() - pressed > key_period) {
            press();
        } else if (waiting && vga_viewer_get_selected_viewer(&list()) != before) {
            XSync(gvga_display, False); // until it is drawn
            times.push_back(seconds_since(pressed));
            waiting = false;
        }
    }
};

void measure(kit::SERVICE& service, unsigned long seconds) {
    handler = gvga_dispatch.indication;
    gvga_dispatch.indication = count_and_handle;
    const unsigned long total = rate * seconds;
    service.control("flood " + std::to_string(rate) + " " + std::to_string(seconds));
    const auto start = CLOCK::now();
    const auto deadline = start + std::chrono::seconds(3 * seconds + 10);
    KEYS keys;
    double memory_before = 0;
    while (delivered < total && gvga_exit_code == 0 && CLOCK::now() < deadline) {
        vga_main_loop_step();
        keys.step();
        if (memory_before == 0 && seconds_since(start) > warm_up * static_cast<double>(seconds)) {
            memory_before = resident_kib();
        }
    }
    const double took = seconds_since(start);
    const double memory_after = resident_kib();
    gvga_dispatch.indication = handler;

    char detail[100];
    std::snprintf(detail, sizeof detail, "%.0f a second", static_cast<double>(delivered) / took);
    report("keeps_up", took / static_cast<double>(seconds), late_limit, detail);
    std::snprintf(detail, sizeof detail, "%lu of %lu processed", delivered, total);
    report("sent_by_processed",
           static_cast<double>(total) / static_cast<double>(std::max(delivered, 1ul)), 1, detail);
    if (keys.times.empty() || keys.waiting) {
        keys.times.push_back(seconds_since(keys.pressed));
    }
    std::ranges::sort(keys.times);
    std::snprintf(detail, sizeof detail, "slowest of %zu, median %.1f ms", keys.times.size(),
                  1000 * keys.times[keys.times.size() / 2]);
    report("key_seconds", keys.times.back(), key_limit, detail);
    std::snprintf(detail, sizeof detail, "%.0f KiB, then %.0f KiB", memory_before, memory_after);
    report("memory", memory_after / memory_before, memory_limit, detail);
}

} // namespace

int main(int argc, char** argv) {
    const unsigned long seconds = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 10;
    kit::SERVICE service({"--generate", "lu03=9800,pu=60,ls=80,port=4,lu62=100"});
    for (int i = 0; i < 100; ++i) { // sessions come and go on every LU
        char command[80];
        std::snprintf(command, sizeof command, "session A%07d NET.P%d #INTER 2 NET.EN%d", i, i,
                      i % 20);
        service.control(command);
    }
    kit::CONSOLE console(service);
    if (!console.started() || !console.wait([] { return gvga_first_dialog == nullptr; }, 60'000) ||
        !console.wait_idle()) {
        return fail("the node is not built");
    }
    const std::vector<std::string> rows = kit::CONSOLE::rows(list());
    if (rows.size() < 3 || !console.click_row(list(), rows[1])) {
        return fail("no row to select");
    }
    measure(service, std::max(seconds, 1ul));
    return over ? 1 : 0;
}
