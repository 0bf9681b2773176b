#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "common/names.h"
#include "dialogs/node_config.h"
#include "shell/exit_record.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "store/store.h"
#include "store/tracking.h"

#include <X11/extensions/XTest.h>
#include <Xm/XmAll.h>

#include <algorithm>
#include <cstring>

// The node dialog against a node, by the keyboard.
namespace {

using kit::CONSOLE;
using kit::SERVICE;

vga_node* node() {
    return ntl_avl_first<vga_node>(gvga_system->node_tree);
}

const char* empty_domain() {
    return TESSALY_SOURCE_DIR "/data/domains/empty.toml";
}

class NodeDialog : public testing::Test {
protected:
    explicit NodeDialog(const std::vector<std::string>& service_options = {})
        : service(service_options) {}

    SERVICE service;
    CONSOLE console{service};

    void SetUp() override {
        ASSERT_TRUE(console.started() && console.wait_built());
        gvga_supported[VGA_SUPPORT_APPLY] = true;
    }
    void TearDown() override {
        EXPECT_EQ(gvga_exit_code, 0);
        EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
    }

    void stop_node() {
        service.control("stop node");
        ASSERT_TRUE(
            console.wait([] { return node()->node_state == VGA_NODE_STATE_STOPPED; }, 5000));
        console.wait_idle();
        service.control("journal clear");
    }
    static vga_node_dialog* dialog() {
        return reinterpret_cast<vga_node_dialog*>(node()->gui_data.dialog);
    }
    void open() {
        if (dialog() == nullptr) {
            vga_display_node_dialog(node(), false);
            console.wait_idle();
        }
        ASSERT_NE(dialog(), nullptr);
    }
    static std::string text(Widget widget) {
        char* value = XmTextGetString(widget);
        const std::string result = value;
        XtFree(value);
        return result;
    }
    // Replaces a field's text by typing.
    void type(Widget widget, const std::string& value) {
        ASSERT_TRUE(XmProcessTraversal(widget, XmTRAVERSE_CURRENT));
        console.key(XK_End); // from its end: a name never begins with a digit
        for (std::size_t left = text(widget).size(); left > 0; --left) {
            console.key(XK_BackSpace);
        }
        for (const char c : value) {
            console.key(static_cast<KeySym>(static_cast<unsigned char>(c)),
                        c >= 'A' && c <= 'Z' ? ShiftMask : 0);
        }
        EXPECT_EQ(strcasecmp(text(widget).c_str(), value.c_str()), 0) << text(widget); // some upper
    }
    void press_ok() {
        console.click(XmMessageBoxGetChild(dialog()->form.common.widget, XmDIALOG_OK_BUTTON));
    }
    void press_apply() { console.click(dialog()->form.apply_button); }
    bool busy() {
        return !XtIsSensitive(
            XmMessageBoxGetChild(dialog()->form.common.widget, XmDIALOG_OK_BUTTON));
    }
    // How often the node received a verb.
    long count(const std::string& verb) {
        const std::string journal = service.control("journal");
        long found = 0;
        for (std::size_t at = journal.find("\"" + verb + "\""); at != std::string::npos;
             at = journal.find("\"" + verb + "\"", at + 1)) {
            ++found;
        }
        return found;
    }
    // The message that shows is that of a number, up to its first argument; it is answered.
    void expect_message(int number, const char* button = "OK") {
        std::string expected = gvga_messages[number];
        std::erase(expected, '\n');
        expected.resize(std::min(expected.find('%'), expected.size()));
        EXPECT_EQ(CONSOLE::message().substr(0, expected.size()), expected) << number;
        EXPECT_TRUE(console.answer(button)) << number;
    }
    // A key while a verb is outstanding: the console is not idle then.
    void strike(KeySym symbol) {
        const KeyCode code = XKeysymToKeycode(gvga_display, symbol);
        XTestFakeKeyEvent(gvga_display, code, True, CurrentTime);
        XTestFakeKeyEvent(gvga_display, code, False, CurrentTime);
        XFlush(gvga_display);
    }
};

// ---- errors ----

struct WRONG_ENTRY {
    Widget vga_node_dialog::*field;
    const char* text;
    int message;
    Widget vga_node_dialog::*focus;
};

TEST_F(NodeDialog, AWrongEntryIsToldAndGetsTheFocus) {
    stop_node();
    constexpr auto name = &vga_node_dialog::cp_name;
    constexpr auto alias = &vga_node_dialog::cp_alias;
    constexpr auto block = &vga_node_dialog::id_block;
    constexpr auto number = &vga_node_dialog::id_number;
    const WRONG_ENTRY entries[] = {
        {&vga_node_dialog::cp_net_name, "", 806, &vga_node_dialog::cp_net_name},
        {name, "", 806, &vga_node_dialog::cp_net_name},
        {name, "CORE01", 791, name},   // a dependent LU
        {name, "COREPOOL", 794, name}, // a pool
        {name, "LIN03", 789, name},    // a downstream LU
        {name, "PAYROLL", 793, name},  // a local LU
        {name, "CARDSYS", 796, name},  // a partner LU
        {name, "PRINT01", 797, name},  // a remote system
        {alias, "", 805, alias},
        {alias, "CLAIMS", 790, alias},   // that of a local LU
        {alias, "FXENGINE", 795, alias}, // that of a partner LU
        {block, "05", 801, block},
        {number, "1", 801, number},
    };
    for (const WRONG_ENTRY& entry : entries) {
        SCOPED_TRACE(entry.message);
        open();
        const std::string before = text(dialog()->*entry.field);
        type(dialog()->*entry.field, entry.text);
        press_ok();
        expect_message(entry.message);
        ASSERT_NE(dialog(), nullptr);
        EXPECT_EQ(XmGetFocusWidget(dialog()->form.common.widget), dialog()->*entry.focus);
        type(dialog()->*entry.field, before);
    }
    type(dialog()->id_block, "");
    type(dialog()->id_number, "");
    press_ok();
    expect_message(807);
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 0);
}

