// What the node window and the system window share: finding their widgets, the tools of their tool
// bars, the message bar, title and size. A window is a descriptor with a vga_dialog `common`.
#pragma once

#include "common/assert.h"
#include "shell/globals.h"
#include "shell/graphics.h"
#include "ui/framework/dialog.h"
#include "ui/viewer/viewer_type.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

// ---- widgets ----

template <typename WINDOW> struct VGA_WIDGET_ROW {
    Widget WINDOW::*field;
    const char* name;
    const char* missing; // the invariant that it exists
};

// Looks up the widgets of a window's fields, and others by their names alone; each gets to know its
// window (XmNuserData). False when one is missing.
template <typename WINDOW, typename FIELDS, typename NAMES>
bool vga_find_widgets(WINDOW* window, const FIELDS& fields, const NAMES& others) {
    bool complete = true;
    for (const VGA_WIDGET_ROW<WINDOW>& row : fields) {
        Widget widget = XtNameToWidget(window->common.widget, row.name);
        window->*row.field = widget;
        if (VGA_ASSERT_TEXT(widget != nullptr, row.missing)) {
            XtVaSetValues(widget, XmNuserData, window, nullptr);
        } else {
            complete = false;
        }
    }
    for (const char* name : others) {
        complete &= vga_put_widget_context(&window->common, name) != nullptr;
    }
    return complete;
}

struct VGA_MENU_ITEM {
    const char* name;
    bool offered;
};
// Takes the menu items away that this system does not offer.
template <typename ITEMS> void vga_remove_menu_items(const vga_dialog* dialog, const ITEMS& items) {
    for (const VGA_MENU_ITEM& item : items) {
        if (!item.offered) {
            XtUnmanageChild(vga_name_widget(dialog->widget, item.name, nullptr));
        }
    }
}

// ---- tools ----

template <typename WINDOW> struct VGA_TOOL {
    Widget WINDOW::*frame;
    Widget WINDOW::*icon;
    Widget WINDOW::*menu_item; // does the same
    VGA_ICON normal, insensitive;
};

template <typename WINDOW, typename TOOLS>
void vga_put_tool_pixmaps(const WINDOW* window, const TOOLS& tools) {
    for (const VGA_TOOL<WINDOW>& tool : tools) {
        vga_put_widget_pixmap(window->*tool.icon, tool.normal);
        XtVaSetValues(window->*tool.icon, XmNlabelInsensitivePixmap, gvga_pixmaps[tool.insensitive],
                      nullptr);
    }
}

// states: sensitivity, in the order of the tools.
template <typename WINDOW, typename TOOLS, typename STATES>
void vga_set_tools(const WINDOW* window, const TOOLS& tools, const STATES& states) {
    for (std::size_t i = 0; i < tools.size(); ++i) {
        vga_set_sensitive(window->*tools[i].frame, states[i]);
        vga_set_sensitive(window->*tools[i].menu_item, states[i]);
    }
}

// The index of the tool whose frame or icon a widget is, or -1.
template <typename WINDOW, typename TOOLS>
int vga_tool_index(const WINDOW* window, const TOOLS& tools, Widget widget) {
    const auto tool = std::ranges::find_if(tools, [&](const VGA_TOOL<WINDOW>& each) {
        return window->*each.icon == widget || window->*each.frame == widget;
    });
    return tool != std::end(tools) ? static_cast<int>(tool - std::begin(tools)) : -1;
}

// True when the tool under the pointer has become insensitive: it gets no leave event any more, so
// its help is to be taken back.
template <typename WINDOW, typename TOOLS>
bool vga_lost_current_tool(const WINDOW* window, const TOOLS& tools) {
    if (gvga_current_button == nullptr || XtIsSensitive(gvga_current_button) ||
        vga_tool_index(window, tools, gvga_current_button) < 0) {
        return false;
    }
    gvga_current_button = nullptr;
    return true;
}

// ---- panes ----

// Shows a form and the labels that stand in it in the colours given, or, selected, in those of a
// selection. icon: what its pixmap label shows.
void vga_paint_pane(Widget form, Pixel background, Pixel foreground, VGA_ICON icon, bool selected);

// ---- title, size, message bar ----

void vga_set_window_title(const vga_dialog* dialog, const char* title, const char* icon_name);
// Before the window is realized: in characters and rows of its lists, at most the whole screen.
void vga_set_first_size(const vga_dialog* dialog, int columns, int rows);
void vga_set_message_bar(Widget message_bar, const char* text);
// The window that waits while the store is filled: insensitive, and its bar says why. The operator
// cannot type into the bar, now or later.
void vga_show_loading(vga_dialog* dialog, Widget message_bar);
// Lets other programs see that the window shows what it was opened for.
void vga_mark_window_ready(const vga_dialog* dialog);
