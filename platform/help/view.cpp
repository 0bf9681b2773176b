#include "view.h"

#include "layout.h"

#include <Xm/DrawnB.h>
#include <Xm/Form.h>
#include <Xm/ScrollBar.h>

#include <X11/cursorfont.h>

#include <algorithm>
#include <cstdlib>

struct HELP_VIEW {
    HELP_VIEW_CALLS calls;
    Widget form, text, bar;
    HELP_TOPIC topic;
    HELP_LAYOUT layout;
    int width = 0, height = 0; // of the text widget
    int scroll = 0;
    int current = -1; // link that has the keyboard
    int pressed = -1; // link under the pressed button
    bool focused = false;
    GC plain = nullptr, accent = nullptr, inverse = nullptr, edge = nullptr;
    Cursor hand = None;
};

namespace {

HELP_VIEW* view_of(Widget text) {
    XtPointer data = nullptr;
    XtVaGetValues(text, XmNuserData, &data, nullptr);
    return static_cast<HELP_VIEW*>(data);
}

XmRenderTable table_of(const HELP_VIEW* view) {
    XmRenderTable table = nullptr;
    XtVaGetValues(view->text, XmNrenderTable, &table, nullptr);
    return table;
}

int greatest_scroll(const HELP_VIEW* view) {
    return std::max(0, view->layout.height - view->height);
}

// ---- drawing ----

void draw_line(const HELP_VIEW* view, const HELP_LINE& line, XmRenderTable table) {
    Display* display = XtDisplay(view->text);
    const Window window = XtWindow(view->text);
    const int y = line.y - view->scroll;
    if (line.kind == HELP_BLOCK_KIND::ITEM && line.first) {
        const int size = line.height / 4 + 1;
        XFillArc(display, window, view->accent, HELP_MARGIN + 2,
                 y + line.baseline - size - line.height / 8, static_cast<unsigned>(size),
                 static_cast<unsigned>(size), 0, 360 * 64);
    }
    for (const HELP_RUN& run : line.runs) {
        const bool link = run.link >= 0;
        const bool current = link && run.link == view->current && view->focused;
        if (current) {
            XFillRectangle(display, window, view->accent, run.x - 2, y,
                           static_cast<unsigned>(run.width + 4),
                           static_cast<unsigned>(line.height));
        }
        GC gc = current ? view->inverse : link ? view->accent : view->plain;
        XmStringDraw(display, window, table, run.string, gc, static_cast<Position>(run.x),
                     static_cast<Position>(y), static_cast<Dimension>(run.width),
                     XmALIGNMENT_BEGINNING, XmSTRING_DIRECTION_L_TO_R, nullptr);
        if (link && !current) {
            XDrawLine(display, window, view->accent, run.x, y + line.baseline + 2,
                      run.x + run.width - 1, y + line.baseline + 2);
        }
    }
}

// The edge, over what scrolls below it, tells who has the keyboard.
void draw_edge(const HELP_VIEW* view) {
    XDrawRectangle(XtDisplay(view->text), XtWindow(view->text),
                   view->focused ? view->accent : view->edge, 0, 0,
                   static_cast<unsigned>(std::max(1, view->width - 1)),
                   static_cast<unsigned>(std::max(1, view->height - 1)));
}

void draw(const HELP_VIEW* view) {
    if (!XtIsRealized(view->text) || view->plain == nullptr) {
        return;
    }
    Display* display = XtDisplay(view->text);
    XClearWindow(display, XtWindow(view->text));
    XmRenderTable table = table_of(view);
    const HELP_LINE* title = nullptr; // its last line
    for (const HELP_LINE& line : view->layout.lines) {
        if (line.kind == HELP_BLOCK_KIND::TITLE) {
            title = &line;
        }
        if (line.y + line.height > view->scroll && line.y < view->scroll + view->height) {
            draw_line(view, line, table);
        }
    }
    if (title != nullptr) {
        const int y = title->y + title->height + 6 - view->scroll;
        XFillRectangle(display, XtWindow(view->text), view->accent, HELP_MARGIN, y,
                       static_cast<unsigned>(std::max(1, view->width - 2 * HELP_MARGIN)), 2);
    }
    draw_edge(view);
}

GC make_gc(const HELP_VIEW* view, Pixel foreground) {
    XGCValues values{};
    values.foreground = foreground;
    return XCreateGC(XtDisplay(view->text), XtWindow(view->text), GCForeground, &values);
}

void make_graphics(HELP_VIEW* view) {
    if (view->plain != nullptr || !XtIsRealized(view->text)) {
        return;
    }
    Pixel foreground, background, accent, shadow;
    XtVaGetValues(view->text, XmNforeground, &foreground, XmNbackground, &background,
                  XmNhighlightColor, &accent, XmNbottomShadowColor, &shadow, nullptr);
    view->plain = make_gc(view, foreground);
    view->accent = make_gc(view, accent);
    view->inverse = make_gc(view, background);
    view->edge = make_gc(view, shadow);
    view->hand = XCreateFontCursor(XtDisplay(view->text), XC_hand2);
}

// ---- scrolling ----

void adjust_bar(const HELP_VIEW* view) {
    const int total = std::max({view->layout.height, view->height, 1});
    const int page = std::clamp(view->height, 1, total);
    const int line = help_line_height(table_of(view));
    XtVaSetValues(view->bar, XmNminimum, 0, XmNvalue, 0, XmNsliderSize, 1, XmNmaximum, total,
                  nullptr);
    XtVaSetValues(view->bar, XmNsliderSize, page, XmNpageIncrement, std::max(1, page - line),
                  XmNincrement, line, nullptr);
    XtVaSetValues(view->bar, XmNvalue, std::min(view->scroll, total - page), nullptr);
}

void scroll_to(HELP_VIEW* view, int scroll) {
    const int limited = std::clamp(scroll, 0, greatest_scroll(view));
    if (limited != view->scroll) {
        view->scroll = limited;
        XtVaSetValues(view->bar, XmNvalue, limited, nullptr);
        draw(view);
    }
}

void bar_cb(Widget, XtPointer data, XtPointer call_data) {
    auto* view = static_cast<HELP_VIEW*>(data);
    const int value = static_cast<XmScrollBarCallbackStruct*>(call_data)->value;
    view->scroll = std::clamp(value, 0, greatest_scroll(view));
    draw(view);
}

void lay_out(HELP_VIEW* view) {
    if (view->width == 0) {
        return; // until it has a size
    }
    help_lay_out(view->topic, table_of(view), view->width, &view->layout);
    view->scroll = std::clamp(view->scroll, 0, greatest_scroll(view));
    adjust_bar(view);
}

void resize_cb(Widget, XtPointer data, XtPointer) {
    auto* view = static_cast<HELP_VIEW*>(data);
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(view->text, XmNwidth, &width, XmNheight, &height, nullptr);
    const bool wrapped_anew = width != view->width;
    view->width = width;
    view->height = height;
    if (wrapped_anew) {
        lay_out(view);
    } else {
        view->scroll = std::clamp(view->scroll, 0, greatest_scroll(view));
        adjust_bar(view);
    }
    draw(view);
}

void expose_cb(Widget, XtPointer data, XtPointer) {
    auto* view = static_cast<HELP_VIEW*>(data);
    make_graphics(view);
    if (view->width == 0) {
        resize_cb(view->text, view, nullptr);
    } else {
        draw(view);
    }
}

// ---- links ----

int link_under(const HELP_VIEW* view, int x, int y) {
    for (const HELP_LINE& line : view->layout.lines) {
        if (y + view->scroll < line.y || y + view->scroll >= line.y + line.height) {
            continue;
        }
        for (const HELP_RUN& run : line.runs) {
            if (run.link >= 0 && x >= run.x && x < run.x + run.width) {
                return run.link;
            }
        }
    }
    return -1;
}

const HELP_LINE* line_of(const HELP_VIEW* view, int link) {
    for (const HELP_LINE& line : view->layout.lines) {
        for (const HELP_RUN& run : line.runs) {
            if (run.link == link) {
                return &line;
            }
        }
    }
    return nullptr;
}

void follow(HELP_VIEW* view, int link, XEvent* event) {
    const HELP_LINK target = view->layout.links[static_cast<std::size_t>(link)].link;
    view->calls.follow(view->calls.data, target, event);
}

void set_current(HELP_VIEW* view, int link) {
    view->current = link;
    if (const HELP_LINE* line = link >= 0 ? line_of(view, link) : nullptr) {
        if (line->y < view->scroll) {
            scroll_to(view, line->y - HELP_MARGIN);
        } else if (line->y + line->height > view->scroll + view->height) {
            scroll_to(view, line->y + line->height + HELP_MARGIN - view->height);
        }
    }
    draw(view);
}

// ---- actions ----

void press_action(Widget widget, XEvent* event, String*, Cardinal*) {
    HELP_VIEW* view = view_of(widget);
    XmProcessTraversal(widget, XmTRAVERSE_CURRENT);
    view->pressed = link_under(view, event->xbutton.x, event->xbutton.y);
    if (view->pressed >= 0) {
        set_current(view, view->pressed);
    }
}

void release_action(Widget widget, XEvent* event, String*, Cardinal*) {
    HELP_VIEW* view = view_of(widget);
    const int link = link_under(view, event->xbutton.x, event->xbutton.y);
    const int pressed = view->pressed;
    view->pressed = -1;
    if (link >= 0 && link == pressed) {
        follow(view, link, event);
    }
}

void motion_action(Widget widget, XEvent* event, String*, Cardinal*) {
    const HELP_VIEW* view = view_of(widget);
    if (link_under(view, event->xmotion.x, event->xmotion.y) >= 0) {
        XDefineCursor(XtDisplay(widget), XtWindow(widget), view->hand);
    } else {
        XUndefineCursor(XtDisplay(widget), XtWindow(widget));
    }
}

// help_scroll(UNIT,NUMBER): lines, pages, or to an end of the text.
void scroll_action(Widget widget, XEvent*, String* parameters, Cardinal* count) {
    if (*count != 2) {
        return;
    }
    HELP_VIEW* view = view_of(widget);
    const int line = help_line_height(table_of(view));
    const int number = std::atoi(parameters[1]);
    switch (parameters[0][0]) {
    case 'l':
        scroll_to(view, view->scroll + number * line);
        break;
    case 'p':
        scroll_to(view, view->scroll + number * std::max(line, view->height - line));
        break;
    default:
        scroll_to(view, number < 0 ? 0 : greatest_scroll(view));
    }
}

// The first link that is not above what shows; the number of links when there is none.
int first_link_from_here(const HELP_VIEW* view) {
    for (const HELP_LINE& line : view->layout.lines) {
        for (const HELP_RUN& run : line.runs) {
            if (run.link >= 0 && line.y >= view->scroll) {
                return run.link;
            }
        }
    }
    return static_cast<int>(view->layout.links.size());
}

// help_tab(1) or help_tab(-1): the next link, and behind the last one the next button.
void tab_action(Widget widget, XEvent*, String* parameters, Cardinal* count) {
    HELP_VIEW* view = view_of(widget);
    const bool forwards = *count == 0 || std::atoi(parameters[0]) > 0;
    const int links = static_cast<int>(view->layout.links.size());
    const int next = !forwards           ? view->current - 1
                     : view->current < 0 ? first_link_from_here(view)
                                         : view->current + 1;
    if (next >= 0 && next < links) {
        set_current(view, next);
        return;
    }
    XmProcessTraversal(widget, forwards ? XmTRAVERSE_NEXT_TAB_GROUP : XmTRAVERSE_PREV_TAB_GROUP);
    set_current(view, -1);
}

void follow_action(Widget widget, XEvent* event, String*, Cardinal*) {
    HELP_VIEW* view = view_of(widget);
    if (view->current >= 0) {
        follow(view, view->current, event);
    }
}

void back_action(Widget widget, XEvent*, String*, Cardinal*) {
    const HELP_VIEW* view = view_of(widget);
    view->calls.back(view->calls.data);
}

void focus_event(Widget, XtPointer data, XEvent* event, Boolean*) {
    auto* view = static_cast<HELP_VIEW*>(data);
    view->focused = event->type == FocusIn;
    draw(view);
}

void destroy_cb(Widget, XtPointer data, XtPointer) {
    auto* view = static_cast<HELP_VIEW*>(data);
    Display* display = XtDisplay(view->text);
    for (GC gc : {view->plain, view->accent, view->inverse, view->edge}) {
        if (gc != nullptr) {
            XFreeGC(display, gc);
        }
    }
    if (view->hand != None) {
        XFreeCursor(display, view->hand);
    }
    help_free_layout(&view->layout);
    delete view;
}

constexpr const char* translations = R"(#override
<Btn1Down>: help_press()
<Btn1Up>: help_release()
<Motion>: help_motion()
<Btn4Down>: help_scroll(lines,-3)
<Btn5Down>: help_scroll(lines,3)
~s ~m ~a<Key>osfUp: help_scroll(lines,-1)
~s ~m ~a<Key>osfDown: help_scroll(lines,1)
<Key>osfPageUp: help_scroll(pages,-1)
<Key>osfPageDown: help_scroll(pages,1)
<Key>osfBeginLine: help_scroll(end,-1)
<Key>osfEndLine: help_scroll(end,1)
m<Key>osfLeft: help_back()
<Key>osfBackSpace: help_back()
s<Key>Tab: help_tab(-1)
~s<Key>Tab: help_tab(1)
<Key>osfActivate: help_follow()
<Key>Return: help_follow()
<Key>osfSelect: help_follow()
<Key>space: help_scroll(pages,1))";

