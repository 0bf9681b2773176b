#include "kit/pointer.h"

#include "shell/globals.h"

#include <X11/StringDefs.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <chrono>
#include <utility>

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

void press_button(bool down, unsigned button) {
    XTestFakeButtonEvent(gvga_display, button, down, CurrentTime);
}

static void fake_key(KeySym key, bool down) {
    XTestFakeKeyEvent(gvga_display, XKeysymToKeycode(gvga_display, key), down, CurrentTime);
}

void hold(unsigned modifiers, bool down) {
    for (const auto& [mask, key] : {std::pair<unsigned, KeySym>{ShiftMask, XK_Shift_L},
                                    {ControlMask, XK_Control_L},
                                    {Mod1Mask, XK_Alt_L}}) {
        if ((modifiers & mask) != 0) {
            fake_key(key, down);
        }
    }
}

void strike(KeySym key, unsigned modifiers) {
    hold(modifiers, true);
    fake_key(key, true);
    fake_key(key, false);
    hold(modifiers, false);
}

bool pump_until(const std::function<bool()>& condition, int milliseconds) {
    using CLOCK = std::chrono::steady_clock;
    const auto deadline = CLOCK::now() + std::chrono::milliseconds(milliseconds);
    while (!condition()) {
        if (CLOCK::now() > deadline) {
            return false;
        }
        bool late = false; // wakes a loop without events
        const XtIntervalId timer = XtAppAddTimeOut(
            gvga_appcontext, 20,
            [](XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; }, &late);
        XtAppProcessEvent(gvga_appcontext, XtIMAll);
        if (!late) {
            XtRemoveTimeOut(timer);
        }
    }
    return true;
}

std::string plain(XmString text) {
    auto* unparsed = static_cast<char*>(
        XmStringUnparse(text, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    const std::string result = unparsed != nullptr ? unparsed : "";
    XtFree(unparsed);
    XmStringFree(text);
    return result;
}

} // namespace kit
