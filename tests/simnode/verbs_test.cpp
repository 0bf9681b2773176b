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
[[node.dlc]]
name = "ETH"
type = "ethernet"
[[node.port]]
name = "PT"
dlc = "ETH"
link_limit = 2
[[node.ls]]
name = "HOST"
port = "PT"
adjacent_cp = "NET.HOST"
adjacent_type = "host"
pu = "PUHOST"
[[node.ls]]
name = "DOWN"
port = "PT"
adjacent_type = "downstream"
dspu_services = "concentration"
dspu = "DSPU"
[[node.ls]]
name = "PEER"
port = "PT"
adjacent_cp = "NET.PEER"
adjacent_type = "network-node"
[[node.dlur_pu]]
name = "PUDLUR"
dlus = "NET.HOST"
[[node.dlur_pu]]
name = "PUNODLUS"
[[node.lu_0_to_3]]
name = "LU1"
pu = "PUHOST"
nau = 1
[[node.lu_0_to_3]]
name = "LU2"
pu = "PUHOST"
nau = 2
[[node.downstream_lu]]
name = "DL1"
pu = "DSPU"
nau = 1
[[node.local_lu]]
name = "APPC"
alias = "APPC"
[[node.directory]]
name = "NET.PEER"
type = "network-node"
entry_type = "registered"
[[node.directory]]
name = "NET.REMOTE"
type = "lu"
parent = "NET.PEER"
parent_type = "network-node"
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

    template <typename T> Rc issue(const T& block) {
        Received answer = client->call(block, node);
        return {answer.as<VCB_HEADER>().primary_rc, answer.as<VCB_HEADER>().secondary_rc};
    }
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

TEST_F(VerbTest, RedefiningKeepsTheStatus) {
    bring_up_port();
    auto define = verb<DEFINE_PORT>(NAP_DEFINE_PORT);
    simnode::put_local(define.port_name, 8, "PT");
    simnode::put_local(define.def.dlc_name, 8, "ETH");
    define.def.max_btu = 777;
    ASSERT_TRUE(issue(define).ok());
    const auto& port = find(the_node().of(Kind::port), "PT      ")->as<PORT_ENTRY>();
    EXPECT_EQ(port.def.max_btu, 777);
    EXPECT_EQ(port.state, NOF_STATE_ACTIVE);
    EXPECT_EQ(port.dlc_type, NAP_DLC_ETHERNET);
}

