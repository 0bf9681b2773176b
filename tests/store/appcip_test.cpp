// Sessions of APPC over IP by indication, and the check that makes up for lost ones.
#include "scripted_node.h"

#include "store/checks.h"
#include "verbs/status.h"

namespace store_test {
namespace {

struct AppcOverIp : Store {
    AppcOverIp() {
        node->node_handle = FIRST_NODE_HANDLE;
        gvga_querybuf_size = 4096;
        const IPBRIDGE_APPCIP_DEFAULTS defaults{};
        vga_add_ipbridge_appcip_defaults(node, &defaults);
    }
    void indicate(NB_ULONG id, const std::string& lu, NB_BYTE change, bool resync = false,
                  NB_BYTE type = 0) {
        IPBRIDGE_INDICATION ind{};
        ind.header.opcode = NAP_IPBRIDGE_INDICATION;
        ind.resync = resync;
        ind.change = change;
        ind.indication_type = type;
        ind.session.session_id = id;
        put(ind.session.lu_name, lu);
        VGA_COMPLETION completion{FIRST_NODE_HANDLE, &ind, node->handle};
        vga_indication_handler(&completion, &ind);
    }
    ScriptedNode script;
};

TEST_F(AppcOverIp, SessionsComeChangeAndEndByIndication) {
    indicate(5, "LUB", 1);
    indicate(6, "LUA", 1);
    auto* sess = ntl_avl_first<vga_appcip_sess>(node->appcip_sess_tree);
    indicate(6, "LUA", 2);
    EXPECT_EQ(sess->vcb.state, 2);
    EXPECT_EQ(rows(node->appcip_root), (Rows{"title", "LUA", "LUB"}));
    indicate(5, "", NOF_IPBRIDGE_ENDED);
    indicate(99, "", NOF_IPBRIDGE_ENDED); // known to nobody
    EXPECT_EQ(rows(node->appcip_root), (Rows{"title", "LUA"}));
    indicate(7, "LUC", 1, false, 1);
    EXPECT_EQ(count(node->appcip_sess_tree), 1u);
    EXPECT_EQ(nba_assert_count(), asserts + 1) << "not a session";
    asserts = nba_assert_count();
}

TEST_F(AppcOverIp, LostIndicationsAreMadeUpForByTheList) {
    vga_appcip_sess* kept = add_appcip("LUA", 1);
    add_appcip("LUB", 2);
    add_appcip("LUD", 4);
    for (const auto& [lu, id] : {std::pair{"LUA", 1u}, {"LUC", 3u}, {"LUD", 4u}}) {
        auto e = entry<IPBRIDGE_APPCIP_ENTRY>();
        put(e.session.lu_name, lu);
        e.session.session_id = id;
        script.has(NAP_QUERY_IPBRIDGE_APPCIP, e);
    }
    indicate(0, "", 0, true);
    EXPECT_EQ(node->checks_running[VGA_CHECK_IPBRIDGE_SESS], 1u);
    vga_start_check_ipbridge_sess(node); // again, before the first answer
    script.run();
    EXPECT_EQ(node->checks_running[VGA_CHECK_IPBRIDGE_SESS], 0u);
    EXPECT_EQ(rows(node->appcip_root), (Rows{"title", "LUA", "LUC", "LUD"}));
    EXPECT_EQ(ntl_avl_first<vga_appcip_sess>(node->appcip_sess_tree), kept);
    EXPECT_EQ(gvga_exit_code, 0);
}

TEST_F(AppcOverIp, AFailedListRemovesNothingAndALostNodeEndsTheCheck) {
    add_appcip("LUA", 1);
    for (const Codes codes :
         {Codes{NAP_STATE_CHECK, 1}, Codes{NAP_UNSUCCESSFUL, NAP_TARGET_GONE}}) {
        script.codes[NAP_QUERY_IPBRIDGE_APPCIP] = codes;
        vga_start_check_ipbridge_sess(node);
        script.run();
        EXPECT_EQ(node->checks_running[VGA_CHECK_IPBRIDGE_SESS], 0u);
        EXPECT_EQ(count(node->appcip_sess_tree), 1u);
        EXPECT_EQ(gvga_exit_code, 0);
    }
}

TEST_F(AppcOverIp, WithoutDefaultsThereAreNoSessions) {
    add_appcip("LUA", 1);
    add_appcip("LUB", 2);
    auto e = entry<IPBRIDGE_APPCIP_ENTRY>();
    put(e.session.lu_name, "LUA");
    script.has(NAP_QUERY_IPBRIDGE_APPCIP, e);
    vga_start_check_ipbridge_sess(node); // its answer tells of the time before
    vga_delete_ipbridge_appcip_defaults(node);
    EXPECT_EQ(node->appcip_defaults, nullptr);
    vga_start_check_ipbridge_sess(node);
    script.run();
    EXPECT_EQ(rows(node->appcip_root), Rows{"title"});
    EXPECT_EQ(script.sent(NAP_QUERY_IPBRIDGE_APPCIP), 1u);
    EXPECT_EQ(node->checks_running[VGA_CHECK_IPBRIDGE_SESS], 0u);
}

} // namespace
} // namespace store_test
