// Mouse and keyboard: some through the X server, the cases through the handlers.
#include "viewer/fixture.h"

#include "shell/globals.h"

#include <X11/Xutil.h>
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
    void click_row(int index, unsigned state = 0, int click_count = 1) {
        arm(100, middle(index), state);
        release(100, middle(index), click_count);
    }
    int count(const std::string& what) {
        return static_cast<int>(std::ranges::count(calls, what, &Call::what));
    }
    using List = std::vector<int>;
};

// ---- through the X server ----

TEST_F(Input_test, real_clicks_select_toggle_and_open) {
    fill(4, TEST_TOP);
    fill(2, TEST_MIDDLE, rows[1].get());
    click(100, middle(2));
    ASSERT_TRUE(pump_until([&] { return count("act") == 1; }));
    EXPECT_EQ(List{2}, selected());
    EXPECT_FALSE(root.dragging);

    click(gvga_metrics.expand_icon_width / 2, middle(1)); // the box
    ASSERT_TRUE(pump_until([&] { return count("act") == 2; }));
    EXPECT_TRUE(rows[1]->item.expanded);
    EXPECT_TRUE(look() == look_afresh());
    calls.clear();
    click(100, middle(4));
    click(100, middle(4));
    ASSERT_TRUE(pump_until([&] { return count("act") == 2; }));
    EXPECT_EQ(1, calls[1].click_count); // another row than that of the click before
    EXPECT_EQ(rows[4].get(), calls.back().record);
    EXPECT_GT(calls.back().click_count, 1);
}

TEST_F(Input_test, real_drag_scrolls_while_the_pointer_is_outside) {
    fill(30, TEST_TOP);
    XtVaSetValues(shell, XmNx, 0, XmNy, 300, nullptr);
    pump();
    vga_viewer_scroll_view(&root, 10 * row);
    const int first = static_cast<int>(root.y_offset) / row;
    move_pointer(100, 3 * row + 2);
    press(1, true);
    ASSERT_TRUE(pump_until([&] { return root.dragging != 0; }));
    move_pointer(100, row + 2);
    ASSERT_TRUE(pump_until([&] { return selected() == List({first + 1, first + 2, first + 3}); }));
    move_pointer(100, -20);
    ASSERT_TRUE(pump_until([&] { return root.y_offset == 0 && selected().size() == 14; }));
    EXPECT_TRUE(look() == look_afresh());
    move_pointer(100, 3 * row + 2); // back inside the timer rests, and the selection shrinks
    ASSERT_TRUE(pump_until([&] { return selected().front() == 3 && root.drag_timer == 0; }));
    move_pointer(100, 6 * row + 40);
    ASSERT_TRUE(pump_until([&] { return selected().back() == 29 && selected().front() == 13; }));
    EXPECT_NE(0u, root.drag_timer);
    press(1, false);
    ASSERT_TRUE(pump_until([&] { return !root.dragging && root.drag_timer == 0; }));
    EXPECT_TRUE(look() == look_afresh());
}

TEST_F(Input_test, real_keys_reach_the_list) {
    fill(4, TEST_TOP);
    vga_viewer_key_move(&root, VGA_VIEWER_PREVIOUS, false, false);
    EXPECT_EQ(List{0}, selected());
    type_key(XK_Down);
    ASSERT_TRUE(pump_until([&] { return selected() == List{1}; }));
    type_key(XK_Down, XK_Shift_L);
    ASSERT_TRUE(pump_until([&] { return selected() == List({1, 2}); }));
    type_key(XK_space, XK_Control_L);
    ASSERT_TRUE(pump_until([&] { return selected() == List{1}; }));
    EXPECT_TRUE(calls.size() >= 4 && count("disarm") == 4 && count("arm") == 0);
}

// ---- mouse ----

TEST_F(Input_test, clicks_on_boxes_do_not_count_towards_a_double_click) {
    fill(2, TEST_TOP);
    fill(2, TEST_MIDDLE, rows[0].get());
    const int box = gvga_metrics.expand_icon_width - 1;
    const struct {
        int x, row, click_count;
        int reported;
        bool expanded; // of the first row, afterwards
    } clicks[] = {
        {box, 0, 1, 1, true},      {100, 0, 2, 2, true},  {box, 0, 2, 1, false},
        {box + 1, 0, 2, 2, false}, {100, 1, 2, 1, false}, {100, 1, 2, 2, false},
        {box, 1, 2, 2, false}, // no children: no box
    };
    for (const auto& step : clicks) {
        const int y = middle(step.row);
        arm(step.x, y);
        release(step.x, y, step.click_count);
        EXPECT_EQ((Call{"act", rows[step.row].get(), step.reported}), calls.back());
        EXPECT_EQ(step.expanded, rows[0]->item.expanded != 0);
    }
    release(100, row * 5); // below the last row: the next click is a first one
    click_row(1, 0, 2);
    EXPECT_EQ((Call{"act", rows[1].get(), 1}), calls.back());
}

