#include "dialogs/node_config.h"

#include "common/names.h"
#include "shell/exit_record.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "store/store.h"
#include "store/tracking.h"
#include "ui/framework/verb_chain.h"
#include "verbs/config.h"
#include "verbs/settings.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>

namespace {

using enum VGA_FIELD_KIND;

// What a run still asks about.
constexpr NB_ULONG CHECK_CP_CLASH = 1;
constexpr NB_ULONG CHECK_MASTER = 2;
constexpr NB_ULONG CHECK_RENAME = 4;

vga_node* node_of(const vga_node_dialog* dialog) {
    return static_cast<vga_node*>(dialog->form.common.parent_item);
}

bool is_configured(const vga_node* node) {
    return node->node_state != VGA_NODE_STATE_UNCONFIGURED;
}
bool can_change(const vga_node* node) {
    return node->node_state == VGA_NODE_STATE_STOPPED || !is_configured(node);
}

template <std::size_t size> bool is_same(const char (&a)[size], const char (&b)[size]) {
    return std::equal(a, a + size, b);
}
bool is_same(const NB_FQNAME& a, const NB_FQNAME& b) {
    return std::equal(a, a + sizeof(NB_FQNAME), b);
}

vga_dialog* window_of(const vga_node* node) {
    return node->gui_data.node_window != nullptr ? node->gui_data.node_window : gvga_main_dialog;
}

// ---- what the fields are checked against ----

struct NAME_CLASH {
    int clash; // VGA_LU_NAME_CLASH
    int message;
};
constexpr NAME_CLASH name_clashes[] = {
    {VGA_CLASH_DEPENDENT_LU, 791},
    {VGA_CLASH_POOL, 794},
    {VGA_CLASH_DOWN_LU, 789},
    {VGA_CLASH_LU62, 793},
    {6, 792},
};

constexpr VGA_CONFIRMATION cp_name_in_domain{.message = 799,
                                             .help_tag = "cpnameclash",
                                             .yes_checks = CHECK_MASTER | CHECK_RENAME,
                                             .answered = vga_def_node_confirm_cp_name_cb};
constexpr VGA_CONFIRMATION no_master{.message = 804,
                                     .help_tag = "renamenodenomaster",
                                     .yes_checks = CHECK_RENAME,
                                     .answered = vga_def_node_confirm_master_cb};
constexpr VGA_CONFIRMATION update_sessions{.message = 808,
                                           .help_tag = "renamenodeupdate",
                                           .offers_no = true,
                                           .question = 549,
                                           .answered = vga_def_node_confirm_update_cb};

// The control point must not have the name of anything else.
bool check_cp_name(vga_node_dialog* dialog, NODE_PARAMETERS* parameters) {
    vga_node* node = node_of(dialog);
    const NB_FQNAME& cp_name = parameters->cp_name;
    if (is_configured(node) && is_same(cp_name, node->vcb.parameters.cp_name)) {
        return true;
    }
    NB_NAME8E network;
    NB_NAME8E name;
    ntl_split_fq_name(cp_name, network, name);
    const auto refuse = [&](int message) {
        return vga_refuse_field(&dialog->form.common, dialog->cp_name, {message, "cpnameclash"},
                                "es", int{sizeof name}, name);
    };
    void* found = nullptr;
    const int clash = vga_check_lu_name_clash(name, node, &found);
    if (clash != VGA_CLASH_NONE && found != node->cp_lu) {
        if (clash == VGA_CLASH_OTHER_LU03) {
            if ((dialog->form.run.checks & CHECK_CP_CLASH) != 0) {
                return vga_chain_ask(&dialog->form, cp_name_in_domain, "es", int{sizeof name},
                                     name);
            }
        } else {
            return refuse(std::ranges::find(name_clashes, clash, &NAME_CLASH::clash)->message);
        }
    }
    if (vga_check_fq_name_plu_clash(cp_name, node, false, 0) != nullptr) {
        return refuse(796);
    }
    return ntl_avl_find(&node->rem_sys_tree, cp_name) == nullptr || refuse(797);
}

// Calls use(record) for the records of a tree until it returns true; whether it did.
template <typename Record, typename Use> bool any_of(const NTL_AVL_TREE& tree, Use use) {
    for (auto* record = ntl_avl_first<Record>(tree); record != nullptr;
         record = static_cast<Record*>(ntl_avl_next(&record->node))) {
        if (use(record)) {
            return true;
        }
    }
    return false;
}

// Of a partner that a local LU knows, or of one that is defined.
bool is_partner_alias(const vga_node* node, const NB_NAME8L& alias) {
    const auto is_known = [&](const vga_plu* plu) { return is_same(plu->vcb.plu_alias, alias); };
    const auto is_defined = [&](const vga_rem_plu* plu) {
        return plu->plu_defn != 0 && is_same(plu->defn.def.plu_alias, alias);
    };
    const auto has_defined = [&](const vga_rem_sys* system) {
        return any_of<vga_rem_plu>(system->remote_plu_tree, is_defined);
    };
    return any_of<vga_lu62>(
               node->lu62_tree,
               [&](const vga_lu62* lu) { return any_of<vga_plu>(lu->plu_tree, is_known); }) ||
           any_of<vga_rem_sys>(node->rem_sys_tree, has_defined) ||
           (node->network_fake_rem_sys != nullptr && has_defined(node->network_fake_rem_sys));
}

bool check_cp_alias(vga_node_dialog* dialog, NODE_PARAMETERS* parameters) {
    vga_node* node = node_of(dialog);
    const NB_NAME8L& alias = parameters->cp_alias;
    if (!is_configured(node) || is_same(alias, node->vcb.parameters.cp_alias)) {
        return true;
    }
    const auto refuse = [&](int message) {
        return vga_refuse_field(&dialog->form.common, dialog->cp_alias, {message, "noded"}, "cs",
                                int{sizeof alias}, alias);
    };
    if (ntl_avl_find(&node->lu62_alias_tree, alias) != nullptr) {
        return refuse(790);
    }
    return !is_partner_alias(node, alias) || refuse(795);
}

// A type is offered when the node is capable of it, or is of it.
bool is_offered(vga_node_dialog* dialog, NB_ULONG type) {
    const NODE_LIMITS& limits = node_of(dialog)->limits;
    switch (type) {
    case NAP_NODE_NETWORK:
        return limits.network_node != 0 || type == dialog->image.parameters.node_type;
    case NAP_NODE_END:
        return limits.end_node != 0 || type == dialog->image.parameters.node_type;
    case NAP_NODE_LEN:
        return limits.len_node != 0 || type == dialog->image.parameters.node_type;
    default:
        return (limits.network_node | limits.end_node | limits.len_node) == 0 ||
               type == dialog->image.parameters.node_type;
    }
}

// What the node supports follows from its type.
bool set_support(vga_node_dialog* dialog, NODE_PARAMETERS* parameters) {
    constexpr NB_BYTE full = 3;
    const vga_node* node = node_of(dialog);
    const NB_BYTE dlur = node->limits.dlur;
    parameters->hpr_support = vga_node_has_hpr(node) ? full : 0;
    if (parameters->node_type == NAP_NODE_NETWORK) {
        parameters->dlur_support = dlur;
    } else if (parameters->node_type == NAP_NODE_LEN) {
        parameters->dlur_support = parameters->hpr_support = 0;
    } else {
        parameters->dlur_support = dlur == 1 ? full : 0;
    }
    return true;
}

#define NODE_WIDGET(member, suffix) VGA_WIDGET(vga_node_dialog, member, suffix)
#define NODE_PLACE(member) VGA_PLACE(NODE_PARAMETERS, member)

constexpr VGA_FIELD_CHOICE node_types[] = {
    {NODE_WIDGET(net_node, "TypeNetworkNode"), NAP_NODE_NETWORK},
    {NODE_WIDGET(branch_network_node, "TypeBrNN"), NAP_NODE_BRANCH_NETWORK},
    {NODE_WIDGET(end_node, "TypeEndNode"), NAP_NODE_END},
    {NODE_WIDGET(len_node, "TypeLENNode"), NAP_NODE_LEN},
};

constexpr VGA_FIELD fields[] = {
    {.kind = FQ_NAME,
     .widget = NODE_WIDGET(cp_net_name, "NetNameText"),
     .second = NODE_WIDGET(cp_name, "CPNameText"),
     .place = NODE_PLACE(cp_name),
     .bad = 806,
     .check = VGA_TYPED<check_cp_name>::call},
    {.kind = LOCAL_NAME,
     .widget = NODE_WIDGET(cp_alias, "CPAliasText"),
     .place = NODE_PLACE(cp_alias),
     .empty = 805,
     .check = VGA_TYPED<check_cp_alias>::call},
    {.kind = OPTION_MENU,
     .widget = NODE_WIDGET(node_type, "TypeMenu"),
     .label = NODE_WIDGET(node_type_label, "TypeLabel"),
     .place = NODE_PLACE(node_type),
     .choices = node_types,
     .offered = VGA_TYPED<is_offered>::call,
     .check = VGA_TYPED<set_support>::call},
    {.kind = NODE_ID,
     .widget = NODE_WIDGET(id_block, "IDBlockText"),
     .second = NODE_WIDGET(id_number, "IDNumberText"),
     .place = NODE_PLACE(node_id),
     .empty = 807,
     .bad = 801},
    {.kind = LOCAL_TEXT,
     .widget = NODE_WIDGET(description, "Desc"),
     .place = NODE_PLACE(description)},
};
constexpr VGA_FIELD_WIDGET widgets[] = {NODE_WIDGET(advanced_button, "AdvancedButton")};

// ---- the image ----

constexpr NODE_PARAMETERS new_parameters = [] {
    NODE_PARAMETERS p{};
    p.size = sizeof p;
    p.parameter37 = 1;
    p.parameter76 = 1;
    p.parameter77 = 1;
    p.node_id = {{0x07, 0x10, 0x00, 0x00}};
    p.parameter82 = 1500;
    p.parameter84 = 255;
    p.parameter88 = 60;
    p.parameter90 = 1;
    p.parameter91 = 1;
    p.parameter92 = 100;
    p.parameter94 = 24;
    p.parameter96 = 40;
    p.parameter98 = 40;
    p.parameter104 = 1000;
    p.parameter108 = 900;
    p.parameter112 = 800;
    p.parameter116 = 16384;
    p.parameter118 = 8;
    p.parameter125 = 128;
    return p;
}();
constexpr NB_USHORT new_timeout = 20; // seconds
constexpr NB_BYTE forced_parameter143 = 4;

NB_BYTE best_type(const NODE_LIMITS& limits) {
    return limits.end_node != 0       ? NAP_NODE_END
           : limits.len_node != 0     ? NAP_NODE_LEN
           : limits.network_node != 0 ? NAP_NODE_NETWORK
                                      : NAP_NODE_BRANCH_NETWORK;
}

// The name of the control point made from a name, in upper case.
bool put_cp_name(const char* name, NB_FQNAME& cp_name) {
    char text[VGA_MESSAGE_BUFFER_SIZE] = {};
    vga_print_msg(text, gvga_messages[800], "s", name);
    std::ranges::transform(text, text, [](unsigned char c) { return std::toupper(c); });
    van_ascii_to_ebcdic(cp_name, text, sizeof cp_name);
    return ntl_check_fq_name(cp_name) == NTL_FQ_QUALIFIED;
}

void set_defaults(const vga_node* node, vga_node_image* image) {
    image->parameters = new_parameters;
    image->parameters.node_type = best_type(node->limits);
    image->parameters.dlur_support = node->limits.dlur;
    image->parameters.pu_conc_support = node->limits.pu_conc;
    std::string name(node->node_name, strnlen(node->node_name, sizeof node->node_name));
    name.resize(std::min({name.find_first_of(". "), name.size(), sizeof(NB_NAME8L)}));
    if (!put_cp_name(name.c_str(), image->parameters.cp_name)) {
        put_cp_name("", image->parameters.cp_name);
    }
    std::ranges::copy(name, image->parameters.cp_alias);
    image->defaults = {};
    std::ranges::fill(image->defaults.default_mode_name, EBCDIC_BLANK);
    image->defaults.timeout = new_timeout;
}

void set_image(vga_node_dialog* dialog) {
    const vga_node* node = node_of(dialog);
    if (is_configured(node)) {
        dialog->image = {node->vcb.parameters, node->defaults};
    } else {
        set_defaults(node, &dialog->image);
    }
    dialog->image.parameters.parameter143 = forced_parameter143;
    vga_set_form_title(&dialog->form, is_configured(node) ? 809 : 798, "cs",
                       int{sizeof node->node_name}, node->node_name);
}

// ---- the verbs ----

bool is_allowed(vga_node_dialog* dialog) {
    if (!can_change(node_of(dialog))) {
        vga_display_error_dialog(&dialog->form.common, 802, "cantchangenode", nullptr, 0, "");
        return false;
    }
    return true;
}

NB_HANDLE target(vga_node_dialog* dialog) {
    return node_of(dialog)->node_handle;
}

void prepare(vga_node_dialog* dialog, DEFINE_NODE* vcb) {
    const vga_node* node = node_of(dialog);
    std::memcpy(vcb->node_name, node->node_name, sizeof vcb->node_name);
    vcb->parameters = dialog->image.parameters;
}

// Sessions name the CP LU by its alias.
bool confirm(vga_node_dialog* dialog, DEFINE_NODE* vcb) {
    vga_form* form = &dialog->form;
    const vga_node* node = node_of(dialog);
    vga_lu62* lu = node->cp_lu;
    if ((form->run.checks & CHECK_RENAME) == 0 || lu == nullptr ||
        is_same(vcb->parameters.cp_alias, lu->vcb.def.lu_alias)) {
        return true;
    }
    if ((form->run.checks & CHECK_MASTER) != 0 && gvga_system->config_file_handle == 0) {
        return vga_chain_ask(form, no_master);
    }
    lu->changing = 1;
    form->run.marked = vga_mark_sessions(NOF_SESSION_5250, node, nullptr);
    lu->changing = 0;
    return !form->run.marked || vga_chain_ask(form, update_sessions);
}

void unmark(vga_node_dialog*) {
    vga_unmark_sessions(NOF_SESSION_5250);
}

void node_defined(vga_node_dialog* dialog, VGA_COMPLETION* completion) {
    vga_form* form = &dialog->form;
    vga_node* node = node_of(dialog);
    const NB_ULONG corr = form->common.handle;
    dialog->new_node = !is_configured(node);
    vga_process_def_node(completion);
    if (form->run.marked && node->cp_lu != nullptr) { // made anew
        vga_chain_updating(
            form, node,
            vga_update_sessions(nullptr, node->cp_lu, nullptr, corr, vga_noded_update_cb));
    }
    if (vga_issue_def_defaults(node, dialog->image.defaults, corr, vga_noded_def_node_cb)) {
        vga_chain_sent(form, 1);
    } else {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    }
}

void defaults_defined(vga_node_dialog* dialog, VGA_COMPLETION* completion) {
    vga_process_def_defaults(completion, node_of(dialog));
}

void applied(vga_node_dialog* dialog) {
    set_image(dialog);
    vga_show_fields(&dialog->form, &dialog->image.parameters);
}

void finished(vga_node_dialog* dialog, vga_node* node) {
    if (dialog->new_node) {
        vga_display_info_dialog(window_of(node), 803, "autonodecplu", nullptr, 0, "cs",
                                int{sizeof node->node_name}, node->node_name);
    }
}

constexpr VGA_CHAIN_STEP steps[] = {
    {NAP_DEFINE_NODE, VGA_TYPED<node_defined>::call},
    {NAP_DEFINE_DEFAULTS, VGA_TYPED<defaults_defined>::call},
};
constexpr VGA_CHAIN chain{.opcode = NAP_DEFINE_NODE,
                          .size = sizeof(DEFINE_NODE),
                          .image = offsetof(DEFINE_NODE, parameters),
                          .checks = CHECK_CP_CLASH | CHECK_MASTER | CHECK_RENAME,
                          .completion = vga_noded_def_node_cb,
                          .allowed = VGA_TYPED<is_allowed>::call,
                          .prepare = VGA_TYPED<prepare>::call,
                          .target = VGA_TYPED<target>::call,
                          .confirm = VGA_TYPED<confirm>::call,
                          .steps = steps,
                          .unmark = VGA_TYPED<unmark>::call,
                          .applied = VGA_TYPED<applied>::call,
                          .finished = VGA_TYPED<finished>::call};
constexpr VGA_FORM form{"noded", fields, widgets, vga_noded_ok, &chain};

} // namespace

