#include "simnode/lively.h"

#include "nof/connectivity.h"
#include "nof/ipbridge.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "nof/rtp.h"
#include "simnode/indications.h"
#include "simnode/manage.h"

#include <cstring>
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

// A link station that is up fails; one that has failed, or is still starting, comes up.
void change_link(World& world, Node& node, Dice& dice) {
    Record* ls = any_of(dice, everything(node.of(Kind::ls)));
    if (ls == nullptr || ls->as<LS_ENTRY>().det.implicit != 0) {
        return;
    }
    const Record* port = find(node.of(Kind::port), ls->parent);
    if (port == nullptr || port->as<PORT_ENTRY>().state != NOF_STATE_ACTIVE) {
        return;
    }
    const NB_BYTE state = ls->as<LS_ENTRY>().det.state;
    if (state == NOF_STATE_FAILED || state == NOF_STATE_START_PENDING) {
        activate_ls(world, node, *ls);
    } else if (state == NOF_STATE_ACTIVE && dice() % 4 == 0) {
        deactivate_ls(world, node, *ls, true, false);
    }
}

// An emulator user takes an idle LU, or one that a user has is let go.
void change_lu_use(World& world, Node& node, Dice& dice) {
    Record* lu = any_of(dice, everything(node.of(Kind::lu_0_to_3)));
    const Record* user = any_of(dice, everything(world.domain.file.of(Kind::user)));
    if (lu == nullptr || lu->as<LU03_ENTRY>().det_data.lu_active == 0) {
        return;
    }
    auto& detail = lu->as<LU03_ENTRY>().det_data;
    if (detail.app_type == NAP_FMI_APPLICATION) {
        release_lu(world, node, *lu);
    } else if (detail.app_type == NAP_NO_APPLICATION && user != nullptr) {
        detail.app_type = NAP_FMI_APPLICATION;
        detail.appl_conn_active = NAP_YES;
        detail.plu_session_active = NAP_YES;
        detail.application = {};
        std::memcpy(detail.application.user.user_name, user->key.data(),
                    sizeof detail.application.user.user_name);
        detail.application.user.session_kind = NOF_DISPLAY_SESSION;
        put_text(detail.application.user.node_name, sizeof detail.application.user.node_name,
                 node.name);
        indicate_lu_0_to_3(world, node, *lu);
    }
}

// RTP connections carry data; a session over IP goes through its states.
void carry_data(World& world, Node& node, Dice& dice) {
    for (Record* connection : everything(node.of(Kind::rtp))) {
        auto& entry = connection->as<RTP_CONNECTION_ENTRY>();
        entry.bytes_sent += static_cast<NB_ULONG>(dice() % 4000);
        entry.bytes_received += static_cast<NB_ULONG>(dice() % 9000);
    }
    if (Record* session = any_of(dice, everything(node.of(Kind::appcip_session)))) {
        auto& state = session->as<IPBRIDGE_APPCIP_ENTRY>().state;
        state = static_cast<NB_BYTE>(state % (NOF_IPBRIDGE_ENDED - 1) + 1);
        indicate_appcip_session(world, node, *session, false);
    }
}

} // namespace

std::map<NB_USHORT, std::chrono::milliseconds> lively_durations() {
    using std::chrono::milliseconds;
    return {{NAP_INIT_NODE, milliseconds(3000)},
            {NAP_STOP_NODE, milliseconds(2000)},
            {NAP_START_PORT, milliseconds(1000)},
            {NAP_START_LS, milliseconds(2000)},
            {NAP_START_INTERNAL_PU, milliseconds(1500)}};
}

void live(World& world, unsigned& seed) {
    Dice dice(seed);
    for (const auto& node : world.domain.nodes) {
        if (!node->active || node->gone) {
            continue;
        }
        change_lu_session(world, *node, dice);
        change_lu_use(world, *node, dice);
        change_session_count(world, *node, dice);
        carry_data(world, *node, dice);
        if (dice() % 5 == 0) {
            change_link(world, *node, dice);
        }
    }
    seed = static_cast<unsigned>(dice());
}

} // namespace simnode
