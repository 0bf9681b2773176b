#include "ui/framework/field_checks.h"

#include "common/names.h"
#include "shell/messages.h"
#include "ui/framework/texts.h"

#include <Xm/Text.h>
#include <Xm/TextF.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t max_name = 8;
constexpr std::size_t max_password = 10;     // characters
constexpr std::size_t max_hex_password = 16; // digits
constexpr char ebcdic_dollar = 0x5B;
constexpr char ebcdic_at = 0x7C;

// What is inserted; empty for a deletion. It may be changed in place, but not grow.
struct CHANGE {
    Widget field;
    XmTextVerifyCallbackStruct* call;

    CHANGE(Widget widget, XtPointer call_data)
        : field(widget), call(static_cast<XmTextVerifyCallbackStruct*>(call_data)) {}
    std::string_view text() const {
        if (call->text == nullptr || call->text->ptr == nullptr) {
            return {};
        }
        return {call->text->ptr, static_cast<std::size_t>(call->text->length)};
    }
    void refuse() const { call->doit = False; }
    bool at_start() const { return call->startPos == 0; }
};

struct XtFreer {
    void operator()(char* text) const { XtFree(text); }
};

std::string field_text(Widget field) {
    const std::unique_ptr<char, XtFreer> text(XmTextGetString(field));
    return text != nullptr ? text.get() : "";
}

bool is_digit(unsigned char c) {
    return std::isdigit(c) != 0;
}
bool is_alphanum(unsigned char c) {
    return std::isalnum(c) != 0;
}
bool is_hex(unsigned char c) {
    return std::isxdigit(c) != 0;
}
bool is_no_space(unsigned char c) {
    return std::isspace(c) == 0;
}
bool is_address(unsigned char c) {
    return is_digit(c) || c == '.';
}
bool is_host_name(unsigned char c) {
    return is_alphanum(c) ||
           std::string_view("-_.:").find(static_cast<char>(c)) != std::string_view::npos;
}
bool is_path(unsigned char c) {
    return std::iscntrl(c) == 0 &&
           std::string_view("\\\"' ").find(static_cast<char>(c)) == std::string_view::npos;
}
bool is_file_name(unsigned char c) {
    return is_path(c) && c != '/';
}

void raise_case(const CHANGE& change) {
    for (std::size_t i = 0; i < change.text().size(); ++i) {
        char& c = change.call->text->ptr[i];
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
}

void admit(const CHANGE& change, bool (*admits)(unsigned char)) {
    const std::string_view text = change.text();
    if (!std::all_of(text.begin(), text.end(), admits)) {
        change.refuse();
    }
}

std::string upper(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return result;
}

// What the field keeps of its text when the replaced range goes.
struct REST {
    std::string before, after;
};
REST rest_of(const CHANGE& change) {
    const std::string text = field_text(change.field);
    const auto start = std::min(static_cast<std::size_t>(change.call->startPos), text.size());
    const auto end = std::clamp(static_cast<std::size_t>(change.call->endPos), start, text.size());
    return {text.substr(0, start), text.substr(end)};
}

// What the check of a name looks at: the inserted text or, when the start of the field is deleted,
// the text that would then start it.
struct EXAMINED {
    std::string text; // local
    bool at_start;
};
EXAMINED examined(const CHANGE& change) {
    std::string text(change.text());
    if (text.empty() && change.at_start()) {
        text = rest_of(change).after;
    }
    return {text, change.at_start()};
}

bool is_ebcdic(NBA_CHARACTER_SET set, const EXAMINED& name) {
    if (name.text.empty()) {
        return true;
    }
    // Behind another character the rule for a name's first one does not apply.
    std::string ebcdic = name.at_start ? name.text : "A" + name.text;
    nba_local_to_ebcdic(ebcdic.data(), ebcdic.size());
    return nba_check_ebcdic(set, ebcdic.data(), ebcdic.size()) != 0;
}

bool fits(const CHANGE& change, std::size_t most) {
    return change.text().size() <= most;
}

bool all_blank(std::string_view text) {
    return text.find_first_not_of(' ') == std::string_view::npos;
}

void check_ae(const CHANGE& change, std::size_t most) {
    if (!fits(change, most) || !is_ebcdic(NBA_TYPE_AE, examined(change))) {
        change.refuse();
    }
}

// True when the change is dealt with: the dialog sets the placeholder, or the operator touches it.
bool handle_placeholder(const CHANGE& change, int message, std::size_t length) {
    const std::string_view placeholder = gvga_messages[message];
    if (change.text() == placeholder) {
        return true;
    }
    if (field_text(change.field) != placeholder) {
        return false;
    }
    change.call->startPos = 0;
    change.call->endPos = static_cast<XmTextPosition>(length);
    if (change.call->text != nullptr) {
        change.call->text->length = 0;
        if (change.call->text->ptr != nullptr) {
            change.call->text->ptr[0] = '\0';
        }
    }
    return true;
}

} // namespace

