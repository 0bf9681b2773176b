// A topic as a scrolled text: words wrapped to the width, links that are clicked or reached with
// the Tab key. The arrow and page keys scroll; Return follows the link that has the keyboard.
#pragma once

#include "topic.h"

#include <Xm/Xm.h>

struct HELP_VIEW;

struct HELP_VIEW_CALLS { // data is the first argument of each
    void (*follow)(void* data, const HELP_LINK& link, XEvent* event);
    void (*back)(void* data); // Backspace, and Alt with the left arrow
    void* data;
};

// The view lives as long as its widget. Fonts and colours are resources of "helpText", an
// XmDrawnButton: renditions "labels" for text, "strong" for titles, "fields" for manual pages;
// links have its highlight colour.
HELP_VIEW* help_create_view(Widget parent, const HELP_VIEW_CALLS& calls);
Widget help_view_widget(const HELP_VIEW* view); // the text with its scroll bar
Widget help_view_text(const HELP_VIEW* view);   // the text
void help_view_show(HELP_VIEW* view, const HELP_TOPIC& topic, int scroll);
int help_view_scroll(const HELP_VIEW* view); // pixels above what shows
// Size of the text widget for lines of a number of characters; the height is what the topic takes.
void help_view_size(HELP_VIEW* view, int columns, bool fixed, Dimension* width, int* height);
int help_view_line_height(const HELP_VIEW* view);
// Where a link with that text shows, in the text widget; false when it is not to be seen.
bool help_view_link_at(const HELP_VIEW* view, const std::string& text, int* x, int* y);
// Text of the link that has the keyboard, or "".
std::string help_view_current_link(const HELP_VIEW* view);
