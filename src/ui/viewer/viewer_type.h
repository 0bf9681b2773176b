// The viewer type table: what a row of each type shows and how it reacts.
#pragma once

#include "ui/viewer/viewer.h"

enum VGA_VIEWER_TYPE : NB_BYTE {
    VGA_VIEWER_LU62 = 0,
    VGA_VIEWER_MODE = 1,
    VGA_VIEWER_PORT = 2,
    VGA_VIEWER_LS = 3,
    VGA_VIEWER_LOCAL_PU = 4,
    VGA_VIEWER_DEPLU = 5,
    VGA_VIEWER_DOWN_LU = 6,
    VGA_VIEWER_USER = 7,
    VGA_VIEWER_POOL = 8,
    VGA_VIEWER_CPIC = 9,
    VGA_VIEWER_MODE_DEF = 10,
    VGA_VIEWER_NODE = 11,
    VGA_VIEWER_RJE = 12,
    VGA_VIEWER_LS_NO_PU = 13,
    VGA_VIEWER_REM_SYS = 14,
    VGA_VIEWER_REM_PLU = 15,
    VGA_VIEWER_REM_SESS = 16,
    VGA_VIEWER_REM_PLU_NO_SESS = 17,
    VGA_VIEWER_USER_SESS = 18,
    VGA_VIEWER_USTAD = 19,
    VGA_VIEWER_USTAD_TITLE = 20,
    VGA_VIEWER_TN_SESS = 21,
    VGA_VIEWER_TN_SESS_TITLE = 22,
    VGA_VIEWER_POOL_LU = 23,
    VGA_VIEWER_CL_SECURITY = 24,
    VGA_VIEWER_SL_SEC_TITLE = 25,
    VGA_VIEWER_SL_SECURITY = 26,
    VGA_VIEWER_TN_ASSOC = 27,
    VGA_VIEWER_TN_ASSOC_TITLE = 28,
    VGA_VIEWER_RTP_CONN = 29,
    VGA_VIEWER_RTP_CONN_TITLE = 30,
    VGA_VIEWER_LS_R_TITLE = 31,
    VGA_VIEWER_LS_R = 32,
    VGA_VIEWER_APPCIP_SESS_TITLE = 33,
    VGA_VIEWER_APPCIP_SESS = 34,
    VGA_VIEWER_DSLU_TEMPLATE = 35,
    VGA_VIEWER_PRIMARY_LINE = 36,
    VGA_VIEWER_PRIMARY_LU0 = 37,
    VGA_VIEWER_ACCESS_LIST = 38,
    VGA_VIEWER_TP_DEF = 39,
    VGA_VIEWER_TP_LOAD_INFO = 40,
    VGA_VIEWER_TN_REDIRECT = 41,
    VGA_VIEWER_TN_REDIRECT_TITLE = 42,
    VGA_VIEWER_TYPE_COUNT = 43,
};

