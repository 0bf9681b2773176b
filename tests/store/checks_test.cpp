// The checks against a scripted node whose lists differ from the store.
#include "scripted_node.h"

#include "nof/lu62.h"
#include "store/checks.h"
#include "ui/framework/dialog.h"
#include "ui/framework/firewall.h"
#include "verbs/status.h"

#include <numeric>

namespace store_test {
namespace {

using Rows = std::vector<std::string>;

struct Checks : Store {
    Checks() {
        node->node_handle = FIRST_NODE_HANDLE;
        node->node_state = VGA_NODE_STATE_ACTIVE;
        node->build_flags = 0;
        node->built = 1;
        gvga_querybuf_size = 4096;
    }
    ~Checks() override {
        gvga_supported[VGA_SUPPORT_DIRECTORY] = 0;
        vga_fail_allocation(0);
    }
    NB_ULONG running() const {
        return std::accumulate(std::begin(node->checks_running), std::end(node->checks_running),
                               NB_ULONG{0});
    }
    vga_pu* add_down_pu(const PU_ENTRY& e) {
        return vga_insert_vga_down_pu(vga_init_vga_down_pu(node, &e), node);
    }
    // Hands a page of mode entries over, as the store had it before.
    void had_modes(vga_lu62* lu, std::vector<MODE_ENTRY> entries) {
        QUERY_MODE block{};
        block.list.header.opcode = NAP_QUERY_MODE;
        block.list.buffer = entries.data();
        block.list.buffer_size = static_cast<NB_ULONG>(entries.size() * sizeof(MODE_ENTRY));
        block.list.num_entries = block.list.total_entries = static_cast<NB_USHORT>(entries.size());
        vga_mode* last;
        ASSERT_TRUE(vga_process_query_mode(lu, &block, &last));
    }
    void expect_ended() {
        EXPECT_EQ(gvga_exit_code, 0) << std::hex << gvga_exit_subcode;
        EXPECT_EQ(running(), 0u);
    }
    ScriptedNode script;
};

template <typename Record, typename Name>
Record* record_of(const NTL_AVL_TREE& tree, const std::string& name) {
    Name key;
    put(key, name);
    return static_cast<Record*>(ntl_avl_find(&tree, key));
}

TEST_F(Checks, StatesAreRefreshedOverSeveralPages) {
    static const char* names[] = {"R1", "R2", "R3", "R4", "R5"};
    vga_dlc* owner = add_dlc(dlc("OWNER"));
    for (const std::string name : names) {
        add_dlc(dlc(name));
        auto e = dlc(name);
        e.state = NOF_STATE_ACTIVE;
        e.def.dlc_type = NAP_DLC_SDLC;
        script.has(NAP_QUERY_DLC, e);

        PORT_ENTRY p = port(name, "OWNER");
        vga_insert_vga_port(vga_init_vga_port(owner, &p), owner);
        p.state = NOF_STATE_START_PENDING;
        script.has(NAP_QUERY_PORT, p);

        PU_ENTRY u = pu(name);
        add_pu(u);
        u.state = 1;
        script.has(NAP_QUERY_PU, u);
        u = pu("D" + name, "", NAP_DLUR_ATTACHED);
        add_pu(u);
        u.state = 1;
        u.dlur_status = NOF_DLUR_PENDING_RETRY;
        script.has(NAP_QUERY_DLUR_PU, u);
        u = pu("S" + name);
        add_down_pu(u);
        u.state = 1;
        script.has(NAP_QUERY_DOWNSTREAM_PU, u);

        LU62_ENTRY l = lu62(name, name);
        add_lu62(l);
        l.session_status = 1;
        script.has(NAP_QUERY_LOCAL_LU, l);
    }
    const struct {
        void (*start)(vga_node*);
        NB_USHORT opcode;
        NB_BYTE level;
    } kinds[] = {
        {vga_start_check_dlc, NAP_QUERY_DLC, NAP_LEVEL_SUMMARY},
        {vga_start_check_port, NAP_QUERY_PORT, NAP_LEVEL_DETAIL},
        {vga_start_check_pu, NAP_QUERY_PU, NAP_LEVEL_DETAIL},
        {vga_start_check_dlur_pu, NAP_QUERY_DLUR_PU, NAP_LEVEL_DETAIL},
        {vga_start_check_down_pu, NAP_QUERY_DOWNSTREAM_PU, NAP_LEVEL_DETAIL},
        {vga_start_check_local_lu, NAP_QUERY_LOCAL_LU, NAP_LEVEL_DETAIL},
    };
    for (const auto& kind : kinds) {
        kind.start(node);
        EXPECT_EQ(running(), 1u) << std::hex << kind.opcode;
        script.run();
        expect_ended();
        ASSERT_EQ(script.sent(kind.opcode), 3u) << std::hex << kind.opcode;
        const std::size_t at = script.first(kind.opcode);
        EXPECT_EQ(script.journal[at].list_options, NAP_FIRST_IN_LIST | kind.level);
        EXPECT_EQ(script.journal[at + 1].list_options, NAP_LIST_FROM_NEXT | kind.level);
    }
    for (const std::string name : names) {
        auto* d = record_of<vga_dlc, NB_NAME8L>(node->dlc_tree, name);
        EXPECT_EQ(d->vcb->state, NOF_STATE_ACTIVE);
        EXPECT_EQ(d->vcb->def.dlc_type, NAP_DLC_ETHERNET) << "a check leaves definitions alone";
        EXPECT_EQ((record_of<vga_port, NB_NAME8L>(node->port_tree, name)->vcb->state),
                  NOF_STATE_START_PENDING);
        EXPECT_EQ((record_of<vga_pu, NB_NAME8E>(node->local_pu_tree, name)->vcb.state), 1);
        auto* dlur = record_of<vga_pu, NB_NAME8E>(node->local_pu_tree, "D" + name);
        EXPECT_EQ(dlur->vcb.state, 1);
        EXPECT_EQ(dlur->vcb.dlur_status, NOF_DLUR_PENDING_RETRY);
        EXPECT_EQ((record_of<vga_pu, NB_NAME8E>(node->down_pu_tree, "S" + name)->vcb.state), 1);
        EXPECT_EQ((record_of<vga_lu62, NB_NAME8E>(node->lu62_tree, name)->vcb.session_status), 1);
    }
    EXPECT_EQ(owner->vcb->state, 0) << "not listed";
}

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
        return record_of<vga_ls, NB_NAME8L>(node->ls_tree, name)->vcb->det.state;
    }
};

