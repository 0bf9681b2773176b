// Connections, malformed frames, and trouble on request: one operator's trouble is no other's.
#include "client.h"

namespace simnode_test {
namespace {

using simnode::Kind;

struct ServiceTest : testing::Test {
    simnode::Service service;

    void SetUp() override { load_demo(service); }

    // Whether an operator is served.
    static bool alive(Client& client) {
        Received answer = client.call(verb<CONNECT_NODE>(NAP_CONNECT_NODE), 0);
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
    Client bystander(service);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Client client(service);
        WIRE_FRAME frame = good;
        c.spoil(frame);
        Bytes bytes(sizeof frame + sizeof(VCB_HEADER));
        std::memcpy(bytes.data(), &frame, sizeof frame);
        client.send_raw(bytes.data(), bytes.size());
        EXPECT_TRUE(dropped(client));
        EXPECT_TRUE(alive(bystander));
    }
    Client stranger(service, false); // does not greet
    stranger.send(WIRE_REQUEST, Bytes(12), 0, 0, 0);
    EXPECT_TRUE(dropped(stranger));
    Client half(service);
    half.send_raw(&good, 20);
    EXPECT_FALSE(dropped(half)); // the rest may still come
}

TEST_F(ServiceTest, BlocksThatAreNoVerbsAreRefused) {
    Client client(service);
    const NB_HANDLE node = client.connect("bnkgw01");
    auto unknown = verb<HEADER_ONLY>(0x7777);
    EXPECT_EQ(client.call(unknown, node).as<VCB_HEADER>().primary_rc, NAP_INVALID_VERB);
    auto indication = verb<HEADER_ONLY>(NAP_DEFINE_LS); // far too short
    EXPECT_EQ(client.call(indication, node).as<VCB_HEADER>().primary_rc, NAP_INVALID_VERB);
    auto port = verb<DEFINE_PORT>(NAP_DEFINE_PORT);
    port.def.port_data_length = 60000; // announces data that is not there
    EXPECT_EQ(client.call(port, node).as<VCB_HEADER>().primary_rc, NAP_INVALID_VERB);
    EXPECT_EQ(client.call(verb<QUERY_NODE>(NAP_QUERY_NODE), node + 5).as<VCB_HEADER>().secondary_rc,
              NAP_TARGET_GONE);
    // Any block at all, of any length, leaves the service standing.
    std::srand(5);
    for (int round = 0; round < 3000; ++round) {
        Bytes block(sizeof(VCB_HEADER) + static_cast<std::size_t>(std::rand() % 700));
        for (NB_BYTE& byte : block) {
            byte = static_cast<NB_BYTE>(std::rand() % 4 == 0 ? std::rand() : 0);
        }
        static constexpr NB_USHORT opcodes[] = {NAP_DEFINE_LS,
                                                NAP_DEFINE_PORT,
                                                NAP_DEFINE_DLC,
                                                NAP_QUERY_LS,
                                                NAP_QUERY_MODE,
                                                NAP_DEFINE_LU_0_TO_3_RANGE,
                                                NAP_ACTIVATE_SESSION,
                                                NAP_DEFINE_NODE,
                                                NAP_QUERY_DIRECTORY_ENTRY,
                                                NAP_DELETE_LU_0_TO_3_RANGE,
                                                NAP_DEFINE_DIRECTORY_ENTRY,
                                                NAP_QUERY_TN3270_SSL_LDAP};
        vcb_header(block.data())->opcode = opcodes[std::rand() % std::size(opcodes)];
        vcb_header(block.data())->format = 0;
        client.call(std::span<const NB_BYTE>(block), node, 4096);
    }
    EXPECT_TRUE(alive(client));
}

TEST_F(ServiceTest, SlowReadersDoNotHoldUpOthers) {
    Client slow(service);
    Client quick(service);
    const NB_HANDLE slow_node = slow.connect("bnkgw01", {NAP_DLC_INDICATION});
    QUERY_LU_0_TO_3 query = verb<QUERY_LU_0_TO_3>(NAP_QUERY_LU_0_TO_3);
    query.list.list_options = NAP_FIRST_IN_LIST | NAP_LEVEL_DETAIL;
    query.list.buffer_size = 65535;
    static constexpr int asked = 60;
    for (int i = 0; i < asked; ++i) { // far more than the socket holds, and nothing is read
        slow.send(WIRE_REQUEST, {reinterpret_cast<NB_BYTE*>(&query), sizeof query}, slow_node, 0,
                  65535);
        step(service, 0);
    }
    EXPECT_TRUE(alive(quick));
    int answers = 0;
    while (answers < asked && slow.next(WIRE_ANSWER)) {
        ++answers;
    }
    EXPECT_EQ(answers, asked);
}

TEST_F(ServiceTest, VerbsFailLateOrNotAtAllOnRequest) {
    Client client(service);
    Client script(service);
    const NB_HANDLE node = client.connect("bnkgw01");
    const auto rc = [&] {
        return client.call(verb<QUERY_NODE>(NAP_QUERY_NODE), node).as<VCB_HEADER>();
    };
    ASSERT_EQ(script.control("fail NAP_QUERY_NODE 2 0x03F0 0x5542"), 0) << script.output;
    EXPECT_EQ(rc().secondary_rc, 0x5542u);
    EXPECT_EQ(rc().primary_rc, 0x03F0);
    EXPECT_EQ(rc().primary_rc, NAP_OK);

    ASSERT_EQ(script.control("hold 0x212C"), 0);
    const auto query = verb<QUERY_NODE>(NAP_QUERY_NODE);
    client.send(WIRE_REQUEST, {reinterpret_cast<const NB_BYTE*>(&query), sizeof query}, node, 0, 0);
    step(service, 0);
    EXPECT_FALSE(client.poll().has_value());
    // A handle with verbs outstanding is not given back.
    EXPECT_EQ(
        client.call(verb<DISCONNECT_NODE>(NAP_DISCONNECT_NODE), node).as<VCB_HEADER>().secondary_rc,
        0x5544u);
    // The marker waits for what is held.
    script.send(WIRE_CONTROL, {reinterpret_cast<const NB_BYTE*>("idle"), 4}, 0, 0, 0);
    step(service, 0);
    step(service, 0);
    EXPECT_FALSE(script.poll().has_value());
    Client second(service);
    ASSERT_EQ(second.control("release"), 0);
    EXPECT_TRUE(client.next(WIRE_ANSWER).has_value());
    EXPECT_TRUE(script.next(WIRE_CONTROL_ANSWER).has_value());
    EXPECT_EQ(
        client.call(verb<DISCONNECT_NODE>(NAP_DISCONNECT_NODE), node).as<VCB_HEADER>().primary_rc,
        NAP_OK);

    ASSERT_EQ(script.control("immediate NAP_QUERY_LS 0x212C"), 0);
    const auto list = client.next(WIRE_IMMEDIATE);
    ASSERT_TRUE(list.has_value());
    const NB_USHORT expected[] = {NAP_QUERY_LS, NAP_QUERY_NODE};
    EXPECT_EQ(list->block, Bytes(reinterpret_cast<const NB_BYTE*>(expected),
                                 reinterpret_cast<const NB_BYTE*>(expected + 2)));
}

TEST_F(ServiceTest, AnswersAreDamagedOnRequest) {
    struct Case {
        const char* damage;
        bool (*seen)(Received&);
    };
    static constexpr Case cases[] = {
        {"unknown-opcode", [](Received& r) { return r.opcode() == 0x7777; }},
        {"entry-length-zero", [](Received& r) { return r.buffer[0] == 0 && r.buffer[1] == 0; }},
        {"entry-length-overlong",
         [](Received& r) { return r.buffer[0] == 0xFF && r.buffer[1] == 0xFF; }},
        {"entry-count", [](Received& r) { return r.as<LIST_QUERY>().num_entries > 50; }},
    };
    Client client(service);
    Client script(service);
    const NB_HANDLE node = client.connect("bnkgw01");
    auto query = verb<QUERY_DLC>(NAP_QUERY_DLC);
    query.list.list_options = NAP_FIRST_IN_LIST | NAP_LEVEL_DETAIL;
    query.list.buffer_size = 4096;
    for (const Case& c : cases) {
        ASSERT_EQ(script.control(std::string("corrupt ") + c.damage), 0);
        Received answer = client.call(query, node, 4096);
        EXPECT_TRUE(c.seen(answer)) << c.damage;
        answer = client.call(query, node, 4096);
        EXPECT_FALSE(c.seen(answer)) << c.damage << " happens once";
    }
    ASSERT_EQ(script.control("corrupt half-frame NAP_QUERY_DLC"), 0);
    client.send(WIRE_REQUEST, {reinterpret_cast<NB_BYTE*>(&query), sizeof query}, node, 0, 4096);
    EXPECT_TRUE(dropped(client));
    EXPECT_GT(client.in.size(), sizeof(WIRE_FRAME));
}

TEST_F(ServiceTest, NodeAndSoftwareGoAwayWithTheirHandles) {
    Client client(service);
    Client script(service);
    const NB_HANDLE node = client.connect("bnkgw01", {NAP_LS_INDICATION});
    ASSERT_EQ(script.control("kill-node bnkgw01"), 0);
    auto told = client.take_indications();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].opcode(), NAP_NOF_STATUS_INDICATION);
    EXPECT_EQ(told[0].as<NOF_STATUS_INDICATION>().handle, node);
    EXPECT_EQ(told[0].header.correlator, 1000 + client.id); // that of a registration on the node
    EXPECT_EQ(client.call(verb<QUERY_NODE>(NAP_QUERY_NODE), node).as<VCB_HEADER>().secondary_rc,
              NAP_TARGET_GONE);
    ASSERT_EQ(script.control("stop-software"), 0);
    told = client.take_indications();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].as<NOF_STATUS_INDICATION>().status, NAP_SYSTEM_STOPPING);
    EXPECT_EQ(client.call(verb<QUERY_NODE>(NAP_QUERY_NODE), node).as<VCB_HEADER>().secondary_rc,
              NAP_SYSTEM_STOPPING);
    ASSERT_EQ(script.control("link-loss"), 0);
    told = client.take_indications();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].as<VCB_HEADER>().secondary_rc, NAP_LINK_LOST);
    ASSERT_EQ(script.control("drop"), 0);
    EXPECT_TRUE(dropped(client));
    EXPECT_FALSE(dropped(script));
}

