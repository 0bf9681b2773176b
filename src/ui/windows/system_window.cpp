// The life of the system window: it appears, waits for the domain to be read, shows it, follows its
// nodes and goes with the program.
#include "ui/windows/system_window.h"

#include "shell/messages.h"
#include "ui/framework/window_menu.h"
#include "ui/windows/node_window.h"
#include "ui/windows/system_window_internal.h"

namespace {

constexpr int title_with_server = 882;
constexpr int title_alone = 883;

template <typename Use> void for_each_node(Use use) {
    for (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree); node != nullptr;
         node = static_cast<vga_node*>(ntl_avl_next(&node->node))) {
        use(node);
    }
}

void set_title(const vga_system_window* window) {
    const auto& server = gvga_system->local_server;
    char title[2 * VGA_MESSAGE_BUFFER_SIZE];
    vga_print_msg(title, gvga_messages[server[0] != '\0' ? title_with_server : title_alone], "cs",
                  static_cast<int>(sizeof server), server);
    vga_set_window_title(&window->common, title, title);
}

// One entry per node, numbered in the order of the list.
void fill_window_menu(const vga_system_window* window) {
    vga_remove_all_node_window_widgets(window->window_menu);
    for_each_node([&](vga_node* node) { vga_add_node_window_widget(window->window_menu, node); });
}

void show_nodes(vga_system_window* window) {
    vga_viewer_root* root = &gvga_system->node_viewer_root;
    root->owner = &window->common;
    vga_viewer_display_root(root, window->nodes, window->h_scroll, window->v_scroll);
    vga_viewer_key_move(root, VGA_VIEWER_PREVIOUS, false, false);
}

bool is_shown(const vga_system_window* window) {
    return window != nullptr && gvga_system->node_viewer_root.displayed;
}

} // namespace

bool vga_display_system_window(bool ready) {
    vga_dialog* dialog = gvga_system->gui_data.system_window;
    if (dialog == nullptr &&
        !vga_get_dialog(VGA_UID_SYSTEM_WINDOW, nullptr, gvga_system, &dialog)) {
        return false;
    }
    gvga_system->gui_data.system_window = dialog;
    auto* window = reinterpret_cast<vga_system_window*>(dialog);
    if (!ready) {
        vga_show_loading(dialog, window->message_bar);
        return true;
    }
    if (is_shown(window)) {
        vga_raise_dialog(dialog);
        return true;
    }
    set_title(window);
    vga_set_sensitive(dialog->widget, true);
    vga_set_message_bar(window->message_bar, "");
    vga_sysw_set_button_states(dialog);
    show_nodes(window);
    fill_window_menu(window);
    vga_set_toolbar_width(dialog->shell, window->tool_bar);
    vga_display_dialog(dialog);
    XmProcessTraversal(window->nodes, XmTRAVERSE_CURRENT);
    vga_mark_window_ready(dialog);
    return true;
}

bool vga_sysw_close_proc(vga_dialog*, bool forced) {
    if (!forced) {
        vga_check_exit_ok();
        return false;
    }
    vga_viewer_root* root = &gvga_system->node_viewer_root;
    vga_viewer_undisplay(root);
    root->owner = nullptr;
    gvga_system->gui_data.system_window = nullptr;
    return true;
}

Widget vga_sysw_focus_widget(vga_dialog* dialog) {
    return reinterpret_cast<vga_system_window*>(dialog)->nodes;
}

void vga_update_node_viewer(vga_node* node) {
    if (AVL_IN_TREE(node->viewer.node)) {
        vga_update_viewer(&gvga_system->node_viewer_root, &node->viewer);
    }
    if (is_shown(vga_sysw())) {
        vga_sysw_set_button_states(&vga_sysw()->common);
    }
    vga_update_node_window(node);
}

void vga_sysw_node_added(vga_node*) {
    if (is_shown(vga_sysw())) {
        fill_window_menu(vga_sysw());
    }
}

void vga_sysw_node_removed(vga_node* node) {
    if (is_shown(vga_sysw())) {
        vga_remove_node_window_widget(vga_sysw()->window_menu, node);
        set_title(vga_sysw());
    }
}

void vga_sysw_roles_changed() {
    if (is_shown(vga_sysw())) {
        set_title(vga_sysw());
        vga_sysw_set_button_states(&vga_sysw()->common);
    }
}
