#include "store/compare.h"

#include "common/ip_address.h"
#include "common/names.h"
#include "nof/ipbridge.h"
#include "nof/lu62.h"
#include "nof/tn3270.h"
#include "store/records.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

using Bytes = const NB_BYTE*;

Bytes bytes(const void* key) {
    return static_cast<Bytes>(key);
}

int sign(long difference) {
    return difference < 0 ? -1 : difference > 0 ? 1 : 0;
}

template <typename T> T load(const void* from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <typename T> int compare_numbers(const void* a, const void* b) {
    const T left = load<T>(a);
    const T right = load<T>(b);
    return left < right ? -1 : left > right ? 1 : 0;
}

const NB_BYTE* local_of_ebcdic() {
    static const std::array<NB_BYTE, 256> table = [] {
        std::array<NB_BYTE, 256> local;
        for (std::size_t i = 0; i < local.size(); ++i) {
            local[i] = static_cast<NB_BYTE>(i);
        }
        nba_ebcdic_to_local(local.data(), local.size());
        return local;
    }();
    return table.data();
}

constexpr NB_BYTE upper(NB_BYTE c) {
    return c >= 'a' && c <= 'z' ? static_cast<NB_BYTE>(c - 'a' + 'A') : c;
}

// Both character sets map one to one, so names differ first where their bytes do.
int compare_ebcdic(Bytes a, Bytes b, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) {
        if (a[i] != b[i]) {
            const NB_BYTE* local = local_of_ebcdic();
            return local[a[i]] - local[b[i]];
        }
    }
    return 0;
}

// The same for 8 bytes at a time: the first differing byte is found in one step.
int compare_ebcdic8(Bytes a, Bytes b) {
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
    const auto difference = load<std::uint64_t>(a) ^ load<std::uint64_t>(b);
    if (difference == 0) {
        return 0;
    }
    const int i = __builtin_ctzll(difference) / 8;
    const NB_BYTE* local = local_of_ebcdic();
    return local[a[i]] - local[b[i]];
}

template <std::size_t Width> int compare_local(const void* a, const void* b) {
    const Bytes left = bytes(a);
    const Bytes right = bytes(b);
    for (std::size_t i = 0; i < Width; ++i) {
        if (const int difference = upper(left[i]) - upper(right[i]); difference != 0) {
            return difference;
        }
    }
    return std::memcmp(left, right, Width);
}

// Wide names may be terminated or padded with blanks.
template <std::size_t Width> int compare_text(const void* a, const void* b) {
    const Bytes left = bytes(a);
    const Bytes right = bytes(b);
    bool left_ended = false;
    bool right_ended = false;
    int case_difference = 0;
    for (std::size_t i = 0; i < Width; ++i) {
        left_ended = left_ended || left[i] == 0;
        right_ended = right_ended || right[i] == 0;
        if (left_ended && right_ended) {
            break;
        }
        const NB_BYTE l = left_ended ? ' ' : left[i];
        const NB_BYTE r = right_ended ? ' ' : right[i];
        if (const int difference = upper(l) - upper(r); difference != 0) {
            return difference;
        }
        if (case_difference == 0) {
            case_difference = l - r;
        }
    }
    return case_difference;
}

std::size_t length_without_blanks(Bytes name, std::size_t width) {
    while (width > 0 && name[width - 1] == EBCDIC_BLANK) {
        --width;
    }
    return width;
}

// Case-insensitive in the local character set, then with case.
int compare_ebcdic_text(Bytes a, Bytes b, std::size_t width) {
    const NB_BYTE* local = local_of_ebcdic();
    for (std::size_t i = 0; i < width; ++i) {
        if (const int difference = upper(local[a[i]]) - upper(local[b[i]]); difference != 0) {
            return difference;
        }
    }
    return compare_ebcdic(a, b, width);
}

} // namespace

int vga_compare_asc4(const void* a, const void* b) {
    return compare_local<4>(a, b);
}
int vga_compare_asc8(const void* a, const void* b) {
    return compare_local<8>(a, b);
}
int vga_compare_asc10(const void* a, const void* b) {
    return compare_local<10>(a, b);
}
int vga_compare_asc14(const void* a, const void* b) {
    return compare_local<14>(a, b);
}
int vga_compare_asc16(const void* a, const void* b) {
    return compare_local<16>(a, b);
}
int vga_compare_user_name(const void* a, const void* b) {
    return compare_text<32>(a, b);
}
int vga_compare_node_name(const void* a, const void* b) {
    return compare_text<128>(a, b);
}

int vga_compare_ebc8(const void* a, const void* b) {
    return compare_ebcdic8(bytes(a), bytes(b));
}
int vga_compare_ebc10(const void* a, const void* b) {
    return compare_ebcdic_text(bytes(a), bytes(b), 10);
}
int vga_compare_ebc17(const void* a, const void* b) {
    return compare_ebcdic(bytes(a), bytes(b), FQ_NAME_LENGTH);
}

int vga_compare_lu(const void* a, const void* b) {
    const auto* left = static_cast<const vga_lu_key*>(a);
    const auto* right = static_cast<const vga_lu_key*>(b);
    const int difference = compare_ebcdic8(left->lu_name, right->lu_name);
    if (difference != 0 || left->node_name == right->node_name) {
        return difference;
    }
    return vga_compare_node_name(left->node_name, right->node_name);
}

