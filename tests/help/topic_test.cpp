#include <gtest/gtest.h>

#include "platform/help/topic.h"
#include "platform/help/volume.h"

#include "kit/process.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

namespace {

// A topic in one line: blocks as letter and text, links as <target|text>.
std::string shape(const HELP_TOPIC& topic) {
    std::string result = topic.title;
    for (const HELP_BLOCK& block : topic.blocks) {
        result += std::string(" /") + "THPIFN"[static_cast<std::size_t>(block.kind)] + ":";
        for (const HELP_SPAN& span : block.spans) {
            const HELP_LINK& link = span.link;
            if (link.kind == HELP_LINK_KIND::NONE) {
                result += span.text;
            } else {
                result += (link.kind == HELP_LINK_KIND::MAN_PAGE ? "<man " : "<") +
                          (link.volume.empty() ? "" : link.volume + ":") + link.location + "|" +
                          span.text + ">";
            }
        }
    }
    return topic.same.empty() ? result : "same " + topic.same;
}

TEST(Topic, IsReadInAllItsPartsAndMalformedOnesAsFarAsTheyGo) {
    const struct {
        const char* file;
        const char* shape;
        std::vector<int> problems; // their lines
    } cases[] = {
        {"= A title\nOne\ntwo.\n\nThree.\n", "A title /P:One two. /P:Three.", {}},
        {"= T\r\nOne\r\n\r\n== Head\r\ntwo", "T /P:One /H:Head /P:two", {}},
        {"= T\n* one\n  more\n* two\nafter", "T /I:one more /I:two /P:after", {}},
        {"= T\nA {noded|Node\nparameters}.", "T /P:A <noded|Node parameters>.", {}},
        {"= T\n{Help4Help:_hometopic|help}{man:ls|ls(1)}",
         "T /P:<Help4Help:_hometopic|help><man ls|ls(1)>",
         {}},
        {"= T\n{ noded } {man:printf(3)}", "T /P:<noded|noded> <man printf(3)|man:printf(3)>", {}},
        {"= T\n@include other\nmore", "T /N:other /P:more", {}},
        {"@same other\n= T\nignored", "same other", {}},
        {"", "", {0}},
        {"text only", " /P:text only", {1}},
        {"\n\n  \n", "", {3}},
        {"= T\nan {open link", "T /P:an {open link", {2}},
        {"= T\n{a {b|c}", "T /P:{a <b|c>", {2}},
        {"= T\n{} {|x} {a|} {../a|x} {a:b:c|x} {:a|x}",
         "T /P:{} {|x} {a|} {../a|x} {a:b:c|x} {:a|x}",
         {2, 2, 2, 2, 2, 2}},
        {"= T\n{man:-rf|x} {man:a;b|x} {man:a(|x}",
         "T /P:{man:-rf|x} {man:a;b|x} {man:a(|x}",
         {2, 2, 2}},
        {"= T\n@what is it\n@include\n@include ../x\n= Late", "T /H:Late", {2, 3, 4, 5}},
        {"= T\n@same late", "T", {2}},
        {"= T\n\xff\x01 a\xc3\xa9 \xc3", "T /P:?? a\xc3\xa9 ?", {2}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.file);
        std::vector<HELP_PROBLEM> problems;
        EXPECT_EQ(shape(help_parse(each.file, &problems)), each.shape);
        std::vector<int> lines;
        for (const HELP_PROBLEM& problem : problems) {
            lines.push_back(problem.line);
        }
        EXPECT_EQ(lines, each.problems);
    }
}

TEST(Topic, AnyBytesAreRead) {
    const std::string seed =
        "= T\n== H\n* item {a|b} \n  more\n@include x\n{V:l|t} {man:m(1)}\n\n\x1b";
    std::mt19937 random(1);
    for (int round = 0; round < 20'000; ++round) {
        std::string file = seed;
        for (int changes = 0; changes < 6; ++changes) {
            const std::size_t at = random() % file.size();
            file[at] = random() % 2 ? static_cast<char>(random()) : seed[random() % seed.size()];
            if (random() % 4 == 0) {
                file.erase(at, 1 + random() % 3);
            }
            file += 'x';
        }
        std::vector<HELP_PROBLEM> problems;
        const HELP_TOPIC topic = help_parse(file, &problems);
        for (const HELP_BLOCK& block : topic.blocks) {
            ASSERT_FALSE(block.spans.empty());
        }
        help_plain_text(topic, 20);
        help_parse_manual("x", file);
    }
}

TEST(Topic, ManualPagesLoseWhatIsMeantForATerminal) {
    EXPECT_EQ(shape(help_parse_manual("ls", "\n\nN\bNA\bA  \n\n\n\x1b[1mbold\x1b[0m _\bu\n")),
              "Manual page ls /F:NA /F: /F:bold u");
}

TEST(Topic, PlainTextIsWrapped) {
    std::vector<HELP_PROBLEM> problems;
    const HELP_TOPIC topic = help_parse("= T\naa bb {x|cc} dd\n* ee ff gg\n* hh", &problems);
    EXPECT_EQ(help_plain_text(topic, 8), "T\n\naa bb cc\ndd\n\n* ee ff\n  gg\n* hh\n");
}

class Volume : public testing::Test {
protected:
    const std::filesystem::path base = kit::scratch() + "/volumes";
    const std::string log = kit::scratch() + "/log";

