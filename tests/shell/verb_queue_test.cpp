#include <gtest/gtest.h> // before X, whose macros would break it

#include "shell/verb_queue.h"

#include "nof/connectivity.h"
#include "nof/node.h"
#include "shell/exit_record.h"
#include "shell/globals.h"

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

// The node operator library of these tests: it keeps what is sent, completes at once what it is
// told to, and the tests answer the rest when they like.
namespace {

struct SENT {
    NB_HANDLE target;
    void* vcb;
    NB_ULONG correlator;
};
std::vector<SENT> outstanding;
std::set<NB_USHORT> immediate;

void answer(void* vcb, NB_USHORT primary = NAP_OK, NB_ULONG secondary = 0) {
    const auto sent = std::ranges::find(outstanding, vcb, &SENT::vcb);
    ASSERT_NE(sent, outstanding.end());
    const SENT copy = *sent;
    outstanding.erase(sent);
    vcb_header(vcb)->primary_rc = primary;
    vcb_header(vcb)->secondary_rc = secondary;
    vga_nof_verb_callback(copy.target, copy.vcb, copy.correlator, 0);
}

} // namespace

NB_USHORT nof_async_version(int level, NB_HANDLE target, void* vcb, NOF_CALLBACK,
                            NB_ULONG correlator) {
    EXPECT_EQ(level, NOF_API_LEVEL);
    if (immediate.contains(vcb_header(vcb)->opcode)) {
        return NOF_COMPLETED;
    }
    outstanding.push_back({target, vcb, correlator});
    return NOF_IN_PROGRESS;
}
void vpm_asm_use_xt_sched(XtAppContext, VPM_ADD_INPUT, VPM_REMOVE_INPUT) {}
void vpm_set_io_limit(int) {}
void nof_terminate() {}
int vsm_is_client_server() {
    return 0;
}

namespace {

std::vector<NB_ULONG> completed; // correlators, in order

void note(VGA_COMPLETION* completion) {
    completed.push_back(completion->corr);
}
void note_other(VGA_COMPLETION* completion) {
    completed.push_back(completion->corr + 1000);
}

struct VerbQueue : testing::Test {
    void SetUp() override {
        XtToolkitInitialize();
        gvga_appcontext = XtCreateApplicationContext();
        outstanding.clear();
        immediate.clear();
        completed.clear();
        gvga_exit_code = 0;
        gvga_dispatch = {};
        vga_init_verb_queues();
        in_use = vga_allocations_in_use();
    }
    void TearDown() override {
        vga_free_verb_queues();
        EXPECT_EQ(vga_allocations_in_use(), in_use) << "blocks or entries lost";
        XtDestroyApplicationContext(gvga_appcontext);
        gvga_exit_code = 0;
        gvga_dispatch = {};
    }

    static void* define_port(NB_HANDLE target, NB_ULONG corr, VGA_CALLBACK callback = note) {
        void* block = vga_new_vcb<DEFINE_PORT>(NAP_DEFINE_PORT);
        EXPECT_TRUE(vga_queue_verb(target, block, corr, callback));
        return block;
    }
    static void drain() {
        while (auto* entry =
                   static_cast<VGA_QUEUE_ENTRY*>(nba_get_q_head(&gvga_immediate_nof_queue))) {
            vga_nof_verb_callback(entry->target, entry->vcb, entry->corr, 0);
        }
    }

