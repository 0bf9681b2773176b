// The node operator library: sends verbs to the node software and delivers answers and indications
// on the X thread.
#pragma once

#include "nba/nba.h"
#include "nof/opcodes.h"

#include <X11/Intrinsic.h>

// Receives a completed block (return codes filled in) or an indication. handle: the target;
// correlator: the issuer's value, or for indications that of their registration; reserved: 0. Own
// blocks belong to the issuer again; indications belong to the library and live for the call only.
using NOF_CALLBACK = void (*)(NB_HANDLE handle, void* vcb, NB_ULONG correlator, int reserved);

inline constexpr int NOF_API_LEVEL = 2;
inline constexpr NB_USHORT NOF_COMPLETED =
    6384; // the verb completed during the call, no callback will follow
inline constexpr NB_USHORT NOF_IN_PROGRESS = 0;

// Sends one verb. target: 0, a node's connection handle or a file handle. The block, and the data
// buffer of a query, must stay valid until the completion. Result: NOF_COMPLETED, or
// NOF_IN_PROGRESS when the callback will be called once.
NB_USHORT nof_async_version(int level, NB_HANDLE target, void* vcb, NOF_CALLBACK callback,
                            NB_ULONG correlator);

using VPM_ADD_INPUT = XtInputId (*)(XtAppContext, int, XtPointer, XtInputCallbackProc, XtPointer);
using VPM_REMOVE_INPUT = void (*)(XtInputId);
// Registers the library's input with the X event loop. To be called once, before any verb.
void vpm_asm_use_xt_sched(XtAppContext app_context, VPM_ADD_INPUT add_input,
                          VPM_REMOVE_INPUT remove_input);
// How many completions and indications one call of the loop may deliver, so that X events are not
// starved.
void vpm_set_io_limit(int limit);
// Ends the link to the node software and forgets what is outstanding and the event loop. Later
// verbs complete at once as after a loss of the link, until vpm_asm_use_xt_sched is called again.
void nof_terminate();

// Non-zero in a client/server domain, 0 for a single node. Valid before the first verb.
int vsm_is_client_server();
