// Link stations, PUs and the LUs below them: names that clash, and the order of rows.
#include "fixture.h"

#include <algorithm>

namespace store_test {
namespace {

using Connectivity = Store;

TEST_F(Connectivity, ALinkStationListedAgainAddsOrDropsItsPu) {
    add_port("ETH0");
    const vga_ls* station = add_ls(ls("LS1", "ETH0"));
    EXPECT_EQ(station->pu_entry, nullptr);
    add_ls(ls("LS1", "ETH0", "PU1"));
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", " LS1+"}));
    add_lu03(lu03("LU2", "PU1", 2));
    add_ls(ls("LS1", "ETH0", "", "DSPU"));
    EXPECT_EQ(station->pu_entry->kind, VGA_PU_DOWNSTREAM);
    EXPECT_EQ(count(node->local_pu_tree) + count(gvga_system->lu_tree), 0u);
    add_ls(ls("LS1", "ETH0"));
    EXPECT_EQ(station->pu_entry, nullptr);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", " LS1"}));
}

TEST_F(Connectivity, APuThatComesUnderALinkStationBringsItsLusAlong) {
    add_port("ETH0");
    vga_pu* unlinked = add_down_pu(pu("DSPU", "LS2", NAP_PU_CONCENTRATION)); // not listed yet
    add_down_lu(down_lu("D1", 1), unlinked);
    add_ls(ls("LS2", "ETH0", "", "DSPU"));
    add_down_lu(down_lu("D2", 2), unlinked);
    add_ls(ls("LS1", "ETH0", "PU1"));
    add_lu03(lu03("LU1", "PU1", 1));
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", " LS1+", "  LU1", " LS2+", "  D1", "  D2"}));
    add_ls(ls("LS0", "ETH0", "PU1")); // listed before LS1, which loses it
    add_ls(ls("LS1", "ETH0"));
    EXPECT_EQ(rows(node->links_root),
              (Rows{"ETH0", " LS0+", "  LU1", " LS1", " LS2+", "  D1", "  D2"}));
}

TEST_F(Connectivity, DlurPusShareTheFakePortBehindTheRealOnes) {
    vga_pu* second = add_pu(pu("PUB", "", NAP_DLUR_ATTACHED));
    ASSERT_NE(vga_get_primary_line_fake_port(node), nullptr);
    add_port("ETH1");
    vga_pu* first = add_pu(pu("PUA", "", NAP_DLUR_ATTACHED));
    add_port("ETH0");
    add_pu(pu("PUX", "", NAP_DIRECT_ATTACHED)); // known, but not shown
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", "ETH1", "DLUR", " PUA", " PUB", "LINES"}));
    EXPECT_TRUE(vga_is_fake_port(node->dlur_fake_port));
    EXPECT_TRUE(node->dlur_fake_port->viewer.expanded);
    vga_delete_vga_local_pu(first, true);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", "ETH1", "DLUR", " PUB", "LINES"}));
    vga_delete_vga_local_pu(second, true);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", "ETH1", "LINES"}));
    EXPECT_EQ(node->dlur_fake_port, nullptr);
}

TEST_F(Connectivity, ClashesAreLoggedAndLeaveTheEarlierLu) {
    add_port("ETH0");
    add_ls(ls("LS1", "ETH0", "PU1"));
    add_ls(ls("LS2", "ETH0", "PU2"));
    vga_lu03* first = add_lu03(lu03("LU1", "PU1", 2));
    testing::internal::CaptureStderr();
    EXPECT_EQ(add_lu03(lu03("LU2", "PU1", 2)), nullptr);
    EXPECT_EQ(add_lu03(lu03("LU1", "PU2", 3)), nullptr);
    EXPECT_EQ(add_lu62(lu62("LU3", "A3", 5, "NOPU")), nullptr);
    EXPECT_EQ(add_lu62(lu62("LU1", "A1", 5, "PU1")), nullptr);
    EXPECT_EQ(add_lu62(lu62("LU4", "A4", 2, "PU1")), nullptr);
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 5) << log;
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", " LS1+", "  LU1", " LS2+"}));
    EXPECT_EQ(count(gvga_system->lu_tree), 1u);
    EXPECT_EQ(count(node->lu62_tree), 0u);
    EXPECT_EQ(first->vcb.def_data.nau_address, 2);
}

TEST_F(Connectivity, LusStandInNauOrderAndMoveWithTheirAddress) {
    add_port("ETH0");
    add_ls(ls("LS1", "ETH0", "PU1"));
    vga_lu03* lu = add_lu03(lu03("C", "PU1", 2));
    add_lu03(lu03("A", "PU1", 9));
    add_lu62(lu62("B", "ALIASB", 4, "PU1"));
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", " LS1+", "  C", "  B", "  A"}));
    EXPECT_EQ(rows(node->lus_root), Rows{}) << "a dependent LU is no independent one";
    lu->vcb.det_data.appl_conn_active = NAP_YES;
    LU03_ENTRY again = lu03("C", "PU1", 7);
    std::strcpy(again.def_data.description, "moved");
    EXPECT_EQ(add_lu03(again), lu);
    EXPECT_EQ(lu->vcb.det_data.appl_conn_active, NAP_YES);
    EXPECT_STREQ(lu->vcb.def_data.description, "moved");
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", " LS1+", "  B", "  C", "  A"}));
    EXPECT_EQ(count(lu->parent->nau_tree), 3u);
}

TEST_F(Connectivity, TheSameLuNameMayLiveOnTwoNodes) {
    vga_node* first = node;
    for (vga_node* owner : {first, add_node("NODE2")}) {
        node = owner;
        add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
        EXPECT_NE(add_lu03(lu03("LU1", "PU1", 2)), nullptr);
    }
    EXPECT_EQ(count(gvga_system->lu_tree), 2u);
    vga_do_free_node_res(node, true, nullptr);
    EXPECT_EQ(count(gvga_system->lu_tree), 1u);
    EXPECT_EQ(rows(gvga_system->node_viewer_root), Rows{"NODE1"});
}

TEST_F(Connectivity, TheProposedPuNameCountsDownUntilItIsFree) {
    NB_NAME8E name;
    NB_NAME8L station;
    put(station, "LS1");
    const auto propose = [&] {
        vga_ls_to_pu_name(name, station, nullptr, node);
        return get(name);
    };
    for (const char* expected : {"LS1", "LS100000", "LS10000Z", "LS10000Y"}) {
        EXPECT_EQ(propose(), expected);
        add_pu(pu(expected, "", NAP_DLUR_ATTACHED));
    }
    add_port("ETH0");
    vga_ls* own = add_ls(ls("LSX", "ETH0", "LSX"));
    put(station, "LSX");
    vga_ls_to_pu_name(name, station, own, node);
    EXPECT_EQ(get(name), "LSX") << "its own PU may keep the name";
}

} // namespace
} // namespace store_test