TEST_F(ServiceTest, ControlCommandsActAsAnotherOperator) {
    Client client(service);
    Client script(service);
    client.connect("bnkgw01", {NAP_CONFIG_INDICATION, NAP_LU_0_TO_3_INDICATION});
    ASSERT_EQ(script.control("define ls NEWLS port=ETHPORT \"description=two words\""), 0)
        << script.output;
    ASSERT_EQ(script.control("delete mode-definition NIGHTRUN"), 0) << script.output;
    ASSERT_EQ(script.control("resync lu_0_to_3"), 0);
    ASSERT_EQ(script.control("use CORE03 user a.meier"), 0) << script.output;
    ASSERT_EQ(script.control("state lu_0_to_3 CORE03 in-session"), 0);
    auto told = client.take_indications();
    ASSERT_EQ(told.size(), 4u);
    EXPECT_EQ(told[0].opcode(), NAP_DEFINE_LS);
    EXPECT_STREQ(told[0].as<DEFINE_LS>().def.description, "two words");
    EXPECT_EQ(told[1].opcode(), NAP_DELETE_MODE);
    EXPECT_EQ(told[2].as<LU_0_TO_3_INDICATION>().resync, 1);
    EXPECT_EQ(told[2].as<LU_0_TO_3_INDICATION>().appl_conn_active, 1);
    EXPECT_EQ(told[3].as<LU_0_TO_3_INDICATION>().resync, 0);
    EXPECT_EQ(told[3].as<LU_0_TO_3_INDICATION>().plu_session_active, 1);

    EXPECT_EQ(script.control("define ls NEWLS port=NOPORT"), 1);
    EXPECT_EQ(script.control("define ls NEWLS nonsense=1"), 1);
    EXPECT_EQ(script.control("state ls NEWLS sideways"), 1);
    EXPECT_EQ(script.control("nonsense"), 1);
    EXPECT_EQ(script.control("list nonsense"), 2);
    EXPECT_EQ(script.control("help"), 0);
}

