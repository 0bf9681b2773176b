// What the exception log says of definitions that could not be updated, or that may have lost
// updates with the configuration file.
#include "common/names.h"
#include "nof/tn3270.h"
#include "nof/user.h"
#include "shell/globals.h"
#include "shell/messages.h"
#include "store/record_util.h"
#include "store/tracking.h"
#include "store/tracking_util.h"

namespace {

enum : int { // what the two lines of a record name
    NAMES_USER = 272,
    NAMES_GROUP = 273,
    NAMES_TN_CLIENT = 274,
    NAMES_TN_ASSOC = 284,
    NAMES_DOWN_LU = 285,
    NAMES_RJE_WKSTN = 286,
    NAMES_LU = 277,
    NAMES_LU62 = 278,
    NAMES_PARTNER = 279,
};

struct Line {
    char text[VGA_MESSAGE_BUFFER_SIZE];
};

Line local_line(int message, const char* name, std::size_t width) {
    Line line;
    vga_print_msg(line.text, gvga_messages[message], "cs", static_cast<int>(width), name);
    return line;
}
Line ebcdic_line(int message, const NB_BYTE* name) {
    Line line;
    vga_print_msg(line.text, gvga_messages[message], "es", int{sizeof(NB_NAME8E)}, name);
    return line;
}

struct Lines {
    Line object, subject;
};

Line user_line(const char* name, const EMULATOR_USER_DEF& def) {
    return local_line(def.group == 1 ? NAMES_GROUP : NAMES_USER, name,
                      sizeof(EMULATOR_USER_ENTRY::user_name));
}

// What of a session was to change shows beside the store, which still has the old one.
Line session_line(const vga_user* user, const USER_SESSION& session) {
    if (session.session_type == NOF_SESSION_3270) {
        return ebcdic_line(NAMES_LU, session.lu_name);
    }
    const auto* known = user != nullptr
                            ? vga_find<vga_user_sess>(user->session_tree, session.session_name)
                            : nullptr;
    const bool partner = known != nullptr && std::memcmp(known->vcb.lu_name, session.lu_name,
                                                         sizeof session.lu_name) == 0;
    return partner ? local_line(NAMES_PARTNER, session.partner.plu_alias,
                                sizeof session.partner.plu_alias)
                   : local_line(NAMES_LU62, reinterpret_cast<const char*>(session.lu_name),
                                sizeof session.lu_name);
}

template <typename Item, typename Block> const Item& first_item(const Block& block) {
    return *reinterpret_cast<const Item*>(&block + 1);
}

Lines user_lines(const void* vcb, const vga_node*) {
    const auto& block = *static_cast<const DEFINE_EMULATOR_USER*>(vcb);
    const auto* user = vga_find<vga_user>(gvga_system->user_tree, block.user_name);
    return {user_line(block.user_name, block.def),
            session_line(user, first_item<USER_SESSION>(block))};
}

Lines tn_client_lines(const void* vcb, const vga_node* node) {
    const auto& block = *static_cast<const DEFINE_TN3270_ACCESS*>(vcb);
    const auto& session = first_item<TN3270_SESSION>(block);
    const auto* client = vga_find<vga_tn_client>(node->tn_client_tree, &block.client);
    const auto* known =
        client != nullptr ? vga_find<vga_tn_sess>(client->sess_tree, &session.port) : nullptr;
    const bool printer =
        known != nullptr &&
        std::memcmp(known->vcb.printer_lu_name, session.printer_lu_name, sizeof(NB_NAME8E)) != 0;
    static constexpr char default_client[] = "<DEFAULT>";
    const bool is_default = block.client.default_record != 0;
    return {local_line(NAMES_TN_CLIENT, is_default ? default_client : block.client.address,
                       is_default ? sizeof default_client - 1 : sizeof block.client.address),
            ebcdic_line(NAMES_LU, printer ? session.printer_lu_name : session.lu_name)};
}

Lines down_lu_lines(const void* vcb, const vga_node*) {
    const auto& block = *static_cast<const DEFINE_DOWNSTREAM_LU*>(vcb);
    return {ebcdic_line(NAMES_DOWN_LU, block.dslu_name),
            ebcdic_line(NAMES_LU, block.def.host_lu_name)};
}

// The block has the name alone.
Lines deleted_down_lu_lines(const void* vcb, const vga_node* node) {
    const auto& block = *static_cast<const DELETE_BY_NAME8*>(vcb);
    Lines lines{ebcdic_line(NAMES_DOWN_LU, block.name), {}};
    for (auto* pu = ntl_avl_first<vga_pu>(node->down_pu_tree); pu != nullptr;
         pu = vga_next<vga_pu>(pu->node)) {
        if (const auto* lu = vga_find<vga_down_lu>(pu->lu_tree, block.name); lu != nullptr) {
            lines.subject = ebcdic_line(NAMES_LU, lu->vcb.def.host_lu_name);
        }
    }
    return lines;
}

Lines rje_lines(const void* vcb, const vga_node*) {
    const auto& block = *static_cast<const DEFINE_RJE_WKSTN*>(vcb);
    const auto* known = vga_find<vga_rje_wkstn>(gvga_system->rje_tree, block.wkstn_name);
    std::size_t slot = 0;
    for (std::size_t i = 0; known != nullptr && i < std::size(block.def.lu_names); ++i) {
        if (std::memcmp(known->vcb.def.lu_names[i], block.def.lu_names[i], sizeof(NB_NAME8E)) !=
            0) {
            slot = i;
            break;
        }
    }
    return {local_line(NAMES_RJE_WKSTN, block.wkstn_name, sizeof block.wkstn_name),
            ebcdic_line(NAMES_LU, block.def.lu_names[slot])};
}

struct Row {
    NB_USHORT opcode;
    Lines (*lines)(const void* vcb, const vga_node* node);
};
constexpr Row rows[] = {
    {NAP_DEFINE_EMULATOR_USER, user_lines},    {NAP_DEFINE_TN3270_ACCESS, tn_client_lines},
    {NAP_DEFINE_DOWNSTREAM_LU, down_lu_lines}, {NAP_DELETE_DOWNSTREAM_LU, deleted_down_lu_lines},
    {NAP_DEFINE_RJE_WKSTN, rje_lines},
};

bool in_use(const NB_BYTE* lu_name) {
    static constexpr NB_NODE_NAME no_node{};
    const vga_lu_key key{lu_name, no_node};
    const auto* lu = static_cast<const vga_lu03*>(ntl_avl_find_next(&gvga_system->lu_tree, &key));
    for (; lu != nullptr && vga_compare_ebc8(lu->vcb.lu_name, lu_name) == 0;
         lu = vga_next<vga_lu03>(lu->system_node)) {
        if (lu->vcb.det_data.appl_conn_active == NAP_YES) {
            return true;
        }
    }
    return false;
}

bool in_use(const vga_rje_wkstn* wkstn) {
    const RJE_WKSTN_DEF& def = wkstn->vcb.def;
    const auto* end = def.lu_names + std::min<std::size_t>(def.num_lus, std::size(def.lu_names));
    return wkstn->update_mask != 0 ||
           std::any_of(def.lu_names, end, [](const NB_NAME8E& name) { return in_use(name); });
}

void log_lost(int subcode, const Line& object, const Line& subject) {
    if (!nba_exceptions_suppressed()) {
        nba_pd_print_exception(0x4002000A, subcode, "s s", object.text, subject.text);
    }
}

} // namespace

