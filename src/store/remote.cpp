// Remote systems, their partner LUs and the sessions with them.
#include "common/names.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

const NB_BYTE no_name[FQ_NAME_LENGTH] = {};

bool is_fake(const vga_rem_sys* rem_sys) {
    return rem_sys == rem_sys->parent->network_fake_rem_sys;
}

vga_viewer_root* root_of(vga_rem_sys* rem_sys) {
    return &rem_sys->parent->rem_sys_root;
}

vga_rem_plu_key key_of(const NB_BYTE* fq_name, NB_USHORT number) {
    vga_rem_plu_key key{};
    std::memcpy(key.plu_name, fq_name, sizeof key.plu_name);
    key.number = number;
    return key;
}

vga_rem_sess_key key_of(const NB_BYTE* lu_name, const NB_BYTE* mode_name) {
    vga_rem_sess_key key{};
    std::memcpy(key.lu_name, lu_name, sizeof key.lu_name);
    std::memcpy(key.mode_name, mode_name, sizeof key.mode_name);
    return key;
}

// A located partner takes the definition that waits under the fake remote system.
void take_over_definition(vga_rem_plu* rem_plu) {
    vga_rem_sys* fake = rem_plu->parent->parent->network_fake_rem_sys;
    if (fake == nullptr || is_fake(rem_plu->parent) || rem_plu->plu_defn != 0 ||
        rem_plu->located == 0) {
        return;
    }
    auto* waiting = vga_find<vga_rem_plu>(fake->remote_plu_tree, &rem_plu->key);
    if (waiting == nullptr || waiting->plu_defn == 0) {
        return;
    }
    rem_plu->defn = waiting->defn;
    rem_plu->plu_defn = 1;
    vga_delete_vga_rem_plu(waiting, true, true, true, true);
    vga_update_row(root_of(rem_plu->parent), &rem_plu->viewer);
}

} // namespace

// ---- remote system ----

vga_rem_sys* vga_init_vga_rem_sys(vga_node* node, const NB_BYTE* fq_name, bool defined,
                                  const DIRECTORY_ENTRY* definition) {
    auto* rem_sys = vga_new_record<vga_rem_sys>();
    if (rem_sys == nullptr) {
        return nullptr;
    }
    rem_sys->parent = node;
    std::memcpy(rem_sys->cp_name, fq_name, sizeof rem_sys->cp_name);
    rem_sys->defined = defined;
    if (definition != nullptr) {
        vga_copy_entry(rem_sys->vcb, definition);
    }
    ntl_avl_init_node(&rem_sys->node, rem_sys, rem_sys->cp_name);
    ntl_avl_init_tree(&rem_sys->remote_plu_tree, vga_compare_rem_plu);
    vga_init_row(&rem_sys->viewer, VGA_VIEWER_REM_SYS, rem_sys);
    return rem_sys;
}

vga_rem_sys* vga_insert_vga_rem_sys(vga_rem_sys* rem_sys, vga_node* node) {
    if (ntl_avl_insert(&node->rem_sys_tree, &rem_sys->node)) {
        auto* previous = vga_prev<vga_rem_sys>(rem_sys->node);
        vga_create_viewer(&node->rem_sys_root, &rem_sys->viewer, VGA_VIEWER_REM_SYS, rem_sys,
                          nullptr, previous != nullptr ? &previous->viewer : nullptr);
        return rem_sys;
    }
    auto* old = vga_older<vga_rem_sys>(node->rem_sys_tree, rem_sys->cp_name);
    if (rem_sys->defined != 0) {
        if (old->vcb.length == 0) {
            old->vcb = rem_sys->vcb;
        }
        old->defined = 1;
        old->check_mark = 0;
    }
    vga_free_record(rem_sys);
    vga_update_row(&node->rem_sys_root, &old->viewer);
    return old;
}

vga_rem_sys* vga_fake_vga_rem_sys(vga_node* node) {
    if (node->network_fake_rem_sys == nullptr) {
        vga_rem_sys* fake = vga_init_vga_rem_sys(node, no_name, false, nullptr);
        if (fake == nullptr) {
            return nullptr;
        }
        node->network_fake_rem_sys = fake; // which its row goes by
        auto* last = ntl_avl_last<vga_rem_sys>(node->rem_sys_tree);
        vga_create_viewer(&node->rem_sys_root, &fake->viewer, VGA_VIEWER_REM_SYS, fake, nullptr,
                          last != nullptr ? &last->viewer : nullptr);
        vga_expand_viewer(&node->rem_sys_root, &fake->viewer);
    }
    return node->network_fake_rem_sys;
}

