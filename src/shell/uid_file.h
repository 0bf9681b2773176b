// The open UID file with every window's and dialog's widget tree.
#pragma once

#include <Mrm/MrmPublic.h>

extern MrmHierarchy gvga_uid_hierarchy; // null: none open
