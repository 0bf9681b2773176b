// Before the X headers, whose macros it does not stand.
#include <gtest/gtest.h>

#include "fake_service.h"
#include "nof/connectivity.h"
#include "nof/nof.h"
#include "nof/tn3270.h"
#include "nof/user.h"

#include <cstring>
#include <unistd.h>

namespace {

struct Delivery {
    NB_HANDLE handle;
    void* vcb;
    NB_USHORT opcode;
    NB_USHORT primary;
    NB_ULONG secondary;
    NB_ULONG correlator;
};
std::vector<Delivery> deliveries;
std::function<void(const Delivery&)> reaction;

void callback(NB_HANDLE handle, void* vcb, NB_ULONG correlator, int) {
    const VCB_HEADER* header = vcb_header(vcb);
    deliveries.push_back(
        {handle, vcb, header->opcode, header->primary_rc, header->secondary_rc, correlator});
    if (reaction) {
        reaction(deliveries.back());
    }
}

class Nof : public testing::Test {
protected:
    static void SetUpTestSuite() {
        XtToolkitInitialize();
        app = XtCreateApplicationContext();
    }
    void SetUp() override { vpm_asm_use_xt_sched(app, XtAppAddInput, XtRemoveInput); }
    static void TearDownTestSuite() { XtDestroyApplicationContext(app); }
    void TearDown() override {
        nof_terminate();
        deliveries.clear();
        reaction = nullptr;
        vpm_set_io_limit(10);
    }

    // Runs the event loop until that much was delivered, or for some seconds.
    static void pump(std::size_t wanted) {
        bool late = false;
        const XtIntervalId timer = XtAppAddTimeOut(
            app, 20000, [](XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; },
            &late);
        while (deliveries.size() < wanted && !late) {
            XtAppProcessEvent(app, XtIMAll);
        }
        if (!late) {
            XtRemoveTimeOut(timer);
        }
        ASSERT_EQ(deliveries.size(), wanted);
    }
    // Issues a verb and forgets its answer.
    static void issue_first(void* vcb) {
        nof_async_version(NOF_API_LEVEL, 1, vcb, callback, 0);
        pump(1);
        deliveries.clear();
    }
    static bool idle() { return XtAppPending(app) == 0; }

