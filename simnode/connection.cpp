#include "simnode/connection.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>

namespace simnode {
namespace {

constexpr std::size_t READ_SIZE = 64 * 1024;
constexpr std::size_t QUEUE_LIMIT = 256u << 20;

} // namespace

bool read_some(Connection& connection) {
    if (connection.taken != 0) {
        connection.in.erase(connection.in.begin(),
                            connection.in.begin() + static_cast<std::ptrdiff_t>(connection.taken));
        connection.taken = 0;
    }
    NB_BYTE bytes[READ_SIZE];
    const ssize_t count = recv(connection.fd, bytes, sizeof bytes, MSG_DONTWAIT);
    if (count > 0) {
        connection.in.insert(connection.in.end(), bytes, bytes + count);
        return true;
    }
    return count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
}

Taken take_frame(Connection& connection, Frame& frame) {
    const std::size_t left = connection.in.size() - connection.taken;
    NB_BYTE* start = connection.in.data() + connection.taken;
    if (left < sizeof(WIRE_FRAME)) {
        return Taken::nothing;
    }
    std::memcpy(&frame.header, start, sizeof frame.header);
    const WIRE_FRAME& header = frame.header;
    if (header.version != WIRE_VERSION || header.block_length > WIRE_MAX_BLOCK ||
        header.buffer_length > WIRE_MAX_BUFFER ||
        header.length != sizeof header + header.block_length + header.buffer_length) {
        return Taken::malformed;
    }
    if (left < header.length) {
        return Taken::nothing;
    }
    frame.block = {start + sizeof header, header.block_length};
    frame.buffer = {start + sizeof header + header.block_length, header.buffer_length};
    connection.taken += header.length;
    return Taken::frame;
}

void queue_frame(Connection& connection, WIRE_FRAME header, std::span<const NB_BYTE> block,
                 std::span<const NB_BYTE> buffer) {
    header.version = WIRE_VERSION;
    header.block_length = static_cast<NB_ULONG>(block.size());
    header.buffer_length = static_cast<NB_ULONG>(buffer.size());
    header.length = static_cast<NB_ULONG>(sizeof header + block.size() + buffer.size());
    const auto* bytes = reinterpret_cast<const NB_BYTE*>(&header);
    connection.out.insert(connection.out.end(), bytes, bytes + sizeof header);
    connection.out.insert(connection.out.end(), block.begin(), block.end());
    connection.out.insert(connection.out.end(), buffer.begin(), buffer.end());
}

bool write_some(Connection& connection) {
    while (has_output(connection)) {
        const ssize_t count =
            send(connection.fd, connection.out.data() + connection.sent,
                 connection.out.size() - connection.sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            const bool full = errno == EAGAIN || errno == EWOULDBLOCK;
            return full && connection.out.size() - connection.sent < QUEUE_LIMIT;
        }
        connection.sent += static_cast<std::size_t>(count);
    }
    connection.out.clear();
    connection.sent = 0;
    return true;
}

} // namespace simnode
