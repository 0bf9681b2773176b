#include "tool/fixture.h"

#include "store/build.h"
#include "store/remove.h"
#include "verbs/manage.h"

// Chains of starts, and the stop of the node.
namespace {

using kit::CONSOLE;
using StartStop = tool::Tool;

constexpr const char* whole_chain[] = {"INIT_NODE", "START_DLC", "START_PORT", "START_LS"};
std::string first(std::size_t count) {
    std::string verbs;
    for (std::size_t i = 0; i < count; ++i) {
        verbs += std::string(whole_chain[i]) + ' ';
    }
    return verbs;
}

// ATMNORTH's port and DLC do not start with the node.
class Chain : public tool::Tool {
protected:
    void SetUp() override {
        Tool::SetUp();
        stop_node();
        link = ls("ATMNORTH");
    }
    void expect_pending() {
        EXPECT_EQ(node->node_state, VGA_NODE_STATE_STARTING);
        EXPECT_EQ(link->parent->vcb->state, NOF_STATE_START_PENDING);
        EXPECT_EQ(link->vcb->det.state, NOF_STATE_START_PENDING);
        EXPECT_EQ(link->pu_entry->start_pending, 1);
    }
    vga_ls* link = nullptr;
};

TEST_F(Chain, ALinkStationOfAStoppedNode) {
    for (const char* verb : whole_chain) {
        service.control(std::string("hold NAP_") + verb);
    }
    vga_nodew_init_start_ls(link, false);
    expect_pending();
    for (std::size_t step = 1; step <= 4; ++step) {
        ASSERT_TRUE(wait_verb(whole_chain[step - 1]));
        EXPECT_EQ(verbs(), first(step)) << "each step waits for the answer to the one before";
        EXPECT_TRUE(step == 4 || // when the node may have told of it before its answer
                    link->vcb->det.state == NOF_STATE_START_PENDING);
        service.control(std::string("release NAP_") + whole_chain[step - 1]);
    }
    ASSERT_TRUE(comes_true([&] { return link->vcb->det.state == NOF_STATE_ACTIVE; }));
    EXPECT_EQ(link->parent->vcb->state, NOF_STATE_ACTIVE);
    EXPECT_EQ(link->parent->parent->vcb->state, NOF_STATE_ACTIVE);
    EXPECT_EQ(link->pu_entry->start_pending, 0);
    EXPECT_EQ(link->start_pending, 0);
    EXPECT_EQ(CONSOLE::message(), "");
}

TEST_F(Chain, EndsWithTheFirstStepThatFails) {
    constexpr int messages[] = {909, 911, 921, 913};
    for (std::size_t step = 0; step < 4; ++step) {
        SCOPED_TRACE(whole_chain[step]);
        service.control(std::string("fail NAP_") + whole_chain[step] + " 1 0x0300 0x1");
        vga_nodew_init_start_ls(link, false);
        expect_pending();
        expect_message(messages[step]);
        EXPECT_EQ(verbs(), first(step + 1) + (step == 2 ? "STOP_DLC " : ""))
            << "nothing else needs the DLC";
        EXPECT_EQ(link->vcb->det.state, NOF_STATE_INACTIVE);
        EXPECT_EQ(link->pu_entry->start_pending, 0);
        EXPECT_EQ(link->parent->vcb->state, step < 3 ? NOF_STATE_INACTIVE : NOF_STATE_ACTIVE);
        EXPECT_EQ(link->parent->parent->vcb->state,
                  step < 3 ? NOF_STATE_INACTIVE : NOF_STATE_ACTIVE);
        EXPECT_EQ(node->node_state, step == 0 ? VGA_NODE_STATE_STOPPED : VGA_NODE_STATE_ACTIVE);
        if (step != 0) {
            stop_node();
        }
        service.control("journal clear");
    }
}

TEST_F(Chain, AFailedPortLeavesADlcThatAnotherPortNeeds) {
    service.control("define port X25TWO dlc=X25");
    ASSERT_TRUE(wait([&] { return port("X25TWO") != nullptr; }));
    vga_nodew_init_start_port(port("X25TWO"));
    ASSERT_TRUE(comes_true([&] { return port("X25TWO")->vcb->state == NOF_STATE_ACTIVE; }));
    service.control("journal clear");
    service.control("fail NAP_START_PORT 1 0x2100 0");
    vga_nodew_init_start_ls(link, false);
    expect_message(922);
    EXPECT_EQ(verbs(), "START_PORT ");
    EXPECT_EQ(link->parent->parent->vcb->state, NOF_STATE_ACTIVE);

    // The last port takes the DLC down with it.
    vga_nodew_stop_port(port("X25TWO"));
    ASSERT_TRUE(console.answer("OK"));
    ASSERT_TRUE(wait_verb("STOP_DLC"));
    ASSERT_TRUE(console.wait_idle());
    EXPECT_EQ(port("X25TWO")->vcb->state, NOF_STATE_INACTIVE);
    EXPECT_EQ(link->parent->parent->vcb->state, NOF_STATE_INACTIVE);
}

struct Removal {
    const char* verb;  // outstanding when the record goes
    const char* chain; // "ls", "port" or "pu"
};
void PrintTo(const Removal& removal, std::ostream* out) {
    *out << removal.verb << " of " << removal.chain;
}
class RemovedRecord : public Chain, public testing::WithParamInterface<Removal> {};

TEST_P(RemovedRecord, EndsTheChainInPeace) {
    service.control(std::string("hold NAP_") + GetParam().verb);
    service.control("fail NAP_START_LS 1 0x2300 0x13400000");
    const std::string chain = GetParam().chain;
    vga_port* its_port = link->parent;
    vga_pu* pu = find_ebcdic<vga_pu>(node->local_pu_tree, "PUDLUR2");
    if (chain == "ls") {
        vga_nodew_init_start_ls(link, false);
    } else if (chain == "port") {
        vga_nodew_init_start_port(its_port);
    } else {
        vga_nodew_start_pu(pu);
    }
    ASSERT_TRUE(wait_verb(GetParam().verb));
    const std::string before = verbs();
    if (chain == "ls") {
        vga_delete_vga_ls(link, true);
    } else if (chain == "port") {
        vga_delete_vga_port(its_port, true);
    } else {
        vga_delete_vga_local_pu(pu, true);
    }
    service.control("release");
    service.control("clear");
    ASSERT_TRUE(console.wait_idle());
    EXPECT_EQ(verbs(), before) << "nothing follows";
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_ACTIVE);
    EXPECT_EQ(CONSOLE::message(), "");
    if (chain == "ls") {
        EXPECT_NE(its_port->vcb->state, NOF_STATE_START_PENDING) << "nothing waits for it";
    }
    EXPECT_NE(find<vga_dlc>(node->dlc_tree, "X25")->vcb->state, NOF_STATE_START_PENDING);
}

