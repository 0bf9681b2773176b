// The whole console in the test's process, driven through the real X server: start it, wait, press
// keys and buttons, read rows and messages. One console per process: every test of folder tool runs
// in a process of its own.
#pragma once

#include "kit/service.h"

#include "shell/start.h"
#include "ui/viewer/viewer.h"

#include <X11/keysym.h>

#include <functional>
#include <set>

namespace kit {

class CONSOLE {
public:
    // Starts the program against a service; it builds the node as the event loop is pumped.
    explicit CONSOLE(const SERVICE& service, const std::vector<std::string>& options = {});
    ~CONSOLE(); // ends the run when the test did not
    CONSOLE(const CONSOLE&) = delete;
    CONSOLE& operator=(const CONSOLE&) = delete;

    bool started() const { return started_; }
    // Pumps the event loop until the condition holds, the program ends, or the deadline passes;
    // whether it holds.
    bool wait(const std::function<bool()>& condition, int milliseconds = 20'000);
    // Until the node is built and its window is shown.
    bool wait_built();
    // Until no verb is outstanding and no event waits.
    bool wait_idle();
    // The exit path; the program's status. Closes everything. A fatal message is acknowledged;
    // *message gets its text.
    int end(std::string* message = nullptr);

    Widget widget(const std::string& name); // of any open window or dialog; null when there is none
    void click(Widget widget, int x, int y, unsigned modifiers = 0, int count = 1);
    void click(Widget widget); // its middle
    void press(Widget widget, int x, int y);
    void release();
    // A key, when the window manager has given the keyboard to the newest window.
    void key(KeySym key, unsigned modifiers = 0);
    // A key without waiting until the program has dealt with it, which it cannot while the node
    // holds a verb.
    void strike(KeySym key, unsigned modifiers = 0);

    // The rows of a list as shown: indented by their level, with column markers as blanks.
    static std::vector<std::string> rows(vga_viewer_root& root, bool collapsed_too = false);
    // Clicks a row whose text contains a part.
    bool click_row(vga_viewer_root& root, const std::string& part, unsigned modifiers = 0,
                   int count = 1);
    // The text of the message box that shows, or "".
    static std::string message();
    // Answers the message box: "OK", "Cancel", "confirmOKToAllButton", "confirmNoButton".
    bool answer(const std::string& button);

private:
    void move_to(Widget widget, int x, int y);
    void note_windows();
    bool wait_keyboard();
    std::set<Window> windows_;     // of the dialogs and boxes, when last looked at
    std::set<Window> new_windows_; // those of which none has had the keyboard yet
    VGA_RUN run_{};
    std::vector<std::string> arguments_;
    bool started_ = false;
    bool ended_ = false;
};

} // namespace kit
