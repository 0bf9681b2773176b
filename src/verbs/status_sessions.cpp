// Indications of partner LUs, of sessions, of the directory and of APPC over IP.
#include "nof/ipbridge.h"
#include "nof/lu62.h"
#include "shell/globals.h"
#include "store/remove.h"
#include "store/store.h"
#include "verbs/status_util.h"

namespace {

constexpr NB_BYTE WENT = 1; // change code

// A partner placed in the store, or merged into the one of its name; null: exit code 1 is set.
// cp_name: of the control point that owns it, or null.
vga_plu* make_partner(vga_lu62* lu, const NB_BYTE* plu_name, const NB_BYTE* cp_name) {
    PLU_ENTRY entry{};
    entry.length = sizeof entry;
    std::memcpy(entry.plu_name, plu_name, sizeof entry.plu_name);
    if (cp_name != nullptr) {
        entry.cp_known = 1;
        std::memcpy(entry.cp_name, cp_name, sizeof entry.cp_name);
    }
    vga_plu* plu = vga_init_vga_plu(lu, &entry);
    return plu != nullptr ? vga_insert_vga_plu(plu, lu) : nullptr;
}

// What the indication says of a mode, with the partner's control point. A mode that is gone has no
// sessions, whatever count comes with it.
MODE_ENTRY entry_of(const MODE_INDICATION& ind, const PLU_ENTRY& partner) {
    MODE_ENTRY entry{};
    entry.length = sizeof entry;
    std::memcpy(entry.mode_name, ind.mode_name, sizeof entry.mode_name);
    std::memcpy(entry.plu_name, ind.plu_name, sizeof entry.plu_name);
    entry.cp_known = partner.cp_known;
    std::memcpy(entry.cp_name, partner.cp_name, sizeof entry.cp_name);
    entry.act_sess_count = ind.change == WENT ? NB_USHORT{0} : ind.act_sess_count;
    return entry;
}

// The partner that sessions are indicated for; null when nothing is to be done about it. While the
// LU is listed again, the end of a partner's sessions is no reason to make it.
vga_plu* partner_of(vga_lu62* lu, const MODE_INDICATION& ind) {
    auto* plu = vga_status_find<vga_plu>(lu->plu_tree, ind.plu_name);
    if (plu != nullptr) {
        plu->check_mark = 0;
        return plu;
    }
    if (ind.change == WENT || (lu->checking != VGA_LU62_UNCHECKED && ind.act_sess_count == 0)) {
        return nullptr;
    }
    return make_partner(lu, ind.plu_name, nullptr);
}

vga_mode* mode_of(vga_plu* plu, const MODE_ENTRY& entry) {
    auto* mode = vga_status_find<vga_mode>(plu->mode_tree, entry.mode_name);
    if (mode != nullptr) {
        mode->check_mark = 0;
        return mode;
    }
    if (plu->parent->checking != VGA_LU62_UNCHECKED && entry.act_sess_count == 0) {
        return nullptr;
    }
    mode = vga_init_vga_mode(plu, &entry);
    return mode != nullptr ? vga_insert_vga_mode(mode, plu) : nullptr;
}

// Takes the count of a mode into the local LU. False: there is nothing more to do.
bool count_sessions(vga_lu62* lu, vga_plu* plu, const MODE_ENTRY& entry) {
    vga_mode* mode = mode_of(plu, entry);
    if (mode == nullptr) {
        return false;
    }
    const NB_LONG count = entry.act_sess_count;
    if (lu->checking != VGA_LU62_UNCHECKED && count == 0) {
        vga_count_lu62_sessions(lu, -mode->act_sess_count);
        vga_delete_vga_mode(mode, true);
        if (plu->mode_tree.root == nullptr) { // else its other sessions stay
            vga_delete_vga_plu(plu, true);
        }
    } else {
        vga_count_lu62_sessions(lu, count - mode->act_sess_count);
        mode->act_sess_count = count;
        vga_status_redraw(gvga_status_hooks.update_mode, mode);
    }
    vga_status_redraw(gvga_status_hooks.update_lu62, lu);
    return true;
}

void end_mode(vga_lu62* lu, vga_plu* plu, const NB_BYTE* mode_name) {
    auto* mode = vga_status_find<vga_mode>(plu->mode_tree, mode_name);
    if (mode != nullptr) {
        vga_count_lu62_sessions(lu, -mode->act_sess_count);
        vga_delete_vga_mode(mode, true);
    }
}

// True when the sessions run to another node, one that is known by name. Those of dependent LUs run
// through their host.
bool is_remote(const vga_node* node, const vga_lu62* lu, const MODE_ENTRY& entry) {
    return lu->vcb.def.nau_address == 0 && entry.cp_known == 1 && entry.cp_name[0] != 0 &&
           vga_compare_ebc17(entry.cp_name, node->vcb.parameters.cp_name) != 0;
}

// A part of an indication is left to the list that is being made. When pages of that kind have come
// already, it may not be in those that follow.
void list_again_behind(vga_lu62* lu, VGA_LU62_CHECK pages) {
    if (lu->checking >= pages) {
        lu->checking = VGA_LU62_AGAIN;
    }
}

} // namespace

