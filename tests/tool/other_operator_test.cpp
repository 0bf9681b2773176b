#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "store/store.h"

#include <algorithm>

// What another operator defines and deletes shows in the console's panes without a query.
namespace {

using kit::CONSOLE;
using kit::SERVICE;

vga_node* node() {
    return ntl_avl_first<vga_node>(gvga_system->node_tree);
}

NB_LONG modes_shown() {
    return static_cast<NB_LONG>(node()->mode_root.top_count);
}

// Whether some row has the part.
bool shows(vga_viewer_root& root, const std::string& part) {
    const auto rows = CONSOLE::rows(root, true);
    return std::ranges::any_of(
        rows, [&](const std::string& row) { return row.find(part) != std::string::npos; });
}

class OtherOperator : public testing::Test {
protected:
    SERVICE service;
    CONSOLE console{service};

    void SetUp() override {
        ASSERT_TRUE(console.started() && console.wait_built());
        service.control("journal clear");
    }
    void TearDown() override {
        EXPECT_EQ(gvga_exit_code, 0);
        EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
        EXPECT_EQ(service.control("journal").find("\"NAP_QUERY"), std::string::npos);
    }
    void expect(const std::string& command, vga_viewer_root& root, const std::string& name,
                bool shown) {
        service.control(command);
        EXPECT_TRUE(console.wait([&] { return shows(root, name) == shown; }, 5000)) << command;
        console.wait_idle();
    }
};

TEST_F(OtherOperator, DefinesAndDeletesShowWithoutAQuery) {
    vga_viewer_root& links = node()->links_root;
    vga_viewer_root& remote = node()->rem_sys_root;
    expect("define dlc NEWDLC type=ethernet", links, "NEWDLC", false); // is no row of its own
    expect("define port NEWPORT dlc=NEWDLC", links, "NEWPORT", true);
    expect("define ls NEWLINK port=NEWPORT host_pu=true pu=NEWPU", links, "NEWLINK", true);
    expect("define lu_0_to_3 NEWLU pu=NEWPU nau=7", links, "NEWLU", true);
    expect("define local_lu NEWLOCAL alias=NEWLOCAL", node()->lus_root, "NEWLOCAL", true);
    const NB_LONG modes = modes_shown();
    service.control("define mode_definition NEWMODE");
    EXPECT_TRUE(console.wait([&] { return modes_shown() == modes + 1; }, 5000));
    expect("define directory NEWNET.NEWCP type=end-node", remote, "NEWNET.NEWCP", true);
    expect("define partner_definition NEWNET.NEWPLU", remote, "NEWNET.NEWPLU", true);

    expect("delete partner_definition NEWNET.NEWPLU", remote, "NEWNET.NEWPLU", false);
    expect("delete directory NEWNET.NEWCP", remote, "NEWNET.NEWCP", false);
    service.control("delete mode_definition NEWMODE");
    EXPECT_TRUE(console.wait([&] { return modes_shown() == modes; }, 5000));
    expect("delete local_lu NEWLOCAL", node()->lus_root, "NEWLOCAL", false);
    expect("delete lu_0_to_3 NEWLU", links, "NEWLU", false);
    expect("delete ls NEWLINK", links, "NEWLINK", false);
    expect("delete port NEWPORT", links, "NEWPORT", false);
}

TEST_F(OtherOperator, TheSelectedRowStaysSelected) {
    vga_viewer_root& links = node()->links_root;
    ASSERT_TRUE(console.click_row(links, "CLEARING"));
    console.wait_idle();
    const void* selected = vga_viewer_get_selection(&links);
    ASSERT_NE(selected, nullptr);
    expect("define ls AAALINK port=ETHPORT", links, "AAALINK", true);
    service.control("define ls CLEARING port=ETHPORT"); // once more
    console.wait_idle();
    EXPECT_EQ(vga_viewer_get_selection(&links), selected);
    expect("delete ls AAALINK", links, "AAALINK", false);
    EXPECT_EQ(vga_viewer_get_selection(&links), selected);
}

} // namespace
