// Definitions that name a changed LU, pool or partner: which are marked, what is re-issued, and how
// a run of re-issues ends.
#include "scripted_node.h"

#include "store/tracking.h"
#include "verbs/config.h"

#include <functional>

namespace store_test {
namespace {

NB_LONG outstanding;
vga_dialog* run_dialog; // started the run
vga_node* run_node;

void completed(VGA_COMPLETION* work) {
    vga_process_update(work, run_dialog, true, run_node, &outstanding);
}

struct Updates : Store {
    Updates() {
        gvga_system->build_flags = 0;
        gvga_system->config_file_handle = CONFIG_HANDLE;
        for (int i = 271; i < 287; ++i) {
            gvga_messages[i] = "%1";
        }
        vga_install_config_handlers();
        add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
        dialog.handle = nba_create_handle(&dialog);
        gvga_main_dialog = &messages.window;
        run_dialog = &dialog;
        run_node = node;
        outstanding = 0;
        for (const NB_USHORT opcode :
             {NAP_DEFINE_EMULATOR_USER, NAP_DEFINE_TN3270_ACCESS, NAP_DEFINE_TN3270_ASSOCIATION,
              NAP_DELETE_TN3270_ASSOCIATION, NAP_DEFINE_DOWNSTREAM_LU, NAP_DELETE_DOWNSTREAM_LU,
              NAP_DEFINE_RJE_WKSTN}) {
            script.finish[opcode] = [this](void* vcb) {
                const auto* bytes = static_cast<const char*>(vcb);
                blocks.emplace_back(bytes, nba_block_length(vcb));
                if (blocks.size() == refuse) {
                    vcb_header(vcb)->primary_rc = NAP_STATE_CHECK;
                }
            };
        }
    }
    ~Updates() override {
        gvga_main_dialog = nullptr;
        nba_destroy_handle(dialog.handle);
    }
    vga_user* add_user(const std::string& name) {
        auto e = entry(&EMULATOR_USER_ENTRY::user_name, name);
        return vga_insert_vga_user(vga_init_vga_user(gvga_system, &e), gvga_system);
    }
    static vga_user_sess* add_session(vga_user* user, const std::string& name,
                                      const std::function<void(USER_SESSION&)>& fill) {
        auto e = entry(&USER_SESSION::session_name, name);
        fill(e);
        return vga_insert_vga_user_sess(vga_init_vga_user_sess(user, &e), user);
    }
    static std::function<void(USER_SESSION&)> on_lu(const std::string& lu) {
        return [lu](USER_SESSION& session) {
            session.session_type = NOF_SESSION_3270;
            put(session.lu_name, lu);
        };
    }
    static std::function<void(USER_SESSION&)> to_partner(const std::string& alias,
                                                         const std::string& partner) {
        return [=](USER_SESSION& session) {
            session.session_type = NOF_SESSION_5250;
            std::memset(session.lu_name, ' ', sizeof session.lu_name);
            std::memcpy(session.lu_name, alias.data(), alias.size());
            put(session.partner.plu_alias, partner);
        };
    }
    // The dialog redefines the LU under another name.
    vga_lu03* rename(vga_lu03* lu, const std::string& name) {
        LU03_ENTRY e = lu->vcb;
        put(e.lu_name, name);
        vga_delete_vga_lu03(lu, true);
        return add_lu03(e);
    }
    static const vga_deplu* any(const vga_lu03* lu) {
        return reinterpret_cast<const vga_deplu*>(lu);
    }
    const USER_SESSION& session(std::size_t block, std::size_t at = 0) const {
        return reinterpret_cast<const USER_SESSION*>(blocks[block].data() +
                                                     sizeof(DEFINE_EMULATOR_USER))[at];
    }
    NB_USHORT opcode(std::size_t block) const {
        return vcb_header(const_cast<char*>(blocks[block].data()))->opcode;
    }