void vga_check_num_cb(Widget widget, XtPointer, XtPointer call_data) {
    admit({widget, call_data}, is_digit);
}

void vga_check_signed_num_cb(Widget widget, XtPointer, XtPointer call_data) {
    const CHANGE change(widget, call_data);
    std::string_view text = change.text();
    if (change.at_start() && text.starts_with('-')) {
        text.remove_prefix(1);
    }
    if (!std::all_of(text.begin(), text.end(), is_digit)) {
        change.refuse();
    }
}

void vga_check_alphanum_cb(Widget widget, XtPointer, XtPointer call_data) {
    admit({widget, call_data}, is_alphanum);
}

void vga_check_caps_alphanum_cb(Widget widget, XtPointer, XtPointer call_data) {
    const CHANGE change(widget, call_data);
    raise_case(change);
    admit(change, is_alphanum);
}

void vga_all_caps_cb(Widget widget, XtPointer, XtPointer call_data) {
    raise_case({widget, call_data});
}

void vga_check_hex_cb(Widget widget, XtPointer, XtPointer call_data) {
    const CHANGE change(widget, call_data);
    raise_case(change);
    admit(change, is_hex);
}

void vga_check_tp_name_cb(Widget widget, XtPointer, XtPointer call_data) {
    admit({widget, call_data}, is_no_space);
}

void vga_check_ip_addr_cb(Widget widget, XtPointer, XtPointer call_data) {
    admit({widget, call_data}, is_address);
}

void vga_check_ip_name_cb(Widget widget, XtPointer, XtPointer call_data) {
    admit({widget, call_data}, is_host_name);
}

void vga_check_filename_cb(Widget widget, XtPointer, XtPointer call_data) {
    admit({widget, call_data}, is_file_name);
}

void vga_check_pathname_cb(Widget widget, XtPointer, XtPointer call_data) {
    admit({widget, call_data}, is_path);
}

void vga_check_ebcdic_cb(Widget widget, XtPointer, XtPointer call_data) {
    const CHANGE change(widget, call_data);
    raise_case(change);
    if (!fits(change, max_name) || !is_ebcdic(NBA_TYPE_A, examined(change))) {
        change.refuse();
    }
}

void vga_check_ebcdic_lower_cb(Widget widget, XtPointer, XtPointer call_data) {
    const CHANGE change(widget, call_data);
    const EXAMINED name = examined(change);
    if (!fits(change, max_name) || !is_ebcdic(NBA_TYPE_A, {upper(name.text), name.at_start})) {
        change.refuse();
    }
}

void vga_check_ebcdic_ae_cb(Widget widget, XtPointer, XtPointer call_data) {
    check_ae({widget, call_data}, max_name);
}

void vga_check_mode_name_cb(Widget widget, XtPointer, XtPointer call_data) {
    const CHANGE change(widget, call_data);
    raise_case(change);
    const REST rest = rest_of(change);
    const std::string kept = rest.before + rest.after;
    if (change.text().empty() ? all_blank(kept) : all_blank(change.text()) && all_blank(kept)) {
        if (!fits(change, max_name)) {
            change.refuse();
        }
        return;
    }
    const EXAMINED name = examined(change);
    std::string first = name.at_start ? name.text.substr(0, 1) : "";
    nba_local_to_ebcdic(first.data(), first.size());
    const bool reserved = !first.empty() && (first[0] == ebcdic_dollar || first[0] == ebcdic_at);
    const bool mixed = kept.find(' ') != std::string::npos; // typed blanks fail the character set
    if (!fits(change, max_name) || reserved || mixed || !is_ebcdic(NBA_TYPE_A, name)) {
        change.refuse();
    }
}

void vga_check_lu_name_template_cb(Widget widget, XtPointer, XtPointer call_data) {
    const CHANGE change(widget, call_data);
    raise_case(change);
    EXAMINED name = examined(change);
    // A period stands for itself anywhere but in front: it counts as a character of a name.
    const bool leading_period = name.at_start && name.text.starts_with('.');
    std::replace(name.text.begin(), name.text.end(), '.', '@');
    if (!fits(change, max_name) || leading_period || !is_ebcdic(NBA_TYPE_A, name)) {
        change.refuse();
    }
}

void vga_check_ebcdic_ae_pwd_cb(Widget widget, XtPointer, XtPointer call_data) {
    const CHANGE change(widget, call_data);
    if (!handle_placeholder(change, VGA_TEXT_PASSWORD, max_password)) {
        check_ae(change, max_password);
    }
}

void vga_check_hex_pwd_cb(Widget widget, XtPointer, XtPointer call_data) {
    if (!handle_placeholder({widget, call_data}, VGA_TEXT_HEX_PASSWORD, max_hex_password)) {
        vga_check_hex_cb(widget, nullptr, call_data);
    }
}
