#include "simnode/definition_fields.h"

#include "nof/cn.h"
#include "nof/extra_data.h"
#include "nof/ipbridge.h"
#include "nof/lu62.h"
#include "nof/pool.h"
#include "nof/primary.h"
#include "nof/pu_lu.h"
#include "nof/routing.h"
#include "nof/rtp.h"
#include "nof/security.h"
#include "nof/tn3270.h"
#include "nof/tp.h"
#include "nof/user.h"

namespace simnode {
namespace {

using enum FieldType;

// Offset and length of a field of an entry.
#define AT(type, field) offsetof(type, field), sizeof(std::declval<type&>().field)

constexpr Choice timed[] = {{"node", NOF_TIMEOUT_NODE},
                            {"local-lu", NOF_TIMEOUT_LOCAL_LU},
                            {"partner-lu", NOF_TIMEOUT_PARTNER_LU},
                            {"mode", NOF_TIMEOUT_MODE}};
constexpr Choice conversations[] = {{"basic", 0}, {"mapped", 1}, {"either", 2}};
constexpr Choice sync_levels[] = {
    {"none", 0}, {"confirm", 1}, {"either", 2}, {"sync-point", 3}, {"negotiated", 4}};
constexpr Choice load_types[] = {{"queued", NOF_TP_QUEUED},
                                 {"queued-broadcast", NOF_TP_QUEUED_BROADCAST},
                                 {"non-queued", NOF_TP_NON_QUEUED}};
constexpr Choice interfaces[] = {{"eia-232", 0}, {"eia-422", 1}};
constexpr Choice address_types[] = {{"numeric", NOF_ADDRESS_NUMERIC},
                                    {"host-name", NOF_ADDRESS_HOST_NAME}};
constexpr Choice ssl_kinds[] = {{"none", NOF_SSL_NONE},
                                {"on", NOF_SSL_ON},
                                {"client-authentication", NOF_SSL_CLIENT_AUTHENTICATION}};
constexpr Choice models[] = {{"unknown", NOF_LU_UNKNOWN},
                             {"display-2", 2},
                             {"display-3", 3},
                             {"display-4", 4},
                             {"display-5", 5},
                             {"printer", NOF_LU_PRINTER},
                             {"scs-printer", NOF_LU_SCS_PRINTER}};
constexpr Choice session_types[] = {{"3270", NOF_SESSION_3270}, {"5250", NOF_SESSION_5250}};
constexpr Choice permissions[] = {
    {"restricted", 0}, {"normal", 1}, {"advanced", 2}, {"initial", 3}};
constexpr Choice securities[] = {{"none", NOF_CPIC_SECURITY_NONE},
                                 {"same", NOF_CPIC_SECURITY_SAME},
                                 {"program", NOF_CPIC_SECURITY_PROGRAM},
                                 {"program-strong", NOF_CPIC_SECURITY_PROGRAM_STRONG}};

constexpr Field cn[] = {
    {"name", ebcdic, AT(CN_ENTRY, cn_name)},
    {"description", text, AT(CN_ENTRY, def.description)},
};

constexpr Field cn_port[] = {
    {"cn", ebcdic, AT(CN_PORT_ENTRY, cn_name)},
    {"port", local, AT(CN_PORT_ENTRY, port_name)},
};

constexpr Field lu62_timeout[] = {
    {"name", ebcdic, AT(LU62_TIMEOUT_ENTRY, resource_name)},
    {"type", choice, AT(LU62_TIMEOUT_ENTRY, resource_type), timed},
    {"timeout", number, AT(LU62_TIMEOUT_ENTRY, timeout)},
};

constexpr Field ls_routing[] = {
    {"lu", ebcdic, AT(LS_ROUTING_ENTRY, key.lu_name)},
    {"partner", ebcdic, AT(LS_ROUTING_ENTRY, key.plu_name)},
    {"wildcard", flag, AT(LS_ROUTING_ENTRY, key.wildcard)},
    {"alias", local, AT(LS_ROUTING_ENTRY, key.lu_alias)},
    {"ls", local, AT(LS_ROUTING_ENTRY, def.ls_name)},
    {"description", text, AT(LS_ROUTING_ENTRY, def.description)},
};

constexpr Field tp[] = {
    {"name", ebcdic, AT(TP_DEF_ENTRY, tp_name)},
    {"description", text, AT(TP_DEF_ENTRY, def.description)},
    {"access_list", text, AT(TP_DEF_ENTRY, def.access_list_name)},
    {"conversation", choice, AT(TP_DEF_ENTRY, def.conversation_type), conversations},
    {"security_required", flag, AT(TP_DEF_ENTRY, def.security_required)},
    {"sync_level", choice, AT(TP_DEF_ENTRY, def.sync_level), sync_levels},
    {"pip_allowed", flag, AT(TP_DEF_ENTRY, def.pip_allowed)},
};

constexpr Field tp_load[] = {
    {"name", ebcdic, AT(TP_LOAD_INFO_ENTRY, tp_name)},
    {"lu_alias", local, AT(TP_LOAD_INFO_ENTRY, lu_alias)},
    {"description", text, AT(TP_LOAD_INFO_ENTRY, def_data.description)},
    {"user", text, AT(TP_LOAD_INFO_ENTRY, def_data.user_id)},
    {"group", text, AT(TP_LOAD_INFO_ENTRY, def_data.group_id)},
    {"type", choice, AT(TP_LOAD_INFO_ENTRY, def_data.tp_type), load_types},
    {"path", item, NOF_LTV_TP_PATH, 0},
    {"arguments", item, NOF_LTV_TP_ARGUMENTS, 0},
    {"stdin", item, NOF_LTV_STDIN, 0},
    {"stdout", item, NOF_LTV_STDOUT, 0},
    {"stderr", item, NOF_LTV_STDERR, 0},
    {"items_length", number, AT(TP_LOAD_INFO_ENTRY, def_data.ltv_length)},
    {"items", tail, sizeof(TP_LOAD_INFO_ENTRY), 0},
};

constexpr Field dspu_template[] = {
    {"name", local, AT(DSPU_TEMPLATE_ENTRY, template_name)},
    {"description", text, AT(DSPU_TEMPLATE_ENTRY, def.description)},
    {"add_ranges", flag, AT(DSPU_TEMPLATE_ENTRY, def.modify_template)},
    {"parameter80", number, AT(DSPU_TEMPLATE_ENTRY, def.parameter80)},
};

constexpr Field dslu_template[] = {
    {"first", number, AT(DSLU_TEMPLATE, first_nau)},
    {"last", number, AT(DSLU_TEMPLATE, last_nau)},
    {"host_lu", ebcdic, AT(DSLU_TEMPLATE, host_lu_name)},
    {"allow_timeout", flag, AT(DSLU_TEMPLATE, allow_timeout)},
    {"delayed_logon", flag, AT(DSLU_TEMPLATE, delayed_logon)},
};

constexpr Field primary_line[] = {
    {"name", local, AT(PRIMARY_LINE_ENTRY, line_name)},
    {"description", text, AT(PRIMARY_LINE_ENTRY, def.description)},
    {"max_i_field", number, AT(PRIMARY_LINE_ENTRY, def.max_i_field)},
    {"rate", number, AT(PRIMARY_LINE_ENTRY, def.transmit_rate)},
    {"internal_clocking", flag, AT(PRIMARY_LINE_ENTRY, def.internal_clocking)},
    {"interface", choice, AT(PRIMARY_LINE_ENTRY, def.interface_type), interfaces},
    {"continuous_rts", flag, AT(PRIMARY_LINE_ENTRY, def.continuous_rts)},
    {"cdstl", flag, AT(PRIMARY_LINE_ENTRY, def.cdstl)},
    {"device", local, AT(PRIMARY_LINE_ENTRY, def.device)},
    {"remote_address", number, AT(PRIMARY_LINE_ENTRY, def.remote_address)},
    {"local_address", number, AT(PRIMARY_LINE_ENTRY, def.local_address)},
    {"flags", number, AT(PRIMARY_LINE_ENTRY, def.flags)},
};

constexpr Field primary_lu0[] = {
    {"name", local, AT(PRIMARY_LU0_ENTRY, lu_name)},
    {"line", local, AT(PRIMARY_LU0_ENTRY, def.line_name)},
    {"description", text, AT(PRIMARY_LU0_ENTRY, def.description)},
    {"default_lu", local, AT(PRIMARY_LU0_ENTRY, def.default_lu_name)},
    {"address", number, AT(PRIMARY_LU0_ENTRY, def.secondary_address)},
    {"init_self", flag, AT(PRIMARY_LU0_ENTRY, def.init_self)},
    {"fm_profile", number, AT(PRIMARY_LU0_ENTRY, def.fm_profile)},
    {"ts_profile", number, AT(PRIMARY_LU0_ENTRY, def.ts_profile)},
    {"ps_profile", number, AT(PRIMARY_LU0_ENTRY, def.ps_profile)},
    {"transmission_usage", number, AT(PRIMARY_LU0_ENTRY, def.transmission_usage)},
    {"fm_primary", number, AT(PRIMARY_LU0_ENTRY, def.fm_primary_protocols)},
    {"fm_secondary", number, AT(PRIMARY_LU0_ENTRY, def.fm_secondary_protocols)},
    {"fm_common", hex, AT(PRIMARY_LU0_ENTRY, def.fm_common_protocols)},
    {"ps_usage", hex, AT(PRIMARY_LU0_ENTRY, def.ps_usage)},
    {"user_data", local, AT(PRIMARY_LU0_ENTRY, def.user_data)},
    {"application", text, AT(PRIMARY_LU0_ENTRY, def.application_path)},
    {"trace", flag, AT(PRIMARY_LU0_ENTRY, def.trace)},
};

constexpr Field userid[] = {
    {"name", ebcdic, AT(USERID_PASSWORD_ENTRY, user_id)},
    {"description", text, AT(USERID_PASSWORD_ENTRY, def.description)},
    {"password", secret, AT(USERID_PASSWORD_ENTRY, def.password)},
    {"num_profiles", number, AT(USERID_PASSWORD_ENTRY, def.num_profiles)},
    {"profiles", hex, AT(USERID_PASSWORD_ENTRY, def.profiles)},
};

constexpr Field access_list[] = {
    {"name", local, AT(SECURITY_ACCESS_LIST_ENTRY, list_name)},
    {"description", text, AT(SECURITY_ACCESS_LIST_ENTRY, def.description)},
};

constexpr Field access_user[] = {
    {"name", local, AT(ACCESS_LIST_USER, user_id)},
};

constexpr Field lu_lu_password[] = {
    {"lu", ebcdic, AT(LU_LU_PASSWORD_ENTRY, key.lu_name)},
    {"partner", ebcdic, AT(LU_LU_PASSWORD_ENTRY, key.plu_name)},
    {"alias", local, AT(LU_LU_PASSWORD_ENTRY, key.lu_alias)},
    {"parameter45", number, AT(LU_LU_PASSWORD_ENTRY, def.parameter45)},
    {"description", text, AT(LU_LU_PASSWORD_ENTRY, def.description)},
    {"password", secret, AT(LU_LU_PASSWORD_ENTRY, def.password)},
};

constexpr Field tn_client[] = {
    {"address", text, AT(TN3270_ACCESS_ENTRY, client.address)},
    {"default", flag, AT(TN3270_ACCESS_ENTRY, client.default_record)},
    {"description", text, AT(TN3270_ACCESS_ENTRY, def.description)},
    {"address_type", choice, AT(TN3270_ACCESS_ENTRY, def.address_type), address_types},
};

constexpr Field tn_session[] = {
    {"port", number, AT(TN3270_SESSION, port)},
    {"description", text, AT(TN3270_SESSION, description)},
    {"tn3270_support", number, AT(TN3270_SESSION, tn3270_support)},
    {"specific_lu", flag, AT(TN3270_SESSION, specific_lu)},
    {"printer", ebcdic, AT(TN3270_SESSION, printer_lu_name)},
    {"lu", ebcdic, AT(TN3270_SESSION, lu_name)},
    {"model", choice, AT(TN3270_SESSION, lu_model), models},
    {"ssl", choice, AT(TN3270_SESSION, ssl), ssl_kinds},
    {"security_level", number, AT(TN3270_SESSION, security_level)},
    {"not_listed", flag, AT(TN3270_SESSION, not_listed)},
};

constexpr Field association[] = {
    {"display", ebcdic, AT(TN3270_ASSOCIATION_ENTRY, display_lu_name)},
    {"printer", ebcdic, AT(TN3270_ASSOCIATION_ENTRY, def.printer_lu_name)},
    {"description", text, AT(TN3270_ASSOCIATION_ENTRY, def.description)},
};

constexpr Field redirect[] = {
    {"address", text, AT(TN_REDIRECT_ENTRY, key.client_address)},
    {"port", number, AT(TN_REDIRECT_ENTRY, key.client_port)},
    {"default", flag, AT(TN_REDIRECT_ENTRY, key.default_record)},
    {"address_type", choice, AT(TN_REDIRECT_ENTRY, def.client_address_type), address_types},
    {"ssl", choice, AT(TN_REDIRECT_ENTRY, def.client_ssl), ssl_kinds},
    {"security_level", number, AT(TN_REDIRECT_ENTRY, def.client_security_level)},
    {"host", text, AT(TN_REDIRECT_ENTRY, def.host_address)},
    {"host_port", number, AT(TN_REDIRECT_ENTRY, def.host_port)},
    {"host_address_type", choice, AT(TN_REDIRECT_ENTRY, def.host_address_type), address_types},
    {"host_ssl", choice, AT(TN_REDIRECT_ENTRY, def.host_ssl), ssl_kinds},
    {"host_security_level", number, AT(TN_REDIRECT_ENTRY, def.host_security_level)},
    {"description", text, AT(TN_REDIRECT_ENTRY, def.description)},
};

constexpr Field appcip_session[] = {
    {"lu", ebcdic, AT(IPBRIDGE_APPCIP_ENTRY, session.lu_name)},
    {"partner", ebcdic, AT(IPBRIDGE_APPCIP_ENTRY, session.plu_name)},
    {"number", number, AT(IPBRIDGE_APPCIP_ENTRY, session.number)},
    {"id", number, AT(IPBRIDGE_APPCIP_ENTRY, session.session_id)},
    {"state", number, AT(IPBRIDGE_APPCIP_ENTRY, state)},
    {"mode", ebcdic, AT(IPBRIDGE_APPCIP_ENTRY, session.mode_name)},
    {"remote_address", text, AT(IPBRIDGE_APPCIP_ENTRY, session.remote_address)},
    {"local_port", number, AT(IPBRIDGE_APPCIP_ENTRY, session.local_port)},
    {"remote_port", number, AT(IPBRIDGE_APPCIP_ENTRY, session.remote_port)},
};

constexpr Field rtp[] = {
    {"name", local, AT(RTP_CONNECTION_ENTRY, rtp_name)},
    {"id", hex, AT(RTP_CONNECTION_ENTRY, connection_id)},
    {"destination", ebcdic, AT(RTP_CONNECTION_ENTRY, destination)},
    {"type", number, AT(RTP_CONNECTION_ENTRY, connection_type)},
    {"cos", ebcdic, AT(RTP_CONNECTION_ENTRY, cos_name)},
    {"ls", local, AT(RTP_CONNECTION_ENTRY, first_hop_ls)},
    {"arb_mode", number, AT(RTP_CONNECTION_ENTRY, arb_mode)},
    {"rtp_state", number, AT(RTP_CONNECTION_ENTRY, state)},
    {"sessions", number, AT(RTP_CONNECTION_ENTRY, active_sessions)},
    {"bytes_sent", number, AT(RTP_CONNECTION_ENTRY, bytes_sent)},
    {"bytes_received", number, AT(RTP_CONNECTION_ENTRY, bytes_received)},
};

constexpr Field pool[] = {
    {"name", ebcdic, AT(LU_POOL_ENTRY, pool_name)},
    {"lu", ebcdic, AT(LU_POOL_ENTRY, lu_name)},
    {"description", text, AT(LU_POOL_ENTRY, description)},
};

constexpr Field extra_data[] = {
    {"lu", ebcdic, offsetof(EXTRA_DATA_ENTRY, data.name), 8},
    {"second_half", hex, AT(EXTRA_DATA_ENTRY, data.second_half)},
    {"parameter142", number, AT(EXTRA_DATA_ENTRY, data.parameter142)},
    {"parameter146", number, AT(EXTRA_DATA_ENTRY, data.parameter146)},
};

constexpr Field user[] = {
    {"name", local, AT(EMULATOR_USER_ENTRY, user_name)},
    {"group", flag, AT(EMULATOR_USER_ENTRY, def.group)},
    {"description", text, AT(EMULATOR_USER_ENTRY, def.description)},
    {"style_file", text, AT(EMULATOR_USER_ENTRY, def.style_file)},
    {"session_limit", number, AT(EMULATOR_USER_ENTRY, def.session_limit)},
    {"view_rtm", flag, AT(EMULATOR_USER_ENTRY, def.view_rtm)},
    {"send_alerts", flag, AT(EMULATOR_USER_ENTRY, def.send_alerts)},
    {"change_lu", flag, AT(EMULATOR_USER_ENTRY, def.change_lu)},
    {"permission", choice, AT(EMULATOR_USER_ENTRY, def.change_permission), permissions},
};

constexpr Field user_session[] = {
    {"name", local, AT(USER_SESSION, session_name)},
    {"type", choice, AT(USER_SESSION, session_type), session_types},
    {"description", text, AT(USER_SESSION, description)},
    {"lu", ebcdic, AT(USER_SESSION, lu_name), {}, NOF_SESSION_3270},
    {"local_lu", local, AT(USER_SESSION, lu_name), {}, NOF_SESSION_5250},
    {"model", choice, AT(USER_SESSION, partner.lu.lu_model), models, NOF_SESSION_3270},
    {"parameter69", number, AT(USER_SESSION, partner.lu.parameter69), {}, NOF_SESSION_3270},
    {"partner_alias", local, AT(USER_SESSION, partner.plu_alias), {}, NOF_SESSION_5250},
    {"partner", ebcdic, AT(USER_SESSION, plu_name)},
    {"printer", flag, AT(USER_SESSION, printer)},
};

constexpr Field cpic[] = {
    {"name", local, AT(CPIC_SIDE_INFO_ENTRY, sym_dest_name)},
    {"description", text, AT(CPIC_SIDE_INFO_ENTRY, def.description)},
    {"lu_alias", local, AT(CPIC_SIDE_INFO_ENTRY, def.lu_alias)},
    {"by_name", flag, AT(CPIC_SIDE_INFO_ENTRY, def.plu_by_name)},
    {"service_tp", flag, AT(CPIC_SIDE_INFO_ENTRY, def.service_tp)},
    {"partner_alias", local, AT(CPIC_SIDE_INFO_ENTRY, def.plu_alias)},
    {"partner", ebcdic, AT(CPIC_SIDE_INFO_ENTRY, def.plu_name)},
    {"security", choice, AT(CPIC_SIDE_INFO_ENTRY, def.security), securities},
    {"tp", ebcdic, AT(CPIC_SIDE_INFO_ENTRY, def.tp_name)},
    {"mode", ebcdic, AT(CPIC_SIDE_INFO_ENTRY, def.mode_name)},
    {"user_id", local, AT(CPIC_SIDE_INFO_ENTRY, def.user_id)},
    {"password", secret, AT(CPIC_SIDE_INFO_ENTRY, def.password)},
};

constexpr Field rje[] = {
    {"name", local, AT(RJE_WKSTN_ENTRY, wkstn_name)},
    {"description", text, AT(RJE_WKSTN_ENTRY, def.description)},
    {"user", text, AT(RJE_WKSTN_ENTRY, def.user_name)},
    {"group", text, AT(RJE_WKSTN_ENTRY, def.group_name)},
    {"system", text, AT(RJE_WKSTN_ENTRY, def.system_name)},
    {"num_lus", number, AT(RJE_WKSTN_ENTRY, def.num_lus)},
    {"lu1", ebcdic, AT(RJE_WKSTN_ENTRY, def.lu_names[0])},
    {"lu2", ebcdic, AT(RJE_WKSTN_ENTRY, def.lu_names[1])},
    {"lu3", ebcdic, AT(RJE_WKSTN_ENTRY, def.lu_names[2])},
    {"lu4", ebcdic, AT(RJE_WKSTN_ENTRY, def.lu_names[3])},
    {"lu5", ebcdic, AT(RJE_WKSTN_ENTRY, def.lu_names[4])},
};

// By kind, from the first one on.
constexpr Kind FIRST = Kind::cn;
constexpr std::span<const Field> fields[] = {
    cn,         cn_port,       lu62_timeout,  ls_routing,     tp,
    tp_load,    dspu_template, dslu_template, primary_line,   primary_lu0,
    userid,     access_list,   access_user,   lu_lu_password, tn_client,
    tn_session, association,   redirect,      appcip_session, rtp,
    pool,       extra_data,    user,          user_session,   cpic,
    rje,
};
static_assert(std::size(fields) == KIND_COUNT - static_cast<std::size_t>(FIRST));

} // namespace

std::span<const Field> definition_fields(Kind kind) {
    return kind < FIRST ? std::span<const Field>()
                        : fields[static_cast<std::size_t>(kind) - static_cast<std::size_t>(FIRST)];
}

} // namespace simnode