TEST_F(NodeDialog, ARunningNodeIsForViewing) {
    open();
    expect_message(788);
    EXPECT_FALSE(XmTextGetEditable(dialog()->cp_alias));
    EXPECT_FALSE(XtIsSensitive(dialog()->node_type));
    vga_display_node_adv(dialog());
    console.wait_idle();
    EXPECT_FALSE(XtIsSensitive(console.widget("nodeaSessButton")));
    console.key(XK_Escape);
    press_ok(); // Close
    EXPECT_EQ(dialog(), nullptr);
}

TEST_F(NodeDialog, ANodeThatStartsMeanwhileIsNotChanged) {
    stop_node();
    open();
    service.control("start node");
    ASSERT_TRUE(console.wait([] { return node()->node_state == VGA_NODE_STATE_ACTIVE; }, 5000));
    console.wait_idle();
    service.control("journal clear");
    press_ok();
    expect_message(802);
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 0);
}

// ---- definitions ----

TEST_F(NodeDialog, OkDefinesNodeAndDefaultsAndCloses) {
    stop_node();
    open();
    type(dialog()->description, "Main gateway");
    type(dialog()->id_number, "0ab12");
    press_ok();
    EXPECT_TRUE(console.wait([] { return dialog() == nullptr; }, 5000));
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 1);
    EXPECT_EQ(count("NAP_DEFINE_DEFAULTS"), 1);
    EXPECT_STREQ(node()->vcb.parameters.description, "Main gateway");
    EXPECT_EQ(node()->vcb.parameters.node_id.get(), 0x05d0ab12u);
}

TEST_F(NodeDialog, ApplyAfterApplyKeepsTheDialogAndSendsTheLatest) {
    stop_node();
    open();
    for (const char* description : {"first", "second"}) {
        type(dialog()->description, description);
        press_apply();
        ASSERT_TRUE(console.wait([&] { return !busy(); }, 5000));
        ASSERT_NE(dialog(), nullptr);
        EXPECT_STREQ(node()->vcb.parameters.description, description);
    }
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 2);
}

