// The intrusive height-balanced tree behind every sorted collection. The tree never allocates: each
// record carries its node as first member (or further nodes), and the node points back at the
// record and at the key inside it.
#pragma once

#include <cstdint>

struct NTL_AVL_NODE {
    NTL_AVL_NODE* parent;  // null at the root and outside any tree
    NTL_AVL_NODE* left;    // smaller keys
    NTL_AVL_NODE* right;   // greater keys
    std::int16_t l_height; // height of the left subtree, 0 without one; both -1 outside any tree
    std::int16_t r_height;
    void* self;      // the record that holds this node; what look-ups and walks return
    const void* key; // the key inside that record
};

// Negative, 0 or positive as the first key sorts before, equal to or after the second. The first
// argument is always the key sought or inserted, the second the key of a node already in the tree.
using NTL_AVL_COMPARE = int (*)(const void* sought, const void* in_tree);

struct NTL_AVL_TREE {
    NTL_AVL_COMPARE compare;
    NTL_AVL_NODE* root;
    NTL_AVL_NODE* first; // smallest key
    NTL_AVL_NODE* last;  // greatest key
};

inline bool AVL_IN_TREE(const NTL_AVL_NODE& node) {
    return node.l_height != -1 && node.r_height != -1;
}

// A node ready for its first insertion.
inline void ntl_avl_init_node(NTL_AVL_NODE* node, void* self, const void* key) {
    *node = NTL_AVL_NODE{nullptr, nullptr, nullptr, -1, -1, self, key};
}
inline void ntl_avl_init_tree(NTL_AVL_TREE* tree, NTL_AVL_COMPARE compare) {
    *tree = NTL_AVL_TREE{compare, nullptr, nullptr, nullptr};
}

// True when inserted; false when an equal key is there already (tree and node unchanged).
bool ntl_avl_insert(NTL_AVL_TREE* tree, NTL_AVL_NODE* node);
// The same without a search, for a caller that knows the place from another tree of the same order:
// the node, whose key is in no record of the tree, comes directly behind before, which is in it.
void ntl_avl_insert_behind(NTL_AVL_TREE* tree, NTL_AVL_NODE* node, NTL_AVL_NODE* before);
// Takes a node out of the tree it is in.
void ntl_avl_delete(NTL_AVL_TREE* tree, NTL_AVL_NODE* node);
// The record of an equal key, or null.
void* ntl_avl_find(const NTL_AVL_TREE* tree, const void* key);
// The record with the smallest key greater than the given one, which need not be in the tree; or
// null.
void* ntl_avl_find_next(const NTL_AVL_TREE* tree, const void* key);
// The record after or before the one whose node this is, in key order; null at the ends.
void* ntl_avl_next(const NTL_AVL_NODE* node);
void* ntl_avl_prev(const NTL_AVL_NODE* node);

// The first or last record of a tree as a T, or null.
template <typename T> T* ntl_avl_first(const NTL_AVL_TREE& tree) {
    return tree.first != nullptr ? static_cast<T*>(tree.first->self) : nullptr;
}
template <typename T> T* ntl_avl_last(const NTL_AVL_TREE& tree) {
    return tree.last != nullptr ? static_cast<T*>(tree.last->self) : nullptr;
}

// Ready-made comparators. EBCDIC names are compared as bytes, or ("mib") shorter names first and
// then in the collating order of the local character set.
int ntl_compare_byte(const void* a, const void* b);
int ntl_compare_lfsid(const void* a, const void* b);
int ntl_compare_proc_id(const void* a, const void* b);
int ntl_compare_name(const void* a, const void* b);
int ntl_compare_fq_name(const void* a, const void* b);
int ntl_compare_tp_name(const void* a, const void* b);
int ntl_compare_mib_ascii_sna_name(const void* a, const void* b);
int ntl_compare_mib_sna_name(const void* a, const void* b);
int ntl_compare_mib_fq_name(const void* a, const void* b);
int ntl_compare_mib_tp_name(const void* a, const void* b);
int ntl_compare_fqpcid(const void* a, const void* b);
