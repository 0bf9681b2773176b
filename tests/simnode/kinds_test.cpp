// Every kind of definition alike: defined, found by its key, told to others, deleted, kept.
#include "client.h"

#include "nof/cn.h"
#include "nof/extra_data.h"
#include "nof/pool.h"
#include "nof/routing.h"
#include "nof/rtp.h"
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

// A node that is down, with some records of every kind, and an operator with all its files.
struct Console {
    Client client;
    NB_HANDLE node = 0;
    NB_HANDLE file = 0;
    NB_HANDLE tp_load = 0;

    explicit Console(simnode::Service& service, const std::string& name = "generated")
        : client(service) {
        node = client.connect(name, {NAP_CONFIG_INDICATION});
        file = open(NOF_FILE_CONFIGURATION, 0);
        tp_load = open(NAP_TP_LOAD_INFO, node);
        client.register_for(NAP_CONFIG_INDICATION, file, 7);
        client.register_for(NAP_CONFIG_INDICATION, tp_load, 8);
    }
    NB_HANDLE open(NB_BYTE role, NB_HANDLE target) {
        auto verb_block = verb<OPEN_FILE>(NAP_OPEN_FILE);
        verb_block.file_info.requested_role = role;
        return client.call(verb_block, target).as<OPEN_FILE>().file_handle;
    }
    NB_HANDLE target_of(const KindRow& row) const {
        return row.of_domain ? file : row.kind == Kind::tp_load ? tp_load : node;
    }
    simnode::Rc issue(std::span<const NB_BYTE> block, NB_HANDLE target) {
        const auto header = client.call(block, target).as<VCB_HEADER>();
        return {header.primary_rc, header.secondary_rc};
    }
};

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
        console = std::make_unique<Console>(service);
        other = std::make_unique<Console>(service);
    }
    simnode::Node& node() { return *service.world.domain.nodes.front(); }
    simnode::Node& place(const KindRow& row) {
        return row.of_domain ? service.world.domain.file : node();
    }
};

Bytes delete_block(const KindRow& row, const Bytes& entry) {
    Bytes block(vnv_verb_search(row.remove, 0, 0)->block_size);
    vcb_header(block.data())->opcode = row.remove;
    for (std::size_t i = 0; i < row.key.size(); ++i) {
        std::copy_n(entry.begin() + row.key[i].offset, row.remove_key[i].length,
                    block.begin() + row.remove_key[i].offset);
    }
    if (row.kind == Kind::userid) {
        reinterpret_cast<DELETE_USERID_PASSWORD*>(block.data())->delete_type = NAP_REMOVE_USER;
    } else if (row.kind == Kind::extra_data) {
        reinterpret_cast<DELETE_EXTRA_DATA*>(block.data())->resource_kind =
            NOF_EXTRA_DATA_LU_0_TO_3;
    }
    return block;
}

