#pragma once

#include "serializer/field.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::serializer {

/// The layout of a record type as text, for programs of another version that find such records: keys, kinds, places
/// and what else it takes to write a record as JSON. Limits, defaults and rules are not in it.
std::string describe(const Table& table);

/// A table that was made from such a text; it serves to write records, not to read or check them.
class DescribedTable {
public:
    /// Empty for a text that describes no layout. Fields that this version has no kind for are left out.
    static std::optional<DescribedTable> parse(std::string_view text);

    DescribedTable(DescribedTable&& other) noexcept;
    DescribedTable& operator=(DescribedTable&& other) noexcept;
    ~DescribedTable();

    [[nodiscard]] const Table& table() const;

private:
    struct Contents;

    explicit DescribedTable(std::unique_ptr<Contents> contents);

    std::unique_ptr<Contents> contents_;
};

} // namespace xpon::serializer
