// Transaction programs, and who may use them: user IDs, access lists, passwords between LUs.
#include "nof/security.h"
#include "nof/tp.h"
#include "verbs/config_kind.h"

namespace {

constexpr NB_NAME8E null_name{};

constexpr vga_listing tp_listing{vga_flag(VGA_NODE_TP_DEFS)};
constexpr vga_listing tp_load_listing{vga_flag(VGA_NODE_TP_LOAD_INFOS)};
constexpr vga_listing userid_listing{vga_flag(VGA_NODE_USERIDS)};
constexpr vga_listing access_listing{vga_flag(VGA_NODE_ACCESS_LISTS)};
constexpr vga_listing lu62_listing{vga_flag(VGA_NODE_LU62S), VGA_CHECK_LOCAL_LU};

vga_userid_password* insert_userid(vga_userid_password* userid, vga_node* node) {
    return vga_insert_vga_userid_password(userid, node);
}

constexpr vga_define_row<vga_node, vga_tp_def, TP_DEF_ENTRY, DEFINE_TP> tp_define{
    VGA_VERB(NAP_DEFINE_TP), offsetof(DEFINE_TP, tp_name), offsetof(TP_DEF_ENTRY, tp_name),
    vga_init_vga_tp_def, vga_insert_vga_tp_def};
constexpr vga_delete_row<vga_node, vga_tp_def, DELETE_TP> tp_delete{
    VGA_VERB(NAP_DELETE_TP),
    offsetof(DELETE_TP, tp_name),
    &vga_node::tp_def_tree,
    vga_delete_vga_tp_def,
    {77, true, sizeof(NB_TP_NAME), tp_listing}};

constexpr vga_delete_row<vga_node, vga_tp_load_info, DELETE_TP_LOAD_INFO> tp_load_delete{
    VGA_VERB(NAP_DELETE_TP_LOAD_INFO),
    offsetof(DELETE_TP_LOAD_INFO, tp_name),
    &vga_node::tp_load_tree,
    vga_delete_vga_tp_load_info,
    {82, true, sizeof(NB_TP_NAME), tp_load_listing}};

constexpr vga_define_row<vga_node, vga_security_access_list, SECURITY_ACCESS_LIST_ENTRY,
                         DEFINE_SECURITY_ACCESS_LIST>
    access_list_define{VGA_VERB(NAP_DEFINE_SECURITY_ACCESS_LIST),
                       offsetof(DEFINE_SECURITY_ACCESS_LIST, list_name),
                       offsetof(SECURITY_ACCESS_LIST_ENTRY, list_name),
                       vga_init_vga_security_access_list, vga_insert_vga_security_access_list};

constexpr vga_absent unknown_userid{58, true, sizeof(NB_USER_ID), userid_listing};
constexpr vga_absent unknown_access_list{76, false, 14, access_listing};
constexpr vga_absent unknown_access_user{79, false, 10, access_listing};

// The local LU that a block names: by its name, by its alias when the name is null, and that of the
// control point when both are.
vga_lu62* find_lu62(const vga_node* node, const LU_LU_PASSWORD_KEY& key) {
    if (std::memcmp(key.lu_name, null_name, sizeof null_name) != 0) {
        return vga_status_find<vga_lu62>(node->lu62_tree, key.lu_name);
    }
    if (std::memcmp(key.lu_alias, null_name, sizeof null_name) != 0) {
        return vga_status_find<vga_lu62>(node->lu62_alias_tree, key.lu_alias);
    }
    return node->cp_lu;
}

// Takes profiles out of a user ID; those it does not have are passed over.
void remove_profiles(USERID_PASSWORD_DEF* def, const DELETE_USERID_PASSWORD& block) {
    const auto listed = [&block](const NB_PROFILE& profile) {
        const auto* end = block.profiles + std::min<int>(block.num_profiles, NOF_USER_PROFILES);
        return std::any_of(block.profiles, end, [&profile](const NB_PROFILE& other) {
            return std::memcmp(profile, other, sizeof other) == 0;
        });
    };
    const int count = std::min<int>(def->num_profiles, NOF_USER_PROFILES);
    int kept = 0;
    for (int i = 0; i < count; ++i) {
        if (!listed(def->profiles[i])) {
            std::memmove(def->profiles[kept++], def->profiles[i], sizeof(NB_PROFILE));
        }
    }
    std::memset(def->profiles + kept, 0, (NOF_USER_PROFILES - kept) * sizeof(NB_PROFILE));
    def->num_profiles = static_cast<NB_USHORT>(kept);
}

} // namespace

