// What the service simulates: the domain, its nodes with their resources and settings, and the
// events that changes leave to be sent.
#pragma once

#include "nof/node.h"
#include "simnode/kinds.h"
#include "simnode/return_codes.h"

#include <chrono>
#include <set>

namespace simnode {

// Values that are kept whole, read by one query and set by one verb.
enum class Setting : NB_BYTE {
    defaults,
    trace_type,
    cs_trace,
    back_level_cs_trace,
    tn_server_trace,
    slp_trace,
    tn3270_defaults,
    ssl_ldap,
    slp,
    express_logon,
    appcip_defaults,
    central_logging, // the domain's, like the next
    global_log_type,
    count
};
inline constexpr std::size_t SETTING_COUNT = static_cast<std::size_t>(Setting::count);
using Settings = std::array<Bytes, SETTING_COUNT>; // empty: never set

struct Node {
    std::string name;
    bool configured = true;
    bool active = false;
    bool back_level = false;                // refuses connections
    bool gone = false;                      // the node software on it has died
    std::chrono::milliseconds start_time{}; // that it takes
    std::chrono::milliseconds stop_time{};
    NODE_PARAMETERS parameters{};
    NODE_CAPABILITIES capabilities{};
    NODE_LIMITS limits{};
    std::array<Collection, KIND_COUNT> kinds;
    Settings settings;
    NB_ULONG last_session_id = 0;

    Collection& of(Kind kind) { return kinds[static_cast<std::size_t>(kind)]; }
    const Collection& of(Kind kind) const { return kinds[static_cast<std::size_t>(kind)]; }
};

struct Domain {
    bool client_server = false;
    bool configuration_file = true; // there is one to open
    std::vector<std::unique_ptr<Node>> nodes;
    std::vector<std::string> servers; // names in the network file
    std::string local_server;         // node of this machine
    std::string central_logger;
    std::set<NB_ULONG> read_only_uids;
    Settings settings;
    Node file; // what the configuration file holds: the records of the domain's kinds
};

// An indication that waits to be sent to the operators that registered for it.
struct Event {
    Node* node; // null: of the domain
    NB_USHORT opcode;
    Bytes block;
};

struct World {
    Domain domain;
    std::vector<Event> events;
    std::set<NB_USHORT> resync; // indications whose next one says that some were lost
    bool stopping = false;      // the node software is shutting down
    bool changed = false;       // since the state file was written
};

// Where the records of a kind are kept, for each place that has some: the nodes, or the
// configuration file.
std::vector<Node*> places_of(Domain& domain, const KindRow& row);

Node* node_named(Domain& domain, std::string_view name);
Node* local_node(Domain& domain);

Record* find_name8(Node& node, Kind kind, const NB_BYTE* name);
// A local or DLUR PU.
Record* find_pu(Node& node, const NB_BYTE* name);
Record* find_any_pu(Node& node, std::string_view name);
// Puts an entry into its collection: key, order and parent are worked out, an entry of the same key
// is replaced.
Record& store(Node& node, const KindRow& row, Bytes entry, const std::string& owner = {});
// Takes a record out with everything below it.
void remove_record(Node& node, Kind kind, Record& record);

// The PU that a link station's definition asks for, as a record of its kind; also takes away one it
// no longer asks for.
void update_pu_of_ls(Node& node, const Record& ls);
// The PU below a link station, null without one; kind tells which.
Record* pu_of_ls(Node& node, const Record& ls, Kind& kind);
NB_BYTE activation_flags(const Record& ls);

// What every node has without being told: control point LU, modes and classes of service that the
// architecture defines.
void add_standard_resources(Node& node);

} // namespace simnode
