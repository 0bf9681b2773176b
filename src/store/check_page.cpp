// What the checks have in common: their counts, their pages, the verbs they have outstanding.
#include "shell/globals.h"
#include "store/checks.h"
#include "store/record_util.h"
#include "store/store.h"

void vga_check_ends(vga_node* node, VGA_CHECK_KIND kind) {
    if (node->checks_running[kind] != 0) {
        --node->checks_running[kind];
    }
}

void* vga_check_record(const VGA_COMPLETION* completion, VGA_CHECK_KIND kind) {
    void* record = nba_validate_handle(completion->corr);
    if (record != nullptr && !vga_target_gone(completion->vcb)) {
        return record;
    }
    if (vga_node* node = vga_find_node_by_handle(completion->handle); node != nullptr) {
        vga_check_ends(node, kind);
    }
    return nullptr;
}

void vga_check_sent(bool sent, vga_node* node, VGA_CHECK_KIND kind) {
    if (!sent) {
        vga_check_ends(node, kind);
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

VGA_QUEUE_ENTRY* vga_check_queued(const vga_node* node, NB_USHORT opcode, NB_ULONG corr,
                                  VGA_CALLBACK callback) {
    return vga_find_verb([&](const VGA_QUEUE_ENTRY& entry) {
        return entry.target == node->node_handle && entry.callback == callback &&
               vcb_header(entry.vcb)->opcode == opcode && (corr == 0 || entry.corr == corr);
    });
}

void vga_check_drop(const vga_node* node, NB_USHORT opcode, NB_ULONG corr, VGA_CALLBACK callback) {
    if (node->node_handle != 0) { // to the queue, no target means every target
        vga_purge_verb_queue(node->node_handle, opcode, nullptr, corr, callback);
    }
}

vga_check_entries::vga_check_entries(VGA_QUERY query, const void* vcb)
    : row(vga_query_row_of(query)), list(*static_cast<const LIST_QUERY*>(vcb)) {}

const void* vga_check_entries::next() {
    if (list.header.primary_rc != NAP_OK || list.buffer == nullptr || index >= list.num_entries ||
        at + sizeof(NB_USHORT) > list.buffer_size) {
        return nullptr;
    }
    const NB_BYTE* entry = static_cast<const NB_BYTE*>(list.buffer) + at;
    NB_USHORT length;
    std::memcpy(&length, entry, sizeof length);
    if (length < row.entry_size || at + length > list.buffer_size) {
        return nullptr;
    }
    at += length;
    ++index;
    return entry;
}

bool vga_check_entries::more() const {
    return list.header.primary_rc == NAP_OK && list.num_entries < list.total_entries;
}
