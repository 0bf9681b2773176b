// A console on the example domain whose node stops and starts things.
#pragma once

#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "common/names.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "verbs/manage.h"

#include <cstring>
#include <string>
#include <vector>

namespace start_stop {

using kit::CONSOLE;
using kit::SERVICE;

class StartStop : public testing::Test {
protected:
    SERVICE service;
    CONSOLE console{service};
    vga_node* node = nullptr;

    void SetUp() override {
        ASSERT_TRUE(console.started() && console.wait_built());
        node = ntl_avl_first<vga_node>(gvga_system->node_tree);
        service.control("journal clear");
    }
    void TearDown() override {
        EXPECT_EQ(gvga_exit_code, 0);
        EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
    }

    template <typename Record> Record* find(const NTL_AVL_TREE& tree, const char* name) {
        char local[9] = "        ";
        std::memcpy(local, name, std::strlen(name));
        return static_cast<Record*>(ntl_avl_find(&tree, local));
    }
    template <typename Record> Record* find_ebcdic(const NTL_AVL_TREE& tree, const char* name) {
        NB_NAME8E ebcdic;
        van_ascii_to_ebcdic(ebcdic, name, sizeof ebcdic);
        return static_cast<Record*>(ntl_avl_find(&tree, ebcdic));
    }
    vga_ls* ls(const char* name) { return find<vga_ls>(node->ls_tree, name); }
    vga_port* port(const char* name) { return find<vga_port>(node->port_tree, name); }

    // The start and stop verbs that the node has received, in order.
    std::vector<std::string> verbs() {
        const std::string journal = service.control("journal");
        std::vector<std::string> found;
        const std::string mark = "\"verb\":\"NAP_";
        for (std::size_t at = journal.find(mark); at != std::string::npos;
             at = journal.find(mark, at + 1)) {
            const std::size_t from = at + mark.size();
            const std::string verb = journal.substr(from, journal.find('"', from) - from);
            if (verb.find("QUERY") == std::string::npos) {
                found.push_back(verb);
            }
        }
        return found;
    }
    bool wait(const std::function<bool()>& condition) { return console.wait(condition, 5000); }
    bool wait_verb(const std::string& verb) {
        return wait([&] {
            const auto sent = verbs();
            return !sent.empty() && sent.back() == verb;
        });
    }
    void stop_node() {
        service.control("stop node");
        ASSERT_TRUE(wait([&] { return node->node_state == VGA_NODE_STATE_STOPPED; }));
        ASSERT_TRUE(console.wait_idle());
        service.control("journal clear");
    }
    // Answers the message box once the window manager has placed it.
    bool answer(const std::string& button) {
        const auto place = [] {
            Position x = 0;
            Position y = 0;
            vga_for_each_open_dialog([&](const vga_dialog* dialog) {
                if (dialog->modal_dlg.open) {
                    XtTranslateCoords(dialog->modal_dlg.dialog, 0, 0, &x, &y);
                }
            });
            return std::pair(x, y);
        };
        auto before = place();
        do {
            before = place();
            console.wait_idle();
            service.control("idle"); // a round trip in which the window manager may move it
            console.wait_idle();
        } while (place() != before);
        return console.answer(button);
    }
    static std::string text(int message) { return gvga_messages[message]; }
};

using Verbs = std::vector<std::string>;

} // namespace start_stop
