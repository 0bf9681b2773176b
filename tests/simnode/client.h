// An operator for tests: a connection to a service in this process, driven turn by turn.
#pragma once

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/node.h"
#include "nof/pu_lu.h"
#include "simnode/control.h"
#include "simnode/domain_file.h"
#include "simnode/service.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <span>
#include <sys/socket.h>
#include <unistd.h>

namespace simnode_test {

using simnode::Bytes;

struct Received {
    WIRE_FRAME header;
    Bytes block;
    Bytes buffer;

    template <typename T> T& as() { return *reinterpret_cast<T*>(block.data()); }
    simnode::Rc rc() const {
        return {vcb_header(block.data())->primary_rc, vcb_header(block.data())->secondary_rc};
    }
    NB_USHORT opcode() const { return vcb_header(block.data())->opcode; }
};

template <typename T> std::span<const NB_BYTE> bytes_of(const T& block) {
    return {reinterpret_cast<const NB_BYTE*>(&block), sizeof block};
}

struct Client {
    simnode::Service& service;
    int fd = -1;
    NB_ULONG id = 0;
    NB_ULONG last_request = 0;
    Bytes in;
    bool closed = false;
    std::vector<Received> indications;

    explicit Client(simnode::Service& s, bool greet = true) : service(s) {
        int pair[2] = {-1, -1};
        if (socketpair(AF_UNIX, SOCK_STREAM, 0, pair) == 0) {
            fd = pair[0];
            id = adopt(service, pair[1]).op.id;
        }
        if (greet) {
            send(WIRE_HELLO, {}, 0, 0, 0);
            const auto hello = next(WIRE_HELLO);
            EXPECT_TRUE(hello.has_value());
        }
    }
    ~Client() { close(fd); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void send_raw(const void* bytes, std::size_t length) {
        EXPECT_EQ(::send(fd, bytes, length, MSG_NOSIGNAL), static_cast<ssize_t>(length));
    }

    void send(WIRE_KIND kind, std::span<const NB_BYTE> block, NB_HANDLE target, NB_ULONG correlator,
              NB_ULONG capacity) {
        WIRE_FRAME header{};
        header.length = static_cast<NB_ULONG>(sizeof header + block.size());
        header.kind = kind;
        header.version = WIRE_VERSION;
        header.request_id = ++last_request;
        header.target = target;
        header.correlator = correlator;
        header.block_length = static_cast<NB_ULONG>(block.size());
        header.buffer_capacity = capacity;
        Bytes bytes(sizeof header + block.size());
        std::memcpy(bytes.data(), &header, sizeof header);
        std::copy(block.begin(), block.end(), bytes.begin() + sizeof header);
        send_raw(bytes.data(), bytes.size());
    }

    // Takes the next whole frame that has come; nothing when there is none.
    std::optional<Received> poll() {
        NB_BYTE bytes[65536];
        for (ssize_t n = 0; (n = recv(fd, bytes, sizeof bytes, MSG_DONTWAIT)) >= 0;) {
            if (n == 0) {
                closed = true;
                break;
            }
            in.insert(in.end(), bytes, bytes + n);
        }
        if (in.size() < sizeof(WIRE_FRAME)) {
            return std::nullopt;
        }
        Received frame;
        std::memcpy(&frame.header, in.data(), sizeof frame.header);
        if (frame.header.length < sizeof frame.header || in.size() < frame.header.length) {
            return std::nullopt;
        }
        const auto block = in.begin() + sizeof frame.header;
        frame.block.assign(block, block + frame.header.block_length);
        frame.buffer.assign(block + frame.header.block_length, in.begin() + frame.header.length);
        in.erase(in.begin(), in.begin() + frame.header.length);
        return frame;
    }

    // Turns the service until a frame of the kind has come; indications on the way are kept.
    std::optional<Received> next(NB_USHORT kind) {
        for (int turn = 0; turn < 200; ++turn) {
            while (auto frame = poll()) {
                if (frame->header.kind == kind) {
                    return frame;
                }
                if (frame->header.kind == WIRE_INDICATION) {
                    indications.push_back(std::move(*frame));
                }
            }
            if (closed) {
                return std::nullopt;
            }
            step(service, turn < 100 ? 0 : 10);
        }
        return std::nullopt;
    }

    // Carries out one verb and returns its answer; an empty one when there was none.
    Received call(std::span<const NB_BYTE> block, NB_HANDLE target, NB_ULONG capacity = 0,
                  NB_ULONG correlator = 0) {
        send(WIRE_REQUEST, block, target, correlator, capacity);
        auto answer = next(WIRE_ANSWER);
        EXPECT_TRUE(answer.has_value());
        if (!answer) {
            return {{}, Bytes(2048), {}};
        }
        EXPECT_EQ(answer->header.request_id, last_request);
        return *answer;
    }
    template <typename T>
    requires std::is_trivially_copyable_v<T> Received call(const T& block, NB_HANDLE target,
                                                           NB_ULONG capacity = 0) {
        return call(bytes_of(block), target, capacity);
    }

    // Sends a verb and does not wait for its answer.
    template <typename T> void post(const T& block, NB_HANDLE target, NB_ULONG capacity = 0) {
        send(WIRE_REQUEST, bytes_of(block), target, 0, capacity);
    }

    // The exit status of a control command; its text goes to output.
    std::string output;
    int control(const std::string& line) {
        send(WIRE_CONTROL, {reinterpret_cast<const NB_BYTE*>(line.data()), line.size()}, 0, 0, 0);
        const auto answer = next(WIRE_CONTROL_ANSWER);
        output = answer ? std::string(answer->buffer.begin(), answer->buffer.end()) : "";
        return answer ? static_cast<int>(answer->header.request_id) : -1;
    }

    // Connects to a node and registers for kinds of indication.
    NB_HANDLE connect(const std::string& name, std::initializer_list<NB_USHORT> kinds = {}) {
        CONNECT_NODE connect{};
        connect.header.opcode = NAP_CONNECT_NODE;
        simnode::put_text(connect.node_name, sizeof connect.node_name, name);
        Received answer = call(connect, 0);
        EXPECT_EQ(answer.as<CONNECT_NODE>().header.primary_rc, NAP_OK);
        const NB_HANDLE node = answer.as<CONNECT_NODE>().node_handle;
        for (const NB_USHORT kind : kinds) {
            register_for(kind, node, 1000 + id);
        }
        return node;
    }

    void register_for(NB_USHORT kind, NB_HANDLE target, NB_ULONG correlator) {
        REGISTER_INDICATION_SINK sink{};
        sink.header.opcode = NAP_REGISTER_INDICATION_SINK;
        sink.indication_opcode = kind;
        Received answer = call(bytes_of(sink), target, 0, correlator);
        EXPECT_EQ(answer.as<VCB_HEADER>().primary_rc, NAP_OK);
    }

    // What has come without being asked for, since the last call.
    std::vector<Received> take_indications() {
        for (int turn = 0; turn < 3; ++turn) {
            step(service, 0);
            while (auto frame = poll()) {
                if (frame->header.kind == WIRE_INDICATION) {
                    indications.push_back(std::move(*frame));
                }
            }
        }
        return std::exchange(indications, {});
    }
};

template <typename T> T verb(NB_USHORT opcode) {
    T block{};
    vcb_header(&block)->opcode = opcode;
    return block;
}

// The verb of deletes, DLC and port starts.
inline DELETE_BY_NAME8 named(NB_USHORT opcode, std::string_view name, bool ebcdic) {
    auto block = verb<DELETE_BY_NAME8>(opcode);
    if (ebcdic) {
        simnode::put_ebcdic(block.name, 8, name);
    } else {
        simnode::put_local(block.name, 8, name);
    }
    return block;
}

inline void load_text(simnode::Service& service, std::string_view text) {
    std::string error;
    ASSERT_TRUE(parse_domain(service.world.domain, text, "test.toml", error)) << error;
}

// A service with a domain of those that are shipped.
struct ShippedService : simnode::Service {
    explicit ShippedService(const std::string& name = "demo") {
        std::string error;
        EXPECT_TRUE(
            load_domain(world.domain, TESSALY_SOURCE_DIR "/data/domains/" + name + ".toml", error))
            << error;
    }
};

// The demonstration domain with its one node, and an operator or a command line.
struct DemoTest : testing::Test {
    ShippedService service;
    Client client{service};
    simnode::Node& node = *service.world.domain.nodes.front();
};

// The entries of a list's answer.
inline std::vector<Bytes> entries_of(const Received& answer) {
    std::vector<Bytes> entries;
    for (std::size_t at = 0; at < answer.buffer.size();) {
        NB_USHORT length = 0;
        std::memcpy(&length, answer.buffer.data() + at, sizeof length);
        if (length == 0 || at + length > answer.buffer.size()) {
            ADD_FAILURE() << "entry length " << length;
            break;
        }
        entries.emplace_back(answer.buffer.begin() + static_cast<std::ptrdiff_t>(at),
                             answer.buffer.begin() + static_cast<std::ptrdiff_t>(at + length));
        at += length;
    }
    return entries;
}

} // namespace simnode_test
