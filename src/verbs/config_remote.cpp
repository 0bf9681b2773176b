// Definitions that tell of remote systems: partner LUs, directory entries, adjacent nodes.
#include "common/names.h"
#include "nof/routing.h"
#include "shell/globals.h"
#include "store/build.h"
#include "verbs/config_util.h"

namespace {

constexpr vga_listing listed_directory{vga_flag(VGA_NODE_DIRECTORY), VGA_CHECK_DIR};

vga_rem_plu_key key_of(const NB_BYTE* fq_name, NB_USHORT type) {
    vga_rem_plu_key key{};
    std::memcpy(key.plu_name, fq_name, sizeof key.plu_name);
    key.number = type;
    return key;
}

bool is_control_point(NB_USHORT type) {
    return type == NAP_END_NODE_CP_RESOURCE || type == NAP_NETWORK_NODE_CP_RESOURCE;
}

vga_rem_plu* partner_of(const vga_rem_sys* rem_sys, const NB_BYTE* fq_name, NB_USHORT type) {
    const vga_rem_plu_key key = key_of(fq_name, type);
    return rem_sys != nullptr ? vga_status_find<vga_rem_plu>(rem_sys->remote_plu_tree, &key)
                              : nullptr;
}

// The first partner of a name and type of which member holds, those of known systems in their
// order; or null.
vga_rem_plu* first_with(const vga_node* node, NB_USHORT vga_rem_plu::*member,
                        const NB_BYTE* fq_name, NB_USHORT type) {
    for (auto* rem_sys = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree); rem_sys != nullptr;
         rem_sys = static_cast<vga_rem_sys*>(ntl_avl_next(&rem_sys->node))) {
        vga_rem_plu* rem_plu = partner_of(rem_sys, fq_name, type);
        if (rem_plu != nullptr && rem_plu->*member != 0) {
            return rem_plu;
        }
    }
    return nullptr;
}

// A remote system that is defined by an entry, which it takes also when it is known already; null:
// exit code 1 is set.
vga_rem_sys* define_system(vga_node* node, const DIRECTORY_ENTRY& entry) {
    vga_rem_sys* rem_sys = vga_init_vga_rem_sys(node, entry.resource_name, true, &entry);
    if (rem_sys == nullptr) {
        return nullptr;
    }
    rem_sys = vga_insert_vga_rem_sys(rem_sys, node);
    rem_sys->vcb = entry;
    vga_update_viewer(&node->rem_sys_root, &rem_sys->viewer);
    return rem_sys;
}

vga_rem_plu* locate_partner(vga_rem_sys* rem_sys, const DIRECTORY_ENTRY& entry) {
    vga_rem_plu* rem_plu = vga_init_vga_rem_plu(entry.resource_name, entry.resource_type, true,
                                                false, nullptr, &entry);
    return rem_plu != nullptr ? vga_insert_vga_rem_plu(rem_plu, rem_sys) : nullptr;
}

void add_to_directory(vga_node* node, const DIRECTORY_ENTRY& entry, NB_USHORT opcode) {
    vga_dir* network_node;
    vga_dir* end_node;
    NTL_AVL_TREE* tree;
    if (!vga_find_directory_insert_pos(node, &entry, &network_node, &end_node, &tree)) {
        vga_log_absent_ebcdic(node, listed_directory, 36, opcode, entry.parent_name,
                              sizeof entry.parent_name);
    } else if (vga_dir* dir = vga_init_vga_dir(node, &entry); dir != nullptr) {
        vga_insert_vga_dir(dir, end_node != nullptr ? end_node : network_node);
    }
}

} // namespace

// ---- partner LU ----

void vga_process_def_plu(VGA_COMPLETION* completion, vga_node* node, vga_rem_plu** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_PARTNER_LU, completion, NAP_DEFINE_PARTNER_LU);
    auto entry = vga_new_entry<PLU_DEF_ENTRY>();
    vga_copy_name(entry.plu_name, block.plu_name);
    entry.def = block.def;
    vga_give(record, vga_add_plu_definition(node, &entry));
}

void vga_process_del_plu(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_PARTNER_LU, completion, NAP_DELETE_PARTNER_LU);
    vga_rem_plu* rem_plu = partner_of(node->network_fake_rem_sys, block.plu_name, NAP_LU_RESOURCE);
    if (rem_plu == nullptr || rem_plu->plu_defn == 0) {
        rem_plu = first_with(node, &vga_rem_plu::plu_defn, block.plu_name, NAP_LU_RESOURCE);
    }
    if (rem_plu != nullptr) {
        vga_delete_vga_rem_plu(rem_plu, true, false, false, true);
    }
}

