#include "tool/fixture.h"

#include "kit/live_store.h"
#include "nof/opcodes.h"
#include "shell/verb_queue.h"
#include "verbs/config.h"

// What another operator defines and deletes is in the console's store and panes without a query,
// and leaves alone what the operator at the console has selected.
namespace {

class OtherOperator : public tool::Tool {
protected:
    void TearDown() override {
        EXPECT_EQ(count("NAP_QUERY"), 0);
        Tool::TearDown();
    }
};

constexpr const char* commands[] = {
    "define dlc NEWDLC type=ethernet",
    "define port NEWPORT dlc=NEWDLC",
    "define ls NEWLINK port=NEWPORT host_pu=true pu=NEWPU",
    "define ls AAALINK port=ETHPORT",
    "define ls CLEARING port=ETHPORT", // the one that is selected
    "define lu_0_to_3 NEWLU pu=NEWPU nau=7",
    "define pool NEWPOOL lu=CORE05",
    "define extra_data CORE02",
    "define local_lu NEWLOCAL alias=NEWLOCAL",
    "define mode_definition NEWMODE",
    "define directory NEWNET.NEWCP type=end-node",
    "define partner_definition NEWNET.NEWPLU",
    "define ls_routing TRADELU partner=BANKNET.NEWONE ls=CLEARING",
    "define lu_lu_password TRADELU partner=BANKNET.NEWONE",
    "define lu62_timeout NIGHTRUN type=mode timeout=5",
    "define tp NEWTP",
    "define tp NEWTP sync_level=confirm",
    "define tp_load NEWTP path=/opt/new type=queued",
    "define tp_load NEWTP path=/opt/a/longer/path type=queued",
    "define userid NEWID",
    "define access_list NEWLIST",
    "define access_user ANNA list=NEWLIST",
    "define tn_client 10.1.1.1",
    "define tn_session 23 client=10.1.1.1 lu=CORE01",
    "define association CORE01 printer=CORE02",
    "define redirect 10.9.9.9 port=7023 host=mainframe.example host_port=23",
    "define dspu_template NEWTMPL",
    "define dslu_template 100 template=NEWTMPL last=120 host_lu=CORE01",
    "define user newuser",
    "define user_session DISP1 user=newuser type=3270 lu=CORE01",
    "define cpic NEWDEST tp=PAYPOST mode=#INTER",
    "define rje NEW1 lu1=PAYRJE num_lus=1",
    "delete association CORE01",
    "delete tn_client 10.1.1.1",
    "delete user newuser",
    "delete access_user ANNA",
    "delete tp_load NEWTP",
    "delete ls AAALINK",
    "delete local_lu NEWLOCAL",
    "delete lu_0_to_3 NEWLU",
};

TEST_F(OtherOperator, DefinesAndDeletesAreFollowedWithoutAQuery) {
    vga_viewer_root& links = node->links_root;
    ASSERT_TRUE(console.click_row(links, "CLEARING"));
    const void* selected = vga_viewer_get_selection(&links);
    ASSERT_NE(selected, nullptr);
    for (const char* command : commands) {
        service.control(command);
    }
    const auto is_here = [&](const char* row) { return !row_of(links, row).empty(); };
    EXPECT_TRUE(comes_true([&] { return is_here("NEWLINK") && !is_here("NEWLU"); }));
    EXPECT_EQ(vga_viewer_get_selection(&links), selected);
    EXPECT_EQ(count("NAP_QUERY"), 0);
    EXPECT_TRUE(row_of(links, "AAALINK").empty());
    service.control("delete rje STMT"); // the console does not list them
    console.wait_idle();
    const kit::STORE_DUMP fresh = kit::LIVE_STORE::fresh(service.socket());
    EXPECT_EQ(kit::difference(fresh.text, kit::dump_store().text), "");
    service.control("journal clear");
}

// The completion of the console's own verb takes the same road.
TEST_F(OtherOperator, TheConsoleItselfTakesTheSameRoad) {
    auto* define = vga_new_vcb<DEFINE_TP>(NAP_DEFINE_TP);
    van_ascii_to_ebcdic(define->tp_name, "OWNTP", sizeof define->tp_name);
    static vga_node* its_node;
    its_node = node;
    const auto has_it = [&] {
        NB_BYTE key[sizeof define->tp_name];
        van_ascii_to_ebcdic(key, "OWNTP", sizeof key);
        return ntl_avl_find(&node->tp_def_tree, key) != nullptr;
    };
    ASSERT_TRUE(
        vga_queue_verb(node->node_handle, define, node->handle, [](VGA_COMPLETION* completion) {
            vga_tp_def* record;
            vga_process_def_tp(completion, its_node, &record);
            vga_issue_del_tp_def(record, completion->corr, [](VGA_COMPLETION* deleted) {
                vga_process_del_tp(deleted, its_node);
            });
        }));
    EXPECT_TRUE(wait(has_it));
    EXPECT_TRUE(wait([&] { return !has_it(); }));
    EXPECT_EQ(service.control("list tp").find("OWNTP"), std::string::npos);
}

} // namespace
