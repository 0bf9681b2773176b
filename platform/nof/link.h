// The connection to the node service: a stream socket, its two queues of bytes, and the frames in
// them.
#pragma once

#include "byte_queue.h"
#include "nof/wire.h"

namespace nof {

struct Link {
    int socket = -1; // -1: not connected
    ByteQueue in;
    ByteQueue out;
    bool client_server = false;
};

// A whole frame in the input queue; the pointers hold until the next link_read.
struct Frame {
    WIRE_FRAME header;
    const NB_BYTE* block;
    const NB_BYTE* buffer;
};

enum class FrameState { WHOLE, PARTIAL, BAD };
enum class ReadState { MORE, NOTHING, END };

// Connects to the service and exchanges hellos; waits some seconds at most. False when that fails.
bool link_open(Link* link, const char* path);
// Closes the socket. Bytes received stay until link_free.
void link_close(Link* link);
// Closes the socket and forgets all bytes.
void link_free(Link* link);

// Queues a request frame with its block. False when there is no memory.
bool link_queue(Link* link, const WIRE_FRAME& header, const void* block);
// Sends queued bytes as far as the socket takes them. A connection that broke shows when it is
// read.
void link_flush(Link* link);
// Takes what the socket has, up to some 64 KiB.
ReadState link_read(Link* link);
// The frame at an offset behind the head of the input queue.
FrameState link_frame(const Link& link, std::size_t offset, Frame* frame);

} // namespace nof
