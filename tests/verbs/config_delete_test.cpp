// The delete verbs: what each of them sends, and where to.
#include "store/fixture.h"

#include "nof/cn.h"
#include "nof/pool.h"
#include "verbs/config.h"

#include <functional>

namespace store_test {
namespace {

constexpr NB_HANDLE NODE = 101;
constexpr NB_HANDLE TP_FILE = 13;
constexpr NB_HANDLE DOMAIN = 11;
constexpr NB_ULONG CORR = 77;

void no_completion(VGA_COMPLETION*) {}

// Records of every kind that can be deleted, in no tree: an issuer reads their keys only.
struct Records {
    vga_dlc dlc{};
    vga_port port{};
    vga_ls ls{};
    vga_pu pu{};
    vga_lu03 lu03{};
    vga_down_lu down_lu{};
    vga_lu62 lu62{};
    vga_dspu_template dspu_template{};
    vga_sys_pool sys_pool{};
    vga_pool pool{};
    vga_mode_def mode{};
    vga_rem_sys rem_sys{};
    vga_rem_plu plu{};
    vga_ls_routing routing{};
    vga_lu62_timeout timeout{};
    vga_tp_def tp{};
    vga_tp_load_info tp_load{};
    vga_userid_password userid{};
    vga_lu_lu_password password{};
    vga_security_access_list access_list{};
    vga_tn_client client{};
    vga_tn_sess session{};
    vga_tn_assoc assoc{};
    vga_tn_redirect redirect{};
    vga_primary_line line{};
    vga_primary_lu0 lu0{};
    vga_cpic cpic{};
    vga_user user{};
    vga_user_sess user_sess{};
    vga_rje_wkstn wkstn{};
    DLC_ENTRY dlc_entry = store_test::dlc("DLC1");
    PORT_ENTRY port_entry = store_test::port("PORT1", "DLC1");
    LS_ENTRY ls_entry = store_test::ls("LS1", "PORT1");
    TP_LOAD_INFO_ENTRY load_entry{};

