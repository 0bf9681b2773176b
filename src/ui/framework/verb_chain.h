// Verb chains: how the OK and Apply buttons of a resource dialog become verbs. One row describes
// it; the run goes
//   allowed -> block prepared -> fields read -> unchanged? -> questions -> old definition deleted
//   -> define sent -> each completion taken into the store, failures shown -> run ended:
//   OK closes the dialog, Apply prepares it for what comes next.
// OK and Apply are insensitive while verbs are outstanding. The correlator of every verb is the
// dialog's handle: closing the dialog forgets them, and their completions; those of an update run
// go on without it.
#pragma once

#include "shell/verb_queue.h"
#include "ui/framework/field_table.h"

// A question asked before the verb is sent. Its answer starts the issue again, with fewer checks.
struct VGA_CONFIRMATION {
    int message;
    const char* help_tag;
    NB_ULONG yes_checks = 0;               // what is still asked about after Yes
    bool offers_no = false;                // No: go on without the update; marks are taken back
    NB_ULONG no_checks = 0;                // the same after No
    int question = 0;                      // message that follows the text
    VGA_MODAL_CALLBACK answered = nullptr; // null: vga_chain_answer
};

struct VGA_CHAIN_FAILURE { // a return code with a message of its own
    NB_USHORT opcode;
    NB_USHORT primary;
    NB_ULONG secondary; // 0: any
    int message;
    const char* help_tag;
};

struct VGA_CHAIN_STEP { // a verb of the chain
    NB_USHORT opcode;
    // It succeeded: takes it into the store and sends what follows.
    void (*done)(vga_form* form, VGA_COMPLETION* completion);
};

struct VGA_CHAIN {
    NB_USHORT opcode;        // of the define verb
    std::size_t size;        // of its block
    std::size_t image;       // offset of the form's image in it
    NB_ULONG checks;         // with which OK and Apply start
    VGA_CALLBACK completion; // of every verb: vga_chain_completed, or a function that calls it

    // Hooks get the dialog and the block of the define. All but prepare, target and steps may be
    // null. VGA_TYPED adapts them.
    //
    // False: the record cannot be changed now, and the operator was told.
    bool (*allowed)(vga_form* form, void* unused) = nullptr;
    // Fills the block, zero but for its opcode, with what the fields do not show.
    void (*prepare)(vga_form* form, void* vcb);
    NB_HANDLE (*target)(vga_form* form, void* unused);
    // The image of the record that the dialog shows, null when there is none yet. With it an
    // unchanged image is not sent, and a changed key (VGA_FIELD) deletes the old definition first.
    const void* (*current)(vga_form* form, void* unused) = nullptr;
    // True: the define need not be sent; verbs that it sends in its place belong to the run.
    bool (*unchanged)(vga_form* form, void* vcb) = nullptr;
    // False: it asked (vga_chain_ask) or told the operator.
    bool (*confirm)(vga_form* form, void* vcb) = nullptr;
    // The record has another definition that goes before it can be defined anew.
    bool (*replaces)(vga_form* form, void* vcb) = nullptr;
    // Sends that delete with the dialog's handle and `completion`; its step's done function
    // processes it and calls vga_chain_continue. False: no memory.
    bool (*delete_old)(vga_form* form, void* unused) = nullptr;
    std::span<const VGA_CHAIN_STEP> steps;
    std::span<const VGA_CHAIN_FAILURE> failures{}; // others show error 167
    // Takes back the marks that `confirm` set.
    void (*unmark)(vga_form* form, void* unused) = nullptr;
    // Apply succeeded: shows the record anew, or clears the form for the next.
    void (*applied)(vga_form* form, void* unused) = nullptr;
    // The run succeeded; after OK the dialog is closed. record: the dialog's, before it closed.
    void (*finished)(vga_form* form, void* record) = nullptr;
};

// ---- OK, Apply, answers ----

// The OK and Apply callbacks: starts a run with all checks. Without memory exit code 1 is set.
void vga_chain_start(vga_form* form, bool apply);
// Runs up to the verbs. False: no memory.
bool vga_chain_issue(vga_form* form, NB_ULONG checks);
// For the completion of a delete that made way: issues again, asking nothing. Without memory exit
// code 1 is set.
void vga_chain_continue(vga_form* form);
// Asks; kinds and arguments are those of vga_print_msg. Always false, for `confirm`.
bool vga_chain_ask(vga_form* form, const VGA_CONFIRMATION& question, const char* kinds = "", ...);
// The answer of a question: closes it and goes on.
void vga_chain_answer(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer);

// ---- verbs ----

// Sends a verb of the chain. False: no memory; the block is still the caller's.
bool vga_chain_queue(vga_form* form, NB_HANDLE target, void* vcb);
// Counts verbs of the chain that were sent by another routine with the dialog's handle.
void vga_chain_sent(vga_form* form, int count);
// The same for verbs of an update run (vga_update_*), whose callback is vga_chain_updated or calls
// it. The marks have gone with them.
void vga_chain_updating(vga_form* form, vga_node* node, int count);

// Completion callbacks. A completion for a dialog that has closed since does nothing.
void vga_chain_completed(VGA_COMPLETION* completion);
void vga_chain_updated(VGA_COMPLETION* completion);
