#include "common/ip_address.h"

#include "common/assert.h"
#include "common/names.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr int address_bits = 32;
constexpr std::size_t ipv4_bytes = 4;
constexpr std::size_t longest_label = 63;

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
bool is_letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Calls part for what stands between the periods; false as soon as a call gives false.
bool each_part(std::string_view text, auto&& part) {
    for (;;) {
        const std::size_t period = text.find('.');
        if (!part(text.substr(0, period))) {
            return false;
        }
        if (period == text.npos) {
            return true;
        }
        text.remove_prefix(period + 1);
    }
}

int host_bits(NB_ULONG mask) {
    return address_bits - std::popcount(mask);
}

} // namespace

bool vga_valid_ip_name(const char* text) {
    constexpr std::size_t longest_name = 255;
    const std::string_view name(text);
    return name.size() <= longest_name && each_part(name, [](std::string_view part) {
               return !part.empty() && part.size() <= longest_label;
           });
}

bool van_check_domain_name(const char* text) {
    constexpr std::size_t longest_name = 237;
    const std::string_view name(text);
    return name.size() <= longest_name && each_part(name, [](std::string_view part) {
               return part.size() <= longest_label &&
                      std::all_of(part.begin(), part.end(), [](char c) {
                          return is_letter(c) || is_digit(c) || c == '-' || c == '_';
                      });
           });
}

bool vga_parse_ip_addr(const char* text, NAP_IP_ADDRESS* ip_addr) {
    constexpr std::size_t longest_part = 3;
    NAP_IP_ADDRESS parsed{};
    parsed.family = NAP_IPV4_ADDRESS;
    std::size_t parts = 0;
    const bool valid = each_part(text, [&](std::string_view part) {
        // No sign and no blank, which strtol would pass over.
        if (parts == ipv4_bytes || part.size() > longest_part || part.empty() ||
            !is_digit(part[0])) {
            return false;
        }
        const std::string number(part);
        char* end = nullptr;
        const long value = std::strtol(number.c_str(), &end, 0);
        parsed.address[parts++] = static_cast<NB_BYTE>(value);
        return *end == '\0' && value <= 255;
    });
    if (!valid || parts != ipv4_bytes) {
        return false;
    }
    *ip_addr = parsed;
    return true;
}

void van_ip_to_string(const NAP_IP_ADDRESS* ip_addr, char* text) {
    VGA_ASSERT(ip_addr->family == NAP_IPV4_ADDRESS);
    const NB_BYTE* bytes = ip_addr->address;
    nb_sprintf(text, "%i.%i.%i.%i", bytes[0], bytes[1], bytes[2], bytes[3]);
}

NB_ULONG van_make_ip_ulong(const NAP_IP_ADDRESS* ip_addr) {
    VGA_ASSERT(ip_addr->family == NAP_IPV4_ADDRESS);
    NB_ULONG number = 0;
    for (std::size_t i = 0; i < ipv4_bytes; ++i) {
        number = number << 8 | ip_addr->address[i];
    }
    return number;
}

void van_make_ip_address(NB_ULONG number, NAP_IP_ADDRESS* ip_addr) {
    *ip_addr = NAP_IP_ADDRESS{};
    ip_addr->family = NAP_IPV4_ADDRESS;
    for (std::size_t i = ipv4_bytes; i-- > 0; number >>= 8) {
        ip_addr->address[i] = static_cast<NB_BYTE>(number);
    }
}

void vga_get_default_ip_addr_mask(const NAP_IP_ADDRESS* ip_addr, NAP_IP_ADDRESS* mask) {
    NAP_IP_ADDRESS made{};
    made.family = NAP_IPV4_ADDRESS;
    van_make_default_mask(ip_addr, made.address);
    *mask = made;
}

void van_make_default_mask(const NAP_IP_ADDRESS* ip_addr, NB_BYTE mask[4]) {
    constexpr NB_BYTE class_b = 128; // first bytes of the lowest addresses of the classes
    constexpr NB_BYTE class_c = 192;
    VGA_ASSERT(ip_addr->family == NAP_IPV4_ADDRESS);
    const NB_BYTE first = ip_addr->address[0];
    mask[0] = 255;
    mask[1] = first >= class_b ? 255 : 0;
    mask[2] = first >= class_c ? 255 : 0;
    mask[3] = 0;
}

bool van_check_mask(NB_ULONG mask) {
    return std::countl_one(mask) == std::popcount(mask);
}

int van_compute_mask_num(const NAP_IP_ADDRESS* ip_addr) {
    return std::popcount(van_make_ip_ulong(ip_addr));
}

void ip_2_lu(const char* lu_template, char* result, NB_ULONG address, NB_ULONG mask) {
    // The digits to base 32, and the characters that only a template gives.
    constexpr std::string_view alphabet = "0123456789ABCDFGHJKLMNPQRSTVWXYZEIOU@#$";
    constexpr unsigned base = 32;

    std::array<char, SNA_NAME_LENGTH + 1> name{};
    const std::size_t length = strnlen(lu_template, SNA_NAME_LENGTH);
    std::copy_n(lu_template, length, name.begin());
    if (host_bits(mask) != 0) {
        NB_ULONG value = 0;
        for (int bit = 0, packed = 0; bit < address_bits; ++bit) {
            if ((mask >> bit & 1) == 0) {
                value |= (address >> bit & 1) << packed++;
            }
        }
        for (std::size_t i = SNA_NAME_LENGTH; i-- > 0;) {
            if (name[i] == '\0' || alphabet.find(name[i]) == alphabet.npos) {
                name[i] = alphabet[value % base];
                value /= base;
            }
        }
    }
    std::copy(name.begin(), name.end(), result);
}

bool van_validate_lu_map_template(const NB_BYTE* lu_template, NB_ULONG mask) {
    constexpr int most_host_bits = 24;
    constexpr int bits_per_placeholder = 5;

    std::array<NB_BYTE, SNA_NAME_LENGTH> name;
    std::copy_n(lu_template, name.size(), name.begin());
    const int hosts = host_bits(mask);
    if (name[0] == EBCDIC_PERIOD || hosts > most_host_bits) {
        return false;
    }
    const auto fixed = std::count_if(name.begin(), name.end(), [](NB_BYTE byte) {
        return byte != EBCDIC_PERIOD && byte != EBCDIC_BLANK;
    });
    NB_BYTE at_sign = '@';
    nba_local_to_ebcdic(&at_sign, 1);
    std::replace(name.begin(), name.end(), EBCDIC_PERIOD, at_sign);
    const int placeholders = (hosts + bits_per_placeholder - 1) / bits_per_placeholder;
    return ntl_check_name(NBA_TYPE_A, name.data(), name.size()) &&
           fixed <= static_cast<int>(name.size()) - placeholders;
}
