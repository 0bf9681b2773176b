// The resource viewer: a forest of rows drawn with Xlib into a drawn button. Rows are embedded in
// the records they show; the viewer allocates nothing per row and knows nothing of resources: see
// viewer_type.h.
#pragma once

#include "common/avl.h"
#include "nba/nba.h"

#include <X11/Intrinsic.h>
#include <Xm/DrawnB.h>

struct vga_dialog;

struct vga_viewer {    // one row
    NTL_AVL_NODE node; // in the parent's children or the root's top_items; key = ypos
    NB_ULONG ypos;     // pixels: top-level from the top of the list, child from the bottom of the
                       // parent's own row; read it with vga_viewer_ypos
    NB_ULONG height;   // own row, plus the children's while expanded
    NB_BYTE type;      // index into gvga_viewer_desc
    NB_USHORT expanded;
    NB_USHORT selected;
    void* data;         // the record shown
    vga_viewer* parent; // null for a top-level row
    NTL_AVL_TREE children;
    NB_ULONG child_count;
    NB_LONG shift; // still to be added to the ypos of every row below this node in the tree
};

inline constexpr NB_BYTE VGA_VIEWER_SELECT_NONE = 255;
inline constexpr int VGA_VIEWER_MAX_TEXT_LENGTH = 1000;

struct vga_viewer_root { // one list
    NB_HANDLE handle;    // timers carry it instead of a pointer
    NB_USHORT displayed;
    NB_USHORT exposed;
    Widget draw_widget; // XmDrawnButton
    Widget h_scroll_bar, v_scroll_bar;
    NB_ULONG total_height; // pixels, one blank row more when extra_row is set
    NB_USHORT max_width;
    NB_USHORT view_width, view_height;
    NB_ULONG x_offset, y_offset;
    NB_ULONG top_count;
    NTL_AVL_TREE top_items;
    vga_viewer* last_activated;
    NB_USHORT dragging;
    vga_viewer* last_dragged;
    XtIntervalId drag_timer;
    vga_viewer* select_anchor;
    vga_viewer* outline_viewer;
    NB_LONG select_count;
    NB_BYTE select_type;
    vga_dialog* owner; // the window's descriptor
    NB_ULONG page_span;
    NB_USHORT extra_row;
};

// False when no handle could be had.
bool vga_viewer_init_root(vga_viewer_root* root);
void vga_viewer_destroy_root(vga_viewer_root* root);
void vga_viewer_display_root(vga_viewer_root* root, Widget draw_widget, Widget h_scroll_bar,
                             Widget v_scroll_bar);
void vga_viewer_undisplay(vga_viewer_root* root);

// Positions hold after every call, the redraw flag or not; the flag only says whether the window
// follows at once.

// Inserts a row after a sibling, or as first child (first top-level row) when previous is null.
// root may be null: the row is only initialised.
void vga_create_viewer(vga_viewer_root* root, vga_viewer* viewer, NB_BYTE type, void* record,
                       vga_viewer* parent, vga_viewer* previous);
void vga_delete_viewer(vga_viewer_root* root, vga_viewer* viewer, bool redraw);
void vga_update_viewer(vga_viewer_root* root, vga_viewer* viewer);
// A row that is not shown stays as it is: only visible rows are ever expanded.
void vga_expand_viewer(vga_viewer_root* root, vga_viewer* viewer);
void vga_viewer_contract(vga_viewer_root* root, vga_viewer* viewer, bool redraw);
void vga_viewer_copy_state(const vga_viewer* source, vga_viewer* viewer, vga_viewer_root* root);
void vga_viewer_set_view(vga_viewer* viewer, vga_viewer_root* root);

void vga_viewer_select(vga_viewer* viewer, vga_viewer_root* root, bool toggle, bool extend,
                       bool keyboard, bool space);
// A row that is taken out and made anew in its list, or in the place of which another row comes,
// keeps the selection: asked before, whether it is the one that is selected; told behind, when it
// was. A row that does not show then is not selected.
bool vga_viewer_selected_alone(const vga_viewer_root* root, const vga_viewer* viewer);
void vga_viewer_select_again(vga_viewer_root* root, vga_viewer* viewer);
void vga_viewer_clear_selection(vga_viewer_root* root);
int vga_viewer_set_select(vga_viewer_root* root, vga_viewer* viewer, bool state);
// The record of the current selected row, or null; *type gets select_type when given.
void* vga_viewer_get_selection(vga_viewer_root* root, NB_BYTE* type = nullptr);
vga_viewer* vga_viewer_get_selected_viewer(vga_viewer_root* root);
void vga_clear_outline_selection(vga_viewer_root* root);
// The owner recomputes what depends on the selection, of rows of this one's type.
void vga_viewer_tell_owner(vga_viewer_root* root, const vga_viewer* viewer);
void vga_viewer_drag_cb(vga_viewer* viewer, vga_viewer_root* root, bool leaving, bool upward);
void vga_viewer_add_underline(vga_viewer_root* root, vga_viewer* viewer, int x, int y,
                              const char* message_text);

enum VGA_VIEWER_MOVE : int {
    VGA_VIEWER_PREVIOUS = 1,
    VGA_VIEWER_NEXT = 2,
    VGA_VIEWER_PAGE_UP = 3,
    VGA_VIEWER_PAGE_DOWN = 4,
    VGA_VIEWER_FIRST = 5,
    VGA_VIEWER_LAST = 6,
};
void vga_viewer_key_move(vga_viewer_root* root, int move, bool extend, bool toggle);
vga_viewer* vga_viewer_get_next_item(vga_viewer_root* root, vga_viewer* viewer);
vga_viewer* vga_viewer_get_prev_item(vga_viewer_root* root, vga_viewer* viewer);
// The visible row that contains pixel y (from the top of the list), or null.
vga_viewer* vga_find_viewer(vga_viewer_root* root, NB_ULONG y);
// The row's ypos, with every movement of its siblings applied.
NB_ULONG vga_viewer_ypos(const vga_viewer* viewer);
int vga_viewer_compare_ypos(const void* sought, const void* in_tree);
