#include "shell/start.h"

#include "shell/messages.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "ui/windows/about.h"
#include "ui/windows/node_window.h"
#include "ui/windows/system_window.h"

#include <cstdio>

namespace {

bool shutdown_idle = true; // no step of the shutdown is being taken

// Releases the first holder of a handle; vga_process_shutdown goes on when it is done. False when
// nothing is left.
bool release_next(bool with_configuration) {
    if (with_configuration && gvga_system->config_file_handle != 0) {
        vga_free_system_resources(false, vga_process_shutdown);
        return true;
    }
    if (gvga_system->sna_net_handle != 0) {
        vga_free_sna_net_resources(vga_process_shutdown);
        return true;
    }
    while (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree)) {
        const bool connected = node->node_handle != 0;
        vga_do_free_node_res(node, false, connected ? vga_process_shutdown : nullptr);
        if (connected) {
            return true;
        }
    }
    return false;
}

void vga_error_exit_cb(vga_dialog*, NB_ULONG, NB_ULONG) {
    gvga_exit_code = VGA_EXIT_ORDERLY;
}

void log_fatal(NB_LONG code) {
    if (code == VGA_EXIT_INTERNAL) {
        nba_pd_print_problem(0x40020001, 0, "s i", gvga_exit_file, gvga_exit_line);
    } else if (code != VGA_EXIT_QUERY && code != VGA_EXIT_NO_NODE && code != VGA_EXIT_SHUTDOWN) {
        nba_pd_print_problem(0x40020000, 0, "x x s i", code, gvga_exit_subcode, gvga_exit_file,
                             gvga_exit_line);
    }
}

void show_fatal(NB_LONG code) {
    vga_dialog* const parent = gvga_main_dialog;
    switch (code) {
    case VGA_EXIT_INTERNAL:
        return vga_display_error_dialog(parent, 606, "fatalerror", vga_error_exit_cb, 0, "s i",
                                        gvga_exit_file, gvga_exit_line);
    case VGA_EXIT_QUERY:
        if (gvga_exit_subcode == NAP_OPEN_FILE) {
            return vga_display_error_dialog(parent, 610, "fatalerror", vga_error_exit_cb, 0, "");
        }
        return vga_display_error_dialog(parent, 227, "fatalerror", vga_error_exit_cb, 0, "x s i",
                                        gvga_exit_subcode, gvga_exit_file, gvga_exit_line);
    case VGA_EXIT_NO_NODE:
        return vga_display_error_dialog(parent, 1486, "fatalerror", vga_error_exit_cb, 0, "");
    case VGA_EXIT_SHUTDOWN:
        return vga_display_info_dialog(parent, 303, "systemshutdown", vga_error_exit_cb, 0, "");
    default:
        return vga_display_error_dialog(parent, 604, "fatalerror", vga_error_exit_cb, 0, "x x s i",
                                        code, gvga_exit_subcode, gvga_exit_file, gvga_exit_line);
    }
}

bool has_unconfigured_node() {
    auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree);
    while (node != nullptr && node->node_state != VGA_NODE_STATE_UNCONFIGURED) {
        node = static_cast<vga_node*>(ntl_avl_next(&node->node));
    }
    return node != nullptr;
}

} // namespace

bool vga_start_shutdown() {
    if (!shutdown_idle) {
        return true;
    }
    shutdown_idle = false;
    vga_close_children(gvga_main_dialog, true, true);
    vga_purge_verb_queue(0, 0, nullptr, 0, nullptr);
    if (!release_next(true)) {
        VGA_FATAL(VGA_EXIT_ORDERLY, 0);
    }
    shutdown_idle = true;
    return true;
}

void vga_process_shutdown(VGA_COMPLETION* completion) {
    const VCB_HEADER& header = *vcb_header(completion->vcb);
    const bool stopping =
        header.primary_rc == NAP_UNSUCCESSFUL && header.secondary_rc == NAP_SYSTEM_STOPPING;
    if (stopping || !release_next(false)) {
        VGA_FATAL(VGA_EXIT_ORDERLY, 0);
    }
}

void vga_system_built() {
    if (gvga_first_dialog == nullptr) {
        return;
    }
    vga_display_hourglass(false);
    if (gvga_system->config_file_handle == 0) {
        vga_display_info_dialog(gvga_first_dialog, 217, "mastercfg", nullptr, 0, "");
    }
    if (gvga_read_only) {
        vga_display_info_dialog(gvga_first_dialog, 608, "readonly", nullptr, 0, "");
    }
    auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree);
    if (gvga_supported[VGA_SUPPORT_CLIENT_SERVER]) {
        gvga_first_dialog->parent_item = gvga_system;
        gvga_system->gui_data.system_window = gvga_first_dialog;
        if (!vga_display_system_window(true)) {
            nba_pd_print_problem(0x40020007, 4, "s", gvga_uid_desc[VGA_UID_SYSTEM_WINDOW].uid_name);
        }
        if (!gvga_read_only && has_unconfigured_node()) {
            vga_display_start_help_dialog(nullptr, VGA_INTRO_TYPE_CLIENT_SERVER);
        }
    } else if (node != nullptr) {
        gvga_first_dialog->parent_item = node;
        node->gui_data.node_window = gvga_first_dialog;
        if (!vga_display_node_window(node, true)) {
            nba_pd_print_problem(0x40020007, 5, "s", gvga_uid_desc[VGA_UID_NODE_WINDOW].uid_name);
        }
    }
    if (node == nullptr) {
        VGA_ASSERT_TEXT(vsm_is_client_server() != 0, "node != NULL");
        VGA_FATAL(VGA_EXIT_NO_NODE, 0);
    }
    gvga_first_dialog = nullptr;
}

void vga_error_exit() {
    const NB_LONG code = gvga_exit_code;
    if (code == VGA_EXIT_USAGE) {
        return;
    }
    if (code == VGA_EXIT_START) {
        constexpr const char* text = "Unable to start the SNA admin tool - please check error log";
        nb_fprintf(stderr, "%s\n", gvga_messages[605] != nullptr ? gvga_messages[605] : text);
        return;
    }
    log_fatal(code);
    if (gvga_main_dialog == nullptr || !gvga_main_dialog->open ||
        !XtIsRealized(gvga_main_dialog->shell)) {
        return; // a box of a closed dialog is not shown
    }
    vga_display_hourglass(false);
    gvga_exit_code = 0;
    show_fatal(code);
    while (gvga_exit_code == 0) {
        XtAppProcessEvent(gvga_appcontext, XtIMXEvent | XtIMTimer);
    }
    gvga_exit_code = 0;
}
