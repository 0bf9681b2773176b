#include "tool/start_stop_fixture.h"

#include "ui/viewer/viewer_type.h"
#include "ui/windows/node_window.h"

// The Delete key and button of the node window.
namespace start_stop {
namespace {

class NodeDelete : public StartStop {
protected:
    void stop(const char* kind, const char* name) {
        service.control(std::string("stop ") + kind + " " + name);
        console.wait_idle();
    }
    // Selects rows of a pane by parts of their texts: the first alone, the last with all between.
    void select(vga_viewer_root& root, const char* first, const char* last = nullptr) {
        ASSERT_TRUE(console.click_row(root, first)) << first;
        if (last != nullptr) {
            ASSERT_TRUE(console.click_row(root, last, ShiftMask)) << last;
        }
        console.wait_idle();
        service.control("journal clear");
    }
    // Goes to a row from the top, by the keyboard: each name is in a row below the one before,
    // which is expanded.
    void walk(vga_viewer_root& root, const std::vector<std::string>& names) {
        ASSERT_TRUE(XmProcessTraversal(root.draw_widget, XmTRAVERSE_CURRENT));
        console.key(XK_Home);
        for (const std::string& name : names) {
            if (&name != &names.front()) {
                console.key(XK_plus);
                console.key(XK_Down);
            }
            for (int left = 60; selected_text(root).find(name) == std::string::npos; --left) {
                ASSERT_GT(left, 0) << name;
                console.key(XK_Down);
            }
        }
        service.control("journal clear");
    }
    static std::string selected_text(vga_viewer_root& root) {
        const vga_viewer* row = vga_viewer_get_selected_viewer(&root);
        char text[VGA_VIEWER_MAX_TEXT_LENGTH + 1] = "";
        if (row != nullptr) {
            gvga_viewer_desc[row->type].create_text(row->data, text);
        }
        return text;
    }
    void press_delete() {
        console.key(XK_Delete);
        console.wait_idle();
    }
    // The message that shows is that of a number with a name in it; it is answered.
    void expect_message(int number, const std::string& name, const char* button = "OK") {
        std::string expected = gvga_messages[number];
        expected.resize(std::min(expected.find('%'), expected.size()));
        std::erase(expected, '\n');
        const std::string shown = CONSOLE::message();
        EXPECT_EQ(shown.substr(0, expected.size()), expected) << number;
        EXPECT_NE(shown.find(name), std::string::npos) << number << ": " << shown;
        EXPECT_TRUE(console.answer(button)) << number;
        console.wait_idle();
    }
    // The delete verbs that the node received, in order.
    std::string deletes() {
        std::string all;
        for (const std::string& verb : verbs()) {
            all += verb.starts_with("DELETE_") ? verb.substr(7) + " " : "";
        }
        return all;
    }
    void three_link_stations() {
        for (const char* name : {"AIRPORT", "HELVINS"}) {
            stop("ls", name);
        }
        service.control("start ls CLEARING");
        ASSERT_TRUE(wait([&] { return ls("CLEARING")->vcb->det.state == NOF_STATE_ACTIVE; }));
        ASSERT_TRUE(wait([&] { return ls("AIRPORT")->vcb->det.state == NOF_STATE_INACTIVE; }));
        ASSERT_TRUE(wait([&] { return ls("HELVINS")->vcb->det.state == NOF_STATE_INACTIVE; }));
        ASSERT_TRUE(console.wait_idle());
        select(node->links_root, "AIRPORT", "HELVINS");
        ASSERT_EQ(node->links_root.select_count, 3);
    }
};

TEST_F(NodeDelete, AnActiveOneOfThreeIsToldAndPassedOver) {
    three_link_stations();
    press_delete();
    expect_message(683, "AIRPORT");
    expect_message(696, "CLEARING");
    expect_message(683, "HELVINS");
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(ls("AIRPORT"), nullptr);
    EXPECT_NE(ls("CLEARING"), nullptr);
    EXPECT_EQ(ls("HELVINS"), nullptr);
    EXPECT_EQ(deletes(), "LS LS ");
}

TEST_F(NodeDelete, YesToAllStillTellsOfTheActiveOneAndAFailureEndsIt) {
    three_link_stations();
    service.control("fail NAP_DELETE_LS 0x0100 0x12345678");
    press_delete();
    expect_message(683, "AIRPORT", "confirmOKToAllButton");
    expect_message(167, "12345678");
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "LS ");
    press_delete();
    expect_message(683, "AIRPORT", "confirmOKToAllButton");
    expect_message(696, "CLEARING");
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "LS LS LS ");
    EXPECT_EQ(ls("HELVINS"), nullptr);
}

TEST_F(NodeDelete, ARecordThatGoesWhileItIsAskedAboutIsNotDeleted) {
    three_link_stations();
    press_delete();
    service.control("delete ls AIRPORT");
    ASSERT_TRUE(wait([&] { return ls("AIRPORT") == nullptr; }));
    console.wait_idle();
    service.control("journal clear");
    expect_message(683, "AIRPORT");
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "");
}

