// The build against a scripted node: which verbs it sends in which order, and what it makes of the
// answers.
#include "scripted_node.h"

#include "nof/routing.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/tp.h"
#include "nof/trace.h"

#include <iterator>

namespace store_test {
namespace {

using Rows = std::vector<std::string>;

int nodes_built;
int system_built;

struct Build : Store {
    Build() {
        vga_do_free_node_res(node, true, nullptr); // the build lists its own
        node = nullptr;
        nodes_built = system_built = 0;
        gvga_store_hooks.node_built = [](vga_node*) { ++nodes_built; };
        gvga_store_hooks.system_built = [] { ++system_built; };
        gvga_store_hooks.start_shutdown = [] {
            VGA_FATAL(VGA_EXIT_ORDERLY, 0);
            return true;
        };
        gvga_querybuf_size = 4096;
        gvga_read_only = 0;
        gvga_supported[VGA_SUPPORT_CPIC] = 1;
        gvga_supported[VGA_SUPPORT_RJE] = 1;
        gvga_supported[VGA_SUPPORT_DIRECTORY] = 1;
        script.has(NAP_QUERY_NODE_ALL, node_all("alpha"));
    }
    ~Build() override {
        std::fill(std::begin(gvga_supported), std::end(gvga_supported), NB_USHORT{0});
        gvga_read_only = 0;
    }
    void build() {
        vga_start_build_system();
        script.run();
        node = ntl_avl_first<vga_node>(gvga_system->node_tree);
    }
    void expect_built() {
        EXPECT_EQ(gvga_exit_code, 0) << std::hex << gvga_exit_subcode;
        EXPECT_EQ(gvga_system->build_flags, 0u);
        EXPECT_EQ(system_built, 1);
    }
    void all_capabilities() { script.node.capabilities = {{1, 1}, {1, 1}, 1, 1, 0, 1, 1, 1, 1}; }
    ScriptedNode script;
};

// A small node with something of most kinds.
struct WholeNode : Build {
    WholeNode() {
        all_capabilities();
        script.has(NAP_QUERY_DLC, dlc("ETH0"));
        for (const char* name : {"ETH0", "ETH1", "ETH2"}) {
            script.has(NAP_QUERY_PORT, port(name, "ETH0"));
        }
        script.has(NAP_QUERY_LS, ls("HOST", "ETH0", "HOST"));
        script.has(NAP_QUERY_LS, ls("DOWN", "ETH1", "", "DSPU"));
        script.has(NAP_QUERY_LS, ls("PEER", "ETH1"));
        script.has(NAP_QUERY_PU, pu("HOST", "HOST"));
        script.has(NAP_QUERY_DLUR_PU, pu("DLURPU", "", NAP_DLUR_ATTACHED));
        script.has(NAP_QUERY_DOWNSTREAM_PU, pu("DSPU", "DOWN"));
        for (NB_BYTE nau = 2; nau < 7; ++nau) {
            script.has(NAP_QUERY_LU_0_TO_3, lu03("LU" + std::to_string(nau), "HOST", nau), "HOST");
        }
        script.has(NAP_QUERY_LU_0_TO_3, lu03("DLU1", "DLURPU", 2), "DLURPU");
        script.has(NAP_QUERY_DOWNSTREAM_LU, down_lu("TERM1", 1), "DSPU");
        script.has(NAP_QUERY_LOCAL_LU, lu62("APPL1", "APPL1"));
        script.has(NAP_QUERY_LOCAL_LU, lu62("DEP1", "DEP1", 9, "HOST"));
        auto partner = entry<PLU_ENTRY>();
        put(partner.plu_name, "NET.P");
        script.has(NAP_QUERY_PARTNER_LU, partner, "APPL1");
        script.has(NAP_QUERY_MODE, mode("#INTER", "NET.P", 2, "NET.EN"), "APPL1");
        script.has(NAP_QUERY_DIRECTORY_ENTRY, directory("NET.NN", NAP_NETWORK_NODE_CP_RESOURCE, 1));
        script.has(NAP_QUERY_DIRECTORY_ENTRY, directory("NET.EN", NAP_END_NODE_CP_RESOURCE, 3));
        script.has(NAP_QUERY_DIRECTORY_ENTRY,
                   directory("NET.LU", NAP_LU_RESOURCE, 3, "NET.EN", NAP_END_NODE_CP_RESOURCE));
        script.has(NAP_QUERY_PARTNER_LU_DEFINITION, plu_def("NET.LU", "LU"));
        script.has(NAP_QUERY_PARTNER_LU_DEFINITION, plu_def("NET.ELSE", "ELSE"));
        auto cos = entry<COS_ENTRY>();
        put(cos.cos_name, "#INTER");
        script.has(NAP_QUERY_COS, cos);
        auto row = entry<COS_ROW_ENTRY>();
        put(row.cos_name, "#INTER");
        row.row = 1;
        script.has(NAP_QUERY_COS_NODE_ROW, row);
        script.has(NAP_QUERY_COS_TG_ROW, row);
        auto trace = entry<DLC_TRACE_ENTRY>();
        trace.resource_type = 3;
        put(trace.name, "HOST");
        script.has(NAP_QUERY_DLC_TRACE, trace);
        put(trace.name, "PEER");
        script.has(NAP_QUERY_DLC_TRACE, trace);
        trace.resource_type = NOF_TRACE_PORT_4;
        put(trace.name, "NONE");
        script.has(NAP_QUERY_DLC_TRACE, trace);
    }
};

TEST_F(WholeNode, IsMirroredCompletely) {
    build();
    expect_built();
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(nodes_built, 1);
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_ACTIVE);
    EXPECT_EQ(node->node_handle, FIRST_NODE_HANDLE);
    EXPECT_EQ(rows(node->links_root),
              (Rows{"ETH0", " HOST+", "  LU2", "  LU3", "  LU4", "  LU5", "  LU6", "  DEP1", "ETH1",
                    " DOWN+", "  TERM1", " PEER", "ETH2", "DLUR", " DLURPU", "  DLU1"}));
    EXPECT_EQ(rows(node->lus_root), (Rows{"APPL1", " NET.P/#INTER", "CP"}));
    EXPECT_EQ(rows(node->rem_sys_root),
              (Rows{"NET.EN", " NET.LU", " NET.P", "  APPL1/#INTER", "", " NET.ELSE"}));
    EXPECT_EQ(count(node->dir_tree), 3u);
    EXPECT_EQ(node->tracing.ethernet, 2);
    auto* cos = ntl_avl_first<vga_cos>(node->cos_tree);
    EXPECT_EQ(count(cos->node_row_tree) + count(cos->tg_row_tree), 2u);
    EXPECT_NE(node->cp_lu, nullptr) << "made for want of a listed one";
}

TEST_F(WholeNode, RegistersBeforeItLists) {
    build();
    const struct {
        NB_USHORT indication, query;
    } pairs[] = {
        {NAP_DLC_INDICATION, NAP_QUERY_DLC},
        {NAP_PORT_INDICATION, NAP_QUERY_PORT},
        {NAP_LS_INDICATION, NAP_QUERY_LS},
        {NAP_PU_INDICATION, NAP_QUERY_PU},
        {NAP_DLUR_PU_INDICATION, NAP_QUERY_DLUR_PU},
        {NAP_DOWNSTREAM_PU_INDICATION, NAP_QUERY_DOWNSTREAM_PU},
        {NAP_DOWNSTREAM_LU_INDICATION, NAP_QUERY_DOWNSTREAM_LU},
        {NAP_LU_0_TO_3_INDICATION, NAP_QUERY_LU_0_TO_3},
        {NAP_LOCAL_LU_INDICATION, NAP_QUERY_LOCAL_LU},
        {NAP_PLU_INDICATION, NAP_QUERY_PARTNER_LU},
        {NAP_MODE_INDICATION, NAP_QUERY_MODE},
        {NAP_DIRECTORY_INDICATION, NAP_QUERY_DIRECTORY_ENTRY},
    };
    for (const auto& pair : pairs) {
        const std::size_t listed = script.first(pair.query);
        ASSERT_LT(listed, script.journal.size()) << std::hex << pair.query;
        EXPECT_LT(script.first(NAP_REGISTER_INDICATION_SINK, pair.indication), listed)
            << std::hex << pair.query;
    }
}

TEST_F(WholeNode, ContinuesAListBehindItsLastEntry) {
    build();
    const std::size_t first = script.first(NAP_QUERY_PORT);
    EXPECT_EQ(script.journal[first].list_options, NAP_FIRST_IN_LIST | NAP_LEVEL_DETAIL);
    EXPECT_EQ(script.sent(NAP_QUERY_PORT), 2u);
    EXPECT_EQ(script.sent(NAP_QUERY_DLC), 1u) << "one page held all of them";
    std::vector<Sent> lus;
    std::copy_if(script.journal.begin(), script.journal.end(), std::back_inserter(lus),
                 [](const Sent& verb) { return verb.opcode == NAP_QUERY_LU_0_TO_3; });
    ASSERT_EQ(lus.size(), 4u);
    NB_NAME8E names[2];
    put(names[0], "LU3");
    put(names[1], "HOST");
    EXPECT_EQ(lus[2].list_options, NAP_LIST_FROM_NEXT | NAP_LEVEL_DETAIL);
    EXPECT_EQ(lus[2].key.substr(0, 16), std::string(reinterpret_cast<char*>(names), 16));
}

TEST_F(Build, ListsWithinListsContinueBehindTheirLastItem) {
    struct {
        SECURITY_ACCESS_LIST_ENTRY list;
        ACCESS_LIST_USER users[2];
    } list{};
    list.list.length = sizeof list;
    put(list.list.list_name, "TRUSTED");
    for (ACCESS_LIST_USER& user : list.users) {
        user.length = sizeof user;
    }
    put(list.users[1].user_id, "ZOE");
    script.has(NAP_QUERY_SECURITY_ACCESS_LIST, list);
    int pages = 0;
    script.finish[NAP_QUERY_SECURITY_ACCESS_LIST] = [&](void* vcb) {
        static_cast<LIST_QUERY*>(vcb)->more = ++pages == 1;
    };
    build();
    expect_built();
    EXPECT_EQ(pages, 2);
    EXPECT_EQ(script.journal.back().opcode == 0, false);
    const auto again = std::find_if(script.journal.rbegin(), script.journal.rend(), [](auto& verb) {
        return verb.opcode == NAP_QUERY_SECURITY_ACCESS_LIST;
    });
    EXPECT_EQ(again->key.substr(0, 17), "TRUSTED       ZOE");
}

TEST_F(Build, ANodeWithoutCapabilitiesAsksForNothingInVain) {
    build();
    expect_built();
    for (const NB_USHORT opcode :
         {NAP_QUERY_DSPU_TEMPLATE, NAP_QUERY_DOWNSTREAM_PU, NAP_QUERY_DOWNSTREAM_LU,
          NAP_QUERY_DLUR_PU, NAP_QUERY_LU_0_TO_3, NAP_QUERY_EXTRA_DATA, NAP_QUERY_TN3270_ACCESS_DEF,
          NAP_QUERY_TN3270_EXPRESS_LOGON, NAP_QUERY_BCK_CS_TRACE, NAP_QUERY_CS_TRACE,
          NAP_QUERY_PRIMARY_LINE, NAP_QUERY_IPBRIDGE_APPCIP, NAP_QUERY_SNA_NET}) {
        EXPECT_EQ(script.sent(opcode), 0u) << std::hex << opcode;
    }
    EXPECT_EQ(script.sent(NAP_QUERY_CN), 1u);
    EXPECT_EQ(node->server_role, VGA_ROLE_LOCAL_SERVER);
}

TEST_F(WholeNode, StoppedGetsTheArchitecturesModesAndListsPasswordsOnly) {
    script.node.active = 0;
    build();
    expect_built();
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_STOPPED);
    EXPECT_EQ(count(node->mode_def_tree), 13u);
    EXPECT_EQ(count(node->cos_tree), 7u);
    EXPECT_NE(node->cp_lu, nullptr);
    EXPECT_EQ(script.sent(NAP_QUERY_PARTNER_LU) + script.sent(NAP_QUERY_MODE), 0u);
    EXPECT_EQ(script.sent(NAP_QUERY_LU_LU_PASSWORD), 3u);
    EXPECT_EQ(script.sent(NAP_QUERY_TN_SERVER_TRACE), 0u);
}

