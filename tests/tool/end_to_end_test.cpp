#include "tool/fixture.h"

#include "common/alloc.h"

namespace {

using kit::CONSOLE;
using kit::SERVICE;

std::size_t count_containing(const std::vector<std::string>& rows, const std::string& part) {
    return static_cast<std::size_t>(std::ranges::count_if(
        rows, [&](const std::string& row) { return row.find(part) != std::string::npos; }));
}

TEST(EndToEnd, TheNodeIsBuiltShownAndLeftInOrder) {
    SERVICE service;
    CONSOLE console(service);
    ASSERT_TRUE(console.started());
    EXPECT_FALSE(XtIsSensitive(gvga_main_dialog->widget))
        << "nothing to work on while the node loads";
    ASSERT_TRUE(console.wait_built());
    auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree);
    const auto links = CONSOLE::rows(node->links_root);
    EXPECT_GE(links.size(), 15u);
    EXPECT_GE(count_containing(links, "Active"), 5u);
    EXPECT_TRUE(std::ranges::none_of(links, &std::string::empty));
    EXPECT_GE(CONSOLE::rows(node->links_root, true).size(), 55u)
        << "with the LUs below the link stations";
    EXPECT_GE(CONSOLE::rows(node->lus_root).size(), 6u);
    EXPECT_GE(CONSOLE::rows(node->rem_sys_root).size(), 4u);

    // The pane shows what the node has: one link station row for every link station.
    const std::string listed = service.control("list ls");
    const auto stations = static_cast<std::size_t>(std::ranges::count(listed, '\n'));
    std::size_t shown = 0;
    for (auto* ls = ntl_avl_first<vga_ls>(node->ls_tree); ls != nullptr;
         ls = static_cast<vga_ls*>(ntl_avl_next(&ls->node))) {
        shown += AVL_IN_TREE(ls->viewer.node);
    }
    EXPECT_EQ(shown, stations);

    EXPECT_TRUE(XtIsSensitive(gvga_main_dialog->widget));
    ASSERT_TRUE(
        console.click_row(node->links_root, CONSOLE::rows(node->links_root)[1].substr(2, 4)));
    EXPECT_EQ(node->links_root.select_count, 1);

    // Closing asks first; Cancel keeps everything, Yes ends the run.
    vga_check_exit_ok();
    ASSERT_TRUE(console.wait_idle());
    EXPECT_NE(CONSOLE::message(), "");
    ASSERT_TRUE(console.answer("Cancel"));
    EXPECT_EQ(gvga_exit_code, 0);
    EXPECT_EQ(CONSOLE::message(), "");
    vga_check_exit_ok();
    ASSERT_TRUE(console.wait_idle());
    ASSERT_TRUE(console.answer("OK"));
    console.wait([] { return gvga_exit_code != 0; });
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_ORDERLY);
    EXPECT_EQ(console.end(), 0);
    EXPECT_EQ(vga_allocations_in_use(), 0u);
    EXPECT_EQ(nba_handle_count(), 0u);
    EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
    EXPECT_NE(service.control("journal").find("NAP_DISCONNECT_NODE"), std::string::npos);
}

TEST(EndToEnd, AReaderIsToldThatChangesAreNotForHim) {
    SERVICE service;
    service.control("read-only on");
    CONSOLE console(service);
    ASSERT_TRUE(console.started() && console.wait_built());
    EXPECT_EQ(gvga_read_only, 1);
    EXPECT_NE(CONSOLE::message(), "");
}

} // namespace
