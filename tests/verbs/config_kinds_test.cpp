// Kinds of resource that somebody defines, redefines and deletes: each takes the same road.
#include "config_fixture.h"

#include "kit/store_dump.h"

#include <set>
#include <utility>

namespace store_test {
namespace {

constexpr NB_ULONG CORR = 77;

using Block = Verb<HEADER_ONLY>;

// What there is of a kind: the record that a test has defined.
struct Found {
    void* record = nullptr;
    NB_HANDLE handle = 0;
    std::string description;
    vga_dialog** dialog = nullptr; // open on it
};

struct Kind {
    const char* name;
    Block (*define)(const char* description);
    Found (*find)(const vga_node* node);
    bool (*issue)(void* record);            // its delete
    NB_HANDLE target;                       // of the delete
    int unknown;                            // subcode that logs a second delete; -1: none
    int flag;                               // of the build, while which nothing is logged; -1: none
    VGA_CHECK_KIND check = VGA_CHECK_COUNT; // the same of a check
};

std::set<NB_HANDLE> others; // records that were there before

template <typename T> const T& part(const T& vcb) {
    return vcb;
}
template <typename T> const T& part(T* vcb) {
    return *vcb;
}

template <typename T> auto& description_of(T& block) {
    if constexpr (requires { block.def.description; }) {
        return block.def.description;
    } else if constexpr (requires { block.def_data.description; }) {
        return block.def_data.description;
    } else {
        return block.description;
    }
}

template <NB_USHORT opcode, typename T, auto fill> Block define(const char* description) {
    Verb<T> verb(opcode);
    fill(*verb.operator->());
    std::strcpy(description_of(*verb.operator->()), description);
    Block block(opcode);
    block.bytes = verb.bytes;
    return block;
}

template <typename Record> Found find(const NTL_AVL_TREE& tree) {
    for (auto* record : all<Record>(tree)) {
        if (!others.contains(record->handle)) {
            return {record, record->handle, description_of(part(record->vcb)),
                    &record->gui_data.dialog};
        }
    }
    return {};
}
template <typename Record, auto tree> Found of_node(const vga_node* node) {
    return find<Record>(node->*tree);
}
template <typename Record, auto tree> Found of_system(const vga_node*) {
    return find<Record>(gvga_system->*tree);
}
template <typename Record, auto owners, typename Owner, auto tree>
Found of_first(const vga_node* node) {
    return find<Record>(ntl_avl_first<Owner>(node->*owners)->*tree);
}

template <typename Record>
bool issue_as(bool (*issuer)(Record*, NB_ULONG, VGA_CALLBACK), void* record) {
    return issuer(static_cast<Record*>(record), CORR, no_completion);
}
template <auto issuer> bool issue(void* record) {
    return issue_as(issuer, record);
}
bool issue_client(void* record) {
    return vga_issue_del_tn_access(static_cast<vga_tn_client*>(record), nullptr, CORR,
                                   no_completion);
}
bool issue_user(void* record) {
    return vga_issue_del_user(static_cast<vga_user*>(record), nullptr, CORR, no_completion);
}

const Kind kinds[] = {
    {"DLC", define<NAP_DEFINE_DLC, DEFINE_DLC, [](auto& b) { put(b.dlc_name, "NEW"); }>,
     of_node<vga_dlc, &vga_node::dlc_tree>, issue<vga_issue_del_dlc>, NODE, 37, VGA_NODE_DLCS,
     VGA_CHECK_DLC},
    {"port",
     define<NAP_DEFINE_PORT, DEFINE_PORT,
            [](auto& b) {
                put(b.port_name, "NEW");
                put(b.def.dlc_name, "ETH0");
            }>,
     of_node<vga_port, &vga_node::port_tree>, issue<vga_issue_del_port>, NODE, 53, VGA_NODE_PORTS,
     VGA_CHECK_PORT},
    {"link station",
     define<NAP_DEFINE_LS, DEFINE_LS,
            [](auto& b) {
                put(b.ls_name, "NEW");
                b.def = ls("NEW", "ETH0", "NEW").def;
            }>,
     of_node<vga_ls, &vga_node::ls_tree>, issue<vga_issue_del_ls>, NODE, -1, -1},
    {"DLUR PU",
     define<NAP_DEFINE_INTERNAL_PU, DEFINE_INTERNAL_PU, [](auto& b) { put(b.pu_name, "NEW"); }>,
     of_node<vga_pu, &vga_node::local_pu_tree>, issue<vga_issue_del_internal_pu>, NODE, 42,
     VGA_NODE_LOCAL_PUS, VGA_CHECK_DLUR_PU},
    {"LU 0 to 3",
     define<NAP_DEFINE_LU_0_TO_3, DEFINE_LU_0_TO_3,
            [](auto& b) {
                put(b.lu_name, "NEW");
                b.def = lu03("", "PU1", 2).def_data;
            }>,
     of_system<vga_lu03, &vga_system::lu_tree>, issue<vga_issue_del_lu03>, NODE, 45, VGA_NODE_LU03S,
     VGA_CHECK_LU03},
    {"downstream LU",
     define<NAP_DEFINE_DOWNSTREAM_LU, DEFINE_DOWNSTREAM_LU,
            [](auto& b) {
                put(b.dslu_name, "NEW");
                put(b.def.dspu_name, "DSPU");
                b.def.nau_address = 2;
            }>,
     of_first<vga_down_lu, &vga_node::down_pu_tree, vga_pu, &vga_pu::lu_tree>,
     issue<vga_issue_del_down_lu>, NODE, 39, VGA_NODE_DOWN_LUS, VGA_CHECK_DOWN_LU},
    {"local LU",
     define<NAP_DEFINE_LOCAL_LU, DEFINE_LOCAL_LU,
            [](auto& b) {
                put(b.lu_name, "NEW");
                b.def = lu62("", "NEW").def;
            }>,
     of_node<vga_lu62, &vga_node::lu62_tree>, issue<vga_issue_del_lu62>, NODE, -1, -1},
    {"mode", define<NAP_DEFINE_MODE, DEFINE_MODE, [](auto& b) { put(b.mode_name, "NEW"); }>,
     of_node<vga_mode_def, &vga_node::mode_def_tree>, issue<vga_issue_del_mode>, NODE, -1, -1},
    {"TP", define<NAP_DEFINE_TP, DEFINE_TP, [](auto& b) { put(b.tp_name, "NEW"); }>,
     of_node<vga_tp_def, &vga_node::tp_def_tree>, issue<vga_issue_del_tp_def>, NODE, 77,
     VGA_NODE_TP_DEFS},
    {"TP load information",
     define<NAP_DEFINE_TP_LOAD_INFO, DEFINE_TP_LOAD_INFO,
            [](auto& b) {
                put(b.tp_name, "NEW");
                put(b.lu_alias, "LU1");
            }>,
     of_node<vga_tp_load_info, &vga_node::tp_load_tree>, issue<vga_issue_del_tp_load_info>, TP_FILE,
     82, VGA_NODE_TP_LOAD_INFOS},
    {"user ID",
     define<NAP_DEFINE_USERID_PASSWORD, DEFINE_USERID_PASSWORD,
            [](auto& b) {
                b.define_type = 1;
                put(b.user_id, "NEW");
            }>,
     of_node<vga_userid_password, &vga_node::userid_tree>, issue<vga_issue_del_userid_password>,
     NODE, 58, VGA_NODE_USERIDS},
    {"access list",
     define<NAP_DEFINE_SECURITY_ACCESS_LIST, DEFINE_SECURITY_ACCESS_LIST,
            [](auto& b) { put(b.list_name, "new"); }>,
     of_node<vga_security_access_list, &vga_node::access_list_tree>,
     issue<vga_issue_del_security_access_list>, NODE, 76, VGA_NODE_ACCESS_LISTS},
    {"LU-LU password",
     define<NAP_DEFINE_LU_LU_PASSWORD, DEFINE_LU_LU_PASSWORD,
            [](auto& b) {
                put(b.key.lu_name, "APPL");
                put(b.key.plu_name, "NET.NEW");
            }>,
     of_node<vga_lu_lu_password, &vga_node::sl_sec_tree>, issue<vga_issue_del_lu_lu_password>, NODE,
     61, -1},
    {"route",
     define<NAP_DEFINE_LS_ROUTING, DEFINE_LS_ROUTING,
            [](auto& b) {
                put(b.key.lu_name, "APPL");
                put(b.key.plu_name, "NET.NEW");
                b.key.wildcard = 1;
            }>,
     of_first<vga_ls_routing, &vga_node::lu62_tree, vga_lu62, &vga_lu62::ls_routing_tree>,
     issue<vga_issue_del_ls_routing>, NODE, 70, VGA_NODE_LS_ROUTING},
    {"primary line",
     define<NAP_DEFINE_PRIMARY_LINE, DEFINE_PRIMARY_LINE, [](auto& b) { put(b.line_name, "NEW"); }>,
     of_node<vga_primary_line, &vga_node::primary_line_tree>, issue<vga_issue_del_primary_line>,
     NODE, 74, VGA_NODE_PRIMARY_LINES},
    {"DSPU template",
     define<NAP_DEFINE_DSPU_TEMPLATE, DEFINE_DSPU_TEMPLATE,
            [](auto& b) { put(b.template_name, "NEW"); }>,
     of_node<vga_dspu_template, &vga_node::dspu_template_tree>, issue<vga_issue_del_dspu_template>,
     NODE, 71, VGA_NODE_DSPU_TEMPLATES},
    {"TN3270 client",
     define<NAP_DEFINE_TN3270_ACCESS, DEFINE_TN3270_ACCESS,
            [](auto& b) { std::strcpy(b.client.address, "new"); }>,
     of_node<vga_tn_client, &vga_node::tn_client_tree>, issue_client, NODE, 55, VGA_NODE_TN_ACCESS},
    {"TN3270 association",
     define<NAP_DEFINE_TN3270_ASSOCIATION, DEFINE_TN3270_ASSOCIATION,
            [](auto& b) { put(b.display_lu_name, "NEW"); }>,
     of_node<vga_tn_assoc, &vga_node::tn_assoc_tree>, issue<vga_issue_del_tn_assoc>, NODE, 66,
     VGA_NODE_TN_ASSOCS},
    {"redirector",
     define<NAP_DEFINE_TN_REDIRECT, DEFINE_TN_REDIRECT,
            [](auto& b) {
                std::strcpy(b.key.client_address, "new");
                b.key.client_port = 992;
            }>,
     of_node<vga_tn_redirect, &vga_node::tn_redirect_tree>, issue<vga_issue_del_tn_redirect>, NODE,
     84, VGA_NODE_TN_REDIRECTS},
    {"user",
     define<NAP_DEFINE_EMULATOR_USER, DEFINE_EMULATOR_USER,
            [](auto& b) { put(b.user_name, "new"); }>,
     of_system<vga_user, &vga_system::user_tree>, issue_user, DOMAIN, 30, VGA_SYSTEM_USERS},
    {"CPI-C side information",
     define<NAP_DEFINE_CPIC_SIDE_INFO, DEFINE_CPIC_SIDE_INFO,
            [](auto& b) { put(b.sym_dest_name, "NEW"); }>,
     of_system<vga_cpic, &vga_system::cpic_tree>, issue<vga_issue_del_cpic>, DOMAIN, 31,
     VGA_SYSTEM_CPIC},
    {"RJE workstation",
     define<NAP_DEFINE_RJE_WKSTN, DEFINE_RJE_WKSTN, [](auto& b) { put(b.wkstn_name, "N1"); }>,
     of_system<vga_rje_wkstn, &vga_system::rje_tree>, issue<vga_issue_del_rje_wkstn>, DOMAIN, 28,
     VGA_SYSTEM_RJE},
};

struct Kinds : Configured {
    Kinds() {
        add_port("ETH0");
        add_ls(ls("LS1", "ETH0", "PU1"));
        add_ls(ls("LS2", "ETH0", "", "DSPU"));
        add_lu03(lu03("LU1", "PU1", 1)); // its pool stays
        add_lu62(lu62("APPL", "APPL"))->startup_status = 0;
        EXPECT_TRUE(vga_create_fake_cp_lu(node));
        others = kit::dump_store().handles;
    }
    void indicate(const Kind& kind, Block block) {
        VGA_COMPLETION completion =
            block.completion(kind.target == DOMAIN ? gvga_system->handle : node->handle);
        (kind.target == DOMAIN ? vga_process_system_config_ind
                               : vga_process_node_config_ind)(&completion);
    }
    // Sends the delete of a record; the block that goes out.
    Block issued(const Kind& kind, void* record) {
        EXPECT_TRUE(kind.issue(record));
        const VGA_QUEUE_ENTRY& sent = last_issued();
        EXPECT_EQ(sent.target, kind.target);
        EXPECT_EQ(sent.corr, CORR);
        EXPECT_EQ(sent.callback, no_completion);
        const auto* bytes = static_cast<const NB_BYTE*>(sent.vcb);
        Block block(0);
        block.bytes.assign(bytes, bytes + nba_block_length(sent.vcb));
        return block;
    }
};

TEST_F(Kinds, ADefineMakesARecordThatARepeatedOneChangesAndItsDeleteRemoves) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        indicate(kind, kind.define("first"));
        const Found first = kind.find(node);
        ASSERT_NE(first.record, nullptr);
        EXPECT_EQ(nba_validate_handle(first.handle), first.record);
        EXPECT_EQ(first.description, "first");

