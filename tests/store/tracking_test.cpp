// Who uses which LU 0 to 3, and which pool it is in: counts, rows and status windows against a
// recount from the LUs themselves.
#include "fixture.h"

#include "store/build.h"
#include "store/tracking.h"
#include "ui/framework/dialog.h"
#include "ui/framework/firewall.h"

#include <map>
#include <random>
#include <set>

namespace store_test {
namespace {

using Rows = std::vector<std::string>;

const std::string DEFAULT_USER = "<DEFAULT>";

EMULATOR_USER_ENTRY user_entry(const std::string& name) {
    auto e = entry<EMULATOR_USER_ENTRY>();
    put(e.user_name, name);
    return e;
}

struct Tracking : Store {
    Tracking() {
        gvga_system->build_flags = 0;
        add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
        vga_viewer_init_root(&status.root);
        ntl_avl_init_tree(&status.tree, vga_compare_user_status);
        vga_create_viewer(&status.root, &status.title, VGA_VIEWER_USTAD_TITLE, &status, nullptr,
                          nullptr);
    }
    ~Tracking() override {
        close_status();
        vga_viewer_destroy_root(&status.root);
    }

    vga_user* add_user(const std::string& name) {
        const EMULATOR_USER_ENTRY e = user_entry(name);
        return vga_insert_vga_user(vga_init_vga_user(gvga_system, &e), gvga_system);
    }
    vga_user* user(const std::string& name) {
        const EMULATOR_USER_ENTRY e = user_entry(name);
        return static_cast<vga_user*>(ntl_avl_find(&gvga_system->user_tree, e.user_name));
    }
    static LU03_DETAIL detail(const std::string& name, const std::string& fallback = "") {
        LU03_DETAIL used{};
        used.appl_conn_active = NAP_YES;
        used.app_type = NAP_FMI_APPLICATION;
        put(used.application.user.user_name, name);
        put(used.application.user.fallback_name, fallback);
        return used;
    }
    vga_lu03* used_lu(NB_BYTE nau, const LU03_DETAIL& used, const std::string& pool = "") {
        LU03_ENTRY e = lu03("LU" + std::to_string(nau), "PU1", nau);
        e.det_data = used;
        if (!pool.empty()) {
            put(e.def_data.pool_name, pool);
        }
        return add_lu03(e);
    }
    vga_pool* pool(const std::string& name) {
        NB_NAME8E key{}; // of the null pool
        if (!name.empty()) {
            put(key, name);
        }
        return vga_find_node_pool(key, node);
    }
    void open_status(vga_user* of) {
        watched = of;
        of->gui_data.status = &status;
    }
    void close_status() {
        vga_free_user_status(&status);
        if (watched != nullptr) {
            watched->gui_data.status = nullptr;
            watched = nullptr;
        }
    }

