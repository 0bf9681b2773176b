#include "common/names.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

// A padded EBCDIC field of local text.
std::string field(std::string text, std::size_t width) {
    text.resize(width, ' ');
    nba_local_to_ebcdic(text.data(), text.size());
    return text;
}
std::string local(std::string text) {
    nba_ebcdic_to_local(text.data(), text.size());
    return text;
}
const NB_BYTE* bytes(const std::string& text) {
    return reinterpret_cast<const NB_BYTE*>(text.data());
}
NB_BYTE* bytes(std::string& text) {
    return reinterpret_cast<NB_BYTE*>(text.data());
}

TEST(Names, CheckName) {
    const struct {
        NBA_CHARACTER_SET set;
        const char* name;
        bool valid;
    } cases[] = {
        {NBA_TYPE_A, "LU1", true},        {NBA_TYPE_A, "#LU$@1", true},
        {NBA_TYPE_A, "1LU", false},       {NBA_TYPE_A, "lu1", false},
        {NBA_TYPE_A, "L U", false},       {NBA_TYPE_A, " LU", false},
        {NBA_TYPE_A, "", true},           {NBA_TYPE_A, "ABCDEFGH", true},
        {NBA_TYPE_AE, "pass.Word", true}, {NBA_TYPE_AE, "pa-ss", false},
        {NBA_TYPE_AE, "A B", false},      {NBA_TYPE_AE, "1ab", true},
        {NBA_TYPE_AE, "\xC4RGER", false},
    };
    for (const auto& each : cases) {
        const std::string name = field(each.name, 9);
        EXPECT_EQ(ntl_check_name(each.set, bytes(name), 9), each.valid) << each.name;
    }
    EXPECT_TRUE(ntl_check_name(NBA_TYPE_A, nullptr, 0));
}

TEST(Names, CheckAndSplitFqName) {
    const struct {
        const char* fq_name;
        int code;
        const char *network, *name; // null: zero bytes
    } cases[] = {
        {"NET.NODE", 1, "NET", "NODE"},
        {"NETWORK1.NODENAME", 1, "NETWORK1", "NODENAME"},
        {"NODE", 2, nullptr, "NODE"},
        {"NODENAME", 2, nullptr, "NODENAME"},
        {"NETWORKXY.NODE", 3, nullptr, nullptr},
        {"NODENAMEX", 4, nullptr, nullptr},
        {"NET.NODENAMEX", 4, nullptr, nullptr},
        {"1NET.NODE", 5, nullptr, nullptr},
        {"N T.NODE", 5, nullptr, nullptr},
        {"NET .NODE", 5, nullptr, nullptr},
        {"NET.1NODE", 6, nullptr, nullptr},
        {"NET.NO.DE", 6, nullptr, nullptr},
        {"node", 6, nullptr, nullptr},
        {".NODE", 7, nullptr, nullptr},
        {"NET.", 8, nullptr, nullptr},
        {"", 8, nullptr, nullptr},
        {"NODE X", 9, nullptr, nullptr},
        {"NET.NODE        X", 9, nullptr, nullptr},
    };
    for (const auto& each : cases) {
        const auto expected = [](const char* part) {
            return part != nullptr ? field(part, 8) : std::string(8, '\0');
        };
        const std::string fq_name = field(each.fq_name, 17);
        std::string network(8, 'x');
        std::string name(8, 'x');
        EXPECT_EQ(ntl_check_fq_name(bytes(fq_name)), each.code) << each.fq_name;
        EXPECT_EQ(ntl_split_fq_name(bytes(fq_name), bytes(network), bytes(name)), each.code);
        EXPECT_EQ(network, expected(each.network)) << each.fq_name;
        EXPECT_EQ(name, expected(each.name)) << each.fq_name;
    }
}

TEST(Names, MakeFqName) {
    const struct {
        const char *network, *name, *fq_name;
        std::size_t period;
    } cases[] = {{"NET", "NODE", "NET.NODE", 3},
                 {"NETWORK1", "NODENAME", "NETWORK1.NODENAME", 8},
                 {"", "NODE", ".NODE", 0}};
    for (const auto& each : cases) {
        std::string result(17, 'x');
        EXPECT_EQ(ntl_make_fq_name(bytes(field(each.network, 8)), bytes(field(each.name, 8)),
                                   bytes(result)),
                  each.period);
        EXPECT_EQ(result, field(each.fq_name, 17));
    }
}

TEST(Names, ChangeLocalName) {
    const struct {
        const char *before, *after; // null: zero bytes
    } cases[] = {{"NET.NODE", "NET.NEW"},
                 {"NETWORK1.LONGNODE", "NETWORK1.NEW"},
                 {"NODE", "NEW"},
                 {"", "NEW"},
                 {"NETWORKXY.NODE", nullptr}};
    for (const auto& each : cases) {
        std::string name = field(each.before, 17);
        ntl_change_local_name(bytes(name), bytes(field("NEW", 8)), bytes(name)); // in place
        EXPECT_EQ(name, each.after != nullptr ? field(each.after, 17) : std::string(17, '\0'));
    }
}

