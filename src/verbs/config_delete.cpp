// The issuers of the delete verbs: each is a row of one table.
#include "nof/cn.h"
#include "nof/node.h"
#include "nof/pool.h"
#include "nof/user.h"
#include "shell/globals.h"
#include "verbs/config_util.h"

namespace {

enum TARGET : NB_BYTE { TO_NODE, TO_TP_LOAD_FILE, TO_DOMAIN };

struct DELETE_ROW {
    NB_USHORT opcode;
    NB_USHORT block_size;
    NB_USHORT key_offset;
    NB_USHORT key_length; // 0: the verb names nothing
    TARGET target = TO_NODE;
    NB_USHORT kind = 0; // 16-bit value at KIND_OFFSET of the verbs that have one there
};

constexpr std::size_t KIND_OFFSET = offsetof(DELETE_USERID_PASSWORD, delete_type);
static_assert(offsetof(DELETE_EXTRA_DATA, resource_kind) == KIND_OFFSET);

// A verb that names its record by one member of the block.
#define DELETES(opcode, Block, member)                                                             \
    opcode, sizeof(Block), offsetof(Block, member), sizeof(Block::member)

constexpr DELETE_ROW del_dlc{DELETES(NAP_DELETE_DLC, DELETE_BY_NAME8, name)};
constexpr DELETE_ROW del_port{DELETES(NAP_DELETE_PORT, DELETE_BY_NAME8, name)};
constexpr DELETE_ROW del_ls{DELETES(NAP_DELETE_LS, DELETE_BY_NAME8, name)};
constexpr DELETE_ROW del_cn{DELETES(NAP_DELETE_CN, DELETE_CN, cn_name)};
constexpr DELETE_ROW del_internal_pu{DELETES(NAP_DELETE_INTERNAL_PU, DELETE_BY_NAME8, name)};
constexpr DELETE_ROW del_lu62{DELETES(NAP_DELETE_LOCAL_LU, DELETE_BY_NAME8, name)};
constexpr DELETE_ROW del_lu03{DELETES(NAP_DELETE_LU_0_TO_3, DELETE_BY_NAME8, name)};
constexpr DELETE_ROW del_down_lu{DELETES(NAP_DELETE_DOWNSTREAM_LU, DELETE_BY_NAME8, name)};
constexpr DELETE_ROW del_dspu_template{
    DELETES(NAP_DELETE_DSPU_TEMPLATE, DELETE_DSPU_TEMPLATE, template_name)};
constexpr DELETE_ROW del_lu_pool{DELETES(NAP_DELETE_LU_POOL, DELETE_LU_POOL, pool_name)};
constexpr DELETE_ROW del_mode{DELETES(NAP_DELETE_MODE, DELETE_BY_NAME8, name)};
constexpr DELETE_ROW del_plu{DELETES(NAP_DELETE_PARTNER_LU, DELETE_PARTNER_LU, plu_name)};
constexpr DELETE_ROW del_dir{
    DELETES(NAP_DELETE_DIRECTORY_ENTRY, DELETE_DIRECTORY_ENTRY, resource_name)};
constexpr DELETE_ROW del_ls_routing{DELETES(NAP_DELETE_LS_ROUTING, DELETE_LS_ROUTING, key)};
constexpr DELETE_ROW del_lu62_timeout{NAP_DELETE_LU62_TIMEOUT, sizeof(DELETE_LU62_TIMEOUT),
                                      offsetof(DELETE_LU62_TIMEOUT, resource_type),
                                      sizeof(DELETE_LU62_TIMEOUT::resource_type) +
                                          sizeof(DELETE_LU62_TIMEOUT::resource_name)};
constexpr DELETE_ROW del_tp_def{DELETES(NAP_DELETE_TP, DELETE_TP, tp_name)};
constexpr DELETE_ROW del_tp_load_info{
    NAP_DELETE_TP_LOAD_INFO, sizeof(DELETE_TP_LOAD_INFO), offsetof(DELETE_TP_LOAD_INFO, tp_name),
    sizeof(DELETE_TP_LOAD_INFO::tp_name) + sizeof(DELETE_TP_LOAD_INFO::lu_alias), TO_TP_LOAD_FILE};
constexpr DELETE_ROW del_userid_password{
    DELETES(NAP_DELETE_USERID_PASSWORD, DELETE_USERID_PASSWORD, user_id), TO_NODE, NAP_REMOVE_USER};
constexpr DELETE_ROW del_lu_lu_password{
    DELETES(NAP_DELETE_LU_LU_PASSWORD, DELETE_LU_LU_PASSWORD, key)};
constexpr DELETE_ROW del_security_access_list{
    DELETES(NAP_DELETE_SECURITY_ACCESS_LIST, DELETE_SECURITY_ACCESS_LIST, list_name)};
constexpr DELETE_ROW del_tn_access{DELETES(NAP_DELETE_TN3270_ACCESS, DELETE_TN3270_ACCESS, client)};
constexpr DELETE_ROW del_tn_assoc{
    DELETES(NAP_DELETE_TN3270_ASSOCIATION, DELETE_TN3270_ASSOCIATION, display_lu_name)};
constexpr DELETE_ROW del_tn_redirect{DELETES(NAP_DELETE_TN_REDIRECT, DELETE_TN_REDIRECT, key)};
constexpr DELETE_ROW del_primary_line{
    DELETES(NAP_DELETE_PRIMARY_LINE, DELETE_PRIMARY_LINE, line_name)};
constexpr DELETE_ROW del_primary_lu0{DELETES(NAP_DELETE_PRIMARY_LU0, DELETE_PRIMARY_LU0, lu_name)};
constexpr DELETE_ROW del_extra_data{NAP_DELETE_EXTRA_DATA,
                                    sizeof(DELETE_EXTRA_DATA),
                                    offsetof(DELETE_EXTRA_DATA, name),
                                    sizeof(NB_NAME8E),
                                    TO_NODE,
                                    NOF_EXTRA_DATA_LU_0_TO_3};
constexpr DELETE_ROW del_ipbridge_appcip_defaults{NAP_DELETE_IPBRIDGE_APPCIP_DEFAULTS,
                                                  sizeof(HEADER_ONLY), 0, 0};
constexpr DELETE_ROW del_cpic{
    DELETES(NAP_DELETE_CPIC_SIDE_INFO, DELETE_CPIC_SIDE_INFO, sym_dest_name), TO_DOMAIN};
constexpr DELETE_ROW del_user{DELETES(NAP_DELETE_EMULATOR_USER, DELETE_EMULATOR_USER, user_name),
                              TO_DOMAIN};
constexpr DELETE_ROW del_rje_wkstn{DELETES(NAP_DELETE_RJE_WKSTN, DELETE_RJE_WKSTN, wkstn_name),
                                   TO_DOMAIN};
#undef DELETES

// The zeroed block with opcode and key; null without memory.
template <typename Block = NB_BYTE> Block* make(const DELETE_ROW& row, const void* key) {
    auto* block = vga_new_vcb<NB_BYTE>(row.opcode, row.block_size);
    if (block != nullptr) {
        if (row.kind != 0) {
            std::memcpy(block + KIND_OFFSET, &row.kind, sizeof row.kind);
        }
        if (row.key_length != 0) {
            std::memcpy(block + row.key_offset, key, row.key_length);
        }
    }
    return reinterpret_cast<Block*>(block);
}

// node: whose connection or file it goes to; any for the domain's.
bool send(const DELETE_ROW& row, const vga_node* node, void* block, NB_ULONG corr,
          VGA_CALLBACK callback) {
    const NB_HANDLE target = row.target == TO_DOMAIN ? gvga_system->config_file_handle
                             : row.target == TO_NODE ? node->node_handle
                                                     : node->tp_load_handle;
    if (block != nullptr && !vga_queue_verb(target, block, corr, callback)) {
        vga_free_vcb(block);
        block = nullptr;
    }
    return block != nullptr;
}

bool issue(const DELETE_ROW& row, const vga_node* node, const void* key, NB_ULONG corr,
           VGA_CALLBACK callback) {
    return send(row, node, make(row, key), corr, callback);
}

} // namespace

