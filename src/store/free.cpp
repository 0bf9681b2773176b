// The end of nodes, files and the whole store.
#include "nof/nof.h"
#include "shell/globals.h"
#include "shell/verb_queue.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"
#include "store/tracking_util.h"

namespace {

// Releases a target after forgetting what else was on its way there. A failure sets exit code 1.
void release_target(NB_HANDLE target,
                    bool (*issue)(NB_HANDLE handle, NB_ULONG corr, VGA_CALLBACK callback),
                    VGA_CALLBACK callback) {
    vga_purge_verb_queue(target, 0, nullptr, 0, nullptr);
    if (!issue(target, gvga_system->handle, callback)) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

bool exit_pending() {
    return gvga_exit_code != 0;
}

// Closes what belongs to the windows and, unless they stay, the windows themselves.
enum class WINDOWS { STAY, GO };
void close_windows(std::initializer_list<vga_dialog*> windows, WINDOWS fate) {
    for (vga_dialog* window : windows) {
        if (window != nullptr) {
            vga_close_children(window, fate == WINDOWS::GO, true);
        }
    }
}

void tell_roles_changed() {
    if (gvga_store_hooks.roles_changed != nullptr) {
        gvga_store_hooks.roles_changed();
    }
}

void release_sna_net_node(vga_sna_net_node* node) {
    vga_free(node);
}

} // namespace

void vga_free_node_resources(vga_node* node, bool gone, VGA_CALLBACK callback) {
    if (vsm_is_client_server()) {
        vga_do_free_node_res(node, gone, callback);
    } else if (gvga_store_hooks.start_shutdown == nullptr || !gvga_store_hooks.start_shutdown()) {
        VGA_FATAL(VGA_EXIT_ORDERLY, 0);
    }
}

void vga_do_free_node_res(vga_node* node, bool gone, VGA_CALLBACK callback) {
    const bool send = !gone && !exit_pending();
    close_windows(
        {node->gui_data.dialog, node->gui_data.node_window, node->gui_data.tracing_dialog},
        WINDOWS::GO);
    vga_leave_tree(&gvga_system->node_tree, &node->node);
    if (node->tp_load_handle != 0) {
        if (send) {
            release_target(node->tp_load_handle, vga_issue_close_file, vga_process_close_file);
        } else {
            vga_purge_verb_queue(node->tp_load_handle, 0, nullptr, 0, nullptr);
        }
    }
    if (node->node_handle != 0) {
        if (send) {
            release_target(node->node_handle, vga_issue_disconnect_node,
                           callback != nullptr ? callback : vga_process_disconnect_node);
        } else {
            vga_purge_verb_queue(node->node_handle, 0, nullptr, 0, nullptr);
        }
        if (gvga_system->central_logger_handle == node->node_handle) {
            gvga_system->central_logger_handle = 0;
        }
    }
    if (gvga_store_hooks.node_removed != nullptr) {
        gvga_store_hooks.node_removed(node);
    }
    vga_delete_row(&gvga_system->node_viewer_root, &node->viewer, true);
    for (vga_viewer_root* root : vga_node_roots(node)) {
        vga_viewer_destroy_root(root);
    }
    vga_release_node_pools(node);
    for (const auto release :
         {vga_release_connectivity, vga_release_lu62s, vga_release_remote,
          vga_release_lu62_timeouts, vga_release_primary_lines, vga_release_tps,
          vga_release_templates, vga_release_security, vga_release_tn3270, vga_release_sessions}) {
        release(node);
    }
    vga_free_record(node);
}

void vga_free_system_resources(bool report, VGA_CALLBACK callback) {
    vga_system& system = *gvga_system;
    if (system.config_file_handle != 0 && !exit_pending()) {
        release_target(system.config_file_handle, vga_issue_close_file,
                       callback != nullptr ? callback : vga_process_close_file);
    }
    system.config_file_handle = 0;
    close_windows({system.gui_data.users_window, system.gui_data.cpic_window,
                   system.gui_data.rje_window, system.gui_data.pool_window},
                  WINDOWS::STAY);
    const bool lost = report && vga_report_lost_updates();
    vga_delete_domain_records(&system);
    if (vga_node* server = vga_find_node(system.local_server);
        server != nullptr && system.local_server[0] != '\0') {
        server->server_role = VGA_ROLE_SERVER;
        std::memset(system.local_server, 0, sizeof system.local_server);
        vga_redraw_node(server);
        tell_roles_changed();
    }
    if (lost) {
        vga_display_info_dialog(gvga_main_dialog, 280, "masterupdatelost", nullptr, 0, "");
    }
}

void vga_free_sna_net_resources(VGA_CALLBACK callback) {
    if (gvga_system->sna_net_handle != 0) {
        release_target(gvga_system->sna_net_handle, vga_issue_close_file,
                       callback != nullptr ? callback : vga_process_close_file);
    }
    gvga_system->sna_net_handle = 0;
    vga_drain<vga_sna_net_node>(&gvga_system->sna_net_tree, release_sna_net_node);
    tell_roles_changed();
}

void vga_destroy_data_structures() {
    while (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree)) {
        vga_do_free_node_res(node, true, nullptr);
    }
    vga_drain<vga_sna_net_node>(&gvga_system->sna_net_tree, release_sna_net_node);
    for (vga_viewer_root* root : vga_system_roots(gvga_system)) {
        vga_viewer_destroy_root(root);
    }
    vga_release_domain_records(gvga_system);
    vga_release_pools(gvga_system);
    vga_free_record(gvga_system);
    gvga_system = nullptr;
}
