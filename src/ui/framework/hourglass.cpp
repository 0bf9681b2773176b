#include "shell/globals.h"
#include "shell/graphics.h"
#include "ui/framework/dialog.h"

#include <Mrm/MrmPublic.h>

#include <initializer_list>

namespace {

struct SHAPE {
    const char *icon, *mask;
    unsigned size, hot_spot; // pixels
};
constexpr SHAPE large_shape = {"hourg32_icon", "hourg32m_icon", 32, 15};
constexpr SHAPE small_shape = {"hourg16_icon", "hourg16m_icon", 16, 7};

// Made at the first use; a display for which that failed keeps its pointer.
struct BUSY_CURSOR {
    Display* display;
    Cursor cursor;
};
BUSY_CURSOR busy;

const SHAPE& choose_shape() {
    unsigned width = 0;
    unsigned height = 0;
    XQueryBestCursor(gvga_display, gvga_root_window, large_shape.size, large_shape.size, &width,
                     &height);
    return width >= large_shape.size && height >= large_shape.size ? large_shape : small_shape;
}

Pixmap fetch(MrmHierarchy file, const char* name) {
    Pixmap pixmap = None;
    Dimension width;
    Dimension height;
    if (MrmFetchBitmapLiteral(file, const_cast<char*>(name), gvga_screen, gvga_display, &pixmap,
                              &width, &height) != MrmSUCCESS) {
        return None;
    }
    return pixmap;
}

XColor colour_of(Pixel pixel) {
    XColor colour{};
    colour.pixel = pixel;
    XQueryColor(gvga_display, DefaultColormapOfScreen(gvga_screen), &colour);
    return colour;
}

Cursor make_cursor() {
    char name[] = "cursor.uid";
    char* names[] = {name};
    MrmHierarchy file = nullptr;
    if (MrmOpenHierarchyPerDisplay(gvga_display, 1, names, nullptr, &file) != MrmSUCCESS) {
        return None;
    }
    const SHAPE& shape = choose_shape();
    const Pixmap icon = fetch(file, shape.icon);
    const Pixmap mask = fetch(file, shape.mask);
    Cursor cursor = None;
    if (icon != None && mask != None) {
        XColor black = colour_of(BlackPixelOfScreen(gvga_screen));
        XColor white = colour_of(WhitePixelOfScreen(gvga_screen));
        cursor = XCreatePixmapCursor(gvga_display, icon, mask, &black, &white, shape.hot_spot,
                                     shape.hot_spot);
    }
    for (const Pixmap pixmap : {icon, mask}) {
        if (pixmap != None) {
            XFreePixmap(gvga_display, pixmap);
        }
    }
    MrmCloseHierarchy(file);
    return cursor;
}

void set_cursor(Widget shell, bool on) {
    if (!XtIsRealized(shell)) {
        return;
    }
    if (on) {
        XDefineCursor(gvga_display, XtWindow(shell), busy.cursor);
    } else {
        XUndefineCursor(gvga_display, XtWindow(shell));
    }
}

} // namespace

void vga_display_hourglass(bool on) {
    if (busy.display != gvga_display) {
        const XtErrorHandler handler = XtAppSetWarningHandler(gvga_appcontext, vga_no_warning);
        busy = {gvga_display, make_cursor()};
        XtAppSetWarningHandler(gvga_appcontext, handler);
    }
    if (busy.cursor == None) {
        return;
    }
    vga_for_each_open_dialog([on](vga_dialog* dialog) {
        set_cursor(dialog->shell, on);
        if (dialog->modal_dlg.open) {
            set_cursor(dialog->modal_dlg.shell, on);
        }
    });
    XFlush(gvga_display);
}
