#pragma once

#include "cfgdb/database.hpp"
#include "serializer/field.hpp"

#include <functional>
#include <string>
#include <vector>

#include <cjson/cJSON.h>

namespace xpon::test {

/// A release of this program whose ONT records have another table: the fields of this release's, altered, each in
/// another place.
class OtherRelease {
public:
    using Fields = std::vector<serializer::Field>;

    /// `alter` changes the fields; their offsets are given anew afterwards.
    explicit OtherRelease(const std::function<void(Fields&)>& alter);
    OtherRelease(const OtherRelease&) = delete;
    OtherRelease& operator=(const OtherRelease&) = delete;

    [[nodiscard]] const serializer::Table& ont_table() const {
        return table_;
    }

    /// Makes the database one that the other release filled: each ONT's record, changed by `change` as JSON, is stored
    /// in its layout.
    void take_over(const cfgdb::Database& database, const std::function<void(cJSON& record)>& change) const;

private:
    Fields fields_;
    serializer::Table table_;
};

/// One key more than this release has, or one less, or wider limits.
/// @{
void add_colour(OtherRelease::Fields& fields);
void drop_description(OtherRelease::Fields& fields);
void widen_description(OtherRelease::Fields& fields);
/// @}

} // namespace xpon::test
