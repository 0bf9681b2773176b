#include "measure.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

void fail(const char* what) {
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, what);
    std::exit(2);
}

void pin_to_one_processor() {
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof allowed, &allowed);
    int processor = 0;
    for (int i = 0; i < CPU_SETSIZE; ++i) {
        if (CPU_ISSET(i, &allowed)) {
            processor = i; // the last one: the first serves interrupts on many machines
        }
    }
    CPU_ZERO(&allowed);
    CPU_SET(processor, &allowed);
    if (sched_setaffinity(0, sizeof allowed, &allowed) != 0) {
        fail("cannot be pinned to one processor");
    }
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

bool report(const std::string& name, double value, double limit, int decimals) {
    const bool ok = value <= limit;
    std::printf("%s %s %.*f %.*f %s\n", program_invocation_short_name, name.c_str(), decimals,
                value, decimals, limit, ok ? "ok" : "over");
    std::fflush(stdout);
    return ok;
}

Service::Service(const std::string& counts) {
    char directory[] = "/tmp/bench.XXXXXX";
    if (mkdtemp(directory) == nullptr) {
        fail("no directory for the socket");
    }
    directory_ = directory;
    socket_ = directory_ + "/node";
    choose();
    int ready[2];
    if (pipe(ready) != 0) {
        fail("no pipe");
    }
    child_ = fork();
    if (child_ == 0) {
        close(ready[0]);
        prctl(PR_SET_PDEATHSIG, SIGTERM); // fail() leaves without a word to it
        const std::string fd = std::to_string(ready[1]);
        execl(TESSALY_BUILD_DIR "/simnode/tessaly-simnode", "tessaly-simnode", "--socket",
              socket_.c_str(), "--generate", counts.c_str(), "--ready-fd", fd.c_str(),
              static_cast<char*>(nullptr));
        _exit(127);
    }
    close(ready[1]);
    char byte;
    if (read(ready[0], &byte, 1) != 1) {
        fail("the simulated node does not start");
    }
    close(ready[0]);
}

void Service::choose() const {
    setenv("TESSALY_NODE_SOCKET", socket_.c_str(), 1);
}

Service::~Service() {
    kill(child_, SIGTERM);
    waitpid(child_, nullptr, 0);
    unlink(socket_.c_str());
    rmdir(directory_.c_str());
}

double Service::used() const {
    clockid_t service;
    clock_getcpuclockid(child_, &service);
    double sum = 0;
    for (const clockid_t clock : {service, clockid_t{CLOCK_PROCESS_CPUTIME_ID}}) {
        timespec time;
        clock_gettime(clock, &time);
        sum += static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    }
    return sum;
}

} // namespace bench
