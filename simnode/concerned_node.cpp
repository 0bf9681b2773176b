// Which node a verb concerns that arrived at the configuration file.
#include "simnode/request.h"

#include "nof/pool.h"
#include "nof/tn3270.h"

#include <algorithm>

namespace simnode {
namespace {

bool has_lu_or_pool(const Node& node, const NB_BYTE* name) {
    return !is_blank(name, 8) && (find(node.of(Kind::lu_0_to_3), raw(name, 8)) != nullptr ||
                                  !children(node.of(Kind::pool), raw(name, 8)).empty());
}

// Whether the node has the LU or PU that the block names beside the resource itself.
bool has_named(const Node& node, const KindRow& row, std::span<const NB_BYTE> block) {
    if (row.kind == Kind::association) {
        return has_lu_or_pool(
            node,
            reinterpret_cast<const DEFINE_TN3270_ASSOCIATION*>(block.data())->display_lu_name);
    }
    if (row.kind == Kind::tn_client) {
        const auto sessions = nested_of_define(row, block);
        for (std::size_t at = 0; at < sessions.size(); at += sizeof(TN3270_SESSION)) {
            const auto& session = *reinterpret_cast<const TN3270_SESSION*>(sessions.data() + at);
            if (has_lu_or_pool(node, session.lu_name)) {
                return true;
            }
        }
        return false;
    }
    if (row.kind == Kind::pool) {
        const auto& verb = *reinterpret_cast<const DEFINE_LU_POOL*>(block.data());
        return verb.num_lus != 0 && has_lu_or_pool(node, verb.lu_names[0]);
    }
    const std::string parent = parent_name(row.parent, entry_of_define(row, block, nullptr).data());
    return !parent.empty() &&
           std::any_of(kind_rows().begin(), kind_rows().end(), [&](const KindRow& other) {
               return (row.parents & kind_bit(other.kind)) != 0 &&
                      find(node.of(other.kind), parent) != nullptr;
           });
}

bool has_record(const Node& node, const KindRow& row, const std::string& key) {
    return row.kind == Kind::pool ? !children(node.of(row.kind), key.substr(0, 8)).empty()
                                  : find(node.of(row.kind), key) != nullptr;
}

} // namespace

Node* concerned_node(Domain& domain, std::span<const NB_BYTE> block) {
    const NB_USHORT opcode = vcb_header(block.data())->opcode;
    const KindRow* defined = kind_of_define(opcode);
    const KindRow* row = defined != nullptr ? defined : kind_of_remove(opcode);
    Node* best = local_node(domain);
    if (row == nullptr) {
        return best;
    }
    const std::string key = defined != nullptr
                                ? make_key(row->key, entry_of_define(*row, block, nullptr).data())
                                : make_key(row->remove_key, block.data());
    const auto score = [&](const Node& node) {
        return has_record(node, *row, key) +
               2 * (defined != nullptr && has_named(node, *row, block));
    };
    int best_score = best != nullptr && !best->gone ? score(*best) : 0;
    for (const auto& node : domain.nodes) {
        if (!node->gone && score(*node) > best_score) {
            best = node.get();
            best_score = score(*node);
        }
    }
    return best;
}

} // namespace simnode
