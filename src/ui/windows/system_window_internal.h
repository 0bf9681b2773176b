// What the files of the system window share.
#pragma once

#include "store/records.h"
#include "ui/windows/system_window.h"
#include "ui/windows/window_parts.h"

#include <array>

// The open window, or null.
inline vga_system_window* vga_sysw() {
    vga_dialog* dialog = gvga_system != nullptr ? gvga_system->gui_data.system_window : nullptr;
    return reinterpret_cast<vga_system_window*>(dialog);
}
// The selected node, or null.
vga_node* vga_sysw_selected_node();

// ---- buttons ----

enum VGA_SYSW_BUTTON : int {
    VGA_SYSW_START,
    VGA_SYSW_STOP,
    VGA_SYSW_ZOOM,
    VGA_SYSW_BUTTON_COUNT,
};
extern const std::array<VGA_TOOL<vga_system_window>, VGA_SYSW_BUTTON_COUNT> vga_sysw_tools;
struct VGA_SYSW_STATES {
    std::array<bool, VGA_SYSW_BUTTON_COUNT> tools;
    bool trace;
    bool add_backup;
    bool del_backup;
};
// What can be done with the selected node, null: none. network_file: that of the domain is open.
VGA_SYSW_STATES vga_sysw_button_states(const vga_node* node, bool network_file);
// Message about a button, with the name of the selected node if there is one, into text
// (VGA_MESSAGE_BUFFER_SIZE).
void vga_sysw_button_help(VGA_SYSW_BUTTON button, const vga_node* node, char* text);
