// A help topic, and the reader of its file: "= Title", "== Heading", paragraphs, "* items",
// "{location|text}" links, "@include LOCATION" and "@same LOCATION".
#pragma once

#include <string>
#include <string_view>
#include <vector>

enum class HELP_LINK_KIND { NONE, TOPIC, MAN_PAGE };

struct HELP_LINK {
    HELP_LINK_KIND kind = HELP_LINK_KIND::NONE;
    std::string volume;   // empty: the volume of the topic
    std::string location; // or the name of a manual page
    bool operator==(const HELP_LINK&) const = default;
};

struct HELP_SPAN { // text of one look
    std::string text;
    HELP_LINK link;
};

enum class HELP_BLOCK_KIND {
    TITLE,
    HEADING,
    PARAGRAPH,
    ITEM,
    FIXED,   // a line as it stands
    INCLUDE, // the location is the first span's text; only between reading and loading
};

struct HELP_BLOCK {
    HELP_BLOCK_KIND kind;
    std::vector<HELP_SPAN> spans;
};

struct HELP_TOPIC {
    std::string title;
    std::string same; // the location that is shown instead; the rest is then empty
    std::vector<HELP_BLOCK> blocks;
};

struct HELP_PROBLEM { // something a topic's file should not have
    int line;
    const char* reason;
};

// Reads any bytes. What is wrong goes to problems and into the text as it stands.
HELP_TOPIC help_parse(std::string_view file, std::vector<HELP_PROBLEM>* problems);
// A manual page's output: lines as they stand, without overstrikes and escape sequences.
HELP_TOPIC help_parse_manual(std::string_view name, std::string_view output);
// The topic as plain text, in lines of at most width characters where words allow.
std::string help_plain_text(const HELP_TOPIC& topic, std::size_t width);
// Letters, digits, "_", "-" and ".", not a "." first: a volume or a location.
bool help_is_name(std::string_view text);
// What man(1) may be asked for: a name, with its section in parentheses or without.
bool help_is_manual_name(std::string_view text);
