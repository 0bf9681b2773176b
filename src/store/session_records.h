// Sessions the node reports while they run: RTP connections, and APPC over IP.
#pragma once

#include "common/avl.h"
#include "nof/ipbridge.h"
#include "nof/rtp.h"
#include "store/connectivity_records.h"

struct vga_rtp_conn {
    NTL_AVL_NODE node;      // node RTP connection tree, key vcb.connection_id
    NTL_AVL_NODE name_node; // node RTP connection name tree, key vcb.rtp_name
    NB_HANDLE handle;
    vga_node* parent;
    RTP_CONNECTION_ENTRY vcb;
    vga_record_gui gui_data; // its status display
    vga_viewer viewer;
    NB_USHORT check_mark;
};

struct vga_appcip_sess {
    NTL_AVL_NODE node;    // node APPC-over-IP session tree, key from vcb.session.lu_name on
    NTL_AVL_NODE id_node; // the node's tree of them by vcb.session.session_id
    NB_HANDLE handle;
    vga_node* parent;
    IPBRIDGE_APPCIP_ENTRY vcb;
    vga_record_gui gui_data;
    vga_viewer viewer;
    NB_USHORT check_mark;
};
