#include "kit/random_operator.h"

#include "common/names.h"
#include "nof/opcodes.h"
#include "nof/pu_lu.h"

#include <algorithm>
#include <span>
#include <sstream>
#include <string_view>
#include <vector>

namespace kit {

// How a kind is defined. Patterns are alternatives between bars: "%9" is a number from 1 to 9, "~"
// some text, "@kind" the name of some resource of that kind. Fields come in about every other
// definition, those behind a "!" in each.
struct RANDOM_OPERATOR::RULE {
    const char* kind;
    const char* name;
    const char* fields;
};

// Left out is what a store has from its build only by chance. Primary lines are not listed by it,
// and LUs below a network node have a place only if sessions made that node known before.
const RANDOM_OPERATOR::RULE RANDOM_OPERATOR::rules[] = {
    {"dlc", "D%3", "!type=ethernet description=~ initially_active=true|false"},
    {"dlc", "T%2", "!type=token-ring description=~ initially_active=true|false"},
    {"dlc", "Q%2", "!type=qllc description=~ initially_active=true|false"},
    {"port", "P%6|@port",
     "!dlc=@dlc description=~ number=%3 max_btu=265|1033 link_limit=%64 "
     "dspu_template=@dspu_template initially_active=true|false"},
    {"ls", "S%12|@ls",
     "!port=@port !adjacent_type=host !host_pu=true !pu=U%8 description=~ initially_active=true"},
    {"ls", "S%12|@ls",
     "!port=@port !adjacent_type=network-node|end-node|learn !host_pu=false "
     "!dspu_services=none adjacent_cp=NET.CP%4|NET.EN%3 description=~ tg_number=%20 on_demand=true"},
    {"ls", "S%12|@ls",
     "!port=@port !adjacent_type=downstream !host_pu=false !dspu_services=concentration|dlur "
     "!dspu=V%5 description=~ disable_remote=true|false"},
    {"dlur_pu", "U%8|W%3", "description=~ dlus=NET.CP%4 initially_active=true|false retry=true"},
    {"lu_0_to_3", "L%30|@lu_0_to_3",
     "!pu=@pu|@dlur_pu !nau=%40 description=~ model=display-2|display-5|printer|rje|unknown "
     "pool=POOL%3|@pool"},
    {"downstream_lu", "X%20|@downstream_lu",
     "!pu=@downstream_pu !nau=%40 host_lu=@lu_0_to_3 description=~ delayed_logon=true|false"},
    {"local_lu", "A%9|@local_lu", "!alias=A%12 description=~ default_pool=true|false"},
    {"local_lu", "B%6", "!alias=B%9 !dependent=true !pu=@pu|@dlur_pu !nau=%40 description=~"},
    {"local_lu", "@local_lu", "!dependent=true !pu=@pu|@dlur_pu !nau=%200"},
    {"local_lu", "@local_lu", "!dependent=false !nau=0 description=~"},
    {"mode_definition", "M%6|#INTER|@mode_definition",
     "cos=@cos description=~ max_sessions=%20 sessions=%9"},
    {"directory", "NET.CP%4", "!type=network-node description=~"},
    {"directory", "NET.EN%4",
     "!type=end-node parent=NET.CP%4 !parent_type=network-node description=~"},
    {"directory", "NET.PL%8|NET.PX%3",
     "!type=lu !parent=NET.EN%4 !parent_type=end-node description=~"},
    {"directory", "NET.W%3", "!type=wildcard-lu !parent=NET.EN%4 !parent_type=end-node"},
    {"partner_definition", "NET.PL%8|NET.PX%3|NET.PY%3",
     "!alias=PA%12 description=~ parallel_sessions=true|false"},
    {"cos", "C%4|#CONNECT", "description=~ priority=%3"},
    {"cn", "NET.CN%3|@cn", "description=~"},
    {"cn_port", "@cn", "!port=@port"},
    {"lu62_timeout", "@mode_definition|M%9", "!type=mode !timeout=%60"},
    {"lu62_timeout", "@local_lu|A%9", "!type=local-lu !timeout=%60"},
    {"lu62_timeout", "NET.PL%8", "!type=partner-lu !timeout=%60"},
    {"lu62_timeout", "\"\"", "!type=node !timeout=%60"},
    {"ls_routing", "@local_lu",
     "!partner=NET.PL%6|NET.CP%4 !ls=@ls wildcard=true|false description=~"},
    {"tp", "TP%8", "description=~ access_list=AL%3 sync_level=confirm|none security_required=true"},
    {"tp_load", "TP%8",
     "!path=/opt/%99|/opt/much/longer/%999 type=queued|non-queued description=~"},
    {"dspu_template", "T%4|@dspu_template", "description=~ parameter80=%9"},
    {"dslu_template", "%250", "!template=@dspu_template !last=%255 host_lu=@lu_0_to_3"},
    {"userid", "ID%5", "!password=C1C2 description=~"},
    {"access_list", "AL%3", "description=~"},
    {"access_user", "USR%6", "!list=@access_list"},
    {"lu_lu_password", "@local_lu", "!partner=NET.PL%6 !password=0102030405060708 description=~"},
    {"tn_client", "10.1.1.%4|host%3|\"\"", "description=~"},
    {"tn_session", "%30", "!client=@tn_client !lu=@lu_0_to_3|@pool description=~ ssl=none|on"},
    {"association", "@lu_0_to_3", "!printer=@lu_0_to_3 description=~"},
    {"redirect", "10.2.2.%5|client%3", "!port=%900 !host=host%4 !host_port=%99 description=~"},
    {"pool", "POOL%4|@pool", "!lu=@lu_0_to_3 description=~"},
    {"extra_data", "@lu_0_to_3", "parameter142=%9 parameter146=%9"},
    {"user", "u%6", "group=true|false description=~ session_limit=%9"},
    {"user_session", "DISP%8", "!user=@user !type=3270 !lu=@lu_0_to_3|@pool description=~"},
    {"user_session", "AS%8", "!user=@user !type=5250 !local_lu=@local_lu partner=NET.PL%6"},
    {"cpic", "CP%5", "tp=TP%8 mode=@mode_definition partner=NET.PL%6 lu_alias=A%12 description=~"},
    {"rje", "W%3", "!lu1=@lu_0_to_3 !num_lus=1 description=~"},
};

namespace {

// What is deleted by its name.
constexpr const char* deleted =
    "dlc|port|ls|ls|dlur_pu|lu_0_to_3|lu_0_to_3|lu_0_to_3|local_lu|downstream_lu|downstream_lu|"
    "mode_definition|directory|directory|partner_definition|cos|cn|cn_port|lu62_timeout|ls_routing|"
    "tp|tp_load|dspu_template|dslu_template|userid|access_list|access_user|lu_lu_password|"
    "tn_client|tn_session|association|redirect|pool|whole pool|extra_data|user|user_session|cpic|"
    "rje";

// Starts and stops, and what happens by itself.
constexpr const char* changes[] = {
    "start dlc @dlc",
    "start port @port",
    "start ls @ls",
    "start ls @ls",
    "start ls @ls",
    "start dlur_pu @dlur_pu",
    "stop dlc @dlc",
    "stop port @port",
    "stop ls @ls",
    "stop ls @ls",
    "stop dlur_pu @dlur_pu",
    "state dlc @dlc inactive|active",
    "state port @port inactive|active",
    "state ls @ls active|inactive|failed|starting|stopping",
    "state ls @ls active|active|inactive|failed|disabled",
    "call-in @port NET.EN%3",
    "state pu @pu active|inactive",
    "state dlur_pu @dlur_pu active|inactive|starting|pending-retry",
    "state downstream_pu @downstream_pu active|inactive",
    "state lu_0_to_3 @lu_0_to_3 active|inactive|in-session",
    "state downstream_lu @downstream_lu active|inactive|in-session",
    "state local_lu @local_lu active|inactive|in-session",
    "use @lu_0_to_3 user u%6|gone%2",
    "use @lu_0_to_3 client 10.1.1.%4",
    "use @lu_0_to_3 program PROG%3",
    "use @lu_0_to_3 none",
    "session @local_lu NET.PL%8|NET.CP%4 M%6|#INTER %4 NET.CP%4",
    "session @local_lu NET.PL%8|NET.Q%3 M%6|#INTER %4",
    "session @local_lu NET.PL%8|NET.CP%4|NET.Q%3 M%6|#INTER 0",
    "resync dlc|port|ls|pu|dlur_pu|downstream_pu|lu_0_to_3|downstream_lu|local_lu|partner|mode|"
    "directory",
    "fail NAP_START_LS|NAP_START_PORT|NAP_START_DLC 1 0x0003 0x00000105",
};
constexpr const char* rare_changes[] = {"stop node", "start node"};

std::vector<std::string_view> parts(std::string_view text, char separator) {
    std::vector<std::string_view> found;
    for (;;) {
        const std::size_t end = text.find(separator);
        found.push_back(text.substr(0, end));
        if (end == text.npos) {
            return found;
        }
        text.remove_prefix(end + 1);
    }
}

} // namespace

std::string RANDOM_OPERATOR::run(const std::string& command) {
    int status;
    control_.run(command, &status);
    return status == 0 ? command : "";
}

std::string RANDOM_OPERATOR::some(const std::string& kind) {
    std::istringstream list(control_.run("list " + kind));
    std::vector<std::string> names;
    for (std::string line; std::getline(list, line);) {
        // States stand behind the name.
        const std::size_t state = line.find('=');
        names.push_back(state == line.npos ? line : line.substr(0, line.rfind(' ', state)));
    }
    if (names.empty()) {
        return "";
    }
    const std::string name = names[static_cast<std::size_t>(pick(static_cast<int>(names.size())))];
    return name.empty() || name.find(' ') != name.npos ? '"' + name + '"' : name;
}

std::string RANDOM_OPERATOR::filled(std::string_view pattern) {
    const auto alternatives = parts(pattern, '|');
    const std::string_view chosen =
        alternatives[static_cast<std::size_t>(pick(static_cast<int>(alternatives.size())))];
    if (chosen.starts_with('@')) {
        return some(std::string(chosen.substr(1)));
    }
    std::string text;
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        if (chosen[i] == '~') {
            text += "text_" + std::to_string(pick(1000));
        } else if (chosen[i] == '%') {
            int limit = 0;
            for (; i + 1 < chosen.size() && chosen[i + 1] >= '0' && chosen[i + 1] <= '9'; ++i) {
                limit = 10 * limit + (chosen[i + 1] - '0');
            }
            text += std::to_string(1 + pick(limit));
        } else {
            text += chosen[i];
        }
    }
    return text;
}

