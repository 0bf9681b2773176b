// Definitions with members: what a define adds, what a delete that lists members takes out, and
// what comes to light on the way.
#include "config_fixture.h"

#include "nof/cn.h"
#include "nof/extra_data.h"
#include "nof/pool.h"
#include "store/tracking.h"

namespace store_test {
namespace {

struct Members : Configured {
    Members() {
        add_port("ETH0");
        add_ls(ls("LS1", "ETH0", "PU1"));
        for (NB_BYTE nau = 1; nau <= 4; ++nau) {
            add_lu03(lu03("LU" + std::to_string(nau), "PU1", nau));
        }
    }
    // Takes in the delete that was issued last, as if it had been carried out.
    void take_issued(void (*process)(VGA_COMPLETION*, vga_node*)) {
        VGA_COMPLETION completion{NODE, last_issued().vcb, 0};
        process(&completion, node);
    }

    // ---- TN3270 ----
    vga_tn_sess* define_client(const std::string& address, const std::vector<NB_USHORT>& ports,
                               NB_BYTE not_listed = 0) {
        Verb<DEFINE_TN3270_ACCESS> verb(NAP_DEFINE_TN3270_ACCESS);
        for (const NB_USHORT port : ports) {
            TN3270_SESSION s{};
            s.port = port;
            s.not_listed = not_listed;
            verb.add(s);
        }
        std::strcpy(verb->client.address, address.c_str());
        verb->def.num_sessions = static_cast<NB_ULONG>(ports.size());
        auto completion = verb.completion();
        vga_tn_sess* last;
        vga_process_def_tn_access(&completion, node, &last);
        return last;
    }
    // The port of the session to select now; 0: none.
    int delete_client(const std::string& address, const std::vector<NB_USHORT>& ports,
                      NB_USHORT all_of_them = 0) {
        Verb<DELETE_TN3270_ACCESS> verb(NAP_DELETE_TN3270_ACCESS);
        verb.bytes.resize(offsetof(DELETE_TN3270_ACCESS, sessions));
        for (const NB_USHORT port : ports) {
            verb.add(TN3270_SESSION_NAME{port, {}});
        }
        verb.bytes.resize(std::max(verb.bytes.size(), sizeof(DELETE_TN3270_ACCESS)));
        std::strcpy(verb->client.address, address.c_str());
        verb->num_sessions = static_cast<NB_ULONG>(ports.size());
        verb->delete_all = all_of_them;
        auto completion = verb.completion();
        vga_tn_sess* next;
        vga_process_del_tn_access(&completion, node, &next);
        return next != nullptr ? next->vcb.port : 0;
    }

    // ---- users ----
    vga_user_sess* define_user(const std::string& name, const Rows& sessions,
                               NB_BYTE type = NOF_SESSION_3270) {
        Verb verb(NAP_DEFINE_EMULATOR_USER, &DEFINE_EMULATOR_USER::user_name, name);
        for (const std::string& session : sessions) {
            auto s = entry(&USER_SESSION::session_name, session);
            s.session_type = type;
            verb.add(s);
        }
        verb->def.num_sessions = static_cast<NB_ULONG>(sessions.size());
        auto completion = verb.completion();
        vga_user_sess* first;
        vga_process_def_user_session(&completion, gvga_system, &first);
        return first;
    }
    vga_user_sess* delete_user(const std::string& name, const Rows& sessions, NB_BYTE types = 0) {
        Verb verb(NAP_DELETE_EMULATOR_USER, &DELETE_EMULATOR_USER::user_name, name);
        verb->num_sessions = static_cast<NB_ULONG>(sessions.size());
        verb->session_types = types;
        for (std::size_t i = 0; i < sessions.size(); ++i) {
            put(verb->session_names[i], sessions[i]);
        }
        auto completion = verb.completion();
        vga_user_sess* next;
        vga_process_del_user(&completion, gvga_system, &next);
        return next;
    }