TEST_F(NodeDialog, AFailedVerbLeavesTheDialogUsable) {
    stop_node();
    for (const char* verb : {"NAP_DEFINE_NODE", "NAP_DEFINE_DEFAULTS"}) {
        SCOPED_TRACE(verb);
        open();
        type(dialog()->description, "as typed");
        service.control(std::string("fail ") + verb + " 0x0100 0x12345678");
        press_ok();
        EXPECT_TRUE(console.wait([] { return !CONSOLE::message().empty(); }, 5000));
        EXPECT_NE(CONSOLE::message().find("12345678"), std::string::npos) << CONSOLE::message();
        console.answer("OK");
        ASSERT_NE(dialog(), nullptr);
        EXPECT_FALSE(busy());
        EXPECT_EQ(text(dialog()->description), "as typed");
    }
    press_ok();
    EXPECT_TRUE(console.wait([] { return dialog() == nullptr; }, 5000));
}

TEST_F(NodeDialog, ADialogClosedWhileItsVerbIsOutstandingForgetsIt) {
    stop_node();
    open();
    type(dialog()->description, "late");
    service.control("hold NAP_DEFINE_NODE");
    strike(XK_Return);
    ASSERT_TRUE(console.wait([&] { return busy(); }, 5000));
    strike(XK_Return); // the default button is insensitive now
    strike(XK_Escape);
    ASSERT_TRUE(console.wait([] { return dialog() == nullptr; }, 5000));
    vga_display_node_dialog(node(), false); // with the same descriptor
    ASSERT_NE(dialog(), nullptr);
    EXPECT_FALSE(busy());
    service.control("release");
    console.wait_idle();
    EXPECT_NE(dialog(), nullptr);
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 1);
    EXPECT_EQ(count("NAP_DEFINE_DEFAULTS"), 0);
}

TEST_F(NodeDialog, ItsNodeMayGoWhileAVerbIsOutstanding) {
    stop_node();
    open();
    service.control("hold NAP_DEFINE_NODE");
    strike(XK_Return);
    ASSERT_TRUE(console.wait([&] { return busy(); }, 5000));
    const NB_ULONG handle = dialog()->form.common.handle;
    vga_close_children(&dialog()->form.common, true, true); // as the store does first
    DEFINE_NODE late{};
    late.header.opcode = NAP_DEFINE_NODE;
    VGA_COMPLETION completion{0, &late, handle};
    vga_noded_def_node_cb(&completion); // one that was not purged
    EXPECT_EQ(dialog(), nullptr);
    service.control("release");
    console.wait_idle();
    EXPECT_EQ(count("NAP_DEFINE_DEFAULTS"), 0);
}

TEST_F(NodeDialog, TheKeyboardAloneIsEnough) {
    stop_node();
    console.key(XK_n, ControlMask);
    ASSERT_NE(dialog(), nullptr);
    Widget top = dialog()->form.common.widget;
    const std::pair<KeySym, Widget> mnemonics[] = {{XK_a, dialog()->cp_alias},
                                                   {XK_d, dialog()->description},
                                                   {XK_i, dialog()->id_block},
                                                   {XK_n, dialog()->cp_net_name}};
    for (const auto& [key, field] : mnemonics) {
        console.key(key, Mod1Mask);
        EXPECT_EQ(XmGetFocusWidget(top), field) << XtName(field);
    }
    console.key(XK_Tab);
    EXPECT_EQ(XmGetFocusWidget(top), dialog()->cp_name);
    console.key(XK_v, Mod1Mask);
    EXPECT_NE(console.widget("nodeaTimeout"), nullptr);
    console.key(XK_Return);
    console.key(XK_d, Mod1Mask); // away from the button, which Return would press
    console.key(XK_Return);
    EXPECT_TRUE(console.wait([] { return dialog() == nullptr; }, 5000));
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 1);
}

