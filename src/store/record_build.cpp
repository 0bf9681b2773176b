// The part of a node's build that goes record by record, and the end of a node's and of the whole
// build.
#include "shell/globals.h"
#include "store/query.h"
#include "store/record_util.h"
#include "store/store.h"

namespace {

bool is_pending(const vga_pu* pu) {
    return pu->pending != 0;
}
bool is_pending(const vga_cn* cn) {
    return cn->pending != 0;
}
bool is_pending(const vga_lu62* lu) {
    return lu->startup_status != 0;
}

// The next record still to be listed behind from, around the end of the tree to its start and up to
// from itself; null when there is none. from may be null: from the first record.
template <typename T> T* next_pending(const NTL_AVL_TREE& tree, T* from) {
    T* const first = ntl_avl_first<T>(tree);
    T* record = from != nullptr ? vga_next<T>(from->node) : first;
    for (bool wrapped = from == nullptr;; record = vga_next<T>(record->node)) {
        if (record == nullptr) {
            if (wrapped) {
                return nullptr;
            }
            wrapped = true;
            record = first;
            if (record == nullptr) {
                return nullptr;
            }
        }
        if (is_pending(record)) {
            return record;
        }
        if (record == from) {
            return nullptr;
        }
    }
}

void list_pus(vga_node* node, const NTL_AVL_TREE& tree, vga_pu* from) {
    const bool local = &tree == &node->local_pu_tree;
    if (vga_pu* pu = next_pending(tree, from); pu != nullptr) {
        pu->listing = 1;
        vga_build_query(local ? VGA_QUERY_LU03 : VGA_QUERY_DOWN_LU, pu, nullptr,
                        local ? vga_build_local_pu : vga_build_down_pu);
    } else if (local) {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_LU03S));
        vga_build_query(VGA_QUERY_EXTRA_DATA, node, nullptr, vga_build_extra_data);
    } else {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_DOWN_LUS));
    }
}

void list_cns(vga_node* node, vga_cn* from) {
    if (vga_cn* cn = next_pending(node->cn_tree, from); cn != nullptr) {
        cn->listing = 1;
        vga_build_query(VGA_QUERY_CN_PORT, cn, nullptr, vga_build_cn);
    } else {
        vga_clear_node_flags(node, vga_flag(VGA_NODE_CN_PORTS));
    }
}

void list_lu62s(vga_node* node, vga_lu62* from) {
    for (;;) {
        vga_lu62* lu = next_pending(node->lu62_tree, from);
        if (lu == nullptr) {
            vga_clear_node_flags(node, vga_flag(VGA_NODE_LU62_DETAILS));
            return;
        }
        if (node->node_state == VGA_NODE_STATE_STOPPED) { // nothing runs that could be listed
            lu->startup_status &= VGA_PASSWORD_LIST;
        } else if (lu->vcb.def.nau_address == 0) {
            vga_build_query(VGA_QUERY_PLU, lu, nullptr, vga_build_lu62);
        } else {
            lu->startup_status &= static_cast<NB_BYTE>(~VGA_PLU_LIST);
            vga_build_query(VGA_QUERY_MODE, lu, nullptr, vga_build_lu62);
        }
        if ((lu->startup_status & VGA_PASSWORD_LIST) != 0) {
            vga_build_query(VGA_QUERY_SL_SEC, lu, nullptr, vga_build_lu62);
        }
        if (lu->startup_status != 0 || gvga_exit_code != 0) {
            lu->listing = 1;
            return;
        }
        from = lu;
    }
}

// When all nodes are built nothing more is to come for the log settings if no node has the logger,
// unless the file that tells which one is being read.
void end_of_nodes() {
    if ((gvga_system->build_flags & vga_flag(VGA_SYSTEM_NODE_LIST)) != 0) {
        return; // there are others
    }
    for (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree); node != nullptr;
         node = vga_next<vga_node>(node->node)) {
        if (!vga_check_node_startup(node)) {
            return;
        }
    }
    const bool logger = vga_find_node_by_handle(gvga_system->central_logger_handle) != nullptr ||
                        (gvga_system->build_flags & vga_flag(VGA_SYSTEM_USERS)) != 0;
    vga_clear_system_flags(vga_flag(VGA_SYSTEM_NODES) |
                           (logger ? VGA_FLAGS{0} : vga_flag(VGA_SYSTEM_LOGGING)));
}

// A page of a record's list: true when the list is complete.
template <typename T> bool page_done(VGA_QUERY query, T* record, void* vcb, VGA_CALLBACK callback) {
    const vga_page page = vga_process_query(query, record, vcb);
    if (page.more) {
        vga_build_query(query, record, page.last, callback);
    }
    return !page.more && !page.failed;
}

// A completion of a list of a record: the record when there is something to do.
template <typename T> T* listed(VGA_COMPLETION* work) {
    auto* record = static_cast<T*>(nba_validate_handle(work->corr));
    if (record != nullptr && vga_target_gone(work->vcb)) {
        vga_build_lost_node(record->parent);
        return nullptr;
    }
    return record;
}

