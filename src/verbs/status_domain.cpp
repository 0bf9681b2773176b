// Indications of the node software and of the domain.
#include "nof/node.h"
#include "nof/nof.h"
#include "shell/globals.h"
#include "store/build.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "verbs/status_util.h"

namespace {

constexpr NB_ULONG SERVER_UP = 1;

enum SERVER_FLAG : NB_ULONG {
    SERVER_CONFIGURATION = 0x4,
    SERVER_THIS_MACHINE = 0x8,
    SERVER_BACKUP = 0x2000 | 0x4000, // either of the two
};

VGA_SERVER_ROLE role_of(NB_ULONG flags) {
    if ((flags & SERVER_CONFIGURATION) == 0) {
        return VGA_ROLE_NONE;
    }
    if ((flags & SERVER_THIS_MACHINE) != 0) {
        return VGA_ROLE_LOCAL_SERVER;
    }
    return (flags & SERVER_BACKUP) != 0 ? VGA_ROLE_SERVER : VGA_ROLE_NONE;
}

void forget(NB_NODE_NAME name) {
    std::memset(name, 0, sizeof(NB_NODE_NAME));
}

// The node software ends, and with it every target: nothing is sent any more.
void begin_shutdown() {
    VGA_FATAL(VGA_EXIT_SHUTDOWN, 0);
    XtAppAddTimeOut(gvga_appcontext, 0, vga_null_timeout_proc, nullptr); // the loop looks
    gvga_system->config_file_handle = 0;
    gvga_system->sna_net_handle = 0;
    gvga_system->central_logger_handle = 0;
    forget(gvga_system->local_server);
    for (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree); node != nullptr;
         node = static_cast<vga_node*>(ntl_avl_next(&node->node))) {
        node->node_handle = 0;
        node->tp_load_handle = 0;
    }
}

// Tells the operator, and takes the node out of a domain.
void report_dead(vga_node* node) {
    vga_display_info_dialog(gvga_main_dialog, 302, "nodedead", vga_node_dead_info_cb, 0, "cs",
                            static_cast<int>(strnlen(node->node_name, sizeof node->node_name)),
                            node->node_name);
    if (vsm_is_client_server()) {
        vga_free_node_resources(node, true, nullptr);
        vga_build_next_action(0, nullptr); // the build may have waited for it alone
    } else {
        node->tp_load_handle = 0; // its loss is indicated as well; one message will do
    }
}

// Opens files again that were lost while their server stayed.
void reopen_files() {
    const VGA_FLAGS opening = gvga_system->build_flags;
    if (gvga_system->config_file_handle == 0 && (opening & vga_flag(VGA_SYSTEM_USERS)) == 0) {
        vga_rebuild_system();
    }
    if (gvga_system->sna_net_handle == 0 && (opening & vga_flag(VGA_SYSTEM_SNA_NET)) == 0) {
        vga_rebuild_sna_net();
    }
}

void server_up(vga_node* node, NB_ULONG flags) {
    const VGA_SERVER_ROLE role = role_of(flags);
    if (role == node->server_role) {
        if (role == VGA_ROLE_LOCAL_SERVER) {
            reopen_files();
        }
        return;
    }
    if (role == VGA_ROLE_LOCAL_SERVER || node->server_role == VGA_ROLE_LOCAL_SERVER) {
        vga_free_system_resources(false, nullptr);
        vga_free_sna_net_resources(nullptr);
        if (role == VGA_ROLE_LOCAL_SERVER) {
            vga_rebuild_system();
            vga_rebuild_sna_net();
        } else {
            vga_build_without_files();
        }
    }
    node->server_role = role;
    vga_redraw_node(node);
    if (gvga_store_hooks.roles_changed != nullptr) {
        gvga_store_hooks.roles_changed();
    }
}

void server_down(vga_node* node) {
    if (node->server_role == VGA_ROLE_LOCAL_SERVER) {
        vga_free_system_resources(true, nullptr);
        vga_free_sna_net_resources(nullptr);
        vga_build_without_files();
    }
    report_dead(node);
}

// A node that was not known, in the store; its build starts now, or with that of all. Null: exit
// code 1 is set.
vga_node* add_server(const NODE_ALL_ENTRY& entry) {
    vga_node* node = vga_init_vga_node(&entry);
    if (node == nullptr) {
        return nullptr;
    }
    node = vga_insert_vga_node(node);
    if ((gvga_system->build_flags & vga_flag(VGA_SYSTEM_NODE_LIST)) == 0) {
        vga_start_build_node(node);
    }
    return node;
}

} // namespace

void vga_node_dead_info_cb(vga_dialog*, NB_ULONG, NB_ULONG) {
    if (!vsm_is_client_server() && gvga_store_hooks.start_shutdown != nullptr) {
        gvga_store_hooks.start_shutdown();
    }
}

void vga_process_nof_status_ind(VGA_COMPLETION* completion, void* block) {
    const auto& ind = *static_cast<const NOF_STATUS_INDICATION*>(block);
    if (ind.status == NAP_SYSTEM_STOPPING) {
        begin_shutdown();
        return;
    }
    if (nba_validate_handle(completion->corr) == nullptr) {
        return;
    }
    const auto lost = [&ind](NB_HANDLE handle) { return handle != 0 && handle == ind.handle; };
    if (lost(gvga_system->sna_net_handle)) {
        vga_free_sna_net_resources(nullptr);
        vga_build_without_files();
    } else if (lost(gvga_system->config_file_handle) || ind.status == NAP_STATUS_MASTER_LOST) {
        vga_free_system_resources(ind.status != NAP_STATUS_MASTER_LOST, nullptr);
        vga_build_without_files();
    } else if (vga_node* node = vga_find_node_by_handle(ind.handle); node != nullptr) {
        if (node->server_role == VGA_ROLE_LOCAL_SERVER) {
            forget(gvga_system->local_server);
        }
        report_dead(node);
    }
}

void vga_process_server_ind(VGA_COMPLETION* completion, void* block) {
    const auto& ind = *static_cast<const SERVER_INDICATION*>(block);
    if (nba_validate_handle(completion->corr) == nullptr) {
        return;
    }
    NODE_ALL_ENTRY entry{};
    entry.length = sizeof entry;
    vga_copy_node_name(entry.node_name, ind.server_name);

    vga_node* node = vga_find_node(entry.node_name);
    if (ind.status != SERVER_UP) {
        if (node != nullptr) {
            server_down(node);
        }
        return;
    }
    if (node == nullptr) {
        node = add_server(entry);
    } else if (node->node_state == VGA_NODE_STATE_BACK_LEVEL && vga_check_node_startup(node)) {
        vga_start_build_node(node); // it could not be connected before; perhaps it can be now
    }
    if (node != nullptr) {
        server_up(node, ind.flags);
    }
}

void vga_process_sna_net_ind(VGA_COMPLETION* completion, void*) {
    if (nba_validate_handle(completion->corr) != nullptr) {
        vga_free_sna_net_resources(nullptr);
        vga_build_without_files();
    }
}
