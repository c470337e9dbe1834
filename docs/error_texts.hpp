#pragma once

#include "xpon/error_texts/json_errors.hpp"

#include <vector>

namespace xpon::docs {

struct ErrorText {
    unsigned index;
    const char* text; ///< {p0} and so on stand for parameters
};

/// What clients may be told, ascending by index.
inline std::vector<ErrorText> error_texts() {
    constexpr unsigned more_than_enough = 256;
    std::vector<ErrorText> texts;
    for (unsigned index = 0; index < more_than_enough; ++index) {
        const char* text = nullptr;
        if (get_json_errors_from_index(static_cast<Json_errors>(index), &text) == 0) {
            texts.push_back({.index = index, .text = text});
        }
    }
    return texts;
}

} // namespace xpon::docs
