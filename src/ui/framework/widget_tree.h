// Walking widget trees the way forms are built: children, and the menus that cascade buttons and
// option menus post.
#pragma once

#include <Xm/XmAll.h>

inline unsigned char vga_row_column_type(Widget row_column) {
    unsigned char type = XmWORK_AREA;
    XtVaGetValues(row_column, XmNrowColumnType, &type, nullptr);
    return type;
}

// The menu pane a widget posts, or null.
inline Widget vga_submenu_of(Widget widget) {
    Widget menu = nullptr;
    if (XmIsCascadeButton(widget) || XmIsCascadeButtonGadget(widget) ||
        (XmIsRowColumn(widget) && vga_row_column_type(widget) == XmMENU_OPTION)) {
        XtVaGetValues(widget, XmNsubMenuId, &menu, nullptr);
    }
    return menu;
}

// Calls visit(child) for the children, without the menus. visit may destroy none of them.
template <typename Visit> void vga_for_each_child(Widget widget, Visit visit) {
    if (!XtIsComposite(widget)) {
        return;
    }
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(widget, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        visit(children[i]);
    }
}

// Calls visit(widget) for a widget and all below it. A menu that two widgets post comes twice.
template <typename Visit> void vga_for_each_below(Widget widget, Visit visit) {
    visit(widget);
    if (Widget menu = vga_submenu_of(widget)) {
        vga_for_each_below(menu, visit);
    }
    vga_for_each_child(widget, [&](Widget child) { vga_for_each_below(child, visit); });
}
