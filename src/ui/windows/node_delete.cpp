// What the node window deletes: which rows, what is asked about each, and the verbs it takes.
#include "shell/messages.h"
#include "store/store.h"
#include "ui/windows/delete_flow.h"
#include "ui/windows/node_window_internal.h"
#include "verbs/config.h"

#include <cstring>

namespace {

// ---- per type of row ----

struct ROW {
    NB_BYTE type;
    VGA_DELETE_TARGET (*target)(const void* record);
    VGA_DELETE_QUESTION (*question)(const void* record, bool several);
    VGA_DELETE_STEP(*issue)
    (void* record, vga_node* node, NB_USHORT last, NB_ULONG corr, VGA_CALLBACK callback);
};

VGA_DELETE_STEP sent(bool queued) {
    return queued ? VGA_DELETE_STEP::SENT : VGA_DELETE_STEP::FAILED;
}

// Most take one verb.
template <typename RECORD, bool (*Issue)(RECORD*, NB_ULONG, VGA_CALLBACK)>
VGA_DELETE_STEP once(void* record, vga_node*, NB_USHORT last, NB_ULONG corr,
                     VGA_CALLBACK callback) {
    return last != 0 ? VGA_DELETE_STEP::DONE
                     : sent(Issue(static_cast<RECORD*>(record), corr, callback));
}

VGA_DELETE_QUESTION about_deplu(const void*, bool) {
    return {false, 681, "confirmdeletedeplu"};
}
VGA_DELETE_QUESTION about_down_lu(const void*, bool) {
    return {false, 682, "confirmdeletedownlu"};
}
VGA_DELETE_QUESTION about_route(const void*, bool) {
    return {false, 684, "confirmdeletelsrouting"};
}
VGA_DELETE_QUESTION about_primary_lu0(const void*, bool) {
    return {false, 688, "confirmdeleteprimlu"};
}

// ---- connectivity ----

VGA_DELETE_QUESTION about_port(const void* record, bool) {
    const auto* port = static_cast<const vga_port*>(record);
    if (port->vcb->state != NOF_STATE_INACTIVE) {
        return {true, 780, "portactivecantdelete"};
    }
    if (port->ls_tree.first != nullptr) {
        return {false, 781, "deleteporthasls"};
    }
    return {false, 686, "confirmdeleteport"};
}

// Marks the connection networks that no port serves once this one has gone.
void mark_orphans(vga_node* node, const vga_port* port) {
    for (auto* cn = ntl_avl_first<vga_cn>(node->cn_tree); cn != nullptr;
         cn = static_cast<vga_cn*>(ntl_avl_next(&cn->node))) {
        const auto* only = ntl_avl_first<vga_cn_port>(cn->port_tree);
        cn->orphan = only != nullptr && only->port == port && ntl_avl_next(&only->node) == nullptr;
    }
}

vga_cn* take_orphan(vga_node* node) {
    for (auto* cn = ntl_avl_first<vga_cn>(node->cn_tree); cn != nullptr;
         cn = static_cast<vga_cn*>(ntl_avl_next(&cn->node))) {
        if (cn->orphan && cn->port_tree.first == nullptr) {
            cn->orphan = 0;
            return cn;
        }
    }
    return nullptr;
}

VGA_DELETE_STEP delete_port(void* record, vga_node* node, NB_USHORT last, NB_ULONG corr,
                            VGA_CALLBACK callback) {
    if (last == 0) {
        auto* port = static_cast<vga_port*>(record);
        mark_orphans(node, port);
        return sent(vga_issue_del_port(port, corr, callback));
    }
    vga_cn* cn = take_orphan(node);
    return cn != nullptr ? sent(vga_issue_del_cn(cn, corr, callback)) : VGA_DELETE_STEP::DONE;
}

VGA_DELETE_QUESTION about_ls(const void* record, bool) {
    const auto* ls = static_cast<const vga_ls*>(record);
    const NB_BYTE state = ls->vcb->det.state;
    if (vga_is_implicit(ls)) {
        return {true, 698, "cantdeleteimpls"};
    }
    if (state != NOF_STATE_INACTIVE && state != NOF_STATE_FAILED) {
        return {true, 696, "lsactivecantdelete"};
    }
    if (ls->pu_entry != nullptr) {
        return {false, 697, "deletelshaslus"};
    }
    return {false, 683, "confirmdeletels"};
}

VGA_DELETE_QUESTION about_pu(const void* record, bool) {
    const auto* pu = static_cast<const vga_pu*>(record);
    if (pu->vcb.dlur_status == NOF_DLUR_ACTIVE) {
        return {true, 782, "puactivecantdelete"};
    }
    if (pu->lu_tree.first != nullptr) {
        return {false, 783, "deletepuhaslus"};
    }
    return {false, 689, "confirmdeletepu"};
}

VGA_DELETE_QUESTION about_line(const void* record, bool) {
    const auto* line = static_cast<const vga_primary_line*>(record);
    if (line->lu0_tree.first != nullptr) {
        return {false, 695, "deletelinehaslus"};
    }
    return {false, 687, "confirmdeleteprimline"};
}

// ---- LUs ----

VGA_DELETE_TARGET target_deplu(const void* record) {
    return vga_is_lu62(record) ? vga_delete_target<vga_lu62>(record)
                               : vga_delete_target<vga_lu03>(record);
}

VGA_DELETE_STEP delete_deplu(void* record, vga_node* node, NB_USHORT last, NB_ULONG corr,
                             VGA_CALLBACK callback) {
    if (last != 0) {
        return VGA_DELETE_STEP::DONE;
    }
    return vga_is_lu62(record)
               ? once<vga_lu62, vga_issue_del_lu62>(record, node, 0, corr, callback)
               : once<vga_lu03, vga_issue_del_lu03>(record, node, 0, corr, callback);
}

VGA_DELETE_QUESTION about_lu62(const void* record, bool several) {
    const auto* lu = static_cast<const vga_lu62*>(record);
    if (lu == lu->parent->cp_lu) {
        return {true, 676, "cantdeletecplu"};
    }
    if (lu->act_sess_count != 0 && !several) {
        return {false, 680, "lu62d"};
    }
    return {false, 685, "confirmdeletelu62"};
}

// ---- remote systems ----

VGA_DELETE_QUESTION about_rem_sys(const void* record, bool) {
    if (!static_cast<const vga_rem_sys*>(record)->defined) {
        return {true, 679, "cantdeldynamicsys"};
    }
    return {false, 691, "confirmdeleteremnode"};
}

VGA_DELETE_STEP delete_rem_sys(void* record, vga_node* node, NB_USHORT last, NB_ULONG corr,
                               VGA_CALLBACK callback) {
    const auto* rem_sys = static_cast<const vga_rem_sys*>(record);
    if (rem_sys == nullptr || last == NAP_DELETE_DIRECTORY_ENTRY) {
        return VGA_DELETE_STEP::DONE;
    }
    for (auto* plu = ntl_avl_first<vga_rem_plu>(rem_sys->remote_plu_tree); plu != nullptr;
         plu = static_cast<vga_rem_plu*>(ntl_avl_next(&plu->node))) {
        if (plu->plu_defn) {
            return sent(vga_issue_del_plu(plu, corr, callback));
        }
    }
    const NB_USHORT type = rem_sys->vcb.resource_type;
    return sent(vga_issue_del_dir(node, rem_sys->cp_name,
                                  type != 0 ? type : NB_USHORT{NAP_END_NODE_CP_RESOURCE}, corr,
                                  callback));
}

VGA_DELETE_QUESTION about_rem_plu(const void* record, bool) {
    if (vga_is_dynamic(static_cast<const vga_rem_plu*>(record))) {
        return {true, 678, "cantdeldynamicplu"};
    }
    return {false, 690, "confirmdeleteplu"};
}

VGA_DELETE_STEP delete_rem_plu(void* record, vga_node* node, NB_USHORT last, NB_ULONG corr,
                               VGA_CALLBACK callback) {
    auto* plu = static_cast<vga_rem_plu*>(record);
    if (plu != nullptr && last == 0 && plu->plu_defn) {
        return sent(vga_issue_del_plu(plu, corr, callback));
    }
    if (plu != nullptr && last != NAP_DELETE_DIRECTORY_ENTRY && plu->located) {
        return sent(vga_issue_del_dir(node, plu->key.plu_name, plu->key.number, corr, callback));
    }
    return VGA_DELETE_STEP::DONE;
}

constexpr ROW rows[] = {
    {VGA_VIEWER_PORT, vga_delete_target<vga_port>, about_port, delete_port},
    {VGA_VIEWER_LS, vga_delete_target<vga_ls>, about_ls, once<vga_ls, vga_issue_del_ls>},
    {VGA_VIEWER_LS_NO_PU, vga_delete_target<vga_ls>, about_ls, once<vga_ls, vga_issue_del_ls>},
    {VGA_VIEWER_LOCAL_PU, vga_delete_target<vga_pu>, about_pu,
     once<vga_pu, vga_issue_del_internal_pu>},
    {VGA_VIEWER_DEPLU, target_deplu, about_deplu, delete_deplu},
    {VGA_VIEWER_DOWN_LU, vga_delete_target<vga_down_lu>, about_down_lu,
     once<vga_down_lu, vga_issue_del_down_lu>},
    {VGA_VIEWER_PRIMARY_LINE, vga_delete_target<vga_primary_line>, about_line,
     once<vga_primary_line, vga_issue_del_primary_line>},
    {VGA_VIEWER_PRIMARY_LU0, vga_delete_target<vga_primary_lu0>, about_primary_lu0,
     once<vga_primary_lu0, vga_issue_del_primary_lu0>},
    {VGA_VIEWER_LU62, vga_delete_target<vga_lu62>, about_lu62, once<vga_lu62, vga_issue_del_lu62>},
    {VGA_VIEWER_LS_R, vga_delete_target<vga_ls_routing>, about_route,
     once<vga_ls_routing, vga_issue_del_ls_routing>},
    {VGA_VIEWER_REM_SYS, vga_delete_target<vga_rem_sys>, about_rem_sys, delete_rem_sys},
    {VGA_VIEWER_REM_PLU, vga_delete_target<vga_rem_plu>, about_rem_plu, delete_rem_plu},
    {VGA_VIEWER_REM_PLU_NO_SESS, vga_delete_target<vga_rem_plu>, about_rem_plu, delete_rem_plu},
};

const ROW* row_of(NB_BYTE type) {
    const auto* row = std::ranges::find(rows, type, &ROW::type);
    return row != std::end(rows) ? row : nullptr;
}

// ---- for the flow ----

VGA_DELETE_TARGET target(NB_BYTE type, const void* record) {
    return row_of(type)->target(record);
}

VGA_DELETE_QUESTION question(NB_BYTE type, const void* record, bool several) {
    return row_of(type)->question(record, several);
}

void print(NB_BYTE type, const void* record, int message, char* text) {
    if (message == 698) { // an implicit link station goes by the system it leads to
        vga_print_msg(text, gvga_messages[message], "es", int{sizeof(NB_FQNAME)},
                      static_cast<const vga_ls*>(record)->vcb->det.adj_cp_name);
    } else if (type == VGA_VIEWER_LS_R) {
        const auto* route = static_cast<const vga_ls_routing*>(record);
        const NB_NAME8E& lu = route->parent->vcb.lu_name;
        const auto& ls = route->vcb.def.ls_name;
        if (vga_is_wildcard(route)) {
            vga_print_msg(text, gvga_messages[message], "es s cs", int{sizeof lu}, lu,
                          gvga_messages[873], int{sizeof ls}, ls);
        } else {
            vga_print_msg(text, gvga_messages[message], "es es cs", int{sizeof lu}, lu,
                          int{sizeof(NB_FQNAME)}, route->vcb.key.plu_name, int{sizeof ls}, ls);
        }
    } else {
        vga_nodew_print_name(message, type, record, text);
    }
}

VGA_DELETE_STEP issue(NB_BYTE type, void* record, void* owner, NB_USHORT last, NB_ULONG corr,
                      VGA_CALLBACK callback) {
    return row_of(type)->issue(record, static_cast<vga_node*>(owner), last, corr, callback);
}

struct PROCESSOR {
    NB_USHORT opcode;
    void (*process)(VGA_COMPLETION* completion, vga_node* node);
};
constexpr PROCESSOR processors[] = {
    {NAP_DELETE_PORT, vga_process_del_port},
    {NAP_DELETE_CN, vga_process_del_cn},
    {NAP_DELETE_LS, vga_process_del_ls},
    {NAP_DELETE_INTERNAL_PU, vga_process_del_internal_pu},
    {NAP_DELETE_LU_0_TO_3, vga_process_del_lu03},
    {NAP_DELETE_LOCAL_LU, vga_process_del_lu62},
    {NAP_DELETE_DOWNSTREAM_LU, vga_process_del_down_lu},
    {NAP_DELETE_PRIMARY_LINE, vga_process_del_primary_line},
    {NAP_DELETE_PRIMARY_LU0, vga_process_del_primary_lu0},
    {NAP_DELETE_LS_ROUTING, vga_process_del_ls_routing},
    {NAP_DELETE_PARTNER_LU, vga_process_del_plu},
    {NAP_DELETE_DIRECTORY_ENTRY, vga_process_del_dir},
};

void process(VGA_COMPLETION* completion, void* owner) {
    const auto* row =
        std::ranges::find(processors, vcb_header(completion->vcb)->opcode, &PROCESSOR::opcode);
    if (VGA_ASSERT_TEXT(row != std::end(processors), "FALSE")) {
        row->process(completion, static_cast<vga_node*>(owner));
    }
}

constexpr VGA_DELETE_KIND kind{target, question, print, issue, process};

} // namespace

void vga_nodew_delete(Widget widget, XtPointer, XtPointer) {
    vga_node_window* window = vga_nodew_of(widget);
    // The Delete key comes here whatever is selected.
    if (window == nullptr || !window->built || !XtIsSensitive(window->menu_item_del)) {
        return;
    }
    const VGA_NODEW_PANE* pane = vga_nodew_selected_pane(window);
    vga_node* node = vga_nodew_node(window);
    if (pane != nullptr && row_of((node->*pane->root).select_type) != nullptr) {
        vga_delete_selected(&window->common, &(node->*pane->root), kind, node);
    }
}
