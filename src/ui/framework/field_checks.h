// Callbacks that judge what is typed or pasted into a text field (XmNmodifyVerifyCallback). They
// refuse a change, or turn letters to upper case, and keep no state.
#pragma once

#include <X11/Intrinsic.h>

void vga_check_num_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_signed_num_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_alphanum_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_caps_alphanum_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_all_caps_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_hex_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_tp_name_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_ip_addr_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_ip_name_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_filename_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_pathname_cb(Widget widget, XtPointer, XtPointer call_data);

// SNA names: at most 8 characters at once; type A, upper case.
void vga_check_ebcdic_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_ebcdic_lower_cb(Widget widget, XtPointer, XtPointer call_data); // keeps the case
void vga_check_ebcdic_ae_cb(Widget widget, XtPointer, XtPointer call_data);    // type AE, any case
void vga_check_mode_name_cb(Widget widget, XtPointer, XtPointer call_data);    // or blanks only
void vga_check_lu_name_template_cb(Widget widget, XtPointer, XtPointer call_data); // and periods

// Passwords: a field that shows the placeholder of a stored one (messages 174 and 1165) is emptied
// by the first change.
void vga_check_ebcdic_ae_pwd_cb(Widget widget, XtPointer, XtPointer call_data);
void vga_check_hex_pwd_cb(Widget widget, XtPointer, XtPointer call_data);
