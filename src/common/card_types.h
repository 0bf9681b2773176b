// The kinds of adapter that ports can be defined on, for every platform the node software knows.
#pragma once

#include "nba/nba.h"

#include <array>
#include <cstddef>

struct V0_CARD_TYPE {
    NB_BYTE protocol;    // NAP_DLC_TYPE
    NB_BYTE current;     // 1: belongs to the platform that this program runs on
    NB_USHORT platform;  // 0 ends the table
    NB_USHORT card_type; // the node's code, which selects the DLC's default parameters
    NB_USHORT reserved6;
    NB_ULONG label;      // text number in message set 6; V0_CARD_LABEL_CHANNEL: see below
    NB_USHORT max_ports; // of one adapter; 0: no limit, no port number is asked for
    NB_USHORT reserved14;
};
static_assert(sizeof(V0_CARD_TYPE) == 16);

// Labelled in message set 2: 671 for protocol 129, 672 for 130, 673 for 11.
inline constexpr NB_ULONG V0_CARD_LABEL_CHANNEL = 35;

inline constexpr std::size_t V0_CARD_TYPE_COUNT = 71; // the end mark included
extern const std::array<V0_CARD_TYPE, V0_CARD_TYPE_COUNT> v0_card_types;