TEST_F(Build, WithoutConfigurationRegistrationsAreEnough) {
    script.codes[NAP_QUERY_NODE] = {NAP_STATE_CHECK, NAP_NODE_NOT_CONFIGURED};
    script.codes[NAP_QUERY_TN3270_EXPRESS_LOGON] = {NAP_FUNCTION_NOT_SUPPORTED, 1};
    build();
    expect_built();
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_UNCONFIGURED);
    EXPECT_STREQ(node->vcb.parameters.description, "not configured");
    EXPECT_EQ(node->tn_ssl_ldap.ldap_port, 389);
    EXPECT_EQ(node->express_logon.dcas_port, 8990);
    EXPECT_EQ(script.sent(NAP_QUERY_DLC), 0u);
    EXPECT_LT(script.first(NAP_REGISTER_INDICATION_SINK, NAP_LOCAL_LU_INDICATION),
              script.journal.size());
}

TEST_F(Build, ANodeThatCannotBeConnectedHoldsNothingUp) {
    script.codes[NAP_CONNECT_NODE] = {NAP_STATE_CHECK, 1};
    build();
    expect_built();
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_BACK_LEVEL);
    EXPECT_EQ(script.sent(NAP_QUERY_NODE), 0u);
}

TEST_F(Build, ExpressLogonThatWasNeverConfiguredIsOff) {
    all_capabilities();
    for (const Codes codes : {Codes{NAP_STATE_CHECK, NAP_NODE_NOT_CONFIGURED},
                              Codes{NAP_STATE_CHECK, NAP_EXPRESS_LOGON_NOT_CONFIGURED},
                              Codes{NAP_FUNCTION_NOT_SUPPORTED, 77}}) {
        QUERY_TN3270_EXPRESS_LOGON reply{};
        reply.header.opcode = NAP_QUERY_TN3270_EXPRESS_LOGON;
        script.codes[reply.header.opcode] = codes;
        build();
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(node->express_logon.enabled, 0);
        EXPECT_EQ(node->express_logon.dcas_port, 8990);
        expect_built();
        vga_do_free_node_res(node, true, nullptr);
        gvga_system->build_flags = vga_flag(VGA_SYSTEM_FLAG_COUNT) - 1;
        gvga_system->built = 0;
        system_built = 0;
    }
}

