#include "fixture.h"

#include "nof/tn3270.h"

namespace store_test {
namespace {

struct Bytes {
    std::string text;
    std::size_t width;
    bool ebcdic;
    std::vector<NB_BYTE> field() const {
        std::vector<NB_BYTE> bytes(width, ' ');
        std::copy(text.begin(), text.end(), bytes.begin());
        if (ebcdic) {
            nba_local_to_ebcdic(bytes.data(), width);
        }
        return bytes;
    }
};

TEST(Compare, NamesStandInTheDocumentedOrder) {
    struct Case {
        NTL_AVL_COMPARE compare;
        std::size_t width;
        bool ebcdic;
        std::vector<std::string> ascending;
    };
    const Case cases[] = {
        {vga_compare_asc4, 4, false, {"A", "AB", "Ab", "aB", "ab", "B"}},
        {vga_compare_asc8, 8, false, {"LS 1", "LS1", "ls1", "LS10", "LS2"}},
        {vga_compare_asc14, 14, false, {"LINE000000000A", "line000000000a", "LINE000000000B"}},
        // In EBCDIC letters come before digits, # behind them; shown they are in the local order.
        {vga_compare_ebc8, 8, true, {"#INTER", "1A", "A", "A1", "AB", "Z9999999"}},
        {vga_compare_ebc17,
         17,
         true,
         {"NET.A", "NET.A1", "NET.AA", "NETWORKS.A0000000", "NETWORKS.A0000001"}},
        {vga_compare_ebc10, 10, true, {"1", "ADA", "Ada", "ada", "BOB"}},
        {vga_compare_user_name, 32, false, {"<DEFAULT>", "ANN", "ann", "Bob"}},
        {vga_compare_node_name, 128, false, {"alpha", "ALPHA.example", "alpha.example", "beta"}},
        {vga_compare_tp_names, 64, true, {"DEMO", "demo", "ECHO", "\x01\x02", "\x01\x02\x03"}},
    };
    for (const Case& test : cases) {
        const auto& names = test.ascending;
        for (std::size_t i = 0; i < names.size(); ++i) {
            for (std::size_t j = 0; j < names.size(); ++j) {
                const auto a = Bytes{names[i], test.width, test.ebcdic}.field();
                const auto b = Bytes{names[j], test.width, test.ebcdic}.field();
                const int order = test.compare(a.data(), b.data());
                EXPECT_EQ(order < 0, i < j) << names[i] << " and " << names[j];
                EXPECT_EQ(order > 0, i > j) << names[i] << " and " << names[j];
            }
        }
    }
}

TEST(Compare, WideNamesMayBeTerminatedOrPadded) {
    NB_NODE_NAME padded;
    put(padded, "alpha");
    NB_NODE_NAME terminated = "alpha";
    terminated[10] = 'x';
    EXPECT_EQ(vga_compare_node_name(padded, terminated), 0);
}

TEST(Compare, DefaultRecordsComeFirst) {
    TN3270_CLIENT_KEY flagged{1, ""};
    TN3270_CLIENT_KEY named{0, "<DEFAULT>"};
    TN3270_CLIENT_KEY client{0, "10.0.0.1"};
    EXPECT_EQ(vga_compare_client_address(&flagged, &named), 0);
    EXPECT_LT(vga_compare_client_address(&named, &client), 0);
    EXPECT_GT(vga_compare_client_address(&client, &flagged), 0);

    TN_REDIRECT_KEY any{};
    any.default_record = 1;
    any.client_port = 9999;
    TN_REDIRECT_KEY one{};
    std::strcpy(one.client_address, "a");
    one.client_port = 23;
    TN_REDIRECT_KEY other = one;
    other.client_port = 300; // above 255: compared as a number
    EXPECT_LT(vga_compare_tn_redirect(&any, &one), 0);
    EXPECT_LT(vga_compare_tn_redirect(&one, &other), 0);
    EXPECT_EQ(vga_compare_tn_redirect(&other, &other), 0);
}

} // namespace
} // namespace store_test
