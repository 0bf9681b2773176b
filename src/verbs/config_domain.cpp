// Definitions of the domain: emulator users with their sessions, CPI-C side information, RJE
// workstations, and the servers of the network file.
#include "nof/node.h"
#include "nof/user.h"
#include "shell/globals.h"
#include "store/tracking.h"
#include "verbs/config_kind.h"

namespace {

constexpr vga_listing user_listing{vga_flag(VGA_SYSTEM_USERS)};

constexpr vga_define_row<vga_system, vga_user, EMULATOR_USER_ENTRY, DEFINE_EMULATOR_USER>
    user_define{VGA_VERB(NAP_DEFINE_EMULATOR_USER), offsetof(DEFINE_EMULATOR_USER, user_name),
                offsetof(EMULATOR_USER_ENTRY, user_name), vga_init_vga_user, vga_insert_vga_user};
constexpr vga_absent unknown_user{30, false, 32, user_listing};
constexpr vga_absent unknown_session{29, false, sizeof(NB_NAME8L), user_listing};

constexpr vga_define_row<vga_system, vga_cpic, CPIC_SIDE_INFO_ENTRY, DEFINE_CPIC_SIDE_INFO>
    cpic_define{VGA_VERB(NAP_DEFINE_CPIC_SIDE_INFO), offsetof(DEFINE_CPIC_SIDE_INFO, sym_dest_name),
                offsetof(CPIC_SIDE_INFO_ENTRY, sym_dest_name), vga_init_vga_cpic,
                vga_insert_vga_cpic};
constexpr vga_delete_row<vga_system, vga_cpic, DELETE_CPIC_SIDE_INFO> cpic_delete{
    VGA_VERB(NAP_DELETE_CPIC_SIDE_INFO),
    offsetof(DELETE_CPIC_SIDE_INFO, sym_dest_name),
    &vga_system::cpic_tree,
    vga_delete_vga_cpic,
    {31, false, sizeof(NB_NAME8L), {vga_flag(VGA_SYSTEM_CPIC)}}};

constexpr vga_define_row<vga_system, vga_rje_wkstn, RJE_WKSTN_ENTRY, DEFINE_RJE_WKSTN> rje_define{
    VGA_VERB(NAP_DEFINE_RJE_WKSTN), offsetof(DEFINE_RJE_WKSTN, wkstn_name),
    offsetof(RJE_WKSTN_ENTRY, wkstn_name), vga_init_vga_rje_wkstn, vga_insert_vga_rje_wkstn};
constexpr vga_delete_row<vga_system, vga_rje_wkstn, DELETE_RJE_WKSTN> rje_delete{
    VGA_VERB(NAP_DELETE_RJE_WKSTN),
    offsetof(DELETE_RJE_WKSTN, wkstn_name),
    &vga_system::rje_tree,
    vga_delete_vga_rje_wkstn,
    {28, false, 4, {vga_flag(VGA_SYSTEM_RJE)}}};

void delete_sessions_of_types(vga_user* user, NB_BYTE types) {
    auto* session = ntl_avl_first<vga_user_sess>(user->session_tree);
    while (session != nullptr) {
        auto* next = static_cast<vga_user_sess*>(ntl_avl_next(&session->node));
        if ((session->vcb.session_type & types) != 0) {
            vga_delete_vga_user_sess(session, true);
        }
        session = next;
    }
}

// Gives the node of a name, when it is in the domain, the role that the network file now says.
void take_server_role(const NB_NODE_NAME& name) {
    if (vga_node* node = vga_find_node(name); node != nullptr) {
        node->server_role = vga_server_role(node);
        vga_redraw_node(node);
    }
    if (gvga_store_hooks.roles_changed != nullptr) {
        gvga_store_hooks.roles_changed();
    }
}

} // namespace

// ---- emulator users ----

void vga_process_def_user(VGA_COMPLETION* completion, vga_system* system, vga_user** record) {
    auto* user = vga_define(completion, system, user_define);
    vga_give(record, user);
    if (user == nullptr) {
        return;
    }
    const auto& block = *static_cast<const DEFINE_EMULATOR_USER*>(completion->vcb);
    vga_define_members(user, nof_tail(&block), block.def.num_sessions, vga_init_vga_user_sess,
                       vga_insert_vga_user_sess);
    if (user->session_count == 0) {
        vga_adopt_user_lus(user);
    }
}

