// Configuration: what a define, delete or settings verb means for the store, whoever sent it. The
// completion of an own verb and the copy of another operator's verb take the same road: the same
// block goes to the same processor. Also the issuers of the delete verbs.
//
// A processor gets the completion and the record that owns the collection. The block's opcode must
// be that of its verb, and its primary return code NAP_OK or NAP_INDICATION; anything else breaks
// an invariant and is processed all the same. A define makes the record and places it, or merges it
// into the record of that key, which keeps its state, rows and open dialogs; *record, when asked
// for, becomes the record that now stands for the key, or null. A delete takes out the record and
// all that depends on it. A name that the store does not know is logged, unless the build or a
// check lists that kind just now, and otherwise ignored. Without memory exit code 1 is set.
#pragma once

#include "shell/verb_queue.h"
#include "store/pool_records.h"
#include "store/records.h"
#include "store/user_records.h"

#include <span>

// Makes the verb queue send configuration indications here.
void vga_install_config_handlers();

// Configuration of a node, or of the domain, that somebody else changed. The correlator is the
// handle of the node or of the system; the indication for one that has gone is dropped.
void vga_process_node_config_ind(VGA_COMPLETION* completion);
void vga_process_system_config_ind(VGA_COMPLETION* completion);

// ---- connectivity ----

