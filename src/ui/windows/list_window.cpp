#include "ui/windows/list_window.h"

#include "shell/messages.h"
#include "store/records.h"
#include "ui/windows/window_parts.h"

#include <Xm/XmAll.h>

#include <string>
#include <string_view>

namespace {

constexpr int first_help_message = 60; // in the order of the buttons

struct TOOL_ICONS {
    VGA_ICON normal, insensitive;
};
constexpr TOOL_ICONS tool_icons[VGA_LIST_BUTTON_COUNT] = {
    {VGA_ICON_ADD, VGA_ICON_ADDINS},       {VGA_ICON_DEL, VGA_ICON_DELINS},
    {VGA_ICON_ZOOM, VGA_ICON_ZOOMINS},     {VGA_ICON_COPY, VGA_ICON_COPYINS},
    {VGA_ICON_STATUS, VGA_ICON_STATUSINS},
};

vga_list_window* as_list(vga_dialog* dialog) {
    return reinterpret_cast<vga_list_window*>(dialog);
}
// The open window that a widget belongs to, or null.
vga_list_window* window_of(Widget widget) {
    vga_dialog* dialog = vga_dialog_of(widget);
    return dialog != nullptr && dialog->open && dialog->parent_item != nullptr ? as_list(dialog)
                                                                               : nullptr;
}
vga_viewer_root* root_of(const vga_list_window* window, std::size_t pane) {
    return window->row->panes[pane].root(window->common.parent_item);
}

const VGA_LIST_TYPE* type_of(const VGA_LIST_PANE& pane, NB_BYTE type) {
    const auto* found = std::ranges::find(pane.types, type, &VGA_LIST_TYPE::type).base();
    return found != pane.types.data() + pane.types.size() ? found : nullptr;
}

struct SELECTION {
    vga_viewer_root* root;
    const VGA_LIST_PANE* pane;
    const VGA_LIST_TYPE* type; // null: nothing, or a heading
    void* record;
    NB_LONG count;
};
SELECTION selection_of(const vga_list_window* window) {
    vga_viewer_root* root = root_of(window, window->selected_pane);
    const VGA_LIST_PANE& pane = window->row->panes[window->selected_pane];
    NB_BYTE type;
    void* record = vga_viewer_get_selection(root, &type);
    return {root, &pane, record != nullptr ? type_of(pane, type) : nullptr, record,
            root->select_count};
}

// ---- widgets ----

bool find(vga_list_window* window, const VGA_LIST_NAME& name, Widget* kept) {
    *kept = nullptr;
    if (name.name == nullptr) {
        return true;
    }
    *kept = XtNameToWidget(window->common.widget, name.name);
    if (!VGA_ASSERT_TEXT(*kept != nullptr, name.missing)) {
        return false;
    }
    XtVaSetValues(*kept, XmNuserData, window, nullptr);
    return true;
}

void put_icons(const vga_list_window* window) {
    for (std::size_t i = 0; i < window->row->panes.size(); ++i) {
        if (window->panes[i].icon != nullptr) {
            vga_put_widget_pixmap(window->panes[i].icon, window->row->panes[i].shows);
        }
    }
    for (int i = 0; i < VGA_LIST_BUTTON_COUNT; ++i) {
        if (Widget icon = window->buttons[i].icon) {
            vga_put_widget_pixmap(icon, tool_icons[i].normal);
            XtVaSetValues(icon, XmNlabelInsensitivePixmap, gvga_pixmaps[tool_icons[i].insensitive],
                          nullptr);
        }
    }
}

// A list's own translations lose against those with which the toolkit follows the focus, so these
// are added to the finished widget.
void follow_focus(const vga_list_window* window) {
    if (window->row->focus_action == nullptr) {
        return;
    }
    const std::string action = window->row->focus_action;
    const std::string text = "<FocusIn>: " + action +
                             "(1) PrimitiveFocusIn()\n<FocusOut>: " + action +
                             "(0) PrimitiveFocusOut()";
    const XtTranslations translations = XtParseTranslationTable(text.c_str());
    for (std::size_t i = 0; i < window->row->panes.size(); ++i) {
        XtOverrideTranslations(window->panes[i].list, translations);
    }
}

void paint(const vga_list_window* window, std::size_t pane, bool selected) {
    vga_paint_pane(window->panes[pane].form, window->background, window->foreground,
                   window->row->panes[pane].shows, selected);
}

// The pane takes the selection, the keyboard and the reverse colours.
void select_pane(vga_list_window* window, std::size_t pane) {
    if (pane != window->selected_pane) {
        paint(window, window->selected_pane, false);
        vga_viewer_clear_selection(root_of(window, window->selected_pane));
        window->selected_pane = pane;
        paint(window, pane, true);
    }
    XmProcessTraversal(window->panes[pane].list, XmTRAVERSE_CURRENT);
}

void set_title(const vga_list_window* window) {
    char title[2 * VGA_MESSAGE_BUFFER_SIZE];
    const char* message = gvga_messages[window->row->title];
    if (window->row->of_domain) {
        vga_print_msg(title, message, "");
    } else {
        const auto* node = static_cast<const vga_node*>(window->common.parent_item);
        vga_print_msg(title, message, "cs", int{sizeof node->node_name}, node->node_name);
    }
    vga_set_window_title(&window->common, title, title);
}

void show_lists(vga_list_window* window) {
    for (std::size_t i = 0; i < window->row->panes.size(); ++i) {
        vga_viewer_root* root = root_of(window, i);
        root->owner = &window->common;
        vga_viewer_display_root(root, window->panes[i].list, window->panes[i].h_scroll,
                                window->panes[i].v_scroll);
    }
    vga_viewer_key_move(root_of(window, 0), VGA_VIEWER_PREVIOUS, false, false);
}

// The first size holds until the operator changes it; the window is never lower than at first.
void fix_size(const vga_list_window* window) {
    for (std::size_t i = 0; i < window->row->panes.size(); ++i) {
        XtVaSetValues(window->panes[i].form, XmNresizePolicy, XmRESIZE_NONE, nullptr);
    }
    vga_set_minimum_height(window->common.shell);
}

void open_record(vga_list_window* window, VGA_OPEN how) {
    const SELECTION selection = selection_of(window);
    if (selection.type != nullptr && selection.count == 1) {
        vga_open_dialog(selection.type->dialog_id, &window->common, selection.record, how);
    }
}

} // namespace

