#include "topic.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace {

constexpr std::string_view blanks = " \t";

bool is_alnum(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

std::string_view trim(std::string_view text) {
    const std::size_t from = text.find_first_not_of(blanks);
    if (from == std::string_view::npos) {
        return {};
    }
    return text.substr(from, text.find_last_not_of(blanks) - from + 1);
}

// Length of the UTF-8 character at the start of a text, 0 when it is none.
std::size_t character_length(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t length = first < 0x80                    ? 1
                               : first >= 0xC2 && first < 0xE0 ? 2
                               : first >= 0xE0 && first < 0xF0 ? 3
                               : first >= 0xF0 && first < 0xF5 ? 4
                                                               : 0;
    if (length > text.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
            return 0;
        }
    }
    return length;
}

// A copy in which what is no text is a question mark.
std::string clean(std::string_view line, bool* dirty) {
    std::string result;
    while (!line.empty()) {
        const std::size_t length = character_length(line);
        const bool control =
            (static_cast<unsigned char>(line[0]) < ' ' && line[0] != '\t') || line[0] == '\x7f';
        if (length == 0 || control) {
            *dirty = true;
            result += '?';
        } else {
            result += line[0] == '\t' ? std::string_view(" ") : line.substr(0, length);
        }
        line.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::string_view take_line(std::string_view* text) {
    const std::size_t end = std::min(text->find('\n'), text->size());
    std::string_view line = text->substr(0, end);
    text->remove_prefix(std::min(end + 1, text->size()));
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

std::optional<HELP_SPAN> link_of(std::string_view inner) {
    const std::size_t bar = inner.find('|');
    const std::string_view target = trim(inner.substr(0, bar));
    const std::string_view label =
        bar == std::string_view::npos ? target : trim(inner.substr(bar + 1));
    const std::size_t colon = target.find(':');
    const std::string_view where =
        colon == std::string_view::npos ? std::string_view() : target.substr(0, colon);
    HELP_SPAN span{std::string(label), {}};
    span.link.location = target.substr(colon == std::string_view::npos ? 0 : colon + 1);
    if (where == "man") {
        span.link.kind = HELP_LINK_KIND::MAN_PAGE;
    } else {
        span.link.kind = HELP_LINK_KIND::TOPIC;
        span.link.volume = where;
    }
    const bool good = span.link.kind == HELP_LINK_KIND::MAN_PAGE
                          ? help_is_manual_name(span.link.location)
                          : help_is_name(span.link.location) &&
                                (colon == std::string_view::npos || help_is_name(where));
    return good && !label.empty() ? std::optional(span) : std::nullopt;
}

class READER {
public:
    explicit READER(std::vector<HELP_PROBLEM>* problems) : problems_(problems) {}

    HELP_TOPIC read(std::string_view file) {
        while (!file.empty() && topic_.same.empty()) {
            ++line_;
            bool dirty = false;
            const std::string line = clean(take_line(&file), &dirty);
            if (dirty) {
                report("a byte that is no text");
            }
            take(line);
        }
        finish();
        if (topic_.title.empty() && topic_.same.empty()) {
            report("no title");
        }
        return std::move(topic_);
    }

private:
    void report(const char* reason) { problems_->push_back({line_, reason}); }

    void take(std::string_view line) {
        const bool continues = line.starts_with("  ");
        const std::string_view text = trim(line);
        if (text.empty()) {
            finish();
        } else if (!continues && text.starts_with("== ")) {
            add(HELP_BLOCK_KIND::HEADING, text.substr(3));
        } else if (!continues && text.starts_with("= ")) {
            take_title(trim(text.substr(2)));
        } else if (!continues && text.starts_with("* ")) {
            finish();
            kind_ = HELP_BLOCK_KIND::ITEM;
            open_ = trim(text.substr(2));
        } else if (!continues && text.starts_with('@')) {
            finish();
            take_directive(text);
        } else {
            if (!continues && kind_ == HELP_BLOCK_KIND::ITEM) {
                finish();
            }
            open_ += (open_.empty() ? "" : " ") + std::string(text);
        }
    }

    void take_title(std::string_view title) {
        finish();
        if (topic_.title.empty() && topic_.blocks.empty()) {
            topic_.title = title;
        } else {
            report("a title that is not the first line");
            add(HELP_BLOCK_KIND::HEADING, title);
        }
    }

    void take_directive(std::string_view text) {
        const std::size_t blank = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, blank);
        const std::string location(trim(text.substr(blank)));
        if (word != "@include" && word != "@same") {
            report("unknown directive");
        } else if (!help_is_name(location)) {
            report("a directive without location");
        } else if (word == "@include") {
            topic_.blocks.push_back({HELP_BLOCK_KIND::INCLUDE, {{location, {}}}});
        } else if (!topic_.title.empty() || !topic_.blocks.empty()) {
            report("@same that is not the first line");
        } else {
            topic_.same = location;
        }
    }

    void add(HELP_BLOCK_KIND kind, std::string_view text) {
        finish();
        kind_ = kind;
        open_ = trim(text);
        finish();
    }

    void finish() { // the block that is being read
        if (!open_.empty()) {
            topic_.blocks.push_back({kind_, spans_of(open_)});
        }
        open_.clear();
        kind_ = HELP_BLOCK_KIND::PARAGRAPH;
    }

    std::vector<HELP_SPAN> spans_of(std::string_view text) {
        std::vector<HELP_SPAN> spans;
        const auto plain = [&](std::string_view part) {
            if (part.empty()) {
                return;
            }
            if (spans.empty() || spans.back().link.kind != HELP_LINK_KIND::NONE) {
                spans.push_back({});
            }
            spans.back().text += part;
        };
        while (!text.empty()) {
            const std::size_t open = std::min(text.find('{'), text.size());
            plain(text.substr(0, open));
            text.remove_prefix(open);
            if (text.empty()) {
                break;
            }
            const std::size_t close = text.find_first_of("{}", 1);
            const bool closed = close != std::string_view::npos && text[close] == '}';
            const auto link = closed ? link_of(text.substr(1, close - 1)) : std::nullopt;
            if (link) {
                spans.push_back(*link);
                text.remove_prefix(close + 1);
            } else {
                report(closed ? "a link without target or text" : "a link that does not end");
                plain(text.substr(0, 1));
                text.remove_prefix(1);
            }
        }
        return spans;
    }

    std::vector<HELP_PROBLEM>* problems_;
    HELP_TOPIC topic_;
    int line_ = 0;
    HELP_BLOCK_KIND kind_ = HELP_BLOCK_KIND::PARAGRAPH;
    std::string open_; // text of the block that is being read
};

// Terminals get bold and underlined characters as overstrikes or as escape sequences.
std::string without_overstrikes(std::string_view line) {
    std::string result;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\b') {
            while (!result.empty() && (static_cast<unsigned char>(result.back()) & 0xC0) == 0x80) {
                result.pop_back();
            }
            if (!result.empty()) {
                result.pop_back();
            }
        } else if (line[i] == '\x1b' && i + 1 < line.size() && line[i + 1] == '[') {
            for (i += 2; i < line.size() && !std::isalpha(static_cast<unsigned char>(line[i]));) {
                ++i;
            }
        } else {
            result += line[i];
        }
    }
    return result;
}

} // namespace

