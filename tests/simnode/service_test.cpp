// Connections, malformed frames, and trouble on request: one operator's trouble is no other's.
#include "client.h"

namespace simnode_test {
namespace {

struct ServiceTest : DemoTest {
    // Whether an operator is served.
    static bool alive(Client& client) {
        const Received answer = client.call(verb<CONNECT_NODE>(NAP_CONNECT_NODE), 0);
        return !client.closed && answer.opcode() == NAP_CONNECT_NODE;
    }
    static bool dropped(Client& client) {
        for (int turn = 0; turn < 5 && !client.closed; ++turn) {
            step(client.service, 0);
            client.poll();
        }
        return client.closed;
    }
};

TEST_F(ServiceTest, MalformedFramesCostTheirOperatorOnly) {
    WIRE_FRAME good{};
    good.kind = WIRE_REQUEST;
    good.version = WIRE_VERSION;
    good.block_length = sizeof(VCB_HEADER);
    good.length = sizeof good + sizeof(VCB_HEADER);
    struct Case {
        const char* name;
        void (*spoil)(WIRE_FRAME&);
    };
    static constexpr Case cases[] = {
        {"version", [](WIRE_FRAME& f) { f.version = 9; }},
        {"length too small", [](WIRE_FRAME& f) { f.length = 3; }},
        {"length not the sum", [](WIRE_FRAME& f) { ++f.length; }},
        {"block too large",
         [](WIRE_FRAME& f) {
             f.block_length = WIRE_MAX_BLOCK + 1;
             f.length = sizeof f + f.block_length;
         }},
        {"sum that overflows",
         [](WIRE_FRAME& f) {
             f.block_length = 0xFFFFFFF0;
             f.buffer_length = 0x40;
             f.length = static_cast<NB_ULONG>(sizeof f + f.block_length + f.buffer_length);
         }},
        {"kind", [](WIRE_FRAME& f) { f.kind = 99; }},
        {"block shorter than a header",
         [](WIRE_FRAME& f) {
             f.block_length = 4;
             f.length = sizeof f + 4;
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Client spoiler(service);
        WIRE_FRAME frame = good;
        c.spoil(frame);
        Bytes bytes(sizeof frame + sizeof(VCB_HEADER));
        std::memcpy(bytes.data(), &frame, sizeof frame);
        spoiler.send_raw(bytes.data(), bytes.size());
        EXPECT_TRUE(dropped(spoiler));
        EXPECT_TRUE(alive(client));
    }
    Client stranger(service, false); // does not greet
    stranger.send(WIRE_REQUEST, Bytes(12), 0, 0, 0);
    EXPECT_TRUE(dropped(stranger));
    Client half(service);
    half.send_raw(&good, 20);
    EXPECT_FALSE(dropped(half)); // the rest may still come
}

TEST_F(ServiceTest, BlocksThatAreNoVerbsAreRefused) {
    const NB_HANDLE target = client.connect("bnkgw01");
    auto port = verb<DEFINE_PORT>(NAP_DEFINE_PORT);
    port.def.port_data_length = 60000; // announces data that is not there
    const auto unknown = verb<HEADER_ONLY>(0x7777);
    const auto short_one = verb<HEADER_ONLY>(NAP_DEFINE_LS);
    for (const auto block : {bytes_of(unknown), bytes_of(short_one), bytes_of(port)}) {
        EXPECT_EQ(client.call(block, target).rc().primary, NAP_INVALID_VERB);
    }
    EXPECT_EQ(client.call(verb<QUERY_NODE>(NAP_QUERY_NODE), target + 5).rc().secondary,
              NAP_TARGET_GONE);
}

TEST_F(ServiceTest, SlowReadersDoNotHoldUpOthers) {
    Client slow(service);
    const NB_HANDLE slow_node = slow.connect("bnkgw01", {NAP_DLC_INDICATION});
    QUERY_LU_0_TO_3 query = verb<QUERY_LU_0_TO_3>(NAP_QUERY_LU_0_TO_3);
    query.list.list_options = NAP_FIRST_IN_LIST | NAP_LEVEL_DETAIL;
    query.list.buffer_size = 65535;
    static constexpr int asked = 60;
    for (int i = 0; i < asked; ++i) { // far more than the socket holds, and nothing is read
        slow.post(query, slow_node, 65535);
        step(service, 0);
    }
    EXPECT_TRUE(alive(client));
    int answers = 0;
    while (answers < asked && slow.next(WIRE_ANSWER)) {
        ++answers;
    }
    EXPECT_EQ(answers, asked);
}

TEST_F(ServiceTest, VerbsFailLateOrNotAtAllOnRequest) {
    Client script(service);
    const NB_HANDLE target = client.connect("bnkgw01");
    const auto query = verb<QUERY_NODE>(NAP_QUERY_NODE);
    const auto disconnect = verb<DISCONNECT_NODE>(NAP_DISCONNECT_NODE);
    ASSERT_EQ(script.control("fail NAP_QUERY_NODE 2 0x03F0 0x5542"), 0) << script.output;
    EXPECT_EQ(client.call(query, target).rc().secondary, 0x5542u);
    EXPECT_EQ(client.call(query, target).rc().primary, 0x03F0);
    EXPECT_TRUE(client.call(query, target).rc().ok());

    ASSERT_EQ(script.control("hold 0x212C"), 0);
    client.post(query, target);
    step(service, 0);
    EXPECT_FALSE(client.poll().has_value());
    // A handle with verbs outstanding is not given back.
    EXPECT_EQ(client.call(disconnect, target).rc().secondary, 0x5544u);
    // The marker waits for what is held.
    script.send(WIRE_CONTROL, {reinterpret_cast<const NB_BYTE*>("idle"), 4}, 0, 0, 0);
    step(service, 0);
    step(service, 0);
    EXPECT_FALSE(script.poll().has_value());
    Client second(service);
    ASSERT_EQ(second.control("release"), 0);
    EXPECT_TRUE(client.next(WIRE_ANSWER).has_value());
    EXPECT_TRUE(script.next(WIRE_CONTROL_ANSWER).has_value());
    EXPECT_TRUE(client.call(disconnect, target).rc().ok());

    ASSERT_EQ(script.control("immediate NAP_QUERY_LS 0x212C"), 0);
    const auto list = client.next(WIRE_IMMEDIATE);
    ASSERT_TRUE(list.has_value());
    const NB_USHORT expected[] = {NAP_QUERY_LS, NAP_QUERY_NODE};
    EXPECT_TRUE(std::ranges::equal(list->block, bytes_of(expected)));
}

TEST_F(ServiceTest, ANodeThatDiesTakesItsHandlesAlong) {
    Client script(service);
    const NB_HANDLE target = client.connect("bnkgw01", {NAP_LS_INDICATION});
    ASSERT_EQ(script.control("kill-node bnkgw01"), 0);
    auto told = client.take_indications();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].opcode(), NAP_NOF_STATUS_INDICATION);
    EXPECT_EQ(told[0].as<NOF_STATUS_INDICATION>().handle, target);
    EXPECT_EQ(told[0].header.correlator, 1000 + client.id); // that of a registration on the node
    EXPECT_EQ(client.call(verb<QUERY_NODE>(NAP_QUERY_NODE), target).rc().secondary,
              NAP_TARGET_GONE);
    ASSERT_EQ(script.control("revive-node bnkgw01"), 0);
    client.connect("bnkgw01", {NAP_LS_INDICATION});
    ASSERT_EQ(script.control("state ls CLEARING failed"), 0);
    EXPECT_EQ(client.take_indications().size(), 1u) << "told through the old handle, too";
}

TEST_F(ServiceTest, JournalNamesVerbsAndHidesPasswords) {
    Client script(service);
    const NB_HANDLE target = client.connect("bnkgw01");
    ASSERT_EQ(script.control("journal clear"), 0);
    auto start = verb<START_LS>(NAP_START_LS);
    simnode::put_local(start.ls_name, 8, "HOSTA");
    client.call(start, target);
    Bytes secret(1682);
    vcb_header(secret.data())->opcode = NAP_DEFINE_TN3270_SSL_LDAP;
    std::memcpy(secret.data() + 1298, "Geheim", 6);
    client.call(secret, target);
    ASSERT_EQ(script.control("journal"), 0);
    EXPECT_NE(script.output.find("\"verb\":\"NAP_START_LS\""), std::string::npos);
    EXPECT_NE(script.output.find("\"key\":\"HOSTA\""), std::string::npos);
    EXPECT_NE(script.output.find("\"secondary\":\"0xC0010000\""), std::string::npos);
    EXPECT_EQ(script.output.find(simnode::to_hex("Geheim", 6)), std::string::npos);
    EXPECT_EQ(std::count(script.output.begin(), script.output.end(), '\n'), 2);
}

} // namespace
} // namespace simnode_test
