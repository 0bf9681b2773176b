// The build of one node: from the connection through the lists of every kind. Each completed verb
// clears its flag and starts what follows it; many chains run side by side.
#include "nof/nof.h"
#include "shell/globals.h"
#include "store/query.h"
#include "store/record_util.h"
#include "store/store.h"

namespace {

void query(VGA_QUERY kind, vga_node* node) {
    vga_build_query(kind, node, nullptr, vga_build_node);
}
void register_sink(NB_USHORT indication, vga_node* node) {
    vga_build_register(node->node_handle, indication, node->handle, vga_build_node);
}
void single(NB_USHORT opcode, vga_node* node) {
    vga_build_single(opcode, node, vga_build_node);
}
constexpr VGA_FLAGS flags(int first, int last) {
    return (vga_flag(last + 1) - 1) & ~(vga_flag(first) - 1);
}

// ---- what follows a complete list ----

void after_dlcs(vga_node* node) {
    if (vga_node_has_dspu(node)) {
        query(VGA_QUERY_DSPU_TEMPLATE, node);
    } else {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_DSPU_TEMPLATES));
        register_sink(NAP_PORT_INDICATION, node);
    }
}
void after_dspu_templates(vga_node* node) {
    register_sink(NAP_PORT_INDICATION, node);
}
void after_ports(vga_node* node) {
    register_sink(NAP_LS_INDICATION, node);
    if (vga_node_lists_cns(node)) {
        query(VGA_QUERY_CN, node);
    } else {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_CN_PORTS) | vga_flag(VGA_NODE_CNS));
    }
}
void after_cns(vga_node* node) {
    if (node->cn_tree.root == nullptr) {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_CN_PORTS));
    } else {
        vga_build_first_action(4, node);
    }
}
void after_lss(vga_node* node) {
    query(VGA_QUERY_PU, node);
    if (vga_node_has_dspu(node)) {
        query(VGA_QUERY_DOWN_PU, node);
    } else {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_DOWN_PUS) | vga_flag(VGA_NODE_DOWN_LUS));
    }
    // Its entries name DLCs, ports and link stations, which are all known by now.
    query(VGA_QUERY_DLC_TRACE, node);
}
void register_lus(vga_node* node) {
    register_sink(NAP_LOCAL_LU_INDICATION, node);
    register_sink(NAP_LU_0_TO_3_INDICATION, node);
}
void after_pus(vga_node* node) {
    if (vga_node_has_dlur(node)) {
        register_sink(NAP_DLUR_PU_INDICATION, node);
    } else {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_LOCAL_PUS));
        register_lus(node);
    }
}
void after_down_pus(vga_node* node) {
    register_sink(NAP_DOWNSTREAM_LU_INDICATION, node);
}
void after_lu62s(vga_node* node) {
    if (!vga_create_fake_cp_lu(node)) {
        return;
    }
    query(VGA_QUERY_MODE_DEF, node);
    query(VGA_QUERY_LS_ROUTING, node);
    register_sink(NAP_PLU_INDICATION, node);
}
void after_mode_defs(vga_node* node) {
    register_sink(NAP_DIRECTORY_INDICATION, node);
}
void after_directory(vga_node* node) {
    query(VGA_QUERY_PLU_DEF, node);
}
void after_plu_defs(vga_node* node) {
    query(VGA_QUERY_LU62_TIMEOUT, node);
}
void after_coss(vga_node* node) {
    if (node->cos_tree.root == nullptr) {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_COS_ROWS));
    } else {
        query(VGA_QUERY_COS_NODE_ROW, node);
    }
}
void after_cos_node_rows(vga_node* node) {
    query(VGA_QUERY_COS_TG_ROW, node);
}
void after_primary_lines(vga_node* node) {
    query(VGA_QUERY_PRIMARY_LU0, node);
}

