// The resource viewer beside Motif's own list with the same rows, and beside the floor: bare Xlib
// calls that draw the same rows from an array. Rows are parents with 20 children, expanded. Every
// measured operation ends when the server has drawn; the sides take turns.
#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/start.h"
#include "ui/viewer/viewer_internal.h"

#include <Xm/DrawnB.h>
#include <Xm/List.h>
#include <Xm/ScrollBar.h>
#include <Xm/ScrolledW.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int children_each = 20;
constexpr int columns_width = 60;
constexpr Dimension window_width = 600, window_height = 640;
constexpr Position beside = window_width + 20;
constexpr NB_BYTE PARENT = 0, CHILD = 1;

bool over = false;

void report(const char* what, double ratio, double limit, const std::string& detail) {
    const bool ok = ratio <= limit;
    over |= !ok;
    std::printf("bench_viewer %s %.2f %.2f %s (%s)\n", what, ratio, limit, ok ? "ok" : "over",
                detail.c_str());
}

// ---- the rows ----

struct Row {
    vga_viewer item;
    char text[columns_width];
    int length;
};

int create_text(void* record, char* text) {
    const Row* row = static_cast<Row*>(record);
    std::memcpy(text, row->text, static_cast<std::size_t>(row->length) + 1);
    return row->length;
}
int parent_icon(void*) {
    return VGA_ICON_LS;
}
int child_icon(void*) {
    return VGA_ICON_LUDISP;
}
void arm(void*, XmDrawnButtonCallbackStruct*) {}
constexpr VGA_VIEWER_DESC types[VGA_VIEWER_TYPE_COUNT] = {
    {.create_text = create_text,
     .choose_icon = parent_icon,
     .show_icon = 1,
     .arm_cb = arm,
     .disarm_cb = {},
     .act_cb = {},
     .drag_cb = {},
     .decor_cb = {},
     .select_cb = {},
     .expandable = 1,
     .level = 0,
     .flat = 0,
     .alone = {}},
    {.create_text = create_text,
     .choose_icon = child_icon,
     .show_icon = 1,
     .arm_cb = arm,
     .disarm_cb = {},
     .act_cb = {},
     .drag_cb = {},
     .decor_cb = {},
     .select_cb = {},
     .expandable = 0,
     .level = 1,
     .flat = 0,
     .alone = {}},
};

std::vector<Row> make_rows(std::size_t count) {
    std::vector<Row> rows(count);
    for (std::size_t i = 0; i < count; ++i) {
        rows[i].length = std::snprintf(rows[i].text, sizeof rows[i].text,
                                       "LU%06zu%%t20%%Active%%t32%%Teller display %zu", i, i % 97);
    }
    return rows;
}

// What the row looks like in a list without columns.
std::string plain_text(const Row& row) {
    char line[columns_width * 2];
    vga_viewer_text text;
    text.length = row.length;
    std::memcpy(text.text, row.text, static_cast<std::size_t>(row.length) + 1);
    const char* cursor = text.text;
    int column = 0;
    vga_viewer_segment segment;
    std::string result;
    while (vga_viewer_next_segment(&cursor, text.text + text.length, &column, &segment)) {
        std::snprintf(line, sizeof line, "%-*s", segment.column, result.c_str());
        result = line + std::string(segment.text, static_cast<std::size_t>(segment.length));
    }
    return result;
}

// ---- the sides ----

// Beside each other and out of the window manager's hands, so that neither side is covered.
Widget shell(const char* name, Position x) {
    return XtVaAppCreateShell(name, "Tessaly", topLevelShellWidgetClass, gvga_display, XmNwidth,
                              window_width, XmNheight, window_height, XmNx, x, XmNy, 0,
                              XmNoverrideRedirect, True, nullptr);
}

void settle() {
    XSync(gvga_display, False);
    while (XtAppPending(gvga_appcontext) != 0) {
        XtAppProcessEvent(gvga_appcontext, XtIMAll);
        XSync(gvga_display, False);
    }
}

struct Viewer {
    Widget top, scrolled, draw, h_bar, v_bar;
    vga_viewer_root root{};
    std::vector<Row> rows;

