// Random operations on a list and on a plain model of it; after each one rows, positions, selection
// and the pixels of the window must agree.
#include "viewer/fixture.h"

#include "shell/globals.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <algorithm>
#include <random>

namespace {

struct Model_row {
    Row row;
    NB_BYTE type = TEST_TOP;
    Model_row* parent = nullptr;
    std::vector<std::unique_ptr<Model_row>> children;
    bool expanded = false;
    bool selected = false;
};
using List = std::vector<std::unique_ptr<Model_row>>;

class Model_test : public Viewer_test, public testing::WithParamInterface<unsigned> {
public:
    List top;
    Model_row* anchor = nullptr;
    Model_row* outline = nullptr;
    Model_row* dragged = nullptr; // null: no drag
    int scrolled = 0;             // how often a scroll bar moved the view
    std::mt19937 random{GetParam()};

    int below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }

    // ---- the model's rules, told as sets over plain lists ----

    List& siblings(const Model_row* row) { return row->parent ? row->parent->children : top; }
    int index(const Model_row* row) {
        const List& list = siblings(row);
        return static_cast<int>(std::ranges::find(list, row, [](auto& r) { return r.get(); }) -
                                list.begin());
    }
    void visible(const List& list, std::vector<Model_row*>& out) {
        for (const auto& row : list) {
            out.push_back(row.get());
            if (row->expanded) {
                visible(row->children, out);
            }
        }
    }
    std::vector<Model_row*> visible() {
        std::vector<Model_row*> out;
        visible(top, out);
        return out;
    }
    int place(const Model_row* row) { // among the visible rows; -1 hidden
        const auto all = visible();
        const auto found = std::ranges::find(all, row);
        return found == all.end() ? -1 : static_cast<int>(found - all.begin());
    }
    std::vector<Model_row*> chosen() {
        std::vector<Model_row*> out;
        for (Model_row* row : visible()) {
            if (row->selected) {
                out.push_back(row);
            }
        }
        return out;
    }
    static bool selectable(const Model_row* row) { return row->type != TEST_TITLE; }
    void deselect() {
        for (Model_row* row : visible()) {
            row->selected = false;
        }
    }
    Model_row* current_selected() {
        const auto all = chosen();
        if (all.empty()) {
            return nullptr;
        }
        if (outline && outline->selected) {
            return outline;
        }
        return anchor && anchor->selected ? anchor : all.back();
    }
    bool inside(const Model_row* row, const Model_row* above) {
        while (row && row != above) {
            row = row->parent;
        }
        return row != nullptr;
    }

    void select(Model_row* row, bool toggle, bool extend, bool keyboard, bool space) {
        const bool near = anchor && anchor->parent == row->parent;
        const bool state = anchor && anchor->selected;
        if (!(toggle && (chosen().empty() || near))) {
            deselect();
        }
        outline = row;
        if (extend && near) {
            const auto [from, to] = std::minmax({index(anchor), index(row)});
            for (int ii = from; ii <= to; ++ii) {
                Model_row* here = siblings(row)[ii].get();
                here->selected = state && selectable(here);
            }
        } else if (!toggle) {
            row->selected = true;
            anchor = row;
        } else if (!keyboard || space) {
            row->selected = !row->selected;
            anchor = row;
        }
        if (chosen().empty()) {
            anchor = nullptr;
            dragged = nullptr;
        }
    }

    // The rows the pointer passed on the anchor's far side lose their state, those between anchor
    // and pointer take the anchor's.
    void drag_over(Model_row* target) {
        if (!dragged || target == dragged) {
            return;
        }
        const bool upward = place(target) < place(dragged);
        const auto all = visible();
        const auto [from, to] = std::minmax({place(dragged), place(target)});
        for (int ii = from; ii <= to; ++ii) {
            Model_row* row = all[ii];
            if (row->parent != anchor->parent || !selectable(row)) {
                continue;
            }
            const int d = index(row) - index(anchor);
            if (row != target && (upward ? d > 0 : d < 0)) {
                row->selected = false;
            } else if (row != dragged && (upward ? d < 0 : d > 0)) {
                row->selected = anchor->selected;
            }
        }
        // The outline goes to the last sibling entered.
        const bool leaves =
            dragged == outline && dragged->parent == anchor->parent &&
            (upward ? index(dragged) > index(anchor) : index(dragged) < index(anchor));
        outline = leaves ? nullptr : outline;
        for (int ii = from; ii <= to; ++ii) {
            Model_row* row = all[ii];
            if (row == dragged || row == target || row->parent != anchor->parent ||
                !selectable(row)) {
                continue;
            }
            const int d = index(row) - index(anchor);
            outline = (upward ? d > 0 : d < 0) ? nullptr : row;
        }
        if (target->parent == anchor->parent && selectable(target)) {
            outline = target;
        }
        dragged = target;
        if (chosen().empty()) { // the drag ended at some row on the way
            anchor = dragged = nullptr;
            outline = nullptr;
            for (Model_row* row : all) {
                outline = &row->row.item == root.outline_viewer ? row : outline;
            }
        }
    }

