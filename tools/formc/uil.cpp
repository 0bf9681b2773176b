#include "uil.h"

#include "form.h"

#include <ostream>
#include <set>

namespace formc {

namespace {
constexpr size_t name_limit = 31;
constexpr size_t piece_limit = 80;
} // namespace

Object& Object::set(std::string_view resource, std::string value) {
    for (auto& [name, old] : arguments)
        if (name == resource) {
            old = std::move(value);
            return *this;
        }
    arguments.emplace_back(resource, std::move(value));
    return *this;
}

Object& Object::set(std::string_view resource, int value) {
    return set(resource, std::to_string(value));
}

Object& Object::call(std::string_view reason, std::string procedure) {
    for (auto& [name, procedures] : callbacks)
        if (name == reason) {
            procedures.push_back(std::move(procedure));
            return *this;
        }
    callbacks.push_back({std::string(reason), {std::move(procedure)}});
    return *this;
}

Object& Module::make(const Statement& at, std::string_view form, std::string_view type,
                     std::string name) {
    if (name.size() > name_limit)
        at.fail("the name '" + name + "' is longer than " + std::to_string(name_limit) +
                " characters");
    const auto [known, is_new] = where.emplace(name, at.file + ":" + std::to_string(at.line));
    if (!is_new)
        at.fail("the name '" + name + "' is used before, at " + known->second);
    return objects.emplace_back(
        Object{.name = std::move(name), .type = std::string(type), .form = std::string(form)});
}

std::string uil_string(std::string_view text) {
    std::string result = "\"";
    size_t piece = 0;
    for (const char c : text) {
        if (piece >= piece_limit) {
            result += "\" &\n        \"";
            piece = 0;
        }
        if (c == '\n') {
            result += "\\n";
        } else {
            if (c == '"' || c == '\\')
                result += '\\';
            result += c;
        }
        ++piece;
    }
    return result + '"';
}

std::string uil_label(std::string_view text) {
    // The compiler breaks a line only in a literal that it need not put together.
    std::string result;
    for (size_t end; (end = text.find('\n')) != std::string_view::npos;) {
        result +=
            "\n        compound_string(" + uil_string(text.substr(0, end)) + ", separate = true) &";
        text = text.substr(end + 1);
    }
    return result + (result.empty() ? "" : "\n        ") + "compound_string(" + uil_string(text) +
           ")";
}

std::string uil_translations(std::string_view text) {
    std::string result = "translation_table(\"#override\"";
    while (!text.empty()) {
        const size_t end = text.find('\n');
        result += ",\n        " + uil_string(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return result + ")";
}

namespace {

// UIL knows procedures by name only; a call may carry a tag, as in vga_menu_help_web("1").
std::string_view procedure_name(std::string_view call) {
    return call.substr(0, call.find('('));
}

std::string procedure_call(std::string_view call) {
    return std::string(call) + (call.find('(') == std::string_view::npos ? "()" : "");
}

void write_object(std::ostream& out, const Object& object) {
    out << "\nobject " << object.name << " : " << object.type << " {\n";
    if (!object.arguments.empty()) {
        out << "  arguments {\n";
        for (const auto& [name, value] : object.arguments)
            out << "    " << name << " = " << value << ";\n";
        out << "  };\n";
    }
    if (!object.children.empty()) {
        out << "  controls {\n";
        for (const Object* child : object.children)
            out << "    " << (child->managed ? "" : "unmanaged ") << child->type << ' '
                << child->name << ";\n";
        out << "  };\n";
    }
    if (!object.callbacks.empty()) {
        out << "  callbacks {\n";
        for (const auto& [reason, procedures] : object.callbacks) {
            if (procedures.size() == 1) {
                out << "    " << reason << " = procedure " << procedure_call(procedures[0])
                    << ";\n";
                continue;
            }
            out << "    " << reason << " = procedures {\n";
            for (const std::string& procedure : procedures)
                out << "      " << procedure_call(procedure) << ";\n";
            out << "    };\n";
        }
        out << "  };\n";
    }
    out << "};\n";
}

} // namespace

void write_module(std::ostream& out, std::string_view name, const Module& module) {
    std::set<std::string_view> procedures;
    for (const Object& object : module.objects)
        for (const auto& [reason, calls] : object.callbacks)
            for (const std::string& call : calls)
                procedures.insert(procedure_name(call));
    // Else the texts are tagged with the character set of the locale of the build, and a mnemonic
    // is underlined only in a text of its own set.
    out << "module " << name << "\n  names = case_sensitive\n  character_set = iso_latin1\n";
    if (!procedures.empty()) {
        out << "\nprocedure\n";
        for (const std::string_view procedure : procedures)
            out << "  " << procedure << ";\n";
    }
    for (const Object& object : module.objects)
        write_object(out, object);
    out << "\nend module;\n";
}

void write_names(std::ostream& out, const Module& module) {
    for (const Object& object : module.objects)
        out << object.form << ' ' << object.name << ' ' << object.type << '\n';
}

} // namespace formc
