#include "common/card_types.h"

#include "nof/opcodes.h"

#include <array>

namespace {

constexpr NB_USHORT this_platform = 14;
constexpr NB_USHORT other_platforms[] = {10, 11, 12, 13};

struct ADAPTER {
    NB_BYTE protocol;
    NB_USHORT card_type;
    NB_ULONG label;
    NB_USHORT max_ports;
};

constexpr ADAPTER adapters_here[] = {
    {NAP_DLC_ETHERNET, 6, 59, 0},   {NAP_DLC_IP, 20, 62, 1},
    {NAP_DLC_TOKEN_RING, 5, 66, 0}, {NAP_DLC_MPC, 18, V0_CARD_LABEL_CHANNEL, 254},
    {NAP_DLC_SDLC, 1, 67, 256},     {NAP_DLC_QLLC, 15, 49, 1},
};

// Known to the node software elsewhere; never offered here.
constexpr ADAPTER adapters_elsewhere[] = {
    {NAP_DLC_SDLC, 4, 67, 256},
    {NAP_DLC_SDLC, 10, 67, 1},
    {NAP_DLC_QLLC, 9, 49, 1},
    {NAP_DLC_TOKEN_RING, 2, 66, 0},
    {NAP_DLC_TOKEN_RING, 5, 66, 0},
    {NAP_DLC_TOKEN_RING, 8, 66, 0},
    {NAP_DLC_FDDI, 7, 59, 0},
    {NAP_DLC_FDDI, 12, 59, 0},
    {NAP_DLC_FDDI, 13, 59, 0},
    {NAP_DLC_ETHERNET, 3, 59, 0},
    {NAP_DLC_ETHERNET, 6, 59, 0},
    {NAP_DLC_ETHERNET, 11, 59, 0},
    {NAP_DLC_FRAME_RELAY, 14, 59, 0},
    {NAP_DLC_CHANNEL, 16, V0_CARD_LABEL_CHANNEL, 254},
    {NAP_DLC_CHANNEL, 19, V0_CARD_LABEL_CHANNEL, 254},
    {NAP_DLC_MPC_PLUS, 21, V0_CARD_LABEL_CHANNEL, 254},
};

constexpr auto table = [] {
    std::array<V0_CARD_TYPE, V0_CARD_TYPE_COUNT> rows{};
    std::size_t count = 0;
    const auto add = [&](const ADAPTER& a, NB_USHORT platform) {
        const bool current = platform == this_platform;
        rows[count++] = {a.protocol, current, platform, a.card_type, 0, a.label, a.max_ports, 0};
    };
    for (const ADAPTER& adapter : adapters_here) {
        add(adapter, this_platform);
    }
    for (const NB_USHORT platform : other_platforms) {
        for (const ADAPTER& adapter : adapters_elsewhere) {
            add(adapter, platform);
        }
    }
    return rows;
}();
static_assert(table[V0_CARD_TYPE_COUNT - 2].platform != 0 &&
              table[V0_CARD_TYPE_COUNT - 1].platform == 0);

} // namespace

constinit const std::array<V0_CARD_TYPE, V0_CARD_TYPE_COUNT> v0_card_types = table;
