// Generated records of any kind whose entry is its key and little else: names that end in a number,
// below parents that are made with them.
#include "simnode/generate_definitions.h"

#include "nof/cn.h"
#include "nof/connectivity.h"
#include "nof/lu62.h"
#include "nof/pool.h"
#include "nof/pu_lu.h"
#include "nof/routing.h"
#include "nof/tn3270.h"
#include "nof/trace.h"
#include "simnode/specific_data.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace simnode {
namespace {

constexpr unsigned long PER_OWNER = 8;

struct Prefix {
    Kind kind;
    const char* text;
};
// Of the kinds that other ones refer to; the rest are told apart by their own letter.
constexpr Prefix prefixes[] = {{Kind::port, "PT"},        {Kind::ls, "LS"},
                               {Kind::lu_0_to_3, "L"},    {Kind::local_lu, "A"},
                               {Kind::dlur_pu, "PD"},     {Kind::downstream_pu, "DP"},
                               {Kind::downstream_lu, "D"}};

std::string name_of(Kind kind, unsigned long index, std::size_t length) {
    std::string prefix = "G";
    for (const Prefix& known : prefixes) {
        prefix = known.kind == kind ? known.text : prefix;
    }
    char number[24];
    if (length == 256) { // an address
        std::snprintf(number, sizeof number, "10.%lu.%lu.%lu", index >> 16 & 255, index >> 8 & 255,
                      index & 255);
        return number;
    }
    if (length < 8) {
        static constexpr char digits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
        for (std::size_t i = length - 1; i-- > 0; index /= 36) {
            prefix.insert(1, 1, digits[index % 36]);
        }
        return prefix;
    }
    const int width = static_cast<int>(8 - prefix.size() - (kind == Kind::port ? 1 : 0));
    std::snprintf(number, sizeof number, "%0*lu", width, index);
    return (length == sizeof(NB_FQNAME) ? "GENNET." : "") + prefix + number;
}

// The parent's index: a record of a kind that stands below another is one of a few below it.
unsigned long parent_index(Kind kind, unsigned long index) {
    return kind == Kind::cn_port || kind == Kind::extra_data ? index
           : kind == Kind::downstream_lu                     ? index / 254
                                                             : index / PER_OWNER;
}

void fill_key(const KindRow& row, Bytes& entry, unsigned long index) {
    for (const Piece& piece : row.key) {
        NB_BYTE* bytes = entry.data() + piece.offset;
        const bool lu_of_pool =
            row.kind == Kind::pool && piece.offset == offsetof(LU_POOL_ENTRY, lu_name);
        if (piece.length == 0 || lu_of_pool) {
            continue;
        }
        const bool parent = piece.offset == row.parent.offset && row.parents != 0;
        const Kind named = parent                         ? owner_row(row).kind
                           : row.kind == Kind::cn_port    ? Kind::port
                           : row.kind == Kind::extra_data ? Kind::lu_0_to_3
                                                          : row.kind;
        const unsigned long number = parent ? parent_index(row.kind, index) : index;
        const auto* field =
            std::find_if(fields_of(row.kind).begin(), fields_of(row.kind).end(),
                         [&](const Field& candidate) { return candidate.offset == piece.offset; })
                .base();
        if (field->type == FieldType::ebcdic) {
            put_ebcdic(bytes, std::min<std::size_t>(piece.length, field->length),
                       name_of(named, number, field->length));
        } else if (field->type == FieldType::local) {
            put_local(bytes, piece.length, name_of(named, number, piece.length));
        } else if (field->type == FieldType::text) {
            put_text(reinterpret_cast<char*>(bytes), piece.length,
                     name_of(named, number, piece.length));
        } else if (field->type == FieldType::hex) {
            for (std::size_t i = 0; i < sizeof(NB_ULONG); ++i) {
                bytes[piece.length - 1 - i] = static_cast<NB_BYTE>(index >> (8 * i));
            }
        } else if (field->type == FieldType::number) {
            write_count(bytes, static_cast<NB_BYTE>(piece.length),
                        row.owned || row.parent.length != 0 ? index % PER_OWNER + 1
                                                            : index % 40000 + 20000);
        }
    }
}

// What an entry must hold beside its key to be believed.
void fill_definition(const KindRow& row, Bytes& entry, unsigned long index) {
    auto* data = entry.data();
    switch (row.kind) {
    case Kind::dlc:
        reinterpret_cast<DLC_ENTRY*>(data)->def.dlc_type = NAP_DLC_ETHERNET;
        break;
    case Kind::directory:
        reinterpret_cast<DIRECTORY_ENTRY*>(data)->resource_type = NAP_NETWORK_NODE_CP_RESOURCE;
        reinterpret_cast<DIRECTORY_ENTRY*>(data)->entry_type = NOF_DIRECTORY_DEFINED;
        break;
    case Kind::dlc_trace:
        reinterpret_cast<DLC_TRACE_ENTRY*>(data)->resource_type = NOF_TRACE_PORT;
        break;
    case Kind::downstream_lu:
        put_ebcdic(reinterpret_cast<DOWN_LU_ENTRY*>(data)->def.dspu_name, 8,
                   name_of(Kind::downstream_pu, parent_index(row.kind, index), 8));
        reinterpret_cast<DOWN_LU_ENTRY*>(data)->def.nau_address =
            static_cast<NB_BYTE>(index % 254 + 1);
        reinterpret_cast<DOWN_LU_ENTRY*>(data)->type = NAP_PU_CONCENTRATION;
        break;
    case Kind::downstream_pu:
        reinterpret_cast<PU_ENTRY*>(data)->host_attachment = NAP_PU_CONCENTRATION;
        break;
    case Kind::dlur_pu:
        reinterpret_cast<PU_ENTRY*>(data)->host_attachment = NAP_DLUR_ATTACHED;
        reinterpret_cast<PU_ENTRY*>(data)->dlur_status = NOF_DLUR_INACTIVE;
        break;
    case Kind::lu62_timeout:
        reinterpret_cast<LU62_TIMEOUT_ENTRY*>(data)->resource_type = NOF_TIMEOUT_MODE;
        break;
    case Kind::redirect: {
        auto& def = reinterpret_cast<TN_REDIRECT_ENTRY*>(data)->def;
        put_text(def.host_address, sizeof def.host_address, "10.255.0.1");
        def.host_port = 23;
        break;
    }
    case Kind::dslu_template:
        reinterpret_cast<DSLU_TEMPLATE*>(data)->last_nau =
            reinterpret_cast<DSLU_TEMPLATE*>(data)->first_nau;
        break;
    default:
        if (row.parent.length != 0 && row.kind == Kind::primary_lu0) {
            put_local(data + row.parent.offset, row.parent.length,
                      name_of(Kind::primary_line, parent_index(row.kind, index), 14));
        }
        break;
    }
    if (const Field* description = field_named(row, "description")) {
        std::string reason;
        set_field(*description, entry, "Generated " + std::to_string(index), reason);
    }
}

} // namespace

void raise_parents(const KindRow& row, std::array<unsigned long, KIND_COUNT>& counts) {
    const unsigned long count = counts[static_cast<std::size_t>(row.kind)];
    if (count == 0 || row.parents == 0 || row.kind == Kind::directory) {
        return;
    }
    const auto raise = [&](Kind kind) {
        auto& parents = counts[static_cast<std::size_t>(kind)];
        parents = std::max(parents, parent_index(row.kind, count - 1) + 1);
    };
    raise(owner_row(row).kind);
    if (row.kind == Kind::cn_port) {
        raise(Kind::port);
    }
}

void add_generated(Node& node, const KindRow& row, unsigned long index) {
    Bytes entry(row.entry_size);
    fill_key(row, entry, index);
    fill_definition(row, entry, index);
    add_default_specific(row, entry);
    std::string owner;
    if (row.owned) {
        Bytes above(owner_row(row).entry_size);
        fill_key(owner_row(row), above, parent_index(row.kind, index));
        owner = make_key(owner_row(row).key, above.data());
    }
    store(node, row, std::move(entry), owner);
}

} // namespace simnode