void vga_process_def_dlc(VGA_COMPLETION* completion, vga_node* node, vga_dlc** record = nullptr);
void vga_process_del_dlc(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_port(VGA_COMPLETION* completion, vga_node* node, vga_port** record = nullptr);
void vga_process_del_port(VGA_COMPLETION* completion, vga_node* node);
// With the PU that the link station carries; one that it no longer carries goes.
void vga_process_def_ls(VGA_COMPLETION* completion, vga_node* node, vga_ls** record = nullptr);
void vga_process_del_ls(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_pu(VGA_COMPLETION* completion, vga_node* node, vga_pu** record = nullptr);
void vga_process_del_internal_pu(VGA_COMPLETION* completion, vga_node* node);
// A delete that lists ports takes these out of the network, which stays.
void vga_process_def_cn(VGA_COMPLETION* completion, vga_node* node, vga_cn** record = nullptr);
void vga_process_del_cn(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_dspu_template(VGA_COMPLETION* completion, vga_node* node,
                                   vga_dspu_template** record = nullptr);
void vga_process_del_dspu_template(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_primary_line(VGA_COMPLETION* completion, vga_node* node,
                                  vga_primary_line** record = nullptr);
void vga_process_del_primary_line(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_primary_lu0(VGA_COMPLETION* completion, vga_node* node,
                                 vga_primary_lu0** record = nullptr);
void vga_process_del_primary_lu0(VGA_COMPLETION* completion, vga_node* node);

// ---- LUs ----

void vga_process_def_lu03(VGA_COMPLETION* completion, vga_node* node, vga_lu03** record = nullptr);
void vga_process_del_lu03(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_down_lu(VGA_COMPLETION* completion, vga_node* node,
                             vga_down_lu** record = nullptr);
void vga_process_del_down_lu(VGA_COMPLETION* completion, vga_node* node);
// One LU per NAU address of a range. *record: the last one.
void vga_process_def_lu03_range(VGA_COMPLETION* completion, vga_node* node,
                                vga_lu03** record = nullptr);
void vga_process_del_lu03_range(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_down_lu_range(VGA_COMPLETION* completion, vga_node* node,
                                   vga_down_lu** record = nullptr);
void vga_process_del_down_lu_range(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_extra_data(VGA_COMPLETION* completion, vga_node* node);
void vga_process_del_extra_data(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_lu_pool(VGA_COMPLETION* completion, vga_node* node,
                             vga_sys_pool** record = nullptr);
void vga_process_del_lu_pool(VGA_COMPLETION* completion, vga_node* node);

void vga_process_def_lu62(VGA_COMPLETION* completion, vga_node* node, vga_lu62** record = nullptr);
void vga_process_del_lu62(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_mode(VGA_COMPLETION* completion, vga_node* node,
                          vga_mode_def** record = nullptr);
void vga_process_del_mode(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_cos(VGA_COMPLETION* completion, vga_node* node, vga_cos** record = nullptr);
void vga_process_del_cos(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_lu62_timeout(VGA_COMPLETION* completion, vga_node* node,
                                  vga_lu62_timeout** record = nullptr);
void vga_process_del_lu62_timeout(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_ls_routing(VGA_COMPLETION* completion, vga_node* node,
                                vga_ls_routing** record = nullptr);
void vga_process_del_ls_routing(VGA_COMPLETION* completion, vga_node* node);

// ---- remote systems ----

void vga_process_def_plu(VGA_COMPLETION* completion, vga_node* node,
                         vga_rem_plu** record = nullptr);
void vga_process_del_plu(VGA_COMPLETION* completion, vga_node* node);
// What the entry made: a remote system for a control point, a partner LU for any other type.
void vga_process_def_dir(VGA_COMPLETION* completion, vga_node* node, vga_rem_sys** system = nullptr,
                         vga_rem_plu** partner = nullptr);
void vga_process_del_dir(VGA_COMPLETION* completion, vga_node* node);
// These come from others only.
void vga_process_def_adj_node(VGA_COMPLETION* completion, vga_node* node,
                              vga_rem_sys** record = nullptr);
void vga_process_del_adj_node(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_adj_len_node(VGA_COMPLETION* completion, vga_node* node,
                                  vga_rem_sys** record = nullptr);
void vga_process_del_adj_len_node(VGA_COMPLETION* completion, vga_node* node);

// ---- transaction programs and security ----

void vga_process_def_tp(VGA_COMPLETION* completion, vga_node* node, vga_tp_def** record = nullptr);
void vga_process_del_tp(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_tp_load_info(VGA_COMPLETION* completion, vga_node* node,
                                  vga_tp_load_info** record = nullptr);
void vga_process_del_tp_load_info(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_userid_password(VGA_COMPLETION* completion, vga_node* node,
                                     vga_userid_password** record = nullptr);
void vga_process_del_userid_password(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_lu_lu_password(VGA_COMPLETION* completion, vga_node* node,
                                    vga_lu_lu_password** record = nullptr);
void vga_process_del_lu_lu_password(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_security_access_list(VGA_COMPLETION* completion, vga_node* node,
                                          vga_security_access_list** record = nullptr);
void vga_process_del_security_access_list(VGA_COMPLETION* completion, vga_node* node);

// ---- TN server, APPC over IP ----

// *record: the last session of the block.
void vga_process_def_tn_access(VGA_COMPLETION* completion, vga_node* node,
                               vga_tn_sess** record = nullptr);
// *next: the session to select now, behind what went; or null.
void vga_process_del_tn_access(VGA_COMPLETION* completion, vga_node* node,
                               vga_tn_sess** next = nullptr);
void vga_process_def_tn_assoc(VGA_COMPLETION* completion, vga_node* node,
                              vga_tn_assoc** record = nullptr);
void vga_process_del_tn_assoc(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_tn_redirect(VGA_COMPLETION* completion, vga_node* node,
                                 vga_tn_redirect** record = nullptr);
void vga_process_del_tn_redirect(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_tn_defaults(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_tn_exl(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_tn_ssl_ldap(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_tn_slp(VGA_COMPLETION* completion, vga_node* node);
void vga_process_def_ipbridge_appcip_defaults(VGA_COMPLETION* completion, vga_node* node);
void vga_process_del_ipbridge_appcip_defaults(VGA_COMPLETION* completion, vga_node* node);

// ---- the node ----

// The node is the one whose handle is the correlator, else the one that the block names. Its CP LU
// is made anew: fetch node->cp_lu again afterwards.
void vga_process_def_node(VGA_COMPLETION* completion);
void vga_process_def_defaults(VGA_COMPLETION* completion, vga_node* node);

// ---- the domain ----

void vga_process_def_cpic(VGA_COMPLETION* completion, vga_system* system,
                          vga_cpic** record = nullptr);
void vga_process_del_cpic(VGA_COMPLETION* completion, vga_system* system);
void vga_process_def_user(VGA_COMPLETION* completion, vga_system* system,
                          vga_user** record = nullptr);
// The same; *session: the one that the block names first.
void vga_process_def_user_session(VGA_COMPLETION* completion, vga_system* system,
                                  vga_user_sess** session);
// *next: the session to select now, behind the last one that went; or null.
void vga_process_del_user(VGA_COMPLETION* completion, vga_system* system,
                          vga_user_sess** next = nullptr);
void vga_process_def_rje_wkstn(VGA_COMPLETION* completion, vga_system* system,
                               vga_rje_wkstn** record = nullptr);
void vga_process_del_rje_wkstn(VGA_COMPLETION* completion, vga_system* system);
void vga_process_add_backup(VGA_COMPLETION* completion, vga_system* system);
void vga_process_delete_backup(VGA_COMPLETION* completion, vga_system* system);

// ---- traces and logs ----

void vga_process_set_trace_type(VGA_COMPLETION* completion, vga_node* node);
void vga_process_set_cs_trace(VGA_COMPLETION* completion, vga_node* node);
void vga_process_set_back_cs_trace(VGA_COMPLETION* completion, vga_node* node);
void vga_process_set_tns_trace(VGA_COMPLETION* completion, vga_node* node);
void vga_process_set_tn3270_slp_trace(VGA_COMPLETION* completion, vga_node* node);
void vga_process_add_dlc_trace(VGA_COMPLETION* completion, vga_node* node);
void vga_process_remove_dlc_trace(VGA_COMPLETION* completion, vga_node* node);
// Only from the central logger's connection.
void vga_process_set_central_logging(VGA_COMPLETION* completion, vga_system* system);
void vga_process_set_global_log_type(VGA_COMPLETION* completion, vga_system* system);

// ---- delete verbs ----
//
// Sends the delete of a record to the connection that has it: the node, its TP load-information
// file, or the domain's configuration file. corr and callback are the completion's. False: without
// memory, or the verb could not be queued; the caller reports it.

bool vga_issue_del_dlc(vga_dlc* dlc, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_port(vga_port* port, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_ls(vga_ls* ls, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_cn(vga_cn* cn, NB_ULONG corr, VGA_CALLBACK callback); // the whole network
bool vga_issue_del_internal_pu(vga_pu* pu, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_lu62(vga_lu62* lu, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_lu03(vga_lu03* lu, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_down_lu(vga_down_lu* lu, NB_ULONG corr, VGA_CALLBACK callback);
// Without memory exit code 1 is set as well.
bool vga_issue_del_dspu_template(vga_dspu_template* dspu_template, NB_ULONG corr,
                                 VGA_CALLBACK callback);
// The LUs, at most NOF_POOL_LUS, that leave the part of a pool that one node has; none: all of it.
bool vga_issue_del_lu_pool(vga_pool* pool, std::span<vga_lu03* const> lus, NB_ULONG corr,
                           VGA_CALLBACK callback);
bool vga_issue_del_mode(vga_mode_def* mode, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_plu(vga_rem_plu* plu, NB_ULONG corr, VGA_CALLBACK callback);
// The directory entry of a remote system or partner LU: its name (17 bytes) and type.
bool vga_issue_del_dir(vga_node* node, const NB_BYTE* fq_name, NB_USHORT resource_type,
                       NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_ls_routing(vga_ls_routing* routing, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_lu62_timeout(vga_lu62_timeout* timeout, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_tp_def(vga_tp_def* tp, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_tp_load_info(vga_tp_load_info* tp, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_userid_password(vga_userid_password* userid, NB_ULONG corr,
                                   VGA_CALLBACK callback);
bool vga_issue_del_lu_lu_password(vga_lu_lu_password* password, NB_ULONG corr,
                                  VGA_CALLBACK callback);
bool vga_issue_del_security_access_list(vga_security_access_list* list, NB_ULONG corr,
                                        VGA_CALLBACK callback);
// session null: the client with all its sessions.
bool vga_issue_del_tn_access(vga_tn_client* client, vga_tn_sess* session, NB_ULONG corr,
                             VGA_CALLBACK callback);
bool vga_issue_del_tn_assoc(vga_tn_assoc* assoc, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_tn_redirect(vga_tn_redirect* redirect, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_primary_line(vga_primary_line* line, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_primary_lu0(vga_primary_lu0* lu, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_extra_data(vga_lu03* lu, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_ipbridge_appcip_defaults(vga_node* node, NB_ULONG corr, VGA_CALLBACK callback);
bool vga_issue_del_cpic(vga_cpic* cpic, NB_ULONG corr, VGA_CALLBACK callback);
// session null: the user with all its sessions.
bool vga_issue_del_user(vga_user* user, vga_user_sess* session, NB_ULONG corr,
                        VGA_CALLBACK callback);
bool vga_issue_del_rje_wkstn(vga_rje_wkstn* wkstn, NB_ULONG corr, VGA_CALLBACK callback);