    explicit Viewer(std::size_t count, Position x = 0) : rows(make_rows(count)) {
        top = shell("viewer", x);
        scrolled = XtVaCreateManagedWidget("scrolled", xmScrolledWindowWidgetClass, top,
                                           XmNscrollingPolicy, XmAPPLICATION_DEFINED, nullptr);
        draw =
            XtVaCreateManagedWidget("draw", xmDrawnButtonWidgetClass, scrolled, XmNshadowThickness,
                                    0, XmNhighlightThickness, 0, XmNrecomputeSize, False, nullptr);
        h_bar = XtVaCreateWidget("h", xmScrollBarWidgetClass, scrolled, XmNorientation,
                                 XmHORIZONTAL, nullptr);
        v_bar = XtVaCreateWidget("v", xmScrollBarWidgetClass, scrolled, XmNorientation, XmVERTICAL,
                                 nullptr);
        XtVaSetValues(scrolled, XmNworkWindow, draw, XmNhorizontalScrollBar, h_bar,
                      XmNverticalScrollBar, v_bar, nullptr);
        XtRealizeWidget(top);
        settle();
    }
    ~Viewer() {
        vga_viewer_undisplay(&root);
        vga_viewer_destroy_root(&root);
        XtDestroyWidget(top);
        settle();
    }
    Viewer(const Viewer&) = delete;
    Viewer& operator=(const Viewer&) = delete;

    void fill() {
        vga_viewer_init_root(&root);
        Row* parent = nullptr;
        Row* previous = nullptr;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const bool heads = i % (children_each + 1) == 0;
            Row* row = &rows[i];
            if (heads) {
                vga_create_viewer(&root, &row->item, PARENT, row, nullptr,
                                  parent != nullptr ? &parent->item : nullptr);
                parent = row;
                previous = nullptr;
            } else {
                vga_create_viewer(&root, &row->item, CHILD, row, &parent->item,
                                  previous != nullptr ? &previous->item : nullptr);
                previous = row;
                if (i % (children_each + 1) == 1) {
                    vga_expand_viewer(&root, &parent->item);
                }
            }
        }
        vga_viewer_display_root(&root, draw, h_bar, v_bar);
        settle();
    }
    // A parent in the middle of the list, scrolled into view.
    Row& middle() {
        const std::size_t parents = rows.size() / (children_each + 1);
        Row& row = rows[parents / 2 * (children_each + 1)];
        vga_viewer_set_view(&row.item, &root);
        settle();
        return row;
    }
};

struct List {
    Widget top, list;
    std::vector<XmString> strings;

    explicit List(const std::vector<Row>& rows) {
        for (const Row& row : rows) {
            const std::string text = plain_text(row);
            strings.push_back(XmStringCreateLocalized(const_cast<char*>(text.c_str())));
        }
        top = shell("list", beside);
        Arg args[4];
        Cardinal count = 0;
        XtSetArg(args[count], XmNselectionPolicy, XmEXTENDED_SELECT), ++count;
        XtSetArg(args[count], XmNlistSizePolicy, XmCONSTANT), ++count;
        list = XmCreateScrolledList(top, const_cast<char*>("list"), args, count);
        XtManageChild(list);
        XtRealizeWidget(top);
        settle();
    }
    ~List() {
        XtDestroyWidget(top);
        for (XmString string : strings) {
            XmStringFree(string);
        }
        settle();
    }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    void fill() {
        XmListAddItems(list, strings.data(), static_cast<int>(strings.size()), 0);
        settle();
    }
    int middle() { // position, from 1, of a parent that is in view
        const int parents = static_cast<int>(strings.size()) / (children_each + 1);
        const int position = parents / 2 * (children_each + 1) + 1;
        XmListSetPos(list, position);
        settle();
        return position;
    }
};

// Draws rows of an array with the calls a row needs at least: two icons, and the text by columns.
void draw_bare(const Viewer& viewer, std::size_t first, std::size_t count) {
    Display* display = gvga_display;
    const Window window = XtWindow(viewer.draw);
    const auto& m = gvga_metrics;
    const auto height = static_cast<unsigned>(m.item_height);
    XClearArea(display, window, 0, 0, 0, static_cast<unsigned>(count) * height, False);
    for (std::size_t i = 0; i < count; ++i) {
        const Row& row = viewer.rows[first + i];
        const int y = static_cast<int>(i) * m.item_height;
        const bool heads = (first + i) % (children_each + 1) == 0;
        int x = heads ? 0 : m.indent_width;
        if (heads) {
            XCopyArea(display, gvga_pixmaps[VGA_ICON_MINUS], window, gvga_normal_gc, 0, 0,
                      static_cast<unsigned>(m.expand_icon_width),
                      static_cast<unsigned>(m.expand_icon_height), x, y + m.expand_icon_top);
        }
        x += m.expand_icon_width;
        XCopyArea(display, gvga_pixmaps[heads ? VGA_ICON_LS : VGA_ICON_LUDISP], window,
                  gvga_normal_gc, 0, 0, static_cast<unsigned>(m.icon_width),
                  static_cast<unsigned>(m.icon_height), x, y + m.icon_top);
        x += m.icon_width;
        const char* cursor = row.text;
        int column = 0;
        vga_viewer_segment segment;
        while (vga_viewer_next_segment(&cursor, row.text + row.length, &column, &segment)) {
            XDrawString(display, window, gvga_normal_gc, x + segment.column * m.char_width,
                        y + m.text_baseline, segment.text, segment.length);
        }
    }
}

