// Fonts, icons and metrics, and every way in which they can be missing.
#include "viewer/fixture.h"

#include "shell/globals.h"
#include "shell/messages.h"
#include "shell/resources.h"

#include <X11/Xutil.h>
#include <Xm/Label.h>
#include <Xm/Xm.h>
#include <clocale>
#include <cstring>

namespace {

class Graphics_test : public testing::Test {
protected:
    Widget label = nullptr;

    void SetUp() override {
        start_graphics();
        vga_free_graphics();
        label = XtVaCreateWidget("label", xmLabelWidgetClass, gvga_toplevel, XmNforeground,
                                 BlackPixelOfScreen(gvga_screen), XmNbackground,
                                 WhitePixelOfScreen(gvga_screen), nullptr);
        gvga_exit_code = 0;
    }
    void TearDown() override {
        XtDestroyWidget(label);
        set({{"Tessaly*size", "small"}});
        vga_free_graphics();
        ASSERT_TRUE(
            vga_init_graphics(gvga_toplevel, gvga_toplevel)); // for the tests after this one
    }
    // The resources of this run.
    void set(const std::vector<std::pair<const char*, const char*>>& resources) {
        if (gvga_resource_database != nullptr) {
            XrmDestroyDatabase(gvga_resource_database);
        }
        gvga_resource_database = XrmGetStringDatabase("");
        for (const auto& [name, value] : resources) {
            XrmPutStringResource(&gvga_resource_database, name, value);
        }
    }
    // Warnings go to standard error through the toolkit's own handler.
    template <typename Work> std::string warned(Work work) {
        testing::internal::CaptureStderr();
        work();
        return testing::internal::GetCapturedStderr();
    }
    static std::vector<Pixel> pixels_of(Pixmap pixmap, int x, int y, unsigned width,
                                        unsigned height) {
        XImage* image = XGetImage(gvga_display, pixmap, x, y, width, height, AllPlanes, ZPixmap);
        std::vector<Pixel> pixels;
        for (unsigned i = 0; i < width * height; ++i) {
            pixels.push_back(
                XGetPixel(image, static_cast<int>(i % width), static_cast<int>(i / width)));
        }
        XDestroyImage(image);
        return pixels;
    }
    static Pixmap new_pixmap(unsigned width, unsigned height) {
        return XCreatePixmap(gvga_display, gvga_root_window, width, height,
                             static_cast<unsigned>(DefaultDepthOfScreen(gvga_screen)));
    }
};

TEST_F(Graphics_test, size_and_its_fallbacks) {
    for (int message : {612, 613}) {
        static std::string texts[2];
        texts[message - 612] = "warning " + std::to_string(message);
        gvga_messages[message] = texts[message - 612].c_str();
    }
    const int large = WidthOfScreen(gvga_screen) > 1024;
    const struct {
        std::vector<std::pair<const char*, const char*>> resources;
        int icon;    // size in pixels
        int warning; // message, 0 for none
    } cases[] = {
        {{}, large ? 24 : 16, 0},
        {{{"Tessaly*size", "big"}}, 24, 0},
        {{{"Tessaly*size", "small"}}, 16, 0},
        {{{"Tessaly*size", "huge"}}, large ? 24 : 16, 613},
        {{{"Tessaly*size", "small"}, {"Tessaly.iconSize", "l"}}, 24, 0},
        {{{"Tessaly.iconSize", "missing"}}, 16, 612},
    };
    for (const auto& test : cases) {
        set(test.resources);
        // Labels know the size before the icons are loaded, whatever these are.
        const bool own_icons = !test.resources.empty() &&
                               std::strcmp(test.resources.back().first, "Tessaly.iconSize") == 0;
        EXPECT_TRUE(own_icons || (test.icon == 24) == vga_uses_large_size());
        const std::string text = warned([&] { EXPECT_TRUE(vga_init_graphics(label, label)); });
        EXPECT_EQ(test.icon, gvga_metrics.icon_width);
        EXPECT_EQ(test.icon, gvga_metrics.icon_height);
        for (int message : {612, 613}) {
            EXPECT_EQ(message == test.warning,
                      text.find("warning " + std::to_string(message)) != std::string::npos)
                << text;
        }
        vga_free_graphics();
    }
}

TEST_F(Graphics_test, icons_stand_on_the_ground_they_are_drawn_on) {
    Widget list = XtVaCreateWidget("list", xmDrawnButtonWidgetClass, gvga_toplevel, nullptr);
    Pixel grey = 0;
    XmGetColors(gvga_screen, DefaultColormapOfScreen(gvga_screen), WhitePixelOfScreen(gvga_screen),
                nullptr, nullptr, &grey, nullptr);
    XtVaSetValues(list, XmNbackground, grey, XmNhighlightColor, BlackPixelOfScreen(gvga_screen),
                  nullptr);
    set({{"Tessaly*size", "small"}});
    ASSERT_TRUE(vga_init_graphics(label, list));
    const auto ground = [](Pixmap pixmap) { // a pixel beside the drawing
        return pixels_of(pixmap, 0, 0, 1, 1)[0];
    };
    EXPECT_EQ(grey, gvga_list_background);
    EXPECT_EQ(BlackPixelOfScreen(gvga_screen), gvga_selection);
    EXPECT_EQ(grey, ground(gvga_pixmaps[VGA_ICON_BLANK]));
    EXPECT_EQ(WhitePixelOfScreen(gvga_screen), ground(gvga_pixmaps[VGA_ICON_STOP]));
    XtDestroyWidget(list);
}

TEST_F(Graphics_test, metrics_follow_from_font_and_icons) {
    set({{"Tessaly*size", "small"}});
    ASSERT_TRUE(vga_init_graphics(label, label));
    const vga_viewer_metrics& m = gvga_metrics;
    EXPECT_EQ(6, m.char_width); // of the 13 pixel semicondensed font
    EXPECT_EQ(13, m.ascent + m.descent);
    EXPECT_EQ(48, m.indent_width);
    EXPECT_EQ(16, m.item_height);
    EXPECT_TRUE(m.fixed_width);
    XGCValues values;
    XGetGCValues(gvga_display, gvga_outline_gc, GCForeground | GCFunction | GCLineStyle, &values);
    EXPECT_EQ(GXxor, values.function);
    EXPECT_EQ(gvga_selection ^ gvga_list_background, values.foreground);
    EXPECT_EQ(LineOnOffDash, values.line_style);
}

TEST_F(Graphics_test, font_set_is_found_step_by_step) {
    constexpr char fixed[] = "-misc-fixed-medium-r-semicondensed--13-*";
    constexpr char taller[] = "-misc-fixed-medium-r-normal--14-*";
    constexpr char nothing[] = "-no-such-font-*";
    gvga_messages[1443] = "warning 1443";
    gvga_messages[1448] = "warning 1448";
    const char* const message = gvga_messages[609];
    const struct {
        const char* resource; // null: not set
        const char* message;
        const char* pattern;
        int height; // 0: no font set
        const char* warning;
    } cases[] = {
        {nullptr, fixed, nothing, 13, nullptr},         {taller, fixed, nothing, 14, nullptr},
        {nothing, fixed, taller, 13, "warning 1443"},   {nullptr, nothing, taller, 14, nullptr},
        {nullptr, nothing, nothing, 0, "warning 1448"},
    };
    for (const auto& test : cases) {
        set({});
        if (test.resource != nullptr) {
            set({{"Tessaly*fontName", test.resource}});
        }
        gvga_messages[609] = test.message;
        XFontSet found = nullptr;
        const std::string text =
            warned([&] { found = vga_load_fixed_fontset("*fontName", test.pattern, 609, label); });
        ASSERT_EQ(test.height != 0, found != nullptr);
        if (found != nullptr) {
            XFontStruct** fonts = nullptr;
            char** names = nullptr;
            XFontsOfFontSet(found, &fonts, &names);
            EXPECT_EQ(test.height, fonts[0]->ascent + fonts[0]->descent);
        }
        EXPECT_EQ(test.warning != nullptr, text.find("warning") != std::string::npos) << text;
        if (test.warning != nullptr) {
            EXPECT_NE(std::string::npos, text.find(test.warning)) << text;
        }
        vga_free_fontset(found);
    }
    gvga_messages[609] = message;
}

TEST_F(Graphics_test, fixed_font_set_of_the_widget_comes_first_and_is_not_ours_to_free) {
    gvga_messages[609] = "-misc-fixed-medium-r-semicondensed--13-*";
    const struct {
        const char* names;
        bool taken;
    } cases[] = {
        {"-misc-fixed-medium-r-normal--14-*", true},
        {"-adobe-helvetica-medium-r-normal--12-*", false}, // its columns would not line up
    };
    for (const auto& test : cases) {
        char** missing = nullptr;
        int missing_count = 0;
        char* fallback = nullptr;
        XFontSet set =
            XCreateFontSet(gvga_display, test.names, &missing, &missing_count, &fallback);
        ASSERT_NE(nullptr, set) << test.names;
        XmFontListEntry entry = XmFontListEntryCreate(const_cast<char*>(XmFONTLIST_DEFAULT_TAG),
                                                      XmFONT_IS_FONTSET, set);
        XmFontList list = XmFontListAppendEntry(nullptr, entry);
        XtVaSetValues(label, XmNfontList, list, nullptr);
        XFontSet found = vga_load_fixed_fontset("*fontName", "-no-such-*", 609, label);
        EXPECT_EQ(test.taken, found == set);
        vga_free_fontset(found);
        EXPECT_LT(0, XmbTextEscapement(set, "W", 1)); // still alive
        XtVaSetValues(label, XmNfontList, nullptr, nullptr);
        XmFontListFree(list);
        XFreeFontSet(gvga_display, set);
    }
}

// In a multi-byte locale a set has many fonts. ASCII is drawn without the set, and must look the
// same.
TEST_F(Graphics_test, ascii_looks_the_same_with_and_without_the_font_set) {
    ASSERT_NE(nullptr, std::setlocale(LC_CTYPE, "C.UTF-8"));
    ASSERT_TRUE(vga_init_graphics(label, label));
    ASSERT_NE(nullptr, gvga_font_set);
    XFontStruct** fonts = nullptr;
    char** names = nullptr;
    ASSERT_GT(XFontsOfFontSet(gvga_font_set, &fonts, &names), 1);
    ASSERT_NE(nullptr, gvga_font);

    std::string ascii;
    for (char c = ' '; c < 127; ++c) {
        ascii += c;
    }
    const int length = static_cast<int>(ascii.size());
    EXPECT_EQ(XmbTextEscapement(gvga_font_set, ascii.c_str(), length),
              XTextWidth(gvga_font, ascii.c_str(), length));
    const unsigned width = 900, height = 40;
    std::vector<Pixel> drawn[2];
    for (int with_set : {0, 1}) {
        const Pixmap pixmap = new_pixmap(width, height);
        XFillRectangle(gvga_display, pixmap, gvga_inverted_gc, 0, 0, width, height);
        if (with_set) {
            XmbDrawString(gvga_display, pixmap, gvga_font_set, gvga_normal_gc, 2, 20, ascii.c_str(),
                          length);
        } else {
            XDrawString(gvga_display, pixmap, gvga_normal_gc, 2, 20, ascii.c_str(), length);
        }
        drawn[with_set] = pixels_of(pixmap, 0, 0, width, height);
        XFreePixmap(gvga_display, pixmap);
    }
    EXPECT_TRUE(drawn[0] == drawn[1]);
    std::setlocale(LC_CTYPE, "C");
}

TEST_F(Graphics_test, shadows_of_an_icon_are_exchanged) {
    ASSERT_TRUE(vga_init_graphics(label, label));
    Pixmap pixmaps[1] = {new_pixmap(3, 1)};
    const std::vector<Pixel> before = {gvga_top_shadow, gvga_bottom_shadow, gvga_foreground};
    const std::vector<Pixel> after = {gvga_bottom_shadow, gvga_top_shadow, gvga_foreground};
    ASSERT_NE(gvga_top_shadow, gvga_bottom_shadow);
    GC gc = XCreateGC(gvga_display, pixmaps[0], 0, nullptr);
    for (int x = 0; x < 3; ++x) {
        XSetForeground(gvga_display, gc, before[x]);
        XDrawPoint(gvga_display, pixmaps[0], gc, x, 0);
    }
    XFreeGC(gvga_display, gc);
    vga_swap_shadows(0, pixmaps, gvga_normal_gc);
    EXPECT_EQ(after, pixels_of(pixmaps[0], 0, 0, 3, 1));
    XFreePixmap(gvga_display, pixmaps[0]);
}

} // namespace
