#include "tool/fixture.h"

#include "kit/domain.h"
#include "nof/node.h"
#include "shell/graphics.h"
#include "ui/framework/widget_tree.h"
#include "ui/windows/node_window.h"
#include "ui/windows/system_window.h"

#include <string_view>

// The whole console on a domain of nodes.
namespace {

using kit::CONSOLE;
using kit::DOMAIN_NODE;

vga_node* node_named(const std::string& name) {
    NB_NODE_NAME key{};
    std::memcpy(key, name.data(), name.size());
    return vga_find_node(key);
}
vga_viewer_root& list() {
    return gvga_system->node_viewer_root;
}

class SystemWindow : public tool::Tool {
protected:
    vga_system_window* window = nullptr;

    SystemWindow()
        : Tool(kit::domain_options({{"alpha"},
                                    {"beta"},
                                    {"delta", DOMAIN_NODE::UNCONFIGURED},
                                    {"epsilon", DOMAIN_NODE::BACK_LEVEL},
                                    {"gamma", DOMAIN_NODE::STOPPED}},
                                   {"beta"}, "beta")) {}
    void SetUp() override {
        Tool::SetUp();
        window = reinterpret_cast<vga_system_window*>(gvga_system->gui_data.system_window);
        ASSERT_NE(window, nullptr);
    }

