// Every kind of definition alike: defined, found by its key, told to others, deleted, kept.
#include "client.h"

#include "nof/cn.h"
#include "nof/extra_data.h"
#include "nof/routing.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/user.h"
#include "simnode/generate.h"
#include "simnode/manage.h"

#include <random>

namespace simnode_test {
namespace {

using simnode::Kind;
using simnode::KindRow;
using simnode::Record;

// An operator with a node and all its files.
struct Console {
    Client client;
    NB_HANDLE node = 0;
    NB_HANDLE file = 0;
    NB_HANDLE tp_load = 0;

    explicit Console(simnode::Service& service, const std::string& name = "bnkgw01")
        : client(service) {
        node = client.connect(name, {NAP_CONFIG_INDICATION});
        file = open(NOF_FILE_CONFIGURATION, 0);
        tp_load = open(NAP_TP_LOAD_INFO, node);
        client.register_for(NAP_CONFIG_INDICATION, file, 7);
        client.register_for(NAP_CONFIG_INDICATION, tp_load, 8);
    }
    NB_HANDLE open(NB_BYTE role, NB_HANDLE target) {
        auto block = verb<OPEN_FILE>(NAP_OPEN_FILE);
        block.file_info.requested_role = role;
        return client.call(block, target).as<OPEN_FILE>().file_handle;
    }
    NB_HANDLE target_of(const KindRow& row) const {
        return row.of_domain ? file : row.kind == Kind::tp_load ? tp_load : node;
    }
    bool accepts(const auto& block, NB_HANDLE target) {
        return client.call(block, target).rc().ok();
    }
};

// A node that is down, with some records of every kind, and two operators.
struct Everything {
    simnode::Service service;
    std::unique_ptr<Console> console;
    std::unique_ptr<Console> other;

