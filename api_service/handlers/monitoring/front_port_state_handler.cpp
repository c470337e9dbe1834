#include "api_service/handlers/monitoring/front_port_state_handler.hpp"

#include "api_service/handlers/monitoring/port_answers.hpp"
#include "api_service/handlers/record_fields.hpp"
#include "xpon/cfgdb/element_functions.hpp"

#include <array>
#include <cerrno>

namespace xpon::api_service {

using PortInfo = MonitoringFrontPortStateHandler::PortInfo;

namespace {

constexpr const char* statuses[] = {"SHUTDOWN", "DOWN", "UP"};
enum Status : std::uint8_t { shut_down, down, up };

constexpr JsonField<PortInfo> port_fields[] = {
    {"port", member<&PortInfo::port>},
    {"status",
     {[](JsonWriter& to, const PortInfo& port) { return write_value(to, port.status); }, &text_among<statuses>}},
    {"speed",
     {[](JsonWriter& to, const PortInfo& port) { return write_value(to, port.info.speed); }, &shapes::text},
     "\"10G\", \"1G\" or \"100M\"; \"none\" without link"},
};

constexpr JsonField<Front_port_info> media_fields[] = {
    {"media", member<&Front_port_info::media>, "such as \"10GBASE-LR\""},
};

constexpr JsonField<Front_port_sfp_eddi> eddi_fields[] = {
    {"temperature_c", member<&Front_port_sfp_eddi::temperature>, "degrees Celsius"},
    {"voltage_v", member<&Front_port_sfp_eddi::voltage>, "V"},
    {"tx_bias_current_ma", member<&Front_port_sfp_eddi::bias>, "mA"},
    {"tx_power_mw", member<&Front_port_sfp_eddi::power>, "mW"},
};

constexpr Member module_members[] = {{"sfp", &object_of<sfp_fields, media_fields>}};
constexpr Member eddi_members[] = {{"eddi", &object_of<eddi_fields>, "what the module measures"}};

constexpr Shape port_shape =
    named("FrontPortState",
          one_of<object_of<port_fields, condition_fields>, object_of<port_fields, condition_fields, module_members>,
                 object_of<port_fields, condition_fields, module_members, eddi_members>>);

Result<void> fill_port(JsonWriter& object, const PortInfo& port) {
    BOOST_OUTCOME_TRY(write_fields(object, port, port_fields));
    BOOST_OUTCOME_TRY(const bool is_present, add_sfp_condition(object, port.info.sfp));
    if (!is_present) {
        return core::success();
    }
    object.key("sfp");
    BOOST_OUTCOME_TRY(write_object(object, [&]() -> Result<void> {
        BOOST_OUTCOME_TRY(fill_sfp(object, port.info.sfp));
        return write_fields(object, port.info, media_fields);
    }));
    if (!port.eddi) {
        return core::success();
    }
    return write_record(object, "eddi", *port.eddi, eddi_fields);
}

} // namespace

constinit const RouteShape MonitoringFrontPortStateHandler::shape{.indices = IndexCount::one,
                                                                  .answer = &array_of<port_shape>};

/// What is asked once for all ports.
struct MonitoringFrontPortStateHandler::Sources {
    std::array<cfgdb::FrontPort, max_uplink_ports + 1> configured{}; ///< by port number
    Bitmap_uplink_port_range link_up{};
};

Result<Response> MonitoringFrontPortStateHandler::operator()(const Request& request,
                                                             const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session));
    return answer_with_data(session, [&]() -> Result<std::string> {
        BOOST_OUTCOME_TRY(const auto range, process_request(request));
        BOOST_OUTCOME_TRY(const auto ports, retrieve_front_port_info_from_db(*db, range));
        return compose_response(ports);
    });
}

Result<Bitmap_uplink_port_range> MonitoringFrontPortStateHandler::process_request(const Request& request) const {
    return get_port_range(request, get_parsed_uplink_port_range);
}

Result<std::vector<PortInfo>>
MonitoringFrontPortStateHandler::retrieve_front_port_info_from_db(const cfgdb::CfgDbWrapper& db,
                                                                  const Bitmap_uplink_port_range& ports) const {
    const auto retrieve = [&]() -> Result<std::vector<PortInfo>> {
        BOOST_OUTCOME_TRY(const auto sources, get_sources(db));
        return describe_ports<PortInfo>(ports, get_next_bitmap_uplink_port_ids,
                                        [&](std::uint8_t port) { return describe(*sources, port); });
    };
    return explained(*logger_, retrieve(), "Failed to retrieve front port info");
}

Result<std::string> MonitoringFrontPortStateHandler::compose_response(const std::vector<PortInfo>& ports) {
    return compose_ports(ports, fill_port);
}

Result<std::unique_ptr<MonitoringFrontPortStateHandler::Sources>>
MonitoringFrontPortStateHandler::get_sources(const cfgdb::CfgDbWrapper& db) const {
    auto sources = std::make_unique<Sources>();
    BOOST_OUTCOME_TRY(core::call_c_api(*logger_, getRunDbArray_ZebGCfg_switch_config_front_port, db.handle(),
                                       sources->configured.data()));
    BOOST_OUTCOME_TRY(call_peers(custom_layer__get_front_ports_link_states, &sources->link_up));
    return sources;
}

Result<PortInfo> MonitoringFrontPortStateHandler::describe(const Sources& sources, std::uint8_t port) const {
    PortInfo described{};
    described.port = port;
    BOOST_OUTCOME_TRY(described.status, get_status(sources, port));
    BOOST_OUTCOME_TRY(call_peers(custom_layer__get_front_port_info, port, &described.info));
    if (described.info.sfp.condition == sfp_present) {
        BOOST_OUTCOME_TRY(auto* const handle, peers());
        Front_port_sfp_eddi eddi{};
        if (custom_layer__get_front_port_sfp_eddi(handle, port, &eddi) == 0) {
            described.eddi = eddi;
        }
        errno = 0; // a module without diagnostics is no failure
    }
    return described;
}

Result<const char*> MonitoringFrontPortStateHandler::get_status(const Sources& sources, std::uint8_t port) const {
    if (sources.configured.at(port).enabled == 0) {
        return statuses[shut_down];
    }
    std::uint8_t is_up = 0;
    BOOST_OUTCOME_TRY(core::call_c_api(*logger_, get_bitmap_uplink_port_ids_value, &sources.link_up, port, &is_up));
    return statuses[is_up != 0 ? up : down];
}

} // namespace xpon::api_service