TEST_F(NodeDelete, APortTakesTheNetworksThatOnlyItServed) {
    select(node->links_root, "TRPORT");
    press_delete();
    expect_message(780, "TRPORT");
    stop("port", "TRPORT");
    ASSERT_TRUE(wait([&] { return port("TRPORT")->vcb->state == NOF_STATE_INACTIVE; }));
    const auto networks = [&] {
        int count = 0;
        for (auto* cn = ntl_avl_first<vga_cn>(node->cn_tree); cn != nullptr;
             cn = static_cast<vga_cn*>(ntl_avl_next(&cn->node))) {
            ++count;
        }
        return count;
    };
    EXPECT_EQ(networks(), 2);
    service.control("journal clear");
    press_delete();
    expect_message(781, "TRPORT");
    EXPECT_TRUE(wait([&] { return port("TRPORT") == nullptr && networks() == 1; }));
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "PORT CN ");
}

TEST_F(NodeDelete, LocalLusAndTheLuOfTheControlPoint) {
    select(node->lus_root, "BNKGW01");
    press_delete();
    expect_message(676, "BNKGW01");
    select(node->lus_root, "CARDAUTH"); // has sessions
    press_delete();
    expect_message(680, "CARDAUTH", "Cancel");
    EXPECT_EQ(deletes(), "");
    select(node->lus_root, "BNKGW01", "CARDAUTH");
    press_delete();
    expect_message(676, "BNKGW01");
    expect_message(685, "CARDAUTH");
    EXPECT_EQ(deletes(), "LOCAL_LU ");
    EXPECT_EQ(CONSOLE::message(), "");
}

TEST_F(NodeDelete, ARemoteSystemGoesAfterItsPartnerLus) {
    select(node->rem_sys_root, "BANKNET.HOSTA");
    press_delete();
    expect_message(679, "BANKNET.HOSTA");
    select(node->rem_sys_root, "BANKNET.HOSTB");
    press_delete();
    expect_message(691, "BANKNET.HOSTB");
    EXPECT_EQ(deletes(), "PARTNER_LU PARTNER_LU DIRECTORY_ENTRY ");
    EXPECT_EQ(CONSOLE::message(), "");
}

// Cancel keeps what the row stands for; OK sends the verbs. A refusal sends none.
TEST_F(NodeDelete, EachKindOfRowHasItsQuestionAndItsVerb) {
    struct CASE {
        vga_viewer_root* root;
        std::vector<std::string> path;
        int message;
        const char* verbs;
    };
    // Primary lines are not asked for, but shown when another operator defines them.
    service.control("define primary_line PADLINE");
    service.control("define primary_lu0 PAD1 line=PADLINE address=2");
    service.control("define primary_lu0 PAD2 line=PADLINE address=3");
    ASSERT_TRUE(wait([&] {
        const auto* line = ntl_avl_first<vga_primary_line>(node->primary_line_tree);
        return line != nullptr && line->lu0_tree.first != nullptr;
    }));
    console.wait_idle();
    const CASE cases[] = {
        {&node->links_root, {"LINDENAU", "LIN03"}, 682, "DOWNSTREAM_LU "},
        {&node->links_root, {"HOSTB", "PAY07"}, 681, "LU_0_TO_3 "}, // of a pool
        {&node->links_root, {"ARCHIVE"}, 697, "LS "},
        {&node->links_root, {"PUDLUR1"}, 782, ""},
        {&node->links_root, {"PUDLUR2"}, 783, "INTERNAL_PU "},
        {&node->links_root, {"PADLINE", "PAD1"}, 688, "PRIMARY_LU0 "},
        {&node->links_root, {"PADLINE"}, 695, "PRIMARY_LINE "},
        {&node->links_root, {"PUDLUR1", "TRADELU"}, 681, "LOCAL_LU "}, // a dependent LU 6.2
        {&node->lus_root, {"CLAIMS", "Link station", "HELVINS"}, 684, "LS_ROUTING "},
        {&node->lus_root,
         {"PAYROLL", "Link station", "CLEARING"},
         684,
         "LS_ROUTING "}, // to many partners
    };
    for (const CASE& each : cases) {
        SCOPED_TRACE(each.path.back());
        walk(*each.root, each.path);
        if (HasFatalFailure()) {
            return;
        }
        const bool refused = *each.verbs == '\0';
        press_delete();
        expect_message(each.message, each.path.back(), refused ? "OK" : "Cancel");
        EXPECT_EQ(deletes(), "");
        EXPECT_NE(selected_text(*each.root).find(each.path.back()), std::string::npos);
        if (!refused) {
            press_delete();
            expect_message(each.message, each.path.back());
            EXPECT_EQ(CONSOLE::message(), "");
            EXPECT_EQ(deletes(), each.verbs);
            EXPECT_EQ(selected_text(*each.root).find(each.path.back()), std::string::npos);
        }
    }
}

TEST_F(NodeDelete, ReadOnlyNothingIsDeleted) {
    three_link_stations();
    gvga_read_only = 1;
    press_delete();
    expect_message(607, "");
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "");
}

} // namespace
} // namespace start_stop
