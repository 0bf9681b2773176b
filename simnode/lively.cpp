#include "simnode/lively.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "simnode/indications.h"
#include "simnode/manage.h"

#include <random>

namespace simnode {
namespace {

using Dice = std::minstd_rand;

Record* any_of(Dice& dice, const std::vector<Record*>& records) {
    return records.empty() ? nullptr : records[dice() % records.size()];
}

// A host session of an LU in use starts or ends.
void change_lu_session(World& world, Node& node, Dice& dice) {
    Record* lu = any_of(dice, everything(node.of(Kind::lu_0_to_3)));
    if (lu == nullptr || lu->as<LU03_ENTRY>().det_data.lu_active == 0) {
        return;
    }
    auto& detail = lu->as<LU03_ENTRY>().det_data;
    if (detail.appl_conn_active != 0) {
        detail.plu_session_active = detail.plu_session_active == 0;
        indicate_lu_0_to_3(world, node, *lu);
    }
}

// One more or one less session between two LUs that have some already.
void change_session_count(World& world, Node& node, Dice& dice) {
    const Record* mode = any_of(dice, everything(node.of(Kind::mode)));
    if (mode == nullptr) {
        return;
    }
    const MODE_ENTRY entry = mode->as<MODE_ENTRY>();
    const Record* lu = find(node.of(Kind::local_lu), mode->parent);
    const int count = entry.act_sess_count + (dice() % 2 == 0 ? 1 : -1);
    if (lu != nullptr && count >= 1 && count <= entry.max_session_limit) {
        set_sessions(world, node, *lu, entry.plu_name, entry.mode_name, entry.cp_name,
                     static_cast<NB_USHORT>(count));
    }
}

// A link station that is up fails; one that has failed comes back.
void change_link(World& world, Node& node, Dice& dice) {
    Record* ls = any_of(dice, everything(node.of(Kind::ls)));
    if (ls == nullptr || ls->as<LS_ENTRY>().det.implicit != 0) {
        return;
    }
    const Record* port = find(node.of(Kind::port), ls->parent);
    if (port == nullptr || port->as<PORT_ENTRY>().state != NOF_STATE_ACTIVE) {
        return;
    }
    if (ls->as<LS_ENTRY>().det.state == NOF_STATE_FAILED) {
        activate_ls(world, node, *ls);
    } else if (ls->as<LS_ENTRY>().det.state == NOF_STATE_ACTIVE && dice() % 4 == 0) {
        deactivate_ls(world, node, *ls, true, false);
    }
}

} // namespace

void live(World& world, unsigned& seed) {
    Dice dice(seed);
    for (const auto& node : world.domain.nodes) {
        if (!node->active || node->gone) {
            continue;
        }
        change_lu_session(world, *node, dice);
        change_session_count(world, *node, dice);
        if (dice() % 5 == 0) {
            change_link(world, *node, dice);
        }
    }
    seed = static_cast<unsigned>(dice());
}

} // namespace simnode
