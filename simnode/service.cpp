#include "simnode/service.h"

#include "nof/node.h"
#include "simnode/control.h"
#include "simnode/domain_file.h"
#include "simnode/lively.h"
#include "simnode/manage.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace simnode {

Service::Service() : epoll_fd(epoll_create1(EPOLL_CLOEXEC)) {}

Service::~Service() {
    for (const auto& connection : connections) {
        close(connection.first);
    }
    for (const int fd : {listen_fd, epoll_fd}) {
        if (fd >= 0) {
            close(fd);
        }
    }
    if (!socket_path.empty()) {
        unlink(socket_path.c_str());
    }
    if (journal.file != nullptr) {
        std::fclose(journal.file);
    }
}

namespace {

constexpr std::chrono::seconds SAVE_PERIOD{1};
constexpr std::chrono::milliseconds FLOOD_PERIOD{1};

void control_epoll(Service& service, int operation, int fd, unsigned events) {
    epoll_event event{};
    event.events = events;
    event.data.fd = fd;
    epoll_ctl(service.epoll_fd, operation, fd, &event);
}

bool someone_listens(const sockaddr_un& address) {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool answered =
        fd >= 0 && connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (fd >= 0) {
        close(fd);
    }
    return answered;
}

// Writes what can be written and watches for the rest.
void flush(Service& service, Connection& connection) {
    if (connection.broken || !has_output(connection)) {
        return;
    }
    if (!write_some(connection)) {
        connection.broken = true;
        return;
    }
    const bool waits = has_output(connection);
    if (waits != connection.waits_to_write) {
        connection.waits_to_write = waits;
        control_epoll(service, EPOLL_CTL_MOD, connection.fd,
                      EPOLLIN | (waits ? static_cast<unsigned>(EPOLLOUT) : 0u));
    }
}

void close_finished(Service& service) {
    for (auto item = service.connections.begin(); item != service.connections.end();) {
        const Connection& connection = *item->second;
        if (connection.broken || (connection.closing && !has_output(connection))) {
            const NB_ULONG id = connection.op.id;
            std::erase_if(service.faults.late,
                          [&](const LateAnswer& late) { return late.operator_id == id; });
            std::erase(service.idle_waiters, id);
            close(item->first);
            item = service.connections.erase(item);
        } else {
            ++item;
        }
    }
}

void indicate_to(Connection& connection, const Sink& sink, std::span<const NB_BYTE> block) {
    WIRE_FRAME header{};
    header.kind = WIRE_INDICATION;
    header.target = sink.handle;
    header.correlator = sink.correlator;
    queue_frame(connection, header, block, {});
}

Target target_of(const Operator& op, NB_HANDLE handle) {
    const auto target = op.targets.find(handle);
    return target == op.targets.end() ? Target{} : target->second;
}

// Sends a block to every sink for an opcode whose target is wanted.
template <typename Wanted>
void send_to_sinks(Service& service, NB_USHORT opcode, NB_ULONG except,
                   std::span<const NB_BYTE> block, Wanted wanted) {
    for (const auto& [fd, connection] : service.connections) {
        if (connection->op.id == except) {
            continue;
        }
        for (const Sink& sink : connection->op.sinks) {
            if (sink.opcode == opcode && wanted(target_of(connection->op, sink.handle))) {
                indicate_to(*connection, sink, block);
            }
        }
    }
}

// The other operators get the verb itself, marked as an indication.
void copy_to_others(Service& service, const Request& request, Effect effect) {
    Bytes copy(request.block.begin(), request.block.end());
    vcb_header(copy.data())->primary_rc = NAP_INDICATION;
    vcb_header(copy.data())->secondary_rc = NAP_RC_NONE;
    Target wanted = request.target;
    if (effect == Effect::changes_domain) {
        wanted = {TargetKind::configuration_file, nullptr};
    } else if (wanted.kind != TargetKind::tp_load_file) {
        wanted.kind = TargetKind::node;
    }
    send_to_sinks(service, NAP_CONFIG_INDICATION, request.op.id, copy, [&](const Target& target) {
        return target.kind == wanted.kind && target.node == wanted.node;
    });
}

// Starts that are still under way end with the stop of what they start.
void cancel_starts(Service& service, const Request& stop) {
    for (SlowVerb& verb : service.faults.slow) {
        if (verb.target.node != nullptr && verb.target.node == stop.target.node &&
            ends_start(stop.block, verb.block)) {
            verb.outcome = RC_START_CANCELLED;
            verb.due = Clock::now();
        }
    }
}

// Carries out a verb and tells whoever has to know, its issuer excepted. answer: sends the
// issuer's. outcome: return codes with which it fails without being carried out.
template <typename Answer>
Rc perform(Service& service, Request& request, Answer answer, std::optional<Rc> outcome = {}) {
    const NB_USHORT opcode = vcb_header(request.block.data())->opcode;
    const std::optional<Rc> failure = outcome ? outcome : next_failure(service.faults, opcode);
    Rc rc;
    if (failure) {
        rc = *failure;
        vcb_header(request.block.data())->primary_rc = rc.primary;
        vcb_header(request.block.data())->secondary_rc = rc.secondary;
    } else {
        rc = run_verb(request);
    }
    record_verb(service.journal, request, rc);
    answer();
    const VerbRow* row = find_verb(opcode);
    if (rc.ok() && !failure && row != nullptr && row->effect >= Effect::changes) {
        copy_to_others(service, request, row->effect);
        cancel_starts(service, request);
    }
    send_events(service);
    return rc;
}

Rc carry_out_request(Service& service, Connection& connection, const Frame& frame,
                     std::optional<Rc> outcome = {}) {
    Bytes buffer;
    const NB_ULONG capacity = std::min(frame.header.buffer_capacity, WIRE_MAX_BUFFER);
    Request request{service.world,
                    connection.op,
                    frame.header.target,
                    frame.header.correlator,
                    target_of(connection.op, frame.header.target),
                    frame.block,
                    capacity,
                    buffer};
    const NB_USHORT opcode = vcb_header(frame.block.data())->opcode;
    const auto answer = [&] {
        WIRE_FRAME header = frame.header;
        header.kind = WIRE_ANSWER;
        header.buffer_capacity = 0;
        Bytes block(frame.block.begin(), frame.block.end());
        if (const auto due = due_time(service.faults, opcode)) {
            ++connection.op.outstanding[header.target];
            service.faults.late.push_back(
                {connection.op.id, opcode, header, std::move(block), std::move(buffer), *due});
        } else {
            queue_answer(service.faults, connection, header, block, buffer);
        }
    };
    return perform(service, request, answer, outcome);
}

// How long a verb takes before anything comes of it.
std::chrono::milliseconds duration_of(const Service& service, const Connection& connection,
                                      const Frame& frame) {
    const NB_USHORT opcode = vcb_header(frame.block.data())->opcode;
    const Node* node = target_of(connection.op, frame.header.target).node;
    if (node != nullptr && opcode == NAP_INIT_NODE && node->start_time.count() != 0) {
        return node->start_time;
    }
    if (node != nullptr && opcode == NAP_STOP_NODE && node->stop_time.count() != 0) {
        return node->stop_time;
    }
    const auto rule = service.faults.durations.find(opcode);
    return rule == service.faults.durations.end() ? std::chrono::milliseconds{} : rule->second;
}

bool starts_or_stops_node(std::span<const NB_BYTE> block) {
    const NB_USHORT opcode = vcb_header(block.data())->opcode;
    return opcode == NAP_INIT_NODE || opcode == NAP_STOP_NODE;
}

// A node finishes starting before it stops, and the reverse.
Clock::time_point earliest_begin(const Service& service, const Node* node, const Frame& frame,
                                 Clock::time_point begin) {
    for (const SlowVerb& verb : service.faults.slow) {
        if (node != nullptr && verb.target.node == node && starts_or_stops_node(frame.block) &&
            starts_or_stops_node(verb.block)) {
            begin = std::max(begin, verb.due);
        }
    }
    return begin;
}

void serve_request(Service& service, Connection& connection, const Frame& frame) {
    if (frame.block.size() < sizeof(VCB_HEADER) || !frame.buffer.empty()) {
        connection.broken = true;
        return;
    }
    const Target target = target_of(connection.op, frame.header.target);
    const auto now = Clock::now();
    const auto due =
        earliest_begin(service, target.node, frame, now) + duration_of(service, connection, frame);
    if (due <= now) {
        carry_out_request(service, connection, frame);
        return;
    }
    ++connection.op.outstanding[frame.header.target];
    service.faults.slow.push_back({connection.op.id,
                                   target,
                                   frame.header,
                                   Bytes(frame.block.begin(), frame.block.end()),
                                   due,
                                   {}});
    if (target.node != nullptr && !connection.op.read_only) {
        begin_start(service.world, *target.node, frame.block);
        send_events(service);
    }
}

// Carries out the verbs whose time has come.
void finish_slow_verbs(Service& service) {
    const auto now = Clock::now();
    std::vector<SlowVerb> due;
    std::erase_if(service.faults.slow, [&](SlowVerb& verb) {
        if (verb.due > now) {
            return false;
        }
        due.push_back(std::move(verb));
        return true;
    });
    for (SlowVerb& verb : due) {
        Rc rc;
        if (Connection* connection = connection_of(service, verb.operator_id)) {
            --connection->op.outstanding[verb.header.target];
            Frame frame;
            frame.header = verb.header;
            frame.block = verb.block;
            rc = carry_out_request(service, *connection, frame, verb.outcome);
        } else {
            Bytes buffer;
            Request request{service.world, service.script, 0, 0,
                            verb.target,   verb.block,     0, buffer};
            rc = perform(
                service, request, [] {}, verb.outcome);
        }
        if (!rc.ok() && verb.target.node != nullptr) {
            fail_start(service.world, *verb.target.node, verb.block);
            send_events(service);
        }
    }
}

void serve_control(Service& service, Connection& connection, const Frame& frame) {
    connection.control = true;
    const std::string line(frame.block.begin(), frame.block.end());
    const ControlAnswer answer = run_control(service, connection, line);
    if (!answer.later) {
        answer_control(connection, answer.status, answer.text);
    }
    send_events(service);
}

void serve_frame(Service& service, Connection& connection, const Frame& frame) {
    if (!connection.greeted) {
        connection.greeted = frame.header.kind == WIRE_HELLO;
        connection.broken = !connection.greeted;
        return;
    }
    switch (frame.header.kind) {
    case WIRE_REQUEST:
        return serve_request(service, connection, frame);
    case WIRE_CONTROL:
        return serve_control(service, connection, frame);
    default:
        connection.broken = true;
    }
}

void serve_input(Service& service, Connection& connection) {
    if (!read_some(connection)) {
        connection.broken = true;
        return;
    }
    Frame frame;
    while (!connection.broken && !connection.closing) {
        switch (take_frame(connection, frame)) {
        case Taken::frame:
            serve_frame(service, connection, frame);
            break;
        case Taken::nothing:
            return;
        case Taken::malformed:
            connection.broken = true;
            return;
        }
    }
}

void accept_operator(Service& service) {
    const int fd = accept4(service.listen_fd, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd >= 0) {
        adopt(service, fd);
    }
}

bool settled(const Service& service) {
    return service.faults.late.empty() && service.faults.slow.empty() &&
           std::none_of(service.connections.begin(), service.connections.end(),
                        [](const auto& item) { return has_output(*item.second); });
}

void answer_idle_waiters(Service& service) {
    for (const NB_ULONG id : std::exchange(service.idle_waiters, {})) {
        if (Connection* connection = connection_of(service, id)) {
            answer_control(*connection, 0, "idle\n");
        }
    }
}

// Milliseconds until the loop has something to do by itself, at most the given timeout.
int next_timeout(const Service& service, int timeout_ms) {
    Clock::time_point next = Clock::time_point::max();
    for (const LateAnswer& late : service.faults.late) {
        next = std::min(next, late.due);
    }
    for (const SlowVerb& slow : service.faults.slow) {
        next = std::min(next, slow.due);
    }
    if (service.lively_period != Clock::duration::zero()) {
        next = std::min(next, service.next_tick);
    }
    if (service.flood.running()) {
        next = std::min(next, Clock::now() + FLOOD_PERIOD);
    }
    if (service.world.changed && !service.state_path.empty()) {
        next = std::min(next, service.next_save);
    }
    if (next == Clock::time_point::max()) {
        return timeout_ms;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now()).count();
    const int own = static_cast<int>(std::clamp<std::int64_t>(wait, 0, 3'600'000));
    return timeout_ms < 0 ? own : std::min(own, timeout_ms);
}

void do_timed_work(Service& service) {
    finish_slow_verbs(service);
    send_late_answers(service);
    const auto now = Clock::now();
    if (service.lively_period != Clock::duration::zero() && now >= service.next_tick) {
        service.next_tick = now + service.lively_period;
        live(service.world, service.lively_seed);
        send_events(service);
    }
    if (service.flood.running()) {
        flood(service.world, service.flood, now);
        send_events(service);
    }
    if (service.world.changed && !service.state_path.empty() && now >= service.next_save) {
        service.next_save = now + SAVE_PERIOD;
        service.world.changed = false;
        save_domain(service.world.domain, service.state_path);
    }
}

} // namespace

