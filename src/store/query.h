// Rows of the list queries; for this folder only.
#pragma once

#include "store/build.h"

// Whose list it is, and so the target. tp_load: a node's TP load-information file.
enum class vga_owner : NB_BYTE { node, pu, lu62, cn, config_file, sna_net, domain, tp_load };

// What the entries of one page have in common while they are processed.
struct vga_page_context {
    void* owner;
    const void* block;
    bool first = true;         // no entry of the page was processed yet
    vga_rem_sys* rem_sys = {}; // of the directory entry before
    vga_dir* network_node = {};
    vga_dir* end_node = {};
    bool no_directory = false; // the page finds no place to continue the directory at
    vga_plu* plu = {};         // of the mode entry before
    vga_cos* cos = {};         // of the row entry before
    void* record = {};         // what stands for the last entry; null when it was skipped
};
// False: exit code 1 is set.
using vga_entry_handler = bool (*)(vga_page_context& context, const void* entry);

struct vga_piece { // bytes that an entry and a query block share
    NB_USHORT block = 0;
    NB_USHORT entry = 0;
    NB_USHORT length = 0;
};
// The last item of the list inside an entry also belongs to the key.
struct vga_nested_piece {
    NB_USHORT fixed = 0; // where the items begin; each begins with its length
    NB_USHORT item = 0;  // offset in the item
    NB_USHORT block = 0;
    NB_USHORT length = 0;
};

struct vga_query_row {
    VGA_QUERY query;
    NB_USHORT opcode;
    NB_USHORT block_size;
    NB_BYTE level;
    NB_USHORT failure;    // subcode of its failure
    NB_USHORT entry_size; // least length of an entry
    vga_owner owner;      // the names of PUs, LUs and connection networks stand at offset 38
    vga_piece key;
    vga_entry_handler handler;
    vga_piece key2 = {};
    vga_nested_piece nested = {};
    NB_USHORT exact_size = 0;    // buffer for one entry, 0: as for a list
    NB_USHORT resource_kind = 0; // extra data: of which kind
};
const vga_query_row& vga_query_row_of(VGA_QUERY query);

vga_node* vga_node_of(vga_owner kind, void* owner); // null for those of the system
NB_HANDLE vga_handle_of(vga_owner kind, void* owner);

// Logs a failed verb of the build and sets exit code 164.
void vga_build_failure(int subcode, const void* vcb);
// True when the verb's target, node or file, has gone.
bool vga_target_gone(const void* vcb);

// The build's own verbs besides the queries; a failure to issue sets exit code 1.
void vga_build_query(VGA_QUERY query, void* owner, const void* last, VGA_CALLBACK callback);
void vga_build_register(NB_HANDLE target, NB_USHORT indication, NB_ULONG corr,
                        VGA_CALLBACK callback);
void vga_build_open_file(NOF_FILE_ROLE role, NB_HANDLE target, NB_ULONG corr,
                         VGA_CALLBACK callback);
void vga_build_set_mode(NB_HANDLE target, NB_ULONG corr, VGA_CALLBACK callback);
// What both ends of the processing-mode and registration verbs share. False: exit code 164 is set.
bool vga_mode_was_set(const void* vcb);
bool vga_sink_was_registered(const void* vcb);

// Queries of one reply that the node keeps. Issuing sets exit code 1 on failure.
void vga_build_single(NB_USHORT opcode, vga_node* node, VGA_CALLBACK callback);
// False: not such a query. True: the reply was kept and its flag cleared, or exit code 164 is set.
bool vga_process_single(vga_node* node, const void* vcb);

// Queries central logging from the node that runs the central logger.
void vga_build_central_logging();

// Frees a node in the middle of its build. gone: no verbs are sent to it.
void vga_build_lost_node(vga_node* node, bool gone = true);

bool vga_process_dlc_trace(vga_page_context& context, const void* entry);
bool vga_entry_dlc(vga_page_context& context, const void* entry);
bool vga_entry_port(vga_page_context& context, const void* entry);
bool vga_entry_cn(vga_page_context& context, const void* entry);
bool vga_entry_cn_port(vga_page_context& context, const void* entry);
bool vga_entry_ls(vga_page_context& context, const void* entry);
bool vga_entry_local_pu(vga_page_context& context, const void* entry);
bool vga_entry_down_pu(vga_page_context& context, const void* entry);
bool vga_entry_lu03(vga_page_context& context, const void* entry);
bool vga_entry_down_lu(vga_page_context& context, const void* entry);
bool vga_entry_extra_data(vga_page_context& context, const void* entry);
bool vga_entry_lu62(vga_page_context& context, const void* entry);
bool vga_entry_plu(vga_page_context& context, const void* entry);
bool vga_entry_mode(vga_page_context& context, const void* entry);
bool vga_entry_mode_def(vga_page_context& context, const void* entry);
bool vga_entry_dir(vga_page_context& context, const void* entry);
bool vga_entry_plu_def(vga_page_context& context, const void* entry);
bool vga_entry_cos(vga_page_context& context, const void* entry);
bool vga_entry_cos_node_row(vga_page_context& context, const void* entry);
bool vga_entry_cos_tg_row(vga_page_context& context, const void* entry);
bool vga_entry_lu62_timeout(vga_page_context& context, const void* entry);
bool vga_entry_ls_routing(vga_page_context& context, const void* entry);
bool vga_entry_lu_lu_password(vga_page_context& context, const void* entry);
bool vga_entry_primary_line(vga_page_context& context, const void* entry);
bool vga_entry_primary_lu0(vga_page_context& context, const void* entry);
bool vga_entry_tp_def(vga_page_context& context, const void* entry);
bool vga_entry_tp_load_info(vga_page_context& context, const void* entry);
bool vga_entry_dspu_template(vga_page_context& context, const void* entry);
bool vga_entry_userid_password(vga_page_context& context, const void* entry);
bool vga_entry_security_access_list(vga_page_context& context, const void* entry);
bool vga_entry_tn_client(vga_page_context& context, const void* entry);
bool vga_entry_tn_assoc(vga_page_context& context, const void* entry);
bool vga_entry_tn_redirect(vga_page_context& context, const void* entry);
bool vga_entry_appcip_sess(vga_page_context& context, const void* entry);
bool vga_entry_rtp_conn(vga_page_context& context, const void* entry);
bool vga_entry_pool(vga_page_context& context, const void* entry);
bool vga_entry_user(vga_page_context& context, const void* entry);
bool vga_entry_cpic(vga_page_context& context, const void* entry);
bool vga_entry_rje_wkstn(vga_page_context& context, const void* entry);
bool vga_entry_node(vga_page_context& context, const void* entry);
bool vga_entry_sna_net(vga_page_context& context, const void* entry);

// Hands over the items behind the fixed part of an entry, at most count, each of which begins with
// its length. False as soon as take is.
template <typename Item, typename Entry, typename Take>
bool vga_each_item(const Entry* entry, NB_ULONG count, Take take) {
    const auto* bytes = reinterpret_cast<const NB_BYTE*>(entry);
    for (std::size_t at = sizeof(Entry); count > 0 && at + sizeof(Item) <= entry->length; --count) {
        const auto* item = reinterpret_cast<const Item*>(bytes + at);
        if (item->length < sizeof(Item)) {
            break;
        }
        if (!take(item)) {
            return false;
        }
        at += item->length;
    }
    return true;
}
