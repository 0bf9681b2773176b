// Consistency checks: list one kind of resource of a node again when indications about it were
// lost, and bring the store in line with the list.
//
// A start sends the first page on the node's connection; the completion callback takes a page and
// sends the next one. Pages that belong to a record that has gone, or that come from a node that
// has gone, have no effect. A page that cannot be sent sets exit code 1. checks_running of the node
// counts, by kind, the checks that have not ended.
#pragma once

#include "store/query.h"

// Refresh the states of the records and their rows.
void vga_start_check_dlc(vga_node* node);
void vga_start_check_port(vga_node* node);
void vga_start_check_pu(vga_node* node);
void vga_start_check_dlur_pu(vga_node* node);
void vga_start_check_down_pu(vga_node* node);
void vga_start_check_local_lu(vga_node* node);
void vga_check_dlc(VGA_COMPLETION* completion);
void vga_check_port(VGA_COMPLETION* completion);
void vga_check_pu(VGA_COMPLETION* completion);
void vga_check_dlur_pu(VGA_COMPLETION* completion);
void vga_check_down_pu(VGA_COMPLETION* completion);
void vga_check_local_lu(VGA_COMPLETION* completion);

// Refreshes link stations and removes those that are not listed. Drops the pages of a check that
// still runs, and the queries for single ones that the node has made: what they ask for is listed.
void vga_start_check_ls(vga_node* node);
void vga_check_ls(VGA_COMPLETION* completion);

// Refreshes the LUs of one downstream PU after the other; new LUs are added to a PU that was made
// from a template.
void vga_start_check_down_lu(vga_node* node);
void vga_check_down_lu(VGA_COMPLETION* completion);

// Refreshes LUs 0 to 3, one local PU after the other. A start during a check makes that one begin
// anew once its outstanding page has come, however many starts there were.
void vga_start_check_lu03(vga_node* node);
void vga_check_lu03(VGA_COMPLETION* completion);
void vga_lu03_wait_restart_check(VGA_COMPLETION* completion);

// Lists the partners and modes of a local LU 6.2 again; partners, modes and partner sessions that
// are not listed are removed.
void vga_start_check_lu62(vga_lu62* lu);
void vga_check_lu62(VGA_COMPLETION* completion);

// Lists the directory again. The operator is told of each remote system that is no longer in it.
void vga_start_check_dir(vga_node* node);
void vga_check_dir(VGA_COMPLETION* completion);

// Lists the sessions of APPC over IP again and removes those that are not listed; all of them when
// the node has no defaults for APPC over IP.
void vga_start_check_ipbridge_sess(vga_node* node);
void vga_check_ipbridge_sess(VGA_COMPLETION* completion);

// ---- for this folder only ----

enum : NB_BYTE { VGA_FROM_TEMPLATE = 2 }; // attachment of such a downstream PU

// The check of a kind has ended, or lost the record that it ran for.
void vga_check_ends(vga_node* node, VGA_CHECK_KIND kind);
// The record that a page was sent for; null, and the check has ended, when the record or the node
// has gone.
void* vga_check_record(const VGA_COMPLETION* completion, VGA_CHECK_KIND kind);
// Ends the check with exit code 1 when its page could not be sent.
void vga_check_sent(bool sent, vga_node* node, VGA_CHECK_KIND kind);
// An outstanding verb of a node with an opcode and callback, or null. corr: 0, any.
VGA_QUEUE_ENTRY* vga_check_queued(const vga_node* node, NB_USHORT opcode, NB_ULONG corr,
                                  VGA_CALLBACK callback);
// Forgets the outstanding verbs of a node that match every non-zero criterion.
void vga_check_drop(const vga_node* node, NB_USHORT opcode, NB_ULONG corr, VGA_CALLBACK callback);

// The entries of a page, one after the other; none of a page that failed.
class vga_check_entries {
public:
    vga_check_entries(VGA_QUERY query, const void* vcb);
    const void* next(); // null: no more
    bool more() const;  // the list goes on behind this page
private:
    const vga_query_row& row;
    const LIST_QUERY& list;
    std::size_t at = 0;
    NB_USHORT index = 0;
};
