#include "framework/fixture.h"

#include "common/alloc.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "store/record_util.h"
#include "ui/framework/texts.h"
#include "ui/framework/widget_tree.h"

#include <X11/keysym.h>

namespace {

class Dialog : public FrameworkTest {};
using Log = std::vector<std::string>;

std::string title_of(const vga_dialog* dialog) {
    char* title = nullptr;
    XtVaGetValues(dialog->shell, XmNtitle, &title, nullptr);
    return title;
}

TEST_F(Dialog, ChildrenCloseBeforeTheirParents) {
    vga_dialog* window = show(VGA_UID_TN_WINDOW, main_window);
    vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, window);
    vga_dialog* sub = show(VGA_UID_LU62_ADV_DIALOG, dialog);
    test_log.clear();
    EXPECT_TRUE(vga_close_children(window, true, false));
    EXPECT_EQ(test_log, (Log{"close lu62a forced", "close lu62d forced", "close tnw"}));
    EXPECT_FALSE(window->open || dialog->open || sub->open);
    EXPECT_FALSE(XtIsManaged(dialog->widget));
    EXPECT_TRUE(main_window->open);
}

TEST_F(Dialog, RefusedCloseKeepsTheParentOpen) {
    vga_dialog* window = show(VGA_UID_TN_WINDOW, main_window);
    vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, window);
    test_refuse_close = true;
    EXPECT_FALSE(vga_close_children(window, true, true));
    EXPECT_TRUE(window->open && dialog->open && XtIsManaged(dialog->widget));
    test_refuse_close = false;
    EXPECT_TRUE(vga_close_children(window, false, false)); // the children alone
    EXPECT_TRUE(window->open && !dialog->open);
}

TEST_F(Dialog, WhoseRecordGoesStaysWithoutItsChildren) {
    vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, main_window);
    vga_dialog* sub = show(VGA_UID_LU62_ADV_DIALOG, dialog);
    int record = 0;
    dialog->parent_item = &record;
    vga_dialog* of_record = dialog;
    vga_detach(&of_record, &record, "dialog->parent_item == &record");
    EXPECT_EQ(of_record, nullptr);
    EXPECT_EQ(dialog->parent_item, nullptr);
    EXPECT_TRUE(dialog->open && !sub->open);
}

TEST_F(Dialog, ClosedDescriptorIsUsedAgainByItsParent) {
    vga_dialog* window = show(VGA_UID_TN_WINDOW, main_window);
    vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, main_window);
    Widget widget = dialog->widget;
    vga_dialog* second = get(VGA_UID_LU62_DIALOG, main_window); // while the first is open
    EXPECT_NE(second, dialog);
    vga_release_dialog(second);
    vga_close_children(dialog, true, false);
    vga_dialog* elsewhere = get(VGA_UID_LU62_DIALOG, window);
    EXPECT_TRUE(elsewhere != dialog && elsewhere != second);
    EXPECT_EQ(elsewhere->shell, XtParent(elsewhere->widget));
    test_log.clear();
    vga_dialog* again = show(VGA_UID_LU62_DIALOG, main_window);
    EXPECT_TRUE(again == dialog || again == second);
    EXPECT_TRUE(test_log.empty()); // its widgets were not looked up again
    if (again == dialog) {
        EXPECT_EQ(again->widget, widget);
    }
    EXPECT_TRUE(XtIsManaged(again->widget) && XtIsRealized(again->widget));
    // A window belongs to nobody's shell: any parent may have it.
    vga_close_children(window, true, false);
    EXPECT_EQ(get(VGA_UID_TN_WINDOW, nullptr), window);
    vga_close_children(window, true, true);
}

TEST_F(Dialog, WhatCannotBeShownIsReported) {
    const std::size_t handles = nba_handle_count();
    const std::size_t allocations = vga_allocations_in_use();
    test_find_widgets = false;
    // No module yet; no widget tree in the file; a widget missing from the tree.
    for (const NB_USHORT id : {VGA_UID_ABOUT_BOX, VGA_UID_PU_DIALOG, VGA_UID_LU32_ADV_DIALOG}) {
        for (vga_dialog* parent : {main_window, static_cast<vga_dialog*>(nullptr)}) {
            EXPECT_EQ(get(id, parent), nullptr);
            settle();
            EXPECT_EQ(message_of(main_window), text_of(208)) << id;
            EXPECT_STREQ(main_window->modal_dlg.help_tag, "dlgfail");
            vga_close_modal_dialog(main_window);
        }
    }
    EXPECT_EQ(nba_handle_count(), handles);
    EXPECT_EQ(vga_allocations_in_use(), allocations);
    EXPECT_EQ(gvga_exit_code, 0);
}

