// Texts of the node window's rows.
#include "common/names.h"
#include "shell/messages.h"
#include "store/store.h"
#include "ui/windows/node_window_internal.h"
#include "ui/windows/node_window_rows.h"
#include "ui/windows/row_text.h"

namespace {

constexpr int session_column = 130; // session counts and aliases fill their column up to the next
constexpr std::size_t session_text_size = 64;

struct SESSIONS {
    char text[session_text_size];
    explicit SESSIONS(NB_LONG count) { vga_session_count_string(count, text); }
};

constexpr VGA_STATE_ROW port_states[] = {
    {NOF_STATE_INACTIVE, 811},
    {NOF_STATE_ACTIVE, 810},
    {NOF_STATE_START_PENDING, 812},
    {NOF_STATE_STOP_PENDING, 813},
};
constexpr int port_failed = 858; // any other state

enum LS_TEXT : int {
    LS_IMPLICIT = 388,
    LS_ACTIVE = 814,
    LS_STOPPED = 815,
    LS_INACTIVE = 816,
    LS_ON_DEMAND = 817,
    LS_LISTENING = 818,
    LS_FAILED = 819,
    LS_STARTING = 820,
    LS_STOPPING = 821,
};
constexpr VGA_STATE_ROW ls_states[] = {
    {NOF_STATE_ACTIVE, LS_ACTIVE},
    {NOF_STATE_START_PENDING, LS_STARTING},
    {NOF_STATE_STOP_PENDING, LS_STOPPING},
    {NOF_STATE_FAILED, LS_FAILED},
};

// A permanent circuit has no choice between starting and waiting for the other side.
bool has_permanent_circuit(const vga_ls* ls) {
    const LS_ENTRY* entry = ls->vcb;
    return ls->parent->parent->vcb->def.dlc_type == NAP_DLC_QLLC &&
           entry->def.specific_length > NOF_LS_CIRCUIT_OFFSET &&
           nof_tail(entry)[NOF_LS_CIRCUIT_OFFSET] == NOF_LS_PERMANENT_CIRCUIT;
}

int ls_message(const vga_ls* ls) {
    const LS_DETAIL& detail = ls->vcb->det;
    const NB_BYTE port_state = ls->parent->vcb->state;
    if (vga_node_of(ls)->node_state == VGA_NODE_STATE_STOPPED) {
        return LS_INACTIVE;
    }
    if (port_state != NOF_STATE_INACTIVE && detail.state != NOF_STATE_INACTIVE) {
        const int message = vga_state_message(ls_states, detail.state);
        return port_state == NOF_STATE_STOP_PENDING ? LS_STOPPING
               : message != 0                       ? message
                                                    : LS_FAILED;
    }
    const bool on_demand = (detail.activation_flags & NOF_LS_ON_DEMAND) != 0;
    const bool incoming = (detail.activation_flags & NOF_LS_INCOMING) != 0;
    if (!on_demand && !incoming) {
        return has_permanent_circuit(ls) ? LS_INACTIVE : LS_STOPPED;
    }
    if (port_state == NOF_STATE_INACTIVE) {
        return LS_INACTIVE;
    }
    if (on_demand) {
        return LS_ON_DEMAND;
    }
    return has_permanent_circuit(ls) ? LS_INACTIVE : LS_LISTENING;
}

constexpr int pu_starting = 838;
constexpr VGA_STATE_ROW pu_states[] = {
    {NOF_DLUR_ACTIVE, 835},        {NOF_DLUR_STARTING, pu_starting},
    {NOF_DLUR_STOPPING, 839},      {NOF_DLUR_PENDING_ACTIVE, pu_starting},
    {NOF_DLUR_PENDING_RETRY, 837}, {NOF_DLUR_PENDING_INACTIVE, 839},
};
constexpr int pu_inactive = 836;

enum LU_TEXT : int { LU_IN_SESSION = 823, LU_INACTIVE = 824, LU_ACTIVE = 826 };

LU_TEXT lu_message(NB_BYTE active, NB_BYTE in_session) {
    if (active == 0) {
        return LU_INACTIVE;
    }
    return in_session != 0 ? LU_IN_SESSION : LU_ACTIVE;
}

int lu62_text(const vga_lu62* lu, char* text) {
    const LU62_ENTRY& entry = lu->vcb;
    const VGA_ROW_DESCRIPTION description(entry.def.description);
    if (lu->act_sess_count != 0) {
        const auto* plu = ntl_avl_first<vga_plu>(lu->plu_tree);
        const vga_mode* mode =
            VGA_ASSERT(plu != NULL) ? ntl_avl_first<vga_mode>(plu->mode_tree) : nullptr;
        if (plu != nullptr && VGA_ASSERT(mode != NULL)) {
            return vga_print_row(text, 825, "ea es es s", 8, entry.lu_name, 17, plu->vcb.plu_name,
                                 8, mode->vcb.mode_name, description.text);
        }
    }
    return vga_print_row(text, entry.session_status == 0 ? LU_INACTIVE : LU_ACTIVE, "ea s", 8,
                         entry.lu_name, description.text);
}

// Cipher suite of a TN3270 session and the message that names its strength.
constexpr VGA_STATE_ROW cipher_suites[] = {
    {0, 862},    {1, 863},    {2, 863},    {3, 864},    {6, 864},
    {9, 865},    {4, 866},    {5, 866},    {0x2F, 866}, {0x3C, 866},
    {0x9C, 866}, {0x0A, 867}, {0x35, 868}, {0x3D, 868}, {0x9D, 868},
};

int client_text(const LU03_TN_CLIENT& client, const char* description, char* text) {
    constexpr int address_length = 40;
    const int name_length =
        client.address_form == 1 ? address_length : static_cast<int>(sizeof client.name);
    if (client.association_kind == 2) {
        return vga_print_row(text, 857, "es cs i s", 8, client.associated_name, name_length,
                             client.name, client.port, description);
    }
    const int cipher = vga_state_message(cipher_suites, client.cipher_suite);
    VGA_ASSERT_TEXT(cipher != 0, "FALSE");
    return vga_print_row(text, client.client_kind == 1 ? 860 : 861, "cs i s s", name_length,
                         client.name, client.port, cipher != 0 ? gvga_messages[cipher] : "",
                         description);
}

// What an LU of type 0 to 3 is used by.
int use_text(const LU03_ENTRY& entry, char* text) {
    constexpr int unused = 854;
    constexpr NB_BYTE no_name = 0x5B;
    const LU03_DETAIL& detail = entry.det_data;
    const LU03_APPLICATION& application = detail.application;
    const VGA_ROW_DESCRIPTION description(entry.def_data.description);
    if (detail.appl_conn_active != NAP_YES) {
        return vga_print_row(text, unused, "s", description.text);
    }
    switch (detail.app_type) {
    case NAP_PU_CONC_APPLICATION:
        return vga_print_row(text, 853, "s", description.text);
    case NAP_LUA_APPLICATION:
        if (application.named.name[0] == no_name) {
            break;
        }
        return vga_print_row(text, 855, "es s", 8, application.named.name, description.text);
    case NAP_FMI_APPLICATION:
        return vga_print_row(text, application.user.session_kind == NOF_DISPLAY_SESSION ? 856 : 869,
                             "cs s", static_cast<int>(sizeof application.user.user_name),
                             application.user.user_name, description.text);
    case NAP_TN_APPLICATION:
        return client_text(application.client, description.text, text);
    default:
        break;
    }
    return vga_print_row(text, unused, "s", description.text);
}

int lu03_text(const vga_lu03* lu, char* text) {
    const LU03_DETAIL& detail = lu->vcb.det_data;
    const int length = vga_print_row(text, lu_message(detail.lu_active, detail.plu_session_active),
                                     "ea", 8, lu->vcb.lu_name);
    return length + use_text(lu->vcb, text + length);
}

} // namespace

