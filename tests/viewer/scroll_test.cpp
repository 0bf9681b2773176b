// The extra row, the scroll bars and everything that moves the view.
#include "viewer/fixture.h"

#include "shell/globals.h"

#include <X11/Xutil.h>
#include <Xm/ScrollBar.h>

namespace {

class Scroll_test : public Viewer_test {
protected:
    NB_ULONG row = static_cast<NB_ULONG>(gvga_metrics.item_height);

    void SetUp() override {
        Viewer_test::SetUp();
        row = static_cast<NB_ULONG>(gvga_metrics.item_height);
    }
    int bar_value(Widget bar, const char* resource) {
        int value = 0;
        XtVaGetValues(bar, resource, &value, nullptr);
        return value;
    }
    void bar_moved(XtCallbackProc callback, Widget bar, int value) {
        XmScrollBarCallbackStruct data = {};
        data.value = value;
        callback(bar, &root, &data);
    }
};

TEST_F(Scroll_test, a_blank_row_comes_and_goes_with_the_bar) {
    resize(300, static_cast<int>(10 * row));
    fill(10, TEST_TOP);
    EXPECT_EQ(10 * row, root.total_height);
    EXPECT_FALSE(XtIsManaged(v_bar));
    EXPECT_EQ(10 * row, root.page_span);

    fill(1, TEST_TOP);
    EXPECT_EQ(12 * row, root.total_height);
    EXPECT_TRUE(XtIsManaged(v_bar));
    EXPECT_EQ(12 * row, static_cast<NB_ULONG>(bar_value(v_bar, XmNmaximum)));
    EXPECT_EQ(10 * row, static_cast<NB_ULONG>(bar_value(v_bar, XmNsliderSize)));
    EXPECT_EQ(9 * row, static_cast<NB_ULONG>(bar_value(v_bar, XmNpageIncrement)));
    EXPECT_EQ(row, static_cast<NB_ULONG>(bar_value(v_bar, XmNincrement)));
    EXPECT_EQ(9 * row, root.page_span);

    vga_delete_viewer(&root, &rows[10]->item, true);
    EXPECT_EQ(10 * row, root.total_height);
    EXPECT_FALSE(XtIsManaged(v_bar));
    EXPECT_EQ(0u, root.y_offset);
}

TEST_F(Scroll_test, view_reaches_both_ends) {
    resize(300, static_cast<int>(4 * row + 5));
    fill(20, TEST_TOP);
    vga_viewer_scroll_view(&root, 1000000);
    const NB_ULONG end = (21 * row - root.view_height) / row * row;
    EXPECT_EQ(end, root.y_offset);
    EXPECT_EQ(end, static_cast<NB_ULONG>(bar_value(v_bar, XmNvalue)));
    // The last row is whole and the blank one below it shows in part.
    EXPECT_LE(row_y(rows[19].get()) + static_cast<int>(row), root.view_height);
    vga_viewer_scroll_view(&root, -1000000);
    EXPECT_EQ(0u, root.y_offset);
}

TEST_F(Scroll_test, slider_is_followed_in_whole_rows_but_always_to_the_ends) {
    resize(300, static_cast<int>(4 * row));
    fill(20, TEST_TOP);
    const int middle = static_cast<int>(5 * row);
    bar_moved(vga_viewer_scroll, v_bar, middle + 3);
    EXPECT_EQ(5 * row, root.y_offset);
    bar_moved(vga_viewer_scroll_drag, v_bar, middle + static_cast<int>(row) - 1);
    EXPECT_EQ(5 * row, root.y_offset);
    bar_moved(vga_viewer_scroll_drag, v_bar, middle - static_cast<int>(row) + 1);
    EXPECT_EQ(5 * row, root.y_offset);
    bar_moved(vga_viewer_scroll_drag, v_bar, middle + static_cast<int>(row));
    EXPECT_EQ(6 * row, root.y_offset);
    bar_moved(vga_viewer_scroll, v_bar, static_cast<int>(row));
    bar_moved(vga_viewer_scroll_drag, v_bar, 1); // a whole row is not needed for the first row
    EXPECT_EQ(row, root.y_offset);
    bar_moved(vga_viewer_scroll_drag, v_bar, 0);
    EXPECT_EQ(0u, root.y_offset);
    bar_moved(vga_viewer_scroll_drag, v_bar, 1); // near the end every movement counts
    EXPECT_EQ(0u, root.y_offset);
    bar_moved(vga_viewer_scroll_drag, v_bar, static_cast<int>(17 * row));
    EXPECT_EQ(17 * row, root.y_offset);

    rows[0]->text = "%t100%x";
    vga_viewer_set_view(&rows[0]->item, &root);
    const int char_width = gvga_metrics.char_width;
    bar_moved(vga_viewer_scroll, h_bar, 20 * char_width);
    bar_moved(vga_viewer_scroll_drag, h_bar, 21 * char_width - 1);
    EXPECT_EQ(static_cast<NB_ULONG>(20 * char_width), root.x_offset);
    bar_moved(vga_viewer_scroll_drag, h_bar, 21 * char_width + 1);
    EXPECT_EQ(static_cast<NB_ULONG>(21 * char_width + 1), root.x_offset);
    EXPECT_TRUE(look() == look_afresh());
}

// Far down, positions are beyond what a request's coordinates hold.
TEST_F(Scroll_test, rows_beyond_coordinates_are_drawn_and_hit) {
    fill(3000, TEST_TOP);
    vga_viewer_set_view(&rows[2990]->item, &root);
    EXPECT_EQ(&rows[2990]->item, vga_find_viewer(&root, vga_viewer_position(&rows[2990]->item)));
    EXPECT_GT(vga_viewer_position(&rows[2990]->item), 32767u);
    vga_viewer_scroll_view(&root, -1000000);
    const Pixels top = look();
    vga_viewer_set_view(&rows[2990]->item, &root);
    vga_expand_viewer(&root, &rows[2985]->item);
    EXPECT_TRUE(look() == look_afresh());
    EXPECT_FALSE(look() == top);
}

// A redraw sends requests and never waits for the server.
TEST_F(Scroll_test, redraw_waits_for_no_answer) {
    fill(30, TEST_TOP);
    rows[1]->text = "m\374hle%t9%x"; // not ASCII
    look_afresh();
    const unsigned long answered = LastKnownRequestProcessed(gvga_display);
    for (int ii = 0; ii < 5; ++ii) {
        vga_viewer_scroll_view(&root, 10 * row);
        vga_viewer_scroll_view(&root, -10 * std::int64_t{row});
    }
    EXPECT_EQ(answered, LastKnownRequestProcessed(gvga_display));
}

TEST_F(Scroll_test, a_held_bar_is_let_go_before_it_disappears) {
    resize(300, static_cast<int>(3 * row));
    fill(4, TEST_TOP);
    ASSERT_TRUE(XtIsManaged(v_bar));
    gvga_modal_firewall_widget = v_bar;
    vga_delete_viewer(&root, &rows[3]->item, true);
    EXPECT_EQ(nullptr, gvga_modal_firewall_widget);
    EXPECT_FALSE(XtIsManaged(v_bar));

    create(rows[3].get(), TEST_TOP, nullptr, rows[2].get());
    ASSERT_TRUE(XtIsManaged(v_bar));
    gvga_modal_firewall_widget = button; // another widget is none of the list's business
    vga_delete_viewer(&root, &rows[3]->item, true);
    EXPECT_EQ(button, gvga_modal_firewall_widget);
    gvga_modal_firewall_widget = nullptr;
}

TEST_F(Scroll_test, timers_outlive_their_list_harmlessly) {
    fill(3, TEST_TOP);
    Dimension width = 0;
    XtVaGetValues(button, XmNwidth, &width, nullptr);
    vga_viewer_resize(button, &root, nullptr);
    vga_viewer_resize(button, &root, nullptr);
    vga_viewer_undisplay(&root);
    pump(); // undisplayed: the timers do nothing
    vga_viewer_destroy_root(&root);
    vga_viewer_scrollbar_timer(reinterpret_cast<XtPointer>(std::uintptr_t{root.handle}), nullptr);
    vga_viewer_drag_timer(reinterpret_cast<XtPointer>(std::uintptr_t{root.handle}), nullptr);
}

// A root is displayed again when its window opens again.
TEST_F(Scroll_test, list_comes_back_after_undisplay) {
    resize(300, static_cast<int>(5 * row));
    fill(8, TEST_TOP);
    vga_viewer_select(&rows[2]->item, &root, false, false, false, false);
    vga_viewer_scroll_view(&root, 2 * row);
    vga_viewer_undisplay(&root);
    EXPECT_TRUE(selected().empty());
    EXPECT_EQ(nullptr, root.outline_viewer);
    fill(1, TEST_TOP);
    vga_delete_viewer(&root, &rows[0]->item, true);
    vga_viewer_display_root(&root, button, h_bar, v_bar);
    EXPECT_EQ(0u, root.y_offset);
    EXPECT_EQ(9 * row, root.total_height);
    EXPECT_TRUE(look() == look_afresh());
    EXPECT_EQ(&rows[1]->item, vga_find_viewer(&root, 0));
}

} // namespace
