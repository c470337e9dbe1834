#pragma once

#include <string>
#include <string_view>

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

} // namespace xpon::serializer
