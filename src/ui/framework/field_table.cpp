// The kinds of field: how each shows the bytes of an image and reads them back.
#include "ui/framework/field_table.h"

#include "common/assert.h"
#include "common/names.h"
#include "nof/vcb.h"
#include "shell/messages.h"
#include "ui/framework/field_table_internal.h"
#include "ui/framework/texts.h"

#include <Xm/XmAll.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr std::size_t node_id_block_width = 3; // digits of 8
constexpr std::size_t maximum_hex_bytes = 100;

const char* help_of(const vga_form* form, const VGA_FIELD& field) {
    return field.help_tag != nullptr ? field.help_tag : form->row->help_tag;
}

bool refuse(vga_form* form, const VGA_FIELD& field, Widget widget, int message) {
    return vga_refuse_field(&form->common, widget, {message, help_of(form, field)});
}

const char* place_of(const VGA_FIELD_PLACE& place, const void* image) {
    return static_cast<const char*>(image) + place.offset;
}
char* place_of(const VGA_FIELD_PLACE& place, void* image) {
    return static_cast<char*>(image) + place.offset;
}

// ---- numbers of 1, 2 or 4 bytes ----

template <typename Number> Number load(const void* from) {
    Number number;
    std::memcpy(&number, from, sizeof number);
    return number;
}

NB_ULONG get_number(const VGA_FIELD_PLACE& place, bool big_endian, const void* image) {
    const char* from = place_of(place, image);
    switch (place.size) {
    case 1:
        return load<NB_BYTE>(from);
    case 2:
        return big_endian ? load<NB_BE16>(from).get() : load<NB_USHORT>(from);
    default:
        VGA_ASSERT(place.size == sizeof(NB_ULONG));
        return big_endian ? load<NB_BE32>(from).get() : load<NB_ULONG>(from);
    }
}

void put_number(const VGA_FIELD_PLACE& place, bool big_endian, NB_ULONG value, void* image) {
    NB_BYTE bytes[sizeof value];
    for (std::size_t i = 0; i < place.size; ++i) {
        const std::size_t at = big_endian ? place.size - 1 - i : i;
        bytes[at] = static_cast<NB_BYTE>(value >> (8 * i));
    }
    std::memcpy(place_of(place, image), bytes, place.size);
}

NB_ULONG field_number(const VGA_FIELD& field, const void* image) {
    return get_number(field.place, field.big_endian, image);
}
void set_field_number(const VGA_FIELD& field, NB_ULONG value, void* image) {
    put_number(field.place, field.big_endian, value, image);
}

// ---- texts ----

std::string text_of(Widget text) {
    char* string = XmTextGetString(text);
    std::string result(string != nullptr ? string : "");
    XtFree(string);
    return result;
}

void set_text(Widget text, const std::string& value) {
    XmTextSetString(text, const_cast<char*>(value.c_str()));
}

// The characters of a text, or nothing with the operator told that there are none.
bool read_text(vga_form* form, const VGA_FIELD& field, std::string* text) {
    Widget widget = vga_form_widget(form, field.widget);
    *text = text_of(widget);
    return !text->empty() || field.empty == 0 || refuse(form, field, widget, field.empty);
}

void show_local(vga_form* form, const VGA_FIELD& field, const void* image) {
    const char* from = place_of(field.place, image);
    std::string text(from, strnlen(from, field.place.size));
    text.erase(text.find_last_not_of(' ') + 1);
    set_text(vga_form_widget(form, field.widget), text);
}

bool read_local_text(vga_form* form, const VGA_FIELD& field, void* image) {
    std::string text;
    if (!read_text(form, field, &text)) {
        return false;
    }
    text.resize(std::min(text.size(), field.place.size - 1));
    char* to = place_of(field.place, image);
    std::memset(to, 0, field.place.size);
    std::copy(text.begin(), text.end(), to);
    return true;
}

bool read_local_name(vga_form* form, const VGA_FIELD& field, void* image) {
    std::string text;
    if (!read_text(form, field, &text)) {
        return false;
    }
    text.resize(field.place.size, ' ');
    std::copy(text.begin(), text.end(), place_of(field.place, image));
    return true;
}

std::string local_name(const void* name, std::size_t size) {
    std::string text(size + 1, '\0');
    van_ebcdic_to_ascii(text.data(), static_cast<const NB_BYTE*>(name), size);
    return text.c_str();
}

