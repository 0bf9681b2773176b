#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"
#include "kit/control.h"
#include "kit/domain.h"
#include "kit/store_dump.h"

#include "store/build.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "ui/framework/widget_tree.h"
#include "ui/windows/node_window.h"
#include "ui/windows/system_window.h"

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <string_view>

// Nodes of a domain die and come back at random while windows are open on them. Some have LUs that
// a user of the domain uses, in one pool, and sessions.
namespace {

using kit::CONSOLE;
using kit::SERVICE;

constexpr int node_count = 50;
#ifdef __SANITIZE_ADDRESS__
constexpr int usual_steps = 400;
#else
constexpr int usual_steps = 2000;
#endif

// A longer course, or another one: by variables of the environment.
int setting(const char* variable, int usual) {
    const char* value = std::getenv(variable);
    return value != nullptr ? std::atoi(value) : usual;
}

std::string name_of(int number) {
    return (number < 10 ? "node0" : "node") + std::to_string(number);
}

std::vector<kit::DOMAIN_NODE> nodes() {
    std::vector<kit::DOMAIN_NODE> all;
    for (int i = 0; i < node_count; ++i) {
        all.push_back({name_of(i),
                       i % 5 == 3 ? kit::DOMAIN_NODE::STOPPED : kit::DOMAIN_NODE::ACTIVE, 1 + i % 3,
                       i % 4 == 0});
    }
    return all;
}

vga_node* node_named(const std::string& name) {
    NB_NODE_NAME key{};
    std::memcpy(key, name.data(), name.size());
    return vga_find_node(key);
}

template <typename Use> void for_each_node(Use use) {
    for (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree); node != nullptr;
         node = static_cast<vga_node*>(ntl_avl_next(&node->node))) {
        use(node);
    }
}

// The whole store, and what it knows of the domain itself.
std::string picture() {
    const kit::STORE_DUMP dump = kit::dump_store();
    for (const std::string& fault : dump.faults) {
        if (fault.find("handles are in use") == std::string::npos) { // windows have some too
            ADD_FAILURE() << fault;
        }
    }
    std::string text = dump.text;
    for_each_node([&](vga_node* node) {
        if (node->node_handle != 0 && node->node_handle == gvga_system->central_logger_handle) {
            text += std::string("logger ") + node->node_name + '\n';
        }
    });
    text += std::string("server ") + gvga_system->local_server + '\n';
    for (auto* name = ntl_avl_first<vga_sna_net_node>(gvga_system->sna_net_tree); name != nullptr;
         name = static_cast<vga_sna_net_node*>(ntl_avl_next(&name->node))) {
        text += std::string(name->node_name) + '\n';
    }
    return text;
}

class Churn : public testing::TestWithParam<unsigned> {
protected:
    SERVICE service{kit::domain_options(nodes(), {name_of(4), name_of(7)}, name_of(6))};
    kit::CONTROL hand{service.socket()};
    CONSOLE console{service};
    std::mt19937 random{GetParam() + static_cast<unsigned>(setting("TESSALY_CHURN_SEED", 0))};
    std::vector<bool> up = std::vector<bool>(node_count, true);

    int pick(int count) { return std::uniform_int_distribution(0, count - 1)(random); }
    void control(const std::string& command) {
        int status;
        const std::string text = hand.run(command, &status);
        EXPECT_EQ(status, 0) << command << ": " << text;
    }
    // Until nothing is under way any more. What the service has sent by an answer has arrived by
    // the next one, so that there is no need to wait for what may come.
    bool rest() {
        const auto idle = [] {
            XSync(gvga_display, False);
            return XtAppPending(gvga_appcontext) == 0 && nba_q_empty(&gvga_nof_queue) &&
                   nba_q_empty(&gvga_immediate_nof_queue);
        };
        do {
            if (!console.wait(idle)) {
                return false;
            }
            control("count dlc");
        } while (!idle());
        return true;
    }

