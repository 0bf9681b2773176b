// DLCs, ports, link stations, the ports the program makes itself, connection networks.
#include "common/card_types.h"
#include "shell/globals.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

#include <iterator>
#include <utility>

namespace {

constexpr std::size_t STATUS_OFFSET = 12; // of DLC, port and link station entries
constexpr std::size_t DLC_STATUS = 24;
constexpr std::size_t PORT_STATUS = 32;
static_assert(offsetof(DLC_ENTRY, state) == STATUS_OFFSET);
static_assert(offsetof(PORT_ENTRY, state) == STATUS_OFFSET);
static_assert(offsetof(LS_ENTRY, det) == STATUS_OFFSET);

std::int16_t card_of(const DLC_ENTRY* entry) {
    DLC_SPECIFIC specific{};
    if (entry->specific_length >= sizeof specific.card_type) {
        std::memcpy(&specific, nof_tail(entry), sizeof specific.card_type);
    }
    for (std::size_t i = 0; v0_card_types[i].platform != 0; ++i) {
        const V0_CARD_TYPE& card = v0_card_types[i];
        if (card.protocol == entry->def.dlc_type && card.card_type == specific.card_type &&
            card.platform == gvga_platform) {
            return static_cast<std::int16_t>(i);
        }
    }
    return -1;
}

vga_viewer* last_real_port_row(vga_node* node) {
    vga_port* last = ntl_avl_last<vga_port>(node->port_tree);
    return last != nullptr ? &last->viewer : nullptr;
}

// Frees a port or DLC record that is in no tree.
void free_port(vga_port* port) {
    vga_free(port->vcb);
    vga_free_record(port);
}
void free_dlc(vga_dlc* dlc) {
    vga_free(dlc->vcb);
    vga_free_record(dlc);
}

// Makes *fake: a port record with a DLC of its own, in no tree, named by a message; its row behind
// previous. It stays null without memory.
void make_fake_port(vga_node* node, vga_port** fake, int message, vga_viewer* previous) {
    DLC_ENTRY dlc_entry{};
    dlc_entry.length = sizeof dlc_entry;
    PORT_ENTRY port_entry{};
    port_entry.length = sizeof port_entry;
    NB_DESCRIPTION name;
    vga_describe(name, message);
    const std::size_t length = std::min(std::strlen(name), sizeof port_entry.port_name);
    std::memset(port_entry.port_name, ' ', sizeof port_entry.port_name);
    std::memcpy(port_entry.port_name, name, length);
    std::memcpy(dlc_entry.dlc_name, port_entry.port_name, sizeof dlc_entry.dlc_name);
    std::memcpy(port_entry.def.dlc_name, port_entry.port_name, sizeof port_entry.def.dlc_name);

    vga_dlc* dlc = vga_init_vga_dlc(node, &dlc_entry);
    if (dlc == nullptr) {
        return;
    }
    vga_port* port = vga_init_vga_port(dlc, &port_entry);
    if (port == nullptr) {
        return free_dlc(dlc);
    }
    *fake = port; // which its row goes by
    vga_create_viewer(&node->links_root, &port->viewer, VGA_VIEWER_PORT, port, nullptr, previous);
    vga_expand_viewer(&node->links_root, &port->viewer);
}

void delete_fake_port(vga_node* node, vga_port** fake, bool redraw) {
    vga_port* port = *fake;
    if (port == nullptr) {
        return;
    }
    vga_delete_row(&node->links_root, &port->viewer, redraw);
    *fake = nullptr;
    free_dlc(port->parent);
    free_port(port);
}

NB_BYTE ls_type(const vga_ls* ls) {
    return ls->pu_entry != nullptr || vga_ls_has_local_pu(ls->vcb) || vga_ls_has_down_pu(ls->vcb)
               ? VGA_VIEWER_LS
               : VGA_VIEWER_LS_NO_PU;
}

// The PU that the old definition asked for goes when the new one asks for another or for none.
void drop_replaced_pu(vga_ls* ls, const LS_ENTRY* old_entry, const LS_ENTRY* new_entry) {
    vga_pu* pu = ls->pu_entry;
    if (pu == nullptr) {
        return;
    }
    const bool local = pu->kind == VGA_PU_LOCAL;
    const auto asks = [local](const LS_ENTRY* entry) {
        return local ? vga_ls_has_local_pu(entry) : vga_ls_has_down_pu(entry);
    };
    const auto name = [local](const LS_ENTRY* entry) {
        return local ? entry->def.pu_name : entry->def.dspu_name;
    };
    if (!asks(old_entry) || vga_compare_ebc8(name(old_entry), pu->vcb.pu_name) != 0 ||
        (asks(new_entry) && vga_compare_ebc8(name(new_entry), pu->vcb.pu_name) == 0)) {
        return;
    }
    if (local) {
        vga_delete_vga_local_pu(pu, true);
    } else {
        vga_delete_vga_down_pu(pu, true);
    }
}

// Gives a link station another port, with its row and those of its LUs.
void move_to_port(vga_ls* ls, vga_port* port) {
    vga_viewer_root* root = &port->parent->parent->links_root;
    const bool selected = vga_viewer_selected_alone(root, &ls->viewer);
    const bool expanded = ls->viewer.expanded != 0;
    vga_delete_viewer(root, &ls->viewer, true);
    ntl_avl_delete(&ls->parent->ls_tree, &ls->port_node);
    ntl_avl_insert(&port->ls_tree, &ls->port_node);
    ls->parent = port;
    auto* previous = vga_prev<vga_ls>(ls->port_node);
    vga_create_viewer(root, &ls->viewer, ls_type(ls), ls, &port->viewer,
                      previous != nullptr ? &previous->viewer : nullptr);
    if (ls->pu_entry != nullptr) {
        vga_show_dependent_lus(ls->pu_entry);
    }
    if (expanded) {
        vga_expand_viewer(root, &ls->viewer);
    }
    if (selected) {
        vga_viewer_select_again(root, &ls->viewer);
    }
}

} // namespace

