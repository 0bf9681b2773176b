#include "shell/exit_record.h"

NB_LONG gvga_exit_code;
NB_ULONG gvga_exit_subcode;
const char* gvga_exit_file = "";
NB_ULONG gvga_exit_line;

void vga_set_exit(NB_LONG code, NB_ULONG subcode, const char* file, int line) {
    if (gvga_exit_code != 0 && gvga_exit_code != VGA_EXIT_ORDERLY) {
        return;
    }
    gvga_exit_code = code;
    gvga_exit_subcode = subcode;
    gvga_exit_file = file;
    gvga_exit_line = static_cast<NB_ULONG>(line);
}
