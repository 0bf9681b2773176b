#include "dialogs/node_config.h"

namespace {

using enum VGA_FIELD_KIND;

#define ADV_WIDGET(member, suffix) VGA_WIDGET(vga_node_adv_dialog, member, suffix)
#define ADV_PLACE(member) VGA_PLACE(vga_node_image, member)

constexpr VGA_FIELD fields[] = {
    {.kind = TOGGLE,
     .widget = ADV_WIDGET(session_button, "SessButton"),
     .place = ADV_PLACE(defaults.session_options),
     .on = 0,
     .off = 1},
    {.kind = TOGGLE,
     .widget = ADV_WIDGET(security_button, "SecurityButton"),
     .place = ADV_PLACE(defaults.security_options),
     .on = 0,
     .off = 1},
    {.kind = DECIMAL,
     .widget = ADV_WIDGET(timeout, "Timeout"),
     .place = ADV_PLACE(defaults.timeout),
     .empty = 786,
     .range = 787,
     .maximum = 65535},
    {.kind = TOGGLE,
     .widget = ADV_WIDGET(syncpoint_button, "CPLUSyncptButton"),
     .place = ADV_PLACE(parameters.cp_lu_sync_point)},
    {.kind = TOGGLE,
     .widget = ADV_WIDGET(password_button, "CPLUAttributesButton"),
     .place = ADV_PLACE(parameters.cp_lu_attributes),
     .mask = 1},
};
constexpr VGA_FIELD_WIDGET widgets[] = {
    // all hidden
    ADV_WIDGET(nmapi_frame, "NMAPIFrame"),         ADV_WIDGET(nmapi_menu, "NMAPIMenu"),
    ADV_WIDGET(nmapi_normal, "NMAPINormal"),       ADV_WIDGET(nmapi_back, "NMAPIBack"),
    ADV_WIDGET(nmapi_migration, "NMAPIMigration"), ADV_WIDGET(nmvt_button, "NMVTButton"),
};
constexpr VGA_FORM form{"nodea", fields, widgets, vga_nodea_ok};

} // namespace

constexpr VGA_NAMED_CALLBACK gvga_nodea_callbacks[1] = {{"vga_nodea_ok", vga_nodea_ok}};

void vga_display_node_adv(vga_node_dialog* parent) {
    auto* dialog = vga_open_form<vga_node_adv_dialog>(VGA_UID_NODE_ADV_DIALOG, &parent->form.common,
                                                      parent->form.common.parent_item);
    if (dialog != nullptr) {
        vga_set_form_title(&dialog->form, 785, "");
        vga_show_form(&dialog->form, &parent->image, parent->form.editable);
    }
}

bool vga_get_widgets_node_adv(vga_dialog* dialog) {
    return vga_get_form_widgets(dialog, form);
}
bool vga_nodea_close_proc(vga_dialog* dialog, bool) {
    vga_close_form(reinterpret_cast<vga_form*>(dialog));
    return true;
}

void vga_nodea_ok(Widget widget, XtPointer, XtPointer) {
    vga_nodea_validate_fields(reinterpret_cast<vga_node_adv_dialog*>(vga_form_of(widget)));
}

void vga_nodea_validate_fields(vga_node_adv_dialog* dialog) {
    auto* parent = reinterpret_cast<vga_node_dialog*>(dialog->form.common.parent);
    vga_node_image image = parent->image;
    if (vga_read_fields(&dialog->form, &image)) {
        parent->image = image;
        vga_close_children(&dialog->form.common, true, false);
    }
}
