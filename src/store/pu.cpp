// Local and downstream PUs, where they are shown, and the names proposed for them.
#include "common/names.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

#include <array>
#include <string_view>

namespace {

vga_pu* init_pu(vga_node* node, const PU_ENTRY* entry, VGA_PU_KIND kind) {
    auto* pu = vga_new_record<vga_pu>();
    if (pu == nullptr) {
        return nullptr;
    }
    pu->kind = kind;
    pu->parent = node;
    pu->pending = (node->build_flags &
                   vga_flag(kind == VGA_PU_LOCAL ? VGA_NODE_LU03S : VGA_NODE_DOWN_LUS)) != 0;
    vga_copy_entry(pu->vcb, entry);
    ntl_avl_init_node(&pu->node, pu, pu->vcb.pu_name);
    ntl_avl_init_tree(&pu->lu_tree, vga_compare_ebc8);
    ntl_avl_init_tree(&pu->nau_tree, vga_compare_byte);
    vga_init_row(&pu->viewer, VGA_VIEWER_LOCAL_PU, pu);
    return pu;
}

bool names_ls(const vga_pu* pu) {
    return !vga_blank_name(pu->vcb.ls_name, sizeof pu->vcb.ls_name);
}

// A link station carries one PU, below whose row the PU's LUs stand; an older one of it goes.
void link_ls(vga_pu* pu, vga_ls* ls) {
    if (pu->ls_entry == ls) {
        return;
    }
    if (pu->ls_entry != nullptr) {
        pu->ls_entry->pu_entry = nullptr;
    }
    if (ls->pu_entry != nullptr) {
        if (ls->pu_entry->kind == VGA_PU_LOCAL) {
            vga_delete_vga_local_pu(ls->pu_entry, true);
        } else {
            vga_delete_vga_down_pu(ls->pu_entry, true);
        }
    }
    pu->ls_entry = ls;
    ls->pu_entry = pu;
    ls->viewer.type = VGA_VIEWER_LS;
    vga_update_row(&pu->parent->links_root, &ls->viewer);
    vga_show_dependent_lus(pu);
}

// Under the DLUR fake port, behind the PU shown there before it. False: no memory.
bool show_dlur_pu(vga_pu* pu) {
    vga_port* fake = vga_get_dlur_fake_port(pu->parent);
    if (fake == nullptr) {
        return false;
    }
    auto* previous = vga_prev<vga_pu>(pu->node);
    while (previous != nullptr && !vga_is_shown(previous->viewer)) {
        previous = vga_prev<vga_pu>(previous->node);
    }
    vga_create_viewer(&pu->parent->links_root, &pu->viewer, VGA_VIEWER_LOCAL_PU, pu, &fake->viewer,
                      previous != nullptr ? &previous->viewer : nullptr);
    vga_show_dependent_lus(pu);
    return true;
}

// Links a PU with its link station, or shows it under the DLUR fake port; a PU that has a row keeps
// it, with the rows of its LUs. False: its link station is missing, or there is no memory.
bool place_pu(vga_pu* pu) {
    if (vga_is_shown(pu->viewer)) {
        return true;
    }
    if (names_ls(pu)) {
        auto* ls = vga_find<vga_ls>(pu->parent->ls_tree, pu->vcb.ls_name);
        if (ls == nullptr) {
            return pu->kind == VGA_PU_DOWNSTREAM;
        }
        link_ls(pu, ls);
        return true;
    }
    if (pu->kind == VGA_PU_LOCAL && pu->ls_entry == nullptr &&
        pu->vcb.host_attachment == NAP_DLUR_ATTACHED) {
        return show_dlur_pu(pu);
    }
    return true;
}

vga_pu* insert_pu(vga_pu* pu, NTL_AVL_TREE* tree) {
    if (ntl_avl_insert(tree, &pu->node)) {
        if (!place_pu(pu)) {
            ntl_avl_delete(tree, &pu->node);
            vga_free_record(pu);
            return nullptr;
        }
        return pu;
    }
    auto* old = vga_older<vga_pu>(*tree, pu->vcb.pu_name);
    const NB_BYTE compression = old->vcb.conventional_lu_compression;
    old->vcb = pu->vcb;
    old->vcb.conventional_lu_compression = compression;
    vga_free_record(pu);
    place_pu(old);
    vga_update_row(&old->parent->links_root,
                   old->ls_entry != nullptr ? &old->ls_entry->viewer : &old->viewer);
    return old;
}

// The characters a proposed name counts down through.
constexpr std::string_view COUNT_DOWN = "9876543210ZYXWVUTSRQPONMLKJIHGFEDCBA@#$";

NB_BYTE ebcdic_of(char c) {
    auto byte = static_cast<NB_BYTE>(c);
    nba_local_to_ebcdic(&byte, 1);
    return byte;
}

NB_BYTE one_lower(NB_BYTE character) {
    char local = static_cast<char>(character);
    nba_ebcdic_to_local(&local, 1);
    const std::size_t at = COUNT_DOWN.find(local);
    return ebcdic_of(at == std::string_view::npos ? COUNT_DOWN[0]
                                                  : COUNT_DOWN[(at + 1) % COUNT_DOWN.size()]);
}

bool pu_name_free(const NB_BYTE* name, const vga_ls* ls, const vga_node* node) {
    for (const NTL_AVL_TREE* tree : {&node->local_pu_tree, &node->down_pu_tree}) {
        const auto* pu = vga_find<vga_pu>(*tree, name);
        if (pu != nullptr && (ls == nullptr || ls->pu_entry != pu)) {
            return false;
        }
    }
    return true;
}

} // namespace

