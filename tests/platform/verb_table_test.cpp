#include "nof/connectivity.h"
#include "nof/routing.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/tp.h"
#include "nof/user.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

TEST(VerbTable, BlocksAreAsLongAsTheirCountsSay) {
    const struct {
        NB_USHORT opcode;
        std::vector<std::pair<std::size_t, NB_ULONG>> counts; // by their offsets
        std::size_t length;
    } cases[] = {
        {NAP_DEFINE_PORT,
         {{offsetof(DEFINE_PORT, def.port_data_length), 152},
          {offsetof(DEFINE_PORT, def.link_data_length), 64}},
         936},
        {NAP_DEFINE_LS, {{offsetof(DEFINE_LS, def.specific_length), 52}}, 560},
        {NAP_DEFINE_DLC, {{offsetof(DEFINE_DLC, specific_length), 36}}, 120},
        {NAP_DEFINE_TN3270_ACCESS, {{offsetof(DEFINE_TN3270_ACCESS, def.num_sessions), 1}}, 604},
        {NAP_DELETE_TN3270_ACCESS, {}, 280},
        {NAP_DELETE_TN3270_ACCESS, {{offsetof(DELETE_TN3270_ACCESS, num_sessions), 3}}, 424},
        {NAP_DEFINE_EMULATOR_USER,
         {{offsetof(DEFINE_EMULATOR_USER, def.num_sessions), 0x10000}},
         132 + 112 * 0x10000},
        {NAP_DEFINE_TP_LOAD_INFO,
         {{offsetof(DEFINE_TP_LOAD_INFO, def_data.ltv_length), 0xFFFF}},
         268 + 0xFFFF},
        {NAP_DELETE_SECURITY_ACCESS_LIST,
         {{offsetof(DELETE_SECURITY_ACCESS_LIST, num_users), 2}},
         52},
        {NAP_STOP_LS, {}, 28},
        {NAP_STOP_LS, {{offsetof(VCB_HEADER, format), 9}}, 0},
        {0x1234, {}, 0},
    };
    for (const auto& each : cases) {
        alignas(8) NB_BYTE block[1024] = {};
        for (const auto& [offset, count] : each.counts) {
            std::memcpy(block + offset, &count, count > 0xFFFF ? 4 : 2);
        }
        vcb_header(block)->opcode = each.opcode;
        EXPECT_EQ(nba_block_length(block), each.length) << std::hex << each.opcode;
    }
}

TEST(VerbTable, BlocksFitWhatTheirCountsAnnounce) {
    std::array<NB_BYTE, 600> bytes{};
    auto& block = *reinterpret_cast<DEFINE_EMULATOR_USER*>(bytes.data());
    block.header.opcode = NAP_DEFINE_EMULATOR_USER;
    block.def.num_sessions = 2;
    EXPECT_TRUE(nba_block_fits(&block, 132 + 2 * 112));
    EXPECT_FALSE(nba_block_fits(&block, 132 + 2 * 112 - 1));
    EXPECT_FALSE(nba_block_fits(&block, sizeof(VCB_HEADER))); // its count is not even there
    block.header.format = 3;
    EXPECT_FALSE(nba_block_fits(&block, bytes.size()));
    block.header.opcode = 0x1234;
    EXPECT_TRUE(nba_block_fits(&block, sizeof(VCB_HEADER)));
}

} // namespace
