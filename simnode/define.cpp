// Defines and deletes: one path for every kind.
#include "simnode/request.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "nof/trace.h"
#include "simnode/definition_checks.h"
#include "simnode/indications.h"
#include "simnode/manage.h"
#include "simnode/member_kinds.h"

#include <cstdio>
#include <cstring>

namespace simnode {
namespace {

bool lu_is_active(Kind kind, const Record& record) {
    return kind == Kind::lu_0_to_3       ? record.as<LU03_ENTRY>().det_data.lu_active != 0
           : kind == Kind::downstream_lu ? record.as<DOWN_LU_ENTRY>().lu_active != 0
                                         : false;
}

Rc define_from_block(World& world, Node& node, const KindRow& row, std::span<const NB_BYTE> given) {
    const Bytes block = with_lu_name(node, row.kind, given, sizeof(VCB_HEADER));
    const Bytes probe = entry_of_define(row, block, nullptr);
    const Record* old = find(node.of(row.kind), make_key(row.key, probe.data()));
    Bytes entry = entry_of_define(row, block, old);
    complete_entry(node, row, entry, old);
    const Record record = make_record(row, std::move(entry));
    if (!row.unnamed && row.kind != Kind::tp && is_blank(record.key.data(), row.key[0].length)) {
        return RC_BAD_NAME;
    }
    if (const Rc rc = check_define(node, row, block, record, old); !rc.ok()) {
        return rc;
    }
    if (const Rc rc = check_nested(row, block); !rc.ok()) {
        return rc;
    }
    const bool was_active = old != nullptr && lu_is_active(row.kind, *old);
    const bool was_independent = old != nullptr && old->parent.empty();
    const bool stays = old != nullptr && old->parent == record.parent;
    Record& stored = store(node, row, record.entry);
    define_nested(node, row, block, stored);
    if (row.kind == Kind::ls) {
        update_pu_of_ls(node, stored);
    }
    const bool active = lu_is_active(row.kind, stored);
    if (row.kind == Kind::downstream_lu && (active || (was_active && stays))) {
        set_downstream_lu(world, node, stored, active,
                          stored.as<DOWN_LU_ENTRY>().plu_session_active != 0);
        return {}; // which may have taken it away again
    }
    if (row.kind == Kind::lu_0_to_3 && active != was_active) {
        indicate_lu_0_to_3(world, node, stored);
    }
    if (row.kind == Kind::local_lu && was_independent && !stored.parent.empty()) {
        follow_sessions(world, node, stored.key);
        indicate_local_lu(world, node, stored); // nobody was told as long as it was independent
    }
    return {};
}

bool is_active(Kind kind, const Record& record) {
    switch (kind) {
    case Kind::dlc:
        return record.as<DLC_ENTRY>().state != NOF_STATE_INACTIVE;
    case Kind::port:
        return record.as<PORT_ENTRY>().state != NOF_STATE_INACTIVE;
    case Kind::ls: {
        const NB_BYTE state = record.as<LS_ENTRY>().det.state;
        return state != NOF_STATE_INACTIVE && state != NOF_STATE_FAILED;
    }
    case Kind::dlur_pu:
        return record.as<PU_ENTRY>().state == NOF_STATE_ACTIVE;
    case Kind::lu_0_to_3:
        return record.as<LU03_ENTRY>().det_data.plu_session_active != 0;
    default:
        return false;
    }
}

Rc unknown_name(Kind kind) {
    switch (kind) {
    case Kind::dlc:
        return RC_UNKNOWN_DLC;
    case Kind::port:
        return RC_UNKNOWN_PORT;
    case Kind::ls:
        return RC_UNKNOWN_LS;
    default:
        return RC_UNKNOWN_NAME;
    }
}

} // namespace

Rc define_record(Request& request) {
    const KindRow& row = *kind_of_define(vcb_header(request.block.data())->opcode);
    return define_from_block(request.world, *request.target.node, row, request.block);
}

Rc delete_record(Request& request) {
    const KindRow& row = *kind_of_remove(vcb_header(request.block.data())->opcode);
    Node& node = *request.target.node;
    const Bytes block = with_lu_name(node, row.kind, request.block, sizeof(VCB_HEADER));
    Record* record = find(node.of(row.kind), make_key(row.remove_key, block.data()));
    if (record == nullptr) {
        return unknown_name(row.kind);
    }
    if (is_active(row.kind, *record)) {
        return RC_RESOURCE_ACTIVE;
    }
    if (row.kind == Kind::local_lu && is_control_point(node, *record)) {
        return RC_PERMANENT;
    }
    if (row.kind == Kind::directory) {
        const std::string name = record->key.substr(0, sizeof(NB_FQNAME));
        const std::vector<Record*> owned = children(node.of(Kind::directory), name);
        if (record->as<DIRECTORY_ENTRY>().resource_type == NAP_NETWORK_NODE_CP_RESOURCE &&
            !owned.empty()) {
            return RC_RESOURCE_ACTIVE; // it serves others
        }
        if (record->as<DIRECTORY_ENTRY>().resource_type == NAP_END_NODE_CP_RESOURCE) {
            for (Record* lu : owned) {
                remove_record(node, row.kind, *lu);
            }
        }
    }
    remove_record(node, row.kind, *record);
    return {};
}

namespace {

// The LUs of a range verb. Names are made of the base name, without trailing blanks, and a number;
// longer ones are cut.
struct LuRange {
    const NB_BYTE* base;
    int base_length;
    int first;
    int last;
    int offset; // of the number from the NAU address
    bool hexadecimal;
};

LuRange lu_0_to_3_range(const NB_BYTE* base, NB_BYTE first, NB_BYTE last, NB_BYTE flags,
                        NB_BYTE first_number) {
    static constexpr NB_BYTE number_given = 0x01;
    static constexpr NB_BYTE hexadecimal = 0x02;
    static constexpr NB_BYTE base_of_six = 0x04;
    return {
        base, (flags & (hexadecimal | base_of_six)) != 0 ? 6 : 5,     first,
        last, (flags & number_given) != 0 ? first_number - first : 0, (flags & hexadecimal) != 0};
}

LuRange range_of(std::span<const NB_BYTE> block) {
    switch (vcb_header(block.data())->opcode) {
    case NAP_DEFINE_LU_0_TO_3_RANGE: {
        const auto& verb = *reinterpret_cast<const DEFINE_LU_0_TO_3_RANGE*>(block.data());
        return lu_0_to_3_range(verb.base_name, verb.first_nau, verb.last_nau, verb.naming_flags,
                               verb.first_number);
    }
    case NAP_DELETE_LU_0_TO_3_RANGE: {
        const auto& verb = *reinterpret_cast<const DELETE_LU_0_TO_3_RANGE*>(block.data());
        return lu_0_to_3_range(verb.base_name, verb.first_nau, verb.last_nau, verb.naming_flags,
                               verb.first_number);
    }
    case NAP_DEFINE_DOWNSTREAM_LU_RANGE: {
        const auto& verb = *reinterpret_cast<const DEFINE_DOWNSTREAM_LU_RANGE*>(block.data());
        return {verb.base_name, 5, verb.first_nau, verb.last_nau, 0, false};
    }
    default: {
        const auto& verb = *reinterpret_cast<const DELETE_DOWNSTREAM_LU_RANGE*>(block.data());
        return {verb.base_name, 5, verb.first_nau, verb.last_nau, 0, false};
    }
    }
}

void name_in_range(const LuRange& range, int address, NB_NAME8E& name) {
    char number[8];
    std::snprintf(number, sizeof number, range.hexadecimal ? "%02X" : "%03d",
                  (address + range.offset) & 0xFF);
    put_ebcdic(name, sizeof name,
               ebcdic_text(range.base, static_cast<std::size_t>(range.base_length)) + number);
}

// The define block of one LU of a range; the description and the fields behind it lie alike in both
// verbs.
Bytes lu_of_range(std::span<const NB_BYTE> block, const LuRange& range, int address) {
    if (vcb_header(block.data())->opcode == NAP_DEFINE_LU_0_TO_3_RANGE) {
        const auto& verb = *reinterpret_cast<const DEFINE_LU_0_TO_3_RANGE*>(block.data());
        Bytes bytes(sizeof(DEFINE_LU_0_TO_3));
        auto& lu = *reinterpret_cast<DEFINE_LU_0_TO_3*>(bytes.data());
        name_in_range(range, address, lu.lu_name);
        std::memcpy(lu.def.description, verb.description, sizeof verb.description);
        lu.def.nau_address = static_cast<NB_BYTE>(address);
        std::memcpy(lu.def.pu_name, verb.pu_name, 8);
        std::memcpy(lu.def.pool_name, verb.pool_name, 8);
        lu.def.lu_model = verb.lu_model;
        return bytes;
    }
    const auto& verb = *reinterpret_cast<const DEFINE_DOWNSTREAM_LU_RANGE*>(block.data());
    Bytes bytes(sizeof(DEFINE_DOWNSTREAM_LU));
    auto& lu = *reinterpret_cast<DEFINE_DOWNSTREAM_LU*>(bytes.data());
    name_in_range(range, address, lu.dslu_name);
    std::memcpy(lu.def.description, verb.description, sizeof verb.description);
    lu.def.nau_address = static_cast<NB_BYTE>(address);
    std::memcpy(lu.def.dspu_name, verb.dspu_name, 8);
    std::memcpy(lu.def.host_lu_name, verb.host_lu_name, 8);
    lu.def.allow_timeout = verb.allow_timeout;
    lu.def.delayed_logon = verb.delayed_logon;
    return bytes;
}

Kind kind_of_range(NB_USHORT opcode) {
    return opcode == NAP_DEFINE_LU_0_TO_3_RANGE || opcode == NAP_DELETE_LU_0_TO_3_RANGE
               ? Kind::lu_0_to_3
               : Kind::downstream_lu;
}

} // namespace

Rc define_lu_range(Request& request) {
    const LuRange range = range_of(request.block);
    const KindRow& row = kind_row(kind_of_range(vcb_header(request.block.data())->opcode));
    Node& node = *request.target.node;
    if (range.first == 0 || range.first > range.last) {
        return RC_BAD_VALUE;
    }
    for (const bool dry_run : {true, false}) { // all of the range, or nothing
        for (int address = range.first; address <= range.last; ++address) {
            const Bytes block = lu_of_range(request.block, range, address);
            Record record = make_record(row, entry_of_define(row, block, nullptr));
            const Rc rc = dry_run ? check_define(node, row, block, record,
                                                 find(node.of(row.kind), record.key))
                                  : define_from_block(request.world, node, row, block);
            if (!rc.ok()) {
                return rc;
            }
        }
    }
    return {};
}

Rc delete_lu_range(Request& request) {
    const LuRange range = range_of(request.block);
    const Kind kind = kind_of_range(vcb_header(request.block.data())->opcode);
    Node& node = *request.target.node;
    if (range.first == 0 || range.first > range.last) {
        return RC_BAD_VALUE;
    }
    std::string pu; // a range is one PU's: that of the first LU found
    for (int address = range.last; address >= range.first; --address) {
        NB_NAME8E name;
        name_in_range(range, address, name);
        if (Record* lu = find_name8(node, kind, name);
            lu != nullptr && (pu.empty() || lu->parent == pu)) {
            pu = lu->parent;
            remove_record(node, kind, *lu);
        }
    }
    return !pu.empty() ? Rc{} : RC_UNKNOWN_NAME;
}

namespace {

// The entry of a traced resource: types 1 and 3 of the verb are those of a link station and a DLC,
// or the reverse; in entries a DLC has 1 and a link station 3.
Rc traced_resource(Node& node, const ADD_DLC_TRACE& verb, DLC_TRACE_ENTRY& entry) {
    static constexpr NB_BYTE dlc = 1;
    static constexpr NB_BYTE ls = 3;
    entry = {};
    entry.length = sizeof entry;
    entry.message_types = verb.message_types;
    entry.resource_type = verb.resource_type;
    if (verb.resource_type == NOF_TRACE_ALL_DLCS) {
        return {};
    }
    const std::string name = raw(verb.name, 8);
    std::memcpy(entry.name, verb.name, 8);
    if (verb.resource_type == dlc || verb.resource_type == ls) {
        const bool is_dlc = find(node.of(Kind::dlc), name) != nullptr;
        const bool is_ls = find(node.of(Kind::ls), name) != nullptr;
        entry.resource_type = is_dlc && (verb.resource_type == ls || !is_ls) ? dlc : ls;
        return is_dlc || is_ls ? Rc{} : RC_UNKNOWN_NAME;
    }
    if (verb.resource_type > NOF_TRACE_PORT_5) {
        return RC_BAD_VALUE;
    }
    return find(node.of(Kind::port), name) != nullptr ? Rc{} : RC_UNKNOWN_NAME;
}

} // namespace

Rc add_dlc_trace(Request& request) {
    DLC_TRACE_ENTRY entry;
    Node& node = *request.target.node;
    if (const Rc rc = traced_resource(node, request.as<ADD_DLC_TRACE>(), entry); !rc.ok()) {
        return rc;
    }
    const auto* bytes = reinterpret_cast<const NB_BYTE*>(&entry);
    store(node, kind_row(Kind::dlc_trace), Bytes(bytes, bytes + sizeof entry));
    return {};
}

Rc remove_dlc_trace(Request& request) {
    const auto& verb = request.as<REMOVE_DLC_TRACE>();
    Node& node = *request.target.node;
    if (verb.resource_type == NOF_TRACE_ALL_DLCS || verb.resource_type == NOF_TRACE_REMOVE_ALL) {
        clear(node.of(Kind::dlc_trace));
        return {};
    }
    DLC_TRACE_ENTRY entry;
    if (const Rc rc = traced_resource(node, verb, entry); !rc.ok()) {
        return rc;
    }
    Record* traced = find(node.of(Kind::dlc_trace), make_key(kind_row(Kind::dlc_trace).key,
                                                             reinterpret_cast<NB_BYTE*>(&entry)));
    if (traced == nullptr) {
        return RC_UNKNOWN_NAME;
    }
    erase(node.of(Kind::dlc_trace), *traced);
    return {};
}

} // namespace simnode
