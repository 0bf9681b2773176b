#include "start_stop_fixture.h"

#include "store/build.h"
#include "store/remove.h"

// Chains of starts, the stop of the node, and what other operators start and stop.
namespace start_stop {
namespace {

constexpr const char* whole_chain[] = {"INIT_NODE", "START_DLC", "START_PORT", "START_LS"};
Verbs first(std::size_t count) {
    return Verbs(whole_chain, whole_chain + count);
}

// ATMNORTH's port and DLC do not start with the node.
class Chain : public StartStop {
protected:
    void SetUp() override {
        StartStop::SetUp();
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
        EXPECT_EQ(link->vcb->det.state, NOF_STATE_START_PENDING);
        service.control("release");
    }
    ASSERT_TRUE(wait([&] { return link->vcb->det.state == NOF_STATE_ACTIVE; }));
    ASSERT_TRUE(console.wait_idle());
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
        ASSERT_TRUE(wait([] { return !CONSOLE::message().empty(); }));
        ASSERT_TRUE(console.wait_idle());
        const std::string text = this->text(messages[step]);
        EXPECT_EQ(CONSOLE::message().substr(0, text.find('%')), text.substr(0, text.find('%')));
        ASSERT_TRUE(answer("OK"));
        Verbs expected = first(step + 1);
        if (step == 2) {
            expected.push_back("STOP_DLC"); // nothing else needs it
        }
        EXPECT_EQ(verbs(), expected);
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
    ASSERT_TRUE(wait([&] { return port("X25TWO")->vcb->state == NOF_STATE_ACTIVE; }));
    ASSERT_TRUE(console.wait_idle());
    service.control("journal clear");
    service.control("fail NAP_START_PORT 1 0x2100 0");
    vga_nodew_init_start_ls(link, false);
    ASSERT_TRUE(wait([] { return !CONSOLE::message().empty(); }));
    ASSERT_TRUE(answer("OK"));
    EXPECT_EQ(verbs(), Verbs{"START_PORT"});
    EXPECT_EQ(link->parent->parent->vcb->state, NOF_STATE_ACTIVE);

    // The last port takes the DLC down with it.
    service.control("journal clear");
    ASSERT_TRUE(console.wait_idle());
    vga_nodew_stop_port(port("X25TWO"));
    ASSERT_TRUE(answer("OK"));
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
    const Verbs sent = verbs();
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
    EXPECT_EQ(verbs(), sent) << "nothing follows";
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
    ASSERT_TRUE(wait([&] { return pu->vcb.state == 1; }));
    ASSERT_TRUE(console.wait_idle());
    EXPECT_EQ(pu->start_pending, 0);
    EXPECT_EQ(verbs(), (Verbs{"INIT_NODE", "START_INTERNAL_PU"}));
    vga_nodew_stop_pu(pu);
    ASSERT_TRUE(answer("OK"));
    ASSERT_TRUE(wait([&] { return pu->vcb.dlur_status == NOF_DLUR_INACTIVE; }));
}

class Others : public StartStop {};

TEST_F(Others, StopOfTheNodeLeavesThePictureOfAStoppedNode) {
    ASSERT_NE(ls("@I000001"), nullptr);
    vga_stop_node(node, node->gui_data.node_window);
    ASSERT_TRUE(console.wait_idle());
    EXPECT_NE(CONSOLE::message(), "");
    ASSERT_TRUE(answer("Cancel"));
    ASSERT_TRUE(console.wait_idle());
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_ACTIVE);
    vga_stop_node(node, node->gui_data.node_window);
    ASSERT_TRUE(answer("OK"));
    ASSERT_TRUE(wait([&] { return node->node_state == VGA_NODE_STATE_STOPPED; }));
    ASSERT_TRUE(console.wait_idle());

