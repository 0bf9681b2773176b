// User IDs with their passwords and profiles, access lists, passwords between LUs.
#pragma once

#include "common/avl.h"
#include "nof/security.h"
#include "store/compare.h"
#include "store/connectivity_records.h"

struct vga_userid_password {
    NTL_AVL_NODE node; // node user ID tree, key vcb.user_id
    NB_HANDLE handle;
    vga_node* parent;
    USERID_PASSWORD_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
};

struct vga_security_access_list {
    NTL_AVL_NODE node; // node access list tree, key vcb.list_name
    NB_HANDLE handle;
    vga_node* parent;
    SECURITY_ACCESS_LIST_ENTRY vcb; // without the users
    vga_record_gui gui_data;
    vga_viewer viewer;
    NTL_AVL_TREE user_tree; // vga_security_access_user
};

struct vga_security_access_user {
    NTL_AVL_NODE node; // its list's tree, key vcb.user_id
    NB_HANDLE handle;
    vga_security_access_list* parent;
    ACCESS_LIST_USER vcb;
};

struct vga_lu_lu_password {
    NTL_AVL_NODE node;  // node LU-LU password tree, key key
    vga_sl_sec_key key; // with the name of the local LU, however the entry names it
    NB_HANDLE handle;
    vga_node* parent;
    LU_LU_PASSWORD_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
};
