#include "verbs/settings.h"

bool vga_issue_def_defaults(const vga_node* node, const NODE_DEFAULTS& defaults, NB_ULONG corr,
                            VGA_CALLBACK callback) {
    auto* vcb = vga_new_vcb<DEFINE_DEFAULTS>(NAP_DEFINE_DEFAULTS);
    if (vcb == nullptr) {
        return false;
    }
    vcb->defaults = defaults;
    if (!vga_queue_verb(node->node_handle, vcb, corr, callback)) {
        vga_free_vcb(vcb);
        return false;
    }
    return true;
}
