// The build of nodes and domains in every state: which verbs it sends, and when it is done.
#include "build_fixture.h"

#include "nof/trace.h"

namespace store_test {
namespace {

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

TEST_F(Build, ANodeWhoseFileIsUnavailableIsToldOf) {
    Messages messages;
    gvga_main_dialog = &messages.window;
    script.codes[NAP_QUERY_NODE_LIMITS] = {NAP_STATE_CHECK, NAP_FILE_UNAVAILABLE};
    build();
    gvga_main_dialog = nullptr;
    EXPECT_EQ(messages.shown(), 1);
    EXPECT_EQ(gvga_exit_code, VGA_EXIT_QUERY);
    EXPECT_EQ(gvga_exit_subcode, NAP_QUERY_NODE_LIMITS);
}

TEST_F(Build, ExpressLogonThatWasNeverConfiguredIsOff) {
    all_capabilities();
    for (const Codes codes : {Codes{NAP_STATE_CHECK, NAP_NODE_NOT_CONFIGURED},
                              Codes{NAP_STATE_CHECK, NAP_EXPRESS_LOGON_NOT_CONFIGURED},
                              Codes{NAP_FUNCTION_NOT_SUPPORTED, 77}}) {
        script.codes[NAP_QUERY_TN3270_EXPRESS_LOGON] = codes;
        build();
        expect_built();
        EXPECT_EQ(node->express_logon.enabled, 0);
        EXPECT_EQ(node->express_logon.dcas_port, 8990);
        start_over();
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
    vga_node* of(const char* name) {
        return named<vga_node, NB_NODE_NAME>(gvga_system->node_tree, name);
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
    EXPECT_EQ(of("alpha")->server_role, VGA_ROLE_SERVER);
    EXPECT_EQ(of("beta")->server_role, VGA_ROLE_LOCAL_SERVER);
    EXPECT_EQ(of("gamma")->server_role, VGA_ROLE_NONE);
    EXPECT_EQ(gvga_system->central_logger_handle, of("alpha")->node_handle);
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
    EXPECT_EQ(gvga_system->central_logger_handle, of("beta")->node_handle);
}

TEST_F(Domain, ANodeThatGoesAwayTakesOnlyItselfAlong) {
    script.finish[NAP_QUERY_LOCAL_LU] = [&](void* vcb) {
        vcb_header(vcb)->primary_rc = NAP_UNSUCCESSFUL;
        vcb_header(vcb)->secondary_rc = NAP_TARGET_GONE;
        script.finish.erase(NAP_QUERY_LOCAL_LU);
    };
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

} // namespace
} // namespace store_test
