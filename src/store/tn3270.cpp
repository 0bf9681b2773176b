// The TN3270 server: clients with their sessions, associations of printers, redirection.
#include "store/kind.h"
#include "store/remove.h"
#include "store/store.h"
#include "store/tracking.h"

namespace {

// Sessions stand in one list, whatever their client.
constexpr vga_kind<vga_tn_sess> sessions{
    &vga_tn_client::sess_tree,
    offsetof(vga_tn_sess, vcb.port),
    VGA_VIEWER_TN_SESS,
    [](const vga_tn_sess* sess) {
        vga_node* node = sess->parent->parent;
        vga_tn_sess* before = vga_get_prev_tn_sess(sess, node);
        return vga_place{&node->tn_client_root, nullptr,
                         before != nullptr ? &before->viewer : &node->tn_client_title};
    },
    "tn_sess->gui_data.dialog->parent_item == (NB_VOID *)tn_sess",
};
constexpr vga_kind<vga_tn_client> clients{
    &vga_node::tn_client_tree,
    offsetof(vga_tn_client, vcb.client),
    0,
    nullptr,
    "tn_client->gui_data.dialog->parent_item == (NB_VOID *)tn_client",
    vga_release_all<sessions>,
};
constexpr vga_kind<vga_tn_assoc> assocs{
    &vga_node::tn_assoc_tree,
    offsetof(vga_tn_assoc, vcb.display_lu_name),
    VGA_VIEWER_TN_ASSOC,
    [](const vga_tn_assoc* assoc) {
        vga_node* node = assoc->parent;
        return vga_place{&node->tn_assoc_root, nullptr, &node->tn_assoc_title};
    },
    "tn_assoc->gui_data.dialog->parent_item == (NB_VOID *)tn_assoc",
};
constexpr vga_kind<vga_tn_redirect> redirects{
    &vga_node::tn_redirect_tree,
    offsetof(vga_tn_redirect, vcb.key),
    VGA_VIEWER_TN_REDIRECT,
    [](const vga_tn_redirect* redirect) {
        vga_node* node = redirect->parent;
        return vga_place{&node->tn_redirect_root, nullptr, &node->tn_redirect_title};
    },
    "tn_redirect->gui_data.dialog->parent_item == (NB_VOID *)tn_redirect",
};

} // namespace

vga_tn_client* vga_init_vga_tn_client(vga_node* node, const TN3270_ACCESS_ENTRY* entry) {
    auto* client = vga_make<clients>(node, entry);
    if (client != nullptr) {
        ntl_avl_init_tree(&client->sess_tree, vga_compare_ushort);
    }
    return client;
}
vga_tn_client* vga_insert_vga_tn_client(vga_tn_client* client, vga_node*) {
    return vga_put<clients>(client);
}
void vga_delete_vga_tn_client(vga_tn_client* client, bool redraw) {
    while (auto* sess = ntl_avl_first<vga_tn_sess>(client->sess_tree)) {
        vga_delete_vga_tn_sess(sess, redraw);
    }
    vga_remove<clients>(client, redraw);
}

vga_tn_sess* vga_init_vga_tn_sess(vga_tn_client* client, const TN3270_SESSION* entry) {
    return vga_make<sessions>(client, entry);
}
vga_tn_sess* vga_insert_vga_tn_sess(vga_tn_sess* sess, vga_tn_client*) {
    return vga_put<sessions>(sess);
}
void vga_delete_vga_tn_sess(vga_tn_sess* sess, bool redraw) {
    if (sess->display_mark != 0 || sess->printer_mark != 0) {
        --sess->parent->update_count;
    }
    vga_remove<sessions>(sess, redraw);
}

vga_tn_assoc* vga_init_vga_tn_assoc(vga_node* node, const TN3270_ASSOCIATION_ENTRY* entry) {
    return vga_make<assocs>(node, entry);
}
vga_tn_assoc* vga_insert_vga_tn_assoc(vga_tn_assoc* assoc, vga_node*) {
    return vga_put<assocs>(assoc);
}
void vga_delete_vga_tn_assoc(vga_tn_assoc* assoc, bool redraw) {
    vga_remove<assocs>(assoc, redraw);
}

vga_tn_redirect* vga_init_vga_tn_redirect(vga_node* node, const TN_REDIRECT_ENTRY* entry) {
    return vga_make<redirects>(node, entry);
}
vga_tn_redirect* vga_insert_vga_tn_redirect(vga_tn_redirect* redirect, vga_node*) {
    return vga_put<redirects>(redirect);
}
void vga_delete_vga_tn_redirect(vga_tn_redirect* redirect, bool redraw) {
    vga_remove<redirects>(redirect, redraw);
}

void vga_release_tn3270(vga_node* node) {
    vga_release_all<clients>(node);
    vga_release_all<assocs>(node);
    vga_release_all<redirects>(node);
}
