// Runs a shell command beside the event loop.
#pragma once

#include <X11/Intrinsic.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

struct HELP_COMMAND;

// Starts a command with a text as its standard input; done is called once, from the event loop,
// with the exit status (127 when it cannot be run) and what it wrote to both outputs. The command
// finds the variables in its environment. The result is valid until done is called; null when
// nothing can be started, and done is then not called.
HELP_COMMAND* help_run(XtAppContext app, const std::string& command,
                       const std::vector<std::pair<std::string, std::string>>& variables,
                       const std::string& input,
                       std::function<void(int status, const std::string& output)> done);
// Ends it; done is not called.
void help_cancel(HELP_COMMAND* command);