bool listen_at(Service& service, const std::string& path, std::string& error) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        error = "socket path is too long: " + path;
        return false;
    }
    std::copy(path.begin(), path.end(), address.sun_path);
    if (someone_listens(address)) {
        error = "a service listens already at " + path;
        return false;
    }
    unlink(path.c_str());
    service.listen_fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (bind(service.listen_fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(service.listen_fd, SOMAXCONN) != 0) {
        error = path + ": " + std::strerror(errno);
        return false;
    }
    // Everybody may connect; the credentials of a peer decide whether it may change anything.
    chmod(path.c_str(), 0666);
    service.socket_path = path;
    watch(service, service.listen_fd);
    return true;
}

void watch(Service& service, int fd) {
    control_epoll(service, EPOLL_CTL_ADD, fd, EPOLLIN);
}

Connection& adopt(Service& service, int fd) {
    auto owned = std::make_unique<Connection>();
    Connection& connection = *owned;
    connection.fd = fd;
    connection.op.id = ++service.last_operator_id;
    ucred peer{};
    socklen_t length = sizeof peer;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0) {
        connection.op.uid = peer.uid;
    }
    connection.op.read_only =
        service.all_read_only || service.world.domain.read_only_uids.contains(connection.op.uid);
    service.connections[fd] = std::move(owned);
    watch(service, fd);

    WIRE_HELLO_BLOCK hello{};
    hello.magic = WIRE_MAGIC;
    hello.client_server = service.world.domain.client_server;
    hello.read_only = connection.op.read_only;
    WIRE_FRAME header{};
    header.kind = WIRE_HELLO;
    queue_frame(connection, header, {reinterpret_cast<const NB_BYTE*>(&hello), sizeof hello}, {});
    if (!service.faults.immediate.empty()) {
        send_immediate(service, connection);
    }
    flush(service, connection);
    return connection;
}