TEST(Names, MakeInternalNameDropsBlanks) {
    std::string result(5, 'x');
    ntl_make_internal_name(bytes(result), 5, bytes(field("A B  C", 10)), 10);
    EXPECT_EQ(result, field("ABC", 5));
    ntl_make_internal_name(bytes(result), 5, bytes(field(" ABCDEFG", 10)), 10);
    EXPECT_EQ(result, field("ABCDE", 5));
}

TEST(Names, PartsAsText) {
    const struct {
        const char *fq_name, *name, *network, *any;
    } cases[] = {{"NET.NODE", "NODE", "NET", "NODE"},
                 {"NETWORK1.NODENAME", "NODENAME", "NETWORK1", "NODENAME"},
                 {"NODE", "", "", "NODE"},
                 {"ABCDEFGHIJKLMNOPQ", "", "", "ABCDEFGH"},
                 {"ABCDEFGHIJKLMNOP.", "", "ABCDEFGH", ""},
                 {"", "", "", ""}};
    for (const auto& each : cases) {
        const std::string fq_name = field(each.fq_name, 17);
        char result[9];
        vga_get_fq_name(result, bytes(fq_name));
        EXPECT_STREQ(result, each.name);
        vga_get_fq_net_name(result, bytes(fq_name));
        EXPECT_STREQ(result, each.network);
        vga_getw_fq_net_name(result, bytes(fq_name));
        EXPECT_STREQ(result, each.any);
    }
}

TEST(Names, GenerateName) {
    const struct {
        const char* source;
        std::size_t length;
        const char* name;
    } cases[] = {
        {"1abc", 8, "A1ABC"},
        {"ls-0.x", 8, "LS0X"},
        {"12345678", 8, "A1234567"},
        {"abcdefghij", 8, "ABCDEFGH"},
        {"a--------b", 8, "A"}, // only so many source characters count
        {" ls1", 8, "LS1"},
        {"-_!", 8, "TRH"}, // 45, 95 and 33 modulo 26
        {"- !", 8, "T"},
        {" -", 8, ""},
        {"", 8, ""},
        {"\xE4", 8, "U"}, // 228 modulo 26
    };
    for (const auto& each : cases) {
        std::string result(each.length, 'x');
        v0_generate_ebcdic_a_name(each.source, each.length, bytes(result));
        EXPECT_EQ(local(result), local(field(each.name, each.length))) << each.source;
    }
}

TEST(TpNames, HexadecimalOnlyWhenItDoesNotPrint) {
    std::string name = field("MYTP.1/x", 64);
    EXPECT_FALSE(vga_hex_tp_name(bytes(name)));
    name[63] = '\0';
    EXPECT_TRUE(vga_hex_tp_name(bytes(name)));
    EXPECT_TRUE(vga_hex_tp_name(bytes("\x06" + field("ABC", 63))));
    EXPECT_FALSE(vga_hex_tp_name(bytes(field("", 64))));
}

TEST(TpNames, ParseHexadecimal) {
    const struct {
        std::string text, name;
        bool valid;
    } cases[] = {
        {"", "", true},
        {"C1c2", "\xC1\xC2", true},
        {"06F1F2F3", "\x06\xF1\xF2\xF3", true},
        {"C1C", "\xC1", false},
        {"C1xC", "\xC1", false},
        {std::string(130, 'C'), std::string(64, '\xCC'), true},
        {std::string(127, 'C'), std::string(63, '\xCC'), false},
    };
    for (auto each : cases) {
        std::string name(64, 'x');
        EXPECT_EQ(vga_parse_hex_tp_name(each.text.c_str(), bytes(name)), each.valid) << each.text;
        each.name.resize(64, '\x40');
        EXPECT_EQ(name, each.name);
    }
}

TEST(TpNames, Valid) {
    const struct {
        std::string name;
        bool service, valid, warning;
    } cases[] = {
        {field("ANY tp", 6), false, false, false},
        {field("any-tp", 6), false, true, false},
        {field("", 4), false, true, false},
        {"\x06\xF1", true, true, false},
        {"\x06\xF1\xC1\x5B", true, true, false},
        {"\x06", true, true, false},
        {"\x06\xF1\xF2\xF3\xF4", true, false, true},
        {"\x0E\xF1", true, false, true},
        {"\x0F\xF1", true, false, true},
        {"\xC1\xF1", true, false, true},
        {"\x06\x81", true, false, true}, // lower case
        {"", true, false, true},
        {"\x06\x40\xF1", true, false, false},
    };
    for (auto each : cases) {
        each.name.resize(64, '\x40');
        bool warning = !each.warning;
        EXPECT_EQ(vga_valid_tp_name(bytes(each.name), each.service, &warning), each.valid)
            << local(each.name);
        EXPECT_EQ(warning, each.warning) << local(each.name);
    }
}

} // namespace
