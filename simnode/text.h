// Character fields of verb blocks to text and back. Texts are in the local character set.
#pragma once

#include "nof/vcb.h"

#include <string>
#include <string_view>
#include <vector>

namespace simnode {

using Bytes = std::vector<NB_BYTE>;

// An EBCDIC or local name without its padding (trailing blanks and zeros).
std::string ebcdic_text(const NB_BYTE* field, std::size_t length);
std::string local_text(const void* field, std::size_t length);
// Fills a field with a name, padded with blanks and cut at the field's length.
void put_ebcdic(NB_BYTE* field, std::size_t length, std::string_view text);
void put_local(void* field, std::size_t length, std::string_view text);
// Fills a NUL-terminated text; at most length - 1 characters are kept.
void put_text(char* field, std::size_t length, std::string_view text);

// A name field that holds nothing: zeros, or blanks of either character set.
bool is_blank(const void* field, std::size_t length);
// The raw bytes of a field, as keys are made of them.
std::string raw(const void* field, std::size_t length);

std::string to_hex(const void* bytes, std::size_t length);
// False when the text is not an even number of hexadecimal digits.
bool from_hex(std::string_view text, Bytes& bytes);
// "0x211C" or "211c" or decimal digits; false for anything else.
bool parse_number(std::string_view text, unsigned long& value);
std::string lower(std::string_view text);
// A text as a JSON string, quotes included.
std::string json_text(std::string_view text);

} // namespace simnode