INSTANTIATE_TEST_SUITE_P(Steps, RemovedRecord,
                         testing::Values(Removal{"INIT_NODE", "ls"}, Removal{"START_DLC", "ls"},
                                         Removal{"START_PORT", "ls"}, Removal{"START_LS", "ls"},
                                         Removal{"INIT_NODE", "port"}, Removal{"START_DLC", "port"},
                                         Removal{"START_PORT", "port"}, Removal{"INIT_NODE", "pu"},
                                         Removal{"START_INTERNAL_PU", "pu"}),
                         [](const auto& info) {
                             return std::string(info.param.chain) + "_" + info.param.verb;
                         });

TEST_F(Chain, ADlurPuStartsTheNodeFirst) {
    vga_pu* pu = find_ebcdic<vga_pu>(node->local_pu_tree, "PUDLUR2");
    vga_nodew_start_pu(pu);
    EXPECT_EQ(pu->start_pending, 1);
    ASSERT_TRUE(comes_true([&] { return pu->vcb.state == 1; }));
    EXPECT_EQ(pu->start_pending, 0);
    EXPECT_EQ(verbs(), "INIT_NODE START_INTERNAL_PU ");
    vga_nodew_stop_pu(pu);
    ASSERT_TRUE(console.answer("OK"));
    ASSERT_TRUE(wait([&] { return pu->vcb.dlur_status == NOF_DLUR_INACTIVE; }));
}

