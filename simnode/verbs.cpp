// The table of verbs, and the checks that all of them share.
#include "simnode/request.h"

#include "nba/nba.h"

#include <algorithm>
#include <cstring>

namespace simnode {
namespace {

constexpr Effect READS = Effect::reads;
constexpr Effect ACTS = Effect::acts;
constexpr Effect CHANGES = Effect::changes;
constexpr Effect DOMAIN = Effect::changes_domain;
using enum Scope;

// In the order of the opcodes.
constexpr VerbRow table[] = {
    {NAP_DEFINE_DEFAULTS, define_setting, node, CHANGES},
    {NAP_DEFINE_LOCAL_LU, define_record, node, CHANGES},
    {NAP_DEACTIVATE_SESSION, deactivate_session, node, ACTS},
    {NAP_DEFINE_TP, define_record, node, CHANGES},
    {NAP_DELETE_TP, delete_record, node, CHANGES},
    {NAP_DEFINE_PARTNER_LU, define_record, node, CHANGES},
    {NAP_DEFINE_MODE, define_record, node, CHANGES},
    {NAP_DELETE_PARTNER_LU, delete_record, node, CHANGES},
    {NAP_DELETE_MODE, delete_record, node, CHANGES},
    {NAP_DELETE_LOCAL_LU, delete_record, node, CHANGES},
    {NAP_DEFINE_USERID_PASSWORD, define_record, node, CHANGES},
    {NAP_DELETE_USERID_PASSWORD, delete_userid, node, CHANGES},
    {NAP_DEFINE_LU_LU_PASSWORD, define_record, node, CHANGES},
    {NAP_DELETE_LU_LU_PASSWORD, delete_record, node, CHANGES},
    {NAP_DEFINE_LU62_TIMEOUT, define_record, node, CHANGES},
    {NAP_DELETE_LU62_TIMEOUT, delete_record, node, CHANGES},
    {NAP_ACTIVATE_SESSION, activate_session, node, ACTS},
    {NAP_START_DLC, start_dlc, node, CHANGES},
    {NAP_START_LS, start_ls, node, CHANGES},
    {NAP_START_PORT, start_port, node, CHANGES},
    {NAP_STOP_DLC, stop_dlc, node, CHANGES},
    {NAP_STOP_LS, stop_ls, node, CHANGES},
    {NAP_STOP_PORT, stop_port, node, CHANGES},
    {NAP_DEFINE_CN, define_cn, node, CHANGES},
    {NAP_DEFINE_DLC, define_record, node, CHANGES},
    {NAP_DEFINE_LS, define_record, node, CHANGES},
    {NAP_DEFINE_PORT, define_record, node, CHANGES},
    {NAP_DELETE_CN, delete_holder, node, CHANGES},
    {NAP_DELETE_DLC, delete_record, node, CHANGES},
    {NAP_DELETE_LS, delete_record, node, CHANGES},
    {NAP_DELETE_PORT, delete_record, node, CHANGES},
    {NAP_DEFINE_LS_ROUTING, define_record, node, CHANGES},
    {NAP_DELETE_LS_ROUTING, delete_record, node, CHANGES},
    {NAP_DEFINE_DIRECTORY_ENTRY, define_record, node, CHANGES},
    {NAP_DELETE_DIRECTORY_ENTRY, delete_record, node, CHANGES},
    {NAP_DEFINE_COS, define_record, node, CHANGES},
    {NAP_DELETE_COS, delete_record, node, CHANGES},
    {NAP_STOP_NODE, stop_node, node, CHANGES},
    {NAP_DEFINE_CPIC_SIDE_INFO, define_record, domain, DOMAIN},
    {NAP_DELETE_CPIC_SIDE_INFO, delete_record, domain, DOMAIN},
    {NAP_DEFINE_ADJACENT_LEN_NODE, define_adjacent_node, node, CHANGES},
    {NAP_DELETE_ADJACENT_LEN_NODE, delete_adjacent_node, node, CHANGES},
    {NAP_DEFINE_ADJACENT_NODE, define_adjacent_node, node, CHANGES},
    {NAP_DELETE_ADJACENT_NODE, delete_adjacent_node, node, CHANGES},
    {NAP_QUERY_LU62_TIMEOUT, query_list, node, READS},
    {NAP_QUERY_LS_ROUTING, query_list, node, READS},
    {NAP_QUERY_DSPU_TEMPLATE, query_list, node, READS},
    {NAP_QUERY_CN_PORT, query_list, node, READS},
    {NAP_QUERY_COS, query_list, node, READS},
    {NAP_QUERY_COS_NODE_ROW, query_list, node, READS},
    {NAP_QUERY_COS_TG_ROW, query_list, node, READS},
    {NAP_QUERY_DIRECTORY_ENTRY, query_list, node, READS},
    {NAP_QUERY_DLC, query_list, node, READS},
    {NAP_QUERY_LOCAL_LU, query_list, node, READS},
    {NAP_QUERY_LS, query_list, node, READS},
    {NAP_QUERY_MODE, query_list, node, READS},
    {NAP_QUERY_MODE_DEFINITION, query_list, node, READS},
    {NAP_QUERY_PARTNER_LU, query_list, node, READS},
    {NAP_QUERY_PARTNER_LU_DEFINITION, query_list, node, READS},
    {NAP_QUERY_PORT, query_list, node, READS},
    {NAP_QUERY_TP_DEFINITION, query_list, node, READS},
    {NAP_QUERY_CN, query_list, node, READS},
    {NAP_QUERY_LU_0_TO_3, query_list, node, READS},
    {NAP_QUERY_LU_POOL, query_list, node, READS},
    {NAP_QUERY_PU, query_list, node, READS},
    {NAP_QUERY_DOWNSTREAM_LU, query_list, node, READS},
    {NAP_QUERY_DOWNSTREAM_PU, query_list, node, READS},
    {NAP_QUERY_CPIC_SIDE_INFO, query_list, domain, READS},
    {NAP_QUERY_DLUR_PU, query_list, node, READS},
    {NAP_QUERY_RTP_CONNECTION, query_list, node, READS},
    {NAP_QUERY_LU_LU_PASSWORD, query_list, node, READS},
    {NAP_QUERY_USERID_PASSWORD, query_list, node, READS},
    {NAP_QUERY_NODE, query_node, node, READS},
    {NAP_QUERY_DEFAULTS, query_setting, node, READS},
    {NAP_REGISTER_INDICATION_SINK, register_sink, any, READS},
    {NAP_DEFINE_LU_0_TO_3, define_record, node, CHANGES},
    {NAP_DEFINE_LU_0_TO_3_RANGE, define_lu_range, node, CHANGES},
    {NAP_DELETE_LU_0_TO_3, delete_record, node, CHANGES},
    {NAP_DELETE_LU_0_TO_3_RANGE, delete_lu_range, node, CHANGES},
    {NAP_DEFINE_LU_POOL, define_pool, node, CHANGES},
    {NAP_DELETE_LU_POOL, delete_pool, node, CHANGES},
    {NAP_DEFINE_DOWNSTREAM_LU, define_record, node, CHANGES},
    {NAP_DEFINE_DOWNSTREAM_LU_RANGE, define_lu_range, node, CHANGES},
    {NAP_DELETE_DOWNSTREAM_LU, delete_record, node, CHANGES},
    {NAP_DELETE_DOWNSTREAM_LU_RANGE, delete_lu_range, node, CHANGES},
    {NAP_DEFINE_DSPU_TEMPLATE, define_record, node, CHANGES},
    {NAP_DELETE_DSPU_TEMPLATE, delete_record, node, CHANGES},
    {NAP_DEFINE_INTERNAL_PU, define_record, node, CHANGES},
    {NAP_START_INTERNAL_PU, start_internal_pu, node, CHANGES},
    {NAP_STOP_INTERNAL_PU, stop_internal_pu, node, CHANGES},
    {NAP_DELETE_INTERNAL_PU, delete_record, node, CHANGES},
    {NAP_PATH_SWITCH, path_switch, node, ACTS},
    {NAP_ADD_DLC_TRACE, add_dlc_trace, node, CHANGES},
    {NAP_REMOVE_DLC_TRACE, remove_dlc_trace, node, CHANGES},
    {NAP_QUERY_DLC_TRACE, query_list, node, READS},
    {NAP_CONNECT_NODE, connect_node, any, READS},
    {NAP_DISCONNECT_NODE, disconnect, any, READS},
    {NAP_SET_PROCESSING_MODE, set_processing_mode, any, READS},
    {NAP_OPEN_FILE, open_file, any, READS},
    {NAP_CLOSE_FILE, disconnect, any, READS},
    {NAP_DEFINE_NODE, define_node, any, CHANGES},
    {NAP_INIT_NODE, init_node, node, CHANGES},
    {NAP_QUERY_NODE_ALL, query_node_list, any, READS},
    {NAP_QUERY_NODE_LIMITS, query_node_limits, node, READS},
    {NAP_SET_CENTRAL_LOGGING, define_setting, node, CHANGES},
    {NAP_QUERY_CENTRAL_LOGGING, query_setting, node, READS},
    {NAP_SET_GLOBAL_LOG_TYPE, define_setting, node, CHANGES},
    {NAP_SET_TRACE_TYPE, define_trace_type, node, CHANGES},
    {NAP_QUERY_CENTRAL_LOGGER, query_central_logger, any, READS},
    {NAP_QUERY_GLOBAL_LOG_TYPE, query_setting, node, READS},
    {NAP_QUERY_TRACE_TYPE, query_setting, node, READS},
    {NAP_DEFINE_EMULATOR_USER, define_record, domain, DOMAIN},
    {NAP_DELETE_EMULATOR_USER, delete_holder, domain, DOMAIN},
    {NAP_QUERY_EMULATOR_USER_DEF, query_list, domain, READS},
    {NAP_DEFINE_RJE_WKSTN, define_record, domain, DOMAIN},
    {NAP_DELETE_RJE_WKSTN, delete_record, domain, DOMAIN},
    {NAP_QUERY_RJE_WKSTN_DEF, query_list, domain, READS},
    {NAP_DEFINE_EXTRA_DATA, define_record, node, CHANGES},
    {NAP_DELETE_EXTRA_DATA, delete_extra_data, node, CHANGES},
    {NAP_QUERY_EXTRA_DATA, query_list, node, READS},
    {NAP_SET_CS_TRACE, define_setting, node, CHANGES},
    {NAP_QUERY_CS_TRACE, query_setting, node, READS},
    {NAP_ADD_BACKUP, add_backup, any, DOMAIN},
    {NAP_DELETE_BACKUP, delete_backup, any, DOMAIN},
    {NAP_QUERY_SNA_NET, query_server_list, any, READS},
    {NAP_DEFINE_TN3270_EXPRESS_LOGON, define_setting, node, CHANGES},
    {NAP_QUERY_TN3270_EXPRESS_LOGON, query_setting, node, READS},
    {NAP_DEFINE_TN3270_ACCESS, define_record, node, CHANGES},
    {NAP_DELETE_TN3270_ACCESS, delete_holder, node, CHANGES},
    {NAP_QUERY_TN3270_ACCESS_DEF, query_list, node, READS},
    {NAP_SET_TN_SERVER_TRACE, define_setting, node, CHANGES},
    {NAP_QUERY_TN_SERVER_TRACE, query_setting, node, READS},
    {NAP_DEFINE_TN3270_ASSOCIATION, define_record, node, CHANGES},
    {NAP_DELETE_TN3270_ASSOCIATION, delete_record, node, CHANGES},
    {NAP_QUERY_TN3270_ASSOCIATION, query_list, node, READS},
    {NAP_DEFINE_TN3270_DEFAULTS, define_setting, node, CHANGES},
    {NAP_QUERY_TN3270_DEFAULTS, query_setting, node, READS},
    {NAP_DEFINE_TN3270_SSL_LDAP, define_setting, node, CHANGES},
    {NAP_QUERY_TN3270_SSL_LDAP, query_setting, node, READS},
    {NAP_DEFINE_TN_REDIRECT, define_record, node, CHANGES},
    {NAP_DELETE_TN_REDIRECT, delete_record, node, CHANGES},
    {NAP_QUERY_TN_REDIRECT_DEF, query_list, node, READS},
    {NAP_SET_BCK_CS_TRACE, define_setting, node, CHANGES},
    {NAP_QUERY_BCK_CS_TRACE, query_setting, node, READS},
    {NAP_DEFINE_PRIMARY_LINE, define_record, node, CHANGES},
    {NAP_DELETE_PRIMARY_LINE, delete_record, node, CHANGES},
    {NAP_QUERY_PRIMARY_LINE, query_list, node, READS},
    {NAP_DEFINE_PRIMARY_LU0, define_record, node, CHANGES},
    {NAP_DELETE_PRIMARY_LU0, delete_record, node, CHANGES},
    {NAP_QUERY_PRIMARY_LU0, query_list, node, READS},
    {NAP_DEFINE_SECURITY_ACCESS_LIST, define_record, node, CHANGES},
    {NAP_DELETE_SECURITY_ACCESS_LIST, delete_holder, node, CHANGES},
    {NAP_QUERY_SECURITY_ACCESS_LIST, query_list, node, READS},
    {NAP_DEFINE_TP_LOAD_INFO, define_record, tp_load, CHANGES},
    {NAP_DELETE_TP_LOAD_INFO, delete_record, tp_load, CHANGES},
    {NAP_QUERY_TP_LOAD_INFO, query_list, tp_load, READS},
    {NAP_DEFINE_TN3270_SLP, define_setting, node, CHANGES},
    {NAP_QUERY_TN3270_SLP, query_setting, node, READS},
    {NAP_SET_TN3270_SLP_TRACE, define_setting, node, CHANGES},
    {NAP_QUERY_TN3270_SLP_TRACE, query_setting, node, READS},
    {NAP_DEFINE_IPBRIDGE_APPCIP_DEFAULTS, define_setting, node, CHANGES},
    {NAP_DELETE_IPBRIDGE_APPCIP_DEFAULTS, delete_appcip_defaults, node, CHANGES},
    {NAP_QUERY_IPBRIDGE_APPCIP_DEFAULTS, query_setting, node, READS},
    {NAP_QUERY_IPBRIDGE_APPCIP, query_list, node, READS},
};
static_assert(std::is_sorted(std::begin(table), std::end(table),
                             [](const VerbRow& a, const VerbRow& b) {
                                 return a.opcode < b.opcode;
                             }));

// Whether the verb's target serves it.
Rc resolve_target(Request& request, Scope scope) {
    Target& target = request.target;
    switch (scope) {
    case Scope::node:
        if (target.kind == TargetKind::configuration_file) {
            target.node = concerned_node(request.world.domain, request.block);
        }
        return target.node == nullptr || target.node->gone ? RC_TARGET_GONE : Rc{};
    case Scope::domain:
        if (target.kind != TargetKind::configuration_file) {
            return RC_TARGET_GONE;
        }
        target.node = &request.world.domain.file;
        return {};
    case Scope::tp_load:
        return target.kind != TargetKind::tp_load_file || target.node->gone ? RC_TARGET_GONE : Rc{};
    default:
        return request.handle != 0 && target.kind == TargetKind::none ? RC_TARGET_GONE : Rc{};
    }
}

// Neither shorter than its fixed part nor than the variable part it announces.
bool whole_block(std::span<const NB_BYTE> block) {
    const VCB_HEADER* header = vcb_header(block.data());
    const NBA_VERB_ROW* row = vnv_verb_search(header->opcode, header->format, 0);
    return row != nullptr && block.size() >= row->block_size &&
           block.size() >= nba_block_length(block.data());
}

Rc carry_out(Request& request) {
    const VerbRow* row = find_verb(vcb_header(request.block.data())->opcode);
    if (!whole_block(request.block)) {
        return RC_BAD_VERB;
    }
    if (row == nullptr) {
        return RC_UNSUPPORTED;
    }
    if (request.world.stopping) {
        return RC_SYSTEM_STOPPING;
    }
    if (const Rc rc = resolve_target(request, row->scope); !rc.ok()) {
        return rc;
    }
    if (row->effect != Effect::reads && request.op.read_only) {
        return RC_NOT_AUTHORIZED;
    }
    const Rc rc = row->handler(request);
    request.world.changed |= rc.ok() && row->effect != Effect::reads;
    return rc;
}

} // namespace

const VerbRow* find_verb(NB_USHORT opcode) {
    const auto* row = std::lower_bound(
        std::begin(table), std::end(table), opcode,
        [](const VerbRow& candidate, NB_USHORT wanted) { return candidate.opcode < wanted; });
    return row != std::end(table) && row->opcode == opcode ? row : nullptr;
}

Rc run_verb(Request& request) {
    const Rc rc = carry_out(request);
    VCB_HEADER* header = vcb_header(request.block.data());
    header->primary_rc = rc.primary;
    header->secondary_rc = rc.secondary;
    if (!rc.ok()) {
        request.buffer.clear();
    }
    return rc;
}

} // namespace simnode
