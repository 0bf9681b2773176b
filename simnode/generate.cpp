#include "simnode/generate.h"

#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pu_lu.h"
#include "simnode/generate_definitions.h"
#include "simnode/specific_data.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace simnode {
namespace {

constexpr unsigned long LUS_PER_PU = 254; // NAU addresses 1 to 254
constexpr unsigned long LS_PER_PORT = 4096;

// A name of letters and a number, at most 8 characters.
std::string numbered(const char* prefix, unsigned long number, int digits) {
    char text[24];
    std::snprintf(text, sizeof text, "%s%0*lu", prefix, digits, number);
    return text;
}

void describe(NB_DESCRIPTION& field, const char* what, unsigned long number) {
    put_text(field, sizeof field, std::string(what) + " " + std::to_string(number));
}

void add_dlc(Node& node) {
    Bytes bytes(sizeof(DLC_ENTRY) + default_dlc_specific(NAP_DLC_ETHERNET));
    auto& dlc = *reinterpret_cast<DLC_ENTRY*>(bytes.data());
    put_local(dlc.dlc_name, 8, "ETH");
    dlc.state = NOF_STATE_ACTIVE;
    dlc.def.dlc_type = NAP_DLC_ETHERNET;
    dlc.def.initially_active = NAP_YES;
    dlc.specific_length = static_cast<NB_USHORT>(bytes.size() - sizeof(DLC_ENTRY));
    store(node, kind_row(Kind::dlc), std::move(bytes));
}

void add_port(Node& node, unsigned long number) {
    NB_USHORT port_data = 0;
    NB_USHORT link_data = 0;
    default_port_specific(NAP_DLC_ETHERNET, port_data, link_data);
    Bytes bytes(sizeof(PORT_ENTRY) + port_data + link_data);
    auto& port = *reinterpret_cast<PORT_ENTRY*>(bytes.data());
    put_local(port.port_name, 8, numbered("PT", number, 5));
    describe(port.def.description, "Generated port", number);
    port.state = NOF_STATE_ACTIVE;
    port.dlc_type = NAP_DLC_ETHERNET;
    port.def.initially_active = NAP_YES;
    port.def.port_number = static_cast<NB_ULONG>(number);
    port.def.max_btu = 1033;
    port.def.port_data_length = port_data;
    port.def.link_data_length = link_data;
    put_local(port.def.dlc_name, 8, "ETH");
    store(node, kind_row(Kind::port), std::move(bytes));
}

void add_ls(Node& node, unsigned long number, unsigned long ports, bool host) {
    const std::size_t specific = default_ls_specific(NAP_DLC_ETHERNET);
    Bytes bytes(sizeof(LS_ENTRY) + specific);
    auto& ls = *reinterpret_cast<LS_ENTRY*>(bytes.data());
    put_local(ls.ls_name, 8, numbered("LS", number, 6));
    put_local(ls.def.port_name, 8, numbered("PT", number % ports, 5));
    describe(ls.def.description, "Generated link", number);
    ls.det.state = NOF_STATE_ACTIVE;
    ls.det.dlc_type = NAP_DLC_ETHERNET;
    ls.det.activation_flags = NOF_LS_INCOMING;
    ls.def.initially_active = NAP_YES;
    ls.def.adj_cp_type = host ? NAP_HOST_XID3 : NAP_NETWORK_NODE;
    put_ebcdic(ls.def.adj_cp_name, sizeof ls.def.adj_cp_name,
               "GENNET." + numbered("CP", number, 6));
    std::memcpy(ls.det.adj_cp_name, ls.def.adj_cp_name, sizeof ls.def.adj_cp_name);
    ls.det.adj_cp_type = ls.def.adj_cp_type;
    if (host) {
        put_ebcdic(ls.def.pu_name, 8, numbered("PU", number, 6));
        ls.def.solicit_sscp_sessions = NAP_YES;
    }
    ls.def.specific_length = static_cast<NB_USHORT>(specific);
    update_pu_of_ls(node, store(node, kind_row(Kind::ls), std::move(bytes)));
}

void add_lu_0_to_3(Node& node, unsigned long number, unsigned long pus) {
    Bytes bytes(sizeof(LU03_ENTRY));
    auto& lu = *reinterpret_cast<LU03_ENTRY*>(bytes.data());
    put_ebcdic(lu.lu_name, 8, numbered("L", number, 7));
    put_ebcdic(lu.def_data.pu_name, 8, numbered("PU", number % pus, 6));
    describe(lu.def_data.description, "Generated LU", number);
    lu.def_data.nau_address = static_cast<NB_BYTE>(1 + number / pus);
    lu.def_data.lu_model = NOF_LU_3270_DISPLAY_MODEL_2;
    lu.det_data.lu_active = 1;
    lu.det_data.host_attachment = NAP_DIRECT_ATTACHED;
    store(node, kind_row(Kind::lu_0_to_3), std::move(bytes));
}

void add_local_lu(Node& node, unsigned long number) {
    Bytes bytes(sizeof(LU62_ENTRY));
    auto& lu = *reinterpret_cast<LU62_ENTRY*>(bytes.data());
    put_ebcdic(lu.lu_name, 8, numbered("A", number, 7));
    put_local(lu.def.lu_alias, 8, numbered("A", number, 7));
    describe(lu.def.description, "Generated LU 6.2", number);
    store(node, kind_row(Kind::local_lu), std::move(bytes));
}

// Kinds that the named counts are for, or that follow from other records.
bool has_count_of_its_own(Kind kind) {
    static constexpr Kind kinds[] = {Kind::port, Kind::ls, Kind::pu, Kind::lu_0_to_3,
                                     Kind::local_lu};
    return std::find(std::begin(kinds), std::end(kinds), kind) != std::end(kinds);
}

} // namespace

