#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "dialogs/node_config.h"
#include "shell/globals.h"
#include "shell/graphics.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "ui/framework/widget_tree.h"

#include <X11/Xatom.h>

#include <algorithm>
#include <cstdlib>

// What the operator sees of every window, whatever is in it.
namespace {

using kit::CONSOLE;
using kit::SERVICE;

vga_node* node() {
    return ntl_avl_first<vga_node>(gvga_system->node_tree);
}

std::vector<unsigned long> property(Window window, const char* name, Atom type) {
    Atom seen = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(gvga_display, window, XInternAtom(gvga_display, name, False), 0, 100'000,
                       False, type, &seen, &format, &count, &rest, &data);
    std::vector<unsigned long> values;
    if (format == 32) {
        const auto* longs = reinterpret_cast<unsigned long*>(data);
        values.assign(longs, longs + count);
    }
    XFree(data);
    return values;
}

std::string too_narrow(Widget top) {
    std::string names;
    vga_for_each_below(top, [&](Widget each) {
        if (!XmIsTextField(each)) {
            return;
        }
        short columns = 0;
        Dimension width = 0;
        XmRenderTable table = nullptr;
        XtVaGetValues(each, XmNcolumns, &columns, XmNwidth, &width, XmNrenderTable, &table,
                      nullptr);
        std::string zeros(static_cast<std::size_t>(columns), '0');
        XmString text = XmStringCreateLocalized(zeros.data());
        if (width < XmStringWidth(table, text)) {
            names += std::string(XtName(each)) + ' ';
        }
        XmStringFree(text);
    });
    return names;
}

class Look : public testing::TestWithParam<const char*> {};

// Opens every menu of the window and every dialog that there is. In a multi-byte locale margins
// are taken out of the widgets before they are laid out.
TEST_P(Look, MenusAndDialogsWithoutWarningsAndWithRoomForTheirFields) {
    setenv("LANG", GetParam(), 1);
    setenv("LC_ALL", GetParam(), 1);
    testing::internal::CaptureStderr();
    {
        SERVICE service;
        CONSOLE console(service);
        ASSERT_TRUE(console.started() && console.wait_built());
        Widget bar = console.widget("nodewMenuBar");
        ASSERT_NE(bar, nullptr);
        vga_for_each_child(bar, [&](Widget cascade) {
            console.click(cascade);
            EXPECT_TRUE(XtIsManaged(vga_submenu_of(cascade))) << XtName(cascade);
            console.key(XK_Escape);
        });
        int dialogs = 0;
        for (NB_USHORT id = 0; id <= VGA_UID_MAX; ++id) {
            const VGA_UID_DESC& row = gvga_uid_desc[id];
            if (row.get_widgets == nullptr || row.kind == VGA_KIND_WINDOW) {
                continue;
            }
            vga_dialog* dialog = nullptr;
            ASSERT_TRUE(vga_get_dialog(id, gvga_main_dialog, nullptr, &dialog)) << row.uid_name;
            vga_display_dialog(dialog);
            console.wait_idle();
            EXPECT_EQ(too_narrow(dialog->widget), "") << row.uid_name;
            vga_release_dialog(dialog);
            XtUnmanageChild(dialog->widget);
            ++dialogs;
        }
        EXPECT_GT(dialogs, 3);
        EXPECT_EQ(std::ranges::count(gvga_symbols, Pixmap{None}), 0) << "of message boxes";
    }
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(log.find("Warning"), std::string::npos) << log;
}
INSTANTIATE_TEST_SUITE_P(Locales, Look, testing::Values("C", "C.UTF-8"),
                         [](const auto& info) { return info.index == 0 ? "C" : "Utf8"; });

// Run under mwm and under a window manager of the other kind.
class WindowManager : public testing::Test {
protected:
    SERVICE service;
    CONSOLE console{service};

