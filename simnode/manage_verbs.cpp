// Start and stop verbs, and the verbs of LU-LU sessions: what they refuse, and which change they
// make.
#include "simnode/indications.h"
#include "simnode/manage.h"
#include "simnode/request.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "nof/rtp.h"

#include <cstring>

namespace simnode {

Rc init_node(Request& request) {
    Node& node = *request.target.node;
    if (!node.configured) {
        return RC_NO_NODE_DEFINITION;
    }
    if (node.active) {
        return RC_NODE_ALREADY_ACTIVE;
    }
    activate_node(request.world, node);
    return {};
}

Rc stop_node(Request& request) {
    Node& node = *request.target.node;
    if (!node.active) {
        return RC_NODE_NOT_ACTIVE;
    }
    deactivate_node(node);
    return {};
}

Rc start_dlc(Request& request) {
    Node& node = *request.target.node;
    Record* dlc = find_name8(node, Kind::dlc, request.as<START_DLC>().name);
    if (dlc == nullptr) {
        return RC_UNKNOWN_NAME;
    }
    if (!node.active) {
        return RC_NODE_NOT_ACTIVE;
    }
    if (dlc->as<DLC_ENTRY>().state == NOF_STATE_ACTIVE) {
        return RC_DLC_ALREADY_ACTIVE;
    }
    activate_dlc(request.world, node, *dlc);
    return {};
}

Rc stop_dlc(Request& request) {
    Node& node = *request.target.node;
    Record* dlc = find(node.of(Kind::dlc), raw(request.as<STOP_DLC>().name, 8));
    if (dlc == nullptr) {
        return RC_UNKNOWN_DLC;
    }
    if (dlc->as<DLC_ENTRY>().state == NOF_STATE_INACTIVE) {
        return RC_DLC_INACTIVE;
    }
    for (Record* port : children(node.of(Kind::port), dlc->key)) {
        if (port->as<PORT_ENTRY>().state != NOF_STATE_INACTIVE) {
            deactivate_port(request.world, node, *port);
        }
    }
    dlc->as<DLC_ENTRY>().state = NOF_STATE_INACTIVE;
    indicate_dlc(request.world, node, *dlc);
    return {};
}

Rc start_port(Request& request) {
    Node& node = *request.target.node;
    Record* port = find_name8(node, Kind::port, request.as<START_PORT>().name);
    if (port == nullptr) {
        return RC_UNKNOWN_PORT;
    }
    if (!node.active) {
        return RC_NODE_NOT_ACTIVE;
    }
    switch (port->as<PORT_ENTRY>().state) {
    case NOF_STATE_ACTIVE:
        return RC_PORT_ALREADY_ACTIVE;
    case NOF_STATE_STOP_PENDING:
        return RC_PORT_STOPPING;
    default:
        break;
    }
    const Record* dlc = find(node.of(Kind::dlc), port->parent);
    if (dlc == nullptr || dlc->as<DLC_ENTRY>().state != NOF_STATE_ACTIVE) {
        return RC_PORT_DLC_INACTIVE;
    }
    activate_port(request.world, node, *port);
    return {};
}

Rc stop_port(Request& request) {
    Node& node = *request.target.node;
    Record* port = find(node.of(Kind::port), raw(request.as<STOP_PORT>().name, 8));
    if (port == nullptr || port->as<PORT_ENTRY>().state == NOF_STATE_INACTIVE) {
        return RC_UNKNOWN_PORT;
    }
    deactivate_port(request.world, node, *port);
    return {};
}

namespace {

std::size_t active_links(const Node& node, const Record& port) {
    std::size_t count = 0;
    for (const Record* ls : children(node.of(Kind::ls), port.key)) {
        count += ls->as<LS_ENTRY>().det.state == NOF_STATE_ACTIVE;
    }
    return count;
}

} // namespace

Rc start_ls(Request& request) {
    auto& verb = request.as<START_LS>();
    Node& node = *request.target.node;
    Record* ls = find(node.of(Kind::ls), raw(verb.ls_name, 8));
    if (ls == nullptr) {
        return RC_UNKNOWN_LS;
    }
    if (!node.active) {
        return RC_NODE_NOT_ACTIVE;
    }
    auto& detail = ls->as<LS_ENTRY>().det;
    if (detail.state == NOF_STATE_ACTIVE) {
        return RC_LS_ALREADY_ACTIVE;
    }
    if (detail.state == NOF_STATE_STOP_PENDING) {
        return RC_LS_STOPPING;
    }
    const Record* port = find(node.of(Kind::port), ls->parent);
    if (port == nullptr || port->as<PORT_ENTRY>().state != NOF_STATE_ACTIVE) {
        return RC_LS_PORT_INACTIVE;
    }
    if (verb.activation != 0) { // enable only
        detail.activation_flags |= verb.activation;
        if (detail.state == NOF_STATE_FAILED) {
            detail.state = NOF_STATE_INACTIVE;
        }
        return {};
    }
    const NB_USHORT limit = port->as<PORT_ENTRY>().def.total_link_limit;
    if (limit != 0 && active_links(node, *port) >= limit) {
        return RC_LS_LIMIT_EXCEEDED;
    }
    activate_ls(request.world, node, *ls);
    return {};
}

Rc stop_ls(Request& request) {
    const auto& verb = request.as<STOP_LS>();
    Node& node = *request.target.node;
    Record* ls = find(node.of(Kind::ls), raw(verb.ls_name, 8));
    if (ls == nullptr) {
        return RC_UNKNOWN_LS;
    }
    deactivate_ls(request.world, node, *ls, false, verb.disable);
    return {};
}

Rc start_internal_pu(Request& request) {
    Node& node = *request.target.node;
    const NB_BYTE* name = request.as<START_INTERNAL_PU>().pu_name;
    Record* pu = find_name8(node, Kind::dlur_pu, name);
    if (pu == nullptr) {
        return find_name8(node, Kind::pu, name) != nullptr ? RC_PU_NOT_DLUR : RC_UNKNOWN_NAME;
    }
    if (!node.active) {
        return RC_NODE_NOT_ACTIVE;
    }
    if (pu->as<PU_ENTRY>().dlur_status == NOF_DLUR_ACTIVE) {
        return RC_PU_ALREADY_ACTIVE;
    }
    if (is_blank(pu->as<PU_ENTRY>().dlus_name, sizeof(NB_FQNAME))) {
        return RC_PU_NO_DLUS;
    }
    activate_pu(request.world, node, Kind::dlur_pu, *pu);
    return {};
}

Rc stop_internal_pu(Request& request) {
    Node& node = *request.target.node;
    const NB_BYTE* name = request.as<STOP_INTERNAL_PU>().pu_name;
    Record* pu = find_name8(node, Kind::dlur_pu, name);
    if (pu == nullptr) {
        return find_name8(node, Kind::pu, name) != nullptr ? RC_PU_NOT_DLUR : RC_UNKNOWN_NAME;
    }
    const NB_BYTE status = pu->as<PU_ENTRY>().dlur_status;
    if (status != NOF_DLUR_ACTIVE && status != NOF_DLUR_STARTING) {
        return RC_PU_NOT_ACTIVE;
    }
    deactivate_pu(request.world, node, Kind::dlur_pu, *pu);
    return {};
}

namespace {

// By name, or by alias when the name is zero; the control point's LU when both are.
Record* session_lu(Node& node, const NB_NAME8E& name, const NB_NAME8L& alias) {
    if (!is_blank(name, sizeof name)) {
        return find_name8(node, Kind::local_lu, name);
    }
    const NB_NAME8L& wanted = is_blank(alias, sizeof alias) ? node.parameters.cp_alias : alias;
    for (Record* lu : everything(node.of(Kind::local_lu))) {
        if (std::memcmp(lu->as<LU62_ENTRY>().def.lu_alias, wanted, sizeof wanted) == 0) {
            return lu;
        }
    }
    return nullptr;
}

// The partner's fully qualified name: as given, or that of the partner definition with the alias.
bool session_partner(Node& node, const NB_FQNAME& name, const NB_NAME8L& alias, NB_FQNAME& result) {
    std::memcpy(result, name, sizeof result);
    if (!is_blank(name, sizeof name)) {
        return true;
    }
    for (const Record* partner : everything(node.of(Kind::partner_definition))) {
        if (std::memcmp(partner->as<PLU_DEF_ENTRY>().def.plu_alias, alias, sizeof alias) == 0) {
            std::memcpy(result, partner->as<PLU_DEF_ENTRY>().plu_name, sizeof result);
            return true;
        }
    }
    return false;
}

// The control point that owns a partner, from the directory; zero when it does not know.
void owner_of(const Node& node, const NB_FQNAME& partner, NB_FQNAME& cp) {
    std::memset(cp, 0, sizeof cp);
    for (const Record* entry : everything(node.of(Kind::directory))) {
        const auto& known = entry->as<DIRECTORY_ENTRY>();
        if (std::memcmp(known.resource_name, partner, sizeof partner) == 0) {
            const bool lu = known.resource_type == NAP_LU_RESOURCE;
            std::memcpy(cp, lu ? known.parent_name : known.resource_name, sizeof cp);
        }
    }
}

} // namespace

Rc activate_session(Request& request) {
    auto& verb = request.as<ACTIVATE_SESSION>();
    Node& node = *request.target.node;
    if (!node.active) {
        return RC_SESSION_FAILED_RETRY;
    }
    Record* lu = session_lu(node, verb.lu_name, verb.lu_alias);
    if (lu == nullptr) {
        return RC_SESSION_UNKNOWN_LU;
    }
    NB_FQNAME partner;
    if (!session_partner(node, verb.plu_name, verb.plu_alias, partner)) {
        return RC_SESSION_UNKNOWN_PARTNER;
    }
    const Record* mode = find_name8(node, Kind::mode_definition, verb.mode_name);
    if (mode == nullptr) {
        return RC_SESSION_UNKNOWN_MODE;
    }
    if (const auto& entry = lu->as<LU62_ENTRY>(); entry.def.nau_address != 0) {
        const Record* pu = find_pu(node, entry.def.pu_name);
        if (pu == nullptr || pu->as<PU_ENTRY>().state == 0) {
            return RC_SESSION_FAILED_RETRY;
        }
    }
    const std::string key = lu->key + raw(partner, sizeof partner) + raw(verb.mode_name, 8);
    const Record* running = find(node.of(Kind::mode), key);
    const NB_USHORT count = running != nullptr ? running->as<MODE_ENTRY>().act_sess_count : 0;
    if (count >= mode->as<MODE_DEF_ENTRY>().def.max_session_limit) {
        return RC_SESSION_LIMIT;
    }
    NB_FQNAME cp;
    owner_of(node, partner, cp);
    set_sessions(request.world, node, *lu, partner, verb.mode_name, cp,
                 static_cast<NB_USHORT>(count + 1));
    NB_BE32 id;
    id.set(++node.last_session_id);
    std::memcpy(verb.session_id + 4, &id, sizeof id);
    return {};
}

Rc deactivate_session(Request& request) {
    const auto& verb = request.as<DEACTIVATE_SESSION>();
    Node& node = *request.target.node;
    Record* lu = session_lu(node, verb.lu_name, verb.lu_alias);
    if (lu == nullptr) {
        return RC_SESSION_UNKNOWN_LU;
    }
    NB_FQNAME partner;
    if (!session_partner(node, verb.plu_name, verb.plu_alias, partner)) {
        return RC_SESSION_UNKNOWN_PARTNER;
    }
    const std::string key = lu->key + raw(partner, sizeof partner) + raw(verb.mode_name, 8);
    const Record* running = find(node.of(Kind::mode), key);
    if (running == nullptr) {
        return RC_SESSION_NONE;
    }
    const MODE_ENTRY entry = running->as<MODE_ENTRY>();
    const bool all = is_blank(verb.session_id, sizeof verb.session_id);
    const NB_USHORT left = all || entry.act_sess_count == 0
                               ? NB_USHORT{0}
                               : static_cast<NB_USHORT>(entry.act_sess_count - 1);
    set_sessions(request.world, node, *lu, partner, verb.mode_name, entry.cp_name, left);
    return {};
}

// The connection takes the next active link, if there is another one.
Rc path_switch(Request& request) {
    const auto& verb = request.as<PATH_SWITCH>();
    Node& node = *request.target.node;
    for (Record* connection : everything(node.of(Kind::rtp))) {
        auto& entry = connection->as<RTP_CONNECTION_ENTRY>();
        if (std::memcmp(entry.rtp_name, verb.rtp_name, sizeof entry.rtp_name) == 0) {
            if (const Record* ls = other_link(node, entry)) {
                std::memcpy(entry.first_hop_ls, ls->as<LS_ENTRY>().ls_name,
                            sizeof entry.first_hop_ls);
            }
            return {};
        }
    }
    return RC_NO_RTP_CONNECTION;
}

} // namespace simnode
