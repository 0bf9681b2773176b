#include "nof/connectivity.h"
#include "nof/routing.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/tp.h"
#include "nof/user.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <string_view>

namespace {

TEST(VerbTable, EveryQueryThatListsHasABuffer) {
    // Queries that answer inside their block.
    constexpr NB_USHORT SINGLE[] = {NAP_QUERY_NODE,
                                    NAP_QUERY_DEFAULTS,
                                    NAP_QUERY_NODE_LIMITS,
                                    NAP_QUERY_CENTRAL_LOGGING,
                                    NAP_QUERY_CENTRAL_LOGGER,
                                    NAP_QUERY_GLOBAL_LOG_TYPE,
                                    NAP_QUERY_TRACE_TYPE,
                                    NAP_QUERY_CS_TRACE,
                                    NAP_QUERY_BCK_CS_TRACE,
                                    NAP_QUERY_TN_SERVER_TRACE,
                                    NAP_QUERY_TN3270_SLP_TRACE,
                                    NAP_QUERY_TN3270_DEFAULTS,
                                    NAP_QUERY_TN3270_SLP,
                                    NAP_QUERY_TN3270_EXPRESS_LOGON,
                                    NAP_QUERY_IPBRIDGE_APPCIP_DEFAULTS};
    int rows = 0;
    for (int opcode = 0; opcode <= 0xFFFF; ++opcode) {
        const NBA_VERB_ROW* row = vnv_verb_search(static_cast<NB_USHORT>(opcode), 0, 0);
        EXPECT_EQ(vnv_verb_search(static_cast<NB_USHORT>(opcode), 1, 0), nullptr);
        if (row == nullptr) {
            continue;
        }
        ++rows;
        EXPECT_EQ(row->opcode, opcode);
        const std::string_view name = row->name;
        const bool lists =
            name.starts_with("NAP_QUERY_") &&
            std::find(std::begin(SINGLE), std::end(SINGLE), opcode) == std::end(SINGLE);
        EXPECT_EQ((reinterpret_cast<const NB_BYTE*>(row)[10] & NBA_VERB_HAS_BUFFER) != 0, lists)
            << name;
        EXPECT_EQ((row->flags & NBA_VERB_INDICATION) != 0, name.ends_with("_INDICATION")) << name;
        EXPECT_GE(row->block_size, lists ? 32 : sizeof(VCB_HEADER)) << name;
    }
    EXPECT_EQ(rows, 181);
}

template <typename T> std::size_t length_of(NB_USHORT opcode, void (*fill)(T* block)) {
    T block{};
    vcb_header(&block)->opcode = opcode;
    fill(&block);
    return nba_block_length(&block);
}

TEST(VerbTable, BlocksAreAsLongAsTheirCountsSay) {
    EXPECT_EQ(length_of<DEFINE_PORT>(NAP_DEFINE_PORT,
                                     [](DEFINE_PORT* block) {
                                         block->def.port_data_length = 152;
                                         block->def.link_data_length = 64;
                                     }),
              936u);
    EXPECT_EQ(length_of<DEFINE_LS>(NAP_DEFINE_LS,
                                   [](DEFINE_LS* block) { block->def.specific_length = 52; }),
              560u);
    EXPECT_EQ(length_of<DEFINE_DLC>(NAP_DEFINE_DLC,
                                    [](DEFINE_DLC* block) { block->specific_length = 36; }),
              120u);
    EXPECT_EQ(length_of<DEFINE_TN3270_ACCESS>(
                  NAP_DEFINE_TN3270_ACCESS,
                  [](DEFINE_TN3270_ACCESS* block) { block->def.num_sessions = 1; }),
              604u);
    for (const NB_ULONG count : {0u, 1u, 3u}) {
        DELETE_TN3270_ACCESS block{};
        block.header.opcode = NAP_DELETE_TN3270_ACCESS;
        block.num_sessions = count;
        EXPECT_EQ(nba_block_length(&block), 280 + 48 * count);
    }
    EXPECT_EQ(length_of<DEFINE_EMULATOR_USER>(
                  NAP_DEFINE_EMULATOR_USER,
                  [](DEFINE_EMULATOR_USER* block) { block->def.num_sessions = 0x10000; }),
              132u + 112u * 0x10000);
    EXPECT_EQ(length_of<DEFINE_TP_LOAD_INFO>(
                  NAP_DEFINE_TP_LOAD_INFO,
                  [](DEFINE_TP_LOAD_INFO* block) { block->def_data.ltv_length = 0xFFFF; }),
              268u + 0xFFFF);
    EXPECT_EQ(length_of<DELETE_SECURITY_ACCESS_LIST>(
                  NAP_DELETE_SECURITY_ACCESS_LIST,
                  [](DELETE_SECURITY_ACCESS_LIST* block) { block->num_users = 2; }),
              52u);
    EXPECT_EQ(length_of<STOP_LS>(NAP_STOP_LS, [](STOP_LS*) {}), 28u);
    EXPECT_EQ(length_of<VCB_HEADER>(0x1234, [](VCB_HEADER*) {}), 0u);
    EXPECT_EQ(length_of<STOP_LS>(NAP_STOP_LS, [](STOP_LS* block) { block->header.format = 9; }),
              0u);
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
