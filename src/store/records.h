// Every record of the data store. All records are zero-filled plain memory with a handle, made by
// the vga_init_* functions and placed by the vga_insert_* functions of store.h. The first tree
// node stands at the start of a record (behind the kind flag of PUs and dependent LUs), so that a
// record can be handed to ntl_avl_next; every further node's self points back at the record.
#pragma once

#include "store/connectivity_records.h"
#include "store/lu_records.h"
#include "store/pool_records.h"
#include "store/remote_records.h"
#include "store/routing_records.h"
#include "store/security_records.h"
#include "store/session_records.h"
#include "store/system_records.h"
#include "store/template_records.h"
#include "store/tn3270_records.h"
#include "store/tp_records.h"
#include "store/user_records.h"