    explicit Records(vga_node* node) {
        dlc.parent = node;
        dlc.vcb = &dlc_entry;
        port.parent = &dlc;
        port.vcb = &port_entry;
        ls.parent = &port;
        ls.vcb = &ls_entry;
        pu.parent = node;
        put(pu.vcb.pu_name, "PU1");
        lu03.parent = down_lu.parent = &pu;
        put(lu03.vcb.lu_name, "LU3");
        put(down_lu.vcb.dslu_name, "DSLU");
        lu62.parent = dspu_template.parent = mode.parent = node;
        put(lu62.vcb.lu_name, "LU62");
        put(dspu_template.vcb.template_name, "TEMPLATE");
        pool.parent = &sys_pool;
        std::memcpy(pool.node_name, node->node_name, sizeof pool.node_name);
        put(sys_pool.pool_name, "POOL");
        put(mode.vcb.mode_name, "#INTER");
        rem_sys.parent = node;
        plu.parent = &rem_sys;
        put(plu.key.plu_name, "NET.PARTNER");
        routing.parent = &lu62;
        put(routing.vcb.key.lu_name, "LU62");
        put(routing.vcb.key.plu_name, "NET.*");
        routing.vcb.key.wildcard = 1;
        timeout.parent = tp.parent = tp_load.parent = userid.parent = password.parent =
            access_list.parent = client.parent = assoc.parent = redirect.parent = line.parent =
                node;
        timeout.vcb.resource_type = NOF_TIMEOUT_MODE;
        put(timeout.vcb.resource_name, "#INTER");
        put(tp.vcb.tp_name, "PAYROLL");
        tp_load.vcb = &load_entry;
        put(load_entry.tp_name, "PAYROLL");
        put(load_entry.lu_alias, "ALIAS");
        put(userid.vcb.user_id, "ANNA");
        put(password.vcb.key.lu_name, "LU62");
        put(password.vcb.key.plu_name, "NET.PARTNER");
        put(access_list.vcb.list_name, "TELLERS");
        client.vcb.client.default_record = 1;
        std::strcpy(client.vcb.client.address, "desk7");
        session.parent = &client;
        session.vcb.port = 2323;
        put(assoc.vcb.display_lu_name, "DISPLAY");
        redirect.vcb.key.client_port = 992;
        put(line.vcb.line_name, "LINE1");
        lu0.parent = &line;
        put(lu0.vcb.lu_name, "LU0");
        put(cpic.vcb.sym_dest_name, "CPIC");
        put(user.vcb.user_name, "berta");
        user_sess.parent = &user;
        put(user_sess.vcb.session_name, "S1");
        put(wkstn.vcb.wkstn_name, "WKS1");
    }
};

struct Piece { // of a block
    std::size_t at;
    std::string bytes;
};
std::string local(const std::string& text, std::size_t width) {
    return text + std::string(width - text.size(), ' ');
}
std::string ebcdic(const std::string& text, std::size_t width) {
    std::string bytes = local(text, width);
    nba_local_to_ebcdic(bytes.data(), bytes.size());
    return bytes;
}
std::string number(NB_ULONG value, std::size_t width) {
    return std::string(reinterpret_cast<const char*>(&value), width); // as the host has it
}

struct Case {
    NB_USHORT opcode;
    std::size_t size; // as far as it is sent: without room for sessions that are not listed
    NB_HANDLE target;
    std::function<bool(Records&)> issue;
    std::vector<Piece> pieces;
};

std::vector<Case> cases(vga_node* node) {
    const auto by_name = [](NB_USHORT opcode, std::function<bool(Records&)> issue,
                            const std::string& name) {
        return Case{opcode, 20, NODE, std::move(issue), {{12, name}}};
    };
#define ISSUE(call) [=]([[maybe_unused]] Records& r) { return call; }
#define END CORR, no_completion
    return {
        by_name(0x2043, ISSUE(vga_issue_del_dlc(&r.dlc, END)), local("DLC1", 8)),
        by_name(0x2045, ISSUE(vga_issue_del_port(&r.port, END)), local("PORT1", 8)),
        by_name(0x2044, ISSUE(vga_issue_del_ls(&r.ls, END)), local("LS1", 8)),
        by_name(0x6004, ISSUE(vga_issue_del_internal_pu(&r.pu, END)), ebcdic("PU1", 8)),
        by_name(0x0044, ISSUE(vga_issue_del_lu62(&r.lu62, END)), ebcdic("LU62", 8)),
        by_name(0x5002, ISSUE(vga_issue_del_lu03(&r.lu03, END)), ebcdic("LU3", 8)),
        by_name(0x5008, ISSUE(vga_issue_del_down_lu(&r.down_lu, END)), ebcdic("DSLU", 8)),
        by_name(0x003F, ISSUE(vga_issue_del_mode(&r.mode, END)), ebcdic("#INTER", 8)),
        by_name(0xF096, ISSUE(vga_issue_del_tn_assoc(&r.assoc, END)), ebcdic("DISPLAY", 8)),
        by_name(0xF0C5, ISSUE(vga_issue_del_primary_lu0(&r.lu0, END)), local("LU0", 8)),
        {0x500B,
         32,
         NODE,
         ISSUE(vga_issue_del_dspu_template(&r.dspu_template, END)),
         {{12, local("TEMPLATE", 8)}}},
        {0x5005,
         104,
         NODE,
         ISSUE(vga_issue_del_lu_pool(&r.pool, {}, END)),
         {{12, ebcdic("POOL", 8)}, {20, number(0, 2)}}},
        {0x5005,
         104,
         NODE,
         [](Records& r) {
             vga_lu03* const lus[] = {&r.lu03};
             return vga_issue_del_lu_pool(&r.pool, lus, END);
         },
         {{12, ebcdic("POOL", 8)}, {20, number(1, 2)}, {22, ebcdic("LU3", 8)}}},
        {0x003E,
         32,
         NODE,
         ISSUE(vga_issue_del_plu(&r.plu, END)),
         {{12, ebcdic("NET.PARTNER", 17)}}},
        {0x2051,
         32,
         NODE,
         ISSUE(vga_issue_del_dir(node, r.plu.key.plu_name, NAP_WILDCARD_LU_RESOURCE, END)),
         {{12, ebcdic("NET.PARTNER", 17)}, {30, number(4096, 2)}}},
        {0x2047,
         48,
         NODE,
         ISSUE(vga_issue_del_ls_routing(&r.routing, END)),
         {{12, ebcdic("LU62", 8)}, {28, ebcdic("NET.*", 17)}, {45, "\1"}}},
        {0x0065,
         32,
         NODE,
         ISSUE(vga_issue_del_lu62_timeout(&r.timeout, END)),
         {{12, "\4"}, {13, ebcdic("#INTER", 17)}}},
        {0x0031, 76, NODE, ISSUE(vga_issue_del_tp_def(&r.tp, END)), {{12, ebcdic("PAYROLL", 64)}}},
        {0xF0D6,
         84,
         TP_FILE,
         ISSUE(vga_issue_del_tp_load_info(&r.tp_load, END)),
         {{12, ebcdic("PAYROLL", 64)}, {76, local("ALIAS", 8)}}},
        {0x0059,
         188,
         NODE,
         ISSUE(vga_issue_del_userid_password(&r.userid, END)),
         {{12, number(1, 2)}, {14, ebcdic("ANNA", 10)}}},
        {0x0061,
         48,
         NODE,
         ISSUE(vga_issue_del_lu_lu_password(&r.password, END)),
         {{12, ebcdic("LU62", 8)}, {28, ebcdic("NET.PARTNER", 17)}}},
        {0xF0D3,
         32,
         NODE,
         ISSUE(vga_issue_del_security_access_list(&r.access_list, END)),
         {{12, local("TELLERS", 14)}, {28, number(0, 4)}}},
        {0xF091,
         280,
         NODE,
         ISSUE(vga_issue_del_tn_access(&r.client, nullptr, END)),
         {{12, number(1, 2)}, {14, "desk7"}, {272, number(0, 4)}, {276, number(0, 2)}}},
        {0xF091,
         328,
         NODE,
         ISSUE(vga_issue_del_tn_access(&r.client, &r.session, END)),
         {{14, "desk7"}, {272, number(1, 4)}, {280, number(2323, 2)}}},
        {0xF09D,
         356,
         NODE,
         ISSUE(vga_issue_del_tn_redirect(&r.redirect, END)),
         {{270, number(992, 2)}}},
        {0xF0C1,
         28,
         NODE,
         ISSUE(vga_issue_del_primary_line(&r.line, END)),
         {{12, local("LINE1", 14)}}},
        {0xF066,
         80,
         NODE,
         ISSUE(vga_issue_del_extra_data(&r.lu03, END)),
         {{12, number(0x5000, 2)}, {14, ebcdic("LU3", 8)}}},
        {0xFC01, 12, NODE, ISSUE(vga_issue_del_ipbridge_appcip_defaults(node, END)), {}},
        {0x2063, 28, DOMAIN, ISSUE(vga_issue_del_cpic(&r.cpic, END)), {{20, local("CPIC", 8)}}},
        {0xF042,
         132,
         DOMAIN,
         ISSUE(vga_issue_del_user(&r.user, nullptr, END)),
         {{12, local("berta", 32)}, {44, number(0, 4)}, {48, number(0, 1)}}},
        {0xF042,
         132,
         DOMAIN,
         ISSUE(vga_issue_del_user(&r.user, &r.user_sess, END)),
         {{12, local("berta", 32)}, {44, number(1, 4)}, {50, local("S1", 8)}}},
        {0xF062, 16, DOMAIN, ISSUE(vga_issue_del_rje_wkstn(&r.wkstn, END)), {{12, "WKS1"}}},
    };
#undef ISSUE
#undef END
}

// Verbs wait behind one that was purged, so that they stay in the queue for a look at them.
class Deletes : public Store {
protected:
    Deletes() {
        vga_init_verb_queues();
        node->node_handle = NODE;
        node->tp_load_handle = TP_FILE;
        gvga_system->config_file_handle = DOMAIN;
        for (const NB_HANDLE target : {NODE, TP_FILE, DOMAIN}) {
            auto* barrier = vga_new<VGA_QUEUE_ENTRY>();
            barrier->target = target;
            barrier->issued = 1;
            barrier->vcb = vga_new_vcb<VCB_HEADER>(NAP_CLOSE_FILE);
            nba_add_to_q_tail(&gvga_nof_queue, &barrier->link, barrier);
        }
    }
    ~Deletes() override { vga_free_verb_queues(); }
    Records records{node};
};

TEST_F(Deletes, EachNamesItsRecordToWhoHasIt) {
    for (const Case& c : cases(node)) {
        SCOPED_TRACE(testing::Message() << std::hex << c.opcode);
        ASSERT_TRUE(c.issue(records));
        const auto* entry = static_cast<const VGA_QUEUE_ENTRY*>(gvga_nof_queue.previous->owner);
        EXPECT_EQ(entry->target, c.target);
        EXPECT_EQ(entry->corr, CORR);
        EXPECT_EQ(entry->callback, no_completion);
        ASSERT_EQ(vcb_header(entry->vcb)->opcode, c.opcode);
        EXPECT_EQ(nba_block_length(entry->vcb), c.size);
        for (const Piece& piece : c.pieces) {
            EXPECT_EQ(
                std::string(static_cast<const char*>(entry->vcb) + piece.at, piece.bytes.size()),
                piece.bytes)
                << "at " << piece.at;
        }
    }
    EXPECT_EQ(gvga_exit_code, 0);
}

TEST_F(Deletes, WithoutMemoryNothingIsSentAndNothingKept) {
    for (const Case& c : cases(node)) {
        const std::size_t before = vga_allocations_in_use();
        for (const unsigned long nth : {1, 2}) {
            SCOPED_TRACE(testing::Message() << std::hex << c.opcode << " allocation " << nth);
            vga_fail_allocation(nth);
            EXPECT_FALSE(c.issue(records));
            vga_fail_allocation(0);
            EXPECT_EQ(vga_allocations_in_use(), before);
            const bool fatal = c.opcode == NAP_DELETE_DSPU_TEMPLATE && nth == 1;
            EXPECT_EQ(gvga_exit_code, fatal ? VGA_EXIT_INTERNAL : 0);
            gvga_exit_code = 0;
        }
    }
}

} // namespace
} // namespace store_test
