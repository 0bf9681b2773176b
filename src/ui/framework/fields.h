// What a dialog reads from its text fields. A routine that takes a dialog tells the operator what
// is wrong in an error box of that dialog and gives the field concerned the keyboard focus.
#pragma once

#include "nba/nba.h"

#include "ui/framework/message_box.h"

#include <X11/Intrinsic.h>
#include <Xm/Xm.h>

#include <span>
#include <string>

struct vga_dialog;

struct vga_field_error {
    int message; // number; 0: none
    const char* help_tag;
};

// Shows an error (message number, kinds and arguments as in vga_print_msg) and gives a field the
// focus. Always false.
template <typename... Arguments>
bool vga_refuse_field(vga_dialog* dialog, Widget field, const vga_field_error& error,
                      const char* kinds = "", Arguments... arguments) {
    vga_display_error_dialog(dialog, error.message, error.help_tag, nullptr, 0, kinds,
                             arguments...);
    XmProcessTraversal(field, XmTRAVERSE_CURRENT);
    return false;
}

// Reads a decimal number: leading digits count, what follows is ignored. False, with *value
// unchanged, for an empty field or a number outside minimum to maximum; the range message gets the
// two as arguments "l l".
bool vga_check_field(vga_dialog* dialog, Widget field, NB_ULONG minimum, NB_ULONG maximum,
                     const vga_field_error& empty, const vga_field_error& range, NB_ULONG* value);
bool vga_check_signed_field(vga_dialog* dialog, Widget field, NB_LONG minimum, NB_LONG maximum,
                            const vga_field_error& empty, const vga_field_error& range,
                            NB_LONG* value);
// Reads pairs of hexadecimal digits. Returns the number of bytes (at most max_len, which is at most
// 100), 0 for an empty field, -1 with the message for an odd number of digits or another character.
int vga_get_hex_field(vga_dialog* dialog, Widget field, NB_BYTE* bytes, int max_len,
                      const vga_field_error& odd);
// Reads block number (3 hexadecimal digits) and ID number (5) into the 4 bytes of a node
// identifier, most significant first. Both fields may be empty, for identifier 0, unless there is a
// message for that.
bool vga_get_node_id(vga_dialog* dialog, Widget block_field, Widget id_field,
                     const vga_field_error& empty, const vga_field_error& format,
                     NB_BYTE node_id[4]);

// Joins a network name and a name of at most 8 characters to a padded EBCDIC name of 17 bytes.
// False, with the result unchanged, when either is empty.
bool vga_build_fq_name(Widget network_field, Widget name_field, NB_BYTE* fq_name);
// The same, but a network name may stand alone, and two empty fields give blanks.
bool vga_buildw_fq_name(Widget network_field, Widget name_field, NB_BYTE* fq_name);

// Offers names in a list over a text field; the one chosen is put into the field. Without names the
// operator may type one instead.
void vga_offer_names(Widget text, std::span<const std::string> names);