    void contract(Model_row* row) {
        for (auto& child : row->children) {
            if (child->expanded) {
                contract(child.get());
            }
            child->selected = false;
        }
        row->expanded = false;
        outline = outline && outline->parent == row ? nullptr : outline;
        if (anchor && anchor->parent == row) {
            anchor = dragged = nullptr;
        }
    }

    void remove(Model_row* row) {
        if (row->expanded) {
            contract(row);
        }
        const int at = place(row);
        const auto all = visible();
        outline = outline == row ? nullptr : outline;
        const bool was_selected = row->selected;
        row->selected = false;
        dragged = nullptr;
        Model_row* parent = row->parent;
        List& list = siblings(row);
        const int in_list = index(row);
        const auto left = chosen();
        if (anchor == row || (was_selected && left.empty())) {
            if (!left.empty()) {
                anchor = list.front().get() == row ? nullptr : list.front().get();
                anchor = current_selected();
            } else {
                Model_row* next = in_list + 1 < static_cast<int>(list.size())
                                      ? list[in_list + 1].get()
                                  : at > 0 ? all[at - 1]
                                           : nullptr;
                for (int ii = next ? place(next) : 0; next && (next == row || !selectable(next));
                     ++ii) {
                    next = ii + 1 < static_cast<int>(all.size()) ? all[ii + 1] : nullptr;
                }
                anchor = next;
                if (next) {
                    next->selected = true;
                    outline = outline ? outline : next;
                }
            }
        }
        (parent ? parent->children : top).erase(list.begin() + in_list);
    }

    // ---- comparison ----

    NB_ULONG check(const List& list, const Model_row* parent) {
        const NTL_AVL_TREE& tree = parent ? parent->row.item.children : root.top_items;
        const NB_ULONG row_height = static_cast<NB_ULONG>(gvga_metrics.item_height);
        EXPECT_EQ(list.size(), parent ? parent->row.item.child_count : root.top_count);
        NB_ULONG offset = 0;
        const vga_viewer* item = vga_viewer_top(tree);
        for (const auto& row : list) {
            if (item != &row->row.item) {
                ADD_FAILURE() << "order";
                return offset;
            }
            EXPECT_EQ(offset, vga_viewer_ypos(item));
            EXPECT_EQ(row->expanded, item->expanded != 0);
            EXPECT_EQ(row->selected, item->selected != 0);
            NB_ULONG height = row_height;
            const NB_ULONG children = check(row->children, row.get());
            height += row->expanded ? children : 0;
            EXPECT_EQ(height, item->height);
            offset += height;
            item = vga_viewer_sibling_below(item);
        }
        EXPECT_EQ(nullptr, item);
        return offset;
    }

    void check() {
        const NB_ULONG height = check(top, nullptr);
        const NB_ULONG row_height = static_cast<NB_ULONG>(gvga_metrics.item_height);
        EXPECT_EQ(height + (root.extra_row ? row_height : 0), root.total_height);
        EXPECT_EQ(outline ? &outline->row.item : nullptr, root.outline_viewer);
        EXPECT_EQ(chosen().size(), static_cast<std::size_t>(root.select_count));
        Model_row* selected = current_selected();
        EXPECT_EQ(selected ? &selected->row.item : nullptr, vga_viewer_get_selected_viewer(&root));
        EXPECT_EQ(selected ? selected->type : VGA_VIEWER_SELECT_NONE, root.select_type);
        EXPECT_EQ(anchor ? &anchor->row.item : nullptr, root.select_anchor);
        EXPECT_EQ(dragged != nullptr, root.dragging != 0);
        EXPECT_EQ(0u, root.y_offset % row_height);
        const auto all = visible();
        const NB_ULONG y = static_cast<NB_ULONG>(below(static_cast<int>(height) + 40));
        const vga_viewer* hit = y < height ? &all[y / row_height]->row.item : nullptr;
        EXPECT_EQ(hit, vga_find_viewer(&root, y));
    }

    void check_pixels() {
        const Pixels seen = look();
        EXPECT_TRUE(seen == look_afresh()) << "the window differs from one drawn anew";
    }

