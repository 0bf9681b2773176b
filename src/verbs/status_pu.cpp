// Indications of PUs and of the LUs that depend on them.
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "shell/globals.h"
#include "store/build.h"
#include "store/checks.h"
#include "store/remove.h"
#include "store/store.h"
#include "store/tracking.h"
#include "ui/viewer/viewer_type.h"
#include "verbs/status_util.h"

#include <array>
#include <tuple>

namespace {

constexpr NB_BYTE EBCDIC_AT = 0x7C; // first character of names that the node made up

vga_pu* find_local_pu(const vga_node* node, const NB_BYTE* name) {
    return vga_status_find<vga_pu>(node->local_pu_tree, name);
}

// The LU of a name and type, or null.
template <typename Lu> Lu* find_lu(const vga_pu* pu, const NB_BYTE* name, VGA_DEPLU_TYPE type) {
    auto* lu = vga_status_find<vga_deplu>(pu->lu_tree, name);
    return lu != nullptr && lu->lu_type == type ? reinterpret_cast<Lu*>(lu) : nullptr;
}

// The row in the connectivity pane, and that of the pool it belongs to.
void redraw(vga_lu03* lu) {
    vga_status_redraw(gvga_status_hooks.update_deplu, reinterpret_cast<vga_deplu*>(lu));
    if (AVL_IN_TREE(lu->pool_viewer.node)) {
        vga_update_viewer(&gvga_system->pool_viewer_root, &lu->pool_viewer);
    }
}

template <typename Block> auto lu03_state(const Block& block) {
    return std::array{block.lu_active, block.appl_conn_active, block.plu_session_active};
}

// The downstream PU that an indication describes, placed in the store; null: exit code 1 is set.
vga_pu* make_down_pu(vga_node* node, const DOWNSTREAM_PU_INDICATION& ind) {
    PU_ENTRY entry{};
    entry.length = sizeof entry;
    std::memcpy(entry.pu_name, ind.pu_name, sizeof entry.pu_name);
    std::memcpy(entry.ls_name, ind.ls_name, sizeof entry.ls_name);
    entry.host_attachment = ind.type;
    vga_pu* pu = vga_init_vga_down_pu(node, &entry);
    return pu != nullptr ? vga_insert_vga_down_pu(pu, node) : nullptr;
}

void make_down_lu(vga_pu* pu, const DOWNSTREAM_LU_INDICATION& ind) {
    DOWN_LU_ENTRY entry{};
    entry.length = sizeof entry;
    std::memcpy(entry.dslu_name, ind.dslu_name, sizeof entry.dslu_name);
    entry.lu_active = ind.lu_active;
    entry.plu_session_active = ind.plu_session_active;
    entry.type = VGA_FROM_TEMPLATE;
    entry.def.nau_address = ind.nau_address;
    std::memcpy(entry.def.dspu_name, pu->vcb.pu_name, sizeof entry.def.dspu_name);
    if (vga_down_lu* lu = vga_init_vga_down_lu(pu, &entry); lu != nullptr) {
        vga_insert_vga_down_lu(lu, pu);
    }
}

// The LU's entry in the answer to the query for it alone; null when it is not there.
const LU03_ENTRY* answered_entry(const vga_lu03* lu, const void* vcb) {
    const auto& list = *static_cast<const LIST_QUERY*>(vcb);
    if (list.header.primary_rc != NAP_OK || list.num_entries == 0 || list.buffer == nullptr ||
        list.buffer_size < sizeof(LU03_ENTRY)) {
        return nullptr;
    }
    const auto* entry = static_cast<const LU03_ENTRY*>(list.buffer);
    return entry->length >= sizeof *entry &&
                   std::memcmp(entry->lu_name, lu->vcb.lu_name, sizeof entry->lu_name) == 0
               ? entry
               : nullptr;
}

} // namespace

