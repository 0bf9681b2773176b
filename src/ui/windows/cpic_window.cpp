#include "ui/windows/cpic_window.h"

#include "shell/globals.h"
#include "shell/messages.h"
#include "store/store.h"
#include "ui/windows/row_text.h"
#include "verbs/config.h"

namespace {

// ---- deleting ----

void print(NB_BYTE, const void* record, int message, char* text) {
    const NB_NAME8L& name = static_cast<const vga_cpic*>(record)->vcb.sym_dest_name;
    vga_print_msg(text, gvga_messages[message], "cs", int{sizeof name}, name);
}

VGA_DELETE_STEP issue(NB_BYTE, void* record, void*, NB_USHORT last, NB_ULONG corr,
                      VGA_CALLBACK callback) {
    if (last != 0) {
        return VGA_DELETE_STEP::DONE;
    }
    if (!vga_list_may_change(gvga_system->gui_data.cpic_window, true)) {
        return VGA_DELETE_STEP::ENDED;
    }
    return vga_issue_del_cpic(static_cast<vga_cpic*>(record), corr, callback)
               ? VGA_DELETE_STEP::SENT
               : VGA_DELETE_STEP::FAILED;
}

constexpr VGA_DELETE_KIND deleting{
    .target = [](NB_BYTE, const void* record) { return vga_delete_target<vga_cpic>(record); },
    .question =
        [](NB_BYTE, const void*, bool) {
            return VGA_DELETE_QUESTION{false, 200, "confirmdeletecpic"};
        },
    .print = print,
    .issue = issue,
    .process =
        [](VGA_COMPLETION* completion, void* system) {
            vga_process_del_cpic(completion, static_cast<vga_system*>(system));
        },
    .answered = vga_delete_cpic_confirm_cb,
    .completed = vga_delete_cpic_cb};

// ---- the window ----

constexpr VGA_LIST_TYPE types[] = {{VGA_VIEWER_CPIC, VGA_UID_CPIC_DIALOG, &deleting}};
constexpr VGA_LIST_PANE panes[] = {
    {.list = VGA_LIST_WIDGET("cpicwDrawArea", cpics),
     .h_scroll = VGA_LIST_WIDGET("cpicwHScrollBar", h_scroll),
     .v_scroll = VGA_LIST_WIDGET("cpicwVScrollBar", v_scroll),
     .form = VGA_LIST_WIDGET("cpicwWindowForm", window_form),
     .icon = VGA_LIST_WIDGET("cpicwcpicIcon", icon),
     .shows = VGA_ICON_CPIC,
     .root = [](void* system) { return &static_cast<vga_system*>(system)->cpic_viewer_root; },
     .add_dialog_id = VGA_UID_CPIC_DIALOG,
     .types = types}};
constexpr const char* others[] = {"cpicwDoneButton"};
constinit char focus_action[] = "vga_cpicw_focus";
constexpr VGA_LIST_WINDOW window{
    .dialog_id = VGA_UID_CPIC_WINDOW,
    .title = 11,
    .of_domain = true,
    .open = [](void* system) { return &static_cast<vga_system*>(system)->gui_data.cpic_window; },
    .panes = panes,
    .buttons = {{{VGA_LIST_WIDGET("cpicwAddButton", button_add)},
                 {VGA_LIST_WIDGET("cpicwDeleteButton", button_delete)},
                 {VGA_LIST_WIDGET("cpicwModifyButton", button_modify)},
                 {VGA_LIST_WIDGET("cpicwCopyButton", button_copy)}}},
    .others = others,
    .focus_action = focus_action};

} // namespace

const VGA_NAMED_CALLBACK gvga_cpicw_callbacks[5] = {{"vga_cpicw_add", vga_cpicw_add},
                                                    {"vga_cpicw_modify", vga_cpicw_modify},
                                                    {"vga_cpicw_copy", vga_cpicw_copy},
                                                    {"vga_cpicw_delete", vga_cpicw_delete},
                                                    {"vga_cpicw_disarm", vga_cpicw_disarm}};
XtActionsRec gvga_cpicw_actions[1] = {{focus_action, vga_cpicw_focus}};

bool vga_display_cpic_window() {
    return vga_open_list_window(window, gvga_main_dialog, gvga_system);
}
bool vga_get_widgets_cpic_window(vga_dialog* dialog) {
    return vga_get_list_widgets(dialog, window);
}
bool vga_cpicw_close_proc(vga_dialog* dialog, bool) {
    vga_close_list_window(dialog);
    return true;
}
void vga_open_cpic_window(vga_dialog*, void*, VGA_OPEN) {
    vga_display_cpic_window();
}

void vga_cpicw_add(Widget widget, XtPointer, XtPointer) {
    vga_list_add(widget);
}
void vga_cpicw_modify(Widget widget, XtPointer, XtPointer) {
    vga_list_modify(widget);
}
void vga_cpicw_copy(Widget widget, XtPointer, XtPointer) {
    vga_list_copy(widget);
}
void vga_cpicw_delete(Widget widget, XtPointer, XtPointer) {
    vga_list_delete(widget);
}
void vga_cpicw_focus(Widget widget, XEvent*, String* params, Cardinal* count) {
    vga_list_focus(widget, params, *count);
}

int vga_create_cpic_viewer_text(void* record, char* text) {
    const CPIC_SIDE_INFO_ENTRY& entry = static_cast<const vga_cpic*>(record)->vcb;
    const VGA_ROW_DESCRIPTION description(entry.def.description);
    return vga_print_row(text, 201, "ca s", int{sizeof entry.sym_dest_name}, entry.sym_dest_name,
                         description.text);
}
int vga_choose_cpic_viewer_icon(void*) {
    return VGA_ICON_CPIC;
}
void vga_cpicw_cpic_arm_cb(void* record, XmDrawnButtonCallbackStruct* data) {
    vga_list_arm(gvga_system->gui_data.cpic_window, &static_cast<vga_cpic*>(record)->viewer, data);
}
void vga_cpicw_cpic_act_cb(void*, XmDrawnButtonCallbackStruct* data) {
    vga_list_activate(gvga_system->gui_data.cpic_window, data);
}
void vga_cpicw_disarm(Widget widget, XtPointer, XtPointer) {
    vga_list_disarm(widget);
}
void vga_cpicw_set_button_states(vga_dialog* dialog) {
    vga_list_set_button_states(dialog);
}

void vga_cpicw_delete_proc(vga_dialog* dialog) {
    vga_list_delete(vga_list_focus_widget(dialog));
}
void vga_delete_cpic_confirm_cb(vga_dialog* dialog, NB_ULONG record, NB_ULONG answer) {
    vga_delete_answered(dialog, record, answer);
}
void vga_delete_cpic_cb(VGA_COMPLETION* completion) {
    vga_delete_completed(completion);
}
