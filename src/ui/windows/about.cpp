#include "ui/windows/about.h"

#include "shell/globals.h"
#include "shell/messages.h"
#include "store/records.h"
#include "ui/framework/common_actions.h"
#include "ui/framework/helpers.h"
#include "ui/framework/texts.h"
#include "ui/viewer/viewer_type.h"

#include <cstdio>
#include <iterator>

namespace {

constexpr const char* version_stamp = "%s, version " TESSALY_VERSION;
constexpr int product_name = 2;

constexpr const char* node_names[VGA_INTRO_LABEL_COUNT] = {"*shlpdNodeLabel1", "*shlpdNodeLabel2",
                                                           "*shlpdNodeLabel3", "*shlpdNodeLabel4"};
constexpr const char* client_server_names[VGA_INTRO_LABEL_COUNT] = {
    "*shlpdCSLabel1", "*shlpdCSLabel2", "*shlpdCSLabel3", "*shlpdCSLabel4"};

} // namespace

bool vga_get_widgets_about(vga_dialog* dialog) {
    auto* about = reinterpret_cast<vga_about_box*>(dialog);
    about->ok = vga_put_widget_context(dialog, "*aboutOKButton");
    about->version = vga_put_widget_context(dialog, "*aboutVersionLabel");
    about->icon = vga_put_widget_context(dialog, "*aboutLabel1");
    if (about->ok == nullptr || about->version == nullptr || about->icon == nullptr) {
        return false;
    }
    vga_set_text(about->ok, XmNlabelString, gvga_messages[VGA_TEXT_OK]);
    vga_put_widget_pixmap(about->icon, VGA_ICON_V5);
    char name[VGA_MESSAGE_BUFFER_SIZE];
    char version[2 * VGA_MESSAGE_BUFFER_SIZE];
    std::snprintf(name, sizeof name, "%s (64 bit)", gvga_messages[product_name]);
    std::snprintf(version, sizeof version, version_stamp, name);
    vga_set_text(about->version, XmNlabelString, version);
    XtVaSetValues(dialog->widget, XmNcancelButton, about->ok, XmNdefaultButton, about->ok,
                  XmNinitialFocus, about->ok, nullptr);
    XtRemoveAllCallbacks(dialog->widget, XmNhelpCallback);
    XtAddCallback(dialog->widget, XmNhelpCallback, vga_menu_help_contents, nullptr);
    return true;
}

void vga_display_about_box(vga_dialog* parent) {
    vga_dialog* about = vga_open_instance(VGA_UID_ABOUT_BOX);
    if (about != nullptr) {
        vga_go_to_dialog(about);
    } else if (vga_get_dialog(VGA_UID_ABOUT_BOX, parent, nullptr, &about)) {
        vga_display_dialog(about);
    }
}

bool vga_get_widgets_start_help(vga_dialog* dialog) {
    auto* help = reinterpret_cast<vga_start_help_dialog*>(dialog);
    bool found = true;
    for (std::size_t i = 0; i < std::size(node_names); ++i) {
        help->node_labels[i] = vga_put_widget_context(dialog, node_names[i]);
        help->client_server_labels[i] = vga_put_widget_context(dialog, client_server_names[i]);
        found =
            found && help->node_labels[i] != nullptr && help->client_server_labels[i] != nullptr;
    }
    return found;
}

void vga_display_start_help_dialog(vga_node* node, NB_LONG intro_type) {
    const bool domain = intro_type == VGA_INTRO_TYPE_CLIENT_SERVER;
    if (!domain && !VGA_ASSERT(intro_type == VGA_INTRO_TYPE_NODE)) {
        return;
    }
    vga_dialog* parent = domain || node == nullptr ? gvga_main_dialog : node->gui_data.node_window;
    vga_dialog* dialog = nullptr;
    if (!vga_get_dialog(VGA_UID_START_HELP_DIALOG, parent, domain ? nullptr : node, &dialog)) {
        return;
    }
    auto* help = reinterpret_cast<vga_start_help_dialog*>(dialog);
    for (std::size_t i = 0; i < std::size(node_names); ++i) { // each in a row of its own
        XtUnmanageChild((domain ? help->node_labels : help->client_server_labels)[i]);
        XtManageChild((domain ? help->client_server_labels : help->node_labels)[i]);
    }
    vga_display_dialog(dialog);
}
