#include "simnode/specific_data.h"

#include "nof/connectivity.h"

#include <algorithm>

namespace simnode {

std::size_t default_dlc_specific(NB_BYTE dlc_type) {
    switch (dlc_type) {
    case NAP_DLC_SDLC:
        return 88;
    case NAP_DLC_QLLC:
        return 40;
    case NAP_DLC_IP:
        return 52;
    default:
        return 72;
    }
}

void default_port_specific(NB_BYTE dlc_type, NB_USHORT& port_data, NB_USHORT& link_data) {
    switch (dlc_type) {
    case NAP_DLC_TOKEN_RING:
    case NAP_DLC_ETHERNET:
    case NAP_DLC_FDDI:
        port_data = 152;
        link_data = 64;
        break;
    case NAP_DLC_SDLC:
    case NAP_DLC_QLLC:
        port_data = 448;
        link_data = 472;
        break;
    case NAP_DLC_IP:
        port_data = 192;
        link_data = 192;
        break;
    default:
        port_data = 36;
        link_data = 52;
        break;
    }
}

std::size_t default_ls_specific(NB_BYTE dlc_type) {
    switch (dlc_type) {
    case NAP_DLC_TOKEN_RING:
    case NAP_DLC_ETHERNET:
    case NAP_DLC_FDDI:
        return 64;
    case NAP_DLC_SDLC:
        return 472;
    default:
        return 52;
    }
}

void add_default_specific(const KindRow& row, Bytes& bytes) {
    if (row.tail.block == 0) {
        return;
    }
    const std::size_t given = bytes.size() - row.entry_size;
    auto* data = bytes.data();
    if (row.kind == Kind::dlc) {
        auto& dlc = *reinterpret_cast<DLC_ENTRY*>(data);
        const std::size_t length = std::max(given, default_dlc_specific(dlc.def.dlc_type));
        dlc.specific_length = static_cast<NB_USHORT>(length);
        bytes.resize(row.entry_size + length);
    } else if (row.kind == Kind::port) {
        auto& def = reinterpret_cast<PORT_ENTRY*>(data)->def;
        if (def.port_data_length + def.link_data_length == 0) {
            NB_USHORT port_data = 0;
            NB_USHORT link_data = 0;
            default_port_specific(reinterpret_cast<PORT_ENTRY*>(data)->dlc_type, port_data,
                                  link_data);
            def.port_data_length = port_data;
            def.link_data_length = link_data;
        }
        bytes.resize(row.entry_size + (def.port_data_length + def.link_data_length + 3u) / 4 * 4);
    } else if (row.kind == Kind::ls) {
        auto& ls = *reinterpret_cast<LS_ENTRY*>(data);
        const std::size_t length = std::max(
            {given, std::size_t{ls.def.specific_length}, default_ls_specific(ls.det.dlc_type)});
        ls.def.specific_length = static_cast<NB_USHORT>(length);
        bytes.resize(row.entry_size + (length + 3) / 4 * 4);
    }
}

} // namespace simnode
