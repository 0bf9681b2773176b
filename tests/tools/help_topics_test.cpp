// The help volumes as they are delivered: every topic is well formed, every jump leads somewhere,
// and whatever the program asks help for has a topic.
#include <gtest/gtest.h> // before the X headers, which define None

#include "ui/framework/dialog_table.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Texts = std::map<std::string, std::string>; // by "VOLUME:LOCATION"

const fs::path source_dir = TESSALY_SOURCE_DIR;
const std::string tool_volume = "Help4Tessaly:";
constexpr std::size_t longest_line = 100;

std::string text_of(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

Texts delivered_topics() {
    Texts topics;
    for (const auto& entry : fs::recursive_directory_iterator(source_dir / "data/help")) {
        if (entry.path().extension() == ".topic") {
            topics[entry.path().parent_path().filename().string() + ":" +
                   entry.path().stem().string()] = text_of(entry.path());
        }
    }
    return topics;
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

// ---- form of the topics ----

std::string word_after(const std::string& line, const char* keyword) {
    return line.starts_with(keyword) ? line.substr(std::string_view(keyword).size()) : "";
}
std::string included(const std::string& line) {
    return word_after(line, "@include ");
}

struct Checker {
    explicit Checker(const Texts& all) : topics(all) {
        for (const auto& [name, text] : topics) {
            check(name, lines_of(text));
        }
    }
    std::vector<std::string> faults;

    const Texts& topics;
    std::set<std::string> titles;

    void fault(const std::string& name, const std::string& what) {
        faults.push_back(name + ": " + what);
    }

    // A location as it is written in a topic of a volume.
    const std::string* find(const std::string& from, const std::string& location) const {
        const bool other = location.find(':') != std::string::npos;
        const auto found =
            topics.find(other ? location : from.substr(0, from.find(':') + 1) + location);
        return found != topics.end() ? &found->second : nullptr;
    }

    void check(const std::string& name, const std::vector<std::string>& lines) {
        if (lines.empty()) {
            return fault(name, "empty");
        }
        for (const std::string& line : lines) {
            const auto width = std::ranges::count_if(
                line, [](unsigned char c) { return (c & 0xC0) != 0x80; }); // of UTF-8
            if (static_cast<std::size_t>(width) > longest_line) {
                fault(name, "long line: " + line);
            }
        }
        if (const std::string same = word_after(lines[0], "@same "); !same.empty()) {
            const std::string* target = find(name, same);
            if (target == nullptr || target->starts_with("@same ") || lines.size() > 1) {
                fault(name, "@same " + same);
            }
            return;
        }
        if (!lines[0].starts_with("= ") || lines[0].size() < 3) {
            fault(name, "no title");
        }
        if (lines.size() < 2) {
            fault(name, "no text");
        }
        if (!titles.insert(name.substr(0, name.find(':')) + lines[0]).second) {
            fault(name, "title of another topic"); // in the index they look the same
        }
        for (const std::string& line : lines) {
            check_jumps(name, line);
            if (line.starts_with("@")) {
                check_include(name, line);
            } else if (line.starts_with("=") && &line != &lines[0] &&
                       (!line.starts_with("== ") || line.size() < 4)) {
                fault(name, "heading: " + line);
            }
        }
    }

    void check_include(const std::string& name, const std::string& line) {
        const std::string* target = find(name, included(line));
        const bool nested = target != nullptr &&
                            (target->starts_with("@") || target->find("\n@") != std::string::npos);
        if (target == nullptr || nested) {
            fault(name, line);
        }
    }

    // A jump stands whole on one line.
    void check_jumps(const std::string& name, const std::string& line) {
        for (std::size_t at = 0; (at = line.find_first_of("{}", at)) != std::string::npos;) {
            const std::size_t end = line.find_first_of("{}", at + 1);
            const std::size_t bar = line.find('|', at);
            if (line[at] != '{' || end == std::string::npos || line[end] != '}' || bar > end ||
                bar + 1 == end) {
                return fault(name, "jump: " + line);
            }
            const std::string location = line.substr(at + 1, bar - at - 1);
            if (!location.starts_with("man:") && find(name, location) == nullptr) {
                fault(name, "jump to " + location);
            }
            at = end + 1;
        }
    }
};

std::string report(const std::vector<std::string>& faults) {
    std::string text;
    for (const std::string& fault : faults) {
        text += fault + "\n";
    }
    return text;
}

TEST(HelpTopics, AreWellFormed) {
    const Texts topics = delivered_topics();
    EXPECT_EQ(report(Checker(topics).faults), "");
    EXPECT_EQ(topics.count(tool_volume + "_hometopic"), 1U);
    EXPECT_EQ(topics.count("Help4Help:_hometopic"), 1U);
}

// ---- what the program asks help for ----

// The words, numbers, string literals and signs of a source file, without comments.
std::vector<std::string> tokens_of(const std::string& text) {
    const auto in_word = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
    };
    std::vector<std::string> tokens;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t from = at;
        if (std::isspace(static_cast<unsigned char>(text[at])) != 0) {
            ++at;
            continue;
        }
        if (text.compare(at, 2, "//") == 0) {
            at = std::min(text.find('\n', at), text.size());
            continue;
        }
        if (text[at] == '"' || (text[at] == '\'' && (at == 0 || !in_word(text[at - 1])))) {
            const char quote = text[at++];
            while (at < text.size() && text[at] != quote) {
                at += text[at] == '\\' ? 2 : 1;
            }
            ++at;
        } else if (in_word(text[at])) {
            while (at < text.size() && in_word(text[at])) {
                ++at;
            }
        } else {
            ++at;
        }
        tokens.push_back(text.substr(from, at - from));
    }
    return tokens;
}

