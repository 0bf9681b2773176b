#include "viewer/fixture.h"

#include "shell/globals.h"
#include "shell/messages.h"
#include "shell/resources.h"

#include <Mrm/MrmPublic.h>
#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <Xm/ScrollBar.h>
#include <Xm/ScrolledW.h>
#include <array>
#include <cstdlib>
#include <cstring>

namespace {

int create_text(void* record, char* text) {
    const std::string& from = static_cast<Row*>(record)->text;
    std::memcpy(text, from.c_str(), from.size() + 1);
    return static_cast<int>(from.size());
}

int choose_icon(void*) {
    return VGA_ICON_PORT;
}

void report(const char* what, void* record, int click_count = 0) {
    Viewer_test::current->calls.push_back({what, record, click_count});
}

void arm_cb(void* record, XmDrawnButtonCallbackStruct* data) {
    const unsigned state = data->event->xbutton.state;
    report("arm", record);
    vga_viewer_select(&static_cast<Row*>(record)->item, &Viewer_test::current->root,
                      state & ControlMask, state & ShiftMask, false, false);
}

void act_cb(void* record, XmDrawnButtonCallbackStruct* data) {
    report("act", record, data->click_count);
}

void disarm_cb(Widget, XtPointer, XtPointer) {
    report("disarm", nullptr);
}

void underline_cb(void* record, Widget, int x, int y, GC) {
    vga_viewer_add_underline(&Viewer_test::current->root, &static_cast<Row*>(record)->item, x, y,
                             "----%t8%--- -");
}

void select_cb(vga_dialog*) {
    report("select", nullptr);
}

bool alone(const void*) {
    return true;
}

constexpr auto none = nullptr;
#define COMMON create_text, choose_icon, 1, arm_cb, disarm_cb, act_cb
using Types = std::array<VGA_VIEWER_DESC, VGA_VIEWER_TYPE_COUNT>;
constexpr Types test_types = [] {
    Types types = {};
    types[TEST_TOP] = {COMMON, none, none, select_cb, 1, 0, 1, none};
    types[TEST_MIDDLE] = {COMMON, none, none, select_cb, 1, 1, 0, none};
    types[TEST_LEAF] = {create_text, choose_icon, 0, arm_cb, disarm_cb, act_cb, none,
                        none,        select_cb,   0, 2,      0,         none};
    types[TEST_TITLE] = {create_text,  none, 1, none, none, none, none,
                         underline_cb, none, 0, 0,    1,    none};
    types[TEST_ALONE] = {COMMON, none, none, select_cb, 0, 0, 1, alone};
    return types;
}();

} // namespace
Viewer_test* Viewer_test::current;

void start_graphics() {
    if (gvga_display != nullptr) {
        return;
    }
    setenv("UIDPATH", TESSALY_BUILD_DIR "/data/uid/%U", 1);
    setenv("XENVIRONMENT", "/dev/null", 1);
    MrmInitialize();
    int argc = 1;
    static char program[] = "viewer";
    static char* argv[] = {program, nullptr};
    gvga_toplevel =
        XtVaAppInitialize(&gvga_appcontext, "Tessaly", nullptr, 0, &argc, argv, nullptr, nullptr);
    gvga_display = XtDisplay(gvga_toplevel);
    XrmPutStringResource(&gvga_resource_database, "Tessaly*size", "small");
    gvga_screen = XtScreen(gvga_toplevel);
    gvga_root_window = RootWindowOfScreen(gvga_screen);
    gvga_messages[602] = gvga_messages[609] = "-misc-fixed-medium-r-semicondensed--13-*";
    gvga_messages[603] = "l";
    for (int message : {612, 613, 1443, 1446, 1447, 1448}) {
        gvga_messages[message] = "warning";
    }
    Widget label = XtVaCreateWidget("colours", xmDrawnButtonWidgetClass, gvga_toplevel, nullptr);
    ASSERT_TRUE(vga_init_graphics(label, label));
    XtDestroyWidget(label);
}

void Viewer_test::SetUp() {
    start_graphics();
    gvga_viewer_types = test_types.data();
    current = this;
    shell =
        XtVaAppCreateShell("viewer", "Tessaly", topLevelShellWidgetClass, gvga_display, XmNgeometry,
                           "+0+0", XmNallowShellResize, True, XmNinput, True, nullptr);
    scrolled = XtVaCreateManagedWidget(
        "list", xmScrolledWindowWidgetClass, shell, XmNscrollingPolicy, XmAPPLICATION_DEFINED,
        XmNshadowThickness, 0, XmNspacing, 0, XmNwidth, 300, XmNheight, 200, nullptr);
    button = XtVaCreateManagedWidget(
        "rows", xmDrawnButtonWidgetClass, scrolled, XmNshadowThickness, 0, XmNhighlightThickness, 0,
        XmNmarginWidth, 0, XmNmarginHeight, 0, XmNnavigationType, XmTAB_GROUP, XmNbackground,
        gvga_list_background, XmNforeground, gvga_foreground, nullptr);
    h_bar = XtVaCreateWidget("h", xmScrollBarWidgetClass, scrolled, XmNorientation, XmHORIZONTAL,
                             nullptr);
    v_bar = XtVaCreateWidget("v", xmScrollBarWidgetClass, scrolled, XmNorientation, XmVERTICAL,
                             nullptr);
    XtRealizeWidget(shell);
    asserts_before = nba_assert_count();
    ASSERT_TRUE(vga_viewer_init_root(&root));
    owner.open = 1;
    root.owner = &owner;
    vga_viewer_display_root(&root, button, h_bar, v_bar);
    ASSERT_TRUE(kit::pump_until([&] { return root.exposed != 0; }));
    // The first click passes through the window manager, which gives the window the focus.
    bool clicked = false;
    const XtCallbackProc note = [](Widget, XtPointer flag, XtPointer) {
        *static_cast<bool*>(flag) = true;
    };
    XtAddCallback(button, XmNdisarmCallback, note, &clicked);
    click(1, 1);
    ASSERT_TRUE(kit::pump_until([&] { return clicked; }));
    XtRemoveCallback(button, XmNdisarmCallback, note, &clicked);
    pump();
}

