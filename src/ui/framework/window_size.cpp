#include "ui/framework/helpers.h"
#include "ui/framework/widget_tree.h"

#include <algorithm>

namespace {

constexpr Dimension title_space = 6; // pixels around a pane's title

Dimension get(Widget widget, const char* resource) {
    Dimension value = 0;
    XtVaGetValues(widget, resource, &value, nullptr);
    return value;
}

XtWidgetGeometry preferred(Widget widget) {
    XtWidgetGeometry geometry{};
    XtQueryGeometry(widget, nullptr, &geometry);
    return geometry;
}

int pane_heights(Widget panes) {
    int height = 2 * get(panes, XmNmarginHeight);
    int count = 0;
    vga_for_each_child(panes, [&](Widget pane) {
        // The sashes and separators between the panes are children too.
        if (XtIsManaged(pane) && XmIsManager(pane)) {
            height += get(pane, XmNpaneMinimum);
            ++count;
        }
    });
    return height + std::max(count - 1, 0) * get(panes, XmNspacing);
}

} // namespace

void vga_set_minimum_height(Widget shell) {
    XtVaSetValues(shell, XmNminHeight, static_cast<int>(get(shell, XmNheight)), nullptr);
}

void vga_set_pane_height(Widget pane, Widget title) {
    XtVaSetValues(pane, XmNpaneMinimum, static_cast<Dimension>(get(title, XmNheight) + title_space),
                  nullptr);
}

void vga_set_toolbar_width(Widget shell, Widget tool_bar) {
    Widget menu_bar = nullptr;
    XtVaGetValues(XtParent(tool_bar), XmNmenuBar, &menu_bar, nullptr);
    Dimension width = preferred(tool_bar).width;
    if (menu_bar != nullptr) {
        width = std::max(width, preferred(menu_bar).width);
    }
    XtVaSetValues(shell, XmNminWidth, static_cast<int>(width), nullptr);
    if (get(shell, XmNwidth) < width) {
        XtVaSetValues(shell, XmNwidth, width, nullptr);
    }
}

void vga_set_window_height(Widget shell, Widget tool_bar, Widget message_bar, Widget panes) {
    const int height = get(shell, XmNheight);
    const int rest = height - get(tool_bar, XmNheight) - get(message_bar, XmNheight) -
                     get(panes, XmNheight); // menu bar and space between
    const int needed = std::max(rest, 0) + preferred(tool_bar).height +
                       preferred(message_bar).height + pane_heights(panes);
    if (height < needed) {
        XtVaSetValues(shell, XmNheight, static_cast<Dimension>(needed), nullptr);
    }
}