    explicit Everything(unsigned long count = 3) {
        simnode::Counts counts;
        counts.ports = counts.link_stations = counts.lus_0_to_3 = counts.local_lus = count;
        counts.others.fill(count);
        generate_domain(service.world.domain, counts);
        simnode::deactivate_node(node());
        console = std::make_unique<Console>(service, "generated");
        other = std::make_unique<Console>(service, "generated");
    }
    simnode::Node& node() { return *service.world.domain.nodes.front(); }
    simnode::Node& place(const KindRow& row) {
        return row.of_domain ? service.world.domain.file : node();
    }
};

using MembersTest = DemoTest;

Bytes query_block(const KindRow& row, const Bytes& entry, NB_BYTE options, NB_USHORT count) {
    Bytes block(vnv_verb_search(row.query, 0, 0)->block_size);
    auto& list = *reinterpret_cast<LIST_QUERY*>(block.data());
    list.header.opcode = row.query;
    list.list_options = static_cast<NB_BYTE>(options | NAP_LEVEL_DETAIL);
    list.num_entries = count;
    list.buffer_size = 60000;
    for (std::size_t i = 0; i < row.key.size(); ++i) {
        std::copy_n(entry.begin() + row.key[i].offset, row.query_key[i].length,
                    block.begin() + row.query_key[i].offset);
    }
    if (row.kind == Kind::extra_data) {
        reinterpret_cast<QUERY_EXTRA_DATA*>(block.data())->resource_kind = NOF_EXTRA_DATA_LU_0_TO_3;
    }
    return block;
}

TEST(EveryKind, IsDefinedFoundToldAndDeleted) {
    for (const KindRow& row : simnode::kind_rows()) {
        if (row.define == 0) {
            continue;
        }
        SCOPED_TRACE(row.name);
        Everything world;
        Console& console = *world.console;
        const NB_HANDLE target = console.target_of(row);
        const auto all = everything(world.place(row).of(row.kind));
        ASSERT_FALSE(all.empty());
        const Bytes entry = all.front()->entry;
        const std::string key = all.front()->key;
        const std::size_t count = all.size();

        EXPECT_TRUE(console.accepts(delete_of_entry(row, entry), target));
        EXPECT_EQ(find(world.place(row).of(row.kind), key), nullptr);
        EXPECT_FALSE(console.accepts(delete_of_entry(row, entry), target)) << "deleted twice";
        EXPECT_TRUE(console.accepts(define_of_entry(row, entry), target));
        EXPECT_TRUE(console.accepts(define_of_entry(row, entry), target)) << "redefined";
        EXPECT_EQ(size(world.place(row).of(row.kind)), count);

        std::vector<std::pair<NB_USHORT, NB_USHORT>> told;
        for (const Received& copy : world.other->client.take_indications()) {
            const VCB_HEADER* header = vcb_header(copy.block.data());
            EXPECT_EQ(copy.header.target, world.other->target_of(row));
            told.emplace_back(header->opcode, header->primary_rc);
        }
        EXPECT_EQ(told,
                  (std::vector<std::pair<NB_USHORT, NB_USHORT>>{{row.remove, NAP_INDICATION},
                                                                {row.define, NAP_INDICATION},
                                                                {row.define, NAP_INDICATION}}));
        EXPECT_TRUE(console.client.take_indications().empty()) << "the issuer knows";

        const Received answer =
            console.client.call(query_block(row, entry, NAP_LIST_INCLUSIVE, 1), target, 60000);
        const std::vector<Bytes> found = entries_of(answer);
        ASSERT_EQ(found.size(), 1u);
        EXPECT_EQ(make_key(row.key, found[0].data()), key);
    }
}

TEST(EveryKind, ListsPageByPageAndComesBackFromAFile) {
    Everything world(12);
    for (const KindRow& row : simnode::kind_rows()) {
        if (row.query == 0 || row.owned || row.kind == Kind::cn_port ||
            row.kind == Kind::lu_lu_password) {
            continue;
        }
        SCOPED_TRACE(row.name);
        std::set<std::string> seen;
        const std::size_t expected = size(world.place(row).of(row.kind));
        Bytes last(row.entry_size);
        NB_BYTE options = NAP_FIRST_IN_LIST;
        for (std::size_t left = expected; left > 0; options = NAP_LIST_FROM_NEXT) {
            Received answer = world.console->client.call(query_block(row, last, options, 5),
                                                         world.console->target_of(row), 60000);
            ASSERT_EQ(answer.rc().primary, NAP_OK);
            ASSERT_EQ(answer.as<LIST_QUERY>().total_entries, left);
            const std::vector<Bytes> entries = entries_of(answer);
            ASSERT_EQ(answer.as<LIST_QUERY>().num_entries, entries.size());
            ASSERT_FALSE(entries.empty());
            for (const Bytes& entry : entries) {
                EXPECT_TRUE(seen.insert(make_key(row.key, entry.data())).second);
            }
            last = entries.back();
            left -= entries.size();
        }
        EXPECT_EQ(seen.size(), expected);
    }
    const std::string text = domain_text(world.service.world.domain);
    simnode::Domain copy;
    std::string error;
    ASSERT_TRUE(parse_domain(copy, text, "saved", error)) << error;
    EXPECT_TRUE(domain_text(copy) == text) << "a saved domain comes back as another";
}

// An entry that holds more than fits goes on in the next page, behind the last member received.
TEST(Members, EntriesGoOnInTheNextPage) {
    Everything world(24); // three owners with eight members each, and owners without
    for (const Kind kind : {Kind::user, Kind::tn_client, Kind::access_list}) {
        const KindRow& row = simnode::kind_row(kind);
        const simnode::Nested& nested = row.nested;
        const KindRow& member = simnode::kind_row(nested.kind);
        const auto key_of = [&](const Bytes& entry) { return make_key(member.key, entry.data()); };
        for (const std::size_t room : {1u, 3u, 8u, 9u, 100u}) {
            SCOPED_TRACE(std::string(row.name) + " " + std::to_string(room));
            const auto capacity = static_cast<NB_ULONG>(row.entry_size + room * nested.element);
            std::set<std::string> owners;
            std::set<std::string> members;
            Bytes query = query_block(row, Bytes(row.entry_size), NAP_FIRST_IN_LIST, 0);
            for (int page = 0; page < 200; ++page) {
                reinterpret_cast<LIST_QUERY*>(query.data())->buffer_size = capacity;
                Received answer =
                    world.console->client.call(query, world.console->target_of(row), capacity);
                const auto& list = answer.as<LIST_QUERY>();
                ASSERT_EQ(list.header.primary_rc, NAP_OK);
                const std::vector<Bytes> entries = entries_of(answer);
                Bytes last_member;
                for (const Bytes& entry : entries) {
                    const std::string owner = make_key(row.key, entry.data());
                    owners.insert(owner);
                    last_member.clear();
                    const auto count =
                        simnode::read_count(entry.data() + nested.entry_count, nested.count_width);
                    ASSERT_EQ(entry.size(), row.entry_size + count * nested.element);
                    for (std::size_t i = 0; i < count; ++i) {
                        const auto element = entry.begin() + row.entry_size +
                                             static_cast<std::ptrdiff_t>(i * nested.element);
                        last_member.assign(element, element + nested.element);
                        EXPECT_TRUE(members.insert(owner + key_of(last_member)).second)
                            << "received twice";
                    }
                }
                if (list.num_entries == list.total_entries && list.more == 0) {
                    break;
                }
                query = query_block(row, entries.back(), NAP_LIST_FROM_NEXT, 0);
                if (!last_member.empty()) {
                    const simnode::Piece& from = member.key[0];
                    std::copy_n(last_member.begin() + from.offset, from.length,
                                query.begin() + nested.query_key[0].offset);
                }
            }
            EXPECT_EQ(owners.size(), size(world.place(row).of(kind)));
            EXPECT_EQ(members.size(), size(world.place(row).of(nested.kind)));
        }
    }
}

TEST_F(MembersTest, PartialDeletesTakeOnlyWhatTheyName) {
    Console console(service);
    simnode::Node& file = service.world.domain.file;

    auto user = verb<DELETE_EMULATOR_USER>(NAP_DELETE_EMULATOR_USER);
    simnode::put_local(user.user_name, sizeof user.user_name, "helpdesk");
    const auto sessions = [&] {
        return children(file.of(Kind::user_session), simnode::raw(user.user_name, 32)).size();
    };
    simnode::put_local(user.session_names[0], 8, "CORE");
    simnode::put_local(user.session_names[1], 8, "NOSUCH");
    const struct {
        NB_ULONG named;
        NB_ULONG types;
        bool accepted;
        std::size_t left;
    } deletes[] = {
        {2, 0, false, 2},  // all of them, or nothing
        {11, 0, false, 2}, // more than the block has room for
        {0, NOF_SESSION_5250, true, 1},
        {0, 0, true, 0},
    };
    for (const auto& step : deletes) {
        user.num_sessions = step.named;
        user.session_types = step.types;
        EXPECT_EQ(console.accepts(user, console.file), step.accepted);
        EXPECT_EQ(sessions(), step.left);
    }
    EXPECT_EQ(find(file.of(Kind::user), simnode::raw(user.user_name, 32)), nullptr);

    auto profiles = verb<DELETE_USERID_PASSWORD>(NAP_DELETE_USERID_PASSWORD);
    profiles.delete_type = NAP_REMOVE_PROFILES;
    profiles.num_profiles = 1;
    simnode::put_ebcdic(profiles.user_id, sizeof profiles.user_id, "PAYSYS");
    simnode::put_ebcdic(profiles.profiles[0], sizeof profiles.profiles[0], "PAYERS");
    EXPECT_TRUE(console.accepts(profiles, console.node));
    EXPECT_FALSE(console.accepts(profiles, console.node)) << "gone already";
    EXPECT_EQ(size(node.of(Kind::userid)), 2u);
}

TEST_F(MembersTest, AdjacentNodesAndTheirLusStandInTheDirectory) {
    Console console(service);
    const std::size_t before = size(node.of(Kind::directory));
    Bytes bytes(sizeof(DEFINE_ADJACENT_NODE) + 2 * sizeof(ADJACENT_LU));
    auto& define = *reinterpret_cast<DEFINE_ADJACENT_NODE*>(bytes.data());
    define.header.opcode = NAP_DEFINE_ADJACENT_LEN_NODE;
    simnode::put_ebcdic(define.cp_name, sizeof define.cp_name, "NEWNET.CP1");
    define.num_lus = 2;
    auto* lus = reinterpret_cast<ADJACENT_LU*>(bytes.data() + sizeof define);
    simnode::put_ebcdic(lus[0].lu_name, sizeof lus[0].lu_name, "TELLER");
    simnode::put_ebcdic(lus[1].lu_name, sizeof lus[1].lu_name, "OTHER.ANY");
    lus[1].wildcard = 1;
    ASSERT_TRUE(console.accepts(bytes, console.node));
    EXPECT_EQ(client.control("show directory NEWNET.TELLER"), 0) << "in its CP's network";
    EXPECT_NE(client.output.find("parent=NEWNET.CP1"), std::string::npos);
    EXPECT_EQ(client.control("show directory OTHER.ANY"), 0) << "qualified by itself";
    EXPECT_NE(client.output.find("type=wildcard-lu"), std::string::npos);

    Bytes removed(sizeof(DELETE_ADJACENT_NODE) + sizeof(ADJACENT_LU));
    auto& remove = *reinterpret_cast<DELETE_ADJACENT_NODE*>(removed.data());
    remove.header.opcode = NAP_DELETE_ADJACENT_LEN_NODE;
    std::memcpy(remove.cp_name, define.cp_name, sizeof remove.cp_name);
    remove.num_lus = 1;
    std::memcpy(removed.data() + sizeof remove, lus, sizeof *lus);
    EXPECT_TRUE(console.accepts(removed, console.node));
    EXPECT_EQ(size(node.of(Kind::directory)), before + 2);
    EXPECT_FALSE(console.accepts(removed, console.node)) << "gone already";
    remove.num_lus = 0;
    EXPECT_TRUE(console.accepts(removed, console.node));
    EXPECT_EQ(size(node.of(Kind::directory)), before);
}

TEST_F(DemoTest, RefusesWhatCannotBe) {
    const struct {
        const char* command;
        const char* refused; // part of the answer
    } cases[] = {
        {"define ls HOSTC port=NOPORT", "0x0E540000"},
        {"define ls HOSTC nonsense=1", "nonsense"},
        {"state ls HOSTB sideways", "sideways"},
        {"define user_session DISP1 user=nobody", "does not exist"},
        {"define lu_0_to_3 NEWLU pu=NOPU nau=3", "0x0E540000"},
        {"define lu_0_to_3 NEWLU pu=PUHOSTA nau=0", "0x0E550000"},
        {"define lu_0_to_3 NEWLU pu=PUHOSTA nau=2", "0x0E5A0000"}, // taken
        {"define local_lu NEWLU alias=CLAIMS", "0x0E590000"},      // taken
        {"delete local_lu BNKGW01", "0x0E5B0000"},                 // the control point
        {"delete port ETHPORT", "0x0E580000"},                     // active
        {"define pool CORE06", "0x0E590000"},                      // the name of an LU
        {"define tp \"\"", "0x22600810"},
        {"define redirect 10.20.9.9 port=23 host=10.1.1.1 host_port=23", "0x69FF0000"},
        {"define redirect 10.8.8.8 port=80", "0x0000553F"},
        {"define redirect 10.9.9.9 port=80 host=h host_port=1 security_level=4", "0x0000553F"},
        {"define port ETHPORT dlc=TR0", "0x0E100000"},
        {"define extra_data NOSUCH", "0x35FF0000"},
        {"define primary_lu0 PAD9 line=NOLINE", "0x0E540000"},
        {"define lu_lu_password NOLU partner=N.P", "0x0E540000"},
        {"define lu62_timeout X type=9", "0x0E550000"},
        {"send 00700000000000000000000040404040404040", "0xFFFF"},
    };
    const std::string before = domain_text(service.world.domain);
    for (const auto& [command, refused] : cases) {
        EXPECT_EQ(client.control(command), 1) << command << client.output;
        EXPECT_NE(client.output.find(refused), std::string::npos)
            << command << ": " << client.output;
    }
    EXPECT_EQ(domain_text(service.world.domain), before);
    EXPECT_EQ(client.control("list nonsense"), 2);
    EXPECT_EQ(client.control("show userid PAYSYS"), 0);
    EXPECT_NE(client.output.find("password=***"), std::string::npos);
    EXPECT_EQ(client.control("show tp_load PAYPOST"), 0);
    EXPECT_NE(client.output.find("path=/opt/payments/bin/post"), std::string::npos);
}

// Definitions that reach the configuration file go to the node that has what they name.
TEST(ConfigurationFile, FindsTheNodeThatAVerbConcerns) {
    ShippedService service("enterprise");
    Console console(service, "zrh01");
    Console second(service, "zrh02");
    simnode::Node& zrh02 = *node_named(service.world.domain, "zrh02");

    auto association = verb<DEFINE_TN3270_ASSOCIATION>(NAP_DEFINE_TN3270_ASSOCIATION);
    simnode::put_ebcdic(association.display_lu_name, 8, "ZR2C0001");
    simnode::put_ebcdic(association.def.printer_lu_name, 8, "ZR2C0002");
    EXPECT_TRUE(console.accepts(association, console.file));
    EXPECT_EQ(size(zrh02.of(Kind::association)), 1u);
    Bytes access(sizeof(DEFINE_TN3270_ACCESS) + sizeof(TN3270_SESSION));
    auto& client = *reinterpret_cast<DEFINE_TN3270_ACCESS*>(access.data());
    client.header.opcode = NAP_DEFINE_TN3270_ACCESS;
    client.client.default_record = 1;
    client.def.num_sessions = 1;
    auto& session = *reinterpret_cast<TN3270_SESSION*>(access.data() + sizeof client);
    session.port = 3023;
    simnode::put_ebcdic(session.lu_name, 8, "TESTPL"); // a pool of the second server
    EXPECT_TRUE(console.accepts(access, console.file));
    EXPECT_EQ(second.client.take_indications().size(), 2u);
    EXPECT_TRUE(console.client.take_indications().empty());
}

// Random bytes behind a correct opcode cost no more than an answer.
TEST(HostileBlocks, LeaveTheServiceStanding) {
    Everything world;
    Console& console = *world.console;
    const NB_HANDLE targets[] = {console.node, console.file, console.tp_load};
    std::mt19937 dice(11);
    for (unsigned opcode = 0; opcode <= 0xFFFF; ++opcode) {
        const auto code = static_cast<NB_USHORT>(opcode);
        if (simnode::find_verb(code) == nullptr || code == NAP_DISCONNECT_NODE ||
            code == NAP_CLOSE_FILE) {
            continue;
        }
        SCOPED_TRACE(opcode);
        for (int round = 0; round < 24; ++round) {
            Bytes block(vnv_verb_search(code, 0, 0)->block_size + (round % 3) * 40u);
            for (NB_BYTE& byte : block) {
                byte = static_cast<NB_BYTE>(round % 2 == 0 ? dice() : dice() % 5 == 0 ? dice() : 0);
            }
            if (round % 8 == 7) {
                block.resize(sizeof(VCB_HEADER) + dice() % (block.size() - sizeof(VCB_HEADER) + 1));
            }
            std::fill_n(block.begin(), sizeof(VCB_HEADER), NB_BYTE{0});
            vcb_header(block.data())->opcode = code;
            console.client.call(block, targets[round % 3], 4096);
        }
        world.other->client.take_indications();
    }
    EXPECT_TRUE(console.accepts(verb<QUERY_NODE_LIMITS>(NAP_QUERY_NODE_LIMITS), console.node));
}

} // namespace
} // namespace simnode_test
