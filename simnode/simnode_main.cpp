// tessaly-simnode: the service of a simulated node.
#include "simnode/domain_file.h"
#include "simnode/generate.h"
#include "simnode/lively.h"
#include "simnode/service.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <getopt.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

using namespace simnode;

struct Options {
    std::string socket;
    std::string domain;
    std::string state;
    std::string generate;
    std::string journal;
    std::vector<NB_ULONG> read_only_uids;
    bool lively = false;
    int ready_fd = -1;
    int exit_fd = -1;
};

constexpr char usage_text[] =
    "usage: tessaly-simnode --socket PATH [--domain FILE] [--state FILE] [--generate KIND=COUNT,...]\n"
    "                       [--lively] [--journal FILE] [--read-only-uid UID]... [--ready-fd N]\n"
    "                       [--exit-with-fd N]\n";

constexpr option long_options[] = {
    {"socket", required_argument, nullptr, 's'},
    {"domain", required_argument, nullptr, 'd'},
    {"state", required_argument, nullptr, 't'},
    {"generate", required_argument, nullptr, 'g'},
    {"lively", no_argument, nullptr, 'l'},
    {"journal", required_argument, nullptr, 'j'},
    {"ready-fd", required_argument, nullptr, 'r'},
    {"exit-with-fd", required_argument, nullptr, 'x'},
    {"read-only-uid", required_argument, nullptr, 'u'},
    {"help", no_argument, nullptr, 'h'},
    {},
};

// Status 0 for --help, 2 for a bad command line; -1: go on.
int parse_options(int argc, char** argv, Options& options) {
    for (int c = 0; (c = getopt_long(argc, argv, "", long_options, nullptr)) != -1;) {
        switch (c) {
        case 's':
            options.socket = optarg;
            break;
        case 'd':
            options.domain = optarg;
            break;
        case 't':
            options.state = optarg;
            break;
        case 'g':
            options.generate = optarg;
            break;
        case 'l':
            options.lively = true;
            break;
        case 'j':
            options.journal = optarg;
            break;
        case 'r':
            options.ready_fd = std::atoi(optarg);
            break;
        case 'x':
            options.exit_fd = std::atoi(optarg);
            break;
        case 'u':
            options.read_only_uids.push_back(
                static_cast<NB_ULONG>(std::strtoul(optarg, nullptr, 10)));
            break;
        case 'h':
            std::fputs(usage_text, stdout);
            return 0;
        default:
            std::fputs(usage_text, stderr);
            return 2;
        }
    }
    if (options.socket.empty() || optind != argc) {
        std::fputs(usage_text, stderr);
        return 2;
    }
    return -1;
}

// The example domain: as TESSALY_DOMAIN says, or where the build or the installation has put it,
// seen from the program.
std::string example_domain() {
    if (const char* variable = std::getenv("TESSALY_DOMAIN")) {
        return variable;
    }
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    const auto above = program.parent_path().parent_path();
    for (const char* place : {"share/domains/demo.toml", "data/domains/demo.toml"}) {
        if (std::filesystem::exists(above / place, error)) {
            return above / place;
        }
    }
    return above / "share/domains/demo.toml";
}

bool set_up_domain(Service& service, const Options& options, std::string& error) {
    Domain& domain = service.world.domain;
    std::error_code ignored;
    const bool kept = !options.state.empty() && std::filesystem::exists(options.state, ignored);
    if (kept) {
        if (!load_domain(domain, options.state, error)) {
            return false;
        }
    } else if (!options.generate.empty()) {
        Counts counts;
        if (!parse_counts(options.generate, counts, error)) {
            return false;
        }
        generate_domain(domain, counts);
    } else if (!load_domain(domain, options.domain.empty() ? example_domain() : options.domain,
                            error)) {
        return false;
    }
    service.state_path = options.state;
    domain.read_only_uids.insert(options.read_only_uids.begin(), options.read_only_uids.end());
    return true;
}

int serve(const Options& options) {
    Service service;
    std::string error;
    if (!set_up_domain(service, options, error) || !listen_at(service, options.socket, error)) {
        std::fprintf(stderr, "tessaly-simnode: %s\n", error.c_str());
        return 1;
    }
    if (!options.journal.empty()) {
        service.journal.file = std::fopen(options.journal.c_str(), "w");
        if (service.journal.file == nullptr) {
            std::fprintf(stderr, "tessaly-simnode: %s: %s\n", options.journal.c_str(),
                         std::strerror(errno));
            return 1;
        }
    }
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    service.signal_fd = signalfd(-1, &signals, SFD_CLOEXEC);
    watch(service, service.signal_fd);
    if (options.exit_fd >= 0) {
        service.exit_fd = options.exit_fd;
        watch(service, options.exit_fd);
    }
    if (options.lively) {
        service.lively_period = std::chrono::seconds(2);
        service.next_tick = Clock::now() + service.lively_period;
        service.faults.durations = lively_durations();
    }
    if (options.ready_fd >= 0) {
        static constexpr char ready[] = "ready\n";
        if (write(options.ready_fd, ready, sizeof ready - 1) < 0) {
            std::fprintf(stderr, "tessaly-simnode: --ready-fd: %s\n", std::strerror(errno));
        }
        close(options.ready_fd);
    }
    run(service);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    const int status = parse_options(argc, argv, options);
    return status >= 0 ? status : serve(options);
}
