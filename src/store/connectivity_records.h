// DLCs, ports, link stations and PUs.
#pragma once

#include "common/avl.h"
#include "nof/cn.h"
#include "nof/connectivity.h"
#include "nof/pu_lu.h"
#include "ui/viewer/viewer.h"

struct vga_dialog;
struct vga_node;
struct vga_pu;
struct vga_cn;
struct vga_dspu_template; // downstream PU template

struct vga_record_gui { // most kinds: the dialog open on the record
    vga_dialog* dialog;
};

struct vga_dlc {
    NTL_AVL_NODE node; // node DLC tree, key vcb->dlc_name
    NB_HANDLE handle;
    vga_node* parent;
    DLC_ENTRY* vcb; // own block, with the specific data
    vga_record_gui gui_data;
    NTL_AVL_TREE port_tree;  // vga_port by port_node
    std::int16_t card_index; // row of v0_card_types, -1: none
};

struct vga_port {
    NTL_AVL_NODE node; // node port tree, key vcb->port_name
    NTL_AVL_NODE dlc_node;
    NB_HANDLE handle;
    vga_dlc* parent;
    PORT_ENTRY* vcb; // own block, with the specific data
    vga_record_gui gui_data;
    vga_viewer viewer;    // connectivity root
    NTL_AVL_TREE ls_tree; // vga_ls by port_node
    vga_dspu_template* dspu_template;
    vga_cn* cn;
};

struct vga_ls {
    NTL_AVL_NODE node;      // node link station tree, key vcb->ls_name
    NTL_AVL_NODE port_node; // the port's tree
    NB_HANDLE handle;
    vga_port* parent;
    LS_ENTRY* vcb; // own block, with the specific data
    struct {
        vga_dialog* dialog;
        vga_dialog* details_dialog;
    } gui_data;
    vga_viewer viewer; // under the port's row
    vga_pu* pu_entry;  // the local or downstream PU that uses it
    NB_USHORT restart_check;
    NB_USHORT start_pending;   // a start for it is outstanding
    NB_BYTE start_enable;      // the outstanding start is to enable it only
    NB_BYTE state_before_stop; // while a stop for it is outstanding
};

enum VGA_PU_KIND : NB_USHORT { VGA_PU_LOCAL = 0, VGA_PU_DOWNSTREAM = 1 };

struct vga_pu { // local and downstream
    NB_USHORT kind;
    NTL_AVL_NODE node; // node local or downstream PU tree, key vcb.pu_name
    NB_HANDLE handle;
    vga_node* parent;
    PU_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;     // local PU under the DLUR fake port
    NTL_AVL_TREE lu_tree;  // its LUs by name: vga_lu03 and vga_lu62, or vga_down_lu
    NTL_AVL_TREE nau_tree; // the same by NAU address
    vga_ls* ls_entry;
    NB_USHORT start_pending; // a start for it or its link station is outstanding
    NB_BYTE pending : 1;     // its LUs are still to be listed
    NB_BYTE listing : 1;     // the build is listing them now
    NB_ULONG marked;         // downstream: its LUs that are marked for an update
};

struct vga_cn {        // connection network
    NTL_AVL_NODE node; // node connection network tree, key vcb.cn_name
    NB_HANDLE handle;
    vga_node* parent;
    CN_ENTRY vcb;
    NTL_AVL_TREE port_tree; // vga_cn_port
    NB_BYTE pending : 1;    // its ports are still to be listed
    NB_BYTE listing : 1;    // the build is listing them now
    NB_BYTE orphan : 1;     // its only port is being deleted, and it is to go too
};

struct vga_cn_port {   // a port that serves a connection network
    NTL_AVL_NODE node; // key vcb.port_name
    NB_HANDLE handle;
    vga_cn* parent;
    CN_PORT_ENTRY vcb;
    vga_port* port; // its cn points back
};