template <typename T>
void list_one(VGA_COMPLETION* work, VGA_QUERY query, int action, VGA_CALLBACK callback) {
    T* record = listed<T>(work);
    if (record != nullptr && page_done(query, record, work->vcb, callback)) {
        record->pending = 0;
        record->listing = 0;
        vga_build_next_action(action, record);
    }
}

void list_part(vga_lu62* lu, void* vcb) {
    const VCB_HEADER& header = *vcb_header(vcb);
    const auto done = [lu](int bits) { lu->startup_status &= static_cast<NB_BYTE>(~bits); };
    switch (header.opcode) {
    case NAP_QUERY_PARTNER_LU:
        if (header.primary_rc == NAP_NO_ENTRIES) {
            done(VGA_PLU_LIST | VGA_MODE_LIST);
        } else if (page_done(VGA_QUERY_PLU, lu, vcb, vga_build_lu62)) {
            done(VGA_PLU_LIST);
            if (lu->plu_tree.root != nullptr) {
                vga_build_query(VGA_QUERY_MODE, lu, nullptr, vga_build_lu62);
            } else {
                done(VGA_MODE_LIST);
            }
        }
        break;
    case NAP_QUERY_MODE:
        if (header.primary_rc == NAP_NO_ENTRIES ||
            page_done(VGA_QUERY_MODE, lu, vcb, vga_build_lu62)) {
            done(VGA_MODE_LIST);
        }
        break;
    case NAP_QUERY_LU_LU_PASSWORD:
        if (page_done(VGA_QUERY_SL_SEC, lu, vcb, vga_build_lu62)) {
            done(VGA_PASSWORD_LIST);
        }
        break;
    default:
        break;
    }
}

} // namespace

void vga_build_next_action(int action, void* record) {
    switch (action) {
    case 0:
        return end_of_nodes();
    case 1: {
        auto* pu = static_cast<vga_pu*>(record);
        return list_pus(pu->parent, pu->parent->local_pu_tree, pu);
    }
    case 2: {
        auto* pu = static_cast<vga_pu*>(record);
        return list_pus(pu->parent, pu->parent->down_pu_tree, pu);
    }
    case 3: {
        auto* lu = static_cast<vga_lu62*>(record);
        return list_lu62s(lu->parent, lu);
    }
    case 4: {
        auto* cn = static_cast<vga_cn*>(record);
        return list_cns(cn->parent, cn);
    }
    case 5:
        return vga_clear_node_flags(static_cast<vga_node*>(record), vga_flag(VGA_NODE_EXTRA_DATA));
    default:
        break;
    }
}

void vga_build_first_action(int action, vga_node* node) {
    switch (action) {
    case 1:
        return list_pus(node, node->local_pu_tree, nullptr);
    case 2:
        return list_pus(node, node->down_pu_tree, nullptr);
    case 3:
        return list_lu62s(node, nullptr);
    case 4:
        return list_cns(node, nullptr);
    default:
        break;
    }
}

void vga_build_local_pu(VGA_COMPLETION* work) {
    list_one<vga_pu>(work, VGA_QUERY_LU03, 1, vga_build_local_pu);
}
void vga_build_down_pu(VGA_COMPLETION* work) {
    list_one<vga_pu>(work, VGA_QUERY_DOWN_LU, 2, vga_build_down_pu);
}
void vga_build_cn(VGA_COMPLETION* work) {
    list_one<vga_cn>(work, VGA_QUERY_CN_PORT, 4, vga_build_cn);
}

void vga_build_lu62(VGA_COMPLETION* work) {
    auto* lu = listed<vga_lu62>(work);
    if (lu == nullptr || lu->startup_status == 0) {
        return;
    }
    list_part(lu, work->vcb);
    if (lu->startup_status == 0) {
        lu->listing = 0;
        vga_build_next_action(3, lu);
    }
}

void vga_build_extra_data(VGA_COMPLETION* work) {
    auto* node = static_cast<vga_node*>(nba_validate_handle(work->corr));
    if (node == nullptr) {
        return;
    }
    if (vga_target_gone(work->vcb)) {
        return vga_build_lost_node(node);
    }
    if (page_done(VGA_QUERY_EXTRA_DATA, node, work->vcb, vga_build_extra_data)) {
        vga_build_next_action(5, node);
    }
}

void vga_clear_node_flags(vga_node* node, VGA_FLAGS flags) {
    node->build_flags &= ~flags;
    if (node->build_flags == 0 && node->built == 0 && gvga_exit_code == 0) {
        node->built = 1;
        if (gvga_store_hooks.node_built != nullptr) {
            gvga_store_hooks.node_built(node);
        }
        vga_build_next_action(0, nullptr);
    }
}

void vga_clear_system_flags(VGA_FLAGS flags) {
    gvga_system->build_flags &= ~flags;
    if (gvga_system->build_flags == 0 && gvga_system->built == 0 && gvga_exit_code == 0) {
        gvga_system->built = 1;
        if (gvga_store_hooks.system_built != nullptr) {
            gvga_store_hooks.system_built();
        }
    }
}