    std::size_t in_use = 0;
};

using CORRELATORS = std::vector<NB_ULONG>;

TEST_F(VerbQueue, APurgedVerbHoldsItsTargetBackUntilItCompletes) {
    void* first = define_port(1, 11);
    void* second = define_port(1, 11);
    vga_purge_verb_queue(0, 0, nullptr, 11, nullptr);
    void* waiting = define_port(1, 12);
    void* elsewhere = define_port(2, 13);
    ASSERT_EQ(outstanding.size(), 3u)
        << "the verb of the purged target waits, the other target does not";
    answer(elsewhere);
    answer(first);
    EXPECT_EQ(outstanding.size(), 1u) << "one barrier is left";
    answer(second);
    answer(waiting);
    EXPECT_EQ(completed, (CORRELATORS{13, 12}));
}

TEST_F(VerbQueue, APurgedDefinitionThatSucceedsGoesTheWayOfOtherOperators) {
    static NB_ULONG owner;
    gvga_dispatch.node_config = note_other;
    gvga_dispatch.owner = [](const VGA_COMPLETION* completion) {
        EXPECT_EQ(1u, completion->handle);
        return owner;
    };
    const auto purged = [] {
        void* block = define_port(1, 7);
        vga_purge_verb_queue(0, 0, nullptr, 7, nullptr);
        return block;
    };
    owner = 5;
    answer(purged());
    EXPECT_EQ(std::vector<NB_ULONG>{1005}, completed);
    answer(purged(), NAP_PARAMETER_CHECK); // the node did not take it
    owner = 0;                             // the node has gone
    answer(purged());
    EXPECT_EQ(1u, completed.size());
}

TEST_F(VerbQueue, DisconnectPassesABarrier) {
    define_port(1, 11);
    vga_purge_verb_queue(1, 0, nullptr, 0, nullptr);
    void* disconnect = vga_new_vcb<DISCONNECT_NODE>(NAP_DISCONNECT_NODE);
    ASSERT_TRUE(vga_queue_verb(1, disconnect, 12, note));
    EXPECT_EQ(outstanding.size(), 2u);
}

TEST_F(VerbQueue, PurgingTakesWaitingVerbsAwayAtOnce) {
    void* barrier = define_port(1, 11);
    vga_purge_verb_queue(1, 0, nullptr, 0, nullptr);
    define_port(1, 12);
    define_port(1, 13);
    vga_purge_verb_queue(1, NAP_DEFINE_PORT, nullptr, 12, note);
    answer(barrier);
    ASSERT_EQ(outstanding.size(), 1u);
    EXPECT_EQ(outstanding[0].correlator, 13u);
}

TEST_F(VerbQueue, EachCriterionOfAPurgeCounts) {
    struct ROW {
        NB_HANDLE target;
        NB_USHORT opcode;
        NB_ULONG corr;
        VGA_CALLBACK callback;
        CORRELATORS expected;
    };
    const ROW rows[] = {
        {0, 0, 0, nullptr, {}},
        {1, 0, 0, nullptr, {1012}},
        {0, NAP_DEFINE_PORT, 0, nullptr, {}},
        {0, NAP_DEFINE_LS, 0, nullptr, {11, 1012}},
        {0, 0, 11, nullptr, {1012}},
        {0, 0, 0, note_other, {11}},
        {2, 0, 11, nullptr, {11, 1012}},
    };
    for (const ROW& row : rows) {
        completed.clear();
        void* first = define_port(1, 11, note);
        void* second = define_port(2, 12, note_other);
        vga_purge_verb_queue(row.target, row.opcode, nullptr, row.corr, row.callback);
        answer(first);
        answer(second);
        EXPECT_EQ(completed, row.expected);
    }
}

TEST_F(VerbQueue, AVerbCompletedAtOnceWaitsForTheMainLoop) {
    immediate.insert(NAP_DEFINE_PORT);
    define_port(1, 11);
    EXPECT_TRUE(completed.empty());
    EXPECT_TRUE(nba_q_empty(&gvga_nof_queue));
    EXPECT_NE(XtAppPending(gvga_appcontext) & XtIMTimer, 0u) << "a timer wakes the loop";
    vga_purge_verb_queue(0, 0, nullptr, 0, nullptr);
    drain();
    EXPECT_EQ(completed, (CORRELATORS{11})) << "the immediate queue is not purged";
}

TEST_F(VerbQueue, VerbsReleasedByABarrierMayCompleteAtOnceAndSendMore) {
    void* barrier = define_port(1, 11);
    vga_purge_verb_queue(1, 0, nullptr, 0, nullptr);
    immediate.insert(NAP_DEFINE_PORT);
    // The first released verb's callback sends a further one and purges the last.
    define_port(1, 12, [](VGA_COMPLETION* completion) {
        note(completion);
        define_port(1, 15);
        vga_purge_verb_queue(0, 0, nullptr, 14, nullptr);
    });
    define_port(1, 13);
    define_port(1, 14);
    answer(barrier);
    EXPECT_EQ(completed, (CORRELATORS{12, 13}));
    drain();
    EXPECT_EQ(completed, (CORRELATORS{12, 13, 15}));
}

TEST_F(VerbQueue, ShutdownAnswersRunNoCallback) {
    answer(define_port(1, 11), NAP_UNSUCCESSFUL, NAP_SYSTEM_STOPPING);
    EXPECT_TRUE(completed.empty());
    answer(define_port(1, 12), NAP_UNSUCCESSFUL, NAP_TARGET_GONE);
    EXPECT_EQ(completed, (CORRELATORS{12}));
}

TEST_F(VerbQueue, LossOfTheLinkEndsTheRunWhateverTheBlock) {
    for (const NB_USHORT opcode : {NAP_DEFINE_PORT, NAP_LS_INDICATION, NAP_NOF_STATUS_INDICATION}) {
        gvga_exit_code = 0;
        VCB_HEADER block{opcode, 0, 0, NAP_INDICATION, 0, NAP_LINK_LOST};
        vga_nof_verb_callback(0, &block, 0, 0);
        EXPECT_EQ(gvga_exit_code, VGA_EXIT_INTERNAL);
    }
}

TEST_F(VerbQueue, BlocksOfOthersThatConcernNobodyGoNowhere) {
    const auto wrong = [](VGA_COMPLETION*, void*) { ADD_FAILURE(); };
    const auto wrong_verb = [](VGA_COMPLETION*) { ADD_FAILURE(); };
    gvga_dispatch = {wrong, wrong, wrong, wrong, wrong, wrong_verb, wrong_verb, wrong_verb};
    for (const int opcode : {0x1014, 0x4001, 0xF007}) {
        VCB_HEADER block{static_cast<NB_USHORT>(opcode), 0, 0, NAP_INDICATION, 0, 0};
        vga_nof_verb_callback(0, &block, 0, 0);
    }
}

TEST_F(VerbQueue, ACompletionNobodyWaitsForIsReported) {
    const std::size_t before = nba_assert_count();
    auto* block = vga_new_vcb<DEFINE_PORT>(NAP_DEFINE_PORT);
    vga_nof_verb_callback(1, block, 0, 0);
    EXPECT_EQ(nba_assert_count(), before + 1);
    EXPECT_STREQ(nba_last_assert(), "FALSE");
    vga_free_vcb(block);
}

TEST_F(VerbQueue, QueryBuffersGoWithTheirBlocks) {
    gvga_querybuf_size = 2048;
    auto* query = vga_new_vcb<QUERY_PORT>(NAP_QUERY_PORT);
    query->list.buffer = vga_get_querybuf(0);
    ASSERT_TRUE(vga_queue_verb(1, query, 11, note));
    answer(query);
    auto* other = vga_new_vcb<QUERY_PORT>(NAP_QUERY_PORT);
    other->list.buffer = vga_get_querybuf(632);
    ASSERT_TRUE(vga_queue_verb(1, other, 12, note)); // left for the end of the run
    gvga_querybuf_size = 4096;
}

TEST_F(VerbQueue, WithoutMemoryTheBlockStaysWithTheCaller) {
    auto* block = vga_new_vcb<DEFINE_PORT>(NAP_DEFINE_PORT);
    vga_fail_allocation(1);
    EXPECT_FALSE(vga_queue_verb(1, block, 11, note));
    vga_fail_allocation(0);
    EXPECT_TRUE(outstanding.empty());
    vga_free_vcb(block);
}

// Random verbs, purges and answers: nothing waits without a barrier, every unpurged verb's callback
// runs exactly once.
TEST_F(VerbQueue, RandomTrafficLosesNothing) {
    std::mt19937 random(42);
    std::set<NB_ULONG> expected;
    NB_ULONG next = 1;
    for (int step = 0; step < 20'000; ++step) {
        const auto choice = random() % 10;
        if (choice < 4) {
            expected.insert(next);
            define_port(1 + random() % 3, next++);
        } else if (choice < 9 && !outstanding.empty()) {
            answer(outstanding[random() % outstanding.size()].vcb);
        } else if (choice == 9 && next > 1) {
            const NB_ULONG corr = 1 + random() % next;
            vga_purge_verb_queue(0, 0, nullptr, corr, nullptr);
            expected.erase(corr);
            for (const NB_ULONG done : completed) {
                if (done == corr) {
                    expected.insert(corr);
                }
            }
        }
    }
    while (!outstanding.empty()) {
        answer(outstanding.front().vcb);
    }
    EXPECT_TRUE(nba_q_empty(&gvga_nof_queue));
    EXPECT_EQ(completed.size(), expected.size());
    EXPECT_EQ(std::set(completed.begin(), completed.end()), expected);
}

} // namespace
