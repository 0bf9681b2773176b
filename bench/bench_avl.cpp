// The balanced tree beside boost::intrusive::avl_set: records of one shape, equal keys, one
// comparator behind a function pointer. Both do the same work in short turns, so that whatever
// disturbs the machine disturbs both.
#include "common/alloc.h"
#include "common/avl.h"

#include <benchmark/benchmark.h>
#include <boost/intrusive/avl_set.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

namespace bi = boost::intrusive;

constexpr double limit = 1.15; // our median time by the peer's
constexpr std::size_t key_width = 8;
constexpr std::size_t record_size = 600;
constexpr std::size_t record_distance = 608; // as single allocations lie
constexpr std::size_t key_offset = 64;       // in the query entry, behind node, handle and parent
constexpr std::size_t turns = 16;            // per repetition
constexpr std::size_t most_operations = 200'000; // per repetition, where a sample will do

using Hook = bi::avl_set_member_hook<>;

template <typename Link> struct Record {
    Link link;
    char handles[key_offset - sizeof(Link)];
    char key[key_width];
    char rest[record_size - key_offset - key_width];
};
using OurRecord = Record<NTL_AVL_NODE>;
using PeerRecord = Record<Hook>;
static_assert(sizeof(OurRecord) == record_size && sizeof(PeerRecord) == record_size);

// Read at run time, so that no comparison is inlined.
NTL_AVL_COMPARE volatile comparator = ntl_compare_name;

struct PeerLess {
    NTL_AVL_COMPARE compare = comparator;
    bool operator()(const PeerRecord& a, const PeerRecord& b) const {
        return compare(a.key, b.key) < 0;
    }
    bool operator()(const char* a, const PeerRecord& b) const { return compare(a, b.key) < 0; }
    bool operator()(const PeerRecord& a, const char* b) const { return compare(a.key, b) < 0; }
};
using PeerTree = bi::avl_set<PeerRecord, bi::member_hook<PeerRecord, Hook, &PeerRecord::link>,
                             bi::compare<PeerLess>, bi::constant_time_size<false>>;

using Key = std::array<char, key_width>;

// Two sets of records with the same keys, and a tree over each.
struct Pair {
    explicit Pair(std::size_t count)
        : arena(static_cast<char*>(vga_alloc(2 * count * record_distance))), keys(count) {
        std::mt19937_64 random(count);
        for (Key& key : keys) {
            const std::uint64_t value = random();
            std::memcpy(key.data(), &value, key_width);
        }
        // Neighbours in alternating order, so that both meet the same boundaries of cache lines.
        for (std::size_t i = 0; i < count; ++i) {
            our_records.push_back(reinterpret_cast<OurRecord*>(place(2 * i + i % 2)));
            peer_records.push_back(reinterpret_cast<PeerRecord*>(place(2 * i + 1 - i % 2)));
            new (&peer_records[i]->link) Hook;
        }
        searched = keys;
        std::shuffle(searched.begin(), searched.end(), random);
        order.resize(count);
        std::iota(order.begin(), order.end(), 0);
        std::shuffle(order.begin(), order.end(), random);
    }
    ~Pair() {
        peer.clear();
        vga_free(arena);
    }
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;

    // Empties both trees and gives the records their keys.
    void reset(const std::vector<Key>& new_keys) {
        peer.clear();
        ntl_avl_init_tree(&ours, comparator);
        for (std::size_t i = 0; i < new_keys.size(); ++i) {
            ntl_avl_init_node(&our_records[i]->link, our_records[i], our_records[i]->key);
            std::memcpy(our_records[i]->key, new_keys[i].data(), key_width);
            std::memcpy(peer_records[i]->key, new_keys[i].data(), key_width);
        }
        built = false;
    }
    void insert(std::size_t i) {
        ntl_avl_insert(&ours, &our_records[i]->link);
        peer.insert(*peer_records[i]);
    }
    void build() {
        if (!built) {
            reset(keys);
            for (std::size_t i = 0; i < keys.size(); ++i) {
                insert(i);
            }
            built = true;
        }
    }

    char* place(std::size_t number) { return arena + number * record_distance; }

    char* arena;
    std::vector<Key> keys;
    std::vector<Key> searched;      // the same in another order
    std::vector<std::size_t> order; // of deletion
    std::vector<OurRecord*> our_records;
    std::vector<PeerRecord*> peer_records;
    NTL_AVL_TREE ours{};
    PeerTree peer;
    bool built = false; // both trees hold all records, inserted in random order
};

// Processor time, which other programs on the machine take no part of.
double now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double seconds(auto&& work) {
    const double start = now();
    work();
    return now() - start;
}

struct Times {
    double ours = 0;
    double peer = 0;
};

// Runs both over 0 to count in turns; each takes a range.
Times alternate(std::size_t count, auto&& ours, auto&& peer) {
    Times times;
    for (std::size_t turn = 0; turn < turns; ++turn) {
        const std::size_t from = count * turn / turns;
        const std::size_t to = count * (turn + 1) / turns;
        if (turn % 2 == 0) {
            times.ours += seconds([&] { ours(from, to); });
            times.peer += seconds([&] { peer(from, to); });
        } else {
            times.peer += seconds([&] { peer(from, to); });
            times.ours += seconds([&] { ours(from, to); });
        }
    }
    return times;
}