    // ---- pools ----
    template <typename T>
    void pool_verb(NB_USHORT opcode, const std::string& name, const Rows& lus, vga_node* owner) {
        Verb<T> verb(opcode);
        if (!name.empty()) {
            put(verb->pool_name, name);
        }
        verb->num_lus = static_cast<NB_USHORT>(lus.size());
        for (std::size_t i = 0; i < lus.size(); ++i) {
            put(verb->lu_names[i], lus[i]);
        }
        indicate(verb, owner->handle);
    }
    void define_pool(const std::string& name, const Rows& lus, vga_node* owner) {
        pool_verb<DEFINE_LU_POOL>(NAP_DEFINE_LU_POOL, name, lus, owner);
    }
    void delete_pool(const std::string& name, const Rows& lus, vga_node* owner) {
        pool_verb<DELETE_LU_POOL>(NAP_DELETE_LU_POOL, name, lus, owner);
    }
};

TEST_F(Members, AnAccessListGainsAndLosesUsers) {
    const auto define = [this](const Rows& users) {
        Verb verb(NAP_DEFINE_SECURITY_ACCESS_LIST, &DEFINE_SECURITY_ACCESS_LIST::list_name, "new");
        for (const std::string& user : users) {
            verb.add(entry(&ACCESS_LIST_USER::user_id, user));
        }
        verb->def.num_users = static_cast<NB_ULONG>(users.size());
        indicate(verb);
    };
    const auto remove = [](const Rows& users) {
        Verb verb(NAP_DELETE_SECURITY_ACCESS_LIST, &DELETE_SECURITY_ACCESS_LIST::list_name, "new");
        for (const std::string& user : users) {
            char name[10];
            put(name, user);
            verb.add(name);
        }
        verb->num_users = static_cast<NB_ULONG>(users.size());
        return verb;
    };
    define({"anna", "bert"});
    define({"carl", "anna"});
    const auto* list = ntl_avl_first<vga_security_access_list>(node->access_list_tree);
    EXPECT_EQ(count(list->user_tree), 3u);
    EXPECT_TRUE(logged(log_of(remove({"bert", "nobody"})), 79));
    EXPECT_EQ(count(list->user_tree), 2u);
    indicate(remove({}));
    EXPECT_EQ(count(node->access_list_tree), 0u);
}

TEST_F(Members, ProfilesLeaveAUserIdThatStays) {
    Verb define(NAP_DEFINE_USERID_PASSWORD, &DEFINE_USERID_PASSWORD::user_id, "ANNA");
    define->def.num_profiles = NOF_USER_PROFILES;
    for (int i = 0; i < NOF_USER_PROFILES; ++i) {
        put(define->def.profiles[i], "PROF" + std::to_string(i));
    }
    indicate(define);
    Verb remove(NAP_DELETE_USERID_PASSWORD, &DELETE_USERID_PASSWORD::user_id, "ANNA");
    remove->delete_type = NAP_REMOVE_PROFILES;
    remove->num_profiles = 3;
    put(remove->profiles[0], "PROF9");
    put(remove->profiles[1], "PROF0");
    put(remove->profiles[2], "NOSUCH");
    indicate(remove);
    const auto* userid = ntl_avl_first<vga_userid_password>(node->userid_tree);
    EXPECT_EQ(userid->vcb.def.num_profiles, 8);
    EXPECT_EQ(get(userid->vcb.def.profiles[0]), "PROF1");
    EXPECT_EQ(get(userid->vcb.def.profiles[7]), "PROF8");
}

TEST_F(Members, PasswordsAreFoundByNameByAliasAndForTheControlPoint) {
    vga_lu62* local = add_lu62(lu62("LOCAL", "ALIAS"));
    vga_lu62* cp = add_lu62(lu62("CP", "CP"));
    ASSERT_EQ(node->cp_lu, cp);
    struct Case {
        const char* name;
        const char* alias;
        vga_lu62* lu; // null: unknown
    };
    for (const Case& row : {Case{"LOCAL", "", local}, Case{"", "ALIAS", local}, Case{"", "", cp},
                            Case{"NOSUCH", "ALIAS", nullptr}, Case{"", "NOSUCH", nullptr}}) {
        SCOPED_TRACE(row.name + std::string("/") + row.alias);
        Verb<DEFINE_LU_LU_PASSWORD> define(NAP_DEFINE_LU_LU_PASSWORD);
        Verb<DELETE_LU_LU_PASSWORD> remove(NAP_DELETE_LU_LU_PASSWORD);
        put(define->key.plu_name, "NET.PARTNER");
        if (row.name[0] != '\0') {
            put(define->key.lu_name, row.name);
        }
        if (row.alias[0] != '\0') {
            put(define->key.lu_alias, row.alias);
        }
        remove->key = define->key;
        const std::string log = log_of(define);
        if (row.lu == nullptr) {
            EXPECT_TRUE(logged(log, 59)) << log;
            EXPECT_TRUE(logged(log_of(remove), 60));
            continue;
        }
        EXPECT_EQ(log, "");
        ASSERT_EQ(count(node->sl_sec_tree), 1u);
        EXPECT_EQ(get(ntl_avl_first<vga_lu_lu_password>(node->sl_sec_tree)->key.lu_name),
                  get(row.lu->vcb.lu_name));
        EXPECT_EQ(log_of(remove), "");
        EXPECT_EQ(count(node->sl_sec_tree), 0u);
        // A second delete is news for an LU with a name, unless its passwords are being listed.
        const bool with_name = row.name[0] != '\0';
        row.lu->startup_status = 0;
        EXPECT_EQ(logged(log_of(remove), 61), with_name);
        row.lu->startup_status = VGA_PASSWORD_LIST;
        EXPECT_EQ(logged(log_of(remove), 61), !with_name);
        row.lu->startup_status = 0;
    }
}

TEST_F(Members, APrimaryLuNeedsItsLine) {
    Verb define(NAP_DEFINE_PRIMARY_LU0, &DEFINE_PRIMARY_LU0::lu_name, "HOSTLU");
    put(define->def.line_name, "LINE1");
    EXPECT_TRUE(logged(log_of(define), 74));
    indicate(Verb(NAP_DEFINE_PRIMARY_LINE, &DEFINE_PRIMARY_LINE::line_name, "LINE1"));
    EXPECT_EQ(log_of(define), "");
    const auto* line = ntl_avl_first<vga_primary_line>(node->primary_line_tree);
    auto* lu = ntl_avl_first<vga_primary_lu0>(line->lu0_tree);
    ASSERT_NE(lu, nullptr);
    ASSERT_TRUE(vga_issue_del_primary_lu0(lu, 0, no_completion));
    take_issued(vga_process_del_primary_lu0);
    EXPECT_EQ(count(line->lu0_tree), 0u);
    const Verb remove(NAP_DELETE_PRIMARY_LU0, &DELETE_PRIMARY_LU0::lu_name, "HOSTLU");
    EXPECT_TRUE(logged(log_of(remove), 75));
}

TEST_F(Members, ATemplateTakesTheRangesOfItsLastDefinition) {
    const auto define = [this](const std::vector<std::array<NB_BYTE, 2>>& ranges, NB_BYTE modify) {
        Verb verb(NAP_DEFINE_DSPU_TEMPLATE, &DEFINE_DSPU_TEMPLATE::template_name, "BRANCH");
        for (const auto& range : ranges) {
            DSLU_TEMPLATE member{};
            member.first_nau = range[0];
            member.last_nau = range[1];
            verb.add(member);
        }
        verb->def.modify_template = modify;
        verb->def.num_dslu_templates = static_cast<NB_USHORT>(ranges.size());
        indicate(verb);
        return all<vga_dslu_template>(
            ntl_avl_first<vga_dspu_template>(node->dspu_template_tree)->dslu_tree);
    };
    EXPECT_EQ(define({{1, 10}, {20, 30}}, 0).size(), 2u);
    const auto replaced = define({{5, 15}}, 0);
    ASSERT_EQ(replaced.size(), 1u);
    EXPECT_EQ(replaced[0]->vcb.last_nau, 15);
    EXPECT_EQ(define({{40, 50}}, 1).size(), 2u);
}

TEST_F(Members, Tn3270ClientsGainAndLoseSessions) {
    vga_tn_sess* last = define_client("b", {24, 9000});
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(last->vcb.port, 9000);
    EXPECT_EQ(define_client("b", {9000}), last) << "defined again";
    define_client("b", {25});
    EXPECT_EQ(define_client("b", {99}, 1), nullptr) << "an internal session is no row";
    define_client("a", {23});
    define_client("c", {});
    define_client("d", {1});
    EXPECT_EQ(rows(node->tn_client_root), (Rows{"title", "a/23", "b/24", "b/25", "b/9000", "d/1"}));

    int next = 0;
    const std::string log = log_of([&] { next = delete_client("b", {77, 25}); });
    EXPECT_TRUE(logged(log, 54)) << log;
    EXPECT_EQ(next, 9000);
    EXPECT_EQ(delete_client("b", {9000}), 1) << "the next client's first";
    EXPECT_EQ(rows(node->tn_client_root), (Rows{"title", "a/23", "b/24", "d/1"}));

    delete_client("a", {}, 1);
    EXPECT_EQ(rows(node->tn_client_root), (Rows{"title", "b/24", "d/1"}));
    EXPECT_EQ(count(node->tn_client_tree), 4u) << "the client stays";
    EXPECT_EQ(delete_client("c", {}), 1);
    EXPECT_EQ(delete_client("d", {}), 0);
    EXPECT_TRUE(logged(log_of([&] { delete_client("d", {}); }), 55));

    vga_tn_sess* only = vga_get_next_tn_sess(nullptr, node);
    ASSERT_TRUE(vga_issue_del_tn_access(only->parent, only, 0, no_completion));
    take_issued([](VGA_COMPLETION* done, vga_node* of) { vga_process_del_tn_access(done, of); });
    EXPECT_EQ(rows(node->tn_client_root), Rows{"title"});
    EXPECT_EQ(count(node->tn_client_tree), 2u);
}

TEST_F(Members, UsersGainAndLoseSessions) {
    vga_user_sess* first = define_user("anna", {"s2", "s1"});
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(get(first->vcb.session_name), "s2");
    define_user("anna", {"s3", "s4"}, NOF_SESSION_5250);
    vga_user_sess* next;
    const std::string log = log_of([&] { next = delete_user("anna", {"none", "s1"}); });
    EXPECT_TRUE(logged(log, 29)) << log;
    EXPECT_EQ(next, first);
    EXPECT_EQ(rows(gvga_system->user_viewer_root), (Rows{"anna", " s2", " s3", " s4"}));
    ASSERT_TRUE(vga_issue_del_user(first->parent, first, 0, no_completion));
    take_issued([](VGA_COMPLETION* done, vga_node*) { vga_process_del_user(done, gvga_system); });
    EXPECT_EQ(rows(gvga_system->user_viewer_root), (Rows{"anna", " s3", " s4"}));
    EXPECT_EQ(delete_user("anna", {}, NOF_SESSION_5250), nullptr);
    EXPECT_EQ(rows(gvga_system->user_viewer_root), Rows{"anna"});
    delete_user("anna", {});
    EXPECT_EQ(rows(gvga_system->user_viewer_root), Rows{});
    EXPECT_TRUE(logged(log_of([&] { delete_user("anna", {}); }), 30));
}

TEST_F(Members, LusMoveBetweenPools) {
    auto& shown = gvga_system->pool_viewer_root;
    define_pool("POOLA", {"LU1", "LU2"}, node);
    EXPECT_TRUE(logged(log_of([&] { define_pool("POOLB", {"LU2", "NOSUCH", "LU3"}, node); }), 49));
    define_pool("POOLB", {"LU3"}, node);
    EXPECT_EQ(rows(shown), (Rows{"POOLA", " LU1", "POOLB", " LU2", " LU3"}));
    delete_pool("POOLB", {"LU3"}, node);
    EXPECT_EQ(rows(shown), (Rows{"POOLA", " LU1", "POOLB", " LU2"}));
    delete_pool("POOLB", {}, node);
    EXPECT_EQ(rows(shown), (Rows{"POOLA", " LU1"}));
    EXPECT_TRUE(logged(log_of([&] { delete_pool("POOLB", {}, node); }), 50));
    EXPECT_TRUE(logged(log_of([&] { delete_pool("", {}, node); }), 50));
    const auto* no_pool = ntl_avl_first<vga_sys_pool>(gvga_system->pool_tree);
    EXPECT_EQ(no_pool->total_count, 3) << "LU2, LU3 and LU4";
}

TEST_F(Members, APoolOfTwoNodesGoesNodeByNode) {
    vga_node* first = node;
    vga_node* second = node = add_node("NODE2");
    second->build_flags = 0;
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    add_lu03(lu03("LU9", "PU1", 9));
    define_pool("POOLA", {"LU1", "LU2"}, first);
    define_pool("POOLA", {"LU9"}, second);
    EXPECT_EQ(rows(gvga_system->pool_viewer_root), (Rows{"POOLA", " LU1", " LU2", " LU9"}));
    auto* part =
        ntl_avl_first<vga_pool>(ntl_avl_last<vga_sys_pool>(gvga_system->pool_tree)->node_tree);
    node = first;
    for (const bool all_of_it : {false, true}) {
        vga_lu03* const lus[] = {ntl_avl_first<vga_lu03>(part->lu_tree)};
        const auto listed = std::span(lus).first(all_of_it ? 0 : 1);
        ASSERT_TRUE(vga_issue_del_lu_pool(part, listed, 0, no_completion));
        take_issued(vga_process_del_lu_pool);
        EXPECT_EQ(rows(gvga_system->pool_viewer_root),
                  all_of_it ? (Rows{"POOLA", " LU9"}) : (Rows{"POOLA", " LU2", " LU9"}));
    }
    delete_pool("POOLA", {}, second);
    EXPECT_EQ(rows(gvga_system->pool_viewer_root), Rows{});
}

TEST_F(Members, SpecificDataStandBehindTheEntryInWholeWords) {
    Verb dlc_verb(NAP_DEFINE_DLC, &DEFINE_DLC::dlc_name, "DLC");
    dlc_verb->specific_length = 5;
    Verb port_verb(NAP_DEFINE_PORT, &DEFINE_PORT::port_name, "PORT");
    put(port_verb->def.dlc_name, "DLC");
    port_verb->def.port_data_length = 3;
    port_verb->def.link_data_length = 2;
    Verb ls_verb(NAP_DEFINE_LS, &DEFINE_LS::ls_name, "LS");
    ls_verb->def = ls("", "PORT").def;
    ls_verb->def.specific_length = 5;
    const char specific[5] = {'a', 'b', 'c', 'd', 'e'};
    dlc_verb.add(specific);
    port_verb.add(specific);
    ls_verb.add(specific);
    indicate(dlc_verb);
    indicate(port_verb);
    indicate(ls_verb);
    const auto tail = [](const auto* entry) {
        return std::string(reinterpret_cast<const char*>(entry + 1), entry->length - sizeof *entry);
    };
    const std::string padded("abcde\0\0\0", 8);
    EXPECT_EQ(tail((named<vga_dlc, NB_NAME8L>(node->dlc_tree, "DLC")->vcb)), padded);
    EXPECT_EQ(tail((named<vga_port, NB_NAME8L>(node->port_tree, "PORT")->vcb)), padded);
    EXPECT_EQ(tail((named<vga_ls, NB_NAME8L>(node->ls_tree, "LS")->vcb)), padded);
}

TEST_F(Members, AConnectionNetworkLinksThePortsThatItLists) {
    vga_port* first = add_port("ETH1");
    vga_port* second = add_port("ETH2");
    Verb define(NAP_DEFINE_CN, &DEFINE_CN::cn_name, "NET.CN");
    define->def.num_ports = 3;
    put(define->port_names[0], "ETH1");
    put(define->port_names[1], "MISSING");
    put(define->port_names[2], "ETH2");
    EXPECT_TRUE(logged(log_of(define), 33));
    const auto* cn = ntl_avl_first<vga_cn>(node->cn_tree);
    EXPECT_TRUE(first->cn == cn && second->cn == cn);
    Verb remove(NAP_DELETE_CN, &DELETE_CN::cn_name, "NET.CN");
    remove->num_ports = 1;
    put(remove->port_names[0], "ETH1");
    indicate(remove);
    EXPECT_TRUE(first->cn == nullptr && second->cn == cn);
    expect_logged(remove, 34, VGA_CHECK_PORT, VGA_NODE_CN_PORTS);
    ASSERT_TRUE(vga_issue_del_cn(second->cn, 0, no_completion));
    take_issued(vga_process_del_cn);
    EXPECT_EQ(second->cn, nullptr);
    EXPECT_EQ(count(node->cn_tree), 0u);
}

TEST_F(Members, ExtraDataIsKeptForLusOfTypes0To3Only) {
    auto* lu = ntl_avl_first<vga_lu03>(gvga_system->lu_tree);
    const auto send = [this](NB_USHORT opcode, NB_USHORT kind) {
        Verb<DEFINE_EXTRA_DATA> verb(opcode);
        verb->resource_kind = kind;
        van_ascii_to_ebcdic(verb->data.name, "LU1", 8);
        verb->data.parameter142 = 7;
        indicate(verb);
    };
    send(NAP_DEFINE_EXTRA_DATA, 0x5001);
    EXPECT_EQ(lu->extra_data, nullptr);
    send(NAP_DEFINE_EXTRA_DATA, NOF_EXTRA_DATA_LU_0_TO_3);
    ASSERT_NE(lu->extra_data, nullptr);
    EXPECT_EQ(lu->extra_data->data.parameter142, 7u);
    send(NAP_DELETE_EXTRA_DATA, 0x5001);
    EXPECT_NE(lu->extra_data, nullptr);
    ASSERT_TRUE(vga_issue_del_extra_data(lu, 0, no_completion));
    take_issued(vga_process_del_extra_data);
    EXPECT_EQ(lu->extra_data, nullptr);
}

TEST_F(Members, SettingsReplaceTheNodesCopies) {
    Verb<DEFINE_TN3270_DEFAULTS> defaults(NAP_DEFINE_TN3270_DEFAULTS);
    defaults->defaults.keepalive_interval = 60;
    indicate(defaults);
    EXPECT_EQ(node->tn_defaults.keepalive_interval, 60u);
    Verb<DEFINE_TN3270_EXPRESS_LOGON> logon(NAP_DEFINE_TN3270_EXPRESS_LOGON);
    logon->dcas_port = 8990;
    indicate(logon);
    EXPECT_EQ(node->express_logon.dcas_port, 8990);
    Verb<DEFINE_TN3270_SSL_LDAP> ssl(NAP_DEFINE_TN3270_SSL_LDAP);
    ssl->settings.ldap_port = 389;
    indicate(ssl);
    EXPECT_EQ(node->tn_ssl_ldap.ldap_port, 389);
    Verb<DEFINE_TN3270_SLP> slp(NAP_DEFINE_TN3270_SLP);
    slp->settings.frequency = 15;
    indicate(slp);
    EXPECT_EQ(node->tn_slp.frequency, 15);
    Verb<DEFINE_IPBRIDGE_APPCIP_DEFAULTS> appcip(NAP_DEFINE_IPBRIDGE_APPCIP_DEFAULTS);
    appcip->defaults.port = 397;
    indicate(appcip);
    ASSERT_NE(node->appcip_defaults, nullptr);
    EXPECT_EQ(node->appcip_defaults->port, 397);
    ASSERT_TRUE(vga_issue_del_ipbridge_appcip_defaults(node, 0, no_completion));
    take_issued(vga_process_del_ipbridge_appcip_defaults);
    EXPECT_EQ(node->appcip_defaults, nullptr);
}

TEST_F(Members, BackupServersAreNamesOfTheNetworkFile) {
    // Padded with blanks, unlike the node's own name.
    Verb add(NAP_ADD_BACKUP, &BACKUP_SERVER::server_name, "node1");
    auto completion = add.completion();
    vga_process_add_backup(&completion, gvga_system);
    vga_process_add_backup(&completion, gvga_system);
    EXPECT_EQ(count(gvga_system->sna_net_tree), 1u);
    Verb<BACKUP_SERVER> remove(NAP_DELETE_BACKUP);
    std::strcpy(remove->server_name, "node1");
    completion = remove.completion();
    vga_process_delete_backup(&completion, gvga_system);
    vga_process_delete_backup(&completion, gvga_system);
    EXPECT_EQ(count(gvga_system->sna_net_tree), 0u);
}

} // namespace
} // namespace store_test
