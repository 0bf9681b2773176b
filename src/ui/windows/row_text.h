// What the row texts of the windows are made with. Rows are built each time they are drawn: nothing
// is allocated.
#pragma once

#include "common/assert.h"
#include "nof/vcb.h"
#include "shell/messages.h"

#include <cstddef>
#include <cstring>

// A description as terminated text, whatever the node put into the field.
struct VGA_ROW_DESCRIPTION {
    char text[sizeof(NB_DESCRIPTION)];
    explicit VGA_ROW_DESCRIPTION(const NB_DESCRIPTION& field) {
        const std::size_t length = strnlen(field, sizeof text - 1);
        std::memcpy(text, field, length);
        text[length] = '\0';
    }
};

// Formats a message as a row's text; its length.
template <typename... ARGUMENTS>
int vga_print_row(char* text, int message, const char* kinds, ARGUMENTS... arguments) {
    vga_print_msg(text, gvga_messages[message], kinds, arguments...);
    return static_cast<int>(std::strlen(text));
}

// The row of a record in a state that has no text.
inline int vga_no_row_text(char* text) {
    VGA_ASSERT_TEXT(false, "FALSE");
    text[0] = '\0';
    return 0;
}

// A state and the message that shows it; 0: the state is none of the table's.
struct VGA_STATE_ROW {
    int state;
    int message;
};
template <std::size_t N> int vga_state_message(const VGA_STATE_ROW (&table)[N], int state) {
    for (const VGA_STATE_ROW& row : table) {
        if (row.state == state) {
            return row.message;
        }
    }
    return 0;
}
