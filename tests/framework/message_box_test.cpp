#include "framework/fixture.h"

#include "common/alloc.h"
#include "nof/opcodes.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "ui/framework/widget_tree.h"

#include <X11/keysym.h>

namespace {

std::vector<std::string> answers;

void record(vga_dialog*, NB_ULONG arg, NB_ULONG answer) {
    answers.push_back(std::to_string(arg) + ":" + std::to_string(answer));
}

class MessageBox : public FrameworkTest {
protected:
    void SetUp() override {
        FrameworkTest::SetUp();
        answers.clear();
    }
    // 167 shows its argument alone.
    void error(const char* text, NB_ULONG arg = 0) {
        vga_display_error_dialog(main_window, 167, "verbfailed", record, arg, "s", text);
        settle();
    }
    void confirm(const char* text, NB_ULONG arg = 0, VGA_MODAL_CALLBACK callback = record) {
        vga_display_confirm_dialog(main_window, 167, "confirm", callback, arg, true, true, "s",
                                   text);
        settle();
    }
    void key(KeySym symbol) {
        if (main_window->modal_dlg.open) {
            const Window box = XtWindow(main_window->modal_dlg.shell);
            EXPECT_TRUE(kit::pump_until([box] { return kit::focus_window() == box; }));
        }
        FrameworkTest::key(symbol);
    }
    Widget ok() { return XmMessageBoxGetChild(main_window->modal_dlg.dialog, XmDIALOG_OK_BUTTON); }
    std::string shown() { return message_of(main_window); }
};

TEST_F(MessageBox, MessagesShowInTheOrderTheyCame) {
    error("one", 1);
    error("two", 2);
    confirm("three", 3);
    EXPECT_EQ(shown(), "one");
    click(ok());
    EXPECT_EQ(shown(), "two");
    key(XK_Return);
    EXPECT_EQ(shown(), "three");
    EXPECT_EQ(answers, (std::vector<std::string>{"1:0", "2:0"}));
}

// The delete flow asks for its next record; an error in between waits.
TEST_F(MessageBox, ConfirmationReplacesConfirmationOnly) {
    confirm("first");
    error("waits");
    confirm("second");
    EXPECT_EQ(shown(), "second");
    vga_close_confirm_dialog(main_window);
    EXPECT_EQ(shown(), "waits");
    confirm("waits too");
    EXPECT_EQ(shown(), "waits");
}

TEST_F(MessageBox, EveryWayToAnswer) {
    confirm("question", 7);
    vga_modal_dlg& box = main_window->modal_dlg;
    click(ok());
    EXPECT_EQ(box.answer, VGA_ANSWER_YES);
    click(box.ok_to_all_button);
    EXPECT_EQ(box.answer, VGA_ANSWER_YES_TO_ALL);
    click(box.no_button);
    EXPECT_EQ(box.answer, VGA_ANSWER_NO);
    key(XK_Escape);
    XEvent close{};
    close.xclient.type = ClientMessage;
    close.xclient.window = XtWindow(box.shell);
    close.xclient.message_type = XInternAtom(gvga_display, "WM_PROTOCOLS", False);
    close.xclient.format = 32;
    close.xclient.data.l[0] = static_cast<long>(gvga_close_atom);
    XSendEvent(gvga_display, close.xclient.window, False, NoEventMask, &close);
    settle();
    EXPECT_EQ(answers, (std::vector<std::string>{"7:1", "7:2", "7:3", "7:4", "7:4"}));
    EXPECT_TRUE(box.open);
    vga_close_confirm_dialog(main_window);
    EXPECT_EQ(box.answer, VGA_ANSWER_NONE);
}

// A Yes to all kept after its box closed would delete the next selection unasked.
TEST_F(MessageBox, AnswerGoesWithTheBox) {
    confirm("question", 0,
            [](vga_dialog* dialog, NB_ULONG, NB_ULONG) { vga_close_confirm_dialog(dialog); });
    click(main_window->modal_dlg.ok_to_all_button);
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(main_window->modal_dlg.answer, VGA_ANSWER_NONE);
}

TEST_F(MessageBox, ButtonsAndTitleFollowTheKind) {
    vga_modal_dlg& box = main_window->modal_dlg;
    const auto title = [&] {
        char* text = nullptr;
        XtVaGetValues(box.shell, XmNtitle, &text, nullptr);
        return std::string(text);
    };
    confirm("question");
    EXPECT_EQ(title(), gvga_messages[213]);
    EXPECT_EQ(label_of(ok()), gvga_messages[216]);
    EXPECT_TRUE(XtIsManaged(box.cancel_button) && XtIsManaged(box.no_button) &&
                XtIsManaged(box.ok_to_all_button));
    vga_close_confirm_dialog(main_window);
    error("error");
    EXPECT_EQ(title(), gvga_messages[203]);
    EXPECT_EQ(label_of(ok()), gvga_messages[220]);
    EXPECT_FALSE(XtIsManaged(box.cancel_button) || XtIsManaged(box.no_button) ||
                 XtIsManaged(box.ok_to_all_button));
    key(XK_Escape); // with nothing to decide the same as OK
    EXPECT_EQ(shown(), "");
}

// Also in a box that has shown a shorter one.
TEST_F(MessageBox, MessageFitsIntoTheBox) {
    for (const std::size_t length : {20, 60, 5, 40}) {
        error(std::string(length, 'm').c_str());
        Widget text = XmMessageBoxGetChild(main_window->modal_dlg.dialog, XmDIALOG_MESSAGE_LABEL);
        Dimension width = 0;
        XtVaGetValues(text, XmNwidth, &width, nullptr);
        XtWidgetGeometry wanted;
        XtQueryGeometry(text, nullptr, &wanted);
        EXPECT_GE(width, wanted.width) << length;
        click(ok());
    }
}

TEST_F(MessageBox, TabGoesThroughTheButtons) {
    confirm("question");
    const vga_modal_dlg& box = main_window->modal_dlg;
    for (Widget next : {box.ok_to_all_button, box.no_button, box.cancel_button,
                        XmMessageBoxGetChild(box.dialog, XmDIALOG_HELP_BUTTON), ok()}) {
        key(XK_Tab);
        EXPECT_EQ(XmGetFocusWidget(box.dialog), next) << XtName(next);
    }
}

// The operator holds a button or a scroll bar, or looks into a menu.
TEST_F(MessageBox, WaitsForTheEndOfAMouseInteraction) {
    for (const char* name : {"syswPush", "syswScroll", "syswText"}) {
        press(vga_name_widget(main_window->widget, name, nullptr));
        error(name);
        EXPECT_EQ(shown(), "") << name;
        release();
        EXPECT_EQ(shown(), name);
        click(ok());
    }
    Widget cascade = vga_name_widget(main_window->widget, "syswMenuWindows", nullptr);
    click(cascade);
    EXPECT_EQ(gvga_modal_firewall_count, 1);
    error("menu");
    EXPECT_EQ(shown(), "");
    key(XK_Escape);
    EXPECT_EQ(shown(), "menu");
}

TEST_F(MessageBox, InsensitiveButtonIsLetGo) {
    Widget button = vga_name_widget(main_window->widget, "syswPush", nullptr);
    press(button);
    ASSERT_EQ(gvga_modal_firewall_widget, button);
    error("lost");
    vga_set_sensitive(button, false);
    settle();
    EXPECT_EQ(shown(), "lost");
    release();
    vga_set_sensitive(button, true);
}

TEST_F(MessageBox, ClosingADialogDropsItsMessages) {
    vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, main_window);
    vga_display_error_dialog(dialog, 167, "a", record, 1, "s", "shown");
    vga_display_error_dialog(dialog, 167, "a", record, 2, "s", "waiting");
    vga_close_children(dialog, true, false);
    vga_display_error_dialog(dialog, 167, "a", record, 3, "s", "too late");
    settle();
    EXPECT_FALSE(dialog->modal_dlg.open);
    ASSERT_EQ(show(VGA_UID_LU62_DIALOG, main_window), dialog);
    EXPECT_EQ(message_of(dialog), "");
    EXPECT_TRUE(answers.empty());
}

