#include "dialogs/cpic.h"

#include "shell/globals.h"
#include "store/store.h"
#include "ui/framework/verb_chain.h"
#include "ui/windows/cpic_window.h"
#include "verbs/config.h"

#include <Xm/ToggleB.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace {

using enum VGA_FIELD_KIND;

static_assert(sizeof(vga_cpic_image) ==
              sizeof(DEFINE_CPIC_SIDE_INFO) - offsetof(DEFINE_CPIC_SIDE_INFO, sym_dest_name));
static_assert(sizeof(vga_cpic_image) ==
              sizeof(CPIC_SIDE_INFO_ENTRY) - offsetof(CPIC_SIDE_INFO_ENTRY, sym_dest_name));

vga_cpic* record_of(const vga_cpic_dialog* dialog) {
    return static_cast<vga_cpic*>(dialog->form.common.parent_item);
}
const vga_cpic_image* image_of(const vga_cpic* record) {
    return reinterpret_cast<const vga_cpic_image*>(record->vcb.sym_dest_name);
}

// ---- fields ----

bool check_name(vga_cpic_dialog* dialog, vga_cpic_image* image) {
    const NB_NAME8L& name = image->sym_dest_name;
    const void* found = ntl_avl_find(&gvga_system->cpic_tree, name);
    return found == nullptr || found == record_of(dialog) ||
           vga_refuse_field(&dialog->form.common, dialog->name, {189, "cpicd"}, "cs",
                            int{sizeof name}, name);
}

template <Widget vga_cpic_dialog::*toggle, bool set = true> bool applies(vga_cpic_dialog* dialog) {
    return (XmToggleButtonGetState(dialog->*toggle) != 0) == set;
}
bool is_program(vga_cpic_dialog* dialog) {
    return applies<&vga_cpic_dialog::sec_prog>(dialog) ||
           applies<&vga_cpic_dialog::sec_prog_strong>(dialog);
}
#define WHILE(member) VGA_TYPED<applies<&vga_cpic_dialog::member>>::call

#define CPIC_WIDGET(member, suffix) VGA_WIDGET(vga_cpic_dialog, member, suffix)
#define CPIC_PLACE(member) VGA_PLACE(vga_cpic_image, member)

constexpr VGA_FIELD_CHOICE tp_kinds[] = {{CPIC_WIDGET(appl_tp, "TPUseASCII"), 0},
                                         {CPIC_WIDGET(serv_tp, "TPUseHex"), 1}};
constexpr VGA_FIELD_CHOICE partner_kinds[] = {{CPIC_WIDGET(plu_alias, "PLUUseAlias"), 0},
                                              {CPIC_WIDGET(fqplu, "PLUUseFull"), 1}};
constexpr VGA_FIELD_CHOICE securities[] = {
    {CPIC_WIDGET(sec_none, "SecurityNone"), NOF_CPIC_SECURITY_NONE},
    {CPIC_WIDGET(sec_same, "SecuritySame"), NOF_CPIC_SECURITY_SAME},
    {CPIC_WIDGET(sec_prog, "SecurityProgram"), NOF_CPIC_SECURITY_PROGRAM},
    {CPIC_WIDGET(sec_prog_strong, "SecurityProgramStrong"), NOF_CPIC_SECURITY_PROGRAM_STRONG}};

constexpr VGA_FIELD fields[] = {
    {.kind = LOCAL_NAME,
     .widget = CPIC_WIDGET(name, "Name"),
     .place = CPIC_PLACE(sym_dest_name),
     .empty = 191,
     .key = true,
     .clear_next = true,
     .check = VGA_TYPED<check_name>::call},
    {.kind = UNSET,
     .widget = CPIC_WIDGET(cp_lu_button, "CPLUButton"),
     .place = CPIC_PLACE(def.lu_alias)},
    {.kind = LOCAL_NAME,
     .widget = CPIC_WIDGET(local_lu_alias, "LocalLUAlias"),
     .second = CPIC_WIDGET(lu_alias_button, "LocalLUAliasButton"),
     .place = CPIC_PLACE(def.lu_alias),
     .empty = 192,
     .applies = VGA_TYPED<applies<&vga_cpic_dialog::cp_lu_button, false>>::call},
    {.kind = RADIO, .place = CPIC_PLACE(def.service_tp), .choices = tp_kinds},
    {.kind = TP_NAME,
     .widget = CPIC_WIDGET(appl_tp_name, "TPASCII"),
     .place = CPIC_PLACE(def.tp_name),
     .empty = 196,
     .applies = WHILE(appl_tp)},
    {.kind = TP_HEX,
     .widget = CPIC_WIDGET(serv_tp_name, "TPHex"),
     .place = CPIC_PLACE(def.tp_name),
     .empty = 196,
     .bad = 196,
     .applies = WHILE(serv_tp)},
    {.kind = RADIO, .place = CPIC_PLACE(def.plu_by_name), .choices = partner_kinds},
    {.kind = LOCAL_NAME,
     .widget = CPIC_WIDGET(plu_alias_name, "PLUAlias"),
     .place = CPIC_PLACE(def.plu_alias),
     .empty = 196,
     .applies = WHILE(plu_alias)},
    {.kind = FQ_NAME,
     .widget = CPIC_WIDGET(fqplu_net_name, "PLUNetName"),
     .second = CPIC_WIDGET(fqplu_name, "PLUName"),
     .place = CPIC_PLACE(def.plu_name),
     .bad = 196,
     .applies = WHILE(fqplu)},
    {.kind = NAME_AE, .widget = CPIC_WIDGET(mode_name, "Mode"), .place = CPIC_PLACE(def.mode_name)},
    {.kind = RADIO, .place = CPIC_PLACE(def.security), .choices = securities},
    {.kind = LOCAL_NAME,
     .widget = CPIC_WIDGET(user_id, "UserID"),
     .place = CPIC_PLACE(def.user_id),
     .empty = 198,
     .applies = VGA_TYPED<is_program>::call},
    {.kind = PASSWORD,
     .widget = CPIC_WIDGET(password, "Password"),
     .place = CPIC_PLACE(def.password),
     .empty = 194,
     .applies = VGA_TYPED<is_program>::call},
    {.kind = LOCAL_TEXT,
     .widget = CPIC_WIDGET(description, "Desc"),
     .place = CPIC_PLACE(def.description)},
};