struct List {
    VGA_QUERY query;
    int flag; // -1: none
    void (*done)(vga_node*) = nullptr;
};
constexpr List lists[] = {
    {VGA_QUERY_DLC, VGA_NODE_DLCS, after_dlcs},
    {VGA_QUERY_DSPU_TEMPLATE, VGA_NODE_DSPU_TEMPLATES, after_dspu_templates},
    {VGA_QUERY_PORT, VGA_NODE_PORTS, after_ports},
    {VGA_QUERY_CN, VGA_NODE_CNS, after_cns},
    {VGA_QUERY_LS, VGA_NODE_LSS, after_lss},
    {VGA_QUERY_PU, -1, after_pus},
    {VGA_QUERY_DLUR_PU, VGA_NODE_LOCAL_PUS, register_lus},
    {VGA_QUERY_DOWN_PU, VGA_NODE_DOWN_PUS, after_down_pus},
    {VGA_QUERY_LU62, VGA_NODE_LU62S, after_lu62s},
    {VGA_QUERY_MODE_DEF, VGA_NODE_MODE_DEFS, after_mode_defs},
    {VGA_QUERY_DIR, VGA_NODE_DIRECTORY, after_directory},
    {VGA_QUERY_PLU_DEF, VGA_NODE_PLU_DEFS, after_plu_defs},
    {VGA_QUERY_LU62_TIMEOUT, VGA_NODE_TIMEOUTS},
    {VGA_QUERY_LS_ROUTING, VGA_NODE_LS_ROUTING},
    {VGA_QUERY_COS, VGA_NODE_COSS, after_coss},
    {VGA_QUERY_COS_NODE_ROW, -1, after_cos_node_rows},
    {VGA_QUERY_COS_TG_ROW, VGA_NODE_COS_ROWS},
    {VGA_QUERY_TP_DEF, VGA_NODE_TP_DEFS},
    {VGA_QUERY_USERID, VGA_NODE_USERIDS},
    {VGA_QUERY_ACCESS_LIST, VGA_NODE_ACCESS_LISTS},
    {VGA_QUERY_POOL, VGA_NODE_POOLS},
    {VGA_QUERY_TN_ACCESS, VGA_NODE_TN_ACCESS},
    {VGA_QUERY_TN_ASSOC, VGA_NODE_TN_ASSOCS},
    {VGA_QUERY_TN_REDIRECT, VGA_NODE_TN_REDIRECTS},
    {VGA_QUERY_DLC_TRACE, VGA_NODE_DLC_TRACE},
    {VGA_QUERY_PRIMARY_LINE, VGA_NODE_PRIMARY_LINES, after_primary_lines},
    {VGA_QUERY_PRIMARY_LU0, VGA_NODE_PRIMARY_LU0S},
};

// ---- what follows a registration ----

struct Sink {
    NB_USHORT indication;
    void (*done)(vga_node*);
};
constexpr Sink sinks[] = {
    {NAP_CONFIG_INDICATION,
     [](vga_node* node) { vga_build_set_mode(node->node_handle, node->handle, vga_build_node); }},
    {NAP_DLC_INDICATION, [](vga_node* node) { query(VGA_QUERY_DLC, node); }},
    {NAP_PORT_INDICATION, [](vga_node* node) { query(VGA_QUERY_PORT, node); }},
    {NAP_LS_INDICATION, [](vga_node* node) { register_sink(NAP_PU_INDICATION, node); }},
    {NAP_PU_INDICATION,
     [](vga_node* node) {
         if (vga_node_has_dspu(node)) {
             register_sink(NAP_DOWNSTREAM_PU_INDICATION, node);
         } else {
             query(VGA_QUERY_LS, node);
         }
     }},
    {NAP_DOWNSTREAM_PU_INDICATION, [](vga_node* node) { query(VGA_QUERY_LS, node); }},
    {NAP_LOCAL_LU_INDICATION, [](vga_node* node) { query(VGA_QUERY_LU62, node); }},
    {NAP_LU_0_TO_3_INDICATION,
     [](vga_node* node) {
         if (node->local_pu_tree.root == nullptr) {
             vga_clear_node_flags(node, vga_flag(VGA_NODE_LU03S) | vga_flag(VGA_NODE_EXTRA_DATA));
         } else {
             vga_build_first_action(1, node);
         }
     }},
    {NAP_DOWNSTREAM_LU_INDICATION, [](vga_node* node) { vga_build_first_action(2, node); }},
    {NAP_PLU_INDICATION, [](vga_node* node) { register_sink(NAP_MODE_INDICATION, node); }},
    {NAP_MODE_INDICATION, [](vga_node* node) { vga_build_first_action(3, node); }},
    {NAP_DIRECTORY_INDICATION, [](vga_node* node) { query(VGA_QUERY_DIR, node); }},
    {NAP_DLUR_PU_INDICATION, [](vga_node* node) { query(VGA_QUERY_DLUR_PU, node); }},
};

void registered(vga_node* node, const void* vcb) {
    if (!vga_sink_was_registered(vcb)) {
        return;
    }
    const NB_USHORT indication =
        static_cast<const REGISTER_INDICATION_SINK*>(vcb)->indication_opcode;
    for (const Sink& sink : sinks) {
        if (sink.indication == indication) {
            return sink.done(node);
        }
    }
}

// ---- the first steps ----

