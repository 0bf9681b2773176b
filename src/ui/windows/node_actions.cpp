// The menus and buttons of the node window: which dialog each opens.
#include "common/assert.h"
#include "shell/globals.h"
#include "store/store.h"
#include "ui/windows/node_window_internal.h"
#include "ui/windows/node_window_rows.h"
#include "verbs/manage.h"

#include <X11/keysym.h>
#include <Xm/PushB.h>

#include <algorithm>

namespace {

// ---- what an action needs ----

enum class NEEDS { NOTHING, CONFIGURATION, CONNECTIVITY };

bool is_connected(const vga_node* node) {
    return node->port_tree.first != nullptr || node->ls_tree.first != nullptr;
}

void tell(vga_node_window* window, int message, const char* help_tag) {
    vga_display_info_dialog(&window->common, message, help_tag, nullptr, 0, "");
}

// False when the operator was told what is missing.
bool check_needs(vga_node_window* window, NEEDS needs) {
    const vga_node* node = vga_nodew_node(window);
    if (needs != NEEDS::NOTHING && node->node_state == VGA_NODE_STATE_UNCONFIGURED) {
        tell(window, 215, "tasknode");
        return false;
    }
    if (needs == NEEDS::CONNECTIVITY && !is_connected(node)) {
        tell(window, 768, "taskconn");
        return false;
    }
    return true;
}

// The window of a callback's widget while it shows a node, else null.
vga_node_window* usable_window(Widget widget) {
    vga_node_window* window = vga_nodew_of(widget);
    return window != nullptr && window->built ? window : nullptr;
}

// ---- dialogs ----

void open_dialog(vga_node_window* window, NB_USHORT dialog_id, void* record,
                 VGA_OPEN how = VGA_OPEN_ADD) {
    vga_open_dialog(dialog_id, &window->common, record, how);
}

void open_for_node(Widget widget, NB_USHORT dialog_id, NEEDS needs) {
    vga_node_window* window = usable_window(widget);
    if (window != nullptr && check_needs(window, needs)) {
        open_dialog(window, dialog_id, vga_nodew_node(window));
    }
}

struct LINK_DIALOGS { // by kind of adapter
    NB_BYTE dlc_type;
    NB_USHORT port;
    NB_USHORT ls;
};
constexpr LINK_DIALOGS link_dialogs[] = {
    {NAP_DLC_SDLC, VGA_UID_SDLC_PORT_DIALOG, VGA_UID_SDLC_LS_DIALOG},
    {NAP_DLC_QLLC, VGA_UID_QLLC_PORT_DIALOG, VGA_UID_QLLC_LS_DIALOG},
    {NAP_DLC_TOKEN_RING, VGA_UID_LLC2_PORT_DIALOG, VGA_UID_LLC2_LS_DIALOG},
    {NAP_DLC_FDDI, VGA_UID_LLC2_PORT_DIALOG, VGA_UID_LLC2_LS_DIALOG},
    {NAP_DLC_ETHERNET, VGA_UID_LLC2_PORT_DIALOG, VGA_UID_LLC2_LS_DIALOG},
    {NAP_DLC_FRAME_RELAY, VGA_UID_LLC2_PORT_DIALOG, VGA_UID_LLC2_LS_DIALOG},
    {NAP_DLC_CHANNEL, VGA_UID_CHNL_PORT_DIALOG, VGA_UID_CHNL_LS_DIALOG},
    {NAP_DLC_MPC, VGA_UID_CHNL_PORT_DIALOG, VGA_UID_CHNL_LS_DIALOG},
    {NAP_DLC_MPC_PLUS, VGA_UID_CHNL_PORT_DIALOG, VGA_UID_CHNL_LS_DIALOG},
    {NAP_DLC_IP, VGA_UID_IP_PORT_DIALOG, VGA_UID_IP_LS_DIALOG},
};

// The dialogs of a port's kind of adapter, or null.
const LINK_DIALOGS* dialogs_of(const vga_port* port) {
    const auto* row = std::ranges::find(link_dialogs, NB_BYTE{port->parent->vcb->def.dlc_type},
                                        &LINK_DIALOGS::dlc_type);
    return VGA_ASSERT_TEXT(row != std::end(link_dialogs), "FALSE") ? row : nullptr;
}

void open_port(vga_node_window* window, vga_port* port, VGA_OPEN how) {
    if (const LINK_DIALOGS* dialogs = dialogs_of(port)) {
        open_dialog(window, dialogs->port, port, how);
    }
}

void open_ls(vga_node_window* window, vga_ls* ls, VGA_OPEN how) {
    if (const LINK_DIALOGS* dialogs = dialogs_of(ls->parent)) {
        open_dialog(window, dialogs->ls, ls, how);
    }
}

// Opens the dialog of the selected record, to change it or to make a new one like it.
void vga_nodew_zoom_or_copy(vga_node_window* window, bool copy) {
    NB_BYTE type;
    void* record = vga_nodew_get_selection(&window->common, &type, nullptr, nullptr);
    if (record == nullptr ||
        !check_needs(window, type == VGA_VIEWER_NODE ? NEEDS::NOTHING : NEEDS::CONFIGURATION)) {
        return;
    }
    const VGA_OPEN how = copy ? VGA_OPEN_COPY : VGA_OPEN_PROPERTIES;
    switch (type) {
    case VGA_VIEWER_NODE:
        VGA_ASSERT(!copy);
        return open_dialog(window, VGA_UID_NODE_DIALOG, record, how);
    case VGA_VIEWER_LU62:
        return open_dialog(window, VGA_UID_LU62_DIALOG, record, how);
    case VGA_VIEWER_PORT:
        return open_port(window, static_cast<vga_port*>(record), how);
    case VGA_VIEWER_LS:
    case VGA_VIEWER_LS_NO_PU:
        return open_ls(window, static_cast<vga_ls*>(record), how);
    case VGA_VIEWER_LOCAL_PU:
        if (vga_ls* ls = static_cast<vga_pu*>(record)->ls_entry) {
            return open_ls(window, ls, how);
        }
        return open_dialog(window, VGA_UID_PU_DIALOG, record, how);
    case VGA_VIEWER_DEPLU:
        return open_dialog(window, vga_is_lu62(record) ? VGA_UID_LU62_DIALOG : VGA_UID_LU03_DIALOG,
                           record, how);
    case VGA_VIEWER_DOWN_LU:
        return open_dialog(window, VGA_UID_DSLU_DIALOG, record, how);
    case VGA_VIEWER_REM_SYS:
        return open_dialog(window, VGA_UID_REMOTE_NODE_DIALOG, record, how);
    case VGA_VIEWER_REM_PLU:
    case VGA_VIEWER_REM_PLU_NO_SESS:
        return open_dialog(window, VGA_UID_PLU_DEF_DIALOG, record, how);
    case VGA_VIEWER_LS_R:
        return open_dialog(window, VGA_UID_LS_ROUTING_DIALOG, record, how);
    case VGA_VIEWER_PRIMARY_LINE:
        return open_dialog(window, VGA_UID_LULI_DIALOG, record, how);
    case VGA_VIEWER_PRIMARY_LU0:
        return open_dialog(window, VGA_UID_LULU_DIALOG, record, how);
    default:
        VGA_ASSERT_TEXT(false, "FALSE");
    }
}

// The mode of a session row, or null when it has just gone.
vga_mode* mode_of(const vga_rem_sess* sess) {
    const vga_node* node = vga_node_of(sess);
    auto* lu = static_cast<vga_lu62*>(ntl_avl_find(&node->lu62_tree, sess->key.lu_name));
    if (lu == nullptr) {
        return nullptr;
    }
    auto* plu = static_cast<vga_plu*>(ntl_avl_find(&lu->plu_tree, sess->parent->key.plu_name));
    return plu != nullptr
               ? static_cast<vga_mode*>(ntl_avl_find(&plu->mode_tree, sess->key.mode_name))
               : nullptr;
}

// Says that the node cannot do what was asked for.
void not_available(Widget widget) {
    if (vga_node_window* window = usable_window(widget)) {
        tell(window, 1452, "");
    }
}

// The selected record, to start or stop it; null without one, and when the operator was told that
// it is not allowed.
void* record_to_change(vga_node_window* window, NB_BYTE* type) {
    if (gvga_read_only) {
        vga_display_error_dialog(&window->common, 607, "readonly", nullptr, 0, "s", "sna");
        return nullptr;
    }
    return vga_nodew_get_selection(&window->common, type, nullptr, nullptr);
}

// ---- one callback per menu entry and button ----

void vga_nodew_server(Widget widget, XtPointer, XtPointer call_data) {
    const auto* call = static_cast<const XmPushButtonCallbackStruct*>(call_data);
    const bool click = call->event != nullptr && call->event->type == ButtonRelease;
    if (!click || call->click_count > 1) { // a single click only selects the node
        open_for_node(widget, VGA_UID_NODE_DIALOG, NEEDS::NOTHING);
    }
}
void vga_nodew_node_params(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_NODE_DIALOG, NEEDS::NOTHING);
}

