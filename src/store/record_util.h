// What making, merging and freeing has in common for every kind of record; for this folder only.
#pragma once

#include "common/alloc.h"
#include "common/avl.h"
#include "nof/vcb.h"
#include "shell/exit_record.h"
#include "store/records.h"
#include "ui/framework/dialog.h"
#include "ui/viewer/viewer_type.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

// A zeroed record with its handle; null, with exit code 1 set, when either is missing.
template <typename T> T* vga_new_record() {
    T* record = vga_new<T>();
    if (record != nullptr) {
        record->handle = nba_create_handle(record);
        if (record->handle != 0) {
            return record;
        }
        vga_free(record);
    }
    VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    return nullptr;
}

template <typename T> void vga_free_record(T* record) {
    nba_destroy_handle(record->handle);
    vga_free(record);
}

// Copies an entry into a record, as far as the entry goes.
template <typename T> void vga_copy_entry(T& vcb, const T* entry) {
    const std::size_t length = std::min<std::size_t>(entry->length, sizeof(T));
    std::memcpy(&vcb, entry, length);
    std::memset(reinterpret_cast<NB_BYTE*>(&vcb) + length, 0, sizeof(T) - length);
}

// A copy of an entry with its specific data as a block of its own, the data rounded up to 4 bytes;
// null, with exit code 1 set, without memory.
template <typename T> T* vga_copy_block(const T* entry, std::size_t specific_length) {
    const std::size_t size = sizeof(T) + (specific_length + 3) / 4 * 4;
    T* block = vga_new<T>(size);
    if (block == nullptr) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return nullptr;
    }
    std::memcpy(block, entry, std::min<std::size_t>(entry->length, size));
    return block;
}

// Copies part of an entry from one to another.
inline void vga_carry_over(void* to, const void* from, std::size_t offset, std::size_t length) {
    std::memcpy(static_cast<NB_BYTE*>(to) + offset, static_cast<const NB_BYTE*>(from) + offset,
                length);
}

template <typename T> T* vga_find(const NTL_AVL_TREE& tree, const void* key) {
    return static_cast<T*>(ntl_avl_find(&tree, key));
}
template <typename T> T* vga_next(const NTL_AVL_NODE& node) {
    return static_cast<T*>(ntl_avl_next(&node));
}
template <typename T> T* vga_prev(const NTL_AVL_NODE& node) {
    return static_cast<T*>(ntl_avl_prev(&node));
}

// The record that an insertion found in its way.
template <typename T> T* vga_older(const NTL_AVL_TREE& tree, const void* key) {
    T* retval = vga_find<T>(tree, key);
    VGA_ASSERT_TEXT(retval != nullptr, "retval != NULL");
    return retval;
}

inline void vga_leave_tree(NTL_AVL_TREE* tree, NTL_AVL_NODE* node) {
    if (AVL_IN_TREE(*node)) {
        ntl_avl_delete(tree, node);
    }
}

inline bool vga_is_shown(const vga_viewer& viewer) {
    return AVL_IN_TREE(viewer.node);
}
// A row that is in no list yet.
inline void vga_init_row(vga_viewer* viewer, NB_BYTE type, void* record) {
    vga_create_viewer(nullptr, viewer, type, record, nullptr, nullptr);
}
inline void vga_delete_row(vga_viewer_root* root, vga_viewer* viewer, bool redraw) {
    if (vga_is_shown(*viewer)) {
        vga_delete_viewer(root, viewer, redraw);
    }
}
inline void vga_update_row(vga_viewer_root* root, vga_viewer* viewer) {
    if (vga_is_shown(*viewer)) {
        vga_update_viewer(root, viewer);
    }
}
// The same for a record in another state: the buttons of its window may depend on it.
inline void vga_update_state_row(vga_viewer_root* root, vga_viewer* viewer) {
    vga_update_row(root, viewer);
    if (vga_is_shown(*viewer) && viewer->selected != 0) {
        vga_viewer_tell_owner(root, viewer);
    }
}

