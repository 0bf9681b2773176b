#include "nof/nof.h"

#include "link.h"
#include "nof/node.h"
#include "private_service.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <new>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace nof;

constexpr int DEFAULT_IO_LIMIT = 10;
constexpr std::chrono::seconds IMMEDIATE_TIMEOUT{30};
constexpr NB_ULONG LINK_PROBLEM = 0x40030001; // in the log: the link was lost, with the reason
constexpr NB_ULONG STRAY_ANSWER = 0x40030002; // an answer that nobody waits for, with its request

// Kind that a frame in the input queue gets when it is dealt with out of turn.
constexpr NB_USHORT FRAME_DONE = 0;

struct Request {
    NBA_QUEUE link;
    NB_ULONG id;
    NB_HANDLE target;
    void* vcb;
    NB_ULONG block_length;
    void* buffer; // of a query; its size is capacity
    NB_ULONG capacity;
    NOF_CALLBACK callback;
    NB_ULONG correlator;
};

struct Client {
    Link link;
    bool opened = false;
    bool ended = false;           // by nof_terminate; until the event loop is named again
    bool delivering = false;      // inside deliver(), which has just read the socket
    bool lost = false;            // once opened: the link is gone, for good
    bool indication_owed = false; // the link-loss indication is still to be delivered
    std::size_t checked = 0; // bytes of whole and well-formed frames at the head of the input queue
    NBA_QUEUE outstanding{}; // requests in the order of their issue
    NB_ULONG last_id = 0;
    NOF_CALLBACK indication_callback = nullptr;
    std::vector<NB_USHORT> immediate; // opcodes that complete during the call

    XtAppContext app = nullptr;
    VPM_ADD_INPUT add_input = nullptr;
    VPM_REMOVE_INPUT remove_input = nullptr;
    int io_limit = DEFAULT_IO_LIMIT;
    int wake_fd = -1;   // readable while there is something to do that the socket does not announce
    bool awake = false; // it is readable
    XtInputId read_input = 0;
    XtInputId write_input = 0;
    XtInputId wake_input = 0;
};
Client client;

void set_codes(void* vcb, NB_USHORT primary, NB_ULONG secondary) {
    vcb_header(vcb)->primary_rc = primary;
    vcb_header(vcb)->secondary_rc = secondary;
}

NB_USHORT complete_at_once(void* vcb, NB_USHORT primary, NB_ULONG secondary) {
    set_codes(vcb, primary, secondary);
    return NOF_COMPLETED;
}

// ---- inputs of the X event loop ----

void on_readable(XtPointer, int*, XtInputId*);
void on_writable(XtPointer, int*, XtInputId*);
void on_wake(XtPointer, int*, XtInputId*);

void add_input(XtInputId* input, int fd, long condition, XtInputCallbackProc proc) {
    if (*input == 0 && fd >= 0 && client.add_input != nullptr) {
        *input =
            client.add_input(client.app, fd, reinterpret_cast<XtPointer>(condition), proc, nullptr);
    }
}

void remove_input(XtInputId* input) {
    if (*input != 0) {
        client.remove_input(*input);
        *input = 0;
    }
}

void register_inputs() {
    add_input(&client.read_input, client.link.socket, XtInputReadMask, on_readable);
    add_input(&client.wake_input, client.wake_fd, XtInputReadMask, on_wake);
}

// True when a delivery needs nothing more from the socket.
bool deliverable() {
    return client.checked != 0 ||
           (client.lost && (!nba_q_empty(&client.outstanding) ||
                            (client.indication_owed && client.indication_callback != nullptr)));
}

void wake() {
    if (!client.awake && client.wake_fd >= 0) {
        client.awake = eventfd_write(client.wake_fd, 1) == 0;
    }
}

void sleep_again() {
    if (client.awake) {
        eventfd_t count;
        eventfd_read(client.wake_fd, &count);
        client.awake = false;
    }
}

void wake_if_deliverable() {
    if (deliverable()) {
        wake();
    }
}

// Sends what is queued, the rest when the socket takes it.
void flush_link() {
    link_flush(&client.link);
    if (client.link.out.size() != 0) {
        add_input(&client.write_input, client.link.socket, XtInputWriteMask, on_writable);
    }
}

// ---- the link ----

// Nothing more will come. What was received in good order is still delivered, then the outstanding
// verbs fail.
void lose_link(const char* reason) {
    nba_pd_print_problem(LINK_PROBLEM, 0, "s", reason);
    remove_input(&client.read_input);
    remove_input(&client.write_input);
    link_close(&client.link);
    cut_to(&client.link.in, client.checked);
    client.lost = true;
    client.indication_owed = true;
}

