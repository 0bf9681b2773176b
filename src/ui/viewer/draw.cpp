#include "ui/viewer/viewer_internal.h"

#include <algorithm>

namespace {

struct Window_of { // where a root draws
    Display* display;
    Window window;
};

Window_of window_of(const vga_viewer_root* root) {
    return {XtDisplay(root->draw_widget), XtWindow(root->draw_widget)};
}

bool drawable(const vga_viewer_root* root) {
    return root->draw_widget != nullptr && XtIsRealized(root->draw_widget);
}

// Requests carry 16-bit coordinates, so what lies beside the window is never sent.
bool beside_view(const vga_viewer_root* root, int x, int width) {
    return x + width <= 0 || x >= root->view_width;
}

void draw_icon(vga_viewer_root* root, const vga_viewer* viewer, int icon, GC gc, int x, int y,
               int width, int height) {
    if (beside_view(root, x, width)) {
        return;
    }
    const auto [display, window] = window_of(root);
    const Pixmap pixmap = (viewer->selected ? gvga_inverted_pixmaps : gvga_pixmaps)[icon];
    if (pixmap != None) {
        XCopyArea(display, pixmap, window, gc, 0, 0, static_cast<unsigned>(width),
                  static_cast<unsigned>(height), x, y);
    }
}

void draw_text(vga_viewer_root* root, const vga_viewer_text& text, GC gc, int x, int baseline) {
    const auto [display, window] = window_of(root);
    const char* cursor = text.text;
    int column = 0;
    vga_viewer_segment segment;
    while (vga_viewer_next_segment(&cursor, text.text + text.length, &column, &segment)) {
        const int width = vga_viewer_cut_segment(&segment);
        const int left = x + segment.column * gvga_metrics.char_width;
        if (segment.length == 0 || beside_view(root, left, width)) {
            continue;
        }
        const bool plain =
            gvga_font_set == nullptr ||
            (gvga_font != nullptr && vga_viewer_one_cell_each(segment.text, segment.length));
        if (!plain) {
            XmbDrawString(display, window, gvga_font_set, gc, left, baseline, segment.text,
                          segment.length);
        } else {
            XDrawString(display, window, gc, left, baseline, segment.text, segment.length);
        }
    }
}

} // namespace

void vga_draw_viewer(vga_viewer_root* root, vga_viewer* viewer, int y) {
    const VGA_VIEWER_DESC& desc = vga_viewer_desc(viewer);
    const vga_viewer_metrics& metrics = gvga_metrics;
    const auto [display, window] = window_of(root);
    const unsigned width = root->view_width;
    const unsigned height = static_cast<unsigned>(metrics.item_height);
    const bool outlined = root->outline_viewer == viewer;
    if (outlined) { // the outline is drawn by exclusive or: what an earlier one left must go
        XClearArea(display, window, 0, y, width, height, False);
    }
    if (viewer->selected) {
        XFillRectangle(display, window, gvga_selection_gc, 0, y, width, height);
    }
    GC gc = viewer->selected ? gvga_inverted_gc : gvga_normal_gc;

    int x = desc.level * metrics.indent_width - static_cast<int>(root->x_offset);
    if (desc.expandable && viewer->child_count > 0) {
        draw_icon(root, viewer, viewer->expanded ? VGA_ICON_MINUS : VGA_ICON_PLUS, gc, x,
                  y + metrics.expand_icon_top, metrics.expand_icon_width,
                  metrics.expand_icon_height);
    }
    if (desc.expandable || !desc.flat) {
        x += metrics.expand_icon_width;
    }
    if (desc.show_icon && desc.choose_icon != nullptr) {
        draw_icon(root, viewer, desc.choose_icon(viewer->data), gc, x, y + metrics.icon_top,
                  metrics.icon_width, metrics.icon_height);
    }
    x = vga_viewer_text_start(viewer) - static_cast<int>(root->x_offset);

    vga_viewer_text text;
    vga_viewer_build_text(viewer, &text);
    vga_viewer_measure(root, viewer, text);
    draw_text(root, text, gc, x, y + metrics.text_baseline);
    if (desc.decor_cb != nullptr) {
        desc.decor_cb(viewer->data, root->draw_widget, x, y, gc);
    }
    if (outlined && width > 0) {
        XDrawRectangle(display, window, gvga_outline_gc, 0, y, width - 1, height - 1);
    }
}

void vga_viewer_redraw(vga_viewer_root* root, NB_ULONG y, NB_ULONG height, vga_viewer* first,
                       bool clear) {
    if (!drawable(root)) {
        return;
    }
    using Pixels = std::int64_t;
    const bool scrolled = XtIsManaged(root->v_scroll_bar);
    const Pixels seen_top = scrolled ? root->y_offset : 0;
    const Pixels seen_end = scrolled ? seen_top + root->view_height : root->total_height;
    const Pixels top = std::max<Pixels>(y, seen_top);
    const Pixels wanted_end = height != 0 ? Pixels{y} + height : root->total_height;
    const Pixels end = std::min(wanted_end, seen_end);
    if (top >= end) {
        return;
    }
    if (clear) {
        const auto [display, window] = window_of(root);
        // A width of 0 reaches to the right edge.
        XClearArea(display, window, 0, static_cast<int>(top - root->y_offset), 0,
                   static_cast<unsigned>(end - top), False);
    }
    vga_viewer* viewer =
        first != nullptr && top == y ? first : vga_find_viewer(root, static_cast<NB_ULONG>(top));
    if (viewer == nullptr) { // the band lies in the blank row
        return;
    }
    Pixels row = vga_viewer_position(viewer);
    for (; viewer != nullptr && row < end; viewer = vga_viewer_get_next_item(root, viewer)) {
        vga_draw_viewer(root, viewer, static_cast<int>(row - root->y_offset));
        row += gvga_metrics.item_height;
    }
}

void vga_viewer_clear_below(vga_viewer_root* root, NB_ULONG y) {
    if (drawable(root) && y < root->y_offset + root->view_height) {
        const auto [display, window] = window_of(root);
        const NB_ULONG top = y > root->y_offset ? y - root->y_offset : 0;
        // A size of 0 reaches to the edge.
        XClearArea(display, window, 0, static_cast<int>(top), 0, 0, False);
    }
}

void vga_update_viewer(vga_viewer_root* root, vga_viewer* viewer) {
    if (AVL_IN_TREE(viewer->node) && vga_viewer_shown(root, viewer)) {
        vga_viewer_redraw(root, vga_viewer_position(viewer),
                          static_cast<NB_ULONG>(gvga_metrics.item_height), viewer, true);
    }
}
