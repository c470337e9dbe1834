#include "gateway/events/subscription.hpp"

#include "gateway/http/percent_encoding.hpp"

#include <algorithm>
#include <charconv>
#include <string>
#include <utility>

#include <fmt/format.h>

namespace xpon::gateway {
namespace {

using core::Error;
using core::ErrorPayload;
using core::JsonTree;
using core::Result;
using std::chrono::milliseconds;

constexpr milliseconds default_interval(2000);
constexpr milliseconds longest_interval(3'600'000);

ErrorPayload unusable(std::string why) {
    return {Error::InvalidInputArg, std::move(why)};
}

Result<milliseconds> read_interval(std::string_view query, const Settings& settings) {
    const auto text = query_parameter(query, "interval");
    if (!text) {
        return std::max(default_interval, settings.shortest_interval);
    }
    long value = 0;
    const auto* end = text->data() + text->size();
    if (std::from_chars(text->data(), end, value).ptr != end || text->empty()) {
        return unusable("interval is a number of milliseconds");
    }
    return std::clamp(milliseconds(value), settings.shortest_interval, longest_interval);
}

Result<WatchedRequest> read_item(JsonTree item, milliseconds interval, const Settings& settings) {
    if (!cJSON_IsObject(item.get())) {
        return unusable("each watch is a request");
    }
    if (cJSON_GetObjectItemCaseSensitive(item.get(), "method") == nullptr) {
        cJSON_AddStringToObject(item.get(), "method", "get");
    }
    const JsonTree own(cJSON_DetachItemFromObjectCaseSensitive(item.get(), "interval"));
    if (own && !cJSON_IsNumber(own.get())) {
        return unusable("interval is a number of milliseconds");
    }
    if (own) {
        const auto wanted = std::clamp(own->valuedouble, 0.0, static_cast<double>(longest_interval.count()));
        interval = std::max(milliseconds(static_cast<long>(wanted)), settings.shortest_interval);
    }
    BOOST_OUTCOME_TRY(auto request, check_request(std::move(item)));
    if (request.method != "get") {
        return unusable("only the method get can be watched");
    }
    return WatchedRequest{.request = std::move(request), .interval = interval};
}

} // namespace

Result<std::vector<WatchedRequest>> read_subscription(std::string_view query, const Settings& settings) {
    BOOST_OUTCOME_TRY(const auto interval, read_interval(query, settings));
    const auto text = query_parameter(query, "watch");
    const JsonTree list(text ? cJSON_ParseWithLength(text->data(), text->size()) : cJSON_CreateArray());
    if (!cJSON_IsArray(list.get())) {
        return unusable("watch is a JSON array of requests");
    }
    if (cJSON_GetArraySize(list.get()) > static_cast<int>(settings.watches_per_stream)) {
        return unusable(fmt::format("watch holds more than {} requests", settings.watches_per_stream));
    }
    std::vector<WatchedRequest> items;
    while (cJSON_GetArraySize(list.get()) > 0) {
        BOOST_OUTCOME_TRY(auto item, read_item(JsonTree(cJSON_DetachItemFromArray(list.get(), 0)), interval, settings));
        items.push_back(std::move(item));
    }
    return items;
}

} // namespace xpon::gateway
