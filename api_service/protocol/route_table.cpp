#include "api_service/protocol/route_table.hpp"

#include "api_service/auth/auth_handler.hpp"
#include "api_service/auth/unauth_handler.hpp"
#include "api_service/handlers/configuration/commit_handler.hpp"
#include "api_service/handlers/configuration/delete_handler.hpp"
#include "api_service/handlers/configuration/elements.hpp"
#include "api_service/handlers/configuration/get_handler.hpp"
#include "api_service/handlers/configuration/rollback_handler.hpp"
#include "api_service/handlers/configuration/save_handler.hpp"
#include "api_service/handlers/configuration/set_default_handler.hpp"
#include "api_service/handlers/configuration/set_handler.hpp"
#include "api_service/handlers/monitoring/constants_handler.hpp"
#include "api_service/handlers/monitoring/front_port_state_handler.hpp"
#include "api_service/handlers/monitoring/log_files_handler.hpp"
#include "api_service/handlers/monitoring/ont_state_by_serial_handler.hpp"
#include "api_service/handlers/monitoring/ont_state_handler.hpp"
#include "api_service/handlers/monitoring/pon_port_state_handler.hpp"
#include "api_service/handlers/monitoring/system_handler.hpp"
#include "api_service/protocol/board.hpp"
#include "api_service/protocol/echo_handler.hpp"
#include "api_service/protocol/ont_indices_pre_hook.hpp"

#include <array>

