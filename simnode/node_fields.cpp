#include "simnode/node_fields.h"

#include "nof/node.h"
#include "simnode/world.h"

namespace simnode {
namespace {

using enum FieldType;

#define AT(type, field) offsetof(type, field), sizeof(std::declval<type&>().field)

constexpr Choice node_types[] = {{"len", NAP_NODE_LEN},
                                 {"network-node", NAP_NODE_NETWORK},
                                 {"end-node", NAP_NODE_END},
                                 {"branch-network-node", NAP_NODE_BRANCH_NETWORK}};

constexpr Field parameters[] = {
    {"description", text, AT(NODE_PARAMETERS, description)},
    {"type", choice, AT(NODE_PARAMETERS, node_type), node_types},
    {"cp_name", ebcdic, AT(NODE_PARAMETERS, cp_name)},
    {"cp_alias", local, AT(NODE_PARAMETERS, cp_alias)},
    {"node_id", node_id, AT(NODE_PARAMETERS, node_id)},
    {"dlur_support", number, AT(NODE_PARAMETERS, dlur_support)},
    {"concentration_support", number, AT(NODE_PARAMETERS, pu_conc_support)},
    {"hpr_support", number, AT(NODE_PARAMETERS, hpr_support)},
    {"sync_point", flag, AT(NODE_PARAMETERS, cp_lu_sync_point)},
    {"cp_attributes", number, AT(NODE_PARAMETERS, cp_lu_attributes)},
};

constexpr Field capabilities[] = {
    {"dspu", flag, offsetof(NODE_CAPABILITIES, dspu), 1}, // the software's
    {"dspu_configured", flag, offsetof(NODE_CAPABILITIES, dspu) + 1, 1},
    {"dlur", flag, offsetof(NODE_CAPABILITIES, dlur), 1},
    {"dlur_configured", flag, offsetof(NODE_CAPABILITIES, dlur) + 1, 1},
    {"tn_server", flag, AT(NODE_CAPABILITIES, tn_server)},
    {"back_level_trace", flag, AT(NODE_CAPABILITIES, back_level_trace)},
    {"cn_not_listed", flag, AT(NODE_CAPABILITIES, cn_not_listed)},
    {"hpr", flag, AT(NODE_CAPABILITIES, hpr)},
    {"ssl", flag, AT(NODE_CAPABILITIES, ssl)},
    {"attach_routing", flag, AT(NODE_CAPABILITIES, attach_routing)},
    {"mode_to_cos_map", flag, AT(NODE_CAPABILITIES, mode_to_cos_map)},
};

constexpr Field limits[] = {
    {"network_node", flag, AT(NODE_LIMITS, network_node)},
    {"end_node", flag, AT(NODE_LIMITS, end_node)},
    {"len_node", flag, AT(NODE_LIMITS, len_node)},
    {"dlur", number, AT(NODE_LIMITS, dlur)},
    {"concentration", number, AT(NODE_LIMITS, pu_conc)},
};

constexpr const char* settings[] = {
    "defaults",
    "trace_type",
    "cs_trace",
    "back_level_cs_trace",
    "tn_server_trace",
    "slp_trace",
    "tn3270_defaults",
    "ssl_ldap",
    "slp",
    "express_logon",
    "appcip_defaults",
    "central_logging",
    "global_log_type",
};
static_assert(std::size(settings) == SETTING_COUNT);

} // namespace

std::span<const Field> node_parameter_fields() {
    return parameters;
}
std::span<const Field> node_capability_fields() {
    return capabilities;
}
std::span<const Field> node_limit_fields() {
    return limits;
}
std::span<const char* const> setting_names() {
    return settings;
}

} // namespace simnode
