// The message table and the formatter that fills messages with arguments.
#pragma once

#include "nba/nba.h"

#include <cstdarg>

inline constexpr int VGA_MESSAGE_COUNT = 1488; // entries 1 to 1487 are used
inline constexpr int VGA_MESSAGE_SET = 2;
inline constexpr std::size_t VGA_MESSAGE_WORK_SIZE = 1024; // all converted arguments of one call
inline constexpr std::size_t VGA_MESSAGE_BUFFER_SIZE = 1024;

extern const char* gvga_messages[VGA_MESSAGE_COUNT];
extern char* gvga_message_memory;  // the block that holds all texts
extern NBA_CATALOGUE gvga_catalog; // -1: none open
extern NB_LONG gvga_setid;         // the set in use; -1 until the catalogue is opened

// Opens the catalogue and loads every message into the table. False on failure, with the problem
// logged (0x40020005) and exit code 165 set.
bool vga_load_messages();
void vga_free_messages();

// Writes a message with its arguments filled in. descriptor: the kinds of the arguments, at most 11
// names out of c b s ca i x l lx ea cs es, separated by blanks; ca, ea, cs and es take a length
// (int) and a pointer. The text refers to arguments by position (%1 to %N); column markers (%t5%)
// stay. output must hold the text and its arguments.
void vga_print_msg(char* output, const char* message_text, const char* descriptor, ...);
void vga_print_msg_va(char* output, const char* message_text, const char* descriptor,
                      va_list arguments);

// Copies a text with its column markers turned into blanks.
void vga_tab_msg(char* output, const char* input);

// Prints the usage, and before it the first leftover argument when report_bad_argument is set.
void vga_print_usage(bool report_bad_argument, char** argv);
