#include "common/avl.h"

#include "common/assert.h"

#include <algorithm>
#include <cstdlib>
#include <type_traits>

// Large collections do not fit the processor's caches, so the cost of every operation is that of
// the cache lines it waits for. Hence the prefetches: both children are fetched while the
// comparison that chooses between them runs.

namespace {

using Node = NTL_AVL_NODE;
using Tree = NTL_AVL_TREE;

std::int16_t height(const Node* node) {
    return static_cast<std::int16_t>(std::max(node->l_height, node->r_height) + 1);
}

// The records of one tree are of one kind, so their keys lie at the distance from the node at which
// the root's does. As the distance only aims prefetches, a tree of mixed kinds is slower and
// nothing else.
std::ptrdiff_t key_distance(const Node* root) {
    return static_cast<const char*>(root->key) - reinterpret_cast<const char*>(root);
}

void prefetch_links(const Node* node) {
    __builtin_prefetch(&node->left);
    __builtin_prefetch(&node->l_height);
}

// The node may be null, whose neighbourhood is no memory: addresses are computed as numbers, and
// fetching ahead from a wrong one does nothing.
void prefetch(const Node* node, std::ptrdiff_t key) {
    const auto address = reinterpret_cast<std::uintptr_t>(node);
    __builtin_prefetch(reinterpret_cast<const void*>(address + sizeof(Node) - sizeof(void*)));
    __builtin_prefetch(reinterpret_cast<const void*>(address + static_cast<std::uintptr_t>(key)));
}

// The two sides of a node, so that what is done to one side is written once for both.
struct Left {
    static constexpr auto child = &Node::left;
    static constexpr auto child_height = &Node::l_height;
};
struct Right {
    static constexpr auto child = &Node::right;
    static constexpr auto child_height = &Node::r_height;
};

// Turns the subtree below node towards a side. Returns its new top, which does not hang below the
// parent yet.
template <typename Side, typename Other> Node* rotate(Node* node) {
    VGA_ASSERT(AVL_IN_TREE(*node));
    Node* top = node->*Other::child;
    Node* middle = top->*Side::child;
    node->*Other::child = middle;
    if (middle != nullptr) {
        middle->parent = node;
    }
    node->*Other::child_height = top->*Side::child_height;
    top->parent = node->parent;
    top->*Side::child = node;
    node->parent = top;
    top->*Side::child_height = height(node);
    return top;
}

Node* ntl_avl_rotate_left(Node* node) {
    return rotate<Left, Right>(node);
}
Node* ntl_avl_rotate_right(Node* node) {
    return rotate<Right, Left>(node);
}

// Restores the balance of one node whose subtrees are balanced. Returns the top of the subtree.
Node* ntl_avl_rebalance(Node* node) {
    const int lean = node->r_height - node->l_height;
    if (lean >= 2) {
        Node* right = node->right;
        if (right->l_height > right->r_height) {
            node->right = ntl_avl_rotate_right(right);
        }
        return ntl_avl_rotate_left(node);
    }
    if (lean <= -2) {
        Node* left = node->left;
        if (left->r_height > left->l_height) {
            node->left = ntl_avl_rotate_left(left);
        }
        return ntl_avl_rotate_right(node);
    }
    return node;
}

// Hangs replacement where node hangs below parent, or at the root.
void replace_child(Tree* tree, Node* parent, const Node* node, Node* replacement) {
    if (parent == nullptr) {
        tree->root = replacement;
    } else {
        (parent->left == node ? parent->left : parent->right) = replacement;
    }
}

void ntl_avl_balance_tree(Tree* tree, Node* node, bool left, int changed);

// Turns a subtree whose top has got out of balance and goes on above it, unless its height is again
// what it was before. Apart from the walk, so that the walk itself, which seldom needs it, stays
// short.
[[gnu::noinline]] void balance_from(Tree* tree, Node* node, int before) {
    Node* const parent = node->parent;
    Node* const top = ntl_avl_rebalance(node);
    replace_child(tree, parent, node, top);
    const int changed = height(top);
    if (changed != before && parent != nullptr) {
        ntl_avl_balance_tree(tree, parent, parent->left == top, changed);
    }
}

// Records the height of a changed subtree on one side of a node, and restores balance and heights
// from the node up to the root, or up to a subtree that is as high as it was: nothing above that
// can differ, and nothing above is touched.
void ntl_avl_balance_tree(Tree* tree, Node* node, bool left, int changed) {
    for (;;) {
        // Both heights are stored, whichever changed: an address that depends on the side would
        // hold up the loads that follow until the side is known.
        const int l_height = node->l_height;
        const int r_height = node->r_height;
        const int before = std::max(l_height, r_height) + 1;
        const int other = left ? r_height : l_height;
        node->l_height = static_cast<std::int16_t>(left ? changed : l_height);
        node->r_height = static_cast<std::int16_t>(left ? r_height : changed);
        if (std::abs(changed - other) > 1) {
            return balance_from(tree, node, before);
        }
        changed = std::max(changed, other) + 1;
        if (changed == before) {
            return;
        }
        Node* const parent = node->parent;
        if (parent == nullptr) {
            return;
        }
        left = parent->left == node;
        node = parent;
    }
}

// The place that a node leaves empty, or to its only child, when it goes.
struct Gap {
    Node* parent;
    bool left;  // the side of the parent
    int height; // of the child; 0 without one
};

// Puts the neighbour in key order on a side in the place of a node with two children. Returns the
// place the neighbour had, where the removal goes on: the node itself is in no place then.
template <typename Side, typename Other> Gap swap_neighbour(Tree* tree, const Node* node) {
    Node* neighbour = node->*Side::child;
    // Needed when the neighbour is found.
    __builtin_prefetch(node->parent);
    __builtin_prefetch(node->*Other::child);
    const bool adjacent = neighbour->*Other::child == nullptr;
    while (neighbour->*Other::child != nullptr) {
        neighbour = neighbour->*Other::child;
    }
    Node* const child = neighbour->*Side::child;
    Node* const above = adjacent ? neighbour : neighbour->parent;
    const int child_height = neighbour->*Side::child_height;
    replace_child(tree, node->parent, node, neighbour);
    neighbour->parent = node->parent;
    neighbour->l_height = node->l_height;
    neighbour->r_height = node->r_height;
    neighbour->*Other::child = node->*Other::child;
    (neighbour->*Other::child)->parent = neighbour;
    if (!adjacent) {
        neighbour->*Side::child = node->*Side::child;
        (neighbour->*Side::child)->parent = neighbour;
        above->*Other::child = child;
        if (child != nullptr) {
            child->parent = above;
        }
    }
    return {above, adjacent == std::is_same_v<Side, Left>, child_height};
}

Gap ntl_avl_swap_right_most(Tree* tree, const Node* node) {
    return swap_neighbour<Left, Right>(tree, node);
}
Gap ntl_avl_swap_left_most(Tree* tree, const Node* node) {
    return swap_neighbour<Right, Left>(tree, node);
}

// Takes a node with at most one child out of its place.
Gap unlink(Tree* tree, const Node* node) {
    Node* const parent = node->parent;
    Node* const child = node->left != nullptr ? node->left : node->right;
    if (tree->first == node) {
        tree->first = child != nullptr ? child : parent;
    }
    if (tree->last == node) {
        tree->last = child != nullptr ? child : parent;
    }
    const bool left = parent != nullptr && parent->left == node;
    replace_child(tree, parent, node, child);
    if (child != nullptr) {
        child->parent = parent;
    }
    return {parent, left, std::max(node->l_height, node->r_height)};
}

// The outermost node of a subtree on a side. A walk soon needs the other children of the nodes on
// the way.
template <typename Side, typename Other> const Node* outermost(const Node* node) {
    while (node->*Side::child != nullptr) {
        if (node->*Other::child != nullptr) {
            prefetch_links(node->*Other::child);
        }
        node = node->*Side::child;
    }
    return node;
}

// The record next to a node in key order, away from a side.
template <typename Side, typename Other> void* neighbour(const Node* node) {
    if (!VGA_ASSERT(AVL_IN_TREE(*node))) {
        return nullptr;
    }
    if (node->*Other::child != nullptr) {
        return outermost<Side, Other>(node->*Other::child)->self;
    }
    const Node* parent = node->parent;
    while (parent != nullptr && parent->*Other::child == node) {
        node = parent;
        parent = parent->parent;
    }
    return parent != nullptr ? parent->self : nullptr;
}

// Hangs a node below one that has no child on that side.
void hang(Tree* tree, Node* parent, Node* node, bool left) {
    node->parent = parent;
    node->l_height = node->r_height = 0;
    (left ? parent->left : parent->right) = node;
    ntl_avl_balance_tree(tree, parent, left, 1);
}

} // namespace

