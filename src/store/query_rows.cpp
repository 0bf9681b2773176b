// One row per list query: block, level, failure subcode, least entry, whose list it is, the bytes
// of an entry that make the key of the next page, and what takes an entry into the store.
#include "common/names.h"
#include "nof/extra_data.h"
#include "nof/ipbridge.h"
#include "nof/pool.h"
#include "nof/primary.h"
#include "nof/routing.h"
#include "nof/rtp.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/tp.h"
#include "nof/trace.h"
#include "nof/user.h"
#include "store/query.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr NB_USHORT KEY = sizeof(LIST_QUERY); // offset of the key in a block
constexpr NB_BYTE L1 = NAP_LEVEL_DETAIL;
constexpr NB_BYTE L2 = NAP_LEVEL_SUMMARY;

using enum vga_owner;

// clang-format off
constexpr vga_query_row rows[] = {
    {VGA_QUERY_DLC, NAP_QUERY_DLC, sizeof(QUERY_DLC), L1, 12, sizeof(DLC_ENTRY), node,
     {KEY, offsetof(DLC_ENTRY, dlc_name), 8}, vga_entry_dlc},
    {VGA_QUERY_DSPU_TEMPLATE, NAP_QUERY_DSPU_TEMPLATE, sizeof(QUERY_DSPU_TEMPLATE), L1, 65,
     sizeof(DSPU_TEMPLATE_ENTRY), node, {KEY, offsetof(DSPU_TEMPLATE_ENTRY, template_name), 8},
     vga_entry_dspu_template},
    {VGA_QUERY_PORT, NAP_QUERY_PORT, sizeof(QUERY_PORT), L1, 13, sizeof(PORT_ENTRY), node,
     {KEY, offsetof(PORT_ENTRY, port_name), 8}, vga_entry_port},
    {VGA_QUERY_CN, NAP_QUERY_CN, sizeof(QUERY_CN), L1, 24, sizeof(CN_ENTRY), node,
     {KEY, offsetof(CN_ENTRY, cn_name), FQ_NAME_LENGTH}, vga_entry_cn},
    {VGA_QUERY_CN_PORT, NAP_QUERY_CN_PORT, sizeof(QUERY_CN_PORT), L1, 32, sizeof(CN_PORT_ENTRY), cn,
     {offsetof(QUERY_CN_PORT, port_name), offsetof(CN_PORT_ENTRY, port_name), 8},
     vga_entry_cn_port},
    {VGA_QUERY_LS, NAP_QUERY_LS, sizeof(QUERY_LS), L1, 14, sizeof(LS_ENTRY), node,
     {KEY, offsetof(LS_ENTRY, ls_name), 8}, vga_entry_ls},
    {VGA_QUERY_PU, NAP_QUERY_PU, sizeof(QUERY_PU), L1, 16, sizeof(PU_ENTRY), node,
     {KEY, offsetof(PU_ENTRY, pu_name), 8}, vga_entry_local_pu},
    {VGA_QUERY_DLUR_PU, NAP_QUERY_DLUR_PU, sizeof(QUERY_PU), L1, 15, sizeof(PU_ENTRY), node,
     {KEY, offsetof(PU_ENTRY, pu_name), 8}, vga_entry_local_pu},
    {VGA_QUERY_DOWN_PU, NAP_QUERY_DOWNSTREAM_PU, sizeof(QUERY_PU), L1, 17, sizeof(PU_ENTRY), node,
     {KEY, offsetof(PU_ENTRY, pu_name), 8}, vga_entry_down_pu},
    {VGA_QUERY_LU03, NAP_QUERY_LU_0_TO_3, sizeof(QUERY_LU_0_TO_3), L1, 28, sizeof(LU03_ENTRY), pu,
     {offsetof(QUERY_LU_0_TO_3, lu_name), offsetof(LU03_ENTRY, lu_name), 8}, vga_entry_lu03, {}, {},
     sizeof(LU03_ENTRY)},
    {VGA_QUERY_DOWN_LU, NAP_QUERY_DOWNSTREAM_LU, sizeof(QUERY_DOWNSTREAM_LU), L1, 29,
     sizeof(DOWN_LU_ENTRY), pu,
     {offsetof(QUERY_DOWNSTREAM_LU, dslu_name), offsetof(DOWN_LU_ENTRY, dslu_name), 8},
     vga_entry_down_lu},
    {VGA_QUERY_EXTRA_DATA, NAP_QUERY_EXTRA_DATA, sizeof(QUERY_EXTRA_DATA), L1, 44,
     sizeof(EXTRA_DATA_ENTRY), node, {KEY, offsetof(EXTRA_DATA_ENTRY, data), 64},
     vga_entry_extra_data, {}, {}, 0, NOF_EXTRA_DATA_LU_0_TO_3},
    {VGA_QUERY_LU62, NAP_QUERY_LOCAL_LU, sizeof(QUERY_LOCAL_LU), L1, 25, sizeof(LU62_ENTRY), node,
     {KEY, offsetof(LU62_ENTRY, lu_name), 8}, vga_entry_lu62},
    {VGA_QUERY_PLU, NAP_QUERY_PARTNER_LU, sizeof(QUERY_PARTNER_LU), L2, 30, sizeof(PLU_ENTRY), lu62,
     {offsetof(QUERY_PARTNER_LU, plu_name), offsetof(PLU_ENTRY, plu_name), FQ_NAME_LENGTH},
     vga_entry_plu},
    {VGA_QUERY_MODE, NAP_QUERY_MODE, sizeof(QUERY_MODE), L2, 31, sizeof(MODE_ENTRY), lu62,
     {offsetof(QUERY_MODE, plu_name), offsetof(MODE_ENTRY, plu_name), FQ_NAME_LENGTH},
     vga_entry_mode, {offsetof(QUERY_MODE, mode_name), offsetof(MODE_ENTRY, mode_name), 8}, {},
     sizeof(MODE_ENTRY)},
    {VGA_QUERY_SL_SEC, NAP_QUERY_LU_LU_PASSWORD, sizeof(QUERY_LU_LU_PASSWORD), L1, 38,
     sizeof(LU_LU_PASSWORD_ENTRY), lu62,
     {KEY, offsetof(LU_LU_PASSWORD_ENTRY, key), sizeof(LU_LU_PASSWORD_KEY)},
     vga_entry_lu_lu_password},
    {VGA_QUERY_MODE_DEF, NAP_QUERY_MODE_DEFINITION, sizeof(QUERY_MODE_DEFINITION), L1, 19,
     sizeof(MODE_DEF_ENTRY), node, {KEY, offsetof(MODE_DEF_ENTRY, mode_name), 8},
     vga_entry_mode_def},
    {VGA_QUERY_DIR, NAP_QUERY_DIRECTORY_ENTRY, sizeof(QUERY_DIRECTORY_ENTRY), L1, 18,
     sizeof(DIRECTORY_ENTRY), node, {KEY, offsetof(DIRECTORY_ENTRY, resource_name), 20},
     vga_entry_dir},
    {VGA_QUERY_PLU_DEF, NAP_QUERY_PARTNER_LU_DEFINITION, sizeof(QUERY_PARTNER_LU_DEFINITION), L1,
     20, sizeof(PLU_DEF_ENTRY), node, {KEY, offsetof(PLU_DEF_ENTRY, plu_name), FQ_NAME_LENGTH},
     vga_entry_plu_def},
    {VGA_QUERY_LU62_TIMEOUT, NAP_QUERY_LU62_TIMEOUT, sizeof(QUERY_LU62_TIMEOUT), L1, 43,
     sizeof(LU62_TIMEOUT_ENTRY), node, {KEY, offsetof(LU62_TIMEOUT_ENTRY, resource_type), 18},
     vga_entry_lu62_timeout},
    {VGA_QUERY_LS_ROUTING, NAP_QUERY_LS_ROUTING, sizeof(QUERY_LS_ROUTING), L1, 48,
     sizeof(LS_ROUTING_ENTRY), node,
     {KEY, offsetof(LS_ROUTING_ENTRY, key), sizeof(LS_ROUTING_KEY)}, vga_entry_ls_routing},
    {VGA_QUERY_COS, NAP_QUERY_COS, sizeof(QUERY_COS), L1, 21, sizeof(COS_ENTRY), node,
     {KEY, offsetof(COS_ENTRY, cos_name), 8}, vga_entry_cos},
    {VGA_QUERY_COS_NODE_ROW, NAP_QUERY_COS_NODE_ROW, sizeof(QUERY_COS_ROW), L1, 26,
     sizeof(COS_ROW_ENTRY), node, {KEY, offsetof(COS_ROW_ENTRY, cos_name), 10},
     vga_entry_cos_node_row},
    {VGA_QUERY_COS_TG_ROW, NAP_QUERY_COS_TG_ROW, sizeof(QUERY_COS_ROW), L1, 27,
     sizeof(COS_ROW_ENTRY), node, {KEY, offsetof(COS_ROW_ENTRY, cos_name), 10},
     vga_entry_cos_tg_row},
    {VGA_QUERY_TP_DEF, NAP_QUERY_TP_DEFINITION, sizeof(QUERY_TP_DEFINITION), L1, 22,
     sizeof(TP_DEF_ENTRY), node, {KEY, offsetof(TP_DEF_ENTRY, tp_name), 64},
     vga_entry_tp_def},
    {VGA_QUERY_TP_LOAD, NAP_QUERY_TP_LOAD_INFO, sizeof(QUERY_TP_LOAD_INFO), L1, 57,
     sizeof(TP_LOAD_INFO_ENTRY), tp_load, {KEY, offsetof(TP_LOAD_INFO_ENTRY, tp_name), 72},
     vga_entry_tp_load_info},
    {VGA_QUERY_USERID, NAP_QUERY_USERID_PASSWORD, sizeof(QUERY_USERID_PASSWORD), L1, 37,
     sizeof(USERID_PASSWORD_ENTRY), node, {KEY, offsetof(USERID_PASSWORD_ENTRY, user_id), 10},
     vga_entry_userid_password},
    {VGA_QUERY_ACCESS_LIST, NAP_QUERY_SECURITY_ACCESS_LIST, sizeof(QUERY_SECURITY_ACCESS_LIST), L1,
     56, sizeof(SECURITY_ACCESS_LIST_ENTRY), node,
     {KEY, offsetof(SECURITY_ACCESS_LIST_ENTRY, list_name), 14}, vga_entry_security_access_list, {},
     {sizeof(SECURITY_ACCESS_LIST_ENTRY), offsetof(ACCESS_LIST_USER, user_id), offsetof(QUERY_SECURITY_ACCESS_LIST, user_id), 10}},
    {VGA_QUERY_POOL, NAP_QUERY_LU_POOL, sizeof(QUERY_LU_POOL), L2, 41, sizeof(LU_POOL_ENTRY), node,
     {KEY, offsetof(LU_POOL_ENTRY, pool_name), 16}, vga_entry_pool},
    {VGA_QUERY_TN_ACCESS, NAP_QUERY_TN3270_ACCESS_DEF, sizeof(QUERY_TN3270_ACCESS_DEF), L1, 23,
     sizeof(TN3270_ACCESS_ENTRY), node,
     {KEY, offsetof(TN3270_ACCESS_ENTRY, client), sizeof(TN3270_CLIENT_KEY)}, vga_entry_tn_client, {},
     {sizeof(TN3270_ACCESS_ENTRY), offsetof(TN3270_SESSION, port), offsetof(QUERY_TN3270_ACCESS_DEF, port), 2}},
    {VGA_QUERY_TN_ASSOC, NAP_QUERY_TN3270_ASSOCIATION, sizeof(QUERY_TN3270_ASSOCIATION), L1, 45,
     sizeof(TN3270_ASSOCIATION_ENTRY), node,
     {KEY, offsetof(TN3270_ASSOCIATION_ENTRY, display_lu_name), 8}, vga_entry_tn_assoc},
    {VGA_QUERY_TN_REDIRECT, NAP_QUERY_TN_REDIRECT_DEF, sizeof(QUERY_TN_REDIRECT_DEF), L1, 66,
     sizeof(TN_REDIRECT_ENTRY), node,
     {KEY, offsetof(TN_REDIRECT_ENTRY, key), sizeof(TN_REDIRECT_KEY)}, vga_entry_tn_redirect},
    {VGA_QUERY_PRIMARY_LINE, NAP_QUERY_PRIMARY_LINE, sizeof(QUERY_PRIMARY_LINE), L1, 72,
     sizeof(PRIMARY_LINE_ENTRY), node, {KEY, offsetof(PRIMARY_LINE_ENTRY, line_name), 14},
     vga_entry_primary_line},
    {VGA_QUERY_PRIMARY_LU0, NAP_QUERY_PRIMARY_LU0, sizeof(QUERY_PRIMARY_LU0), L1, 73,
     sizeof(PRIMARY_LU0_ENTRY), node, {KEY, offsetof(PRIMARY_LU0_ENTRY, lu_name), 8},
     vga_entry_primary_lu0},
    {VGA_QUERY_APPCIP, NAP_QUERY_IPBRIDGE_APPCIP, sizeof(QUERY_IPBRIDGE_APPCIP), L1, 55,
     sizeof(IPBRIDGE_APPCIP_ENTRY), node,
     {KEY, offsetof(IPBRIDGE_APPCIP_ENTRY, session) + offsetof(IPBRIDGE_SESSION, lu_name), 38},
     vga_entry_appcip_sess},
    {VGA_QUERY_RTP_CONN, NAP_QUERY_RTP_CONNECTION, sizeof(QUERY_RTP_CONNECTION), NAP_DETAIL, 47,
     sizeof(RTP_CONNECTION_ENTRY), node, {KEY, offsetof(RTP_CONNECTION_ENTRY, connection_id), 8},
     vga_entry_rtp_conn},
    {VGA_QUERY_DLC_TRACE, NAP_QUERY_DLC_TRACE, sizeof(QUERY_DLC_TRACE), L1, 34,
     sizeof(DLC_TRACE_ENTRY), node, {KEY, offsetof(DLC_TRACE_ENTRY, resource_type), 9},
     vga_process_dlc_trace},
    {VGA_QUERY_USER, NAP_QUERY_EMULATOR_USER_DEF, sizeof(QUERY_EMULATOR_USER_DEF), L1, 8,
     sizeof(EMULATOR_USER_ENTRY), config_file, {KEY, offsetof(EMULATOR_USER_ENTRY, user_name), 32},
     vga_entry_user, {},
     {sizeof(EMULATOR_USER_ENTRY), offsetof(USER_SESSION, session_name), offsetof(QUERY_EMULATOR_USER_DEF, session_name), 8}},
    {VGA_QUERY_CPIC, NAP_QUERY_CPIC_SIDE_INFO, sizeof(QUERY_CPIC_SIDE_INFO), L1, 9,
     sizeof(CPIC_SIDE_INFO_ENTRY), config_file,
     {KEY, offsetof(CPIC_SIDE_INFO_ENTRY, sym_dest_name), 8}, vga_entry_cpic},
    {VGA_QUERY_RJE, NAP_QUERY_RJE_WKSTN_DEF, sizeof(QUERY_RJE_WKSTN_DEF), L1, 10,
     sizeof(RJE_WKSTN_ENTRY), config_file, {KEY, offsetof(RJE_WKSTN_ENTRY, wkstn_name), 4},
     vga_entry_rje_wkstn},
    {VGA_QUERY_NODE_LIST, NAP_QUERY_NODE_ALL, sizeof(QUERY_NODE_ALL), L1, 3, sizeof(NODE_ALL_ENTRY),
     domain, {KEY, offsetof(NODE_ALL_ENTRY, node_name), 128}, vga_entry_node},
    {VGA_QUERY_SNA_NET_LIST, NAP_QUERY_SNA_NET, sizeof(QUERY_NODE_ALL), L1, 4,
     sizeof(SNA_NET_ENTRY), sna_net, {KEY, offsetof(SNA_NET_ENTRY, node_name), 128},
     vga_entry_sna_net},
};
// clang-format on
static_assert(std::size(rows) == VGA_QUERY_COUNT);
static_assert([] {
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        if (rows[i].query != static_cast<int>(i)) {
            return false;
        }
    }
    return true;
}());

} // namespace

const vga_query_row& vga_query_row_of(VGA_QUERY query) {
    return rows[query];
}

VGA_QUERY vga_query_of(NB_USHORT opcode) {
    const auto* row = std::find_if(std::begin(rows), std::end(rows),
                                   [=](const vga_query_row& r) { return r.opcode == opcode; });
    return row != std::end(rows) ? row->query : VGA_QUERY_COUNT;
}
