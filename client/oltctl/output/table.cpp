#include "client/oltctl/output/table.hpp"

#include "client/oltctl/output/terminal.hpp"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include <fmt/format.h>

namespace xpon::oltctl {
/// Every byte but those that continue a character.
std::size_t width_of(std::string_view text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

std::string padded(const std::string& text, std::size_t width, bool at_the_right) {
    const std::string blanks(width - std::min(width, width_of(text)), ' ');
    return at_the_right ? blanks + text : text + blanks;
}

std::string cut(const std::string& text, std::size_t width) {
    std::size_t end = 0;
    for (std::size_t used = 0; end < text.size(); ++end) {
        if ((static_cast<unsigned char>(text[end]) & 0xC0U) != 0x80U && used++ == width) {
            break;
        }
    }
    return text.substr(0, end);
}

const cJSON* value_at(const cJSON* row, const char* path) {
    std::string_view rest(path);
    while (row != nullptr && !rest.empty()) {
        const auto dot = std::min(rest.find('.'), rest.size());
        const std::string step(rest.substr(0, dot));
        rest.remove_prefix(std::min(rest.size(), dot + 1));
        row = cJSON_IsArray(row) != 0 ? cJSON_GetArrayItem(row, std::atoi(step.c_str()))
                                      : cJSON_GetObjectItemCaseSensitive(row, step.c_str());
    }
    return row;
}

std::string cell_text(const cJSON* value) {
    if (value == nullptr || cJSON_IsNull(value) != 0) {
        return "";
    }
    if (cJSON_IsString(value) != 0) {
        return value->valuestring;
    }
    if (cJSON_IsBool(value) != 0) {
        return cJSON_IsTrue(value) != 0 ? "yes" : "no";
    }
    if (cJSON_IsNumber(value) != 0) {
        return fmt::format("{}", value->valuedouble);
    }
    std::string text;
    for (const auto* part = value->child; part != nullptr; part = part->next) {
        text += text.empty() ? "" : ", ";
        text += part->string == nullptr ? cell_text(part) : fmt::format("{} {}", part->string, cell_text(part));
    }
    return text;
}

std::string cell_text(const cJSON* row, const Column& column) {
    const auto* const value = value_at(row, column.path);
    return column.text_of != nullptr && value != nullptr ? column.text_of(value) : cell_text(value);
}

std::string table_of(std::span<const cJSON* const> rows, std::span<const Column> columns, std::size_t width) {
    if (rows.empty()) {
        return fmt::format("{}: none\n", columns.front().title);
    }
    std::vector<std::vector<std::string>> cells; // by column
    std::vector<std::size_t> widths;
    for (const auto& column : columns) {
        auto& column_cells = cells.emplace_back();
        std::size_t widest = 0;
        for (const auto* row : rows) {
            column_cells.push_back(cell_text(row, column));
            widest = std::max(widest, width_of(column_cells.back()));
        }
        widths.push_back(widest == 0 ? 0 : std::max(widest, width_of(column.title)));
    }
    const auto line_of = [&](const auto& text_of_column) {
        std::string line;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (widths[i] > 0) {
                line += line.empty() ? "" : "  ";
                line += padded(text_of_column(i), widths[i], columns[i].is_number);
            }
        }
        line = cut(line, width);
        line.erase(line.find_last_not_of(' ') + 1);
        return line;
    };
    std::string text =
        coloured(line_of([&](std::size_t i) { return std::string(columns[i].title); }), Colour::bold) + "\n";
    for (std::size_t row = 0; row < rows.size(); ++row) {
        text += line_of([&](std::size_t i) { return cells[i][row]; }) + "\n";
    }
    return text;
}

} // namespace xpon::oltctl