TEST_F(LinkStations, OneThatVanishedGoesWithItsPuAndLus) {
    listed({"A", "C", "D"});
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

TEST_F(LinkStations, NewOnesAtTheNodeDoNotEndTheList) {
    listed({"0", "1", "A", "B", "C", "D"});
    vga_start_check_ls(node);
    script.run();
    expect_ended();
    EXPECT_EQ(count(node->ls_tree), 4u);
    EXPECT_EQ(state("D"), NOF_STATE_ACTIVE);
}

TEST_F(LinkStations, AFailedListRemovesNothing) {
    script.codes[NAP_QUERY_LS] = {NAP_STATE_CHECK, 1};
    vga_start_check_ls(node);
    script.run();
    expect_ended();
    EXPECT_EQ(count(node->ls_tree), 4u);
    script.codes[NAP_QUERY_LS] = {NAP_NO_ENTRIES, 0};
    vga_start_check_ls(node);
    script.run();
    expect_ended();
    EXPECT_EQ(count(node->ls_tree), 0u);
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
        for (auto* lu = ntl_avl_first<vga_lu03>(gvga_system->lu_tree); lu != nullptr;
             lu = static_cast<vga_lu03*>(ntl_avl_next(&lu->system_node))) {
            found += lu->vcb.det_data.appl_conn_active;
            EXPECT_EQ(lu->vcb.def_data.lu_model, 0) << "a check leaves definitions alone";
        }
        return found;
    }
};

TEST_F(Lus, AreRefreshedPuByPu) {
    add_lu62(lu62("DEP", "DEP", 9, "PU1")); // shares the tree of the PU
    vga_start_check_lu03(node);
    script.run();
    expect_ended();
    EXPECT_EQ(in_use(), 6u);
    EXPECT_EQ(script.sent(NAP_QUERY_LU_0_TO_3), 4u);
}