// ---- DLC ----

vga_dlc* vga_init_vga_dlc(vga_node* node, const DLC_ENTRY* entry) {
    auto* dlc = vga_new_record<vga_dlc>();
    if (dlc == nullptr) {
        return nullptr;
    }
    dlc->parent = node;
    dlc->vcb = vga_copy_block(entry, entry->specific_length);
    if (dlc->vcb == nullptr) {
        vga_free_record(dlc);
        return nullptr;
    }
    dlc->card_index = card_of(dlc->vcb);
    ntl_avl_init_node(&dlc->node, dlc, dlc->vcb->dlc_name);
    ntl_avl_init_tree(&dlc->port_tree, vga_compare_asc8);
    return dlc;
}

vga_dlc* vga_insert_vga_dlc(vga_dlc* dlc, vga_node* node) {
    if (ntl_avl_insert(&node->dlc_tree, &dlc->node)) {
        return dlc;
    }
    auto* old = vga_older<vga_dlc>(node->dlc_tree, dlc->vcb->dlc_name);
    vga_carry_over(dlc->vcb, old->vcb, STATUS_OFFSET, DLC_STATUS);
    std::swap(old->vcb, dlc->vcb);
    old->node.key = old->vcb->dlc_name;
    old->card_index = dlc->card_index;
    free_dlc(dlc);
    return old;
}

// ---- port ----

