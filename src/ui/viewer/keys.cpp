#include "ui/framework/dialog.h"
#include "ui/viewer/viewer_internal.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace {

vga_viewer* current_row(vga_viewer_root* root) {
    return root->outline_viewer != nullptr ? root->outline_viewer
                                           : vga_viewer_get_selected_viewer(root);
}

// True for a row that is only ever selected by itself.
bool alone(const vga_viewer* viewer) {
    const VGA_VIEWER_DESC& desc = vga_viewer_desc(viewer);
    return desc.alone != nullptr && desc.alone(viewer->data);
}

// Tells the window of a row that the keyboard changed the selection.
void selection_changed(vga_viewer_root* root, const vga_viewer* viewer) {
    if (const auto disarm_cb = vga_viewer_desc(viewer).disarm_cb) {
        disarm_cb(root->draw_widget, nullptr, nullptr);
    }
}

void select_by_key(vga_viewer_root* root, vga_viewer* viewer, bool toggle, bool extend,
                   bool space) {
    vga_viewer_scroll_into_view(root, viewer);
    vga_viewer_select(viewer, root, toggle, extend, true, space);
    selection_changed(root, viewer);
}

void select_first(vga_viewer_root* root) {
    vga_viewer* viewer = vga_viewer_top(root->top_items);
    while (viewer != nullptr && !vga_viewer_selectable(viewer)) { // a heading
        viewer = vga_viewer_get_next_item(root, viewer);
    }
    if (viewer != nullptr) {
        select_by_key(root, viewer, false, false, false);
    }
}

vga_viewer* page_up(vga_viewer_root* root, const vga_viewer* current) {
    const NB_ULONG position = vga_viewer_position(current);
    vga_viewer* found =
        position >= root->page_span ? vga_find_viewer(root, position - root->page_span) : nullptr;
    return found != nullptr ? found : vga_viewer_top(root->top_items);
}

vga_viewer* page_down(vga_viewer_root* root, const vga_viewer* current) {
    vga_viewer* found = vga_find_viewer(root, vga_viewer_position(current) + root->page_span);
    return found != nullptr ? found : vga_viewer_last_visible(root);
}

// The sibling of the current row nearest to a row found by paging: first towards the current row,
// then away from it.
vga_viewer* nearest_sibling(vga_viewer_root* root, vga_viewer* current, vga_viewer* found,
                            bool upward) {
    const auto towards = upward ? vga_viewer_get_next_item : vga_viewer_get_prev_item;
    const auto away = upward ? vga_viewer_get_prev_item : vga_viewer_get_next_item;
    const auto sibling = [&](const vga_viewer* viewer) {
        return viewer->parent == current->parent;
    };
    vga_viewer* viewer = found;
    while (viewer != nullptr && viewer != current && !sibling(viewer)) {
        viewer = towards(root, viewer);
    }
    if (viewer != current || found == current) {
        return viewer;
    }
    for (viewer = found; viewer != nullptr && !sibling(viewer);) {
        viewer = away(root, viewer);
    }
    return viewer;
}

vga_viewer* any_target(vga_viewer_root* root, vga_viewer* current, int move) {
    switch (move) {
    case VGA_VIEWER_PREVIOUS:
        return vga_viewer_get_prev_item(root, current);
    case VGA_VIEWER_NEXT:
        return vga_viewer_get_next_item(root, current);
    case VGA_VIEWER_PAGE_UP:
        return page_up(root, current);
    case VGA_VIEWER_PAGE_DOWN:
        return page_down(root, current);
    case VGA_VIEWER_FIRST:
        return vga_viewer_top(root->top_items);
    case VGA_VIEWER_LAST:
        return vga_viewer_last_visible(root);
    }
    return nullptr;
}

vga_viewer* sibling_target(vga_viewer_root* root, vga_viewer* current, int move) {
    const NTL_AVL_TREE& siblings = vga_viewer_siblings(root, current);
    switch (move) {
    case VGA_VIEWER_PREVIOUS:
        return vga_viewer_sibling_above(current);
    case VGA_VIEWER_NEXT:
        return vga_viewer_sibling_below(current);
    case VGA_VIEWER_PAGE_UP:
        return nearest_sibling(root, current, page_up(root, current), true);
    case VGA_VIEWER_PAGE_DOWN:
        return nearest_sibling(root, current, page_down(root, current), false);
    case VGA_VIEWER_FIRST:
        return vga_viewer_top(siblings);
    case VGA_VIEWER_LAST:
        return vga_viewer_bottom(siblings);
    }
    return nullptr;
}

void select_siblings(vga_viewer_root* root) {
    vga_viewer* const current = current_row(root);
    if (current == nullptr) {
        return;
    }
    root->outline_viewer = current;
    vga_viewer_key_move(root, VGA_VIEWER_FIRST, true, false);
    if (!VGA_ASSERT(root->outline_viewer != NULL)) {
        return;
    }
    vga_viewer* const first = root->outline_viewer;
    vga_viewer_select(first, root, false, false, true, true);
    selection_changed(root, first);
    vga_viewer_key_move(root, VGA_VIEWER_LAST, true, true);
    vga_viewer_scroll_into_view(root, current);
    vga_viewer_select(current, root, true, false, true, false);
    vga_viewer_refresh_select_type(root);
}