TEST_F(Build, ReadOnlyOperationGoesOn) {
    script.codes[NAP_SET_PROCESSING_MODE] = {NAP_STATE_CHECK, NAP_READ_ONLY_OPERATOR};
    build();
    expect_built();
    EXPECT_EQ(gvga_read_only, 1);
}

TEST_F(Build, WithoutConfigurationFileOnlyTheNodesAreListed) {
    script.codes[NAP_OPEN_FILE] = {NAP_STATE_CHECK, NAP_NO_CONFIGURATION_FILE};
    script.finish[NAP_OPEN_FILE] = [](void* vcb) {
        auto* block = static_cast<OPEN_FILE*>(vcb);
        if (block->file_info.requested_role == NAP_TP_LOAD_INFO) {
            block->header.primary_rc = NAP_OK;
        }
    };
    build();
    expect_built();
    EXPECT_EQ(gvga_system->config_file_handle, 0u);
    EXPECT_EQ(script.sent(NAP_QUERY_EMULATOR_USER_DEF), 0u);
    EXPECT_EQ(nodes_built, 1);
}

TEST_F(Build, ADomainWithoutNodesIsBuiltToo) {
    script.codes[NAP_QUERY_NODE_ALL] = {};
    script.finish[NAP_QUERY_NODE_ALL] = [](void* vcb) {
        auto* list = static_cast<LIST_QUERY*>(vcb);
        list->num_entries = list->total_entries = 0;
    };
    build();
    expect_built();
    EXPECT_EQ(node, nullptr);
}

