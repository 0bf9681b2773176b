// The two programs as they are started: options, readiness, state that is kept, and a domain of
// several servers.
#include "client.h"

#include "kit/process.h"
#include "nof/trace.h"
#include "simnode/generate.h"

#include <filesystem>
#include <fstream>
#include <utility>

namespace simnode_test {
namespace {

using simnode::Kind;

using Words = std::vector<std::string>;

// Runs a program to its end; its output, both streams together, goes to text.
int run_program(const char* name, Words words, std::string& text) {
    words.insert(words.begin(), kit::program(name));
    const kit::RESULT result = kit::run(words);
    text = result.out + result.err;
    return result.status;
}

// A service of its own process, which ends with this object.
struct Program {
    pid_t child = -1;
    int lifeline = -1;
    bool ready = false;

    explicit Program(Words options) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
            return;
        }
        lifeline = ends[0];
        const int ready_fd = dup(ends[1]);
        options.insert(options.begin(),
                       {kit::program("tessaly-simnode"), "--ready-fd", std::to_string(ready_fd),
                        "--exit-with-fd", std::to_string(ends[1])});
        child = kit::start(options, {}, -1, -1, {ends[1]});
        close(ends[1]);
        close(ready_fd);
        char word[6] = {};
        ready = recv(lifeline, word, sizeof word, MSG_WAITALL) == 6 &&
                std::memcmp(word, "ready\n", 6) == 0;
    }
    ~Program() { end(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Lets go of the lifeline; the exit status.
    int end() {
        close(std::exchange(lifeline, -1));
        const pid_t ended = std::exchange(child, -1);
        return ended > 0 ? kit::wait_for(ended, std::chrono::seconds(20)) : -1;
    }
};

TEST(Program, KeepsItsStateAndEndsWithWhoStartedIt) {
    const std::string socket = kit::scratch() + "/node";
    const Words options{"--socket",  socket,
                        "--state",   kit::scratch() + "/state.toml",
                        "--domain",  TESSALY_SOURCE_DIR "/data/domains/demo.toml",
                        "--journal", kit::scratch() + "/journal"};
    std::string text;
    const auto control = [&](Words words) {
        words.insert(words.begin(), {"--socket", socket});
        return run_program("tessaly-simctl", words, text);
    };
    {
        Program program(options);
        ASSERT_TRUE(program.ready);
        EXPECT_EQ(control({"define", "ls", "KEPT", "port=ETHPORT", "description=kept for later"}),
                  0)
            << text;
        EXPECT_EQ(control({"list", "nonsense"}), 2);
        EXPECT_EQ(control({"idle"}), 0);
        EXPECT_EQ(text, "idle\n");
        EXPECT_EQ(run_program("tessaly-simnode", {"--socket", socket}, text), 1);
        EXPECT_NE(text.find("listens already"), std::string::npos) << text;
        EXPECT_EQ(program.end(), 0);
    }
    EXPECT_FALSE(std::filesystem::exists(socket));
    std::ifstream journal(kit::scratch() + "/journal");
    std::getline(journal, text);
    EXPECT_NE(text.find("NAP_DEFINE_LS"), std::string::npos);
    EXPECT_EQ(control({"count", "ls"}), 3); // nobody serves
    std::ofstream(socket) << "left over by a service that died";
    Program program(options);
    ASSERT_TRUE(program.ready);
    EXPECT_EQ(control({"show", "ls", "KEPT"}), 0);
    EXPECT_NE(text.find("description=kept for later\n"), std::string::npos) << text;
    EXPECT_EQ(control({"shutdown"}), 0);
}

TEST(Program, BadCommandLinesAreExplained) {
    const std::string bad = kit::scratch() + "/bad.toml";
    std::ofstream(bad) << "[[node]]\nname = 5\n";
    const std::string socket = kit::scratch() + "/node";
    const struct {
        Words options;
        int status;
        const char* text;
    } cases[] = {
        {{}, 2, "usage"},
        {{"--nonsense"}, 2, "usage"},
        {{"--socket", socket, "--domain", bad}, 1, "bad.toml:1: "},
        {{"--socket", socket, "--generate", "trees=4"}, 1, "trees=4"},
        {{"--socket", socket, "--generate", "lu03=many"}, 1, "lu03=many"},
        {{"--socket", "/no/node", "--generate", "lu03=1"}, 1, "No such file"},
        {{"--socket", std::string(200, 'x'), "--generate", "lu03=1"}, 1, "too long"},
    };
    for (const auto& [options, status, part] : cases) {
        std::string text;
        EXPECT_EQ(run_program("tessaly-simnode", options, text), status) << text;
        EXPECT_NE(text.find(part), std::string::npos) << text;
    }
}

TEST(Generator, MakesWhatIsAskedForAndWhatThatNeeds) {
    const struct {
        const char* counts;
        std::vector<std::pair<Kind, std::size_t>> sizes;
    } cases[] = {
        {"lu03=0", {{Kind::pu, 0}, {Kind::ls, 0}, {Kind::port, 0}}},
        {"lu03=254", {{Kind::lu_0_to_3, 254}, {Kind::pu, 1}, {Kind::ls, 1}, {Kind::port, 1}}},
        {"lu03=255", {{Kind::lu_0_to_3, 255}, {Kind::pu, 2}, {Kind::ls, 2}, {Kind::port, 1}}},
        {"ls=5,port=2", {{Kind::pu, 0}, {Kind::ls, 5}, {Kind::port, 2}}},
        {"pu=3,ls=1", {{Kind::pu, 3}, {Kind::ls, 3}, {Kind::port, 1}}},
        {"lu03=10,pu=4", {{Kind::lu_0_to_3, 10}, {Kind::pu, 4}, {Kind::ls, 4}}},
        {"user=40,user_session=400", {{Kind::user, 50}, {Kind::user_session, 400}}}, // of 8 each
        {"tn_session=80", {{Kind::tn_session, 80}, {Kind::tn_client, 10}}},
        {"downstream_lu=300", {{Kind::downstream_lu, 300}, {Kind::downstream_pu, 2}}},
    };
    for (const auto& [text, sizes] : cases) {
        SCOPED_TRACE(text);
        simnode::Domain domain;
        simnode::Counts counts;
        std::string error;
        ASSERT_TRUE(parse_counts(text, counts, error)) << error;
        generate_domain(domain, counts);
        simnode::Node& node = *domain.nodes.front();
        for (const auto& [kind, count] : sizes) {
            const simnode::KindRow& row = simnode::kind_row(kind);
            EXPECT_EQ(size((row.of_domain ? domain.file : node).of(kind)), count) << row.name;
        }
        for (const simnode::Record* pu : everything(node.of(Kind::pu))) {
            std::set<NB_BYTE> addresses;
            for (const simnode::Record* lu : children(node.of(Kind::lu_0_to_3), pu->key)) {
                const NB_BYTE address = lu->as<LU03_ENTRY>().def_data.nau_address;
                EXPECT_TRUE(address >= 1 && address <= 254 && addresses.insert(address).second);
            }
        }
    }
}

constexpr char servers[] = R"(
[domain]
client_server = true
local_server = "beta"
central_logger = "alpha"
servers = ["beta", "alpha"]
[[node]]
name = "beta"
cp_name = "NET.BETA"
[[node]]
name = "alpha"
cp_name = "NET.ALPHA"
active = false
[[node]]
name = "gamma"
configured = false
[[node]]
name = "old"
back_level = true
cp_name = "NET.OLD"
)";

struct DomainOfServers : testing::Test {
    simnode::Service service;
    std::unique_ptr<Client> client;

