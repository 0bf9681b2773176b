// Checks that go PU by PU: LUs of types 0 to 3 and downstream LUs.
#include "store/checks.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"
#include "store/tracking.h"

namespace {

// ---- LUs 0 to 3 ----

void list_lu03s(vga_node* node, vga_pu* pu, const vga_lu03* last) {
    if (pu == nullptr) {
        return vga_check_ends(node, VGA_CHECK_LU03);
    }
    vga_check_sent(vga_issue_query_lu03(pu, last, false, 0, vga_check_lu03), node, VGA_CHECK_LU03);
}

void list_first_lu03s(vga_node* node) {
    list_lu03s(node, ntl_avl_first<vga_pu>(node->local_pu_tree), nullptr);
}

// True when a check of the node's LUs is outstanding: it begins anew when its page comes.
bool make_wait(const vga_node* node) {
    bool found = vga_check_queued(node, NAP_QUERY_LU_0_TO_3, 0, vga_lu03_wait_restart_check);
    while (auto* entry = vga_check_queued(node, NAP_QUERY_LU_0_TO_3, 0, vga_check_lu03)) {
        entry->callback = vga_lu03_wait_restart_check;
        found = true;
    }
    return found;
}

vga_lu03* find_lu03(const vga_pu* pu, const LU03_ENTRY* entry) {
    auto* lu = vga_find<vga_deplu>(pu->lu_tree, entry->lu_name);
    return lu != nullptr && lu->lu_type == VGA_DEPLU_TYPE_LU03 ? reinterpret_cast<vga_lu03*>(lu)
                                                               : nullptr;
}

void take_detail(vga_lu03* lu, const LU03_ENTRY* entry) {
    lu->user_query = 0; // the list tells what an outstanding query was to find out
    vga_take_lu03_detail(lu, entry->det_data);
}

// ---- downstream LUs ----

void list_down_lus(vga_node* node, vga_pu* pu, const DOWN_LU_ENTRY* last) {
    if (pu == nullptr) {
        return vga_check_ends(node, VGA_CHECK_DOWN_LU);
    }
    if (last == nullptr && pu->vcb.host_attachment == VGA_FROM_TEMPLATE) {
        for (auto* lu = ntl_avl_first<vga_down_lu>(pu->lu_tree); lu != nullptr;
             lu = vga_next<vga_down_lu>(lu->node)) {
            lu->unlisted = 1;
        }
    }
    vga_check_sent(vga_issue_query(VGA_QUERY_DOWN_LU, pu, last, 0, 0, vga_check_down_lu), node,
                   VGA_CHECK_DOWN_LU);
}

void take_status(vga_down_lu* lu, const DOWN_LU_ENTRY* entry) {
    if (lu->vcb.lu_active != entry->lu_active ||
        lu->vcb.plu_session_active != entry->plu_session_active) {
        lu->vcb.lu_active = entry->lu_active;
        lu->vcb.plu_session_active = entry->plu_session_active;
        vga_update_state_row(&lu->parent->parent->links_root, &lu->viewer);
    }
}

// The LUs of a PU made from a template come and go unasked: those that its list does not have any
// more have gone.
void remove_unlisted(vga_pu* pu) {
    for (auto* lu = ntl_avl_first<vga_down_lu>(pu->lu_tree); lu != nullptr;) {
        auto* next = vga_next<vga_down_lu>(lu->node);
        if (lu->unlisted != 0) {
            vga_delete_vga_down_lu(lu, true);
        }
        lu = next;
    }
}

// The LU of an entry, refreshed or made; null when it was skipped.
vga_down_lu* refresh_down_lu(vga_pu* pu, const DOWN_LU_ENTRY* entry) {
    if (auto* known = vga_find<vga_down_lu>(pu->lu_tree, entry->dslu_name); known != nullptr) {
        known->unlisted = 0;
        take_status(known, entry);
        return known;
    }
    if (pu->vcb.host_attachment != VGA_FROM_TEMPLATE) {
        return nullptr;
    }
    vga_down_lu* lu = vga_init_vga_down_lu(pu, entry);
    return lu != nullptr ? vga_insert_vga_down_lu(lu, pu) : nullptr;
}

} // namespace

void vga_start_check_lu03(vga_node* node) {
    if (!make_wait(node)) {
        ++node->checks_running[VGA_CHECK_LU03];
        list_first_lu03s(node);
    }
}

void vga_check_lu03(VGA_COMPLETION* completion) {
    if (nba_validate_handle(completion->corr) == nullptr) { // the PU has gone, others are to come
        return vga_lu03_wait_restart_check(completion);
    }
    auto* pu = static_cast<vga_pu*>(vga_check_record(completion, VGA_CHECK_LU03));
    if (pu == nullptr) {
        return;
    }
    const vga_lu03* last = nullptr;
    vga_check_entries entries(VGA_QUERY_LU03, completion->vcb);
    while (const auto* entry = static_cast<const LU03_ENTRY*>(entries.next())) {
        if (vga_lu03* lu = find_lu03(pu, entry); lu != nullptr) {
            take_detail(lu, entry);
            last = lu;
        }
    }
    const bool more = last != nullptr && entries.more();
    list_lu03s(pu->parent, more ? pu : vga_next<vga_pu>(pu->node), more ? last : nullptr);
}

void vga_lu03_wait_restart_check(VGA_COMPLETION* completion) {
    // Its PU may have gone meanwhile; the new pass is due all the same.
    const auto* pu = static_cast<const vga_pu*>(nba_validate_handle(completion->corr));
    vga_node* node = pu != nullptr ? pu->parent : vga_find_node_by_handle(completion->handle);
    if (node == nullptr) {
        return;
    }
    if (vga_target_gone(completion->vcb) || make_wait(node)) {
        vga_check_ends(node, VGA_CHECK_LU03);
    } else {
        list_first_lu03s(node);
    }
}

void vga_start_check_down_lu(vga_node* node) {
    ++node->checks_running[VGA_CHECK_DOWN_LU];
    list_down_lus(node, ntl_avl_first<vga_pu>(node->down_pu_tree), nullptr);
}

void vga_check_down_lu(VGA_COMPLETION* completion) {
    if (nba_validate_handle(completion->corr) == nullptr && !vga_target_gone(completion->vcb)) {
        // The PU has gone, others are to come.
        if (vga_node* node = vga_find_node_by_handle(completion->handle); node != nullptr) {
            list_down_lus(node, ntl_avl_first<vga_pu>(node->down_pu_tree), nullptr);
        }
        return;
    }
    auto* pu = static_cast<vga_pu*>(vga_check_record(completion, VGA_CHECK_DOWN_LU));
    if (pu == nullptr) {
        return;
    }
    const vga_down_lu* last = nullptr;
    vga_check_entries entries(VGA_QUERY_DOWN_LU, completion->vcb);
    while (const auto* entry = static_cast<const DOWN_LU_ENTRY*>(entries.next())) {
        if (vga_down_lu* lu = refresh_down_lu(pu, entry); lu != nullptr) {
            last = lu;
        } else if (gvga_exit_code != 0) {
            return vga_check_ends(pu->parent, VGA_CHECK_DOWN_LU);
        }
    }
    const bool more = last != nullptr && entries.more();
    if (!more && vcb_header(completion->vcb)->primary_rc == NAP_OK) {
        remove_unlisted(pu);
    }
    list_down_lus(pu->parent, more ? pu : vga_next<vga_pu>(pu->node), more ? &last->vcb : nullptr);
}
