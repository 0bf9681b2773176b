// What the build makes of each kind of entry.
#include "common/names.h"
#include "nof/trace.h"
#include "shell/globals.h"
#include "store/query.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"
#include "store/tracking.h"

namespace {

struct Nothing {
    void operator()(auto*, const auto&) const {}
};

// Makes a record of an entry and inserts it; false: no memory. then(record, entry): what follows
// once it is in the store.
template <typename Record, typename Parent, typename Entry, typename Then = Nothing>
bool add(vga_page_context& context, Record* (*init)(Parent*, const Entry*),
         Record* (*insert)(Record*, Parent*), Parent* parent, const void* raw, Then then = {}) {
    const auto* entry = static_cast<const Entry*>(raw);
    Record* record = init(parent, entry);
    if (record == nullptr) {
        return false;
    }
    if (record = insert(record, parent); record != nullptr) {
        context.record = record;
        then(record, *entry);
    }
    return gvga_exit_code == 0;
}

vga_node* node_of(const vga_page_context& context) {
    return static_cast<vga_node*>(context.owner);
}

// A record that was made by a definition before its kind's indications were asked for has the state
// of that moment; a definition leaves it, a list tells the present one.
template <typename State>
void take_state(const vga_page_context& context, State* state, const State& listed,
                vga_viewer* row) {
    if (std::memcmp(state, &listed, sizeof listed) != 0) {
        *state = listed;
        vga_update_row(&node_of(context)->links_root, row);
    }
}

vga_cos* cos_of(vga_page_context& context, const COS_ROW_ENTRY* entry) {
    if (context.cos == nullptr || vga_compare_ebc8(context.cos->vcb.cos_name, entry->cos_name)) {
        context.cos = vga_find<vga_cos>(node_of(context)->cos_tree, entry->cos_name);
    }
    return context.cos;
}

bool add_cos_row(vga_page_context& context, vga_cos_row* (*insert)(vga_cos_row*, vga_cos*),
                 const void* entry) {
    vga_cos* cos = cos_of(context, static_cast<const COS_ROW_ENTRY*>(entry));
    // A class that is gone since it was listed takes its rows along.
    return cos == nullptr || add(context, vga_init_vga_cos_row, insert, cos, entry);
}

} // namespace

bool vga_entry_dlc(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_dlc, vga_insert_vga_dlc, node_of(context), entry,
               [](vga_dlc* dlc, const DLC_ENTRY& listed) { dlc->vcb->state = listed.state; });
}

bool vga_entry_port(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const PORT_ENTRY*>(raw);
    auto* dlc = vga_find<vga_dlc>(node_of(context)->dlc_tree, entry->def.dlc_name);
    if (dlc == nullptr) {
        vga_log_missing_parent(18, NAP_QUERY_PORT, entry->def.dlc_name, 8);
        return true;
    }
    return add(context, vga_init_vga_port, vga_insert_vga_port, dlc, entry,
               [&](vga_port* record, const PORT_ENTRY& listed) {
                   take_state(context, &record->vcb->state, listed.state, &record->viewer);
               });
}

bool vga_entry_ls(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const LS_ENTRY*>(raw);
    auto* port = vga_find<vga_port>(node_of(context)->port_tree, entry->def.port_name);
    if (port == nullptr) {
        vga_log_missing_parent(19, NAP_QUERY_LS, entry->def.port_name, 8);
        return true;
    }
    return add(context, vga_init_vga_ls, vga_insert_vga_ls, port, entry,
               [&](vga_ls* ls, const LS_ENTRY& listed) {
                   take_state(context, &ls->vcb->det, listed.det, &ls->viewer);
                   vga_add_ls_pu(ls);
               });
}

bool vga_entry_cn(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_cn, vga_insert_vga_cn, node_of(context), entry);
}

bool vga_entry_cn_port(vga_page_context& context, const void* raw) {
    auto* cn = static_cast<vga_cn*>(context.owner);
    const auto* entry = static_cast<const CN_PORT_ENTRY*>(raw);
    auto* port = vga_find<vga_port>(cn->parent->port_tree, entry->port_name);
    if (port == nullptr) {
        vga_log_missing_parent(27, NAP_QUERY_CN_PORT, entry->port_name, 8);
        return true;
    }
    vga_cn_port* cn_port = vga_init_vga_cn_port(cn, port, entry);
    if (cn_port == nullptr) {
        return false;
    }
    context.record = vga_insert_vga_cn_port(cn_port, cn);
    return true;
}

