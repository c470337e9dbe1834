#pragma once

#include "serializer/cjson_tree.hpp"
#include "xpon/error_texts/json_errors.hpp"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

namespace xpon::serializer {

/// The way to a field from the record's root, as a chain through the callers' stack frames: it costs nothing until a
/// fault needs its text.
class Path {
public:
    explicit Path(std::string_view key, const Path* parent = nullptr) : parent_(parent), key_(key) {}
    Path(std::size_t position, const Path* parent) : parent_(parent), position_(position), is_position_(true) {}

    /// "servers.1.address"; positions count from 0.
    [[nodiscard]] std::string text() const;

private:
    const Path* parent_;
    std::string_view key_;
    std::size_t position_ = 0;
    bool is_position_ = false;
};

/// The faults found in one record, as the array of error objects that goes to the client.
class FieldErrors {
public:
    using Parameter = std::variant<double, std::string_view>;

    /// Does nothing once the list is full: nobody reads the hundredth fault of a record.
    void add(Json_errors index, const Path& path, std::initializer_list<Parameter> parameters = {});
    void add(Json_errors index, std::string_view path, std::initializer_list<Parameter> parameters = {});

    [[nodiscard]] bool empty() const {
        return count_ == 0;
    }
    [[nodiscard]] bool full() const {
        return count_ == most_errors;
    }

    /// Hands the array over; null when there are no errors.
    cJSON* release() {
        return array_.release();
    }

private:
    static constexpr int most_errors = 32;

    Tree array_;
    int count_ = 0;
};

} // namespace xpon::serializer
