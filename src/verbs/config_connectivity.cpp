// Definitions of DLCs, ports, link stations, PUs and connection networks.
#include "verbs/config_util.h"

namespace {

constexpr vga_listing listed_dlcs{vga_flag(VGA_NODE_DLCS), VGA_CHECK_DLC};
constexpr vga_listing listed_ports{vga_flag(VGA_NODE_PORTS), VGA_CHECK_PORT};
constexpr vga_listing listed_pus{vga_flag(VGA_NODE_LOCAL_PUS), VGA_CHECK_DLUR_PU};
constexpr vga_listing listed_cn_ports{vga_flag(VGA_NODE_PORTS) | vga_flag(VGA_NODE_CNS) |
                                          vga_flag(VGA_NODE_CN_PORTS),
                                      VGA_CHECK_PORT};

// An entry with room for the specific data of a definition, which it takes from specific; null,
// with exit code 1 set, without memory. The caller frees it.
template <typename Entry> Entry* make_entry(const NB_BYTE* specific, std::size_t specific_length) {
    const std::size_t size = sizeof(Entry) + (specific_length + 3) / 4 * 4;
    auto* entry = vga_new<Entry>(size);
    if (entry == nullptr) {
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return nullptr;
    }
    entry->length = static_cast<NB_USHORT>(std::min<std::size_t>(size, 0xFFFF));
    std::memcpy(nof_tail(entry), specific, specific_length);
    return entry;
}

NB_BYTE activation_flags(const LS_DEF& def) {
    return static_cast<NB_BYTE>((def.activate_on_demand == 1 ? NOF_LS_ON_DEMAND : 0) |
                                (def.disable_remote_act == 0 ? NOF_LS_INCOMING : 0));
}

// The PU that the link station's definition asks for; it loses one that it no longer asks for.
void settle_pu(vga_ls* ls) {
    vga_drop_stray_pus(ls->parent->parent->parent, ls->vcb->ls_name, ls);
    const bool local = vga_ls_has_local_pu(ls->vcb);
    if (!local && !vga_ls_has_down_pu(ls->vcb)) {
        if (vga_pu* pu = ls->pu_entry; pu != nullptr) {
            (pu->kind == VGA_PU_LOCAL ? vga_delete_vga_local_pu : vga_delete_vga_down_pu)(pu, true);
        }
        return;
    }
    const vga_node* node = ls->parent->parent->parent;
    const LS_DEF& def = ls->vcb->def;
    const bool is_new = ntl_avl_find(local ? &node->local_pu_tree : &node->down_pu_tree,
                                     local ? def.pu_name : def.dspu_name) == nullptr;
    vga_pu* pu = vga_add_ls_pu(ls);
    if (pu == nullptr) {
        return;
    }
    if (!local) {
        pu->vcb.host_attachment = def.dspu_services;
    }
    if (is_new) {
        vga_copy_name(pu->vcb.description, def.description);
        pu->vcb.conventional_lu_compression = def.parameter490;
    }
}

} // namespace

// ---- DLC ----

void vga_process_def_dlc(VGA_COMPLETION* completion, vga_node* node, vga_dlc** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_DLC, completion, NAP_DEFINE_DLC);
    vga_give<vga_dlc>(record, nullptr);
    auto* entry = make_entry<DLC_ENTRY>(nof_tail(&block), block.specific_length);
    if (entry == nullptr) {
        return;
    }
    vga_copy_name(entry->dlc_name, block.dlc_name);
    entry->def = block.def;
    entry->specific_length = block.specific_length;
    if (vga_dlc* dlc = vga_init_vga_dlc(node, entry); dlc != nullptr) {
        vga_give(record, vga_insert_vga_dlc(dlc, node));
    }
    vga_free(entry);
}

void vga_process_del_dlc(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_BY_NAME8, completion, NAP_DELETE_DLC);
    if (auto* dlc = vga_status_find<vga_dlc>(node->dlc_tree, block.name); dlc != nullptr) {
        vga_delete_vga_dlc(dlc, true);
    } else {
        vga_log_absent_local(node, listed_dlcs, 37, block.header.opcode,
                             reinterpret_cast<const char*>(block.name));
    }
}

// ---- port ----

void vga_process_def_port(VGA_COMPLETION* completion, vga_node* node, vga_port** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_PORT, completion, NAP_DEFINE_PORT);
    vga_give<vga_port>(record, nullptr);
    auto* dlc = vga_status_find<vga_dlc>(node->dlc_tree, block.def.dlc_name);
    if (dlc == nullptr) {
        vga_log_absent_local(node, listed_dlcs, 52, block.header.opcode, block.def.dlc_name);
        return;
    }
    auto* entry = make_entry<PORT_ENTRY>(nof_tail(&block), std::size_t{block.def.port_data_length} +
                                                               block.def.link_data_length);
    if (entry == nullptr) {
        return;
    }
    vga_copy_name(entry->port_name, block.port_name);
    entry->dlc_type = dlc->vcb->def.dlc_type;
    entry->def = block.def;
    if (vga_port* port = vga_init_vga_port(dlc, entry); port != nullptr) {
        port = vga_insert_vga_port(port, dlc);
        vga_give(record, port);
        vga_refresh_buttons_of_record(node, port);
    }
    vga_free(entry);
}

void vga_process_del_port(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_BY_NAME8, completion, NAP_DELETE_PORT);
    if (auto* port = vga_status_find<vga_port>(node->port_tree, block.name); port != nullptr) {
        vga_delete_vga_port(port, true);
    } else {
        vga_log_absent_local(node, listed_ports, 53, block.header.opcode,
                             reinterpret_cast<const char*>(block.name));
    }
}

// ---- link station ----

