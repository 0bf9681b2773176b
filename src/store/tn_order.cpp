// The order of TN3270 client sessions: clients one after the other, each client's sessions by port.
#include "store/record_util.h"
#include "store/tracking.h"

vga_tn_sess* vga_get_next_tn_sess(const vga_tn_sess* session, const vga_node* node) {
    if (session != nullptr) {
        if (auto* next = vga_next<vga_tn_sess>(session->node); next != nullptr) {
            return next;
        }
    }
    auto* client = session != nullptr ? vga_next<vga_tn_client>(session->parent->node)
                                      : ntl_avl_first<vga_tn_client>(node->tn_client_tree);
    while (client != nullptr && client->sess_tree.root == nullptr) {
        client = vga_next<vga_tn_client>(client->node);
    }
    return client != nullptr ? ntl_avl_first<vga_tn_sess>(client->sess_tree) : nullptr;
}

vga_tn_sess* vga_get_prev_tn_sess(const vga_tn_sess* session, const vga_node* node) {
    if (session != nullptr) {
        if (auto* previous = vga_prev<vga_tn_sess>(session->node); previous != nullptr) {
            return previous;
        }
    }
    auto* client = session != nullptr ? vga_prev<vga_tn_client>(session->parent->node)
                                      : ntl_avl_last<vga_tn_client>(node->tn_client_tree);
    while (client != nullptr && client->sess_tree.root == nullptr) {
        client = vga_prev<vga_tn_client>(client->node);
    }
    return client != nullptr ? ntl_avl_last<vga_tn_sess>(client->sess_tree) : nullptr;
}