namespace xpon::api_service {
namespace {

using namespace elements;
using enum PrivilegeLevel;

template <class Element>
Handler getter(const HandlerServices& services) {
    return ConfigurationGetHandler<typename Element::Record, Element::depth>(
        services.logger, Element::read_running, Element::read_candidate, Element::serialize);
}

template <class Element>
Handler setter(const HandlerServices& services) {
    return ConfigurationSetHandler<typename Element::Record, Element::depth>(services.logger, Element::write,
                                                                             Element::deserialize);
}

template <class Element>
Handler deleter(const HandlerServices& services) {
    return ConfigurationDeleteHandler<Element::depth>(services.logger, Element::initialise);
}

Handler echo(const HandlerServices& services) {
    return EchoHandler(services.logger);
}

Handler auth(const HandlerServices& services) {
    return AuthHandler(services.logger, services.session_manager, services.pam);
}

Handler unauth(const HandlerServices& services) {
    return UnauthHandler(services.logger, services.session_manager);
}

template <class MonitoringHandler>
Handler monitoring(const HandlerServices& services) {
    return MonitoringHandler(services.logger, services.ipc);
}

Handler log_files(const HandlerServices& services) {
    return MonitoringLogFiles(services.logger);
}

Handler constants(const HandlerServices& services) {
    return MonitoringConstants(services.logger);
}

Handler set_default(const HandlerServices& services) {
    return ConfigurationSetDefaultHandler(services.logger, services.ipc);
}

Handler save(const HandlerServices& services) {
    return ConfigurationSaveHandler(services.logger, services.ipc);
}

Handler commit(const HandlerServices& services) {
    return CommitHandler(services.logger, services.ipc);
}

Handler rollback(const HandlerServices& services) {
    return RollbackHandler(services.logger);
}

std::vector<PreHook> none(const HandlerServices&) {
    return {};
}

std::vector<PreHook> ont_indices(const HandlerServices& services) {
    return {OntIndicesPreHook(services.logger, board_pon_port_count)};
}

// The privileges are deliberately uneven: the ONT list and commit need only an operator, rollback an administrator.
constexpr std::array routes{
    // clang-format off
    RouteRow{"test.echo",                                                    "echo",    Nothing,       echo,                                                   none},
    RouteRow{"test.echo.view",                                               "echo",    Viewer,        echo,                                                   none},
    RouteRow{"test.echo.admin",                                              "echo",    Administrator, echo,                                                   none},
    RouteRow{"auth",                                                         "auth",    Nothing,       auth,                                                   none},
    RouteRow{"unauth",                                                       "auth",    Nothing,       unauth,                                                 none},
    RouteRow{"monitoring.system",                                            "get",     Viewer,        monitoring<MonitoringSystemHandler>,                    none},
    RouteRow{"monitoring.interface.front_port.state",                        "get",     Viewer,        monitoring<MonitoringFrontPortStateHandler>,            none},
    RouteRow{"monitoring.interface.pon_port.state",                          "get",     Viewer,        monitoring<MonitoringPonPortStateHandler>,              none},
    RouteRow{"utils.ont.find",                                               "call",    Viewer,        monitoring<MonitoringOntStateBySerialHandler>,          none},
    RouteRow{"command.default",                                              "command", Administrator, set_default,                                            none},
    RouteRow{"command.save",                                                 "command", Administrator, save,                                                   none},
    RouteRow{"monitoring.logs",                                              "get",     Viewer,        log_files,                                              none},
    RouteRow{"command.commit",                                               "command", Operator,      commit,                                                 none},
    RouteRow{"command.rollback",                                             "command", Administrator, rollback,                                               none},
    RouteRow{"monitoring.constants",                                         "get",     Nothing,       constants,                                              none},
    RouteRow{"configuration.CommonGCfg.management",                          "get",     Viewer,        getter<CommonGCfg_management>,                          none},
    RouteRow{"configuration.CommonGCfg.management",                          "set",     Administrator, setter<CommonGCfg_management>,                          none},
    RouteRow{"configuration.CommonGCfg.system.oob",                          "get",     Viewer,        getter<CommonGCfg_system_oob>,                          none},
    RouteRow{"configuration.CommonGCfg.system.oob",                          "set",     Administrator, setter<CommonGCfg_system_oob>,                          none},
    RouteRow{"configuration.CommonGCfg.system.fan_speed",                    "get",     Viewer,        getter<CommonGCfg_fan_speed>,                           none},
    RouteRow{"configuration.CommonGCfg.system.reset_status",                 "get",     Viewer,        getter<CommonGCfg_reset_button_mode>,                   none},
    RouteRow{"configuration.ZebGCfg.switch_config.front_port",               "get",     Viewer,        getter<ZebGCfg_switch_config_front_port>,               none},
    RouteRow{"configuration.ZebGCfg.switch_config.front_port",               "set",     Administrator, setter<ZebGCfg_switch_config_front_port>,               none},
    RouteRow{"configuration.ZebGCfg.switch_config.port_channel",             "get",     Viewer,        getter<ZebGCfg_switch_config_lag_port_channel>,         none},
    RouteRow{"configuration.ZebGCfg.switch_config.port_channel",             "set",     Administrator, setter<ZebGCfg_switch_config_lag_port_channel>,         none},
    RouteRow{"configuration.ZebGCfg.pon.port_state",                         "get",     Viewer,        getter<ZebGCfg_pon_port_state>,                         none},
    RouteRow{"configuration.ZebGCfg.pon.port_state",                         "set",     Administrator, setter<ZebGCfg_pon_port_state>,                         none},
    RouteRow{"configuration.CommonGCfg.system.ntp",                          "get",     Viewer,        getter<CommonGCfg_system_ntp>,                          none},
    RouteRow{"configuration.CommonGCfg.system.ntp",                          "set",     Administrator, setter<CommonGCfg_system_ntp>,                          none},
    RouteRow{"configuration.CommonGCfg.system.snmp",                         "get",     Viewer,        getter<CommonGCfg_system_snmp>,                         none},
    RouteRow{"configuration.CommonGCfg.system.snmp",                         "set",     Administrator, setter<CommonGCfg_system_snmp>,                         none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.ont_template",  "get",     Viewer,        getter<CommonGCfg_profiles_profiles_ont_ont_template>,  none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.ont_template",  "set",     Administrator, setter<CommonGCfg_profiles_profiles_ont_ont_template>,  none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.ports",         "get",     Viewer,        getter<CommonGCfg_profiles_profiles_ont_ports>,         none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.ports",         "set",     Administrator, setter<CommonGCfg_profiles_profiles_ont_ports>,         none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.cross_connect", "get",     Viewer,        getter<CommonGCfg_profiles_profiles_ont_cross_connect>, none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.cross_connect", "set",     Administrator, setter<CommonGCfg_profiles_profiles_ont_cross_connect>, none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.management",    "get",     Viewer,        getter<CommonGCfg_profiles_profiles_ont_management>,    none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.management",    "set",     Administrator, setter<CommonGCfg_profiles_profiles_ont_management>,    none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.dba",           "get",     Viewer,        getter<CommonGCfg_profiles_profiles_ont_dba>,           none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.dba",           "set",     Administrator, setter<CommonGCfg_profiles_profiles_ont_dba>,           none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.shaping",       "get",     Viewer,        getter<CommonGCfg_profiles_profiles_ont_shaping>,       none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.shaping",       "set",     Administrator, setter<CommonGCfg_profiles_profiles_ont_shaping>,       none},
    RouteRow{"configuration.ZebGCfg.pon.ont",                                "get",     Viewer,        getter<ZebGCfg_pon_ont>,                                ont_indices},
    RouteRow{"configuration.ZebGCfg.pon.ont",                                "set",     Operator,      setter<ZebGCfg_pon_ont>,                                ont_indices},
    RouteRow{"configuration.ZebGCfg.pon.ont",                                "delete",  Operator,      deleter<ZebGCfg_pon_ont>,                               ont_indices},
    RouteRow{"configuration.ZebGCfg.pon.ont.service",                        "get",     Viewer,        getter<ZebGCfg_pon_ont_ont_common_service>,             ont_indices},
    RouteRow{"configuration.ZebGCfg.pon.ont.service",                        "set",     Administrator, setter<ZebGCfg_pon_ont_ont_common_service>,             ont_indices},
    RouteRow{"monitoring.interface.ont.state",                               "get",     Viewer,        monitoring<MonitoringOntStateHandler>,                  none},
    RouteRow{"configuration.CommonGCfg.system.settings.ont_sn_format",       "get",     Viewer,        getter<CommonGCfg_ont_sn_format>,                       none},
    RouteRow{"configuration.CommonGCfg.system.settings.ont_sn_format",       "set",     Administrator, setter<CommonGCfg_ont_sn_format>,                       none},
    RouteRow{"configuration.CommonGCfg.hostname",                            "get",     Viewer,        getter<CommonGCfg_hostname>,                            none},
    RouteRow{"configuration.CommonGCfg.hostname",                            "set",     Administrator, setter<CommonGCfg_hostname>,                            none},
    // clang-format on
};

} // namespace

std::span<const RouteRow> route_table() {
    return routes;
}

} // namespace xpon::api_service
