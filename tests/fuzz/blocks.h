// Blocks as a node sends them, and what becomes of them: the seeds of the fuzzer, and its changes
// that know names and the shape of a script.
#pragma once

#include "fuzz/road.h"

#include <functional>
#include <random>

namespace fuzz {

// One script per block: indications of every record, defines and deletes of every kind, and a
// block of every other verb that the verb table has.
std::vector<SCRIPT> seeds();

using DICE = std::minstd_rand;
// Changes a payload in place and returns its new size, at most max; null: only the changes below.
using CHANGE_BYTES = std::function<std::size_t(NB_BYTE* bytes, std::size_t size, std::size_t max)>;

// Changes a script a little: steps taken from the seeds, doubled, moved or left out; names replaced
// by others; numbers by others; random bytes.
void change(SCRIPT& script, DICE& dice, const CHANGE_BYTES& change_bytes = nullptr);

// A step with an indication whose fields are random to some degree, often sound enough to be
// understood.
EVENT random_indication(DICE& dice);

} // namespace fuzz
