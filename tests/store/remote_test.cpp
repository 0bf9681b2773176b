// Local LUs 6.2, modes, the directory, remote systems, and the counts of sessions.
#include "fixture.h"

#include "store/build.h"

#include <map>
#include <random>

namespace store_test {
namespace {

using Rows = std::vector<std::string>;

struct Remote : Store {
    // Hands a page of mode entries over as the answer of a query.
    void list_modes(vga_lu62* lu, std::vector<MODE_ENTRY> entries) {
        QUERY_MODE block{};
        block.list.header.opcode = NAP_QUERY_MODE;
        block.list.buffer = entries.data();
        block.list.buffer_size = static_cast<NB_ULONG>(entries.size() * sizeof(MODE_ENTRY));
        block.list.num_entries = block.list.total_entries = static_cast<NB_USHORT>(entries.size());
        vga_mode* last;
        ASSERT_TRUE(vga_process_query_mode(lu, &block, &last));
    }
    void add_directory(const DIRECTORY_ENTRY& e) {
        vga_rem_sys* owner = nullptr;
        ASSERT_TRUE(vga_add_directory_to_remote(node, &e, &owner));
    }
    void add_definition(const PLU_DEF_ENTRY& e) {
        ASSERT_NE(vga_add_plu_definition(node, &e), nullptr);
    }
};

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

TEST_F(Remote, AnLuInsertedAgainChangesItsAliasAndItsPlace) {
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    vga_lu62* lu = add_lu62(lu62("LU1", "OLD"));
    add_lu62(lu62("LU0", "ZERO"));
    EXPECT_EQ(add_lu62(lu62("LU1", "NEW", 5, "PU1")), lu);
    NB_NAME8L alias;
    put(alias, "NEW");
    EXPECT_EQ(ntl_avl_find(&node->lu62_alias_tree, alias), lu);
    put(alias, "OLD");
    EXPECT_EQ(ntl_avl_find(&node->lu62_alias_tree, alias), nullptr);
    EXPECT_EQ(rows(node->lus_root), Rows{"LU0"});
    EXPECT_EQ(rows(node->links_root), (Rows{"DLUR", " PU1", "  LU1"}));
    add_lu62(lu62("LU1", "NEW"));
    EXPECT_EQ(rows(node->lus_root), (Rows{"LU0", "LU1"}));
    EXPECT_EQ(rows(node->links_root), (Rows{"DLUR", " PU1"}));
}

TEST_F(Remote, ModesStandBehindThoseOfThePartnersBefore) {
    vga_lu62* lu = add_lu62(lu62("LU1", "A1"));
    EXPECT_EQ(vga_last_lu62_mode(lu), nullptr);
    list_modes(lu, {mode("#INTER", "NET.C", 1)});
    list_modes(lu, {mode("#INTER", "NET.A", 2), mode("#BATCH", "NET.A", 1)});
    list_modes(lu, {mode("#INTER", "NET.B", 0)});
    EXPECT_EQ(rows(node->lus_root),
              (Rows{"LU1", " NET.A/#BATCH", " NET.A/#INTER", " NET.B/#INTER", " NET.C/#INTER"}));
    EXPECT_EQ(lu->act_sess_count, 4);
    EXPECT_EQ(get(vga_last_lu62_mode(lu)->parent->vcb.plu_name), "NET.C");
    list_modes(lu, {mode("#INTER", "NET.A", 5)});
    EXPECT_EQ(lu->act_sess_count, 7);
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    vga_lu62* dependent = add_lu62(lu62("LU2", "A2", 3, "PU1"));
    list_modes(dependent, {mode("#INTER", "NET.A", 0), mode("#BATCH", "NET.A", 1)});
    EXPECT_EQ(dependent->act_sess_count, 1);
    EXPECT_EQ(count(dependent->plu_tree), 1u);
    EXPECT_EQ(rows(node->links_root), (Rows{"DLUR", " PU1", "  LU2"})) << "its modes have no rows";
}

TEST_F(Remote, DirectoryEntriesMakeRemoteSystemsAndPartners) {
    const NB_USHORT end_node = NAP_END_NODE_CP_RESOURCE;
    add_directory(directory("NET.CP", end_node, 3)); // the node itself
    add_directory(directory("NET.OWN", NAP_LU_RESOURCE, 3, "NET.CP", end_node));
    add_directory(directory("NET.NN", NAP_NETWORK_NODE_CP_RESOURCE, 3));
    add_directory(directory("NET.EN", end_node, 3));
    add_directory(directory("NET.LEARNT", end_node, 1));
    add_directory(directory("NET.LU2", NAP_LU_RESOURCE, 3, "NET.EN", end_node));
    add_directory(directory("NET.LU*", NAP_WILDCARD_LU_RESOURCE, 3, "NET.EN", end_node));
    add_directory(directory("NET.LOST", NAP_LU_RESOURCE, 3, "NET.NOWHERE", end_node));
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.EN", " NET.LU*", " NET.LU2"}));
    auto* system = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree);
    EXPECT_EQ(ntl_avl_first<vga_rem_plu>(system->remote_plu_tree)->viewer.type,
              VGA_VIEWER_REM_PLU_NO_SESS);
    EXPECT_EQ(ntl_avl_last<vga_rem_plu>(system->remote_plu_tree)->viewer.type, VGA_VIEWER_REM_PLU);
}

// Definition and location of a partner may come in either order.
TEST_F(Remote, ADefinitionWaitsUnderTheFakeSystemUntilThePartnerIsLocated) {
    for (const bool definition_first : {true, false}) {
        const PLU_DEF_ENTRY definition = plu_def("NET.LU2", "ALIAS");
        if (definition_first) {
            add_definition(definition);
            EXPECT_EQ(rows(node->rem_sys_root), (Rows{"", " NET.LU2"}));
        }
        vga_rem_sys* system = add_rem_sys("NET.EN");
        add_directory(directory("NET.LU2", NAP_LU_RESOURCE, 3, "NET.EN", 244));
        if (!definition_first) {
            add_definition(definition);
        }
        EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.EN", " NET.LU2"}));
        EXPECT_EQ(node->network_fake_rem_sys, nullptr);
        auto* partner = ntl_avl_first<vga_rem_plu>(system->remote_plu_tree);
        EXPECT_EQ(get(partner->defn.def.plu_alias), "ALIAS");
        vga_delete_vga_rem_sys(system, true, false, true);
        EXPECT_EQ(rows(node->rem_sys_root), (Rows{"", " NET.LU2"})) << "the definition is left";
        auto* left = ntl_avl_first<vga_rem_plu>(node->network_fake_rem_sys->remote_plu_tree);
        EXPECT_EQ(get(left->defn.def.plu_alias), "ALIAS");
        vga_delete_vga_rem_plu(left, true, false, false, true);
        EXPECT_EQ(rows(node->rem_sys_root), Rows{});
    }
}

TEST_F(Remote, ASecondDefinitionOfARemoteSystemDoesNotReplaceTheFirst) {
    DIRECTORY_ENTRY first = directory("NET.EN", NAP_END_NODE_CP_RESOURCE, 3);
    DIRECTORY_ENTRY second = first;
    std::strcpy(first.description, "first");
    std::strcpy(second.description, "second");
    vga_rem_sys* system = vga_insert_vga_rem_sys(
        vga_init_vga_rem_sys(node, first.resource_name, false, nullptr), node);
    system->check_mark = 1;
    add_directory(first);
    EXPECT_EQ(system->defined, 1);
    EXPECT_EQ(system->check_mark, 0);
    add_directory(second);
    EXPECT_STREQ(system->vcb.description, "first");
}

TEST_F(Remote, SessionsMakeAndDropRemoteSystemsAndPartners) {
    vga_lu62* lu = add_lu62(lu62("LU1", "A1"));
    list_modes(lu, {mode("#INTER", "NET.P", 2, "NET.EN"), mode("#BATCH", "NET.P", 1, "NET.EN"),
                    mode("#INTER", "NET.Q", 0, "NET.EN"), mode("#INTER", "NET.R", 1, "NET.CP"),
                    mode("#INTER", "NET.S", 1)});
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.EN", " NET.P", "  LU1/#BATCH", "  LU1/#INTER"}));
    auto* system = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree);
    EXPECT_EQ(system->session_count, 3);
    list_modes(lu, {mode("#BATCH", "NET.P", 0, "NET.EN")});
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.EN", " NET.P", "  LU1/#INTER"}));
    EXPECT_EQ(system->session_count, 2);
    add_directory(directory("NET.EN", NAP_END_NODE_CP_RESOURCE, 3));
    list_modes(lu, {mode("#INTER", "NET.P", 0, "NET.EN")});
    EXPECT_EQ(rows(node->rem_sys_root), Rows{"NET.EN"}) << "it is defined";
    vga_delete_vga_rem_sys(system, true, false, true);
    EXPECT_EQ(rows(node->rem_sys_root), Rows{});
}

