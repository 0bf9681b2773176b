// Removal of directory entries, remote systems, their partner LUs and sessions.
#include "shell/globals.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

void detach(vga_rem_sys* rem_sys) {
    vga_detach(&rem_sys->gui_data.dialog, rem_sys,
               "rem_sys->gui_data.dialog->parent_item == (NB_VOID *)rem_sys");
}
void detach(vga_rem_plu* rem_plu) {
    vga_detach(&rem_plu->gui_data.dialog, rem_plu,
               "rem_plu->gui_data.dialog->parent_item == (NB_VOID *)rem_plu");
}
void detach(vga_rem_sess* sess) {
    vga_detach(&sess->gui_data.dialog, sess,
               "rem_sess->gui_data.dialog->parent_item == (NB_VOID *)rem_sess");
}

void release_rem_sess(vga_rem_sess* sess) {
    detach(sess);
    vga_free_record(sess);
}
void release_rem_plu(vga_rem_plu* rem_plu) {
    detach(rem_plu);
    vga_drain<vga_rem_sess>(&rem_plu->sess_tree, release_rem_sess);
    vga_free_record(rem_plu);
}
void release_rem_sys(vga_rem_sys* rem_sys) {
    detach(rem_sys);
    vga_drain<vga_rem_plu>(&rem_sys->remote_plu_tree, release_rem_plu);
    vga_free_record(rem_sys);
}
void release_dir(vga_dir* dir) {
    vga_free_record(dir);
}

vga_viewer_root* root_of(vga_rem_sys* rem_sys) {
    return &rem_sys->parent->rem_sys_root;
}

bool is_fake(const vga_rem_sys* rem_sys) {
    return rem_sys == rem_sys->parent->network_fake_rem_sys;
}

void end_sessions(vga_rem_plu* rem_plu, bool redraw) {
    while (auto* sess = ntl_avl_first<vga_rem_sess>(rem_plu->sess_tree)) {
        vga_delete_vga_rem_sess(sess, redraw);
    }
}

// The last partner of the fake remote system takes it along.
void drop_empty_fake(vga_rem_sys* rem_sys, bool redraw) {
    if (is_fake(rem_sys) && rem_sys->remote_plu_tree.root == nullptr) {
        rem_sys->parent->network_fake_rem_sys = nullptr;
        vga_delete_row(root_of(rem_sys), &rem_sys->viewer, redraw);
        release_rem_sys(rem_sys);
    } else {
        vga_update_row(root_of(rem_sys), &rem_sys->viewer);
    }
}

} // namespace

void vga_delete_vga_rem_sys(vga_rem_sys* rem_sys, bool clear_defined, bool clear_sessions,
                            bool redraw) {
    if (clear_defined) {
        rem_sys->defined = 0;
        rem_sys->vcb = {};
    }
    if (clear_sessions) {
        rem_sys->session_count = 0;
    }
    const bool gone = rem_sys->defined == 0 && rem_sys->session_count <= 0;
    if (gone) {
        detach(rem_sys);
        vga_delete_row(root_of(rem_sys), &rem_sys->viewer, redraw);
        vga_leave_tree(&rem_sys->parent->rem_sys_tree, &rem_sys->node);
    }
    vga_rem_plu* next = nullptr;
    for (auto* rem_plu = ntl_avl_first<vga_rem_plu>(rem_sys->remote_plu_tree); rem_plu != nullptr;
         rem_plu = next) {
        next = vga_next<vga_rem_plu>(rem_plu->node);
        vga_delete_vga_rem_plu(rem_plu, false, clear_defined || gone, clear_sessions || gone,
                               !gone);
    }
    if (gone) {
        VGA_ASSERT_TEXT(rem_sys->remote_plu_tree.first == nullptr,
                        "AVL_FIRST(rem_sys->remote_plu_tree) == NULL");
        release_rem_sys(rem_sys);
    } else {
        vga_update_row(root_of(rem_sys), &rem_sys->viewer);
    }
}

