// Domain files: what bad files are answered, and that what is saved comes back.
#include "client.h"

namespace simnode_test {
namespace {

using simnode::Domain;
using simnode::Kind;

TEST(DomainFile, ErrorsNameFileAndLine) {
    struct Case {
        const char* text;
        const char* error; // part of it
    };
#define NODE "[[node]]\nname = \"a\"\ncp_name = \"N.A\"\n"
    static constexpr Case cases[] = {
        {"[[node]\n", "d.toml:1: "},
        {"[[node]]\ncp_name = \"N.A\"\n", "d.toml:1: a node needs a name"},
        {"[[node]]\nname = \"a\"\n", "d.toml:1: node a has no cp_name"},
        {NODE "nonsense = 1\n", "d.toml:4: unknown key"},
        {NODE "type = \"tree\"\n", "d.toml:4: not a value"},
        {NODE "[[node.dlc]]\nname = \"LONGERNAME\"\n", "d.toml:5: name is longer than 8"},
        {NODE "[[node.port]]\nname = \"P\"\ndlc = \"E\"\n", "d.toml:4: port P: what it belongs to"},
        {NODE "[[node.dlc]]\nname = \"E\"\n[[node.dlc]]\n"
              "name = \"E\"\n",
         "d.toml:6: dlc E is defined twice"},
        {NODE "[[node.local_lu]]\nname = \"L\"\nnau = 300\n", "d.toml:6: not a value of nau"},
        {NODE "[[node.session]]\nlu = \"L\"\n", "d.toml:4: session needs"},
        {NODE "[node.settings]\nslp = \"x\"\n", "d.toml:5: setting slp"},
        {"[domain]\nread_only_uids = [ \"root\" ]\n", "d.toml:2: read_only_uids"},
        {"[nodes]\n", "d.toml:1: unknown key nodes"},
    };
#undef NODE
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

TEST_F(DemoTest, SavedDomainComesBackAsItWas) {
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

} // namespace
} // namespace simnode_test
