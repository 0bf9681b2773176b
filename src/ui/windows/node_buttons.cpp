// What can be done with the selection, and the message bar, which says so for the button under the
// pointer.
#include "shell/messages.h"
#include "store/store.h"
#include "ui/windows/node_window_internal.h"
#include "ui/windows/node_window_rows.h"

#include <algorithm>

const std::array<VGA_TOOL<vga_node_window>, VGA_NODEW_BUTTON_COUNT> vga_nodew_tools = {{
    {&vga_node_window::button_start, &vga_node_window::button_start_icon,
     &vga_node_window::menu_item_start, VGA_ICON_START, VGA_ICON_STARTINS},
    {&vga_node_window::button_stop, &vga_node_window::button_stop_icon,
     &vga_node_window::menu_item_stop, VGA_ICON_STOP, VGA_ICON_STOPINS},
    {&vga_node_window::button_del, &vga_node_window::button_del_icon,
     &vga_node_window::menu_item_del, VGA_ICON_DEL, VGA_ICON_DELINS},
    {&vga_node_window::button_zoom, &vga_node_window::button_zoom_icon,
     &vga_node_window::menu_item_zoom, VGA_ICON_ZOOM, VGA_ICON_ZOOMINS},
    {&vga_node_window::button_copy, &vga_node_window::button_copy_icon,
     &vga_node_window::menu_item_copy, VGA_ICON_COPY, VGA_ICON_COPYINS},
    {&vga_node_window::button_status, &vga_node_window::button_status_icon,
     &vga_node_window::menu_item_status, VGA_ICON_STATUS, VGA_ICON_STATUSINS},
    {&vga_node_window::button_add, &vga_node_window::button_add_icon,
     &vga_node_window::menu_item_add, VGA_ICON_ADD, VGA_ICON_ADDINS},
}};

