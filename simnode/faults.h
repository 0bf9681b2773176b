// Trouble on request: verbs that fail, answers that come late or damaged. Set by control commands.
#pragma once

#include "simnode/connection.h"

#include <chrono>
#include <optional>

namespace simnode {

using Clock = std::chrono::steady_clock;

struct FailRule {
    NB_USHORT opcode;
    int count; // verbs still to fail
    Rc rc;
};

enum class Damage : NB_BYTE {
    half_frame,
    bad_length,
    unknown_opcode,
    entry_length_zero,
    entry_length_overlong,
    entry_count,
};

struct DamageRule {
    Damage damage;
    NB_USHORT opcode; // of the verb whose answer is damaged; 0: the next that can be
};

struct LateAnswer {
    NB_ULONG operator_id;
    NB_USHORT opcode;
    WIRE_FRAME header;
    Bytes block;
    Bytes buffer;
    Clock::time_point due; // time_point::max(): held until released
};

// A verb that takes its time: carried out when it is due.
struct SlowVerb {
    NB_ULONG operator_id;
    Target target; // should the operator be gone by then
    WIRE_FRAME header;
    Bytes block;
    Clock::time_point due;
    std::optional<Rc> outcome; // settled before its time
};

struct Faults {
    std::vector<FailRule> fail;
    std::map<NB_USHORT, std::chrono::milliseconds> delays;
    std::set<NB_USHORT> held;
    std::vector<NB_USHORT> immediate; // opcodes that operators' libraries complete at once
    std::optional<DamageRule> damage;
    std::vector<LateAnswer> late;
    std::map<NB_USHORT, std::chrono::milliseconds> durations; // of verbs that take their time
    std::vector<SlowVerb> slow;
};

// The return codes with which a verb is to fail now, if it is; counts the rule down.
std::optional<Rc> next_failure(Faults& faults, NB_USHORT opcode);
// When an answer is to go out; nothing: at once.
std::optional<Clock::time_point> due_time(const Faults& faults, NB_USHORT opcode);
// Queues an answer, damaged if a rule says so.
void queue_answer(Faults& faults, Connection& connection, WIRE_FRAME header, Bytes& block,
                  Bytes& buffer);
std::optional<Damage> damage_named(std::string_view name);

} // namespace simnode
