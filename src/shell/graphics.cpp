#include "shell/graphics.h"

#include "shell/globals.h"
#include "shell/messages.h"
#include "shell/start.h"
#include "ui/viewer/viewer_type.h"

#include <Mrm/MrmPublic.h>
#include <Xm/Xm.h>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

namespace {

constexpr char DEFAULT_FONT[] = "-misc-fixed-*-*-*-*-*-*-*-*-*-*-*-*";
constexpr int LARGE_SCREEN = 1024; // a wider one gets the large icons and font
constexpr int MESSAGE_LARGE_FONT = 602;
constexpr int MESSAGE_LARGE_SUFFIX = 603;
constexpr int MESSAGE_SMALL_FONT = 609;

} // namespace

vga_viewer_metrics gvga_metrics;
Pixmap gvga_pixmaps[VGA_ICON_COUNT];
Pixmap gvga_inverted_pixmaps[VGA_ICON_COUNT];
Pixmap gvga_symbols[VGA_SYMBOL_COUNT];
const char* const gvga_symbol_names[VGA_SYMBOL_COUNT] = {"boxerror", "boxinfo", "boxask", "winnode",
                                                         "winsystem"};
GC gvga_normal_gc, gvga_inverted_gc, gvga_outline_gc, gvga_selection_gc;
XFontSet gvga_font_set;
XFontStruct* gvga_font;
Pixel gvga_background, gvga_foreground, gvga_top_shadow, gvga_bottom_shadow;
Pixel gvga_list_background, gvga_selection;

