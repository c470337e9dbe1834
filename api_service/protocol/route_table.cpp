#include "api_service/protocol/route_table.hpp"

#include "api_service/auth/auth_handler.hpp"
#include "api_service/auth/unauth_handler.hpp"
#include "api_service/handlers/commands/firmware_select_image.hpp"
#include "api_service/handlers/commands/ont_action_handler.hpp"
#include "api_service/handlers/commands/reboot_handler.hpp"
#include "api_service/handlers/commands/reconfigure_handlers.hpp"
#include "api_service/handlers/commands/snmp_engine_id_handler.hpp"
#include "api_service/handlers/commands/text_handlers.hpp"
#include "api_service/handlers/commands/upload_firmware.hpp"
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
#include "api_service/handlers/monitoring/igmp_groups_handler.hpp"
#include "api_service/handlers/monitoring/log_files_handler.hpp"
#include "api_service/handlers/monitoring/mac_table_handler.hpp"
#include "api_service/handlers/monitoring/ont_counters_handler.hpp"
#include "api_service/handlers/monitoring/ont_state_by_serial_handler.hpp"
#include "api_service/handlers/monitoring/ont_state_handler.hpp"
#include "api_service/handlers/monitoring/pon_port_state_handler.hpp"
#include "api_service/handlers/monitoring/sessions_handler.hpp"
#include "api_service/handlers/monitoring/system_handler.hpp"
#include "api_service/protocol/board.hpp"
#include "api_service/protocol/echo_handler.hpp"
#include "api_service/protocol/ont_indices_pre_hook.hpp"
#include "xpon/custom_layer/commands.h"

#include <array>
#include <functional>

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

Handler auth(const HandlerServices& services) {
    return AuthHandler(services.logger, services.session_manager, services.pam);
}

Handler unauth(const HandlerServices& services) {
    return UnauthHandler(services.logger, services.session_manager);
}

/// For handlers that ask the device's daemons.
template <class DeviceHandler>
Handler device(const HandlerServices& services) {
    return DeviceHandler(services.logger, services.ipc);
}

/// For handlers that need no connection of the service's.
template <class LocalHandler>
Handler local(const HandlerServices& services) {
    return LocalHandler(services.logger);
}

template <int (*action)(Ipc* ipc, const Bitmap_ont_range* range)>
Handler ont_action(const HandlerServices& services) {
    return OntActionHandler(services.logger, services.ipc, action);
}

template <Firmware_selector selector>
Handler select_image(const HandlerServices& services) {
    return FirmwareSelectImage(services.logger, services.ipc, selector);
}

Handler obfuscate(const HandlerServices& services) {
    return std::bind_front(text_obfuscate_handler, services.logger);
}

