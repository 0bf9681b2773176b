#include <gtest/gtest.h> // before X, whose macros would break it

#include "kit/console.h"

#include "common/names.h"
#include "nof/opcodes.h"
#include "shell/verb_queue.h"
#include "store/tracking.h"
#include "verbs/config.h"

#include <algorithm>
#include <cstring>

// What another operator defines and deletes is in the console's store without a query, and leaves
// alone what the operator at the console has selected.
namespace {

using kit::CONSOLE;
using kit::SERVICE;

vga_node* node() {
    return ntl_avl_first<vga_node>(gvga_system->node_tree);
}

std::size_t count(const NTL_AVL_NODE* top) {
    return top == nullptr ? 0 : 1 + count(top->left) + count(top->right);
}
std::size_t count(const NTL_AVL_TREE& tree) {
    return count(tree.root);
}

template <NTL_AVL_TREE vga_node::*tree> std::size_t of_node() {
    return count(node()->*tree);
}
template <NTL_AVL_TREE vga_system::*tree> std::size_t of_system() {
    return count(gvga_system->*tree);
}
// The members of all records of a tree.
template <typename Owner, NTL_AVL_TREE Owner::*members>
std::size_t members_of(const NTL_AVL_TREE& owners) {
    std::size_t records = 0;
    for (auto* owner = ntl_avl_first<Owner>(owners); owner != nullptr;
         owner = static_cast<Owner*>(ntl_avl_next(&owner->node))) {
        records += count(owner->*members);
    }
    return records;
}
std::size_t extra_data() {
    std::size_t records = 0;
    for (auto* lu = ntl_avl_first<vga_lu03>(gvga_system->lu_tree); lu != nullptr;
         lu = static_cast<vga_lu03*>(ntl_avl_next(&lu->system_node))) {
        records += lu->extra_data != nullptr;
    }
    return records;
}

struct Kind {
    const char* name; // that the service has for it
    std::size_t (*count)();
    std::vector<const char*> commands;
};

const Kind kinds[] = {
    {"tp",
     of_node<&vga_node::tp_def_tree>,
     {"define tp NEWTP", "define tp NEWTP sync_level=confirm", "delete tp NEWTP"}},
    {"tp_load",
     of_node<&vga_node::tp_load_tree>,
     {"define tp_load NEWTP path=/opt/new type=queued",
      "define tp_load NEWTP path=/opt/a/longer/path type=queued", "delete tp_load NEWTP"}},
    {"userid",
     of_node<&vga_node::userid_tree>,
     {"define userid NEWID", "define userid NEWID description=again", "delete userid NEWID"}},
    {"access_list", of_node<&vga_node::access_list_tree>, {"define access_list NEWLIST"}},
    {"access_user",
     [] {
         return members_of<vga_security_access_list, &vga_security_access_list::user_tree>(
             node()->access_list_tree);
     },
     {"define access_user ANNA list=NEWLIST", "define access_user BERT list=NEWLIST",
      "delete access_user ANNA"}},
    {"access_list", of_node<&vga_node::access_list_tree>, {"delete access_list NEWLIST"}},
    {"tn_client", of_node<&vga_node::tn_client_tree>, {"define tn_client 10.1.1.1"}},
    {"tn_session",
     [] { return members_of<vga_tn_client, &vga_tn_client::sess_tree>(node()->tn_client_tree); },
     {"define tn_session 23 client=10.1.1.1 lu=CORE01",
      "define tn_session 24 client=10.1.1.1 lu=CORE02"}},
    {"tn_client", of_node<&vga_node::tn_client_tree>, {"delete tn_client 10.1.1.1"}},
    {"association",
     of_node<&vga_node::tn_assoc_tree>,
     {"define association CORE01 printer=CORE02", "delete association CORE01"}},
    {"redirect",
     of_node<&vga_node::tn_redirect_tree>,
     {"define redirect 10.9.9.9 port=7023 host=mainframe.example host_port=23",
      "delete redirect 10.9.9.9"}},
    {"primary_line", of_node<&vga_node::primary_line_tree>, {"define primary_line NEWLINE"}},
    {"primary_lu0",
     [] {
         return members_of<vga_primary_line, &vga_primary_line::lu0_tree>(
             node()->primary_line_tree);
     },
     {"define primary_lu0 NEWLU0 line=NEWLINE", "delete primary_lu0 NEWLU0"}},
    {"primary_line", of_node<&vga_node::primary_line_tree>, {"delete primary_line NEWLINE"}},
    {"dspu_template", of_node<&vga_node::dspu_template_tree>, {"define dspu_template NEWTMPL"}},
    {"dslu_template",
     [] {
         return members_of<vga_dspu_template, &vga_dspu_template::dslu_tree>(
             node()->dspu_template_tree);
     },
     {"define dslu_template 100 template=NEWTMPL last=120 host_lu=CORE01",
      "define dslu_template 130 template=NEWTMPL last=140 host_lu=CORE01"}},
    {"dspu_template", of_node<&vga_node::dspu_template_tree>, {"delete dspu_template NEWTMPL"}},
    {"lu_lu_password",
     of_node<&vga_node::sl_sec_tree>,
     {"define lu_lu_password TRADELU partner=BANKNET.NEWONE"}},
    {"ls_routing",
     [] { return members_of<vga_lu62, &vga_lu62::ls_routing_tree>(node()->lu62_tree); },
     {"define ls_routing TRADELU partner=BANKNET.NEWONE ls=CLEARING"}},
    {"lu62_timeout",
     of_node<&vga_node::lu62_timeout_tree>,
     {"define lu62_timeout NIGHTRUN type=mode timeout=5", "delete lu62_timeout NIGHTRUN"}},
    {"extra_data", extra_data, {"define extra_data CORE02", "delete extra_data CORE02"}},
    {"user", of_system<&vga_system::user_tree>, {"define user newuser"}},
    {"user_session",
     [] { return members_of<vga_user, &vga_user::session_tree>(gvga_system->user_tree); },
     {"define user_session DISP1 user=newuser type=3270 lu=CORE01",
      "define user_session DISP9 user=newuser type=3270 lu=CORE01"}},
    {"user", of_system<&vga_system::user_tree>, {"delete user newuser"}},
    {"cpic",
     of_system<&vga_system::cpic_tree>,
     {"define cpic NEWDEST tp=PAYPOST mode=#INTER", "delete cpic NEWDEST"}},
    {"rje",
     of_system<&vga_system::rje_tree>,
     {"define rje NEW1 lu1=PAYRJE num_lus=1", "delete rje NEW1"}},
};

class Definitions : public testing::Test {
protected:
    SERVICE service;
    CONSOLE console{service};