Bytes define_block(const KindRow& row, const Bytes& entry) {
    Bytes block = define_of_entry(row, entry);
    if (row.kind == Kind::extra_data) {
        reinterpret_cast<DEFINE_EXTRA_DATA*>(block.data())->resource_kind =
            NOF_EXTRA_DATA_LU_0_TO_3;
    } else if (row.kind == Kind::cn) {
        reinterpret_cast<DEFINE_CN*>(block.data())->def.num_ports = 0;
    }
    return block;
}

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

        EXPECT_TRUE(console.issue(delete_block(row, entry), target).ok());
        EXPECT_EQ(find(world.place(row).of(row.kind), key), nullptr);
        EXPECT_FALSE(console.issue(delete_block(row, entry), target).ok()) << "deleted twice";
        EXPECT_TRUE(console.issue(define_block(row, entry), target).ok());
        EXPECT_TRUE(console.issue(define_block(row, entry), target).ok()) << "redefined";
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
        const auto& list = *reinterpret_cast<const LIST_QUERY*>(answer.block.data());
        EXPECT_EQ(list.header.primary_rc, NAP_OK);
        EXPECT_EQ(list.num_entries, 1);
        ASSERT_GE(answer.buffer.size(), row.entry_size);
        EXPECT_EQ(make_key(row.key, answer.buffer.data()), key);
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
        Bytes last;
        NB_BYTE options = NAP_FIRST_IN_LIST;
        for (unsigned total = 1, count = 0; count < total; options = NAP_LIST_FROM_NEXT) {
            Bytes key = last.empty() ? Bytes(row.entry_size) : last;
            const Received answer = world.console->client.call(
                query_block(row, key, options, 5), world.console->target_of(row), 60000);
            const auto& list = *reinterpret_cast<const LIST_QUERY*>(answer.block.data());
            ASSERT_EQ(list.header.primary_rc, NAP_OK);
            total = list.total_entries;
            count = list.num_entries;
            for (std::size_t at = 0; at < answer.buffer.size();) {
                NB_USHORT length = 0;
                std::memcpy(&length, answer.buffer.data() + at, sizeof length);
                ASSERT_GE(length, row.entry_size);
                last.assign(answer.buffer.begin() + static_cast<std::ptrdiff_t>(at),
                            answer.buffer.begin() + static_cast<std::ptrdiff_t>(at + length));
                EXPECT_TRUE(seen.insert(make_key(row.key, last.data())).second);
                at += length;
            }
        }
        EXPECT_EQ(seen.size(), size(world.place(row).of(row.kind)));
    }
    const std::string text = domain_text(world.service.world.domain);
    simnode::Domain copy;
    std::string error;
    ASSERT_TRUE(parse_domain(copy, text, "saved", error)) << error;
    EXPECT_TRUE(domain_text(copy) == text) << "a saved domain comes back as another";
}

TEST(EveryKind, MixedDomainsHaveTheSizeAskedFor) {
    simnode::Counts counts;
    std::string error;
    ASSERT_TRUE(parse_counts("lu03=500,user=40,user_session=400,cpic=30,tp=100,tn_session=80,"
                             "ls_routing=60,downstream_lu=300,pool=7,redirect=20",
                             counts, error))
        << error;
    simnode::Domain domain;
    generate_domain(domain, counts);
    const simnode::Node& node = *domain.nodes.front();
    EXPECT_EQ(size(domain.file.of(Kind::user)), 50u) << "eight sessions each";
    EXPECT_EQ(size(domain.file.of(Kind::user_session)), 400u);
    EXPECT_EQ(size(domain.file.of(Kind::cpic)), 30u);
    EXPECT_EQ(size(node.of(Kind::tn_session)), 80u);
    EXPECT_EQ(size(node.of(Kind::tn_client)), 10u);
    EXPECT_EQ(size(node.of(Kind::downstream_pu)), 2u);
    EXPECT_EQ(size(node.of(Kind::downstream_lu)), 300u);
    EXPECT_GE(size(node.of(Kind::local_lu)), 8u);
}

