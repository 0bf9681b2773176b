#include "ui/windows/window_parts.h"

#include "shell/messages.h"
#include "ui/framework/widget_tree.h"

#include <X11/Xatom.h>
#include <Xm/Label.h>

namespace {

constexpr int loading_title = 884;
constexpr int loading_help = 876;

} // namespace

void vga_paint_pane(Widget form, Pixel background, Pixel foreground, VGA_ICON icon, bool selected) {
    const auto paint = [&](Widget widget) {
        XmChangeColor(widget, selected ? gvga_selection : background);
        XtVaSetValues(widget, XmNforeground, selected ? gvga_list_background : foreground, nullptr);
    };
    paint(form);
    vga_for_each_child(form, [&](Widget child) {
        if (!XmIsLabel(child)) {
            return;
        }
        paint(child);
        unsigned char type = XmSTRING;
        XtVaGetValues(child, XmNlabelType, &type, nullptr);
        if (type == XmPIXMAP) {
            XtVaSetValues(child, XmNlabelPixmap,
                          selected ? gvga_inverted_pixmaps[icon] : gvga_pixmaps[icon], nullptr);
        }
    });
}

void vga_set_window_title(const vga_dialog* dialog, const char* title, const char* icon_name) {
    XtVaSetValues(dialog->shell, XmNtitle, title, XmNiconName, icon_name, nullptr);
}

void vga_set_first_size(const vga_dialog* dialog, int columns, int rows) {
    const int width = std::min(columns * gvga_metrics.char_width, WidthOfScreen(gvga_screen));
    const int height = std::min(rows * gvga_metrics.item_height, HeightOfScreen(gvga_screen));
    XtVaSetValues(dialog->shell, XmNwidth, static_cast<Dimension>(width), XmNheight,
                  static_cast<Dimension>(height), nullptr);
}

void vga_set_message_bar(Widget message_bar, const char* text) {
    XtVaSetValues(message_bar, XmNvalue, text, nullptr);
}

void vga_show_loading(vga_dialog* dialog, Widget message_bar) {
    vga_set_window_title(dialog, gvga_messages[loading_title], gvga_messages[loading_title]);
    vga_close_children(dialog, false, true);
    vga_set_message_bar(message_bar, gvga_messages[loading_help]);
    XtVaSetValues(message_bar, XmNeditable, False, nullptr);
    vga_set_sensitive(dialog->widget, false);
}

void vga_mark_window_ready(const vga_dialog* dialog) {
    XmUpdateDisplay(dialog->widget);
    Display* display = XtDisplay(dialog->shell);
    const long ready = 1;
    XChangeProperty(display, XtWindow(dialog->shell), XInternAtom(display, "_TESSALY_READY", False),
                    XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&ready), 1);
    XFlush(display);
}
