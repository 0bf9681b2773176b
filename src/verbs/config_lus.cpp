// Definitions of LUs of types 0 to 3 and of downstream LUs, one by one and in ranges.
#include "common/names.h"
#include "store/tracking.h"
#include "verbs/config_util.h"
#include "verbs/status.h"

#include <cstdio>
#include <utility>

namespace {

constexpr vga_listing listed_local_pus{vga_flag(VGA_NODE_LOCAL_PUS), VGA_CHECK_PU};
constexpr vga_listing listed_down_pus{vga_flag(VGA_NODE_DOWN_PUS), VGA_CHECK_DOWN_PU};
constexpr vga_listing listed_lu03s{vga_flag(VGA_NODE_LOCAL_PUS) | vga_flag(VGA_NODE_LU03S),
                                   VGA_CHECK_LU03};
constexpr vga_listing listed_down_lus{vga_flag(VGA_NODE_DOWN_PUS) | vga_flag(VGA_NODE_DOWN_LUS),
                                      VGA_CHECK_DOWN_LU};

// The LU of a name on one PU, or null.
vga_lu03* find_on(const vga_pu* pu, const NB_BYTE* name, const vga_lu03*) {
    auto* lu = vga_status_find<vga_deplu>(pu->lu_tree, name);
    return lu != nullptr && lu->lu_type == VGA_DEPLU_TYPE_LU03 ? reinterpret_cast<vga_lu03*>(lu)
                                                               : nullptr;
}
vga_down_lu* find_on(const vga_pu* pu, const NB_BYTE* name, const vga_down_lu*) {
    return vga_status_find<vga_down_lu>(pu->lu_tree, name);
}

// The same on any PU of a tree, in its order; *pu gets the one that has it.
template <typename Lu> Lu* find_on_any(const NTL_AVL_TREE& pus, const NB_BYTE* name, vga_pu** pu) {
    for (*pu = ntl_avl_first<vga_pu>(pus); *pu != nullptr;
         *pu = static_cast<vga_pu*>(ntl_avl_next(&(*pu)->node))) {
        if (Lu* lu = find_on(*pu, name, static_cast<Lu*>(nullptr)); lu != nullptr) {
            return lu;
        }
    }
    return nullptr;
}

// The LU made of an entry, in the store; null when it could not be placed.
vga_lu03* define(vga_pu* pu, LU03_ENTRY entry) {
    vga_node* node = pu->parent;
    bool selected = false;
    vga_pu* before;
    EXTRA_DATA_ENTRY* extra_data = nullptr;
    auto* known = find_on_any<vga_lu03>(node->local_pu_tree, entry.lu_name, &before);
    // It may come, with its state, from a PU whose list is still due.
    bool ask = known == nullptr && (node->build_flags & vga_flag(VGA_NODE_LU03S)) != 0;
    if (known != nullptr && before != pu) { // it keeps its state below the other PU
        entry.det_data = known->vcb.det_data;
        extra_data = std::exchange(known->extra_data, nullptr);
        ask = known->user_query != 0; // the answer under way is for the record that goes
        selected = vga_viewer_selected_alone(&node->links_root, &known->viewer);
        vga_delete_vga_lu03(known, true);
    }
    entry.det_data.host_attachment = pu->vcb.host_attachment;
    vga_lu03* lu = vga_init_vga_lu03(pu, &entry);
    if (lu == nullptr || (lu = vga_insert_vga_lu03(lu, pu)) == nullptr) {
        vga_free(extra_data);
        return nullptr;
    }
    if (extra_data != nullptr) {
        lu->extra_data = extra_data;
    }
    if (ask) {
        vga_query_lu03_user(lu);
    }
    if (selected) {
        vga_viewer_select_again(&node->links_root, &lu->viewer);
    }
    vga_refresh_buttons_of_record(node, lu);
    return lu;
}

vga_down_lu* define(vga_pu* pu, DOWN_LU_ENTRY entry) {
    vga_down_lu* lu = vga_status_find<vga_down_lu>(pu->lu_tree, entry.dslu_name);
    if (lu != nullptr) {
        vga_redefine_down_lu(lu, &entry.def);
    } else {
        bool selected = false;
        vga_pu* before;
        if (auto* moved =
                find_on_any<vga_down_lu>(pu->parent->down_pu_tree, entry.dslu_name, &before);
            moved != nullptr) {
            selected = vga_viewer_selected_alone(&pu->parent->links_root, &moved->viewer);
            vga_delete_vga_down_lu(moved, true);
        }
        entry.type = pu->vcb.host_attachment;
        lu = vga_init_vga_down_lu(pu, &entry);
        lu = lu != nullptr ? vga_insert_vga_down_lu(lu, pu) : nullptr;
        if (selected && lu != nullptr) {
            vga_viewer_select_again(&pu->parent->links_root, &lu->viewer);
        }
    }
    if (lu != nullptr) {
        vga_refresh_buttons_of_record(pu->parent, lu);
    }
    return lu;
}

// ---- ranges ----

enum NAMING : NB_BYTE { NUMBER_GIVEN = 0x01, HEXADECIMAL = 0x02, BASE_OF_SIX = 0x04 };

struct RANGE {
    char base[SNA_NAME_LENGTH + 1]; // local, without trailing blanks
    int first;                      // NAU addresses
    int last;
    int offset; // of the number in the name from the address
    bool hexadecimal;
};

RANGE make_range(const NB_BYTE* base, std::size_t length, NB_BYTE first, NB_BYTE last) {
    RANGE range{};
    range.first = first;
    range.last = last;
    van_ebcdic_to_ascii(range.base, base, length);
    return range;
}

template <typename Block> RANGE lu03_range(const Block& block) {
    const bool six = (block.naming_flags & (HEXADECIMAL | BASE_OF_SIX)) != 0;
    RANGE range = make_range(block.base_name, six ? 6 : 5, block.first_nau, block.last_nau);
    range.offset =
        (block.naming_flags & NUMBER_GIVEN) != 0 ? block.first_number - block.first_nau : 0;
    range.hexadecimal = (block.naming_flags & HEXADECIMAL) != 0;
    return range;
}

template <typename Block> RANGE down_lu_range(const Block& block) {
    return make_range(block.base_name, sizeof block.base_name, block.first_nau, block.last_nau);
}

void make_name(NB_NAME8E& name, const RANGE& range, int address) {
    const auto number = static_cast<NB_BYTE>(address + range.offset);
    char text[sizeof range.base + 4];
    std::snprintf(text, sizeof text, range.hexadecimal ? "%s%02X" : "%s%03d", range.base,
                  int{number});
    van_ascii_to_ebcdic(name, text, sizeof name);
}

// Defines the LUs of a range from the entry they have in common, whose name and NAU address the
// pointers give. The last one defined, or null.
template <typename Lu, typename Entry>
Lu* define_range(vga_pu* pu, const RANGE& range, Entry& entry, NB_NAME8E& name, NB_BYTE& address) {
    Lu* last = nullptr;
    for (int nau = range.first; nau != 0 && nau <= range.last; ++nau) {
        make_name(name, range, nau);
        address = static_cast<NB_BYTE>(nau);
        if (Lu* lu = define(pu, entry); lu != nullptr) {
            last = lu;
        } else if (gvga_exit_code != 0) {
            break; // no memory
        }
    }
    return last;
}

template <typename Lu>
void delete_range(vga_node* node, const NTL_AVL_TREE& pus, const RANGE& range,
                  void (*remove)(Lu*, bool), const vga_listing& listing, int subcode,
                  NB_USHORT opcode) {
    vga_pu* pu = nullptr; // the one that has the range, once it is known
    for (int nau = range.last; range.first != 0 && nau >= range.first; --nau) {
        NB_NAME8E name;
        make_name(name, range, nau);
        Lu* lu = pu != nullptr ? find_on(pu, name, static_cast<Lu*>(nullptr))
                               : find_on_any<Lu>(pus, name, &pu);
        if (lu != nullptr) {
            remove(lu, true);
        } else {
            vga_log_absent_ebcdic(node, listing, subcode, opcode, name);
        }
    }
}

} // namespace