    EXPECT_EQ(ls("@I000001"), nullptr);
    for (auto* p = ntl_avl_first<vga_port>(node->port_tree); p != nullptr;
         p = static_cast<vga_port*>(ntl_avl_next(&p->node))) {
        EXPECT_EQ(p->vcb->state, NOF_STATE_INACTIVE);
        EXPECT_EQ(p->parent->vcb->state, NOF_STATE_INACTIVE);
    }
    for (auto* l = ntl_avl_first<vga_ls>(node->ls_tree); l != nullptr;
         l = static_cast<vga_ls*>(ntl_avl_next(&l->node))) {
        EXPECT_EQ(l->vcb->det.state, NOF_STATE_INACTIVE);
    }
    for (auto* lu = ntl_avl_first<vga_lu62>(node->lu62_tree); lu != nullptr;
         lu = static_cast<vga_lu62*>(ntl_avl_next(&lu->node))) {
        EXPECT_EQ(lu->act_sess_count, 0);
        EXPECT_EQ(lu->plu_tree.first, nullptr);
    }
    for (auto* pu = ntl_avl_first<vga_pu>(node->local_pu_tree); pu != nullptr;
         pu = static_cast<vga_pu*>(ntl_avl_next(&pu->node))) {
        EXPECT_EQ(pu->vcb.state, 0);
        EXPECT_NE(pu->vcb.dlur_status, NOF_DLUR_ACTIVE);
    }
    for (auto* rem_sys = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree); rem_sys != nullptr;
         rem_sys = static_cast<vga_rem_sys*>(ntl_avl_next(&rem_sys->node))) {
        EXPECT_EQ(rem_sys->session_count, 0);
        EXPECT_TRUE(rem_sys->defined);
    }
    for (auto* lu = ntl_avl_first<vga_deplu>(gvga_system->lu_tree); lu != nullptr;) {
        auto* lu03 = reinterpret_cast<vga_lu03*>(lu);
        EXPECT_EQ(lu03->vcb.det_data.appl_conn_active, NAP_NO);
        EXPECT_EQ(lu03->vcb.det_data.lu_active, 0);
        lu = static_cast<vga_deplu*>(ntl_avl_next(&lu03->system_node));
    }

    vga_nodew_start_node(node);
    ASSERT_TRUE(wait([&] { return ls("HOSTA")->vcb->det.state == NOF_STATE_ACTIVE; }));
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_ACTIVE);
}

TEST_F(Others, OtherOperatorsStartsAndStopsAreFollowed) {
    service.control("start dlc X25");
    service.control("start port X25PORT");
    service.control("start ls ATMNORTH");
    ASSERT_TRUE(wait([&] { return ls("ATMNORTH")->vcb->det.state == NOF_STATE_ACTIVE; }));
    EXPECT_EQ(port("X25PORT")->vcb->state, NOF_STATE_ACTIVE);
    EXPECT_EQ(port("X25PORT")->parent->vcb->state, NOF_STATE_ACTIVE);
    service.control("stop ls ATMNORTH");
    ASSERT_TRUE(wait([&] { return ls("ATMNORTH")->vcb->det.state == NOF_STATE_INACTIVE; }));
    service.control("stop port X25PORT");
    ASSERT_TRUE(wait([&] { return port("X25PORT")->vcb->state == NOF_STATE_INACTIVE; }));
    service.control("stop node");
    ASSERT_TRUE(wait([&] { return node->node_state == VGA_NODE_STATE_STOPPED; }));
    service.control("start node");
    ASSERT_TRUE(wait([&] { return node->node_state == VGA_NODE_STATE_ACTIVE; }));
    ASSERT_TRUE(console.wait_idle());
    EXPECT_EQ(CONSOLE::message(), "");
}

TEST_F(Others, AHandleThatIsBusyIsGivenBackLater) {
    service.control("hold NAP_QUERY_PORT");
    const NB_HANDLE handle = node->node_handle;
    ASSERT_TRUE(vga_issue_query_port(node, nullptr, [](VGA_COMPLETION*) {}));
    ASSERT_TRUE(
        vga_issue_disconnect_node(handle, gvga_system->handle, vga_process_disconnect_node));
    const auto tries = [&] { return verbs().size(); };
    ASSERT_TRUE(wait([&] { return tries() >= 3; }));
    service.control("clear");
    ASSERT_TRUE(console.wait_idle()) << "the last try was taken";
    EXPECT_EQ(verbs().back(), "DISCONNECT_NODE");
    service.control("journal clear");
    ASSERT_TRUE(console.wait_idle());
    EXPECT_TRUE(verbs().empty());
    node->node_handle = 0; // it is gone
}

} // namespace
} // namespace start_stop
