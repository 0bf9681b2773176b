#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"
#include "kit/domain.h"

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

// Nodes of a domain die and come back at random while windows are open on them.
namespace {

using kit::CONSOLE;
using kit::SERVICE;

constexpr int node_count = 50;

std::string name_of(int number) {
    return (number < 10 ? "node0" : "node") + std::to_string(number);
}

std::vector<kit::DOMAIN_NODE> nodes() {
    std::vector<kit::DOMAIN_NODE> all;
    for (int i = 0; i < node_count; ++i) {
        all.push_back({name_of(i),
                       i % 5 == 3 ? kit::DOMAIN_NODE::STOPPED : kit::DOMAIN_NODE::ACTIVE,
                       1 + i % 3});
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

// Everything that a user sees of the domain.
std::string picture() {
    std::string text;
    const auto add = [&](const std::vector<std::string>& rows) {
        for (const std::string& row : rows) {
            text += row + '\n';
        }
    };
    add(CONSOLE::rows(gvga_system->node_viewer_root));
    for_each_node([&](vga_node* node) {
        text += std::string("-- ") + node->node_name + '\n';
        for (vga_viewer_root* root : {&node->links_root, &node->lus_root, &node->rem_sys_root}) {
            add(CONSOLE::rows(*root, true));
        }
        if (node->node_handle != 0 && node->node_handle == gvga_system->central_logger_handle) {
            text += "logger\n";
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
    CONSOLE console{service};
    std::mt19937 random{GetParam()};
    std::vector<bool> up = std::vector<bool>(node_count, true);

    int pick(int count) { return std::uniform_int_distribution(0, count - 1)(random); }

    void step() {
        const int number = pick(node_count);
        const std::string name = name_of(number);
        if (!up[static_cast<std::size_t>(number)]) {
            service.control("server " + name + " up");
        } else if (pick(2) == 0) {
            service.control("server " + name + " down");
        } else {
            service.control("kill-node " + name);
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
            console.wait_idle();
        }
    }
    bool settle() {
        console.wait_idle();
        return console.wait([] {
            bool built = gvga_system->build_flags == 0;
            for_each_node([&](vga_node* node) { built &= vga_check_node_startup(node); });
            return built && nba_q_empty(&gvga_nof_queue);
        }) && console.wait_idle();
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
            service.control("server " + name_of(number) + " up");
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
    const char* steps = std::getenv("TESSALY_CHURN_STEPS");
    churn(steps != nullptr ? std::atoi(steps) : 300);
    for (int i = 0; i < node_count; ++i) {
        raise(i);
    }
    ASSERT_TRUE(settle());
    EXPECT_EQ(picture(), at_first);
    check_windows();
    churn(40);
    raise(0); // without the local server there is no configuration to compare
    ASSERT_TRUE(settle());
    const std::string live = picture();
    EXPECT_EQ(live, fresh_picture()); // last: its registrations take the place of the console's
    EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
}

INSTANTIATE_TEST_SUITE_P(Seeds, Churn, testing::Values(1u, 2u));

} // namespace