// ---- directory entry ----

void vga_process_def_dir(VGA_COMPLETION* completion, vga_node* node, vga_rem_sys** system,
                         vga_rem_plu** partner) {
    const auto& block =
        VGA_CONFIG_BLOCK(DEFINE_DIRECTORY_ENTRY, completion, NAP_DEFINE_DIRECTORY_ENTRY);
    vga_give<vga_rem_sys>(system, nullptr);
    vga_give<vga_rem_plu>(partner, nullptr);
    auto entry = vga_new_entry<DIRECTORY_ENTRY>();
    vga_copy_name(entry.resource_name, block.resource_name);
    entry.resource_type = block.resource_type;
    vga_copy_name(entry.description, block.description);
    vga_copy_name(entry.parent_name, block.parent_name);
    entry.parent_type = block.parent_type;
    entry.entry_type = NOF_DIRECTORY_DEFINED;
    const NB_BYTE* own_name = node->vcb.parameters.cp_name;
    const auto is_own = [own_name](const NB_FQNAME& name) {
        return std::memcmp(name, own_name, sizeof name) == 0;
    };
    if (block.resource_type == NAP_END_NODE_CP_RESOURCE) {
        vga_copy_name(entry.network_node, block.parent_name);
    }
    if (block.resource_type == NAP_NETWORK_NODE_CP_RESOURCE || is_own(block.resource_name)) {
        // is no remote system
    } else if (block.resource_type == NAP_END_NODE_CP_RESOURCE) {
        vga_give(system, define_system(node, entry));
    } else {
        // The entry may have stood under another control point before.
        vga_rem_plu* before =
            first_with(node, &vga_rem_plu::located, block.resource_name, block.resource_type);
        if (before != nullptr &&
            std::memcmp(before->parent->cp_name, block.parent_name, sizeof(NB_FQNAME)) != 0) {
            vga_delete_vga_rem_plu(before, false, true, false, true);
        }
        auto* rem_sys = vga_status_find<vga_rem_sys>(node->rem_sys_tree, block.parent_name);
        if (rem_sys != nullptr && !is_own(block.parent_name)) {
            vga_give(partner, locate_partner(rem_sys, entry));
        }
    }
    if (gvga_supported[VGA_SUPPORT_DIRECTORY] != 0 && node->node_state == VGA_NODE_STATE_ACTIVE) {
        add_to_directory(node, entry, block.header.opcode);
    }
}

void vga_process_del_dir(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block =
        VGA_CONFIG_BLOCK(DELETE_DIRECTORY_ENTRY, completion, NAP_DELETE_DIRECTORY_ENTRY);
    if (is_control_point(block.resource_type)) {
        auto* rem_sys = vga_status_find<vga_rem_sys>(node->rem_sys_tree, block.resource_name);
        if (rem_sys != nullptr) {
            vga_delete_vga_rem_sys(rem_sys, true, false, true);
        }
    } else if (vga_rem_plu* rem_plu = first_with(node, &vga_rem_plu::located, block.resource_name,
                                                 block.resource_type);
               rem_plu != nullptr) {
        vga_delete_vga_rem_plu(rem_plu, false, true, false, true);
    }
    vga_dir* dir;
    NTL_AVL_TREE* tree;
    if (gvga_supported[VGA_SUPPORT_DIRECTORY] != 0 &&
        vga_find_directory_location(node, block.resource_name, block.resource_type, &dir, &tree)) {
        vga_delete_vga_dir(dir, true);
    }
}

// ---- adjacent nodes ----

