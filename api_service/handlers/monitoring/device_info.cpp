#include "api_service/handlers/monitoring/device_info.hpp"

#include "api_service/handlers/record_fields.hpp"
#include "xpon/core/c_status.hpp"

#include <array>
#include <optional>

#include <sys/utsname.h>

namespace xpon::api_service {
namespace {

struct DeviceInfo {
    std::string hostname;
    std::string uptime;
    std::string active_fw;
    std::string inactive_fw;
    std::string next_boot_fw;
    std::uint8_t fpga_version;
    std::uint8_t pld_version;
};

constexpr JsonField<DeviceInfo> device_info_fields[] = {
    {"hostname", member<&DeviceInfo::hostname>},         {"uptime", member<&DeviceInfo::uptime>},
    {"active_fw", member<&DeviceInfo::active_fw>},       {"inactive_fw", member<&DeviceInfo::inactive_fw>},
    {"next_boot_fw", member<&DeviceInfo::next_boot_fw>}, {"fpga_version", member<&DeviceInfo::fpga_version>},
    {"pld_version", member<&DeviceInfo::pld_version>},
};

constexpr JsonField<Factory_info> factory_info_fields[] = {
    {"device_type", member<&Factory_info::device_type>},
    {"board_version", member<&Factory_info::board_version>},
    {"serial_number", member<&Factory_info::serial_number>},
    {"mac_address", member<&Factory_info::mac_address>},
};

} // namespace

constinit const Shape device_info_shape = named("DeviceInfo", object_of<device_info_fields>);
constinit const Shape factory_info_shape = named("FactoryInfo", object_of<factory_info_fields>);

namespace {

Result<std::string> get_hostname(ILogger& logger) {
    utsname names{};
    BOOST_OUTCOME_TRY(core::call_c_api(logger, ::uname, &names));
    return device_text(names.nodename);
}

Result<std::string> get_uptime(ILogger& logger) {
    std::array<char, formatted_uptime_size> text{};
    BOOST_OUTCOME_TRY(core::call_c_api(logger, custom_layer__get_formatted_uptime_str, text.data()));
    return device_text(text);
}

Result<std::string> get_firmware_version(ILogger& logger, std::uint8_t slot) {
    Firmware_version_info info{};
    BOOST_OUTCOME_TRY(core::call_c_api(logger, custom_layer__get_firmware_version_info, slot, &info));
    return device_text(info.version);
}

Result<std::uint8_t> get_slot(ILogger& logger, int (*ask)(std::uint8_t* index)) {
    std::uint8_t slot = 0;
    BOOST_OUTCOME_TRY(core::call_c_api(logger, ask, &slot));
    if (slot > 1) {
        return ErrorPayload(Error::InvalidInputArg, fmt::format("firmware slot {} of 0 and 1", slot));
    }
    return slot;
}

Result<void> fill_firmware(ILogger& logger, DeviceInfo& info) {
    BOOST_OUTCOME_TRY(const auto running, get_slot(logger, custom_layer__get_running_firmware_index));
    BOOST_OUTCOME_TRY(const auto next_boot, get_slot(logger, custom_layer__get_next_boot_firmware_index));
    BOOST_OUTCOME_TRY(info.active_fw, get_firmware_version(logger, running));
    BOOST_OUTCOME_TRY(info.inactive_fw, get_firmware_version(logger, running == 0 ? 1 : 0));
    info.next_boot_fw = next_boot == running ? info.active_fw : info.inactive_fw;
    return core::success();
}

Result<std::string> ask_short_device_name(ILogger& logger) {
    BOOST_OUTCOME_TRY(const auto factory, get_factory_info(logger));
    const auto factory_name = device_text(factory.device_name);
    std::array<char, short_device_name_size> name{};
    BOOST_OUTCOME_TRY(
        core::call_c_api(logger, convert_factory_device_name_to_short_device_name, factory_name.c_str(), name.data()));
    return device_text(name);
}

} // namespace

Result<void> add_device_info(ILogger& logger, JsonWriter& root, const System_environment_data& environment) {
    DeviceInfo info{};
    info.fpga_version = environment.fpga_version;
    info.pld_version = environment.pld_version;
    BOOST_OUTCOME_TRY(fill_firmware(logger, info));
    BOOST_OUTCOME_TRY(info.hostname, get_hostname(logger));
    BOOST_OUTCOME_TRY(info.uptime, get_uptime(logger));
    return write_record(root, "device_info", info, device_info_fields);
}

Result<void> add_factory_info(ILogger& logger, JsonWriter& root) {
    BOOST_OUTCOME_TRY(const auto factory, get_factory_info(logger));
    return write_record(root, "factory_info", factory, factory_info_fields);
}

Result<Factory_info> get_factory_info(ILogger& logger) {
    Factory_info factory{};
    BOOST_OUTCOME_TRY(core::call_c_api(logger, custom_layer__get_factory_info, &factory));
    return factory;
}

Result<std::string> get_short_device_name(ILogger& logger) {
    static std::optional<std::string> remembered;
    if (!remembered) {
        BOOST_OUTCOME_TRY(remembered, ask_short_device_name(logger));
    }
    return *remembered;
}

} // namespace xpon::api_service
