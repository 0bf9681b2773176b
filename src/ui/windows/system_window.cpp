#include "ui/windows/system_window.h"

#include "shell/globals.h"
#include "ui/framework/dialog.h"

bool vga_display_system_window(bool ready) {
    vga_dialog* dialog = gvga_first_dialog;
    if (dialog == nullptr &&
        !vga_get_dialog(VGA_UID_SYSTEM_WINDOW, nullptr, gvga_system, &dialog)) {
        return false;
    }
    if (ready) {
        vga_display_dialog(dialog);
    }
    return true;
}
