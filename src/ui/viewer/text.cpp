// Row texts: columns and widths. A text is plain except for the markers "%t" NUMBER ["%"], which
// place what follows at a column counted in character widths.
#include "shell/messages.h"
#include "ui/viewer/viewer_internal.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

namespace {

constexpr int GREATEST_COLUMN = 10000; // pixels of a column must not overflow

// Pixels of a text without markers.
int plain_width(const char* text, int length) {
    if (length <= 0 || gvga_metrics.char_width == 0) {
        return 0;
    }
    if (vga_viewer_one_cell_each(text, length)) {
        return length * gvga_metrics.char_width;
    }
    if (gvga_font_set != nullptr) {
        return XmbTextEscapement(gvga_font_set, text, length);
    }
    return XTextWidth(gvga_font, text, length);
}

} // namespace

bool vga_viewer_one_cell_each(const char* text, int length) {
    return gvga_metrics.fixed_width &&
           std::all_of(text, text + length, [](char c) { return (c & 0x80) == 0; });
}

void vga_viewer_build_text(const vga_viewer* viewer, vga_viewer_text* text) {
    const auto create_text = vga_viewer_desc(viewer).create_text;
    text->text[0] = '\0';
    const int text_len = create_text != nullptr ? create_text(viewer->data, text->text) : 0;
    VGA_ASSERT(text_len <= VGA_VIEWER_MAX_TEXT_LENGTH);
    text->length = std::min(text_len, VGA_VIEWER_MAX_TEXT_LENGTH);
}

bool vga_viewer_next_segment(const char** cursor, const char* end, int* column,
                             vga_viewer_segment* segment) {
    if (*cursor == nullptr) {
        return false;
    }
    const std::string_view rest(*cursor, static_cast<std::size_t>(end - *cursor));
    const std::size_t marker = rest.find("%t");
    *segment = {rest.data(), static_cast<int>(std::min(marker, rest.size())), *column, -1};
    if (marker == std::string_view::npos) {
        *cursor = nullptr;
        return true;
    }
    int next = 0;
    const char* here = rest.data() + marker + 2;
    for (; here < end && std::isdigit(static_cast<unsigned char>(*here)); ++here) {
        next = std::min(next * 10 + (*here - '0'), GREATEST_COLUMN);
    }
    *cursor = here < end && *here == '%' ? here + 1 : here;
    *column = segment->limit = next;
    return true;
}

int vga_viewer_cut_segment(vga_viewer_segment* segment) {
    if (segment->limit < 0) {
        return plain_width(segment->text, segment->length);
    }
    const int room = std::max(segment->limit - segment->column, 0) * gvga_metrics.char_width;
    int width = plain_width(segment->text, segment->length);
    if (width <= room) {
        return width;
    }
    if (vga_viewer_one_cell_each(segment->text, segment->length)) {
        segment->length = room / gvga_metrics.char_width;
        return room;
    }
    int length = 0; // whole characters only
    width = 0;
    std::mblen(nullptr, 0);
    while (length < segment->length) {
        const int left = segment->length - length;
        const int bytes =
            std::max(std::mblen(segment->text + length, static_cast<std::size_t>(left)), 1);
        const int longer = plain_width(segment->text, length + bytes);
        if (longer > room) {
            break;
        }
        length += bytes;
        width = longer;
    }
    segment->length = length;
    return width;
}

int vga_viewer_text_width(const char* text, int length) {
    const char* cursor = text;
    int column = 0;
    vga_viewer_segment segment;
    while (vga_viewer_next_segment(&cursor, text + length, &column, &segment)) {
    }
    return plain_width(segment.text, segment.length) + segment.column * gvga_metrics.char_width;
}

int vga_viewer_text_start(const vga_viewer* viewer) {
    constexpr int icon_gap = 4;
    const VGA_VIEWER_DESC& desc = vga_viewer_desc(viewer);
    const int box = desc.expandable || !desc.flat ? gvga_metrics.expand_icon_width : 0;
    const int icon = desc.show_icon ? gvga_metrics.icon_width + icon_gap : 0;
    return desc.level * gvga_metrics.indent_width + box + icon;
}

void vga_viewer_measure(vga_viewer_root* root, const vga_viewer* viewer,
                        const vga_viewer_text& text) {
    const int width = vga_viewer_text_start(viewer) + vga_viewer_text_width(text.text, text.length);
    if (width > root->max_width && root->max_width < std::numeric_limits<NB_USHORT>::max()) {
        root->max_width =
            static_cast<NB_USHORT>(std::min<int>(width, std::numeric_limits<NB_USHORT>::max()));
        vga_viewer_set_scroll_bars(root);
    }
}

void vga_viewer_add_underline(vga_viewer_root* root, vga_viewer* viewer, int x, int y,
                              const char* message_text) {
    char line[4 * VGA_MESSAGE_BUFFER_SIZE];
    vga_tab_msg(line, message_text);
    const int char_width = gvga_metrics.char_width;
    const int top = y + gvga_metrics.item_height - 2;
    GC gc = viewer->selected ? gvga_inverted_gc : gvga_normal_gc;
    const char* end = line;
    for (const char* start; (start = std::strchr(end, '-')) != nullptr;) {
        end = start + std::strcspn(start, " ");
        // Only what the window shows: coordinates further out do not fit a request.
        const int left = std::max(x + static_cast<int>(start - line) * char_width, 0);
        const int right =
            std::min<int>(x + static_cast<int>(end - line) * char_width, root->view_width);
        if (left < right) {
            XFillRectangle(XtDisplay(root->draw_widget), XtWindow(root->draw_widget), gc, left, top,
                           static_cast<unsigned>(right - left), 1);
        }
    }
}