// ---- the advanced sub-dialog ----

TEST_F(NodeDialog, AdvancedParametersAreSentWithTheNode) {
    stop_node();
    open();
    console.click(dialog()->advanced_button);
    Widget timeout = console.widget("nodeaTimeout");
    ASSERT_NE(timeout, nullptr);
    EXPECT_FALSE(XtIsManaged(console.widget("nodeaNMAPIFrame")));
    constexpr std::pair<const char*, int> wrong[] = {{"", 786}, {"65536", 787}};
    for (const auto& [value, message] : wrong) {
        type(timeout, value);
        console.key(XK_Return);
        expect_message(message);
        EXPECT_TRUE(XtIsManaged(XtParent(timeout)));
    }
    type(timeout, "65535");
    XmToggleButtonSetState(console.widget("nodeaSessButton"), False, False);
    XmToggleButtonSetState(console.widget("nodeaCPLUAttributesButton"), True, False);
    console.key(XK_Return);
    EXPECT_EQ(count("NAP_DEFINE_DEFAULTS"), 0);
    press_ok();
    EXPECT_TRUE(console.wait([] { return dialog() == nullptr; }, 5000));
    EXPECT_EQ(node()->defaults.timeout, 65535);
    EXPECT_EQ(node()->defaults.session_options, 1);
    EXPECT_EQ(node()->vcb.parameters.cp_lu_attributes & 1, 1);
}

// ---- sessions that name the CP LU ----

// A user with a session on the control point's LU, as the domain's configuration would bring it.
class NodeAlias : public NodeDialog {
protected:
    void SetUp() override {
        NodeDialog::SetUp();
        stop_node();
        open();
        type(dialog()->cp_alias, "NEWALIAS");
    }
    // Whether the domain's configuration is there to be updated.
    static void set_master(bool available) { gvga_system->config_file_handle = available ? 1 : 0; }
};

TEST_F(NodeAlias, WithoutTheMasterItAsksFirst) {
    set_master(false);
    press_ok();
    expect_message(804, "Cancel");
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 0);
    press_ok();
    expect_message(804, "OK");
    EXPECT_TRUE(console.wait([] { return dialog() == nullptr; }, 5000)) << "nobody uses the LU";
    EXPECT_EQ(std::string(node()->vcb.parameters.cp_alias, 8), "NEWALIAS");
}

class NodeAliasInUse : public NodeAlias {
protected:
    void SetUp() override {
        NodeAlias::SetUp();
        service.control("define user_session AS400 user=helpdesk type=5250 local_lu=BNKGW01");
        ASSERT_TRUE(console.wait([] { return session() != nullptr; }, 5000));
        service.control("journal clear");
    }
    static vga_user_sess* session() {
        const char user_name[32] = "helpdesk";
        auto* user = static_cast<vga_user*>(ntl_avl_find(&gvga_system->user_tree, user_name));
        return static_cast<vga_user_sess*>(ntl_avl_find(&user->session_tree, "AS400   "));
    }
    static std::string alias_of_session() {
        return {reinterpret_cast<const char*>(session()->vcb.lu_name), 8};
    }
};

TEST_F(NodeAliasInUse, ItsUsersAreUpdatedOnYes) {
    press_ok();
    expect_message(808, "Cancel");
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 0);
    press_ok();
    expect_message(808, "OK");
    EXPECT_TRUE(console.wait([] { return dialog() == nullptr; }, 5000));
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(count("NAP_DEFINE_EMULATOR_USER"), 1);
    EXPECT_EQ(alias_of_session(), "NEWALIAS");
}

TEST_F(NodeAliasInUse, ItsUsersStayAsTheyAreOnNo) {
    press_ok();
    expect_message(808, "confirmNoButton");
    EXPECT_TRUE(console.wait([] { return dialog() == nullptr; }, 5000));
    EXPECT_EQ(std::string(node()->vcb.parameters.cp_alias, 8), "NEWALIAS");
    EXPECT_EQ(count("NAP_DEFINE_EMULATOR_USER"), 0);
    EXPECT_EQ(alias_of_session(), "BNKGW01 ");
}

