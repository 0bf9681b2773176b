#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "common/names.h"
#include "nof/node.h"
#include "shell/messages.h"
#include "store/build.h"
#include "store/remove.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "verbs/status.h"

#include <algorithm>
#include <cstring>

// The console follows the node: changes that nobody asked for show in its panes.
namespace {

using kit::CONSOLE;
using kit::SERVICE;

vga_node* node() {
    return ntl_avl_first<vga_node>(gvga_system->node_tree);
}

// The first row that has a part, or "" when there is none.
std::string row_of(vga_viewer_root& root, const std::string& part) {
    const auto rows = CONSOLE::rows(root, true);
    const auto row = std::ranges::find_if(
        rows, [&](const std::string& text) { return text.find(part) != std::string::npos; });
    return row != rows.end() ? *row : "";
}

NB_LONG count(const std::string& output, const std::string& part) {
    NB_LONG found = 0;
    for (std::size_t at = output.find(part); at != std::string::npos;
         at = output.find(part, at + 1)) {
        ++found;
    }
    return found;
}

class Live : public testing::Test {
protected:
    SERVICE service;
    CONSOLE console{service};

    void SetUp() override {
        ASSERT_TRUE(console.started() && console.wait_built());
        service.control("journal clear");
    }
    void TearDown() override {
        EXPECT_EQ(gvga_exit_code, 0);
        EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
    }

