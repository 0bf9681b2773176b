// The X resource databases.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xresource.h>

extern XrmDatabase
    gvga_resource_database; // the display's, with the command line and the per-user file merged in
extern XrmDatabase gvga_local_database; // the per-user file alone
