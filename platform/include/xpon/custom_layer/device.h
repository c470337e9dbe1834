#pragma once

#include <cstddef>
#include <cstdint>

// Facts of the device that no peer is asked for: they are there while daemons are down. errno ENODATA when the device
// does not give them, for instance before it has started for the first time; EIO when they are damaged.

/// Which firmware a slot holds. There are two slots, 0 and 1.
struct Firmware_version_info {
    char version[32];   ///< "1.4.2.118"; "" in an invalid slot
    char built[20];     ///< "2024-05-17 08:30:00", UTC
    std::uint32_t size; ///< bytes
    std::uint32_t crc;  ///< CRC-32 [IEEE 802.3]
    std::uint8_t valid; ///< 0 or 1
};

/// Who the board is, written by its maker.
struct Factory_info {
    char device_type[32];
    char board_version[16];
    char serial_number[32];
    char mac_address[20]; ///< "02:53:49:4D:00:01"
    char device_name[64]; ///< "SIM-OLT-16 rev 1"
    char reserved[136];
};
static_assert(sizeof(Factory_info) == 300);

inline constexpr std::size_t formatted_uptime_size = 64;
inline constexpr std::size_t short_device_name_size = 256;

extern "C" {

int custom_layer__get_running_firmware_index(std::uint8_t* index);
/// The slot that runs after the next boot.
int custom_layer__get_next_boot_firmware_index(std::uint8_t* index);
/// ERANGE for an `index` above 1.
int custom_layer__get_firmware_version_info(std::uint8_t index, Firmware_version_info* out);

/// Time since the device's start as "{} days, {:02}:{:02}:{:02}", into `formatted_uptime_size` bytes.
int custom_layer__get_formatted_uptime_str(char* out);

int custom_layer__get_factory_info(Factory_info* out);

/// The factory name up to its first blank, into `short_device_name_size` bytes: "SIM-OLT-16 rev 1" gives
/// "SIM-OLT-16". EMSGSIZE when it does not fit.
int convert_factory_device_name_to_short_device_name(const char* factory_name, char* short_name);

} // extern "C"