struct Domain : Build {
    Domain() {
        script.client_server = true;
        script.page_entries = 1;
        script.has(NAP_QUERY_NODE_ALL, node_all("beta"));
        script.has(NAP_QUERY_NODE_ALL, node_all("gamma"));
        script.has(NAP_QUERY_SNA_NET, node_all("alpha"));
        script.has(NAP_QUERY_SNA_NET, node_all("beta"));
        script.finish[NAP_OPEN_FILE] = [](void* vcb) {
            auto& info = static_cast<OPEN_FILE*>(vcb)->file_info;
            info.local_server = info.requested_role == NOF_FILE_CONFIGURATION;
            std::strcpy(info.server_name, "beta");
        };
        script.finish[NAP_QUERY_CENTRAL_LOGGER] = [](void* vcb) {
            std::strcpy(static_cast<QUERY_CENTRAL_LOGGER*>(vcb)->node_name, "alpha");
        };
    }
    vga_node* named(const char* name) {
        NB_NODE_NAME key{};
        std::strcpy(key, name);
        return vga_find_node(key);
    }
};

TEST_F(Domain, NodesGetTheirRolesAndTheLoggerItsSettings) {
    script.finish[NAP_QUERY_GLOBAL_LOG_TYPE] = [](void* vcb) {
        auto* reply = static_cast<QUERY_GLOBAL_LOG_TYPE*>(vcb);
        reply->audit = 1;
        reply->succinct_exception = 1;
    };
    build();
    expect_built();
    EXPECT_EQ(nodes_built, 3);
    EXPECT_EQ(named("alpha")->server_role, VGA_ROLE_SERVER);
    EXPECT_EQ(named("beta")->server_role, VGA_ROLE_LOCAL_SERVER);
    EXPECT_EQ(named("gamma")->server_role, VGA_ROLE_NONE);
    EXPECT_EQ(gvga_system->central_logger_handle, named("alpha")->node_handle);
    EXPECT_EQ(gvga_system->log_audit, 1);
    EXPECT_EQ(gvga_system->log_audit_verbose, 1);
    EXPECT_EQ(gvga_system->log_exception_verbose, 0);
    EXPECT_EQ(script.sent(NAP_QUERY_CS_TRACE), 3u);
}

