#include "xpon/custom_layer/device.h"

#include "custom_layer/answer_checks.hpp"
#include "custom_layer/peer_request.hpp"
#include "xpon/core/unique_fd.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace xpon;
using custom_layer::fail;

/// 0, or -1 with errno set.
int read_facts(Device_facts& facts) {
    try {
        const core::UniqueFd file(::open(below_olt_root(device_facts_path).c_str(), O_RDONLY | O_CLOEXEC));
        if (!file) {
            return fail(errno == ENOENT ? ENODATA : EIO);
        }
        const bool is_whole = ::read(file.get(), &facts, sizeof facts) == ssize_t{sizeof facts};
        return is_whole && custom_layer::is_sound(facts) ? 0 : fail(EIO);
    } catch (const std::bad_alloc&) {
        return fail(ENOMEM);
    }
}

/// Gives `out` the part of the facts that `choose` takes from them.
template <class Part, class Choose>
int copy_fact(Part* out, const Choose& choose) {
    if (out == nullptr) {
        return fail(EINVAL);
    }
    *out = {};
    Device_facts facts;
    if (read_facts(facts) != 0) {
        return -1;
    }
    *out = choose(facts);
    return 0;
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
    return copy_fact(index, [](const auto& facts) { return facts.running_slot; });
}

int custom_layer__get_next_boot_firmware_index(std::uint8_t* index) {
    return copy_fact(index, [](const auto& facts) { return facts.next_boot_slot; });
}

int custom_layer__get_firmware_version_info(std::uint8_t index, Firmware_version_info* out) {
    if (out != nullptr && index >= std::size(Device_facts().slots)) {
        *out = {};
        return fail(ERANGE);
    }
    return copy_fact(out, [&](const auto& facts) { return facts.slots[index]; });
}

int custom_layer__get_factory_info(Factory_info* out) {
    return copy_fact(out, [](const auto& facts) { return facts.factory; });
}

int custom_layer__get_formatted_uptime_str(char* out) {
    if (out == nullptr) {
        return fail(EINVAL);
    }
    *out = '\0';
    Device_facts facts;
    if (read_facts(facts) != 0) {
        return -1;
    }
    const auto seconds = static_cast<std::uint64_t>(uptime_of(facts));
    std::snprintf(out, formatted_uptime_size, "%" PRIu64 " days, %02u:%02u:%02u", seconds / 86400,
                  static_cast<unsigned>(seconds / 3600 % 24), static_cast<unsigned>(seconds / 60 % 60),
                  static_cast<unsigned>(seconds % 60));
    return 0;
}

int convert_factory_device_name_to_short_device_name(const char* factory_name, char* short_name) {
    if (factory_name == nullptr || short_name == nullptr) {
        return fail(EINVAL);
    }
    const std::string_view name(factory_name);
    const auto length = std::min(name.find(' '), name.size());
    *short_name = '\0';
    if (length >= short_device_name_size) {
        return fail(EMSGSIZE);
    }
    std::memcpy(short_name, factory_name, length);
    short_name[length] = '\0';
    return 0;
}
