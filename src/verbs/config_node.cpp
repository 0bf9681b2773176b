// The definition of a node and its defaults.
#include "common/names.h"
#include "shell/globals.h"
#include "verbs/config_util.h"

namespace {

// The node of a handle, but never another kind of record.
vga_node* node_of_handle(NB_HANDLE handle) {
    for (auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree); node != nullptr;
         node = static_cast<vga_node*>(ntl_avl_next(&node->node))) {
        if (node->handle == handle) {
            return node;
        }
    }
    return nullptr;
}

// A name of a block, whether it ends with blanks or zeros.
vga_node* node_named(const NB_NODE_NAME& field) {
    std::size_t length = strnlen(field, sizeof field);
    while (length > 0 && field[length - 1] == ' ') {
        --length;
    }
    NB_NODE_NAME name{};
    std::memcpy(name, field, length);
    return vga_find_node(name);
}

// The control point's LU follows the node's name and alias. One that has both stays, with all that
// depends on it.
void renew_cp_lu(vga_node* node) {
    if (vga_lu62* cp_lu = node->cp_lu; cp_lu != nullptr) {
        NB_NAME8E network;
        NB_NAME8E name;
        ntl_split_fq_name(node->vcb.parameters.cp_name, network, name);
        if (std::memcmp(cp_lu->vcb.lu_name, name, sizeof name) == 0 &&
            std::memcmp(cp_lu->vcb.def.lu_alias, node->vcb.parameters.cp_alias,
                        sizeof node->vcb.parameters.cp_alias) == 0) {
            return;
        }
        vga_delete_vga_lu62(cp_lu, true);
    }
    vga_create_fake_cp_lu(node); // sets exit code 1 itself
}

void redraw_mode(vga_node* node, const NB_BYTE* name) {
    auto* mode = vga_status_find<vga_mode_def>(node->mode_def_tree, name);
    if (mode != nullptr && AVL_IN_TREE(mode->viewer.node)) {
        vga_update_viewer(&node->mode_root, &mode->viewer);
    }
}

} // namespace

void vga_process_def_node(VGA_COMPLETION* completion) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_NODE, completion, NAP_DEFINE_NODE);
    vga_node* node = node_of_handle(completion->corr);
    if (node == nullptr) {
        node = node_named(block.node_name);
    }
    if (node == nullptr) {
        vga_log_unknown_local(32, block.header.opcode, block.node_name,
                              static_cast<int>(strnlen(block.node_name, sizeof block.node_name)));
        return;
    }
    node->vcb.parameters = block.parameters;
    renew_cp_lu(node);
    if (gvga_exit_code == 0) {
        vga_init_sna_modes(node) && vga_init_sna_cos(node);
    }
    node->node_state = VGA_NODE_STATE_STOPPED;
    vga_redraw_node(node);
}

void vga_process_def_defaults(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_DEFAULTS, completion, NAP_DEFINE_DEFAULTS);
    NB_NAME8E old_mode;
    vga_copy_name(old_mode, node->defaults.default_mode_name);
    node->defaults = block.defaults;
    NB_NAME8E& mode = node->defaults.default_mode_name;
    if (mode[0] == 0) {
        std::memset(mode, EBCDIC_BLANK, sizeof mode);
    }
    if (std::memcmp(old_mode, mode, sizeof mode) != 0) {
        redraw_mode(node, old_mode);
        redraw_mode(node, mode);
    }
}
