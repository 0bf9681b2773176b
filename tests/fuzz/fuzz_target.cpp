// The coverage-guided fuzzer of completions and indications.
//
//   fuzz_verbs --write-seeds DIRECTORY     one corpus file per kind of block
//   fuzz_verbs [options] DIRECTORY         fuzzes; as every program of this fuzzing library
//   fuzz_verbs FILE                        plays one file again
#include "fuzz/blocks.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    if (*argc == 3 && std::strcmp((*argv)[1], "--write-seeds") == 0) {
        int number = 0;
        for (const fuzz::SCRIPT& script : fuzz::seeds()) {
            const fuzz::Bytes bytes = fuzz::pack(number % 4 == 0, script);
            std::ofstream file(std::string((*argv)[2]) + "/seed" + std::to_string(++number));
            file.write(reinterpret_cast<const char*>(bytes.data()),
                       static_cast<std::streamsize>(bytes.size()));
        }
        std::exit(0);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    bool client_server;
    const fuzz::SCRIPT script = fuzz::unpack({data, size}, &client_server);
    const std::vector<std::string> faults = fuzz::run(client_server, script);
    for (const std::string& fault : faults) {
        std::fprintf(stderr, "fault: %s\n", fault.c_str());
    }
    if (!faults.empty()) {
        std::abort();
    }
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t max_size, unsigned seed) {
    bool client_server;
    fuzz::SCRIPT script = fuzz::unpack({data, size}, &client_server);
    fuzz::DICE dice(seed);
    for (auto changes = 1 + dice() % 3; changes > 0; --changes) {
        fuzz::change(script, dice, LLVMFuzzerMutate);
    }
    const fuzz::Bytes bytes = fuzz::pack(client_server != (dice() % 50 == 0), script);
    if (bytes.size() > max_size) {
        return size;
    }
    std::memcpy(data, bytes.data(), bytes.size());
    return bytes.size();
}