// ---- measuring ----

double seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    XSync(gvga_display, False);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Times {
    double ours, peer;
};

// Medians of two works that take turns; each repeats its operation often enough to be measured.
Times alternate(int rounds, const std::function<void()>& ours, const std::function<void()>& peer) {
    std::vector<double> our_times, peer_times;
    for (int round = 0; round < rounds; ++round) {
        our_times.push_back(seconds(ours));
        peer_times.push_back(seconds(peer));
    }
    const auto median = [](std::vector<double>& times) {
        std::ranges::nth_element(times, times.begin() + static_cast<long>(times.size() / 2));
        return times[times.size() / 2];
    };
    return {median(our_times), median(peer_times)};
}

std::string milliseconds(const Times& times, const char* peer) {
    char text[100];
    std::snprintf(text, sizeof text, "%.4f ms, %s %.4f ms", times.ours * 1e3, peer,
                  times.peer * 1e3);
    return text;
}

void populate(std::size_t count) {
    const Times times = [&] {
        std::vector<double> ours, peer;
        for (int round = 0; round < 5; ++round) {
            {
                Viewer viewer(count);
                ours.push_back(seconds([&] { viewer.fill(); }));
            }
            {
                List list(make_rows(count));
                peer.push_back(seconds([&] { list.fill(); }));
            }
        }
        std::ranges::sort(ours);
        std::ranges::sort(peer);
        return Times{ours[2], peer[2]};
    }();
    report("populate", times.ours / times.peer, 1.0, milliseconds(times, "XmList"));
}

// The same operation on a long and a short list, in turns.
void growth(Viewer& large, Viewer& small) {
    constexpr int turns = 200;
    using Operation = void (*)(Viewer & viewer, Row & row, int turn);
    struct Case {
        const char* name;
        double limit;
        Operation operation;
    };
    constexpr Case cases[] = {
        {"scroll_growth", 1.2,
         [](Viewer& viewer, Row&, int turn) {
             const NB_LONG rows = viewer.root.view_height / 2 / gvga_metrics.item_height;
             const NB_LONG page = rows * gvga_metrics.item_height;
             vga_viewer_scroll_view(&viewer.root, turn % 2 == 0 ? page : -page);
         }},
        {"update_growth", 1.2,
         [](Viewer& viewer, Row& row, int) { vga_update_viewer(&viewer.root, &row.item); }},
        {"hit_and_select_growth", 1.2,
         [](Viewer& viewer, Row&, int turn) {
             const NB_ULONG y = static_cast<NB_ULONG>(turn) * 7919u % viewer.root.view_height;
             vga_viewer* hit = vga_find_viewer(&viewer.root, viewer.root.y_offset + y);
             vga_viewer_select(hit, &viewer.root, false, false, false, false);
         }},
        {"key_move_growth", 1.2,
         [](Viewer& viewer, Row&, int turn) {
             const int move = turn % 2 == 0 ? VGA_VIEWER_NEXT : VGA_VIEWER_PREVIOUS;
             vga_viewer_key_move(&viewer.root, move, false, false);
         }},
        {"insert_growth", 1.5,
         [](Viewer& viewer, Row& row, int) {
             Row extra = viewer.rows[1];
             extra.item = {};
             vga_create_viewer(&viewer.root, &extra.item, CHILD, &extra, &row.item,
                               &(&row)[1].item);
             vga_delete_viewer(&viewer.root, &extra.item, true);
         }},
    };
    for (const Case& c : cases) {
        const auto repeated = [&](Viewer& viewer) {
            Row& row = viewer.middle();
            vga_viewer_select(&row.item, &viewer.root, false, false, false, false);
            return [&] {
                for (int turn = 0; turn < turns; ++turn) {
                    c.operation(viewer, row, turn);
                }
            };
        };
        const auto at_small = repeated(small);
        const auto at_large = repeated(large);
        const Times times = alternate(21, at_large, at_small);
        report(c.name, times.ours / times.peer, c.limit,
               milliseconds({times.ours / turns, times.peer / turns}, "at 10^3 rows"));
    }
}

