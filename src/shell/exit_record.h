// The exit record: how any part of the program ends the run. The main loop stops at its next test
// once the code is not 0.
#pragma once

#include "common/assert.h"
#include "nba/nba.h"

extern NB_LONG gvga_exit_code;     // 0 running, -1 orderly end, anything else a fatal code
extern NB_ULONG gvga_exit_subcode; // for code 164 the opcode of the verb that failed
extern const char* gvga_exit_file; // where the code was set
extern NB_ULONG gvga_exit_line;

enum VGA_EXIT_CODE : NB_LONG {
    VGA_EXIT_ORDERLY = -1,
    VGA_EXIT_INTERNAL = 1, // allocation, verb submission, invariant, loss of the node link
    VGA_EXIT_USAGE = 33,
    VGA_EXIT_QUERY = 164, // a verb of the build failed; the subcode is its opcode
    VGA_EXIT_START = 165, // start-up failed
    VGA_EXIT_NO_NODE = 166,
    VGA_EXIT_SHUTDOWN = 167, // the node software announced its shutdown
};

// Records the first fatal condition only, so that the operator sees the cause and not its
// consequence.
void vga_set_exit(NB_LONG code, NB_ULONG subcode, const char* file, int line);

#define VGA_FATAL(code, subcode) vga_set_exit((code), (subcode), __FILE_NAME__, __LINE__)