void connected(vga_node* node, const void* vcb) {
    if (vcb_header(vcb)->primary_rc != NAP_OK) {
        node->node_state = VGA_NODE_STATE_BACK_LEVEL;
        vga_redraw_node(node);
        vga_clear_node_flags(node, node->build_flags);
        return;
    }
    node->node_handle = static_cast<const CONNECT_NODE*>(vcb)->node_handle;
    if (gvga_system->central_logger[0] != '\0' &&
        vga_compare_node_name(gvga_system->central_logger, node->node_name) == 0) {
        gvga_system->central_logger_handle = node->node_handle;
    }
    register_sink(NAP_CONFIG_INDICATION, node);
    vga_build_open_file(NAP_TP_LOAD_INFO, node->node_handle, node->handle, vga_build_tp_load_info);
}

void mode_set(vga_node* node, const void* vcb) {
    if (!vga_mode_was_set(vcb)) {
        return;
    }
    auto* limits = vga_new_vcb<QUERY_NODE_LIMITS>(NAP_QUERY_NODE_LIMITS);
    if (limits != nullptr) {
        std::memcpy(limits->node_name, node->node_name, sizeof limits->node_name);
    }
    if (limits == nullptr ||
        !vga_queue_verb(node->node_handle, limits, node->handle, vga_build_node)) {
        vga_free(limits);
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return;
    }
    if (gvga_system->central_logger_handle == node->node_handle) {
        vga_build_central_logging();
    }
}

void limits_known(vga_node* node, const void* vcb) {
    const VCB_HEADER& header = *vcb_header(vcb);
    if (header.primary_rc == NAP_STATE_CHECK && header.secondary_rc == NAP_FILE_UNAVAILABLE) {
        vga_dialog* window = node->gui_data.node_window;
        if (gvga_store_hooks.clear_message_bar != nullptr) {
            gvga_store_hooks.clear_message_bar(node);
        }
        vga_display_error_dialog(window != nullptr ? window : gvga_main_dialog, 889,
                                 "fileunavailable", nullptr, 0, "ca", int{sizeof node->node_name},
                                 node->node_name);
        VGA_FATAL(VGA_EXIT_QUERY, header.opcode);
    } else if (header.primary_rc != NAP_OK) {
        vga_build_failure(39, vcb);
    } else {
        node->limits = static_cast<const QUERY_NODE_LIMITS*>(vcb)->limits;
        if (!vga_issue_query_node(node, vga_build_node)) {
            VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        }
    }
}

void query_tn_server(vga_node* node) {
    query(VGA_QUERY_TN_ACCESS, node);
    query(VGA_QUERY_TN_ASSOC, node);
    single(NAP_QUERY_TN3270_DEFAULTS, node);
    single(NAP_QUERY_TN3270_SSL_LDAP, node);
    query(VGA_QUERY_TN_REDIRECT, node);
    single(NAP_QUERY_TN3270_EXPRESS_LOGON, node);
    vga_clear_node_flags(node, flags(VGA_NODE_TN_SLP, VGA_NODE_TN_SLP_TRACE));
    if (node->node_state == VGA_NODE_STATE_ACTIVE) {
        single(NAP_QUERY_TN_SERVER_TRACE, node);
    } else {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_TN_SERVER_TRACE));
    }
}

void node_known(vga_node* node, void* vcb) {
    bool configured;
    if (!vga_process_query_node(node, vcb, &configured)) {
        return;
    }
    if (!configured) {
        return vga_start_build_unconfigured_node(node);
    }
    if (node->node_state == VGA_NODE_STATE_STOPPED &&
        !(vga_create_fake_cp_lu(node) && vga_init_sna_modes(node) && vga_init_sna_cos(node))) {
        return;
    }
    register_sink(NAP_DLC_INDICATION, node);
    vga_clear_node_flags(node, flags(VGA_NODE_APPCIP, VGA_NODE_UNUSED_35));
    query(VGA_QUERY_COS, node);
    query(VGA_QUERY_TP_DEF, node);
    if (vga_node_has_tn_server(node)) {
        query_tn_server(node);
    } else {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_TN_ACCESS) |
                                       flags(VGA_NODE_TN_ASSOCS, VGA_NODE_TN_DEFAULTS) |
                                       vga_flag(VGA_NODE_TN_SERVER_TRACE) |
                                       flags(VGA_NODE_TN_SSL_LDAP, VGA_NODE_EXPRESS_LOGON));
    }
    single(NAP_QUERY_TRACE_TYPE, node);
    if (vsm_is_client_server()) {
        single(NAP_QUERY_CS_TRACE, node);
    } else {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_CS_TRACE));
    }
    single(NAP_QUERY_DEFAULTS, node);
    query(VGA_QUERY_USERID, node);
    query(VGA_QUERY_ACCESS_LIST, node);
    query(VGA_QUERY_POOL, node);
    if (vga_node_has_back_level_trace(node)) {
        single(NAP_QUERY_BCK_CS_TRACE, node);
    } else {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_BCK_CS_TRACE));
    }
    vga_clear_node_flags(node, flags(VGA_NODE_PRIMARY_LINES, VGA_NODE_PRIMARY_LU0S));
}

