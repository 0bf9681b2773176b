#include "simnode/domain_file.h"

#include "simnode/node_fields.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace simnode {
namespace {

bool is_number(const Field& field, std::string_view text) {
    if (field.type == FieldType::flag) {
        return true;
    }
    return (field.type == FieldType::number || field.type == FieldType::choice) &&
           text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Whether a field is worth a line: it is not all zeros or blanks, and means something for this
// entry.
bool worth_writing(const KindRow* row, const Field& field, const Bytes& bytes) {
    if (field.type == FieldType::item) {
        return false; // part of the specific data
    }
    const std::size_t end =
        field.type == FieldType::tail ? bytes.size() : field.offset + std::size_t{field.length};
    if (end > bytes.size() || end == field.offset) {
        return false;
    }
    if (row != nullptr && row->kind == Kind::dlc && field.offset >= row->entry_size &&
        field.type != FieldType::tail) {
        return false; // part of the specific data
    }
    if (row != nullptr && !applies(row->kind, field, bytes)) {
        return false;
    }
    const NB_BYTE* start = bytes.data() + field.offset;
    return std::any_of(start, bytes.data() + end, [](NB_BYTE b) { return b != 0; });
}

// Whether a field that is left out would be filled in from elsewhere; so it is always written.
bool filled_in(const KindRow* row, const Field& field) {
    if (row == nullptr) { // of the node
        return field.type == FieldType::flag || field.type == FieldType::number;
    }
    static constexpr std::string_view names[] = {
        "lu_active", "in_use", "activation", "state", "network_node", "dlur_state", "learned_cp"};
    const bool known = std::find(std::begin(names), std::end(names), field.name) != std::end(names);
    // Only DLUR PUs have a DLUR state of their own.
    return known && (row->kind == Kind::dlur_pu || field.name != std::string_view("dlur_state"));
}

std::string quoted(std::string_view text) {
    return json_text(text);
}

void write_fields(std::string& out, const KindRow* row, std::span<const Field> fields,
                  const Bytes& bytes) {
    for (const Field& field : fields) {
        const bool key = &field == fields.data();
        if (!key && !filled_in(row, field) && !worth_writing(row, field, bytes)) {
            continue;
        }
        const std::string value = field_text(field, bytes);
        out += std::string(field.name) + " = " + (is_number(field, value) ? value : quoted(value)) +
               "\n";
    }
}

template <typename T> Bytes bytes_of(const T& value) {
    const auto* start = reinterpret_cast<const NB_BYTE*>(&value);
    return Bytes(start, start + sizeof(T));
}

void write_settings(std::string& out, const char* heading, const Settings& settings) {
    std::string lines;
    for (std::size_t i = 0; i < SETTING_COUNT; ++i) {
        if (!settings[i].empty()) {
            lines += std::string(setting_names()[i]) + " = " +
                     quoted(to_hex(settings[i].data(), settings[i].size())) + "\n";
        }
    }
    if (!lines.empty()) {
        out += heading + lines;
    }
}

const char* yes_no(bool value) {
    return value ? "true" : "false";
}

void write_kinds(std::string& out, const std::string& table, const Node& place, bool of_domain) {
    for (const KindRow& row : kind_rows()) {
        if (row.of_domain != of_domain) {
            continue;
        }
        for (const Record* record : everything(place.of(row.kind))) {
            out += "[[" + table + "." + std::string(row.name) + "]]\n";
            if (row.owned) {
                out += std::string(row.owner) + " = " + quoted(owner_text(row, *record)) + "\n";
            }
            write_fields(out, &row, fields_of(row.kind), record->entry);
        }
    }
}

void write_node(std::string& out, const Node& node) {
    out += "\n[[node]]\nname = " + quoted(node.name) + "\nactive = " + yes_no(node.active) +
           "\nconfigured = " + yes_no(node.configured) +
           "\nback_level = " + yes_no(node.back_level) + "\n";
    for (const auto& [name, time] :
         {std::pair("start_time", node.start_time), std::pair("stop_time", node.stop_time)}) {
        if (time.count() != 0) {
            out += std::string(name) + " = " + std::to_string(time.count() / 1000) + "\n";
        }
    }
    write_fields(out, nullptr, node_parameter_fields(), bytes_of(node.parameters));
    out += "[node.capabilities]\n";
    write_fields(out, nullptr, node_capability_fields(), bytes_of(node.capabilities));
    out += "[node.limits]\n";
    write_fields(out, nullptr, node_limit_fields(), bytes_of(node.limits));
    write_settings(out, "[node.settings]\n", node.settings);
    write_kinds(out, "node", node, false);
}

} // namespace

std::string domain_text(const Domain& domain) {
    std::string out = "[domain]\nclient_server = " + std::string(yes_no(domain.client_server)) +
                      "\nconfiguration_file = " + yes_no(domain.configuration_file) +
                      "\nlocal_server = " + quoted(domain.local_server) +
                      "\ncentral_logger = " + quoted(domain.central_logger) + "\nservers = [";
    for (const std::string& server : domain.servers) {
        out += quoted(server) + ", ";
    }
    out += "]\nread_only_uids = [";
    for (const NB_ULONG uid : domain.read_only_uids) {
        out += std::to_string(uid) + ", ";
    }
    out += "]\n";
    write_settings(out, "[domain.settings]\n", domain.settings);
    write_kinds(out, "domain", domain.file, true);
    for (const auto& node : domain.nodes) {
        write_node(out, *node);
    }
    return out;
}

bool save_domain(const Domain& domain, const std::string& path) {
    const std::string fresh = path + ".new";
    {
        std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
        file << domain_text(domain);
        file.flush();
        if (!file) {
            return false;
        }
    }
    return std::rename(fresh.c_str(), path.c_str()) == 0;
}

} // namespace simnode
