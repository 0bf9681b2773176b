// formc: compiles form files to one UIL module.
#include "build.h"

#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

namespace {

int usage() {
    std::cerr
        << "usage: formc [-m MODULE] [-n NAMES] -o UIL FORM...\n"
           "Compiles form files to one UIL module. -n also writes one line per widget: prefix of its\n"
           "window or dialog, name, class.\n";
    return 2;
}

// Adds the forms of one file; false when it has errors, which are reported.
bool compile(formc::Module& module, const char* path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        std::cerr << path << ": cannot be read\n";
        return false;
    }
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    bool good = true;
    try {
        for (const formc::Statement& statement : formc::parse_form(path, text)) {
            try {
                formc::build_form(module, statement);
            } catch (const formc::FormError& error) {
                std::cerr << error.what() << '\n';
                good = false;
            }
        }
    } catch (const formc::FormError& error) {
        std::cerr << error.what() << '\n';
        good = false;
    }
    return good;
}

} // namespace

int main(int argc, char** argv) {
    const char* output = nullptr;
    const char* names = nullptr;
    const char* module_name = "forms";
    int i = 1;
    for (; i + 1 < argc && argv[i][0] == '-'; i += 2) {
        if (!std::strcmp(argv[i], "-o"))
            output = argv[i + 1];
        else if (!std::strcmp(argv[i], "-n"))
            names = argv[i + 1];
        else if (!std::strcmp(argv[i], "-m"))
            module_name = argv[i + 1];
        else
            return usage();
    }
    if (!output || i >= argc)
        return usage();

    formc::Module module;
    bool good = true;
    for (; i < argc; ++i)
        good = compile(module, argv[i]) && good;
    if (!good)
        return 1;
    std::ofstream uil(output);
    formc::write_module(uil, module_name, module);
    bool written = static_cast<bool>(uil.flush());
    if (names) {
        std::ofstream list(names);
        formc::write_names(list, module);
        written = written && list.flush();
    }
    if (!written)
        std::cerr << "formc: the output cannot be written\n";
    return written ? 0 : 1;
}