bool vga_check_cp_sess(const vga_rem_sys* rem_sys) {
    const vga_lu62* cp_lu = rem_sys->parent->cp_lu;
    if (cp_lu == nullptr) {
        return false;
    }
    const vga_rem_plu_key key = key_of(rem_sys->cp_name, NAP_LU_RESOURCE);
    const auto* cp = vga_find<vga_rem_plu>(rem_sys->remote_plu_tree, &key);
    if (cp == nullptr) {
        return false;
    }
    NB_NAME8E cpsvcmg;
    van_ascii_to_ebcdic(cpsvcmg, "CPSVCMG", sizeof cpsvcmg);
    const vga_rem_sess_key sess = key_of(cp_lu->vcb.lu_name, cpsvcmg);
    return ntl_avl_find(&cp->sess_tree, &sess) != nullptr;
}

// ---- remote partner LU ----

vga_rem_plu* vga_init_vga_rem_plu(const NB_BYTE* fq_name, NB_USHORT resource_type, bool located,
                                  bool defined, const PLU_DEF_ENTRY* defn_vcb,
                                  const DIRECTORY_ENTRY* location) {
    auto* rem_plu = vga_new_record<vga_rem_plu>();
    if (rem_plu == nullptr) {
        return nullptr;
    }
    rem_plu->key = key_of(fq_name, resource_type);
    rem_plu->located = located;
    if (defined && VGA_ASSERT_TEXT(defn_vcb != nullptr, "defn_vcb != NULL")) {
        rem_plu->plu_defn = 1;
        vga_copy_entry(rem_plu->defn, defn_vcb);
    }
    if (location != nullptr) {
        vga_copy_entry(rem_plu->loc, location);
    }
    ntl_avl_init_node(&rem_plu->node, rem_plu, &rem_plu->key);
    ntl_avl_init_tree(&rem_plu->sess_tree, vga_compare_rem_sess);
    vga_init_row(&rem_plu->viewer, VGA_VIEWER_REM_PLU, rem_plu);
    return rem_plu;
}

vga_rem_plu* vga_insert_vga_rem_plu(vga_rem_plu* rem_plu, vga_rem_sys* rem_sys) {
    rem_plu->parent = rem_sys;
    if (ntl_avl_insert(&rem_sys->remote_plu_tree, &rem_plu->node)) {
        const NB_BYTE type = is_fake(rem_sys) || rem_plu->key.number == NAP_WILDCARD_LU_RESOURCE
                                 ? VGA_VIEWER_REM_PLU_NO_SESS
                                 : VGA_VIEWER_REM_PLU;
        auto* previous = vga_prev<vga_rem_plu>(rem_plu->node);
        vga_create_viewer(root_of(rem_sys), &rem_plu->viewer, type, rem_plu, &rem_sys->viewer,
                          previous != nullptr ? &previous->viewer : nullptr);
        take_over_definition(rem_plu);
        return rem_plu;
    }
    auto* old = vga_older<vga_rem_plu>(rem_sys->remote_plu_tree, &rem_plu->key);
    if (rem_plu->located != 0) {
        old->located = 1;
        old->loc = rem_plu->loc;
    }
    if (rem_plu->plu_defn != 0) {
        old->plu_defn = 1;
        old->defn = rem_plu->defn;
    }
    vga_free_record(rem_plu);
    take_over_definition(old);
    vga_update_row(root_of(rem_sys), &old->viewer);
    return old;
}

vga_rem_plu* vga_find_rem_plu(vga_node* node, const NB_BYTE* fq_name, NB_USHORT resource_type) {
    const vga_rem_plu_key key = key_of(fq_name, resource_type);
    for (auto* rem_sys = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree); rem_sys != nullptr;
         rem_sys = vga_next<vga_rem_sys>(rem_sys->node)) {
        auto* rem_plu = vga_find<vga_rem_plu>(rem_sys->remote_plu_tree, &key);
        if (rem_plu != nullptr && (rem_plu->located != 0 || rem_plu->plu_defn != 0)) {
            return rem_plu;
        }
    }
    return nullptr;
}

vga_rem_plu* vga_add_plu_definition(vga_node* node, const PLU_DEF_ENTRY* entry) {
    vga_rem_plu* located = vga_find_rem_plu(node, entry->plu_name, NAP_LU_RESOURCE);
    vga_rem_sys* rem_sys = located != nullptr ? located->parent : vga_fake_vga_rem_sys(node);
    if (rem_sys == nullptr) {
        return nullptr;
    }
    vga_rem_plu* rem_plu =
        vga_init_vga_rem_plu(entry->plu_name, NAP_LU_RESOURCE, false, true, entry, nullptr);
    return rem_plu != nullptr ? vga_insert_vga_rem_plu(rem_plu, rem_sys) : nullptr;
}

// ---- partner session ----

vga_rem_sess* vga_init_vga_rem_sess(vga_rem_plu* rem_plu, const NB_BYTE* lu_name,
                                    const NB_BYTE* mode_name) {
    auto* sess = vga_new_record<vga_rem_sess>();
    if (sess == nullptr) {
        return nullptr;
    }
    sess->parent = rem_plu;
    sess->key = key_of(lu_name, mode_name);
    ntl_avl_init_node(&sess->node, sess, &sess->key);
    vga_init_row(&sess->viewer, VGA_VIEWER_REM_SESS, sess);
    return sess;
}

