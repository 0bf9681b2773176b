#include "common/assert.h"
#include "shell/start.h"
#include "ui/framework/common_actions.h"
#include "ui/framework/dialog.h"
#include "ui/framework/field_checks.h"

#include <Mrm/MrmPublic.h>

#include <vector>

namespace {

// Stands for names that only the forms of dialogs without a module refer to.
void unbound_cb(Widget, XtPointer, XtPointer) {
    VGA_ASSERT_TEXT(false, "callback of a dialog without module");
}

} // namespace

const VGA_NAMED_CALLBACK gvga_common_callbacks[VGA_COMMON_CALLBACK_COUNT] = {
    {"vga_close_cb", vga_close_cb},
    {"vga_help_cb", vga_help_cb},
    {"vga_check_ebcdic_cb", vga_check_ebcdic_cb},
    {"vga_check_ebcdic_lower_cb", vga_check_ebcdic_lower_cb},
    {"vga_check_ebcdic_ae_cb", vga_check_ebcdic_ae_cb},
    {"vga_check_ebcdic_ae_pwd_cb", vga_check_ebcdic_ae_pwd_cb},
    {"vga_check_hex_cb", vga_check_hex_cb},
    {"vga_check_hex_pwd_cb", vga_check_hex_pwd_cb},
    {"vga_check_num_cb", vga_check_num_cb},
    {"vga_check_signed_num_cb", vga_check_signed_num_cb},
    {"vga_check_alphanum_cb", vga_check_alphanum_cb},
    {"vga_check_caps_alphanum_cb", vga_check_caps_alphanum_cb},
    {"vga_check_filename_cb", vga_check_filename_cb},
    {"vga_check_pathname_cb", vga_check_pathname_cb},
    {"vga_check_mode_name_cb", vga_check_mode_name_cb},
    {"vga_all_caps_cb", vga_all_caps_cb},
    {"vga_ptdlg_toggle_hpr_support", unbound_cb},
    {"vga_ls_adv_toggle_hpr_support", unbound_cb},
    {"vga_ls_act_menu", unbound_cb},
    {"vga_ls_toggle", unbound_cb},
    {"vga_ls_port_select", unbound_cb},
    {"vga_ls_node_select", unbound_cb},
    {"vga_ls_appn_menu", unbound_cb},
    {"vga_ls_type_menu", unbound_cb},
    {"vga_ls_cp_name_change", unbound_cb},
    {"vga_action_user", vga_action_user},
    {"vga_action_lu_pool", vga_action_lu_pool},
    {"vga_action_cpic", vga_action_cpic},
    {"vga_action_rje", vga_action_rje},
    {"vga_sysw_logging", vga_sysw_logging},
    {"vga_menu_help_contents", vga_menu_help_contents},
    {"vga_menu_help_index", vga_menu_help_index},
    {"vga_menu_help_help", vga_menu_help_help},
    {"vga_menu_help_about", vga_menu_help_about},
    {"vga_menu_help_web", vga_menu_help_web},
    {"vga_raise_sys_window", vga_raise_sys_window},
    {"vga_ls_adv_cp_cp_sess", unbound_cb},
    {"vga_ls_adv_xid_toggle", unbound_cb},
    {"vga_ls_adv_verify_cp_toggle", unbound_cb},
    {"vga_button_push", vga_button_push},
    {"vga_button_pop", vga_button_pop},
    {"vga_ls_port_changed", unbound_cb},
    {"vga_check_ip_addr_cb", vga_check_ip_addr_cb},
    {"vga_check_ip_name_cb", vga_check_ip_name_cb},
    {"vga_check_lu_name_template_cb", vga_check_lu_name_template_cb},
    {"vga_dslu_template_add", unbound_cb},
    {"vga_dslu_template_delete", unbound_cb},
    {"vga_dslu_template_modify", unbound_cb},
    {"vga_dslu_template_copy", unbound_cb},
    {"vga_dslu_template_disarm", unbound_cb},
    {"vga_ptadv_focus", unbound_cb},
    {"vga_check_tp_name_cb", vga_check_tp_name_cb},
};

void vga_register_callbacks(const VGA_NAMED_CALLBACK* callbacks, std::size_t count) {
    std::vector<MRMRegisterArg> names;
    names.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        names.push_back({const_cast<char*>(callbacks[i].name),
                         reinterpret_cast<XtPointer>(callbacks[i].callback)});
    }
    MrmRegisterNames(names.data(), static_cast<MrmCount>(count));
}

void vga_register_common_callbacks() {
    vga_register_callbacks(gvga_common_callbacks, VGA_COMMON_CALLBACK_COUNT);
}
