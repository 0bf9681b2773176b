#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "store/store.h"

#include <algorithm>

// The example domain fills every list of a node, and the node's panes show what belongs there.
namespace {

using kit::CONSOLE;
using kit::SERVICE;

TEST(NodeListsLive, TheExampleDomainFillsTheListsOfANode) {
    SERVICE service;
    CONSOLE console(service);
    ASSERT_TRUE(console.started() && console.wait_built());
    auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree);
    ASSERT_NE(node, nullptr);
    const struct {
        const char* name;
        const NTL_AVL_TREE& tree;
    } lists[] = {
        {"timeouts", node->lu62_timeout_tree},    {"TPs", node->tp_def_tree},
        {"load information", node->tp_load_tree}, {"templates", node->dspu_template_tree},
        {"user IDs", node->userid_tree},          {"access lists", node->access_list_tree},
        {"passwords", node->sl_sec_tree},         {"clients", node->tn_client_tree},
        {"associations", node->tn_assoc_tree},    {"redirectors", node->tn_redirect_tree},
    };
    for (const auto& list : lists) {
        EXPECT_NE(list.tree.root, nullptr) << list.name;
    }
    for (auto* dspu = ntl_avl_first<vga_dspu_template>(node->dspu_template_tree); dspu != nullptr;
         dspu = static_cast<vga_dspu_template*>(ntl_avl_next(&dspu->node))) {
        EXPECT_NE(dspu->dslu_tree.root, nullptr);
    }
    const auto routed = [&] {
        for (auto* lu = ntl_avl_first<vga_lu62>(node->lu62_tree); lu != nullptr;
             lu = static_cast<vga_lu62*>(ntl_avl_next(&lu->node))) {
            if (lu->ls_routing_tree.root != nullptr && lu->ls_r_title.child_count != 0) {
                return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(routed());
    EXPECT_EQ(gvga_exit_code, 0);
    EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
}

} // namespace
