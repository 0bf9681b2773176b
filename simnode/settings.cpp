// Values that the node or the domain keeps whole: one query reads them, one verb sets them.
#include "simnode/request.h"

#include "nof/ipbridge.h"
#include "nof/tn3270.h"
#include "nof/trace.h"

#include <algorithm>
#include <cstring>

namespace simnode {
namespace {

struct SettingRow {
    Setting setting;
    NB_USHORT query;
    NB_USHORT define;
    NB_USHORT reply_offset; // 0: the reply's buffer holds the value
    NB_USHORT define_offset;
    NB_USHORT length;
    Rc unset; // answer of the query before the value was ever set; success: zeros
    bool of_domain = false;
};

constexpr NB_USHORT BODY = sizeof(VCB_HEADER);

constexpr SettingRow rows[] = {
    {Setting::defaults,
     NAP_QUERY_DEFAULTS,
     NAP_DEFINE_DEFAULTS,
     BODY,
     BODY,
     sizeof(NODE_DEFAULTS),
     {}},
    {Setting::trace_type, NAP_QUERY_TRACE_TYPE, 0, BODY, 0, sizeof(QUERY_TRACE_TYPE) - BODY, {}},
    {Setting::cs_trace,
     NAP_QUERY_CS_TRACE,
     NAP_SET_CS_TRACE,
     offsetof(SET_CS_TRACE, trace_flags),
     offsetof(SET_CS_TRACE, trace_flags),
     4,
     {}},
    {Setting::back_level_cs_trace, NAP_QUERY_BCK_CS_TRACE, NAP_SET_BCK_CS_TRACE, BODY, BODY, 4, {}},
    {Setting::tn_server_trace,
     NAP_QUERY_TN_SERVER_TRACE,
     NAP_SET_TN_SERVER_TRACE,
     BODY,
     BODY,
     2,
     {}},
    {Setting::slp_trace, NAP_QUERY_TN3270_SLP_TRACE, NAP_SET_TN3270_SLP_TRACE, BODY, BODY, 2, {}},
    {Setting::tn3270_defaults,
     NAP_QUERY_TN3270_DEFAULTS,
     NAP_DEFINE_TN3270_DEFAULTS,
     BODY,
     BODY,
     sizeof(TN3270_DEFAULTS_DATA),
     {}},
    {Setting::ssl_ldap,
     NAP_QUERY_TN3270_SSL_LDAP,
     NAP_DEFINE_TN3270_SSL_LDAP,
     0,
     BODY,
     sizeof(TN3270_SSL_LDAP_SETTINGS),
     {}},
    {Setting::slp,
     NAP_QUERY_TN3270_SLP,
     NAP_DEFINE_TN3270_SLP,
     BODY,
     BODY,
     sizeof(TN3270_SLP_SETTINGS),
     {}},
    {Setting::express_logon,
     NAP_QUERY_TN3270_EXPRESS_LOGON,
     NAP_DEFINE_TN3270_EXPRESS_LOGON,
     BODY,
     BODY,
     sizeof(DEFINE_TN3270_EXPRESS_LOGON) - BODY,
     {NAP_STATE_CHECK, NAP_NODE_NOT_CONFIGURED}},
    {Setting::appcip_defaults,
     NAP_QUERY_IPBRIDGE_APPCIP_DEFAULTS,
     NAP_DEFINE_IPBRIDGE_APPCIP_DEFAULTS,
     offsetof(QUERY_IPBRIDGE_APPCIP_DEFAULTS, defaults),
     BODY,
     sizeof(IPBRIDGE_APPCIP_DEFAULTS),
     {}},
    {Setting::central_logging,
     NAP_QUERY_CENTRAL_LOGGING,
     NAP_SET_CENTRAL_LOGGING,
     BODY,
     BODY,
     1,
     {},
     true},
    {Setting::global_log_type,
     NAP_QUERY_GLOBAL_LOG_TYPE,
     NAP_SET_GLOBAL_LOG_TYPE,
     BODY,
     BODY,
     4,
     {},
     true},
};
static_assert(std::size(rows) == SETTING_COUNT);

// Null for an opcode without a row.
const SettingRow* row_of(NB_USHORT opcode) {
    const auto* row = std::find_if(std::begin(rows), std::end(rows), [=](const SettingRow& r) {
        return r.query == opcode || r.define == opcode;
    });
    return row == std::end(rows) ? nullptr : row;
}

Bytes& value_of(Request& request, const SettingRow& row) {
    Settings& settings =
        row.of_domain ? request.world.domain.settings : request.target.node->settings;
    return settings[static_cast<std::size_t>(row.setting)];
}

// Logging is the central logger's business; its handle is a node's.
bool wrong_logger(const Request& request, const SettingRow& row) {
    return row.of_domain && request.target.kind == TargetKind::node &&
           request.target.node->name != request.world.domain.central_logger;
}

} // namespace

Rc query_setting(Request& request) {
    const SettingRow& row = *row_of(vcb_header(request.block.data())->opcode);
    if (wrong_logger(request, row)) {
        return {NAP_STATE_CHECK, NAP_NOT_CENTRAL_LOGGER};
    }
    const Bytes& value = value_of(request, row);
    if (value.empty() && !row.unset.ok()) {
        return row.unset;
    }
    Bytes reply = value;
    reply.resize(row.length);
    if (row.reply_offset != 0) {
        std::copy(reply.begin(), reply.end(), request.block.begin() + row.reply_offset);
    } else if (request.capacity < reply.size()) {
        return RC_BUFFER_TOO_SMALL;
    } else {
        request.buffer = std::move(reply);
    }
    return {};
}

Rc define_setting(Request& request) {
    const SettingRow& row = *row_of(vcb_header(request.block.data())->opcode);
    if (wrong_logger(request, row)) {
        return {NAP_STATE_CHECK, NAP_NOT_CENTRAL_LOGGER};
    }
    const auto body = request.block.subspan(row.define_offset, row.length);
    value_of(request, row).assign(body.begin(), body.end());
    return {};
}

Rc define_trace_type(Request& request) {
    const auto& set = request.as<SET_TRACE_TYPE>();
    Bytes& value = value_of(request, *row_of(NAP_QUERY_TRACE_TYPE));
    QUERY_TRACE_TYPE kept{};
    if (!value.empty()) {
        std::copy(value.begin(), value.end(), reinterpret_cast<NB_BYTE*>(&kept) + BODY);
    }
    const auto change = [&](NB_ULONG old, NB_ULONG flags) {
        return set.replace == NAP_YES ? flags : set.add == NAP_YES ? old | flags : old & ~flags;
    };
    kept.truncation_length = set.truncation_length;
    kept.node_flags = change(kept.node_flags, set.node_flags);
    kept.kernel_flags = change(kept.kernel_flags, set.kernel_flags);
    const auto* bytes = reinterpret_cast<const NB_BYTE*>(&kept);
    value.assign(bytes + BODY, bytes + sizeof kept);
    return {};
}

Rc delete_appcip_defaults(Request& request) {
    value_of(request, *row_of(NAP_QUERY_IPBRIDGE_APPCIP_DEFAULTS)).clear();
    return {};
}

} // namespace simnode
