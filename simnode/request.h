// One verb on its way through the service, and the handlers that carry it out.
#pragma once

#include "simnode/world.h"

namespace simnode {

// What a handle stands for.
enum class TargetKind : NB_BYTE { none, node, configuration_file, network_file, tp_load_file };
struct Target {
    TargetKind kind = TargetKind::none;
    Node* node = nullptr; // of a node and its load file
};

// An operator's registration for one kind of indication.
struct Sink {
    NB_HANDLE handle;
    NB_USHORT opcode;
    NB_ULONG correlator;
};

// What the service knows of one operator; verbs see it, frames do not.
struct Operator {
    NB_ULONG id = 0;
    NB_ULONG uid = 0;
    bool read_only = false;
    NB_HANDLE last_handle = 0;
    std::map<NB_HANDLE, Target> targets;
    std::vector<Sink> sinks;
    std::map<NB_HANDLE, int> outstanding; // answers that are held or late, per target
};

struct Request {
    World& world;
    Operator& op;
    NB_HANDLE handle; // as given
    NB_ULONG correlator;
    Target target;
    std::span<NB_BYTE> block;
    NB_ULONG capacity; // of the operator's buffer
    Bytes& buffer;     // receives the answer's buffer part

    template <typename T> T& as() { return *reinterpret_cast<T*>(block.data()); }
};
using Handler = Rc (*)(Request&);

enum class Scope : NB_BYTE {
    any,     // no particular target
    node,    // a node's handle, or the configuration file for the node that the block concerns
    domain,  // the configuration file
    tp_load, // a node's TP load-information file
};

enum class Effect : NB_BYTE {
    reads,
    acts,           // refused to operators that may only read, like the following
    changes,        // copied to the other operators of the target as a configuration indication
    changes_domain, // copied to the other operators of the configuration file
};

struct VerbRow {
    NB_USHORT opcode;
    Handler handler;
    Scope scope;
    Effect effect;
};

// Null for an opcode that is no verb.
const VerbRow* find_verb(NB_USHORT opcode);

// Checks the block, carries the verb out and sets its return codes. Events it leaves are in the
// world.
Rc run_verb(Request& request);

// The node that a verb sent to the configuration file concerns: the one that has the resource, or
// what the block names; else the local node.
Node* concerned_node(Domain& domain, std::span<const NB_BYTE> block);

// Handlers, by subject.
Rc query_list(Request& request);
Rc query_node_list(Request& request);
Rc query_server_list(Request& request);
Rc query_node(Request& request);
Rc query_node_limits(Request& request);
Rc query_central_logger(Request& request);
Rc query_setting(Request& request);
Rc define_setting(Request& request);
Rc define_trace_type(Request& request);
Rc delete_appcip_defaults(Request& request);

Rc define_record(Request& request);
Rc delete_record(Request& request);
Rc delete_holder(Request& request);
Rc define_cn(Request& request);
Rc define_pool(Request& request);
Rc delete_pool(Request& request);
Rc delete_userid(Request& request);
Rc delete_extra_data(Request& request);
Rc define_adjacent_node(Request& request);
Rc delete_adjacent_node(Request& request);
Rc define_lu_range(Request& request);
Rc delete_lu_range(Request& request);
Rc add_dlc_trace(Request& request);
Rc remove_dlc_trace(Request& request);

Rc define_node(Request& request);
Rc add_backup(Request& request);
Rc delete_backup(Request& request);

Rc init_node(Request& request);
Rc stop_node(Request& request);
Rc start_dlc(Request& request);
Rc stop_dlc(Request& request);
Rc start_port(Request& request);
Rc stop_port(Request& request);
Rc start_ls(Request& request);
Rc stop_ls(Request& request);
Rc start_internal_pu(Request& request);
Rc stop_internal_pu(Request& request);
Rc activate_session(Request& request);
Rc deactivate_session(Request& request);
Rc path_switch(Request& request);

Rc connect_node(Request& request);
Rc disconnect(Request& request);
Rc open_file(Request& request);
Rc set_processing_mode(Request& request);
Rc register_sink(Request& request);

} // namespace simnode
