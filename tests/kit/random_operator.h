// Another operator of a simulated node, who does things at random: defines and redefines every kind
// of resource, deletes, starts, stops, and changes that come from the network. The same seed does
// the same to the same domain.
#pragma once

#include "kit/control.h"
#include "nba/nba.h"

#include <random>
#include <string>

namespace kit {

class RANDOM_OPERATOR {
public:
    // loses: indications are lost now and then, which the node says.
    RANDOM_OPERATOR(const std::string& socket, unsigned seed, bool loses = true)
        : control_(socket), random_(seed), loses_(loses) {}

    // One change; the command that made it, or "" when the node refused.
    std::string step();
    // One definition; the same.
    std::string define();
    int pick(int count) { return std::uniform_int_distribution(0, count - 1)(random_); }
    CONTROL& control() { return control_; }

private:
    struct RULE;
    static const RULE rules[];

    std::string run(const std::string& command);
    std::string change();
    std::string remove();
    // LUs of a PU in a row come, or go.
    std::string range();
    // A verb about a range of names and addresses.
    template <typename Block> std::string send(NB_USHORT opcode, Block& block);
    // The name of some resource of a kind, or "" when there is none.
    std::string some(const std::string& kind);
    // One of the alternatives of a pattern, with its placeholders filled in.
    std::string filled(std::string_view pattern);

    CONTROL control_;
    std::mt19937 random_;
    bool loses_;
};

} // namespace kit
