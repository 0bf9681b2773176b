// What the chains of start and stop verbs share; for the manage sources only.
#pragma once

#include "common/alloc.h"
#include "nof/connectivity.h"
#include "shell/exit_record.h"
#include "store/records.h"
#include "ui/framework/dialog.h"
#include "verbs/manage.h"
#include "verbs/status_util.h"

#include <algorithm>
#include <cstring>

// ---- answers ----

enum class VGA_OUTCOME : NB_BYTE {
    DONE,      // the resource is in the state that was asked for
    GONE,      // there is nothing to stop: it is inactive
    UNDER_WAY, // it is on its way to that state already
    STOPPING,  // refused: it is on its way down
    UNCHANGED, // nothing is to be learned from it
    FAILED,
};
enum class VGA_TELL : NB_BYTE { NOTHING, NAME, NAME_AND_OWNER, NAME_OWNER_ADAPTER, NAME_AND_CODES };

struct VGA_ANSWER_ROW { // what an answer means, and the message for it
    NB_USHORT opcode;
    NB_USHORT primary;
    NB_ULONG secondary;
    VGA_OUTCOME outcome;
    int message; // 0: none
    VGA_TELL tell;
    const char* help_tag;
};
// The one message that depends on more than the return codes: it is for starts from here.
inline constexpr int VGA_LS_START_CANCELLED = 915;
// The row of an answer, or of the copy of another operator's verb.
const VGA_ANSWER_ROW& vga_answer_row(const void* vcb);

struct VGA_SUBJECT { // what a message names
    vga_node* node;
    const char* name_kind; // "cs" or "es"
    int width;
    const void* name;
    const char* owner = nullptr; // the port of a link station, the DLC of a port: 8 characters
    NB_ULONG adapter = 0;
};
VGA_SUBJECT vga_subject(vga_node* node);
VGA_SUBJECT vga_subject(vga_dlc* dlc);
VGA_SUBJECT vga_subject(vga_port* port);
VGA_SUBJECT vga_subject(vga_ls* ls);
VGA_SUBJECT vga_subject(vga_pu* pu);
VGA_SUBJECT vga_subject(vga_lu62* lu);
VGA_SUBJECT vga_subject(vga_down_lu* lu);

// Shows the row's message, if it has one.
void vga_show_answer(const VGA_ANSWER_ROW& row, const void* vcb, const VGA_SUBJECT& subject);
// What the answer means; tells the operator about it.
VGA_OUTCOME vga_take_answer(const void* vcb, const VGA_SUBJECT& subject);

// ---- questions ----

// Where messages about a node go: its window, else the main window.
vga_dialog* vga_manage_parent(const vga_node* node);
// A confirmation about one resource.
void vga_ask(const VGA_SUBJECT& subject, int message, const char* help_tag,
             VGA_MODAL_CALLBACK callback, NB_HANDLE handle);
// Closes a confirmation and finds the record it was about; null unless the operator agreed and the
// record is still there.
template <typename Record>
Record* vga_confirmed(vga_dialog* dialog, NB_ULONG arg, NB_ULONG answer) {
    vga_close_confirm_dialog(dialog);
    return answer == VGA_ANSWER_YES ? static_cast<Record*>(nba_validate_handle(arg)) : nullptr;
}

// ---- verbs ----

// Sends a block filled by fill(block) to the node. False: exit code 1 is set.
template <typename Block, typename Fill>
bool vga_send(vga_node* node, NB_USHORT opcode, NB_ULONG corr, VGA_CALLBACK callback, Fill fill) {
    auto* vcb = vga_new_vcb<Block>(opcode);
    if (vcb != nullptr) {
        fill(*vcb);
        if (vga_queue_verb(node->node_handle, vcb, corr, callback)) {
            return true;
        }
        vga_free(vcb);
    }
    VGA_FATAL(VGA_EXIT_INTERNAL, 0);
    return false;
}

template <std::size_t N> void vga_copy_name(char (&to)[N], const char (&from)[N]) {
    std::memcpy(to, from, N);
}
template <std::size_t N> void vga_copy_name(NB_BYTE (&to)[N], const NB_BYTE (&from)[N]) {
    std::memcpy(to, from, N);
}

// ---- records ----

inline bool vga_is_other_operators(const void* vcb) {
    return vcb_header(vcb)->primary_rc == NAP_INDICATION;
}
// The node whose verb was answered, whether or not the record it was sent for still exists.
vga_node* vga_answering_node(const VGA_COMPLETION* completion);
// The record an answer is for: that of the correlator or, for another operator's verb, the one that
// the node has under a name; null when it has gone.
template <typename Record>
Record* vga_managed(const VGA_COMPLETION* completion, NTL_AVL_TREE vga_node::*tree,
                    const void* name) {
    void* record = nba_validate_handle(completion->corr);
    if (record == nullptr || !vga_is_other_operators(completion->vcb)) {
        return static_cast<Record*>(record);
    }
    return vga_status_find<Record>(static_cast<vga_node*>(record)->*tree, name);
}

inline bool vga_is_active(const vga_node* node) {
    return node->node_state == VGA_NODE_STATE_ACTIVE;
}
inline vga_node* vga_node_of_port(const vga_port* port) {
    return port->parent->parent;
}
void vga_set_port_state(vga_port* port, NB_BYTE state);    // with its row
void vga_set_ls_state(vga_ls* ls, NB_BYTE state);          // with its row
void vga_set_start_pending(vga_pu* pu, NB_USHORT pending); // with its row; pu may be null
void vga_set_activation_flags(vga_ls* ls);                 // as its definition says

// Sends what a port needs next, the start of the port last.
void vga_start_step(vga_port* port, VGA_CALLBACK callback, NB_ULONG corr);
// For a start that does not go on: a port that waits for it is inactive again.
void vga_end_port_start(vga_port* port);
// For a start whose record has gone: gives the answer to what the verb was for, and ends the wait
// of the ports that it was to bring up.
void vga_end_orphaned_start(const VGA_COMPLETION* completion);
// For a failed start of a port: a DLC that nothing needs is stopped.
inline void vga_release_dlc(vga_dlc* dlc) {
    vga_check_stop_dlc(dlc, vga_nodew_stop_dlc_cb, dlc->handle);
}
// Takes a stopped node's store to the picture of a stopped node.
void vga_clear_stopped_node(vga_node* node);
