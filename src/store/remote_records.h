// Directory entries, remote systems, their partner LUs and the sessions with them.
#pragma once

#include "common/avl.h"
#include "nof/lu62.h"
#include "store/connectivity_records.h"

struct vga_dir {               // directory entry
    NTL_AVL_NODE node;         // node directory tree, key vcb: its name and type
    NTL_AVL_NODE parent_node;  // the tree of the control point it belongs to, or the server tree
    NTL_AVL_TREE* parent_tree; // the tree that holds parent_node
    NB_HANDLE handle;
    vga_node* parent;
    vga_dir* owner; // the control point it belongs to, null at the top
    DIRECTORY_ENTRY vcb;
    NTL_AVL_TREE end_node_tree; // of a network node: its end nodes by name
    NTL_AVL_TREE lu_tree;       // of a control point: its LUs
};

struct vga_rem_plu_key {
    NB_FQNAME plu_name;
    NB_USHORT number; // NAP_RESOURCE_TYPE
};

struct vga_rem_sys {
    NTL_AVL_NODE node; // node remote system tree, key cp_name
    NB_HANDLE handle;
    vga_node* parent;
    NB_FQNAME cp_name;   // zero: the network's fake remote system
    NB_USHORT defined;   // known from the directory or a definition
    DIRECTORY_ENTRY vcb; // the definition, zero while there is none
    vga_record_gui gui_data;
    vga_viewer viewer;
    NTL_AVL_TREE remote_plu_tree; // vga_rem_plu
    NB_LONG session_count;        // sum over its partners
    NB_USHORT check_mark;
};

struct vga_rem_plu {
    NTL_AVL_NODE node; // remote_plu_tree, key key
    vga_rem_plu_key key;
    NB_HANDLE handle;
    vga_rem_sys* parent;
    NB_USHORT located;   // the directory places it under this system
    NB_USHORT plu_defn;  // it comes from a partner LU definition
    PLU_DEF_ENTRY defn;  // zero while there is no definition
    DIRECTORY_ENTRY loc; // zero while it is not located
    vga_record_gui gui_data;
    vga_viewer viewer;
    NTL_AVL_TREE sess_tree; // vga_rem_sess
    NB_LONG session_count;  // sum over its sessions
};

struct vga_rem_sess_key {
    NB_NAME8E lu_name; // of the local LU
    NB_NAME8E mode_name;
};

struct vga_rem_sess {  // sessions of one local LU with a partner on one mode
    NTL_AVL_NODE node; // sess_tree, key key
    vga_rem_sess_key key;
    NB_HANDLE handle;
    vga_rem_plu* parent;
    vga_record_gui gui_data;
    vga_viewer viewer;
    NB_LONG session_count;
    NB_USHORT check_mark;
};
