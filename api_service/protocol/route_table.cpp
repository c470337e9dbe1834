#include "api_service/protocol/route_table.hpp"

#include "api_service/auth/auth_handlers.hpp"
#include "api_service/handlers/commands/device_commands.hpp"
#include "api_service/handlers/commands/firmware_commands.hpp"
#include "api_service/handlers/commands/snmp_engine_id_handler.hpp"
#include "api_service/handlers/commands/text_handlers.hpp"
#include "api_service/handlers/configuration/configuration_commands.hpp"
#include "api_service/handlers/configuration/delete_handler.hpp"
#include "api_service/handlers/configuration/elements.hpp"
#include "api_service/handlers/configuration/get_handler.hpp"
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
#include "api_service/protocol/ont_indices_pre_hook.hpp"
#include "xpon/custom_layer/commands.h"

#include <functional>

namespace xpon::api_service {
namespace {

using namespace elements;
using enum PrivilegeLevel;

constexpr RouteShape echo_shape{.request = &shapes::anything, .answer = &shapes::anything};

/// Answers with the request's own data: a client can probe the connection and its privilege.
Result<Response> echo(const std::shared_ptr<ILogger>& logger, const Request& request,
                      const std::shared_ptr<Session>& session) {
    auto response = Response::make_success_response(session, logger);
    response.payload = request.data;
    return response;
}

/// What a row names for a handler besides the logger: one of the services, or a value as it stands.
template <class Service>
const Service& given(const HandlerServices& services, Service HandlerServices::* named) {
    return services.*named;
}
template <class Value>
Value given(const HandlerServices&, Value value) {
    return value;
}

template <class HandlerType>
const RouteShape& shape_at(std::string_view path) {
    if constexpr (requires { HandlerType::shape_at(path); }) {
        return HandlerType::shape_at(path);
    } else if constexpr (requires { HandlerType::shape; }) {
        return HandlerType::shape;
    } else {
        return acknowledgement;
    }
}

/// A handler made from the logger and from what the row names in `arguments`.
template <class HandlerType, auto... arguments>
constexpr RouteTarget make{
    [](const HandlerServices& services) -> Handler {
        return HandlerType(services.logger, given(services, arguments)...);
    },
    shape_at<HandlerType>,
};

/// One that is a function.
template <auto function, const RouteShape& shape>
constexpr RouteTarget call{
    [](const HandlerServices& services) -> Handler { return std::bind_front(function, services.logger); },
    [](std::string_view) -> const RouteShape& { return shape; },
};

constexpr auto ipc = &HandlerServices::ipc;
constexpr auto sessions = &HandlerServices::session_manager;
constexpr auto pam = &HandlerServices::pam;

template <class Element>
constexpr auto getter = make<ConfigurationGetHandler<typename Element::Record, Element::depth>, Element::read_running,
                             Element::read_candidate, Element::serialize>;
template <class Element>
constexpr auto setter =
    make<ConfigurationSetHandler<typename Element::Record, Element::depth>, Element::write, Element::deserialize>;
template <class Element>
constexpr auto deleter = make<ConfigurationDeleteHandler<Element::depth>, Element::initialise>;

std::vector<PreHook> ont_indices(const HandlerServices& services) {
    return {OntIndicesPreHook(services.logger, board_pon_port_count)};
}

// The privileges are deliberately uneven: the ONT list and commit need only an operator, rollback an administrator.
constexpr RouteRow routes[] = {
    {"test.echo", "echo", Nothing, call<echo, echo_shape>},
    {"test.echo.view", "echo", Viewer, call<echo, echo_shape>},
    {"test.echo.admin", "echo", Administrator, call<echo, echo_shape>},
    {"auth", "auth", Nothing, make<AuthHandler, sessions, pam>},
    {"unauth", "auth", Nothing, make<UnauthHandler, sessions>},
    {"monitoring.system", "get", Viewer, make<MonitoringSystemHandler, ipc>},
    {"monitoring.interface.front_port.state", "get", Viewer, make<MonitoringFrontPortStateHandler, ipc>},
    {"monitoring.interface.pon_port.state", "get", Viewer, make<MonitoringPonPortStateHandler, ipc>},
    {"monitoring.interface.ont.counters.ont_side.gem_port_performance_monitoring", "get", Viewer,
     make<MonitoringOntCountersHandler, ipc>},
    {"monitoring.interface.ont.counters.ont_side.gem_port_nctp_performance_monitoring", "get", Viewer,
     make<MonitoringOntCountersHandler, ipc>},
    {"monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data", "get", Viewer,
     make<MonitoringOntCountersHandler, ipc>},
    {"monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data_2", "get", Viewer,
     make<MonitoringOntCountersHandler, ipc>},
    {"monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data_3", "get", Viewer,
     make<MonitoringOntCountersHandler, ipc>},
    {"monitoring.interface.ont.counters.ont_side.gal_ethernet_performance_monitoring_history_data", "get", Viewer,
     make<MonitoringOntCountersHandler, ipc>},
    {"monitoring.interface.ont.counters.ont_side.fec_performance_monitoring_history_data", "get", Viewer,
     make<MonitoringOntCountersHandler, ipc>},
    {"monitoring.interface.ont.counters.ont_side.ethernet_frame_extended_performance_monitoring", "get", Viewer,
     make<MonitoringOntCountersHandler, ipc>},
    {"monitoring.interface.ont.counters.olt_side.gem_port", "get", Viewer, make<MonitoringOntCountersHandler, ipc>},
    {"monitoring.interface.ont.counters.olt_side.pon", "get", Viewer, make<MonitoringOntCountersHandler, ipc>},
    {"utils.text.obfuscate", "call", Administrator, call<text_obfuscate_handler, text_handler_shape>},
    {"utils.text.deobfuscate", "call", Administrator, call<text_deobfuscate_handler, text_handler_shape>},
    {"utils.ont.find", "call", Viewer, make<MonitoringOntStateBySerialHandler, ipc>},
    {"command.default", "command", Administrator, make<ConfigurationSetDefaultHandler, ipc>},
    {"command.save", "command", Administrator, make<ConfigurationSaveHandler, ipc>},
    {"command.reboot", "command", Administrator, make<RebootHandler>},
    {"monitoring.logs", "get", Viewer, make<MonitoringLogFiles>},
    {"command.reconfigure.pon_port", "command", Administrator, make<ReconfigurePonPortHandler, ipc>},
    {"command.reconfigure.ont", "command", Operator, make<OntActionHandler, ipc, custom_layer__reconfigure_ont>},
    {"command.resettodefault.ont", "command", Operator, make<OntActionHandler, ipc, custom_layer__omci_default>},
    {"command.reboot.ont", "command", Operator, make<OntActionHandler, ipc, custom_layer__omci_reboot>},
    {"command.commit", "command", Operator, make<CommitHandler, ipc>},
    {"command.rollback", "command", Administrator, make<RollbackHandler>},
    {"command.reconfigure.olt", "command", Administrator, make<ReconfigureOltHandler>},
    {"command.olt.firmware.update", "command", Administrator, make<UploadFirmware, ipc>},
    {"command.olt.firmware.select_image.current", "command", Administrator,
     make<FirmwareSelectImage, ipc, firmware_current>},
    {"command.olt.firmware.select_image.alternate", "command", Administrator,
     make<FirmwareSelectImage, ipc, firmware_alternate>},
    {"monitoring.ip.dhcp.sessions", "get", Viewer, make<MonitoringDhcpSessionsHandler, ipc>},
    {"monitoring.ip.pppoe.sessions", "get", Viewer, make<MonitoringPppoeSessionsHandler, ipc>},
    {"monitoring.ip.igmp.snooping.groups", "get", Viewer, make<MonitoringIgmpGroupsHandler, ipc>},
    {"monitoring.constants", "get", Nothing, make<MonitoringConstants>},
    {"configuration.CommonGCfg.system.snmp.engineID", "generate", Viewer, make<GenerateSnmpEngineIDHandler, ipc>},
    {"configuration.CommonGCfg.management", "get", Viewer, getter<CommonGCfg_management>},
    {"configuration.CommonGCfg.management", "set", Administrator, setter<CommonGCfg_management>},
    {"configuration.CommonGCfg.system.oob", "get", Viewer, getter<CommonGCfg_system_oob>},
    {"configuration.CommonGCfg.system.oob", "set", Administrator, setter<CommonGCfg_system_oob>},
    {"configuration.CommonGCfg.system.fan_speed", "get", Viewer, getter<CommonGCfg_fan_speed>},
    {"configuration.CommonGCfg.system.reset_status", "get", Viewer, getter<CommonGCfg_reset_button_mode>},
    {"configuration.ZebGCfg.switch_config.front_port", "get", Viewer, getter<ZebGCfg_switch_config_front_port>},
    {"configuration.ZebGCfg.switch_config.front_port", "set", Administrator, setter<ZebGCfg_switch_config_front_port>},
    {"configuration.ZebGCfg.switch_config.port_channel", "get", Viewer, getter<ZebGCfg_switch_config_lag_port_channel>},
    {"configuration.ZebGCfg.switch_config.port_channel", "set", Administrator,
     setter<ZebGCfg_switch_config_lag_port_channel>},
    {"configuration.ZebGCfg.pon.port_state", "get", Viewer, getter<ZebGCfg_pon_port_state>},
    {"configuration.ZebGCfg.pon.port_state", "set", Administrator, setter<ZebGCfg_pon_port_state>},
    {"configuration.CommonGCfg.system.ntp", "get", Viewer, getter<CommonGCfg_system_ntp>},
    {"configuration.CommonGCfg.system.ntp", "set", Administrator, setter<CommonGCfg_system_ntp>},
    {"configuration.CommonGCfg.system.snmp", "get", Viewer, getter<CommonGCfg_system_snmp>},
    {"configuration.CommonGCfg.system.snmp", "set", Administrator, setter<CommonGCfg_system_snmp>},
    {"configuration.CommonGCfg.profiles.profiles_ont.ont_template", "get", Viewer,
     getter<CommonGCfg_profiles_profiles_ont_ont_template>},
    {"configuration.CommonGCfg.profiles.profiles_ont.ont_template", "set", Administrator,
     setter<CommonGCfg_profiles_profiles_ont_ont_template>},
    {"configuration.CommonGCfg.profiles.profiles_ont.ports", "get", Viewer,
     getter<CommonGCfg_profiles_profiles_ont_ports>},
    {"configuration.CommonGCfg.profiles.profiles_ont.ports", "set", Administrator,
     setter<CommonGCfg_profiles_profiles_ont_ports>},
    {"configuration.CommonGCfg.profiles.profiles_ont.cross_connect", "get", Viewer,
     getter<CommonGCfg_profiles_profiles_ont_cross_connect>},
    {"configuration.CommonGCfg.profiles.profiles_ont.cross_connect", "set", Administrator,
     setter<CommonGCfg_profiles_profiles_ont_cross_connect>},
    {"configuration.CommonGCfg.profiles.profiles_ont.management", "get", Viewer,
     getter<CommonGCfg_profiles_profiles_ont_management>},
    {"configuration.CommonGCfg.profiles.profiles_ont.management", "set", Administrator,
     setter<CommonGCfg_profiles_profiles_ont_management>},
    {"configuration.CommonGCfg.profiles.profiles_ont.dba", "get", Viewer, getter<CommonGCfg_profiles_profiles_ont_dba>},
    {"configuration.CommonGCfg.profiles.profiles_ont.dba", "set", Administrator,
     setter<CommonGCfg_profiles_profiles_ont_dba>},
    {"configuration.CommonGCfg.profiles.profiles_ont.shaping", "get", Viewer,
     getter<CommonGCfg_profiles_profiles_ont_shaping>},
    {"configuration.CommonGCfg.profiles.profiles_ont.shaping", "set", Administrator,
     setter<CommonGCfg_profiles_profiles_ont_shaping>},
    {"configuration.ZebGCfg.pon.ont", "get", Viewer, getter<ZebGCfg_pon_ont>, ont_indices},
    {"configuration.ZebGCfg.pon.ont", "set", Operator, setter<ZebGCfg_pon_ont>, ont_indices},
    {"configuration.ZebGCfg.pon.ont", "delete", Operator, deleter<ZebGCfg_pon_ont>, ont_indices},
    {"configuration.ZebGCfg.pon.ont.service", "get", Viewer, getter<ZebGCfg_pon_ont_ont_common_service>, ont_indices},
    {"configuration.ZebGCfg.pon.ont.service", "set", Administrator, setter<ZebGCfg_pon_ont_ont_common_service>,
     ont_indices},
    {"monitoring.mac", "get", Viewer, make<MonitoringMacTable, ipc>},
    {"monitoring.interface.ont.state", "get", Viewer, make<MonitoringOntStateHandler, ipc>},
    {"configuration.CommonGCfg.system.settings.ont_sn_format", "get", Viewer, getter<CommonGCfg_ont_sn_format>},
    {"configuration.CommonGCfg.system.settings.ont_sn_format", "set", Administrator, setter<CommonGCfg_ont_sn_format>},
    {"configuration.CommonGCfg.hostname", "get", Viewer, getter<CommonGCfg_hostname>},
    {"configuration.CommonGCfg.hostname", "set", Administrator, setter<CommonGCfg_hostname>},
};

} // namespace

std::span<const RouteRow> route_table() {
    return routes;
}

} // namespace xpon::api_service
