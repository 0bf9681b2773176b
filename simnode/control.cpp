#include "simnode/control.h"

#include "nba/nba.h"
#include "simnode/control_changes.h"
#include "simnode/indications.h"
#include "simnode/service.h"

#include <algorithm>

namespace simnode {

// The request id of the answer's frame carries the exit status.
void answer_control(Connection& connection, int status, std::string_view text) {
    WIRE_FRAME header{};
    header.kind = WIRE_CONTROL_ANSWER;
    header.request_id = static_cast<NB_ULONG>(status);
    queue_frame(connection, header, {},
                {reinterpret_cast<const NB_BYTE*>(text.data()), text.size()});
}

namespace {

// ---- faults ----

// "fail OPCODE [COUNT] PRIMARY SECONDARY"
ControlAnswer fail_verbs(Service& service, Connection&, const Words& words) {
    NB_USHORT opcode = 0;
    unsigned long numbers[3] = {1, 0, 0};
    const std::size_t count = words.size() - 2;
    if ((count != 2 && count != 3) || !parse_verb(words[1], opcode)) {
        return usage("fail VERB [COUNT] PRIMARY SECONDARY");
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (!parse_number(words[2 + i], numbers[3 - count + i])) {
            return failed("not a number: " + words[2 + i]);
        }
    }
    service.faults.fail.push_back(
        {opcode,
         static_cast<int>(numbers[0]),
         {static_cast<NB_USHORT>(numbers[1]), static_cast<NB_ULONG>(numbers[2])}});
    return {};
}

ControlAnswer set_immediate(Service& service, Connection&, const Words& words) {
    std::vector<NB_USHORT> opcodes;
    for (std::size_t i = 1; i < words.size(); ++i) {
        NB_USHORT opcode = 0;
        if (words[i] == "none") {
            continue;
        }
        if (!parse_verb(words[i], opcode)) {
            return usage("immediate VERB... | none");
        }
        opcodes.push_back(opcode);
    }
    service.faults.immediate = std::move(opcodes);
    for (const auto& [fd, connection] : service.connections) {
        if (!connection->control) {
            send_immediate(service, *connection);
        }
    }
    return {};
}

// A rule of milliseconds per verb; 0 takes it away.
ControlAnswer set_time(std::map<NB_USHORT, std::chrono::milliseconds>& rules, const Words& words) {
    NB_USHORT opcode = 0;
    unsigned long milliseconds = 0;
    if (words.size() != 3 || !parse_verb(words[1], opcode) ||
        !parse_number(words[2], milliseconds)) {
        return usage(words[0] + " VERB MILLISECONDS");
    }
    rules.erase(opcode);
    if (milliseconds != 0) {
        rules[opcode] = std::chrono::milliseconds(milliseconds);
    }
    return {};
}

ControlAnswer delay_verbs(Service& service, Connection&, const Words& words) {
    return set_time(service.faults.delays, words);
}

ControlAnswer set_duration(Service& service, Connection&, const Words& words) {
    return set_time(service.faults.durations, words);
}

ControlAnswer hold_verbs(Service& service, Connection&, const Words& words) {
    NB_USHORT opcode = 0;
    if (words.size() != 2 || !parse_verb(words[1], opcode)) {
        return usage("hold VERB");
    }
    service.faults.held.insert(opcode);
    return {};
}

ControlAnswer release_verbs(Service& service, Connection&, const Words& words) {
    NB_USHORT opcode = 0;
    if (words.size() > 2 || (words.size() == 2 && !parse_verb(words[1], opcode))) {
        return usage("release [VERB]");
    }
    release_answers(service, opcode);
    return {};
}

ControlAnswer set_resync(Service& service, Connection&, const Words& words) {
    const KindRow* row = words.size() == 2 ? kind_named(words[1]) : nullptr;
    if (row == nullptr || row->indication == 0) {
        return usage("resync KIND");
    }
    service.world.resync.insert(row->indication);
    return {};
}

ControlAnswer damage_answer(Service& service, Connection&, const Words& words) {
    NB_USHORT opcode = 0;
    const auto damage = words.size() >= 2 ? damage_named(words[1]) : std::nullopt;
    if (!damage || words.size() > 3 || (words.size() == 3 && !parse_verb(words[2], opcode))) {
        return usage("corrupt half-frame|bad-length|unknown-opcode|entry-length-zero|"
                     "entry-length-overlong|entry-count [VERB]");
    }
    service.faults.damage = DamageRule{*damage, opcode};
    return {};
}

ControlAnswer clear_faults(Service& service, Connection&, const Words&) {
    service.faults.fail.clear();
    service.faults.delays.clear();
    service.faults.durations.clear();
    service.faults.damage.reset();
    service.world.resync.clear();
    release_answers(service, 0);
    return {};
}

// ---- connections and the software itself ----

// Every operator that is not a command line.
template <typename Action> void for_each_operator(Service& service, Action action) {
    for (const auto& [fd, connection] : service.connections) {
        if (!connection->control) {
            action(*connection);
        }
    }
}

ControlAnswer drop_connection(Service& service, Connection&, const Words& words) {
    unsigned long id = 0;
    if (words.size() > 2 || (words.size() == 2 && !parse_number(words[1], id))) {
        return usage("drop [OPERATOR]");
    }
    bool any = false;
    for_each_operator(service, [&](Connection& connection) {
        if (words.size() == 1 || connection.op.id == id) {
            connection.broken = true;
            any = true;
        }
    });
    return any ? ControlAnswer{} : failed("no such operator");
}

ControlAnswer kill_node(Service& service, Connection&, const Words& words) {
    Node* node = words.size() == 2 ? node_named(service.world.domain, words[1]) : nullptr;
    if (node == nullptr) {
        return usage("kill-node NAME");
    }
    node->gone = true;
    take_handles(service, true, [node](const Target& target) { return target.node == node; });
    if (service.world.domain.client_server) { // also who has not connected to it yet learns of it
        indicate_server(service.world, *node, false);
    }
    return {};
}

ControlAnswer revive_node(Service& service, Connection&, const Words& words) {
    Node* node = words.size() == 2 ? node_named(service.world.domain, words[1]) : nullptr;
    if (node == nullptr) {
        return usage("revive-node NAME");
    }
    node->gone = false;
    return {};
}

ControlAnswer lose_file(Service& service, Connection&, const Words& words) {
    const bool network = words.size() == 2 && words[1] == "network";
    if (!network && (words.size() != 2 || words[1] != "configuration")) {
        return usage("lose-file configuration|network");
    }
    const TargetKind kind = network ? TargetKind::network_file : TargetKind::configuration_file;
    if (network) { // it has an indication of its own
        indicate_network_file(service.world);
        send_events(service);
    }
    take_handles(service, !network, [kind](const Target& target) { return target.kind == kind; });
    return {};
}

ControlAnswer stop_software(Service& service, Connection&, const Words&) {
    service.world.stopping = true;
    for_each_operator(
        service, [](Connection& connection) { send_status(connection, NAP_SYSTEM_STOPPING, 0); });
    return {};
}

ControlAnswer lose_link(Service& service, Connection&, const Words&) {
    for_each_operator(service, [](Connection& connection) {
        VCB_HEADER block{};
        block.opcode = NAP_NOF_STATUS_INDICATION;
        block.primary_rc = NAP_INDICATION;
        block.secondary_rc = NAP_LINK_LOST;
        WIRE_FRAME header{};
        header.kind = WIRE_INDICATION;
        queue_frame(connection, header, {reinterpret_cast<const NB_BYTE*>(&block), sizeof block},
                    {});
    });
    return {};
}

ControlAnswer set_read_only(Service& service, Connection&, const Words& words) {
    unsigned long id = 0;
    if (words.size() < 2 || words.size() > 3 || (words[1] != "on" && words[1] != "off") ||
        (words.size() == 3 && !parse_number(words[2], id))) {
        return usage("read-only on|off [OPERATOR]");
    }
    const bool on = words[1] == "on";
    if (words.size() == 2) {
        service.all_read_only = on;
    }
    bool any = words.size() == 2;
    for_each_operator(service, [&](Connection& connection) {
        if (words.size() == 2 || connection.op.id == id) {
            connection.op.read_only = on;
            any = true;
        }
    });
    return any ? ControlAnswer{} : failed("no such operator");
}

ControlAnswer list_operators(Service& service, Connection&, const Words&) {
    ControlAnswer answer;
    for_each_operator(service, [&](Connection& connection) {
        answer.text += std::to_string(connection.op.id) + " uid " +
                       std::to_string(connection.op.uid) +
                       (connection.op.read_only ? " read-only" : "") + ", " +
                       std::to_string(connection.op.sinks.size()) + " registrations\n";
    });
    return answer;
}

ControlAnswer print_journal(Service& service, Connection&, const Words& words) {
    if (words.size() == 2 && words[1] == "clear") {
        service.journal.entries.clear();
        return {};
    }
    if (words.size() != 1) {
        return usage("journal [clear]");
    }
    ControlAnswer answer;
    for (const JournalEntry& entry : service.journal.entries) {
        answer.text += journal_line(entry) + '\n';
    }
    return answer;
}

ControlAnswer wait_idle(Service&, Connection&, const Words&) {
    ControlAnswer answer;
    answer.later = true;
    return answer;
}

ControlAnswer end_service(Service& service, Connection&, const Words&) {
    service.ended = true;
    return {};
}

ControlAnswer print_help(Service&, Connection&, const Words&);

struct Command {
    const char* name;
    const char* arguments;
    const char* purpose;
    ControlAnswer (*run)(Service&, Connection&, const Words&);
};

ControlAnswer flood_operators(Service& service, Connection&, const Words& words) {
    unsigned long per_second = 0;
    unsigned long seconds = 0;
    Node* node = local_node(service.world.domain);
    if (words.size() == 1) {
        return {0, std::to_string(service.flood.sent) + " of " +
                       std::to_string(service.flood.total) + "\n"};
    }
    if (words.size() != 3 || !parse_number(words[1], per_second) ||
        !parse_number(words[2], seconds)) {
        return usage("flood [PER_SECOND SECONDS]");
    }
    if (node == nullptr) {
        return failed("there is no node");
    }
    service.flood = make_flood(*node, per_second, seconds);
    return {};
}

constexpr Command commands[] = {
    {"help", "", "this list", print_help},
    {"list", "KIND [PARENT]", "names and states of the resources of a kind", list_resources},
    {"count", "KIND", "how many there are", count_resources},
    {"show", "KIND NAME", "every field of a resource", show_resource},
    {"define", "KIND NAME [FIELD=VALUE]...", "define or redefine as another operator",
     define_resource},
    {"delete", "KIND NAME", "delete as another operator", delete_resource},
    {"start", "KIND NAME | node", "start as another operator", start_resource},
    {"stop", "KIND NAME | node", "stop as another operator", stop_resource},
    {"state", "KIND NAME STATE", "change a state and indicate it", set_state},
    {"use", "LU program|user|client NAME | none", "an application takes an LU, or lets go of it",
     use_lu},
    {"call-in", "PORT CP", "a remote node comes in with a link station of its own", call_in},
    {"session", "LU PARTNER MODE COUNT [CP]", "sets a number of LU-LU sessions", change_sessions},
    {"flood", "[PER_SECOND SECONDS]", "so many changes of state, or how many there were",
     flood_operators},
    {"server", "NAME up|down", "a server of the domain comes or goes", change_server},
    {"master", "NAME", "the configuration moves to another server", change_master},
    {"send", "HEX", "carry out a whole verb block as another operator", send_block},
    {"fail", "VERB [COUNT] PRIMARY SECONDARY", "the next verbs of a kind fail", fail_verbs},
    {"immediate", "VERB... | none", "verbs that libraries complete at once", set_immediate},
    {"delay", "VERB MILLISECONDS", "answers of a kind come late (0: no longer)", delay_verbs},
    {"takes", "VERB MILLISECONDS", "verbs of a kind take time before anything comes of them",
     set_duration},
    {"hold", "VERB", "answers of a kind wait for release", hold_verbs},
    {"release", "[VERB]", "send the answers that wait", release_verbs},
    {"resync", "KIND", "the next indication of a kind says that some were lost", set_resync},
    {"corrupt", "DAMAGE [VERB]", "damage the next answer", damage_answer},
    {"clear", "", "forget failures, delays, holds and damage", clear_faults},
    {"drop", "[OPERATOR]", "close a connection, or all", drop_connection},
    {"operators", "", "who is connected", list_operators},
    {"read-only", "on|off [OPERATOR]", "operators may only read", set_read_only},
    {"kill-node", "NAME", "the node software of a node dies", kill_node},
    {"revive-node", "NAME", "the node can be connected again", revive_node},
    {"lose-file", "configuration|network", "a domain file goes away", lose_file},
    {"stop-software", "", "the node software shuts down", stop_software},
    {"link-loss", "", "operators lose the link to the node software", lose_link},
    {"journal", "[clear]", "the verbs received, as JSON lines", print_journal},
    {"idle", "", "answers once everything before it is answered", wait_idle},
    {"shutdown", "", "end the service", end_service},
};

ControlAnswer print_help(Service&, Connection&, const Words&) {
    ControlAnswer answer;
    for (const Command& command : commands) {
        std::string line = std::string(command.name) + " " + command.arguments;
        line.resize(std::max<std::size_t>(line.size() + 2, 44), ' ');
        answer.text += line + command.purpose + '\n';
    }
    answer.text += "kinds:";
    for (const KindRow& row : kind_rows()) {
        answer.text += std::string(" ") + row.name;
    }
    answer.text += "\nA verb is an opcode (0x210B) or a name (NAP_QUERY_LS). A resource of another "
                   "node than the first is named NODE:NAME.\n";
    return answer;
}

// Words are separated by blanks; double quotes keep blanks together.
Words split(std::string_view line) {
    Words words;
    std::string word;
    bool any = false;
    bool quoted = false;
    for (const char c : line) {
        if (c == '"') {
            quoted = !quoted;
            any = true;
        } else if (!quoted && (c == ' ' || c == '\t' || c == '\n')) {
            if (any) {
                words.push_back(std::exchange(word, {}));
            }
            any = false;
        } else {
            word += c;
            any = true;
        }
    }
    if (any) {
        words.push_back(word);
    }
    return words;
}

} // namespace

ControlAnswer run_control(Service& service, Connection& issuer, std::string_view line) {
    const Words words = split(line);
    if (words.empty()) {
        return usage("help");
    }
    for (const Command& command : commands) {
        if (words.front() == command.name) {
            ControlAnswer answer = command.run(service, issuer, words);
            if (answer.later) {
                service.idle_waiters.push_back(issuer.op.id);
            }
            return answer;
        }
    }
    return failed("unknown command " + words.front() + "; help lists the commands");
}

ControlAnswer failed(const std::string& reason) {
    return {1, reason + '\n'};
}
ControlAnswer usage(const std::string& form) {
    return {2, "usage: " + form + '\n'};
}

bool parse_verb(const std::string& text, NB_USHORT& opcode) {
    unsigned long number = 0;
    if (text.starts_with("0x") && parse_number(text, number) && number <= 0xFFFF) {
        opcode = static_cast<NB_USHORT>(number);
        return true;
    }
    for (unsigned candidate = 0; candidate <= 0xFFFF; ++candidate) {
        const auto* row = vnv_verb_search(static_cast<NB_USHORT>(candidate), 0, 0);
        if (row != nullptr && lower(row->name) == lower(text)) {
            opcode = static_cast<NB_USHORT>(candidate);
            return true;
        }
    }
    return false;
}

} // namespace simnode