// An entry that holds more than fits goes on in the next page, behind the last member received.
TEST(Members, EntriesGoOnInTheNextPage) {
    Everything world(24); // three owners with eight members each, and owners without
    for (const Kind kind : {Kind::user, Kind::tn_client, Kind::access_list}) {
        const KindRow& row = simnode::kind_row(kind);
        const simnode::Nested& nested = row.nested;
        for (const std::size_t room : {1u, 3u, 8u, 9u, 100u}) {
            SCOPED_TRACE(std::string(row.name) + " " + std::to_string(room));
            const auto capacity = static_cast<NB_ULONG>(row.entry_size + room * nested.element);
            std::set<std::string> owners;
            std::set<std::string> members;
            Bytes query = query_block(row, Bytes(row.entry_size), NAP_FIRST_IN_LIST, 0);
            for (int page = 0; page < 200; ++page) {
                reinterpret_cast<LIST_QUERY*>(query.data())->buffer_size = capacity;
                const Received answer =
                    world.console->client.call(query, world.console->target_of(row), capacity);
                const auto& list = *reinterpret_cast<const LIST_QUERY*>(answer.block.data());
                ASSERT_EQ(list.header.primary_rc, NAP_OK);
                Bytes last;
                Bytes last_member;
                for (std::size_t at = 0; at < answer.buffer.size(); at += last.size()) {
                    NB_USHORT length = 0;
                    std::memcpy(&length, answer.buffer.data() + at, sizeof length);
                    const auto start = answer.buffer.begin() + static_cast<std::ptrdiff_t>(at);
                    last.assign(start, start + length);
                    const std::string owner = make_key(row.key, last.data());
                    owners.insert(owner);
                    last_member.clear();
                    const auto count =
                        simnode::read_count(last.data() + nested.entry_count, nested.count_width);
                    EXPECT_EQ(length, row.entry_size + count * nested.element);
                    for (std::size_t i = 0; i < count; ++i) {
                        const auto element = last.begin() + row.entry_size +
                                             static_cast<std::ptrdiff_t>(i * nested.element);
                        last_member.assign(element, element + nested.element);
                        EXPECT_TRUE(members
                                        .insert(owner + make_key(simnode::kind_row(nested.kind).key,
                                                                 last_member.data()))
                                        .second)
                            << "received twice";
                    }
                }
                if (list.num_entries == list.total_entries && list.more == 0) {
                    break;
                }
                query = query_block(row, last, NAP_LIST_FROM_NEXT, 0);
                if (!last_member.empty()) {
                    const simnode::Piece& from = simnode::kind_row(nested.kind).key[0];
                    std::copy_n(last_member.begin() + from.offset, from.length,
                                query.begin() + nested.query_key[0].offset);
                }
            }
            EXPECT_EQ(owners.size(), size(world.place(row).of(kind)));
            EXPECT_EQ(members.size(), size(world.place(row).of(nested.kind)));
        }
    }
}

TEST(Members, PartialDeletesTakeOnlyWhatTheyName) {
    simnode::Service service;
    load_demo(service);
    Console console(service, "bnkgw01");
    simnode::Node& node = *service.world.domain.nodes.front();
    simnode::Node& file = service.world.domain.file;

    auto user = verb<DELETE_EMULATOR_USER>(NAP_DELETE_EMULATOR_USER);
    simnode::put_local(user.user_name, sizeof user.user_name, "helpdesk");
    const auto sessions = [&] {
        return children(file.of(Kind::user_session), simnode::raw(user.user_name, 32)).size();
    };
    const auto issue = [&](const auto& block, NB_HANDLE target) {
        return console.issue({reinterpret_cast<const NB_BYTE*>(&block), sizeof block}, target);
    };
    ASSERT_EQ(sessions(), 2u);
    user.num_sessions = 2;
    simnode::put_local(user.session_names[0], 8, "CORE");
    simnode::put_local(user.session_names[1], 8, "NOSUCH");
    EXPECT_FALSE(issue(user, console.file).ok());
    EXPECT_EQ(sessions(), 2u) << "all of them, or nothing";
    user.num_sessions = 11; // more than the block has room for
    EXPECT_FALSE(issue(user, console.file).ok());
    user.num_sessions = 0;
    user.session_types = NOF_SESSION_5250;
    EXPECT_TRUE(issue(user, console.file).ok());
    EXPECT_EQ(sessions(), 1u);
    user.session_types = 0;
    EXPECT_TRUE(issue(user, console.file).ok());
    EXPECT_EQ(sessions(), 0u);
    EXPECT_EQ(find(file.of(Kind::user), simnode::raw(user.user_name, 32)), nullptr);

    auto client = verb<DELETE_TN3270_ACCESS>(NAP_DELETE_TN3270_ACCESS);
    simnode::put_text(client.client.address, sizeof client.client.address, "10.20.4.17");
    client.num_sessions = 1;
    client.sessions[0].port = 992;
    const std::size_t tn_sessions = size(node.of(Kind::tn_session));
    EXPECT_TRUE(issue(client, console.node).ok());
    EXPECT_EQ(size(node.of(Kind::tn_session)), tn_sessions - 1);
    client.num_sessions = 0;
    client.delete_all = 1;
    EXPECT_TRUE(issue(client, console.node).ok());
    EXPECT_EQ(size(node.of(Kind::tn_session)), tn_sessions - 2);
    EXPECT_EQ(size(node.of(Kind::tn_client)), 3u) << "the client stays";

    // The count of a list's users stands behind its name, not in it.
    Bytes list(sizeof(DELETE_SECURITY_ACCESS_LIST) + 10);
    auto& header = *reinterpret_cast<DELETE_SECURITY_ACCESS_LIST*>(list.data());
    header.header.opcode = NAP_DELETE_SECURITY_ACCESS_LIST;
    simnode::put_local(header.list_name, sizeof header.list_name, "PAYMENTS");
    header.num_users = 1;
    simnode::put_local(list.data() + sizeof header, 10, "NIGHTOP");
    EXPECT_TRUE(console.issue(list, console.node).ok());
    EXPECT_EQ(size(node.of(Kind::access_user)), 2u);
    EXPECT_EQ(size(node.of(Kind::access_list)), 2u);

    auto profiles = verb<DELETE_USERID_PASSWORD>(NAP_DELETE_USERID_PASSWORD);
    profiles.delete_type = NAP_REMOVE_PROFILES;
    profiles.num_profiles = 1;
    simnode::put_ebcdic(profiles.user_id, sizeof profiles.user_id, "PAYSYS");
    simnode::put_ebcdic(profiles.profiles[0], sizeof profiles.profiles[0], "PAYERS");
    EXPECT_TRUE(issue(profiles, console.node).ok());
    EXPECT_FALSE(issue(profiles, console.node).ok()) << "gone already";
    EXPECT_EQ(size(node.of(Kind::userid)), 2u);

    auto network = verb<DELETE_CN>(NAP_DELETE_CN);
    simnode::put_ebcdic(network.cn_name, sizeof network.cn_name, "BANKNET.CNRHEIN");
    network.num_ports = 1;
    simnode::put_local(network.port_names[0], 8, "IPPORT");
    EXPECT_TRUE(issue(network, console.node).ok());
    const Record* cn = find(node.of(Kind::cn), simnode::raw(network.cn_name, 17));
    ASSERT_NE(cn, nullptr);
    EXPECT_EQ(cn->as<CN_ENTRY>().def.num_ports, 1);
}