TEST_F(Dialog, NoMemoryForADescriptorIsFatal) {
    vga_dialog* window = show(VGA_UID_TN_WINDOW, main_window);
    vga_fail_allocation(1);
    EXPECT_EQ(get(VGA_UID_LU62_ADV_DIALOG, window), nullptr);
    vga_fail_allocation(0);
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_INTERNAL);
}

TEST_F(Dialog, NameInTheTitleStandsThereOnce) {
    gvga_display_names = 1;
    vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, main_window);
    EXPECT_EQ(title_of(dialog), "lu62d: Local LU");
    vga_close_children(dialog, true, false);
    ASSERT_EQ(show(VGA_UID_LU62_DIALOG, main_window), dialog);
    EXPECT_EQ(title_of(dialog), "lu62d: Local LU");
    gvga_display_names = 0;
    XtVaSetValues(dialog->shell, XmNtitle, "Local LU", nullptr);
}

TEST_F(Dialog, ViewingAndEditing) {
    vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, main_window);
    Widget ok = vga_dialog_button(dialog->widget, VGA_BUTTON_OK);
    Widget cancel = vga_dialog_button(dialog->widget, VGA_BUTTON_CANCEL);
    Widget apply = vga_name_widget(dialog->widget, "ApplyButton", "lu62d");
    const XtCallbackProc applied = [](Widget, XtPointer data, XtPointer) {
        test_log.push_back("ok " + std::to_string(static_cast<vga_dialog*>(data)->dialog_id));
    };
    gvga_supported[VGA_SUPPORT_APPLY] = 1;
    vga_dialog_allow_edit(dialog, apply, applied);
    settle();
    EXPECT_TRUE(XtIsManaged(cancel) && XtIsManaged(apply));
    test_log.clear();
    click(ok);
    EXPECT_EQ(test_log, (Log{"ok 2"}));
    vga_dialog_sensitive(dialog, apply, false);
    EXPECT_FALSE(XtIsSensitive(ok) || XtIsSensitive(apply));
    EXPECT_TRUE(XtIsSensitive(cancel));
    vga_dialog_sensitive(dialog, apply, true);

    gvga_supported[VGA_SUPPORT_APPLY] = 0;
    vga_dialog_allow_edit(dialog, apply, applied);
    EXPECT_FALSE(XtIsManaged(apply));
    vga_dialog_disallow_edit(dialog, apply, applied);
    settle();
    EXPECT_EQ(label_of(ok), gvga_messages[VGA_TEXT_CLOSE]);
    EXPECT_FALSE(XtIsManaged(cancel));
    click(ok);
    EXPECT_FALSE(dialog->open);
    vga_dialog_allow_edit(dialog, apply, applied); // its widgets are used again
}

TEST_F(Dialog, TabVisitsFieldAndButtonsInOrder) {
    vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, main_window);
    Widget apply = vga_name_widget(dialog->widget, "ApplyButton", "lu62d");
    gvga_supported[VGA_SUPPORT_APPLY] = 1;
    vga_dialog_allow_edit(dialog, apply, nullptr);
    Widget field = vga_name_widget(dialog->widget, "lu62dName", nullptr);
    vga_define_tabbing_order(dialog->widget, apply);
    move_to(field);
    XmProcessTraversal(field, XmTRAVERSE_CURRENT);
    for (Widget next : {vga_dialog_button(dialog->widget, VGA_BUTTON_OK), apply,
                        vga_dialog_button(dialog->widget, VGA_BUTTON_CANCEL),
                        vga_dialog_button(dialog->widget, VGA_BUTTON_HELP), field}) {
        key(XK_Tab);
        EXPECT_EQ(XmGetFocusWidget(dialog->widget), next) << XtName(next);
    }
    gvga_supported[VGA_SUPPORT_APPLY] = 0;
}

} // namespace
