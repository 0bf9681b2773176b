#include "start_stop_fixture.h"

#include "nof/lu62.h"
#include "store/remove.h"
#include "ui/windows/node_window.h"

#include <Xm/ToggleB.h>

// The start and stop buttons of the node window, and the two dialogs that ask how.
namespace start_stop {
namespace {

class Buttons : public StartStop {
protected:
    void SetUp() override {
        StartStop::SetUp();
        window = reinterpret_cast<vga_node_window*>(node->gui_data.node_window);
    }
    void select(vga_viewer_root vga_node::*pane, const char* row) {
        ASSERT_TRUE(console.click_row(node->*pane, row));
        ASSERT_TRUE(console.wait_idle());
    }
    // text: part of its row.
    void select_link(const char* name, const char* text) {
        vga_viewer_set_view(&ls(name)->viewer, &node->links_root);
        select(&vga_node::links_root, text);
    }
    void select_link(const char* name) { select_link(name, name); }
    void push(Widget tool) {
        ASSERT_TRUE(XtIsSensitive(tool));
        console.click(tool);
        ASSERT_TRUE(console.wait_idle());
    }
    void key(KeySym symbol) {
        console.key(symbol);
        ASSERT_TRUE(console.wait_idle());
    }
    std::string label(const char* name) {
        XmString label;
        XtVaGetValues(console.widget(name), XmNlabelString, &label, nullptr);
        auto* plain = static_cast<char*>(XmStringUnparse(label, nullptr, XmCHARSET_TEXT,
                                                         XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
        std::string text = plain;
        XtFree(plain);
        XmStringFree(label);
        return text;
    }
    bool is_set(const char* name) { return XmToggleButtonGetState(console.widget(name)); }
    static std::string formatted(int message, const char* name) {
        char text[VGA_MESSAGE_BUFFER_SIZE];
        vga_print_msg(text, gvga_messages[message], "s", name);
        return text;
    }
    static std::string without_lines(std::string text) {
        std::erase(text, '\n');
        return text;
    }
    // The activation byte of the last NAP_START_LS, or the disable byte of the last NAP_STOP_LS.
    char last_choice() {
        const std::string journal = service.control("journal");
        const std::string mark = "\"block\":\"";
        const std::size_t block = journal.rfind(mark);
        const std::size_t offset = journal.find("NAP_STOP_LS") != std::string::npos ? 21 : 20;
        return block != std::string::npos ? journal[block + mark.size() + 2 * offset + 1] : '?';
    }
    vga_node_window* window = nullptr;
};

TEST_F(Buttons, TheStartDialogAsksAndTheKeyboardAnswers) {
    const vga_ls* link = ls("ATMNORTH");
    service.control("hold NAP_START_DLC");
    for (const bool enable : {false, true}) {
        select_link("ATMNORTH");
        push(window->button_start_icon);
        const vga_dialog* dialog = node->gui_data.start_ls_dialog;
        ASSERT_NE(dialog, nullptr);
        char* title = nullptr;
        char* icon_name = nullptr;
        XtVaGetValues(dialog->shell, XmNtitle, &title, nullptr);
        ASSERT_NE(XGetIconName(gvga_display, XtWindow(dialog->shell), &icon_name), 0);
        EXPECT_EQ(title, text(1218));
        EXPECT_EQ(icon_name, text(1218));
        XFree(icon_name);
        EXPECT_EQ(label("strtlStartToggle"), formatted(1217, "ATMNORTH"));
        EXPECT_EQ(label("strtlEnableToggle"), formatted(1216, "ATMNORTH"));
        EXPECT_TRUE(is_set("strtlStartToggle")) << "again at every opening";
        EXPECT_FALSE(is_set("strtlEnableToggle"));

        key(XK_Escape);
        EXPECT_EQ(node->gui_data.start_ls_dialog, nullptr);
        EXPECT_TRUE(verbs().empty());

        push(window->button_start_icon);
        ASSERT_NE(node->gui_data.start_ls_dialog, nullptr);
        if (enable) {
            key(XK_Down);
            key(XK_space);
            EXPECT_TRUE(is_set("strtlEnableToggle"));
            EXPECT_FALSE(is_set("strtlStartToggle"));
        }
        console.key(XK_Return);
        ASSERT_TRUE(wait_verb("START_DLC"));
        EXPECT_EQ(node->gui_data.start_ls_dialog, nullptr);
        EXPECT_EQ(link->vcb->det.state, enable ? NOF_STATE_INACTIVE : NOF_STATE_START_PENDING);
        EXPECT_EQ(link->parent->vcb->state, NOF_STATE_START_PENDING);
        service.control("release");
        service.control("clear");
        ASSERT_TRUE(wait_verb("START_LS"));
        ASSERT_TRUE(console.wait_idle());
        EXPECT_EQ(link->vcb->det.state, enable ? NOF_STATE_INACTIVE : NOF_STATE_ACTIVE);
        if (enable) {
            EXPECT_NE(link->vcb->det.activation_flags & NOF_LS_INCOMING, 0);
            break;
        }
        service.control("stop ls ATMNORTH");
        service.control("stop port X25PORT");
        service.control("stop dlc X25");
        ASSERT_TRUE(console.wait_idle());
        ls("ATMNORTH")->vcb->det.activation_flags = 0;
        service.control("journal clear");
        service.control("hold NAP_START_DLC");
    }
}

TEST_F(Buttons, TheStopDialogStopsOrDisables) {
    const vga_ls* link = ls("HOSTB");
    for (const bool disable : {false, true}) {
        ASSERT_EQ(link->vcb->det.state, NOF_STATE_ACTIVE);
        select_link("HOSTB");
        push(window->button_stop_icon);
        ASSERT_NE(node->gui_data.stop_ls_dialog, nullptr);
        EXPECT_EQ(label("stoplStopToggle"), formatted(1214, "HOSTB"));
        EXPECT_EQ(label("stoplDisableToggle"), formatted(1213, "HOSTB"));
        EXPECT_TRUE(is_set("stoplStopToggle"));
        if (disable) {
            console.click(console.widget("stoplDisableToggle"));
            ASSERT_TRUE(console.wait_idle());
        }
        service.control("hold NAP_STOP_LS");
        console.key(XK_Return);
        ASSERT_TRUE(wait([&] { return node->gui_data.stop_ls_dialog == nullptr; }));
        service.control("clear");
        ASSERT_TRUE(wait([&] { return link->vcb->det.state == NOF_STATE_INACTIVE; }));
        ASSERT_TRUE(console.wait_idle());
        EXPECT_EQ(verbs(), Verbs{"STOP_LS"});
        if (!disable) {
            EXPECT_NE(link->vcb->det.activation_flags, 0);
            service.control("start ls HOSTB");
            ASSERT_TRUE(wait([&] { return link->vcb->det.state == NOF_STATE_ACTIVE; }));
            ASSERT_TRUE(console.wait_idle());
            service.control("journal clear");
        }
    }
    EXPECT_EQ(link->vcb->det.activation_flags, 0);
}

TEST_F(Buttons, ALinkStationThatHasGoneIsForgotten) {
    select_link("ATMNORTH");
    push(window->button_start_icon);
    ASSERT_NE(node->gui_data.start_ls_dialog, nullptr);
    vga_delete_vga_ls(ls("ATMNORTH"), true);
    key(XK_Return);
    EXPECT_EQ(node->gui_data.start_ls_dialog, nullptr);
    EXPECT_TRUE(verbs().empty());
}

TEST_F(Buttons, WhatIsClearIsNotAsked) {
    // On a LAN without an address: it can only be enabled, and once.
    vga_ls* training = ls("TRAINING");
    training->vcb->det.activation_flags = 0;
    select_link("TRAINING");
    push(window->button_start_icon);
    EXPECT_EQ(node->gui_data.start_ls_dialog, nullptr);
    EXPECT_EQ(verbs(), Verbs{"START_LS"});
    EXPECT_NE(training->vcb->det.activation_flags & NOF_LS_INCOMING, 0);
    push(window->button_start_icon);
    EXPECT_EQ(CONSOLE::message(), without_lines(formatted(900, "TRAINING")));
    ASSERT_TRUE(answer("OK"));
    ASSERT_TRUE(console.wait_idle());

    // A permanent circuit has nothing to be enabled for.
    vga_ls* atm = ls("ATMNORTH");
    NB_BYTE& circuit = nof_tail(atm->vcb)[NOF_LS_CIRCUIT_OFFSET];
    circuit = NOF_LS_PERMANENT_CIRCUIT;
    select_link("ATMNORTH");
    push(window->button_start_icon);
    ASSERT_TRUE(wait([&] { return atm->vcb->det.state == NOF_STATE_ACTIVE; }));
    ASSERT_TRUE(console.wait_idle());
    push(window->button_stop_icon);
    EXPECT_EQ(node->gui_data.stop_ls_dialog, nullptr);
    EXPECT_EQ(CONSOLE::message(), without_lines(formatted(903, "ATMNORTH")));
    ASSERT_TRUE(answer("Cancel"));
    ASSERT_TRUE(console.wait_idle());

    // One that came with a connection goes with it.
    service.control("journal clear");
    select_link("@I000001", "SALES07");
    push(window->button_stop_icon);
    EXPECT_EQ(CONSOLE::message(), without_lines(formatted(904, "@I000001")));
    ASSERT_TRUE(answer("OK"));
    ASSERT_TRUE(wait([&] { return ls("@I000001") == nullptr; }));
    EXPECT_EQ(verbs(), Verbs{"STOP_LS"});
}

TEST_F(Buttons, NothingIsStartedOrStoppedForAReader) {
    gvga_read_only = 1;
    for (const auto& [row, tool] : {std::pair{"HOSTB", window->button_stop_icon},
                                    std::pair{"ATMNORTH", window->button_start_icon}}) {
        select_link(row);
        push(tool);
        EXPECT_EQ(CONSOLE::message(), without_lines(formatted(607, "sna")));
        ASSERT_TRUE(answer("OK"));
        ASSERT_TRUE(console.wait_idle());
    }
    EXPECT_TRUE(verbs().empty());
    EXPECT_EQ(node->gui_data.start_ls_dialog, nullptr);
}

TEST_F(Buttons, SessionsEndWhenTheOperatorAgrees) {
    auto* lu = find<vga_lu62>(node->lu62_alias_tree, "CLAIMS");
    ASSERT_GT(lu->act_sess_count, 0);
    select(&vga_node::lus_root, "CLAIMS");
    push(window->button_stop_icon);
    EXPECT_NE(CONSOLE::message(), "");
    ASSERT_TRUE(answer("OK"));
    ASSERT_TRUE(wait([&] { return lu->act_sess_count == 0; }));
    ASSERT_TRUE(console.wait_idle());
    EXPECT_EQ(CONSOLE::message(), "");
}

} // namespace
} // namespace start_stop