bool vga_heads_modes(const vga_lu62* lu) {
    if (!vga_is_open(lu->viewer)) {
        return false;
    }
    const auto* bottom = static_cast<const vga_viewer*>(lu->viewer.children.first->self);
    return bottom->type == VGA_VIEWER_MODE;
}

void vga_session_count_string(NB_LONG count, char* text) {
    if (count == 0 || count == 1) {
        vga_print_msg(text, gvga_messages[count == 0 ? 871 : 872], "");
    } else {
        vga_print_msg(text, gvga_messages[870], "l", count);
    }
}

int vga_create_port_viewer_text(void* record, char* text) {
    const auto* port = static_cast<const vga_port*>(record);
    if (vga_is_fake_port(port)) {
        return vga_print_row(text, port == vga_node_of(port)->dlur_fake_port ? 232 : 233, "");
    }
    const int message = vga_state_message(port_states, port->vcb->state);
    return vga_print_row(text, message != 0 ? message : port_failed, "ca s", 8,
                         port->vcb->port_name,
                         VGA_ROW_DESCRIPTION(port->vcb->def.description).text);
}

int vga_create_ls_viewer_text(void* record, char* text) {
    const auto* ls = static_cast<const vga_ls*>(record);
    if (vga_is_implicit(ls)) {
        return vga_print_row(text, LS_IMPLICIT, "ea", 17, ls->vcb->det.adj_cp_name);
    }
    return vga_print_row(text, ls_message(ls), "ca s", 8, ls->vcb->ls_name,
                         VGA_ROW_DESCRIPTION(ls->vcb->def.description).text);
}