namespace {

// ---- start and stop ----

struct START_STOP {
    bool start;
    bool stop;
};
constexpr START_STOP neither = {false, false};
constexpr START_STOP can_start = {true, false};
constexpr START_STOP can_stop = {false, true};

bool runs(NB_BYTE state) {
    return state == NOF_STATE_ACTIVE || state == NOF_STATE_START_PENDING;
}

START_STOP of_node(const vga_node* node) {
    return node->node_state == VGA_NODE_STATE_STARTING || node->node_state == VGA_NODE_STATE_ACTIVE
               ? can_stop
               : can_start;
}

START_STOP of_ls(const vga_ls* ls, bool node_active) {
    const LS_DETAIL& detail = ls->vcb->det;
    if (runs(detail.state)) {
        return can_stop;
    }
    const bool waits = detail.activation_flags != 0 && node_active;
    return {true, detail.state == NOF_STATE_FAILED || waits};
}

START_STOP of_pu(const vga_pu* pu) {
    switch (pu->vcb.dlur_status) {
    case NOF_DLUR_RESET:
    case NOF_DLUR_PENDING_RETRY:
    case NOF_DLUR_INACTIVE:
        return pu->start_pending ? neither : can_start;
    case NOF_DLUR_ACTIVE:
        return can_stop;
    default:
        return neither;
    }
}

START_STOP of_deplu(const void* record) {
    if (!vga_is_lu62(record)) {
        return neither;
    }
    return static_cast<const vga_lu62*>(record)->act_sess_count != 0 ? can_stop : can_start;
}

START_STOP of_down_lu(const vga_down_lu* lu) {
    const vga_ls* ls = lu->parent->ls_entry;
    return lu->vcb.lu_active == 0 && ls != nullptr && ls->vcb->det.state == NOF_STATE_ACTIVE
               ? can_start
               : neither;
}

START_STOP start_stop(const vga_node* node, NB_BYTE type, const void* record) {
    const bool node_active = node->node_state == VGA_NODE_STATE_ACTIVE;
    if (node->node_state == VGA_NODE_STATE_UNCONFIGURED) {
        return neither;
    }
    if (type == VGA_VIEWER_NODE) {
        return of_node(node);
    }
    if (!node_active && node->node_state != VGA_NODE_STATE_STOPPED &&
        node->node_state != VGA_NODE_STATE_STARTING) {
        return neither;
    }
    switch (type) {
    case VGA_VIEWER_PORT:
        return runs(static_cast<const vga_port*>(record)->vcb->state) ? can_stop : can_start;
    case VGA_VIEWER_LS:
    case VGA_VIEWER_LS_NO_PU:
        return of_ls(static_cast<const vga_ls*>(record), node_active);
    case VGA_VIEWER_LOCAL_PU:
        return of_pu(static_cast<const vga_pu*>(record));
    case VGA_VIEWER_LU62:
        return {node_active,
                node_active && static_cast<const vga_lu62*>(record)->act_sess_count != 0};
    case VGA_VIEWER_MODE:
        return {node_active,
                node_active && static_cast<const vga_mode*>(record)->act_sess_count != 0};
    case VGA_VIEWER_DEPLU:
        return node_active ? of_deplu(record) : neither;
    case VGA_VIEWER_DOWN_LU:
        return of_down_lu(static_cast<const vga_down_lu*>(record));
    default:
        return neither;
    }
}

// ---- the other buttons ----

bool is_heading(NB_BYTE type, const void* record) {
    switch (type) {
    case VGA_VIEWER_PORT:
        return vga_nodew_is_fake_port(record);
    case VGA_VIEWER_REM_SYS:
        return vga_nodew_is_fake_rem_sys(record);
    default:
        return type == VGA_VIEWER_LS_R_TITLE;
    }
}

// Shown by its status, because there is no definition to open.
bool has_status_only(NB_BYTE type, const void* record) {
    return type == VGA_VIEWER_MODE || type == VGA_VIEWER_REM_SESS ||
           (type == VGA_VIEWER_LS_NO_PU && vga_is_implicit(static_cast<const vga_ls*>(record)));
}

// Made by the node from a template or for an incoming connection.
bool is_made_by_node(const vga_down_lu* lu) {
    const vga_pu* pu = lu->parent;
    constexpr NB_BYTE from_template = 2;
    constexpr NB_BYTE from_link_station = 1;
    return pu->vcb.host_attachment == from_template ||
           (pu->vcb.host_attachment == from_link_station && pu->ls_entry != nullptr &&
            vga_is_implicit(pu->ls_entry));
}

bool can_delete(NB_BYTE type, const void* record) {
    switch (type) {
    case VGA_VIEWER_MODE:
    case VGA_VIEWER_REM_SESS:
    case VGA_VIEWER_NODE:
        return false;
    case VGA_VIEWER_DOWN_LU:
        return !is_made_by_node(static_cast<const vga_down_lu*>(record));
    default:
        return true;
    }
}

bool has_status(const vga_node* node, NB_BYTE type) {
    return node->node_state == VGA_NODE_STATE_ACTIVE &&
           (type == VGA_VIEWER_PORT || type == VGA_VIEWER_LS || type == VGA_VIEWER_LS_NO_PU);
}

// ---- help ----

enum class NAME : NB_BYTE { EBCDIC, LOCAL, TEXT };
struct NAME_FIELD {
    NAME kind;
    int length;
    const void* field;
};

struct HELP_ROW {
    NB_BYTE type;
    int messages[VGA_NODEW_ADD]; // by VGA_NODEW_BUTTON; 0: the button is insensitive
};
constexpr HELP_ROW help_rows[] = {
    // start, stop, delete, properties, copy, status
    {VGA_VIEWER_LU62, {728, 748, 717, 759, 705, 738}},
    {VGA_VIEWER_DEPLU, {728, 744, 717, 759, 705, 738}},
    {VGA_VIEWER_MODE, {729, 749, 0, 0, 0, 699}},
    {VGA_VIEWER_PORT, {731, 751, 719, 761, 707, 740}},
    {VGA_VIEWER_LS, {727, 747, 715, 757, 703, 737}},
    {VGA_VIEWER_LS_NO_PU, {727, 747, 715, 757, 703, 737}},
    {VGA_VIEWER_LOCAL_PU, {726, 746, 714, 756, 702, 736}},
    {VGA_VIEWER_DOWN_LU, {725, 745, 713, 755, 701, 735}},
    {VGA_VIEWER_NODE, {730, 750, 718, 760, 706, 739}},
    {VGA_VIEWER_REM_SYS, {733, 753, 723, 765, 711, 742}},
    {VGA_VIEWER_REM_PLU, {732, 752, 722, 764, 710, 741}},
    {VGA_VIEWER_REM_PLU_NO_SESS, {732, 752, 722, 764, 710, 741}},
    {VGA_VIEWER_REM_SESS, {784, 784, 784, 784, 784, 784}},
    {VGA_VIEWER_LS_R, {0, 0, 716, 758, 704, 0}},
    {VGA_VIEWER_PRIMARY_LINE, {0, 0, 720, 762, 708, 0}},
    {VGA_VIEWER_PRIMARY_LU0, {0, 0, 721, 763, 709, 0}},
};
constexpr int nothing_selected[VGA_NODEW_ADD] = {734, 754, 724, 766, 712, 743};
constexpr int add_help = 700;

NAME_FIELD name_of(NB_BYTE type, const void* record) {
    constexpr int name8 = 8;
    switch (type) {
    case VGA_VIEWER_NODE:
        return {NAME::LOCAL, sizeof(NB_NODE_NAME), static_cast<const vga_node*>(record)->node_name};
    case VGA_VIEWER_PORT:
        return {NAME::LOCAL, name8, static_cast<const vga_port*>(record)->vcb->port_name};
    case VGA_VIEWER_LS:
    case VGA_VIEWER_LS_NO_PU:
        return {NAME::LOCAL, name8, static_cast<const vga_ls*>(record)->vcb->ls_name};
    case VGA_VIEWER_LOCAL_PU:
        return {NAME::EBCDIC, name8, static_cast<const vga_pu*>(record)->vcb.pu_name};
    case VGA_VIEWER_DEPLU:
        return {NAME::EBCDIC, name8,
                vga_is_lu62(record) ? static_cast<const vga_lu62*>(record)->vcb.lu_name
                                    : static_cast<const vga_lu03*>(record)->vcb.lu_name};
    case VGA_VIEWER_DOWN_LU:
        return {NAME::EBCDIC, name8, static_cast<const vga_down_lu*>(record)->vcb.dslu_name};
    case VGA_VIEWER_LU62:
        return {NAME::EBCDIC, name8, static_cast<const vga_lu62*>(record)->vcb.lu_name};
    case VGA_VIEWER_MODE:
        return {NAME::EBCDIC, name8, static_cast<const vga_mode*>(record)->vcb.mode_name};
    case VGA_VIEWER_REM_SYS:
        return {NAME::EBCDIC, sizeof(NB_FQNAME), static_cast<const vga_rem_sys*>(record)->cp_name};
    case VGA_VIEWER_REM_PLU:
    case VGA_VIEWER_REM_PLU_NO_SESS:
        return {NAME::EBCDIC, sizeof(NB_FQNAME),
                static_cast<const vga_rem_plu*>(record)->key.plu_name};
    case VGA_VIEWER_LS_R: {
        const auto* route = static_cast<const vga_ls_routing*>(record);
        if (vga_is_wildcard(route)) {
            return {NAME::TEXT, 0, gvga_messages[873]};
        }
        return {NAME::EBCDIC, sizeof(NB_FQNAME), route->vcb.key.plu_name};
    }
    case VGA_VIEWER_PRIMARY_LINE: {
        const PRIMARY_LINE_ENTRY& entry = static_cast<const vga_primary_line*>(record)->vcb;
        return {NAME::LOCAL, sizeof entry.line_name, entry.line_name};
    }
    case VGA_VIEWER_PRIMARY_LU0:
        return {NAME::LOCAL, name8, static_cast<const vga_primary_lu0*>(record)->vcb.lu_name};
    default:
        return {NAME::TEXT, 0, ""};
    }
}

} // namespace