void Viewer_test::TearDown() {
    EXPECT_EQ(asserts_before, nba_assert_count()) << nba_last_assert();
    vga_viewer_undisplay(&root);
    vga_viewer_destroy_root(&root);
    XtDestroyWidget(shell);
    pump();
    current = nullptr;
}

std::unique_ptr<Row> Viewer_test::new_row(const std::string& text) {
    auto row = std::make_unique<Row>();
    row->text = text;
    return row;
}

void Viewer_test::create(Row* row, NB_BYTE type, Row* parent, Row* previous) {
    vga_create_viewer(&root, &row->item, type, row, parent != nullptr ? &parent->item : nullptr,
                      previous != nullptr ? &previous->item : nullptr);
}

void Viewer_test::fill(int count, NB_BYTE type, Row* parent) {
    const NTL_AVL_TREE& siblings = parent != nullptr ? parent->item.children : root.top_items;
    vga_viewer* last = vga_viewer_bottom(siblings);
    Row* previous = last != nullptr ? static_cast<Row*>(last->data) : nullptr;
    for (int ii = 0; ii < count; ++ii) {
        rows.push_back(new_row(std::to_string(rows.size() + 1)));
        create(rows.back().get(), type, parent, previous);
        previous = rows.back().get();
    }
}

void Viewer_test::resize(int width, int height) {
    Dimension w = 0;
    Dimension h = 0;
    XtVaGetValues(v_bar, XmNwidth, &w, nullptr);
    XtVaGetValues(h_bar, XmNheight, &h, nullptr);
    XtVaSetValues(scrolled, XmNwidth, width + (XtIsManaged(v_bar) ? w : 0), XmNheight,
                  height + (XtIsManaged(h_bar) ? h : 0), nullptr);
    pump();
}

void Viewer_test::pump() {
    // The second pass handles what the first one caused.
    for (int pass = 0; pass < 2; ++pass) {
        XSync(gvga_display, False);
        while (XtAppPending(gvga_appcontext) != 0) {
            XtAppProcessEvent(gvga_appcontext, XtIMAll);
        }
    }
}

void Viewer_test::move_pointer(int x, int y) {
    int root_x = 0;
    int root_y = 0;
    Window child = None;
    XTranslateCoordinates(gvga_display, XtWindow(button), gvga_root_window, x, y, &root_x, &root_y,
                          &child);
    XTestFakeMotionEvent(gvga_display, -1, root_x, root_y, CurrentTime);
}

void Viewer_test::press_at(int x, int y, unsigned modifiers) {
    kit::hold(modifiers, true);
    move_pointer(x, y);
    kit::press_button(true);
    kit::hold(modifiers, false);
    pump();
}

void Viewer_test::click(int x, int y, unsigned modifiers) {
    press_at(x, y, modifiers);
    kit::press_button(false);
    pump();
}

void Viewer_test::key(KeySym key, unsigned modifiers) {
    XSetInputFocus(gvga_display, XtWindow(shell), RevertToParent, CurrentTime);
    XmProcessTraversal(button, XmTRAVERSE_CURRENT);
    pump();
    const KeyCode code = XKeysymToKeycode(gvga_display, key);
    if (XkbKeycodeToKeysym(gvga_display, code, 0, 0) != key) { // on the upper row of its key
        modifiers |= ShiftMask;
    }
    kit::strike(key, modifiers);
    pump();
}

Pixels Viewer_test::look() {
    XImage* image = XGetImage(gvga_display, XtWindow(button), 0, 0, root.view_width,
                              root.view_height, AllPlanes, ZPixmap);
    Pixels seen = {image->width, image->height, {}};
    seen.pixels.reserve(static_cast<std::size_t>(image->width * image->height));
    for (int y = 0; y < image->height; ++y) {
        for (int x = 0; x < image->width; ++x) {
            seen.pixels.push_back(XGetPixel(image, x, y));
        }
    }
    XDestroyImage(image);
    return seen;
}

Pixels Viewer_test::look_afresh() {
    XClearWindow(gvga_display, XtWindow(button));
    vga_viewer_redraw_view(&root);
    return look();
}

int Viewer_test::row_y(const Row* row) {
    return static_cast<int>(vga_viewer_position(&row->item) - root.y_offset);
}

std::vector<int> Viewer_test::selected() {
    std::vector<int> found;
    for (std::size_t ii = 0; ii < rows.size(); ++ii) {
        if (rows[ii]->item.selected) {
            found.push_back(static_cast<int>(ii));
        }
    }
    return found;
}
