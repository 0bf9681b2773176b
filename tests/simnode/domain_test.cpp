// Domain files: what the example shows, what bad files are answered, and that what is saved comes
// back.
#include "client.h"

#include "simnode/lively.h"

namespace simnode_test {
namespace {

using simnode::Domain;
using simnode::Kind;

TEST(DomainFile, ErrorsNameFileAndLine) {
    struct Case {
        const char* text;
        const char* error; // part of it
    };
    static constexpr Case cases[] = {
        {"[[node]\n", "d.toml:1: "},
        {"[[node]]\ncp_name = \"N.A\"\n", "d.toml:1: a node needs a name"},
        {"[[node]]\nname = \"a\"\n", "d.toml:1: node a has no cp_name"},
        {"[[node]]\nname = \"a\"\ncp_name = \"N.A\"\nnonsense = 1\n", "d.toml:4: unknown key"},
        {"[[node]]\nname = \"a\"\ncp_name = \"N.A\"\ntype = \"tree\"\n", "d.toml:4: not a value"},
        {"[[node]]\nname = \"a\"\ncp_name = \"N.A\"\n[[node.dlc]]\nname = \"LONGERNAME\"\n",
         "d.toml:5: name is longer than 8"},
        {"[[node]]\nname = \"a\"\ncp_name = \"N.A\"\n[[node.port]]\nname = \"P\"\ndlc = \"E\"\n",
         "d.toml:4: port P: what it belongs to"},
        {"[[node]]\nname = \"a\"\ncp_name = \"N.A\"\n[[node.dlc]]\nname = \"E\"\n[[node.dlc]]\n"
         "name = \"E\"\n",
         "d.toml:6: dlc E is defined twice"},
        {"[[node]]\nname = \"a\"\ncp_name = \"N.A\"\n[[node.local_lu]]\nname = \"L\"\nnau = 300\n",
         "d.toml:6: not a value of nau"},
        {"[[node]]\nname = \"a\"\ncp_name = \"N.A\"\n[[node.session]]\nlu = \"L\"\n",
         "d.toml:4: session needs"},
        {"[[node]]\nname = \"a\"\ncp_name = \"N.A\"\n[node.settings]\nslp = \"x\"\n",
         "d.toml:5: setting slp"},
        {"[domain]\nread_only_uids = [ \"root\" ]\n", "d.toml:2: read_only_uids"},
        {"[nodes]\n", "d.toml:1: unknown key nodes"},
    };
    for (const Case& c : cases) {
        Domain domain;
        std::string error;
        EXPECT_FALSE(parse_domain(domain, c.text, "d.toml", error)) << c.text;
        EXPECT_NE(error.find(c.error), std::string::npos) << error;
    }
    Domain domain;
    std::string error;
    EXPECT_FALSE(load_domain(domain, "/nonexistent.toml", error));
    EXPECT_NE(error.find("/nonexistent.toml"), std::string::npos);
}

TEST(DomainFile, ExampleShowsSomethingInEveryState) {
    simnode::Service service;
    load_demo(service);
    simnode::Node& node = *service.world.domain.nodes.front();
    std::set<NB_BYTE> link_types;
    for (const simnode::Record* port : everything(node.of(Kind::port))) {
        link_types.insert(port->as<PORT_ENTRY>().dlc_type);
    }
    EXPECT_GE(link_types.size(), 5u);
    std::set<NB_BYTE> states;
    bool implicit = false;
    bool enabled = false;
    for (const simnode::Record* ls : everything(node.of(Kind::ls))) {
        const auto& detail = ls->as<LS_ENTRY>().det;
        states.insert(detail.state);
        implicit |= detail.implicit != 0;
        enabled |= detail.state == NOF_STATE_INACTIVE && detail.activation_flags != 0;
    }
    EXPECT_GE(size(node.of(Kind::ls)), 12u);
    EXPECT_EQ(states, (std::set<NB_BYTE>{NOF_STATE_INACTIVE, NOF_STATE_ACTIVE,
                                         NOF_STATE_START_PENDING, NOF_STATE_FAILED}));
    EXPECT_TRUE(implicit && enabled);
    std::set<NB_BYTE> applications;
    for (const simnode::Record* lu : everything(node.of(Kind::lu_0_to_3))) {
        applications.insert(lu->as<LU03_ENTRY>().det_data.app_type);
        EXPECT_NE(simnode::find_any_pu(node, lu->parent), nullptr);
    }
    EXPECT_GE(size(node.of(Kind::lu_0_to_3)), 40u);
    EXPECT_EQ(applications, (std::set<NB_BYTE>{NAP_NO_APPLICATION, NAP_LUA_APPLICATION,
                                               NAP_FMI_APPLICATION, NAP_TN_APPLICATION}));
    EXPECT_GE(size(node.of(Kind::local_lu)), 7u);
    EXPECT_GE(size(node.of(Kind::mode)), 6u);
}

// Records by kind and key.
std::map<std::pair<Kind, std::string>, Bytes> contents(const simnode::Node& node) {
    std::map<std::pair<Kind, std::string>, Bytes> result;
    for (const simnode::KindRow& row : simnode::kind_rows()) {
        for (const simnode::Record* record : everything(node.of(row.kind))) {
            result[{row.kind, record->key}] = record->entry;
        }
    }
    return result;
}

TEST(DomainFile, SavedDomainComesBackAsItWas) {
    simnode::Service service;
    load_demo(service);
    Client client(service);
    for (const char* line : {"state ls HELVINS failed", "use CORE04 program PAYBATCH",
                             "delete ls PRINTSRV", "stop dlur_pu PUDLUR1",
                             "define lu_0_to_3 CORE77 pu=PUHOSTA nau=77 \"description=a \\ b\"",
                             "state ls HOSTB disabled", "delete local_lu MAILGW"}) {
        client.control(line);
    }
    Domain copy;
    std::string error;
    ASSERT_TRUE(parse_domain(copy, domain_text(service.world.domain), "saved", error)) << error;
    ASSERT_EQ(copy.nodes.size(), 1u);
    const simnode::Node& node = *service.world.domain.nodes.front();
    const auto before = contents(node);
    const auto after = contents(*copy.nodes.front());
    ASSERT_EQ(after.size(), before.size());
    for (const auto& [key, entry] : before) {
        const auto found = after.find(key);
        ASSERT_NE(found, after.end());
        EXPECT_EQ(simnode::to_hex(found->second.data(), found->second.size()),
                  simnode::to_hex(entry.data(), entry.size()))
            << simnode::kind_row(key.first).name;
    }
    EXPECT_EQ(
        std::memcmp(&node.parameters, &copy.nodes.front()->parameters, sizeof node.parameters), 0);
    EXPECT_EQ(domain_text(copy), domain_text(service.world.domain));
}

TEST(Lively, ChangesStayWithinBounds) {
    simnode::Service service;
    load_demo(service);
    simnode::Node& node = *service.world.domain.nodes.front();
    unsigned seed = 3;
    std::set<NB_USHORT> seen;
    for (int turn = 0; turn < 2000; ++turn) {
        simnode::live(service.world, seed);
        for (const simnode::Event& event : std::exchange(service.world.events, {})) {
            seen.insert(event.opcode);
        }
    }
    EXPECT_TRUE(seen.contains(NAP_LU_0_TO_3_INDICATION));
    EXPECT_TRUE(seen.contains(NAP_MODE_INDICATION));
    EXPECT_TRUE(seen.contains(NAP_LS_INDICATION));
    for (const simnode::Record* mode : everything(node.of(Kind::mode))) {
        const auto& entry = mode->as<MODE_ENTRY>();
        EXPECT_LE(entry.act_sess_count, entry.max_session_limit);
    }
}

} // namespace
} // namespace simnode_test