vga_port* vga_init_vga_port(vga_dlc* dlc, const PORT_ENTRY* entry) {
    auto* port = vga_new_record<vga_port>();
    if (port == nullptr) {
        return nullptr;
    }
    port->parent = dlc;
    port->vcb = vga_copy_block(entry, std::size_t{entry->def.port_data_length} +
                                          entry->def.link_data_length);
    if (port->vcb == nullptr) {
        vga_free_record(port);
        return nullptr;
    }
    port->dspu_template = static_cast<vga_dspu_template*>(
        ntl_avl_find(&dlc->parent->dspu_template_tree, port->vcb->def.implicit_dspu_template));
    ntl_avl_init_node(&port->node, port, port->vcb->port_name);
    ntl_avl_init_node(&port->dlc_node, port, port->vcb->port_name);
    ntl_avl_init_tree(&port->ls_tree, vga_compare_asc8);
    vga_init_row(&port->viewer, VGA_VIEWER_PORT, port);
    return port;
}

vga_port* vga_insert_vga_port(vga_port* port, vga_dlc* dlc) {
    vga_node* node = dlc->parent;
    if (ntl_avl_insert(&node->port_tree, &port->node)) {
        ntl_avl_insert(&dlc->port_tree, &port->dlc_node);
        auto* previous = vga_prev<vga_port>(port->node);
        vga_create_viewer(&node->links_root, &port->viewer, VGA_VIEWER_PORT, port, nullptr,
                          previous != nullptr ? &previous->viewer : nullptr);
        vga_expand_viewer(&node->links_root, &port->viewer);
        return port;
    }
    auto* old = vga_older<vga_port>(node->port_tree, port->vcb->port_name);
    vga_carry_over(port->vcb, old->vcb, STATUS_OFFSET, PORT_STATUS);
    std::swap(old->vcb, port->vcb);
    old->node.key = old->dlc_node.key = old->vcb->port_name;
    old->dspu_template = port->dspu_template;
    if (old->parent != dlc) {
        ntl_avl_delete(&old->parent->port_tree, &old->dlc_node);
        ntl_avl_insert(&dlc->port_tree, &old->dlc_node);
        old->parent = dlc;
    }
    old->vcb->dlc_type = dlc->vcb->def.dlc_type;
    free_port(port);
    vga_update_row(&node->links_root, &old->viewer);
    return old;
}

vga_port* vga_get_dlur_fake_port(vga_node* node) {
    if (node->dlur_fake_port == nullptr) {
        make_fake_port(node, &node->dlur_fake_port, 232, last_real_port_row(node));
    }
    return node->dlur_fake_port;
}

vga_port* vga_get_primary_line_fake_port(vga_node* node) {
    if (node->primary_line_fake_port == nullptr) {
        make_fake_port(node, &node->primary_line_fake_port, 233,
                       node->dlur_fake_port != nullptr ? &node->dlur_fake_port->viewer
                                                       : last_real_port_row(node));
    }
    return node->primary_line_fake_port;
}

bool vga_is_fake_port(const vga_port* port) {
    const vga_node* node = port->parent->parent;
    return port == node->dlur_fake_port || port == node->primary_line_fake_port;
}

void vga_delete_vga_dlur_fake_port(vga_node* node, bool redraw) {
    delete_fake_port(node, &node->dlur_fake_port, redraw);
}
void vga_delete_vga_primary_line_fake_port(vga_node* node, bool redraw) {
    delete_fake_port(node, &node->primary_line_fake_port, redraw);
}

// ---- link station ----

bool vga_ls_has_local_pu(const LS_ENTRY* entry) {
    return entry->def.adj_cp_type == NAP_HOST_XID3 || entry->def.adj_cp_type == NAP_HOST_XID0 ||
           entry->def.solicit_sscp_sessions == 1;
}

bool vga_ls_has_down_pu(const LS_ENTRY* entry) {
    return !vga_ls_has_local_pu(entry) && entry->def.dspu_services != 0;
}

vga_ls* vga_init_vga_ls(vga_port* port, const LS_ENTRY* entry) {
    auto* ls = vga_new_record<vga_ls>();
    if (ls == nullptr) {
        return nullptr;
    }
    ls->parent = port;
    ls->vcb = vga_copy_block(entry, entry->def.specific_length);
    if (ls->vcb == nullptr) {
        vga_free_record(ls);
        return nullptr;
    }
    ntl_avl_init_node(&ls->node, ls, ls->vcb->ls_name);
    ntl_avl_init_node(&ls->port_node, ls, ls->vcb->ls_name);
    vga_init_row(&ls->viewer, VGA_VIEWER_LS_NO_PU, ls);
    return ls;
}

