// The build of a node that has something of most kinds: what it makes of the answers, and what of
// answers that are wrong, late or missing.
#include "build_fixture.h"

#include "nof/pool.h"
#include "nof/routing.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/tp.h"
#include "nof/trace.h"
#include "nof/user.h"

#include <set>

namespace store_test {
namespace {

// An entry with members behind it.
template <typename Entry, typename Member> struct WithMembers {
    Entry fixed{};
    Member members[2]{};

    WithMembers() {
        fixed.length = sizeof *this;
        for (Member& member : members) {
            member.length = sizeof member;
        }
    }
};

WithMembers<EMULATOR_USER_ENTRY, USER_SESSION> user(const std::string& name,
                                                    const std::array<std::string, 2>& sessions) {
    WithMembers<EMULATOR_USER_ENTRY, USER_SESSION> page;
    put(page.fixed.user_name, name);
    page.fixed.def.num_sessions = 2;
    for (std::size_t i = 0; i < 2; ++i) {
        page.members[i].session_type = NOF_SESSION_3270;
        put(page.members[i].session_name, sessions[i]);
    }
    return page;
}

WithMembers<SECURITY_ACCESS_LIST_ENTRY, ACCESS_LIST_USER>
access_list(const std::string& name, const std::array<std::string, 2>& users) {
    WithMembers<SECURITY_ACCESS_LIST_ENTRY, ACCESS_LIST_USER> page;
    put(page.fixed.list_name, name);
    page.fixed.def.num_users = 2;
    put(page.members[0].user_id, users[0]);
    put(page.members[1].user_id, users[1]);
    return page;
}

struct WholeNode : Build {
    WholeNode() {
        all_capabilities();
        script_links();
        script_lus();
        script_remote();
        for (const char* name : {"APPL1", "APPL2", "APPL3"}) {
            script_definitions(name);
        }
        script_domain();
    }
    void script_links() {
        script.has(NAP_QUERY_DLC, dlc("ETH0"));
        for (const char* name : {"ETH0", "ETH1", "ETH2"}) {
            script.has(NAP_QUERY_PORT, port(name, "ETH0"));
        }
        script.has(NAP_QUERY_LS, ls("HOST", "ETH0", "HOST"));
        script.has(NAP_QUERY_LS, ls("DOWN", "ETH1", "", "DSPU"));
        script.has(NAP_QUERY_LS, ls("PEER", "ETH1"));
        script.has(NAP_QUERY_PU, pu("HOST", "HOST"));
        script.has(NAP_QUERY_DLUR_PU, pu("DLURPU", "", NAP_DLUR_ATTACHED));
        script.has(NAP_QUERY_DOWNSTREAM_PU, pu("DSPU", "DOWN"));
        for (const char* name : {"HOST", "PEER", "NONE"}) {
            auto trace = entry(&DLC_TRACE_ENTRY::name, name);
            trace.resource_type = 3;
            script.has(NAP_QUERY_DLC_TRACE, trace);
        }
    }
    void script_lus() {
        for (NB_BYTE nau = 2; nau < 7; ++nau) {
            LU03_ENTRY e = lu03("LU" + std::to_string(nau), "HOST", nau);
            if (nau <= 3) {
                put(e.def_data.pool_name, "POOL");
            }
            if (nau == 2) {
                e.det_data.appl_conn_active = NAP_YES;
                e.det_data.app_type = NAP_FMI_APPLICATION;
                put(e.det_data.application.user.user_name, "bob");
            }
            script.has(NAP_QUERY_LU_0_TO_3, e, "HOST");
        }
        for (const char* lu : {"", "LU2", "LU3"}) {
            auto e = entry(&LU_POOL_ENTRY::pool_name, *lu == '\0' ? "EMPTY" : "POOL");
            if (*lu != '\0') {
                put(e.lu_name, lu);
            }
            script.has(NAP_QUERY_LU_POOL, e);
        }
        script.has(NAP_QUERY_LU_0_TO_3, lu03("DLU1", "DLURPU", 2), "DLURPU");
        script.has(NAP_QUERY_DOWNSTREAM_LU, down_lu("TERM1", 1), "DSPU");
        script.has(NAP_QUERY_LOCAL_LU, lu62("DEP1", "DEP1", 9, "HOST"));
        script.has(NAP_QUERY_PARTNER_LU, entry(&PLU_ENTRY::plu_name, "NET.P"), "APPL1");
        script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P", 2, "NET.EN"), "APPL1");
    }
    void script_remote() {
        script.has(NAP_QUERY_DIRECTORY_ENTRY, directory("NET.NN", NAP_NETWORK_NODE_CP_RESOURCE, 1));
        script.has(NAP_QUERY_DIRECTORY_ENTRY, directory("NET.EN", NAP_END_NODE_CP_RESOURCE, 3));
        script.has(NAP_QUERY_DIRECTORY_ENTRY,
                   directory("NET.LU", NAP_LU_RESOURCE, 3, "NET.EN", NAP_END_NODE_CP_RESOURCE));
        script.has(NAP_QUERY_PARTNER_LU_DEFINITION, plu_def("NET.LU", "LU"));
        script.has(NAP_QUERY_PARTNER_LU_DEFINITION, plu_def("NET.ELSE", "ELSE"));
        script.has(NAP_QUERY_COS, entry(&COS_ENTRY::cos_name, "#INTER"));
        auto row = entry(&COS_ROW_ENTRY::cos_name, "#INTER");
        row.row = 1;
        script.has(NAP_QUERY_COS_NODE_ROW, row);
        script.has(NAP_QUERY_COS_TG_ROW, row);
    }
    void script_definitions(const char* name) {
        script.has(NAP_QUERY_LOCAL_LU, lu62(name, name));
        auto route = entry<LS_ROUTING_ENTRY>();
        put(route.key.lu_name, name);
        put(route.key.plu_name, "NET.P");
        script.has(NAP_QUERY_LS_ROUTING, route);
        auto password = entry<LU_LU_PASSWORD_ENTRY>();
        put(password.key.plu_name, "NET.P");
        script.has(NAP_QUERY_LU_LU_PASSWORD, password, name);
        auto timeout = entry<LU62_TIMEOUT_ENTRY>();
        timeout.resource_type = NOF_TIMEOUT_LOCAL_LU;
        put(timeout.resource_name, name);
        script.has(NAP_QUERY_LU62_TIMEOUT, timeout);
        script.has(NAP_QUERY_TP_DEFINITION, entry(&TP_DEF_ENTRY::tp_name, name));
        script.has(NAP_QUERY_TP_LOAD_INFO, entry(&TP_LOAD_INFO_ENTRY::tp_name, name));
        script.has(NAP_QUERY_TN3270_ASSOCIATION,
                   entry(&TN3270_ASSOCIATION_ENTRY::display_lu_name, name));
        auto redirect = entry<TN_REDIRECT_ENTRY>();
        std::strcpy(redirect.key.client_address, name);
        script.has(NAP_QUERY_TN_REDIRECT_DEF, redirect);
        WithMembers<TN3270_ACCESS_ENTRY, TN3270_SESSION> client;
        std::strcpy(client.fixed.client.address, name);
        client.fixed.def.num_sessions = 2;
        client.members[0].port = 23;
        client.members[1].not_listed = 1;
        script.has(NAP_QUERY_TN3270_ACCESS_DEF, client);
        script.has(NAP_QUERY_SECURITY_ACCESS_LIST, access_list(name, {"ann", "bob"}));
        WithMembers<DSPU_TEMPLATE_ENTRY, DSLU_TEMPLATE> dspu;
        put(dspu.fixed.template_name, name);
        dspu.fixed.def.num_dslu_templates = 2;
        dspu.members[1].first_nau = dspu.members[1].last_nau = 3;
        script.has(NAP_QUERY_DSPU_TEMPLATE, dspu);
        auto userid = entry(&USERID_PASSWORD_ENTRY::user_id, name);
        for (const NB_USHORT profiles : {6, 3}) {
            userid.def.num_profiles = profiles;
            script.has(NAP_QUERY_USERID_PASSWORD, userid);
        }
    }
    void script_domain() {
        script.has(NAP_QUERY_EMULATOR_USER_DEF, user("bob", {"S2", "S4"}));
        script.has(NAP_QUERY_EMULATOR_USER_DEF, user("ann", {"S1", "S2"}));
        script.has(NAP_QUERY_EMULATOR_USER_DEF, user("bob", {"S1", "S3"})); // continued
        for (const char* name : {"DEST2", "DEST1"}) {
            script.has(NAP_QUERY_CPIC_SIDE_INFO, entry(&CPIC_SIDE_INFO_ENTRY::sym_dest_name, name));
        }
        for (const char* name : {"RJE2", "RJE1", "RJE3"}) {
            script.has(NAP_QUERY_RJE_WKSTN_DEF, entry(&RJE_WKSTN_ENTRY::wkstn_name, name));
        }
    }
    void expect_domain() {
        EXPECT_EQ(rows(gvga_system->user_viewer_root),
                  (Rows{"ann", " S1", " S2", "bob", " S1", " S2", " S3", " S4"}));
        EXPECT_EQ(rows(gvga_system->cpic_viewer_root), (Rows{"DEST1", "DEST2"}));
        EXPECT_EQ(rows(gvga_system->rje_viewer_root), (Rows{"RJE1", "RJE2", "RJE3"}));
        EXPECT_EQ(rows(gvga_system->pool_viewer_root), (Rows{"EMPTY", "POOL", " LU2", " LU3"}));
        const auto* bob = ntl_avl_last<vga_user>(gvga_system->user_tree);
        EXPECT_EQ(bob->session_count, 1);
        EXPECT_EQ(bob->vcb.def.num_sessions, 4u);
    }
};

TEST_F(WholeNode, IsMirroredCompletely) {
    script.finish[NAP_QUERY_DLC_TRACE] = [](void* vcb) { // of those listed one was set meanwhile
        auto* traced = ntl_avl_first<vga_node>(gvga_system->node_tree);
        traced->tracing.ethernet +=
            (static_cast<LIST_QUERY*>(vcb)->list_options & NAP_FIRST_IN_LIST) != 0;
    };
    build();
    expect_built();
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(nodes_built, 1);
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_ACTIVE);
    EXPECT_EQ(node->node_handle, FIRST_NODE_HANDLE);
    EXPECT_EQ(rows(node->links_root),
              (Rows{"ETH0", " HOST+", "  LU2", "  LU3", "  LU4", "  LU5", "  LU6", "  DEP1", "ETH1",
                    " DOWN+", "  TERM1", " PEER", "ETH2", "DLUR", " DLURPU", "  DLU1"}));
    EXPECT_EQ(rows(node->lus_root),
              (Rows{"APPL1", " NET.P/#INTER", " routes", "  NET.P", "APPL2", " routes", "  NET.P",
                    "APPL3", " routes", "  NET.P", "CP"}));
    EXPECT_NE(node->cp_lu, nullptr) << "made for want of a listed one";
    EXPECT_EQ(rows(node->rem_sys_root),
              (Rows{"NET.EN", " NET.LU", " NET.P", "  APPL1/#INTER", "", " NET.ELSE"}));
    EXPECT_EQ(rows(node->sl_sec_root),
              (Rows{"title", "APPL1/NET.P", "APPL2/NET.P", "APPL3/NET.P"}));
    EXPECT_EQ(rows(node->tn_client_root), (Rows{"title", "APPL1/23", "APPL2/23", "APPL3/23"}));
    expect_domain();
    for (const NTL_AVL_TREE* tree :
         {&node->lu62_timeout_tree, &node->tp_def_tree, &node->tp_load_tree, &node->tn_assoc_tree,
          &node->tn_redirect_tree, &node->tn_client_tree, &node->access_list_tree,
          &node->dspu_template_tree, &node->userid_tree, &node->dir_tree}) {
        EXPECT_EQ(count(*tree), 3u);
    }
    EXPECT_EQ(node->tracing.ethernet, 2);
    const auto* cos = ntl_avl_first<vga_cos>(node->cos_tree);
    EXPECT_EQ(count(cos->node_row_tree) + count(cos->tg_row_tree), 2u);
    EXPECT_NE(ntl_avl_first<vga_lu62>(node->lu62_tree)->timeout, nullptr);
    const auto* list = ntl_avl_first<vga_security_access_list>(node->access_list_tree);
    EXPECT_EQ(count(list->user_tree), 2u);
    const auto* dspu = ntl_avl_first<vga_dspu_template>(node->dspu_template_tree);
    EXPECT_EQ(count(dspu->dslu_tree), 2u);
    const auto* userid = ntl_avl_first<vga_userid_password>(node->userid_tree);
    EXPECT_EQ(userid->vcb.def.num_profiles, 9) << "two entries in a row are one user";
}

TEST_F(WholeNode, RegistersBeforeItLists) {
    build();
    const struct {
        NB_USHORT indication, query;
    } pairs[] = {
        {NAP_DLC_INDICATION, NAP_QUERY_DLC},
        {NAP_PORT_INDICATION, NAP_QUERY_PORT},
        {NAP_LS_INDICATION, NAP_QUERY_LS},
        {NAP_PU_INDICATION, NAP_QUERY_PU},
        {NAP_DLUR_PU_INDICATION, NAP_QUERY_DLUR_PU},
        {NAP_DOWNSTREAM_PU_INDICATION, NAP_QUERY_DOWNSTREAM_PU},
        {NAP_DOWNSTREAM_LU_INDICATION, NAP_QUERY_DOWNSTREAM_LU},
        {NAP_LU_0_TO_3_INDICATION, NAP_QUERY_LU_0_TO_3},
        {NAP_LOCAL_LU_INDICATION, NAP_QUERY_LOCAL_LU},
        {NAP_PLU_INDICATION, NAP_QUERY_PARTNER_LU},
        {NAP_MODE_INDICATION, NAP_QUERY_MODE},
        {NAP_DIRECTORY_INDICATION, NAP_QUERY_DIRECTORY_ENTRY},
    };
    for (const auto& pair : pairs) {
        const std::size_t listed = script.first(pair.query);
        ASSERT_LT(listed, script.journal.size()) << std::hex << pair.query;
        EXPECT_LT(script.first(NAP_REGISTER_INDICATION_SINK, pair.indication), listed)
            << std::hex << pair.query;
    }
}

TEST_F(WholeNode, StoppedGetsTheArchitecturesModesAndListsPasswordsOnly) {
    script.node.active = 0;
    build();
    expect_built();
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_STOPPED);
    EXPECT_EQ(count(node->mode_def_tree), 13u);
    EXPECT_EQ(count(node->cos_tree), 7u);
    EXPECT_NE(node->cp_lu, nullptr);
    EXPECT_EQ(script.sent(NAP_QUERY_PARTNER_LU) + script.sent(NAP_QUERY_MODE), 0u);
    EXPECT_EQ(script.sent(NAP_QUERY_LU_LU_PASSWORD), count(node->lu62_tree));
    EXPECT_EQ(script.sent(NAP_QUERY_TN_SERVER_TRACE), 0u);
}