void show_name(vga_form* form, const VGA_FIELD& field, const void* image) {
    set_text(vga_form_widget(form, field.widget),
             local_name(place_of(field.place, image), field.place.size));
}

bool read_name(vga_form* form, const VGA_FIELD& field, void* image) {
    std::string text;
    if (!read_text(form, field, &text)) {
        return false;
    }
    auto* name = reinterpret_cast<NB_BYTE*>(place_of(field.place, image));
    van_ascii_to_ebcdic(name, text.c_str(), field.place.size);
    const NBA_CHARACTER_SET set = field.kind == VGA_FIELD_KIND::NAME_A ? NBA_TYPE_A : NBA_TYPE_AE;
    return field.bad == 0 || ntl_check_name(set, name, field.place.size) ||
           refuse(form, field, vga_form_widget(form, field.widget), field.bad);
}

void show_fq_name(vga_form* form, const VGA_FIELD& field, const void* image) {
    const auto* name = reinterpret_cast<const NB_BYTE*>(place_of(field.place, image));
    char network[SNA_NAME_LENGTH + 1];
    char local[SNA_NAME_LENGTH + 1];
    vga_get_fq_net_name(network, name);
    vga_get_fq_name(local, name);
    if (field.kind == VGA_FIELD_KIND::FQ_WILDCARD) {
        vga_getw_fq_net_name(network, name);
    }
    set_text(vga_form_widget(form, field.widget), network);
    set_text(vga_form_widget(form, field.second), local);
}

bool read_fq_name(vga_form* form, const VGA_FIELD& field, void* image) {
    Widget network = vga_form_widget(form, field.widget);
    Widget name = vga_form_widget(form, field.second);
    auto* to = reinterpret_cast<NB_BYTE*>(place_of(field.place, image));
    if (field.kind == VGA_FIELD_KIND::FQ_WILDCARD) {
        return vga_buildw_fq_name(network, name, to) || refuse(form, field, network, field.bad);
    }
    if (field.empty == 0 && field.bad == 0 && text_of(network).empty() && text_of(name).empty()) {
        std::fill_n(to, field.place.size, EBCDIC_BLANK);
        return true;
    }
    return (vga_build_fq_name(network, name, to) && ntl_check_fq_name(to) == NTL_FQ_QUALIFIED) ||
           refuse(form, field, network, field.bad);
}

void show_node_id(vga_form* form, const VGA_FIELD& field, const void* image) {
    char digits[2 * sizeof(NB_ULONG) + 1];
    std::snprintf(digits, sizeof digits, "%08x", load<NB_BE32>(place_of(field.place, image)).get());
    // As a value, which passes by the check that turns what is typed to upper case.
    const std::string block(digits, node_id_block_width);
    XtVaSetValues(vga_form_widget(form, field.widget), XmNvalue, block.c_str(), nullptr);
    XtVaSetValues(vga_form_widget(form, field.second), XmNvalue, digits + node_id_block_width,
                  nullptr);
}

bool read_node_id(vga_form* form, const VGA_FIELD& field, void* image) {
    const char* help = help_of(form, field);
    return vga_get_node_id(&form->common, vga_form_widget(form, field.widget),
                           vga_form_widget(form, field.second), {field.empty, help},
                           {field.bad, help},
                           reinterpret_cast<NB_BYTE*>(place_of(field.place, image)));
}

void show_decimal(vga_form* form, const VGA_FIELD& field, const void* image) {
    const NB_ULONG number = field_number(field, image);
    const bool empty = field.empty == 0 && number == field.empty_value &&
                       (number < field.minimum || number > field.maximum);
    set_text(vga_form_widget(form, field.widget), empty ? "" : std::to_string(number));
}

bool read_decimal(vga_form* form, const VGA_FIELD& field, void* image) {
    Widget text = vga_form_widget(form, field.widget);
    NB_ULONG number = field.empty_value;
    if (field.empty != 0 || !text_of(text).empty()) {
        const VGA_FIELD_RANGE range = field.bounds != nullptr
                                          ? field.bounds(form, image)
                                          : VGA_FIELD_RANGE{field.minimum, field.maximum};
        const char* help = help_of(form, field);
        if (!vga_check_field(&form->common, text, range.minimum, range.maximum, {field.empty, help},
                             {field.range, help}, &number)) {
            return false;
        }
    }
    set_field_number(field, number, image);
    return true;
}

