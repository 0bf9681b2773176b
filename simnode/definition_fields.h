// The fields of the kinds that are definitions only, beside those of the resources with a state.
#pragma once

#include "simnode/kinds.h"

namespace simnode {

std::span<const Field> definition_fields(Kind kind);

} // namespace simnode
