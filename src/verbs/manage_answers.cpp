// What the answers to start and stop verbs mean, and how the operator is told and asked.
#include "shell/globals.h"
#include "store/store.h"
#include "verbs/manage_util.h"

#include <iterator>

namespace {

// Primary codes beside those that every verb may get.
constexpr NB_USHORT CANCELLED = 0x2100;
constexpr NB_USHORT LINK_FAILURE = 0x2300;
constexpr NB_USHORT DLUR_FAILURE = 0x1400;
constexpr NB_USHORT SESSION_REFUSED = 0x0310;
constexpr NB_USHORT SESSION_RETRY = 0x0410;
constexpr NB_USHORT NODE_STOPPING = 0x1A00;
constexpr NB_USHORT NODE_NOT_STARTED = 0x1B00;

constexpr NB_USHORT ANY = 0xFFFE; // primary code of rows for whatever is left
constexpr NB_ULONG EVERY = 0xFFFFFFFF;

using enum VGA_OUTCOME;
using enum VGA_TELL;

// The first row that fits counts; before them come the codes that mean the same for every verb.
constexpr VGA_ANSWER_ROW rows[] = {
    {NAP_INIT_NODE, NAP_STATE_CHECK, 0x39100000, DONE, 0, NOTHING, ""}, // active already
    {NAP_INIT_NODE, NAP_STATE_CHECK, 0x554D, FAILED, 910, NAME, "initnodefailedconfig"},
    {NAP_INIT_NODE, ANY, EVERY, FAILED, 909, NAME, "initnodefailed"},

    {NAP_STOP_NODE, ANY, EVERY, FAILED, 932, NAME, "stopnodefail"},

    {NAP_START_DLC, NAP_PARAMETER_CHECK, 0x10050000, DONE, 0, NOTHING, ""}, // active already
    {NAP_START_DLC, NAP_STATE_CHECK, 0x86020000, FAILED, 912, NAME, "startdlcfail"},
    {NAP_START_DLC, ANY, EVERY, FAILED, 911, NAME_AND_CODES, "startdlcfail"},

    {NAP_STOP_DLC, CANCELLED, EVERY, DONE, 0, NOTHING, ""},
    {NAP_STOP_DLC, NAP_STATE_CHECK, 0x42100000, GONE, 0, NOTHING, ""},
    {NAP_STOP_DLC, NAP_PARAMETER_CHECK, 0x10050000, GONE, 0, NOTHING, ""},
    {NAP_STOP_DLC, ANY, EVERY, FAILED, 930, NAME_AND_CODES, "stopdlcfail"},

    {NAP_START_PORT, NAP_STATE_CHECK, 0x10100000, DONE, 0, NOTHING, ""}, // active already
    {NAP_START_PORT, NAP_PARAMETER_CHECK, 0x0C100000, UNCHANGED, 0, NOTHING, ""},
    {NAP_START_PORT, NAP_STATE_CHECK, 0x11100000, STOPPING, 924, NAME, "startportfail"},
    {NAP_START_PORT, NAP_STATE_CHECK, 0x40100000, FAILED, 923, NAME_OWNER_ADAPTER, "startportfail"},
    {NAP_START_PORT, CANCELLED, EVERY, FAILED, 922, NAME, "startportfail"},
    {NAP_START_PORT, ANY, EVERY, FAILED, 921, NAME_AND_CODES, "startportfail"},

    {NAP_STOP_PORT, CANCELLED, EVERY, DONE, 0, NOTHING, ""},
    {NAP_STOP_PORT, NAP_STATE_CHECK, 0x11100000, UNDER_WAY, 0, NOTHING, ""},
    {NAP_STOP_PORT, NAP_PARAMETER_CHECK, 0x0C100000, GONE, 0, NOTHING, ""},
    {NAP_STOP_PORT, ANY, EVERY, FAILED, 933, NAME_AND_CODES, "stopportfail"},

    {NAP_START_LS, NAP_STATE_CHECK, 0xC0010000, UNCHANGED, 0, NOTHING, ""},
    {NAP_START_LS, NAP_PARAMETER_CHECK, 0xB0020000, UNCHANGED, 0, NOTHING, ""},
    {NAP_START_LS, NAP_STATE_CHECK, 0x3E100000, FAILED, 914, NAME_AND_OWNER, "startlsfail"},
    {NAP_START_LS, NAP_STATE_CHECK, 0x3F100000, FAILED, 920, NAME, "startlsfail"},
    {NAP_START_LS, NAP_STATE_CHECK, 0x12100000, FAILED, 916, NAME, "startlsfail"},
    {NAP_START_LS, NAP_STATE_CHECK, 0x3D100000, FAILED, 919, NAME_AND_OWNER, "startlsfail"},
    {NAP_START_LS, CANCELLED, 0x13100000, FAILED, VGA_LS_START_CANCELLED, NAME, "startlsfail"},
    {NAP_START_LS, LINK_FAILURE, 0x13200000, FAILED, 918, NAME, "startlsfail"},
    {NAP_START_LS, LINK_FAILURE, 0x13400000, FAILED, 917, NAME, "startlsfail"},
    {NAP_START_LS, ANY, EVERY, FAILED, 913, NAME, "startlsfail"},

    {NAP_STOP_LS, CANCELLED, EVERY, GONE, 0, NOTHING, ""},
    {NAP_STOP_LS, NAP_STATE_CHECK, 0x12100000, UNDER_WAY, 0, NOTHING, ""},
    {NAP_STOP_LS, NAP_PARAMETER_CHECK, 0x17100000, GONE, 0, NOTHING, ""},
    {NAP_STOP_LS, ANY, EVERY, FAILED, 931, NAME_AND_CODES, "stoplsfail"},

    {NAP_START_INTERNAL_PU, NAP_STATE_CHECK, 0x05900000, DONE, 0, NOTHING, ""}, // active already
    {NAP_START_INTERNAL_PU, NAP_STATE_CHECK, 0x03900000, UNDER_WAY, 0, NOTHING, ""},
    {NAP_START_INTERNAL_PU, NAP_STATE_CHECK, 0x55100000, UNCHANGED, 0, NOTHING, ""},
    {NAP_START_INTERNAL_PU, DLUR_FAILURE, 0x07900000, FAILED, 928, NAME, "startpufail"},
    {NAP_START_INTERNAL_PU, DLUR_FAILURE, 0x09900000, FAILED, 926, NAME, "startpufail"},
    {NAP_START_INTERNAL_PU, DLUR_FAILURE, 0x08900000, FAILED, 927, NAME, "startpufail"},
    {NAP_START_INTERNAL_PU, NAP_STATE_CHECK, 0x01900000, FAILED, 929, NAME, "startpufail"},
    {NAP_START_INTERNAL_PU, ANY, EVERY, FAILED, 925, NAME_AND_CODES, "startpufail"},

    {NAP_STOP_INTERNAL_PU, NAP_STATE_CHECK, 0x06900000, UNCHANGED, 0, NOTHING, ""},
    {NAP_STOP_INTERNAL_PU, NAP_STATE_CHECK, 0x04900000, UNCHANGED, 0, NOTHING, ""},
    {NAP_STOP_INTERNAL_PU, NAP_STATE_CHECK, 0x55100000, UNCHANGED, 0, NOTHING, ""},
    {NAP_STOP_INTERNAL_PU, ANY, EVERY, FAILED, 934, NAME_AND_CODES, "stoppufail"},

    {NAP_DEACTIVATE_SESSION, NODE_NOT_STARTED, EVERY, UNCHANGED, 0, NOTHING, ""},
    {NAP_DEACTIVATE_SESSION, NODE_STOPPING, EVERY, UNCHANGED, 0, NOTHING, ""},
    {NAP_DEACTIVATE_SESSION, ANY, EVERY, FAILED, 908, NAME_AND_CODES, "deactsessfail"},

    {NAP_ACTIVATE_SESSION, NAP_PARAMETER_CHECK, 0x5C010000, FAILED, 892, NAME, "actsessfail"},
    {NAP_ACTIVATE_SESSION, NAP_PARAMETER_CHECK, 0x1C100000, FAILED, 893, NAME, "actsessfail"},
    {NAP_ACTIVATE_SESSION, NAP_PARAMETER_CHECK, 0x26020000, FAILED, 894, NAME, "actsessfail"},
    {NAP_ACTIVATE_SESSION, NODE_NOT_STARTED, EVERY, FAILED, 895, NAME, "actsessfail"},
    {NAP_ACTIVATE_SESSION, NODE_STOPPING, EVERY, FAILED, 896, NAME, "actsessfail"},
    {NAP_ACTIVATE_SESSION, SESSION_REFUSED, EVERY, FAILED, 898, NAME, "actsessfail"},
    {NAP_ACTIVATE_SESSION, SESSION_RETRY, EVERY, FAILED, 899, NAME, "actsessfail"},
    {NAP_ACTIVATE_SESSION, ANY, EVERY, FAILED, 897, NAME_AND_CODES, "actsessfail"},

    {NAP_DEFINE_DOWNSTREAM_LU, NAP_STATE_CHECK, 0x27900000, UNCHANGED, 0, NOTHING, ""},
    {NAP_DEFINE_DOWNSTREAM_LU, NAP_STATE_CHECK, 0x25900000, FAILED, 890, NAME, "actdownlufail"},
    {NAP_DEFINE_DOWNSTREAM_LU, ANY, EVERY, FAILED, 891, NAME_AND_CODES, "actdownlufail"},
};
constexpr VGA_ANSWER_ROW done = {0, NAP_OK, EVERY, DONE, 0, NOTHING, ""};
constexpr VGA_ANSWER_ROW software_gone = {0, NAP_UNSUCCESSFUL, EVERY, FAILED, 0, NOTHING, ""};

constexpr int NAME8 = 8;

} // namespace

