#pragma once

#include <string_view>

#include <cjson/cJSON.h>

namespace xpon::simulator {

// Lines of a JSON text, from 1.

/// That of a place in the text.
unsigned line_at(std::string_view text, const char* place);

/// That where a value of the tree begins which the text was parsed to.
unsigned line_of(std::string_view text, const cJSON* tree, const cJSON* value);

} // namespace xpon::simulator
