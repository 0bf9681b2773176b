// The syntax of form files: one statement a line, `{` at its end opens a block, `#` starts a
// comment.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace formc {

// A fault in a form; what() reads "file:line: text".
struct FormError : std::runtime_error {
    FormError(const std::string& file, int line, const std::string& text)
        : std::runtime_error(file + ":" + std::to_string(line) + ": " + text) {}
};

// `key=value`, or a bare word in lower case, which is a flag without a value. A quoted value has
// lost its quotes; an unquoted one keeps what stands inside its parentheses as written.
struct Attribute {
    std::string key{};
    std::string value{};
    bool quoted = false;
    bool flag = false;
    mutable bool used = false;
};

// One statement. Words with a capital letter are names of widgets, the first quoted text is the
// label.
struct Statement {
    std::string file{};
    int line = 0;
    std::string keyword{};
    std::vector<std::string> names{};
    std::optional<std::string> label{};
    std::vector<Attribute> attributes{};
    std::vector<Statement> body{};

    // Looks an attribute or flag up and marks it as understood; null when it is not there.
    const Attribute* find(std::string_view key) const;
    bool flag(std::string_view key) const;
    std::string text(std::string_view key, std::string_view fallback = {}) const;
    int number(std::string_view key, int fallback) const;
    // Throws for the first attribute nobody asked for.
    void check_all_used() const;
    [[noreturn]] void fail(const std::string& text) const;
};

// Parses the text of one form file, which holds one or more windows and dialogs. Throws FormError.
std::vector<Statement> parse_form(const std::string& file, std::string_view text);

} // namespace formc