void vga_process_local_pu_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const PU_INDICATION*>(block);
    vga_pu* pu = find_local_pu(node, ind.pu_name);
    if (pu == nullptr) {
        return;
    }
    const bool changed = pu->start_pending != 0 || pu->vcb.state != ind.state;
    pu->vcb.state = ind.state;
    pu->vcb.host_attachment = ind.host_attachment;
    pu->start_pending = 0;
    if (changed) {
        vga_status_redraw(gvga_status_hooks.update_local_pu, pu);
    }
}

void vga_process_dlur_pu_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const DLUR_PU_INDICATION*>(block);
    vga_pu* this_pu = find_local_pu(node, ind.pu_name);
    if (this_pu == nullptr) {
        return;
    }
    PU_ENTRY& entry = this_pu->vcb;
    VGA_ASSERT_TEXT(entry.host_attachment == NAP_DLUR_ATTACHED,
                    "this_pu->vcb.host_attachment == NAP_DLUR_ATTACHED");
    const bool changed =
        this_pu->start_pending != 0 || (ind.dlur_active == 1) != (entry.state != 0) ||
        entry.dlur_active != ind.dlur_active || entry.dlur_status != ind.dlur_status;
    entry.state = ind.dlur_active == 1;
    entry.dlur_active = ind.dlur_active;
    entry.dlur_status = ind.dlur_status;
    entry.dlur_parameter1 = ind.dlur_parameter1;
    entry.dlur_parameter2 = ind.dlur_parameter2;
    std::memcpy(entry.dlur_pcid, ind.dlur_pcid, sizeof entry.dlur_pcid);
    std::memcpy(entry.dlur_active_dlus, ind.dlur_active_dlus, sizeof entry.dlur_active_dlus);
    entry.dlur_parameter3 = ind.dlur_parameter3;
    this_pu->start_pending = 0;
    if (changed) {
        vga_status_redraw(gvga_status_hooks.update_local_pu, this_pu);
    }
}

// ---- LUs 0 to 3 ----

void vga_process_lu03_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const LU_0_TO_3_INDICATION*>(block);
    vga_pu* pu = find_local_pu(node, ind.pu_name);
    if (pu == nullptr) {
        if (!vga_being_built(node, VGA_NODE_LOCAL_PUS)) {
            vga_log_unknown_ebcdic(13, ind.header.opcode, ind.pu_name);
        }
        return;
    }
    auto* lu = find_lu<vga_lu03>(pu, ind.lu_name, VGA_DEPLU_TYPE_LU03);
    if (lu == nullptr) {
        if (pu->pending == 0) {
            vga_log_unknown_ebcdic(12, ind.header.opcode, ind.lu_name);
        }
        return;
    }
    LU03_DETAIL detail = lu->vcb.det_data;
    if (lu->user_query != 0 || lu03_state(ind) == lu03_state(detail)) {
        return;
    }
    const bool use_changed = ind.appl_conn_active != detail.appl_conn_active;
    if (use_changed && ind.appl_conn_active == NAP_YES) {
        return vga_query_lu03_user(lu); // the state comes with the answer
    }
    detail.lu_active = ind.lu_active;
    detail.appl_conn_active = ind.appl_conn_active;
    detail.plu_session_active = ind.plu_session_active;
    if (use_changed) {
        std::memset(&detail.application, 0, sizeof detail.application);
        detail.app_type = NAP_NO_APPLICATION;
    }
    vga_take_lu03_detail(lu, detail);
    redraw(lu);
}

