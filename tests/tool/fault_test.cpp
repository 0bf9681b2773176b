#include "tool/fixture.h"

#include "common/alloc.h"
#include "kit/control.h"
#include "kit/domain.h"

#include <sys/wait.h>
#include <unistd.h>

// What the console does when the node service fails it: it ends with a message that says so, and
// leaves nothing behind.
namespace {

using kit::CONSOLE;
using kit::SERVICE;

constexpr const char* build_verbs[] = {
    "NAP_OPEN_FILE",
    "NAP_SET_PROCESSING_MODE",
    "NAP_QUERY_CENTRAL_LOGGER",
    "NAP_REGISTER_INDICATION_SINK",
    "NAP_QUERY_NODE_ALL",
    "NAP_CONNECT_NODE",
    "NAP_QUERY_NODE_LIMITS",
    "NAP_QUERY_NODE",
    "NAP_QUERY_DLC",
    "NAP_QUERY_PORT",
    "NAP_QUERY_LS",
    "NAP_QUERY_PU",
    "NAP_QUERY_LU_0_TO_3",
    "NAP_QUERY_LOCAL_LU",
    "NAP_QUERY_PARTNER_LU",
    "NAP_QUERY_MODE",
    "NAP_QUERY_DIRECTORY_ENTRY",
    "NAP_QUERY_PARTNER_LU_DEFINITION",
    "NAP_QUERY_COS",
    "NAP_QUERY_DEFAULTS",
};

struct FAULT {
    std::string name;
    std::string before = {}; // a command of the node that comes before the start, or none
    const char* verb = "";   // what follows comes while this one is outstanding; none: once built
    std::string then = {};   // a command of the node, "end", or none
    NB_LONG code = VGA_EXIT_INTERNAL;
    int message = 606;
};

void PrintTo(const FAULT& fault, std::ostream* out) {
    *out << fault.name;
}

std::vector<FAULT> faults() {
    std::vector<FAULT> all = {
        {.name = "absent", .before = "end"},
        {.name = "end", .then = "end"},
        {.name = "link_loss", .then = "link-loss"},
        {.name = "drop", .then = "drop"},
    };
    for (const char* verb : build_verbs) {
        const std::string text = verb;
        all.push_back({"end_in_" + text, "hold " + text, verb, "end"});
        if (text != "NAP_CONNECT_NODE") { // a node that cannot be connected is back level
            all.push_back({"refused_" + text, "fail " + text + " 1 0x0100 0x1234", "", "",
                           VGA_EXIT_QUERY, text == "NAP_OPEN_FILE" ? 610 : 227});
        }
    }
    for (const char* damage : {"half-frame", "bad-length", "unknown-opcode"}) {
        all.push_back({damage, std::string("corrupt ") + damage + " NAP_QUERY_LS"});
    }
    for (const char* damage :
         {"entry-length-zero NAP_QUERY_LS", "entry-length-overlong NAP_QUERY_LU_0_TO_3",
          "entry-count NAP_QUERY_PORT", "entry-count NAP_QUERY_MODE"}) {
        all.push_back({damage, std::string("corrupt ") + damage, "", "", VGA_EXIT_QUERY, 227});
    }
    return all;
}

class Fault : public testing::TestWithParam<FAULT> {};

TEST_P(Fault, EndsTheRunInWords) {
    const FAULT& fault = GetParam();
    SERVICE service;
    const auto run = [&](const std::string& command) {
        command == "end" ? service.kill() : void(service.control(command));
    };
    if (!fault.before.empty()) {
        run(fault.before);
    }
    CONSOLE console(service);
    ASSERT_TRUE(console.started());
    if (!fault.then.empty()) {
        kit::CONTROL control(service.socket());
        ASSERT_TRUE(*fault.verb == '\0' ? console.wait_built() : console.wait([&] {
            return control.run("journal").find(fault.verb) != std::string::npos;
        }));
        run(fault.then);
    }
    console.wait([] { return gvga_exit_code != 0; });
    EXPECT_EQ(gvga_exit_code, fault.code);
    const std::string text = tool::Tool::start_of(fault.message);
    std::string message;
    EXPECT_EQ(console.end(&message), 0) << "the operator has seen the message, so the status is 0";
    EXPECT_TRUE(message.starts_with(text)) << message;
    EXPECT_EQ(vga_allocations_in_use(), 0u);
    EXPECT_EQ(nba_handle_count(), 0u);
    EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
}

INSTANTIATE_TEST_SUITE_P(Each, Fault, testing::ValuesIn(faults()), [](const auto& info) {
    std::string name = info.param.name;
    std::ranges::replace_if(
        name, [](char c) { return c == '-' || c == ' '; }, '_');
    return name;
});

TEST(NodeFault, ABackLevelNodeCountsAsBuilt) {
    SERVICE service;
    service.control("fail NAP_CONNECT_NODE 1 0x0200 0x1234");
    CONSOLE console(service);
    ASSERT_TRUE(console.started());
    ASSERT_TRUE(console.wait_built());
    EXPECT_EQ(ntl_avl_first<vga_node>(gvga_system->node_tree)->node_state,
              VGA_NODE_STATE_BACK_LEVEL);
    EXPECT_EQ(gvga_exit_code, 0);
}

// What happens to a domain while a verb of its build is outstanding.
struct CHANGE {
    const char* verb;
    const char* command;
};

void PrintTo(const CHANGE& change, std::ostream* out) {
    *out << change.command << " in " << change.verb;
}

class Change : public testing::TestWithParam<CHANGE> {};

TEST_P(Change, LeavesABuildThatComesToItsEnd) {
    SERVICE service(kit::domain_options({{"alpha", kit::DOMAIN_NODE::UNCONFIGURED}, {"beta"}},
                                        {"beta"}, "beta"));
    service.control(std::string("hold ") + GetParam().verb);
    CONSOLE console(service);
    ASSERT_TRUE(console.started());
    kit::CONTROL control(service.socket());
    const auto sent = [&](const char* verb) {
        std::size_t count = 0;
        const std::string journal = control.run("journal");
        for (std::size_t at = 0; (at = journal.find(verb, at)) != std::string::npos; ++at) {
            ++count;
        }
        return count;
    };
    ASSERT_TRUE(console.wait([&] { return sent(GetParam().verb) != 0; }));
    control.run(GetParam().command);
    console.wait([] { return XtAppPending(gvga_appcontext) == 0; });
    control.run("release");
    ASSERT_TRUE(console.wait_built()) << std::hex << gvga_system->build_flags;
    EXPECT_TRUE(vga_check_system_startup());
    EXPECT_EQ(sent("NAP_CONNECT_NODE"), 2u);
    EXPECT_EQ(gvga_exit_code, 0);
    EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
}

INSTANTIATE_TEST_SUITE_P(
    Each, Change,
    testing::Values(CHANGE{"NAP_QUERY_DLC", "kill-node beta"},
                    CHANGE{"NAP_QUERY_CPIC_SIDE_INFO", "lose-file configuration"},
                    CHANGE{"NAP_QUERY_EMULATOR_USER_DEF", "lose-file configuration"},
                    CHANGE{"NAP_QUERY_EMULATOR_USER_DEF", "master beta"},
                    CHANGE{"NAP_QUERY_NODE_ALL", "server beta up"},
                    CHANGE{"NAP_QUERY_SNA_NET", "lose-file network"}));

// Starts a run of a small build whose nth allocation fails, in a child process.
pid_t start_without_memory(const SERVICE& service, unsigned long nth) {
    const pid_t child = fork();
    if (child == 0) {
        vga_fail_allocation(nth);
        int verdict = 0;
        {
            CONSOLE console(service);
            // The constructor has run start-up under the failing allocator when nth is small.
            console.wait([] { return gvga_exit_code != 0 || gvga_first_dialog == nullptr; });
            const bool built = gvga_exit_code == 0;
            const NB_LONG code = gvga_exit_code;
            if (built) {
                gvga_exit_code = VGA_EXIT_ORDERLY;
            }
            vga_fail_allocation(0); // the message box itself needs memory
            std::string message;
            const int status = console.end(&message);
            if (built) {
                verdict = 1;
            } else if (code != VGA_EXIT_INTERNAL && code != VGA_EXIT_START) {
                verdict = 2;
            } else if (status == 0 && message.empty()) {
                verdict = 3;
            } else if (vga_allocations_in_use() != 0) {
                verdict = 4;
            } else if (nba_handle_count() != 0) {
                verdict = 5;
            }
        }
        std::fflush(nullptr);
        _exit(verdict);
    }
    return child;
}

// How it ended: 0 in good order, 1 nothing failed.
int verdict_of(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 100 + WTERMSIG(status);
}

TEST(Memory, EveryAllocationOfASmallBuildMayFail) {
    SERVICE service({"--generate", "port=1,ls=1,pu=1,lu03=2,lu62=1"});
#ifdef __SANITIZE_ADDRESS__
    constexpr unsigned long step = 11;
#else
    constexpr unsigned long step = 1;
#endif
    bool built = false;
    unsigned long nth = 1;
    for (; !built && nth < 5000; nth += 2 * step) {
        // Two at once, for each waits for the X server half of its time.
        const pid_t children[] = {start_without_memory(service, nth),
                                  start_without_memory(service, nth + step)};
        for (const pid_t child : children) {
            const int verdict = verdict_of(child);
            EXPECT_LE(verdict, 1) << "allocation " << nth << " or " << nth + step;
            built |= verdict != 0;
        }
    }
    EXPECT_LT(nth, 5000u);
    EXPECT_GT(nth, 100u) << "the build makes more allocations than that";
}

} // namespace
