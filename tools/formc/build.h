// From statements to objects. The geometry of every window and dialog is decided here and nowhere
// else.
#pragma once

#include "form.h"
#include "uil.h"

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace formc {

// Space comes in steps of four pixels.
namespace space {
constexpr int step = 4;
constexpr int gap = 8;    // between a label and its field, and between rows
constexpr int edge = 12;  // inside a frame, at a dialog's edge
constexpr int group = 16; // between groups
} // namespace space

// The widths (estimated in pixels) of the labels and fields that share one pair of columns. Their
// ratio gives the position, in thousandths of the width, where labels end and fields begin; the
// toolkit makes the width fit the font.
struct Columns {
    int label = 0;
    int field = 0;
    int whole = 0; // widest row that ignores the columns
    int position() const;
};

// What is known while one window or dialog is built.
struct Builder {
    Module& module;
    std::string prefix;
    int anonymous = 0;
    Columns* columns = nullptr; // of the rows being built
    std::deque<Columns> all_columns{};
    std::map<std::string, int> accelerators{}; // key to line
    std::map<char, int> mnemonics{};           // of a dialog's fields and buttons
    // Arguments whose value is a position that is known only when all rows are.
    struct Pending {
        Object* object;
        std::string resource;
        const Columns* columns;
    };
    std::vector<Pending> pending{};

    // An object of a name, which begins with the prefix, or named by its class and a number when
    // the name is empty.
    Object& make(const Statement& at, std::string_view type, std::string_view name);
    // As make, named by the statement's n-th name, with the statement's callbacks, raw resources,
    // translations and flags.
    Object& make_named(const Statement& s, std::string_view type, size_t n = 0);
    void place(Object& object, std::string_view resource);
    void resolve();
};

// Adds the callbacks of a list like `a,b("1")`; a word that is no procedure name is an error of
// `s`.
void add_calls(const Statement& s, Object& object, std::string_view resource,
               std::string_view calls);
// Callbacks (`activate=vga_close_cb`), resources (`XmNrows=4`), `translations`, `hidden` and
// `insensitive`.
void decorate(const Statement& s, Object& object);
// A label text in which `&` marks the mnemonic; null character when there is none.
struct Caption {
    std::string text;
    char mnemonic = 0;
};
Caption caption(const Statement& s);
// Sets label and mnemonic; the mnemonic must be new in `used`.
void set_caption(const Statement& s, Object& object, std::map<char, int>& used);

// build_rows.cpp: one statement of a dialog's body, added to a column of rows.
void build_entry(Builder& b, const Statement& s, Object& parent);
// names: from where on the names of drawing area and scroll bars stand.
Object& build_viewer(Builder& b, const Statement& s, size_t names = 0);
// Equally wide buttons side by side.
Object& build_button_row(Builder& b, const Statement& s);

// build_menu.cpp
Object& build_menu_bar(Builder& b, const Statement& s);
Object& build_option_menu(Builder& b, const Statement& s);

// build_window.cpp: a whole window or dialog.
void build_form(Module& module, const Statement& s);

} // namespace formc