void vga_query_lu03_user(vga_lu03* lu) {
    if (vga_issue_query_lu03(lu->parent, lu, true, 1, vga_process_lu03_user)) {
        lu->user_query = 1;
    } else {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

void vga_process_lu03_user(VGA_COMPLETION* completion) {
    auto* lu = static_cast<vga_lu03*>(nba_validate_handle(completion->corr));
    if (lu == nullptr || lu->user_query == 0) {
        return;
    }
    lu->user_query = 0;
    if (const LU03_ENTRY* entry = answered_entry(lu, completion->vcb); entry != nullptr) {
        vga_take_lu03_detail(lu, entry->det_data);
        redraw(lu);
    }
}

// ---- downstream PUs and LUs ----

void vga_process_down_pu_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const DOWNSTREAM_PU_INDICATION*>(block);
    auto* this_pu = vga_status_find<vga_pu>(node->down_pu_tree, ind.pu_name);
    if (this_pu == nullptr) {
        this_pu = make_down_pu(node, ind);
        if (this_pu == nullptr) {
            return;
        }
    }
    const bool changed = this_pu->start_pending != 0 || this_pu->vcb.state != ind.state;
    this_pu->vcb.state = ind.state;
    this_pu->vcb.host_attachment = ind.type;
    this_pu->start_pending = 0;
    if (!changed) {
        return;
    }
    if (VGA_ASSERT_TEXT(this_pu->ls_entry != nullptr, "this_pu->ls_entry != NULL")) {
        vga_status_redraw(gvga_status_hooks.update_ls, this_pu->ls_entry);
    }
    vga_refresh_buttons_of_type(node, VGA_VIEWER_DOWN_LU);
}

void vga_process_down_lu_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const DOWNSTREAM_LU_INDICATION*>(block);
    auto* pu = vga_status_find<vga_pu>(node->down_pu_tree, ind.dspu_name);
    if (pu == nullptr) {
        if (!vga_being_built(node, VGA_NODE_DOWN_PUS) && ind.dspu_name[0] != EBCDIC_AT) {
            vga_log_unknown_ebcdic(10, ind.header.opcode, ind.dspu_name);
        }
        return;
    }
    const bool from_template = pu->vcb.host_attachment == VGA_FROM_TEMPLATE;
    auto* lu = vga_status_find<vga_down_lu>(pu->lu_tree, ind.dslu_name);
    const bool up = ind.lu_active != 0 || ind.plu_session_active != 0;
    if (lu == nullptr) {
        if (from_template && up) { // one that is down has gone before it was listed
            make_down_lu(pu, ind);
        } else if (!from_template && pu->pending == 0) {
            vga_log_unknown_ebcdic(9, ind.header.opcode, ind.dslu_name);
        }
        return;
    }
    const auto state = [](const auto& from) {
        return std::tuple(from.lu_active, from.plu_session_active);
    };
    const bool changed = state(lu->vcb) != state(ind);
    lu->unlisted = 0; // the check's list may have passed its place
    lu->vcb.lu_active = ind.lu_active;
    lu->vcb.plu_session_active = ind.plu_session_active;
    if (!up && from_template) {
        vga_delete_vga_down_lu(lu, true);
    } else if (changed) {
        vga_status_redraw(gvga_status_hooks.update_down_lu, lu);
        vga_refresh_buttons_of_record(node, lu);
    }
}

// ---- dependent LUs 6.2 ----

void vga_process_local_lu_ind(vga_node* node, const void* block) {
    const auto& ind = *static_cast<const LOCAL_LU_INDICATION*>(block);
    if (ind.nau_address == 0 || (ind.change != 2 && ind.change != 3)) {
        return;
    }
    vga_pu* pu = find_local_pu(node, ind.pu_name);
    if (pu == nullptr) {
        if (node->checks_running[VGA_CHECK_PU] == 0) {
            vga_log_unknown_ebcdic(65, ind.header.opcode, ind.pu_name);
        }
        return;
    }
    auto* lu = find_lu<vga_lu62>(pu, ind.lu_name, VGA_DEPLU_TYPE_LU62);
    if (lu == nullptr) {
        if (pu->pending == 0) {
            vga_log_unknown_ebcdic(64, ind.header.opcode, ind.lu_name);
        }
        return;
    }
    if (lu->vcb.session_status != ind.session_status) {
        lu->vcb.session_status = ind.session_status;
        vga_status_redraw(gvga_status_hooks.update_deplu, reinterpret_cast<vga_deplu*>(lu));
        vga_refresh_buttons_of_record(node, lu);
    }
}
