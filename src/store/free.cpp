// The end of nodes, files and the whole store.
#include "nof/nof.h"
#include "shell/globals.h"
#include "shell/verb_queue.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

void ignore_completion(VGA_COMPLETION*) {}

// Sends a verb of the header alone that releases a target, after forgetting what else was on its
// way there. A failure sets exit code 1.
void release_target(NB_HANDLE target, NB_USHORT opcode, VGA_CALLBACK callback) {
    vga_purge_verb_queue(target, 0, nullptr, 0, nullptr);
    auto* vcb = vga_new_vcb<HEADER_ONLY>(opcode);
    if (vcb == nullptr || !vga_queue_verb(target, vcb, gvga_system->handle, callback)) {
        vga_free(vcb);
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

bool exit_pending() {
    return gvga_exit_code != 0;
}

void close_windows(std::initializer_list<vga_dialog*> windows) {
    for (vga_dialog* window : windows) {
        if (window != nullptr) {
            vga_close_children(window, false, true);
        }
    }
}

void release_sna_net_node(vga_sna_net_node* node) {
    vga_free(node);
}

} // namespace

void vga_process_disconnect_node(VGA_COMPLETION*) {} // the node's records went when it was issued

void vga_free_node_resources(vga_node* node, bool gone, VGA_CALLBACK callback) {
    if (vsm_is_client_server()) {
        vga_do_free_node_res(node, gone, callback);
    } else if (gvga_store_hooks.start_shutdown == nullptr || !gvga_store_hooks.start_shutdown()) {
        VGA_FATAL(VGA_EXIT_ORDERLY, 0);
    }
}

void vga_do_free_node_res(vga_node* node, bool gone, VGA_CALLBACK callback) {
    const bool send = !gone && !exit_pending();
    close_windows({node->gui_data.node_window});
    vga_leave_tree(&gvga_system->node_tree, &node->node);
    if (node->tp_load_handle != 0) {
        if (send) {
            release_target(node->tp_load_handle, NAP_CLOSE_FILE, ignore_completion);
        } else {
            vga_purge_verb_queue(node->tp_load_handle, 0, nullptr, 0, nullptr);
        }
    }
    if (node->node_handle != 0) {
        if (send) {
            release_target(node->node_handle, NAP_DISCONNECT_NODE,
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
    vga_release_connectivity(node);
    vga_release_lu62s(node);
    vga_release_remote(node);
    vga_free(node->appcip_defaults);
    vga_free_record(node);
}

void vga_free_system_resources(bool, VGA_CALLBACK callback) {
    vga_system& system = *gvga_system;
    if (system.config_file_handle != 0 && !exit_pending()) {
        release_target(system.config_file_handle, NAP_CLOSE_FILE,
                       callback != nullptr ? callback : ignore_completion);
    }
    system.config_file_handle = 0;
    close_windows({system.gui_data.users_window, system.gui_data.cpic_window,
                   system.gui_data.rje_window, system.gui_data.pool_window});
    if (vga_node* server = vga_find_node(system.local_server);
        server != nullptr && system.local_server[0] != '\0') {
        server->server_role = VGA_ROLE_SERVER;
        vga_redraw_node(server);
        std::memset(system.local_server, 0, sizeof system.local_server);
    }
}

void vga_free_sna_net_resources(VGA_CALLBACK callback) {
    if (gvga_system->sna_net_handle != 0) {
        release_target(gvga_system->sna_net_handle, NAP_CLOSE_FILE,
                       callback != nullptr ? callback : ignore_completion);
    }
    gvga_system->sna_net_handle = 0;
    vga_drain<vga_sna_net_node>(&gvga_system->sna_net_tree, release_sna_net_node);
}

void vga_destroy_data_structures() {
    while (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree)) {
        vga_do_free_node_res(node, true, nullptr);
    }
    vga_drain<vga_sna_net_node>(&gvga_system->sna_net_tree, release_sna_net_node);
    for (vga_viewer_root* root : vga_system_roots(gvga_system)) {
        vga_viewer_destroy_root(root);
    }
    vga_free_record(gvga_system);
    gvga_system = nullptr;
}
