#include "tool/fixture.h"

#include "nof/node.h"
#include "store/build.h"
#include "store/remove.h"
#include "verbs/status.h"

// The console follows the node: changes that nobody asked for show in its panes.
namespace {

using kit::CONSOLE;

class Live : public tool::Tool {
protected:
    long queries(const std::string& verb = "NAP_QUERY") {
        console.wait_idle();
        return count(verb);
    }
    bool is_shown(const vga_viewer_root& root, const char* name) {
        return !row_of(root, name).empty();
    }
    // Whether a command of the node leads to a row with the text.
    bool leads_to(const std::string& command, const vga_viewer_root& root, const char* name,
                  const std::string& text) {
        service.control(command);
        return comes_true([&] { return row_of(root, name).find(text) != std::string::npos; });
    }
};

TEST_F(Live, StatesAndSessionsShowWithoutAQuery) {
    const vga_viewer_root* links = &node->links_root;
    const vga_viewer_root* remote = &node->rem_sys_root;
    const struct {
        const char* command;
        const vga_viewer_root* root;
        const char* name;
        const char* text; // null: another than before
    } steps[] = {
        {"state ls CLEARING starting", links, "CLEARING", "Starting"},
        {"state ls CLEARING active", links, "CLEARING", "Active"},
        {"state ls CLEARING stopping", links, "CLEARING", "Stopping"},
        {"state ls CLEARING inactive", links, "CLEARING", "On demand"},
        // The other side may still activate it.
        {"state ls CLEARING disabled", links, "CLEARING", "Listening"},
        {"state downstream_lu LIN03 in-session", links, "LIN03", nullptr},
        {"state downstream_lu LIN03 inactive", links, "LIN03", nullptr},
        // It had no other.
        {"session TRADELU BANKNET.TRADEHUB #INTER 0", links, "TRADELU", nullptr},
        {"session TRADELU BANKNET.TRADEHUB #INTER 1", links, "TRADELU", nullptr},
        {"state local_lu TRADELU inactive", links, "TRADELU", nullptr},
        {"state dlur_pu PUDLUR2 active", links, "PUDLUR2", nullptr},
        // A remote system comes and goes with its sessions.
        {"session CLAIMS OTHERNET.NEWLU #INTER 3 OTHERNET.NEWCP", remote, "OTHERNET.NEWCP", " 3 "},
        {"session CLAIMS OTHERNET.NEWLU #BATCH 2 OTHERNET.NEWCP", remote, "OTHERNET.NEWCP", " 5 "},
        {"session CLAIMS OTHERNET.NEWLU #BATCH 0 OTHERNET.NEWCP", remote, "OTHERNET.NEWCP", " 3 "},
        {"session CLAIMS OTHERNET.NEWLU #INTER 0 OTHERNET.NEWCP", remote, "OTHERNET.NEWCP",
         nullptr},
    };
    for (const auto& each : steps) {
        const std::string before = row_of(*each.root, each.name);
        service.control(each.command);
        EXPECT_TRUE(comes_true([&] {
            const std::string row = row_of(*each.root, each.name);
            return each.text != nullptr ? row.find(each.text) != std::string::npos : row != before;
        })) << each.command
            << " leaves: " << row_of(*each.root, each.name);
    }
    EXPECT_FALSE(is_shown(*remote, "OTHERNET.NEWCP"));
    EXPECT_FALSE(is_shown(node->lus_root, "OTHERNET.NEWLU"));
    EXPECT_EQ(queries(), 0);
}

TEST_F(Live, APortThatComesBackIsReadAgain) {
    EXPECT_TRUE(leads_to("state port TRPORT inactive", node->links_root, "TRPORT", "Inactive"));
    EXPECT_EQ(queries(), 0);
    EXPECT_TRUE(leads_to("state port TRPORT active", node->links_root, "TRPORT", "Active"));
    EXPECT_EQ(queries("NAP_QUERY_PORT"), 1);
    EXPECT_EQ(queries(), 1);
}

TEST_F(Live, AnLuShowsWhoUsesItOnceThatIsKnown) {
    const auto row = [&] { return row_of(node->links_root, "CORE03"); };
    const std::string before = row();
    service.control("hold NAP_QUERY_LU_0_TO_3");
    service.control("use CORE03 client teller-desk");
    ASSERT_TRUE(wait([&] { return count("NAP_QUERY_LU_0_TO_3") == 1; }));
    EXPECT_EQ(row(), before);
    service.control("state lu_0_to_3 CORE03 in-session");
    service.control("release");
    EXPECT_TRUE(wait([&] { return row() != before; }));
    EXPECT_NE(row().find("teller-desk"), std::string::npos) << row();
    EXPECT_EQ(queries(), 1) << "the second change came while the answer was outstanding";
    service.control("clear");

    service.control("state lu_0_to_3 CORE03 active");
    service.control("use CORE03 none");
    EXPECT_TRUE(wait([&] { return row() == before; })) << row();
    EXPECT_EQ(queries(), 1);
}

TEST_F(Live, ImplicitLinkStationsAppearAndVanish) {
    const vga_viewer_root& links = node->links_root;
    ASSERT_TRUE(is_shown(links, "SALES07"));
    service.control("state ls @I000001 inactive");
    EXPECT_TRUE(comes_true([&] { return !is_shown(links, "SALES07"); }));
    EXPECT_EQ(queries(), 0);
    EXPECT_EQ(ls("@I000001"), nullptr);

    service.control("resync ls"); // its indication says only that some were lost
    service.control("call-in ETHPORT OTHERNET.EN9");
    EXPECT_TRUE(comes_true([&] { return is_shown(links, "OTHERNET.EN9"); }));
    service.control("journal clear");

    // One that the console never heard of becomes active.
    gvga_dispatch.node_config = nullptr;
    service.control("define ls NEWLINK port=ETHPORT");
    console.wait_idle();
    ASSERT_FALSE(is_shown(links, "NEWLINK"));
    EXPECT_TRUE(leads_to("state ls NEWLINK active", links, "NEWLINK", "Active"));
    EXPECT_EQ(queries("NAP_QUERY_LS"), 1);
    EXPECT_EQ(queries(), 1);
}

TEST_F(Live, ALinkStationThatServesADownstreamPuComesWithItsLus) {
    vga_ls* serving = ls("LINDENAU");
    ASSERT_TRUE(serving != nullptr && serving->pu_entry != nullptr);
    while (auto* lu = ntl_avl_first<vga_down_lu>(serving->pu_entry->lu_tree)) {
        vga_delete_vga_down_lu(lu, true);
    }
    ASSERT_TRUE(
        vga_issue_query_ls(node, nullptr, "LINDENAU", 1, node->handle, vga_build_implicit_ls));
    gvga_querybuf_size = 2 * sizeof(DOWN_LU_ENTRY); // their list takes two pages
    EXPECT_TRUE(wait([&] { return is_shown(node->links_root, "LIN04"); }));
    EXPECT_EQ(queries("NAP_QUERY_DOWNSTREAM_LU"), 2);
    gvga_querybuf_size = 4096;
}

TEST_F(Live, AnIndicationForAFreedRecordIsDropped) {
    NOF_STATUS_INDICATION status{};
    status.handle = node->node_handle;
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
    EXPECT_NE(row_of(node->links_root, "HOSTA").find("Active"), std::string::npos);
}

TEST_F(Live, AStandAloneProgramEndsWithItsNode) {
    const std::string name = node->node_name;
    service.control("kill-node " + name);
    ASSERT_TRUE(comes_true([] { return !CONSOLE::message().empty(); }));
    EXPECT_NE(CONSOLE::message().find(name), std::string::npos) << CONSOLE::message();
    ASSERT_TRUE(console.answer("OK"));
    wait([] { return gvga_exit_code != 0; });
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_ORDERLY) << CONSOLE::message();
    EXPECT_EQ(console.end(), 0);
}

TEST_F(Live, TheEndOfTheNodeSoftwareEndsTheRun) {
    const std::string expected = std::string(gvga_messages[303]).substr(0, 10);
    service.control("stop-software");
    wait([] { return gvga_exit_code != 0; });
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

} // namespace
