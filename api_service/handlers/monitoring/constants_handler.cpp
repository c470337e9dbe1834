#include "api_service/handlers/monitoring/constants_handler.hpp"

#include "api_service/handlers/monitoring/device_info.hpp"
#include "api_service/protocol/board.hpp"
#include "api_service/protocol/json_building.hpp"

namespace xpon::api_service {
namespace {

struct Constant {
    const char* key;
    unsigned long value;
};

constexpr Constant constants[] = {
    {"VLAN_COUNT", 4094},        {"PORT_CHANNEL_COUNT", 10},           {"ONT_TEMPLATE_COUNT", 32},
    {"PROFILE_PORTS_COUNT", 64}, {"PROFILE_CROSS_CONNECT_COUNT", 255}, {"PROFILE_MANAGEMENT_COUNT", 32},
    {"PROFILE_DBA_COUNT", 255},  {"PROFILE_SHAPING_COUNT", 32},        {"ONT_SERIAL_BIN_DATAMODEL_SIZE", 10},
};

constexpr Member as_member(const Constant& constant) {
    return {.key = constant.key, .shape = &shape_of<std::uint16_t>};
}

constexpr Member board_members[] = {
    {"DEVICE_NAME_SHORT", &shapes::text},
    {"PON_PORT_COUNT", &shape_of<std::uint8_t>},
    {"FRONT_PORT_COUNT", &shape_of<std::uint8_t>},
};
constexpr Shape constants_shape = named("Constants", object_of<board_members, constants>);

} // namespace

constinit const RouteShape MonitoringConstants::shape{.answer = &constants_shape};

Result<Response> MonitoringConstants::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    return answer_with_data(session, [&] { return serialize_payload(); });
}

Result<JsonTree> MonitoringConstants::serialize_payload() const {
    BOOST_OUTCOME_TRY(auto root, create_object());
    BOOST_OUTCOME_TRY(const auto name, get_short_device_name(*logger_));
    BOOST_OUTCOME_TRY(set_object_item(root.get(), "DEVICE_NAME_SHORT", name));
    const auto add = [&](const Constant& constant) {
        return set_object_item(root.get(), constant.key, constant.value);
    };
    BOOST_OUTCOME_TRY(add({"PON_PORT_COUNT", board_pon_port_count()}));
    BOOST_OUTCOME_TRY(add({"FRONT_PORT_COUNT", board_front_port_count()}));
    for (const auto& constant : constants) {
        BOOST_OUTCOME_TRY(add(constant));
    }
    return root;
}

} // namespace xpon::api_service
