#include "shell/messages.h"

#include "common/alloc.h"
#include "shell/exit_record.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

std::string print(const char* text, const char* descriptor, ...) {
    char output[2 * VGA_MESSAGE_BUFFER_SIZE];
    va_list arguments;
    va_start(arguments, descriptor);
    vga_print_msg_va(output, text, descriptor, arguments);
    va_end(arguments);
    return output;
}

std::string tab(const char* text) {
    char output[256];
    vga_tab_msg(output, text);
    return output;
}

std::string ebcdic(std::string text) {
    nba_local_to_ebcdic(text.data(), text.size());
    return text;
}

TEST(Formatter, PlacesArgumentsByPosition) {
    EXPECT_EQ(print("Node %1 in state %2%.", "s i", "NODE1", 3), "Node NODE1 in state 3.");
    EXPECT_EQ(print("%2 before %1", "s s", "one", "two"), "two before one");
    EXPECT_EQ(print("%1%%1", "s", "x"), "xx");
    EXPECT_EQ(print("[%3]", "s s", "a", "b"), "[]");
    EXPECT_EQ(print("[%0]", "s", "a"), "[]");
    EXPECT_EQ(print("[%1]", ""), "[]");
}

TEST(Formatter, ReadsPercentSigns) {
    EXPECT_EQ(print("100%%", ""), "100%");
    EXPECT_EQ(print("%a", ""), "a");
    EXPECT_EQ(print("end%", ""), "end");
    EXPECT_EQ(print("%1%%t26%x", "s", "a"), "a%t26%x");
    EXPECT_EQ(print("a%t5%b%t7c", ""), "a%t5%b%t7%c");
    EXPECT_EQ(print("a%tb", ""), "atb");
}

TEST(Formatter, ConvertsEveryKind) {
    EXPECT_EQ(print("%1", "c", 'Z'), "Z");
    EXPECT_EQ(print("%1", "b", 511), "ff");
    EXPECT_EQ(print("%1", "b", 7), "07");
    EXPECT_EQ(print("%1", "i", 0x12345), "9029");
    EXPECT_EQ(print("%1", "x", 0x1F), "0x001f");
    EXPECT_EQ(print("%1", "l", 4000000000u), "4000000000");
    EXPECT_EQ(print("%1", "lx", 74565), "0x00012345");
    EXPECT_EQ(print("[%1]", "ca", 8, "ABC"), "[ABC     ]");
    EXPECT_EQ(print("[%1]", "ca", 3, "ABCDEF"), "[ABC]");
    EXPECT_EQ(print("[%1]", "cs", 8, "ABC"), "[ABC]");
    EXPECT_EQ(print("[%1]", "cs", 8, "        "), "[]");
    const std::string name = ebcdic("LU1     ");
    EXPECT_EQ(print("[%1] [%2]", "ea es", 8, name.data(), 8, name.data()), "[LU1     ] [LU1]");
    EXPECT_EQ(print("[%1]", "s", static_cast<const char*>(nullptr)), "[]");
}

TEST(Formatter, TakesElevenArgumentsAndNoMore) {
    EXPECT_EQ(print("%11 %12", "i i i i i i i i i i i i", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12),
              "11 ");
}

TEST(Formatter, CutsWhatTheWorkAreaCannotHold) {
    const std::string longer(3000, 'x');
    EXPECT_EQ(print("%1%%2", "s s", longer.c_str(), "y"), std::string(VGA_MESSAGE_WORK_SIZE, 'x'));
    EXPECT_EQ(print("%1%%2", "ca s", 0xFFFF, "z", "y").size(), VGA_MESSAGE_WORK_SIZE);
}

TEST(Formatter, ReportsDescriptorsOutsideTheGrammar) {
    const std::size_t before = nba_assert_count();
    EXPECT_EQ(print("[%1]", "zz", 1), "[]");
    EXPECT_EQ(nba_assert_count(), before + 1);
    EXPECT_STREQ(nba_last_assert(), "format_type < NUM_VGA_FORMATS");
    EXPECT_EQ(print("[%1]", "long", 1), "[]");
    EXPECT_STREQ(nba_last_assert(), "format_len < VGA_FORMAT_LEN");
}

TEST(Columns, MarkersMoveTheWritePosition) {
    EXPECT_EQ(tab("ab%t5%c"), "ab   c");
    EXPECT_EQ(tab("abcdef%t3x"), "abcx");
    EXPECT_EQ(tab("abc%tx"), "x");
    EXPECT_EQ(tab("50%"), "50%");
    EXPECT_EQ(tab("%t2%a%t2%b"), "  b");
}

struct CatalogueTest : testing::Test {
    void SetUp() override {
        setenv("NLSPATH", TESSALY_BUILD_DIR "/data/nls/msg/C/%N", 1);
        setenv("TESSALY_LOG", "/dev/null", 1);
    }
    void TearDown() override {
        vga_fail_allocation(0);
        vga_free_messages();
        if (gvga_catalog != -1) {
            v0_close_message_catalog(&gvga_catalog);
            gvga_catalog = -1;
        }
        gvga_exit_code = 0;
        unsetenv("TESSALY_LOG");
    }
};

TEST_F(CatalogueTest, LoadsEveryMessage) {
    const std::size_t before = vga_allocations_in_use();
    ASSERT_TRUE(vga_load_messages());
    for (int number = 1; number < VGA_MESSAGE_COUNT; ++number) {
        ASSERT_NE(gvga_messages[number], nullptr) << number;
    }
    EXPECT_STRNE(gvga_messages[605], "");
    EXPECT_EQ(vga_allocations_in_use(), before + 1);
    vga_free_messages();
    EXPECT_EQ(vga_allocations_in_use(), before);
}

TEST_F(CatalogueTest, EndsStartUpWithoutACatalogueOrMemory) {
    for (unsigned long nth : {1ul, 2ul, 5ul}) {
        const std::size_t before = vga_allocations_in_use();
        vga_fail_allocation(nth);
        EXPECT_FALSE(vga_load_messages());
        vga_fail_allocation(0);
        EXPECT_EQ(gvga_exit_code, VGA_EXIT_START);
        EXPECT_EQ(vga_allocations_in_use(), before);
        v0_close_message_catalog(&gvga_catalog);
        gvga_exit_code = 0;
    }
    setenv("NLSPATH", "/nonexistent/%N", 1);
    EXPECT_FALSE(vga_load_messages());
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_START);
}

} // namespace