TEST_F(NodeAliasInUse, ARefusedUpdateIsToldOnceWhicheverVerbEndsTheRun) {
    for (const char* held : {"NAP_DEFINE_DEFAULTS", "NAP_DEFINE_EMULATOR_USER"}) {
        SCOPED_TRACE(held);
        open();
        type(dialog()->cp_alias, std::string("LAST") + (held[11] == 'D' ? "1" : "2"));
        service.control("fail NAP_DEFINE_EMULATOR_USER 1 2 0");
        service.control(std::string("hold ") + held);
        press_apply();
        expect_message(808, "OK");
        ASSERT_TRUE(console.wait([&] { return busy(); }, 5000));
        service.control("release");
        ASSERT_TRUE(console.wait([] { return !CONSOLE::message().empty(); }, 5000));
        console.wait_idle();
        expect_message(276);
        console.wait_idle();
        EXPECT_EQ(CONSOLE::message(), "");
        EXPECT_FALSE(busy());
        EXPECT_EQ(XmGetFocusWidget(dialog()->form.common.widget), dialog()->form.apply_button);
        service.control("define user_session AS400 user=helpdesk type=5250 local_lu=" +
                        text(dialog()->cp_alias));
        console.wait_idle();
    }
}

// ---- a name that another node of the domain uses ----

class NodeInDomain : public NodeDialog {
protected:
    NodeInDomain() : NodeDialog({"--domain", TESSALY_SOURCE_DIR "/data/domains/enterprise.toml"}) {}
};

TEST_F(NodeInDomain, TheNameOfAnLuOfAnotherNodeMayBeTaken) {
    ASSERT_EQ(node()->node_state, VGA_NODE_STATE_STOPPED);
    NB_NAME8E name;
    van_ascii_to_ebcdic(name, "ZRH10001", sizeof name);
    ASSERT_TRUE(console.wait(
        [&] {
            void* found = nullptr;
            return vga_check_lu_name_clash(name, node(), &found) == VGA_CLASH_OTHER_LU03;
        },
        5000))
        << "the other node is built";
    open();
    type(dialog()->cp_name, "ZRH10001");
    service.control("journal clear");
    press_ok();
    expect_message(799, "Cancel");
    ASSERT_EQ(count("NAP_DEFINE_NODE"), 0);
    press_ok();
    expect_message(799, "OK");
    EXPECT_TRUE(console.wait([] { return dialog() == nullptr; }, 5000));
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 1);
}

// ---- a node without configuration ----

class NewNode : public NodeDialog {
protected:
    NewNode() : NodeDialog({"--domain", empty_domain()}) {}
};

TEST_F(NewNode, IsProposedItsNameAndEndsWithWhatToDoNext) {
    console.answer("OK"); // what the start shows, if anything
    open();
    EXPECT_EQ(text(dialog()->cp_net_name), "APPN");
    EXPECT_EQ(text(dialog()->cp_name), "NEWNODE");
    EXPECT_EQ(text(dialog()->cp_alias), "newnode");
    EXPECT_EQ(text(dialog()->id_block), "071");
    EXPECT_EQ(text(dialog()->id_number), "00000");
    press_apply();
    EXPECT_TRUE(console.wait([] { return !CONSOLE::message().empty(); }, 5000));
    expect_message(803);
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(node()->node_state, VGA_NODE_STATE_STOPPED);
    EXPECT_NE(node()->cp_lu, nullptr);
    EXPECT_EQ(node()->defaults.timeout, 20);
    type(dialog()->description, "again");
    press_ok();
    EXPECT_TRUE(console.wait([] { return dialog() == nullptr; }, 5000));
    EXPECT_EQ(CONSOLE::message(), "");
}

} // namespace
