// The LU and the sessions of the control point, the directory, modes and classes of service.
#include "fixture.h"

#include "store/build.h"

namespace store_test {
namespace {

using Remote = Store;

TEST_F(Remote, TheControlPointLuIsMadeOnceAndGivesWayToTheListedOne) {
    ASSERT_TRUE(vga_create_fake_cp_lu(node));
    vga_lu62* fake = node->cp_lu;
    ASSERT_NE(fake, nullptr);
    EXPECT_STREQ(fake->vcb.def.description, "the node's own LU");
    ASSERT_TRUE(vga_create_fake_cp_lu(node));
    EXPECT_EQ(count(node->lu62_tree), 1u);
    LU62_ENTRY listed = lu62("CP", "CP");
    std::strcpy(listed.def.description, "described");
    EXPECT_EQ(add_lu62(listed), fake);
    EXPECT_EQ(node->cp_lu, fake);
    EXPECT_STREQ(fake->vcb.def.description, "described");
    add_lu62(lu62("CP2", "CP"));
    EXPECT_EQ(node->cp_lu, fake) << "the alias alone does not make it";
    vga_delete_vga_lu62(fake, true);
    EXPECT_EQ(node->cp_lu, nullptr);
}

TEST_F(Remote, ASecondDefinitionOfARemoteSystemDoesNotReplaceTheFirst) {
    DIRECTORY_ENTRY first = directory("NET.EN", NAP_END_NODE_CP_RESOURCE, 3);
    DIRECTORY_ENTRY second = first;
    std::strcpy(first.description, "first");
    std::strcpy(second.description, "second");
    vga_rem_sys* system = vga_insert_vga_rem_sys(
        vga_init_vga_rem_sys(node, first.resource_name, false, nullptr), node);
    system->check_mark = 1;
    vga_rem_sys* owner = nullptr;
    ASSERT_TRUE(vga_add_directory_to_remote(node, &first, &owner));
    EXPECT_EQ(system->defined, 1);
    EXPECT_EQ(system->check_mark, 0);
    ASSERT_TRUE(vga_add_directory_to_remote(node, &second, &owner));
    EXPECT_STREQ(system->vcb.description, "first");
}

TEST_F(Remote, ControlPointSessionsAreThoseOfTheOwnLuOnTheirMode) {
    ASSERT_TRUE(vga_create_fake_cp_lu(node));
    vga_lu62* other = add_lu62(lu62("LU1", "A1"));
    list_modes(other, {mode("CPSVCMG", "NET.EN", 1, "NET.EN")});
    auto* system = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree);
    EXPECT_FALSE(vga_check_cp_sess(system));
    list_modes(node->cp_lu, {mode("#INTER", "NET.EN", 1, "NET.EN")});
    EXPECT_FALSE(vga_check_cp_sess(system));
    list_modes(node->cp_lu, {mode("CPSVCMG", "NET.EN", 2, "NET.EN")});
    EXPECT_TRUE(vga_check_cp_sess(system));
}

TEST_F(Remote, TheDirectoryKeepsItsHierarchyAndPrefersDefinedEntries) {
    const auto insert = [&](const DIRECTORY_ENTRY& e) {
        vga_dir* network_node;
        vga_dir* end_node;
        NTL_AVL_TREE* tree;
        EXPECT_TRUE(vga_find_directory_insert_pos(node, &e, &network_node, &end_node, &tree));
        vga_dir* owner = end_node != nullptr ? end_node : network_node;
        vga_dir* placed = vga_insert_vga_dir(vga_init_vga_dir(node, &e), owner);
        EXPECT_EQ(placed->parent_tree, tree);
        return placed;
    };
    const NB_USHORT nn = NAP_NETWORK_NODE_CP_RESOURCE;
    const NB_USHORT en = NAP_END_NODE_CP_RESOURCE;
    vga_dir* server = insert(directory("NET.NN", nn, 1));
    vga_dir* served = insert(directory("NET.EN", en, 2, "NET.NN", nn));
    insert(directory("NET.LU1", NAP_LU_RESOURCE, 2, "NET.EN", en));
    insert(directory("NET.LU2", NAP_LU_RESOURCE, 2, "NET.NN", nn));
    vga_dir* alone = insert(directory("NET.ALONE", en, 2));
    EXPECT_EQ(count(node->dir_server_tree), 2u);
    EXPECT_EQ(count(server->end_node_tree), 1u);
    EXPECT_EQ(count(server->lu_tree), 1u);

    vga_dir* network_node;
    vga_dir* end_node;
    NTL_AVL_TREE* tree;
    const DIRECTORY_ENTRY lost = directory("NET.X", NAP_LU_RESOURCE, 2, "NET.NOWHERE", en);
    EXPECT_FALSE(vga_find_directory_insert_pos(node, &lost, &network_node, &end_node, &tree));
    vga_dir* found;
    ASSERT_TRUE(vga_find_directory_entry(node, served->vcb.resource_name, en, &found, &tree));
    EXPECT_EQ(found, served);
    EXPECT_EQ(tree, &server->end_node_tree);

    vga_dir* defined = insert(directory("NET.EN", en, 3, "NET.NN", nn));
    EXPECT_NE(defined, served);
    EXPECT_EQ(count(node->dir_tree), 4u) << "the LU below the old entry went with it";
    EXPECT_EQ(insert(directory("NET.EN", en, 2, "NET.NN", nn)), defined);
    EXPECT_EQ(defined->vcb.entry_type, NOF_DIRECTORY_DEFINED);
    EXPECT_EQ(insert(directory("NET.ALONE", en, 1)), alone);
    EXPECT_EQ(alone->vcb.entry_type, NOF_DIRECTORY_CACHED);
    vga_delete_vga_dir(server, true);
    EXPECT_EQ(count(node->dir_tree), 1u);
}

TEST_F(Remote, TheModesAndClassesOfTheArchitectureYieldToTheNodesOwn) {
    auto own = entry(&MODE_DEF_ENTRY::mode_name, "#INTER");
    std::strcpy(own.def.description, "ours");
    vga_mode_def* inter = vga_insert_vga_mode_def(vga_init_vga_mode_def(node, &own), node);
    ASSERT_TRUE(vga_init_sna_modes(node));
    EXPECT_EQ(count(node->mode_def_tree), 13u);
    EXPECT_EQ(rows(node->mode_root).size(), 13u);
    EXPECT_STREQ(inter->vcb.def.description, "ours");
    EXPECT_EQ(inter->sna_defined, 0);
    put(own.mode_name, "#BATCH");
    vga_mode_def* batch = vga_insert_vga_mode_def(vga_init_vga_mode_def(node, &own), node);
    EXPECT_EQ(batch->sna_defined, 0) << "listed by the node after all";
    own.def.description[0] = '\0';
    EXPECT_EQ(vga_insert_vga_mode_def(vga_init_vga_mode_def(node, &own), node), batch);
    EXPECT_STREQ(batch->vcb.def.description, "SNA mode");
    ASSERT_TRUE(vga_init_sna_cos(node));
    ASSERT_TRUE(vga_init_sna_cos(node));
    EXPECT_EQ(count(node->cos_tree), 7u);
}

} // namespace
} // namespace store_test
