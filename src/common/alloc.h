// The one allocator of records, verb control blocks and buffers: zero-filled, and able to fail on
// demand so that tests can walk every failure path.
#pragma once

#include <cstddef>
#include <type_traits>

// size bytes of zeros, or null. size 0 gives a valid pointer.
void* vga_alloc(std::size_t size);
// Frees what vga_alloc gave; null is allowed.
void vga_free(void* memory);
// The same after overwriting it: verb control blocks may carry passwords.
void vga_free_wiped(void* memory);

// A zeroed T, or null. T must be trivially destructible: records are freed as plain memory.
template <typename T> T* vga_new(std::size_t size = sizeof(T)) {
    static_assert(std::is_trivially_destructible_v<T>);
    return static_cast<T*>(vga_alloc(size));
}

// For tests: the nth allocation from now (1 = the next) and every later one fail; 0 switches that
// off.
void vga_fail_allocation(unsigned long nth);
// Allocations in use, and calls of vga_alloc since the start.
std::size_t vga_allocations_in_use();
unsigned long vga_allocation_calls();
