#include "client/oltctl/output/tree.hpp"

#include "client/oltctl/output/table.hpp"
#include "client/oltctl/output/terminal.hpp"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

constexpr unsigned step = 2;

bool is_plain(const cJSON* value) {
    return cJSON_IsObject(value) == 0 && cJSON_IsArray(value) == 0;
}

bool fits_into_a_line(const cJSON* value) {
    if (cJSON_IsArray(value) == 0) {
        return is_plain(value);
    }
    for (const auto* item = value->child; item != nullptr; item = item->next) {
        if (!is_plain(item)) {
            return false;
        }
    }
    return true;
}

/// Objects of plain values: rows that a table shows better.
bool is_table(const cJSON* value) {
    if (cJSON_IsArray(value) == 0 || cJSON_IsObject(value->child) == 0) {
        return false;
    }
    for (const auto* row = value->child; row != nullptr; row = row->next) {
        for (const auto* cell = row->child; cell != nullptr; cell = cell->next) {
            if (cJSON_IsObject(row) == 0 || !fits_into_a_line(cell)) {
                return false;
            }
        }
    }
    return true;
}

/// With the keys as titles, and a number before each row.
std::string numbered_table(const cJSON* array, unsigned indent) {
    std::vector<Column> columns;
    std::vector<const cJSON*> rows;
    for (const auto* row = array->child; row != nullptr; row = row->next) {
        rows.push_back(row);
        for (const auto* cell = row->child; cell != nullptr; cell = cell->next) {
            if (std::ranges::none_of(
                    columns, [&](const auto& column) { return std::string_view(column.path) == cell->string; })) {
                columns.push_back(
                    {.title = cell->string, .path = cell->string, .is_number = cJSON_IsNumber(cell) != 0});
            }
        }
    }
    const auto digits = fmt::formatted_size("{}", rows.size());
    std::istringstream lines(table_of(rows, columns, output_width() - indent - digits - 2));
    std::string text;
    std::string line;
    for (unsigned number = 0; std::getline(lines, line); ++number) {
        text += fmt::format("{:{}}{:>{}}  {}\n", "", indent, number == 0 ? "" : std::to_string(number), digits, line);
    }
    return text;
}

/// Objects of plain values with the same keys, such as the counters of several services.
bool is_matrix(const cJSON* value) {
    const auto* const first = value->child;
    if (cJSON_IsObject(value) == 0 || first == nullptr || first->next == nullptr) {
        return false;
    }
    for (const auto* column = first; column != nullptr; column = column->next) {
        if (cJSON_IsObject(column) == 0 || column->child == nullptr ||
            cJSON_GetArraySize(column) != cJSON_GetArraySize(first)) {
            return false;
        }
        for (const auto* cell = column->child; cell != nullptr; cell = cell->next) {
            if (!fits_into_a_line(cell) || cJSON_GetObjectItemCaseSensitive(first, cell->string) == nullptr) {
                return false;
            }
        }
    }
    return true;
}

/// A line for each key, and a column for each of the objects.
std::string matrix(const cJSON* value, unsigned indent) {
    std::vector<std::vector<std::string>> columns(1, {""});
    for (const auto* cell = value->child->child; cell != nullptr; cell = cell->next) {
        columns.front().emplace_back(cell->string);
    }
    for (const auto* object = value->child; object != nullptr; object = object->next) {
        auto& column = columns.emplace_back(1, object->string);
        for (const auto* key = value->child->child; key != nullptr; key = key->next) {
            column.push_back(cell_text(cJSON_GetObjectItemCaseSensitive(object, key->string)));
        }
    }
    std::string text;
    for (std::size_t row = 0; row < columns.front().size(); ++row) {
        std::string line(indent, ' ');
        for (const auto& column : columns) {
            std::size_t width = 0;
            for (const auto& cell : column) {
                width = std::max(width, width_of(cell));
            }
            const bool is_key = &column == &columns.front();
            line += (is_key ? "" : "  ") + padded(column[row], width, !is_key);
        }
        text += cut(line, output_width()) + "\n";
    }
    return text;
}

std::string value_text(const cJSON* value) {
    const auto text = cell_text(value);
    return text.empty() ? "-" : text;
}

} // namespace

std::string tree_of(const cJSON* value, unsigned indent) {
    const std::string margin(indent, ' ');
    if (fits_into_a_line(value)) {
        return margin + value_text(value) + "\n";
    }
    if (is_table(value)) {
        return numbered_table(value, indent);
    }
    if (is_matrix(value)) {
        return matrix(value, indent);
    }
    std::size_t width = 0;
    for (const auto* member = value->child; member != nullptr; member = member->next) {
        if (member->string != nullptr && fits_into_a_line(member)) {
            width = std::max(width, std::string_view(member->string).size());
        }
    }
    std::string text;
    unsigned number = 0;
    for (const auto* member = value->child; member != nullptr; member = member->next) {
        const auto name = member->string == nullptr ? fmt::format("{}", ++number) : std::string(member->string);
        text += fits_into_a_line(member) ? fmt::format("{}{:<{}}  {}\n", margin, name, width, value_text(member))
                                         : fmt::format("{}{}:\n{}", margin, name, tree_of(member, indent + step));
    }
    return text;
}

} // namespace xpon::oltctl
