// The windows that list records of the domain, or of a node, for adding, changing, copying and
// deleting them. One row says what a window lists and how its widgets are called; the fixed names
// of its functions are one line each over the functions here.
#pragma once

#include "ui/framework/dialog.h"
#include "ui/viewer/viewer_type.h"
#include "ui/windows/delete_flow.h"

#include <array>
#include <span>

struct VGA_LIST_NAME { // of a widget; null: the window has none
    const char* name = nullptr;
    const char* missing = nullptr; // the invariant that it exists
};
#define VGA_LIST_WIDGET(name, field)                                                               \
    VGA_LIST_NAME {                                                                                \
        "*" name, "desc->" #field " != NULL"                                                       \
    }

struct VGA_LIST_TYPE { // a type of row in a pane; a row of any other type is a heading
    NB_BYTE type;
    NB_USHORT dialog_id;                       // shows, changes and copies a record
    const VGA_DELETE_KIND* deleting = nullptr; // null: it cannot be deleted
};

struct VGA_LIST_PANE {
    VGA_LIST_NAME list, h_scroll, v_scroll, form, icon;
    VGA_ICON shows; // in icon
    vga_viewer_root* (*root)(void* owner);
    NB_USHORT add_dialog_id;
    std::span<const VGA_LIST_TYPE> types;
};

enum VGA_LIST_BUTTON : int {
    VGA_LIST_ADD,
    VGA_LIST_DELETE,
    VGA_LIST_MODIFY,
    VGA_LIST_COPY,
    VGA_LIST_STATUS,
    VGA_LIST_BUTTON_COUNT,
};
struct VGA_LIST_BUTTON_ROW {
    VGA_LIST_NAME button; // a push button, or the frame of a tool
    VGA_LIST_NAME icon{}; // of a tool
    VGA_LIST_NAME menu_item{};
};

inline constexpr std::size_t VGA_LIST_MAX_PANES = 3;

struct VGA_LIST_WINDOW { // a window
    NB_USHORT dialog_id;
    int title;      // message
    bool of_domain; // lists records of the system; else of a node, which the title names
    // Where the owner keeps the open window.
    vga_dialog** (*open)(void* owner);
    std::span<const VGA_LIST_PANE> panes;
    std::array<VGA_LIST_BUTTON_ROW, VGA_LIST_BUTTON_COUNT> buttons;
    std::span<const char* const> others{}; // widgets that only need to know their window
    VGA_LIST_NAME message_bar{};
    // Name of the action that calls vga_list_focus; null: the panes do not show the keyboard.
    const char* focus_action = nullptr;
    int columns = 70; // of its first size
    int rows = 18;
    // Opens the status dialog of the selected record.
    void (*status)(vga_dialog* window, void* record, NB_BYTE type) = nullptr;
};

struct vga_list_window { // parent_item: the owner of the lists
    vga_dialog common;
    const VGA_LIST_WINDOW* row;
    struct {
        Widget list, h_scroll, v_scroll, form, icon;
    } panes[VGA_LIST_MAX_PANES];
    struct {
        Widget button, icon, menu_item;
    } buttons[VGA_LIST_BUTTON_COUNT];
    Widget message_bar;
    Pixel background, foreground; // of a pane without the focus
    std::size_t selected_pane;
    NB_USHORT zoom_ok; // one record is selected
};

// ---- life ----

// Opens the window of an owner, or raises the one that is open. False when it cannot be shown.
bool vga_open_list_window(const VGA_LIST_WINDOW& row, vga_dialog* parent, void* owner);
bool vga_get_list_widgets(vga_dialog* dialog, const VGA_LIST_WINDOW& row);
// For the close procedure.
void vga_close_list_window(vga_dialog* dialog);
Widget vga_list_focus_widget(vga_dialog* dialog);

// ---- rows of the lists: for the functions in the viewer type table. window null: not open ----

void vga_list_arm(vga_dialog* window, vga_viewer* row, const XmDrawnButtonCallbackStruct* data);
// A double click opens the record.
void vga_list_activate(vga_dialog* window, const XmDrawnButtonCallbackStruct* data);
void vga_list_set_button_states(vga_dialog* window);
void vga_list_disarm(Widget widget);

// ---- buttons ----

void vga_list_add(Widget widget);
void vga_list_modify(Widget widget);
void vga_list_copy(Widget widget);
void vga_list_delete(Widget widget);
void vga_list_status(Widget widget);
void vga_list_enter_button(Widget widget);
void vga_list_leave_button(Widget widget);
// The focus action: param "1" shows the list's pane as the one with the keyboard, "0" not.
void vga_list_focus(Widget widget, String* params, Cardinal count);
// False when the operator was told that the records cannot be changed: read-only, or, for those of
// the domain, without its configuration file.
bool vga_list_may_change(vga_dialog* window, bool of_domain);
