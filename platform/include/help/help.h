// The interface of the desktop help library, as far as the tool uses it. Widgets come unmanaged,
// in a dialog shell of their own, like those of the toolkit's convenience functions; destroying one
// destroys its shell.
#pragma once

#include <Xm/Xm.h>

// Resources; they are read when a dialog is created.
#define DtNhelpVolume "helpVolume"               // String: name of the volume
#define DtNlocationId "locationId"               // String: the topic to show
#define DtNmanPage "manPage"                     // String: the manual page to show
#define DtNhelpType "helpType"                   // unsigned char: which of the two
#define DtNhyperLinkCallback "hyperLinkCallback" // XtCallbackList
#define DtNcloseCallback "closeCallback"         // XtCallbackList, of the full dialog

enum { // helpType
    DtHELP_TYPE_TOPIC = 0,
    DtHELP_TYPE_MAN_PAGE = 2,
};

enum { // reasons
    DtCR_HELP_LINK_ACTIVATE = 1,
    DtCR_HELP_CLOSE = 2,
};

enum { // kinds of hyperlinks
    DtHELP_LINK_JUMP = 0,
    DtHELP_LINK_MAN_PAGE = 3,
};

// Call data. A link that a dialog can follow itself, to a topic of its volume, is not reported: it
// is shown in the same window, with the way back.
struct DtHelpDialogCallbackStruct {
    int reason;
    XEvent* event;
    char* locationId;    // of a jump
    char* helpVolume;    // of a jump
    char* specification; // of a manual page: its name
    int hyperType;
};

enum { // children of the quick dialog
    DtHELP_QUICK_BACK_BUTTON,
    DtHELP_QUICK_PRINT_BUTTON,
    DtHELP_QUICK_MORE_BUTTON, // comes unmanaged, for what the application has more
    DtHELP_QUICK_CLOSE_BUTTON,
    DtHELP_QUICK_HELP_BUTTON,
};

extern "C" {
// A window for a whole volume: contents or index beside the text. Its index button is named
// "indexButton".
Widget DtCreateHelpDialog(Widget parent, char* name, ArgList args, Cardinal count);
// A small window for one topic. Closing it is up to the application (the close button's activate
// callback, which Escape and the window manager's close call too).
Widget DtCreateHelpQuickDialog(Widget parent, char* name, ArgList args, Cardinal count);
// A child of the quick dialog; null when there is no such child.
Widget DtHelpQuickDialogGetChild(Widget dialog, unsigned char child);
}
