#pragma once

#include "xpon/core/json_tree.hpp"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::oltctl {

/// One column of a table: what stands in it is told by a path into the row's object, such as "ont_info.rssi".
struct Column {
    const char* title;
    const char* path;
    std::string (*text_of)(const cJSON* value) = nullptr; ///< null: as the value is
    bool is_number = false;                               ///< stands at the right
};

/// The value of a row at the path, or null. Array positions count from 0.
const cJSON* value_at(const cJSON* row, const char* path);
/// A value in one line: texts as they are, numbers with as many digits as tell them from others, up to 2^53.
std::string cell_text(const cJSON* value);
/// The value of the row in that column.
std::string cell_text(const cJSON* row, const Column& column);

/// @{ Of UTF-8 text, counted in characters.
std::size_t width_of(std::string_view text);
std::string padded(const std::string& text, std::size_t width, bool at_the_right);
/// At most that many.
std::string cut(const std::string& text, std::size_t width);
/// @}

/// Rows below a line of titles. Columns in which nothing stands are left out, and what does not fit into `width` is cut
/// from the last columns on. Without rows it says so.
std::string table_of(std::span<const cJSON* const> rows, std::span<const Column> columns, std::size_t width);

} // namespace xpon::oltctl
