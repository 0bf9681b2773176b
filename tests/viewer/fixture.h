// A list on a real X server: a scrolled window with a drawn button and bars, rows of the tests' own
// types, and ways to operate and to look at it.
#pragma once

#include <gtest/gtest.h> // before X11, whose macros it cannot bear

#include "kit/pointer.h"
#include "ui/framework/dialog.h"
#include "ui/viewer/viewer_internal.h"

#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <memory>
#include <string>
#include <vector>

// The types of the tests' own type table, by level. Rows of every type but the title can be
// selected.
enum Test_type : NB_BYTE {
    TEST_TOP = 0,    // expandable, level 0, flat
    TEST_MIDDLE = 1, // expandable, level 1
    TEST_LEAF = 2,   // level 2, no icon
    TEST_TITLE = 3,  // level 0: cannot be selected, underlined
    TEST_ALONE = 4,  // level 0: no multiple selection
};

struct Row {
    vga_viewer item;
    std::string text;
};

// Connects, and makes graphics out of the icons of the build; once per process.
void start_graphics();

struct Call { // of a type's callbacks
    std::string what;
    void* record;
    int click_count;
    bool operator==(const Call&) const = default;
};

struct Pixels {
    int width, height;
    std::vector<unsigned long> pixels;
    bool operator==(const Pixels&) const = default;
    unsigned long at(int x, int y) const { return pixels[y * width + x]; }
};

class Viewer_test : public testing::Test {
public:
    static Viewer_test* current; // where the types' callbacks report
    vga_viewer_root root;
    vga_dialog owner = {};
    Widget shell, scrolled, button, h_bar, v_bar;
    std::vector<Call> calls;

protected:
    void SetUp() override;
    void TearDown() override;

    std::unique_ptr<Row> new_row(const std::string& text);
    void create(Row* row, NB_BYTE type, Row* parent = nullptr, Row* previous = nullptr);
    // Rows of one type with texts "1", "2" ... at the end of a list of siblings.
    void fill(int count, NB_BYTE type, Row* parent = nullptr);
    Row* operator[](int index) { return rows[index].get(); }
    void resize(int width, int height); // of the drawn button
    void pump();                        // handles what the server sent so far

    // ---- real events; whoever expects something of them pumps ----
    void move_pointer(int x, int y);
    void press_at(int x, int y, unsigned modifiers = 0); // and what that causes
    void click(int x, int y, unsigned modifiers = 0);
    void key(KeySym key, unsigned modifiers = 0); // and what that causes

    Pixels look();        // the window as it is
    Pixels look_afresh(); // the window cleared and drawn anew
    int row_y(const Row* row);
    std::vector<int> selected(); // indexes of the selected rows
    bool outlined(const Row* row) { return root.outline_viewer == &row->item; }

    std::vector<std::unique_ptr<Row>> rows;
    std::size_t asserts_before = 0;
};
