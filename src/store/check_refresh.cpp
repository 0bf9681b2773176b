// Checks that compare the states of a node's DLCs, ports, link stations, PUs and local LUs with its
// lists.
#include "store/checks.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

struct Bytes { // of an entry
    NB_USHORT offset = 0;
    NB_USHORT length = 0;
};

struct Refresh {
    VGA_CHECK_KIND kind;
    VGA_QUERY query;
    NB_BYTE level;
    VGA_CALLBACK callback;
    NTL_AVL_TREE vga_node::*tree;
    void* (*entry_of)(void* record);
    void (*changed)(void* record); // redraws its row; null: it has none
    Bytes status[2];
};

template <typename T> void* own_entry(void* record) {
    return &static_cast<T*>(record)->vcb;
}
template <typename T> void* entry_block(void* record) {
    return static_cast<T*>(record)->vcb;
}

void port_changed(void* record) {
    auto* port = static_cast<vga_port*>(record);
    vga_update_state_row(&port->parent->parent->links_root, &port->viewer);
}
void ls_changed(void* record) {
    auto* ls = static_cast<vga_ls*>(record);
    vga_update_state_row(&ls->parent->parent->parent->links_root, &ls->viewer);
}
void pu_changed(void* record) {
    auto* pu = static_cast<vga_pu*>(record);
    pu->start_pending = 0; // the indication that ended the start was lost
    if (vga_viewer* row = vga_pu_viewer(pu); row != nullptr) {
        vga_update_state_row(&pu->parent->links_root, row);
    }
}
void lu62_changed(void* record) {
    vga_count_lu62_sessions(static_cast<vga_lu62*>(record), 0);
}

constexpr Bytes pu_state = {offsetof(PU_ENTRY, state), 1};
constexpr NB_USHORT dlur_begin = offsetof(PU_ENTRY, dlur_parameter1);
constexpr Bytes dlur_state = {dlur_begin, offsetof(PU_ENTRY, dlur_status) + 1 - dlur_begin};

// clang-format off
constexpr Refresh refreshes[] = {
    {VGA_CHECK_DLC, VGA_QUERY_DLC, NAP_LEVEL_SUMMARY, vga_check_dlc, &vga_node::dlc_tree,
     entry_block<vga_dlc>, nullptr, {{offsetof(DLC_ENTRY, state), 1}}},
    {VGA_CHECK_PORT, VGA_QUERY_PORT, NAP_LEVEL_DETAIL, vga_check_port, &vga_node::port_tree,
     entry_block<vga_port>, port_changed, {{offsetof(PORT_ENTRY, state), 1}}},
    {VGA_CHECK_LS, VGA_QUERY_LS, NAP_LEVEL_SUMMARY, vga_check_ls, &vga_node::ls_tree,
     entry_block<vga_ls>, ls_changed, {{offsetof(LS_ENTRY, det), sizeof(LS_DETAIL)}}},
    {VGA_CHECK_PU, VGA_QUERY_PU, NAP_LEVEL_DETAIL, vga_check_pu, &vga_node::local_pu_tree,
     own_entry<vga_pu>, pu_changed, {pu_state}},
    {VGA_CHECK_DLUR_PU, VGA_QUERY_DLUR_PU, NAP_LEVEL_DETAIL, vga_check_dlur_pu,
     &vga_node::local_pu_tree, own_entry<vga_pu>, pu_changed, {pu_state, dlur_state}},
    {VGA_CHECK_DOWN_PU, VGA_QUERY_DOWN_PU, NAP_LEVEL_DETAIL, vga_check_down_pu,
     &vga_node::down_pu_tree, own_entry<vga_pu>, pu_changed, {pu_state}},
    {VGA_CHECK_LOCAL_LU, VGA_QUERY_LU62, NAP_LEVEL_DETAIL, vga_check_local_lu,
     &vga_node::lu62_tree, own_entry<vga_lu62>, lu62_changed,
     {{offsetof(LU62_ENTRY, session_status), 1}}},
};
// clang-format on

const Refresh& refresh_of(VGA_CHECK_KIND kind) {
    return *std::find_if(std::begin(refreshes), std::end(refreshes),
                         [kind](const Refresh& row) { return row.kind == kind; });
}

// last: the entry to go on behind, or null.
void send_page(const Refresh& refresh, vga_node* node, const void* last, VGA_CALLBACK callback) {
    vga_check_sent(vga_issue_query(refresh.query, node, last, 0, 0, callback, refresh.level), node,
                   refresh.kind);
}

void start(VGA_CHECK_KIND kind, vga_node* node) {
    ++node->checks_running[kind];
    const Refresh& refresh = refresh_of(kind);
    send_page(refresh, node, nullptr, refresh.callback);
}

void* find_record(const Refresh& refresh, const vga_node* node, const void* entry) {
    return ntl_avl_find(&(node->*refresh.tree), static_cast<const NB_BYTE*>(entry) +
                                                    vga_query_row_of(refresh.query).key.entry);
}

void take_status(const Refresh& refresh, void* record, const void* entry) {
    bool changed = false;
    auto* own = static_cast<NB_BYTE*>(refresh.entry_of(record));
    for (const Bytes& status : refresh.status) {
        const NB_BYTE* from = static_cast<const NB_BYTE*>(entry) + status.offset;
        if (std::memcmp(own + status.offset, from, status.length) != 0) {
            std::memcpy(own + status.offset, from, status.length);
            changed = true;
        }
    }
    if (changed && refresh.changed != nullptr) {
        refresh.changed(record);
    }
}

