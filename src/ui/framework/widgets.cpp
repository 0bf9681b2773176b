#include "shell/globals.h"
#include "shell/graphics.h"
#include "ui/framework/dialog.h"
#include "ui/framework/widget_tree.h"

#include <string>
#include <vector>

namespace {

bool is_descriptor(const void* pointer) {
    bool found = false;
    vga_for_each_open_dialog([&](const vga_dialog* dialog) { found |= dialog == pointer; });
    return found;
}

// Halves a dimension of a widget that has it.
void halve(Widget widget, const char* resource) {
    Dimension value = 0;
    XtVaGetValues(widget, resource, &value, nullptr);
    XtVaSetValues(widget, resource, static_cast<Dimension>(value / 2), nullptr);
}

bool holds_forms(Widget widget) {
    bool found = false;
    vga_for_each_below(widget, [&](Widget each) { found |= XmIsForm(each); });
    return found;
}

} // namespace

Widget vga_name_widget(Widget widget, const char* name, const char* prefix) {
    const std::string path = std::string("*") + (prefix != nullptr ? prefix : "") + name;
    return XtNameToWidget(widget, path.c_str());
}

Widget vga_put_widget_context(vga_dialog* dialog, const char* name) {
    return vga_put_widget_context_prefix(dialog, name, nullptr);
}

Widget vga_put_widget_context_prefix(vga_dialog* dialog, const char* name, const char* prefix) {
    Widget this_widget = vga_name_widget(dialog->widget, name, prefix);
    if (VGA_ASSERT_TEXT(this_widget != nullptr, "this_widget != NULL")) {
        XtVaSetValues(this_widget, XmNuserData, dialog, nullptr);
    }
    return this_widget;
}

void vga_put_widget_pixmap(Widget widget, int icon) {
    XtVaSetValues(widget, XmNlabelType, XmPIXMAP, XmNlabelPixmap, gvga_pixmaps[icon], nullptr);
}

vga_dialog* vga_dialog_of(Widget widget) {
    for (; widget != nullptr; widget = XtParent(widget)) {
        XtPointer data = nullptr;
        XtVaGetValues(widget, XmNuserData, &data, nullptr);
        if (data != nullptr && is_descriptor(data)) {
            return static_cast<vga_dialog*>(data);
        }
    }
    return nullptr;
}

void vga_set_colours(Widget widget, Pixel background, Pixel foreground) {
    vga_for_each_below(widget, [=](Widget each) {
        XmChangeColor(each, background);
        XtVaSetValues(each, XmNforeground, foreground, nullptr);
        if (XmIsToggleButton(each) || XmIsToggleButtonGadget(each)) {
            XtVaSetValues(each, XtVaTypedArg, XmNselectColor, XtRString, "red", sizeof "red",
                          nullptr);
        }
    });
}

void vga_set_tool_colours(Widget widget) {
    if (gvga_background == gvga_foreground) {
        return; // the first window's widgets make the graphics
    }
    // Fields, lists, scroll bars and the marks of toggles keep theirs.
    struct KEPT {
        Widget widget;
        const char* resource;
        Pixel colour;
    };
    std::vector<KEPT> kept;
    vga_for_each_below(widget, [&](Widget each) {
        const auto keep = [&](const char* resource) {
            Pixel colour = 0;
            XtVaGetValues(each, resource, &colour, nullptr);
            kept.push_back({each, resource, colour});
        };
        if (XmIsText(each) || XmIsTextField(each) || XmIsList(each) || XmIsDrawnButton(each)) {
            keep(XmNbackground);
        } else if (XmIsScrollBar(each)) {
            for (const char* resource :
                 {XmNbackground, XmNtroughColor, XmNtopShadowColor, XmNbottomShadowColor}) {
                keep(resource);
            }
        } else if (XmIsToggleButton(each)) {
            keep(XmNselectColor);
            keep(XmNunselectColor);
        }
    });
    vga_set_colours(widget, gvga_background, gvga_foreground);
    for (const KEPT& each : kept) {
        XtVaSetValues(each.widget, each.resource, each.colour, nullptr);
    }
    vga_for_each_below(widget, [](Widget each) { // the focus, which took the foreground
        if (XmIsPrimitive(each) || XmIsManager(each)) {
            XtVaSetValues(each, XmNhighlightColor, gvga_selection, nullptr);
        }
    });
}

void vga_multi_byte_resize(Widget widget) {
    vga_for_each_below(widget, [](Widget each) {
        if (XmIsRowColumn(each)) {
            // It would lay forms out by the size they have, which is none before they are realized.
            if (!holds_forms(each)) {
                halve(each, XmNspacing);
                halve(each, XmNmarginHeight);
            }
        } else if (XmIsBulletinBoard(each)) { // forms and message boxes
            halve(each, XmNmarginHeight);
        } else if (XmIsText(each) || XmIsTextField(each) || XmIsLabel(each)) {
            halve(each, XmNmarginHeight);
        }
    });
}

void vga_fit_fields(Widget widget) {
    vga_for_each_below(widget, [](Widget each) {
        if (!XmIsTextField(each)) {
            return;
        }
        short columns = 0;
        XmRenderTable table = nullptr;
        Dimension width = 0;
        Dimension margin = 0;
        Dimension shadow = 0;
        Dimension highlight = 0;
        XtVaGetValues(each, XmNcolumns, &columns, XmNrenderTable, &table, XmNwidth, &width,
                      XmNmarginWidth, &margin, XmNshadowThickness, &shadow, XmNhighlightThickness,
                      &highlight, nullptr);
        std::string widest(static_cast<std::size_t>(columns), '0');
        XmString text = XmStringCreateLocalized(widest.data());
        const int needed = XmStringWidth(table, text) + 2 * (margin + shadow + highlight);
        XmStringFree(text);
        if (width < needed) {
            XtVaSetValues(each, XmNwidth, static_cast<Dimension>(needed), nullptr);
        }
    });
}

void vga_remove_scrollbars(Widget scrolled_window) {
    for (const char* resource : {XmNhorizontalScrollBar, XmNverticalScrollBar}) {
        Widget bar = nullptr;
        XtVaGetValues(scrolled_window, resource, &bar, nullptr);
        if (bar != nullptr) {
            vga_release_held_widget(bar);
            XtUnmanageChild(bar);
        }
    }
}
