// Who uses which LU 0 to 3, and which pool it is in: counts, rows and status windows against a
// recount from the LUs themselves. Counts of LU-LU sessions against those that were indicated.
#include "fixture.h"

#include "kit/store_dump.h"
#include "nof/lu62.h"
#include "store/tracking.h"
#include "verbs/status.h"

#include <map>
#include <random>

namespace store_test {
namespace {

const std::string DEFAULT_USER = "<DEFAULT>";

struct Tracking : Store {
    Tracking() {
        gvga_system->build_flags = 0;
        node->build_flags = 0;
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
        const auto e = entry(&EMULATOR_USER_ENTRY::user_name, name);
        return vga_insert_vga_user(vga_init_vga_user(gvga_system, &e), gvga_system);
    }
    vga_user* user(const std::string& name) {
        return named<vga_user, char[32]>(gvga_system->user_tree, name);
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

    // What is found wrong with a sound store: one handle is that of the status list.
    static std::vector<std::string> handle_of_status() {
        const std::size_t handles = nba_handle_count();
        return {"system: " + std::to_string(handles) + " handles are in use, but there are " +
                std::to_string(handles - 1) + " records"};
    }

    vga_user_status_list status{};
    vga_user* watched = nullptr;
};

TEST_F(Tracking, TheConfigurationFilesLossIsReportedAndItsReturnCountsAgain) {
    Messages messages;
    gvga_main_dialog = &messages.window;
    gvga_messages[272] = gvga_messages[277] = "%1";
    gvga_messages[280] = "lost";
    add_user("ANN");
    vga_free_system_resources(true, nullptr);
    EXPECT_EQ(messages.shown(), 0) << "nobody was active";
    add_user("ANN");
    vga_lu03* lu = used_lu(2, detail("ANN", "BOB"));
    vga_free_system_resources(false, nullptr);
    EXPECT_EQ(messages.shown(), 0) << "at the end of the run";
    add_user("ANN");
    EXPECT_EQ(lu->user, user("ANN"));
    vga_free_system_resources(true, nullptr);
    EXPECT_EQ(messages.shown(), 1);
    EXPECT_EQ(count(gvga_system->user_tree), 0u);
    EXPECT_EQ(lu->user, nullptr);
    add_user("BOB");
    EXPECT_EQ(lu->user, user("BOB"));
    gvga_main_dialog = nullptr;
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
    std::vector<vga_lu03*> lus() { return all<vga_lu03>(gvga_system->lu_tree); }
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
                for (vga_lu03* each : lus()) {
                    if (each->user == shown) {
                        vga_add_vga_user_status(shown, &each->vcb.det_data.application,
                                                each->vcb.lu_name);
                    }
                }
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
        std::size_t watched_uses = 0;
        std::map<std::string, Rows> of_pools;
        for (vga_lu03* each : lus()) {
            ASSERT_EQ(each->user, expected(each)) << get(each->vcb.lu_name);
            watched_uses += each->user == watched;
            const NB_NAME8E& name = each->vcb.def_data.pool_name;
            of_pools[name[0] == 0 ? "" : get(name)].push_back(" " + get(each->vcb.lu_name));
        }
        if (watched != nullptr) {
            ASSERT_EQ(count(status.tree), watched_uses);
            ASSERT_EQ(rows(status.root).size(), 1 + watched_uses);
        }
        Rows shown;
        for (const auto* each : all<vga_sys_pool>(gvga_system->pool_tree)) {
            const std::string name = each->pool_name[0] == 0 ? "" : get(each->pool_name);
            const Rows& lus_of_it = of_pools[name];
            if (!name.empty()) {
                shown.push_back(name);
                shown.insert(shown.end(), lus_of_it.begin(), lus_of_it.end());
            }
            of_pools.erase(name);
        }
        ASSERT_TRUE(of_pools.empty()) << "an LU names a pool that is not there";
        ASSERT_EQ(rows(gvga_system->pool_viewer_root), shown);
        ASSERT_EQ(kit::dump_store().faults, handle_of_status());
    }
    std::mt19937 engine{20};
};

TEST_F(Random, CountsEqualAWalkAfterEveryStep) {
    for (int i = 0; i < 2000 && !HasFatalFailure(); ++i) {
        step();
        check();
    }
}

// ---- LU-LU sessions ----

struct Sessions : Tracking {
    struct PARTNER {
        const char *name, *cp;
    };
    static constexpr PARTNER partners[] = {{"NET.A", "NET.CP1"},
                                           {"NET.B", "NET.CP2"},
                                           {"NET.C", "NET.CP2"},
                                           {"NET.D", "NET.CP"}, // the node itself
                                           {"NET.E", ""}};
    using Counts = std::map<std::string, NB_LONG>;

