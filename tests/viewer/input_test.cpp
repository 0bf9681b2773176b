// Mouse and keyboard, with real events.
#include "viewer/fixture.h"

#include "shell/globals.h"

#include <algorithm>

namespace {

class Input_test : public Viewer_test {
protected:
    int row = 0;

    void SetUp() override {
        Viewer_test::SetUp();
        row = gvga_metrics.item_height;
        resize(300, 6 * row);
    }
    int middle(int index) { return row_y(rows[index].get()) + row / 2; }
    int count(const std::string& what) {
        return static_cast<int>(std::ranges::count(calls, what, &Call::what));
    }
    using List = std::vector<int>;
};

// ---- mouse ----

TEST_F(Input_test, real_drag_scrolls_while_the_pointer_is_outside) {
    fill(30, TEST_TOP);
    XtVaSetValues(shell, XmNy, 300, nullptr);
    ASSERT_TRUE(kit::pump_until([&] { // the window manager has moved it
        Position x = 0;
        Position y = 0;
        XtTranslateCoords(shell, 0, 0, &x, &y);
        return y >= 300;
    }));
    vga_viewer_scroll_view(&root, 10 * row);
    const int first = static_cast<int>(root.y_offset) / row;
    move_pointer(100, 3 * row + 2);
    kit::press_button(true);
    ASSERT_TRUE(kit::pump_until([&] { return root.dragging != 0; }));
    move_pointer(100, row + 2);
    ASSERT_TRUE(kit::pump_until([&] {
        return selected() == List({first + 1, first + 2, first + 3});
    }));
    move_pointer(100, -20);
    ASSERT_TRUE(kit::pump_until([&] { return root.y_offset == 0 && selected().size() == 14; }));
    EXPECT_TRUE(look() == look_afresh());
    move_pointer(100, 3 * row + 2); // back inside the timer rests, and the selection shrinks
    ASSERT_TRUE(kit::pump_until([&] { return selected().front() == 3 && root.drag_timer == 0; }));
    move_pointer(100, 6 * row + 40);
    ASSERT_TRUE(
        kit::pump_until([&] { return selected().back() == 29 && selected().front() == 13; }));
    EXPECT_NE(0u, root.drag_timer);
    kit::press_button(false);
    ASSERT_TRUE(kit::pump_until([&] { return !root.dragging && root.drag_timer == 0; }));
    EXPECT_TRUE(look() == look_afresh());
}

TEST_F(Input_test, clicks_on_boxes_do_not_count_towards_a_double_click) {
    XtSetMultiClickTime(gvga_display, 60000); // every click follows another quickly
    fill(2, TEST_TOP);
    fill(2, TEST_MIDDLE, rows[0].get());
    const int box = gvga_metrics.expand_icon_width - 1;
    const int below_all = 5;
    const struct {
        int x, row;
        bool repeated;
        bool expanded; // the first row, afterwards
    } clicks[] = {
        {box, 0, false, true},          {100, 0, true, true},   {box, 0, false, false},
        {box + 1, 0, true, false},      {100, 1, false, false}, {100, 1, true, false},
        {box, 1, true, false}, // no children: no box
        {100, below_all, false, false}, {100, 1, false, false},
    };
    for (const auto& step : clicks) {
        calls.clear();
        click(step.x, step.row * row + row / 2);
        EXPECT_EQ(step.expanded, rows[0]->item.expanded != 0);
        EXPECT_FALSE(root.dragging);
        EXPECT_TRUE(look() == look_afresh());
        if (step.row == below_all) {
            EXPECT_TRUE(calls.empty());
            continue;
        }
        ASSERT_EQ(1, count("act"));
        const Call& act = *std::ranges::find(calls, "act", &Call::what);
        EXPECT_EQ(rows[step.row].get(), act.record);
        EXPECT_EQ(step.repeated, act.click_count > 1);
        EXPECT_EQ(List{step.row}, selected());
    }
    XtSetMultiClickTime(gvga_display, 200);
}

// ---- deletion and contraction under the selection ----

TEST_F(Input_test, deletion_tells_the_window_about_a_selection_that_moved) {
    fill(3, TEST_TOP);
    vga_viewer_select(&rows[1]->item, &root, false, false, false, false);
    vga_delete_viewer(&root, &rows[0]->item, true); // was not selected
    EXPECT_EQ(0, count("select"));
    vga_delete_viewer(&root, &rows[1]->item, false); // somebody else redraws and tells
    EXPECT_EQ(0, count("select"));
    EXPECT_EQ(rows[2].get(), vga_viewer_get_selection(&root));
    vga_delete_viewer(&root, &rows[2]->item, true);
    EXPECT_EQ(1, count("select"));
    EXPECT_EQ(nullptr, vga_viewer_get_selection(&root));
}

TEST_F(Input_test, contraction_takes_the_selection_of_the_children_away) {
    fill(1, TEST_TOP);
    fill(3, TEST_MIDDLE, rows[0].get());
    fill(2, TEST_LEAF, rows[2].get());
    vga_expand_viewer(&root, &rows[0]->item);
    vga_expand_viewer(&root, &rows[2]->item);
    vga_viewer_select(&rows[4]->item, &root, false, false, false, false);
    vga_viewer_contract(&root, &rows[0]->item, true);
    EXPECT_TRUE(selected().empty());
    EXPECT_EQ(VGA_VIEWER_SELECT_NONE, root.select_type);
    EXPECT_EQ(1, count("select"));
    EXPECT_FALSE(rows[2]->item.expanded);
    EXPECT_EQ(nullptr, root.outline_viewer);
    owner.open = 0; // a window that is closing hears nothing
    vga_expand_viewer(&root, &rows[0]->item);
    vga_viewer_select(&rows[1]->item, &root, false, false, false, false);
    vga_viewer_contract(&root, &rows[0]->item, true);
    EXPECT_EQ(1, count("select"));
}

// ---- keyboard ----

// The other keys that move are among the random operations.
TEST_F(Input_test, keypad_and_slashes_move_outline_and_selection) {
    fill(1, TEST_TITLE);
    fill(3, TEST_TOP);
    const struct {
        KeySym key;
        unsigned state;
        int outline;
        List selected;
    } steps[] = {
        {XK_KP_Down, 0, 1, {1}}, // nothing is current: the first row that is no heading
        {XK_Down, ShiftMask, 2, {1, 2}},
        {XK_slash, 0, 2, {1, 2}},
        {XK_backslash, ControlMask, 2, {2}},
        {XK_space, ControlMask, 2, {}},
        {XK_backslash, ControlMask, 2, {}},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(&step - steps);
        calls.clear();
        key(step.key, step.state);
        EXPECT_TRUE(outlined(rows[step.outline].get()));
        EXPECT_EQ(step.selected, selected());
        EXPECT_TRUE(look() == look_afresh());
        EXPECT_EQ(0, count("arm")) << "no click";
        EXPECT_EQ(step.key == XK_slash ? 0 : 1, count("disarm")) << "the window hears of it";
    }
}

TEST_F(Input_test, all_siblings_are_selected_and_the_current_row_stays) {
    fill(3, TEST_TOP);
    fill(3, TEST_MIDDLE, rows[1].get());
    fill(1, TEST_ALONE);
    vga_expand_viewer(&root, &rows[1]->item);
    vga_viewer_select(&rows[4]->item, &root, false, false, false, false);
    key(XK_slash, ControlMask);
    EXPECT_EQ(List({3, 4, 5}), selected());
    EXPECT_TRUE(outlined(rows[4].get()));
    EXPECT_EQ(TEST_MIDDLE, root.select_type);
    vga_viewer_select(&rows[0]->item, &root, false, false, false, false);
    vga_clear_outline_selection(&root); // the current row is then the selected one
    key(XK_slash, ControlMask);
    EXPECT_EQ(List({0, 1, 2}), selected()); // without the row that stands alone
    EXPECT_TRUE(outlined(rows[0].get()));
    EXPECT_TRUE(look() == look_afresh());
    // From the row that stands alone modifiers lead nowhere.
    vga_viewer_select(&rows[6]->item, &root, false, false, false, false);
    key(XK_Up, ShiftMask);
    EXPECT_EQ(List{6}, selected());
    key(XK_Up);
    EXPECT_EQ(List{2}, selected());
}

TEST_F(Input_test, keys_expand_and_scroll) {
    fill(2, TEST_TOP);
    fill(1, TEST_MIDDLE, rows[0].get());
    rows[1]->text = "%t100%x";
    vga_update_viewer(&root, &rows[1]->item);
    vga_viewer_select(&rows[0]->item, &root, false, false, false, false);
    for (KeySym plus : {XK_plus, XK_equal, XK_KP_Add}) {
        key(plus);
        EXPECT_TRUE(rows[0]->item.expanded);
        key(plus == XK_plus ? XK_minus : XK_KP_Subtract);
        EXPECT_FALSE(rows[0]->item.expanded);
    }
    key(XK_Right);
    key(XK_Right);
    key(XK_Left);
    EXPECT_EQ(static_cast<NB_ULONG>(gvga_metrics.char_width), root.x_offset);
    key(XK_Home);
    EXPECT_EQ(0u, root.x_offset);
    press_at(100, middle(1)); // keys wait while a drag is on
    key(XK_Up);
    EXPECT_EQ(List{1}, selected());
    kit::press_button(false);
    pump();
}

TEST_F(Input_test, a_row_in_no_list_is_left_alone) {
    Row loose;
    vga_create_viewer(nullptr, &loose.item, TEST_TOP, &loose, nullptr, nullptr);
    vga_delete_viewer(&root, &loose.item, true);
    vga_update_viewer(&root, &loose.item);
    vga_viewer_select(&loose.item, &root, false, false, false, false);
    vga_viewer_set_view(&loose.item, &root);
    EXPECT_EQ(nullptr, root.outline_viewer);
}

} // namespace
