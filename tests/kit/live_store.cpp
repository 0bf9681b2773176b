#include "kit/live_store.h"

#include "kit/process.h"

#include "nof/node.h"
#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "shell/start.h"
#include "store/build.h"
#include "store/store.h"
#include "verbs/config.h"
#include "verbs/manage.h"
#include "verbs/status.h"

#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

namespace kit {

namespace {

bool built;
bool answered;

bool idle() {
    return nba_q_empty(&gvga_nof_queue) && nba_q_empty(&gvga_immediate_nof_queue);
}

// A verb whose answer comes behind everything that the node has sent before.
bool send_marker() {
    const auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree);
    auto* block = vga_new_vcb<QUERY_NODE>(NAP_QUERY_NODE);
    answered = false;
    return node != nullptr && block != nullptr &&
           vga_queue_verb(node->node_handle, block, 0, [](VGA_COMPLETION*) { answered = true; });
}

void write_all(int fd, const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        const ssize_t count = write(fd, text.data() + at, text.size() - at);
        if (count <= 0) {
            return;
        }
        at += static_cast<std::size_t>(count);
    }
}

} // namespace

LIVE_STORE::LIVE_STORE(const std::string& socket) {
    nof_terminate(); // a link that something before has opened, to this node or another
    for (const auto& [name, value] : data_environment()) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    setenv("TESSALY_NODE_SOCKET", socket.c_str(), 1);
    if (gvga_appcontext == nullptr) {
        XtToolkitInitialize();
        gvga_appcontext = XtCreateApplicationContext();
    }
    vga_load_messages();
    gvga_exit_code = 0;
    gvga_querybuf_size = 4096;
    gvga_metrics.item_height = 16;
    gvga_supported[VGA_SUPPORT_CPIC] = 1;
    gvga_supported[VGA_SUPPORT_RJE] = 1;
    vpm_asm_use_xt_sched(gvga_appcontext, XtAppAddInput, XtRemoveInput);
    vpm_set_io_limit(10);
    nba_hm_initialise();
    vga_init_verb_queues();
    gvga_store_hooks = {};
    gvga_store_hooks.system_built = [] { built = true; };
    vga_install_status_handlers();
    vga_install_manage_handlers();
    vga_install_config_handlers();
    gvga_read_only = 0;
    gvga_system = vga_init_vga_system();
}

LIVE_STORE::~LIVE_STORE() {
    nof_terminate();
    vga_free_verb_queues();
    vga_destroy_data_structures();
    gvga_system = nullptr;
    vga_free_messages();
    v0_close_message_catalog(&gvga_catalog);
    gvga_store_hooks = {};
    gvga_supported[VGA_SUPPORT_CPIC] = 0;
    gvga_supported[VGA_SUPPORT_RJE] = 0;
}

bool LIVE_STORE::pump(bool (*done)()) {
    static bool late;
    late = false;
    const XtIntervalId deadline = XtAppAddTimeOut(
        gvga_appcontext, 30'000, [](XtPointer, XtIntervalId*) { late = true; }, nullptr);
    while (!late && gvga_exit_code == 0 && !done()) {
        vga_main_loop_step();
    }
    if (!late) {
        XtRemoveTimeOut(deadline);
    }
    return gvga_exit_code == 0 && done();
}

bool LIVE_STORE::build() {
    built = false;
    vga_start_build_system();
    return pump([] { return built; }) && settle();
}

bool LIVE_STORE::settle() {
    // What the first round brings may lead to more.
    for (int round = 0; round < 2; ++round) {
        if (!send_marker() || !pump([] { return answered && idle(); })) {
            return false;
        }
    }
    return true;
}

void LIVE_STORE::poll() {
    while (gvga_exit_code == 0 &&
           (XtAppPending(gvga_appcontext) != 0 || !nba_q_empty(&gvga_immediate_nof_queue))) {
        vga_main_loop_step();
    }
}

STORE_DUMP LIVE_STORE::fresh(const std::string& socket) {
    int result[2];
    if (pipe(result) != 0) {
        return {"no pipe", {"no pipe"}, {}};
    }
    const pid_t child = fork();
    if (child == 0) {
        nof_terminate();
        nba_hm_terminate();
        gvga_appcontext = nullptr; // with the inputs and timers of the parent
        LIVE_STORE store(socket);
        if (!store.build()) {
            write_all(result[1], "F the build failed\n");
        } else {
            const STORE_DUMP dump = dump_store();
            for (const std::string& fault : dump.faults) {
                write_all(result[1], "F " + fault + '\n');
            }
            write_all(result[1], "T" + dump.text);
        }
        _exit(0);
    }
    close(result[1]);
    std::string text;
    char part[65536];
    for (ssize_t count; (count = read(result[0], part, sizeof part)) > 0;) {
        text.append(part, static_cast<std::size_t>(count));
    }
    close(result[0]);
    waitpid(child, nullptr, 0);
    STORE_DUMP dump;
    while (text.starts_with("F ")) {
        const std::size_t end = text.find('\n');
        dump.faults.push_back("afresh: " + text.substr(2, end - 2));
        text.erase(0, end + 1);
    }
    dump.text = text.starts_with('T') ? text.substr(1) : "nothing\n";
    return dump;
}

} // namespace kit
