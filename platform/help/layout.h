// Breaks a topic into lines of words.
#pragma once

#include "topic.h"

#include <Xm/Xm.h>

struct HELP_RUN { // words of one look in one line
    XmString string;
    int x, width;
    int link; // index of the link, or -1
};

struct HELP_LINE {
    int y, height, baseline;
    HELP_BLOCK_KIND kind;
    bool first; // of its block
    std::vector<HELP_RUN> runs;
};

struct HELP_LINK_TEXT {
    HELP_LINK link;
    std::string text;
};

struct HELP_LAYOUT {
    std::vector<HELP_LINE> lines;
    std::vector<HELP_LINK_TEXT> links; // in reading order
    int height = 0;
};

inline constexpr int HELP_MARGIN = 12; // around the text
inline constexpr int HELP_INDENT = 16; // of items

// Replaces a layout. A word wider than the width has a line of its own.
void help_lay_out(const HELP_TOPIC& topic, XmRenderTable table, int width, HELP_LAYOUT* layout);
void help_free_layout(HELP_LAYOUT* layout);
// Width of the widest character row of so many characters, and the height of a line.
int help_text_width(XmRenderTable table, int columns, bool fixed);
int help_line_height(XmRenderTable table);
// A text in one of the renditions "labels", "strong", "fields". Freed by the caller.
XmString help_string(const std::string& text, const char* rendition);
// The same in the font of the widget, with line breaks.
XmString help_label(const std::string& text);
