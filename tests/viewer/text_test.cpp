// Columns and widths of row texts, and what reaches the window of them.
#include "viewer/fixture.h"

#include "shell/globals.h"

#include <cstring>
#include <utility>

namespace {

struct Case {
    const char* text;
    int width;         // in characters
    const char* drawn; // what the window shows, "." for a blank cell
};

class Text_test : public Viewer_test {
protected:
    // Draws a text as a row of its own and one drawn plainly, cell by cell; compares them.
    void expect_drawn(const Case& test) {
        rows.clear();
        rows.push_back(new_row(test.text));
        create(rows[0].get(), TEST_LEAF);
        const Pixels row = look();
        const int x = vga_viewer_text_start(&rows[0]->item);
        vga_delete_viewer(&root, &rows[0]->item, true);
        for (int cell = 0; test.drawn[cell] != '\0'; ++cell) {
            if (test.drawn[cell] != '.') {
                XmbDrawString(gvga_display, XtWindow(button), gvga_font_set, gvga_normal_gc,
                              x + cell * gvga_metrics.char_width, gvga_metrics.text_baseline,
                              test.drawn + cell, 1);
            }
        }
        EXPECT_TRUE(row == look()) << test.text;
        XClearWindow(gvga_display, XtWindow(button));
    }
};

TEST_F(Text_test, columns_place_and_cut_segments) {
    const Case cases[] = {
        {"", 0, ""},
        {"plain", 5, "plain"},
        {"ab%t5%cd", 7, "ab...cd"},
        {"ab%t5cd", 7, "ab...cd"},          // the closing percent sign may be missing
        {"abcdefgh%t3%xy", 5, "abcxy"},     // cut at the next column
        {"ab%t4%cdefg%t6%h", 7, "ab..cdh"}, // in the middle too
        {"ab%t4%%t4%cd", 6, "ab..cd"},      // equal columns: an empty segment
        {"a%t8%de%t2%x", 3, "a.x"},         // a column further left leaves no room at all
        {"ab%t3%", 3, "ab"},
        {"1%2 %s", 6, "1%2.%s"}, // no markers
        {"abc%tx", 1, "x"},      // no number: column 0
    };
    resize(400, 200);
    ASSERT_NE(nullptr, gvga_font_set);
    for (const Case& test : cases) {
        EXPECT_EQ(test.width * gvga_metrics.char_width,
                  vga_viewer_text_width(test.text, static_cast<int>(std::strlen(test.text))))
            << test.text;
        expect_drawn(test);
    }
}

TEST_F(Text_test, texts_in_every_way_of_measuring_agree) {
    const std::string text = "name%t12%active%t9%x";
    const int width = vga_viewer_text_width(text.c_str(), static_cast<int>(text.size()));
    rows.push_back(new_row("long first segment%t6%middle%t9%x"));
    create(rows[0].get(), TEST_TOP);
    const Pixels fast = look();
    gvga_metrics.fixed_width = false; // now characters are measured one by one
    EXPECT_EQ(width, vga_viewer_text_width(text.c_str(), static_cast<int>(text.size())));
    EXPECT_TRUE(fast == look_afresh());
    // And with a plain font in place of the set.
    XFontSet set = std::exchange(gvga_font_set, nullptr);
    XFontStruct** fonts = nullptr;
    char** names = nullptr;
    XFontsOfFontSet(set, &fonts, &names);
    ASSERT_NE(nullptr, gvga_font); // one of its own
    EXPECT_EQ(width, vga_viewer_text_width(text.c_str(), static_cast<int>(text.size())));
    EXPECT_TRUE(fast == look_afresh());
    gvga_font_set = set;
    gvga_metrics.fixed_width = true;
    EXPECT_TRUE(fast == look_afresh());
}

// The widest row counts; it never counts for less until the list is empty.
TEST_F(Text_test, list_is_as_wide_as_its_widest_row_was) {
    fill(1, TEST_TOP);
    rows[0]->text = "%t200%end";
    vga_update_viewer(&root, &rows[0]->item);
    const int width = gvga_metrics.icon_width + gvga_metrics.expand_icon_width + 4 +
                      203 * gvga_metrics.char_width;
    EXPECT_EQ(width, root.max_width);
    EXPECT_TRUE(XtIsManaged(h_bar));
    rows[0]->text = "short";
    vga_update_viewer(&root, &rows[0]->item);
    fill(1, TEST_LEAF);
    EXPECT_EQ(width, root.max_width);
    vga_delete_viewer(&root, &rows[0]->item, true);
    vga_delete_viewer(&root, &rows[1]->item, true);
    EXPECT_EQ(0, root.max_width);
    EXPECT_FALSE(XtIsManaged(h_bar));
}

// Coordinates of requests end at 32767: what lies beside the window must not wrap round into it.
TEST_F(Text_test, far_columns_show_only_when_scrolled_to) {
    fill(2, TEST_LEAF);
    rows[0]->text = "%t6000%far";
    rows[1]->text = "near";
    vga_update_viewer(&root, &rows[0]->item);
    const Pixels before = look_afresh();
    for (int y = 0; y < gvga_metrics.item_height; ++y) {
        for (int x = 0; x < before.width; ++x) {
            ASSERT_EQ(gvga_list_background, before.at(x, y));
        }
    }
    vga_viewer_scroll_sideways(&root, root.max_width);
    const Pixels after = look();
    EXPECT_EQ(root.max_width - root.view_width, static_cast<int>(root.x_offset));
    int dark = 0;
    for (int y = 0; y < after.height; ++y) {
        for (int x = 0; x < after.width; ++x) {
            const bool expected_place =
                y < gvga_metrics.item_height && x >= after.width - 3 * gvga_metrics.char_width;
            dark += after.at(x, y) != gvga_list_background;
            ASSERT_TRUE(expected_place || after.at(x, y) == gvga_list_background);
        }
    }
    EXPECT_GT(dark, 0);
}

TEST_F(Text_test, title_underlines_the_dashes_of_its_message) {
    rows.push_back(new_row("  "));
    create(rows[0].get(), TEST_TITLE);
    const Pixels seen = look();
    const int x = vga_viewer_text_start(&rows[0]->item);
    const std::string pattern = "----....---.-"; // of the message "----%t8%--- -"
    const int line = gvga_metrics.item_height - 2;
    for (int cell = 0; cell < static_cast<int>(pattern.size()) + 3; ++cell) {
        const bool dash = cell < static_cast<int>(pattern.size()) && pattern[cell] == '-';
        for (int pixel = 0; pixel < gvga_metrics.char_width; ++pixel) {
            EXPECT_EQ(dash ? gvga_foreground : gvga_list_background,
                      seen.at(x + cell * gvga_metrics.char_width + pixel, line))
                << "cell " << cell;
        }
    }
    EXPECT_EQ(gvga_list_background, seen.at(x, line + 1));
    EXPECT_EQ(gvga_list_background, seen.at(x, line - 1));
}

TEST_F(Text_test, too_long_text_is_reported_and_cut) {
    rows.push_back(new_row(std::string(VGA_VIEWER_MAX_TEXT_LENGTH, 'x')));
    create(rows[0].get(), TEST_LEAF);
    EXPECT_EQ(asserts_before, nba_assert_count());
    rows.push_back(new_row(std::string(VGA_VIEWER_MAX_TEXT_LENGTH + 1, 'x')));
    vga_viewer_undisplay(&root);
    create(rows[1].get(), TEST_LEAF, nullptr, rows[0].get());
    EXPECT_EQ(asserts_before + 1, nba_assert_count());
    EXPECT_STREQ("text_len <= VGA_VIEWER_MAX_TEXT_LENGTH", nba_last_assert());
    EXPECT_EQ(vga_viewer_text_start(&rows[1]->item) +
                  VGA_VIEWER_MAX_TEXT_LENGTH * gvga_metrics.char_width,
              root.max_width);
    asserts_before = nba_assert_count();
}

} // namespace
