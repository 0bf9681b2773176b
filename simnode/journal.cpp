#include "simnode/journal.h"

#include "nba/nba.h"
#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/node.h"
#include "nof/pu_lu.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/user.h"

#include <algorithm>

namespace simnode {
namespace {

struct Secret {
    NB_USHORT opcode;
    NB_USHORT offset;
    NB_USHORT length;
};

#define SECRET(opcode, type, field)                                                                \
    { opcode, offsetof(type, field), sizeof(std::declval<type&>().field) }

constexpr Secret secrets[] = {
    SECRET(NAP_DEFINE_USERID_PASSWORD, DEFINE_USERID_PASSWORD, def.password),
    SECRET(NAP_DEFINE_LU_LU_PASSWORD, DEFINE_LU_LU_PASSWORD, def.password),
    SECRET(NAP_DEFINE_CPIC_SIDE_INFO, DEFINE_CPIC_SIDE_INFO, def.password),
    SECRET(NAP_DEFINE_TN3270_SSL_LDAP, DEFINE_TN3270_SSL_LDAP, settings.ldap_password),
};

// The resource's name: the first key of a kind, local or EBCDIC as its field says.
std::string key_text(const KindRow& row, const Key& key, std::span<const NB_BYTE> block) {
    std::size_t index = row.owned && key[1].length != 0 ? 1 : 0;
    while (index + 1 < key.size() && key[index].number && key[index + 1].length != 0) {
        ++index;
    }
    const Piece& piece = key[index];
    if (piece.length == 0 || piece.offset + std::size_t{piece.length} > block.size()) {
        return {};
    }
    const NB_BYTE* name = block.data() + piece.offset;
    for (const Field& field : fields_of(row.kind)) {
        if (field.offset == row.key[row.key[0].number ? index : 0].offset) {
            return field.type == FieldType::ebcdic ? ebcdic_text(name, piece.length)
                                                   : local_text(name, piece.length);
        }
    }
    return {};
}

// The key of a kind as its define block has it.
Key key_in_define(const KindRow& row) {
    Key key = row.key;
    const Copy& first = row.copies.front(); // holds the key
    for (Piece& piece : key) {
        if (piece.length != 0) {
            piece.offset = static_cast<NB_USHORT>(piece.offset - first.entry + first.block);
        }
    }
    return key;
}

struct NamedVerb {
    NB_USHORT opcode;
    NB_USHORT offset;
    NB_USHORT length;
    bool ebcdic;
};

// A verb and the field of its block that names what it is about.
#define NAMED(verb, field, ebcdic)                                                                 \
    { NAP_##verb, offsetof(verb, field), sizeof(std::declval<verb&>().field), ebcdic }

constexpr NamedVerb named_verbs[] = {
    NAMED(START_DLC, name, false),
    NAMED(START_PORT, name, false),
    NAMED(START_LS, ls_name, false),
    NAMED(STOP_DLC, name, false),
    NAMED(STOP_PORT, name, false),
    NAMED(STOP_LS, ls_name, false),
    NAMED(START_INTERNAL_PU, pu_name, true),
    NAMED(STOP_INTERNAL_PU, pu_name, true),
    NAMED(ACTIVATE_SESSION, lu_name, true),
    NAMED(DEACTIVATE_SESSION, lu_name, true),
    NAMED(CONNECT_NODE, node_name, false),
    NAMED(QUERY_NODE_ALL, node_name, false),
    NAMED(DEFINE_LU_0_TO_3_RANGE, base_name, true),
    NAMED(DEFINE_DOWNSTREAM_LU_RANGE, base_name, true),
};

std::string name_in_block(std::span<const NB_BYTE> block) {
    const NB_USHORT opcode = vcb_header(block.data())->opcode;
    if (const KindRow* row = opcode != 0 ? kind_of_define(opcode) : nullptr) {
        return key_text(*row, key_in_define(*row), block);
    }
    if (const KindRow* row = kind_of_remove(opcode)) {
        return key_text(*row, row->remove_key, block);
    }
    if (const KindRow* row = kind_of_query(opcode)) {
        return key_text(*row, row->query_key, block);
    }
    for (const NamedVerb& verb : named_verbs) {
        if (verb.opcode == opcode && verb.offset + std::size_t{verb.length} <= block.size()) {
            const NB_BYTE* name = block.data() + verb.offset;
            return verb.ebcdic ? ebcdic_text(name, verb.length) : local_text(name, verb.length);
        }
    }
    if (opcode == NAP_REGISTER_INDICATION_SINK && block.size() >= 20) {
        const auto& verb = *reinterpret_cast<const REGISTER_INDICATION_SINK*>(block.data());
        const NBA_VERB_ROW* row = vnv_verb_search(verb.indication_opcode, 0, 0);
        return row != nullptr ? row->name : std::string();
    }
    return {};
}

std::string hexadecimal(NB_ULONG value, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "\"0x%0*X\"", digits, static_cast<unsigned>(value));
    return text;
}

} // namespace

void mask_passwords(Bytes& block) {
    const NB_USHORT opcode = vcb_header(block.data())->opcode;
    for (const Secret& secret : secrets) {
        if (secret.opcode == opcode && secret.offset < block.size()) {
            const std::size_t end =
                std::min<std::size_t>(secret.offset + std::size_t{secret.length}, block.size());
            std::fill(block.begin() + secret.offset,
                      block.begin() + static_cast<std::ptrdiff_t>(end), NB_BYTE{0});
        }
    }
}

void record_verb(Journal& journal, const Request& request, Rc rc) {
    const NB_USHORT opcode = vcb_header(request.block.data())->opcode;
    JournalEntry entry{request.op.id, opcode, request.handle, rc, name_in_block(request.block), {}};
    const VerbRow* row = find_verb(opcode);
    if (row == nullptr || row->effect != Effect::reads) {
        entry.block.assign(request.block.begin(), request.block.end());
        mask_passwords(entry.block);
    }
    if (journal.file != nullptr) {
        std::fprintf(journal.file, "%s\n", journal_line(entry).c_str());
        std::fflush(journal.file);
    }
    journal.entries.push_back(std::move(entry));
    if (journal.entries.size() > JOURNAL_LIMIT) {
        journal.entries.pop_front();
    }
}

std::string journal_line(const JournalEntry& entry) {
    const NBA_VERB_ROW* verb = vnv_verb_search(entry.opcode, 0, 0);
    std::string line = "{\"operator\":" + std::to_string(entry.operator_id) +
                       ",\"opcode\":" + hexadecimal(entry.opcode, 4) +
                       ",\"verb\":" + json_text(verb != nullptr ? verb->name : "") +
                       ",\"target\":" + std::to_string(entry.target) +
                       ",\"key\":" + json_text(entry.key) +
                       ",\"primary\":" + hexadecimal(entry.rc.primary, 4) +
                       ",\"secondary\":" + hexadecimal(entry.rc.secondary, 8);
    if (!entry.block.empty()) {
        line += ",\"block\":\"" + to_hex(entry.block.data(), entry.block.size()) + '"';
    }
    return line + '}';
}

} // namespace simnode
