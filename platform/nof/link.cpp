#include "link.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace nof {

namespace {

constexpr std::size_t READ_SIZE = std::size_t{64} << 10;
constexpr int HELLO_TIMEOUT_MS = 10000;

bool would_block() {
    return errno == EAGAIN || errno == EWOULDBLOCK;
}

int connect_to(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (std::strlen(path) >= sizeof address.sun_path) {
        return -1;
    }
    std::strcpy(address.sun_path, path);
    const int socket_fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket_fd < 0) {
        return -1;
    }
    int result;
    do {
        result = connect(socket_fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    } while (result < 0 && errno == EINTR);
    if (result < 0 || fcntl(socket_fd, F_SETFL, O_NONBLOCK) < 0) {
        close(socket_fd);
        return -1;
    }
    return socket_fd;
}

// Reads up to the service's hello, which has to come first.
bool receive_hello(Link* link) {
    Frame frame;
    FrameState state;
    while ((state = link_frame(*link, 0, &frame)) == FrameState::PARTIAL) {
        pollfd wait{link->socket, POLLIN, 0};
        const int ready = poll(&wait, 1, HELLO_TIMEOUT_MS);
        if (ready == 0 || (ready < 0 && errno != EINTR) ||
            (ready > 0 && link_read(link) == ReadState::END)) {
            return false;
        }
    }
    WIRE_HELLO_BLOCK hello;
    if (state == FrameState::BAD || frame.header.kind != WIRE_HELLO ||
        frame.header.block_length < sizeof hello) {
        return false;
    }
    std::memcpy(&hello, frame.block, sizeof hello);
    take_out(&link->in, frame.header.length);
    link->client_server = hello.client_server != 0;
    return hello.magic == WIRE_MAGIC;
}

} // namespace

bool link_open(Link* link, const char* path) {
    link->socket = connect_to(path);
    if (link->socket < 0) {
        return false;
    }
    WIRE_FRAME hello{};
    hello.length = sizeof hello;
    hello.kind = WIRE_HELLO;
    hello.version = WIRE_VERSION;
    bool greeted = link_queue(link, hello, nullptr);
    if (greeted) {
        link_flush(link);
        greeted = receive_hello(link);
    }
    if (!greeted) {
        link_free(link);
    }
    return greeted;
}

void link_close(Link* link) {
    if (link->socket >= 0) {
        close(link->socket);
        link->socket = -1;
    }
    free_bytes(&link->out);
}

void link_free(Link* link) {
    link_close(link);
    free_bytes(&link->in);
    link->client_server = false;
}

bool link_queue(Link* link, const WIRE_FRAME& header, const void* block) {
    if (!make_room(&link->out, sizeof header + header.block_length)) {
        return false;
    }
    std::memcpy(link->out.memory + link->out.tail, &header, sizeof header);
    link->out.tail += sizeof header;
    if (header.block_length != 0) {
        std::memcpy(link->out.memory + link->out.tail, block, header.block_length);
        link->out.tail += header.block_length;
    }
    return true;
}

void link_flush(Link* link) {
    while (link->out.size() != 0) {
        const ssize_t sent = send(link->socket, link->out.data(), link->out.size(), MSG_NOSIGNAL);
        if (sent > 0) {
            take_out(&link->out, static_cast<std::size_t>(sent));
        } else if (would_block()) {
            return;
        } else if (errno != EINTR) {
            cut_to(&link->out, 0); // broken: answers that are on their way can still be read
        }
    }
}

ReadState link_read(Link* link) {
    if (!make_room(&link->in, READ_SIZE)) {
        return ReadState::END;
    }
    while (true) {
        const ssize_t got = recv(link->socket, link->in.memory + link->in.tail,
                                 link->in.capacity - link->in.tail, 0);
        if (got > 0) {
            link->in.tail += static_cast<std::size_t>(got);
            return ReadState::MORE;
        }
        if (got < 0 && errno == EINTR) {
            continue;
        }
        return got < 0 && would_block() ? ReadState::NOTHING : ReadState::END;
    }
}

FrameState link_frame(const Link& link, std::size_t offset, Frame* frame) {
    const std::size_t available = link.in.size() - offset;
    if (available < sizeof frame->header) {
        return FrameState::PARTIAL;
    }
    const NB_BYTE* start = link.in.data() + offset;
    WIRE_FRAME& header = frame->header;
    std::memcpy(&header, start, sizeof header);
    if (header.version != WIRE_VERSION || header.block_length > WIRE_MAX_BLOCK ||
        header.buffer_length > WIRE_MAX_BUFFER ||
        header.length != sizeof header + header.block_length + header.buffer_length) {
        return FrameState::BAD;
    }
    if (available < header.length) {
        return FrameState::PARTIAL;
    }
    frame->block = start + sizeof header;
    frame->buffer = frame->block + header.block_length;
    return FrameState::WHOLE;
}

} // namespace nof