void show_hex(vga_form* form, const VGA_FIELD& field, const void* image) {
    std::string digits;
    const auto* bytes = reinterpret_cast<const NB_BYTE*>(place_of(field.place, image));
    for (std::size_t i = 0; i < field.place.size; ++i) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", bytes[i]);
        digits += pair;
    }
    set_text(vga_form_widget(form, field.widget), digits);
}

// All digits or none.
bool read_hex(vga_form* form, const VGA_FIELD& field, void* image) {
    Widget text = vga_form_widget(form, field.widget);
    NB_BYTE bytes[maximum_hex_bytes] = {};
    const int read =
        vga_get_hex_field(&form->common, text, bytes, static_cast<int>(field.place.size),
                          {field.bad, help_of(form, field)});
    if (read < 0) {
        return false;
    }
    if (read == 0 && field.empty != 0) {
        return refuse(form, field, text, field.empty);
    }
    if (read != 0 && static_cast<std::size_t>(read) != field.place.size) {
        return refuse(form, field, text, field.bad);
    }
    std::memcpy(place_of(field.place, image), bytes, field.place.size);
    return true;
}

// ---- choices ----

void show_toggle(vga_form* form, const VGA_FIELD& field, const void* image) {
    const NB_ULONG number = field_number(field, image);
    const bool set = field.mask != 0 ? (number & field.mask) != 0 : number == field.on;
    XmToggleButtonSetState(vga_form_widget(form, field.widget), set, False);
}

bool read_toggle(vga_form* form, const VGA_FIELD& field, void* image) {
    const bool set = XmToggleButtonGetState(vga_form_widget(form, field.widget));
    NB_ULONG number = set ? field.on : field.off;
    if (field.mask != 0) {
        number = field_number(field, image) & ~field.mask;
        number |= set ? field.mask : 0;
    }
    set_field_number(field, number, image);
    return true;
}

bool is_offered(vga_form* form, const VGA_FIELD& field, const VGA_FIELD_CHOICE& choice) {
    return field.offered == nullptr || field.offered(form, choice.code);
}

void show_option(vga_form* form, const VGA_FIELD& field, const void* image) {
    const NB_ULONG number = field_number(field, image);
    int offered = 0;
    Widget selected = nullptr;
    for (const VGA_FIELD_CHOICE& choice : field.choices) {
        Widget entry = vga_form_widget(form, choice.entry);
        if (!is_offered(form, field, choice)) {
            XtUnmanageChild(entry);
            continue;
        }
        XtManageChild(entry);
        ++offered;
        if (selected == nullptr || choice.code == number) {
            selected = entry;
        }
    }
    if (selected != nullptr) {
        XtVaSetValues(vga_form_widget(form, field.widget), XmNmenuHistory, selected, nullptr);
    }
    if (field.offered != nullptr) {
        vga_manage_field(form, field, offered > 1);
    }
}

bool read_option(vga_form* form, const VGA_FIELD& field, void* image) {
    Widget selected = nullptr;
    XtVaGetValues(vga_form_widget(form, field.widget), XmNmenuHistory, &selected, nullptr);
    for (const VGA_FIELD_CHOICE& choice : field.choices) {
        if (vga_form_widget(form, choice.entry) == selected) {
            set_field_number(field, choice.code, image);
        }
    }
    return true;
}

void show_radio(vga_form* form, const VGA_FIELD& field, const void* image) {
    const NB_ULONG number = field_number(field, image);
    for (const VGA_FIELD_CHOICE& choice : field.choices) {
        XmToggleButtonSetState(vga_form_widget(form, choice.entry), choice.code == number, False);
    }
}

bool read_radio(vga_form* form, const VGA_FIELD& field, void* image) {
    for (const VGA_FIELD_CHOICE& choice : field.choices) {
        if (XmToggleButtonGetState(vga_form_widget(form, choice.entry))) {
            set_field_number(field, choice.code, image);
        }
    }
    return true;
}

// ---- lists ----

void show_list(vga_form* form, const VGA_FIELD& field, const void* image) {
    Widget list = vga_form_widget(form, field.widget);
    XmListDeleteAllItems(list);
    const std::size_t count = std::min<std::size_t>(
        get_number(field.count, field.big_endian, image), field.place.size / field.item_size);
    for (std::size_t i = 0; i < count; ++i) {
        const char* name = place_of(field.place, image) + i * field.item_size;
        std::string text = field.ebcdic_items ? local_name(name, field.item_size)
                                              : std::string(name, strnlen(name, field.item_size));
        text.erase(text.find_last_not_of(' ') + 1);
        XmString item = XmStringCreateLocalized(text.data());
        XmListAddItemUnselected(list, item, 0);
        XmStringFree(item);
    }
}

