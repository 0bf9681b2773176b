#include "scripted_node.h"

#include "nof/pu_lu.h"
#include "nof/tn3270.h"
#include "nof/trace.h"

namespace store_test {

ScriptedNode* ScriptedNode::current;

ScriptedNode::ScriptedNode() {
    current = this;
    node.active = 1;
    put(node.parameters.cp_name, "NET.CP");
    put(node.parameters.cp_alias, "CP");
}
ScriptedNode::~ScriptedNode() {
    current = nullptr;
}

void ScriptedNode::run(std::size_t limit) {
    while (!outstanding.empty() && limit-- > 0 && gvga_exit_code == 0) {
        const Outstanding verb = outstanding.front();
        outstanding.pop_front();
        answer(verb);
        vga_nof_verb_callback(verb.target, verb.vcb, verb.correlator, 0);
    }
}

std::size_t ScriptedNode::sent(NB_USHORT opcode) const {
    return static_cast<std::size_t>(std::count_if(
        journal.begin(), journal.end(), [=](const Sent& verb) { return verb.opcode == opcode; }));
}

std::size_t ScriptedNode::first(NB_USHORT opcode, NB_USHORT indication) const {
    const auto at = std::find_if(journal.begin(), journal.end(), [=](const Sent& verb) {
        return verb.opcode == opcode && verb.indication == indication;
    });
    return static_cast<std::size_t>(at - journal.begin());
}

void ScriptedNode::answer_list(LIST_QUERY* list) {
    std::string owner;
    const auto* key = reinterpret_cast<const NB_BYTE*>(list + 1);
    if (list->header.opcode == NAP_QUERY_LU_0_TO_3) {
        owner = get(reinterpret_cast<const QUERY_LU_0_TO_3*>(list)->pu_name);
    } else if (list->header.opcode == NAP_QUERY_DOWNSTREAM_LU) {
        owner = get(reinterpret_cast<const QUERY_DOWNSTREAM_LU*>(list)->dspu_name);
    } else if (list->header.opcode == NAP_QUERY_PARTNER_LU ||
               list->header.opcode == NAP_QUERY_MODE ||
               list->header.opcode == NAP_QUERY_LU_LU_PASSWORD) {
        owner = get(*reinterpret_cast<const NB_NAME8E*>(key));
    }
    const auto name = std::make_pair(list->header.opcode, owner);
    const auto& all = entries[name];
    std::size_t& at = position[name];
    if ((list->list_options & NAP_FIRST_IN_LIST) != 0) {
        at = 0;
    }
    list->total_entries = static_cast<NB_USHORT>(all.size() - at);
    auto* out = static_cast<char*>(list->buffer);
    std::size_t room = list->buffer_size;
    for (; at < all.size() && list->num_entries < page_entries && all[at].size() <= room; ++at) {
        out = std::copy(all[at].begin(), all[at].end(), out);
        room -= all[at].size();
        ++list->num_entries;
    }
}

void ScriptedNode::answer(const Outstanding& verb) {
    VCB_HEADER* header = vcb_header(verb.vcb);
    if (const auto row = codes.find(header->opcode); row != codes.end()) {
        header->primary_rc = row->second.primary;
        header->secondary_rc = row->second.secondary;
    }
    switch (header->opcode) {
    case NAP_OPEN_FILE: {
        auto* block = static_cast<OPEN_FILE*>(verb.vcb);
        block->file_handle = block->file_info.requested_role == NOF_FILE_CONFIGURATION
                                 ? CONFIG_HANDLE
                             : block->file_info.requested_role == NOF_FILE_SNA_NET ? SNA_NET_HANDLE
                                                                                   : TP_HANDLE;
        break;
    }
    case NAP_CONNECT_NODE:
        static NB_HANDLE last;
        last = sent(NAP_CONNECT_NODE) == 1 ? FIRST_NODE_HANDLE : last + 1;
        static_cast<CONNECT_NODE*>(verb.vcb)->node_handle = last;
        break;
    case NAP_QUERY_NODE: {
        const VCB_HEADER kept = *header;
        *static_cast<QUERY_NODE*>(verb.vcb) = node;
        *header = kept;
        break;
    }
    default: {
        const NBA_VERB_ROW* row = vnv_verb_search(header->opcode, header->format, 0);
        if ((row->flags & NBA_VERB_HAS_BUFFER) != 0 &&
            header->opcode != NAP_QUERY_TN3270_SSL_LDAP) {
            answer_list(static_cast<LIST_QUERY*>(verb.vcb));
        }
    }
    }
    if (const auto last_word = finish.find(header->opcode); last_word != finish.end()) {
        last_word->second(verb.vcb);
    }
}

} // namespace store_test

using store_test::ScriptedNode;
using store_test::Sent;

NB_USHORT nof_async_version(int, NB_HANDLE target, void* vcb, NOF_CALLBACK, NB_ULONG correlator) {
    ScriptedNode* node = ScriptedNode::current;
    if (node == nullptr) {
        return NOF_IN_PROGRESS;
    }
    Sent verb{};
    verb.target = target;
    verb.opcode = vcb_header(vcb)->opcode;
    if (verb.opcode == NAP_REGISTER_INDICATION_SINK) {
        verb.indication = static_cast<REGISTER_INDICATION_SINK*>(vcb)->indication_opcode;
    }
    const std::size_t length = nba_block_length(vcb);
    if (length > sizeof(LIST_QUERY)) {
        verb.list_options = static_cast<LIST_QUERY*>(vcb)->list_options;
        verb.key.assign(static_cast<char*>(vcb) + sizeof(LIST_QUERY), length - sizeof(LIST_QUERY));
    }
    node->journal.push_back(verb);
    node->outstanding.push_back({target, vcb, correlator});
    return NOF_IN_PROGRESS;
}
void vpm_asm_use_xt_sched(XtAppContext, VPM_ADD_INPUT, VPM_REMOVE_INPUT) {}
void vpm_set_io_limit(int) {}
void nof_terminate() {}
int vsm_is_client_server() {
    return ScriptedNode::current != nullptr && ScriptedNode::current->client_server;
}