// ---- life ----

bool vga_open_list_window(const VGA_LIST_WINDOW& row, vga_dialog* parent, void* owner) {
    if (vga_dialog* open = *row.open(owner)) {
        vga_go_to_dialog(open);
        return true;
    }
    vga_dialog* dialog = nullptr;
    if (!vga_get_dialog(row.dialog_id, parent, owner, &dialog)) {
        return false;
    }
    *row.open(owner) = dialog;
    vga_list_window* window = as_list(dialog);
    window->selected_pane = 0;
    XtVaGetValues(window->panes[0].form, XmNbackground, &window->background, XmNforeground,
                  &window->foreground, nullptr);
    set_title(window);
    show_lists(window);
    vga_list_set_button_states(dialog);
    vga_display_dialog(dialog);
    fix_size(window);
    paint(window, 0, true);
    XmProcessTraversal(window->panes[0].list, XmTRAVERSE_CURRENT);
    return true;
}

bool vga_get_list_widgets(vga_dialog* dialog, const VGA_LIST_WINDOW& row) {
    vga_list_window* window = as_list(dialog);
    window->row = &row;
    bool complete = true;
    for (std::size_t i = 0; i < row.panes.size(); ++i) {
        const VGA_LIST_PANE& names = row.panes[i];
        auto& pane = window->panes[i];
        complete &= find(window, names.list, &pane.list);
        complete &= find(window, names.h_scroll, &pane.h_scroll);
        complete &= find(window, names.v_scroll, &pane.v_scroll);
        complete &= find(window, names.form, &pane.form);
        complete &= find(window, names.icon, &pane.icon);
    }
    for (std::size_t i = 0; i < row.buttons.size(); ++i) {
        complete &= find(window, row.buttons[i].button, &window->buttons[i].button);
        complete &= find(window, row.buttons[i].icon, &window->buttons[i].icon);
        complete &= find(window, row.buttons[i].menu_item, &window->buttons[i].menu_item);
    }
    complete &= find(window, row.message_bar, &window->message_bar);
    for (const char* name : row.others) {
        complete &= vga_put_widget_context(dialog, name) != nullptr;
    }
    if (!complete) {
        return false;
    }
    put_icons(window);
    follow_focus(window);
    if (row.buttons[VGA_LIST_ADD].menu_item.name == nullptr) {
        vga_install_mnemonics(dialog->widget); // of the buttons: there is no menu bar
    }
    vga_set_first_size(dialog, row.columns, row.rows);
    return true;
}

void vga_close_list_window(vga_dialog* dialog) {
    vga_list_window* window = as_list(dialog);
    vga_forget_deleting(dialog);
    if (dialog->parent_item == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < window->row->panes.size(); ++i) {
        vga_viewer_root* root = root_of(window, i);
        vga_viewer_undisplay(root);
        root->owner = nullptr;
        paint(window, i, false);
    }
    *window->row->open(dialog->parent_item) = nullptr;
}

Widget vga_list_focus_widget(vga_dialog* dialog) {
    const vga_list_window* window = as_list(dialog);
    return window->panes[window->selected_pane].list;
}

// ---- rows ----

void vga_list_arm(vga_dialog* dialog, vga_viewer* row, const XmDrawnButtonCallbackStruct* data) {
    if (dialog == nullptr) {
        return;
    }
    vga_list_window* window = as_list(dialog);
    const auto panes = window->row->panes;
    const auto pane = std::ranges::find_if(
        panes, [&](const VGA_LIST_PANE& each) { return type_of(each, row->type) != nullptr; });
    if (!VGA_ASSERT_TEXT(pane != panes.end(), "FALSE")) {
        return;
    }
    select_pane(window, static_cast<std::size_t>(pane - panes.begin()));
    const unsigned state = data->event->xbutton.state;
    vga_viewer_select(row, root_of(window, window->selected_pane), (state & ControlMask) != 0,
                      (state & ShiftMask) != 0, false, false);
    vga_list_set_button_states(dialog);
}

