// Verbs of the build besides the lists: queries of one reply, files, registrations; and failures.
#include "nof/trace.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "store/query.h"
#include "store/record_util.h"
#include "store/store.h"

namespace {

void failed_to_issue(void* block) {
    if (block != nullptr) {
        vga_free_vcb(block);
    }
    VGA_FATAL(VGA_EXIT_INTERNAL, 0);
}

// Queues a block, which may be null for want of memory.
void send(NB_HANDLE target, void* block, NB_ULONG corr, VGA_CALLBACK callback) {
    if (block == nullptr || !vga_queue_verb(target, block, corr, callback)) {
        failed_to_issue(block);
    }
}

bool is(const void* vcb, NB_USHORT primary, NB_ULONG secondary) {
    return vcb_header(vcb)->primary_rc == primary && vcb_header(vcb)->secondary_rc == secondary;
}

// ---- what the node keeps of a reply ----

template <typename Block> const Block& as(const void* vcb) {
    return *static_cast<const Block*>(vcb);
}

void keep_defaults(vga_node* node, const void* vcb) {
    node->defaults = as<QUERY_DEFAULTS>(vcb).defaults;
    if (node->defaults.default_mode_name[0] == 0) {
        std::memset(node->defaults.default_mode_name, 0x40,
                    sizeof node->defaults.default_mode_name);
    }
}
void keep_trace_type(vga_node* node, const void* vcb) {
    const auto& reply = as<QUERY_TRACE_TYPE>(vcb);
    node->trace_truncation = reply.truncation_length;
    node->trace_flags = reply.node_flags;
    node->trace_kernel_flags = reply.kernel_flags;
}
void keep_cs_trace(vga_node* node, const void* vcb) {
    node->cs_trace[0] = as<QUERY_CS_TRACE>(vcb).trace_flags;
    node->cs_trace[1] = as<QUERY_CS_TRACE>(vcb).trace_direction;
}
void keep_bck_cs_trace(vga_node* node, const void* vcb) {
    node->bck_cs_trace = as<QUERY_BCK_CS_TRACE>(vcb).trace_flags;
}
void keep_tn_server_trace(vga_node* node, const void* vcb) {
    node->tn_server_trace = as<QUERY_TN_SERVER_TRACE>(vcb).trace_flags;
}
void keep_slp_trace(vga_node* node, const void* vcb) {
    node->tn_slp_trace = as<QUERY_TN3270_SLP_TRACE>(vcb).trace_flags;
}
void keep_tn_defaults(vga_node* node, const void* vcb) {
    node->tn_defaults = as<QUERY_TN3270_DEFAULTS>(vcb).defaults;
}
void keep_ssl_ldap(vga_node* node, const void* vcb) {
    std::memcpy(&node->tn_ssl_ldap, as<QUERY_TN3270_SSL_LDAP>(vcb).buffer,
                sizeof node->tn_ssl_ldap);
}
void keep_slp(vga_node* node, const void* vcb) {
    node->tn_slp = as<QUERY_TN3270_SLP>(vcb).settings;
}
void keep_express_logon(vga_node* node, const void* vcb) {
    node->express_logon = as<QUERY_TN3270_EXPRESS_LOGON>(vcb);
}

// A node on which express logon was never configured.
bool no_express_logon(vga_node* node, const void* vcb) {
    const VCB_HEADER& header = *vcb_header(vcb);
    if (header.primary_rc != NAP_FUNCTION_NOT_SUPPORTED &&
        !is(vcb, NAP_STATE_CHECK, NAP_NODE_NOT_CONFIGURED) &&
        !is(vcb, NAP_STATE_CHECK, NAP_EXPRESS_LOGON_NOT_CONFIGURED)) {
        return false;
    }
    node->express_logon.enabled = 0;
    node->express_logon.dcas_port = 8990;
    return true;
}

struct Single {
    NB_USHORT opcode;
    NB_USHORT block_size;
    int flag;
    int failure;
    void (*keep)(vga_node*, const void*);
    bool (*excused)(vga_node*, const void*) = nullptr; // a failure that is none
    NB_USHORT buffer_size = 0;
};
constexpr Single singles[] = {
    {NAP_QUERY_DEFAULTS, sizeof(QUERY_DEFAULTS), VGA_NODE_DEFAULTS_SET, 36, keep_defaults},
    {NAP_QUERY_TRACE_TYPE, sizeof(QUERY_TRACE_TYPE), VGA_NODE_TRACE_TYPE, 50, keep_trace_type},
    {NAP_QUERY_CS_TRACE, sizeof(QUERY_CS_TRACE), VGA_NODE_CS_TRACE, 35, keep_cs_trace},
    {NAP_QUERY_BCK_CS_TRACE, sizeof(QUERY_BCK_CS_TRACE), VGA_NODE_BCK_CS_TRACE, 42,
     keep_bck_cs_trace},
    {NAP_QUERY_TN_SERVER_TRACE, sizeof(QUERY_TN_SERVER_TRACE), VGA_NODE_TN_SERVER_TRACE, 49,
     keep_tn_server_trace},
    {NAP_QUERY_TN3270_SLP_TRACE, sizeof(QUERY_TN3270_SLP_TRACE), VGA_NODE_TN_SLP_TRACE, 49,
     keep_slp_trace},
    {NAP_QUERY_TN3270_DEFAULTS, sizeof(QUERY_TN3270_DEFAULTS), VGA_NODE_TN_DEFAULTS, 46,
     keep_tn_defaults},
    {NAP_QUERY_TN3270_SSL_LDAP, sizeof(QUERY_TN3270_SSL_LDAP), VGA_NODE_TN_SSL_LDAP, 58,
     keep_ssl_ldap, nullptr, sizeof(TN3270_SSL_LDAP_SETTINGS)},
    {NAP_QUERY_TN3270_SLP, sizeof(QUERY_TN3270_SLP), VGA_NODE_TN_SLP, 58, keep_slp},
    {NAP_QUERY_TN3270_EXPRESS_LOGON, sizeof(QUERY_TN3270_EXPRESS_LOGON), VGA_NODE_EXPRESS_LOGON, 59,
     keep_express_logon, no_express_logon},
};

const Single* single_of(NB_USHORT opcode) {
    for (const Single& row : singles) {
        if (row.opcode == opcode) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace

void vga_build_single(NB_USHORT opcode, vga_node* node, VGA_CALLBACK callback) {
    const Single& row = *single_of(opcode);
    auto* block = vga_new_vcb<NB_BYTE>(opcode, row.block_size);
    if (block != nullptr && row.buffer_size != 0) {
        auto* query = reinterpret_cast<QUERY_TN3270_SSL_LDAP*>(block);
        query->buffer = vga_get_querybuf(row.buffer_size);
        query->buffer_size = row.buffer_size;
        if (query->buffer == nullptr) {
            return failed_to_issue(block);
        }
    }
    send(node->node_handle, block, node->handle, callback);
}

bool vga_process_single(vga_node* node, const void* vcb) {
    const Single* row = single_of(vcb_header(vcb)->opcode);
    if (row == nullptr) {
        return false;
    }
    if (vcb_header(vcb)->primary_rc == NAP_OK) {
        row->keep(node, vcb);
    } else if (row->excused == nullptr || !row->excused(node, vcb)) {
        vga_build_failure(row->failure, vcb);
        return true;
    }
    vga_clear_node_flags(node, vga_flag(row->flag));
    return true;
}

// ---- the node query ----

bool vga_issue_query_node(vga_node* node, VGA_CALLBACK callback) {
    auto* block = vga_new_vcb<QUERY_NODE>(NAP_QUERY_NODE);
    if (block == nullptr || !vga_queue_verb(node->node_handle, block, node->handle, callback)) {
        vga_free(block);
        return false;
    }
    return true;
}

bool vga_process_query_node(vga_node* node, void* vcb, bool* configured) {
    *configured = true;
    if (vcb_header(vcb)->primary_rc == NAP_OK) {
        node->vcb = as<QUERY_NODE>(vcb);
        node->node_state = node->vcb.active != 0 ? VGA_NODE_STATE_ACTIVE : VGA_NODE_STATE_STOPPED;
    } else if (is(vcb, NAP_STATE_CHECK, NAP_NODE_NOT_CONFIGURED)) {
        *configured = false;
        node->node_state = VGA_NODE_STATE_UNCONFIGURED;
        node->vcb.capabilities = as<QUERY_NODE>(vcb).capabilities;
        vga_describe(node->vcb.parameters.description, 888);
    } else {
        vga_build_failure(11, vcb);
        return false;
    }
    vga_redraw_node(node);
    return true;
}

// ---- failures ----

void vga_build_failure(int subcode, const void* vcb) {
    const VCB_HEADER& header = *vcb_header(vcb);
    if (!nba_exceptions_suppressed()) {
        nba_pd_print_exception(0x40020002, subcode, "x x lx", int{header.opcode},
                               int{header.primary_rc}, static_cast<int>(header.secondary_rc));
    }
    VGA_FATAL(VGA_EXIT_QUERY, header.opcode);
}

bool vga_target_gone(const void* vcb) {
    return is(vcb, NAP_UNSUCCESSFUL, NAP_TARGET_GONE);
}

void vga_build_lost_node(vga_node* node, bool gone) {
    vga_free_node_resources(node, gone, nullptr);
    if (gvga_exit_code == 0) {
        vga_build_next_action(0, nullptr);
    }
}

// ---- registration, files, processing mode ----

bool vga_issue_register_sink(NB_HANDLE target, NB_USHORT indication, NB_ULONG corr,
                             VGA_CALLBACK callback) {
    auto* block = vga_new_vcb<REGISTER_INDICATION_SINK>(NAP_REGISTER_INDICATION_SINK);
    if (block == nullptr) {
        return false;
    }
    block->indication_opcode = indication;
    if (!vga_queue_verb(target, block, corr, callback)) {
        vga_free(block);
        return false;
    }
    return true;
}

void vga_build_register(NB_HANDLE target, NB_USHORT indication, NB_ULONG corr,
                        VGA_CALLBACK callback) {
    if (!vga_issue_register_sink(target, indication, corr, callback)) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

bool vga_sink_was_registered(const void* vcb) {
    if (vcb_header(vcb)->primary_rc == NAP_OK) {
        return true;
    }
    vga_build_failure(2, vcb);
    return false;
}

void vga_build_open_file(NOF_FILE_ROLE role, NB_HANDLE target, NB_ULONG corr,
                         VGA_CALLBACK callback) {
    auto* block = vga_new_vcb<OPEN_FILE>(NAP_OPEN_FILE);
    if (block != nullptr) {
        block->file_info.requested_role = role;
    }
    send(target, block, corr, callback);
}

void vga_build_set_mode(NB_HANDLE target, NB_ULONG corr, VGA_CALLBACK callback) {
    auto* block = vga_new_vcb<SET_PROCESSING_MODE>(NAP_SET_PROCESSING_MODE);
    if (block != nullptr) {
        block->mode = NOF_PROCESSING_MODE;
    }
    send(target, block, corr, callback);
}

bool vga_mode_was_set(const void* vcb) {
    if (vcb_header(vcb)->primary_rc == NAP_OK) {
        return true;
    }
    if (is(vcb, NAP_STATE_CHECK, NAP_READ_ONLY_OPERATOR)) {
        gvga_read_only = 1;
        return true;
    }
    vga_build_failure(1, vcb);
    return false;
}
