// Routes and session timeouts of LUs 6.2, the node as a host, templates of downstream PUs, and the
// defaults of APPC over IP.
#include "nof/cn.h"
#include "nof/ipbridge.h"
#include "nof/node.h"
#include "nof/primary.h"
#include "nof/routing.h"
#include "verbs/config_kind.h"

namespace {

constexpr vga_listing routing_listing{vga_flag(VGA_NODE_LS_ROUTING)};
constexpr vga_listing lu62_listing{vga_flag(VGA_NODE_LU62S), VGA_CHECK_LOCAL_LU};
constexpr vga_listing line_listing{vga_flag(VGA_NODE_PRIMARY_LINES)};
constexpr vga_listing lu0_listing{vga_flag(VGA_NODE_PRIMARY_LU0S)};
constexpr vga_listing template_listing{vga_flag(VGA_NODE_DSPU_TEMPLATES)};

constexpr vga_define_row<vga_node, vga_lu62_timeout, LU62_TIMEOUT_ENTRY, DEFINE_LU62_TIMEOUT>
    timeout_define{VGA_VERB(NAP_DEFINE_LU62_TIMEOUT), offsetof(DEFINE_LU62_TIMEOUT, resource_type),
                   offsetof(LU62_TIMEOUT_ENTRY, resource_type), vga_init_vga_lu62_timeout,
                   vga_insert_vga_lu62_timeout};

constexpr vga_define_row<vga_node, vga_primary_line, PRIMARY_LINE_ENTRY, DEFINE_PRIMARY_LINE>
    line_define{VGA_VERB(NAP_DEFINE_PRIMARY_LINE), offsetof(DEFINE_PRIMARY_LINE, line_name),
                offsetof(PRIMARY_LINE_ENTRY, line_name), vga_init_vga_primary_line,
                vga_insert_vga_primary_line};
constexpr vga_absent unknown_line{74, false, 14, line_listing};
constexpr vga_delete_row<vga_node, vga_primary_line, DELETE_PRIMARY_LINE> line_delete{
    VGA_VERB(NAP_DELETE_PRIMARY_LINE), offsetof(DELETE_PRIMARY_LINE, line_name),
    &vga_node::primary_line_tree, vga_delete_vga_primary_line, unknown_line};

constexpr vga_define_row<vga_node, vga_dspu_template, DSPU_TEMPLATE_ENTRY, DEFINE_DSPU_TEMPLATE>
    template_define{VGA_VERB(NAP_DEFINE_DSPU_TEMPLATE),
                    offsetof(DEFINE_DSPU_TEMPLATE, template_name),
                    offsetof(DSPU_TEMPLATE_ENTRY, template_name), vga_init_vga_dspu_template,
                    vga_insert_vga_dspu_template};
constexpr vga_delete_row<vga_node, vga_dspu_template, DELETE_DSPU_TEMPLATE> template_delete{
    VGA_VERB(NAP_DELETE_DSPU_TEMPLATE),
    offsetof(DELETE_DSPU_TEMPLATE, template_name),
    &vga_node::dspu_template_tree,
    vga_delete_vga_dspu_template,
    {71, false, 8, template_listing}};

} // namespace

// ---- LUs 6.2 ----

void vga_process_def_ls_routing(VGA_COMPLETION* completion, vga_node* node,
                                vga_ls_routing** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_LS_ROUTING, completion, NAP_DEFINE_LS_ROUTING);
    vga_give<vga_ls_routing>(record, nullptr);
    if (auto* lu = vga_status_find<vga_lu62>(node->lu62_tree, block.key.lu_name); lu != nullptr) {
        const auto entry = vga_entry_from<LS_ROUTING_ENTRY>(block, offsetof(DEFINE_LS_ROUTING, key),
                                                            offsetof(LS_ROUTING_ENTRY, key));
        vga_give(record,
                 vga_add_entry(lu, entry, vga_init_vga_ls_routing, vga_insert_vga_ls_routing));
    } else {
        vga_log_absent_ebcdic(node, lu62_listing, 68, block.header.opcode, block.key.lu_name);
    }
}

void vga_process_del_ls_routing(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_LS_ROUTING, completion, NAP_DELETE_LS_ROUTING);
    const auto* lu = vga_status_find<vga_lu62>(node->lu62_tree, block.key.lu_name);
    if (lu == nullptr) {
        vga_log_absent_ebcdic(node, lu62_listing, 69, block.header.opcode, block.key.lu_name);
        return;
    }
    vga_rem_plu_key key{};
    vga_copy_name(key.plu_name, block.key.plu_name);
    key.number = block.key.wildcard == 1 ? NAP_WILDCARD_LU_RESOURCE : NAP_LU_RESOURCE;
    if (auto* routing = vga_status_find<vga_ls_routing>(lu->ls_routing_tree, &key);
        routing != nullptr) {
        vga_delete_vga_ls_routing(routing, true);
    } else {
        vga_log_absent_ebcdic(node, routing_listing, 70, block.header.opcode, block.key.plu_name,
                              sizeof(NB_FQNAME));
    }
}