TEST_F(Domain, AMissingLoggerDoesNotHoldTheBuildUp) {
    script.finish[NAP_QUERY_CENTRAL_LOGGER] = [](void* vcb) {
        std::strcpy(static_cast<QUERY_CENTRAL_LOGGER*>(vcb)->node_name, "elsewhere");
    };
    build();
    expect_built();
    EXPECT_EQ(script.sent(NAP_QUERY_CENTRAL_LOGGING), 0u);
}

TEST_F(Domain, AMovedLoggerIsFoundAgain) {
    int asked = 0;
    script.finish[NAP_QUERY_CENTRAL_LOGGING] = [&](void* vcb) {
        if (++asked == 1) {
            vcb_header(vcb)->primary_rc = NAP_STATE_CHECK;
            vcb_header(vcb)->secondary_rc = NAP_NOT_CENTRAL_LOGGER;
            script.finish[NAP_QUERY_CENTRAL_LOGGER] = [](void* reply) {
                std::strcpy(static_cast<QUERY_CENTRAL_LOGGER*>(reply)->node_name, "beta");
            };
        }
    };
    build();
    expect_built();
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(gvga_system->central_logger_handle, named("beta")->node_handle);
}

TEST_F(Domain, ANodeThatGoesAwayTakesOnlyItselfAlong) {
    const auto gone = [&](NB_USHORT opcode) {
        script.finish[opcode] = [&, opcode](void* vcb) {
            vcb_header(vcb)->primary_rc = NAP_UNSUCCESSFUL;
            vcb_header(vcb)->secondary_rc = NAP_TARGET_GONE;
            script.finish.erase(opcode);
        };
    };
    gone(NAP_QUERY_LOCAL_LU);
    build();
    expect_built();
    EXPECT_EQ(count(gvga_system->node_tree), 2u);
    EXPECT_EQ(nodes_built, 2);
    EXPECT_EQ(script.sent(NAP_DISCONNECT_NODE), 0u);
}

TEST_F(Domain, LosingTheFilesLeavesTheNodes) {
    build();
    const std::size_t before = script.journal.size();
    VCB_HEADER reply{};
    reply.opcode = NAP_QUERY_EMULATOR_USER_DEF;
    reply.primary_rc = NAP_UNSUCCESSFUL;
    reply.secondary_rc = NAP_TARGET_GONE;
    VGA_COMPLETION work{CONFIG_HANDLE, &reply, gvga_system->handle};
    vga_build_system(&work);
    script.run();
    EXPECT_EQ(gvga_system->config_file_handle, 0u);
    ASSERT_EQ(script.journal.size(), before + 1);
    EXPECT_EQ(script.journal.back().indication, NAP_SERVER_INDICATION);
    work.handle = SNA_NET_HANDLE;
    vga_build_system(&work);
    EXPECT_EQ(count(gvga_system->sna_net_tree), 0u);
    EXPECT_EQ(count(gvga_system->node_tree), 3u);

    vga_rebuild_system(); // they come back
    vga_rebuild_sna_net();
    EXPECT_FALSE(vga_check_system_startup());
    script.run();
    EXPECT_TRUE(vga_check_system_startup());
    EXPECT_EQ(script.sent(NAP_QUERY_NODE_ALL), 3u) << "the nodes are not listed again";
    EXPECT_EQ(count(gvga_system->sna_net_tree), 2u);
}