int vga_create_local_pu_viewer_text(void* record, char* text) {
    const auto* pu = static_cast<const vga_pu*>(record);
    int message = pu_starting;
    if (!pu->start_pending) {
        message = vga_state_message(pu_states, pu->vcb.dlur_status);
        message = message != 0 ? message : pu_inactive;
    }
    return vga_print_row(text, message, "ea s", 8, pu->vcb.pu_name,
                         VGA_ROW_DESCRIPTION(pu->vcb.description).text);
}

int vga_create_deplu_viewer_text(void* record, char* text) {
    return vga_is_lu62(record) ? lu62_text(static_cast<const vga_lu62*>(record), text)
                               : lu03_text(static_cast<const vga_lu03*>(record), text);
}

int vga_create_down_lu_viewer_text(void* record, char* text) {
    const DOWN_LU_ENTRY& entry = static_cast<const vga_down_lu*>(record)->vcb;
    return vga_print_row(text, lu_message(entry.lu_active, entry.plu_session_active), "ea s", 8,
                         entry.dslu_name, VGA_ROW_DESCRIPTION(entry.def.description).text);
}

int vga_create_primary_line_viewer_text(void* record, char* text) {
    const PRIMARY_LINE_ENTRY& entry = static_cast<const vga_primary_line*>(record)->vcb;
    return vga_print_row(text, 822, "ca s", 14, entry.line_name,
                         VGA_ROW_DESCRIPTION(entry.def.description).text);
}

int vga_create_primary_lu0_viewer_text(void* record, char* text) {
    const PRIMARY_LU0_ENTRY& entry = static_cast<const vga_primary_lu0*>(record)->vcb;
    return vga_print_row(text, 827, "ca s", 8, entry.lu_name,
                         VGA_ROW_DESCRIPTION(entry.def.description).text);
}

int vga_create_lu62_viewer_text(void* record, char* text) {
    const auto* lu = static_cast<const vga_lu62*>(record);
    char alias[sizeof(NB_NAME8L) + 1] = {};
    std::memcpy(alias, lu->vcb.def.lu_alias, sizeof(NB_NAME8L));
    return vga_print_row(text, vga_heads_modes(lu) ? 829 : 828, "ea ca s", 8, lu->vcb.lu_name,
                         session_column, alias, SESSIONS(lu->act_sess_count).text);
}

