// The values of fields as texts, and texts as values.
#include "simnode/kinds.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace simnode {

std::string field_text(const Field& field, const Bytes& entry) {
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
