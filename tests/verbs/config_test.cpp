// Configuration of connectivity, LUs, remote systems, traces and the node itself, as it arrives
// from other operators.
#include "store/fixture.h"

#include "nof/routing.h"
#include "nof/trace.h"
#include "verbs/config.h"

#include <algorithm>

namespace store_test {
namespace {

using Rows = std::vector<std::string>;

// A block with room for what follows its fixed part.
template <typename T> struct Verb {
    std::vector<NB_BYTE> bytes;

    explicit Verb(NB_USHORT opcode, NB_USHORT primary_rc = NAP_INDICATION) : bytes(sizeof(T)) {
        vcb_header(bytes.data())->opcode = opcode;
        vcb_header(bytes.data())->primary_rc = primary_rc;
    }
    T* operator->() { return reinterpret_cast<T*>(bytes.data()); }
    void append(const std::string& tail) { bytes.insert(bytes.end(), tail.begin(), tail.end()); }
};

Verb<DELETE_BY_NAME8> delete_local(NB_USHORT opcode, const std::string& name) {
    Verb<DELETE_BY_NAME8> verb(opcode);
    char local[8];
    put(local, name);
    std::memcpy(verb->name, local, sizeof local);
    return verb;
}
Verb<DELETE_BY_NAME8> delete_ebcdic(NB_USHORT opcode, const std::string& name) {
    Verb<DELETE_BY_NAME8> verb(opcode);
    put(verb->name, name);
    return verb;
}
Verb<DEFINE_DLC> define_dlc(const std::string& name) {
    Verb<DEFINE_DLC> verb(NAP_DEFINE_DLC);
    put(verb->dlc_name, name);
    verb->def.dlc_type = NAP_DLC_ETHERNET;
    return verb;
}
Verb<DEFINE_PORT> define_port(const std::string& name, const std::string& dlc) {
    Verb<DEFINE_PORT> verb(NAP_DEFINE_PORT);
    put(verb->port_name, name);
    put(verb->def.dlc_name, dlc);
    return verb;
}
Verb<DEFINE_LS> define_ls(const std::string& name, const std::string& port,
                          const std::string& pu = "", const std::string& dspu = "") {
    Verb<DEFINE_LS> verb(NAP_DEFINE_LS);
    put(verb->ls_name, name);
    verb->def = ls(name, port, pu, dspu).def;
    return verb;
}
Verb<DEFINE_LU_0_TO_3> define_lu03(const std::string& name, const std::string& pu, NB_BYTE nau) {
    Verb<DEFINE_LU_0_TO_3> verb(NAP_DEFINE_LU_0_TO_3);
    put(verb->lu_name, name);
    verb->def = lu03(name, pu, nau).def_data;
    return verb;
}
Verb<DEFINE_DOWNSTREAM_LU> define_down_lu(const std::string& name, const std::string& pu,
                                          NB_BYTE nau) {
    Verb<DEFINE_DOWNSTREAM_LU> verb(NAP_DEFINE_DOWNSTREAM_LU);
    put(verb->dslu_name, name);
    put(verb->def.dspu_name, pu);
    verb->def.nau_address = nau;
    return verb;
}
Verb<DEFINE_LOCAL_LU> define_lu62(const std::string& name, const std::string& alias,
                                  NB_BYTE nau = 0, const std::string& pu = "") {
    Verb<DEFINE_LOCAL_LU> verb(NAP_DEFINE_LOCAL_LU);
    put(verb->lu_name, name);
    verb->def = lu62(name, alias, nau, pu).def;
    return verb;
}
Verb<DEFINE_DIRECTORY_ENTRY> define_dir(const std::string& name, NB_USHORT type,
                                        const std::string& parent = "") {
    Verb<DEFINE_DIRECTORY_ENTRY> verb(NAP_DEFINE_DIRECTORY_ENTRY);
    put(verb->resource_name, name);
    verb->resource_type = type;
    put(verb->parent_name, parent);
    verb->parent_type = NAP_END_NODE_CP_RESOURCE;
    return verb;
}
Verb<DELETE_DIRECTORY_ENTRY> delete_dir(const std::string& name, NB_USHORT type) {
    Verb<DELETE_DIRECTORY_ENTRY> verb(NAP_DELETE_DIRECTORY_ENTRY);
    put(verb->resource_name, name);
    verb->resource_type = type;
    return verb;
}

class Configured : public Store {
protected:
    Configured() {
        node->build_flags = 0;
        gvga_system->build_flags = 0;
        node->node_state = VGA_NODE_STATE_ACTIVE;
        put(node->vcb.parameters.cp_name, "NET.CP");
        put(node->vcb.parameters.cp_alias, "CP");
    }

