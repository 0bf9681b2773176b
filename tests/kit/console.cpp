#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "kit/pointer.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "ui/framework/dialog.h"
#include "ui/viewer/viewer_type.h"

#include <Xm/MessageB.h>
#include <Xm/Xm.h>

#include <algorithm>
#include <chrono>

namespace kit {

namespace {

using CLOCK = std::chrono::steady_clock;

template <typename FUNCTION> void each_dialog(FUNCTION function) {
    for (NBA_QUEUE& head : gvga_uid_instances) {
        for (NBA_QUEUE* link = head.next; link != nullptr && link->owner != nullptr;
             link = link->next) {
            auto* dialog = static_cast<vga_dialog*>(link->owner);
            if (dialog->open) {
                function(*dialog);
            }
        }
    }
}

vga_dialog* dialog_with_box() {
    vga_dialog* found = nullptr;
    each_dialog([&](vga_dialog& dialog) {
        if (dialog.modal_dlg.open) {
            found = &dialog;
        }
    });
    return found;
}

void collect(const NTL_AVL_TREE& items, int depth, bool collapsed_too,
             std::vector<std::string>& rows) {
    for (auto* row = ntl_avl_last<vga_viewer>(items); row != nullptr;
         row = static_cast<vga_viewer*>(ntl_avl_prev(&row->node))) {
        char text[VGA_VIEWER_MAX_TEXT_LENGTH + 1] = "";
        char line[4 * VGA_VIEWER_MAX_TEXT_LENGTH];
        if (const auto create = gvga_viewer_desc[row->type].create_text; create != nullptr) {
            create(row->data, text);
        }
        vga_tab_msg(line, text);
        std::string shown = std::string(static_cast<std::size_t>(2 * depth), ' ') + line;
        shown.erase(shown.find_last_not_of(' ') + 1);
        rows.push_back(shown);
        if (row->expanded || collapsed_too) {
            collect(row->children, depth + 1, collapsed_too, rows);
        }
    }
}

// The exit path shows a fatal code in a loop of its own, which only a timer reaches.
std::string fatal_message;
XtIntervalId acknowledge_timer;

void acknowledge(XtPointer, XtIntervalId*) {
    if (const vga_dialog* dialog = dialog_with_box();
        dialog != nullptr && XtIsManaged(dialog->modal_dlg.dialog)) {
        fatal_message = CONSOLE::message();
        XmAnyCallbackStruct call{XmCR_OK, nullptr};
        XtCallCallbacks(dialog->modal_dlg.dialog, XmNokCallback, &call);
    }
    acknowledge_timer = XtAppAddTimeOut(gvga_appcontext, 10, acknowledge, nullptr);
}

} // namespace

CONSOLE::CONSOLE(const SERVICE& service, const std::vector<std::string>& options)
    : arguments_{"tessaly"} {
    for (const auto& [name, value] : data_environment()) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    setenv("TESSALY_NODE_SOCKET", service.socket().c_str(), 1);
    arguments_.insert(arguments_.end(), options.begin(), options.end());
    std::vector<char*> argv;
    for (std::string& argument : arguments_) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    started_ = vga_begin(&run_, static_cast<int>(arguments_.size()), argv.data());
}

CONSOLE::~CONSOLE() {
    if (!ended_) {
        gvga_exit_code = VGA_EXIT_ORDERLY;
        end();
    }
}

int CONSOLE::end(std::string* text) {
    ended_ = true;
    fatal_message.clear();
    const XtIntervalId timer = run_.frontend && gvga_appcontext != nullptr
                                   ? XtAppAddTimeOut(gvga_appcontext, 10, acknowledge, nullptr)
                                   : 0;
    const int status = vga_end(&run_);
    if (timer != 0) {
        XtRemoveTimeOut(acknowledge_timer != 0 ? acknowledge_timer : timer);
    }
    if (text != nullptr) {
        *text = fatal_message;
    }
    return status;
}

bool CONSOLE::wait(const std::function<bool()>& condition, int milliseconds) {
    const auto deadline = CLOCK::now() + std::chrono::milliseconds(milliseconds);
    while (!condition()) {
        if (gvga_exit_code != 0 || CLOCK::now() > deadline) {
            return condition();
        }
        // A timer of our own keeps the step from blocking past the deadline.
        const XtIntervalId timer =
            XtAppAddTimeOut(gvga_appcontext, 20, vga_null_timeout_proc, nullptr);
        vga_main_loop_step();
        XtRemoveTimeOut(timer);
    }
    return true;
}

bool CONSOLE::wait_built() {
    return wait([] { return gvga_first_dialog == nullptr; }) && wait_idle();
}

bool CONSOLE::wait_idle() {
    int quiet = 0;
    return wait([&] {
        note_windows(); // and synchronizes
        const bool busy = XtAppPending(gvga_appcontext) != 0 || !nba_q_empty(&gvga_nof_queue) ||
                          !nba_q_empty(&gvga_immediate_nof_queue);
        quiet = busy ? 0 : quiet + 1;
        return quiet >= 3;
    });
}

Widget CONSOLE::widget(const std::string& name) {
    Widget found = nullptr;
    each_dialog([&](vga_dialog& dialog) {
        if (found == nullptr) {
            found = XtNameToWidget(dialog.widget, ("*" + name).c_str());
        }
    });
    return found;
}

// Follows the widget until the pointer is in it: the window manager may not have placed and mapped
// its window yet.
void CONSOLE::move_to(Widget widget, int x, int y) {
    wait([&] { return point_at(widget, x, y); }, 5000);
}

void CONSOLE::press(Widget widget, int x, int y) {
    move_to(widget, x, y);
    press_button(true);
    wait_idle();
}

void CONSOLE::release() {
    press_button(false);
    wait_idle();
}

void CONSOLE::click(Widget widget, int x, int y, unsigned modifiers, int count) {
    hold(modifiers, true);
    // However busy the machine is, the clicks belong together and those before do not.
    const int multi_click_time = XtGetMultiClickTime(gvga_display);
    for (int i = 0; i < count; ++i) {
        if (count > 1) {
            XtSetMultiClickTime(gvga_display, i == 0 ? 0 : 60'000);
        }
        press(widget, x, y);
        release();
    }
    XtSetMultiClickTime(gvga_display, multi_click_time);
    if (modifiers != 0) {
        hold(modifiers, false);
        wait_idle();
    }
}

void CONSOLE::click(Widget widget) {
    Dimension width, height;
    XtVaGetValues(widget, XmNwidth, &width, XmNheight, &height, nullptr);
    click(widget, width / 2, height / 2);
}

// The window manager gives the keyboard to a new window in its own time, and back when one goes.
void CONSOLE::note_windows() {
    std::set<Window> windows;
    each_dialog([&](const vga_dialog& dialog) {
        for (Widget shell :
             {dialog.shell, dialog.modal_dlg.open ? dialog.modal_dlg.shell : nullptr}) {
            if (shell != nullptr && XtIsRealized(shell)) {
                windows.insert(XtWindow(shell));
            }
        }
    });
    std::erase_if(new_windows_, [&](Window window) { return !windows.contains(window); });
    std::ranges::set_difference(windows, windows_, std::inserter(new_windows_, new_windows_.end()));
    windows_ = std::move(windows);
    if (new_windows_.contains(focus_window())) {
        new_windows_.clear();
    }
}

bool CONSOLE::wait_keyboard() {
    return wait(
        [this] {
            note_windows();
            return new_windows_.empty() &&
                   XtWindowToWidget(gvga_display, focus_window()) != nullptr;
        },
        5000);
}

void CONSOLE::strike(KeySym key, unsigned modifiers) {
    EXPECT_TRUE(wait_keyboard());
    kit::strike(key, modifiers);
    XFlush(gvga_display);
}

void CONSOLE::key(KeySym key, unsigned modifiers) {
    strike(key, modifiers);
    wait_idle();
}

std::vector<std::string> CONSOLE::rows(vga_viewer_root& root, bool collapsed_too) {
    std::vector<std::string> rows;
    collect(root.top_items, 0, collapsed_too, rows);
    return rows;
}

bool CONSOLE::click_row(vga_viewer_root& root, const std::string& part, unsigned modifiers,
                        int count) {
    const std::vector<std::string> shown = rows(root);
    const auto row = std::ranges::find_if(
        shown, [&](const std::string& text) { return text.find(part) != std::string::npos; });
    if (row == shown.end() || root.draw_widget == nullptr) {
        return false;
    }
    const long y = (row - shown.begin()) * gvga_metrics.item_height + gvga_metrics.item_height / 2 -
                   static_cast<long>(root.y_offset);
    if (y < 0 || y >= root.view_height) {
        return false;
    }
    click(root.draw_widget, root.view_width / 2, static_cast<int>(y), modifiers, count);
    return true;
}

std::string CONSOLE::message() {
    const vga_dialog* dialog = dialog_with_box();
    if (dialog == nullptr) {
        return "";
    }
    XmString text;
    XtVaGetValues(dialog->modal_dlg.dialog, XmNmessageString, &text, nullptr);
    return plain(text);
}

bool CONSOLE::answer(const std::string& button) {
    const vga_dialog* dialog = dialog_with_box();
    Widget child = dialog != nullptr
                       ? XtNameToWidget(dialog->modal_dlg.dialog, ("*" + button).c_str())
                       : nullptr;
    if (child == nullptr || !XtIsManaged(child)) {
        return false;
    }
    wait_keyboard();
    wait_idle();
    click(child);
    return true;
}

} // namespace kit
