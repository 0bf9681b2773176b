#include "tool/fixture.h"

#include "dialogs/node_config.h"
#include "shell/exit_record.h"
#include "store/tracking.h"

// The node dialog against a node, by the keyboard.
namespace {

using kit::CONSOLE;

class NodeDialog : public tool::Tool {
protected:
    using Tool::Tool;

    void SetUp() override {
        Tool::SetUp();
        gvga_supported[VGA_SUPPORT_APPLY] = true;
    }

    vga_node_dialog* dialog() { return reinterpret_cast<vga_node_dialog*>(node->gui_data.dialog); }
    void open() {
        if (dialog() == nullptr) {
            vga_display_node_dialog(node, false);
            console.wait_idle();
        }
        ASSERT_NE(dialog(), nullptr);
    }
    Widget ok_button() {
        return XmMessageBoxGetChild(dialog()->form.common.widget, XmDIALOG_OK_BUTTON);
    }
    void press_ok() { console.click(ok_button()); }
    void press_apply() { console.click(dialog()->form.apply_button); }
    bool busy() { return !XtIsSensitive(ok_button()); }
    bool closes() {
        return comes_true([&] { return dialog() == nullptr; });
    }
    Widget focus() { return XmGetFocusWidget(dialog()->form.common.widget); }
    std::string cp_alias() { return {node->vcb.parameters.cp_alias, sizeof(NB_NAME8L)}; }
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
        EXPECT_EQ(focus(), dialog()->*entry.focus);
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
    ASSERT_TRUE(comes_true([&] { return node->node_state == VGA_NODE_STATE_ACTIVE; }));
    service.control("journal clear");
    press_ok();
    expect_message(802);
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 0);
}

// ---- definitions ----

TEST_F(NodeDialog, ApplyAfterApplyKeepsTheDialogAndSendsTheLatest) {
    stop_node();
    open();
    for (const char* description : {"first", "second"}) {
        type(dialog()->description, description);
        press_apply();
        ASSERT_TRUE(comes_true([&] { return !busy(); }));
        ASSERT_NE(dialog(), nullptr);
        EXPECT_STREQ(node->vcb.parameters.description, description);
    }
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 2);
}

TEST_F(NodeDialog, AFailedVerbLeavesTheDialogUsableUntilOkDefinesNodeAndDefaults) {
    stop_node();
    open();
    type(dialog()->description, "Main gateway");
    type(dialog()->id_number, "0ab12");
    for (const char* verb : {"NAP_DEFINE_NODE", "NAP_DEFINE_DEFAULTS"}) {
        SCOPED_TRACE(verb);
        service.control(std::string("fail ") + verb + " 0x0100 0x12345678");
        press_ok();
        expect_message(167, "12345678");
        ASSERT_NE(dialog(), nullptr);
        EXPECT_FALSE(busy());
        EXPECT_EQ(text(dialog()->description), "Main gateway");
    }
    service.control("journal clear");
    press_ok();
    EXPECT_TRUE(closes());
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(verbs(), "DEFINE_NODE DEFINE_DEFAULTS ");
    EXPECT_STREQ(node->vcb.parameters.description, "Main gateway");
    EXPECT_EQ(node->vcb.parameters.node_id.get(), 0x05d0ab12u);
}

TEST_F(NodeDialog, ADialogClosedWhileItsVerbIsOutstandingForgetsIt) {
    stop_node();
    open();
    type(dialog()->description, "late");
    service.control("hold NAP_DEFINE_NODE");
    console.strike(XK_Return);
    ASSERT_TRUE(wait([&] { return busy(); }));
    console.strike(XK_Return); // the default button is insensitive now
    console.strike(XK_Escape);
    ASSERT_TRUE(wait([&] { return dialog() == nullptr; }));
    vga_display_node_dialog(node, false); // with the same descriptor
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
    console.strike(XK_Return);
    ASSERT_TRUE(wait([&] { return busy(); }));
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
    const std::pair<KeySym, Widget> mnemonics[] = {{XK_a, dialog()->cp_alias},
                                                   {XK_d, dialog()->description},
                                                   {XK_i, dialog()->id_block},
                                                   {XK_n, dialog()->cp_net_name}};
    for (const auto& [key, field] : mnemonics) {
        console.key(key, Mod1Mask);
        EXPECT_EQ(focus(), field) << XtName(field);
    }
    console.key(XK_Tab);
    EXPECT_EQ(focus(), dialog()->cp_name);
    console.key(XK_v, Mod1Mask);
    EXPECT_NE(console.widget("nodeaTimeout"), nullptr);
    console.key(XK_Return);
    console.key(XK_d, Mod1Mask); // away from the button, which Return would press
    console.key(XK_Return);
    EXPECT_TRUE(closes());
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
    EXPECT_TRUE(closes());
    EXPECT_EQ(node->defaults.timeout, 65535);
    EXPECT_EQ(node->defaults.session_options, 1);
    EXPECT_EQ(node->vcb.parameters.cp_lu_attributes & 1, 1);
}

// ---- sessions that name the CP LU ----

TEST_F(NodeDialog, WithoutTheMasterItAsksFirst) {
    stop_node();
    open();
    type(dialog()->cp_alias, "NEWALIAS");
    gvga_system->config_file_handle = 0;
    press_ok();
    expect_message(804, "", "Cancel");
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 0);
    press_ok();
    expect_message(804);
    EXPECT_TRUE(closes()) << "nobody uses the LU";
    EXPECT_EQ(cp_alias(), "NEWALIAS");
}