void deselect_others(vga_viewer_root* root) {
    vga_viewer* const outlined = root->outline_viewer;
    const bool keep = outlined != nullptr && outlined->selected;
    vga_viewer_clear_selection(root);
    if (keep) {
        root->select_count += vga_viewer_set_select(root, outlined, true);
        root->select_anchor = outlined;
        root->select_type = outlined->type;
    }
    if (outlined != nullptr) {
        selection_changed(root, outlined);
    }
}

// ---- the key table ----

struct Held {
    bool extend, toggle;
};

template <int Move> void move_by_key(vga_viewer_root* root, Held held) {
    vga_viewer_key_move(root, Move, held.extend, held.toggle);
}

template <int Steps> void step_sideways(vga_viewer_root* root, Held) {
    vga_viewer_scroll_sideways(root, Steps * gvga_metrics.char_width);
}

void home(vga_viewer_root* root, Held held) {
    move_by_key<VGA_VIEWER_FIRST>(root, held);
    vga_viewer_scroll_sideways(root, -std::int64_t{root->x_offset});
}

void space(vga_viewer_root* root, Held held) {
    if (root->outline_viewer != nullptr && vga_viewer_selectable(root->outline_viewer)) {
        select_by_key(root, root->outline_viewer, held.toggle, held.extend, true);
    }
}

void expand(vga_viewer_root* root, Held) {
    vga_viewer* viewer = vga_viewer_get_selected_viewer(root);
    if (viewer != nullptr && vga_viewer_desc(viewer).expandable) {
        vga_expand_viewer(root, viewer);
    }
}

void contract(vga_viewer_root* root, Held) {
    if (vga_viewer* viewer = vga_viewer_get_selected_viewer(root)) {
        vga_viewer_contract(root, viewer, true);
    }
}

void slash(vga_viewer_root* root, Held held) {
    if (held.toggle) {
        select_siblings(root);
    }
}

void backslash(vga_viewer_root* root, Held held) {
    if (held.toggle) {
        deselect_others(root);
    }
}

// Calls what the owner's row of the dialog table names for an action.
template <auto Action> void owner_action(vga_viewer_root* root, Held) {
    if (root->owner == nullptr) {
        return;
    }
    if (const auto action = gvga_uid_desc[root->owner->dialog_id].*Action) {
        action(root->draw_widget, nullptr, nullptr);
    }
}

struct Key_row {
    KeySym keys[3]; // NoSymbol: no further one
    void (*act)(vga_viewer_root* root, Held held);
};
const Key_row key_table[] = {
    {{XK_Up, XK_KP_Up}, move_by_key<VGA_VIEWER_PREVIOUS>},
    {{XK_Down, XK_KP_Down}, move_by_key<VGA_VIEWER_NEXT>},
    {{XK_Prior, XK_KP_Prior}, move_by_key<VGA_VIEWER_PAGE_UP>},
    {{XK_Next, XK_KP_Next}, move_by_key<VGA_VIEWER_PAGE_DOWN>},
    {{XK_Home, XK_KP_Home}, home},
    {{XK_End, XK_KP_End}, move_by_key<VGA_VIEWER_LAST>},
    {{XK_Left, XK_KP_Left}, step_sideways<-1>},
    {{XK_Right, XK_KP_Right}, step_sideways<1>},
    {{XK_space, XK_KP_Space}, space},
    {{XK_plus, XK_equal, XK_KP_Add}, expand},
    {{XK_minus, XK_KP_Subtract}, contract},
    {{XK_slash, XK_KP_Divide}, slash},
    {{XK_backslash}, backslash},
    {{XK_Insert}, owner_action<&VGA_UID_DESC::add_items>},
    {{XK_Return, XK_KP_Enter}, owner_action<&VGA_UID_DESC::properties>},
    {{XK_Delete}, owner_action<&VGA_UID_DESC::delete_items>},
};

} // namespace

void vga_viewer_key_move(vga_viewer_root* root, int move, bool extend, bool toggle) {
    if (!VGA_ASSERT_TEXT(move >= VGA_VIEWER_PREVIOUS && move <= VGA_VIEWER_LAST, "FALSE")) {
        return;
    }
    vga_viewer* const current = current_row(root);
    if (current == nullptr) {
        select_first(root);
        return;
    }
    if (current->type == VGA_VIEWER_NODE) { // a list with one selected row at most
        extend = toggle = false;
    }
    vga_viewer* target;
    if (extend || toggle) {
        if (alone(current)) {
            return;
        }
        target = sibling_target(root, current, move);
        while (target != nullptr && alone(target)) {
            target = vga_viewer_sibling_above(target);
        }
    } else {
        target = any_target(root, current, move);
    }
    while (target != nullptr && !vga_viewer_selectable(target)) {
        target = vga_viewer_get_next_item(root, target);
    }
    if (target != nullptr && target != current) {
        select_by_key(root, target, toggle, extend, false);
    }
}

void vga_viewer_key_input(Widget, XtPointer client_data, XEvent* event, Boolean*) {
    auto* root = static_cast<vga_viewer_root*>(client_data);
    if (root->dragging || event->type != KeyPress) {
        return;
    }
    char characters[16];
    KeySym key = NoSymbol;
    XLookupString(&event->xkey, characters, sizeof characters, &key, nullptr);
    const Held held = {(event->xkey.state & ShiftMask) != 0,
                       (event->xkey.state & ControlMask) != 0};
    for (const Key_row& row : key_table) {
        for (KeySym known : row.keys) {
            if (known != NoSymbol && known == key) {
                row.act(root, held);
                return;
            }
        }
    }
}
