// Before the X headers, whose macros it does not stand.
#include <gtest/gtest.h>

#include "fake_service.h"

#include "kit/process.h"
#include "nof/nof.h"

#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool receive_bytes(int socket, void* bytes, std::size_t length) {
    return length == 0 || recv(socket, bytes, length, MSG_WAITALL) == static_cast<ssize_t>(length);
}

} // namespace

WIRE_FRAME whole_frame(NB_USHORT kind, NB_ULONG request_id, NB_ULONG block_length,
                       NB_ULONG buffer_length) {
    WIRE_FRAME header{};
    header.length = static_cast<NB_ULONG>(sizeof header) + block_length + buffer_length;
    header.kind = kind;
    header.version = WIRE_VERSION;
    header.request_id = request_id;
    header.block_length = block_length;
    header.buffer_length = buffer_length;
    return header;
}

FakeRequest FakePeer::receive() {
    FakeRequest request{};
    require(receive_bytes(socket, &request.header, sizeof request.header));
    request.block.resize(request.header.block_length);
    require(receive_bytes(socket, request.block.data(), request.block.size()));
    return request;
}

void FakePeer::send_bytes(const void* bytes, std::size_t length) {
    require(send(socket, bytes, length, MSG_NOSIGNAL) == static_cast<ssize_t>(length));
}

void FakePeer::send_frame(WIRE_FRAME header, const void* block, const void* buffer) {
    header.version = WIRE_VERSION;
    header.length =
        static_cast<NB_ULONG>(sizeof header) + header.block_length + header.buffer_length;
    std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
    bytes.append(static_cast<const char*>(block), header.block_length);
    bytes.append(static_cast<const char*>(buffer), header.buffer_length);
    send_bytes(bytes.data(), bytes.size());
}

void FakePeer::send_hello(bool client_server) {
    WIRE_HELLO_BLOCK hello{};
    hello.magic = WIRE_MAGIC;
    hello.client_server = client_server;
    WIRE_FRAME header{};
    header.kind = WIRE_HELLO;
    header.block_length = sizeof hello;
    send_frame(header, &hello, nullptr);
}

void FakePeer::answer(const FakeRequest& request, NB_USHORT primary, NB_ULONG secondary,
                      const std::string& buffer) {
    std::vector<NB_BYTE> block = request.block;
    vcb_header(block.data())->primary_rc = primary;
    vcb_header(block.data())->secondary_rc = secondary;
    WIRE_FRAME header = request.header;
    header.kind = WIRE_ANSWER;
    header.buffer_length = static_cast<NB_ULONG>(buffer.size());
    send_frame(header, block.data(), buffer.data());
}

void FakePeer::require(bool condition) {
    if (!condition) {
        _exit(1);
    }
}

int listen_at(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, 1) != 0) {
        close(listener);
        return -1;
    }
    return listener;
}

void serve(int listener, bool client_server, const std::function<void(FakePeer&)>& script) {
    alarm(60); // a test that goes wrong leaves no process behind
    FakePeer peer{accept(listener, nullptr, nullptr)};
    peer.require(peer.socket >= 0);
    peer.require(peer.receive().header.kind == WIRE_HELLO);
    peer.send_hello(client_server);
    script(peer);
    char byte;
    peer.require(peer.leaves || read(peer.socket, &byte, 1) == 0);
    _exit(0);
}

FakeService::FakeService(const std::function<void(FakePeer&)>& script, bool client_server) {
    const std::string path = kit::scratch() + "/node";
    const int listener = listen_at(path);
    EXPECT_GE(listener, 0);
    setenv("TESSALY_NODE_SOCKET", path.c_str(), 1);
    pid = fork();
    if (pid == 0) {
        serve(listener, client_server, script);
    }
    close(listener);
}

FakeService::~FakeService() {
    nof_terminate();
    int status = -1;
    waitpid(pid, &status, 0);
    EXPECT_EQ(status, 0) << "the script of the node service failed";
    unlink((kit::scratch() + "/node").c_str());
    unsetenv("TESSALY_NODE_SOCKET");
}
