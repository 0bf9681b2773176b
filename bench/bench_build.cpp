// The build of a node's store beside a bare client of the same service, which reads the same pages
// over the same wire. Both share one processor with the simulated node and run in turns; processor
// time is counted, here and in the service.
#include "bare_client.h"
#include "measure.h"
#include "store_build.h"

#include "nof/pu_lu.h"
#include "shell/globals.h"
#include "store/store.h"

#include <string>
#include <vector>

namespace {

using namespace bench;

constexpr double time_limit = 1.5;   // our median time by the peer's
constexpr double growth_limit = 1.2; // time per record at the largest size by that at the middle
constexpr double memory_limit = 600; // bytes per LU beside its entry

// What a domain of many kinds has per thousand records.
constexpr const char* mixed_kinds[] = {
    "lu03=400",
    "downstream_lu=100",
    "lu62=30",
    "partner=60",
    "mode=90",
    "mode_definition=10",
    "directory=60",
    "partner_definition=40",
    "cos=4",
    "cos_node_row=8",
    "cos_tg_row=8",
    "dlc_trace=2",
    "cn=1",
    "cn_port=2",
    "lu62_timeout=8",
    "ls_routing=10",
    "tp=20",
    "tp_load=10",
    "userid=10",
    "access_list=2",
    "access_user=8",
    "lu_lu_password=10",
    "tn_client=8",
    "tn_session=24",
    "association=10",
    "redirect=4",
    "pool=4",
    "extra_data=10",
    "user=10",
    "user_session=20",
    "cpic=10",
    "rje=2",
    "dspu_template=1",
    "dslu_template=2",
};

// --generate for so many records of all kinds.
std::string mixed(unsigned long records) {
    std::string counts;
    for (const std::string kind : mixed_kinds) {
        const std::size_t equals = kind.find('=');
        counts += counts.empty() ? "" : ",";
        counts += kind.substr(0, equals + 1);
        counts += std::to_string(std::stoul(kind.substr(equals + 1)) * records / 1'000);
    }
    return counts;
}

std::size_t count_lus() {
    std::size_t count = 0;
    for (auto* lu = ntl_avl_first<vga_lu03>(gvga_system->lu_tree); lu != nullptr;
         lu = static_cast<vga_lu03*>(ntl_avl_next(&lu->system_node))) {
        ++count;
    }
    return count;
}

struct Result {
    double ratio;     // our time by the peer's
    double per_entry; // our time by the entries read
    double bytes_per_lu;
};

// lus: as many are to arrive.
Result measure(const std::string& counts, int turns, unsigned long lus, XtAppContext app) {
    const Service service(counts);
    std::vector<double> ours;
    std::vector<double> peer;
    Result result{};
    std::size_t entries = 0;
    for (int turn = 0; turn < turns; ++turn) {
        const Read read = read_domain(service);
        const std::size_t before = allocated();
        start_store(app);
        peer.push_back(read.seconds);
        ours.push_back(build_store(service));
        if (count_lus() != lus || read.entries < lus) {
            fail("not every LU arrived");
        }
        result.bytes_per_lu = static_cast<double>(allocated() - before) / static_cast<double>(lus);
        entries = read.entries;
        end_store();
    }
    result.ratio = median(ours) / median(peer);
    result.per_entry = median(ours) / static_cast<double>(entries);
    return result;
}

struct Size {
    unsigned long records;
    int turns;
};
constexpr Size sizes[] = {{1'000, 31}, {10'000, 11}, {100'000, 5}};

} // namespace

int main() {
    pin_to_one_processor();
    XtToolkitInitialize();
    XtAppContext app = XtCreateApplicationContext();
    bool ok = true;
    double before = 0;
    for (const Size& size : sizes) {
        const std::string count = std::to_string(size.records);
        const Result result = measure("lu03=" + count, size.turns, size.records, app);
        ok &= report("lu03/" + count, result.ratio, time_limit);
        if (size.records > 1'000) { // the fixed part of the store weighs on the smallest
            ok &= report("memory/" + count, result.bytes_per_lu - sizeof(LU03_ENTRY), memory_limit,
                         0);
        }
        if (size.records == 100'000) {
            ok &= report("growth/" + count, result.per_entry / before, growth_limit);
        }
        before = result.per_entry;
    }
    for (const Size& size : {sizes[1], sizes[2]}) {
        const std::string count = std::to_string(size.records);
        const Result result = measure(mixed(size.records), size.turns, size.records * 2 / 5, app);
        ok &= report("mixed/" + count, result.ratio, time_limit);
        if (size.records == 100'000) {
            ok &= report("mixed_growth/" + count, result.per_entry / before, growth_limit);
        }
        before = result.per_entry;
    }
    return ok ? 0 : 1;
}
