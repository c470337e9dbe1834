#include "xpon/custom_layer/device.h"

#include "custom_layer/answer_checks.hpp"
#include "xpon/core/c_function.hpp"
#include "xpon/core/unique_fd.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string_view>
#include <type_traits>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace xpon;
/// Throws std::system_error ENODATA without the file, EIO for one that is not as it should be.
Device_facts read_facts() {
    const core::UniqueFd file(::open(below_olt_root(device_facts_path).c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) {
        core::fail_with(errno == ENOENT ? ENODATA : EIO);
    }
    Device_facts facts;
    const bool is_whole = ::read(file.get(), &facts, sizeof facts) == ssize_t{sizeof facts};
    if (!is_whole || !custom_layer::is_sound(facts)) {
        core::fail_with(EIO);
    }
    return facts;
}

double uptime_of(const Device_facts& facts) {
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    const double since_written = static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9 -
                                 static_cast<double>(facts.written_at_ns) * 1e-9;
    static constexpr double longest = 1e12;
    return std::clamp(facts.uptime_s + std::max(since_written, 0.0) * facts.clock_rate, 0.0, longest);
}

} // namespace

int custom_layer__get_running_firmware_index(std::uint8_t* index) {
    return core::c_function(index, [] { return read_facts().running_slot; });
}

int custom_layer__get_next_boot_firmware_index(std::uint8_t* index) {
    return core::c_function(index, [] { return read_facts().next_boot_slot; });
}

int custom_layer__get_firmware_version_info(std::uint8_t index, Firmware_version_info* out) {
    return core::c_function(out, [&] {
        if (index >= std::extent_v<decltype(Device_facts::slots)>) {
            core::fail_with(ERANGE);
        }
        return read_facts().slots[index];
    });
}

int custom_layer__get_factory_info(Factory_info* out) {
    return core::c_function(out, [] { return read_facts().factory; });
}

int custom_layer__get_formatted_uptime_str(char* out) {
    return core::c_function([&] {
        if (out == nullptr) {
            core::fail_with(EINVAL);
        }
        *out = '\0';
        const auto seconds = static_cast<std::uint64_t>(uptime_of(read_facts()));
        std::snprintf(out, formatted_uptime_size, "%" PRIu64 " days, %02u:%02u:%02u", seconds / 86400,
                      static_cast<unsigned>(seconds / 3600 % 24), static_cast<unsigned>(seconds / 60 % 60),
                      static_cast<unsigned>(seconds % 60));
    });
}

int convert_factory_device_name_to_short_device_name(const char* factory_name, char* short_name) {
    return core::c_function([&] {
        if (factory_name == nullptr || short_name == nullptr) {
            core::fail_with(EINVAL);
        }
        *short_name = '\0';
        const std::string_view name(factory_name);
        const auto first_word = name.substr(0, name.find(' '));
        if (first_word.size() >= short_device_name_size) {
            core::fail_with(EMSGSIZE);
        }
        *std::ranges::copy(first_word, short_name).out = '\0';
    });
}