namespace {

void read_colours(Widget widget, Widget list) {
    Widget shell = widget;
    while (XtParent(shell) != nullptr && !XtIsShell(shell)) {
        shell = XtParent(shell);
    }
    Colormap colour_map = 0;
    XtVaGetValues(shell, XmNcolormap, &colour_map, nullptr);
    XtVaGetValues(widget, XmNbackground, &gvga_background, XmNforeground, &gvga_foreground,
                  nullptr);
    Pixel foreground = 0;
    Pixel select = 0;
    XmGetColors(XtScreen(widget), colour_map, gvga_background, &foreground, &gvga_top_shadow,
                &gvga_bottom_shadow, &select);
    gvga_selection = gvga_foreground; // of a widget that shows no focus
    XtVaGetValues(list, XmNbackground, &gvga_list_background, XmNhighlightColor, &gvga_selection,
                  nullptr);
}

struct Size_choice {
    char suffix[21]; // of the icons' names and file
    int font_message;
    bool chosen; // by a resource, not by the screen's width
};

// The resource "*size": 's' small, 'b' big, '\0' unset, '?' anything else.
char size_resource() {
    char value[31];
    if (!vga_get_resource_string("*size", "", value, sizeof value) || value[0] == '\0') {
        return '\0';
    }
    const std::string_view size = value;
    return size == "small" || size == "big" ? value[0] : '?';
}

Size_choice choose_size() {
    Size_choice size = {};
    const char resource = size_resource();
    if (resource == '?') {
        XtAppWarning(gvga_appcontext, gvga_messages[613]);
    }
    size.chosen = resource == 's' || resource == 'b';
    const bool large = vga_uses_large_size();
    size.font_message = large ? MESSAGE_LARGE_FONT : MESSAGE_SMALL_FONT;
    if (large) {
        v0_mb_strncpy(size.suffix, gvga_messages[MESSAGE_LARGE_SUFFIX], sizeof size.suffix);
    }
    char icon_size[sizeof size.suffix];
    vga_get_resource_string(".iconSize", "", icon_size, sizeof icon_size);
    if (icon_size[0] != '\0') {
        std::memcpy(size.suffix, icon_size, sizeof size.suffix);
        size.chosen = true;
    }
    return size;
}

GC make_gc(XGCValues values, unsigned long mask) {
    values.graphics_exposures = False; // icons are copied from pixmaps: nothing is ever covered
    return XCreateGC(gvga_display, gvga_root_window, mask | GCGraphicsExposures, &values);
}

void make_gcs() {
    XGCValues values = {};
    values.foreground = gvga_foreground;
    values.background = gvga_list_background;
    gvga_normal_gc = make_gc(values, GCForeground | GCBackground);
    values.foreground = gvga_list_background;
    values.background = gvga_selection;
    gvga_inverted_gc = make_gc(values, GCForeground | GCBackground);
    std::swap(values.foreground, values.background);
    gvga_selection_gc = make_gc(values, GCForeground | GCBackground);
    values.foreground = gvga_list_background ^ gvga_selection;
    values.function = GXxor;
    values.line_style = LineOnOffDash;
    values.dashes = 1;
    gvga_outline_gc = make_gc(values, GCForeground | GCFunction | GCLineStyle | GCDashList);
}

void choose_font() {
    if (gvga_font_set == nullptr) {
        gvga_font = XQueryFont(gvga_display, XGContextFromGC(gvga_normal_gc));
        return;
    }
    // The first font of a set has ASCII: the only one, or the Latin one before those of other
    // scripts. The set loads it no sooner than it draws with it, hence a font of our own.
    XFontStruct** fonts = nullptr;
    char** names = nullptr;
    const int count = XFontsOfFontSet(gvga_font_set, &fonts, &names);
    if (fonts[0]->max_byte1 == 0 &&
        (count == 1 || std::string_view(names[0]).ends_with("iso8859-1"))) {
        gvga_font = XLoadQueryFont(gvga_display, names[0]);
    }
    if (gvga_font != nullptr) {
        XSetFont(gvga_display, gvga_normal_gc, gvga_font->fid);
        XSetFont(gvga_display, gvga_inverted_gc, gvga_font->fid);
    }
}

// Opens the icon file; a size that has none falls back to the standard one, without a suffix.
bool open_icons(Size_choice* size, MrmHierarchy* icons) {
    for (;;) {
        char name[sizeof size->suffix + sizeof "icons.uid"];
        std::snprintf(name, sizeof name, "icons%s.uid", size->suffix);
        String names[] = {name};
        if (MrmOpenHierarchyPerDisplay(gvga_display, 1, names, nullptr, icons) == MrmSUCCESS) {
            return true;
        }
        if (size->suffix[0] == '\0') {
            return false;
        }
        size->suffix[0] = '\0';
        if (size->chosen) {
            XtAppWarning(gvga_appcontext, gvga_messages[612]);
        }
    }
}

// Icons that stand in the windows themselves; the others stand in lists.
bool stands_in_window(int icon) {
    return (icon >= VGA_ICON_START && icon <= VGA_ICON_STATUSINS) || icon == VGA_ICON_ADDDFLT ||
           icon == VGA_ICON_DELDFLT;
}

// One image out of the icon file, or None with a line in the log.
Pixmap fetch_image(MrmHierarchy icons, const char* name, const char* suffix, const char* ending,
                   int subcode, Pixel foreground, Pixel background) {
    char literal[64];
    std::snprintf(literal, sizeof literal, "%.30s%s_icon%s", name, suffix, ending);
    Pixmap pixmap = None;
    if (MrmFetchIconLiteral(icons, literal, gvga_screen, gvga_display, foreground, background,
                            &pixmap) != MrmSUCCESS) {
        nba_pd_print_problem(0x40020007, subcode, "s", "icons");
        return None;
    }
    return pixmap;
}

// The two images of an icon; subcodes tell which one was missing.
bool fetch_icon(MrmHierarchy icons, int icon, const char* suffix) {
    const char* const icon_name = gvga_pixmap_names[icon];
    VGA_ASSERT_TEXT(std::strlen(icon_name) < 30, "NB_STRLEN(gvga_pixmap_names[ii]) < 30");
    const Pixel ground = stands_in_window(icon) ? gvga_background : gvga_list_background;
    gvga_pixmaps[icon] = fetch_image(icons, icon_name, suffix, "", 6, gvga_foreground, ground);
    if (gvga_pixmaps[icon] == None) {
        return false;
    }
    // Inverted, the image's foreground is its ground.
    gvga_inverted_pixmaps[icon] =
        fetch_image(icons, icon_name, suffix, "i", 7, gvga_selection, gvga_list_background);
    return gvga_inverted_pixmaps[icon] != None;
}

bool load_icons(Size_choice size) {
    MrmHierarchy icons = nullptr;
    if (!open_icons(&size, &icons)) {
        nba_pd_print_problem(0x40020006, 0, "s", "All");
        return false;
    }
    bool loaded = true;
    for (int icon = 0; loaded && icon < VGA_ICON_COUNT; ++icon) {
        loaded = fetch_icon(icons, icon, size.suffix);
    }
    for (int symbol = 0; loaded && symbol < VGA_SYMBOL_COUNT; ++symbol) {
        gvga_symbols[symbol] = fetch_image(icons, gvga_symbol_names[symbol], size.suffix, "", 6,
                                           gvga_foreground, gvga_background);
    }
    MrmCloseHierarchy(icons);
    if (!loaded) {
        return false;
    }
    // One plane: the images are drawn for dark on light.
    if (PlanesOfScreen(gvga_screen) == 1 && BlackPixelOfScreen(gvga_screen) == gvga_foreground) {
        std::swap_ranges(std::begin(gvga_pixmaps), std::end(gvga_pixmaps), gvga_inverted_pixmaps);
    }
    for (int icon : {VGA_ICON_PLUS, VGA_ICON_MINUS}) {
        vga_swap_shadows(icon, gvga_pixmaps, gvga_normal_gc);
        vga_swap_shadows(icon, gvga_inverted_pixmaps, gvga_inverted_gc);
    }
    return true;
}

void pixmap_size(Pixmap pixmap, int* width, int* height) {
    Window root = None;
    int x = 0;
    int y = 0;
    unsigned w = 0;
    unsigned h = 0;
    unsigned border = 0;
    unsigned depth = 0;
    XGetGeometry(gvga_display, pixmap, &root, &x, &y, &w, &h, &border, &depth);
    *width = static_cast<int>(w);
    *height = static_cast<int>(h);
}

void measure_font(vga_viewer_metrics* metrics) {
    if (gvga_font_set == nullptr) {
        int direction = 0;
        XCharStruct w = {};
        XTextExtents(gvga_font, "W", 1, &direction, &metrics->ascent, &metrics->descent, &w);
        metrics->char_width = w.width;
        metrics->ascent = w.ascent;
        metrics->descent = w.descent;
        metrics->fixed_width = gvga_font->min_bounds.width == gvga_font->max_bounds.width;
        return;
    }
    metrics->char_width = XmbTextEscapement(gvga_font_set, "W", 1);
    XFontStruct** fonts = nullptr;
    char** names = nullptr;
    const int count = XFontsOfFontSet(gvga_font_set, &fonts, &names);
    for (int ii = 0; ii < count; ++ii) {
        metrics->ascent = std::max(metrics->ascent, fonts[ii]->ascent);
        metrics->descent = std::max(metrics->descent, fonts[ii]->descent);
        metrics->fixed_width &= fonts[ii]->min_bounds.width == fonts[ii]->max_bounds.width;
    }
}

void compute_metrics() {
    constexpr int indent_characters = 8;
    vga_viewer_metrics m = {};
    measure_font(&m);
    pixmap_size(gvga_pixmaps[VGA_ICON_CONVSEC], &m.icon_width, &m.icon_height);
    pixmap_size(gvga_pixmaps[VGA_ICON_PLUS], &m.expand_icon_width, &m.expand_icon_height);
    m.indent_width = indent_characters * m.char_width;
    m.item_height = std::max({m.ascent + m.descent, m.icon_height, m.expand_icon_height});
    m.expand_icon_top = (m.item_height - m.expand_icon_height) / 2;
    m.icon_top = (m.item_height - m.icon_height) / 2;
    m.text_baseline = (m.item_height + m.ascent - m.descent) / 2;
    gvga_metrics = m;
}

void free_pixmaps(std::span<Pixmap> pixmaps) {
    for (Pixmap& pixmap : pixmaps) {
        if (pixmap != None) {
            XFreePixmap(gvga_display, pixmap);
            pixmap = None;
        }
    }
}

} // namespace

