// Mode definitions and classes of service, and those of them that every node has.
#include "store/record_util.h"
#include "store/store.h"

#include <array>
#include <string_view>

namespace {

struct Mode {
    std::string_view name;
    std::string_view cos_name;
    NB_USHORT max_ru_upper; // bytes
    NB_BYTE receive_pacing;
    NB_USHORT max_session_limit;
    NB_USHORT initial_session_limit;
    NB_USHORT min_conwinners;
    NB_USHORT min_conlosers;
    NB_BYTE compression; // 1: requested
};

// The modes of the architecture with their usual characteristics.
constexpr std::array<Mode, 13> gv0_sna_modes{{
    {"CPSVCMG", "CPSVCMG", 512, 1, 2, 2, 1, 1, 0},
    {"SNASVCMG", "SNASVCMG", 512, 1, 2, 2, 1, 1, 0},
    {"", "#CONNECT", 4096, 4, 8192, 8, 4, 0, 0},
    {"#INTER", "#INTER", 4096, 20, 8192, 8, 4, 0, 0},
    {"#INTERSC", "#INTERSC", 4096, 20, 8192, 8, 4, 0, 0},
    {"#BATCH", "#BATCH", 4096, 3, 8192, 8, 4, 0, 0},
    {"#BATCHSC", "#BATCHSC", 4096, 3, 8192, 8, 4, 0, 0},
    {"#INTERC", "#INTER", 4096, 20, 8192, 8, 4, 0, 1},
    {"#INTERCS", "#INTERSC", 4096, 20, 8192, 8, 4, 0, 1},
    {"#BATCHC", "#BATCH", 4096, 3, 8192, 8, 4, 0, 1},
    {"#BATCHCS", "#BATCHSC", 4096, 3, 8192, 8, 4, 0, 1},
    {"CPSVRMGR", "SNASVCMG", 512, 1, 2, 2, 1, 1, 0},
    {"QPCSUPP", "#CONNECT", 4096, 7, 8192, 8, 4, 0, 0},
}};

struct Cos {
    std::string_view name;
    NB_BYTE transmission_priority; // 0 low, 1 medium, 2 high, 3 network
};
constexpr std::array<Cos, 7> gvga_sna_cos{{
    {"#CONNECT", 1},
    {"CPSVCMG", 3},
    {"SNASVCMG", 3},
    {"#INTER", 2},
    {"#INTERSC", 2},
    {"#BATCH", 0},
    {"#BATCHSC", 0},
}};

void put_name(NB_BYTE* field, std::string_view name) {
    std::memset(field, ' ', 8);
    std::memcpy(field, name.data(), name.size());
    nba_local_to_ebcdic(field, 8);
}

bool is_sna_mode(const NB_BYTE* mode_name) {
    return std::any_of(gv0_sna_modes.begin(), gv0_sna_modes.end(), [mode_name](const Mode& row) {
        NB_NAME8E name;
        put_name(name, row.name);
        return vga_compare_ebc8(name, mode_name) == 0;
    });
}

vga_cos_row* insert_row(vga_cos_row* row, NTL_AVL_TREE* tree) {
    if (ntl_avl_insert(tree, &row->node)) {
        return row;
    }
    auto* old = vga_older<vga_cos_row>(*tree, &row->vcb.row);
    old->vcb = row->vcb;
    vga_free_record(row);
    return old;
}

} // namespace

// ---- mode definition ----

vga_mode_def* vga_init_vga_mode_def(vga_node* node, const MODE_DEF_ENTRY* entry) {
    auto* mode = vga_new_record<vga_mode_def>();
    if (mode == nullptr) {
        return nullptr;
    }
    mode->parent = node;
    vga_copy_entry(mode->vcb, entry);
    if (mode->vcb.def.description[0] == '\0' && is_sna_mode(mode->vcb.mode_name)) {
        vga_describe(mode->vcb.def.description, 235);
    }
    ntl_avl_init_node(&mode->node, mode, mode->vcb.mode_name);
    vga_init_row(&mode->viewer, VGA_VIEWER_MODE_DEF, mode);
    return mode;
}

