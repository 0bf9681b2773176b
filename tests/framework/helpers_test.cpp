#include "framework/fixture.h"

#include "shell/globals.h"
#include "shell/graphics.h"
#include "store/records.h"
#include "ui/framework/common_actions.h"
#include "ui/framework/widget_tree.h"
#include "ui/framework/window_menu.h"

#include <X11/keysym.h>

#include <cstring>

namespace {

class Helpers : public FrameworkTest {
protected:
    Widget find(const char* name) { return vga_name_widget(main_window->widget, name, nullptr); }
};

TEST_F(Helpers, WidgetsKnowTheirDialog) {
    Widget push = find("syswPush");
    EXPECT_EQ(vga_dialog_of(push), main_window); // through the top widget
    vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, main_window);
    vga_put_widget_context_prefix(dialog, "Name", "lu62d");
    EXPECT_EQ(vga_dialog_of(vga_name_widget(dialog->widget, "lu62dName", nullptr)), dialog);
    EXPECT_EQ(vga_dialog_of(find("syswExit")), main_window); // out of a menu
    const std::size_t broken = nba_assert_count();
    EXPECT_EQ(vga_put_widget_context(dialog, "nothing"), nullptr);
    EXPECT_EQ(nba_assert_count(), broken + 1);
    EXPECT_STREQ(nba_last_assert(), "this_widget != NULL");
}

struct NODES {
    vga_system system{};
    vga_node nodes[3]{};
    NODES() {
        ntl_avl_init_tree(&system.node_tree,
                          [](const void* a, const void* b) { return std::memcmp(a, b, 128); });
        const char* names[] = {"alpha", "beta", "gamma"};
        for (int i = 0; i < 3; ++i) {
            vga_node& node = nodes[i];
            std::memset(&node.node_name, ' ', sizeof node.node_name);
            std::memcpy(&node.node_name, names[i], std::strlen(names[i]));
            node.handle = nba_create_handle(&node);
            node.node_state = VGA_NODE_STATE_UNCONFIGURED;
            ntl_avl_init_node(&node.node, &node, &node.node_name);
            ntl_avl_insert(&system.node_tree, &node.node);
        }
        gvga_system = &system;
    }
    ~NODES() {
        for (vga_node& node : nodes) {
            nba_destroy_handle(node.handle);
        }
        gvga_system = nullptr;
    }
};

TEST_F(Helpers, WindowsMenuNumbersItsNodesWithoutGaps) {
    NODES domain;
    Widget menu = find("syswWindowsPane");
    const auto labels = [&] {
        std::vector<std::string> result;
        vga_for_each_child(menu, [&](Widget child) {
            if (XtIsManaged(child) && std::string(XtName(child)) == "NodeItem") {
                KeySym key = NoSymbol;
                XtVaGetValues(child, XmNmnemonic, &key, nullptr);
                EXPECT_EQ(key, vga_node_widget_mnemonic(vga_get_node_number_from_widget(child)));
                result.push_back(label_of(child));
            }
        });
        return result;
    };
    for (vga_node& node : domain.nodes) {
        vga_add_node_window_widget(menu, &node);
        vga_add_node_window_widget(menu, &node);
    }
    EXPECT_EQ(labels(), (std::vector<std::string>{"1 alpha", "2 beta", "3 gamma"}));
    vga_remove_node_window_widget(menu, &domain.nodes[1]);
    EXPECT_EQ(labels(), (std::vector<std::string>{"1 alpha", "2 gamma"}));
    Widget item = vga_name_widget(menu, "NodeItem", nullptr);
    vga_raise_node_window(item, nullptr, nullptr);
    EXPECT_EQ(test_log.back(), "show node");
    nba_destroy_handle(domain.nodes[0].handle); // an entry whose node has gone does nothing
    test_log.clear();
    vga_raise_node_window(item, nullptr, nullptr);
    EXPECT_TRUE(test_log.empty());
    vga_remove_all_node_window_widgets(menu);
    EXPECT_TRUE(labels().empty());
    // The screen has no room for all of them below each other.
    for (int i = 0; i < 100; ++i) {
        XtVaCreateManagedWidget("Filler", xmPushButtonWidgetClass, menu, nullptr);
    }
    vga_add_node_window_widget(menu, &domain.nodes[1]);
    short columns = 0;
    XtVaGetValues(menu, XmNnumColumns, &columns, nullptr);
    EXPECT_GT(columns, 1);
    EXPECT_EQ(vga_node_widget_mnemonic(10), static_cast<KeySym>(NoSymbol));
}

