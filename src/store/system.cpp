// The system root and its nodes: creation, insertion, server roles, capabilities.
#include "nof/nof.h"
#include "shell/globals.h"
#include "store/record_util.h"
#include "store/store.h"

vga_store_hooks gvga_store_hooks;

namespace {

struct Tree {
    NTL_AVL_TREE vga_node::*tree;
    NTL_AVL_COMPARE compare;
};
constexpr Tree node_trees[] = {
    {&vga_node::dlc_tree, vga_compare_asc8},
    {&vga_node::dspu_template_tree, vga_compare_asc8},
    {&vga_node::port_tree, vga_compare_asc8},
    {&vga_node::primary_line_tree, vga_compare_asc14},
    {&vga_node::ls_tree, vga_compare_asc8},
    {&vga_node::lu62_tree, vga_compare_ebc8},
    {&vga_node::lu62_alias_tree, vga_compare_asc8},
    {&vga_node::local_pu_tree, vga_compare_ebc8},
    {&vga_node::down_pu_tree, vga_compare_ebc8},
    {&vga_node::mode_def_tree, vga_compare_ebc8},
    {&vga_node::lu62_timeout_tree, vga_compare_lu62_timeouts},
    {&vga_node::tp_def_tree, vga_compare_tp_names},
    {&vga_node::tp_load_tree, vga_compare_tp_load_info},
    {&vga_node::cos_tree, vga_compare_ebc8},
    {&vga_node::cn_tree, vga_compare_ebc17},
    {&vga_node::dir_tree, vga_compare_directory_entries},
    {&vga_node::dir_server_tree, vga_compare_ebc17},
    {&vga_node::rem_sys_tree, vga_compare_ebc17},
    {&vga_node::rtp_conn_tree, vga_compare_rtp_conn},
    {&vga_node::rtp_conn_name_tree, vga_compare_asc8},
    {&vga_node::userid_tree, vga_compare_ebc10},
    {&vga_node::access_list_tree, vga_compare_asc14},
    {&vga_node::sl_sec_tree, vga_compare_sl_sec},
    {&vga_node::tn_client_tree, vga_compare_client_address},
    {&vga_node::tn_assoc_tree, vga_compare_ebc8},
    {&vga_node::tn_redirect_tree, vga_compare_tn_redirect},
    {&vga_node::appcip_sess_tree, vga_compare_ipbridge_appcip_sess},
    {&vga_node::appcip_id_tree, vga_compare_ulong},
};

struct Title {
    vga_viewer vga_node::*row;
    vga_viewer_root vga_node::*root;
    NB_BYTE type;
};
constexpr Title titles[] = {
    {&vga_node::tn_client_title, &vga_node::tn_client_root, VGA_VIEWER_TN_SESS_TITLE},
    {&vga_node::sl_sec_title, &vga_node::sl_sec_root, VGA_VIEWER_SL_SEC_TITLE},
    {&vga_node::tn_assoc_title, &vga_node::tn_assoc_root, VGA_VIEWER_TN_ASSOC_TITLE},
    {&vga_node::rtp_title, &vga_node::rtp_root, VGA_VIEWER_RTP_CONN_TITLE},
    {&vga_node::appcip_title, &vga_node::appcip_root, VGA_VIEWER_APPCIP_SESS_TITLE},
    {&vga_node::tn_redirect_title, &vga_node::tn_redirect_root, VGA_VIEWER_TN_REDIRECT_TITLE},
};

bool init_roots(vga_viewer_root* const* roots, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (!vga_viewer_init_root(roots[i])) {
            while (i-- > 0) {
                vga_viewer_destroy_root(roots[i]);
            }
            VGA_FATAL(VGA_EXIT_INTERNAL, 0);
            return false;
        }
    }
    return true;
}

} // namespace

// ---- system ----

std::array<vga_viewer_root*, VGA_SYSTEM_ROOT_COUNT> vga_system_roots(vga_system* system) {
    return {&system->node_viewer_root, &system->user_viewer_root, &system->cpic_viewer_root,
            &system->rje_viewer_root, &system->pool_viewer_root};
}