VGA_NODEW_STATES vga_nodew_button_states(const vga_node* node, NB_BYTE type, NB_LONG count,
                                         const void* record) {
    VGA_NODEW_STATES states{};
    if (node == nullptr || count == 0 || record == nullptr) {
        return states;
    }
    if (count > 1) {
        states.sensitive[VGA_NODEW_DELETE] = true;
        return states;
    }
    if (is_heading(type, record)) {
        return states;
    }
    const START_STOP management = start_stop(node, type, record);
    const bool status_only = has_status_only(type, record);
    const bool deletable = can_delete(type, record);
    states.sensitive[VGA_NODEW_START] = management.start;
    states.sensitive[VGA_NODEW_STOP] = management.stop;
    states.sensitive[VGA_NODEW_STATUS] = status_only || has_status(node, type);
    states.sensitive[VGA_NODEW_ZOOM] = states.zoom_ok = !status_only;
    states.sensitive[VGA_NODEW_DELETE] = states.sensitive[VGA_NODEW_COPY] = deletable;
    return states;
}

void vga_nodew_set_button_states(vga_dialog* dialog) {
    vga_node_window* window = vga_as_node_window(dialog);
    NB_BYTE type;
    NB_LONG count;
    const void* record = vga_nodew_get_selection(dialog, &type, &count, nullptr);
    VGA_NODEW_STATES states = vga_nodew_button_states(vga_nodew_node(window), type, count, record);
    states.sensitive[VGA_NODEW_ADD] = window->selected_pane != nullptr;
    window->zoom_ok = states.zoom_ok;
    vga_set_tools(window, vga_nodew_tools, states.sensitive);
    if (vga_lost_current_tool(window, vga_nodew_tools)) {
        vga_message_node_window(dialog, 0);
    }
}

