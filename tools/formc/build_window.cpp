// Whole windows (menu bar, tool bar, panes, message bar) and dialogs (body and standard buttons).
#include "build.h"

namespace formc {

namespace {

struct Edge {
    std::string_view attachment, widget, offset;
};
constexpr Edge top{"XmNtopAttachment", "XmNtopWidget", "XmNtopOffset"};
constexpr Edge bottom{"XmNbottomAttachment", "XmNbottomWidget", "XmNbottomOffset"};
constexpr Edge left{"XmNleftAttachment", "XmNleftWidget", "XmNleftOffset"};
constexpr Edge right{"XmNrightAttachment", "XmNrightWidget", "XmNrightOffset"};

// Attaches an edge to the form, or to the facing edge of a sibling.
void attach(Object& object, const Edge& edge, int offset, const Object* sibling = nullptr) {
    object.set(edge.attachment, sibling ? "XmATTACH_WIDGET" : "XmATTACH_FORM");
    if (sibling)
        object.set(edge.widget, sibling->name);
    if (offset)
        object.set(edge.offset, offset);
}

// Gives an edge the place of the same edge of a sibling.
void align(Object& object, const Edge& edge, const Object& sibling) {
    object.set(edge.attachment, "XmATTACH_OPPOSITE_WIDGET").set(edge.widget, sibling.name);
}

// A push button that looks like a label: it can be clicked, and takes no focus.
Object& flat_button(Builder& b, const Statement& s, const std::string& name) {
    return b.make(s, "XmPushButton", name)
        .set("XmNshadowThickness", 0)
        .set("XmNhighlightThickness", 0)
        .set("XmNtraversalOn", "false")
        .set("XmNfillOnArm", "false");
}

Object& flat_icon(Builder& b, const Statement& s, const std::string& name) {
    return flat_button(b, s, name).set("XmNlabelType", "XmPIXMAP");
}

// Frame and icon of one action; a third name adds a label below the icon.
Object& build_tool(Builder& b, const Statement& s, const Statement& bar) {
    if (s.names.size() < 2 || s.names.size() > 3 || !s.label)
        s.fail("'tool' needs the names of frame and icon and a label");
    Object& frame = b.make(s, "XmFrame", s.names[0])
                        .set("XmNshadowType", "XmSHADOW_OUT")
                        .set("XmNshadowThickness", 1);
    Object& icon = flat_icon(b, s, s.names[1])
                       .set("XmNlabelString", uil_label(*s.label))
                       .set("XmNmarginWidth", space::step)
                       .set("XmNmarginHeight", space::step)
                       .call("XmNarmCallback", "vga_button_push")
                       .call("XmNdisarmCallback", "vga_button_pop");
    const std::string enter = bar.text("enter");
    const std::string leave = bar.text("leave");
    if (enter.empty() != leave.empty())
        bar.fail("'enter' and 'leave' come together");
    if (!enter.empty())
        icon.set("XmNtranslations", uil_translations("<EnterWindow>: Enter() " + enter +
                                                     "()\n<LeaveWindow>: Leave() " + leave + "()"));
    decorate(s, icon);
    if (s.names.size() == 3) {
        Object& box = b.make(s, "XmRowColumn", "")
                          .set("XmNmarginWidth", space::step)
                          .set("XmNmarginHeight", 0)
                          .set("XmNspacing", 0)
                          .set("XmNentryAlignment", "XmALIGNMENT_CENTER");
        Object& label = b.make(s, "XmLabel", s.names[2]).set("XmNlabelString", uil_label(*s.label));
        box.children = {&icon, &label};
        frame.children.push_back(&box);
    } else {
        frame.children.push_back(&icon);
    }
    return frame;
}

// The node itself as an item that can be selected: icon and two lines of text in a form.
Object& build_node_area(Builder& b, const Statement& s) {
    if (s.names.size() != 3)
        s.fail("'nodearea' needs the names of form, icon and text");
    Object& form = b.make(s, "XmForm", s.names[0]);
    Object& icon = flat_icon(b, s, s.names[1]);
    Object& text = flat_button(b, s, s.names[2])
                       .set("XmNlabelString", uil_label(s.label.value_or("")))
                       .set("XmNalignment", "XmALIGNMENT_BEGINNING")
                       .set("XmNrecomputeSize", "false")
                       .set("XmNwidth", 160)
                       .set("XmNheight", 40);
    decorate(s, icon);
    decorate(s, text);
    attach(icon, top, 0);
    attach(icon, bottom, 0);
    attach(icon, left, space::step);
    attach(text, top, 0);
    attach(text, bottom, 0);
    attach(text, left, space::step, &icon);
    attach(text, right, space::step);
    form.set("XmNnavigationType", "XmTAB_GROUP");
    form.children = {&icon, &text};
    return form;
}

Object& build_tool_bar(Builder& b, const Statement& s) {
    Object& bar = b.make_named(s, "XmRowColumn")
                      .set("XmNorientation", "XmHORIZONTAL")
                      .set("XmNmarginWidth", space::gap)
                      .set("XmNmarginHeight", space::gap)
                      .set("XmNspacing", space::step);
    for (const Statement& entry : s.body) {
        if (entry.keyword == "tool")
            bar.children.push_back(&build_tool(b, entry, s));
        else if (entry.keyword == "nodearea")
            bar.children.push_back(&build_node_area(b, entry));
        else
            entry.fail("a tool bar has no '" + entry.keyword + "'");
        entry.check_all_used();
    }
    return bar;
}

// A viewer under a title bar: the key icon and the title can be clicked to select the pane.
Object& build_pane(Builder& b, const Statement& s) {
    if (!s.label)
        s.fail("'pane' needs a title");
    Object& form = b.make(s, "XmForm", s.names.empty() ? "" : s.names[0]);
    const std::string select = s.text("click");
    Object& title = flat_button(b, s, s.text("title"))
                        .set("XmNlabelString", uil_label(caption(s).text))
                        .set("XmNalignment", "XmALIGNMENT_BEGINNING")
                        .set("XmNmarginHeight", space::step);
    attach(title, left, space::gap);
    attach(title, right, 0);
    if (const std::string name = s.text("key"); !name.empty()) {
        Object& key = flat_icon(b, s, name).set("XmNmarginHeight", space::step);
        attach(key, top, 0);
        attach(key, left, space::gap);
        align(title, top, key);
        align(title, bottom, key);
        attach(title, left, space::step, &key);
        if (!select.empty())
            key.call("XmNarmCallback", select);
        form.children.push_back(&key);
    } else {
        attach(title, top, 0);
    }
    Object& viewer = build_viewer(b, s, 1);
    attach(viewer, top, 0, &title);
    attach(viewer, bottom, 0);
    attach(viewer, left, 0);
    attach(viewer, right, 0);
    if (!select.empty())
        title.call("XmNarmCallback", select);
    form.children.push_back(&title);
    form.children.push_back(&viewer);
    return form;
}

Object& build_panes(Builder& b, const Statement& s) {
    Object& panes = b.make_named(s, "XmPanedWindow")
                        .set("XmNmarginWidth", 0)
                        .set("XmNmarginHeight", 0)
                        .set("XmNspacing", space::gap);
    for (const Statement& entry : s.body) {
        if (entry.keyword != "pane")
            entry.fail("'panes' holds panes only");
        Object& pane = build_pane(b, entry);
        pane.set("XmNpaneMinimum", 64).set("XmNheight", entry.number("height", 160));
        if (entry.flag("fixed"))
            pane.set("XmNskipAdjust", "true");
        panes.children.push_back(&pane);
        entry.check_all_used();
    }
    return panes;
}

Object& build_message_bar(Builder& b, const Statement& s) {
    return b.make_named(s, "XmTextField")
        .set("XmNeditable", "false")
        .set("XmNcursorPositionVisible", "false")
        .set("XmNtraversalOn", "false")
        .set("XmNhighlightThickness", 0);
}

// A main window whose command window is the tool bar (above the work window) or the row of buttons
// (below it). There is no form in between: a form keeps the heights its children have when the
// shell is given a size before it is realized, when they have none yet.
void build_window(Builder& b, const Statement& s) {
    Object& main = b.module.make(s, b.prefix, "XmMainWindow", b.prefix);
    decorate(s, main);
    const auto put = [&](const Statement& at, std::string_view resource, Object& part) {
        for (const auto& [name, value] : main.arguments)
            if (name == resource)
                at.fail("a window has one '" + at.keyword + "', and a tool bar or a button row");
        main.set(resource, part.name).children.push_back(&part);
    };
    for (const Statement& entry : s.body) {
        const std::string& what = entry.keyword;
        if (what == "menubar") {
            put(entry, "XmNmenuBar", build_menu_bar(b, entry));
        } else if (what == "toolbar") {
            put(entry, "XmNcommandWindow", build_tool_bar(b, entry));
        } else if (what == "buttonrow") {
            put(entry, "XmNcommandWindow",
                build_button_row(b, entry).set("XmNmarginWidth", space::edge));
            main.set("XmNcommandWindowLocation", "XmCOMMAND_BELOW_WORKSPACE");
        } else if (what == "panes") {
            put(entry, "XmNworkWindow", build_panes(b, entry));
        } else if (what == "pane") {
            put(entry, "XmNworkWindow", build_pane(b, entry));
        } else if (what == "viewer") {
            put(entry, "XmNworkWindow", build_viewer(b, entry));
        } else if (what == "messagebar") {
            put(entry, "XmNmessageWindow", build_message_bar(b, entry));
        } else {
            entry.fail("a window has no '" + what + "'");
        }
        entry.check_all_used();
    }
}

// The button row of a dialog: OK, Apply, Cancel and Help, made by the toolkit's dialog template,
// which keeps them equally wide, makes OK the default and closes the gap when one is unmanaged.
// Help calls the help callback of the dialog, which the program sets. The statement's
// name is that of the Apply button.
void build_standard_buttons(Builder& b, const Statement& s, Object& dialog) {
    if (!s.flag("nook"))
        dialog.set("XmNokLabelString", uil_label(s.text("oklabel", "OK")));
    if (s.find("ok"))
        dialog.call("XmNokCallback", s.text("ok"));
    if (!s.flag("nocancel"))
        dialog.set("XmNcancelLabelString", uil_label(s.text("cancellabel", "Cancel")))
            .call("XmNcancelCallback", s.text("cancel", "vga_close_cb"));
    if (!s.flag("nohelp"))
        dialog.set("XmNhelpLabelString", uil_label("Help"));
    if (s.names.empty() == (s.find("apply") != nullptr))
        s.fail("the name of the Apply button and 'apply' come together");
    if (s.find("apply"))
        dialog.children.push_back(&b.make(s, "XmPushButton", s.names[0])
                                       .set("XmNlabelString", uil_label("Apply"))
                                       .call("XmNactivateCallback", s.text("apply")));
}

void build_dialog(Builder& b, const Statement& s) {
    Object& dialog = b.module.make(s, b.prefix, "XmMessageBox", b.prefix);
    dialog.set("XmNdialogType", "XmDIALOG_TEMPLATE")
        .set("XmNautoUnmanage", "false")
        .set("XmNmarginWidth", space::edge)
        .set("XmNmarginHeight", space::edge);
    if (!s.flag("resizable"))
        dialog.set("XmNnoResize", "true");
    if (s.label)
        dialog.set("XmNdialogTitle", uil_label(*s.label));
    decorate(s, dialog);
    Object& work = b.make(s, "XmRowColumn", s.text("work"))
                       .set("XmNmarginWidth", 0)
                       .set("XmNmarginHeight", 0)
                       .set("XmNspacing", space::group);
    dialog.children.push_back(&work);
    b.columns = &b.all_columns.emplace_back();

    // Rows that stand in no frame or group form groups of their own, indented as far as those in
    // frames.
    bool framed = false;
    for (const Statement& entry : s.body)
        framed = framed || entry.keyword == "frame";
    Object* loose = nullptr;
    bool has_buttons = false;
    for (const Statement& entry : s.body) {
        const std::string& what = entry.keyword;
        if (what == "buttons") {
            build_standard_buttons(b, entry, dialog);
            entry.check_all_used();
            has_buttons = true;
        } else if (what == "frame" || what == "group" || what == "columns" || what == "separator") {
            build_entry(b, entry, work);
            loose = nullptr;
        } else {
            if (!loose) {
                loose = &b.make(entry, "XmRowColumn", "")
                             .set("XmNmarginWidth", framed ? space::edge + 2 : 0)
                             .set("XmNmarginHeight", 0)
                             .set("XmNspacing", 0);
                work.children.push_back(loose);
            }
            build_entry(b, entry, *loose);
        }
    }
    if (!has_buttons)
        s.fail("the dialog has no 'buttons'");
}

} // namespace

// An XmScrolledWindow that holds the drawn button of a viewer and its two scroll bars, which the
// viewer manages as it needs them. The drawn button is painted by the viewer up to its edges.
Object& build_viewer(Builder& b, const Statement& s, size_t names) {
    if (s.names.size() != names + 3)
        s.fail("'" + s.keyword + "' needs the names of its drawing area and its two scroll bars");
    Object& draw = b.make(s, "XmDrawnButton", s.names[names])
                       .set("XmNlabelString", uil_label(""))
                       .set("XmNshadowThickness", 0)
                       .set("XmNhighlightThickness", 0)
                       .set("XmNmarginWidth", 0)
                       .set("XmNmarginHeight", 0)
                       .set("XmNrecomputeSize", "false")
                       .set("XmNpushButtonEnabled", "false")
                       .set("XmNnavigationType", "XmTAB_GROUP");
    Object& h_scroll = b.make(s, "XmScrollBar", s.names[names + 1])
                           .set("XmNorientation", "XmHORIZONTAL")
                           .set("XmNtraversalOn", "false");
    Object& v_scroll = b.make(s, "XmScrollBar", s.names[names + 2])
                           .set("XmNorientation", "XmVERTICAL")
                           .set("XmNtraversalOn", "false");
    h_scroll.managed = v_scroll.managed = false;
    if (const std::string calls = s.text("click"); !calls.empty())
        draw.call("XmNarmCallback", calls);
    decorate(s, draw);
    Object& scrolled = b.make(s, "XmScrolledWindow", "")
                           .set("XmNscrollingPolicy", "XmAPPLICATION_DEFINED")
                           .set("XmNscrolledWindowMarginWidth", 0)
                           .set("XmNscrolledWindowMarginHeight", 0)
                           .set("XmNspacing", 0)
                           .set("XmNworkWindow", draw.name)
                           .set("XmNhorizontalScrollBar", h_scroll.name)
                           .set("XmNverticalScrollBar", v_scroll.name);
    scrolled.children = {&draw, &h_scroll, &v_scroll};
    return scrolled;
}

void build_form(Module& module, const Statement& s) {
    if (s.names.size() != 1)
        s.fail("'" + s.keyword + "' needs its prefix");
    Builder b{.module = module, .prefix = s.names[0]};
    if (s.keyword == "window")
        build_window(b, s);
    else if (s.keyword == "dialog")
        build_dialog(b, s);
    else
        s.fail("a form starts with 'window' or 'dialog'");
    b.resolve();
    s.check_all_used();
}

} // namespace formc
