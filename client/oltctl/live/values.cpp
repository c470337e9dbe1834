#include "client/oltctl/live/values.hpp"

#include "client/oltctl/output/table.hpp"
#include "xpon/client/serial_number.hpp"

#include <array>
#include <string_view>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

/// The keys that tell the items of a list apart, the first that an item has; behind it what belongs to it.
constexpr std::array<std::array<const char*, 2>, 7> identities{{{"cfg_port", "cfg_ont_id"},
                                                                {"mac", nullptr},
                                                                {"client_mac", nullptr},
                                                                {"group_address", nullptr},
                                                                {"serial", nullptr},
                                                                {"port", nullptr},
                                                                {"id", nullptr}}};

bool is_serial(const cJSON* value) {
    return value->string != nullptr && std::string_view(value->string).ends_with("serial") && cJSON_IsArray(value) != 0;
}

std::string text_of(const cJSON* value) {
    return is_serial(value) ? client::serial_text(value) : cell_text(value);
}

std::string name_of(const cJSON* item, unsigned position) {
    for (const auto& [key, second_key] : identities) {
        const auto* const value = cJSON_GetObjectItemCaseSensitive(item, key);
        if (value != nullptr) {
            const auto* const second = second_key == nullptr ? nullptr : value_at(item, second_key);
            return second == nullptr ? text_of(value) : fmt::format("{}/{}", text_of(value), text_of(second));
        }
    }
    return fmt::format("{}", position);
}

bool is_plain(const cJSON* value) {
    if (cJSON_IsObject(value) != 0) {
        return false;
    }
    for (const auto* item = cJSON_IsArray(value) != 0 ? value->child : nullptr; item != nullptr; item = item->next) {
        if (cJSON_IsObject(item) != 0 || cJSON_IsArray(item) != 0) {
            return false;
        }
    }
    return true;
}

void collect(const cJSON* value, const std::string& place, std::vector<Value>& found) {
    if (is_plain(value)) {
        found.push_back({.place = place,
                         .text = text_of(value),
                         .number = cJSON_IsNumber(value) != 0 ? std::optional(value->valuedouble) : std::nullopt});
        return;
    }
    unsigned position = 0;
    const bool is_single = cJSON_IsArray(value) != 0 && place.empty() && cJSON_GetArraySize(value) == 1;
    for (const auto* member = value->child; member != nullptr; member = member->next) {
        ++position;
        // The one record that was asked for needs no name.
        const auto step = member->string != nullptr ? std::string(member->string)
                          : is_single               ? std::string()
                                                    : name_of(member, position);
        collect(member, place.empty() || step.empty() ? place + step : fmt::format("{} {}", place, step), found);
    }
}

} // namespace

std::vector<Value> values_of(const cJSON* answer) {
    std::vector<Value> found;
    if (answer != nullptr) {
        collect(answer, "", found);
    }
    return found;
}

} // namespace xpon::oltctl
