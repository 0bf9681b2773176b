#include "store_build.h"
#include "bare_client.h"

#include "common/alloc.h"
#include "nof/nof.h"
#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "shell/verb_queue.h"
#include "store/build.h"
#include "store/store.h"

#include <algorithm>
#include <iterator>
#include <malloc.h>

namespace bench {
namespace {

bool built;

} // namespace

void start_store(XtAppContext app) {
    gvga_exit_code = 0;
    gvga_appcontext = app;
    gvga_querybuf_size = page_size;
    gvga_metrics.item_height = 16;
    std::fill(std::begin(gvga_messages), std::end(gvga_messages), ""); // texts are for rows
    vpm_asm_use_xt_sched(app, XtAppAddInput, XtRemoveInput);
    vpm_set_io_limit(10);
    nba_hm_initialise();
    vga_init_verb_queues();
    gvga_supported[VGA_SUPPORT_CPIC] = gvga_supported[VGA_SUPPORT_RJE] = 1;
    gvga_supported[VGA_SUPPORT_CLIENT_SERVER] = vsm_is_client_server() != 0;
    gvga_store_hooks.system_built = [] { built = true; };
    gvga_system = vga_init_vga_system();
}

double build_store(const Service& service) {
    built = false;
    const double seconds = service.seconds([] {
        vga_start_build_system();
        while (!built && gvga_exit_code == 0) {
            XtAppProcessEvent(gvga_appcontext, XtIMAll);
        }
    });
    if (gvga_exit_code != 0) {
        fail("the build failed");
    }
    return seconds;
}

void end_store() {
    vga_destroy_data_structures();
    nof_terminate();
    vga_free_verb_queues();
    nba_hm_terminate();
}

std::size_t allocated() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace bench
