#include "nba/nba.h"
#include "nof/cn.h"
#include "nof/connectivity.h"
#include "nof/extra_data.h"
#include "nof/ipbridge.h"
#include "nof/lu62.h"
#include "nof/node.h"
#include "nof/pool.h"
#include "nof/primary.h"
#include "nof/pu_lu.h"
#include "nof/routing.h"
#include "nof/rtp.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/tp.h"
#include "nof/trace.h"
#include "nof/user.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

// The field that sizes a block's variable part.
struct Count {
    std::size_t offset = 0;
    std::size_t width = 0;
};

constexpr NBA_VERB_ROW row(NB_USHORT opcode, const char* name, std::size_t size, NB_BYTE flags,
                           Count count = {}, std::size_t element = 0, std::size_t count2 = 0) {
    return NBA_VERB_ROW{opcode,
                        0,
                        0,
                        static_cast<NB_USHORT>(size),
                        static_cast<NB_USHORT>(count.offset),
                        static_cast<NB_USHORT>(element),
                        flags,
                        static_cast<NB_BYTE>(count.width),
                        static_cast<NB_USHORT>(count2),
                        name};
}

#define VERB(name, type) row(NAP_##name, "NAP_" #name, sizeof(type), 0)
#define QUERY(name, type) row(NAP_##name, "NAP_" #name, sizeof(type), NBA_VERB_HAS_BUFFER)
#define INDICATION(name, type) row(NAP_##name, "NAP_" #name, sizeof(type), NBA_VERB_INDICATION)
#define VARIABLE(name, count, element)                                                             \
    row(NAP_##name, "NAP_" #name, sizeof(name), 0, count, element)
#define COUNT(type, field)                                                                         \
    Count {                                                                                        \
        offsetof(type, field), sizeof(type::field)                                                 \
    }
#define COUNT_IN(type, part, part_type, field)                                                     \
    Count {                                                                                        \
        offsetof(type, part) + offsetof(part_type, field), sizeof(part_type::field)                \
    }

// By opcode.
constexpr NBA_VERB_ROW ROWS[] = {
    VERB(DEFINE_DEFAULTS, DEFINE_DEFAULTS),
    VERB(DEFINE_LOCAL_LU, DEFINE_LOCAL_LU),
    VERB(DEACTIVATE_SESSION, DEACTIVATE_SESSION),
    VERB(DEFINE_TP, DEFINE_TP),
    VERB(DELETE_TP, DELETE_TP),
    VERB(DEFINE_PARTNER_LU, DEFINE_PARTNER_LU),
    VERB(DEFINE_MODE, DEFINE_MODE),
    VERB(DELETE_PARTNER_LU, DELETE_PARTNER_LU),
    VERB(DELETE_MODE, DELETE_BY_NAME8),
    VERB(DELETE_LOCAL_LU, DELETE_BY_NAME8),
    VERB(DEFINE_USERID_PASSWORD, DEFINE_USERID_PASSWORD),
    VERB(DELETE_USERID_PASSWORD, DELETE_USERID_PASSWORD),
    VERB(DEFINE_LU_LU_PASSWORD, DEFINE_LU_LU_PASSWORD),
    VERB(DELETE_LU_LU_PASSWORD, DELETE_LU_LU_PASSWORD),
    VERB(DEFINE_LU62_TIMEOUT, DEFINE_LU62_TIMEOUT),
    VERB(DELETE_LU62_TIMEOUT, DELETE_LU62_TIMEOUT),
    VERB(ACTIVATE_SESSION, ACTIVATE_SESSION),
    VERB(START_DLC, START_DLC),
    VERB(START_LS, START_LS),
    VERB(START_PORT, START_PORT),
    VERB(STOP_DLC, STOP_DLC),
    VERB(STOP_LS, STOP_LS),
    VERB(STOP_PORT, STOP_PORT),
    VERB(DEFINE_CN, DEFINE_CN),
    VARIABLE(DEFINE_DLC, COUNT(DEFINE_DLC, specific_length), 1),
    VARIABLE(DEFINE_LS, COUNT_IN(DEFINE_LS, def, LS_DEF, specific_length), 1),
    row(NAP_DEFINE_PORT, "NAP_DEFINE_PORT", sizeof(DEFINE_PORT), 0,
        COUNT_IN(DEFINE_PORT, def, PORT_DEF, port_data_length), 1,
        offsetof(DEFINE_PORT, def) + offsetof(PORT_DEF, link_data_length)),
    VERB(DELETE_CN, DELETE_CN),
    VERB(DELETE_DLC, DELETE_BY_NAME8),
    VERB(DELETE_LS, DELETE_BY_NAME8),
    VERB(DELETE_PORT, DELETE_BY_NAME8),
    VERB(DEFINE_LS_ROUTING, DEFINE_LS_ROUTING),
    VERB(DELETE_LS_ROUTING, DELETE_LS_ROUTING),
    VERB(DEFINE_DIRECTORY_ENTRY, DEFINE_DIRECTORY_ENTRY),
    VERB(DELETE_DIRECTORY_ENTRY, DELETE_DIRECTORY_ENTRY),
    VERB(DEFINE_COS, DEFINE_COS),
    VERB(DELETE_COS, DELETE_COS),
    VERB(STOP_NODE, STOP_NODE),
    VERB(DEFINE_CPIC_SIDE_INFO, DEFINE_CPIC_SIDE_INFO),
    VERB(DELETE_CPIC_SIDE_INFO, DELETE_CPIC_SIDE_INFO),
    VARIABLE(DEFINE_ADJACENT_LEN_NODE, COUNT(DEFINE_ADJACENT_LEN_NODE, num_lus),
             sizeof(ADJACENT_LU)),
    VARIABLE(DELETE_ADJACENT_LEN_NODE, COUNT(DELETE_ADJACENT_LEN_NODE, num_lus),
             sizeof(ADJACENT_LU)),
    VARIABLE(DEFINE_ADJACENT_NODE, COUNT(DEFINE_ADJACENT_NODE, num_lus), sizeof(ADJACENT_LU)),
    VARIABLE(DELETE_ADJACENT_NODE, COUNT(DELETE_ADJACENT_NODE, num_lus), sizeof(ADJACENT_LU)),
    QUERY(QUERY_LU62_TIMEOUT, QUERY_LU62_TIMEOUT),
    QUERY(QUERY_LS_ROUTING, QUERY_LS_ROUTING),
    QUERY(QUERY_DSPU_TEMPLATE, QUERY_DSPU_TEMPLATE),
    QUERY(QUERY_CN_PORT, QUERY_CN_PORT),
    QUERY(QUERY_COS, QUERY_COS),
    QUERY(QUERY_COS_NODE_ROW, QUERY_COS_ROW),
    QUERY(QUERY_COS_TG_ROW, QUERY_COS_ROW),
    QUERY(QUERY_DIRECTORY_ENTRY, QUERY_DIRECTORY_ENTRY),
    QUERY(QUERY_DLC, QUERY_DLC),
    QUERY(QUERY_LOCAL_LU, QUERY_LOCAL_LU),
    QUERY(QUERY_LS, QUERY_LS),
    QUERY(QUERY_MODE, QUERY_MODE),
    QUERY(QUERY_MODE_DEFINITION, QUERY_MODE_DEFINITION),
    QUERY(QUERY_PARTNER_LU, QUERY_PARTNER_LU),
    QUERY(QUERY_PARTNER_LU_DEFINITION, QUERY_PARTNER_LU_DEFINITION),
    QUERY(QUERY_PORT, QUERY_PORT),
    QUERY(QUERY_TP_DEFINITION, QUERY_TP_DEFINITION),
    QUERY(QUERY_CN, QUERY_CN),
    QUERY(QUERY_LU_0_TO_3, QUERY_LU_0_TO_3),
    QUERY(QUERY_LU_POOL, QUERY_LU_POOL),
    QUERY(QUERY_PU, QUERY_PU),
    QUERY(QUERY_DOWNSTREAM_LU, QUERY_DOWNSTREAM_LU),
    QUERY(QUERY_DOWNSTREAM_PU, QUERY_PU),
    QUERY(QUERY_CPIC_SIDE_INFO, QUERY_CPIC_SIDE_INFO),
    QUERY(QUERY_DLUR_PU, QUERY_PU),
    QUERY(QUERY_RTP_CONNECTION, QUERY_RTP_CONNECTION),
    QUERY(QUERY_LU_LU_PASSWORD, QUERY_LU_LU_PASSWORD),
    QUERY(QUERY_USERID_PASSWORD, QUERY_USERID_PASSWORD),
    VERB(QUERY_NODE, QUERY_NODE),
    VERB(QUERY_DEFAULTS, QUERY_DEFAULTS),
    VERB(REGISTER_INDICATION_SINK, REGISTER_INDICATION_SINK),
    INDICATION(DIRECTORY_INDICATION, DIRECTORY_INDICATION),
    INDICATION(LS_INDICATION, LS_INDICATION),
    INDICATION(MODE_INDICATION, MODE_INDICATION),
    INDICATION(PLU_INDICATION, PLU_INDICATION),
    INDICATION(PORT_INDICATION, PORT_INDICATION),
    INDICATION(DLC_INDICATION, DLC_INDICATION),
    INDICATION(LU_0_TO_3_INDICATION, LU_0_TO_3_INDICATION),
    INDICATION(PU_INDICATION, PU_INDICATION),
    INDICATION(DOWNSTREAM_PU_INDICATION, DOWNSTREAM_PU_INDICATION),
    INDICATION(DOWNSTREAM_LU_INDICATION, DOWNSTREAM_LU_INDICATION),
    INDICATION(LOCAL_LU_INDICATION, LOCAL_LU_INDICATION),
    INDICATION(DLUR_PU_INDICATION, DLUR_PU_INDICATION),
    VERB(DEFINE_LU_0_TO_3, DEFINE_LU_0_TO_3),
    VERB(DEFINE_LU_0_TO_3_RANGE, DEFINE_LU_0_TO_3_RANGE),
    VERB(DELETE_LU_0_TO_3, DELETE_BY_NAME8),
    VERB(DELETE_LU_0_TO_3_RANGE, DELETE_LU_0_TO_3_RANGE),
    VERB(DEFINE_LU_POOL, DEFINE_LU_POOL),
    VERB(DELETE_LU_POOL, DELETE_LU_POOL),
    VERB(DEFINE_DOWNSTREAM_LU, DEFINE_DOWNSTREAM_LU),
    VERB(DEFINE_DOWNSTREAM_LU_RANGE, DEFINE_DOWNSTREAM_LU_RANGE),
    VERB(DELETE_DOWNSTREAM_LU, DELETE_BY_NAME8),
    VERB(DELETE_DOWNSTREAM_LU_RANGE, DELETE_DOWNSTREAM_LU_RANGE),
    VARIABLE(DEFINE_DSPU_TEMPLATE,
             COUNT_IN(DEFINE_DSPU_TEMPLATE, def, DSPU_TEMPLATE_DEF, num_dslu_templates),
             sizeof(DSLU_TEMPLATE)),
    VERB(DELETE_DSPU_TEMPLATE, DELETE_DSPU_TEMPLATE),
    VERB(DEFINE_INTERNAL_PU, DEFINE_INTERNAL_PU),
    VERB(START_INTERNAL_PU, START_INTERNAL_PU),
    VERB(STOP_INTERNAL_PU, STOP_INTERNAL_PU),
    VERB(DELETE_INTERNAL_PU, DELETE_BY_NAME8),
    VERB(PATH_SWITCH, PATH_SWITCH),
    VERB(ADD_DLC_TRACE, ADD_DLC_TRACE),
    VERB(REMOVE_DLC_TRACE, REMOVE_DLC_TRACE),
    QUERY(QUERY_DLC_TRACE, QUERY_DLC_TRACE),
    VERB(CONNECT_NODE, CONNECT_NODE),
    VERB(DISCONNECT_NODE, DISCONNECT_NODE),
    VERB(SET_PROCESSING_MODE, SET_PROCESSING_MODE),
    VERB(OPEN_FILE, OPEN_FILE),
    VERB(CLOSE_FILE, CLOSE_FILE),
    VERB(DEFINE_NODE, DEFINE_NODE),
    VERB(INIT_NODE, INIT_NODE),
    QUERY(QUERY_NODE_ALL, QUERY_NODE_ALL),
    VERB(QUERY_NODE_LIMITS, QUERY_NODE_LIMITS),
    INDICATION(CONFIG_INDICATION, HEADER_ONLY),
    INDICATION(NOF_STATUS_INDICATION, NOF_STATUS_INDICATION),
    INDICATION(SERVER_INDICATION, SERVER_INDICATION),
    VERB(SET_CENTRAL_LOGGING, SET_CENTRAL_LOGGING),
    VERB(QUERY_CENTRAL_LOGGING, QUERY_CENTRAL_LOGGING),
    VERB(SET_GLOBAL_LOG_TYPE, SET_GLOBAL_LOG_TYPE),
    VERB(SET_TRACE_TYPE, SET_TRACE_TYPE),
    VERB(QUERY_CENTRAL_LOGGER, QUERY_CENTRAL_LOGGER),
    VERB(QUERY_GLOBAL_LOG_TYPE, QUERY_GLOBAL_LOG_TYPE),
    VERB(QUERY_TRACE_TYPE, QUERY_TRACE_TYPE),
    VARIABLE(DEFINE_EMULATOR_USER,
             COUNT_IN(DEFINE_EMULATOR_USER, def, EMULATOR_USER_DEF, num_sessions),
             sizeof(USER_SESSION)),
    VERB(DELETE_EMULATOR_USER, DELETE_EMULATOR_USER),
    QUERY(QUERY_EMULATOR_USER_DEF, QUERY_EMULATOR_USER_DEF),
    VERB(DEFINE_RJE_WKSTN, DEFINE_RJE_WKSTN),
    VERB(DELETE_RJE_WKSTN, DELETE_RJE_WKSTN),
    QUERY(QUERY_RJE_WKSTN_DEF, QUERY_RJE_WKSTN_DEF),
    VERB(DEFINE_EXTRA_DATA, DEFINE_EXTRA_DATA),
    VERB(DELETE_EXTRA_DATA, DELETE_EXTRA_DATA),
    QUERY(QUERY_EXTRA_DATA, QUERY_EXTRA_DATA),
    VERB(SET_CS_TRACE, SET_CS_TRACE),
    VERB(QUERY_CS_TRACE, QUERY_CS_TRACE),
    VERB(ADD_BACKUP, BACKUP_SERVER),
    VERB(DELETE_BACKUP, BACKUP_SERVER),
    QUERY(QUERY_SNA_NET, QUERY_NODE_ALL),
    INDICATION(SNA_NET_INDICATION, SNA_NET_INDICATION),
    VERB(DEFINE_TN3270_EXPRESS_LOGON, DEFINE_TN3270_EXPRESS_LOGON),
    VERB(QUERY_TN3270_EXPRESS_LOGON, QUERY_TN3270_EXPRESS_LOGON),
    VARIABLE(DEFINE_TN3270_ACCESS,
             COUNT_IN(DEFINE_TN3270_ACCESS, def, TN3270_ACCESS_DEF, num_sessions),
             sizeof(TN3270_SESSION)),
    // Its structure has room for one session already.
    row(NAP_DELETE_TN3270_ACCESS, "NAP_DELETE_TN3270_ACCESS",
        offsetof(DELETE_TN3270_ACCESS, sessions), 0, COUNT(DELETE_TN3270_ACCESS, num_sessions),
        sizeof(TN3270_SESSION_NAME)),
    QUERY(QUERY_TN3270_ACCESS_DEF, QUERY_TN3270_ACCESS_DEF),
    VERB(SET_TN_SERVER_TRACE, SET_TN_SERVER_TRACE),
    VERB(QUERY_TN_SERVER_TRACE, QUERY_TN_SERVER_TRACE),
    VERB(DEFINE_TN3270_ASSOCIATION, DEFINE_TN3270_ASSOCIATION),
    VERB(DELETE_TN3270_ASSOCIATION, DELETE_TN3270_ASSOCIATION),
    QUERY(QUERY_TN3270_ASSOCIATION, QUERY_TN3270_ASSOCIATION),
    VERB(DEFINE_TN3270_DEFAULTS, DEFINE_TN3270_DEFAULTS),
    VERB(QUERY_TN3270_DEFAULTS, QUERY_TN3270_DEFAULTS),
    VERB(DEFINE_TN3270_SSL_LDAP, DEFINE_TN3270_SSL_LDAP),
    QUERY(QUERY_TN3270_SSL_LDAP, QUERY_TN3270_SSL_LDAP),
    VERB(DEFINE_TN_REDIRECT, DEFINE_TN_REDIRECT),
    VERB(DELETE_TN_REDIRECT, DELETE_TN_REDIRECT),
    QUERY(QUERY_TN_REDIRECT_DEF, QUERY_TN_REDIRECT_DEF),
    VERB(SET_BCK_CS_TRACE, SET_BCK_CS_TRACE),
    VERB(QUERY_BCK_CS_TRACE, QUERY_BCK_CS_TRACE),
    VERB(DEFINE_PRIMARY_LINE, DEFINE_PRIMARY_LINE),
    VERB(DELETE_PRIMARY_LINE, DELETE_PRIMARY_LINE),
    QUERY(QUERY_PRIMARY_LINE, QUERY_PRIMARY_LINE),
    VERB(DEFINE_PRIMARY_LU0, DEFINE_PRIMARY_LU0),
    VERB(DELETE_PRIMARY_LU0, DELETE_PRIMARY_LU0),
    QUERY(QUERY_PRIMARY_LU0, QUERY_PRIMARY_LU0),
    VARIABLE(DEFINE_SECURITY_ACCESS_LIST,
             COUNT_IN(DEFINE_SECURITY_ACCESS_LIST, def, SECURITY_ACCESS_LIST_DEF, num_users),
             sizeof(ACCESS_LIST_USER)),
    VARIABLE(DELETE_SECURITY_ACCESS_LIST, COUNT(DELETE_SECURITY_ACCESS_LIST, num_users),
             sizeof(ACCESS_LIST_USER::user_id)),
    QUERY(QUERY_SECURITY_ACCESS_LIST, QUERY_SECURITY_ACCESS_LIST),
    VARIABLE(DEFINE_TP_LOAD_INFO, COUNT_IN(DEFINE_TP_LOAD_INFO, def_data, TP_LOAD_DEF, ltv_length),
             1),
    VERB(DELETE_TP_LOAD_INFO, DELETE_TP_LOAD_INFO),
    QUERY(QUERY_TP_LOAD_INFO, QUERY_TP_LOAD_INFO),
    VERB(DEFINE_TN3270_SLP, DEFINE_TN3270_SLP),
    VERB(QUERY_TN3270_SLP, QUERY_TN3270_SLP),
    VERB(SET_TN3270_SLP_TRACE, SET_TN3270_SLP_TRACE),
    VERB(QUERY_TN3270_SLP_TRACE, QUERY_TN3270_SLP_TRACE),
    VERB(DEFINE_IPBRIDGE_APPCIP_DEFAULTS, DEFINE_IPBRIDGE_APPCIP_DEFAULTS),
    VERB(DELETE_IPBRIDGE_APPCIP_DEFAULTS, HEADER_ONLY),
    VERB(QUERY_IPBRIDGE_APPCIP_DEFAULTS, QUERY_IPBRIDGE_APPCIP_DEFAULTS),
    QUERY(QUERY_IPBRIDGE_APPCIP, QUERY_IPBRIDGE_APPCIP),
    INDICATION(IPBRIDGE_INDICATION, IPBRIDGE_INDICATION),
};

constexpr bool before(const NBA_VERB_ROW& a, const NBA_VERB_ROW& b) {
    return a.opcode != b.opcode ? a.opcode < b.opcode : a.form < b.form;
}
static_assert(std::adjacent_find(std::begin(ROWS), std::end(ROWS),
                                 [](const NBA_VERB_ROW& a, const NBA_VERB_ROW& b) {
                                     return !before(a, b);
                                 }) == std::end(ROWS),
              "the rows are not in order, or one is there twice");

template <typename T> T load(const void* address) {
    T value;
    std::memcpy(&value, address, sizeof value);
    return value;
}

std::size_t field(const void* block, std::size_t offset, std::size_t width) {
    const NB_BYTE* address = static_cast<const NB_BYTE*>(block) + offset;
    return width == 4 ? load<NB_ULONG>(address) : width == 2 ? load<NB_USHORT>(address) : *address;
}

} // namespace

