#include "simnode/indications.h"

#include "nof/connectivity.h"
#include "nof/ipbridge.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"

#include <algorithm>
#include <cstring>

namespace simnode {
namespace {

template <typename T> struct Draft {
    Bytes bytes = Bytes(sizeof(T));
    T& block = *reinterpret_cast<T*>(bytes.data());
};

// Completes the header and queues the block. Byte 12 of every resource indication says that some
// were lost.
void queue(World& world, Node* node, NB_USHORT opcode, Bytes bytes, bool resource = true) {
    VCB_HEADER* header = vcb_header(bytes.data());
    header->opcode = opcode;
    header->primary_rc = NAP_INDICATION;
    if (resource && world.resync.erase(opcode) != 0) {
        bytes[sizeof(VCB_HEADER)] = 1;
    }
    world.events.push_back({node, opcode, std::move(bytes)});
}

template <typename To, typename From> void copy(To& to, const From& from) {
    static_assert(sizeof(To) == sizeof(From));
    std::memcpy(&to, &from, sizeof(To));
}

// The parent of an owned record is the local LU's name.
void copy_owner(NB_NAME8E& to, const Record& record) {
    std::memcpy(to, record.parent.data(), std::min(sizeof to, record.parent.size()));
}

} // namespace

void indicate_dlc(World& world, Node& node, const Record& dlc) {
    Draft<DLC_INDICATION> draft;
    copy(draft.block.dlc_name, dlc.as<DLC_ENTRY>().dlc_name);
    draft.block.change = dlc.as<DLC_ENTRY>().state != NOF_STATE_ACTIVE;
    queue(world, &node, NAP_DLC_INDICATION, std::move(draft.bytes));
}

void indicate_port(World& world, Node& node, const Record& port) {
    Draft<PORT_INDICATION> draft;
    copy(draft.block.port_name, port.as<PORT_ENTRY>().port_name);
    draft.block.change = port.as<PORT_ENTRY>().state != NOF_STATE_ACTIVE;
    queue(world, &node, NAP_PORT_INDICATION, std::move(draft.bytes));
}

void indicate_ls(World& world, Node& node, const Record& ls, NB_BYTE new_state, bool gone) {
    const auto& entry = ls.as<LS_ENTRY>();
    Draft<LS_INDICATION> draft;
    draft.block.change = gone;
    copy(draft.block.ls_name, entry.ls_name);
    copy(draft.block.adj_cp_name, entry.det.adj_cp_name);
    draft.block.adj_cp_type = entry.det.adj_cp_type;
    draft.block.active_sessions = entry.det.active_sessions;
    draft.block.new_state = new_state;
    draft.block.parameter164 = entry.det.parameter45;
    queue(world, &node, NAP_LS_INDICATION, std::move(draft.bytes));
}

void indicate_pu(World& world, Node& node, const Record& pu) {
    const auto& entry = pu.as<PU_ENTRY>();
    Draft<PU_INDICATION> draft;
    copy(draft.block.pu_name, entry.pu_name);
    draft.block.state = entry.state;
    draft.block.host_attachment = entry.host_attachment;
    queue(world, &node, NAP_PU_INDICATION, std::move(draft.bytes));
}

void indicate_dlur_pu(World& world, Node& node, const Record& pu) {
    const auto& entry = pu.as<PU_ENTRY>();
    Draft<DLUR_PU_INDICATION> draft;
    copy(draft.block.pu_name, entry.pu_name);
    draft.block.dlur_parameter1 = entry.dlur_parameter1;
    draft.block.dlur_parameter2 = entry.dlur_parameter2;
    draft.block.dlur_active = entry.dlur_active;
    copy(draft.block.dlur_pcid, entry.dlur_pcid);
    copy(draft.block.dlur_active_dlus, entry.dlur_active_dlus);
    draft.block.dlur_parameter3 = entry.dlur_parameter3;
    draft.block.dlur_status = entry.dlur_status;
    queue(world, &node, NAP_DLUR_PU_INDICATION, std::move(draft.bytes));
}

void indicate_downstream_pu(World& world, Node& node, const Record& pu) {
    const auto& entry = pu.as<PU_ENTRY>();
    Draft<DOWNSTREAM_PU_INDICATION> draft;
    copy(draft.block.pu_name, entry.pu_name);
    copy(draft.block.ls_name, entry.ls_name);
    draft.block.state = entry.state;
    draft.block.type = entry.host_attachment;
    queue(world, &node, NAP_DOWNSTREAM_PU_INDICATION, std::move(draft.bytes));
}

void indicate_lu_0_to_3(World& world, Node& node, const Record& lu) {
    const auto& entry = lu.as<LU03_ENTRY>();
    Draft<LU_0_TO_3_INDICATION> draft;
    copy(draft.block.pu_name, entry.def_data.pu_name);
    copy(draft.block.lu_name, entry.lu_name);
    draft.block.lu_active = entry.det_data.lu_active;
    draft.block.appl_conn_active = entry.det_data.appl_conn_active;
    draft.block.plu_session_active = entry.det_data.plu_session_active;
    queue(world, &node, NAP_LU_0_TO_3_INDICATION, std::move(draft.bytes));
}

void indicate_downstream_lu(World& world, Node& node, const Record& lu) {
    const auto& entry = lu.as<DOWN_LU_ENTRY>();
    Draft<DOWNSTREAM_LU_INDICATION> draft;
    copy(draft.block.dspu_name, entry.def.dspu_name);
    copy(draft.block.dslu_name, entry.dslu_name);
    draft.block.nau_address = entry.def.nau_address;
    draft.block.lu_active = entry.lu_active;
    draft.block.plu_session_active = entry.plu_session_active;
    queue(world, &node, NAP_DOWNSTREAM_LU_INDICATION, std::move(draft.bytes));
}

void indicate_local_lu(World& world, Node& node, const Record& lu) {
    static constexpr NB_BYTE session_started = 2;
    static constexpr NB_BYTE session_ended = 3;
    const auto& entry = lu.as<LU62_ENTRY>();
    if (entry.def.nau_address == 0) {
        return;
    }
    Draft<LOCAL_LU_INDICATION> draft;
    draft.block.change = entry.session_status != 0 ? session_started : session_ended;
    copy(draft.block.lu_name, entry.lu_name);
    draft.block.nau_address = entry.def.nau_address;
    copy(draft.block.pu_name, entry.def.pu_name);
    draft.block.session_status = entry.session_status;
    queue(world, &node, NAP_LOCAL_LU_INDICATION, std::move(draft.bytes));
}

void indicate_partner(World& world, Node& node, const Record& partner, bool gone) {
    const auto& entry = partner.as<PLU_ENTRY>();
    Draft<PLU_INDICATION> draft;
    draft.block.change = gone;
    copy_owner(draft.block.lu_name, partner);
    copy(draft.block.plu_name, entry.plu_name);
    copy(draft.block.cp_name, entry.cp_name);
    draft.block.cp_known = entry.cp_known;
    queue(world, &node, NAP_PLU_INDICATION, std::move(draft.bytes));
}

void indicate_mode(World& world, Node& node, const Record& mode, bool gone) {
    const auto& entry = mode.as<MODE_ENTRY>();
    Draft<MODE_INDICATION> draft;
    draft.block.change = gone;
    copy_owner(draft.block.lu_name, mode);
    if (const Record* lu = find(node.of(Kind::local_lu), mode.parent)) {
        copy(draft.block.lu_alias, lu->as<LU62_ENTRY>().def.lu_alias);
    }
    copy(draft.block.plu_name, entry.plu_name);
    copy(draft.block.mode_name, entry.mode_name);
    draft.block.act_sess_count = entry.act_sess_count;
    queue(world, &node, NAP_MODE_INDICATION, std::move(draft.bytes));
}

void indicate_directory(World& world, Node& node, const Record& record, bool removed) {
    const auto& entry = record.as<DIRECTORY_ENTRY>();
    Draft<DIRECTORY_INDICATION> draft;
    draft.block.change = removed;
    copy(draft.block.resource_name, entry.resource_name);
    draft.block.resource_type = entry.resource_type;
    copy(draft.block.parent_name, entry.parent_name);
    draft.block.parent_type = entry.parent_type;
    draft.block.entry_type = entry.entry_type;
    queue(world, &node, NAP_DIRECTORY_INDICATION, std::move(draft.bytes));
}

void indicate_appcip_session(World& world, Node& node, const Record& record, bool ended) {
    const auto& entry = record.as<IPBRIDGE_APPCIP_ENTRY>();
    Draft<IPBRIDGE_INDICATION> draft;
    draft.block.change = ended ? NOF_IPBRIDGE_ENDED : entry.state;
    draft.block.session = entry.session;
    queue(world, &node, NAP_IPBRIDGE_INDICATION, std::move(draft.bytes));
}

void indicate(World& world, Node& node, Kind kind, const Record& record, bool gone) {
    switch (kind) {
    case Kind::appcip_session:
        return indicate_appcip_session(world, node, record, gone);
    case Kind::dlc:
        return indicate_dlc(world, node, record);
    case Kind::port:
        return indicate_port(world, node, record);
    case Kind::ls: {
        static constexpr std::pair<NB_BYTE, NB_BYTE> new_states[] = {
            {NOF_STATE_ACTIVE, NOF_LS_ACTIVATED},
            {NOF_STATE_START_PENDING, NOF_LS_STARTING},
            {NOF_STATE_STOP_PENDING, NOF_LS_STOPPING},
            {NOF_STATE_FAILED, NOF_LS_FAILED_ENABLED}};
        NB_BYTE new_state = NOF_LS_STOPPED;
        for (const auto& [state, told] : new_states) {
            new_state = record.as<LS_ENTRY>().det.state == state ? told : new_state;
        }
        return indicate_ls(world, node, record, new_state, gone);
    }
    case Kind::pu:
        return indicate_pu(world, node, record);
    case Kind::dlur_pu:
        return indicate_dlur_pu(world, node, record);
    case Kind::downstream_pu:
        return indicate_downstream_pu(world, node, record);
    case Kind::lu_0_to_3:
        return indicate_lu_0_to_3(world, node, record);
    case Kind::downstream_lu:
        return indicate_downstream_lu(world, node, record);
    case Kind::local_lu:
        return indicate_local_lu(world, node, record);
    case Kind::partner:
        return indicate_partner(world, node, record, gone);
    case Kind::mode:
        return indicate_mode(world, node, record, gone);
    case Kind::directory:
        return indicate_directory(world, node, record, gone);
    default:
        return; // definitions have no status
    }
}

void indicate_server(World& world, const Node& node, bool up) {
    static constexpr NB_ULONG configuration_server = 0x4;
    static constexpr NB_ULONG this_machine = 0x8;
    static constexpr NB_ULONG backup = 0x2000;
    Draft<SERVER_INDICATION> draft;
    draft.block.status = up;
    const auto& servers = world.domain.servers;
    if (std::find(servers.begin(), servers.end(), node.name) != servers.end()) {
        draft.block.flags =
            configuration_server | (node.name == world.domain.local_server ? this_machine : backup);
    }
    put_text(draft.block.server_name, sizeof draft.block.server_name, node.name);
    queue(world, nullptr, NAP_SERVER_INDICATION, std::move(draft.bytes), false);
}

void indicate_network_file(World& world) {
    Draft<SNA_NET_INDICATION> draft;
    queue(world, nullptr, NAP_SNA_NET_INDICATION, std::move(draft.bytes), false);
}

} // namespace simnode
