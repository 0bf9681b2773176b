// What the store costs beside the build of one node: several nodes that are built side by side, one
// status indication for one of many LUs with its row, and the removal of a node beside its build.
// Processor time, medians.
#include "bare_client.h"
#include "measure.h"
#include "store_build.h"

#include "nof/cn.h"
#include "nof/pu_lu.h"
#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "shell/verb_queue.h"
#include "store/remove.h"
#include "store/store.h"
#include "verbs/status.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace bench;

constexpr unsigned resources = 100'000;
constexpr unsigned lus_per_pu = 250;
constexpr double indication_limit = 20; // microseconds
constexpr double removal_limit = 1.0;   // of the time that filling the store, or its build, takes
constexpr double side_by_side_limit = 1.2; // our median time by that of as many bare clients
constexpr unsigned nodes = 6;
constexpr int turns = 9;

double seconds() {
    timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
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

// Nodes that are built at the same time, beside as many bare clients.
double side_by_side(XtAppContext app) {
    const Service service("node=" + std::to_string(nodes) + ",lu03=10000");
    std::vector<double> ours;
    std::vector<double> peer;
    for (int turn = 0; turn < turns; ++turn) {
        peer.push_back(read_domain(service, nodes).seconds);
        start_store(app);
        ours.push_back(build_store(service));
        end_store();
    }
    return median(ours) / median(peer);
}

// The removal of a node by its build over the wire.
double removal_by_build(XtAppContext app) {
    const Service service("lu03=" + std::to_string(resources));
    std::vector<double> ratio;
    for (int turn = 0; turn < turns; ++turn) {
        start_store(app);
        const double built = build_store(service);
        auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree);
        const double start = seconds();
        vga_do_free_node_res(node, true, nullptr);
        ratio.push_back((seconds() - start) / built);
        end_store();
    }
    return median(ratio);
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
    pin_to_one_processor();
    XtToolkitInitialize();
    gvga_appcontext = XtCreateApplicationContext();
    bool ok = report("six_nodes", side_by_side(gvga_appcontext), side_by_side_limit);
    ok &= report("removal_by_build", removal_by_build(gvga_appcontext), removal_limit);
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
    ok &= report("indication_microseconds", median(indication), indication_limit);
    ok &= report("removal_by_filling", median(removed) / median(built), removal_limit);
    vga_destroy_data_structures();
    vga_free_verb_queues();
    return ok ? 0 : 1;
}