TEST_F(Lus, ABurstOfStartsLeadsToOnePassAfterTheLast) {
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
                vga_insert_vga_down_lu(vga_init_vga_down_lu(owner, &e), owner);
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
        EXPECT_EQ((record_of<vga_down_lu, NB_NAME8E>(owner->lu_tree, "T2")->vcb.lu_active), 1);
    }
    EXPECT_EQ(script.sent(NAP_QUERY_DOWNSTREAM_LU), 4u);
}

// ---- local LU 6.2 ----

struct Partners : Checks {
    Partners() {
        lu = add_lu62(lu62("APPL", "APPL"));
        other = add_lu62(lu62("OTHER", "OTHER"));
        add_rem_sys("NET.DEF");
        had_modes(lu,
                  {mode("#BATCH", "NET.P1", 1, "NET.EN1"), mode("#INTER", "NET.P1", 2, "NET.EN1"),
                   mode("#INTER", "NET.P2", 4, "NET.EN2"), mode("#INTER", "NET.P3", 8, "NET.DEF"),
                   mode("#BATCH", "NET.P5", 1, "NET.EN1"), mode("#INTER", "NET.P5", 1, "NET.EN1")});
        had_modes(other, {mode("#INTER", "NET.P3", 16, "NET.EN3")});
    }
    void has(const char* partner) {
        auto e = entry<PLU_ENTRY>();
        put(e.plu_name, partner);
        script.has(NAP_QUERY_PARTNER_LU, e, "APPL");
    }
    vga_lu62* lu;
    vga_lu62* other;
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
    EXPECT_EQ((record_of<vga_rem_sys, NB_FQNAME>(node->rem_sys_tree, "NET.EN1")->session_count), 8);
    EXPECT_EQ((record_of<vga_rem_sys, NB_FQNAME>(node->rem_sys_tree, "NET.DEF")->session_count), 0);
}

TEST_F(Partners, AnEmptyListTakesAllOfThem) {
    script.codes[NAP_QUERY_PARTNER_LU] = script.codes[NAP_QUERY_MODE] = {NAP_NO_ENTRIES, 0};
    vga_start_check_lu62(lu);
    script.run();
    expect_ended();
    EXPECT_EQ(count(lu->plu_tree), 0u);
    EXPECT_EQ(lu->act_sess_count, 0);
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.DEF", "NET.EN3", " NET.P3", "  OTHER/#INTER"}));
    EXPECT_EQ(count(other->plu_tree), 1u);
}

TEST_F(Partners, ASecondStartDoesNotLoseWhatTheFirstHadFound) {
    script.page_entries = 1;
    has("NET.P1");
    has("NET.P2");
    script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P1", 2, "NET.EN1"), "APPL");
    script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P2", 4, "NET.EN2"), "APPL");
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
    script.page_entries = 1;
    has("NET.P1");
    has("NET.P2");
    script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P1", 2, "NET.EN1"), "APPL");
    script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P2", 4, "NET.EN2"), "APPL");
    const auto modes = [&](NB_USHORT count) {
        MODE_INDICATION ind{};
        std::memcpy(ind.lu_name, lu->vcb.lu_name, sizeof ind.lu_name);
        put(ind.plu_name, "NET.P1");
        put(ind.mode_name, "#INTER");
        ind.act_sess_count = count;
        vga_process_mode_ind(node, &ind);
    };
    const auto known = [&](vga_plu* plu) {
        plu->vcb.cp_known = 1;
        put(plu->vcb.cp_name, "NET.EN1");
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
        known(record_of<vga_plu, NB_FQNAME>(lu->plu_tree, "NET.P1"));
        modes(7);
        script.run();
        expect_ended();
        EXPECT_EQ(lu->checking, VGA_LU62_UNCHECKED);
        EXPECT_EQ(script.sent(NAP_QUERY_PARTNER_LU), lists);
        EXPECT_EQ(lu->act_sess_count, 6) << "the node lists two sessions again";
        EXPECT_EQ((record_of<vga_rem_sys, NB_FQNAME>(node->rem_sys_tree, "NET.EN1")->session_count),
                  2);
    }
}

