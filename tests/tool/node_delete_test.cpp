#include "tool/fixture.h"

#include "ui/viewer/viewer_type.h"
#include "ui/windows/node_window.h"

// The Delete key and button of the node window.
namespace {

using kit::CONSOLE;

class NodeDelete : public tool::Tool {
protected:
    // Selects rows of a pane by parts of their texts: the first alone, the last with all between.
    void select(vga_viewer_root& root, const char* first, const char* last = nullptr) {
        ASSERT_TRUE(console.click_row(root, first)) << first;
        if (last != nullptr) {
            ASSERT_TRUE(console.click_row(root, last, ShiftMask)) << last;
        }
        service.control("journal clear");
    }
    // Goes to a row from the top, by the keyboard: each name is in a row below the one before,
    // which is expanded.
    void walk(vga_viewer_root& root, const std::vector<std::string>& names) {
        ASSERT_TRUE(XmProcessTraversal(root.draw_widget, XmTRAVERSE_CURRENT));
        console.key(XK_Home);
        std::size_t at = 0;
        for (const std::string& name : names) {
            if (at != 0) {
                console.key(XK_plus);
            }
            const auto shown = CONSOLE::rows(root);
            const auto row = std::find_if(
                shown.begin() + static_cast<long>(at), shown.end(),
                [&](const std::string& text) { return text.find(name) != std::string::npos; });
            for (; shown.begin() + static_cast<long>(at) < row; ++at) {
                console.strike(XK_Down);
            }
            console.wait_idle();
            ASSERT_NE(selected_text(root).find(name), std::string::npos) << name;
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
    std::string deletes() { return sent("DELETE_"); }
    // An active one between two that are not.
    void select_three_link_stations() {
        service.control("stop ls AIRPORT");
        service.control("stop ls HELVINS");
        service.control("start ls CLEARING");
        ASSERT_TRUE(comes_true([&] {
            return ls("CLEARING")->vcb->det.state == NOF_STATE_ACTIVE &&
                   ls("AIRPORT")->vcb->det.state == NOF_STATE_INACTIVE &&
                   ls("HELVINS")->vcb->det.state == NOF_STATE_INACTIVE;
        }));
        select(node->links_root, "AIRPORT", "HELVINS");
        ASSERT_EQ(node->links_root.select_count, 3);
    }
};

TEST_F(NodeDelete, AnActiveOneOfThreeIsToldAndPassedOver) {
    select_three_link_stations();
    console.key(XK_Delete);
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
    select_three_link_stations();
    service.control("fail NAP_DELETE_LS 0x0100 0x12345678");
    console.key(XK_Delete);
    expect_message(683, "AIRPORT", "confirmOKToAllButton");
    expect_message(167, "12345678");
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "LS ");
    console.key(XK_Delete); // asks again, from the first
    expect_message(683, "AIRPORT", "confirmOKToAllButton");
    expect_message(696, "CLEARING");
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "LS LS LS ");
    EXPECT_EQ(ls("HELVINS"), nullptr);
}

// One that goes while it is asked about counts as Cancel; one that goes before its turn is passed
// over.
TEST_F(NodeDelete, ARecordThatGoesMeanwhileIsNotDeleted) {
    service.control("define ls AIRBASE port=IPPORT");
    service.control("define ls AIRFIELD port=IPPORT");
    const auto goes = [&](const char* name) {
        service.control(std::string("delete ls ") + name);
        ASSERT_TRUE(comes_true([&] { return ls(name) == nullptr; }));
        service.control("journal clear");
    };
    ASSERT_TRUE(comes_true([&] { return ls("AIRFIELD") != nullptr; }));
    select(node->links_root, "AIRBASE", "AIRPORT");
    ASSERT_EQ(node->links_root.select_count, 3);
    console.key(XK_Delete);
    goes("AIRBASE");
    expect_message(683, "AIRBASE");
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "");

