#include "shell/globals.h"

NB_USHORT gvga_supported[VGA_SUPPORT_COUNT];
VGA_LEAD_DIALOG gvga_lead_dialogs[VGA_LEAD_COUNT] = {
    {1, ".displayLead3270"},        {1, ".displayLead3270Printer"}, {1, ".displayLead3270RJE"},
    {1, ".displayLead3270Display"}, {1, ".displayLeadPool"},        {1, ".displayLeadUser"},
};

NB_USHORT gvga_platform;
NB_USHORT gvga_impl_sdlc, gvga_impl_qllc, gvga_impl_tr, gvga_impl_ether, gvga_impl_fddi,
    gvga_impl_fr, gvga_impl_chnl, gvga_impl_ip, gvga_impl_mpc, gvga_impl_mpc_plus;

NB_USHORT gvga_variant_a;
NB_USHORT gvga_variant_b;
NB_USHORT gvga_display_names;
NB_USHORT gvga_read_only;

char gvga_web_browser[201];
pid_t gvga_web_temp_pid;

Widget gvga_toplevel;
XtAppContext gvga_appcontext;
Display* gvga_display;
Screen* gvga_screen;
Window gvga_root_window;
Atom gvga_close_atom;

vga_dialog* gvga_main_dialog;
vga_dialog* gvga_first_dialog;
vga_system* gvga_system;
