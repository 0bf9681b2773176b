// The two programs as they are started: options, readiness, state that is kept, and a domain of
// several servers.
#include "client.h"

#include "simnode/generate.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <sys/wait.h>

namespace simnode_test {
namespace {

using simnode::Kind;

const std::string programs = std::string(TESSALY_BUILD_DIR) + "/simnode/";

struct Folder {
    std::filesystem::path path;
    Folder() {
        char name[] = "/tmp/simnode-test-XXXXXX";
        path = mkdtemp(name);
    }
    ~Folder() { std::filesystem::remove_all(path); }
};

// Runs a program to its end; its output, both streams together, goes to text.
int run_program(const std::vector<std::string>& words, std::string& text) {
    int pipe_fds[2];
    if (pipe2(pipe_fds, O_CLOEXEC) != 0) {
        return -1;
    }
    const pid_t child = fork();
    if (child == 0) {
        dup2(pipe_fds[1], STDOUT_FILENO);
        dup2(pipe_fds[1], STDERR_FILENO);
        std::vector<char*> arguments;
        for (const std::string& word : words) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    close(pipe_fds[1]);
    text.clear();
    char bytes[4096];
    for (ssize_t n = 0; (n = read(pipe_fds[0], bytes, sizeof bytes)) > 0;) {
        text.append(bytes, static_cast<std::size_t>(n));
    }
    close(pipe_fds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A service of its own process, which ends with this object.
struct Program {
    pid_t child = -1;
    int lifeline = -1;
    bool ready = false;

    explicit Program(const std::vector<std::string>& options) {
        int ready_pipe[2];
        int life_pipe[2];
        if (pipe2(ready_pipe, O_CLOEXEC) != 0 || pipe2(life_pipe, O_CLOEXEC) != 0) {
            return;
        }
        child = fork();
        if (child == 0) {
            fcntl(ready_pipe[1], F_SETFD, 0);
            fcntl(life_pipe[0], F_SETFD, 0);
            std::vector<std::string> words = {programs + "tessaly-simnode", "--ready-fd",
                                              std::to_string(ready_pipe[1]), "--exit-with-fd",
                                              std::to_string(life_pipe[0])};
            words.insert(words.end(), options.begin(), options.end());
            std::vector<char*> arguments;
            for (std::string& word : words) {
                arguments.push_back(word.data());
            }
            arguments.push_back(nullptr);
            execv(arguments[0], arguments.data());
            _exit(127);
        }
        close(ready_pipe[1]);
        close(life_pipe[0]);
        lifeline = life_pipe[1];
        char word[6] = {};
        ready = read(ready_pipe[0], word, sizeof word) == 6 && std::memcmp(word, "ready\n", 6) == 0;
        close(ready_pipe[0]);
    }
    ~Program() { end(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Lets go of the lifeline; the exit status.
    int end() {
        int status = -1;
        if (child > 0) {
            close(lifeline);
            waitpid(child, &status, 0);
            child = -1;
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

TEST(Program, KeepsItsStateAndEndsWithWhoStartedIt) {
    Folder folder;
    const std::string socket = folder.path / "node";
    const std::string state = folder.path / "state.toml";
    const std::string demo = std::string(TESSALY_SOURCE_DIR) + "/data/domains/demo.toml";
    const std::vector<std::string> options = {
        "--socket", socket, "--state",   state,
        "--domain", demo,   "--journal", folder.path / "journal"};
    const auto control = [&](std::vector<std::string> words, std::string& text) {
        words.insert(words.begin(), {programs + "tessaly-simctl", "--socket", socket});
        return run_program(words, text);
    };
    std::string text;
    {
        Program program(options);
        ASSERT_TRUE(program.ready);
        EXPECT_EQ(
            control({"define", "ls", "KEPT", "port=ETHPORT", "description=kept for later"}, text),
            0)
            << text;
        EXPECT_EQ(control({"list", "nonsense"}, text), 2);
        EXPECT_EQ(control({"idle"}, text), 0);
        EXPECT_EQ(text, "idle\n");
        std::string second;
        EXPECT_EQ(run_program({programs + "tessaly-simnode", "--socket", socket}, second), 1);
        EXPECT_NE(second.find("listens already"), std::string::npos) << second;
        EXPECT_EQ(program.end(), 0);
    }
    EXPECT_FALSE(std::filesystem::exists(socket));
    std::ifstream journal(folder.path / "journal");
    std::getline(journal, text);
    EXPECT_NE(text.find("NAP_DEFINE_LS"), std::string::npos);
    EXPECT_EQ(control({"count", "ls"}, text), 3); // nobody serves
    {
        std::ofstream(socket) << "left over by a service that died";
        Program program(options);
        ASSERT_TRUE(program.ready);
        EXPECT_EQ(control({"show", "ls", "KEPT"}, text), 0);
        EXPECT_NE(text.find("description=kept for later\n"), std::string::npos) << text;
        EXPECT_EQ(control({"shutdown"}, text), 0);
    }
}

TEST(Program, BadCommandLinesAreExplained) {
    Folder folder;
    const std::string bad = folder.path / "bad.toml";
    std::ofstream(bad) << "[[node]]\nname = 5\n";
    const std::string socket = folder.path / "node";
    struct Case {
        std::vector<std::string> options;
        int status;
        const char* text;
    };
    const Case cases[] = {
        {{}, 2, "usage"},
        {{"--nonsense"}, 2, "usage"},
        {{"--socket", socket, "--domain", bad}, 1, "bad.toml:1: "},
        {{"--socket", socket, "--generate", "trees=4"}, 1, "trees=4"},
        {{"--socket", socket, "--generate", "lu03=many"}, 1, "lu03=many"},
        {{"--socket", folder.path / "no" / "node", "--generate", "lu03=1"}, 1, "No such file"},
        {{"--socket", std::string(200, 'x'), "--generate", "lu03=1"}, 1, "too long"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> words = c.options;
        words.insert(words.begin(), programs + "tessaly-simnode");
        std::string text;
        EXPECT_EQ(run_program(words, text), c.status) << text;
        EXPECT_NE(text.find(c.text), std::string::npos) << text;
    }
}

TEST(Generator, MakesWhatLusNeed) {
    struct Case {
        const char* counts;
        std::size_t lus, pus, link_stations, ports;
    };
    static constexpr Case cases[] = {
        {"lu03=0", 0, 0, 0, 0},        {"lu03=1", 1, 1, 1, 1},      {"lu03=254", 254, 1, 1, 1},
        {"lu03=255", 255, 2, 2, 1},    {"ls=5,port=2", 0, 0, 5, 2}, {"pu=3,ls=1", 0, 3, 3, 1},
        {"lu03=10,pu=4", 10, 4, 4, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.counts);
        simnode::Domain domain;
        simnode::Counts counts;
        std::string error;
        ASSERT_TRUE(parse_counts(c.counts, counts, error));
        generate_domain(domain, counts);
        simnode::Node& node = *domain.nodes.front();
        EXPECT_EQ(size(node.of(Kind::lu_0_to_3)), c.lus);
        EXPECT_EQ(size(node.of(Kind::pu)), c.pus);
        EXPECT_EQ(size(node.of(Kind::ls)), c.link_stations);
        EXPECT_EQ(size(node.of(Kind::port)), c.ports);
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
    NB_HANDLE open(NB_BYTE role, NB_HANDLE target = 0) {
        auto block = verb<OPEN_FILE>(NAP_OPEN_FILE);
        block.file_info.requested_role = role;
        Received answer = client->call(block, target);
        EXPECT_EQ(answer.as<VCB_HEADER>().primary_rc, NAP_OK);
        return answer.as<OPEN_FILE>().file_handle;
    }
    std::vector<std::string> names(NB_USHORT opcode, NB_HANDLE target,
                                   const char* after = nullptr) {
        auto query = verb<QUERY_NODE_ALL>(opcode);
        query.list.list_options =
            NAP_LEVEL_DETAIL | (after != nullptr ? NAP_LIST_FROM_NEXT : NAP_FIRST_IN_LIST);
        query.list.buffer_size = 2048;
        simnode::put_text(query.node_name, sizeof query.node_name, after != nullptr ? after : "");
        Received answer = client->call(query, target, 2048);
        std::vector<std::string> result;
        for (std::size_t at = 0; at < answer.buffer.size(); at += sizeof(NODE_ALL_ENTRY)) {
            result.push_back(simnode::local_text(answer.buffer.data() + at + 2, 128));
        }
        return result;
    }
    VCB_HEADER header_of(const auto& block, NB_HANDLE target) {
        return client->call(block, target).template as<VCB_HEADER>();
    }
};

TEST_F(DomainOfServers, NodesDifferInWhatTheyAnswer) {
    EXPECT_EQ(names(NAP_QUERY_NODE_ALL, 0),
              (std::vector<std::string>{"alpha", "beta", "gamma", "old"}));
    EXPECT_EQ(names(NAP_QUERY_NODE_ALL, 0, "beta"), (std::vector<std::string>{"gamma", "old"}));
    auto old = verb<CONNECT_NODE>(NAP_CONNECT_NODE);
    simnode::put_text(old.node_name, sizeof old.node_name, "old");
    EXPECT_NE(header_of(old, 0).primary_rc, NAP_OK);
    const NB_HANDLE gamma = client->connect("gamma");
    const auto query = verb<QUERY_NODE>(NAP_QUERY_NODE);
    EXPECT_EQ(header_of(query, gamma).primary_rc, NAP_STATE_CHECK);
    EXPECT_EQ(header_of(query, gamma).secondary_rc, NAP_NODE_NOT_CONFIGURED);
    EXPECT_EQ(header_of(verb<INIT_NODE>(NAP_INIT_NODE), gamma).secondary_rc, 0x554Du);
    Received answer = client->call(query, client->connect("alpha"));
    EXPECT_EQ(answer.as<QUERY_NODE>().active, 0);

    // Defining the node configures it, and those who watch it learn.
    Client other(service);
    other.connect("gamma", {NAP_CONFIG_INDICATION});
    auto define = verb<DEFINE_NODE>(NAP_DEFINE_NODE);
    simnode::put_ebcdic(define.parameters.cp_name, 17, "NET.GAMMA");
    EXPECT_EQ(header_of(define, gamma).primary_rc, NAP_OK);
    EXPECT_EQ(header_of(query, gamma).primary_rc, NAP_OK);
    EXPECT_EQ(header_of(verb<INIT_NODE>(NAP_INIT_NODE), gamma).primary_rc, NAP_OK);
    EXPECT_EQ(other.take_indications().size(), 2u);
}

TEST_F(DomainOfServers, LoggingIsAskedOfTheCentralLogger) {
    Received logger = client->call(verb<HEADER_ONLY>(NAP_QUERY_CENTRAL_LOGGER), 0);
    EXPECT_EQ(logger.as<VCB_HEADER>().primary_rc, NAP_INVALID_VERB); // too short a block
    Bytes block(144);
    vcb_header(block.data())->opcode = NAP_QUERY_CENTRAL_LOGGER;
    logger = client->call(std::span<const NB_BYTE>(block), 0);
    EXPECT_EQ(simnode::local_text(logger.block.data() + 16, 128), "alpha");
    Bytes query(16);
    vcb_header(query.data())->opcode = NAP_QUERY_CENTRAL_LOGGING;
    const std::span<const NB_BYTE> bytes(query);
    Received answer = client->call(bytes, client->connect("beta"));
    EXPECT_EQ(answer.as<VCB_HEADER>().secondary_rc, NAP_NOT_CENTRAL_LOGGER);
    const NB_HANDLE alpha = client->connect("alpha");
    vcb_header(query.data())->opcode = NAP_SET_CENTRAL_LOGGING;
    query[12] = 1;
    EXPECT_EQ(client->call(bytes, alpha).as<VCB_HEADER>().primary_rc, NAP_OK);
    vcb_header(query.data())->opcode = NAP_QUERY_CENTRAL_LOGGING;
    query[12] = 0;
    EXPECT_EQ(client->call(bytes, alpha).block[12], 1);
}

TEST_F(DomainOfServers, BackupsAndServersComeAndGo) {
    const NB_HANDLE network = open(NOF_FILE_SNA_NET);
    EXPECT_EQ(names(NAP_QUERY_SNA_NET, network), (std::vector<std::string>{"alpha", "beta"}));
    Client other(service);
    auto file = verb<OPEN_FILE>(NAP_OPEN_FILE);
    file.file_info.requested_role = NOF_FILE_CONFIGURATION;
    const NB_HANDLE configuration = other.call(file, 0).as<OPEN_FILE>().file_handle;
    other.register_for(NAP_CONFIG_INDICATION, configuration, 77);
    other.register_for(NAP_SERVER_INDICATION, 0, 78);

    auto backup = verb<BACKUP_SERVER>(NAP_ADD_BACKUP);
    simnode::put_text(backup.server_name, sizeof backup.server_name, "gamma");
    EXPECT_EQ(header_of(backup, network).primary_rc, NAP_OK);
    for (const char* name : {"alpha", "beta"}) {
        backup.header.opcode = NAP_DELETE_BACKUP;
        simnode::put_text(backup.server_name, sizeof backup.server_name, name);
        EXPECT_EQ(header_of(backup, network).primary_rc, NAP_OK);
    }
    simnode::put_text(backup.server_name, sizeof backup.server_name, "gamma");
    EXPECT_EQ(header_of(backup, network).secondary_rc, NAP_LAST_BACKUP);
    auto told = other.take_indications();
    ASSERT_EQ(told.size(), 3u);
    EXPECT_EQ(told[0].opcode(), NAP_ADD_BACKUP);
    EXPECT_EQ(told[0].header.correlator, 77u);

    Client script(service);
    ASSERT_EQ(script.control("server gamma down"), 0);
    ASSERT_EQ(script.control("server gamma up"), 0);
    told = other.take_indications();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told[0].as<SERVER_INDICATION>().status, 0u);
    EXPECT_EQ(told[1].as<SERVER_INDICATION>().status, 1u);
    EXPECT_EQ(told[1].as<SERVER_INDICATION>().flags, 0x2004u); // in the file, not this machine
    ASSERT_EQ(script.control("lose-file configuration"), 0);
    told = other.take_indications();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].as<NOF_STATUS_INDICATION>().handle, configuration);
}

} // namespace
} // namespace simnode_test