    // The window that the root window has for one of ours: the frame.
    static Window frame_of(Widget shell) {
        Window window = XtWindow(shell);
        for (;;) {
            Window root = None;
            Window parent = None;
            Window* children = nullptr;
            unsigned count = 0;
            XQueryTree(gvga_display, window, &root, &parent, &children, &count);
            XFree(children);
            if (parent == root || parent == None) {
                return window;
            }
            window = parent;
        }
    }
    // Place in the stack, from the bottom.
    static long place_of(Widget shell) {
        const Window frame = frame_of(shell);
        Window root = None;
        Window parent = None;
        Window* children = nullptr;
        unsigned count = 0;
        XQueryTree(gvga_display, gvga_root_window, &root, &parent, &children, &count);
        const long place = std::find(children, children + count, frame) - children;
        XFree(children);
        return place;
    }
    static bool stacked(const std::vector<Widget>& shells) {
        return std::ranges::is_sorted(shells, {}, place_of);
    }
    // As the close button of the frame does.
    static void close(Widget shell) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = XtWindow(shell);
        event.xclient.format = 32;
        const bool ewmh =
            !property(gvga_root_window, "_NET_SUPPORTING_WM_CHECK", XA_WINDOW).empty();
        if (ewmh) {
            event.xclient.message_type = XInternAtom(gvga_display, "_NET_CLOSE_WINDOW", False);
            event.xclient.data.l[1] = 2; // from a pager
            XSendEvent(gvga_display, gvga_root_window, False,
                       SubstructureNotifyMask | SubstructureRedirectMask, &event);
        } else {
            event.xclient.message_type = XInternAtom(gvga_display, "WM_PROTOCOLS", False);
            event.xclient.data.l[0] = static_cast<long>(gvga_close_atom);
            XSendEvent(gvga_display, XtWindow(shell), False, NoEventMask, &event);
        }
    }
};

TEST_F(WindowManager, FramesPlacesRaisesAndCloses) {
    ASSERT_TRUE(console.started() && console.wait_built());
    vga_dialog* window = gvga_main_dialog;
    ASSERT_TRUE(console.wait([&] { return frame_of(window->shell) != XtWindow(window->shell); }));
    Position x = -1;
    Position y = -1;
    XtTranslateCoords(window->widget, 0, 0, &x, &y);
    EXPECT_TRUE(x >= 0 && y >= 0) << x << ' ' << y;

    vga_display_node_dialog(node(), false);
    ASSERT_TRUE(console.wait([] { return node()->gui_data.dialog != nullptr; }));
    auto* dialog = static_cast<vga_dialog*>(node()->gui_data.dialog);
    console.wait_idle();
    while (dialog->modal_dlg.open) { // a running node says that it cannot be changed
        ASSERT_TRUE(console.answer("OK"));
    }
    vga_display_error_dialog(dialog, 208, "dlgfail", nullptr, 0, "");
    const std::vector<Widget> shells = {window->shell, dialog->shell, dialog->modal_dlg.shell};
    EXPECT_TRUE(console.wait([&] { return stacked(shells); }));
    vga_raise_dialog(window);
    vga_check_open_modal_dialogs();
    console.wait_idle();
    EXPECT_TRUE(console.wait([&] { return stacked(shells); }));

    for (Widget shell : shells) {
        SCOPED_TRACE(XtName(shell));
        ASSERT_TRUE(console.wait([&] { return frame_of(shell) != XtWindow(shell); }));
        const std::vector<unsigned long> icon =
            property(XtWindow(shell), "_NET_WM_ICON", XA_CARDINAL);
        ASSERT_GT(icon.size(), 2u);
        EXPECT_EQ(icon.size(), 2 + icon[0] * icon[1]);
        const auto clear = std::count(icon.begin() + 2, icon.end(), 0u);
        EXPECT_TRUE(clear > 100 && clear < static_cast<long>(icon.size()) / 2) << clear;
    }
    EXPECT_EQ(property(XtWindow(dialog->shell), "WM_TRANSIENT_FOR", XA_WINDOW),
              std::vector<unsigned long>{XtWindow(window->shell)});

    close(dialog->modal_dlg.shell);
    EXPECT_TRUE(console.wait([&] { return !dialog->modal_dlg.open; }));
    close(dialog->shell);
    EXPECT_TRUE(console.wait([&] { return !dialog->open; }));
    close(window->shell);
    EXPECT_TRUE(console.wait([&] { return window->modal_dlg.open; }))
        << "the end of the program is asked for";
}

} // namespace
