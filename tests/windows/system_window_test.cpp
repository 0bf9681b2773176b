// What the system window shows of a node and offers for it.
#include "windows/fixture.h"

#include "ui/viewer/viewer_type.h"
#include "ui/windows/system_window_internal.h"
#include "ui/windows/system_window_rows.h"

namespace {

class SystemWindow : public WindowStore {
protected:
    // Start, stop, open, trace, add and remove as backup server; "." for what is not offered.
    std::string offered(bool network_file) const {
        const VGA_SYSW_STATES states = vga_sysw_button_states(node, network_file);
        std::string text;
        const auto add = [&](bool on, char letter) { text += on ? letter : '.'; };
        add(states.tools[VGA_SYSW_START], 's');
        add(states.tools[VGA_SYSW_STOP], 'p');
        add(states.tools[VGA_SYSW_ZOOM], 'o');
        add(states.trace, 't');
        add(states.add_backup, '+');
        add(states.del_backup, '-');
        return text;
    }
    std::string row() const {
        char text[VGA_VIEWER_MAX_TEXT_LENGTH + 1];
        char shown[4 * VGA_VIEWER_MAX_TEXT_LENGTH];
        const int length = vga_create_node_viewer_text(node, text);
        EXPECT_EQ(static_cast<std::size_t>(length), std::strlen(text));
        vga_tab_msg(shown, text);
        return shown;
    }
};

TEST_F(SystemWindow, OffersWhatStateAndRoleAllow) {
    const struct {
        NB_BYTE state, role;
        bool network_file;
        const char* text;
    } cases[] = {
        {VGA_NODE_STATE_STOPPED, VGA_ROLE_NONE, true, "s.ot+."},
        {VGA_NODE_STATE_STOPPED, VGA_ROLE_NONE, false, "s.ot.."},
        {VGA_NODE_STATE_STARTING, VGA_ROLE_SERVER, true, ".pot.-"},
        {VGA_NODE_STATE_STOPPING, VGA_ROLE_LOCAL_SERVER, true, "s.ot.-"},
        {VGA_NODE_STATE_ACTIVE, VGA_ROLE_SERVER, false, ".pot.."},
        {VGA_NODE_STATE_UNCONFIGURED, VGA_ROLE_NONE, true, "..o.+."},
        {VGA_NODE_STATE_UNCONFIGURED, VGA_ROLE_SERVER, true, "..o..-"},
        {VGA_NODE_STATE_BACK_LEVEL, VGA_ROLE_NONE, true, "..o..."},
        {VGA_NODE_STATE_BACK_LEVEL, VGA_ROLE_SERVER, true, "..o..."},
    };
    for (const auto& each : cases) {
        node->node_state = each.state;
        node->server_role = each.role;
        EXPECT_EQ(offered(each.network_file), each.text) << "case " << &each - cases;
    }
    EXPECT_EQ(broken(), 0u);
    node->node_state = 17;
    offered(true);
    EXPECT_EQ(broken(), 1u);
    node = nullptr;
    EXPECT_EQ(offered(true), "......");
}

TEST_F(SystemWindow, RowsAlignNameStateRoleAndDescription) {
    std::strcpy(node->vcb.parameters.description, "Head office");
    const struct {
        NB_BYTE state, role;
        const char* shown; // behind the name
        VGA_ICON icon;
    } cases[] = {
        {VGA_NODE_STATE_STARTING, VGA_ROLE_SERVER, "Starting        Server           Head office",
         VGA_ICON_NODE},
        {VGA_NODE_STATE_BACK_LEVEL, VGA_ROLE_NONE, "Older level     Not a server     Head office",
         VGA_ICON_BACKNODE},
    };
    // A name that fills its column leaves nothing of itself behind the state.
    for (const char* name :
         {"alpha", "a-very-long-node-name.department.division.subsidiary.example.org"}) {
        std::memset(node->node_name, 0, sizeof node->node_name);
        std::strcpy(node->node_name, name);
        for (const auto& each : cases) {
            node->node_state = each.state;
            node->server_role = each.role;
            const std::string shown = row();
            EXPECT_EQ(shown.substr(0, 5), std::string(name).substr(0, 5));
            EXPECT_EQ(shown.substr(32), each.shown);
            EXPECT_EQ(vga_choose_node_viewer_icon(node), each.icon);
        }
    }
    node->node_state = VGA_NODE_STATE_UNCONFIGURED;
    EXPECT_TRUE(row().ends_with(gvga_messages[888]));
    EXPECT_EQ(broken(), 0u);
    node->node_state = 9;
    EXPECT_EQ(row(), "");
    EXPECT_EQ(broken(), 1u);
}

} // namespace
