// A node service with a script, in a process of its own: it accepts one operator, exchanges hellos,
// plays the script and ends. Expectations of the script that fail show as its exit status.
#pragma once

#include "nof/node.h"
#include "nof/wire.h"

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

struct FakeRequest {
    WIRE_FRAME header;
    std::vector<NB_BYTE> block;
};

struct FakePeer {
    int socket;
    bool leaves = false; // ends with the script instead of waiting until the operator closes

    FakeRequest receive(); // ends the process with status 1 when the operator has gone
    void send_bytes(const void* bytes, std::size_t length);
    void send_frame(WIRE_FRAME header, const void* block, const void* buffer);
    void send_hello(bool client_server);
    // The request's block back, with codes, and a buffer.
    void answer(const FakeRequest& request, NB_USHORT primary = 0, NB_ULONG secondary = 0,
                const std::string& buffer = "");
    template <typename T> void indicate(const T& block, NB_ULONG correlator) {
        WIRE_FRAME header{};
        header.kind = WIRE_INDICATION;
        header.correlator = correlator;
        header.block_length = sizeof block;
        send_frame(header, &block, nullptr);
    }
    void require(bool condition);
};

// A frame header whose lengths agree.
WIRE_FRAME whole_frame(NB_USHORT kind, NB_ULONG request_id, NB_ULONG block_length,
                       NB_ULONG buffer_length);

// Serves on a listening socket; the whole life of a service process.
[[noreturn]] void serve(int listener, bool client_server,
                        const std::function<void(FakePeer&)>& script);
int listen_at(const std::string& path);

// Names itself in TESSALY_NODE_SOCKET. Its end is the library's end, too.
class FakeService {
public:
    explicit FakeService(const std::function<void(FakePeer&)>& script, bool client_server = false);
    ~FakeService(); // fails the test when the script failed
    FakeService(const FakeService&) = delete;
    FakeService& operator=(const FakeService&) = delete;

private:
    pid_t pid;
};