Times insert_all(Pair& pair) {
    return alternate(
        pair.keys.size(),
        [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i) {
                benchmark::DoNotOptimize(ntl_avl_insert(&pair.ours, &pair.our_records[i]->link));
            }
        },
        [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i) {
                benchmark::DoNotOptimize(pair.peer.insert(*pair.peer_records[i]));
            }
        });
}

Times insert_random(Pair& pair) {
    pair.reset(pair.keys);
    const Times times = insert_all(pair);
    pair.built = true;
    return times;
}

Times insert_sorted(Pair& pair) {
    std::vector<Key> sorted = pair.keys;
    std::sort(sorted.begin(), sorted.end(),
              [](const Key& a, const Key& b) { return ntl_compare_name(a.data(), b.data()) < 0; });
    pair.reset(sorted);
    return insert_all(pair);
}

Times find(Pair& pair) {
    pair.build();
    return alternate(
        std::min(pair.keys.size(), most_operations),
        [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i) {
                benchmark::DoNotOptimize(ntl_avl_find(&pair.ours, pair.searched[i].data()));
            }
        },
        [&](std::size_t from, std::size_t to) {
            const PeerLess less;
            for (std::size_t i = from; i < to; ++i) {
                const char* key = pair.searched[i].data();
                benchmark::DoNotOptimize(&*pair.peer.find(key, less));
            }
        });
}

// Every second key is one that no record has.
Times find_next(Pair& pair) {
    pair.build();
    std::vector<Key> keys = pair.searched;
    for (std::size_t i = 0; i < keys.size(); i += 2) {
        ++keys[i].back();
    }
    return alternate(
        std::min(keys.size(), most_operations),
        [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i) {
                benchmark::DoNotOptimize(ntl_avl_find_next(&pair.ours, keys[i].data()));
            }
        },
        [&](std::size_t from, std::size_t to) {
            const PeerLess less;
            for (std::size_t i = from; i < to; ++i) {
                const char* key = keys[i].data();
                benchmark::DoNotOptimize(&*pair.peer.upper_bound(key, less));
            }
        });
}

// Reads a byte of every key on the way.
Times walk(Pair& pair) {
    pair.build();
    auto* our_record = ntl_avl_first<OurRecord>(pair.ours);
    auto peer_record = pair.peer.begin();
    int our_sum = 0;
    int peer_sum = 0;
    const Times times = alternate(
        pair.keys.size(),
        [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i) {
                our_sum += our_record->key[0];
                our_record = static_cast<OurRecord*>(ntl_avl_next(&our_record->link));
            }
        },
        [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i) {
                peer_sum += peer_record->key[0];
                ++peer_record;
            }
        });
    if (our_sum != peer_sum) {
        std::fprintf(stderr, "bench_avl: the trees differ\n");
        std::exit(2);
    }
    return times;
}

// Up to half of the records in random order; they are put back outside the measurement.
Times remove(Pair& pair) {
    pair.build();
    const std::size_t count = std::min(pair.keys.size() / 2, most_operations);
    const Times times = alternate(
        count,
        [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i) {
                ntl_avl_delete(&pair.ours, &pair.our_records[pair.order[i]]->link);
            }
        },
        [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i) {
                pair.peer.erase(pair.peer.iterator_to(*pair.peer_records[pair.order[i]]));
            }
        });
    for (std::size_t i = 0; i < count; ++i) {
        pair.insert(pair.order[i]);
    }
    return times;
}

struct Case {
    const char* name;
    Times (*run)(Pair& pair);
};
// The first builds the trees that those behind it use; the last gives the records other keys.
constexpr Case cases[] = {{"insert_random", insert_random},
                          {"find", find},
                          {"find_next", find_next},
                          {"walk", walk},
                          {"delete", remove},
                          {"insert_sorted", insert_sorted}};

struct Size {
    std::size_t count;
    int repetitions;
};
constexpr Size sizes[] = {{10'000, 101}, {100'000, 15}, {1'000'000, 5}};

struct Result {
    std::string name;
    double ratio;
};
std::vector<Result> results;

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

void measure(benchmark::State& state, const Case& measured, const Size& size,
             std::unique_ptr<Pair>& pair) {
    if (pair == nullptr || pair->keys.size() != size.count) {
        pair.reset();
        pair = std::make_unique<Pair>(size.count);
    }
    std::vector<double> ours;
    std::vector<double> peer;
    for (auto _ : state) {
        const Times times = measured.run(*pair);
        ours.push_back(times.ours);
        peer.push_back(times.peer);
        state.SetIterationTime(times.ours);
    }
    const double ratio = median(ours) / median(peer);
    state.counters["ours"] = median(ours);
    state.counters["peer"] = median(peer);
    state.counters["ratio"] = ratio;
    results.push_back({measured.name + ("/" + std::to_string(size.count)), ratio});
}

} // namespace

int main(int argc, char** argv) {
    std::unique_ptr<Pair> pair;
    for (const Size& size : sizes) {
        for (const Case& measured : cases) {
            const std::string name = measured.name + ("/" + std::to_string(size.count));
            benchmark::RegisterBenchmark(
                name.c_str(),
                [&](benchmark::State& state) { measure(state, measured, size, pair); })
                ->Iterations(size.repetitions)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond);
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    bool over = false;
    for (const Result& result : results) {
        const bool ok = result.ratio <= limit;
        over |= !ok;
        std::printf("bench_avl %s %.2f %.2f %s\n", result.name.c_str(), result.ratio, limit,
                    ok ? "ok" : "over");
    }
    return over ? 1 : 0;
}