vga_mode_def* vga_insert_vga_mode_def(vga_mode_def* mode, vga_node* node) {
    if (ntl_avl_insert(&node->mode_def_tree, &mode->node)) {
        auto* previous = vga_prev<vga_mode_def>(mode->node);
        vga_create_viewer(&node->mode_root, &mode->viewer, VGA_VIEWER_MODE_DEF, mode, nullptr,
                          previous != nullptr ? &previous->viewer : nullptr);
        vga_link_lu62_timeout(node, NOF_TIMEOUT_MODE, mode->vcb.mode_name);
        return mode;
    }
    auto* old = vga_older<vga_mode_def>(node->mode_def_tree, mode->vcb.mode_name);
    old->vcb = mode->vcb;
    old->sna_defined = mode->sna_defined;
    vga_free_record(mode);
    vga_update_row(&node->mode_root, &old->viewer);
    return old;
}

bool vga_init_sna_modes(vga_node* node) {
    for (const Mode& row : gv0_sna_modes) {
        MODE_DEF_ENTRY entry{};
        entry.length = sizeof entry;
        put_name(entry.mode_name, row.name);
        if (ntl_avl_find(&node->mode_def_tree, entry.mode_name) != nullptr) {
            continue;
        }
        put_name(entry.def.cos_name, row.cos_name);
        entry.def.max_ru_upper = row.max_ru_upper;
        entry.def.receive_pacing = row.receive_pacing;
        entry.def.max_session_limit = row.max_session_limit;
        entry.def.initial_session_limit = row.initial_session_limit;
        entry.def.min_conwinners = row.min_conwinners;
        entry.def.min_conlosers = row.min_conlosers;
        entry.def.compression = row.compression;
        vga_mode_def* mode = vga_init_vga_mode_def(node, &entry);
        if (mode == nullptr) {
            return false;
        }
        mode->sna_defined = 1;
        vga_insert_vga_mode_def(mode, node);
    }
    return true;
}

// ---- class of service ----

vga_cos* vga_init_vga_cos(vga_node* node, const COS_ENTRY* entry) {
    auto* cos = vga_new_record<vga_cos>();
    if (cos == nullptr) {
        return nullptr;
    }
    cos->parent = node;
    vga_copy_entry(cos->vcb, entry);
    ntl_avl_init_node(&cos->node, cos, cos->vcb.cos_name);
    ntl_avl_init_tree(&cos->node_row_tree, vga_compare_ushort);
    ntl_avl_init_tree(&cos->tg_row_tree, vga_compare_ushort);
    return cos;
}

vga_cos* vga_insert_vga_cos(vga_cos* cos, vga_node* node) {
    if (ntl_avl_insert(&node->cos_tree, &cos->node)) {
        return cos;
    }
    auto* old = vga_older<vga_cos>(node->cos_tree, cos->vcb.cos_name);
    old->vcb = cos->vcb;
    vga_free_record(cos);
    return old;
}

bool vga_init_sna_cos(vga_node* node) {
    for (const Cos& row : gvga_sna_cos) {
        COS_ENTRY entry{};
        entry.length = sizeof entry;
        put_name(entry.cos_name, row.name);
        entry.transmission_priority = row.transmission_priority;
        vga_cos* cos = vga_init_vga_cos(node, &entry);
        if (cos == nullptr) {
            return false;
        }
        vga_insert_vga_cos(cos, node);
    }
    return true;
}

vga_cos_row* vga_init_vga_cos_row(vga_cos* cos, const COS_ROW_ENTRY* entry) {
    auto* row = vga_new_record<vga_cos_row>();
    if (row != nullptr) {
        row->parent = cos;
        vga_copy_entry(row->vcb, entry);
        ntl_avl_init_node(&row->node, row, &row->vcb.row);
    }
    return row;
}
vga_cos_row* vga_insert_vga_cos_node_row(vga_cos_row* row, vga_cos* cos) {
    return insert_row(row, &cos->node_row_tree);
}
vga_cos_row* vga_insert_vga_cos_tg_row(vga_cos_row* row, vga_cos* cos) {
    return insert_row(row, &cos->tg_row_tree);
}
