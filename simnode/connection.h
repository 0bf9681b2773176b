// One operator's connection: frames in, a queue of frames out. Nothing here waits.
#pragma once

#include "nof/wire.h"
#include "simnode/request.h"

namespace simnode {

struct Connection {
    int fd = -1;
    Operator op;
    bool greeted = false;        // its first frame has come
    bool control = false;        // it sends control commands
    bool closing = false;        // to be closed once the queue is empty
    bool broken = false;         // to be closed at once
    bool waits_to_write = false; // the event loop tells when the socket takes more
    Bytes in;
    std::size_t taken = 0; // bytes of in that were handled
    Bytes out;
    std::size_t sent = 0; // bytes of out that were written
};

// A frame as it came: header, block and buffer lie in the connection's input until the next read.
struct Frame {
    WIRE_FRAME header;
    std::span<NB_BYTE> block;
    std::span<NB_BYTE> buffer;
};

// Reads what there is, once. False when the other side has closed or the connection failed.
bool read_some(Connection& connection);
enum class Taken { frame, nothing, malformed };
// Takes the next whole frame out of the input.
Taken take_frame(Connection& connection, Frame& frame);

// Queues a frame. length, version and the two lengths of the header are filled in here.
void queue_frame(Connection& connection, WIRE_FRAME header, std::span<const NB_BYTE> block,
                 std::span<const NB_BYTE> buffer);
// Writes as much of the queue as the socket takes. False when the connection failed or its operator
// reads so slowly that the queue has grown beyond all measure.
bool write_some(Connection& connection);
inline bool has_output(const Connection& connection) {
    return connection.sent < connection.out.size();
}

} // namespace simnode
