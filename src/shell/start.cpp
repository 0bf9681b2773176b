#include "shell/start.h"

#include "dialogs/start_stop.h"
#include "shell/messages.h"
#include "store/build.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "ui/windows/delete_flow.h"
#include "ui/windows/node_window.h"
#include "ui/windows/system_window.h"
#include "verbs/config.h"
#include "verbs/manage.h"
#include "verbs/status.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

// The windows' texts come in the language alone: an encoding behind it would find no catalogue.
void set_locale_variables() {
    const char* lang = std::getenv("LANG");
    if (lang == nullptr) {
        return;
    }
    char buffer[6] = {};
    std::strncpy(buffer, lang, 5);
    if (std::string_view(buffer) == "Ja_JP") {
        buffer[0] = 'j';
    }
    if (std::strcmp(buffer, lang) != 0) {
        setenv("LANG", buffer, 1);
    }
    if (std::getenv("LC_CTYPE") != nullptr) {
        setenv("LC_CTYPE", buffer, 1);
    }
}

bool asks_for_usage(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "-h") == 0) {
            return true;
        }
    }
    return false;
}

bool show_first_window() {
    const bool shown = gvga_supported[VGA_SUPPORT_CLIENT_SERVER]
                           ? vga_display_system_window(false)
                           : vga_display_node_window(nullptr, false);
    if (!shown) {
        VGA_FATAL(VGA_EXIT_START, 0);
        return false;
    }
    gvga_main_dialog = gvga_first_dialog;
    XtRealizeWidget(gvga_toplevel);
    XSetErrorHandler(vga_xerror_handler);
    vga_display_hourglass(true);
    vga_start_build_system();
    return true;
}

} // namespace

bool vga_begin(VGA_RUN* run, int argc, char** argv) {
    gvga_web_temp_pid = 0;
    std::signal(SIGTERM, vga_signal_catcher);
    std::signal(SIGCHLD, vga_signal_catcher);
    gvga_variant_a = 0;
    gvga_variant_b = 1;
    set_locale_variables();
    const char* names = std::getenv("TESSALYMSG");
    gvga_display_names = names != nullptr && names[0] == '1';
    gvga_exit_code = 0;
    gvga_exit_subcode = 0;
    gvga_exit_file = __FILE_NAME__;
    gvga_exit_line = __LINE__;
    gvga_system = nullptr;
    gvga_catalog = -1;
    gvga_setid = -1;
    gvga_modal_firewall_count = 0;
    gvga_modal_firewall_widget = nullptr;

    *run = VGA_RUN{};
    if (asks_for_usage(argc, argv)) {
        vga_print_usage(false, nullptr);
        return false;
    }
    int count;
    char** vector;
    if (vga_add_params_to_command_line(argc, argv, &count, &vector)) {
        run->vector = vector;
    }
    run->frontend = vga_initialise_frontend(&count, vector);
    run->loop = run->frontend && vga_initialise_backend() && show_first_window();
    return run->loop;
}

int vga_end(VGA_RUN* run) {
    if (run->loop) {
        nof_terminate(); // before the blocks go that the library still holds
        vga_free_verb_queues();
    }
    if (gvga_exit_code == VGA_EXIT_ORDERLY) {
        gvga_exit_code = 0;
    }
    if (gvga_exit_code != 0) {
        vga_error_exit();
    }
    if (gvga_system != nullptr) {
        vga_destroy_data_structures();
    }
    if (run->frontend) {
        vga_terminate_backend();
        vga_free_deleting();
        vga_terminate_frontend();
    }
    vga_free(run->vector);
    return gvga_exit_code;
}

int vga_run(int argc, char** argv) {
    VGA_RUN run;
    if (vga_begin(&run, argc, argv)) {
        while (gvga_exit_code == 0) {
            vga_main_loop_step();
        }
    }
    return vga_end(&run);
}

bool vga_initialise_backend() {
    vpm_asm_use_xt_sched(gvga_appcontext, XtAppAddInput, XtRemoveInput);
    vpm_set_io_limit(10);
    if (nba_hm_initialise() == 0) {
        VGA_FATAL(VGA_EXIT_START, 0);
        return false;
    }
    vga_init_verb_queues();
    vga_install_window_hooks();
    vga_install_status_handlers();
    vga_install_manage_handlers();
    vga_install_start_stop_dialogs();
    vga_install_config_handlers();
    gvga_read_only = 0;
    gvga_system = vga_init_vga_system();
    if (gvga_system == nullptr) {
        VGA_FATAL(VGA_EXIT_START, 0);
        return false;
    }
    return true;
}

void vga_terminate_backend() {
    nof_terminate();
    vga_free_verb_queues();
}

void vga_main_loop_step() {
    while (auto* entry = static_cast<VGA_QUEUE_ENTRY*>(nba_get_q_head(&gvga_immediate_nof_queue))) {
        vga_nof_verb_callback(entry->target, entry->vcb, entry->corr, 0);
        if (gvga_exit_code != 0) {
            return;
        }
    }
    constexpr XtInputMask x_or_timer = XtIMXEvent | XtIMTimer;
    const XtInputMask pending = XtAppPending(gvga_appcontext);
    if (pending == 0) {
        XtAppProcessEvent(gvga_appcontext, XtIMAll);
    } else if ((pending & x_or_timer) != 0) {
        XtAppProcessEvent(gvga_appcontext, x_or_timer);
    } else if ((pending & XtIMAlternateInput) != 0) {
        XtAppProcessEvent(gvga_appcontext, XtIMAlternateInput);
    }
}
