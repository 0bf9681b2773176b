// What the files of the viewer share and no window needs.
#pragma once

#include "common/assert.h"
#include "shell/graphics.h"
#include "ui/viewer/viewer_type.h"

inline const VGA_VIEWER_DESC& vga_viewer_desc(const vga_viewer* viewer) {
    return gvga_viewer_types[viewer->type];
}
// False for headings.
inline bool vga_viewer_selectable(const vga_viewer* viewer) {
    return vga_viewer_desc(viewer).arm_cb != nullptr;
}

// ---- positions (position.cpp) ----

// Pixels from the top of the list.
NB_ULONG vga_viewer_position(const vga_viewer* viewer);
// Adds delta to the ypos of a row (may be null) and of every sibling below it.
void vga_viewer_shift(vga_viewer* first, NB_LONG delta);
// Puts a row whose ypos is set between two neighbours; false when its ypos is taken.
bool vga_viewer_insert(NTL_AVL_TREE* tree, vga_viewer* viewer, vga_viewer* above,
                       vga_viewer* below);
void vga_viewer_remove(NTL_AVL_TREE* tree, vga_viewer* viewer);
// The sum of the heights of a list of siblings.
NB_ULONG vga_viewer_tree_height(const NTL_AVL_TREE& tree);

// ---- neighbours (position.cpp) ----

inline vga_viewer* vga_viewer_sibling_below(const vga_viewer* viewer) {
    return static_cast<vga_viewer*>(ntl_avl_prev(&viewer->node));
}
inline vga_viewer* vga_viewer_sibling_above(const vga_viewer* viewer) {
    return static_cast<vga_viewer*>(ntl_avl_next(&viewer->node));
}
inline vga_viewer* vga_viewer_top(const NTL_AVL_TREE& tree) {
    return ntl_avl_last<vga_viewer>(tree);
}
inline vga_viewer* vga_viewer_bottom(const NTL_AVL_TREE& tree) {
    return ntl_avl_first<vga_viewer>(tree);
}
inline NTL_AVL_TREE& vga_viewer_siblings(vga_viewer_root* root, const vga_viewer* viewer) {
    return viewer->parent != nullptr ? viewer->parent->children : root->top_items;
}
// The last visible row of the list, or null.
vga_viewer* vga_viewer_last_visible(const vga_viewer_root* root);
// True when neither the row nor the widgets keep it from being seen (scrolled away or not).
bool vga_viewer_shown(const vga_viewer_root* root, const vga_viewer* viewer);

// ---- texts (text.cpp) ----

// A row's text; longer than allowed it is cut, with an assertion.
struct vga_viewer_text {
    int length;
    char text[2 * VGA_VIEWER_MAX_TEXT_LENGTH];
};
void vga_viewer_build_text(const vga_viewer* viewer, vga_viewer_text* text);
// The part of a text between two column markers. column and limit count characters; limit is the
// column of the next marker, -1 for none.
struct vga_viewer_segment {
    const char* text;
    int length;
    int column;
    int limit;
};
// Reads the segment at *cursor and moves on; false after the last one. column: that of the marker
// passed last, at first 0.
bool vga_viewer_next_segment(const char** cursor, const char* end, int* column,
                             vga_viewer_segment* segment);
// Cuts a segment to what fits before the next marker's column. Returns its width in pixels.
int vga_viewer_cut_segment(vga_viewer_segment* segment);
// True for ASCII in a fixed-width font: every byte is one character wide.
bool vga_viewer_one_cell_each(const char* text, int length);
// Pixels from the start of the text to its end.
int vga_viewer_text_width(const char* text, int length);
// Where the row's text starts, from the left edge of the list.
int vga_viewer_text_start(const vga_viewer* viewer);
// Raises max_width, and the scroll bars with it, for a row of this text.
void vga_viewer_measure(vga_viewer_root* root, const vga_viewer* viewer,
                        const vga_viewer_text& text);

// ---- drawing (draw.cpp) ----

// Draws the rows of a band of the list. height 0: to the end of the list. first: the row at y when
// known.
void vga_viewer_redraw(vga_viewer_root* root, NB_ULONG y, NB_ULONG height, vga_viewer* first,
                       bool clear);
inline void vga_viewer_redraw_view(vga_viewer_root* root) {
    vga_viewer_redraw(root, root->y_offset, root->view_height, nullptr, true);
}
// y: the row's top in window coordinates.
void vga_draw_viewer(vga_viewer_root* root, vga_viewer* viewer, int y);
// Clears the window from a position of the list to the bottom.
void vga_viewer_clear_below(vga_viewer_root* root, NB_ULONG y);

// ---- scrolling (scroll.cpp) ----

void vga_viewer_set_scroll_bars(vga_viewer_root* root);
// Amounts in pixels, negative upwards and to the left. True when the view moved.
bool vga_viewer_scroll_view(vga_viewer_root* root, std::int64_t amount);
bool vga_viewer_scroll_sideways(vga_viewer_root* root, std::int64_t amount);
void vga_viewer_scroll_into_view(vga_viewer_root* root, const vga_viewer* viewer);
void vga_viewer_scrollbar_timer(XtPointer handle, XtIntervalId* id);
void vga_viewer_resize(Widget widget, XtPointer root, XtPointer data);
void vga_viewer_expose(Widget widget, XtPointer root, XtPointer data);
void vga_viewer_scroll(Widget bar, XtPointer root, XtPointer data);
void vga_viewer_scroll_drag(Widget bar, XtPointer root, XtPointer data);

// ---- selection (select.cpp) ----

// No selection, no anchor, no drag.
void vga_viewer_forget_selection(vga_viewer_root* root);
// select_type becomes the type of the current selected row.
void vga_viewer_refresh_select_type(vga_viewer_root* root);

// ---- mouse (mouse.cpp) ----

void vga_viewer_stop_drag(vga_viewer_root* root);
void vga_viewer_drag_to(vga_viewer_root* root, vga_viewer* target);
void vga_viewer_drag_timer(XtPointer handle, XtIntervalId* id);
void vga_viewer_arm(Widget widget, XtPointer root, XtPointer data);
void vga_viewer_activate(Widget widget, XtPointer root, XtPointer data);
void vga_viewer_disarm(Widget widget, XtPointer root, XtPointer data);
void vga_viewer_motion(Widget widget, XtPointer root, XEvent* event, Boolean* go_on);
void vga_viewer_enter_hierarchy(Widget widget, XtPointer root, XEvent* event, Boolean* go_on);
void vga_viewer_leave_hierarchy(Widget widget, XtPointer root, XEvent* event, Boolean* go_on);

// ---- keyboard (keys.cpp) ----

void vga_viewer_key_input(Widget widget, XtPointer root, XEvent* event, Boolean* go_on);
