// Configuration of ranges of LUs, remote systems, traces and the node itself, as it arrives from
// other operators.
#include "config_fixture.h"

#include "kit/store_dump.h"
#include "nof/routing.h"
#include "nof/trace.h"

#include <utility>

namespace store_test {
namespace {

Verb<DEFINE_DIRECTORY_ENTRY> define_dir(const std::string& name, NB_USHORT type,
                                        const std::string& parent = "") {
    Verb verb(NAP_DEFINE_DIRECTORY_ENTRY, &DEFINE_DIRECTORY_ENTRY::resource_name, name);
    verb->resource_type = type;
    put(verb->parent_name, parent);
    verb->parent_type = NAP_END_NODE_CP_RESOURCE;
    return verb;
}
Verb<DELETE_DIRECTORY_ENTRY> delete_dir(const std::string& name, NB_USHORT type) {
    Verb verb(NAP_DELETE_DIRECTORY_ENTRY, &DELETE_DIRECTORY_ENTRY::resource_name, name);
    verb->resource_type = type;
    return verb;
}

using Config = Configured;

// ---- LUs ----

TEST_F(Config, RangesNameTheirLusAsTheNodeDoes) {
    add_port("ETH");
    add_ls(ls("LS1", "ETH", "PU1"));
    const vga_pu* pu = add_ls(ls("LS2", "ETH", "PU2"))->pu_entry;
    struct Range {
        const char* base;
        NB_BYTE first, last, flags, number;
        Rows names;
    };
    const Range ranges[] = {
        {"LU", 2, 4, 0, 0, {"LU002", "LU003", "LU004"}},
        {"PRT", 2, 4, 0x02, 0, {"PRT02", "PRT03", "PRT04"}},
        {"ABCDEF", 9, 10, 0x02, 0, {"ABCDEF09", "ABCDEF0A"}},
        {"ABCDEF", 9, 9, 0, 0, {"ABCDE009"}},
        {"ABCDEF", 9, 9, 0x04, 0, {"ABCDEF00"}}, // a name has 8 characters
        {"N", 2, 3, 0x01, 255, {"N000", "N255"}},
        {"TOP", 254, 255, 0, 0, {"TOP254", "TOP255"}},
        {"NONE", 0, 4, 0, 0, {}},
        {"NONE", 5, 4, 0, 0, {}},
    };
    for (const Range& range : ranges) {
        SCOPED_TRACE(range.base);
        Verb define(NAP_DEFINE_LU_0_TO_3_RANGE, &DEFINE_LU_0_TO_3_RANGE::base_name, range.base);
        define->first_nau = range.first;
        define->last_nau = range.last;
        define->naming_flags = range.flags;
        define->first_number = range.number;
        define->lu_model = NOF_LU_PRINTER;
        put(define->pu_name, "PU2");
        indicate(define);
        Rows names;
        for (const auto* lu : all<vga_lu03>(pu->lu_tree)) {
            names.push_back(get(lu->vcb.lu_name));
            EXPECT_EQ(lu->vcb.def_data.lu_model, NOF_LU_PRINTER);
        }
        EXPECT_EQ(names, range.names);
        if (range.first == 0) {
            continue; // whose delete means nothing either
        }
        Verb remove(NAP_DELETE_LU_0_TO_3_RANGE, &DELETE_LU_0_TO_3_RANGE::base_name, range.base);
        remove->first_nau = range.first;
        remove->last_nau = range.last;
        remove->naming_flags = range.flags;
        remove->first_number = range.number;
        EXPECT_EQ(log_of(remove), "");
        EXPECT_EQ(count(pu->lu_tree), 0u);
        if (range.first == range.last) {
            expect_logged(remove, 47, VGA_CHECK_LU03, VGA_NODE_LU03S);
        }
    }
}

TEST_F(Config, DownstreamLusTakeANewDefinitionAndKeepTheirState) {
    add_port("ETH");
    add_ls(ls("LS1", "ETH", "", "DSPU"));
    Verb range(NAP_DEFINE_DOWNSTREAM_LU_RANGE, &DEFINE_DOWNSTREAM_LU_RANGE::base_name, "DS");
    range->first_nau = 2;
    range->last_nau = 3;
    put(range->dspu_name, "DSPU");
    indicate(range);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH", " LS1+", "  DS002", "  DS003"}));
    auto* lu = ntl_avl_first<vga_down_lu>(ntl_avl_first<vga_pu>(node->down_pu_tree)->lu_tree);
    lu->vcb.lu_active = 1;

    Verb again(NAP_DEFINE_DOWNSTREAM_LU, &DEFINE_DOWNSTREAM_LU::dslu_name, "DS002");
    put(again->def.dspu_name, "DSPU");
    again->def.nau_address = 9;
    again->def.delayed_logon = 1;
    indicate(again);
    EXPECT_EQ(lu->vcb.lu_active, 1);
    EXPECT_EQ(lu->vcb.def.delayed_logon, 1);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH", " LS1+", "  DS003", "  DS002"}));
    again->def.nau_address = 3; // taken
    EXPECT_NE(log_of(again).find(" 5 "), std::string::npos);
    EXPECT_EQ(lu->vcb.def.nau_address, 9);

    Verb remove(NAP_DELETE_DOWNSTREAM_LU_RANGE, &DELETE_DOWNSTREAM_LU_RANGE::base_name, "DS");
    remove->first_nau = 2;
    remove->last_nau = 3;
    EXPECT_EQ(log_of(remove), "");
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH", " LS1+"}));
    expect_logged(remove, 41, VGA_CHECK_DOWN_LU, VGA_NODE_DOWN_LUS);
}

// ---- names that the store does not know ----

// Blocks that name nothing.
TEST_F(Config, AnUnknownNameIsLoggedUnlessItsKindIsBeingListed) {
    expect_logged(Verb<DEFINE_PORT>(NAP_DEFINE_PORT), 52, VGA_CHECK_DLC, VGA_NODE_DLCS);
    expect_logged(Verb<DEFINE_LS>(NAP_DEFINE_LS), 43, VGA_CHECK_COUNT, VGA_NODE_PORTS);
    expect_logged(Verb<DEFINE_LU_0_TO_3>(NAP_DEFINE_LU_0_TO_3), 44, VGA_CHECK_PU,
                  VGA_NODE_LOCAL_PUS);
    expect_logged(Verb<DEFINE_DOWNSTREAM_LU>(NAP_DEFINE_DOWNSTREAM_LU), 38, VGA_CHECK_DOWN_PU,
                  VGA_NODE_DOWN_PUS);
    expect_logged(Verb<DEFINE_LU_0_TO_3_RANGE>(NAP_DEFINE_LU_0_TO_3_RANGE), 46, VGA_CHECK_PU,
                  VGA_NODE_LOCAL_PUS);
    expect_logged(Verb<DEFINE_DOWNSTREAM_LU_RANGE>(NAP_DEFINE_DOWNSTREAM_LU_RANGE), 40,
                  VGA_CHECK_DOWN_PU, VGA_NODE_DOWN_PUS);
    expect_logged(Verb<DEFINE_LS_ROUTING>(NAP_DEFINE_LS_ROUTING), 68, VGA_CHECK_LOCAL_LU,
                  VGA_NODE_LU62S);
    expect_logged(Verb<DELETE_LS_ROUTING>(NAP_DELETE_LS_ROUTING), 69, VGA_CHECK_LOCAL_LU,
                  VGA_NODE_LU62S);
    expect_logged(Verb<DELETE_COS>(NAP_DELETE_COS), 35, VGA_CHECK_COUNT, VGA_NODE_COSS);
    expect_logged(Verb<DELETE_ADJACENT_NODE>(NAP_DELETE_ADJACENT_NODE), 62, VGA_CHECK_DIR,
                  VGA_NODE_DIRECTORY);
    expect_logged(Verb<DELETE_ADJACENT_NODE>(NAP_DELETE_ADJACENT_LEN_NODE), 56, VGA_CHECK_DIR,
                  VGA_NODE_DIRECTORY);

    // An own deletion that comes late is no news.
    Verb<DELETE_BY_NAME8> own(NAP_DELETE_INTERNAL_PU);
    own->header.primary_rc = NAP_OK;
    EXPECT_EQ(log_of(own), "");
}

TEST_F(Config, BlocksThatDoNotBelongHereBreakInvariants) {
    Verb<DEFINE_LS> other(NAP_DEFINE_PORT);
    VGA_COMPLETION completion = other.completion();
    log_of([&] { vga_process_def_ls(&completion, node); });
    EXPECT_STREQ(nba_last_assert(), "vcb->opcode == NAP_DEFINE_LS");
    log_of(Verb<HEADER_ONLY>(NAP_DEFINE_CPIC_SIDE_INFO));
    EXPECT_STREQ(nba_last_assert(), "FALSE");
    EXPECT_EQ(nba_assert_count(), asserts + 2);
    asserts = nba_assert_count();

    indicate(Verb(NAP_DEFINE_DLC, &DEFINE_DLC::dlc_name, "STALE"), 0xFFFFFFFF); // its node has gone
    EXPECT_EQ(count(node->dlc_tree), 0u);
}

// ---- remote systems ----

TEST_F(Config, DirectoryEntriesMakeAndUnmakeRemoteSystems) {
    indicate(define_dir("NET.REMOTE", NAP_END_NODE_CP_RESOURCE));
    indicate(define_dir("NET.LU1", NAP_LU_RESOURCE, "NET.REMOTE"));
    indicate(define_dir("NET.W", NAP_WILDCARD_LU_RESOURCE, "NET.REMOTE"));
    indicate(define_dir("NET.OWN", NAP_LU_RESOURCE, "NET.CP"));       // of this node
    indicate(define_dir("NET.LOST", NAP_LU_RESOURCE, "NET.UNKNOWN")); // of nobody
    indicate(define_dir("NET.CP", NAP_END_NODE_CP_RESOURCE));
    indicate(define_dir("NET.SERVER", NAP_NETWORK_NODE_CP_RESOURCE));
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.REMOTE", " NET.LU1", " NET.W"}));

    Verb partner(NAP_DEFINE_PARTNER_LU, &DEFINE_PARTNER_LU::plu_name, "NET.LU1");
    put(partner->def.plu_alias, "ALIAS");
    indicate(partner);
    const auto* rem_sys = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree);
    const auto* plu = ntl_avl_first<vga_rem_plu>(rem_sys->remote_plu_tree);
    EXPECT_TRUE(plu->located != 0 && plu->plu_defn != 0);
    EXPECT_EQ(get(plu->defn.def.plu_alias), "ALIAS");