Handler deobfuscate(const HandlerServices& services) {
    return std::bind_front(text_deobfuscate_handler, services.logger);
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
    RouteRow{"test.echo",                                                                                   "echo",     Nothing,       local<EchoHandler>,                                     none},
    RouteRow{"test.echo.view",                                                                              "echo",     Viewer,        local<EchoHandler>,                                     none},
    RouteRow{"test.echo.admin",                                                                             "echo",     Administrator, local<EchoHandler>,                                     none},
    RouteRow{"auth",                                                                                        "auth",     Nothing,       auth,                                                   none},
    RouteRow{"unauth",                                                                                      "auth",     Nothing,       unauth,                                                 none},
    RouteRow{"monitoring.system",                                                                           "get",      Viewer,        device<MonitoringSystemHandler>,                        none},
    RouteRow{"monitoring.interface.front_port.state",                                                       "get",      Viewer,        device<MonitoringFrontPortStateHandler>,                none},
    RouteRow{"monitoring.interface.pon_port.state",                                                         "get",      Viewer,        device<MonitoringPonPortStateHandler>,                  none},
    RouteRow{"monitoring.interface.ont.counters.ont_side.gem_port_performance_monitoring",                  "get",      Viewer,        device<MonitoringOntCountersHandler>,                   none},
    RouteRow{"monitoring.interface.ont.counters.ont_side.gem_port_nctp_performance_monitoring",             "get",      Viewer,        device<MonitoringOntCountersHandler>,                   none},
    RouteRow{"monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data",     "get",      Viewer,        device<MonitoringOntCountersHandler>,                   none},
    RouteRow{"monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data_2",   "get",      Viewer,        device<MonitoringOntCountersHandler>,                   none},
    RouteRow{"monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data_3",   "get",      Viewer,        device<MonitoringOntCountersHandler>,                   none},
    RouteRow{"monitoring.interface.ont.counters.ont_side.gal_ethernet_performance_monitoring_history_data", "get",      Viewer,        device<MonitoringOntCountersHandler>,                   none},
    RouteRow{"monitoring.interface.ont.counters.ont_side.fec_performance_monitoring_history_data",          "get",      Viewer,        device<MonitoringOntCountersHandler>,                   none},
    RouteRow{"monitoring.interface.ont.counters.ont_side.ethernet_frame_extended_performance_monitoring",   "get",      Viewer,        device<MonitoringOntCountersHandler>,                   none},
    RouteRow{"monitoring.interface.ont.counters.olt_side.gem_port",                                         "get",      Viewer,        device<MonitoringOntCountersHandler>,                   none},
    RouteRow{"monitoring.interface.ont.counters.olt_side.pon",                                              "get",      Viewer,        device<MonitoringOntCountersHandler>,                   none},
    RouteRow{"utils.text.obfuscate",                                                                        "call",     Administrator, obfuscate,                                              none},
    RouteRow{"utils.text.deobfuscate",                                                                      "call",     Administrator, deobfuscate,                                            none},
    RouteRow{"utils.ont.find",                                                                              "call",     Viewer,        device<MonitoringOntStateBySerialHandler>,              none},
    RouteRow{"command.default",                                                                             "command",  Administrator, device<ConfigurationSetDefaultHandler>,                 none},
    RouteRow{"command.save",                                                                                "command",  Administrator, device<ConfigurationSaveHandler>,                       none},
    RouteRow{"command.reboot",                                                                              "command",  Administrator, local<RebootHandler>,                                   none},
    RouteRow{"monitoring.logs",                                                                             "get",      Viewer,        local<MonitoringLogFiles>,                              none},
    RouteRow{"command.reconfigure.pon_port",                                                                "command",  Administrator, device<ReconfigurePonPortHandler>,                      none},
    RouteRow{"command.reconfigure.ont",                                                                     "command",  Operator,      ont_action<custom_layer__reconfigure_ont>,              none},
    RouteRow{"command.resettodefault.ont",                                                                  "command",  Operator,      ont_action<custom_layer__omci_default>,                 none},
    RouteRow{"command.reboot.ont",                                                                          "command",  Operator,      ont_action<custom_layer__omci_reboot>,                  none},
    RouteRow{"command.commit",                                                                              "command",  Operator,      device<CommitHandler>,                                  none},
    RouteRow{"command.rollback",                                                                            "command",  Administrator, local<RollbackHandler>,                                 none},
    RouteRow{"command.reconfigure.olt",                                                                     "command",  Administrator, local<ReconfigureOltHandler>,                           none},
    RouteRow{"command.olt.firmware.update",                                                                 "command",  Administrator, device<UploadFirmware>,                                 none},
    RouteRow{"command.olt.firmware.select_image.current",                                                   "command",  Administrator, select_image<firmware_current>,                         none},
    RouteRow{"command.olt.firmware.select_image.alternate",                                                 "command",  Administrator, select_image<firmware_alternate>,                       none},
    RouteRow{"monitoring.ip.dhcp.sessions",                                                                 "get",      Viewer,        device<MonitoringDhcpSessionsHandler>,                  none},
    RouteRow{"monitoring.ip.pppoe.sessions",                                                                "get",      Viewer,        device<MonitoringPppoeSessionsHandler>,                 none},
    RouteRow{"monitoring.ip.igmp.snooping.groups",                                                          "get",      Viewer,        device<MonitoringIgmpGroupsHandler>,                    none},
    RouteRow{"monitoring.constants",                                                                        "get",      Nothing,       local<MonitoringConstants>,                             none},
    RouteRow{"configuration.CommonGCfg.system.snmp.engineID",                                               "generate", Viewer,        device<GenerateSnmpEngineIDHandler>,                    none},
    RouteRow{"configuration.CommonGCfg.management",                                                         "get",      Viewer,        getter<CommonGCfg_management>,                          none},
    RouteRow{"configuration.CommonGCfg.management",                                                         "set",      Administrator, setter<CommonGCfg_management>,                          none},
    RouteRow{"configuration.CommonGCfg.system.oob",                                                         "get",      Viewer,        getter<CommonGCfg_system_oob>,                          none},
    RouteRow{"configuration.CommonGCfg.system.oob",                                                         "set",      Administrator, setter<CommonGCfg_system_oob>,                          none},
    RouteRow{"configuration.CommonGCfg.system.fan_speed",                                                   "get",      Viewer,        getter<CommonGCfg_fan_speed>,                           none},
    RouteRow{"configuration.CommonGCfg.system.reset_status",                                                "get",      Viewer,        getter<CommonGCfg_reset_button_mode>,                   none},
    RouteRow{"configuration.ZebGCfg.switch_config.front_port",                                              "get",      Viewer,        getter<ZebGCfg_switch_config_front_port>,               none},
    RouteRow{"configuration.ZebGCfg.switch_config.front_port",                                              "set",      Administrator, setter<ZebGCfg_switch_config_front_port>,               none},
    RouteRow{"configuration.ZebGCfg.switch_config.port_channel",                                            "get",      Viewer,        getter<ZebGCfg_switch_config_lag_port_channel>,         none},
    RouteRow{"configuration.ZebGCfg.switch_config.port_channel",                                            "set",      Administrator, setter<ZebGCfg_switch_config_lag_port_channel>,         none},
    RouteRow{"configuration.ZebGCfg.pon.port_state",                                                        "get",      Viewer,        getter<ZebGCfg_pon_port_state>,                         none},
    RouteRow{"configuration.ZebGCfg.pon.port_state",                                                        "set",      Administrator, setter<ZebGCfg_pon_port_state>,                         none},
    RouteRow{"configuration.CommonGCfg.system.ntp",                                                         "get",      Viewer,        getter<CommonGCfg_system_ntp>,                          none},
    RouteRow{"configuration.CommonGCfg.system.ntp",                                                         "set",      Administrator, setter<CommonGCfg_system_ntp>,                          none},
    RouteRow{"configuration.CommonGCfg.system.snmp",                                                        "get",      Viewer,        getter<CommonGCfg_system_snmp>,                         none},
    RouteRow{"configuration.CommonGCfg.system.snmp",                                                        "set",      Administrator, setter<CommonGCfg_system_snmp>,                         none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.ont_template",                                 "get",      Viewer,        getter<CommonGCfg_profiles_profiles_ont_ont_template>,  none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.ont_template",                                 "set",      Administrator, setter<CommonGCfg_profiles_profiles_ont_ont_template>,  none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.ports",                                        "get",      Viewer,        getter<CommonGCfg_profiles_profiles_ont_ports>,         none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.ports",                                        "set",      Administrator, setter<CommonGCfg_profiles_profiles_ont_ports>,         none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.cross_connect",                                "get",      Viewer,        getter<CommonGCfg_profiles_profiles_ont_cross_connect>, none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.cross_connect",                                "set",      Administrator, setter<CommonGCfg_profiles_profiles_ont_cross_connect>, none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.management",                                   "get",      Viewer,        getter<CommonGCfg_profiles_profiles_ont_management>,    none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.management",                                   "set",      Administrator, setter<CommonGCfg_profiles_profiles_ont_management>,    none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.dba",                                          "get",      Viewer,        getter<CommonGCfg_profiles_profiles_ont_dba>,           none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.dba",                                          "set",      Administrator, setter<CommonGCfg_profiles_profiles_ont_dba>,           none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.shaping",                                      "get",      Viewer,        getter<CommonGCfg_profiles_profiles_ont_shaping>,       none},
    RouteRow{"configuration.CommonGCfg.profiles.profiles_ont.shaping",                                      "set",      Administrator, setter<CommonGCfg_profiles_profiles_ont_shaping>,       none},
    RouteRow{"configuration.ZebGCfg.pon.ont",                                                               "get",      Viewer,        getter<ZebGCfg_pon_ont>,                                ont_indices},
    RouteRow{"configuration.ZebGCfg.pon.ont",                                                               "set",      Operator,      setter<ZebGCfg_pon_ont>,                                ont_indices},
    RouteRow{"configuration.ZebGCfg.pon.ont",                                                               "delete",   Operator,      deleter<ZebGCfg_pon_ont>,                               ont_indices},
    RouteRow{"configuration.ZebGCfg.pon.ont.service",                                                       "get",      Viewer,        getter<ZebGCfg_pon_ont_ont_common_service>,             ont_indices},
    RouteRow{"configuration.ZebGCfg.pon.ont.service",                                                       "set",      Administrator, setter<ZebGCfg_pon_ont_ont_common_service>,             ont_indices},
    RouteRow{"monitoring.mac",                                                                              "get",      Viewer,        device<MonitoringMacTable>,                             none},
    RouteRow{"monitoring.interface.ont.state",                                                              "get",      Viewer,        device<MonitoringOntStateHandler>,                      none},
    RouteRow{"configuration.CommonGCfg.system.settings.ont_sn_format",                                      "get",      Viewer,        getter<CommonGCfg_ont_sn_format>,                       none},
    RouteRow{"configuration.CommonGCfg.system.settings.ont_sn_format",                                      "set",      Administrator, setter<CommonGCfg_ont_sn_format>,                       none},
    RouteRow{"configuration.CommonGCfg.hostname",                                                           "get",      Viewer,        getter<CommonGCfg_hostname>,                            none},
    RouteRow{"configuration.CommonGCfg.hostname",                                                           "set",      Administrator, setter<CommonGCfg_hostname>,                            none},
    // clang-format on
};

} // namespace

std::span<const RouteRow> route_table() {
    return routes;
}

} // namespace xpon::api_service