TEST_F(WholeNode, TheDomainsListsAreReadAgainFromAFileThatCameBack) {
    build();
    vga_free_system_resources(false, nullptr);
    EXPECT_EQ(rows(gvga_system->user_viewer_root), Rows{});
    EXPECT_EQ(rows(gvga_system->cpic_viewer_root), Rows{});
    EXPECT_EQ(rows(gvga_system->rje_viewer_root), Rows{});
    EXPECT_EQ(rows(gvga_system->pool_viewer_root).size(), 4u) << "the nodes' own";
    vga_rebuild_system();
    script.run();
    EXPECT_EQ(gvga_system->build_flags, 0u);
    expect_domain();
}

// The one list that has more members than a page holds.
TEST_F(Build, AListWithinAListGoesOnBehindItsLastMember) {
    script.has(NAP_QUERY_SECURITY_ACCESS_LIST, access_list("TRUSTED", {"ann", "bob"}));
    int pages = 0;
    script.finish[NAP_QUERY_SECURITY_ACCESS_LIST] = [&](void* vcb) {
        auto& page = *static_cast<LIST_QUERY*>(vcb);
        page.more = ++pages == 1;
        if (pages == 2) {
            const auto rest = access_list("TRUSTED", {"cid", "dan"});
            std::memcpy(page.buffer, &rest, sizeof rest);
            page.num_entries = page.total_entries = 1;
        }
    };
    build();
    expect_built();
    const auto again = std::find_if(script.journal.rbegin(), script.journal.rend(), [](auto& verb) {
        return verb.opcode == NAP_QUERY_SECURITY_ACCESS_LIST;
    });
    EXPECT_EQ(again->key.substr(0, 17), "TRUSTED       bob");
    ASSERT_EQ(count(node->access_list_tree), 1u);
    const auto* list = ntl_avl_first<vga_security_access_list>(node->access_list_tree);
    EXPECT_EQ(count(list->user_tree), 4u);
}

