// Which pane of the node window holds the selection, and what is selected in it.
#include "common/assert.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "ui/framework/widget_tree.h"
#include "ui/windows/node_window_internal.h"
#include "ui/windows/node_window_rows.h"

#include <Xm/AtomMgr.h>
#include <Xm/MwmUtil.h>
#include <Xm/Protocols.h>
#include <Xm/SashP.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

// ---- colours ----

// Shows a pane, or the node area, in its normal colours or in the reverse ones.
void paint_pane(const vga_node_window* window, Widget pane, bool selected) {
    vga_paint_pane(pane, window->pane_background, window->pane_foreground,
                   pane == window->server ? VGA_ICON_TERMINAL : VGA_ICON_KEY, selected);
}

// ---- sashes ----

// The sashes between the panes, from the top.
std::vector<Widget> sashes_of(const vga_node_window* window) {
    std::vector<Widget> sashes;
    vga_for_each_child(window->paned_window, [&](Widget child) {
        if (XmIsSash(child) && XtIsManaged(child)) {
            sashes.push_back(child);
        }
    });
    std::ranges::sort(sashes, {}, [](Widget sash) {
        Position y = 0;
        XtVaGetValues(sash, XmNy, &y, nullptr);
        return y;
    });
    return sashes;
}

// Lets the keyboard reach one sash, or none.
void open_to_keyboard(const vga_node_window* window, Widget sash) {
    for (Widget each : sashes_of(window)) {
        XtVaSetValues(each, XmNtraversalOn, each == sash, nullptr);
    }
}

void resize_sash(vga_node_window* window, std::size_t number) {
    vga_nodew_deselect_pane(&window->common);
    const std::vector<Widget> sashes = sashes_of(window);
    if (number >= sashes.size()) {
        return;
    }
    window->top_sash = number == 0 ? sashes[number] : nullptr;
    window->bottom_sash = number == 0 ? nullptr : sashes[number];
    open_to_keyboard(window, sashes[number]);
    XmProcessTraversal(sashes[number], XmTRAVERSE_CURRENT);
}

void vga_nodew_resize_top_sash(Widget, XtPointer window, XtPointer) {
    resize_sash(static_cast<vga_node_window*>(window), 0);
}
void vga_nodew_resize_bottom_sash(Widget, XtPointer window, XtPointer) {
    resize_sash(static_cast<vga_node_window*>(window), 1);
}

// ---- selection ----

void clear_other_panes(const vga_node_window* window) {
    vga_node* node = vga_nodew_node(window);
    if (node == nullptr) {
        return;
    }
    for (const VGA_NODEW_PANE& pane : vga_nodew_panes) {
        if (window->*pane.form != window->selected_pane) {
            vga_viewer_clear_selection(&(node->*pane.root));
        }
    }
}

// A pane was clicked beside its rows: it takes the selection over, with the row that it last had.
void select_pane(Widget widget, const VGA_NODEW_PANE& pane) {
    vga_node_window* window = vga_nodew_of(widget);
    if (window == nullptr || !window->built || window->selected_pane == window->*pane.form) {
        return;
    }
    vga_nodew_pane_selection(&window->common, window->*pane.form);
    vga_viewer_root* root = &(vga_nodew_node(window)->*pane.root);
    if (root->outline_viewer != nullptr) {
        vga_viewer_select(root->outline_viewer, root, false, false, false, false);
    }
    vga_nodew_set_button_states(&window->common);
}

} // namespace

const VGA_NODEW_PANE* vga_nodew_selected_pane(const vga_node_window* window) {
    if (window->selected_pane == nullptr) {
        return nullptr;
    }
    const auto pane = std::ranges::find_if(vga_nodew_panes, [&](const VGA_NODEW_PANE& each) {
        return window->*each.form == window->selected_pane;
    });
    return pane != vga_nodew_panes.end() ? pane : nullptr;
}

Widget vga_nodew_focus_widget(vga_dialog* dialog) {
    const vga_node_window* window = vga_as_node_window(dialog);
    const VGA_NODEW_PANE* pane = vga_nodew_selected_pane(window);
    if (pane != nullptr) {
        return window->*pane->draw;
    }
    return window->selected_pane != nullptr ? window->icon_server : nullptr;
}

void vga_nodew_pane_selection(vga_dialog* dialog, Widget pane) {
    vga_node_window* window = vga_as_node_window(dialog);
    if (window->selected_pane != pane) {
        if (window->selected_pane != nullptr) {
            paint_pane(window, window->selected_pane, false);
        }
        paint_pane(window, pane, true);
        window->selected_pane = pane;
    }
    window->top_sash = window->bottom_sash = nullptr;
    open_to_keyboard(window, nullptr);
    if (Widget focus = vga_nodew_focus_widget(dialog)) {
        XmProcessTraversal(focus, XmTRAVERSE_CURRENT);
    }
    clear_other_panes(window);
}