void vga_process_def_lu62_timeout(VGA_COMPLETION* completion, vga_node* node,
                                  vga_lu62_timeout** record) {
    vga_give(record, vga_define(completion, node, timeout_define));
}

void vga_process_del_lu62_timeout(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_LU62_TIMEOUT, completion, NAP_DELETE_LU62_TIMEOUT);
    const vga_lu62_timeout_key key{block.resource_name, &block.resource_type};
    if (auto* timeout = vga_status_find<vga_lu62_timeout>(node->lu62_timeout_tree, &key);
        timeout != nullptr) {
        vga_delete_vga_lu62_timeout(timeout, true);
    }
}

// ---- the node as a host ----

void vga_process_def_primary_line(VGA_COMPLETION* completion, vga_node* node,
                                  vga_primary_line** record) {
    vga_give(record, vga_define(completion, node, line_define));
}

void vga_process_del_primary_line(VGA_COMPLETION* completion, vga_node* node) {
    vga_delete(completion, node, line_delete);
}

void vga_process_def_primary_lu0(VGA_COMPLETION* completion, vga_node* node,
                                 vga_primary_lu0** record) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_PRIMARY_LU0, completion, NAP_DEFINE_PRIMARY_LU0);
    vga_give<vga_primary_lu0>(record, nullptr);
    auto* line = vga_status_find<vga_primary_line>(node->primary_line_tree, block.def.line_name);
    if (line == nullptr) {
        vga_log_absent(node, unknown_line, block.header.opcode, block.def.line_name);
        return;
    }
    const auto entry = vga_entry_from<PRIMARY_LU0_ENTRY>(
        block, offsetof(DEFINE_PRIMARY_LU0, lu_name), offsetof(PRIMARY_LU0_ENTRY, lu_name));
    vga_give(record,
             vga_add_entry(line, entry, vga_init_vga_primary_lu0, vga_insert_vga_primary_lu0));
}

void vga_process_del_primary_lu0(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DELETE_PRIMARY_LU0, completion, NAP_DELETE_PRIMARY_LU0);
    if (auto* lu = vga_find_primary_lu0(node, block.lu_name); lu != nullptr) {
        vga_delete_vga_primary_lu0(lu, true);
    } else {
        vga_log_absent_local(node, lu0_listing, 75, block.header.opcode, block.lu_name);
    }
}

// ---- templates of downstream PUs ----

void vga_process_def_dspu_template(VGA_COMPLETION* completion, vga_node* node,
                                   vga_dspu_template** record) {
    auto* dspu = vga_define(completion, node, template_define);
    vga_give(record, dspu);
    if (dspu == nullptr) {
        return;
    }
    const auto& block = *static_cast<const DEFINE_DSPU_TEMPLATE*>(completion->vcb);
    if (block.def.modify_template == 0) {
        while (auto* old = ntl_avl_first<vga_dslu_template>(dspu->dslu_tree)) {
            vga_delete_vga_dslu_template(old, true);
        }
    }
    vga_define_members(dspu, nof_tail(&block), block.def.num_dslu_templates,
                       vga_init_vga_dslu_template, vga_insert_vga_dslu_template);
}

void vga_process_del_dspu_template(VGA_COMPLETION* completion, vga_node* node) {
    vga_delete(completion, node, template_delete);
}

// ---- APPC over IP ----

void vga_process_def_ipbridge_appcip_defaults(VGA_COMPLETION* completion, vga_node* node) {
    const auto& block = VGA_CONFIG_BLOCK(DEFINE_IPBRIDGE_APPCIP_DEFAULTS, completion,
                                         NAP_DEFINE_IPBRIDGE_APPCIP_DEFAULTS);
    vga_add_ipbridge_appcip_defaults(node, &block.defaults);
}

void vga_process_del_ipbridge_appcip_defaults(VGA_COMPLETION* completion, vga_node* node) {
    VGA_CONFIG_BLOCK(HEADER_ONLY, completion, NAP_DELETE_IPBRIDGE_APPCIP_DEFAULTS);
    vga_delete_ipbridge_appcip_defaults(node);
}
