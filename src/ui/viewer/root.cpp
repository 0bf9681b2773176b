#include "ui/viewer/viewer_internal.h"

#include <Xm/ScrollBar.h>
#include <Xm/ScrolledW.h>
#include <algorithm>
#include <initializer_list>

// A list's root and its ties to the widgets.

namespace {

struct Callback_row {
    const char* name;
    XtCallbackProc callback;
};
const Callback_row button_callbacks[] = {
    {XmNresizeCallback, vga_viewer_resize},     {XmNexposeCallback, vga_viewer_expose},
    {XmNarmCallback, vga_viewer_arm},           {XmNdisarmCallback, vga_viewer_disarm},
    {XmNactivateCallback, vga_viewer_activate},
};
const Callback_row bar_callbacks[] = {
    {XmNdragCallback, vga_viewer_scroll_drag},
    {XmNvalueChangedCallback, vga_viewer_scroll},
};
struct Handler_row {
    EventMask mask;
    XtEventHandler handler;
};
const Handler_row button_handlers[] = {
    {Button1MotionMask, vga_viewer_motion},
    {EnterWindowMask, vga_viewer_enter_hierarchy},
    {LeaveWindowMask, vga_viewer_leave_hierarchy},
    {KeyPressMask, vga_viewer_key_input},
};

// A drawn button ignores clicks with Control, which add to a selection here.
void let_control_clicks_in(Widget draw_widget) {
    static const XtTranslations translations =
        XtParseTranslationTable("Ctrl<Btn1Down>: Arm()\nCtrl<Btn1Up>: Activate() Disarm()");
    XtOverrideTranslations(draw_widget, translations);
}

void wire(vga_viewer_root* root) {
    let_control_clicks_in(root->draw_widget);
    for (const auto& [name, callback] : button_callbacks) {
        XtAddCallback(root->draw_widget, name, callback, root);
    }
    for (Widget bar : {root->h_scroll_bar, root->v_scroll_bar}) {
        for (const auto& [name, callback] : bar_callbacks) {
            XtAddCallback(bar, name, callback, root);
        }
    }
    XmScrolledWindowSetAreas(XtParent(root->draw_widget), root->h_scroll_bar, root->v_scroll_bar,
                             root->draw_widget);
    for (const auto& [mask, handler] : button_handlers) {
        XtAddEventHandler(root->draw_widget, mask, False, handler, root);
    }
}

void unwire(vga_viewer_root* root) {
    for (const auto& [name, callback] : button_callbacks) {
        XtRemoveCallback(root->draw_widget, name, callback, root);
    }
    for (Widget bar : {root->h_scroll_bar, root->v_scroll_bar}) {
        for (const auto& [name, callback] : bar_callbacks) {
            XtRemoveCallback(bar, name, callback, root);
        }
    }
    for (const auto& [mask, handler] : button_handlers) {
        XtRemoveEventHandler(root->draw_widget, mask, False, handler, root);
    }
}

} // namespace

bool vga_viewer_init_root(vga_viewer_root* root) {
    *root = {};
    root->select_type = VGA_VIEWER_SELECT_NONE;
    ntl_avl_init_tree(&root->top_items, vga_viewer_compare_ypos);
    root->handle = nba_create_handle(root);
    return root->handle != 0;
}

void vga_viewer_destroy_root(vga_viewer_root* root) {
    nba_destroy_handle(root->handle);
    root->handle = 0;
}

void vga_viewer_display_root(vga_viewer_root* root, Widget draw_widget, Widget h_scroll_bar,
                             Widget v_scroll_bar) {
    VGA_ASSERT(XmIsDrawnButton(draw_widget));
    root->displayed = 1;
    root->exposed = 0;
    root->draw_widget = draw_widget;
    root->h_scroll_bar = h_scroll_bar;
    root->v_scroll_bar = v_scroll_bar;
    wire(root);

    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(draw_widget, XmNwidth, &width, XmNheight, &height, nullptr);
    root->view_width = width;
    root->view_height = height;
    root->x_offset = root->y_offset = 0;
    root->total_height = vga_viewer_tree_height(root->top_items);
    root->extra_row = root->total_height > root->view_height;
    if (root->extra_row) {
        root->total_height += static_cast<NB_ULONG>(gvga_metrics.item_height);
    }
    XtVaSetValues(v_scroll_bar, XmNincrement, gvga_metrics.item_height, nullptr);
    XtVaSetValues(h_scroll_bar, XmNincrement, std::max(gvga_metrics.char_width, 1), nullptr);
    vga_viewer_set_scroll_bars(root);
    vga_viewer_redraw_view(root); // a window that is up already sends no expose
}

void vga_viewer_undisplay(vga_viewer_root* root) {
    if (!root->displayed) {
        return;
    }
    unwire(root);
    vga_viewer_stop_drag(root);
    vga_clear_outline_selection(root);
    vga_viewer_clear_selection(root);
    vga_viewer_clear_below(root, root->y_offset);
    root->displayed = root->exposed = root->extra_row = 0;
    root->draw_widget = root->h_scroll_bar = root->v_scroll_bar = nullptr;
    root->total_height = root->page_span = 0;
}