    // ---- operations ----

    Model_row* any_row(bool hidden = false) {
        std::vector<Model_row*> all = visible();
        if (all.empty()) {
            return nullptr;
        }
        Model_row* row = all[below(static_cast<int>(all.size()))];
        if (hidden && !row->children.empty() && below(2)) {
            row = row->children[below(static_cast<int>(row->children.size()))].get();
        }
        return row;
    }

    void create_somewhere() {
        Model_row* parent = below(3) ? any_row(true) : nullptr;
        while (parent && parent->type > TEST_MIDDLE) {
            parent = parent->parent;
        }
        List& list = parent ? parent->children : top;
        auto row = std::make_unique<Model_row>();
        row->type = static_cast<NB_BYTE>(parent     ? parent->type + 1
                                         : below(6) ? TEST_TOP
                                                    : TEST_TITLE);
        row->parent = parent;
        row->row.text = std::string(below(40), static_cast<char>('a' + below(26))) + "%t20%" +
                        std::string(below(30), 'x');
        const int at = below(static_cast<int>(list.size()) + 1);
        create(&row->row, row->type, parent ? &parent->row : nullptr,
               at > 0 ? &list[at - 1]->row : nullptr);
        list.insert(list.begin() + at, std::move(row));
    }

    void delete_one() {
        if (Model_row* row = any_row(true)) {
            const bool redraw = below(4) != 0;
            vga_delete_viewer(&root, &row->row.item, redraw);
            remove(row);
            if (!redraw) {
                vga_viewer_set_scroll_bars(&root);
                look_afresh();
            }
        }
    }

    void toggle_one() {
        Model_row* row = any_row();
        if (!row) {
            return;
        }
        if (row->expanded) {
            vga_viewer_contract(&root, &row->row.item, true);
            contract(row);
        } else if (row->type <= TEST_MIDDLE) {
            vga_expand_viewer(&root, &row->row.item);
            row->expanded = true;
        }
    }

    void change_one() {
        if (Model_row* row = any_row(true)) {
            row->row.text = std::string(below(45), 'm') + "%t30%end";
            vga_update_viewer(&root, &row->row.item);
        }
    }

    void look_at_one() {
        Model_row* row = any_row(true);
        if (!row) {
            return;
        }
        const int row_height = gvga_metrics.item_height;
        const auto whole_in_view = [&] {
            return row_y(&row->row) >= 0 && row_y(&row->row) + row_height <= root.view_height;
        };
        const bool listed = place(row) >= 0; // else the ancestors' rows come into view as well
        const bool stays = listed && whole_in_view();
        const NB_ULONG before = root.y_offset;
        vga_viewer_set_view(&row->row.item, &root);
        for (Model_row* above = row->parent; above; above = above->parent) {
            above->expanded = true;
        }
        EXPECT_TRUE(whole_in_view() || root.view_height < 2 * row_height);
        if (stays) {
            EXPECT_EQ(before, root.y_offset);
        } else if (const NB_ULONG bottom = root.y_offset + root.view_height + row_height;
                   listed && root.y_offset > 0 && bottom <= root.total_height) {
            EXPECT_NEAR(row_y(&row->row), root.view_height / 2, row_height) << "in the middle";
        }
    }

    unsigned some_modifiers() {
        return (below(2) ? ControlMask : 0u) | (below(3) == 0 ? ShiftMask : 0u);
    }

    void click_or_drag() {
        const auto all = visible();
        const int first = below(root.view_height);
        const int row_height = gvga_metrics.item_height;
        const auto at = [&](int y) {
            const auto place = (root.y_offset + static_cast<NB_ULONG>(y)) / row_height;
            return place < all.size() ? all[place] : nullptr;
        };
        Model_row* row = at(first);
        const unsigned modifiers = some_modifiers();
        const int x = root.view_width - 2; // behind every expand box
        press_at(x, first, modifiers);
        outline = nullptr;
        if (row && selectable(row)) {
            select(row, modifiers & ControlMask, modifiers & ShiftMask, false, false);
        }
        dragged = row && anchor ? row : nullptr;
        for (int moves = below(5) - 1; moves > 0; --moves) {
            const int y = below(root.view_height);
            move_pointer(x, y);
            pump();
            if (dragged) {
                drag_over(at(y) ? at(y) : all.back());
            }
            check();
            check_pixels();
        }
        kit::press_button(false);
        pump();
        dragged = nullptr;
    }