// Whether all records of a tree have what has(record) tells.
template <typename Record, typename Has> bool all_of(const NTL_AVL_TREE& tree, Has has) {
    bool all = true;
    for (auto* record = ntl_avl_first<Record>(tree); record != nullptr;
         record = static_cast<Record*>(ntl_avl_next(&record->node))) {
        all &= has(*record);
    }
    return all;
}

TEST_F(StartStop, StopOfTheNodeLeavesThePictureOfAStoppedNode) {
    ASSERT_NE(ls("@I000001"), nullptr);
    for (const char* button : {"Cancel", "OK"}) {
        EXPECT_EQ(node->node_state, VGA_NODE_STATE_ACTIVE);
        vga_stop_node(node, node->gui_data.node_window);
        ASSERT_TRUE(console.wait_idle());
        ASSERT_TRUE(console.answer(button));
    }
    ASSERT_TRUE(comes_true([&] { return node->node_state == VGA_NODE_STATE_STOPPED; }));
    EXPECT_EQ(ls("@I000001"), nullptr);
    EXPECT_TRUE(all_of<vga_port>(node->port_tree, [](const vga_port& p) {
        return p.vcb->state == NOF_STATE_INACTIVE && p.parent->vcb->state == NOF_STATE_INACTIVE;
    }));
    EXPECT_TRUE(all_of<vga_ls>(
        node->ls_tree, [](const vga_ls& l) { return l.vcb->det.state == NOF_STATE_INACTIVE; }));
    EXPECT_TRUE(all_of<vga_lu62>(node->lu62_tree, [](const vga_lu62& lu) {
        return lu.act_sess_count == 0 && lu.plu_tree.first == nullptr;
    }));
    EXPECT_TRUE(all_of<vga_pu>(node->local_pu_tree, [](const vga_pu& pu) {
        return pu.vcb.state == 0 && pu.vcb.dlur_status != NOF_DLUR_ACTIVE;
    }));
    EXPECT_TRUE(all_of<vga_rem_sys>(node->rem_sys_tree, [](const vga_rem_sys& rem_sys) {
        return rem_sys.session_count == 0 && rem_sys.defined;
    }));
    for (auto* lu = ntl_avl_first<vga_lu03>(gvga_system->lu_tree); lu != nullptr;
         lu = static_cast<vga_lu03*>(ntl_avl_next(&lu->system_node))) {
        EXPECT_EQ(lu->vcb.det_data.appl_conn_active, NAP_NO);
        EXPECT_EQ(lu->vcb.det_data.lu_active, 0);
    }
    vga_nodew_start_node(node);
    ASSERT_TRUE(wait([&] { return ls("HOSTA")->vcb->det.state == NOF_STATE_ACTIVE; }));
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_ACTIVE);
}

TEST_F(StartStop, AHandleThatIsBusyIsGivenBackLater) {
    service.control("hold NAP_QUERY_PORT");
    const NB_HANDLE handle = node->node_handle;
    ASSERT_TRUE(vga_issue_query_port(node, nullptr, [](VGA_COMPLETION*) {}));
    ASSERT_TRUE(
        vga_issue_disconnect_node(handle, gvga_system->handle, vga_process_disconnect_node));
    ASSERT_TRUE(wait([&] { return count("NAP_DISCONNECT_NODE") >= 3; }));
    service.control("clear");
    ASSERT_TRUE(console.wait_idle()) << "the last try was taken";
    service.control("journal clear");
    ASSERT_TRUE(console.wait_idle());
    EXPECT_EQ(verbs(), "");
    node->node_handle = 0; // it is gone
}

} // namespace
