// What the benchmarks that run against the simulated node share: the service, processor time, and
// the line per measured thing.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace bench {

// Ends the program with status 2: something that is no matter of speed went wrong.
[[noreturn]] void fail(const char* what);

// Runs the program, and what it starts from now on, on one processor.
void pin_to_one_processor();

double median(std::vector<double> values);

// Prints "NAME CASE value limit ok|over"; true when the value is within its limit.
bool report(const std::string& name, double value, double limit, int decimals = 2);

// A simulated node in a process of its own, on a generated domain; named to this program as its
// node service.
class Service {
public:
    explicit Service(const std::string& counts); // of --generate
    ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    const std::string& socket() const { return socket_; }
    // Names it to this program as its node service, in place of another.
    void choose() const;

    // Processor time that some work takes here and in the service.
    double seconds(auto&& work) const {
        const double start = used();
        work();
        return used() - start;
    }

private:
    double used() const;

    std::string directory_;
    std::string socket_;
    pid_t child_;
};

} // namespace bench