    void SetUp() override {
        load_text(service, servers);
        client = std::make_unique<Client>(service);
    }
    static NB_HANDLE open(Client& client, NB_BYTE role) {
        auto block = verb<OPEN_FILE>(NAP_OPEN_FILE);
        block.file_info.requested_role = role;
        Received answer = client.call(block, 0);
        EXPECT_TRUE(answer.rc().ok());
        return answer.as<OPEN_FILE>().file_handle;
    }
    std::vector<std::string> names(NB_USHORT opcode, NB_HANDLE target,
                                   const char* after = nullptr) {
        auto query = verb<QUERY_NODE_ALL>(opcode);
        query.list.list_options =
            NAP_LEVEL_DETAIL | (after != nullptr ? NAP_LIST_FROM_NEXT : NAP_FIRST_IN_LIST);
        query.list.buffer_size = 2048;
        simnode::put_text(query.node_name, sizeof query.node_name, after != nullptr ? after : "");
        std::vector<std::string> result;
        for (const Bytes& entry : entries_of(client->call(query, target, 2048))) {
            result.push_back(simnode::local_text(entry.data() + 2, 128));
        }
        return result;
    }
    simnode::Rc rc_of(const auto& block, NB_HANDLE target) {
        return client->call(block, target).rc();
    }
};

TEST_F(DomainOfServers, NodesDifferInWhatTheyAnswer) {
    EXPECT_EQ(names(NAP_QUERY_NODE_ALL, 0),
              (std::vector<std::string>{"alpha", "beta", "gamma", "old"}));
    EXPECT_EQ(names(NAP_QUERY_NODE_ALL, 0, "beta"), (std::vector<std::string>{"gamma", "old"}));
    auto old = verb<CONNECT_NODE>(NAP_CONNECT_NODE);
    simnode::put_text(old.node_name, sizeof old.node_name, "old");
    EXPECT_FALSE(rc_of(old, 0).ok());
    const NB_HANDLE gamma = client->connect("gamma");
    const auto query = verb<QUERY_NODE>(NAP_QUERY_NODE);
    const auto start = verb<INIT_NODE>(NAP_INIT_NODE);
    EXPECT_EQ(rc_of(query, gamma).secondary, NAP_NODE_NOT_CONFIGURED);
    EXPECT_EQ(rc_of(start, gamma).secondary, 0x554Du);
    Received answer = client->call(query, client->connect("alpha"));
    EXPECT_EQ(answer.as<QUERY_NODE>().active, 0);

    // Defining the node configures it, and those who watch it learn.
    Client other(service);
    other.connect("gamma", {NAP_CONFIG_INDICATION});
    auto define = verb<DEFINE_NODE>(NAP_DEFINE_NODE);
    simnode::put_ebcdic(define.parameters.cp_name, 17, "NET.GAMMA");
    EXPECT_TRUE(rc_of(define, gamma).ok());
    EXPECT_TRUE(rc_of(query, gamma).ok());
    simnode::put_ebcdic(define.parameters.cp_name, 17, "NET.GAMMA2");
    EXPECT_TRUE(rc_of(define, gamma).ok());
    EXPECT_EQ(size(node_named(service.world.domain, "gamma")->of(simnode::Kind::local_lu)), 1u);
    EXPECT_TRUE(rc_of(start, gamma).ok());
    EXPECT_EQ(other.take_indications().size(), 3u);
}

TEST_F(DomainOfServers, LoggingIsAskedOfTheCentralLogger) {
    Received logger = client->call(verb<QUERY_CENTRAL_LOGGER>(NAP_QUERY_CENTRAL_LOGGER), 0);
    EXPECT_STREQ(logger.as<QUERY_CENTRAL_LOGGER>().node_name, "alpha");
    const auto query = verb<SET_CENTRAL_LOGGING>(NAP_QUERY_CENTRAL_LOGGING);
    EXPECT_EQ(rc_of(query, client->connect("beta")).secondary, NAP_NOT_CENTRAL_LOGGER);
    const NB_HANDLE alpha = client->connect("alpha");
    auto set = verb<SET_CENTRAL_LOGGING>(NAP_SET_CENTRAL_LOGGING);
    set.central = 1;
    EXPECT_TRUE(rc_of(set, alpha).ok());
    Received answer = client->call(query, alpha);
    EXPECT_EQ(answer.as<SET_CENTRAL_LOGGING>().central, 1);
}

TEST_F(DomainOfServers, BackupsAndServersComeAndGo) {
    const NB_HANDLE network = open(*client, NOF_FILE_SNA_NET);
    EXPECT_EQ(names(NAP_QUERY_SNA_NET, network), (std::vector<std::string>{"alpha", "beta"}));
    Client other(service);
    const NB_HANDLE configuration = open(other, NOF_FILE_CONFIGURATION);
    other.register_for(NAP_CONFIG_INDICATION, configuration, 77);
    other.register_for(NAP_SERVER_INDICATION, 0, 78);

    const auto change = [&](NB_USHORT opcode, const char* name) {
        auto backup = verb<BACKUP_SERVER>(opcode);
        simnode::put_text(backup.server_name, sizeof backup.server_name, name);
        return rc_of(backup, network);
    };
    EXPECT_TRUE(change(NAP_ADD_BACKUP, "gamma").ok());
    EXPECT_TRUE(change(NAP_DELETE_BACKUP, "alpha").ok());
    EXPECT_TRUE(change(NAP_DELETE_BACKUP, "beta").ok());
    EXPECT_EQ(change(NAP_DELETE_BACKUP, "gamma").secondary, NAP_LAST_BACKUP);
    auto told = other.take_indications();
    ASSERT_EQ(told.size(), 3u);
    EXPECT_EQ(told[0].opcode(), NAP_ADD_BACKUP);
    EXPECT_EQ(told[0].header.correlator, 77u);

    Client script(service);
    ASSERT_EQ(script.control("server gamma up"), 0);
    told = other.take_indications();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].as<SERVER_INDICATION>().status, 1u);
    EXPECT_EQ(told[0].as<SERVER_INDICATION>().flags, 0x2004u); // in the file, not this machine
}

} // namespace
} // namespace simnode_test