int vga_create_mode_viewer_text(void* record, char* text) {
    const auto* mode = static_cast<const vga_mode*>(record);
    const SESSIONS sessions(mode->act_sess_count);
    return vga_print_row(text, 834, "ea ea cs", 8, mode->vcb.mode_name, 17,
                         mode->parent->vcb.plu_name, static_cast<int>(session_text_size),
                         sessions.text);
}

int vga_create_ls_r_title_viewer_text(void* record, char* text) {
    const auto* lu = static_cast<const vga_lu62*>(record);
    return vga_print_row(text, vga_is_open(lu->ls_r_title) ? 832 : 831, "");
}

int vga_create_ls_r_viewer_text(void* record, char* text) {
    const auto* route = static_cast<const vga_ls_routing*>(record);
    const LS_ROUTING_ENTRY& entry = route->vcb;
    if (vga_is_wildcard(route)) {
        return vga_print_row(text, 840, "ea s ca", 8, entry.key.lu_name, gvga_messages[873], 8,
                             entry.def.ls_name);
    }
    return vga_print_row(text, 840, "ea ea ca", 8, entry.key.lu_name, 17, entry.key.plu_name, 8,
                         entry.def.ls_name);
}

int vga_create_rem_sys_viewer_text(void* record, char* text) {
    const auto* rem_sys = static_cast<const vga_rem_sys*>(record);
    if (vga_is_fake_rem_sys(rem_sys)) {
        return vga_print_row(text, 845, "");
    }
    const VGA_ROW_DESCRIPTION description(rem_sys->vcb.description);
    if (vga_is_open(rem_sys->viewer)) { // the sessions stand in the rows below
        return vga_print_row(text, rem_sys->defined ? 842 : 841, "ea ca s", 17, rem_sys->cp_name,
                             session_column, "", description.text);
    }
    return vga_print_row(text, rem_sys->defined ? 843 : 844, "ea ca s", 17, rem_sys->cp_name,
                         session_column, SESSIONS(rem_sys->session_count).text, description.text);
}

int vga_create_rem_plu_viewer_text(void* record, char* text) {
    const auto* plu = static_cast<const vga_rem_plu*>(record);
    const NB_BYTE* full_name = plu->key.plu_name;
    const VGA_ROW_DESCRIPTION description(plu->plu_defn ? plu->defn.def.description
                                                        : plu->loc.description);
    const auto* period = static_cast<const NB_BYTE*>(std::memchr(full_name, EBCDIC_PERIOD, 9));
    const NB_BYTE* name = period != nullptr ? period + 1 : full_name;
    if (vga_is_open(plu->viewer)) {
        return vga_print_row(text, 846, "ea ca s", 8, name, session_column, "", description.text);
    }
    if (plu->key.number == NAP_WILDCARD_LU_RESOURCE) {
        if (full_name[0] == EBCDIC_BLANK) {
            return vga_print_row(text, 850, "s ca s", gvga_messages[873], session_column, "",
                                 description.text);
        }
        return vga_print_row(text, 850, "ea ca s", 17, full_name, session_column, "",
                             description.text);
    }
    if (vga_is_fake_rem_sys(plu->parent)) {
        return vga_print_row(text, 851, "ea ca s", 17, full_name, session_column, "",
                             description.text);
    }
    return vga_print_row(text, vga_is_dynamic(plu) ? 849 : 848, "ea ca s", 8, name, session_column,
                         SESSIONS(plu->session_count).text, description.text);
}

int vga_create_rem_sess_viewer_text(void* record, char* text) {
    const auto* sess = static_cast<const vga_rem_sess*>(record);
    const SESSIONS sessions(sess->session_count);
    return vga_print_row(text, 852, "ea ea cs", 8, sess->key.mode_name, 8, sess->key.lu_name,
                         static_cast<int>(session_text_size), sessions.text);
}
