// Removal of records with all that depends on them. redraw: the viewer draws at once; a caller that
// removes many rows passes false and redraws once. Open dialogs are detached: they stay open and no
// longer refer to the record, and what was opened from them is closed. Handles of removed records
// do not validate any more.
#pragma once

#include "store/records.h"

void vga_delete_vga_dlc(vga_dlc* dlc, bool redraw);
void vga_delete_vga_port(vga_port* port, bool redraw);
void vga_delete_vga_ls(vga_ls* ls, bool redraw);
void vga_delete_vga_local_pu(vga_pu* pu, bool redraw);
void vga_delete_vga_down_pu(vga_pu* pu, bool redraw);
void vga_delete_vga_cn(vga_cn* cn, bool redraw);
void vga_delete_vga_cn_port(vga_cn_port* cn_port);
void vga_delete_vga_dlur_fake_port(vga_node* node, bool redraw);
void vga_delete_vga_primary_line_fake_port(vga_node* node, bool redraw);

void vga_delete_vga_lu03(vga_lu03* lu, bool redraw);
void vga_delete_lu03_extra_data(vga_lu03* lu);
void vga_delete_vga_down_lu(vga_down_lu* lu, bool redraw);
void vga_delete_vga_lu62(vga_lu62* lu, bool redraw);
void vga_delete_vga_plu(vga_plu* plu, bool redraw);
void vga_delete_vga_mode(vga_mode* mode, bool redraw);
void vga_delete_vga_mode_def(vga_mode_def* mode, bool redraw);
void vga_delete_vga_cos(vga_cos* cos, bool redraw);

void vga_delete_vga_dir(vga_dir* dir, bool redraw);
// Takes reasons to exist from a remote system: that it is defined, that sessions run to it. It goes
// when none is left; its partners lose the same reasons.
void vga_delete_vga_rem_sys(vga_rem_sys* rem_sys, bool clear_defined, bool clear_sessions,
                            bool redraw);
// The same for a remote partner LU. A definition whose location goes moves to the network's fake
// remote system.
void vga_delete_vga_rem_plu(vga_rem_plu* rem_plu, bool clear_definition, bool clear_location,
                            bool clear_sessions, bool redraw);
void vga_delete_vga_rem_sess(vga_rem_sess* sess, bool redraw);
// Tells the operator that a remote system is no longer known by definition, and removes that
// reason.
void vga_overwrite_vga_rem_sys(vga_rem_sys* rem_sys);

void vga_delete_vga_ls_routing(vga_ls_routing* routing, bool redraw);
void vga_delete_vga_lu62_timeout(vga_lu62_timeout* timeout, bool redraw);
void vga_delete_vga_primary_line(vga_primary_line* line, bool redraw);
void vga_delete_vga_primary_lu0(vga_primary_lu0* lu, bool redraw);
void vga_delete_vga_tp_def(vga_tp_def* tp, bool redraw);
void vga_delete_vga_tp_load_info(vga_tp_load_info* info, bool redraw);
// Also of a template that is in no tree. Ports that have it lose it.
void vga_delete_vga_dspu_template(vga_dspu_template* dspu, bool redraw);
void vga_delete_vga_dslu_template(vga_dslu_template* dslu, bool redraw);
void vga_delete_vga_userid_password(vga_userid_password* userid, bool redraw);
void vga_delete_vga_security_access_list(vga_security_access_list* list, bool redraw);
void vga_delete_vga_security_access_user(vga_security_access_user* user);
void vga_delete_vga_lu_lu_password(vga_lu_lu_password* password, bool redraw);
void vga_delete_vga_tn_client(vga_tn_client* client, bool redraw);
void vga_delete_vga_tn_sess(vga_tn_sess* sess, bool redraw); // its client stays
void vga_delete_vga_tn_assoc(vga_tn_assoc* assoc, bool redraw);
void vga_delete_vga_tn_redirect(vga_tn_redirect* redirect, bool redraw);
void vga_delete_vga_rtp_conn(vga_rtp_conn* conn, bool redraw);
void vga_delete_vga_appcip_sess(vga_appcip_sess* sess, bool redraw);
// Forgets the node's defaults of APPC over IP; its sessions stay.
void vga_delete_ipbridge_appcip_defaults(vga_node* node);

// Its LUs in use count under the user that their applications' names then match.
void vga_delete_vga_user(vga_user* user, bool redraw);
void vga_delete_vga_user_sess(vga_user_sess* sess, bool redraw);
void vga_delete_vga_cpic(vga_cpic* cpic, bool redraw);
void vga_delete_vga_rje_wkstn(vga_rje_wkstn* wkstn, bool redraw);
// A pool, or the part of it that one node has; its LUs move to the null pool. The pool goes with
// its last part.
void vga_delete_vga_pool(vga_sys_pool* pool, bool redraw);
void vga_delete_vga_node_pool(vga_pool* pool, bool redraw);
// Takes an LU out of the pool it is in; move: to the null pool. node: the LU's.
void vga_remove_pool_lu(vga_lu03* lu, vga_node* node, bool move_to_null_pool);

void vga_delete_sna_net_node(vga_sna_net_node* node);

// Free the records of a node without a thought for its rows, which are gone already; for the end of
// the node.
void vga_release_connectivity(vga_node* node); // DLCs to dependent LUs, but for the LUs 6.2
void vga_release_lu62s(vga_node* node);        // with mode definitions and classes of service
void vga_release_remote(vga_node* node);       // with the directory
void vga_release_lu62_timeouts(vga_node* node);
void vga_release_primary_lines(vga_node* node);
void vga_release_tps(vga_node* node);
void vga_release_templates(vga_node* node);
void vga_release_security(vga_node* node);
void vga_release_tn3270(vga_node* node);
void vga_release_sessions(vga_node* node); // with the defaults of APPC over IP
