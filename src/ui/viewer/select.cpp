#include "ui/framework/dialog.h"
#include "ui/viewer/viewer_internal.h"

#include <initializer_list>

// The selection. Selected rows are always siblings of one anchor.

namespace {

bool siblings(const vga_viewer* a, const vga_viewer* b) {
    return a->parent == b->parent;
}

// Every sibling from the anchor to a row, inclusive, gets a state.
void select_range(vga_viewer_root* root, vga_viewer* anchor, vga_viewer* viewer, bool state) {
    const bool downward = vga_viewer_ypos(anchor) <= vga_viewer_ypos(viewer);
    vga_viewer* here = downward ? anchor : viewer;
    vga_viewer* const last = downward ? viewer : anchor;
    for (;; here = vga_viewer_sibling_below(here)) {
        root->select_count += vga_viewer_set_select(root, here, state);
        if (here == last) {
            return;
        }
    }
}

} // namespace

void vga_viewer_forget_selection(vga_viewer_root* root) {
    root->select_anchor = nullptr;
    root->select_count = 0;
    root->select_type = VGA_VIEWER_SELECT_NONE;
    vga_viewer_stop_drag(root);
}

void vga_viewer_refresh_select_type(vga_viewer_root* root) {
    const vga_viewer* viewer = vga_viewer_get_selected_viewer(root);
    root->select_type = viewer != nullptr ? viewer->type : VGA_VIEWER_SELECT_NONE;
}

void vga_viewer_tell_owner(vga_viewer_root* root, const vga_viewer* viewer) {
    const auto select_cb = vga_viewer_desc(viewer).select_cb;
    if (select_cb != nullptr && root->owner != nullptr && root->owner->open) {
        select_cb(root->owner);
    }
}

int vga_viewer_set_select(vga_viewer_root* root, vga_viewer* viewer, bool state) {
    if (!AVL_IN_TREE(viewer->node) || (viewer->selected != 0) == state ||
        (state && !vga_viewer_selectable(viewer))) {
        return 0;
    }
    viewer->selected = state;
    vga_update_viewer(root, viewer);
    return state ? 1 : -1;
}

bool vga_viewer_selected_alone(const vga_viewer_root* root, const vga_viewer* viewer) {
    return viewer->selected != 0 && root->select_count == 1;
}

void vga_viewer_select_again(vga_viewer_root* root, vga_viewer* viewer) {
    for (const vga_viewer* above = viewer->parent; above != nullptr; above = above->parent) {
        if (above->expanded == 0) {
            return;
        }
    }
    if (AVL_IN_TREE(viewer->node)) {
        vga_viewer_select(viewer, root, false, false, false, false);
        vga_viewer_tell_owner(root, viewer);
    }
}

void vga_viewer_clear_selection(vga_viewer_root* root) {
    if (root->select_count > 0 && VGA_ASSERT(root->select_anchor != NULL)) {
        // From the anchor down, then round to the top: a selection is mostly near its anchor.
        vga_viewer* viewer = root->select_anchor;
        do {
            root->select_count += vga_viewer_set_select(root, viewer, false);
            viewer = vga_viewer_sibling_below(viewer);
            if (viewer == nullptr) {
                viewer = vga_viewer_top(vga_viewer_siblings(root, root->select_anchor));
            }
        } while (root->select_count > 0 && viewer != root->select_anchor);
    }
    root->select_count = 0;
    root->select_type = VGA_VIEWER_SELECT_NONE;
}

void vga_clear_outline_selection(vga_viewer_root* root) {
    if (vga_viewer* viewer = root->outline_viewer) {
        root->outline_viewer = nullptr;
        vga_update_viewer(root, viewer);
    }
}

vga_viewer* vga_viewer_get_selected_viewer(vga_viewer_root* root) {
    if (root->select_count <= 0) {
        return nullptr;
    }
    for (vga_viewer* viewer : {root->outline_viewer, root->select_anchor}) {
        if (viewer != nullptr && viewer->selected) {
            return viewer;
        }
    }
    if (!VGA_ASSERT(root->select_anchor != NULL)) {
        return nullptr;
    }
    vga_viewer* viewer = vga_viewer_bottom(vga_viewer_siblings(root, root->select_anchor));
    while (viewer != nullptr && !viewer->selected) {
        viewer = vga_viewer_sibling_above(viewer);
    }
    VGA_ASSERT(viewer != NULL);
    return viewer;
}

void* vga_viewer_get_selection(vga_viewer_root* root, NB_BYTE* type) {
    if (type != nullptr) {
        *type = root->select_type;
    }
    const vga_viewer* viewer = vga_viewer_get_selected_viewer(root);
    return viewer != nullptr ? viewer->data : nullptr;
}

void vga_viewer_select(vga_viewer* viewer, vga_viewer_root* root, bool toggle, bool extend,
                       bool keyboard, bool space) {
    if (!AVL_IN_TREE(viewer->node)) {
        return;
    }
    vga_viewer* const old_anchor = root->select_anchor;
    const bool near_anchor = old_anchor != nullptr && siblings(old_anchor, viewer);
    const bool range = extend && near_anchor;
    const bool range_state = range && old_anchor->selected;

    vga_clear_outline_selection(root);
    root->outline_viewer = viewer;
    if (!toggle || (root->select_count > 0 && !near_anchor)) {
        vga_viewer_clear_selection(root);
    }

    vga_viewer* select_anchor = viewer;
    if (range) {
        select_range(root, old_anchor, viewer, range_state);
        select_anchor = old_anchor;
    } else if (!toggle) {
        root->select_count += vga_viewer_set_select(root, viewer, true);
    } else if (!keyboard || space) {
        root->select_count += vga_viewer_set_select(root, viewer, !viewer->selected);
    } else {
        select_anchor = old_anchor;
    }
    vga_update_viewer(root, viewer); // for the outline

    if (root->select_count > 0) {
        VGA_ASSERT(select_anchor != NULL);
        root->select_anchor = select_anchor;
        vga_viewer_refresh_select_type(root);
    } else {
        vga_viewer_forget_selection(root);
    }
}