void send_immediate(Service& service, Connection& connection) {
    WIRE_FRAME header{};
    header.kind = WIRE_IMMEDIATE;
    const auto& opcodes = service.faults.immediate;
    queue_frame(connection, header,
                {reinterpret_cast<const NB_BYTE*>(opcodes.data()), 2 * opcodes.size()}, {});
}

Connection* connection_of(Service& service, NB_ULONG operator_id) {
    for (const auto& [fd, connection] : service.connections) {
        if (connection->op.id == operator_id) {
            return connection.get();
        }
    }
    return nullptr;
}

void send_events(Service& service) {
    for (const Event& event : std::exchange(service.world.events, {})) {
        send_to_sinks(service, event.opcode, 0, event.block, [&](const Target& target) {
            switch (event.opcode) {
            case NAP_SERVER_INDICATION:
                return true;
            case NAP_SNA_NET_INDICATION:
                return target.kind == TargetKind::network_file;
            default:
                return target.kind == TargetKind::node && target.node == event.node;
            }
        });
    }
}

void send_status(Connection& connection, NB_ULONG status, NB_HANDLE handle) {
    NOF_STATUS_INDICATION block{};
    block.header.opcode = NAP_NOF_STATUS_INDICATION;
    block.header.primary_rc = NAP_INDICATION;
    block.status = status;
    block.handle = handle;
    // It comes without registration; the correlator is that of one that concerns the handle, or the
    // whole domain.
    Sink sink{handle, NAP_NOF_STATUS_INDICATION, 0};
    for (const Sink& known : connection.op.sinks) {
        if (known.handle == handle || (sink.correlator == 0 && known.handle == 0)) {
            sink.correlator = known.correlator;
        }
    }
    if (sink.correlator == 0 && !connection.op.sinks.empty()) {
        sink.correlator = connection.op.sinks.front().correlator;
    }
    indicate_to(connection, sink, {reinterpret_cast<const NB_BYTE*>(&block), sizeof block});
}