void set_immediate(const Frame& frame) {
    client.immediate.resize(frame.header.block_length / sizeof(NB_USHORT));
    std::memcpy(client.immediate.data(), frame.block, client.immediate.size() * sizeof(NB_USHORT));
}

void mark_done(std::size_t offset) {
    std::memcpy(client.link.in.data() + offset + offsetof(WIRE_FRAME, kind), &FRAME_DONE,
                sizeof FRAME_DONE);
}

// Looks at the frames that have become whole. The list of immediate opcodes counts from its arrival
// on.
void check_frames() {
    Frame frame;
    FrameState state;
    while ((state = link_frame(client.link, client.checked, &frame)) == FrameState::WHOLE) {
        const NB_USHORT kind = frame.header.kind;
        if (kind == WIRE_IMMEDIATE) {
            set_immediate(frame);
            mark_done(client.checked);
        } else if ((kind != WIRE_ANSWER && kind != WIRE_INDICATION) ||
                   frame.header.block_length < sizeof(VCB_HEADER) ||
                   (kind == WIRE_INDICATION &&
                    !nba_block_fits(frame.block, frame.header.block_length))) {
            state = FrameState::BAD;
            break;
        }
        client.checked += frame.header.length;
    }
    if (state == FrameState::BAD) {
        lose_link("malformed frame");
    }
}

void read_link() {
    switch (link_read(&client.link)) {
    case ReadState::MORE:
        check_frames();
        break;
    case ReadState::NOTHING:
        break;
    case ReadState::END:
        lose_link("connection closed by the node service");
        break;
    }
}

void open_link() {
    if (client.opened) {
        return;
    }
    client.opened = true;
    nba_init_q(&client.outstanding);
    client.wake_fd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    const char* path = std::getenv("TESSALY_NODE_SOCKET");
    const bool is_private = path == nullptr || *path == '\0';
    if (is_private && !start_private_service(&path)) {
        lose_link("no node service: none is named and none can be started");
    } else if (!link_open(&client.link, path)) {
        lose_link("no node service: it does not answer");
        end_private_service();
    } else {
        if (is_private) {
            hide_private_service();
        }
        check_frames();
    }
    register_inputs();
    wake_if_deliverable();
}

// ---- answers and indications ----

Request* find_request(NB_ULONG id) {
    for (NBA_QUEUE* link = client.outstanding.next; link->owner != nullptr; link = link->next) {
        Request* request = static_cast<Request*>(link->owner);
        if (request->id == id) {
            return request;
        }
    }
    return nullptr;
}

void forget(Request* request) {
    nba_remove_from_q(&request->link);
    delete request;
}

// Copies an answer into the issuer's block and buffer. False when it does not fit them, announces
// more than they hold, or is not that of the verb (an indication, perhaps); its codes then mean
// nothing.
bool copy_answer(const Request& request, const Frame& frame) {
    const VCB_HEADER* answer = vcb_header(frame.block);
    const VCB_HEADER* asked = vcb_header(request.vcb);
    if (answer->opcode != asked->opcode || answer->format != asked->format ||
        answer->primary_rc == NAP_INDICATION || frame.header.block_length > request.block_length ||
        frame.header.buffer_length > request.capacity) {
        return false;
    }
    std::memcpy(request.vcb, frame.block, frame.header.block_length);
    if (request.buffer != nullptr) {
        LIST_QUERY* query = static_cast<LIST_QUERY*>(request.vcb);
        query->buffer = request.buffer;
        query->buffer_size = request.capacity;
        std::memcpy(request.buffer, frame.buffer, frame.header.buffer_length);
    }
    return nba_block_fits(request.vcb, request.block_length);
}

void take_frame(const Frame& frame) {
    client.checked -= frame.header.length;
    take_out(&client.link.in, frame.header.length);
}

// The callback may issue verbs, end the library, or run the event loop: it comes last.
void call_back(Request* request) {
    const Request done = *request;
    forget(request);
    wake_if_deliverable();
    done.callback(done.target, done.vcb, done.correlator, 0);
}

bool deliver_indication(const Frame& frame) {
    const NB_ULONG length = frame.header.block_length;
    void* block = std::malloc(length);
    if (block == nullptr) {
        lose_link("no memory for an indication");
        return false;
    }
    std::memcpy(block, frame.block, length);
    take_frame(frame);
    wake_if_deliverable();
    if (client.indication_callback != nullptr) {
        client.indication_callback(frame.header.target, block, frame.header.correlator, 0);
    }
    explicit_bzero(block, length);
    std::free(block);
    return true;
}