vga_rem_sess* vga_insert_vga_rem_sess(vga_rem_sess* sess, vga_rem_plu* rem_plu) {
    if (ntl_avl_insert(&rem_plu->sess_tree, &sess->node)) {
        auto* previous = vga_prev<vga_rem_sess>(sess->node);
        vga_create_viewer(root_of(rem_plu->parent), &sess->viewer, VGA_VIEWER_REM_SESS, sess,
                          &rem_plu->viewer, previous != nullptr ? &previous->viewer : nullptr);
        return sess;
    }
    auto* old = vga_older<vga_rem_sess>(rem_plu->sess_tree, &sess->key);
    old->check_mark = 0;
    vga_free_record(sess);
    return old;
}

vga_rem_sess* vga_add_vga_rem_sess(vga_rem_plu* rem_plu, const NB_BYTE* lu_name,
                                   const NB_BYTE* mode_name) {
    const vga_rem_sess_key key = key_of(lu_name, mode_name);
    if (auto* known = vga_find<vga_rem_sess>(rem_plu->sess_tree, &key); known != nullptr) {
        known->check_mark = 0;
        return known;
    }
    vga_rem_sess* sess = vga_init_vga_rem_sess(rem_plu, lu_name, mode_name);
    return sess != nullptr ? vga_insert_vga_rem_sess(sess, rem_plu) : nullptr;
}

namespace {

// The remote system, partner and session that an entry's sessions count for; made when there are
// sessions. *failed: no memory.
vga_rem_sess* session_of(vga_lu62* lu, const MODE_ENTRY* entry, bool* failed) {
    vga_node* node = lu->parent;
    const bool make = entry->act_sess_count != 0;
    *failed = false;
    auto* rem_sys = vga_find<vga_rem_sys>(node->rem_sys_tree, entry->cp_name);
    if (rem_sys == nullptr && make) {
        rem_sys = vga_init_vga_rem_sys(node, entry->cp_name, false, nullptr);
        *failed = rem_sys == nullptr;
        rem_sys = rem_sys != nullptr ? vga_insert_vga_rem_sys(rem_sys, node) : nullptr;
    }
    if (rem_sys == nullptr) {
        return nullptr;
    }
    const vga_rem_plu_key plu_key = key_of(entry->plu_name, NAP_LU_RESOURCE);
    auto* rem_plu = vga_find<vga_rem_plu>(rem_sys->remote_plu_tree, &plu_key);
    if (rem_plu == nullptr && make) {
        rem_plu =
            vga_init_vga_rem_plu(entry->plu_name, NAP_LU_RESOURCE, false, false, nullptr, nullptr);
        *failed = rem_plu == nullptr;
        rem_plu = rem_plu != nullptr ? vga_insert_vga_rem_plu(rem_plu, rem_sys) : nullptr;
    }
    if (rem_plu == nullptr) {
        return nullptr;
    }
    if (make) {
        vga_rem_sess* sess = vga_add_vga_rem_sess(rem_plu, lu->vcb.lu_name, entry->mode_name);
        *failed = sess == nullptr;
        return sess;
    }
    const vga_rem_sess_key key = key_of(lu->vcb.lu_name, entry->mode_name);
    return vga_find<vga_rem_sess>(rem_plu->sess_tree, &key);
}

} // namespace

bool vga_track_rem_sessions(vga_lu62* lu, const MODE_ENTRY* entry) {
    bool failed;
    vga_rem_sess* sess = session_of(lu, entry, &failed);
    if (sess == nullptr) {
        return !failed;
    }
    vga_count_rem_sessions(sess, entry->act_sess_count);
    return true;
}

void vga_count_rem_sessions(vga_rem_sess* sess, NB_LONG count) {
    vga_rem_plu* rem_plu = sess->parent;
    vga_rem_sys* rem_sys = rem_plu->parent;
    const NB_LONG change = count - sess->session_count;
    rem_sys->session_count += change;
    rem_plu->session_count += change;
    sess->session_count = count;
    if (rem_sys->session_count <= 0) {
        vga_delete_vga_rem_sys(rem_sys, false, true, true);
        return;
    }
    vga_update_row(root_of(rem_sys), &rem_sys->viewer);
    if (rem_plu->session_count <= 0) {
        vga_delete_vga_rem_plu(rem_plu, false, false, true, true);
        return;
    }
    vga_update_row(root_of(rem_sys), &rem_plu->viewer);
    if (count <= 0) {
        vga_delete_vga_rem_sess(sess, true);
    } else {
        vga_update_row(root_of(rem_sys), &sess->viewer);
    }
}
