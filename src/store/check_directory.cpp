// The check of the directory.
#include "shell/globals.h"
#include "store/checks.h"
#include "store/record_util.h"
#include "store/remove.h"

namespace {

// The check that has stopped the build's own list, and does its work.
void check_dir_in_build(VGA_COMPLETION* completion);

void send(vga_node* node, const DIRECTORY_ENTRY* last, VGA_CALLBACK callback) {
    vga_check_sent(vga_issue_query_dir(node, last, callback), node, VGA_CHECK_DIR);
}

void sweep_remote_systems(vga_node* node) {
    vga_rem_sys* next;
    for (auto* rem_sys = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree); rem_sys != nullptr;
         rem_sys = next) {
        next = vga_next<vga_rem_sys>(rem_sys->node);
        if (rem_sys->check_mark != 0) {
            vga_overwrite_vga_rem_sys(rem_sys);
        }
    }
}

void log_failure(const VCB_HEADER& header) {
    if (!nba_exceptions_suppressed()) {
        nba_pd_print_exception(0x40020002, 40, "x x lx", int{header.opcode}, int{header.primary_rc},
                               static_cast<int>(header.secondary_rc));
    }
}

// The node when the directory is complete, or will not be.
vga_node* check_dir(const VGA_COMPLETION* completion, VGA_CALLBACK callback) {
    auto* node = static_cast<vga_node*>(vga_check_record(completion, VGA_CHECK_DIR));
    if (node == nullptr) {
        return nullptr;
    }
    const VCB_HEADER& header = *vcb_header(completion->vcb);
    if (header.primary_rc == NAP_OK) {
        const vga_page page = vga_process_query(VGA_QUERY_DIR, node, completion->vcb);
        if (page.failed) {
            vga_check_ends(node, VGA_CHECK_DIR);
            return nullptr;
        }
        if (page.more) {
            send(node, static_cast<const DIRECTORY_ENTRY*>(page.last), callback);
            return nullptr;
        }
    }
    if (header.primary_rc == NAP_OK || header.primary_rc == NAP_NO_ENTRIES) {
        sweep_remote_systems(node);
    } else {
        log_failure(header); // what the rest of the list has is unknown: nothing is removed
    }
    vga_check_ends(node, VGA_CHECK_DIR);
    return node;
}

void finish_dir(vga_node* node) {
    if ((node->build_flags & vga_flag(VGA_NODE_DIRECTORY)) != 0) {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_DIRECTORY));
    }
}

void check_dir_in_build(VGA_COMPLETION* completion) {
    if (vga_node* node = check_dir(completion, check_dir_in_build); node != nullptr) {
        finish_dir(node);
        vga_build_query(VGA_QUERY_PLU_DEF, node, nullptr, vga_build_node);
    }
}

} // namespace

void vga_start_check_dir(vga_node* node) {
    const bool in_build =
        vga_check_queued(node, NAP_QUERY_DIRECTORY_ENTRY, 0, vga_build_node) != nullptr ||
        vga_check_queued(node, NAP_QUERY_DIRECTORY_ENTRY, 0, check_dir_in_build) != nullptr;
    vga_check_drop(node, NAP_QUERY_DIRECTORY_ENTRY, 0, nullptr);
    node->checks_running[VGA_CHECK_DIR] = 1;
    for (auto* rem_sys = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree); rem_sys != nullptr;
         rem_sys = vga_next<vga_rem_sys>(rem_sys->node)) {
        rem_sys->check_mark = rem_sys->defined;
    }
    if (gvga_supported[VGA_SUPPORT_DIRECTORY]) {
        while (auto* dir = ntl_avl_first<vga_dir>(node->dir_tree)) {
            vga_delete_vga_dir(dir, false);
        }
    }
    send(node, nullptr, in_build ? check_dir_in_build : vga_check_dir);
}

void vga_check_dir(VGA_COMPLETION* completion) {
    if (vga_node* node = check_dir(completion, vga_check_dir); node != nullptr) {
        finish_dir(node);
    }
}