// Delivers the first frame that holds something for the program. False when there is none.
bool deliver_frame() {
    while (client.checked != 0) {
        Frame frame;
        link_frame(client.link, 0, &frame);
        if (frame.header.kind == WIRE_INDICATION) {
            return deliver_indication(frame);
        }
        Request* request =
            frame.header.kind == WIRE_ANSWER ? find_request(frame.header.request_id) : nullptr;
        if (request != nullptr && !copy_answer(*request, frame)) {
            client.checked = 0;
            lose_link("answer that does not fit its request");
            return false;
        }
        if (request == nullptr && frame.header.kind == WIRE_ANSWER) {
            nba_pd_print_exception(STRAY_ANSWER, 0, "l", frame.header.request_id);
        }
        take_frame(frame);
        if (request != nullptr) {
            call_back(request);
            return true;
        }
    }
    return false;
}

// After the loss of the link: each outstanding verb in turn, then the indication, once.
bool deliver_loss() {
    if (Request* request = static_cast<Request*>(nba_get_q_head(&client.outstanding))) {
        set_codes(request->vcb, NAP_INDICATION, NAP_LINK_LOST);
        call_back(request);
        return true;
    }
    if (!client.indication_owed || client.indication_callback == nullptr) {
        return false;
    }
    client.indication_owed = false;
    NOF_STATUS_INDICATION indication{};
    indication.header.opcode = NAP_NOF_STATUS_INDICATION;
    indication.status = NAP_LINK_LOST;
    set_codes(&indication, NAP_INDICATION, NAP_LINK_LOST);
    client.indication_callback(0, &indication, 0, 0);
    return true;
}

// One turn of the event loop. What the callbacks issue goes out together, at the latest here.
void deliver() {
    client.delivering = true;
    for (int delivered = 0; delivered < client.io_limit; ++delivered) {
        if (!deliver_frame() && !(client.lost && deliver_loss())) {
            break;
        }
    }
    client.delivering = false;
    flush_link();
    if (!deliverable()) {
        sleep_again();
    } else {
        wake();
    }
}

void on_readable(XtPointer, int*, XtInputId*) {
    if (client.checked == 0) { // no more is read than is delivered
        read_link();
    }
    deliver();
}

void on_writable(XtPointer, int*, XtInputId*) {
    link_flush(&client.link);
    if (client.link.out.size() == 0) {
        remove_input(&client.write_input);
    }
}

void on_wake(XtPointer, int*, XtInputId*) {
    sleep_again();
    deliver();
}

// ---- issuing ----

// Sends the request of a verb, or queues it while a delivery has more for the program. Null when
// there is no memory.
Request* send_request(NB_HANDLE target, void* vcb, std::size_t block_length, NOF_CALLBACK callback,
                      NB_ULONG correlator) {
    Request* request = new (std::nothrow) Request{};
    if (request == nullptr) {
        return nullptr;
    }
    request->id = client.last_id = client.last_id == 0xFFFFFFFF ? 1 : client.last_id + 1;
    request->target = target;
    request->vcb = vcb;
    request->block_length = static_cast<NB_ULONG>(block_length);
    request->callback = callback;
    request->correlator = correlator;
    const VCB_HEADER* header = vcb_header(vcb);
    const NBA_VERB_ROW* verb = vnv_verb_search(header->opcode, header->format, 0);
    if ((verb->flags & NBA_VERB_HAS_BUFFER) != 0) {
        const LIST_QUERY* query = static_cast<const LIST_QUERY*>(vcb);
        request->buffer = query->buffer;
        request->capacity =
            query->buffer != nullptr ? std::min(query->buffer_size, WIRE_MAX_BUFFER) : 0;
    }
    WIRE_FRAME frame{};
    frame.length = static_cast<NB_ULONG>(sizeof frame) + request->block_length;
    frame.kind = WIRE_REQUEST;
    frame.version = WIRE_VERSION;
    frame.request_id = request->id;
    frame.target = target;
    frame.correlator = correlator;
    frame.block_length = request->block_length;
    frame.buffer_capacity = request->capacity;
    if (!link_queue(&client.link, frame, vcb)) {
        delete request;
        return nullptr;
    }
    nba_add_to_q_tail(&client.outstanding, &request->link, request);
    if (!client.delivering || client.checked == 0) {
        flush_link();
    }
    return request;
}