    // A command of the node, and what the console shows once the change has arrived.
    void when(const std::string& command, vga_viewer_root& root, const std::string& name,
              const std::string& text) {
        service.control(command);
        EXPECT_TRUE(
            console.wait([&] { return row_of(root, name).find(text) != std::string::npos; }, 5000))
            << command << " leaves: " << row_of(root, name);
        console.wait_idle();
    }
    NB_LONG queries(const std::string& verb = "NAP_QUERY") {
        console.wait_idle();
        return count(service.control("journal"), "\"" + verb);
    }
    void expect_gone(const std::string& command, vga_viewer_root& root, const std::string& name) {
        service.control(command);
        EXPECT_TRUE(console.wait([&] { return row_of(root, name).empty(); }, 5000))
            << command << " leaves: " << row_of(root, name);
        console.wait_idle();
    }
};

TEST_F(Live, LinkStationsFollowWithoutAQuery) {
    vga_viewer_root& links = node()->links_root;
    constexpr std::array steps{
        std::pair{"state ls CLEARING starting", "Starting"},
        std::pair{"state ls CLEARING active", "Active"},
        std::pair{"state ls CLEARING stopping", "Stopping"},
        std::pair{"state ls CLEARING inactive", "On demand"},
        std::pair{"state ls CLEARING disabled",
                  "Listening"}, // the other side may still activate it
    };
    for (const auto& [command, text] : steps) {
        when(command, links, "CLEARING", text);
    }
    EXPECT_EQ(queries(), 0);
}

TEST_F(Live, APortThatComesBackIsReadAgain) {
    vga_viewer_root& links = node()->links_root;
    when("state port TRPORT inactive", links, "TRPORT", "Inactive");
    EXPECT_EQ(queries(), 0);
    when("state port TRPORT active", links, "TRPORT", "Active");
    EXPECT_EQ(queries(), 1);
    EXPECT_EQ(queries("NAP_QUERY_PORT"), 1);
}

TEST_F(Live, AnLuShowsWhoUsesItOnceThatIsKnown) {
    vga_viewer_root& links = node()->links_root;
    const std::string before = row_of(links, "CORE03");
    service.control("hold NAP_QUERY_LU_0_TO_3");
    service.control("use CORE03 client teller-desk");
    ASSERT_TRUE(console.wait(
        [&] { return service.control("journal").find("NAP_QUERY_LU_0_TO_3") != std::string::npos; },
        5000));
    EXPECT_EQ(row_of(links, "CORE03"), before);
    service.control("state lu_0_to_3 CORE03 in-session");
    service.control("release");
    EXPECT_TRUE(console.wait([&] { return row_of(links, "CORE03") != before; }, 5000));
    EXPECT_NE(row_of(links, "CORE03").find("teller-desk"), std::string::npos)
        << row_of(links, "CORE03");
    EXPECT_EQ(queries(), 1) << "the second change came while the answer was outstanding";
    service.control("clear");

    service.control("state lu_0_to_3 CORE03 active");
    service.control("use CORE03 none");
    EXPECT_TRUE(console.wait([&] { return row_of(links, "CORE03") == before; }, 5000))
        << row_of(links, "CORE03");
    EXPECT_EQ(queries(), 1);
}

TEST_F(Live, DownstreamAndDependentLusFollow) {
    vga_viewer_root& links = node()->links_root;
    constexpr std::array steps{
        std::pair{"state downstream_lu LIN03 in-session", "LIN03"},
        std::pair{"state downstream_lu LIN03 inactive", "LIN03"},
        std::pair{"session TRADELU BANKNET.TRADEHUB #INTER 0", "TRADELU"}, // it had no other
        std::pair{"session TRADELU BANKNET.TRADEHUB #INTER 1", "TRADELU"},
        std::pair{"state local_lu TRADELU inactive", "TRADELU"},
        std::pair{"state dlur_pu PUDLUR2 active", "PUDLUR2"},
    };
    for (const auto& [command, name] : steps) {
        const std::string before = row_of(links, name);
        service.control(command);
        EXPECT_TRUE(console.wait([&] { return row_of(links, name) != before; }, 5000))
            << command << " leaves: " << before;
    }
    EXPECT_EQ(queries(), 0);
}

TEST_F(Live, ARemoteSystemComesAndGoesWithItsSessions) {
    vga_viewer_root& remote = node()->rem_sys_root;
    vga_viewer_root& lus = node()->lus_root;
    const std::size_t remote_rows = CONSOLE::rows(remote, true).size();
    const auto* lu = static_cast<vga_lu62*>(ntl_avl_find(&node()->lu62_alias_tree, "CLAIMS  "));
    ASSERT_NE(lu, nullptr);
    const NB_LONG before = lu->act_sess_count;

    service.control("session CLAIMS OTHERNET.NEWLU #INTER 3 OTHERNET.NEWCP");
    ASSERT_TRUE(console.wait([&] { return !row_of(remote, "OTHERNET.NEWCP").empty(); }, 5000));
    console.wait_idle();
    EXPECT_EQ(lu->act_sess_count, before + 3);
    EXPECT_FALSE(row_of(lus, "OTHERNET.NEWLU").empty());
    EXPECT_EQ(CONSOLE::rows(remote, true).size(), remote_rows + 3);
    const auto counts = [&] {
        const auto* plu = ntl_avl_first<vga_rem_sys>(node()->rem_sys_tree);
        NB_BYTE name[FQ_NAME_LENGTH];
        van_ascii_to_ebcdic(name, "OTHERNET.NEWCP", sizeof name);
        plu = static_cast<vga_rem_sys*>(ntl_avl_find(&node()->rem_sys_tree, name));
        return plu != nullptr ? plu->session_count : 0;
    };
    EXPECT_EQ(counts(), 3);
    service.control("session CLAIMS OTHERNET.NEWLU #BATCH 2 OTHERNET.NEWCP");
    EXPECT_TRUE(console.wait([&] { return counts() == 5; }, 5000));
    EXPECT_EQ(CONSOLE::rows(remote, true).size(), remote_rows + 4);
    service.control("session CLAIMS OTHERNET.NEWLU #BATCH 0 OTHERNET.NEWCP");
    EXPECT_TRUE(console.wait([&] { return counts() == 3; }, 5000));
    EXPECT_EQ(CONSOLE::rows(remote, true).size(), remote_rows + 3);

    expect_gone("session CLAIMS OTHERNET.NEWLU #INTER 0 OTHERNET.NEWCP", remote, "OTHERNET.NEWCP");
    EXPECT_TRUE(console.wait([&] { return row_of(lus, "OTHERNET.NEWLU").empty(); }, 5000));
    EXPECT_EQ(lu->act_sess_count, before);
    EXPECT_EQ(CONSOLE::rows(remote, true).size(), remote_rows);
    EXPECT_EQ(queries(), 0);
}

TEST_F(Live, ADefinedRemoteSystemOutlivesItsSessions) {
    vga_rem_sys* defined = ntl_avl_first<vga_rem_sys>(node()->rem_sys_tree);
    while (defined != nullptr && (defined->defined == 0 || defined->session_count != 0)) {
        defined = static_cast<vga_rem_sys*>(ntl_avl_next(&defined->node));
    }
    ASSERT_NE(defined, nullptr) << "the example domain has one without sessions";
    char cp[FQ_NAME_LENGTH + 1];
    van_ebcdic_to_ascii(cp, defined->cp_name, FQ_NAME_LENGTH);
    std::string name(cp);
    name.erase(name.find_last_not_of(' ') + 1);
    const NB_HANDLE handle = defined->handle;
    service.control("session CLAIMS OTHERNET.NEWLU #INTER 3 " + name);
    EXPECT_TRUE(console.wait([&] { return defined->session_count == 3; }, 5000));
    service.control("session CLAIMS OTHERNET.NEWLU #INTER 0 " + name);
    EXPECT_TRUE(console.wait([&] { return defined->session_count == 0; }, 5000));
    EXPECT_EQ(nba_validate_handle(handle), defined);
}

TEST_F(Live, ImplicitLinkStationsAppearAndVanish) {
    vga_viewer_root& links = node()->links_root;
    ASSERT_NE(row_of(links, "SALES07"), "");
    expect_gone("state ls @I000001 inactive", links, "SALES07");
    EXPECT_EQ(queries(), 0);
    EXPECT_EQ(ntl_avl_find(&node()->ls_tree, "@I000001"), nullptr);

    // One that the console never heard of becomes active.
    gvga_dispatch.node_config = nullptr;
    service.control("define ls NEWLINK port=ETHPORT");
    console.wait_idle();
    ASSERT_EQ(row_of(links, "NEWLINK"), "");
    when("state ls NEWLINK active", links, "NEWLINK", "Active");
    EXPECT_EQ(queries("NAP_QUERY_LS"), 1);
    EXPECT_EQ(queries(), 1);
}

TEST_F(Live, ALinkStationThatServesADownstreamPuComesWithItsLus) {
    auto* ls = static_cast<vga_ls*>(ntl_avl_find(&node()->ls_tree, "LINDENAU"));
    ASSERT_TRUE(ls != nullptr && ls->pu_entry != nullptr);
    while (auto* lu = ntl_avl_first<vga_down_lu>(ls->pu_entry->lu_tree)) {
        vga_delete_vga_down_lu(lu, true);
    }
    ASSERT_TRUE(
        vga_issue_query_ls(node(), nullptr, "LINDENAU", 1, node()->handle, vga_build_implicit_ls));
    gvga_querybuf_size = 2 * sizeof(DOWN_LU_ENTRY); // their list takes two pages
    EXPECT_TRUE(console.wait([&] { return !row_of(node()->links_root, "LIN04").empty(); }, 5000));
    EXPECT_EQ(queries("NAP_QUERY_DOWNSTREAM_LU"), 2);
    gvga_querybuf_size = 4096;
}

TEST_F(Live, LostIndicationsAreMadeUpForByACheck) {
    vga_viewer_root& links = node()->links_root;
    service.control("resync ls");
    when("state ls CLEARING active", links, "CLEARING", "Active");
    EXPECT_GE(queries("NAP_QUERY_LS"), 1);
}

TEST_F(Live, AnIndicationForAFreedRecordIsDropped) {
    NOF_STATUS_INDICATION status{};
    status.handle = node()->node_handle;
    VGA_COMPLETION stale{0, &status, 0xFFFFFFFF};
    vga_process_nof_status_ind(&stale, &status);
    LS_INDICATION ls{};
    ls.header.opcode = NAP_LS_INDICATION;
    ls.new_state = NOF_LS_STOPPED;
    std::memcpy(ls.ls_name, "HOSTA   ", sizeof ls.ls_name);
    stale.vcb = &ls;
    vga_indication_handler(&stale, &ls);
    console.wait_idle();
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_NE(row_of(node()->links_root, "HOSTA").find("Active"), std::string::npos);
}

TEST_F(Live, AStandAloneProgramEndsWithItsNode) {
    char name[sizeof(NB_NODE_NAME) + 1] = {};
    std::memcpy(name, node()->node_name, sizeof(NB_NODE_NAME));
    service.control("kill-node " + std::string(name));
    ASSERT_TRUE(console.wait([] { return !CONSOLE::message().empty(); }, 5000));
    console.wait_idle();
    EXPECT_NE(CONSOLE::message().find(name), std::string::npos) << CONSOLE::message();
    ASSERT_TRUE(console.answer("OK"));
    console.wait([] { return gvga_exit_code != 0; }, 5000);
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_ORDERLY) << CONSOLE::message();
    EXPECT_EQ(console.end(), 0);
}

