// LUs of types 0 to 3, downstream LUs, local LUs 6.2 with their partners and modes; mode
// definitions and classes of service.
#pragma once

#include "common/avl.h"
#include "nof/extra_data.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "store/connectivity_records.h"

struct vga_user;         // emulator user
struct vga_lu62_timeout; // LU 6.2 timeout

enum VGA_DEPLU_TYPE : NB_USHORT {
    VGA_DEPLU_TYPE_LU03 = 0,
    VGA_DEPLU_TYPE_LU62 = 1,
    VGA_DEPLU_TYPE_POOL = 2,
};

// What the LU trees of a PU and the system LU tree hold.
struct vga_deplu {
    NB_USHORT lu_type; // VGA_DEPLU_TYPE
};

struct vga_lu_key { // of the system LU tree
    const NB_BYTE* lu_name;
    const char* node_name;
};

struct vga_lu03 { // the node of the largest tree stands beside its key and the name
    NB_USHORT lu_type;
    NB_USHORT changing;       // a dialog is about to redefine or rename it
    NB_USHORT user_query;     // a query for what uses it is outstanding
    NTL_AVL_NODE node;        // its PU's LU tree, key vcb.lu_name
    NTL_AVL_NODE nau_node;    // its PU's NAU tree, key vcb.def_data.nau_address
    NTL_AVL_NODE pool_node;   // the LU tree of its node pool
    NTL_AVL_NODE system_node; // system LU tree, key system_key
    vga_lu_key system_key;
    NB_HANDLE handle;
    vga_pu* parent;
    LU03_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
    vga_viewer pool_viewer;
    vga_user* user;               // the emulator user it is counted under
    EXTRA_DATA_ENTRY* extra_data; // own block, null: none
};

struct vga_down_lu {
    NTL_AVL_NODE node; // its PU's LU tree, key vcb.dslu_name
    NTL_AVL_NODE nau_node;
    NB_HANDLE handle;
    vga_pu* parent;
    DOWN_LU_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
    NB_USHORT update_mark;
    NB_BYTE unlisted; // a check is on that has not met it yet
};

enum VGA_STARTUP_STATUS : NB_BYTE { // what of a local LU 6.2 is still to be listed
    VGA_PLU_LIST = 0x01,
    VGA_MODE_LIST = 0x02,
    VGA_PASSWORD_LIST = 0x04,
};

// How far the list of a local LU's partners and modes has come that is made again.
enum VGA_LU62_CHECK : NB_USHORT {
    VGA_LU62_UNCHECKED,
    VGA_LU62_ASKED,    // nothing has come yet
    VGA_LU62_PARTNERS, // a page of partners has come
    VGA_LU62_MODES,    // a page of modes has come
    VGA_LU62_AGAIN,    // something changed behind a page that has come: one more list is due
};

struct vga_lu62 {
    NB_USHORT lu_type;
    NB_BYTE startup_status;  // VGA_STARTUP_STATUS
    NB_BYTE listing;         // the build is listing its details now
    NTL_AVL_NODE node;       // node LU 6.2 tree, key vcb.lu_name
    NTL_AVL_NODE alias_node; // node LU 6.2 alias tree, key vcb.def.lu_alias
    NTL_AVL_NODE pu_node;    // dependent: its PU's LU tree
    NTL_AVL_NODE nau_node;   // dependent: its PU's NAU tree
    NB_HANDLE handle;
    vga_node* parent;
    LU62_ENTRY vcb;
    struct {
        vga_dialog* dialog;
        vga_dialog* act_sess_dialog;
    } gui_data;
    vga_viewer viewer;
    vga_viewer ls_r_title; // heading of its routes, in the list while it has some
    vga_pu* parent_pu;
    vga_lu62_timeout* timeout;
    NTL_AVL_TREE plu_tree;        // vga_plu
    NTL_AVL_TREE ls_routing_tree; // link station routing, vga_compare_rem_plu
    NTL_AVL_TREE tp_tree;         // its TPs
    NB_LONG act_sess_count;       // sum over its modes
    NB_USHORT checking;           // a VGA_LU62_CHECK
    NB_USHORT changing;           // a dialog is about to redefine it
};

struct vga_plu {       // partner of a local LU 6.2
    NTL_AVL_NODE node; // the LU's partner tree, key vcb.plu_name
    NB_HANDLE handle;
    vga_lu62* parent;
    PLU_ENTRY vcb;
    NTL_AVL_TREE mode_tree; // vga_mode
    NB_USHORT check_mark;
};

struct vga_mode {      // between a local LU 6.2 and a partner
    NTL_AVL_NODE node; // the partner's mode tree, key vcb.mode_name
    NB_HANDLE handle;
    vga_plu* parent;
    MODE_ENTRY vcb;
    struct {
        vga_dialog* dialog;
        vga_dialog* status_dialog;
    } gui_data;
    vga_viewer viewer;
    NB_LONG act_sess_count;
    NB_USHORT check_mark;
};

struct vga_mode_def {
    NTL_AVL_NODE node; // node mode definition tree, key vcb.mode_name
    NB_HANDLE handle;
    vga_node* parent;
    MODE_DEF_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
    vga_lu62_timeout* timeout;
    NB_USHORT sna_defined; // made by this program, not listed by the node
};

struct vga_cos {
    NTL_AVL_NODE node; // cos_tree, key vcb.cos_name
    NB_HANDLE handle;
    vga_node* parent;
    COS_ENTRY vcb;
    vga_record_gui gui_data;
    NTL_AVL_TREE node_row_tree; // vga_cos_row
    NTL_AVL_TREE tg_row_tree;   // vga_cos_row
};

struct vga_cos_row {   // node row or TG row
    NTL_AVL_NODE node; // key vcb.row
    NB_HANDLE handle;
    vga_cos* parent;
    COS_ROW_ENTRY vcb;
};
