// The custom layer's calls that ask a peer or the device. Those that only compute stay the real ones.

#include "tests/service/fake_answers.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <span>

#include <fmt/format.h>

namespace xpon::test {

FakeDevice& fake_device() {
    static FakeDevice device;
    return device;
}

std::array<std::uint8_t, ont_serial_bin_size> serial_of(std::uint8_t last) {
    return {'S', 'I', 'M', 'U', 0, 0, 0, last, 0, 0};
}

std::string text_of(const Bitmap_ont_range& range) {
    std::string text;
    Bitmap_iterator iterator{};
    std::uint8_t port = 0;
    std::uint16_t ont = 0;
    while (get_next_bitmap_ont_ids(&range, &iterator, &port, &ont) == 0) {
        text += fmt::format(" {}/{}", port + 1, ont + 1);
    }
    return text;
}

namespace {

template <class Record>
int give_entry(const std::map<std::uint8_t, Record>& records, std::uint8_t number, Record* out) {
    const auto found = records.find(number);
    if (found == records.end()) {
        errno = ENODATA;
        return -1;
    }
    *out = found->second;
    return 0;
}

char* copy_of(const char* text) {
    return text == nullptr ? nullptr : ::strdup(text);
}

} // namespace
} // namespace xpon::test

using namespace xpon::test;

int custom_layer__get_system_environment_info(Ipc*, System_environment_data* out) {
    return answer([&](auto& device) { return *out = device.environment, 0; });
}

int custom_layer__get_running_firmware_index(std::uint8_t* index) {
    return answer([&](auto& device) { return *index = device.running_slot, 0; });
}

int custom_layer__get_next_boot_firmware_index(std::uint8_t* index) {
    return answer([&](auto& device) { return *index = device.next_boot_slot, 0; });
}

int custom_layer__get_firmware_version_info(std::uint8_t index, Firmware_version_info* out) {
    return answer([&](auto& device) { return *out = device.slots[index], 0; });
}

int custom_layer__get_formatted_uptime_str(char* out) {
    return answer([&](auto& device) { return std::ranges::copy(device.uptime, out), 0; });
}

int custom_layer__get_factory_info(Factory_info* out) {
    return answer([&](auto& device) { return *out = device.factory, 0; });
}

int convert_factory_device_name_to_short_device_name(const char* factory_name, char* short_name) {
    return answer([&](auto&) { return *std::copy_n(factory_name, std::strcspn(factory_name, " "), short_name) = 0; });
}

int custom_layer__get_front_ports_link_states(Ipc*, Bitmap_uplink_port_range* link_up) {
    return answer([&](auto& device) { return *link_up = device.link_up, 0; });
}

int custom_layer__get_front_port_info(Ipc*, std::uint8_t port, Front_port_info* out) {
    return answer([&](auto& device) { return give_entry(device.front_ports, port, out); });
}

int custom_layer__get_front_port_sfp_eddi(Ipc*, std::uint8_t port, Front_port_sfp_eddi* out) {
    return answer([&](auto& device) { return give_entry(device.front_port_eddi, port, out); });
}

int custom_layer__get_pon_ports_states(Ipc*, Pon_ports_states** out) {
    return answer([&](auto& device) { return give_copy(device.pon_states, out); });
}

int custom_layer__get_pon_ports_sfp_extended_information(Ipc*, Pon_ports_sfp_extended_information** out) {
    return answer([&](auto& device) { return give_copy(device.pon_modules, out); });
}

int custom_layer__get_pon_port_type(Ipc*, std::uint8_t, Pon_port_type* out) {
    return answer([&](auto& device) { return *out = device.pon_type, 0; });
}

int custom_layer__get_ont_state_info_by_range(Ipc*, const Bitmap_ont_range*, Ont__get_state_info_response** out) {
    return answer([&](auto& device) { return give_list(std::span<const Ont__state_info>(device.activated), out); });
}

int custom_layer__get_ont_unactivated_by_range(Ipc*, const Bitmap_pon_port_range*, Ont_unactivated_info** out) {
    return answer(
        [&](auto& device) { return give_list(std::span<const Ont_unactivated_entry>(device.unactivated), out); });
}

int custom_layer__get_list_log_files(const void*, int, char*** names, std::uint32_t* count) {
    return answer([&](auto& device) {
        *count = static_cast<std::uint32_t>(device.log_files.size());
        *names = static_cast<char**>(std::calloc(*count, sizeof(char*)));
        std::ranges::transform(device.log_files, *names, copy_of);
        return 0;
    });
}

int custom_layer__generating_engine_id(Ipc*, Snmp_environment_data* out) {
    return answer([&](auto& device) { return *out = device.snmp, 0; });
}