int vga_compare_user_status(const void* a, const void* b) {
    const auto* left = static_cast<const vga_user_status_key*>(a);
    const auto* right = static_cast<const vga_user_status_key*>(b);
    if (const int user = vga_compare_user_name(left->user_name, right->user_name); user != 0) {
        return user;
    }
    if (const int node = vga_compare_node_name(left->node_name, right->node_name); node != 0) {
        return node;
    }
    return std::memcmp(left->lu_name, right->lu_name, sizeof left->lu_name);
}

int vga_compare_tp_names(const void* a, const void* b) {
    const Bytes left = bytes(a);
    const Bytes right = bytes(b);
    if (std::memcmp(left, right, TP_NAME_LENGTH) == 0) {
        return 0;
    }
    const bool left_hex = vga_hex_tp_name(left);
    const bool right_hex = vga_hex_tp_name(right);
    if (left_hex != right_hex) {
        return left_hex ? 1 : -1;
    }
    if (!left_hex) {
        return compare_ebcdic_text(left, right, TP_NAME_LENGTH);
    }
    const std::size_t left_length = length_without_blanks(left, TP_NAME_LENGTH);
    const std::size_t right_length = length_without_blanks(right, TP_NAME_LENGTH);
    const int difference = std::memcmp(left, right, std::min(left_length, right_length));
    return difference != 0 ? difference
                           : sign(static_cast<long>(left_length) - static_cast<long>(right_length));
}

int vga_compare_rem_plu(const void* a, const void* b) {
    const auto* left = static_cast<const vga_rem_plu_key*>(a);
    const auto* right = static_cast<const vga_rem_plu_key*>(b);
    const int difference = std::memcmp(left->plu_name, right->plu_name, FQ_NAME_LENGTH);
    return difference != 0 ? difference : sign(left->number - right->number);
}

int vga_compare_directory_entries(const void* a, const void* b) {
    const auto* left = static_cast<const DIRECTORY_ENTRY*>(a);
    const auto* right = static_cast<const DIRECTORY_ENTRY*>(b);
    const int difference = std::memcmp(left->resource_name, right->resource_name, FQ_NAME_LENGTH);
    return difference != 0 ? difference : sign(left->resource_type - right->resource_type);
}

int vga_compare_lu62_timeouts(const void* a, const void* b) {
    const auto* left = static_cast<const vga_lu62_timeout_key*>(a);
    const auto* right = static_cast<const vga_lu62_timeout_key*>(b);
    const int difference = std::memcmp(left->resource_name, right->resource_name, FQ_NAME_LENGTH);
    return difference != 0 ? difference : sign(*left->resource_type - *right->resource_type);
}

int vga_compare_rem_sess(const void* a, const void* b) {
    return std::memcmp(a, b, sizeof(vga_rem_sess_key));
}

int vga_compare_ip_address(const void* a, const void* b) {
    return std::memcmp(static_cast<const NAP_IP_ADDRESS*>(a)->address,
                       static_cast<const NAP_IP_ADDRESS*>(b)->address,
                       sizeof(NAP_IP_ADDRESS::address));
}

int vga_compare_client_address(const void* a, const void* b) {
    const auto* left = static_cast<const TN3270_CLIENT_KEY*>(a);
    const auto* right = static_cast<const TN3270_CLIENT_KEY*>(b);
    const auto is_default = [](const TN3270_CLIENT_KEY* key) {
        return key->default_record != 0 ||
               std::strncmp(key->address, "<DEFAULT>", sizeof key->address) == 0;
    };
    const bool left_default = is_default(left);
    const bool right_default = is_default(right);
    if (left_default || right_default) {
        return right_default - left_default;
    }
    return std::strncmp(left->address, right->address, sizeof left->address);
}

int vga_compare_tn_redirect(const void* a, const void* b) {
    const auto* left = static_cast<const TN_REDIRECT_KEY*>(a);
    const auto* right = static_cast<const TN_REDIRECT_KEY*>(b);
    const bool left_default = left->default_record != 0;
    const bool right_default = right->default_record != 0;
    if (left_default != right_default) {
        return right_default - left_default;
    }
    if (!left_default) {
        const int difference =
            std::strncmp(left->client_address, right->client_address, sizeof left->client_address);
        if (difference != 0) {
            return difference;
        }
    }
    return sign(left->client_port - right->client_port);
}

int vga_compare_ipbridge_appcip_sess(const void* a, const void* b) {
    constexpr std::size_t number_at = 2 * FQ_NAME_LENGTH;
    static_assert(offsetof(IPBRIDGE_SESSION, number) - offsetof(IPBRIDGE_SESSION, lu_name) ==
                  number_at);
    const int difference = compare_ebcdic(bytes(a), bytes(b), number_at);
    return difference != 0 ? difference
                           : compare_numbers<NB_ULONG>(bytes(a) + number_at, bytes(b) + number_at);
}

int vga_compare_sl_sec(const void* a, const void* b) {
    return compare_ebcdic(bytes(a), bytes(b), sizeof(vga_sl_sec_key));
}

int vga_compare_rtp_conn(const void* a, const void* b) {
    return std::memcmp(a, b, 8);
}
int vga_compare_tp_load_info(const void* a, const void* b) {
    return std::memcmp(a, b, TP_NAME_LENGTH + 8);
}
int vga_compare_ushort(const void* a, const void* b) {
    return compare_numbers<NB_USHORT>(a, b);
}
int vga_compare_ulong(const void* a, const void* b) {
    return compare_numbers<NB_ULONG>(a, b);
}
int vga_compare_byte(const void* a, const void* b) {
    return *bytes(a) - *bytes(b);
}
