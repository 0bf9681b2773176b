#include "fixture.h"

#include "store/build.h"
#include "ui/framework/firewall.h"
#include "ui/viewer/viewer_internal.h"

#include <algorithm>
#include <cstdlib>

namespace store_test {

namespace {

template <typename T> T* found(const NTL_AVL_TREE& tree, const void* key) {
    T* record = static_cast<T*>(ntl_avl_find(&tree, key));
    EXPECT_NE(record, nullptr);
    return record;
}

void collect(const NTL_AVL_TREE& items, const std::string& indent, Rows* out) {
    for (const vga_viewer* row = vga_viewer_top(items); row != nullptr;
         row = vga_viewer_sibling_below(row)) {
        out->push_back(indent + row_name(*row));
        collect(row->children, indent + ' ', out);
    }
}

int in_order(const NTL_AVL_TREE& tree, const NTL_AVL_NODE* node, std::vector<void*>* out,
             const void** previous) {
    if (node == nullptr) {
        return 0;
    }
    const int left = in_order(tree, node->left, out, previous);
    EXPECT_TRUE(*previous == nullptr || tree.compare(*previous, node->key) < 0);
    *previous = node->key;
    out->push_back(node->self);
    const int right = in_order(tree, node->right, out, previous);
    EXPECT_LE(std::abs(left - right), 1);
    return std::max(left, right) + 1;
}

// Rows that one field of their record names.
struct NamedRow {
    int type;
    std::string (*name)(const void* record);
};
#define NAMED(type, Record, field)                                                                 \
    {                                                                                              \
        type, [](const void* record) { return get(static_cast<const Record*>(record)->field); }    \
    }
constexpr NamedRow named_rows[] = {
    NAMED(VGA_VIEWER_PORT, vga_port, vcb->port_name),
    NAMED(VGA_VIEWER_LS_NO_PU, vga_ls, vcb->ls_name),
    NAMED(VGA_VIEWER_LOCAL_PU, vga_pu, vcb.pu_name),
    NAMED(VGA_VIEWER_DOWN_LU, vga_down_lu, vcb.dslu_name),
    NAMED(VGA_VIEWER_LU62, vga_lu62, vcb.lu_name),
    NAMED(VGA_VIEWER_NODE, vga_node, node_name),
    NAMED(VGA_VIEWER_REM_SYS, vga_rem_sys, cp_name),
    NAMED(VGA_VIEWER_REM_PLU, vga_rem_plu, key.plu_name),
    NAMED(VGA_VIEWER_REM_PLU_NO_SESS, vga_rem_plu, key.plu_name),
    NAMED(VGA_VIEWER_PRIMARY_LINE, vga_primary_line, vcb.line_name),
    NAMED(VGA_VIEWER_PRIMARY_LU0, vga_primary_lu0, vcb.lu_name),
    NAMED(VGA_VIEWER_APPCIP_SESS, vga_appcip_sess, vcb.session.lu_name),
    NAMED(VGA_VIEWER_USER, vga_user, vcb.user_name),
    NAMED(VGA_VIEWER_USER_SESS, vga_user_sess, vcb.session_name),
    NAMED(VGA_VIEWER_CPIC, vga_cpic, vcb.sym_dest_name),
    NAMED(VGA_VIEWER_RJE, vga_rje_wkstn, vcb.wkstn_name),
    NAMED(VGA_VIEWER_POOL, vga_sys_pool, pool_name),
    NAMED(VGA_VIEWER_POOL_LU, vga_lu03, vcb.lu_name),
};
#undef NAMED

} // namespace

DLC_ENTRY dlc(const std::string& name, NB_BYTE type) {
    auto e = entry(&DLC_ENTRY::dlc_name, name);
    e.def.dlc_type = type;
    return e;
}
PORT_ENTRY port(const std::string& name, const std::string& dlc_name) {
    auto e = entry(&PORT_ENTRY::port_name, name);
    put(e.def.dlc_name, dlc_name);
    return e;
}
LS_ENTRY ls(const std::string& name, const std::string& port_name, const std::string& pu_name,
            const std::string& dspu_name) {
    auto e = entry(&LS_ENTRY::ls_name, name);
    put(e.def.port_name, port_name);
    e.def.solicit_sscp_sessions = !pu_name.empty();
    put(e.def.pu_name, pu_name);
    e.def.dspu_services = dspu_name.empty() ? 0 : NAP_PU_CONCENTRATION;
    put(e.def.dspu_name, dspu_name);
    return e;
}
PU_ENTRY pu(const std::string& name, const std::string& ls_name, NB_BYTE attachment) {
    auto e = entry(&PU_ENTRY::pu_name, name);
    put(e.ls_name, ls_name);
    e.host_attachment = attachment;
    return e;
}
LU03_ENTRY lu03(const std::string& name, const std::string& pu_name, NB_BYTE nau) {
    auto e = entry(&LU03_ENTRY::lu_name, name);
    put(e.def_data.pu_name, pu_name);
    e.def_data.nau_address = nau;
    return e;
}
DOWN_LU_ENTRY down_lu(const std::string& name, NB_BYTE nau) {
    auto e = entry(&DOWN_LU_ENTRY::dslu_name, name);
    e.def.nau_address = nau;
    return e;
}
LU62_ENTRY lu62(const std::string& name, const std::string& alias, NB_BYTE nau,
                const std::string& pu_name) {
    auto e = entry(&LU62_ENTRY::lu_name, name);
    put(e.def.lu_alias, alias);
    e.def.nau_address = nau;
    put(e.def.pu_name, pu_name);
    return e;
}
MODE_ENTRY mode(const std::string& name, const std::string& partner, NB_USHORT sessions,
                const std::string& cp_name) {
    auto e = entry(&MODE_ENTRY::mode_name, name);
    put(e.plu_name, partner);
    e.act_sess_count = sessions;
    e.cp_known = !cp_name.empty();
    put(e.cp_name, cp_name);
    return e;
}
DIRECTORY_ENTRY directory(const std::string& name, NB_USHORT type, NB_BYTE entry_type,
                          const std::string& parent, NB_USHORT parent_type) {
    auto e = entry(&DIRECTORY_ENTRY::resource_name, name);
    e.resource_type = type;
    e.entry_type = entry_type;
    put(e.parent_name, parent);
    e.parent_type = parent_type;
    return e;
}
PLU_DEF_ENTRY plu_def(const std::string& name, const std::string& alias) {
    auto e = entry(&PLU_DEF_ENTRY::plu_name, name);
    put(e.def.plu_alias, alias);
    return e;
}
NODE_ALL_ENTRY node_all(const std::string& name) {
    return entry(&NODE_ALL_ENTRY::node_name, name);
}

std::string row_name(const vga_viewer& row) {
    for (const auto& [type, name_of] : named_rows) {
        if (type == row.type) {
            return name_of(row.data);
        }
    }
    switch (row.type) {
    case VGA_VIEWER_LS:
        return get(static_cast<vga_ls*>(row.data)->vcb->ls_name) + "+";
    case VGA_VIEWER_DEPLU:
        return static_cast<vga_deplu*>(row.data)->lu_type == VGA_DEPLU_TYPE_LU03
                   ? get(static_cast<vga_lu03*>(row.data)->vcb.lu_name)
                   : get(static_cast<vga_lu62*>(row.data)->vcb.lu_name);
    case VGA_VIEWER_MODE:
        return get(static_cast<vga_mode*>(row.data)->parent->vcb.plu_name) + "/" +
               get(static_cast<vga_mode*>(row.data)->vcb.mode_name);
    case VGA_VIEWER_REM_SESS:
        return get(static_cast<vga_rem_sess*>(row.data)->key.lu_name) + "/" +
               get(static_cast<vga_rem_sess*>(row.data)->key.mode_name);
    case VGA_VIEWER_LS_R_TITLE:
        return "routes";
    case VGA_VIEWER_LS_R: {
        const LS_ROUTING_KEY& key = static_cast<vga_ls_routing*>(row.data)->vcb.key;
        return get(key.plu_name) + (key.wildcard == 1 ? "*" : "");
    }
    case VGA_VIEWER_SL_SECURITY: {
        const vga_sl_sec_key& key = static_cast<vga_lu_lu_password*>(row.data)->key;
        return get(key.lu_name) + "/" + get(key.plu_name);
    }
    case VGA_VIEWER_TN_SESS: {
        const auto* sess = static_cast<vga_tn_sess*>(row.data);
        return get(sess->parent->vcb.client.address) + "/" + std::to_string(sess->vcb.port);
    }
    default:
        return "title";
    }
}

Rows rows(vga_viewer_root& root) {
    Rows out;
    collect(root.top_items, "", &out);
    return out;
}

std::vector<void*> records(const NTL_AVL_TREE& tree) {
    std::vector<void*> out;
    const void* previous = nullptr;
    in_order(tree, tree.root, &out, &previous);
    return out;
}

Messages::Messages() {
    window.open = 1;
    nba_init_q(&window.modal_dlg.queue);
    gvga_modal_firewall_count = 1;
}
Messages::~Messages() {
    EXPECT_EQ(shown(), 0);
    gvga_modal_firewall_count = 0;
}
int Messages::shown() {
    int messages = 0;
    while (auto* message = static_cast<NBA_QUEUE*>(nba_get_q_head(&window.modal_dlg.queue))) {
        nba_remove_from_q(message); // which stands at the start of what waits
        vga_free(message);
        ++messages;
    }
    return messages;
}

Store::Store() {
    nba_hm_initialise();
    vga_init_verb_queues();
    gvga_exit_code = 0;
    gvga_store_hooks = {};
    gvga_metrics.item_height = 16;
    for (const char*& message : gvga_messages) {
        message = message != nullptr ? message : ""; // no catalogue
    }
    gvga_messages[232] = "DLUR";
    gvga_messages[233] = "LINES";
    gvga_messages[231] = "the node's own LU";
    gvga_messages[235] = "SNA mode";
    gvga_messages[888] = "not configured";
    gvga_system = vga_init_vga_system();
    node = add_node("NODE1");
    asserts = nba_assert_count();
}

Store::~Store() {
    vga_fail_allocation(0);
    std::fill(std::begin(gvga_supported), std::end(gvga_supported), NB_USHORT{0});
    EXPECT_EQ(nba_assert_count(), asserts) << nba_last_assert();
    vga_free_verb_queues();
    vga_destroy_data_structures();
    EXPECT_EQ(vga_allocations_in_use(), 0u);
    EXPECT_EQ(nba_handle_count(), 0u);
    nba_hm_terminate();
}

vga_node* Store::add_node(const std::string& name) {
    const NODE_ALL_ENTRY e = node_all(name);
    vga_node* added = vga_insert_vga_node(vga_init_vga_node(&e));
    put(added->vcb.parameters.cp_name, "NET.CP");
    put(added->vcb.parameters.cp_alias, "CP");
    return added;
}
vga_dlc* Store::add_dlc(const DLC_ENTRY& e) {
    return vga_insert_vga_dlc(vga_init_vga_dlc(node, &e), node);
}
vga_port* Store::add_port(const std::string& name) {
    vga_dlc* owner = add_dlc(dlc(name));
    const PORT_ENTRY e = port(name, name);
    return vga_insert_vga_port(vga_init_vga_port(owner, &e), owner);
}
vga_ls* Store::add_ls(const LS_ENTRY& e) {
    auto* owner = found<vga_port>(node->port_tree, e.def.port_name);
    vga_ls* added = vga_insert_vga_ls(vga_init_vga_ls(owner, &e), owner);
    vga_add_ls_pu(added);
    return added;
}
vga_pu* Store::add_pu(const PU_ENTRY& e) {
    return vga_insert_vga_local_pu(vga_init_vga_local_pu(node, &e), node);
}
vga_pu* Store::add_down_pu(const PU_ENTRY& e) {
    return vga_insert_vga_down_pu(vga_init_vga_down_pu(node, &e), node);
}
vga_down_lu* Store::add_down_lu(const DOWN_LU_ENTRY& e, vga_pu* owner) {
    return vga_insert_vga_down_lu(vga_init_vga_down_lu(owner, &e), owner);
}
vga_lu03* Store::add_lu03(const LU03_ENTRY& e) {
    auto* owner = found<vga_pu>(node->local_pu_tree, e.def_data.pu_name);
    return vga_insert_vga_lu03(vga_init_vga_lu03(owner, &e), owner);
}
vga_lu62* Store::add_lu62(const LU62_ENTRY& e) {
    return vga_insert_vga_lu62(vga_init_vga_lu62(node, &e), node);
}
vga_rem_sys* Store::add_rem_sys(const std::string& name) {
    const DIRECTORY_ENTRY e = directory(name, NAP_END_NODE_CP_RESOURCE, NOF_DIRECTORY_DEFINED);
    return vga_insert_vga_rem_sys(vga_init_vga_rem_sys(node, e.resource_name, true, &e), node);
}
vga_appcip_sess* Store::add_appcip(const std::string& lu, NB_ULONG id) {
    auto e = entry<IPBRIDGE_APPCIP_ENTRY>();
    put(e.session.lu_name, lu);
    e.session.session_id = id;
    return vga_insert_vga_appcip_sess(vga_init_vga_appcip_sess(node, &e), node);
}
void Store::list_modes(vga_lu62* lu, std::vector<MODE_ENTRY> entries) {
    QUERY_MODE block{};
    block.list.header.opcode = NAP_QUERY_MODE;
    block.list.buffer = entries.data();
    block.list.buffer_size = static_cast<NB_ULONG>(entries.size() * sizeof(MODE_ENTRY));
    block.list.num_entries = block.list.total_entries = static_cast<NB_USHORT>(entries.size());
    vga_mode* last;
    ASSERT_TRUE(vga_process_query_mode(lu, &block, &last));
}

} // namespace store_test