TEST_F(Build, TheLossOfTheOnlyNodeEndsTheProgram) {
    script.codes[NAP_QUERY_DLC] = {NAP_UNSUCCESSFUL, NAP_TARGET_GONE};
    build();
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_ORDERLY);
    EXPECT_EQ(system_built, 0);
}

TEST_F(WholeNode, EveryFailedVerbEndsTheProgramWithItsSubcode) {
    const struct {
        NB_USHORT opcode;
        int subcode;
    } verbs[] = {
        {NAP_OPEN_FILE, 0},
        {NAP_SET_PROCESSING_MODE, 1},
        {NAP_REGISTER_INDICATION_SINK, 2},
        {NAP_QUERY_NODE_ALL, 3},
        {NAP_QUERY_CENTRAL_LOGGER, 5},
        {NAP_QUERY_EMULATOR_USER_DEF, 8},
        {NAP_QUERY_CPIC_SIDE_INFO, 9},
        {NAP_QUERY_RJE_WKSTN_DEF, 10},
        {NAP_QUERY_NODE, 11},
        {NAP_QUERY_DLC, 12},
        {NAP_QUERY_PORT, 13},
        {NAP_QUERY_LS, 14},
        {NAP_QUERY_DLUR_PU, 15},
        {NAP_QUERY_PU, 16},
        {NAP_QUERY_DOWNSTREAM_PU, 17},
        {NAP_QUERY_DIRECTORY_ENTRY, 18},
        {NAP_QUERY_MODE_DEFINITION, 19},
        {NAP_QUERY_PARTNER_LU_DEFINITION, 20},
        {NAP_QUERY_COS, 21},
        {NAP_QUERY_TP_DEFINITION, 22},
        {NAP_QUERY_TN3270_ACCESS_DEF, 23},
        {NAP_QUERY_CN, 24},
        {NAP_QUERY_LOCAL_LU, 25},
        {NAP_QUERY_COS_NODE_ROW, 26},
        {NAP_QUERY_COS_TG_ROW, 27},
        {NAP_QUERY_LU_0_TO_3, 28},
        {NAP_QUERY_DOWNSTREAM_LU, 29},
        {NAP_QUERY_PARTNER_LU, 30},
        {NAP_QUERY_MODE, 31},
        {NAP_QUERY_DLC_TRACE, 34},
        {NAP_QUERY_DEFAULTS, 36},
        {NAP_QUERY_USERID_PASSWORD, 37},
        {NAP_QUERY_LU_LU_PASSWORD, 38},
        {NAP_QUERY_NODE_LIMITS, 39},
        {NAP_QUERY_LU_POOL, 41},
        {NAP_QUERY_BCK_CS_TRACE, 42},
        {NAP_QUERY_LU62_TIMEOUT, 43},
        {NAP_QUERY_EXTRA_DATA, 44},
        {NAP_QUERY_TN3270_ASSOCIATION, 45},
        {NAP_QUERY_TN3270_DEFAULTS, 46},
        {NAP_QUERY_LS_ROUTING, 48},
        {NAP_QUERY_TN_SERVER_TRACE, 49},
        {NAP_QUERY_TRACE_TYPE, 50},
        {NAP_QUERY_SECURITY_ACCESS_LIST, 56},
        {NAP_QUERY_TP_LOAD_INFO, 57},
        {NAP_QUERY_TN3270_SSL_LDAP, 58},
        {NAP_QUERY_TN3270_EXPRESS_LOGON, 59},
        {NAP_QUERY_DSPU_TEMPLATE, 65},
        {NAP_QUERY_TN_REDIRECT_DEF, 66},
    };
    for (const auto& verb : verbs) {
        gvga_exit_code = 0;
        script.codes = {{verb.opcode, {NAP_PARAMETER_CHECK, 0x99}}};
        testing::internal::CaptureStderr();
        build();
        const std::string log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(gvga_exit_code, VGA_EXIT_QUERY) << std::hex << verb.opcode;
        EXPECT_EQ(gvga_exit_subcode, verb.opcode) << std::hex << verb.opcode;
        EXPECT_NE(log.find("40020002 " + std::to_string(verb.subcode) + ' '), std::string::npos)
            << log;
        vga_free_verb_queues(); // what is still on its way
        script.forget();
        if (node != nullptr) {
            vga_do_free_node_res(node, true, nullptr);
        }
        gvga_system->config_file_handle = 0;
        gvga_system->build_flags = vga_flag(VGA_SYSTEM_FLAG_COUNT) - 1;
    }
}

