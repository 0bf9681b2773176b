// The node base library: handles, queues, character sets, message catalogue, formatted output, logs
// and assertions. Everything is used from the one X event loop thread.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>

using NB_BYTE = std::uint8_t;
using NB_USHORT = std::uint16_t;
using NB_ULONG = std::uint32_t;
using NB_LONG = std::int32_t;
using NB_HANDLE = std::uint32_t; // 0 is never a valid handle

// ---- heap and handles ----

// Makes the handle table ready. Non-zero when ready; may be called again after nba_terminate.
int nba_hm_initialise();
// Forgets every handle; for the end of the program and for tests.
void nba_hm_terminate();

// A new handle for an object; 0 when none can be had. Handles are not reused for a long time, so
// that a stale one does not validate as a newer object.
NB_HANDLE nba_create_handle(void* object);
// The object of a handle, or null once it was destroyed (or for 0).
void* nba_validate_handle(NB_HANDLE handle);
void nba_destroy_handle(NB_HANDLE handle);
// The number of handles in use; a test that expects no leak compares it.
std::size_t nba_handle_count();

// ---- queues: circular, intrusive, with the head as a link whose owner is null ----

struct NBA_QUEUE {
    NBA_QUEUE* next;
    NBA_QUEUE* previous;
    void* owner; // the record that holds this link; null in a queue's head
};

// Makes an empty queue of a head, or an unlinked state of a link.
void nba_init_q(NBA_QUEUE* queue, void* owner = nullptr);
void nba_add_to_q_tail(NBA_QUEUE* queue, NBA_QUEUE* link, void* owner);
void nba_add_to_q_head(NBA_QUEUE* queue, NBA_QUEUE* link, void* owner);
// Takes a link out of whatever queue holds it and leaves it unlinked; an unlinked one stays as it
// is.
void nba_remove_from_q(NBA_QUEUE* link);
// The owner of the first entry, or null when the queue is empty.
void* nba_get_q_head(const NBA_QUEUE* queue);
bool nba_q_empty(const NBA_QUEUE* queue);

// ---- character sets: EBCDIC code page 037 and the local single-byte set (ISO 8859-1) ----

enum NBA_CHARACTER_SET : int {
    NBA_TYPE_AE = 4, // type AE: letters of both cases, digits, $ # @ and period
    NBA_TYPE_A = 8,  // type A: upper-case letters, digits, $ # @; no digit first
};

// In place, byte by byte; the two are inverse to each other over all 256 values.
void nba_local_to_ebcdic(void* buffer, std::size_t length);
void nba_ebcdic_to_local(void* buffer, std::size_t length);
// Non-zero when every byte of an EBCDIC field belongs to the character set; a length of 0 passes.
int nba_check_ebcdic(int set, const void* buffer, std::size_t length);

// ---- message catalogue (catopen, found through NLSPATH, or the installed place by default) ----

using NBA_CATALOGUE = std::intptr_t; // -1: none open

// 0 when the catalogue was opened.
int v0_initialise_message_catalog(NBA_CATALOGUE* catalogue);
// *text points into the catalogue until it is closed; null when the message is missing. A message
// with an empty text gives "".
void v0_get_message(int set, int number, const char** text, NBA_CATALOGUE catalogue);
void v0_close_message_catalog(NBA_CATALOGUE* catalogue);

// ---- text ----

// Copies at most n - 1 characters, never half of a multibyte one, and always terminates (n > 0).
// Returns destination.
char* v0_mb_strncpy(char* destination, const char* source, std::size_t n);
int nb_sprintf(char* output, const char* format, ...) __attribute__((format(printf, 2, 3)));
int nb_printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
int nb_fprintf(std::FILE* file, const char* format, ...) __attribute__((format(printf, 2, 3)));

// ---- problem and exception log, assertions, trace control ----

// One line per record, with time, kind, identifier, subcode and the arguments, to the file that the
// environment variable TESSALY_LOG names, or to standard error. The descriptor names the kinds of
// the arguments as in message formatting: c b i x l lx take an integer (int), s a string, ca ea cs
// es a length (int) and a pointer.
void nba_pd_print_problem(NB_ULONG id, int subcode, const char* descriptor, ...);
void nba_pd_print_exception(NB_ULONG id, int subcode, const char* descriptor, ...);

// Records a broken invariant in the same log; the caller goes on.
void v0_assert(const char* file, int line, const char* expression);
// How many invariants broke since the start; tests compare it. The last one's expression, "" when
// none.
std::size_t nba_assert_count();
const char* nba_last_assert();

#pragma pack(push, 1)
// Trace control. Bit 0 of flags: exceptions are not logged (the environment variable
// TESSALY_TRACE_CONTROL sets the byte).
struct NBA_TRACE_CONTROL {
    NB_BYTE reserved[16];
    NB_BYTE flags;
    NB_BYTE reserved2[15];
};
#pragma pack(pop)
static_assert(offsetof(NBA_TRACE_CONTROL, flags) == 16);
extern NBA_TRACE_CONTROL ptrc;
inline bool nba_exceptions_suppressed() {
    return (ptrc.flags & 0x01) != 0;
}

// ---- verb table ----

#pragma pack(push, 1)
// One row per verb and, where a verb has several forms, per form (byte 3 of the block).
struct NBA_VERB_ROW {
    NB_USHORT opcode;
    NB_BYTE form; // byte 3 of the block; 0 for most verbs
    NB_BYTE reserved;
    NB_USHORT block_size;   // size of the fixed part in bytes
    NB_USHORT count_offset; // offset of the field that sizes the variable part; 0: no variable part
    NB_USHORT element_size; // bytes per unit of that field, 1 when it counts bytes
    NB_BYTE flags;          // byte 10: see below
    NB_BYTE count_width;    // width of the count field in bytes: 1, 2 or 4
    NB_USHORT count2_offset; // a second field added to the first (the port's link data); 0: none
    const char* name;        // the verb's name, for logs and the journal
};
#pragma pack(pop)
static_assert(offsetof(NBA_VERB_ROW, flags) == 10);

enum : NB_BYTE {
    NBA_VERB_HAS_BUFFER = 0x02, // the block carries a data buffer: pointer at offset 16, size at 24
    NBA_VERB_INDICATION = 0x04, // sent by the node only
};

// The row of a verb, or null. The last argument is reserved (0).
const NBA_VERB_ROW* vnv_verb_search(NB_USHORT opcode, NB_BYTE form, int reserved);
// The length of a whole block, variable part included; 0 for an unknown verb.
std::size_t nba_block_length(const void* block);
// Whether a block that came in that many bytes (at least a header) holds all that its counts
// announce. True for an unknown verb, false for an unknown form of a known one.
bool nba_block_fits(const void* block, std::size_t length);
