#include "simnode/flood.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "simnode/indications.h"

#include <algorithm>
#include <random>

namespace simnode {
namespace {

constexpr unsigned long most_at_once = 5000; // so that other operators are served between

constexpr NB_USHORT sessions_of_a_mode = 8;

// Changes a record and tells of it.
using Change = void (*)(World&, Node&, Record&);

void change_lu(World& world, Node& node, Record& lu) {
    auto& active = lu.as<LU03_ENTRY>().det_data.lu_active;
    active = active == 0;
    indicate_lu_0_to_3(world, node, lu);
}

void change_mode(World& world, Node& node, Record& mode) {
    auto& count = mode.as<MODE_ENTRY>().act_sess_count;
    count = static_cast<NB_USHORT>(count % sessions_of_a_mode + 1);
    indicate_mode(world, node, mode, false);
}

void change_pu(World& world, Node& node, Record& pu) {
    auto& state = pu.as<PU_ENTRY>().state;
    state = state == 0;
    indicate_pu(world, node, pu);
}

void change_ls(World& world, Node& node, Record& ls) {
    auto& state = ls.as<LS_ENTRY>().det.state;
    const bool failed = state == NOF_STATE_ACTIVE;
    state = failed ? NOF_STATE_FAILED : NOF_STATE_ACTIVE;
    indicate_ls(world, node, ls, failed ? NOF_LS_FAILED_ENABLED : NOF_LS_ACTIVATED, false);
}

struct Row {
    Kind kind;
    unsigned weight; // of a hundred
    Change change;
};
constexpr Row rows[] = {
    {Kind::lu_0_to_3, 60, change_lu},
    {Kind::mode, 20, change_mode},
    {Kind::pu, 10, change_pu},
    {Kind::ls, 10, change_ls},
};

} // namespace

Flood make_flood(Node& node, unsigned long per_second, unsigned long seconds) {
    Flood made;
    made.node = node.name;
    made.per_second = per_second;
    made.total = per_second * seconds;
    made.start = std::chrono::steady_clock::now();
    for (const Row& row : rows) {
        std::vector<std::string>& keys = made.keys.emplace_back();
        for (const Record* record : everything(node.of(row.kind))) {
            keys.push_back(record->key);
        }
    }
    return made;
}

void flood(World& world, Flood& flood, std::chrono::steady_clock::time_point now) {
    Node* node = node_named(world.domain, flood.node);
    if (node == nullptr) {
        flood.total = flood.sent;
        return;
    }
    const std::chrono::duration<double> past = now - flood.start;
    const auto due =
        static_cast<unsigned long>(past.count() * static_cast<double>(flood.per_second));
    const unsigned long end = std::min({due, flood.total, flood.sent + most_at_once});
    std::minstd_rand dice(flood.seed);
    for (; flood.sent < end; ++flood.sent) {
        std::size_t kind = 0;
        for (unsigned long number = dice() % 100; number >= rows[kind].weight; ++kind) {
            number -= rows[kind].weight;
        }
        // A kind without records leaves its share to the LUs.
        const auto& keys = flood.keys[kind].empty() ? flood.keys[0] : flood.keys[kind];
        const Row& row = flood.keys[kind].empty() ? rows[0] : rows[kind];
        Record* record =
            keys.empty() ? nullptr : find(node->of(row.kind), keys[dice() % keys.size()]);
        if (record != nullptr) {
            row.change(world, *node, *record);
        }
    }
    flood.seed = static_cast<unsigned>(dice());
}

} // namespace simnode
