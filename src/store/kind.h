// Kinds of record that differ in data only: a row of constants each, from which making, merging and
// removal follow. For this folder only.
#pragma once

#include "store/record_util.h"

#include <type_traits>

struct vga_place {         // where a record is shown
    vga_viewer_root* root; // null: not at all
    vga_viewer* parent = nullptr;
    vga_viewer* heading = nullptr; // what the first record of a tree stands behind
};

template <typename Record> struct vga_kind {
    using record = Record;
    using parent = std::remove_pointer_t<decltype(Record::parent)>;

    NTL_AVL_TREE parent::*tree;
    std::size_t key;                             // offset in the record
    NB_BYTE row_type = 0;                        // VGA_VIEWER type
    vga_place (*place)(const Record*) = nullptr; // null: the kind has no rows
    const char* open_dialog = nullptr;           // what holds while a dialog is open on it
    void (*release)(Record*) = nullptr;          // frees what it holds besides itself
};

template <const auto& kind>
using vga_record_of = typename std::remove_cvref_t<decltype(kind)>::record;
template <const auto& kind>
using vga_parent_of = typename std::remove_cvref_t<decltype(kind)>::parent;

// A record of an entry, in no tree; null, with exit code 1 set, without memory.
template <const auto& kind, typename Entry>
vga_record_of<kind>* vga_make(vga_parent_of<kind>* parent, const Entry* entry) {
    auto* record = vga_new_record<vga_record_of<kind>>();
    if (record == nullptr) {
        return nullptr;
    }
    record->parent = parent;
    vga_copy_entry(record->vcb, entry);
    record->vcb.length = sizeof record->vcb; // lists inside the entry are records of their own
    ntl_avl_init_node(&record->node, record, reinterpret_cast<NB_BYTE*>(record) + kind.key);
    if constexpr (kind.place != nullptr) {
        vga_init_row(&record->viewer, kind.row_type, record);
    }
    return record;
}

template <const auto& kind> void vga_release_record(vga_record_of<kind>* record) {
    if constexpr (kind.open_dialog != nullptr) {
        vga_detach(&record->gui_data.dialog, record, kind.open_dialog);
    }
    if constexpr (kind.release != nullptr) {
        kind.release(record);
    }
    vga_free_record(record);
}

// Makes the row of a record that is in its tree.
template <const auto& kind> void vga_show(vga_record_of<kind>* record) {
    const vga_place place = kind.place(record);
    if (place.root != nullptr) {
        auto* previous = vga_prev<vga_record_of<kind>>(record->node);
        vga_create_viewer(place.root, &record->viewer, kind.row_type, record, place.parent,
                          previous != nullptr ? &previous->viewer : place.heading);
    }
}

template <const auto& kind> void vga_redraw(vga_record_of<kind>* record) {
    if constexpr (kind.place != nullptr) {
        if (vga_is_shown(record->viewer)) {
            vga_update_viewer(kind.place(record).root, &record->viewer);
        }
    }
}

// Inserts a record and shows it. True: an older one was in its way and is in its place now, as it
// was; *merged is the one to take from and to release.
template <const auto& kind>
bool vga_meets_older(vga_record_of<kind>** record, vga_record_of<kind>** merged) {
    NTL_AVL_TREE& tree = (*record)->parent->*kind.tree;
    if (ntl_avl_insert(&tree, &(*record)->node)) {
        if constexpr (kind.place != nullptr) {
            vga_show<kind>(*record);
        }
        return false;
    }
    *merged = *record;
    *record = vga_older<vga_record_of<kind>>(tree, (*merged)->node.key);
    return true;
}

// Inserts a record, or gives its entry to the older one of its key.
template <const auto& kind> vga_record_of<kind>* vga_put(vga_record_of<kind>* record) {
    vga_record_of<kind>* merged;
    if (vga_meets_older<kind>(&record, &merged)) {
        record->vcb = merged->vcb;
        vga_release_record<kind>(merged);
        vga_redraw<kind>(record);
    }
    return record;
}

// Removes a record whose children are gone.
template <const auto& kind> void vga_remove(vga_record_of<kind>* record, bool redraw) {
    if constexpr (kind.place != nullptr) {
        if (vga_is_shown(record->viewer)) {
            vga_delete_viewer(kind.place(record).root, &record->viewer, redraw);
        }
    }
    vga_leave_tree(&(record->parent->*kind.tree), &record->node);
    vga_release_record<kind>(record);
}

// Frees all records of a kind below a parent; their rows are gone already.
template <const auto& kind> void vga_release_all(vga_parent_of<kind>* parent) {
    vga_drain<vga_record_of<kind>>(&(parent->*kind.tree), vga_release_record<kind>);
}