    template <typename V> void indicate(V verb, NB_HANDLE corr = 0) {
        VGA_COMPLETION completion{0, verb.bytes.data(), corr != 0 ? corr : node->handle};
        vga_process_node_config_ind(&completion);
    }
    template <typename V> std::string log_of(V verb) {
        testing::internal::CaptureStderr();
        indicate(std::move(verb));
        return testing::internal::GetCapturedStderr();
    }
    // Logged when nothing is listed; not while a check or the build lists that kind, and not when
    // exceptions are switched off.
    template <typename V>
    void expect_logged(const V& verb, int subcode, VGA_CHECK_KIND check, int flag) {
        SCOPED_TRACE(subcode);
        const std::string line = " exception 0x40020004 " + std::to_string(subcode) + " ";
        EXPECT_NE((log_of(verb) + ' ').find(line), std::string::npos);
        if (check != VGA_CHECK_COUNT) {
            node->checks_running[check] = 1;
            EXPECT_EQ(log_of(verb), "");
            node->checks_running[check] = 0;
        }
        node->build_flags = vga_flag(flag);
        EXPECT_EQ(log_of(verb), "");
        node->build_flags = 0;
        ptrc.flags |= 0x01;
        EXPECT_EQ(log_of(verb), "");
        ptrc.flags &= 0xFE;
    }
    template <typename T> T* find_local(const NTL_AVL_TREE& tree, const std::string& name) {
        char key[8];
        put(key, name);
        return static_cast<T*>(ntl_avl_find(&tree, key));
    }
    template <typename T> T* find_ebcdic(const NTL_AVL_TREE& tree, const std::string& name) {
        NB_BYTE key[17];
        put(key, name);
        return static_cast<T*>(ntl_avl_find(&tree, key));
    }
};

// ---- connectivity ----

TEST_F(Configured, ConnectivityIsBuiltFromTheTopDown) {
    indicate(define_dlc("ETH"));
    Verb<DEFINE_PORT> port_verb = define_port("PORT1", "ETH");
    port_verb->def.port_data_length = 3;
    port_verb->def.link_data_length = 2;
    port_verb.append("abcde");
    put(reinterpret_cast<char(&)[7]>(port_verb->def.local_address), "address");
    indicate(port_verb);
    Verb<DEFINE_LS> ls_verb = define_ls("LS1", "PORT1", "PU1");
    ls_verb->def.specific_length = 5;
    ls_verb->def.activate_on_demand = 1;
    ls_verb->def.parameter474 = 4;
    ls_verb->def.parameter490 = 7;
    ls_verb.append("vwxyz");
    indicate(ls_verb);
    indicate(define_lu03("LU2", "PU1", 2));
    EXPECT_EQ(rows(node->links_root), (Rows{"PORT1", " LS1+", "  LU2"}));

    const auto* port = find_local<vga_port>(node->port_tree, "PORT1");
    EXPECT_EQ(port->vcb->dlc_type, NAP_DLC_ETHERNET);
    EXPECT_EQ(port->vcb->length, sizeof(PORT_ENTRY) + 8);
    EXPECT_EQ(std::memcmp(nof_tail(port->vcb), "abcde\0\0\0", 8), 0);
    const auto* ls = find_local<vga_ls>(node->ls_tree, "LS1");
    EXPECT_EQ(ls->vcb->det.dlc_type, NAP_DLC_ETHERNET);
    EXPECT_EQ(std::memcmp(ls->vcb->det.port_address, "address", 7), 0);
    EXPECT_EQ(ls->vcb->det.activation_flags, NOF_LS_ON_DEMAND | NOF_LS_INCOMING);
    EXPECT_EQ(ls->vcb->det.parameter45, 4);
    EXPECT_EQ(std::memcmp(nof_tail(ls->vcb), "vwxyz\0\0\0", 8), 0);
    EXPECT_EQ(ls->pu_entry->vcb.host_attachment, NAP_DIRECT_ATTACHED);
    EXPECT_EQ(ls->pu_entry->vcb.conventional_lu_compression, 7);
    const auto* lu = ntl_avl_first<vga_lu03>(ls->pu_entry->lu_tree);
    EXPECT_EQ(lu->vcb.det_data.host_attachment, NAP_DIRECT_ATTACHED);

    indicate(delete_local(NAP_DELETE_DLC, "ETH"));
    EXPECT_EQ(rows(node->links_root), Rows{});
    EXPECT_EQ(count(gvga_system->lu_tree), 0u);
}

TEST_F(Configured, ARedefinedLinkStationKeepsItsStateAndSettlesItsPu) {
    add_port("ETH");
    indicate(define_ls("LS1", "ETH", "PU1"));
    auto* station = find_local<vga_ls>(node->ls_tree, "LS1");
    const NB_HANDLE pu = station->pu_entry->handle;
    station->vcb->det.state = NOF_STATE_ACTIVE;
    station->pu_entry->vcb.state = NOF_STATE_ACTIVE;

    Verb<DEFINE_LS> again = define_ls("LS1", "ETH", "PU1");
    again->def.disable_remote_act = 1;
    again->header.primary_rc = NAP_OK; // an own completion
    VGA_COMPLETION completion{0, again.bytes.data(), 0};
    vga_ls* record = nullptr;
    vga_process_def_ls(&completion, node, &record);
    EXPECT_EQ(record, station);
    EXPECT_EQ(station->vcb->det.state, NOF_STATE_ACTIVE);
    EXPECT_EQ(station->vcb->det.activation_flags, 0);
    EXPECT_EQ(station->pu_entry->handle, pu);
    EXPECT_EQ(station->pu_entry->vcb.state, NOF_STATE_ACTIVE);

    indicate(define_ls("LS1", "ETH", "", "DSPU"));
    EXPECT_EQ(nba_validate_handle(pu), nullptr);
    ASSERT_NE(station->pu_entry, nullptr);
    EXPECT_EQ(station->pu_entry->kind, VGA_PU_DOWNSTREAM);
    EXPECT_EQ(station->pu_entry->vcb.host_attachment, NAP_PU_CONCENTRATION);
    indicate(define_ls("LS1", "ETH"));
    EXPECT_EQ(station->pu_entry, nullptr);
    EXPECT_EQ(count(node->down_pu_tree), 0u);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH", " LS1"}));
}

TEST_F(Configured, ARedefinedDlurPuKeepsItsState) {
    Verb<DEFINE_INTERNAL_PU> verb(NAP_DEFINE_INTERNAL_PU);
    put(verb->pu_name, "DLURPU");
    put(verb->dlus_name, "NET.HOST");
    indicate(verb);
    auto* pu = find_ebcdic<vga_pu>(node->local_pu_tree, "DLURPU");
    ASSERT_NE(pu, nullptr);
    EXPECT_EQ(pu->vcb.host_attachment, NAP_DLUR_ATTACHED);
    ASSERT_EQ(rows(node->links_root).size(), 2u); // with its heading
    pu->vcb.state = 1;
    pu->vcb.dlur_status = NOF_DLUR_ACTIVE;
    put(verb->dlus_name, "NET.HOST2");
    indicate(verb);
    EXPECT_EQ(pu->vcb.state, 1);
    EXPECT_EQ(pu->vcb.dlur_status, NOF_DLUR_ACTIVE);
    EXPECT_EQ(get(pu->vcb.dlus_name), "NET.HOST2");
    indicate(delete_ebcdic(NAP_DELETE_INTERNAL_PU, "DLURPU"));
    EXPECT_EQ(rows(node->links_root), Rows{});
}

TEST_F(Configured, AConnectionNetworkLinksThePortsThatItLists) {
    vga_port* first = add_port("ETH0");
    vga_port* second = add_port("ETH1");
    Verb<DEFINE_CN> verb(NAP_DEFINE_CN);
    put(verb->cn_name, "NET.CN");
    verb->def.num_ports = 3;
    put(verb->port_names[0], "ETH0");
    put(verb->port_names[1], "MISSING");
    put(verb->port_names[2], "ETH1");
    EXPECT_NE(log_of(verb).find(" 33 "), std::string::npos);
    auto* cn = ntl_avl_first<vga_cn>(node->cn_tree);
    EXPECT_TRUE(first->cn == cn && second->cn == cn);

    Verb<DELETE_CN> remove(NAP_DELETE_CN);
    put(remove->cn_name, "NET.CN");
    remove->num_ports = 1;
    put(remove->port_names[0], "ETH0");
    indicate(remove);
    EXPECT_TRUE(first->cn == nullptr && second->cn == cn);
    expect_logged(remove, 34, VGA_CHECK_PORT, VGA_NODE_CN_PORTS);
    remove->num_ports = 0;
    indicate(remove);
    EXPECT_EQ(second->cn, nullptr);
    EXPECT_EQ(count(node->cn_tree), 0u);
}

// ---- LUs ----

TEST_F(Configured, RangesNameTheirLusAsTheNodeDoes) {
    add_port("ETH");
    add_ls(ls("LS1", "ETH", "PU1"));
    add_ls(ls("LS2", "ETH", "PU2"));
    struct Range {
        const char* base;
        NB_BYTE first, last, flags, number;
        std::vector<std::string> names;
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
        Verb<DEFINE_LU_0_TO_3_RANGE> define(NAP_DEFINE_LU_0_TO_3_RANGE);
        put(define->base_name, range.base);
        define->first_nau = range.first;
        define->last_nau = range.last;
        define->naming_flags = range.flags;
        define->first_number = range.number;
        define->lu_model = NOF_LU_PRINTER;
        put(define->pu_name, "PU2");
        indicate(define);
        const vga_pu* pu = find_ebcdic<vga_pu>(node->local_pu_tree, "PU2");
        std::vector<std::string> names;
        for (auto* lu = ntl_avl_first<vga_lu03>(pu->lu_tree); lu != nullptr;
             lu = static_cast<vga_lu03*>(ntl_avl_next(&lu->node))) {
            names.push_back(get(lu->vcb.lu_name));
            EXPECT_EQ(lu->vcb.def_data.lu_model, NOF_LU_PRINTER);
        }
        EXPECT_EQ(names, range.names);
        if (range.first == 0) {
            continue; // whose delete means nothing either
        }
        Verb<DELETE_LU_0_TO_3_RANGE> remove(NAP_DELETE_LU_0_TO_3_RANGE);
        std::memcpy(remove->base_name, define->base_name, sizeof remove->base_name);
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

TEST_F(Configured, DownstreamLusTakeANewDefinitionAndKeepTheirState) {
    add_port("ETH");
    add_ls(ls("LS1", "ETH", "", "DSPU"));
    Verb<DEFINE_DOWNSTREAM_LU_RANGE> range(NAP_DEFINE_DOWNSTREAM_LU_RANGE);
    put(range->base_name, "DS");
    range->first_nau = 2;
    range->last_nau = 3;
    put(range->dspu_name, "DSPU");
    indicate(range);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH", " LS1+", "  DS002", "  DS003"}));
    auto* lu = ntl_avl_first<vga_down_lu>(ntl_avl_first<vga_pu>(node->down_pu_tree)->lu_tree);
    lu->vcb.lu_active = 1;

    Verb<DEFINE_DOWNSTREAM_LU> again = define_down_lu("DS002", "DSPU", 9);
    again->def.delayed_logon = 1;
    indicate(again);
    EXPECT_EQ(lu->vcb.lu_active, 1);
    EXPECT_EQ(lu->vcb.def.delayed_logon, 1);
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH", " LS1+", "  DS003", "  DS002"}));
    again->def.nau_address = 3; // taken
    EXPECT_NE(log_of(again).find(" 5 "), std::string::npos);
    EXPECT_EQ(lu->vcb.def.nau_address, 9);

    Verb<DELETE_DOWNSTREAM_LU_RANGE> remove(NAP_DELETE_DOWNSTREAM_LU_RANGE);
    put(remove->base_name, "DS");
    remove->first_nau = 2;
    remove->last_nau = 3;
    EXPECT_EQ(log_of(remove), "");
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH", " LS1+"}));
    expect_logged(remove, 41, VGA_CHECK_DOWN_LU, VGA_NODE_DOWN_LUS);
}

TEST_F(Configured, ARedefinedDependentLuKeepsItsSessionStatus) {
    add_port("ETH");
    add_ls(ls("LS1", "ETH", "PU1"));
    indicate(define_lu62("DEPLU", "DEPLU", 5, "PU1"));
    auto* lu = find_ebcdic<vga_lu62>(node->lu62_tree, "DEPLU");
    lu->vcb.session_status = 1;
    indicate(define_lu62("DEPLU", "NEWALIAS", 5, "PU1"));
    EXPECT_EQ(lu->vcb.session_status, 1);
    EXPECT_EQ(get(lu->vcb.def.lu_alias), "NEWALIAS");
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH", " LS1+", "  DEPLU"}));
    indicate(delete_ebcdic(NAP_DELETE_LOCAL_LU, "DEPLU"));
    EXPECT_EQ(rows(node->links_root), (Rows{"ETH", " LS1+"}));
}

// ---- names that the store does not know ----

TEST_F(Configured, AnUnknownNameIsLoggedUnlessItsKindIsBeingListed) {
    expect_logged(define_port("P", "NODLC"), 52, VGA_CHECK_DLC, VGA_NODE_DLCS);
    expect_logged(define_ls("L", "NOPORT"), 43, VGA_CHECK_COUNT, VGA_NODE_PORTS);
    expect_logged(define_lu03("LU", "NOPU", 2), 44, VGA_CHECK_PU, VGA_NODE_LOCAL_PUS);
    expect_logged(define_down_lu("LU", "NOPU", 2), 38, VGA_CHECK_DOWN_PU, VGA_NODE_DOWN_PUS);
    Verb<DEFINE_LU_0_TO_3_RANGE> range(NAP_DEFINE_LU_0_TO_3_RANGE);
    expect_logged(range, 46, VGA_CHECK_PU, VGA_NODE_LOCAL_PUS);
    Verb<DEFINE_DOWNSTREAM_LU_RANGE> down_range(NAP_DEFINE_DOWNSTREAM_LU_RANGE);
    expect_logged(down_range, 40, VGA_CHECK_DOWN_PU, VGA_NODE_DOWN_PUS);
    expect_logged(delete_local(NAP_DELETE_DLC, "X"), 37, VGA_CHECK_DLC, VGA_NODE_DLCS);
    expect_logged(delete_local(NAP_DELETE_PORT, "X"), 53, VGA_CHECK_PORT, VGA_NODE_PORTS);
    expect_logged(delete_ebcdic(NAP_DELETE_LU_0_TO_3, "X"), 45, VGA_CHECK_LU03, VGA_NODE_LU03S);
    expect_logged(delete_ebcdic(NAP_DELETE_DOWNSTREAM_LU, "X"), 39, VGA_CHECK_DOWN_LU,
                  VGA_NODE_DOWN_LUS);
    expect_logged(delete_ebcdic(NAP_DELETE_INTERNAL_PU, "X"), 42, VGA_CHECK_DLUR_PU,
                  VGA_NODE_LOCAL_PUS);
    Verb<DELETE_COS> cos(NAP_DELETE_COS);
    expect_logged(cos, 35, VGA_CHECK_COUNT, VGA_NODE_COSS);
    Verb<DELETE_ADJACENT_NODE> adjacent(NAP_DELETE_ADJACENT_NODE);
    expect_logged(adjacent, 62, VGA_CHECK_DIR, VGA_NODE_DIRECTORY);
    Verb<DELETE_ADJACENT_NODE> len(NAP_DELETE_ADJACENT_LEN_NODE);
    expect_logged(len, 56, VGA_CHECK_DIR, VGA_NODE_DIRECTORY);

    // These are ignored in silence, an own deletion of a PU too.
    EXPECT_EQ(log_of(delete_local(NAP_DELETE_LS, "X")), "");
    EXPECT_EQ(log_of(delete_ebcdic(NAP_DELETE_LOCAL_LU, "X")), "");
    EXPECT_EQ(log_of(delete_ebcdic(NAP_DELETE_MODE, "X")), "");
    auto own = delete_ebcdic(NAP_DELETE_INTERNAL_PU, "X");
    own->header.primary_rc = NAP_OK;
    EXPECT_EQ(log_of(own), "");
    EXPECT_EQ(gvga_exit_code, 0);
}

TEST_F(Configured, BlocksThatDoNotBelongHereBreakInvariants) {
    const auto expression_of = [this](auto call) {
        testing::internal::CaptureStderr();
        call();
        testing::internal::GetCapturedStderr();
        asserts = nba_assert_count(); // expected
        return std::string(nba_last_assert());
    };
    Verb<DEFINE_DLC> failed = define_dlc("FAILED");
    failed->header.primary_rc = NAP_STATE_CHECK;
    EXPECT_EQ(expression_of([&] { indicate(failed); }),
              "(vcb->primary_rc == NAP_OK)||(vcb->primary_rc == NAP_INDICATION)");
    EXPECT_NE(find_local<vga_dlc>(node->dlc_tree, "FAILED"), nullptr); // and on it goes
    Verb<DEFINE_LS> other = define_ls("LS1", "ETH");
    other->header.opcode = NAP_DEFINE_PORT;
    VGA_COMPLETION completion{0, other.bytes.data(), 0};
    EXPECT_EQ(expression_of([&] { vga_process_def_ls(&completion, node); }),
              "vcb->opcode == NAP_DEFINE_LS");
    Verb<DELETE_BY_NAME8> unknown(NAP_DEFINE_CPIC_SIDE_INFO);
    EXPECT_EQ(expression_of([&] { indicate(unknown); }), "FALSE");

    indicate(define_dlc("STALE"), 0xFFFFFFFF); // of a node that has gone
    EXPECT_EQ(find_local<vga_dlc>(node->dlc_tree, "STALE"), nullptr);
}

// ---- remote systems ----

TEST_F(Configured, DirectoryEntriesMakeAndUnmakeRemoteSystems) {
    indicate(define_dir("NET.REMOTE", NAP_END_NODE_CP_RESOURCE));
    indicate(define_dir("NET.LU1", NAP_LU_RESOURCE, "NET.REMOTE"));
    indicate(define_dir("NET.W", NAP_WILDCARD_LU_RESOURCE, "NET.REMOTE"));
    indicate(define_dir("NET.OWN", NAP_LU_RESOURCE, "NET.CP"));       // of this node
    indicate(define_dir("NET.LOST", NAP_LU_RESOURCE, "NET.UNKNOWN")); // of nobody
    indicate(define_dir("NET.CP", NAP_END_NODE_CP_RESOURCE));
    indicate(define_dir("NET.SERVER", NAP_NETWORK_NODE_CP_RESOURCE));
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.REMOTE", " NET.LU1", " NET.W"}));

    Verb<DEFINE_PARTNER_LU> partner(NAP_DEFINE_PARTNER_LU);
    put(partner->plu_name, "NET.LU1");
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
    Verb<DELETE_PARTNER_LU> forget(NAP_DELETE_PARTNER_LU);
    put(forget->plu_name, "NET.LU1");
    indicate(forget);
    EXPECT_EQ(rows(node->rem_sys_root), Rows{});
}

TEST_F(Configured, AdjacentNodesBringTheirLus) {
    const auto lu = [](const std::string& name, NB_BYTE wildcard = 0) {
        ADJACENT_LU entry{};
        entry.wildcard = wildcard;
        put(entry.lu_name, name);
        return std::string(reinterpret_cast<const char*>(&entry), sizeof entry);
    };
    Verb<DEFINE_ADJACENT_NODE> define(NAP_DEFINE_ADJACENT_LEN_NODE);
    put(define->cp_name, "NET.LEN");
    std::strcpy(define->description, "warehouse");
    define->num_lus = 3;
    define.append(lu("LU1") + lu("OTHER.LU2") + lu("STOCK", 1));
    indicate(define);
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.LEN", " NET.LU1", " NET.STOCK", " OTHER.LU2"}));
    const auto* rem_sys = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree);
    EXPECT_STREQ(rem_sys->vcb.description, "warehouse");

    Verb<DELETE_ADJACENT_NODE> remove(NAP_DELETE_ADJACENT_LEN_NODE);
    put(remove->cp_name, "NET.LEN");
    remove->num_lus = 2;
    remove.append(lu("STOCK", 1) + lu("MISSING"));
    EXPECT_NE(log_of(remove).find(" 57 "), std::string::npos);
    EXPECT_EQ(rows(node->rem_sys_root), (Rows{"NET.LEN", " NET.LU1", " OTHER.LU2"}));
    remove->num_lus = 0;
    indicate(remove);
    EXPECT_EQ(rows(node->rem_sys_root), Rows{});
}

// ---- the node, traces and logs ----

TEST_F(Configured, ANodeDefinitionMakesWhatEveryNodeHas) {
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
    testing::internal::CaptureStderr();
    vga_process_system_config_ind(&completion);
    EXPECT_NE(testing::internal::GetCapturedStderr().find(" 32 "), std::string::npos);
}

TEST_F(Configured, TraceTypesAreReplacedAddedOrTakenAway) {
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

TEST_F(Configured, DlcTracesAreCountedByKindOfAdapter) {
    add_dlc(dlc("SDLC0", NAP_DLC_SDLC));
    add_dlc(dlc("BOTH", NAP_DLC_FDDI));
    add_port("ETH0"); // and its DLC, which is Ethernet
    add_ls(ls("LINK", "ETH0"));
    add_ls(ls("BOTH", "ETH0"));
    const auto trace = [this](NB_USHORT opcode, NB_BYTE type, const std::string& name) {
        Verb<ADD_DLC_TRACE> verb(opcode);
        verb->resource_type = type;
        put(verb->name, name);
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

TEST_F(Configured, LogsAreSetByTheCentralLoggerAlone) {
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

TEST_F(Configured, WithoutMemoryTheProgramEndsAndTheStoreStaysWhole) {
    add_port("ETH0");
    Verb<DEFINE_LU_0_TO_3_RANGE> range(NAP_DEFINE_LU_0_TO_3_RANGE);
    put(range->base_name, "LU");
    range->first_nau = 1;
    range->last_nau = 3;
    put(range->pu_name, "PU");
    Verb<DEFINE_ADJACENT_NODE> adjacent(NAP_DEFINE_ADJACENT_NODE);
    put(adjacent->cp_name, "NET.ADJ");
    const auto all = [&] {
        indicate(define_dlc("DLC"));
        indicate(define_port("PORT", "DLC"));
        indicate(define_ls("LS", "PORT", "PU"));
        testing::internal::CaptureStderr(); // the LUs of a PU that is not there
        indicate(range);
        testing::internal::GetCapturedStderr();
        indicate(define_lu62("LU62", "LU62"));
        indicate(adjacent);
    };
    const auto clear = [&] {
        if (auto* dlc = find_local<vga_dlc>(node->dlc_tree, "DLC"); dlc != nullptr) {
            vga_delete_vga_dlc(dlc, true);
        }
        if (auto* lu = find_ebcdic<vga_lu62>(node->lu62_tree, "LU62"); lu != nullptr) {
            vga_delete_vga_lu62(lu, true);
        }
        if (auto* rem_sys = ntl_avl_first<vga_rem_sys>(node->rem_sys_tree); rem_sys != nullptr) {
            vga_delete_vga_rem_sys(rem_sys, true, true, true);
        }
    };
    all(); // what stays for good, such as pools, is made now
    clear();
    const std::size_t before = vga_allocations_in_use();
    const unsigned long calls = vga_allocation_calls();
    all();
    const unsigned long needed = vga_allocation_calls() - calls;
    clear();
    ASSERT_GT(needed, 8u);
    for (unsigned long nth = 1; nth <= needed; ++nth) {
        SCOPED_TRACE(nth);
        gvga_exit_code = 0;
        vga_fail_allocation(nth);
        all();
        vga_fail_allocation(0);
        EXPECT_EQ(gvga_exit_code, VGA_EXIT_INTERNAL);
        count(node->port_tree);
        count(gvga_system->lu_tree);
        clear();
        EXPECT_EQ(vga_allocations_in_use(), before);
    }
    gvga_exit_code = 0;
}

} // namespace
} // namespace store_test
