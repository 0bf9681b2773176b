// The status indications: each puts one event into the world for a record as it stands now.
#pragma once

#include "simnode/world.h"

namespace simnode {

void indicate_dlc(World& world, Node& node, const Record& dlc);
void indicate_port(World& world, Node& node, const Record& port);
// new_state: NOF_LS_NEW_STATE.
void indicate_ls(World& world, Node& node, const Record& ls, NB_BYTE new_state, bool gone);
void indicate_pu(World& world, Node& node, const Record& pu);
void indicate_dlur_pu(World& world, Node& node, const Record& pu);
void indicate_downstream_pu(World& world, Node& node, const Record& pu);
void indicate_lu_0_to_3(World& world, Node& node, const Record& lu);
void indicate_downstream_lu(World& world, Node& node, const Record& lu);
// Only dependent LUs have a session status to tell.
void indicate_local_lu(World& world, Node& node, const Record& lu);
void indicate_partner(World& world, Node& node, const Record& partner, bool gone);
void indicate_mode(World& world, Node& node, const Record& mode, bool gone);
void indicate_directory(World& world, Node& node, const Record& entry, bool removed);
void indicate_appcip_session(World& world, Node& node, const Record& session, bool ended);

// The indication of any kind of record; gone: the record is about to be removed.
void indicate(World& world, Node& node, Kind kind, const Record& record, bool gone);

// Domain-wide: a server came up or went down; the network file changed.
void indicate_server(World& world, const Node& node, bool up);
void indicate_network_file(World& world);

} // namespace simnode
