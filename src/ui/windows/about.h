// The about box, and the start help that tells what to do with a node or a domain that has no
// configuration yet.
#pragma once

#include "ui/framework/dialog.h"

struct vga_node;

struct vga_about_box {
    vga_dialog common;
    Widget ok, version, icon;
};

enum VGA_INTRO_TYPE : NB_LONG { VGA_INTRO_TYPE_NODE = 0, VGA_INTRO_TYPE_CLIENT_SERVER = 1 };
inline constexpr int VGA_INTRO_LABEL_COUNT = 4;

struct vga_start_help_dialog { // parent_item: the node, or none
    vga_dialog common;
    Widget node_labels[VGA_INTRO_LABEL_COUNT];
    Widget client_server_labels[VGA_INTRO_LABEL_COUNT];
};

// Raises the box that is open, or opens it.
void vga_display_about_box(vga_dialog* parent);
// node: whose window is open; null for the introduction to a domain, over the main window.
void vga_display_start_help_dialog(vga_node* node, NB_LONG intro_type);

// ---- for the dialog table ----
bool vga_get_widgets_about(vga_dialog* dialog);
bool vga_get_widgets_start_help(vga_dialog* dialog);
