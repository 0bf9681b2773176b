// The two help dialogs.
#pragma once

#include "help/help.h"
#include "topic.h"
#include "view.h"

struct HELP_DIALOG;

// The dialogs that are open.
std::vector<Widget> help_dialogs();
// What a dialog shows; null for a widget that is no help dialog.
HELP_DIALOG* help_dialog_of(Widget dialog);
const HELP_VIEW* help_dialog_view(const HELP_DIALOG* dialog);
const HELP_TOPIC& help_dialog_topic(const HELP_DIALOG* dialog);
const std::string& help_dialog_location(const HELP_DIALOG* dialog);
