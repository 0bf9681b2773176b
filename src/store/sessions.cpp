// Sessions the node reports while they run: RTP connections, and APPC over IP with its defaults.
#include "store/kind.h"
#include "store/remove.h"
#include "store/store.h"

namespace {

constexpr vga_kind<vga_rtp_conn> conns{
    &vga_node::rtp_conn_tree,
    offsetof(vga_rtp_conn, vcb.connection_id),
    VGA_VIEWER_RTP_CONN,
    [](const vga_rtp_conn* conn) {
        vga_node* node = conn->parent;
        return vga_place{&node->rtp_root, nullptr, &node->rtp_title};
    },
    "rtp_conn->gui_data.dialog->parent_item == (NB_VOID *)rtp_conn",
};
constexpr vga_kind<vga_appcip_sess> appcips{
    &vga_node::appcip_sess_tree,
    offsetof(vga_appcip_sess, vcb.session.lu_name),
    VGA_VIEWER_APPCIP_SESS,
    [](const vga_appcip_sess* sess) {
        vga_node* node = sess->parent;
        return vga_place{&node->appcip_root, nullptr, &node->appcip_title};
    },
    "appcip_sess->gui_data.dialog->parent_item == (NB_VOID *)appcip_sess",
};

// A session of that number has ended.
void drop_number(vga_node* node, const NB_ULONG* number) {
    if (auto* sess = vga_find<vga_appcip_sess>(node->appcip_id_tree, number); sess != nullptr) {
        vga_delete_vga_appcip_sess(sess, true);
    }
}

} // namespace

vga_rtp_conn* vga_init_vga_rtp_conn(vga_node* node, const RTP_CONNECTION_ENTRY* entry) {
    auto* conn = vga_make<conns>(node, entry);
    if (conn != nullptr) {
        ntl_avl_init_node(&conn->name_node, conn, conn->vcb.rtp_name);
    }
    return conn;
}

vga_rtp_conn* vga_insert_vga_rtp_conn(vga_rtp_conn* conn, vga_node* node) {
    vga_rtp_conn* merged;
    if (vga_meets_older<conns>(&conn, &merged)) {
        vga_leave_tree(&node->rtp_conn_name_tree, &conn->name_node);
        conn->vcb = merged->vcb;
        conn->check_mark = 0;
        vga_release_record<conns>(merged);
        vga_redraw<conns>(conn);
    }
    ntl_avl_insert(&node->rtp_conn_name_tree, &conn->name_node);
    return conn;
}

void vga_delete_vga_rtp_conn(vga_rtp_conn* conn, bool redraw) {
    vga_leave_tree(&conn->parent->rtp_conn_name_tree, &conn->name_node);
    vga_remove<conns>(conn, redraw);
}

vga_appcip_sess* vga_init_vga_appcip_sess(vga_node* node, const IPBRIDGE_APPCIP_ENTRY* entry) {
    auto* sess = vga_make<appcips>(node, entry);
    if (sess != nullptr) {
        ntl_avl_init_node(&sess->id_node, sess, &sess->vcb.session.session_id);
    }
    return sess;
}

vga_appcip_sess* vga_insert_vga_appcip_sess(vga_appcip_sess* sess, vga_node* node) {
    vga_appcip_sess* merged;
    if (vga_meets_older<appcips>(&sess, &merged)) {
        vga_leave_tree(&node->appcip_id_tree, &sess->id_node);
        sess->vcb = merged->vcb;
        sess->check_mark = 0;
        vga_release_record<appcips>(merged);
        vga_redraw<appcips>(sess);
    }
    drop_number(node, &sess->vcb.session.session_id);
    ntl_avl_insert(&node->appcip_id_tree, &sess->id_node);
    return sess;
}

void vga_delete_vga_appcip_sess(vga_appcip_sess* sess, bool redraw) {
    vga_leave_tree(&sess->parent->appcip_id_tree, &sess->id_node);
    vga_remove<appcips>(sess, redraw);
}

void vga_delete_ipbridge_appcip_defaults(vga_node* node) {
    vga_free(node->appcip_defaults);
    node->appcip_defaults = nullptr;
    vga_update_row(&node->appcip_root, &node->appcip_title);
}

void vga_release_sessions(vga_node* node) {
    vga_release_all<conns>(node);
    vga_release_all<appcips>(node);
    vga_free(node->appcip_defaults);
}