void vga_log_failed_update(const void* vcb, const vga_node* node) {
    const VCB_HEADER& header = *vcb_header(vcb);
    if (nba_exceptions_suppressed()) {
        return;
    }
    if (header.opcode == NAP_DEFINE_TN3270_ASSOCIATION ||
        header.opcode == NAP_DELETE_TN3270_ASSOCIATION) {
        static_assert(offsetof(DEFINE_TN3270_ASSOCIATION, display_lu_name) ==
                      offsetof(DELETE_TN3270_ASSOCIATION, display_lu_name));
        const Line line = ebcdic_line(
            NAMES_TN_ASSOC, static_cast<const DELETE_TN3270_ASSOCIATION*>(vcb)->display_lu_name);
        nba_pd_print_exception(0x4002000C, 0, "s x x lx", line.text, int{header.opcode},
                               int{header.primary_rc}, static_cast<int>(header.secondary_rc));
        return;
    }
    const Row* row = std::find_if(std::begin(rows), std::end(rows),
                                  [&](const Row& r) { return r.opcode == header.opcode; });
    if (row != std::end(rows)) {
        const Lines lines = row->lines(vcb, node);
        nba_pd_print_exception(0x40020008, 0, "s s x x lx", lines.object.text, lines.subject.text,
                               int{header.opcode}, int{header.primary_rc},
                               static_cast<int>(header.secondary_rc));
    }
}

bool vga_report_lost_updates() {
    bool lost = false;
    for (const auto* lu = ntl_avl_first<vga_lu03>(gvga_system->lu_tree); lu != nullptr;
         lu = vga_next<vga_lu03>(lu->system_node)) {
        if (const vga_user* user = lu->user; user != nullptr) {
            log_lost(0, user_line(user->vcb.user_name, user->vcb.def),
                     ebcdic_line(NAMES_LU, lu->vcb.lu_name));
            lost = true;
        }
    }
    for (const auto* wkstn = ntl_avl_first<vga_rje_wkstn>(gvga_system->rje_tree); wkstn != nullptr;
         wkstn = vga_next<vga_rje_wkstn>(wkstn->node)) {
        if (in_use(wkstn)) {
            const RJE_WKSTN_ENTRY& entry = wkstn->vcb;
            log_lost(1, local_line(NAMES_RJE_WKSTN, entry.wkstn_name, sizeof entry.wkstn_name),
                     ebcdic_line(NAMES_LU, entry.def.lu_names[0]));
            lost = true;
        }
    }
    return lost;
}
