// The build of a node's store beside a bare client of the same service: one that reads the same pages
// over the same wire and puts each entry into a boost intrusive tree. Both share one processor with
// the simulated node and run in turns.
#include "common/alloc.h"
#include "nof/connectivity.h"
#include "nof/node.h"
#include "nof/nof.h"
#include "nof/pu_lu.h"
#include "nof/wire.h"
#include "shell/globals.h"
#include "shell/verb_queue.h"
#include "store/build.h"
#include "store/store.h"

#include <boost/intrusive/avl_set.hpp>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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

constexpr double time_limit = 1.5;     // our median time by the peer's
constexpr double growth_limit = 1.2;   // time per LU at the largest size by that at the middle one
constexpr double memory_limit = 600;   // bytes per LU beside its entry
constexpr std::size_t page_size = 4096;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "bench_build: %s\n", what);
    std::exit(2);
}

double seconds(auto&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
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

private:
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

Built build_store(XtAppContext app) {
    gvga_exit_code = 0;
    gvga_appcontext = app;
    gvga_querybuf_size = page_size;
    vpm_asm_use_xt_sched(app, XtAppAddInput, XtRemoveInput);
    vpm_set_io_limit(10);
    nba_hm_initialise();
    vga_init_verb_queues();
    gvga_store_hooks.system_built = [] { built = true; };
    const std::size_t before = allocated();
    gvga_system = vga_init_vga_system();
    built = false;
    Built result{};
    result.seconds = seconds([&] {
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

// Reads a list to its end, page by page, and hands each entry on.
template <typename Query>
void read_list(Client& client, NB_HANDLE target, NB_USHORT opcode, Query query, NB_BYTE* key,
               std::size_t entry_key, auto&& take) {
    query.list.header.opcode = opcode;
    query.list.list_options = NAP_LEVEL_DETAIL | NAP_FIRST_IN_LIST;
    for (;;) {
        query.list.header.primary_rc = 0;
        query.list.buffer_size = page_size;
        query.list.num_entries = 0;
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
        std::memcpy(reinterpret_cast<NB_BYTE*>(&query) + (key - reinterpret_cast<NB_BYTE*>(&query)),
                    last + entry_key, 8);
        query.list.list_options = NAP_LEVEL_DETAIL | NAP_LIST_FROM_NEXT;
    }
}
