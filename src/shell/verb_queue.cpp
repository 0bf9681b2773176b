#include "shell/verb_queue.h"

#include "shell/exit_record.h"
#include "shell/globals.h"

#include <Xm/Xm.h>

#include <algorithm>
#include <iterator>

NBA_QUEUE gvga_nof_queue;
NBA_QUEUE gvga_immediate_nof_queue;
NB_ULONG gvga_querybuf_size = 4096;
VGA_DISPATCH gvga_dispatch;

namespace {

enum ROUTE : NB_BYTE { NODE_STATUS, NODE_MANAGE, SYSTEM_CONFIG, SNA_NET, NODE_CONFIG };

struct ROUTE_ROW {
    NB_USHORT opcode;
    ROUTE route;
};

// Copies of other operators' verbs, in order of opcode.
constexpr ROUTE_ROW routes[] = {
    {NAP_DEFINE_DEFAULTS, NODE_CONFIG},
    {NAP_DEFINE_LOCAL_LU, NODE_CONFIG},
    {NAP_DEFINE_TP, NODE_CONFIG},
    {NAP_DELETE_TP, NODE_CONFIG},
    {NAP_DEFINE_PARTNER_LU, NODE_CONFIG},
    {NAP_DEFINE_MODE, NODE_CONFIG},
    {NAP_DELETE_PARTNER_LU, NODE_CONFIG},
    {NAP_DELETE_MODE, NODE_CONFIG},
    {NAP_DELETE_LOCAL_LU, NODE_CONFIG},
    {NAP_DEFINE_USERID_PASSWORD, NODE_CONFIG},
    {NAP_DELETE_USERID_PASSWORD, NODE_CONFIG},
    {NAP_DEFINE_LU_LU_PASSWORD, NODE_CONFIG},
    {NAP_DELETE_LU_LU_PASSWORD, NODE_CONFIG},
    {NAP_DEFINE_LU62_TIMEOUT, NODE_CONFIG},
    {NAP_DELETE_LU62_TIMEOUT, NODE_CONFIG},
    {NAP_START_DLC, NODE_MANAGE},
    {NAP_START_LS, NODE_MANAGE},
    {NAP_START_PORT, NODE_MANAGE},
    {NAP_STOP_DLC, NODE_MANAGE},
    {NAP_STOP_LS, NODE_MANAGE},
    {NAP_STOP_PORT, NODE_MANAGE},
    {NAP_DEFINE_CN, NODE_CONFIG},
    {NAP_DEFINE_DLC, NODE_CONFIG},
    {NAP_DEFINE_LS, NODE_CONFIG},
    {NAP_DEFINE_PORT, NODE_CONFIG},
    {NAP_DELETE_CN, NODE_CONFIG},
    {NAP_DELETE_DLC, NODE_CONFIG},
    {NAP_DELETE_LS, NODE_CONFIG},
    {NAP_DELETE_PORT, NODE_CONFIG},
    {NAP_DEFINE_LS_ROUTING, NODE_CONFIG},
    {NAP_DELETE_LS_ROUTING, NODE_CONFIG},
    {NAP_DEFINE_DIRECTORY_ENTRY, NODE_CONFIG},
    {NAP_DELETE_DIRECTORY_ENTRY, NODE_CONFIG},
    {NAP_DEFINE_COS, NODE_CONFIG},
    {NAP_DELETE_COS, NODE_CONFIG},
    {NAP_STOP_NODE, NODE_STATUS},
    {NAP_DEFINE_CPIC_SIDE_INFO, SYSTEM_CONFIG},
    {NAP_DELETE_CPIC_SIDE_INFO, SYSTEM_CONFIG},
    {NAP_DEFINE_ADJACENT_LEN_NODE, NODE_CONFIG},
    {NAP_DELETE_ADJACENT_LEN_NODE, NODE_CONFIG},
    {NAP_DEFINE_ADJACENT_NODE, NODE_CONFIG},
    {NAP_DELETE_ADJACENT_NODE, NODE_CONFIG},
    {NAP_DEFINE_LU_0_TO_3, NODE_CONFIG},
    {NAP_DEFINE_LU_0_TO_3_RANGE, NODE_CONFIG},
    {NAP_DELETE_LU_0_TO_3, NODE_CONFIG},
    {NAP_DELETE_LU_0_TO_3_RANGE, NODE_CONFIG},
    {NAP_DEFINE_LU_POOL, NODE_CONFIG},
    {NAP_DELETE_LU_POOL, NODE_CONFIG},
    {NAP_DEFINE_DOWNSTREAM_LU, NODE_CONFIG},
    {NAP_DEFINE_DOWNSTREAM_LU_RANGE, NODE_CONFIG},
    {NAP_DELETE_DOWNSTREAM_LU, NODE_CONFIG},
    {NAP_DELETE_DOWNSTREAM_LU_RANGE, NODE_CONFIG},
    {NAP_DEFINE_DSPU_TEMPLATE, NODE_CONFIG},
    {NAP_DELETE_DSPU_TEMPLATE, NODE_CONFIG},
    {NAP_DEFINE_INTERNAL_PU, NODE_CONFIG},
    {NAP_START_INTERNAL_PU, NODE_MANAGE},
    {NAP_STOP_INTERNAL_PU, NODE_MANAGE},
    {NAP_DELETE_INTERNAL_PU, NODE_CONFIG},
    {NAP_ADD_DLC_TRACE, NODE_CONFIG},
    {NAP_REMOVE_DLC_TRACE, NODE_CONFIG},
    {NAP_DEFINE_NODE, SYSTEM_CONFIG},
    {NAP_INIT_NODE, NODE_STATUS},
    {NAP_SET_CENTRAL_LOGGING, SYSTEM_CONFIG},
    {NAP_SET_GLOBAL_LOG_TYPE, SYSTEM_CONFIG},
    {NAP_SET_TRACE_TYPE, NODE_CONFIG},
    {NAP_DEFINE_EMULATOR_USER, SYSTEM_CONFIG},
    {NAP_DELETE_EMULATOR_USER, SYSTEM_CONFIG},
    {NAP_DEFINE_RJE_WKSTN, SYSTEM_CONFIG},
    {NAP_DELETE_RJE_WKSTN, SYSTEM_CONFIG},
    {NAP_DEFINE_EXTRA_DATA, NODE_CONFIG},
    {NAP_DELETE_EXTRA_DATA, NODE_CONFIG},
    {NAP_SET_CS_TRACE, NODE_CONFIG},
    {NAP_ADD_BACKUP, SYSTEM_CONFIG},
    {NAP_DELETE_BACKUP, SYSTEM_CONFIG},
    {NAP_SNA_NET_INDICATION, SNA_NET},
    {NAP_DEFINE_TN3270_EXPRESS_LOGON, NODE_CONFIG},
    {NAP_DEFINE_TN3270_ACCESS, NODE_CONFIG},
    {NAP_DELETE_TN3270_ACCESS, NODE_CONFIG},
    {NAP_SET_TN_SERVER_TRACE, NODE_CONFIG},
    {NAP_DEFINE_TN3270_ASSOCIATION, NODE_CONFIG},
    {NAP_DELETE_TN3270_ASSOCIATION, NODE_CONFIG},
    {NAP_DEFINE_TN3270_DEFAULTS, NODE_CONFIG},
    {NAP_DEFINE_TN3270_SSL_LDAP, NODE_CONFIG},
    {NAP_DEFINE_TN_REDIRECT, NODE_CONFIG},
    {NAP_DELETE_TN_REDIRECT, NODE_CONFIG},
    {NAP_SET_BCK_CS_TRACE, NODE_CONFIG},
    {NAP_DEFINE_PRIMARY_LINE, NODE_CONFIG},
    {NAP_DELETE_PRIMARY_LINE, NODE_CONFIG},
    {NAP_DEFINE_PRIMARY_LU0, NODE_CONFIG},
    {NAP_DELETE_PRIMARY_LU0, NODE_CONFIG},
    {NAP_DEFINE_SECURITY_ACCESS_LIST, NODE_CONFIG},
    {NAP_DELETE_SECURITY_ACCESS_LIST, NODE_CONFIG},
    {NAP_DEFINE_TP_LOAD_INFO, NODE_CONFIG},
    {NAP_DELETE_TP_LOAD_INFO, NODE_CONFIG},
    {NAP_DEFINE_TN3270_SLP, NODE_CONFIG},
    {NAP_SET_TN3270_SLP_TRACE, NODE_CONFIG},
    {NAP_DEFINE_IPBRIDGE_APPCIP_DEFAULTS, NODE_CONFIG},
    {NAP_DELETE_IPBRIDGE_APPCIP_DEFAULTS, NODE_CONFIG},
};
static_assert(std::ranges::is_sorted(routes, {}, &ROUTE_ROW::opcode));

bool is_link_lost(const VCB_HEADER& vcb) {
    return vcb.primary_rc == NAP_INDICATION && vcb.secondary_rc == NAP_LINK_LOST;
}

bool is_indication(NB_USHORT opcode) {
    return (opcode >= NAP_DIRECTORY_INDICATION && opcode <= 0x401B) ||
           opcode == NAP_NOF_STATUS_INDICATION || opcode == NAP_SERVER_INDICATION ||
           opcode == NAP_IPBRIDGE_INDICATION;
}

void call(void (*handler)(VGA_COMPLETION*, void*), VGA_COMPLETION& completion) {
    if (handler != nullptr) {
        handler(&completion, completion.vcb);
    }
}

void call(void (*handler)(VGA_COMPLETION*), VGA_COMPLETION& completion) {
    if (handler != nullptr) {
        handler(&completion);
    }
}

void dispatch_indication(VGA_COMPLETION& completion) {
    switch (vcb_header(completion.vcb)->opcode) {
    case NAP_NOF_STATUS_INDICATION:
        return call(gvga_dispatch.nof_status, completion);
    case NAP_SERVER_INDICATION:
        return call(gvga_dispatch.server, completion);
    default:
        return call(gvga_dispatch.indication, completion);
    }
}

void dispatch_copy(VGA_COMPLETION& completion) {
    const NB_USHORT opcode = vcb_header(completion.vcb)->opcode;
    const auto row = std::ranges::lower_bound(routes, opcode, {}, &ROUTE_ROW::opcode);
    if (row == std::end(routes) || row->opcode != opcode) {
        return;
    }
    switch (row->route) {
    case NODE_STATUS:
        return call(gvga_dispatch.node_status, completion);
    case NODE_MANAGE:
        return call(gvga_dispatch.node_manage, completion);
    case SYSTEM_CONFIG:
        return call(gvga_dispatch.system_config, completion);
    case SNA_NET:
        return call(gvga_dispatch.sna_net, completion);
    case NODE_CONFIG:
        return call(gvga_dispatch.node_config, completion);
    }
}

void dispatch_purged(VGA_COMPLETION completion) {
    if (vcb_header(completion.vcb)->primary_rc == NAP_OK && gvga_dispatch.owner != nullptr) {
        completion.corr = gvga_dispatch.owner(&completion);
        if (completion.corr != 0) {
            dispatch_copy(completion);
        }
    }
}

VGA_QUEUE_ENTRY* first_entry(const NBA_QUEUE& queue) {
    return static_cast<VGA_QUEUE_ENTRY*>(nba_get_q_head(&queue));
}

VGA_QUEUE_ENTRY* next_entry(const VGA_QUEUE_ENTRY* entry) {
    return static_cast<VGA_QUEUE_ENTRY*>(entry->link.next->owner);
}

VGA_QUEUE_ENTRY* find_entry(const NBA_QUEUE& queue, const void* vcb) {
    VGA_QUEUE_ENTRY* entry = first_entry(queue);
    while (entry != nullptr && entry->vcb != vcb) {
        entry = next_entry(entry);
    }
    return entry;
}

// Verbs without a callback in the queues, so that the usual case needs no search.
std::size_t barriers;

// A barrier: a purged verb of this target that has not completed.
bool has_barrier(NB_HANDLE target) {
    if (barriers == 0) {
        return false;
    }
    for (auto* entry = first_entry(gvga_nof_queue); entry != nullptr; entry = next_entry(entry)) {
        if (entry->target == target && entry->callback == nullptr) {
            return true;
        }
    }
    return false;
}

// True when the library completed the verb during the call.
bool issue(VGA_QUEUE_ENTRY* entry) {
    entry->issued = 1;
    return nof_async_version(NOF_API_LEVEL, entry->target, entry->vcb, vga_nof_verb_callback,
                             entry->corr) == NOF_COMPLETED;
}

// Issues what waited for the last barrier of a target. A verb that completes at once is processed
// before the next one goes out; its callback may have changed the queue, so the walk starts again,
// and stops at a barrier it has made.
void issue_waiting(NB_HANDLE target) {
    VGA_QUEUE_ENTRY* entry = has_barrier(target) ? nullptr : first_entry(gvga_nof_queue);
    while (entry != nullptr) {
        if (entry->target == target && entry->issued == 0 && issue(entry)) {
            vga_nof_verb_callback(target, entry->vcb, entry->corr, 0);
            entry = has_barrier(target) ? nullptr : first_entry(gvga_nof_queue);
        } else {
            entry = next_entry(entry);
        }
    }
}

void free_entry(VGA_QUEUE_ENTRY* entry) {
    nba_remove_from_q(&entry->link);
    barriers -= entry->callback == nullptr;
    vga_free_vcb(entry->vcb);
    vga_free(entry);
}

bool matches(const VGA_QUEUE_ENTRY& entry, NB_HANDLE target, NB_USHORT opcode, const void* vcb,
             NB_ULONG corr, VGA_CALLBACK callback) {
    return (target == 0 || entry.target == target) &&
           (opcode == 0 || vcb_header(entry.vcb)->opcode == opcode) &&
           (vcb == nullptr || entry.vcb == vcb) && (corr == 0 || entry.corr == corr) &&
           (callback == nullptr || entry.callback == callback);
}

// Windows that wait to be repainted are brought up to date before an answer changes the store.
// Asking the server or the connection for events would cost a call per answer, so this looks only
// at what the event loop has read.
void flush_exposures() {
    if (gvga_display != nullptr && XQLength(gvga_display) > 0) {
        XmUpdateDisplay(gvga_toplevel);
    }
}

} // namespace