    vga_user_status_list status{};
    vga_user* watched = nullptr;
};

TEST_F(Tracking, AnApplicationCountsUnderTheFirstUserThatIsDefined) {
    struct Case {
        const char *first, *second;
        std::set<std::string> defined;
        const char* counted; // "": nobody
    };
    const Case cases[] = {
        {"ANN", "BOB", {"ANN", "BOB", DEFAULT_USER}, "ANN"},
        {"ANN", "BOB", {"BOB", DEFAULT_USER}, "BOB"},
        {"ANN", "BOB", {DEFAULT_USER}, "<DEFAULT>"},
        {"ANN", "BOB", {"CARL"}, ""},
        {"ANN", "", {"CARL", DEFAULT_USER}, "<DEFAULT>"},
        {"", "BOB", {"BOB", DEFAULT_USER}, ""},
    };
    for (const Case& c : cases) {
        for (const std::string& name : c.defined) {
            add_user(name);
        }
        vga_lu03* lu = used_lu(2, detail(c.first, c.second));
        const std::string counted = lu->user != nullptr ? get(lu->user->vcb.user_name) : "";
        EXPECT_EQ(counted, c.counted) << c.first << '/' << c.second;
        for (const std::string& name : c.defined) {
            EXPECT_EQ(user(name)->session_count, name == c.counted ? 1 : 0) << name;
        }
        vga_delete_vga_lu03(lu, true);
        for (const std::string& name : c.defined) {
            EXPECT_EQ(user(name)->session_count, 0) << name;
            vga_delete_vga_user(user(name), true);
        }
    }
}

TEST_F(Tracking, OnlyEmulatorsCount) {
    add_user("ANN");
    for (const NB_BYTE type : {NAP_LUA_APPLICATION, NAP_PU_CONC_APPLICATION, NAP_TN_APPLICATION}) {
        LU03_DETAIL used = detail("ANN");
        used.app_type = type;
        vga_lu03* lu = used_lu(2, used);
        EXPECT_EQ(user("ANN")->session_count, 0);
        vga_delete_vga_lu03(lu, true);
    }
}

TEST_F(Tracking, TheConfigurationFilesLossIsReportedAndItsReturnCountsAgain) {
    vga_dialog window{};
    window.open = 1;
    nba_init_q(&window.modal_dlg.queue);
    gvga_main_dialog = &window;
    gvga_modal_firewall_count = 1; // messages wait
    gvga_messages[272] = gvga_messages[277] = "%1";
    gvga_messages[280] = "lost";
    const auto told = [&] {
        int messages = 0;
        while (auto* message = static_cast<NBA_QUEUE*>(nba_get_q_head(&window.modal_dlg.queue))) {
            nba_remove_from_q(message);
            vga_free(message);
            ++messages;
        }
        return messages;
    };
    add_user("ANN");
    vga_free_system_resources(true, nullptr);
    EXPECT_EQ(told(), 0) << "nobody was active";
    add_user("ANN");
    vga_lu03* lu = used_lu(2, detail("ANN", "BOB"));
    vga_free_system_resources(false, nullptr);
    EXPECT_EQ(told(), 0) << "at the end of the run";
    add_user("ANN");
    EXPECT_EQ(lu->user, user("ANN"));
    vga_free_system_resources(true, nullptr);
    EXPECT_EQ(told(), 1);
    EXPECT_EQ(count(gvga_system->user_tree), 0u);
    EXPECT_EQ(lu->user, nullptr);
    add_user("BOB");
    EXPECT_EQ(lu->user, user("BOB"));
    gvga_modal_firewall_count = 0;
    gvga_main_dialog = nullptr;
}

TEST_F(Tracking, ALuDefinedAgainMovesToItsNewPool) {
    vga_lu03* lu = used_lu(2, detail("ANN"), "POOLA");
    ASSERT_EQ(used_lu(2, {}, "POOLB"), lu);
    EXPECT_EQ(pool("POOLA")->parent->total_count, 0);
    EXPECT_EQ(pool("POOLA")->parent->appl_count, 0);
    EXPECT_EQ(pool("POOLB")->parent->total_count, 1);
    EXPECT_EQ(pool("POOLB")->parent->appl_count, 1) << "a definition tells nothing of its use";
    EXPECT_EQ(rows(gvga_system->pool_viewer_root), (Rows{"POOLA", "POOLB", " LU2"}));
    ASSERT_EQ(used_lu(2, {}), lu);
    EXPECT_EQ(rows(gvga_system->pool_viewer_root), (Rows{"POOLA", "POOLB"}));
    EXPECT_EQ(pool("")->parent->total_count, 1);
}

TEST_F(Tracking, APoolOverSeveralNodesGoesNodeByNode) {
    vga_node* first = node;
    used_lu(2, {}, "POOL");
    node = add_node("ALPHA"); // sorts before
    add_pu(pu("PU1", "", NAP_DLUR_ATTACHED));
    used_lu(3, {}, "POOL");
    EXPECT_EQ(rows(gvga_system->pool_viewer_root), (Rows{"POOL", " LU3", " LU2"}));
    vga_delete_vga_node_pool(pool("POOL"), true);
    EXPECT_EQ(rows(gvga_system->pool_viewer_root), (Rows{"POOL", " LU2"}));
    used_lu(3, {}, "POOL");
    vga_do_free_node_res(node, true, nullptr);
    node = first;
    EXPECT_EQ(rows(gvga_system->pool_viewer_root), (Rows{"POOL", " LU2"}));
    EXPECT_EQ(pool("POOL")->parent->total_count, 1);
    vga_delete_vga_node_pool(pool("POOL"), true);
    EXPECT_EQ(rows(gvga_system->pool_viewer_root), Rows{});
    EXPECT_EQ(count(gvga_system->pool_tree), 1u) << "the null pool stays";
    EXPECT_EQ(pool("")->parent->total_count, 1);
}

// ---- random operations ----

struct Random : Tracking {
    int roll(int sides) { return std::uniform_int_distribution<int>(0, sides - 1)(engine); }
    const std::string& user_name() {
        static const std::string names[] = {"ANN", "BOB", "CARL", "DORA", DEFAULT_USER};
        return names[roll(5)];
    }
    std::string pool_name() {
        return roll(3) == 0 ? "" : std::string("POOL") + static_cast<char>('A' + roll(3));
    }
    vga_lu03* lu(NB_BYTE nau) {
        auto* owner = ntl_avl_first<vga_pu>(node->local_pu_tree);
        return static_cast<vga_lu03*>(ntl_avl_find(&owner->nau_tree, &nau));
    }
    LU03_DETAIL any_detail() {
        LU03_DETAIL used = detail(roll(6) == 0 ? "" : user_name(), roll(2) == 0 ? "" : user_name());
        used.appl_conn_active = roll(3) != 0;
        used.app_type = roll(5) == 0 ? NAP_TN_APPLICATION : NAP_FMI_APPLICATION;
        if (used.appl_conn_active == NAP_NO) {
            used = {};
        }
        return used;
    }
    void step() {
        const auto nau = static_cast<NB_BYTE>(2 + roll(30));
        switch (roll(8)) {
        case 0:
            add_user(user_name());
            break;
        case 1:
            if (vga_user* gone = user(user_name()); gone != nullptr && gone != watched) {
                vga_delete_vga_user(gone, roll(2) == 0);
            }
            break;
        case 2:
            used_lu(nau, any_detail(), pool_name());
            break;
        case 3:
            if (vga_lu03* gone = lu(nau); gone != nullptr) {
                vga_delete_vga_lu03(gone, true);
            }
            break;
        case 4:
            close_status();
            if (vga_user* shown = user(user_name()); shown != nullptr) {
                open_status(shown);
                for_each_lu([&](vga_lu03* each) {
                    if (each->user == shown) {
                        vga_add_vga_user_status(shown, &each->vcb.det_data.application,
                                                each->vcb.lu_name);
                    }
                });
            }
            break;
        case 5:
            if (vga_pool* gone = pool(pool_name());
                gone != nullptr && gone->parent->pool_name[0] != 0) {
                vga_delete_vga_pool(gone->parent, true);
            }
            break;
        default:
            if (vga_lu03* each = lu(nau); each != nullptr) {
                vga_take_lu03_detail(each, any_detail());
            }
        }
    }
    template <typename Visit> void for_each_lu(Visit visit) {
        for (auto* each = ntl_avl_first<vga_lu03>(gvga_system->lu_tree); each != nullptr;
             each = static_cast<vga_lu03*>(ntl_avl_next(&each->system_node))) {
            visit(each);
        }
    }
    // The rule for whom an LU counts under, stated anew.
    vga_user* expected(const vga_lu03* each) {
        const LU03_DETAIL& use = each->vcb.det_data;
        const std::string first = get(use.application.user.user_name);
        if (use.appl_conn_active != NAP_YES || use.app_type != NAP_FMI_APPLICATION ||
            first.empty()) {
            return nullptr;
        }
        for (const std::string& name :
             {first, get(use.application.user.fallback_name), DEFAULT_USER}) {
            if (vga_user* found = name.empty() ? nullptr : user(name); found != nullptr) {
                return found;
            }
        }
        return nullptr;
    }
    void check() {
        std::map<vga_user*, NB_LONG> uses;
        std::map<std::string, std::pair<NB_LONG, NB_LONG>> pools; // total, in use
        std::map<std::string, Rows> pool_rows;
        for_each_lu([&](vga_lu03* each) {
            ASSERT_EQ(each->user, expected(each)) << get(each->vcb.lu_name);
            ++uses[each->user];
            const NB_NAME8E& of = each->vcb.def_data.pool_name;
            const std::string name = of[0] == 0 ? "" : get(of);
            ++pools[name].first;
            pools[name].second += each->vcb.det_data.appl_conn_active == NAP_YES;
            pool_rows[name].push_back(" " + get(each->vcb.lu_name));
        });
        for (auto* each = ntl_avl_first<vga_user>(gvga_system->user_tree); each != nullptr;
             each = static_cast<vga_user*>(ntl_avl_next(&each->node))) {
            ASSERT_EQ(each->session_count, uses[each]) << get(each->vcb.user_name);
        }
        if (watched != nullptr) {
            ASSERT_EQ(count(status.tree), static_cast<std::size_t>(uses[watched]));
            ASSERT_EQ(rows(status.root).size(), 1u + static_cast<std::size_t>(uses[watched]));
        }
        Rows shown;
        for (auto* each = ntl_avl_first<vga_sys_pool>(gvga_system->pool_tree); each != nullptr;
             each = static_cast<vga_sys_pool*>(ntl_avl_next(&each->leaf))) {
            const std::string name = each->pool_name[0] == 0 ? "" : get(each->pool_name);
            ASSERT_EQ(each->total_count, pools[name].first) << name;
            ASSERT_EQ(each->appl_count, pools[name].second) << name;
            if (!name.empty()) {
                shown.push_back(name);
                shown.insert(shown.end(), pool_rows[name].begin(), pool_rows[name].end());
            }
            pools.erase(name);
        }
        ASSERT_TRUE(pools.empty()) << "an LU names a pool that is not there";
        ASSERT_EQ(rows(gvga_system->pool_viewer_root), shown);
    }
    std::mt19937 engine{20};
};

TEST_F(Random, CountsEqualAWalkAfterEveryStep) {
    for (int i = 0; i < 5000 && !HasFatalFailure(); ++i) {
        step();
        check();
    }
}

} // namespace
} // namespace store_test
