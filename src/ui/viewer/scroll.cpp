#include "shell/globals.h"
#include "ui/framework/dialog.h"
#include "ui/viewer/viewer_internal.h"

#include <Xm/ScrollBar.h>
#include <algorithm>
#include <cstdlib>

namespace {

NB_ULONG item_height() {
    return static_cast<NB_ULONG>(gvga_metrics.item_height);
}

NB_ULONG whole_rows(NB_ULONG pixels) {
    return pixels - pixels % item_height();
}

vga_viewer_root* root_of(XtPointer client_data) {
    return static_cast<vga_viewer_root*>(client_data);
}

void check_message_queues(XtPointer, XtIntervalId*) {
    vga_check_modal_dialog_queues();
}

// Ends the operator's hold on a bar that is about to disappear: it would never see the release.
void release_bar(Widget bar) {
    if (gvga_modal_firewall_widget != bar) {
        return;
    }
    XEvent event = {};
    event.xbutton.type = ButtonRelease;
    event.xbutton.display = XtDisplay(bar);
    event.xbutton.window = XtWindow(bar);
    event.xbutton.time = XtLastTimestampProcessed(XtDisplay(bar));
    XtCallActionProc(bar, "Release", &event, nullptr, 0);
    gvga_modal_firewall_widget = nullptr;
    if (gvga_modal_firewall_count == 0) {
        XtAppAddTimeOut(XtWidgetToApplicationContext(bar), 0, check_message_queues, nullptr);
    }
}

void hide_bar(Widget bar) {
    if (XtIsManaged(bar)) {
        release_bar(bar);
        XtUnmanageChild(bar);
    }
}

// step: of the arrow buttons, in pixels.
void show_bar(Widget bar, NB_ULONG whole, NB_ULONG view, NB_ULONG offset, NB_ULONG step) {
    const int page = static_cast<int>(view < 2 * step ? step : view - step);
    XtVaSetValues(bar, XmNmaximum, static_cast<int>(whole), XmNsliderSize,
                  static_cast<int>(std::max<NB_ULONG>(view, 1)), XmNvalue, static_cast<int>(offset),
                  XmNpageIncrement, page, nullptr);
    if (!XtIsManaged(bar)) {
        XtManageChild(bar);
    }
}

void set_horizontal_bar(vga_viewer_root* root) {
    if (root->max_width > root->view_width) {
        root->x_offset = std::min<NB_ULONG>(root->x_offset, root->max_width - root->view_width);
        show_bar(root->h_scroll_bar, root->max_width, root->view_width, root->x_offset,
                 static_cast<NB_ULONG>(gvga_metrics.char_width));
    } else {
        root->x_offset = 0;
        hide_bar(root->h_scroll_bar);
    }
}

void set_vertical_bar(vga_viewer_root* root) {
    if (root->extra_row && root->total_height - item_height() <= root->view_height) {
        root->total_height -= item_height();
        root->extra_row = 0;
    } else if (!root->extra_row && root->total_height > root->view_height) {
        root->total_height += item_height();
        root->extra_row = 1;
    }
    if (root->total_height > root->view_height) {
        root->y_offset =
            whole_rows(std::min<NB_ULONG>(root->y_offset, root->total_height - root->view_height));
        const NB_ULONG rows = whole_rows(root->view_height);
        root->page_span = rows > item_height() ? rows - item_height() : 0;
        show_bar(root->v_scroll_bar, root->total_height, root->view_height, root->y_offset,
                 item_height());
    } else {
        root->y_offset = 0;
        root->page_span = root->view_height;
        hide_bar(root->v_scroll_bar);
    }
}

// The offset for a scroll by an amount, between 0 and what leaves the view full.
NB_ULONG scrolled(NB_ULONG offset, std::int64_t amount, NB_ULONG whole, NB_ULONG view) {
    if (whole <= view) {
        return offset;
    }
    return static_cast<NB_ULONG>(std::clamp<std::int64_t>(offset + amount, 0, whole - view));
}

bool move_to(vga_viewer_root* root, Widget bar, NB_ULONG* offset, NB_ULONG target) {
    if (target == *offset) {
        return false;
    }
    *offset = target;
    XtVaSetValues(bar, XmNvalue, static_cast<int>(target), nullptr);
    vga_viewer_redraw_view(root);
    return true;
}

void expand_above(vga_viewer_root* root, const vga_viewer* viewer) {
    if (viewer->parent != nullptr) {
        expand_above(root, viewer->parent);
        vga_expand_viewer(root, viewer->parent);
    }
}

// True for slider movements smaller than a step, except near the ends, which the view must reach.
bool too_small(NB_ULONG offset, int value, NB_ULONG view, NB_ULONG whole, int step) {
    const NB_ULONG pixels = static_cast<NB_ULONG>(step);
    return offset >= pixels && view + offset + pixels <= whole &&
           std::abs(value - static_cast<int>(offset)) < step;
}

} // namespace

