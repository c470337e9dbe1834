#include "client/oltctl/provisioning/subscriber_list.hpp"

#include "client/oltctl/configuration/index_list.hpp"
#include "client/oltctl/failure.hpp"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

using Cells = std::vector<std::string>;

struct Line {
    unsigned number; ///< from 1
    Cells cells;
};

[[noreturn]] void refuse(unsigned line, std::string_view what) {
    throw Failure(ExitStatus::usage, fmt::format("Line {} of the list: {}", line, what));
}

/// A cell in quotes may hold commas, ends of lines, and quotes that are written twice.
std::vector<Line> lines_of(std::string_view text) {
    std::vector<Line> lines;
    Line line{.number = 1, .cells = {""}};
    unsigned number = 1;
    bool is_quoted = false;
    const auto end_line = [&] {
        if (line.cells != Cells{""}) {
            lines.push_back(line);
        }
        line = {.number = number, .cells = {""}};
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        number += c == '\n' ? 1 : 0;
        if (c == '"' && is_quoted && text.substr(i + 1).starts_with('"')) {
            line.cells.back() += c;
            ++i;
        } else if (c == '"') {
            is_quoted = !is_quoted;
        } else if (is_quoted || (c != ',' && c != '\n' && c != '\r')) {
            line.cells.back() += c;
        } else if (c == ',') {
            line.cells.emplace_back();
        } else if (c == '\n') {
            end_line();
        }
    }
    if (is_quoted) {
        refuse(line.number, "a quote is open at the end.");
    }
    end_line();
    return lines;
}

unsigned number_in(const Line& line, const std::string& text) {
    std::vector<unsigned> numbers;
    try {
        numbers = numbers_of(text);
    } catch (const Failure&) {
        numbers.clear(); // told here, with the line
    }
    if (numbers.size() != 1) {
        refuse(line.number, fmt::format("'{}' is no number from 1.", text));
    }
    return numbers.front();
}

} // namespace

std::vector<Subscriber> parse_subscriber_list(const std::string& text) {
    const auto lines = lines_of(text);
    const auto titles = lines.empty() ? Cells() : lines.front().cells;
    for (const auto& title : titles) {
        constexpr std::string_view known[] = {"port", "serial", "template", "ont", "description"};
        if (std::ranges::find(known, title) == std::end(known)) {
            refuse(1,
                   fmt::format("there is no column '{}'. Those are port, serial, template, ont, description.", title));
        }
    }
    for (const std::string_view needed : {"port", "serial", "template"}) {
        if (std::ranges::find(titles, needed) == titles.end()) {
            refuse(1, fmt::format("the column '{}' is missing.", needed));
        }
    }
    std::vector<Subscriber> subscribers;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const auto& line = lines[i];
        if (line.cells.size() != titles.size()) {
            refuse(line.number, fmt::format("{} cells below {} titles.", line.cells.size(), titles.size()));
        }
        const auto cell = [&](std::string_view title) {
            const auto found = std::ranges::find(titles, title);
            return found == titles.end() ? std::string() : line.cells[static_cast<std::size_t>(found - titles.begin())];
        };
        const auto ont = cell("ont");
        subscribers.push_back({.port = number_in(line, cell("port")),
                               .ont = ont.empty() ? 0 : number_in(line, ont),
                               .serial = cell("serial"),
                               .ont_template = cell("template"),
                               .description = cell("description")});
    }
    return subscribers;
}

} // namespace xpon::oltctl
