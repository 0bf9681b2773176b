// The fuzzer's road without its guidance: every seed, the files of the corpus, and indications with
// random contents.
#include <gtest/gtest.h> // before X, whose macros would break it

#include "fuzz/blocks.h"

#include "shell/globals.h"
#include "shell/verb_queue.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fuzz {
namespace {

// More than the usual number of something, for long runs.
long asked_for(const char* variable, long usual) {
    const char* text = std::getenv(variable);
    return text != nullptr ? std::atol(text) : usual;
}

void expect_sound(const std::vector<std::string>& faults, const std::string& what) {
    for (const std::string& fault : faults) {
        ADD_FAILURE() << what << ": " << fault;
    }
}

TEST(Fuzz, EverySeedLeavesTheStoreSound) {
    int number = 0;
    SCRIPT together;
    for (const SCRIPT& script : seeds()) {
        together.insert(together.end(), script.begin(), script.end());
        if (++number % 20 == 0) {
            expect_sound(run(number % 40 == 0, together), "seeds up to " + std::to_string(number));
            together.clear();
        }
    }
}

TEST(Fuzz, CorpusLeavesTheStoreSound) {
    for (const auto& file :
         std::filesystem::directory_iterator(TESSALY_SOURCE_DIR "/tests/fuzz/corpus")) {
        std::ifstream stream(file.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(stream), {}};
        bool client_server;
        const SCRIPT script =
            unpack({reinterpret_cast<const NB_BYTE*>(text.data()), text.size()}, &client_server);
        expect_sound(run(client_server, script), file.path().filename().string());
    }
}

TEST(Fuzz, ChangedScriptsLeaveTheStoreSound) {
    const std::vector<SCRIPT> start = seeds();
    DICE dice(7);
    for (long left = asked_for("TESSALY_FUZZ_SCRIPTS", 150); left > 0; --left) {
        SCRIPT script = start[dice() % start.size()];
        for (auto changes = 5 + dice() % 20; changes > 0; --changes) {
            change(script, dice);
        }
        expect_sound(run(dice() % 2 == 0, script), "script " + std::to_string(left));
        if (HasFailure()) {
            return;
        }
    }
}

TEST(Fuzz, RandomIndicationsLeaveTheStoreSound) {
    constexpr long batch = 2000;
    DICE dice(11);
    long delivered = 0;
    for (long left = asked_for("TESSALY_FUZZ_INDICATIONS", 10 * batch); left > 0;) {
        SCRIPT script;
        for (long i = 0; i < batch; ++i) {
            script.push_back(random_indication(dice));
            if (dice() % 16 == 0) {
                script.push_back({STEP::ANSWERS, static_cast<NB_BYTE>(dice()), {}});
            }
        }
        // Some end the program; a new one takes what is left.
        for (std::size_t from = 0; from < script.size();) {
            std::size_t played = 0;
            const auto rest = std::span(script).subspan(from);
            expect_sound(run(dice() % 2 == 0, rest, &played),
                         "indications from " + std::to_string(delivered));
            const auto count =
                std::ranges::count(rest.first(played), STEP::INDICATION, &EVENT::step);
            delivered += count;
            left -= count;
            from += played;
        }
        if (HasFailure()) {
            return;
        }
    }
}

} // namespace
} // namespace fuzz
