// The icon that the window manager shows for a window.
#include "ui/framework/helpers.h"

#include "shell/globals.h"
#include "shell/graphics.h"
#include "ui/framework/dialog.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <Xm/Xm.h>

#include <memory>
#include <vector>

namespace {

struct FREE_IMAGE {
    void operator()(XImage* image) const { XDestroyImage(image); }
};

struct SIZE {
    unsigned width, height;
};

SIZE size_of(Pixmap pixmap) {
    Window root = None;
    int x = 0;
    int y = 0;
    unsigned border = 0;
    unsigned depth = 0;
    SIZE size = {};
    XGetGeometry(gvga_display, pixmap, &root, &x, &y, &size.width, &size.height, &border, &depth);
    return size;
}

// Width, height and then each pixel as alpha, red, green and blue, as _NET_WM_ICON has them. What
// has the windows' colour is the ground behind the drawing, hence transparent.
std::vector<unsigned long> argb_of(Pixmap pixmap) {
    const auto [width, height] = size_of(pixmap);
    const std::unique_ptr<XImage, FREE_IMAGE> image{
        XGetImage(gvga_display, pixmap, 0, 0, width, height, AllPlanes, ZPixmap)};
    if (image == nullptr) {
        return {};
    }
    std::vector<XColor> colours(std::size_t{width} * height);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        colours[i].pixel =
            XGetPixel(image.get(), static_cast<int>(i % width), static_cast<int>(i / width));
    }
    Colormap colour_map = 0;
    XtVaGetValues(gvga_toplevel, XmNcolormap, &colour_map, nullptr);
    XQueryColors(gvga_display, colour_map, colours.data(), static_cast<int>(colours.size()));
    std::vector<unsigned long> argb = {width, height};
    for (const XColor& colour : colours) {
        const unsigned long red = colour.red >> 8;
        const unsigned long green = colour.green >> 8;
        const unsigned long blue = colour.blue >> 8;
        argb.push_back(
            colour.pixel == gvga_background ? 0 : 0xFF00'0000UL | red << 16 | green << 8 | blue);
    }
    return argb;
}

// The window that a dialog belongs to decides.
VGA_SYMBOL symbol_of(const vga_dialog* dialog) {
    while (gvga_uid_desc[dialog->dialog_id].kind != VGA_KIND_WINDOW && dialog->parent != nullptr) {
        dialog = dialog->parent;
    }
    return dialog->dialog_id == VGA_UID_SYSTEM_WINDOW ? VGA_SYMBOL_SYSTEM_WINDOW
                                                      : VGA_SYMBOL_NODE_WINDOW;
}

} // namespace

void vga_set_window_icon(const vga_dialog* dialog, Widget shell) {
    const Pixmap pixmap = gvga_symbols[symbol_of(dialog)];
    Pixmap shown = None;
    XtVaGetValues(shell, XmNiconPixmap, &shown, nullptr);
    if (pixmap == None || shown == pixmap || !XtIsRealized(shell)) {
        return;
    }
    XtVaSetValues(shell, XmNiconPixmap, pixmap, nullptr);
    const std::vector<unsigned long> argb = argb_of(pixmap);
    XChangeProperty(gvga_display, XtWindow(shell), XInternAtom(gvga_display, "_NET_WM_ICON", False),
                    XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(argb.data()),
                    static_cast<int>(argb.size()));
}
