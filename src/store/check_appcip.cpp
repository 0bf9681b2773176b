// The check of the sessions of APPC over IP.
#include "store/checks.h"
#include "store/record_util.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

void send(vga_node* node, const void* last) {
    vga_check_sent(vga_issue_query(VGA_QUERY_APPCIP, node, last, 0, 0, vga_check_ipbridge_sess),
                   node, VGA_CHECK_IPBRIDGE_SESS);
}

void set_marks(vga_node* node) {
    for (auto* sess = ntl_avl_first<vga_appcip_sess>(node->appcip_sess_tree); sess != nullptr;
         sess = vga_next<vga_appcip_sess>(sess->node)) {
        sess->check_mark = 1;
    }
}

void remove_marked(vga_node* node) {
    vga_appcip_sess* next;
    for (auto* sess = ntl_avl_first<vga_appcip_sess>(node->appcip_sess_tree); sess != nullptr;
         sess = next) {
        next = vga_next<vga_appcip_sess>(sess->node);
        if (sess->check_mark != 0) {
            vga_delete_vga_appcip_sess(sess, true);
        }
    }
}

} // namespace

void vga_start_check_ipbridge_sess(vga_node* node) {
    // The end of an older check would remove what only this one marks, its pages bring back what
    // has gone.
    vga_check_drop(node, NAP_QUERY_IPBRIDGE_APPCIP, 0, vga_check_ipbridge_sess);
    set_marks(node);
    if (node->appcip_defaults == nullptr) {
        node->checks_running[VGA_CHECK_IPBRIDGE_SESS] = 0;
        return remove_marked(node);
    }
    node->checks_running[VGA_CHECK_IPBRIDGE_SESS] = 1;
    send(node, nullptr);
}

void vga_check_ipbridge_sess(VGA_COMPLETION* completion) {
    auto* node = static_cast<vga_node*>(vga_check_record(completion, VGA_CHECK_IPBRIDGE_SESS));
    if (node == nullptr) {
        return;
    }
    const IPBRIDGE_APPCIP_ENTRY* last = nullptr;
    vga_check_entries entries(VGA_QUERY_APPCIP, completion->vcb);
    while (const void* entry = entries.next()) {
        last = static_cast<const IPBRIDGE_APPCIP_ENTRY*>(entry);
        vga_appcip_sess* sess = vga_init_vga_appcip_sess(node, last);
        if (sess == nullptr) {
            return vga_check_ends(node, VGA_CHECK_IPBRIDGE_SESS);
        }
        vga_insert_vga_appcip_sess(sess, node);
    }
    if (last != nullptr && entries.more()) {
        return send(node, last);
    }
    const NB_USHORT code = vcb_header(completion->vcb)->primary_rc;
    if (!entries.more() && (code == NAP_OK || code == NAP_NO_ENTRIES)) {
        remove_marked(node);
    }
    vga_check_ends(node, VGA_CHECK_IPBRIDGE_SESS);
}
