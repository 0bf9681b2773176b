// A display, a small dialog table and its forms in place of the tool's, and an event loop with a
// deadline.
#pragma once

#include <gtest/gtest.h> // before the X headers, whose macros it does not bear

#include "kit/pointer.h"
#include "ui/framework/dialog.h"

#include <string>
#include <vector>

// What the dialogs of the table did, in order: "close lu62d", "refuse sysw forced", ...
extern std::vector<std::string> test_log;
extern bool test_refuse_close; // lu62d's close procedure
extern bool test_find_widgets; // get-widgets functions find what they look for

class FrameworkTest : public testing::Test {
protected:
    static void SetUpTestSuite();
    void SetUp() override;
    void TearDown() override;

    // Until nothing happens any more: the server has seen every request and no timer is due.
    static void settle();

    static vga_dialog* get(NB_USHORT id, vga_dialog* parent);
    static vga_dialog* show(NB_USHORT id, vga_dialog* parent);

    // Real input, at the middle of a widget or at the keyboard focus.
    static void move_to(Widget widget);
    static void press(Widget widget);
    static void release();
    static void click(Widget widget);
    static void key(KeySym symbol);

    // Text of the dialog's box; "" while none shows. Line ends do not count.
    static std::string message_of(const vga_dialog* dialog);
    static std::string text_of(int message); // the same of a catalogue message
    static std::string label_of(Widget widget);

    vga_dialog* main_window = nullptr; // shown before each test
};
