// The node operator library of these tests: a node that answers every verb from tables, in the
// order of arrival, and keeps a journal of what it was sent.
#pragma once

#include "fixture.h"

#include "nof/nof.h"
#include "store/build.h"

#include <deque>
#include <functional>
#include <map>

namespace store_test {

struct Sent {
    NB_HANDLE target;
    NB_USHORT opcode;
    NB_USHORT indication; // of a registration
    NB_BYTE list_options; // of a list
    std::string key;      // of a list: the bytes behind its common part
};

struct Codes {
    NB_USHORT primary;
    NB_ULONG secondary;
};

class ScriptedNode {
public:
    ScriptedNode();
    ~ScriptedNode();
    static ScriptedNode* current;

    // What list queries find, by opcode; a list for one PU or local LU by opcode and name.
    template <typename T>
    void has(NB_USHORT opcode, const T& entry, const std::string& owner = "") {
        entries[{opcode, owner}].emplace_back(reinterpret_cast<const char*>(&entry), sizeof entry);
    }
    // Answers every verb, and those that the answers lead to. limit: no more than so many.
    void run(std::size_t limit = 100'000);
    // Drops the verbs that wait for an answer; their blocks are the queue's.
    void forget() { outstanding.clear(); }
    std::size_t sent(NB_USHORT opcode) const;
    // The place of the first such verb in the journal; its end when there is none.
    std::size_t first(NB_USHORT opcode, NB_USHORT indication = 0) const;

    bool client_server = false;
    std::size_t page_entries = 2;
    QUERY_NODE node{};                                      // the reply of the node query
    std::map<NB_USHORT, Codes> codes;                       // of every answer to an opcode
    std::map<NB_USHORT, std::function<void(void*)>> finish; // last word on an answer
    std::vector<Sent> journal;

private:
    friend NB_USHORT(::nof_async_version)(int, NB_HANDLE, void*, NOF_CALLBACK, NB_ULONG);
    struct Outstanding {
        NB_HANDLE target;
        void* vcb;
        NB_ULONG correlator;
    };
    void answer(const Outstanding& verb);
    void answer_list(LIST_QUERY* list);
    std::map<std::pair<NB_USHORT, std::string>, std::vector<std::string>> entries;
    std::map<std::pair<NB_USHORT, std::string>, std::size_t> position;
    std::deque<Outstanding> outstanding;
};

constexpr NB_HANDLE CONFIG_HANDLE = 11;
constexpr NB_HANDLE SNA_NET_HANDLE = 12;
constexpr NB_HANDLE TP_HANDLE = 13;
constexpr NB_HANDLE FIRST_NODE_HANDLE = 101; // then 102, ...

} // namespace store_test
