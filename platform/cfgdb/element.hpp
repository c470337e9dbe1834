#pragma once

#include "serializer/field.hpp"
#include "xpon/peer_side/elements.hpp"

#include <array>
#include <compare>
#include <cstdint>
#include <span>

namespace xpon::cfgdb {

/// The position of an element in the list.
#define XPON_NAME_ELEMENT(suffix, record, depth, size1, size2, path) suffix,
enum class ElementId : std::uint16_t { XPON_CFGDB_ELEMENTS(XPON_NAME_ELEMENT) };
#undef XPON_NAME_ELEMENT

/// A row of the list of elements.
struct Element {
    const char* suffix;
    const char* path; ///< below "configuration."
    const serializer::Table& table;
    unsigned depth;
    std::array<std::uint16_t, 2> sizes; ///< elements of each level; 1 beyond the depth
};

std::span<const Element> all_elements();

inline const Element& element(ElementId id) {
    return all_elements()[static_cast<std::size_t>(id)];
}

/// Which record of the configuration. Indices count from 0 and are 0 beyond the element's depth.
struct RecordId {
    ElementId element;
    std::array<std::uint16_t, 2> indices;

    auto operator<=>(const RecordId&) const = default;
};

/// The element that keeps records of the type.
template <class Record>
extern const ElementId element_of;
#define XPON_FIND_ELEMENT(suffix, record, depth, size1, size2, path)                                                   \
    template <>                                                                                                        \
    inline constexpr ElementId element_of<record> = ElementId::suffix;
XPON_CFGDB_ELEMENTS(XPON_FIND_ELEMENT)
#undef XPON_FIND_ELEMENT

} // namespace xpon::cfgdb
