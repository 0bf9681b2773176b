// Defines and deletes that control commands make as another operator: from an entry's fields to the
// verb block of its kind.
#include "simnode/control_changes.h"

#include "nba/nba.h"
#include "nof/cn.h"
#include "nof/connectivity.h"
#include "nof/pool.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/user.h"
#include "simnode/service.h"
#include "simnode/specific_data.h"

#include <algorithm>
#include <cstring>

namespace simnode {
namespace {

bool is_member(Kind kind) {
    return holder_of(kind) != nullptr || kind == Kind::cn_port;
}

// The record that a member belongs to; null when it does not exist.
const Record* holder_of_member(const Node& node, Kind kind, const std::string& key) {
    return kind == Kind::cn_port ? find(node.of(Kind::cn), key.substr(0, sizeof(NB_FQNAME)))
                                 : find(node.of(holder_of(kind)->kind), key);
}

// What follows from other records.
void complete_fields(const Node& node, const KindRow& row, Bytes& entry) {
    if (row.kind == Kind::port) {
        auto* port = reinterpret_cast<PORT_ENTRY*>(entry.data());
        const Record* dlc = find(node.of(Kind::dlc), raw(port->def.dlc_name, 8));
        port->dlc_type = dlc != nullptr ? dlc->as<DLC_ENTRY>().def.dlc_type : port->dlc_type;
    } else if (row.kind == Kind::ls) {
        auto* ls = reinterpret_cast<LS_ENTRY*>(entry.data());
        const Record* port = find(node.of(Kind::port), raw(ls->def.port_name, 8));
        ls->det.dlc_type = port != nullptr ? port->as<PORT_ENTRY>().dlc_type : ls->det.dlc_type;
    } else if (row.kind == Kind::tn_client) {
        auto& client = reinterpret_cast<TN3270_ACCESS_ENTRY*>(entry.data())->client;
        client.default_record = client.address[0] == 0;
    } else if (row.kind == Kind::redirect) {
        auto& key = reinterpret_cast<TN_REDIRECT_ENTRY*>(entry.data())->key;
        key.default_record = key.client_address[0] == 0;
    }
}

// The define block of the record that a member belongs to, with this one member.
ControlAnswer define_member(Service& service, const Place& place, const KindRow& row,
                            const std::string& owner, const Bytes& entry) {
    const std::string key = row.kind == Kind::cn_port ? make_key(row.key, entry.data()) : owner;
    const Record* holder = holder_of_member(*place.node, row.kind, key);
    if (holder == nullptr) {
        return failed(std::string("what the ") + row.name + " belongs to does not exist");
    }
    if (row.kind != Kind::cn_port) {
        Bytes block = define_of_nested(row, holder->entry, entry);
        if (row.kind == Kind::dslu_template) {
            reinterpret_cast<DEFINE_DSPU_TEMPLATE*>(block.data())->def.modify_template = NAP_YES;
        }
        return answer_of(act(service, place.node, std::move(block)));
    }
    Bytes block = define_of_entry(kind_row(Kind::cn), holder->entry);
    auto& verb = *reinterpret_cast<DEFINE_CN*>(block.data());
    verb.def.num_ports = 1;
    std::memcpy(verb.port_names[0], reinterpret_cast<const CN_PORT_ENTRY*>(entry.data())->port_name,
                8);
    return answer_of(act(service, place.node, std::move(block)));
}

// A template without one of its ranges: its definition with the others.
Bytes template_without(const Node& node, const Record& holder, const Record& range) {
    const KindRow& row = kind_row(Kind::dspu_template);
    Bytes block = define_of_entry(row, holder.entry);
    NB_USHORT count = 0;
    for (const Record* other : children(node.of(Kind::dslu_template), holder.key)) {
        if (other->key != range.key) {
            block.insert(block.end(), other->entry.begin(), other->entry.end());
            ++count;
        }
    }
    auto& definition = reinterpret_cast<DEFINE_DSPU_TEMPLATE*>(block.data())->def;
    definition.num_dslu_templates = count;
    definition.modify_template = NAP_NO;
    return block;
}

// The delete block of the record that a member belongs to, with this one member.
Bytes delete_of_member(const Node& node, const KindRow& row, const Record& member) {
    const Record& holder = *holder_of_member(node, row.kind, member.parent);
    if (row.kind == Kind::dslu_template) {
        return template_without(node, holder, member);
    }
    const bool cn = row.kind == Kind::cn_port;
    Bytes block = delete_of_entry(cn ? kind_row(Kind::cn) : *holder_of(row.kind), holder.entry);
    switch (row.kind) {
    case Kind::cn_port: {
        auto& verb = *reinterpret_cast<DELETE_CN*>(block.data());
        verb.num_ports = 1;
        std::memcpy(verb.port_names[0], member.as<CN_PORT_ENTRY>().port_name, 8);
        break;
    }
    case Kind::user_session: {
        auto& verb = *reinterpret_cast<DELETE_EMULATOR_USER*>(block.data());
        verb.num_sessions = 1;
        std::memcpy(verb.session_names[0], member.as<USER_SESSION>().session_name, 8);
        break;
    }
    case Kind::tn_session: {
        reinterpret_cast<DELETE_TN3270_ACCESS*>(block.data())->num_sessions = 1;
        TN3270_SESSION_NAME name{member.as<TN3270_SESSION>().port, {}};
        const auto* bytes = reinterpret_cast<const NB_BYTE*>(&name);
        block.insert(block.end(), bytes, bytes + sizeof name);
        break;
    }
    default: {
        reinterpret_cast<DELETE_SECURITY_ACCESS_LIST*>(block.data())->num_users = 1;
        const auto* user = reinterpret_cast<const NB_BYTE*>(member.as<ACCESS_LIST_USER>().user_id);
        block.insert(block.end(), user, user + sizeof(ACCESS_LIST_USER::user_id));
        break;
    }
    }
    return block;
}

} // namespace

ControlAnswer define_resource(Service& service, Connection&, const Words& words) {
    const KindRow* row = words.size() >= 3 ? kind_named(words[1]) : nullptr;
    if (row == nullptr || (row->define == 0 && !is_member(row->kind))) {
        return usage("define KIND NAME [FIELD=VALUE]...");
    }
    const Place place = place_of(service, words[2], row);
    if (place.node == nullptr) {
        return failed("there is no node");
    }
    std::string owner;
    std::string reason;
    std::vector<std::pair<std::string, std::string>> values;
    for (std::size_t i = 3; i < words.size(); ++i) {
        const std::size_t equals = std::min(words[i].find('='), words[i].size());
        values.emplace_back(words[i].substr(0, equals),
                            words[i].substr(std::min(equals + 1, words[i].size())));
        if (row->owned && values.back().first == row->owner) {
            if (!owner_key(*row, values.back().second, owner, reason)) {
                return failed(reason);
            }
            values.pop_back();
        }
    }
    const Record* old =
        is_member(row->kind) ? nullptr : record_named(*place.node, *row, place.name);
    Bytes entry = old != nullptr && row->kind != Kind::pool ? old->entry : Bytes(row->entry_size);
    values.emplace(values.begin(), fields_of(row->kind).front().name, place.name);
    for (const auto& [name, value] : values) {
        const Field* field = field_named(*row, name);
        if (field == nullptr) {
            return failed("no such field: " + name);
        }
        if (!set_field(*field, entry, value, reason)) {
            return failed(reason);
        }
    }
    complete_fields(*place.node, *row, entry);
    add_default_specific(*row, entry);
    if (is_member(row->kind)) {
        const auto length = static_cast<NB_USHORT>(entry.size());
        std::memcpy(entry.data(), &length, sizeof length);
        return define_member(service, place, *row, owner, entry);
    }
    return answer_of(act(service, place.node, define_of_entry(*row, entry)));
}

ControlAnswer delete_resource(Service& service, Connection&, const Words& words) {
    const KindRow* row = words.size() == 3 ? kind_named(words[1]) : nullptr;
    if (row == nullptr || (row->remove == 0 && !is_member(row->kind))) {
        return usage("delete KIND NAME");
    }
    const Place place = place_of(service, words[2], row);
    const Record* record =
        place.node != nullptr ? record_named(*place.node, *row, place.name) : nullptr;
    if (record == nullptr) {
        return failed("no such " + words[1] + ": " + words[2]);
    }
    if (is_member(row->kind)) {
        return answer_of(act(service, place.node, delete_of_member(*place.node, *row, *record)));
    }
    Bytes block = delete_of_entry(*row, record->entry);
    if (row->kind == Kind::pool && display_name(*row, *record) == place.name) {
        const auto& pool = record->as<LU_POOL_ENTRY>();
        auto& verb = *reinterpret_cast<DELETE_LU_POOL*>(block.data());
        verb.num_lus = !is_blank(pool.lu_name, sizeof pool.lu_name);
        std::memcpy(verb.lu_names[0], pool.lu_name, sizeof pool.lu_name);
    }
    return answer_of(act(service, place.node, std::move(block)));
}

} // namespace simnode