vga_pu* vga_init_vga_local_pu(vga_node* node, const PU_ENTRY* entry) {
    return init_pu(node, entry, VGA_PU_LOCAL);
}
vga_pu* vga_insert_vga_local_pu(vga_pu* pu, vga_node* node) {
    return insert_pu(pu, &node->local_pu_tree);
}
vga_pu* vga_init_vga_down_pu(vga_node* node, const PU_ENTRY* entry) {
    return init_pu(node, entry, VGA_PU_DOWNSTREAM);
}
vga_pu* vga_insert_vga_down_pu(vga_pu* pu, vga_node* node) {
    return insert_pu(pu, &node->down_pu_tree);
}

vga_pu* vga_add_ls_pu(vga_ls* ls) {
    const LS_DEF& def = ls->vcb->def;
    const bool local = vga_ls_has_local_pu(ls->vcb);
    const NB_BYTE* name = local ? def.pu_name : def.dspu_name;
    if ((!local && !vga_ls_has_down_pu(ls->vcb)) || vga_blank_name(name, SNA_NAME_LENGTH)) {
        return nullptr;
    }
    vga_node* node = ls->parent->parent->parent;
    NTL_AVL_TREE* tree = local ? &node->local_pu_tree : &node->down_pu_tree;
    if (auto* known = vga_find<vga_pu>(*tree, name);
        known != nullptr &&
        (known->ls_entry == ls || (!local && known->ls_entry == nullptr))) { // was known before ls
        std::memcpy(known->vcb.ls_name, ls->vcb->ls_name, sizeof known->vcb.ls_name);
        link_ls(known, ls);
        return known; // its full entry tells more than the link station's
    }
    PU_ENTRY entry{};
    entry.length = sizeof entry;
    std::memcpy(entry.pu_name, name, sizeof entry.pu_name);
    std::memcpy(entry.ls_name, ls->vcb->ls_name, sizeof entry.ls_name);
    entry.host_attachment = local ? NB_BYTE{NAP_DIRECT_ATTACHED} : def.dspu_services;
    vga_pu* pu = init_pu(node, &entry, local ? VGA_PU_LOCAL : VGA_PU_DOWNSTREAM);
    return pu != nullptr ? insert_pu(pu, tree) : nullptr;
}

void vga_drop_stray_pus(vga_node* node, const char* ls_name, const vga_ls* ls) {
    for (auto* pu = ntl_avl_first<vga_pu>(node->down_pu_tree); pu != nullptr;) {
        auto* next = vga_next<vga_pu>(pu->node);
        const bool wanted = ls != nullptr && vga_ls_has_down_pu(ls->vcb) &&
                            vga_compare_ebc8(ls->vcb->def.dspu_name, pu->vcb.pu_name) == 0;
        if (pu->ls_entry == nullptr && !wanted && vga_compare_asc8(pu->vcb.ls_name, ls_name) == 0) {
            vga_delete_vga_down_pu(pu, true);
        }
        pu = next;
    }
}

vga_viewer* vga_pu_viewer(vga_pu* pu) {
    if (pu->ls_entry != nullptr) {
        return &pu->ls_entry->viewer;
    }
    return vga_is_shown(pu->viewer) ? &pu->viewer : nullptr;
}

void vga_ls_to_pu_name(NB_BYTE* pu_name, const char* ls_name, const vga_ls* ls, vga_node* node) {
    v0_generate_ebcdic_a_name(ls_name, SNA_NAME_LENGTH, pu_name);
    if (pu_name_free(pu_name, ls, node)) {
        return;
    }
    for (std::size_t i = SNA_NAME_LENGTH; i-- > 0 && pu_name[i] == EBCDIC_BLANK;) {
        pu_name[i] = ebcdic_of('0');
    }
    std::array<NB_BYTE, SNA_NAME_LENGTH> start;
    std::copy_n(pu_name, start.size(), start.begin());
    while (!pu_name_free(pu_name, ls, node)) {
        for (std::size_t i = SNA_NAME_LENGTH; i-- > 0;) {
            pu_name[i] = one_lower(pu_name[i]);
            if (pu_name[i] != start[i]) {
                break;
            }
        }
    }
}
