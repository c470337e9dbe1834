#pragma once

#include <cmath>
#include <string>

#include <cjson/cJSON.h>

namespace xpon::simulator {

// Steps in which answers are put together. What cannot be added for lack of memory is left out.

inline void add(cJSON* object, const char* name, const std::string& text) {
    cJSON_AddStringToObject(object, name, text.c_str());
}

inline void add(cJSON* object, const char* name, double number) {
    cJSON_AddNumberToObject(object, name, number);
}

inline cJSON* add_object_to(cJSON* array) {
    auto* const object = cJSON_CreateObject();
    cJSON_AddItemToArray(array, object);
    return object;
}

inline double rounded(double number, double unit) {
    return std::round(number / unit) * unit;
}

} // namespace xpon::simulator