void vga_list_activate(vga_dialog* dialog, const XmDrawnButtonCallbackStruct* data) {
    if (dialog != nullptr && data->click_count == 2 && as_list(dialog)->zoom_ok) {
        open_record(as_list(dialog), VGA_OPEN_PROPERTIES);
    }
}

void vga_list_set_button_states(vga_dialog* dialog) {
    vga_list_window* window = as_list(dialog);
    if (dialog->parent_item == nullptr) {
        return;
    }
    const SELECTION selection = selection_of(window);
    const bool any = selection.type != nullptr && selection.count > 0;
    const bool one = any && selection.count == 1;
    window->zoom_ok = one && selection.type->dialog_id != 0;
    std::array<bool, VGA_LIST_BUTTON_COUNT> states{};
    states[VGA_LIST_ADD] = true;
    states[VGA_LIST_DELETE] = any && selection.type->deleting != nullptr;
    states[VGA_LIST_MODIFY] = states[VGA_LIST_COPY] = window->zoom_ok;
    states[VGA_LIST_STATUS] = one;
    for (std::size_t i = 0; i < states.size(); ++i) {
        for (Widget widget : {window->buttons[i].button, window->buttons[i].menu_item}) {
            if (widget != nullptr) {
                vga_set_sensitive(widget, states[i]);
            }
        }
        if (!states[i] && window->buttons[i].icon != nullptr &&
            gvga_current_button == window->buttons[i].icon) {
            vga_list_leave_button(gvga_current_button);
        }
    }
}

// The keyboard, or the end of a click, changed the selection of a list.
void vga_list_disarm(Widget widget) {
    vga_list_window* window = window_of(widget);
    if (window == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < window->row->panes.size(); ++i) {
        if (window->panes[i].list == widget && i != window->selected_pane) {
            select_pane(window, i);
        }
    }
    vga_list_set_button_states(&window->common);
}

// ---- buttons ----

bool vga_list_may_change(vga_dialog* dialog, bool of_domain) {
    if (!vga_may_change(dialog)) {
        return false;
    }
    if (of_domain && gvga_system->config_file_handle == 0) {
        vga_display_info_dialog(dialog, 217, "mastercfg", nullptr, 0, "");
        return false;
    }
    return true;
}

void vga_list_add(Widget widget) {
    vga_list_window* window = window_of(widget);
    if (window != nullptr && vga_list_may_change(&window->common, window->row->of_domain)) {
        vga_open_dialog(window->row->panes[window->selected_pane].add_dialog_id, &window->common,
                        window->common.parent_item, VGA_OPEN_ADD);
    }
}

void vga_list_modify(Widget widget) {
    vga_list_window* window = window_of(widget);
    if (window != nullptr && window->zoom_ok) {
        open_record(window, VGA_OPEN_PROPERTIES);
    }
}

void vga_list_copy(Widget widget) {
    vga_list_window* window = window_of(widget);
    if (window != nullptr && window->zoom_ok &&
        vga_list_may_change(&window->common, window->row->of_domain)) {
        open_record(window, VGA_OPEN_COPY);
    }
}

void vga_list_delete(Widget widget) {
    vga_list_window* window = window_of(widget);
    if (window == nullptr) {
        return;
    }
    const SELECTION selection = selection_of(window);
    if (selection.type != nullptr && selection.type->deleting != nullptr &&
        vga_list_may_change(&window->common, window->row->of_domain)) {
        vga_delete_selected(&window->common, selection.root, *selection.type->deleting,
                            window->common.parent_item);
    }
}

void vga_list_status(Widget widget) {
    vga_list_window* window = window_of(widget);
    if (window == nullptr || window->row->status == nullptr) {
        return;
    }
    const SELECTION selection = selection_of(window);
    if (selection.type != nullptr && selection.count == 1) {
        window->row->status(&window->common, selection.record, selection.type->type);
    }
}

void vga_list_enter_button(Widget widget) {
    vga_list_window* window = window_of(widget);
    if (window == nullptr || window->message_bar == nullptr) {
        return;
    }
    for (int i = 0; i < VGA_LIST_BUTTON_COUNT; ++i) {
        if (window->buttons[i].icon == widget) {
            gvga_current_button = widget;
            vga_set_message_bar(window->message_bar, gvga_messages[first_help_message + i]);
        }
    }
}

void vga_list_leave_button(Widget widget) {
    vga_list_window* window = window_of(widget);
    gvga_current_button = nullptr;
    if (window != nullptr && window->message_bar != nullptr) {
        vga_set_message_bar(window->message_bar, "");
    }
}

void vga_list_focus(Widget widget, String* params, Cardinal count) {
    vga_list_window* window = window_of(widget);
    if (window == nullptr || count == 0) {
        return;
    }
    for (std::size_t i = 0; i < window->row->panes.size(); ++i) {
        if (window->panes[i].list == widget) {
            paint(window, i, std::string_view(params[0]) == "1");
        }
    }
}
