#include "ui/viewer/viewer_type.h"

#include "ui/windows/cpic_window.h"
#include "ui/windows/node_window_rows.h"
#include "ui/windows/system_window_rows.h"

// The functions of a row that are named after its kind and its window.
#define TEXT(kind) vga_create_##kind##_viewer_text, vga_choose_##kind##_viewer_icon
#define ARM(window, kind) vga_##window##_##kind##_arm_cb, vga_##window##_disarm
#define ACT(window, kind) vga_##window##_##kind##_act_cb
#define DRAG(window, kind) vga_##window##_##kind##_drag_cb
#define DECOR(window, kind) vga_##window##_##kind##_decor_cb
#define SELECT(window) vga_##window##_set_button_states

// Text and icon; icon column; arm and disarm; act; drag; decor; select; expandable, level, flat;
// alone. A type whose window does not exist yet has its layout only.
// clang-format off
static constexpr auto none = nullptr;
const VGA_VIEWER_DESC gvga_viewer_desc[VGA_VIEWER_TYPE_COUNT] = {
    // VGA_VIEWER_LU62
    {TEXT(lu62), 1, ARM(nodew, lu62), ACT(nodew, lu62), none, DECOR(nodew, lu62),
     SELECT(nodew), 1, 0, 1, none},
    // VGA_VIEWER_MODE
    {TEXT(mode), 1, ARM(nodew, mode), ACT(nodew, mode), DRAG(nodew, mode), none,
     SELECT(nodew), 0, 1, 0, none},
    // VGA_VIEWER_PORT
    {TEXT(port), 1, ARM(nodew, port), ACT(nodew, port), DRAG(nodew, port), none,
     SELECT(nodew), 1, 0, 1, vga_nodew_is_fake_port},
    // VGA_VIEWER_LS
    {TEXT(ls), 1, ARM(nodew, ls), ACT(nodew, ls), none, none,
     SELECT(nodew), 1, 1, 0, none},
    // VGA_VIEWER_LOCAL_PU
    {TEXT(local_pu), 1, ARM(nodew, local_pu), ACT(nodew, local_pu), none, none,
     SELECT(nodew), 1, 1, 0, none},
    // VGA_VIEWER_DEPLU
    {TEXT(deplu), 1, ARM(nodew, deplu), ACT(nodew, deplu), none, none,
     SELECT(nodew), 0, 2, 0, none},
    // VGA_VIEWER_DOWN_LU
    {TEXT(down_lu), 1, ARM(nodew, down_lu), ACT(nodew, down_lu), none, none,
     SELECT(nodew), 0, 2, 0, none},
    // VGA_VIEWER_USER
    {none, none, 1, none, none, none, none, none, none, 1, 0, 1, none},
    // VGA_VIEWER_POOL
    {none, none, 1, none, none, none, none, none, none, 1, 0, 1, none},
    // VGA_VIEWER_CPIC
    {TEXT(cpic), 1, ARM(cpicw, cpic), ACT(cpicw, cpic), none, none,
     SELECT(cpicw), 0, 0, 1, none},
    // VGA_VIEWER_MODE_DEF
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_NODE
    {TEXT(node), 1, ARM(sysw, node), ACT(sysw, node), DRAG(sysw, node), none,
     SELECT(sysw), 0, 0, 1, none},
    // VGA_VIEWER_RJE
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_LS_NO_PU
    {TEXT(ls), 1, ARM(nodew, ls), ACT(nodew, ls), none, none,
     SELECT(nodew), 0, 1, 0, none},
    // VGA_VIEWER_REM_SYS
    {TEXT(rem_sys), 1, ARM(nodew, rem_sys), ACT(nodew, rem_sys), DRAG(nodew, rem_sys), none,
     SELECT(nodew), 1, 0, 1, vga_nodew_is_fake_rem_sys},
    // VGA_VIEWER_REM_PLU
    {TEXT(rem_plu), 1, ARM(nodew, rem_plu), ACT(nodew, rem_plu), none, DECOR(nodew, rem_plu),
     SELECT(nodew), 1, 1, 0, none},
    // VGA_VIEWER_REM_SESS
    {TEXT(rem_sess), 1, ARM(nodew, rem_sess), ACT(nodew, rem_sess), none, none,
     SELECT(nodew), 0, 2, 0, none},
    // VGA_VIEWER_REM_PLU_NO_SESS
    {TEXT(rem_plu), 1, ARM(nodew, rem_plu), ACT(nodew, rem_plu), none, DECOR(nodew, rem_plu),
     SELECT(nodew), 0, 1, 0, none},
    // VGA_VIEWER_USER_SESS
    {none, none, 1, none, none, none, none, none, none, 0, 1, 0, none},
    // VGA_VIEWER_USTAD
    {none, none, 0, none, none, none, none, none, none, 0, 0, 0, none},
    // VGA_VIEWER_USTAD_TITLE
    {none, none, 0, none, none, none, none, none, none, 0, 0, 0, none},
    // VGA_VIEWER_TN_SESS
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_TN_SESS_TITLE
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_POOL_LU
    {none, none, 1, none, none, none, none, none, none, 0, 1, 0, none},
    // VGA_VIEWER_CL_SECURITY
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_SL_SEC_TITLE
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_SL_SECURITY
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_TN_ASSOC
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_TN_ASSOC_TITLE
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_RTP_CONN
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_RTP_CONN_TITLE
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_LS_R_TITLE
    {TEXT(ls_r_title), 1, ARM(nodew, ls_r_title), none, DRAG(nodew, no), DECOR(nodew, ls_r_title),
     SELECT(nodew), 1, 1, 0, none},
    // VGA_VIEWER_LS_R
    {TEXT(ls_r), 1, ARM(nodew, ls_r), ACT(nodew, ls_r), none, none,
     SELECT(nodew), 0, 2, 0, none},
    // VGA_VIEWER_APPCIP_SESS_TITLE
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_APPCIP_SESS
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_DSLU_TEMPLATE
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_PRIMARY_LINE
    {TEXT(primary_line), 1, ARM(nodew, primary_line), ACT(nodew, primary_line), none, none,
     SELECT(nodew), 1, 1, 0, none},
    // VGA_VIEWER_PRIMARY_LU0
    {TEXT(primary_lu0), 1, ARM(nodew, primary_lu0), ACT(nodew, primary_lu0), none, none,
     SELECT(nodew), 0, 2, 0, none},
    // VGA_VIEWER_ACCESS_LIST
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_TP_DEF
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_TP_LOAD_INFO
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_TN_REDIRECT
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
    // VGA_VIEWER_TN_REDIRECT_TITLE
    {none, none, 1, none, none, none, none, none, none, 0, 0, 1, none},
};
// clang-format on

const VGA_VIEWER_DESC* gvga_viewer_types = gvga_viewer_desc;
