// What the store derives from references by name: who uses which LU, the pools' contents, the
// definitions that name a changed LU or partner, and clashes of names. Session counts of partners
// are kept by vga_track_rem_sessions (store.h).
#pragma once

#include "shell/verb_queue.h"
#include "store/pool_records.h"
#include "store/records.h"
#include "store/user_records.h"

// ---- LUs 0 to 3 and the emulator users that use them ----

// An LU that an emulator uses was taken (its application data name the user) or is given up (before
// they are cleared). LUs in other use are left alone.
void vga_update_user_sessions(vga_lu03* lu, bool in_use);
// Takes a new state of an LU 0 to 3 into its record, with all that follows from who uses it: users,
// pools, rows. False: nothing has changed.
bool vga_take_lu03_detail(vga_lu03* lu, const LU03_DETAIL& detail);
// The user an application counts under: that of its first name, else that of the second, else the
// default user; null when there is none.
vga_user* vga_get_emulator_user(const LU03_EMULATOR_USER* names);
// Counts every LU in use that belongs to a user who has just been defined, and was counted under
// another or none.
void vga_adopt_user_lus(vga_user* user);
// Adds the row of an LU in use to the user's open status window. Null: the window is not open or,
// with exit code 1 set, there is no memory.
vga_user_status* vga_add_vga_user_status(vga_user* user, const LU03_APPLICATION* user_data,
                                         const NB_BYTE* lu_name);
// Removes all rows of a status window's list; its root stays. For the end of the window.
void vga_free_user_status(vga_user_status_list* list);

// ---- pools ----

// Enters an LU 0 to 3 into the pool its definition names. False: exit code 1 is set.
bool vga_build_pool_ds(vga_lu03* lu);
// The pool of a name (8 bytes of EBCDIC; zeros or blanks: the null pool), and its part on the node,
// both made when they are missing. False: there is no memory; exit code 1 is set.
bool vga_find_pool_insert_pos(const NB_BYTE* pool_name, vga_node* node, vga_sys_pool** system_pool,
                              vga_pool** node_pool);
// The part of a pool that a node has, or null. Makes nothing.
vga_pool* vga_find_node_pool(const NB_BYTE* pool_name, const vga_node* node);
// An LU of a pool was taken by an application, or given up: the pool's count and both rows.
void vga_update_pool_lu(vga_lu03* lu, bool in_use);

// ---- definitions that name what is being changed ----
//
// A dialog sets the `changing` field of the records it is about to redefine, marks, and clears it
// again. Marks stay until the update, or until they are taken back. All of them: true when
// something was marked.

// type: NOF_USER_SESSION_TYPE. 3270 sessions by their LU or pool, 5250 sessions by the alias of
// their partner when one is given, else by their local LU of the node.
bool vga_mark_sessions(NB_BYTE type, const vga_node* node, const char* partner_alias);
// display, printer: whether a session (an association) was marked for that LU of its two.
bool vga_mark_tn_clients(vga_node* node, bool* display, bool* printer);
bool vga_mark_tn_assocs(vga_node* node, bool* display, bool* printer);
bool vga_mark_dslus(vga_node* node); // downstream LUs
bool vga_mark_rje_wkstns();

void vga_unmark_sessions(NB_BYTE type);
void vga_unmark_tn_clients(vga_node* node);
void vga_unmark_tn_assocs(vga_node* node);
void vga_unmark_dslus(vga_node* node);
void vga_unmark_rje_wkstns();

// Re-issue what is marked with the new name of the changed record, which must be in the store:
// marks go when a verb carries them. corr and callback: of every verb; the callback passes its
// completions to vga_process_update. The number of verbs issued; a verb that cannot be issued sets
// exit code 1.

// One of the three is given: an LU 0 to 3 or pool, a local LU 6.2, or a partner LU.
int vga_update_sessions(const vga_deplu* lu03, const vga_lu62* lu62, const vga_rem_plu* rem_plu,
                        NB_ULONG corr, VGA_CALLBACK callback);