    static XtAppContext app;
};
XtAppContext Nof::app;

template <typename T> T verb(NB_USHORT opcode) {
    T block{};
    vcb_header(&block)->opcode = opcode;
    return block;
}

NB_USHORT issue(void* vcb, NB_ULONG correlator, NB_HANDLE target = 1) {
    return nof_async_version(NOF_API_LEVEL, target, vcb, callback, correlator);
}

void expect_link_lost(const void* vcb) {
    EXPECT_EQ(vcb_header(vcb)->primary_rc, NAP_INDICATION);
    EXPECT_EQ(vcb_header(vcb)->secondary_rc, NAP_LINK_LOST);
}

TEST_F(Nof, AnswersReachTheIssuerOfTheirRequest) {
    FakeService service(
        [](FakePeer& peer) {
            const FakeRequest first = peer.receive();
            const FakeRequest second = peer.receive();
            peer.require(first.header.target == 7 && second.header.buffer_capacity == 16);
            peer.answer(second, 0, 0, "0123456789");
            peer.answer(first, NAP_STATE_CHECK, 0x55);
        },
        true);
    EXPECT_TRUE(vsm_is_client_server());

    auto start = verb<START_LS>(NAP_START_LS);
    auto query = verb<QUERY_DLC>(NAP_QUERY_DLC);
    char buffer[24];
    std::memset(buffer, '#', sizeof buffer);
    query.list.buffer = buffer;
    query.list.buffer_size = 16;
    EXPECT_EQ(issue(&start, 11, 7), NOF_IN_PROGRESS);
    EXPECT_EQ(issue(&query, 22), NOF_IN_PROGRESS);
    pump(2);
    EXPECT_EQ(deliveries[0].vcb, &query);
    EXPECT_EQ(deliveries[0].correlator, 22u);
    EXPECT_EQ(query.list.buffer, buffer);
    EXPECT_EQ(query.list.buffer_size, 16u);
    EXPECT_EQ(std::string(buffer, sizeof buffer), "0123456789##############");
    EXPECT_EQ(deliveries[1].vcb, &start);
    EXPECT_EQ(deliveries[1].handle, 7u);
    EXPECT_EQ(deliveries[1].primary, NAP_STATE_CHECK);
    EXPECT_EQ(deliveries[1].secondary, 0x55u);
}

TEST_F(Nof, VerbsOfTheCallbackAreServed) {
    FakeService service([](FakePeer& peer) {
        peer.answer(peer.receive());
        peer.answer(peer.receive());
    });
    auto first = verb<START_LS>(NAP_START_LS);
    auto second = verb<STOP_LS>(NAP_STOP_LS);
    reaction = [&](const Delivery& delivery) {
        if (delivery.vcb == &first) {
            issue(&second, 2);
        } else {
            nof_terminate(); // the library may be ended from its own callback
        }
    };
    issue(&first, 1);
    pump(2);
    EXPECT_EQ(deliveries[1].vcb, &second);
    EXPECT_TRUE(idle());
}

// An event loop in a callback sends what the callback issued and delivers what came with its
// answer.
TEST_F(Nof, ACallbackMayRunTheEventLoop) {
    FakeService service([](FakePeer& peer) {
        const FakeRequest first = peer.receive();
        const FakeRequest second = peer.receive();
        peer.answer(first);
        peer.answer(peer.receive());
        peer.answer(second);
    });
    auto first = verb<START_LS>(NAP_START_LS);
    auto second = verb<START_LS>(NAP_START_LS);
    auto inner = verb<STOP_LS>(NAP_STOP_LS);
    reaction = [&](const Delivery& delivery) {
        if (delivery.vcb == &first) {
            issue(&inner, 3);
        }
        pump(3);
    };
    issue(&first, 1);
    issue(&second, 2);
    pump(3);
    EXPECT_EQ(deliveries[2].vcb, &second);
}

TEST_F(Nof, UnknownVerbsCompleteAtOnce) {
    auto unknown = verb<HEADER_ONLY>(0x1234);
    EXPECT_EQ(issue(&unknown, 1), NOF_COMPLETED);
    EXPECT_EQ(unknown.header.primary_rc, NAP_INVALID_VERB);
    auto indication = verb<DLC_INDICATION>(NAP_DLC_INDICATION);
    EXPECT_EQ(issue(&indication, 1), NOF_COMPLETED);
    EXPECT_EQ(indication.header.primary_rc, NAP_INVALID_VERB);
}

// Tells the operator which verbs complete at once; by the first answer he knows.
void announce_immediate(FakePeer& peer) {
    const NB_USHORT opcodes[] = {NAP_STOP_LS, NAP_START_DLC};
    peer.send_frame(whole_frame(WIRE_IMMEDIATE, 0, sizeof opcodes, 0), opcodes, nullptr);
    peer.answer(peer.receive());
}

TEST_F(Nof, AnImmediateVerbCompletesDuringTheCallAndTheRestLater) {
    FakeService service([](FakePeer& peer) {
        announce_immediate(peer);
        const FakeRequest slow = peer.receive();
        const FakeRequest at_once = peer.receive();
        peer.indicate(verb<DLC_INDICATION>(NAP_DLC_INDICATION), 99);
        peer.answer(slow);
        peer.answer(at_once, NAP_STATE_CHECK, 1);
        peer.answer(peer.receive(), NAP_STATE_CHECK, 2);
    });
    auto slow = verb<START_LS>(NAP_START_LS);
    auto at_once = verb<STOP_LS>(NAP_STOP_LS);
    auto opening = verb<STOP_DLC>(NAP_STOP_DLC);
    issue_first(&opening);
    EXPECT_EQ(issue(&slow, 1), NOF_IN_PROGRESS);
    EXPECT_EQ(issue(&at_once, 2), NOF_COMPLETED);
    EXPECT_EQ(at_once.header.secondary_rc, 1u);
    EXPECT_TRUE(deliveries.empty()); // nothing is delivered from inside the call
    auto last = verb<START_DLC>(NAP_START_DLC);
    EXPECT_EQ(issue(&last, 3), NOF_COMPLETED);
    EXPECT_EQ(last.header.secondary_rc, 2u);
    pump(2);
    EXPECT_EQ(deliveries[0].opcode, NAP_DLC_INDICATION);
    EXPECT_EQ(deliveries[0].correlator, 99u);
    EXPECT_EQ(deliveries[1].vcb, &slow);
}

TEST_F(Nof, OneTurnOfTheLoopDeliversNoMoreThanTheLimit) {
    FakeService service([](FakePeer& peer) {
        const FakeRequest request = peer.receive();
        for (NB_ULONG i = 0; i < 25; ++i) {
            peer.indicate(verb<DLC_INDICATION>(NAP_DLC_INDICATION), i);
        }
        peer.answer(request);
    });
    vpm_set_io_limit(4);
    auto block = verb<START_LS>(NAP_START_LS);
    issue(&block, 1);
    while (deliveries.size() < 26) {
        const std::size_t before = deliveries.size();
        XtAppProcessEvent(app, XtIMAll);
        ASSERT_LE(deliveries.size() - before, 4u);
    }
    for (NB_ULONG i = 0; i < 25; ++i) {
        EXPECT_EQ(deliveries[i].correlator, i);
    }
}

TEST_F(Nof, RequestsWaitForASlowServiceInTheirOrder) {
    constexpr NB_ULONG SESSIONS = 400; // some 85 KB a block
    constexpr NB_ULONG COUNT = 40;
    int go[2]; // the service reads nothing until every request is issued
    ASSERT_EQ(pipe(go), 0);
    FakeService service([&go](FakePeer& peer) {
        char byte;
        peer.require(read(go[0], &byte, 1) == 1);
        for (NB_ULONG i = 0; i < COUNT; ++i) {
            const FakeRequest request = peer.receive();
            peer.require(request.header.correlator == i && request.block.back() == i);
            peer.answer(request);
        }
    });
    const std::size_t length = sizeof(DEFINE_TN3270_ACCESS) + SESSIONS * sizeof(TN3270_SESSION);
    std::vector<std::vector<NB_BYTE>> blocks(COUNT, std::vector<NB_BYTE>(length));
    for (NB_ULONG i = 0; i < COUNT; ++i) {
        auto* block = reinterpret_cast<DEFINE_TN3270_ACCESS*>(blocks[i].data());
        block->header.opcode = NAP_DEFINE_TN3270_ACCESS;
        block->def.num_sessions = SESSIONS;
        blocks[i].back() = static_cast<NB_BYTE>(i);
        EXPECT_EQ(issue(block, i), NOF_IN_PROGRESS);
    }
    ASSERT_EQ(write(go[1], "g", 1), 1);
    pump(COUNT);
    EXPECT_EQ(deliveries.back().correlator, COUNT - 1);
    close(go[0]);
    close(go[1]);
}

TEST_F(Nof, AnAnswerThatNobodyWaitsForIsIgnored) {
    FakeService service([](FakePeer& peer) {
        const FakeRequest request = peer.receive();
        FakeRequest stray = request;
        stray.header.request_id = 4711;
        peer.answer(stray);
        peer.answer(request);
    });
    ptrc.flags = 1; // keeps the log quiet
    auto block = verb<START_LS>(NAP_START_LS);
    issue(&block, 1);
    pump(1);
    EXPECT_EQ(deliveries[0].primary, NAP_OK);
    ptrc.flags = 0;
}

TEST_F(Nof, WithoutAServiceVerbsFailAtOnceAndOneIndicationTells) {
    setenv("TESSALY_NODE_SOCKET", "/nonexistent/node", 1);
    EXPECT_EQ(vsm_is_client_server(), 0);
    auto first = verb<START_LS>(NAP_START_LS);
    auto second = verb<START_LS>(NAP_START_LS);
    EXPECT_EQ(issue(&first, 1), NOF_COMPLETED);
    EXPECT_EQ(issue(&second, 2), NOF_COMPLETED);
    expect_link_lost(&first);
    expect_link_lost(&second);
    EXPECT_TRUE(deliveries.empty());
    pump(1);
    EXPECT_EQ(deliveries[0].opcode, NAP_NOF_STATUS_INDICATION);
    EXPECT_TRUE(idle());
    unsetenv("TESSALY_NODE_SOCKET");
}

// What a service may do wrong; each costs the whole link, and only that.
struct Fault {
    const char* name;
    void (*commit)(FakePeer& peer, const FakeRequest& request);
};

// Sends the header of an answer, spoilt in one field.
template <auto Field, auto Value> void send_header(FakePeer& peer, const FakeRequest&) {
    WIRE_FRAME header = whole_frame(WIRE_ANSWER, 1, 24, 0);
    header.*Field = Value;
    peer.send_bytes(&header, sizeof header);
}

// The same of a header that is whole in itself.
template <NB_USHORT kind, NB_ULONG block_length, NB_ULONG buffer_length>
void send_whole_header(FakePeer& peer, const FakeRequest&) {
    const WIRE_FRAME header = whole_frame(kind, 1, block_length, buffer_length);
    peer.send_bytes(&header, sizeof header);
}

const Fault FAULTS[] = {
    {"Closes", [](FakePeer& peer, const FakeRequest&) { peer.leaves = true; }},
    {"HalfAFrame",
     [](FakePeer& peer, const FakeRequest& request) {
         peer.leaves = true;
         peer.send_bytes(&request.header, 20);
     }},
    {"HalfABlock",
     [](FakePeer& peer, const FakeRequest& request) {
         send_whole_header<WIRE_ANSWER, 24, 0>(peer, request);
         peer.send_bytes("abc", 3);
         peer.leaves = true;
     }},
    {"LengthTooSmall", send_header<&WIRE_FRAME::length, 8u>},
    {"LengthNotTheSum", send_header<&WIRE_FRAME::block_length, 25u>},
    {"WrongVersion", send_header<&WIRE_FRAME::version, 99>},
    {"UnknownKind", send_whole_header<0, 0, 0>},
    {"BlockTooLarge", send_whole_header<WIRE_ANSWER, WIRE_MAX_BLOCK + 1, 0>},
    {"BufferTooLarge", send_whole_header<WIRE_ANSWER, 24, 0xFFFFFFF0>},
    {"AnswerWithoutHeader",
     [](FakePeer& peer, const FakeRequest&) {
         peer.send_frame(whole_frame(WIRE_ANSWER, 1, 4, 0), "abcd", nullptr);
     }},
    {"IndicationTooShort",
     [](FakePeer& peer, const FakeRequest&) {
         peer.indicate(verb<HEADER_ONLY>(NAP_LS_INDICATION), 0);
     }},
    {"AnswerLongerThanItsRequest",
     [](FakePeer& peer, const FakeRequest& request) {
         FakeRequest longer = request;
         longer.block.resize(request.block.size() + 1);
         longer.header.block_length += 1;
         peer.answer(longer);
     }},
    {"BufferBeyondItsCapacity",
     [](FakePeer& peer, const FakeRequest& request) {
         peer.answer(request, 0, 0, std::string(request.header.buffer_capacity + 1, '!'));
     }},
    {"AnswerOfAnotherVerb",
     [](FakePeer& peer, const FakeRequest& request) {
         FakeRequest other = request;
         vcb_header(other.block.data())->opcode = NAP_QUERY_LS;
         peer.answer(other);
     }},
};

class Faults : public Nof, public testing::WithParamInterface<Fault> {};

TEST_P(Faults, EndTheLinkAndNothingElse) {
    FakeService service([](FakePeer& peer) {
        const FakeRequest request = peer.receive();
        peer.receive();
        GetParam().commit(peer, request);
    });
    auto query = verb<QUERY_DLC>(NAP_QUERY_DLC);
    auto other = verb<START_LS>(NAP_START_LS);
    char buffer[32] = {};
    query.list.buffer = buffer;
    query.list.buffer_size = 16;
    issue(&query, 1);
    issue(&other, 2);
    pump(3);
    EXPECT_EQ(deliveries[0].vcb, &query);
    EXPECT_EQ(deliveries[1].vcb, &other);
    EXPECT_EQ(deliveries[2].opcode, NAP_NOF_STATUS_INDICATION);
    for (const Delivery& delivery : deliveries) {
        EXPECT_EQ(delivery.primary, NAP_INDICATION);
        EXPECT_EQ(delivery.secondary, NAP_LINK_LOST);
    }
    EXPECT_EQ(query.list.buffer, buffer);
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string(sizeof buffer, '\0'));
    auto later = verb<STOP_LS>(NAP_STOP_LS);
    EXPECT_EQ(issue(&later, 3), NOF_COMPLETED);
    expect_link_lost(&later);
    EXPECT_TRUE(idle());
    EXPECT_EQ(deliveries.size(), 3u);
}
INSTANTIATE_TEST_SUITE_P(Nof, Faults, testing::ValuesIn(FAULTS),
                         [](const auto& fault) { return std::string(fault.param.name); });

TEST_F(Nof, WhatCameBeforeTheLossIsDelivered) {
    FakeService service([](FakePeer& peer) {
        announce_immediate(peer);
        const FakeRequest answered = peer.receive();
        peer.receive();
        peer.receive();
        peer.answer(answered);
        peer.leaves = true;
    });
    auto answered = verb<START_LS>(NAP_START_LS);
    auto lost = verb<START_PORT>(NAP_START_PORT);
    auto at_once = verb<STOP_LS>(NAP_STOP_LS);
    auto opening = verb<STOP_DLC>(NAP_STOP_DLC);
    issue_first(&opening);
    issue(&answered, 1);
    issue(&lost, 2);
    EXPECT_EQ(issue(&at_once, 3), NOF_COMPLETED);
    expect_link_lost(&at_once);
    pump(3);
    EXPECT_EQ(deliveries[0].vcb, &answered);
    EXPECT_EQ(deliveries[0].primary, NAP_OK);
    EXPECT_EQ(deliveries[1].vcb, &lost);
    expect_link_lost(&lost);
}

} // namespace
