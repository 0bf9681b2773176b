// The check of a local LU 6.2: its partners, modes and sessions with remote systems.
#include "store/checks.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

// The LU's sessions with a partner begin here; null: it has none.
vga_rem_sess* first_session(const vga_rem_plu* rem_plu, const vga_lu62* lu) {
    vga_rem_sess_key key{};
    std::memcpy(key.lu_name, lu->vcb.lu_name, sizeof key.lu_name);
    auto* sess = vga_find<vga_rem_sess>(rem_plu->sess_tree, &key);
    return sess != nullptr
               ? sess
               : static_cast<vga_rem_sess*>(ntl_avl_find_next(&rem_plu->sess_tree, &key));
}

bool is_session_of(const vga_rem_sess* sess, const vga_lu62* lu) {
    return sess != nullptr &&
           std::memcmp(sess->key.lu_name, lu->vcb.lu_name, sizeof sess->key.lu_name) == 0;
}

void mark(vga_lu62* lu) {
    for (auto* plu = ntl_avl_first<vga_plu>(lu->plu_tree); plu != nullptr;
         plu = vga_next<vga_plu>(plu->node)) {
        plu->check_mark = 1;
        for (auto* mode = ntl_avl_first<vga_mode>(plu->mode_tree); mode != nullptr;
             mode = vga_next<vga_mode>(mode->node)) {
            mode->check_mark = 1;
        }
    }
    for (auto* rem_sys = ntl_avl_first<vga_rem_sys>(lu->parent->rem_sys_tree); rem_sys != nullptr;
         rem_sys = vga_next<vga_rem_sys>(rem_sys->node)) {
        for (auto* rem_plu = ntl_avl_first<vga_rem_plu>(rem_sys->remote_plu_tree);
             rem_plu != nullptr; rem_plu = vga_next<vga_rem_plu>(rem_plu->node)) {
            for (vga_rem_sess* sess = first_session(rem_plu, lu); is_session_of(sess, lu);
                 sess = vga_next<vga_rem_sess>(sess->node)) {
                sess->check_mark = 1;
            }
        }
    }
}

void sweep_modes(vga_plu* plu) {
    vga_mode* next;
    for (auto* mode = ntl_avl_first<vga_mode>(plu->mode_tree); mode != nullptr; mode = next) {
        next = vga_next<vga_mode>(mode->node);
        if (mode->check_mark != 0) {
            vga_count_lu62_sessions(plu->parent, -mode->act_sess_count);
            vga_delete_vga_mode(mode, true);
        }
    }
}

void sweep_partners(vga_lu62* lu) {
    vga_plu* next;
    for (auto* plu = ntl_avl_first<vga_plu>(lu->plu_tree); plu != nullptr; plu = next) {
        next = vga_next<vga_plu>(plu->node);
        sweep_modes(plu);
        if (plu->check_mark != 0 && plu->mode_tree.root == nullptr) {
            vga_delete_vga_plu(plu, true);
        } else {
            plu->check_mark = 0;
        }
    }
}

// With its last session a partner can go, and with it the sessions that it still had.
void sweep_sessions_with(vga_rem_plu* rem_plu, const vga_lu62* lu) {
    const NB_HANDLE partner = rem_plu->handle;
    vga_rem_sess* next;
    for (vga_rem_sess* sess = first_session(rem_plu, lu); is_session_of(sess, lu); sess = next) {
        next = vga_next<vga_rem_sess>(sess->node);
        if (sess->check_mark == 0) {
            continue;
        }
        vga_count_rem_sessions(sess, 0);
        if (nba_validate_handle(partner) == nullptr || rem_plu->session_count <= 0) {
            return;
        }
    }
}

// The same for a remote system and its partners.
void sweep_sessions(vga_lu62* lu) {
    vga_rem_sys* next_sys;
    for (auto* rem_sys = ntl_avl_first<vga_rem_sys>(lu->parent->rem_sys_tree); rem_sys != nullptr;
         rem_sys = next_sys) {
        next_sys = vga_next<vga_rem_sys>(rem_sys->node);
        const NB_HANDLE system = rem_sys->handle;
        vga_rem_plu* next_plu = ntl_avl_first<vga_rem_plu>(rem_sys->remote_plu_tree);
        while (next_plu != nullptr) {
            vga_rem_plu* rem_plu = next_plu;
            next_plu = vga_next<vga_rem_plu>(rem_plu->node);
            sweep_sessions_with(rem_plu, lu);
            if (nba_validate_handle(system) == nullptr || rem_sys->session_count <= 0) {
                break;
            }
        }
    }
}

void end(vga_lu62* lu) {
    lu->checking = VGA_LU62_UNCHECKED;
    vga_check_ends(lu->parent, VGA_CHECK_LU62);
}

void send(vga_lu62* lu, VGA_QUERY query, const void* last) {
    const bool sent = vga_issue_query(query, lu, last, 0, 0, vga_check_lu62);
    if (!sent) {
        lu->checking = VGA_LU62_UNCHECKED;
    }
    vga_check_sent(sent, lu->parent, VGA_CHECK_LU62);
}

} // namespace

void vga_start_check_lu62(vga_lu62* lu) {
    if (lu->checking != VGA_LU62_UNCHECKED) {
        // The end of the older check would remove what only this one marks.
        vga_check_drop(lu->parent, 0, lu->handle, vga_check_lu62);
    } else {
        ++lu->parent->checks_running[VGA_CHECK_LU62];
    }
    lu->checking = VGA_LU62_ASKED;
    if (lu->vcb.def.nau_address == 0) {
        mark(lu);
        return send(lu, VGA_QUERY_PLU, nullptr);
    }
    vga_count_lu62_sessions(lu, -lu->act_sess_count);
    while (auto* plu = ntl_avl_first<vga_plu>(lu->plu_tree)) {
        vga_delete_vga_plu(plu, true);
    }
    send(lu, VGA_QUERY_MODE, nullptr);
}

void vga_check_lu62(VGA_COMPLETION* completion) {
    auto* lu = static_cast<vga_lu62*>(vga_check_record(completion, VGA_CHECK_LU62));
    if (lu == nullptr) {
        if (auto* left = static_cast<vga_lu62*>(nba_validate_handle(completion->corr))) {
            left->checking = VGA_LU62_UNCHECKED; // it is the node that has gone
        }
        return;
    }
    const VGA_QUERY query = vga_query_of(vcb_header(completion->vcb)->opcode);
    if (vcb_header(completion->vcb)->primary_rc != NAP_NO_ENTRIES) {
        const vga_page page = vga_process_query(query, lu, completion->vcb);
        if (page.failed) {
            return end(lu);
        }
        if (lu->checking != VGA_LU62_AGAIN) {
            lu->checking = query == VGA_QUERY_PLU ? VGA_LU62_PARTNERS : VGA_LU62_MODES;
        }
        if (page.more) {
            return send(lu, query, page.last);
        }
    }
    if (query == VGA_QUERY_PLU && lu->plu_tree.root != nullptr) {
        return send(lu, VGA_QUERY_MODE, nullptr);
    }
    sweep_partners(lu);
    sweep_sessions(lu);
    if (lu->checking == VGA_LU62_AGAIN) {
        return vga_start_check_lu62(lu);
    }
    end(lu);
}
