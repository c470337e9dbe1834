#pragma once

#include "serializer/field_errors.hpp"

#include <algorithm>
#include <span>
#include <string_view>

namespace xpon::serializer {

/// Where record rules report what they find.
class Contradictions {
public:
    explicit Contradictions(FieldErrors& errors) : errors_(errors) {}

    /// `path` names the later field of the pair, "servers.1.address"; `reason` is short.
    void add(std::string_view path, std::string_view reason) {
        errors_.add(Json_errors::contradiction, path, {reason});
    }

    /// For a field of an element of an array: "KEY.POSITION.FIELD".
    void add_in(std::string_view key, std::size_t position, std::string_view field, std::string_view reason) {
        const Path array(key);
        const Path element(position, &array);
        errors_.add(Json_errors::contradiction, Path(field, &element), {reason});
    }

private:
    FieldErrors& errors_;
};

/// Whether an element before the one at `position` has the same text.
template <class Element, std::size_t size>
bool has_equal_before(std::span<const Element> elements, std::size_t position, char (Element::*text)[size]) {
    const std::string_view wanted(elements[position].*text);
    return std::ranges::any_of(elements.first(position),
                               [&](const Element& element) { return wanted == element.*text; });
}

} // namespace xpon::serializer
