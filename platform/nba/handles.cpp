#include "nba/nba.h"

#include <cstdlib>

// A handle is a slot number (low 22 bits, from 1) under the slot's generation (high 10 bits), which
// changes whenever the slot is given up. Free slots wait in a queue until enough others are free
// too, so that the same handle comes back after a million creations at the earliest.
namespace {

constexpr int SLOT_BITS = 22;
constexpr NB_ULONG SLOT_MASK = (1u << SLOT_BITS) - 1;
constexpr NB_ULONG MAX_SLOTS = 1u << SLOT_BITS; // slot 0 is never used
constexpr NB_ULONG GENERATION_MASK = 0xFFFFFFFF >> SLOT_BITS;
constexpr NB_ULONG MIN_FREE = 1024;
constexpr NB_ULONG FIRST_CAPACITY = 4096;

struct Slot {
    void* object;        // null while free
    NB_ULONG generation; // of its present or next handle
    NB_ULONG next_free;  // 0: last
};

Slot* slots;
NB_ULONG capacity;
NB_ULONG used = 1; // slots ever handed out, slot 0 included
NB_ULONG first_free;
NB_ULONG last_free;
NB_ULONG free_count;

bool grow() {
    const NB_ULONG wanted = capacity == 0 ? FIRST_CAPACITY : capacity * 2;
    if (wanted > MAX_SLOTS) {
        return false;
    }
    void* memory = std::realloc(slots, wanted * sizeof(Slot));
    if (memory == nullptr) {
        return false;
    }
    slots = static_cast<Slot*>(memory);
    capacity = wanted;
    return true;
}

// 0 when none is to be had.
NB_ULONG take_slot() {
    if (free_count <= MIN_FREE && (used < capacity || grow())) {
        slots[used] = Slot{nullptr, 0, 0};
        return used++;
    }
    const NB_ULONG slot = first_free;
    if (slot != 0) {
        first_free = slots[slot].next_free;
        if (first_free == 0) {
            last_free = 0;
        }
        --free_count;
    }
    return slot;
}

Slot* find(NB_HANDLE handle) {
    const NB_ULONG slot = handle & SLOT_MASK;
    if (slot == 0 || slot >= used || slots[slot].generation != handle >> SLOT_BITS ||
        slots[slot].object == nullptr) {
        return nullptr;
    }
    return &slots[slot];
}

} // namespace

NB_HANDLE nba_create_handle(void* object) {
    const NB_ULONG slot = object != nullptr ? take_slot() : 0;
    if (slot == 0) {
        return 0;
    }
    slots[slot].object = object;
    return slots[slot].generation << SLOT_BITS | slot;
}

void* nba_validate_handle(NB_HANDLE handle) {
    const Slot* slot = find(handle);
    return slot != nullptr ? slot->object : nullptr;
}

void nba_destroy_handle(NB_HANDLE handle) {
    Slot* slot = find(handle);
    if (slot == nullptr) {
        return;
    }
    const NB_ULONG number = handle & SLOT_MASK;
    *slot = Slot{nullptr, (slot->generation + 1) & GENERATION_MASK, 0};
    if (last_free != 0) {
        slots[last_free].next_free = number;
    } else {
        first_free = number;
    }
    last_free = number;
    ++free_count;
}

std::size_t nba_handle_count() {
    return used - 1 - free_count;
}

int nba_hm_initialise() {
    if (const char* control = std::getenv("TESSALY_TRACE_CONTROL")) {
        ptrc.flags = static_cast<NB_BYTE>(std::strtoul(control, nullptr, 0));
    }
    return capacity != 0 || grow();
}

void nba_hm_terminate() {
    std::free(slots);
    slots = nullptr;
    capacity = first_free = last_free = free_count = 0;
    used = 1;
}
