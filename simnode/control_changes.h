// The control commands that look at resources and change them.
#pragma once

#include "simnode/control.h"
#include "simnode/world.h"

namespace simnode {

using Words = std::vector<std::string>; // of the command line, the command first

// What a command names: "NODE:NAME", or "NAME" on the first node; a record of the configuration
// file by its name alone.
struct Place {
    Node* node = nullptr;
    std::string name;
};
Place place_of(Service& service, const std::string& word, const KindRow* row);
// By the whole name, or by its first part alone; null when there is no such record.
Record* record_named(const Node& node, const KindRow& row, const std::string& name);
ControlAnswer answer_of(Rc rc);

ControlAnswer failed(const std::string& reason);
ControlAnswer usage(const std::string& form);
// An opcode as 0x... or a verb's name.
bool parse_verb(const std::string& text, NB_USHORT& opcode);

ControlAnswer list_resources(Service& service, Connection& issuer, const Words& words);
ControlAnswer count_resources(Service& service, Connection& issuer, const Words& words);
ControlAnswer show_resource(Service& service, Connection& issuer, const Words& words);
ControlAnswer define_resource(Service& service, Connection& issuer, const Words& words);
ControlAnswer delete_resource(Service& service, Connection& issuer, const Words& words);
ControlAnswer start_resource(Service& service, Connection& issuer, const Words& words);
ControlAnswer stop_resource(Service& service, Connection& issuer, const Words& words);
ControlAnswer set_state(Service& service, Connection& issuer, const Words& words);
ControlAnswer use_lu(Service& service, Connection& issuer, const Words& words);
ControlAnswer call_in(Service& service, Connection& issuer, const Words& words);
ControlAnswer change_sessions(Service& service, Connection& issuer, const Words& words);
ControlAnswer change_server(Service& service, Connection& issuer, const Words& words);
ControlAnswer change_master(Service& service, Connection& issuer, const Words& words);
ControlAnswer send_block(Service& service, Connection& issuer, const Words& words);

} // namespace simnode
