// Field tables: a dialog says in one row per field which widget shows which bytes of its image, and
// what is wrong with a wrong entry. The rows show an image, read it back in their order, make the
// dialog one for viewing and clear it for the next entry. The image is what the dialog edits: a
// verb control block, the parameters in it, or any other packed block.
#pragma once

#include "ui/framework/dialog.h"
#include "ui/framework/fields.h"

#include <cstddef>
#include <span>

struct VGA_CHAIN;
struct VGA_CONFIRMATION;
struct VGA_FORM;
struct vga_node;

struct VGA_CHAIN_RUN {             // what verb_chain.h keeps of the verbs of a dialog
    const VGA_CONFIRMATION* asked; // the question that shows, or null
    NB_ULONG checks;               // what the run still asks about
    NB_LONG outstanding;           // verbs sent and not yet completed
    vga_node* update_node;         // whose definitions are updated; null: no update run
    Widget focus;                  // had the keyboard when the first verb was sent
    bool apply;                    // Apply started the run, not OK
    bool marked;                   // definitions are marked for update
    bool failed;                   // a verb of the run failed
    bool defined;                  // what the dialog shows is defined
};

struct vga_form { // how the descriptor of every dialog with a field table begins
    vga_dialog common;
    const VGA_FORM* row;
    Widget apply_button; // null: the form has none
    bool editable;
    VGA_CHAIN_RUN run;
};

// ---- rows ----

enum class VGA_FIELD_KIND : NB_BYTE {
    LOCAL_TEXT,  // local characters, terminated: one less than the place has bytes
    LOCAL_NAME,  // local characters, padded with blanks
    NAME_A,      // EBCDIC characters of type A, padded with blanks
    NAME_AE,     // the same of type AE
    FQ_NAME,     // widget and second: network name and name, joined to 17 bytes
    FQ_WILDCARD, // the same; the network name may stand alone, or nothing
    NODE_ID,     // widget and second: block and number, 3 and 5 hexadecimal digits
    DECIMAL,     // 1, 2 or 4 bytes
    HEX,         // two digits per byte
    TOGGLE,      // a byte or number with one of two values, or bits of it
    OPTION_MENU, // a byte or number with the code of the entry
    RADIO,       // the same, one toggle per code
    LIST,        // names of item_size bytes, as many as the number at `count` says
    UNSET,       // a toggle, set while the place is empty; setting it empties the place
    TP_NAME,     // of an application: EBCDIC characters, padded with blanks
    TP_HEX,      // of a service program: two digits per byte, padded with blanks
    PASSWORD,    // local characters, padded with blanks; a stored one is not shown, and stays in
                 // the image unless another is typed
    OWN,         // shown and read by functions of the row
};

struct VGA_FIELD_WIDGET {
    const char* suffix = nullptr; // of its name, behind the dialog's prefix
    std::size_t member = 0;       // where the descriptor keeps it; 0: the row has no such widget
};
struct VGA_FIELD_PLACE {
    std::size_t offset = 0;
    std::size_t size = 0;
};
// A widget that a descriptor keeps, and a field of an image.
#define VGA_WIDGET(descriptor, member, suffix)                                                     \
    VGA_FIELD_WIDGET {                                                                             \
        suffix, offsetof(descriptor, member)                                                       \
    }
#define VGA_PLACE(image, member)                                                                   \
    VGA_FIELD_PLACE {                                                                              \
        offsetof(image, member), sizeof(static_cast<image*>(nullptr)->member)                      \
    }

struct VGA_FIELD_CHOICE { // an entry of an option menu or radio group
    VGA_FIELD_WIDGET entry;
    NB_ULONG code;
};
struct VGA_FIELD_RANGE {
    NB_ULONG minimum;
    NB_ULONG maximum;
};

struct VGA_FIELD {
    VGA_FIELD_KIND kind;
    VGA_FIELD_WIDGET widget{};
    VGA_FIELD_WIDGET second{};
    VGA_FIELD_WIDGET label{}; // hidden with the field
    VGA_FIELD_PLACE place{};

    // Message numbers. empty 0: the field may be empty and gives blanks or empty_value. range gets
    // the bounds as arguments "l l". bad: wrong characters, half a name, too few digits.
    int empty = 0;
    int range = 0;
    int bad = 0;
    const char* help_tag = nullptr; // null: the form's

    NB_ULONG minimum = 0; // DECIMAL
    NB_ULONG maximum = 0;
    NB_ULONG empty_value = 0;
    bool big_endian = false;

    NB_ULONG on = 1; // TOGGLE: the values of a toggle that is set and not set
    NB_ULONG off = 0;
    NB_ULONG mask = 0; // not 0: these bits instead; the others are kept

    std::span<const VGA_FIELD_CHOICE> choices{};
    std::size_t item_size = 0; // LIST
    bool ebcdic_items = false;
    VGA_FIELD_PLACE count{};

    bool key = false;         // part of what the record is called
    bool clear_next = false;  // emptied for the next entry after Apply
    bool hide_unused = false; // when it does not apply: hidden, not only insensitive

