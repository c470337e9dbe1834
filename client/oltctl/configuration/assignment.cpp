#include "client/oltctl/configuration/assignment.hpp"

#include "client/oltctl/failure.hpp"
#include "xpon/client/serial_number.hpp"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

/// Texts that would also be JSON numbers, such as the telephone number 0049, are written in quotes by the user.
core::JsonTree value_of(const std::string& key, const std::string& text) {
    if (key == "serial") {
        if (auto serial = client::parse_serial(text)) {
            return serial;
        }
    }
    core::JsonTree value(cJSON_ParseWithOpts(text.c_str(), nullptr, 1));
    return value ? std::move(value) : core::JsonTree(cJSON_CreateString(text.c_str()));
}

bool is_position(const std::string& step) {
    return !step.empty() && step.size() < 5 &&
           std::ranges::all_of(step, [](unsigned char c) { return std::isdigit(c) != 0; });
}

/// The child of that name, or null; for an array the one at that position.
cJSON* child_of(cJSON* parent, const std::string& step) {
    return cJSON_IsArray(parent) != 0 ? cJSON_GetArrayItem(parent, std::stoi(step))
                                      : cJSON_GetObjectItemCaseSensitive(parent, step.c_str());
}

void put(cJSON* parent, const std::string& step, core::JsonTree value) {
    if (cJSON_IsArray(parent) != 0) {
        if (std::stoi(step) < cJSON_GetArraySize(parent)) {
            cJSON_ReplaceItemInArray(parent, std::stoi(step), value.release());
        } else {
            cJSON_AddItemToArray(parent, value.release());
        }
    } else if (cJSON_HasObjectItem(parent, step.c_str()) != 0) {
        cJSON_ReplaceItemInObjectCaseSensitive(parent, step.c_str(), value.release());
    } else {
        cJSON_AddItemToObject(parent, step.c_str(), value.release());
    }
}

} // namespace

bool is_assignment(const std::string& word) {
    return word.find('=') != std::string::npos;
}

void assign(cJSON* record, const std::string& assignment) {
    const auto equals = assignment.find('=');
    const auto key = assignment.substr(0, equals);
    const auto refuse = [&](std::string_view why) {
        throw Failure(ExitStatus::usage, fmt::format("'{}': {}", key, why));
    };
    for (std::size_t begin = 0;;) {
        const auto dot = key.find('.', begin);
        const auto step = key.substr(begin, dot - begin);
        if (cJSON_IsArray(record) != 0 && (!is_position(step) || std::stoi(step) > cJSON_GetArraySize(record))) {
            refuse(fmt::format("positions count from 0, and the list has {} items.", cJSON_GetArraySize(record)));
        }
        if (step.empty() || (cJSON_IsArray(record) == 0 && cJSON_IsObject(record) == 0)) {
            refuse("there is no such key.");
        }
        if (dot == std::string::npos) {
            put(record, step, value_of(key, assignment.substr(equals + 1)));
            return;
        }
        if (child_of(record, step) == nullptr) {
            // What stands behind it tells whether a list or an object begins here.
            const auto next = key.substr(dot + 1, key.find('.', dot + 1) - dot - 1);
            put(record, step, core::JsonTree(is_position(next) ? cJSON_CreateArray() : cJSON_CreateObject()));
        }
        record = child_of(record, step);
        begin = dot + 1;
    }
}

} // namespace xpon::oltctl
