#include "form.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace formc {

const Attribute* Statement::find(std::string_view key) const {
    for (const Attribute& attribute : attributes)
        if (attribute.key == key) {
            attribute.used = true;
            return &attribute;
        }
    return nullptr;
}

bool Statement::flag(std::string_view key) const {
    const Attribute* attribute = find(key);
    if (attribute && !attribute->flag)
        fail("'" + attribute->key + "' takes no value");
    return attribute != nullptr;
}

std::string Statement::text(std::string_view key, std::string_view fallback) const {
    const Attribute* attribute = find(key);
    if (attribute && attribute->flag)
        fail("'" + attribute->key + "' needs a value");
    return attribute ? attribute->value : std::string(fallback);
}

int Statement::number(std::string_view key, int fallback) const {
    if (!find(key))
        return fallback;
    const std::string digits = text(key);
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size() || value < 0)
        fail("'" + std::string(key) + "' needs a number, not '" + digits + "'");
    return value;
}

void Statement::check_all_used() const {
    for (const Attribute& attribute : attributes)
        if (!attribute.used)
            fail("'" + keyword + "' does not know '" + attribute.key + "'");
}

void Statement::fail(const std::string& text) const {
    throw FormError(file, line, text);
}

namespace {

struct Line {
    Statement statement;
    bool opens = false;
    bool closes = false;
};

// Splits one line of a form file.
class LineScanner {
public:
    LineScanner(const std::string& file, int line, std::string_view text) : text_(text) {
        line_.statement.file = file;
        line_.statement.line = line;
    }

    // Nothing for a line without a statement.
    std::optional<Line> scan() {
        for (skip_blanks(); at_ < text_.size() && text_[at_] != '#'; skip_blanks())
            scan_word();
        const bool something =
            !line_.statement.keyword.empty() || line_.closes || line_.statement.label;
        if (!something)
            return std::nullopt;
        if (!line_.closes && line_.statement.keyword.empty())
            fail("a statement starts with its keyword");
        return std::move(line_);
    }

private:
    void scan_word() {
        if (line_.opens || line_.closes)
            fail("nothing may follow '{' or '}' on its line");
        const char c = text_[at_];
        if (c == '{' || c == '}') {
            if (c == '}' && !line_.statement.keyword.empty())
                fail("'}' stands on a line of its own");
            (c == '{' ? line_.opens : line_.closes) = true;
            ++at_;
        } else if (c == '"') {
            if (line_.statement.label)
                fail("a statement has one label");
            line_.statement.label = scan_quoted();
        } else {
            scan_bare();
        }
    }

    void scan_bare() {
        Statement& s = line_.statement;
        const size_t start = at_;
        while (at_ < text_.size() && (std::isalnum(byte()) || text_[at_] == '_'))
            ++at_;
        const std::string word(text_.substr(start, at_ - start));
        if (word.empty())
            fail(std::string("unexpected '") + text_[at_] + "'");
        if (at_ < text_.size() && text_[at_] == '=') {
            ++at_;
            Attribute attribute{.key = word};
            attribute.quoted = at_ < text_.size() && text_[at_] == '"';
            attribute.value = attribute.quoted ? scan_quoted() : scan_value();
            add(std::move(attribute));
        } else if (s.keyword.empty()) {
            s.keyword = word;
        } else if (is_name(word) || prefix_follows()) {
            s.names.push_back(word);
        } else {
            add({.key = word, .flag = true});
        }
    }

    // Names of widgets have a capital letter after their form's prefix.
    static bool is_name(std::string_view word) {
        return std::any_of(word.begin(), word.end(),
                           [](unsigned char c) { return std::isupper(c); });
    }

    // A window or dialog is followed by its prefix, which is in lower case.
    bool prefix_follows() const {
        const Statement& s = line_.statement;
        return (s.keyword == "window" || s.keyword == "dialog") && s.names.empty();
    }

    void add(Attribute attribute) {
        for (const Attribute& other : line_.statement.attributes)
            if (other.key == attribute.key)
                fail("'" + attribute.key + "' is given twice");
        line_.statement.attributes.push_back(std::move(attribute));
    }

    std::string scan_quoted() {
        std::string value;
        for (++at_; at_ < text_.size() && text_[at_] != '"'; ++at_) {
            if (!std::isprint(byte()))
                fail("texts are plain ASCII");
            if (text_[at_] != '\\') {
                value += text_[at_];
            } else if (++at_ < text_.size()) {
                value += text_[at_] == 'n' ? '\n' : text_[at_];
            }
        }
        if (at_ >= text_.size())
            fail("a text has no closing quote");
        ++at_;
        return value;
    }

    // Up to the next blank outside parentheses and quotes.
    std::string scan_value() {
        const size_t start = at_;
        int depth = 0;
        bool quoted = false;
        for (; at_ < text_.size(); ++at_) {
            const char c = text_[at_];
            if (c == '"')
                quoted = !quoted;
            if (quoted)
                continue;
            if (c == ' ' && depth == 0)
                break;
            depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        }
        if (quoted || depth != 0 || at_ == start)
            fail("a value is incomplete");
        return std::string(text_.substr(start, at_ - start));
    }

    void skip_blanks() {
        while (at_ < text_.size() && std::isspace(byte()))
            ++at_;
    }

    unsigned char byte() const { return static_cast<unsigned char>(text_[at_]); }
    [[noreturn]] void fail(const std::string& text) const { line_.statement.fail(text); }

    std::string_view text_;
    size_t at_ = 0;
    Line line_;
};

} // namespace

std::vector<Statement> parse_form(const std::string& file, std::string_view text) {
    std::vector<Statement> open; // the statements whose blocks are open, outermost first
    open.push_back({.file = file, .line = 1});
    int number = 0;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::optional<Line> line = LineScanner(file, ++number, text.substr(0, end)).scan();
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (!line)
            continue;
        if (line->closes) {
            if (open.size() == 1)
                throw FormError(file, number, "'}' without '{'");
            Statement done = std::move(open.back());
            open.pop_back();
            open.back().body.push_back(std::move(done));
        } else if (line->opens) {
            open.push_back(std::move(line->statement));
        } else {
            open.back().body.push_back(std::move(line->statement));
        }
    }
    if (open.size() > 1)
        open.back().fail("the block of this '" + open.back().keyword + "' is not closed");
    return std::move(open.front().body);
}

} // namespace formc
