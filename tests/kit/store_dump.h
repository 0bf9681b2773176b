// The whole store as text, to compare one store with another, and what is wrong with it in itself.
#pragma once

#include "nba/nba.h"

#include <set>
#include <string>
#include <vector>

namespace kit {

struct STORE_DUMP {
    // A line per record with its place and its derived fields, lines of 16 bytes for what its entry
    // holds, then every list row by row. No handles or addresses: two stores that mirror the same
    // node have the same text. What only a running console knows (marks, selections, dialogs) is
    // not in it.
    std::string text;
    // Trees out of order or balance, counts that a walk does not find, handles that do not lead to
    // their record, rows of no record. Empty for a sound store that waits for nothing.
    std::vector<std::string> faults;
    std::set<NB_HANDLE> handles; // of all records
};

// Looks at gvga_system.
STORE_DUMP dump_store();

// The first lines in which two texts differ, with the record above each; "" when there are none.
std::string difference(const std::string& expected, const std::string& actual);

} // namespace kit