void vga_process_def_ls(VGA_COMPLETION* completion, vga_node* node, vga_ls** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_LS, completion, NAP_DEFINE_LS);
    vga_give<vga_ls>(record, nullptr);
    auto* port = vga_status_find<vga_port>(node->port_tree, block.def.port_name);
    if (port == nullptr) {
        vga_log_absent_local(node, listed_ports, 43, block.header.opcode, block.def.port_name);
        return;
    }
    auto* entry = make_entry<LS_ENTRY>(nof_tail(&block), block.def.specific_length);
    if (entry == nullptr) {
        return;
    }
    vga_copy_name(entry->ls_name, block.ls_name);
    entry->def = block.def;
    entry->det.dlc_type = port->vcb->dlc_type;
    std::memcpy(entry->det.port_address, port->vcb->def.local_address,
                sizeof port->vcb->def.local_address);
    entry->det.parameter45 = block.def.parameter474;
    entry->det.activation_flags = activation_flags(block.def);
    if (vga_ls* ls = vga_init_vga_ls(port, entry); ls != nullptr) {
        ls = vga_insert_vga_ls(ls, port);
        settle_pu(ls);
        vga_status_redraw(gvga_status_hooks.update_ls, ls);
        vga_give(record, ls);
    }
    vga_free(entry);
}

void vga_process_del_ls(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_BY_NAME8, completion, NAP_DELETE_LS);
    if (auto* ls = vga_status_find<vga_ls>(node->ls_tree, block.name); ls != nullptr) {
        vga_delete_vga_ls(ls, true);
    }
    vga_drop_stray_pus(node, reinterpret_cast<const char*>(block.name), nullptr);
}

// ---- PU without a link station ----

void vga_process_def_pu(VGA_COMPLETION* completion, vga_node* node, vga_pu** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_INTERNAL_PU, completion, NAP_DEFINE_INTERNAL_PU);
    vga_give<vga_pu>(record, nullptr);
    auto entry = vga_new_entry<PU_ENTRY>();
    if (const auto* known = vga_status_find<vga_pu>(node->local_pu_tree, block.pu_name);
        known != nullptr) {
        entry = known->vcb; // its state, which the definition leaves as it is
    } else {
        entry.dlur_status = NOF_DLUR_INACTIVE;
    }
    vga_copy_name(entry.pu_name, block.pu_name);
    vga_copy_name(entry.description, block.description);
    std::memset(entry.ls_name, 0, sizeof entry.ls_name);
    entry.host_attachment = NAP_DLUR_ATTACHED;
    entry.initially_active = block.initially_active;
    vga_copy_name(entry.dlus_name, block.dlus_name);
    vga_copy_name(entry.backup_dlus_name, block.backup_dlus_name);
    entry.node_id = block.node_id;
    entry.dlus_retry = block.dlus_retry;
    if (vga_pu* pu = vga_init_vga_local_pu(node, &entry); pu != nullptr) {
        pu = vga_insert_vga_local_pu(pu, node);
        vga_give(record, pu);
        vga_refresh_buttons_of_record(node, pu);
    }
}

void vga_process_del_internal_pu(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_BY_NAME8, completion, NAP_DELETE_INTERNAL_PU);
    if (auto* pu = vga_status_find<vga_pu>(node->local_pu_tree, block.name); pu != nullptr) {
        vga_delete_vga_local_pu(pu, true);
    } else if (block.header.primary_rc == NAP_INDICATION) {
        vga_log_absent_ebcdic(node, listed_pus, 42, block.header.opcode, block.name);
    }
}

// ---- connection network ----

void vga_process_def_cn(VGA_COMPLETION* completion, vga_node* node, vga_cn** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_CN, completion, NAP_DEFINE_CN);
    vga_give<vga_cn>(record, nullptr);
    auto entry = vga_new_entry<CN_ENTRY>();
    vga_copy_name(entry.cn_name, block.cn_name);
    entry.def = block.def;
    vga_cn* cn = vga_init_vga_cn(node, &entry);
    if (cn == nullptr) {
        return;
    }
    cn = vga_insert_vga_cn(cn, node);
    vga_give(record, cn);
    const int count = std::min<int>(block.def.num_ports, NOF_CN_PORTS);
    for (int i = 0; i < count; ++i) {
        auto* port = vga_status_find<vga_port>(node->port_tree, block.port_names[i]);
        if (port == nullptr) {
            vga_log_absent_local(node, listed_ports, 33, block.header.opcode, block.port_names[i]);
            continue;
        }
        auto port_entry = vga_new_entry<CN_PORT_ENTRY>();
        vga_copy_name(port_entry.cn_name, block.cn_name);
        vga_copy_name(port_entry.port_name, block.port_names[i]);
        vga_cn_port* cn_port = vga_init_vga_cn_port(cn, port, &port_entry);
        if (cn_port == nullptr) {
            return;
        }
        vga_insert_vga_cn_port(cn_port, cn);
    }
}

void vga_process_del_cn(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_CN, completion, NAP_DELETE_CN);
    auto* cn = vga_status_find<vga_cn>(node->cn_tree, block.cn_name);
    if (block.num_ports == 0) {
        if (cn != nullptr) {
            vga_delete_vga_cn(cn, true);
        }
        return;
    }
    const int count = std::min<int>(block.num_ports, NOF_CN_PORTS);
    for (int i = 0; i < count; ++i) {
        auto* cn_port = cn != nullptr
                            ? vga_status_find<vga_cn_port>(cn->port_tree, block.port_names[i])
                            : nullptr;
        if (cn_port != nullptr) {
            vga_delete_vga_cn_port(cn_port);
        } else {
            vga_log_absent_local(node, listed_cn_ports, 34, block.header.opcode,
                                 block.port_names[i]);
        }
    }
}
