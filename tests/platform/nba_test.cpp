#include "nba/nba.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace {

TEST(Handles, AreNotReusedForALongTime) {
    ASSERT_NE(nba_hm_initialise(), 0);
    const std::size_t before = nba_handle_count();
    int object = 0;
    int other = 0;
    std::set<NB_HANDLE> seen;
    for (int i = 0; i < 100000; ++i) {
        const NB_HANDLE handle = nba_create_handle(&object);
        ASSERT_NE(handle, 0u);
        ASSERT_TRUE(seen.insert(handle).second);
        nba_destroy_handle(handle);
        ASSERT_EQ(nba_validate_handle(handle), nullptr);
    }
    std::vector<NB_HANDLE> many;
    for (int i = 0; i < 100000; ++i) {
        many.push_back(nba_create_handle(i % 2 == 0 ? &object : &other));
    }
    for (int i = 0; i < 100000; ++i) {
        ASSERT_EQ(nba_validate_handle(many[static_cast<std::size_t>(i)]),
                  i % 2 == 0 ? &object : &other);
        nba_destroy_handle(many[static_cast<std::size_t>(i)]);
    }
    const NB_HANDLE kept = nba_create_handle(&other);
    nba_destroy_handle(*seen.begin()); // a stale one ends nothing
    EXPECT_EQ(nba_validate_handle(kept), &other);
    EXPECT_EQ(nba_handle_count(), before + 1);
    for (const NB_HANDLE wrong : {0u, kept + 1, kept ^ 0x80000000, 0xFFFFFFFFu}) {
        EXPECT_EQ(nba_validate_handle(wrong), nullptr);
    }
    nba_destroy_handle(kept);
    EXPECT_EQ(nba_create_handle(nullptr), 0u);
}

struct Entry {
    NBA_QUEUE link{};
};

std::vector<void*> owners(const NBA_QUEUE& queue) {
    std::vector<void*> result;
    for (const NBA_QUEUE* link = queue.next; link->owner != nullptr; link = link->next) {
        result.push_back(link->owner);
    }
    return result;
}

TEST(Queue, KeepsOrderAndLetsLinksMove) {
    NBA_QUEUE first;
    NBA_QUEUE second;
    nba_init_q(&first);
    nba_init_q(&second);
    Entry a, b, c;
    EXPECT_EQ(nba_get_q_head(&first), nullptr);
    nba_remove_from_q(&a.link); // zero-filled: unlinked
    nba_add_to_q_tail(&first, &a.link, &a);
    nba_add_to_q_tail(&first, &b.link, &b);
    nba_add_to_q_head(&first, &c.link, &c);
    EXPECT_EQ(owners(first), (std::vector<void*>{&c, &a, &b}));
    nba_add_to_q_tail(&second, &a.link, &a); // from one queue to the other
    nba_remove_from_q(&b.link);
    nba_remove_from_q(&b.link);
    EXPECT_EQ(owners(first), (std::vector<void*>{&c}));
    EXPECT_EQ(nba_get_q_head(&second), &a);
    nba_remove_from_q(&c.link);
    EXPECT_TRUE(nba_q_empty(&first));
}

TEST(Ebcdic, KnownCharactersAndTheWholeWayBack) {
    char text[] = "AZaz09 $#@._-[]";
    nba_local_to_ebcdic(text, sizeof text - 1);
    EXPECT_STREQ(text, "\xC1\xE9\x81\xA9\xF0\xF9\x40\x5B\x7B\x7C\x4B\x6D\x60\xBA\xBB");
    std::string all;
    for (int code = 0; code < 256; ++code) {
        all += static_cast<char>(code);
    }
    std::string there = all;
    nba_local_to_ebcdic(there.data(), there.size());
    EXPECT_EQ(std::set<char>(there.begin(), there.end()).size(), 256u);
    nba_ebcdic_to_local(there.data(), there.size());
    EXPECT_EQ(there, all);
}

TEST(Text, CopiesWholeCharactersOnly) {
    const std::string locale = std::setlocale(LC_CTYPE, nullptr);
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    const struct {
        const char* source;
        std::size_t n;
        const char* expected;
    } cases[] = {
        {"abc", 4, "abc"},     {"abc", 3, "ab"},
        {"abc", 1, ""},        {"a\xC3\xA4", 4, "a\xC3\xA4"},
        {"a\xC3\xA4", 3, "a"}, {"a\xFF\xC3", 4, "a\xFF\xC3"}, // bytes that are no characters
    };
    for (const auto& test : cases) {
        char copy[8] = "#######";
        EXPECT_EQ(v0_mb_strncpy(copy, test.source, test.n), copy);
        EXPECT_STREQ(copy, test.expected) << test.source << ' ' << test.n;
    }
    std::setlocale(LC_CTYPE, locale.c_str());
}

// A directory of its own, for files.
class Files : public testing::Test {
protected:
    void SetUp() override {
        directory = "/tmp/tessaly-test-XXXXXX";
        ASSERT_NE(mkdtemp(directory.data()), nullptr);
    }
    void TearDown() override { std::filesystem::remove_all(directory); }
    std::string directory;
};

