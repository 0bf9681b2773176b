#include "ui/viewer/viewer_internal.h"

#include <algorithm>

// Clicks, the expand boxes, and selection by dragging.

namespace {

constexpr unsigned long DRAG_TICK = 50; // milliseconds between two steps of automatic scrolling

vga_viewer_root* root_of(XtPointer client_data) {
    return static_cast<vga_viewer_root*>(client_data);
}

// The row under a point of the window, or null.
vga_viewer* row_under(vga_viewer_root* root, int y) {
    const std::int64_t position = std::int64_t{root->y_offset} + y;
    return position >= 0 ? vga_find_viewer(root, static_cast<NB_ULONG>(position)) : nullptr;
}

vga_viewer* row_under_or_last(vga_viewer_root* root, int y) {
    vga_viewer* viewer = row_under(root, y);
    return viewer != nullptr ? viewer : vga_viewer_last_visible(root);
}

// The pointer's place when the event is a button's; false for keys.
bool pointer_event(const XmDrawnButtonCallbackStruct* data, int* x, int* y) {
    const XEvent* event = data->event;
    if (event == nullptr || (event->type != ButtonPress && event->type != ButtonRelease)) {
        return false;
    }
    *x = event->xbutton.x;
    *y = event->xbutton.y;
    return true;
}

bool hits_expand_box(const vga_viewer_root* root, const vga_viewer* viewer, int x) {
    const VGA_VIEWER_DESC& desc = vga_viewer_desc(viewer);
    const int left = desc.level * gvga_metrics.indent_width;
    const int pointer = x + static_cast<int>(root->x_offset);
    return desc.expandable && viewer->child_count > 0 && pointer >= left &&
           pointer < left + gvga_metrics.expand_icon_width;
}

void drag_step(vga_viewer_root* root, vga_viewer* viewer, bool leaving, bool upward) {
    const auto drag_cb = vga_viewer_desc(viewer).drag_cb;
    if (drag_cb != nullptr) {
        drag_cb(viewer->data, leaving, upward);
    } else {
        vga_viewer_drag_cb(viewer, root, leaving, upward);
    }
}

void start_drag_timer(vga_viewer_root* root) {
    root->drag_timer = XtAppAddTimeOut(
        XtWidgetToApplicationContext(root->draw_widget), DRAG_TICK, vga_viewer_drag_timer,
        reinterpret_cast<XtPointer>(static_cast<std::uintptr_t>(root->handle)));
}

void stop_drag_timer(vga_viewer_root* root) {
    if (root->drag_timer != 0) {
        XtRemoveTimeOut(root->drag_timer);
        root->drag_timer = 0;
    }
}

} // namespace

void vga_viewer_stop_drag(vga_viewer_root* root) {
    root->dragging = 0;
    root->last_dragged = nullptr;
    stop_drag_timer(root);
}

void vga_viewer_arm(Widget, XtPointer client_data, XtPointer call_data) {
    vga_viewer_root* root = root_of(client_data);
    auto* data = static_cast<XmDrawnButtonCallbackStruct*>(call_data);
    int x = 0;
    int y = 0;
    if (!pointer_event(data, &x, &y)) {
        return;
    }
    vga_clear_outline_selection(root);
    vga_viewer* viewer = row_under(root, y);
    if (viewer == nullptr) {
        return;
    }
    if (const auto arm_cb = vga_viewer_desc(viewer).arm_cb) {
        arm_cb(viewer->data, data);
    }
    if (root->select_anchor != nullptr) {
        root->dragging = 1;
        root->last_dragged = viewer;
    }
}

void vga_viewer_activate(Widget, XtPointer client_data, XtPointer call_data) {
    vga_viewer_root* root = root_of(client_data);
    auto* data = static_cast<XmDrawnButtonCallbackStruct*>(call_data);
    int x = 0;
    int y = 0;
    if (!pointer_event(data, &x, &y)) {
        return;
    }
    vga_viewer* viewer = row_under(root, y);
    if (viewer == nullptr) {
        root->last_activated = nullptr;
        return;
    }
    const bool toggled = hits_expand_box(root, viewer, x);
    if (toggled && viewer->expanded) {
        vga_viewer_contract(root, viewer, true);
    } else if (toggled) {
        vga_expand_viewer(root, viewer);
    }
    const bool first_click = toggled || viewer != root->last_activated;
    // Before the call: the owner may delete the row.
    root->last_activated = viewer;
    if (const auto act_cb = vga_viewer_desc(viewer).act_cb) {
        if (first_click) {
            data->click_count = 1;
        }
        act_cb(viewer->data, data);
    }
}

