// Directory entries: the hierarchy of network nodes, their end nodes and the LUs of both.
#include "common/names.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

bool is_control_point(NB_USHORT type) {
    return type == NAP_END_NODE_CP_RESOURCE || type == NAP_NETWORK_NODE_CP_RESOURCE;
}

DIRECTORY_ENTRY key_of(const NB_BYTE* fq_name, NB_USHORT type) {
    DIRECTORY_ENTRY key{};
    std::memcpy(key.resource_name, fq_name, sizeof key.resource_name);
    key.resource_type = type;
    return key;
}

vga_dir* find(vga_node* node, const NB_BYTE* fq_name, NB_USHORT type) {
    const DIRECTORY_ENTRY key = key_of(fq_name, type);
    return vga_find<vga_dir>(node->dir_tree, &key);
}

// The tree an entry goes to, by its owner.
NTL_AVL_TREE* tree_of(vga_node* node, vga_dir* owner, NB_USHORT type) {
    if (owner == nullptr) {
        return &node->dir_server_tree;
    }
    return is_control_point(type) ? &owner->end_node_tree : &owner->lu_tree;
}

// The server tree and the trees of end nodes go by name, those of LUs by name and type.
const void* key_in(const vga_dir* dir, const NTL_AVL_TREE* tree) {
    return tree->compare == vga_compare_ebc17 ? static_cast<const void*>(dir->vcb.resource_name)
                                              : &dir->vcb;
}

void join(vga_dir* dir, vga_dir* owner) {
    dir->owner = owner;
    dir->parent_tree = tree_of(dir->parent, owner, dir->vcb.resource_type);
    ntl_avl_init_node(&dir->parent_node, dir, key_in(dir, dir->parent_tree));
    ntl_avl_insert(dir->parent_tree, &dir->parent_node);
}

} // namespace

vga_dir* vga_init_vga_dir(vga_node* node, const DIRECTORY_ENTRY* entry) {
    auto* dir = vga_new_record<vga_dir>();
    if (dir == nullptr) {
        return nullptr;
    }
    dir->parent = node;
    vga_copy_entry(dir->vcb, entry);
    ntl_avl_init_node(&dir->node, dir, &dir->vcb);
    ntl_avl_init_node(&dir->parent_node, dir, &dir->vcb);
    ntl_avl_init_tree(&dir->end_node_tree, vga_compare_ebc17);
    ntl_avl_init_tree(&dir->lu_tree, vga_compare_directory_entries);
    return dir;
}

vga_dir* vga_insert_vga_dir(vga_dir* dir, vga_dir* owner) {
    vga_node* node = dir->parent;
    if (ntl_avl_insert(&node->dir_tree, &dir->node)) {
        join(dir, owner);
        return dir;
    }
    auto* old_entry = vga_find<vga_dir>(node->dir_tree, &dir->vcb);
    VGA_ASSERT_TEXT(old_entry != nullptr, "old_entry != NULL");
    const bool old_defined = old_entry->vcb.entry_type == NOF_DIRECTORY_DEFINED;
    if (old_defined || dir->vcb.entry_type != NOF_DIRECTORY_DEFINED) {
        old_entry->vcb = dir->vcb;
        if (old_defined) {
            old_entry->vcb.entry_type = NOF_DIRECTORY_DEFINED;
        }
        vga_free_record(dir);
        return old_entry;
    }
    vga_delete_vga_dir(old_entry, false);
    ntl_avl_insert(&node->dir_tree, &dir->node);
    join(dir, owner);
    return dir;
}

bool vga_find_directory_insert_pos(vga_node* node, const DIRECTORY_ENTRY* entry,
                                   vga_dir** network_node, vga_dir** end_node,
                                   NTL_AVL_TREE** tree) {
    *network_node = nullptr;
    *end_node = nullptr;
    *tree = &node->dir_server_tree;
    if (entry->resource_type == NAP_NETWORK_NODE_CP_RESOURCE) {
        return true;
    }
    if (entry->resource_type == NAP_END_NODE_CP_RESOURCE) {
        const NB_BYTE* server = vga_blank_name(entry->network_node, FQ_NAME_LENGTH) &&
                                        entry->parent_type == NAP_NETWORK_NODE_CP_RESOURCE
                                    ? entry->parent_name
                                    : entry->network_node;
        if (vga_blank_name(server, FQ_NAME_LENGTH)) {
            return true;
        }
        *network_node = vga_find<vga_dir>(node->dir_server_tree, server);
        if (*network_node == nullptr) {
            return false;
        }
        *tree = &(*network_node)->end_node_tree;
        return true;
    }
    vga_dir* owner = find(node, entry->parent_name, entry->parent_type);
    if (owner == nullptr || !is_control_point(entry->parent_type)) {
        return false;
    }
    if (entry->parent_type == NAP_NETWORK_NODE_CP_RESOURCE) {
        *network_node = owner;
    } else {
        *end_node = owner;
        *network_node = owner->owner;
    }
    *tree = &owner->lu_tree;
    return true;
}

bool vga_find_directory_entry(vga_node* node, const NB_BYTE* fq_name, NB_USHORT resource_type,
                              vga_dir** entry, NTL_AVL_TREE** tree) {
    *entry = find(node, fq_name, resource_type);
    *tree = *entry != nullptr ? (*entry)->parent_tree : nullptr;
    return *entry != nullptr;
}