constexpr VGA_NAMED_CALLBACK gvga_noded_callbacks[3] = {
    {"vga_noded_ok", vga_noded_ok},
    {"vga_noded_apply", vga_noded_apply},
    {"vga_noded_advanced", vga_noded_advanced},
};

void vga_display_node_dialog(vga_node* node, bool) {
    auto* dialog = vga_open_form<vga_node_dialog>(VGA_UID_NODE_DIALOG, window_of(node), node);
    if (dialog == nullptr) {
        return;
    }
    node->gui_data.dialog = &dialog->form.common;
    dialog->new_node = false;
    set_image(dialog);
    vga_show_form(&dialog->form, &dialog->image.parameters, can_change(node));
    if (!can_change(node)) {
        vga_display_info_dialog(&dialog->form.common, 788, "smnode", nullptr, 0, "");
    }
}

bool vga_get_widgets_node_conf(vga_dialog* dialog) {
    return vga_get_form_widgets(dialog, form);
}
bool vga_noded_close_proc(vga_dialog* dialog, bool) {
    auto* closing = reinterpret_cast<vga_node_dialog*>(dialog);
    vga_close_form(&closing->form);
    node_of(closing)->gui_data.dialog = nullptr;
    return true;
}
void vga_open_node_dialog(vga_dialog*, void* node, VGA_OPEN) {
    vga_display_node_dialog(static_cast<vga_node*>(node), false);
}

