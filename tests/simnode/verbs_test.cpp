// What verbs change, what the issuer is answered, and what the other operators are told.
#include "client.h"

#include "nof/trace.h"

namespace simnode_test {
namespace {

using simnode::Kind;
using simnode::Rc;

constexpr char world[] = R"(
[[node]]
name = "one"
cp_name = "NET.ONE"
cp_alias = "ONE"
dlc = [{name = "ETH", type = "ethernet"}]
port = [{name = "PT", dlc = "ETH", link_limit = 2}]
ls = [
    {name = "HOST", port = "PT", adjacent_cp = "NET.HOST", adjacent_type = "host", pu = "PUHOST"},
    {name = "DOWN", port = "PT", dspu_services = "concentration", dspu = "DSPU"},
    {name = "PEER", port = "PT", adjacent_cp = "NET.PEER", adjacent_type = "network-node"},
]
dlur_pu = [{name = "PUDLUR", dlus = "NET.HOST"}, {name = "PUNODLUS"}]
lu_0_to_3 = [{name = "LU1", pu = "PUHOST", nau = 1}, {name = "LU2", pu = "PUHOST", nau = 2}]
downstream_lu = [{name = "DL1", pu = "DSPU", nau = 1}]
local_lu = [{name = "APPC", alias = "APPC"}]
directory = [
    {name = "NET.PEER", type = "network-node", entry_type = "registered"},
    {name = "NET.REMOTE", type = "lu", parent = "NET.PEER", parent_type = "network-node"},
]
)";

struct VerbTest : testing::Test {
    simnode::Service service;
    std::unique_ptr<Client> client;
    std::unique_ptr<Client> other;
    NB_HANDLE node = 0;

    void SetUp() override {
        load_text(service, world);
        client = std::make_unique<Client>(service);
        other = std::make_unique<Client>(service);
        node = client->connect("one", {NAP_CONFIG_INDICATION, NAP_DLC_INDICATION});
        other->connect("ONE",
                       {NAP_CONFIG_INDICATION, NAP_DLC_INDICATION, NAP_PORT_INDICATION,
                        NAP_LS_INDICATION, NAP_PU_INDICATION, NAP_DLUR_PU_INDICATION,
                        NAP_LU_0_TO_3_INDICATION, NAP_DOWNSTREAM_PU_INDICATION,
                        NAP_DOWNSTREAM_LU_INDICATION, NAP_PLU_INDICATION, NAP_MODE_INDICATION});
    }
    simnode::Node& the_node() { return *service.world.domain.nodes.front(); }

