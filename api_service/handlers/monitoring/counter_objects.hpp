#pragma once

#include "api_service/handlers/record_fields.hpp"
#include "xpon/custom_layer/ont_counters.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// How a record of counters becomes a JSON object: one table of labels per kind, walked by one function for all
// instances and by one for what the ONT has at most one of.

namespace xpon::api_service {

/// Stands for the group in tables of kinds that have none.
struct NoGroup {};

/// One counter: its label, its values by instance, and its value in the record of a group, where the kind has groups.
template <class Values, class Group = NoGroup>
struct Counter {
    LiteralKey label;
    Ont_instance_values Values::* instances;
    std::uint32_t Group::* group = nullptr;
};

/// What the instances of a record are called: by the service where the record has its number, else from "1" on.
template <class Record>
Result<std::vector<std::string>> instance_keys(const Record& record) {
    BOOST_OUTCOME_TRY(const auto count, bounded_count(record.count, max_counter_instances, "count"));
    std::vector<std::string> keys(count);
    for (std::size_t i = 0; i < count; ++i) {
        if constexpr (requires { record.number; }) {
            keys[i] = fmt::format("service {}", record.number[i]);
        } else {
            keys[i] = fmt::format("{}", i + 1);
        }
    }
    return keys;
}

/// Adds an object for each instance, under its key.
template <class Values, class Group, std::size_t N>
Result<void> add_instances(cJSON* object, const std::vector<std::string>& keys, const Values& values,
                           const Counter<Values, Group> (&table)[N]) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
        BOOST_OUTCOME_TRY(auto* instance, add_subobject(object, keys[i].c_str()));
        for (const auto& counter : table) {
            BOOST_OUTCOME_TRY(auto value, create_integer((values.*counter.instances)[i]));
            BOOST_OUTCOME_TRY(add_to_object(instance, counter.label, std::move(value)));
        }
    }
    return core::success();
}

/// Adds an object for the group under `key`, when the ONT has it.
template <class Values, class Group, std::size_t N>
Result<void> add_group(cJSON* object, const char* key, const Group& group, const Counter<Values, Group> (&table)[N]) {
    if (group.valid == 0) {
        return core::success();
    }
    BOOST_OUTCOME_TRY(auto* added, add_subobject(object, key));
    for (const auto& counter : table) {
        BOOST_OUTCOME_TRY(auto value, create_integer(group.*counter.group));
        BOOST_OUTCOME_TRY(add_to_object(added, counter.label, std::move(value)));
    }
    return core::success();
}

/// Adds what the record has of the multicast and of the broadcast GEM port.
template <class Record, class Values, class Group, std::size_t N>
Result<void> add_gem_groups(cJSON* object, const Record& record, const Counter<Values, Group> (&table)[N]) {
    BOOST_OUTCOME_TRY(add_group(object, "MC", record.mc, table));
    return add_group(object, "BC", record.bc, table);
}

/// Adds the object that `fill` fills under `key`, unless nothing came into it.
template <class Fill>
Result<void> add_unless_empty(cJSON* object, const char* key, Fill&& fill) {
    BOOST_OUTCOME_TRY(auto added, create_object());
    BOOST_OUTCOME_TRY(fill(added.get()));
    if (added->child == nullptr) {
        return core::success();
    }
    return add_to_object(object, key, std::move(added));
}

} // namespace xpon::api_service