void vga_noded_ok(Widget widget, XtPointer, XtPointer) {
    vga_chain_start(vga_form_of(widget), false);
}
void vga_noded_apply(Widget widget, XtPointer, XtPointer) {
    vga_chain_start(vga_form_of(widget), true);
}
void vga_noded_advanced(Widget widget, XtPointer, XtPointer) {
    vga_display_node_adv(reinterpret_cast<vga_node_dialog*>(vga_form_of(widget)));
}

bool vga_issue_def_node(vga_node_dialog* dialog, bool check_cp_clash, bool check_master,
                        bool check_rename) {
    return vga_chain_issue(&dialog->form, (check_cp_clash ? CHECK_CP_CLASH : 0) |
                                              (check_master ? CHECK_MASTER : 0) |
                                              (check_rename ? CHECK_RENAME : 0));
}
void vga_noded_def_node_cb(VGA_COMPLETION* completion) {
    vga_chain_completed(completion);
}
void vga_noded_update_cb(VGA_COMPLETION* completion) {
    vga_chain_updated(completion);
}
void vga_def_node_confirm_cp_name_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    vga_chain_answer(dialog, arg, answer);
}
void vga_def_node_confirm_master_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    vga_chain_answer(dialog, arg, answer);
}
void vga_def_node_confirm_update_cb(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    vga_chain_answer(dialog, arg, answer);
}