void vga_nodew_add_indep_local_lu(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_LU62_DIALOG, NEEDS::CONNECTIVITY);
}
void vga_nodew_add_dep_local_lu(Widget widget, XtPointer, XtPointer) {
    vga_node_window* window = usable_window(widget);
    if (window == nullptr || !check_needs(window, NEEDS::CONFIGURATION)) {
        return;
    }
    vga_node* node = vga_nodew_node(window);
    if (node->port_tree.first == nullptr) {
        tell(window, 768, "taskconn");
    } else if (node->ls_tree.first == nullptr) {
        tell(window, 777, "tasknode");
    } else {
        open_dialog(window, VGA_UID_LU62_DIALOG, node);
    }
}
void vga_nodew_add_remote_system(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_REMOTE_NODE_DIALOG, NEEDS::CONNECTIVITY);
}
void vga_nodew_plu_def(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_PLU_DEF_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_alias_def(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_PLU_DEF_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_wildcard_def(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_PLU_DEF_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_ls_routing_def(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_LS_ROUTING_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_add_dlur_pu(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_PU_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_add_dslu(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_DSLU_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_add_3270_lu(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_LU03_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_add_3270_printer(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_LU03_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_add_rje_lu(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_LU03_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_add_lu0(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_LU03_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_secondary_lu0(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_LU03_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_primary_line(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_LULI_DIALOG, NEEDS::CONFIGURATION);
}
void vga_nodew_primary_lu0(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_LULU_DIALOG, NEEDS::CONFIGURATION);
}

void vga_nodew_mode_cos(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_MODE_WINDOW, NEEDS::CONFIGURATION);
}
void vga_nodew_tp_def(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_TP_WINDOW, NEEDS::CONFIGURATION);
}
void vga_nodew_cl_security(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_CL_SECURITY_WINDOW, NEEDS::CONFIGURATION);
}
void vga_nodew_sl_security(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_SL_SECURITY_WINDOW, NEEDS::CONFIGURATION);
}
void vga_nodew_tn_server(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_TN_WINDOW, NEEDS::CONFIGURATION);
}
void vga_nodew_rje_wkstn(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_RJEW_WINDOW, NEEDS::CONFIGURATION);
}
void vga_nodew_ipbridge(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_IPBRIDGE_WINDOW, NEEDS::CONFIGURATION);
}
void vga_nodew_hpr(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_HPR_WINDOW, NEEDS::CONFIGURATION);
}
void vga_nodew_tracing(Widget widget, XtPointer, XtPointer) {
    open_for_node(widget, VGA_UID_TRACE_DIALOG, NEEDS::CONFIGURATION);
}

void vga_nodew_dir(Widget widget, XtPointer, XtPointer) {
    not_available(widget);
}
void vga_nodew_cn(Widget widget, XtPointer, XtPointer) {
    not_available(widget);
}

namespace {

using ACTION = void (*)(vga_node_window* window, void* record);
template <typename Record, void (*Function)(Record*)> void act(vga_node_window*, void* record) {
    Function(static_cast<Record*>(record));
}
void activate_session(vga_node_window* window, void* record) {
    open_dialog(window, VGA_UID_ACTIVATE_SESS_DIALOG, record);
}
void start_down_lu(vga_node_window*, void* record) {
    vga_issue_define_downstream_lu(static_cast<vga_down_lu*>(record), vga_define_downstream_lu_cb);
}
void stop_node(vga_node_window* window, void* record) {
    vga_stop_node(static_cast<vga_node*>(record), &window->common);
}

struct ACTION_ROW {
    NB_BYTE type;
    ACTION start;
    ACTION stop; // null: it cannot be stopped
};
constexpr ACTION start_ls = act<vga_ls, vga_nodew_start_ls>;
constexpr ACTION stop_ls = act<vga_ls, vga_nodew_stop_ls>;
constexpr ACTION stop_sessions = act<vga_lu62, vga_nodew_deact_all_lu_sessions>;
constexpr ACTION_ROW actions[] = {
    {VGA_VIEWER_NODE, act<vga_node, vga_nodew_start_node>, stop_node},
    {VGA_VIEWER_PORT, act<vga_port, vga_nodew_init_start_port>, act<vga_port, vga_nodew_stop_port>},
    {VGA_VIEWER_LS, start_ls, stop_ls},
    {VGA_VIEWER_LS_NO_PU, start_ls, stop_ls},
    {VGA_VIEWER_LOCAL_PU, act<vga_pu, vga_nodew_start_pu>, act<vga_pu, vga_nodew_stop_pu>},
    {VGA_VIEWER_LU62, activate_session, stop_sessions},
    {VGA_VIEWER_DEPLU, activate_session, stop_sessions},
    {VGA_VIEWER_MODE, activate_session, act<vga_mode, vga_nodew_deact_lu_lu_mode_sessions>},
    {VGA_VIEWER_DOWN_LU, start_down_lu, nullptr},
};

void act_on_selection(Widget widget, ACTION ACTION_ROW::*action) {
    vga_node_window* window = usable_window(widget);
    NB_BYTE type;
    void* record = window != nullptr ? record_to_change(window, &type) : nullptr;
    if (record == nullptr) {
        return;
    }
    const auto* row = std::ranges::find(actions, type, &ACTION_ROW::type);
    const bool known = row != std::end(actions) && row->*action != nullptr;
    if (VGA_ASSERT_TEXT(known, "FALSE")) {
        (row->*action)(window, record);
    }
}

} // namespace

void vga_nodew_start(Widget widget, XtPointer, XtPointer) {
    act_on_selection(widget, &ACTION_ROW::start);
}
void vga_nodew_stop(Widget widget, XtPointer, XtPointer) {
    act_on_selection(widget, &ACTION_ROW::stop);
}

void vga_nodew_copy(Widget widget, XtPointer, XtPointer) {
    if (vga_node_window* window = usable_window(widget)) {
        vga_nodew_zoom_or_copy(window, true);
    }
}

void vga_nodew_status(Widget widget, XtPointer, XtPointer) {
    vga_node_window* window = usable_window(widget);
    if (window == nullptr || !check_needs(window, NEEDS::CONFIGURATION)) {
        return;
    }
    NB_BYTE type;
    void* record = vga_nodew_get_selection(&window->common, &type, nullptr, nullptr);
    switch (type) {
    case VGA_VIEWER_MODE:
        return open_dialog(window, VGA_UID_SESS_LIMIT_DIALOG, record);
    case VGA_VIEWER_PORT:
        return open_dialog(window, VGA_UID_PORT_DET_DIALOG, record);
    case VGA_VIEWER_LS:
    case VGA_VIEWER_LS_NO_PU:
        return open_dialog(window, VGA_UID_LINK_DET_DIALOG, record);
    case VGA_VIEWER_REM_SESS:
        if (vga_mode* mode = mode_of(static_cast<vga_rem_sess*>(record))) {
            open_dialog(window, VGA_UID_SESS_LIMIT_DIALOG, mode);
        }
        return;
    default:
        VGA_ASSERT_TEXT(false, "FALSE");
    }
}

void add_to_middle_pane(vga_node_window* window) {
    NB_BYTE type;
    void* record = vga_nodew_get_selection(&window->common, &type, nullptr, nullptr);
    if (type == VGA_VIEWER_LS_R_TITLE) {
        open_dialog(window, VGA_UID_LS_ROUTING_DIALOG, record);
    } else if (type == VGA_VIEWER_LS_R) {
        open_dialog(window, VGA_UID_LS_ROUTING_DIALOG,
                    static_cast<vga_ls_routing*>(record)->parent);
    } else if (check_needs(window, NEEDS::CONNECTIVITY)) {
        open_dialog(window, VGA_UID_LU62_DIALOG, vga_nodew_node(window));
    }
}

} // namespace