    void SetUp() override {
        std::filesystem::remove_all(base);
        std::filesystem::remove(log);
        std::filesystem::create_directories(base / "V");
        setenv("TESSALY_HELP", base.c_str(), 1);
        setenv("TESSALY_LOG", log.c_str(), 1);
    }
    void write(const std::string& location, const std::string& text) {
        std::ofstream(base / "V" / (location + ".topic")) << text;
    }
    std::string logged() {
        std::ifstream file(log);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(Volume, IncludesAndSameLocationsAreFollowedButNotForEver) {
    write("a", "= A\nstart\n@include b\nend");
    write("b", "= B\nmiddle\n@include c");
    write("c", "= C\ndeep");
    write("d", "@same a");
    write("loop", "= Loop\nbody\n@include loop");
    write("x", "@same y");
    write("y", "@same x");
    write("half", "= Half\nbody\n@include nowhere");
    HELP_TOPIC topic;
    EXPECT_TRUE(help_load("V", "d", &topic));
    EXPECT_EQ(shape(topic), "A /P:start /P:middle /P:deep /P:end");
    EXPECT_TRUE(help_load("V", "loop", &topic));
    EXPECT_LT(topic.blocks.size(), 20u);
    EXPECT_FALSE(help_load("V", "x", &topic));
    EXPECT_TRUE(help_load("V", "half", &topic));
    EXPECT_EQ(shape(topic), "Half /P:body");
    EXPECT_NE(logged().find("nowhere"), std::string::npos) << logged();
}

TEST_F(Volume, WhatIsMissingSaysSoAndLeadsToTheContents) {
    write("bad", "no title {");
    for (const char* location : {"none", "../bad", "/etc/passwd", ".."}) {
        HELP_TOPIC topic;
        EXPECT_FALSE(help_load("V", location, &topic)) << location;
        EXPECT_NE(shape(topic).find(location), std::string::npos);
        EXPECT_NE(shape(topic).find("<_hometopic|"), std::string::npos);
        EXPECT_NE(logged().find(location), std::string::npos) << logged();
    }
    HELP_TOPIC topic;
    EXPECT_FALSE(help_load("../V", "bad", &topic));
    EXPECT_TRUE(help_load("V", "bad", &topic));
    EXPECT_EQ(topic.title, "bad");
    EXPECT_NE(logged().find("no title"), std::string::npos) << logged();
    std::filesystem::create_directory(base / "V" / "dir.topic");
    EXPECT_FALSE(help_load("V", "dir", &topic));
    write("large", "= Large\n" + std::string(3'000'000, 'x'));
    EXPECT_TRUE(help_load("V", "large", &topic));
    EXPECT_TRUE(help_index("W").empty());
    EXPECT_TRUE(help_contents("W").empty());
}

TEST_F(Volume, IndexIsByTitleAndContentsInTheOrderOfTheHomeTopic) {
    write("_hometopic", "= Home\n{b|Bees}\n== Group\n* {a|Ants} and {W:z|far}\n* {V:c|Cows}");
    write("a", "= the second");
    write("b", "= First");
    write("c", "= Zoo");
    write("same", "@same a");
    const auto text = [](const std::vector<HELP_ENTRY>& entries) {
        std::string result;
        for (const HELP_ENTRY& entry : entries) {
            result += entry.title + "=" + entry.location + " ";
        }
        return result;
    };
    EXPECT_EQ(text(help_index("V")), "First=b the second=a Zoo=c ");
    EXPECT_EQ(text(help_contents("V")), "Bees=b Group= Ants=a Cows=c ");
    HELP_TOPIC home;
    EXPECT_TRUE(help_load("V", "", &home));
    EXPECT_EQ(home.title, "Home");
}

// What the reader finds in the volumes that are delivered.
TEST(Volumes, OfTheConsoleAreReadWithoutFault) {
    const std::string data = TESSALY_SOURCE_DIR "/data/help";
    const std::string log = kit::scratch() + "/delivered";
    setenv("TESSALY_HELP", data.c_str(), 1);
    setenv("TESSALY_LOG", log.c_str(), 1);
    for (const std::string volume : {"Help4Tessaly", "Help4Help"}) {
        EXPECT_FALSE(help_contents(volume).empty()) << volume;
        for (const auto& file : std::filesystem::directory_iterator(data + "/" + volume)) {
            HELP_TOPIC topic;
            EXPECT_TRUE(help_load(volume, file.path().stem(), &topic)) << file.path();
        }
    }
    std::ifstream file(log);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "");
}

} // namespace
