// The only file of the framework that knows the windows and dialogs.
#include "ui/framework/dialog_table.h"

#include "dialogs/cpic.h"
#include "dialogs/node_config.h"
#include "dialogs/start_stop.h"
#include "ui/windows/about.h"
#include "ui/windows/cpic_window.h"
#include "ui/windows/node_window.h"
#include "ui/windows/system_window.h"

namespace {

// A dialog whose module does not exist yet.
constexpr VGA_UID_DESC row(NB_USHORT dialog_id, const char* uid_name, NB_ULONG kind) {
    VGA_UID_DESC desc{};
    desc.dialog_id = dialog_id;
    desc.uid_name = uid_name;
    desc.kind = kind;
    return desc;
}

// A sub-dialog that only shows something.
template <typename Dialog>
constexpr VGA_UID_DESC view(NB_USHORT dialog_id, const char* uid_name,
                            bool (*get_widgets)(vga_dialog*)) {
    VGA_UID_DESC desc = row(dialog_id, uid_name, VGA_KIND_SUB_DIALOG);
    desc.get_widgets = get_widgets;
    desc.size = sizeof(Dialog);
    return desc;
}

// A dialog with a field table.
template <typename Dialog, std::size_t callback_count>
constexpr VGA_UID_DESC form(NB_USHORT dialog_id, const char* uid_name, NB_ULONG kind,
                            bool (*get_widgets)(vga_dialog*), bool (*close_proc)(vga_dialog*, bool),
                            const VGA_NAMED_CALLBACK (&callbacks)[callback_count],
                            void (*open)(vga_dialog*, void*, VGA_OPEN) = nullptr) {
    VGA_UID_DESC desc = row(dialog_id, uid_name, kind);
    desc.get_widgets = get_widgets;
    desc.close_proc = close_proc;
    desc.callbacks = callbacks;
    desc.callback_count = callback_count;
    desc.size = sizeof(Dialog);
    desc.open = open;
    return desc;
}

} // namespace

