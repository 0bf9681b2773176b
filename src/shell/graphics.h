// Fonts, graphics contexts, icons and layout metrics of the viewers, made once when the first
// window builds its widgets.
#pragma once

#include "nba/nba.h"

#include <X11/Intrinsic.h>

inline constexpr int VGA_ICON_COUNT = 85;

// What message boxes and the window manager show. Not part of any list, so it has no inverted
// image.
enum VGA_SYMBOL : int {
    VGA_SYMBOL_ERROR,
    VGA_SYMBOL_INFO,
    VGA_SYMBOL_QUESTION,
    VGA_SYMBOL_NODE_WINDOW,
    VGA_SYMBOL_SYSTEM_WINDOW,
    VGA_SYMBOL_COUNT
};

struct vga_viewer_metrics { // in pixels
    int char_width = 0;
    int ascent = 0, descent = 0;
    int icon_width = 0, icon_height = 0;
    int expand_icon_width = 0, expand_icon_height = 0;
    int indent_width = 0;
    int item_height = 1;
    int expand_icon_top = 0, icon_top = 0, text_baseline = 0;
    bool fixed_width = true; // every ASCII character is char_width wide
};

// Before the graphics are made a character is 0 and a row 1 pixel, so that lists keep their order
// without a display.
extern vga_viewer_metrics gvga_metrics;
extern Pixmap gvga_pixmaps[VGA_ICON_COUNT];
extern Pixmap gvga_inverted_pixmaps[VGA_ICON_COUNT];
extern Pixmap gvga_symbols[VGA_SYMBOL_COUNT]; // None: the icon file has none
extern const char* const gvga_symbol_names[VGA_SYMBOL_COUNT];
// Text, text of a selected row, the outline (exclusive or), and the ground of a selected row.
extern GC gvga_normal_gc, gvga_inverted_gc, gvga_outline_gc, gvga_selection_gc;
extern XFontSet gvga_font_set; // null: gvga_font
// The font of the contexts. With a font set it is the font that the set draws ASCII with, which is
// faster without the set; null when the set has no such font of single bytes.
extern XFontStruct* gvga_font;
extern Pixel gvga_background, gvga_foreground, gvga_top_shadow, gvga_bottom_shadow;
// The ground of the lists, and the accent that marks a selection; the selection's text has the
// ground's colour.
extern Pixel gvga_list_background, gvga_selection;

// Makes everything above. widget: gives colours and colour map; list: a list's drawing area, gives
// its ground and, as its highlight colour, the selection's; its font list is tried first. False
// with exit code 165 set on failure.
bool vga_init_graphics(Widget widget, Widget list);
// Whether the icons and fonts of large screens are used: the resource "*size", else the screen's
// width.
bool vga_uses_large_size();
// The fixed-width font set of the lists, or null: tries widget's font list, the X resource, the
// patterns of a message and the default pattern. The caller frees it with vga_free_fontset.
XFontSet vga_load_fixed_fontset(const char* resource, const char* default_pattern,
                                int message_number, Widget widget);
// Frees a set that vga_load_fixed_fontset made; one that belongs to a widget's font list stays.
void vga_free_fontset(XFontSet set);
// Exchanges the two shadow colours in one icon of an array.
void vga_swap_shadows(int icon, Pixmap* pixmaps, GC gc);
// A toolkit warning handler that says nothing.
void vga_no_warning(String message);
void vga_free_graphics();
