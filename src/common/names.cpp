#include "common/names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>

namespace {

using FqName = std::array<NB_BYTE, FQ_NAME_LENGTH>;

// Digits are valid in a type A name, but not in front.
bool valid_behind_first(NB_BYTE ebcdic) {
    const NB_BYTE pair[] = {EBCDIC_A, ebcdic};
    return nba_check_ebcdic(NBA_TYPE_A, pair, sizeof pair) != 0;
}

// Position of the period, or the width when there is none.
std::size_t find_period(const NB_BYTE* fq_name) {
    return static_cast<std::size_t>(std::find(fq_name, fq_name + FQ_NAME_LENGTH, EBCDIC_PERIOD) -
                                    fq_name);
}

bool blank_from(const NB_BYTE* name, std::size_t from, std::size_t width) {
    return std::all_of(name + from, name + width,
                       [](NB_BYTE byte) { return byte == EBCDIC_BLANK; });
}

// The parts of a fully qualified name; lengths up to the first blank.
struct Parts {
    std::size_t period; // FQ_NAME_LENGTH when there is none
    std::size_t network_length;
    std::size_t name; // position
    std::size_t name_length;
    std::size_t name_width;
};

Parts parts_of(const NB_BYTE* fq_name) {
    Parts parts{};
    parts.period = find_period(fq_name);
    if (parts.period < FQ_NAME_LENGTH) {
        parts.network_length = ntl_name_length(fq_name, parts.period);
        parts.name = parts.period + 1;
    }
    parts.name_width = FQ_NAME_LENGTH - parts.name;
    parts.name_length = ntl_name_length(fq_name + parts.name, parts.name_width);
    return parts;
}

NTL_FQ_CODE check_parts(const NB_BYTE* fq_name, const Parts& parts) {
    const bool qualified = parts.period < FQ_NAME_LENGTH;
    const NB_BYTE* name = fq_name + parts.name;
    if (parts.period == 0) {
        return NTL_FQ_NETWORK_EMPTY;
    }
    if (parts.network_length > SNA_NAME_LENGTH) {
        return NTL_FQ_NETWORK_LONG;
    }
    if (parts.name_length == 0) {
        return NTL_FQ_NAME_EMPTY;
    }
    if (parts.name_length > SNA_NAME_LENGTH) {
        return NTL_FQ_NAME_LONG;
    }
    // A blank inside the network part is not a type A character.
    if (qualified && (parts.network_length < parts.period ||
                      nba_check_ebcdic(NBA_TYPE_A, fq_name, parts.period) == 0)) {
        return NTL_FQ_NETWORK_CHARACTER;
    }
    if (nba_check_ebcdic(NBA_TYPE_A, name, parts.name_length) == 0) {
        return NTL_FQ_NAME_CHARACTER;
    }
    if (!blank_from(name, parts.name_length, parts.name_width)) {
        return NTL_FQ_TRAILING;
    }
    return qualified ? NTL_FQ_QUALIFIED : NTL_FQ_UNQUALIFIED;
}

// At most one SNA name's worth of an EBCDIC field as local text without trailing blanks.
void local_name(char* result, const NB_BYTE* field, std::size_t width) {
    van_ebcdic_to_ascii(result, field, std::min(width, SNA_NAME_LENGTH));
}

} // namespace

std::size_t ntl_name_length(const NB_BYTE* name, std::size_t width) {
    return static_cast<std::size_t>(std::find(name, name + width, EBCDIC_BLANK) - name);
}

bool ntl_check_name(NBA_CHARACTER_SET set, const NB_BYTE* name, std::size_t width) {
    while (width > 0 && name[width - 1] == EBCDIC_BLANK) {
        --width;
    }
    return width == 0 || nba_check_ebcdic(set, name, width) != 0;
}

NTL_FQ_CODE ntl_check_fq_name(const NB_BYTE* fq_name) {
    return check_parts(fq_name, parts_of(fq_name));
}

