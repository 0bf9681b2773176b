// The build of the domain: its files, users and nodes; and its parts that are read again.
#include "nof/nof.h"
#include "nof/trace.h"
#include "shell/globals.h"
#include "store/query.h"
#include "store/record_util.h"
#include "store/store.h"
#include "store/tracking_util.h"

namespace {

constexpr VGA_FLAGS file_flags = vga_flag(VGA_SYSTEM_USERS) | vga_flag(VGA_SYSTEM_CPIC) |
                                 vga_flag(VGA_SYSTEM_RJE) | vga_flag(VGA_SYSTEM_LOGGING);

void set_flags(VGA_FLAGS flags) {
    gvga_system->build_flags |= flags;
    gvga_system->built = 0;
}
bool is_set(VGA_SYSTEM_FLAG flag) {
    return (gvga_system->build_flags & vga_flag(flag)) != 0;
}
bool is(const void* vcb, NB_USHORT primary, NB_ULONG secondary) {
    return vcb_header(vcb)->primary_rc == primary && vcb_header(vcb)->secondary_rc == secondary;
}

void query(VGA_QUERY kind) {
    vga_build_query(kind, gvga_system, nullptr, vga_build_system);
}
void register_sink(NB_HANDLE target, NB_USHORT indication) {
    vga_build_register(target, indication, gvga_system->handle, vga_build_system);
}
void open_file(NOF_FILE_ROLE role) {
    vga_build_open_file(role, 0, gvga_system->handle, vga_build_system);
}

template <typename Block>
void send(NB_USHORT opcode, NB_HANDLE target, VGA_CALLBACK callback = vga_build_system) {
    auto* block = vga_new_vcb<Block>(opcode);
    if (block == nullptr || !vga_queue_verb(target, block, gvga_system->handle, callback)) {
        vga_free(block);
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

// Whether the answer to a verb of this build is still to come. role: of the file that it opens.
bool is_awaited(NB_USHORT opcode, NB_BYTE role = 0) {
    const auto awaited = [=](const VGA_QUEUE_ENTRY& entry) {
        return entry.callback == vga_build_system && vcb_header(entry.vcb)->opcode == opcode &&
               (role == 0 || static_cast<OPEN_FILE*>(entry.vcb)->file_info.requested_role == role);
    };
    return vga_find_verb(awaited) != nullptr;
}

// Once in a run, whether or not the configuration file goes or comes in the middle.
void list_nodes() {
    if (is_set(VGA_SYSTEM_NODE_LIST) && !is_awaited(NAP_QUERY_NODE_ALL)) {
        query(VGA_QUERY_NODE_LIST);
    }
}

// ---- files ----

void no_configuration_file() {
    gvga_system->config_file_handle = 0;
    vga_clear_system_flags(file_flags);
    register_sink(0, NAP_SERVER_INDICATION);
}

void configuration_opened(const OPEN_FILE& reply) {
    vga_system& system = *gvga_system;
    if (reply.header.primary_rc != NAP_OK) {
        if (!is(&reply, NAP_STATE_CHECK, NAP_NO_CONFIGURATION_FILE)) {
            return vga_build_failure(0, &reply);
        }
        return no_configuration_file();
    }
    system.config_file_handle = reply.file_handle;
    if (reply.file_info.local_server == 1) {
        std::memcpy(system.local_server, reply.file_info.server_name, sizeof system.local_server);
        if (vga_node* server = vga_find_node(system.local_server); server != nullptr) {
            server->server_role = VGA_ROLE_LOCAL_SERVER;
            vga_redraw_node(server);
        }
    }
    vga_build_set_mode(system.config_file_handle, system.handle, vga_build_system);
}

void file_opened(const void* vcb) {
    const auto& reply = *static_cast<const OPEN_FILE*>(vcb);
    if (is_awaited(NAP_OPEN_FILE, reply.file_info.requested_role)) { // another server has it now
        if (reply.header.primary_rc == NAP_OK &&
            !vga_issue_close_file(reply.file_handle, gvga_system->handle, vga_process_close_file)) {
            VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        }
        return;
    }
    if (reply.file_info.requested_role != NOF_FILE_SNA_NET) {
        return configuration_opened(reply);
    }
    if (reply.header.primary_rc != NAP_OK) {
        return vga_clear_system_flags(vga_flag(VGA_SYSTEM_SNA_NET));
    }
    gvga_system->sna_net_handle = reply.file_handle;
    vga_build_set_mode(reply.file_handle, gvga_system->handle, vga_build_system);
}

void mode_set(NB_HANDLE target, const void* vcb) {
    if (!vga_mode_was_set(vcb)) {
        return;
    }
    if (target == gvga_system->sna_net_handle) {
        register_sink(target, NAP_SNA_NET_INDICATION);
    } else if (is_set(VGA_SYSTEM_LOGGING)) {
        send<QUERY_CENTRAL_LOGGER>(NAP_QUERY_CENTRAL_LOGGER, 0);
    } else {
        register_sink(0, NAP_SERVER_INDICATION);
    }
}

void registered(const void* vcb) {
    if (!vga_sink_was_registered(vcb)) {
        return;
    }
    switch (static_cast<const REGISTER_INDICATION_SINK*>(vcb)->indication_opcode) {
    case NAP_SERVER_INDICATION:
        if (gvga_system->config_file_handle != 0) {
            register_sink(gvga_system->config_file_handle, NAP_CONFIG_INDICATION);
        } else {
            list_nodes();
        }
        break;
    case NAP_CONFIG_INDICATION:
        query(VGA_QUERY_USER);
        if (gvga_supported[VGA_SUPPORT_CPIC]) {
            query(VGA_QUERY_CPIC);
        } else {
            vga_clear_system_flags(vga_flag(VGA_SYSTEM_CPIC));
        }
        if (gvga_supported[VGA_SUPPORT_RJE]) {
            query(VGA_QUERY_RJE);
        } else {
            vga_clear_system_flags(vga_flag(VGA_SYSTEM_RJE));
        }
        break;
    case NAP_SNA_NET_INDICATION:
        query(VGA_QUERY_SNA_NET_LIST);
        break;
    default:
        break;
    }
}

// ---- lists ----

void after_users() {
    vga_recount_user_lus(); // of a file that has come back: the nodes are there already
    list_nodes();
    vga_build_next_action(0, nullptr); // they may have been done before the users
}

void after_nodes() {
    if (!vsm_is_client_server()) {
        vga_clear_system_flags(vga_flag(VGA_SYSTEM_SNA_NET));
    } else if (gvga_system->sna_net_handle == 0 && !is_awaited(NAP_OPEN_FILE, NOF_FILE_SNA_NET)) {
        open_file(NOF_FILE_SNA_NET);
    }
    for (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree); node != nullptr;
         node = vga_next<vga_node>(node->node)) {
        vga_start_build_node(node);
    }
    if (gvga_system->node_tree.root == nullptr) {
        vga_build_next_action(0, nullptr);
    }
}

struct List {
    VGA_QUERY query;
    VGA_SYSTEM_FLAG flag;
    void (*done)() = nullptr;
};
constexpr List lists[] = {
    {VGA_QUERY_USER, VGA_SYSTEM_USERS, after_users},
    {VGA_QUERY_CPIC, VGA_SYSTEM_CPIC},
    {VGA_QUERY_RJE, VGA_SYSTEM_RJE},
    {VGA_QUERY_NODE_LIST, VGA_SYSTEM_NODE_LIST, after_nodes},
    {VGA_QUERY_SNA_NET_LIST, VGA_SYSTEM_SNA_NET, vga_setup_node_roles},
};

void list_page(const List& list, void* vcb) {
    const vga_page page = vga_process_query(list.query, gvga_system, vcb);
    if (page.failed) {
        return;
    }
    if (page.more) {
        return vga_build_query(list.query, gvga_system, page.last, vga_build_system);
    }
    vga_clear_system_flags(vga_flag(list.flag));
    if (list.done != nullptr) {
        list.done();
    }
}

// ---- logs ----

// False: the query failed, exit code 164 is set.
bool keep_central_logger(const void* vcb) {
    vga_system& system = *gvga_system;
    if (vcb_header(vcb)->primary_rc != NAP_OK) {
        vga_build_failure(5, vcb);
        return false;
    }
    std::memcpy(system.central_logger, static_cast<const QUERY_CENTRAL_LOGGER*>(vcb)->node_name,
                sizeof system.central_logger);
    const vga_node* node = vga_find_node(system.central_logger);
    system.central_logger_handle = node != nullptr ? node->node_handle : 0;
    return true;
}

// In the first build the node that runs the logger is not connected yet; its own build goes on with
// the log settings. When the file is read again that node is there, or it never will be.
void ask_central_logger() {
    if (gvga_system->central_logger_handle != 0) {
        vga_build_central_logging();
    } else if (!is_set(VGA_SYSTEM_NODES)) {
        vga_clear_system_flags(vga_flag(VGA_SYSTEM_LOGGING));
    }
}

// True when the logger is another node by now; it is asked for again.
bool logger_moved(const void* vcb) {
    if (!is(vcb, NAP_STATE_CHECK, NAP_NOT_CENTRAL_LOGGER)) {
        return false;
    }
    gvga_system->central_logger_handle = 0;
    send<QUERY_CENTRAL_LOGGER>(NAP_QUERY_CENTRAL_LOGGER, 0, vga_rebuild_logging);
    return true;
}

void central_logging_known(const void* vcb) {
    if (vcb_header(vcb)->primary_rc == NAP_OK) {
        gvga_system->central_logging = static_cast<const QUERY_CENTRAL_LOGGING*>(vcb)->central == 1;
        send<QUERY_GLOBAL_LOG_TYPE>(NAP_QUERY_GLOBAL_LOG_TYPE, gvga_system->central_logger_handle);
    } else if (!logger_moved(vcb)) {
        vga_build_failure(6, vcb);
    }
}

void log_type_known(const void* vcb) {
    if (vcb_header(vcb)->primary_rc == NAP_OK) {
        const auto& reply = *static_cast<const QUERY_GLOBAL_LOG_TYPE*>(vcb);
        gvga_system->log_audit = reply.audit == 1;
        gvga_system->log_exception = reply.exception == 1;
        gvga_system->log_audit_verbose = reply.succinct_audit == 0;
        gvga_system->log_exception_verbose = reply.succinct_exception == 0;
        vga_clear_system_flags(vga_flag(VGA_SYSTEM_LOGGING));
    } else if (!logger_moved(vcb)) {
        vga_build_failure(7, vcb);
    }
}

// ---- targets that go away ----

void lost_target(NB_HANDLE target) {
    vga_system& system = *gvga_system;
    if (target != 0 && target == system.config_file_handle) {
        vga_purge_verb_queue(target, 0, nullptr, 0, nullptr);
        system.config_file_handle = 0; // nothing is left to be closed
        vga_free_system_resources(true, nullptr);
        no_configuration_file();
    } else if (target != 0 && target == system.sna_net_handle) {
        vga_purge_verb_queue(target, 0, nullptr, 0, nullptr);
        system.sna_net_handle = 0;
        vga_free_sna_net_resources(nullptr);
        vga_clear_system_flags(vga_flag(VGA_SYSTEM_SNA_NET));
    } else if (target != 0 && target == system.central_logger_handle) {
        system.central_logger_handle = 0; // the node's own verbs tell that it has gone
        vga_clear_system_flags(vga_flag(VGA_SYSTEM_LOGGING));
    }
}

} // namespace

void vga_start_build_system() {
    open_file(NOF_FILE_CONFIGURATION);
}

void vga_rebuild_system() {
    set_flags(file_flags);
    open_file(NOF_FILE_CONFIGURATION);
}

void vga_rebuild_sna_net() {
    set_flags(vga_flag(VGA_SYSTEM_SNA_NET));
    open_file(NOF_FILE_SNA_NET);
}

void vga_build_without_files() {
    const vga_system& system = *gvga_system;
    if (system.config_file_handle == 0 && (system.build_flags & file_flags) != 0 &&
        !is_awaited(NAP_OPEN_FILE, NOF_FILE_CONFIGURATION)) {
        no_configuration_file();
    }
    // Before the nodes are listed it is still to be opened.
    if (system.sna_net_handle == 0 && !is_set(VGA_SYSTEM_NODE_LIST) &&
        !is_awaited(NAP_OPEN_FILE, NOF_FILE_SNA_NET)) {
        vga_clear_system_flags(vga_flag(VGA_SYSTEM_SNA_NET));
    }
}

void vga_build_central_logging() {
    send<QUERY_CENTRAL_LOGGING>(NAP_QUERY_CENTRAL_LOGGING, gvga_system->central_logger_handle);
}

void vga_rebuild_logging(VGA_COMPLETION* work) {
    if (work->corr != gvga_system->handle || !keep_central_logger(work->vcb)) {
        return;
    }
    set_flags(vga_flag(VGA_SYSTEM_LOGGING));
    ask_central_logger();
}

void vga_setup_node_roles() {
    for (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree); node != nullptr;
         node = vga_next<vga_node>(node->node)) {
        if (node->node_state != VGA_NODE_STATE_BACK_LEVEL) {
            node->server_role = vga_server_role(node);
            vga_redraw_node(node);
        }
    }
    if (gvga_store_hooks.roles_changed != nullptr) {
        gvga_store_hooks.roles_changed();
    }
}