void take_handles(Service& service, bool tell, const std::function<bool(const Target&)>& lost) {
    for (const auto& [fd, connection] : service.connections) {
        Operator& op = connection->op;
        for (const auto& [handle, target] : op.targets) {
            if (tell && lost(target)) {
                send_status(*connection, NAP_TARGET_GONE, handle);
            }
        }
        std::erase_if(op.sinks, [&](const Sink& sink) { return lost(target_of(op, sink.handle)); });
        std::erase_if(op.targets, [&](const auto& item) { return lost(item.second); });
    }
}

void release_answers(Service& service, NB_USHORT opcode) {
    std::erase_if(service.faults.held,
                  [opcode](NB_USHORT held) { return opcode == 0 || held == opcode; });
    for (LateAnswer& late : service.faults.late) {
        if (opcode == 0 || late.opcode == opcode) {
            late.due = {};
        }
    }
    send_late_answers(service);
}

void send_late_answers(Service& service) {
    const auto now = Clock::now();
    std::vector<LateAnswer> due;
    std::erase_if(service.faults.late, [&](LateAnswer& late) {
        if (late.due > now) {
            return false;
        }
        due.push_back(std::move(late));
        return true;
    });
    for (LateAnswer& late : due) {
        if (Connection* connection = connection_of(service, late.operator_id)) {
            --connection->op.outstanding[late.header.target];
            queue_answer(service.faults, *connection, late.header, late.block, late.buffer);
        }
    }
}