TEST(Members, PoolsFollowTheirLus) {
    simnode::Service service;
    load_demo(service);
    Client client(service);
    simnode::Node& node = *service.world.domain.nodes.front();
    const auto in_pool = [&](const char* pool, const char* lu) {
        NB_NAME8E names[2];
        simnode::put_ebcdic(names[0], 8, pool);
        simnode::put_ebcdic(names[1], 8, lu);
        return find(node.of(Kind::pool), simnode::raw(names, 16)) != nullptr;
    };
    EXPECT_TRUE(in_pool("COREPOOL", "CORE05"));
    EXPECT_EQ(client.control("define pool SPARE lu=CORE05"), 0) << client.output;
    EXPECT_TRUE(in_pool("SPARE", "CORE05"));
    EXPECT_FALSE(in_pool("COREPOOL", "CORE05")) << "an LU is in one pool";
    EXPECT_EQ(client.control("define lu_0_to_3 CORE05 pool=PAYPOOL"), 0) << client.output;
    EXPECT_TRUE(in_pool("PAYPOOL", "CORE05"));
    EXPECT_EQ(client.control("list pool"), 0);
    EXPECT_NE(client.output.find("SPARE"), std::string::npos) << "an empty pool stays";
    EXPECT_EQ(client.control("state lu_0_to_3 CORE05 active"), 0);
    EXPECT_EQ(client.control("delete lu_0_to_3 CORE05"), 0) << client.output;
    EXPECT_FALSE(in_pool("PAYPOOL", "CORE05"));
    EXPECT_EQ(client.control("delete pool PAYPOOL"), 0) << client.output;
    EXPECT_EQ(client.control("show lu_0_to_3 PAY01"), 0);
    EXPECT_NE(client.output.find("pool=\n"), std::string::npos);
    EXPECT_EQ(client.control("define pool CORE06"), 1) << "the name of an LU";
}

