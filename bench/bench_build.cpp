// The build of a node's store beside a bare client of the same service: one that registers for the
// same indications, reads the same pages over the same wire and puts each entry into a boost
// intrusive tree. Both share one processor with the simulated node and run in turns; processor time
// is counted, here and in the service.
#include "common/alloc.h"
#include "nof/connectivity.h"
#include "nof/node.h"
#include "nof/nof.h"
#include "nof/pu_lu.h"
#include "nof/wire.h"
#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/verb_queue.h"
#include "store/query.h"
#include "store/store.h"

#include <boost/intrusive/avl_set.hpp>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <malloc.h>
#include <sched.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

namespace bi = boost::intrusive;

constexpr double time_limit = 1.5;   // our median time by the peer's
constexpr double growth_limit = 1.2; // time per LU at the largest size by that at the middle one
constexpr double memory_limit = 600; // bytes per LU beside its entry
constexpr std::size_t page_size = 4096;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "bench_build: %s\n", what);
    std::exit(2);
}

// ---- the simulated node ----

class Service {
public:
    explicit Service(unsigned long lus) {
        char directory[] = "/tmp/bench_build.XXXXXX";
        if (mkdtemp(directory) == nullptr) {
            fail("no directory for the socket");
        }
        directory_ = directory;
        socket_ = directory_ + "/node";
        setenv("TESSALY_NODE_SOCKET", socket_.c_str(), 1);
        int ready[2];
        if (pipe(ready) != 0) {
            fail("no pipe");
        }
        child_ = fork();
        if (child_ == 0) {
            close(ready[0]);
            const std::string generate = "lu03=" + std::to_string(lus);
            const std::string fd = std::to_string(ready[1]);
            execl(TESSALY_BUILD_DIR "/simnode/tessaly-simnode", "tessaly-simnode", "--socket",
                  socket_.c_str(), "--generate", generate.c_str(), "--ready-fd", fd.c_str(),
                  static_cast<char*>(nullptr));
            _exit(127);
        }
        close(ready[1]);
        char byte;
        if (read(ready[0], &byte, 1) != 1) {
            fail("the simulated node does not start");
        }
        close(ready[0]);
    }
    ~Service() {
        kill(child_, SIGTERM);
        waitpid(child_, nullptr, 0);
        unlink(socket_.c_str());
        rmdir(directory_.c_str());
    }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    const std::string& socket() const { return socket_; }

    // Processor time that some work takes here and in the service; both wait for each other only.
    double seconds(auto&& work) const {
        const double start = used();
        work();
        return used() - start;
    }

private:
    double used() const {
        clockid_t service;
        clock_getcpuclockid(child_, &service);
        double sum = 0;
        for (const clockid_t clock : {service, clockid_t{CLOCK_PROCESS_CPUTIME_ID}}) {
            timespec time;
            clock_gettime(clock, &time);
            sum += static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
        }
        return sum;
    }

    std::string directory_;
    std::string socket_;
    pid_t child_;
};

// ---- the store ----

bool built;

std::size_t allocated() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

struct Built {
    double seconds;
    std::size_t bytes; // allocated for the store
    std::size_t lus;
};

Built build_store(const Service& service, XtAppContext app) {
    gvga_exit_code = 0;
    gvga_appcontext = app;
    gvga_querybuf_size = page_size;
    gvga_metrics.item_height = 16;
    vpm_asm_use_xt_sched(app, XtAppAddInput, XtRemoveInput);
    vpm_set_io_limit(10);
    nba_hm_initialise();
    vga_init_verb_queues();
    gvga_store_hooks.system_built = [] { built = true; };
    const std::size_t before = allocated();
    gvga_system = vga_init_vga_system();
    built = false;
    Built result{};
    result.seconds = service.seconds([&] {
        vga_start_build_system();
        while (!built && gvga_exit_code == 0) {
            XtAppProcessEvent(app, XtIMAll);
        }
    });
    if (gvga_exit_code != 0) {
        fail("the build failed");
    }
    result.bytes = allocated() - before;
    for (auto* lu = ntl_avl_first<vga_lu03>(gvga_system->lu_tree); lu != nullptr;
         lu = static_cast<vga_lu03*>(ntl_avl_next(&lu->system_node))) {
        ++result.lus;
    }
    vga_destroy_data_structures();
    nof_terminate();
    vga_free_verb_queues();
    return result;
}

