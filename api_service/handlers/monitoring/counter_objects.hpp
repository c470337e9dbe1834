#pragma once

#include "api_service/handlers/record_fields.hpp"
#include "xpon/custom_layer/ont_counters.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// How a record of counters becomes a JSON object: one table of labels per kind, walked by one function for all
// instances and by one for what the ONT has at most one of.

namespace xpon::api_service {

/// Under which keys clients find the objects of an ONT.
/// @{
inline constexpr const char service_key[] = "service {}";
inline constexpr const char port_key[] = "{}";
inline constexpr const char gem_port_key[] = "GEM port {}";
inline constexpr const char multicast_key[] = "MC";
inline constexpr const char broadcast_key[] = "BC";
inline constexpr const char veip_key[] = "veip";
inline constexpr const char downstream_gem_ports_key[] = "Downstream counters for gem";
inline constexpr const char upstream_gem_ports_key[] = "Upstream counters for gem";
inline constexpr const char downstream_ports_key[] = "Downstream counters for ports";
inline constexpr const char upstream_ports_key[] = "Upstream counters for ports";
inline constexpr const char multicast_ports_key[] = "Multicast";
inline constexpr const char broadcast_ports_key[] = "Broadcast";
/// @}

/// Stands for the group in tables of kinds that have none.
struct NoGroup {};

/// One counter: its label, its values by instance, and its value in the record of a group, where the kind has groups.
template <class Values, class Group = NoGroup>
struct Counter {
    std::string_view label;
    Ont_instance_values Values::* instances;
    std::uint32_t Group::* group = nullptr;
};

template <class Values, class Group>
constexpr Member as_member(const Counter<Values, Group>& counter) {
    return {.key = counter.label, .shape = &shape_of<std::uint32_t>};
}

/// What the instances of a record are called: by the service where the record has its number, else from "1" on.
template <class Record>
Result<std::vector<std::string>> instance_keys(const Record& record) {
    BOOST_OUTCOME_TRY(const auto count, bounded_count(record.count, max_counter_instances, "count"));
    std::vector<std::string> keys(count);
    for (std::size_t i = 0; i < count; ++i) {
        if constexpr (requires { record.number; }) {
            keys[i] = fmt::format(service_key, record.number[i]);
        } else {
            keys[i] = fmt::format(port_key, i + 1);
        }
    }
    return keys;
}

/// Writes the counters of a table, whose values `value_of` finds.
template <class Values, class Group, std::size_t N, class ValueOf>
void write_counters(JsonWriter& writer, std::string_view key, const Counter<Values, Group> (&table)[N],
                    ValueOf&& value_of) {
    writer.key(key);
    writer.begin_object();
    for (const auto& counter : table) {
        writer.key(counter.label);
        writer.integer(value_of(counter));
    }
    writer.end_object();
}

/// Writes an object for each instance, under its key.
template <class Values, class Group, std::size_t N>
void write_instances(JsonWriter& object, const std::vector<std::string>& keys, const Values& values,
                     const Counter<Values, Group> (&table)[N]) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
        write_counters(object, keys[i], table, [&](const auto& counter) { return (values.*counter.instances)[i]; });
    }
}

/// Writes an object for the group under `key`, when the ONT has it.
template <class Values, class Group, std::size_t N>
void write_group(JsonWriter& object, std::string_view key, const Group& group,
                 const Counter<Values, Group> (&table)[N]) {
    if (group.valid != 0) {
        write_counters(object, key, table, [&](const auto& counter) { return group.*counter.group; });
    }
}

/// Writes what the record has of the multicast and of the broadcast GEM port.
template <class Record, class Values, class Group, std::size_t N>
void write_gem_groups(JsonWriter& object, const Record& record, const Counter<Values, Group> (&table)[N]) {
    write_group(object, multicast_key, record.mc, table);
    write_group(object, broadcast_key, record.bc, table);
}

/// Writes an object of what `fill` writes under `key`, unless that is nothing.
template <class Fill>
Result<void> write_unless_empty(JsonWriter& object, std::string_view key, Fill&& fill) {
    const auto before = object.mark();
    object.key(key);
    object.begin_object();
    const auto empty = object.mark();
    BOOST_OUTCOME_TRY(std::forward<Fill>(fill)());
    const bool is_empty = object.mark().size == empty.size;
    object.end_object();
    if (is_empty) {
        object.take_back(before);
    }
    return core::success();
}

} // namespace xpon::api_service
