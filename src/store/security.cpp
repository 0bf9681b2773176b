// User IDs with their passwords and profiles, access lists, passwords between LUs.
#include "common/names.h"
#include "store/kind.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

constexpr vga_kind<vga_userid_password> userids{
    &vga_node::userid_tree,
    offsetof(vga_userid_password, vcb.user_id),
    VGA_VIEWER_CL_SECURITY,
    [](const vga_userid_password* userid) { return vga_place{&userid->parent->userid_root}; },
    "userid_password->gui_data.dialog->parent_item == (NB_VOID *)userid_password",
};
constexpr vga_kind<vga_security_access_user> users{
    &vga_security_access_list::user_tree,
    offsetof(vga_security_access_user, vcb.user_id),
};
constexpr vga_kind<vga_security_access_list> access_lists{
    &vga_node::access_list_tree,
    offsetof(vga_security_access_list, vcb.list_name),
    VGA_VIEWER_ACCESS_LIST,
    [](const vga_security_access_list* list) { return vga_place{&list->parent->access_list_root}; },
    "access_list->gui_data.dialog->parent_item == (NB_VOID *)access_list",
    vga_release_all<users>,
};
constexpr vga_kind<vga_lu_lu_password> passwords{
    &vga_node::sl_sec_tree,
    offsetof(vga_lu_lu_password, key),
    VGA_VIEWER_SL_SECURITY,
    [](const vga_lu_lu_password* password) {
        vga_node* node = password->parent;
        return vga_place{&node->sl_sec_root, nullptr, &node->sl_sec_title};
    },
    "lu_lu_password->gui_data.dialog->parent_item == (NB_VOID *)lu_lu_password",
};

void log_lost_profiles(const NB_USER_ID& user_id) {
    if (!nba_exceptions_suppressed()) {
        char name[sizeof user_id + 1];
        van_ebcdic_to_ascii(name, user_id, sizeof user_id);
        nba_pd_print_exception(0x40020004, 6, "x ca", int{NAP_DEFINE_USERID_PASSWORD},
                               static_cast<int>(std::strlen(name)), name);
    }
}

// Adds profiles, as many as there is room for.
void add_profiles(USERID_PASSWORD_ENTRY& entry, const USERID_PASSWORD_DEF& more) {
    const auto count = std::min<std::size_t>(more.num_profiles, NOF_USER_PROFILES);
    const auto room = static_cast<std::size_t>(NOF_USER_PROFILES - entry.def.num_profiles);
    const std::size_t taken = std::min(count, room);
    std::memcpy(entry.def.profiles[entry.def.num_profiles], more.profiles,
                taken * sizeof more.profiles[0]);
    entry.def.num_profiles = static_cast<NB_USHORT>(entry.def.num_profiles + taken);
    if (more.num_profiles > taken) {
        log_lost_profiles(entry.user_id);
    }
}

// The first password of a local LU, or null.
vga_lu_lu_password* first_password(const vga_lu62* lu) {
    vga_sl_sec_key key{};
    std::memcpy(key.lu_name, lu->vcb.lu_name, sizeof key.lu_name);
    const NTL_AVL_TREE& tree = lu->parent->sl_sec_tree;
    auto* password = vga_find<vga_lu_lu_password>(tree, &key);
    if (password == nullptr) {
        password = static_cast<vga_lu_lu_password*>(ntl_avl_find_next(&tree, &key));
    }
    return password != nullptr && vga_compare_ebc8(password->key.lu_name, key.lu_name) == 0
               ? password
               : nullptr;
}

} // namespace

// ---- user ID and password ----

vga_userid_password* vga_init_vga_userid_password(vga_node* node,
                                                  const USERID_PASSWORD_ENTRY* entry) {
    auto* userid = vga_make<userids>(node, entry);
    if (userid != nullptr) {
        const USERID_PASSWORD_DEF listed = userid->vcb.def;
        userid->vcb.def.num_profiles = 0;
        add_profiles(userid->vcb, listed);
    }
    return userid;
}

vga_userid_password* vga_insert_vga_userid_password(vga_userid_password* userid, vga_node*,
                                                    bool continues) {
    vga_userid_password* merged;
    if (!vga_meets_older<userids>(&userid, &merged)) {
        return userid;
    }
    if (continues) {
        add_profiles(userid->vcb, merged->vcb.def);
    } else {
        userid->vcb = merged->vcb;
    }
    vga_release_record<userids>(merged);
    vga_redraw<userids>(userid);
    return userid;
}

void vga_delete_vga_userid_password(vga_userid_password* userid, bool redraw) {
    vga_remove<userids>(userid, redraw);
}

// ---- access list ----

vga_security_access_list*
vga_init_vga_security_access_list(vga_node* node, const SECURITY_ACCESS_LIST_ENTRY* entry) {
    auto* list = vga_make<access_lists>(node, entry);
    if (list != nullptr) {
        ntl_avl_init_tree(&list->user_tree, vga_compare_asc10);
    }
    return list;
}

vga_security_access_list* vga_insert_vga_security_access_list(vga_security_access_list* list,
                                                              vga_node*) {
    return vga_put<access_lists>(list);
}

void vga_delete_vga_security_access_list(vga_security_access_list* list, bool redraw) {
    vga_remove<access_lists>(list, redraw);
}

vga_security_access_user* vga_init_vga_security_access_user(vga_security_access_list* list,
                                                            const ACCESS_LIST_USER* entry) {
    return vga_make<users>(list, entry);
}
vga_security_access_user* vga_insert_vga_security_access_user(vga_security_access_user* user,
                                                              vga_security_access_list*) {
    return vga_put<users>(user);
}
void vga_delete_vga_security_access_user(vga_security_access_user* user) {
    vga_remove<users>(user, false);
}

// ---- LU-LU password ----

vga_lu_lu_password* vga_init_vga_lu_lu_password(vga_lu62* lu, const LU_LU_PASSWORD_ENTRY* entry) {
    auto* password = vga_make<passwords>(lu->parent, entry);
    if (password != nullptr) {
        std::memcpy(password->key.lu_name, lu->vcb.lu_name, sizeof password->key.lu_name);
        std::memcpy(password->key.plu_name, password->vcb.key.plu_name,
                    sizeof password->key.plu_name);
    }
    return password;
}

vga_lu_lu_password* vga_insert_vga_lu_lu_password(vga_lu_lu_password* password, vga_lu62*) {
    return vga_put<passwords>(password);
}

vga_lu_lu_password* vga_find_lu_lu_password(const vga_lu62* lu, const NB_BYTE* plu_name) {
    vga_sl_sec_key key;
    std::memcpy(key.lu_name, lu->vcb.lu_name, sizeof key.lu_name);
    std::memcpy(key.plu_name, plu_name, sizeof key.plu_name);
    return vga_find<vga_lu_lu_password>(lu->parent->sl_sec_tree, &key);
}

void vga_delete_vga_lu_lu_password(vga_lu_lu_password* password, bool redraw) {
    vga_remove<passwords>(password, redraw);
}

void vga_delete_lu_lu_passwords(const vga_lu62* lu, bool redraw) {
    while (vga_lu_lu_password* password = first_password(lu)) {
        vga_delete_vga_lu_lu_password(password, redraw);
    }
}

void vga_release_security(vga_node* node) {
    vga_release_all<userids>(node);
    vga_release_all<access_lists>(node);
    vga_release_all<passwords>(node);
}
