// The life of a dialog with a field table: opening, for editing or viewing, closing.
#include "common/assert.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "ui/framework/field_table_internal.h"

#include <Xm/XmAll.h>

#include <cstdarg>
#include <cstdio>

namespace {

vga_form* open_form_of(NB_USHORT dialog_id, const void* record) {
    vga_form* found = nullptr;
    vga_for_each_open_dialog([&](vga_dialog* dialog) {
        if (dialog->dialog_id == dialog_id && dialog->parent_item == record) {
            found = reinterpret_cast<vga_form*>(dialog);
        }
    });
    return found;
}

// Calls use(widget) for what the operator works with in a row.
template <typename Use>
void for_each_widget(const vga_form* form, const VGA_FIELD& field, Use use) {
    const auto each = [&](const VGA_FIELD_WIDGET& row) {
        if (Widget widget = vga_form_widget(form, row)) {
            use(widget);
        }
    };
    each(field.widget);
    each(field.second);
    if (vga_kind_of(field).use == VGA_FIELD_USE::CONTROLS) {
        for (const VGA_FIELD_CHOICE& choice : field.choices) {
            each(choice.entry);
        }
    }
}

bool is_text(Widget widget) {
    return XmIsTextField(widget) || XmIsText(widget);
}

// Only a field that can be typed into has the ground of data and a cursor; any other looks like
// part of the dialog.
void set_ground(Widget text, bool open) {
    Pixel ground = gvga_list_background;
    if (!open) {
        XtVaGetValues(XtParent(text), XmNbackground, &ground, nullptr);
    }
    XtVaSetValues(text, XmNbackground, ground, XmNcursorPositionVisible, open, nullptr);
}

bool find_widget(vga_form* form, const VGA_FIELD_WIDGET& row) {
    if (row.member == 0) {
        return true;
    }
    Widget& kept = *reinterpret_cast<Widget*>(reinterpret_cast<char*>(form) + row.member);
    kept = vga_put_widget_context_prefix(&form->common, row.suffix, XtName(form->common.widget));
    return kept != nullptr;
}

bool find_widgets(vga_form* form, const VGA_FIELD& field) {
    bool found = find_widget(form, field.widget);
    found &= find_widget(form, field.second);
    found &= find_widget(form, field.label);
    for (const VGA_FIELD_CHOICE& choice : field.choices) {
        found &= find_widget(form, choice.entry);
    }
    return found;
}

// The first field that can take the focus.
void focus_first(vga_form* form) {
    for (const VGA_FIELD& field : form->row->fields) {
        Widget widget = vga_form_widget(form, field.widget);
        if (widget != nullptr && XmIsTraversable(widget)) {
            XmProcessTraversal(widget, XmTRAVERSE_CURRENT);
            return;
        }
    }
}

} // namespace

vga_form* vga_open_form(NB_USHORT dialog_id, vga_dialog* parent, void* record) {
    if (vga_form* open = record != nullptr ? open_form_of(dialog_id, record) : nullptr) {
        vga_go_to_dialog(&open->common);
        return nullptr;
    }
    vga_dialog* dialog = nullptr;
    return vga_get_dialog(dialog_id, parent, record, &dialog) ? reinterpret_cast<vga_form*>(dialog)
                                                              : nullptr;
}

bool vga_get_form_widgets(vga_dialog* dialog, const VGA_FORM& row) {
    auto* form = reinterpret_cast<vga_form*>(dialog);
    form->row = &row;
    bool found = true;
    for (const VGA_FIELD& field : row.fields) {
        found &= find_widgets(form, field);
    }
    for (const VGA_FIELD_WIDGET& widget : row.widgets) {
        found &= find_widget(form, widget);
    }
    const char* prefix = XtName(dialog->widget);
    if (vga_name_widget(dialog->widget, "ApplyButton", prefix) != nullptr) {
        vga_check_apply_widget(dialog->widget, prefix);
        form->apply_button = vga_put_widget_context_prefix(dialog, "ApplyButton", prefix);
    }
    return found;
}

void vga_show_form(vga_form* form, const void* image, bool editable) {
    vga_dialog* dialog = &form->common;
    vga_show_fields(form, image);
    vga_edit_fields(form, editable);
    (editable ? vga_dialog_allow_edit : vga_dialog_disallow_edit)(dialog, form->apply_button,
                                                                  form->row->ok);
    vga_dialog_sensitive(dialog, form->apply_button, true);
    vga_display_dialog(dialog);
    focus_first(form);
    vga_define_tabbing_order(dialog->widget, form->apply_button);
}

void vga_set_form_title(vga_form* form, int message, const char* kinds, ...) {
    char title[VGA_MESSAGE_BUFFER_SIZE];
    va_list arguments;
    va_start(arguments, kinds);
    vga_print_msg_va(title, gvga_messages[message], kinds, arguments);
    va_end(arguments);
    vga_set_text(form->common.widget, XmNdialogTitle, title);
}

void vga_edit_fields(vga_form* form, bool editable) {
    form->editable = editable;
    for (const VGA_FIELD& field : form->row->fields) {
        for_each_widget(form, field, [&](Widget widget) {
            if (is_text(widget)) {
                XtVaSetValues(widget, XmNeditable, editable, nullptr);
            }
        });
    }
    vga_adjust_fields(form);
}

void vga_adjust_fields(vga_form* form) {
    for (const VGA_FIELD& field : form->row->fields) {
        const bool applies = field.applies == nullptr || field.applies(form, nullptr);
        for_each_widget(form, field, [&](Widget widget) {
            vga_set_sensitive(widget, applies && (form->editable || is_text(widget)));
            if (is_text(widget)) {
                set_ground(widget, applies && form->editable);
            }
        });
        if (field.hide_unused) {
            vga_manage_field(form, field, applies);
        }
    }
}

void vga_clear_fields(vga_form* form) {
    Widget first = nullptr;
    for (const VGA_FIELD& field : form->row->fields) {
        if (!field.clear_next) {
            continue;
        }
        for_each_widget(form, field, [&](Widget widget) {
            if (is_text(widget)) {
                static char nothing[] = "";
                XmTextSetString(widget, nothing);
                first = first != nullptr ? first : widget;
            }
        });
    }
    if (first != nullptr) {
        XmProcessTraversal(first, XmTRAVERSE_CURRENT);
    }
}

void vga_manage_field(vga_form* form, const VGA_FIELD& field, bool managed) {
    const auto manage = [&](Widget widget) {
        if (widget != nullptr) {
            managed ? XtManageChild(widget) : XtUnmanageChild(widget);
        }
    };
    manage(vga_form_widget(form, field.label));
    if (vga_kind_of(field).use == VGA_FIELD_USE::TEXTS) {
        manage(XtParent(vga_form_widget(form, field.widget)));
    } else {
        for_each_widget(form, field, manage);
    }
}
