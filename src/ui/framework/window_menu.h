// The entries for nodes in a Windows menu: one push button "NodeItem" per node, numbered from 1.
#pragma once

#include "nba/nba.h"

#include <X11/Intrinsic.h>

struct vga_node;

// menu: the menu's pane. A node that has an entry gets no second one.
void vga_add_node_window_widget(Widget menu, vga_node* node);
// Removes the node's entry and numbers the rest anew.
void vga_remove_node_window_widget(Widget menu, vga_node* node);
void vga_remove_all_node_window_widgets(Widget menu);
// The key of an entry: its digit; none beyond 9.
KeySym vga_node_widget_mnemonic(NB_ULONG number);
// The number of an entry, 0 for another widget.
NB_ULONG vga_get_node_number_from_widget(Widget item);
// Activate callback of the entries.
void vga_raise_node_window(Widget item, XtPointer, XtPointer);