    auto redefined = define_dir("NET.REMOTE", NAP_END_NODE_CP_RESOURCE);
    std::strcpy(redefined->description, "moved");
    indicate(redefined);
    EXPECT_STREQ(rem_sys->vcb.description, "moved");

    indicate(delete_dir("NET.W", NAP_WILDCARD_LU_RESOURCE));
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.REMOTE", " NET.LU1"}));
    indicate(delete_dir("NET.REMOTE", NAP_END_NODE_CP_RESOURCE));
    EXPECT_EQ(count(node->rem_sys_tree), 0u);
    ASSERT_NE(node->network_fake_rem_sys, nullptr); // the definition has nowhere else to be
    indicate(Verb(NAP_DELETE_PARTNER_LU, &DELETE_PARTNER_LU::plu_name, "NET.LU1"));
    EXPECT_EQ(rows(node->rem_sys_root), Rows{});
}

TEST_F(Config, AdjacentNodesBringTheirLus) {
    const auto lu = [](const std::string& name, NB_BYTE wildcard = 0) {
        ADJACENT_LU member{};
        member.wildcard = wildcard;
        put(member.lu_name, name);
        return member;
    };
    Verb define(NAP_DEFINE_ADJACENT_LEN_NODE, &DEFINE_ADJACENT_NODE::cp_name, "NET.LEN");
    std::strcpy(define->description, "warehouse");
    define->num_lus = 3;
    define.add(lu("LU1"));
    define.add(lu("OTHER.LU2"));
    define.add(lu("STOCK", 1));
    indicate(define);
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.LEN", " NET.LU1", " NET.STOCK", " OTHER.LU2"}));
    const auto* rem_sys = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree);
    EXPECT_STREQ(rem_sys->vcb.description, "warehouse");

