// Giving connections and files back. The node software refuses while verbs of the handle are
// outstanding, which a purge leaves behind; so it is asked again until they have come back.
#include "nof/node.h"
#include "shell/exit_record.h"
#include "shell/verb_queue.h"
#include "store/store.h"

namespace {

constexpr NB_ULONG HANDLE_BUSY = 0x5544;

bool issue(NB_USHORT opcode, NB_HANDLE handle, NB_ULONG corr, VGA_CALLBACK callback) {
    auto* vcb = vga_new_vcb<HEADER_ONLY>(opcode);
    if (vcb != nullptr && vga_queue_verb(handle, vcb, corr, callback)) {
        return true;
    }
    vga_free(vcb);
    return false;
}

void try_again(const VGA_COMPLETION* completion, VGA_CALLBACK callback) {
    const VCB_HEADER& header = *vcb_header(completion->vcb);
    if (header.primary_rc == NAP_STATE_CHECK && header.secondary_rc == HANDLE_BUSY &&
        !issue(header.opcode, completion->handle, completion->corr, callback)) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

} // namespace

bool vga_issue_disconnect_node(NB_HANDLE handle, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(NAP_DISCONNECT_NODE, handle, corr, callback);
}
void vga_process_disconnect_node(VGA_COMPLETION* completion) {
    try_again(completion, vga_process_disconnect_node);
}

bool vga_issue_close_file(NB_HANDLE handle, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(NAP_CLOSE_FILE, handle, corr, callback);
}
void vga_process_close_file(VGA_COMPLETION* completion) {
    try_again(completion, vga_process_close_file);
}
