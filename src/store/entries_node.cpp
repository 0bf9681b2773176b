// What the build makes of the entries of a node's smaller lists: host role, programs, security,
// TN3270 server, templates, sessions.
#include "store/query.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

vga_node* node_of(const vga_page_context& context) {
    return static_cast<vga_node*>(context.owner);
}

// Makes a record of an entry and inserts it; null: it could not be placed, or there is no memory.
template <typename Record, typename Parent, typename Entry>
Record* add(Record* (*init)(Parent*, const Entry*), Record* (*insert)(Record*, Parent*),
            Parent* parent, const void* entry) {
    Record* record = init(parent, static_cast<const Entry*>(entry));
    return record != nullptr ? insert(record, parent) : nullptr;
}

// The same for an entry of the build's own; every such record can be placed.
template <auto init, auto insert> bool add_to_node(vga_page_context& context, const void* entry) {
    auto* record = add(init, insert, node_of(context), entry);
    context.record = record;
    return record != nullptr;
}

} // namespace

bool vga_entry_lu62_timeout(vga_page_context& context, const void* entry) {
    return add_to_node<vga_init_vga_lu62_timeout, vga_insert_vga_lu62_timeout>(context, entry);
}

bool vga_entry_ls_routing(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const LS_ROUTING_ENTRY*>(raw);
    auto* lu = vga_find<vga_lu62>(node_of(context)->lu62_tree, entry->key.lu_name);
    if (lu == nullptr) {
        vga_log_missing_parent_ebcdic(67, NAP_QUERY_LS_ROUTING, entry->key.lu_name,
                                      sizeof entry->key.lu_name);
        return true;
    }
    context.record = add(vga_init_vga_ls_routing, vga_insert_vga_ls_routing, lu, entry);
    return context.record != nullptr;
}

bool vga_entry_lu_lu_password(vga_page_context& context, const void* entry) {
    context.record = add(vga_init_vga_lu_lu_password, vga_insert_vga_lu_lu_password,
                         static_cast<vga_lu62*>(context.owner), entry);
    return context.record != nullptr;
}

// ---- host role ----

bool vga_entry_primary_line(vga_page_context& context, const void* entry) {
    return add_to_node<vga_init_vga_primary_line, vga_insert_vga_primary_line>(context, entry);
}

bool vga_entry_primary_lu0(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const PRIMARY_LU0_ENTRY*>(raw);
    const auto& line_name = entry->def.line_name;
    auto* line = vga_find<vga_primary_line>(node_of(context)->primary_line_tree, line_name);
    if (line == nullptr) {
        vga_log_missing_parent(74, NAP_QUERY_PRIMARY_LU0, line_name, sizeof line_name);
        return true;
    }
    context.record = add(vga_init_vga_primary_lu0, vga_insert_vga_primary_lu0, line, entry);
    return context.record != nullptr;
}

// ---- programs, templates ----

bool vga_entry_tp_def(vga_page_context& context, const void* entry) {
    return add_to_node<vga_init_vga_tp_def, vga_insert_vga_tp_def>(context, entry);
}
bool vga_entry_tp_load_info(vga_page_context& context, const void* entry) {
    return add_to_node<vga_init_vga_tp_load_info, vga_insert_vga_tp_load_info>(context, entry);
}

bool vga_entry_dspu_template(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const DSPU_TEMPLATE_ENTRY*>(raw);
    auto* dspu =
        add(vga_init_vga_dspu_template, vga_insert_vga_dspu_template, node_of(context), entry);
    context.record = dspu;
    if (dspu == nullptr) {
        return false;
    }
    while (auto* old = ntl_avl_first<vga_dslu_template>(dspu->dslu_tree)) {
        vga_delete_vga_dslu_template(old, false); // the entry has all its ranges
    }
    return vga_each_item<DSLU_TEMPLATE>(
        entry, entry->def.num_dslu_templates, [dspu](const DSLU_TEMPLATE* range) {
            return add(vga_init_vga_dslu_template, vga_insert_vga_dslu_template, dspu, range) !=
                   nullptr;
        });
}

// ---- security ----

// Entries in a row for one user continue its profiles, also where a page goes on behind another.
bool vga_entry_userid_password(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const USERID_PASSWORD_ENTRY*>(raw);
    const auto* query = static_cast<const QUERY_USERID_PASSWORD*>(context.block);
    const auto* before = static_cast<const vga_userid_password*>(context.record);
    const NB_BYTE* user_before = before != nullptr ? before->vcb.user_id : query->user_id;
    const bool first = (query->list.list_options & NAP_FIRST_IN_LIST) != 0 && before == nullptr;
    const bool continues =
        !first && std::memcmp(user_before, entry->user_id, sizeof entry->user_id) == 0;
    vga_userid_password* userid = vga_init_vga_userid_password(node_of(context), entry);
    if (userid == nullptr) {
        return false;
    }
    context.record = vga_insert_vga_userid_password(userid, node_of(context), continues);
    return true;
}

bool vga_entry_security_access_list(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const SECURITY_ACCESS_LIST_ENTRY*>(raw);
    auto* list = add(vga_init_vga_security_access_list, vga_insert_vga_security_access_list,
                     node_of(context), entry);
    context.record = list;
    return list != nullptr &&
           vga_each_item<ACCESS_LIST_USER>(
               entry, entry->def.num_users, [list](const ACCESS_LIST_USER* user) {
                   return add(vga_init_vga_security_access_user,
                              vga_insert_vga_security_access_user, list, user) != nullptr;
               });
}

// ---- TN3270 server ----

bool vga_entry_tn_client(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const TN3270_ACCESS_ENTRY*>(raw);
    auto* client = add(vga_init_vga_tn_client, vga_insert_vga_tn_client, node_of(context), entry);
    context.record = client;
    return client != nullptr &&
           vga_each_item<TN3270_SESSION>(
               entry, entry->def.num_sessions, [client](const TN3270_SESSION* sess) {
                   return sess->not_listed != 0 || add(vga_init_vga_tn_sess, vga_insert_vga_tn_sess,
                                                       client, sess) != nullptr;
               });
}

bool vga_entry_tn_assoc(vga_page_context& context, const void* entry) {
    return add_to_node<vga_init_vga_tn_assoc, vga_insert_vga_tn_assoc>(context, entry);
}
bool vga_entry_tn_redirect(vga_page_context& context, const void* entry) {
    return add_to_node<vga_init_vga_tn_redirect, vga_insert_vga_tn_redirect>(context, entry);
}

// ---- sessions ----

bool vga_entry_appcip_sess(vga_page_context& context, const void* entry) {
    return add_to_node<vga_init_vga_appcip_sess, vga_insert_vga_appcip_sess>(context, entry);
}
bool vga_entry_rtp_conn(vga_page_context& context, const void* entry) {
    return add_to_node<vga_init_vga_rtp_conn, vga_insert_vga_rtp_conn>(context, entry);
}
