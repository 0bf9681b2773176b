// Defines and deletes: one path for every kind, with what a kind checks and completes of its own.
#include "simnode/request.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "nof/trace.h"
#include "simnode/indications.h"

#include <cstdio>
#include <cstring>

namespace simnode {
namespace {

bool dependent(const Record& lu) {
    return lu.as<LU62_ENTRY>().def.nau_address != 0;
}

// The NAU address of a record below a PU; 0: it has none.
NB_BYTE nau_address(Kind kind, const Record& record) {
    switch (kind) {
    case Kind::lu_0_to_3:
        return record.as<LU03_ENTRY>().def_data.nau_address;
    case Kind::downstream_lu:
        return record.as<DOWN_LU_ENTRY>().def.nau_address;
    case Kind::local_lu:
        return record.as<LU62_ENTRY>().def.nau_address;
    default:
        return 0;
    }
}

bool address_in_use(Node& node, Kind kind, const Record& record) {
    const NB_BYTE address = nau_address(kind, record);
    static constexpr Kind local[] = {Kind::lu_0_to_3, Kind::local_lu};
    static constexpr Kind downstream[] = {Kind::downstream_lu};
    const std::span<const Kind> sharing = kind == Kind::downstream_lu
                                              ? std::span<const Kind>(downstream)
                                              : std::span<const Kind>(local);
    for (const Kind other : sharing) {
        for (const Record* lu : children(node.of(other), record.parent)) {
            if (nau_address(other, *lu) == address && (other != kind || lu->key != record.key)) {
                return true;
            }
        }
    }
    return false;
}

Rc check_lu(Node& node, Kind kind, const Record& record) {
    if (nau_address(kind, record) == 0) {
        return RC_BAD_VALUE;
    }
    if (kind != Kind::downstream_lu) {
        const Kind other = kind == Kind::lu_0_to_3 ? Kind::local_lu : Kind::lu_0_to_3;
        if (find(node.of(other), record.key) != nullptr) {
            return RC_NAME_IN_USE;
        }
    }
    return address_in_use(node, kind, record) ? RC_ADDRESS_IN_USE : Rc{};
}

Rc check_local_lu(Node& node, const Record& record) {
    for (const Record* lu : everything(node.of(Kind::local_lu))) {
        if (lu->key != record.key && std::memcmp(lu->as<LU62_ENTRY>().def.lu_alias,
                                                 record.as<LU62_ENTRY>().def.lu_alias, 8) == 0) {
            return RC_NAME_IN_USE;
        }
    }
    return dependent(record) ? check_lu(node, Kind::local_lu, record) : Rc{};
}

Rc check_ls(Node& node, const Record& record) {
    const auto& def = record.as<LS_ENTRY>().def;
    const bool host = def.adj_cp_type == NAP_HOST_XID3 || def.adj_cp_type == NAP_HOST_XID0 ||
                      def.solicit_sscp_sessions == NAP_YES;
    const NB_BYTE* pu_name = host ? def.pu_name : def.dspu_name;
    if ((!host && def.dspu_services == 0) || is_blank(pu_name, 8)) {
        return host ? RC_BAD_VALUE : Rc{};
    }
    for (const Kind kind : {Kind::pu, Kind::dlur_pu, Kind::downstream_pu}) {
        const Record* pu = find_name8(node, kind, pu_name);
        if (pu != nullptr && pu->parent != record.key) {
            return RC_NAME_IN_USE;
        }
    }
    return {};
}

bool parent_exists(const Node& node, const KindRow& row, const Record& record) {
    for (const KindRow& other : kind_rows()) {
        if ((row.parents & kind_bit(other.kind)) != 0 &&
            find(node.of(other.kind), record.parent) != nullptr) {
            return true;
        }
    }
    return false;
}

// Starting a downstream LU defines it once more; that says nothing new of one that is active.
bool already_started(const Record& record, const Record* old) {
    return old != nullptr && old->as<DOWN_LU_ENTRY>().lu_active != 0 &&
           std::memcmp(&old->as<DOWN_LU_ENTRY>().def, &record.as<DOWN_LU_ENTRY>().def,
                       sizeof(DOWN_LU_DEF)) == 0;
}

// Whether the resource may be defined so. record: the entry-to-be, old: the one it replaces, null
// for a new one.
Rc check_define(Node& node, const KindRow& row, const Record& record, const Record* old) {
    const bool orphan = !parent_exists(node, row, record);
    switch (row.kind) {
    case Kind::port:
        return orphan ? RC_UNKNOWN_PARENT : Rc{};
    case Kind::ls:
        return orphan ? RC_UNKNOWN_PARENT : check_ls(node, record);
    case Kind::dlur_pu:
        return find(node.of(Kind::pu), record.key) != nullptr ? RC_NAME_IN_USE : Rc{};
    case Kind::downstream_lu:
        if (already_started(record, old)) {
            return RC_DSLU_ALREADY_ACTIVE;
        }
        [[fallthrough]];
    case Kind::lu_0_to_3:
        return orphan ? RC_UNKNOWN_PARENT : check_lu(node, row.kind, record);
    case Kind::local_lu:
        return dependent(record) && orphan ? RC_UNKNOWN_PARENT : check_local_lu(node, record);
    case Kind::directory: {
        const auto& entry = record.as<DIRECTORY_ENTRY>();
        const bool needs_owner = entry.resource_type == NAP_LU_RESOURCE ||
                                 entry.resource_type == NAP_WILDCARD_LU_RESOURCE;
        return needs_owner && record.parent.empty() ? RC_UNKNOWN_PARENT : Rc{};
    }
    default:
        return {};
    }
}

// What an entry holds beyond the definition.
void complete_entry(Node& node, const KindRow& row, Bytes& bytes, const Record* old) {
    auto* data = bytes.data();
    switch (row.kind) {
    case Kind::port: {
        auto& port = *reinterpret_cast<PORT_ENTRY*>(data);
        if (const Record* dlc = find(node.of(Kind::dlc), raw(port.def.dlc_name, 8))) {
            port.dlc_type = dlc->as<DLC_ENTRY>().def.dlc_type;
        }
        break;
    }
    case Kind::ls: {
        auto& ls = *reinterpret_cast<LS_ENTRY*>(data);
        if (const Record* port = find(node.of(Kind::port), raw(ls.def.port_name, 8))) {
            ls.det.dlc_type = port->as<PORT_ENTRY>().dlc_type;
            std::memcpy(ls.det.port_address, port->as<PORT_ENTRY>().def.local_address, 7);
        }
        Record probe;
        probe.entry = bytes;
        ls.det.activation_flags = activation_flags(probe);
        break;
    }
    case Kind::dlur_pu:
        reinterpret_cast<PU_ENTRY*>(data)->host_attachment = NAP_DLUR_ATTACHED;
        if (old == nullptr) {
            reinterpret_cast<PU_ENTRY*>(data)->dlur_status = NOF_DLUR_INACTIVE;
        }
        break;
    case Kind::lu_0_to_3: {
        auto& lu = *reinterpret_cast<LU03_ENTRY*>(data);
        if (const Record* pu = find_pu(node, lu.def_data.pu_name)) {
            lu.det_data.host_attachment = pu->as<PU_ENTRY>().host_attachment;
            lu.det_data.lu_active = pu->as<PU_ENTRY>().state;
        }
        break;
    }
    case Kind::downstream_lu: {
        auto& lu = *reinterpret_cast<DOWN_LU_ENTRY*>(data);
        if (const Record* pu = find_name8(node, Kind::downstream_pu, lu.def.dspu_name)) {
            lu.type = pu->as<PU_ENTRY>().host_attachment;
            lu.lu_active = pu->as<PU_ENTRY>().state;
        }
        break;
    }
    case Kind::directory: {
        auto& entry = *reinterpret_cast<DIRECTORY_ENTRY*>(data);
        entry.entry_type = NOF_DIRECTORY_DEFINED;
        if (entry.resource_type == NAP_END_NODE_CP_RESOURCE) {
            std::memcpy(entry.network_node, entry.parent_name, sizeof(NB_FQNAME));
        }
        break;
    }
    default:
        break;
    }
}

Rc define_from_block(World& world, Node& node, const KindRow& row, std::span<const NB_BYTE> block) {
    const Bytes probe = entry_of_define(row, block, nullptr);
    const Record* old = find(node.of(row.kind), make_key(row.key, probe.data()));
    Bytes entry = entry_of_define(row, block, old);
    complete_entry(node, row, entry, old);
    const Record record = make_record(row, std::move(entry));
    if (is_blank(record.key.data(), 8) && row.kind != Kind::mode_definition &&
        row.kind != Kind::partner_definition && row.kind != Kind::directory) {
        return RC_BAD_NAME;
    }
    if (const Rc rc = check_define(node, row, record, old); !rc.ok()) {
        return rc;
    }
    const Record& stored = store(node, row, record.entry);
    if (row.kind == Kind::ls) {
        update_pu_of_ls(node, stored);
    }
    if (row.kind == Kind::downstream_lu && stored.as<DOWN_LU_ENTRY>().lu_active != 0) {
        indicate_downstream_lu(world, node, stored);
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

bool is_control_point(const Node& node, const Record& lu) {
    const std::string cp = ebcdic_text(node.parameters.cp_name, sizeof(NB_FQNAME));
    const std::size_t period = cp.find('.');
    return period != std::string::npos &&
           ebcdic_text(lu.as<LU62_ENTRY>().lu_name, 8) == cp.substr(period + 1);
}

} // namespace

Rc define_record(Request& request) {
    const KindRow& row = *kind_of_define(vcb_header(request.block.data())->opcode);
    return define_from_block(request.world, *request.target.node, row, request.block);
}

Rc delete_record(Request& request) {
    const KindRow& row = *kind_of_remove(vcb_header(request.block.data())->opcode);
    Node& node = *request.target.node;
    Record* record = find(node.of(row.kind), make_key(row.remove_key, request.block.data()));
    if (record == nullptr) {
        return unknown_name(row.kind);
    }
    if (is_active(row.kind, *record)) {
        return RC_RESOURCE_ACTIVE;
    }
    if (row.kind == Kind::local_lu && is_control_point(node, *record)) {
        return RC_PERMANENT;
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
            const Rc rc = dry_run
                              ? check_define(node, row, record, find(node.of(row.kind), record.key))
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
    bool any = false;
    for (int address = range.last; address >= range.first; --address) {
        NB_NAME8E name;
        name_in_range(range, address, name);
        if (Record* lu = find_name8(node, kind, name)) {
            remove_record(node, kind, *lu);
            any = true;
        }
    }
    return any ? Rc{} : RC_UNKNOWN_NAME;
}

namespace {

// The entry of a traced resource: DLCs and link stations share the types 1 and 3 of the verb, their
// entries do not.
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
        entry.resource_type = is_dlc ? dlc : ls;
        return is_dlc || find(node.of(Kind::ls), name) != nullptr ? Rc{} : RC_UNKNOWN_NAME;
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
