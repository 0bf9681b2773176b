// The node service: one thread, one event loop over all operators' connections.
#pragma once

#include "simnode/faults.h"
#include "simnode/flood.h"
#include "simnode/journal.h"

#include <functional>

namespace simnode {

struct Service {
    World world;
    Journal journal;
    Faults faults;
    std::map<int, std::unique_ptr<Connection>> connections; // by descriptor
    std::vector<NB_ULONG> idle_waiters; // operators that asked when everything is answered
    Operator script;                    // the operator that control commands act as
    NB_ULONG last_operator_id = 0;
    bool all_read_only = false; // whoever connects may only read
    int epoll_fd = -1;
    int listen_fd = -1;
    int exit_fd = -1;   // the service ends when this one reads its end; -1: none
    int signal_fd = -1; // the service ends when this one becomes readable; -1: none
    std::string socket_path;
    std::string state_path; // empty: changes are not kept
    Clock::time_point next_save{};
    Clock::duration lively_period{}; // 0: nothing happens by itself
    Clock::time_point next_tick{};
    Flood flood;
    unsigned lively_seed = 1;
    bool ended = false;

    Service();
    ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
};

// Listens on a socket path; false with a reason when that cannot be. A path left over by a service
// that has died is taken over.
bool listen_at(Service& service, const std::string& path, std::string& error);
// Watches a further descriptor whose input ends the service.
void watch(Service& service, int fd);
// Serves a connected socket, which belongs to the service from now on.
Connection& adopt(Service& service, int fd);

// One turn of the loop: waits at most timeout_ms (-1: until something happens) and handles what
// came.
void step(Service& service, int timeout_ms);
// Turns until the service is told to end.
void run(Service& service);

// Carries out a verb as another operator would, on a node (null: a verb of the domain); all
// operators learn of it.
Rc act(Service& service, Node* node, Bytes block);
// Sends what the world's changes left to tell.
void send_events(Service& service);
// Sends the node software status indication for one of an operator's handles (0: of no particular
// one).
void send_status(Connection& connection, NB_ULONG status, NB_HANDLE handle);
// Takes the handles of what is lost from all operators, with the registrations there. tell: with a
// status indication for each.
void take_handles(Service& service, bool tell, const std::function<bool(const Target&)>& lost);
// Sends answers that are due.
void send_late_answers(Service& service);
// Ends the hold on a verb and sends its answers, whether due or not; opcode 0: of all verbs.
void release_answers(Service& service, NB_USHORT opcode);
// The list of verbs that the libraries are to complete at once.
void send_immediate(Service& service, Connection& connection);
// Null when the operator has gone.
Connection* connection_of(Service& service, NB_ULONG operator_id);

} // namespace simnode