class Log : public Files {
protected:
    void SetUp() override {
        Files::SetUp();
        setenv("TESSALY_LOG", (directory + "/log").c_str(), 1);
    }
    void TearDown() override {
        setenv("TESSALY_LOG", "/dev/null", 1);
        ptrc.flags = 0;
        Files::TearDown();
    }
    // The records without their time.
    std::vector<std::string> records() const {
        std::ifstream file(directory + "/log");
        std::vector<std::string> result;
        for (std::string line; std::getline(file, line);) {
            EXPECT_GT(line.size(), 25u);
            EXPECT_EQ(line[10], 'T');
            EXPECT_EQ(line[23], 'Z');
            result.push_back(line.substr(25));
        }
        return result;
    }
};

TEST_F(Log, OneLinePerRecordWithItsArguments) {
    const char name[] = {'\xD5', '\xC5', '\xE3', '\x40'};
    nba_pd_print_problem(0x40020005, 4, "s", "a\n\"b\"");
    nba_pd_print_exception(0x40020004, 8, "x ca es", 0x1400D, 4, "AB  ", 4, name);
    nba_pd_print_exception(0x40020002, -1, "c b  i x l\tlx", 'q', 511, 70000, 31, 74565, 74565);
    nba_pd_print_exception(1, 0, "bad s", 1, "never read");
    const std::string longest(5000, 'x');
    nba_pd_print_problem(1, 0, "s", longest.c_str());
    v0_assert("file.cpp", 12, "vcb->opcode == NAP_DEFINE_LS");
    const std::vector<std::string> lines = records();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0], "problem 0x40020005 4 \"a\\x0a\\\"b\\\"\"");
    EXPECT_EQ(lines[1], "exception 0x40020004 8 0x400d \"AB\" \"NET\"");
    EXPECT_EQ(lines[2], "exception 0x40020002 -1 \"q\" ff 4464 0x001f 74565 0x00012345");
    EXPECT_EQ(lines[3], "exception 0x00000001 0 (bad descriptor)");
    EXPECT_EQ(lines[5], "assertion file.cpp:12 \"vcb->opcode == NAP_DEFINE_LS\"");
}

TEST_F(Log, TraceControlSilencesExceptionsOnly) {
    setenv("TESSALY_TRACE_CONTROL", "0x01", 1);
    ASSERT_NE(nba_hm_initialise(), 0);
    unsetenv("TESSALY_TRACE_CONTROL");
    nba_pd_print_exception(1, 0, "");
    nba_pd_print_problem(2, 0, "");
    EXPECT_EQ(records(), std::vector<std::string>{"problem 0x00000002 0"});
}

class Catalogue : public Files {
protected:
    void SetUp() override {
        Files::SetUp();
        setenv("NLSPATH", (directory + "/none/%N:" + directory + "/%L/%N").c_str(), 1);
    }
    void TearDown() override {
        unsetenv("NLSPATH");
        unsetenv("LANG");
        Files::TearDown();
    }
    void make(const std::string& locale, const std::string& text) {
        std::filesystem::create_directory(directory + '/' + locale);
        std::ofstream(directory + "/source") << "$set 2\n$quote \"\n1 \"" << text << "\"\n3 \"\"\n";
        const std::string command =
            "gencat " + directory + '/' + locale + "/sna.cat " + directory + "/source";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }
    // Message 1 in the language of the environment, "-" without a catalogue.
    static std::string first_message() {
        NBA_CATALOGUE catalogue;
        if (v0_initialise_message_catalog(&catalogue) != 0) {
            EXPECT_EQ(catalogue, -1);
            return "-";
        }
        const char* text = nullptr;
        v0_get_message(2, 1, &text, catalogue);
        const std::string result = text != nullptr ? text : "missing";
        v0_close_message_catalog(&catalogue);
        EXPECT_EQ(catalogue, -1);
        return result;
    }
};

TEST_F(Catalogue, IsFoundByLanguageAndFallsBackToC) {
    setenv("LANG", "de_DE", 1);
    EXPECT_EQ(first_message(), "-");
    make("C", "english");
    EXPECT_EQ(first_message(), "english");
    make("de_DE", "german");
    EXPECT_EQ(first_message(), "german");
    setenv("LANG", "C", 1);
    EXPECT_EQ(first_message(), "english");
    setenv("LANG", "../de_DE", 1);
    EXPECT_EQ(first_message(), "english");
    setenv("LANG", "de_DE", 1);
    std::ofstream(directory + "/de_DE/sna.cat") << "damaged";
    EXPECT_EQ(first_message(), "english");
}

TEST_F(Catalogue, AnEmptyTextIsNotAMissingOne) {
    make("C", "text");
    NBA_CATALOGUE catalogue;
    ASSERT_EQ(v0_initialise_message_catalog(&catalogue), 0);
    const char* text = nullptr;
    v0_get_message(2, 3, &text, catalogue);
    EXPECT_STREQ(text, "");
    v0_get_message(2, 2, &text, catalogue);
    EXPECT_EQ(text, nullptr);
    v0_get_message(6, 1, &text, catalogue);
    EXPECT_EQ(text, nullptr);
    v0_close_message_catalog(&catalogue);
    v0_get_message(2, 1, &text, catalogue);
    EXPECT_EQ(text, nullptr);
}

} // namespace
