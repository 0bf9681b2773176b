// The records of one resource kind: found by key, listed in the node's order, as a whole or below
// one parent, from any place, with the number that remains. All in logarithmic time.
#pragma once

#include "simnode/text.h"

#include <ext/pb_ds/assoc_container.hpp>
#include <ext/pb_ds/tree_policy.hpp>
#include <map>
#include <memory>
#include <unordered_map>

namespace simnode {

struct Record {
    std::string key;    // identity: the key fields of the entry
    std::string order;  // place in lists; the key itself for most kinds
    std::string parent; // name of the record it belongs to, empty without one
    Bytes entry;        // the query entry, as answered

    template <typename T> T& as() { return *reinterpret_cast<T*>(entry.data()); }
    template <typename T> const T& as() const { return *reinterpret_cast<const T*>(entry.data()); }
};

// Ordered by Record::order, which the views point into.
using RecordList =
    __gnu_pbds::tree<std::string_view, Record*, std::less<std::string_view>,
                     __gnu_pbds::rb_tree_tag, __gnu_pbds::tree_order_statistics_node_update>;

struct Collection {
    std::unordered_map<std::string_view, std::unique_ptr<Record>> records;
    RecordList all;
    std::map<std::string, RecordList, std::less<>> by_parent;
    // Where records stood that have gone, for kinds whose order is not their key: a list continues
    // from there.
    std::unordered_map<std::string, std::string> departed;
};

// Null when no record has this key.
Record* find(const Collection& collection, std::string_view key);
// Inserts a record, or replaces the one of its key. The result stays valid until it is erased or
// replaced.
Record& put(Collection& collection, Record record);
void erase(Collection& collection, Record& record);
void clear(Collection& collection);
std::size_t size(const Collection& collection);
// Records below a parent, in order; a copy, so that they may be erased one after another.
std::vector<Record*> children(const Collection& collection, std::string_view parent);
std::vector<Record*> everything(const Collection& collection);

enum class Start { first, at, after };

struct Range {
    RecordList::const_iterator next;
    RecordList::const_iterator end;
    std::size_t remaining; // from next to end
    bool found;            // Start::at: the key exists
};
// Where a listing starts. parent: only records below it; null: all. key is not used for
// Start::first.
Range start_list(const Collection& collection, const std::string* parent, Start start,
                 const std::string& key);

} // namespace simnode