void vga_viewer_disarm(Widget, XtPointer client_data, XtPointer) {
    vga_viewer_stop_drag(root_of(client_data));
}

void vga_viewer_motion(Widget, XtPointer client_data, XEvent* event, Boolean*) {
    vga_viewer_root* root = root_of(client_data);
    const int y = event->xmotion.y;
    if (root->dragging && y >= 0 && y < root->view_height) {
        vga_viewer_drag_to(root, row_under_or_last(root, y));
    }
}

void vga_viewer_leave_hierarchy(Widget, XtPointer client_data, XEvent*, Boolean*) {
    vga_viewer_root* root = root_of(client_data);
    if (root->dragging && root->drag_timer == 0) {
        start_drag_timer(root);
    }
}

void vga_viewer_enter_hierarchy(Widget, XtPointer client_data, XEvent*, Boolean*) {
    stop_drag_timer(root_of(client_data));
}

void vga_viewer_drag_timer(XtPointer handle, XtIntervalId*) {
    vga_viewer_root* root = root_of(
        nba_validate_handle(static_cast<NB_HANDLE>(reinterpret_cast<std::uintptr_t>(handle))));
    if (root == nullptr) {
        return;
    }
    root->drag_timer = 0;
    if (!root->displayed || !root->dragging) {
        return;
    }
    Window window = None;
    int root_x = 0;
    int root_y = 0;
    int x = 0;
    int y = 0;
    unsigned buttons = 0;
    XQueryPointer(XtDisplay(root->draw_widget), XtWindow(root->draw_widget), &window, &window,
                  &root_x, &root_y, &x, &y, &buttons);
    const int two_rows = 2 * gvga_metrics.item_height;
    if (y < 0) {
        vga_viewer_scroll_view(root, -two_rows);
        vga_viewer_drag_to(root, row_under_or_last(root, 0));
    } else if (y >= root->view_height) {
        vga_viewer_scroll_view(root, two_rows);
        vga_viewer_drag_to(root, row_under_or_last(root, std::max(root->view_height - 1, 0)));
    }
    if (root->dragging && root->drag_timer == 0) {
        start_drag_timer(root);
    }
}

void vga_viewer_drag_to(vga_viewer_root* root, vga_viewer* target) {
    if (!root->dragging || target == nullptr || target == root->last_dragged) {
        return;
    }
    if (!VGA_ASSERT(root->last_dragged != NULL)) {
        return;
    }
    vga_viewer* const last = root->last_dragged;
    const bool upward = vga_viewer_position(target) < vga_viewer_position(last);
    vga_viewer* const upper = upward ? target : last;
    vga_viewer* const lower = upward ? last : target;

    drag_step(root, last, true, upward);
    for (vga_viewer* viewer = vga_viewer_get_next_item(root, upper);
         root->dragging && viewer != nullptr && viewer != lower;
         viewer = vga_viewer_get_next_item(root, viewer)) {
        drag_step(root, viewer, false, upward);
        if (root->dragging) {
            drag_step(root, viewer, true, upward);
        }
    }
    if (root->dragging) {
        drag_step(root, target, false, upward);
    }
    if (root->dragging) {
        root->last_dragged = target;
    }
    vga_viewer_refresh_select_type(root);
}

void vga_viewer_drag_cb(vga_viewer* viewer, vga_viewer_root* root, bool leaving, bool upward) {
    const bool dragging = VGA_ASSERT(root->dragging);
    const vga_viewer* const anchor = root->select_anchor;
    if (!VGA_ASSERT(root->select_anchor != NULL) || !dragging || viewer->parent != anchor->parent ||
        !vga_viewer_selectable(viewer)) {
        return;
    }
    const std::int64_t d =
        std::int64_t{vga_viewer_ypos(viewer)} - std::int64_t{vga_viewer_ypos(anchor)};
    if (leaving) {
        if (upward ? d > 0 : d < 0) {
            root->select_count += vga_viewer_set_select(root, viewer, false);
            if (root->outline_viewer == viewer) {
                vga_clear_outline_selection(root);
            }
        }
    } else {
        vga_clear_outline_selection(root);
        root->outline_viewer = viewer;
        if (upward ? d < 0 : d > 0) {
            root->select_count += vga_viewer_set_select(root, viewer, anchor->selected);
        }
        vga_update_viewer(root, viewer);
    }
    if (root->select_count == 0) {
        vga_viewer_forget_selection(root);
    }
}
