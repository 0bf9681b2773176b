// Link station routes and session timeouts of LUs 6.2, and the node as a host: primary lines and
// their LUs.
#pragma once

#include "common/avl.h"
#include "nof/primary.h"
#include "nof/routing.h"
#include "store/compare.h"
#include "store/connectivity_records.h"
#include "store/remote_records.h"

struct vga_lu62;

struct vga_ls_routing {
    NTL_AVL_NODE node; // the LU's routing tree, key key
    vga_rem_plu_key key;
    NB_HANDLE handle;
    vga_lu62* parent;
    LS_ROUTING_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer; // under the LU's route heading
};

struct vga_lu62_timeout {
    NTL_AVL_NODE node; // node LU 6.2 timeout tree, key key
    vga_lu62_timeout_key key;
    NB_HANDLE handle;
    vga_node* parent;
    LU62_TIMEOUT_ENTRY vcb;
    // What vcb.resource_type says: the vga_node, vga_lu62 or vga_mode_def whose timeout it is and
    // that points back; null while that is not in the store, and for partner LUs.
    void* resource;
};

struct vga_primary_line {
    NTL_AVL_NODE node; // node primary line tree, key vcb.line_name
    NB_HANDLE handle;
    vga_node* parent;
    PRIMARY_LINE_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;     // under the primary line fake port
    NTL_AVL_TREE lu0_tree; // vga_primary_lu0
};

struct vga_primary_lu0 {
    NTL_AVL_NODE node; // its line's tree, key vcb.lu_name
    NB_HANDLE handle;
    vga_primary_line* parent;
    PRIMARY_LU0_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer; // under the line's row
};
