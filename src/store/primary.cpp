// The node as a host: primary lines under the port that stands for them all, and their LUs.
#include "store/kind.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

void release_lus(vga_primary_line* line);

constexpr vga_kind<vga_primary_line> lines{
    &vga_node::primary_line_tree,
    offsetof(vga_primary_line, vcb.line_name),
    VGA_VIEWER_PRIMARY_LINE,
    [](const vga_primary_line* line) {
        return vga_place{&line->parent->links_root, &line->parent->primary_line_fake_port->viewer};
    },
    "primary_line->gui_data.dialog->parent_item == (NB_VOID *)primary_line",
    release_lus,
};
constexpr vga_kind<vga_primary_lu0> lus{
    &vga_primary_line::lu0_tree,
    offsetof(vga_primary_lu0, vcb.lu_name),
    VGA_VIEWER_PRIMARY_LU0,
    [](const vga_primary_lu0* lu) {
        return vga_place{&lu->parent->parent->links_root, &lu->parent->viewer};
    },
    "primary_lu0->gui_data.dialog->parent_item == (NB_VOID *)primary_lu0",
};

void release_lus(vga_primary_line* line) {
    vga_release_all<lus>(line);
}

} // namespace

vga_primary_line* vga_init_vga_primary_line(vga_node* node, const PRIMARY_LINE_ENTRY* entry) {
    auto* line = vga_make<lines>(node, entry);
    if (line != nullptr) {
        ntl_avl_init_tree(&line->lu0_tree, vga_compare_asc8);
    }
    return line;
}

vga_primary_line* vga_insert_vga_primary_line(vga_primary_line* line, vga_node* node) {
    if (vga_get_primary_line_fake_port(node) == nullptr) {
        vga_release_record<lines>(line);
        return nullptr;
    }
    return vga_put<lines>(line);
}

void vga_delete_vga_primary_line(vga_primary_line* line, bool redraw) {
    vga_node* node = line->parent;
    while (auto* lu = ntl_avl_first<vga_primary_lu0>(line->lu0_tree)) {
        vga_delete_vga_primary_lu0(lu, false);
    }
    vga_remove<lines>(line, redraw);
    if (node->primary_line_tree.root == nullptr) {
        vga_delete_vga_primary_line_fake_port(node, redraw);
    }
}

vga_primary_lu0* vga_init_vga_primary_lu0(vga_primary_line* line, const PRIMARY_LU0_ENTRY* entry) {
    return vga_make<lus>(line, entry);
}

vga_primary_lu0* vga_insert_vga_primary_lu0(vga_primary_lu0* lu, vga_primary_line* line) {
    vga_primary_lu0* old = vga_find_primary_lu0(line->parent, lu->vcb.lu_name);
    if (old == nullptr || old->parent == line) {
        return vga_put<lus>(lu);
    }
    vga_delete_row(&line->parent->links_root, &old->viewer, true);
    ntl_avl_delete(&old->parent->lu0_tree, &old->node);
    old->parent = line;
    old->vcb = lu->vcb;
    vga_release_record<lus>(lu);
    ntl_avl_insert(&line->lu0_tree, &old->node);
    vga_show<lus>(old);
    return old;
}

vga_primary_lu0* vga_find_primary_lu0(const vga_node* node, const char* lu_name) {
    for (auto* line = ntl_avl_first<vga_primary_line>(node->primary_line_tree); line != nullptr;
         line = vga_next<vga_primary_line>(line->node)) {
        if (auto* lu = vga_find<vga_primary_lu0>(line->lu0_tree, lu_name); lu != nullptr) {
            return lu;
        }
    }
    return nullptr;
}

void vga_delete_vga_primary_lu0(vga_primary_lu0* lu, bool redraw) {
    vga_remove<lus>(lu, redraw);
}

void vga_release_primary_lines(vga_node* node) {
    vga_release_all<lines>(node);
}
