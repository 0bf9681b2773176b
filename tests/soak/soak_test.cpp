// The whole program for a while: the node changes by itself and by another operator's hand, and
// somebody presses keys and buttons at random in whatever window shows. Some seconds, or as many
// minutes as TESSALY_SOAK_MINUTES says.
#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"
#include "kit/store_dump.h"

#include "shell/globals.h"
#include "shell/messages.h"
#include "shell/verb_queue.h"
#include "store/records.h"
#include "ui/framework/dialog.h"

#include <X11/extensions/XTest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <unistd.h>

namespace {

using CLOCK = std::chrono::steady_clock;
using kit::CONSOLE;
using kit::SERVICE;

constexpr std::chrono::seconds usual{6};
constexpr int steps_between_changes = 20; // a command of another operator is a process of its own
constexpr double memory_limit = 1.25;     // of the second half, by its beginning

double resident_kib() {
    std::ifstream file("/proc/self/statm");
    long total, resident;
    file >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

std::chrono::seconds length_of_run() {
    const char* minutes = std::getenv("TESSALY_SOAK_MINUTES");
    return minutes != nullptr ? std::chrono::seconds(60 * std::atol(minutes)) : usual;
}

// What another operator does; each command may fail, since others were there before.
const char* const changes[] = {
    "define lu_0_to_3 SOAK01 pu=HOSTA address=200",
    "delete lu_0_to_3 SOAK01",
    "define tp SOAKTP",
    "delete tp SOAKTP",
    "define user soaker",
    "define user_session DISP1 user=soaker type=3270 lu=CORE01",
    "delete user soaker",
    "stop ls HOSTA",
    "start ls HOSTA",
    "stop port ETHPORT",
    "start port ETHPORT",
    "state ls CLEARING failed",
    "state ls CLEARING active",
    "use CORE01 user anna",
    "use CORE01 none",
    "flood 3000 1",
    "define cpic SOAKDEST tp=PAYPOST mode=#INTER",
    "delete cpic SOAKDEST",
};

// Keys that move, select, open, answer and close. Escape comes often, so that dialogs do not stay.
constexpr KeySym keys[] = {
    XK_Down,  XK_Up,    XK_Next,   XK_Prior,  XK_Home,   XK_End,    XK_Right,  XK_Left, XK_Tab,
    XK_Tab,   XK_space, XK_Return, XK_Escape, XK_Escape, XK_Escape, XK_F1,     XK_F10,  XK_plus,
    XK_minus, XK_a,     XK_m,      XK_s,      XK_1,      XK_Insert, XK_Delete, XK_Menu,
};

class Soak : public testing::Test {
protected:
    SERVICE service{{"--domain", TESSALY_SOURCE_DIR "/data/domains/demo.toml", "--lively"}};
    CONSOLE console{service};
    std::minstd_rand dice{static_cast<unsigned>(
        std::getenv("TESSALY_SOAK_SEED") ? std::atol(std::getenv("TESSALY_SOAK_SEED")) : 1)};

    void press_key() {
        const KeySym key = keys[dice() % std::size(keys)];
        const KeyCode code = XKeysymToKeycode(gvga_display, key);
        // Shift and Escape open the window manager's menu, whose Move takes the server to itself.
        const bool shift = dice() % 8 == 0 && key != XK_Escape;
        const KeyCode modifier = XKeysymToKeycode(gvga_display, XK_Shift_L);
        if (shift) {
            XTestFakeKeyEvent(gvga_display, modifier, True, CurrentTime);
        }
        XTestFakeKeyEvent(gvga_display, code, True, CurrentTime);
        XTestFakeKeyEvent(gvga_display, code, False, CurrentTime);
        if (shift) {
            XTestFakeKeyEvent(gvga_display, modifier, False, CurrentTime);
        }
    }
    // Somewhere in a window that shows, where another one may lie above it.
    void press_button() {
        std::vector<Widget> windows;
        for (NBA_QUEUE& head : gvga_uid_instances) {
            for (NBA_QUEUE* link = head.next; link != nullptr && link->owner != nullptr;
                 link = link->next) {
                const auto* dialog = static_cast<vga_dialog*>(link->owner);
                if (dialog->open) {
                    windows.push_back(dialog->widget);
                }
            }
        }
        if (windows.empty()) {
            return;
        }
        const Widget window = windows[dice() % windows.size()];
        Dimension width = 1, height = 1;
        Position x, y;
        XtVaGetValues(window, XmNwidth, &width, XmNheight, &height, nullptr);
        XtTranslateCoords(window, static_cast<Position>(dice() % width),
                          static_cast<Position>(dice() % height), &x, &y);
        XTestFakeMotionEvent(gvga_display, -1, x, y, CurrentTime);
        for (auto presses = 1 + dice() % 2; presses > 0; --presses) {
            XTestFakeButtonEvent(gvga_display, 1, True, CurrentTime);
            XTestFakeButtonEvent(gvga_display, 1, False, CurrentTime);
        }
    }
    // The question whether to end the program is answered with no.
    void stay() {
        for (int tries = 0; tries < 3 && CONSOLE::message() == gvga_messages[205]; ++tries) {
            console.answer("Cancel");
        }
    }
    void change() {
        std::vector<std::string> words{kit::program("tessaly-simctl"), "--socket",
                                       service.socket()};
        std::istringstream text(changes[dice() % std::size(changes)]);
        for (std::string word; text >> word;) {
            words.push_back(word);
        }
        kit::run(words);
    }
};

TEST_F(Soak, NothingBreaksAndNothingGrows) {
    ASSERT_TRUE(console.started() && console.wait_built());
    // A button pressed on a frame lets the window manager take the server to itself until the
    // release, which comes from here.
    XTestGrabControl(gvga_display, True);
    const auto length = length_of_run();
    const auto start = CLOCK::now();
    double memory_before = 0;
    long steps = 0;
    while (CLOCK::now() - start < length) {
        if (++steps % steps_between_changes == 0) {
            change();
        }
        if (dice() % 3 == 0) {
            press_button();
        } else {
            press_key();
        }
        console.wait([] { return false; }, 15);
        stay();
        ASSERT_EQ(gvga_exit_code, 0)
            << "after " << steps << " steps: subcode " << gvga_exit_subcode;
        if (memory_before == 0 && CLOCK::now() - start > length / 2) {
            memory_before = resident_kib();
        }
    }
    EXPECT_TRUE(console.wait([] { return nba_q_empty(&gvga_nof_queue); }));
    EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
    for (const std::string& fault : kit::dump_store().faults) {
        if (fault.find("handles are in use") == std::string::npos) { // windows have some too
            ADD_FAILURE() << fault;
        }
    }
    const double memory_after = resident_kib();
    std::printf("%ld steps, %.0f KiB, then %.0f KiB\n", steps, memory_before, memory_after);
#ifndef __SANITIZE_ADDRESS__ // which keeps what is freed for a while, and looks for leaks itself
    if (length > usual) {    // in a short one each window opens for the first time
        EXPECT_LT(memory_after, memory_limit * memory_before);
    }
#endif
}

} // namespace