bool ntl_avl_insert(NTL_AVL_TREE* tree, NTL_AVL_NODE* node) {
    if (!VGA_ASSERT(!AVL_IN_TREE(*node))) {
        return false;
    }
    Node* parent = tree->root;
    if (parent == nullptr) {
        node->l_height = node->r_height = 0;
        tree->root = tree->first = tree->last = node;
        return true;
    }
    const NTL_AVL_COMPARE compare = tree->compare;
    const void* key = node->key;
    // The node's lists come in key order, so most records belong behind the last one.
    int order = compare(key, tree->last->key);
    if (order > 0) {
        parent = tree->last;
        tree->last = node;
    } else {
        const std::ptrdiff_t distance = key_distance(parent);
        for (;;) {
            prefetch(parent->left, distance);
            prefetch(parent->right, distance);
            order = compare(key, parent->key);
            if (order == 0) {
                return false;
            }
            Node* child = order < 0 ? parent->left : parent->right;
            if (child == nullptr) {
                break;
            }
            parent = child;
        }
        if (order < 0 && tree->first == parent) {
            tree->first = node;
        }
    }
    hang(tree, parent, node, order < 0);
    return true;
}

void ntl_avl_insert_behind(NTL_AVL_TREE* tree, NTL_AVL_NODE* node, NTL_AVL_NODE* before) {
    if (!VGA_ASSERT(!AVL_IN_TREE(*node)) || !VGA_ASSERT(AVL_IN_TREE(*before))) {
        return;
    }
    Node* next = before->right;
    if (next == nullptr) {
        if (tree->last == before) {
            tree->last = node;
        }
        return hang(tree, before, node, false);
    }
    while (next->left != nullptr) {
        next = next->left;
    }
    hang(tree, next, node, true);
}

