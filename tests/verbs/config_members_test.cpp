// Definitions with members: what a define adds, what a delete that lists members takes out, and
// what comes to light on the way.
#include "store/fixture.h"

#include "nof/cn.h"
#include "nof/extra_data.h"
#include "nof/pool.h"
#include "store/tracking.h"
#include "verbs/config.h"

#include <algorithm>

namespace store_test {
namespace {

using Names = std::vector<std::string>;

// A block with room for members behind it.
template <typename T, typename Member = NB_BYTE> struct Verb {
    std::vector<NB_BYTE> bytes = std::vector<NB_BYTE>(sizeof(T));

    explicit Verb(NB_USHORT opcode) { vcb_header(bytes.data())->opcode = opcode; }
    T* operator->() { return reinterpret_cast<T*>(bytes.data()); }
    void add(const Member& member) {
        const auto* from = reinterpret_cast<const NB_BYTE*>(&member);
        bytes.insert(bytes.end(), from, from + sizeof member);
    }
    VGA_COMPLETION completion() { return {0, bytes.data(), 0}; }
};

TN3270_SESSION session(NB_USHORT port, const std::string& lu) {
    TN3270_SESSION s{};
    s.port = port;
    put(s.lu_name, lu);
    return s;
}

class Members : public Store {
protected:
    Members() {
        node->build_flags = 0;
        gvga_system->build_flags = 0;
        add_port("ETH0");
        add_ls(ls("LS1", "ETH0", "PU1"));
        for (int i = 1; i <= 4; ++i) {
            add_lu03(lu03("LU" + std::to_string(i), "PU1", static_cast<NB_BYTE>(i)));
        }
    }

    // What a call writes to the log.
    template <typename Call> std::string log_of(Call call) {
        testing::internal::CaptureStderr();
        call();
        return testing::internal::GetCapturedStderr();
    }
    static bool logged(const std::string& log, int subcode) {
        return log.find(" exception 0x40020004 " + std::to_string(subcode)) != std::string::npos &&
               std::count(log.begin(), log.end(), '\n') == 1;
    }