NTL_FQ_CODE ntl_split_fq_name(const NB_BYTE* fq_name, NB_BYTE* network, NB_BYTE* name) {
    const Parts parts = parts_of(fq_name);
    const NTL_FQ_CODE code = check_parts(fq_name, parts);
    std::array<NB_BYTE, SNA_NAME_LENGTH> network_part{};
    std::array<NB_BYTE, SNA_NAME_LENGTH> name_part{};
    if (code == NTL_FQ_QUALIFIED) {
        network_part.fill(EBCDIC_BLANK);
        std::copy_n(fq_name, parts.network_length, network_part.begin());
    }
    if (code == NTL_FQ_QUALIFIED || code == NTL_FQ_UNQUALIFIED) {
        name_part.fill(EBCDIC_BLANK);
        std::copy_n(fq_name + parts.name, parts.name_length, name_part.begin());
    }
    std::copy(network_part.begin(), network_part.end(), network);
    std::copy(name_part.begin(), name_part.end(), name);
    return code;
}

std::size_t ntl_make_fq_name(const NB_BYTE* network, const NB_BYTE* name, NB_BYTE* fq_name) {
    FqName result;
    result.fill(EBCDIC_BLANK);
    const std::size_t period = ntl_name_length(network, SNA_NAME_LENGTH);
    std::copy_n(network, period, result.begin());
    result[period] = EBCDIC_PERIOD;
    std::copy_n(name, SNA_NAME_LENGTH, result.begin() + period + 1);
    std::copy(result.begin(), result.end(), fq_name);
    return period;
}

void ntl_change_local_name(const NB_BYTE* fq_name, const NB_BYTE* new_name, NB_BYTE* result) {
    FqName changed{};
    const std::size_t period = find_period(fq_name);
    const bool qualified = period < FQ_NAME_LENGTH;
    if (!qualified || period <= SNA_NAME_LENGTH) {
        const std::size_t kept = qualified ? period + 1 : 0;
        changed.fill(EBCDIC_BLANK);
        std::copy_n(fq_name, kept, changed.begin());
        std::copy_n(new_name, SNA_NAME_LENGTH, changed.begin() + kept);
    }
    std::copy(changed.begin(), changed.end(), result);
}

void ntl_make_internal_name(NB_BYTE* result, std::size_t result_width, const NB_BYTE* source,
                            std::size_t source_length) {
    std::size_t written = 0;
    for (std::size_t i = 0; i < source_length && written < result_width; ++i) {
        if (source[i] != EBCDIC_BLANK) {
            result[written++] = source[i];
        }
    }
    std::fill(result + written, result + result_width, EBCDIC_BLANK);
}

void vga_get_fq_name(char* result, const NB_BYTE* fq_name) {
    const std::size_t period = find_period(fq_name);
    *result = '\0';
    if (period < FQ_NAME_LENGTH) {
        local_name(result, fq_name + period + 1, FQ_NAME_LENGTH - period - 1);
    }
}

void vga_get_fq_net_name(char* result, const NB_BYTE* fq_name) {
    const std::size_t period = find_period(fq_name);
    *result = '\0';
    if (period < FQ_NAME_LENGTH) {
        local_name(result, fq_name, period);
    }
}

void vga_getw_fq_net_name(char* result, const NB_BYTE* fq_name) {
    if (find_period(fq_name) < FQ_NAME_LENGTH) {
        vga_get_fq_name(result, fq_name);
    } else {
        local_name(result, fq_name, FQ_NAME_LENGTH);
    }
}

void vga_strip_spaces(char* text) {
    std::size_t length = std::strlen(text);
    while (length > 0 && text[length - 1] == ' ') {
        --length;
    }
    text[length] = '\0';
}