    void step() {
        const int number = pick(node_count);
        const std::string name = name_of(number);
        if (!up[static_cast<std::size_t>(number)]) {
            control("server " + name + " up");
        } else if (pick(2) == 0) {
            control("server " + name + " down");
        } else {
            control("kill-node " + name);
        }
        up[static_cast<std::size_t>(number)].flip();
        switch (pick(4)) {
        case 0: // the next change comes while the console still deals with this one
            break;
        case 1:
            if (vga_node* node = node_named(name_of(pick(node_count)))) {
                vga_display_node_window(node, true);
            }
            break;
        default:
            EXPECT_TRUE(rest());
        }
    }
    bool settle() {
        return rest() && console.wait([] {
            bool built = gvga_system->build_flags == 0;
            for_each_node([&](vga_node* node) { built &= vga_check_node_startup(node); });
            return built && nba_q_empty(&gvga_nof_queue);
        }) && rest();
    }
    // The list, the menus and the windows speak of the nodes that are there and of no others.
    void check_windows() {
        std::size_t present = 0;
        std::size_t windows = 0;
        for_each_node([&](vga_node* node) {
            ++present;
            windows += node->gui_data.node_window != nullptr;
        });
        EXPECT_EQ(CONSOLE::rows(gvga_system->node_viewer_root).size(), present);
        const auto* window =
            reinterpret_cast<vga_system_window*>(gvga_system->gui_data.system_window);
        std::size_t entries = 0;
        vga_for_each_child(window->window_menu, [&](Widget child) {
            entries += XtIsManaged(child) && std::string_view(XtName(child)) == "NodeItem";
        });
        EXPECT_EQ(entries, present);
        std::size_t open = 0;
        vga_for_each_open_dialog([&](const vga_dialog* dialog) {
            if (dialog->dialog_id == VGA_UID_NODE_WINDOW) {
                ++open;
                const auto* node = static_cast<vga_node*>(dialog->parent_item);
                EXPECT_EQ(node->gui_data.node_window, dialog);
            }
        });
        EXPECT_EQ(open, windows);
    }
    void churn(int steps) {
        for (int i = 0; i < steps; ++i) {
            step();
            ASSERT_EQ(gvga_exit_code, 0) << "step " << i;
            if (i % 20 == 19) {
                ASSERT_TRUE(settle()) << "step " << i;
                // One message for each node that died.
                vga_drop_messages(gvga_system->gui_data.system_window);
                check_windows();
            }
        }
    }
    void raise(int number) {
        if (!up[static_cast<std::size_t>(number)]) {
            control("server " + name_of(number) + " up");
            up[static_cast<std::size_t>(number)] = true;
        }
    }
    // What a console that starts now would show.
    std::string fresh_picture() {
        vga_system* const live = gvga_system;
        gvga_system = vga_init_vga_system();
        vga_start_build_system();
        EXPECT_TRUE(settle());
        const std::string text = picture();
        vga_destroy_data_structures();
        gvga_system = live;
        return text;
    }
};

TEST_P(Churn, TheStoreEndsAsAFreshOne) {
    ASSERT_TRUE(console.started() && console.wait_built());
    const std::string at_first = picture();
    ASSERT_NE(at_first.find("sessions=20\n"), std::string::npos) << "ann uses LUs of ten nodes";
    churn(setting("TESSALY_CHURN_STEPS", usual_steps));
    for (int i = 0; i < node_count; ++i) {
        raise(i);
    }
    ASSERT_TRUE(settle());
    EXPECT_EQ(kit::difference(at_first, picture()), "");
    check_windows();
    churn(40);
    raise(0); // without the local server there is no configuration to compare
    raise(6); // and without the logger a store keeps what it knew of the log
    ASSERT_TRUE(settle());
    const std::string live = picture();
    EXPECT_EQ(kit::difference(fresh_picture(), live),
              ""); // last: its registrations take the place of the console's
    EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
}

INSTANTIATE_TEST_SUITE_P(Seeds, Churn, testing::Values(1u, 2u));

} // namespace
