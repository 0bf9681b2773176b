// Process-wide state that start-up fills and every part reads.
#pragma once

#include "shell/exit_record.h"

#include <X11/Intrinsic.h>

enum VGA_SUPPORTED { // indexes of gvga_supported
    VGA_SUPPORT_CPIC,
    VGA_SUPPORT_RJE,
    VGA_SUPPORT_CLIENT_SERVER,
    VGA_SUPPORT_DIRECTORY,
    VGA_SUPPORT_APPLY,
    VGA_SUPPORT_COUNT,
};
extern NB_USHORT gvga_supported[VGA_SUPPORT_COUNT];

struct VGA_LEAD_DIALOG {
    NB_USHORT shown;
    const char* resource; // its X resource, with the leading period
};
enum VGA_LEAD {
    VGA_LEAD_3270,
    VGA_LEAD_PRINTER,
    VGA_LEAD_RJE,
    VGA_LEAD_DISPLAY,
    VGA_LEAD_POOL,
    VGA_LEAD_USER,
    VGA_LEAD_COUNT
};
extern VGA_LEAD_DIALOG gvga_lead_dialogs[VGA_LEAD_COUNT];

inline constexpr NB_USHORT VGA_PLATFORM_CODE = 14;
extern NB_USHORT gvga_platform;
// DLC implementation value per kind of adapter on this platform; 0: not available.
extern NB_USHORT gvga_impl_sdlc, gvga_impl_qllc, gvga_impl_tr, gvga_impl_ether, gvga_impl_fddi,
    gvga_impl_fr, gvga_impl_chnl, gvga_impl_ip, gvga_impl_mpc, gvga_impl_mpc_plus;

extern NB_USHORT gvga_variant_a;     // 0
extern NB_USHORT gvga_variant_b;     // 1
extern NB_USHORT gvga_display_names; // window titles show the dialogs' UID names
extern NB_USHORT gvga_read_only;     // the configuration may only be viewed

extern char gvga_web_browser[201];
extern pid_t gvga_web_temp_pid; // intermediate process of a browser launch, 0: none

extern Widget gvga_toplevel;
extern XtAppContext gvga_appcontext;
extern Display* gvga_display;
extern Screen* gvga_screen;
extern Window gvga_root_window;
extern Atom gvga_close_atom; // WM_DELETE_WINDOW

struct vga_dialog;
extern vga_dialog* gvga_main_dialog;  // its closing ends the program
extern vga_dialog* gvga_first_dialog; // owns the top-level shell; null once the build has shown it

struct vga_system;
extern vga_system* gvga_system; // root of the data store
