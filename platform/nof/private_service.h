// A node service of our own, for a program that was not told of one: it runs on the default example
// domain and ends with us.
#pragma once

namespace nof {

// Starts the service and waits until it listens. *path is its socket, valid until the service is
// ended. False when it cannot be started.
bool start_private_service(const char** path);
// Removes the service's socket and directory, once the one connection that it is for is made:
// whatever becomes of this program, no file is left behind.
void hide_private_service();
// Ends the service, if one runs, and waits for its end.
void end_private_service();

} // namespace nof