// ---- transaction programs ----

void vga_process_def_tp(VGA_COMPLETION* completion, vga_node* node, vga_tp_def** record) {
    vga_give(record, vga_define(completion, node, tp_define));
}

void vga_process_del_tp(VGA_COMPLETION* completion, vga_node* node) {
    vga_delete(completion, node, tp_delete);
}

void vga_process_def_tp_load_info(VGA_COMPLETION* completion, vga_node* node,
                                  vga_tp_load_info** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_TP_LOAD_INFO, completion, NAP_DEFINE_TP_LOAD_INFO);
    vga_give<vga_tp_load_info>(record, nullptr);
    const auto fixed = vga_entry_from<TP_LOAD_INFO_ENTRY>(
        block, offsetof(DEFINE_TP_LOAD_INFO, tp_name), offsetof(TP_LOAD_INFO_ENTRY, tp_name));
    const std::size_t ltv_length =
        std::min<std::size_t>(block.def_data.ltv_length, 0xFFFC - sizeof fixed);
    const std::size_t length = (sizeof fixed + ltv_length + 3) / 4 * 4; // as entries are listed
    auto* entry = vga_new<TP_LOAD_INFO_ENTRY>(length);
    if (entry == nullptr) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return;
    }
    *entry = fixed;
    entry->length = static_cast<NB_USHORT>(length);
    entry->def_data.ltv_length = static_cast<NB_USHORT>(ltv_length);
    std::memcpy(nof_tail(entry), nof_tail(&block), ltv_length);
    vga_give(record,
             vga_add_entry(node, *entry, vga_init_vga_tp_load_info, vga_insert_vga_tp_load_info));
    vga_free(entry);
}

void vga_process_del_tp_load_info(VGA_COMPLETION* completion, vga_node* node) {
    vga_delete(completion, node, tp_load_delete);
}

// ---- user IDs ----

void vga_process_def_userid_password(VGA_COMPLETION* completion, vga_node* node,
                                     vga_userid_password** record) {
    const auto& block =
        VGA_CONFIG_BLOCK(DEFINE_USERID_PASSWORD, completion, NAP_DEFINE_USERID_PASSWORD);
    auto entry = vga_new_entry<USERID_PASSWORD_ENTRY>();
    vga_copy_name(entry.user_id, block.user_id);
    entry.def = block.def;
    vga_give(record, vga_add_entry(node, entry, vga_init_vga_userid_password, insert_userid));
}

void vga_process_del_userid_password(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block =
        VGA_CONFIG_BLOCK(DELETE_USERID_PASSWORD, completion, NAP_DELETE_USERID_PASSWORD);
    auto* userid = vga_status_find<vga_userid_password>(node->userid_tree, block.user_id);
    if (userid == nullptr) {
        vga_log_absent(node, unknown_userid, block.header.opcode, block.user_id);
    } else if (block.delete_type == NAP_REMOVE_PROFILES) {
        remove_profiles(&userid->vcb.def, block);
        vga_update_viewer(&node->userid_root, &userid->viewer);
    } else {
        VGA_ASSERT(block.delete_type == NAP_REMOVE_USER);
        vga_delete_vga_userid_password(userid, true);
    }
}

