#include "ui/viewer/viewer_internal.h"

// Creating, deleting, expanding and contracting rows.

namespace {

NB_LONG item_height() {
    return gvga_metrics.item_height;
}

// Moves a row (may be null) and everything shown below it. Where the list changes its length its
// ancestors and the list grow or shrink with it. With show the window follows.
void shuffle(vga_viewer_root* root, vga_viewer* first, vga_viewer* parent, NB_LONG delta,
             bool show) {
    vga_viewer_shift(first, delta);
    for (; parent != nullptr; parent = parent->parent) {
        if (!parent->expanded) {
            return;
        }
        parent->height += static_cast<NB_ULONG>(delta);
        vga_viewer_shift(vga_viewer_sibling_below(parent), delta);
    }
    if (!root->displayed) {
        return;
    }
    root->total_height += static_cast<NB_ULONG>(delta);
    if (!show) {
        return;
    }
    const NB_ULONG y_offset = root->y_offset;
    vga_viewer_set_scroll_bars(root);
    if (root->exposed && delta < 0) {
        vga_viewer_clear_below(root, root->total_height);
    }
    if (root->y_offset != y_offset) {
        vga_viewer_redraw_view(root);
    }
}

// Collapses a row and everything under it. Returns by how much it became lower; the rows below it
// have not moved yet.
NB_LONG collapse(vga_viewer_root* root, vga_viewer* viewer) {
    if (!viewer->expanded || !AVL_IN_TREE(viewer->node)) {
        return 0;
    }
    NB_ULONG offset = 0;
    for (vga_viewer* child = vga_viewer_top(viewer->children); child != nullptr;
         child = vga_viewer_sibling_below(child)) {
        collapse(root, child);
        child->selected = 0;
        child->ypos = offset;
        child->shift = 0;
        offset += static_cast<NB_ULONG>(item_height());
    }
    const NB_LONG delta = static_cast<NB_LONG>(viewer->height) - item_height();
    viewer->expanded = 0;
    viewer->height = static_cast<NB_ULONG>(item_height());
    if (root->outline_viewer != nullptr && root->outline_viewer->parent == viewer) {
        root->outline_viewer = nullptr; // hidden, it could not be moved by keyboard
    }
    if (root->select_anchor != nullptr && root->select_anchor->parent == viewer) {
        const bool selection_lost = root->select_count > 0;
        vga_viewer_forget_selection(root);
        if (selection_lost && root->displayed) {
            vga_viewer_tell_owner(root, viewer);
        }
    }
    return delta;
}

// The row the selection moves to when the last selected one goes, or null.
vga_viewer* next_selection(vga_viewer_root* root, vga_viewer* leaving) {
    vga_viewer* next = vga_viewer_sibling_below(leaving);
    if (next == nullptr) {
        next = vga_viewer_get_prev_item(root, leaving);
    }
    while (next != nullptr && (next == leaving || !vga_viewer_selectable(next))) {
        next = vga_viewer_get_next_item(root, next);
    }
    return next;
}

// A new anchor for a selection that loses its anchor or its last row to a deletion; that row is
// deselected already.
void move_anchor(vga_viewer_root* root, vga_viewer* viewer) {
    if (root->select_count > 0) {
        root->select_anchor = vga_viewer_top(vga_viewer_siblings(root, viewer));
        vga_viewer* next_selected = vga_viewer_get_selected_viewer(root);
        VGA_ASSERT(next_selected != NULL);
        VGA_ASSERT(next_selected != viewer);
        root->select_anchor = next_selected;
        return;
    }
    vga_viewer* next = next_selection(root, viewer);
    vga_viewer_forget_selection(root);
    if (next == nullptr) {
        return;
    }
    root->select_anchor = next;
    if (root->outline_viewer == nullptr) {
        root->outline_viewer = next;
    }
    root->select_count += vga_viewer_set_select(root, next, true);
    root->select_type = next->type;
}

// Takes a collapsed row out of the list with everything under it. The rows below have not moved
// yet.
void remove_subtree(vga_viewer_root* root, vga_viewer* viewer, bool redraw) {
    while (vga_viewer* child = vga_viewer_bottom(viewer->children)) {
        remove_subtree(root, child, false);
    }
    const bool was_selected = viewer->selected;
    if (was_selected) {
        viewer->selected = 0;
        --root->select_count;
    }
    if (root->outline_viewer == viewer) {
        root->outline_viewer = nullptr;
    }
    if (root->last_activated == viewer) {
        root->last_activated = nullptr;
    }
    if (root->select_anchor == viewer || (was_selected && root->select_count == 0)) {
        move_anchor(root, viewer);
    }
    if (was_selected) {
        vga_viewer_refresh_select_type(root);
    }
    vga_viewer_stop_drag(root);
    VGA_ASSERT(root->select_anchor != viewer);
    VGA_ASSERT(root->outline_viewer != viewer);
    VGA_ASSERT(root->last_dragged != viewer);
    if (was_selected && redraw) {
        vga_viewer_tell_owner(root, viewer);
    }
    vga_viewer_remove(&vga_viewer_siblings(root, viewer), viewer);
    if (viewer->parent != nullptr) {
        --viewer->parent->child_count;
    } else if (--root->top_count == 0) {
        root->max_width = 0;
        vga_viewer_set_scroll_bars(root);
    }
}

} // namespace