HELP_TOPIC help_parse(std::string_view file, std::vector<HELP_PROBLEM>* problems) {
    return READER(problems).read(file);
}

HELP_TOPIC help_parse_manual(std::string_view name, std::string_view output) {
    HELP_TOPIC topic;
    topic.title = "Manual page " + std::string(name);
    while (!output.empty()) {
        bool dirty = false;
        std::string line = clean(without_overstrikes(take_line(&output)), &dirty);
        line.erase(line.find_last_not_of(' ') + 1);
        const bool empty_before = topic.blocks.empty() || topic.blocks.back().spans[0].text.empty();
        if (!line.empty() || !empty_before) {
            topic.blocks.push_back({HELP_BLOCK_KIND::FIXED, {{line, {}}}});
        }
    }
    return topic;
}

std::string help_plain_text(const HELP_TOPIC& topic, std::size_t width) {
    std::string result = topic.title + "\n";
    HELP_BLOCK_KIND before = HELP_BLOCK_KIND::TITLE;
    for (const HELP_BLOCK& block : topic.blocks) {
        std::string text;
        for (const HELP_SPAN& span : block.spans) {
            text += span.text;
        }
        const bool tight = block.kind == before && (block.kind == HELP_BLOCK_KIND::ITEM ||
                                                    block.kind == HELP_BLOCK_KIND::FIXED);
        result += tight ? "" : "\n";
        before = block.kind;
        if (block.kind == HELP_BLOCK_KIND::FIXED) {
            result += text + "\n";
            continue;
        }
        std::string line = block.kind == HELP_BLOCK_KIND::ITEM ? "*" : "";
        for (std::string_view rest = text; !rest.empty();) {
            const std::size_t end = std::min(rest.find(' '), rest.size());
            const std::string_view word = rest.substr(0, end);
            rest.remove_prefix(std::min(end + 1, rest.size()));
            if (!line.empty() && line.size() + 1 + word.size() > width) {
                result += line + "\n";
                line = block.kind == HELP_BLOCK_KIND::ITEM ? " " : "";
            }
            line += (line.empty() ? "" : " ") + std::string(word);
        }
        result += line + "\n";
    }
    return result;
}

bool help_is_name(std::string_view text) {
    return !text.empty() && text.size() <= 64 && text[0] != '.' &&
           std::ranges::all_of(
               text, [](char c) { return is_alnum(c) || c == '_' || c == '-' || c == '.'; });
}

bool help_is_manual_name(std::string_view text) {
    if (text.ends_with(')')) {
        const std::size_t open = text.find('(');
        if (open == std::string_view::npos) {
            return false;
        }
        const std::string_view section = text.substr(open + 1, text.size() - open - 2);
        if (section.empty() || !std::ranges::all_of(section, is_alnum)) {
            return false;
        }
        text = text.substr(0, open);
    }
    return !text.empty() && text.size() <= 64 && text[0] != '-' &&
           std::ranges::all_of(text, [](char c) {
               return is_alnum(c) || std::string_view("_-.+:").find(c) != std::string_view::npos;
           });
}
