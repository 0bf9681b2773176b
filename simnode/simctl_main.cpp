// tessaly-simctl: sends one command line to a simulated node's service and prints the answer.
#include "nof/wire.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int STATUS_NO_SERVICE = 3;

bool write_all(int fd, const void* bytes, std::size_t length) {
    const auto* next = static_cast<const char*>(bytes);
    while (length > 0) {
        const ssize_t count = send(fd, next, length, MSG_NOSIGNAL);
        if (count <= 0) {
            return false;
        }
        next += count;
        length -= static_cast<std::size_t>(count);
    }
    return true;
}

bool read_all(int fd, void* bytes, std::size_t length) {
    return length == 0 || recv(fd, bytes, length, MSG_WAITALL) == static_cast<ssize_t>(length);
}

bool send_frame(int fd, NB_USHORT kind, const std::string& block) {
    WIRE_FRAME header{};
    header.length = static_cast<NB_ULONG>(sizeof header + block.size());
    header.kind = kind;
    header.version = WIRE_VERSION;
    header.block_length = static_cast<NB_ULONG>(block.size());
    return write_all(fd, &header, sizeof header) && write_all(fd, block.data(), block.size());
}

// Reads frames until the answer has come; -1 when the service goes away first.
int read_answer(int fd, std::string& text) {
    WIRE_FRAME header{};
    while (read_all(fd, &header, sizeof header)) {
        if (header.block_length > WIRE_MAX_BLOCK ||
            header.length != sizeof header + header.block_length + header.buffer_length) {
            return -1;
        }
        std::string block(header.block_length, '\0');
        text.assign(header.buffer_length, '\0');
        if (!read_all(fd, block.data(), block.size()) || !read_all(fd, text.data(), text.size())) {
            return -1;
        }
        if (header.kind == WIRE_CONTROL_ANSWER) {
            return static_cast<int>(header.request_id);
        }
    }
    return -1;
}

int connect_to(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    std::memcpy(address.sun_path, path.data(), path.size());
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd >= 0 && connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

// The words as one line; those with blanks in quotes.
std::string command_line(char** words) {
    std::string line;
    for (; *words != nullptr; ++words) {
        const std::string word = *words;
        const bool quote = word.empty() || word.find(' ') != std::string::npos;
        line += (line.empty() ? "" : " ") + (quote ? '"' + word + '"' : word);
    }
    return line;
}

} // namespace

int main(int argc, char** argv) {
    const char* variable = std::getenv("TESSALY_NODE_SOCKET");
    std::string path = variable != nullptr ? variable : "";
    int first = 1;
    if (argc >= 3 && std::strcmp(argv[1], "--socket") == 0) {
        path = argv[2];
        first = 3;
    }
    if (path.empty() || first >= argc) {
        std::fprintf(stderr, "usage: tessaly-simctl [--socket PATH] COMMAND ...\n"
                             "The socket is that of TESSALY_NODE_SOCKET otherwise; the command "
                             "\"help\" lists the commands.\n");
        return 2;
    }
    const int fd = connect_to(path);
    if (fd < 0) {
        std::fprintf(stderr, "tessaly-simctl: %s: %s\n", path.c_str(), std::strerror(errno));
        return STATUS_NO_SERVICE;
    }
    std::string text;
    const bool sent =
        send_frame(fd, WIRE_HELLO, {}) && send_frame(fd, WIRE_CONTROL, command_line(argv + first));
    const int status = sent ? read_answer(fd, text) : -1;
    close(fd);
    if (status < 0) {
        std::fprintf(stderr, "tessaly-simctl: the service has gone\n");
        return STATUS_NO_SERVICE;
    }
    std::fputs(text.c_str(), status == 0 ? stdout : stderr);
    return status;
}
