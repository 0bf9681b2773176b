#include "kit/domain.h"

#include "kit/process.h"

#include <algorithm>
#include <cctype>
#include <fstream>

namespace kit {

namespace {

std::string upper(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

void write_port(std::ostream& file, int number) {
    const std::string digit = std::to_string(number);
    file << "[[node.dlc]]\nname = \"ETH" << digit
         << "\"\ntype = \"ethernet\"\nstate = \"active\"\nadapter = " << digit
         << "\n[[node.port]]\nname = \"PORT" << digit << "\"\ndlc = \"ETH" << digit
         << "\"\ndescription = \"port\"\nstate = \"active\"\nport_type = 4\n";
}

// LUs of the same names on every node.
void write_use(std::ostream& file, bool active) {
    file << "\n[[node.pool]]\nname = \"SHARED\"\n[[node.dlur_pu]]\nname = \"PU\"\n";
    for (int i = 1; i < 4; ++i) {
        file << "[[node.lu_0_to_3]]\nname = \"LU" << i << "\"\npu = \"PU\"\nnau = " << i << '\n'
             << (i == 3 ? "" : "pool = \"SHARED\"\n")
             << (i == 1 || !active ? ""
                                   : "application = \"user\"\nuser = \"ann\"\nin_use = true\n");
    }
    file << "[[node.local_lu]]\nname = \"APPC\"\nalias = \"APPC\"\n";
    if (active) {
        file << "[[node.session]]\nlu = \"APPC\"\npartner = \"NET.PARTNER\"\nmode = \"#INTER\"\n"
                "count = 3\ncp = \"NET.OTHER\"\n";
    }
}

void write_node(std::ostream& file, const DOMAIN_NODE& node) {
    file << "\n[[node]]\nname = \"" << node.name << "\"\n";
    if (node.kind == DOMAIN_NODE::UNCONFIGURED) {
        file << "configured = false\n";
        return;
    }
    file << "type = \"network-node\"\ncp_name = \"NET." << upper(node.name) << "\"\ncp_alias = \""
         << upper(node.name) << "\"\ndescription = \"the node " << node.name
         << "\"\nactive = " << (node.kind == DOMAIN_NODE::ACTIVE ? "true" : "false")
         << "\nback_level = " << (node.kind == DOMAIN_NODE::BACK_LEVEL ? "true" : "false") << "\n";
    for (int i = 0; i < node.ports; ++i) {
        write_port(file, i);
    }
    if (node.busy) {
        write_use(file, node.kind == DOMAIN_NODE::ACTIVE);
    }
}

} // namespace

std::vector<std::string> domain_options(const std::vector<DOMAIN_NODE>& nodes,
                                        const std::vector<std::string>& servers,
                                        const std::string& central_logger) {
    const std::string path = scratch() + "/domain.toml";
    std::ofstream file(path);
    file << "[domain]\nclient_server = true\nlocal_server = \"" << nodes.front().name
         << "\"\ncentral_logger = \"" << central_logger << "\"\nservers = [\"" << nodes.front().name
         << "\"";
    for (const std::string& server : servers) {
        file << ", \"" << server << "\"";
    }
    file << "]\n";
    if (std::ranges::any_of(nodes, &DOMAIN_NODE::busy)) {
        file << "[[domain.user]]\nname = \"ann\"\n";
    }
    for (const DOMAIN_NODE& node : nodes) {
        write_node(file, node);
    }
    return {"--domain", path};
}

} // namespace kit