// Icon numbers, in the order of gvga_pixmap_names.
enum VGA_ICON : int {
    VGA_ICON_PLUS,
    VGA_ICON_MINUS,
    VGA_ICON_PORT,
    VGA_ICON_PORTSDLC,
    VGA_ICON_PORTTR,
    VGA_ICON_PORTX25,
    VGA_ICON_LS,
    VGA_ICON_LSHOST,
    VGA_ICON_LSDOWN,
    VGA_ICON_LSPEER,
    VGA_ICON_PU,
    VGA_ICON_LU03,
    VGA_ICON_DLU,
    VGA_ICON_LU62,
    VGA_ICON_BLANK,
    VGA_ICON_USER,
    VGA_ICON_POOL,
    VGA_ICON_CPIC,
    VGA_ICON_MODE,
    VGA_ICON_NODE,
    VGA_ICON_PORTETHER,
    VGA_ICON_PORTFDDI,
    VGA_ICON_RJEW,
    VGA_ICON_LUDISP,
    VGA_ICON_LURJE,
    VGA_ICON_LUPRINT,
    VGA_ICON_LSIMPL,
    VGA_ICON_REMSYSD,
    VGA_ICON_REMSYS,
    VGA_ICON_REMPLUD,
    VGA_ICON_REMPLU,
    VGA_ICON_REMSYSF,
    VGA_ICON_DISP3270,
    VGA_ICON_PRINT3270,
    VGA_ICON_DISP5250,
    VGA_ICON_PRINT5250,
    VGA_ICON_USERGROUP,
    VGA_ICON_TNCLIENT,
    VGA_ICON_CONVSEC,
    VGA_ICON_SESSSEC,
    VGA_ICON_DLURPORT,
    VGA_ICON_REMPLUA,
    VGA_ICON_START,
    VGA_ICON_STARTINS,
    VGA_ICON_STOP,
    VGA_ICON_STOPINS,
    VGA_ICON_ZOOM,
    VGA_ICON_ZOOMINS,
    VGA_ICON_ADD,
    VGA_ICON_ADDINS,
    VGA_ICON_DEL,
    VGA_ICON_DELINS,
    VGA_ICON_COPY,
    VGA_ICON_COPYINS,
    VGA_ICON_TERMINAL,
    VGA_ICON_KEY,
    VGA_ICON_STATUS,
    VGA_ICON_STATUSINS,
    VGA_ICON_POOLLU03,
    VGA_ICON_LU3270,
    VGA_ICON_LU5250,
    VGA_ICON_V5,
    VGA_ICON_BACKNODE,
    VGA_ICON_PORTFR,
    VGA_ICON_PORTESCON,
    VGA_ICON_PORTBLKMUX,
    VGA_ICON_TNASSOC,
    VGA_ICON_RTPCONN,
    VGA_ICON_LSRT,
    VGA_ICON_LSR,
    VGA_ICON_ADDDFLT,
    VGA_ICON_DELDFLT,
    VGA_ICON_ADDRMAP,
    VGA_ICON_PORTMAP,
    VGA_ICON_GATEWAY,
    VGA_ICON_SOCKOVER,
    VGA_ICON_APPCIP,
    VGA_ICON_ACCLIST,
    VGA_ICON_TPDEF,
    VGA_ICON_TPLOAD,
    VGA_ICON_PORTMPC,
    VGA_ICON_TNREDIRECT,
    VGA_ICON_PORTIP,
    VGA_ICON_PORTMPCPLUS,
    VGA_ICON_LUDISPSEC,
};
extern const char* const gvga_pixmap_names[85];

struct VGA_VIEWER_DESC {
    // Writes the row's text, at most VGA_VIEWER_MAX_TEXT_LENGTH characters and a terminator;
    // returns its length.
    int (*create_text)(void* record, char* text);
    int (*choose_icon)(void* record); // VGA_ICON
    NB_USHORT show_icon;
    void (*arm_cb)(void* record,
                   XmDrawnButtonCallbackStruct* data);      // none: the row cannot be selected
    void (*disarm_cb)(Widget widget, XtPointer, XtPointer); // the keyboard changed the selection
    void (*act_cb)(void* record, XmDrawnButtonCallbackStruct* data);
    void (*drag_cb)(void* record, bool leaving, bool upward);
    void (*decor_cb)(void* record, Widget widget, int x, int y, GC gc);
    void (*select_cb)(vga_dialog* owner); // the viewer dropped a selection by itself
    NB_USHORT expandable;
    NB_USHORT level;
    NB_USHORT flat;
    bool (*alone)(const void* record); // the row takes no part in multiple selection by keyboard
};
extern const VGA_VIEWER_DESC gvga_viewer_desc[VGA_VIEWER_TYPE_COUNT];
// The table the viewer reads: gvga_viewer_desc, or one that a test puts in its place.
extern const VGA_VIEWER_DESC* gvga_viewer_types;
