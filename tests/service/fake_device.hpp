#pragma once

#include "xpon/custom_layer/custom_layer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::test {

/// What the custom layer's calls find in a test program that links this in their place. The records go to the service
/// as they stand here, also those that the real calls would refuse.
struct FakeDevice {
    System_environment_data environment{};
    std::uint8_t running_slot = 0;
    std::uint8_t next_boot_slot = 0;
    Firmware_version_info slots[2]{};
    char uptime[formatted_uptime_size]{};
    Factory_info factory{};

    Bitmap_uplink_port_range link_up{};
    std::map<std::uint8_t, Front_port_info> front_ports;
    std::map<std::uint8_t, Front_port_sfp_eddi> front_port_eddi;
    std::optional<Pon_ports_states> pon_states;
    std::optional<Pon_ports_sfp_extended_information> pon_modules;
    Pon_port_type pon_type = pon_gpon;

    std::vector<Ont__state_info> activated;
    std::vector<Ont_unactivated_entry> unactivated;

    /// The bytes of the record that every ONT has of a kind; none: the call succeeds without a record.
    std::map<Ont_information_kind, std::vector<std::byte>> counters;

    std::vector<Dhcp_session> leases;
    std::vector<Pppoe_session> pppoe_sessions;
    struct Vlan {
        std::uint8_t is_snooping;
        std::vector<Igmp_group> groups;
    };
    std::map<std::uint16_t, Vlan> vlans;
    std::vector<Bcm_mac_entry> mac_table;
    bool has_entries = true; ///< false: lists have their count, but no entries

    std::vector<const char*> log_files;
    Snmp_environment_data snmp{};

    /// What was asked of ONTs or done to the device, in order: "reboot 0", "counters 3 of 1/2", "omci_reboot 1/1 1/2".
    std::vector<std::string> journal;

    /// The call with this number, counted from 1, fails with errno EIO; 0 = none.
    int failing_call = 0;
    int calls = 0;
    std::function<void()> during_call; ///< called in each call, by the service's thread
};

/// The one device. Not to be changed while a request is under way.
FakeDevice& fake_device();

/// A device with a bit of everything: front ports 1 to 4, PON ports 1 to 3, ONTs activated and not, two log files,
/// counters of every kind, subscribers of every kind.
FakeDevice filled_device();

/// The serial number "SIMU" and three zero bytes before `last`, as records hold it.
std::array<std::uint8_t, ont_serial_bin_size> serial_of(std::uint8_t last);

/// Writes a text into a record's buffer.
template <std::size_t N>
void set_text(char (&buffer)[N], std::string_view text) {
    buffer[text.copy(buffer, N - 1)] = '\0';
}

/// The record that every ONT has of a kind.
template <class Record>
void set_counters(FakeDevice& device, Ont_information_kind kind, const Record& record) {
    auto& bytes = device.counters[kind];
    bytes.resize(sizeof(record));
    std::memcpy(bytes.data(), &record, sizeof(record));
}

} // namespace xpon::test