void vga_process_plu_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const PLU_INDICATION*>(block);
    auto* lu = vga_status_find<vga_lu62>(node->lu62_tree, ind.lu_name);
    // While the LU is listed again, what comes is listed, too, unless the list has passed its
    // place; what goes may have been listed before.
    if (lu == nullptr) {
        return;
    }
    if (lu->checking != VGA_LU62_UNCHECKED && ind.change != WENT) {
        list_again_behind(lu, VGA_LU62_PARTNERS);
        return;
    }
    if (ind.change != WENT) {
        make_partner(lu, ind.plu_name, ind.cp_known == 1 ? ind.cp_name : nullptr);
        return;
    }
    auto* plu = vga_status_find<vga_plu>(lu->plu_tree, ind.plu_name);
    if (plu == nullptr) {
        if ((lu->startup_status & VGA_PLU_LIST) == 0) {
            vga_log_unknown_ebcdic(15, ind.header.opcode, ind.plu_name, sizeof ind.plu_name);
        }
        return;
    }
    for (auto* mode = ntl_avl_first<vga_mode>(plu->mode_tree); mode != nullptr;
         mode = static_cast<vga_mode*>(ntl_avl_next(&mode->node))) {
        vga_count_lu62_sessions(lu, -mode->act_sess_count);
    }
    vga_delete_vga_plu(plu, true);
}

void vga_process_mode_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const MODE_INDICATION*>(block);
    auto* lu = vga_status_find<vga_lu62>(node->lu62_tree, ind.lu_name);
    vga_plu* plu = lu != nullptr ? partner_of(lu, ind) : nullptr;
    if (plu == nullptr) {
        return;
    }
    const MODE_ENTRY entry = entry_of(ind, plu->vcb);
    if (ind.change == WENT) {
        end_mode(lu, plu, ind.mode_name);
    } else if (!count_sessions(lu, plu, entry)) {
        return;
    }
    if (!is_remote(node, lu, entry)) {
        return;
    }
    if (lu->checking == VGA_LU62_UNCHECKED) {
        vga_track_rem_sessions(lu, &entry); // sets exit code 1 itself
    } else { // the list of modes brings the sessions with other systems
        list_again_behind(lu, VGA_LU62_MODES);
    }
}

// ---- directory ----

namespace {

void add_to_directory(vga_node* node, const DIRECTORY_INDICATION& ind) {
    DIRECTORY_ENTRY entry{};
    entry.length = sizeof entry;
    std::memcpy(entry.resource_name, ind.resource_name, sizeof entry.resource_name);
    entry.resource_type = ind.resource_type;
    std::memcpy(entry.parent_name, ind.parent_name, sizeof entry.parent_name);
    entry.parent_type = ind.parent_type;
    entry.entry_type = ind.entry_type;
    vga_dir* network_node;
    vga_dir* end_node;
    NTL_AVL_TREE* tree;
    if (!vga_find_directory_insert_pos(node, &entry, &network_node, &end_node, &tree)) {
        if (node->checks_running[VGA_CHECK_DIR] == 0) {
            vga_log_unknown_ebcdic(7, ind.header.opcode, ind.parent_name, sizeof ind.parent_name);
        }
        return;
    }
    if (vga_dir* dir = vga_init_vga_dir(node, &entry); dir != nullptr) {
        vga_insert_vga_dir(dir, end_node != nullptr ? end_node : network_node);
    }
}

} // namespace

void vga_process_dir_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const DIRECTORY_INDICATION*>(block);
    if (ind.overwritten == 1 && ind.resource_type == NAP_END_NODE_CP_RESOURCE) {
        auto* rem_sys = vga_status_find<vga_rem_sys>(node->rem_sys_tree, ind.resource_name);
        if (rem_sys != nullptr) {
            vga_overwrite_vga_rem_sys(rem_sys);
        }
    }
    if (gvga_supported[VGA_SUPPORT_DIRECTORY] == 0) {
        return;
    }
    if (ind.change != WENT) {
        add_to_directory(node, ind);
        return;
    }
    vga_dir* dir;
    NTL_AVL_TREE* tree;
    if (vga_find_directory_entry(node, ind.resource_name, ind.resource_type, &dir, &tree)) {
        vga_delete_vga_dir(dir, true);
    }
}

void vga_process_ipbridge_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const IPBRIDGE_INDICATION*>(block);
    if (!VGA_ASSERT_TEXT(ind.indication_type == 0, "FALSE")) {
        return;
    }
    if (ind.change == NOF_IPBRIDGE_ENDED) {
        auto* sess =
            vga_status_find<vga_appcip_sess>(node->appcip_id_tree, &ind.session.session_id);
        if (sess != nullptr) {
            vga_delete_vga_appcip_sess(sess, true);
        }
        return;
    }
    IPBRIDGE_APPCIP_ENTRY entry{};
    entry.length = sizeof entry;
    entry.state = ind.change;
    entry.session = ind.session;
    if (vga_appcip_sess* sess = vga_init_vga_appcip_sess(node, &entry); sess != nullptr) {
        vga_insert_vga_appcip_sess(sess, node);
    }
}
