#include "build.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace formc {

namespace {

struct Reason {
    std::string_view key;
    std::string_view resource;
};

constexpr std::array reasons{
    Reason{"activate", "XmNactivateCallback"},
    Reason{"arm", "XmNarmCallback"},
    Reason{"disarm", "XmNdisarmCallback"},
    Reason{"changed", "XmNvalueChangedCallback"},
    Reason{"modify", "XmNmodifyVerifyCallback"},
    Reason{"focus", "XmNfocusCallback"},
    Reason{"losing", "XmNlosingFocusCallback"},
    Reason{"select", "XmNsingleSelectionCallback"},
    Reason{"extend", "XmNextendedSelectionCallback"},
    Reason{"default", "XmNdefaultActionCallback"},
    Reason{"cascading", "XmNcascadingCallback"},
    Reason{"entry", "XmNentryCallback"},
    Reason{"map", "XmNmapCallback"},
    Reason{"unmap", "XmNunmapCallback"},
    Reason{"help", "XmNhelpCallback"},
};

bool is_identifier(std::string_view text) {
    return !text.empty() && !std::isdigit(static_cast<unsigned char>(text[0])) &&
           std::all_of(text.begin(), text.end(),
                       [](unsigned char c) { return std::isalnum(c) || c == '_'; });
}

} // namespace

int Columns::position() const {
    const int width = std::max({label + field, whole, 1});
    return std::clamp(label * 1000 / width, 0, 900);
}

Object& Builder::make(const Statement& at, std::string_view type, std::string_view name) {
    if (name.empty())
        return module.make(at, prefix, type,
                           prefix + std::string(type.substr(2)) + std::to_string(++anonymous));
    if (!name.starts_with(prefix))
        at.fail("the name '" + std::string(name) + "' does not begin with '" + prefix + "'");
    return module.make(at, prefix, type, std::string(name));
}

Object& Builder::make_named(const Statement& s, std::string_view type, size_t n) {
    Object& object = make(s, type, n < s.names.size() ? std::string_view(s.names[n]) : "");
    decorate(s, object);
    return object;
}

void Builder::place(Object& object, std::string_view resource) {
    pending.push_back({&object, std::string(resource), columns});
    object.set(resource, 0);
}

void Builder::resolve() {
    for (const Pending& p : pending)
        p.object->set(p.resource, p.columns->position());
}

void add_calls(const Statement& s, Object& object, std::string_view resource,
               std::string_view calls) {
    for (;;) {
        const size_t comma = calls.find(',');
        const std::string_view call = calls.substr(0, comma);
        if (!is_identifier(call.substr(0, call.find('('))))
            s.fail("'" + std::string(call) + "' is no callback name");
        object.call(resource, std::string(call));
        if (comma == std::string_view::npos)
            return;
        calls.remove_prefix(comma + 1);
    }
}

void decorate(const Statement& s, Object& object) {
    for (const Reason& reason : reasons)
        if (s.find(reason.key))
            add_calls(s, object, reason.resource, s.text(reason.key));
    for (const Attribute& attribute : s.attributes)
        if (attribute.key.starts_with("XmN")) {
            attribute.used = true;
            object.set(attribute.key,
                       attribute.quoted ? uil_string(attribute.value) : attribute.value);
        }
    if (s.find("translations"))
        object.set("XmNtranslations", uil_translations(s.text("translations")));
    if (s.flag("insensitive"))
        object.set("XmNsensitive", "false");
    if (s.flag("hidden"))
        object.managed = false;
}

Caption caption(const Statement& s) {
    Caption result;
    if (!s.label)
        return result;
    const std::string& label = *s.label;
    for (size_t i = 0; i < label.size(); ++i) {
        if (label[i] != '&' || i + 1 == label.size()) {
            result.text += label[i];
        } else if (label[++i] == '&') {
            result.text += '&';
        } else {
            result.mnemonic = label[i];
            result.text += label[i];
        }
    }
    if (result.text.ends_with(':'))
        s.fail("a label has no trailing colon");
    return result;
}

void set_caption(const Statement& s, Object& object, std::map<char, int>& used) {
    const Caption c = caption(s);
    object.set("XmNlabelString", uil_label(c.text));
    if (!c.mnemonic)
        return;
    const char key = static_cast<char>(std::toupper(static_cast<unsigned char>(c.mnemonic)));
    const auto [known, is_new] = used.emplace(key, s.line);
    if (!is_new)
        s.fail(std::string("the mnemonic '") + key + "' is used before, in line " +
               std::to_string(known->second));
    object.set("XmNmnemonic", std::string("keysym(\"") + c.mnemonic + "\")");
    object.set("XmNmnemonicCharSet", uil_string("ISO8859-1")); // of the module's texts
}

} // namespace formc