TEST_F(Helpers, DomainWindowsNeedAConfiguredNode) {
    NODES domain;
    const struct {
        XtCallbackProc action;
        NB_USHORT client_server;
        NB_HANDLE master;
        NB_BYTE state;
        int message;
    } cases[] = {
        {vga_action_user, 0, 0, VGA_NODE_STATE_UNCONFIGURED, 215},
        {vga_action_lu_pool, 1, 0, VGA_NODE_STATE_UNCONFIGURED, 219},
        {vga_action_rje, 1, 0, VGA_NODE_STATE_ACTIVE, 218},
        {vga_action_rje, 1, 5, VGA_NODE_STATE_UNCONFIGURED, 219},
        {vga_action_cpic, 1, 0, VGA_NODE_STATE_STOPPED, 208}, // goes on to the dialog table
    };
    for (const auto& each : cases) {
        gvga_supported[VGA_SUPPORT_CLIENT_SERVER] = each.client_server;
        domain.system.config_file_handle = each.master;
        domain.nodes[2].node_state = each.state;
        each.action(find("syswPush"), nullptr, nullptr);
        EXPECT_EQ(message_of(main_window), text_of(each.message));
        vga_close_modal_dialog(main_window);
    }
    gvga_supported[VGA_SUPPORT_CLIENT_SERVER] = 0;
}

TEST_F(Helpers, ActivateActionWorksForEveryKindOfButton) {
    Widget push = find("syswPush");
    Widget toggle = find("syswToggle");
    XEvent event{};
    vga_activate_action(push, &event, nullptr, nullptr);
    vga_activate_action(toggle, &event, nullptr, nullptr);
    EXPECT_EQ(test_log, (std::vector<std::string>{"activate"}));
    EXPECT_TRUE(XmToggleButtonGetState(toggle));
    vga_activate_action(toggle, &event, nullptr, nullptr);
    EXPECT_FALSE(XmToggleButtonGetState(toggle));
    vga_set_sensitive(push, false);
    vga_activate_action(push, &event, nullptr, nullptr);
    EXPECT_EQ(test_log.size(), 1u);
    vga_set_sensitive(push, true);
}

TEST_F(Helpers, ColoursReachMenusAndToggles) {
    const Pixel black = BlackPixelOfScreen(gvga_screen);
    const Pixel grey = [] {
        XColor colour{};
        XParseColor(gvga_display, DefaultColormapOfScreen(gvga_screen), "#cccccc", &colour);
        XAllocColor(gvga_display, DefaultColormapOfScreen(gvga_screen), &colour);
        return colour.pixel;
    }();
    Pixel field = 0;
    XtVaGetValues(find("syswText"), XmNbackground, &field, nullptr);
    ASSERT_NE(field, grey);
    gvga_background = grey;
    gvga_foreground = black;
    vga_set_tool_colours(main_window->widget);
    gvga_background = gvga_foreground = 0;
    for (const auto& [name, expected] : {std::pair{"syswExit", grey},
                                         {"syswPush", grey},
                                         {"syswWork", grey},
                                         {"syswText", field}}) {
        Pixel background = 0;
        Pixel foreground = grey;
        XtVaGetValues(find(name), XmNbackground, &background, XmNforeground, &foreground, nullptr);
        EXPECT_EQ(background, expected) << name;
        EXPECT_EQ(foreground, black) << name;
    }
}

} // namespace
