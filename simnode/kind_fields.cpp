#include "simnode/kinds.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/node.h"
#include "nof/pu_lu.h"
#include "nof/user.h"
#include "simnode/definition_fields.h"

namespace simnode {
namespace {

using enum FieldType;

// Offset and length of a field of an entry.
#define AT(type, field) offsetof(type, field), sizeof(std::declval<type&>().field)

constexpr Choice states[] = {{"inactive", NOF_STATE_INACTIVE},
                             {"active", NOF_STATE_ACTIVE},
                             {"starting", NOF_STATE_START_PENDING},
                             {"stopping", NOF_STATE_STOP_PENDING},
                             {"failed", NOF_STATE_FAILED}};

constexpr Choice dlc_types[] = {{"sdlc", NAP_DLC_SDLC},
                                {"qllc", NAP_DLC_QLLC},
                                {"token-ring", NAP_DLC_TOKEN_RING},
                                {"fddi", NAP_DLC_FDDI},
                                {"ethernet", NAP_DLC_ETHERNET},
                                {"frame-relay", NAP_DLC_FRAME_RELAY},
                                {"channel", NAP_DLC_CHANNEL},
                                {"ip", NAP_DLC_IP},
                                {"mpc", NAP_DLC_MPC},
                                {"mpc-plus", NAP_DLC_MPC_PLUS}};

constexpr Choice adjacent_types[] = {{"learn", NAP_LEARN_NODE},
                                     {"end-node", NAP_END_NODE},
                                     {"network-node", NAP_NETWORK_NODE},
                                     {"subarea", NAP_SUBAREA_NODE},
                                     {"back-level-len", NAP_BACK_LEVEL_LEN_NODE},
                                     {"host", NAP_HOST_XID3},
                                     {"host-xid0", NAP_HOST_XID0},
                                     {"downstream", NAP_DSPU_XID}};

constexpr Choice attachments[] = {{"concentration", NAP_PU_CONCENTRATION},
                                  {"dlur", NAP_DLUR_ATTACHED},
                                  {"direct", NAP_DIRECT_ATTACHED}};

constexpr Choice dlur_states[] = {{"reset", NOF_DLUR_RESET},
                                  {"active", NOF_DLUR_ACTIVE},
                                  {"starting", NOF_DLUR_STARTING},
                                  {"pending-active", NOF_DLUR_PENDING_ACTIVE},
                                  {"stopping", NOF_DLUR_STOPPING},
                                  {"pending-inactive", NOF_DLUR_PENDING_INACTIVE},
                                  {"pending-retry", NOF_DLUR_PENDING_RETRY},
                                  {"inactive", NOF_DLUR_INACTIVE}};

constexpr Choice dspu_services[] = {{"none", 0}, {"concentration", 1}, {"dlur", 2}};

constexpr Choice lu_models[] = {{"unknown", NOF_LU_UNKNOWN},
                                {"display-2", 2},
                                {"display-3", 3},
                                {"display-4", 4},
                                {"display-5", 5},
                                {"rje", NOF_LU_RJE},
                                {"printer", NOF_LU_PRINTER},
                                {"scs-printer", NOF_LU_SCS_PRINTER}};

constexpr Choice applications[] = {{"none", NAP_NO_APPLICATION},
                                   {"named", NAP_LUA_APPLICATION},
                                   {"concentration", NAP_PU_CONC_APPLICATION},
                                   {"user", NAP_FMI_APPLICATION},
                                   {"client", NAP_TN_APPLICATION}};

constexpr Choice resources[] = {{"lu", NAP_LU_RESOURCE},
                                {"end-node", NAP_END_NODE_CP_RESOURCE},
                                {"network-node", NAP_NETWORK_NODE_CP_RESOURCE},
                                {"wildcard-lu", NAP_WILDCARD_LU_RESOURCE}};

constexpr Choice directory_entries[] = {{"cached", NOF_DIRECTORY_CACHED},
                                        {"registered", NOF_DIRECTORY_REGISTERED},
                                        {"defined", NOF_DIRECTORY_DEFINED}};

constexpr Choice traced[] = {{"all", 0}, {"dlc", 1}, {"port", 2}, {"ls", 3}};

constexpr Field dlc[] = {
    {"name", local, AT(DLC_ENTRY, dlc_name)},
    {"type", choice, AT(DLC_ENTRY, def.dlc_type), dlc_types},
    {"description", text, AT(DLC_ENTRY, def.description)},
    {"initially_active", flag, AT(DLC_ENTRY, def.initially_active)},
    {"state", choice, AT(DLC_ENTRY, state), states},
    {"card_type", number, sizeof(DLC_ENTRY) + offsetof(DLC_SPECIFIC, card_type), 2},
    {"adapter", number, sizeof(DLC_ENTRY) + offsetof(DLC_SPECIFIC, adapter_number), 2},
    {"specific", tail, sizeof(DLC_ENTRY), 0},
};

constexpr Field port[] = {
    {"name", local, AT(PORT_ENTRY, port_name)},
    {"dlc", local, AT(PORT_ENTRY, def.dlc_name)},
    {"description", text, AT(PORT_ENTRY, def.description)},
    {"initially_active", flag, AT(PORT_ENTRY, def.initially_active)},
    {"state", choice, AT(PORT_ENTRY, state), states},
    {"number", number, AT(PORT_ENTRY, def.port_number)},
    {"port_type", number, AT(PORT_ENTRY, def.port_type)},
    {"max_btu", number, AT(PORT_ENTRY, def.max_btu)},
    {"link_limit", number, AT(PORT_ENTRY, def.total_link_limit)},
    {"inbound_limit", number, AT(PORT_ENTRY, def.inbound_link_limit)},
    {"outbound_limit", number, AT(PORT_ENTRY, def.outbound_link_limit)},
    {"role", number, AT(PORT_ENTRY, def.link_station_role)},
    {"dspu_template", local, AT(PORT_ENTRY, def.implicit_dspu_template)},
    {"dspu_services", flag, AT(PORT_ENTRY, def.implicit_dspu_services)},
    {"implicit_max_btu", number, AT(PORT_ENTRY, def.implicit_max_btu)},
    {"address", hex, AT(PORT_ENTRY, def.local_address)},
    {"implicit_hpr", flag, AT(PORT_ENTRY, def.implicit_hpr)},
    {"port_data_length", number, AT(PORT_ENTRY, def.port_data_length)},
    {"link_data_length", number, AT(PORT_ENTRY, def.link_data_length)},
    {"specific", tail, sizeof(PORT_ENTRY), 0},
};

constexpr Field ls[] = {
    {"name", local, AT(LS_ENTRY, ls_name)},
    {"port", local, AT(LS_ENTRY, def.port_name)},
    {"description", text, AT(LS_ENTRY, def.description)},
    {"initially_active", flag, AT(LS_ENTRY, def.initially_active)},
    {"state", choice, AT(LS_ENTRY, det.state), states},
    {"implicit", flag, AT(LS_ENTRY, det.implicit)},
    {"activation", number, AT(LS_ENTRY, det.activation_flags)},
    {"sessions", number, AT(LS_ENTRY, det.active_sessions)},
    {"adjacent_cp", ebcdic, AT(LS_ENTRY, def.adj_cp_name)},
    {"adjacent_type", choice, AT(LS_ENTRY, def.adj_cp_type), adjacent_types},
    {"learned_cp", ebcdic, AT(LS_ENTRY, det.adj_cp_name)},
    {"learned_type", choice, AT(LS_ENTRY, det.adj_cp_type), adjacent_types},
    {"address_length", number, AT(LS_ENTRY, def.address_length)},
    {"address", hex, AT(LS_ENTRY, def.address)},
    {"on_demand", flag, AT(LS_ENTRY, def.activate_on_demand)},
    {"tg_number", number, AT(LS_ENTRY, def.tg_number)},
    {"limited_resource", number, AT(LS_ENTRY, def.limited_resource)},
    {"host_pu", flag, AT(LS_ENTRY, def.solicit_sscp_sessions)},
    {"pu", ebcdic, AT(LS_ENTRY, def.pu_name)},
    {"disable_remote", flag, AT(LS_ENTRY, def.disable_remote_act)},
    {"dspu_services", choice, AT(LS_ENTRY, def.dspu_services), dspu_services},
    {"dspu", ebcdic, AT(LS_ENTRY, def.dspu_name)},
    {"dlus", ebcdic, AT(LS_ENTRY, def.dlus_name)},
    {"backup_dlus", ebcdic, AT(LS_ENTRY, def.backup_dlus_name)},
    {"receive_node_id", node_id, AT(LS_ENTRY, def.receive_node_id)},
    {"send_node_id", node_id, AT(LS_ENTRY, def.send_node_id)},
    {"branch_link", number, AT(LS_ENTRY, def.branch_link_type)},
    {"specific_length", number, AT(LS_ENTRY, def.specific_length)},
    {"specific", tail, sizeof(LS_ENTRY), 0},
};

constexpr Field pu[] = {
    {"name", ebcdic, AT(PU_ENTRY, pu_name)},
    {"description", text, AT(PU_ENTRY, description)},
    {"ls", local, AT(PU_ENTRY, ls_name)},
    {"state", choice, AT(PU_ENTRY, state), states},
    {"attachment", choice, AT(PU_ENTRY, host_attachment), attachments},
    {"compression", number, AT(PU_ENTRY, conventional_lu_compression)},
    {"initially_active", flag, AT(PU_ENTRY, initially_active)},
    {"dlus", ebcdic, AT(PU_ENTRY, dlus_name)},
    {"backup_dlus", ebcdic, AT(PU_ENTRY, backup_dlus_name)},
    {"node_id", node_id, AT(PU_ENTRY, node_id)},
    {"retry", flag, AT(PU_ENTRY, dlus_retry)},
    {"dlur_state", choice, AT(PU_ENTRY, dlur_status), dlur_states},
};

#define APPLICATION(type, field)                                                                   \
    offsetof(LU03_ENTRY, det_data.application) + offsetof(type, field),                            \
        sizeof(std::declval<type&>().field)

constexpr Field lu_0_to_3[] = {
    {"name", ebcdic, AT(LU03_ENTRY, lu_name)},
    {"pu", ebcdic, AT(LU03_ENTRY, def_data.pu_name)},
    {"nau", number, AT(LU03_ENTRY, def_data.nau_address)},
    {"description", text, AT(LU03_ENTRY, def_data.description)},
    {"model", choice, AT(LU03_ENTRY, def_data.lu_model), lu_models},
    {"pool", ebcdic, AT(LU03_ENTRY, def_data.pool_name)},
    {"lu_active", flag, AT(LU03_ENTRY, det_data.lu_active)},
    {"in_use", flag, AT(LU03_ENTRY, det_data.appl_conn_active)},
    {"in_session", flag, AT(LU03_ENTRY, det_data.plu_session_active)},
    {"attachment", choice, AT(LU03_ENTRY, det_data.host_attachment), attachments},
    {"application", choice, AT(LU03_ENTRY, det_data.app_type), applications},
    {"program", ebcdic, APPLICATION(LU03_NAMED_APPLICATION, name), {}, NAP_LUA_APPLICATION},
    {"user", local, APPLICATION(LU03_EMULATOR_USER, user_name), {}, NAP_FMI_APPLICATION},
    {"user_fallback",
     local,
     APPLICATION(LU03_EMULATOR_USER, fallback_name),
     {},
     NAP_FMI_APPLICATION},
    {"session_kind",
     number,
     APPLICATION(LU03_EMULATOR_USER, session_kind),
     {},
     NAP_FMI_APPLICATION},
    {"computer", text, APPLICATION(LU03_EMULATOR_USER, node_name), {}, NAP_FMI_APPLICATION},
    {"client_port", number, APPLICATION(LU03_TN_CLIENT, port), {}, NAP_TN_APPLICATION},
    {"address_form", number, APPLICATION(LU03_TN_CLIENT, address_form), {}, NAP_TN_APPLICATION},
    {"client", text, APPLICATION(LU03_TN_CLIENT, name), {}, NAP_TN_APPLICATION},
    {"client_kind", number, APPLICATION(LU03_TN_CLIENT, client_kind), {}, NAP_TN_APPLICATION},
    {"association", number, APPLICATION(LU03_TN_CLIENT, association_kind), {}, NAP_TN_APPLICATION},
    {"associated_lu", ebcdic, APPLICATION(LU03_TN_CLIENT, associated_name), {}, NAP_TN_APPLICATION},
    {"cipher", number, APPLICATION(LU03_TN_CLIENT, cipher_suite), {}, NAP_TN_APPLICATION},
};

constexpr Field downstream_lu[] = {
    {"name", ebcdic, AT(DOWN_LU_ENTRY, dslu_name)},
    {"pu", ebcdic, AT(DOWN_LU_ENTRY, def.dspu_name)},
    {"nau", number, AT(DOWN_LU_ENTRY, def.nau_address)},
    {"description", text, AT(DOWN_LU_ENTRY, def.description)},
    {"host_lu", ebcdic, AT(DOWN_LU_ENTRY, def.host_lu_name)},
    {"allow_timeout", flag, AT(DOWN_LU_ENTRY, def.allow_timeout)},
    {"delayed_logon", flag, AT(DOWN_LU_ENTRY, def.delayed_logon)},
    {"lu_active", flag, AT(DOWN_LU_ENTRY, lu_active)},
    {"in_session", flag, AT(DOWN_LU_ENTRY, plu_session_active)},
    {"type", number, AT(DOWN_LU_ENTRY, type)},
};

constexpr Field local_lu[] = {
    {"name", ebcdic, AT(LU62_ENTRY, lu_name)},
    {"alias", local, AT(LU62_ENTRY, def.lu_alias)},
    {"description", text, AT(LU62_ENTRY, def.description)},
    {"nau", number, AT(LU62_ENTRY, def.nau_address)},
    {"pu", ebcdic, AT(LU62_ENTRY, def.pu_name)},
    {"dependent", flag, AT(LU62_ENTRY, def.dependent)},
    {"sync_point", flag, AT(LU62_ENTRY, def.sync_point)},
    {"default_pool", flag, AT(LU62_ENTRY, def.default_pool)},
    {"access_list", text, AT(LU62_ENTRY, def.access_list_name)},
    {"attributes", number, AT(LU62_ENTRY, def.attributes)},
    {"restriction", number, AT(LU62_ENTRY, def.restriction)},
    {"attach_routing", text, AT(LU62_ENTRY, def.attach_routing)},
    {"attach_timeout", number, AT(LU62_ENTRY, def.attach_timeout)},
    {"in_session", flag, AT(LU62_ENTRY, session_status)},
};

constexpr Field partner[] = {
    {"partner", ebcdic, AT(PLU_ENTRY, plu_name)},
    {"cp_known", flag, AT(PLU_ENTRY, cp_known)},
    {"cp", ebcdic, AT(PLU_ENTRY, cp_name)},
    {"alias", local, AT(PLU_ENTRY, plu_alias)},
    {"sessions", number, AT(PLU_ENTRY, active_sessions)},
};

constexpr Field mode[] = {
    {"partner", ebcdic, AT(MODE_ENTRY, plu_name)},
    {"mode", ebcdic, AT(MODE_ENTRY, mode_name)},
    {"cp_known", flag, AT(MODE_ENTRY, cp_known)},
    {"cp", ebcdic, AT(MODE_ENTRY, cp_name)},
    {"sessions", number, AT(MODE_ENTRY, act_sess_count)},
    {"pending", number, AT(MODE_ENTRY, pending_sess_count)},
    {"max_limit", number, AT(MODE_ENTRY, max_session_limit)},
    {"limit", number, AT(MODE_ENTRY, current_session_limit)},
    {"min_winners", number, AT(MODE_ENTRY, min_conwinners)},
    {"min_losers", number, AT(MODE_ENTRY, min_conlosers)},
    {"winners", number, AT(MODE_ENTRY, act_conwinners)},
    {"losers", number, AT(MODE_ENTRY, act_conlosers)},
    {"auto_activation", number, AT(MODE_ENTRY, auto_activation)},
};

constexpr Field mode_definition[] = {
    {"name", ebcdic, AT(MODE_DEF_ENTRY, mode_name)},
    {"description", text, AT(MODE_DEF_ENTRY, def.description)},
    {"cos", ebcdic, AT(MODE_DEF_ENTRY, def.cos_name)},
    {"max_ru", number, AT(MODE_DEF_ENTRY, def.max_ru_upper)},
    {"min_ru", number, AT(MODE_DEF_ENTRY, def.max_ru_lower)},
    {"default_ru", flag, AT(MODE_DEF_ENTRY, def.default_ru_size)},
    {"pacing", number, AT(MODE_DEF_ENTRY, def.receive_pacing)},
    {"max_pacing", number, AT(MODE_DEF_ENTRY, def.max_receive_pacing)},
    {"max_sessions", number, AT(MODE_DEF_ENTRY, def.max_session_limit)},
    {"sessions", number, AT(MODE_DEF_ENTRY, def.initial_session_limit)},
    {"min_winners", number, AT(MODE_DEF_ENTRY, def.min_conwinners)},
    {"min_losers", number, AT(MODE_DEF_ENTRY, def.min_conlosers)},
    {"auto_activation", number, AT(MODE_DEF_ENTRY, def.auto_activation)},
    {"cryptography", number, AT(MODE_DEF_ENTRY, def.cryptography)},
    {"compression", number, AT(MODE_DEF_ENTRY, def.compression)},
};

constexpr Field directory[] = {
    {"name", ebcdic, AT(DIRECTORY_ENTRY, resource_name)},
    {"type", choice, AT(DIRECTORY_ENTRY, resource_type), resources},
    {"description", text, AT(DIRECTORY_ENTRY, description)},
    {"parent", ebcdic, AT(DIRECTORY_ENTRY, parent_name)},
    {"parent_type", choice, AT(DIRECTORY_ENTRY, parent_type), resources},
    {"entry_type", choice, AT(DIRECTORY_ENTRY, entry_type), directory_entries},
    {"network_node", ebcdic, AT(DIRECTORY_ENTRY, network_node)},
};

constexpr Field partner_definition[] = {
    {"name", ebcdic, AT(PLU_DEF_ENTRY, plu_name)},
    {"alias", local, AT(PLU_DEF_ENTRY, def.plu_alias)},
    {"description", text, AT(PLU_DEF_ENTRY, def.description)},
    {"uninterpreted", ebcdic, AT(PLU_DEF_ENTRY, def.uninterpreted_name)},
    {"routing_preference", number, AT(PLU_DEF_ENTRY, def.routing_preference)},
    {"parallel_sessions", flag, AT(PLU_DEF_ENTRY, def.parallel_sessions)},
};

constexpr Field cos[] = {
    {"name", ebcdic, AT(COS_ENTRY, cos_name)},
    {"description", text, AT(COS_ENTRY, description)},
    {"priority", number, AT(COS_ENTRY, transmission_priority)},
};

constexpr Field cos_row[] = {
    {"cos", ebcdic, AT(COS_ROW_ENTRY, cos_name)},  {"row", number, AT(COS_ROW_ENTRY, row)},
    {"minimum", hex, AT(COS_ROW_ENTRY, minimum)},  {"maximum", hex, AT(COS_ROW_ENTRY, maximum)},
    {"weight", number, AT(COS_ROW_ENTRY, weight)},
};

constexpr Field dlc_trace[] = {
    {"type", choice, 2, 1, traced},
    {"name", local, 3, 8},
};

// By kind.
constexpr std::span<const Field> fields[] = {
    dlc,       port,
    ls,        pu,
    pu, // DLUR
    pu, // downstream
    lu_0_to_3, downstream_lu,
    local_lu,  partner,
    mode,      mode_definition,
    directory, partner_definition,
    cos,
    cos_row, // of nodes
    cos_row, // of TGs
    dlc_trace,
};
static_assert(std::size(fields) == static_cast<std::size_t>(Kind::cn));

} // namespace

std::span<const Field> fields_of(Kind kind) {
    const auto index = static_cast<std::size_t>(kind);
    return index < std::size(fields) ? fields[index] : definition_fields(kind);
}

bool applies(Kind kind, const Field& field, const Bytes& entry) {
    if (field.variant == 0) {
        return true;
    }
    const NB_BYTE variant =
        kind == Kind::user_session
            ? reinterpret_cast<const USER_SESSION*>(entry.data())->session_type
            : reinterpret_cast<const LU03_ENTRY*>(entry.data())->det_data.app_type;
    return field.variant == variant;
}

} // namespace simnode
