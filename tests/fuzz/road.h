// The console's store and verb queue on a node inside the process, without display or network:
// blocks of any content come in where the library would deliver them.
#pragma once

#include "simnode/request.h"

#include <span>
#include <string>
#include <vector>

namespace fuzz {

using simnode::Bytes;

// What happens to a console, one step.
enum class STEP : NB_BYTE {
    INDICATION, // payload: the block; a verb's block is the copy of another operator's
    DAMAGE,     // payload: pieces of 4 bytes (place 16, value 8, operation 8) for the next answer
    ANSWERS,    // argument: how many outstanding verbs are answered, at least one
    ACT,        // argument: which record is started or stopped
    COUNT
};
struct EVENT {
    STEP step;
    NB_BYTE argument; // of an indication: who gets it, see recipient()
    Bytes payload;
};
using SCRIPT = std::vector<EVENT>;

// A script as the bytes of a corpus file, and the reverse: any bytes are a script. The first byte
// says whether the node is part of a domain.
Bytes pack(bool client_server, const SCRIPT& script);
SCRIPT unpack(std::span<const NB_BYTE> bytes, bool* client_server);

// The domain that every console is built from; nothing changes it.
simnode::World& world(bool client_server);

class ROAD {
public:
    // Builds a store by queries, to its end.
    explicit ROAD(bool client_server);
    ~ROAD();
    ROAD(const ROAD&) = delete;
    ROAD& operator=(const ROAD&) = delete;

    // Stops early when the program would end. How many steps it took.
    std::size_t play(std::span<const EVENT> script);
    // Answers all that is outstanding and looks at the store: what is wrong with it.
    std::vector<std::string> faults();
    bool ended() const;
};

// Plays a script on a new store. What is wrong: in the store at its end, or not freed. Asserts are
// no fault: a block may contradict what the store knows, and is then recorded and carried out.
std::vector<std::string> run(bool client_server, std::span<const EVENT> script,
                             std::size_t* played = nullptr);

} // namespace fuzz
