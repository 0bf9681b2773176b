#include "dialogs/start_stop.h"

#include "common/assert.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "store/records.h"
#include "verbs/manage.h"

#include <Xm/ToggleB.h>

namespace {

struct LS_CHOICE { // what one dialog has that the other has not
    NB_USHORT dialog_id;
    const char* toggles[2];
    int labels[2]; // messages: of the toggles,
    int title;     // and of the dialog
};
constexpr LS_CHOICE start = {
    VGA_UID_START_LS_DIALOG, {"strtlStartToggle", "strtlEnableToggle"}, {1217, 1216}, 1218};
constexpr LS_CHOICE stop = {
    VGA_UID_STOP_LS_DIALOG, {"stoplStopToggle", "stoplDisableToggle"}, {1214, 1213}, 1215};

vga_ls_choice_dialog* as_choice(vga_dialog* dialog) {
    return reinterpret_cast<vga_ls_choice_dialog*>(dialog);
}
vga_node* node_of(const vga_dialog* dialog) {
    return static_cast<vga_node*>(dialog->parent_item);
}

bool get_widgets(vga_dialog* dialog, const LS_CHOICE& choice) {
    vga_ls_choice_dialog* desc = as_choice(dialog);
    desc->start_or_stop = vga_put_widget_context(dialog, choice.toggles[0]);
    desc->enable_or_disable = vga_put_widget_context(dialog, choice.toggles[1]);
    XtVaSetValues(dialog->widget, XmNinitialFocus, desc->start_or_stop, nullptr);
    return desc->start_or_stop != nullptr && desc->enable_or_disable != nullptr;
}

void set_label(Widget toggle, int message, const vga_ls* ls) {
    char text[VGA_MESSAGE_BUFFER_SIZE];
    vga_print_msg(text, gvga_messages[message], "cs", static_cast<int>(sizeof ls->vcb->ls_name),
                  ls->vcb->ls_name);
    vga_set_text(toggle, XmNlabelString, text);
}

// The dialog, filled in; null when it cannot be made.
vga_dialog* open(vga_ls* ls, const LS_CHOICE& choice) {
    vga_node* node = ls->parent->parent->parent;
    vga_dialog* window = node->gui_data.node_window;
    vga_dialog* dialog;
    if (!vga_get_dialog(choice.dialog_id, window != nullptr ? window : gvga_main_dialog, node,
                        &dialog)) {
        return nullptr;
    }
    vga_ls_choice_dialog* desc = as_choice(dialog);
    desc->ls = ls->handle;
    set_label(desc->start_or_stop, choice.labels[0], ls);
    set_label(desc->enable_or_disable, choice.labels[1], ls);
    XmToggleButtonSetState(desc->start_or_stop, True, False);
    XmToggleButtonSetState(desc->enable_or_disable, False, False);
    const char* title = gvga_messages[choice.title];
    XtVaSetValues(dialog->shell, XmNtitle, title, nullptr);
    vga_display_dialog(dialog);
    // The shell of a dialog has no resource for the name of its icon.
    XSetIconName(gvga_display, XtWindow(dialog->shell), title);
    return dialog;
}

// Closes the dialog. The link station it asked about, or null when that has gone; *first: whether
// the first toggle was set.
vga_ls* take(Widget widget, bool* first) {
    vga_dialog* dialog = vga_dialog_of(widget);
    if (dialog == nullptr) {
        return nullptr;
    }
    const vga_ls_choice_dialog* desc = as_choice(dialog);
    const NB_HANDLE ls = desc->ls;
    *first = XmToggleButtonGetState(desc->start_or_stop);
    vga_close_children(dialog, true, false);
    return static_cast<vga_ls*>(nba_validate_handle(ls));
}

} // namespace

void vga_display_start_ls_dialog(vga_ls* ls) {
    vga_node* node = ls->parent->parent->parent;
    if (VGA_ASSERT_TEXT(node->gui_data.start_ls_dialog == nullptr,
                        "node->gui_data.start_ls_dialog == NULL")) {
        node->gui_data.start_ls_dialog = open(ls, start);
    }
}

void vga_display_stop_ls_dialog(vga_ls* ls) {
    vga_node* node = ls->parent->parent->parent;
    if (VGA_ASSERT_TEXT(node->gui_data.stop_ls_dialog == nullptr,
                        "node->gui_data.stop_ls_dialog == NULL")) {
        node->gui_data.stop_ls_dialog = open(ls, stop);
    }
}

bool vga_strtl_get_widgets(vga_dialog* dialog) {
    return get_widgets(dialog, start);
}
bool vga_stopl_get_widgets(vga_dialog* dialog) {
    return get_widgets(dialog, stop);
}

bool vga_strtl_close_proc(vga_dialog* dialog, bool) {
    node_of(dialog)->gui_data.start_ls_dialog = nullptr;
    return true;
}
bool vga_stopl_close_proc(vga_dialog* dialog, bool) {
    node_of(dialog)->gui_data.stop_ls_dialog = nullptr;
    return true;
}

void vga_strtl_ok(Widget widget, XtPointer, XtPointer) {
    bool activate = false;
    if (vga_ls* ls = take(widget, &activate)) {
        vga_nodew_init_start_ls(ls, !activate);
    }
}
void vga_stopl_ok(Widget widget, XtPointer, XtPointer) {
    bool stay_enabled = false;
    if (vga_ls* ls = take(widget, &stay_enabled)) {
        vga_issue_stop_ls(ls, vga_nodew_stop_ls_cb, ls->handle, !stay_enabled);
    }
}

const VGA_NAMED_CALLBACK gvga_strtl_callbacks[] = {{"vga_strtl_ok", vga_strtl_ok}};
const VGA_NAMED_CALLBACK gvga_stopl_callbacks[] = {{"vga_stopl_ok", vga_stopl_ok}};

void vga_install_start_stop_dialogs() {
    gvga_manage_hooks.ask_start_ls = vga_display_start_ls_dialog;
    gvga_manage_hooks.ask_stop_ls = vga_display_stop_ls_dialog;
}