bool vga_entry_local_pu(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_local_pu, vga_insert_vga_local_pu, node_of(context), entry);
}
bool vga_entry_down_pu(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_down_pu, vga_insert_vga_down_pu, node_of(context), entry);
}
bool vga_entry_lu03(vga_page_context& context, const void* entry) {
    return add(
        context, vga_init_vga_lu03, vga_insert_vga_lu03, static_cast<vga_pu*>(context.owner), entry,
        [](vga_lu03* lu, const LU03_ENTRY& listed) { vga_take_lu03_detail(lu, listed.det_data); });
}
bool vga_entry_down_lu(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_down_lu, vga_insert_vga_down_lu,
               static_cast<vga_pu*>(context.owner), entry,
               [](vga_down_lu* lu, const DOWN_LU_ENTRY& listed) { // may be one only announced yet
                   vga_redefine_down_lu(lu, &listed.def);
               });
}

bool vga_entry_extra_data(vga_page_context& context, const void* entry) {
    auto* data = vga_init_extra_data(static_cast<const EXTRA_DATA_ENTRY*>(entry));
    if (data == nullptr) {
        return false;
    }
    vga_insert_lu03_extra_data(data, node_of(context));
    return true;
}

bool vga_entry_lu62(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_lu62, vga_insert_vga_lu62, node_of(context), entry);
}
bool vga_entry_plu(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_plu, vga_insert_vga_plu, static_cast<vga_lu62*>(context.owner),
               entry);
}

bool vga_entry_mode(vga_page_context& context, const void* raw) {
    auto* lu = static_cast<vga_lu62*>(context.owner);
    const auto* entry = static_cast<const MODE_ENTRY*>(raw);
    const bool independent = lu->vcb.def.nau_address == 0;
    if (!independent && entry->act_sess_count == 0) {
        return true;
    }
    if (context.plu == nullptr ||
        vga_compare_ebc17(context.plu->vcb.plu_name, entry->plu_name) != 0) {
        context.plu = vga_find<vga_plu>(lu->plu_tree, entry->plu_name);
        if (context.plu == nullptr) {
            PLU_ENTRY partner{};
            partner.length = sizeof partner;
            std::memcpy(partner.plu_name, entry->plu_name, sizeof partner.plu_name);
            partner.cp_known = entry->cp_known;
            std::memcpy(partner.cp_name, entry->cp_name, sizeof partner.cp_name);
            vga_plu* plu = vga_init_vga_plu(lu, &partner);
            if (plu == nullptr) {
                return false;
            }
            context.plu = vga_insert_vga_plu(plu, lu);
        }
        context.plu->check_mark = 0;
    }
    vga_mode* mode = vga_init_vga_mode(context.plu, entry);
    if (mode == nullptr) {
        return false;
    }
    mode = vga_insert_vga_mode(mode, context.plu);
    context.record = mode;
    const NB_LONG change = entry->act_sess_count - mode->act_sess_count;
    mode->act_sess_count = entry->act_sess_count;
    vga_count_lu62_sessions(lu, change);
    vga_update_state_row(&lu->parent->lus_root, &mode->viewer);
    if (independent && entry->cp_known == 1 &&
        std::memcmp(entry->cp_name, lu->parent->vcb.parameters.cp_name, FQ_NAME_LENGTH) != 0) {
        return vga_track_rem_sessions(lu, entry);
    }
    return true;
}

bool vga_entry_mode_def(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_mode_def, vga_insert_vga_mode_def, node_of(context), entry);
}

// ---- directory ----