void compare_with_list(Viewer& viewer, List& list) {
    constexpr int turns = 20;
    Row& row = viewer.middle();
    const int position = list.middle();

    Row extra = viewer.rows[1];
    const auto repeat = [](const std::function<void()>& operation) {
        return [operation] {
            for (int i = 0; i < turns; ++i) {
                operation();
            }
        };
    };
    Times times = alternate(9, repeat([&] {
                                extra.item = {};
                                vga_create_viewer(&viewer.root, &extra.item, CHILD, &extra,
                                                  &row.item, &(&row)[1].item);
                                vga_delete_viewer(&viewer.root, &extra.item, true);
                            }),
                            repeat([&] {
                                XmListAddItem(list.list, list.strings[0], position + 1);
                                XmListDeletePos(list.list, position + 1);
                            }));
    report("insert_and_delete_in_the_middle", times.ours / times.peer, 1.2,
           milliseconds(times, "XmList"));
    times =
        alternate(9, repeat([&] {
                      vga_viewer_contract(&viewer.root, &row.item, true);
                      vga_expand_viewer(&viewer.root, &row.item);
                  }),
                  repeat([&] {
                      XmListDeleteItemsPos(list.list, children_each, position + 1);
                      XmListAddItems(list.list, &list.strings[static_cast<std::size_t>(position)],
                                     children_each, position + 1);
                  }));
    report("collapse_and_expand", times.ours / times.peer, 1.2, milliseconds(times, "XmList"));
    times =
        alternate(9, repeat([&] { vga_update_viewer(&viewer.root, &row.item); }),
                  repeat([&] { XmListReplaceItemsPos(list.list, &list.strings[3], 1, position); }));
    report("update_row", times.ours / times.peer, 0.7, milliseconds(times, "XmList"));
}

void compare_with_floor(Viewer& viewer) {
    Row& row = viewer.middle();
    const auto index = static_cast<std::size_t>(&row - viewer.rows.data());
    constexpr int turns = 50;
    Times times = alternate(
        15,
        [&] {
            for (int i = 0; i < turns; ++i) {
                vga_update_viewer(&viewer.root, &row.item);
            }
        },
        [&] {
            for (int i = 0; i < turns; ++i) {
                draw_bare(viewer, index, 1);
            }
        });
    report("update_row_to_floor", times.ours / times.peer, 2.0, milliseconds(times, "Xlib"));

    const auto rows_in_view =
        static_cast<std::size_t>(viewer.root.view_height / gvga_metrics.item_height);
    const auto page = static_cast<NB_LONG>(rows_in_view) * gvga_metrics.item_height;
    times = alternate(
        15,
        [&] {
            for (int i = 0; i < turns; ++i) {
                vga_viewer_scroll_view(&viewer.root, page);
            }
            vga_viewer_scroll_view(&viewer.root, -page * turns);
        },
        [&] {
            for (std::size_t i = 0; i <= turns; ++i) {
                draw_bare(viewer, index + i * rows_in_view, rows_in_view);
            }
        });
    report("page_scroll_to_floor", times.ours / times.peer, 1.5, milliseconds(times, "Xlib"));
}

void check_round_trips(Viewer& viewer) {
    viewer.middle();
    const unsigned long processed = LastKnownRequestProcessed(gvga_display);
    const unsigned long sent = NextRequest(gvga_display);
    vga_viewer_redraw_view(&viewer.root);
    const unsigned long requests = NextRequest(gvga_display) - sent;
    const unsigned long answers = LastKnownRequestProcessed(gvga_display) - processed;
    report("round_trips_of_a_redraw", static_cast<double>(answers), 0,
           std::to_string(requests) + " requests");
}

void check_end(Viewer& viewer) {
    vga_viewer_scroll_view(&viewer.root, std::int64_t{1} << 31);
    settle();
    const Row& last = viewer.rows.back();
    const NB_ULONG y = vga_viewer_position(&last.item);
    const bool seen =
        y >= viewer.root.y_offset && y + static_cast<NB_ULONG>(gvga_metrics.item_height) <=
                                         viewer.root.y_offset + viewer.root.view_height;
    report("last_row_out_of_sight_at_the_end", seen ? 0 : 1, 0,
           "list of " + std::to_string(viewer.root.total_height) + " pixels");
}

} // namespace

int main(int argc, char** argv) {
    argc = 1;
    if (!vga_initialise_frontend(&argc, argv)) {
        std::fprintf(stderr, "bench_viewer: no display or no data (status %d)\n",
                     static_cast<int>(gvga_exit_code));
        return 2;
    }
    Widget colours = XtVaCreateWidget("colours", xmDrawnButtonWidgetClass, gvga_toplevel, nullptr);
    if (!vga_init_graphics(colours, colours)) {
        return 2;
    }
    gvga_viewer_types = types;
    constexpr std::size_t few = 1'000, many = 100'000;

    report("bytes_of_a_row", sizeof(vga_viewer), 144, "beyond its record");
    populate(many);
    Viewer large(many);
    large.fill();
    {
        List list(large.rows);
        list.fill();
        compare_with_list(large, list);
    }
    compare_with_floor(large);
    check_round_trips(large);

    Viewer small(few, beside);
    small.fill();
    growth(large, small);
    check_end(large);
    return over ? 1 : 0;
}
