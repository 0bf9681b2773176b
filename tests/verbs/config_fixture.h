// Configuration as it arrives: verbs with members, and a store that takes them.
#pragma once

#include "store/fixture.h"

#include "verbs/config.h"

#include <algorithm>

namespace store_test {

// A block of another operator, with room for members behind it.
template <typename T> struct Verb {
    std::vector<NB_BYTE> bytes = std::vector<NB_BYTE>(sizeof(T));

    explicit Verb(NB_USHORT opcode) {
        vcb_header(bytes.data())->opcode = opcode;
        vcb_header(bytes.data())->primary_rc = NAP_INDICATION;
    }
    // With its name in a field.
    template <typename Field>
    Verb(NB_USHORT opcode, Field T::*field, const std::string& name) : Verb(opcode) {
        put(reinterpret_cast<T*>(bytes.data())->*field, name);
    }
    T* operator->() { return reinterpret_cast<T*>(bytes.data()); }
    template <typename Member> void add(const Member& member) {
        const auto* from = reinterpret_cast<const NB_BYTE*>(&member);
        bytes.insert(bytes.end(), from, from + sizeof member);
    }
    VGA_COMPLETION completion(NB_HANDLE corr = 0) { return {0, bytes.data(), corr}; }
};

constexpr NB_HANDLE NODE = 101;
constexpr NB_HANDLE TP_FILE = 13;
constexpr NB_HANDLE DOMAIN = 11;

inline void no_completion(VGA_COMPLETION*) {}

// A store whose build is done. Verbs to its targets wait behind one that was purged, so that they
// stay in the queue for a look at them.
struct Configured : Store {
    Configured() {
        node->node_handle = NODE;
        node->tp_load_handle = TP_FILE;
        gvga_system->config_file_handle = DOMAIN;
        for (const NB_HANDLE target : {NODE, TP_FILE, DOMAIN}) {
            auto* outstanding = vga_new<VGA_QUEUE_ENTRY>();
            outstanding->target = target;
            outstanding->issued = 1;
            outstanding->callback = no_completion;
            outstanding->vcb = vga_new_vcb<VCB_HEADER>(NAP_CLOSE_FILE);
            nba_add_to_q_tail(&gvga_nof_queue, &outstanding->link, outstanding);
            vga_purge_verb_queue(target, 0, nullptr, 0, nullptr);
        }
        node->build_flags = 0;
        node->node_state = VGA_NODE_STATE_ACTIVE;
        gvga_system->build_flags = 0;
    }
    static const VGA_QUEUE_ENTRY& last_issued() {
        return *static_cast<const VGA_QUEUE_ENTRY*>(gvga_nof_queue.previous->owner);
    }
    template <typename T> void indicate(Verb<T> verb, NB_HANDLE corr = 0) {
        VGA_COMPLETION completion = verb.completion(corr != 0 ? corr : node->handle);
        vga_process_node_config_ind(&completion);
    }
    // What a call, or an indication, writes to the log.
    template <typename Call> std::string log_of(Call call) requires requires { call(); }
    {
        testing::internal::CaptureStderr();
        call();
        return testing::internal::GetCapturedStderr();
    }
    template <typename T> std::string log_of(const Verb<T>& verb) {
        return log_of([&] { indicate(verb); });
    }
    // Lines that tell of unknown names, and no others.
    static bool logged(const std::string& log, int subcode) {
        const std::string told = " exception 0x40020004 " + std::to_string(subcode) + " ";
        std::size_t lines = 0;
        for (std::size_t at = 0; (at = log.find(told, at)) != std::string::npos; ++at) {
            ++lines;
        }
        return lines > 0 &&
               static_cast<std::size_t>(std::count(log.begin(), log.end(), '\n')) == lines;
    }
    // Logged when nothing is listed; not while a check or the build lists that kind, and not when
    // exceptions are switched off.
    template <typename V>
    void expect_logged(const V& verb, int subcode, VGA_CHECK_KIND check, VGA_FLAGS& building,
                       int flag) {
        SCOPED_TRACE(subcode);
        EXPECT_TRUE(logged(log_of(verb), subcode));
        if (check != VGA_CHECK_COUNT) {
            node->checks_running[check] = 1;
            EXPECT_EQ(log_of(verb), "");
            node->checks_running[check] = 0;
        }
        building = flag >= 0 ? vga_flag(flag) : 0;
        EXPECT_EQ(log_of(verb) == "", flag >= 0);
        building = 0;
        ptrc.flags |= 0x01;
        EXPECT_EQ(log_of(verb), "");
        ptrc.flags &= 0xFE;
    }
    template <typename V>
    void expect_logged(const V& verb, int subcode, VGA_CHECK_KIND check, int flag) {
        expect_logged(verb, subcode, check, node->build_flags, flag);
    }
};

} // namespace store_test
