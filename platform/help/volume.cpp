#include "volume.h"

#include "nba/nba.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <strings.h>

namespace {

namespace fs = std::filesystem;

enum LOG : NB_ULONG {
    NO_TOPIC = 0x40050001,  // exception: volume, location
    BAD_TOPIC = 0x40050002, // exception: volume, location, line, reason
};

constexpr std::size_t max_file = 256 * 1024;
constexpr std::size_t max_blocks = 4000; // of a topic with its includes
constexpr int max_depth = 8;             // of includes, and of locations that stand for others
constexpr std::string_view suffix = ".topic";

fs::path directory_of(const std::string& volume) {
    const char* base = std::getenv("TESSALY_HELP");
    return fs::path(base != nullptr && base[0] != '\0' ? base : TESSALY_PREFIX "/share/help") /
           volume;
}

void log_bad(const std::string& volume, const std::string& location, int line, const char* reason) {
    nba_pd_print_exception(BAD_TOPIC, 0, "s s i s", volume.c_str(), location.c_str(), line, reason);
}

std::optional<std::string> contents_of(const std::string& volume, const std::string& location) {
    if (!help_is_name(volume) || !help_is_name(location)) {
        return std::nullopt;
    }
    const fs::path path = directory_of(volume) / (location + std::string(suffix));
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    std::string text(max_file + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > max_file) {
        log_bad(volume, location, 0, "too large");
        text.resize(max_file);
    }
    return text;
}

// Reads one file; locations that stand for others are followed.
bool read_topic(const std::string& volume, std::string location, HELP_TOPIC* topic) {
    for (int depth = 0; depth < max_depth; ++depth) {
        const auto text = contents_of(volume, location);
        if (!text) {
            nba_pd_print_exception(NO_TOPIC, 0, "s s", volume.c_str(), location.c_str());
            return false;
        }
        std::vector<HELP_PROBLEM> problems;
        *topic = help_parse(*text, &problems);
        for (const HELP_PROBLEM& problem : problems) {
            log_bad(volume, location, problem.line, problem.reason);
        }
        if (topic->same.empty()) {
            if (topic->title.empty()) {
                topic->title = location;
            }
            return true;
        }
        location = topic->same;
    }
    log_bad(volume, location, 1, "locations that stand for each other");
    return false;
}

void add_blocks(const std::string& volume, const std::string& location, const HELP_TOPIC& topic,
                int depth, std::vector<HELP_BLOCK>* blocks) {
    for (const HELP_BLOCK& block : topic.blocks) {
        if (blocks->size() >= max_blocks || depth > max_depth) {
            log_bad(volume, location, 0, "too much is included");
            return;
        }
        if (block.kind != HELP_BLOCK_KIND::INCLUDE) {
            blocks->push_back(block);
            continue;
        }
        HELP_TOPIC included;
        const std::string& from = block.spans[0].text;
        if (read_topic(volume, from, &included)) {
            add_blocks(volume, from, included, depth + 1, blocks);
        }
    }
}

HELP_TOPIC missing_topic(const std::string& volume, const std::string& location) {
    HELP_TOPIC topic;
    topic.title = "No help on this subject";
    topic.blocks.push_back(
        {HELP_BLOCK_KIND::PARAGRAPH,
         {{"There is no help text with the name \"" + location + "\" in the volume " + volume + ".",
           {}}}});
    if (location != HELP_HOME) {
        topic.blocks.push_back({HELP_BLOCK_KIND::PARAGRAPH,
                                {{"All subjects are listed in the ", {}},
                                 {"contents", {HELP_LINK_KIND::TOPIC, "", HELP_HOME}},
                                 {".", {}}}});
    }
    return topic;
}

} // namespace

bool help_load(const std::string& volume, const std::string& asked, HELP_TOPIC* topic) {
    const std::string location = asked.empty() ? HELP_HOME : asked;
    HELP_TOPIC read;
    if (!read_topic(volume, location, &read)) {
        *topic = missing_topic(volume, location);
        return false;
    }
    *topic = HELP_TOPIC{std::move(read.title), "", {}};
    add_blocks(volume, location, read, 0, &topic->blocks);
    return true;
}

std::vector<HELP_ENTRY> help_index(const std::string& volume) {
    std::vector<HELP_ENTRY> entries;
    std::error_code error;
    if (!help_is_name(volume)) {
        return entries;
    }
    for (fs::directory_iterator file(directory_of(volume), error), end; !error && file != end;
         file.increment(error)) {
        const std::string location = file->path().stem().string();
        if (file->path().extension() != suffix || location == HELP_HOME) {
            continue;
        }
        const auto text = contents_of(volume, location);
        std::vector<HELP_PROBLEM> problems; // told when the topic is shown
        const HELP_TOPIC topic = help_parse(text.value_or(""), &problems);
        if (topic.same.empty() && !topic.title.empty()) {
            entries.push_back({topic.title, location});
        }
    }
    std::ranges::sort(entries, [](const HELP_ENTRY& a, const HELP_ENTRY& b) {
        const int order = strcasecmp(a.title.c_str(), b.title.c_str());
        return order != 0 ? order < 0 : a.location < b.location;
    });
    return entries;
}

std::vector<HELP_ENTRY> help_contents(const std::string& volume) {
    HELP_TOPIC home;
    std::vector<HELP_ENTRY> entries;
    if (!help_load(volume, HELP_HOME, &home)) {
        return entries;
    }
    for (const HELP_BLOCK& block : home.blocks) {
        if (block.kind == HELP_BLOCK_KIND::HEADING) {
            entries.push_back({block.spans[0].text, ""});
        }
        for (const HELP_SPAN& span : block.spans) {
            if (span.link.kind == HELP_LINK_KIND::TOPIC &&
                (span.link.volume.empty() || span.link.volume == volume)) {
                entries.push_back({span.text, span.link.location});
            }
        }
    }
    return entries;
}