TEST_F(ServiceTest, JournalNamesVerbsAndHidesPasswords) {
    Client client(service);
    Client script(service);
    const NB_HANDLE node = client.connect("bnkgw01");
    ASSERT_EQ(script.control("journal clear"), 0);
    auto start = verb<START_LS>(NAP_START_LS);
    simnode::put_local(start.ls_name, 8, "HOSTA");
    client.call(start, node);
    Bytes secret(1682);
    vcb_header(secret.data())->opcode = NAP_DEFINE_TN3270_SSL_LDAP;
    std::memcpy(secret.data() + 1298, "Geheim", 6);
    client.call(std::span<const NB_BYTE>(secret), node);
    ASSERT_EQ(script.control("journal"), 0);
    EXPECT_NE(script.output.find("\"verb\":\"NAP_START_LS\""), std::string::npos);
    EXPECT_NE(script.output.find("\"key\":\"HOSTA\""), std::string::npos);
    EXPECT_NE(script.output.find("\"secondary\":\"0xC0010000\""), std::string::npos);
    EXPECT_EQ(script.output.find(simnode::to_hex("Geheim", 6)), std::string::npos);
    EXPECT_EQ(std::count(script.output.begin(), script.output.end(), '\n'), 2);
}

} // namespace
} // namespace simnode_test