void vga_init_verb_queues() {
    nba_init_q(&gvga_nof_queue);
    nba_init_q(&gvga_immediate_nof_queue);
}

bool vga_queue_verb(NB_HANDLE target, void* vcb, NB_ULONG corr, VGA_CALLBACK callback) {
    auto* entry = vga_new<VGA_QUEUE_ENTRY>();
    if (entry == nullptr) {
        return false;
    }
    entry->target = target;
    entry->vcb = vcb;
    entry->corr = corr;
    entry->callback = callback;
    barriers += callback == nullptr;
    nba_add_to_q_tail(&gvga_nof_queue, &entry->link, entry);
    if (vcb_header(vcb)->opcode != NAP_DISCONNECT_NODE && has_barrier(target)) {
        return true;
    }
    if (issue(entry)) {
        nba_remove_from_q(&entry->link);
        nba_add_to_q_tail(&gvga_immediate_nof_queue, &entry->link, entry);
        XtAppAddTimeOut(gvga_appcontext, 0, vga_null_timeout_proc, nullptr);
    }
    return true;
}

void vga_nof_verb_callback(NB_HANDLE handle, void* vcb, NB_ULONG correlator, int) {
    flush_exposures();
    const VCB_HEADER& header = *vcb_header(vcb);
    VGA_COMPLETION completion{handle, vcb, correlator};
    const bool indication = is_indication(header.opcode);
    if (indication || header.primary_rc == NAP_INDICATION) {
        if (is_link_lost(header)) {
            VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        } else if (indication) {
            dispatch_indication(completion);
        } else {
            dispatch_copy(completion);
        }
        return;
    }

    VGA_QUEUE_ENTRY* entry = find_entry(gvga_nof_queue, vcb);
    if (entry == nullptr) {
        entry = find_entry(gvga_immediate_nof_queue, vcb);
    }
    if (entry == nullptr) {
        VGA_ASSERT(FALSE);
        return;
    }
    VGA_ASSERT_TEXT(entry->issued, "queue_entry->issued");
    nba_remove_from_q(&entry->link);
    completion.corr = entry->corr;
    if (entry->callback == nullptr) {
        --barriers;
        dispatch_purged(completion);
        issue_waiting(entry->target);
    } else if (header.primary_rc != NAP_UNSUCCESSFUL ||
               header.secondary_rc != NAP_SYSTEM_STOPPING) {
        entry->callback(&completion);
    }
    vga_free_vcb(vcb);
    vga_free(entry);
}

