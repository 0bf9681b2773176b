#include "shell/name_texts.h"

#include "shell/messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

TEST(NameTexts, TpName) {
    const char* const kept = gvga_messages[1449];
    gvga_messages[1449] = "<%1>";
    const struct {
        std::string name; // EBCDIC
        bool hexadecimal, decorate;
        const char* text;
    } cases[] = {
        {"\xC1\xC2\x40\xC3", false, true, "AB C"},
        {"\x06\xF1\xCA", true, false, "06F1CA"},
        {"\x06\xF1", true, true, "<06F1>"},
        {"", true, false, "40"},
    };
    for (auto each : cases) {
        each.name.resize(64, '\x40');
        char text[VGA_MESSAGE_BUFFER_SIZE];
        vga_format_tp_name(text, reinterpret_cast<const NB_BYTE*>(each.name.data()),
                           each.hexadecimal, each.decorate);
        EXPECT_STREQ(text, each.text);
    }
    gvga_messages[1449] = kept;
}

TEST(NameTexts, IpAddress) {
    const char* const kept[] = {gvga_messages[1450], gvga_messages[1451]};
    gvga_messages[1450] = "%1.%2.%3.%4";
    gvga_messages[1451] = "%1.%2.%3.%4, port %5";
    NAP_IP_ADDRESS address;
    van_make_ip_address(0xC0A800FF, &address);
    char text[VGA_MESSAGE_BUFFER_SIZE];
    vga_format_ip_addr(text, &address);
    EXPECT_STREQ(text, "192.168.0.255");
    vga_format_ip_addr_port(text, &address, 60000);
    EXPECT_STREQ(text, "192.168.0.255, port 60000");
    std::copy_n(kept, 2, gvga_messages + 1450);
}

} // namespace