    // Where a key leads from the current row; a row that cannot be selected counts for the next.
    Model_row* key_target(KeySym pressed, Model_row* current, bool among_siblings) {
        const auto all = visible();
        std::vector<Model_row*> rows = all;
        if (among_siblings) {
            std::erase_if(rows, [&](Model_row* row) { return row->parent != current->parent; });
        }
        const int last = static_cast<int>(rows.size()) - 1;
        const int here = static_cast<int>(std::ranges::find(rows, current) - rows.begin());
        const int page = static_cast<int>(root.page_span) / gvga_metrics.item_height;
        const int target = pressed == XK_Up      ? here - 1
                           : pressed == XK_Down  ? here + 1
                           : pressed == XK_Home  ? 0
                           : pressed == XK_End   ? last
                           : pressed == XK_Prior ? std::max(here - page, 0)
                                                 : std::min(here + page, last);
        if (target < 0 || target > last) {
            return nullptr;
        }
        for (int ii = place(rows[target]); ii < static_cast<int>(all.size()); ++ii) {
            if (selectable(all[ii])) {
                return all[ii];
            }
        }
        return nullptr;
    }

    void press_key() {
        static constexpr KeySym moves[] = {XK_Up, XK_Down, XK_Home, XK_End, XK_Prior, XK_Next};
        const unsigned modifiers = some_modifiers();
        const bool toggle = modifiers & ControlMask;
        const bool extend = modifiers & ShiftMask;
        if (below(4) == 0) {
            key(XK_space, modifiers);
            if (outline && selectable(outline)) {
                select(outline, toggle, extend, true, true);
            }
            return;
        }
        const KeySym pressed = moves[below(modifiers != 0 ? 4 : 6)];
        key(pressed, modifiers);
        Model_row* current = outline ? outline : current_selected();
        if (!current) {
            if (!top.empty() && (current = key_target(XK_Home, top[0].get(), false))) {
                select(current, false, false, true, false);
            }
            return;
        }
        Model_row* target = key_target(pressed, current, modifiers != 0);
        if (target && target != current) {
            select(target, toggle, extend, true, false);
            const int height = gvga_metrics.item_height;
            EXPECT_TRUE(
                root.view_height < 2 * height ||
                (row_y(&target->row) >= 0 && row_y(&target->row) + height <= root.view_height));
        }
    }

    // Presses a scroll bar somewhere and moves on before letting go: a step, a page or the slider.
    void scroll_some() {
        const Widget bar = below(3) ? v_bar : h_bar;
        if (!XtIsManaged(bar)) {
            return key(below(2) ? XK_Right : XK_Left);
        }
        Dimension width = 0;
        Dimension height = 0;
        XtVaGetValues(bar, XmNwidth, &width, XmNheight, &height, nullptr);
        const auto before = std::pair(root.x_offset, root.y_offset);
        for (const bool down : {true, false}) {
            Position x = 0;
            Position y = 0;
            XtTranslateCoords(bar, static_cast<Position>(below(width)),
                              static_cast<Position>(below(height)), &x, &y);
            XTestFakeMotionEvent(gvga_display, -1, x, y, CurrentTime);
            pump();
            kit::press_button(down);
            pump();
        }
        scrolled += before != std::pair(root.x_offset, root.y_offset);
    }

    void resize_some() {
        resize(100 + below(300), 30 + below(250));
        look();
        vga_viewer_set_scroll_bars(&root);
    }
};

TEST_P(Model_test, random_operations_keep_list_and_window_right) {
    using Operation = void (Model_test::*)();
    const std::pair<int, Operation> operations[] = {
        {14, &Model_test::create_somewhere}, {9, &Model_test::delete_one},
        {8, &Model_test::toggle_one},        {5, &Model_test::change_one},
        {3, &Model_test::look_at_one},       {9, &Model_test::press_key},
        {9, &Model_test::click_or_drag},     {5, &Model_test::scroll_some},
        {1, &Model_test::resize_some},
    };
    int sum = 0;
    for (const auto& [weight, operation] : operations) {
        sum += weight;
    }
    for (int step = 0; step < 1500; ++step) {
        int pick = below(sum);
        const auto* chosen = operations;
        while (pick >= chosen->first) {
            pick -= chosen->first;
            ++chosen;
        }
        (this->*chosen->second)();
        pump();
        check();
        check_pixels();
        if (HasFailure()) {
            FAIL() << "at step " << step << ", operation " << chosen - operations;
        }
    }
    EXPECT_GT(scrolled, 10);
}

INSTANTIATE_TEST_SUITE_P(seeds, Model_test, testing::Values(1u, 2u, 18u));

} // namespace
