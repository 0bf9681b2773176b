#include "ui/framework/window_menu.h"

#include "shell/messages.h"
#include "store/records.h"
#include "ui/framework/dialog.h"
#include "ui/framework/texts.h"
#include "ui/framework/widget_tree.h"

#include <X11/keysym.h>

#include <string_view>
#include <vector>

namespace {

constexpr char item_name[] = "NodeItem";

bool is_item(Widget widget) {
    // An entry on its way out stays a child until the event is dealt with.
    return XtIsManaged(widget) && std::string_view(XtName(widget)) == item_name;
}

std::vector<Widget> items_of(Widget menu) {
    std::vector<Widget> items;
    vga_for_each_child(menu, [&](Widget child) {
        if (is_item(child)) {
            items.push_back(child);
        }
    });
    return items;
}

NB_HANDLE node_of(Widget item) {
    XtPointer data = nullptr;
    XtVaGetValues(item, XmNuserData, &data, nullptr);
    return vga_data_handle(data);
}

void label(Widget item, NB_ULONG number, const vga_node* node) {
    char text[VGA_MESSAGE_BUFFER_SIZE * 2];
    vga_print_msg(text, gvga_messages[VGA_TEXT_NODE_ITEM], "i cs", number,
                  static_cast<int>(sizeof node->node_name), &node->node_name);
    XmString string = XmStringCreateLocalized(text);
    XtVaSetValues(item, XmNlabelString, string, XmNmnemonic, vga_node_widget_mnemonic(number),
                  nullptr);
    XmStringFree(string);
}

void destroy(Widget item) {
    XtUnmanageChild(item);
    XtDestroyWidget(item);
}

// Entries that the screen has no room for below each other stand in columns.
void fit_on_screen(Widget menu) {
    int height = 0;
    vga_for_each_child(menu, [&](Widget child) {
        if (XtIsManaged(child)) {
            Dimension item_height = 0;
            XtVaGetValues(child, XmNheight, &item_height, nullptr);
            height += item_height;
        }
    });
    const auto columns = static_cast<short>(1 + height / HeightOfScreen(XtScreen(menu)));
    XtVaSetValues(menu, XmNnumColumns, columns, XmNpacking,
                  columns > 1 ? XmPACK_COLUMN : XmPACK_TIGHT, nullptr);
}

} // namespace

void vga_add_node_window_widget(Widget menu, vga_node* node) {
    const std::vector<Widget> items = items_of(menu);
    for (Widget item : items) {
        if (node_of(item) == node->handle) {
            return;
        }
    }
    Widget item = XtVaCreateWidget(item_name, xmPushButtonWidgetClass, menu, XmNuserData,
                                   vga_handle_data(node->handle), nullptr);
    label(item, static_cast<NB_ULONG>(items.size() + 1), node);
    XtAddCallback(item, XmNactivateCallback, vga_raise_node_window, nullptr);
    XtManageChild(item);
    fit_on_screen(menu);
}

void vga_remove_node_window_widget(Widget menu, vga_node* node) {
    NB_ULONG number = 0;
    for (Widget item : items_of(menu)) {
        auto* other = static_cast<vga_node*>(nba_validate_handle(node_of(item)));
        if (other == node || other == nullptr) {
            destroy(item);
        } else {
            label(item, ++number, other);
        }
    }
    fit_on_screen(menu);
}

void vga_remove_all_node_window_widgets(Widget menu) {
    for (Widget item : items_of(menu)) {
        destroy(item);
    }
    fit_on_screen(menu);
}

KeySym vga_node_widget_mnemonic(NB_ULONG number) {
    return number >= 1 && number <= 9 ? XK_0 + number : NoSymbol;
}

NB_ULONG vga_get_node_number_from_widget(Widget item) {
    NB_ULONG number = 0;
    for (Widget each : items_of(XtParent(item))) {
        ++number;
        if (each == item) {
            return number;
        }
    }
    return 0;
}

void vga_raise_node_window(Widget item, XtPointer, XtPointer) {
    if (auto* node = static_cast<vga_node*>(nba_validate_handle(node_of(item)))) {
        vga_show_node_window(node);
    }
}