std::string RANDOM_OPERATOR::define() {
    const RULE& rule = rules[static_cast<std::size_t>(pick(static_cast<int>(std::size(rules))))];
    std::string name = filled(rule.name);
    if (name.empty()) {
        return "";
    }
    std::string command = std::string("define ") + rule.kind + ' ' + name;
    for (std::string_view field : parts(rule.fields, ' ')) {
        const bool always = field.starts_with('!');
        if (!always && pick(2) == 0) {
            continue;
        }
        field.remove_prefix(always);
        const std::size_t equals = field.find('=');
        const std::string value = filled(field.substr(equals + 1));
        if (value.empty() && always) {
            return "";
        }
        if (!value.empty() && value.find('"') == value.npos) {
            command += ' ' + std::string(field.substr(0, equals + 1)) + value;
        }
    }
    return run(command);
}

std::string RANDOM_OPERATOR::remove() {
    const std::string kind = filled(deleted);
    if (kind == "whole pool") {
        const std::string member = some("pool"); // with its LU behind it, in quotes
        return member.empty() ? "" : run("delete pool " + member.substr(1, member.find(' ') - 1));
    }
    const std::string name = some(kind);
    return name.empty() ? "" : run("delete " + kind + ' ' + name);
}

template <typename Block> std::string RANDOM_OPERATOR::send(NB_USHORT opcode, Block& block) {
    static constexpr const char* names[] = {"R", "RANG", "LONGER"};
    van_ascii_to_ebcdic(block.base_name, names[pick(3)], sizeof block.base_name);
    block.header.opcode = opcode;
    block.first_nau = static_cast<NB_BYTE>(pick(9) == 0 ? 250 : 1 + pick(50));
    block.last_nau = static_cast<NB_BYTE>(std::min(block.first_nau + pick(12), 255));
    if constexpr (requires { block.naming_flags; }) {
        block.naming_flags = static_cast<NB_BYTE>(pick(8));
        block.first_number = static_cast<NB_BYTE>(pick(2) == 0 ? 250 : pick(30));
    }
    std::string command = "send ";
    for (const NB_BYTE byte : std::span(reinterpret_cast<const NB_BYTE*>(&block), sizeof block)) {
        static constexpr char digits[] = "0123456789abcdef";
        command += {digits[byte >> 4], digits[byte & 15]};
    }
    return run(command);
}