constexpr std::array<VGA_UID_DESC, VGA_UID_MAX + 1> gvga_uid_desc = {{
    {VGA_UID_SYSTEM_WINDOW, "sysw", vga_get_widgets_system_window, vga_sysw_close_proc, nullptr,
     vga_sysw_zoom, nullptr, gvga_sysw_callbacks, gvga_sysw_callback_count, gvga_sysw_actions,
     gvga_sysw_action_count, VGA_KIND_WINDOW, sizeof(vga_system_window), vga_sysw_focus_widget},
    {VGA_UID_NODE_WINDOW, "nodew", vga_get_widgets_node_window, vga_nodew_close_proc,
     vga_nodew_delete, vga_nodew_zoom, vga_nodew_add_items, gvga_nodew_callbacks,
     gvga_nodew_callback_count, gvga_nodew_actions, gvga_nodew_action_count, VGA_KIND_WINDOW,
     sizeof(vga_node_window), vga_nodew_focus_widget},
    row(VGA_UID_LU62_DIALOG, "lu62d", VGA_KIND_DIALOG),
    form<vga_node_dialog>(VGA_UID_NODE_DIALOG, "noded", VGA_KIND_DIALOG, vga_get_widgets_node_conf,
                          vga_noded_close_proc, gvga_noded_callbacks, vga_open_node_dialog),
    row(VGA_UID_LLC2_PORT_DIALOG, "llc2p", VGA_KIND_DIALOG),
    row(VGA_UID_LLC2_LS_DIALOG, "llc2l", VGA_KIND_DIALOG),
    row(VGA_UID_LU03_DIALOG, "lu32d", VGA_KIND_DIALOG),
    row(VGA_UID_USER_DIALOG, "userd", VGA_KIND_DIALOG),
    row(VGA_UID_PLU_DEF_DIALOG, "plud", VGA_KIND_DIALOG),
    row(VGA_UID_REMOTE_NODE_DIALOG, "remnd", VGA_KIND_DIALOG),
    row(VGA_UID_USER_WINDOW, "userw", VGA_KIND_WINDOW),
    row(VGA_UID_SDLC_PORT_DIALOG, "sdlcp", VGA_KIND_DIALOG),
    row(VGA_UID_SDLC_LS_DIALOG, "sdlcl", VGA_KIND_DIALOG),
    row(VGA_UID_POOL_WINDOW, "poolw", VGA_KIND_WINDOW),
    row(VGA_UID_POOL_DIALOG, "poold", VGA_KIND_DIALOG),
    row(VGA_UID_DSLU_DIALOG, "dslud", VGA_KIND_DIALOG),
    {VGA_UID_CPIC_WINDOW, "cpicw", vga_get_widgets_cpic_window, vga_cpicw_close_proc,
     vga_cpicw_delete, vga_cpicw_modify, vga_cpicw_add, gvga_cpicw_callbacks,
     std::size(gvga_cpicw_callbacks), gvga_cpicw_actions, std::size(gvga_cpicw_actions),
     VGA_KIND_WINDOW, sizeof(vga_list_window), vga_list_focus_widget, vga_open_cpic_window},
    form<vga_cpic_dialog>(VGA_UID_CPIC_DIALOG, "cpicd", VGA_KIND_DIALOG, vga_get_widgets_cpic,
                          vga_cpicd_close_proc, gvga_cpicd_callbacks, vga_open_cpic_dialog),
    row(VGA_UID_MODE_WINDOW, "modew", VGA_KIND_DIALOG),
    row(VGA_UID_MODE_DIALOG, "moded", VGA_KIND_DIALOG),
    row(VGA_UID_RJEW_WINDOW, "rjeww", VGA_KIND_WINDOW),
    row(VGA_UID_RJEW_DIALOG, "rjewd", VGA_KIND_DIALOG),
    row(VGA_UID_PU_DIALOG, "inpud", VGA_KIND_DIALOG),
    row(VGA_UID_LOG_DIALOG, "logd", VGA_KIND_DIALOG),
    row(VGA_UID_TRACE_DIALOG, "trcd", VGA_KIND_DIALOG),
    row(VGA_UID_QLLC_PORT_DIALOG, "qllcp", VGA_KIND_DIALOG),
    row(VGA_UID_QLLC_LS_DIALOG, "qllcl", VGA_KIND_DIALOG),
    row(VGA_UID_NODE_CONTEXT_ADD_DIALOG, "nctxd", VGA_KIND_DIALOG),
    row(VGA_UID_REM_SYS_CTX_ADD_DIALOG, "rctxd", VGA_KIND_DIALOG),
    row(VGA_UID_3270_SESS_DIALOG, "ss32d", VGA_KIND_DIALOG),
    row(VGA_UID_5250_SESS_DIALOG, "ss52d", VGA_KIND_DIALOG),
    row(VGA_UID_USERS_CTX_ADD_DIALOG, "uctxd", VGA_KIND_DIALOG),
    row(VGA_UID_QLLC_PORT_ADV_DIALOG, "qadvp", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_LLC2_PORT_ADV_DIALOG, "ladvp", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_SDLC_PORT_ADV_DIALOG, "sadvp", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_SDLC_LS_ADV_DIALOG, "sadvl", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_LLC2_LS_ADV_DIALOG, "ladvl", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_QLLC_LS_ADV_DIALOG, "qadvl", VGA_KIND_SUB_DIALOG),
    view<vga_start_help_dialog>(VGA_UID_START_HELP_DIALOG, "shlpd", vga_get_widgets_start_help),
    row(VGA_UID_USER_STATUS_DIALOG, "ustad", VGA_KIND_DIALOG),
    row(VGA_UID_TN_WINDOW, "tnw", VGA_KIND_WINDOW),
    row(VGA_UID_TN_DIALOG, "tnd", VGA_KIND_DIALOG),
    row(VGA_UID_SESS_LIMIT_DIALOG, "mdsls", VGA_KIND_DIALOG),
    row(VGA_UID_CL_SECURITY_WINDOW, "clscw", VGA_KIND_WINDOW),
    row(VGA_UID_CL_SECURITY_DIALOG, "clscd", VGA_KIND_DIALOG),
    row(VGA_UID_SL_SECURITY_WINDOW, "slscw", VGA_KIND_DIALOG),
    row(VGA_UID_SL_SECURITY_DIALOG, "slscd", VGA_KIND_DIALOG),
    view<vga_about_box>(VGA_UID_ABOUT_BOX, "about", vga_get_widgets_about),
    row(VGA_UID_POOL_CTX_ADD_DIALOG, "pctxd", VGA_KIND_DIALOG),
    form<vga_ls_choice_dialog>(VGA_UID_STOP_LS_DIALOG, "stopl", VGA_KIND_SUB_DIALOG,
                               vga_stopl_get_widgets, vga_stopl_close_proc, gvga_stopl_callbacks),
    form<vga_ls_choice_dialog>(VGA_UID_START_LS_DIALOG, "strtl", VGA_KIND_SUB_DIALOG,
                               vga_strtl_get_widgets, vga_strtl_close_proc, gvga_strtl_callbacks),
    row(VGA_UID_LEAD_DIALOG, "leadd", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_PORT_DET_DIALOG, "ports", VGA_KIND_DIALOG),
    row(VGA_UID_LINK_DET_DIALOG, "links", VGA_KIND_DIALOG),
    row(VGA_UID_LU62_ADV_DIALOG, "lu62a", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_LU32_ADV_DIALOG, "lu32a", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_CHNL_PORT_DIALOG, "chnlp", VGA_KIND_DIALOG),
    row(VGA_UID_CHNL_LS_DIALOG, "chnll", VGA_KIND_DIALOG),
    row(VGA_UID_CHNL_PORT_ADV_DIALOG, "cadvp", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_CHNL_LS_ADV_DIALOG, "cadvl", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_TN_ASSOC_DIALOG, "tnasd", VGA_KIND_DIALOG),
    row(VGA_UID_TN_DEFAULTS_DIALOG, "tndfd", VGA_KIND_DIALOG),
    form<vga_node_adv_dialog>(VGA_UID_NODE_ADV_DIALOG, "nodea", VGA_KIND_SUB_DIALOG,
                              vga_get_widgets_node_adv, vga_nodea_close_proc, gvga_nodea_callbacks),
    row(VGA_UID_HPR_WINDOW, "hprw", VGA_KIND_WINDOW),
    row(VGA_UID_RTP_CONN_STATUS_DIALOG, "rtpd", VGA_KIND_DIALOG),
    row(VGA_UID_LS_ROUTING_DIALOG, "lsrd", VGA_KIND_DIALOG),
    row(VGA_UID_IPBRIDGE_WINDOW, "ipbw", VGA_KIND_WINDOW),
    row(VGA_UID_IPBRIDGE_APPCIP_DIALOG, "apdfd", VGA_KIND_DIALOG),
    row(VGA_UID_DSLUP_DIALOG, "dslup", VGA_KIND_DIALOG),
    row(VGA_UID_LULI_DIALOG, "lulid", VGA_KIND_DIALOG),
    row(VGA_UID_LULI_ADV_DIALOG, "lulia", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_LULU_DIALOG, "lulud", VGA_KIND_DIALOG),
    row(VGA_UID_LULU_ADV_DIALOG, "lulua", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_SALD_DIALOG, "sald", VGA_KIND_DIALOG),
    row(VGA_UID_TP_WINDOW, "tpw", VGA_KIND_WINDOW),
    row(VGA_UID_TP_DIALOG, "tpd", VGA_KIND_DIALOG),
    row(VGA_UID_TP_LOAD_DIALOG, "tpld", VGA_KIND_DIALOG),
    row(VGA_UID_ACTIVATE_SESS_DIALOG, "actsd", VGA_KIND_DIALOG),
    row(VGA_UID_TN_REDIRECT_DIALOG, "tnrdd", VGA_KIND_DIALOG),
    row(VGA_UID_IP_PORT_DIALOG, "ipp", VGA_KIND_DIALOG),
    row(VGA_UID_IP_PORT_ADV_DIALOG, "iadvp", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_IP_LS_DIALOG, "ipl", VGA_KIND_DIALOG),
    row(VGA_UID_IP_LS_ADV_DIALOG, "iadvl", VGA_KIND_SUB_DIALOG),
    row(VGA_UID_TN_SLP_DIALOG, "tnslp", VGA_KIND_DIALOG),
    row(VGA_UID_TN_SSL_DIALOG, "tnssl", VGA_KIND_DIALOG),
    row(VGA_UID_TN_SLS_DIALOG, "tnsls", VGA_KIND_WINDOW),
    row(VGA_UID_TN_EXL_DIALOG, "tnexl", VGA_KIND_DIALOG),
}};
static_assert(
    [] {
        for (NB_USHORT id = 0; id <= VGA_UID_MAX; ++id) {
            if (gvga_uid_desc[id].dialog_id != id) {
                return false;
            }
        }
        return true;
    }(),
    "the table is indexed by identifier");

void vga_show_node_window(vga_node* node) {
    vga_display_node_window(node, true);
}
