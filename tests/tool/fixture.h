// A console on a simulated node, and what the tests of its windows do with it.
#pragma once

#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"
#include "kit/control.h"
#include "kit/pointer.h"

#include "common/names.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "store/store.h"
#include "ui/framework/dialog.h"

#include <Xm/XmAll.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace tool {

using kit::CONSOLE;
using kit::SERVICE;

class Tool : public testing::Test {
protected:
    // options: of the simulated node; none: the example domain.
    explicit Tool(const std::vector<std::string>& options = {}) : service(options) {}

    SERVICE service;
    CONSOLE console{service};
    vga_node* node = nullptr; // the first

    void SetUp() override {
        ASSERT_TRUE(console.started() && console.wait_built());
        node = ntl_avl_first<vga_node>(gvga_system->node_tree);
        // Help for a domain that is not configured lies over its window.
        if (vga_dialog* help = vga_open_instance(VGA_UID_START_HELP_DIALOG)) {
            vga_close_children(help, true, true);
            console.wait_idle();
        }
        service.control("journal clear");
    }
    void TearDown() override {
        EXPECT_EQ(gvga_exit_code, 0);
        EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
    }

    bool wait(const std::function<bool()>& condition) { return console.wait(condition, 5000); }
    // The same, and then until nothing happens any more.
    bool comes_true(const std::function<bool()>& condition) {
        return wait(condition) && console.wait_idle();
    }

    // ---- the store ----

    template <typename Record> static Record* find(const NTL_AVL_TREE& tree, const char* name) {
        char local[sizeof(NB_NAME8L) + 1];
        std::snprintf(local, sizeof local, "%-8s", name);
        return static_cast<Record*>(ntl_avl_find(&tree, local));
    }
    template <typename Record>
    static Record* find_ebcdic(const NTL_AVL_TREE& tree, const char* name) {
        NB_FQNAME ebcdic; // fills the longest key
        van_ascii_to_ebcdic(ebcdic, name, sizeof ebcdic);
        return static_cast<Record*>(ntl_avl_find(&tree, ebcdic));
    }
    vga_ls* ls(const char* name) { return find<vga_ls>(node->ls_tree, name); }
    vga_port* port(const char* name) { return find<vga_port>(node->port_tree, name); }
    // Stops the node as another operator.
    void stop_node() {
        service.control("stop node");
        ASSERT_TRUE(comes_true([&] { return node->node_state == VGA_NODE_STATE_STOPPED; }));
        service.control("journal clear");
    }

    // ---- what the node has received since the journal was cleared ----

    // The verbs in order, each with a blank behind it; their names start with NAP_ and a word that
    // is left out here.
    std::string sent(const std::string& start) {
        std::string found;
        each_verb("NAP_" + start, [&](const std::string& rest) { found += rest + ' '; });
        return found;
    }
    // The same of all but queries: "START_DLC START_PORT ".
    std::string verbs() {
        std::string found;
        each_verb("NAP_", [&](const std::string& verb) {
            found += verb.starts_with("QUERY") ? "" : verb + ' ';
        });
        return found;
    }
    long count(const std::string& start) {
        long found = 0;
        each_verb(start, [&](const std::string&) { ++found; });
        return found;
    }
    bool wait_verb(const std::string& verb) {
        return wait([&] { return verbs().ends_with(verb + ' '); });
    }

    // ---- the display ----

public:
    // The first row that has a part, or "" when there is none.
    static std::string row_of(const vga_viewer_root& root, const std::string& part) {
        const auto rows = CONSOLE::rows(const_cast<vga_viewer_root&>(root), true);
        const auto row = std::ranges::find_if(
            rows, [&](const std::string& text) { return text.find(part) != std::string::npos; });
        return row != rows.end() ? *row : "";
    }
    static std::string text(Widget field) {
        char* value = XmTextGetString(field);
        const std::string result = value;
        XtFree(value);
        return result;
    }
    static std::string label(Widget widget) {
        XmString label = nullptr;
        XtVaGetValues(widget, XmNlabelString, &label, nullptr);
        auto* plain = static_cast<char*>(XmStringUnparse(label, nullptr, XmCHARSET_TEXT,
                                                         XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
        const std::string result = plain;
        XtFree(plain);
        XmStringFree(label);
        return result;
    }
    // A message as a box shows it, up to its first argument.
    static std::string start_of(int message) {
        std::string text = gvga_messages[message];
        text.resize(std::min(text.find('%'), text.size()));
        std::erase(text, '\n');
        return text;
    }

protected:
    // Until the window manager has given the keyboard to the window that a widget is in.
    bool gets_keyboard(Widget widget) {
        while (!XtIsShell(widget)) {
            widget = XtParent(widget);
        }
        return console.wait([widget] { return kit::focus_window() == XtWindow(widget); }) &&
               console.wait_idle();
    }
    // Replaces a field's text by typing.
    void type(Widget field, const std::string& value) {
        ASSERT_TRUE(gets_keyboard(field)) << XtName(field);
        ASSERT_TRUE(XmProcessTraversal(field, XmTRAVERSE_CURRENT));
        console.strike(XK_End); // from its end: a name never begins with a digit
        for (std::size_t left = text(field).size(); left > 0; --left) {
            console.strike(XK_BackSpace);
        }
        for (const char c : value) {
            console.strike(static_cast<KeySym>(static_cast<unsigned char>(c)),
                           c >= 'A' && c <= 'Z' ? ShiftMask : 0);
        }
        console.wait_idle();
        EXPECT_EQ(strcasecmp(text(field).c_str(), value.c_str()), 0) << text(field); // some upper
    }
    // The message that shows is that of a number and has a part; it is answered.
    void expect_message(int number, const std::string& part = "", const char* button = "OK") {
        EXPECT_TRUE(wait([] { return !CONSOLE::message().empty(); })) << number;
        console.wait_idle();
        const std::string shown = CONSOLE::message();
        EXPECT_TRUE(shown.starts_with(start_of(number))) << number << ": " << shown;
        EXPECT_NE(shown.find(part), std::string::npos) << number << ": " << shown;
        EXPECT_TRUE(console.answer(button)) << number;
    }

private:
    kit::CONTROL control{service.socket()};

    // Calls use with what is behind the start of each verb's name that starts so.
    template <typename Use> void each_verb(const std::string& start, Use use) {
        const std::string journal = control.run("journal");
        const std::string mark = "\"verb\":\"" + start;
        for (std::size_t at = journal.find(mark); at != std::string::npos;
             at = journal.find(mark, at + 1)) {
            const std::size_t from = at + mark.size();
            use(journal.substr(from, journal.find('"', from) - from));
        }
    }
};

} // namespace tool
