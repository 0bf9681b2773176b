#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "common/names.h"
#include "store/store.h"
#include "store/tracking.h"
#include "ui/framework/dialog.h"

#include <cstring>
#include <map>

// The domain's users and pools as the node lists them, and a run of updates seen through by it.
namespace {

using kit::CONSOLE;
using kit::SERVICE;

NB_LONG outstanding;
vga_dialog* run_dialog;

void completed(VGA_COMPLETION* work) {
    vga_process_update(work, run_dialog, false, ntl_avl_first<vga_node>(gvga_system->node_tree),
                       &outstanding);
}

vga_user* user(const char* name) {
    char key[32] = {};
    std::strcpy(key, name);
    return static_cast<vga_user*>(ntl_avl_find(&gvga_system->user_tree, key));
}

vga_user_sess* session(const char* user_name, const char* name) {
    char key[9];
    std::snprintf(key, sizeof key, "%-8s", name);
    return static_cast<vga_user_sess*>(ntl_avl_find(&user(user_name)->session_tree, key));
}

std::string lu_of(const vga_user_sess* sess) {
    char text[9];
    van_ebcdic_to_ascii(text, sess->vcb.lu_name, 8);
    return text;
}

vga_lu03* lu(const char* name) {
    NB_NAME8E key;
    van_ascii_to_ebcdic(key, name, sizeof key);
    const auto* node = ntl_avl_first<vga_node>(gvga_system->node_tree);
    const vga_lu_key system_key{key, node->node_name};
    return static_cast<vga_lu03*>(ntl_avl_find(&gvga_system->lu_tree, &system_key));
}

class Update : public testing::Test {
protected:
    SERVICE service;
    CONSOLE console{service};

    void SetUp() override {
        ASSERT_TRUE(console.started() && console.wait_built());
        // Stands for the dialog that redefines the LU.
        ASSERT_TRUE(vga_get_dialog(VGA_UID_START_LS_DIALOG, gvga_main_dialog,
                                   ntl_avl_first<vga_node>(gvga_system->node_tree), &run_dialog));
        vga_display_dialog(run_dialog);
        // The sessions on CORE01 and PAY01 are to use CORE02.
        lu("CORE01")->changing = lu("PAY01")->changing = 1;
        ASSERT_TRUE(vga_mark_sessions(NOF_SESSION_3270, nullptr, nullptr));
        lu("CORE01")->changing = lu("PAY01")->changing = 0;
    }
    void TearDown() override {
        EXPECT_EQ(gvga_exit_code, 0);
        EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
    }
    void start() {
        outstanding = vga_update_sessions(reinterpret_cast<vga_deplu*>(lu("CORE02")), nullptr,
                                          nullptr, run_dialog->handle, completed);
        ASSERT_EQ(outstanding, 2);
        ASSERT_TRUE(console.wait([] { return outstanding == 0; }));
    }
};

TEST_F(Update, TheNodeTakesTheDefinitionsAndTheDialogCloses) {
    EXPECT_EQ(lu_of(session("m.keller", "CORE")), "CORE01");
    start();
    EXPECT_EQ(CONSOLE::message(), "");
    EXPECT_FALSE(run_dialog->open);
    EXPECT_EQ(lu_of(session("m.keller", "CORE")), "CORE02");
    EXPECT_EQ(lu_of(session("a.okafor", "PAYMENT")), "CORE02");
    EXPECT_EQ(lu_of(session("a.okafor", "PRINT")), "PAYPRT1");
}

TEST_F(Update, ARefusalIsToldAndTheDialogClosesWhenItWasRead) {
    service.control("fail NAP_DEFINE_EMULATOR_USER 1 2 0");
    start();
    EXPECT_TRUE(console.wait([] { return !CONSOLE::message().empty(); }));
    EXPECT_TRUE(CONSOLE::message().starts_with("Some of the definitions"));
    EXPECT_TRUE(run_dialog->open);
    EXPECT_NE(lu_of(session("m.keller", "CORE")) == "CORE02",
              lu_of(session("a.okafor", "PAYMENT")) == "CORE02")
        << "one was refused, the other was not";
    EXPECT_TRUE(console.wait_idle());
    EXPECT_TRUE(console.answer("OK"));
    EXPECT_TRUE(console.wait([] { return !run_dialog->open; }));
}

TEST_F(Update, UsersAndPoolsCountWhatTheirLusSay) {
    NB_LONG used = 0;
    std::map<vga_user*, NB_LONG> uses;
    std::map<std::string, NB_LONG> pooled;
    for (auto* each = ntl_avl_first<vga_lu03>(gvga_system->lu_tree); each != nullptr;
         each = static_cast<vga_lu03*>(ntl_avl_next(&each->system_node))) {
        ++uses[each->user];
        used += each->user != nullptr;
        pooled[std::string(reinterpret_cast<char*>(each->vcb.def_data.pool_name), 8)]++;
    }
    EXPECT_GT(used, 0);
    EXPECT_GT(pooled.size(), 2u);
    for (auto* each = ntl_avl_first<vga_user>(gvga_system->user_tree); each != nullptr;
         each = static_cast<vga_user*>(ntl_avl_next(&each->node))) {
        EXPECT_EQ(each->session_count, uses[each]);
    }
    for (auto* each = ntl_avl_first<vga_sys_pool>(gvga_system->pool_tree); each != nullptr;
         each = static_cast<vga_sys_pool*>(ntl_avl_next(&each->leaf))) {
        const std::string name(reinterpret_cast<char*>(each->pool_name), 8);
        EXPECT_EQ(each->total_count, pooled[name]);
    }
    EXPECT_EQ(vga_check_system_startup(), true);
}

} // namespace
