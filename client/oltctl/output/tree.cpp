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