void register_actions(XtAppContext app) {
    static XtAppContext registered = nullptr;
    static char names[][16] = {"help_press", "help_release", "help_motion", "help_scroll",
                               "help_tab",   "help_follow",  "help_back"};
    static XtActionsRec actions[] = {{names[0], press_action},  {names[1], release_action},
                                     {names[2], motion_action}, {names[3], scroll_action},
                                     {names[4], tab_action},    {names[5], follow_action},
                                     {names[6], back_action}};
    if (registered != app) {
        XtAppAddActions(app, actions, XtNumber(actions));
        registered = app;
    }
}

} // namespace

HELP_VIEW* help_create_view(Widget parent, const HELP_VIEW_CALLS& calls) {
    register_actions(XtWidgetToApplicationContext(parent));
    static const XtTranslations table = XtParseTranslationTable(translations);
    auto* view = new HELP_VIEW{};
    view->calls = calls;
    view->form = XtVaCreateWidget("helpView", xmFormWidgetClass, parent, XmNmarginWidth, 0,
                                  XmNmarginHeight, 0, XmNshadowThickness, 0, nullptr);
    view->bar = XtVaCreateManagedWidget(
        "helpScrollBar", xmScrollBarWidgetClass, view->form, XmNorientation, XmVERTICAL,
        XmNrightAttachment, XmATTACH_FORM, XmNtopAttachment, XmATTACH_FORM, XmNbottomAttachment,
        XmATTACH_FORM, XmNtraversalOn, False, nullptr);
    view->text = XtVaCreateManagedWidget(
        "helpText", xmDrawnButtonWidgetClass, view->form, XmNleftAttachment, XmATTACH_FORM,
        XmNtopAttachment, XmATTACH_FORM, XmNbottomAttachment, XmATTACH_FORM, XmNrightAttachment,
        XmATTACH_WIDGET, XmNrightWidget, view->bar, XmNnavigationType, XmTAB_GROUP,
        XmNpushButtonEnabled, False, XmNshadowThickness, 0, XmNrecomputeSize, False,
        XmNhighlightThickness, 0, XmNuserData, view, nullptr);
    XtOverrideTranslations(view->text, table); // over those that the toolkit has added by now
    XtAddCallback(view->bar, XmNvalueChangedCallback, bar_cb, view);
    XtAddCallback(view->bar, XmNdragCallback, bar_cb, view);
    XtAddCallback(view->text, XmNexposeCallback, expose_cb, view);
    XtAddCallback(view->text, XmNresizeCallback, resize_cb, view);
    XtAddCallback(view->text, XmNdestroyCallback, destroy_cb, view);
    XtAddEventHandler(view->text, FocusChangeMask, False, focus_event, view);
    XtManageChild(view->form);
    return view;
}

