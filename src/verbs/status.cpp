// The entry of the indications of a node's resources, and what their handlers share.
#include "verbs/status.h"

#include "nof/connectivity.h"
#include "nof/ipbridge.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "store/checks.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "verbs/status_util.h"

#include <algorithm>
#include <iterator>

vga_status_hooks gvga_status_hooks;

namespace {

// The partners and modes of every local LU.
void start_check_lu62s(vga_node* node) {
    for (auto* lu = ntl_avl_first<vga_lu62>(node->lu62_tree); lu != nullptr;
         lu = static_cast<vga_lu62*>(ntl_avl_next(&lu->node))) {
        vga_start_check_lu62(lu);
    }
}

struct KIND_ROW {
    NB_USHORT opcode;
    void (*process)(vga_node* node, const void* block);
    void (*start_check)(vga_node* node); // after lost indications
};
constexpr KIND_ROW kinds[] = {
    {NAP_DIRECTORY_INDICATION, vga_process_dir_ind, vga_start_check_dir},
    {NAP_LS_INDICATION, vga_process_ls_ind, vga_start_check_ls},
    {NAP_MODE_INDICATION, vga_process_mode_ind, start_check_lu62s},
    {NAP_PLU_INDICATION, vga_process_plu_ind, start_check_lu62s},
    {NAP_PORT_INDICATION, vga_process_port_ind, vga_start_check_port},
    {NAP_DLC_INDICATION, vga_process_dlc_ind, vga_start_check_dlc},
    {NAP_LU_0_TO_3_INDICATION, vga_process_lu03_ind, vga_start_check_lu03},
    {NAP_PU_INDICATION, vga_process_local_pu_ind, vga_start_check_pu},
    {NAP_DOWNSTREAM_PU_INDICATION, vga_process_down_pu_ind, vga_start_check_down_pu},
    {NAP_DOWNSTREAM_LU_INDICATION, vga_process_down_lu_ind, vga_start_check_down_lu},
    {NAP_LOCAL_LU_INDICATION, vga_process_local_lu_ind, vga_start_check_local_lu},
    {NAP_DLUR_PU_INDICATION, vga_process_dlur_pu_ind, vga_start_check_dlur_pu},
    {NAP_IPBRIDGE_INDICATION, vga_process_ipbridge_ind, vga_start_check_ipbridge_sess},
};
static_assert(std::ranges::is_sorted(kinds, {}, &KIND_ROW::opcode));

constexpr std::size_t RESYNC_OFFSET = sizeof(VCB_HEADER); // the same in every kind
static_assert(offsetof(DIRECTORY_INDICATION, resync) == RESYNC_OFFSET);
static_assert(offsetof(LS_INDICATION, resync) == RESYNC_OFFSET);
static_assert(offsetof(PU_INDICATION, resync) == RESYNC_OFFSET);
static_assert(offsetof(IPBRIDGE_INDICATION, resync) == RESYNC_OFFSET);

bool has_window_with_one_row_selected(const vga_node* node) {
    const vga_dialog* window = node->gui_data.node_window;
    return window != nullptr && window->open && node->links_root.select_count == 1;
}

} // namespace

void vga_install_status_handlers() {
    gvga_dispatch.indication = vga_indication_handler;
    gvga_dispatch.nof_status = vga_process_nof_status_ind;
    gvga_dispatch.server = vga_process_server_ind;
    gvga_dispatch.sna_net = vga_process_sna_net_ind;
    gvga_store_hooks.implicit_ls = vga_query_implicit_ls;
}

void vga_indication_handler(VGA_COMPLETION* completion, void* block) {
    vga_node* node = vga_validate_node(completion->corr);
    const NB_USHORT opcode = vcb_header(block)->opcode;
    const auto* row = std::ranges::lower_bound(kinds, opcode, {}, &KIND_ROW::opcode);
    if (node == nullptr || row == std::end(kinds) || row->opcode != opcode) {
        return;
    }
    if (static_cast<const NB_BYTE*>(block)[RESYNC_OFFSET] == 1) {
        row->start_check(node);
    } else {
        row->process(node, block);
    }
}

void vga_log_unknown_local(int subcode, NB_USHORT opcode, const char* name, int width) {
    if (!nba_exceptions_suppressed()) {
        nba_pd_print_exception(0x40020004, subcode, "x ca", int{opcode}, width, name);
    }
}

void vga_log_unknown_ebcdic(int subcode, NB_USHORT opcode, const NB_BYTE* name, int width) {
    if (!nba_exceptions_suppressed()) {
        nba_pd_print_exception(0x40020004, subcode, "x es", int{opcode}, width, name);
    }
}

void vga_refresh_buttons_of_type(vga_node* node, NB_BYTE type) {
    if (has_window_with_one_row_selected(node) && node->links_root.select_type == type) {
        vga_status_redraw(gvga_status_hooks.button_states, node);
    }
}

void vga_refresh_buttons_of_record(vga_node* node, const void* record) {
    if (has_window_with_one_row_selected(node) &&
        vga_viewer_get_selection(&node->links_root) == record) {
        vga_status_redraw(gvga_status_hooks.button_states, node);
    }
}
