#include "simnode/control_changes.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "simnode/indications.h"
#include "simnode/manage.h"
#include "simnode/service.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace simnode {

Place place_of(Service& service, const std::string& word, const KindRow* row) {
    Domain& domain = service.world.domain;
    if (row != nullptr && row->of_domain) {
        return {&domain.file, word};
    }
    const std::size_t colon = word.find(':');
    if (colon != std::string::npos) {
        if (Node* node = node_named(domain, word.substr(0, colon))) {
            return {node, word.substr(colon + 1)};
        }
    }
    return {domain.nodes.empty() ? nullptr : domain.nodes.front().get(), word};
}

Record* record_named(const Node& node, const KindRow& row, const std::string& name) {
    const Field& first = fields_of(row.kind).front();
    for (Record* record : everything(node.of(row.kind))) {
        if (display_name(row, *record) == name || field_text(first, record->entry) == name) {
            return record;
        }
    }
    return nullptr;
}

ControlAnswer answer_of(Rc rc) {
    if (rc.ok()) {
        return {};
    }
    char text[64];
    std::snprintf(text, sizeof text, "primary 0x%04X secondary 0x%08X", rc.primary,
                  static_cast<unsigned>(rc.secondary));
    return failed(text);
}

namespace {

std::string status_text(const KindRow& row, const Record& record) {
    std::string text;
    for (const char* name : {"state", "dlur_state", "lu_active", "in_use", "in_session", "sessions",
                             "activation", "implicit"}) {
        if (const Field* field = field_named(row, name)) {
            text += std::string(" ") + name + "=" + field_text(*field, record.entry);
        }
    }
    return text;
}

} // namespace

ControlAnswer list_resources(Service& service, Connection&, const Words& words) {
    const KindRow* row = words.size() >= 2 && words.size() <= 3 ? kind_named(words[1]) : nullptr;
    if (row == nullptr) {
        return usage("list KIND [PARENT]");
    }
    ControlAnswer answer;
    const bool several = service.world.domain.nodes.size() > 1 && !row->of_domain;
    for (const Node* node : places_of(service.world.domain, *row)) {
        for (const Record* record : everything(node->of(row->kind))) {
            const auto* parent = reinterpret_cast<const NB_BYTE*>(record->parent.data());
            if (words.size() == 3 && ebcdic_text(parent, record->parent.size()) != words[2] &&
                local_text(parent, record->parent.size()) != words[2]) {
                continue;
            }
            answer.text += (several ? node->name + ":" : "") + display_name(*row, *record) +
                           status_text(*row, *record) + '\n';
        }
    }
    return answer;
}

ControlAnswer count_resources(Service& service, Connection&, const Words& words) {
    const KindRow* row = words.size() == 2 ? kind_named(words[1]) : nullptr;
    if (row == nullptr) {
        return usage("count KIND");
    }
    std::size_t count = 0;
    for (const Node* node : places_of(service.world.domain, *row)) {
        count += size(node->of(row->kind));
    }
    return {0, std::to_string(count) + '\n'};
}

ControlAnswer show_resource(Service& service, Connection&, const Words& words) {
    const KindRow* row = words.size() == 3 ? kind_named(words[1]) : nullptr;
    if (row == nullptr) {
        return usage("show KIND NAME");
    }
    const Place place = place_of(service, words[2], row);
    const Record* record =
        place.node != nullptr ? record_named(*place.node, *row, place.name) : nullptr;
    if (record == nullptr) {
        return failed("no such " + words[1] + ": " + words[2]);
    }
    ControlAnswer answer;
    for (const Field& field : fields_of(row->kind)) {
        if (applies(row->kind, field, record->entry)) {
            const bool hidden = field.type == FieldType::secret;
            answer.text += std::string(field.name) + "=" +
                           (hidden ? std::string("***") : field_text(field, record->entry)) + '\n';
        }
    }
    return answer;
}

