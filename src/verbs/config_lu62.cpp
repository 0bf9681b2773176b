// Definitions of local LUs 6.2, modes and classes of service.
#include "store/checks.h"
#include "verbs/config_util.h"

namespace {

constexpr vga_listing listed_coss{vga_flag(VGA_NODE_COSS)};

} // namespace

void vga_process_def_lu62(VGA_COMPLETION* completion, vga_node* node, vga_lu62** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_LOCAL_LU, completion, NAP_DEFINE_LOCAL_LU);
    vga_give<vga_lu62>(record, nullptr);
    auto entry = vga_new_entry<LU62_ENTRY>();
    auto* known = vga_status_find<vga_lu62>(node->lu62_tree, block.lu_name);
    if (block.def.nau_address != 0 && vga_being_built(node, VGA_NODE_LOCAL_PUS) &&
        ntl_avl_find(&node->local_pu_tree, block.def.pu_name) == nullptr) {
        if (known != nullptr) { // it comes with the list of the LUs, unless it goes with its PU
            vga_delete_vga_lu62(known, true);
        }
        return;
    }
    const bool was_dependent = known != nullptr && known->vcb.def.nau_address != 0;
    if (known != nullptr) {
        entry.session_status = known->vcb.session_status; // the definition leaves it as it is
    }
    vga_copy_name(entry.lu_name, block.lu_name);
    entry.def = block.def;
    if (vga_lu62* lu = vga_init_vga_lu62(node, &entry); lu != nullptr) {
        lu = vga_insert_vga_lu62(lu, node);
        vga_create_fake_cp_lu(node); // the control point's own LU may have another alias now
        vga_give(record, lu);
        if (lu != nullptr) {
            vga_refresh_buttons_of_record(node, lu);
        }
        if (known != nullptr && lu != nullptr && lu->startup_status == 0 &&
            was_dependent != (lu->vcb.def.nau_address != 0) &&
            node->node_state == VGA_NODE_STATE_ACTIVE) {
            vga_start_check_lu62(lu); // other partners and modes are listed of a dependent LU
        }
    }
}

void vga_process_del_lu62(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_BY_NAME8, completion, NAP_DELETE_LOCAL_LU);
    if (auto* lu = vga_status_find<vga_lu62>(node->lu62_tree, block.name); lu != nullptr) {
        vga_delete_vga_lu62(lu, true);
    }
}

void vga_process_def_mode(VGA_COMPLETION* completion, vga_node* node, vga_mode_def** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_MODE, completion, NAP_DEFINE_MODE);
    vga_give<vga_mode_def>(record, nullptr);
    auto entry = vga_new_entry<MODE_DEF_ENTRY>();
    vga_copy_name(entry.mode_name, block.mode_name);
    entry.def = block.def;
    if (vga_mode_def* mode = vga_init_vga_mode_def(node, &entry); mode != nullptr) {
        vga_give(record, vga_insert_vga_mode_def(mode, node));
    }
}

void vga_process_del_mode(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_BY_NAME8, completion, NAP_DELETE_MODE);
    if (auto* mode = vga_status_find<vga_mode_def>(node->mode_def_tree, block.name);
        mode != nullptr) {
        vga_delete_vga_mode_def(mode, true);
    }
}

void vga_process_def_cos(VGA_COMPLETION* completion, vga_node* node, vga_cos** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_COS, completion, NAP_DEFINE_COS);
    vga_give<vga_cos>(record, nullptr);
    auto entry = vga_new_entry<COS_ENTRY>();
    if (const auto* known = vga_status_find<vga_cos>(node->cos_tree, block.cos_name);
        known != nullptr) {
        entry = known->vcb; // the numbers of its rows
    }
    vga_copy_name(entry.cos_name, block.cos_name);
    vga_copy_name(entry.description, block.description);
    entry.transmission_priority = block.transmission_priority;
    if (vga_cos* cos = vga_init_vga_cos(node, &entry); cos != nullptr) {
        vga_give(record, vga_insert_vga_cos(cos, node));
    }
}

void vga_process_del_cos(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_COS, completion, NAP_DELETE_COS);
    if (auto* cos = vga_status_find<vga_cos>(node->cos_tree, block.cos_name); cos != nullptr) {
        vga_delete_vga_cos(cos, true);
    } else {
        vga_log_absent_ebcdic(node, listed_coss, 35, block.header.opcode, block.cos_name);
    }
}