    static std::string row_of(const char* name) { return Tool::row_of(list(), name); }
    static std::string title(const vga_dialog& dialog) {
        char* text = nullptr;
        XtVaGetValues(dialog.shell, XmNtitle, &text, nullptr);
        return text;
    }
    static std::string selected() {
        EXPECT_LE(list().select_count, 1);
        const auto* node = static_cast<vga_node*>(vga_viewer_get_selection(&list()));
        return node != nullptr ? node->node_name : "";
    }
    // Start, stop, open, trace, add and remove as backup server, tool and menu alike.
    std::string offered() const {
        EXPECT_EQ(XtIsSensitive(window->button_start_icon), XtIsSensitive(window->menu_item_start));
        EXPECT_EQ(XtIsSensitive(window->button_stop_icon), XtIsSensitive(window->menu_item_stop));
        EXPECT_EQ(XtIsSensitive(window->button_zoom_icon), XtIsSensitive(window->menu_item_zoom));
        std::string text;
        const std::pair<Widget, char> items[] = {
            {window->menu_item_start, 's'},      {window->menu_item_stop, 'p'},
            {window->menu_item_zoom, 'o'},       {window->menu_item_trace, 't'},
            {window->menu_item_add_backup, '+'}, {window->menu_item_del_backup, '-'}};
        for (const auto& [widget, letter] : items) {
            text += XtIsSensitive(widget) ? letter : '.';
        }
        return text;
    }
    static std::vector<std::string> menu_entries(Widget menu) {
        std::vector<std::string> entries;
        vga_for_each_child(menu, [&](Widget child) {
            if (XtIsManaged(child) && std::string_view(XtName(child)) == "NodeItem") {
                entries.push_back(label(child));
            }
        });
        return entries;
    }
    // Puts the window in front of the node windows and selects a node in it.
    void select(const std::string& name) {
        vga_raise_dialog(&window->common);
        ASSERT_TRUE(console.wait_idle());
        ASSERT_TRUE(console.click_row(list(), name)) << name;
        ASSERT_EQ(selected(), name);
    }
    vga_node_window* open(const std::string& name) {
        vga_raise_dialog(&window->common);
        console.wait_idle();
        EXPECT_TRUE(console.click_row(list(), name, 0, 2)) << name;
        return reinterpret_cast<vga_node_window*>(node_named(name)->gui_data.node_window);
    }
    // Reads the messages that wait, and tells the last one.
    std::string acknowledge() {
        std::string last;
        console.wait_idle();
        while (!CONSOLE::message().empty()) {
            last = CONSOLE::message();
            EXPECT_TRUE(console.answer("OK"));
            console.wait_idle();
        }
        return last;
    }
};

TEST_F(SystemWindow, ShowsTheDomain) {
    EXPECT_EQ(title(window->common).find(gvga_messages[884]), std::string::npos);
    EXPECT_NE(title(window->common).find("alpha"), std::string::npos);
    EXPECT_EQ(text(window->message_bar), "");
    EXPECT_TRUE(XtIsSensitive(window->common.widget));
    EXPECT_EQ(XmGetFocusWidget(window->common.shell), window->nodes);
    const struct {
        const char* name;
        const char* state;
        const char* role;
        const char* offered;
    } nodes[] = {{"alpha", "Active", "Local server", ".pot.-"},
                 {"beta", "Active", " Server", ".pot.-"},
                 {"delta", "Not configured", "Not a server", "..o.+."},
                 {"epsilon", "Older level", "Not a server", "..o..."},
                 {"gamma", "Stopped", "Not a server", "s.ot+."}};
    const std::vector<std::string> rows = CONSOLE::rows(list());
    ASSERT_EQ(rows.size(), std::size(nodes));
    const std::vector<std::string> entries = menu_entries(window->window_menu);
    ASSERT_EQ(entries.size(), std::size(nodes));
    EXPECT_STREQ(list().outline_viewer == nullptr
                     ? ""
                     : static_cast<vga_node*>(list().outline_viewer->data)->node_name,
                 "alpha");
    for (std::size_t i = 0; i < std::size(nodes); ++i) {
        EXPECT_TRUE(rows[i].starts_with(nodes[i].name)) << rows[i];
        EXPECT_NE(rows[i].find(nodes[i].state), std::string::npos) << rows[i];
        EXPECT_NE(rows[i].find(nodes[i].role), std::string::npos) << rows[i];
        EXPECT_NE(entries[i].find(std::to_string(i + 1)), std::string::npos) << entries[i];
        EXPECT_NE(entries[i].find(nodes[i].name), std::string::npos) << entries[i];
        select(nodes[i].name);
        EXPECT_EQ(offered(), nodes[i].offered) << nodes[i].name;
    }
    EXPECT_EQ(gvga_system->central_logger_handle, node_named("beta")->node_handle);
}

TEST_F(SystemWindow, OneNodeIsSelected) {
    select("alpha");
    ASSERT_TRUE(console.click_row(list(), "gamma", ControlMask));
    EXPECT_EQ(selected(), "gamma");
    ASSERT_TRUE(console.click_row(list(), "beta", ShiftMask));
    EXPECT_EQ(selected(), "beta");
    console.key(XK_Down, ShiftMask);
    EXPECT_EQ(selected(), "delta");
    console.key(XK_End, ControlMask);
    EXPECT_EQ(selected(), "gamma");
    EXPECT_EQ(offered(), "s.ot+.");

    // A drag takes the one selection along, over several rows at once as well.
    const int row = gvga_metrics.item_height;
    console.press(window->nodes, 200, row / 2);
    EXPECT_EQ(selected(), "alpha");
    for (const auto& [y, name] :
         {std::pair{row + row / 2, "beta"}, std::pair{4 * row + row / 2, "gamma"},
          std::pair{2 * row + row / 2, "delta"}}) {
        Position x, screen_y;
        XtTranslateCoords(window->nodes, 200, static_cast<Position>(y), &x, &screen_y);
        XWarpPointer(gvga_display, None, DefaultRootWindow(gvga_display), 0, 0, 0, 0, x, screen_y);
        ASSERT_TRUE(console.wait_idle());
        EXPECT_EQ(selected(), name);
        EXPECT_EQ(list().outline_viewer, list().select_anchor);
    }
    console.release();
    EXPECT_EQ(selected(), "delta");
    EXPECT_EQ(offered(), "..o.+.");
}

TEST_F(SystemWindow, ButtonsSayWhatTheyDo) {
    const auto point_at = [&](Widget widget) {
        XWarpPointer(gvga_display, None, XtWindow(widget), 0, 0, 0, 0, 5, 5);
        console.wait_idle();
        return text(window->message_bar);
    };
    vga_viewer_clear_selection(&list());
    vga_sysw_set_button_states(&window->common);
    EXPECT_EQ(point_at(window->button_zoom_icon), "") << "insensitive: it gets no events";
    select("gamma");
    const std::string help = point_at(window->button_start_icon);
    EXPECT_NE(help.find("gamma"), std::string::npos) << help;
    service.control("start node gamma");
    EXPECT_TRUE(
        comes_true([] { return node_named("gamma")->node_state == VGA_NODE_STATE_ACTIVE; }));
    EXPECT_EQ(text(window->message_bar), "") << "the button under the pointer does nothing";
    EXPECT_EQ(point_at(window->nodes), "");
}

TEST_F(SystemWindow, NodeWindowsOpenFromTheList) {
    select("alpha");
    EXPECT_EQ(node_named("alpha")->gui_data.node_window, nullptr) << "a single click only selects";
    console.key(XK_w, Mod1Mask); // the Windows menu opens one
    console.key(XK_2);
    EXPECT_TRUE(comes_true([] { return node_named("beta")->gui_data.node_window != nullptr; }));
    const auto* beta = reinterpret_cast<vga_node_window*>(node_named("beta")->gui_data.node_window);
    const vga_node_window* alpha = open("alpha");
    ASSERT_TRUE(alpha != nullptr && beta != nullptr);
    EXPECT_NE(alpha->common.shell, beta->common.shell);
    EXPECT_NE(title(alpha->common).find("alpha"), std::string::npos);
    ASSERT_EQ(menu_entries(alpha->window_menu).size(), 1u);
    EXPECT_NE(menu_entries(alpha->window_menu)[0].find("beta"), std::string::npos);
    EXPECT_FALSE(CONSOLE::rows(node_named("beta")->links_root).empty());

    // So does Return.
    select("gamma");
    console.key(XK_Return);
    EXPECT_NE(node_named("gamma")->gui_data.node_window, nullptr);
    EXPECT_EQ(menu_entries(beta->window_menu).size(), 2u);
    // The window that the operator asks for has the keyboard.
    const auto has_keyboard = [&](const vga_dialog& dialog) {
        return console.wait([&] { return kit::focus_window() == XtWindow(dialog.shell); });
    };
    EXPECT_TRUE(has_keyboard(*node_named("gamma")->gui_data.node_window));
    console.key(XK_d, ControlMask);
    EXPECT_TRUE(has_keyboard(window->common));
    EXPECT_EQ(open("beta"), beta) << "the window that is there";
    EXPECT_TRUE(has_keyboard(beta->common));

    select("epsilon");
    console.key(XK_Return);
    EXPECT_NE(CONSOLE::message().find("epsilon"), std::string::npos) << CONSOLE::message();
    EXPECT_EQ(window->common.modal_dlg.kind, VGA_MODAL_INFO);
    acknowledge();
    EXPECT_EQ(node_named("epsilon")->gui_data.node_window, nullptr);
}

TEST_F(SystemWindow, BackupServersComeAndGo) {
    select("gamma");
    console.key(XK_b, ControlMask);
    EXPECT_TRUE(comes_true([] { return node_named("gamma")->server_role == VGA_ROLE_SERVER; }));
    EXPECT_NE(row_of("gamma").find(" Server"), std::string::npos);
    EXPECT_EQ(offered(), "s.ot.-");
    EXPECT_NE(service.control("journal").find("NAP_ADD_BACKUP"), std::string::npos);

    // No means no.
    console.key(XK_b, ControlMask | ShiftMask);
    EXPECT_NE(CONSOLE::message().find("gamma"), std::string::npos);
    ASSERT_TRUE(console.answer("Cancel"));
    EXPECT_EQ(service.control("journal").find("NAP_DELETE_BACKUP"), std::string::npos);

    service.control("fail NAP_DELETE_BACKUP 1 0x0200 0x5554");
    console.key(XK_b, ControlMask | ShiftMask);
    ASSERT_TRUE(console.answer("OK"));
    EXPECT_TRUE(comes_true([&] {
        return window->common.modal_dlg.kind == VGA_MODAL_ERROR && !CONSOLE::message().empty();
    }));
    acknowledge();
    EXPECT_EQ(node_named("gamma")->server_role, VGA_ROLE_SERVER);

    for (const char* name : {"gamma", "beta"}) {
        select(name);
        console.key(XK_b, ControlMask | ShiftMask);
        ASSERT_TRUE(console.answer("OK"));
        EXPECT_TRUE(comes_true([&] { return node_named(name)->server_role == VGA_ROLE_NONE; }));
    }
    select("alpha");
    console.key(XK_b, ControlMask | ShiftMask);
    EXPECT_EQ(window->common.modal_dlg.kind, VGA_MODAL_ERROR);
    EXPECT_STREQ(window->common.modal_dlg.help_tag, "cantdellastbackup");
    acknowledge();
    EXPECT_EQ(node_named("alpha")->server_role, VGA_ROLE_LOCAL_SERVER);
}

TEST_F(SystemWindow, NodesStartAndStopFromTheList) {
    select("gamma");
    console.key(XK_s, ControlMask);
    EXPECT_TRUE(
        comes_true([] { return node_named("gamma")->node_state == VGA_NODE_STATE_ACTIVE; }));
    EXPECT_EQ(offered(), ".pot+.");
    console.key(XK_t, ControlMask);
    EXPECT_NE(CONSOLE::message(), "") << "stopping is confirmed";
    ASSERT_TRUE(console.answer("OK"));
    EXPECT_TRUE(
        comes_true([] { return node_named("gamma")->node_state == VGA_NODE_STATE_STOPPED; }));
    EXPECT_EQ(offered(), "s.ot+.");

    gvga_read_only = 1;
    service.control("journal clear");
    console.key(XK_s, ControlMask);
    EXPECT_STREQ(window->common.modal_dlg.help_tag, "readonly");
    acknowledge();
    EXPECT_EQ(service.control("journal").find("NAP_INIT_NODE"), std::string::npos);
}

TEST_F(SystemWindow, ANodeDiesAndComesBackUnderItsWindow) {
    ASSERT_NE(open("beta"), nullptr);
    const vga_node_window* alpha = open("alpha");
    ASSERT_NE(alpha, nullptr);
    const NB_HANDLE handle = node_named("beta")->handle;
    select("beta");
    service.control("kill-node beta");
    ASSERT_TRUE(comes_true([] { return node_named("beta") == nullptr; }));
    EXPECT_NE(acknowledge().find("beta"), std::string::npos);
    EXPECT_EQ(nba_validate_handle(handle), nullptr);
    EXPECT_EQ(selected(), "delta") << "the next row";
    EXPECT_EQ(offered(), "..o.+.");
    EXPECT_EQ(menu_entries(window->window_menu).size(), 4u);
    EXPECT_EQ(menu_entries(alpha->window_menu).size(), 0u);
    EXPECT_EQ(gvga_system->central_logger_handle, 0u);

    service.control("server beta up");
    ASSERT_TRUE(comes_true([] {
        const vga_node* beta = node_named("beta");
        return beta != nullptr && vga_check_node_startup(beta);
    }));
    EXPECT_NE(row_of("beta").find("Active"), std::string::npos) << row_of("beta");
    EXPECT_NE(row_of("beta").find(" Server"), std::string::npos) << row_of("beta");
    EXPECT_EQ(menu_entries(window->window_menu).size(), 5u);
    EXPECT_EQ(gvga_system->central_logger_handle, node_named("beta")->node_handle);
    const vga_node_window* again = open("beta");
    ASSERT_NE(again, nullptr);
    EXPECT_FALSE(CONSOLE::rows(node_named("beta")->links_root).empty());
    EXPECT_EQ(menu_entries(alpha->window_menu).size(), 1u);
}

TEST_F(SystemWindow, TheConfigurationMovesToAnotherServer) {
    ASSERT_NE(open("beta"), nullptr);
    select("gamma");
    const NB_HANDLE before = gvga_system->sna_net_handle;
    service.control("master beta");
    ASSERT_TRUE(comes_true([&] {
        return node_named("beta")->server_role == VGA_ROLE_LOCAL_SERVER &&
               gvga_system->config_file_handle != 0 && gvga_system->sna_net_handle != 0 &&
               gvga_system->sna_net_handle != before && gvga_system->build_flags == 0;
    }));
    EXPECT_EQ(node_named("alpha")->server_role, VGA_ROLE_SERVER);
    EXPECT_NE(title(window->common).find("beta"), std::string::npos) << title(window->common);
    EXPECT_NE(node_named("beta")->gui_data.node_window, nullptr);
    EXPECT_EQ(selected(), "gamma");
    EXPECT_EQ(offered(), "s.ot+.");
    EXPECT_EQ(CONSOLE::message(), "");
}

TEST_F(SystemWindow, TheNetworkFileGoesAndComesBack) {
    select("gamma");
    service.control("lose-file network");
    ASSERT_TRUE(comes_true([] { return gvga_system->sna_net_handle == 0; }));
    EXPECT_EQ(offered(), "s.ot..");
    EXPECT_EQ(CONSOLE::rows(list()).size(), 5u);
    EXPECT_EQ(node_named("beta")->server_role, VGA_ROLE_SERVER);
    service.control("server alpha up");
    ASSERT_TRUE(comes_true([] { return gvga_system->sna_net_handle != 0; }));
    EXPECT_EQ(offered(), "s.ot+.");
    EXPECT_EQ(selected(), "gamma");
}

TEST_F(SystemWindow, ClosingAsksWhetherToEnd) {
    console.key(XK_q, ControlMask);
    EXPECT_NE(CONSOLE::message(), "");
    ASSERT_TRUE(console.answer("Cancel"));
    EXPECT_EQ(gvga_exit_code, 0);
    console.key(XK_q, ControlMask);
    ASSERT_TRUE(console.answer("OK"));
    console.wait([] { return gvga_exit_code != 0; });
    EXPECT_EQ(console.end(), 0);
}

TEST(SystemWindowStart, WaitsWhileTheDomainIsRead) {
    kit::SERVICE service(kit::domain_options({{"alpha"}, {"beta"}}, {}, "alpha"));
    service.control("hold NAP_QUERY_NODE");
    CONSOLE console(service);
    ASSERT_TRUE(console.started());
    ASSERT_TRUE(console.wait([] { return gvga_system->node_tree.root != nullptr; }));
    const auto* window = reinterpret_cast<vga_system_window*>(gvga_first_dialog);
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(XtIsSensitive(window->common.widget));
    EXPECT_EQ(tool::Tool::text(window->message_bar), gvga_messages[876]);
    Boolean editable = True;
    XtVaGetValues(window->message_bar, XmNeditable, &editable, nullptr);
    EXPECT_FALSE(editable);
    service.control("release");
    EXPECT_TRUE(console.wait_built());
    EXPECT_TRUE(XtIsSensitive(window->common.widget));
    EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
}

TEST_F(SystemWindow, TheSideInformationOfTheDomainHasItsWindow) {
    service.control("define cpic DEST1 description=here");
    console.key(XK_k, ControlMask);
    const vga_dialog* opened = gvga_system->gui_data.cpic_window;
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->parent, gvga_main_dialog);
    EXPECT_EQ(opened->parent_item, gvga_system);
    ASSERT_TRUE(comes_true([] { return gvga_system->cpic_viewer_root.top_count == 1; }));
    console.click(console.widget("cpicwDoneButton"));
    EXPECT_EQ(gvga_system->gui_data.cpic_window, nullptr);
    EXPECT_TRUE(list().displayed);
}

} // namespace