namespace {

ControlAnswer manage(Service& service, const Words& words, bool start) {
    if (words.size() >= 2 && words.size() <= 3 && words[1] == "node") {
        const Place place = place_of(service, words.size() == 3 ? words[2] + ":" : "", nullptr);
        Bytes block(start ? sizeof(INIT_NODE) : sizeof(STOP_NODE));
        vcb_header(block.data())->opcode = start ? NAP_INIT_NODE : NAP_STOP_NODE;
        return place.node == nullptr ? failed("there is no node")
                                     : answer_of(act(service, place.node, std::move(block)));
    }
    const KindRow* row = words.size() == 3 ? kind_named(words[1]) : nullptr;
    const auto* managed =
        std::find_if(std::begin(managed_kinds), std::end(managed_kinds),
                     [&](const ManagedKind& m) { return row != nullptr && m.kind == row->kind; });
    if (managed == std::end(managed_kinds)) {
        return usage(words[0] + " dlc|port|ls|dlur_pu NAME, or " + words[0] + " node [NODE]");
    }
    const Place place = place_of(service, words[2], row);
    const Record* record =
        place.node != nullptr ? record_named(*place.node, *row, place.name) : nullptr;
    if (record == nullptr) {
        return failed("no such " + words[1] + ": " + words[2]);
    }
    const NB_USHORT opcode = start ? managed->start : managed->stop;
    Bytes block(vnv_verb_search(opcode, 0, 0)->block_size);
    vcb_header(block.data())->opcode = opcode;
    std::memcpy(block.data() + (start ? managed->start_name : managed->stop_name),
                record->key.data(), 8);
    return answer_of(act(service, place.node, std::move(block)));
}

bool set_ls_state(World& world, Node& node, Record& ls, const std::string& state) {
    if (state == "active") {
        activate_ls(world, node, ls);
    } else if (state == "inactive" || state == "failed" || state == "disabled") {
        deactivate_ls(world, node, ls, state == "failed",
                      state == "disabled" ? NOF_LS_ON_DEMAND : 0);
    } else if (state == "starting" || state == "stopping") {
        ls.as<LS_ENTRY>().det.state =
            state == "starting" ? NOF_STATE_START_PENDING : NOF_STATE_STOP_PENDING;
        indicate(world, node, Kind::ls, ls, false);
    } else {
        return false;
    }
    return true;
}

bool set_pu_state(World& world, Node& node, Kind kind, Record& pu, const std::string& state) {
    if (state == "active") {
        activate_pu(world, node, kind, pu);
    } else if (state == "inactive") {
        deactivate_pu(world, node, kind, pu);
    } else {
        const Field& field = *field_named(kind_row(kind), "dlur_state");
        std::string reason;
        if (kind != Kind::dlur_pu || !set_field(field, pu.entry, state, reason)) {
            return false;
        }
        indicate_dlur_pu(world, node, pu);
    }
    return true;
}

// Nobody has sessions with, or through, a node that does not run.
ControlAnswer not_running(const Node& node) {
    return failed("the node does not run: " + node.name);
}

// States of LUs: inactive, active, in-session.
bool set_lu_state(World& world, Node& node, Kind kind, Record& lu, const std::string& state) {
    const bool session = state == "in-session";
    if (!session && state != "active" && state != "inactive") {
        return false;
    }
    const NB_BYTE active = state != "inactive";
    if (kind == Kind::downstream_lu) {
        set_downstream_lu(world, node, lu, active, session);
        return true;
    }
    if (kind == Kind::lu_0_to_3) {
        lu.as<LU03_ENTRY>().det_data.lu_active = active;
        lu.as<LU03_ENTRY>().det_data.plu_session_active = session;
    } else {
        if (!session) {
            end_sessions_of(world, node, lu);
        }
        lu.as<LU62_ENTRY>().session_status = session;
    }
    indicate(world, node, kind, lu, false);
    return true;
}

bool set_simple_state(World& world, Node& node, const KindRow& row, Record& record,
                      const std::string& state) {
    std::string reason;
    if (state == "gone") {
        indicate(world, node, row.kind, record, true);
        remove_record(node, row.kind, record);
        return true;
    }
    const Field* field = field_named(row, "state");
    if (field == nullptr || !set_field(*field, record.entry, state, reason)) {
        return false;
    }
    if (row.kind == Kind::port && record.as<PORT_ENTRY>().state != NOF_STATE_ACTIVE) {
        for (Record* ls : children(node.of(Kind::ls), record.key)) { // they go with their port
            if (ls->as<LS_ENTRY>().det.state != NOF_STATE_INACTIVE) {
                deactivate_ls(world, node, *ls);
            }
        }
    }
    indicate(world, node, row.kind, record, false);
    return true;
}

bool set_state_of(World& world, Node& node, const KindRow& row, Record& record,
                  const std::string& state) {
    switch (row.kind) {
    case Kind::ls:
        return set_ls_state(world, node, record, state);
    case Kind::pu:
    case Kind::dlur_pu:
    case Kind::downstream_pu:
        return set_pu_state(world, node, row.kind, record, state);
    case Kind::lu_0_to_3:
    case Kind::downstream_lu:
    case Kind::local_lu:
        return set_lu_state(world, node, row.kind, record, state);
    default:
        return set_simple_state(world, node, row, record, state);
    }
}

} // namespace