    vga_dialog dialog{};
    Messages messages;
    ScriptedNode script;
    std::vector<std::string> blocks;
    std::size_t refuse = 0; // which answer is a refusal
};

TEST_F(Updates, ALuThat150SessionsUseIsRenamedInGroupsOf100) {
    vga_user* ann = add_user("ANN");
    for (int i = 0; i < 150; ++i) {
        add_session(ann, "S" + std::to_string(1000 + i), on_lu("OLD"));
    }
    add_session(ann, "OTHER", on_lu("ELSE"));
    add_session(add_user("BOB"), "S1", on_lu("ELSE"));
    LU03_ENTRY e = lu03("OLD", "PU1", 2);
    e.def_data.lu_model = 4;
    vga_lu03* lu = add_lu03(e);

    EXPECT_FALSE(vga_mark_sessions(NOF_SESSION_3270, node, nullptr)) << "it is not being changed";
    lu->changing = 1;
    ASSERT_TRUE(vga_mark_sessions(NOF_SESSION_3270, node, nullptr));
    lu->changing = 0;
    EXPECT_EQ(ann->marked[0], 150u);
    lu = rename(lu, "NEW");
    outstanding = vga_update_sessions(any(lu), nullptr, nullptr, dialog.handle, completed);
    EXPECT_EQ(outstanding, 2);
    EXPECT_EQ(ann->marked[0], 0u);

    script.run(1); // the first group is taken while the second is still on its way
    EXPECT_EQ(outstanding, 1);
    EXPECT_EQ(messages.shown(), 0);
    script.run();
    EXPECT_EQ(outstanding, 0);
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(blocks[0].size(), sizeof(DEFINE_EMULATOR_USER) + 100 * sizeof(USER_SESSION));
    EXPECT_EQ(blocks[1].size(), sizeof(DEFINE_EMULATOR_USER) + 50 * sizeof(USER_SESSION));
    EXPECT_EQ(script.journal.front().target, CONFIG_HANDLE);
    EXPECT_EQ(get(session(1, 49).lu_name), "NEW");
    EXPECT_EQ(session(1, 49).partner.lu.lu_model, 4);
    for (const auto* each : all<vga_user_sess>(ann->session_tree)) {
        EXPECT_EQ(each->update_mark, 0);
        EXPECT_EQ(get(each->vcb.lu_name), get(each->vcb.session_name) == "OTHER" ? "ELSE" : "NEW");
    }
    EXPECT_EQ(ann->vcb.def.num_sessions, 151u);
}

TEST_F(Updates, ModelsThatSuitEverySessionBecomeModel2) {
    vga_user* ann = add_user("ANN");
    add_session(ann, "S1", on_lu("LU"));
    for (const auto& [model, wanted] : {std::pair{0, 2}, {255, 2}, {3, 3}, {128, 128}}) {
        LU03_ENTRY e = lu03("LU", "PU1", 2);
        e.def_data.lu_model = static_cast<NB_BYTE>(model);
        vga_lu03* lu = add_lu03(e);
        lu->changing = 1;
        ASSERT_TRUE(vga_mark_sessions(NOF_SESSION_3270, node, nullptr));
        blocks.clear();
        vga_update_sessions(any(lu), nullptr, nullptr, 0, [](VGA_COMPLETION*) {});
        script.run();
        ASSERT_EQ(blocks.size(), 1u);
        EXPECT_EQ(session(0).partner.lu.lu_model, wanted) << model;
    }
}

TEST_F(Updates, SessionsWithPartnersFollowTheLocalAliasOrThePartners) {
    vga_user* ann = add_user("ANN");
    add_session(ann, "S1", to_partner("OLD", "PARTNER"));
    add_session(ann, "S2", to_partner("KEPT", "PARTNER"));
    add_session(ann, "S3", to_partner("KEPT", "OTHER"));
    add_session(ann, "S4", to_partner("", "")); // of the default LU, its partner by name
    vga_lu62* lu = add_lu62(lu62("LU", "OLD"));
    add_lu62(lu62("LU2", "KEPT"));
    lu->changing = 1;
    ASSERT_TRUE(vga_mark_sessions(NOF_SESSION_5250, node, nullptr));
    EXPECT_EQ(ann->marked[1], 1u);
    lu = add_lu62(lu62("LU", "NEW"));
    vga_update_sessions(nullptr, lu, nullptr, 0, [](VGA_COMPLETION*) {});
    script.run();
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_EQ(std::memcmp(session(0).lu_name, "NEW     ", 8), 0);
    EXPECT_EQ(get(session(0).partner.plu_alias), "PARTNER");

    EXPECT_FALSE(vga_mark_sessions(NOF_SESSION_5250, node, "        "));
    const PLU_DEF_ENTRY renamed = plu_def("NET.P", "FRIEND");
    vga_rem_plu* plu = vga_add_plu_definition(node, &renamed);
    ASSERT_TRUE(vga_mark_sessions(NOF_SESSION_5250, node, "PARTNER "));
    blocks.clear();
    vga_update_sessions(nullptr, nullptr, plu, 0, [](VGA_COMPLETION*) {});
    script.run();
    ASSERT_EQ(blocks.size(), 1u);
    ASSERT_EQ(blocks[0].size(), sizeof(DEFINE_EMULATOR_USER) + 2 * sizeof(USER_SESSION));
    EXPECT_EQ(get(session(0, 1).session_name), "S2");
    EXPECT_EQ(get(session(0, 1).partner.plu_alias), "FRIEND");
    EXPECT_EQ(std::memcmp(session(0, 1).lu_name, "KEPT    ", 8), 0);
}

// A definition of every kind that names the LU "OLD".
struct Everywhere : Updates {
    Everywhere() {
        lu = add_lu03(lu03("OLD", "PU1", 2));
        add_lu03(lu03("ELSE", "PU1", 3));
        add_session(add_user("ANN"), "S1", on_lu("OLD"));
        auto client = entry<TN3270_ACCESS_ENTRY>();
        put(client.client.address, "client");
        tn_client = vga_insert_vga_tn_client(vga_init_vga_tn_client(node, &client), node);
        for (const auto& [port, display, printer] :
             {std::tuple{23, "OLD", "ELSE"}, {24, "ELSE", "OLD"}, {25, "ELSE", "ELSE"}}) {
            auto e = entry<TN3270_SESSION>();
            e.port = static_cast<NB_USHORT>(port);
            put(e.lu_name, display);
            put(e.printer_lu_name, printer);
            vga_insert_vga_tn_sess(vga_init_vga_tn_sess(tn_client, &e), tn_client);
        }
        for (const auto& [display, printer] : {std::pair{"OLD", "ELSE"}, {"ELSE", "OLD"}}) {
            auto e = entry(&TN3270_ASSOCIATION_ENTRY::display_lu_name, display);
            put(e.def.printer_lu_name, printer);
            vga_insert_vga_tn_assoc(vga_init_vga_tn_assoc(node, &e), node);
        }
        down_pu = add_down_pu(pu("DSPU"));
        for (NB_BYTE nau = 1; nau < 3; ++nau) {
            DOWN_LU_ENTRY e = down_lu("TERM" + std::to_string(nau), nau);
            put(e.def.dspu_name, "DSPU");
            put(e.def.host_lu_name, nau == 1 ? "OLD" : "ELSE");
            add_down_lu(e, down_pu);
        }
        auto rje = entry(&RJE_WKSTN_ENTRY::wkstn_name, "RJE1");
        rje.def.num_lus = 2;
        put(rje.def.lu_names[0], "ELSE");
        put(rje.def.lu_names[1], "OLD");
        put(rje.def.lu_names[2], "OLD"); // not in use
        wkstn = vga_insert_vga_rje_wkstn(vga_init_vga_rje_wkstn(gvga_system, &rje), gvga_system);
    }
    void mark() {
        bool display, printer;
        lu->changing = 1;
        EXPECT_TRUE(vga_mark_sessions(NOF_SESSION_3270, node, nullptr));
        EXPECT_TRUE(vga_mark_tn_clients(node, &display, &printer));
        EXPECT_TRUE(display && printer);
        EXPECT_TRUE(vga_mark_tn_assocs(node, &display, &printer));
        EXPECT_TRUE(display && printer);
        EXPECT_TRUE(vga_mark_dslus(node));
        EXPECT_TRUE(vga_mark_rje_wkstns());
        lu->changing = 0;
    }
    // Another LU that definitions name is being changed.
    void mark_again() {
        bool display, printer;
        const NB_BYTE nau = 3;
        auto* other = reinterpret_cast<vga_lu03*>(ntl_avl_find(&lu->parent->nau_tree, &nau));
        other->changing = 1;
        vga_mark_tn_clients(node, &display, &printer);
        vga_mark_tn_assocs(node, &display, &printer);
        vga_mark_dslus(node);
        vga_mark_rje_wkstns();
        other->changing = 0;
    }
    void update() {
        lu = rename(lu, "NEW");
        outstanding = vga_update_sessions(any(lu), nullptr, nullptr, dialog.handle, completed);
        outstanding += vga_update_tn_clients(node, any(lu), dialog.handle, completed);
        outstanding += vga_update_tn_assocs(node, lu, dialog.handle, completed);
        outstanding += vga_update_dslus(node, any(lu), dialog.handle, completed);
        outstanding += vga_update_rje_wkstns(lu, dialog.handle, completed);
    }
    int marks() {
        int sum = static_cast<int>(down_pu->marked) + tn_client->update_count;
        for (const auto* sess : all<vga_tn_sess>(tn_client->sess_tree)) {
            sum += sess->display_mark + sess->printer_mark;
        }
        for (const auto* assoc : all<vga_tn_assoc>(node->tn_assoc_tree)) {
            sum += assoc->display_mark + assoc->printer_mark;
        }
        for (const auto* down : all<vga_down_lu>(down_pu->lu_tree)) {
            sum += down->update_mark;
        }
        auto* ann = ntl_avl_first<vga_user>(gvga_system->user_tree);
        return sum + static_cast<int>(ann->marked[0]) + wkstn->update_mask;
    }
    // Every LU name in the store that definitions refer to.
    Rows names() {
        Rows out;
        auto* ann = ntl_avl_first<vga_user>(gvga_system->user_tree);
        out.push_back(get(ntl_avl_first<vga_user_sess>(ann->session_tree)->vcb.lu_name));
        for (const auto* sess : all<vga_tn_sess>(tn_client->sess_tree)) {
            out.push_back(get(sess->vcb.lu_name) + "/" + get(sess->vcb.printer_lu_name));
        }
        for (const auto* assoc : all<vga_tn_assoc>(node->tn_assoc_tree)) {
            out.push_back(get(assoc->vcb.display_lu_name) + "-" +
                          get(assoc->vcb.def.printer_lu_name));
        }
        for (const auto* down : all<vga_down_lu>(down_pu->lu_tree)) {
            out.push_back(get(down->vcb.dslu_name) + ">" + get(down->vcb.def.host_lu_name));
        }
        out.push_back(get(wkstn->vcb.def.lu_names[1]));
        return out;
    }

