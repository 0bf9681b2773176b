// Definitions of transaction programs, and how the invokable ones are loaded.
#pragma once

#include "common/avl.h"
#include "nof/tp.h"
#include "store/connectivity_records.h"

struct vga_tp_def {
    NTL_AVL_NODE node; // node TP definition tree, key vcb.tp_name
    NB_HANDLE handle;
    vga_node* parent;
    TP_DEF_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
};

struct vga_tp_load_info {
    NTL_AVL_NODE node; // node load-information tree, key from vcb->tp_name on
    NB_HANDLE handle;
    vga_node* parent;
    TP_LOAD_INFO_ENTRY* vcb; // own block, with vcb->def_data.ltv_length bytes of LTV items
    vga_record_gui gui_data;
    vga_viewer viewer;
    NB_USHORT hex_tp_name;    // the name is shown in hexadecimal
    NB_USHORT tp_name_length; // characters of the name as shown
};