void vga_purge_verb_queue(NB_HANDLE target, NB_USHORT opcode, const void* vcb, NB_ULONG corr,
                          VGA_CALLBACK callback) {
    VGA_QUEUE_ENTRY* next;
    for (auto* entry = first_entry(gvga_nof_queue); entry != nullptr; entry = next) {
        next = next_entry(entry);
        if (!matches(*entry, target, opcode, vcb, corr, callback)) {
            continue;
        }
        if (entry->issued != 0) {
            barriers += entry->callback != nullptr;
            entry->callback = nullptr;
        } else {
            free_entry(entry);
        }
    }
}

void vga_free_verb_queues() {
    for (const NBA_QUEUE* queue : {&gvga_nof_queue, &gvga_immediate_nof_queue}) {
        while (auto* entry = first_entry(*queue)) {
            free_entry(entry);
        }
    }
}

void* vga_get_querybuf(NB_ULONG size) {
    return vga_alloc(size != 0 ? size : gvga_querybuf_size);
}

void vga_free_querybuf(void* vcb) {
    const VCB_HEADER& header = *vcb_header(vcb);
    const NBA_VERB_ROW* verbtab = vnv_verb_search(header.opcode, header.format, 0);
    if (!VGA_ASSERT(verbtab != NULL) || (verbtab->flags & NBA_VERB_HAS_BUFFER) == 0) {
        return;
    }
    auto& query = *static_cast<LIST_QUERY*>(vcb);
    vga_free(query.buffer);
    query.buffer = nullptr;
}

void vga_free_vcb(void* vcb) {
    vga_free_querybuf(vcb);
    vga_free_wiped(vcb);
}

void vga_null_timeout_proc(XtPointer, XtIntervalId*) {}