void vga_build_system(VGA_COMPLETION* work) {
    if (work->corr != gvga_system->handle) {
        return;
    }
    const NB_USHORT opcode = vcb_header(work->vcb)->opcode;
    if (vga_target_gone(work->vcb) && opcode != NAP_OPEN_FILE) {
        return lost_target(work->handle);
    }
    switch (opcode) {
    case NAP_OPEN_FILE:
        return gvga_exit_code == 0 ? file_opened(work->vcb) : void();
    case NAP_SET_PROCESSING_MODE:
        return mode_set(work->handle, work->vcb);
    case NAP_REGISTER_INDICATION_SINK:
        return registered(work->vcb);
    case NAP_QUERY_CENTRAL_LOGGER:
        if (keep_central_logger(work->vcb)) {
            register_sink(0, NAP_SERVER_INDICATION);
            ask_central_logger();
        }
        return;
    case NAP_QUERY_CENTRAL_LOGGING:
        return central_logging_known(work->vcb);
    case NAP_QUERY_GLOBAL_LOG_TYPE:
        return log_type_known(work->vcb);
    default:
        break;
    }
    const VGA_QUERY kind = vga_query_of(opcode);
    for (const List& list : lists) {
        if (list.query == kind) {
            return list_page(list, work->vcb);
        }
    }
}
