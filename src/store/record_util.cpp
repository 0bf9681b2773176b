#include "store/record_util.h"

#include "shell/messages.h"

void vga_describe(NB_DESCRIPTION description, int message) {
    const char* text = gvga_messages[message];
    v0_mb_strncpy(description, text != nullptr ? text : "", sizeof(NB_DESCRIPTION));
}

void vga_log_clash(int subcode, NB_USHORT resource, const NB_BYTE* name) {
    if (!nba_exceptions_suppressed()) {
        nba_pd_print_exception(0x40020004, subcode, "x es", int{resource}, 8, name);
    }
}

void vga_log_missing_parent(int subcode, NB_USHORT opcode, const char* name, int width) {
    if (!nba_exceptions_suppressed()) {
        nba_pd_print_exception(0x40020004, subcode, "x ca", int{opcode}, width, name);
    }
}

void vga_log_missing_parent_ebcdic(int subcode, NB_USHORT opcode, const NB_BYTE* name, int width) {
    if (!nba_exceptions_suppressed()) {
        nba_pd_print_exception(0x40020004, subcode, "x es", int{opcode}, width, name);
    }
}