void vga_nodew_add_items(Widget widget, XtPointer, XtPointer) {
    vga_node_window* window = usable_window(widget);
    if (window == nullptr || !check_needs(window, NEEDS::CONFIGURATION)) {
        return;
    }
    vga_node* node = vga_nodew_node(window);
    if (widget == window->menu_item_port) {
        open_dialog(window, VGA_UID_NODE_CONTEXT_ADD_DIALOG, node);
    } else if (widget == window->menu_item_ls || window->selected_pane == nullptr) {
        if (node->port_tree.first != nullptr) {
            open_dialog(window, VGA_UID_NODE_CONTEXT_ADD_DIALOG, node);
        } else {
            vga_display_error_dialog(&window->common, 478, "taskconn", nullptr, 0, "");
        }
    } else if (window->selected_pane == window->middle_pane) {
        add_to_middle_pane(window);
    } else if (window->selected_pane == window->bottom_pane) {
        if (check_needs(window, NEEDS::CONNECTIVITY)) {
            open_dialog(window, VGA_UID_REM_SYS_CTX_ADD_DIALOG, node);
        }
    } else {
        open_dialog(window, VGA_UID_NODE_CONTEXT_ADD_DIALOG, node);
    }
}

void vga_nodew_zoom(Widget widget, XtPointer, XtPointer) {
    vga_node_window* window = usable_window(widget);
    if (window != nullptr && window->zoom_ok) {
        vga_nodew_zoom_or_copy(window, false);
    }
}

