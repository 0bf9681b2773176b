// What the tracking of users, pools and definitions shares with the records' own files; for this
// folder only.
#pragma once

#include "store/pool_records.h"
#include "store/user_records.h"

// ---- LUs counted under users ----

// Every LU of a user who is out of the user tree already counts under another one, or none.
void vga_give_up_user_lus(vga_user* user);
// Every LU in use counts under the user that its names match now.
void vga_recount_user_lus();
// No LU counts under any user.
void vga_forget_user_lus();

// ---- the end of records ----

// Logs the users with LUs in use, LU by LU, and the RJE workstations in use. True when
// there was one.
bool vga_report_lost_updates();
// CPI-C side information, users and RJE workstations: with their rows, or without a thought for
// rows, which are gone already.
void vga_delete_domain_records(vga_system* system);
void vga_release_domain_records(vga_system* system);
// The parts that a node has of all pools, with the rows of their LUs; the LUs go with the node.
void vga_release_node_pools(vga_node* node);
// The pools that are left when all nodes have gone, without their rows.
void vga_release_pools(vga_system* system);

// ---- marks ----

void vga_unmark_session(vga_user_sess* sess);
// Takes every mark back, of all nodes.
void vga_unmark_all();

// Logs a re-issued definition that failed: whose it is, and the LU or partner that it names.
void vga_log_failed_update(const void* vcb, const vga_node* node);
