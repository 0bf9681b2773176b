#include "shell/start.h"

#include "shell/graphics.h"
#include "shell/messages.h"
#include "shell/resources.h"
#include "shell/uid_file.h"
#include "ui/framework/dialog.h"
#include "ui/framework/dialog_table.h"

#include <X11/Xresource.h>
#include <Xm/Xm.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

MrmHierarchy gvga_uid_hierarchy;

namespace {

constexpr const char* application_class = "Tessaly";
constexpr const char* uid_base = "/opt/kordia/sna/lib64/X11";
constexpr const char* uid_file = "tessalydlg.uid";
constexpr int low_screen = 480; // pixels; such a screen gets no margins and a small font
constexpr std::size_t V0_MAX_UIDPATH = 200;

void merge_low_screen_resources() {
    if (HeightOfScreen(gvga_screen) > low_screen) {
        return;
    }
    char name[64];
    XrmDatabase database = nullptr;
    std::snprintf(name, sizeof name, "%s*marginHeight", application_class);
    XrmPutStringResource(&database, name, "0");
    std::snprintf(name, sizeof name, "%s*fontList", application_class);
    XrmPutStringResource(&database, name, gvga_messages[614]);
    XrmCombineDatabase(database, &gvga_resource_database, False);
}

// Large screens have larger icons and a larger font in the lists, so labels follow. The user's file
// comes later.
void merge_large_size_resources() {
    char size[16];
    if (!vga_uses_large_size() ||
        !vga_get_resource_string(".largeFontSize", "", size, sizeof size) || size[0] == '\0') {
        return;
    }
    for (const char* name : {"*labels.fontSize", "*strong.fontSize", "*fields.fontSize"}) {
        XrmPutStringResource(&gvga_resource_database, name, size);
    }
}

void merge_user_file() {
    constexpr std::size_t max_home = 300 - 8;
    constexpr const char* file = "/.tessalyrc";
    char path[max_home + 16];
    const char* home = std::getenv("HOME");
    const bool usable = home != nullptr && std::strlen(home) <= max_home;
    std::snprintf(path, sizeof path, "%s%s", usable ? home : "", file);
    gvga_local_database = XrmGetFileDatabase(path);
    XrmCombineFileDatabase(path, &gvga_resource_database, True);
}

bool open_uid_file() {
    char name[] = "tessalydlg.uid";
    char* names[] = {name};
    v0_set_uidpath(uid_base, application_class, application_class, gvga_display);
    if (MrmOpenHierarchyPerDisplay(gvga_display, 1, names, nullptr, &gvga_uid_hierarchy) ==
        MrmSUCCESS) {
        return true;
    }
    gvga_uid_hierarchy = nullptr;
    nba_pd_print_problem(0x40020006, 0, "s", "All");
    std::fprintf(stderr, "tessaly: the window file %s cannot be opened; UIDPATH is %s\n", uid_file,
                 std::getenv("UIDPATH"));
    VGA_FATAL(VGA_EXIT_START, 0);
    return false;
}

// Lets the toolkit find the program's colours and fonts where they are installed, after the site's
// own.
void set_app_defaults_path() {
    char path[PATH_MAX];
    std::snprintf(path, sizeof path,
                  "/etc/X11/%%L/%%T/%%N:/etc/X11/%%T/%%N:%s/%%L/%%T/%%N:%s/%%T/%%N", uid_base,
                  uid_base);
    setenv("XFILESEARCHPATH", path, 0);
}

// The display is gone: nothing can be shown and Xlib will not return. The node link is closed in
// good order.
int lose_display(Display*) {
    nba_pd_print_problem(0x40020001, 0, "s", "connection to the X display lost");
    nof_terminate();
    _exit(VGA_EXIT_INTERNAL);
}

} // namespace