    Verb remove(NAP_DELETE_ADJACENT_LEN_NODE, &DELETE_ADJACENT_NODE::cp_name, "NET.LEN");
    remove->num_lus = 2;
    remove.add(lu("STOCK", 1));
    remove.add(lu("MISSING"));
    EXPECT_TRUE(logged(log_of(remove), 57));
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.LEN", " NET.LU1", " OTHER.LU2"}));
    remove->num_lus = 0;
    indicate(remove);
    EXPECT_EQ(rows(node->rem_sys_root), Rows{});
}

// ---- the node, traces and logs ----

TEST_F(Config, ANodeDefinitionMakesWhatEveryNodeHas) {
    ASSERT_TRUE(vga_create_fake_cp_lu(node));
    const NB_HANDLE cp_lu = node->cp_lu->handle;
    Verb<DEFINE_NODE> verb(NAP_DEFINE_NODE);
    verb->parameters = node->vcb.parameters;
    verb->parameters.dlur_support = 3;
    VGA_COMPLETION completion{0, verb.bytes.data(), node->handle};
    vga_process_system_config_ind(&completion);
    EXPECT_EQ(node->vcb.parameters.dlur_support, 3);
    EXPECT_EQ(node->node_state, VGA_NODE_STATE_STOPPED);
    EXPECT_EQ(node->cp_lu->handle, cp_lu); // its name and alias are what they were
    EXPECT_EQ(count(node->mode_def_tree), 13u);
    EXPECT_EQ(count(node->cos_tree), 7u);

    put(verb->parameters.cp_name, "NET.NEWCP");
    std::memset(verb->node_name, ' ', sizeof verb->node_name);
    std::memcpy(verb->node_name, node->node_name, std::strlen(node->node_name));
    completion.corr = gvga_system->handle; // which is no node
    vga_process_system_config_ind(&completion);
    EXPECT_EQ(nba_validate_handle(cp_lu), nullptr);
    ASSERT_NE(node->cp_lu, nullptr);
    EXPECT_EQ(get(node->cp_lu->vcb.lu_name), "NEWCP");

    std::memcpy(verb->node_name, "elsewhere", 9);
    EXPECT_TRUE(logged(log_of([&] { vga_process_system_config_ind(&completion); }), 32));
}

