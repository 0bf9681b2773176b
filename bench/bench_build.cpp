// The build of a node's store beside a bare client of the same service, which reads the same pages
// over the same wire. Both share one processor with the simulated node and run in turns; processor
// time is counted, here and in the service.
#include "bare_client.h"
#include "measure.h"
#include "store_build.h"

#include "nof/pu_lu.h"
#include "shell/globals.h"
#include "store/store.h"

#include <malloc.h>
#include <memory>
#include <span>
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

// Builds of one domain, beside bare clients.
struct Case {
    std::string name;
    int turns;
    unsigned long lus; // as many are to arrive
    std::unique_ptr<Service> service;
    std::vector<double> ratio;     // of each turn: our time by the peer's
    std::vector<double> per_entry; // our time by the entries read
    double bytes_per_lu;
};

// Both sides start with memory that is fresh from the system, as in a program just started.
void take_turn(Case& c, XtAppContext app) {
    malloc_trim(0);
    const Read read = read_domain(*c.service);
    c.service->choose();
    malloc_trim(0);
    const std::size_t before = allocated();
    start_store(app);
    const double seconds = build_store(*c.service);
    c.ratio.push_back(seconds / read.seconds);
    c.per_entry.push_back(seconds / static_cast<double>(read.entries));
    if (count_lus() != c.lus || read.entries < c.lus) {
        fail("not every LU arrived");
    }
    c.bytes_per_lu = static_cast<double>(allocated() - before) / static_cast<double>(c.lus);
    end_store();
}

// The sizes take turns, so that a change of the machine's pace falls on all of them.
void take_turns(std::span<Case> cases, XtAppContext app) {
    for (int turn = 0; turn < cases[0].turns; ++turn) {
        for (Case& c : cases) {
            if (turn < c.turns) {
                take_turn(c, app);
            }
        }
    }
}

bool report_ratio(const Case& c) {
    return report(c.name, median(c.ratio), time_limit);
}

// How the time per entry grows from the middle size to the largest.
bool report_growth(const char* name, const Case& middle, const Case& largest) {
    std::vector<double> growth;
    for (std::size_t turn = 0; turn < largest.per_entry.size(); ++turn) {
        growth.push_back(largest.per_entry[turn] / middle.per_entry[turn]);
    }
    return report(name, median(growth), growth_limit);
}

struct Size {
    unsigned long records;
    int turns; // more where one takes less time
};
constexpr Size sizes[] = {{1'000, 31}, {10'000, 15}, {100'000, 9}};

std::vector<Case> lu03_cases() {
    std::vector<Case> cases;
    for (const Size& size : sizes) {
        const std::string count = std::to_string(size.records);
        cases.push_back({"lu03/" + count,
                         size.turns,
                         size.records,
                         std::make_unique<Service>("lu03=" + count),
                         {},
                         {},
                         0});
    }
    return cases;
}

std::vector<Case> mixed_cases() {
    std::vector<Case> cases;
    for (const Size& size : {sizes[1], sizes[2]}) {
        cases.push_back({"mixed/" + std::to_string(size.records),
                         size.turns,
                         size.records * 2 / 5,
                         std::make_unique<Service>(mixed(size.records)),
                         {},
                         {},
                         0});
    }
    return cases;
}

} // namespace

int main() {
    pin_to_one_processor();
    XtToolkitInitialize();
    XtAppContext app = XtCreateApplicationContext();
    bool ok = true;
    std::vector<Case> cases = lu03_cases();
    take_turns(cases, app);
    for (const Case& c : cases) {
        ok &= report_ratio(c);
        if (c.lus > sizes[0].records) { // the fixed part of the store weighs on the smallest
            ok &= report("memory/" + std::to_string(c.lus), c.bytes_per_lu - sizeof(LU03_ENTRY),
                         memory_limit, 0);
        }
    }
    ok &= report_growth("growth/100000", cases[1], cases[2]);
    cases = mixed_cases();
    take_turns(cases, app);
    for (const Case& c : cases) {
        ok &= report_ratio(c);
    }
    ok &= report_growth("mixed_growth/100000", cases[0], cases[1]);
    return ok ? 0 : 1;
}