ControlAnswer start_resource(Service& service, Connection&, const Words& words) {
    return manage(service, words, true);
}

ControlAnswer stop_resource(Service& service, Connection&, const Words& words) {
    return manage(service, words, false);
}

ControlAnswer set_state(Service& service, Connection&, const Words& words) {
    const KindRow* row = words.size() == 4 ? kind_named(words[1]) : nullptr;
    if (row == nullptr || row->indication == 0) {
        return usage("state KIND NAME STATE");
    }
    const Place place = place_of(service, words[2], row);
    Record* record = place.node != nullptr ? record_named(*place.node, *row, place.name) : nullptr;
    if (record == nullptr) {
        return failed("no such " + words[1] + ": " + words[2]);
    }
    if (!place.node->active && words[3] == "in-session") {
        return not_running(*place.node);
    }
    if (!set_state_of(service.world, *place.node, *row, *record, words[3])) {
        return failed("not a state of " + words[1] + ": " + words[3]);
    }
    service.world.changed = true;
    return {};
}

ControlAnswer use_lu(Service& service, Connection&, const Words& words) {
    const KindRow& row = kind_row(Kind::lu_0_to_3);
    if (words.size() < 3) {
        return usage("use LU program|user|client NAME | none");
    }
    const Place place = place_of(service, words[1], nullptr);
    Record* lu = place.node != nullptr ? record_named(*place.node, row, place.name) : nullptr;
    if (lu == nullptr) {
        return failed("no such LU: " + words[1]);
    }
    if (!place.node->active) {
        return not_running(*place.node);
    }
    if (words[2] == "none") {
        release_lu(service.world, *place.node, *lu);
        return {};
    }
    static constexpr std::pair<std::string_view, NAP_APPLICATION_TYPE> types[] = {
        {"program", NAP_LUA_APPLICATION},
        {"user", NAP_FMI_APPLICATION},
        {"client", NAP_TN_APPLICATION}};
    auto& detail = lu->as<LU03_ENTRY>().det_data;
    for (const auto& [name, type] : types) {
        if (words.size() != 4 || words[2] != name) {
            continue;
        }
        if (detail.appl_conn_active != 0) { // what had it lets go first
            release_lu(service.world, *place.node, *lu);
        }
        std::string reason;
        const LU03_DETAIL before = detail;
        detail.application = {};
        detail.app_type = type;
        if (!set_field(*field_named(row, name), lu->entry, words[3], reason)) {
            lu->as<LU03_ENTRY>().det_data = before;
            return failed(reason);
        }
        if (type == NAP_FMI_APPLICATION) {
            detail.application.user.session_kind = NOF_DISPLAY_SESSION;
        } else if (type == NAP_TN_APPLICATION) {
            detail.application.client.client_kind = 1;
            detail.application.client.port = 23;
        }
        detail.appl_conn_active = NAP_YES;
        indicate_lu_0_to_3(service.world, *place.node, *lu);
        service.world.changed = true;
        return {};
    }
    return usage("use LU program|user|client NAME | none");
}

