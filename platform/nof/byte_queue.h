// Bytes that wait between the socket and their reader or writer. What was taken out is wiped, since
// blocks and buffers carry passwords.
#pragma once

#include "nba/nba.h"

#include <cstdlib>
#include <cstring>

namespace nof {

struct ByteQueue {
    NB_BYTE* memory = nullptr;
    std::size_t head = 0; // first byte in use
    std::size_t tail = 0; // first free byte
    std::size_t capacity = 0;

    std::size_t size() const { return tail - head; }
    NB_BYTE* data() { return memory + head; }
    const NB_BYTE* data() const { return memory + head; }
};

// Makes room for that many more bytes behind the tail; they may move. False when there is no
// memory.
inline bool make_room(ByteQueue* queue, std::size_t bytes) {
    if (queue->capacity - queue->tail >= bytes) {
        return true;
    }
    const std::size_t in_use = queue->size();
    if (queue->capacity - in_use >= bytes) {
        std::memmove(queue->memory, queue->data(), in_use);
        explicit_bzero(queue->memory + in_use, queue->head);
        queue->head = 0;
        queue->tail = in_use;
        return true;
    }
    std::size_t capacity = queue->capacity != 0 ? queue->capacity * 2 : std::size_t{64} << 10;
    while (capacity - in_use < bytes) {
        capacity *= 2;
    }
    NB_BYTE* memory = static_cast<NB_BYTE*>(std::malloc(capacity));
    if (memory == nullptr) {
        return false;
    }
    if (in_use != 0) {
        std::memcpy(memory, queue->data(), in_use);
        explicit_bzero(queue->data(), in_use);
    }
    std::free(queue->memory);
    *queue = ByteQueue{memory, 0, in_use, capacity};
    return true;
}

// Forgets bytes at the head.
inline void take_out(ByteQueue* queue, std::size_t bytes) {
    if (bytes == 0) {
        return;
    }
    explicit_bzero(queue->data(), bytes);
    queue->head += bytes;
    if (queue->head == queue->tail) {
        queue->head = queue->tail = 0;
    }
}

// Forgets all bytes behind the first few.
inline void cut_to(ByteQueue* queue, std::size_t bytes) {
    if (queue->size() > bytes) {
        explicit_bzero(queue->data() + bytes, queue->size() - bytes);
        queue->tail = queue->head + bytes;
    }
}

inline void free_bytes(ByteQueue* queue) {
    cut_to(queue, 0);
    std::free(queue->memory);
    *queue = ByteQueue{};
}

} // namespace nof
