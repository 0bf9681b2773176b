// The verbs received, for tests and for looking over an operator's shoulder: one JSON object a
// line.
#pragma once

#include "simnode/request.h"

#include <cstdio>
#include <deque>

namespace simnode {

struct JournalEntry {
    NB_ULONG operator_id;
    NB_USHORT opcode;
    NB_ULONG target;
    Rc rc;
    std::string key; // of the resource, as text; of a list query where it starts
    Bytes block;     // of verbs that change something, passwords cleared
};

struct Journal {
    std::deque<JournalEntry> entries; // the latest, at most JOURNAL_LIMIT
    std::FILE* file = nullptr;        // also written here, line by line
};
inline constexpr std::size_t JOURNAL_LIMIT = 200'000;

// Records a verb as it was answered.
void record_verb(Journal& journal, const Request& request, Rc rc);
std::string journal_line(const JournalEntry& entry);
// Clears what a block holds of passwords.
void mask_passwords(Bytes& block);

} // namespace simnode
