#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "common/alloc.h"
#include "shell/globals.h"
#include "shell/uid_file.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "ui/viewer/viewer_type.h"

#include <algorithm>

namespace {

using kit::CONSOLE;
using kit::SERVICE;

vga_node* node() {
    return ntl_avl_first<vga_node>(gvga_system->node_tree);
}

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

    const auto links = CONSOLE::rows(node()->links_root);
    EXPECT_GE(links.size(), 15u);
    EXPECT_GE(count_containing(links, "Active"), 5u);
    EXPECT_TRUE(std::ranges::none_of(links, &std::string::empty));
    EXPECT_GE(CONSOLE::rows(node()->links_root, true).size(), 55u)
        << "with the LUs below the link stations";
    EXPECT_GE(CONSOLE::rows(node()->lus_root).size(), 6u);
    EXPECT_GE(CONSOLE::rows(node()->rem_sys_root).size(), 4u);

    // The pane shows what the node has: one link station row for every link station.
    const std::string listed = service.control("list ls");
    const auto stations = static_cast<std::size_t>(std::ranges::count(listed, '\n'));
    std::size_t shown = 0;
    for (auto* ls = ntl_avl_first<vga_ls>(node()->ls_tree); ls != nullptr;
         ls = static_cast<vga_ls*>(ntl_avl_next(&ls->node))) {
        shown += AVL_IN_TREE(ls->viewer.node);
    }
    EXPECT_EQ(shown, stations);

    EXPECT_TRUE(XtIsSensitive(gvga_main_dialog->widget));
    ASSERT_TRUE(
        console.click_row(node()->links_root, CONSOLE::rows(node()->links_root)[1].substr(2, 4)));
    EXPECT_EQ(node()->links_root.select_count, 1);

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

TEST(EndToEnd, KeysAndTheMouseMoveTheSelectionBetweenPanes) {
    SERVICE service;
    CONSOLE console(service);
    ASSERT_TRUE(console.started() && console.wait_built());
    vga_viewer_root& links = node()->links_root;
    vga_viewer_root& lus = node()->lus_root;
    ASSERT_TRUE(console.click_row(links, CONSOLE::rows(links)[0].substr(0, 4)));
    EXPECT_EQ(links.select_type, VGA_VIEWER_PORT);
    console.key(XK_Down);
    EXPECT_EQ(links.select_count, 1);
    EXPECT_NE(links.select_type, VGA_VIEWER_SELECT_NONE);
    ASSERT_TRUE(console.click_row(lus, CONSOLE::rows(lus)[0].substr(0, 4)));
    EXPECT_EQ(links.select_count, 0) << "one pane at a time holds the selection";
    EXPECT_EQ(lus.select_count, 1);
    console.key(XK_End);
    console.key(XK_Home);
    EXPECT_EQ(lus.select_count, 1);
    // A row opens and closes with plus and minus.
    ASSERT_TRUE(console.click_row(links, CONSOLE::rows(links)[0].substr(0, 4)));
    const std::size_t before = CONSOLE::rows(links).size();
    console.key(XK_minus);
    EXPECT_LT(CONSOLE::rows(links).size(), before);
    console.key(XK_plus, ShiftMask);
    EXPECT_EQ(CONSOLE::rows(links).size(), before);
    EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
}

TEST(EndToEnd, ADialogWithoutAFormIsRefusedInWords) {
    SERVICE service;
    CONSOLE console(service);
    ASSERT_TRUE(console.started() && console.wait_built());
    const MrmHierarchy forms = gvga_uid_hierarchy;
    gvga_uid_hierarchy = nullptr;
    vga_dialog* dialog = nullptr;
    EXPECT_FALSE(vga_get_dialog(VGA_UID_CPIC_DIALOG, gvga_main_dialog, nullptr, &dialog));
    gvga_uid_hierarchy = forms;
    ASSERT_TRUE(console.wait_idle());
    EXPECT_NE(CONSOLE::message(), "");
    ASSERT_TRUE(console.answer("OK"));
    EXPECT_EQ(CONSOLE::message(), "");
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
