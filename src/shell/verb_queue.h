// The record of verbs sent and not yet completed, and the one routine through which every answer
// comes back.
#pragma once

#include "common/alloc.h"
#include "nof/nof.h"
#include "nof/vcb.h"

// What every callback and indication handler receives; lives for the call only.
struct VGA_COMPLETION {
    NB_HANDLE handle; // the target the library reports
    void* vcb; // owned by the queue or, for indications, by the library; callbacks never free it
    NB_ULONG corr;
};
using VGA_CALLBACK = void (*)(VGA_COMPLETION* completion);

struct VGA_QUEUE_ENTRY {
    NBA_QUEUE link;
    NB_USHORT issued; // handed to the library
    NB_HANDLE target;
    void* vcb;
    NB_ULONG corr;         // what the callback gets; as the callback, it may be changed until then
    VGA_CALLBACK callback; // null: purged while outstanding; later verbs of the target wait for it
};

extern NBA_QUEUE gvga_nof_queue; // every entry until its completion is processed
extern NBA_QUEUE
    gvga_immediate_nof_queue; // completed during submission, for the main loop to process
extern NB_ULONG gvga_querybuf_size;

// The first entry of the two queues that a test holds for, or null.
template <typename Test> VGA_QUEUE_ENTRY* vga_find_verb(Test test) {
    for (const NBA_QUEUE* queue : {&gvga_nof_queue, &gvga_immediate_nof_queue}) {
        for (const NBA_QUEUE* link = queue->next; link != queue; link = link->next) {
            if (auto* entry = static_cast<VGA_QUEUE_ENTRY*>(link->owner); test(*entry)) {
                return entry;
            }
        }
    }
    return nullptr;
}

void vga_init_verb_queues();

// Sends a verb, or lets it wait behind a purged verb of its target. True: the queue owns the block.
// False (no memory): the block and its buffer still belong to the caller.
bool vga_queue_verb(NB_HANDLE target, void* vcb, NB_ULONG corr, VGA_CALLBACK callback);
// The library's completion routine; the main loop calls it for the immediate queue.
void vga_nof_verb_callback(NB_HANDLE handle, void* vcb, NB_ULONG correlator, int reserved);
// Forgets the verbs that match every non-zero criterion. The immediate queue is left alone.
void vga_purge_verb_queue(NB_HANDLE target, NB_USHORT opcode, const void* vcb, NB_ULONG corr,
                          VGA_CALLBACK callback);
// At the end of the run: frees every entry of both queues without running callbacks.
void vga_free_verb_queues();

// A zeroed query buffer of size bytes, or of gvga_querybuf_size bytes for 0; null when there is no
// memory.
void* vga_get_querybuf(NB_ULONG size);
// Frees a block's data buffer when its verb has one.
void vga_free_querybuf(void* vcb);
// Frees a block that was never queued, with its buffer. Blocks that carry passwords are wiped
// first.
void vga_free_vcb(void* vcb);

// A zeroed block with its opcode set, or null.
template <typename T> T* vga_new_vcb(NB_USHORT opcode, std::size_t size = sizeof(T)) {
    T* block = static_cast<T*>(vga_alloc(size));
    if (block != nullptr) {
        reinterpret_cast<VCB_HEADER*>(block)->opcode = opcode;
    }
    return block;
}

void vga_null_timeout_proc(XtPointer client_data, XtIntervalId* id);

// Where the dispatcher sends what is not the completion of an own verb: the folders that own the
// handlers fill it at start-up, so that the queue knows none of them. A block without a handler is
// dropped.
struct VGA_DISPATCH {
    void (*indication)(VGA_COMPLETION*, void*);  // 0x4002 to 0x401B, 0xFC12
    void (*nof_status)(VGA_COMPLETION*, void*);  // 0xF019
    void (*server)(VGA_COMPLETION*, void*);      // 0xF01A
    void (*sna_net)(VGA_COMPLETION*, void*);     // 0xF077
    void (*node_status)(VGA_COMPLETION*, void*); // NAP_INIT_NODE, NAP_STOP_NODE of others
    void (*node_manage)(VGA_COMPLETION*);        // other starts and stops of others
    void (*system_config)(VGA_COMPLETION*);      // domain configuration of others
    void (*node_config)(VGA_COMPLETION*);        // node configuration of others
    // The handle of the node or system that a completed verb is about, 0 when it has gone. Nobody
    // waits for a purged verb, but the store needs it: what succeeded goes the way of other
    // operators' verbs, with this correlator.
    NB_ULONG (*owner)(const VGA_COMPLETION*) = nullptr;
};
extern VGA_DISPATCH gvga_dispatch;
