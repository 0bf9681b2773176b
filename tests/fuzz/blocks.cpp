#include "fuzz/blocks.h"

#include "nof/vcb.h"
#include "simnode/indications.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>

namespace fuzz {

namespace {

using simnode::Kind;
using simnode::KindRow;

// What the fuzzer knows of the two domains.
struct KNOWLEDGE {
    std::vector<SCRIPT> seeds;
    std::vector<Bytes> blocks;      // of the seeds
    std::vector<std::string> names; // of 8 bytes, as they stand in keys
    std::unordered_set<std::uint64_t> known;
};

std::uint64_t word(const void* bytes) {
    std::uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

void add_names(KNOWLEDGE& all, const std::string& key) {
    for (std::size_t at = 0; at + 8 <= key.size(); at += at == 8 ? 1 : 8) { // qualified: 8 + 1 + 8
        if (all.known.insert(word(key.data() + at)).second) {
            all.names.push_back(key.substr(at, 8));
        }
    }
}

void add_block(KNOWLEDGE& all, Bytes block, NB_BYTE recipient = 0) {
    all.blocks.push_back(block);
    all.seeds.push_back(
        {{STEP::INDICATION, recipient, std::move(block)}, {STEP::ANSWERS, 255, {}}});
}

void add_record(KNOWLEDGE& all, simnode::World& world, simnode::Node& node, const KindRow& row,
                const simnode::Record& record) {
    if (row.indication != 0) {
        for (const bool gone : {false, true}) {
            simnode::indicate(world, node, row.kind, record, gone);
            for (simnode::Event& event : std::exchange(world.events, {})) {
                add_block(all, std::move(event.block));
            }
        }
    }
    if (row.define != 0) {
        add_block(all, simnode::define_of_entry(row, record.entry));
    } else if (const KindRow* holder = simnode::holder_of(row.kind); holder != nullptr) {
        if (const auto* owner = simnode::find(node.of(holder->kind), record.parent)) {
            add_block(all, simnode::define_of_nested(row, owner->entry, record.entry));
        }
    }
    if (row.remove != 0) {
        add_block(all, simnode::delete_of_entry(row, record.entry));
    }
}

// A block of every verb and indication there is, with a name at its head.
void add_others(KNOWLEDGE& all) {
    DICE dice(1);
    for (NB_ULONG opcode = 1; opcode <= 0xFFFF; ++opcode) {
        const NBA_VERB_ROW* row = vnv_verb_search(static_cast<NB_USHORT>(opcode), 0, 0);
        if (row == nullptr || (row->flags & NBA_VERB_HAS_BUFFER) != 0) {
            continue;
        }
        for (int variant = 0; variant < 4; ++variant) {
            Bytes block(row->block_size + row->element_size * 2u);
            vcb_header(block.data())->opcode = row->opcode;
            if (block.size() >= 20 && variant < 3) {
                std::memcpy(block.data() + 12, all.names[dice() % all.names.size()].data(), 8);
            }
            if (row->element_size > 1) {
                block[row->count_offset] = static_cast<NB_BYTE>(variant % 3);
            }
            add_block(all, std::move(block));
        }
    }
}

const KNOWLEDGE& knowledge() {
    static const KNOWLEDGE* made = [] {
        auto* all = new KNOWLEDGE;
        for (const bool client_server : {false, true}) {
            simnode::World& world = fuzz::world(client_server);
            for (const KindRow& row : simnode::kind_rows()) {
                for (simnode::Node* node : simnode::places_of(world.domain, row)) {
                    int taken = 0;
                    for (const simnode::Record* record : simnode::everything(node->of(row.kind))) {
                        add_names(*all, record->key);
                        if (++taken <= 3) {
                            add_record(*all, world, *node, row, *record);
                        }
                    }
                }
            }
        }
        add_others(*all);
        for (int argument = 0; argument < 16; ++argument) {
            all->seeds.push_back({{STEP::ACT, static_cast<NB_BYTE>(argument), {}},
                                  {STEP::DAMAGE, 0, {4, 0, 1, 0}},
                                  {STEP::ANSWERS, 255, {}}});
        }
        return all;
    }();
    return *made;
}

template <typename Item> const Item& any(DICE& dice, const std::vector<Item>& items) {
    return items[dice() % items.size()];
}

// The places of known names in a block.
std::vector<std::size_t> places_of_names(const Bytes& block) {
    std::vector<std::size_t> places;
    for (std::size_t at = sizeof(VCB_HEADER); at + 8 <= block.size(); ++at) {
        if (knowledge().known.contains(word(block.data() + at))) {
            places.push_back(at);
            at += 7;
        }
    }
    return places;
}

void change_name(Bytes& block, DICE& dice) {
    const auto places = places_of_names(block);
    if (places.empty() && block.size() < 20) {
        return;
    }
    const std::size_t at = !places.empty() && dice() % 4 != 0
                               ? any(dice, places)
                               : sizeof(VCB_HEADER) + dice() % (block.size() - 19);
    std::string name = any(dice, knowledge().names);
    if (dice() % 8 == 0) {
        name.assign(8, dice() % 2 == 0 ? '\x40' : ' ');
    } else if (dice() % 8 == 0) {
        name[dice() % 8] = static_cast<char>(0xC1 + dice() % 9);
    }
    std::memcpy(block.data() + at, name.data(), 8);
}

void change_number(Bytes& block, DICE& dice) {
    if (block.size() <= sizeof(VCB_HEADER)) {
        return;
    }
    static constexpr NB_ULONG numbers[] = {
        0, 1, 2, 3, 4, 5, 6, 7, 8, 10, 16, 255, 256, 0x7FFF, 0xFFFF, 0x7FFFFFFF, 0xFFFFFFFF};
    const std::size_t at = sizeof(VCB_HEADER) + dice() % (block.size() - sizeof(VCB_HEADER));
    const std::size_t width =
        std::min<std::size_t>(std::size_t{1} << dice() % 3, block.size() - at);
    const NB_ULONG number =
        dice() % 4 == 0 ? static_cast<NB_ULONG>(dice()) : numbers[dice() % std::size(numbers)];
    std::memcpy(block.data() + at, &number, width);
}

void change_length(Bytes& block, DICE& dice) {
    const std::size_t length =
        dice() % 3 == 0 ? dice() % (block.size() + 1) : block.size() + dice() % 300;
    const std::size_t before = block.size();
    block.resize(length);
    for (std::size_t i = before; i < length; ++i) {
        block[i] = static_cast<NB_BYTE>(i % 3 == 0 ? dice() : 0);
    }
}

void change_block(Bytes& block, DICE& dice) {
    const auto kind = dice() % 8;
    return kind < 3   ? change_name(block, dice)
           : kind < 7 ? change_number(block, dice)
                      : change_length(block, dice);
}

EVENT random_step(DICE& dice) {
    switch (dice() % 8) {
    case 0: {
        Bytes pieces;
        for (auto count = 1 + dice() % 4; count > 0; --count) {
            pieces.insert(pieces.end(),
                          {static_cast<NB_BYTE>(dice() % 4 == 0 ? dice() : 4 + dice() % 40),
                           static_cast<NB_BYTE>(dice() % 8 == 0 ? dice() % 16 : 0),
                           static_cast<NB_BYTE>(dice()), static_cast<NB_BYTE>(dice())});
        }
        return {STEP::DAMAGE, 0, std::move(pieces)};
    }
    case 1:
        return {STEP::ANSWERS, static_cast<NB_BYTE>(dice()), {}};
    case 2:
        return {STEP::ACT, static_cast<NB_BYTE>(dice() % 64), {}};
    default:
        return {STEP::INDICATION, static_cast<NB_BYTE>(dice() % 16 == 0 ? dice() : dice() % 4),
                any(dice, knowledge().blocks)};
    }
}

} // namespace

std::vector<SCRIPT> seeds() {
    return knowledge().seeds;
}

void change(SCRIPT& script, DICE& dice, const CHANGE_BYTES& change_bytes) {
    constexpr std::size_t longest = 40; // steps
    const auto place = [&] {
        return script.begin() + static_cast<std::ptrdiff_t>(dice() % script.size());
    };
    if (script.empty() || (script.size() < longest && dice() % 3 == 0)) {
        const EVENT step = random_step(dice);
        script.insert(script.empty() ? script.end() : place() + 1, step);
        return;
    }
    const auto step = place();
    switch (dice() % 8) {
    case 0:
        script.erase(step);
        return;
    case 1:
        std::swap(*step, *place());
        return;
    case 2: {
        const EVENT doubled = *step;
        if (script.size() < longest) {
            script.insert(place(), doubled);
        }
        return;
    }
    case 3:
        step->argument = static_cast<NB_BYTE>(dice());
        return;
    default:
        break;
    }
    if (change_bytes && dice() % 3 == 0) {
        const std::size_t size = step->payload.size();
        step->payload.resize(std::max<std::size_t>(size + 64, 64));
        step->payload.resize(change_bytes(step->payload.data(), size, step->payload.size()));
    } else {
        change_block(step->payload, dice);
    }
}

EVENT random_indication(DICE& dice) {
    EVENT event{STEP::INDICATION, static_cast<NB_BYTE>(dice()), any(dice, knowledge().blocks)};
    if (dice() % 16 == 0) {
        for (std::size_t i = sizeof(VCB_HEADER); i < event.payload.size(); ++i) {
            event.payload[i] = static_cast<NB_BYTE>(dice());
        }
        return event;
    }
    for (auto changes = dice() % 5; changes > 0; --changes) {
        change_block(event.payload, dice);
    }
    return event;
}

} // namespace fuzz
