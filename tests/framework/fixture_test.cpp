#include "framework/fixture.h"

#include "shell/globals.h"
#include "shell/messages.h"
#include "shell/uid_file.h"
#include "shell/verb_queue.h"
#include "ui/framework/widget_tree.h"
#include "ui/framework/window_menu.h"

#include <Mrm/MrmPublic.h>

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

std::vector<std::string> test_log;
bool test_refuse_close;
bool test_find_widgets = true;

namespace {

struct TEST_DIALOG {
    vga_dialog common;
    char own[1024]; // what a test keeps behind the common part
};

std::string uid_name(const vga_dialog* dialog) {
    return gvga_uid_desc[dialog->dialog_id].uid_name;
}

bool get_widgets(vga_dialog* dialog) {
    test_log.push_back("get " + uid_name(dialog));
    return test_find_widgets;
}

bool close_proc(vga_dialog* dialog, bool forced) {
    test_log.push_back("close " + uid_name(dialog) + (forced ? " forced" : ""));
    return dialog->dialog_id != VGA_UID_LU62_DIALOG || !test_refuse_close;
}

void test_shared_cb(Widget, XtPointer, XtPointer) {
    test_log.push_back("activate");
}

constexpr VGA_NAMED_CALLBACK callbacks[] = {{"test_shared_cb", test_shared_cb}};

constexpr VGA_UID_DESC row(NB_USHORT id, const char* name, NB_ULONG kind) {
    VGA_UID_DESC desc{};
    desc.dialog_id = id;
    desc.uid_name = name;
    desc.get_widgets = get_widgets;
    desc.close_proc = close_proc;
    desc.callbacks = callbacks;
    desc.callback_count = 1;
    desc.kind = kind;
    desc.size = sizeof(TEST_DIALOG);
    return desc;
}

constexpr auto make_table() {
    std::array<VGA_UID_DESC, VGA_UID_MAX + 1> rows{};
    for (NB_USHORT id = 0; id <= VGA_UID_MAX; ++id) {
        rows[id].dialog_id = id;
        rows[id].uid_name = "formless";
    }
    rows[VGA_UID_SYSTEM_WINDOW] = row(VGA_UID_SYSTEM_WINDOW, "sysw", VGA_KIND_WINDOW);
    rows[VGA_UID_TN_WINDOW] = row(VGA_UID_TN_WINDOW, "tnw", VGA_KIND_WINDOW);
    rows[VGA_UID_LU62_DIALOG] = row(VGA_UID_LU62_DIALOG, "lu62d", VGA_KIND_DIALOG);
    rows[VGA_UID_LU62_ADV_DIALOG] = row(VGA_UID_LU62_ADV_DIALOG, "lu62a", VGA_KIND_SUB_DIALOG);
    rows[VGA_UID_LU32_ADV_DIALOG] = row(VGA_UID_LU32_ADV_DIALOG, "lu62a", VGA_KIND_SUB_DIALOG);
    rows[VGA_UID_PU_DIALOG] = row(VGA_UID_PU_DIALOG, "notinfile", VGA_KIND_DIALOG);
    return rows;
}

// Compiles the test's forms and opens them.
void open_forms() {
    const std::string file =
        std::filesystem::temp_directory_path() / ("forms" + std::to_string(getpid()) + ".uid");
    const std::string command =
        "uil -o " + file + " " TESSALY_SOURCE_DIR "/tests/framework/test_forms.uil";
    ASSERT_EQ(std::system(command.c_str()), 0);
    char* names[] = {const_cast<char*>(file.c_str())};
    ASSERT_EQ(MrmOpenHierarchyPerDisplay(gvga_display, 1, names, nullptr, &gvga_uid_hierarchy),
              MrmSUCCESS);
    std::filesystem::remove(file);
}

void open_toolkit() {
    setenv("NLSPATH", TESSALY_BUILD_DIR "/data/nls/msg/%L/sna.cat", 1);
    setenv("UIDPATH", TESSALY_BUILD_DIR "/data/uid/%U", 1);
    ASSERT_TRUE(vga_load_messages());
    MrmInitialize();
    static int argc = 1;
    static char program[] = "tessaly";
    static char* argv[] = {program, nullptr};
    static String fallbacks[] = {const_cast<char*>("*fontList: fixed"), nullptr};
    gvga_toplevel = XtVaAppInitialize(&gvga_appcontext, "Tessaly", nullptr, 0, &argc, argv,
                                      fallbacks, XmNdeleteResponse, XmDO_NOTHING, nullptr);
    gvga_display = XtDisplay(gvga_toplevel);
    gvga_screen = XtScreen(gvga_toplevel);
    gvga_root_window = RootWindowOfScreen(gvga_screen);
    gvga_close_atom = XInternAtom(gvga_display, "WM_DELETE_WINDOW", False);
    nba_hm_initialise();
    vga_init_verb_queues();
    vga_register_common_callbacks();
    open_forms();
}

} // namespace

