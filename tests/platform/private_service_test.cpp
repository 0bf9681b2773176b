// Before the X headers, whose macros it does not stand.
#include <gtest/gtest.h>

#include "fake_service.h"
#include "nof/connectivity.h"
#include "nof/nof.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace {

// This test program, started as the node service would be: serves one verb, then ends with its life
// line.
int run_as_service(char** arguments) {
    const int ready = std::atoi(arguments[4]);
    const int life_line = std::atoi(arguments[6]);
    const int listener = listen_at(arguments[2]);
    if (listener < 0 || write(ready, "ready\n", 6) != 6) {
        return 1;
    }
    serve(listener, false, [life_line](FakePeer& peer) {
        const FakeRequest request = peer.receive();
        peer.answer(request, 0, static_cast<NB_ULONG>(getpid()));
        char byte;
        peer.require(read(life_line, &byte, 1) == 0);
    });
}

class PrivateService : public testing::Test {
protected:
    void SetUp() override {
        directory = "/tmp/tessaly-test-XXXXXX";
        ASSERT_NE(mkdtemp(directory.data()), nullptr);
        setenv("TMPDIR", directory.c_str(), 1);
        unsetenv("TESSALY_NODE_SOCKET");
        XtToolkitInitialize();
        app = XtCreateApplicationContext();
        answered = false;
    }
    void TearDown() override {
        nof_terminate();
        XtDestroyApplicationContext(app);
        EXPECT_TRUE(std::filesystem::is_empty(directory)); // whatever happened
        std::filesystem::remove(directory);
        unsetenv("TMPDIR");
        unsetenv("TESSALY_SIMNODE");
    }
    NB_USHORT issue() {
        vpm_asm_use_xt_sched(app, XtAppAddInput, XtRemoveInput);
        block = {};
        block.header.opcode = NAP_START_DLC;
        return nof_async_version(
            NOF_API_LEVEL, 0, &block, [](NB_HANDLE, void*, NB_ULONG, int) { answered = true; }, 0);
    }
    static inline bool answered;
    std::string directory;
    XtAppContext app;
    START_DLC block;
};

TEST_F(PrivateService, ServesAndEndsWithTheLibrary) {
    setenv("TESSALY_SIMNODE", "/proc/self/exe", 1);
    EXPECT_EQ(issue(), NOF_IN_PROGRESS);
    // Nothing is left even if this process is killed now.
    EXPECT_TRUE(std::filesystem::is_empty(directory));
    while (!answered) {
        XtAppProcessEvent(app, XtIMAll);
    }
    nof_terminate();
    EXPECT_EQ(kill(static_cast<pid_t>(block.header.secondary_rc), 0), -1);
}

TEST_F(PrivateService, AServiceThatCannotStartIsALostLink) {
    for (const char* program : {"/bin/false", "/nonexistent"}) {
        setenv("TESSALY_SIMNODE", program, 1);
        EXPECT_EQ(issue(), NOF_COMPLETED);
        EXPECT_EQ(block.header.primary_rc, NAP_INDICATION);
        EXPECT_EQ(block.header.secondary_rc, NAP_LINK_LOST);
        nof_terminate();
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count == 7 && std::string(arguments[1]) == "--socket") {
        return run_as_service(arguments);
    }
    setenv("TESSALY_LOG", "/dev/null", 1);
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