TEST_F(MessageBox, CallbackMayCloseTheDialogOrShowAnotherMessage) {
    vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, main_window);
    const auto close_parent = [](vga_dialog* self, NB_ULONG, NB_ULONG) {
        vga_close_children(self, true, true);
        vga_display_info_dialog(gvga_main_dialog, 167, "b", nullptr, 0, "s", "closed");
    };
    vga_display_error_dialog(dialog, 167, "a", close_parent, 0, "s", "x");
    settle();
    click(XmMessageBoxGetChild(dialog->modal_dlg.dialog, XmDIALOG_OK_BUTTON));
    EXPECT_FALSE(dialog->open || dialog->modal_dlg.open);
    EXPECT_EQ(shown(), "closed");
}

TEST_F(MessageBox, NoMemoryForTheQueueIsFatal) {
    gvga_modal_firewall_count = 1;
    vga_fail_allocation(1);
    error("lost");
    vga_fail_allocation(0);
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_INTERNAL);
}

struct FAILURE {
    NB_USHORT opcode, primary;
    NB_ULONG secondary;
    bool read_only;
    int message; // 228: the codes
    const char* tag;
};

TEST_F(MessageBox, VerbErrorTexts) {
    const FAILURE failures[] = {
        {NAP_START_LS, 0x0200, 0x554C, false, 211, "verbfailed"},
        {NAP_START_LS, 0x03F0, 0x5542, false, 224, "verbfailed"},
        {NAP_START_LS, 0x0100, 0x5514, true, 607, "readonly"},
        {NAP_START_LS, 0x0100, 0x5514, false, 228, "verbfailed"},
        {NAP_START_LS, 0x0100, 0x62100000, false, 694, "nohprconn"},
        {NAP_DELETE_BACKUP, 0x0200, 0x5554, false, 207, "verbfailed"},
        {NAP_ADD_BACKUP, 0x0200, 0x5554, false, 228, "verbfailed"},
    };
    for (const FAILURE& failure : failures) {
        char expected[2048];
        if (failure.message == 228) {
            vga_print_msg(expected, gvga_messages[228], "x x lx", failure.opcode, failure.primary,
                          failure.secondary);
        } else {
            vga_print_msg(expected, gvga_messages[failure.message], "s", "sna");
        }
        gvga_read_only = failure.read_only;
        const char* tag = nullptr;
        char* text =
            vga_get_verb_error_message(failure.opcode, failure.primary, failure.secondary, &tag);
        EXPECT_STREQ(text, expected);
        EXPECT_STREQ(tag, failure.tag);
        vga_free(text);
    }
    gvga_read_only = 0;
}

} // namespace