void vga_viewer_set_scroll_bars(vga_viewer_root* root) {
    if (root->displayed) {
        set_horizontal_bar(root);
        set_vertical_bar(root);
    }
}

bool vga_viewer_scroll_view(vga_viewer_root* root, std::int64_t amount) {
    const NB_ULONG target =
        whole_rows(scrolled(root->y_offset, amount, root->total_height, root->view_height));
    return move_to(root, root->v_scroll_bar, &root->y_offset, target);
}

bool vga_viewer_scroll_sideways(vga_viewer_root* root, std::int64_t amount) {
    const NB_ULONG target = scrolled(root->x_offset, amount, root->max_width, root->view_width);
    return move_to(root, root->h_scroll_bar, &root->x_offset, target);
}

void vga_viewer_scroll_into_view(vga_viewer_root* root, const vga_viewer* viewer) {
    const std::int64_t position = vga_viewer_position(viewer);
    const std::int64_t last_whole = std::int64_t{root->y_offset} + root->page_span;
    if (position < root->y_offset) {
        vga_viewer_scroll_view(root, position - root->y_offset);
    } else if (position > last_whole) {
        vga_viewer_scroll_view(root, position - last_whole);
    }
}

void vga_viewer_set_view(vga_viewer* viewer, vga_viewer_root* root) {
    if (!AVL_IN_TREE(viewer->node) || !root->displayed) {
        return;
    }
    expand_above(root, viewer);
    const std::int64_t position = vga_viewer_position(viewer);
    const std::int64_t top = root->y_offset;
    if (position < top || position > top + root->view_height - item_height()) {
        vga_viewer_scroll_view(root, position + item_height() / 2 - (top + root->view_height / 2));
    }
}

void vga_viewer_resize(Widget widget, XtPointer client_data, XtPointer) {
    vga_viewer_root* root = root_of(client_data);
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(widget, XmNwidth, &width, XmNheight, &height, nullptr);
    root->view_width = width;
    root->view_height = height;
    XtAppAddTimeOut(XtWidgetToApplicationContext(widget), 0, vga_viewer_scrollbar_timer,
                    reinterpret_cast<XtPointer>(static_cast<std::uintptr_t>(root->handle)));
}

void vga_viewer_scrollbar_timer(XtPointer handle, XtIntervalId*) {
    vga_viewer_root* root = root_of(
        nba_validate_handle(static_cast<NB_HANDLE>(reinterpret_cast<std::uintptr_t>(handle))));
    if (root != nullptr && root->displayed) {
        vga_viewer_set_scroll_bars(root);
        vga_viewer_redraw_view(root);
    }
}

void vga_viewer_expose(Widget widget, XtPointer client_data, XtPointer call_data) {
    vga_viewer_root* root = root_of(client_data);
    if (!root->exposed) {
        XSetWindowAttributes attributes;
        attributes.bit_gravity = NorthWestGravity; // a resize keeps what is drawn
        XChangeWindowAttributes(XtDisplay(widget), XtWindow(widget), CWBitGravity, &attributes);
        root->exposed = 1;
    }
    const XEvent* event = static_cast<XmDrawnButtonCallbackStruct*>(call_data)->event;
    if (event != nullptr && event->type == Expose && event->xexpose.height > 0) {
        vga_viewer_redraw(root, root->y_offset + static_cast<NB_ULONG>(event->xexpose.y),
                          static_cast<NB_ULONG>(event->xexpose.height), nullptr, false);
    }
}

void vga_viewer_scroll(Widget bar, XtPointer client_data, XtPointer call_data) {
    vga_viewer_root* root = root_of(client_data);
    const NB_ULONG value = static_cast<NB_ULONG>(
        std::max(static_cast<XmScrollBarCallbackStruct*>(call_data)->value, 0));
    if (bar == root->v_scroll_bar) {
        root->y_offset = whole_rows(value);
    } else {
        root->x_offset = value;
    }
    vga_viewer_redraw_view(root);
}

void vga_viewer_scroll_drag(Widget bar, XtPointer client_data, XtPointer call_data) {
    const vga_viewer_root* root = root_of(client_data);
    const int value = static_cast<XmScrollBarCallbackStruct*>(call_data)->value;
    const bool ignored = bar == root->v_scroll_bar
                             ? too_small(root->y_offset, value, root->view_height,
                                         root->total_height, gvga_metrics.item_height)
                             : too_small(root->x_offset, value, root->view_width, root->max_width,
                                         gvga_metrics.char_width);
    if (!ignored) {
        vga_viewer_scroll(bar, client_data, call_data);
    }
}