bool read_list(vga_form* form, const VGA_FIELD& field, void* image) {
    Widget list = vga_form_widget(form, field.widget);
    XmStringTable items = nullptr;
    int count = 0;
    XtVaGetValues(list, XmNitems, &items, XmNitemCount, &count, nullptr);
    if (count == 0 && field.empty != 0) {
        return refuse(form, field, list, field.empty);
    }
    if (static_cast<std::size_t>(count) > field.place.size / field.item_size) {
        return refuse(form, field, list, field.range);
    }
    std::memset(place_of(field.place, image), 0, field.place.size);
    for (int i = 0; i < count; ++i) {
        char* string = static_cast<char*>(XmStringUnparse(
            items[i], nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
        std::string text(string != nullptr ? string : "");
        XtFree(string);
        char* name = place_of(field.place, image) + static_cast<std::size_t>(i) * field.item_size;
        if (field.ebcdic_items) {
            van_ascii_to_ebcdic(reinterpret_cast<NB_BYTE*>(name), text.c_str(), field.item_size);
        } else {
            text.resize(field.item_size, ' ');
            std::copy(text.begin(), text.end(), name);
        }
    }
    put_number(field.count, field.big_endian, static_cast<NB_ULONG>(count), image);
    return true;
}

// ---- names and passwords ----

bool is_blank(char c) {
    return c == '\0' || c == ' ' || static_cast<NB_BYTE>(c) == EBCDIC_BLANK;
}
bool is_empty(const VGA_FIELD_PLACE& place, const void* image) {
    return std::all_of(place_of(place, image), place_of(place, image) + place.size, is_blank);
}

void show_unset(vga_form* form, const VGA_FIELD& field, const void* image) {
    XmToggleButtonSetState(vga_form_widget(form, field.widget), is_empty(field.place, image),
                           False);
}

bool read_unset(vga_form* form, const VGA_FIELD& field, void* image) {
    if (XmToggleButtonGetState(vga_form_widget(form, field.widget))) {
        std::memset(place_of(field.place, image), static_cast<int>(field.empty_value),
                    field.place.size);
    }
    return true;
}

void show_tp_hex(vga_form* form, const VGA_FIELD& field, const void* image) {
    const auto* name = reinterpret_cast<const NB_BYTE*>(place_of(field.place, image));
    std::string digits;
    for (std::size_t i = 0; i < ntl_name_length(name, field.place.size); ++i) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", name[i]);
        digits += pair;
    }
    set_text(vga_form_widget(form, field.widget), digits);
}

bool read_tp_hex(vga_form* form, const VGA_FIELD& field, void* image) {
    std::string text;
    return read_text(form, field, &text) &&
           (vga_parse_hex_tp_name(text.c_str(),
                                  reinterpret_cast<NB_BYTE*>(place_of(field.place, image))) ||
            refuse(form, field, vga_form_widget(form, field.widget), field.bad));
}

void show_password(vga_form* form, const VGA_FIELD& field, const void* image) {
    set_text(vga_form_widget(form, field.widget),
             is_empty(field.place, image) ? "" : gvga_messages[VGA_TEXT_PASSWORD]);
}

bool read_password(vga_form* form, const VGA_FIELD& field, void* image) {
    return (text_of(vga_form_widget(form, field.widget)) == gvga_messages[VGA_TEXT_PASSWORD] &&
            !is_empty(field.place, image)) ||
           read_local_name(form, field, image);
}

// ---- of the dialog ----

void show_own(vga_form* form, const VGA_FIELD& field, const void* image) {
    if (field.show != nullptr) {
        field.show(form, image);
    }
}

bool read_own(vga_form* form, const VGA_FIELD& field, void* image) {
    return field.read == nullptr || field.read(form, image);
}

constexpr VGA_KIND_OF_FIELD kinds[] = {
    {show_local, read_local_text, VGA_FIELD_USE::TEXT},  // LOCAL_TEXT
    {show_local, read_local_name, VGA_FIELD_USE::TEXT},  // LOCAL_NAME
    {show_name, read_name, VGA_FIELD_USE::TEXT},         // NAME_A
    {show_name, read_name, VGA_FIELD_USE::TEXT},         // NAME_AE
    {show_fq_name, read_fq_name, VGA_FIELD_USE::TEXTS},  // FQ_NAME
    {show_fq_name, read_fq_name, VGA_FIELD_USE::TEXTS},  // FQ_WILDCARD
    {show_node_id, read_node_id, VGA_FIELD_USE::TEXTS},  // NODE_ID
    {show_decimal, read_decimal, VGA_FIELD_USE::TEXT},   // DECIMAL
    {show_hex, read_hex, VGA_FIELD_USE::TEXT},           // HEX
    {show_toggle, read_toggle, VGA_FIELD_USE::CONTROL},  // TOGGLE
    {show_option, read_option, VGA_FIELD_USE::CONTROL},  // OPTION_MENU
    {show_radio, read_radio, VGA_FIELD_USE::CONTROLS},   // RADIO
    {show_list, read_list, VGA_FIELD_USE::CONTROL},      // LIST
    {show_unset, read_unset, VGA_FIELD_USE::CONTROL},    // UNSET
    {show_name, read_name, VGA_FIELD_USE::TEXT},         // TP_NAME
    {show_tp_hex, read_tp_hex, VGA_FIELD_USE::TEXT},     // TP_HEX
    {show_password, read_password, VGA_FIELD_USE::TEXT}, // PASSWORD
    {show_own, read_own, VGA_FIELD_USE::CONTROL},        // OWN
};
static_assert(std::size(kinds) == static_cast<std::size_t>(VGA_FIELD_KIND::OWN) + 1);

bool applies(vga_form* form, const VGA_FIELD& field) {
    return field.applies == nullptr || field.applies(form, nullptr);
}

// The bytes of a row that does not apply may belong to another row.
void show_nothing(vga_form* form, const VGA_FIELD& field) {
    const VGA_FIELD_USE use = vga_kind_of(field).use;
    if (use == VGA_FIELD_USE::TEXT || use == VGA_FIELD_USE::TEXTS) {
        for (const VGA_FIELD_WIDGET& row : {field.widget, field.second}) {
            Widget text = vga_form_widget(form, row);
            if (text != nullptr && (XmIsTextField(text) || XmIsText(text))) {
                set_text(text, "");
            }
        }
    }
}

bool is_same_place(const VGA_FIELD_PLACE& place, bool text, const void* a, const void* b) {
    const char* from = place_of(place, a);
    return std::equal(from, from + place.size, place_of(place, b), [&](char x, char y) {
        return x == y || (text && is_blank(x) && is_blank(y));
    });
}

bool is_same(const VGA_FIELD& field, const void* a, const void* b) {
    if (field.kind == VGA_FIELD_KIND::UNSET) {
        return is_empty(field.place, a) == is_empty(field.place, b);
    }
    const VGA_FIELD_USE use = vga_kind_of(field).use;
    const bool number =
        field.kind == VGA_FIELD_KIND::DECIMAL || field.kind == VGA_FIELD_KIND::HEX ||
        field.kind == VGA_FIELD_KIND::NODE_ID || field.kind == VGA_FIELD_KIND::TP_HEX;
    const bool text = !number && use != VGA_FIELD_USE::CONTROL && use != VGA_FIELD_USE::CONTROLS;
    return is_same_place(field.place, text, a, b) && is_same_place(field.count, false, a, b);
}

} // namespace

const VGA_KIND_OF_FIELD& vga_kind_of(const VGA_FIELD& field) {
    return kinds[static_cast<std::size_t>(field.kind)];
}

void vga_show_fields(vga_form* form, const void* image) {
    for (const VGA_FIELD& field : form->row->fields) {
        if (applies(form, field)) {
            vga_kind_of(field).show(form, field, image);
        } else {
            show_nothing(form, field);
        }
    }
    vga_adjust_fields(form);
}

bool vga_read_fields(vga_form* form, void* image) {
    for (const VGA_FIELD& field : form->row->fields) {
        if (!applies(form, field)) {
            continue;
        }
        if (!vga_kind_of(field).read(form, field, image) ||
            (field.check != nullptr && !field.check(form, image))) {
            return false;
        }
    }
    return true;
}

bool vga_same_fields(vga_form* form, const void* a, const void* b, bool key_only) {
    return std::ranges::all_of(form->row->fields, [&](const VGA_FIELD& field) {
        return (key_only && !field.key) || !applies(form, field) || is_same(field, a, b);
    });
}