        indicate(kind, kind.define("second"));
        const Found second = kind.find(node);
        EXPECT_EQ(second.record, first.record);
        EXPECT_EQ(second.handle, first.handle);
        EXPECT_EQ(second.description, "second");
        EXPECT_EQ(kit::dump_store().faults, Rows{});

        vga_dialog dialog{};
        dialog.parent_item = first.record;
        *first.dialog = &dialog;
        indicate(kind, issued(kind, first.record));
        EXPECT_EQ(kind.find(node).record, nullptr);
        EXPECT_EQ(nba_validate_handle(first.handle), nullptr);
        EXPECT_EQ(dialog.parent_item, nullptr);
        EXPECT_EQ(kit::dump_store().faults, Rows{});
    }
}

TEST_F(Kinds, AnUnknownNameIsLoggedUnlessItsKindIsBeingListed) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        indicate(kind, kind.define(""));
        Block block = issued(kind, kind.find(node).record);
        vcb_header(block.bytes.data())->primary_rc = NAP_INDICATION;
        indicate(kind, block);
        const auto again = [&] { indicate(kind, block); };
        if (kind.unknown < 0) {
            EXPECT_EQ(log_of(again), "");
            continue;
        }
        expect_logged(again, kind.unknown, kind.check,
                      kind.target == DOMAIN ? gvga_system->build_flags : node->build_flags,
                      kind.flag);
    }
}