// ---- LU 0 to 3 ----

namespace {

// The PU that LUs are defined on. While it is not listed yet, its LUs come with its list; but the
// pool they are defined in stays, even when they leave it before that.
vga_pu* local_pu(vga_node* node, const NB_BYTE* pu_name, const NB_BYTE* pool_name, int subcode,
                 NB_USHORT opcode) {
    auto* pu = vga_status_find<vga_pu>(node->local_pu_tree, pu_name);
    if (pu == nullptr) {
        vga_log_absent_ebcdic(node, listed_local_pus, subcode, opcode, pu_name);
        vga_sys_pool* system_pool;
        vga_pool* pool;
        vga_find_pool_insert_pos(pool_name, node, &system_pool, &pool);
    }
    return pu;
}

} // namespace

void vga_process_def_lu03(VGA_COMPLETION* completion, vga_node* node, vga_lu03** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_LU_0_TO_3, completion, NAP_DEFINE_LU_0_TO_3);
    vga_give<vga_lu03>(record, nullptr);
    vga_pu* pu = local_pu(node, block.def.pu_name, block.def.pool_name, 44, block.header.opcode);
    if (pu == nullptr) {
        return;
    }
    auto entry = vga_new_entry<LU03_ENTRY>();
    vga_copy_name(entry.lu_name, block.lu_name);
    entry.def_data = block.def;
    vga_give(record, define(pu, entry));
}