TEST_F(Input_test, keys_that_press_the_button_widget_are_no_clicks) {
    fill(1, TEST_TOP);
    XEvent event = {};
    event.type = KeyPress;
    XmDrawnButtonCallbackStruct data = {};
    data.event = &event;
    vga_viewer_arm(button, &root, &data);
    event.type = KeyRelease;
    vga_viewer_activate(button, &root, &data);
    EXPECT_TRUE(calls.empty());
}

TEST_F(Input_test, a_types_own_drag_step_replaces_the_lists) {
    fill(2, TEST_TOP);
    fill(1, TEST_NO_DRAG);
    fill(1, TEST_TOP);
    arm(100, middle(0));
    drag(middle(3));
    EXPECT_EQ(2, count("drag")); // enter and leave
    EXPECT_EQ(List({0, 1, 3}), selected());
    vga_delete_viewer(&root, &rows[1]->item, true); // ends the drag
    drag(middle(0));
    EXPECT_EQ(List({0, 3}), selected());
    release(100, middle(0));
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

TEST_F(Input_test, keys_move_outline_and_selection) {
    // 0 title, 1 top, 2 top with 5 6 7 under it, 3 top, 4 top, 8.. tops
    fill(1, TEST_TITLE);
    fill(4, TEST_TOP);
    fill(3, TEST_MIDDLE, rows[2].get());
    fill(12, TEST_TOP);
    vga_expand_viewer(&root, &rows[2]->item);
    const struct {
        KeySym key;
        unsigned state;
        int outline;
        List selected;
    } steps[] = {
        {XK_Down, 0, 1, {1}}, // nothing is current: the first row that is no heading
        {XK_Up, 0, 1, {1}},
        {XK_Down, 0, 2, {2}},
        {XK_KP_Down, 0, 5, {5}}, // into the children
        {XK_Down, ControlMask, 6, {5}},
        {XK_space, ControlMask, 6, {5, 6}},
        {XK_Down, ShiftMask, 7, {6, 7}},
        {XK_Down, ShiftMask, 7, {6, 7}}, // the siblings end here
        {XK_Home, ShiftMask, 5, {5, 6}},
        {XK_End, ControlMask | ShiftMask, 7, {5, 6, 7}},
        {XK_backslash, ControlMask, 7, {7}},
        {XK_Down, 0, 3, {3}},
        {XK_slash, 0, 3, {3}},
        {XK_Prior, ShiftMask, 1, {1, 2, 3}}, // paged to a row that is a sibling or towards one
        {XK_Next, 0, 3, {3}},
        {XK_Next, ShiftMask, 11, {3, 4, 8, 9, 10, 11}},
        {XK_End, 0, 19, {19}},
        {XK_Next, 0, 19, {19}}, // page down on the last row stays
        {XK_Prior, 0, 14, {14}},
        {XK_Home, 0, 1, {1}},
        {XK_space, 0, 1, {1}},
        {XK_space, ControlMask, 1, {}},
        {XK_backslash, ControlMask, 1, {}},
    };
    EXPECT_EQ(5u * static_cast<unsigned>(row), root.page_span);
    int index = 0;
    for (const auto& step : steps) {
        key(step.key, step.state);
        EXPECT_TRUE(outlined(rows[step.outline].get())) << "step " << index;
        EXPECT_EQ(step.selected, selected()) << "step " << index;
        EXPECT_TRUE(look() == look_afresh()) << "step " << index;
        if (step.key != XK_backslash) {
            EXPECT_GE(row_y(rows[step.outline].get()), 0);
            EXPECT_LE(row_y(rows[step.outline].get()) + row, root.view_height);
        }
        ++index;
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

TEST_F(Input_test, single_selection_lists_ignore_modifiers) {
    fill(3, TEST_NODE);
    key(XK_Down);
    key(XK_Down, ShiftMask);
    key(XK_Down, ControlMask);
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
    arm(100, middle(1)); // keys wait while a drag is on
    key(XK_Up);
    EXPECT_EQ(List{1}, selected());
    release(100, middle(1));
}

TEST_F(Input_test, broken_calls_are_reported) {
    fill(2, TEST_TOP);
    const struct {
        std::function<void()> call;
        const char* expression;
    } calls_made[] = {
        {[&] { vga_viewer_key_move(&root, 7, false, false); }, "FALSE"},
        {[&] { vga_viewer_drag_cb(&rows[0]->item, &root, false, false); },
         "root->select_anchor != NULL"},
        {[&] {
             root.dragging = 1;
             vga_viewer_drag_to(&root, &rows[0]->item);
             root.dragging = 0;
         },
         "root->last_dragged != NULL"},
    };
    for (const auto& [call, expression] : calls_made) {
        const std::size_t before = nba_assert_count();
        call();
        EXPECT_LT(before, nba_assert_count());
        EXPECT_STREQ(expression, nba_last_assert());
    }
    asserts_before = nba_assert_count();
    // What is in no tree is left alone, without a report.
    Row loose;
    vga_create_viewer(nullptr, &loose.item, TEST_TOP, &loose, nullptr, nullptr);
    vga_delete_viewer(&root, &loose.item, true);
    vga_update_viewer(&root, &loose.item);
    vga_viewer_select(&loose.item, &root, false, false, false, false);
    vga_viewer_set_view(&loose.item, &root);
    EXPECT_EQ(nullptr, root.outline_viewer);
}

} // namespace
