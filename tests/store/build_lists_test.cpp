// The build of the lists of a node beside its links and LUs, lists inside lists among them.
#include "scripted_node.h"

#include <algorithm>

namespace store_test {
namespace {

using Rows = std::vector<std::string>;

struct Listed : Store {
    Listed() {
        vga_do_free_node_res(node, true, nullptr); // the build lists its own
        node = nullptr;
        gvga_querybuf_size = 4096;
        script.node.capabilities = {{1, 1}, {1, 1}, 1, 1, 0, 1, 1, 1, 1};
        script.has(NAP_QUERY_NODE_ALL, node_all("alpha"));
    }
    ~Listed() override { vga_fail_allocation(0); }
    void build() {
        vga_start_build_system();
        script.run();
        node = ntl_avl_first<vga_node>(gvga_system->node_tree);
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(gvga_exit_code, 0) << std::hex << gvga_exit_subcode;
        EXPECT_EQ(node->build_flags, 0u);
    }
    ScriptedNode script;
};

// Entries with a list behind them.
template <typename Entry, typename Item, std::size_t N> struct WithList {
    Entry fixed;
    Item items[N];
};
template <typename Entry, typename Item, std::size_t N> WithList<Entry, Item, N> with_list() {
    WithList<Entry, Item, N> list{};
    list.fixed.length = sizeof list;
    for (Item& item : list.items) {
        item.length = sizeof item;
    }
    return list;
}

void script_everything(ScriptedNode& script) {
    for (const char* name : {"APPL1", "APPL2", "APPL3"}) {
        script.has(NAP_QUERY_LOCAL_LU, lu62(name, name));
        auto route = entry<LS_ROUTING_ENTRY>();
        put(route.key.lu_name, name);
        put(route.key.plu_name, "NET.P");
        script.has(NAP_QUERY_LS_ROUTING, route);
        auto password = entry<LU_LU_PASSWORD_ENTRY>();
        put(password.key.plu_name, "NET.P");
        script.has(NAP_QUERY_LU_LU_PASSWORD, password, name);
        auto timeout = entry<LU62_TIMEOUT_ENTRY>();
        timeout.resource_type = NOF_TIMEOUT_LOCAL_LU;
        put(timeout.resource_name, name);
        script.has(NAP_QUERY_LU62_TIMEOUT, timeout);
        auto tp = entry<TP_DEF_ENTRY>();
        put(tp.tp_name, name);
        script.has(NAP_QUERY_TP_DEFINITION, tp);
        auto load = entry<TP_LOAD_INFO_ENTRY>();
        put(load.tp_name, name);
        script.has(NAP_QUERY_TP_LOAD_INFO, load);
        auto assoc = entry<TN3270_ASSOCIATION_ENTRY>();
        put(assoc.display_lu_name, name);
        script.has(NAP_QUERY_TN3270_ASSOCIATION, assoc);
        auto redirect = entry<TN_REDIRECT_ENTRY>();
        std::strcpy(redirect.key.client_address, name);
        script.has(NAP_QUERY_TN_REDIRECT_DEF, redirect);
        auto client = with_list<TN3270_ACCESS_ENTRY, TN3270_SESSION, 3>();
        std::strcpy(client.fixed.client.address, name);
        client.fixed.def.num_sessions = 3;
        client.items[0].port = 23;
        client.items[1].port = 24;
        client.items[1].not_listed = 1;
        client.items[2].port = 25;
        script.has(NAP_QUERY_TN3270_ACCESS_DEF, client);
        auto list = with_list<SECURITY_ACCESS_LIST_ENTRY, ACCESS_LIST_USER, 2>();
        put(list.fixed.list_name, name);
        list.fixed.def.num_users = 2;
        put(list.items[0].user_id, "ann");
        put(list.items[1].user_id, "bob");
        script.has(NAP_QUERY_SECURITY_ACCESS_LIST, list);
        auto dspu = with_list<DSPU_TEMPLATE_ENTRY, DSLU_TEMPLATE, 2>();
        put(dspu.fixed.template_name, name);
        dspu.fixed.def.num_dslu_templates = 2;
        dspu.items[0].first_nau = dspu.items[0].last_nau = 2;
        dspu.items[1].first_nau = dspu.items[1].last_nau = 3;
        script.has(NAP_QUERY_DSPU_TEMPLATE, dspu);
        auto userid = entry<USERID_PASSWORD_ENTRY>();
        put(userid.user_id, name);
        userid.def.num_profiles = 6;
        script.has(NAP_QUERY_USERID_PASSWORD, userid);
        userid.def.num_profiles = 3;
        script.has(NAP_QUERY_USERID_PASSWORD, userid);
    }
    auto stray = entry<LS_ROUTING_ENTRY>();
    put(stray.key.lu_name, "NONE");
    script.has(NAP_QUERY_LS_ROUTING, stray);
}

TEST_F(Listed, EveryListFillsItsRecords) {
    script_everything(script);
    testing::internal::CaptureStderr();
    build();
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << "the stray route: " << log;
    EXPECT_EQ(rows(node->lus_root), (Rows{"APPL1", " routes", "  NET.P", "APPL2", " routes",
                                          "  NET.P", "APPL3", " routes", "  NET.P", "CP"}));
    EXPECT_EQ(rows(node->sl_sec_root),
              (Rows{"title", "APPL1/NET.P", "APPL2/NET.P", "APPL3/NET.P"}));
    EXPECT_EQ(rows(node->tn_client_root), (Rows{"title", "APPL1/23", "APPL1/25", "APPL2/23",
                                                "APPL2/25", "APPL3/23", "APPL3/25"}));
    for (const NTL_AVL_TREE* tree :
         {&node->lu62_timeout_tree, &node->tp_def_tree, &node->tp_load_tree, &node->tn_assoc_tree,
          &node->tn_redirect_tree, &node->tn_client_tree, &node->access_list_tree,
          &node->dspu_template_tree, &node->userid_tree}) {
        EXPECT_EQ(count(*tree), 3u);
    }
    for (auto* lu = ntl_avl_first<vga_lu62>(node->lu62_tree); lu != node->cp_lu && lu != nullptr;
         lu = static_cast<vga_lu62*>(ntl_avl_next(&lu->node))) {
        EXPECT_NE(lu->timeout, nullptr);
    }
    EXPECT_EQ(count(ntl_avl_first<vga_security_access_list>(node->access_list_tree)->user_tree),
              2u);
    EXPECT_EQ(count(ntl_avl_first<vga_dspu_template>(node->dspu_template_tree)->dslu_tree), 2u);
    auto* userid = static_cast<vga_userid_password*>(node->userid_tree.first->self);
    EXPECT_EQ(userid->vcb.def.num_profiles, 9) << "two entries in a row are one user";
}

TEST_F(Listed, AListThatGoesOnAddsToTheLastRecord) {
    auto list = with_list<SECURITY_ACCESS_LIST_ENTRY, ACCESS_LIST_USER, 2>();
    put(list.fixed.list_name, "TRUSTED");
    list.fixed.def.num_users = 2;
    put(list.items[0].user_id, "ann");
    put(list.items[1].user_id, "bob");
    script.has(NAP_QUERY_SECURITY_ACCESS_LIST, list);
    int pages = 0;
    script.finish[NAP_QUERY_SECURITY_ACCESS_LIST] = [&](void* vcb) {
        auto& page = *static_cast<LIST_QUERY*>(vcb);
        page.more = ++pages == 1;
        if (pages == 2) {
            put(list.items[0].user_id, "cid");
            put(list.items[1].user_id, "dan");
            std::memcpy(page.buffer, &list, sizeof list);
            page.num_entries = page.total_entries = 1;
        }
    };
    build();
    ASSERT_EQ(count(node->access_list_tree), 1u);
    EXPECT_EQ(count(ntl_avl_first<vga_security_access_list>(node->access_list_tree)->user_tree),
              4u);
}

TEST_F(Listed, EveryMissingAllocationEndsTheBuildCleanly) {
    script_everything(script);
    testing::internal::CaptureStderr();
    unsigned long nth = 1;
    for (NB_LONG code = VGA_EXIT_INTERNAL; code != 0; ++nth) {
        gvga_exit_code = 0;
        const std::size_t handles = nba_handle_count();
        const std::size_t allocations = vga_allocations_in_use();
        vga_fail_allocation(nth);
        vga_start_build_system();
        script.run();
        vga_fail_allocation(0);
        vga_free_verb_queues();
        script.forget();
        code = gvga_exit_code;
        while (auto* listed = ntl_avl_first<vga_node>(gvga_system->node_tree)) {
            vga_do_free_node_res(listed, true, nullptr);
        }
        gvga_system->config_file_handle = 0;
        gvga_system->build_flags = vga_flag(VGA_SYSTEM_FLAG_COUNT) - 1;
        gvga_system->built = 0;
        EXPECT_EQ(vga_allocations_in_use(), allocations) << nth;
        EXPECT_EQ(nba_handle_count(), handles) << nth;
        ASSERT_TRUE(code == 0 || code == VGA_EXIT_INTERNAL) << nth;
    }
    testing::internal::GetCapturedStderr();
    EXPECT_GT(nth, 200u);
}

} // namespace
} // namespace store_test
