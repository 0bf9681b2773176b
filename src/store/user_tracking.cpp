// Which LUs 0 to 3 emulator users use: the users' counts, and the rows of their status windows.
#include "shell/globals.h"
#include "store/record_util.h"
#include "store/store.h"
#include "store/tracking.h"
#include "store/tracking_util.h"

namespace {

constexpr std::size_t USER_NAME = sizeof(LU03_EMULATOR_USER::user_name);

bool is_named(const char* name) {
    return name[0] != '\0' && !vga_blank_name(name, USER_NAME);
}

vga_user* find_user(const char* name) {
    return is_named(name) ? vga_find<vga_user>(gvga_system->user_tree, name) : nullptr;
}

const LU03_EMULATOR_USER& names_of(const vga_lu03* lu) {
    return lu->vcb.det_data.application.user;
}

// The user an LU is to count under, whoever it counts under now.
vga_user* owner_of(const vga_lu03* lu) {
    const LU03_DETAIL& detail = lu->vcb.det_data;
    return detail.appl_conn_active == NAP_YES && detail.app_type == NAP_FMI_APPLICATION &&
                   is_named(names_of(lu).user_name)
               ? vga_get_emulator_user(&names_of(lu))
               : nullptr;
}

vga_user_status_key status_key(const LU03_APPLICATION& application, const NB_BYTE* lu_name) {
    vga_user_status_key key{};
    std::memcpy(key.user_name, application.user.user_name, sizeof key.user_name);
    std::memcpy(key.node_name, application.user.node_name, sizeof key.node_name);
    std::memcpy(key.lu_name, lu_name, sizeof key.lu_name);
    return key;
}

void delete_status(vga_user_status* status, bool redraw) {
    vga_delete_row(&status->parent->root, &status->viewer, redraw);
    vga_leave_tree(&status->parent->tree, &status->node);
    vga_free(status);
}

void remove_status(vga_user_status_list* list, const vga_lu03* lu) {
    const vga_user_status_key key = status_key(lu->vcb.det_data.application, lu->vcb.lu_name);
    auto* item = vga_find<vga_user_status>(list->tree, &key);
    if (!VGA_ASSERT_TEXT(item != nullptr, "item != NULL")) {
        return;
    }
    if (--item->uses == 0) {
        delete_status(item, true);
    }
}

void redraw(vga_user* user) {
    vga_update_row(&user->parent->user_viewer_root, &user->viewer);
}

void count(vga_lu03* lu, vga_user* user) {
    lu->user = user;
    ++user->session_count;
    vga_add_vga_user_status(user, &lu->vcb.det_data.application, lu->vcb.lu_name);
    redraw(user);
}

void uncount(vga_lu03* lu) {
    vga_user* user = lu->user;
    --user->session_count;
    VGA_ASSERT_TEXT(user->session_count >= 0, "user->session_count >= 0");
    if (user->gui_data.status != nullptr) {
        remove_status(user->gui_data.status, lu);
    }
    lu->user = nullptr;
    redraw(user);
}

vga_lu03* first_lu() {
    return ntl_avl_first<vga_lu03>(gvga_system->lu_tree);
}
vga_lu03* next_lu(const vga_lu03* lu) {
    return vga_next<vga_lu03>(lu->system_node);
}

} // namespace

vga_user* vga_get_emulator_user(const LU03_EMULATOR_USER* names) {
    static constexpr char default_name[USER_NAME + 1] = "<DEFAULT>                       ";
    for (const char* name : {names->user_name, names->fallback_name, default_name}) {
        if (vga_user* user = find_user(name); user != nullptr) {
            return user;
        }
    }
    return nullptr;
}

void vga_update_user_sessions(vga_lu03* lu03, bool in_use) {
    const LU03_DETAIL& detail = lu03->vcb.det_data;
    if (detail.app_type != NAP_FMI_APPLICATION) {
        return;
    }
    if (!in_use) {
        if (lu03->user != nullptr) {
            uncount(lu03);
        }
        return;
    }
    if (!is_named(names_of(lu03).user_name)) {
        return;
    }
    if (vga_user* user = find_user(names_of(lu03).user_name); user != nullptr) {
        if (lu03->user == nullptr) {
            count(lu03, user);
        }
        return;
    }
    vga_user* user = vga_get_emulator_user(&names_of(lu03));
    if (user != nullptr && VGA_ASSERT_TEXT(lu03->user == nullptr, "lu03->user == NULL")) {
        count(lu03, user);
    }
}

