#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "common/alloc.h"
#include "shell/messages.h"
#include "store/store.h"

#include <cstdlib>
#include <iterator>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

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

// The first words of a message's text, up to its first argument or line end.
std::string start_of(int number) {
    const std::string text = gvga_messages[number];
    return text.substr(0, text.find_first_of("%\n"));
}

void expect_clean_end(CONSOLE& console, int message_number) {
    const std::string expected = start_of(message_number);
    std::string message;
    EXPECT_EQ(console.end(&message), 0) << "the operator has seen the message, so the status is 0";
    EXPECT_EQ(message.substr(0, expected.size()), expected);
    EXPECT_EQ(vga_allocations_in_use(), 0u);
    EXPECT_EQ(nba_handle_count(), 0u);
    EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
}

class BuildFault : public testing::TestWithParam<const char*> {};

TEST_P(BuildFault, TheServiceDiesWhileTheVerbIsOutstanding) {
    SERVICE service;
    service.control(std::string("hold ") + GetParam());
    CONSOLE console(service);
    ASSERT_TRUE(console.started());
    ASSERT_TRUE(console.wait(
        [&] { return service.control("journal").find(GetParam()) != std::string::npos; }));
    service.kill();
    console.wait([] { return gvga_exit_code != 0; });
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_INTERNAL);
    expect_clean_end(console, 606);
}

// All but the connect verb: a node that cannot be connected is back level.
class RefusedVerb : public testing::TestWithParam<const char*> {};

TEST_P(RefusedVerb, EndsTheRunInWords) {
    SERVICE service;
    service.control(std::string("fail ") + GetParam() + " 1 0x0100 0x1234");
    CONSOLE console(service);
    ASSERT_TRUE(console.started());
    console.wait([] { return gvga_exit_code != 0; });
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_QUERY);
    expect_clean_end(console, gvga_exit_subcode == NAP_OPEN_FILE ? 610 : 227);
}

std::string parameter_name(const testing::TestParamInfo<const char*>& info) {
    return info.param;
}

std::vector<const char*> refusable_verbs() {
    std::vector<const char*> verbs(std::begin(build_verbs), std::end(build_verbs));
    std::erase_if(verbs, [](std::string_view verb) { return verb == "NAP_CONNECT_NODE"; });
    return verbs;
}

INSTANTIATE_TEST_SUITE_P(Verbs, BuildFault, testing::ValuesIn(build_verbs), parameter_name);
INSTANTIATE_TEST_SUITE_P(Verbs, RefusedVerb, testing::ValuesIn(refusable_verbs()), parameter_name);

struct DAMAGE {
    const char* name;
    const char* verb;
    NB_LONG code; // what the run ends with
};
class DamagedAnswer : public testing::TestWithParam<DAMAGE> {};

TEST_P(DamagedAnswer, EndsTheRunAndNothingElse) {
    SERVICE service;
    service.control(std::string("corrupt ") + GetParam().name + " " + GetParam().verb);
    CONSOLE console(service);
    ASSERT_TRUE(console.started());
    console.wait([] { return gvga_exit_code != 0; });
    EXPECT_EQ(gvga_exit_code, GetParam().code);
    expect_clean_end(console, GetParam().code == VGA_EXIT_QUERY ? 227 : 606);
}

constexpr DAMAGE damages[] = {
    {"half-frame", "NAP_QUERY_LS", VGA_EXIT_INTERNAL},
    {"bad-length", "NAP_QUERY_LS", VGA_EXIT_INTERNAL},
    {"unknown-opcode", "NAP_QUERY_LS", VGA_EXIT_INTERNAL},
    {"entry-length-zero", "NAP_QUERY_LS", VGA_EXIT_QUERY},
    {"entry-length-overlong", "NAP_QUERY_LU_0_TO_3", VGA_EXIT_QUERY},
    {"entry-count", "NAP_QUERY_PORT", VGA_EXIT_QUERY},
    {"entry-count", "NAP_QUERY_MODE", VGA_EXIT_QUERY},
};
INSTANTIATE_TEST_SUITE_P(Damages, DamagedAnswer, testing::ValuesIn(damages), [](const auto& info) {
    std::string name = std::string(info.param.name) + "_" + info.param.verb;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

class LaterFault : public testing::TestWithParam<const char*> {};

TEST_P(LaterFault, EndsTheRunInWords) {
    SERVICE service;
    CONSOLE console(service);
    ASSERT_TRUE(console.started() && console.wait_built());
    const std::string command = GetParam();
    command == "kill" ? service.kill() : void(service.control(command));
    console.wait([] { return gvga_exit_code != 0; });
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_INTERNAL);
    expect_clean_end(console, 606);
}

INSTANTIATE_TEST_SUITE_P(Commands, LaterFault, testing::Values("kill", "link-loss", "drop"),
                         [](const auto& info) {
                             std::string name = info.param;
                             std::replace(name.begin(), name.end(), '-', '_');
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

// One run of a small build in a child process, under the failing allocator. 0: it ended in good
// order, 1: nothing failed.
int run_without_memory(const SERVICE& service) {
    const pid_t child = fork();
    if (child == 0) {
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
    for (; !built && nth < 5000; nth += step) {
        vga_fail_allocation(nth);
        const int verdict = run_without_memory(service);
        vga_fail_allocation(0);
        built = verdict == 1;
        ASSERT_LE(verdict, 1) << "allocation " << nth;
    }
    EXPECT_TRUE(built);
    EXPECT_GT(nth, 100u) << "the build makes more allocations than that";
}

} // namespace
