// DLCs, ports, link stations, PUs and the LUs below them: merging, clashes, and the order of rows.
#include "fixture.h"

#include <algorithm>
#include <random>

namespace store_test {
namespace {

using Connectivity = Store;
using Rows = std::vector<std::string>;

TEST_F(Connectivity, APortInsertedAgainTakesTheDefinitionAndKeepsItsStatus) {
    vga_port* first = add_port("ETH0");
    first->vcb->state = NOF_STATE_ACTIVE;
    PORT_ENTRY again = port("ETH0", "ETH0");
    again.def.max_btu = 1500;
    again.state = NOF_STATE_INACTIVE;
    vga_port* second = vga_insert_vga_port(vga_init_vga_port(first->parent, &again), first->parent);
    EXPECT_EQ(second, first);
    EXPECT_EQ(first->vcb->state, NOF_STATE_ACTIVE);
    EXPECT_EQ(first->vcb->def.max_btu, 1500);
    EXPECT_EQ(ntl_avl_find(&node->port_tree, again.port_name), first);
    EXPECT_EQ(rows(node->links_root), Rows{"ETH0"});
}

TEST_F(Connectivity, ALinkStationMergesWhateverPortItNames) {
    add_port("ETH0");
    add_port("ETH1");
    vga_ls* first = add_ls(ls("LS1", "ETH0"));
    first->vcb->det.state = NOF_STATE_ACTIVE;
    first->restart_check = 1;
    LS_ENTRY again = ls("LS1", "ETH1");
    again.det.activation_flags = NOF_LS_INCOMING;
    again.def.tg_number = 7;
    EXPECT_EQ(add_ls(again), first);
    EXPECT_EQ(first->vcb->det.state, NOF_STATE_ACTIVE);
    EXPECT_EQ(first->vcb->det.activation_flags, NOF_LS_INCOMING);
    EXPECT_EQ(first->vcb->def.tg_number, 7);
    EXPECT_EQ(first->restart_check, 0);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", "ETH1", " LS1"}));
}

TEST_F(Connectivity, ARedefinitionAddsOrDropsThePuOfALinkStation) {
    add_port("ETH0");
    vga_ls* station = add_ls(ls("LS1", "ETH0"));
    EXPECT_EQ(station->pu_entry, nullptr);
    add_ls(ls("LS1", "ETH0", "PU1"));
    ASSERT_NE(station->pu_entry, nullptr);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", " LS1+"}));
    add_lu03(lu03("LU2", "PU1", 2));
    add_ls(ls("LS1", "ETH0", "", "DSPU"));
    EXPECT_EQ(station->pu_entry->kind, VGA_PU_DOWNSTREAM);
    EXPECT_EQ(count(node->local_pu_tree), 0u);
    EXPECT_EQ(count(gvga_system->lu_tree), 0u);
    add_ls(ls("LS1", "ETH0"));
    EXPECT_EQ(station->pu_entry, nullptr);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", " LS1"}));
}

TEST_F(Connectivity, TheFullPuEntryMergesIntoThatOfTheLinkStation) {
    add_port("ETH0");
    add_ls(ls("LS1", "ETH0", "PU1"));
    auto* made = static_cast<vga_pu*>(node->local_pu_tree.first->self);
    made->vcb.conventional_lu_compression = 5;
    PU_ENTRY full = pu("PU1", "LS1");
    full.state = 1;
    full.conventional_lu_compression = 9;
    EXPECT_EQ(add_pu(full), made);
    EXPECT_EQ(made->vcb.state, 1);
    EXPECT_EQ(made->vcb.conventional_lu_compression, 5);
    add_ls(ls("LS1", "ETH0", "PU1")); // which tells less, and takes nothing away
    EXPECT_EQ(made->vcb.state, 1);
}

TEST_F(Connectivity, APuWhoseLinkStationIsMissingIsNotKept) {
    EXPECT_EQ(add_pu(pu("PU1", "LS1")), nullptr);
    EXPECT_EQ(count(node->local_pu_tree), 0u);
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

TEST_F(Connectivity, DependentLusStandInNauOrderUnderTheLinkStation) {
    add_port("ETH0");
    add_ls(ls("LS1", "ETH0", "PU1"));
    add_lu03(lu03("C", "PU1", 2));
    add_lu03(lu03("A", "PU1", 9));
    add_lu62(lu62("B", "ALIASB", 4, "PU1"));
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", " LS1+", "  C", "  B", "  A"}));
    EXPECT_EQ(count(node->lu62_tree), 1u);
    EXPECT_EQ(rows(node->lus_root), Rows{}) << "a dependent LU is no independent one";
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

TEST_F(Connectivity, AnLuInsertedAgainKeepsItsStatusAndMovesWithItsNauAddress) {
    add_port("ETH0");
    add_ls(ls("LS1", "ETH0", "PU1"));
    vga_lu03* lu = add_lu03(lu03("LU1", "PU1", 2));
    add_lu03(lu03("LU2", "PU1", 3));
    lu->vcb.det_data.appl_conn_active = NAP_YES;
    LU03_ENTRY again = lu03("LU1", "PU1", 7);
    std::strcpy(again.def_data.description, "moved");
    EXPECT_EQ(add_lu03(again), lu);
    EXPECT_EQ(lu->vcb.det_data.appl_conn_active, NAP_YES);
    EXPECT_STREQ(lu->vcb.def_data.description, "moved");
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", " LS1+", "  LU2", "  LU1"}));
    auto* owner = lu->parent;
    EXPECT_EQ(count(owner->nau_tree), 2u);
}

TEST_F(Connectivity, TheSameLuNameMayLiveOnTwoNodes) {
    vga_node* other = add_node("NODE2");
    for (vga_node* owner : {node, other}) {
        const PU_ENTRY e = pu("PU1", "", NAP_DLUR_ATTACHED);
        vga_pu* parent = vga_insert_vga_local_pu(vga_init_vga_local_pu(owner, &e), owner);
        const LU03_ENTRY l = lu03("LU1", "PU1", 2);
        EXPECT_NE(vga_insert_vga_lu03(vga_init_vga_lu03(parent, &l), parent), nullptr);
    }
    EXPECT_EQ(count(gvga_system->lu_tree), 2u);
    vga_do_free_node_res(other, true, nullptr);
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

TEST_F(Connectivity, RemovalTakesEverythingBelowAlong) {
    add_port("ETH0");
    vga_port* other = add_port("ETH1");
    add_ls(ls("LS1", "ETH0", "PU1"));
    add_ls(ls("LS2", "ETH0", "", "DSPU"));
    vga_lu03* lu = add_lu03(lu03("LU1", "PU1", 2));
    vga_lu62* dependent = add_lu62(lu62("LU2", "A2", 3, "PU1"));
    auto* down = static_cast<vga_pu*>(node->down_pu_tree.first->self);
    const DOWN_LU_ENTRY e = down_lu("DLU1", 1);
    vga_insert_vga_down_lu(vga_init_vga_down_lu(down, &e), down);
    const NB_HANDLE handles[] = {lu->handle, dependent->handle, down->handle};
    vga_delete_vga_dlc(static_cast<vga_dlc*>(node->dlc_tree.first->self), true);
    EXPECT_EQ(rows(node->links_root), Rows{"ETH1"});
    for (const NTL_AVL_TREE* tree : {&node->ls_tree, &node->local_pu_tree, &node->down_pu_tree,
                                     &node->lu62_tree, &gvga_system->lu_tree}) {
        EXPECT_EQ(count(*tree), 0u);
    }
    for (const NB_HANDLE handle : handles) {
        EXPECT_EQ(nba_validate_handle(handle), nullptr);
    }
    EXPECT_EQ(nba_validate_handle(other->handle), other);
}

// Whatever the order of arrival, the same rows stand in the same order.
TEST_F(Connectivity, RowsDoNotDependOnTheOrderOfArrival) {
    std::vector<std::string> expected;
    for (unsigned seed = 0; seed < 40; ++seed) {
        vga_node* fresh = add_node("N" + std::to_string(seed));
        vga_node* const kept = node;
        node = fresh;
        std::mt19937 random(seed);
        const auto shuffled = [&](int number) {
            std::vector<int> order(number);
            for (int i = 0; i < number; ++i) {
                order[i] = i;
            }
            std::shuffle(order.begin(), order.end(), random);
            return order;
        };
        for (int i : shuffled(4)) {
            add_port("PORT" + std::to_string(i));
        }
        for (int i : shuffled(24)) {
            const std::string number = std::to_string(i);
            add_ls(ls("LS" + number, "PORT" + std::to_string(i % 4), i % 3 ? "PU" + number : ""));
        }
        for (int i : shuffled(5)) {
            add_pu(pu("DLUR" + std::to_string(i), "", NAP_DLUR_ATTACHED));
        }
        for (int i : shuffled(200)) {
            const std::string owner =
                i % 8 == 0 ? "DLUR" + std::to_string(i % 5) : "PU" + std::to_string(i % 8);
            if (i % 8 % 3 == 0 && i % 8 != 0) {
                continue; // that link station has no PU
            }
            const std::string number = std::to_string(i);
            if (i % 10 == 7) {
                add_lu62(lu62("D" + number, "A" + number, NB_BYTE(i + 1), owner));
            } else {
                add_lu03(lu03("LU" + number, owner, NB_BYTE(i + 1)));
            }
        }
        for (int i : shuffled(9)) {
            add_lu62(lu62("I" + std::to_string(i), "IA" + std::to_string(i)));
        }
        std::vector<std::string> seen = rows(node->links_root);
        const std::vector<std::string> lus = rows(node->lus_root);
        EXPECT_EQ(lus.size(), 9u);
        seen.insert(seen.end(), lus.begin(), lus.end());
        if (seed == 0) {
            expected = seen;
        }
        EXPECT_EQ(seen, expected) << "seed " << seed;
        for (const NTL_AVL_TREE* tree :
             {&node->port_tree, &node->ls_tree, &node->local_pu_tree, &node->lu62_tree,
              &node->lu62_alias_tree, &gvga_system->lu_tree}) {
            EXPECT_GT(count(*tree), 0u);
        }
        for (auto* owner = ntl_avl_first<vga_pu>(node->local_pu_tree); owner != nullptr;
             owner = static_cast<vga_pu*>(ntl_avl_next(&owner->node))) {
            EXPECT_EQ(count(owner->lu_tree), count(owner->nau_tree));
        }
        vga_do_free_node_res(fresh, true, nullptr);
        node = kept;
    }
}

} // namespace
} // namespace store_test