std::array<vga_viewer_root*, VGA_NODE_ROOT_COUNT> vga_node_roots(vga_node* node) {
    return {&node->links_root,       &node->lus_root,       &node->rem_sys_root,
            &node->mode_root,        &node->tp_root,        &node->tp_load_root,
            &node->rtp_root,         &node->userid_root,    &node->access_list_root,
            &node->sl_sec_root,      &node->tn_client_root, &node->tn_assoc_root,
            &node->tn_redirect_root, &node->appcip_root};
}

vga_system* vga_init_vga_system() {
    auto* system = vga_new_record<vga_system>();
    if (system == nullptr) {
        return nullptr;
    }
    ntl_avl_init_tree(&system->node_tree, vga_compare_node_name);
    ntl_avl_init_tree(&system->sna_net_tree, vga_compare_node_name);
    ntl_avl_init_tree(&system->user_tree, vga_compare_user_name);
    ntl_avl_init_tree(&system->cpic_tree, vga_compare_asc8);
    ntl_avl_init_tree(&system->rje_tree, vga_compare_asc4);
    ntl_avl_init_tree(&system->lu_tree, vga_compare_lu);
    ntl_avl_init_tree(&system->pool_tree, vga_compare_ebc8);
    system->build_flags = vga_flag(VGA_SYSTEM_FLAG_COUNT) - 1;
    const auto roots = vga_system_roots(system);
    if (!init_roots(roots.data(), roots.size())) {
        vga_free_record(system);
        return nullptr;
    }
    return system;
}

bool vga_check_system_startup() {
    return gvga_system->build_flags == 0;
}

// ---- node ----

vga_node* vga_init_vga_node(const NODE_ALL_ENTRY* entry) {
    auto* node = vga_new_record<vga_node>();
    if (node == nullptr) {
        return nullptr;
    }
    vga_copy_node_name(node->node_name, entry->node_name);
    node->node_state = VGA_NODE_STATE_UNCONFIGURED;
    node->build_flags = vga_flag(VGA_NODE_FLAG_COUNT) - 1;
    ntl_avl_init_node(&node->node, node, node->node_name);
    for (const Tree& row : node_trees) {
        ntl_avl_init_tree(&(node->*row.tree), row.compare);
    }
    nba_init_q(&node->rtp_conn_dialog_root_lqe);
    const auto roots = vga_node_roots(node);
    if (!init_roots(roots.data(), roots.size())) {
        vga_free_record(node);
        return nullptr;
    }
    for (const Title& title : titles) {
        vga_create_viewer(&(node->*title.root), &(node->*title.row), title.type, node, nullptr,
                          nullptr);
    }
    vga_init_row(&node->viewer, VGA_VIEWER_NODE, node);
    return node;
}

vga_node* vga_insert_vga_node(vga_node* node) {
    if (!ntl_avl_insert(&gvga_system->node_tree, &node->node)) {
        auto* old = vga_older<vga_node>(gvga_system->node_tree, node->node_name);
        if (node->vcb.header.opcode != 0) { // queried, not only listed
            old->vcb = node->vcb;
        }
        for (vga_viewer_root* root : vga_node_roots(node)) {
            vga_viewer_destroy_root(root);
        }
        vga_free_record(node);
        vga_redraw_node(old);
        return old;
    }
    node->server_role = vga_server_role(node);
    auto* previous = vga_prev<vga_node>(node->node);
    vga_create_viewer(&gvga_system->node_viewer_root, &node->viewer, VGA_VIEWER_NODE, node, nullptr,
                      previous != nullptr ? &previous->viewer : nullptr);
    if (gvga_store_hooks.node_added != nullptr) {
        gvga_store_hooks.node_added(node);
    }
    return node;
}

bool vga_check_node_startup(const vga_node* node) {
    return node->build_flags == 0;
}

void vga_copy_node_name(NB_NODE_NAME to, const char* from) {
    std::size_t length = strnlen(from, sizeof(NB_NODE_NAME));
    while (length > 0 && from[length - 1] == ' ') {
        --length;
    }
    std::memset(to, 0, sizeof(NB_NODE_NAME));
    std::memcpy(to, from, length);
}

vga_node* vga_find_node(const char* node_name) {
    return vga_find<vga_node>(gvga_system->node_tree, node_name);
}