TEST_F(WholeNode, AFailedVerbEndsTheProgram) {
    build();
    std::set<NB_USHORT> opcodes;
    for (const Sent& verb : script.journal) {
        opcodes.insert(verb.opcode);
    }
    opcodes.erase(NAP_CONNECT_NODE); // else the node is back level
    EXPECT_GT(opcodes.size(), 45u);
    for (const NB_USHORT opcode : opcodes) {
        SCOPED_TRACE(testing::Message() << std::hex << opcode);
        start_over();
        script.codes = {{opcode, {NAP_PARAMETER_CHECK, 0x99}}};
        testing::internal::CaptureStderr();
        build();
        const std::string log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(gvga_exit_code, VGA_EXIT_QUERY);
        EXPECT_EQ(gvga_exit_subcode, opcode);
        EXPECT_NE(log.find("40020002 "), std::string::npos) << log;
    }
    start_over();
}

TEST_F(WholeNode, AMalformedPageIsAFailedQuery) {
    using Damage = std::function<void(LIST_QUERY*, NB_USHORT*)>;
    const Damage damages[] = {
        [](LIST_QUERY*, NB_USHORT* length) { *length = 0; },
        [](LIST_QUERY*, NB_USHORT* length) { *length = 1; },
        [](LIST_QUERY*, NB_USHORT* length) { *length = 0xFFFF; },
        [](LIST_QUERY* list, NB_USHORT*) { list->num_entries = 0xFFFF; },
        [](LIST_QUERY* list, NB_USHORT*) { list->num_entries = 0; },
    };
    for (const Damage& damage : damages) {
        script.finish[NAP_QUERY_PORT] = [&](void* vcb) {
            auto* list = static_cast<LIST_QUERY*>(vcb);
            damage(list, static_cast<NB_USHORT*>(list->buffer));
        };
        testing::internal::CaptureStderr();
        build();
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(gvga_exit_code, VGA_EXIT_QUERY);
        EXPECT_EQ(gvga_exit_subcode, NAP_QUERY_PORT);
        start_over();
    }
}

