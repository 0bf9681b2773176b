#include "simnode/kinds.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/node.h"
#include "nof/pu_lu.h"
#include "nof/trace.h"

#include <algorithm>
#include <cstring>

namespace simnode {
namespace {

// A field of a query block, entry or delete block as a piece of a key.
#define PIECE(type, field)                                                                         \
    { offsetof(type, field), sizeof(std::declval<type&>().field) }
#define NUMBER(type, field)                                                                        \
    { offsetof(type, field), sizeof(std::declval<type&>().field), true }

constexpr NB_USHORT ENTRY_NAME8 = 4;

constexpr Copy dlc_copies[] = {{12, 4, 8}, {20, 36, 64}};
constexpr Copy port_copies[] = {{12, 4, 8}, {20, 44, 700}};
constexpr Copy ls_copies[] = {{12, 4, 8}, {20, 512, 488}};
constexpr Copy dlur_pu_copies[] = {{12, 2, 8},   {20, 10, 32},  {52, 67, 1},  {68, 68, 17},
                                   {85, 85, 17}, {102, 102, 4}, {110, 106, 1}};
constexpr Copy lu_0_to_3_copies[] = {{12, 4, 8}, {20, 516, 116}};
constexpr Copy downstream_lu_copies[] = {{12, 4, 8}, {20, 16, 76}};
constexpr Copy local_lu_copies[] = {{12, 4, 8}, {20, 20, 296}};
constexpr Copy mode_definition_copies[] = {{12, 4, 8}, {20, 12, 108}};
constexpr Copy directory_copies[] = {
    {12, 2, 17}, {30, 20, 2}, {32, 22, 48}, {80, 70, 17}, {98, 88, 2}};
constexpr Copy partner_definition_copies[] = {{12, 2, 17}, {29, 19, 79}};
constexpr Copy cos_copies[] = {{12, 2, 8}, {20, 10, 32}, {52, 42, 1}};

constexpr Key name8 = {{{ENTRY_NAME8, 8}}};
constexpr Key query_name8 = {{{38, 8}}};
constexpr Key remove_name8 = {{{12, 8}}};

constexpr NB_ULONG any_pu = kind_bit(Kind::pu) | kind_bit(Kind::dlur_pu);

constexpr KindRow rows[] = {
    {.kind = Kind::dlc,
     .name = "dlc",
     .entry_size = sizeof(DLC_ENTRY),
     .query = NAP_QUERY_DLC,
     .query_key = query_name8,
     .key = name8,
     .indication = NAP_DLC_INDICATION,
     .define = NAP_DEFINE_DLC,
     .define_size = sizeof(DEFINE_DLC),
     .remove = NAP_DELETE_DLC,
     .remove_key = remove_name8,
     .copies = dlc_copies,
     .tail = {sizeof(DEFINE_DLC), offsetof(DEFINE_DLC, specific_length)}},
    {.kind = Kind::port,
     .name = "port",
     .entry_size = sizeof(PORT_ENTRY),
     .query = NAP_QUERY_PORT,
     .query_key = query_name8,
     .key = name8,
     .query_parent = PIECE(QUERY_PORT, dlc_name),
     .parent = PIECE(PORT_ENTRY, def.dlc_name),
     .parents = kind_bit(Kind::dlc),
     .indication = NAP_PORT_INDICATION,
     .define = NAP_DEFINE_PORT,
     .define_size = sizeof(DEFINE_PORT),
     .remove = NAP_DELETE_PORT,
     .remove_key = remove_name8,
     .copies = port_copies,
     .tail = {sizeof(DEFINE_PORT), offsetof(DEFINE_PORT, def.port_data_length),
              offsetof(DEFINE_PORT, def.link_data_length)}},
    {.kind = Kind::ls,
     .name = "ls",
     .entry_size = sizeof(LS_ENTRY),
     .query = NAP_QUERY_LS,
     .query_key = query_name8,
     .key = name8,
     .query_parent = PIECE(QUERY_LS, port_name),
     .parent = PIECE(LS_ENTRY, def.port_name),
     .parents = kind_bit(Kind::port),
     .indication = NAP_LS_INDICATION,
     .define = NAP_DEFINE_LS,
     .define_size = sizeof(DEFINE_LS),
     .remove = NAP_DELETE_LS,
     .remove_key = remove_name8,
     .copies = ls_copies,
     .tail = {sizeof(DEFINE_LS), offsetof(DEFINE_LS, def.specific_length)}},
    {.kind = Kind::pu,
     .name = "pu",
     .entry_size = sizeof(PU_ENTRY),
     .query = NAP_QUERY_PU,
     .query_key = query_name8,
     .key = {{PIECE(PU_ENTRY, pu_name)}},
     .parent = PIECE(PU_ENTRY, ls_name),
     .parents = kind_bit(Kind::ls),
     .indication = NAP_PU_INDICATION},
    {.kind = Kind::dlur_pu,
     .name = "dlur_pu",
     .entry_size = sizeof(PU_ENTRY),
     .query = NAP_QUERY_DLUR_PU,
     .query_key = query_name8,
     .key = {{PIECE(PU_ENTRY, pu_name)}},
     .indication = NAP_DLUR_PU_INDICATION,
     .define = NAP_DEFINE_INTERNAL_PU,
     .define_size = sizeof(DEFINE_INTERNAL_PU),
     .remove = NAP_DELETE_INTERNAL_PU,
     .remove_key = remove_name8,
     .copies = dlur_pu_copies},
    {.kind = Kind::downstream_pu,
     .name = "downstream_pu",
     .entry_size = sizeof(PU_ENTRY),
     .query = NAP_QUERY_DOWNSTREAM_PU,
     .query_key = query_name8,
     .key = {{PIECE(PU_ENTRY, pu_name)}},
     .parent = PIECE(PU_ENTRY, ls_name),
     .parents = kind_bit(Kind::ls),
     .indication = NAP_DOWNSTREAM_PU_INDICATION},
    {.kind = Kind::lu_0_to_3,
     .name = "lu_0_to_3",
     .entry_size = sizeof(LU03_ENTRY),
     .query = NAP_QUERY_LU_0_TO_3,
     .query_key = query_name8,
     .key = name8,
     .query_parent = PIECE(QUERY_LU_0_TO_3, pu_name),
     .parent = PIECE(LU03_ENTRY, def_data.pu_name),
     .parents = any_pu,
     .indication = NAP_LU_0_TO_3_INDICATION,
     .define = NAP_DEFINE_LU_0_TO_3,
     .define_size = sizeof(DEFINE_LU_0_TO_3),
     .remove = NAP_DELETE_LU_0_TO_3,
     .remove_key = remove_name8,
     .copies = lu_0_to_3_copies},
    {.kind = Kind::downstream_lu,
     .name = "downstream_lu",
     .entry_size = sizeof(DOWN_LU_ENTRY),
     .query = NAP_QUERY_DOWNSTREAM_LU,
     .query_key = query_name8,
     .key = name8,
     .query_parent = PIECE(QUERY_DOWNSTREAM_LU, dspu_name),
     .parent = PIECE(DOWN_LU_ENTRY, def.dspu_name),
     .parents = kind_bit(Kind::downstream_pu),
     .indication = NAP_DOWNSTREAM_LU_INDICATION,
     .define = NAP_DEFINE_DOWNSTREAM_LU,
     .define_size = sizeof(DEFINE_DOWNSTREAM_LU),
     .remove = NAP_DELETE_DOWNSTREAM_LU,
     .remove_key = remove_name8,
     .copies = downstream_lu_copies},
    {.kind = Kind::local_lu,
     .name = "local_lu",
     .entry_size = sizeof(LU62_ENTRY),
     .query = NAP_QUERY_LOCAL_LU,
     .query_key = query_name8,
     .key = name8,
     .parent = PIECE(LU62_ENTRY, def.pu_name),
     .parents = any_pu,
     .indication = NAP_LOCAL_LU_INDICATION,
     .define = NAP_DEFINE_LOCAL_LU,
     .define_size = sizeof(DEFINE_LOCAL_LU),
     .remove = NAP_DELETE_LOCAL_LU,
     .remove_key = remove_name8,
     .copies = local_lu_copies},
    {.kind = Kind::partner,
     .name = "partner",
     .entry_size = sizeof(PLU_ENTRY),
     .query = NAP_QUERY_PARTNER_LU,
     .query_key = {{PIECE(QUERY_PARTNER_LU, lu_name), PIECE(QUERY_PARTNER_LU, plu_name)}},
     .key = {{PIECE(PLU_ENTRY, plu_name)}},
     .query_parent = PIECE(QUERY_PARTNER_LU, lu_name),
     .parents = kind_bit(Kind::local_lu),
     .owned = true,
     .indication = NAP_PLU_INDICATION},
    {.kind = Kind::mode,
     .name = "mode",
     .entry_size = sizeof(MODE_ENTRY),
     .query = NAP_QUERY_MODE,
     .query_key = {{PIECE(QUERY_MODE, lu_name), PIECE(QUERY_MODE, plu_name),
                    PIECE(QUERY_MODE, mode_name)}},
     .key = {{PIECE(MODE_ENTRY, plu_name), PIECE(MODE_ENTRY, mode_name)}},
     .query_parent = PIECE(QUERY_MODE, lu_name),
     .parents = kind_bit(Kind::local_lu),
     .owned = true,
     .indication = NAP_MODE_INDICATION},
    {.kind = Kind::mode_definition,
     .name = "mode_definition",
     .entry_size = sizeof(MODE_DEF_ENTRY),
     .query = NAP_QUERY_MODE_DEFINITION,
     .query_key = query_name8,
     .key = name8,
     .define = NAP_DEFINE_MODE,
     .define_size = sizeof(DEFINE_MODE),
     .remove = NAP_DELETE_MODE,
     .remove_key = remove_name8,
     .copies = mode_definition_copies},
    {.kind = Kind::directory,
     .name = "directory",
     .entry_size = sizeof(DIRECTORY_ENTRY),
     .query = NAP_QUERY_DIRECTORY_ENTRY,
     .query_key = {{PIECE(QUERY_DIRECTORY_ENTRY, resource_name),
                    NUMBER(QUERY_DIRECTORY_ENTRY, resource_type)}},
     .key = {{PIECE(DIRECTORY_ENTRY, resource_name), NUMBER(DIRECTORY_ENTRY, resource_type)}},
     .parent = PIECE(DIRECTORY_ENTRY, parent_name),
     .parents = kind_bit(Kind::directory),
     .indication = NAP_DIRECTORY_INDICATION,
     .define = NAP_DEFINE_DIRECTORY_ENTRY,
     .define_size = sizeof(DEFINE_DIRECTORY_ENTRY),
     .remove = NAP_DELETE_DIRECTORY_ENTRY,
     .remove_key = {{PIECE(DELETE_DIRECTORY_ENTRY, resource_name),
                     NUMBER(DELETE_DIRECTORY_ENTRY, resource_type)}},
     .copies = directory_copies},
    {.kind = Kind::partner_definition,
     .name = "partner_definition",
     .entry_size = sizeof(PLU_DEF_ENTRY),
     .query = NAP_QUERY_PARTNER_LU_DEFINITION,
     .query_key = {{PIECE(QUERY_PARTNER_LU_DEFINITION, plu_name)}},
     .key = {{PIECE(PLU_DEF_ENTRY, plu_name)}},
     .define = NAP_DEFINE_PARTNER_LU,
     .define_size = sizeof(DEFINE_PARTNER_LU),
     .remove = NAP_DELETE_PARTNER_LU,
     .remove_key = {{PIECE(DELETE_PARTNER_LU, plu_name)}},
     .copies = partner_definition_copies},
    {.kind = Kind::cos,
     .name = "cos",
     .entry_size = sizeof(COS_ENTRY),
     .query = NAP_QUERY_COS,
     .query_key = query_name8,
     .key = {{PIECE(COS_ENTRY, cos_name)}},
     .define = NAP_DEFINE_COS,
     .define_size = sizeof(DEFINE_COS),
     .remove = NAP_DELETE_COS,
     .remove_key = remove_name8,
     .copies = cos_copies},
    {.kind = Kind::cos_node_row,
     .name = "cos_node_row",
     .entry_size = sizeof(COS_ROW_ENTRY),
     .query = NAP_QUERY_COS_NODE_ROW,
     .query_key = {{PIECE(QUERY_COS_ROW, cos_name), NUMBER(QUERY_COS_ROW, row)}},
     .key = {{PIECE(COS_ROW_ENTRY, cos_name), NUMBER(COS_ROW_ENTRY, row)}},
     .parent = PIECE(COS_ROW_ENTRY, cos_name),
     .parents = kind_bit(Kind::cos)},
    {.kind = Kind::cos_tg_row,
     .name = "cos_tg_row",
     .entry_size = sizeof(COS_ROW_ENTRY),
     .query = NAP_QUERY_COS_TG_ROW,
     .query_key = {{PIECE(QUERY_COS_ROW, cos_name), NUMBER(QUERY_COS_ROW, row)}},
     .key = {{PIECE(COS_ROW_ENTRY, cos_name), NUMBER(COS_ROW_ENTRY, row)}},
     .parent = PIECE(COS_ROW_ENTRY, cos_name),
     .parents = kind_bit(Kind::cos)},
    {.kind = Kind::dlc_trace,
     .name = "dlc_trace",
     .entry_size = sizeof(DLC_TRACE_ENTRY),
     .query = NAP_QUERY_DLC_TRACE,
     .query_key = {{PIECE(QUERY_DLC_TRACE, resource_type), PIECE(QUERY_DLC_TRACE, name)}},
     .key = {{PIECE(DLC_TRACE_ENTRY, resource_type), PIECE(DLC_TRACE_ENTRY, name)}}},
};
static_assert(std::size(rows) == KIND_COUNT);
static_assert([] {
    for (std::size_t i = 0; i < KIND_COUNT; ++i) {
        if (static_cast<std::size_t>(rows[i].kind) != i) {
            return false;
        }
    }
    return true;
}());

template <typename Match> const KindRow* search(Match match) {
    const auto* row = std::find_if(std::begin(rows), std::end(rows), match);
    return row == std::end(rows) ? nullptr : row;
}

NB_USHORT read16(const NB_BYTE* bytes) {
    NB_USHORT value = 0;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

} // namespace

std::span<const KindRow> kind_rows() {
    return rows;
}

const KindRow& kind_row(Kind kind) {
    return rows[static_cast<std::size_t>(kind)];
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
        if (piece.number) {
            const NB_USHORT value = read16(block + piece.offset);
            result += {static_cast<char>(value >> 8), static_cast<char>(value)};
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

std::string name_for_children(const Record& record) {
    // A directory entry's key ends with its type, which the entries below it do not repeat in their
    // parent's name.
    return record.key.substr(0, record.key.size() > sizeof(NB_FQNAME) ? sizeof(NB_FQNAME)
                                                                      : record.key.size());
}

Record make_record(const KindRow& row, Bytes entry, const std::string& owner) {
    Record record;
    record.key = owner + make_key(row.key, entry.data());
    record.parent = row.owned ? owner : parent_name(row.parent, entry.data());
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
        name = ebcdic_text(reinterpret_cast<const NB_BYTE*>(record.parent.data()),
                           record.parent.size());
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
