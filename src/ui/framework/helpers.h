// What windows and dialogs share: looking widgets up, colours, tab order, dialogs for viewing and
// for editing, tool bars, window sizes.
#pragma once

#include "nba/nba.h"

#include <X11/Intrinsic.h>
#include <Xm/MwmUtil.h>

struct vga_dialog;

// ---- widgets ----
// The widget named prefix + name anywhere under another, or null. prefix may be null.
Widget vga_name_widget(Widget widget, const char* name, const char* prefix);
// Finds a widget of the dialog and lets it know the dialog (XmNuserData); a missing one is a broken
// invariant. Both return the widget, null when missing.
Widget vga_put_widget_context(vga_dialog* dialog, const char* name);
Widget vga_put_widget_context_prefix(vga_dialog* dialog, const char* name, const char* prefix);
void vga_put_widget_pixmap(Widget widget, int icon);
// The descriptor a widget belongs to, through its XmNuserData or that of its nearest ancestor that
// has one; null when it belongs to none.
vga_dialog* vga_dialog_of(Widget widget);

// ---- colours and spacing ----
void vga_set_colours(Widget widget, Pixel background, Pixel foreground);
// The tool's own colours for a tree; texts, lists, scroll bars and the marks of toggles keep those
// of the resources.
void vga_set_tool_colours(Widget widget);
// Takes space out of margins and gaps, so that the taller text of multibyte locales fits.
void vga_multi_byte_resize(Widget widget);
// Makes text fields as wide as the characters that they are to hold. The toolkit takes a mean width
// for that, which is less than a character of some sizes of fixed fonts.
void vga_fit_fields(Widget widget);
void vga_remove_scrollbars(Widget scrolled_window);

// ---- window manager ----
// A dialog cannot be an icon of its own and needs no other size than its own; one that can be
// resized has handles all the same.
inline constexpr int VGA_DIALOG_DECORATIONS =
    MWM_DECOR_BORDER | MWM_DECOR_RESIZEH | MWM_DECOR_TITLE | MWM_DECOR_MENU;
// Gives a realized shell of a dialog (its own, or its message box's) the icon of the window that
// the dialog belongs to, once.
void vga_set_window_icon(const vga_dialog* dialog, Widget shell);

// ---- mnemonics ----
// Alt and the mnemonic of a label give the focus to the field behind it; those of a button or
// toggle activate it. For dialogs, whose widgets are complete; menus have their own.
void vga_install_mnemonics(Widget top);

// ---- OK, Apply, Cancel, Help ----
// Sets a text of a widget: a label, a title. resource: its name, as XmNlabelString.
void vga_set_text(Widget widget, const char* resource, const char* text);
enum VGA_BUTTON { VGA_BUTTON_OK, VGA_BUTTON_CANCEL, VGA_BUTTON_HELP };
// A button of a dialog's top widget, or null when it has none.
Widget vga_dialog_button(Widget top, VGA_BUTTON button);
// Tab moves OK, extra, Cancel, Help. extra may be null.
void vga_define_tabbing_order(Widget top, Widget extra);
// Removes the Apply button (prefix + "ApplyButton") unless the tool offers it.
void vga_check_apply_widget(Widget widget, const char* prefix);
// For viewing: OK closes and says so, nothing else is offered. For editing: OK calls ok_callback
// with the descriptor. apply may be null.
void vga_dialog_disallow_edit(vga_dialog* dialog, Widget apply, XtCallbackProc ok_callback);
void vga_dialog_allow_edit(vga_dialog* dialog, Widget apply, XtCallbackProc ok_callback);
// Sensitivity of OK and Apply; off while the dialog has verbs outstanding.
void vga_dialog_sensitive(vga_dialog* dialog, Widget apply, bool sensitive);

// A list to pick a value from, placed over the widget; it comes unmanaged, and the caller fills its
// list (XmNlistItems) and manages it. ok_callback gets client_data and an
// XmSelectionBoxCallbackStruct; the list destroys itself when it closes. with_items: only a value
// of the list is taken; otherwise there is no list, and the value is typed.
Widget vga_get_popup_list(Widget widget, XtCallbackProc ok_callback, XtPointer client_data,
                          bool with_items);

// ---- tool bars and keys ----
// Arm and disarm callbacks of a tool-bar icon button: its frame, the parent, looks pressed.
void vga_button_push(Widget widget, XtPointer, XtPointer);
void vga_button_pop(Widget widget, XtPointer, XtPointer);
// The same for a labelled button: its arm colour and background change places.
void vga_arm_widget(Widget widget, XtPointer, XtPointer);
void vga_disarm_widget(Widget widget, XtPointer, XtPointer);
// Action: activates a push, drawn or arrow button, flips a toggle button.
void vga_activate_action(Widget widget, XEvent* event, String* params, Cardinal* count);

// ---- sizes, for a window that is realized ----
void vga_set_minimum_height(Widget shell);           // not lower than it is now
void vga_set_pane_height(Widget pane, Widget title); // not lower than its title
// Not narrower than the tool bar, nor than the menu bar of the same main window.
void vga_set_toolbar_width(Widget shell, Widget tool_bar);
void vga_set_window_height(Widget shell, Widget tool_bar, Widget message_bar, Widget panes);
