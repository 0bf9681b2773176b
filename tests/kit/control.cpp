#include "kit/control.h"

#include "nof/wire.h"

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kit {

namespace {

bool receive(int fd, void* bytes, std::size_t length) {
    return length == 0 || recv(fd, bytes, length, MSG_WAITALL) == static_cast<ssize_t>(length);
}

} // namespace

CONTROL::CONTROL(const std::string& path)
    : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        !send_frame(WIRE_HELLO, {})) {
        close(socket_);
        socket_ = -1;
    }
}

CONTROL::~CONTROL() {
    close(socket_);
}

bool CONTROL::send_frame(unsigned kind, const std::string& block) {
    WIRE_FRAME header{};
    header.length = static_cast<NB_ULONG>(sizeof header + block.size());
    header.kind = static_cast<NB_USHORT>(kind);
    header.version = WIRE_VERSION;
    header.block_length = static_cast<NB_ULONG>(block.size());
    const std::string frame = std::string(reinterpret_cast<char*>(&header), sizeof header) + block;
    return send(socket_, frame.data(), frame.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(frame.size());
}

std::string CONTROL::run(const std::string& command, int* status) {
    int ignored;
    int& result = status != nullptr ? *status : ignored;
    result = -1;
    WIRE_FRAME header{};
    bool sent = send_frame(WIRE_CONTROL, command);
    while (sent && receive(socket_, &header, sizeof header)) {
        std::string block(header.block_length, '\0');
        std::string text(header.buffer_length, '\0');
        if (!receive(socket_, block.data(), block.size()) ||
            !receive(socket_, text.data(), text.size())) {
            break;
        }
        if (header.kind == WIRE_CONTROL_ANSWER) {
            result = static_cast<int>(header.request_id);
            return text;
        }
    }
    return "the service is gone";
}

} // namespace kit
