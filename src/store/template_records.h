// Templates of downstream PUs with the LUs that each PU made from one gets.
#pragma once

#include "common/avl.h"
#include "nof/cn.h"
#include "store/connectivity_records.h"

struct vga_dspu_template {
    NTL_AVL_NODE node; // node DSPU template tree, key vcb.template_name
    NB_HANDLE handle;
    vga_node* parent;
    DSPU_TEMPLATE_ENTRY vcb; // without the ranges
    vga_record_gui gui_data;
    NTL_AVL_TREE dslu_tree; // vga_dslu_template
    vga_viewer_root dslu_root;
};

struct vga_dslu_template {
    NTL_AVL_NODE node; // its template's tree, key from vcb.first_nau on
    NB_HANDLE handle;
    vga_dspu_template* parent;
    DSLU_TEMPLATE vcb;
    struct {
        vga_dialog* dslup_dialog;
    } gui_data;
    vga_viewer viewer; // in its template's root
};
