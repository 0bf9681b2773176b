#include "simnode/member_kinds.h"

#include "nof/cn.h"
#include "nof/extra_data.h"
#include "nof/lu62.h"
#include "nof/pool.h"
#include "nof/pu_lu.h"
#include "nof/routing.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/user.h"

#include <algorithm>
#include <cstring>

namespace simnode {
namespace {

// Where a delete block lists the members that it takes out of a record.
struct MemberList {
    NB_USHORT opcode;
    NB_USHORT count; // offset
    NB_BYTE count_width;
    NB_USHORT first;
    NB_USHORT stride;
    NB_USHORT limit; // names that the block has room for; 0: as many as it announces
    Kind holder;
    Kind member;
    Piece name; // within one element
};

constexpr MemberList member_lists[] = {
    {NAP_DELETE_CN,
     offsetof(DELETE_CN, num_ports),
     2,
     offsetof(DELETE_CN, port_names),
     8,
     NOF_CN_PORTS,
     Kind::cn,
     Kind::cn_port,
     {0, 8}},
    {NAP_DELETE_LU_POOL,
     offsetof(DELETE_LU_POOL, num_lus),
     2,
     offsetof(DELETE_LU_POOL, lu_names),
     8,
     NOF_POOL_LUS,
     Kind::pool,
     Kind::pool,
     {0, 8}},
    {NAP_DELETE_EMULATOR_USER,
     offsetof(DELETE_EMULATOR_USER, num_sessions),
     4,
     offsetof(DELETE_EMULATOR_USER, session_names),
     8,
     10,
     Kind::user,
     Kind::user_session,
     {0, 8}},
    {NAP_DELETE_TN3270_ACCESS,
     offsetof(DELETE_TN3270_ACCESS, num_sessions),
     4,
     offsetof(DELETE_TN3270_ACCESS, sessions),
     sizeof(TN3270_SESSION_NAME),
     0,
     Kind::tn_client,
     Kind::tn_session,
     {0, 2, true}},
    {NAP_DELETE_SECURITY_ACCESS_LIST,
     offsetof(DELETE_SECURITY_ACCESS_LIST, num_users),
     4,
     sizeof(DELETE_SECURITY_ACCESS_LIST),
     sizeof(ACCESS_LIST_USER::user_id),
     0,
     Kind::access_list,
     Kind::access_user,
     {0, 10}},
};

// The keys of the members that a delete block names.
Rc named_members(Request& request, const MemberList& list, const std::string& holder,
                 std::vector<std::string>& keys) {
    const NB_BYTE* block = request.block.data();
    const std::size_t count = read_count(block + list.count, list.count_width);
    if ((list.limit != 0 && count > list.limit) ||
        list.first + count * list.stride > request.block.size()) {
        return RC_BAD_VALUE;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const NB_BYTE* element = block + list.first + i * list.stride;
        keys.push_back(holder + make_key({{list.name}}, element));
    }
    const Collection& members = request.target.node->of(list.member);
    const bool known = std::all_of(keys.begin(), keys.end(), [&](const std::string& key) {
        return find(members, key) != nullptr;
    });
    return known ? Rc{} : RC_UNKNOWN_NAME; // all of them, or nothing
}

void remove_keys(Node& node, Kind kind, const std::vector<std::string>& keys) {
    for (const std::string& key : keys) {
        if (Record* record = find(node.of(kind), key)) { // a name may be there twice
            remove_record(node, kind, *record);
        }
    }
}

std::vector<std::string> keys_of(const std::vector<Record*>& records) {
    std::vector<std::string> keys;
    for (const Record* record : records) {
        keys.push_back(record->key);
    }
    return keys;
}

constexpr std::size_t NAME8 = 8;

std::string pool_key(const std::string& pool, const std::string& lu) {
    return pool + lu;
}

void store_pool_entry(Node& node, const std::string& pool, const std::string& lu,
                      const NB_DESCRIPTION& description) {
    Bytes bytes(sizeof(LU_POOL_ENTRY));
    auto& entry = *reinterpret_cast<LU_POOL_ENTRY*>(bytes.data());
    std::memcpy(entry.pool_name, pool.data(), NAME8);
    std::memcpy(entry.lu_name, lu.data(), NAME8);
    std::memcpy(entry.description, description, sizeof entry.description);
    store(node, kind_row(Kind::pool), std::move(bytes));
}

const std::string NO_LU(NAME8, '\0');

void set_pool_of_lu(Node& node, Record& lu, const std::string& pool) {
    Bytes bytes = lu.entry;
    auto& definition = reinterpret_cast<LU03_ENTRY*>(bytes.data())->def_data;
    std::memset(definition.pool_name, 0, NAME8);
    std::memcpy(definition.pool_name, pool.data(), pool.size());
    store(node, kind_row(Kind::lu_0_to_3), std::move(bytes));
}

} // namespace

// ---- nested entries ----

Rc check_nested(const KindRow& row, std::span<const NB_BYTE> block) {
    const std::span<const NB_BYTE> elements = nested_of_define(row, block);
    for (std::size_t at = 0; at < elements.size(); at += row.nested.element) {
        const NB_BYTE* element = elements.data() + at;
        const Key& key = kind_row(row.nested.kind).key;
        if (is_blank(element + key[0].offset, key[0].length)) {
            return RC_BAD_NAME;
        }
        const auto& range = *reinterpret_cast<const DSLU_TEMPLATE*>(element);
        if (row.nested.kind == Kind::dslu_template && range.first_nau > range.last_nau) {
            return RC_BAD_VALUE;
        }
    }
    return {};
}

void define_nested(Node& node, const KindRow& row, std::span<const NB_BYTE> block,
                   const Record& owner) {
    const std::string name = owner.key;
    const KindRow& element_row = kind_row(row.nested.kind);
    if (row.kind == Kind::dspu_template &&
        owner.as<DSPU_TEMPLATE_ENTRY>().def.modify_template == NAP_NO) {
        remove_keys(node, row.nested.kind, keys_of(children(node.of(row.nested.kind), name)));
    }
    const std::span<const NB_BYTE> elements = nested_of_define(row, block);
    for (std::size_t at = 0; at < elements.size(); at += row.nested.element) {
        const auto element = elements.subspan(at, row.nested.element);
        store(node, element_row, Bytes(element.begin(), element.end()), name);
    }
}

Rc delete_holder(Request& request) {
    const NB_USHORT opcode = vcb_header(request.block.data())->opcode;
    const MemberList& list = *std::find_if(std::begin(member_lists), std::end(member_lists),
                                           [=](const MemberList& l) { return l.opcode == opcode; });
    const KindRow& row = kind_row(list.holder);
    Node& node = *request.target.node;
    Record* holder = find(node.of(list.holder), make_key(row.remove_key, request.block.data()));
    if (holder == nullptr) {
        return RC_UNKNOWN_NAME;
    }
    const std::string name = holder->key;
    std::vector<std::string> keys;
    if (const Rc rc = named_members(request, list, name, keys); !rc.ok()) {
        return rc;
    }
    if (!keys.empty()) {
        remove_keys(node, list.member, keys);
        return {};
    }
    // Without names: some of the members, chosen by the verb's flags, or the whole record.
    std::vector<Record*> chosen;
    if (opcode == NAP_DELETE_EMULATOR_USER) {
        const NB_BYTE types = request.as<DELETE_EMULATOR_USER>().session_types;
        if (types == 0) {
            remove_record(node, list.holder, *holder);
            return {};
        }
        chosen = children(node.of(list.member), name);
        std::erase_if(chosen, [=](const Record* session) {
            return (session->as<USER_SESSION>().session_type & types) == 0;
        });
    } else if (opcode == NAP_DELETE_TN3270_ACCESS &&
               request.as<DELETE_TN3270_ACCESS>().delete_all != 0) {
        chosen = children(node.of(list.member), name);
    } else {
        remove_record(node, list.holder, *holder);
        return {};
    }
    remove_keys(node, list.member, keys_of(chosen));
    return {};
}

// ---- connection networks ----

void count_cn_ports(Node& node, const std::string& cn) {
    if (Record* record = find(node.of(Kind::cn), cn)) {
        record->as<CN_ENTRY>().def.num_ports =
            static_cast<NB_BYTE>(children(node.of(Kind::cn_port), cn).size());
    }
}

void forget_cn_of_port(Node& node, const Record& port) {
    for (Record* link : everything(node.of(Kind::cn_port))) {
        if (raw(link->as<CN_PORT_ENTRY>().port_name, NAME8) == port.key) {
            remove_record(node, Kind::cn_port, *link);
        }
    }
}

Rc define_cn(Request& request) {
    const auto& verb = request.as<DEFINE_CN>();
    Node& node = *request.target.node;
    if (is_blank(verb.cn_name, sizeof verb.cn_name)) {
        return RC_BAD_NAME;
    }
    if (verb.def.num_ports > NOF_CN_PORTS) {
        return RC_BAD_VALUE;
    }
    for (std::size_t i = 0; i < verb.def.num_ports; ++i) {
        if (find(node.of(Kind::port), raw(verb.port_names[i], NAME8)) == nullptr) {
            return RC_UNKNOWN_PORT;
        }
    }
    const KindRow& row = kind_row(Kind::cn);
    store(node, row, entry_of_define(row, request.block, nullptr));
    for (std::size_t i = 0; i < verb.def.num_ports; ++i) {
        forget_cn_of_port(node, *find(node.of(Kind::port), raw(verb.port_names[i], NAME8)));
        Bytes bytes(sizeof(CN_PORT_ENTRY));
        auto& link = *reinterpret_cast<CN_PORT_ENTRY*>(bytes.data());
        std::memcpy(link.cn_name, verb.cn_name, sizeof link.cn_name);
        std::memcpy(link.port_name, verb.port_names[i], NAME8);
        store(node, kind_row(Kind::cn_port), std::move(bytes));
    }
    return {};
}

// ---- pools ----

void move_lu_to_pool(Node& node, const std::string& lu, const std::string& from,
                     const std::string& to) {
    Collection& pools = node.of(Kind::pool);
    NB_DESCRIPTION description{};
    if (from != to) {
        if (Record* member = from.empty() ? nullptr : find(pools, pool_key(from, lu))) {
            std::memcpy(description, member->as<LU_POOL_ENTRY>().description, sizeof description);
            erase(pools, *member);
            if (children(pools, from).empty()) {
                store_pool_entry(node, from, NO_LU, description);
            }
        }
    }
    if (to.empty()) {
        return;
    }
    const auto members = children(pools, to);
    std::memset(description, 0, sizeof description);
    if (!members.empty()) {
        std::memcpy(description, members.front()->as<LU_POOL_ENTRY>().description,
                    sizeof description);
    }
    if (Record* empty = find(pools, pool_key(to, NO_LU))) {
        erase(pools, *empty);
    }
    store_pool_entry(node, to, lu, description);
}

Rc define_pool(Request& request) {
    const auto& verb = request.as<DEFINE_LU_POOL>();
    Node& node = *request.target.node;
    Collection& pools = node.of(Kind::pool);
    const std::string pool = raw(verb.pool_name, NAME8);
    if (is_blank(verb.pool_name, NAME8)) {
        return RC_BAD_NAME;
    }
    if (verb.num_lus > NOF_POOL_LUS) {
        return RC_BAD_VALUE;
    }
    if (find(node.of(Kind::lu_0_to_3), pool) != nullptr) {
        return RC_NAME_IN_USE;
    }
    for (std::size_t i = 0; i < verb.num_lus; ++i) {
        if (find_name8(node, Kind::lu_0_to_3, verb.lu_names[i]) == nullptr) {
            return RC_UNKNOWN_NAME;
        }
    }
    for (Record* member : children(pools, pool)) {
        std::memcpy(member->as<LU_POOL_ENTRY>().description, verb.description,
                    sizeof verb.description);
    }
    if (children(pools, pool).empty()) {
        store_pool_entry(node, pool, NO_LU, verb.description);
    }
    for (std::size_t i = 0; i < verb.num_lus; ++i) {
        set_pool_of_lu(node, *find_name8(node, Kind::lu_0_to_3, verb.lu_names[i]), pool);
    }
    return {};
}

// A pool has an entry per LU, so that it is found by its name alone.
Rc delete_pool(Request& request) {
    const auto& verb = request.as<DELETE_LU_POOL>();
    Node& node = *request.target.node;
    Collection& pools = node.of(Kind::pool);
    const std::string pool = raw(verb.pool_name, NAME8);
    if (children(pools, pool).empty()) {
        return RC_UNKNOWN_NAME;
    }
    std::vector<std::string> keys;
    if (const Rc rc = named_members(request, member_lists[1], pool, keys); !rc.ok()) {
        return rc;
    }
    static_assert(member_lists[1].opcode == NAP_DELETE_LU_POOL);
    const bool whole = keys.empty();
    for (const std::string& key : whole ? keys_of(children(pools, pool)) : keys) {
        if (Record* lu = find(node.of(Kind::lu_0_to_3), key.substr(NAME8))) {
            set_pool_of_lu(node, *lu, {});
        }
    }
    if (whole) {
        if (Record* empty = find(pools, pool_key(pool, NO_LU))) {
            erase(pools, *empty);
        }
    }
    return {};
}

// ---- user IDs and their profiles ----

Rc delete_userid(Request& request) {
    const auto& verb = request.as<DELETE_USERID_PASSWORD>();
    Node& node = *request.target.node;
    Record* user = find(node.of(Kind::userid), raw(verb.user_id, sizeof verb.user_id));
    if (user == nullptr) {
        return RC_UNKNOWN_NAME;
    }
    if (verb.delete_type == NAP_REMOVE_USER) {
        remove_record(node, Kind::userid, *user);
        return {};
    }
    if (verb.delete_type != NAP_REMOVE_PROFILES || verb.num_profiles > NOF_USER_PROFILES) {
        return RC_BAD_VALUE;
    }
    auto& definition = user->as<USERID_PASSWORD_ENTRY>().def;
    NB_USHORT kept = 0;
    for (NB_USHORT i = 0; i < definition.num_profiles; ++i) {
        const bool listed = std::any_of(
            verb.profiles, verb.profiles + verb.num_profiles, [&](const NB_PROFILE& profile) {
                return std::memcmp(profile, definition.profiles[i], sizeof profile) == 0;
            });
        if (!listed) {
            std::memmove(definition.profiles[kept++], definition.profiles[i], sizeof(NB_PROFILE));
        }
    }
    if (kept == definition.num_profiles) {
        return RC_UNKNOWN_NAME;
    }
    std::memset(definition.profiles + kept, 0,
                sizeof(NB_PROFILE) * static_cast<std::size_t>(NOF_USER_PROFILES - kept));
    definition.num_profiles = kept;
    return {};
}

Rc delete_extra_data(Request& request) {
    return request.as<DELETE_EXTRA_DATA>().resource_kind == NOF_EXTRA_DATA_LU_0_TO_3
               ? delete_record(request)
               : RC_BAD_VALUE;
}

// ---- adjacent nodes: the directory holds the control point and its LUs ----

namespace {

// A name with a period is fully qualified, else in the network of the control point.
void qualify(const ADJACENT_LU& lu, const NB_FQNAME& cp, NB_FQNAME& name) {
    const std::string text = ebcdic_text(lu.lu_name, sizeof lu.lu_name);
    const std::string cp_text = ebcdic_text(cp, sizeof cp);
    const bool qualified = text.find('.') != std::string::npos;
    const std::string network = cp_text.substr(0, cp_text.find('.') + 1);
    put_ebcdic(name, sizeof name, qualified ? text : network + text.substr(0, NAME8));
}

std::string directory_key(const NB_FQNAME& name, NB_USHORT type) {
    return raw(name, sizeof name) +
           std::string{static_cast<char>(type >> 8), static_cast<char>(type)};
}

NB_USHORT type_of(const ADJACENT_LU& lu) {
    return lu.wildcard != 0 ? NAP_WILDCARD_LU_RESOURCE : NAP_LU_RESOURCE;
}

std::span<const ADJACENT_LU> adjacent_lus(Request& request, std::size_t fixed, NB_USHORT count) {
    return {reinterpret_cast<const ADJACENT_LU*>(request.block.data() + fixed), count};
}

void store_located(Node& node, const NB_FQNAME& name, NB_USHORT type, const char* description,
                   const NB_FQNAME* parent) {
    Bytes bytes(sizeof(DIRECTORY_ENTRY));
    auto& entry = *reinterpret_cast<DIRECTORY_ENTRY*>(bytes.data());
    std::memcpy(entry.resource_name, name, sizeof name);
    entry.resource_type = type;
    entry.entry_type = NOF_DIRECTORY_DEFINED;
    put_text(entry.description, sizeof entry.description, description);
    if (parent != nullptr) {
        std::memcpy(entry.parent_name, *parent, sizeof *parent);
        entry.parent_type = NAP_END_NODE_CP_RESOURCE;
    }
    store(node, kind_row(Kind::directory), std::move(bytes));
}

} // namespace

Rc define_adjacent_node(Request& request) {
    const auto& verb = request.as<DEFINE_ADJACENT_NODE>();
    Node& node = *request.target.node;
    if (ebcdic_text(verb.cp_name, sizeof verb.cp_name).find('.') == std::string::npos) {
        return RC_BAD_NAME;
    }
    const auto lus = adjacent_lus(request, sizeof verb, verb.num_lus);
    for (const ADJACENT_LU& lu : lus) {
        if (lu.wildcard == 0 && is_blank(lu.lu_name, sizeof lu.lu_name)) {
            return RC_BAD_NAME;
        }
    }
    store_located(node, verb.cp_name, NAP_END_NODE_CP_RESOURCE,
                  local_text(verb.description, sizeof verb.description).c_str(), nullptr);
    for (const ADJACENT_LU& lu : lus) {
        NB_FQNAME name;
        qualify(lu, verb.cp_name, name);
        store_located(node, name, type_of(lu), "", &verb.cp_name);
    }
    return {};
}

Rc delete_adjacent_node(Request& request) {
    const auto& verb = request.as<DELETE_ADJACENT_NODE>();
    Node& node = *request.target.node;
    Collection& directory = node.of(Kind::directory);
    Record* cp = find(directory, directory_key(verb.cp_name, NAP_END_NODE_CP_RESOURCE));
    if (cp == nullptr) {
        return RC_UNKNOWN_NAME;
    }
    if (verb.num_lus == 0) {
        remove_record(node, Kind::directory, *cp);
        return {};
    }
    std::vector<std::string> keys;
    for (const ADJACENT_LU& lu : adjacent_lus(request, sizeof verb, verb.num_lus)) {
        NB_FQNAME name;
        qualify(lu, verb.cp_name, name);
        keys.push_back(directory_key(name, type_of(lu)));
        if (find(directory, keys.back()) == nullptr) {
            return RC_UNKNOWN_NAME;
        }
    }
    remove_keys(node, Kind::directory, keys);
    return {};
}

} // namespace simnode
