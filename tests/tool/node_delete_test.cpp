#include "tool/start_stop_fixture.h"

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
