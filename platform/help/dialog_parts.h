// The inside of a help dialog: its state, and what its widgets do.
#pragma once

#include "command.h"
#include "dialog.h"
#include "volume.h"

#include <array>

enum HELP_BUTTON { BACK, CONTENTS, INDEX, PRINT, MORE, CLOSE, HELP, BUTTON_COUNT };

struct HELP_BUTTON_ROW {
    const char* name;
    const char* label; // unless the application or a resource gives another
    bool quick, full;  // the dialogs that have it
    bool managed;
};
inline constexpr std::array<HELP_BUTTON_ROW, BUTTON_COUNT> help_button_rows = {{
    {"backButton", "Back", true, true, true},
    {"contentsButton", "Contents", false, true, true},
    {"indexButton", "Index", false, true, true},
    {"printButton", "Print", true, true, true},
    {"moreButton", "More...", true, false, false},
    {"closeButton", "Close", true, true, true},
    {"helpButton", "Help", true, false, true},
}};

struct HELP_PLACE { // what the Back button returns to
    std::string location;
    int scroll;
};

struct HELP_RESOURCES { // that users may set
    char* print_command;
    char* manual_command;
};

struct HELP_DIALOG {
    Widget form;
    bool full;
    std::string volume, location;
    HELP_TOPIC topic;
    std::vector<HELP_PLACE> history;
    HELP_VIEW* view;
    Widget list, list_title;
    std::vector<HELP_ENTRY> entries; // rows of the list
    std::array<Widget, BUTTON_COUNT> buttons;
    std::vector<XtCallbackRec> link_callbacks, close_callbacks;
    HELP_COMMAND* manual;   // the page that is being formatted
    HELP_COMMAND* printing; // what is being printed
    HELP_RESOURCES resources;
};

// Shows a topic; the way back is the caller's.
void help_show(HELP_DIALOG* dialog, const std::string& location, int scroll);
// Shows a manual page, once it is formatted.
void help_show_manual(HELP_DIALOG* dialog, const std::string& name);
// Lists the contents (CONTENTS) or all topics (INDEX).
void help_fill_list(HELP_DIALOG* dialog, HELP_BUTTON kind);

// ---- callbacks; the closure is the dialog ----
void help_follow(void* data, const HELP_LINK& link, XEvent* event);
void help_back(void* data);
void help_list_cb(Widget, XtPointer data, XtPointer call_data);
void help_back_cb(Widget, XtPointer data, XtPointer);
void help_contents_cb(Widget, XtPointer data, XtPointer);
void help_index_cb(Widget, XtPointer data, XtPointer);
void help_print_cb(Widget button, XtPointer data, XtPointer);
void help_full_close_cb(Widget, XtPointer data, XtPointer);
