// Marks on the definitions that name an LU, pool or partner which is about to change.
#include "shell/globals.h"
#include "store/record_util.h"
#include "store/tracking.h"
#include "store/tracking_util.h"

namespace {

// True when a dialog is changing the LU 0 to 3 of a name, on the node, or on any node when node is
// null.
bool lu_changes(const NB_BYTE* name, const vga_node* node) {
    static constexpr NB_NODE_NAME no_node{};
    const vga_lu_key key{name, node != nullptr ? node->node_name : no_node};
    if (node != nullptr) {
        const auto* lu = vga_find<vga_lu03>(gvga_system->lu_tree, &key);
        return lu != nullptr && lu->changing != 0;
    }
    const auto* lu = static_cast<const vga_lu03*>(ntl_avl_find_next(&gvga_system->lu_tree, &key));
    for (; lu != nullptr && vga_compare_ebc8(lu->vcb.lu_name, name) == 0;
         lu = vga_next<vga_lu03>(lu->system_node)) {
        if (lu->changing != 0) {
            return true;
        }
    }
    return false;
}

bool pool_changes(const NB_BYTE* name) {
    const auto* pool = vga_find<vga_sys_pool>(gvga_system->pool_tree, name);
    return pool != nullptr && pool->changing != 0;
}

bool changes(const NB_BYTE* name, const vga_node* node) {
    return !vga_blank_name(name, sizeof(NB_NAME8E)) &&
           (lu_changes(name, node) || pool_changes(name));
}

bool lu62_changes(const void* alias, const vga_node* node) {
    const auto* lu = vga_find<vga_lu62>(node->lu62_alias_tree, alias);
    return lu != nullptr && lu->changing != 0;
}

bool session_changes(const USER_SESSION& session, const vga_node* node, const char* alias) {
    if (session.session_type == NOF_SESSION_3270) {
        return changes(session.lu_name, nullptr);
    }
    // Without an alias a session means the default LU, or has its partner by the full name.
    if (alias == nullptr) {
        return !vga_blank_name(session.lu_name, sizeof session.lu_name) &&
               lu62_changes(session.lu_name, node);
    }
    return !vga_blank_name(session.partner.plu_alias, sizeof session.partner.plu_alias) &&
           vga_compare_asc8(session.partner.plu_alias, alias) == 0;
}

template <typename T, typename Visit> void for_each(const NTL_AVL_TREE& tree, Visit visit) {
    for (T* record = ntl_avl_first<T>(tree); record != nullptr;
         record = vga_next<T>(record->node)) {
        visit(record);
    }
}

} // namespace

// ---- emulator sessions ----

bool vga_mark_sessions(NB_BYTE type, const vga_node* node, const char* partner_alias) {
    bool any = false;
    for_each<vga_user>(gvga_system->user_tree, [&](vga_user* user) {
        NB_ULONG& marked = user->marked[type - 1];
        marked = 0;
        for_each<vga_user_sess>(user->session_tree, [&](vga_user_sess* sess) {
            if (sess->vcb.session_type == type) {
                sess->update_mark = session_changes(sess->vcb, node, partner_alias);
                marked += sess->update_mark;
            }
        });
        any = any || marked != 0;
    });
    return any;
}

void vga_unmark_sessions(NB_BYTE type) {
    for_each<vga_user>(gvga_system->user_tree, [type](vga_user* user) {
        for_each<vga_user_sess>(user->session_tree, [type](vga_user_sess* sess) {
            if (sess->vcb.session_type == type) {
                sess->update_mark = 0;
            }
        });
        user->marked[type - 1] = 0;
    });
}

// ---- TN3270 server ----

bool vga_mark_tn_clients(vga_node* node, bool* display, bool* printer) {
    *display = *printer = false;
    for_each<vga_tn_client>(node->tn_client_tree, [&](vga_tn_client* client) {
        client->update_count = 0;
        for_each<vga_tn_sess>(client->sess_tree, [&](vga_tn_sess* sess) {
            sess->display_mark = changes(sess->vcb.lu_name, node);
            sess->printer_mark = changes(sess->vcb.printer_lu_name, node);
            client->update_count += sess->display_mark || sess->printer_mark;
            *display = *display || sess->display_mark;
            *printer = *printer || sess->printer_mark;
        });
    });
    return *display || *printer;
}

void vga_unmark_tn_clients(vga_node* node) {
    for_each<vga_tn_client>(node->tn_client_tree, [](vga_tn_client* client) {
        client->update_count = 0;
        for_each<vga_tn_sess>(client->sess_tree, [](vga_tn_sess* sess) {
            sess->display_mark = sess->printer_mark = 0;
        });
    });
}

bool vga_mark_tn_assocs(vga_node* node, bool* display, bool* printer) {
    *display = *printer = false;
    for_each<vga_tn_assoc>(node->tn_assoc_tree, [&](vga_tn_assoc* assoc) {
        assoc->display_mark = changes(assoc->vcb.display_lu_name, node);
        assoc->printer_mark = changes(assoc->vcb.def.printer_lu_name, node);
        *display = *display || assoc->display_mark;
        *printer = *printer || assoc->printer_mark;
    });
    return *display || *printer;
}

void vga_unmark_tn_assocs(vga_node* node) {
    for_each<vga_tn_assoc>(node->tn_assoc_tree, [](vga_tn_assoc* assoc) {
        assoc->display_mark = assoc->printer_mark = 0;
    });
}

// ---- downstream LUs ----

bool vga_mark_dslus(vga_node* node) {
    bool any = false;
    for_each<vga_pu>(node->down_pu_tree, [&](vga_pu* pu) {
        pu->marked = 0;
        for_each<vga_down_lu>(pu->lu_tree, [&](vga_down_lu* lu) {
            lu->update_mark = changes(lu->vcb.def.host_lu_name, node);
            pu->marked += lu->update_mark;
        });
        any = any || pu->marked != 0;
    });
    return any;
}

void vga_unmark_dslus(vga_node* node) {
    for_each<vga_pu>(node->down_pu_tree, [](vga_pu* pu) {
        pu->marked = 0;
        for_each<vga_down_lu>(pu->lu_tree, [](vga_down_lu* lu) { lu->update_mark = 0; });
    });
}

// ---- RJE workstations ----

bool vga_mark_rje_wkstns() {
    bool any = false;
    for_each<vga_rje_wkstn>(gvga_system->rje_tree, [&](vga_rje_wkstn* wkstn) {
        wkstn->update_mask = 0;
        const RJE_WKSTN_DEF& def = wkstn->vcb.def;
        for (std::size_t slot = 0;
             slot < std::min<std::size_t>(def.num_lus, std::size(def.lu_names)); ++slot) {
            if (lu_changes(def.lu_names[slot], nullptr)) {
                wkstn->update_mask |= static_cast<NB_USHORT>(1u << slot);
            }
        }
        any = any || wkstn->update_mask != 0;
    });
    return any;
}

void vga_unmark_rje_wkstns() {
    for_each<vga_rje_wkstn>(gvga_system->rje_tree,
                            [](vga_rje_wkstn* wkstn) { wkstn->update_mask = 0; });
}

// ---- all of them ----

void vga_unmark_all() {
    vga_unmark_sessions(NOF_SESSION_3270);
    vga_unmark_sessions(NOF_SESSION_5250);
    vga_unmark_rje_wkstns();
    for_each<vga_node>(gvga_system->node_tree, [](vga_node* node) {
        vga_unmark_tn_clients(node);
        vga_unmark_tn_assocs(node);
        vga_unmark_dslus(node);
    });
}