void adjust(Widget widget) {
    if (vga_form* form = vga_form_of(widget)) {
        vga_adjust_fields(form);
    }
}

// The aliases of the local LUs of all nodes.
std::vector<std::string> local_lu_aliases() {
    std::set<std::string> aliases;
    for (const auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree); node != nullptr;
         node = static_cast<const vga_node*>(ntl_avl_next(&node->node))) {
        for (const auto* lu = ntl_avl_first<vga_lu62>(node->lu62_tree); lu != nullptr;
             lu = static_cast<const vga_lu62*>(ntl_avl_next(&lu->node))) {
            const NB_NAME8L& alias = lu->vcb.def.lu_alias;
            std::string text(alias, strnlen(alias, sizeof alias));
            text.erase(text.find_last_not_of(' ') + 1);
            if (!text.empty()) {
                aliases.insert(text);
            }
        }
    }
    return {aliases.begin(), aliases.end()};
}

// ---- verbs ----

void show_title(vga_cpic_dialog* dialog) {
    if (const vga_cpic* record = record_of(dialog)) {
        vga_set_form_title(&dialog->form, 188, "cs", int{sizeof(NB_NAME8L)},
                           record->vcb.sym_dest_name);
    } else {
        vga_set_form_title(&dialog->form, 185, "");
    }
}

void bind(vga_cpic_dialog* dialog, vga_cpic* record) {
    dialog->form.common.parent_item = record;
    if (record != nullptr) {
        record->gui_data.dialog = &dialog->form.common;
    }
    show_title(dialog);
}

bool is_allowed(vga_cpic_dialog* dialog) {
    return vga_list_may_change(&dialog->form.common, true);
}

// What no field shows, and the password that one hides.
void prepare(vga_cpic_dialog* dialog, DEFINE_CPIC_SIDE_INFO* vcb) {
    const CPIC_SIDE_INFO_DEF& def = dialog->image.def;
    std::memcpy(vcb->def.password, def.password, sizeof def.password);
    std::memcpy(vcb->def.reserved188, def.reserved188, sizeof def.reserved188);
}

NB_HANDLE target(vga_cpic_dialog*) {
    return gvga_system->config_file_handle;
}

const void* current(vga_cpic_dialog* dialog) {
    const vga_cpic* record = record_of(dialog);
    return record != nullptr ? image_of(record) : nullptr;
}

bool delete_old(vga_cpic_dialog* dialog) {
    vga_cpic* record = record_of(dialog);
    dialog->selected = record->viewer.selected;
    return vga_issue_del_cpic(record, dialog->form.common.handle, vga_define_cpic_cb);
}

void old_deleted(vga_cpic_dialog* dialog, VGA_COMPLETION* completion) {
    vga_process_del_cpic(completion, gvga_system);
    vga_chain_continue(&dialog->form);
}

void defined(vga_cpic_dialog* dialog, VGA_COMPLETION* completion) {
    vga_cpic* record = nullptr;
    vga_process_def_cpic(completion, gvga_system, &record);
    if (!dialog->existing || record == nullptr) {
        return;
    }
    bind(dialog, record);
    if (dialog->selected && !record->viewer.selected) {
        vga_viewer_select(&record->viewer, &gvga_system->cpic_viewer_root, false, false, false,
                          false);
        if (vga_dialog* window = gvga_system->gui_data.cpic_window) {
            vga_cpicw_set_button_states(window);
        }
    }
}

void applied(vga_cpic_dialog* dialog) {
    if (!dialog->existing) {
        vga_clear_fields(&dialog->form);
    } else if (const vga_cpic* record = record_of(dialog)) {
        dialog->image = *image_of(record);
        vga_show_fields(&dialog->form, &dialog->image);
    }
}