void ntl_avl_delete(NTL_AVL_TREE* tree, NTL_AVL_NODE* node) {
    const bool node_in_tree = AVL_IN_TREE(*node);
    if (!VGA_ASSERT(node_in_tree)) {
        return;
    }
    const bool swap = node->left != nullptr && node->right != nullptr;
    const Gap gap = !swap                              ? unlink(tree, node)
                    : node->r_height <= node->l_height ? ntl_avl_swap_right_most(tree, node)
                                                       : ntl_avl_swap_left_most(tree, node);
    node->parent = node->left = node->right = nullptr;
    node->l_height = node->r_height = -1;
    if (gap.parent != nullptr) {
        ntl_avl_balance_tree(tree, gap.parent, gap.left, gap.height);
    }
}

void* ntl_avl_find(const NTL_AVL_TREE* tree, const void* key) {
    const Node* node = tree->root;
    if (node == nullptr) {
        return nullptr;
    }
    const NTL_AVL_COMPARE compare = tree->compare;
    const std::ptrdiff_t distance = key_distance(node);
    do {
        prefetch(node->left, distance);
        prefetch(node->right, distance);
        const int order = compare(key, node->key);
        if (order == 0) {
            return node->self;
        }
        node = order < 0 ? node->left : node->right;
    } while (node != nullptr);
    return nullptr;
}

void* ntl_avl_find_next(const NTL_AVL_TREE* tree, const void* key) {
    const Node* node = tree->root;
    if (node == nullptr) {
        return nullptr;
    }
    const NTL_AVL_COMPARE compare = tree->compare;
    const std::ptrdiff_t distance = key_distance(node);
    const Node* greater = nullptr; // the last node passed whose key is greater
    do {
        prefetch(node->left, distance);
        prefetch(node->right, distance);
        const int order = compare(key, node->key);
        if (order == 0) {
            greater = node->right != nullptr ? outermost<Left, Right>(node->right) : greater;
            break;
        }
        greater = order < 0 ? node : greater;
        node = order < 0 ? node->left : node->right;
    } while (node != nullptr);
    return greater != nullptr ? greater->self : nullptr;
}

void* ntl_avl_next(const NTL_AVL_NODE* node) {
    return neighbour<Left, Right>(node);
}
void* ntl_avl_prev(const NTL_AVL_NODE* node) {
    return neighbour<Right, Left>(node);
}