void list_page(vga_node* node, const List& list, void* vcb) {
    const vga_page page = vga_process_query(list.query, node, vcb);
    if (page.failed) {
        return;
    }
    if (page.more) {
        return vga_build_query(list.query, node, page.last, vga_build_node);
    }
    if (list.flag >= 0) {
        vga_clear_node_flags(node, vga_flag(list.flag));
    }
    if (list.done != nullptr) {
        list.done(node);
    }
}

} // namespace

void vga_start_build_node(vga_node* node) {
    node->build_flags = vga_flag(VGA_NODE_FLAG_COUNT) - 1;
    node->built = 0;
    auto* block = vga_new_vcb<CONNECT_NODE>(NAP_CONNECT_NODE);
    if (block != nullptr) {
        std::memcpy(block->node_name, node->node_name, sizeof block->node_name);
    }
    if (block == nullptr || !vga_queue_verb(0, block, node->handle, vga_build_node)) {
        vga_free(block);
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

void vga_build_node(VGA_COMPLETION* work) {
    auto* node = static_cast<vga_node*>(nba_validate_handle(work->corr));
    if (node == nullptr) {
        return;
    }
    const NB_USHORT opcode = vcb_header(work->vcb)->opcode;
    if (opcode == NAP_CONNECT_NODE) {
        return connected(node, work->vcb);
    }
    if (vga_target_gone(work->vcb)) {
        return vga_build_lost_node(node);
    }
    switch (opcode) {
    case NAP_REGISTER_INDICATION_SINK:
        return registered(node, work->vcb);
    case NAP_SET_PROCESSING_MODE:
        return mode_set(node, work->vcb);
    case NAP_QUERY_NODE_LIMITS:
        return limits_known(node, work->vcb);
    case NAP_QUERY_NODE:
        return node_known(node, work->vcb);
    default:
        break;
    }
    const VGA_QUERY kind = vga_query_of(opcode);
    for (const List& list : lists) {
        if (list.query == kind) {
            return list_page(node, list, work->vcb);
        }
    }
    vga_process_single(node, work->vcb);
}

// ---- TP load information ----

void vga_build_tp_load_info(VGA_COMPLETION* work) {
    auto* node = static_cast<vga_node*>(nba_validate_handle(work->corr));
    if (node == nullptr) {
        return;
    }
    const NB_USHORT opcode = vcb_header(work->vcb)->opcode;
    if (opcode == NAP_OPEN_FILE) {
        if (vcb_header(work->vcb)->primary_rc != NAP_OK) {
            return vga_build_lost_node(node, vga_target_gone(work->vcb));
        }
        node->tp_load_handle = static_cast<const OPEN_FILE*>(work->vcb)->file_handle;
        return vga_build_register(node->tp_load_handle, NAP_CONFIG_INDICATION, node->handle,
                                  vga_build_tp_load_info);
    }
    if (vga_target_gone(work->vcb)) { // the file, and with it the node's connection
        node->tp_load_handle = 0;
        return vga_build_lost_node(node);
    }
    if (opcode == NAP_REGISTER_INDICATION_SINK) {
        if (vga_sink_was_registered(work->vcb)) {
            vga_build_set_mode(node->tp_load_handle, node->handle, vga_build_tp_load_info);
        }
        return;
    }
    if (opcode == NAP_SET_PROCESSING_MODE) {
        if (vga_mode_was_set(work->vcb)) {
            vga_build_query(VGA_QUERY_TP_LOAD, node, nullptr, vga_build_tp_load_info);
        }
        return;
    }
    const vga_page page = vga_process_query(VGA_QUERY_TP_LOAD, node, work->vcb);
    if (page.more) {
        vga_build_query(VGA_QUERY_TP_LOAD, node, page.last, vga_build_tp_load_info);
    } else if (!page.failed) {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_TP_LOAD_INFOS));
    }
}

// ---- a node without configuration ----

