// A store that has followed what happened at a node equals one that is built from the node
// afterwards, record by record and row by row.
#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/control.h"
#include "kit/live_store.h"
#include "kit/random_operator.h"
#include "kit/service.h"

#include "common/alloc.h"
#include "shell/globals.h"
#include "store/build.h"

#include <cstdlib>
#include <unistd.h>
#include <vector>

namespace {

struct Case {
    unsigned seed;
    std::vector<std::string> domain; // options of the simulated node
};

std::ostream& operator<<(std::ostream& out, const Case& one) {
    return out << "seed " << one.seed << " " << (one.domain.empty() ? "demo" : one.domain.back());
}

// A longer course, another one, or one that finds the change that was not followed: by variables of
// the environment.
int setting(const char* variable, int usual) {
    const char* value = std::getenv(variable);
    return value != nullptr ? std::atoi(value) : usual;
}

#ifdef __SANITIZE_ADDRESS__
constexpr int usual_steps = 200;
constexpr int usual_builds = 5;
#else
constexpr int usual_steps = 600;
constexpr int usual_builds = 15;
#endif
const int steps = setting("TESSALY_FOLLOW_STEPS", usual_steps);
const auto builds = static_cast<unsigned>(setting("TESSALY_FOLLOW_BUILDS", usual_builds));
const int steps_between_looks = setting("TESSALY_FOLLOW_EVERY", 25);
const auto other_seed = static_cast<unsigned>(setting("TESSALY_FOLLOW_SEED", 0));

class Follow : public testing::TestWithParam<Case> {
protected:
    std::vector<std::string> since; // the changes since the store was right
    std::set<NB_HANDLE> handles;

    static std::string text(const std::vector<std::string>& lines) {
        std::string all;
        for (const std::string& line : lines) {
            all += line + '\n';
        }
        return all;
    }

