// What the store costs while it follows a node: one status indication for one of many LUs with its
// row, and the removal of a node beside its build. Processor time, medians.
#include "nof/cn.h"
#include "nof/pu_lu.h"
#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "shell/verb_queue.h"
#include "store/remove.h"
#include "store/store.h"
#include "verbs/status.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <vector>

namespace {

constexpr unsigned resources = 100'000;
constexpr unsigned lus_per_pu = 250;
constexpr double indication_limit = 20; // microseconds
constexpr double removal_limit = 1.0;   // of the time that filling the store takes
constexpr int turns = 7;

double seconds() {
    timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

bool report(const char* name, double value, double limit) {
    const bool ok = value <= limit;
    std::printf("bench_store %s %.2f %.2f %s\n", name, value, limit, ok ? "ok" : "over");
    return ok;
}

template <std::size_t N> void put_name(NB_BYTE (&field)[N], const char* prefix, unsigned number) {
    char text[16];
    std::snprintf(text, sizeof text, "%s%0*u", prefix, static_cast<int>(8 - std::strlen(prefix)),
                  number);
    std::memcpy(field, text, N);
    nba_local_to_ebcdic(field, N);
}

// Fills the store as the build does, without the wire: what removal is measured against here is
// less than a build.
vga_node* fill() {
    NODE_ALL_ENTRY entry{};
    entry.length = sizeof entry;
    std::strcpy(entry.node_name, "bench");
    vga_node* node = vga_insert_vga_node(vga_init_vga_node(&entry));
    node->node_state = VGA_NODE_STATE_ACTIVE;
    vga_pu* pu = nullptr;
    for (unsigned i = 0; i < resources; ++i) {
        if (i % lus_per_pu == 0) {
            PU_ENTRY pu_entry{};
            pu_entry.length = sizeof pu_entry;
            put_name(pu_entry.pu_name, "PU", i / lus_per_pu);
            pu_entry.host_attachment = NAP_DLUR_ATTACHED;
            pu = vga_insert_vga_local_pu(vga_init_vga_local_pu(node, &pu_entry), node);
            pu->pending = 0;
        }
        LU03_ENTRY lu{};
        lu.length = sizeof lu;
        put_name(lu.lu_name, "L", i);
        std::memcpy(lu.def_data.pu_name, pu->vcb.pu_name, sizeof lu.def_data.pu_name);
        lu.def_data.nau_address = static_cast<NB_BYTE>(i % lus_per_pu + 1);
        vga_insert_vga_lu03(vga_init_vga_lu03(pu, &lu), pu);
    }
    node->build_flags = 0;
    return node;
}

double indication_microseconds(vga_node* node) {
    constexpr unsigned count = 20'000;
    std::vector<LU_0_TO_3_INDICATION> indications(count);
    std::mt19937 random(1);
    for (unsigned i = 0; i < count; ++i) {
        const unsigned number = random() % resources;
        LU_0_TO_3_INDICATION& ind = indications[i];
        ind.header.opcode = NAP_LU_0_TO_3_INDICATION;
        ind.header.primary_rc = NAP_INDICATION;
        put_name(ind.pu_name, "PU", number / lus_per_pu);
        put_name(ind.lu_name, "L", number);
        ind.lu_active = static_cast<NB_BYTE>(i / 2 % 2);
        ind.plu_session_active = static_cast<NB_BYTE>(i % 2);
    }
    const double start = seconds();
    for (LU_0_TO_3_INDICATION& ind : indications) {
        VGA_COMPLETION completion{0, &ind, node->handle};
        vga_indication_handler(&completion, &ind);
    }
    return (seconds() - start) / count * 1e6;
}

} // namespace

int main() {
    XtToolkitInitialize();
    gvga_appcontext = XtCreateApplicationContext();
    gvga_metrics.item_height = 16;
    gvga_messages[231] = gvga_messages[232] = gvga_messages[233] = "";
    nba_hm_initialise();
    vga_init_verb_queues();
    gvga_system = vga_init_vga_system();
    // A second node keeps the removal from ending the program.
    gvga_supported[VGA_SUPPORT_CLIENT_SERVER] = 1;
    std::vector<double> indication;
    std::vector<double> built;
    std::vector<double> removed;
    for (int turn = 0; turn < turns; ++turn) {
        double start = seconds();
        vga_node* node = fill();
        built.push_back(seconds() - start);
        indication.push_back(indication_microseconds(node));
        start = seconds();
        vga_do_free_node_res(node, true, nullptr);
        removed.push_back(seconds() - start);
    }
    bool ok = report("indication_microseconds", median(indication), indication_limit);
    ok &= report("removal_by_filling", median(removed) / median(built), removal_limit);
    vga_destroy_data_structures();
    vga_free_verb_queues();
    return ok ? 0 : 1;
}
