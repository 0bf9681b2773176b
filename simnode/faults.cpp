#include "simnode/faults.h"

#include <algorithm>
#include <cstring>

namespace simnode {

std::optional<Rc> next_failure(Faults& faults, NB_USHORT opcode) {
    const auto rule = std::find_if(faults.fail.begin(), faults.fail.end(),
                                   [&](const FailRule& r) { return r.opcode == opcode; });
    if (rule == faults.fail.end()) {
        return std::nullopt;
    }
    const Rc rc = rule->rc;
    if (--rule->count == 0) {
        faults.fail.erase(rule);
    }
    return rc;
}

std::optional<Clock::time_point> due_time(const Faults& faults, NB_USHORT opcode) {
    if (faults.held.contains(opcode)) {
        return Clock::time_point::max();
    }
    const auto delay = faults.delays.find(opcode);
    return delay == faults.delays.end() ? std::nullopt
                                        : std::optional(Clock::now() + delay->second);
}

std::optional<Damage> damage_named(std::string_view name) {
    static constexpr std::pair<std::string_view, Damage> names[] = {
        {"half-frame", Damage::half_frame},
        {"bad-length", Damage::bad_length},
        {"unknown-opcode", Damage::unknown_opcode},
        {"entry-length-zero", Damage::entry_length_zero},
        {"entry-length-overlong", Damage::entry_length_overlong},
        {"entry-count", Damage::entry_count},
    };
    for (const auto& [known, damage] : names) {
        if (known == name) {
            return damage;
        }
    }
    return std::nullopt;
}

namespace {

bool concerns_entries(Damage damage) {
    return damage == Damage::entry_length_zero || damage == Damage::entry_length_overlong ||
           damage == Damage::entry_count;
}

void set_entry_length(Bytes& buffer, NB_USHORT length) {
    std::memcpy(buffer.data(), &length, sizeof length);
}

} // namespace

void queue_answer(Faults& faults, Connection& connection, WIRE_FRAME header, Bytes& block,
                  Bytes& buffer) {
    VCB_HEADER* verb = vcb_header(block.data());
    const bool applies = faults.damage &&
                         (faults.damage->opcode == 0 || faults.damage->opcode == verb->opcode) &&
                         (!concerns_entries(faults.damage->damage) || !buffer.empty());
    if (!applies) {
        queue_frame(connection, header, block, buffer);
        return;
    }
    const Damage damage = faults.damage->damage;
    faults.damage.reset();
    switch (damage) {
    case Damage::unknown_opcode:
        verb->opcode = 0x7777;
        break;
    case Damage::entry_length_zero:
        set_entry_length(buffer, 0);
        break;
    case Damage::entry_length_overlong:
        set_entry_length(buffer, 0xFFFF);
        break;
    case Damage::entry_count: {
        auto* list = reinterpret_cast<LIST_QUERY*>(block.data());
        list->num_entries = static_cast<NB_USHORT>(list->num_entries + 50);
        list->total_entries = std::max(list->total_entries, list->num_entries);
        break;
    }
    default:
        break;
    }
    const std::size_t start = connection.out.size();
    queue_frame(connection, header, block, buffer);
    const std::size_t length = connection.out.size() - start;
    if (damage == Damage::half_frame) {
        connection.out.resize(start + length / 2);
        connection.closing = true;
    } else if (damage == Damage::bad_length) {
        const NB_ULONG wrong = 7;
        std::memcpy(connection.out.data() + start, &wrong, sizeof wrong);
    }
}

} // namespace simnode