bool vga_uses_large_size() {
    const char size = size_resource();
    return size == 'b' || (size != 's' && WidthOfScreen(gvga_screen) > LARGE_SCREEN);
}

bool vga_init_graphics(Widget widget, Widget list) {
    read_colours(widget, list);
    const Size_choice size = choose_size();
    gvga_font_set = vga_load_fixed_fontset("*fontName", DEFAULT_FONT, size.font_message, list);
    make_gcs();
    choose_font();
    if (!load_icons(size)) {
        VGA_FATAL(VGA_EXIT_START, 0);
        return false;
    }
    compute_metrics();
    return true;
}

void vga_swap_shadows(int icon, Pixmap* pixmaps, GC gc) {
    int width = 0;
    int height = 0;
    pixmap_size(pixmaps[icon], &width, &height);
    XImage* image = XGetImage(gvga_display, pixmaps[icon], 0, 0, static_cast<unsigned>(width),
                              static_cast<unsigned>(height), AllPlanes, ZPixmap);
    if (image == nullptr) {
        return;
    }
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Pixel pixel = XGetPixel(image, x, y);
            if (pixel == gvga_top_shadow) {
                XPutPixel(image, x, y, gvga_bottom_shadow);
            } else if (pixel == gvga_bottom_shadow) {
                XPutPixel(image, x, y, gvga_top_shadow);
            }
        }
    }
    XPutImage(gvga_display, pixmaps[icon], gc, image, 0, 0, 0, 0, static_cast<unsigned>(width),
              static_cast<unsigned>(height));
    XDestroyImage(image);
}

void vga_free_graphics() {
    if (gvga_display == nullptr) {
        return;
    }
    free_pixmaps(gvga_pixmaps);
    free_pixmaps(gvga_inverted_pixmaps);
    free_pixmaps(gvga_symbols);
    for (GC* gc : {&gvga_normal_gc, &gvga_inverted_gc, &gvga_outline_gc, &gvga_selection_gc}) {
        if (*gc != nullptr) {
            XFreeGC(gvga_display, *gc);
            *gc = nullptr;
        }
    }
    if (gvga_font != nullptr && gvga_font_set != nullptr) {
        XFreeFont(gvga_display, gvga_font);
    } else if (gvga_font != nullptr) {
        XFreeFontInfo(nullptr, gvga_font, 1);
    }
    gvga_font = nullptr;
    vga_free_fontset(gvga_font_set);
    gvga_font_set = nullptr;
    gvga_metrics = {};
}
