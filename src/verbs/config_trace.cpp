// Settings of traces and logs.
#include "nof/trace.h"
#include "shell/globals.h"
#include "store/build.h"
#include "verbs/config_util.h"

namespace {

template <typename Block>
const Block& settings_block(const VGA_COMPLETION* completion, NB_USHORT opcode,
                            const char* expression) {
    const VCB_HEADER* vcb = vcb_header(completion->vcb);
    VGA_ASSERT_TEXT(vcb->opcode == opcode, expression);
    VGA_ASSERT_TEXT(vga_config_rc_holds(vcb),
                    "(vcb->primary_rc == NAP_OK) || (vcb->primary_rc == NAP_INDICATION)");
    return *static_cast<const Block*>(completion->vcb);
}
#define SETTINGS_BLOCK(Block, completion, OPCODE)                                                  \
    settings_block<Block>((completion), OPCODE, "vcb->opcode == " #OPCODE)

bool from_central_logger(const VGA_COMPLETION* completion) {
    return gvga_system->central_logger_handle != 0 &&
           completion->handle == gvga_system->central_logger_handle;
}

const vga_dlc* dlc_of_port(const vga_node* node, const char* name) {
    const auto* port = vga_status_find<vga_port>(node->port_tree, name);
    return port != nullptr ? port->parent : nullptr;
}
const vga_dlc* dlc_of_ls(const vga_node* node, const char* name) {
    const auto* ls = vga_status_find<vga_ls>(node->ls_tree, name);
    return ls != nullptr ? ls->parent->parent : nullptr;
}
const vga_dlc* dlc_named(const vga_node* node, const char* name) {
    return vga_status_find<vga_dlc>(node->dlc_tree, name);
}

using FIND_DLC = const vga_dlc* (*)(const vga_node* node, const char* name);

// What the verbs mean by the number of a resource. Link stations and DLCs have their numbers the
// other way round in the lists of traces, so the one that has the name is meant.
struct TRACED_KIND {
    NB_BYTE resource_type;
    FIND_DLC first;
    FIND_DLC second;
};
constexpr TRACED_KIND traced_kinds[] = {
    {1, dlc_of_ls, dlc_named},
    {NOF_TRACE_PORT, dlc_of_port, nullptr},
    {3, dlc_named, dlc_of_ls},
    {NOF_TRACE_PORT_4, dlc_of_port, nullptr},
    {NOF_TRACE_PORT_5, dlc_of_port, nullptr},
};

// The counter of the traced resource's kind of adapter; null when there is none.
NB_LONG* counter_of(vga_node* node, const ADD_DLC_TRACE& block) {
    for (const TRACED_KIND& kind : traced_kinds) {
        if (kind.resource_type != block.resource_type) {
            continue;
        }
        const vga_dlc* dlc = kind.first(node, block.name);
        if (dlc == nullptr && kind.second != nullptr) {
            dlc = kind.second(node, block.name);
        }
        return dlc != nullptr ? vga_trace_counter(node, dlc->vcb->def.dlc_type) : nullptr;
    }
    return nullptr;
}

} // namespace

void vga_process_set_trace_type(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = SETTINGS_BLOCK(SET_TRACE_TYPE, completion, NAP_SET_TRACE_TYPE);
    node->trace_truncation = block.truncation_length;
    if (block.replace == 1) {
        node->trace_flags = block.node_flags;
        node->trace_kernel_flags = block.kernel_flags;
    } else if (block.add == 1) {
        node->trace_flags |= block.node_flags;
        node->trace_kernel_flags |= block.kernel_flags;
    } else {
        node->trace_flags &= ~block.node_flags;
        node->trace_kernel_flags &= ~block.kernel_flags;
    }
}

void vga_process_set_cs_trace(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = SETTINGS_BLOCK(SET_CS_TRACE, completion, NAP_SET_CS_TRACE);
    node->cs_trace[0] = block.trace_flags;
    node->cs_trace[1] = block.trace_direction;
}

void vga_process_set_back_cs_trace(VGA_COMPLETION* completion, vga_node* node) {
    node->bck_cs_trace =
        SETTINGS_BLOCK(SET_BCK_CS_TRACE, completion, NAP_SET_BCK_CS_TRACE).trace_flags;
}

void vga_process_set_tns_trace(VGA_COMPLETION* completion, vga_node* node) {
    node->tn_server_trace =
        SETTINGS_BLOCK(SET_TN_SERVER_TRACE, completion, NAP_SET_TN_SERVER_TRACE).trace_flags;
}

void vga_process_set_tn3270_slp_trace(VGA_COMPLETION* completion, vga_node* node) {
    node->tn_slp_trace =
        SETTINGS_BLOCK(SET_TN3270_SLP_TRACE, completion, NAP_SET_TN3270_SLP_TRACE).trace_flags;
}

void vga_process_add_dlc_trace(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = SETTINGS_BLOCK(ADD_DLC_TRACE, completion, NAP_ADD_DLC_TRACE);
    if (block.resource_type == NOF_TRACE_ALL_DLCS) {
        node->all_dlcs_traced = 1;
    } else if (NB_LONG* counter = counter_of(node, block); counter != nullptr) {
        ++*counter;
    }
}

void vga_process_remove_dlc_trace(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = SETTINGS_BLOCK(REMOVE_DLC_TRACE, completion, NAP_REMOVE_DLC_TRACE);
    if (block.resource_type == NOF_TRACE_ALL_DLCS || block.resource_type == NOF_TRACE_REMOVE_ALL) {
        node->all_dlcs_traced = 0;
        node->tracing = {};
    } else if (NB_LONG* counter = counter_of(node, block); counter != nullptr && *counter > 0) {
        --*counter;
    }
}

void vga_process_set_central_logging(VGA_COMPLETION* completion, vga_system* system) {
    const auto& block = SETTINGS_BLOCK(SET_CENTRAL_LOGGING, completion, NAP_SET_CENTRAL_LOGGING);
    if (from_central_logger(completion)) {
        system->central_logging = block.central == 1;
    }
}

void vga_process_set_global_log_type(VGA_COMPLETION* completion, vga_system* system) {
    const auto& block = SETTINGS_BLOCK(SET_GLOBAL_LOG_TYPE, completion, NAP_SET_GLOBAL_LOG_TYPE);
    if (from_central_logger(completion)) {
        system->log_audit = block.audit == 1;
        system->log_exception = block.exception == 1;
        system->log_audit_verbose = block.succinct_audit == 0;
        system->log_exception_verbose = block.succinct_exception == 0;
    }
}
