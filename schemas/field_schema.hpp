#pragma once

#include "cfgdb/element.hpp"
#include "docs/record_comments.hpp"
#include "schemas/json.hpp"
#include "serializer/field.hpp"

#include <string>

namespace xpon::schemas {

/// What a record is read from, or what is written to it: an answer has every key, the data of a `set` may leave out all
/// that have a default.
enum class Use : std::uint8_t { answer, set };

/// Makes schemas of records from their field tables and the comments of their headers.
class RecordSchemas {
public:
    /// `comments` must outlive the object.
    explicit RecordSchemas(const docs::RecordComments& comments) : comments_(comments) {}

    /// The name under which the record's schema stands among `definitions`, to which it is added with all that it
    /// needs.
    std::string define(const serializer::Table& table, Use use, Json& definitions) const;

private:
    [[nodiscard]] Json object(const serializer::Table& table, Use use, Json& definitions) const;
    [[nodiscard]] Json value(const serializer::Field& field, Use use, Json& definitions) const;
    [[nodiscard]] Json array(const serializer::Field& field, Use use, Json& definitions) const;

    const docs::RecordComments& comments_;
};

} // namespace xpon::schemas
