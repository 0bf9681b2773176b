// Definitions of the domain: emulator users with their sessions and the LUs they use, CPI-C side
// information, RJE workstations. All belong to the system root.
#pragma once

#include "common/avl.h"
#include "nof/pu_lu.h"
#include "nof/user.h"
#include "store/compare.h"
#include "store/connectivity_records.h"

struct vga_system;

// What the open status window of a user shows: one row per LU in use. The window owns it, makes its
// root and title row, and frees the rows with vga_free_user_status before it closes.
struct vga_user_status_list {
    vga_viewer_root root;
    vga_viewer title;
    NTL_AVL_TREE tree; // vga_user_status, vga_compare_user_status
};

struct vga_user_status { // an LU in use
    NTL_AVL_NODE node;   // tree of its list, key key
    vga_user_status_key key;
    vga_user_status_list* parent;
    NB_USHORT uses;               // LUs of that name, on several nodes
    LU03_APPLICATION application; // as the LU reported it
    vga_viewer viewer;
};

struct vga_user {      // emulator user, or group of users
    NTL_AVL_NODE node; // system user tree, key vcb.user_name
    NB_HANDLE handle;
    vga_system* parent;
    EMULATOR_USER_ENTRY vcb; // without the sessions
    struct {
        vga_dialog* dialog;
        vga_dialog* status_dialog;
        vga_user_status_list* status; // while the status window is open
    } gui_data;
    vga_viewer viewer;
    NTL_AVL_TREE session_tree; // vga_user_sess
    NB_LONG session_count;     // LUs 0 to 3 in use
    NB_ULONG marked[2];        // marked sessions by type: 3270, 5250
};

struct vga_user_sess {
    NTL_AVL_NODE node; // the user's session tree, key vcb.session_name
    NB_HANDLE handle;
    vga_user* parent;
    USER_SESSION vcb;
    vga_record_gui gui_data;
    vga_viewer viewer; // under the user's row
    NB_USHORT update_mark;
};

struct vga_cpic {      // CPI-C side information
    NTL_AVL_NODE node; // system CPI-C tree, key vcb.sym_dest_name
    NB_HANDLE handle;
    vga_system* parent;
    CPIC_SIDE_INFO_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
};

struct vga_rje_wkstn {
    NTL_AVL_NODE node; // system RJE tree, key vcb.wkstn_name
    NB_HANDLE handle;
    vga_system* parent;
    RJE_WKSTN_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
    NB_USHORT update_mask; // bit n: its LU slot n names an LU that is being changed
};
