#include "simnode/manage.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "simnode/definition_checks.h"
#include "simnode/indications.h"

#include <cstdio>
#include <cstring>

namespace simnode {

void activate_dlc(World& world, Node& node, Record& dlc) {
    dlc.as<DLC_ENTRY>().state = NOF_STATE_ACTIVE;
    indicate_dlc(world, node, dlc);
}

void activate_port(World& world, Node& node, Record& port) {
    port.as<PORT_ENTRY>().state = NOF_STATE_ACTIVE;
    indicate_port(world, node, port);
}

void deactivate_port(World& world, Node& node, Record& port) {
    for (Record* ls : children(node.of(Kind::ls), port.key)) {
        const NB_BYTE state = ls->as<LS_ENTRY>().det.state;
        if (state != NOF_STATE_INACTIVE) {
            deactivate_ls(world, node, *ls);
        }
    }
    port.as<PORT_ENTRY>().state = NOF_STATE_INACTIVE;
    indicate_port(world, node, port);
}

namespace {

void clear_application(LU03_DETAIL& detail) {
    detail.appl_conn_active = NAP_NO;
    detail.app_type = NAP_NO_APPLICATION;
    detail.application = {};
}

} // namespace

void end_sessions_of(World& world, Node& node, const Record& lu) {
    std::vector<MODE_ENTRY> modes;
    for (const Record* mode : children(node.of(Kind::mode), lu.key)) {
        modes.push_back(mode->as<MODE_ENTRY>());
    }
    for (const MODE_ENTRY& mode : modes) {
        set_sessions(world, node, lu, mode.plu_name, mode.mode_name, mode.cp_name, 0);
    }
}

namespace {

// The node has not been told of the LUs of such a PU: they come and go with their host.
bool made_by_host(Node& node, const Record& lu) {
    const Record* pu = find_name8(node, Kind::downstream_pu, lu.as<DOWN_LU_ENTRY>().def.dspu_name);
    return pu != nullptr && pu->as<PU_ENTRY>().host_attachment == NAP_DLUR_ATTACHED;
}

} // namespace

void set_downstream_lu(World& world, Node& node, Record& lu, bool active, bool in_session) {
    lu.as<DOWN_LU_ENTRY>().lu_active = active;
    lu.as<DOWN_LU_ENTRY>().plu_session_active = in_session;
    indicate_downstream_lu(world, node, lu);
    if (!active && !in_session && made_by_host(node, lu)) {
        remove_record(node, Kind::downstream_lu, lu);
    }
}

namespace {

// LUs below a PU follow its state: active, or inactive and without sessions.
void set_lus(World& world, Node& node, const Record& pu, bool active) {
    for (Record* lu : children(node.of(Kind::lu_0_to_3), pu.key)) {
        auto& detail = lu->as<LU03_ENTRY>().det_data;
        if ((detail.lu_active != 0) != active || (!active && detail.plu_session_active != 0)) {
            detail.lu_active = active;
            detail.plu_session_active = 0;
            indicate_lu_0_to_3(world, node, *lu);
        }
    }
    for (Record* lu : children(node.of(Kind::downstream_lu), pu.key)) {
        if ((lu->as<DOWN_LU_ENTRY>().lu_active != 0) != active) {
            set_downstream_lu(world, node, *lu, active, false);
        }
    }
    for (Record* lu : children(node.of(Kind::local_lu), pu.key)) {
        if (!active && lu->as<LU62_ENTRY>().session_status != 0) {
            end_sessions_of(world, node, *lu);
            follow_sessions(world, node, lu->key);
        }
    }
}

void set_pu(World& world, Node& node, Kind kind, Record& pu, bool active) {
    auto& entry = pu.as<PU_ENTRY>();
    entry.state = active;
    if (kind == Kind::dlur_pu) {
        entry.dlur_active = active;
        entry.dlur_status = active ? NOF_DLUR_ACTIVE : NOF_DLUR_INACTIVE;
    }
    indicate(world, node, kind, pu, false);
    set_lus(world, node, pu, active);
}

} // namespace

void activate_pu(World& world, Node& node, Kind kind, Record& pu) {
    set_pu(world, node, kind, pu, true);
}

void deactivate_pu(World& world, Node& node, Kind kind, Record& pu) {
    set_pu(world, node, kind, pu, false);
}

void activate_ls(World& world, Node& node, Record& ls) {
    auto& entry = ls.as<LS_ENTRY>();
    entry.det.state = NOF_STATE_START_PENDING;
    indicate_ls(world, node, ls, NOF_LS_STARTING, false);
    entry.det.state = NOF_STATE_ACTIVE;
    entry.det.activation_flags = activation_flags(ls);
    if (is_blank(entry.det.adj_cp_name, sizeof(NB_FQNAME))) {
        std::memcpy(entry.det.adj_cp_name, entry.def.adj_cp_name, sizeof(NB_FQNAME));
        entry.det.adj_cp_type = entry.def.adj_cp_type;
    }
    indicate_ls(world, node, ls, NOF_LS_ACTIVATED, false);
    Kind kind = Kind::pu;
    if (Record* pu = pu_of_ls(node, ls, kind)) {
        activate_pu(world, node, kind, *pu);
    }
}

void accept_link(World& world, Node& node, const Record& port, const NB_FQNAME& cp) {
    const KindRow& row = kind_row(Kind::ls);
    Bytes bytes(row.entry_size);
    auto& entry = *reinterpret_cast<LS_ENTRY*>(bytes.data());
    unsigned number = 1;
    do {
        char name[16];
        std::snprintf(name, sizeof name, "@I%06u", number++ % 1'000'000);
        put_local(entry.ls_name, sizeof entry.ls_name, name);
    } while (find_name8(node, Kind::ls, reinterpret_cast<NB_BYTE*>(entry.ls_name)) != nullptr);
    std::memcpy(entry.def.port_name, port.key.data(), sizeof entry.def.port_name);
    std::memcpy(entry.def.adj_cp_name, cp, sizeof cp);
    entry.def.adj_cp_type = NAP_END_NODE;
    take_from_parent(node, row, bytes);
    entry.det.implicit = NAP_YES;
    activate_ls(world, node, store(node, row, std::move(bytes)));
}

const Record* other_link(const Node& node, const RTP_CONNECTION_ENTRY& connection) {
    const Record* found = nullptr;
    for (const Record* ls : everything(node.of(Kind::ls))) {
        const auto& entry = ls->as<LS_ENTRY>();
        if (entry.det.state != NOF_STATE_ACTIVE || entry.det.adj_cp_type != NAP_NETWORK_NODE ||
            std::memcmp(entry.ls_name, connection.first_hop_ls, sizeof entry.ls_name) == 0) {
            continue;
        }
        if (std::memcmp(entry.det.adj_cp_name, connection.destination, sizeof(NB_FQNAME)) == 0) {
            return ls;
        }
        found = found == nullptr ? ls : found;
    }
    return found;
}

namespace {

// RTP connections over a link that is lost take another one, or end.
void reroute_connections(Node& node, const Record& ls) {
    for (Record* connection : everything(node.of(Kind::rtp))) {
        auto& entry = connection->as<RTP_CONNECTION_ENTRY>();
        if (raw(entry.first_hop_ls, sizeof entry.first_hop_ls) != ls.key) {
            continue;
        }
        if (const Record* other = other_link(node, entry)) {
            std::memcpy(entry.first_hop_ls, other->as<LS_ENTRY>().ls_name,
                        sizeof entry.first_hop_ls);
        } else {
            erase(node.of(Kind::rtp), *connection);
        }
    }
}

} // namespace

void deactivate_ls(World& world, Node& node, Record& ls, bool failed, NB_BYTE disable) {
    auto& entry = ls.as<LS_ENTRY>();
    const bool was_active = entry.det.state == NOF_STATE_ACTIVE;
    NB_FQNAME cp;
    std::memcpy(cp, entry.det.adj_cp_name, sizeof cp);
    Kind kind = Kind::pu;
    Record* pu = pu_of_ls(node, ls, kind);
    if (pu != nullptr && pu->as<PU_ENTRY>().state != 0) {
        deactivate_pu(world, node, kind, *pu);
    }
    entry.det.state = failed ? NOF_STATE_FAILED : NOF_STATE_INACTIVE;
    entry.det.active_sessions = 0;
    std::memset(entry.det.adj_cp_name, 0, sizeof entry.det.adj_cp_name);
    entry.det.activation_flags &= static_cast<NB_BYTE>(~disable);
    const NB_BYTE new_state = failed                              ? NOF_LS_FAILED_ENABLED
                              : (disable & NOF_LS_ON_DEMAND) != 0 ? NOF_LS_DISABLED
                                                                  : NOF_LS_STOPPED;
    const bool dynamic = entry.det.implicit == NAP_YES;
    indicate_ls(world, node, ls, new_state, dynamic);
    if (was_active) {
        end_sessions_with(world, node, cp);
        reroute_connections(node, ls);
    }
    if (dynamic) {
        remove_record(node, Kind::ls, ls);
    }
}

namespace {

// The resource that a start verb names; null when there is none.
Record* resource_to_start(Node& node, std::span<const NB_BYTE> verb, Kind& kind) {
    for (const ManagedKind& managed : managed_kinds) {
        if (vcb_header(verb.data())->opcode == managed.start &&
            verb.size() >= managed.start_name + sizeof(NB_NAME8L)) {
            kind = managed.kind;
            return find_name8(node, kind, verb.data() + managed.start_name);
        }
    }
    return nullptr;
}

} // namespace

void begin_start(World& world, Node& node, std::span<const NB_BYTE> verb) {
    Kind kind{};
    Record* resource = node.active ? resource_to_start(node, verb, kind) : nullptr;
    if (resource == nullptr) {
        return;
    }
    switch (kind) {
    case Kind::port: { // nobody is told: the indication knows up and down alone
        const Record* dlc = find(node.of(Kind::dlc), resource->parent);
        auto& state = resource->as<PORT_ENTRY>().state;
        if (state == NOF_STATE_INACTIVE && dlc != nullptr &&
            dlc->as<DLC_ENTRY>().state == NOF_STATE_ACTIVE) {
            state = NOF_STATE_START_PENDING;
        }
        break;
    }
    case Kind::ls: {
        const Record* port = find(node.of(Kind::port), resource->parent);
        auto& state = resource->as<LS_ENTRY>().det.state;
        if (verb.size() >= sizeof(START_LS) &&
            reinterpret_cast<const START_LS*>(verb.data())->activation == 0 && port != nullptr &&
            port->as<PORT_ENTRY>().state == NOF_STATE_ACTIVE &&
            (state == NOF_STATE_INACTIVE || state == NOF_STATE_FAILED)) {
            state = NOF_STATE_START_PENDING;
            indicate_ls(world, node, *resource, NOF_LS_STARTING, false);
        }
        break;
    }
    case Kind::dlur_pu:
        if (auto& pu = resource->as<PU_ENTRY>(); pu.dlur_status == NOF_DLUR_INACTIVE) {
            pu.dlur_status = NOF_DLUR_STARTING; // told when it is up, as for a port
        }
        break;
    default:
        break;
    }
}

void fail_start(World& world, Node& node, std::span<const NB_BYTE> verb) {
    Kind kind{};
    Record* resource = resource_to_start(node, verb, kind);
    if (resource == nullptr) {
        return;
    }
    if (kind == Kind::port && resource->as<PORT_ENTRY>().state == NOF_STATE_START_PENDING) {
        resource->as<PORT_ENTRY>().state = NOF_STATE_INACTIVE;
    } else if (kind == Kind::ls && resource->as<LS_ENTRY>().det.state == NOF_STATE_START_PENDING) {
        deactivate_ls(world, node, *resource);
    } else if (kind == Kind::dlur_pu && resource->as<PU_ENTRY>().dlur_status == NOF_DLUR_STARTING) {
        resource->as<PU_ENTRY>().dlur_status = NOF_DLUR_INACTIVE;
    }
}

bool ends_start(std::span<const NB_BYTE> stop, std::span<const NB_BYTE> start) {
    const NB_USHORT opcode = vcb_header(stop.data())->opcode;
    for (const ManagedKind& managed : managed_kinds) {
        if (vcb_header(start.data())->opcode == managed.start &&
            start.size() >= managed.start_name + sizeof(NB_NAME8L)) {
            return opcode == NAP_STOP_NODE ||
                   (opcode == managed.stop &&
                    std::memcmp(stop.data() + managed.stop_name, start.data() + managed.start_name,
                                sizeof(NB_NAME8L)) == 0);
        }
    }
    return false;
}

void activate_node(World& world, Node& node) {
    node.active = true;
    for (Record* dlc : everything(node.of(Kind::dlc))) {
        if (dlc->as<DLC_ENTRY>().def.initially_active != 0) {
            activate_dlc(world, node, *dlc);
        }
    }
    for (Record* port : everything(node.of(Kind::port))) {
        const Record* dlc = find(node.of(Kind::dlc), port->parent);
        if (port->as<PORT_ENTRY>().def.initially_active != 0 && dlc != nullptr &&
            dlc->as<DLC_ENTRY>().state == NOF_STATE_ACTIVE) {
            activate_port(world, node, *port);
        }
    }
    for (Record* ls : everything(node.of(Kind::ls))) {
        ls->as<LS_ENTRY>().det.activation_flags = activation_flags(*ls);
        const Record* port = find(node.of(Kind::port), ls->parent);
        if (ls->as<LS_ENTRY>().def.initially_active != 0 && port != nullptr &&
            port->as<PORT_ENTRY>().state == NOF_STATE_ACTIVE) {
            activate_ls(world, node, *ls);
        }
    }
    for (Record* pu : everything(node.of(Kind::dlur_pu))) {
        if (pu->as<PU_ENTRY>().initially_active != 0) {
            activate_pu(world, node, Kind::dlur_pu, *pu);
        }
    }
}

void deactivate_node(Node& node) {
    node.active = false;
    for (Record* dlc : everything(node.of(Kind::dlc))) {
        dlc->as<DLC_ENTRY>().state = NOF_STATE_INACTIVE;
    }
    for (Record* port : everything(node.of(Kind::port))) {
        port->as<PORT_ENTRY>().state = NOF_STATE_INACTIVE;
    }
    for (Record* ls : everything(node.of(Kind::ls))) {
        auto& detail = ls->as<LS_ENTRY>().det;
        if (detail.implicit == NAP_YES) {
            remove_record(node, Kind::ls, *ls);
            continue;
        }
        detail.state = NOF_STATE_INACTIVE;
        detail.active_sessions = 0;
        std::memset(detail.adj_cp_name, 0, sizeof detail.adj_cp_name);
    }
    for (const Kind kind : {Kind::pu, Kind::dlur_pu, Kind::downstream_pu}) {
        for (Record* pu : everything(node.of(kind))) {
            auto& entry = pu->as<PU_ENTRY>();
            entry.state = 0;
            entry.dlur_active = 0;
            entry.dlur_status = kind == Kind::dlur_pu ? NOF_DLUR_INACTIVE : NOF_DLUR_RESET;
        }
    }
    for (Record* lu : everything(node.of(Kind::lu_0_to_3))) {
        auto& detail = lu->as<LU03_ENTRY>().det_data;
        detail.lu_active = 0;
        detail.plu_session_active = 0;
        clear_application(detail);
    }
    for (Record* lu : everything(node.of(Kind::downstream_lu))) {
        if (made_by_host(node, *lu)) {
            remove_record(node, Kind::downstream_lu, *lu);
            continue;
        }
        lu->as<DOWN_LU_ENTRY>().lu_active = 0;
        lu->as<DOWN_LU_ENTRY>().plu_session_active = 0;
    }
    for (Record* lu : everything(node.of(Kind::local_lu))) {
        lu->as<LU62_ENTRY>().session_status = 0;
    }
    clear(node.of(Kind::partner));
    clear(node.of(Kind::mode));
    clear(node.of(Kind::rtp));
    clear(node.of(Kind::appcip_session));
    for (Record* entry : everything(node.of(Kind::directory))) { // what was learned is forgotten
        if (entry->as<DIRECTORY_ENTRY>().entry_type != NOF_DIRECTORY_DEFINED) {
            erase(node.of(Kind::directory), *entry);
        }
    }
}

namespace {

Record& partner_of(World& world, Node& node, const Record& lu, const NB_FQNAME& name,
                   const NB_FQNAME& cp) {
    if (Record* partner = find(node.of(Kind::partner), lu.key + raw(name, sizeof name))) {
        return *partner;
    }
    Bytes bytes(sizeof(PLU_ENTRY));
    auto& entry = *reinterpret_cast<PLU_ENTRY*>(bytes.data());
    std::memcpy(entry.plu_name, name, sizeof name);
    if (!is_blank(cp, sizeof cp)) {
        entry.cp_known = NAP_YES;
        std::memcpy(entry.cp_name, cp, sizeof cp);
    }
    if (const Record* definition =
            find(node.of(Kind::partner_definition), raw(name, sizeof name))) {
        std::memcpy(entry.plu_alias, definition->as<PLU_DEF_ENTRY>().def.plu_alias, 8);
    }
    Record& partner = store(node, kind_row(Kind::partner), std::move(bytes), lu.key);
    indicate_partner(world, node, partner, false);
    return partner;
}

Record& mode_of(Node& node, const Record& lu, const Record& partner, const NB_NAME8E& name) {
    const auto& known = partner.as<PLU_ENTRY>();
    const std::string key =
        lu.key + raw(known.plu_name, sizeof known.plu_name) + raw(name, sizeof name);
    if (Record* mode = find(node.of(Kind::mode), key)) {
        return *mode;
    }
    Bytes bytes(sizeof(MODE_ENTRY));
    auto& entry = *reinterpret_cast<MODE_ENTRY*>(bytes.data());
    std::memcpy(entry.mode_name, name, sizeof name);
    std::memcpy(entry.plu_name, known.plu_name, sizeof known.plu_name);
    entry.cp_known = known.cp_known;
    std::memcpy(entry.cp_name, known.cp_name, sizeof known.cp_name);
    if (const Record* definition = find_name8(node, Kind::mode_definition, name)) {
        const auto& limits = definition->as<MODE_DEF_ENTRY>().def;
        entry.max_session_limit = limits.max_session_limit;
        entry.current_session_limit = limits.initial_session_limit;
        entry.min_conwinners = limits.min_conwinners;
        entry.min_conlosers = limits.min_conlosers;
        entry.auto_activation = limits.auto_activation;
    }
    return store(node, kind_row(Kind::mode), std::move(bytes), lu.key);
}

} // namespace

void follow_sessions(World& world, Node& node, const std::string& name) {
    Record* lu = find(node.of(Kind::local_lu), name);
    if (lu == nullptr || lu->as<LU62_ENTRY>().def.nau_address == 0) {
        return;
    }
    const auto partners = children(node.of(Kind::partner), name);
    const NB_BYTE status = std::any_of(partners.begin(), partners.end(), [](const Record* partner) {
        return partner->as<PLU_ENTRY>().active_sessions != 0;
    });
    if (lu->as<LU62_ENTRY>().session_status != status) {
        lu->as<LU62_ENTRY>().session_status = status;
        indicate(world, node, Kind::local_lu, *lu, false);
    }
}

void set_sessions(World& world, Node& node, const Record& lu, const NB_FQNAME& partner_name,
                  const NB_NAME8E& mode_name, const NB_FQNAME& cp, NB_USHORT count) {
    Record& partner = partner_of(world, node, lu, partner_name, cp);
    Record& mode = mode_of(node, lu, partner, mode_name);
    auto& entry = mode.as<MODE_ENTRY>();
    auto& sums = partner.as<PLU_ENTRY>();
    sums.active_sessions =
        static_cast<NB_USHORT>(sums.active_sessions + count - entry.act_sess_count);
    entry.act_sess_count = count;
    entry.act_conwinners = static_cast<NB_USHORT>((count + 1) / 2);
    entry.act_conlosers = static_cast<NB_USHORT>(count / 2);
    indicate_mode(world, node, mode, false);
    if (count == 0) {
        indicate_mode(world, node, mode, true);
        erase(node.of(Kind::mode), mode);
        if (sums.active_sessions == 0) {
            indicate_partner(world, node, partner, true);
            erase(node.of(Kind::partner), partner);
        }
    }
    follow_sessions(world, node, lu.key);
}

void end_sessions_with(World& world, Node& node, const NB_FQNAME& cp) {
    if (is_blank(cp, sizeof cp)) {
        return;
    }
    for (const Record* ls : everything(node.of(Kind::ls))) { // another link may carry them
        const auto& detail = ls->as<LS_ENTRY>().det;
        if (detail.state == NOF_STATE_ACTIVE &&
            std::memcmp(detail.adj_cp_name, cp, sizeof cp) == 0) {
            return;
        }
    }
    for (const Record* mode : everything(node.of(Kind::mode))) {
        const MODE_ENTRY entry = mode->as<MODE_ENTRY>();
        const Record* lu = find(node.of(Kind::local_lu), mode->parent);
        if (lu != nullptr && std::memcmp(entry.cp_name, cp, sizeof cp) == 0) {
            set_sessions(world, node, *lu, entry.plu_name, entry.mode_name, cp, 0);
        }
    }
}

void release_lu(World& world, Node& node, Record& lu) {
    clear_application(lu.as<LU03_ENTRY>().det_data);
    lu.as<LU03_ENTRY>().det_data.plu_session_active = 0;
    indicate_lu_0_to_3(world, node, lu);
}

} // namespace simnode
