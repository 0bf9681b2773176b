// What the indication handlers share; for the status sources only.
#pragma once

#include "common/avl.h"
#include "shell/exit_record.h"
#include "store/records.h"
#include "ui/viewer/viewer.h"
#include "verbs/status.h"

#include <cstring>

template <typename T> T* vga_status_find(const NTL_AVL_TREE& tree, const void* key) {
    return static_cast<T*>(ntl_avl_find(&tree, key));
}

template <typename Record> void vga_status_redraw(void (*hook)(Record*), Record* record) {
    if (hook != nullptr) {
        hook(record);
    }
}

// Logs a name that the store does not know, in the local character set or in EBCDIC.
void vga_log_unknown_local(int subcode, NB_USHORT opcode, const char* name, int width = 8);
void vga_log_unknown_ebcdic(int subcode, NB_USHORT opcode, const NB_BYTE* name, int width = 8);

// Brings the node window's buttons up to date when the one selected row of its connectivity pane is
// of a type, or is that of a record.
void vga_refresh_buttons_of_type(vga_node* node, NB_BYTE type);
void vga_refresh_buttons_of_record(vga_node* node, const void* record);

inline bool vga_being_built(const vga_node* node, VGA_NODE_FLAG flag) {
    return (node->build_flags & vga_flag(flag)) != 0;
}