TEST(Members, GoWithWhatTheyBelongTo) {
    simnode::Service service;
    load_demo(service);
    Client client(service);
    simnode::Node& node = *service.world.domain.nodes.front();
    ASSERT_EQ(client.control("delete local_lu CLAIMS"), 0) << client.output;
    EXPECT_EQ(size(node.of(Kind::lu_lu_password)), 1u);
    EXPECT_EQ(size(node.of(Kind::ls_routing)), 1u);
    ASSERT_EQ(client.control("delete primary_line SIGPADS"), 0) << client.output;
    EXPECT_EQ(size(node.of(Kind::primary_lu0)), 0u);
    ASSERT_EQ(client.control("stop port TRPORT"), 0) << client.output;
    ASSERT_EQ(client.control("delete port TRPORT"), 0) << client.output;
    EXPECT_EQ(size(node.of(Kind::cn_port)), 2u);
    EXPECT_EQ(size(node.of(Kind::cn)), 2u) << "the network stays, without ports";
    ASSERT_EQ(client.control("state ls HELVINS failed"), 0);
    ASSERT_EQ(client.control("stop node"), 0);
    EXPECT_EQ(size(node.of(Kind::rtp)) + size(node.of(Kind::appcip_session)), 0u);
}

TEST(Members, AdjacentNodesAndTheirLusStandInTheDirectory) {
    simnode::Service service;
    load_demo(service);
    Console console(service, "bnkgw01");
    simnode::Node& node = *service.world.domain.nodes.front();
    const std::size_t before = size(node.of(Kind::directory));
    const auto fill_lus = [](Bytes& block, std::size_t fixed) {
        auto* lus = reinterpret_cast<ADJACENT_LU*>(block.data() + fixed);
        simnode::put_ebcdic(lus[0].lu_name, sizeof lus[0].lu_name, "TELLER");
        simnode::put_ebcdic(lus[1].lu_name, sizeof lus[1].lu_name, "OTHER.ANY");
        lus[1].wildcard = 1;
    };
    Bytes define(sizeof(DEFINE_ADJACENT_NODE) + 2 * sizeof(ADJACENT_LU));
    auto& verb_block = *reinterpret_cast<DEFINE_ADJACENT_NODE*>(define.data());
    verb_block.header.opcode = NAP_DEFINE_ADJACENT_LEN_NODE;
    simnode::put_ebcdic(verb_block.cp_name, sizeof verb_block.cp_name, "NEWNET.CP1");
    verb_block.num_lus = 2;
    fill_lus(define, sizeof verb_block);
    ASSERT_TRUE(console.issue(define, console.node).ok());
    EXPECT_EQ(console.client.control("show directory NEWNET.TELLER"), 0) << "in its CP's network";
    EXPECT_NE(console.client.output.find("parent=NEWNET.CP1"), std::string::npos);
    EXPECT_EQ(console.client.control("show directory OTHER.ANY"), 0) << "qualified by itself";
    EXPECT_NE(console.client.output.find("type=wildcard-lu"), std::string::npos);

    Bytes remove(sizeof(DELETE_ADJACENT_NODE) + 2 * sizeof(ADJACENT_LU));
    auto& remove_block = *reinterpret_cast<DELETE_ADJACENT_NODE*>(remove.data());
    remove_block.header.opcode = NAP_DELETE_ADJACENT_LEN_NODE;
    std::memcpy(remove_block.cp_name, verb_block.cp_name, sizeof remove_block.cp_name);
    remove_block.num_lus = 1;
    fill_lus(remove, sizeof remove_block);
    EXPECT_TRUE(console.issue(remove, console.node).ok());
    EXPECT_EQ(size(node.of(Kind::directory)), before + 2);
    EXPECT_FALSE(console.issue(remove, console.node).ok()) << "gone already";
    remove_block.num_lus = 0;
    EXPECT_TRUE(console.issue(remove, console.node).ok());
    EXPECT_EQ(size(node.of(Kind::directory)), before);
}

