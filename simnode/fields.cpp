// The values of fields as texts, and texts as values.
#include "simnode/kinds.h"

#include "nof/tp.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace simnode {

namespace {

// The list of items that stands where a kind's specific data is: from its offset to the entry's
// end. Only load information has one.
constexpr std::size_t ITEMS = sizeof(TP_LOAD_INFO_ENTRY);

// Where the first item of a type begins; the end of the list when there is none.
std::size_t item_at(const Bytes& entry, unsigned type) {
    std::size_t at = ITEMS;
    while (at + sizeof(LTV_ITEM) <= entry.size()) {
        const auto& item = *reinterpret_cast<const LTV_ITEM*>(entry.data() + at);
        const std::size_t length = item.length.get();
        if (length < sizeof item || at + length > entry.size()) {
            break;
        }
        if (item.type == type) {
            return at;
        }
        at += length;
    }
    return at;
}

std::string item_text(const Bytes& entry, unsigned type) {
    const std::size_t at = item_at(entry, type);
    if (at + sizeof(LTV_ITEM) > entry.size()) {
        return {};
    }
    const auto& item = *reinterpret_cast<const LTV_ITEM*>(entry.data() + at);
    const std::size_t length = item.length.get();
    if (item.type != type || length < sizeof item || at + length > entry.size()) {
        return {};
    }
    return raw(entry.data() + at + sizeof item, length - sizeof item);
}

void set_item(Bytes& entry, unsigned type, std::string_view text) {
    auto& definition = reinterpret_cast<TP_LOAD_INFO_ENTRY*>(entry.data())->def_data;
    entry.resize(ITEMS + std::min<std::size_t>(entry.size() - ITEMS, definition.ltv_length));
    const std::size_t at = item_at(entry, type);
    if (at + sizeof(LTV_ITEM) <= entry.size()) {
        const auto start = entry.begin() + static_cast<std::ptrdiff_t>(at);
        const std::size_t length = reinterpret_cast<const LTV_ITEM*>(&*start)->length.get();
        if (length < sizeof(LTV_ITEM) || at + length > entry.size()) {
            entry.resize(at); // what follows is no list
        } else {
            entry.erase(start, start + static_cast<std::ptrdiff_t>(length));
        }
    }
    LTV_ITEM item{};
    item.length.set(static_cast<NB_USHORT>(sizeof item + text.size()));
    item.type = static_cast<NB_BYTE>(type);
    const auto* header = reinterpret_cast<const NB_BYTE*>(&item);
    entry.insert(entry.end(), header, header + sizeof item);
    entry.insert(entry.end(), text.begin(), text.end());
    reinterpret_cast<TP_LOAD_INFO_ENTRY*>(entry.data())->def_data.ltv_length =
        static_cast<NB_USHORT>(entry.size() - ITEMS);
    entry.resize((entry.size() + 3) / 4 * 4);
}

} // namespace

std::string field_text(const Field& field, const Bytes& entry) {
    if (field.type == FieldType::item) {
        return item_text(entry, field.offset);
    }
    if (field.type == FieldType::tail) {
        return to_hex(entry.data() + field.offset, entry.size() - field.offset);
    }
    if (field.offset + std::size_t{field.length} > entry.size()) {
        return {};
    }
    const NB_BYTE* bytes = entry.data() + field.offset;
    NB_ULONG value = 0;
    std::memcpy(&value, bytes, std::min<std::size_t>(field.length, sizeof value));
    switch (field.type) {
    case FieldType::ebcdic:
    case FieldType::local: {
        const std::string name = field.type == FieldType::ebcdic ? ebcdic_text(bytes, field.length)
                                                                 : local_text(bytes, field.length);
        return name.empty() && bytes[0] != 0 ? " " : name; // blanks are not the same as nothing
    }
    case FieldType::text:
        return local_text(bytes, field.length);
    case FieldType::number:
        return std::to_string(value);
    case FieldType::flag:
        return value != 0 ? "true" : "false";
    case FieldType::choice:
        for (const Choice& choice : field.choices) {
            if (choice.value == value) {
                return choice.name;
            }
        }
        return std::to_string(value);
    default:
        return to_hex(bytes, field.length);
    }
}

namespace {

bool parse_value(const Field& field, std::string_view text, NB_ULONG& value, std::string& error) {
    if (field.type == FieldType::flag && (text == "true" || text == "false")) {
        value = text == "true";
        return true;
    }
    for (const Choice& choice : field.choices) {
        if (text == choice.name) {
            value = choice.value;
            return true;
        }
    }
    const auto [rest, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool fits = field.length >= sizeof value || value >> (8 * field.length) == 0;
    if (code == std::errc() && rest == text.data() + text.size() && fits && !text.empty()) {
        return true;
    }
    error = "not a value of " + std::string(field.name) + ": " + std::string(text);
    for (const Choice& choice : field.choices) {
        error += (&choice == field.choices.data() ? "; one of " : ", ") + std::string(choice.name);
    }
    return false;
}

} // namespace

bool set_field(const Field& field, Bytes& entry, std::string_view text, std::string& error) {
    if (field.type == FieldType::item) {
        if (text.size() > 255) {
            error = std::string(field.name) + " is longer than 255 characters";
            return false;
        }
        set_item(entry, field.offset, text);
        return true;
    }
    if (field.type == FieldType::tail) {
        Bytes bytes;
        if (!from_hex(text, bytes)) {
            error = std::string(field.name) + " is not an even number of hexadecimal digits";
            return false;
        }
        bytes.resize((bytes.size() + 3) / 4 * 4);
        entry.resize(field.offset);
        entry.insert(entry.end(), bytes.begin(), bytes.end());
        return true;
    }
    if (field.offset + std::size_t{field.length} > entry.size()) {
        entry.resize((field.offset + std::size_t{field.length} + 3) / 4 * 4);
    }
    NB_BYTE* bytes = entry.data() + field.offset;
    const bool name = field.type == FieldType::ebcdic || field.type == FieldType::local;
    const std::size_t room = field.length - (field.type == FieldType::text ? 1u : 0u);
    if ((name || field.type == FieldType::text) && text.size() > room) {
        error = std::string(field.name) + " is longer than " + std::to_string(room) +
                " characters: " + std::string(text);
        return false;
    }
    if (name && text.empty()) {
        std::memset(bytes, 0, field.length);
        return true;
    }
    switch (field.type) {
    case FieldType::ebcdic:
        put_ebcdic(bytes, field.length, text);
        return true;
    case FieldType::local:
        put_local(bytes, field.length, text);
        return true;
    case FieldType::text:
        put_text(reinterpret_cast<char*>(bytes), field.length, text);
        return true;
    case FieldType::hex:
    case FieldType::secret:
    case FieldType::node_id: {
        Bytes value;
        if (!from_hex(text, value) || value.size() > field.length) {
            error = std::string(field.name) + " is not an even number of at most " +
                    std::to_string(2 * field.length) + " hexadecimal digits";
            return false;
        }
        value.resize(field.length);
        std::copy(value.begin(), value.end(), bytes);
        return true;
    }
    default: {
        NB_ULONG value = 0;
        if (!parse_value(field, text, value, error)) {
            return false;
        }
        std::memcpy(bytes, &value, std::min<std::size_t>(field.length, sizeof value));
        return true;
    }
    }
}

} // namespace simnode