vga_manage_hooks gvga_manage_hooks;

const VGA_ANSWER_ROW& vga_answer_row(const void* vcb) {
    const VCB_HEADER& header = *vcb_header(vcb);
    if (header.primary_rc == NAP_OK || header.primary_rc == NAP_INDICATION) {
        return done;
    }
    if (header.primary_rc == NAP_UNSUCCESSFUL) {
        return software_gone;
    }
    const auto* row = std::ranges::find_if(rows, [&](const VGA_ANSWER_ROW& each) {
        return each.opcode == header.opcode &&
               (each.primary == ANY || each.primary == header.primary_rc) &&
               (each.secondary == EVERY || each.secondary == header.secondary_rc);
    });
    return VGA_ASSERT_TEXT(row != std::end(rows), "FALSE") ? *row : software_gone;
}

VGA_SUBJECT vga_subject(vga_node* node) {
    return {node, "cs", sizeof node->node_name, node->node_name};
}
VGA_SUBJECT vga_subject(vga_dlc* dlc) {
    return {dlc->parent, "cs", NAME8, dlc->vcb->dlc_name};
}
VGA_SUBJECT vga_subject(vga_port* port) {
    const DLC_ENTRY* dlc = port->parent->vcb;
    VGA_SUBJECT subject{vga_node_of_port(port), "cs", NAME8, port->vcb->port_name, dlc->dlc_name};
    if (dlc->specific_length >= sizeof(DLC_SPECIFIC)) {
        subject.adapter = reinterpret_cast<const DLC_SPECIFIC*>(nof_tail(dlc))->adapter_number;
    }
    return subject;
}
VGA_SUBJECT vga_subject(vga_ls* ls) {
    return {vga_node_of_port(ls->parent), "cs", NAME8, ls->vcb->ls_name,
            ls->parent->vcb->port_name};
}
VGA_SUBJECT vga_subject(vga_pu* pu) {
    return {pu->parent, "es", NAME8, pu->vcb.pu_name};
}
VGA_SUBJECT vga_subject(vga_lu62* lu) {
    return {lu->parent, "es", NAME8, lu->vcb.lu_name};
}
VGA_SUBJECT vga_subject(vga_down_lu* lu) {
    return {lu->parent->parent, "es", NAME8, lu->vcb.dslu_name};
}