TEST_F(WholeNode, MissingParentsAreLoggedAndSkipped) {
    script.has(NAP_QUERY_PORT, port("LOST", "NODLC"));
    script.has(NAP_QUERY_LS, ls("LOSTLS", "LOST"));
    script.has(NAP_QUERY_PU, pu("LOSTPU", "LOSTLS"));
    auto route = entry<LS_ROUTING_ENTRY>();
    put(route.key.lu_name, "NONE");
    script.has(NAP_QUERY_LS_ROUTING, route);
    testing::internal::CaptureStderr();
    build();
    const std::string log = testing::internal::GetCapturedStderr();
    expect_built();
    EXPECT_NE(log.find("40020004 18 "), std::string::npos) << log;
    EXPECT_NE(log.find("40020004 19 "), std::string::npos) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 3) << log;
    EXPECT_EQ(count(node->local_pu_tree), 2u);
}

TEST_F(WholeNode, ARecordRemovedWhileItIsListedLetsTheBuildGoOn) {
    script.finish[NAP_QUERY_LU_0_TO_3] = [&](void*) {
        node = ntl_avl_first<vga_node>(gvga_system->node_tree);
        if (auto* first = ntl_avl_first<vga_pu>(node->local_pu_tree); first->listing) {
            vga_delete_vga_local_pu(first, true);
        }
    };
    script.finish[NAP_QUERY_PARTNER_LU] = [&](void*) {
        vga_delete_vga_lu62(ntl_avl_first<vga_lu62>(node->lu62_tree), true);
    };
    build();
    expect_built();
}

// Every allocation of the build fails once: exit code 1, and nothing is left behind.
TEST_F(WholeNode, SurvivesTheWantOfMemoryAtEveryPoint) {
    build();
    start_over(); // what stays for good is there now
    const std::size_t handles = nba_handle_count();
    const std::size_t allocations = vga_allocations_in_use();
    unsigned long nth = 1;
    for (NB_LONG code = VGA_EXIT_INTERNAL; code != 0; ++nth) {
        testing::internal::CaptureStderr();
        vga_fail_allocation(nth);
        build();
        vga_fail_allocation(0);
        testing::internal::GetCapturedStderr();
        code = gvga_exit_code;
        start_over();
        EXPECT_EQ(vga_allocations_in_use(), allocations) << nth;
        EXPECT_EQ(nba_handle_count(), handles) << nth;
        ASSERT_TRUE(code == 0 || code == VGA_EXIT_INTERNAL) << nth;
    }
    EXPECT_GT(nth, 300u);
}

} // namespace
} // namespace store_test