namespace {

struct UnconfiguredSink {
    NB_USHORT indication;
    VGA_FLAGS flags; // cleared by the registration
};
constexpr UnconfiguredSink unconfigured_sinks[] = {
    {NAP_DLC_INDICATION, vga_flag(VGA_NODE_DLCS) | vga_flag(VGA_NODE_DLC_TRACE)},
    {NAP_PORT_INDICATION, vga_flag(VGA_NODE_PORTS) | flags(VGA_NODE_CN_PORTS, VGA_NODE_CNS)},
    {NAP_LS_INDICATION, vga_flag(VGA_NODE_LSS)},
    {NAP_PU_INDICATION, 0}, // see below
    {NAP_PLU_INDICATION, vga_flag(VGA_NODE_PLU_DEFS)},
    {NAP_MODE_INDICATION, vga_flag(VGA_NODE_LU62_DETAILS)},
    {NAP_LU_0_TO_3_INDICATION, vga_flag(VGA_NODE_LU03S)},
    {NAP_LOCAL_LU_INDICATION, 0},
    {NAP_DOWNSTREAM_LU_INDICATION, vga_flag(VGA_NODE_DOWN_LUS)},
    {NAP_DOWNSTREAM_PU_INDICATION, vga_flag(VGA_NODE_DOWN_PUS)},
    {NAP_DIRECTORY_INDICATION, vga_flag(VGA_NODE_DIRECTORY)},
    {NAP_DLUR_PU_INDICATION, vga_flag(VGA_NODE_LOCAL_PUS)},
};

} // namespace

void vga_start_build_unconfigured_node(vga_node* node) {
    const auto add_sink = [node](NB_USHORT indication) {
        vga_build_register(node->node_handle, indication, node->handle,
                           vga_build_unconfigured_node);
    };
    vga_build_single(NAP_QUERY_TN3270_EXPRESS_LOGON, node, vga_build_unconfigured_node);
    for (const NB_USHORT indication : {NAP_DLC_INDICATION, NAP_PORT_INDICATION, NAP_LS_INDICATION,
                                       NAP_PU_INDICATION, NAP_PLU_INDICATION, NAP_MODE_INDICATION,
                                       NAP_LU_0_TO_3_INDICATION, NAP_LOCAL_LU_INDICATION}) {
        add_sink(indication);
    }
    VGA_FLAGS done = vga_flag(VGA_NODE_DOWN_LUS) | vga_flag(VGA_NODE_LU62S) |
                     vga_flag(VGA_NODE_COS_ROWS) | vga_flag(VGA_NODE_COSS) |
                     vga_flag(VGA_NODE_MODE_DEFS) | flags(VGA_NODE_TP_DEFS, VGA_NODE_TRACE_TYPE) |
                     flags(VGA_NODE_CS_TRACE, VGA_NODE_TN_SERVER_TRACE) |
                     flags(VGA_NODE_APPCIP, VGA_NODE_ACCESS_LISTS) |
                     flags(VGA_NODE_TN_SSL_LDAP, VGA_NODE_TN_SLP_TRACE);
    if (vga_node_has_dspu(node)) {
        add_sink(NAP_DOWNSTREAM_LU_INDICATION);
        add_sink(NAP_DOWNSTREAM_PU_INDICATION);
    } else {
        done |= vga_flag(VGA_NODE_DOWN_PUS);
    }
    if (gvga_supported[VGA_SUPPORT_DIRECTORY]) {
        add_sink(NAP_DIRECTORY_INDICATION);
    } else {
        done |= vga_flag(VGA_NODE_DIRECTORY);
    }
    node->tn_ssl_ldap.ldap_port = 389;
    vga_clear_node_flags(node, done);
}

void vga_build_unconfigured_node(VGA_COMPLETION* work) {
    auto* node = static_cast<vga_node*>(nba_validate_handle(work->corr));
    if (node == nullptr) {
        return;
    }
    if (vga_target_gone(work->vcb)) {
        return vga_build_lost_node(node);
    }
    if (vcb_header(work->vcb)->opcode != NAP_REGISTER_INDICATION_SINK) {
        vga_process_single(node, work->vcb);
        return;
    }
    if (!vga_sink_was_registered(work->vcb)) {
        return;
    }
    const NB_USHORT indication =
        static_cast<const REGISTER_INDICATION_SINK*>(work->vcb)->indication_opcode;
    if (indication == NAP_PU_INDICATION) {
        if (vga_node_has_dlur(node)) {
            vga_build_register(node->node_handle, NAP_DLUR_PU_INDICATION, node->handle,
                               vga_build_unconfigured_node);
        } else {
            vga_clear_node_flags(node, vga_flag(VGA_NODE_LOCAL_PUS));
        }
        return;
    }
    for (const UnconfiguredSink& sink : unconfigured_sinks) {
        if (sink.indication == indication) {
            vga_clear_node_flags(node, sink.flags);
        }
    }
}