// A user with a session on the control point's LU.
class NodeAliasInUse : public NodeDialog {
protected:
    void SetUp() override {
        NodeDialog::SetUp();
        stop_node();
        service.control("define user_session AS400 user=helpdesk type=5250 local_lu=BNKGW01");
        ASSERT_TRUE(comes_true([] { return session() != nullptr; }));
        service.control("journal clear");
    }
    static vga_user_sess* session() {
        const char user_name[32] = "helpdesk";
        auto* user = static_cast<vga_user*>(ntl_avl_find(&gvga_system->user_tree, user_name));
        return find<vga_user_sess>(user->session_tree, "AS400");
    }
    static std::string alias_of_session() {
        return {reinterpret_cast<const char*>(session()->vcb.lu_name), 8};
    }
};

TEST_F(NodeAliasInUse, TheOperatorDecidesWhetherItsUsersAreUpdated) {
    const struct {
        const char *button, *alias, *of_session;
        int updates;
    } cases[] = {{"OK", "NEWALIAS", "NEWALIAS", 1}, {"confirmNoButton", "LASTNAME", "NEWALIAS", 0}};
    for (const auto& each : cases) {
        open();
        type(dialog()->cp_alias, each.alias);
        press_ok();
        expect_message(808, "", "Cancel");
        EXPECT_EQ(count("NAP_DEFINE"), 0);
        press_ok();
        expect_message(808, "", each.button);
        EXPECT_TRUE(closes());
        EXPECT_EQ(CONSOLE::message(), "");
        EXPECT_EQ(count("NAP_DEFINE_EMULATOR_USER"), each.updates);
        EXPECT_EQ(cp_alias(), each.alias);
        EXPECT_EQ(alias_of_session(), each.of_session);
        service.control("journal clear");
    }
}

TEST_F(NodeAliasInUse, ARefusedUpdateIsToldOnceWhicheverVerbEndsTheRun) {
    const struct {
        const char *held, *alias;
        bool apply;
    } cases[] = {{"NAP_DEFINE_DEFAULTS", "LAST1", true},
                 {"NAP_DEFINE_EMULATOR_USER", "LAST2", true},
                 {"NAP_DEFINE_EMULATOR_USER", "LAST3", false}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.alias);
        open();
        type(dialog()->cp_alias, each.alias);
        service.control("fail NAP_DEFINE_EMULATOR_USER 1 2 0");
        service.control(std::string("hold ") + each.held);
        each.apply ? press_apply() : press_ok();
        ASSERT_TRUE(CONSOLE::message().starts_with(start_of(808))) << CONSOLE::message();
        console.strike(XK_Return);
        ASSERT_TRUE(wait([&] { return busy(); }));
        service.control("release");
        expect_message(276);
        EXPECT_EQ(CONSOLE::message(), "");
        EXPECT_EQ(dialog() != nullptr, each.apply) << "OK closes it when the message was read";
        if (each.apply) {
            EXPECT_FALSE(busy());
            EXPECT_EQ(focus(), dialog()->form.apply_button);
        }
        service.control(std::string("define user_session AS400 user=helpdesk type=5250 local_lu=") +
                        each.alias);
        console.wait_idle();
    }
}

// ---- a name that another node of the domain uses ----

class NodeInDomain : public NodeDialog {
protected:
    NodeInDomain() : NodeDialog({"--domain", TESSALY_SOURCE_DIR "/data/domains/enterprise.toml"}) {}
};

TEST_F(NodeInDomain, TheNameOfAnLuOfAnotherNodeMayBeTaken) {
    ASSERT_EQ(node->node_state, VGA_NODE_STATE_STOPPED);
    NB_NAME8E name;
    van_ascii_to_ebcdic(name, "ZRH10001", sizeof name);
    ASSERT_TRUE(wait([&] {
        void* found = nullptr;
        return vga_check_lu_name_clash(name, node, &found) == VGA_CLASH_OTHER_LU03;
    })) << "the other node is built";
    open();
    type(dialog()->cp_name, "ZRH10001");
    service.control("journal clear");
    press_ok();
    expect_message(799, "", "Cancel");
    ASSERT_EQ(count("NAP_DEFINE_NODE"), 0);
    press_ok();
    expect_message(799);
    EXPECT_TRUE(closes());
    EXPECT_EQ(count("NAP_DEFINE_NODE"), 1);
}

// ---- a node without configuration ----

class NewNode : public NodeDialog {
protected:
    NewNode() : NodeDialog({"--domain", TESSALY_SOURCE_DIR "/data/domains/empty.toml"}) {}
};

TEST_F(NewNode, IsProposedItsNameAndEndsWithWhatToDoNext) {
    console.answer("OK"); // what the start shows, if anything
    open();
    const std::pair<Widget, const char*> proposed[] = {{dialog()->cp_net_name, "APPN"},
                                                       {dialog()->cp_name, "NEWNODE"},
                                                       {dialog()->cp_alias, "newnode"},
                                                       {dialog()->id_block, "071"},
                                                       {dialog()->id_number, "00000"}};
    for (const auto& [field, value] : proposed) {
        EXPECT_EQ(text(field), value);
    }
    press_apply();
    expect_message(803);
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_STOPPED);
    EXPECT_NE(node->cp_lu, nullptr);
    EXPECT_EQ(node->defaults.timeout, 20);
    type(dialog()->description, "again");
    press_ok();
    EXPECT_TRUE(closes());
    EXPECT_EQ(CONSOLE::message(), "");
}

} // namespace