void vga_process_def_user_session(VGA_COMPLETION* completion, vga_system* system,
                                  vga_user_sess** session) {
    vga_user* user;
    vga_process_def_user(completion, system, &user);
    vga_give<vga_user_sess>(session, nullptr);
    const auto& block = *static_cast<const DEFINE_EMULATOR_USER*>(completion->vcb);
    if (user != nullptr && block.def.num_sessions > 0) {
        const NB_BYTE* name = nof_tail(&block) + offsetof(USER_SESSION, session_name);
        vga_give(session, vga_status_find<vga_user_sess>(user->session_tree, name));
    }
}

void vga_process_del_user(VGA_COMPLETION* completion, vga_system* system, vga_user_sess** next) {
    const auto& block =
        VGA_CONFIG_BLOCK(DELETE_EMULATOR_USER, completion, NAP_DELETE_EMULATOR_USER);
    vga_give<vga_user_sess>(next, nullptr);
    auto* user = vga_status_find<vga_user>(system->user_tree, block.user_name);
    if (user == nullptr) {
        vga_log_absent(system, unknown_user, block.header.opcode, block.user_name);
        return;
    }
    if (block.num_sessions == 0) {
        if (block.session_types == 0) {
            vga_delete_vga_user(user, true);
        } else {
            delete_sessions_of_types(user, block.session_types);
        }
        return;
    }
    const auto count = std::min<std::size_t>(block.num_sessions, std::size(block.session_names));
    for (std::size_t i = 0; i < count; ++i) {
        const NB_NAME8L& name = block.session_names[i];
        if (auto* session = vga_status_find<vga_user_sess>(user->session_tree, name);
            session != nullptr) {
            vga_give(next, static_cast<vga_user_sess*>(ntl_avl_next(&session->node)));
            vga_delete_vga_user_sess(session, true);
        } else {
            vga_log_absent(system, unknown_session, block.header.opcode, name);
        }
    }
}

// ---- CPI-C side information, RJE workstations ----

void vga_process_def_cpic(VGA_COMPLETION* completion, vga_system* system, vga_cpic** record) {
    vga_give(record, vga_define(completion, system, cpic_define));
}

void vga_process_del_cpic(VGA_COMPLETION* completion, vga_system* system) {
    vga_delete(completion, system, cpic_delete);
}

void vga_process_def_rje_wkstn(VGA_COMPLETION* completion, vga_system* system,
                               vga_rje_wkstn** record) {
    vga_give(record, vga_define(completion, system, rje_define));
}

void vga_process_del_rje_wkstn(VGA_COMPLETION* completion, vga_system* system) {
    vga_delete(completion, system, rje_delete);
}

// ---- backup servers ----

void vga_process_add_backup(VGA_COMPLETION* completion, vga_system*) {
    const auto& block = vga_config_block<BACKUP_SERVER>(completion, NAP_ADD_BACKUP,
                                                        "add_backup->opcode == NAP_ADD_BACKUP");
    auto entry = vga_new_entry<SNA_NET_ENTRY>();
    vga_copy_name(entry.node_name, block.server_name);
    vga_sna_net_node* server = vga_init_sna_net_node(&entry);
    if (server != nullptr) {
        server = vga_insert_sna_net_node(server);
        take_server_role(server->node_name);
    }
}

void vga_process_delete_backup(VGA_COMPLETION* completion, vga_system* system) {
    const auto& block = vga_config_block<BACKUP_SERVER>(
        completion, NAP_DELETE_BACKUP, "delete_backup->opcode == NAP_DELETE_BACKUP");
    NB_NODE_NAME name;
    vga_copy_node_name(name, block.server_name);
    if (auto* server = vga_status_find<vga_sna_net_node>(system->sna_net_tree, name);
        server != nullptr) {
        vga_delete_sna_net_node(server);
    }
    take_server_role(name);
}
