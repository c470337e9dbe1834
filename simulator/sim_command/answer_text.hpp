#pragma once

#include <string>

#include <cjson/cJSON.h>

namespace xpon::simulator {

/// An answer of the simulator for people: members in lines, lists of objects as tables, times in words. Lines of tables
/// that have more than 80 columns go on in the next one where their last cell has a blank. Empty: nothing to tell.
std::string text_of_answer(const cJSON* answer);

} // namespace xpon::simulator
