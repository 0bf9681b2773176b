// The TN3270 server: clients with their sessions, associations of printers, redirection.
#pragma once

#include "common/avl.h"
#include "nof/tn3270.h"
#include "store/connectivity_records.h"

struct vga_tn_client {
    NTL_AVL_NODE node; // node TN3270 client tree, key vcb.client
    NB_HANDLE handle;
    vga_node* parent;
    TN3270_ACCESS_ENTRY vcb; // without the sessions
    vga_record_gui gui_data;
    NTL_AVL_TREE sess_tree; // vga_tn_sess
    NB_LONG update_count;   // its sessions with an update mark
};

struct vga_tn_sess {
    NTL_AVL_NODE node; // its client's tree, key vcb.port
    NB_HANDLE handle;
    vga_tn_client* parent;
    TN3270_SESSION vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
    NB_USHORT display_mark; // its display or printer LU is being renamed
    NB_USHORT printer_mark;
};

struct vga_tn_assoc {
    NTL_AVL_NODE node; // node association tree, key vcb.display_lu_name
    NB_HANDLE handle;
    vga_node* parent;
    TN3270_ASSOCIATION_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
    NB_USHORT display_mark; // its display or printer LU is being renamed
    NB_USHORT printer_mark;
};

struct vga_tn_redirect {
    NTL_AVL_NODE node; // node redirector tree, key vcb.key
    NB_HANDLE handle;
    vga_node* parent;
    TN_REDIRECT_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
};
