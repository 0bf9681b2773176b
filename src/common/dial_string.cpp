#include "common/dial_string.h"

#include "common/assert.h"
#include "common/names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

const char* const v0_sdlc_escape_sequences[V0_SDLC_ESCAPES] = {
    "/NUL/", "/SOH/", "/STX/", "/ETX/", "/EOT/", "/ENQ/", "/ACK/", "/BEL/", "/BS/",
    "/HT/",  "/LF/",  "/VT/",  "/FF/",  "/CR/",  "/SO/",  "/SI/",  "/DLE/", "/DC1/",
    "/DC2/", "/DC3/", "/DC4/", "/NAK/", "/SYN/", "/ETB/", "/CAN/", "/EM/",  "/SUB/",
    "/ESC/", "/FS/",  "/GS/",  "/RS/",  "/US/",  "/SP/",  "/DEL/"};

namespace {

constexpr NB_BYTE delete_byte = 127;
constexpr std::size_t hex_prefix = 2; // "0x"

// Collects output up to the capacity and tells the caller how much there is.
template <typename T> class Output {
public:
    Output(T* buffer, NB_USHORT* length) : buffer(buffer), capacity(*length), length(length) {
        *length = 0;
    }
    // False when there is no room for all of the text, of which nothing is then written.
    bool put(std::string_view text) {
        if (text.size() > static_cast<std::size_t>(capacity - *length)) {
            return false;
        }
        std::copy(text.begin(), text.end(), buffer + *length);
        *length = static_cast<NB_USHORT>(*length + text.size());
        return true;
    }
    bool put_byte(int byte) {
        const char character = static_cast<char>(byte);
        return put({&character, 1});
    }

private:
    T* buffer;
    int capacity;
    NB_USHORT* length;
};

// The byte of an escape with its slashes, or -1.
int escaped_byte(std::string_view escape) {
    if (escape == "//") {
        return '/';
    }
    const std::string_view inner = escape.substr(1, escape.size() - 2);
    if (std::all_of(inner.begin(), inner.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        NB_BYTE value = 0;
        const auto read = std::from_chars(inner.data(), inner.data() + inner.size(), value);
        return read.ec == std::errc{} ? value : -1;
    }
    const auto* const end = v0_sdlc_escape_sequences + V0_SDLC_ESCAPES;
    const auto* const found = std::find(v0_sdlc_escape_sequences, end, escape);
    if (found == end) {
        return -1;
    }
    return found == end - 1 ? delete_byte : static_cast<int>(found - v0_sdlc_escape_sequences);
}

NB_USHORT position(std::size_t index) {
    return static_cast<NB_USHORT>(index + 1);
}

} // namespace

NB_USHORT v0_dialstring_text_to_binary(NB_BYTE* binary, NB_USHORT* binary_len, const char* text,
                                       NB_USHORT text_len) {
    if (text_len < hex_prefix || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) {
        return v0_dialstring_ascii_to_binary(binary, binary_len, text, text_len);
    }
    const NB_USHORT bad = v0_dialstring_hex_to_binary(
        binary, binary_len, text + hex_prefix, static_cast<NB_USHORT>(text_len - hex_prefix));
    return bad != 0 ? static_cast<NB_USHORT>(bad + hex_prefix) : bad;
}

NB_USHORT v0_dialstring_ascii_to_binary(NB_BYTE* binary, NB_USHORT* binary_len, const char* ascii,
                                        NB_USHORT ascii_len) {
    const std::string_view text(ascii, ascii_len);
    Output out(binary, binary_len);
    for (std::size_t i = 0; i < text.size();) {
        int byte = text[i];
        std::size_t next = i + 1;
        if (text[i] == '/') {
            const std::size_t closing = text.find('/', next);
            byte = closing == text.npos ? -1 : escaped_byte(text.substr(i, closing + 1 - i));
            if (byte < 0) {
                return position(i);
            }
            next = closing + 1;
        }
        if (!out.put_byte(byte)) {
            return position(text.size());
        }
        i = next;
    }
    return 0;
}

NB_USHORT v0_dialstring_hex_to_binary(NB_BYTE* binary, NB_USHORT* binary_len, const char* hex,
                                      NB_USHORT hex_len) {
    Output out(binary, binary_len);
    for (std::size_t i = 0; i < hex_len; i += 2) {
        const int high = vga_hex_digit(hex[i]);
        if (high < 0 || i + 1 == hex_len) {
            return position(i);
        }
        const int low = vga_hex_digit(hex[i + 1]);
        if (low < 0) {
            return position(i + 1);
        }
        if (!out.put_byte(high << 4 | low)) {
            return position(hex_len);
        }
    }
    return 0;
}

NB_USHORT v0_dialstring_binary_to_text(char* ascii, NB_USHORT* ascii_len, const NB_BYTE* binary,
                                       NB_USHORT binary_len, bool hexadecimal) {
    if (hexadecimal) {
        NB_USHORT digits = *ascii_len;
        Output out(ascii, ascii_len);
        if (!out.put("0x")) {
            return position(binary_len);
        }
        digits = static_cast<NB_USHORT>(digits - hex_prefix);
        const NB_USHORT bad =
            v0_dialstring_binary_to_hex(ascii + hex_prefix, &digits, binary, binary_len);
        *ascii_len = static_cast<NB_USHORT>(hex_prefix + digits);
        return bad;
    }
    VGA_ASSERT(*ascii_len >= (NB_USHORT)(5 * binary_len));
    Output out(ascii, ascii_len);
    for (std::size_t i = 0; i < binary_len; ++i) {
        const NB_BYTE byte = binary[i];
        bool room = false;
        if (byte < ' ') {
            room = out.put(v0_sdlc_escape_sequences[byte]);
        } else if (byte == delete_byte) {
            room = out.put(v0_sdlc_escape_sequences[V0_SDLC_ESCAPES - 1]);
        } else if (byte == '/') {
            room = out.put("//");
        } else if (byte < delete_byte) {
            room = out.put_byte(byte);
        } else {
            std::array<char, 5> decimal{'/'};
            char* end = std::to_chars(decimal.data() + 1, decimal.data() + 4, byte).ptr;
            *end++ = '/';
            room = out.put({decimal.data(), end});
        }
        if (!room) {
            return position(binary_len);
        }
    }
    return 0;
}

NB_USHORT v0_dialstring_binary_to_hex(char* hex, NB_USHORT* hex_len, const NB_BYTE* binary,
                                      NB_USHORT binary_len) {
    constexpr char digits[] = "0123456789abcdef";
    VGA_ASSERT(*hex_len >= (NB_USHORT)(2 * binary_len));
    Output out(hex, hex_len);
    for (std::size_t i = 0; i < binary_len; ++i) {
        const char pair[] = {digits[binary[i] >> 4], digits[binary[i] & 0x0F]};
        if (!out.put({pair, sizeof pair})) {
            return position(binary_len);
        }
    }
    return 0;
}
