// IP addresses, host names, and LU names derived from addresses.
#pragma once

#include "nba/nba.h"

constexpr NB_USHORT NAP_IPV4_ADDRESS = 4;

#pragma pack(push, 1)
// An address as verb control blocks carry it. IPv4 uses the first four address bytes; the rest is
// zero.
struct NAP_IP_ADDRESS {
    NB_USHORT family;
    NB_BYTE address[16]; // in network order
    NB_BYTE reserved[6];
};
#pragma pack(pop)
static_assert(offsetof(NAP_IP_ADDRESS, address) == 2);
static_assert(sizeof(NAP_IP_ADDRESS) == 24);

// True for 1 to 255 characters with 1 to 63 between periods; a final period makes an empty part.
// The characters themselves are not tested.
bool vga_valid_ip_name(const char* text);
// True for at most 237 letters, digits, "-", "_" and ".", with at most 63 between periods; ""
// passes.
bool van_check_domain_name(const char* text);

// Dotted text, four parts of 1 to 3 characters; a part may be octal (leading 0) or hexadecimal
// (0x). *ip_addr is changed only when the text is valid.
bool vga_parse_ip_addr(const char* text, NAP_IP_ADDRESS* ip_addr);
// Dotted decimal text; text holds at least 16 bytes.
void van_ip_to_string(const NAP_IP_ADDRESS* ip_addr, char* text);
// The address as a number in host order, and back to a record.
NB_ULONG van_make_ip_ulong(const NAP_IP_ADDRESS* ip_addr);
void van_make_ip_address(NB_ULONG number, NAP_IP_ADDRESS* ip_addr);

// The mask of the class (A, B or C) of an address, as a record and as four bytes.
void vga_get_default_ip_addr_mask(const NAP_IP_ADDRESS* ip_addr, NAP_IP_ADDRESS* mask);
void van_make_default_mask(const NAP_IP_ADDRESS* ip_addr, NB_BYTE mask[4]);
// True when no one bit follows a zero bit.
bool van_check_mask(NB_ULONG mask);
// The number of one bits.
int van_compute_mask_num(const NAP_IP_ADDRESS* ip_addr);

// Derives an LU name (result: 9 bytes) from an address: host bits fill the placeholders of the
// template, which is every character that an LU name cannot have and every position behind its end.
// Template and result are local text.
void ip_2_lu(const char* lu_template, char* result, NB_ULONG address, NB_ULONG mask);
// True when a template (8 bytes of EBCDIC, periods as placeholders) makes valid names that tell all
// hosts of the mask apart.
bool van_validate_lu_map_template(const NB_BYTE* lu_template, NB_ULONG mask);
