// Pools of LUs 0 to 3: the pool of the domain, the part of it that one node has, and in that the
// LUs' own records (vga_lu03 by pool_node, shown by pool_viewer). LUs that belong to no pool are in
// the null pool, whose name is 8 zero bytes and which is not shown.
#pragma once

#include "common/avl.h"
#include "store/lu_records.h"

struct vga_system;

struct vga_sys_pool {
    NB_USHORT lu_type;  // VGA_DEPLU_TYPE_POOL
    NB_USHORT changing; // a dialog is about to redefine it
    NTL_AVL_NODE leaf;  // system pool tree, key pool_name
    NB_HANDLE handle;
    vga_system* parent;
    NB_NAME8E pool_name;
    vga_record_gui gui_data;
    vga_viewer viewer;
    NTL_AVL_TREE node_tree; // vga_pool
    NB_LONG appl_count;     // of its LUs: in use by an application
    NB_LONG total_count;
};

struct vga_pool {
    NTL_AVL_NODE leaf; // the pool's node tree, key node_name
    NB_HANDLE handle;
    vga_sys_pool* parent;
    NB_NODE_NAME node_name;
    NTL_AVL_TREE lu_tree; // vga_lu03 by pool_node
};
