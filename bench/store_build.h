// The store without the rest of the program: built over the wire, looked at, and freed.
#pragma once

#include "measure.h"

#include <X11/Intrinsic.h>

#include <cstddef>

namespace bench {

// Starts what the store stands on: memory, verb queues, and the library with its event loop.
void start_store(XtAppContext app);
// Builds the store from the service, to the end of the build; the processor time it takes here and
// in the service. Ends the program when it fails.
double build_store(const Service& service);
// Frees the store and what it stands on.
void end_store();

// Bytes allocated by this process.
std::size_t allocated();

} // namespace bench