const NBA_VERB_ROW* vnv_verb_search(NB_USHORT opcode, NB_BYTE form, int) {
    NBA_VERB_ROW wanted{};
    wanted.opcode = opcode;
    wanted.form = form;
    const NBA_VERB_ROW* found = std::lower_bound(std::begin(ROWS), std::end(ROWS), wanted, before);
    return found != std::end(ROWS) && !before(wanted, *found) ? found : nullptr;
}

std::size_t nba_block_length(const void* block) {
    const VCB_HEADER* header = vcb_header(block);
    const NBA_VERB_ROW* verb = vnv_verb_search(header->opcode, header->format, 0);
    if (verb == nullptr) {
        return 0;
    }
    std::size_t units = 0;
    if (verb->count_offset != 0) {
        units = field(block, verb->count_offset, verb->count_width);
    }
    if (verb->count2_offset != 0) {
        units += field(block, verb->count2_offset, verb->count_width);
    }
    return verb->block_size + units * verb->element_size;
}

bool nba_block_fits(const void* block, std::size_t length) {
    const VCB_HEADER* header = vcb_header(block);
    const NBA_VERB_ROW* verb = vnv_verb_search(header->opcode, header->format, 0);
    if (verb == nullptr) { // receivers go by the opcode alone
        return vnv_verb_search(header->opcode, 0, 0) == nullptr;
    }
    // The counts lie in the fixed part.
    return length >= verb->block_size && length >= nba_block_length(block);
}