    service.control("stop ls AIRPORT");
    ASSERT_TRUE(comes_true([&] { return ls("AIRPORT")->vcb->det.state == NOF_STATE_INACTIVE; }));
    console.key(XK_Delete);
    goes("AIRPORT");
    expect_message(683, "AIRFIELD");
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "LS ");
    EXPECT_EQ(ls("AIRFIELD"), nullptr);
}

TEST_F(NodeDelete, APortTakesTheNetworksThatOnlyItServed) {
    select(node->links_root, "TRPORT");
    console.key(XK_Delete);
    expect_message(780, "TRPORT");
    service.control("stop port TRPORT");
    ASSERT_TRUE(comes_true([&] { return port("TRPORT")->vcb->state == NOF_STATE_INACTIVE; }));
    const auto networks = [&] {
        int count = 0;
        for (auto* cn = ntl_avl_first<vga_cn>(node->cn_tree); cn != nullptr;
             cn = static_cast<vga_cn*>(ntl_avl_next(&cn->node))) {
            ++count;
        }
        return count;
    };
    EXPECT_EQ(networks(), 2);
    console.key(XK_Delete);
    expect_message(781, "TRPORT");
    EXPECT_TRUE(wait([&] { return port("TRPORT") == nullptr && networks() == 1; }));
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "PORT CN ");
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
    ASSERT_TRUE(comes_true([&] {
        const auto* line = ntl_avl_first<vga_primary_line>(node->primary_line_tree);
        return line != nullptr && line->lu0_tree.first != nullptr;
    }));
    vga_viewer_root* links = &node->links_root;
    vga_viewer_root* lus = &node->lus_root;
    vga_viewer_root* remote = &node->rem_sys_root;
    const CASE cases[] = {
        {links, {"LINDENAU", "LIN03"}, 682, "DOWNSTREAM_LU "},
        {links, {"HOSTB", "PAY07"}, 681, "LU_0_TO_3 "}, // of a pool
        {links, {"ARCHIVE"}, 697, "LS "},
        {links, {"PUDLUR1"}, 782, ""},
        {links, {"PUDLUR2"}, 783, "INTERNAL_PU "},
        {links, {"PADLINE", "PAD1"}, 688, "PRIMARY_LU0 "},
        {links, {"PADLINE"}, 695, "PRIMARY_LINE "},
        {links, {"PUDLUR1", "TRADELU"}, 681, "LOCAL_LU "}, // a dependent LU 6.2
        {lus, {"CLAIMS", "Link station", "HELVINS"}, 684, "LS_ROUTING "},
        {lus, {"PAYROLL", "Link station", "CLEARING"}, 684, "LS_ROUTING "}, // to many partners
        {lus, {"BNKGW01"}, 676, ""},                                        // the control point's
        {lus, {"CARDAUTH"}, 680, "LOCAL_LU "},                              // has sessions
        {remote, {"BANKNET.HOSTA"}, 679, ""},
        {remote, {"BANKNET.HOSTB"}, 691, "PARTNER_LU PARTNER_LU DIRECTORY_ENTRY "},
    };
    for (const CASE& each : cases) {
        const std::string& name = each.path.back();
        SCOPED_TRACE(name);
        walk(*each.root, each.path);
        if (HasFatalFailure()) {
            return;
        }
        const bool refused = *each.verbs == '\0';
        console.key(XK_Delete);
        expect_message(each.message, name, refused ? "OK" : "Cancel");
        EXPECT_EQ(deletes(), "");
        EXPECT_NE(selected_text(*each.root).find(name), std::string::npos);
        if (!refused) {
            console.key(XK_Delete);
            expect_message(each.message, name);
            EXPECT_EQ(CONSOLE::message(), "");
            EXPECT_EQ(deletes(), each.verbs);
            EXPECT_TRUE(each.root == remote || // where it may have sessions
                        selected_text(*each.root).find(name) == std::string::npos);
        }
    }
}

TEST_F(NodeDelete, ReadOnlyNothingIsDeleted) {
    select(node->links_root, "AIRPORT", "HELVINS");
    gvga_read_only = 1;
    console.key(XK_Delete);
    expect_message(607);
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(deletes(), "");
}

} // namespace