bool vga_add_directory_to_remote(vga_node* node, const DIRECTORY_ENTRY* entry,
                                 vga_rem_sys** owner) {
    const NB_BYTE* own_name = node->vcb.parameters.cp_name;
    const bool control_point = entry->resource_type == NAP_END_NODE_CP_RESOURCE ||
                               entry->resource_type == NAP_NETWORK_NODE_CP_RESOURCE;
    const NB_BYTE* system_name = control_point ? entry->resource_name : entry->parent_name;
    if (std::memcmp(system_name, own_name, FQ_NAME_LENGTH) == 0) {
        return true;
    }
    if (entry->entry_type == NOF_DIRECTORY_REGISTERED && control_point) {
        auto* rem_sys = vga_find<vga_rem_sys>(node->rem_sys_tree, entry->resource_name);
        if (rem_sys != nullptr && rem_sys->defined != 0) {
            *owner = nullptr;
            vga_overwrite_vga_rem_sys(rem_sys);
        }
        return true;
    }
    if (entry->entry_type != NOF_DIRECTORY_DEFINED ||
        entry->resource_type == NAP_NETWORK_NODE_CP_RESOURCE) {
        return true;
    }
    if (control_point) {
        vga_rem_sys* rem_sys = vga_init_vga_rem_sys(node, entry->resource_name, true, entry);
        if (rem_sys == nullptr) {
            return false;
        }
        *owner = vga_insert_vga_rem_sys(rem_sys, node);
        return true;
    }
    if (*owner == nullptr ||
        std::memcmp((*owner)->cp_name, entry->parent_name, FQ_NAME_LENGTH) != 0) {
        *owner = vga_find<vga_rem_sys>(node->rem_sys_tree, entry->parent_name);
    }
    if (*owner == nullptr) {
        return true;
    }
    vga_rem_plu* rem_plu = vga_init_vga_rem_plu(entry->resource_name, entry->resource_type, true,
                                                false, nullptr, entry);
    return rem_plu != nullptr && vga_insert_vga_rem_plu(rem_plu, *owner) != nullptr;
}

namespace {

// Where a page that continues the directory stands in its hierarchy: at the entry it was asked to
// go on behind.
void continue_directory(vga_page_context& context) {
    const auto* query = static_cast<const QUERY_DIRECTORY_ENTRY*>(context.block);
    if ((query->list.list_options & NAP_FIRST_IN_LIST) != 0) {
        return;
    }
    vga_dir* last;
    NTL_AVL_TREE* tree;
    if (!vga_find_directory_entry(node_of(context), query->resource_name, query->resource_type,
                                  &last, &tree)) {
        vga_log_missing_parent_ebcdic(20, NAP_QUERY_DIRECTORY_ENTRY, query->resource_name,
                                      FQ_NAME_LENGTH);
        context.no_directory = true;
        return;
    }
    for (vga_dir* above = last; above != nullptr; above = above->owner) {
        if (above->vcb.resource_type == NAP_END_NODE_CP_RESOURCE) {
            context.end_node = above;
        } else if (above->vcb.resource_type == NAP_NETWORK_NODE_CP_RESOURCE) {
            context.network_node = above;
        }
    }
}

// Directory records come in the order of their hierarchy: each below the control point before it.
bool add_directory_record(vga_page_context& context, const DIRECTORY_ENTRY* entry) {
    vga_node* node = node_of(context);
    if (context.first) {
        continue_directory(context);
    }
    if (context.no_directory) {
        return true;
    }
    vga_dir* owner = nullptr;
    if (entry->resource_type == NAP_END_NODE_CP_RESOURCE) {
        owner = context.network_node;
    } else if (entry->resource_type != NAP_NETWORK_NODE_CP_RESOURCE) {
        owner = context.end_node != nullptr ? context.end_node : context.network_node;
        if (owner == nullptr) {
            return true; // no control point to put it under
        }
    }
    vga_dir* dir = vga_init_vga_dir(node, entry);
    if (dir == nullptr) {
        return false;
    }
    dir = vga_insert_vga_dir(dir, owner);
    if (entry->resource_type == NAP_NETWORK_NODE_CP_RESOURCE) {
        context.network_node = dir;
        context.end_node = nullptr;
    } else if (entry->resource_type == NAP_END_NODE_CP_RESOURCE) {
        context.end_node = dir;
    }
    return true;
}

} // namespace

bool vga_entry_dir(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const DIRECTORY_ENTRY*>(raw);
    vga_node* node = node_of(context);
    if (!vga_add_directory_to_remote(node, entry, &context.rem_sys)) {
        return false;
    }
    return !gvga_supported[VGA_SUPPORT_DIRECTORY] || node->node_state != VGA_NODE_STATE_ACTIVE ||
           add_directory_record(context, entry);
}

