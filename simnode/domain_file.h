// Domains as TOML files: what a service starts with, and what it keeps across runs.
#pragma once

#include "simnode/world.h"

namespace simnode {

// Reads a domain. On an error the domain is unusable and error says why, with file and line.
bool load_domain(Domain& domain, const std::string& path, std::string& error);
// The same from a text; name stands for the file in errors.
bool parse_domain(Domain& domain, std::string_view text, std::string_view name, std::string& error);
// Writes a whole domain, in place of an older file at once. False when that fails.
bool save_domain(const Domain& domain, const std::string& path);
std::string domain_text(const Domain& domain);

} // namespace simnode
