// SNA names as the node keeps them: EBCDIC, padded with EBCDIC blanks to a fixed width, no
// terminator. Arrays of NB_BYTE hold EBCDIC, arrays of char hold text of the local character set.
// Output and input may be the same array.
#pragma once

#include "nba/nba.h"

constexpr NB_BYTE EBCDIC_BLANK = 0x40;
constexpr NB_BYTE EBCDIC_PERIOD = 0x4B;
constexpr NB_BYTE EBCDIC_A = 0xC1;
constexpr std::size_t SNA_NAME_LENGTH = 8;
constexpr std::size_t FQ_NAME_LENGTH = 17; // network name, period, name
constexpr std::size_t TP_NAME_LENGTH = 64;

// ---- fully qualified names ----

enum NTL_FQ_CODE : int {
    NTL_FQ_QUALIFIED = 1, // valid, with network part
    NTL_FQ_UNQUALIFIED,   // valid, the name alone
    NTL_FQ_NETWORK_LONG,  // more than 8 characters
    NTL_FQ_NAME_LONG,
    NTL_FQ_NETWORK_CHARACTER, // a character outside type A
    NTL_FQ_NAME_CHARACTER,
    NTL_FQ_NETWORK_EMPTY, // the period comes first
    NTL_FQ_NAME_EMPTY,
    NTL_FQ_TRAILING, // something follows the blank that ends the name
};

// Bytes before the first blank; width when there is none.
std::size_t ntl_name_length(const NB_BYTE* name, std::size_t width);
// True when the name, less its trailing blanks, belongs to the character set. An empty name does.
bool ntl_check_name(NBA_CHARACTER_SET set, const NB_BYTE* name, std::size_t width);
NTL_FQ_CODE ntl_check_fq_name(const NB_BYTE* fq_name);
// Both parts as padded names of 8 bytes. The network part is 8 zero bytes when there is none, and
// so are both parts when the name is not valid.
NTL_FQ_CODE ntl_split_fq_name(const NB_BYTE* fq_name, NB_BYTE* network, NB_BYTE* name);
// Joins two padded names of 8 bytes. Returns the position of the period, from 0.
std::size_t ntl_make_fq_name(const NB_BYTE* network, const NB_BYTE* name, NB_BYTE* fq_name);
// The network part and period of fq_name with another name (8 bytes) behind them; the new name
// alone when fq_name has no period; 17 zero bytes when its network part is too long.
void ntl_change_local_name(const NB_BYTE* fq_name, const NB_BYTE* new_name, NB_BYTE* result);
// The bytes of source that are not blank, padded or cut to the width of the result. The two may not
// overlap.
void ntl_make_internal_name(NB_BYTE* result, std::size_t result_width, const NB_BYTE* source,
                            std::size_t source_length);

// Parts of a fully qualified name as local text of at most 8 characters (result: 9 bytes), without
// trailing blanks. Without a period the first two give "" and the third the whole name.
void vga_get_fq_name(char* result, const NB_BYTE* fq_name);
void vga_get_fq_net_name(char* result, const NB_BYTE* fq_name);
void vga_getw_fq_net_name(char* result, const NB_BYTE* fq_name);

// ---- text and fields ----

// Removes trailing blanks from local text, in place.
void vga_strip_spaces(char* text);
// Replaces the first zero byte within the width, and all after it, by the pad character.
void vga_pad_buffer(void* buffer, std::size_t width, char pad);
// Local text, up to its first zero byte, to a padded EBCDIC field of the given width.
void van_ascii_to_ebcdic(NB_BYTE* field, const char* text, std::size_t width);
// The field as local text (width + 1 bytes) without trailing blanks.
void van_ebcdic_to_ascii(char* text, const NB_BYTE* field, std::size_t width);
// The value of a hexadecimal digit of either case, -1 for any other character.
int vga_hex_digit(char digit);
// Makes a padded type A name of the given length from free local text: its usable characters in
// upper case or, when it has none, letters computed from their codes. Blank when the text is empty.
void v0_generate_ebcdic_a_name(const char* source, std::size_t length, NB_BYTE* result);

// ---- transaction program names ----

// True when a TP name has to be shown in hexadecimal, because a character of it does not print.
bool vga_hex_tp_name(const NB_BYTE* tp_name);
// Reads pairs of hexadecimal digits into a padded TP name; what exceeds 64 bytes is ignored. False
// for an odd number of digits or another character.
bool vga_parse_hex_tp_name(const char* text, NB_BYTE* tp_name);
// True when the name is a TP name and, with service_tp, the name of a service TP. When false,
// *warning tells whether the user may insist (it is not that of a service TP) or not (something
// follows the blank that ends it).
bool vga_valid_tp_name(const NB_BYTE* tp_name, bool service_tp, bool* warning);