TEST_F(Config, TraceTypesAreReplacedAddedOrTakenAway) {
    node->trace_flags = 0x0F;
    node->trace_kernel_flags = 0x30;
    struct Step {
        NB_BYTE replace, add;
        NB_ULONG flags, kernel_flags;
    };
    for (const Step& step : {Step{0, 1, 0xFF, 0x3C}, Step{0, 0, 0x0F, 0x30}, Step{1, 0, 0xF0, 0x0C},
                             Step{1, 1, 0xF0, 0x0C}}) {
        Verb<SET_TRACE_TYPE> verb(NAP_SET_TRACE_TYPE);
        verb->node_flags = 0xF0;
        verb->kernel_flags = 0x0C;
        verb->truncation_length = 200;
        verb->replace = step.replace;
        verb->add = step.add;
        indicate(verb);
        EXPECT_EQ(node->trace_flags, step.flags);
        EXPECT_EQ(node->trace_kernel_flags, step.kernel_flags);
        EXPECT_EQ(node->trace_truncation, 200u);
    }
}

TEST_F(Config, DlcTracesAreCountedByKindOfAdapter) {
    add_dlc(dlc("SDLC0", NAP_DLC_SDLC));
    add_dlc(dlc("BOTH", NAP_DLC_FDDI));
    add_port("ETH0"); // and its DLC, which is Ethernet
    add_ls(ls("LINK", "ETH0"));
    add_ls(ls("BOTH", "ETH0"));
    const auto trace = [this](NB_USHORT opcode, NB_BYTE type, const std::string& name) {
        Verb verb(opcode, &ADD_DLC_TRACE::name, name);
        verb->resource_type = type;
        indicate(verb);
    };
    const auto& counters = node->tracing;
    trace(NAP_ADD_DLC_TRACE, 1, "LINK");
    trace(NAP_ADD_DLC_TRACE, 3, "LINK"); // whatever the number, the one that has the name
    trace(NAP_ADD_DLC_TRACE, 2, "ETH0");
    trace(NAP_ADD_DLC_TRACE, 5, "ETH0");
    trace(NAP_ADD_DLC_TRACE, 1, "BOTH");
    EXPECT_EQ(counters.ethernet, 5);
    trace(NAP_ADD_DLC_TRACE, 3, "BOTH");
    EXPECT_EQ(counters.fddi, 1);
    trace(NAP_ADD_DLC_TRACE, 3, "SDLC0");
    trace(NAP_ADD_DLC_TRACE, 2, "SDLC0"); // no port
    trace(NAP_ADD_DLC_TRACE, 9, "SDLC0");
    EXPECT_EQ(counters.sdlc, 1);
    trace(NAP_REMOVE_DLC_TRACE, 3, "SDLC0");
    trace(NAP_REMOVE_DLC_TRACE, 3, "SDLC0");
    EXPECT_EQ(counters.sdlc, 0);
    for (const NB_BYTE all : {NOF_TRACE_ALL_DLCS, NOF_TRACE_REMOVE_ALL}) {
        trace(NAP_ADD_DLC_TRACE, NOF_TRACE_ALL_DLCS, "");
        trace(NAP_ADD_DLC_TRACE, 2, "ETH0");
        EXPECT_EQ(node->all_dlcs_traced, 1);
        trace(NAP_REMOVE_DLC_TRACE, all, "");
        EXPECT_EQ(node->all_dlcs_traced, 0);
        EXPECT_EQ(counters.ethernet, 0);
    }
}