    void SetUp() override {
        ASSERT_TRUE(console.started() && console.wait_built());
        service.control("journal clear");
    }
    void TearDown() override {
        EXPECT_EQ(gvga_exit_code, 0);
        EXPECT_EQ(nba_assert_count(), 0u) << nba_last_assert();
        const std::string journal = service.control("journal");
        EXPECT_EQ(journal.find("\"NAP_QUERY"), std::string::npos) << journal;
    }
    std::size_t at_node(const char* kind) {
        return std::stoul(service.control(std::string("count ") + kind));
    }
};

TEST_F(Definitions, OfAnotherOperatorArriveWithoutAQuery) {
    vga_viewer_root& links = node()->links_root;
    ASSERT_TRUE(console.click_row(links, "CLEARING"));
    const void* selected = vga_viewer_get_selection(&links);
    ASSERT_NE(selected, nullptr);
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        // What the build does not list is not in the store until somebody defines it.
        const std::size_t unlisted = at_node(kind.name) - kind.count();
        for (const char* command : kind.commands) {
            service.control(command);
            const std::size_t wanted = at_node(kind.name) - unlisted;
            EXPECT_TRUE(console.wait([&] { return kind.count() == wanted; }, 5000))
                << command << ": " << kind.count() << " instead of " << wanted;
            console.wait_idle();
        }
    }
    EXPECT_EQ(vga_viewer_get_selection(&links), selected);
}

TEST_F(Definitions, PoolsFollowAnotherOperator) {
    NB_NAME8E name;
    const vga_lu03* lu = nullptr;
    for (auto* record = ntl_avl_first<vga_lu03>(gvga_system->lu_tree); record != nullptr;
         record = static_cast<vga_lu03*>(ntl_avl_next(&record->system_node))) {
        std::memcpy(name, record->vcb.lu_name, sizeof name);
        nba_ebcdic_to_local(name, sizeof name);
        lu = std::memcmp(name, "CORE05  ", sizeof name) == 0 ? record : lu;
    }
    ASSERT_NE(lu, nullptr);
    const auto pool_of = [lu] {
        char text[9]{};
        std::memcpy(text, lu->vcb.def_data.pool_name, 8);
        nba_ebcdic_to_local(text, 8);
        return std::string(text);
    };
    const std::size_t pools = count(gvga_system->pool_tree);
    service.control("define pool NEWPOOL lu=CORE05");
    EXPECT_TRUE(console.wait([&] { return pool_of() == "NEWPOOL "; }, 5000)) << pool_of();
    EXPECT_EQ(count(gvga_system->pool_tree), pools + 1);
}

// The completion of the console's own verb takes the same road.
TEST_F(Definitions, OfTheConsoleItselfTakeTheSameRoad) {
    auto* define = vga_new_vcb<DEFINE_TP>(NAP_DEFINE_TP);
    van_ascii_to_ebcdic(define->tp_name, "OWNTP", sizeof define->tp_name);
    const std::size_t before = count(node()->tp_def_tree);
    ASSERT_TRUE(
        vga_queue_verb(node()->node_handle, define, node()->handle, [](VGA_COMPLETION* completion) {
            vga_tp_def* record;
            vga_process_def_tp(completion, node(), &record);
            vga_issue_del_tp_def(record, completion->corr, [](VGA_COMPLETION* deleted) {
                vga_process_del_tp(deleted, node());
            });
        }));
    EXPECT_TRUE(console.wait([&] { return count(node()->tp_def_tree) == before + 1; }, 5000));
    EXPECT_TRUE(console.wait([&] { return count(node()->tp_def_tree) == before; }, 5000));
    EXPECT_EQ(at_node("tp"), before);
}

} // namespace
