// The list queries, and the queries of the node and the domain that have a block of their own.
#include "simnode/request.h"

#include "nof/extra_data.h"
#include "nof/lu62.h"
#include "nof/trace.h"
#include "simnode/definition_checks.h"

#include <algorithm>
#include <cstring>

namespace simnode {
namespace {

bool list_start(const LIST_QUERY& list, Start& start) {
    switch (list.list_options & (NAP_FIRST_IN_LIST | NAP_LIST_FROM_NEXT | NAP_LIST_INCLUSIVE)) {
    case NAP_FIRST_IN_LIST:
        start = Start::first;
        return true;
    case NAP_LIST_FROM_NEXT:
        start = Start::after;
        return true;
    case NAP_LIST_INCLUSIVE:
        start = Start::at;
        return true;
    default:
        return false;
    }
}

// Fills the buffer with whole entries from a range: at most the count asked for (0: any), as many
// as fit.
template <typename Next> Rc fill_page(Request& request, std::size_t remaining, Next next) {
    auto& list = request.as<LIST_QUERY>();
    const std::size_t asked = list.num_entries == 0 ? 0xFFFF : list.num_entries;
    const std::size_t capacity = std::min(request.capacity, list.buffer_size);
    std::size_t count = 0;
    while (count < std::min(asked, remaining)) {
        const std::span<const NB_BYTE> entry = next();
        if (request.buffer.size() + entry.size() > capacity) {
            break;
        }
        request.buffer.insert(request.buffer.end(), entry.begin(), entry.end());
        ++count;
    }
    if (count == 0 && remaining != 0) {
        return RC_BUFFER_TOO_SMALL;
    }
    list.num_entries = static_cast<NB_USHORT>(count);
    list.total_entries = static_cast<NB_USHORT>(std::min<std::size_t>(remaining, 0xFFFF));
    list.more = 0;
    return {};
}

// Sessions of a dependent LU that is not in session, and of a node that does not run, cannot be
// listed.
bool nothing_to_list(const Node& node, Kind kind, const std::string* parent) {
    if (kind != Kind::partner && kind != Kind::mode) {
        return false;
    }
    const Record* lu = parent != nullptr ? find(node.of(Kind::local_lu), *parent) : nullptr;
    return !node.active || (lu != nullptr && lu->as<LU62_ENTRY>().def.nau_address != 0 &&
                            lu->as<LU62_ENTRY>().session_status == 0);
}

} // namespace

namespace {

// Only extra data of LUs 0 to 3 is kept.
bool other_extra_data(const Request& request, Kind kind) {
    return kind == Kind::extra_data &&
           reinterpret_cast<const QUERY_EXTRA_DATA*>(request.block.data())->resource_kind !=
               NOF_EXTRA_DATA_LU_0_TO_3;
}

// Entries with their nested ones: as many as fit. An entry that would not fit is cut between two
// nested ones, where its kind allows it; the next page goes on behind the last one received.
Rc query_with_nested(Request& request, const KindRow& row, Start start) {
    auto& list = request.as<LIST_QUERY>();
    const Nested& nested = row.nested;
    Node& node = *request.target.node;
    const Piece& last_piece = nested.query_key[0];
    const NB_BYTE* last = request.block.data() + last_piece.offset;
    const bool goes_on = start == Start::after && !is_blank(last, last_piece.length);
    const std::string key = make_key(row.query_key, request.block.data());
    Range owners = start_list(node.of(row.kind), nullptr, goes_on ? Start::at : start,
                              start == Start::first ? std::string() : key);
    if (start == Start::at && !owners.found) {
        return RC_UNKNOWN_NAME;
    }
    const auto members_of = [&](const Record& owner, bool first) {
        const bool behind = goes_on && first && owners.found;
        return start_list(node.of(nested.kind), &owner.key, behind ? Start::after : Start::first,
                          behind ? owner.key + make_key(nested.query_key, request.block.data())
                                 : std::string());
    };
    bool first = true;
    if (goes_on && owners.found && members_of(*owners.next->second, true).remaining == 0) {
        ++owners.next;
        --owners.remaining;
        first = false;
    }
    const std::size_t asked = list.num_entries == 0 ? 0xFFFF : list.num_entries;
    const std::size_t capacity =
        std::min<std::size_t>({request.capacity, list.buffer_size, 0xFFFF});
    std::size_t count = 0;
    bool more = false;
    for (; count < std::min(asked, owners.remaining) && !more; ++owners.next, first = false) {
        const Record& owner = *owners.next->second;
        Range members = members_of(owner, first);
        const std::size_t fixed = owner.entry.size();
        const std::size_t room = capacity - request.buffer.size();
        const std::size_t fitting = room < fixed ? 0 : (room - fixed) / nested.element;
        const std::size_t taken = std::min(members.remaining, fitting);
        more = taken < members.remaining;
        if (room < fixed || (more && (!nested.continued || taken == 0))) {
            more = false;
            break;
        }
        const std::size_t at = request.buffer.size();
        request.buffer.insert(request.buffer.end(), owner.entry.begin(), owner.entry.end());
        for (std::size_t i = 0; i < taken; ++i, ++members.next) {
            const Bytes& element = members.next->second->entry;
            request.buffer.insert(request.buffer.end(), element.begin(), element.end());
        }
        NB_BYTE* entry = request.buffer.data() + at;
        write_count(entry, sizeof(NB_USHORT), request.buffer.size() - at);
        write_count(entry + nested.entry_count, nested.count_width, taken);
        ++count;
    }
    if (count == 0 && owners.remaining != 0) {
        return RC_BUFFER_TOO_SMALL;
    }
    list.num_entries = static_cast<NB_USHORT>(count);
    list.total_entries = static_cast<NB_USHORT>(std::min<std::size_t>(owners.remaining, 0xFFFF));
    list.more = more;
    return {};
}

} // namespace

Rc query_list(Request& request) {
    const auto& list = request.as<LIST_QUERY>();
    const KindRow& row = *kind_of_query(list.header.opcode);
    Node& node = *request.target.node;
    Start start = Start::first;
    if (!list_start(list, start)) {
        return RC_BAD_LIST_OPTION;
    }
    if (row.nested.element != 0) {
        return query_with_nested(request, row, start);
    }
    if (other_extra_data(request, row.kind)) {
        return fill_page(request, 0, [] { return std::span<const NB_BYTE>(); });
    }
    // The passwords of the control point's LU are asked for without its name.
    const Bytes block = row.kind == Kind::lu_lu_password
                            ? with_lu_name(node, row.kind, request.block, sizeof(LIST_QUERY))
                            : Bytes();
    const NB_BYTE* keys = block.empty() ? request.block.data() : block.data();
    const std::string parent = parent_name(row.query_parent, keys);
    const std::string* below = parent.empty() ? nullptr : &parent;
    if (row.owned && (below == nullptr || find(node.of(Kind::local_lu), parent) == nullptr)) {
        return RC_UNKNOWN_PARENT;
    }
    if (nothing_to_list(node, row.kind, below)) {
        return RC_SESSION_NONE;
    }
    const std::string key = start == Start::first ? std::string() : make_key(row.query_key, keys);
    Range range = start_list(node.of(row.kind), below, start, key);
    if (start == Start::at && !range.found) {
        return RC_UNKNOWN_NAME;
    }
    return fill_page(request, range.remaining,
                     [&]() -> std::span<const NB_BYTE> { return (range.next++)->second->entry; });
}

namespace {

Rc list_names(Request& request, std::vector<std::string> names) {
    auto& query = request.as<QUERY_NODE_ALL>();
    Start start = Start::first;
    if (!list_start(query.list, start)) {
        return RC_BAD_LIST_OPTION;
    }
    std::sort(names.begin(), names.end());
    const std::string key = local_text(query.node_name, sizeof query.node_name);
    auto next = names.begin();
    if (start == Start::at) {
        next = std::find(names.begin(), names.end(), key);
        if (next == names.end()) {
            return RC_UNKNOWN_NAME;
        }
    } else if (start == Start::after) {
        next = std::upper_bound(names.begin(), names.end(), key);
    }
    NODE_ALL_ENTRY entry{};
    return fill_page(request, static_cast<std::size_t>(names.end() - next), [&] {
        entry.length = sizeof entry;
        put_text(entry.node_name, sizeof entry.node_name, *next++);
        return std::span<const NB_BYTE>(reinterpret_cast<const NB_BYTE*>(&entry), sizeof entry);
    });
}

} // namespace

Rc query_node_list(Request& request) {
    std::vector<std::string> names;
    for (const auto& node : request.world.domain.nodes) {
        if (!node->gone) {
            names.push_back(node->name);
        }
    }
    return list_names(request, std::move(names));
}

Rc query_server_list(Request& request) {
    if (request.target.kind != TargetKind::network_file) {
        return RC_TARGET_GONE;
    }
    return list_names(request, request.world.domain.servers);
}

Rc query_node(Request& request) {
    const Node& node = *request.target.node;
    if (!node.configured) {
        return {NAP_STATE_CHECK, NAP_NODE_NOT_CONFIGURED};
    }
    auto& reply = request.as<QUERY_NODE>();
    reply.parameters = node.parameters;
    reply.parameters.size = sizeof reply.parameters;
    reply.active = node.active;
    reply.capabilities = node.capabilities;
    return {};
}

Rc query_node_limits(Request& request) {
    request.as<QUERY_NODE_LIMITS>().limits = request.target.node->limits;
    return {};
}

Rc query_central_logger(Request& request) {
    auto& reply = request.as<QUERY_CENTRAL_LOGGER>();
    put_text(reply.node_name, sizeof reply.node_name, request.world.domain.central_logger);
    return {};
}

} // namespace simnode
