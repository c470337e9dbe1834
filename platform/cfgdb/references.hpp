#pragma once

#include "cfgdb/element.hpp"
#include "cfgdb/transaction.hpp"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

// What the field tables say of how records depend on each other.

namespace xpon::cfgdb {

/// A profile or template that something refers to.
struct Reference {
    ElementId element;
    std::uint8_t number; ///< from 1

    [[nodiscard]] RecordId id() const {
        return {element, {static_cast<std::uint16_t>(number - 1), 0}};
    }

    auto operator<=>(const Reference&) const = default;
};

/// The references that are set in a record's own fields, in the order of its table.
std::vector<Reference> own_references(const serializer::Table& table, Bytes record);
/// The same, and those of the records nested in it.
std::vector<Reference> all_references(const serializer::Table& table, Bytes record);

/// The elements that records of this one may refer to, themselves or in nested records.
std::vector<ElementId> targets_of(ElementId id);
/// Whether records of another element may refer to those of this one.
bool is_target(ElementId id);

/// Whether the record's name is set. One of a type without names is always defined.
bool is_defined(const serializer::Table& table, Bytes record);

/// Whether two records of one type differ in what something may depend on.
bool differ_in_content(const serializer::Table& table, Bytes left, Bytes right);
/// The record with its labels blanked: of a name is left whether it is set.
std::vector<std::byte> without_labels(const serializer::Table& table, Bytes record);

} // namespace xpon::cfgdb