// Takes the answer of a request out of the frames received. False when it is not there.
bool take_answer(const Request& request) {
    for (std::size_t offset = 0; offset < client.checked;) {
        Frame frame;
        link_frame(client.link, offset, &frame);
        if (frame.header.kind == WIRE_ANSWER && frame.header.request_id == request.id) {
            mark_done(offset);
            if (!copy_answer(request, frame)) {
                lose_link("answer that does not fit its request");
                return false;
            }
            return true;
        }
        offset += frame.header.length;
    }
    return false;
}

// Lets the socket move, for as long as that takes.
void wait_for_link(std::chrono::steady_clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    const short out = client.link.out.size() != 0 ? POLLOUT : 0;
    pollfd wait{client.link.socket, static_cast<short>(POLLIN | out), 0};
    const int ready = left.count() > 0 ? poll(&wait, 1, static_cast<int>(left.count())) : 0;
    if (ready == 0) {
        lose_link("no answer to a verb that completes during the call");
    } else if (ready > 0) {
        if ((wait.revents & POLLOUT) != 0) {
            link_flush(&client.link);
        }
        if ((wait.revents & (POLLIN | POLLHUP | POLLERR)) != 0) {
            read_link();
        }
    }
}

// Completes a request during the call. Whatever else arrives meanwhile is delivered later, by the
// event loop.
void complete_immediately(Request* request) {
    const auto deadline = std::chrono::steady_clock::now() + IMMEDIATE_TIMEOUT;
    flush_link();
    while (!take_answer(*request)) {
        if (client.lost) {
            set_codes(request->vcb, NAP_INDICATION, NAP_LINK_LOST);
            break;
        }
        wait_for_link(deadline);
    }
    forget(request);
    wake_if_deliverable();
}

} // namespace

NB_USHORT nof_async_version(int level, NB_HANDLE target, void* vcb, NOF_CALLBACK callback,
                            NB_ULONG correlator) {
    const VCB_HEADER* header = vcb_header(vcb);
    const NBA_VERB_ROW* verb = vnv_verb_search(header->opcode, header->format, 0);
    if (level != NOF_API_LEVEL || verb == nullptr || (verb->flags & NBA_VERB_INDICATION) != 0) {
        return complete_at_once(vcb, NAP_INVALID_VERB, NAP_RC_NONE);
    }
    if (client.ended) {
        return complete_at_once(vcb, NAP_INDICATION, NAP_LINK_LOST);
    }
    client.indication_callback = callback;
    open_link();
    if (!client.lost && !client.delivering) {
        read_link(); // a list of immediate opcodes, or the end of the link, counts at once
    }
    if (client.lost) {
        wake_if_deliverable();
        return complete_at_once(vcb, NAP_INDICATION, NAP_LINK_LOST);
    }
    const std::size_t block_length = nba_block_length(vcb);
    if (block_length > WIRE_MAX_BLOCK) {
        return complete_at_once(vcb, NAP_PARAMETER_CHECK, NAP_RC_NONE);
    }
    Request* request = send_request(target, vcb, block_length, callback, correlator);
    if (request == nullptr) {
        return complete_at_once(vcb, NAP_UNSUCCESSFUL, NAP_RC_NONE);
    }
    wake_if_deliverable();
    const auto end = client.immediate.end();
    if (std::find(client.immediate.begin(), end, header->opcode) == end) {
        return NOF_IN_PROGRESS;
    }
    complete_immediately(request);
    return NOF_COMPLETED;
}

void vpm_asm_use_xt_sched(XtAppContext app_context, VPM_ADD_INPUT add_input,
                          VPM_REMOVE_INPUT remove_input) {
    client.app = app_context;
    client.add_input = add_input;
    client.remove_input = remove_input;
    client.ended = false;
    register_inputs();
}

void vpm_set_io_limit(int limit) {
    client.io_limit = std::max(limit, 1);
}

void nof_terminate() {
    if (client.opened) {
        remove_input(&client.read_input);
        remove_input(&client.write_input);
        remove_input(&client.wake_input);
        while (Request* request = static_cast<Request*>(nba_get_q_head(&client.outstanding))) {
            forget(request);
        }
        link_flush(&client.link);
        link_free(&client.link);
        close(client.wake_fd);
        end_private_service();
    }
    client = Client{};
    client.ended = true;
}

int vsm_is_client_server() {
    open_link();
    return client.link.client_server;
}