Widget help_view_widget(const HELP_VIEW* view) {
    return view->form;
}

Widget help_view_text(const HELP_VIEW* view) {
    return view->text;
}

void help_view_show(HELP_VIEW* view, const HELP_TOPIC& topic, int scroll) {
    view->topic = topic;
    view->scroll = scroll;
    view->current = -1;
    view->pressed = -1;
    lay_out(view);
    draw(view);
}

int help_view_scroll(const HELP_VIEW* view) {
    return view->scroll;
}

void help_view_size(HELP_VIEW* view, int columns, bool fixed, Dimension* width, int* height) {
    const int pixels = help_text_width(table_of(view), columns, fixed) + 2 * HELP_MARGIN;
    *width = static_cast<Dimension>(pixels);
    HELP_LAYOUT layout;
    help_lay_out(view->topic, table_of(view), pixels, &layout);
    *height = layout.height;
    help_free_layout(&layout);
}

int help_view_line_height(const HELP_VIEW* view) {
    return help_line_height(table_of(view));
}

bool help_view_link_at(const HELP_VIEW* view, const std::string& text, int* x, int* y) {
    for (const HELP_LINE& line : view->layout.lines) {
        for (const HELP_RUN& run : line.runs) {
            if (run.link < 0 ||
                view->layout.links[static_cast<std::size_t>(run.link)].text != text) {
                continue;
            }
            *x = run.x + run.width / 2;
            *y = line.y + line.height / 2 - view->scroll;
            return *y >= 0 && *y < view->height;
        }
    }
    return false;
}

std::string help_view_current_link(const HELP_VIEW* view) {
    return view->current >= 0 ? view->layout.links[static_cast<std::size_t>(view->current)].text
                              : "";
}
