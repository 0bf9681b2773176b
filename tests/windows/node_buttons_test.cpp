// What the node window offers for a selection, and what it says about its buttons.
#include "windows/fixture.h"

namespace {

// The sensitive buttons in the order of the tool bar's actions, "." for an insensitive one; "+" at
// the end when the selection can be opened.
std::string offered(const VGA_NODEW_STATES& states) {
    constexpr char letters[] = "spdzci"; // start, stop, delete, properties, copy, status
    std::string text;
    for (int i = 0; i < VGA_NODEW_ADD; ++i) {
        text += states.sensitive[static_cast<std::size_t>(i)] ? letters[i] : '.';
    }
    EXPECT_FALSE(states.sensitive[VGA_NODEW_ADD]);
    return states.zoom_ok ? text + '+' : text;
}

class NodeButtons : public WindowStore {
protected:
    std::string one(NB_BYTE type, const void* record) {
        return offered(vga_nodew_button_states(node, type, 1, record));
    }
};

TEST_F(NodeButtons, NothingAndSeveral) {
    const vga_port* port = add_port("ETH0");
    EXPECT_EQ(offered(vga_nodew_button_states(node, VGA_VIEWER_SELECT_NONE, 0, nullptr)), "......");
    EXPECT_EQ(offered(vga_nodew_button_states(node, VGA_VIEWER_PORT, 2, port)), "..d...");
    EXPECT_EQ(one(VGA_VIEWER_PORT, vga_get_dlur_fake_port(node)), "......");
    EXPECT_EQ(one(VGA_VIEWER_REM_SYS, vga_fake_vga_rem_sys(node)), "......");
    EXPECT_EQ(one(VGA_VIEWER_LS_R_TITLE, add_lu62("LUA", "LUA")), "......");
}

TEST_F(NodeButtons, PortsAndLinkStations) {
    constexpr NB_BYTE active = VGA_NODE_STATE_ACTIVE;
    constexpr NB_BYTE stopped = VGA_NODE_STATE_STOPPED;
    vga_port* port = add_port("ETH0");
    node->node_state = VGA_NODE_STATE_STOPPING;
    EXPECT_EQ(one(VGA_VIEWER_NODE, node), "s..z..+");
    const struct {
        NB_BYTE node, state;
        const char* text;
    } ports[] = {{active, 0, "s.dzci+"},
                 {active, 1, ".pdzci+"},
                 {active, 2, ".pdzci+"},
                 {active, 8, "s.dzci+"},
                 {stopped, 0, "s.dzc.+"},
                 {VGA_NODE_STATE_STARTING, 2, ".pdzc.+"},
                 {VGA_NODE_STATE_STOPPING, 1, "..dzc.+"},
                 {VGA_NODE_STATE_UNCONFIGURED, 0, "..dzc.+"}};
    for (const auto& each : ports) {
        node->node_state = each.node;
        port->vcb->state = each.state;
        EXPECT_EQ(one(VGA_VIEWER_PORT, port), each.text) << "case " << &each - ports;
    }
    vga_ls* ls = add_ls("PEER", "ETH0");
    const struct {
        NB_BYTE node, state, flags, implicit;
        const char* text;
    } stations[] = {{active, 0, 0, 0, "s.dzci+"},
                    {active, 1, 0, 0, ".pdzci+"},
                    {active, 2, 3, 0, ".pdzci+"},
                    {active, 16, 0, 0, "spdzci+"},
                    {active, 0, NOF_LS_INCOMING, 0, "spdzci+"},
                    {stopped, 0, NOF_LS_INCOMING, 0, "s.dzc.+"},
                    {active, 1, 0, 1, ".pd.ci"},
                    {stopped, 0, 0, 1, "s.d.ci"}};
    for (const auto& each : stations) {
        node->node_state = each.node;
        ls->vcb->det.state = each.state;
        ls->vcb->det.activation_flags = each.flags;
        ls->vcb->det.implicit = each.implicit;
        EXPECT_EQ(one(VGA_VIEWER_LS_NO_PU, ls), each.text) << "case " << &each - stations;
    }
    // One that carries a PU has a definition even when it is implicit.
    EXPECT_EQ(one(VGA_VIEWER_LS, ls), "s.dzc.+");
}

TEST_F(NodeButtons, PusAndDependentLus) {
    vga_pu* pu = add_dlur_pu("PUDLUR");
    pu->vcb.dlur_status = NOF_DLUR_ACTIVE;
    EXPECT_EQ(one(VGA_VIEWER_LOCAL_PU, pu), ".pdzc.+");
    pu->vcb.dlur_status = NOF_DLUR_INACTIVE;
    EXPECT_EQ(one(VGA_VIEWER_LOCAL_PU, pu), "s.dzc.+");
    pu->start_pending = 1;
    EXPECT_EQ(one(VGA_VIEWER_LOCAL_PU, pu), "..dzc.+");
    EXPECT_EQ(one(VGA_VIEWER_DEPLU, add_lu03("LU1", "PUDLUR")), "..dzc.+");
    vga_lu62* lu = add_lu62("LUDEP", "LUDEP", 9, "PUDLUR");
    EXPECT_EQ(one(VGA_VIEWER_DEPLU, lu), "s.dzc.+");
    lu->act_sess_count = 1;
    EXPECT_EQ(one(VGA_VIEWER_DEPLU, lu), ".pdzc.+");
    node->node_state = VGA_NODE_STATE_STOPPED;
    EXPECT_EQ(one(VGA_VIEWER_DEPLU, lu), "..dzc.+");
}

TEST_F(NodeButtons, DownstreamLus) {
    vga_ls* ls = (add_port("ETH0"), add_ls("DOWN", "ETH0"));
    vga_pu pu{};
    pu.parent = node;
    pu.ls_entry = ls;
    vga_down_lu lu{};
    lu.parent = &pu;
    const struct {
        NB_BYTE lu_active, ls_state, type, implicit;
        const char* text;
    } cases[] = {{0, 1, 1, 0, "s.dzc.+"}, {1, 1, 1, 0, "..dzc.+"}, {0, 0, 1, 0, "..dzc.+"},
                 {0, 1, 2, 0, "s..z..+"}, {0, 1, 1, 1, "s..z..+"}, {0, 1, 3, 1, "s.dzc.+"}};
    for (const auto& each : cases) {
        lu.vcb.lu_active = each.lu_active;
        ls->vcb->det.state = each.ls_state;
        ls->vcb->det.implicit = each.implicit;
        pu.vcb.host_attachment = each.type;
        EXPECT_EQ(one(VGA_VIEWER_DOWN_LU, &lu), each.text) << "case " << &each - cases;
    }
    pu.ls_entry = nullptr;
    EXPECT_EQ(one(VGA_VIEWER_DOWN_LU, &lu), "..dzc.+");
}

TEST_F(NodeButtons, SessionsAndRemoteSystems) {
    vga_lu62* lu = add_lu62("LUA", "LUA");
    vga_mode* mode = add_mode(lu, "NET.P", "#INTER");
    EXPECT_EQ(one(VGA_VIEWER_LU62, lu), "s.dzc.+");
    EXPECT_EQ(one(VGA_VIEWER_MODE, mode), "s....i");
    lu->act_sess_count = mode->act_sess_count = 1;
    EXPECT_EQ(one(VGA_VIEWER_LU62, lu), "spdzc.+");
    EXPECT_EQ(one(VGA_VIEWER_MODE, mode), "sp...i");
    node->node_state = VGA_NODE_STATE_STOPPED;
    EXPECT_EQ(one(VGA_VIEWER_LU62, lu), "..dzc.+");
    EXPECT_EQ(one(VGA_VIEWER_MODE, mode), ".....i");
    node->node_state = VGA_NODE_STATE_ACTIVE;
    vga_rem_sys* east = add_rem_sys("NET.EAST", true);
    vga_rem_plu* plu = add_rem_plu(east, "NET.LU", NAP_LU_RESOURCE, true);
    vga_rem_sess sess{};
    sess.parent = plu;
    EXPECT_EQ(one(VGA_VIEWER_REM_SYS, east), "..dzc.+");
    EXPECT_EQ(one(VGA_VIEWER_REM_PLU, plu), "..dzc.+");
    EXPECT_EQ(one(VGA_VIEWER_REM_SESS, &sess), ".....i");
}

TEST_F(NodeButtons, HelpNamesTheSelection) {
    vga_port* port = add_port("ETH0");
    vga_ls_routing route{};
    put(route.vcb.key.plu_name, "");
    const struct {
        VGA_NODEW_BUTTON button;
        NB_BYTE type;
        NB_LONG count;
        const void* record;
        int message; // 0: no text
        const char* name;
    } cases[] = {
        {VGA_NODEW_START, VGA_VIEWER_NODE, 1, node, 730, "NODE1"},
        {VGA_NODEW_STOP, VGA_VIEWER_PORT, 1, port, 751, "ETH0"},
        {VGA_NODEW_COPY, VGA_VIEWER_LU62, 1, add_lu62("LUA", "LUA"), 705, "LUA"},
        {VGA_NODEW_STATUS, VGA_VIEWER_REM_SYS, 1, add_rem_sys("NET.EAST", true), 742, "NET.EAST"},
        {VGA_NODEW_DELETE, VGA_VIEWER_LS_R, 1, &route, 716, gvga_messages[873]},
        {VGA_NODEW_STATUS, VGA_VIEWER_REM_SESS, 1, port, 784, ""},
        {VGA_NODEW_ADD, VGA_VIEWER_PORT, 1, port, 700, ""},
        {VGA_NODEW_DELETE, VGA_VIEWER_PORT, 2, port, 724, ""},
        {VGA_NODEW_START, VGA_VIEWER_SELECT_NONE, 0, nullptr, 734, ""},
        {VGA_NODEW_COPY, VGA_VIEWER_MODE, 1, nullptr, 0, ""},
    };
    for (const auto& each : cases) {
        char expected[2 * VGA_MESSAGE_BUFFER_SIZE] = "";
        if (each.message != 0) {
            vga_print_msg(expected, gvga_messages[each.message], "s", each.name);
        }
        char text[2 * VGA_MESSAGE_BUFFER_SIZE];
        vga_nodew_button_help(each.button, each.type, each.count, each.record, text);
        EXPECT_STREQ(text, expected) << "case " << &each - cases;
    }
}

} // namespace