TEST_F(WholeNode, AMalformedPageIsAFailedQuery) {
    using Damage = std::function<void(LIST_QUERY*, NB_USHORT*)>;
    const Damage damages[] = {
        [](LIST_QUERY*, NB_USHORT* length) { *length = 0; },
        [](LIST_QUERY*, NB_USHORT* length) { *length = 1; },
        [](LIST_QUERY*, NB_USHORT* length) { *length = 0xFFFF; },
        [](LIST_QUERY* list, NB_USHORT*) { list->num_entries = 0xFFFF; },
        [](LIST_QUERY* list, NB_USHORT*) { list->num_entries = 0; },
    };
    for (const Damage& damage : damages) {
        gvga_exit_code = 0;
        script.finish[NAP_QUERY_PORT] = [&](void* vcb) {
            auto* list = static_cast<LIST_QUERY*>(vcb);
            damage(list, static_cast<NB_USHORT*>(list->buffer));
        };
        testing::internal::CaptureStderr();
        build();
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(gvga_exit_code, VGA_EXIT_QUERY);
        EXPECT_EQ(gvga_exit_subcode, NAP_QUERY_PORT);
        vga_free_verb_queues();
        script.forget();
        vga_do_free_node_res(node, true, nullptr);
        gvga_system->config_file_handle = 0;
        gvga_system->build_flags = vga_flag(VGA_SYSTEM_FLAG_COUNT) - 1;
    }
}

TEST_F(WholeNode, MissingParentsAreLoggedAndSkipped) {
    script.has(NAP_QUERY_PORT, port("LOST", "NODLC"));
    script.has(NAP_QUERY_LS, ls("LOSTLS", "LOST"));
    testing::internal::CaptureStderr();
    build();
    const std::string log = testing::internal::GetCapturedStderr();
    expect_built();
    EXPECT_NE(log.find("40020004 18 "), std::string::npos) << log;
    EXPECT_NE(log.find("40020004 19 "), std::string::npos) << log;
}

TEST_F(WholeNode, ARecordRemovedWhileItIsListedLetsTheBuildGoOn) {
    script.finish[NAP_QUERY_LU_0_TO_3] = [&](void*) {
        node = ntl_avl_first<vga_node>(gvga_system->node_tree);
        if (auto* first = ntl_avl_first<vga_pu>(node->local_pu_tree); first->listing) {
            vga_delete_vga_local_pu(first, true);
        }
    };
    script.finish[NAP_QUERY_PARTNER_LU] = [&](void*) {
        vga_delete_vga_lu62(ntl_avl_first<vga_lu62>(node->lu62_tree), true);
    };
    build();
    expect_built();
}

// Every allocation of the build fails once: exit code 1, and nothing is left behind.
TEST_F(WholeNode, SurvivesTheWantOfMemoryAtEveryPoint) {
    unsigned long failures = 0;
    for (unsigned long nth = 1;; ++nth) {
        gvga_exit_code = 0;
        const std::size_t handles = nba_handle_count();
        const std::size_t allocations = vga_allocations_in_use();
        vga_fail_allocation(nth);
        build();
        vga_fail_allocation(0);
        vga_free_verb_queues();
        script.forget();
        const NB_LONG code = gvga_exit_code;
        if (node != nullptr) {
            vga_do_free_node_res(node, true, nullptr);
        }
        gvga_system->config_file_handle = 0;
        gvga_system->build_flags = vga_flag(VGA_SYSTEM_FLAG_COUNT) - 1;
        gvga_system->built = 0;
        EXPECT_EQ(vga_allocations_in_use(), allocations) << nth;
        EXPECT_EQ(nba_handle_count(), handles) << nth;
        if (code == 0) {
            break;
        }
        ASSERT_EQ(code, VGA_EXIT_INTERNAL) << nth;
        ++failures;
    }
    EXPECT_GT(failures, 200u);
}

} // namespace
} // namespace store_test