bool vga_take_lu03_detail(vga_lu03* lu, const LU03_DETAIL& detail) {
    LU03_DETAIL& old = lu->vcb.det_data;
    if (std::memcmp(&old, &detail, sizeof old) == 0) {
        return false;
    }
    const bool was_used = old.appl_conn_active == NAP_YES;
    const bool is_used = detail.appl_conn_active == NAP_YES;
    const bool same_user =
        old.app_type == detail.app_type &&
        (old.app_type != NAP_FMI_APPLICATION ||
         std::memcmp(&old.application, &detail.application, sizeof(LU03_EMULATOR_USER)) == 0);
    const bool changed = was_used != is_used || !same_user;
    if (was_used && changed) {
        vga_update_user_sessions(lu, false);
    }
    old = detail;
    if (is_used && changed) {
        vga_update_user_sessions(lu, true);
    }
    if (was_used != is_used) {
        vga_update_pool_lu(lu, is_used);
    } else {
        vga_update_row(&gvga_system->pool_viewer_root, &lu->pool_viewer);
    }
    vga_update_row(&lu->parent->parent->links_root, &lu->viewer);
    return true;
}

// ---- users that come and go ----

void vga_adopt_user_lus(vga_user* user) {
    for (vga_lu03* lu = first_lu(); lu != nullptr; lu = next_lu(lu)) {
        if (lu->user != user && owner_of(lu) == user) {
            if (lu->user != nullptr) {
                uncount(lu);
            }
            count(lu, user);
        }
    }
}

void vga_give_up_user_lus(vga_user* user) {
    for (vga_lu03* lu = user->session_count > 0 ? first_lu() : nullptr;
         lu != nullptr && user->session_count > 0; lu = next_lu(lu)) {
        if (lu->user == user) {
            uncount(lu);
            if (vga_user* other = owner_of(lu); other != nullptr) {
                count(lu, other);
            }
        }
    }
}

void vga_recount_user_lus() {
    for (vga_lu03* lu = first_lu(); lu != nullptr; lu = next_lu(lu)) {
        vga_user* user = owner_of(lu);
        if (lu->user == user) {
            continue;
        }
        if (lu->user != nullptr) {
            uncount(lu);
        }
        if (user != nullptr) {
            count(lu, user);
        }
    }
}

void vga_forget_user_lus() {
    for (vga_lu03* lu = first_lu(); lu != nullptr; lu = next_lu(lu)) {
        if (lu->user != nullptr) {
            uncount(lu);
        }
    }
}

// ---- status rows ----

vga_user_status* vga_add_vga_user_status(vga_user* user, const LU03_APPLICATION* user_data,
                                         const NB_BYTE* lu_name) {
    vga_user_status_list* list = user->gui_data.status;
    if (list == nullptr) {
        return nullptr;
    }
    const vga_user_status_key key = status_key(*user_data, lu_name);
    if (auto* known = vga_find<vga_user_status>(list->tree, &key); known != nullptr) {
        ++known->uses; // LUs of one name on several nodes
        return known;
    }
    auto* status = vga_new<vga_user_status>();
    if (status == nullptr) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return nullptr;
    }
    status->key = key;
    status->parent = list;
    status->uses = 1;
    status->application = *user_data;
    ntl_avl_init_node(&status->node, status, &status->key);
    ntl_avl_insert(&list->tree, &status->node);
    auto* previous = vga_prev<vga_user_status>(status->node);
    vga_create_viewer(&list->root, &status->viewer, VGA_VIEWER_USTAD, status, nullptr,
                      previous != nullptr ? &previous->viewer : &list->title);
    return status;
}

void vga_free_user_status(vga_user_status_list* list) {
    while (auto* status = ntl_avl_first<vga_user_status>(list->tree)) {
        delete_status(status, false);
    }
}