TEST_F(Live, TheEndOfTheNodeSoftwareEndsTheRun) {
    const std::string expected = std::string(gvga_messages[303]).substr(0, 10);
    service.control("stop-software");
    console.wait([] { return gvga_exit_code != 0; }, 5000);
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_SHUTDOWN);
    std::string message;
    EXPECT_EQ(console.end(&message), 0);
    EXPECT_EQ(message.substr(0, 10), expected);
}

TEST_F(Live, AServerThatComesUpIsAddedAndRead) {
    SERVER_INDICATION server{};
    server.header.opcode = NAP_SERVER_INDICATION;
    server.status = 1;
    server.flags = 0x2004;
    std::memset(server.server_name, ' ', sizeof server.server_name);
    std::memcpy(server.server_name, "beta", 4);
    VGA_COMPLETION completion{0, &server, gvga_system->handle};
    const NB_NODE_NAME beta = "beta";

    for (int i = 0; i < 2; ++i) { // told twice, it is one node all the same
        vga_process_server_ind(&completion, &server);
        const vga_node* added = vga_find_node(beta);
        ASSERT_NE(added, nullptr);
        EXPECT_EQ(added->server_role, VGA_ROLE_SERVER);
        EXPECT_FALSE(vga_check_node_startup(added));
        EXPECT_FALSE(nba_q_empty(&gvga_nof_queue)) << "its build has begun";
        EXPECT_EQ(gvga_system->node_viewer_root.top_count, 2u);
    }
}

TEST_F(Live, TheLossOfADomainFileClosesIt) {
    ASSERT_NE(gvga_system->config_file_handle, 0u);
    service.control("lose-file configuration");
    EXPECT_TRUE(console.wait([] { return gvga_system->config_file_handle == 0; }, 5000));
    console.wait_idle();
    EXPECT_NE(node()->node_handle, 0u);
}

} // namespace
