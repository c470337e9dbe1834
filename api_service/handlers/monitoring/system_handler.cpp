#include "api_service/handlers/monitoring/system_handler.hpp"

#include "api_service/handlers/monitoring/device_info.hpp"
#include "api_service/handlers/record_fields.hpp"

namespace xpon::api_service {
namespace {

constexpr const char* sensor_names[] = {"PON SFP 1", "PON SFP 2", "Front SFP", "Switch chip", "PON chip  "};
constexpr const char* power_source_types[] = {"Unknown", "DC", "AC"};

using Environment = System_environment_data;

constexpr JsonField<Environment> ram_fields[] = {
    {"free", member<&Environment::ram_free>, "MiB"},
    {"total", member<&Environment::ram_total>, "MiB"},
};

constexpr JsonField<Environment> disk_fields[] = {
    {"free", member<&Environment::disk_free>, "MiB"},
    {"total", member<&Environment::disk_total>, "MiB"},
};

constexpr JsonField<Environment> load_fields[] = {
    {"1m", member<&Environment::load_1m>},
    {"5m", member<&Environment::load_5m>},
    {"15m", member<&Environment::load_15m>},
};

constexpr JsonField<Fan_state> fan_fields[] = {
    {"is_fault", flag<&Fan_state::is_fault>},
    {"is_present", flag<&Fan_state::is_present>},
    {"rate_rps", member<&Fan_state::rate>, "revolutions per second"},
};

constexpr JsonField<Temp_sensor_state> sensor_fields[] = {
    {"id",
     {[](JsonWriter& to, const Temp_sensor_state& sensor) { return write_value(to, get_sensor_id_str(sensor.id)); },
      &text_among<sensor_names>}},
    {"value", member<&Temp_sensor_state::value>, "degrees Celsius"},
};

constexpr JsonField<Brd__ps_info> power_source_fields[] = {
    {"is_220v_present", flag<&Brd__ps_info::is_220v_present>},
    {"is_present", flag<&Brd__ps_info::is_present>},
    {"is_power_good", flag<&Brd__ps_info::is_power_good>},
    {"is_read_info", flag<&Brd__ps_info::is_read_info>, "1 = the following members are there"},
};

constexpr JsonField<Brd__ps_info> power_source_identification_fields[] = {
    {"is_required_reset", flag<&Brd__ps_info::is_required_reset>},
    {"model", member<&Brd__ps_info::model>},
    {"type",
     {[](JsonWriter& to, const Brd__ps_info& source) {
          return write_value(to, text_of_value(power_source_types, source.type));
      },
      &text_among<power_source_types>}},
    {"serial", member<&Brd__ps_info::serial>},
    {"version", member<&Brd__ps_info::version>},
    {"revision", member<&Brd__ps_info::revision>},
    {"date", member<&Brd__ps_info::date>},
};

constexpr Shape power_source_shape =
    named("PowerSource",
          one_of<object_of<power_source_fields>, object_of<power_source_fields, power_source_identification_fields>>);
constexpr Shape fan_shape = named("Fan", object_of<fan_fields>);
constexpr Shape temperature_sensor_shape = named("TemperatureSensor", object_of<sensor_fields>);

constexpr Member system_members[] = {
    {"ram", &object_of<ram_fields>},
    {"disk", &object_of<disk_fields>},
    {"avg_load", &object_of<load_fields>, "over 1, 5 and 15 minutes"},
    {"fans", &array_of<fan_shape>},
    {"temp_sensors", &array_of<temperature_sensor_shape>},
    {"power_sources", &array_of<power_source_shape>},
    {"device_info", &device_info_shape, "what runs on the board"},
    {"factory_info", &factory_info_shape, "who the board is"},
};
constexpr Shape system_shape = named("SystemState", object_of<system_members>);

Result<void> serialize_ps(JsonWriter& object, const Brd__ps_info& source) {
    BOOST_OUTCOME_TRY(write_fields(object, source, power_source_fields));
    if (source.is_read_info == 0) {
        return core::success();
    }
    return write_fields(object, source, power_source_identification_fields);
}

Result<void> add_environment(JsonWriter& root, const Environment& environment) {
    BOOST_OUTCOME_TRY(const auto fans, bounded_items(environment.fans, environment.fan_count, "fans"));
    BOOST_OUTCOME_TRY(const auto sensors,
                      bounded_items(environment.temp_sensors, environment.temp_sensor_count, "temp_sensors"));
    BOOST_OUTCOME_TRY(write_record(root, "ram", environment, ram_fields));
    BOOST_OUTCOME_TRY(write_record(root, "disk", environment, disk_fields));
    BOOST_OUTCOME_TRY(write_record(root, "avg_load", environment, load_fields));
    BOOST_OUTCOME_TRY(write_records(root, "fans", fans, fan_fields));
    BOOST_OUTCOME_TRY(write_records(root, "temp_sensors", sensors, sensor_fields));
    root.key("power_sources");
    return write_objects(root, environment.power_sources,
                         [&](const Brd__ps_info& source) { return serialize_ps(root, source); });
}

} // namespace

constinit const RouteShape MonitoringSystemHandler::shape{.answer = &system_shape};

Result<std::string> get_sensor_id_str(Brd_api__temp_id id) {
    return text_of_value(sensor_names, id);
}

Result<Response> MonitoringSystemHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_with_data(session, [&] { return serialize_payload(); });
}

Result<Environment> MonitoringSystemHandler::get_environment() const {
    Environment environment{};
    BOOST_OUTCOME_TRY(call_peers(custom_layer__get_system_environment_info, &environment));
    return environment;
}

Result<std::string> MonitoringSystemHandler::serialize_payload() const {
    BOOST_OUTCOME_TRY(const auto environment, get_environment());
    return write_data([&](JsonWriter& root) {
        return write_object(root, [&]() -> Result<void> {
            BOOST_OUTCOME_TRY(add_environment(root, environment));
            BOOST_OUTCOME_TRY(add_device_info(*logger_, root, environment));
            return add_factory_info(*logger_, root);
        });
    });
}

} // namespace xpon::api_service
