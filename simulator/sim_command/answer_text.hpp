#pragma once

#include <string>

#include <cjson/cJSON.h>

namespace xpon::simulator {

/// An answer of the simulator for people: members in lines, lists of objects as tables, times in words. Lines are at
/// most 80 columns wide as long as no text of a list is longer than what is left. Empty when there is nothing to tell.
std::string text_of_answer(const cJSON* answer);

} // namespace xpon::simulator
