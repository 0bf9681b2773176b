#include "bare_client.h"
#include "measure.h"

#include "nof/extra_data.h"
#include "nof/lu62.h"
#include "nof/node.h"
#include "nof/nof.h"
#include "nof/opcodes.h"
#include "nof/pu_lu.h"
#include "nof/tn3270.h"
#include "nof/trace.h"
#include "nof/wire.h"
#include "store/query.h"
#include "store/store.h"

#include <boost/intrusive/avl_set.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace bench {
namespace {

namespace bi = boost::intrusive;

// ---- the tree of a list ----

using Hook = bi::avl_set_base_hook<bi::link_mode<bi::normal_link>, bi::optimize_size<false>>;

// An entry lies behind its record.
struct Record : Hook {
    const Record* owner; // the record whose list it is in; null: the node's or the domain's
    const NB_BYTE* entry() const { return reinterpret_cast<const NB_BYTE*>(this + 1); }
};

struct Less {
    const vga_query_row* row = nullptr;
    bool operator()(const Record& a, const Record& b) const {
        for (const vga_piece& piece : {row->key, row->key2}) {
            const int order =
                std::memcmp(a.entry() + piece.entry, b.entry() + piece.entry, piece.length);
            if (order != 0) {
                return order < 0;
            }
        }
        return a.owner < b.owner;
    }
};

using Tree = bi::avl_set<Record, bi::compare<Less>, bi::constant_time_size<false>>;

// False: the tree has the key already, as with the further parts of an entry that fills pages.
bool keep(Tree& tree, const Record* owner, const NB_BYTE* entry, std::size_t length) {
    auto* record = new (std::malloc(sizeof(Record) + length)) Record{};
    std::memcpy(static_cast<void*>(record + 1), entry, length);
    record->owner = owner;
    if (!tree.insert(*record).second) {
        std::free(record);
        return false;
    }
    return true;
}

// ---- the wire ----

class Connection {
public:
    explicit Connection(const std::string& path) {
        socket_ = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        if (connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
            fail("the bare client finds no service");
        }
        const WIRE_HELLO_BLOCK hello{WIRE_MAGIC, 0, 0, {}};
        send(WIRE_HELLO, 0, &hello, sizeof hello, 0);
        receive();
        WIRE_HELLO_BLOCK reply;
        std::memcpy(&reply, answer(), sizeof reply);
        client_server_ = reply.client_server != 0;
    }
    ~Connection() { close(socket_); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool client_server() const { return client_server_; }

    // One verb; block gets the answer. False: refused.
    bool call(NB_HANDLE target, void* block, std::size_t size, std::size_t capacity = 0) {
        send(WIRE_REQUEST, target, block, size, capacity);
        receive();
        std::memcpy(block, answer(), size);
        return vcb_header(block)->primary_rc == NAP_OK;
    }
    // What the buffer holds after a verb with a block of a size.
    const NB_BYTE* buffer(std::size_t block_size) const { return answer() + block_size; }

private:
    const NB_BYTE* answer() const { return in_.data() + begin_ + sizeof(WIRE_FRAME); }

    void send(WIRE_KIND kind, NB_HANDLE target, const void* block, std::size_t size,
              std::size_t capacity) {
        out_.resize(sizeof(WIRE_FRAME) + size);
        WIRE_FRAME header{};
        header.length = static_cast<NB_ULONG>(out_.size());
        header.kind = kind;
        header.version = WIRE_VERSION;
        header.request_id = kind == WIRE_HELLO ? 0 : ++last_id_;
        header.target = target;
        header.block_length = static_cast<NB_ULONG>(size);
        header.buffer_capacity = static_cast<NB_ULONG>(capacity);
        std::memcpy(out_.data(), &header, sizeof header);
        std::memcpy(out_.data() + sizeof header, block, size);
        if (write(socket_, out_.data(), out_.size()) != static_cast<ssize_t>(out_.size())) {
            fail("the bare client cannot write");
        }
    }
    // Has the next answer or hello at begin_; other frames are passed over.
    void receive() {
        WIRE_FRAME header;
        do {
            begin_ = next_;
            need(sizeof header);
            std::memcpy(&header, in_.data() + begin_, sizeof header);
            need(header.length);
            next_ = begin_ + header.length;
        } while (header.kind != WIRE_ANSWER && header.kind != WIRE_HELLO);
    }
    // Reads until so many bytes are there behind begin_.
    void need(std::size_t size) {
        if (end_ == begin_) {
            begin_ = end_ = 0;
        }
        if (begin_ + size > in_.size()) {
            std::memmove(in_.data(), in_.data() + begin_, end_ - begin_);
            end_ -= begin_;
            begin_ = 0;
            in_.resize(std::max(in_.size(), size));
        }
        while (end_ - begin_ < size) {
            const ssize_t count = read(socket_, in_.data() + end_, in_.size() - end_);
            if (count <= 0) {
                fail("the bare client lost its service");
            }
            end_ += static_cast<std::size_t>(count);
        }
    }

    int socket_ = -1;
    bool client_server_ = false;
    NB_ULONG last_id_ = 0;
    std::vector<NB_BYTE> out_;
    std::vector<NB_BYTE> in_ = std::vector<NB_BYTE>(16 * page_size);
    std::size_t begin_ = 0; // of the answer
    std::size_t next_ = 0;  // the frame behind it
    std::size_t end_ = 0;   // of what was received
};

// ---- lists ----

struct Client {
    explicit Client(const std::string& socket) : connection(socket) {}
    ~Client() {
        for (Tree& tree : trees) {
            tree.clear_and_dispose([](Record* record) { std::free(record); });
        }
    }
    Connection connection;
    std::vector<Tree> trees; // one per list query and node
    Read result;
};

// Where the blocks of lists below a PU, LU or connection network have its name, and where that
// stands in the entry of the owner.
struct OwnerName {
    vga_owner owner;
    vga_piece piece;
};
constexpr NB_USHORT KEY = sizeof(LIST_QUERY);
constexpr OwnerName owner_names[] = {
    {vga_owner::pu, {KEY + 8, offsetof(PU_ENTRY, pu_name), 8}},
    {vga_owner::lu62, {KEY, offsetof(LU62_ENTRY, lu_name), 8}},
    {vga_owner::cn, {KEY, offsetof(CN_ENTRY, cn_name), sizeof(NB_FQNAME)}},
};

void copy(NB_BYTE* block, const NB_BYTE* entry, const vga_piece& piece) {
    std::memcpy(block + piece.block, entry + piece.entry, piece.length);
}
NB_USHORT length_of(const NB_BYTE* entry) {
    NB_USHORT length;
    std::memcpy(&length, entry, sizeof length);
    return length;
}
void copy_nested(NB_BYTE* block, const NB_BYTE* entry, const vga_nested_piece& piece) {
    const NB_BYTE* last = nullptr;
    for (std::size_t at = piece.fixed; at < length_of(entry); at += length_of(entry + at)) {
        last = entry + at;
    }
    if (last != nullptr) {
        std::memcpy(block + piece.block, last + piece.item, piece.length);
    }
}

// Reads a list to its end, page by page. owner: the record whose list it is, or null.
void read_list(Client& client, Tree& tree, VGA_QUERY kind, NB_HANDLE target,
               const Record* owner = nullptr) {
    const vga_query_row& row = vga_query_row_of(kind);
    std::array<NB_BYTE, 1024> query{};
    std::array<NB_BYTE, 1024> reply;
    auto& list = reinterpret_cast<LIST_QUERY&>(query);
    list.header.opcode = row.opcode;
    list.buffer_size = page_size;
    list.list_options = row.level | NAP_FIRST_IN_LIST;
    if (row.resource_kind != 0) {
        reinterpret_cast<QUERY_EXTRA_DATA&>(query).resource_kind = row.resource_kind;
    }
    for (const OwnerName& name : owner_names) {
        if (owner != nullptr && name.owner == row.owner) {
            copy(query.data(), owner->entry(), name.piece);
        }
    }
    for (bool more = true; more;) {
        std::memcpy(reply.data(), query.data(), row.block_size);
        ++client.result.pages;
        if (!client.connection.call(target, reply.data(), row.block_size, page_size)) {
            if (vcb_header(reply.data())->primary_rc == NAP_NO_ENTRIES) {
                return;
            }
            fail("the bare client is refused a list");
        }
        const auto& got = reinterpret_cast<const LIST_QUERY&>(reply);
        const NB_BYTE* entry = client.connection.buffer(row.block_size);
        const NB_BYTE* last = nullptr;
        for (NB_USHORT i = 0; i < got.num_entries; ++i) {
            client.result.entries += keep(tree, owner, entry, length_of(entry));
            last = entry;
            entry += length_of(entry);
        }
        more = last != nullptr &&
               (got.num_entries < got.total_entries || (row.nested.length != 0 && got.more == 1));
        if (more) {
            copy(query.data(), last, row.key);
            copy(query.data(), last, row.key2);
            copy_nested(query.data(), last, row.nested);
            list.list_options = row.level | NAP_LIST_FROM_NEXT;
        }
    }
}

// A tree for every list.
std::span<Tree> new_trees(Client& client) {
    for (int query = 0; query < VGA_QUERY_COUNT; ++query) {
        client.trees.emplace_back(Less{&vga_query_row_of(static_cast<VGA_QUERY>(query))});
    }
    return std::span(client.trees).last(VGA_QUERY_COUNT);
}

// ---- verbs besides the lists ----

template <typename Block> Block new_block(NB_USHORT opcode) {
    Block block{};
    vcb_header(&block)->opcode = opcode;
    return block;
}

void call(Client& client, NB_HANDLE target, auto& block) {
    if (!client.connection.call(target, &block, sizeof block)) {
        fail("the bare client is refused");
    }
}
void set_mode(Client& client, NB_HANDLE target) {
    auto block = new_block<SET_PROCESSING_MODE>(NAP_SET_PROCESSING_MODE);
    block.mode = NOF_PROCESSING_MODE;
    call(client, target, block);
}
void register_sink(Client& client, NB_HANDLE target, NB_USHORT indication) {
    auto block = new_block<REGISTER_INDICATION_SINK>(NAP_REGISTER_INDICATION_SINK);
    block.indication_opcode = indication;
    call(client, target, block);
}
NB_HANDLE open_file(Client& client, NOF_FILE_ROLE role, NB_HANDLE target) {
    auto block = new_block<OPEN_FILE>(NAP_OPEN_FILE);
    block.file_info.requested_role = role;
    call(client, target, block);
    return block.file_handle;
}
template <typename Block> void read_setting(Client& client, NB_HANDLE target, NB_USHORT opcode) {
    auto block = new_block<Block>(opcode);
    call(client, target, block);
}

// ---- one node ----

// Whether the build lists a kind of a node.
bool is_listed(VGA_QUERY query, const vga_node& node, std::span<const Tree> trees) {
    switch (query) {
    case VGA_QUERY_DSPU_TEMPLATE:
    case VGA_QUERY_DOWN_PU:
        return vga_node_has_dspu(&node);
    case VGA_QUERY_CN:
        return vga_node_lists_cns(&node);
    case VGA_QUERY_DLUR_PU:
        return vga_node_has_dlur(&node);
    case VGA_QUERY_EXTRA_DATA:
        return !trees[VGA_QUERY_PU].empty() || !trees[VGA_QUERY_DLUR_PU].empty();
    case VGA_QUERY_COS_NODE_ROW:
    case VGA_QUERY_COS_TG_ROW:
        return !trees[VGA_QUERY_COS].empty();
    case VGA_QUERY_TN_ACCESS:
    case VGA_QUERY_TN_ASSOC:
    case VGA_QUERY_TN_REDIRECT:
        return vga_node_has_tn_server(&node);
    case VGA_QUERY_PRIMARY_LINE: // these are read when their windows open
    case VGA_QUERY_PRIMARY_LU0:
    case VGA_QUERY_APPCIP:
    case VGA_QUERY_RTP_CONN:
        return false;
    default:
        return true;
    }
}

// The lists of one local LU 6.2.
void read_lu62(Client& client, std::span<Tree> trees, NB_HANDLE handle, const Record& lu) {
    const bool dependent = reinterpret_cast<const LU62_ENTRY*>(lu.entry())->def.nau_address != 0;
    const std::size_t before = client.result.entries;
    if (!dependent) {
        read_list(client, trees[VGA_QUERY_PLU], VGA_QUERY_PLU, handle, &lu);
    }
    if (dependent || client.result.entries != before) {
        read_list(client, trees[VGA_QUERY_MODE], VGA_QUERY_MODE, handle, &lu);
    }
    read_list(client, trees[VGA_QUERY_SL_SEC], VGA_QUERY_SL_SEC, handle, &lu);
}

void read_lists(Client& client, const vga_node& node, NB_HANDLE handle) {
    const std::span<Tree> trees = new_trees(client);
    for (int i = 0; i < VGA_QUERY_COUNT; ++i) { // owners come before what is below them
        const auto query = static_cast<VGA_QUERY>(i);
        const vga_query_row& row = vga_query_row_of(query);
        if (row.owner == vga_owner::node && is_listed(query, node, trees)) {
            read_list(client, trees[i], query, handle);
        }
    }
    const auto below = [&](VGA_QUERY owners, VGA_QUERY query) {
        for (const Record& owner : trees[owners]) {
            read_list(client, trees[query], query, handle, &owner);
        }
    };
    below(VGA_QUERY_CN, VGA_QUERY_CN_PORT);
    below(VGA_QUERY_PU, VGA_QUERY_LU03);
    below(VGA_QUERY_DLUR_PU, VGA_QUERY_LU03);
    below(VGA_QUERY_DOWN_PU, VGA_QUERY_DOWN_LU);
    for (const Record& lu : trees[VGA_QUERY_LU62]) {
        read_lu62(client, trees, handle, lu);
    }
    const NB_HANDLE file = open_file(client, NAP_TP_LOAD_INFO, handle);
    register_sink(client, file, NAP_CONFIG_INDICATION);
    set_mode(client, file);
    read_list(client, trees[VGA_QUERY_TP_LOAD], VGA_QUERY_TP_LOAD, file);
}

void read_settings(Client& client, const vga_node& node, NB_HANDLE handle) {
    read_setting<QUERY_DEFAULTS>(client, handle, NAP_QUERY_DEFAULTS);
    read_setting<QUERY_TRACE_TYPE>(client, handle, NAP_QUERY_TRACE_TYPE);
    if (client.connection.client_server()) {
        read_setting<QUERY_CS_TRACE>(client, handle, NAP_QUERY_CS_TRACE);
    }
    if (vga_node_has_back_level_trace(&node)) {
        read_setting<QUERY_BCK_CS_TRACE>(client, handle, NAP_QUERY_BCK_CS_TRACE);
    }
    if (vga_node_has_tn_server(&node)) {
        read_setting<QUERY_TN3270_DEFAULTS>(client, handle, NAP_QUERY_TN3270_DEFAULTS);
        auto ssl = new_block<QUERY_TN3270_SSL_LDAP>(NAP_QUERY_TN3270_SSL_LDAP);
        ssl.buffer_size = sizeof(TN3270_SSL_LDAP_SETTINGS);
        client.connection.call(handle, &ssl, sizeof ssl, ssl.buffer_size);
        auto logon = new_block<QUERY_TN3270_EXPRESS_LOGON>(NAP_QUERY_TN3270_EXPRESS_LOGON);
        client.connection.call(handle, &logon, sizeof logon); // may never have been configured
        read_setting<QUERY_TN_SERVER_TRACE>(client, handle, NAP_QUERY_TN_SERVER_TRACE);
    }
}

void register_sinks(Client& client, const vga_node& node, NB_HANDLE handle) {
    for (const NB_USHORT indication :
         {NAP_DLC_INDICATION, NAP_PORT_INDICATION, NAP_LS_INDICATION, NAP_PU_INDICATION,
          NAP_LOCAL_LU_INDICATION, NAP_LU_0_TO_3_INDICATION, NAP_PLU_INDICATION,
          NAP_MODE_INDICATION, NAP_DIRECTORY_INDICATION}) {
        register_sink(client, handle, indication);
    }
    if (vga_node_has_dspu(&node)) {
        register_sink(client, handle, NAP_DOWNSTREAM_PU_INDICATION);
        register_sink(client, handle, NAP_DOWNSTREAM_LU_INDICATION);
    }
    if (vga_node_has_dlur(&node)) {
        register_sink(client, handle, NAP_DLUR_PU_INDICATION);
    }
}

using Name = std::array<char, sizeof(NB_NODE_NAME)>;

void read_node(Client& client, const Name& name, const Name& logger) {
    auto connection = new_block<CONNECT_NODE>(NAP_CONNECT_NODE);
    std::memcpy(connection.node_name, name.data(), name.size());
    call(client, 0, connection);
    const NB_HANDLE handle = connection.node_handle;
    register_sink(client, handle, NAP_CONFIG_INDICATION);
    set_mode(client, handle);
    auto limits = new_block<QUERY_NODE_LIMITS>(NAP_QUERY_NODE_LIMITS);
    std::memcpy(limits.node_name, name.data(), name.size());
    call(client, handle, limits);
    if (name == logger) {
        read_setting<QUERY_CENTRAL_LOGGING>(client, handle, NAP_QUERY_CENTRAL_LOGGING);
        read_setting<QUERY_GLOBAL_LOG_TYPE>(client, handle, NAP_QUERY_GLOBAL_LOG_TYPE);
    }
    const auto node = std::make_unique<vga_node>(); // for what the store tells from a reply
    node->vcb.header.opcode = NAP_QUERY_NODE;
    call(client, handle, node->vcb);
    register_sinks(client, *node, handle);
    read_settings(client, *node, handle);
    read_lists(client, *node, handle);
}

// ---- the domain ----

struct Domain {
    std::vector<Name> nodes;
    Name logger;
};

Domain read_files(Client& client) {
    const NB_HANDLE file = open_file(client, NOF_FILE_CONFIGURATION, 0);
    set_mode(client, file);
    auto logger = new_block<QUERY_CENTRAL_LOGGER>(NAP_QUERY_CENTRAL_LOGGER);
    call(client, 0, logger);
    register_sink(client, 0, NAP_SERVER_INDICATION);
    register_sink(client, file, NAP_CONFIG_INDICATION);
    const std::span<Tree> trees = new_trees(client);
    read_list(client, trees[VGA_QUERY_USER], VGA_QUERY_USER, file);
    read_list(client, trees[VGA_QUERY_CPIC], VGA_QUERY_CPIC, file);
    read_list(client, trees[VGA_QUERY_RJE], VGA_QUERY_RJE, file);
    read_list(client, trees[VGA_QUERY_NODE_LIST], VGA_QUERY_NODE_LIST, 0);
    if (client.connection.client_server()) {
        const NB_HANDLE net = open_file(client, NOF_FILE_SNA_NET, 0);
        set_mode(client, net);
        register_sink(client, net, NAP_SNA_NET_INDICATION);
        read_list(client, trees[VGA_QUERY_SNA_NET_LIST], VGA_QUERY_SNA_NET_LIST, net);
    }
    Domain domain;
    std::memcpy(domain.logger.data(), logger.node_name, domain.logger.size());
    for (const Record& node : trees[VGA_QUERY_NODE_LIST]) {
        const auto* entry = reinterpret_cast<const NODE_ALL_ENTRY*>(node.entry());
        std::memcpy(domain.nodes.emplace_back().data(), entry->node_name, sizeof(NB_NODE_NAME));
    }
    return domain;
}

} // namespace

Read read_domain(const Service& service, unsigned clients) {
    std::vector<std::unique_ptr<Client>> all;
    Read sum;
    sum.seconds = service.seconds([&] {
        for (unsigned i = 0; i < clients; ++i) {
            all.push_back(std::make_unique<Client>(service.socket()));
        }
        const Domain domain = read_files(*all[0]);
        const auto read_share = [&](unsigned first) {
            for (std::size_t node = first; node < domain.nodes.size(); node += clients) {
                read_node(*all[first], domain.nodes[node], domain.logger);
            }
        };
        std::vector<std::jthread> others;
        for (unsigned i = 1; i < clients; ++i) {
            others.emplace_back(read_share, i);
        }
        read_share(0);
    });
    for (const auto& client : all) {
        sum.entries += client->result.entries;
        sum.pages += client->result.pages;
    }
    return sum;
}

} // namespace bench
