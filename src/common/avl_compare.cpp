#include "common/avl.h"
#include "common/names.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

template <std::size_t Width> int compare_bytes(const void* a, const void* b) {
    const int order = std::memcmp(a, b, Width);
    return (order > 0) - (order < 0);
}

// Most keys are of 8 bytes: one comparison of two numbers.
template <> int compare_bytes<8>(const void* a, const void* b) {
    std::uint64_t x = 0;
    std::uint64_t y = 0;
    std::memcpy(&x, a, sizeof x);
    std::memcpy(&y, b, sizeof y);
    if constexpr (std::endian::native == std::endian::little) {
        x = __builtin_bswap64(x);
        y = __builtin_bswap64(y);
    }
    return (x > y) - (x < y);
}

template <std::size_t Width, char Blank> int length_difference(const void* a, const void* b) {
    const auto length = [](const void* name) {
        const char* text = static_cast<const char*>(name);
        return std::find(text, text + Width, Blank) - text;
    };
    return static_cast<int>(length(a) - length(b));
}

// Shorter EBCDIC names first, then the order of the local character set.
template <std::size_t Width> int compare_mib(const void* a, const void* b) {
    if (const int shorter = length_difference<Width, static_cast<char>(EBCDIC_BLANK)>(a, b)) {
        return shorter;
    }
    char local_a[Width];
    char local_b[Width];
    std::memcpy(local_a, a, Width);
    std::memcpy(local_b, b, Width);
    nba_ebcdic_to_local(local_a, Width);
    nba_ebcdic_to_local(local_b, Width);
    return compare_bytes<Width>(local_a, local_b);
}

} // namespace

int ntl_compare_byte(const void* a, const void* b) {
    return *static_cast<const std::uint8_t*>(a) - *static_cast<const std::uint8_t*>(b);
}

int ntl_compare_lfsid(const void* a, const void* b) {
    std::uint16_t x[2];
    std::uint16_t y[2];
    std::memcpy(x, a, sizeof x);
    std::memcpy(y, b, sizeof y);
    return x[1] != y[1] ? x[1] - y[1] : x[0] - y[0];
}

int ntl_compare_proc_id(const void* a, const void* b) {
    return compare_bytes<4>(a, b);
}
int ntl_compare_name(const void* a, const void* b) {
    return compare_bytes<SNA_NAME_LENGTH>(a, b);
}
int ntl_compare_fq_name(const void* a, const void* b) {
    return compare_bytes<FQ_NAME_LENGTH>(a, b);
}
int ntl_compare_tp_name(const void* a, const void* b) {
    return compare_bytes<TP_NAME_LENGTH>(a, b);
}

int ntl_compare_mib_ascii_sna_name(const void* a, const void* b) {
    const int shorter = length_difference<SNA_NAME_LENGTH, ' '>(a, b);
    return shorter != 0 ? shorter : compare_bytes<SNA_NAME_LENGTH>(a, b);
}

int ntl_compare_mib_sna_name(const void* a, const void* b) {
    return compare_mib<SNA_NAME_LENGTH>(a, b);
}
int ntl_compare_mib_fq_name(const void* a, const void* b) {
    return compare_mib<FQ_NAME_LENGTH>(a, b);
}
int ntl_compare_mib_tp_name(const void* a, const void* b) {
    return compare_mib<TP_NAME_LENGTH>(a, b);
}

int ntl_compare_fqpcid(const void* a, const void* b) {
    constexpr std::size_t identifier = 8;
    const int names = ntl_compare_mib_fq_name(static_cast<const char*>(a) + identifier,
                                              static_cast<const char*>(b) + identifier);
    return names != 0 ? names : compare_bytes<identifier>(a, b);
}
