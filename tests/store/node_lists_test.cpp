// Kinds of record with something of their own: lists inside lists, links to other records, second
// keys, rows under rows.
#include "fixture.h"

#include "ui/framework/dialog.h"

#include <algorithm>

namespace store_test {
namespace {

using Rows = std::vector<std::string>;

struct NodeLists : Store {
    ~NodeLists() override { vga_fail_allocation(0); }

    vga_ls_routing* add_route(vga_lu62* lu, const std::string& partner, bool wildcard = false) {
        auto e = entry<LS_ROUTING_ENTRY>();
        std::memcpy(e.key.lu_name, lu->vcb.lu_name, sizeof e.key.lu_name);
        put(e.key.plu_name, partner);
        e.key.wildcard = wildcard;
        return vga_insert_vga_ls_routing(vga_init_vga_ls_routing(lu, &e), lu);
    }
    vga_lu62_timeout* add_timeout(NB_BYTE type, const std::string& name, NB_USHORT seconds = 60) {
        auto e = entry<LU62_TIMEOUT_ENTRY>();
        e.resource_type = type;
        put(e.resource_name, name);
        e.timeout = seconds;
        return vga_insert_vga_lu62_timeout(vga_init_vga_lu62_timeout(node, &e), node);
    }
    vga_mode_def* add_mode_def(const std::string& name) {
        auto e = entry<MODE_DEF_ENTRY>();
        put(e.mode_name, name);
        return vga_insert_vga_mode_def(vga_init_vga_mode_def(node, &e), node);
    }
    vga_lu_lu_password* add_password(vga_lu62* lu, const std::string& partner) {
        auto e = entry<LU_LU_PASSWORD_ENTRY>();
        put(e.key.plu_name, partner);
        return vga_insert_vga_lu_lu_password(vga_init_vga_lu_lu_password(lu, &e), lu);
    }
    vga_primary_line* add_line(const std::string& name) {
        auto e = entry<PRIMARY_LINE_ENTRY>();
        put(e.line_name, name);
        return vga_insert_vga_primary_line(vga_init_vga_primary_line(node, &e), node);
    }
    vga_primary_lu0* add_lu0(const std::string& name, vga_primary_line* line) {
        auto e = entry<PRIMARY_LU0_ENTRY>();
        put(e.lu_name, name);
        std::memcpy(e.def.line_name, line->vcb.line_name, sizeof e.def.line_name);
        return vga_insert_vga_primary_lu0(vga_init_vga_primary_lu0(line, &e), line);
    }
    vga_tn_client* add_client(const std::string& address) {
        auto e = entry<TN3270_ACCESS_ENTRY>();
        std::strcpy(e.client.address, address.c_str());
        e.client.default_record = address.empty();
        return vga_insert_vga_tn_client(vga_init_vga_tn_client(node, &e), node);
    }
    vga_tn_sess* add_sess(vga_tn_client* client, NB_USHORT port) {
        auto e = entry<TN3270_SESSION>();
        e.port = port;
        return vga_insert_vga_tn_sess(vga_init_vga_tn_sess(client, &e), client);
    }
    vga_appcip_sess* add_appcip(const std::string& lu, NB_ULONG id) {
        auto e = entry<IPBRIDGE_APPCIP_ENTRY>();
        put(e.session.lu_name, lu);
        e.session.session_id = id;
        return vga_insert_vga_appcip_sess(vga_init_vga_appcip_sess(node, &e), node);
    }
    void add_mode(vga_lu62* lu, const std::string& partner, const std::string& name) {
        auto e = entry<PLU_ENTRY>();
        put(e.plu_name, partner);
        vga_plu* plu = vga_insert_vga_plu(vga_init_vga_plu(lu, &e), lu);
        const MODE_ENTRY m = mode(name, partner, 0);
        vga_insert_vga_mode(vga_init_vga_mode(plu, &m), plu);
    }
};

TEST_F(NodeLists, RoutesStandUnderAHeadingBehindTheModes) {
    vga_lu62* lu = add_lu62(lu62("APPL", "APPL"));
    add_route(lu, "NET.B");
    add_mode(lu, "NET.P", "#INTER");
    vga_ls_routing* any = add_route(lu, "NET.A", true);
    EXPECT_EQ(any->key.number, NAP_WILDCARD_LU_RESOURCE);
    vga_ls_routing* one = add_route(lu, "NET.A");
    EXPECT_NE(one, any) << "a name and all that begin so are two routes";
    EXPECT_EQ(add_route(lu, "NET.A"), one);
    EXPECT_EQ(rows(node->lus_root),
              (Rows{"APPL", " NET.P/#INTER", " routes", "  NET.A", "  NET.A*", "  NET.B"}));
    while (auto* route = ntl_avl_first<vga_ls_routing>(lu->ls_routing_tree)) {
        vga_delete_vga_ls_routing(route, true);
    }
    EXPECT_EQ(rows(node->lus_root), (Rows{"APPL", " NET.P/#INTER"}));
    add_route(lu, "NET.C");
    EXPECT_EQ(rows(node->lus_root), (Rows{"APPL", " NET.P/#INTER", " routes", "  NET.C"}));
}

TEST_F(NodeLists, AnLuThatBecomesIndependentShowsWhatItHas) {
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    vga_lu62* lu = add_lu62(lu62("APPL", "APPL"));
    add_mode(lu, "NET.P", "#INTER");
    add_route(lu, "NET.A");
    EXPECT_EQ(add_lu62(lu62("APPL", "APPL", 3, "PU1")), lu);
    EXPECT_EQ(rows(node->links_root), (Rows{"DLUR", " PU1", "  APPL"}));
    EXPECT_EQ(rows(node->lus_root), Rows{});
    add_route(lu, "NET.B");
    EXPECT_EQ(add_lu62(lu62("APPL", "APPL")), lu);
    EXPECT_EQ(rows(node->lus_root),
              (Rows{"APPL", " NET.P/#INTER", " routes", "  NET.A", "  NET.B"}));
}

// Timeouts, LUs and modes may arrive in any order and go in any order.
TEST_F(NodeLists, TimeoutsAndWhatTheyAreForFindEachOther) {
    vga_lu62_timeout* of_lu = add_timeout(NOF_TIMEOUT_LOCAL_LU, "APPL");
    EXPECT_EQ(of_lu->resource, nullptr);
    vga_lu62* lu = add_lu62(lu62("APPL", "APPL"));
    vga_mode_def* mode_def = add_mode_def("#INTER");
    vga_lu62_timeout* of_mode = add_timeout(NOF_TIMEOUT_MODE, "#INTER");
    vga_lu62_timeout* of_node = add_timeout(NOF_TIMEOUT_NODE, "");
    vga_lu62_timeout* of_partner = add_timeout(NOF_TIMEOUT_PARTNER_LU, "NET.APPL");
    vga_lu62_timeout* long_name = add_timeout(NOF_TIMEOUT_LOCAL_LU, "APPL    X");
    EXPECT_EQ(of_lu->resource, lu);
    EXPECT_EQ(lu->timeout, of_lu);
    EXPECT_EQ(of_mode->resource, mode_def);
    EXPECT_EQ(mode_def->timeout, of_mode);
    EXPECT_EQ(node->global_timeout, of_node);
    EXPECT_EQ(of_partner->resource, nullptr);
    EXPECT_EQ(long_name->resource, nullptr) << "no LU has a name of nine characters";

    EXPECT_EQ(add_timeout(NOF_TIMEOUT_LOCAL_LU, "APPL", 90), of_lu);
    EXPECT_EQ(of_lu->vcb.timeout, 90);
    EXPECT_EQ(lu->timeout, of_lu);

    vga_delete_vga_lu62(lu, true);
    EXPECT_EQ(of_lu->resource, nullptr);
    lu = add_lu62(lu62("APPL", "APPL")); // defined anew
    EXPECT_EQ(lu->timeout, of_lu);
    for (vga_lu62_timeout* timeout : {of_lu, of_mode, of_node}) {
        vga_delete_vga_lu62_timeout(timeout, true);
    }
    EXPECT_EQ(lu->timeout, nullptr);
    EXPECT_EQ(mode_def->timeout, nullptr);
    EXPECT_EQ(node->global_timeout, nullptr);
    of_mode = add_timeout(NOF_TIMEOUT_MODE, "#INTER");
    vga_delete_vga_mode_def(mode_def, true);
    EXPECT_EQ(of_mode->resource, nullptr);
}

TEST_F(NodeLists, ALocalLuTakesItsRoutesAndPasswordsAlong) {
    vga_lu62* lu = add_lu62(lu62("APPLB", "APPLB"));
    vga_lu62* others[] = {add_lu62(lu62("APPLA", "APPLA")), add_lu62(lu62("APPLC", "APPLC"))};
    const NB_HANDLE route = add_route(lu, "NET.A")->handle;
    const NB_HANDLE password = add_password(lu, "NET.P")->handle;
    add_password(lu, "NET.Q");
    EXPECT_EQ(vga_find_lu_lu_password(others[0], node->vcb.parameters.cp_name), nullptr);
    for (vga_lu62* other : others) {
        add_password(other, "NET.P");
    }
    vga_dialog dialog{};
    auto* edited = static_cast<vga_lu_lu_password*>(nba_validate_handle(password));
    dialog.parent_item = edited;
    edited->gui_data.dialog = &dialog;
    vga_delete_vga_lu62(lu, true);
    EXPECT_EQ(nba_validate_handle(route), nullptr);
    EXPECT_EQ(nba_validate_handle(password), nullptr);
    EXPECT_EQ(dialog.parent_item, nullptr);
    EXPECT_EQ(rows(node->sl_sec_root), (Rows{"title", "APPLA/NET.P", "APPLC/NET.P"}));
    EXPECT_EQ(count(node->sl_sec_tree), 2u);
}

TEST_F(NodeLists, PrimaryLinesShareThePortThatStandsForThem) {
    add_port("ETH0");
    vga_primary_line* second = add_line("LINE2");
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    vga_primary_line* first = add_line("LINE1");
    vga_primary_lu0* lu = add_lu0("LUB", second);
    add_lu0("LUA", second);
    EXPECT_EQ(rows(node->links_root),
              (Rows{"ETH0", "DLUR", " PU1", "LINES", " LINE1", " LINE2", "  LUA", "  LUB"}));
    const NB_HANDLE handle = lu->handle;
    EXPECT_EQ(add_lu0("LUB", first), lu) << "its definition moves it to another line";
    EXPECT_EQ(rows(node->links_root),
              (Rows{"ETH0", "DLUR", " PU1", "LINES", " LINE1", "  LUB", " LINE2", "  LUA"}));
    EXPECT_EQ(nba_validate_handle(handle), lu);
    EXPECT_EQ(vga_find_primary_lu0(node, lu->vcb.lu_name), lu);
    vga_delete_vga_primary_line(first, true);
    EXPECT_EQ(nba_validate_handle(handle), nullptr);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", "DLUR", " PU1", "LINES", " LINE2", "  LUA"}));
    vga_delete_vga_primary_line(second, true);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH0", "DLUR", " PU1"}));
    EXPECT_EQ(node->primary_line_fake_port, nullptr);
}

TEST_F(NodeLists, APrimaryLineWithoutMemoryForItsPortIsNotKept) {
    unsigned long nth = 0;
    while (node->primary_line_tree.root == nullptr) {
        auto e = entry<PRIMARY_LINE_ENTRY>();
        put(e.line_name, "LINE1");
        gvga_exit_code = 0;
        vga_fail_allocation(++nth);
        vga_primary_line* line = vga_init_vga_primary_line(node, &e);
        if (line != nullptr) {
            line = vga_insert_vga_primary_line(line, node);
        }
        vga_fail_allocation(0);
        EXPECT_EQ(gvga_exit_code == 0, line != nullptr) << nth;
        EXPECT_EQ(node->primary_line_fake_port != nullptr, line != nullptr) << nth;
    }
    EXPECT_GT(nth, 3u);
}

TEST_F(NodeLists, LoadInformationKeepsItsItemsWithinTheEntry) {
    struct {
        TP_LOAD_INFO_ENTRY fixed;
        char items[30];
    } e{};
    e.fixed.length = sizeof e;
    put(e.fixed.tp_name, "APPLTP");
    put(e.fixed.lu_alias, "A");
    e.fixed.def_data.ltv_length = 30;
    std::strcpy(e.items, "/usr/bin/tp");
    const auto add = [&] {
        return vga_insert_vga_tp_load_info(vga_init_vga_tp_load_info(node, &e.fixed), node);
    };
    vga_tp_load_info* info = add();
    EXPECT_STREQ(reinterpret_cast<char*>(info->vcb + 1), "/usr/bin/tp");
    EXPECT_EQ(info->tp_name_length, 6);
    e.fixed.length -= 10; // the items say more than there is
    EXPECT_EQ(add(), info);
    EXPECT_EQ(info->vcb->def_data.ltv_length, 20);
    EXPECT_EQ(ntl_avl_find(&node->tp_load_tree, e.fixed.tp_name), info);
    put(e.fixed.lu_alias, "B");
    EXPECT_NE(add(), info) << "one TP may be loaded differently for each LU";
    std::memset(e.fixed.tp_name, 0x03, 2); // does not print
    vga_tp_load_info* hexadecimal = add();
    EXPECT_NE(hexadecimal->hex_tp_name, 0);
    EXPECT_EQ(hexadecimal->tp_name_length, 12);
}

TEST_F(NodeLists, ProfilesBeyondTheTenthAreDroppedAndLogged) {
    auto e = entry<USERID_PASSWORD_ENTRY>();
    put(e.user_id, "ALICE");
    const auto add = [&](NB_USHORT profiles, bool continues) {
        e.def.num_profiles = profiles;
        for (int i = 0; i < std::min<int>(profiles, NOF_USER_PROFILES); ++i) {
            put(e.def.profiles[i], (continues ? "C" : "P") + std::to_string(i));
        }
        return vga_insert_vga_userid_password(vga_init_vga_userid_password(node, &e), node,
                                              continues);
    };
    vga_userid_password* alice = add(7, false);
    testing::internal::CaptureStderr();
    EXPECT_EQ(add(2, true), alice);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(alice->vcb.def.num_profiles, 9);
    EXPECT_EQ(get(alice->vcb.def.profiles[8]), "C1");
    testing::internal::CaptureStderr();
    add(3, true);
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_NE(log.find("ALICE"), std::string::npos) << log;
    EXPECT_EQ(alice->vcb.def.num_profiles, NOF_USER_PROFILES);
    EXPECT_EQ(get(alice->vcb.def.profiles[9]), "C0");
    add(1, false); // defined anew
    EXPECT_EQ(alice->vcb.def.num_profiles, 1);
    testing::internal::CaptureStderr();
    add(0xFFFF, false);
    EXPECT_EQ(alice->vcb.def.num_profiles, NOF_USER_PROFILES);
    testing::internal::GetCapturedStderr();
}

TEST_F(NodeLists, SessionsOfAllClientsStandInOneOrder) {
    vga_tn_client* b = add_client("host-b");
    vga_tn_client* any = add_client("");
    vga_tn_client* a = add_client("host-a");
    add_client("host-aa"); // has no session
    vga_tn_sess* b23 = add_sess(b, 23);
    vga_tn_sess* a9000 = add_sess(a, 9000);
    add_sess(a, 23);
    add_sess(any, 23);
    add_sess(b, 9);
    EXPECT_EQ(add_sess(b, 23), b23);
    EXPECT_EQ(rows(node->tn_client_root),
              (Rows{"title", "/23", "host-a/23", "host-a/9000", "host-b/9", "host-b/23"}));
    vga_delete_vga_tn_sess(a9000, true);
    vga_delete_vga_tn_client(b, true);
    EXPECT_EQ(rows(node->tn_client_root), (Rows{"title", "/23", "host-a/23"}));
    EXPECT_EQ(count(node->tn_client_tree), 3u);
}

TEST_F(NodeLists, PortsAndTheirTemplateFindEachOther) {
    auto e = entry<DSPU_TEMPLATE_ENTRY>();
    put(e.template_name, "TMPL");
    add_dlc(dlc("ETH"));
    PORT_ENTRY p = port("ETH0", "ETH");
    put(p.def.implicit_dspu_template, "TMPL");
    const auto add_port_with = [&](const std::string& name) {
        put(p.port_name, name);
        auto* owner = ntl_avl_first<vga_dlc>(node->dlc_tree);
        return vga_insert_vga_port(vga_init_vga_port(owner, &p), owner);
    };
    const auto add_template = [&] {
        return vga_insert_vga_dspu_template(vga_init_vga_dspu_template(node, &e), node);
    };
    vga_port* before = add_port_with("ETH0");
    vga_port* other = add_port("TR0");
    vga_dspu_template* dspu = add_template();
    vga_port* after = add_port_with("ETH1");
    EXPECT_EQ(before->dspu_template, dspu);
    EXPECT_EQ(after->dspu_template, dspu);
    EXPECT_EQ(other->dspu_template, nullptr);

    auto range = entry<DSLU_TEMPLATE>();
    const auto add_range = [&](NB_BYTE first, NB_BYTE last) {
        range.first_nau = first;
        range.last_nau = last;
        return vga_insert_vga_dslu_template(vga_init_vga_dslu_template(dspu, &range), dspu);
    };
    vga_dslu_template* low = add_range(2, 9);
    add_range(10, 12);
    range.allow_timeout = 1;
    EXPECT_EQ(add_range(2, 9), low);
    EXPECT_EQ(low->vcb.allow_timeout, 1);
    EXPECT_EQ(add_template(), dspu);
    EXPECT_EQ(rows(dspu->dslu_root), (Rows{"2-9", "10-12"})) << "a template keeps its ranges";
    vga_dialog dialog{};
    dialog.parent_item = low;
    low->gui_data.dslup_dialog = &dialog;
    vga_delete_vga_dspu_template(dspu, true);
    EXPECT_EQ(dialog.parent_item, nullptr);
    EXPECT_EQ(before->dspu_template, nullptr);
    EXPECT_EQ(after->dspu_template, nullptr);
}

TEST_F(NodeLists, SecondKeysFollowTheEntry) {
    auto e = entry<RTP_CONNECTION_ENTRY>();
    const auto add_rtp = [&](NB_BYTE id, const std::string& name) {
        e.connection_id[0] = id;
        put(e.rtp_name, name);
        return vga_insert_vga_rtp_conn(vga_init_vga_rtp_conn(node, &e), node);
    };
    const auto named = [&](const std::string& name) {
        NB_NAME8L key;
        put(key, name);
        return ntl_avl_find(&node->rtp_conn_name_tree, key);
    };
    vga_rtp_conn* conn = add_rtp(1, "R0001");
    vga_rtp_conn* twin = add_rtp(2, "R0001");
    conn->check_mark = 1;
    EXPECT_EQ(named("R0001"), conn);
    EXPECT_EQ(add_rtp(1, "R0002"), conn);
    EXPECT_EQ(conn->check_mark, 0);
    EXPECT_EQ(named("R0002"), conn);
    EXPECT_EQ(add_rtp(2, "R0001"), twin);
    EXPECT_EQ(named("R0001"), twin);

    vga_appcip_sess* sess = add_appcip("LUA", 7);
    const NB_HANDLE ended = add_appcip("LUB", 8)->handle;
    const auto numbered = [&](NB_ULONG id) { return ntl_avl_find(&node->appcip_id_tree, &id); };
    EXPECT_EQ(add_appcip("LUA", 8), sess) << "a number used again is another session's";
    EXPECT_EQ(numbered(8), sess);
    EXPECT_EQ(numbered(7), nullptr);
    EXPECT_EQ(nba_validate_handle(ended), nullptr);
    EXPECT_EQ(count(node->appcip_sess_tree), 1u);
}

} // namespace
} // namespace store_test