void vga_pad_buffer(void* buffer, std::size_t width, char pad) {
    if (void* end = std::memchr(buffer, 0, width)) {
        char* const limit = static_cast<char*>(buffer) + width;
        std::fill(static_cast<char*>(end), limit, pad);
    }
}

void van_ascii_to_ebcdic(NB_BYTE* field, const char* text, std::size_t width) {
    const std::size_t length = strnlen(text, width);
    std::memmove(field, text, length);
    nba_local_to_ebcdic(field, length);
    std::fill(field + length, field + width, EBCDIC_BLANK);
}

void van_ebcdic_to_ascii(char* text, const NB_BYTE* field, std::size_t width) {
    std::memmove(text, field, width);
    nba_ebcdic_to_local(text, width);
    text[width] = '\0';
    vga_strip_spaces(text);
}

int vga_hex_digit(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : -1;
}

void v0_generate_ebcdic_a_name(const char* source, std::size_t length, NB_BYTE* result) {
    const std::size_t source_length = strnlen(source, length);
    std::size_t written = 0;
    if (source_length > 0 && source[0] >= '0' && source[0] <= '9') {
        result[written++] = EBCDIC_A;
    }
    for (std::size_t i = 0; i < source_length && written < length; ++i) {
        const bool lower = source[i] >= 'a' && source[i] <= 'z';
        auto byte = static_cast<NB_BYTE>(lower ? source[i] - 'a' + 'A' : source[i]);
        nba_local_to_ebcdic(&byte, 1);
        if (valid_behind_first(byte)) {
            result[written++] = byte;
        }
    }
    if (written == 0) {
        for (; written < source_length && source[written] != ' '; ++written) {
            result[written] =
                static_cast<NB_BYTE>('A' + static_cast<unsigned char>(source[written]) % 26);
        }
        nba_local_to_ebcdic(result, written);
    }
    std::fill(result + written, result + length, EBCDIC_BLANK);
}

bool vga_hex_tp_name(const NB_BYTE* tp_name) {
    std::array<unsigned char, TP_NAME_LENGTH> local;
    std::copy_n(tp_name, TP_NAME_LENGTH, local.begin());
    nba_ebcdic_to_local(local.data(), local.size());
    return !std::all_of(local.begin(), local.end(),
                        [](unsigned char character) { return std::isprint(character) != 0; });
}

bool vga_parse_hex_tp_name(const char* text, NB_BYTE* tp_name) {
    std::fill_n(tp_name, TP_NAME_LENGTH, EBCDIC_BLANK);
    for (std::size_t i = 0; i < TP_NAME_LENGTH && *text != '\0'; ++i, text += 2) {
        const int high = vga_hex_digit(text[0]);
        const int low = high < 0 ? -1 : vga_hex_digit(text[1]);
        if (low < 0) {
            return false;
        }
        tp_name[i] = static_cast<NB_BYTE>(high << 4 | low);
    }
    return true;
}

bool vga_valid_tp_name(const NB_BYTE* tp_name, bool service_tp, bool* warning) {
    constexpr std::size_t service_length = 4;
    constexpr NB_BYTE shift_out = 0x0E; // these two begin and end double-byte text
    constexpr NB_BYTE shift_in = 0x0F;

    *warning = false;
    const std::size_t length = ntl_name_length(tp_name, TP_NAME_LENGTH);
    if (!blank_from(tp_name, length, TP_NAME_LENGTH)) {
        return false;
    }
    if (!service_tp) {
        return true;
    }
    bool valid = length >= 1 && length <= service_length && tp_name[0] < EBCDIC_BLANK &&
                 tp_name[0] != shift_out && tp_name[0] != shift_in;
    if (valid) {
        std::array<NB_BYTE, service_length> tested{EBCDIC_A};
        std::copy(tp_name + 1, tp_name + length, tested.begin() + 1);
        valid = nba_check_ebcdic(NBA_TYPE_A, tested.data(), length) != 0;
    }
    *warning = !valid;
    return valid;
}