void vga_nodew_deselect_pane(vga_dialog* dialog) {
    vga_node_window* window = vga_as_node_window(dialog);
    if (window->selected_pane != nullptr) {
        paint_pane(window, window->selected_pane, false);
        window->selected_pane = nullptr;
    }
    clear_other_panes(window);
    vga_nodew_set_button_states(dialog);
}

void vga_nodew_clear_selection(vga_node* node) {
    for (const VGA_NODEW_PANE& pane : vga_nodew_panes) {
        vga_viewer_clear_selection(&(node->*pane.root));
    }
}

void* vga_nodew_get_selection(vga_dialog* dialog, NB_BYTE* type, NB_LONG* count,
                              vga_viewer** parent) {
    const vga_node_window* window = vga_as_node_window(dialog);
    vga_node* node = vga_nodew_node(window);
    const VGA_NODEW_PANE* pane = vga_nodew_selected_pane(window);
    void* record = nullptr;
    NB_BYTE selected_type = VGA_VIEWER_SELECT_NONE;
    NB_LONG selected_count = 0;
    vga_viewer* above = nullptr;
    if (node != nullptr && pane != nullptr) {
        vga_viewer_root* root = &(node->*pane->root);
        record = vga_viewer_get_selection(root, &selected_type);
        selected_count = root->select_count;
        const vga_viewer* viewer = vga_viewer_get_selected_viewer(root);
        above = viewer != nullptr ? viewer->parent : nullptr;
    } else if (node != nullptr && window->selected_pane == window->server) {
        record = node;
        selected_type = VGA_VIEWER_NODE;
        selected_count = 1;
    }
    if (type != nullptr) {
        *type = selected_type;
    }
    if (count != nullptr) {
        *count = selected_count;
    }
    if (parent != nullptr) {
        *parent = above;
    }
    return record;
}

void vga_nodew_select_top_pane(Widget widget, XtPointer, XtPointer) {
    select_pane(widget, vga_nodew_panes[0]);
}
void vga_nodew_select_middle_pane(Widget widget, XtPointer, XtPointer) {
    select_pane(widget, vga_nodew_panes[1]);
}
void vga_nodew_select_bottom_pane(Widget widget, XtPointer, XtPointer) {
    select_pane(widget, vga_nodew_panes[2]);
}

void vga_nodew_server_arm_cb(Widget widget, XtPointer, XtPointer) {
    vga_node_window* window = vga_nodew_of(widget);
    if (window == nullptr || !window->built) {
        return;
    }
    vga_nodew_pane_selection(&window->common, window->server);
    vga_nodew_set_button_states(&window->common);
}

// The keyboard, or the end of a click, changed the selection of a pane.
void vga_nodew_disarm(Widget widget, XtPointer, XtPointer) {
    vga_node_window* window = vga_nodew_of(widget);
    if (window == nullptr || !window->built) {
        return;
    }
    for (const VGA_NODEW_PANE& pane : vga_nodew_panes) {
        if (window->*pane.draw == widget && window->*pane.form != window->selected_pane) {
            vga_nodew_pane_selection(&window->common, window->*pane.form);
        }
    }
    vga_nodew_set_button_states(&window->common);
}

void vga_nodew_add_sash_menu(vga_node_window* window) {
    struct ENTRY {
        const char* message;
        int label;
        char mnemonic;
        XtCallbackProc callback;
    };
    constexpr ENTRY entries[] = {
        {"_VGA_RESIZE_TOP_SASH", 65, 'u', vga_nodew_resize_top_sash},
        {"_VGA_RESIZE_BOTTOM_SASH", 66, 'l', vga_nodew_resize_bottom_sash},
    };
    Display* display = XtDisplay(window->common.shell);
    Atom atoms[2];
    for (std::size_t i = 0; i < 2; ++i) {
        atoms[i] = XInternAtom(display, entries[i].message, False);
    }
    const Atom motif_msgs = XInternAtom(display, _XA_MOTIF_WM_MESSAGES, False);
    VGA_ASSERT(atoms[0] != None);
    VGA_ASSERT(atoms[1] != None);
    if (!VGA_ASSERT(motif_msgs != None)) {
        return;
    }
    Widget shell = window->common.shell;
    XmAddWMProtocols(shell, const_cast<Atom*>(&motif_msgs), 1);
    XmAddProtocols(shell, motif_msgs, atoms, 2);
    char menu[2 * VGA_MESSAGE_BUFFER_SIZE];
    int length = 0;
    for (std::size_t i = 0; i < 2; ++i) {
        const ENTRY& entry = entries[i];
        XmAddProtocolCallback(shell, motif_msgs, atoms[i], entry.callback,
                              reinterpret_cast<XtPointer>(window));
        length += std::snprintf(menu + length, sizeof menu - static_cast<std::size_t>(length),
                                "\"%.500s\" _%c f.send_msg %lu\n", gvga_messages[entry.label],
                                entry.mnemonic, atoms[i]);
    }
    XtVaSetValues(shell, XmNmwmMenu, menu, nullptr);
}
