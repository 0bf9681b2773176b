// Help windows: topics and manual pages in windows of the desktop help library. The callbacks that
// forms name are declared in ui/framework/common_actions.h.
#pragma once

#include "nba/nba.h"

#include <X11/Intrinsic.h>

enum VGA_HELP_KIND : NB_LONG { VGA_HELP_TOPIC = 0, VGA_HELP_MAN_PAGE = 2 };

// Opens a help window for the dialog that a widget belongs to; it goes when that dialog closes.
// volume: null is the console's own. location: the topic, or the name of the manual page. full: a
// window with contents and index, otherwise a small one. The result is the help dialog.
Widget vga_display_help_topic(Widget widget, const char* volume, const char* location, bool full,
                              NB_LONG kind);
// Links out of a help window (call_data: a DtHelpDialogCallbackStruct).
void vga_help_hyper_cb(Widget widget, XtPointer, XtPointer call_data);
