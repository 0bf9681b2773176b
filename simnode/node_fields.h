// The fields of a node's parameters, capabilities and limits under their names in domain files.
#pragma once

#include "simnode/kinds.h"

namespace simnode {

std::span<const Field> node_parameter_fields();
std::span<const Field> node_capability_fields();
std::span<const Field> node_limit_fields();
// The names of the settings, in the order of enum Setting.
std::span<const char* const> setting_names();

} // namespace simnode