vga_node* vga_find_node_by_handle(NB_HANDLE handle) {
    for (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree);
         node != nullptr && handle != 0; node = vga_next<vga_node>(node->node)) {
        if (node->node_handle == handle || node->tp_load_handle == handle) {
            return node;
        }
    }
    return nullptr;
}

vga_node* vga_validate_node(NB_ULONG corr) {
    const void* record = nba_validate_handle(corr);
    auto* node = record != nullptr ? ntl_avl_first<vga_node>(gvga_system->node_tree) : nullptr;
    while (node != nullptr && node != record) {
        node = vga_next<vga_node>(node->node);
    }
    return node;
}

VGA_SERVER_ROLE vga_server_role(const vga_node* node) {
    if (!vsm_is_client_server()) {
        return VGA_ROLE_LOCAL_SERVER;
    }
    if (ntl_avl_find(&gvga_system->sna_net_tree, node->node_name) == nullptr) {
        return VGA_ROLE_NONE;
    }
    return vga_compare_node_name(node->node_name, gvga_system->local_server) == 0
               ? VGA_ROLE_LOCAL_SERVER
               : VGA_ROLE_SERVER;
}

void vga_redraw_node(vga_node* node) {
    if (gvga_store_hooks.node_changed != nullptr) {
        gvga_store_hooks.node_changed(node);
    }
}

vga_sna_net_node* vga_init_sna_net_node(const SNA_NET_ENTRY* entry) {
    auto* node = vga_new<vga_sna_net_node>();
    if (node == nullptr) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return nullptr;
    }
    vga_copy_node_name(node->node_name, entry->node_name);
    ntl_avl_init_node(&node->node, node, node->node_name);
    return node;
}

vga_sna_net_node* vga_insert_sna_net_node(vga_sna_net_node* node) {
    if (ntl_avl_insert(&gvga_system->sna_net_tree, &node->node)) {
        return node;
    }
    auto* old = vga_older<vga_sna_net_node>(gvga_system->sna_net_tree, node->node_name);
    vga_free(node);
    return old;
}

bool vga_add_ipbridge_appcip_defaults(vga_node* node, const IPBRIDGE_APPCIP_DEFAULTS* defaults) {
    if (node->appcip_defaults == nullptr) {
        node->appcip_defaults = vga_new<IPBRIDGE_APPCIP_DEFAULTS>();
        if (node->appcip_defaults == nullptr) {
            VGA_FATAL(VGA_EXIT_INTERNAL, 0);
            return false;
        }
    }
    *node->appcip_defaults = *defaults;
    vga_update_row(&node->appcip_root, &node->appcip_title);
    return true;
}

// ---- capabilities ----

bool vga_node_has_dspu(const vga_node* node) {
    return node->vcb.capabilities.dspu[0] == 1 && node->vcb.capabilities.dspu[1] == 1;
}
bool vga_node_has_dlur(const vga_node* node) {
    return node->vcb.capabilities.dlur[0] != 0 && node->vcb.capabilities.dlur[1] != 0;
}
bool vga_node_has_tn_server(const vga_node* node) {
    return node->vcb.capabilities.tn_server == 1;
}
bool vga_node_has_back_level_trace(const vga_node* node) {
    return node->vcb.capabilities.back_level_trace == 1;
}
bool vga_node_lists_cns(const vga_node* node) {
    return node->vcb.capabilities.cn_not_listed != 1;
}
bool vga_node_has_hpr(const vga_node* node) {
    return node->vcb.capabilities.hpr != 0;
}
bool vga_node_has_ssl(const vga_node* node) {
    return node->vcb.capabilities.ssl != 0;
}
bool vga_node_has_attach_routing(const vga_node* node) {
    return node->vcb.capabilities.attach_routing != 0;
}
bool vga_node_has_mode_to_cos_map(const vga_node* node) {
    return node->vcb.capabilities.mode_to_cos_map != 0;
}
bool vga_node_has_pu_concentration(const vga_node* node) {
    return node->vcb.parameters.pu_conc_support == 1 && node->limits.pu_conc != 0;
}
bool vga_node_has_configured_dlur(const vga_node* node) {
    return node->vcb.parameters.dlur_support != 0 && node->limits.dlur != 0;
}