bool vga_issue_del_dlc(vga_dlc* dlc, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_dlc, dlc->parent, dlc->vcb->dlc_name, corr, callback);
}
bool vga_issue_del_port(vga_port* port, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_port, port->parent->parent, port->vcb->port_name, corr, callback);
}
bool vga_issue_del_ls(vga_ls* ls, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_ls, ls->parent->parent->parent, ls->vcb->ls_name, corr, callback);
}
bool vga_issue_del_cn(vga_cn* cn, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_cn, cn->parent, cn->vcb.cn_name, corr, callback);
}
bool vga_issue_del_internal_pu(vga_pu* pu, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_internal_pu, pu->parent, pu->vcb.pu_name, corr, callback);
}
bool vga_issue_del_lu62(vga_lu62* lu, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_lu62, lu->parent, lu->vcb.lu_name, corr, callback);
}
bool vga_issue_del_lu03(vga_lu03* lu, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_lu03, lu->parent->parent, lu->vcb.lu_name, corr, callback);
}
bool vga_issue_del_down_lu(vga_down_lu* lu, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_down_lu, lu->parent->parent, lu->vcb.dslu_name, corr, callback);
}

bool vga_issue_del_dspu_template(vga_dspu_template* dspu_template, NB_ULONG corr,
                                 VGA_CALLBACK callback) {
    void* block = make(del_dspu_template, dspu_template->vcb.template_name);
    if (block == nullptr) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
    return send(del_dspu_template, dspu_template->parent, block, corr, callback);
}

