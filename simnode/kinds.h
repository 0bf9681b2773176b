// The kinds of resource: one row each, from which queries, defines, deletes, domain files and the
// control commands work.
#pragma once

#include "simnode/collection.h"

#include <array>
#include <span>

namespace simnode {

enum class Kind : NB_BYTE {
    dlc,
    port,
    ls,
    pu,
    dlur_pu,
    downstream_pu,
    lu_0_to_3,
    downstream_lu,
    local_lu,
    partner,
    mode,
    mode_definition,
    directory,
    partner_definition,
    cos,
    cos_node_row,
    cos_tg_row,
    dlc_trace,
    cn,
    cn_port,
    lu62_timeout,
    ls_routing,
    tp,
    tp_load,
    dspu_template,
    dslu_template,
    primary_line,
    primary_lu0,
    userid,
    access_list,
    access_user,
    lu_lu_password,
    tn_client,
    tn_session,
    association,
    redirect,
    appcip_session,
    rtp,
    pool,
    extra_data,
    user, // of the configuration file, like the following
    user_session,
    cpic,
    rje,
    count
};
inline constexpr std::size_t KIND_COUNT = static_cast<std::size_t>(Kind::count);
constexpr std::uint64_t kind_bit(Kind kind) {
    return std::uint64_t{1} << static_cast<unsigned>(kind);
}

// Bytes of a block or entry that belong to a key. A number is a field of 2 or 4 bytes in host
// order.
struct Piece {
    NB_USHORT offset = 0;
    NB_USHORT length = 0;
    bool number = false;
};
using Key = std::array<Piece, 3>;

// How a define block becomes an entry: bytes copied from one to the other.
struct Copy {
    NB_USHORT block;
    NB_USHORT entry;
    NB_USHORT length;
};

// Specific data behind the fixed part of a define block and of an entry; its length is the sum of
// two 16-bit fields of the block, rounded up to 4 bytes in the entry.
struct Tail {
    NB_USHORT block = 0;
    NB_USHORT length1 = 0; // offsets in the block
    NB_USHORT length2 = 0;
};

// Records that stand in one entry with the record they belong to: one after the other behind its
// fixed part, as many as a count says. A define block has them behind its own fixed part.
struct Nested {
    Kind kind{}; // not below another kind: none
    NB_USHORT element = 0;
    NB_USHORT block_count = 0; // offsets of the count in the define block and in the entry
    NB_USHORT entry_count = 0;
    NB_BYTE count_width = 0;
    bool continued = false; // an entry may hold only some of them; the next one goes on
    Key query_key{};        // in the query block: the last one received
};

enum class FieldType : NB_BYTE {
    ebcdic,  // name padded with EBCDIC blanks
    local,   // name padded with local blanks
    text,    // NUL-terminated
    number,  // 1, 2 or 4 bytes in host order
    node_id, // 4 bytes, as hexadecimal digits
    hex,
    choice,
    flag,
    secret, // bytes as hexadecimal digits, never shown
    tail,   // the specific data, as hexadecimal digits
    item,   // text in a list of items in the specific data; the offset is its type
};

struct Choice {
    const char* name;
    unsigned value;
};

// A field of an entry under the name it has in domain files and control commands.
struct Field {
    const char* name;
    FieldType type;
    NB_USHORT offset;
    NB_USHORT length;
    std::span<const Choice> choices = {};
    NB_BYTE variant = 0; // meaningful only for this kind of application of an LU 0 to 3, or for
                         // this type of session of a user
};

struct KindRow {
    Kind kind{};
    const char* name{}; // in domain files and control commands
    NB_USHORT entry_size{};
    NB_USHORT query{};
    Key query_key{};         // in the query block; an owner's name comes first
    Key key{};               // in the entry
    Piece query_parent{};    // in the query block: the list is limited to this parent, unless it is
                             // blank
    Piece parent{};          // in the entry
    std::uint64_t parents{}; // kinds of the record that carries the parent's name
    bool owned{};            // the entry does not name the parent; the key begins with its name
    const char* owner{};     // of owned kinds: the parent under its name in domain files
    bool of_domain{};        // kept in the configuration file, not on a node
    bool unnamed{};          // the first part of the key may be blank
    NB_USHORT indication{};
    NB_USHORT define{};
    NB_USHORT define_size{};
    NB_USHORT remove{};
    Key remove_key{}; // in the delete block
    std::span<const Copy> copies{};
    Tail tail{};
    Nested nested{};
};

std::span<const KindRow> kind_rows();
const KindRow& kind_row(Kind kind);
const KindRow* kind_of_query(NB_USHORT opcode);
const KindRow* kind_of_define(NB_USHORT opcode);
const KindRow* kind_of_remove(NB_USHORT opcode);
const KindRow* kind_named(std::string_view name);
std::span<const Field> fields_of(Kind kind);

std::string make_key(const Key& key, const NB_BYTE* block);
// A name field as a parent's name; empty when it is blank.
std::string parent_name(const Piece& piece, const NB_BYTE* block);
// The name that children of a record carry.
std::string name_for_children(Kind kind, const Record& record);
// The row of the kind whose entries hold a nested kind; null for other kinds.
const KindRow* holder_of(Kind kind);
// The kind that owns an owned kind.
const KindRow& owner_row(const KindRow& row);
// The name of a record's owner in the form that its key begins with, and the reverse.
bool owner_key(const KindRow& row, std::string_view text, std::string& key, std::string& error);
std::string owner_text(const KindRow& row, const Record& record);
// A record of an entry, with its key, order and parent. owner: for owned kinds the name of its
// owner.
Record make_record(const KindRow& row, Bytes entry, const std::string& owner = {});

// The length of the specific data that a define block announces.
std::size_t tail_length(const KindRow& row, const NB_BYTE* block);
// An entry made of a define block; what the block does not say comes from old, or is zero.
Bytes entry_of_define(const KindRow& row, std::span<const NB_BYTE> block, const Record* old);
// The nested elements of a define block that is as long as it announces.
std::span<const NB_BYTE> nested_of_define(const KindRow& row, std::span<const NB_BYTE> block);
NB_ULONG read_count(const NB_BYTE* field, NB_BYTE width);
void write_count(NB_BYTE* field, NB_BYTE width, std::size_t count);
// The reverse: the define block, header included, that makes such an entry.
Bytes define_of_entry(const KindRow& row, const Bytes& entry);
// The delete block of a record, its key copied from the entry.
Bytes delete_of_entry(const KindRow& row, const Bytes& entry);
// The define block of a nested record's owner that adds the record.
Bytes define_of_nested(const KindRow& row, const Bytes& owner, const Bytes& entry);

// The value of a field as text, and the reverse; false with a reason when the text does not fit the
// field. A name of zeros is an empty text, one of blanks a single blank.
std::string field_text(const Field& field, const Bytes& entry);
bool set_field(const Field& field, Bytes& entry, std::string_view text, std::string& error);
// Whether a field means something for this entry.
bool applies(Kind kind, const Field& field, const Bytes& entry);
const Field* field_named(const KindRow& row, std::string_view name);
// The record's name as the operator writes it: the first key field, with owner and further keys
// after blanks.
std::string display_name(const KindRow& row, const Record& record);

} // namespace simnode
