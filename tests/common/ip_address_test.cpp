#include "common/ip_address.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

TEST(IpAddress, Parse) {
    const struct {
        const char* text;
        const char* address; // null: refused
    } cases[] = {
        {"10.1.2.3", "10.1.2.3"},    {"255.255.255.255", "255.255.255.255"},
        {"010.0xf.0.1", "8.15.0.1"}, {"256.1.2.3", nullptr},
        {"1.2.3", nullptr},          {"1.2.3.4.5", nullptr},
        {"1.2.3.", nullptr},         {".1.2.3", nullptr},
        {"1..2.3", nullptr},         {"1.2.3.0001", nullptr},
        {"1.2.3.4x", nullptr},       {"1.2.3.08", nullptr},
        {"1.2.3.0x", nullptr},       {"1.2.3.-1", nullptr},
        {"1.2.3. 4", nullptr},       {"", nullptr},
    };
    for (const auto& each : cases) {
        NAP_IP_ADDRESS address;
        std::memset(&address, 0x55, sizeof address);
        const NAP_IP_ADDRESS before = address;
        if (each.address == nullptr) {
            EXPECT_FALSE(vga_parse_ip_addr(each.text, &address)) << each.text;
            EXPECT_EQ(std::memcmp(&address, &before, sizeof address), 0);
            continue;
        }
        ASSERT_TRUE(vga_parse_ip_addr(each.text, &address)) << each.text;
        char text[16];
        van_ip_to_string(&address, text);
        EXPECT_STREQ(text, each.address);
        NAP_IP_ADDRESS again;
        van_make_ip_address(van_make_ip_ulong(&address), &again);
        EXPECT_EQ(std::memcmp(&address, &again, sizeof address), 0);
        EXPECT_EQ(again.family, NAP_IPV4_ADDRESS);
    }
}

TEST(IpAddress, Masks) {
    const struct {
        NB_ULONG address, mask;
        int bits;
    } classes[] = {{0x0A010203, 0xFF000000, 8},
                   {0x7FFFFFFF, 0xFF000000, 8},
                   {0x80000000, 0xFFFF0000, 16},
                   {0xBFFF0000, 0xFFFF0000, 16},
                   {0xC0A80001, 0xFFFFFF00, 24}};
    for (const auto& each : classes) {
        NAP_IP_ADDRESS address;
        NAP_IP_ADDRESS mask;
        van_make_ip_address(each.address, &address);
        vga_get_default_ip_addr_mask(&address, &mask);
        EXPECT_EQ(van_make_ip_ulong(&mask), each.mask);
        EXPECT_EQ(van_compute_mask_num(&mask), each.bits);
    }
    for (const NB_ULONG mask : {0U, 0x80000000U, 0xFFFFFF00U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        EXPECT_TRUE(van_check_mask(mask)) << mask;
    }
    for (const NB_ULONG mask : {1U, 0x7FFFFFFFU, 0xFF00FF00U, 0xFFFFFF01U}) {
        EXPECT_FALSE(van_check_mask(mask)) << mask;
    }
    const NAP_IP_ADDRESS other{};
    const std::size_t asserts = nba_assert_count();
    van_make_ip_ulong(&other);
    EXPECT_EQ(nba_assert_count(), asserts + 1);
    EXPECT_STREQ(nba_last_assert(), "ip_addr->family == NAP_IPV4_ADDRESS");
}

TEST(IpAddress, HostNames) {
    const std::string label(63, 'a');
    const std::string long_name = label + "." + label + "." + label + "." + label; // 255
    const struct {
        std::string name;
        bool ip_name, domain;
    } cases[] = {
        {"host", true, true},
        {"a-b_c.d9", true, true},
        {"a/b", true, false},
        {"", false, true},
        {"host.", false, true},
        {".host", false, true},
        {"a..b", false, true},
        {label, true, true},
        {label + "a.b", false, false},
        {long_name.substr(0, 237), true, true},
        {long_name.substr(0, 238), true, false},
        {long_name, true, false},
        {long_name.substr(2) + ".aa", false, false}, // 256
    };
    for (const auto& each : cases) {
        EXPECT_EQ(vga_valid_ip_name(each.name.c_str()), each.ip_name) << each.name;
        EXPECT_EQ(van_check_domain_name(each.name.c_str()), each.domain) << each.name;
    }
}

TEST(LuTemplate, Names) {
    const struct {
        const char* lu_template;
        NB_ULONG address, mask;
        const char* name;
    } cases[] = {
        {"LU", 0x0A0102FF, 0xFFFFFF00, "LU00007Z"}, // 255 is 7 times 32 and 31
        {"LU", 0x0A010220, 0xFFFFFF00, "LU000010"},       {"LU", 0x0A010220, 0xFFFFFFFF, "LU"},
        {"LU..EIO#", 0xFFFFFF4B, 0xFFFFFF00, "LU2BEIO#"}, // 75 is 2 times 32 and 11
        {"A", 0xFF12FF34, 0xFF00FF00, "A00004JM"},        // host bits packed to 0x1234
        {"........", 0xFFFFFFFF, 0, "03ZZZZZZ"},
    };
    for (const auto& each : cases) {
        char name[9];
        ip_2_lu(each.lu_template, name, each.address, each.mask);
        EXPECT_STREQ(name, each.name);
    }
}

TEST(LuTemplate, Valid) {
    const struct {
        const char* lu_template;
        int hosts;
        bool valid;
    } cases[] = {
        {"LUNAME01", 0, true},   {"LUNAME01", 1, false}, {"LUNAME0.", 1, true},
        {"LUNAME0.", 5, true},   {"LUNAME0.", 6, false}, {"LUNAME..", 10, true},
        {"LUNAME..", 11, false}, {"LUN....", 24, true},  {"LUNA....", 21, false},
        {"LUNA....", 20, true},  {"LU", 24, true},       {"LU", 25, false},
        {".LU", 8, false},       {"1LU", 8, false},      {"L U", 8, false},
        {"L.U", 8, true},        {"lu", 8, false},
    };
    for (const auto& each : cases) {
        std::string text(each.lu_template);
        text.resize(8, ' ');
        nba_local_to_ebcdic(text.data(), text.size());
        const NB_ULONG mask = each.hosts == 0 ? ~0U : ~0U << each.hosts;
        EXPECT_EQ(van_validate_lu_map_template(reinterpret_cast<const NB_BYTE*>(text.data()), mask),
                  each.valid)
            << each.lu_template << " " << each.hosts;
    }
}

} // namespace
