// Start-up, options, main loop, shutdown and exit path.
#pragma once

#include "shell/globals.h"
#include "shell/verb_queue.h"

// How far start-up came, for the exit path.
struct VGA_RUN {
    char** vector; // the extended argument vector, null when there was no memory for it
    bool frontend; // initialised
    bool loop;     // the first window is shown and the build runs
};

// The whole program between main's entry and its status.
int vga_run(int argc, char** argv);
// Its three parts: start-up (true: the main loop may run), one step of the loop while the exit code
// is 0 (blocks until something happens), and the exit path, which gives the status.
bool vga_begin(VGA_RUN* run, int argc, char** argv);
void vga_main_loop_step();
int vga_end(VGA_RUN* run);

bool vga_add_params_to_command_line(int argc, char** argv, int* new_argc, char*** new_argv);
bool vga_initialise_frontend(int* argc, char** argv);
bool vga_initialise_backend();
void vga_terminate_frontend();
void vga_terminate_backend();
// Tells the operator about a fatal exit code.
void vga_error_exit();

void vga_get_options();
// The resource "Tessaly" + name into buffer (terminated), or the default. True when the resource
// was found.
bool vga_get_resource_string(const char* name, const char* default_value, char* buffer,
                             std::size_t size);
bool vga_get_resource_bool(const char* name, bool default_value);
// min == max: no range.
NB_ULONG vga_get_resource_ulong(const char* name, NB_ULONG default_value, NB_ULONG min,
                                NB_ULONG max);

void v0_set_uidpath(const char* base_dir, const char* class_name, const char* application_class,
                    Display* display);

// Called by the build when the whole store has been read.
void vga_system_built();
// Starts the orderly end: releases files and nodes one after another, then sets exit code -1.
// Always true.
bool vga_start_shutdown();
void vga_process_shutdown(VGA_COMPLETION* completion);

void vga_signal_catcher(int signal);
int vsvig_signal_ignore(int signal);
int vga_xerror_handler(Display* display, XErrorEvent* event);
void vga_display_web_site(int message_number);
[[noreturn]] void vga_web_temp_child_process(int message_number);
void vga_menu_help_web(Widget widget, XtPointer tag, XtPointer call_data);
const char* vga_get_web_browser_path();