void vga_nodew_print_name(int message, NB_BYTE type, const void* record, char* text) {
    const NAME_FIELD name = name_of(type, record);
    if (name.kind == NAME::TEXT) {
        vga_print_msg(text, gvga_messages[message], "s", name.field);
    } else {
        vga_print_msg(text, gvga_messages[message], name.kind == NAME::EBCDIC ? "es" : "cs",
                      name.length, name.field);
    }
}

void vga_nodew_button_help(VGA_NODEW_BUTTON button, NB_BYTE type, NB_LONG count, const void* record,
                           char* text) {
    text[0] = '\0';
    if (button == VGA_NODEW_ADD) {
        vga_print_msg(text, gvga_messages[add_help], "");
        return;
    }
    if (count != 1) {
        vga_print_msg(text, gvga_messages[nothing_selected[button]], "");
        return;
    }
    const auto* row = std::ranges::find(help_rows, type, &HELP_ROW::type);
    if (row == std::end(help_rows) || row->messages[button] == 0) {
        return;
    }
    vga_nodew_print_name(row->messages[button], type, record, text);
}

void vga_message_node_window(vga_dialog* dialog, int message) {
    vga_set_message_bar(vga_as_node_window(dialog)->message_bar,
                        message != 0 ? gvga_messages[message] : "");
}

void vga_nodew_enter_button(Widget widget, XEvent*, String*, Cardinal*) {
    vga_node_window* window = vga_nodew_of(widget);
    if (window == nullptr || !window->built) {
        return;
    }
    const int tool = vga_tool_index(window, vga_nodew_tools, widget);
    if (tool < 0) {
        return;
    }
    gvga_current_button = widget;
    NB_BYTE type;
    NB_LONG count;
    const void* record = vga_nodew_get_selection(&window->common, &type, &count, nullptr);
    char text[2 * VGA_MESSAGE_BUFFER_SIZE];
    vga_nodew_button_help(static_cast<VGA_NODEW_BUTTON>(tool), type, count, record, text);
    vga_set_message_bar(window->message_bar, text);
}

void vga_nodew_leave_button(Widget widget, XEvent*, String*, Cardinal*) {
    vga_node_window* window = vga_nodew_of(widget);
    if (window == nullptr || !window->built) {
        return;
    }
    gvga_current_button = nullptr;
    vga_message_node_window(&window->common, 0);
}
