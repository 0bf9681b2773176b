#include "kit/pointer.h"

#include "shell/globals.h"

#include <X11/StringDefs.h>
#include <X11/extensions/XTest.h>

namespace kit {

bool point_at(Widget widget, int x, int y) {
    for (; !XtIsWidget(widget); widget = XtParent(widget)) { // a gadget lies in its parent's window
        Position left, top;
        XtVaGetValues(widget, XtNx, &left, XtNy, &top, nullptr);
        x += left;
        y += top;
    }
    if (!XtIsRealized(widget)) {
        return false;
    }
    Display* display = XtDisplay(widget);
    const Window root = DefaultRootWindow(display);
    int root_x, root_y, ignored;
    Window below;
    XTranslateCoordinates(display, XtWindow(widget), root, x, y, &root_x, &root_y, &below);
    XTestFakeMotionEvent(display, -1, root_x, root_y, CurrentTime);
    for (below = root; below != None && below != XtWindow(widget);) {
        XTranslateCoordinates(display, root, below, root_x, root_y, &ignored, &ignored, &below);
    }
    return below == XtWindow(widget);
}

bool point_at(Widget widget) {
    Dimension width, height;
    XtVaGetValues(widget, XtNwidth, &width, XtNheight, &height, nullptr);
    return point_at(widget, width / 2, height / 2);
}

Window focus_window() {
    Window window = None;
    int revert = 0;
    XGetInputFocus(gvga_display, &window, &revert);
    return window;
}

} // namespace kit