    template <typename T> Rc issue(const T& block) { return client->call(block, node).rc(); }
    // The opcodes of what the other operator was told, one after the other.
    std::vector<NB_USHORT> told() {
        std::vector<NB_USHORT> opcodes;
        for (const Received& indication : other->take_indications()) {
            opcodes.push_back(indication.opcode());
        }
        return opcodes;
    }
    START_LS start_ls(std::string_view name, NB_BYTE activation = 0) {
        auto block = verb<START_LS>(NAP_START_LS);
        simnode::put_local(block.ls_name, 8, name);
        block.activation = activation;
        return block;
    }
    STOP_LS stop_ls(std::string_view name, NB_BYTE disable) {
        auto block = verb<STOP_LS>(NAP_STOP_LS);
        block.stop_type = 1;
        simnode::put_local(block.ls_name, 8, name);
        block.disable = disable;
        return block;
    }
    void bring_up_port() {
        EXPECT_TRUE(issue(named(NAP_START_DLC, "ETH", false)).ok());
        EXPECT_TRUE(issue(named(NAP_START_PORT, "PT", false)).ok());
        told();
    }
};

TEST_F(VerbTest, DefinesAndDeletesReachTheOtherOperatorOnly) {
    auto define = verb<DEFINE_LS>(NAP_DEFINE_LS);
    simnode::put_local(define.ls_name, 8, "NEW");
    simnode::put_local(define.def.port_name, 8, "PT");
    define.def.adj_cp_type = NAP_HOST_XID3;
    define.def.activate_on_demand = NAP_YES;
    simnode::put_ebcdic(define.def.pu_name, 8, "PUNEW");
    ASSERT_TRUE(issue(define).ok());

    auto copies = other->take_indications();
    ASSERT_EQ(copies.size(), 1u);
    EXPECT_EQ(copies[0].header.correlator, 1000 + other->id);
    EXPECT_EQ(copies[0].as<VCB_HEADER>().primary_rc, NAP_INDICATION);
    EXPECT_EQ(copies[0].as<VCB_HEADER>().secondary_rc, 0u);
    copies[0].as<VCB_HEADER>().primary_rc = NAP_OK;
    EXPECT_EQ(std::memcmp(copies[0].block.data(), &define, sizeof define), 0);
    EXPECT_TRUE(client->take_indications().empty());

    const simnode::Record* ls = find(the_node().of(Kind::ls), "NEW     ");
    ASSERT_NE(ls, nullptr);
    EXPECT_EQ(ls->as<LS_ENTRY>().det.activation_flags, NOF_LS_ON_DEMAND | NOF_LS_INCOMING);
    EXPECT_NE(simnode::find_pu(the_node(), define.def.pu_name), nullptr);

    define.def.adj_cp_type = NAP_NETWORK_NODE; // asks for no PU any more
    ASSERT_TRUE(issue(define).ok());
    EXPECT_EQ(simnode::find_pu(the_node(), define.def.pu_name), nullptr);

    ASSERT_TRUE(issue(named(NAP_DELETE_LS, "NEW", false)).ok());
    EXPECT_EQ(told(), (std::vector<NB_USHORT>{NAP_DEFINE_LS, NAP_DELETE_LS}));
    EXPECT_EQ(issue(named(NAP_DELETE_LS, "NEW", false)).secondary, 0x17100000u);
    EXPECT_TRUE(told().empty()); // what failed is nobody's business
}

TEST_F(VerbTest, StartChainTellsEveryStep) {
    EXPECT_EQ(issue(named(NAP_START_PORT, "PT", false)).secondary, 0x40100000u);
    EXPECT_EQ(issue(start_ls("HOST")).secondary, 0x3D100000u);
    EXPECT_TRUE(issue(named(NAP_START_DLC, "ETH", false)).ok());
    EXPECT_EQ(issue(named(NAP_START_DLC, "ETH", false)).secondary, 0x10050000u);
    EXPECT_NE(issue(named(NAP_START_DLC, "NONE", false)).secondary, 0x10050000u);
    EXPECT_TRUE(issue(named(NAP_START_PORT, "PT", false)).ok());
    EXPECT_EQ(issue(named(NAP_START_PORT, "PT", false)).secondary, 0x10100000u);
    EXPECT_EQ(told(), (std::vector<NB_USHORT>{NAP_START_DLC, NAP_DLC_INDICATION, NAP_START_PORT,
                                              NAP_PORT_INDICATION}));
    EXPECT_TRUE(issue(start_ls("HOST")).ok());
    EXPECT_EQ(told(), (std::vector<NB_USHORT>{NAP_START_LS, NAP_LS_INDICATION, NAP_LS_INDICATION,
                                              NAP_PU_INDICATION, NAP_LU_0_TO_3_INDICATION,
                                              NAP_LU_0_TO_3_INDICATION}));
    EXPECT_EQ(issue(start_ls("HOST")).secondary, 0xC0010000u);
    EXPECT_TRUE(issue(start_ls("DOWN")).ok());
    EXPECT_EQ(told(),
              (std::vector<NB_USHORT>{NAP_START_LS, NAP_LS_INDICATION, NAP_LS_INDICATION,
                                      NAP_DOWNSTREAM_PU_INDICATION, NAP_DOWNSTREAM_LU_INDICATION}));
    EXPECT_EQ(issue(start_ls("PEER")).secondary, 0x3E100000u); // the port takes two links
    EXPECT_TRUE(issue(stop_ls("HOST", 3)).ok());
    const auto& host = find(the_node().of(Kind::ls), "HOST    ")->as<LS_ENTRY>();
    EXPECT_EQ(host.det.state, NOF_STATE_INACTIVE);
    EXPECT_EQ(host.det.activation_flags, 0);
    EXPECT_EQ(
        everything(the_node().of(Kind::lu_0_to_3)).front()->as<LU03_ENTRY>().det_data.lu_active, 0);
    EXPECT_TRUE(issue(start_ls("HOST", 2)).ok()); // enable only
    EXPECT_EQ(host.det.state, NOF_STATE_INACTIVE);
    EXPECT_EQ(host.det.activation_flags, NOF_LS_INCOMING);
}

// A stop ends a start that is under way; a start that fails leaves nothing pending behind.
TEST_F(VerbTest, SlowStartsEndWithTheirStopOrFailure) {
    bring_up_port();
    Client script(service);
    ASSERT_EQ(script.control("takes NAP_START_LS 20"), 0);
    const auto& state = find(the_node().of(Kind::ls), "PEER    ")->as<LS_ENTRY>().det.state;
    client->post(start_ls("PEER"), node);
    step(service, 0);
    EXPECT_EQ(state, NOF_STATE_START_PENDING);
    client->post(stop_ls("PEER", 0), node);
    EXPECT_EQ(client->next(WIRE_ANSWER)->opcode(), NAP_STOP_LS);
    EXPECT_EQ(client->next(WIRE_ANSWER)->rc().primary, 0x2100);
    EXPECT_EQ(state, NOF_STATE_INACTIVE);
    ASSERT_EQ(script.control("fail NAP_START_LS 1 0x2300 0x13200000"), 0);
    EXPECT_EQ(issue(start_ls("PEER")).primary, 0x2300);
    EXPECT_EQ(state, NOF_STATE_INACTIVE);

    ASSERT_EQ(script.control("takes NAP_INIT_NODE 20"), 0);
    ASSERT_EQ(script.control("stop node"), 0);
    client->post(verb<INIT_NODE>(NAP_INIT_NODE), node);
    client->post(verb<STOP_NODE>(NAP_STOP_NODE), node); // after the start
    EXPECT_EQ(client->next(WIRE_ANSWER)->opcode(), NAP_INIT_NODE);
    EXPECT_TRUE(client->next(WIRE_ANSWER)->rc().ok());
    EXPECT_FALSE(the_node().active);
}

TEST_F(VerbTest, InternalPuAnswersByItsState) {
    auto start = verb<START_INTERNAL_PU>(NAP_START_INTERNAL_PU);
    auto stop = verb<STOP_INTERNAL_PU>(NAP_STOP_INTERNAL_PU);
    const auto on = [&](auto& block, const char* name) {
        simnode::put_ebcdic(block.pu_name, 8, name);
        return issue(block);
    };
    EXPECT_EQ(on(stop, "PUDLUR").secondary, 0x06900000u);
    EXPECT_TRUE(on(start, "PUDLUR").ok());
    EXPECT_EQ(on(start, "PUDLUR").secondary, 0x05900000u);
    EXPECT_EQ(on(start, "PUHOST").secondary, 0x55100000u);
    EXPECT_EQ(on(start, "PUNODLUS").primary, 0x1400);
    EXPECT_TRUE(on(stop, "PUDLUR").ok());
    EXPECT_EQ(told(), (std::vector<NB_USHORT>{NAP_START_INTERNAL_PU, NAP_DLUR_PU_INDICATION,
                                              NAP_STOP_INTERNAL_PU, NAP_DLUR_PU_INDICATION}));
}

TEST_F(VerbTest, SessionsComeAndGoWithTheirPartner) {
    auto activate = verb<ACTIVATE_SESSION>(NAP_ACTIVATE_SESSION);
    simnode::put_ebcdic(activate.lu_name, 8, "APPC");
    simnode::put_ebcdic(activate.plu_name, 17, "NET.REMOTE");
    simnode::put_ebcdic(activate.mode_name, 8, "#INTER");
    ASSERT_TRUE(issue(activate).ok());
    EXPECT_EQ(told(), (std::vector<NB_USHORT>{NAP_PLU_INDICATION, NAP_MODE_INDICATION}));
    const auto modes = everything(the_node().of(Kind::mode));
    ASSERT_EQ(modes.size(), 1u);
    // The directory knows who owns the partner.
    EXPECT_EQ(simnode::ebcdic_text(modes[0]->as<MODE_ENTRY>().cp_name, 17), "NET.PEER");
    ASSERT_TRUE(issue(activate).ok());
    EXPECT_EQ(modes[0]->as<MODE_ENTRY>().act_sess_count, 2);

    auto deactivate = verb<DEACTIVATE_SESSION>(NAP_DEACTIVATE_SESSION);
    std::memcpy(deactivate.lu_name, activate.lu_name, 8);
    std::memcpy(deactivate.plu_name, activate.plu_name, 17);
    std::memcpy(deactivate.mode_name, activate.mode_name, 8);
    ASSERT_TRUE(issue(deactivate).ok());
    EXPECT_EQ(size(the_node().of(Kind::partner)), 0u);
    EXPECT_EQ(issue(deactivate).primary, NAP_NO_ENTRIES);

    simnode::put_ebcdic(activate.mode_name, 8, "NOMODE");
    EXPECT_EQ(issue(activate).secondary, 0x26020000u);
    simnode::put_ebcdic(activate.lu_name, 8, "NOLU");
    EXPECT_EQ(issue(activate).secondary, 0x5C010000u);
}

TEST_F(VerbTest, ReadOnlyOperatorsReadOnly) {
    ASSERT_EQ(client->control("read-only on " + std::to_string(client->id)), 1); // a command line
    ASSERT_EQ(other->control("read-only off"), 0);
    Client reader(service);
    Client commander(service);
    ASSERT_EQ(commander.control("read-only on " + std::to_string(reader.id)), 0);
    const NB_HANDLE handle = reader.connect("one");
    auto mode = verb<SET_PROCESSING_MODE>(NAP_SET_PROCESSING_MODE);
    mode.mode = NOF_PROCESSING_MODE;
    EXPECT_EQ(reader.call(mode, handle).rc().secondary, 0x67FF0000u);
    EXPECT_EQ(reader.call(named(NAP_START_DLC, "ETH", false), handle).rc().secondary, 0x5514u);
    EXPECT_TRUE(reader.call(verb<QUERY_NODE>(NAP_QUERY_NODE), handle).rc().ok());
}

TEST_F(VerbTest, SettingsAreReadAsTheyWereSet) {
    auto defaults = verb<DEFINE_DEFAULTS>(NAP_DEFINE_DEFAULTS);
    simnode::put_ebcdic(defaults.defaults.default_mode_name, 8, "#BATCH");
    defaults.defaults.timeout = 99;
    ASSERT_TRUE(issue(defaults).ok());
    Received answer = client->call(verb<QUERY_DEFAULTS>(NAP_QUERY_DEFAULTS), node);
    EXPECT_EQ(std::memcmp(&answer.as<QUERY_DEFAULTS>().defaults, &defaults.defaults, 304), 0);

    auto trace = verb<SET_TRACE_TYPE>(NAP_SET_TRACE_TYPE);
    const auto flags = [&](NB_ULONG node_flags, bool replace, bool add) {
        trace.node_flags = node_flags;
        trace.replace = replace;
        trace.add = add;
        EXPECT_TRUE(issue(trace).ok());
        return client->call(verb<QUERY_TRACE_TYPE>(NAP_QUERY_TRACE_TYPE), node)
            .as<QUERY_TRACE_TYPE>()
            .node_flags;
    };
    EXPECT_EQ(flags(0xF0, true, false), 0xF0u);
    EXPECT_EQ(flags(0x0F, false, true), 0xFFu);
    EXPECT_EQ(flags(0x3C, false, false), 0xC3u);

    auto add = verb<ADD_DLC_TRACE>(NAP_ADD_DLC_TRACE);
    add.resource_type = 3;
    simnode::put_local(add.name, 8, "ETH");
    ASSERT_TRUE(issue(add).ok());
    const auto traced = everything(the_node().of(Kind::dlc_trace));
    ASSERT_EQ(traced.size(), 1u);
    EXPECT_EQ(traced[0]->as<DLC_TRACE_ENTRY>().resource_type, 1); // it names a DLC
}

} // namespace
} // namespace simnode_test
