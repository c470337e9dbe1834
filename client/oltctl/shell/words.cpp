#include "client/oltctl/shell/words.hpp"

#include <cctype>

namespace xpon::oltctl {

Words split(std::string_view line) {
    Words found;
    bool is_in_word = false;
    char quote = '\0';
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char letter = line[at];
        if (quote == '\0' && std::isspace(static_cast<unsigned char>(letter)) != 0) {
            is_in_word = false;
            continue;
        }
        if (!is_in_word) {
            is_in_word = true;
            found.words.emplace_back();
            found.begin = at;
        }
        if (letter == quote) {
            quote = '\0';
        } else if (quote == '\0' && (letter == '"' || letter == '\'')) {
            quote = letter;
        } else if (letter == '\\' && quote != '\'' && at + 1 < line.size()) {
            found.words.back() += line[++at];
        } else {
            found.words.back() += letter;
        }
    }
    found.open = quote != '\0';
    if (!is_in_word) {
        found.begin = line.size();
    }
    return found;
}

} // namespace xpon::oltctl