TEST_F(Kinds, WithoutMemoryTheRunEndsAndTheStoreIsWhole) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        indicate(kind, kind.define("text"));
        const Block remove = issued(kind, kind.find(node).record);
        indicate(kind, remove);
        const std::size_t before = vga_allocations_in_use();
        unsigned long nth = 0;
        for (bool failed = true; failed; failed = std::exchange(gvga_exit_code, 0) != 0) {
            vga_fail_allocation(++nth);
            indicate(kind, kind.define("text"));
            vga_fail_allocation(0);
            EXPECT_TRUE(gvga_exit_code != 0 || kind.find(node).record != nullptr) << nth;
            EXPECT_EQ(kit::dump_store().faults, Rows{}) << nth;
            if (kind.find(node).record != nullptr) { // it lacks what stands below it
                indicate(kind, remove);
            }
            EXPECT_EQ(vga_allocations_in_use(), before) << nth;
            ASSERT_LT(nth, 20u);
        }
        EXPECT_GT(nth, 1u) << "a define takes memory";
    }
}

TEST_F(Kinds, ADeleteWithoutMemoryIsNotSentAndNothingIsKept) {
    for (const Kind& kind : kinds) {
        indicate(kind, kind.define("text"));
        void* record = kind.find(node).record;
        const std::size_t before = vga_allocations_in_use();
        for (const unsigned long nth : {1, 2}) {
            SCOPED_TRACE(testing::Message() << kind.name << " allocation " << nth);
            vga_fail_allocation(nth);
            EXPECT_FALSE(kind.issue(record));
            vga_fail_allocation(0);
            EXPECT_EQ(vga_allocations_in_use(), before);
            const bool fatal = kind.issue == issue<vga_issue_del_dspu_template> && nth == 1;
            EXPECT_EQ(gvga_exit_code, fatal ? VGA_EXIT_INTERNAL : 0);
            gvga_exit_code = 0;
        }
    }
}

TEST_F(Kinds, AFailedVerbBreaksTheInvariantAndIsProcessedAllTheSame) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        Block block = kind.define("text");
        vcb_header(block.bytes.data())->primary_rc = NAP_UNSUCCESSFUL;
        log_of([&] { indicate(kind, block); });
        EXPECT_EQ(nba_assert_count(), ++asserts);
        EXPECT_STREQ(nba_last_assert(),
                     "(vcb->primary_rc == NAP_OK)||(vcb->primary_rc == NAP_INDICATION)");
        EXPECT_NE(kind.find(node).record, nullptr);
    }
}

} // namespace
} // namespace store_test