// ---- access lists ----

void vga_process_def_security_access_list(VGA_COMPLETION* completion, vga_node* node,
                                          vga_security_access_list** record) {
    auto* list = vga_define(completion, node, access_list_define);
    vga_give(record, list);
    if (list != nullptr) {
        const auto& block = *static_cast<const DEFINE_SECURITY_ACCESS_LIST*>(completion->vcb);
        vga_define_members(list, nof_tail(&block), block.def.num_users,
                           vga_init_vga_security_access_user, vga_insert_vga_security_access_user);
    }
}

void vga_process_del_security_access_list(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block =
        VGA_CONFIG_BLOCK(DELETE_SECURITY_ACCESS_LIST, completion, NAP_DELETE_SECURITY_ACCESS_LIST);
    auto* list = vga_status_find<vga_security_access_list>(node->access_list_tree, block.list_name);
    if (list == nullptr) {
        vga_log_absent(node, unknown_access_list, block.header.opcode, block.list_name);
        return;
    }
    if (block.num_users == 0) {
        vga_delete_vga_security_access_list(list, true);
        return;
    }
    const NB_BYTE* name = nof_tail(&block);
    for (NB_ULONG i = 0; i < block.num_users; ++i, name += sizeof(ACCESS_LIST_USER::user_id)) {
        auto* user = vga_status_find<vga_security_access_user>(list->user_tree, name);
        if (user != nullptr) {
            vga_delete_vga_security_access_user(user);
        } else {
            vga_log_absent(node, unknown_access_user, block.header.opcode, name);
        }
    }
}

// ---- passwords between LUs ----

void vga_process_def_lu_lu_password(VGA_COMPLETION* completion, vga_node* node,
                                    vga_lu_lu_password** record) {
    const auto& block =
        VGA_CONFIG_BLOCK(DEFINE_LU_LU_PASSWORD, completion, NAP_DEFINE_LU_LU_PASSWORD);
    vga_give<vga_lu_lu_password>(record, nullptr);
    if (vga_lu62* lu = find_lu62(node, block.key); lu != nullptr) {
        const auto entry = vga_entry_from<LU_LU_PASSWORD_ENTRY>(
            block, offsetof(DEFINE_LU_LU_PASSWORD, key), offsetof(LU_LU_PASSWORD_ENTRY, key));
        vga_give(record, vga_add_entry(lu, entry, vga_init_vga_lu_lu_password,
                                       vga_insert_vga_lu_lu_password));
    } else if (!vga_is_being_listed(node, lu62_listing) && !nba_exceptions_suppressed()) {
        nba_pd_print_exception(0x40020004, 59, "x es ca", int{block.header.opcode}, 8,
                               block.key.lu_name, 8, block.key.lu_alias);
    }
}

void vga_process_del_lu_lu_password(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block =
        VGA_CONFIG_BLOCK(DELETE_LU_LU_PASSWORD, completion, NAP_DELETE_LU_LU_PASSWORD);
    const vga_lu62* lu = find_lu62(node, block.key);
    if (lu == nullptr) {
        vga_log_absent_ebcdic(node, lu62_listing, 60, block.header.opcode, block.key.lu_name);
        return;
    }
    if (auto* password = vga_find_lu_lu_password(lu, block.key.plu_name); password != nullptr) {
        vga_delete_vga_lu_lu_password(password, true);
        return;
    }
    // Without the LU's name the block is about whatever the control point's LU has by now: only
    // while its passwords are still to come is a miss worth a note.
    const bool to_be_listed = (lu->startup_status & VGA_PASSWORD_LIST) != 0;
    const bool unnamed = std::memcmp(block.key.lu_name, null_name, sizeof null_name) == 0;
    if (to_be_listed == unnamed) {
        vga_log_unknown_ebcdic(61, block.header.opcode, block.key.plu_name, sizeof(NB_FQNAME));
    }
}