Rc act(Service& service, Node* node, Bytes block) {
    Bytes buffer;
    const VerbRow* row =
        block.size() < sizeof(VCB_HEADER) ? nullptr : find_verb(vcb_header(block.data())->opcode);
    Target target{node != nullptr ? TargetKind::node : TargetKind::configuration_file, node};
    if (row != nullptr && row->scope == Scope::tp_load) {
        target.kind = TargetKind::tp_load_file;
    } else if (row != nullptr && row->scope == Scope::domain) {
        target = {TargetKind::configuration_file, nullptr};
    }
    Request request{service.world, service.script, 0, 0, target, block, 0, buffer};
    return perform(service, request, [] {});
}

void step(Service& service, int timeout_ms) {
    epoll_event events[64];
    const bool may_be_idle = !service.idle_waiters.empty() && settled(service);
    const int timeout = may_be_idle ? 0 : next_timeout(service, timeout_ms);
    const int count = epoll_wait(service.epoll_fd, events, std::size(events), timeout);
    if (count == 0 && may_be_idle) {
        answer_idle_waiters(service);
    }
    for (int i = 0; i < count; ++i) {
        const int fd = events[i].data.fd;
        if (fd == service.listen_fd) {
            accept_operator(service);
        } else if (fd == service.signal_fd) {
            service.ended = true;
        } else if (fd == service.exit_fd) {
            char byte = 0;
            service.ended = read(fd, &byte, 1) <= 0;
        } else if (const auto item = service.connections.find(fd);
                   item != service.connections.end()) {
            if ((events[i].events & (EPOLLIN | EPOLLHUP | EPOLLERR)) != 0) {
                serve_input(service, *item->second);
            }
        }
    }
    do_timed_work(service);
    for (const auto& [fd, connection] : service.connections) {
        flush(service, *connection);
    }
    close_finished(service);
}

void run(Service& service) {
    while (!service.ended) {
        step(service, -1);
    }
    if (service.world.changed && !service.state_path.empty()) {
        save_domain(service.world.domain, service.state_path);
    }
}

} // namespace simnode