void vga_nodew_server_key(Widget widget, XtPointer, XEvent* event, Boolean*) {
    KeySym key = NoSymbol;
    Modifiers modifiers = 0;
    XtTranslateKeycode(XtDisplay(widget), static_cast<KeyCode>(event->xkey.keycode),
                       event->xkey.state, &modifiers, &key);
    if (key == XK_Return || key == XK_KP_Enter) {
        open_for_node(widget, VGA_UID_NODE_DIALOG, NEEDS::NOTHING);
    }
}

#define NAMED(function)                                                                            \
    { #function, function }
const VGA_NAMED_CALLBACK gvga_nodew_callbacks[gvga_nodew_callback_count] = {
    NAMED(vga_nodew_server),
    NAMED(vga_nodew_server_arm_cb),
    NAMED(vga_nodew_add_items),
    NAMED(vga_nodew_plu_def),
    NAMED(vga_nodew_wildcard_def),
    NAMED(vga_nodew_alias_def),
    NAMED(vga_nodew_ls_routing_def),
    NAMED(vga_nodew_dir),
    NAMED(vga_nodew_mode_cos),
    NAMED(vga_nodew_tp_def),
    NAMED(vga_nodew_cn),
    NAMED(vga_nodew_tracing),
    NAMED(vga_nodew_start),
    NAMED(vga_nodew_stop),
    NAMED(vga_nodew_zoom),
    NAMED(vga_nodew_status),
    NAMED(vga_nodew_copy),
    NAMED(vga_nodew_delete),
    NAMED(vga_nodew_disarm),
    NAMED(vga_nodew_select_top_pane),
    NAMED(vga_nodew_select_middle_pane),
    NAMED(vga_nodew_select_bottom_pane),
    NAMED(vga_nodew_add_dlur_pu),
    NAMED(vga_nodew_add_dslu),
    NAMED(vga_nodew_add_3270_lu),
    NAMED(vga_nodew_add_3270_printer),
    NAMED(vga_nodew_add_rje_lu),
    NAMED(vga_nodew_add_lu0),
    NAMED(vga_nodew_rje_wkstn),
    NAMED(vga_nodew_tn_server),
    NAMED(vga_nodew_ipbridge),
    NAMED(vga_nodew_primary_line),
    NAMED(vga_nodew_primary_lu0),
    NAMED(vga_nodew_secondary_lu0),
    NAMED(vga_nodew_hpr),
    NAMED(vga_nodew_add_indep_local_lu),
    NAMED(vga_nodew_add_dep_local_lu),
    NAMED(vga_nodew_add_remote_system),
    NAMED(vga_nodew_cl_security),
    NAMED(vga_nodew_sl_security),
    NAMED(vga_nodew_node_params),
};
#undef NAMED

namespace {
char enter_button[] = "vga_nodew_enter_button";
char leave_button[] = "vga_nodew_leave_button";
} // namespace
XtActionsRec gvga_nodew_actions[gvga_nodew_action_count] = {
    {enter_button, vga_nodew_enter_button},
    {leave_button, vga_nodew_leave_button},
};
