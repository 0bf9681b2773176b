#include "simnode/kinds.h"

#include "nof/cn.h"
#include "nof/extra_data.h"
#include "nof/lu62.h"
#include "nof/pool.h"
#include "nof/security.h"
#include "nof/tn3270.h"

#include <algorithm>
#include <cstring>

namespace simnode {
namespace {

template <typename Match> const KindRow* search(Match match) {
    const auto rows = kind_rows();
    const auto row = std::find_if(rows.begin(), rows.end(), match);
    return row == rows.end() ? nullptr : &*row;
}

NB_USHORT read16(const NB_BYTE* bytes) {
    NB_USHORT value = 0;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

} // namespace

const KindRow& kind_row(Kind kind) {
    return kind_rows()[static_cast<std::size_t>(kind)];
}

const KindRow* kind_of_query(NB_USHORT opcode) {
    return search([=](const KindRow& row) { return row.query == opcode; });
}

const KindRow* kind_of_define(NB_USHORT opcode) {
    return search([=](const KindRow& row) { return row.define == opcode; });
}

const KindRow* kind_of_remove(NB_USHORT opcode) {
    return search([=](const KindRow& row) { return row.remove == opcode; });
}

const KindRow* kind_named(std::string_view name) {
    std::string wanted = lower(name);
    std::replace(wanted.begin(), wanted.end(), '-', '_');
    return search([&](const KindRow& row) { return row.name == wanted; });
}

std::string make_key(const Key& key, const NB_BYTE* block) {
    std::string result;
    for (const Piece& piece : key) {
        if (piece.number) { // ordered by value
            for (std::size_t i = piece.length; i-- > 0;) {
                result += static_cast<char>(block[piece.offset + i]);
            }
        } else {
            result.append(reinterpret_cast<const char*>(block) + piece.offset, piece.length);
        }
    }
    return result;
}

std::string parent_name(const Piece& piece, const NB_BYTE* block) {
    if (piece.length == 0 || is_blank(block + piece.offset, piece.length)) {
        return {};
    }
    return raw(block + piece.offset, piece.length);
}

std::string name_for_children(Kind kind, const Record& record) {
    // A directory entry's key ends with its type, which the entries below it do not repeat in their
    // parent's name.
    return kind == Kind::directory ? record.key.substr(0, sizeof(NB_FQNAME)) : record.key;
}

const KindRow* holder_of(Kind kind) {
    return search(
        [=](const KindRow& row) { return row.nested.element != 0 && row.nested.kind == kind; });
}

const KindRow& owner_row(const KindRow& row) {
    return *search([&](const KindRow& other) { return (row.parents & kind_bit(other.kind)) != 0; });
}

bool owner_key(const KindRow& row, std::string_view text, std::string& key, std::string& error) {
    const KindRow& owner = owner_row(row);
    Bytes entry(owner.entry_size);
    if (!set_field(fields_of(owner.kind).front(), entry, text, error)) {
        return false;
    }
    if (owner.kind == Kind::tn_client && text.empty()) {
        reinterpret_cast<TN3270_ACCESS_ENTRY*>(entry.data())->client.default_record = 1;
    }
    key = make_key(owner.key, entry.data());
    return true;
}

std::string owner_text(const KindRow& row, const Record& record) {
    const KindRow& owner = owner_row(row);
    const Field& name = fields_of(owner.kind).front();
    Bytes entry(owner.entry_size);
    std::size_t at = 0; // of the piece that holds the name, in the key
    for (const Piece& piece : owner.key) {
        if (piece.length != 0 && piece.offset == name.offset) {
            std::copy_n(record.parent.begin() + static_cast<std::ptrdiff_t>(at), piece.length,
                        entry.begin() + piece.offset);
        }
        at += piece.length;
    }
    return field_text(name, entry);
}

Record make_record(const KindRow& row, Bytes entry, const std::string& owner) {
    Record record;
    record.key = owner + make_key(row.key, entry.data());
    record.parent = row.owned ? owner : parent_name(row.parent, entry.data());
    if (row.kind == Kind::local_lu &&
        reinterpret_cast<const LU62_ENTRY*>(entry.data())->def.nau_address == 0) {
        record.parent.clear(); // an independent LU, whatever PU it was once below
    }
    const auto length = static_cast<NB_USHORT>(entry.size());
    std::memcpy(entry.data(), &length, sizeof length);
    record.entry = std::move(entry);
    return record;
}

std::size_t tail_length(const KindRow& row, const NB_BYTE* block) {
    if (row.tail.block == 0) {
        return 0;
    }
    return std::size_t{read16(block + row.tail.length1)} +
           (row.tail.length2 != 0 ? read16(block + row.tail.length2) : 0);
}

Bytes entry_of_define(const KindRow& row, std::span<const NB_BYTE> block, const Record* old) {
    const std::size_t specific = tail_length(row, block.data());
    Bytes entry(row.entry_size);
    if (old != nullptr) {
        std::copy_n(old->entry.begin(), row.entry_size, entry.begin());
    }
    entry.resize(row.entry_size + (specific + 3) / 4 * 4);
    for (const Copy& copy : row.copies) {
        std::memcpy(entry.data() + copy.entry, block.data() + copy.block, copy.length);
    }
    if (specific != 0) {
        std::memcpy(entry.data() + row.entry_size, block.data() + row.tail.block, specific);
    }
    return entry;
}

NB_ULONG read_count(const NB_BYTE* field, NB_BYTE width) {
    NB_ULONG value = 0;
    std::memcpy(&value, field, width);
    return value;
}

void write_count(NB_BYTE* field, NB_BYTE width, std::size_t count) {
    const auto value = static_cast<NB_ULONG>(count);
    std::memcpy(field, &value, width);
}

std::span<const NB_BYTE> nested_of_define(const KindRow& row, std::span<const NB_BYTE> block) {
    const Nested& nested = row.nested;
    if (nested.element == 0) {
        return {};
    }
    const std::size_t count = read_count(block.data() + nested.block_count, nested.count_width);
    return block.subspan(row.define_size, count * nested.element);
}

Bytes define_of_nested(const KindRow& row, const Bytes& owner, const Bytes& entry) {
    const KindRow& holder = *holder_of(row.kind);
    Bytes block = define_of_entry(holder, owner);
    write_count(block.data() + holder.nested.block_count, holder.nested.count_width, 1);
    block.insert(block.end(), entry.begin(), entry.end());
    return block;
}

// What a kind's define block says beside the entry's fields.
static void complete_define(const KindRow& row, const Bytes& entry, Bytes& block) {
    if (row.kind == Kind::extra_data) {
        reinterpret_cast<DEFINE_EXTRA_DATA*>(block.data())->resource_kind =
            NOF_EXTRA_DATA_LU_0_TO_3;
    } else if (row.kind == Kind::userid) {
        reinterpret_cast<DEFINE_USERID_PASSWORD*>(block.data())->define_type = 1;
    } else if (row.kind == Kind::pool) {
        auto& verb = *reinterpret_cast<DEFINE_LU_POOL*>(block.data());
        const auto& pool = *reinterpret_cast<const LU_POOL_ENTRY*>(entry.data());
        verb.num_lus = !is_blank(pool.lu_name, sizeof pool.lu_name);
        std::memcpy(verb.lu_names[0], pool.lu_name, sizeof pool.lu_name);
    } else if (row.kind == Kind::cn) {
        // Its ports stay as they are.
        reinterpret_cast<DEFINE_CN*>(block.data())->def.num_ports = 0;
    }
}

Bytes define_of_entry(const KindRow& row, const Bytes& entry) {
    Bytes block(row.define_size);
    for (const Copy& copy : row.copies) {
        std::memcpy(block.data() + copy.block, entry.data() + copy.entry, copy.length);
    }
    const std::size_t specific =
        std::min(tail_length(row, block.data()), entry.size() - row.entry_size);
    block.insert(block.end(), entry.begin() + row.entry_size,
                 entry.begin() + row.entry_size + static_cast<std::ptrdiff_t>(specific));
    vcb_header(block.data())->opcode = row.define;
    complete_define(row, entry, block);
    return block;
}

Bytes delete_of_entry(const KindRow& row, const Bytes& entry) {
    const NBA_VERB_ROW* verb = vnv_verb_search(row.remove, 0, 0);
    Bytes block(verb->block_size);
    vcb_header(block.data())->opcode = row.remove;
    for (std::size_t i = 0; i < row.key.size(); ++i) {
        std::memcpy(block.data() + row.remove_key[i].offset, entry.data() + row.key[i].offset,
                    row.remove_key[i].length);
    }
    if (row.kind == Kind::userid) {
        reinterpret_cast<DELETE_USERID_PASSWORD*>(block.data())->delete_type = NAP_REMOVE_USER;
    } else if (row.kind == Kind::extra_data) {
        reinterpret_cast<DELETE_EXTRA_DATA*>(block.data())->resource_kind =
            NOF_EXTRA_DATA_LU_0_TO_3;
    }
    return block;
}

const Field* field_named(const KindRow& row, std::string_view name) {
    for (const Field& field : fields_of(row.kind)) {
        if (field.name == name) {
            return &field;
        }
    }
    return nullptr;
}

std::string display_name(const KindRow& row, const Record& record) {
    std::string name;
    if (row.owned) {
        name = owner_text(row, record);
    }
    for (const Piece& piece : row.key) {
        for (const Field& field : fields_of(row.kind)) {
            if (piece.length != 0 && field.offset == piece.offset) {
                name += (name.empty() ? "" : " ") + field_text(field, record.entry);
                break;
            }
        }
    }
    return name;
}

} // namespace simnode