bool vga_issue_del_lu_pool(vga_pool* pool, std::span<vga_lu03* const> lus, NB_ULONG corr,
                           VGA_CALLBACK callback) {
    const vga_node* node = vga_find_node(pool->node_name);
    if (!VGA_ASSERT(node != nullptr && lus.size() <= NOF_POOL_LUS)) {
        return false;
    }
    auto* block = make<DELETE_LU_POOL>(del_lu_pool, pool->parent->pool_name);
    if (block != nullptr) {
        for (const vga_lu03* lu : lus) {
            vga_copy_name(block->lu_names[block->num_lus++], lu->vcb.lu_name);
        }
    }
    return send(del_lu_pool, node, block, corr, callback);
}

bool vga_issue_del_mode(vga_mode_def* mode, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_mode, mode->parent, mode->vcb.mode_name, corr, callback);
}
bool vga_issue_del_plu(vga_rem_plu* plu, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_plu, plu->parent->parent, plu->key.plu_name, corr, callback);
}

bool vga_issue_del_dir(vga_node* node, const NB_BYTE* fq_name, NB_USHORT resource_type,
                       NB_ULONG corr, VGA_CALLBACK callback) {
    auto* block = make<DELETE_DIRECTORY_ENTRY>(del_dir, fq_name);
    if (block != nullptr) {
        block->resource_type = resource_type;
    }
    return send(del_dir, node, block, corr, callback);
}

bool vga_issue_del_ls_routing(vga_ls_routing* routing, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_ls_routing, routing->parent->parent, &routing->vcb.key, corr, callback);
}
bool vga_issue_del_lu62_timeout(vga_lu62_timeout* timeout, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_lu62_timeout, timeout->parent, &timeout->vcb.resource_type, corr, callback);
}
bool vga_issue_del_tp_def(vga_tp_def* tp, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_tp_def, tp->parent, tp->vcb.tp_name, corr, callback);
}
bool vga_issue_del_tp_load_info(vga_tp_load_info* tp, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_tp_load_info, tp->parent, tp->vcb->tp_name, corr, callback);
}
bool vga_issue_del_userid_password(vga_userid_password* userid, NB_ULONG corr,
                                   VGA_CALLBACK callback) {
    return issue(del_userid_password, userid->parent, userid->vcb.user_id, corr, callback);
}
bool vga_issue_del_lu_lu_password(vga_lu_lu_password* password, NB_ULONG corr,
                                  VGA_CALLBACK callback) {
    return issue(del_lu_lu_password, password->parent, &password->vcb.key, corr, callback);
}
bool vga_issue_del_security_access_list(vga_security_access_list* list, NB_ULONG corr,
                                        VGA_CALLBACK callback) {
    return issue(del_security_access_list, list->parent, list->vcb.list_name, corr, callback);
}

bool vga_issue_del_tn_access(vga_tn_client* client, vga_tn_sess* session, NB_ULONG corr,
                             VGA_CALLBACK callback) {
    auto* block = make<DELETE_TN3270_ACCESS>(del_tn_access, &client->vcb.client);
    if (block != nullptr && session != nullptr) {
        block->num_sessions = 1;
        block->sessions[0].port = session->vcb.port;
    }
    return send(del_tn_access, client->parent, block, corr, callback);
}

bool vga_issue_del_tn_assoc(vga_tn_assoc* assoc, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_tn_assoc, assoc->parent, assoc->vcb.display_lu_name, corr, callback);
}
bool vga_issue_del_tn_redirect(vga_tn_redirect* redirect, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_tn_redirect, redirect->parent, &redirect->vcb.key, corr, callback);
}
bool vga_issue_del_primary_line(vga_primary_line* line, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_primary_line, line->parent, line->vcb.line_name, corr, callback);
}
bool vga_issue_del_primary_lu0(vga_primary_lu0* lu, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_primary_lu0, lu->parent->parent, lu->vcb.lu_name, corr, callback);
}
bool vga_issue_del_extra_data(vga_lu03* lu, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_extra_data, lu->parent->parent, lu->vcb.lu_name, corr, callback);
}
bool vga_issue_del_ipbridge_appcip_defaults(vga_node* node, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_ipbridge_appcip_defaults, node, nullptr, corr, callback);
}
bool vga_issue_del_cpic(vga_cpic* cpic, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_cpic, nullptr, cpic->vcb.sym_dest_name, corr, callback);
}

bool vga_issue_del_user(vga_user* user, vga_user_sess* session, NB_ULONG corr,
                        VGA_CALLBACK callback) {
    auto* block = make<DELETE_EMULATOR_USER>(del_user, user->vcb.user_name);
    if (block != nullptr && session != nullptr) {
        block->num_sessions = 1;
        vga_copy_name(block->session_names[0], session->vcb.session_name);
    }
    return send(del_user, nullptr, block, corr, callback);
}

bool vga_issue_del_rje_wkstn(vga_rje_wkstn* wkstn, NB_ULONG corr, VGA_CALLBACK callback) {
    return issue(del_rje_wkstn, nullptr, wkstn->vcb.wkstn_name, corr, callback);
}