    Counts found() {
        Counts counts;
        for (const auto* lu : all<vga_lu62>(node->lu62_tree)) {
            counts[get(lu->vcb.lu_name)] = lu->act_sess_count;
        }
        for (const auto* system : all<vga_rem_sys>(node->rem_sys_tree)) {
            counts[get(system->cp_name)] = system->session_count;
            for (const auto* plu : all<vga_rem_plu>(system->remote_plu_tree)) {
                const std::string name = get(plu->key.plu_name);
                counts[name] = plu->session_count;
                for (const auto* sess : all<vga_rem_sess>(plu->sess_tree)) {
                    counts[name + get(sess->key.lu_name) + get(sess->key.mode_name)] =
                        sess->session_count;
                }
            }
        }
        return counts;
    }
    template <typename Block> Block indication(const vga_lu62* lu, const PARTNER& partner) {
        Block ind{};
        std::memcpy(ind.lu_name, lu->vcb.lu_name, sizeof ind.lu_name);
        put(ind.plu_name, partner.name);
        return ind;
    }
};

TEST_F(Sessions, EqualARecountAfterEveryModeIndication) {
    add_rem_sys("NET.CP1"); // stays without sessions
    vga_lu62* lus[] = {add_lu62(lu62("LU1", "LU1")), add_lu62(lu62("LU2", "LU2")),
                       add_lu62(lu62("DEP", "DEP", 3, "PU1"))};
    for (const vga_lu62* lu : lus) {
        for (const PARTNER& partner : partners) {
            auto ind = indication<PLU_INDICATION>(lu, partner);
            ind.cp_known = partner.cp[0] != '\0';
            put(ind.cp_name, partner.cp);
            vga_process_plu_ind(node, &ind);
        }
    }
    std::map<std::array<std::string, 4>, NB_USHORT> told; // by control point, partner, LU, mode
    std::mt19937 engine{21};
    for (int i = 0; i < 2000 && !HasFailure(); ++i) {
        const vga_lu62* lu = lus[engine() % 3];
        // A dependent LU has one partner, its host.
        const PARTNER& partner = partners[lu == lus[2] ? 0 : engine() % 5];
        const std::string mode = engine() % 2 == 0 ? "#INTER" : "#BATCH";
        auto ind = indication<MODE_INDICATION>(lu, partner);
        put(ind.mode_name, mode);
        ind.change = engine() % 5 == 0; // 1: the mode is gone
        ind.act_sess_count = static_cast<NB_USHORT>(engine() % 3 * (engine() % 3));
        vga_process_mode_ind(node, &ind);
        told[{partner.cp, partner.name, get(lu->vcb.lu_name), mode}] =
            ind.change == 1 ? NB_USHORT{0} : ind.act_sess_count;
        Counts expected{{"LU1", 0}, {"LU2", 0}, {"DEP", 0}, {"NET.CP1", 0}};
        for (const auto& [where, count] : told) {
            const auto& [cp, name, local, of_mode] = where;
            expected[local] += count;
            if (count != 0 && local != "DEP" && cp != "" && cp != "NET.CP") {
                expected[cp] += count;
                expected[name] += count;
                expected[name + local + of_mode] = count;
            }
        }
        ASSERT_EQ(found(), expected) << "step " << i;
        ASSERT_EQ(kit::dump_store().faults, handle_of_status());
    }
}

} // namespace
} // namespace store_test
