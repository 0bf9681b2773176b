// Definitions of transaction programs, and how the invokable ones are loaded.
#include "common/names.h"
#include "store/kind.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

constexpr vga_kind<vga_tp_def> tps{
    &vga_node::tp_def_tree,
    offsetof(vga_tp_def, vcb.tp_name),
    VGA_VIEWER_TP_DEF,
    [](const vga_tp_def* tp) { return vga_place{&tp->parent->tp_root}; },
    "tp_def->gui_data.dialog->parent_item == (NB_VOID *)tp_def",
};
constexpr vga_kind<vga_tp_load_info> load_infos{
    &vga_node::tp_load_tree,
    0, // the key lies in the block
    VGA_VIEWER_TP_LOAD_INFO,
    [](const vga_tp_load_info* info) { return vga_place{&info->parent->tp_load_root}; },
    "tp_load_info->gui_data.dialog->parent_item == (NB_VOID *)tp_load_info",
    [](vga_tp_load_info* info) { vga_free(info->vcb); },
};

NB_USHORT shown_length(const NB_BYTE* tp_name, bool hexadecimal) {
    std::size_t length = TP_NAME_LENGTH;
    while (length > 0 && tp_name[length - 1] == EBCDIC_BLANK) {
        --length;
    }
    return static_cast<NB_USHORT>(hexadecimal ? 2 * length : length);
}

} // namespace

vga_tp_def* vga_init_vga_tp_def(vga_node* node, const TP_DEF_ENTRY* entry) {
    return vga_make<tps>(node, entry);
}
vga_tp_def* vga_insert_vga_tp_def(vga_tp_def* tp, vga_node*) {
    return vga_put<tps>(tp);
}
void vga_delete_vga_tp_def(vga_tp_def* tp, bool redraw) {
    vga_remove<tps>(tp, redraw);
}

vga_tp_load_info* vga_init_vga_tp_load_info(vga_node* node, const TP_LOAD_INFO_ENTRY* entry) {
    auto* info = vga_new_record<vga_tp_load_info>();
    if (info == nullptr) {
        return nullptr;
    }
    const std::size_t items =
        entry->length > sizeof *entry ? std::size_t{entry->length} - sizeof *entry : 0;
    info->parent = node;
    info->vcb = vga_copy_block(entry, items);
    if (info->vcb == nullptr) {
        vga_free_record(info);
        return nullptr;
    }
    NB_USHORT& length = info->vcb->def_data.ltv_length;
    length = static_cast<NB_USHORT>(std::min<std::size_t>(length, items));
    info->hex_tp_name = vga_hex_tp_name(info->vcb->tp_name);
    info->tp_name_length = shown_length(info->vcb->tp_name, info->hex_tp_name);
    ntl_avl_init_node(&info->node, info, info->vcb->tp_name);
    vga_init_row(&info->viewer, VGA_VIEWER_TP_LOAD_INFO, info);
    return info;
}

vga_tp_load_info* vga_insert_vga_tp_load_info(vga_tp_load_info* info, vga_node*) {
    vga_tp_load_info* merged;
    if (vga_meets_older<load_infos>(&info, &merged)) {
        std::swap(info->vcb, merged->vcb);
        info->node.key = info->vcb->tp_name;
        vga_release_record<load_infos>(merged);
        vga_redraw<load_infos>(info);
    }
    return info;
}

void vga_delete_vga_tp_load_info(vga_tp_load_info* info, bool redraw) {
    vga_remove<load_infos>(info, redraw);
}

void vga_release_tps(vga_node* node) {
    vga_release_all<tps>(node);
    vga_release_all<load_infos>(node);
}
