#include "simnode/domain_file.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pool.h"
#include "nof/pu_lu.h"
#include "nof/tn3270.h"
#include "nof/user.h"
#include "simnode/definition_checks.h"
#include "simnode/manage.h"
#include "simnode/node_fields.h"
#include "simnode/specific_data.h"

#include <cstring>
#include <fstream>
#include <sstream>

#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>

namespace simnode {
namespace {

struct Loader {
    Domain& domain;
    std::string name; // of the file
    std::string error;
    World scratch; // takes the events of what is set up; nobody hears them

    bool fail(const toml::node& where, const std::string& what) {
        if (error.empty()) {
            error = name + ":" + std::to_string(where.source().begin.line) + ": " + what;
        }
        return false;
    }
};

// A TOML value as the text that set_field reads; false for values that are none.
bool value_text(const toml::node& value, std::string& text) {
    if (const auto* string = value.as_string()) {
        text = string->get();
    } else if (const auto* integer = value.as_integer()) {
        text = std::to_string(integer->get());
    } else if (const auto* boolean = value.as_boolean()) {
        text = boolean->get() ? "true" : "false";
    } else {
        return false;
    }
    return true;
}

// Sets the fields that a table gives; other keys must be among those known to the caller.
bool set_fields(Loader& loader, const toml::table& table, std::span<const Field> fields,
                std::span<const std::string_view> others, Bytes& bytes) {
    for (const auto& [key, value] : table) {
        const std::string_view name = key.str();
        const Field* field = nullptr;
        for (const Field& candidate : fields) {
            field = candidate.name == name ? &candidate : field;
        }
        if (field == nullptr) {
            if (std::find(others.begin(), others.end(), name) == others.end()) {
                return loader.fail(value, "unknown key " + std::string(name));
            }
            continue;
        }
        std::string text;
        std::string reason;
        if (!value_text(value, text)) {
            return loader.fail(value, std::string(name) + " must be a text, number or true/false");
        }
        if (!set_field(*field, bytes, text, reason)) {
            return loader.fail(value, reason);
        }
    }
    return true;
}

// Keeps what the file itself says of a field that otherwise follows from another record.
void keep(const toml::table& table, const char* name, NB_BYTE said, NB_BYTE& field) {
    if (table.contains(name)) {
        field = said;
    }
}

// What follows from other records, unless the file says otherwise.
void complete(Node& node, const KindRow& row, const toml::table& table, Bytes& bytes) {
    const Bytes said = bytes;
    take_from_parent(node, row, bytes);
    auto* data = bytes.data();
    switch (row.kind) {
    case Kind::ls: {
        auto& ls = *reinterpret_cast<LS_ENTRY*>(data);
        if (!table.contains("activation")) {
            Record probe;
            probe.entry = bytes;
            ls.det.activation_flags = activation_flags(probe);
        }
        if (ls.det.state == NOF_STATE_ACTIVE && !table.contains("learned_cp")) {
            std::memcpy(ls.det.adj_cp_name, ls.def.adj_cp_name, sizeof(NB_FQNAME));
            ls.det.adj_cp_type = ls.def.adj_cp_type;
        }
        if (!table.contains("address_length") && table.contains("address")) {
            ls.def.address_length =
                static_cast<NB_USHORT>(table["address"].value_or(std::string_view()).size() / 2);
        }
        break;
    }
    case Kind::dlur_pu: {
        auto& pu = *reinterpret_cast<PU_ENTRY*>(data);
        if (!table.contains("dlur_state")) {
            pu.dlur_status = pu.state != 0 ? NOF_DLUR_ACTIVE : NOF_DLUR_INACTIVE;
        }
        pu.dlur_active = pu.state != 0;
        break;
    }
    case Kind::lu_0_to_3: {
        auto& detail = reinterpret_cast<LU03_ENTRY*>(data)->det_data;
        keep(table, "lu_active",
             reinterpret_cast<const LU03_ENTRY*>(said.data())->det_data.lu_active,
             detail.lu_active);
        if (detail.app_type != NAP_NO_APPLICATION && !table.contains("in_use")) {
            detail.appl_conn_active = NAP_YES;
        }
        break;
    }
    case Kind::downstream_lu:
        keep(table, "lu_active", reinterpret_cast<const DOWN_LU_ENTRY*>(said.data())->lu_active,
             reinterpret_cast<DOWN_LU_ENTRY*>(data)->lu_active);
        break;
    case Kind::local_lu: {
        auto& def = reinterpret_cast<LU62_ENTRY*>(data)->def;
        def.dependent = def.nau_address != 0;
        break;
    }
    case Kind::tn_client: {
        auto& client = reinterpret_cast<TN3270_ACCESS_ENTRY*>(data)->client;
        client.default_record = client.address[0] == 0;
        break;
    }
    case Kind::redirect: {
        auto& key = reinterpret_cast<TN_REDIRECT_ENTRY*>(data)->key;
        key.default_record = key.client_address[0] == 0;
        break;
    }
    case Kind::rje: {
        auto& def = reinterpret_cast<RJE_WKSTN_ENTRY*>(data)->def;
        def.num_lus = 0;
        for (const NB_NAME8E& lu : def.lu_names) {
            def.num_lus = static_cast<NB_BYTE>(def.num_lus + !is_blank(lu, sizeof lu));
        }
        break;
    }
    case Kind::directory: {
        auto& entry = *reinterpret_cast<DIRECTORY_ENTRY*>(data);
        if (entry.entry_type == 0) {
            entry.entry_type = NOF_DIRECTORY_DEFINED;
        }
        if (entry.resource_type == NAP_END_NODE_CP_RESOURCE && !table.contains("network_node")) {
            std::memcpy(entry.network_node, entry.parent_name, sizeof(NB_FQNAME));
        }
        break;
    }
    case Kind::partner:
    case Kind::mode: {
        auto& known = row.kind == Kind::mode ? reinterpret_cast<MODE_ENTRY*>(data)->cp_known
                                             : reinterpret_cast<PLU_ENTRY*>(data)->cp_known;
        known = table.contains("cp") ? NAP_YES : known;
        break;
    }
    default:
        break;
    }
}

// The parent that a record must have, if its kind must have one.
bool check_parent(Loader& loader, const Node& node, const KindRow& row, const toml::table& table,
                  const Record& record) {
    if (row.kind == Kind::directory || row.parents == 0 || record.parent.empty()) {
        static constexpr Kind orphans[] = {Kind::directory, Kind::pu, Kind::downstream_pu,
                                           Kind::local_lu};
        const bool needed = row.parents != 0 && std::find(std::begin(orphans), std::end(orphans),
                                                          row.kind) == std::end(orphans);
        return !needed || loader.fail(table, std::string(row.name) + " " +
                                                 display_name(row, record) + " names no parent");
    }
    for (const KindRow& other : kind_rows()) {
        if ((row.parents & kind_bit(other.kind)) != 0 &&
            find(node.of(other.kind), record.parent) != nullptr) {
            return true;
        }
    }
    return loader.fail(table, std::string(row.name) + " " + display_name(row, record) +
                                  ": what it belongs to is not defined");
}

// An LU that a pool's entry names is in that pool.
bool load_pool(Loader& loader, Node& node, const toml::table& table, Bytes bytes) {
    const auto& entry = *reinterpret_cast<const LU_POOL_ENTRY*>(bytes.data());
    const std::string pool = raw(entry.pool_name, 8);
    if (is_blank(entry.pool_name, 8)) {
        return loader.fail(table, "pool without a name");
    }
    if (!is_blank(entry.lu_name, 8)) {
        const Record* lu = find_name8(node, Kind::lu_0_to_3, entry.lu_name);
        if (lu == nullptr) {
            return loader.fail(table, "the LU of the pool is not defined");
        }
        Bytes member = lu->entry;
        std::memcpy(reinterpret_cast<LU03_ENTRY*>(member.data())->def_data.pool_name,
                    entry.pool_name, 8);
        store(node, kind_row(Kind::lu_0_to_3), std::move(member));
    }
    const auto members = children(node.of(Kind::pool), pool);
    if (members.empty()) {
        store(node, kind_row(Kind::pool), std::move(bytes));
    } else if (table.contains("description")) {
        for (Record* member : members) {
            std::memcpy(member->as<LU_POOL_ENTRY>().description, entry.description,
                        sizeof entry.description);
        }
    }
    return true;
}

bool load_record(Loader& loader, Node& node, const KindRow& row, const toml::table& table) {
    const std::string_view owner_name[] = {row.owned ? row.owner : ""};
    const std::span<const std::string_view> others =
        row.owned ? std::span<const std::string_view>(owner_name)
                  : std::span<const std::string_view>();
    Bytes bytes(row.entry_size);
    if (!set_fields(loader, table, fields_of(row.kind), others, bytes)) {
        return false;
    }
    std::string owner;
    std::string reason;
    if (row.owned &&
        !owner_key(row, table[row.owner].value_or(std::string_view()), owner, reason)) {
        return loader.fail(table, reason);
    }
    if (row.kind == Kind::pool) {
        return load_pool(loader, node, table, std::move(bytes));
    }
    const bool made_by_ls = row.kind == Kind::pu || row.kind == Kind::downstream_pu;
    if (Record* old = find(node.of(row.kind), make_record(row, bytes, owner).key)) {
        if (!made_by_ls) {
            return loader.fail(table, std::string(row.name) + " " + display_name(row, *old) +
                                          " is defined twice");
        }
        bytes = old->entry;
        set_fields(loader, table, fields_of(row.kind), others, bytes);
    }
    complete(node, row, table, bytes);
    add_default_specific(row, bytes);
    const Record record = make_record(row, bytes, owner);
    const std::string first_key = make_key({{row.key[0]}}, bytes.data());
    if (is_blank(first_key.data(), first_key.size()) && !row.unnamed) {
        return loader.fail(table, std::string(row.name) + " without a name");
    }
    if (!check_parent(loader, node, row, table, record)) {
        return false;
    }
    const Record& stored = store(node, row, std::move(bytes), owner);
    if (row.kind == Kind::ls) {
        update_pu_of_ls(node, stored);
    }
    return true;
}

bool load_session(Loader& loader, Node& node, const toml::table& table) {
    NB_NAME8E lu_name;
    NB_FQNAME partner;
    NB_NAME8E mode;
    NB_FQNAME cp{};
    put_ebcdic(lu_name, sizeof lu_name, table["lu"].value_or(std::string_view()));
    put_ebcdic(partner, sizeof partner, table["partner"].value_or(std::string_view()));
    put_ebcdic(mode, sizeof mode, table["mode"].value_or(std::string_view()));
    if (const auto name = table["cp"].value<std::string_view>()) {
        put_ebcdic(cp, sizeof cp, *name);
    }
    const auto count = table["count"].value_or(std::int64_t{1});
    Record* lu = find_name8(node, Kind::local_lu, lu_name);
    if (lu == nullptr || is_blank(partner, sizeof partner) || count < 1 || count > 0xFFFF) {
        return loader.fail(table, "session needs a defined lu, a partner and a count from 1");
    }
    set_sessions(loader.scratch, node, *lu, partner, mode, cp, static_cast<NB_USHORT>(count));
    if (lu->as<LU62_ENTRY>().def.nau_address != 0) {
        lu->as<LU62_ENTRY>().session_status = 1;
    }
    return true;
}

template <typename Row>
bool load_all(Loader& loader, const toml::table& node, std::string_view key, Row load_row) {
    const toml::node* value = node.get(key);
    if (value == nullptr) {
        return true;
    }
    const toml::array* rows = value->as_array();
    if (rows == nullptr) {
        return loader.fail(*value, std::string(key) + " must be a list of tables");
    }
    for (const toml::node& row : *rows) {
        const toml::table* table = row.as_table();
        if (table == nullptr) {
            return loader.fail(row, std::string(key) + " must be a table");
        }
        if (!load_row(*table)) {
            return false;
        }
    }
    return true;
}

// Fills a packed struct through its field table.
template <typename T>
bool load_struct(Loader& loader, const toml::table& table, std::span<const Field> fields,
                 std::span<const std::string_view> others, T& target) {
    const auto* start = reinterpret_cast<const NB_BYTE*>(&target);
    Bytes bytes(start, start + sizeof(T));
    if (!set_fields(loader, table, fields, others, bytes)) {
        return false;
    }
    std::memcpy(&target, bytes.data(), sizeof(T));
    return true;
}

bool load_settings(Loader& loader, const toml::table& table, Settings& settings) {
    for (const auto& [key, value] : table) {
        const auto names = setting_names();
        const auto name = std::find(names.begin(), names.end(), key.str());
        Bytes bytes;
        if (name == names.end() || !value.is_string() ||
            !from_hex(value.as_string()->get(), bytes)) {
            return loader.fail(value, "setting " + std::string(key.str()) +
                                          " is unknown or not hexadecimal");
        }
        settings[static_cast<std::size_t>(name - names.begin())] = std::move(bytes);
    }
    return true;
}

// The records of every kind that is kept at a place.
bool load_kinds(Loader& loader, const toml::table& table, Node& place, bool of_domain) {
    for (const KindRow& row : kind_rows()) {
        if (row.of_domain == of_domain && !load_all(loader, table, row.name, [&](const auto& t) {
                return load_record(loader, place, row, t);
            })) {
            return false;
        }
    }
    return true;
}

void preset_node(Node& node) {
    node.parameters.size = sizeof node.parameters;
    node.parameters.node_type = NAP_NODE_NETWORK;
    node.parameters.dlur_support = 1;
    node.parameters.pu_conc_support = 1;
    node.parameters.hpr_support = 1;
    node.capabilities = {{1, 1}, {1, 1}, 1, 1, 0, 1, 1, 1, 1};
    node.limits.dlur = 1;
    node.limits.pu_conc = 1;
}

bool load_node(Loader& loader, const toml::table& table) {
    std::vector<std::string_view> others = {
        "name",     "active",  "configured",   "back_level", "capabilities", "limits",
        "settings", "session", "default_mode", "start_time", "stop_time"};
    for (const KindRow& row : kind_rows()) {
        if (!row.of_domain) {
            others.push_back(row.name);
        }
    }
    auto owned = std::make_unique<Node>();
    Node& node = *owned;
    preset_node(node);
    node.name = table["name"].value_or(std::string());
    if (node.name.empty() || node.name.size() >= sizeof(NB_NODE_NAME)) {
        return loader.fail(table, "a node needs a name of at most 127 characters");
    }
    if (node_named(loader.domain, node.name) != nullptr) {
        return loader.fail(table, "node " + node.name + " is defined twice");
    }
    node.active = table["active"].value_or(true);
    node.configured = table["configured"].value_or(true);
    node.back_level = table["back_level"].value_or(false);
    node.active = node.active && node.configured;
    node.start_time = std::chrono::seconds(table["start_time"].value_or(0));
    node.stop_time = std::chrono::seconds(table["stop_time"].value_or(0));
    if (!load_struct(loader, table, node_parameter_fields(), others, node.parameters)) {
        return false;
    }
    if (node.configured && is_blank(node.parameters.cp_name, sizeof(NB_FQNAME))) {
        return loader.fail(table, "node " + node.name + " has no cp_name");
    }
    if (const auto* capabilities = table["capabilities"].as_table();
        capabilities != nullptr &&
        !load_struct(loader, *capabilities, node_capability_fields(), {}, node.capabilities)) {
        return false;
    }
    if (const auto* limits = table["limits"].as_table();
        limits != nullptr && !load_struct(loader, *limits, node_limit_fields(), {}, node.limits)) {
        return false;
    }
    if (const auto* settings = table["settings"].as_table();
        settings != nullptr && !load_settings(loader, *settings, node.settings)) {
        return false;
    }
    if (const auto mode = table["default_mode"].value<std::string_view>()) {
        NODE_DEFAULTS defaults{};
        put_ebcdic(defaults.default_mode_name, 8, *mode);
        const auto* bytes = reinterpret_cast<const NB_BYTE*>(&defaults);
        node.settings[0].assign(bytes, bytes + sizeof defaults);
    }
    if (!load_kinds(loader, table, node, false)) {
        return false;
    }
    if (node.configured) {
        add_standard_resources(node);
    }
    if (!load_all(loader, table, "session",
                  [&](const toml::table& t) { return load_session(loader, node, t); })) {
        return false;
    }
    loader.domain.nodes.push_back(std::move(owned));
    return true;
}

bool load_domain_table(Loader& loader, const toml::table& table) {
    Domain& domain = loader.domain;
    std::vector<std::string_view> known = {
        "client_server", "configuration_file", "local_server", "central_logger",
        "servers",       "read_only_uids",     "settings"};
    for (const KindRow& row : kind_rows()) {
        if (row.of_domain) {
            known.push_back(row.name);
        }
    }
    Bytes none;
    if (!set_fields(loader, table, {}, known, none)) {
        return false;
    }
    domain.client_server = table["client_server"].value_or(false);
    domain.configuration_file = table["configuration_file"].value_or(true);
    domain.local_server = table["local_server"].value_or(std::string());
    domain.central_logger = table["central_logger"].value_or(std::string());
    if (const toml::array* servers = table["servers"].as_array()) {
        for (const toml::node& server : *servers) {
            domain.servers.push_back(server.value_or(std::string()));
        }
    }
    if (const toml::array* uids = table["read_only_uids"].as_array()) {
        for (const toml::node& uid : *uids) {
            if (!uid.is_integer()) {
                return loader.fail(uid, "read_only_uids must be numbers");
            }
            domain.read_only_uids.insert(static_cast<NB_ULONG>(uid.value_or(std::int64_t{0})));
        }
    }
    const auto* settings = table["settings"].as_table();
    if (settings != nullptr && !load_settings(loader, *settings, domain.settings)) {
        return false;
    }
    return load_kinds(loader, table, domain.file, true);
}

} // namespace

bool parse_domain(Domain& domain, std::string_view text, std::string_view name,
                  std::string& error) {
    Loader loader{domain, std::string(name), {}, {}};
    const toml::parse_result result = toml::parse(text, name);
    if (!result) {
        error = loader.name + ":" + std::to_string(result.error().source().begin.line) + ": " +
                std::string(result.error().description());
        return false;
    }
    const toml::table& root = result.table();
    bool good = true;
    for (const auto& [key, value] : root) {
        if (key.str() == "domain" && value.is_table()) {
            good = good && load_domain_table(loader, *value.as_table());
        } else if (key.str() != "node") {
            good = loader.fail(value, "unknown key " + std::string(key.str()));
        }
    }
    good = good && load_all(loader, root, "node",
                            [&](const toml::table& t) { return load_node(loader, t); });
    if (good && !domain.nodes.empty()) {
        const std::string& first = domain.nodes.front()->name;
        domain.local_server = domain.local_server.empty() ? first : domain.local_server;
        domain.central_logger = domain.central_logger.empty() ? first : domain.central_logger;
        if (domain.client_server && domain.servers.empty()) {
            domain.servers.push_back(domain.local_server);
        }
    }
    error = loader.error;
    return good;
}

bool load_domain(Domain& domain, const std::string& path, std::string& error) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    if (!file) {
        error = path + ": " + std::strerror(errno);
        return false;
    }
    return parse_domain(domain, text.str(), path, error);
}

} // namespace simnode