ControlAnswer call_in(Service& service, Connection&, const Words& words) {
    if (words.size() != 3) {
        return usage("call-in PORT CP");
    }
    const Place place = place_of(service, words[1], nullptr);
    const Record* port = place.node != nullptr
                             ? record_named(*place.node, kind_row(Kind::port), place.name)
                             : nullptr;
    if (port == nullptr) {
        return failed("no such port: " + words[1]);
    }
    if (port->as<PORT_ENTRY>().state != NOF_STATE_ACTIVE) {
        return failed("the port is not active: " + words[1]);
    }
    NB_FQNAME cp;
    put_ebcdic(cp, sizeof cp, words[2]);
    accept_link(service.world, *place.node, *port, cp);
    service.world.changed = true;
    return {};
}

ControlAnswer change_sessions(Service& service, Connection&, const Words& words) {
    unsigned long count = 0;
    if (words.size() < 5 || words.size() > 6 || !parse_number(words[4], count) || count > 0xFFFF) {
        return usage("session LU PARTNER MODE COUNT [CP]");
    }
    const Place place = place_of(service, words[1], nullptr);
    const Record* lu = place.node != nullptr
                           ? record_named(*place.node, kind_row(Kind::local_lu), place.name)
                           : nullptr;
    if (lu == nullptr) {
        return failed("no such local LU: " + words[1]);
    }
    if (!place.node->active) {
        return not_running(*place.node);
    }
    NB_FQNAME partner;
    NB_NAME8E mode;
    NB_FQNAME cp{};
    put_ebcdic(partner, sizeof partner, words[2]);
    put_ebcdic(mode, sizeof mode, words[3]);
    if (words.size() == 6) {
        put_ebcdic(cp, sizeof cp, words[5]);
    }
    set_sessions(service.world, *place.node, *lu, partner, mode, cp, static_cast<NB_USHORT>(count));
    service.world.changed = true;
    return {};
}

ControlAnswer change_server(Service& service, Connection&, const Words& words) {
    if (words.size() != 3 || (words[2] != "up" && words[2] != "down")) {
        return usage("server NAME up|down");
    }
    Node* node = node_named(service.world.domain, words[1]);
    if (node == nullptr) {
        return failed("no such node: " + words[1]);
    }
    node->gone = words[2] == "down";
    if (node->gone) {
        take_handles(service, false, [node](const Target& target) { return target.node == node; });
    }
    indicate_server(service.world, *node, !node->gone);
    return {};
}

// The new server tells first, as it does when the old one is slow to notice.
ControlAnswer change_master(Service& service, Connection&, const Words& words) {
    Domain& domain = service.world.domain;
    const Node* node = words.size() == 2 ? node_named(domain, words[1]) : nullptr;
    if (node == nullptr) {
        return usage("master NAME");
    }
    const Node* old = node_named(domain, domain.local_server);
    domain.local_server = node->name;
    if (std::find(domain.servers.begin(), domain.servers.end(), node->name) ==
        domain.servers.end()) {
        domain.servers.push_back(node->name);
    }
    indicate_server(service.world, *node, true);
    if (old != nullptr && old != node && !old->gone) {
        indicate_server(service.world, *old, true);
    }
    return {};
}

ControlAnswer send_block(Service& service, Connection&, const Words& words) {
    Bytes block;
    if (words.size() != 2 || !from_hex(words[1], block) || block.size() < sizeof(VCB_HEADER)) {
        return usage("send HEX");
    }
    return answer_of(act(service, place_of(service, "", nullptr).node, std::move(block)));
}

} // namespace simnode
