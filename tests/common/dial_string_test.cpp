#include "common/dial_string.h"

#include "nba/nba.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Result {
    int code;
    std::string output;
    bool operator==(const Result&) const = default;
};

Result to_binary(const std::string& text, NB_USHORT capacity = 100) {
    std::string output(capacity, '?');
    const int code =
        v0_dialstring_text_to_binary(reinterpret_cast<NB_BYTE*>(output.data()), &capacity,
                                     text.data(), static_cast<NB_USHORT>(text.size()));
    return {code, output.substr(0, capacity)};
}

Result to_text(const std::string& binary, bool hexadecimal, NB_USHORT capacity) {
    std::string output(capacity, '?');
    const int code = v0_dialstring_binary_to_text(
        output.data(), &capacity, reinterpret_cast<const NB_BYTE*>(binary.data()),
        static_cast<NB_USHORT>(binary.size()), hexadecimal);
    return {code, output.substr(0, capacity)};
}

TEST(DialString, TextToBinary) {
    using namespace std::string_literals;
    const struct {
        std::string text;
        Result result;
    } cases[] = {
        {"", {0, ""}},
        {"5", {0, "5"}},
        {"T 555-0100", {0, "T 555-0100"}},
        {"/CR//LF/", {0, "\r\n"}},
        {"a//b", {0, "a/b"}},
        {"/DEL/x/NUL//SP/", {0, "\x7Fx\0 "s}},
        {"/200//0//13/", {0, "\xC8\0\r"s}},
        {"/255/", {0, "\xFF"}},
        {"/256/", {1, ""}},
        {"ab/99999999999999999999/", {3, "ab"}},
        {"/cr/", {1, ""}},
        {"x/XYZ/", {2, "x"}},
        {"x/CR", {2, "x"}},
        {"x/", {2, "x"}},
        {"/-1/", {1, ""}},
        {"0x", {0, ""}},
        {"0x0aFf", {0, "\x0A\xFF"}},
        {"0X31", {0, "1"}},
        {"0x1", {3, ""}},
        {"0x12g4", {5, "\x12"}},
        {"0x124g", {6, "\x12"}},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(to_binary(each.text), each.result) << each.text;
    }
    EXPECT_EQ(to_binary("123", 2), (Result{4, "12"}));
    EXPECT_EQ(to_binary("0x3132", 1), (Result{7, "1"}));
}

TEST(DialString, BinaryToText) {
    const std::string binary("\xC8\x7F \x0D/A", 6);
    EXPECT_EQ(to_text(binary, false, 30), (Result{0, "/200//DEL/ /CR///A"}));
    EXPECT_EQ(to_text(binary, true, 14), (Result{0, "0xc87f200d2f41"}));
}

// Every byte comes back, in either form, and none needs more room than the bound says.
TEST(DialString, RoundTrip) {
    const std::size_t asserts = nba_assert_count();
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        all += one;
        EXPECT_EQ(to_binary(to_text(one, false, 5).output), (Result{0, one})) << byte;
    }
    EXPECT_EQ(to_binary(to_text(all, false, 5 * 256).output, 256), (Result{0, all}));
    EXPECT_EQ(to_binary(to_text(all, true, 2 + 2 * 256).output, 256), (Result{0, all}));
    EXPECT_EQ(nba_assert_count(), asserts);
}

// Too little room is the caller's mistake; nothing is written outside of it.
TEST(DialString, ShortOutput) {
    const std::size_t asserts = nba_assert_count();
    EXPECT_EQ(to_text("A\x01", false, 3), (Result{3, "A"}));
    EXPECT_STREQ(nba_last_assert(), "*ascii_len >= (NB_USHORT)(5 * binary_len)");
    EXPECT_EQ(to_text("AB", true, 5), (Result{3, "0x41"}));
    EXPECT_STREQ(nba_last_assert(), "*hex_len >= (NB_USHORT)(2 * binary_len)");
    EXPECT_EQ(to_text("AB", true, 1), (Result{3, ""}));
    EXPECT_EQ(nba_assert_count(), asserts + 2);
}

} // namespace
