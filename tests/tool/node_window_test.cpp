#include "tool/fixture.h"

#include "ui/viewer/viewer_type.h"
#include "ui/windows/node_window.h"

#include <Xm/SashP.h>

namespace {

using kit::CONSOLE;

class NodeWindow : public tool::Tool {
protected:
    vga_node_window* window = nullptr;

    void SetUp() override {
        Tool::SetUp();
        window = reinterpret_cast<vga_node_window*>(node->gui_data.node_window);
        ASSERT_NE(window, nullptr);
    }

    static Pixel background(Widget widget) {
        Pixel pixel = 0;
        XtVaGetValues(widget, XmNbackground, &pixel, nullptr);
        return pixel;
    }
    std::string bar() const { return text(window->message_bar); }
    // The sensitivity of start, stop, delete, properties, copy, status and add, tool and menu
    // alike.
    std::string tools() const {
        const Widget pairs[][2] = {
            {window->button_start_icon, window->menu_item_start},
            {window->button_stop_icon, window->menu_item_stop},
            {window->button_del_icon, window->menu_item_del},
            {window->button_zoom_icon, window->menu_item_zoom},
            {window->button_copy_icon, window->menu_item_copy},
            {window->button_status_icon, window->menu_item_status},
            {window->button_add_icon, window->menu_item_add},
        };
        std::string text;
        for (const auto& [tool, item] : pairs) {
            EXPECT_EQ(XtIsSensitive(tool), XtIsSensitive(item)) << XtName(tool);
            text += XtIsSensitive(tool) ? 'x' : '.';
        }
        return text;
    }
    void point_at(Widget widget) {
        XWarpPointer(gvga_display, None, XtWindow(widget), 0, 0, 0, 0, 5, 5);
        ASSERT_TRUE(console.wait_idle());
    }
    void send_to_sash(const char* message) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = XtWindow(window->common.shell);
        event.xclient.message_type = XInternAtom(gvga_display, "_MOTIF_WM_MESSAGES", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(XInternAtom(gvga_display, message, False));
        event.xclient.data.l[1] = CurrentTime;
        XSendEvent(gvga_display, event.xclient.window, False, NoEventMask, &event);
        ASSERT_TRUE(console.wait_idle());
    }
};

TEST_F(NodeWindow, OnePaneHoldsTheSelection) {
    const Pixel normal = background(window->top_pane);
    EXPECT_EQ(tools(), ".......");
    ASSERT_TRUE(console.click_row(node->links_root, "HOSTB"));
    EXPECT_EQ(window->selected_pane, window->top_pane);
    EXPECT_NE(background(window->top_pane), normal);
    EXPECT_EQ(tools(), ".xxxxxx");

    ASSERT_TRUE(console.click_row(node->rem_sys_root, "BANKNET.HOSTB"));
    EXPECT_EQ(node->links_root.select_count, 0);
    EXPECT_EQ(node->rem_sys_root.select_count, 1);
    EXPECT_EQ(background(window->top_pane), normal);
    EXPECT_NE(background(window->bottom_pane), normal);
    EXPECT_EQ(tools(), "..xxx.x");

    // The title of a pane brings back the row that it had.
    console.click(console.widget("nodewConnectivityTitle"));
    EXPECT_EQ(window->selected_pane, window->top_pane);
    NB_BYTE type;
    NB_LONG count;
    vga_viewer* parent;
    const auto* ls = static_cast<const vga_ls*>(
        vga_nodew_get_selection(&window->common, &type, &count, &parent));
    ASSERT_NE(ls, nullptr);
    EXPECT_EQ(std::string(ls->vcb->ls_name, 5), "HOSTB");
    EXPECT_EQ(type, VGA_VIEWER_LS);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(parent, &ls->parent->viewer);

    console.click(window->icon_server);
    EXPECT_EQ(window->selected_pane, window->server);
    EXPECT_EQ(node->links_root.select_count, 0);
    EXPECT_EQ(vga_nodew_get_selection(&window->common, &type, &count, &parent), node);
    EXPECT_EQ(type, VGA_VIEWER_NODE);
    EXPECT_EQ(tools(), ".x.x..x");

    // A divider moved from the keyboard takes the place of the selection.
    send_to_sash("_VGA_RESIZE_BOTTOM_SASH");
    EXPECT_EQ(window->selected_pane, nullptr);
    EXPECT_EQ(background(window->server), normal);
    ASSERT_NE(window->bottom_sash, nullptr);
    EXPECT_TRUE(XmIsSash(window->bottom_sash));
    EXPECT_EQ(XmGetFocusWidget(window->common.shell), window->bottom_sash);
    EXPECT_EQ(tools(), ".......");
    send_to_sash("_VGA_RESIZE_TOP_SASH");
    EXPECT_EQ(window->bottom_sash, nullptr);
    ASSERT_TRUE(console.click_row(node->links_root, "HOSTB"));
    EXPECT_EQ(window->top_sash, nullptr);
    EXPECT_EQ(XmGetFocusWidget(window->common.shell), window->link);
}

TEST_F(NodeWindow, FakePortsAreSelectedAlone) {
    vga_port* fake = node->dlur_fake_port;
    ASSERT_NE(fake, nullptr);
    vga_viewer_root* root = &node->links_root;
    vga_viewer_set_view(&fake->viewer, root);
    ASSERT_TRUE(console.wait_idle());
    ASSERT_TRUE(console.click_row(*root, "X25PORT"));
    ASSERT_TRUE(console.click_row(*root, gvga_messages[232], ShiftMask));
    EXPECT_EQ(root->select_count, 1);
    EXPECT_TRUE(fake->viewer.selected);
    EXPECT_EQ(tools(), "......x");
    ASSERT_TRUE(console.click_row(*root, "X25PORT", ControlMask));
    EXPECT_EQ(root->select_count, 1);
    EXPECT_FALSE(fake->viewer.selected);
}

TEST_F(NodeWindow, ButtonsSayWhatTheyDo) {
    ASSERT_TRUE(console.click_row(node->links_root, "IPPORT"));
    point_at(window->button_copy_icon);
    EXPECT_NE(bar().find("IPPORT"), std::string::npos);
    // It becomes insensitive under the pointer.
    vga_nodew_deselect_pane(&window->common);
    EXPECT_EQ(bar(), "");
    ASSERT_TRUE(console.click_row(node->links_root, "IPPORT"));
    point_at(window->button_stop_icon);
    EXPECT_NE(bar(), "");
    point_at(window->server);
    EXPECT_EQ(bar(), "");
}

TEST_F(NodeWindow, ButtonsFollowAStateWhoseIndicationWasLost) {
    const auto becomes = [&](const char* command, NB_BYTE state) {
        service.control(command);
        return comes_true([&] { return ls("CLEARING")->vcb->det.state == state; });
    };
    ASSERT_TRUE(becomes("state ls CLEARING active", NOF_STATE_ACTIVE));
    vga_viewer_set_view(&ls("CLEARING")->viewer, &node->links_root);
    ASSERT_TRUE(console.click_row(node->links_root, "CLEARING"));
    EXPECT_EQ(tools().front(), '.') << "it runs";
    service.control("resync ls");
    ASSERT_TRUE(becomes("state ls CLEARING inactive", NOF_STATE_INACTIVE));
    EXPECT_EQ(tools().front(), 'x');
}

TEST_F(NodeWindow, ModesAreNotOpened) {
    vga_viewer_root& lus = node->lus_root;
    ASSERT_TRUE(console.click_row(lus, "BNKGW01"));
    console.key(XK_plus);
    ASSERT_TRUE(console.wait_idle());
    const auto* lu = static_cast<const vga_lu62*>(vga_viewer_get_selection(&lus));
    ASSERT_TRUE(lu->viewer.expanded);
    ASSERT_GT(lu->viewer.child_count, 0u);
    console.key(XK_Down);
    ASSERT_TRUE(console.wait_idle());
    EXPECT_EQ(lus.select_type, VGA_VIEWER_MODE);
    console.key(XK_Return);
    ASSERT_TRUE(console.wait_idle());
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(window->zoom_ok, 0);
}

TEST_F(NodeWindow, NodeAreaKeepsItsWidth) {
    const auto width = [&] {
        Dimension value = 0;
        XtVaGetValues(window->text_server, XmNwidth, &value, nullptr);
        return value;
    };
    const Dimension before = width();
    for (const VGA_NODE_STATE state : {VGA_NODE_STATE_UNCONFIGURED, VGA_NODE_STATE_STOPPED,
                                       VGA_NODE_STATE_STARTING, VGA_NODE_STATE_ACTIVE}) {
        node->node_state = state;
        vga_redraw_node(node);
        ASSERT_TRUE(console.wait_idle());
        EXPECT_EQ(width(), before);
    }
}

TEST_F(NodeWindow, AnUnconfiguredNodeComesFirst) {
    node->node_state = VGA_NODE_STATE_UNCONFIGURED;
    vga_redraw_node(node);
    ASSERT_TRUE(console.click_row(node->links_root, "IPPORT"));
    console.key(XK_Return);
    ASSERT_TRUE(console.wait_idle());
    EXPECT_NE(CONSOLE::message(), "");
    EXPECT_EQ(window->common.modal_dlg.kind, VGA_MODAL_INFO);
    EXPECT_STREQ(window->common.modal_dlg.help_tag, "tasknode");
    ASSERT_TRUE(console.answer("OK"));
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(XmGetFocusWidget(window->common.shell), window->link);
}

} // namespace
