// Return codes of the service beyond those that the node operator interface names.
#pragma once

#include "nof/vcb.h"

namespace simnode {

struct Rc {
    NB_USHORT primary = NAP_OK;
    NB_ULONG secondary = NAP_RC_NONE;
    bool ok() const { return primary == NAP_OK; }
};

inline constexpr NB_USHORT RC_LS_FAILURE = 0x2300;
inline constexpr NB_USHORT RC_CANCELLED = 0x2100;
inline constexpr NB_USHORT RC_DLUR_FAILURE = 0x1400;

// Secondary codes that the console has messages for or takes for success.
inline constexpr Rc RC_NODE_ALREADY_ACTIVE{NAP_STATE_CHECK, 0x39100000};
inline constexpr Rc RC_NO_NODE_DEFINITION{NAP_STATE_CHECK, 0x554D};
inline constexpr Rc RC_HANDLE_BUSY{NAP_STATE_CHECK, 0x5544};
inline constexpr Rc RC_UNKNOWN_DLC{NAP_PARAMETER_CHECK, 0x10050000};
inline constexpr Rc RC_UNKNOWN_PORT{NAP_PARAMETER_CHECK, 0x0C100000};
inline constexpr Rc RC_PORT_ALREADY_ACTIVE{NAP_STATE_CHECK, 0x10100000};
inline constexpr Rc RC_PORT_STOPPING{NAP_STATE_CHECK, 0x11100000};
inline constexpr Rc RC_PORT_DLC_INACTIVE{NAP_STATE_CHECK, 0x40100000};
inline constexpr Rc RC_DLC_INACTIVE{NAP_STATE_CHECK, 0x42100000};
inline constexpr Rc RC_UNKNOWN_LS{NAP_PARAMETER_CHECK, 0x17100000};
inline constexpr Rc RC_LS_ALREADY_ACTIVE{NAP_STATE_CHECK, 0xC0010000};
inline constexpr Rc RC_LS_STOPPING{NAP_STATE_CHECK, 0x12100000};
inline constexpr Rc RC_LS_PORT_INACTIVE{NAP_STATE_CHECK, 0x3D100000};
inline constexpr Rc RC_LS_LIMIT_EXCEEDED{NAP_STATE_CHECK, 0x3E100000};
inline constexpr Rc RC_PU_ALREADY_ACTIVE{NAP_STATE_CHECK, 0x05900000};
inline constexpr Rc RC_PU_NOT_ACTIVE{NAP_STATE_CHECK, 0x06900000};
inline constexpr Rc RC_PU_NOT_DLUR{NAP_STATE_CHECK, 0x55100000};
inline constexpr Rc RC_PU_NO_DLUS{RC_DLUR_FAILURE, 0x07900000};
inline constexpr Rc RC_DSLU_ALREADY_ACTIVE{NAP_STATE_CHECK, 0x27900000};
inline constexpr Rc RC_SESSION_UNKNOWN_LU{NAP_PARAMETER_CHECK, 0x5C010000};
inline constexpr Rc RC_SESSION_UNKNOWN_PARTNER{NAP_PARAMETER_CHECK, 0x1C100000};
inline constexpr Rc RC_SESSION_UNKNOWN_MODE{NAP_PARAMETER_CHECK, 0x26020000};
inline constexpr Rc RC_SESSION_LIMIT{0x1A00, 0};
inline constexpr Rc RC_SESSION_FAILED_RETRY{0x0310, 0};
inline constexpr Rc RC_SESSION_NONE{NAP_NO_ENTRIES, 0};

// Secondary codes of this node alone; the console shows them as numbers.
inline constexpr Rc RC_UNKNOWN_NAME{NAP_PARAMETER_CHECK, 0x0E520000};
inline constexpr Rc RC_BAD_NAME{NAP_PARAMETER_CHECK, 0x0E530000};
inline constexpr Rc RC_UNKNOWN_PARENT{NAP_PARAMETER_CHECK, 0x0E540000};
inline constexpr Rc RC_BAD_VALUE{NAP_PARAMETER_CHECK, 0x0E550000};
inline constexpr Rc RC_BUFFER_TOO_SMALL{NAP_PARAMETER_CHECK, 0x0E560000};
inline constexpr Rc RC_BAD_LIST_OPTION{NAP_PARAMETER_CHECK, 0x0E570000};
inline constexpr Rc RC_RESOURCE_ACTIVE{NAP_STATE_CHECK, 0x0E580000};
inline constexpr Rc RC_NAME_IN_USE{NAP_STATE_CHECK, 0x0E590000};
inline constexpr Rc RC_ADDRESS_IN_USE{NAP_STATE_CHECK, 0x0E5A0000};
inline constexpr Rc RC_PERMANENT{NAP_STATE_CHECK, 0x0E5B0000};
inline constexpr Rc RC_NODE_NOT_ACTIVE{NAP_STATE_CHECK, 0x0E5C0000};
inline constexpr Rc RC_NODE_ACTIVE{NAP_STATE_CHECK, 0x0E5D0000};

inline constexpr Rc RC_BAD_VERB{NAP_INVALID_VERB, 0};
inline constexpr Rc RC_UNSUPPORTED{NAP_FUNCTION_NOT_SUPPORTED, 0};
inline constexpr Rc RC_TARGET_GONE{NAP_UNSUCCESSFUL, NAP_TARGET_GONE};
inline constexpr Rc RC_SYSTEM_STOPPING{NAP_UNSUCCESSFUL, NAP_SYSTEM_STOPPING};
inline constexpr Rc RC_NOT_AUTHORIZED{NAP_PARAMETER_CHECK, NAP_NOT_AUTHORIZED};

} // namespace simnode