vga_ls* vga_insert_vga_ls(vga_ls* ls, vga_port* port) {
    vga_node* node = port->parent->parent;
    if (ntl_avl_insert(&node->ls_tree, &ls->node)) {
        ntl_avl_insert(&port->ls_tree, &ls->port_node);
        auto* previous = vga_prev<vga_ls>(ls->port_node);
        vga_create_viewer(&node->links_root, &ls->viewer, ls_type(ls), ls, &port->viewer,
                          previous != nullptr ? &previous->viewer : nullptr);
        return ls;
    }
    auto* old = vga_older<vga_ls>(node->ls_tree, ls->vcb->ls_name);
    const NB_BYTE activation = ls->vcb->det.activation_flags;
    vga_carry_over(ls->vcb, old->vcb, STATUS_OFFSET, sizeof(LS_DETAIL));
    ls->vcb->det.activation_flags = activation;
    drop_replaced_pu(old, old->vcb, ls->vcb);
    std::swap(old->vcb, ls->vcb);
    old->node.key = old->port_node.key = old->vcb->ls_name;
    old->vcb->det.dlc_type = port->vcb->dlc_type;
    std::memcpy(old->vcb->det.port_address, port->vcb->def.local_address,
                sizeof port->vcb->def.local_address);
    old->restart_check = 0;
    old->viewer.type = ls_type(old);
    vga_free(ls->vcb);
    vga_free_record(ls);
    if (old->parent != port) {
        move_to_port(old, port);
    }
    vga_update_row(&node->links_root, &old->viewer);
    return old;
}

// ---- connection network ----

vga_cn* vga_init_vga_cn(vga_node* node, const CN_ENTRY* entry) {
    auto* cn = vga_new_record<vga_cn>();
    if (cn != nullptr) {
        cn->parent = node;
        cn->pending = (node->build_flags & vga_flag(VGA_NODE_CN_PORTS)) != 0;
        vga_copy_entry(cn->vcb, entry);
        ntl_avl_init_node(&cn->node, cn, cn->vcb.cn_name);
        ntl_avl_init_tree(&cn->port_tree, vga_compare_asc8);
    }
    return cn;
}

vga_cn* vga_insert_vga_cn(vga_cn* cn, vga_node* node) {
    if (ntl_avl_insert(&node->cn_tree, &cn->node)) {
        return cn;
    }
    auto* old = vga_older<vga_cn>(node->cn_tree, cn->vcb.cn_name);
    old->vcb = cn->vcb;
    vga_free_record(cn);
    return old;
}

vga_cn_port* vga_init_vga_cn_port(vga_cn* cn, vga_port* port, const CN_PORT_ENTRY* entry) {
    auto* cn_port = vga_new_record<vga_cn_port>();
    if (cn_port != nullptr) {
        cn_port->parent = cn;
        cn_port->port = port;
        vga_copy_entry(cn_port->vcb, entry);
        ntl_avl_init_node(&cn_port->node, cn_port, cn_port->vcb.port_name);
    }
    return cn_port;
}

vga_cn_port* vga_insert_vga_cn_port(vga_cn_port* cn_port, vga_cn* cn) {
    if (ntl_avl_insert(&cn->port_tree, &cn_port->node)) {
        vga_cn* before = std::exchange(cn_port->port->cn, cn); // a port serves one network
        if (before != nullptr && before != cn) {
            vga_delete_vga_cn_port(
                vga_find<vga_cn_port>(before->port_tree, cn_port->vcb.port_name));
        }
        return cn_port;
    }
    auto* old = vga_older<vga_cn_port>(cn->port_tree, cn_port->vcb.port_name);
    vga_free_record(cn_port);
    return old;
}