int vga_update_tn_clients(vga_node* node, const vga_deplu* lu, NB_ULONG corr,
                          VGA_CALLBACK callback);
int vga_update_tn_assocs(vga_node* node, const vga_lu03* lu, NB_ULONG corr, VGA_CALLBACK callback);
int vga_update_dslus(vga_node* node, const vga_deplu* lu, NB_ULONG corr, VGA_CALLBACK callback);
int vga_update_rje_wkstns(const vga_lu03* lu, NB_ULONG corr, VGA_CALLBACK callback);

// Completion of one re-issued definition: takes it into the store or logs its failure, lowers the
// count and, when it becomes 0, ends the run. dialog: the one that started the run. quiet: it stays
// open (Apply). node: whose definitions were updated.
void vga_process_update(VGA_COMPLETION* work, vga_dialog* dialog, bool quiet, vga_node* node,
                        NB_LONG* verbs_outstanding);
// For other verbs of a run that lower its count themselves: ends the run when the count is 0.
// True: the run has ended.
bool vga_end_update(vga_dialog* dialog, bool quiet, NB_LONG verbs_outstanding);
// The operator has read that an update failed. arg: handle of the dialog that started the run.
void vga_failed_update_cb(vga_dialog* parent, NB_ULONG arg, NB_ULONG answer);
// The dialog closes. node: whose definitions it still updates, or null; what failed so far is told,
// and what is under way goes into the store, or into the log, without the dialog.
void vga_leave_update(vga_dialog* dialog, const vga_node* node);

// ---- clashes of names ----

enum VGA_LU_NAME_CLASH : int {
    VGA_CLASH_NONE = 0,
    VGA_CLASH_DEPENDENT_LU = 1, // vga_deplu of a local PU of the node
    VGA_CLASH_POOL = 2,         // vga_sys_pool
    VGA_CLASH_DOWN_LU = 3,      // vga_down_lu
    VGA_CLASH_LU62 = 4,         // vga_lu62
    VGA_CLASH_OTHER_LU03 = 5,   // vga_lu03 of another node
};
// What has an LU name (8 bytes of EBCDIC) already: on the node, or on every node when node is null,
// then among the pools, then in the whole domain. *found gets the record, or null. A hit on the
// record being edited is for the caller to disregard.
VGA_LU_NAME_CLASH vga_check_lu_name_clash(const NB_BYTE* name, vga_node* node, void** found);
// The located or defined remote partner LU of a fully qualified name, those without a known system
// first; null: none. by_type: of that resource type, else an LU before a wildcard.
vga_rem_plu* vga_check_fq_name_plu_clash(const NB_BYTE* fq_name, vga_node* node, bool by_type,
                                         NB_USHORT type);
// The node's own local LU 6.2 that a fully qualified name denotes, or null.
vga_lu62* vga_check_fq_name_local_clash(const NB_BYTE* fq_name, vga_node* node);
// True when no other LU of the node has the extra-data name xd_name (14 local characters, padded
// with blanks; blank never clashes). Else error 275 is shown on the dialog. lu: the one it is for,
// or null.
bool vga_check_lu_xd_name_clash(const char* xd_name, const vga_lu03* lu, vga_node* node,
                                vga_dialog* dialog);
// The same for a range of new LUs: base (up to 11 characters, terminated) and each number as 3
// decimal or 2 hexadecimal digits.
bool vga_check_lu_range_xd_clash(const char* base, NB_LONG first, NB_LONG last, vga_node* node,
                                 vga_dialog* dialog, bool decimal);
// True when no TP definition and no local LU 6.2 of the node names the security access list (14
// local characters).
bool vga_access_list_unused(const vga_node* node, const char* access_list);

// ---- TN3270 client sessions in the order of their list ----

// The session behind one, across all clients; null: the first, or none. session null: the first.
vga_tn_sess* vga_get_next_tn_sess(const vga_tn_sess* session, const vga_node* node);
// The session before one; with none given the last.
vga_tn_sess* vga_get_prev_tn_sess(const vga_tn_sess* session, const vga_node* node);