TEST_F(VerbTest, StartChainTellsEveryStep) {
    EXPECT_EQ(issue(named(NAP_START_PORT, "PT", false)).secondary, 0x40100000u);
    EXPECT_EQ(issue(start_ls("HOST")).secondary, 0x3D100000u);
    EXPECT_TRUE(issue(named(NAP_START_DLC, "ETH", false)).ok());
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
    EXPECT_EQ(find(the_node().of(Kind::lu_0_to_3),
                   simnode::everything(the_node().of(Kind::lu_0_to_3)).front()->key)
                  ->as<LU03_ENTRY>()
                  .det_data.lu_active,
              0);
    EXPECT_TRUE(issue(start_ls("HOST", 2)).ok()); // enable only
    EXPECT_EQ(host.det.state, NOF_STATE_INACTIVE);
    EXPECT_EQ(host.det.activation_flags, NOF_LS_INCOMING);
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

TEST_F(VerbTest, StoppingTheNodeTakesEverythingDown) {
    bring_up_port();
    ASSERT_TRUE(issue(start_ls("HOST")).ok());
    ASSERT_EQ(client->control("use LU1 user m.keller"), 0) << client->output;
    ASSERT_EQ(client->control("session APPC NET.REMOTE #INTER 3 NET.PEER"), 0);
    told();
    auto stop = verb<STOP_NODE>(NAP_STOP_NODE);
    ASSERT_TRUE(issue(stop).ok());
    EXPECT_EQ(told(), std::vector<NB_USHORT>{NAP_STOP_NODE});
    EXPECT_FALSE(the_node().active);
    EXPECT_EQ(size(the_node().of(Kind::mode)), 0u);
    EXPECT_EQ(size(the_node().of(Kind::partner)), 0u);
    for (const simnode::Record* lu : everything(the_node().of(Kind::lu_0_to_3))) {
        EXPECT_EQ(lu->as<LU03_ENTRY>().det_data.appl_conn_active, 0);
    }
    EXPECT_FALSE(issue(start_ls("HOST")).ok());
    EXPECT_TRUE(issue(verb<INIT_NODE>(NAP_INIT_NODE)).ok());
    EXPECT_EQ(issue(verb<INIT_NODE>(NAP_INIT_NODE)).secondary, 0x39100000u);
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

TEST_F(VerbTest, LostLinkEndsItsSessions) {
    bring_up_port();
    ASSERT_TRUE(issue(start_ls("PEER")).ok());
    ASSERT_EQ(client->control("session APPC NET.REMOTE #INTER 3 NET.PEER"), 0);
    ASSERT_EQ(client->control("session APPC NET.ELSE #INTER 1 NET.ELSECP"), 0);
    ASSERT_EQ(client->control("state ls PEER failed"), 0) << client->output;
    const auto left = everything(the_node().of(Kind::mode));
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(simnode::ebcdic_text(left[0]->as<MODE_ENTRY>().plu_name, 17), "NET.ELSE");
}

TEST_F(VerbTest, LuRangesAreNamedAsTheirFlagsSay) {
    struct Case {
        const char* base;
        NB_BYTE flags;
        NB_BYTE first_number;
        std::vector<std::string> names; // of addresses 10 to 12
    };
    const Case cases[] = {
        {"LU", 0, 0, {"LU010", "LU011", "LU012"}},
        {"PRT", 0x02, 0, {"PRT0A", "PRT0B", "PRT0C"}},
        {"LONGBA", 0x04, 0, {"LONGBA01", "LONGBA01", "LONGBA01"}},
        {"X", 0x01, 254, {"X254", "X255", "X000"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.base);
        auto define = verb<DEFINE_LU_0_TO_3_RANGE>(NAP_DEFINE_LU_0_TO_3_RANGE);
        simnode::put_ebcdic(define.base_name, 6, c.base);
        simnode::put_ebcdic(define.pu_name, 8, "PUHOST");
        define.first_nau = 10;
        define.last_nau = 12;
        define.naming_flags = c.flags;
        define.first_number = c.first_number;
        const bool distinct = std::set<std::string>(c.names.begin(), c.names.end()).size() == 3;
        ASSERT_TRUE(issue(define).ok());
        for (std::size_t i = 0; i < c.names.size(); ++i) {
            NB_NAME8E name;
            simnode::put_ebcdic(name, 8, c.names[i]);
            const simnode::Record* lu = find_name8(the_node(), Kind::lu_0_to_3, name);
            ASSERT_NE(lu, nullptr) << c.names[i];
            if (distinct) {
                EXPECT_EQ(lu->as<LU03_ENTRY>().def_data.nau_address, 10 + i);
            }
        }
        auto remove = verb<DELETE_LU_0_TO_3_RANGE>(NAP_DELETE_LU_0_TO_3_RANGE);
        std::memcpy(remove.base_name, define.base_name, 6);
        remove.first_nau = 10;
        remove.last_nau = 12;
        remove.naming_flags = c.flags;
        remove.first_number = c.first_number;
        ASSERT_TRUE(issue(remove).ok());
        EXPECT_EQ(size(the_node().of(Kind::lu_0_to_3)), 2u);
    }
    auto clash = verb<DEFINE_LU_0_TO_3_RANGE>(NAP_DEFINE_LU_0_TO_3_RANGE);
    simnode::put_ebcdic(clash.base_name, 6, "C");
    simnode::put_ebcdic(clash.pu_name, 8, "PUHOST");
    clash.first_nau = 1; // LU1 has this address
    clash.last_nau = 5;
    EXPECT_EQ(issue(clash).primary, NAP_STATE_CHECK);
    EXPECT_EQ(size(the_node().of(Kind::lu_0_to_3)), 2u); // all or nothing
}

TEST_F(VerbTest, RefusesDefinitionsThatDoNotFit) {
    auto lu = verb<DEFINE_LU_0_TO_3>(NAP_DEFINE_LU_0_TO_3);
    simnode::put_ebcdic(lu.lu_name, 8, "LU3");
    simnode::put_ebcdic(lu.def.pu_name, 8, "NOPU");
    lu.def.nau_address = 3;
    EXPECT_EQ(issue(lu).primary, NAP_PARAMETER_CHECK);
    simnode::put_ebcdic(lu.def.pu_name, 8, "PUHOST");
    lu.def.nau_address = 0;
    EXPECT_EQ(issue(lu).primary, NAP_PARAMETER_CHECK);
    lu.def.nau_address = 2;
    EXPECT_EQ(issue(lu).primary, NAP_STATE_CHECK); // LU2 has it
    lu.def.nau_address = 3;
    EXPECT_TRUE(issue(lu).ok());

    auto appc = verb<DEFINE_LOCAL_LU>(NAP_DEFINE_LOCAL_LU);
    simnode::put_ebcdic(appc.lu_name, 8, "SECOND");
    simnode::put_local(appc.def.lu_alias, 8, "APPC");
    EXPECT_EQ(issue(appc).primary, NAP_STATE_CHECK); // the alias is taken
    EXPECT_EQ(issue(named(NAP_DELETE_LOCAL_LU, "ONE", true)).primary, NAP_STATE_CHECK);

    bring_up_port();
    EXPECT_EQ(issue(named(NAP_DELETE_PORT, "PT", false)).primary, NAP_STATE_CHECK);
}

TEST_F(VerbTest, DeletingTakesWhatHangsBelow) {
    ASSERT_TRUE(issue(named(NAP_DELETE_DLC, "ETH", false)).ok());
    for (const Kind kind : {Kind::port, Kind::ls, Kind::pu, Kind::downstream_pu, Kind::lu_0_to_3,
                            Kind::downstream_lu}) {
        EXPECT_EQ(size(the_node().of(kind)), 0u) << simnode::kind_row(kind).name;
    }
    EXPECT_EQ(size(the_node().of(Kind::dlur_pu)), 2u);
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
    Received answer = reader.call(mode, handle);
    EXPECT_EQ(answer.as<VCB_HEADER>().primary_rc, NAP_STATE_CHECK);
    EXPECT_EQ(answer.as<VCB_HEADER>().secondary_rc, 0x67FF0000u);
    answer = reader.call(named(NAP_START_DLC, "ETH", false), handle);
    EXPECT_EQ(answer.as<VCB_HEADER>().primary_rc, NAP_PARAMETER_CHECK);
    EXPECT_EQ(answer.as<VCB_HEADER>().secondary_rc, 0x5514u);
    EXPECT_EQ(reader.call(verb<QUERY_NODE>(NAP_QUERY_NODE), handle).as<VCB_HEADER>().primary_rc,
              NAP_OK);
}

TEST_F(VerbTest, HandlesEndWithTheirConnection) {
    OPEN_FILE open = verb<OPEN_FILE>(NAP_OPEN_FILE);
    open.file_info.requested_role = NOF_FILE_CONFIGURATION;
    Received answer = client->call(open, 0);
    EXPECT_EQ(answer.as<OPEN_FILE>().file_info.local_server, 1);
    EXPECT_STREQ(answer.as<OPEN_FILE>().file_info.server_name, "one");
    const NB_HANDLE file = answer.as<OPEN_FILE>().file_handle;
    EXPECT_NE(file, node);
    EXPECT_TRUE(issue(verb<QUERY_NODE>(NAP_QUERY_NODE)).ok());
    EXPECT_TRUE(issue(verb<DISCONNECT_NODE>(NAP_DISCONNECT_NODE)).ok());
    const Rc gone = issue(verb<QUERY_NODE>(NAP_QUERY_NODE));
    EXPECT_EQ(gone.primary, NAP_UNSUCCESSFUL);
    EXPECT_EQ(gone.secondary, NAP_TARGET_GONE);
    EXPECT_EQ(client->call(verb<CLOSE_FILE>(NAP_CLOSE_FILE), file).as<VCB_HEADER>().primary_rc,
              NAP_OK);
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