vga_dialog* vga_manage_parent(const vga_node* node) {
    vga_dialog* window = node->gui_data.node_window;
    return window != nullptr && window->open ? window : gvga_main_dialog;
}

void vga_show_answer(const VGA_ANSWER_ROW& row, const void* vcb, const VGA_SUBJECT& subject) {
    const VCB_HEADER& header = *vcb_header(vcb);
    vga_dialog* parent = vga_manage_parent(subject.node);
    char kinds[12];
    const auto with = [&](const char* further) {
        std::strcpy(kinds, subject.name_kind);
        return std::strcat(kinds, further);
    };
    if (row.message == 0) {
        return;
    }
    switch (row.tell) {
    case NOTHING:
        return;
    case NAME:
        return vga_display_error_dialog(parent, row.message, row.help_tag, nullptr, 0, with(""),
                                        subject.width, subject.name);
    case NAME_AND_OWNER:
        return vga_display_error_dialog(parent, row.message, row.help_tag, nullptr, 0, with(" cs"),
                                        subject.width, subject.name, NAME8, subject.owner);
    case NAME_OWNER_ADAPTER:
        return vga_display_error_dialog(parent, row.message, row.help_tag, nullptr, 0,
                                        with(" cs i"), subject.width, subject.name, NAME8,
                                        subject.owner, subject.adapter);
    case NAME_AND_CODES:
        return vga_display_error_dialog(parent, row.message, row.help_tag, nullptr, 0,
                                        with(" x lx"), subject.width, subject.name,
                                        NB_ULONG{header.primary_rc}, header.secondary_rc);
    }
}

VGA_OUTCOME vga_take_answer(const void* vcb, const VGA_SUBJECT& subject) {
    const VGA_ANSWER_ROW& row = vga_answer_row(vcb);
    vga_show_answer(row, vcb, subject);
    return row.outcome;
}

void vga_ask(const VGA_SUBJECT& subject, int message, const char* help_tag,
             VGA_MODAL_CALLBACK callback, NB_HANDLE handle) {
    vga_display_confirm_dialog(vga_manage_parent(subject.node), message, help_tag, callback, handle,
                               false, false, subject.name_kind, subject.width, subject.name);
}

vga_node* vga_answering_node(const VGA_COMPLETION* completion) {
    return completion->handle != 0 ? vga_find_node_by_handle(completion->handle) : nullptr;
}
