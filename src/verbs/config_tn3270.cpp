// The TN3270 server: clients with their sessions, associations, redirection, settings.
#include "nof/tn3270.h"
#include "store/tracking.h"
#include "verbs/config_kind.h"

namespace {

constexpr vga_listing client_listing{vga_flag(VGA_NODE_TN_ACCESS)};
constexpr vga_listing assoc_listing{vga_flag(VGA_NODE_TN_ASSOCS)};
constexpr vga_listing redirect_listing{vga_flag(VGA_NODE_TN_REDIRECTS)};

constexpr vga_define_row<vga_node, vga_tn_client, TN3270_ACCESS_ENTRY, DEFINE_TN3270_ACCESS>
    client_define{VGA_VERB(NAP_DEFINE_TN3270_ACCESS), offsetof(DEFINE_TN3270_ACCESS, client),
                  offsetof(TN3270_ACCESS_ENTRY, client), vga_init_vga_tn_client,
                  vga_insert_vga_tn_client};

constexpr vga_define_row<vga_node, vga_tn_assoc, TN3270_ASSOCIATION_ENTRY,
                         DEFINE_TN3270_ASSOCIATION>
    assoc_define{VGA_VERB(NAP_DEFINE_TN3270_ASSOCIATION),
                 offsetof(DEFINE_TN3270_ASSOCIATION, display_lu_name),
                 offsetof(TN3270_ASSOCIATION_ENTRY, display_lu_name), vga_init_vga_tn_assoc,
                 vga_insert_vga_tn_assoc};
constexpr vga_delete_row<vga_node, vga_tn_assoc, DELETE_TN3270_ASSOCIATION> assoc_delete{
    VGA_VERB(NAP_DELETE_TN3270_ASSOCIATION),
    offsetof(DELETE_TN3270_ASSOCIATION, display_lu_name),
    &vga_node::tn_assoc_tree,
    vga_delete_vga_tn_assoc,
    {66, true, sizeof(NB_NAME8E), assoc_listing}};

constexpr vga_define_row<vga_node, vga_tn_redirect, TN_REDIRECT_ENTRY, DEFINE_TN_REDIRECT>
    redirect_define{VGA_VERB(NAP_DEFINE_TN_REDIRECT), offsetof(DEFINE_TN_REDIRECT, key),
                    offsetof(TN_REDIRECT_ENTRY, key), vga_init_vga_tn_redirect,
                    vga_insert_vga_tn_redirect};

// The text of an address field, for the log.
int address_length(const NB_HOST_ADDRESS& address) {
    return static_cast<int>(strnlen(address, sizeof address));
}

bool is_listed(const TN3270_SESSION& session) {
    return session.not_listed == 0;
}

void log_unknown_session(const vga_node* node, NB_USHORT opcode, NB_USHORT port) {
    if (!vga_is_being_listed(node, client_listing) && !nba_exceptions_suppressed()) {
        nba_pd_print_exception(0x40020004, 54, "x x", int{opcode}, int{port});
    }
}

// The session behind those of a client; or null.
vga_tn_sess* first_session_behind(const vga_tn_client* client, const vga_node* node) {
    if (const auto* last = ntl_avl_last<vga_tn_sess>(client->sess_tree); last != nullptr) {
        return vga_get_next_tn_sess(last, node);
    }
    for (const auto* other = static_cast<vga_tn_client*>(ntl_avl_next(&client->node));
         other != nullptr; other = static_cast<vga_tn_client*>(ntl_avl_next(&other->node))) {
        if (auto* first = ntl_avl_first<vga_tn_sess>(other->sess_tree); first != nullptr) {
            return first;
        }
    }
    return nullptr;
}

} // namespace

// ---- access ----

void vga_process_def_tn_access(VGA_COMPLETION* completion, vga_node* node, vga_tn_sess** record) {
    auto* client = vga_define(completion, node, client_define);
    vga_give<vga_tn_sess>(record, nullptr);
    if (client != nullptr) {
        const auto& block = *static_cast<const DEFINE_TN3270_ACCESS*>(completion->vcb);
        vga_give(record,
                 vga_define_members(client, nof_tail(&block), block.def.num_sessions,
                                    vga_init_vga_tn_sess, vga_insert_vga_tn_sess, is_listed));
    }
}

