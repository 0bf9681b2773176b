// Verbs that change settings of a node as a whole.
#pragma once

#include "shell/verb_queue.h"
#include "store/records.h"

// Sends NAP_DEFINE_DEFAULTS to the node; corr and callback are the completion's. False: no memory.
bool vga_issue_def_defaults(const vga_node* node, const NODE_DEFAULTS& defaults, NB_ULONG corr,
                            VGA_CALLBACK callback);