// The control commands reach every kind, nested ones through their owners' verbs.
TEST(ControlCommands, DefineAndDeleteEveryKind) {
    simnode::Service service;
    load_demo(service);
    Client client(service);
    for (const char* line : {"define user newuser \"description=New user\"",
                             "define user_session DISP1 user=newuser type=3270 lu=CORE01",
                             "delete user_session \"newuser DISP1\"",
                             "delete user newuser",
                             "define cpic NEWDEST tp=PAYPOST mode=#INTER",
                             "delete cpic NEWDEST",
                             "define rje NEW1 lu1=PAYRJE num_lus=1",
                             "delete rje NEW1",
                             "define cn BANKNET.CNNEW",
                             "define cn_port BANKNET.CNNEW port=MPCPORT",
                             "delete cn_port \"BANKNET.CNNEW MPCPORT\"",
                             "delete cn BANKNET.CNNEW",
                             "define dspu_template NEWTMPL",
                             "define dslu_template 4 template=NEWTMPL last=9",
                             "delete dslu_template \"NEWTMPL 4\"",
                             "delete dspu_template NEWTMPL",
                             "define access_list NEWLIST",
                             "define access_user ANNA list=NEWLIST",
                             "delete access_user \"NEWLIST ANNA\"",
                             "delete access_list NEWLIST",
                             "define tn_client 10.1.1.1",
                             "define tn_session 23 client=10.1.1.1 lu=CORE01",
                             "define tn_session 24 \"client=\" lu=CORE01",
                             "delete tn_session \"10.1.1.1 23\"",
                             "delete tn_client 10.1.1.1",
                             "define tp_load NEWTP path=/opt/new/bin/tp type=queued",
                             "delete tp_load NEWTP",
                             "define userid NEWID",
                             "delete userid NEWID",
                             "define extra_data CORE02",
                             "delete extra_data CORE02",
                             "define lu62_timeout NIGHTRUN type=mode timeout=5",
                             "delete lu62_timeout NIGHTRUN"}) {
        EXPECT_EQ(client.control(line), 0) << line << ": " << client.output;
    }
    EXPECT_EQ(client.control("define user_session DISP1 user=nobody"), 1);
    EXPECT_EQ(client.control("show userid PAYSYS"), 0);
    EXPECT_NE(client.output.find("password=***"), std::string::npos);
    EXPECT_EQ(client.control("show tp_load PAYPOST"), 0);
    EXPECT_NE(client.output.find("path=/opt/payments/bin/post"), std::string::npos);
}

TEST(Refusals, DefinitionsThatCannotBe) {
    simnode::Service service;
    load_demo(service);
    Client client(service);
    for (const auto& [line, codes] : std::initializer_list<std::pair<const char*, const char*>>{
             {"define tp \"\"", "0x22600810"},
             {"define redirect 10.20.9.9 port=23 host=10.1.1.1 host_port=23", "0x69FF0000"},
             {"define redirect 10.8.8.8 port=80", "0x0000553F"},
             {"define redirect 10.9.9.9 port=80 host=h host_port=1 security_level=4", "0x0000553F"},
             {"define port ETHPORT dlc=TR0", "0x0E100000"},
             {"define extra_data NOSUCH", "0x35FF0000"},
             {"define primary_lu0 PAD9 line=NOLINE", "0x0E540000"},
             {"define lu_lu_password NOLU partner=N.P", "0x0E540000"},
             {"define lu62_timeout X type=9", "0x0E550000"},
             {"send 00700000000000000000000040404040404040", "0xFFFF"}}) {
        EXPECT_EQ(client.control(line), 1) << line;
        EXPECT_NE(client.output.find(codes), std::string::npos) << line << ": " << client.output;
    }
}

