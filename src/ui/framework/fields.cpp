#include "ui/framework/fields.h"

#include "common/assert.h"
#include "common/names.h"
#include "ui/framework/dialog.h"

#include <Xm/XmAll.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t number_width = 50;
constexpr std::size_t block_width = 3;
constexpr std::size_t id_width = 5;

// At most width characters of a text field.
std::string field_text(Widget field, std::size_t width) {
    char* text = XmTextGetString(field);
    std::string result(text != nullptr ? text : "");
    XtFree(text);
    if (result.size() > width) {
        result.resize(width);
    }
    return result;
}

// Compares in 64 bits, so that neither a sign nor an overflow can slip into the range.
template <typename Number>
bool check_number(vga_dialog* dialog, Widget field, Number minimum, Number maximum,
                  const vga_field_error& empty, const vga_field_error& range, Number* value) {
    const std::string text = field_text(field, number_width);
    if (text.empty()) {
        return vga_refuse_field(dialog, field, empty);
    }
    const long long number = std::strtoll(text.c_str(), nullptr, 10);
    if (number < minimum || number > maximum) {
        return vga_refuse_field(dialog, field, range, "l l", minimum, maximum);
    }
    *value = static_cast<Number>(number);
    return true;
}

bool all_hex(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return vga_hex_digit(c) >= 0; });
}

void put_name(std::string_view text, NB_BYTE* fq_name) {
    std::copy(text.begin(), text.end(), fq_name);
    std::fill(fq_name + text.size(), fq_name + FQ_NAME_LENGTH, 0);
    vga_pad_buffer(fq_name, FQ_NAME_LENGTH, ' ');
    nba_local_to_ebcdic(fq_name, FQ_NAME_LENGTH);
}

} // namespace

bool vga_check_field(vga_dialog* dialog, Widget field, NB_ULONG minimum, NB_ULONG maximum,
                     const vga_field_error& empty, const vga_field_error& range, NB_ULONG* value) {
    return check_number(dialog, field, minimum, maximum, empty, range, value);
}

bool vga_check_signed_field(vga_dialog* dialog, Widget field, NB_LONG minimum, NB_LONG maximum,
                            const vga_field_error& empty, const vga_field_error& range,
                            NB_LONG* value) {
    return check_number(dialog, field, minimum, maximum, empty, range, value);
}

int vga_get_hex_field(vga_dialog* dialog, Widget field, NB_BYTE* bytes, int max_len,
                      const vga_field_error& odd) {
    VGA_ASSERT(200 >= max_len * 2);
    const std::string text = field_text(field, static_cast<std::size_t>(max_len) * 2);
    if (text.size() % 2 != 0 || !all_hex(text)) {
        vga_refuse_field(dialog, field, odd);
        return -1;
    }
    for (std::size_t i = 0; i < text.size(); i += 2) {
        bytes[i / 2] =
            static_cast<NB_BYTE>(vga_hex_digit(text[i]) << 4 | vga_hex_digit(text[i + 1]));
    }
    return static_cast<int>(text.size() / 2);
}

bool vga_get_node_id(vga_dialog* dialog, Widget block_field, Widget id_field,
                     const vga_field_error& empty, const vga_field_error& format,
                     NB_BYTE node_id[4]) {
    const std::string block = field_text(block_field, block_width);
    const std::string id = field_text(id_field, id_width);
    if (block.empty() && id.empty()) {
        if (empty.message != 0) {
            return vga_refuse_field(dialog, block_field, empty);
        }
        std::fill_n(node_id, 4, 0);
        return true;
    }
    if (block.size() != block_width || !all_hex(block)) {
        return vga_refuse_field(dialog, block_field, format);
    }
    if (id.size() != id_width || !all_hex(id)) {
        return vga_refuse_field(dialog, id_field, format);
    }
    const unsigned long number = std::strtoul((block + id).c_str(), nullptr, 16);
    for (int i = 0; i < 4; ++i) {
        node_id[i] = static_cast<NB_BYTE>(number >> (24 - 8 * i));
    }
    return true;
}

bool vga_build_fq_name(Widget network_field, Widget name_field, NB_BYTE* fq_name) {
    const std::string network = field_text(network_field, SNA_NAME_LENGTH);
    const std::string name = field_text(name_field, SNA_NAME_LENGTH);
    if (network.empty() || name.empty()) {
        return false;
    }
    put_name(network + "." + name, fq_name);
    return true;
}

bool vga_buildw_fq_name(Widget network_field, Widget name_field, NB_BYTE* fq_name) {
    const std::string network = field_text(network_field, SNA_NAME_LENGTH);
    const std::string name = field_text(name_field, SNA_NAME_LENGTH);
    if (network.empty() && !name.empty()) {
        return false;
    }
    put_name(name.empty() ? network : network + "." + name, fq_name);
    return true;
}

namespace {

void take_name(Widget, XtPointer text, XtPointer call_data) {
    const auto* call = static_cast<const XmSelectionBoxCallbackStruct*>(call_data);
    char* name = static_cast<char*>(XmStringUnparse(call->value, nullptr, XmCHARSET_TEXT,
                                                    XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    if (name != nullptr) {
        XmTextSetString(static_cast<Widget>(text), name);
        XtFree(name);
    }
}

} // namespace

void vga_offer_names(Widget text, std::span<const std::string> names) {
    Widget board = vga_get_popup_list(text, take_name, text, !names.empty());
    std::vector<XmString> items;
    for (const std::string& name : names) {
        items.push_back(XmStringCreateLocalized(const_cast<char*>(name.c_str())));
    }
    if (!items.empty()) {
        XtVaSetValues(board, XmNlistItems, items.data(), XmNlistItemCount,
                      static_cast<int>(items.size()), nullptr);
    }
    XtManageChild(board);
    for (XmString item : items) {
        XmStringFree(item);
    }
}
