// The pointer and the keyboard as the X server and the window manager have them, and an event loop
// with a deadline.
#pragma once

#include <Xm/Xm.h>

#include <functional>
#include <string>

namespace kit {

// Moves the pointer to a place in a widget. False when something else lies there: a new window is
// not where it will be until the window manager has placed it.
bool point_at(Widget widget, int x, int y);
bool point_at(Widget widget); // its middle

// The window that has the keyboard. The window manager gives it to a new window in its own time.
Window focus_window();

// Real input; whoever expects something of it handles events. Modifiers are ShiftMask, ControlMask
// and Mod1Mask.
void press_button(bool down, unsigned button = 1);
void hold(unsigned modifiers, bool down);
void strike(KeySym key, unsigned modifiers = 0);

// Handles events until the condition holds; whether it does before the deadline.
bool pump_until(const std::function<bool()>& condition, int milliseconds = 10'000);

// The text of a compound string, which is freed.
std::string plain(XmString text);

} // namespace kit