// Definitions that reach the configuration file go to the node that has what they name.
TEST(ConfigurationFile, FindsTheNodeThatAVerbConcerns) {
    simnode::Service service;
    std::string error;
    ASSERT_TRUE(load_domain(service.world.domain,
                            std::string(TESSALY_SOURCE_DIR) + "/data/domains/enterprise.toml",
                            error))
        << error;
    Console console(service, "zrh01");
    Console second(service, "zrh02");
    simnode::Node& zrh02 = *node_named(service.world.domain, "zrh02");

    auto association = verb<DEFINE_TN3270_ASSOCIATION>(NAP_DEFINE_TN3270_ASSOCIATION);
    simnode::put_ebcdic(association.display_lu_name, 8, "ZR2C0001");
    simnode::put_ebcdic(association.def.printer_lu_name, 8, "ZR2C0002");
    const auto bytes = [](const auto& block) {
        return std::span(reinterpret_cast<const NB_BYTE*>(&block), sizeof block);
    };
    EXPECT_TRUE(console.issue(bytes(association), console.file).ok());
    EXPECT_EQ(size(zrh02.of(Kind::association)), 1u);
    Bytes access(sizeof(DEFINE_TN3270_ACCESS) + sizeof(TN3270_SESSION));
    auto& client = *reinterpret_cast<DEFINE_TN3270_ACCESS*>(access.data());
    client.header.opcode = NAP_DEFINE_TN3270_ACCESS;
    client.client.default_record = 1;
    client.def.num_sessions = 1;
    auto& session = *reinterpret_cast<TN3270_SESSION*>(access.data() + sizeof client);
    session.port = 3023;
    simnode::put_ebcdic(session.lu_name, 8, "TESTPL"); // a pool of the second server
    EXPECT_TRUE(console.issue(access, console.file).ok());
    EXPECT_EQ(second.client.take_indications().size(), 2u);
    EXPECT_EQ(size(zrh02.of(Kind::association)), 1u);
    EXPECT_TRUE(console.client.take_indications().empty());
}

TEST(SlowVerbs, AreCarriedOutWhenTheirTimeHasCome) {
    simnode::Service service;
    load_demo(service);
    Client client(service);
    Client control(service);
    const NB_HANDLE node = client.connect("bnkgw01", {NAP_LS_INDICATION});
    ASSERT_EQ(control.control("state ls HELVINS inactive"), 0);
    ASSERT_EQ(control.control("takes NAP_START_LS 40"), 0);
    client.take_indications();
    auto start = verb<START_LS>(NAP_START_LS);
    simnode::put_local(start.ls_name, 8, "HELVINS");
    client.send(WIRE_REQUEST, {reinterpret_cast<const NB_BYTE*>(&start), sizeof start}, node, 0, 0);
    EXPECT_EQ(control.control("show ls HELVINS"), 0);
    EXPECT_NE(control.output.find("state=starting"), std::string::npos);
    const auto answer = client.next(WIRE_ANSWER);
    ASSERT_TRUE(answer.has_value());
    EXPECT_EQ(vcb_header(answer->block.data())->primary_rc, NAP_OK);
    EXPECT_EQ(control.control("show ls HELVINS"), 0);
    EXPECT_NE(control.output.find("state=active"), std::string::npos);
}

TEST(PathSwitch, TakesAnotherLinkOrSaysThatThereIsNone) {
    simnode::Service service;
    load_demo(service);
    Client client(service);
    const NB_HANDLE node = client.connect("bnkgw01");
    auto path = verb<PATH_SWITCH>(NAP_PATH_SWITCH);
    simnode::put_local(path.rtp_name, 8, "@R000001");
    EXPECT_EQ(client.call(path, node).as<VCB_HEADER>().primary_rc, NAP_OK);
    EXPECT_EQ(client.control("show rtp @R000001"), 0);
    EXPECT_EQ(client.output.find("ls=HOSTB\n"), std::string::npos) << client.output;
    simnode::put_local(path.rtp_name, 8, "@R000009");
    EXPECT_EQ(client.call(path, node).as<VCB_HEADER>().secondary_rc, NAP_NO_HPR_CONNECTION);
}

// Random bytes behind a correct opcode cost no more than an answer.
TEST(HostileBlocks, LeaveTheServiceStanding) {
    Everything world;
    Console& console = *world.console;
    std::mt19937 dice(11);
    for (unsigned opcode = 0; opcode <= 0xFFFF; ++opcode) {
        const auto code = static_cast<NB_USHORT>(opcode);
        const simnode::VerbRow* row = simnode::find_verb(code);
        if (row == nullptr || row->effect < simnode::Effect::changes) {
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
            const NB_HANDLE targets[] = {console.node, console.file, console.tp_load};
            console.issue(block, targets[round % 3]);
        }
        world.other->client.take_indications();
    }
    const Received answer =
        console.client.call(verb<QUERY_NODE_LIMITS>(NAP_QUERY_NODE_LIMITS), console.node);
    EXPECT_EQ(vcb_header(answer.block.data())->primary_rc, NAP_OK);
}

} // namespace
} // namespace simnode_test