void check(VGA_CHECK_KIND kind, const VGA_COMPLETION* completion) {
    auto* node = static_cast<vga_node*>(vga_check_record(completion, kind));
    if (node == nullptr) {
        return;
    }
    const Refresh& refresh = refresh_of(kind);
    void* last = nullptr;
    vga_check_entries entries(refresh.query, completion->vcb);
    while (const void* entry = entries.next()) {
        if (void* record = find_record(refresh, node, entry); record != nullptr) {
            take_status(refresh, record, entry);
            last = record;
        }
    }
    if (last != nullptr && entries.more()) {
        send_page(refresh, node, refresh.entry_of(last), refresh.callback);
    } else {
        vga_check_ends(node, kind);
    }
}

// remove: those that no page had.
void sweep_link_stations(vga_node* node, bool remove) {
    vga_ls* next;
    for (auto* ls = ntl_avl_first<vga_ls>(node->ls_tree); ls != nullptr; ls = next) {
        next = vga_next<vga_ls>(ls->node);
        if (ls->restart_check != 0 && remove) {
            vga_delete_vga_ls(ls, true);
        } else {
            ls->restart_check = 0;
        }
    }
}

// The completion for a check that has stopped the build's own list, which begins anew afterwards.
void check_ls_in_build(VGA_COMPLETION* completion);

// True when the check has ended.
bool check_ls(const VGA_COMPLETION* completion, VGA_CALLBACK callback, vga_node** node) {
    *node = static_cast<vga_node*>(vga_check_record(completion, VGA_CHECK_LS));
    if (*node == nullptr) {
        return false;
    }
    const Refresh& refresh = refresh_of(VGA_CHECK_LS);
    const LS_ENTRY* last = nullptr;
    vga_check_entries entries(refresh.query, completion->vcb);
    while (const auto* entry = static_cast<const LS_ENTRY*>(entries.next())) {
        last = entry;
        if (auto* ls = static_cast<vga_ls*>(find_record(refresh, *node, entry)); ls != nullptr) {
            ls->restart_check = 0;
            take_status(refresh, ls, entry);
        } else if (entry->det.implicit == 1 && gvga_store_hooks.implicit_ls != nullptr) {
            gvga_store_hooks.implicit_ls(*node, entry->ls_name);
        }
    }
    // A page of link stations that are all new to the store does not end the list.
    if (last != nullptr && entries.more()) {
        send_page(refresh, *node, last, callback);
        return false;
    }
    const NB_USHORT code = vcb_header(completion->vcb)->primary_rc;
    sweep_link_stations(*node, !entries.more() && (code == NAP_OK || code == NAP_NO_ENTRIES));
    vga_check_ends(*node, VGA_CHECK_LS);
    return true;
}

void check_ls_in_build(VGA_COMPLETION* completion) {
    vga_node* node;
    if (check_ls(completion, check_ls_in_build, &node)) {
        vga_build_query(VGA_QUERY_LS, node, nullptr, vga_build_node);
    }
}

} // namespace

void vga_start_check_dlc(vga_node* node) {
    start(VGA_CHECK_DLC, node);
}
void vga_check_dlc(VGA_COMPLETION* completion) {
    check(VGA_CHECK_DLC, completion);
}
void vga_start_check_port(vga_node* node) {
    start(VGA_CHECK_PORT, node);
}
void vga_check_port(VGA_COMPLETION* completion) {
    check(VGA_CHECK_PORT, completion);
}
void vga_start_check_pu(vga_node* node) {
    start(VGA_CHECK_PU, node);
}
void vga_check_pu(VGA_COMPLETION* completion) {
    check(VGA_CHECK_PU, completion);
}
void vga_start_check_dlur_pu(vga_node* node) {
    start(VGA_CHECK_DLUR_PU, node);
}
void vga_check_dlur_pu(VGA_COMPLETION* completion) {
    check(VGA_CHECK_DLUR_PU, completion);
}
void vga_start_check_down_pu(vga_node* node) {
    start(VGA_CHECK_DOWN_PU, node);
}
void vga_check_down_pu(VGA_COMPLETION* completion) {
    check(VGA_CHECK_DOWN_PU, completion);
}
void vga_start_check_local_lu(vga_node* node) {
    start(VGA_CHECK_LOCAL_LU, node);
}
void vga_check_local_lu(VGA_COMPLETION* completion) {
    check(VGA_CHECK_LOCAL_LU, completion);
}

void vga_start_check_ls(vga_node* node) {
    const bool in_build =
        vga_check_queued(node, NAP_QUERY_LS, node->handle, vga_build_node) != nullptr ||
        vga_check_queued(node, NAP_QUERY_LS, node->handle, check_ls_in_build) != nullptr;
    vga_check_drop(node, NAP_QUERY_LS, 0, nullptr);
    node->checks_running[VGA_CHECK_LS] = 1;
    for (auto* ls = ntl_avl_first<vga_ls>(node->ls_tree); ls != nullptr;
         ls = vga_next<vga_ls>(ls->node)) {
        ls->restart_check = 1;
    }
    send_page(refresh_of(VGA_CHECK_LS), node, nullptr, in_build ? check_ls_in_build : vga_check_ls);
}
void vga_check_ls(VGA_COMPLETION* completion) {
    vga_node* node;
    check_ls(completion, vga_check_ls, &node);
}
