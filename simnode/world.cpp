#include "simnode/world.h"

#include "nof/cn.h"
#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "simnode/member_kinds.h"

#include <cstring>

namespace simnode {

std::vector<Node*> places_of(Domain& domain, const KindRow& row) {
    if (row.of_domain) {
        return {&domain.file};
    }
    std::vector<Node*> places;
    for (const auto& node : domain.nodes) {
        places.push_back(node.get());
    }
    return places;
}

Node* node_named(Domain& domain, std::string_view name) {
    for (const auto& node : domain.nodes) {
        if (lower(node->name) == lower(name)) {
            return node.get();
        }
    }
    return nullptr;
}

Node* local_node(Domain& domain) {
    Node* node = node_named(domain, domain.local_server);
    return node != nullptr || domain.nodes.empty() ? node : domain.nodes.front().get();
}

Record* find_name8(Node& node, Kind kind, const NB_BYTE* name) {
    return find(node.of(kind), {reinterpret_cast<const char*>(name), 8});
}

Record* find_pu(Node& node, const NB_BYTE* name) {
    return find_any_pu(node, {reinterpret_cast<const char*>(name), 8});
}

Record* find_any_pu(Node& node, std::string_view name) {
    Record* pu = find(node.of(Kind::pu), name);
    return pu != nullptr ? pu : find(node.of(Kind::dlur_pu), name);
}

namespace {

// Directory lists go from the top down: a control point, then its LUs, then the end nodes it
// serves, each with its LUs. Parts: the name at the top, the end node below it (zero: none), 0 for
// the control point itself, then the LU.
std::string directory_order(const Node& node, const Record& record) {
    const auto& entry = record.as<DIRECTORY_ENTRY>();
    const std::string none(sizeof(NB_FQNAME), '\0');
    const std::string name = raw(entry.resource_name, sizeof(NB_FQNAME));
    const auto place_of_end_node = [&](const DIRECTORY_ENTRY& cp) {
        const bool served = !is_blank(cp.network_node, sizeof(NB_FQNAME));
        const std::string cp_name = raw(cp.resource_name, sizeof(NB_FQNAME));
        return served ? raw(cp.network_node, sizeof(NB_FQNAME)) + cp_name : cp_name + none;
    };
    switch (entry.resource_type) {
    case NAP_NETWORK_NODE_CP_RESOURCE:
        return name + none + '\0';
    case NAP_END_NODE_CP_RESOURCE:
        return place_of_end_node(entry) + '\0';
    default:
        break;
    }
    const std::string owner = raw(entry.parent_name, sizeof(NB_FQNAME));
    const std::string owner_key =
        owner + std::string{static_cast<char>(NAP_END_NODE_CP_RESOURCE >> 8),
                            static_cast<char>(NAP_END_NODE_CP_RESOURCE)};
    const Record* end_node = find(node.of(Kind::directory), owner_key);
    const std::string place =
        end_node != nullptr ? place_of_end_node(end_node->as<DIRECTORY_ENTRY>()) : owner + none;
    return place + '\1' + record.key;
}

Record& put_in_order(Node& node, Kind kind, Record record) {
    if (kind != Kind::directory) {
        return put(node.of(kind), std::move(record));
    }
    record.order = directory_order(node, record);
    const bool end_node = record.as<DIRECTORY_ENTRY>().resource_type == NAP_END_NODE_CP_RESOURCE;
    Record& stored = put(node.of(kind), std::move(record));
    if (end_node) { // the LUs below it move with it
        for (const Record* lu : children(node.of(kind), name_for_children(kind, stored))) {
            Record moved = *lu;
            if (moved.key != stored.key) {
                moved.order = directory_order(node, moved);
                put(node.of(kind), std::move(moved));
            }
        }
    }
    return stored;
}

} // namespace

namespace {

std::string pool_of(const Record* lu) {
    return lu == nullptr
               ? std::string()
               : parent_name({offsetof(LU03_ENTRY, def_data.pool_name), 8}, lu->entry.data());
}

} // namespace

Record& store(Node& node, const KindRow& row, Bytes entry, const std::string& owner) {
    std::string old_pool;
    if (row.kind == Kind::lu_0_to_3) {
        old_pool = pool_of(find(node.of(row.kind), make_key(row.key, entry.data())));
    }
    Record& record = put_in_order(node, row.kind, make_record(row, std::move(entry), owner));
    if (row.kind == Kind::cos_node_row || row.kind == Kind::cos_tg_row) {
        if (Record* cos = find(node.of(Kind::cos), record.parent)) {
            const auto count =
                static_cast<NB_USHORT>(children(node.of(row.kind), record.parent).size());
            auto& entry_of_cos = cos->as<COS_ENTRY>();
            (row.kind == Kind::cos_node_row ? entry_of_cos.num_node_rows
                                            : entry_of_cos.num_tg_rows) = count;
        }
    } else if (row.kind == Kind::cn || row.kind == Kind::cn_port) {
        count_cn_ports(node, record.key.substr(0, sizeof(NB_FQNAME)));
    } else if (row.kind == Kind::lu_0_to_3) {
        move_lu_to_pool(node, record.key, old_pool, pool_of(&record));
    }
    return record;
}

void remove_record(Node& node, Kind kind, Record& record) {
    const std::string name = name_for_children(kind, record);
    const std::string parent = record.parent;
    if (kind == Kind::lu_0_to_3) {
        move_lu_to_pool(node, record.key, pool_of(&record), {});
    } else if (kind == Kind::port) {
        forget_cn_of_port(node, record);
    }
    erase(node.of(kind), record);
    if (kind == Kind::cn_port) {
        count_cn_ports(node, parent);
    }
    for (const KindRow& row : kind_rows()) {
        if ((row.parents & kind_bit(kind)) == 0) {
            continue;
        }
        for (const std::string& key : [&] {
                 std::vector<std::string> keys;
                 for (const Record* child : children(node.of(row.kind), name)) {
                     keys.push_back(child->key);
                 }
                 return keys;
             }()) {
            if (Record* child = find(node.of(row.kind), key)) {
                remove_record(node, row.kind, *child);
            }
        }
    }
}

NB_BYTE activation_flags(const Record& ls) {
    const auto& def = ls.as<LS_ENTRY>().def;
    return static_cast<NB_BYTE>((def.activate_on_demand == NAP_YES ? NOF_LS_ON_DEMAND : 0) |
                                (def.disable_remote_act == NAP_NO ? NOF_LS_INCOMING : 0));
}

Record* pu_of_ls(Node& node, const Record& ls, Kind& kind) {
    for (const Kind candidate : {Kind::pu, Kind::downstream_pu}) {
        const auto found = children(node.of(candidate), ls.key);
        if (!found.empty()) {
            kind = candidate;
            return found.front();
        }
    }
    return nullptr;
}

void update_pu_of_ls(Node& node, const Record& ls) {
    const auto& entry = ls.as<LS_ENTRY>();
    const auto& def = entry.def;
    const bool host = def.adj_cp_type == NAP_HOST_XID3 || def.adj_cp_type == NAP_HOST_XID0 ||
                      def.solicit_sscp_sessions == NAP_YES;
    const bool downstream = !host && def.dspu_services != 0;
    const Kind wanted = host ? Kind::pu : Kind::downstream_pu;
    const NB_BYTE* name = host ? def.pu_name : def.dspu_name;
    const bool any = (host || downstream) && !is_blank(name, 8);

    Kind kind = Kind::pu;
    Record* old = pu_of_ls(node, ls, kind);
    if (old != nullptr && (!any || kind != wanted || old->key != raw(name, 8))) {
        remove_record(node, kind, *old);
        old = nullptr;
    }
    if (!any) {
        return;
    }
    Bytes bytes = old != nullptr ? old->entry : Bytes(sizeof(PU_ENTRY));
    auto& pu = *reinterpret_cast<PU_ENTRY*>(bytes.data());
    std::memcpy(pu.pu_name, name, sizeof pu.pu_name);
    std::memcpy(pu.ls_name, entry.ls_name, sizeof pu.ls_name);
    pu.host_attachment = host ? NB_BYTE{NAP_DIRECT_ATTACHED} : def.dspu_services;
    if (old == nullptr) {
        std::memcpy(pu.description, def.description, sizeof pu.description);
        pu.state = entry.det.state == NOF_STATE_ACTIVE;
        pu.conventional_lu_compression = def.parameter490;
    }
    store(node, kind_row(wanted), std::move(bytes));
}

namespace {

struct StandardMode {
    const char* name;
    const char* cos;
    NB_USHORT max_ru;
    NB_BYTE pacing;
    NB_USHORT limit;
    NB_USHORT min_winners;
};

constexpr StandardMode standard_modes[] = {
    {"CPSVCMG", "CPSVCMG", 512, 1, 2, 1},     {"SNASVCMG", "SNASVCMG", 512, 1, 2, 1},
    {"", "#CONNECT", 1024, 3, 8, 4},          {"#INTER", "#INTER", 4096, 7, 8, 4},
    {"#INTERSC", "#INTERSC", 4096, 7, 8, 4},  {"#BATCH", "#BATCH", 4096, 3, 8, 4},
    {"#BATCHSC", "#BATCHSC", 4096, 3, 8, 4},  {"#INTERC", "#INTER", 4096, 7, 8, 4},
    {"#INTERCS", "#INTERSC", 4096, 7, 8, 4},  {"#BATCHC", "#BATCH", 4096, 3, 8, 4},
    {"#BATCHCS", "#BATCHSC", 4096, 3, 8, 4},  {"CPSVRMGR", "SNASVCMG", 512, 1, 2, 1},
    {"QPCSUPP", "#CONNECT", 4096, 7, 26, 13},
};

struct StandardCos {
    const char* name;
    const char* description;
    NB_BYTE priority;
};

constexpr StandardCos standard_cos[] = {
    {"#CONNECT", "Default class of service", 1},
    {"CPSVCMG", "Control point sessions", 3},
    {"SNASVCMG", "Session services", 3},
    {"#INTER", "Interactive", 2},
    {"#INTERSC", "Interactive, secure", 2},
    {"#BATCH", "Batch", 0},
    {"#BATCHSC", "Batch, secure", 0},
};

void add_mode(Node& node, const StandardMode& mode) {
    Bytes entry(sizeof(MODE_DEF_ENTRY));
    auto& definition = *reinterpret_cast<MODE_DEF_ENTRY*>(entry.data());
    put_ebcdic(definition.mode_name, 8, mode.name);
    if (find_name8(node, Kind::mode_definition, definition.mode_name) != nullptr) {
        return;
    }
    put_ebcdic(definition.def.cos_name, 8, mode.cos);
    definition.def.max_ru_upper = mode.max_ru;
    definition.def.default_ru_size = NAP_YES;
    definition.def.receive_pacing = mode.pacing;
    definition.def.max_session_limit = mode.limit;
    definition.def.initial_session_limit = mode.limit;
    definition.def.min_conwinners = mode.min_winners;
    definition.def.min_conlosers = static_cast<NB_USHORT>(mode.limit - mode.min_winners);
    store(node, kind_row(Kind::mode_definition), std::move(entry));
}

void add_row(Node& node, Kind kind, const NB_BYTE* cos_name, NB_USHORT number, NB_BYTE weight) {
    Bytes entry(sizeof(COS_ROW_ENTRY));
    auto& row = *reinterpret_cast<COS_ROW_ENTRY*>(entry.data());
    std::memcpy(row.cos_name, cos_name, sizeof row.cos_name);
    row.row = number;
    std::memset(row.maximum, 0xFF, sizeof row.maximum);
    row.weight = weight;
    store(node, kind_row(kind), std::move(entry));
}

void add_cos(Node& node, const StandardCos& cos) {
    Bytes entry(sizeof(COS_ENTRY));
    auto& fields = *reinterpret_cast<COS_ENTRY*>(entry.data());
    put_ebcdic(fields.cos_name, 8, cos.name);
    if (find_name8(node, Kind::cos, fields.cos_name) != nullptr) {
        return;
    }
    put_text(fields.description, sizeof fields.description, cos.description);
    fields.transmission_priority = cos.priority;
    const Record& record = store(node, kind_row(Kind::cos), std::move(entry));
    const auto* name = reinterpret_cast<const NB_BYTE*>(record.key.data());
    for (NB_USHORT row = 1; row <= 2; ++row) {
        add_row(node, Kind::cos_node_row, name, row, static_cast<NB_BYTE>(row * 5));
        add_row(node, Kind::cos_tg_row, name, row, static_cast<NB_BYTE>(row * 30));
    }
}

void add_control_point_lu(Node& node) {
    const std::string cp = ebcdic_text(node.parameters.cp_name, sizeof(NB_FQNAME));
    const std::size_t period = cp.find('.');
    if (period == std::string::npos) {
        return;
    }
    Bytes entry(sizeof(LU62_ENTRY));
    auto& lu = *reinterpret_cast<LU62_ENTRY*>(entry.data());
    put_ebcdic(lu.lu_name, 8, cp.substr(period + 1));
    if (find_name8(node, Kind::local_lu, lu.lu_name) != nullptr) {
        return;
    }
    std::memcpy(lu.def.lu_alias, node.parameters.cp_alias, sizeof lu.def.lu_alias);
    store(node, kind_row(Kind::local_lu), std::move(entry));
}

} // namespace

void add_standard_resources(Node& node) {
    add_control_point_lu(node);
    for (const StandardMode& mode : standard_modes) {
        add_mode(node, mode);
    }
    for (const StandardCos& cos : standard_cos) {
        add_cos(node, cos);
    }
}

} // namespace simnode
