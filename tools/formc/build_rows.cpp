// The body of a dialog: a column of rows, each a form of its own whose label ends and whose field
// begins at a common position. A row of which everything is unmanaged collapses, because the space
// between rows lies inside them.
#include "build.h"

#include <algorithm>
#include <array>

namespace formc {

namespace {

// Estimates in pixels for a 10 point font, to find the position of the columns.
int label_width(std::string_view text) {
    size_t longest = 0;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        longest = std::max(longest, end);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return static_cast<int>(longest) * 7;
}
int text_width(int columns) {
    return columns * 8 + 14;
}

constexpr int row_inset = space::gap / 2;
constexpr int period_width = 4 + 2 * space::step;
constexpr int indicator_width = 24;
constexpr int menu_width = 40; // arrow and margins of an option menu
constexpr int button_width = 28;
constexpr int option_inset = 2; // of an option menu's button, for its empty label

// A widget in a row and its estimated width.
struct Piece {
    Object* object;
    int width;
};

Object& column_box(Builder& b, const Statement& s, int spacing, std::string_view name = {}) {
    return b.make(s, "XmRowColumn", name)
        .set("XmNmarginWidth", 0)
        .set("XmNmarginHeight", 0)
        .set("XmNspacing", spacing);
}

Piece text_piece(Builder& b, const Statement& s, size_t name, int default_width) {
    if (name >= s.names.size())
        s.fail("'" + s.keyword + "' needs a name");
    const int width = s.number("width", default_width);
    const int lines = s.number("lines", 1);
    Object& text = b.make_named(s, lines > 1 ? "XmText" : "XmTextField", name);
    text.set("XmNcolumns", width).set("XmNmaxLength", s.number("max", width));
    if (lines > 1)
        text.set("XmNrows", lines).set("XmNeditMode", "XmMULTI_LINE_EDIT");
    if (const std::string check = s.text("check"); !check.empty())
        add_calls(s, text, "XmNmodifyVerifyCallback",
                  check == "all_caps" ? "vga_all_caps_cb" : "vga_check_" + check + "_cb");
    if (s.flag("readonly"))
        text.set("XmNeditable", "false")
            .set("XmNcursorPositionVisible", "false")
            .set("XmNtraversalOn", "false");
    return {&text, text_width(width)};
}

Piece field_piece(Builder& b, const Statement& s) {
    return text_piece(b, s, 0, 8);
}

Object& captioned(Builder& b, const Statement& s, std::string_view type) {
    if (!s.label)
        s.fail("'" + s.keyword + "' needs a label");
    Object& object = b.make_named(s, type);
    set_caption(s, object, b.mnemonics);
    return object;
}

Piece toggle_piece(Builder& b, const Statement& s) {
    Object& toggle = captioned(b, s, "XmToggleButton");
    toggle.set("XmNalignment", "XmALIGNMENT_BEGINNING");
    if (s.flag("set"))
        toggle.set("XmNset", "true");
    if (s.flag("radio"))
        toggle.set("XmNindicatorType", "XmONE_OF_MANY");
    return {&toggle, indicator_width + label_width(*s.label)};
}

Piece button_piece(Builder& b, const Statement& s) {
    Object& button = captioned(b, s, "XmPushButton");
    button.set("XmNmarginWidth", space::gap);
    return {&button, button_width + label_width(*s.label)};
}

Piece label_piece(Builder& b, const Statement& s) {
    Object& label = captioned(b, s, "XmLabel");
    label.set("XmNalignment", "XmALIGNMENT_BEGINNING");
    return {&label, label_width(*s.label)};
}

Piece option_piece(Builder& b, const Statement& s) {
    int widest = 0;
    for (const Statement& item : s.body)
        widest = std::max(widest, label_width(item.label.value_or("")));
    return {&build_option_menu(b, s), menu_width + widest};
}

// Toggles below or, with `horizontal`, beside each other; of a radio group exactly one is set.
Piece toggles_piece(Builder& b, const Statement& s) {
    const bool radio = s.keyword == "radio";
    const bool horizontal = s.flag("horizontal");
    Object& box = b.make_named(s, radio ? "XmRadioBox" : "XmRowColumn");
    box.set("XmNmarginWidth", 0).set("XmNmarginHeight", 0).set("XmNspacing", space::step);
    if (horizontal)
        box.set("XmNorientation", "XmHORIZONTAL").set("XmNspacing", space::edge);
    box.set("XmNpacking", "XmPACK_TIGHT");
    int width = 0;
    for (const Statement& entry : s.body) {
        if (entry.keyword != "toggle")
            entry.fail("'" + s.keyword + "' holds toggles only");
        const Piece piece = toggle_piece(b, entry);
        entry.check_all_used();
        box.children.push_back(piece.object);
        width = horizontal ? width + piece.width + space::edge : std::max(width, piece.width);
    }
    return {&box, width};
}

using BuildPiece = Piece (*)(Builder&, const Statement&);
struct PieceKind {
    std::string_view keyword;
    BuildPiece build;
};
constexpr std::array pieces{PieceKind{"text", field_piece},    PieceKind{"toggle", toggle_piece},
                            PieceKind{"button", button_piece}, PieceKind{"label", label_piece},
                            PieceKind{"option", option_piece}, PieceKind{"radio", toggles_piece},
                            PieceKind{"checks", toggles_piece}};

// Puts pieces side by side into one box.
Piece side_by_side(Builder& b, const Statement& s, const std::vector<Piece>& parts, int spacing) {
    if (parts.size() == 1)
        return parts[0];
    // A form: a row column would not let a field grow.
    Object& box = b.make(s, "XmForm", "");
    int width = 0;
    for (const Piece& part : parts) {
        part.object->set("XmNtopAttachment", "XmATTACH_FORM")
            .set("XmNbottomAttachment", "XmATTACH_FORM");
        if (box.children.empty()) {
            part.object->set("XmNleftAttachment", "XmATTACH_FORM");
        } else {
            part.object->set("XmNleftAttachment", "XmATTACH_WIDGET")
                .set("XmNleftWidget", box.children.back()->name)
                .set("XmNleftOffset", spacing);
        }
        box.children.push_back(part.object);
        width += part.width + spacing;
    }
    return {&box, width - spacing};
}

// Completes a row: `piece` in the field column, the statement's label (named by `label=`) in the
// label column.
Object& finish_row(Builder& b, const Statement& s, Object& row, Piece piece, bool has_label) {
    row.set("XmNfractionBase", 1000);
    Object& field = *piece.object;
    field.set("XmNtopAttachment", "XmATTACH_FORM")
        .set("XmNtopOffset", row_inset)
        .set("XmNbottomAttachment", "XmATTACH_FORM")
        .set("XmNbottomOffset", row_inset);
    const bool span = s.flag("span");
    if (span) {
        field.set("XmNleftAttachment", "XmATTACH_FORM");
        b.columns->whole = std::max(b.columns->whole, piece.width);
    } else {
        field.set("XmNleftAttachment", "XmATTACH_POSITION");
        b.place(field, "XmNleftPosition");
        if (field.type == "XmOptionMenu")
            field.set("XmNleftOffset", -option_inset);
        b.columns->field = std::max(b.columns->field, piece.width);
    }
    if (has_label) {
        if (span)
            s.fail("a row that spans the columns has no label");
        const Caption c = caption(s);
        // The program finds the field of a mnemonic behind its label.
        Object& label = b.make(s, "XmLabel", s.text("label"))
                            .set("XmNalignment", "XmALIGNMENT_END")
                            .set("XmNrightAttachment", "XmATTACH_POSITION")
                            .set("XmNrightOffset", space::gap)
                            .set("XmNtopAttachment", "XmATTACH_OPPOSITE_WIDGET")
                            .set("XmNtopWidget", field.name)
                            .set("XmNbottomAttachment", "XmATTACH_OPPOSITE_WIDGET")
                            .set("XmNbottomWidget", field.name);
        set_caption(s, label, b.mnemonics);
        b.place(label, "XmNrightPosition");
        label.managed = field.managed;
        b.columns->label = std::max(b.columns->label, label_width(c.text) + space::gap);
        row.children.push_back(&label);
    }
    row.children.push_back(&field);
    return row;
}

Object& anonymous_row(Builder& b, const Statement& s) {
    return b.make(s, "XmForm", "");
}

Object& build_field(Builder& b, const Statement& s) {
    return finish_row(b, s, anonymous_row(b, s), field_piece(b, s), true);
}

// Two names with a period between them: network name and name.
Object& build_fqname(Builder& b, const Statement& s) {
    if (s.names.size() != 2)
        s.fail("'fqname' needs the names of two texts");
    Object& row = anonymous_row(b, s);
    std::vector<Piece> parts{text_piece(b, s, 0, 8)};
    Object& period = b.make(s, "XmLabel", "").set("XmNlabelString", uil_label("."));
    parts.push_back({&period, period_width});
    parts.push_back(text_piece(b, s, 1, 8));
    return finish_row(b, s, row, side_by_side(b, s, parts, space::step), true);
}

Object& build_row(Builder& b, const Statement& s) {
    Object& row = b.make_named(s, "XmForm");
    std::vector<Piece> parts;
    for (const Statement& entry : s.body) {
        const auto* kind = std::find_if(pieces.begin(), pieces.end(), [&](const PieceKind& k) {
            return k.keyword == entry.keyword;
        });
        if (kind == pieces.end())
            entry.fail("a row has no '" + entry.keyword + "'");
        parts.push_back(kind->build(b, entry));
        entry.check_all_used();
    }
    if (parts.empty())
        s.fail("a row holds at least one widget");
    return finish_row(b, s, row, side_by_side(b, s, parts, space::gap), s.label.has_value());
}

Object& build_option(Builder& b, const Statement& s) {
    return finish_row(b, s, anonymous_row(b, s), option_piece(b, s), true);
}

Object& build_toggles(Builder& b, const Statement& s) {
    return finish_row(b, s, anonymous_row(b, s), toggles_piece(b, s), s.label.has_value());
}

Object& build_toggle(Builder& b, const Statement& s) {
    return finish_row(b, s, anonymous_row(b, s), toggle_piece(b, s), false);
}

Object& build_button(Builder& b, const Statement& s) {
    return finish_row(b, s, anonymous_row(b, s), button_piece(b, s), false);
}

Object& build_label(Builder& b, const Statement& s) {
    return finish_row(b, s, anonymous_row(b, s), label_piece(b, s), false);
}

// A label that shows a value of up to `width` characters.
Object& build_value(Builder& b, const Statement& s) {
    Object& row = anonymous_row(b, s);
    Object& value = b.make_named(s, "XmLabel");
    value.set("XmNlabelString", uil_label(s.text("text", " ")))
        .set("XmNalignment", "XmALIGNMENT_BEGINNING");
    return finish_row(b, s, row, {&value, text_width(s.number("width", 8))}, true);
}

Object& make_list(Builder& b, const Statement& s) {
    return b.make_named(s, "XmScrolledList")
        .set("XmNvisibleItemCount", s.number("rows", 8))
        .set("XmNwidth", text_width(s.number("width", 20)))
        .set("XmNlistSizePolicy", "XmCONSTANT")
        .set("XmNselectionPolicy", s.flag("multiple") ? "XmEXTENDED_SELECT" : "XmBROWSE_SELECT");
}

// A list under its own label.
Object& build_list(Builder& b, const Statement& s) {
    Object& box = column_box(b, s, space::step);
    if (s.label)
        box.children.push_back(&b.make(s, "XmLabel", s.text("label"))
                                    .set("XmNlabelString", uil_label(caption(s).text))
                                    .set("XmNalignment", "XmALIGNMENT_BEGINNING"));
    box.children.push_back(&make_list(b, s));
    b.columns->whole = std::max(b.columns->whole, text_width(s.number("width", 20)));
    return box;
}

// Two lists with the buttons that move entries between them.
Object& build_list_pair(Builder& b, const Statement& s) {
    Object& row = b.make_named(s, "XmRowColumn");
    row.set("XmNorientation", "XmHORIZONTAL")
        .set("XmNmarginWidth", 0)
        .set("XmNmarginHeight", 0)
        .set("XmNspacing", space::edge);
    std::vector<Object*> lists;
    Object& buttons = column_box(b, s, space::gap);
    buttons.set("XmNmarginHeight", space::group + space::edge);
    for (const Statement& entry : s.body) {
        if (entry.keyword == "list")
            lists.push_back(&build_list(b, entry));
        else if (entry.keyword == "button")
            buttons.children.push_back(button_piece(b, entry).object);
        else
            entry.fail("a list pair has no '" + entry.keyword + "'");
        entry.check_all_used();
    }
    if (lists.size() != 2 || buttons.children.empty())
        s.fail("a list pair holds two lists and at least one button");
    row.children = {lists[0], &buttons, lists[1]};
    return row;
}

Object& build_separator(Builder& b, const Statement& s) {
    return b.make_named(s, "XmSeparator");
}

Object& build_viewer_row(Builder& b, const Statement& s) {
    Object& viewer = build_viewer(b, s);
    const int width = s.number("width", 60) * 8;
    b.columns->whole = std::max(b.columns->whole, width);
    return viewer.set("XmNwidth", width).set("XmNheight", s.number("rows", 8) * 20);
}

// Anything else: `object Name class=XmScale XmNmaximum=10 { ... }`.
Object& build_object(Builder& b, const Statement& s) {
    const std::string type = s.text("class");
    if (!type.starts_with("Xm"))
        s.fail("'object' needs class=Xm...");
    Object& object = b.make_named(s, type);
    if (s.label)
        object.set("XmNlabelString", uil_label(caption(s).text));
    for (const Statement& entry : s.body) {
        if (entry.keyword != "object")
            entry.fail("an object holds objects only");
        object.children.push_back(&build_object(b, entry));
    }
    s.check_all_used();
    return object;
}

// A column of rows with its own or its parent's label column. Inside a frame there is space around
// it.
Object& body_box(Builder& b, const Statement& s, std::string_view name, bool framed) {
    Object& box = column_box(b, s, 0, name);
    if (framed)
        box.set("XmNmarginWidth", space::edge).set("XmNmarginHeight", space::edge - row_inset);
    for (const Statement& entry : s.body)
        build_entry(b, entry, box);
    return box;
}

Object& build_frame(Builder& b, const Statement& s) {
    if (!s.label)
        s.fail("a frame needs a title");
    Object& frame = b.make_named(s, "XmFrame");
    Object& title = b.make(s, "XmLabel", s.text("label"))
                        .set("XmNlabelString", uil_label(caption(s).text))
                        .set("XmNchildType", "XmFRAME_TITLE_CHILD");
    frame.children = {&title, &body_box(b, s, "", true)};
    return frame;
}

Object& build_group(Builder& b, const Statement& s) {
    Object& box = body_box(b, s, s.names.empty() ? "" : s.names[0], false);
    decorate(s, box);
    return box;
}

// Groups or frames side by side, each with columns of its own.
Object& build_columns(Builder& b, const Statement& s) {
    Object& box = column_box(b, s, space::group, s.names.empty() ? "" : s.names[0])
                      .set("XmNorientation", "XmHORIZONTAL");
    Columns* outer = b.columns;
    int width = 0;
    for (const Statement& entry : s.body) {
        if (entry.keyword != "group" && entry.keyword != "frame")
            entry.fail("'columns' holds groups and frames only");
        b.columns = &b.all_columns.emplace_back();
        box.children.push_back(
            &(entry.keyword == "group" ? build_group(b, entry) : build_frame(b, entry)));
        entry.check_all_used();
        width += std::max(b.columns->label + b.columns->field, b.columns->whole) + space::group;
    }
    b.columns = outer;
    b.columns->whole = std::max(b.columns->whole, width);
    return box;
}

using BuildRow = Object& (*)(Builder&, const Statement&);
struct RowKind {
    std::string_view keyword;
    BuildRow build;
};
constexpr std::array rows{RowKind{"field", build_field},
                          RowKind{"fqname", build_fqname},
                          RowKind{"row", build_row},
                          RowKind{"option", build_option},
                          RowKind{"radio", build_toggles},
                          RowKind{"checks", build_toggles},
                          RowKind{"toggle", build_toggle},
                          RowKind{"button", build_button},
                          RowKind{"label", build_label},
                          RowKind{"value", build_value},
                          RowKind{"list", build_list},
                          RowKind{"listpair", build_list_pair},
                          RowKind{"separator", build_separator},
                          RowKind{"viewer", build_viewer_row},
                          RowKind{"object", build_object},
                          RowKind{"frame", build_frame},
                          RowKind{"group", build_group},
                          RowKind{"columns", build_columns},
                          RowKind{"buttonrow", build_button_row}};

} // namespace

void build_entry(Builder& b, const Statement& s, Object& parent) {
    const auto* kind = std::find_if(rows.begin(), rows.end(),
                                    [&](const RowKind& k) { return k.keyword == s.keyword; });
    if (kind == rows.end())
        s.fail("there is no '" + s.keyword + "' here");
    parent.children.push_back(&kind->build(b, s));
    s.check_all_used();
}

Object& build_button_row(Builder& b, const Statement& s) {
    Object& row = b.make_named(s, "XmRowColumn");
    row.set("XmNorientation", "XmHORIZONTAL")
        .set("XmNpacking", "XmPACK_COLUMN")
        .set("XmNmarginWidth", 0)
        .set("XmNmarginHeight", space::gap)
        .set("XmNspacing", space::gap)
        .set("XmNentryAlignment", "XmALIGNMENT_CENTER");
    for (const Statement& entry : s.body) {
        if (entry.keyword != "button")
            entry.fail("a button row holds buttons only");
        row.children.push_back(button_piece(b, entry).object);
        entry.check_all_used();
    }
    return row;
}

} // namespace formc