std::string RANDOM_OPERATOR::range() {
    const auto name = [this](NB_NAME8E& field, const char* pattern) {
        van_ascii_to_ebcdic(field, filled(pattern).c_str(), sizeof field);
    };
    switch (pick(6)) {
    case 0: {
        DELETE_LU_0_TO_3_RANGE block{};
        return send(NAP_DELETE_LU_0_TO_3_RANGE, block);
    }
    case 1: {
        DELETE_DOWNSTREAM_LU_RANGE block{};
        return send(NAP_DELETE_DOWNSTREAM_LU_RANGE, block);
    }
    case 2: {
        DEFINE_DOWNSTREAM_LU_RANGE block{};
        name(block.dspu_name, "@downstream_pu");
        name(block.host_lu_name, "@lu_0_to_3");
        block.delayed_logon = static_cast<NB_BYTE>(pick(2));
        return send(NAP_DEFINE_DOWNSTREAM_LU_RANGE, block);
    }
    default: {
        DEFINE_LU_0_TO_3_RANGE block{};
        name(block.pu_name, "@pu|@dlur_pu");
        if (pick(2) == 0) {
            name(block.pool_name, "POOL%4");
        }
        return send(NAP_DEFINE_LU_0_TO_3_RANGE, block);
    }
    }
}

std::string RANDOM_OPERATOR::change() {
    const char* pattern =
        pick(60) == 0 ? rare_changes[pick(2)] : changes[pick(static_cast<int>(std::size(changes)))];
    if (!loses_ && std::string_view(pattern).starts_with("resync")) {
        return "";
    }
    std::string command;
    for (const std::string_view word : parts(pattern, ' ')) {
        const std::string value = filled(word);
        if (value.empty()) {
            return "";
        }
        command += (command.empty() ? "" : " ") + value;
    }
    return run(command);
}

std::string RANDOM_OPERATOR::step() {
    switch (pick(5)) {
    case 0:
    case 1:
        return pick(10) != 0 ? define() : range();
    case 2:
        return remove();
    default:
        return change();
    }
}

} // namespace kit