bool is_message(const std::string& token) {
    return token[0] != '0' &&
           std::ranges::all_of(token, [](unsigned char c) { return std::isdigit(c) != 0; });
}
bool is_constant(const std::string& token) {
    return std::isupper(static_cast<unsigned char>(token[0])) != 0 &&
           std::ranges::none_of(token, [](unsigned char c) { return std::islower(c) != 0; });
}
bool is_tag(const std::string& token) {
    return token.size() > 4 && token.front() == '"' &&
           std::islower(static_cast<unsigned char>(token[1])) != 0 &&
           std::all_of(token.begin() + 1, token.end() - 1, [](unsigned char c) {
               return std::islower(c) != 0 || std::isdigit(c) != 0;
           });
}

// A help tag follows the number of its message, in a table perhaps after the kinds of arguments, or
// is given by its name.
std::set<std::string> tags_in(const std::string& text) {
    const std::vector<std::string> tokens = tokens_of(text);
    std::set<std::string> tags;
    for (std::size_t i = 4; i < tokens.size(); ++i) {
        if (!is_tag(tokens[i])) {
            continue;
        }
        const std::string& before = tokens[i - 2];
        const bool in_table = (is_constant(before) || before[0] == '"') && tokens[i - 3] == "," &&
                              (is_message(tokens[i - 4]) || is_constant(tokens[i - 4]));
        const bool with_message =
            tokens[i - 1] == "," && (is_message(before) || before == "message" || in_table);
        if (with_message || (tokens[i - 1] == "=" && before == "help_tag")) {
            tags.insert(tokens[i].substr(1, tokens[i].size() - 2));
        }
    }
    return tags;
}

TEST(HelpTopics, EveryMessageHasOne) {
    const Texts topics = delivered_topics();
    std::set<std::string> all;
    for (const auto& entry : fs::recursive_directory_iterator(source_dir / "src")) {
        if (entry.path().extension() != ".cpp") {
            continue;
        }
        for (const std::string& tag : tags_in(text_of(entry.path()))) {
            all.insert(tag);
            EXPECT_EQ(topics.count(tool_volume + tag), 1U) << tag << " in " << entry.path();
        }
    }
    // One for each way in which the program names a tag.
    for (const char* tag : {"dlgfail", "tasknode", "confirmdeletels", "startlsfail", "readonly",
                            "cpnameclash", "renamenodeupdate", "cpicd", "confirmstopport"}) {
        EXPECT_EQ(all.count(tag), 1U) << tag;
    }
}

TEST(HelpTopics, EveryDialogHasOne) {
    const Texts topics = delivered_topics();
    for (const VGA_UID_DESC& row : gvga_uid_desc) {
        EXPECT_EQ(topics.count(tool_volume + row.uid_name), 1U) << row.uid_name;
    }
    for (const auto& entry : fs::directory_iterator(source_dir / "data/forms")) {
        if (entry.path().extension() == ".form") {
            EXPECT_EQ(topics.count(tool_volume + entry.path().stem().string()), 1U) << entry.path();
        }
    }
    for (const char* pane : {"connectivitypane", "localluspane", "remotesystemspane"}) {
        EXPECT_EQ(topics.count(tool_volume + pane), 1U) << pane;
    }
}

} // namespace