TEST_F(Remote, RemovingALocalLuEndsItsSessionsEverywhere) {
    vga_lu62* lu = add_lu62(lu62("LU1", "A1"));
    vga_lu62* other = add_lu62(lu62("LU2", "A2"));
    for (vga_lu62* local : {lu, other}) {
        list_modes(local, {mode("#INTER", "NET.P", 2, "NET.EN1")});
    }
    list_modes(lu, {mode("#INTER", "NET.Q", 1, "NET.EN1"), mode("#BATCH", "NET.R", 1, "NET.EN2")});
    vga_delete_vga_lu62(lu, true);
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.EN1", " NET.P", "  LU2/#INTER"}));
    EXPECT_EQ(ntl_avl_first<vga_rem_sys>(node->rem_sys_tree)->session_count, 2);
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

// Counts at every level equal the sum of what lies below, whatever comes in whatever order.
TEST_F(Remote, CountsStayTrueOverRandomChanges) {
    std::mt19937 random(7);
    const auto pick = [&](int n) { return std::to_string(random() % n); };
    std::map<std::string, vga_lu62*> locals;
    for (int step = 0; step < 4000; ++step) {
        const std::string name = "LU" + pick(3);
        switch (random() % 12) {
        case 0:
            add_directory(directory("NET.EN" + pick(3), NAP_END_NODE_CP_RESOURCE, 3));
            break;
        case 1:
            add_directory(
                directory("NET.P" + pick(5), NAP_LU_RESOURCE, 3, "NET.EN" + pick(3), 244));
            break;
        case 2:
            add_definition(plu_def("NET.P" + pick(5), "A"));
            break;
        case 3:
            if (auto* system = ntl_avl_last<vga_rem_sys>(node->rem_sys_tree); system != nullptr) {
                vga_delete_vga_rem_sys(system, true, false, true);
            }
            break;
        case 4:
            if (locals.count(name) != 0 && random() % 4 == 0) {
                vga_delete_vga_lu62(locals[name], true);
                locals.erase(name);
            }
            break;
        default: {
            vga_lu62*& lu = locals[name];
            lu = lu != nullptr ? lu : add_lu62(lu62(name, "A" + name));
            const std::string partner = pick(5);
            list_modes(lu, {mode("#M" + pick(2), "NET.P" + partner, random() % 3,
                                 "NET.EN" + std::to_string(partner[0] % 3))});
        }
        }
        for (auto* system = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree); system != nullptr;
             system = static_cast<vga_rem_sys*>(ntl_avl_next(&system->node))) {
            NB_LONG of_partners = 0;
            for (auto* partner = ntl_avl_first<vga_rem_plu>(system->remote_plu_tree);
                 partner != nullptr;
                 partner = static_cast<vga_rem_plu*>(ntl_avl_next(&partner->node))) {
                NB_LONG of_sessions = 0;
                for (auto* sess = ntl_avl_first<vga_rem_sess>(partner->sess_tree); sess != nullptr;
                     sess = static_cast<vga_rem_sess*>(ntl_avl_next(&sess->node))) {
                    ASSERT_GT(sess->session_count, 0);
                    of_sessions += sess->session_count;
                }
                ASSERT_EQ(partner->session_count, of_sessions) << "step " << step;
                ASSERT_TRUE(partner->located || partner->plu_defn || of_sessions > 0);
                of_partners += of_sessions;
            }
            ASSERT_EQ(system->session_count, of_partners) << "step " << step;
            ASSERT_TRUE(system->defined || of_partners > 0);
        }
        if (node->network_fake_rem_sys != nullptr) {
            ASSERT_GT(count(node->network_fake_rem_sys->remote_plu_tree), 0u);
        }
    }
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
    auto own = entry<MODE_DEF_ENTRY>();
    put(own.mode_name, "#INTER");
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
    ASSERT_TRUE(vga_init_sna_cos(node));
    ASSERT_TRUE(vga_init_sna_cos(node));
    EXPECT_EQ(count(node->cos_tree), 7u);
}

} // namespace
} // namespace store_test
