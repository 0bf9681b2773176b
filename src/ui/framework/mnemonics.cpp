// Mnemonics of dialogs. The toolkit knows them in menus only: it underlines them elsewhere, and
// does nothing.
#include "ui/framework/helpers.h"
#include "ui/framework/widget_tree.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace {

constexpr unsigned locks[] = {0, LockMask, Mod2Mask, LockMask | Mod2Mask}; // they do not matter

KeySym mnemonic_of(Widget widget) {
    KeySym mnemonic = NoSymbol;
    if (XmIsLabel(widget)) {
        XtVaGetValues(widget, XmNmnemonic, &mnemonic, nullptr);
    }
    return mnemonic != XK_VoidSymbol ? mnemonic : KeySym{NoSymbol}; // the toolkit's "none"
}

// Calls use(widget) for what has a mnemonic and stands in the dialog itself, not in a menu.
template <typename Use> void for_each_mnemonic(Widget widget, Use use) {
    if (mnemonic_of(widget) != NoSymbol) {
        use(widget);
    }
    vga_for_each_child(widget, [&](Widget child) { for_each_mnemonic(child, use); });
}

// The widget behind a label in its row, or null.
Widget field_behind(Widget label) {
    Widget found = nullptr;
    bool passed = false;
    vga_for_each_child(XtParent(label), [&](Widget child) {
        if (passed && found == nullptr) {
            found = child;
        }
        passed |= child == label;
    });
    return found;
}

// Gives the focus to a field, or to the first in a box of fields.
bool focus(Widget field) {
    if (!XtIsComposite(field) || vga_submenu_of(field) != nullptr) {
        return XmProcessTraversal(field, XmTRAVERSE_CURRENT);
    }
    bool done = false;
    vga_for_each_child(field, [&](Widget child) { done = done || focus(child); });
    return done;
}

void activate(Widget widget, XEvent* event) {
    if (XtClass(widget) == xmLabelWidgetClass) {
        if (Widget field = field_behind(widget)) {
            focus(field);
        }
        return;
    }
    XmProcessTraversal(widget, XmTRAVERSE_CURRENT);
    static char action[] = "ArmAndActivate";
    XtCallActionProc(widget, action, event, nullptr, 0);
}

bool is_usable(Widget widget) {
    return XtIsSensitive(widget) && XtIsManaged(widget) && XtIsManaged(XtParent(widget));
}

void key_pressed(Widget top, XtPointer, XEvent* event, Boolean*) {
    if (event->type != KeyPress || (event->xkey.state & Mod1Mask) == 0) {
        return;
    }
    // Xt ends the grab at the key's release, which may go to no window of ours when another one has
    // got the focus by then: it would keep all keys after this one from the mnemonics.
    XtUngrabKeyboard(top, event->xkey.time);
    KeySym lower = NoSymbol;
    KeySym upper = NoSymbol;
    XConvertCase(XLookupKeysym(&event->xkey, 0), &lower, &upper);
    Widget found = nullptr;
    for_each_mnemonic(top, [&](Widget widget) {
        const KeySym mnemonic = mnemonic_of(widget);
        if ((mnemonic == lower || mnemonic == upper) && is_usable(widget)) {
            found = widget;
        }
    });
    if (found != nullptr) {
        activate(found, event);
    }
}

} // namespace

void vga_install_mnemonics(Widget top) {
    bool any = false;
    for_each_mnemonic(top, [&](Widget widget) {
        const KeyCode key = XKeysymToKeycode(XtDisplay(top), mnemonic_of(widget));
        if (key == 0) { // which would grab every key
            return;
        }
        any = true;
        for (const unsigned lock : locks) {
            XtGrabKey(top, key, Mod1Mask | lock, True, GrabModeAsync, GrabModeAsync);
        }
    });
    if (any) {
        XtAddEventHandler(top, KeyPressMask, False, key_pressed, nullptr);
    }
}