    // Compares the store with a fresh one and looks for what is wrong with it in itself.
    void look(const std::string& socket) {
        const kit::STORE_DUMP followed = kit::dump_store();
        const kit::STORE_DUMP fresh = kit::LIVE_STORE::fresh(socket);
        EXPECT_EQ(kit::difference(fresh.text, followed.text), "") << text(since);
        EXPECT_EQ(text(followed.faults), "") << text(since);
        EXPECT_EQ(text(fresh.faults), "") << text(since);
        for (const NB_HANDLE handle : handles) {
            EXPECT_TRUE(followed.handles.contains(handle) || nba_validate_handle(handle) == nullptr)
                << "the handle of a removed record";
        }
        handles = followed.handles;
        since.clear();
    }
};

TEST_P(Follow, AStoreThatFollowsEqualsAFreshOne) {
    const kit::SERVICE service(GetParam().domain);
    const std::size_t asserts = nba_assert_count();
    {
        kit::LIVE_STORE store(service.socket());
        kit::RANDOM_OPERATOR other(service.socket(), GetParam().seed + other_seed);
        for (int i = 0; i < 150; ++i) {
            other.define();
        }
        ASSERT_TRUE(store.build()) << gvga_exit_file << ':' << gvga_exit_line;
        look(service.socket());
        int done = 0;
        for (int i = 1; i <= steps && !HasFailure(); ++i) {
            const std::string command = other.step();
            if (!command.empty()) {
                ++done;
                since.push_back(command);
            }
            if (other.pick(4) != 0) {
                store.poll(); // else the next change comes first
            }
            if (i % steps_between_looks == 0) {
                // The build of a node that does not run lists less than is known of it.
                since.push_back("start node");
                other.control().run("start node");
                ASSERT_TRUE(store.settle()) << text(since);
                look(service.socket());
            }
        }
        EXPECT_GT(done, steps / 3);
        RecordProperty("changes", done);
    }
    EXPECT_EQ(vga_allocations_in_use(), 0u);
    EXPECT_EQ(nba_handle_count(), 0u);
    EXPECT_EQ(nba_assert_count(), asserts) << nba_last_assert();
}

void expect_equals_fresh(const std::string& socket, const std::string& since) {
    const kit::STORE_DUMP followed = kit::dump_store();
    const kit::STORE_DUMP fresh = kit::LIVE_STORE::fresh(socket);
    EXPECT_EQ(kit::difference(fresh.text, followed.text), "") << since;
    EXPECT_TRUE(followed.faults.empty()) << followed.faults.front() << since;
}

// Downstream PUs are announced before the link stations that they name are listed.
TEST(Build, APuAnnouncedEarlyFindsItsPlaceOrGoes) {
    const kit::SERVICE service;
    kit::LIVE_STORE store(service.socket());
    kit::CONTROL control(service.socket());
    control.run("hold NAP_QUERY_LS");
    vga_start_build_system();
    while (control.run("journal").find("NAP_QUERY_LS\"") == std::string::npos) {
        store.poll();
    }
    for (const char* command : {"state downstream_pu DSVAULT active",
                                "define downstream_lu EARLY pu=DSVAULT nau=46 host_lu=PAYMSG",
                                "stop ls LINDENAU", "delete ls LINDENAU", "release", "clear"}) {
        control.run(command);
        store.poll();
    }
    ASSERT_TRUE(store.settle() && store.settle()) << gvga_exit_file << ':' << gvga_exit_line;
    expect_equals_fresh(service.socket(), "");
}

// What changes while a node is being listed is not lost, whether its list has come or not.
TEST(Build, AStoreThatIsBuiltAmongChangesEqualsAFreshOne) {
    for (unsigned seed = 1; seed <= builds && !HasFailure(); ++seed) {
        const kit::SERVICE service;
        kit::LIVE_STORE store(service.socket());
        kit::RANDOM_OPERATOR other(service.socket(), seed + other_seed);
        for (int i = 0; i < 100; ++i) {
            other.define();
        }
        vga_start_build_system();
        std::string since;
        for (int i = 0; i < 60; ++i) {
            const std::string command = other.step();
            since += command + '\n';
            if (command == "stop node") { // of a node that does not run less is listed
                other.control().run("start node");
            }
            for (int polls = other.pick(8); polls > 0; --polls) {
                store.poll();
            }
        }
        other.control().run("start node");
        ASSERT_TRUE(store.settle() && store.settle())
            << std::hex << gvga_exit_subcode << std::dec << ' ' << gvga_exit_file << ':'
            << gvga_exit_line << ' ' << seed << '\n'
            << since;
        expect_equals_fresh(service.socket(), std::to_string(seed) + '\n' + since);
    }
}

// Two consoles, each in a process of its own, with an operator who does things at random at either,
// both at once.
TEST(TwoOperators, BothStoresEqualTheNode) {
    const kit::SERVICE service;
    int done[2]; // the other one's byte says that it has done all it does
    int go[2];   // and this one's that it may look
    ASSERT_EQ(pipe(done), 0);
    ASSERT_EQ(pipe(go), 0);
    const auto operate = [&](unsigned seed, auto&& meet) {
        kit::LIVE_STORE store(service.socket());
        kit::RANDOM_OPERATOR hand(service.socket(), seed + other_seed);
        bool sound = store.build();
        meet();
        for (int i = 0; i < 4 * steps && sound; ++i) {
            hand.step();
            store.poll();
        }
        hand.control().run("start node");
        meet();
        // What another operator stopped may leave a console something to stop, too.
        sound = sound && store.settle();
        meet();
        sound = sound && store.settle();
        EXPECT_EQ(gvga_exit_code, 0)
            << gvga_exit_subcode << ' ' << gvga_exit_file << ':' << gvga_exit_line;
        expect_equals_fresh(service.socket(), std::to_string(seed));
        return sound && !testing::Test::HasFailure();
    };
    char byte = 0;
    const pid_t child = fork();
    if (child == 0) {
        gvga_appcontext = nullptr; // an event loop of its own
        const bool sound = operate(101, [&] {
            EXPECT_EQ(write(done[1], "d", 1), 1);
            EXPECT_EQ(read(go[0], &byte, 1), 1);
        });
        _exit(sound ? 0 : 1);
    }
    EXPECT_TRUE(operate(202, [&] {
        EXPECT_EQ(read(done[0], &byte, 1), 1);
        EXPECT_EQ(write(go[1], "g", 1), 1);
    }));
    EXPECT_EQ(kit::wait_for(child, std::chrono::seconds(60)), 0);
    for (const int fd : {done[0], done[1], go[0], go[1]}) {
        close(fd);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Domains, Follow,
    testing::Values(Case{1, {}}, Case{2, {"--generate", "lu03=12,lu62=4,mode_definition=3"}},
                    Case{3, {"--generate", "port=2"}}, Case{4, {}}, Case{6, {}},
                    Case{7, {"--generate", "ls=3"}}, Case{8, {}},
                    Case{9, {"--generate", "lu03=30"}}, Case{10, {}}, Case{11, {}}, Case{12, {}},
                    Case{5, {"--generate", "tn_session=9,user_session=12,tp=5"}}));

} // namespace
