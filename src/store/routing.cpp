// Routes and session timeouts of LUs 6.2.
#include "common/names.h"
#include "store/kind.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

bool is_independent(const vga_lu62* lu) {
    return lu->vcb.def.nau_address == 0;
}

constexpr vga_kind<vga_ls_routing> routings{
    &vga_lu62::ls_routing_tree,
    offsetof(vga_ls_routing, key),
    VGA_VIEWER_LS_R,
    [](const vga_ls_routing* routing) {
        vga_lu62* lu = routing->parent;
        return vga_is_shown(lu->ls_r_title) ? vga_place{&lu->parent->lus_root, &lu->ls_r_title}
                                            : vga_place{};
    },
    "ls_routing->gui_data.dialog->parent_item == (NB_VOID *)ls_routing",
};
constexpr vga_kind<vga_lu62_timeout> timeouts{
    &vga_node::lu62_timeout_tree,
    offsetof(vga_lu62_timeout, key),
};

void show_title(vga_lu62* lu) {
    if (is_independent(lu) && !vga_is_shown(lu->ls_r_title)) {
        vga_mode* mode = vga_last_lu62_mode(lu);
        vga_create_viewer(&lu->parent->lus_root, &lu->ls_r_title, VGA_VIEWER_LS_R_TITLE, lu,
                          &lu->viewer, mode != nullptr ? &mode->viewer : nullptr);
    }
}

// A name of 8 bytes, where the resource's name has no more; else null.
const NB_BYTE* short_name(const LU62_TIMEOUT_ENTRY& entry) {
    const NB_BYTE* end = std::end(entry.resource_name);
    return std::all_of(entry.resource_name + SNA_NAME_LENGTH, end,
                       [](NB_BYTE b) { return b == EBCDIC_BLANK; })
               ? entry.resource_name
               : nullptr;
}

void* find_resource(const vga_lu62_timeout* timeout) {
    const NB_BYTE* name = short_name(timeout->vcb);
    switch (timeout->vcb.resource_type) {
    case NOF_TIMEOUT_NODE:
        return timeout->parent;
    case NOF_TIMEOUT_LOCAL_LU:
        return name != nullptr ? ntl_avl_find(&timeout->parent->lu62_tree, name) : nullptr;
    case NOF_TIMEOUT_MODE:
        return name != nullptr ? ntl_avl_find(&timeout->parent->mode_def_tree, name) : nullptr;
    default:
        return nullptr;
    }
}

// The pointer with which the resource points back.
vga_lu62_timeout** back_pointer(const vga_lu62_timeout* timeout) {
    switch (timeout->vcb.resource_type) {
    case NOF_TIMEOUT_LOCAL_LU:
        return &static_cast<vga_lu62*>(timeout->resource)->timeout;
    case NOF_TIMEOUT_MODE:
        return &static_cast<vga_mode_def*>(timeout->resource)->timeout;
    default:
        return &static_cast<vga_node*>(timeout->resource)->global_timeout;
    }
}

void link_resource(vga_lu62_timeout* timeout) {
    timeout->resource = find_resource(timeout);
    if (timeout->resource != nullptr) {
        vga_lu62_timeout*& back = *back_pointer(timeout);
        if (back != nullptr) { // the node's, under another name
            back->resource = nullptr;
        }
        back = timeout;
    }
}

} // namespace

// ---- link station routing ----

vga_ls_routing* vga_init_vga_ls_routing(vga_lu62* lu, const LS_ROUTING_ENTRY* entry) {
    auto* routing = vga_make<routings>(lu, entry);
    if (routing != nullptr) {
        const LS_ROUTING_KEY& key = routing->vcb.key;
        std::memcpy(routing->key.plu_name, key.plu_name, sizeof key.plu_name);
        routing->key.number = key.wildcard == 1 ? NAP_WILDCARD_LU_RESOURCE : NAP_LU_RESOURCE;
    }
    return routing;
}

vga_ls_routing* vga_insert_vga_ls_routing(vga_ls_routing* routing, vga_lu62* lu) {
    show_title(lu);
    return vga_put<routings>(routing);
}

void vga_show_ls_routings(vga_lu62* lu) {
    if (lu->ls_routing_tree.root == nullptr || !is_independent(lu)) {
        return;
    }
    show_title(lu);
    for (auto* routing = ntl_avl_first<vga_ls_routing>(lu->ls_routing_tree); routing != nullptr;
         routing = vga_next<vga_ls_routing>(routing->node)) {
        vga_show<routings>(routing);
    }
}

void vga_delete_vga_ls_routing(vga_ls_routing* routing, bool redraw) {
    vga_lu62* lu = routing->parent;
    vga_remove<routings>(routing, redraw);
    if (lu->ls_routing_tree.root == nullptr) {
        vga_delete_row(&lu->parent->lus_root, &lu->ls_r_title, redraw);
    }
}

void vga_release_ls_routings(vga_lu62* lu) {
    vga_release_all<routings>(lu);
}

// ---- timeout ----

vga_lu62_timeout* vga_init_vga_lu62_timeout(vga_node* node, const LU62_TIMEOUT_ENTRY* entry) {
    auto* timeout = vga_make<timeouts>(node, entry);
    if (timeout != nullptr) {
        timeout->key = {timeout->vcb.resource_name, &timeout->vcb.resource_type};
    }
    return timeout;
}

vga_lu62_timeout* vga_insert_vga_lu62_timeout(vga_lu62_timeout* timeout, vga_node*) {
    timeout = vga_put<timeouts>(timeout);
    if (timeout->resource == nullptr) {
        link_resource(timeout);
    }
    return timeout;
}

void vga_link_lu62_timeout(vga_node* node, NB_BYTE type, const NB_BYTE* name) {
    NB_FQNAME padded;
    std::memset(padded, EBCDIC_BLANK, sizeof padded);
    std::memcpy(padded, name, SNA_NAME_LENGTH);
    const vga_lu62_timeout_key key{padded, &type};
    auto* timeout = vga_find<vga_lu62_timeout>(node->lu62_timeout_tree, &key);
    if (timeout != nullptr) {
        link_resource(timeout);
    }
}

void vga_unlink_lu62_timeout(vga_lu62_timeout** timeout, const void* resource,
                             const char* expression) {
    if (*timeout != nullptr) {
        VGA_ASSERT_TEXT((*timeout)->resource == resource, expression);
        (*timeout)->resource = nullptr;
        *timeout = nullptr;
    }
}

void vga_delete_vga_lu62_timeout(vga_lu62_timeout* timeout, bool redraw) {
    if (timeout->resource != nullptr) {
        vga_lu62_timeout*& back = *back_pointer(timeout);
        VGA_ASSERT(back == timeout);
        back = nullptr;
    }
    vga_remove<timeouts>(timeout, redraw);
}

void vga_release_lu62_timeouts(vga_node* node) {
    node->global_timeout = nullptr;
    vga_release_all<timeouts>(node);
}
