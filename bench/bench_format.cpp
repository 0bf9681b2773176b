// The message formatter and the row texts: time per call beside snprintf, and allocations per call,
// of which there are to be none.
#include "nof/connectivity.h"
#include "shell/messages.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

extern "C" void* __libc_malloc(std::size_t size);

namespace {
unsigned long allocations;
} // namespace

extern "C" void* malloc(std::size_t size) {
    ++allocations;
    return __libc_malloc(size);
}

namespace {

constexpr const char* row_text = "%1%%t18%Active%t40%%2";
char output[2 * VGA_MESSAGE_BUFFER_SIZE];

void format_row() {
    char name[8] = {'E', 'T', 'H', '0', ' ', ' ', ' ', ' '};
    vga_print_msg(output, row_text, "ca s", 8, name, "Trading floor backbone");
    benchmark::DoNotOptimize(output);
}

void format_ebcdic() {
    const NB_BYTE name[8] = {0xD3, 0xE4, 0xF0, 0xF1, 0x40, 0x40, 0x40, 0x40};
    vga_print_msg(output, row_text, "ea s", 8, name, "Teller display");
    benchmark::DoNotOptimize(output);
}

void expand_columns() {
    char line[256];
    vga_tab_msg(line, "ETH0    %t18%Active%t40%Trading floor backbone");
    benchmark::DoNotOptimize(line);
}

void print_plain() {
    std::snprintf(output, sizeof output, "%-8.8s%*sActive%*s%s", "ETH0    ", 10, "", 16, "",
                  "Trading floor backbone");
    benchmark::DoNotOptimize(output);
}

double median_nanoseconds(void (*function)()) {
    constexpr int calls = 20'000;
    std::vector<double> times;
    for (int round = 0; round < 21; ++round) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < calls; ++i) {
            function();
        }
        const std::chrono::duration<double, std::nano> time =
            std::chrono::steady_clock::now() - start;
        times.push_back(time.count() / calls);
    }
    std::ranges::nth_element(times, times.begin() + 10);
    return times[10];
}

} // namespace

int main() {
    struct CASE {
        const char* name;
        void (*function)();
    };
    const CASE cases[] = {
        {"local_field", format_row}, {"ebcdic_field", format_ebcdic}, {"columns", expand_columns}};
    bool over = false;
    const double plain = median_nanoseconds(print_plain);
    for (const CASE& c : cases) {
        const double time = median_nanoseconds(c.function);
        const unsigned long before = allocations;
        for (int i = 0; i < 1000; ++i) {
            c.function();
        }
        const unsigned long made = allocations - before;
        over |= made != 0;
        std::printf("bench_format %s_allocations %lu 0 %s\n", c.name, made,
                    made == 0 ? "ok" : "over");
        std::printf("bench_format %s_time %.2f - ok (%.0f ns; snprintf %.0f ns)\n", c.name,
                    time / plain, time, plain);
    }
    return over;
}