TEST_F(Partners, APartnerThatIsBackDuringTheCheckIsListed) {
    script.page_entries = 1;
    has("NET.P1");
    has("NET.P2");
    script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P2", 4, "NET.EN2"), "APPL");
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
    EXPECT_NE((record_of<vga_plu, NB_FQNAME>(lu->plu_tree, "NET.P1")), nullptr);
}

TEST_F(Partners, ACheckEndsWithItsNode) {
    script.codes[NAP_QUERY_PARTNER_LU] = {NAP_UNSUCCESSFUL, NAP_TARGET_GONE};
    vga_start_check_lu62(lu);
    script.run();
    expect_ended();
    EXPECT_EQ(lu->checking, VGA_LU62_UNCHECKED);
    EXPECT_EQ(count(lu->plu_tree), 4u) << "nothing is known of them";
}

TEST_F(Partners, OfADependentLuAreListedFromNothing) {
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    vga_lu62* dependent = add_lu62(lu62("DEP", "DEP", 3, "PU1"));
    had_modes(dependent, {mode("#INTER", "NET.H1", 1), mode("#INTER", "NET.H2", 2)});
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
        had_modes(lu,
                  {mode("#INTER", "NET.P", 1, "NET.USED"), mode("#INTER", "NET.Q", 1, "NET.S")});
        script.has(NAP_QUERY_DIRECTORY_ENTRY, directory("NET.NN", NAP_NETWORK_NODE_CP_RESOURCE, 1));
        script.has(NAP_QUERY_DIRECTORY_ENTRY,
                   directory("NET.KEPT", NAP_END_NODE_CP_RESOURCE, NOF_DIRECTORY_DEFINED));
        script.has(NAP_QUERY_DIRECTORY_ENTRY,
                   directory("NET.LU", NAP_LU_RESOURCE, 1, "NET.KEPT", NAP_END_NODE_CP_RESOURCE));
    }
};

TEST_F(Directory, RemoteSystemsThatAreGoneStayForTheirSessionsOnly) {
    vga_start_check_dir(node);
    vga_start_check_dir(node);
    EXPECT_EQ(running(), 1u);
    EXPECT_EQ(count(node->dir_tree), 0u);
    script.run();
    expect_ended();
    EXPECT_EQ(script.sent(NAP_QUERY_DIRECTORY_ENTRY), 1u + 2u);
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.KEPT", "NET.S", " NET.Q", "  APPL/#INTER",
                                              "NET.USED", " NET.P", "  APPL/#INTER"}));
    auto* used = record_of<vga_rem_sys, NB_FQNAME>(node->rem_sys_tree, "NET.USED");
    EXPECT_EQ(used->defined, 0);
    EXPECT_EQ(used->check_mark, 0);
    EXPECT_EQ(count(node->dir_tree), 3u);
    EXPECT_EQ(script.sent(NAP_QUERY_PARTNER_LU_DEFINITION), 0u);
}

TEST_F(Directory, TheOperatorIsToldInTheNodesWindow) {
    vga_dialog window{};
    window.open = 1;
    nba_init_q(&window.modal_dlg.queue);
    gvga_modal_firewall_count = 1; // messages wait
    node->gui_data.node_window = &window;
    vga_start_check_dir(node);
    script.run();
    gvga_modal_firewall_count = 0;
    node->gui_data.node_window = nullptr;
    int messages = 0;
    while (auto* message = static_cast<NBA_QUEUE*>(nba_get_q_head(&window.modal_dlg.queue))) {
        nba_remove_from_q(message); // which stands at the start of what waits
        vga_free(message);
        ++messages;
    }
    EXPECT_EQ(messages, 2) << "one for each that is gone, none for the one still listed";
    expect_ended();
}

TEST_F(Directory, AFailedPageRemovesNoRemoteSystem) {
    script.codes[NAP_QUERY_DIRECTORY_ENTRY] = {NAP_STATE_CHECK, 1};
    vga_start_check_dir(node);
    script.run();
    expect_ended();
    EXPECT_EQ(count(node->rem_sys_tree), 4u);
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
