#include "fuzz/road.h"

#include "common/alloc.h"
#include "kit/store_dump.h"
#include "nof/node.h"
#include "nof/pu_lu.h"
#include "shell/globals.h"
#include "shell/graphics.h"
#include "shell/messages.h"
#include "simnode/domain_file.h"
#include "store/build.h"
#include "store/remove.h"
#include "store/store.h"
#include "verbs/config.h"
#include "verbs/manage.h"
#include "verbs/status.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>

namespace fuzz {

namespace {

struct OUTSTANDING {
    NB_HANDLE target;
    void* vcb;
    NB_ULONG correlator;
};

// The library's side of the one console there is.
struct LIBRARY {
    bool client_server = false;
    simnode::Operator op;
    std::deque<OUTSTANDING> outstanding;
    Bytes damage; // for the next answer
};
LIBRARY library;

constexpr std::size_t MANY_ANSWERS = 200'000; // more than any store of these sizes asks for

bool is_query(NB_USHORT opcode) {
    const NBA_VERB_ROW* row = vnv_verb_search(opcode, 0, 0);
    return row != nullptr && ((row->flags & NBA_VERB_HAS_BUFFER) != 0 ||
                              std::strncmp(row->name, "NAP_QUERY", 9) == 0);
}

// Queries and what opens the way to them are the node's to answer. Anything else succeeds, so that
// the node stays as it is.
bool is_for_node(NB_USHORT opcode) {
    switch (opcode) {
    case NAP_OPEN_FILE:
    case NAP_CLOSE_FILE:
    case NAP_CONNECT_NODE:
    case NAP_DISCONNECT_NODE:
    case NAP_SET_PROCESSING_MODE:
    case NAP_REGISTER_INDICATION_SINK:
        return true;
    default:
        return is_query(opcode);
    }
}

void damage(void* block, std::size_t length, void* buffer, std::size_t capacity) {
    const Bytes pieces = std::exchange(library.damage, {});
    const VCB_HEADER kept = *vcb_header(block);
    for (std::size_t i = 0; i + 4 <= pieces.size(); i += 4) {
        const std::size_t place = pieces[i] | static_cast<std::size_t>(pieces[i + 1]) << 8;
        const bool in_buffer = (pieces[i + 3] & 1) != 0;
        const std::size_t size = in_buffer ? capacity : length;
        if (size == 0) {
            continue;
        }
        NB_BYTE& byte = static_cast<NB_BYTE*>(in_buffer ? buffer : block)[place % size];
        byte =
            (pieces[i + 3] & 2) != 0 ? static_cast<NB_BYTE>(byte ^ pieces[i + 2]) : pieces[i + 2];
    }
    // What the library lets through: the verb's own opcode and no more than fits.
    vcb_header(block)->opcode = kept.opcode;
    vcb_header(block)->format = kept.format;
    if (buffer != nullptr) {
        static_cast<LIST_QUERY*>(block)->buffer = buffer;
        static_cast<LIST_QUERY*>(block)->buffer_size = static_cast<NB_ULONG>(capacity);
    }
}

void answer_next() {
    const OUTSTANDING verb = library.outstanding.front();
    library.outstanding.pop_front();
    VCB_HEADER* header = vcb_header(verb.vcb);
    const NBA_VERB_ROW* row = vnv_verb_search(header->opcode, header->format, 0);
    const std::size_t length = nba_block_length(verb.vcb);
    const bool list = (row->flags & NBA_VERB_HAS_BUFFER) != 0;
    void* buffer = list ? static_cast<LIST_QUERY*>(verb.vcb)->buffer : nullptr;
    const NB_ULONG capacity =
        buffer != nullptr ? static_cast<LIST_QUERY*>(verb.vcb)->buffer_size : 0;
    const Bytes asked(static_cast<NB_BYTE*>(verb.vcb), static_cast<NB_BYTE*>(verb.vcb) + length);
    if (is_for_node(header->opcode)) {
        const auto target = library.op.targets.find(verb.target);
        Bytes filled;
        simnode::Request request{world(library.client_server),
                                 library.op,
                                 verb.target,
                                 verb.correlator,
                                 target != library.op.targets.end() ? target->second
                                                                    : simnode::Target{},
                                 {static_cast<NB_BYTE*>(verb.vcb), length},
                                 capacity,
                                 filled};
        simnode::run_verb(request);
        if (!filled.empty() && buffer != nullptr) {
            std::memcpy(buffer, filled.data(), std::min<std::size_t>(filled.size(), capacity));
        }
        if (buffer != nullptr) {
            static_cast<LIST_QUERY*>(verb.vcb)->buffer = buffer;
            static_cast<LIST_QUERY*>(verb.vcb)->buffer_size = capacity;
        }
    } else {
        header->primary_rc = NAP_OK;
        header->secondary_rc = 0;
    }
    if (!library.damage.empty()) {
        damage(verb.vcb, length, buffer, capacity);
        if (!nba_block_fits(verb.vcb, length) || header->primary_rc == NAP_INDICATION) {
            std::memcpy(verb.vcb, asked.data(), length); // the library would not let it through
        }
    }
    vga_nof_verb_callback(verb.target, verb.vcb, verb.correlator, 0);
}

// Who gets an indication: whoever registered for it, unless the argument wants somebody else.
struct RECIPIENT {
    NB_HANDLE target;
    NB_ULONG correlator;
};
RECIPIENT recipient(NB_BYTE argument, NB_USHORT opcode) {
    const bool status = vnv_verb_search(opcode, 0, 0) == nullptr ||
                        (vnv_verb_search(opcode, 0, 0)->flags & NBA_VERB_INDICATION) != 0;
    const NB_USHORT registered = status ? opcode : static_cast<NB_USHORT>(NAP_CONFIG_INDICATION);
    std::vector<const simnode::Sink*> sinks;
    for (const simnode::Sink& sink : library.op.sinks) {
        if (sink.opcode == registered) {
            sinks.push_back(&sink);
        }
    }
    if (argument < 0xF0 && !sinks.empty()) {
        const simnode::Sink& sink = *sinks[argument % sinks.size()];
        return {sink.handle, sink.correlator};
    }
    const vga_node* node = ntl_avl_first<vga_node>(gvga_system->node_tree);
    switch (argument % 4) {
    case 0:
        return {node != nullptr ? node->node_handle : 0, node != nullptr ? node->handle : 0};
    case 1:
        return {0, gvga_system->handle};
    case 2:
        return {0, 0};
    default:
        return {9999, 9999};
    }
}

void indicate(const EVENT& event) {
    if (event.payload.size() < sizeof(VCB_HEADER) ||
        !nba_block_fits(event.payload.data(), event.payload.size())) {
        return;
    }
    // In memory of exactly its size: whoever reads past its end is caught.
    void* block = std::malloc(event.payload.size());
    std::memcpy(block, event.payload.data(), event.payload.size());
    VCB_HEADER& header = *vcb_header(block);
    const NBA_VERB_ROW* row = vnv_verb_search(header.opcode, header.format, 0);
    if (row == nullptr || (row->flags & NBA_VERB_INDICATION) == 0) {
        header.primary_rc = NAP_INDICATION; // else it would be an answer
    }
    if (header.secondary_rc == NAP_LINK_LOST) {
        header.secondary_rc = 0; // ends the run, always
    }
    const RECIPIENT to = recipient(event.argument, header.opcode);
    vga_nof_verb_callback(to.target, block, to.correlator, 0);
    std::free(block);
}

// Does something with one of the records of a tree.
template <typename Record, typename Work>
void on(const NTL_AVL_TREE& tree, unsigned which, Work work) {
    auto* record = ntl_avl_first<Record>(tree);
    for (; which > 0 && record != nullptr; --which) {
        record = static_cast<Record*>(ntl_avl_find_next(&tree, record->node.key));
    }
    if (record != nullptr) {
        work(record);
    }
}

void act(NB_BYTE argument) {
    vga_node* node = ntl_avl_first<vga_node>(gvga_system->node_tree);
    const unsigned which = argument / 8;
    if (node == nullptr) {
        return;
    }
    switch (argument % 8) {
    case 0:
        return on<vga_port>(node->port_tree, which, vga_nodew_init_start_port);
    case 1:
        return on<vga_port>(node->port_tree, which, [](vga_port* port) {
            vga_issue_stop_port(port, vga_nodew_stop_port_cb, port->handle);
        });
    case 2:
        return on<vga_ls>(node->ls_tree, which,
                          [](vga_ls* ls) { vga_nodew_init_start_ls(ls, false); });
    case 3:
        return on<vga_ls>(node->ls_tree, which,
                          [](vga_ls* ls) { vga_nodew_init_start_ls(ls, true); });
    case 4:
        return on<vga_ls>(node->ls_tree, which, [which](vga_ls* ls) {
            vga_issue_stop_ls(ls, vga_nodew_stop_ls_cb, ls->handle, which % 2 == 0);
        });
    case 5:
        return on<vga_pu>(node->local_pu_tree, which, vga_nodew_start_pu);
    case 6:
        return on<vga_pu>(node->local_pu_tree, which, [](vga_pu* pu) {
            vga_issue_stop_internal_pu(pu, vga_nodew_stop_pu_cb, pu->handle);
        });
    default:
        vga_issue_stop_node(node, vga_process_stop_node);
    }
}

void load_messages() {
    for (const char*& message : gvga_messages) {
        if (message == nullptr) {
            message = "text %1 %2";
        }
    }
}

} // namespace

Bytes pack(bool client_server, const SCRIPT& script) {
    Bytes bytes{client_server};
    for (const EVENT& event : script) {
        const std::size_t length = std::min<std::size_t>(event.payload.size(), 0xFFFF);
        bytes.insert(bytes.end(),
                     {static_cast<NB_BYTE>(event.step), event.argument,
                      static_cast<NB_BYTE>(length), static_cast<NB_BYTE>(length >> 8)});
        bytes.insert(bytes.end(), event.payload.begin(),
                     event.payload.begin() + static_cast<std::ptrdiff_t>(length));
    }
    return bytes;
}

SCRIPT unpack(std::span<const NB_BYTE> bytes, bool* client_server) {
    SCRIPT script;
    *client_server = !bytes.empty() && (bytes[0] & 1) != 0;
    for (std::size_t at = 1; at + 4 <= bytes.size();) {
        const std::size_t length = std::min<std::size_t>(
            bytes[at + 2] | static_cast<std::size_t>(bytes[at + 3]) << 8, bytes.size() - at - 4);
        const std::span<const NB_BYTE> payload = bytes.subspan(at + 4, length);
        script.push_back({static_cast<STEP>(bytes[at] % static_cast<NB_BYTE>(STEP::COUNT)),
                          bytes[at + 1], Bytes(payload.begin(), payload.end())});
        at += 4 + length;
    }
    return script;
}

simnode::World& world(bool client_server) {
    static simnode::World* worlds[2];
    simnode::World*& result = worlds[client_server];
    if (result == nullptr) {
        result = new simnode::World;
        const std::string path = std::string(TESSALY_SOURCE_DIR "/data/domains/") +
                                 (client_server ? "enterprise.toml" : "demo.toml");
        std::string error;
        if (!simnode::load_domain(result->domain, path, error)) {
            std::fprintf(stderr, "%s\n", error.c_str());
            std::abort();
        }
    }
    return *result;
}

ROAD::ROAD(bool client_server) {
    library = LIBRARY{};
    library.client_server = client_server;
    nba_hm_initialise();
    vga_init_verb_queues();
    load_messages();
    gvga_exit_code = 0;
    gvga_metrics.item_height = 16;
    gvga_store_hooks = {};
    gvga_store_hooks.start_shutdown = [] {
        VGA_FATAL(VGA_EXIT_ORDERLY, 0);
        return true;
    };
    std::fill(std::begin(gvga_supported), std::end(gvga_supported), NB_USHORT{1});
    gvga_supported[VGA_SUPPORT_CLIENT_SERVER] = client_server;
    gvga_read_only = 0;
    vga_install_status_handlers();
    vga_install_manage_handlers();
    vga_install_config_handlers();
    gvga_system = vga_init_vga_system();
    vga_start_build_system();
    for (std::size_t left = MANY_ANSWERS; left > 0 && !library.outstanding.empty(); --left) {
        answer_next();
    }
}

ROAD::~ROAD() {
    vga_free_verb_queues();
    library.outstanding.clear();
    vga_destroy_data_structures();
    nba_hm_terminate();
}

bool ROAD::ended() const {
    return gvga_exit_code != 0;
}

std::size_t ROAD::play(std::span<const EVENT> script) {
    std::size_t played = 0;
    for (const EVENT& event : script) {
        ++played;
        switch (event.step) {
        case STEP::INDICATION:
            indicate(event);
            break;
        case STEP::DAMAGE:
            library.damage = event.payload;
            break;
        case STEP::ANSWERS:
            for (int left = event.argument + 1;
                 left > 0 && !library.outstanding.empty() && !ended(); --left) {
                answer_next();
            }
            break;
        case STEP::ACT:
            act(event.argument);
            break;
        case STEP::COUNT:
            break;
        }
        if (ended()) {
            break;
        }
    }
    return played;
}

std::vector<std::string> ROAD::faults() {
    for (std::size_t left = MANY_ANSWERS; !library.outstanding.empty() && !ended(); --left) {
        if (left == 0) {
            return {"the store does not come to rest"};
        }
        answer_next();
    }
    if (ended()) {
        return {};
    }
    std::vector<std::string> faults = kit::dump_store().faults;
    // Damaged answers end checks half way; the next one sets its marks anew. And a node would not
    // give an alias to two LUs; the store then finds the first.
    std::erase_if(faults, [](const std::string& fault) {
        return fault.find("still marked for a check") != std::string::npos ||
               fault.find("an LU has no alias") != std::string::npos;
    });
    return faults;
}

std::vector<std::string> run(bool client_server, std::span<const EVENT> script,
                             std::size_t* played) {
    std::vector<std::string> faults;
    {
        ROAD road(client_server);
        const std::size_t steps = road.play(script);
        if (played != nullptr) {
            *played = steps;
        }
        faults = road.faults();
    }
    if (vga_allocations_in_use() != 0) {
        faults.push_back("records or blocks were not freed");
    }
    return faults;
}

} // namespace fuzz

NB_USHORT nof_async_version(int, NB_HANDLE target, void* vcb, NOF_CALLBACK, NB_ULONG correlator) {
    fuzz::library.outstanding.push_back({target, vcb, correlator});
    return NOF_IN_PROGRESS;
}
void vpm_asm_use_xt_sched(XtAppContext, VPM_ADD_INPUT, VPM_REMOVE_INPUT) {}
void vpm_set_io_limit(int) {}
void nof_terminate() {}
int vsm_is_client_server() {
    return fuzz::library.client_server;
}
