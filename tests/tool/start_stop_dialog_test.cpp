#include "tool/fixture.h"

#include "nof/lu62.h"
#include "store/remove.h"
#include "ui/windows/node_window.h"
#include "verbs/manage.h"

// The start and stop buttons of the node window, and the two dialogs that ask how.
namespace {

using kit::CONSOLE;

class Buttons : public tool::Tool {
protected:
    vga_node_window* window = nullptr;

    void SetUp() override {
        Tool::SetUp();
        window = reinterpret_cast<vga_node_window*>(node->gui_data.node_window);
    }
    void select(vga_viewer_root vga_node::*pane, const char* row) {
        ASSERT_TRUE(console.click_row(node->*pane, row));
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
    }
    std::string label_of(const char* name) { return label(console.widget(name)); }
    bool is_set(const char* name) { return XmToggleButtonGetState(console.widget(name)); }
    static std::string formatted(int message, const char* name) {
        char text[VGA_MESSAGE_BUFFER_SIZE];
        vga_print_msg(text, gvga_messages[message], "s", name);
        std::string one_line = text;
        std::erase(one_line, '\n');
        return one_line;
    }
};

TEST_F(Buttons, TheStartDialogAsksAndTheKeyboardAnswers) {
    const vga_ls* link = ls("ATMNORTH");
    for (const bool enable : {false, true}) {
        service.control("hold NAP_START_DLC");
        select_link("ATMNORTH");
        push(window->button_start_icon);
        const vga_dialog* dialog = node->gui_data.start_ls_dialog;
        ASSERT_NE(dialog, nullptr);
        char* title = nullptr;
        char* icon_name = nullptr;
        XtVaGetValues(dialog->shell, XmNtitle, &title, nullptr);
        ASSERT_NE(XGetIconName(gvga_display, XtWindow(dialog->shell), &icon_name), 0);
        EXPECT_STREQ(title, gvga_messages[1218]);
        EXPECT_STREQ(icon_name, gvga_messages[1218]);
        XFree(icon_name);
        EXPECT_EQ(label_of("strtlStartToggle"), formatted(1217, "ATMNORTH"));
        EXPECT_EQ(label_of("strtlEnableToggle"), formatted(1216, "ATMNORTH"));
        EXPECT_TRUE(is_set("strtlStartToggle")) << "again at every opening";
        EXPECT_FALSE(is_set("strtlEnableToggle"));

        console.key(XK_Escape);
        EXPECT_EQ(node->gui_data.start_ls_dialog, nullptr);
        EXPECT_EQ(verbs(), "");

        push(window->button_start_icon);
        ASSERT_NE(node->gui_data.start_ls_dialog, nullptr);
        if (enable) {
            console.key(XK_Down);
            console.key(XK_space);
            EXPECT_TRUE(is_set("strtlEnableToggle"));
            EXPECT_FALSE(is_set("strtlStartToggle"));
        }
        console.strike(XK_Return);
        ASSERT_TRUE(wait_verb("START_DLC"));
        EXPECT_EQ(node->gui_data.start_ls_dialog, nullptr);
        EXPECT_EQ(link->vcb->det.state, enable ? NOF_STATE_INACTIVE : NOF_STATE_START_PENDING);
        EXPECT_EQ(link->parent->vcb->state, NOF_STATE_START_PENDING);
        service.control("release");
        service.control("clear");
        ASSERT_TRUE(wait_verb("START_LS") && console.wait_idle());
        EXPECT_EQ(link->vcb->det.state, enable ? NOF_STATE_INACTIVE : NOF_STATE_ACTIVE);
        for (const char* command : {"stop ls ATMNORTH", "stop port X25PORT", "stop dlc X25"}) {
            if (!enable) {
                service.control(command);
            }
        }
        ASSERT_TRUE(comes_true([&] { return link->vcb->det.state == NOF_STATE_INACTIVE; }));
        service.control("journal clear");
        if (!enable) {
            ls("ATMNORTH")->vcb->det.activation_flags = 0;
        }
    }
    EXPECT_NE(link->vcb->det.activation_flags & NOF_LS_INCOMING, 0);
}

TEST_F(Buttons, TheStopDialogStopsOrDisables) {
    const vga_ls* link = ls("HOSTB");
    for (const bool disable : {false, true}) {
        ASSERT_EQ(link->vcb->det.state, NOF_STATE_ACTIVE);
        select_link("HOSTB");
        push(window->button_stop_icon);
        ASSERT_NE(node->gui_data.stop_ls_dialog, nullptr);
        EXPECT_EQ(label_of("stoplStopToggle"), formatted(1214, "HOSTB"));
        EXPECT_EQ(label_of("stoplDisableToggle"), formatted(1213, "HOSTB"));
        EXPECT_TRUE(is_set("stoplStopToggle"));
        if (disable) {
            console.click(console.widget("stoplDisableToggle"));
        }
        console.key(XK_Return);
        EXPECT_EQ(node->gui_data.stop_ls_dialog, nullptr);
        ASSERT_TRUE(comes_true([&] { return link->vcb->det.state == NOF_STATE_INACTIVE; }));
        EXPECT_EQ(verbs(), "STOP_LS ");
        if (!disable) {
            EXPECT_NE(link->vcb->det.activation_flags, 0);
            service.control("start ls HOSTB");
            ASSERT_TRUE(comes_true([&] { return link->vcb->det.state == NOF_STATE_ACTIVE; }));
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
    console.key(XK_Return);
    EXPECT_EQ(node->gui_data.start_ls_dialog, nullptr);
    EXPECT_EQ(verbs(), "");
}

TEST_F(Buttons, WhatIsClearIsNotAsked) {
    // On a LAN without an address: it can only be enabled, and once.
    vga_ls* training = ls("TRAINING");
    training->vcb->det.activation_flags = 0;
    select_link("TRAINING");
    push(window->button_start_icon);
    EXPECT_EQ(node->gui_data.start_ls_dialog, nullptr);
    EXPECT_EQ(verbs(), "START_LS ");
    EXPECT_NE(training->vcb->det.activation_flags & NOF_LS_INCOMING, 0);
    push(window->button_start_icon);
    expect_message(900, "TRAINING");

    // A permanent circuit has nothing to be enabled for.
    vga_ls* atm = ls("ATMNORTH");
    NB_BYTE& circuit = nof_tail(atm->vcb)[NOF_LS_CIRCUIT_OFFSET];
    circuit = NOF_LS_PERMANENT_CIRCUIT;
    select_link("ATMNORTH");
    push(window->button_start_icon);
    ASSERT_TRUE(comes_true([&] { return atm->vcb->det.state == NOF_STATE_ACTIVE; }));
    push(window->button_stop_icon);
    EXPECT_EQ(node->gui_data.stop_ls_dialog, nullptr);
    expect_message(903, "ATMNORTH", "Cancel");

    // One that came with a connection goes with it.
    service.control("journal clear");
    select_link("@I000001", "SALES07");
    push(window->button_stop_icon);
    expect_message(904, "@I000001");
    ASSERT_TRUE(wait([&] { return ls("@I000001") == nullptr; }));
    EXPECT_EQ(verbs(), "STOP_LS ");
}

TEST_F(Buttons, NothingIsStartedOrStoppedForAReader) {
    gvga_read_only = 1;
    for (const auto& [row, tool] : {std::pair{"HOSTB", window->button_stop_icon},
                                    std::pair{"ATMNORTH", window->button_start_icon}}) {
        select_link(row);
        push(tool);
        expect_message(607);
    }
    EXPECT_EQ(verbs(), "");
    EXPECT_EQ(node->gui_data.start_ls_dialog, nullptr);
}

TEST_F(Buttons, SessionsEndWhenTheOperatorAgrees) {
    auto* lu = find<vga_lu62>(node->lu62_alias_tree, "CLAIMS");
    ASSERT_GT(lu->act_sess_count, 0);
    select(&vga_node::lus_root, "CLAIMS");
    push(window->button_stop_icon);
    EXPECT_NE(CONSOLE::message(), "");
    ASSERT_TRUE(console.answer("OK"));
    ASSERT_TRUE(comes_true([&] { return lu->act_sess_count == 0; }));
    EXPECT_EQ(CONSOLE::message(), "");
}

} // namespace
