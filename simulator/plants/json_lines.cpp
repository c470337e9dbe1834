#include "simulator/plants/json_lines.hpp"

#include <algorithm>
#include <cstddef>

namespace xpon::simulator {
namespace {

constexpr std::string_view blanks = " \t\r\n";

/// How many values of the tree begin before `value` does; true once it has been found.
bool count_before(const cJSON* tree, const cJSON* value, std::size_t& count) {
    for (; tree != nullptr; tree = tree->next) {
        if (tree == value) {
            return true;
        }
        ++count;
        if (count_before(tree->child, value, count)) {
            return true;
        }
    }
    return false;
}

/// The end of the text in quotes that begins at `begin`.
std::size_t end_of_quoted(std::string_view text, std::size_t begin) {
    auto end = begin + 1;
    while (end < text.size() && text[end] != '"') {
        end += text[end] == '\\' ? 2 : 1;
    }
    return std::min(end + 1, text.size());
}

} // namespace

unsigned line_at(std::string_view text, const char* place) {
    return 1 + static_cast<unsigned>(
                   std::count(text.data(), std::clamp(place, text.data(), text.data() + text.size()), '\n'));
}

unsigned line_of(std::string_view text, const cJSON* tree, const cJSON* value) {
    std::size_t before = 0;
    count_before(tree, value, before);
    for (std::size_t at = 0; at < text.size();) {
        auto end = at + 1;
        bool is_value = text[at] == '{' || text[at] == '[';
        if (text[at] == '"') {
            end = end_of_quoted(text, at);
            const auto next = text.find_first_not_of(blanks, end);
            is_value = next == std::string_view::npos || text[next] != ':'; // else it is a member's name
        } else if (constexpr std::string_view marks = "{}[],:"; (marks.find(text[at]) == std::string_view::npos) &&
                                                                blanks.find(text[at]) == std::string_view::npos) {
            end = std::min(text.find_first_of("{}[],: \t\r\n", at), text.size());
            is_value = true;
        }
        if (is_value && before-- == 0) {
            return line_at(text, text.data() + at);
        }
        at = end;
    }
    return 1;
}

} // namespace xpon::simulator
