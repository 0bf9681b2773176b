// Definitions of the domain: emulator users and their sessions, CPI-C side information, RJE
// workstations; how they are made, merged and removed.
#include "store/kind.h"
#include "store/remove.h"
#include "store/store.h"
#include "store/tracking.h"
#include "store/tracking_util.h"

namespace {

constexpr vga_kind<vga_cpic> cpics{
    &vga_system::cpic_tree,
    offsetof(vga_cpic, vcb.sym_dest_name),
    VGA_VIEWER_CPIC,
    [](const vga_cpic* cpic) { return vga_place{&cpic->parent->cpic_viewer_root}; },
    "cpic->gui_data.dialog->parent_item == (NB_VOID *)cpic",
};
constexpr vga_kind<vga_rje_wkstn> rje_wkstns{
    &vga_system::rje_tree,
    offsetof(vga_rje_wkstn, vcb.wkstn_name),
    VGA_VIEWER_RJE,
    [](const vga_rje_wkstn* wkstn) { return vga_place{&wkstn->parent->rje_viewer_root}; },
    "rje_wkstn->gui_data.dialog->parent_item == (NB_VOID *)rje_wkstn",
};
constexpr vga_kind<vga_user_sess> sessions{
    &vga_user::session_tree,
    offsetof(vga_user_sess, vcb.session_name),
    VGA_VIEWER_USER_SESS,
    [](const vga_user_sess* sess) {
        return vga_place{&sess->parent->parent->user_viewer_root, &sess->parent->viewer};
    },
    "user_sess->gui_data.dialog->parent_item == (NB_VOID *)user_sess",
};

void release_user(vga_user* user) {
    if (vga_dialog* window = user->gui_data.status_dialog; window != nullptr) {
        user->gui_data.status_dialog = nullptr;
        vga_close_children(window, true, true);
    }
    vga_release_all<sessions>(user);
}

constexpr vga_kind<vga_user> users{
    &vga_system::user_tree,
    offsetof(vga_user, vcb.user_name),
    VGA_VIEWER_USER,
    [](const vga_user* user) { return vga_place{&user->parent->user_viewer_root}; },
    "user->gui_data.dialog->parent_item == (NB_VOID *)user",
    release_user,
};

NB_ULONG* marks_of(vga_user_sess* sess) {
    const unsigned type = sess->vcb.session_type - 1u;
    return type < std::size(sess->parent->marked) ? &sess->parent->marked[type] : nullptr;
}

} // namespace

// ---- emulator users ----

vga_user* vga_init_vga_user(vga_system* system, const EMULATOR_USER_ENTRY* entry) {
    auto* user = vga_make<users>(system, entry);
    if (user != nullptr) {
        user->vcb.def.num_sessions = 0;
        ntl_avl_init_tree(&user->session_tree, vga_compare_asc8);
    }
    return user;
}

vga_user* vga_insert_vga_user(vga_user* user, vga_system* system) {
    vga_user* merged;
    if (vga_meets_older<users>(&user, &merged)) {
        merged->vcb.def.num_sessions = user->vcb.def.num_sessions;
        user->vcb = merged->vcb;
        vga_release_record<users>(merged);
        vga_redraw<users>(user);
    } else if ((system->build_flags & vga_flag(VGA_SYSTEM_USERS)) == 0) {
        vga_adopt_user_lus(user); // while users are listed, once for all of them at the end
    }
    return user;
}

void vga_delete_vga_user(vga_user* user, bool redraw) {
    vga_leave_tree(&user->parent->user_tree, &user->node); // first: its LUs look for another one
    vga_give_up_user_lus(user);
    vga_delete_row(&user->parent->user_viewer_root, &user->viewer, redraw);
    vga_release_record<users>(user);
}

vga_user_sess* vga_init_vga_user_sess(vga_user* user, const USER_SESSION* entry) {
    return vga_make<sessions>(user, entry);
}

vga_user_sess* vga_insert_vga_user_sess(vga_user_sess* sess, vga_user* user) {
    vga_user_sess* merged;
    if (!vga_meets_older<sessions>(&sess, &merged)) {
        ++user->vcb.def.num_sessions;
        return sess;
    }
    if (sess->vcb.session_type != merged->vcb.session_type) {
        vga_unmark_session(sess);
    }
    sess->vcb = merged->vcb;
    vga_release_record<sessions>(merged);
    vga_redraw<sessions>(sess);
    return sess;
}

void vga_unmark_session(vga_user_sess* sess) {
    if (NB_ULONG* marked = marks_of(sess); sess->update_mark != 0 && marked != nullptr) {
        --*marked;
    }
    sess->update_mark = 0;
}

void vga_delete_vga_user_sess(vga_user_sess* sess, bool redraw) {
    vga_unmark_session(sess);
    --sess->parent->vcb.def.num_sessions;
    vga_remove<sessions>(sess, redraw);
}

// ---- CPI-C side information, RJE workstations ----

vga_cpic* vga_init_vga_cpic(vga_system* system, const CPIC_SIDE_INFO_ENTRY* entry) {
    return vga_make<cpics>(system, entry);
}
vga_cpic* vga_insert_vga_cpic(vga_cpic* cpic, vga_system*) {
    return vga_put<cpics>(cpic);
}
void vga_delete_vga_cpic(vga_cpic* cpic, bool redraw) {
    vga_remove<cpics>(cpic, redraw);
}

vga_rje_wkstn* vga_init_vga_rje_wkstn(vga_system* system, const RJE_WKSTN_ENTRY* entry) {
    return vga_make<rje_wkstns>(system, entry);
}
vga_rje_wkstn* vga_insert_vga_rje_wkstn(vga_rje_wkstn* wkstn, vga_system*) {
    return vga_put<rje_wkstns>(wkstn);
}
void vga_delete_vga_rje_wkstn(vga_rje_wkstn* wkstn, bool redraw) {
    vga_remove<rje_wkstns>(wkstn, redraw);
}

// ---- the end of all of them ----

namespace {

template <typename Record>
void drop_all(const NTL_AVL_TREE& tree, void (*remove)(Record*, bool redraw)) {
    for (auto* record = ntl_avl_first<Record>(tree); record != nullptr;) {
        auto* next = vga_next<Record>(record->node);
        remove(record, next == nullptr); // the last one redraws for all
        record = next;
    }
}

} // namespace

void vga_delete_domain_records(vga_system* system) {
    vga_forget_user_lus();
    drop_all(system->cpic_tree, vga_delete_vga_cpic);
    drop_all(system->user_tree, vga_delete_vga_user);
    drop_all(system->rje_tree, vga_delete_vga_rje_wkstn);
}

void vga_release_domain_records(vga_system* system) {
    vga_release_all<cpics>(system);
    vga_release_all<users>(system);
    vga_release_all<rje_wkstns>(system);
}