bool vga_add_params_to_command_line(int argc, char** argv, int* new_argc, char*** new_argv) {
    static char option[] = "-xrm";
    static char value[] = "*enableEtchedInMenu: False";
    auto** vector =
        static_cast<char**>(vga_alloc((static_cast<std::size_t>(argc) + 3) * sizeof(char*)));
    if (vector == nullptr) {
        *new_argc = argc;
        *new_argv = argv;
        return false;
    }
    vector[0] = argv[0];
    vector[1] = option;
    vector[2] = value;
    for (int i = 1; i <= argc; ++i) { // with the null at the end
        vector[i + 2] = argv[i];
    }
    *new_argc = argc + 2;
    *new_argv = vector;
    return true;
}

void v0_set_uidpath(const char* base_dir, const char* class_name, const char* application,
                    Display* display) {
    if (std::getenv("UIDPATH") != nullptr) {
        return;
    }
    const char* lang = std::getenv("LANG");
    if (lang == nullptr) {
        lang = XGetDefault(display, application, "xnlLang");
    }
    char v0_uidpath[PATH_MAX];
    if (lang != nullptr) {
        std::snprintf(v0_uidpath, sizeof v0_uidpath, "%s/%s/uid/%s/%%U:%s/uid/%s/%%U", base_dir,
                      lang, class_name, base_dir, class_name);
    } else {
        std::snprintf(v0_uidpath, sizeof v0_uidpath, "%s/uid/%s/%%U", base_dir, class_name);
    }
    VGA_ASSERT_TEXT(std::strlen("UIDPATH=") + std::strlen(v0_uidpath) < V0_MAX_UIDPATH,
                    "NB_STRLEN(v0_uidpath) < V0_MAX_UIDPATH");
    setenv("UIDPATH", v0_uidpath, 0);
}

bool vga_initialise_frontend(int* argc, char** argv) {
    if (!vga_load_messages()) {
        return false;
    }
    set_app_defaults_path();
    MrmInitialize();
    XtSetLanguageProc(nullptr, nullptr, nullptr);
    static char fallback[] = "*fontList: Fixed";
    static String fallback_resources[] = {fallback, nullptr};
    gvga_toplevel = XtVaAppInitialize(&gvga_appcontext, application_class, nullptr, 0, argc, argv,
                                      fallback_resources, XmNdeleteResponse, XmDO_NOTHING, nullptr);
    gvga_display = XtDisplay(gvga_toplevel);
    gvga_screen = XtScreen(gvga_toplevel);
    gvga_root_window = RootWindowOfScreen(gvga_screen);
    gvga_close_atom = XInternAtom(gvga_display, "WM_DELETE_WINDOW", False);
    XSetIOErrorHandler(lose_display);

    XrmInitialize();
    gvga_resource_database = XtDatabase(gvga_display);
    static char option[] = "-size";
    static char specifier[] = "*size";
    XrmOptionDescRec options[] = {{option, specifier, XrmoptionSepArg, nullptr}};
    XrmParseCommand(&gvga_resource_database, options, 1, application_class, argc, argv);
    merge_low_screen_resources();
    merge_large_size_resources();
    merge_user_file();
    if (*argc > 1) {
        vga_print_usage(true, argv);
        VGA_FATAL(VGA_EXIT_USAGE, 0);
        return false;
    }
    vga_get_options();
    vga_get_web_browser_path();
    if (!open_uid_file()) {
        return false;
    }
    vga_register_common_callbacks();
    for (NB_USHORT ii = 0; ii <= VGA_UID_MAX; ++ii) {
        VGA_ASSERT(gvga_uid_desc[ii].dialog_id == ii);
        nba_init_q(&gvga_uid_instances[ii]);
    }
    return true;
}

void vga_terminate_frontend() {
    if (gvga_uid_hierarchy != nullptr) {
        MrmCloseHierarchy(gvga_uid_hierarchy);
        gvga_uid_hierarchy = nullptr;
    }
    vga_free_dialogs();
    vga_free_graphics();
    if (gvga_catalog != -1) {
        v0_close_message_catalog(&gvga_catalog);
        gvga_catalog = -1;
    }
    vga_free_messages();
    for (XrmDatabase* database : {&gvga_resource_database, &gvga_local_database}) {
        if (*database != nullptr) {
            XrmDestroyDatabase(*database);
            *database = nullptr;
        }
    }
}
