#include "shell/name_texts.h"

#include "common/assert.h"
#include "common/names.h"
#include "shell/messages.h"

namespace {

enum : int {
    MESSAGE_HEX_TP_NAME = 1449,
    MESSAGE_IP_ADDRESS = 1450,
    MESSAGE_IP_ADDRESS_PORT = 1451
};

} // namespace

void vga_format_tp_name(char* result, const NB_BYTE* tp_name, bool hexadecimal, bool decorate) {
    if (!hexadecimal) {
        van_ebcdic_to_ascii(result, tp_name, TP_NAME_LENGTH);
        return;
    }
    std::size_t length = TP_NAME_LENGTH;
    while (length > 1 && tp_name[length - 1] == EBCDIC_BLANK) {
        --length;
    }
    char digits[2 * TP_NAME_LENGTH + 1];
    for (std::size_t i = 0; i < length; ++i) {
        nb_sprintf(digits + 2 * i, "%2.2X", tp_name[i]);
    }
    const char* text = decorate ? gvga_messages[MESSAGE_HEX_TP_NAME] : "%1";
    vga_print_msg(result, text, "s", digits);
}

void vga_format_ip_addr(char* result, const NAP_IP_ADDRESS* ip_addr) {
    VGA_ASSERT(ip_addr->family == NAP_IPV4_ADDRESS);
    const NB_BYTE* bytes = ip_addr->address;
    vga_print_msg(result, gvga_messages[MESSAGE_IP_ADDRESS], "i i i i", bytes[0], bytes[1],
                  bytes[2], bytes[3]);
}

void vga_format_ip_addr_port(char* result, const NAP_IP_ADDRESS* ip_addr, NB_USHORT port) {
    VGA_ASSERT(ip_addr->family == NAP_IPV4_ADDRESS);
    const NB_BYTE* bytes = ip_addr->address;
    vga_print_msg(result, gvga_messages[MESSAGE_IP_ADDRESS_PORT], "i i i i i", bytes[0], bytes[1],
                  bytes[2], bytes[3], port);
}
