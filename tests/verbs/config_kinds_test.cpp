// Kinds of resource that somebody defines, redefines and deletes: each takes the same road.
#include "store/fixture.h"

#include "nof/cn.h"
#include "store/tracking.h"
#include "verbs/config.h"

#include <functional>
#include <span>

namespace store_test {
namespace {

using Block = std::vector<NB_BYTE>;

template <typename T> Block block(NB_USHORT opcode, const std::function<void(T&)>& fill) {
    T fixed{};
    auto* header = reinterpret_cast<VCB_HEADER*>(&fixed);
    header->opcode = opcode;
    header->primary_rc = NAP_INDICATION;
    fill(fixed);
    const auto* bytes = reinterpret_cast<const NB_BYTE*>(&fixed);
    return Block(bytes, bytes + sizeof fixed);
}

template <typename T> void append(Block* block, const T& member) {
    const auto* bytes = reinterpret_cast<const NB_BYTE*>(&member);
    block->insert(block->end(), bytes, bytes + sizeof member);
}

void describe(NB_DESCRIPTION& field, const std::string& text) {
    std::strcpy(field, text.c_str());
}

// What there is of a kind: the record that a test has defined, and how many there are.
struct Found {
    void* record;
    NB_HANDLE handle;
    std::string description;
};

template <typename Record> Found find(const NTL_AVL_TREE& tree) {
    auto* record = ntl_avl_first<Record>(tree);
    if (record == nullptr) {
        return {};
    }
    if constexpr (std::is_pointer_v<decltype(record->vcb)>) {
        return {record, record->handle, record->vcb->def_data.description};
    } else {
        return {record, record->handle, record->vcb.def.description};
    }
}

struct Kind {
    const char* name;
    Block (*define)(const char* description);
    Block (*remove)();
    Found (*find)(const vga_node* node);
    int unknown; // subcode that logs a second delete; -1: none
    int flag;    // of the build, while which nothing is logged
    bool domain; // an indication of the system, not of the node
};

const Kind kinds[] = {
    {"TP",
     [](const char* description) {
         return block<DEFINE_TP>(NAP_DEFINE_TP, [&](DEFINE_TP& b) {
             put(b.tp_name, "PAYROLL");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_TP>(NAP_DELETE_TP, [](DELETE_TP& b) { put(b.tp_name, "PAYROLL"); });
     },
     [](const vga_node* node) { return find<vga_tp_def>(node->tp_def_tree); }, 77, VGA_NODE_TP_DEFS,
     false},
    {"TP load information",
     [](const char* description) {
         Block b = block<DEFINE_TP_LOAD_INFO>(NAP_DEFINE_TP_LOAD_INFO, [&](auto& fixed) {
             put(fixed.tp_name, "PAYROLL");
             put(fixed.lu_alias, "LU1");
             describe(fixed.def_data.description, description);
             fixed.def_data.ltv_length = 7;
         });
         b.insert(b.end(), {0, 7, NOF_LTV_TP_PATH, '/', 'b', 'i', 'n'});
         return b;
     },
     [] {
         return block<DELETE_TP_LOAD_INFO>(NAP_DELETE_TP_LOAD_INFO, [](auto& b) {
             put(b.tp_name, "PAYROLL");
             put(b.lu_alias, "LU1");
         });
     },
     [](const vga_node* node) { return find<vga_tp_load_info>(node->tp_load_tree); }, 82,
     VGA_NODE_TP_LOAD_INFOS, false},
    {"user ID",
     [](const char* description) {
         return block<DEFINE_USERID_PASSWORD>(NAP_DEFINE_USERID_PASSWORD, [&](auto& b) {
             b.define_type = 1;
             put(b.user_id, "ANNA");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_USERID_PASSWORD>(NAP_DELETE_USERID_PASSWORD, [](auto& b) {
             b.delete_type = NAP_REMOVE_USER;
             put(b.user_id, "ANNA");
         });
     },
     [](const vga_node* node) { return find<vga_userid_password>(node->userid_tree); }, 58,
     VGA_NODE_USERIDS, false},
    {"access list",
     [](const char* description) {
         return block<DEFINE_SECURITY_ACCESS_LIST>(NAP_DEFINE_SECURITY_ACCESS_LIST, [&](auto& b) {
             put(b.list_name, "clerks");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_SECURITY_ACCESS_LIST>(NAP_DELETE_SECURITY_ACCESS_LIST,
                                                   [](auto& b) { put(b.list_name, "clerks"); });
     },
     [](const vga_node* node) { return find<vga_security_access_list>(node->access_list_tree); },
     76, VGA_NODE_ACCESS_LISTS, false},
    {"LU-LU password",
     [](const char* description) {
         return block<DEFINE_LU_LU_PASSWORD>(NAP_DEFINE_LU_LU_PASSWORD, [&](auto& b) {
             put(b.key.lu_name, "LOCAL");
             put(b.key.plu_name, "NET.PARTNER");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_LU_LU_PASSWORD>(NAP_DELETE_LU_LU_PASSWORD, [](auto& b) {
             put(b.key.lu_name, "LOCAL");
             put(b.key.plu_name, "NET.PARTNER");
         });
     },
     [](const vga_node* node) { return find<vga_lu_lu_password>(node->sl_sec_tree); }, 61, -1,
     false},
    {"route",
     [](const char* description) {
         return block<DEFINE_LS_ROUTING>(NAP_DEFINE_LS_ROUTING, [&](auto& b) {
             put(b.key.lu_name, "LOCAL");
             put(b.key.plu_name, "NET.P");
             b.key.wildcard = 1;
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_LS_ROUTING>(NAP_DELETE_LS_ROUTING, [](auto& b) {
             put(b.key.lu_name, "LOCAL");
             put(b.key.plu_name, "NET.P");
             b.key.wildcard = 1;
         });
     },
     [](const vga_node* node) {
         return find<vga_ls_routing>(ntl_avl_first<vga_lu62>(node->lu62_tree)->ls_routing_tree);
     },
     70, VGA_NODE_LS_ROUTING, false},
    {"primary line",
     [](const char* description) {
         return block<DEFINE_PRIMARY_LINE>(NAP_DEFINE_PRIMARY_LINE, [&](auto& b) {
             put(b.line_name, "LINE1");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_PRIMARY_LINE>(NAP_DELETE_PRIMARY_LINE,
                                           [](auto& b) { put(b.line_name, "LINE1"); });
     },
     [](const vga_node* node) { return find<vga_primary_line>(node->primary_line_tree); }, 74,
     VGA_NODE_PRIMARY_LINES, false},
    {"DSPU template",
     [](const char* description) {
         return block<DEFINE_DSPU_TEMPLATE>(NAP_DEFINE_DSPU_TEMPLATE, [&](auto& b) {
             put(b.template_name, "BRANCH");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_DSPU_TEMPLATE>(NAP_DELETE_DSPU_TEMPLATE,
                                            [](auto& b) { put(b.template_name, "BRANCH"); });
     },
     [](const vga_node* node) { return find<vga_dspu_template>(node->dspu_template_tree); }, 71,
     VGA_NODE_DSPU_TEMPLATES, false},
    {"TN3270 client",
     [](const char* description) {
         return block<DEFINE_TN3270_ACCESS>(NAP_DEFINE_TN3270_ACCESS, [&](auto& b) {
             std::strcpy(b.client.address, "desk.example");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_TN3270_ACCESS>(NAP_DELETE_TN3270_ACCESS, [](auto& b) {
             std::strcpy(b.client.address, "desk.example");
         });
     },
     [](const vga_node* node) { return find<vga_tn_client>(node->tn_client_tree); }, 55,
     VGA_NODE_TN_ACCESS, false},
    {"TN3270 association",
     [](const char* description) {
         return block<DEFINE_TN3270_ASSOCIATION>(NAP_DEFINE_TN3270_ASSOCIATION, [&](auto& b) {
             put(b.display_lu_name, "DISPLAY");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_TN3270_ASSOCIATION>(
             NAP_DELETE_TN3270_ASSOCIATION, [](auto& b) { put(b.display_lu_name, "DISPLAY"); });
     },
     [](const vga_node* node) { return find<vga_tn_assoc>(node->tn_assoc_tree); }, 66,
     VGA_NODE_TN_ASSOCS, false},
    {"redirector",
     [](const char* description) {
         return block<DEFINE_TN_REDIRECT>(NAP_DEFINE_TN_REDIRECT, [&](auto& b) {
             std::strcpy(b.key.client_address, "desk.example");
             b.key.client_port = 23;
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_TN_REDIRECT>(NAP_DELETE_TN_REDIRECT, [](auto& b) {
             std::strcpy(b.key.client_address, "desk.example");
             b.key.client_port = 23;
         });
     },
     [](const vga_node* node) { return find<vga_tn_redirect>(node->tn_redirect_tree); }, 84,
     VGA_NODE_TN_REDIRECTS, false},
    {"user",
     [](const char* description) {
         return block<DEFINE_EMULATOR_USER>(NAP_DEFINE_EMULATOR_USER, [&](auto& b) {
             put(b.user_name, "anna");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_EMULATOR_USER>(NAP_DELETE_EMULATOR_USER,
                                            [](auto& b) { put(b.user_name, "anna"); });
     },
     [](const vga_node*) { return find<vga_user>(gvga_system->user_tree); }, 30, VGA_SYSTEM_USERS,
     true},
    {"CPI-C side information",
     [](const char* description) {
         return block<DEFINE_CPIC_SIDE_INFO>(NAP_DEFINE_CPIC_SIDE_INFO, [&](auto& b) {
             put(b.sym_dest_name, "PAYROLL");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_CPIC_SIDE_INFO>(NAP_DELETE_CPIC_SIDE_INFO,
                                             [](auto& b) { put(b.sym_dest_name, "PAYROLL"); });
     },
     [](const vga_node*) { return find<vga_cpic>(gvga_system->cpic_tree); }, 31, VGA_SYSTEM_CPIC,
     true},
    {"RJE workstation",
     [](const char* description) {
         return block<DEFINE_RJE_WKSTN>(NAP_DEFINE_RJE_WKSTN, [&](auto& b) {
             put(b.wkstn_name, "W1");
             describe(b.def.description, description);
         });
     },
     [] {
         return block<DELETE_RJE_WKSTN>(NAP_DELETE_RJE_WKSTN,
                                        [](auto& b) { put(b.wkstn_name, "W1"); });
     },
     [](const vga_node*) { return find<vga_rje_wkstn>(gvga_system->rje_tree); }, 28, VGA_SYSTEM_RJE,
     true},
};

std::size_t lines_with(const std::string& log, const std::string& part) {
    std::size_t lines = 0;
    for (std::size_t at = log.find(part); at != std::string::npos; at = log.find(part, at + 1)) {
        ++lines;
    }
    return lines;
}

// A store whose build is done, with one local LU.
struct Config : Store {
    Config() {
        node->build_flags = 0;
        gvga_system->build_flags = 0;
        EXPECT_NE(add_lu62(lu62("LOCAL", "LOCAL")), nullptr);
    }

    void indicate(Block block, bool domain = false) {
        VGA_COMPLETION completion{0, block.data(), domain ? gvga_system->handle : node->handle};
        (domain ? vga_process_system_config_ind : vga_process_node_config_ind)(&completion);
    }
    std::string log_of(Block block, bool domain = false) {
        testing::internal::CaptureStderr();
        indicate(std::move(block), domain);
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(Config, ADefineMakesARecordAndARepeatedOneIsTakenIntoIt) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        indicate(kind.define("first"), kind.domain);
        const Found first = kind.find(node);
        ASSERT_NE(first.record, nullptr);
        EXPECT_EQ(nba_validate_handle(first.handle), first.record);
        EXPECT_EQ(first.description, "first");

        indicate(kind.define("second"), kind.domain);
        const Found second = kind.find(node);
        EXPECT_EQ(second.record, first.record);
        EXPECT_EQ(second.handle, first.handle);
        EXPECT_EQ(second.description, "second");

        indicate(kind.remove(), kind.domain);
        EXPECT_EQ(kind.find(node).record, nullptr);
        EXPECT_EQ(nba_validate_handle(first.handle), nullptr);
    }
}

TEST_F(Config, AnUnknownNameIsLoggedUnlessItsKindIsBeingListed) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        const std::string subcode = " exception 0x40020004 " + std::to_string(kind.unknown);
        EXPECT_EQ(lines_with(log_of(kind.remove(), kind.domain), subcode), 1u);
        if (kind.flag >= 0) {
            VGA_FLAGS& flags = kind.domain ? gvga_system->build_flags : node->build_flags;
            flags = vga_flag(kind.flag);
            EXPECT_EQ(log_of(kind.remove(), kind.domain), "");
            flags = 0;
        }
        ptrc.flags = 1;
        EXPECT_EQ(log_of(kind.remove(), kind.domain), "");
        ptrc.flags = 0;
    }
}

TEST_F(Config, WithoutMemoryTheRunEndsAndTheStoreIsWhole) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        for (unsigned long nth = 1;; ++nth) {
            vga_fail_allocation(nth);
            indicate(kind.define("text"), kind.domain);
            vga_fail_allocation(0);
            const bool failed = gvga_exit_code != 0;
            EXPECT_EQ(kind.find(node).record == nullptr, failed) << nth;
            gvga_exit_code = 0;
            if (!failed) {
                ASSERT_GT(nth, 1u) << "a define takes memory";
                break;
            }
            ASSERT_LT(nth, 20u);
        }
        indicate(kind.remove(), kind.domain);
    }
}

TEST_F(Config, AFailedVerbBreaksTheInvariantAndIsProcessedAllTheSame) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        Block block = kind.define("text");
        reinterpret_cast<VCB_HEADER*>(block.data())->primary_rc = NAP_UNSUCCESSFUL;
        log_of(block, kind.domain);
        EXPECT_EQ(nba_assert_count(), ++asserts);
        EXPECT_STREQ(nba_last_assert(),
                     "(vcb->primary_rc == NAP_OK)||(vcb->primary_rc == NAP_INDICATION)");
        EXPECT_NE(kind.find(node).record, nullptr);
        indicate(kind.remove(), kind.domain);
    }
}

} // namespace
} // namespace store_test
