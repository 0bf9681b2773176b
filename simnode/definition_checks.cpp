#include "simnode/definition_checks.h"

#include "nof/connectivity.h"
#include "nof/extra_data.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "nof/routing.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/tp.h"

#include <algorithm>
#include <cstring>

namespace simnode {
namespace {

bool dependent(const Record& lu) {
    return lu.as<LU62_ENTRY>().def.nau_address != 0;
}

// The NAU address of a record below a PU; 0: it has none.
NB_BYTE nau_address(Kind kind, const Record& record) {
    switch (kind) {
    case Kind::lu_0_to_3:
        return record.as<LU03_ENTRY>().def_data.nau_address;
    case Kind::downstream_lu:
        return record.as<DOWN_LU_ENTRY>().def.nau_address;
    case Kind::local_lu:
        return record.as<LU62_ENTRY>().def.nau_address;
    default:
        return 0;
    }
}

bool address_in_use(Node& node, Kind kind, const Record& record) {
    const NB_BYTE address = nau_address(kind, record);
    static constexpr Kind local[] = {Kind::lu_0_to_3, Kind::local_lu};
    static constexpr Kind downstream[] = {Kind::downstream_lu};
    const std::span<const Kind> sharing = kind == Kind::downstream_lu
                                              ? std::span<const Kind>(downstream)
                                              : std::span<const Kind>(local);
    for (const Kind other : sharing) {
        for (const Record* lu : children(node.of(other), record.parent)) {
            if (nau_address(other, *lu) == address && (other != kind || lu->key != record.key)) {
                return true;
            }
        }
    }
    return false;
}

Rc check_lu(Node& node, Kind kind, const Record& record) {
    if (nau_address(kind, record) == 0) {
        return RC_BAD_VALUE;
    }
    if (kind != Kind::downstream_lu) {
        const Kind other = kind == Kind::lu_0_to_3 ? Kind::local_lu : Kind::lu_0_to_3;
        if (find(node.of(other), record.key) != nullptr) {
            return RC_NAME_IN_USE;
        }
    }
    return address_in_use(node, kind, record) ? RC_ADDRESS_IN_USE : Rc{};
}

Rc check_local_lu(Node& node, const Record& record) {
    const NB_NAME8L& alias = record.as<LU62_ENTRY>().def.lu_alias;
    for (const Record* lu : everything(node.of(Kind::local_lu))) {
        if (lu->key != record.key && !is_blank(alias, sizeof alias) &&
            std::memcmp(lu->as<LU62_ENTRY>().def.lu_alias, alias, sizeof alias) == 0) {
            return RC_NAME_IN_USE;
        }
    }
    if (!dependent(record)) {
        return {};
    }
    return is_control_point(node, record) ? RC_BAD_VALUE : check_lu(node, Kind::local_lu, record);
}

Rc check_ls(Node& node, const Record& record) {
    const auto& def = record.as<LS_ENTRY>().def;
    const bool host = def.adj_cp_type == NAP_HOST_XID3 || def.adj_cp_type == NAP_HOST_XID0 ||
                      def.solicit_sscp_sessions == NAP_YES;
    const NB_BYTE* pu_name = host ? def.pu_name : def.dspu_name;
    if ((!host && def.dspu_services == 0) || is_blank(pu_name, 8)) {
        return host ? RC_BAD_VALUE : Rc{};
    }
    for (const Kind kind : {Kind::pu, Kind::dlur_pu, Kind::downstream_pu}) {
        const Record* pu = find_name8(node, kind, pu_name);
        if (pu != nullptr && pu->parent != record.key) {
            return RC_NAME_IN_USE;
        }
    }
    return {};
}

bool parent_exists(const Node& node, const KindRow& row, const Record& record) {
    for (const KindRow& other : kind_rows()) {
        if ((row.parents & kind_bit(other.kind)) != 0 &&
            find(node.of(other.kind), record.parent) != nullptr) {
            return true;
        }
    }
    return false;
}

// The control point that an LU's directory entry names: the node's own, or one with an entry.
bool owner_known(const Node& node, const DIRECTORY_ENTRY& entry) {
    const std::string owner = raw(entry.parent_name, sizeof entry.parent_name);
    if (owner == raw(node.parameters.cp_name, sizeof node.parameters.cp_name)) {
        return true;
    }
    const std::vector<Record*> entries = everything(node.of(Kind::directory));
    return std::any_of(entries.begin(), entries.end(), [&](const Record* other) {
        return other->key.starts_with(owner) &&
               other->as<DIRECTORY_ENTRY>().resource_type != NAP_LU_RESOURCE;
    });
}

// Starting a downstream LU defines it once more; that says nothing new of one that is active.
bool already_started(const Record& record, const Record* old) {
    return old != nullptr && old->as<DOWN_LU_ENTRY>().lu_active != 0 &&
           std::memcmp(&old->as<DOWN_LU_ENTRY>().def, &record.as<DOWN_LU_ENTRY>().def,
                       sizeof(DOWN_LU_DEF)) == 0;
}

// The items of load information follow each other to the end of their list.
bool well_formed_items(const Record& record) {
    const auto& definition = record.as<TP_LOAD_INFO_ENTRY>().def_data;
    std::size_t at = sizeof(TP_LOAD_INFO_ENTRY);
    const std::size_t end = at + definition.ltv_length;
    while (at + sizeof(LTV_ITEM) <= end) {
        const auto& item = *reinterpret_cast<const LTV_ITEM*>(record.entry.data() + at);
        if (item.length.get() < sizeof item) {
            return false;
        }
        at += item.length.get();
    }
    return at == end;
}

// Levels of security say something of connections with SSL alone.
bool consistent(NB_BYTE ssl, NB_BYTE level) {
    return ssl <= NOF_SSL_CLIENT_AUTHENTICATION && level <= NOF_SECURITY_LEVEL_256 &&
           (ssl != NOF_SSL_NONE || level == NOF_SECURITY_LEVEL_NONE);
}

Rc check_redirect(Node& node, const Record& record) {
    if (node.capabilities.tn_server == 0) {
        return RC_UNSUPPORTED;
    }
    const auto& entry = record.as<TN_REDIRECT_ENTRY>();
    const bool any_client = entry.key.default_record != 0;
    if (entry.key.client_port == 0 || entry.def.host_port == 0 || entry.def.host_address[0] == 0 ||
        any_client == (entry.key.client_address[0] != 0) ||
        !consistent(entry.def.client_ssl, entry.def.client_security_level) ||
        !consistent(entry.def.host_ssl, entry.def.host_security_level)) {
        return RC_REDIRECT_SETTINGS;
    }
    const std::string address =
        lower(local_text(entry.key.client_address, sizeof entry.key.client_address));
    for (const Record* other : everything(node.of(Kind::redirect))) {
        const auto& key = other->as<TN_REDIRECT_ENTRY>().key;
        if (other->key != record.key && key.client_port == entry.key.client_port &&
            (key.default_record != 0) == any_client &&
            lower(local_text(key.client_address, sizeof key.client_address)) == address) {
            return RC_REDIRECT_CLIENT_KNOWN;
        }
    }
    for (const Record* session : everything(node.of(Kind::tn_session))) {
        if (session->as<TN3270_SESSION>().port == entry.key.client_port) {
            return RC_REDIRECT_PORT_IN_USE;
        }
    }
    return {};
}

Rc check_tn_client(const Record& record) {
    const auto& client = record.as<TN3270_ACCESS_ENTRY>().client;
    return (client.default_record != 0) == (client.address[0] != 0) ? RC_BAD_NAME : Rc{};
}

Rc check_extra_data(std::span<const NB_BYTE> block, bool orphan) {
    const auto& verb = *reinterpret_cast<const DEFINE_EXTRA_DATA*>(block.data());
    if (verb.resource_kind != NOF_EXTRA_DATA_LU_0_TO_3) {
        return RC_BAD_VALUE;
    }
    // The LU's name at the host begins with a letter, when there is one.
    const NB_BYTE first = verb.data.second_half[0];
    if (!is_blank(verb.data.second_half, sizeof verb.data.second_half) && first < 0x5B) {
        return RC_BAD_HOST_LU_NAME;
    }
    return orphan ? RC_EXTRA_DATA_NOT_KEPT : Rc{};
}

// A port that is active stays at its adapter and keeps its number and kind.
bool moves_active_port(const Record& record, const Record& old) {
    const auto& fresh = record.as<PORT_ENTRY>().def;
    const auto& def = old.as<PORT_ENTRY>().def;
    return old.as<PORT_ENTRY>().state != NOF_STATE_INACTIVE &&
           (std::memcmp(fresh.dlc_name, def.dlc_name, sizeof def.dlc_name) != 0 ||
            fresh.port_number != def.port_number || fresh.port_type != def.port_type);
}

// A link station that is not stopped stays at its port and keeps its PU.
bool moves_active_ls(const Record& record, const Record& old) {
    const auto& fresh = record.as<LS_ENTRY>().def;
    const auto& entry = old.as<LS_ENTRY>();
    const auto differ = [](const auto& a, const auto& b) {
        return std::memcmp(&a, &b, sizeof a) != 0;
    };
    return entry.det.state != NOF_STATE_INACTIVE && entry.det.state != NOF_STATE_FAILED &&
           (differ(fresh.port_name, entry.def.port_name) ||
            differ(fresh.pu_name, entry.def.pu_name) ||
            differ(fresh.dspu_name, entry.def.dspu_name) ||
            fresh.dspu_services != entry.def.dspu_services ||
            fresh.solicit_sscp_sessions != entry.def.solicit_sscp_sessions);
}

Rc check_timeout(const Record& record) {
    const NB_BYTE type = record.as<LU62_TIMEOUT_ENTRY>().resource_type;
    return type < NOF_TIMEOUT_NODE || type > NOF_TIMEOUT_MODE ? RC_BAD_VALUE : Rc{};
}

} // namespace

Rc check_define(Node& node, const KindRow& row, std::span<const NB_BYTE> block,
                const Record& record, const Record* old) {
    const bool orphan = !parent_exists(node, row, record);
    switch (row.kind) {
    case Kind::port:
        if (old != nullptr && moves_active_port(record, *old)) {
            return RC_PORT_DEFINED_ACTIVE;
        }
        return orphan ? RC_UNKNOWN_PARENT : Rc{};
    case Kind::ls_routing:
    case Kind::lu_lu_password:
    case Kind::primary_lu0:
        return orphan ? RC_UNKNOWN_PARENT : Rc{};
    case Kind::tp:
        return is_blank(record.key.data(), record.key.size()) ? RC_BAD_TP : Rc{};
    case Kind::tp_load:
        return well_formed_items(record) ? Rc{} : RC_BAD_VALUE;
    case Kind::lu62_timeout:
        return check_timeout(record);
    case Kind::userid:
        return record.as<USERID_PASSWORD_ENTRY>().def.num_profiles > NOF_USER_PROFILES
                   ? RC_BAD_VALUE
                   : Rc{};
    case Kind::tn_client:
        return check_tn_client(record);
    case Kind::redirect:
        return check_redirect(node, record);
    case Kind::extra_data:
        return check_extra_data(block, orphan);
    case Kind::ls:
        if (old != nullptr && moves_active_ls(record, *old)) {
            return RC_RESOURCE_ACTIVE;
        }
        return orphan ? RC_UNKNOWN_PARENT : check_ls(node, record);
    case Kind::dlur_pu:
        return find(node.of(Kind::pu), record.key) != nullptr ? RC_NAME_IN_USE : Rc{};
    case Kind::downstream_lu:
        if (already_started(record, old)) {
            return RC_DSLU_ALREADY_ACTIVE;
        }
        [[fallthrough]];
    case Kind::lu_0_to_3:
        return orphan ? RC_UNKNOWN_PARENT : check_lu(node, row.kind, record);
    case Kind::local_lu:
        return dependent(record) && orphan ? RC_UNKNOWN_PARENT : check_local_lu(node, record);
    case Kind::directory: {
        const auto& entry = record.as<DIRECTORY_ENTRY>();
        const bool needs_owner = entry.resource_type == NAP_LU_RESOURCE ||
                                 entry.resource_type == NAP_WILDCARD_LU_RESOURCE;
        return needs_owner && !owner_known(node, entry) ? RC_UNKNOWN_PARENT : Rc{};
    }
    default:
        return {};
    }
}

void take_from_parent(Node& node, const KindRow& row, Bytes& bytes) {
    auto* data = bytes.data();
    switch (row.kind) {
    case Kind::port: {
        auto& port = *reinterpret_cast<PORT_ENTRY*>(data);
        if (const Record* dlc = find(node.of(Kind::dlc), raw(port.def.dlc_name, 8))) {
            port.dlc_type = dlc->as<DLC_ENTRY>().def.dlc_type;
        }
        break;
    }
    case Kind::ls: {
        auto& ls = *reinterpret_cast<LS_ENTRY*>(data);
        if (const Record* port = find(node.of(Kind::port), raw(ls.def.port_name, 8))) {
            ls.det.dlc_type = port->as<PORT_ENTRY>().dlc_type;
            std::memcpy(ls.det.port_address, port->as<PORT_ENTRY>().def.local_address, 7);
        }
        break;
    }
    case Kind::dlur_pu:
        reinterpret_cast<PU_ENTRY*>(data)->host_attachment = NAP_DLUR_ATTACHED;
        break;
    case Kind::lu_0_to_3: {
        auto& lu = *reinterpret_cast<LU03_ENTRY*>(data);
        if (const Record* pu = find_pu(node, lu.def_data.pu_name)) {
            lu.det_data.host_attachment = pu->as<PU_ENTRY>().host_attachment;
            lu.det_data.lu_active = pu->as<PU_ENTRY>().state == NOF_STATE_ACTIVE;
        }
        break;
    }
    case Kind::downstream_lu: {
        auto& lu = *reinterpret_cast<DOWN_LU_ENTRY*>(data);
        if (const Record* pu = find_name8(node, Kind::downstream_pu, lu.def.dspu_name)) {
            lu.type = pu->as<PU_ENTRY>().host_attachment;
            lu.lu_active = pu->as<PU_ENTRY>().state == NOF_STATE_ACTIVE;
        }
        break;
    }
    default:
        break;
    }
}

void complete_entry(Node& node, const KindRow& row, Bytes& bytes, const Record* old) {
    take_from_parent(node, row, bytes);
    auto* data = bytes.data();
    switch (row.kind) {
    case Kind::ls: {
        Record probe;
        probe.entry = bytes;
        reinterpret_cast<LS_ENTRY*>(data)->det.activation_flags = activation_flags(probe);
        break;
    }
    case Kind::dlur_pu:
        if (old == nullptr) {
            reinterpret_cast<PU_ENTRY*>(data)->dlur_status = NOF_DLUR_INACTIVE;
        }
        break;
    case Kind::lu_0_to_3: {
        auto& detail = reinterpret_cast<LU03_ENTRY*>(data)->det_data;
        detail.plu_session_active &= detail.lu_active;
        break;
    }
    case Kind::downstream_lu: {
        auto& lu = *reinterpret_cast<DOWN_LU_ENTRY*>(data);
        lu.plu_session_active &= lu.lu_active;
        break;
    }
    case Kind::directory: {
        auto& entry = *reinterpret_cast<DIRECTORY_ENTRY*>(data);
        entry.entry_type = NOF_DIRECTORY_DEFINED;
        if (entry.resource_type == NAP_END_NODE_CP_RESOURCE) {
            std::memcpy(entry.network_node, entry.parent_name, sizeof(NB_FQNAME));
        }
        break;
    }
    default:
        break;
    }
}

bool is_control_point(const Node& node, const Record& lu) {
    const std::string cp = ebcdic_text(node.parameters.cp_name, sizeof(NB_FQNAME));
    const std::size_t period = cp.find('.');
    return period != std::string::npos &&
           ebcdic_text(lu.as<LU62_ENTRY>().lu_name, 8) == cp.substr(period + 1);
}

Bytes with_lu_name(const Node& node, Kind kind, std::span<const NB_BYTE> block,
                   std::size_t offset) {
    Bytes bytes(block.begin(), block.end());
    NB_BYTE* name = bytes.data() + offset;
    if ((kind != Kind::ls_routing && kind != Kind::lu_lu_password) || !is_blank(name, 8)) {
        return bytes;
    }
    const NB_BYTE* alias = name + 8;
    for (const Record* lu : everything(node.of(Kind::local_lu))) {
        const auto& entry = lu->as<LU62_ENTRY>();
        if (is_blank(alias, 8) ? is_control_point(node, *lu)
                               : std::memcmp(entry.def.lu_alias, alias, 8) == 0) {
            std::memcpy(name, entry.lu_name, 8);
        }
    }
    return bytes;
}

} // namespace simnode
