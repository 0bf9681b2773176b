#include "ui/framework/common_actions.h"

#include "shell/globals.h"
#include "store/records.h"
#include "ui/framework/dialog.h"

namespace {

// Shows a window of the whole domain: the one that is open, or a new one.
void show_domain_window(NB_USHORT dialog_id) {
    if (vga_dialog* dialog = vga_open_instance(dialog_id)) {
        vga_go_to_dialog(dialog);
        return;
    }
    vga_open_dialog(dialog_id, gvga_main_dialog, gvga_system, VGA_OPEN_ADD);
}

void show_if_configured(Widget widget, NB_USHORT dialog_id) {
    if (vga_check_config(vga_dialog_of(widget))) {
        show_domain_window(dialog_id);
    }
}

} // namespace

bool vga_check_config(vga_dialog* dialog) {
    for (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree); node != nullptr;
         node = static_cast<vga_node*>(ntl_avl_next(&node->node))) {
        if (node->node_state != VGA_NODE_STATE_UNCONFIGURED) {
            return true;
        }
    }
    vga_display_info_dialog(dialog, gvga_supported[VGA_SUPPORT_CLIENT_SERVER] ? 219 : 215,
                            "tasknode", nullptr, 0, "");
    return false;
}

void vga_action_user(Widget widget, XtPointer, XtPointer) {
    show_if_configured(widget, VGA_UID_USER_WINDOW);
}

void vga_action_lu_pool(Widget widget, XtPointer, XtPointer) {
    show_if_configured(widget, VGA_UID_POOL_WINDOW);
}

void vga_action_cpic(Widget widget, XtPointer, XtPointer) {
    show_if_configured(widget, VGA_UID_CPIC_WINDOW);
}

void vga_action_rje(Widget widget, XtPointer, XtPointer) {
    if (gvga_system->config_file_handle == 0) {
        vga_display_info_dialog(vga_dialog_of(widget), 218, "mastercfg", nullptr, 0, "");
        return;
    }
    show_if_configured(widget, VGA_UID_RJEW_WINDOW);
}

void vga_sysw_logging(Widget, XtPointer, XtPointer) {
    show_domain_window(VGA_UID_LOG_DIALOG);
}
