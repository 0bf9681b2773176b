#include "simnode/collection.h"

namespace simnode {

Record* find(const Collection& collection, std::string_view key) {
    const auto place = collection.records.find(key);
    return place == collection.records.end() ? nullptr : place->second.get();
}

namespace {

void unlink(Collection& collection, const Record& record) {
    collection.all.erase(record.order);
    if (const auto group = collection.by_parent.find(record.parent);
        group != collection.by_parent.end()) {
        group->second.erase(record.order);
        if (group->second.empty()) {
            collection.by_parent.erase(group);
        }
    }
}

std::vector<Record*> records_of(const RecordList& list) {
    std::vector<Record*> result;
    result.reserve(list.size());
    for (const auto& item : list) {
        result.push_back(item.second);
    }
    return result;
}

} // namespace

Record& put(Collection& collection, Record record) {
    if (record.order.empty()) {
        record.order = record.key;
    }
    if (Record* old = find(collection, record.key)) {
        erase(collection, *old);
    }
    auto owned = std::make_unique<Record>(std::move(record));
    Record& stored = *owned;
    collection.records.emplace(stored.key, std::move(owned));
    collection.all.insert({stored.order, &stored});
    if (!stored.parent.empty()) {
        collection.by_parent[stored.parent].insert({stored.order, &stored});
    }
    collection.departed.erase(stored.key);
    return stored;
}

void erase(Collection& collection, Record& record) {
    unlink(collection, record);
    if (record.order != record.key) {
        collection.departed[record.key] = record.order;
    }
    collection.records.erase(std::string(record.key));
}

void clear(Collection& collection) {
    collection = Collection();
}

std::size_t size(const Collection& collection) {
    return collection.all.size();
}

std::vector<Record*> everything(const Collection& collection) {
    return records_of(collection.all);
}

std::vector<Record*> children(const Collection& collection, std::string_view parent) {
    const auto group = collection.by_parent.find(parent);
    return group == collection.by_parent.end() ? std::vector<Record*>() : records_of(group->second);
}

Range start_list(const Collection& collection, const std::string* parent, Start start,
                 const std::string& key) {
    static const RecordList nothing;
    const RecordList* list = &collection.all;
    if (parent != nullptr) {
        const auto group = collection.by_parent.find(*parent);
        list = group == collection.by_parent.end() ? &nothing : &group->second;
    }
    if (start == Start::first) {
        return {list->begin(), list->end(), list->size(), true};
    }
    const Record* record = find(collection, key);
    std::string_view order = key;
    if (record != nullptr) {
        order = record->order;
    } else if (const auto place = collection.departed.find(key);
               place != collection.departed.end()) {
        order = place->second;
    }
    auto next = list->lower_bound(order);
    std::size_t before = list->order_of_key(order);
    const bool found = next != list->end() && next->first == order;
    if (found && start == Start::after) {
        ++next;
        ++before;
    }
    return {next, list->end(), list->size() - before, found};
}

} // namespace simnode
