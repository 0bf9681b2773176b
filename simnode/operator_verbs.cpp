// What an operator sets up for itself: connections, files, processing mode, registrations.
#include "simnode/definition_checks.h"
#include "simnode/request.h"

#include "nof/lu62.h"
#include "nof/node.h"

#include <algorithm>
#include <cstring>

namespace simnode {
namespace {

NB_HANDLE new_handle(Operator& op, Target target) {
    // Handles of different operators differ, so that a mixed-up one is noticed.
    op.last_handle = op.last_handle == 0 ? (op.id << 16) + 0x100 : op.last_handle + 1;
    op.targets[op.last_handle] = target;
    return op.last_handle;
}

} // namespace

Rc connect_node(Request& request) {
    auto& verb = request.as<CONNECT_NODE>();
    Node* node =
        node_named(request.world.domain, local_text(verb.node_name, sizeof verb.node_name));
    if (node == nullptr || node->gone) {
        return RC_UNKNOWN_NAME;
    }
    if (node->back_level) {
        return RC_UNSUPPORTED;
    }
    verb.node_handle = new_handle(request.op, {TargetKind::node, node});
    return {};
}

Rc disconnect(Request& request) {
    if (request.target.kind == TargetKind::none) {
        return RC_TARGET_GONE;
    }
    if (request.op.outstanding[request.handle] > 0) {
        return RC_HANDLE_BUSY;
    }
    request.op.targets.erase(request.handle);
    std::erase_if(request.op.sinks,
                  [&](const Sink& sink) { return sink.handle == request.handle; });
    return {};
}

Rc open_file(Request& request) {
    auto& verb = request.as<OPEN_FILE>();
    const Domain& domain = request.world.domain;
    switch (verb.file_info.requested_role) {
    case NOF_FILE_CONFIGURATION:
        if (!domain.configuration_file) {
            return {NAP_STATE_CHECK, NAP_NO_CONFIGURATION_FILE};
        }
        verb.file_info.local_server = !domain.local_server.empty();
        put_text(verb.file_info.server_name, sizeof verb.file_info.server_name,
                 domain.local_server);
        verb.file_handle = new_handle(request.op, {TargetKind::configuration_file, nullptr});
        return {};
    case NOF_FILE_SNA_NET:
        if (!domain.client_server) {
            return {NAP_STATE_CHECK, NAP_FILE_UNAVAILABLE};
        }
        verb.file_handle = new_handle(request.op, {TargetKind::network_file, nullptr});
        return {};
    case NAP_TP_LOAD_INFO:
        if (request.target.kind != TargetKind::node) {
            return RC_TARGET_GONE;
        }
        verb.file_handle = new_handle(request.op, {TargetKind::tp_load_file, request.target.node});
        return {};
    default:
        return RC_BAD_VALUE;
    }
}

Rc set_processing_mode(Request& request) {
    if (request.as<SET_PROCESSING_MODE>().mode != NOF_PROCESSING_MODE) {
        return RC_BAD_VALUE;
    }
    return request.op.read_only ? Rc{NAP_STATE_CHECK, NAP_READ_ONLY_OPERATOR} : Rc{};
}

Rc register_sink(Request& request) {
    const NB_USHORT opcode = request.as<REGISTER_INDICATION_SINK>().indication_opcode;
    const bool domain_wide = opcode == NAP_SERVER_INDICATION;
    if (!domain_wide && request.target.kind == TargetKind::none) {
        return RC_TARGET_GONE;
    }
    const auto same = [&](const Sink& sink) {
        return sink.handle == request.handle && sink.opcode == opcode;
    };
    std::erase_if(request.op.sinks, same);
    request.op.sinks.push_back({request.handle, opcode, request.correlator});
    return {};
}

namespace {

// The control point's LU has the node's name and alias; under new ones it is another LU.
void set_parameters(Node& node, const NODE_PARAMETERS& parameters) {
    const std::vector<Record*> lus = everything(node.of(Kind::local_lu));
    const auto old = std::find_if(lus.begin(), lus.end(),
                                  [&](const Record* lu) { return is_control_point(node, *lu); });
    node.parameters = parameters;
    if (old != lus.end() && (!is_control_point(node, **old) ||
                             std::memcmp((*old)->as<LU62_ENTRY>().def.lu_alias, parameters.cp_alias,
                                         sizeof parameters.cp_alias) != 0)) {
        remove_record(node, Kind::local_lu, **old);
    }
}

} // namespace

Rc define_node(Request& request) {
    const auto& verb = request.as<DEFINE_NODE>();
    Node* node =
        request.target.kind == TargetKind::node
            ? request.target.node
            : node_named(request.world.domain, local_text(verb.node_name, sizeof verb.node_name));
    if (node == nullptr) {
        return RC_UNKNOWN_NAME;
    }
    if (node->active) {
        return RC_NODE_ACTIVE;
    }
    if (is_blank(verb.parameters.cp_name, sizeof verb.parameters.cp_name)) {
        return RC_BAD_NAME;
    }
    set_parameters(*node, verb.parameters);
    node->configured = true;
    request.target = {TargetKind::node, node};
    add_standard_resources(*node);
    return {};
}

Rc add_backup(Request& request) {
    const auto& verb = request.as<BACKUP_SERVER>();
    std::vector<std::string>& servers = request.world.domain.servers;
    const std::string name = local_text(verb.server_name, sizeof verb.server_name);
    if (std::find(servers.begin(), servers.end(), name) != servers.end()) {
        return RC_NAME_IN_USE;
    }
    servers.push_back(name);
    return {};
}

Rc delete_backup(Request& request) {
    const auto& verb = request.as<BACKUP_SERVER>();
    std::vector<std::string>& servers = request.world.domain.servers;
    const auto server = std::find(servers.begin(), servers.end(),
                                  local_text(verb.server_name, sizeof verb.server_name));
    if (server == servers.end()) {
        return RC_UNKNOWN_NAME;
    }
    if (servers.size() == 1) {
        return {NAP_STATE_CHECK, NAP_LAST_BACKUP};
    }
    servers.erase(server);
    return {};
}

} // namespace simnode
