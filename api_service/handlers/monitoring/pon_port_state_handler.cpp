#include "api_service/handlers/monitoring/pon_port_state_handler.hpp"

#include "api_service/handlers/monitoring/port_answers.hpp"
#include "api_service/handlers/record_fields.hpp"

#include <algorithm>

namespace xpon::api_service {

using PortInfo = MonitoringPonPortStateHandler::PortInfo;

namespace {

constexpr Shape state_shape{.form = Shape::Form::text, .text_of = [](unsigned value) {
                                return channel_state_to_str(static_cast<Pon_channel_state>(value));
                            }};
constexpr Shape type_shape{.form = Shape::Form::text, .text_of = [](unsigned value) {
                               return Pon_port_type_to_str(static_cast<Pon_port_type>(value));
                           }};

constexpr JsonField<PortInfo> port_fields[] = {
    {"port", member<&PortInfo::port>},
    {"state",
     {[](JsonWriter& to, const PortInfo& port) {
          return write_value(to, channel_state_to_str(port.state.channel_state));
      },
      &state_shape}},
    {"pon_type",
     {[](JsonWriter& to, const PortInfo& port) { return write_value(to, Pon_port_type_to_str(port.type)); },
      &type_shape}},
    {"ont_count",
     {[](JsonWriter& to, const PortInfo& port) { return write_value(to, port.state.ont_count); },
      &shape_of<decltype(Pon_port_state::ont_count)>},
     "ONTs that hold an ONU-ID"},
};

constexpr JsonField<Pon_port_sfp_info> eddi_fields[] = {
    {"temperature_c", member<&Pon_port_sfp_info::temperature>, "degrees Celsius"},
    {"voltage_v", member<&Pon_port_sfp_info::voltage>, "V"},
    {"tx_bias_current_ma", member<&Pon_port_sfp_info::bias>, "mA"},
    {"tx_power_dbm", member<&Pon_port_sfp_info::power>, "dBm"},
};

constexpr Member module_members[] = {{"sfp", &object_of<sfp_fields>}};
constexpr Member eddi_members[] = {{"eddi", &object_of<eddi_fields>, "what the module measures"}};

constexpr Shape port_shape =
    named("PonPortState",
          one_of<object_of<port_fields, condition_fields>, object_of<port_fields, condition_fields, module_members>,
                 object_of<port_fields, condition_fields, module_members, eddi_members>>);

Result<void> fill_port(JsonWriter& object, const PortInfo& port) {
    BOOST_OUTCOME_TRY(write_fields(object, port, port_fields));
    BOOST_OUTCOME_TRY(const bool is_present, add_sfp_condition(object, port.module.sfp));
    if (!is_present) {
        return core::success();
    }
    object.key("sfp");
    BOOST_OUTCOME_TRY(write_object(object, [&] { return fill_sfp(object, port.module.sfp); }));
    if (port.module.valid == 0) {
        return core::success();
    }
    return write_record(object, "eddi", port.module, eddi_fields);
}

/// The entry of `port` in a record with one entry for each port.
template <class Entry, std::size_t N>
Result<Entry> entry_of(const Entry (&entries)[N], std::size_t count, std::uint8_t port, const char* name) {
    BOOST_OUTCOME_TRY(const auto valid, bounded_items(entries, count, name));
    const auto found = std::ranges::find(valid, port, &Entry::port);
    if (found == valid.end()) {
        return ErrorPayload(Error::Empty, fmt::format("{}: nothing of port {}", name, port));
    }
    return *found;
}

} // namespace

constinit const RouteShape MonitoringPonPortStateHandler::shape{.indices = IndexCount::one,
                                                                .answer = &array_of<port_shape>};

Result<Response> MonitoringPonPortStateHandler::operator()(const Request& request,
                                                           const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(database_of(session));
    return answer_with_data(session, [&]() -> Result<std::string> {
        BOOST_OUTCOME_TRY(const auto range, process_request(request));
        BOOST_OUTCOME_TRY(const auto ports, retrieve_pon_port_info_from_db(range));
        return compose_response(ports);
    });
}

Result<Bitmap_pon_port_range> MonitoringPonPortStateHandler::process_request(const Request& request) const {
    return get_port_range(request, get_parsed_pon_port_range);
}

Result<std::vector<PortInfo>>
MonitoringPonPortStateHandler::retrieve_pon_port_info_from_db(const Bitmap_pon_port_range& ports) const {
    BOOST_OUTCOME_TRY(const auto states,
                      explained(*logger_, fetch_from_peers<Pon_ports_states>(custom_layer__get_pon_ports_states),
                                "Could not retrieve state for PON ports"));
    BOOST_OUTCOME_TRY(const auto modules,
                      explained(*logger_,
                                fetch_from_peers<Pon_ports_sfp_extended_information>(
                                    custom_layer__get_pon_ports_sfp_extended_information),
                                "Could not retrieve extended information about PON-port plugged SFP modules"));
    return explained(*logger_,
                     describe_ports<PortInfo>(ports, get_next_bitmap_pon_port_ids,
                                              [&](std::uint8_t port) { return describe(*states, *modules, port); }),
                     "Failed to retrieve pon port info");
}

Result<std::string> MonitoringPonPortStateHandler::compose_response(const std::vector<PortInfo>& ports) {
    return compose_ports(ports, fill_port);
}

Result<PortInfo> MonitoringPonPortStateHandler::describe(const Pon_ports_states& states,
                                                         const Pon_ports_sfp_extended_information& modules,
                                                         std::uint8_t port) const {
    PortInfo described{};
    described.port = port;
    BOOST_OUTCOME_TRY(described.state, entry_of(states.ports, states.count, port, "PON port states"));
    BOOST_OUTCOME_TRY(described.module, entry_of(modules.ports, modules.count, port, "PON port modules"));
    BOOST_OUTCOME_TRY(call_peers(custom_layer__get_pon_port_type, port, &described.type));
    return described;
}

} // namespace xpon::api_service
