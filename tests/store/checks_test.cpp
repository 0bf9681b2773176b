// The checks against a scripted node whose lists differ from the store.
#include "scripted_node.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "store/checks.h"
#include "verbs/status.h"

#include <numeric>

namespace store_test {
namespace {

struct Checks : Store {
    Checks() {
        node->node_handle = FIRST_NODE_HANDLE;
        node->node_state = VGA_NODE_STATE_ACTIVE;
        node->build_flags = 0;
        node->built = 1;
        gvga_querybuf_size = 4096;
    }
    NB_ULONG running() const {
        return std::accumulate(std::begin(node->checks_running), std::end(node->checks_running),
                               NB_ULONG{0});
    }
    void expect_ended() {
        EXPECT_EQ(gvga_exit_code, 0) << std::hex << gvga_exit_subcode;
        EXPECT_EQ(running(), 0u);
    }
    ScriptedNode script;
};

TEST_F(Checks, APageThatCannotBeSentEndsTheProgram) {
    vga_lu62* lu = add_lu62(lu62("APPL", "APPL"));
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    const std::function<void()> starts[] = {
        [&] { vga_start_check_port(node); }, [&] { vga_start_check_ls(node); },
        [&] { vga_start_check_lu03(node); }, [&] { vga_start_check_dir(node); },
        [&] { vga_start_check_lu62(lu); },
    };
    for (const auto& start : starts) {
        for (int at = 1; at <= 3; ++at) { // block, buffer, place in the queue
            gvga_exit_code = 0;
            const std::size_t before = vga_allocations_in_use();
            vga_fail_allocation(at);
            start();
            vga_fail_allocation(0);
            EXPECT_EQ(gvga_exit_code, VGA_EXIT_INTERNAL);
            EXPECT_EQ(vga_allocations_in_use(), before);
            EXPECT_EQ(running(), 0u);
            EXPECT_EQ(lu->checking, 0);
        }
    }
}

TEST_F(Checks, WhatAGoneNodeOrRecordAnswersHasNoEffect) {
    add_port("ETH0");
    add_ls(ls("A", "ETH0"));
    vga_lu62* lu = add_lu62(lu62("APPL", "APPL"));
    list_modes(lu, {mode("#INTER", "NET.P", 1)});
    script.codes[NAP_QUERY_LS] = script.codes[NAP_QUERY_PARTNER_LU] =
        script.codes[NAP_QUERY_LU_0_TO_3] = {NAP_UNSUCCESSFUL, NAP_TARGET_GONE};
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    vga_start_check_ls(node);
    vga_start_check_lu62(lu);
    vga_start_check_lu03(node);
    vga_start_check_lu03(node); // waits
    script.run();
    EXPECT_EQ(script.journal.size(), 3u);
    EXPECT_EQ(count(node->ls_tree), 1u);
    EXPECT_EQ(count(lu->plu_tree), 1u) << "nothing is known of them";
    EXPECT_EQ(lu->checking, VGA_LU62_UNCHECKED);
    expect_ended();

    script.codes.clear();
    vga_start_check_lu62(lu);
    vga_delete_vga_lu62(lu, true);
    vga_start_check_lu03(node);
    vga_delete_vga_local_pu(ntl_avl_first<vga_pu>(node->local_pu_tree), true);
    script.run();
    EXPECT_EQ(script.journal.size(), 5u);
    expect_ended();
}

// Of the kinds that only have states to compare.
TEST_F(Checks, StatesAreRefreshedOverSeveralPages) {
    add_dlc(dlc("OWNER"));
    const Rows names = {"R1", "R2", "R3", "R4", "R5"};
    for (const std::string& name : names) {
        PORT_ENTRY p = port(name, "OWNER");
        auto* owner = ntl_avl_first<vga_dlc>(node->dlc_tree);
        vga_insert_vga_port(vga_init_vga_port(owner, &p), owner);
        p.state = NOF_STATE_START_PENDING;
        p.def.max_btu = 9;
        script.has(NAP_QUERY_PORT, p);
        PU_ENTRY u = pu(name, "", NAP_DLUR_ATTACHED);
        add_pu(u)->start_pending = 1;
        u.dlur_status = NOF_DLUR_PENDING_RETRY;
        script.has(NAP_QUERY_DLUR_PU, u);
    }
    vga_start_check_port(node);
    vga_start_check_dlur_pu(node);
    script.run();
    expect_ended();
    EXPECT_EQ(script.sent(NAP_QUERY_PORT), 3u);
    for (const auto* p : all<vga_port>(node->port_tree)) {
        EXPECT_EQ(p->vcb->state, NOF_STATE_START_PENDING) << get(p->vcb->port_name);
        EXPECT_EQ(p->vcb->def.max_btu, 0) << "a check leaves definitions alone";
    }
    for (const auto* u : all<vga_pu>(node->local_pu_tree)) {
        EXPECT_EQ(u->vcb.dlur_status, NOF_DLUR_PENDING_RETRY) << get(u->vcb.pu_name);
        EXPECT_EQ(u->start_pending, 0) << "as by the indication that was lost";
    }
}

TEST_F(Checks, AFailedListRemovesNothing) {
    gvga_supported[VGA_SUPPORT_DIRECTORY] = 1;
    add_rem_sys("NET.EN");
    script.codes[NAP_QUERY_DIRECTORY_ENTRY] = {NAP_STATE_CHECK, 1};
    vga_start_check_dir(node);
    script.run();
    expect_ended();
    EXPECT_EQ(count(node->rem_sys_tree), 1u);
    add_port("ETH0");
    add_ls(ls("A", "ETH0", "A"));
    script.codes[NAP_QUERY_LS] = {NAP_STATE_CHECK, 1};
    vga_start_check_ls(node);
    script.run();
    expect_ended();
    EXPECT_EQ(count(node->ls_tree), 1u);
    script.codes[NAP_QUERY_LS] = {NAP_NO_ENTRIES, 0};
    vga_start_check_ls(node);
    script.run();
    expect_ended();
    EXPECT_EQ(count(node->ls_tree), 0u);
}

// ---- link stations ----

struct LinkStations : Checks {
    LinkStations() {
        add_port("ETH0");
        for (const char* name : {"A", "B", "C", "D"}) {
            add_ls(ls(name, "ETH0", name));
            add_lu03(lu03("LU" + std::string(name), name, 2));
        }
    }
    void listed(std::initializer_list<const char*> names) {
        for (const char* name : names) {
            LS_ENTRY e = ls(name, "ETH0", name);
            e.det.state = NOF_STATE_ACTIVE;
            script.has(NAP_QUERY_LS, e);
        }
    }
    NB_BYTE state(const char* name) {
        return named<vga_ls, NB_NAME8L>(node->ls_tree, name)->vcb->det.state;
    }
};

TEST_F(LinkStations, OneThatVanishedGoesAndNewOnesDoNotEndTheList) {
    listed({"0", "1", "A", "C", "D"});
    vga_start_check_ls(node);
    EXPECT_EQ(script.journal.front().list_options, NAP_FIRST_IN_LIST | NAP_LEVEL_SUMMARY);
    script.run();
    expect_ended();
    EXPECT_EQ(rows(node->links_root),
              (Rows{"ETH0", " A+", "  LUA", " C+", "  LUC", " D+", "  LUD"}));
    EXPECT_EQ(count(node->local_pu_tree), 3u);
    EXPECT_EQ(count(gvga_system->lu_tree), 3u);
    EXPECT_EQ(state("D"), NOF_STATE_ACTIVE);
}

TEST_F(LinkStations, OneThatIsIndicatedBehindItsPageStays) {
    listed({"A", "C", "D"});
    vga_start_check_ls(node);
    script.run(1);
    LS_INDICATION ind{};
    put(ind.ls_name, "B");
    ind.new_state = NOF_LS_ACTIVATED;
    vga_process_ls_ind(node, &ind);
    script.run();
    expect_ended();
    EXPECT_EQ(count(node->ls_tree), 4u);
}

TEST_F(LinkStations, ASecondStartDropsThePagesOfTheFirst) {
    listed({"A", "B", "C", "D"});
    vga_start_check_ls(node);
    script.run(1); // its second page is on the way, which would end the list with C and D
    vga_start_check_ls(node);
    EXPECT_EQ(running(), 1u);
    EXPECT_EQ(script.journal.size(), 2u) << "waits until the dropped one has come back";
    script.run();
    expect_ended();
    EXPECT_EQ(count(node->ls_tree), 4u);
    EXPECT_EQ(script.sent(NAP_QUERY_LS), 4u);
}

TEST_F(LinkStations, TheListOfTheBuildBeginsAnewAfterwards) {
    listed({"A", "B", "D", "E"});
    node->build_flags = vga_flag(VGA_NODE_LSS) | vga_flag(VGA_NODE_USERIDS);
    ASSERT_TRUE(vga_issue_query_ls(node, nullptr, nullptr, 0, 0, vga_build_node));
    vga_start_check_ls(node);
    script.run(1);
    vga_start_check_ls(node);
    script.run(7);
    EXPECT_EQ(node->build_flags, vga_flag(VGA_NODE_USERIDS));
    EXPECT_EQ(script.sent(NAP_QUERY_PU), 1u) << "the build goes on, once";
    EXPECT_EQ(rows(node->links_root),
              (Rows{"ETH0", " A+", "  LUA", " B+", "  LUB", " D+", "  LUD", " E+"}));
    expect_ended();
}

// ---- LUs 0 to 3, downstream LUs ----

struct Lus : Checks {
    Lus() {
        for (const char* name : {"PU1", "PU2"}) {
            add_pu(pu(name, "", NAP_DLUR_ATTACHED));
        }
        for (NB_BYTE nau = 1; nau <= 5; ++nau) {
            has("A" + std::to_string(nau), "PU1", nau);
        }
        has("B1", "PU2", 1);
    }
    void has(const std::string& name, const char* pu_name, NB_BYTE nau) {
        LU03_ENTRY e = lu03(name, pu_name, nau);
        add_lu03(e);
        e.det_data.appl_conn_active = NAP_YES;
        e.def_data.lu_model = NOF_LU_PRINTER;
        script.has(NAP_QUERY_LU_0_TO_3, e, pu_name);
    }
    std::size_t in_use() {
        std::size_t found = 0;
        for (const auto* lu : all<vga_lu03>(gvga_system->lu_tree)) {
            found += lu->vcb.det_data.appl_conn_active;
            EXPECT_EQ(lu->vcb.def_data.lu_model, 0) << "a check leaves definitions alone";
        }
        return found;
    }
};

TEST_F(Lus, ABurstOfStartsLeadsToOnePassAfterTheLast) {
    add_lu62(lu62("DEP", "DEP", 9, "PU1")); // shares the tree of the PU
    for (int i = 0; i < 3; ++i) {
        vga_start_check_lu03(node);
    }
    EXPECT_EQ(running(), 1u);
    EXPECT_EQ(script.journal.size(), 1u);
    script.run(1);
    EXPECT_EQ(in_use(), 0u) << "the first reply is older than the last start";
    script.run();
    expect_ended();
    EXPECT_EQ(script.sent(NAP_QUERY_LU_0_TO_3), 1u + 4u);
    EXPECT_EQ(in_use(), 6u);

    script.journal.clear();
    vga_start_check_lu03(node);
    script.run(2);
    vga_start_check_lu03(node);
    vga_start_check_lu03(node);
    script.run();
    expect_ended();
    EXPECT_EQ(script.sent(NAP_QUERY_LU_0_TO_3), 3u + 4u);
}

TEST_F(Lus, APromisedPassOutlivesThePuThatWasListed) {
    vga_start_check_lu03(node);
    vga_start_check_lu03(node);
    vga_delete_vga_local_pu(ntl_avl_first<vga_pu>(node->local_pu_tree), true);
    script.run();
    expect_ended();
    EXPECT_EQ(in_use(), 1u) << "that of PU2";
}

TEST_F(Checks, NewDownstreamLusAreAddedToAPuFromATemplate) {
    vga_pu* pus[] = {add_down_pu(pu("DEFINED", "", 1)), add_down_pu(pu("TEMPLATE", "", 2))};
    for (vga_pu* owner : pus) {
        for (NB_BYTE nau = 1; nau <= 3; ++nau) {
            DOWN_LU_ENTRY e = down_lu("T" + std::to_string(nau), nau);
            if (nau == 2) {
                add_down_lu(e, owner);
            }
            e.lu_active = 1;
            script.has(NAP_QUERY_DOWNSTREAM_LU, e, get(owner->vcb.pu_name));
        }
    }
    vga_start_check_down_lu(node);
    script.run();
    expect_ended();
    EXPECT_EQ(count(pus[0]->lu_tree), 1u);
    EXPECT_EQ(count(pus[1]->lu_tree), 3u);
    for (vga_pu* owner : pus) {
        EXPECT_EQ((named<vga_down_lu, NB_NAME8E>(owner->lu_tree, "T2")->vcb.lu_active), 1);
    }
    EXPECT_EQ(script.sent(NAP_QUERY_DOWNSTREAM_LU), 4u);
}

// ---- local LU 6.2 ----

struct Partners : Checks {
    Partners() {
        lu = add_lu62(lu62("APPL", "APPL"));
        vga_lu62* other = add_lu62(lu62("OTHER", "OTHER"));
        add_rem_sys("NET.DEF");
        list_modes(
            lu, {mode("#BATCH", "NET.P1", 1, "NET.EN1"), mode("#INTER", "NET.P1", 2, "NET.EN1"),
                 mode("#INTER", "NET.P2", 4, "NET.EN2"), mode("#INTER", "NET.P3", 8, "NET.DEF"),
                 mode("#BATCH", "NET.P5", 1, "NET.EN1"), mode("#INTER", "NET.P5", 1, "NET.EN1")});
        list_modes(other, {mode("#INTER", "NET.P3", 16, "NET.EN3")});
    }
    void has(const char* partner) {
        script.has(NAP_QUERY_PARTNER_LU, entry(&PLU_ENTRY::plu_name, partner), "APPL");
    }
    // A page for each partner, and for the mode of each.
    void lists_two() {
        script.page_entries = 1;
        has("NET.P1");
        has("NET.P2");
        script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P1", 2, "NET.EN1"), "APPL");
        script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P2", 4, "NET.EN2"), "APPL");
    }
    vga_rem_sys* rem_sys(const char* name) {
        return named<vga_rem_sys, NB_FQNAME>(node->rem_sys_tree, name);
    }
    vga_lu62* lu;
};

TEST_F(Partners, WhatIsNotListedGoesWithItsCounts) {
    has("NET.P1");
    has("NET.P4");
    script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P1", 3, "NET.EN1"), "APPL");
    script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P4", 5, "NET.EN1"), "APPL");
    vga_start_check_lu62(lu);
    script.run();
    expect_ended();
    EXPECT_EQ(lu->checking, 0);
    EXPECT_EQ(lu->act_sess_count, 8);
    EXPECT_EQ(rows(node->lus_root),
              (Rows{"APPL", " NET.P1/#INTER", " NET.P4/#INTER", "OTHER", " NET.P3/#INTER"}));
    EXPECT_EQ(rows(node->rem_sys_root),
              (Rows{"NET.DEF", "NET.EN1", " NET.P1", "  APPL/#INTER", " NET.P4", "  APPL/#INTER",
                    "NET.EN3", " NET.P3", "  OTHER/#INTER"}));
    EXPECT_EQ(rem_sys("NET.EN1")->session_count, 8);
    EXPECT_EQ(rem_sys("NET.DEF")->session_count, 0);
}

TEST_F(Partners, ASecondStartDoesNotLoseWhatTheFirstHadFound) {
    lists_two();
    vga_start_check_lu62(lu);
    script.run(3); // the last page of the modes is on the way
    vga_start_check_lu62(lu);
    EXPECT_EQ(running(), 1u);
    script.run(1);
    EXPECT_EQ(count(lu->plu_tree), 4u) << "the first check does not end";
    script.run();
    expect_ended();
    EXPECT_EQ(lu->act_sess_count, 6);
    EXPECT_EQ(rows(node->rem_sys_root),
              (Rows{"NET.DEF", "NET.EN1", " NET.P1", "  APPL/#INTER", "NET.EN2", " NET.P2",
                    "  APPL/#INTER", "NET.EN3", " NET.P3", "  OTHER/#INTER"}));
}

// What an indication changes behind a page that has come, the pages that follow do not tell.
TEST_F(Partners, AnIndicationBehindAPageIsNotLost) {
    lists_two();
    const auto modes = [&](NB_USHORT count) {
        MODE_INDICATION ind{};
        std::memcpy(ind.lu_name, lu->vcb.lu_name, sizeof ind.lu_name);
        put(ind.plu_name, "NET.P1");
        put(ind.mode_name, "#INTER");
        ind.act_sess_count = count;
        vga_process_mode_ind(node, &ind);
    };
    const struct {
        const char* what;
        std::size_t answers; // before the indication
        std::size_t lists;   // of partners, in all
    } cases[] = {{"before the first page", 0, 2},
                 {"between the pages of partners", 1, 2},
                 {"before the modes", 2, 2},
                 {"between the pages of modes", 3, 4}};
    for (const auto& [what, answers, lists] : cases) {
        SCOPED_TRACE(what);
        script.journal.clear();
        vga_start_check_lu62(lu);
        script.run(answers);
        auto* plu = named<vga_plu, NB_FQNAME>(lu->plu_tree, "NET.P1");
        plu->vcb.cp_known = 1;
        put(plu->vcb.cp_name, "NET.EN1");
        modes(7);
        script.run();
        expect_ended();
        EXPECT_EQ(lu->checking, VGA_LU62_UNCHECKED);
        EXPECT_EQ(script.sent(NAP_QUERY_PARTNER_LU), lists);
        EXPECT_EQ(lu->act_sess_count, 6) << "the node lists two sessions again";
        EXPECT_EQ(rem_sys("NET.EN1")->session_count, 2);
    }
}

TEST_F(Partners, APartnerThatIsBackDuringTheCheckIsListed) {
    lists_two();
    vga_start_check_lu62(lu);
    script.run(1);
    PLU_INDICATION ind{};
    std::memcpy(ind.lu_name, lu->vcb.lu_name, sizeof ind.lu_name);
    put(ind.plu_name, "NET.P1");
    for (const NB_BYTE gone : {1, 0}) {
        ind.change = gone;
        vga_process_plu_ind(node, &ind);
        EXPECT_EQ(count(lu->plu_tree), 3u) << "P2, P3 and P5; P1 is left to the list";
    }
    script.run();
    expect_ended();
    EXPECT_EQ(script.sent(NAP_QUERY_PARTNER_LU), 4u);
    EXPECT_EQ(count(lu->plu_tree), 2u);
    EXPECT_NE((named<vga_plu, NB_FQNAME>(lu->plu_tree, "NET.P1")), nullptr);
}

TEST_F(Partners, OfADependentLuAreListedFromNothing) {
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    vga_lu62* dependent = add_lu62(lu62("DEP", "DEP", 3, "PU1"));
    list_modes(dependent, {mode("#INTER", "NET.H1", 1), mode("#INTER", "NET.H2", 2)});
    script.has(NAP_QUERY_MODE, mode("#INTER", "NET.H2", 4), "DEP");
    vga_start_check_lu62(dependent);
    EXPECT_EQ(dependent->act_sess_count, 0);
    script.run();
    expect_ended();
    EXPECT_EQ(script.sent(NAP_QUERY_PARTNER_LU), 0u);
    EXPECT_EQ(dependent->act_sess_count, 4);
    EXPECT_EQ(count(dependent->plu_tree), 1u);
}

// ---- directory ----

struct Directory : Checks {
    Directory() {
        gvga_supported[VGA_SUPPORT_DIRECTORY] = 1;
        gvga_messages[282] = gvga_messages[283] = "%1 %2";
        vga_lu62* lu = add_lu62(lu62("APPL", "APPL"));
        for (const char* name : {"NET.KEPT", "NET.LOST", "NET.USED"}) {
            add_rem_sys(name);
            const DIRECTORY_ENTRY e = directory(name, NAP_END_NODE_CP_RESOURCE, 1);
            vga_insert_vga_dir(vga_init_vga_dir(node, &e), nullptr);
        }
        list_modes(lu,
                   {mode("#INTER", "NET.P", 1, "NET.USED"), mode("#INTER", "NET.Q", 1, "NET.S")});
        script.has(NAP_QUERY_DIRECTORY_ENTRY, directory("NET.NN", NAP_NETWORK_NODE_CP_RESOURCE, 1));
        script.has(NAP_QUERY_DIRECTORY_ENTRY,
                   directory("NET.KEPT", NAP_END_NODE_CP_RESOURCE, NOF_DIRECTORY_DEFINED));
        script.has(NAP_QUERY_DIRECTORY_ENTRY,
                   directory("NET.LU", NAP_LU_RESOURCE, 1, "NET.KEPT", NAP_END_NODE_CP_RESOURCE));
    }
};

TEST_F(Directory, RemoteSystemsThatAreGoneStayForTheirSessionsOnly) {
    Messages messages;
    node->gui_data.node_window = &messages.window;
    vga_start_check_dir(node);
    vga_start_check_dir(node);
    EXPECT_EQ(running(), 1u);
    EXPECT_EQ(count(node->dir_tree), 0u);
    script.run();
    expect_ended();
    EXPECT_EQ(script.sent(NAP_QUERY_DIRECTORY_ENTRY), 1u + 2u);
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.KEPT", "NET.S", " NET.Q", "  APPL/#INTER",
                                              "NET.USED", " NET.P", "  APPL/#INTER"}));
    auto* used = named<vga_rem_sys, NB_FQNAME>(node->rem_sys_tree, "NET.USED");
    EXPECT_EQ(used->defined, 0);
    EXPECT_EQ(used->check_mark, 0);
    EXPECT_EQ(count(node->dir_tree), 3u);
    EXPECT_EQ(script.sent(NAP_QUERY_PARTNER_LU_DEFINITION), 0u);
    EXPECT_EQ(messages.shown(), 2) << "one for each that is gone, none for the one still listed";
    node->gui_data.node_window = nullptr;
}

TEST_F(Directory, TakesTheBuildsListOver) {
    node->build_flags = vga_flag(VGA_NODE_DIRECTORY) | vga_flag(VGA_NODE_USERIDS);
    ASSERT_TRUE(vga_issue_query_dir(node, nullptr, vga_build_node));
    vga_start_check_dir(node);
    script.run(3);
    EXPECT_EQ(node->build_flags, vga_flag(VGA_NODE_USERIDS));
    EXPECT_EQ(script.sent(NAP_QUERY_PARTNER_LU_DEFINITION), 1u) << "what follows in the build";
    expect_ended();
}

} // namespace
} // namespace store_test