    // What depends on the dialog; each may be null. VGA_TYPED adapts functions that take the
    // dialog's own types.
    //
    // Whether the row applies, from the state of the widgets of earlier rows; else it is not read,
    // and a text shows nothing.
    bool (*applies)(vga_form* form, void* unused) = nullptr;
    // DECIMAL: bounds that depend on what was read before.
    VGA_FIELD_RANGE (*bounds)(vga_form* form, void* image) = nullptr;
    // Which codes are offered. A menu that offers fewer than two is hidden.
    bool (*offered)(vga_form* form, NB_ULONG code) = nullptr;
    // Runs once the field was read, before the next row: checks it against the rest of the
    // configuration and sets what follows from it. False: the operator was told or asked.
    bool (*check)(vga_form* form, void* image) = nullptr;
    void (*show)(vga_form* form, const void* image) = nullptr; // OWN
    bool (*read)(vga_form* form, void* image) = nullptr;       // OWN; false: the operator was told
};

struct VGA_FORM { // what a dialog shows
    const char* help_tag;
    std::span<const VGA_FIELD> fields;         // in the order in which they are read
    std::span<const VGA_FIELD_WIDGET> widgets; // what the dialog needs besides
    XtCallbackProc ok;                         // of the OK button while the dialog may be edited
    const VGA_CHAIN* chain = nullptr;          // null: a sub-dialog, which sends nothing
};

// VGA_TYPED<function>::call is the function with the descriptor, and the image or another argument,
// as the types of a row's hook.
template <auto Function> struct VGA_TYPED;
template <typename Result, typename Dialog, Result (*Function)(Dialog*)>
struct VGA_TYPED<Function> {
    static Result call(vga_form* form, void*) { return Function(reinterpret_cast<Dialog*>(form)); }
};
template <typename Result, typename Dialog, typename Argument,
          Result (*Function)(Dialog*, Argument*)>
struct VGA_TYPED<Function> {
    static Result call(vga_form* form, Argument* argument) {
        return Function(reinterpret_cast<Dialog*>(form), argument);
    }
    static Result call(vga_form* form, void* argument) {
        return call(form, static_cast<Argument*>(argument));
    }
    static Result call(vga_form* form, const void* argument) {
        return call(form, static_cast<Argument*>(argument));
    }
};
template <typename Dialog, bool (*Function)(Dialog*, NB_ULONG)> struct VGA_TYPED<Function> {
    static bool call(vga_form* form, NB_ULONG code) {
        return Function(reinterpret_cast<Dialog*>(form), code);
    }
};

// ---- life of a form ----

// Opens a dialog with a field table. Null: it is open for that record already, and has been raised,
// or it cannot be made. The caller fills its image and calls vga_show_form.
vga_form* vga_open_form(NB_USHORT dialog_id, vga_dialog* parent, void* record);
template <typename Dialog>
Dialog* vga_open_form(NB_USHORT dialog_id, vga_dialog* parent, void* record) {
    return reinterpret_cast<Dialog*>(vga_open_form(dialog_id, parent, record));
}
// The get-widgets function of such a dialog: finds the widgets of all rows and ApplyButton.
bool vga_get_form_widgets(vga_dialog* dialog, const VGA_FORM& row);
// Shows the image, for editing or for viewing, puts the focus on the first field, displays the
// dialog.
void vga_show_form(vga_form* form, const void* image, bool editable);
// The title of the dialog; kinds and arguments are those of vga_print_msg.
void vga_set_form_title(vga_form* form, int message, const char* kinds, ...);
// For the close procedure: takes marks back and forgets the run.
void vga_close_form(vga_form* form);

// ---- what the rows do ----

void vga_show_fields(vga_form* form, const void* image);
// False: a field is wrong, or a check stopped; the operator was told, and the image is half read:
// give it a copy.
bool vga_read_fields(vga_form* form, void* image);
// Whether two images are the same in all rows that apply, or in those of the key.
bool vga_same_fields(vga_form* form, const void* a, const void* b, bool key_only = false);
// Fields for editing or for viewing.
void vga_edit_fields(vga_form* form, bool editable);
// After a change of what other rows depend on: makes rows that apply usable, and only them.
void vga_adjust_fields(vga_form* form);
// Empties the rows that are cleared for the next entry; the first of them gets the focus.
void vga_clear_fields(vga_form* form);
// Shows or hides a row's widgets with its label.
void vga_manage_field(vga_form* form, const VGA_FIELD& field, bool managed);

// The form that a widget belongs to, for its callbacks.
inline vga_form* vga_form_of(Widget widget) {
    return reinterpret_cast<vga_form*>(vga_dialog_of(widget));
}
// A widget of a form. It is null when the descriptor keeps none.
inline Widget vga_form_widget(const vga_form* form, const VGA_FIELD_WIDGET& widget) {
    return widget.member == 0 ? nullptr
                              : *reinterpret_cast<const Widget*>(
                                    reinterpret_cast<const char*>(form) + widget.member);
}
