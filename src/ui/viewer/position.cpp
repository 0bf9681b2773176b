#include "ui/viewer/viewer_internal.h"

#include <initializer_list>

// An insertion moves every sibling below it. So that this does not cost a walk over all of them, a
// movement of a whole subtree of the balanced tree is noted in one place, the shift of the node at
// its top, and handed down only where the tree is about to be turned. Rows that change places in
// the tree must therefore carry no shift: insertion and removal settle every node that a rotation
// can touch.

namespace {

vga_viewer* row(const NTL_AVL_NODE* node) {
    return static_cast<vga_viewer*>(node->self);
}

// Moves a whole subtree; null: nothing.
void move(const NTL_AVL_NODE* node, NB_LONG delta) {
    if (node != nullptr) {
        row(node)->ypos += static_cast<NB_ULONG>(delta);
        row(node)->shift += delta;
    }
}

void settle(const NTL_AVL_NODE* node) {
    if (node != nullptr && row(node)->shift != 0) {
        move(node->left, row(node)->shift);
        move(node->right, row(node)->shift);
        row(node)->shift = 0;
    }
}

// Settles from the root of the tree down to a node.
void settle_path(const NTL_AVL_NODE* node) {
    if (node != nullptr) {
        settle_path(node->parent);
        settle(node);
    }
}

// The same, with the two generations beside the path: a removal turns those.
void settle_around(const NTL_AVL_NODE* node) {
    if (node == nullptr) {
        return;
    }
    settle_around(node->parent);
    settle(node);
    for (const NTL_AVL_NODE* child : {node->left, node->right}) {
        settle(child);
        if (child != nullptr) {
            settle(child->left);
            settle(child->right);
        }
    }
}

// The row of a list of siblings with the greatest ypos not above y, and that ypos.
vga_viewer* row_at(const NTL_AVL_TREE& tree, NB_ULONG y, NB_ULONG* ypos) {
    vga_viewer* found = nullptr;
    NB_LONG shift = 0;
    for (const NTL_AVL_NODE* node = tree.root; node != nullptr;) {
        vga_viewer* viewer = row(node);
        const NB_ULONG here = viewer->ypos + static_cast<NB_ULONG>(shift);
        shift += viewer->shift;
        if (here <= y) {
            found = viewer;
            *ypos = here;
            node = node->left;
        } else {
            node = node->right;
        }
    }
    return found;
}

// The last visible row of a row and everything under it.
vga_viewer* deepest(vga_viewer* viewer) {
    while (viewer->expanded && viewer->child_count > 0) {
        viewer = vga_viewer_bottom(viewer->children);
    }
    return viewer;
}

} // namespace

int vga_viewer_compare_ypos(const void* sought, const void* in_tree) {
    return static_cast<int>(*static_cast<const NB_ULONG*>(in_tree) -
                            *static_cast<const NB_ULONG*>(sought));
}

NB_ULONG vga_viewer_ypos(const vga_viewer* viewer) {
    NB_ULONG ypos = viewer->ypos;
    for (const NTL_AVL_NODE* node = viewer->node.parent; node != nullptr; node = node->parent) {
        ypos += static_cast<NB_ULONG>(row(node)->shift);
    }
    return ypos;
}

NB_ULONG vga_viewer_position(const vga_viewer* viewer) {
    NB_ULONG position = vga_viewer_ypos(viewer);
    for (viewer = viewer->parent; viewer != nullptr; viewer = viewer->parent) {
        position += vga_viewer_ypos(viewer) + static_cast<NB_ULONG>(gvga_metrics.item_height);
    }
    return position;
}

void vga_viewer_shift(vga_viewer* first, NB_LONG delta) {
    if (first == nullptr) {
        return;
    }
    bool below = true; // the node is the first row or lies below it on the screen
    for (const NTL_AVL_NODE* node = &first->node; node != nullptr; node = node->parent) {
        if (below) {
            row(node)->ypos += static_cast<NB_ULONG>(delta);
            move(node->left, delta);
        }
        below = node->parent != nullptr && node->parent->right == node;
    }
}

bool vga_viewer_insert(NTL_AVL_TREE* tree, vga_viewer* viewer, vga_viewer* above,
                       vga_viewer* below) {
    // The new row becomes a child of one of its neighbours; the tree also compares with its last
    // node.
    settle_path(tree->last);
    settle_path(above != nullptr ? &above->node : nullptr);
    settle_path(below != nullptr ? &below->node : nullptr);
    return ntl_avl_insert(tree, &viewer->node);
}

void vga_viewer_remove(NTL_AVL_TREE* tree, vga_viewer* viewer) {
    if (viewer->node.left != nullptr && viewer->node.right != nullptr) {
        // It changes places with one of its neighbours, both of which lie below it in the tree.
        settle_around(&vga_viewer_sibling_above(viewer)->node);
        settle_around(&vga_viewer_sibling_below(viewer)->node);
    } else {
        settle_around(&viewer->node);
    }
    ntl_avl_delete(tree, &viewer->node);
}

NB_ULONG vga_viewer_tree_height(const NTL_AVL_TREE& tree) {
    const vga_viewer* bottom = vga_viewer_bottom(tree);
    return bottom != nullptr ? vga_viewer_ypos(bottom) + bottom->height : 0;
}

vga_viewer* vga_find_viewer(vga_viewer_root* root, NB_ULONG y) {
    const NB_ULONG item_height = static_cast<NB_ULONG>(gvga_metrics.item_height);
    const NTL_AVL_TREE* tree = &root->top_items;
    for (;;) {
        NB_ULONG ypos = 0;
        vga_viewer* viewer = row_at(*tree, y, &ypos);
        if (viewer == nullptr || y - ypos < item_height) {
            return viewer;
        }
        if (!viewer->expanded) {
            return nullptr;
        }
        y -= ypos + item_height;
        tree = &viewer->children;
    }
}

vga_viewer* vga_viewer_get_next_item(vga_viewer_root*, vga_viewer* viewer) {
    if (viewer->expanded && viewer->child_count > 0) {
        return vga_viewer_top(viewer->children);
    }
    for (; viewer != nullptr; viewer = viewer->parent) {
        if (vga_viewer* below = vga_viewer_sibling_below(viewer)) {
            return below;
        }
    }
    return nullptr;
}

vga_viewer* vga_viewer_get_prev_item(vga_viewer_root*, vga_viewer* viewer) {
    vga_viewer* above = vga_viewer_sibling_above(viewer);
    return above != nullptr ? deepest(above) : viewer->parent;
}

vga_viewer* vga_viewer_last_visible(const vga_viewer_root* root) {
    vga_viewer* bottom = vga_viewer_bottom(root->top_items);
    return bottom != nullptr ? deepest(bottom) : nullptr;
}

bool vga_viewer_shown(const vga_viewer_root* root, const vga_viewer* viewer) {
    return root->displayed && (viewer->parent == nullptr || viewer->parent->expanded);
}
