// The entries of configuration indications: which processor has which verb.
#include "shell/globals.h"
#include "verbs/config_util.h"

#include <array>
#include <iterator>
#include <type_traits>

namespace {

// Calls a processor without asking for the record.
template <auto Process, typename Owner> void run(VGA_COMPLETION* completion, Owner* owner) {
    if constexpr (std::is_invocable_v<decltype(Process), VGA_COMPLETION*, Owner*>) {
        Process(completion, owner);
    } else if constexpr (std::is_invocable_v<decltype(Process), VGA_COMPLETION*, Owner*,
                                             std::nullptr_t>) {
        Process(completion, owner, nullptr);
    } else {
        Process(completion, owner, nullptr, nullptr);
    }
}

template <typename Owner> struct VERB_ROW {
    NB_USHORT opcode;
    void (*process)(VGA_COMPLETION* completion, Owner* owner);
};

template <auto Process> constexpr VERB_ROW<vga_node> of_node(NB_USHORT opcode) {
    return {opcode, run<Process, vga_node>};
}
template <auto Process> constexpr VERB_ROW<vga_system> of_system(NB_USHORT opcode) {
    return {opcode, run<Process, vga_system>};
}

constexpr VERB_ROW<vga_node> node_verbs[] = {
    of_node<vga_process_def_defaults>(NAP_DEFINE_DEFAULTS),
    of_node<vga_process_def_lu62>(NAP_DEFINE_LOCAL_LU),
    of_node<vga_process_def_tp>(NAP_DEFINE_TP),
    of_node<vga_process_del_tp>(NAP_DELETE_TP),
    of_node<vga_process_def_plu>(NAP_DEFINE_PARTNER_LU),
    of_node<vga_process_def_mode>(NAP_DEFINE_MODE),
    of_node<vga_process_del_plu>(NAP_DELETE_PARTNER_LU),
    of_node<vga_process_del_mode>(NAP_DELETE_MODE),
    of_node<vga_process_del_lu62>(NAP_DELETE_LOCAL_LU),
    of_node<vga_process_def_userid_password>(NAP_DEFINE_USERID_PASSWORD),
    of_node<vga_process_del_userid_password>(NAP_DELETE_USERID_PASSWORD),
    of_node<vga_process_def_lu_lu_password>(NAP_DEFINE_LU_LU_PASSWORD),
    of_node<vga_process_del_lu_lu_password>(NAP_DELETE_LU_LU_PASSWORD),
    of_node<vga_process_def_lu62_timeout>(NAP_DEFINE_LU62_TIMEOUT),
    of_node<vga_process_del_lu62_timeout>(NAP_DELETE_LU62_TIMEOUT),
    of_node<vga_process_def_cn>(NAP_DEFINE_CN),
    of_node<vga_process_def_dlc>(NAP_DEFINE_DLC),
    of_node<vga_process_def_ls>(NAP_DEFINE_LS),
    of_node<vga_process_def_port>(NAP_DEFINE_PORT),
    of_node<vga_process_del_cn>(NAP_DELETE_CN),
    of_node<vga_process_del_dlc>(NAP_DELETE_DLC),
    of_node<vga_process_del_ls>(NAP_DELETE_LS),
    of_node<vga_process_del_port>(NAP_DELETE_PORT),
    of_node<vga_process_def_ls_routing>(NAP_DEFINE_LS_ROUTING),
    of_node<vga_process_del_ls_routing>(NAP_DELETE_LS_ROUTING),
    of_node<vga_process_def_dir>(NAP_DEFINE_DIRECTORY_ENTRY),
    of_node<vga_process_del_dir>(NAP_DELETE_DIRECTORY_ENTRY),
    of_node<vga_process_def_cos>(NAP_DEFINE_COS),
    of_node<vga_process_del_cos>(NAP_DELETE_COS),
    of_node<vga_process_def_adj_len_node>(NAP_DEFINE_ADJACENT_LEN_NODE),
    of_node<vga_process_del_adj_len_node>(NAP_DELETE_ADJACENT_LEN_NODE),
    of_node<vga_process_def_adj_node>(NAP_DEFINE_ADJACENT_NODE),
    of_node<vga_process_del_adj_node>(NAP_DELETE_ADJACENT_NODE),
    of_node<vga_process_def_lu03>(NAP_DEFINE_LU_0_TO_3),
    of_node<vga_process_def_lu03_range>(NAP_DEFINE_LU_0_TO_3_RANGE),
    of_node<vga_process_del_lu03>(NAP_DELETE_LU_0_TO_3),
    of_node<vga_process_del_lu03_range>(NAP_DELETE_LU_0_TO_3_RANGE),
    of_node<vga_process_def_lu_pool>(NAP_DEFINE_LU_POOL),
    of_node<vga_process_del_lu_pool>(NAP_DELETE_LU_POOL),
    of_node<vga_process_def_down_lu>(NAP_DEFINE_DOWNSTREAM_LU),
    of_node<vga_process_def_down_lu_range>(NAP_DEFINE_DOWNSTREAM_LU_RANGE),
    of_node<vga_process_del_down_lu>(NAP_DELETE_DOWNSTREAM_LU),
    of_node<vga_process_del_down_lu_range>(NAP_DELETE_DOWNSTREAM_LU_RANGE),
    of_node<vga_process_def_dspu_template>(NAP_DEFINE_DSPU_TEMPLATE),
    of_node<vga_process_del_dspu_template>(NAP_DELETE_DSPU_TEMPLATE),
    of_node<vga_process_def_pu>(NAP_DEFINE_INTERNAL_PU),
    of_node<vga_process_del_internal_pu>(NAP_DELETE_INTERNAL_PU),
    of_node<vga_process_add_dlc_trace>(NAP_ADD_DLC_TRACE),
    of_node<vga_process_remove_dlc_trace>(NAP_REMOVE_DLC_TRACE),
    of_node<vga_process_set_trace_type>(NAP_SET_TRACE_TYPE),
    of_node<vga_process_def_extra_data>(NAP_DEFINE_EXTRA_DATA),
    of_node<vga_process_del_extra_data>(NAP_DELETE_EXTRA_DATA),
    of_node<vga_process_set_cs_trace>(NAP_SET_CS_TRACE),
    of_node<vga_process_def_tn_exl>(NAP_DEFINE_TN3270_EXPRESS_LOGON),
    of_node<vga_process_def_tn_access>(NAP_DEFINE_TN3270_ACCESS),
    of_node<vga_process_del_tn_access>(NAP_DELETE_TN3270_ACCESS),
    of_node<vga_process_set_tns_trace>(NAP_SET_TN_SERVER_TRACE),
    of_node<vga_process_def_tn_assoc>(NAP_DEFINE_TN3270_ASSOCIATION),
    of_node<vga_process_del_tn_assoc>(NAP_DELETE_TN3270_ASSOCIATION),
    of_node<vga_process_def_tn_defaults>(NAP_DEFINE_TN3270_DEFAULTS),
    of_node<vga_process_def_tn_ssl_ldap>(NAP_DEFINE_TN3270_SSL_LDAP),
    of_node<vga_process_def_tn_redirect>(NAP_DEFINE_TN_REDIRECT),
    of_node<vga_process_del_tn_redirect>(NAP_DELETE_TN_REDIRECT),
    of_node<vga_process_set_back_cs_trace>(NAP_SET_BCK_CS_TRACE),
    of_node<vga_process_def_primary_line>(NAP_DEFINE_PRIMARY_LINE),
    of_node<vga_process_del_primary_line>(NAP_DELETE_PRIMARY_LINE),
    of_node<vga_process_def_primary_lu0>(NAP_DEFINE_PRIMARY_LU0),
    of_node<vga_process_del_primary_lu0>(NAP_DELETE_PRIMARY_LU0),
    of_node<vga_process_def_security_access_list>(NAP_DEFINE_SECURITY_ACCESS_LIST),
    of_node<vga_process_del_security_access_list>(NAP_DELETE_SECURITY_ACCESS_LIST),
    of_node<vga_process_def_tp_load_info>(NAP_DEFINE_TP_LOAD_INFO),
    of_node<vga_process_del_tp_load_info>(NAP_DELETE_TP_LOAD_INFO),
    of_node<vga_process_def_tn_slp>(NAP_DEFINE_TN3270_SLP),
    of_node<vga_process_set_tn3270_slp_trace>(NAP_SET_TN3270_SLP_TRACE),
    of_node<vga_process_def_ipbridge_appcip_defaults>(NAP_DEFINE_IPBRIDGE_APPCIP_DEFAULTS),
    of_node<vga_process_del_ipbridge_appcip_defaults>(NAP_DELETE_IPBRIDGE_APPCIP_DEFAULTS),
};
static_assert(std::ranges::is_sorted(node_verbs, {}, &VERB_ROW<vga_node>::opcode));

constexpr VERB_ROW<vga_system> system_verbs[] = {
    of_system<vga_process_def_cpic>(NAP_DEFINE_CPIC_SIDE_INFO),
    of_system<vga_process_del_cpic>(NAP_DELETE_CPIC_SIDE_INFO),
    of_system<vga_process_set_central_logging>(NAP_SET_CENTRAL_LOGGING),
    of_system<vga_process_set_global_log_type>(NAP_SET_GLOBAL_LOG_TYPE),
    of_system<vga_process_def_user>(NAP_DEFINE_EMULATOR_USER),
    of_system<vga_process_del_user>(NAP_DELETE_EMULATOR_USER),
    of_system<vga_process_def_rje_wkstn>(NAP_DEFINE_RJE_WKSTN),
    of_system<vga_process_del_rje_wkstn>(NAP_DELETE_RJE_WKSTN),
    of_system<vga_process_add_backup>(NAP_ADD_BACKUP),
    of_system<vga_process_delete_backup>(NAP_DELETE_BACKUP),
};
static_assert(std::ranges::is_sorted(system_verbs, {}, &VERB_ROW<vga_system>::opcode));

template <typename Owner, std::size_t N>
void dispatch(const VERB_ROW<Owner> (&verbs)[N], VGA_COMPLETION* completion, Owner* owner) {
    const NB_USHORT opcode = vcb_header(completion->vcb)->opcode;
    const auto* row = std::ranges::lower_bound(verbs, opcode, {}, &VERB_ROW<Owner>::opcode);
    const bool known = row != std::end(verbs) && row->opcode == opcode;
    if (VGA_ASSERT_TEXT(known, "FALSE")) {
        row->process(completion, owner);
    }
}

bool is_system_verb(NB_USHORT opcode) {
    return std::ranges::binary_search(system_verbs, opcode, {}, &VERB_ROW<vga_system>::opcode);
}

// The completion of a definition that the store re-issued. node: null when it has gone.
void take_update(VGA_COMPLETION* completion, vga_node* node) {
    if (is_system_verb(vcb_header(completion->vcb)->opcode)) {
        dispatch(system_verbs, completion, gvga_system);
    } else if (node != nullptr) {
        dispatch(node_verbs, completion, node);
    }
}

NB_ULONG owner_of(const VGA_COMPLETION* completion) {
    if (gvga_system == nullptr) {
        return 0;
    }
    if (is_system_verb(vcb_header(completion->vcb)->opcode)) {
        return gvga_system->handle;
    }
    const vga_node* node = vga_find_node_by_handle(completion->handle);
    return node != nullptr ? node->handle : 0;
}

} // namespace

void vga_install_config_handlers() {
    gvga_dispatch.owner = owner_of;
    gvga_dispatch.node_config = vga_process_node_config_ind;
    gvga_dispatch.system_config = vga_process_system_config_ind;
    gvga_store_hooks.definition_done = take_update;
}

void vga_process_node_config_ind(VGA_COMPLETION* completion) {
    vga_node* node = vga_validate_node(completion->corr);
    if (node != nullptr) {
        dispatch(node_verbs, completion, node);
    }
}

void vga_process_system_config_ind(VGA_COMPLETION* completion) {
    if (vcb_header(completion->vcb)->opcode == NAP_DEFINE_NODE) {
        vga_process_def_node(completion);
        return;
    }
    if (gvga_system != nullptr && completion->corr == gvga_system->handle) {
        dispatch(system_verbs, completion, gvga_system);
    }
}
