#include "simulator/sim_command/answer_text.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

constexpr std::string_view suffix_of_seconds = "_s";
constexpr std::size_t line_width = 80;

/// "2d 03:00:07", "03:00:07.5"
std::string duration_text(double seconds) {
    const auto whole = static_cast<long long>(std::floor(seconds));
    const double rest = seconds - static_cast<double>(whole);
    auto text = fmt::format("{:02}:{:02}:{:02}", whole / 3600 % 24, whole / 60 % 60, whole % 60);
    if (rest >= 0.1) {
        text += fmt::format(".{}", static_cast<int>(rest * 10));
    }
    return whole >= 86400 ? fmt::format("{}d {}", whole / 86400, text) : text;
}

bool is_list_of_objects(const cJSON* value) {
    return cJSON_IsArray(value) != 0 && cJSON_IsObject(value->child) != 0;
}

std::string value_text(const cJSON* value) {
    if (cJSON_IsString(value) != 0) {
        return value->valuestring;
    }
    if (cJSON_IsBool(value) != 0) {
        return cJSON_IsTrue(value) != 0 ? "yes" : "no";
    }
    if (cJSON_IsNumber(value) != 0) {
        const std::string_view name = value->string == nullptr ? "" : value->string;
        return name.ends_with(suffix_of_seconds) && value->valuedouble >= 0
                   ? duration_text(value->valuedouble)
                   : fmt::format("{:.10g}", value->valuedouble);
    }
    std::string text;
    for (const auto* part = value->child; part != nullptr; part = part->next) {
        text += text.empty() ? "" : ", ";
        text += part->string == nullptr ? value_text(part) : fmt::format("{} {}", part->string, value_text(part));
    }
    return text;
}

std::string title_of(const cJSON* member) {
    std::string_view name = member->string;
    if (name.ends_with(suffix_of_seconds) && cJSON_IsNumber(member) != 0) {
        name.remove_suffix(suffix_of_seconds.size());
    }
    std::string title(name);
    std::ranges::replace(title, '_', ' ');
    return title;
}

struct Column {
    std::string name;
    std::string title;
    bool is_number;
    std::size_t width;
};

/// In the order of the row that has most cells.
std::vector<Column> columns_of(const cJSON* list) {
    const auto* fullest = list->child;
    for (const auto* row = list->child; row != nullptr; row = row->next) {
        fullest = cJSON_GetArraySize(row) > cJSON_GetArraySize(fullest) ? row : fullest;
    }
    std::vector<Column> columns;
    const auto take_in = [&](const cJSON* row) {
        for (const auto* cell = row->child; cell != nullptr; cell = cell->next) {
            auto column = std::ranges::find(columns, std::string_view(cell->string), &Column::name);
            if (column == columns.end()) {
                const auto title = title_of(cell);
                columns.push_back({cell->string, title, cJSON_IsNumber(cell) != 0, title.size()});
                column = std::prev(columns.end());
            }
            column->width = std::max(column->width, value_text(cell).size());
        }
    };
    take_in(fullest);
    for (const auto* row = list->child; row != nullptr; row = row->next) {
        take_in(row);
    }
    return columns;
}

/// The text with its lines broken at blanks, all but the first one indented.
std::string broken(std::string text, std::size_t indent) {
    std::string lines;
    while (text.size() > line_width) {
        const auto blank = text.rfind(' ', line_width);
        if (blank == std::string::npos || blank <= indent) {
            break;
        }
        lines += text.substr(0, blank) + "\n";
        text = std::string(indent, ' ') + text.substr(blank + 1);
    }
    return lines + text + "\n";
}

std::string table_of(const cJSON* list) {
    const auto columns = columns_of(list);
    std::string text;
    const auto add_line = [&](const auto& cell_of) {
        std::string line;
        std::size_t last_begins = 0;
        for (const auto& column : columns) {
            const auto cell = cell_of(column);
            line += line.empty() ? "" : "  ";
            last_begins = line.size();
            line += column.is_number ? fmt::format("{:>{}}", cell, column.width)
                                     : fmt::format("{:<{}}", cell, column.width);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += broken(line, last_begins);
    };
    add_line([](const Column& column) { return column.title; });
    for (const auto* row = list->child; row != nullptr; row = row->next) {
        add_line([&](const Column& column) {
            const auto* const cell = cJSON_GetObjectItemCaseSensitive(row, column.name.c_str());
            return cell == nullptr ? std::string() : value_text(cell);
        });
    }
    return text;
}

} // namespace

std::string text_of_answer(const cJSON* answer) {
    std::string text;
    std::size_t width = 0;
    for (const auto* member = answer->child; member != nullptr; member = member->next) {
        width = std::max(width, title_of(member).size());
    }
    for (const auto* member = answer->child; member != nullptr; member = member->next) {
        if (is_list_of_objects(member)) {
            text += fmt::format("{}:\n{}", title_of(member), table_of(member));
        } else if (const auto value = value_text(member); !value.empty() && std::string_view(member->string) != "ok") {
            text += fmt::format("{:<{}}  {}\n", title_of(member), width, value);
        }
    }
    return text;
}

} // namespace xpon::simulator
