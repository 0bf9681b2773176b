// UIL objects in memory and the writer that turns them into a module.
#pragma once

#include <deque>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace formc {

struct Statement;

// One widget: its class is UIL's word for it (XmForm, XmPulldownMenu, ...), the values of its
// resources and callbacks are UIL expressions.
struct Object {
    std::string name;
    std::string type;
    std::string form; // the prefix of the window or dialog it belongs to
    std::vector<std::pair<std::string, std::string>> arguments{};
    std::vector<std::pair<std::string, std::vector<std::string>>> callbacks{};
    std::vector<Object*> children{};
    bool managed = true;

    Object& set(std::string_view resource, std::string value);
    Object& set(std::string_view resource, int value);
    Object& call(std::string_view reason, std::string procedure);
};

// All objects of a module. Objects stay where they are once made.
struct Module {
    std::deque<Object> objects;
    std::map<std::string, std::string>
        where; // object name to "file:line", to report a name used twice

    // Makes an object; a name longer than 31 characters (UIL's limit) or used before is an error of
    // `at`.
    Object& make(const Statement& at, std::string_view form, std::string_view type,
                 std::string name);
};

// A UIL string, compound string or table; what is longer than a source line is joined from pieces.
std::string uil_string(std::string_view text);
std::string uil_label(std::string_view text);
std::string uil_translations(std::string_view text);

// Writes the module; no line is longer than UIL reads (132 characters).
void write_module(std::ostream& out, std::string_view name, const Module& module);
// Writes one line per object: form, name and class.
void write_names(std::ostream& out, const Module& module);

} // namespace formc