namespace {

// The verbs of the two kinds of adjacent node differ in their opcodes and exceptions only.
struct ADJACENT_KIND {
    NB_USHORT define;
    NB_USHORT remove;
    const char* define_expression;
    const char* remove_expression;
    int unknown_node;
    int unknown_lu;
};
constexpr ADJACENT_KIND adjacent_node{NAP_DEFINE_ADJACENT_NODE,
                                      NAP_DELETE_ADJACENT_NODE,
                                      "vcb->opcode == NAP_DEFINE_ADJACENT_NODE",
                                      "vcb->opcode == NAP_DELETE_ADJACENT_NODE",
                                      62,
                                      63};
constexpr ADJACENT_KIND adjacent_len_node{NAP_DEFINE_ADJACENT_LEN_NODE,
                                          NAP_DELETE_ADJACENT_LEN_NODE,
                                          "vcb->opcode == NAP_DEFINE_ADJACENT_LEN_NODE",
                                          "vcb->opcode == NAP_DELETE_ADJACENT_LEN_NODE",
                                          56,
                                          57};

template <typename Block>
const Block& adjacent_block(const VGA_COMPLETION* completion, NB_USHORT opcode,
                            const char* expression) {
    const VCB_HEADER* vcb = vcb_header(completion->vcb);
    VGA_ASSERT_TEXT(vcb->opcode == opcode, expression);
    VGA_ASSERT(vcb->primary_rc == NAP_INDICATION);
    return *static_cast<const Block*>(completion->vcb);
}

// Calls use(fully qualified name, resource type) for each LU that a block lists behind its fixed
// part.
template <typename Block, typename Use> void for_each_lu(const Block& block, Use use) {
    for (int i = 0; i < block.num_lus; ++i) {
        ADJACENT_LU lu;
        std::memcpy(&lu, nof_tail(&block) + i * sizeof lu, sizeof lu);
        NB_FQNAME fq_name;
        if (std::memchr(lu.lu_name, EBCDIC_PERIOD, sizeof lu.lu_name) != nullptr) {
            vga_copy_name(fq_name, lu.lu_name);
        } else {
            ntl_change_local_name(block.cp_name, lu.lu_name, fq_name);
        }
        if (!use(fq_name, lu.wildcard == 1 ? NAP_WILDCARD_LU_RESOURCE : NAP_LU_RESOURCE)) {
            return;
        }
    }
}

void define_adjacent(const ADJACENT_KIND& kind, VGA_COMPLETION* completion, vga_node* node,
                     vga_rem_sys** record) {
    const auto& block =
        adjacent_block<DEFINE_ADJACENT_NODE>(completion, kind.define, kind.define_expression);
    auto entry = vga_new_entry<DIRECTORY_ENTRY>();
    vga_copy_name(entry.resource_name, block.cp_name);
    entry.resource_type = NAP_END_NODE_CP_RESOURCE;
    vga_copy_name(entry.description, block.description);
    entry.entry_type = NOF_DIRECTORY_DEFINED;
    vga_rem_sys* rem_sys = define_system(node, entry);
    vga_give(record, rem_sys);
    if (rem_sys == nullptr) {
        return;
    }
    auto lu_entry = vga_new_entry<DIRECTORY_ENTRY>();
    vga_copy_name(lu_entry.parent_name, block.cp_name);
    lu_entry.parent_type = NAP_END_NODE_CP_RESOURCE;
    lu_entry.entry_type = NOF_DIRECTORY_DEFINED;
    for_each_lu(block, [&](const NB_FQNAME& fq_name, NB_USHORT type) {
        vga_copy_name(lu_entry.resource_name, fq_name);
        lu_entry.resource_type = type;
        return locate_partner(rem_sys, lu_entry) != nullptr;
    });
}

void delete_adjacent(const ADJACENT_KIND& kind, VGA_COMPLETION* completion, vga_node* node) {
    const auto& block =
        adjacent_block<DELETE_ADJACENT_NODE>(completion, kind.remove, kind.remove_expression);
    auto* rem_sys = vga_status_find<vga_rem_sys>(node->rem_sys_tree, block.cp_name);
    if (rem_sys == nullptr) {
        vga_log_absent_ebcdic(node, listed_directory, kind.unknown_node, kind.remove, block.cp_name,
                              sizeof block.cp_name);
        return;
    }
    if (block.num_lus == 0) {
        vga_delete_vga_rem_sys(rem_sys, true, false, true);
        return;
    }
    for_each_lu(block, [&](const NB_FQNAME& fq_name, NB_USHORT type) {
        vga_rem_plu* rem_plu = partner_of(rem_sys, fq_name, type);
        if (rem_plu != nullptr && rem_plu->located != 0) {
            vga_delete_vga_rem_plu(rem_plu, false, true, false, true);
        } else {
            vga_log_absent_ebcdic(node, listed_directory, kind.unknown_lu, kind.remove, fq_name,
                                  sizeof fq_name);
        }
        return true;
    });
}

} // namespace

void vga_process_def_adj_node(VGA_COMPLETION* completion, vga_node* node, vga_rem_sys** record) {
    define_adjacent(adjacent_node, completion, node, record);
}
void vga_process_del_adj_node(VGA_COMPLETION* completion, vga_node* node) {
    delete_adjacent(adjacent_node, completion, node);
}
void vga_process_def_adj_len_node(VGA_COMPLETION* completion, vga_node* node,
                                  vga_rem_sys** record) {
    define_adjacent(adjacent_len_node, completion, node, record);
}
void vga_process_del_adj_len_node(VGA_COMPLETION* completion, vga_node* node) {
    delete_adjacent(adjacent_len_node, completion, node);
}
