#include "api_service/handlers/monitoring/system_handler.hpp"

#include "api_service/handlers/monitoring/device_info.hpp"
#include "api_service/handlers/record_fields.hpp"
#include "xpon/core/c_status.hpp"

namespace xpon::api_service {
namespace {

constexpr const char* sensor_names[] = {"PON SFP 1", "PON SFP 2", "Front SFP", "Switch chip", "PON chip  "};
constexpr const char* power_source_types[] = {"Unknown", "DC", "AC"};

using Environment = System_environment_data;

constexpr JsonField<Environment> ram_fields[] = {
    {"free", member<&Environment::ram_free>},
    {"total", member<&Environment::ram_total>},
};

constexpr JsonField<Environment> disk_fields[] = {
    {"free", member<&Environment::disk_free>},
    {"total", member<&Environment::disk_total>},
};

constexpr JsonField<Environment> load_fields[] = {
    {"1m", member<&Environment::load_1m>},
    {"5m", member<&Environment::load_5m>},
    {"15m", member<&Environment::load_15m>},
};

constexpr JsonField<Fan_state> fan_fields[] = {
    {"is_fault", flag<&Fan_state::is_fault>},
    {"is_present", flag<&Fan_state::is_present>},
    {"rate_rps", member<&Fan_state::rate>},
};

constexpr JsonField<Temp_sensor_state> sensor_fields[] = {
    {"id", [](const Temp_sensor_state& sensor) { return create_field_value(get_sensor_id_str(sensor.id)); }},
    {"value", member<&Temp_sensor_state::value>},
};

constexpr JsonField<Brd__ps_info> power_source_fields[] = {
    {"is_220v_present", flag<&Brd__ps_info::is_220v_present>},
    {"is_present", flag<&Brd__ps_info::is_present>},
    {"is_power_good", flag<&Brd__ps_info::is_power_good>},
    {"is_read_info", flag<&Brd__ps_info::is_read_info>},
};

constexpr JsonField<Brd__ps_info> power_source_identification_fields[] = {
    {"is_required_reset", flag<&Brd__ps_info::is_required_reset>},
    {"model", member<&Brd__ps_info::model>},
    {"type",
     [](const Brd__ps_info& source) { return create_field_value(text_of_value(power_source_types, source.type)); }},
    {"serial", member<&Brd__ps_info::serial>},
    {"version", member<&Brd__ps_info::version>},
    {"revision", member<&Brd__ps_info::revision>},
    {"date", member<&Brd__ps_info::date>},
};

Result<void> serialize_ps(cJSON* object, const Brd__ps_info& source) {
    BOOST_OUTCOME_TRY(add_fields(object, source, power_source_fields));
    if (source.is_read_info == 0) {
        return core::success();
    }
    return add_fields(object, source, power_source_identification_fields);
}

Result<void> add_environment(cJSON* root, const Environment& environment) {
    BOOST_OUTCOME_TRY(const auto fans, bounded_items(environment.fans, environment.fan_count, "fans"));
    BOOST_OUTCOME_TRY(const auto sensors,
                      bounded_items(environment.temp_sensors, environment.temp_sensor_count, "temp_sensors"));
    BOOST_OUTCOME_TRY(add_record(root, "ram", environment, ram_fields));
    BOOST_OUTCOME_TRY(add_record(root, "disk", environment, disk_fields));
    BOOST_OUTCOME_TRY(add_record(root, "avg_load", environment, load_fields));
    BOOST_OUTCOME_TRY(add_records(root, "fans", fans, fan_fields));
    BOOST_OUTCOME_TRY(add_records(root, "temp_sensors", sensors, sensor_fields));
    BOOST_OUTCOME_TRY(auto* sources, add_array_subobject(root, "power_sources"));
    for (const auto& source : environment.power_sources) {
        BOOST_OUTCOME_TRY(auto* object, create_object_in_array(sources));
        BOOST_OUTCOME_TRY(serialize_ps(object, source));
    }
    return core::success();
}

} // namespace

Result<std::string> get_sensor_id_str(Brd_api__temp_id id) {
    return text_of_value(sensor_names, id);
}

Result<Response> MonitoringSystemHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_with_data(session, [&] { return serialize_payload(); });
}

Result<Environment> MonitoringSystemHandler::get_environment() const {
    Environment environment{};
    BOOST_OUTCOME_TRY(core::call_c_api(*logger_, custom_layer__get_system_environment_info, ipc_->raw(), &environment));
    return environment;
}

Result<JsonTree> MonitoringSystemHandler::serialize_payload() const {
    BOOST_OUTCOME_TRY(const auto environment, get_environment());
    BOOST_OUTCOME_TRY(auto root, create_object());
    BOOST_OUTCOME_TRY(add_environment(root.get(), environment));
    BOOST_OUTCOME_TRY(add_device_info(*logger_, root.get(), environment));
    BOOST_OUTCOME_TRY(add_factory_info(*logger_, root.get()));
    return root;
}

} // namespace xpon::api_service