    // ---- TN3270 ----
    vga_tn_sess* define_client(const std::string& address, const std::vector<NB_USHORT>& ports,
                               NB_BYTE not_listed = 0) {
        Verb<DEFINE_TN3270_ACCESS, TN3270_SESSION> verb(NAP_DEFINE_TN3270_ACCESS);
        for (const NB_USHORT port : ports) {
            TN3270_SESSION s = session(port, "LU1");
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
    vga_tn_sess* delete_client(const std::string& address, const std::vector<NB_USHORT>& ports,
                               NB_USHORT all = 0) {
        Verb<DELETE_TN3270_ACCESS, TN3270_SESSION_NAME> verb(NAP_DELETE_TN3270_ACCESS);
        verb.bytes.resize(offsetof(DELETE_TN3270_ACCESS, sessions));
        for (const NB_USHORT port : ports) {
            verb.add({port, {}});
        }
        verb.bytes.resize(std::max(verb.bytes.size(), sizeof(DELETE_TN3270_ACCESS)));
        std::strcpy(verb->client.address, address.c_str());
        verb->num_sessions = static_cast<NB_ULONG>(ports.size());
        verb->delete_all = all;
        auto completion = verb.completion();
        vga_tn_sess* next;
        vga_process_del_tn_access(&completion, node, &next);
        return next;
    }
    // Address and port of every session in the order of their rows.
    Names clients() {
        Names names;
        for (auto* s = vga_get_next_tn_sess(nullptr, node); s != nullptr;
             s = vga_get_next_tn_sess(s, node)) {
            names.push_back(s->parent->vcb.client.address + (":" + std::to_string(s->vcb.port)));
        }
        return names;
    }

    // ---- users ----
    vga_user_sess* define_user(const std::string& name, const Names& sessions,
                               NB_BYTE type = NOF_SESSION_3270) {
        Verb<DEFINE_EMULATOR_USER, USER_SESSION> verb(NAP_DEFINE_EMULATOR_USER);
        for (const std::string& session_name : sessions) {
            USER_SESSION s{};
            put(s.session_name, session_name);
            s.session_type = type;
            verb.add(s);
        }
        put(verb->user_name, name);
        verb->def.num_sessions = static_cast<NB_ULONG>(sessions.size());
        auto completion = verb.completion();
        vga_user_sess* first;
        vga_process_def_user_session(&completion, gvga_system, &first);
        return first;
    }
    vga_user_sess* delete_user(const std::string& name, const Names& sessions, NB_BYTE types = 0) {
        Verb<DELETE_EMULATOR_USER> verb(NAP_DELETE_EMULATOR_USER);
        put(verb->user_name, name);
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
    Names sessions_of(const std::string& name) {
        Names names;
        if (const vga_user* user = find_user(name); user != nullptr) {
            for (auto* s = ntl_avl_first<vga_user_sess>(user->session_tree); s != nullptr;
                 s = static_cast<vga_user_sess*>(ntl_avl_next(&s->node))) {
                names.push_back(get(s->vcb.session_name));
            }
        }
        return names;
    }
    static vga_user* find_user(const std::string& name) {
        char key[32];
        put(key, name);
        return static_cast<vga_user*>(ntl_avl_find(&gvga_system->user_tree, key));
    }

    // ---- pools ----
    void define_pool(const std::string& name, const Names& lus, vga_node* owner) {
        Verb<DEFINE_LU_POOL> verb(NAP_DEFINE_LU_POOL);
        put(verb->pool_name, name);
        verb->num_lus = static_cast<NB_USHORT>(lus.size());
        for (std::size_t i = 0; i < lus.size(); ++i) {
            put(verb->lu_names[i], lus[i]);
        }
        auto completion = verb.completion();
        vga_process_def_lu_pool(&completion, owner);
    }
    void delete_pool(const std::string& name, const Names& lus, vga_node* owner) {
        Verb<DELETE_LU_POOL> verb(NAP_DELETE_LU_POOL);
        if (!name.empty()) {
            put(verb->pool_name, name);
        }
        verb->num_lus = static_cast<NB_USHORT>(lus.size());
        for (std::size_t i = 0; i < lus.size(); ++i) {
            put(verb->lu_names[i], lus[i]);
        }
        auto completion = verb.completion();
        vga_process_del_lu_pool(&completion, owner);
    }
    // The LUs of a pool over all nodes; "" stands for the null pool, "-" for a pool that is not
    // there.
    static Names pool(const std::string& name) {
        NB_NAME8E key{};
        if (!name.empty()) {
            put(key, name);
        }
        const auto* system_pool =
            static_cast<vga_sys_pool*>(ntl_avl_find(&gvga_system->pool_tree, key));
        if (system_pool == nullptr) {
            return {"-"};
        }
        Names names;
        for (auto* part = ntl_avl_first<vga_pool>(system_pool->node_tree); part != nullptr;
             part = static_cast<vga_pool*>(ntl_avl_next(&part->leaf))) {
            for (auto* lu = ntl_avl_first<vga_lu03>(part->lu_tree); lu != nullptr;
                 lu = static_cast<vga_lu03*>(ntl_avl_next(&lu->pool_node))) {
                names.push_back(get(lu->vcb.lu_name));
            }
        }
        EXPECT_EQ(static_cast<std::size_t>(system_pool->total_count), names.size());
        return names;
    }
};

TEST_F(Members, AnAccessListGainsAndLosesUsers) {
    const auto define = [this](const Names& users) {
        Verb<DEFINE_SECURITY_ACCESS_LIST, ACCESS_LIST_USER> verb(NAP_DEFINE_SECURITY_ACCESS_LIST);
        for (const std::string& user : users) {
            ACCESS_LIST_USER member{};
            put(member.user_id, user);
            verb.add(member);
        }
        put(verb->list_name, "clerks");
        verb->def.num_users = static_cast<NB_ULONG>(users.size());
        auto completion = verb.completion();
        vga_security_access_list* list;
        vga_process_def_security_access_list(&completion, node, &list);
        return list;
    };
    const auto remove = [this](const Names& users) {
        Verb<DELETE_SECURITY_ACCESS_LIST, char[10]> verb(NAP_DELETE_SECURITY_ACCESS_LIST);
        for (const std::string& user : users) {
            char name[10];
            put(name, user);
            verb.add(name);
        }
        put(verb->list_name, "clerks");
        verb->num_users = static_cast<NB_ULONG>(users.size());
        auto completion = verb.completion();
        vga_process_del_security_access_list(&completion, node);
    };
    vga_security_access_list* list = define({"anna", "bert"});
    EXPECT_EQ(define({"carl", "anna"}), list);
    EXPECT_EQ(count(list->user_tree), 3u);
    EXPECT_TRUE(logged(log_of([&] { remove({"bert", "nobody"}); }), 79));
    EXPECT_EQ(count(list->user_tree), 2u);
    EXPECT_EQ(count(node->access_list_tree), 1u);
    remove({});
    EXPECT_EQ(count(node->access_list_tree), 0u);
}

TEST_F(Members, ProfilesLeaveAUserIdThatStays) {
    Verb<DEFINE_USERID_PASSWORD> define(NAP_DEFINE_USERID_PASSWORD);
    put(define->user_id, "ANNA");
    define->def.num_profiles = NOF_USER_PROFILES;
    for (int i = 0; i < NOF_USER_PROFILES; ++i) {
        put(define->def.profiles[i], "PROF" + std::to_string(i));
    }
    auto completion = define.completion();
    vga_userid_password* userid;
    vga_process_def_userid_password(&completion, node, &userid);
    Verb<DELETE_USERID_PASSWORD> remove(NAP_DELETE_USERID_PASSWORD);
    remove->delete_type = NAP_REMOVE_PROFILES;
    put(remove->user_id, "ANNA");
    remove->num_profiles = 3;
    put(remove->profiles[0], "PROF9");
    put(remove->profiles[1], "PROF0");
    put(remove->profiles[2], "NOSUCH");
    completion = remove.completion();
    vga_process_del_userid_password(&completion, node);
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
        auto completion = define.completion();
        vga_lu_lu_password* password;
        const std::string log =
            log_of([&] { vga_process_def_lu_lu_password(&completion, node, &password); });
        EXPECT_EQ(log != "", row.lu == nullptr) << log;
        EXPECT_EQ(password != nullptr ? get(password->key.lu_name) : "",
                  row.lu != nullptr ? get(row.lu->vcb.lu_name) : "");
        completion = remove.completion();
        const auto remove_it = [&] { vga_process_del_lu_lu_password(&completion, node); };
        if (row.lu == nullptr) {
            EXPECT_TRUE(logged(log, 59)) << log;
            EXPECT_TRUE(logged(log_of(remove_it), 60));
            continue;
        }
        EXPECT_EQ(log_of(remove_it), "");
        EXPECT_EQ(count(node->sl_sec_tree), 0u);
        // A second delete is news for an LU with a name, unless its passwords are being listed.
        const bool named = row.name[0] != '\0';
        row.lu->startup_status = 0;
        EXPECT_EQ(logged(log_of(remove_it), 61), named);
        row.lu->startup_status = VGA_PASSWORD_LIST;
        EXPECT_EQ(logged(log_of(remove_it), 61), !named);
        row.lu->startup_status = 0;
    }
}

TEST_F(Members, MembersOfUnknownParentsAreLogged) {
    Verb<DEFINE_LS_ROUTING> routing(NAP_DEFINE_LS_ROUTING);
    put(routing->key.lu_name, "NOSUCH");
    auto completion = routing.completion();
    EXPECT_TRUE(logged(log_of([&] { vga_process_def_ls_routing(&completion, node); }), 68));
    vcb_header(completion.vcb)->opcode = NAP_DELETE_LS_ROUTING;
    EXPECT_TRUE(logged(log_of([&] { vga_process_del_ls_routing(&completion, node); }), 69));
    node->checks_running[VGA_CHECK_LOCAL_LU] = 1;
    EXPECT_EQ(log_of([&] { vga_process_del_ls_routing(&completion, node); }), "");
    node->checks_running[VGA_CHECK_LOCAL_LU] = 0;

    Verb<DEFINE_PRIMARY_LU0> lu(NAP_DEFINE_PRIMARY_LU0);
    put(lu->lu_name, "HOSTLU");
    put(lu->def.line_name, "LINE1");
    completion = lu.completion();
    EXPECT_TRUE(logged(log_of([&] { vga_process_def_primary_lu0(&completion, node); }), 74));
    Verb<DEFINE_PRIMARY_LINE> line(NAP_DEFINE_PRIMARY_LINE);
    put(line->line_name, "LINE1");
    auto line_completion = line.completion();
    vga_process_def_primary_line(&line_completion, node);
    vga_primary_lu0* record;
    vga_process_def_primary_lu0(&completion, node, &record);
    EXPECT_NE(record, nullptr);
    Verb<DELETE_PRIMARY_LU0> remove(NAP_DELETE_PRIMARY_LU0);
    put(remove->lu_name, "HOSTLU");
    completion = remove.completion();
    EXPECT_EQ(log_of([&] { vga_process_del_primary_lu0(&completion, node); }), "");
    EXPECT_TRUE(logged(log_of([&] { vga_process_del_primary_lu0(&completion, node); }), 75));
}

TEST_F(Members, ATemplateTakesTheRangesOfItsLastDefinition) {
    const auto define = [this](const std::vector<std::array<NB_BYTE, 2>>& ranges, NB_BYTE modify) {
        Verb<DEFINE_DSPU_TEMPLATE, DSLU_TEMPLATE> verb(NAP_DEFINE_DSPU_TEMPLATE);
        for (const auto& range : ranges) {
            DSLU_TEMPLATE member{};
            member.first_nau = range[0];
            member.last_nau = range[1];
            verb.add(member);
        }
        put(verb->template_name, "BRANCH");
        verb->def.modify_template = modify;
        verb->def.num_dslu_templates = static_cast<NB_USHORT>(ranges.size());
        auto completion = verb.completion();
        vga_dspu_template* record;
        vga_process_def_dspu_template(&completion, node, &record);
        return record;
    };
    vga_dspu_template* record = define({{1, 10}, {20, 30}}, 0);
    EXPECT_EQ(count(record->dslu_tree), 2u);
    EXPECT_EQ(define({{5, 15}}, 0), record);
    EXPECT_EQ(count(record->dslu_tree), 1u);
    EXPECT_EQ(ntl_avl_first<vga_dslu_template>(record->dslu_tree)->vcb.last_nau, 15);
    define({{40, 50}}, 1);
    EXPECT_EQ(count(record->dslu_tree), 2u);
}

TEST_F(Members, Tn3270ClientsGainAndLoseSessions) {
    vga_tn_sess* last = define_client("b", {23, 24});
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(last->vcb.port, 24);
    EXPECT_EQ(define_client("b", {24}), last) << "defined again";
    define_client("b", {25});
    EXPECT_EQ(define_client("b", {99}, 1), nullptr) << "an internal session is no row";
    define_client("a", {23});
    define_client("c", {});
    define_client("d", {1});
    EXPECT_EQ(clients(), (Names{"a:23", "b:23", "b:24", "b:25", "d:1"}));

    vga_tn_sess* next;
    const std::string log = log_of([&] { next = delete_client("b", {77, 24}); });
    EXPECT_TRUE(logged(log, 54)) << log;
    ASSERT_NE(next, nullptr);
    EXPECT_EQ(next->vcb.port, 25);
    next = delete_client("b", {25});
    ASSERT_NE(next, nullptr);
    EXPECT_EQ(next->vcb.port, 1) << "behind the last session comes the next client's first";
    EXPECT_EQ(clients(), (Names{"a:23", "b:23", "d:1"}));

    delete_client("a", {}, 1);
    EXPECT_EQ(clients(), (Names{"b:23", "d:1"}));
    EXPECT_EQ(count(node->tn_client_tree), 4u) << "the client stays";
    next = delete_client("c", {});
    ASSERT_NE(next, nullptr);
    EXPECT_EQ(next->vcb.port, 1);
    EXPECT_EQ(delete_client("d", {}), nullptr);
    EXPECT_EQ(clients(), Names{"b:23"});
    EXPECT_TRUE(logged(log_of([&] { delete_client("d", {}); }), 55));
}

TEST_F(Members, UsersGainAndLoseSessions) {
    vga_user_sess* first = define_user("anna", {"s2", "s1"});
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(get(first->vcb.session_name), "s2");
    define_user("anna", {"s3"}, NOF_SESSION_5250);
    EXPECT_EQ(sessions_of("anna"), (Names{"s1", "s2", "s3"}));
    vga_user_sess* next;
    const std::string log = log_of([&] { next = delete_user("anna", {"none", "s1"}); });
    EXPECT_TRUE(logged(log, 29)) << log;
    EXPECT_EQ(next, first);
    EXPECT_EQ(delete_user("anna", {}, NOF_SESSION_5250), nullptr);
    EXPECT_EQ(sessions_of("anna"), Names{"s2"});
    delete_user("anna", {});
    EXPECT_EQ(find_user("anna"), nullptr);
    EXPECT_TRUE(logged(log_of([&] { delete_user("anna", {}); }), 30));
}

TEST_F(Members, AUserWhoIsDefinedTakesTheLusInUseUnderTheName) {
    define_user("<DEFAULT>", {});
    vga_lu03* lu = ntl_avl_first<vga_lu03>(gvga_system->lu_tree);
    lu->vcb.det_data.appl_conn_active = NAP_YES;
    lu->vcb.det_data.app_type = NAP_FMI_APPLICATION;
    put(lu->vcb.det_data.application.user.user_name, "anna");
    vga_update_pool_lu(lu, true);
    vga_update_user_sessions(lu, true);
    ASSERT_EQ(lu->user, find_user("<DEFAULT>"));
    define_user("bert", {});
    EXPECT_EQ(lu->user, find_user("<DEFAULT>"));
    define_user("anna", {});
    EXPECT_EQ(lu->user, find_user("anna"));
    EXPECT_EQ(find_user("anna")->session_count, 1);
    EXPECT_EQ(find_user("<DEFAULT>")->session_count, 0);
    delete_user("anna", {});
    EXPECT_EQ(find_user("<DEFAULT>")->session_count, 1);
}

TEST_F(Members, LusMoveBetweenPools) {
    EXPECT_EQ(pool(""), (Names{"LU1", "LU2", "LU3", "LU4"}));
    define_pool("POOLA", {"LU1", "LU2"}, node);
    EXPECT_TRUE(logged(log_of([&] { define_pool("POOLB", {"LU2", "NOSUCH", "LU3"}, node); }), 49));
    define_pool("POOLB", {"LU3"}, node);
    EXPECT_EQ(pool("POOLA"), Names{"LU1"});
    EXPECT_EQ(pool("POOLB"), (Names{"LU2", "LU3"}));
    EXPECT_EQ(pool(""), Names{"LU4"});
    delete_pool("POOLB", {"LU3"}, node);
    EXPECT_EQ(pool("POOLB"), Names{"LU2"});
    EXPECT_EQ(pool(""), (Names{"LU3", "LU4"}));
    delete_pool("POOLB", {}, node);
    EXPECT_EQ(pool("POOLB"), Names{"-"});
    EXPECT_EQ(pool(""), (Names{"LU2", "LU3", "LU4"}));
    EXPECT_TRUE(logged(log_of([&] { delete_pool("POOLB", {}, node); }), 50));
    EXPECT_TRUE(logged(log_of([&] { delete_pool("", {}, node); }), 50));
    EXPECT_EQ(pool(""), (Names{"LU2", "LU3", "LU4"}));
}

TEST_F(Members, APoolOfTwoNodesGoesNodeByNode) {
    vga_node* first = node;
    vga_node* second = node = add_node("NODE2");
    second->build_flags = 0;
    add_port("ETH0");
    add_ls(ls("LS1", "ETH0", "PU1"));
    add_lu03(lu03("LU9", "PU1", 9));
    node = first;
    define_pool("POOLA", {"LU1"}, first);
    define_pool("POOLA", {"LU9"}, second);
    EXPECT_EQ(pool("POOLA"), (Names{"LU1", "LU9"}));
    delete_pool("POOLA", {}, first);
    EXPECT_EQ(pool("POOLA"), Names{"LU9"});
    delete_pool("POOLA", {}, second);
    EXPECT_EQ(pool("POOLA"), Names{"-"});
}

TEST_F(Members, ExtraDataIsKeptForLusOfTypes0To3Only) {
    const auto send = [this](NB_USHORT opcode, NB_USHORT kind) {
        Verb<DEFINE_EXTRA_DATA> verb(opcode);
        verb->resource_kind = kind;
        van_ascii_to_ebcdic(verb->data.name, "LU1", 8);
        verb->data.parameter142 = 7;
        auto completion = verb.completion();
        (opcode == NAP_DEFINE_EXTRA_DATA ? vga_process_def_extra_data
                                         : vga_process_del_extra_data)(&completion, node);
    };
    const auto* lu = ntl_avl_first<vga_lu03>(gvga_system->lu_tree);
    send(NAP_DEFINE_EXTRA_DATA, 0x5001);
    EXPECT_EQ(lu->extra_data, nullptr);
    send(NAP_DEFINE_EXTRA_DATA, NOF_EXTRA_DATA_LU_0_TO_3);
    ASSERT_NE(lu->extra_data, nullptr);
    EXPECT_EQ(lu->extra_data->data.parameter142, 7u);
    send(NAP_DELETE_EXTRA_DATA, 0x5001);
    EXPECT_NE(lu->extra_data, nullptr);
    send(NAP_DELETE_EXTRA_DATA, NOF_EXTRA_DATA_LU_0_TO_3);
    EXPECT_EQ(lu->extra_data, nullptr);
}

TEST_F(Members, SettingsReplaceTheNodesCopies) {
    Verb<DEFINE_TN3270_DEFAULTS> defaults(NAP_DEFINE_TN3270_DEFAULTS);
    defaults->defaults.keepalive_interval = 60;
    Verb<DEFINE_TN3270_EXPRESS_LOGON> logon(NAP_DEFINE_TN3270_EXPRESS_LOGON);
    logon->dcas_port = 8990;
    Verb<DEFINE_TN3270_SSL_LDAP> ssl(NAP_DEFINE_TN3270_SSL_LDAP);
    ssl->settings.ldap_port = 389;
    Verb<DEFINE_TN3270_SLP> slp(NAP_DEFINE_TN3270_SLP);
    slp->settings.frequency = 15;
    Verb<DEFINE_IPBRIDGE_APPCIP_DEFAULTS> appcip(NAP_DEFINE_IPBRIDGE_APPCIP_DEFAULTS);
    appcip->defaults.port = 397;
    for (VGA_COMPLETION completion : {defaults.completion(), logon.completion(), ssl.completion(),
                                      slp.completion(), appcip.completion()}) {
        completion.corr = node->handle;
        vga_process_node_config_ind(&completion);
    }
    EXPECT_EQ(node->tn_defaults.keepalive_interval, 60u);
    EXPECT_EQ(node->express_logon.dcas_port, 8990);
    EXPECT_EQ(node->tn_ssl_ldap.ldap_port, 389);
    EXPECT_EQ(node->tn_slp.frequency, 15);
    ASSERT_NE(node->appcip_defaults, nullptr);
    EXPECT_EQ(node->appcip_defaults->port, 397);
    Verb<HEADER_ONLY> remove(NAP_DELETE_IPBRIDGE_APPCIP_DEFAULTS);
    VGA_COMPLETION completion = remove.completion();
    vga_process_del_ipbridge_appcip_defaults(&completion, node);
    EXPECT_EQ(node->appcip_defaults, nullptr);
}

TEST_F(Members, BackupServersAreNamesOfTheNetworkFile) {
    Verb<BACKUP_SERVER> add(NAP_ADD_BACKUP);
    put(add->server_name, "node1"); // padded with blanks, unlike the node's own name
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
