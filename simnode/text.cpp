#include "simnode/text.h"

#include "nba/nba.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace simnode {

std::string local_text(const void* field, std::size_t length) {
    std::string text(static_cast<const char*>(field), length);
    text.resize(std::min(text.find('\0'), text.size()));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::string ebcdic_text(const NB_BYTE* field, std::size_t length) {
    std::string text(reinterpret_cast<const char*>(field), length);
    text.resize(std::min(text.find('\0'), text.size()));
    nba_ebcdic_to_local(text.data(), text.size());
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

void put_local(void* field, std::size_t length, std::string_view text) {
    std::memset(field, ' ', length);
    text.copy(static_cast<char*>(field), length);
}

void put_ebcdic(NB_BYTE* field, std::size_t length, std::string_view text) {
    put_local(field, length, text);
    nba_local_to_ebcdic(field, length);
}

void put_text(char* field, std::size_t length, std::string_view text) {
    std::memset(field, 0, length);
    text.copy(field, length - 1);
}

bool is_blank(const void* field, std::size_t length) {
    const auto* bytes = static_cast<const NB_BYTE*>(field);
    return std::all_of(bytes, bytes + length,
                       [](NB_BYTE b) { return b == 0 || b == 0x20 || b == 0x40; });
}

std::string raw(const void* field, std::size_t length) {
    return {static_cast<const char*>(field), length};
}

std::string to_hex(const void* bytes, std::size_t length) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text(2 * length, '0');
    for (std::size_t i = 0; i < length; ++i) {
        const NB_BYTE b = static_cast<const NB_BYTE*>(bytes)[i];
        text[2 * i] = digits[b >> 4];
        text[2 * i + 1] = digits[b & 15];
    }
    return text;
}

bool from_hex(std::string_view text, Bytes& bytes) {
    if (text.size() % 2 != 0) {
        return false;
    }
    bytes.clear();
    for (std::size_t i = 0; i < text.size(); i += 2) {
        NB_BYTE b = 0;
        const char* end = text.data() + i + 2;
        const auto [rest, error] = std::from_chars(text.data() + i, end, b, 16);
        if (error != std::errc() || rest != end) {
            return false;
        }
        bytes.push_back(b);
    }
    return true;
}

bool parse_number(std::string_view text, unsigned long& value) {
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    } else if (text.find_first_not_of("0123456789") != std::string_view::npos) {
        base = 16;
    }
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value, base);
    return error == std::errc() && rest == end && !text.empty();
}

std::string lower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return result;
}

std::string json_text(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<NB_BYTE>(c);
        if (c == '"' || c == '\\') {
            result += {'\\', c};
        } else if (byte < 0x20 || byte >= 0x7F) {
            result += "\\u00" + to_hex(&c, 1);
        } else {
            result += c;
        }
    }
    return result + '"';
}

} // namespace simnode
