// How the define block of each kind becomes an entry, field by field.
#pragma once

#include "simnode/kinds.h"

#include "nof/cn.h"
#include "nof/connectivity.h"
#include "nof/extra_data.h"
#include "nof/lu62.h"
#include "nof/pool.h"
#include "nof/primary.h"
#include "nof/pu_lu.h"
#include "nof/routing.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/tp.h"
#include "nof/user.h"

namespace simnode {

// The size of a field, which must be the same on both sides.
consteval NB_USHORT same(std::size_t in_block, std::size_t in_entry) {
    return in_block == in_entry ? static_cast<NB_USHORT>(in_block) : throw "fields differ in size";
}

// A field of a define block and the field of the entry that takes it.
#define COPY_AS(block, field, entry, entry_field)                                                  \
    {                                                                                              \
        offsetof(block, field), offsetof(entry, entry_field),                                      \
            same(sizeof(std::declval<block&>().field), sizeof(std::declval<entry&>().entry_field)) \
    }
#define COPY(block, entry, field) COPY_AS(block, field, entry, field)
// Neighbouring fields: from the first one up to the one before the end.
#define COPY_UNTIL(block, entry, first, end)                                                       \
    {                                                                                              \
        offsetof(block, first), offsetof(entry, first),                                            \
            same(offsetof(block, end) - offsetof(block, first),                                    \
                 offsetof(entry, end) - offsetof(entry, first))                                    \
    }
// From a field on to the end of the fixed part.
#define COPY_FROM(block, entry, first)                                                             \
    {                                                                                              \
        offsetof(block, first), offsetof(entry, first),                                            \
            same(sizeof(block) - offsetof(block, first), sizeof(entry) - offsetof(entry, first))   \
    }

inline constexpr Copy dlc_copies[] = {COPY(DEFINE_DLC, DLC_ENTRY, dlc_name),
                                      COPY_FROM(DEFINE_DLC, DLC_ENTRY, def)};
inline constexpr Copy port_copies[] = {COPY(DEFINE_PORT, PORT_ENTRY, port_name),
                                       COPY(DEFINE_PORT, PORT_ENTRY, def)};
inline constexpr Copy ls_copies[] = {COPY(DEFINE_LS, LS_ENTRY, ls_name),
                                     COPY_FROM(DEFINE_LS, LS_ENTRY, def)};
inline constexpr Copy dlur_pu_copies[] = {COPY(DEFINE_INTERNAL_PU, PU_ENTRY, pu_name),
                                          COPY(DEFINE_INTERNAL_PU, PU_ENTRY, description),
                                          COPY(DEFINE_INTERNAL_PU, PU_ENTRY, initially_active),
                                          COPY(DEFINE_INTERNAL_PU, PU_ENTRY, dlus_name),
                                          COPY(DEFINE_INTERNAL_PU, PU_ENTRY, backup_dlus_name),
                                          COPY(DEFINE_INTERNAL_PU, PU_ENTRY, node_id),
                                          COPY(DEFINE_INTERNAL_PU, PU_ENTRY, dlus_retry)};
inline constexpr Copy lu_0_to_3_copies[] = {COPY(DEFINE_LU_0_TO_3, LU03_ENTRY, lu_name),
                                            COPY_AS(DEFINE_LU_0_TO_3, def, LU03_ENTRY, def_data)};
inline constexpr Copy downstream_lu_copies[] = {
    COPY(DEFINE_DOWNSTREAM_LU, DOWN_LU_ENTRY, dslu_name),
    COPY(DEFINE_DOWNSTREAM_LU, DOWN_LU_ENTRY, def)};
inline constexpr Copy local_lu_copies[] = {COPY(DEFINE_LOCAL_LU, LU62_ENTRY, lu_name),
                                           COPY(DEFINE_LOCAL_LU, LU62_ENTRY, def)};
inline constexpr Copy mode_definition_copies[] = {COPY(DEFINE_MODE, MODE_DEF_ENTRY, mode_name),
                                                  COPY(DEFINE_MODE, MODE_DEF_ENTRY, def)};
inline constexpr Copy directory_copies[] = {
    COPY(DEFINE_DIRECTORY_ENTRY, DIRECTORY_ENTRY, resource_name),
    COPY(DEFINE_DIRECTORY_ENTRY, DIRECTORY_ENTRY, resource_type),
    COPY_UNTIL(DEFINE_DIRECTORY_ENTRY, DIRECTORY_ENTRY, description, parent_name),
    COPY(DEFINE_DIRECTORY_ENTRY, DIRECTORY_ENTRY, parent_name),
    COPY(DEFINE_DIRECTORY_ENTRY, DIRECTORY_ENTRY, parent_type)};
inline constexpr Copy partner_definition_copies[] = {
    COPY(DEFINE_PARTNER_LU, PLU_DEF_ENTRY, plu_name), COPY(DEFINE_PARTNER_LU, PLU_DEF_ENTRY, def)};
inline constexpr Copy cos_copies[] = {COPY(DEFINE_COS, COS_ENTRY, cos_name),
                                      COPY(DEFINE_COS, COS_ENTRY, description),
                                      COPY(DEFINE_COS, COS_ENTRY, transmission_priority)};
inline constexpr Copy cn_copies[] = {COPY(DEFINE_CN, CN_ENTRY, cn_name),
                                     COPY(DEFINE_CN, CN_ENTRY, def)};
inline constexpr Copy timeout_copies[] = {
    COPY(DEFINE_LU62_TIMEOUT, LU62_TIMEOUT_ENTRY, resource_type),
    COPY(DEFINE_LU62_TIMEOUT, LU62_TIMEOUT_ENTRY, resource_name),
    COPY(DEFINE_LU62_TIMEOUT, LU62_TIMEOUT_ENTRY, timeout)};
inline constexpr Copy ls_routing_copies[] = {COPY(DEFINE_LS_ROUTING, LS_ROUTING_ENTRY, key),
                                             COPY(DEFINE_LS_ROUTING, LS_ROUTING_ENTRY, def)};
inline constexpr Copy tp_copies[] = {COPY(DEFINE_TP, TP_DEF_ENTRY, tp_name),
                                     COPY(DEFINE_TP, TP_DEF_ENTRY, def)};
inline constexpr Copy tp_load_copies[] = {COPY(DEFINE_TP_LOAD_INFO, TP_LOAD_INFO_ENTRY, tp_name),
                                          COPY(DEFINE_TP_LOAD_INFO, TP_LOAD_INFO_ENTRY, lu_alias),
                                          COPY(DEFINE_TP_LOAD_INFO, TP_LOAD_INFO_ENTRY, def_data)};
inline constexpr Copy dspu_template_copies[] = {
    COPY(DEFINE_DSPU_TEMPLATE, DSPU_TEMPLATE_ENTRY, template_name),
    COPY_UNTIL(DEFINE_DSPU_TEMPLATE, DSPU_TEMPLATE_ENTRY, def, def.num_dslu_templates)};
inline constexpr Copy primary_line_copies[] = {
    COPY(DEFINE_PRIMARY_LINE, PRIMARY_LINE_ENTRY, line_name),
    COPY(DEFINE_PRIMARY_LINE, PRIMARY_LINE_ENTRY, def)};
inline constexpr Copy primary_lu0_copies[] = {COPY(DEFINE_PRIMARY_LU0, PRIMARY_LU0_ENTRY, lu_name),
                                              COPY(DEFINE_PRIMARY_LU0, PRIMARY_LU0_ENTRY, def)};
inline constexpr Copy userid_copies[] = {
    COPY(DEFINE_USERID_PASSWORD, USERID_PASSWORD_ENTRY, user_id),
    COPY(DEFINE_USERID_PASSWORD, USERID_PASSWORD_ENTRY, def)};
inline constexpr Copy access_list_copies[] = {
    COPY(DEFINE_SECURITY_ACCESS_LIST, SECURITY_ACCESS_LIST_ENTRY, list_name),
    COPY_UNTIL(DEFINE_SECURITY_ACCESS_LIST, SECURITY_ACCESS_LIST_ENTRY, def, def.num_users),
    COPY(DEFINE_SECURITY_ACCESS_LIST, SECURITY_ACCESS_LIST_ENTRY, def.reserved80)};
inline constexpr Copy lu_lu_password_copies[] = {
    COPY(DEFINE_LU_LU_PASSWORD, LU_LU_PASSWORD_ENTRY, key),
    COPY(DEFINE_LU_LU_PASSWORD, LU_LU_PASSWORD_ENTRY, def)};
inline constexpr Copy tn_client_copies[] = {
    COPY(DEFINE_TN3270_ACCESS, TN3270_ACCESS_ENTRY, client),
    COPY_UNTIL(DEFINE_TN3270_ACCESS, TN3270_ACCESS_ENTRY, def, def.num_sessions),
    COPY(DEFINE_TN3270_ACCESS, TN3270_ACCESS_ENTRY, def.reserved328)};
inline constexpr Copy association_copies[] = {
    COPY(DEFINE_TN3270_ASSOCIATION, TN3270_ASSOCIATION_ENTRY, display_lu_name),
    COPY(DEFINE_TN3270_ASSOCIATION, TN3270_ASSOCIATION_ENTRY, def)};
inline constexpr Copy redirect_copies[] = {COPY(DEFINE_TN_REDIRECT, TN_REDIRECT_ENTRY, key),
                                           COPY(DEFINE_TN_REDIRECT, TN_REDIRECT_ENTRY, def)};
inline constexpr Copy pool_copies[] = {COPY(DEFINE_LU_POOL, LU_POOL_ENTRY, pool_name),
                                       COPY(DEFINE_LU_POOL, LU_POOL_ENTRY, description)};
inline constexpr Copy extra_data_copies[] = {COPY(DEFINE_EXTRA_DATA, EXTRA_DATA_ENTRY, data)};
inline constexpr Copy user_copies[] = {
    COPY(DEFINE_EMULATOR_USER, EMULATOR_USER_ENTRY, user_name),
    COPY_UNTIL(DEFINE_EMULATOR_USER, EMULATOR_USER_ENTRY, def, def.num_sessions),
    COPY_FROM(DEFINE_EMULATOR_USER, EMULATOR_USER_ENTRY, def.session_limit)};
inline constexpr Copy cpic_copies[] = {
    COPY(DEFINE_CPIC_SIDE_INFO, CPIC_SIDE_INFO_ENTRY, sym_dest_name),
    COPY(DEFINE_CPIC_SIDE_INFO, CPIC_SIDE_INFO_ENTRY, def)};
inline constexpr Copy rje_copies[] = {COPY(DEFINE_RJE_WKSTN, RJE_WKSTN_ENTRY, wkstn_name),
                                      COPY(DEFINE_RJE_WKSTN, RJE_WKSTN_ENTRY, def)};

#undef COPY_FROM
#undef COPY_UNTIL
#undef COPY
#undef COPY_AS

} // namespace simnode