void vga_create_viewer(vga_viewer_root* root, vga_viewer* viewer, NB_BYTE type, void* record,
                       vga_viewer* parent, vga_viewer* previous) {
    *viewer = {};
    ntl_avl_init_node(&viewer->node, viewer, &viewer->ypos);
    ntl_avl_init_tree(&viewer->children, vga_viewer_compare_ypos);
    viewer->ypos = previous != nullptr ? vga_viewer_ypos(previous) + previous->height : 0;
    viewer->height = static_cast<NB_ULONG>(item_height());
    viewer->type = type;
    viewer->data = record;
    viewer->parent = parent;
    if (root == nullptr) {
        return;
    }
    NTL_AVL_TREE& siblings = vga_viewer_siblings(root, viewer);
    vga_viewer* below =
        previous != nullptr ? vga_viewer_sibling_below(previous) : vga_viewer_top(siblings);
    shuffle(root, below, parent, item_height(), true);
    VGA_ASSERT_TEXT(vga_viewer_insert(&siblings, viewer, previous, below), "FALSE");
    ++(parent != nullptr ? parent->child_count : root->top_count);

    if (gvga_metrics.char_width != 0) { // without graphics there is nothing to measure
        vga_viewer_text text;
        vga_viewer_build_text(viewer, &text);
        vga_viewer_measure(root, viewer, text);
    }
    if (vga_viewer_shown(root, viewer)) {
        vga_viewer_redraw(root, vga_viewer_position(viewer), 0, viewer, true);
    }
    if (parent != nullptr && parent->child_count == 1) {
        vga_update_viewer(root, parent); // it now shows an expand box
    }
}

void vga_delete_viewer(vga_viewer_root* root, vga_viewer* viewer, bool redraw) {
    if (!AVL_IN_TREE(viewer->node)) {
        return;
    }
    const NB_LONG height = static_cast<NB_LONG>(viewer->height);
    collapse(root, viewer);
    const bool shown = vga_viewer_shown(root, viewer);
    const NB_ULONG position = shown && redraw ? vga_viewer_position(viewer) : 0;
    vga_viewer* next_sibling = vga_viewer_sibling_below(viewer);
    vga_viewer* next_row = vga_viewer_get_next_item(root, viewer);
    vga_viewer* parent = viewer->parent;

    remove_subtree(root, viewer, redraw);
    shuffle(root, next_sibling, parent, -height, redraw);
    if (!redraw) {
        return;
    }
    if (shown) {
        vga_viewer_redraw(root, position, 0, next_row, true);
    }
    if (parent != nullptr && parent->child_count == 0) {
        vga_update_viewer(root, parent); // its expand box is gone
    }
}

void vga_expand_viewer(vga_viewer_root* root, vga_viewer* viewer) {
    const bool hidden = viewer->parent != nullptr && !viewer->parent->expanded;
    if (viewer->expanded || hidden || !AVL_IN_TREE(viewer->node)) {
        return;
    }
    const NB_LONG delta = static_cast<NB_LONG>(viewer->child_count) * item_height();
    if (delta == 0) {
        viewer->expanded = 1;
        vga_update_viewer(root, viewer);
        return;
    }
    shuffle(root, vga_viewer_sibling_below(viewer), viewer->parent, delta, true);
    viewer->height += static_cast<NB_ULONG>(delta);
    viewer->expanded = 1;
    vga_viewer_redraw(root, vga_viewer_position(viewer), 0, viewer, true);
}

void vga_viewer_contract(vga_viewer_root* root, vga_viewer* viewer, bool redraw) {
    if (!viewer->expanded || !AVL_IN_TREE(viewer->node)) {
        return;
    }
    const NB_LONG delta = collapse(root, viewer);
    if (delta != 0) {
        shuffle(root, vga_viewer_sibling_below(viewer), viewer->parent, -delta, redraw);
        if (redraw) {
            vga_viewer_redraw(root, vga_viewer_position(viewer), 0, viewer, true);
        }
    } else if (redraw) {
        vga_update_viewer(root, viewer);
    }
}

void vga_viewer_copy_state(const vga_viewer* source, vga_viewer* viewer, vga_viewer_root* root) {
    if (source->expanded) {
        vga_expand_viewer(root, viewer);
    } else {
        vga_viewer_contract(root, viewer, true);
    }
}
