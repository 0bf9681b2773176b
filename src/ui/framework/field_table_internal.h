// Between the files of the field tables: what is known of a kind of field.
#pragma once

#include "ui/framework/field_table.h"

enum class VGA_FIELD_USE : NB_BYTE {
    TEXT,     // viewing: the text can be selected and scrolled, but not changed
    TEXTS,    // two of them, in a box of their own
    CONTROL,  // viewing: insensitive
    CONTROLS, // one per choice
};

struct VGA_KIND_OF_FIELD {
    void (*show)(vga_form* form, const VGA_FIELD& field, const void* image);
    bool (*read)(vga_form* form, const VGA_FIELD& field,
                 void* image); // false: the operator was told
    VGA_FIELD_USE use;
};
const VGA_KIND_OF_FIELD& vga_kind_of(const VGA_FIELD& field);
