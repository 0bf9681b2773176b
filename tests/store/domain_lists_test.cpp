// The domain's lists and the pools, as the build reads them page by page.
#include "scripted_node.h"

#include "nof/pool.h"
#include "store/tracking.h"

namespace store_test {
namespace {

using Rows = std::vector<std::string>;

struct UserPage { // an entry with its sessions behind it
    EMULATOR_USER_ENTRY user;
    USER_SESSION sessions[2];
};

UserPage user_page(const std::string& name, const std::array<const char*, 2>& sessions) {
    UserPage page{};
    page.user.length = sizeof page;
    put(page.user.user_name, name);
    page.user.def.num_sessions = 2;
    for (int i = 0; i < 2; ++i) {
        page.sessions[i].length = sizeof page.sessions[i];
        page.sessions[i].session_type = NOF_SESSION_3270;
        put(page.sessions[i].session_name, sessions[static_cast<std::size_t>(i)]);
    }
    return page;
}

struct DomainLists : Store {
    DomainLists() {
        vga_do_free_node_res(node, true, nullptr); // the build lists its own
        gvga_querybuf_size = 4096;
        gvga_supported[VGA_SUPPORT_CPIC] = gvga_supported[VGA_SUPPORT_RJE] = 1;
        script.has(NAP_QUERY_NODE_ALL, node_all("alpha"));
        script.has(NAP_QUERY_PU, pu("PU1", "", NAP_DLUR_ATTACHED));
        for (NB_BYTE nau = 2; nau < 5; ++nau) {
            LU03_ENTRY e = lu03("LU" + std::to_string(nau), "PU1", nau);
            if (nau != 4) {
                put(e.def_data.pool_name, "POOL");
            }
            e.det_data.appl_conn_active = nau == 2;
            e.det_data.app_type = nau == 2 ? NAP_FMI_APPLICATION : NAP_NO_APPLICATION;
            put(e.det_data.application.user.user_name, nau == 2 ? "bob" : "");
            script.has(NAP_QUERY_LU_0_TO_3, e, "PU1");
        }
        for (const char* lu : {"", "LU2", "LU3"}) {
            auto e = entry<LU_POOL_ENTRY>();
            put(e.pool_name, *lu == '\0' ? "EMPTY" : "POOL");
            if (*lu != '\0') {
                put(e.lu_name, lu);
            }
            script.has(NAP_QUERY_LU_POOL, e);
        }
        script.has(NAP_QUERY_EMULATOR_USER_DEF, user_page("bob", {"S2", "S4"}));
        script.has(NAP_QUERY_EMULATOR_USER_DEF, user_page("ann", {"S1", "S2"}));
        script.has(NAP_QUERY_EMULATOR_USER_DEF, user_page("bob", {"S1", "S3"})); // continued
        for (const char* name : {"DEST2", "DEST1"}) {
            auto e = entry<CPIC_SIDE_INFO_ENTRY>();
            put(e.sym_dest_name, name);
            script.has(NAP_QUERY_CPIC_SIDE_INFO, e);
        }
        for (const char* name : {"RJE2", "RJE1", "RJE3"}) {
            auto e = entry<RJE_WKSTN_ENTRY>();
            put(e.wkstn_name, name);
            script.has(NAP_QUERY_RJE_WKSTN_DEF, e);
        }
    }
    ~DomainLists() override {
        std::fill(std::begin(gvga_supported), std::end(gvga_supported), NB_USHORT{0});
    }
    void expect_mirrored() {
        EXPECT_EQ(gvga_exit_code, 0);
        EXPECT_EQ(gvga_system->build_flags, 0u);
        EXPECT_EQ(rows(gvga_system->user_viewer_root),
                  (Rows{"ann", " S1", " S2", "bob", " S1", " S2", " S3", " S4"}));
        EXPECT_EQ(rows(gvga_system->cpic_viewer_root), (Rows{"DEST1", "DEST2"}));
        EXPECT_EQ(rows(gvga_system->rje_viewer_root), (Rows{"RJE1", "RJE2", "RJE3"}));
        EXPECT_EQ(rows(gvga_system->pool_viewer_root), (Rows{"EMPTY", "POOL", " LU2", " LU3"}));
        auto* bob = ntl_avl_last<vga_user>(gvga_system->user_tree);
        EXPECT_EQ(bob->session_count, 1);
        EXPECT_EQ(bob->vcb.def.num_sessions, 4u);
        EXPECT_EQ(count(gvga_system->pool_tree), 3u) << "with the null pool";
        auto* last = ntl_avl_last<vga_sys_pool>(gvga_system->pool_tree);
        EXPECT_EQ(last->total_count, 2);
        EXPECT_EQ(last->appl_count, 1);
    }
    ScriptedNode script;
};

TEST_F(DomainLists, AreMirroredAndReadAgainFromAFileThatCameBack) {
    vga_start_build_system();
    script.run();
    expect_mirrored();
    vga_free_system_resources(false, nullptr);
    EXPECT_EQ(rows(gvga_system->user_viewer_root), Rows{});
    EXPECT_EQ(rows(gvga_system->cpic_viewer_root), Rows{});
    EXPECT_EQ(rows(gvga_system->rje_viewer_root), Rows{});
    EXPECT_EQ(rows(gvga_system->pool_viewer_root).size(), 4u) << "the nodes' own";
    vga_rebuild_system();
    script.run();
    expect_mirrored();
}

} // namespace
} // namespace store_test
