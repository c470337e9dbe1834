#pragma once

#include "api_service/core_names.hpp"
#include "api_service/handlers/record_fields.hpp"
#include "xpon/custom_layer/sfp.h"
#include "xpon/ranges/bitfield.h"

#include <cstdint>
#include <vector>

// What the answers about front ports and about PON ports share.

namespace xpon::api_service {

/// Logs what an error keeps from being done, behind its cause.
template <class T>
Result<T> explained(ILogger& logger, Result<T> result, const char* what_failed) {
    if (!result) {
        log_error(logger, "{}", what_failed);
    }
    return result;
}

/// What `describe` says of each port of the set, ascending.
template <class PortInfo, class Bitmap, class Describe>
Result<std::vector<PortInfo>>
describe_ports(const Bitmap& ports, int (*next)(const Bitmap* bitmap, Bitmap_iterator* iterator, std::uint8_t* port),
               Describe&& describe) {
    std::vector<PortInfo> described;
    Bitmap_iterator iterator{};
    for (std::uint8_t port = 0; next(&ports, &iterator, &port) == 0;) {
        BOOST_OUTCOME_TRY(auto info, describe(port));
        described.push_back(info);
    }
    return described;
}

/// An array with one object for each port, filled by `fill`.
template <class PortInfo>
Result<std::string> compose_ports(const std::vector<PortInfo>& ports,
                                  Result<void> (*fill)(JsonWriter& object, const PortInfo& port)) {
    return write_data([&](JsonWriter& writer) {
        return write_objects(writer, ports, [&](const PortInfo& port) { return fill(writer, port); });
    });
}

/// Whether there is a module, and how it is: "Absent", "ExcludePolling", or what the device says of it.
Result<void> write_condition(JsonWriter& writer, const Sfp_identification& sfp);

inline constexpr JsonField<Sfp_identification> condition_fields[] = {
    {"sfp_condition", {write_condition, &shapes::text}, "\"Absent\", \"ExcludePolling\", or how the module is"},
};

inline constexpr JsonField<Sfp_identification> sfp_fields[] = {
    {"vendor", member<&Sfp_identification::vendor>},
    {"part_number", member<&Sfp_identification::part_number>},
    {"revision", member<&Sfp_identification::revision>},
};

/// Adds "sfp_condition". True when there is a module to describe.
Result<bool> add_sfp_condition(JsonWriter& object, const Sfp_identification& sfp);

/// Adds how the module identifies itself to the object "sfp".
Result<void> fill_sfp(JsonWriter& object, const Sfp_identification& sfp);

} // namespace xpon::api_service
