// The pointer and the keyboard as the X server and the window manager have them.
#pragma once

#include <X11/Intrinsic.h>

namespace kit {

// Moves the pointer to a place in a widget. False when something else lies there: a new window is
// not where it will be until the window manager has placed it.
bool point_at(Widget widget, int x, int y);
bool point_at(Widget widget); // its middle

// The window that has the keyboard. The window manager gives it to a new window in its own time.
Window focus_window();

} // namespace kit