void vga_process_del_tn_access(VGA_COMPLETION* completion, vga_node* node, vga_tn_sess** next) {
    const auto& block =
        VGA_CONFIG_BLOCK(DELETE_TN3270_ACCESS, completion, NAP_DELETE_TN3270_ACCESS);
    vga_give<vga_tn_sess>(next, nullptr);
    auto* client = vga_status_find<vga_tn_client>(node->tn_client_tree, &block.client);
    if (client == nullptr) {
        vga_log_absent_local(node, client_listing, 55, block.header.opcode, block.client.address,
                             address_length(block.client.address));
        return;
    }
    if (block.num_sessions == 0) {
        vga_give(next, first_session_behind(client, node));
        if (block.delete_all == 0) {
            vga_delete_vga_tn_client(client, true);
            return;
        }
        while (auto* session = ntl_avl_first<vga_tn_sess>(client->sess_tree)) {
            vga_delete_vga_tn_sess(session, true);
        }
        return;
    }
    const TN3270_SESSION_NAME* names = block.sessions;
    for (NB_ULONG i = 0; i < block.num_sessions; ++i) {
        const NB_USHORT port = names[i].port;
        if (auto* session = vga_status_find<vga_tn_sess>(client->sess_tree, &port);
            session != nullptr) {
            vga_give(next, vga_get_next_tn_sess(session, node));
            vga_delete_vga_tn_sess(session, true);
        } else {
            log_unknown_session(node, block.header.opcode, port);
        }
    }
}

// ---- associations and redirection ----

void vga_process_def_tn_assoc(VGA_COMPLETION* completion, vga_node* node, vga_tn_assoc** record) {
    vga_give(record, vga_define(completion, node, assoc_define));
}

void vga_process_del_tn_assoc(VGA_COMPLETION* completion, vga_node* node) {
    vga_delete(completion, node, assoc_delete);
}

void vga_process_def_tn_redirect(VGA_COMPLETION* completion, vga_node* node,
                                 vga_tn_redirect** record) {
    vga_give(record, vga_define(completion, node, redirect_define));
}

void vga_process_del_tn_redirect(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_TN_REDIRECT, completion, NAP_DELETE_TN_REDIRECT);
    if (auto* redirect = vga_status_find<vga_tn_redirect>(node->tn_redirect_tree, &block.key);
        redirect != nullptr) {
        vga_delete_vga_tn_redirect(redirect, true);
    } else {
        vga_log_absent_local(node, redirect_listing, 84, block.header.opcode,
                             block.key.client_address, address_length(block.key.client_address));
    }
}

// ---- settings ----

void vga_process_def_tn_defaults(VGA_COMPLETION* completion, vga_node* node) {
    node->tn_defaults =
        VGA_CONFIG_BLOCK(DEFINE_TN3270_DEFAULTS, completion, NAP_DEFINE_TN3270_DEFAULTS).defaults;
}

void vga_process_def_tn_exl(VGA_COMPLETION* completion, vga_node* node) {
    node->express_logon =
        VGA_CONFIG_BLOCK(DEFINE_TN3270_EXPRESS_LOGON, completion, NAP_DEFINE_TN3270_EXPRESS_LOGON);
}

void vga_process_def_tn_ssl_ldap(VGA_COMPLETION* completion, vga_node* node) {
    node->tn_ssl_ldap =
        VGA_CONFIG_BLOCK(DEFINE_TN3270_SSL_LDAP, completion, NAP_DEFINE_TN3270_SSL_LDAP).settings;
}

void vga_process_def_tn_slp(VGA_COMPLETION* completion, vga_node* node) {
    node->tn_slp = VGA_CONFIG_BLOCK(DEFINE_TN3270_SLP, completion, NAP_DEFINE_TN3270_SLP).settings;
}