constexpr VGA_CHAIN_STEP steps[] = {
    {NAP_DEFINE_CPIC_SIDE_INFO, VGA_TYPED<defined>::call},
    {NAP_DELETE_CPIC_SIDE_INFO, VGA_TYPED<old_deleted>::call},
};
constexpr VGA_CHAIN chain{.opcode = NAP_DEFINE_CPIC_SIDE_INFO,
                          .size = sizeof(DEFINE_CPIC_SIDE_INFO),
                          .image = offsetof(DEFINE_CPIC_SIDE_INFO, sym_dest_name),
                          .checks = 0,
                          .completion = vga_define_cpic_cb,
                          .allowed = VGA_TYPED<is_allowed>::call,
                          .prepare = VGA_TYPED<prepare>::call,
                          .target = VGA_TYPED<target>::call,
                          .current = VGA_TYPED<current>::call,
                          .delete_old = VGA_TYPED<delete_old>::call,
                          .steps = steps,
                          .applied = VGA_TYPED<applied>::call};
constexpr VGA_FORM form{"cpicd", fields, {}, vga_cpicd_ok, &chain};

} // namespace

constexpr VGA_NAMED_CALLBACK gvga_cpicd_callbacks[8] = {
    {"vga_cpicd_ok", vga_cpicd_ok},
    {"vga_cpicd_apply", vga_cpicd_apply},
    {"vga_cpicd_sec", vga_cpicd_sec},
    {"vga_cpicd_plu_full", vga_cpicd_plu_full},
    {"vga_cpicd_plu_alias", vga_cpicd_plu_alias},
    {"vga_cpicd_serv_tp", vga_cpicd_serv_tp},
    {"vga_cpicd_appl_tp", vga_cpicd_appl_tp},
    {"vga_cpicd_lu_alias", vga_cpicd_lu_alias},
};

void vga_display_cpic_dialog(vga_cpic* record, bool copy) {
    vga_dialog* window = gvga_system->gui_data.cpic_window;
    vga_cpic* existing = copy ? nullptr : record;
    auto* dialog = vga_open_form<vga_cpic_dialog>(
        VGA_UID_CPIC_DIALOG, window != nullptr ? window : gvga_main_dialog, existing);
    if (dialog == nullptr) {
        return;
    }
    dialog->image = record != nullptr ? *image_of(record) : vga_cpic_image{};
    if (copy) {
        std::memset(dialog->image.sym_dest_name, 0, sizeof dialog->image.sym_dest_name);
    }
    dialog->existing = existing != nullptr;
    dialog->selected = false;
    bind(dialog, existing);
    vga_show_form(&dialog->form, &dialog->image,
                  !gvga_read_only && gvga_system->config_file_handle != 0);
}

bool vga_get_widgets_cpic(vga_dialog* dialog) {
    return vga_get_form_widgets(dialog, form);
}
bool vga_cpicd_close_proc(vga_dialog* dialog, bool) {
    auto* closing = reinterpret_cast<vga_cpic_dialog*>(dialog);
    if (vga_cpic* record = record_of(closing)) {
        record->gui_data.dialog = nullptr;
    }
    std::memset(&closing->image, 0, sizeof closing->image);
    vga_close_form(&closing->form);
    return true;
}
void vga_open_cpic_dialog(vga_dialog*, void* record, VGA_OPEN how) {
    vga_display_cpic_dialog(how == VGA_OPEN_ADD ? nullptr : static_cast<vga_cpic*>(record),
                            how == VGA_OPEN_COPY);
}

void vga_cpicd_ok(Widget widget, XtPointer, XtPointer) {
    vga_chain_start(vga_form_of(widget), false);
}
void vga_cpicd_apply(Widget widget, XtPointer, XtPointer) {
    vga_chain_start(vga_form_of(widget), true);
}
void vga_cpicd_sec(Widget widget, XtPointer, XtPointer) {
    adjust(widget);
}
void vga_cpicd_plu_full(Widget widget, XtPointer, XtPointer) {
    adjust(widget);
}
void vga_cpicd_plu_alias(Widget widget, XtPointer, XtPointer) {
    adjust(widget);
}
void vga_cpicd_serv_tp(Widget widget, XtPointer, XtPointer) {
    adjust(widget);
}
void vga_cpicd_appl_tp(Widget widget, XtPointer, XtPointer) {
    adjust(widget);
}
void vga_cpicd_lu_alias(Widget widget, XtPointer, XtPointer) {
    auto* dialog = reinterpret_cast<vga_cpic_dialog*>(vga_form_of(widget));
    if (dialog == nullptr || widget != dialog->lu_alias_button) {
        return adjust(widget);
    }
    vga_offer_names(dialog->local_lu_alias, local_lu_aliases());
}

bool vga_issue_def_cpic(vga_cpic_dialog* dialog) {
    return vga_chain_issue(&dialog->form, 0);
}
void vga_define_cpic_cb(VGA_COMPLETION* completion) {
    vga_chain_completed(completion);
}