TEST_F(Config, LogsAreSetByTheCentralLoggerAlone) {
    Verb<SET_CENTRAL_LOGGING> central(NAP_SET_CENTRAL_LOGGING);
    central->central = 1;
    Verb<SET_GLOBAL_LOG_TYPE> types(NAP_SET_GLOBAL_LOG_TYPE);
    types->audit = 1;
    types->succinct_exception = 0;
    types->succinct_audit = 1;
    gvga_system->log_exception = 1;
    const auto arrive = [](auto& verb, NB_HANDLE from) {
        VGA_COMPLETION completion{from, verb.bytes.data(), gvga_system->handle};
        vga_process_system_config_ind(&completion);
    };
    arrive(central, 0); // no logger is known
    gvga_system->central_logger_handle = 5;
    arrive(central, 6);
    arrive(types, 6);
    EXPECT_EQ(gvga_system->central_logging, 0);
    EXPECT_EQ(gvga_system->log_audit, 0);
    arrive(central, 5);
    arrive(types, 5);
    EXPECT_EQ(gvga_system->central_logging, 1);
    EXPECT_EQ(gvga_system->log_audit, 1);
    EXPECT_EQ(gvga_system->log_audit_verbose, 0);
    EXPECT_EQ(gvga_system->log_exception, 0);
    EXPECT_EQ(gvga_system->log_exception_verbose, 1);
}

// ---- memory ----

TEST_F(Config, WithoutMemoryForAMemberTheProgramEndsAndTheStoreStaysWhole) {
    vga_pu* pu = add_pu(store_test::pu("PU1", "", NAP_DLUR_ATTACHED));
    Verb range(NAP_DEFINE_LU_0_TO_3_RANGE, &DEFINE_LU_0_TO_3_RANGE::base_name, "LU");
    range->first_nau = 1;
    range->last_nau = 3;
    put(range->pu_name, "PU1");
    Verb adjacent(NAP_DEFINE_ADJACENT_NODE, &DEFINE_ADJACENT_NODE::cp_name, "NET.ADJ");
    adjacent->num_lus = 1;
    adjacent.add(ADJACENT_LU{});
    const auto clear = [&] {
        for (vga_lu03* lu : all<vga_lu03>(pu->lu_tree)) {
            vga_delete_vga_lu03(lu, true);
        }
        for (vga_rem_sys* rem_sys : all<vga_rem_sys>(node->rem_sys_tree)) {
            vga_delete_vga_rem_sys(rem_sys, true, true, true);
        }
    };
    indicate(range); // the pool of LUs that are in none stays for good
    clear();
    const std::size_t before = vga_allocations_in_use();
    unsigned long nth = 0;
    for (bool failed = true; failed; failed = std::exchange(gvga_exit_code, 0) != 0) {
        SCOPED_TRACE(++nth);
        vga_fail_allocation(nth);
        indicate(range);
        indicate(adjacent);
        vga_fail_allocation(0);
        EXPECT_EQ(kit::dump_store().faults, Rows{});
        clear();
        EXPECT_EQ(vga_allocations_in_use(), before);
    }
    EXPECT_GT(nth, 5u);
}

} // namespace
} // namespace store_test