// ---- the bare client ----

using Hook = bi::avl_set_member_hook<bi::link_mode<bi::normal_link>, bi::optimize_size<false>>;

struct Record {
    Hook link;
    NB_NAME8E name;
    std::vector<NB_BYTE> entry;
};
struct LuRecord {
    Hook link;
    LU03_ENTRY entry;
};
template <typename T, std::size_t Offset> struct Less {
    static int compare(const void* a, const void* b) { return std::memcmp(a, b, 8); }
    bool operator()(const T& a, const T& b) const { return compare(name(a), name(b)) < 0; }
    static const NB_BYTE* name(const T& record) {
        return reinterpret_cast<const NB_BYTE*>(&record) + Offset;
    }
};
using RecordTree =
    bi::avl_set<Record, bi::member_hook<Record, Hook, &Record::link>,
                bi::compare<Less<Record, offsetof(Record, name)>>, bi::constant_time_size<false>>;
using LuTree = bi::avl_set<
    LuRecord, bi::member_hook<LuRecord, Hook, &LuRecord::link>,
    bi::compare<Less<LuRecord, offsetof(LuRecord, entry) + offsetof(LU03_ENTRY, lu_name)>>,
    bi::constant_time_size<false>>;

class Client {
public:
    explicit Client(const std::string& path) {
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
    }
    ~Client() { close(socket_); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    // One verb; block gets the answer, entries what the buffer holds.
    void call(NB_HANDLE target, void* block, std::size_t size, std::size_t capacity) {
        send(WIRE_REQUEST, target, block, size, capacity);
        receive();
        std::memcpy(block, frame_.data() + sizeof(WIRE_FRAME), size);
        if (vcb_header(block)->primary_rc != NAP_OK) {
            fail("the bare client is refused");
        }
    }
    const NB_BYTE* buffer(std::size_t block_size) const {
        return frame_.data() + sizeof(WIRE_FRAME) + block_size;
    }

private:
    void send(WIRE_KIND kind, NB_HANDLE target, const void* block, std::size_t size,
              std::size_t capacity) {
        std::vector<NB_BYTE> out(sizeof(WIRE_FRAME) + size);
        WIRE_FRAME header{};
        header.length = static_cast<NB_ULONG>(out.size());
        header.kind = kind;
        header.version = WIRE_VERSION;
        header.request_id = kind == WIRE_HELLO ? 0 : ++last_id_;
        header.target = target;
        header.block_length = static_cast<NB_ULONG>(size);
        header.buffer_capacity = static_cast<NB_ULONG>(capacity);
        std::memcpy(out.data(), &header, sizeof header);
        std::memcpy(out.data() + sizeof header, block, size);
        if (write(socket_, out.data(), out.size()) != static_cast<ssize_t>(out.size())) {
            fail("the bare client cannot write");
        }
    }
    // The next answer or hello; other frames are passed over.
    void receive() {
        WIRE_FRAME header;
        do {
            frame_.resize(sizeof header);
            read_fully(0);
            std::memcpy(&header, frame_.data(), sizeof header);
            frame_.resize(header.length);
            read_fully(sizeof header);
        } while (header.kind != WIRE_ANSWER && header.kind != WIRE_HELLO);
    }
    void read_fully(std::size_t from) {
        while (from < frame_.size()) {
            const ssize_t count = read(socket_, frame_.data() + from, frame_.size() - from);
            if (count <= 0) {
                fail("the bare client lost its service");
            }
            from += static_cast<std::size_t>(count);
        }
    }

    int socket_ = -1;
    NB_ULONG last_id_ = 0;
    std::vector<NB_BYTE> frame_;
};

// Reads a list to its end, page by page, and hands each entry on. Keys are names of 8 bytes.
template <typename Query>
void read_list(Client& client, NB_HANDLE target, NB_USHORT opcode, Query query,
               std::size_t query_key, std::size_t entry_key, auto&& take) {
    query.list.header.opcode = opcode;
    query.list.list_options = NAP_LEVEL_DETAIL | NAP_FIRST_IN_LIST;
    query.list.buffer_size = page_size;
    for (;;) {
        Query answer = query;
        client.call(target, &answer, sizeof answer, page_size);
        const NB_BYTE* entry = client.buffer(sizeof answer);
        const NB_BYTE* last = nullptr;
        for (NB_USHORT i = 0; i < answer.list.num_entries; ++i) {
            NB_USHORT length;
            std::memcpy(&length, entry, sizeof length);
            take(entry, length);
            last = entry;
            entry += length;
        }
        if (last == nullptr || answer.list.num_entries >= answer.list.total_entries) {
            return;
        }
        std::memcpy(reinterpret_cast<NB_BYTE*>(&query) + query_key, last + entry_key, 8);
        query.list.list_options = NAP_LEVEL_DETAIL | NAP_LIST_FROM_NEXT;
    }
}

// What a client registers for that stays up to date, as the build does before it lists.
constexpr NB_USHORT sinks[] = {
    NAP_CONFIG_INDICATION, NAP_DLC_INDICATION,       NAP_PORT_INDICATION,      NAP_LS_INDICATION,
    NAP_PU_INDICATION,     NAP_LOCAL_LU_INDICATION,  NAP_LU_0_TO_3_INDICATION, NAP_PLU_INDICATION,
    NAP_MODE_INDICATION,   NAP_DIRECTORY_INDICATION,
};
// The lists that the build of such a node finds empty.
constexpr VGA_QUERY empty_lists[] = {
    VGA_QUERY_CN,         VGA_QUERY_LU62,       VGA_QUERY_MODE_DEF,     VGA_QUERY_DIR,
    VGA_QUERY_PLU_DEF,    VGA_QUERY_LS_ROUTING, VGA_QUERY_LU62_TIMEOUT, VGA_QUERY_COS,
    VGA_QUERY_TP_DEF,     VGA_QUERY_USERID,     VGA_QUERY_ACCESS_LIST,  VGA_QUERY_POOL,
    VGA_QUERY_EXTRA_DATA, VGA_QUERY_DLC_TRACE,
};

struct Read {
    double seconds;
    std::size_t lus;
};

Read read_barely(const Service& service) {
    RecordTree records[4];
    LuTree lus;
    Read result{};
    result.seconds = service.seconds([&] {
        Client client(service.socket());
        CONNECT_NODE connection{};
        connection.header.opcode = NAP_CONNECT_NODE;
        QUERY_NODE_ALL nodes{};
        nodes.list.header.opcode = NAP_QUERY_NODE_ALL;
        nodes.list.list_options = NAP_LEVEL_DETAIL | NAP_FIRST_IN_LIST;
        nodes.list.buffer_size = page_size;
        client.call(0, &nodes, sizeof nodes, page_size);
        std::memcpy(connection.node_name,
                    client.buffer(sizeof nodes) + offsetof(NODE_ALL_ENTRY, node_name),
                    sizeof connection.node_name);
        client.call(0, &connection, sizeof connection, 0);
        const NB_HANDLE node = connection.node_handle;
        for (const NB_USHORT indication : sinks) {
            REGISTER_INDICATION_SINK block{};
            block.header.opcode = NAP_REGISTER_INDICATION_SINK;
            block.indication_opcode = indication;
            client.call(node, &block, sizeof block, 0);
        }
        const auto keep = [](RecordTree& tree, std::size_t key) {
            return [&tree, key](const NB_BYTE* entry, std::size_t length) {
                auto* record = new Record{};
                std::memcpy(record->name, entry + key, sizeof record->name);
                record->entry.assign(entry, entry + length);
                tree.insert(*record);
            };
        };
        constexpr std::size_t key = sizeof(LIST_QUERY);
        read_list(client, node, NAP_QUERY_DLC, QUERY_DLC{}, key, offsetof(DLC_ENTRY, dlc_name),
                  keep(records[0], offsetof(DLC_ENTRY, dlc_name)));
        read_list(client, node, NAP_QUERY_PORT, QUERY_PORT{}, key, offsetof(PORT_ENTRY, port_name),
                  keep(records[1], offsetof(PORT_ENTRY, port_name)));
        read_list(client, node, NAP_QUERY_LS, QUERY_LS{}, key, offsetof(LS_ENTRY, ls_name),
                  keep(records[2], offsetof(LS_ENTRY, ls_name)));
        read_list(client, node, NAP_QUERY_PU, QUERY_PU{}, key, offsetof(PU_ENTRY, pu_name),
                  keep(records[3], offsetof(PU_ENTRY, pu_name)));
        // A list of nothing is a page, too.
        for (const VGA_QUERY query : empty_lists) {
            const vga_query_row& row = vga_query_row_of(query);
            std::vector<NB_BYTE> block(row.block_size);
            auto* list = reinterpret_cast<LIST_QUERY*>(block.data());
            list->header.opcode = row.opcode;
            list->list_options = row.level | NAP_FIRST_IN_LIST;
            list->buffer_size = page_size;
            client.call(node, block.data(), block.size(), page_size);
        }
        for (const Record& pu : records[3]) {
            QUERY_LU_0_TO_3 query{};
            std::memcpy(query.pu_name, pu.name, sizeof query.pu_name);
            read_list(client, node, NAP_QUERY_LU_0_TO_3, query, key, offsetof(LU03_ENTRY, lu_name),
                      [&](const NB_BYTE* entry, std::size_t) {
                          auto* record = new LuRecord{};
                          std::memcpy(&record->entry, entry, sizeof record->entry);
                          lus.insert(*record);
                      });
        }
    });
    result.lus = lus.size();
    lus.clear_and_dispose([](LuRecord* record) { delete record; });
    for (RecordTree& tree : records) {
        tree.clear_and_dispose([](Record* record) { delete record; });
    }
    return result;
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

bool report(const std::string& name, double value, double limit, const char* format) {
    const bool ok = value <= limit;
    std::printf("bench_build %s ", name.c_str());
    std::printf(format, value, limit);
    std::printf(" %s\n", ok ? "ok" : "over");
    std::fflush(stdout);
    return ok;
}

void pin_to_one_processor() {
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof allowed, &allowed);
    int processor = 0;
    for (int i = 0; i < CPU_SETSIZE; ++i) {
        if (CPU_ISSET(i, &allowed)) {
            processor = i; // the last one: the first serves interrupts on many machines
        }
    }
    CPU_ZERO(&allowed);
    CPU_SET(processor, &allowed);
    if (sched_setaffinity(0, sizeof allowed, &allowed) != 0) {
        fail("cannot be pinned to one processor");
    }
}

struct Size {
    unsigned long lus;
    int turns;
};
constexpr Size sizes[] = {{1'000, 31}, {10'000, 11}, {100'000, 5}};

} // namespace

int main() {
    pin_to_one_processor();
    XtToolkitInitialize();
    XtAppContext app = XtCreateApplicationContext();
    bool ok = true;
    double per_lu_before = 0;
    for (const Size& size : sizes) {
        const Service service(size.lus);
        std::vector<double> ours;
        std::vector<double> peer;
        double bytes_per_lu = 0;
        for (int turn = 0; turn < size.turns; ++turn) {
            const Read read = read_barely(service);
            const Built store = build_store(service, app);
            if (read.lus != size.lus || store.lus != size.lus) {
                fail("not every LU arrived");
            }
            peer.push_back(read.seconds);
            ours.push_back(store.seconds);
            bytes_per_lu = static_cast<double>(store.bytes) / static_cast<double>(store.lus);
        }
        const std::string count = std::to_string(size.lus);
        const double per_lu = median(ours) / static_cast<double>(size.lus);
        ok &= report("lu03/" + count, median(ours) / median(peer), time_limit, "%.2f %.2f");
        if (size.lus > 1'000) { // the fixed part of the store weighs on the smallest
            ok &= report("memory/" + count, bytes_per_lu - sizeof(LU03_ENTRY), memory_limit,
                         "%.0f %.0f");
        }
        if (size.lus == 100'000) {
            ok &= report("growth/" + count, per_lu / per_lu_before, growth_limit, "%.2f %.2f");
        }
        per_lu_before = per_lu;
    }
    return ok ? 0 : 1;
}
