// Templates of downstream PUs and their ranges of LUs.
#include "store/kind.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

void release_template(vga_dspu_template* dspu);

constexpr vga_kind<vga_dspu_template> dspus{
    &vga_node::dspu_template_tree,
    offsetof(vga_dspu_template, vcb.template_name),
    0,
    nullptr,
    "dspu_template->gui_data.dialog->parent_item == (NB_VOID *)dspu_template",
    release_template,
};
constexpr vga_kind<vga_dslu_template> dslus{
    &vga_dspu_template::dslu_tree,
    offsetof(vga_dslu_template, vcb.first_nau),
    VGA_VIEWER_DSLU_TEMPLATE,
    [](const vga_dslu_template* dslu) { return vga_place{&dslu->parent->dslu_root}; },
    nullptr,
    [](vga_dslu_template* dslu) {
        vga_detach(&dslu->gui_data.dslup_dialog, dslu,
                   "dslu_template->gui_data.dslup_dialog->parent_item == (NB_VOID "
                   "*)dslu_template");
    },
};

void release_template(vga_dspu_template* dspu) {
    vga_viewer_destroy_root(&dspu->dslu_root);
    vga_release_all<dslus>(dspu);
}

// First address, then last.
int compare_ranges(const void* a, const void* b) {
    return std::memcmp(a, b, 2);
}
static_assert(offsetof(DSLU_TEMPLATE, last_nau) == offsetof(DSLU_TEMPLATE, first_nau) + 1);

bool names(const vga_port* port, const vga_dspu_template* dspu) {
    return vga_compare_asc8(port->vcb->def.implicit_dspu_template, dspu->vcb.template_name) == 0;
}

} // namespace

vga_dspu_template* vga_init_vga_dspu_template(vga_node* node, const DSPU_TEMPLATE_ENTRY* entry) {
    auto* dspu = vga_make<dspus>(node, entry);
    if (dspu == nullptr) {
        return nullptr;
    }
    ntl_avl_init_tree(&dspu->dslu_tree, compare_ranges);
    if (!vga_viewer_init_root(&dspu->dslu_root)) {
        vga_free_record(dspu);
        VGA_FATAL(VGA_EXIT_INTERNAL, 0);
        return nullptr;
    }
    return dspu;
}

vga_dspu_template* vga_insert_vga_dspu_template(vga_dspu_template* dspu, vga_node* node) {
    dspu = vga_put<dspus>(dspu);
    for (auto* port = ntl_avl_first<vga_port>(node->port_tree); port != nullptr;
         port = vga_next<vga_port>(port->node)) {
        if (names(port, dspu)) {
            port->dspu_template = dspu;
        }
    }
    return dspu;
}

void vga_delete_vga_dspu_template(vga_dspu_template* dspu, bool) {
    for (auto* port = ntl_avl_first<vga_port>(dspu->parent->port_tree); port != nullptr;
         port = vga_next<vga_port>(port->node)) {
        if (port->dspu_template == dspu) {
            port->dspu_template = nullptr;
        }
    }
    vga_remove<dspus>(dspu, false);
}

vga_dslu_template* vga_init_vga_dslu_template(vga_dspu_template* dspu, const DSLU_TEMPLATE* entry) {
    return vga_make<dslus>(dspu, entry);
}
vga_dslu_template* vga_insert_vga_dslu_template(vga_dslu_template* dslu, vga_dspu_template*) {
    return vga_put<dslus>(dslu);
}
void vga_delete_vga_dslu_template(vga_dslu_template* dslu, bool redraw) {
    vga_remove<dslus>(dslu, redraw);
}

void vga_release_templates(vga_node* node) {
    vga_release_all<dspus>(node);
}
