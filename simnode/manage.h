// The state changes behind the start and stop verbs, with their cascades and indications. Also used
// by the control commands and the lively mode.
#pragma once

#include "nof/rtp.h"
#include "simnode/world.h"

namespace simnode {

// Activates the node: whatever is initially active comes up.
void activate_node(World& world, Node& node);
// Takes everything down at once; nothing is indicated, the stop itself tells.
void deactivate_node(Node& node);

void activate_dlc(World& world, Node& node, Record& dlc);
void activate_port(World& world, Node& node, Record& port);
// Its link stations go down with it.
void deactivate_port(World& world, Node& node, Record& port);
// The PU and its LUs come up with the link station and go down with it. An implicit link station
// disappears. failed: it stays enabled, in the failed state. disable: the activation flags that it
// loses.
void activate_ls(World& world, Node& node, Record& ls);
void deactivate_ls(World& world, Node& node, Record& ls, bool failed = false, NB_BYTE disable = 0);
void activate_pu(World& world, Node& node, Kind kind, Record& pu);
void deactivate_pu(World& world, Node& node, Kind kind, Record& pu);

// Sessions between a local LU and a partner for a mode: sets their number. Creates and removes the
// records of partner and mode as needed. cp: the partner's control point, blank when unknown.
void set_sessions(World& world, Node& node, const Record& lu, const NB_FQNAME& partner,
                  const NB_NAME8E& mode, const NB_FQNAME& cp, NB_USHORT count);
// A remote node comes in over a port: a link station is made for it, which disappears with the
// link.
void accept_link(World& world, Node& node, const Record& port, const NB_FQNAME& cp);

// A downstream LU that its host made disappears when it is neither active nor in session.
void set_downstream_lu(World& world, Node& node, Record& lu, bool active, bool in_session);

// What can be started and stopped by its name, which the verbs have at these offsets.
struct ManagedKind {
    Kind kind;
    NB_USHORT start;
    NB_USHORT start_name;
    NB_USHORT stop;
    NB_USHORT stop_name;
};
inline constexpr ManagedKind managed_kinds[] = {
    {Kind::dlc, NAP_START_DLC, 12, NAP_STOP_DLC, 13},
    {Kind::port, NAP_START_PORT, 12, NAP_STOP_PORT, 13},
    {Kind::ls, NAP_START_LS, 12, NAP_STOP_LS, 13},
    {Kind::dlur_pu, NAP_START_INTERNAL_PU, 12, NAP_STOP_INTERNAL_PU, 12},
};
// A start that takes its time has begun: the resource is pending, if it can be started; and it has
// come to nothing.
void begin_start(World& world, Node& node, std::span<const NB_BYTE> verb);
void fail_start(World& world, Node& node, std::span<const NB_BYTE> verb);
// Whether a stop ends a start that is under way on the same node: of the same resource, or any when
// the node stops.
bool ends_start(std::span<const NB_BYTE> stop, std::span<const NB_BYTE> start);

// A dependent LU is in session while it has sessions.
void follow_sessions(World& world, Node& node, const std::string& lu);
// Ends all sessions of a local LU.
void end_sessions_of(World& world, Node& node, const Record& lu);
// Ends the sessions with every partner of a control point.
void end_sessions_with(World& world, Node& node, const NB_FQNAME& cp);

// An active link to the same control point as the first hop of an RTP connection, but another;
// else any other active link to a network node. Null without one.
const Record* other_link(const Node& node, const RTP_CONNECTION_ENTRY& connection);

// An application takes a LU of type 0 to 3, or lets go of it.
void release_lu(World& world, Node& node, Record& lu);

} // namespace simnode
