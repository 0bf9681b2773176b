#include "tool/fixture.h"

#include "dialogs/cpic.h"
#include "ui/framework/widget_tree.h"
#include "ui/windows/cpic_window.h"

#include <X11/extensions/XTest.h>

// The window of the CPI-C side information and its dialog against a node.
namespace {

using kit::CONSOLE;

vga_viewer_root& list() {
    return gvga_system->cpic_viewer_root;
}

class CpicWindow : public tool::Tool {
protected:
    void SetUp() override {
        Tool::SetUp();
        gvga_supported[VGA_SUPPORT_APPLY] = 1;
        console.key(XK_k, ControlMask);
        ASSERT_NE(window(), nullptr);
        service.control("journal clear");
    }

    static vga_cpic* record(const char* name) {
        return find<vga_cpic>(gvga_system->cpic_tree, name);
    }
    static vga_list_window* window() {
        return reinterpret_cast<vga_list_window*>(gvga_system->gui_data.cpic_window);
    }
    // The dialog that is open, or null.
    static vga_cpic_dialog* dialog() {
        vga_cpic_dialog* found = nullptr;
        vga_for_each_open_dialog([&](vga_dialog* each) {
            if (each->dialog_id == VGA_UID_CPIC_DIALOG) {
                found = reinterpret_cast<vga_cpic_dialog*>(each);
            }
        });
        return found;
    }
    static std::string names() {
        std::string all;
        for (const std::string& row : CONSOLE::rows(list())) {
            all += row.substr(0, row.find(' ')) + " ";
        }
        return all;
    }
    // Add, delete, modify, copy: those that are offered.
    static std::string offered() {
        std::string result;
        for (int i = 0; i < VGA_LIST_STATUS; ++i) {
            result += XtIsSensitive(window()->buttons[i].button) ? "admc"[i] : '.';
        }
        return result;
    }
    void press(VGA_LIST_BUTTON button) { console.click(window()->buttons[button].button); }
    void select(const std::string& name, unsigned modifiers = 0, int count = 1) {
        ASSERT_TRUE(console.click_row(list(), name, modifiers, count)) << name;
    }
    void modify(const std::string& name) {
        select(name, 0, 2);
        ASSERT_NE(dialog(), nullptr);
    }
    // A key for the box, dialog or window in front, once the window manager has given it the focus.
    void key(KeySym symbol, unsigned modifiers = 0) {
        vga_dialog* front = window() != nullptr ? &window()->common : gvga_main_dialog;
        front = dialog() != nullptr ? &dialog()->form.common : front;
        Widget shell = front->modal_dlg.open ? front->modal_dlg.shell : front->shell;
        EXPECT_TRUE(gets_keyboard(shell)) << XtName(shell);
        console.key(symbol, modifiers);
    }
    static Widget ok_button() {
        return XmMessageBoxGetChild(dialog()->form.common.widget, XmDIALOG_OK_BUTTON);
    }
    void press_ok() { console.click(ok_button()); }
    bool closes() {
        return comes_true([] { return dialog() == nullptr; });
    }
    // The defines and deletes that the node received, in order: "D" and "X".
    std::string changes() {
        std::string found;
        const std::string all = verbs();
        for (std::size_t at = all.find("_CPIC"); at != all.npos; at = all.find("_CPIC", at + 1)) {
            found += all.substr(at - 6, 6) == "DEFINE" ? 'D' : 'X';
        }
        return found;
    }
    void select_all() {
        select("CLAIMS");
        select("POSTPAY", ShiftMask);
        ASSERT_EQ(list().select_count, 3);
    }
};

// ---- the window ----

TEST_F(CpicWindow, ItsButtonsFollowTheSelection) {
    EXPECT_EQ(names(), "CLAIMS FXNOW POSTPAY ");
    EXPECT_EQ(offered(), "admc"); // the first row is selected
    select("POSTPAY", ShiftMask);
    EXPECT_EQ(offered(), "ad..");
    select("FXNOW");
    EXPECT_EQ(offered(), "admc");
    press(VGA_LIST_MODIFY);
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(text(dialog()->name), "FXNOW");
    console.key(XK_Escape);
    const vga_list_window* open = window();
    vga_display_cpic_window();
    EXPECT_EQ(window(), open);
    console.click(console.widget("cpicwDoneButton"));
    EXPECT_EQ(window(), nullptr);
    EXPECT_FALSE(list().displayed);
    vga_display_cpic_window();
    console.wait_idle();
    EXPECT_EQ(names(), "CLAIMS FXNOW POSTPAY ");
}

TEST_F(CpicWindow, DeleteAsksUntilYesToAll) {
    select_all();
    console.key(XK_Delete);
    expect_message(200, "CLAIMS", "confirmNoButton");
    expect_message(200, "FXNOW", "Cancel");
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(changes(), "");
    press(VGA_LIST_DELETE); // again, from the first
    expect_message(200, "CLAIMS");
    expect_message(200, "FXNOW", "confirmOKToAllButton");
    EXPECT_TRUE(comes_true([] { return list().top_count == 0; }));
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_EQ(changes(), "XXX");
    EXPECT_EQ(offered(), "a...");
}

TEST_F(CpicWindow, ClosingForgetsADeleteThatIsOutstanding) {
    select_all();
    service.control("hold NAP_DELETE_CPIC_SIDE_INFO");
    console.key(XK_Delete);
    Widget yes_to_all = window()->common.modal_dlg.ok_to_all_button;
    ASSERT_TRUE(XmProcessTraversal(yes_to_all, XmTRAVERSE_CURRENT));
    console.strike(XK_space);
    ASSERT_TRUE(wait([&] { return changes() == "X"; }));
    vga_list_delete(window()->panes[0].list); // not twice
    vga_close_children(&window()->common, true, false);
    EXPECT_EQ(window(), nullptr);
    service.control("release");
    EXPECT_TRUE(comes_true([] { return record("CLAIMS") == nullptr; }));
    EXPECT_EQ(changes(), "X");
    EXPECT_EQ(list().top_count, 2u);
}

TEST_F(CpicWindow, ReadOnlyAndWithoutConfigurationFileNothingChanges) {
    select("CLAIMS");
    const NB_HANDLE file = gvga_system->config_file_handle;
    for (const bool read_only : {true, false}) {
        gvga_read_only = read_only;
        gvga_system->config_file_handle = read_only ? file : 0;
        for (const VGA_LIST_BUTTON button : {VGA_LIST_ADD, VGA_LIST_COPY, VGA_LIST_DELETE}) {
            press(button);
            expect_message(read_only ? 607 : 217);
            EXPECT_EQ(dialog(), nullptr);
        }
        press(VGA_LIST_MODIFY);
        ASSERT_NE(dialog(), nullptr);
        EXPECT_FALSE(XmTextGetEditable(dialog()->description));
        EXPECT_FALSE(XtIsSensitive(dialog()->sec_none));
        press_ok(); // Close
        EXPECT_EQ(dialog(), nullptr);
    }
    gvga_system->config_file_handle = file;
    EXPECT_EQ(changes(), "");
}

// ---- the dialog ----

struct WRONG {
    Widget vga_cpic_dialog::*set; // a toggle, or null
    Widget vga_cpic_dialog::*field;
    const char* text;
    int message;
    const char* right; // put there afterwards
};

TEST_F(CpicWindow, AWrongEntryIsToldAndGetsTheFocus) {
    press(VGA_LIST_ADD);
    ASSERT_NE(dialog(), nullptr);
    using D = vga_cpic_dialog;
    const WRONG entries[] = {
        {nullptr, &D::name, "", 191, "CLAIMS"},
        {nullptr, &D::name, "CLAIMS", 189, "NEWDEST"},
        {&D::cp_lu_button, &D::local_lu_alias, "", 192, "PAYROLL"},
        {&D::appl_tp, &D::appl_tp_name, "", 196, "PAYPOST"},
        {&D::serv_tp, &D::serv_tp_name, "", 196, "06F1"},
        {&D::serv_tp, &D::serv_tp_name, "06F", 196, "06F1"},
        {&D::plu_alias, &D::plu_alias_name, "", 196, "FXENGINE"},
        {&D::fqplu, &D::fqplu_net_name, "", 196, "BANKNET"},
        {&D::fqplu, &D::fqplu_net_name, "BANKNET", 196, "BANKNET"},
        {&D::sec_prog, &D::user_id, "", 198, "paysys"},
        {&D::sec_prog_strong, &D::password, "", 194, "Secret1"},
    };
    for (const WRONG& entry : entries) {
        SCOPED_TRACE(testing::Message() << entry.message << " '" << entry.text << "'");
        if (entry.set == &D::cp_lu_button) { // clears it
            EXPECT_TRUE(XmToggleButtonGetState(dialog()->cp_lu_button));
            EXPECT_FALSE(XtIsSensitive(dialog()->local_lu_alias));
        }
        if (entry.set != nullptr &&
            (entry.set == &D::cp_lu_button || !XmToggleButtonGetState(dialog()->*entry.set))) {
            console.click(dialog()->*entry.set);
        }
        if (entry.set == &D::sec_prog) {
            type(dialog()->fqplu_name, "HOSTA");
        }
        type(dialog()->*entry.field, entry.text);
        press_ok();
        expect_message(entry.message);
        ASSERT_NE(dialog(), nullptr);
        EXPECT_EQ(XmGetFocusWidget(dialog()->form.common.widget), dialog()->*entry.field);
        type(dialog()->*entry.field, entry.right);
    }
    EXPECT_EQ(changes(), "");
    press_ok();
    ASSERT_TRUE(closes());
    const vga_cpic* made = record("NEWDEST");
    ASSERT_NE(made, nullptr);
    const CPIC_SIDE_INFO_DEF& def = made->vcb.def;
    EXPECT_EQ(std::string(def.lu_alias, 8), "PAYROLL ");
    EXPECT_EQ(def.service_tp, 1);
    EXPECT_EQ(def.tp_name[0], 0x06);
    EXPECT_EQ(def.plu_by_name, 1);
    EXPECT_EQ(def.security, NOF_CPIC_SECURITY_PROGRAM_STRONG);
    EXPECT_EQ(std::string(def.user_id, 10), "paysys    ");
    EXPECT_EQ(std::string(def.password, 10), "Secret1   ");
    EXPECT_EQ(service.control("journal").find("Secret1"), std::string::npos);

    modify("NEWDEST"); // the password is kept, and not shown
    EXPECT_EQ(text(dialog()->password), gvga_messages[174]);
    EXPECT_EQ(text(dialog()->serv_tp_name), "06F1");
    EXPECT_EQ(text(dialog()->appl_tp_name), "");
    type(dialog()->description, "changed");
    press_ok();
    ASSERT_TRUE(closes());
    EXPECT_EQ(std::string(record("NEWDEST")->vcb.def.password, 10), "Secret1   ");
    EXPECT_EQ(changes(), "DD");
}

TEST_F(CpicWindow, AnUnchangedRecordIsNotSent) {
    for (const char* name : {"CLAIMS", "FXNOW", "POSTPAY"}) {
        modify(name);
        press_ok();
        EXPECT_TRUE(closes()) << CONSOLE::message();
    }
    EXPECT_EQ(changes(), "");
}

TEST_F(CpicWindow, ARenameDeletesFirstAndKeepsTheSelection) {
    modify("FXNOW");
    type(dialog()->name, "CLAIMS");
    press_ok();
    expect_message(189, "CLAIMS");
    type(dialog()->name, "QUOTES");
    console.click(dialog()->form.apply_button);
    EXPECT_EQ(changes(), "XD");
    EXPECT_EQ(names(), "CLAIMS POSTPAY QUOTES ");
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(dialog()->form.common.parent_item, record("QUOTES"));
    EXPECT_EQ(vga_viewer_get_selection(&list()), record("QUOTES"));
    EXPECT_EQ(offered(), "admc");
    press_ok(); // nothing has changed since
    EXPECT_TRUE(closes());
    EXPECT_EQ(changes(), "XD");
}

TEST_F(CpicWindow, ADefineThatFailsAfterItsDeleteCanBeSentAgain) {
    modify("FXNOW");
    type(dialog()->name, "QUOTES");
    service.control("fail NAP_DEFINE_CPIC_SIDE_INFO 0x0100 0x12345678");
    press_ok();
    expect_message(167, "12345678");
    EXPECT_EQ(names(), "CLAIMS POSTPAY ");
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(text(dialog()->name), "QUOTES");
    press_ok();
    EXPECT_TRUE(closes());
    EXPECT_EQ(names(), "CLAIMS POSTPAY QUOTES ");
    EXPECT_EQ(changes(), "XDD");
}

TEST_F(CpicWindow, CopyAndApplyAfterApplyAddSeveral) {
    select("CLAIMS");
    press(VGA_LIST_COPY);
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(text(dialog()->name), "");
    EXPECT_EQ(text(dialog()->description), "Claims to the insurer");
    for (const char* name : {"CLAIM2", "CLAIM3"}) {
        type(dialog()->name, name);
        console.click(dialog()->form.apply_button);
        ASSERT_NE(dialog(), nullptr) << CONSOLE::message();
        EXPECT_EQ(text(dialog()->name), "");
    }
    EXPECT_EQ(names(), "CLAIM2 CLAIM3 CLAIMS FXNOW POSTPAY ");
    EXPECT_EQ(std::memcmp(&record("CLAIM3")->vcb.def.lu_alias, "CLAIMS  ", 8), 0);
    EXPECT_EQ(changes(), "DD");
}

TEST_F(CpicWindow, AnotherOperatorMayChangeOrDeleteTheRecordMeanwhile) {
    modify("CLAIMS");
    service.control("define cpic CLAIMS description=theirs");
    ASSERT_TRUE(
        comes_true([] { return std::string(record("CLAIMS")->vcb.def.description) == "theirs"; }));
    EXPECT_EQ(dialog()->form.common.parent_item, record("CLAIMS"));
    press_ok(); // what the operator sees is what is defined
    ASSERT_TRUE(closes());
    EXPECT_STREQ(record("CLAIMS")->vcb.def.description, "Claims to the insurer");

    modify("CLAIMS");
    service.control("delete cpic CLAIMS");
    ASSERT_TRUE(comes_true([] { return record("CLAIMS") == nullptr; }));
    EXPECT_EQ(dialog()->form.common.parent_item, nullptr);
    press_ok();
    ASSERT_TRUE(closes());
    EXPECT_NE(record("CLAIMS"), nullptr);
    EXPECT_EQ(changes(), "DDXD"); // theirs and ours in turn
}

TEST_F(CpicWindow, TheKeyboardAloneIsEnough) {
    const auto background = [](Widget widget) {
        Pixel pixel;
        XtVaGetValues(widget, XmNbackground, &pixel, nullptr);
        return pixel;
    };
    EXPECT_NE(background(window()->panes[0].form), window()->background);
    key(XK_l, Mod1Mask);
    ASSERT_TRUE(wait([] { return window() == nullptr; }));
    key(XK_k, ControlMask);
    ASSERT_NE(window(), nullptr);
    key(XK_Insert);
    ASSERT_NE(dialog(), nullptr);
    Widget top = dialog()->form.common.widget;
    EXPECT_EQ(XmGetFocusWidget(top), dialog()->name);
    type(dialog()->name, "KEYS");
    key(XK_t, Mod1Mask);
    EXPECT_EQ(XmGetFocusWidget(top), dialog()->appl_tp_name);
    type(dialog()->appl_tp_name, "TPNAME");
    key(XK_f, Mod1Mask);
    EXPECT_TRUE(XmToggleButtonGetState(dialog()->fqplu));
    key(XK_q, Mod1Mask);
    type(dialog()->fqplu_net_name, "NET");
    key(XK_Tab);
    EXPECT_EQ(XmGetFocusWidget(top), dialog()->fqplu_name);
    type(dialog()->fqplu_name, "LU1");
    key(XK_Return);
    ASSERT_TRUE(closes()) << CONSOLE::message();
    EXPECT_EQ(names(), "CLAIMS FXNOW KEYS POSTPAY ");
    key(XK_Down);
    key(XK_Return);
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(text(dialog()->name), "FXNOW");
    key(XK_Escape);
    EXPECT_EQ(dialog(), nullptr);
    key(XK_m, Mod1Mask);
    ASSERT_NE(dialog(), nullptr);
    key(XK_Escape);
    EXPECT_EQ(dialog(), nullptr);
}

TEST_F(CpicWindow, LocalLusAreOfferedByAlias) {
    press(VGA_LIST_ADD);
    console.click(dialog()->cp_lu_button);
    console.key(XK_l, Mod1Mask);
    Widget board = console.widget("popupBoard");
    ASSERT_NE(board, nullptr);
    int count = 0;
    XtVaGetValues(board, XmNlistItemCount, &count, nullptr);
    EXPECT_GE(count, 6);
    Widget offered_list = XmSelectionBoxGetChild(board, XmDIALOG_LIST);
    XmListSelectPos(offered_list, 2, True);
    console.click(XmSelectionBoxGetChild(board, XmDIALOG_OK_BUTTON));
    console.wait_idle();
    EXPECT_NE(text(dialog()->local_lu_alias), "");
}

// Every one of them may be followed by any other, wherever the pointer is and whichever way the
// dialog that it opened was closed.
TEST_F(CpicWindow, MnemonicsStayAliveWhileDialogsComeAndGo) {
    struct STEP {
        KeySym mnemonic, end;
        bool is_box;
    };
    const STEP steps[] = {{XK_d, XK_Escape, true},
                          {XK_a, XK_Escape, false},
                          {XK_d, XK_Escape, true},
                          {XK_m, XK_Return, false},
                          {XK_c, XK_Escape, false}};
    for (const int x : {100, 1200}) {
        XTestFakeMotionEvent(gvga_display, -1, x, 200, CurrentTime);
        for (const STEP& step : steps) {
            SCOPED_TRACE(testing::Message() << XKeysymToString(step.mnemonic) << " at " << x);
            key(step.mnemonic, Mod1Mask);
            ASSERT_EQ(!CONSOLE::message().empty(), step.is_box);
            ASSERT_EQ(dialog() != nullptr, !step.is_box);
            if (step.mnemonic == XK_a) { // a box over the dialog, and its own mnemonics after that
                key(XK_Return);
                ASSERT_NE(CONSOLE::message(), "");
                key(XK_Escape);
                key(XK_t, Mod1Mask);
                EXPECT_EQ(XmGetFocusWidget(dialog()->form.common.widget), dialog()->appl_tp_name);
            }
            key(step.end);
            ASSERT_EQ(CONSOLE::message(), "");
            ASSERT_EQ(dialog(), nullptr);
        }
    }
    key(XK_l, Mod1Mask);
    EXPECT_EQ(window(), nullptr);
    key(XK_k, ControlMask); // the node window has its keys again
    EXPECT_NE(window(), nullptr);
}

TEST_F(CpicWindow, ThePaneShowsWhetherItHasTheKeyboard) {
    const auto has_it = [](bool expected) {
        return [expected] {
            Pixel background = 0;
            XtVaGetValues(window()->panes[0].form, XmNbackground, &background, nullptr);
            return (background != window()->background) == expected;
        };
    };
    EXPECT_TRUE(wait(has_it(true)));
    key(XK_Tab); // to the buttons
    EXPECT_TRUE(wait(has_it(false)));
    key(XK_Tab, ShiftMask);
    EXPECT_TRUE(wait(has_it(true)));
    key(XK_Insert);
    EXPECT_TRUE(wait(has_it(false))) << "a dialog has it";
    key(XK_Escape);
    EXPECT_TRUE(wait(has_it(true)));
    select("POSTPAY");
    EXPECT_TRUE(wait(has_it(true)));
    press(VGA_LIST_DELETE);
    EXPECT_TRUE(wait(has_it(false))) << "a message has it";
    key(XK_Escape);
    EXPECT_TRUE(wait(has_it(true)));
    EXPECT_EQ(XmGetFocusWidget(window()->common.widget), window()->panes[0].list);
}

// The toolkit underlines a mnemonic only in a text of its own character set.
TEST_F(CpicWindow, MnemonicsAreUnderlined) {
    press(VGA_LIST_ADD);
    int count = 0;
    for (Widget top : {window()->common.widget, dialog()->form.common.widget}) {
        vga_for_each_below(top, [&](Widget each) {
            KeySym mnemonic = NoSymbol;
            char* set = nullptr;
            XmString label = nullptr;
            if (!XmIsLabel(each)) {
                return;
            }
            XtVaGetValues(each, XmNmnemonic, &mnemonic, XmNmnemonicCharSet, &set, XmNlabelString,
                          &label, nullptr);
            char letter[2] = {static_cast<char>(mnemonic), '\0'};
            if (mnemonic != NoSymbol && mnemonic != XK_VoidSymbol) {
                XmString marked = XmStringCreate(letter, set);
                EXPECT_TRUE(XmStringHasSubstring(label, marked)) << XtName(each);
                XmStringFree(marked);
                ++count;
            }
            XmStringFree(label);
        });
    }
    EXPECT_GT(count, 20);
}

} // namespace