bool parse_counts(std::string_view text, Counts& counts, std::string& error) {
    const std::pair<std::string_view, unsigned long*> names[] = {
        {"node", &counts.nodes}, {"port", &counts.ports},      {"ls", &counts.link_stations},
        {"pu", &counts.pus},     {"lu03", &counts.lus_0_to_3}, {"lu62", &counts.local_lus}};
    while (!text.empty()) {
        const std::string_view item = text.substr(0, text.find(','));
        text.remove_prefix(std::min(text.size(), item.size() + 1));
        const std::size_t equals = item.find('=');
        unsigned long* count = nullptr;
        for (const auto& [name, target] : names) {
            count = item.substr(0, equals) == name ? target : count;
        }
        const KindRow* row = count == nullptr ? kind_named(item.substr(0, equals)) : nullptr;
        if (row != nullptr && !has_count_of_its_own(row->kind)) {
            count = &counts.others[static_cast<std::size_t>(row->kind)];
        }
        const std::string_view number =
            equals == std::string_view::npos ? std::string_view() : item.substr(equals + 1);
        if (count == nullptr || number.find_first_not_of("0123456789") != std::string_view::npos ||
            !parse_number(number, *count) || *count > 9'999'999 || counts.nodes == 0) {
            error =
                "not KIND=COUNT with KIND one of node, port, ls, pu, lu03, lu62 or another kind's "
                "name: " +
                std::string(item);
            return false;
        }
    }
    return true;
}

namespace {

// Raises counts to what the other records need above them.
void raise_counts(Counts& counts) {
    auto& others = counts.others;
    for (auto row = kind_rows().rbegin(); row != kind_rows().rend(); ++row) {
        raise_parents(*row, others);
    }
    counts.ports = std::max(counts.ports, others[static_cast<std::size_t>(Kind::port)]);
    counts.lus_0_to_3 =
        std::max(counts.lus_0_to_3, others[static_cast<std::size_t>(Kind::lu_0_to_3)]);
    counts.local_lus = std::max(counts.local_lus, others[static_cast<std::size_t>(Kind::local_lu)]);
    counts.pus = std::max(counts.pus, (counts.lus_0_to_3 + LUS_PER_PU - 1) / LUS_PER_PU);
    counts.link_stations = std::max(counts.link_stations, counts.pus);
    counts.ports = std::max(counts.ports, (counts.link_stations + LS_PER_PORT - 1) / LS_PER_PORT);
}

// The number is left out of the names of an only node.
std::unique_ptr<Node> new_node(unsigned long number, unsigned long nodes) {
    auto node = std::make_unique<Node>();
    const std::string digits = nodes > 1 ? numbered("", number, 2) : "";
    node->name = "generated" + digits;
    node->active = true;
    node->parameters.size = sizeof node->parameters;
    node->parameters.node_type = NAP_NODE_NETWORK;
    put_ebcdic(node->parameters.cp_name, sizeof node->parameters.cp_name,
               (nodes > 1 ? "GENNET.GEN" + digits : "GENNET.GENNODE"));
    put_local(node->parameters.cp_alias, 8, nodes > 1 ? "GEN" + digits : "GENNODE");
    put_text(node->parameters.description, sizeof node->parameters.description, "Generated node");
    node->capabilities = {{1, 1}, {1, 1}, 1, 1, 0, 1, 1, 1, 1};
    return node;
}

void fill_node(Node& node, const Counts& counts) {
    if (counts.ports != 0) {
        add_dlc(node);
    }
    for (unsigned long i = 0; i < counts.ports; ++i) {
        add_port(node, i);
    }
    for (unsigned long i = 0; i < counts.link_stations; ++i) {
        add_ls(node, i, counts.ports, i < counts.pus);
    }
    for (unsigned long i = 0; i < counts.lus_0_to_3; ++i) {
        add_lu_0_to_3(node, i, counts.pus);
    }
    for (unsigned long i = 0; i < counts.local_lus; ++i) {
        add_local_lu(node, i);
    }
}

// The records of the remaining kinds that the domain, or each node, keeps.
void fill_others(Node& node, const Counts& counts, bool of_domain) {
    for (const KindRow& row : kind_rows()) {
        const unsigned long count = counts.others[static_cast<std::size_t>(row.kind)];
        for (unsigned long i = 0;
             i < count && row.of_domain == of_domain && !has_count_of_its_own(row.kind); ++i) {
            add_generated(node, row, i);
        }
    }
}

} // namespace

void generate_domain(Domain& domain, Counts counts) {
    raise_counts(counts);
    for (unsigned long i = 0; i < counts.nodes; ++i) {
        auto node = new_node(i, counts.nodes);
        fill_node(*node, counts);
        fill_others(*node, counts, false);
        add_standard_resources(*node);
        domain.nodes.push_back(std::move(node));
    }
    fill_others(domain.file, counts, true);
    domain.client_server = counts.nodes > 1;
    domain.local_server = domain.central_logger = domain.nodes.front()->name;
    if (domain.client_server) {
        domain.servers.push_back(domain.local_server);
    }
}

} // namespace simnode