bool vga_entry_plu_def(vga_page_context& context, const void* entry) {
    return vga_add_plu_definition(node_of(context), static_cast<const PLU_DEF_ENTRY*>(entry)) !=
           nullptr;
}

bool vga_entry_cos(vga_page_context& context, const void* entry) {
    return add(context, vga_init_vga_cos, vga_insert_vga_cos, node_of(context), entry);
}
bool vga_entry_cos_node_row(vga_page_context& context, const void* entry) {
    return add_cos_row(context, vga_insert_vga_cos_node_row, entry);
}
bool vga_entry_cos_tg_row(vga_page_context& context, const void* entry) {
    return add_cos_row(context, vga_insert_vga_cos_tg_row, entry);
}

// ---- traces ----

namespace {

const vga_dlc* traced_dlc(const vga_node* node, NB_BYTE type, const char* name) {
    const auto* port = vga_find<vga_port>(node->port_tree, name);
    if (type == NOF_TRACE_PORT || type == NOF_TRACE_PORT_4 || type == NOF_TRACE_PORT_5) {
        return port != nullptr ? port->parent : nullptr;
    }
    const auto* dlc = vga_find<vga_dlc>(node->dlc_tree, name);
    const auto* ls = vga_find<vga_ls>(node->ls_tree, name);
    const vga_dlc* dlc_of_ls = ls != nullptr ? ls->parent->parent : nullptr;
    if (type == 1) { // a DLC; the verbs that set a trace give a link station this number
        return dlc != nullptr ? dlc : dlc_of_ls;
    }
    if (type == 3) {
        return dlc_of_ls != nullptr ? dlc_of_ls : dlc;
    }
    return nullptr;
}

} // namespace

NB_LONG* vga_trace_counter(vga_node* node, NB_BYTE dlc_type) {
    switch (dlc_type) {
    case NAP_DLC_SDLC:
        return &node->tracing.sdlc;
    case NAP_DLC_QLLC:
        return &node->tracing.x25;
    case NAP_DLC_TOKEN_RING:
        return &node->tracing.token_ring;
    case NAP_DLC_FDDI:
        return &node->tracing.fddi;
    case NAP_DLC_ETHERNET:
        return &node->tracing.ethernet;
    case NAP_DLC_FRAME_RELAY:
        return &node->tracing.frame_relay;
    case NAP_DLC_CHANNEL:
    case NAP_DLC_MPC:
    case NAP_DLC_MPC_PLUS:
        return &node->tracing.chnl;
    case NAP_DLC_IP:
        return &node->tracing.ip;
    default:
        return nullptr;
    }
}

bool vga_process_dlc_trace(vga_page_context& context, const void* raw) {
    const auto* entry = static_cast<const DLC_TRACE_ENTRY*>(raw);
    vga_node* node = node_of(context);
    const auto& list = *static_cast<const LIST_QUERY*>(context.block);
    if (context.first && (list.list_options & NAP_FIRST_IN_LIST) != 0) {
        node->tracing = {}; // what was set before the answer is in it
        node->all_dlcs_traced = 0;
    }
    if (entry->resource_type == NOF_TRACE_ALL_DLCS) {
        node->all_dlcs_traced = 1;
        return true;
    }
    if (const vga_dlc* dlc = traced_dlc(node, entry->resource_type, entry->name); dlc != nullptr) {
        if (NB_LONG* counter = vga_trace_counter(node, dlc->vcb->def.dlc_type);
            counter != nullptr) {
            ++*counter;
        }
    }
    return true;
}

// ---- domain ----

bool vga_entry_node(vga_page_context&, const void* entry) {
    vga_node* node = vga_init_vga_node(static_cast<const NODE_ALL_ENTRY*>(entry));
    if (node == nullptr) {
        return false;
    }
    vga_insert_vga_node(node);
    return true;
}

bool vga_entry_sna_net(vga_page_context&, const void* entry) {
    vga_sna_net_node* node = vga_init_sna_net_node(static_cast<const SNA_NET_ENTRY*>(entry));
    if (node == nullptr) {
        return false;
    }
    vga_insert_sna_net_node(node);
    return true;
}