// A name of 8 or more bytes that names nothing: zeros or blanks (of either character set).
inline bool vga_blank_name(const void* name, std::size_t width) {
    const auto* bytes = static_cast<const NB_BYTE*>(name);
    const NB_BYTE first = bytes[0];
    return (first == 0 || first == 0x20 || first == 0x40) &&
           std::all_of(bytes, bytes + width, [first](NB_BYTE b) { return b == first; });
}

inline constexpr std::size_t VGA_SYSTEM_ROOT_COUNT = 5;
inline constexpr std::size_t VGA_NODE_ROOT_COUNT = 14;
std::array<vga_viewer_root*, VGA_SYSTEM_ROOT_COUNT> vga_system_roots(vga_system* system);
std::array<vga_viewer_root*, VGA_NODE_ROOT_COUNT> vga_node_roots(vga_node* node);

// A message into a description, cut to its 31 characters.
void vga_describe(NB_DESCRIPTION description, int message);

// Logs a clash found while inserting: exception 0x40020004 with the resource and its name.
void vga_log_clash(int subcode, NB_USHORT resource, const NB_BYTE* name);
// Logs an entry whose parent record is missing, by a local or an EBCDIC name of the parent.
void vga_log_missing_parent(int subcode, NB_USHORT opcode, const char* name, int width);
void vga_log_missing_parent_ebcdic(int subcode, NB_USHORT opcode, const NB_BYTE* name, int width);

// Makes the row of a dependent LU: under its PU's row, behind that of the LU before it in NAU
// address order. A PU that is not shown shows none.
void vga_show_dependent_lu(vga_pu* pu, const NTL_AVL_NODE& nau_node, vga_viewer* viewer,
                           NB_BYTE type, void* lu);
// Makes the rows of all LUs of a PU where the PU stands now.
void vga_show_dependent_lus(vga_pu* pu);
// Gives a dependent LU, whose key *address is, another NAU address, with its place in the list.
// False: another LU of the PU has that address.
bool vga_move_nau_address(vga_pu* pu, NTL_AVL_NODE* nau_node, NB_BYTE* address, NB_BYTE wanted,
                          vga_viewer* viewer, NB_BYTE type);

// Makes the rows of the routes of a local LU whose own row was made anew.
void vga_show_ls_routings(vga_lu62* lu);
// Links an LU 6.2 or mode definition that has come into the store with its session timeout.
void vga_link_lu62_timeout(vga_node* node, NB_BYTE type, const NB_BYTE* name);
// Breaks that link. expression: the invariant that the timeout is the resource's.
void vga_unlink_lu62_timeout(vga_lu62_timeout** timeout, const void* resource,
                             const char* expression);
// Deletes the passwords of a local LU with all its partners.
void vga_delete_lu_lu_passwords(const vga_lu62* lu, bool redraw);
void vga_release_ls_routings(vga_lu62* lu);
// Ends the sessions of a local LU below every remote system.
void vga_end_remote_sessions(const vga_lu62* lu);

// Takes a dialog off the record it works on, and closes what was opened from it. expression: the
// invariant that it works on it.
inline void vga_detach(vga_dialog** open, const void* record, const char* expression) {
    if (vga_dialog* dialog = std::exchange(*open, nullptr); dialog != nullptr) {
        VGA_ASSERT_TEXT(dialog->parent_item == record, expression);
        dialog->parent_item = nullptr;
        vga_close_children(dialog, false, true);
    }
}

// Frees the records of a tree without keeping it in order; the tree is empty afterwards. release
// gets the record and must not look at the tree.
template <typename T> void vga_drain(NTL_AVL_TREE* tree, void (*release)(T*)) {
    NTL_AVL_NODE* node = tree->root;
    while (node != nullptr) {
        if (node->left != nullptr) {
            node = node->left;
        } else if (node->right != nullptr) {
            node = node->right;
        } else {
            NTL_AVL_NODE* parent = node->parent;
            if (parent != nullptr) {
                (parent->left == node ? parent->left : parent->right) = nullptr;
            }
            release(static_cast<T*>(node->self));
            node = parent;
        }
    }
    ntl_avl_init_tree(tree, tree->compare);
}
