// Dial digits of switched SDLC lines: bytes, of which those that do not print are typed and shown
// as "/CR/" or "/200/", or all of them as "0x" and hexadecimal digits.
//
// Every routine takes the output with its capacity (in *..._len, which then counts the bytes
// written), and the input with its length; no terminator is read or written. The result is 0, or
// the position from 1 of the first bad input character, or the input length plus 1 when the output
// is full.
#pragma once

#include "nba/nba.h"

// The names of bytes 0 to 31, blank and delete, with their slashes.
constexpr int V0_SDLC_ESCAPES = 34;
extern const char* const v0_sdlc_escape_sequences[V0_SDLC_ESCAPES];

// What the user typed, in either form.
NB_USHORT v0_dialstring_text_to_binary(NB_BYTE* binary, NB_USHORT* binary_len, const char* text,
                                       NB_USHORT text_len);
// Text with escapes. A faulty escape is reported at its opening slash.
NB_USHORT v0_dialstring_ascii_to_binary(NB_BYTE* binary, NB_USHORT* binary_len, const char* ascii,
                                        NB_USHORT ascii_len);
// Pairs of hexadecimal digits, without prefix.
NB_USHORT v0_dialstring_hex_to_binary(NB_BYTE* binary, NB_USHORT* binary_len, const char* hex,
                                      NB_USHORT hex_len);
// Text to show: with hexadecimal set, "0x" and digits (capacity 2 + 2 per byte), else text with
// escapes (5 per byte).
NB_USHORT v0_dialstring_binary_to_text(char* ascii, NB_USHORT* ascii_len, const NB_BYTE* binary,
                                       NB_USHORT binary_len, bool hexadecimal);
// Two lower-case digits per byte (capacity 2 per byte).
NB_USHORT v0_dialstring_binary_to_hex(char* hex, NB_USHORT* hex_len, const NB_BYTE* binary,
                                      NB_USHORT binary_len);
