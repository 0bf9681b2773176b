// Icons of the node window's rows.
#include "common/card_types.h"
#include "store/store.h"
#include "ui/windows/node_window_internal.h"
#include "ui/windows/node_window_rows.h"

namespace {

struct PORT_ICON {
    NB_BYTE dlc_type;
    VGA_ICON icon;
};
constexpr PORT_ICON port_icons[] = {
    {NAP_DLC_SDLC, VGA_ICON_PORTSDLC},      {NAP_DLC_QLLC, VGA_ICON_PORTX25},
    {NAP_DLC_TOKEN_RING, VGA_ICON_PORTTR},  {NAP_DLC_FDDI, VGA_ICON_PORTFDDI},
    {NAP_DLC_ETHERNET, VGA_ICON_PORTETHER}, {NAP_DLC_FRAME_RELAY, VGA_ICON_PORTFR},
    {NAP_DLC_CHANNEL, VGA_ICON_PORTESCON},  {NAP_DLC_IP, VGA_ICON_PORTIP},
    {NAP_DLC_MPC, VGA_ICON_PORTMPC},        {NAP_DLC_MPC_PLUS, VGA_ICON_PORTMPCPLUS},
};
constexpr NB_USHORT block_multiplexer_card = 36;

bool on_block_multiplexer(const vga_dlc* dlc) {
    return dlc->vcb->def.dlc_type == NAP_DLC_CHANNEL && dlc->card_index >= 0 &&
           v0_card_types[static_cast<std::size_t>(dlc->card_index)].card_type ==
               block_multiplexer_card;
}

// From this cipher suite on a TN3270 session is encrypted.
constexpr NB_BYTE first_encrypting_suite = 3;

VGA_ICON lu03_icon(const LU03_ENTRY& entry) {
    const LU03_DETAIL& detail = entry.det_data;
    const NB_BYTE model = entry.def_data.lu_model;
    if (model >= NOF_LU_3270_DISPLAY_MODEL_2 && model <= NOF_LU_3270_DISPLAY_MODEL_5) {
        const bool client =
            detail.appl_conn_active == NAP_YES && detail.app_type == NAP_TN_APPLICATION;
        return client && detail.application.client.cipher_suite >= first_encrypting_suite
                   ? VGA_ICON_LUDISPSEC
                   : VGA_ICON_LUDISP;
    }
    switch (model) {
    case NOF_LU_PRINTER:
    case NOF_LU_SCS_PRINTER:
        return VGA_ICON_LUPRINT;
    case NOF_LU_RJE:
        return VGA_ICON_LURJE;
    default:
        return VGA_ICON_LU03;
    }
}

} // namespace

int vga_choose_port_viewer_icon(void* record) {
    const auto* port = static_cast<const vga_port*>(record);
    if (vga_is_fake_port(port)) {
        return port == vga_node_of(port)->dlur_fake_port ? VGA_ICON_DLURPORT : VGA_ICON_PORTSDLC;
    }
    if (on_block_multiplexer(port->parent)) {
        return VGA_ICON_PORTBLKMUX;
    }
    for (const PORT_ICON& row : port_icons) {
        if (row.dlc_type == port->parent->vcb->def.dlc_type) {
            return row.icon;
        }
    }
    return VGA_ICON_PORT;
}

int vga_choose_ls_viewer_icon(void* record) {
    const auto* ls = static_cast<const vga_ls*>(record);
    if (vga_is_implicit(ls)) {
        return VGA_ICON_LSIMPL;
    }
    if (vga_ls_has_local_pu(ls->vcb)) {
        return VGA_ICON_LSHOST;
    }
    return vga_ls_has_down_pu(ls->vcb) ? VGA_ICON_LSDOWN : VGA_ICON_LSPEER;
}

int vga_choose_local_pu_viewer_icon(void*) {
    return VGA_ICON_PU;
}
int vga_choose_primary_line_viewer_icon(void*) {
    return VGA_ICON_LSDOWN;
}
int vga_choose_primary_lu0_viewer_icon(void*) {
    return VGA_ICON_LU03;
}
int vga_choose_down_lu_viewer_icon(void*) {
    return VGA_ICON_DLU;
}
int vga_choose_lu62_viewer_icon(void*) {
    return VGA_ICON_LU62;
}
int vga_choose_mode_viewer_icon(void*) {
    return VGA_ICON_MODE;
}
int vga_choose_rem_sess_viewer_icon(void*) {
    return VGA_ICON_MODE;
}
int vga_choose_ls_r_title_viewer_icon(void*) {
    return VGA_ICON_LSRT;
}
int vga_choose_ls_r_viewer_icon(void*) {
    return VGA_ICON_LSR;
}

int vga_choose_deplu_viewer_icon(void* record) {
    return vga_is_lu62(record) ? VGA_ICON_LU62
                               : lu03_icon(static_cast<const vga_lu03*>(record)->vcb);
}

int vga_choose_rem_sys_viewer_icon(void* record) {
    const auto* rem_sys = static_cast<const vga_rem_sys*>(record);
    if (vga_is_fake_rem_sys(rem_sys)) {
        return VGA_ICON_REMSYSF;
    }
    return rem_sys->defined ? VGA_ICON_REMSYS : VGA_ICON_REMSYSD;
}

int vga_choose_rem_plu_viewer_icon(void* record) {
    const auto* plu = static_cast<const vga_rem_plu*>(record);
    if (vga_is_fake_rem_sys(plu->parent)) {
        return VGA_ICON_REMPLUA;
    }
    return vga_is_dynamic(plu) ? VGA_ICON_REMPLUD : VGA_ICON_REMPLU;
}
