// Who has a name already: the questions dialogs ask before they define something.
#include "common/names.h"
#include "shell/globals.h"
#include "store/record_util.h"
#include "store/store.h"
#include "store/tracking.h"
#include "ui/framework/message_box.h"

#include <cstdio>
#include <span>
#include <vector>

namespace {

constexpr std::size_t XD_NAME = 14; // an extra-data name as the operator types it

struct Hit {
    VGA_LU_NAME_CLASH code;
    void* record;
};

void* find_in_pus(const NTL_AVL_TREE& pus, const NB_BYTE* name) {
    for (auto* pu = ntl_avl_first<vga_pu>(pus); pu != nullptr; pu = vga_next<vga_pu>(pu->node)) {
        if (void* lu = ntl_avl_find(&pu->lu_tree, name); lu != nullptr) {
            return lu;
        }
    }
    return nullptr;
}

Hit find_on_node(const vga_node* node, const NB_BYTE* name) {
    if (void* lu = find_in_pus(node->local_pu_tree, name); lu != nullptr) {
        return {VGA_CLASH_DEPENDENT_LU, lu};
    }
    if (void* lu = find_in_pus(node->down_pu_tree, name); lu != nullptr) {
        return {VGA_CLASH_DOWN_LU, lu};
    }
    void* lu = ntl_avl_find(&node->lu62_tree, name);
    return {lu != nullptr ? VGA_CLASH_LU62 : VGA_CLASH_NONE, lu};
}

// The LU 0 to 3 of a name on the first node that has one.
vga_lu03* find_in_domain(const NB_BYTE* name) {
    static constexpr NB_NODE_NAME no_node{};
    const vga_lu_key key{name, no_node};
    auto* lu = static_cast<vga_lu03*>(ntl_avl_find_next(&gvga_system->lu_tree, &key));
    return lu != nullptr && vga_compare_ebc8(lu->vcb.lu_name, name) == 0 ? lu : nullptr;
}

Hit find_in_system(const NB_BYTE* name) {
    if (void* pool = ntl_avl_find(&gvga_system->pool_tree, name); pool != nullptr) {
        return {VGA_CLASH_POOL, pool};
    }
    void* lu = find_in_domain(name);
    return {lu != nullptr ? VGA_CLASH_OTHER_LU03 : VGA_CLASH_NONE, lu};
}

vga_rem_plu* find_known(const vga_rem_sys* rem_sys, const NB_BYTE* fq_name, NB_USHORT type) {
    vga_rem_plu_key key{};
    std::memcpy(key.plu_name, fq_name, sizeof key.plu_name);
    key.number = type;
    auto* plu = vga_find<vga_rem_plu>(rem_sys->remote_plu_tree, &key);
    return plu != nullptr && (plu->located != 0 || plu->plu_defn != 0) ? plu : nullptr;
}

vga_rem_plu* find_under(const vga_rem_sys* rem_sys, const NB_BYTE* fq_name, bool by_type,
                        NB_USHORT type) {
    if (by_type) {
        return find_known(rem_sys, fq_name, type);
    }
    vga_rem_plu* plu = find_known(rem_sys, fq_name, NAP_LU_RESOURCE);
    return plu != nullptr ? plu : find_known(rem_sys, fq_name, NAP_WILDCARD_LU_RESOURCE);
}

using XdName = std::array<char, XD_NAME>; // padded with blanks

void pad(XdName& name) {
    vga_pad_buffer(name.data(), name.size(), ' ');
}

// What an LU 0 to 3 goes by at the host: the name in its extra data or, without any, its LU name.
// Blank when its extra data have no name.
XdName host_name_of(const vga_lu03* lu) {
    char text[XD_NAME + 1] = {};
    if (lu->extra_data != nullptr) {
        van_ebcdic_to_ascii(text, lu->extra_data->data.second_half, XD_NAME);
    } else {
        van_ebcdic_to_ascii(text, lu->vcb.lu_name, sizeof lu->vcb.lu_name);
    }
    XdName name{};
    std::memcpy(name.data(), text, strnlen(text, XD_NAME));
    pad(name);
    return name;
}

// The first LU 0 to 3 of the node's local PUs, but for one, that goes by one of the sorted names.
const vga_lu03* find_host_name(const vga_node* node, std::span<const XdName> names,
                               const vga_lu03* but) {
    for (auto* pu = ntl_avl_first<vga_pu>(node->local_pu_tree); pu != nullptr;
         pu = vga_next<vga_pu>(pu->node)) {
        for (auto* any = ntl_avl_first<vga_deplu>(pu->nau_tree); any != nullptr;) {
            const bool is_lu03 = any->lu_type == VGA_DEPLU_TYPE_LU03;
            const auto* lu = reinterpret_cast<const vga_lu03*>(any);
            if (is_lu03 && lu != but &&
                std::binary_search(names.begin(), names.end(), host_name_of(lu))) {
                return lu;
            }
            any = static_cast<vga_deplu*>(ntl_avl_next(
                is_lu03 ? &lu->nau_node : &reinterpret_cast<const vga_lu62*>(any)->nau_node));
        }
    }
    return nullptr;
}

bool report_host_name(const vga_lu03* lu, vga_dialog* dialog) {
    if (lu != nullptr) {
        vga_display_error_dialog(dialog, 275, "lu32a", nullptr, 0, "es",
                                 int{sizeof lu->vcb.lu_name}, lu->vcb.lu_name);
    }
    return lu == nullptr;
}

template <typename Record> bool names_list(const NTL_AVL_TREE& tree, const char* list) {
    for (auto* record = ntl_avl_first<Record>(tree); record != nullptr;
         record = vga_next<Record>(record->node)) {
        if (vga_compare_asc14(record->vcb.def.access_list_name, list) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

VGA_LU_NAME_CLASH vga_check_lu_name_clash(const NB_BYTE* name, vga_node* only, void** found) {
    Hit hit{};
    if (!vga_blank_name(name, sizeof(NB_NAME8E))) {
        auto* node = only != nullptr ? only : ntl_avl_first<vga_node>(gvga_system->node_tree);
        for (; node != nullptr && hit.record == nullptr;
             node = only != nullptr ? nullptr : vga_next<vga_node>(node->node)) {
            hit = find_on_node(node, name);
        }
        if (hit.record == nullptr) {
            hit = find_in_system(name);
        }
    }
    *found = hit.record;
    return hit.code;
}

vga_rem_plu* vga_check_fq_name_plu_clash(const NB_BYTE* fq_name, vga_node* node, bool by_type,
                                         NB_USHORT type) {
    const vga_rem_sys* rem_sys = node->network_fake_rem_sys;
    if (rem_sys != nullptr) {
        if (vga_rem_plu* plu = find_under(rem_sys, fq_name, by_type, type); plu != nullptr) {
            return plu;
        }
    }
    for (rem_sys = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree); rem_sys != nullptr;
         rem_sys = vga_next<vga_rem_sys>(rem_sys->node)) {
        if (vga_rem_plu* plu = find_under(rem_sys, fq_name, by_type, type); plu != nullptr) {
            return plu;
        }
    }
    return nullptr;
}

vga_lu62* vga_check_fq_name_local_clash(const NB_BYTE* fq_name, vga_node* node) {
    NB_NAME8E network, name, own_network, own_name;
    if (ntl_split_fq_name(fq_name, network, name) != NTL_FQ_QUALIFIED ||
        ntl_split_fq_name(node->vcb.parameters.cp_name, own_network, own_name) !=
            NTL_FQ_QUALIFIED ||
        std::memcmp(network, own_network, sizeof network) != 0) {
        return nullptr;
    }
    return vga_find<vga_lu62>(node->lu62_tree, name);
}

bool vga_check_lu_xd_name_clash(const char* xd_name, const vga_lu03* lu, vga_node* node,
                                vga_dialog* dialog) {
    if (vga_blank_name(xd_name, XD_NAME)) {
        return true;
    }
    XdName name{};
    std::memcpy(name.data(), xd_name, strnlen(xd_name, name.size()));
    pad(name);
    return report_host_name(find_host_name(node, std::span(&name, 1), lu), dialog);
}

bool vga_check_lu_range_xd_clash(const char* base, NB_LONG first, NB_LONG last, vga_node* node,
                                 vga_dialog* dialog, bool decimal) {
    char stem[12] = {};
    std::memcpy(stem, base, strnlen(base, sizeof stem - 1));
    vga_strip_spaces(stem);
    if (stem[0] == '\0') {
        return true;
    }
    std::vector<XdName> names;
    for (NB_LONG number = first; number <= last; ++number) {
        char text[sizeof stem + 12];
        std::snprintf(text, sizeof text, decimal ? "%s%3.3ld" : "%s%2.2lX", stem, long{number});
        XdName name{};
        std::memcpy(name.data(), text, strnlen(text, name.size()));
        pad(name);
        names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return report_host_name(find_host_name(node, names, nullptr), dialog);
}

bool vga_access_list_unused(const vga_node* node, const char* access_list) {
    return !names_list<vga_tp_def>(node->tp_def_tree, access_list) &&
           !names_list<vga_lu62>(node->lu62_tree, access_list);
}
