#include "common/alloc.h"

#include <cstdlib>
#include <cstring>
#include <malloc.h>

namespace {
std::size_t in_use;
unsigned long calls;
unsigned long fail_from; // number of the first call that fails; 0: none
} // namespace

void* vga_alloc(std::size_t size) {
    ++calls;
    if (fail_from != 0 && calls >= fail_from) {
        return nullptr;
    }
    void* memory = std::calloc(1, size != 0 ? size : 1);
    in_use += memory != nullptr;
    return memory;
}

void vga_free(void* memory) {
    in_use -= memory != nullptr;
    std::free(memory);
}

void vga_free_wiped(void* memory) {
    if (memory != nullptr) {
        explicit_bzero(memory, malloc_usable_size(memory));
    }
    vga_free(memory);
}

void vga_fail_allocation(unsigned long nth) {
    fail_from = nth != 0 ? calls + nth : 0;
}

std::size_t vga_allocations_in_use() {
    return in_use;
}

unsigned long vga_allocation_calls() {
    return calls;
}
