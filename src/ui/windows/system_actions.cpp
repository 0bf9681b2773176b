// The menus and buttons of the system window.
#include "common/assert.h"
#include "nof/node.h"
#include "ui/windows/node_window.h"
#include "ui/windows/system_window_internal.h"
#include "ui/windows/system_window_rows.h"
#include "verbs/config.h"
#include "verbs/manage.h"

#include <cstring>

namespace {

// The window a widget asks something of, with the node that is selected in it.
struct REQUEST {
    vga_dialog* dialog;
    vga_node* node; // null: nothing to do
};
REQUEST request_of(Widget widget) {
    vga_system_window* window = vga_sysw();
    if (window == nullptr || vga_dialog_of(widget) != &window->common) {
        return {nullptr, nullptr};
    }
    return {&window->common, vga_sysw_selected_node()};
}

// ---- start and stop ----

// False when the operator was told that this program may only look.
bool may_change(vga_dialog* dialog) {
    if (gvga_read_only) {
        vga_display_error_dialog(dialog, 607, "readonly", nullptr, 0, "s", "sna");
    }
    return !gvga_read_only;
}

void vga_sysw_start(Widget widget, XtPointer, XtPointer) {
    const REQUEST request = request_of(widget);
    if (request.node != nullptr && may_change(request.dialog)) {
        vga_nodew_start_node(request.node);
    }
}

void vga_sysw_stop(Widget widget, XtPointer, XtPointer) {
    const REQUEST request = request_of(widget);
    if (request.node != nullptr && may_change(request.dialog)) {
        vga_stop_node(request.node, request.dialog);
    }
}

// ---- tracing ----

void vga_sysw_tracing(Widget widget, XtPointer, XtPointer) {
    const auto [window, node] = request_of(widget);
    if (node == nullptr || !VGA_ASSERT((node->node_state != VGA_NODE_STATE_UNCONFIGURED) &&
                                       (node->node_state != VGA_NODE_STATE_BACK_LEVEL))) {
        return;
    }
    vga_dialog* dialog = nullptr;
    if (vga_get_dialog(VGA_UID_TRACE_DIALOG, window, node, &dialog)) {
        vga_display_dialog(dialog);
    }
}

// ---- backup servers ----

void issue_backup(const vga_node* node, NB_USHORT opcode, VGA_CALLBACK callback) {
    auto* vcb = vga_new_vcb<BACKUP_SERVER>(opcode);
    if (vcb == nullptr) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return;
    }
    std::memcpy(vcb->server_name, node->node_name, sizeof vcb->server_name);
    if (!vga_queue_verb(gvga_system->sna_net_handle, vcb, node->handle, callback)) {
        vga_free_vcb(vcb);
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

// True when the verb did what it was sent for; otherwise the operator was told why it did not.
bool backup_changed(const VGA_COMPLETION* work) {
    const VCB_HEADER& header = *vcb_header(work->vcb);
    if (header.primary_rc == NAP_OK) {
        return true;
    }
    const char* help_tag = nullptr;
    char* text = vga_get_verb_error_message(header.opcode, header.primary_rc, header.secondary_rc,
                                            &help_tag);
    if (text != nullptr) {
        vga_display_error_dialog(gvga_system->gui_data.system_window, 167, help_tag, nullptr, 0,
                                 "s", text);
        vga_free(text);
    }
    return false;
}

bool another_server(const vga_node* node) {
    for (auto* other = ntl_avl_first<vga_node>(gvga_system->node_tree); other != nullptr;
         other = static_cast<vga_node*>(ntl_avl_next(&other->node))) {
        if (other != node && other->server_role != VGA_ROLE_NONE) {
            return true;
        }
    }
    return false;
}

void del_backup_confirm_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    const auto* node = static_cast<vga_node*>(nba_validate_handle(arg));
    if (answer == VGA_ANSWER_YES && node != nullptr && node->server_role != VGA_ROLE_NONE &&
        gvga_system->sna_net_handle != 0) {
        issue_backup(node, NAP_DELETE_BACKUP, vga_sysw_del_backup_cb);
    }
    vga_close_confirm_dialog(dialog);
}

void vga_sysw_add_backup(Widget widget, XtPointer, XtPointer) {
    if (const vga_node* node = request_of(widget).node) {
        issue_backup(node, NAP_ADD_BACKUP, vga_sysw_add_backup_cb);
    }
}

void vga_sysw_del_backup(Widget widget, XtPointer, XtPointer) {
    const auto [dialog, node] = request_of(widget);
    if (node == nullptr) {
        return;
    }
    constexpr int name_length = sizeof node->node_name;
    if (!another_server(node)) {
        vga_display_error_dialog(dialog, 1224, "cantdellastbackup", nullptr, 0, "cs", name_length,
                                 node->node_name);
        return;
    }
    vga_display_confirm_dialog(dialog, 1225, "confirmdelbackup", del_backup_confirm_cb,
                               node->handle, false, false, "cs", name_length, node->node_name);
}

} // namespace

void vga_sysw_add_backup_cb(VGA_COMPLETION* work) {
    VGA_ASSERT_TEXT(vcb_header(work->vcb)->opcode == NAP_ADD_BACKUP,
                    "work->vcb->opcode == NAP_ADD_BACKUP");
    if (backup_changed(work)) {
        vga_process_add_backup(work, gvga_system);
    }
}

void vga_sysw_del_backup_cb(VGA_COMPLETION* work) {
    VGA_ASSERT_TEXT(vcb_header(work->vcb)->opcode == NAP_DELETE_BACKUP,
                    "work->vcb->opcode == NAP_DELETE_BACKUP");
    if (backup_changed(work)) {
        vga_process_delete_backup(work, gvga_system);
    }
}

void vga_sysw_zoom(Widget widget, XtPointer, XtPointer) {
    vga_node* node = request_of(widget).node;
    if (node != nullptr && vga_sysw()->zoom_ok) {
        vga_display_node_window(node, true);
    }
}

#define NAMED(function)                                                                            \
    { #function, function }
const VGA_NAMED_CALLBACK gvga_sysw_callbacks[gvga_sysw_callback_count] = {
    NAMED(vga_sysw_start),      NAMED(vga_sysw_stop),   NAMED(vga_sysw_zoom),
    NAMED(vga_sysw_tracing),    NAMED(vga_sysw_disarm), NAMED(vga_sysw_add_backup),
    NAMED(vga_sysw_del_backup),
};
#undef NAMED

namespace {
char enter_button[] = "vga_sysw_enter_button";
char leave_button[] = "vga_sysw_leave_button";
} // namespace
XtActionsRec gvga_sysw_actions[gvga_sysw_action_count] = {
    {enter_button, vga_sysw_enter_button},
    {leave_button, vga_sysw_leave_button},
};