void vga_delete_vga_rem_plu(vga_rem_plu* rem_plu, bool clear_definition, bool clear_location,
                            bool clear_sessions, bool redraw) {
    vga_rem_sys* rem_sys = rem_plu->parent;
    vga_node* node = rem_sys->parent;
    if (clear_definition) {
        rem_plu->plu_defn = 0;
        rem_plu->defn = {};
    }
    vga_rem_plu* moved = nullptr; // the definition, on its way to the fake remote system
    if (clear_location) {
        rem_plu->located = 0;
        rem_plu->loc = {};
        if (rem_plu->plu_defn != 0 && !is_fake(rem_sys)) {
            moved = vga_init_vga_rem_plu(rem_plu->key.plu_name, rem_plu->key.number, false, true,
                                         &rem_plu->defn, nullptr);
            rem_plu->plu_defn = 0;
            rem_plu->defn = {};
        }
    }
    if (clear_sessions) {
        rem_sys->session_count = std::max(rem_sys->session_count - rem_plu->session_count, 0);
        rem_plu->session_count = 0;
    }
    if (rem_plu->located == 0 && rem_plu->plu_defn == 0 && rem_plu->session_count <= 0) {
        detach(rem_plu);
        vga_delete_row(root_of(rem_sys), &rem_plu->viewer, redraw);
        vga_leave_tree(&rem_sys->remote_plu_tree, &rem_plu->node);
        release_rem_plu(rem_plu);
        drop_empty_fake(rem_sys, redraw);
    } else {
        if (clear_sessions) {
            end_sessions(rem_plu, redraw);
        }
        vga_update_row(root_of(rem_sys), &rem_plu->viewer);
    }
    if (moved != nullptr) {
        if (vga_rem_sys* fake = vga_fake_vga_rem_sys(node); fake != nullptr) {
            vga_insert_vga_rem_plu(moved, fake);
        } else {
            release_rem_plu(moved);
        }
    }
}

void vga_delete_vga_rem_sess(vga_rem_sess* sess, bool redraw) {
    vga_rem_plu* rem_plu = sess->parent;
    vga_delete_row(root_of(rem_plu->parent), &sess->viewer, redraw);
    vga_leave_tree(&rem_plu->sess_tree, &sess->node);
    release_rem_sess(sess);
    vga_update_row(root_of(rem_plu->parent), &rem_plu->viewer);
}

void vga_overwrite_vga_rem_sys(vga_rem_sys* rem_sys) {
    vga_node* node = rem_sys->parent;
    vga_dialog* window = node->gui_data.node_window;
    vga_display_info_dialog(
        window != nullptr ? window : gvga_main_dialog, window != nullptr ? 282 : 283,
        "remndcpsessnote", nullptr, 0, "es cs", int{sizeof rem_sys->cp_name}, rem_sys->cp_name,
        static_cast<int>(strnlen(node->node_name, sizeof node->node_name)), node->node_name);
    rem_sys->check_mark = 0;
    vga_delete_vga_rem_sys(rem_sys, true, false, true);
}

void vga_delete_vga_dir(vga_dir* dir, bool redraw) {
    while (auto* below = ntl_avl_first<vga_dir>(dir->end_node_tree)) {
        vga_delete_vga_dir(below, redraw);
    }
    while (auto* below = ntl_avl_first<vga_dir>(dir->lu_tree)) {
        vga_delete_vga_dir(below, redraw);
    }
    vga_leave_tree(&dir->parent->dir_tree, &dir->node);
    if (dir->parent_tree != nullptr) {
        vga_leave_tree(dir->parent_tree, &dir->parent_node);
    }
    vga_free_record(dir);
}

void vga_delete_sna_net_node(vga_sna_net_node* node) {
    vga_leave_tree(&gvga_system->sna_net_tree, &node->node);
    vga_free(node);
}

void vga_release_remote(vga_node* node) {
    vga_drain<vga_dir>(&node->dir_tree, release_dir);
    ntl_avl_init_tree(&node->dir_server_tree, node->dir_server_tree.compare);
    if (node->network_fake_rem_sys != nullptr) {
        release_rem_sys(node->network_fake_rem_sys);
        node->network_fake_rem_sys = nullptr;
    }
    vga_drain<vga_rem_sys>(&node->rem_sys_tree, release_rem_sys);
}