    vga_lu03* lu;
    vga_tn_client* tn_client;
    vga_pu* down_pu;
    vga_rje_wkstn* wkstn;
};

TEST_F(Everywhere, EveryKindOfDefinitionTakesTheNewName) {
    mark();
    update();
    EXPECT_EQ(outstanding, 1 + 1 + 3 + 2 + 1) << "what changes its key is deleted first";
    EXPECT_EQ(marks(), 0);
    script.run();
    EXPECT_EQ(outstanding, 0);
    EXPECT_EQ(messages.shown(), 0);
    EXPECT_EQ(names(), (Rows{"NEW", "NEW/ELSE", "ELSE/NEW", "ELSE/ELSE", "ELSE-NEW", "NEW-ELSE",
                             "TERM1>NEW", "TERM2>ELSE", "NEW"}));
    ASSERT_EQ(blocks[1].size(), sizeof(DEFINE_TN3270_ACCESS) + 2 * sizeof(TN3270_SESSION));
    for (const Sent& verb : script.journal) {
        EXPECT_EQ(verb.target, CONFIG_HANDLE);
    }
}

TEST_F(Everywhere, MarksCanBeTakenBack) {
    mark();
    EXPECT_EQ(marks(), 1 + 2 + 2 + 2 + 1 + 1 + 2); // the workstation's by its second LU
    vga_unmark_sessions(NOF_SESSION_3270);
    vga_unmark_tn_clients(node);
    vga_unmark_tn_assocs(node);
    vga_unmark_dslus(node);
    vga_unmark_rje_wkstns();
    EXPECT_EQ(marks(), 0);
    update();
    EXPECT_EQ(outstanding, 0);
}

TEST_F(Everywhere, WhatADialogLeavesBehindGoesIntoTheStore) {
    mark();
    update();
    script.run(2);
    vga_leave_update(&dialog, node);
    vga_purge_verb_queue(0, 0, nullptr, dialog.handle, nullptr);
    refuse = blocks.size() + 5; // the downstream LU's definition: the log has it, nobody waits
    script.run();
    EXPECT_EQ(outstanding, 6);
    EXPECT_EQ(messages.shown(), 0);
    EXPECT_EQ(names(), (Rows{"NEW", "NEW/ELSE", "ELSE/NEW", "ELSE/ELSE", "ELSE-NEW", "NEW-ELSE",
                             "TERM2>ELSE", "NEW"}));
}

// The parameter: which of the run's eight verbs is refused.
struct Refused : Everywhere, testing::WithParamInterface<int> {};

TEST_P(Refused, IsToldOnceAtTheEndAndLeavesNoMarks) {
    mark();
    update();
    mark_again(); // another change has begun meanwhile
    EXPECT_NE(marks(), 0);
    refuse = static_cast<std::size_t>(GetParam());
    for (NB_LONG left = outstanding; left > 0; --left) {
        EXPECT_EQ(messages.shown(), 0) << left << " left";
        script.run(1);
    }
    EXPECT_EQ(outstanding, 0);
    EXPECT_EQ(messages.shown(), 1);
    EXPECT_EQ(marks(), 0);
    EXPECT_TRUE(vga_end_update(&dialog, true, 0));
    EXPECT_EQ(messages.shown(), 0) << "the next run begins without a failure";
}
INSTANTIATE_TEST_SUITE_P(EachVerb, Refused, testing::Range(1, 9));

} // namespace
} // namespace store_test