void vga_process_del_lu03(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_BY_NAME8, completion, NAP_DELETE_LU_0_TO_3);
    vga_pu* pu;
    if (auto* lu = find_on_any<vga_lu03>(node->local_pu_tree, block.name, &pu); lu != nullptr) {
        vga_delete_vga_lu03(lu, true);
    } else {
        vga_log_absent_ebcdic(node, listed_lu03s, 45, block.header.opcode, block.name);
    }
}

void vga_process_def_lu03_range(VGA_COMPLETION* completion, vga_node* node, vga_lu03** record) {
    const auto& block =
        VGA_CONFIG_BLOCK(DEFINE_LU_0_TO_3_RANGE, completion, NAP_DEFINE_LU_0_TO_3_RANGE);
    vga_give<vga_lu03>(record, nullptr);
    vga_pu* pu = local_pu(node, block.pu_name, block.pool_name, 46, block.header.opcode);
    if (pu == nullptr) {
        return;
    }
    auto entry = vga_new_entry<LU03_ENTRY>();
    vga_copy_name(entry.def_data.description, block.description);
    vga_copy_name(entry.def_data.pu_name, block.pu_name);
    vga_copy_name(entry.def_data.pool_name, block.pool_name);
    entry.def_data.lu_model = block.lu_model;
    vga_give(record, define_range<vga_lu03>(pu, lu03_range(block), entry, entry.lu_name,
                                            entry.def_data.nau_address));
}

void vga_process_del_lu03_range(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block =
        VGA_CONFIG_BLOCK(DELETE_LU_0_TO_3_RANGE, completion, NAP_DELETE_LU_0_TO_3_RANGE);
    delete_range(node, node->local_pu_tree, lu03_range(block), vga_delete_vga_lu03, listed_lu03s,
                 47, block.header.opcode);
}

// ---- downstream LU ----

void vga_process_def_down_lu(VGA_COMPLETION* completion, vga_node* node, vga_down_lu** record) {
    const auto& block =
        VGA_CONFIG_BLOCK(DEFINE_DOWNSTREAM_LU, completion, NAP_DEFINE_DOWNSTREAM_LU);
    vga_give<vga_down_lu>(record, nullptr);
    auto* pu = vga_status_find<vga_pu>(node->down_pu_tree, block.def.dspu_name);
    if (pu == nullptr) {
        vga_log_absent_ebcdic(node, listed_down_pus, 38, block.header.opcode, block.def.dspu_name);
        return;
    }
    auto entry = vga_new_entry<DOWN_LU_ENTRY>();
    vga_copy_name(entry.dslu_name, block.dslu_name);
    entry.def = block.def;
    vga_give(record, define(pu, entry));
}

void vga_process_del_down_lu(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_BY_NAME8, completion, NAP_DELETE_DOWNSTREAM_LU);
    vga_pu* pu;
    if (auto* lu = find_on_any<vga_down_lu>(node->down_pu_tree, block.name, &pu); lu != nullptr) {
        vga_delete_vga_down_lu(lu, true);
    } else {
        vga_log_absent_ebcdic(node, listed_down_lus, 39, block.header.opcode, block.name);
    }
}

void vga_process_def_down_lu_range(VGA_COMPLETION* completion, vga_node* node,
                                   vga_down_lu** record) {
    const auto& block =
        VGA_CONFIG_BLOCK(DEFINE_DOWNSTREAM_LU_RANGE, completion, NAP_DEFINE_DOWNSTREAM_LU_RANGE);
    vga_give<vga_down_lu>(record, nullptr);
    auto* pu = vga_status_find<vga_pu>(node->down_pu_tree, block.dspu_name);
    if (pu == nullptr) {
        vga_log_absent_ebcdic(node, listed_down_pus, 40, block.header.opcode, block.dspu_name);
        return;
    }
    auto entry = vga_new_entry<DOWN_LU_ENTRY>();
    vga_copy_name(entry.def.description, block.description);
    vga_copy_name(entry.def.dspu_name, block.dspu_name);
    vga_copy_name(entry.def.host_lu_name, block.host_lu_name);
    entry.def.allow_timeout = block.allow_timeout;
    entry.def.delayed_logon = block.delayed_logon;
    vga_give(record, define_range<vga_down_lu>(pu, down_lu_range(block), entry, entry.dslu_name,
                                               entry.def.nau_address));
}

void vga_process_del_down_lu_range(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block =
        VGA_CONFIG_BLOCK(DELETE_DOWNSTREAM_LU_RANGE, completion, NAP_DELETE_DOWNSTREAM_LU_RANGE);
    delete_range(node, node->down_pu_tree, down_lu_range(block), vga_delete_vga_down_lu,
                 listed_down_lus, 41, block.header.opcode);
}
