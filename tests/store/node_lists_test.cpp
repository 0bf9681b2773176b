// Kinds of record with something of their own: lists inside lists, links to other records, second
// keys, rows under rows.
#include "fixture.h"

#include "store/query.h"

#include <algorithm>

namespace store_test {
namespace {

struct NodeLists : Store {
    vga_ls_routing* add_route(vga_lu62* lu, const std::string& partner, bool wildcard = false) {
        auto e = entry<LS_ROUTING_ENTRY>();
        std::memcpy(e.key.lu_name, lu->vcb.lu_name, sizeof e.key.lu_name);
        put(e.key.plu_name, partner);
        e.key.wildcard = wildcard;
        return vga_insert_vga_ls_routing(vga_init_vga_ls_routing(lu, &e), lu);
    }
    vga_lu62_timeout* add_timeout(NB_BYTE type, const std::string& name) {
        auto e = entry<LU62_TIMEOUT_ENTRY>();
        e.resource_type = type;
        put(e.resource_name, name);
        return vga_insert_vga_lu62_timeout(vga_init_vga_lu62_timeout(node, &e), node);
    }
    vga_lu_lu_password* add_password(vga_lu62* lu, const std::string& partner) {
        auto e = entry<LU_LU_PASSWORD_ENTRY>();
        put(e.key.plu_name, partner);
        return vga_insert_vga_lu_lu_password(vga_init_vga_lu_lu_password(lu, &e), lu);
    }
    vga_primary_line* add_line(const std::string& name) {
        auto e = entry(&PRIMARY_LINE_ENTRY::line_name, name);
        return vga_insert_vga_primary_line(vga_init_vga_primary_line(node, &e), node);
    }
    vga_primary_lu0* add_lu0(const std::string& name, vga_primary_line* line) {
        auto e = entry(&PRIMARY_LU0_ENTRY::lu_name, name);
        std::memcpy(e.def.line_name, line->vcb.line_name, sizeof e.def.line_name);
        return vga_insert_vga_primary_lu0(vga_init_vga_primary_lu0(line, &e), line);
    }
    void add_mode(vga_lu62* lu, const std::string& partner, const std::string& name) {
        auto e = entry(&PLU_ENTRY::plu_name, partner);
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

TEST_F(NodeLists, AnLuThatBecomesDependentShowsWhatItHasWhenItIsIndependentAgain) {
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    vga_lu62* lu = add_lu62(lu62("APPL", "OLD"));
    add_lu62(lu62("LU0", "ZERO"));
    add_mode(lu, "NET.P", "#INTER");
    add_route(lu, "NET.A");
    EXPECT_EQ(add_lu62(lu62("APPL", "NEW", 3, "PU1")), lu);
    EXPECT_EQ((named<vga_lu62, NB_NAME8L>(node->lu62_alias_tree, "NEW")), lu);
    EXPECT_EQ((named<vga_lu62, NB_NAME8L>(node->lu62_alias_tree, "OLD")), nullptr);
    EXPECT_EQ(rows(node->links_root), (Rows{"DLUR", " PU1", "  APPL"}));
    EXPECT_EQ(rows(node->lus_root), Rows{"LU0"});
    add_route(lu, "NET.B");
    EXPECT_EQ(add_lu62(lu62("APPL", "NEW")), lu);
    EXPECT_EQ(rows(node->lus_root),
              (Rows{"APPL", " NET.P/#INTER", " routes", "  NET.A", "  NET.B", "LU0"}));
    EXPECT_EQ(rows(node->links_root), (Rows{"DLUR", " PU1"}));
}

TEST_F(NodeLists, TimeoutsOfPartnersAndOfNamesTooLongAreNoLus) {
    vga_lu62* lu = add_lu62(lu62("APPL", "APPL"));
    vga_lu62_timeout* of_lu = add_timeout(NOF_TIMEOUT_LOCAL_LU, "APPL");
    EXPECT_EQ(add_timeout(NOF_TIMEOUT_PARTNER_LU, "NET.APPL")->resource, nullptr);
    EXPECT_EQ(add_timeout(NOF_TIMEOUT_LOCAL_LU, "APPL    X")->resource, nullptr);
    EXPECT_EQ(lu->timeout, of_lu);
}

TEST_F(NodeLists, WhatGoesAlongLetsGoOfItsDialog) {
    vga_dialog dialogs[2] = {};
    vga_lu62* lu = add_lu62(lu62("APPL", "APPL"));
    vga_lu_lu_password* password = add_password(lu, "NET.P");
    dialogs[0].parent_item = password;
    password->gui_data.dialog = &dialogs[0];
    auto e = entry<DSPU_TEMPLATE_ENTRY>();
    vga_dspu_template* dspu =
        vga_insert_vga_dspu_template(vga_init_vga_dspu_template(node, &e), node);
    auto r = entry<DSLU_TEMPLATE>();
    vga_dslu_template* range =
        vga_insert_vga_dslu_template(vga_init_vga_dslu_template(dspu, &r), dspu);
    dialogs[1].parent_item = range;
    range->gui_data.dslup_dialog = &dialogs[1];
    vga_delete_vga_lu62(lu, true);
    EXPECT_EQ(dialogs[0].parent_item, nullptr);
    vga_delete_vga_dspu_template(dspu, true);
    EXPECT_EQ(dialogs[1].parent_item, nullptr);
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
    auto e = entry(&USERID_PASSWORD_ENTRY::user_id, "ALICE");
    const auto add = [&](NB_USHORT profiles, bool continues) {
        e.def.num_profiles = profiles;
        for (int i = 0; i < std::min<int>(profiles, NOF_USER_PROFILES); ++i) {
            put(e.def.profiles[i], (continues ? "C" : "P") + std::to_string(i));
        }
        QUERY_USERID_PASSWORD block{}; // a page of its own
        block.list.header.opcode = NAP_QUERY_USERID_PASSWORD;
        block.list.list_options = continues ? NAP_LIST_FROM_NEXT : NAP_FIRST_IN_LIST;
        std::memcpy(block.user_id, e.user_id, sizeof block.user_id);
        block.list.buffer = &e;
        block.list.buffer_size = sizeof e;
        block.list.num_entries = block.list.total_entries = 1;
        return vga_process_query(VGA_QUERY_USERID, node, &block).record;
    };
    auto* alice = static_cast<vga_userid_password*>(add(7, false));
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
    testing::internal::CaptureStderr();
    add(0xFFFF, false);
    EXPECT_EQ(alice->vcb.def.num_profiles, NOF_USER_PROFILES);
    testing::internal::GetCapturedStderr();
}

TEST_F(NodeLists, SecondKeysFollowTheEntry) {
    auto e = entry<RTP_CONNECTION_ENTRY>();
    const auto add_rtp = [&](NB_BYTE id, const std::string& name) {
        e.connection_id[0] = id;
        put(e.rtp_name, name);
        return vga_insert_vga_rtp_conn(vga_init_vga_rtp_conn(node, &e), node);
    };
    const auto of_name = [&](const std::string& name) {
        return named<vga_rtp_conn, NB_NAME8L>(node->rtp_conn_name_tree, name);
    };
    vga_rtp_conn* conn = add_rtp(1, "R0001");
    vga_rtp_conn* twin = add_rtp(2, "R0001");
    conn->check_mark = 1;
    EXPECT_EQ(of_name("R0001"), conn);
    EXPECT_EQ(add_rtp(1, "R0002"), conn);
    EXPECT_EQ(conn->check_mark, 0);
    EXPECT_EQ(of_name("R0002"), conn);
    EXPECT_EQ(add_rtp(2, "R0001"), twin);
    EXPECT_EQ(of_name("R0001"), twin);

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