const std::array<VGA_UID_DESC, VGA_UID_MAX + 1> gvga_uid_desc = make_table();

void vga_show_node_window(vga_node*) {
    test_log.push_back("show node");
}

void FrameworkTest::SetUpTestSuite() {
    static bool open = false;
    if (!open) {
        open = true;
        open_toolkit();
    }
}

void FrameworkTest::SetUp() {
    ASSERT_NE(gvga_uid_hierarchy, nullptr);
    test_refuse_close = false;
    test_find_widgets = true;
    gvga_exit_code = 0;
    gvga_main_dialog = main_window = show(VGA_UID_SYSTEM_WINDOW, nullptr);
    ASSERT_TRUE(kit::pump_until(
        [&] { return main_window != nullptr && XtIsRealized(main_window->shell); }));
    test_log.clear();
}

void FrameworkTest::TearDown() {
    gvga_exit_code = 0;
    gvga_modal_firewall_widget = nullptr;
    gvga_modal_firewall_count = 0;
    test_refuse_close = false;
    vga_close_children(main_window, true, true);
    settle();
}

void FrameworkTest::settle() {
    bool late = false; // longer than the timers of the framework
    XtAppAddTimeOut(
        gvga_appcontext, 30,
        [](XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; }, &late);
    XSync(gvga_display, False);
    kit::pump_until([&] { return late && XtAppPending(gvga_appcontext) == 0; });
}

vga_dialog* FrameworkTest::get(NB_USHORT id, vga_dialog* parent) {
    vga_dialog* dialog = nullptr;
    vga_get_dialog(id, parent, nullptr, &dialog);
    return dialog;
}

vga_dialog* FrameworkTest::show(NB_USHORT id, vga_dialog* parent) {
    vga_dialog* dialog = get(id, parent);
    if (dialog != nullptr) {
        vga_display_dialog(dialog);
        settle();
    }
    return dialog;
}

void FrameworkTest::move_to(Widget widget) {
    EXPECT_TRUE(kit::pump_until([widget] { return kit::point_at(widget); })) << XtName(widget);
    settle();
}

void FrameworkTest::press(Widget widget) {
    move_to(widget);
    kit::press_button(true);
    settle();
}

void FrameworkTest::release() {
    kit::press_button(false);
    settle();
}

void FrameworkTest::click(Widget widget) {
    press(widget);
    release();
}

void FrameworkTest::key(KeySym symbol) {
    kit::strike(symbol);
    settle();
}

std::string FrameworkTest::message_of(const vga_dialog* dialog) {
    if (!dialog->modal_dlg.open) {
        return "";
    }
    return label_of(XmMessageBoxGetChild(dialog->modal_dlg.dialog, XmDIALOG_MESSAGE_LABEL));
}

std::string FrameworkTest::text_of(int message) {
    std::string text = gvga_messages[message];
    std::erase(text, '\n');
    return text;
}

std::string FrameworkTest::label_of(Widget widget) {
    XmString string = nullptr;
    XtVaGetValues(widget, XmNlabelString, &string, nullptr);
    return kit::plain(string);
}
