// Queries page exactly: every entry once, in order, with counts that lead a client to the end and
// no further.
#include "client.h"

#include "simnode/generate.h"

#include <random>

namespace simnode_test {
namespace {

using simnode::Kind;
using simnode::Record;

struct Page {
    NB_USHORT rc;
    unsigned count;
    unsigned total;
    std::vector<Bytes> entries;
};

// Asks for LUs of a PU (blank: of all) by the raw bytes of names.
Page ask(Client& client, NB_HANDLE node, NB_BYTE options, const std::string& lu,
         const std::string& pu, NB_ULONG capacity, NB_USHORT wanted = 0) {
    auto query = verb<QUERY_LU_0_TO_3>(NAP_QUERY_LU_0_TO_3);
    query.list.list_options = static_cast<NB_BYTE>(options | NAP_LEVEL_DETAIL);
    query.list.buffer_size = capacity;
    query.list.num_entries = wanted;
    std::memcpy(query.lu_name, lu.data(), lu.size());
    std::memcpy(query.pu_name, pu.data(), pu.size());
    Received answer = client.call(query, node, capacity);
    const auto& list = answer.as<LIST_QUERY>();
    return {list.header.primary_rc, list.num_entries, list.total_entries, entries_of(answer)};
}

struct PagingTest : testing::Test {
    simnode::Service service;
    std::unique_ptr<Client> client;
    NB_HANDLE node = 0;

    void generate(const char* counts) {
        simnode::Counts numbers;
        std::string error;
        ASSERT_TRUE(parse_counts(counts, numbers, error)) << error;
        generate_domain(service.world.domain, numbers);
        client = std::make_unique<Client>(service);
        node = client->connect("generated");
    }
    std::vector<Record*> lus(const std::string& pu) {
        auto& collection = service.world.domain.nodes.front()->of(Kind::lu_0_to_3);
        return pu.empty() ? everything(collection) : children(collection, pu);
    }
};

TEST_F(PagingTest, AnyStartAndPageSizeGivesTheSameAsAPlainList) {
    generate("lu03=700");
    std::mt19937 dice(7);
    const auto pus = everything(service.world.domain.nodes.front()->of(Kind::pu));
    for (int round = 0; round < 400; ++round) {
        const std::string pu = dice() % 4 == 0 ? "" : pus[dice() % pus.size()]->key;
        const std::vector<Record*> all = lus(pu);
        const std::size_t start = dice() % all.size();
        const NB_BYTE option = std::array<NB_BYTE, 3>{NAP_FIRST_IN_LIST, NAP_LIST_INCLUSIVE,
                                                      NAP_LIST_FROM_NEXT}[dice() % 3];
        const std::size_t from = option == NAP_FIRST_IN_LIST    ? 0
                                 : option == NAP_LIST_INCLUSIVE ? start
                                                                : start + 1;
        const NB_USHORT wanted =
            dice() % 2 == 0 ? NB_USHORT{0} : static_cast<NB_USHORT>(dice() % 9);
        const NB_ULONG capacity = static_cast<NB_ULONG>(sizeof(LU03_ENTRY) + dice() % 9000);
        const Page page = ask(*client, node, option, all[start]->key, pu, capacity, wanted);
        const std::size_t remaining = all.size() - from;
        const std::size_t fits = capacity / sizeof(LU03_ENTRY);
        const std::size_t expected =
            std::min({remaining, fits, wanted == 0 ? remaining : std::size_t{wanted}});
        ASSERT_EQ(page.rc, NAP_OK);
        ASSERT_EQ(page.count, expected);
        ASSERT_EQ(page.total, remaining);
        ASSERT_EQ(page.entries.size(), expected);
        for (std::size_t i = 0; i < expected; ++i) {
            ASSERT_EQ(page.entries[i], all[from + i]->entry);
        }
    }
}

TEST_F(PagingTest, ListGoesOnWhileRecordsComeAndGo) {
    generate("lu03=300");
    std::set<std::string> seen;
    std::string last;
    for (Page page = ask(*client, node, NAP_FIRST_IN_LIST, "", "", 4096);;
         page = ask(*client, node, NAP_LIST_FROM_NEXT, last, "", 4096)) {
        ASSERT_EQ(page.rc, NAP_OK);
        for (const Bytes& entry : page.entries) {
            last.assign(entry.begin() + 4, entry.begin() + 12);
            ASSERT_TRUE(seen.insert(last).second) << "listed twice";
        }
        if (page.count == page.total) {
            break;
        }
        // The entry that the next page starts from is deleted.
        auto& collection = service.world.domain.nodes.front()->of(Kind::lu_0_to_3);
        erase(collection, *find(collection, last));
    }
    EXPECT_EQ(seen.size(), 300u);
}

TEST_F(PagingTest, ManyEntriesSaturateTheTotal) {
    generate("lu03=66000");
    const Page page = ask(*client, node, NAP_FIRST_IN_LIST, "", "", 4096);
    EXPECT_EQ(page.count, 6u);
    EXPECT_EQ(page.total, 0xFFFFu);
    const auto all = lus("");
    EXPECT_EQ(ask(*client, node, NAP_LIST_FROM_NEXT, all[65990]->key, "", 4096).total, 9u);
}

TEST_F(PagingTest, RefusesWhatCannotBeListed) {
    generate("lu03=10");
    const std::string lu = lus("")[3]->key;
    EXPECT_EQ(ask(*client, node, NAP_FIRST_IN_LIST, "", "", 631).rc, NAP_PARAMETER_CHECK);
    EXPECT_EQ(ask(*client, node, 0, "", "", 4096).rc, NAP_PARAMETER_CHECK);
    // A single entry that has gone must not be mistaken for the one after it.
    EXPECT_EQ(ask(*client, node, NAP_LIST_INCLUSIVE, "XXXXXXXX", "", 632, 1).rc,
              NAP_PARAMETER_CHECK);
    EXPECT_EQ(ask(*client, node, NAP_LIST_INCLUSIVE, lu, "", 632, 1).entries.size(), 1u);
    EXPECT_EQ(ask(*client, node, NAP_FIRST_IN_LIST, "", "NOSUCHPU", 4096).total, 0u);
}

// Owners come before what they own, whatever the names: the console builds its directory from the
// list as it comes.
TEST_F(DemoTest, OwnersComeFirstAndMovedEndNodesTakeTheirLusAlong) {
    ASSERT_EQ(client.control("define directory BANKNET.AIRPORT parent=HELVIA.HELNN01"), 0)
        << client.output;
    ASSERT_EQ(client.control("list directory"), 0);
    const auto at = [&](const char* name) {
        const std::size_t place = client.output.find(name);
        EXPECT_NE(place, std::string::npos) << name;
        return place;
    };
    EXPECT_LT(at("HELVIA.HELNN01"), at("BANKNET.AIRPORT"));
    EXPECT_LT(at("BANKNET.AIRPORT"), at("BANKNET.APFX"));
    EXPECT_LT(at("BANKNET.HOSTB"), at("BANKNET.CARDSYS"));
    EXPECT_LT(at("BANKNET.APTELLER"), at("HELVIA.HELEN01"));
}

} // namespace
} // namespace simnode_test
