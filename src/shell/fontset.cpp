#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "shell/start.h"

#include <Xm/Xm.h>
#include <cstdlib>
#include <utility>

// The choice of the lists' font. Columns are counted in characters, so it has to be a fixed-width
// one.

namespace {

XFontSet borrowed; // a set that belongs to a widget's font list

void warn(int message) {
    XtAppSetWarningHandler(gvga_appcontext, nullptr); // the toolkit's own
    XtAppWarning(gvga_appcontext, gvga_messages[message]);
    XtAppSetWarningHandler(gvga_appcontext, vga_no_warning);
}

bool every_font_fixed(XFontSet set) {
    XFontStruct** fonts = nullptr;
    char** names = nullptr;
    const int count = XFontsOfFontSet(set, &fonts, &names);
    for (int ii = 0; ii < count; ++ii) {
        if (fonts[ii]->min_bounds.width != fonts[ii]->max_bounds.width) {
            return false;
        }
    }
    return count > 0;
}

// The first font set of a widget's font list when it is fit for columns, else null.
XFontSet widget_fontset(Widget widget) {
    XmFontList list = nullptr;
    XtVaGetValues(widget, XmNfontList, &list, nullptr);
    XmFontContext context = nullptr;
    if (list == nullptr || !XmFontListInitFontContext(&context, list)) {
        return nullptr;
    }
    XFontSet found = nullptr;
    while (XmFontListEntry entry = XmFontListNextEntry(context)) {
        XmFontType type = XmFONT_IS_FONT;
        XtPointer font = XmFontListEntryGetFont(entry, &type);
        if (type == XmFONT_IS_FONTSET && font != nullptr) {
            found = static_cast<XFontSet>(font);
            break;
        }
    }
    XmFontListFreeFontContext(context);
    return found != nullptr && (MB_CUR_MAX > 1 || every_font_fixed(found)) ? found : nullptr;
}

struct Made {
    XFontSet set; // null: no font matches
    bool complete;
};

Made make_fontset(const char* names) {
    char** missing = nullptr;
    int missing_count = 0;
    char* default_string = nullptr;
    XFontSet set = XCreateFontSet(gvga_display, names, &missing, &missing_count, &default_string);
    if (missing != nullptr) {
        XFreeStringList(missing);
    }
    return {set, set != nullptr && missing_count == 0};
}

XFontSet choose_fontset(const char* resource, const char* default_pattern, int message_number,
                        Widget widget) {
    if (XFontSet set = widget_fontset(widget)) {
        return borrowed = set;
    }
    char name[129];
    if (vga_get_resource_string(resource, default_pattern, name, sizeof name)) {
        const auto [set, complete] = make_fontset(name);
        if (set == nullptr) {
            warn(1443);
        } else {
            if (!complete) {
                warn(1446);
            }
            return set;
        }
    }
    XFontSet aside = nullptr; // made, but characters are missing
    for (const char* names : {gvga_messages[message_number], default_pattern}) {
        const auto [set, complete] = make_fontset(names);
        if (complete) {
            vga_free_fontset(aside);
            return set;
        }
        if (aside == nullptr) {
            aside = set;
        } else {
            vga_free_fontset(set);
        }
    }
    warn(aside != nullptr ? 1447 : 1448);
    return aside;
}

} // namespace

void vga_no_warning(String) {}

XFontSet vga_load_fixed_fontset(const char* resource, const char* default_pattern,
                                int message_number, Widget widget) {
    XtAppSetWarningHandler(gvga_appcontext, vga_no_warning);
    XFontSet set = choose_fontset(resource, default_pattern, message_number, widget);
    XtAppSetWarningHandler(gvga_appcontext, nullptr);
    return set;
}

void vga_free_fontset(XFontSet set) {
    if (set != nullptr && set != borrowed) {
        XFreeFontSet(gvga_display, set);
    }
    if (set == borrowed) {
        borrowed = nullptr;
    }
}
